// Transports that lack an entry point.

#include "tests/stub/Variant.h"
#include "tests/transport/TransportTest.h"

namespace Orvi::Testing {

class MissingEntryTest : public TransportTest, public ::testing::WithParamInterface<Entry> {
  protected:
    void LoadWithout(Entry entry)
    {
        Stub::MakeSdkWithout({entry}, Sdk());
        EXPECT_EQ(OrviU3vCamApiDLL_Load(), 0u);
    }
};

INSTANTIATE_TEST_SUITE_P(Transport, MissingEntryTest, ::testing::ValuesIn(Stub::AllEntries()),
                         [](const auto &instance) { return std::string(NameOf(instance.param)); });

TEST_P(MissingEntryTest, RequiredOneRefusesTheTransportOptionalOneFailsItsForwarder)
{
    LogCapture log;
    LoadWithout(GetParam());
    EXPECT_EQ(log.Take(), Lines{}) << "a missing entry is not reported";
    if (!Stub::IsOptional(GetParam())) {
        ExpectUnloaded();
        return;
    }
    const bool testsAnother = GetParam() == Entry::Cam_AbortPipe || GetParam() == Entry::Cam_ResetPipe;
    for (const Forwarder &forwarder : Forwarders()) {
        EXPECT_EQ(forwarder.isResolved(), forwarder.entry != GetParam()) << NameOf(forwarder.entry);
        if (forwarder.entry == GetParam() && !testsAnother) {
            EXPECT_EQ(forwarder.callEmpty(), 0xFFFFFFFFu);
        }
    }
    EXPECT_EQ(stub.TakeCalls(), Lines{});
}

using MissingEntriesTest = TransportTest;

TEST_F(MissingEntriesTest, TransportWithoutAnyOptionalEntryLoads)
{
    Stub::MakeSdkWithout({Entry::Cam_AbortPipe, Entry::Cam_ResetPipe, Entry::Strm_GetLostCount,
                          Entry::LogCamInitializeMem, Entry::LogCamInitializeFile, Entry::LogCamTerminate,
                          Entry::LogCamWrite, Entry::LogCamMemFlush, Entry::LogCamOutMemToFile,
                          Entry::Cam_SaveParameter, Entry::Cam_LoadParameter},
                         Sdk());
    EXPECT_EQ(OrviU3vCamApiDLL_Load(), 0u);
    for (const Forwarder &forwarder : Forwarders())
        EXPECT_EQ(forwarder.isResolved(), !Stub::IsOptional(forwarder.entry)) << NameOf(forwarder.entry);
    EXPECT_EQ(_Uc_Sys_Initialize(), 0u);
}

TEST_F(MissingEntriesTest, StartReportsTheRefusedTransport)
{
    Stub::MakeSdkWithout({Entry::Misc_GetLastGenICamError}, Sdk());
    const ScopedVariable home("HOME", Sdk());
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0x103u);
    EXPECT_EQ(stub.TakeCalls(), Lines{}) << "nothing of it was called";
    ExpectUnloaded();
}

} // namespace Orvi::Testing
