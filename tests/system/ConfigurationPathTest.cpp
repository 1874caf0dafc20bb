// Variables in the configured path. The counts suit a "${" directly behind an opening quote and are kept for others.

#include "tests/system/ConfigurationOutcome.h"

namespace Orvi::Testing {

class ConfigurationPathTest : public ConfigurationOutcome {
  protected:
    ScopedVariable value_{"ORVI_T", Logs().string() + "/v"};
    ScopedVariable doubled_{"ORVI_D", "/" + Logs().string() + "//x///y/"};
    ScopedVariable empty_{"ORVI_E", ""};
    ScopedVariable unset_{"ORVI_N", std::nullopt};
    ScopedVariable odd_{"ORVI_T}", Logs().string() + "/o"};
};

using enum Started;

TEST_F(ConfigurationPathTest, Variables)
{
    for (const char *folder : {"v", "x", "x/y"})
        EXPECT_FALSE(std::filesystem::exists(Logs() / folder));
    // clang-format off
    ExpectAll({
        // Behind the quote: as intended.
        {"OrviCamApi,FILE,INFO,PATH=\"${ORVI_T}\"\n",     File, 1, "@/v"},
        {"OrviCamApi,FILE,INFO,PATH=\"${ORVI_T}/\"\r\n",  File, 1, "@/v"},
        {"OrviCamApi,FILE,INFO,PATH=\"${ORVI_T}x\"",      File, 1, "@/vx"},
        {"OrviCamApi,FILE,INFO,PATH=\"${ORVI_T}\"x",      File, 1, "@/vx"},
        {"OrviCamApi,FILE,INFO,PATH=\"${ORVI_T}",         File, 1, "@/v"},
        {"OrviCamApi,MEMORY,64,INFO,PATH=\"${ORVI_T}\"",  Ring, 1, "@/v"},
        {"OrviCamApi,FILE,INFO,PATH=\"${ORVI_E}@/v\"",    File, 1, "@/v"},
        {"OrviCamApi,FILE,INFO,PATH=x${ORVI_T}y",         File, 1, "@/vxy"}, // any one character will do
        // Unquoted: the name ends one character early, and the brace stays.
        {"OrviCamApi,FILE,INFO,PATH=${ORVI_TX}x",         File, 1, "@/v}x"},
        {"OrviCamApi,FILE,INFO,PATH=${ORVI_T}/x",         Nothing},
        // Further behind: the name swallows what follows, and more is deleted.
        {"OrviCamApi,FILE,INFO,PATH=\"x${ORVI_T}yz\"",    File, 1, "@/oxz"},
        {"OrviCamApi,FILE,INFO,PATH=@/${ORVI_T}\n",       File, 1, "@/${ORVI_T}"},
        {"OrviCamApi,FILE,INFO,PATH=\"@/${ORVI_T}\"",     File, 1, "@/${ORVI_T}"},
        // Not a variable.
        {"OrviCamApi,FILE,INFO,PATH=\"@/${ORVI_T\"",      File, 1, "@/${ORVI_T"},
        {"OrviCamApi,FILE,INFO,PATH=\"@/$ORVI_T\"",       File, 1, "@/$ORVI_T"},
        {"OrviCamApi,FILE,INFO,PATH=\"@/{ORVI_T}\"",      File, 1, "@/{ORVI_T}"},
        {"OrviCamApi,FILE,INFO,PATH=\"@/}${\"",           File, 1, "@/}${"},
        {"OrviCamApi,FILE,INFO,PATH=\"${ORVI_N}/log\"",   Nothing}, // an unset one stays as it is
        {"OrviCamApi,FILE,INFO,PATH=\"${}@/log\"",        Nothing},
        // Once only.
        {"OrviCamApi,FILE,INFO,PATH=\"${ORVI_T}${ORVI_T}\"", File, 1, "@/v${ORVI_T}"},
    });
    // clang-format on
}

TEST_F(ConfigurationPathTest, SlashesOfAValueAreJoined)
{
    std::filesystem::create_directory(Logs() / "x");
    Expect({"OrviCamApi,FILE,INFO,PATH=\"${ORVI_D}\"\n", File, 1, "@/x/y"});
    std::filesystem::create_directories(Logs() / "x/y");
    Expect({"OrviCamApi,FILE,INFO,PATH=\"${ORVI_D}/z\"\n", File, 1, "@/x/y/z"});
}

} // namespace Orvi::Testing
