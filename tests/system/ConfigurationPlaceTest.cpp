// Where the configuration file is looked for: beside the program, then below the SDK.

#include "tests/system/SystemTest.h"

#include <cstdio>

namespace Orvi::Testing {

class ConfigurationPlaceTest : public SystemTest {
  protected:
    ConfigurationPlaceTest() { std::filesystem::copy_file(ORVI_CONFIG_PROBE, bin_.Path() / "probe"); }

    static void Write(const std::filesystem::path &file, const char *level)
    {
        WriteFile(file, std::string("OrviCamApi,MEMORY,4096,") + level +
                            ",PATH=\n"
                            "OrviCamApi,MEMORY,4096," +
                            level + ",PATH=x\nOrviCamApi,FILE\n");
    }
    std::filesystem::path Beside() const { return bin_.Path() / "OrviCamSDK.cfg"; }

    /// What a program started from its own folder says.
    std::string Run(const std::string &program = "probe") const
    {
        const std::string command = (bin_.Path() / program).string();
        const std::unique_ptr<std::FILE, int (*)(std::FILE *)> pipe(popen(command.c_str(), "r"), &pclose);
        char line[64] = "";
        if (pipe == nullptr || std::fgets(line, sizeof line, pipe.get()) == nullptr)
            ADD_FAILURE() << "cannot run " << command;
        return line;
    }

  private:
    TempFolder bin_;
};

TEST_F(ConfigurationPlaceTest, NoFileNoLog) { EXPECT_EQ(Run(), "0 down 0\n"); }

TEST_F(ConfigurationPlaceTest, BelowTheSdk)
{
    Write(ConfigurationFile(), "WARN");
    EXPECT_EQ(Run(), "0 up 2\n");
    const ScopedVariable sdk("ORVICAMSDK", Sdk().string() + "/");
    EXPECT_EQ(Run(), "0 up 2\n") << "a slash too many does no harm";
}

TEST_F(ConfigurationPlaceTest, BesideTheProgramComesFirst)
{
    Write(ConfigurationFile(), "WARN");
    Write(Beside(), "ERROR");
    EXPECT_EQ(Run(), "0 up 3\n");
    WriteFile(Beside(), "");
    EXPECT_EQ(Run(), "0 down 0\n") << "even when it says nothing";
    std::filesystem::remove(Beside());
    std::filesystem::create_directory(Beside());
    EXPECT_EQ(Run(), "0 down 0\n") << "even when it cannot be read";
}

TEST_F(ConfigurationPlaceTest, BesideTheProgramWithoutAnSdk)
{
    const ScopedVariable sdk("ORVICAMSDK", std::nullopt);
    Write(Beside(), "FATAL");
    EXPECT_THAT(Run(), ::testing::EndsWith(" up 4\n"));
}

TEST_F(ConfigurationPlaceTest, FolderNamedAsTheFileIsNoConfiguration)
{
    std::filesystem::create_directory(ConfigurationFile());
    EXPECT_EQ(Run(), "0 down 0\n");
}

} // namespace Orvi::Testing
