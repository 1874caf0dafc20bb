#include "tests/support/ApiTest.h"

#include "tests/support/TempFolder.h"

#include <cstdlib>

namespace Orvi::Testing {

ApiTest::ApiTest()
{
    // The library makes folders below the home folder, and must not make them in the tester's.
    setenv("HOME", TempFolder::OfProcess().c_str(), 1);
    setenv("ORVICAMSDK", ORVI_STUB_SDK, 1);
    stub.Reset();
    ClearRegistry();
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u) << "is the scripted transport below " << ORVI_STUB_SDK << "?";
    uint32_t count = 0;
    EXPECT_EQ(Sys_GetNumOfCameras(&count), 0u);
    log_ = std::make_unique<LogCapture>();
    Forget();
}

ApiTest::~ApiTest()
{
    log_.reset();
    Sys_Terminate();
    ClearRegistry();
}

void ApiTest::Terminate()
{
    Sys_Terminate();
    Forget();
}

void ApiTest::Forget()
{
    if (log_)
        log_->Take();
    stub.TakeCalls();
    TakeDiagnostics();
}

CAM_HANDLE ApiTest::OpenCamera()
{
    CAM_HANDLE hCam = 0;
    EXPECT_EQ(Cam_Open(0, &hCam, nullptr, true, nullptr, CAM_ACCESS_MODE_CONTROL), 0u);
    Forget();
    return hCam;
}

} // namespace Orvi::Testing
