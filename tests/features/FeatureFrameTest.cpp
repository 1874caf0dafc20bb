// What every feature function promises alike, from one row per function.

#include "tests/features/FeatureTest.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <tuple>
#include <type_traits>

namespace Orvi::Testing {

struct FeatureRow {
    const char *name;
    std::function<CAM_API_STATUS(CAM_HANDLE)> call;               ///< with good arguments: 1, 1.0, true, "name"
    std::vector<std::function<CAM_API_STATUS(CAM_HANDLE)>> nulls; ///< one output each is null
    std::function<bool()> outputsUntouched;
    std::string enter;            ///< what follows the handle in the ENTER line
    std::string logName;          ///< in all lines
    std::string zeroHandleName;   ///< in the EXIT line for handle 0
    CAM_API_STATUS gevStatus = 7; ///< the node functions refuse other kinds of camera
};

template <class T>
T Sample()
{
    if constexpr (std::is_same_v<T, const char *>)
        return "name";
    else
        return static_cast<T>(1);
}

/// The outputs of a call, filled with a pattern.
template <class T>
struct Argument {
    T value = Sample<T>();
    T Get() { return value; }
    bool Untouched() const { return true; }
};
template <class T>
requires(!std::is_const_v<T>) struct Argument<T *> {
    T value[64] = {static_cast<T>(1)};
    T *Get() { return value; }
    bool Untouched() const { return value[0] == static_cast<T>(1); }
};

template <class... Parameters>
FeatureRow Row(const char *name, CAM_API_STATUS (*function)(CAM_HANDLE, Parameters...), std::string enter)
{
    auto arguments = std::make_shared<std::tuple<Argument<Parameters>...>>();
    FeatureRow row = {};
    row.name = name;
    row.logName = row.zeroHandleName = name;
    row.enter = std::move(enter);
    row.call = [=](CAM_HANDLE hCam) {
        return std::apply([&](auto &...each) { return function(hCam, each.Get()...); }, *arguments);
    };
    row.outputsUntouched = [=] {
        return std::apply([](const auto &...each) { return (each.Untouched() && ...); }, *arguments);
    };
    [&]<std::size_t... index>(std::index_sequence<index...>)
    {
        [[maybe_unused]] const auto addNull = [&]<std::size_t null>(std::integral_constant<std::size_t, null>) {
            using Parameter = std::tuple_element_t<null, std::tuple<Parameters...>>;
            if constexpr (std::is_pointer_v<Parameter> && !std::is_same_v<Parameter, const char *>)
                row.nulls.push_back([=](CAM_HANDLE hCam) {
                    return function(hCam, (index == null ? Parameters{} : std::get<index>(*arguments).Get())...);
                });
        };
        (addNull(std::integral_constant<std::size_t, index>{}), ...);
    }
    (std::index_sequence_for<Parameters...>{});
    return row;
}

FeatureRow LoggedAs(const char *logName, FeatureRow row)
{
    row.logName = row.zeroHandleName = logName;
    return row;
}

FeatureRow ZeroHandleLoggedAs(const char *logName, FeatureRow row)
{
    row.zeroHandleName = logName;
    return row;
}

FeatureRow GevStatus(CAM_API_STATUS status, FeatureRow row)
{
    row.gevStatus = status;
    return row;
}

#define ROW(function, ...) Row(#function, function, "" __VA_ARGS__)
#define REAL "=    1.000000000"

std::vector<FeatureRow> FeatureRows()
{
    return {
        // clang-format off
        GevStatus(0x11, ROW(GetCamStreamEnable)), ROW(GetCamStreamPayloadSize),

        ROW(GetCamImageFormatSelector), ROW(SetCamImageFormatSelector, ", eFormat=1"),
        ROW(GetCamSensorWidth), ROW(GetCamSensorHeight),
        ROW(GetCamWidthMinMax),   ROW(GetCamWidth),   ROW(SetCamWidth, ", uiValue=1"),
        ROW(GetCamHeightMinMax),  ROW(GetCamHeight),  ROW(SetCamHeight, ", uiValue=1"),
        ROW(GetCamOffsetXMinMax), ROW(GetCamOffsetX), ROW(SetCamOffsetX, ", uiValue=1"),
        ROW(GetCamOffsetYMinMax), ROW(GetCamOffsetY), ROW(SetCamOffsetY, ", uiValue=1"),
        ROW(GetCamRoi), ROW(SetCamRoi, ", uiWidth=1, uiHeight=1, uiOffsetX=1, uiOffsetY=1"),
        ROW(GetCamBinningHorizontalMinMax),    ROW(GetCamBinningHorizontal),    ROW(SetCamBinningHorizontal, ", uiValue=1"),
        ROW(GetCamBinningVerticalMinMax),      ROW(GetCamBinningVertical),      ROW(SetCamBinningVertical, ", uiValue=1"),
        ROW(GetCamDecimationHorizontalMinMax), ROW(GetCamDecimationHorizontal), ROW(SetCamDecimationHorizontal, ", uiValue=1"),
        ROW(GetCamDecimationVerticalMinMax),   ROW(GetCamDecimationVertical),   ROW(SetCamDecimationVertical, ", uiValue=1"),
        ROW(GetCamReverseX), ROW(SetCamReverseX, ", bValue=1"),
        ROW(GetCamReverseY), ROW(SetCamReverseY, ", bValue=1"),
        ROW(GetCamTestPattern), ROW(SetCamTestPattern, ", eTestPattern=1"),

        ROW(GetCamAcquisitionFrameCountMinMax), ROW(GetCamAcquisitionFrameCount),
        ROW(SetCamAcquisitionFrameCount, ", uiAcquisitionFrameCount=1"),
        ROW(GetCamAcquisitionFrameRateControl), ROW(SetCamAcquisitionFrameRateControl, ", eAcquisitionFrameRateControl=1"),
        ROW(GetCamAcquisitionFrameRateMinMax), ROW(GetCamAcquisitionFrameRate),
        ROW(SetCamAcquisitionFrameRate, ", dAcquisitionFrameRate" REAL),
        ROW(GetCamImageBufferMode), ROW(SetCamImageBufferMode, ", eImageBufferMode=1"),
        ROW(GetCamImageBufferFrameCount), ROW(ExecuteCamImageBufferRead),

        ROW(GetCamTriggerMode), ROW(SetCamTriggerMode, ", bTriggerMode=1"),
        ROW(GetCamTriggerSequence), ROW(SetCamTriggerSequence, ", eTriggerSequence=1"),
        // Line 1 is known to registers only.
        ROW(GetCamTriggerSource), GevStatus(0xD, ROW(SetCamTriggerSource, ", eTriggerSource=1")),
        ROW(GetCamTriggerAdditionalParameterMinMax), ROW(GetCamTriggerAdditionalParameter),
        ROW(SetCamTriggerAdditionalParameter, ", uiValue=1"),
        ROW(GetCamTriggerDelayMinMax), ROW(GetCamTriggerDelay), ROW(SetCamTriggerDelay, ", dTriggerDelay" REAL),
        ROW(GetCamTriggerActivation),
        ZeroHandleLoggedAs("SGetCamTriggerActivation", ROW(SetCamTriggerActivation, ", eTriggerActivation=1")),
        ROW(ExecuteCamSoftwareTrigger),
        ROW(GetCamExposureTimeControl), ROW(SetCamExposureTimeControl, ", eExposureTimeControl=1"),
        ROW(GetCamExposureTimeMinMax), ROW(GetCamExposureTime), ROW(SetCamExposureTime, ", dExposureTime" REAL),

        ROW(GetCamLineModeAll), ROW(GetCamLineInverterAll), ROW(SetCamLineInverterAll, ", uiValue=1"),
        ROW(GetCamLineStatusAll), ROW(GetCamUserOutputValueAll), ROW(SetCamUserOutputValueAll, ", uiValue=1"),
        ROW(GetCamLineSource, ", eLineSelector=1"), ROW(SetCamLineSource, ", eLineSelector=1, eLineSource=1"),
        ROW(GetCamTimerDurationMinMax), ROW(GetCamTimerDuration), ROW(SetCamTimerDuration, ", dTimerDuration" REAL),
        ROW(GetCamTimerDelayMinMax), ROW(GetCamTimerDelay), ROW(SetCamTimerDelay, ", dTimerDelay" REAL),
        ROW(GetCamTimerTriggerSource), GevStatus(0xD, ROW(SetCamTimerTriggerSource, ", eTimerTriggerSource=1")),

        ROW(GetCamGainMinMax), ROW(GetCamGain), ROW(SetCamGain, ", dGain" REAL),
        ROW(GetCamGainAuto), GevStatus(0, ROW(SetCamGainAuto, ", eGainAuto=1")),
        ROW(GetCamBlackLevelMinMax), ROW(GetCamBlackLevel), ROW(SetCamBlackLevel, ", dBlackLevel" REAL),
        ROW(GetCamGammaMinMax), ROW(GetCamGamma), ROW(SetCamGamma, ", dGamma" REAL),
        ROW(GetCamSharpnessMinMax), ROW(GetCamSharpness), ROW(SetCamSharpness, ", uiSharpness=1"),
        ROW(GetCamHueMinMax), ROW(GetCamHue), ROW(SetCamHue, ", dHue" REAL),
        ROW(GetCamSaturationMinMax), ROW(GetCamSaturation), ROW(SetCamSaturation, ", dSaturation" REAL),
        ROW(GetCamBalanceRatioMinMax, ", eSelector=1"), ROW(GetCamBalanceRatio, ", eSelector=1"),
        ROW(SetCamBalanceRatio, ", eSelector=1, dBalanceRatio" REAL),
        ROW(GetCamBalanceWhiteAuto), ROW(SetCamBalanceWhiteAuto, ", eBalanceWhiteAuto=1"),
        ROW(GetCamColorCorrectionMatrixMinMax, ", eType=1"), ROW(GetCamColorCorrectionMatrix, ", eType=1"),
        ROW(SetCamColorCorrectionMatrix, ", eType=1, dMatrix" REAL),
        ROW(GetCamLutEnable), ROW(SetCamLutEnable, ", bEnable=1"),
        ROW(GetCamLutValue, ", uiLutIndex=1"), ROW(SetCamLutValue, ", uiLutIndex=1, uiLutValue=1"),

        ROW(ExecuteCamUserSetLoad, ", eSelector=1"), ROW(ExecuteCamUserSetSave, ", eSelector=1"),
        ROW(ExecuteCamUserSetSaveAndSetDefault, ", eSelector=1"),
        ROW(GetCamFrameSynchronization), ROW(SetCamFrameSynchronization, ", eSync=1"),
        ROW(GetCamDpcEnable), ROW(SetCamDpcEnable, ", bEnable=1"), ROW(GetCamDpcNumber), ROW(SetCamDpcNumber, ", uiNumber=1"),
        ROW(GetCamDpcPosition, ", uiDpcIndex=1"), ROW(SetCamDpcPosition, ", uiDpcIndex=1, uiEntryX=1, uiEntryY=1"),
        ROW(GetCamSequentialShutterEnable), ROW(SetCamSequentialShutterEnable, ", bEnable=1"),
        ROW(GetCamSequentialShutterTerminateAtMinMax), ROW(GetCamSequentialShutterTerminateAt),
        ROW(SetCamSequentialShutterTerminateAt, ", uiValue=1"),
        ROW(GetCamSequentialShutterIndexMinMax), ROW(GetCamSequentialShutterEntryMinMax),
        ROW(GetCamSequentialShutterEntry, ", uiIndex=1"), ROW(SetCamSequentialShutterEntry, ", uiIndex=1, uiEntry=1"),
        ROW(GetCamTLParamsLocked),
        LoggedAs("Cam_SetUserDefinedName", ROW(SetCamUserDefinedName, ", pszName=name")),
        // clang-format on
    };
}

class FeatureFrameTest : public FeatureTest, public ::testing::WithParamInterface<FeatureRow> {
  protected:
    const FeatureRow &row = GetParam();

    std::string Enter(const char *handle) const { return EnterLine(row.logName + ", hCam=" + handle + row.enter); }
};

void PrintTo(const FeatureRow &row, std::ostream *out) { *out << row.name; }

INSTANTIATE_TEST_SUITE_P(Features, FeatureFrameTest, ::testing::ValuesIn(FeatureRows()),
                         [](const auto &one) { return std::string(one.param.name); });

TEST_P(FeatureFrameTest, ZeroHandleComesFirst)
{
    EXPECT_EQ(row.call(0), 7u);
    EXPECT_EQ(TakeLog(), (Lines{Enter("0x0"), ExitLine(7, row.zeroHandleName)}));
    for (const auto &null : row.nulls)
        EXPECT_EQ(null(0), 7u);
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_P(FeatureFrameTest, NullOutputIsRefusedBeforeAnythingIsAsked)
{
    for (const auto &null : row.nulls)
        for (const CAM_HANDLE handle : {hCamera, hForeign}) {
            EXPECT_EQ(null(handle), 0xDu);
            EXPECT_EQ(TakeFrame().back(), ExitLine(0xD, row.logName));
        }
    EXPECT_EQ(TakeCalls(), Lines{});
    EXPECT_TRUE(row.outputsUntouched());
}

TEST_P(FeatureFrameTest, NotInitialised)
{
    Terminate();
    EXPECT_EQ(row.call(hCamera), 1u);
    EXPECT_EQ(TakeFrame(), (Lines{Enter("0x11"), ExitLine(1, row.logName)}));
    EXPECT_EQ(TakeCalls(), Lines{});
    EXPECT_TRUE(row.outputsUntouched());
}

TEST_P(FeatureFrameTest, ForeignHandleIsNoCamera)
{
    EXPECT_EQ(row.call(hForeign), 7u);
    EXPECT_EQ(TakeFrame(), (Lines{Enter("0x99"), ExitLine(7, row.logName)}));
    EXPECT_EQ(row.call(hCameraUnknown), 7u);
    EXPECT_EQ(row.call(hCameraGev), row.gevStatus);
    EXPECT_EQ(TakeCalls(), Lines{});
    EXPECT_TRUE(row.outputsUntouched());
}

TEST_P(FeatureFrameTest, LetsNoExceptionThrough)
{
    stub.on.Cam_ReadReg = [](auto...) -> CAM_API_STATUS { throw std::runtime_error("scripted"); };
    stub.on.Nd_GetNode = [](auto...) -> CAM_API_STATUS { throw 42; }; // NOLINT: no std::exception either
    EXPECT_EQ(row.call(hCamera), 0xFFFFFFFFu);
    EXPECT_EQ(TakeFrame(), (Lines{Enter("0x11"), ExitLine(0xFFFFFFFF, row.logName)}));
    EXPECT_TRUE(row.outputsUntouched());
}

TEST_P(FeatureFrameTest, DoesTheSameWhileTheLogIsDown)
{
    StopLog();
    EXPECT_EQ(row.call(0), 7u);
    for (const auto &null : row.nulls)
        EXPECT_EQ(null(hCamera), 0xDu);
    stub.on.Cam_ReadReg = [](auto...) -> CAM_API_STATUS { return CAM_API_STS_TIMEOUT; };
    stub.on.Nd_GetNode = [](auto...) -> CAM_API_STATUS { return CAM_API_STS_TIMEOUT; };
    EXPECT_EQ(row.call(hCamera), CAM_API_STS_TIMEOUT);
}

} // namespace Orvi::Testing
