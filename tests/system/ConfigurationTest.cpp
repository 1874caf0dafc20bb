// What a line of the configuration file means. Words are found anywhere and removed by counting characters.

#include "tests/system/ConfigurationOutcome.h"

namespace Orvi::Testing {

using ConfigurationTest = ConfigurationOutcome;

using enum Started;

TEST_F(ConfigurationTest, LogFiles)
{
    // clang-format off
    constexpr ConfigurationRow rows[] = {
        {"OrviCamApi,FILE,DEBUG,PATH=\"@/log\"",   File, 0, "@/log"},
        {"OrviCamApi,FILE,INFO,PATH=@/log",        File, 1, "@/log"},
        {"OrviCamApi,FILE,WARN,PATH=@/log/",       File, 2, "@/log"},
        {"OrviCamApi,FILE,ERROR,PATH=@",           File, 3, "@"},
        {"OrviCamApi,FILE,FATAL,PATH=\"@/\"\n",    File, 4, "@"},
        {"OrviCamApi,FILE,INFO,PATH=@/log\r\n",    File, 1, "@/log"},
        {"OrviCamApi;FILE;INFO;PATH=@/log\n",      File, 1, "@/log"},
        {"OrviCamApi FILE INFO PATH=@/log\n",      File, 1, "@/log"},
        {"OrviCamApi=FILE|INFO whatever PATH=@/l", File, 1, "@/l"},
        {"OrviCamApi,FILE,INFOPATH=@/l",           File, 1, "@/l"},
        {"OrviCamApi,FILE,INFO,PATH=\"@/l\"o\"g\"", File, 1, "@/log"},
        {"OrviCamApi,FILE,INFO,PATH=@/a b, c",     File, 1, "@/a b, c"},
    };
    // clang-format on
    for (const ConfigurationRow &row : rows)
        Expect(row);
}

TEST_F(ConfigurationTest, LogsInMemory)
{
    // clang-format off
    constexpr ConfigurationRow rows[] = {
        {"OrviCamApi,MEMORY,1024,INFO,PATH=@/\n",     Ring, 1, "@"},
        {"OrviCamApi,MEMORY,1024,DEBUG,PATH=\"@/log\"", Ring, 0, "@/log"},
        {"OrviCamApi,MEMORY,32,FATAL,PATH=@",         Ring, 4, "@"},
        {"OrviCamApi,MEMORY,1 024 ,INFO,PATH=@",      Ring, 1, "@"},
        {"OrviCamApi,MEMORY,1,0,2,4,INFO,PATH=@",     Ring, 1, "@"},
        {"OrviCamApi,MEMORY,1024KiB,INFO,PATH=@",     Ring, 1, "@"},
        {"OrviCamApi,MEMORY,+64,INFO,PATH=@",         Ring, 1, "@"},
        {"OrviCamApi,MEMORY,1024,PATH=@/INFO",        Ring, 1, "@/INFO"},
        {"OrviCamApi,MEMORY,31,INFO,PATH=@",          Nothing},
        {"OrviCamApi,MEMORY,16,INFO,PATH=@",          Nothing},
        {"OrviCamApi,MEMORY,0,INFO,PATH=@",           Nothing},
        {"OrviCamApi,MEMORY,-64,INFO,PATH=@",         Nothing},
        {"OrviCamApi,MEMORY,0x400,INFO,PATH=@",       Nothing},
        {"OrviCamApi,MEMORY,lots,INFO,PATH=@",        Nothing},
        {"OrviCamApi,MEMORY,INFO,PATH=@",             Nothing},
        {"OrviCamApi,MEMORY,INFO,1024,PATH=@",        Nothing}, // the size must come before the level
        {"OrviCamApi,MEMORY,4294967296,INFO,PATH=@",  Nothing}, // no room in the size's type
    };
    // clang-format on
    for (const ConfigurationRow &row : rows)
        Expect(row);
}

TEST_F(ConfigurationTest, IncompleteAndForeignLines)
{
    // clang-format off
    constexpr ConfigurationRow rows[] = {
        {"",                                         Nothing},
        {"\n\n\n",                                   Nothing},
        {"OrviCamApi",                               Nothing},
        {"OrviCamApi,",                              Nothing},
        {"OrviCamApi,FILE",                          Nothing},
        {"OrviCamApi,FILE,INFO",                     Nothing},
        {"OrviCamApi,FILE,INFO,PATH=",               Nothing},
        {"OrviCamApi,FILE,INFO,PATH=\"\"\r\n",       Nothing},
        {"OrviCamApi,FILE,INFO,path=@",              Nothing},
        {"OrviCamApi,FILE,INFO,PATH @",              Nothing},
        {"OrviCamApi,FILE,PATH=@/log",               Nothing},
        {"OrviCamApi,FILE,info,PATH=@/log",          Nothing},
        {"OrviCamApi,file,INFO,PATH=@/log",          Nothing},
        {"OrviCamApi,DISK,INFO,PATH=@/log",          Nothing},
        {"OrviCamApi,FILEINFOPATH=@/log",            Nothing}, // the separator that is counted was the level's
        {"orvicamapi,FILE,INFO,PATH=@/log",          Nothing},
        {"FILE,INFO,PATH=@/log",                     Nothing},
        {"OrviCamApi,FILE,INFO,PATH=@/no/such/log",  Nothing}, // the folder cannot be made
        {"OrviCamApi,FILE,INFO,PATH=@/GENICAM_CACHE", Nothing}, // taken for a line about the cache
    };
    // clang-format on
    for (const ConfigurationRow &row : rows)
        Expect(row);
}

TEST_F(ConfigurationTest, CharactersAreCountedFromTheStartOfTheLine)
{
    // clang-format off
    constexpr ConfigurationRow rows[] = {
        // Eleven characters go, wherever the keyword stands, then five or seven, wherever FILE or MEMORY stands.
        {"xxOrviCamApi,FILE,INFO,PATH=@/log",        File, 1, "@/log"},
        {"OrviCamApi,xxxx,INFO,PATH=@/FILE",         File, 1, "@/FILE"},
        {"OrviCamApi,INFO,PATH=@/FILE",              Nothing},
        {" OrviCamApi,MEMORY,64,INFO,PATH=@",        Ring, 1, "@"},
        {"OrviCamApi,,MEMORY,64,INFO,PATH=@",        Ring, 1, "@"},
        {"  OrviCamApi,MEMORY,64,INFO,PATH=@",       Nothing}, // "Y64" is no size
        {"OrviCamApi,64,MEMORY,INFO,PATH=@",         Nothing}, // "ORY" neither
        {"OrviCamApi,12345678,MEMORY64,INFO,PATH=@", Nothing},
        {"OrviCamApi,1234567128MEMORY,INFO,PATH=@",  Ring, 1, "@"}, // "128MEMORY" is one
        {"OrviCamApi,FILE,INFO,PATH=@/MEMORY",       Nothing}, // MEMORY is looked for first
        {"FILE,INFO,PATH=@/OrviCamApi",              Nothing}, // the type is gone
        {"FILE,FILE,FILE,FILE,INFO,PATH=@/OrviCamApi", File, 1, "@/OrviCamApi"},
    };
    // clang-format on
    for (const ConfigurationRow &row : rows)
        Expect(row);
}

TEST_F(ConfigurationTest, LevelsAreLookedForInTheWholeLine)
{
    // clang-format off
    constexpr ConfigurationRow rows[] = {
        {"OrviCamApi,FILE,PATH=@/WARNings",    File, 2, "@/WARNings"},
        {"OrviCamApi,FILE,ERROR,PATH=@/DEBUG", File, 0, "@/DEBUG"},
        {"OrviCamApi,FILE,FATAL,ERROR,PATH=@", File, 3, "@"},
        {"OrviCamApi,FILE,WARN,INFO,PATH=@",   File, 1, "@"},
        {"OrviCamApi,FILE,PATH=@/log,INFO",    File, 1, "@/log,INFO"},
        {"OrviCamApi,FILE,INFORMATION,PATH=@", File, 1, "@"},
    };
    // clang-format on
    for (const ConfigurationRow &row : rows)
        Expect(row);
}

TEST_F(ConfigurationTest, CommentsCutTheLineFirst)
{
    // clang-format off
    constexpr ConfigurationRow rows[] = {
        {"//OrviCamApi,FILE,INFO,PATH=@/log",           Nothing},
        {"OrviCamApi,FILE,INFO,PATH=//@/log",           Nothing},
        {"OrviCamApi,FILE,INFO//,PATH=@/log",           Nothing},
        {"OrviCamApi,FILE,INFO,PATH=@/log//deeper",     File, 1, "@/log"},
        {"OrviCamApi,FILE,INFO,PATH=\"@/log\"// why",   File, 1, "@/log"},
        {"OrviCamApi,FILE,INFO,PATH=@/log // why",      File, 1, "@/log "}, // a blank is part of the path
        {"OrviCamApi,FILE,INFO,PATH=@/log# DEBUG",      File, 0, "@/log# DEBUG"},
        {"OrviCamApi,FILE,INFO,PATH=@/log//DEBUG",      File, 1, "@/log"},
        {"// OrviCamApi,FILE,INFO,PATH=@/a\nOrviCamApi,FILE,WARN,PATH=@/b\n", File, 2, "@/b"},
    };
    // clang-format on
    for (const ConfigurationRow &row : rows)
        Expect(row);
}

} // namespace Orvi::Testing
