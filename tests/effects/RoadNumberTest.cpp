// Functions and nodes see one state: numbers and switches. What one sets, the other reads, and their limits agree.

#include "tests/effects/EffectTest.h"

namespace Orvi::Testing {
namespace {

class RoadNumberTest : public EffectTest {
  protected:
    RoadNumberTest()
    {
        // Room for every change of the window
        SetRoi(160, 120, 64, 64);
    }
};

template <class T>
using Setter = CAM_API_STATUS (*)(CAM_HANDLE, T);
template <class T>
using Getter = CAM_API_STATUS (*)(CAM_HANDLE, T *);
template <class T>
using LimitsGetter = CAM_API_STATUS (*)(CAM_HANDLE, T *, T *);

/// Width, height and offsets tell their increment, too; the limits are the same.
template <CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *, uint32_t *, uint32_t *)>
CAM_API_STATUS WithoutIncrement(CAM_HANDLE hCam, uint32_t *puiMin, uint32_t *puiMax)
{
    uint32_t increment = 0;
    return get(hCam, puiMin, puiMax, &increment);
}

template <class T>
struct NumberRow {
    const char *node;
    Setter<T> set;
    Getter<T> get;
    LimitsGetter<T> limits;
    T first, second;
};

// clang-format off
const NumberRow<uint32_t> integers[] = {
    {"Width",                        SetCamWidth,                        GetCamWidth,                        WithoutIncrement<GetCamWidthMinMax>,        96,  128},
    {"Height",                       SetCamHeight,                       GetCamHeight,                       WithoutIncrement<GetCamHeightMinMax>,       48,   64},
    {"OffsetX",                      SetCamOffsetX,                      GetCamOffsetX,                      WithoutIncrement<GetCamOffsetXMinMax>,      32,   96},
    {"OffsetY",                      SetCamOffsetY,                      GetCamOffsetY,                      WithoutIncrement<GetCamOffsetYMinMax>,      34,   98},
    {"BinningHorizontal",            SetCamBinningHorizontal,            GetCamBinningHorizontal,            GetCamBinningHorizontalMinMax,               2,    4},
    {"BinningVertical",              SetCamBinningVertical,              GetCamBinningVertical,              GetCamBinningVerticalMinMax,                 2,    4},
    {"DecimationHorizontal",         SetCamDecimationHorizontal,         GetCamDecimationHorizontal,         GetCamDecimationHorizontalMinMax,            2,    3},
    {"DecimationVertical",           SetCamDecimationVertical,           GetCamDecimationVertical,           GetCamDecimationVerticalMinMax,              2,    3},
    {"AcquisitionFrameCount",        SetCamAcquisitionFrameCount,        GetCamAcquisitionFrameCount,        GetCamAcquisitionFrameCountMinMax,           7,    9},
    {"Sharpness",                    SetCamSharpness,                    GetCamSharpness,                    GetCamSharpnessMinMax,                       3,    5},
    {"TriggerAdditionalParameter",   SetCamTriggerAdditionalParameter,   GetCamTriggerAdditionalParameter,   GetCamTriggerAdditionalParameterMinMax,      4,    8},
    {"AcquisitionBurstFrameCount",   SetCamTriggerAdditionalParameter,   GetCamTriggerAdditionalParameter,   GetCamTriggerAdditionalParameterMinMax,      5,    9},
    {"SequentialShutterTerminateAt", SetCamSequentialShutterTerminateAt, GetCamSequentialShutterTerminateAt, GetCamSequentialShutterTerminateAtMinMax,    2,    6},
    {"DPCNumber",                    SetCamDpcNumber,                    GetCamDpcNumber,                    nullptr,                                     1,   32},
    {"LineInverterAll",              SetCamLineInverterAll,              GetCamLineInverterAll,              nullptr,                                     5,    2},
    {"UserOutputValueAll",           SetCamUserOutputValueAll,           GetCamUserOutputValueAll,           nullptr,                                     2,    4},
};

const NumberRow<double> floats[] = {
    {"AcquisitionFrameRate", SetCamAcquisitionFrameRate, GetCamAcquisitionFrameRate, GetCamAcquisitionFrameRateMinMax, 12.5,  59.94},
    {"ExposureTime",         SetCamExposureTime,         GetCamExposureTime,         GetCamExposureTimeMinMax,         20,    12345},
    {"BlackLevel",           SetCamBlackLevel,           GetCamBlackLevel,           GetCamBlackLevelMinMax,           1.5,   10.0625},
    {"Gain",                 SetCamGain,                 GetCamGain,                 GetCamGainMinMax,                 0.29,  23.99},
    {"Gamma",                SetCamGamma,                GetCamGamma,                GetCamGammaMinMax,                0.45,  2.2},
    {"Hue",                  SetCamHue,                  GetCamHue,                  GetCamHueMinMax,                  -12.3, 179.9},
    {"Saturation",           SetCamSaturation,           GetCamSaturation,           GetCamSaturationMinMax,           0,     1.57},
    {"TriggerDelay",         SetCamTriggerDelay,         GetCamTriggerDelay,         GetCamTriggerDelayMinMax,         1,     999999},
    {"TimerDelay",           SetCamTimerDelay,           GetCamTimerDelay,           GetCamTimerDelayMinMax,           7,     123456},
    {"TimerDuration",        SetCamTimerDuration,        GetCamTimerDuration,        GetCamTimerDurationMinMax,        1,     654321},
};

const NumberRow<bool> switches[] = {
    {"ReverseX",                SetCamReverseX,                GetCamReverseX,                nullptr, true, false},
    {"ReverseY",                SetCamReverseY,                GetCamReverseY,                nullptr, true, false},
    {"LUTEnable",               SetCamLutEnable,               GetCamLutEnable,               nullptr, true, false},
    {"DPCEnable",               SetCamDpcEnable,               GetCamDpcEnable,               nullptr, true, false},
    {"SequentialShutterEnable", SetCamSequentialShutterEnable, GetCamSequentialShutterEnable, nullptr, true, false},
};
// clang-format on

TEST_F(RoadNumberTest, Integers)
{
    for (const auto &row : integers) {
        EXPECT_EQ(row.set(hCam, row.first), 0u) << row.node;
        EXPECT_EQ(GetInt(hCam, row.node), row.first) << row.node;
        SetInt(hCam, row.node, row.second);
        uint32_t value = 0, min = 0, max = 0;
        EXPECT_EQ(row.get(hCam, &value), 0u) << row.node;
        EXPECT_EQ(value, row.second) << row.node;
        if (row.limits != nullptr) {
            int64_t llMin = -1, llMax = -1;
            EXPECT_EQ(Nd_GetIntMin(hCam, Node(hCam, row.node), &llMin), 0u);
            EXPECT_EQ(Nd_GetIntMax(hCam, Node(hCam, row.node), &llMax), 0u);
            EXPECT_EQ(row.limits(hCam, &min, &max), 0u) << row.node;
            EXPECT_EQ(int64_t{min}, llMin) << row.node;
            EXPECT_EQ(int64_t{max}, llMax) << row.node;
        }
    }
}

TEST_F(RoadNumberTest, Floats)
{
    for (const auto &row : floats) {
        EXPECT_EQ(row.set(hCam, row.first), 0u) << row.node;
        EXPECT_DOUBLE_EQ(FloatNode(row.node), row.first) << row.node;
        SetFloat(hCam, row.node, row.second);
        double value = 0, min = 0, max = 0, nodeMin = -1, nodeMax = -1;
        EXPECT_EQ(row.get(hCam, &value), 0u) << row.node;
        EXPECT_DOUBLE_EQ(value, row.second) << row.node;
        EXPECT_EQ(Nd_GetFloatMin(hCam, Node(hCam, row.node), &nodeMin), 0u);
        EXPECT_EQ(Nd_GetFloatMax(hCam, Node(hCam, row.node), &nodeMax), 0u);
        EXPECT_EQ(row.limits(hCam, &min, &max), 0u) << row.node;
        EXPECT_DOUBLE_EQ(min, nodeMin) << row.node;
        EXPECT_DOUBLE_EQ(max, nodeMax) << row.node;
    }
}

TEST_F(RoadNumberTest, Switches)
{
    for (const auto &row : switches) {
        EXPECT_EQ(row.set(hCam, row.first), 0u) << row.node;
        EXPECT_EQ(BoolNode(row.node), row.first) << row.node;
        SetBoolNode(row.node, row.second);
        bool value = row.first;
        EXPECT_EQ(row.get(hCam, &value), 0u) << row.node;
        EXPECT_EQ(value, row.second) << row.node;
    }
}

TEST_F(RoadNumberTest, WhatIsReadOnly)
{
    const NumberRow<uint32_t> rows[] = {
        {"SensorWidth", nullptr, GetCamSensorWidth, nullptr, 0, 0},
        {"SensorHeight", nullptr, GetCamSensorHeight, nullptr, 0, 0},
        {"ImageBufferFrameCount", nullptr, GetCamImageBufferFrameCount, nullptr, 0, 0},
        {"LineModeAll", nullptr, GetCamLineModeAll, nullptr, 0, 0},
        {"LineStatusAll", nullptr, GetCamLineStatusAll, nullptr, 0, 0},
        {"SIRequiredPayloadSize", nullptr, GetCamStreamPayloadSize, nullptr, 0, 0},
        {"TLParamsLocked", nullptr, GetCamTLParamsLocked, nullptr, 0, 0},
    };
    for (const auto &row : rows) {
        uint32_t value = 0xFFFFFFFF;
        EXPECT_EQ(row.get(hCam, &value), 0u) << row.node;
        EXPECT_EQ(GetInt(hCam, row.node), value) << row.node;
    }
}

} // namespace
} // namespace Orvi::Testing
