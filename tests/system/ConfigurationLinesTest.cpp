// How the configuration file is cut into lines, and what several lines do.

#include "tests/system/ConfigurationOutcome.h"

#include <algorithm>
#include <iterator>
#include <random>

namespace Orvi::Testing {

class ConfigurationLinesTest : public ConfigurationOutcome {
  protected:
    /// A line that names a folder, filled up to this many characters.
    std::string LineOf(std::size_t size) const
    {
        std::string line = WithFolder("OrviCamApi,FILE,INFO,PATH=@/");
        return line + std::string(size - line.size(), 'x');
    }
    /// The folder that the first so many characters of such a line name.
    std::string FolderOf(std::size_t size) const { return LineOf(size).substr(LineOf(size).find('=') + 1); }
};

using enum Started;

TEST_F(ConfigurationLinesTest, LongLinesAreReadInPiecesOf255)
{
    for (const char *end : {"", "\n", "\r\n"}) {
        for (const std::size_t size : {100u, 253u, 254u, 255u, 256u, 257u, 300u, 600u}) {
            SCOPED_TRACE(std::to_string(size) + " characters");
            WriteFile(ConfigurationFile(), LineOf(size) + end);
            const std::string folder = FolderOf(std::min<std::size_t>(size, 255));
            ExpectWritten({"", File, 1, folder.c_str()});
        }
    }
}

TEST_F(ConfigurationLinesTest, EachPieceIsALineOfItsOwn)
{
    const auto configureBehind = [this](std::string padding) {
        padding += "OrviCamApi,FILE,WARN,PATH=@/log\n";
        Configure(padding);
    };
    for (const std::size_t pieces : {1u, 2u}) {
        configureBehind(std::string(255 * pieces, 'x'));
        ExpectWritten({"", File, 2, "@/log"});
    }
    configureBehind(std::string(254, 'x'));
    ExpectWritten({"", Nothing});
    // A comment covers its own piece only.
    configureBehind("//" + std::string(253, 'x'));
    ExpectWritten({"", File, 2, "@/log"});
}

TEST_F(ConfigurationLinesTest, ZeroByteEndsItsLine)
{
    using namespace std::string_literals;
    Configure("OrviCamApi,FILE,INFO\0,PATH=@/log\n"s);
    ExpectWritten({"", Nothing});
    Configure("\0OrviCamApi,FILE,INFO,PATH=@/log\nOrviCamApi,FILE,WARN,PATH=@/log\0xyz\n"s);
    ExpectWritten({"", File, 2, "@/log"});
}

TEST_F(ConfigurationLinesTest, FirstStartCounts)
{
    Expect({"OrviCamApi,FILE,WARN,PATH=@/a\nOrviCamApi,FILE,INFO,PATH=@/b\n", File, 2, "@/a"});
    Expect({"OrviCamApi,FILE,WARN\nOrviCamApi,FILE,INFO,PATH=@/b\n", File, 1, "@/b"});
}

TEST_F(ConfigurationLinesTest, LaterLinesDecideWhatBecomesOfTheRing)
{
    // clang-format off
    ExpectAll({
        // A FILE line behind a MEMORY line: the ring is never written out.
        {"OrviCamApi,MEMORY,64,WARN,PATH=@/a\nOrviCamApi,FILE,INFO,PATH=@/b\n",      Ring, 2},
        {"OrviCamApi,MEMORY,64,WARN,PATH=@/a\nOrviCamApi,FILE\n",                    Ring, 2},
        {"OrviCamApi,MEMORY,64,WARN,PATH=@/a\nOrviCamApi,FILE\nOrviCamApi,MEMORY\n", Ring, 2, "@/a"},
        // A later line's path, complete or not, names the file.
        {"OrviCamApi,MEMORY,64,WARN,PATH=@/a\nOrviCamApi,MEMORY,64,INFO,PATH=@/b\n", Ring, 2, "@/b"},
        {"OrviCamApi,MEMORY,64,WARN,PATH=@/a\nOrviCamApi,MEMORY,PATH=@/b\n",         Ring, 2, "@/b"},
        {"OrviCamApi,MEMORY,64,WARN,PATH=@/a\nOrviCamApi,MEMORY,PATH=\n",            Ring, 2},
        {"OrviCamApi,MEMORY,64,WARN,PATH=@/a\nOrviCamApi,MEMORY,16,INFO,PATH=@/b\n", Ring, 2, "@/b"},
        {"OrviCamApi,MEMORY,64,WARN,PATH=@/a\nOrviCamApi,DISK,PATH=@/b\n",           Ring, 2, "@/a"},
        // A MEMORY line that is rejected leaves its mark on a later session's log.
        {"OrviCamApi,MEMORY,16,INFO,PATH=@/a\nOrviCamApi,FILE,INFO,PATH=@/b\n",      File, 1, "@/b"},
        {"OrviCamApi,FILE,INFO,PATH=@/b\nOrviCamApi,MEMORY,16,INFO,PATH=@/a\n",      File, 1, "@/b"},
    });
    // clang-format on
}

TEST_F(ConfigurationLinesTest, AnythingAtAllIsSurvived)
{
    const std::string words[] = {"OrviCamApi",
                                 "FILE",
                                 "MEMORY",
                                 "PATH=@/",
                                 "INFO",
                                 "DEBUG",
                                 "${",
                                 "}",
                                 "\"",
                                 "//",
                                 ",",
                                 "\n",
                                 "\r",
                                 "64",
                                 " ",
                                 "GENICAM",
                                 std::string(1, '\0'),
                                 "ORVI_T",
                                 "\xFF",
                                 "x"};
    const ScopedVariable variable("ORVI_T", Logs().string() + "/v");
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        std::string text;
        for (int i = 0; i < 80; ++i)
            text += words[random() % std::size(words)];
        Configure(text);
        EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
        EXPECT_EQ(Sys_Terminate(), 0u);
        EXPECT_FALSE(g_bUniLogInit) << text;
    }
    for (int round = 0; round < 20; ++round) {
        std::string bytes;
        for (int i = 0; i < 4000; ++i)
            bytes += static_cast<char>(random());
        WriteFile(ConfigurationFile(), bytes);
        EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
        EXPECT_EQ(Sys_Terminate(), 0u);
    }
}

} // namespace Orvi::Testing
