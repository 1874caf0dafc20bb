// What a line of the configuration file means. Words are found anywhere and removed by counting characters.

#include "tests/system/ConfigurationOutcome.h"

namespace Orvi::Testing {

using ConfigurationTest = ConfigurationOutcome;

using enum Started;

// clang-format off

TEST_F(ConfigurationTest, LogFiles)
{
    ExpectAll({
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
    });
}

TEST_F(ConfigurationTest, LogsInMemory)
{
    ExpectAll({
        {"OrviCamApi,MEMORY,1024,INFO,PATH=@/\n",     Ring, 1, "@"},
        {"OrviCamApi,MEMORY,1024,DEBUG,PATH=\"@/log\"", Ring, 0, "@/log"},
        {"OrviCamApi,MEMORY,32,FATAL,PATH=@",         Ring, 4, "@"},
        {"OrviCamApi,MEMORY,1 024 ,INFO,PATH=@",      Ring, 1, "@"},
        {"OrviCamApi,MEMORY,1,0,2,4,INFO,PATH=@",     Ring, 1, "@"},
        {"OrviCamApi,MEMORY,1024KiB,INFO,PATH=@",     Ring, 1, "@"},
        {"OrviCamApi,MEMORY,+64,INFO,PATH=@",         Ring, 1, "@"},
        {"OrviCamApi,MEMORY,1024,PATH=@/INFO",        Ring, 1, "@/INFO"},
    });
    ExpectNothing({
        "OrviCamApi,MEMORY,31,INFO,PATH=@",
        "OrviCamApi,MEMORY,16,INFO,PATH=@",
        "OrviCamApi,MEMORY,0,INFO,PATH=@",
        "OrviCamApi,MEMORY,-64,INFO,PATH=@",
        "OrviCamApi,MEMORY,0x400,INFO,PATH=@",
        "OrviCamApi,MEMORY,lots,INFO,PATH=@",
        "OrviCamApi,MEMORY,INFO,PATH=@",
        "OrviCamApi,MEMORY,INFO,1024,PATH=@", // the size must come before the level
        "OrviCamApi,MEMORY,4294967296,INFO,PATH=@", // no room in the size's type
    });
}

TEST_F(ConfigurationTest, IncompleteAndForeignLines)
{
    ExpectNothing({
        "",
        "\n\n\n",
        "OrviCamApi",
        "OrviCamApi,",
        "OrviCamApi,FILE",
        "OrviCamApi,FILE,INFO",
        "OrviCamApi,FILE,INFO,PATH=",
        "OrviCamApi,FILE,INFO,PATH=\"\"\r\n",
        "OrviCamApi,FILE,INFO,path=@",
        "OrviCamApi,FILE,INFO,PATH @",
        "OrviCamApi,FILE,PATH=@/log",
        "OrviCamApi,FILE,info,PATH=@/log",
        "OrviCamApi,file,INFO,PATH=@/log",
        "OrviCamApi,DISK,INFO,PATH=@/log",
        "OrviCamApi,FILEINFOPATH=@/log", // the separator that is counted was the level's
        "orvicamapi,FILE,INFO,PATH=@/log",
        "FILE,INFO,PATH=@/log",
        "OrviCamApi,FILE,INFO,PATH=@/no/such/log", // the folder cannot be made
        "OrviCamApi,FILE,INFO,PATH=@/GENICAM_CACHE", // taken for a line about the cache
    });
}

TEST_F(ConfigurationTest, CharactersAreCountedFromTheStartOfTheLine)
{
    ExpectAll({
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
    });
}

TEST_F(ConfigurationTest, LevelsAreLookedForInTheWholeLine)
{
    ExpectAll({
        {"OrviCamApi,FILE,PATH=@/WARNings",    File, 2, "@/WARNings"},
        {"OrviCamApi,FILE,ERROR,PATH=@/DEBUG", File, 0, "@/DEBUG"},
        {"OrviCamApi,FILE,FATAL,ERROR,PATH=@", File, 3, "@"},
        {"OrviCamApi,FILE,WARN,INFO,PATH=@",   File, 1, "@"},
        {"OrviCamApi,FILE,PATH=@/log,INFO",    File, 1, "@/log,INFO"},
        {"OrviCamApi,FILE,INFORMATION,PATH=@", File, 1, "@"},
    });
}

TEST_F(ConfigurationTest, CommentsCutTheLineFirst)
{
    ExpectAll({
        {"//OrviCamApi,FILE,INFO,PATH=@/log",           Nothing},
        {"OrviCamApi,FILE,INFO,PATH=//@/log",           Nothing},
        {"OrviCamApi,FILE,INFO//,PATH=@/log",           Nothing},
        {"OrviCamApi,FILE,INFO,PATH=@/log//deeper",     File, 1, "@/log"},
        {"OrviCamApi,FILE,INFO,PATH=\"@/log\"// why",   File, 1, "@/log"},
        {"OrviCamApi,FILE,INFO,PATH=@/log // why",      File, 1, "@/log "}, // a blank is part of the path
        {"OrviCamApi,FILE,INFO,PATH=@/log# DEBUG",      File, 0, "@/log# DEBUG"},
        {"OrviCamApi,FILE,INFO,PATH=@/log//DEBUG",      File, 1, "@/log"},
        {"// OrviCamApi,FILE,INFO,PATH=@/a\nOrviCamApi,FILE,WARN,PATH=@/b\n", File, 2, "@/b"},
    });
}

// clang-format on

} // namespace Orvi::Testing
