// Starting the library.

#include "tests/system/SystemTest.h"

#include <climits>

namespace Orvi::Testing {

using ::testing::ElementsAre;

class InitializeTest : public SystemTest {
  protected:
    InitializeTest() { StartLog(); }

    void ExpectDown()
    {
        EXPECT_FALSE(GetInitFlg());
        EXPECT_FALSE(IsTransportLoaded());
        EXPECT_EQ(_Uc_Sys_Initialize(), 0xFFFFFFFFu);
        EXPECT_EQ(_Uc_Misc_GetLastGenICamError(nullptr), 0xFFFFFFFFu);
    }

    const std::string enter = EnterLine("Sys_Initialize");
};

TEST_F(InitializeTest, StartsTheTransport)
{
    for (const int32_t flags : {SYS_INIT_U3V, SYS_INIT_ALL}) {
        EXPECT_FALSE(GetInitFlg());
        EXPECT_EQ(Sys_Initialize(flags), 0u);
        EXPECT_TRUE(GetInitFlg());
        EXPECT_EQ(TakeLog(), (Lines{enter, ExitLine(0, "Sys_Initialize")}));
        EXPECT_EQ(TakeCalls(), Lines{"Sys_Initialize()"});
        Sys_Terminate();
        TakeLog();
        TakeCalls();
    }
}

TEST_F(InitializeTest, RefusesOtherFlags)
{
    for (const int32_t flags : {0, 3, 4, 5, 0x8000, 0xFFFE, 0x1FFFF, 0x10001, -1, INT_MAX, INT_MIN}) {
        EXPECT_EQ(Sys_Initialize(flags), 13u) << flags;
        EXPECT_EQ(TakeLog(), (Lines{enter, ExitLine(13, "Sys_Initialize")}));
        EXPECT_EQ(TakeCalls(), Lines{});
        ExpectDown();
    }
    EXPECT_EQ(Variable("GENICAM_CACHE_V3_0"), CacheFolder()) << "the environment is set before flags are looked at";
}

TEST_F(InitializeTest, GigEVisionIsNeverAvailable)
{
    EXPECT_EQ(Sys_Initialize(SYS_INIT_GEV), 0x103u);
    EXPECT_EQ(TakeLog(), (Lines{enter, ExitLine(0xFFFFFFFF, "Sys_Initialize")}));
    EXPECT_EQ(TakeCalls(), Lines{});
    ExpectDown();
}

TEST_F(InitializeTest, TransportThatIsNotThere)
{
    RemoveTransport();
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0x103u);
    EXPECT_THAT(TakeLog(),
                ElementsAre(enter, RunsInto("  OrviU3vCamApi.dll not exist.", 0xFFFFFFFF, "Sys_Initialize (U3v)")));
    EXPECT_EQ(Sys_Initialize(SYS_INIT_ALL), 0x103u);
    EXPECT_THAT(TakeLog(),
                ElementsAre(enter, RunsInto("  OrviU3vCamApi.dll not exist.", 0xFFFFFFFF, "Sys_Initialize")));
    ExpectDown();
}

TEST_F(InitializeTest, TransportThatDoesNotStart)
{
    for (const CAM_API_STATUS status : TransportStatuses()) {
        for (const int32_t flags : {SYS_INIT_U3V, SYS_INIT_ALL}) {
            stub.Script(Entry::Sys_Initialize, {status});
            EXPECT_EQ(Sys_Initialize(flags), 0x103u);
            const char *exit = flags == SYS_INIT_U3V ? "Sys_Initialize (U3v)" : "Sys_Initialize";
            EXPECT_EQ(TakeLog(), (Lines{enter, ExitLine(0xFFFFFFFF, exit)}));
            EXPECT_EQ(TakeCalls(), Lines{"Sys_Initialize()"});
            EXPECT_EQ(TakeDiagnostics(), Lines{});
            ExpectDown();
        }
    }
}

TEST_F(InitializeTest, ExceptionIsAFailedStart)
{
    for (const Stub::Thrown thrown : {Stub::Thrown::RuntimeError, Stub::Thrown::NoStdException}) {
        for (const int32_t flags : {SYS_INIT_U3V, SYS_INIT_ALL}) {
            stub.ThrowNext(Entry::Sys_Initialize, thrown);
            EXPECT_EQ(Sys_Initialize(flags), 0x103u);
            EXPECT_EQ(TakeLog(), (Lines{enter, ExitLine(0xFFFFFFFF, "Sys_Initialize")}));
            ExpectDown();
        }
    }
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u) << "it can be tried again";
}

TEST_F(InitializeTest, SecondStartChangesNothing)
{
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    unsetenv("GENICAM_CACHE_V3_0");
    TakeLog();
    TakeCalls();
    for (const int32_t flags : {SYS_INIT_U3V, SYS_INIT_GEV, SYS_INIT_ALL, 99}) {
        EXPECT_EQ(Sys_Initialize(flags), 2u);
        EXPECT_EQ(TakeLog(), (Lines{enter, "WARN ,EXIT: Sys_Initialize(CAM_API_STS_ALREADY_INITIALIZED)"}));
    }
    EXPECT_EQ(TakeCalls(), Lines{});
    EXPECT_EQ(Variable("GENICAM_CACHE_V3_0"), "(unset)");
    EXPECT_TRUE(GetInitFlg());
}

TEST_F(InitializeTest, SecondStartReadsTheConfigurationAgain)
{
    StopLog();
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    EXPECT_FALSE(g_bUniLogInit);
    Configure("OrviCamApi,MEMORY,4096,WARN,PATH=@\n");
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 2u);
    EXPECT_TRUE(g_bUniLogInit);
    EXPECT_EQ(Uni_GetLogLevel(), 2u);
    Sys_Terminate();
    EXPECT_FALSE(g_bUniLogInit);
}

TEST_F(InitializeTest, StartsAgainAndAgain)
{
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(Sys_Initialize(SYS_INIT_ALL), 0u);
        EXPECT_EQ(Sys_Terminate(), 0u);
        ExpectDown();
    }
    EXPECT_EQ(stub.CountOf(Entry::Sys_Initialize), 20u);
    EXPECT_EQ(stub.CountOf(Entry::Sys_Terminate), 20u);
}

} // namespace Orvi::Testing
