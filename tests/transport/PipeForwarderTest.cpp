// Aborting and resetting a pipe ask whether the transport can reset a camera, not whether it has them.

#include "tests/stub/Variant.h"
#include "tests/support/ChildProcess.h"
#include "tests/transport/TransportTest.h"

#include <csignal>

#include <sys/wait.h>

namespace Orvi::Testing {

struct PipeRow {
    Entry entry;
    CAM_API_STATUS (*forward)(CAM_HANDLE, uint32_t);
};

using PipeForwarderTest = TransportTest;

constexpr PipeRow s_pipes[] = {{Entry::Cam_AbortPipe, _Uc_Cam_AbortPipe}, {Entry::Cam_ResetPipe, _Uc_Cam_ResetPipe}};

TEST_F(PipeForwarderTest, FailWithoutTheCameraReset)
{
    const ScopedVariable sdk("ORVICAMSDK", ORVI_STUB_SDK);
    OrviU3vCamApiDLL_Load();
    for (const PipeRow &row : s_pipes)
        EXPECT_EQ(row.forward(0x11, 1), 0u);
    EXPECT_EQ(stub.TakeCalls(), (Lines{"Cam_AbortPipe(0x11, 1)", "Cam_ResetPipe(0x11, 1)"}));
    pUc_Cam_Reset = nullptr;
    for (const PipeRow &row : s_pipes)
        EXPECT_EQ(row.forward(0x11, 1), 0xFFFFFFFFu);
    EXPECT_EQ(stub.TakeCalls(), Lines{});
}

TEST_F(PipeForwarderTest, FaultWhenTheTransportLacksThem)
{
    for (const PipeRow &row : s_pipes) {
        Stub::MakeSdkWithout({row.entry}, Sdk() / NameOf(row.entry));
        const ScopedVariable sdk("ORVICAMSDK", Sdk() / NameOf(row.entry));
        OrviU3vCamApiDLL_Load();
        const int status = WaitStatusOfChild([&] {
            std::signal(SIGSEGV, SIG_DFL);
            row.forward(0x11, 1);
        });
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), SIGSEGV);
        OrviU3vCamApiDLL_Free();
    }
}

} // namespace Orvi::Testing
