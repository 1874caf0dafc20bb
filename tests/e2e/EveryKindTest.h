#pragma once
// The fixture of the tests of cameras with descriptions of their own, those of tests/kernel/cameras.toml. They print
// lines that begin with "seen": on either link they have to be the same.

#include "tests/e2e/NodeValue.h"
#include "tests/e2e/VirtualCameraTest.h"
#include "tests/support/TempFolder.h"

#include <cstdlib>

namespace Orvi::Testing {

class EveryKindTest : public ::testing::Test {
  public:
    using Words = std::vector<uint32_t>;

  protected:
    EveryKindTest()
    {
        setenv("HOME", TempFolder::OfProcess().c_str(), 1);
        setenv("ORVICAMSDK", ORVI_TEST_SDK, std::getenv("ORVI_E2E_LINK") == nullptr);
        // Who chooses the link knows where the cameras are described.
        setenv("ORVI_VIRTUAL_CAMERAS", ORVI_TEST_CAMERAS, std::getenv("ORVI_E2E_LINK") == nullptr);
        setenv("ORVI_TRANSPORT", IsOverUsb() ? "usb" : "virtual", 1);
        EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    }
    ~EveryKindTest() override { EXPECT_EQ(Sys_Terminate(), 0u); }

    void Open(const std::string &serial)
    {
        uint32_t count = 0;
        EXPECT_EQ(Sys_GetNumOfCameras(&count), 0u);
        for (uint32_t index = 0; index < count; ++index) {
            CAM_INFO info{};
            EXPECT_EQ(Cam_GetInformation(0, index, &info), 0u);
            if (info.szSerialNumber == serial) {
                EXPECT_EQ(Cam_Open(index, &hCam, nullptr, true, nullptr, CAM_ACCESS_MODE_CONTROL), 0u);
                return;
            }
        }
        FAIL() << "no camera " << serial;
    }

    Words Memory(uint64_t address, std::size_t words) const
    {
        Words memory(words);
        EXPECT_EQ(Cam_ReadReg(hCam, address, static_cast<uint32_t>(words), memory.data()), 0u);
        return memory;
    }
    void SetMemory(uint64_t address, const Words &words) const
    {
        EXPECT_EQ(Cam_WriteReg(hCam, address, static_cast<uint32_t>(words.size()), words.data()), 0u);
    }
    /// The value, or the status when there is none.
    std::string ValueOf(const char *name) const
    {
        std::string value;
        const CAM_API_STATUS status = GetValue(hCam, Node(hCam, name), value);
        return status == 0 ? value : "status " + std::to_string(status);
    }
    CAM_API_STATUS TrySet(const char *name, const std::string &value) const
    {
        return SetValue(hCam, Node(hCam, name), value);
    }
    CAM_NODE_TYPE TypeOf(const char *name) const { return Testing::TypeOf(hCam, Node(hCam, name)); }

    CAM_HANDLE hCam = 0;
};

} // namespace Orvi::Testing
