// The text of the last node failure.

#include "tests/support/ApiTest.h"

#include <thread>

namespace Orvi::Testing {

using Stub::Entry;
using GenICamErrorTest = ApiTest;

TEST_F(GenICamErrorTest, IsFetchedAndCopiedWhole)
{
    stub.on.Misc_GetLastGenICamError = [](CAM_GENICAM_ERROR *error) -> CAM_API_STATUS {
        *error = {"text", {0x1111, 0x2222}};
        return 0;
    };
    EXPECT_EQ(Misc_SetLastGenICamError(1), 0u);
    EXPECT_EQ(TakeLog(), Lines{"  GenICamError:text"}) << "no line of its own but the text";
    CAM_GENICAM_ERROR error{};
    EXPECT_EQ(Misc_GetLastGenICamError(&error), 0u);
    EXPECT_STREQ(error.pszMessage, "text");
    EXPECT_EQ(error.ullReserved[0], 0x1111u);
    EXPECT_EQ(error.ullReserved[1], 0x2222u);
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Misc_GetLastGenICamError"), "INFO ,EXIT: Misc_GetLastGenICamError"}));
    EXPECT_EQ(TakeCalls(), Lines{"Misc_GetLastGenICamError(ptr)"});
}

TEST_F(GenICamErrorTest, AnyFlagButOneIsRefusedAndChangesNothing)
{
    for (const uint32_t flag : {0u, 2u, 0xFFFFFFFFu})
        EXPECT_EQ(Misc_SetLastGenICamError(flag), 13u);
    EXPECT_EQ(TakeCalls(), Lines{});
    EXPECT_EQ(TakeLog(), Lines{});
    Terminate();
    EXPECT_EQ(Misc_SetLastGenICamError(0), 13u) << "also while not initialised";
}

TEST_F(GenICamErrorTest, StatusOfTheFetchIsNotTranslated)
{
    for (const CAM_API_STATUS status : {0x3u, 0xB000u, 0x13u}) {
        stub.Script(Entry::Misc_GetLastGenICamError, {status});
        EXPECT_EQ(Misc_SetLastGenICamError(1), status);
    }
}

TEST_F(GenICamErrorTest, FetchWithoutATransportIsUnsuccessful)
{
    Terminate();
    EXPECT_EQ(Misc_SetLastGenICamError(1), 0xFFFFFFFFu);
}

TEST_F(GenICamErrorTest, CopyNeedsTheLibraryInitialised)
{
    Terminate();
    CAM_GENICAM_ERROR error{"before", {5, 6}};
    EXPECT_EQ(Misc_GetLastGenICamError(&error), 1u);
    EXPECT_STREQ(error.pszMessage, "before");
    EXPECT_EQ(Misc_GetLastGenICamError(nullptr), 1u);
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Misc_GetLastGenICamError"), ExitLine(1, "Misc_GetLastGenICamError"),
                                EnterLine("Misc_GetLastGenICamError"), ExitLine(1, "Misc_GetLastGenICamError")}));
}

TEST_F(GenICamErrorTest, RecordStaysUntilTheNextFetch)
{
    stub.genICamError = "first";
    EXPECT_EQ(Misc_SetLastGenICamError(1), 0u);
    const char *text = stub.genICamError.c_str();
    Terminate();
    ASSERT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    CAM_GENICAM_ERROR error{};
    EXPECT_EQ(Misc_GetLastGenICamError(&error), 0u);
    EXPECT_EQ(error.pszMessage, text);
}

TEST_F(GenICamErrorTest, LongTextIsCutInTheLogOnly)
{
    stub.genICamError = std::string(2000, 'x');
    EXPECT_EQ(Misc_SetLastGenICamError(1), 0u);
    const Lines log = TakeLog();
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0], "  GenICamError:" + std::string(511 - 15, 'x'))
        << "511 bytes, the line feed cut off with the rest";
    CAM_GENICAM_ERROR error{};
    EXPECT_EQ(Misc_GetLastGenICamError(&error), 0u);
    EXPECT_EQ(error.pszMessage, stub.genICamError);
}

TEST_F(GenICamErrorTest, FetchIsWrittenAtLevelInfo)
{
    StopLog();
    const LogCapture log(CAM_LOG_LEVEL_WARN);
    EXPECT_EQ(Misc_SetLastGenICamError(1), 0u);
    EXPECT_EQ(const_cast<LogCapture &>(log).Take(), Lines{}) << "level 1 is below the log's";
}

TEST_F(GenICamErrorTest, FetchAndCopyFromManyThreadsNeverMix)
{
    StopLog();
    static const char *const texts[] = {"one", "two"};
    stub.on.Misc_GetLastGenICamError = [i = 0](CAM_GENICAM_ERROR *error) mutable -> CAM_API_STATUS {
        // The library's lock is the only one here: a fetch that did not hold it would be a race on i.
        const auto which = static_cast<std::size_t>(i++ % 2);
        *error = {texts[which], {which, which}};
        return 0;
    };
    Misc_SetLastGenICamError(1);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            for (int i = 0; i < 500; ++i) {
                Misc_SetLastGenICamError(1);
                CAM_GENICAM_ERROR error{};
                Misc_GetLastGenICamError(&error);
                EXPECT_EQ(error.ullReserved[0], error.ullReserved[1]);
                EXPECT_STREQ(error.pszMessage, texts[error.ullReserved[0]]);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
}

} // namespace Orvi::Testing
