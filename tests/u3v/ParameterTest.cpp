// Parameter files through the C interface, on a virtual camera.

#include "tests/u3v/ParameterTest.h"

namespace Orvi::Test {
namespace {

TEST_F(ParameterTest, FileNamesTheModelAndHoldsALinePerFeature)
{
    const std::string text = TextOf(original);
    EXPECT_EQ(text.find("OrviParameters 1 Virtual Camera\n# Orvi, version "), 0U) << text;
    EXPECT_NE(text.find("\nWidth="), std::string::npos);
    EXPECT_NE(text.find("\nExposureTime="), std::string::npos);
    EXPECT_NE(text.find("\nBalanceRatio[BalanceRatioSelector="), std::string::npos);
    for (const char *const absent : {"\nSensorWidth", "\nAcquisitionStart", "\nBalanceRatioSelector", "\nTLParams"})
        EXPECT_EQ(text.find(absent), std::string::npos) << absent;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1) << "no temporary file stays";
}

TEST_F(ParameterTest, LoadBringsBackWhatWasSaved)
{
    const std::string before = State();
    SetEnum("TestPattern", "Off");
    SetInt("Width", 320);
    SetInt("OffsetX", 64);
    const std::string changed = State();
    EXPECT_NE(changed, before);
    ASSERT_EQ(Load(original), 0U) << Error();
    EXPECT_EQ(State(), before);
    ASSERT_EQ(LoadWhole(changed), 0U) << Error();
    EXPECT_EQ(State(), changed);
    EXPECT_EQ(Int("Width"), 320);
}

TEST_F(ParameterTest, LinesAreAppliedInTheOrderThatTheCameraTakes)
{
    const int64_t whole = Int("Width");
    ASSERT_EQ(LoadText("OffsetX=64\nWidth=320\n"), 0U) << Error();
    EXPECT_EQ(Int("OffsetX"), 64);
    ASSERT_EQ(LoadText("Width=" + std::to_string(whole) + "\nOffsetX=0\n"), 0U) << Error();
    EXPECT_EQ(Int("Width"), whole);
    EXPECT_EQ(Int("OffsetX"), 0);
}

TEST_F(ParameterTest, SelectorsStayWhereTheyAre)
{
    SetEnum("BalanceRatioSelector", "Blue");
    EXPECT_NE(State().find("\nBalanceRatio[BalanceRatioSelector=Red]="), std::string::npos);
    EXPECT_EQ(Enum("BalanceRatioSelector"), "Blue");
    ASSERT_EQ(LoadText("BalanceRatio[BalanceRatioSelector=Red]=1.5\n"), 0U) << Error();
    EXPECT_EQ(Enum("BalanceRatioSelector"), "Blue");
    SetEnum("BalanceRatioSelector", "Red");
    double ratio = 0;
    EXPECT_EQ(UC_Nd_GetFloatValue(Node("BalanceRatio"), &ratio, false, false), 0U);
    EXPECT_NEAR(ratio, 1.5, 0.01);
}

TEST_F(ParameterTest, BadFilesChangeNothingAndTheLineIsNamed)
{
    struct Row {
        const char *lines, *line, *why;
    };
    // clang-format off
    constexpr Row rows[] = {
        {"Width=320\nOffsetX\n",                        "line 3", "no '='"},
        {"Width=320\n\n# comment\nHeight=\n",           "line 5", "no value"},
        {"Width=320\nNoSuchFeature=1\n",                "line 3", "[NoSuchFeature]"},
        {"Width=320\nHeight=many\n",                    "line 3", "whole number"},
        {"Width=320\nHeight=24x\n",                     "line 3", "whole number"},
        {"Width=320\nExposureTime=nan\n",               "line 3", "a number"},
        {"Width=320\nPixelFormat=Mono99\n",             "line 3", "Mono99"},
        {"Width=320\nSensorWidth=1\n",                  "line 3", "[SensorWidth"},
        {"Width=320\nAcquisitionStart=1\n",             "line 3", "not set from files"},
        {"Width=320\nBalanceRatioSelector=Red\n",       "line 3", "not set from files"},
        {"Width=320\nHeight[BalanceRatioSelector=Red]=1\n", "line 3", "does not select"},
        {"Width=320\nBalanceRatio[BalanceRatioSelector=Pink]=1\n", "line 3", "Pink"},
        {"Width=320\nBalanceRatio[BalanceRatioSelector=Red=1\n", "line 3", "']'"},
        {"Width=320\nHeight=99999999\n",                "line 3", "[Height"},
        {"BinningHorizontal=2\nHeight=99999999\n",      "line 3", "[Height"}, // binning makes the width smaller
        {"Width=320\nTestPattern=Off\nOffsetX=64\nExposureTime=-5\n", "line 5", "[ExposureTime"},
    };
    // clang-format on
    const std::string before = State();
    for (const Row &row : rows) {
        EXPECT_EQ(LoadText(row.lines), CAM_API_STS_GENICAM_ERR) << row.lines;
        EXPECT_NE(Error().find(edited + ", " + row.line), std::string::npos) << Error();
        EXPECT_NE(Error().find(row.why), std::string::npos) << Error();
        EXPECT_EQ(State(), before) << row.lines;
    }
}

TEST_F(ParameterTest, ValueThatAModeLocksIsPutBackToo)
{
    const auto gain = [&] {
        double value = 0;
        EXPECT_EQ(UC_Nd_GetFloatValue(Node("Gain"), &value, false, false), 0U) << Error();
        return value;
    };
    const double before = gain();
    SetEnum("GainAuto", "Continuous");
    EXPECT_EQ(LoadText("Gain=5\nGainAuto=Off\nHeight=99999999\n"), CAM_API_STS_GENICAM_ERR);
    EXPECT_EQ(Enum("GainAuto"), "Continuous");
    EXPECT_EQ(gain(), before);
    ASSERT_EQ(LoadText("Gain=5\nGainAuto=Off\n"), 0U) << Error();
    EXPECT_NEAR(gain(), 5, 0.2);
}

TEST_F(ParameterTest, ValueThatIsSoAlreadyMayBeLocked)
{
    // Line0 is an input, which shows nothing.
    EXPECT_EQ(LoadText("LineSource[LineSelector=Line0]=VD\n"), CAM_API_STS_GENICAM_ERR);
    EXPECT_EQ(LoadText("LineSource[LineSelector=Line0]=Off\n"), 0U) << Error();
}

TEST_F(ParameterTest, ValueThatALaterLineMovesIsSetAgain)
{
    ASSERT_EQ(LoadText("Width=320\nImageFormatSelector=Format1\n"), 0U) << Error(); // which has a width of its own
    EXPECT_EQ(Enum("ImageFormatSelector"), "Format1");
    EXPECT_EQ(Int("Width"), 320);
    SetInt("Width", 960);
    SetEnum("ImageFormatSelector", "Format0");
}

TEST_F(ParameterTest, WhatIsNoSettingOfTheFileIsPutBackToo)
{
    ASSERT_EQ(LoadText("DeviceUserID=\"left\"\n"), 0U) << Error();
    EXPECT_EQ(LoadText("DeviceUserID=\"right\"\nHeight=99999999\n"), CAM_API_STS_GENICAM_ERR);
    EXPECT_EQ(Name(), "left");
    ASSERT_EQ(LoadText("DeviceUserID=\"\"\n"), 0U) << Error();
}

TEST_F(ParameterTest, TextsAreQuoted)
{
    ASSERT_EQ(LoadText(R"(DeviceUserID="left \"eye\" \\ #1=[2]")"), 0U) << Error();
    EXPECT_EQ(Name(), R"(left "eye" \ #1=[2])");
    for (const char *const bad :
         {"DeviceUserID=left", "DeviceUserID=\"", "DeviceUserID=\"a\\\"", "DeviceUserID=\"a\"b\""})
        EXPECT_EQ(LoadText(bad), CAM_API_STS_GENICAM_ERR) << bad;
    ASSERT_EQ(LoadText("DeviceUserID=\"\""), 0U) << Error();
    EXPECT_EQ(Name(), "");
}

TEST_F(ParameterTest, OtherModelsAndOtherFilesAreRefusedAtTheirFirstLine)
{
    const std::string before = State();
    for (const char *const text : {"OrviParameters 1 Other Camera\nWidth=320\n", "Width=320\n", "",
                                   "OrviParameters 2 Virtual Camera\nWidth=320\n"}) {
        EXPECT_EQ(LoadWhole(text), CAM_API_STS_GENICAM_ERR);
        EXPECT_NE(Error().find(edited + ", line 1: "), std::string::npos) << Error();
    }
    EXPECT_EQ(State(), before);
}

TEST_F(ParameterTest, FilesThatCannotBeOpenedAreNamedWithTheReason)
{
    EXPECT_EQ(Load(folder + "/absent"), CAM_API_STS_GENICAM_ERR);
    EXPECT_NE(Error().find(folder + "/absent: No such file"), std::string::npos) << Error();
    EXPECT_EQ(Save(folder + "/absent/file"), CAM_API_STS_GENICAM_ERR);
    EXPECT_NE(Error().find(folder + "/absent/file: No such file"), std::string::npos) << Error();
    EXPECT_EQ(Save(folder), CAM_API_STS_GENICAM_ERR) << "a folder is no file";
    EXPECT_NE(Error().find(folder), std::string::npos) << Error();
}

TEST_F(ParameterTest, CommentsBlankLinesAndForeignLineEndsAreTaken)
{
    ASSERT_EQ(LoadWhole("OrviParameters 1 Virtual Camera\r\n\r\n# comment\r\n  Width = 320 \r\n"), 0U) << Error();
    EXPECT_EQ(Int("Width"), 320);
}

TEST_F(ParameterTest, DefectTableIsLoadedOnDemandOnly)
{
    const int64_t before = Int("DPCNumber");
    const std::string lines =
        "Width=320\nDPCEnable=true\nDPCEntryX[DPCIndex=3]=7\nDPCNumber=" + std::to_string(before + 1) + "\n";
    const std::string state = State();
    ASSERT_EQ(LoadText(lines, false), 0U) << Error();
    EXPECT_EQ(Int("Width"), 320);
    SetInt("Width", 1920);
    EXPECT_EQ(State(), state);
    ASSERT_EQ(LoadText(lines, true), 0U) << Error();
    EXPECT_EQ(Int("DPCNumber"), before + 1);
    EXPECT_NE(State().find("\nDPCEnable=true\n"), std::string::npos);
    EXPECT_NE(State().find("\nDPCEntryX[DPCIndex=3]=7\n"), std::string::npos);
}

TEST_F(ParameterTest, CameraWithoutDescriptionHasNoParameters)
{
    CAM_HANDLE other = 0;
    ASSERT_EQ(UC_Cam_Open(2, nullptr, &other, false, nullptr), 0U);
    EXPECT_EQ(UC_Cam_SaveParameter(other, now.c_str()), CAM_API_STS_XML_LOAD_ERR);
    EXPECT_EQ(UC_Cam_LoadParameter(other, original.c_str(), true), CAM_API_STS_XML_LOAD_ERR);
    EXPECT_EQ(UC_Cam_SaveParameter(camera, nullptr), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(UC_Cam_SaveParameter(0, now.c_str()), CAM_API_STS_INVALID_CAMERA_HANDLE);
    EXPECT_FALSE(std::filesystem::exists(now));
}

} // namespace
} // namespace Orvi::Test
