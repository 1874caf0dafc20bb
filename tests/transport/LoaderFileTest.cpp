// What the loader finds: nothing, no library, a library; and what it writes into the log.

#include "tests/transport/TransportTest.h"

#include <dlfcn.h>

namespace Orvi::Testing {

class LoaderFileTest : public TransportTest {
  protected:
    /// dlerror()'s text for the test's file.
    std::string ReasonOf(const std::filesystem::path &path)
    {
        EXPECT_EQ(Real::dlopen(path.c_str(), RTLD_LAZY), nullptr);
        return dlerror();
    }

    void CopyTransport()
    {
        std::filesystem::create_directories(Library().parent_path());
        std::filesystem::copy_file(ORVI_STUB_SDK "/lib/libOrviU3vCamApi_64.so", Library());
    }
};

TEST_F(LoaderFileTest, NoFile)
{
    LogCapture log;
    EXPECT_EQ(OrviU3vCamApiDLL_Load(), 0u);
    EXPECT_EQ(log.Take(), Lines{"  OrviU3vCamApi.dll not exist."});
    ExpectUnloaded();
}

TEST_F(LoaderFileTest, TextsRunIntoEachOtherAndIntoTheNextLine)
{
    LogCapture log;
    OrviU3vCamApiDLL_Load();
    OrviU3vCamApiDLL_Load();
    Log_Write(1, "next");
    const Lines lines = log.Take();
    ASSERT_EQ(lines.size(), 1u);
    constexpr std::string_view twice = "  OrviU3vCamApi.dll not exist.  OrviU3vCamApi.dll not exist.";
    EXPECT_THAT(lines[0], ::testing::StartsWith(std::string(twice)));
    EXPECT_EQ(WithoutHead(lines[0].substr(twice.size())), "INFO ,next");
}

TEST_F(LoaderFileTest, TextsAreOfTheLowestLevel)
{
    LogCapture log(CAM_LOG_LEVEL_INFO);
    OrviU3vCamApiDLL_Load();
    WriteFile(Library(), "no library");
    OrviU3vCamApiDLL_Load();
    EXPECT_EQ(log.Take(), Lines{});
}

TEST_F(LoaderFileTest, FilesThatAreNoLibrary)
{
    const std::string contents[] = {"", "no library", std::string("\x7F") + "ELF", std::string(5000, '\0')};
    for (const std::string &content : contents) {
        WriteFile(Library(), content);
        LogCapture log;
        EXPECT_EQ(OrviU3vCamApiDLL_Load(), 0u);
        EXPECT_EQ(log.Take(), Lines{"  OrviU3vCamApi.dll load error. " + ReasonOf(Library())});
        ExpectUnloaded();
    }
}

TEST_F(LoaderFileTest, FolderThatIsNamedLikeTheLibrary)
{
    std::filesystem::create_directories(Library());
    LogCapture log;
    EXPECT_EQ(OrviU3vCamApiDLL_Load(), 0u);
    EXPECT_EQ(log.Take(), Lines{"  OrviU3vCamApi.dll load error. " + ReasonOf(Library())});
    ExpectUnloaded();
}

TEST_F(LoaderFileTest, NothingIsLoadedWithTheLogDownEither)
{
    EXPECT_EQ(OrviU3vCamApiDLL_Load(), 0u);
    ExpectUnloaded();
    WriteFile(Library(), "no library");
    EXPECT_EQ(OrviU3vCamApiDLL_Load(), 0u);
    ExpectUnloaded();
}

TEST_F(LoaderFileTest, CompleteLibraryIsLoadedSilently)
{
    CopyTransport();
    LogCapture log;
    EXPECT_EQ(OrviU3vCamApiDLL_Load(), 0u);
    ExpectLoaded();
    EXPECT_EQ(log.Take(), Lines{});
    EXPECT_EQ(_Uc_Sys_Initialize(), 0u);
    EXPECT_EQ(stub.TakeCalls(), Lines{"Sys_Initialize()"});
}

TEST_F(LoaderFileTest, FreeingUnloadsAndMayBeRepeated)
{
    const ScopedVariable sdk("ORVICAMSDK", ORVI_STUB_SDK);
    OrviU3vCamApiDLL_Free();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(OrviU3vCamApiDLL_Load(), 0u);
        ExpectLoaded();
        OrviU3vCamApiDLL_Free();
        ExpectUnloaded();
        OrviU3vCamApiDLL_Free();
        ExpectUnloaded();
    }
}

} // namespace Orvi::Testing
