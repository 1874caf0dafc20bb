#pragma once
// The fixture of the tests that use the library as an application does: with its own transport, on virtual cameras in
// this process, or, with ORVI_E2E_LINK=usb (the other is virtual), on two that orvi-vcam-usbip has plugged into the
// kernel.

#include "OrviCamApi.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Orvi::Testing {

/// The library initialised and its two virtual cameras enumerated.
class VirtualCameraTest : public ::testing::Test {
  protected:
    VirtualCameraTest() : VirtualCameraTest("2", 2) {}
    /// Other ones, as ORVI_VIRTUAL_CAMERAS takes them.
    VirtualCameraTest(const char *cameras, uint32_t count);
    ~VirtualCameraTest() override;

    /// Opens a camera with a small image and no limit of its frame rate; it is closed at the end of the test.
    CAM_HANDLE Open(uint32_t index = 0);
    /// Enumerates until that many cameras are there.
    static void AwaitCameras(uint32_t count);
    /// Waits until the camera has thrown away that many more images.
    static void AwaitDrops(CAM_HANDLE hCam, uint32_t more);

  private:
    static void Restart();
    static CAM_API_STATUS TryOpen(uint32_t index, void *removalSignal, bool useGenICam, CAM_HANDLE &hCam);

    std::vector<CAM_HANDLE> open_;
};

/// Whether the cameras are behind the kernel's USB, where all takes longer.
bool IsOverUsb();
/// How often to repeat what is to be repeated often.
inline int Rounds(int inProcess, int overUsb) { return IsOverUsb() ? overUsb : inProcess; }

/// How long a test waits for what must happen; only a failure waits so long.
inline constexpr uint32_t patience = 60000; // ms

/// Registers that only a virtual camera has.
namespace Virtual {
inline constexpr uint64_t unplug = 0x0F000000, replugAfter = 0x0F000004, droppedBlocks = 0x0F000008,
                          unthrottled = 0x0F00000C;
}

uint32_t ReadWord(CAM_HANDLE hCam, uint64_t address);
void WriteWord(CAM_HANDLE hCam, uint64_t address, uint32_t value);

CAM_HANDLE Node(CAM_HANDLE hCam, const char *name);
int64_t GetInt(CAM_HANDLE hCam, const char *name);
void SetInt(CAM_HANDLE hCam, const char *name, int64_t value);
void SetFloat(CAM_HANDLE hCam, const char *name, double value);
void SetEnum(CAM_HANDLE hCam, const char *name, const char *value);

struct PixelFormat {
    std::string name;
    uint32_t code;
    /// As the code says.
    uint32_t ImageBytes(uint32_t width, uint32_t height) const { return width * height * (code >> 16 & 0xFF) / 8; }
};
std::vector<PixelFormat> PixelFormats(CAM_HANDLE hCam);

/// The block id that the camera has drawn into the first line, or a failure when there is none.
uint64_t DrawnBlockId(const void *image, uint32_t pixelFormat = 0x01080001);

} // namespace Orvi::Testing
