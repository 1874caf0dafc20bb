#pragma once
// The fixture of the tests that look at images: a virtual camera as from the factory, and the picture that its present
// settings are to give, to the last bit.

#include "tests/e2e/RequestChannel.h"
#include "vcam/Scene.h"

#include <functional>

namespace Orvi::Testing {

/// A delivered image of its own.
struct Picture {
    CAM_STREAM_REQUEST_INFO info{};
    std::vector<std::byte> bytes;
};

/// Registers of the virtual camera that no feature function reaches.
namespace Virtual {
inline constexpr uint64_t userSetSelector = 0x230034, userSetLoad = 0x230038, lineLevels = 0x0F000010,
                          commandDelay = 0x0F00001C, lastExposure = 0x0F000020;
inline constexpr uint32_t never = 0xFFFFFFFF;
} // namespace Virtual

class EffectTest : public VirtualCameraTest {
  protected:
    EffectTest();

    /// What all settings show that settings_ does not tell are those of the factory.
    Vcam::PictureSettings settings_;
    const CAM_HANDLE hCam;

    /// Also in settings_.
    void SetRoi(uint32_t width, uint32_t height, uint32_t offsetX, uint32_t offsetY);
    uint32_t PayloadSize() const;

    /// One image of an acquisition of its own.
    Picture Take();
    /// The same, which is compared with the picture that settings_ give.
    Picture ExpectPicture();
    void ExpectPicture(const Picture &picture) const;
    static Picture Copy(const Delivered &delivered);

    /// The light of a pixel of the image, as settings_ show it.
    Vcam::Signal At(uint32_t x, uint32_t y) const { return Vcam::Scene(settings_).Background(x, y); }

    // The road of the nodes
    double FloatNode(const char *name) const;
    bool BoolNode(const char *name) const;
    std::string EnumNode(const char *name) const;
    void SetBoolNode(const char *name, bool value) const;

    /// Why a node has refused.
    static std::string GenICamError();

    uint32_t LineStatus() const;
    /// The camera's clock in ns.
    uint64_t DeviceTime() const;

    /// Waits for a condition of the camera.
    static bool Eventually(const std::function<bool()> &condition);
};

} // namespace Orvi::Testing
