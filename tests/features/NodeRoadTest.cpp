// Numbers, flags, commands and lines on cameras that have nodes alone.

#include "tests/features/NodeLayer.h"

#include <gmock/gmock.h>

namespace Orvi::Testing {

using NodeRoadTest = NodeLayerTest;

struct FloatRow {
    const char *node;
    CAM_API_STATUS (*limits)(CAM_HANDLE, double *, double *);
    CAM_API_STATUS (*get)(CAM_HANDLE, double *);
    CAM_API_STATUS (*set)(CAM_HANDLE, double);
};
#define ROW(feature)                                                                                                   \
    {                                                                                                                  \
#feature, GetCam##feature##MinMax, GetCam##feature, SetCam##feature                                            \
    }
const FloatRow s_floats[] = {
    ROW(AcquisitionFrameRate), ROW(ExposureTime), ROW(TriggerDelay), ROW(TimerDelay), ROW(TimerDuration), ROW(Gain),
    ROW(BlackLevel),           ROW(Gamma),        ROW(Hue),          ROW(Saturation)};

TEST_F(NodeRoadTest, FloatsAreNodesOfTheirNameAsTheyStand)
{
    for (const FloatRow &row : s_floats)
        for (const CAM_HANDLE hCam : {hNodeCamera, hOtherCamera}) {
            double value = 0, min = 0, max = 0;
            layer.nodes.clear();
            EXPECT_EQ(row.get(hCam, &value), 0x102u);
            FakeNode &node = layer.nodes[row.node];
            node.kind = NodeKind::Float;
            node.floatValue = 1.5;
            EXPECT_EQ(row.get(hCam, &value), 0u) << row.node;
            EXPECT_EQ(value, 1.5);
            EXPECT_EQ(row.limits(hCam, &min, &max), 0u);
            EXPECT_EQ(min, -1000);
            EXPECT_EQ(max, 1000);
            EXPECT_EQ(row.set(hCam, 2.5), 0u);
            EXPECT_EQ(node.floatValue, 2.5);
            EXPECT_EQ(row.set(hCam, 1001), 0xDu);
        }
}

struct IntRow {
    const char *node;
    CAM_API_STATUS (*limits)(CAM_HANDLE, uint32_t *, uint32_t *);
    CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *);
    CAM_API_STATUS (*set)(CAM_HANDLE, uint32_t);
};
const IntRow s_ints[] = {ROW(BinningHorizontal),
                         ROW(BinningVertical),
                         ROW(DecimationHorizontal),
                         ROW(DecimationVertical),
                         ROW(AcquisitionFrameCount),
                         ROW(Sharpness),
                         {"AcquisitionBurstFrameCount", GetCamTriggerAdditionalParameterMinMax,
                          GetCamTriggerAdditionalParameter, SetCamTriggerAdditionalParameter}};
#undef ROW

TEST_F(NodeRoadTest, IntegersAreNodesAndStreamingIsNotAsked)
{
    layer.registers[0x20004] = 1;
    for (const IntRow &row : s_ints) {
        FakeNode &node = layer.nodes[row.node];
        node.kind = NodeKind::Integer;
        node.intValue = 5;
        node.intMin = 1;
        uint32_t value = 0, min = 0, max = 0;
        EXPECT_EQ(row.get(hNodeCamera, &value), 0u) << row.node;
        EXPECT_EQ(value, 5u);
        EXPECT_EQ(row.limits(hNodeCamera, &min, &max), 0u);
        EXPECT_EQ(min, 1u);
        EXPECT_EQ(max, 1000u);
        EXPECT_EQ(row.set(hNodeCamera, 6), 0u);
        EXPECT_EQ(node.intValue, 6);
        EXPECT_EQ(row.set(hNodeCamera, 0), 0xDu);
    }
    for (const std::string &call : layer.TakeCalls())
        EXPECT_THAT(call, ::testing::Not(::testing::StartsWith("ReadReg")));
    uint32_t value = 0;
    EXPECT_EQ(GetCamTriggerAdditionalParameter(hOtherCamera, &value), 7u);
    EXPECT_EQ(GetCamTriggerAdditionalParameterMinMax(hOtherCamera, &value, &value), 7u);
    EXPECT_EQ(SetCamTriggerAdditionalParameter(hOtherCamera, 1), 7u);
    EXPECT_EQ(GetCamBinningHorizontal(hOtherCamera, &value), 0u) << "any kind but the one with registers";
    layer.nodes["ImageBufferFrameCount"].intValue = 9;
    EXPECT_EQ(GetCamImageBufferFrameCount(hNodeCamera, &value), 0u);
    EXPECT_EQ(value, 9u);
}

TEST_F(NodeRoadTest, ImageSizeIsNodes)
{
    const struct {
        const char *node;
        CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *);
        CAM_API_STATUS (*limits)(CAM_HANDLE, uint32_t *, uint32_t *, uint32_t *);
        CAM_API_STATUS (*set)(CAM_HANDLE, uint32_t);
    } rows[] = {{"SensorWidth", GetCamSensorWidth, nullptr, nullptr},
                {"SensorHeight", GetCamSensorHeight, nullptr, nullptr},
                {"Width", GetCamWidth, GetCamWidthMinMax, SetCamWidth},
                {"Height", GetCamHeight, GetCamHeightMinMax, SetCamHeight},
                {"OffsetX", GetCamOffsetX, GetCamOffsetXMinMax, SetCamOffsetX},
                {"OffsetY", GetCamOffsetY, GetCamOffsetYMinMax, SetCamOffsetY}};
    for (const auto &row : rows) {
        uint32_t value = 0, min = 0, max = 0, inc = 0;
        FakeNode &node = layer.nodes[row.node];
        node.intValue = 5;
        node.intInc = 3;
        EXPECT_EQ(row.get(hNodeCamera, &value), 0u);
        EXPECT_EQ(value, 5u);
        EXPECT_EQ(row.get(hOtherCamera, &value), 7u);
        if (row.set == nullptr)
            continue;
        EXPECT_EQ(row.limits(hNodeCamera, &min, &max, &inc), 0u);
        EXPECT_EQ(max, 1000u);
        EXPECT_EQ(inc, 3u);
        EXPECT_EQ(row.limits(hOtherCamera, &min, &max, &inc), 7u);
        EXPECT_EQ(row.set(hNodeCamera, 6), 0u);
        EXPECT_EQ(node.intValue, 6);
    }
    TakeWrites();
    EXPECT_EQ(SetCamRoi(hNodeCamera, 7, 5, 6, 6), 0u);
    EXPECT_EQ(TakeWrites(), (Lines{"Width=7", "Height=5"})) << "offset X does not change, offset Y neither";
    EXPECT_EQ(SetCamRoi(hOtherCamera, 7, 5, 6, 6), 7u);
}

TEST_F(NodeRoadTest, MirroringIsAFlagOrElseAChoice)
{
    const struct {
        const char *node;
        CAM_API_STATUS (*get)(CAM_HANDLE, bool *);
        CAM_API_STATUS (*set)(CAM_HANDLE, bool);
    } rows[] = {{"ReverseX", GetCamReverseX, SetCamReverseX}, {"ReverseY", GetCamReverseY, SetCamReverseY}};
    for (const auto &row : rows) {
        bool value = false;
        FakeNode &node = layer.nodes[row.node];
        node.kind = NodeKind::Boolean;
        EXPECT_EQ(row.set(hNodeCamera, true), 0u);
        EXPECT_EQ(row.get(hNodeCamera, &value), 0u);
        EXPECT_TRUE(value);
        layer.script["SetBoolValue"] = {0x12};
        EXPECT_EQ(row.set(hNodeCamera, false), 0x12u) << "no other failure means the other kind";
        layer.script["GetBoolValue"] = {0x12};
        EXPECT_EQ(row.get(hNodeCamera, &value), 0x12u);
        node.kind = NodeKind::Enumeration;
        EXPECT_EQ(row.set(hNodeCamera, true), 0u);
        EXPECT_EQ(node.text, "On");
        value = false;
        EXPECT_EQ(row.get(hNodeCamera, &value), 0u);
        EXPECT_TRUE(value);
        EXPECT_EQ(row.set(hNodeCamera, false), 0u);
        EXPECT_EQ(node.text, "Off");
        EXPECT_EQ(row.get(hNodeCamera, &value), 0u);
        EXPECT_FALSE(value);
        node.text = "Maybe";
        EXPECT_EQ(row.get(hNodeCamera, &value), 0xFFFFFFFFu);
        layer.script["SetEnumStrValue2"] = {0x13};
        EXPECT_EQ(row.set(hNodeCamera, true), 0x13u);
    }
}

TEST_F(NodeRoadTest, TriggerModeIsAChoiceOrElseAFlag)
{
    bool value = false;
    FakeNode &node = layer.nodes["TriggerMode"];
    node.kind = NodeKind::Enumeration;
    EXPECT_EQ(SetCamTriggerMode(hNodeCamera, true), 0u);
    EXPECT_EQ(node.text, "On");
    EXPECT_EQ(GetCamTriggerMode(hNodeCamera, &value), 0u);
    EXPECT_TRUE(value);
    node.text = "Maybe";
    EXPECT_EQ(GetCamTriggerMode(hNodeCamera, &value), 0xFFFFFFFFu);
    layer.script["SetEnumStrValue2"] = {0x12};
    EXPECT_EQ(SetCamTriggerMode(hNodeCamera, true), 0x12u);
    node.kind = NodeKind::Boolean;
    EXPECT_EQ(SetCamTriggerMode(hNodeCamera, true), 0u);
    EXPECT_TRUE(node.boolValue);
    value = false;
    EXPECT_EQ(GetCamTriggerMode(hOtherCamera, &value), 0u);
    EXPECT_TRUE(value);
}

TEST_F(NodeRoadTest, CommandsAreExecutedAndPolled)
{
    const struct {
        const char *node;
        CAM_API_STATUS (*execute)(CAM_HANDLE);
    } rows[] = {{"ImageBufferRead", ExecuteCamImageBufferRead}, {"TriggerSoftware", ExecuteCamSoftwareTrigger}};
    for (const auto &row : rows) {
        EXPECT_EQ(row.execute(hNodeCamera), 0x102u);
        layer.nodes[row.node].done = false;
        layer.TakeCalls();
        EXPECT_EQ(row.execute(hNodeCamera), 0u);
        EXPECT_EQ(layer.TakeCalls().size(), 52u);
        EXPECT_EQ(TakeWrites(), Lines{row.node});
        layer.throwFrom = "GetCmdIsDone";
        EXPECT_EQ(row.execute(hNodeCamera), 0xFFFFFFFFu);
        layer.throwFrom.clear();
        EXPECT_EQ(row.execute(hOtherCamera), 7u);
        TakeWrites();
    }
}

TEST_F(NodeRoadTest, LinesHaveNodesOrNone)
{
    uint32_t value = 77;
    EXPECT_EQ(GetCamLineModeAll(hNodeCamera, &value), 7u);
    EXPECT_EQ(GetCamLineInverterAll(hNodeCamera, &value), 7u);
    EXPECT_EQ(layer.TakeCalls(), Lines{});
    layer.nodes["LineStatusAll"].intValue = 5;
    EXPECT_EQ(GetCamLineStatusAll(hNodeCamera, &value), 0u);
    EXPECT_EQ(value, 5u);
    // What is set is not what is got: the getter's node has the name of the function.
    layer.nodes["UserOutputValueAll"].intValue = 1;
    EXPECT_EQ(GetCamUserOutputValueAll(hNodeCamera, &value), 0x102u);
    layer.nodes["GetCamUserOutputValueAll"].intValue = 6;
    EXPECT_EQ(GetCamUserOutputValueAll(hNodeCamera, &value), 0u);
    EXPECT_EQ(value, 6u);
    EXPECT_EQ(SetCamUserOutputValueAll(hNodeCamera, 3), 0u);
    EXPECT_EQ(layer.nodes["UserOutputValueAll"].intValue, 3);
    for (const auto get : {GetCamLineModeAll, GetCamLineInverterAll, GetCamLineStatusAll, GetCamUserOutputValueAll})
        EXPECT_EQ(get(hOtherCamera, &value), 7u);
    EXPECT_EQ(SetCamUserOutputValueAll(hOtherCamera, 3), 7u);
    EXPECT_EQ(SetCamLineInverterAll(hOtherCamera, 3), 7u);
}

class LineInverterTest : public NodeRoadTest {
  protected:
    FakeNode &selector = layer.nodes["LineSelector"];
    FakeNode &inverter = layer.nodes["LineInverter"];
};

TEST_F(LineInverterTest, ThreeLinesOneByOne)
{
    EXPECT_EQ(SetCamLineInverterAll(hNodeCamera, 0xFFFFFFFD), 0u);
    EXPECT_EQ(TakeWrites(), (Lines{"LineSelector=Line0", "LineInverter=true", "LineSelector=Line1",
                                   "LineInverter=false", "LineSelector=Line2", "LineInverter=true"}));
    EXPECT_THAT(layer.TakeCalls(), ::testing::Contains("SetBoolValue LineInverter true verify"));
}

TEST_F(LineInverterTest, AccessModeDecides)
{
    inverter.access = CAM_NODE_ACCESS_MODE_NI;
    EXPECT_EQ(SetCamLineInverterAll(hNodeCamera, 0), 0x11u);
    EXPECT_EQ(TakeWrites(), Lines{"LineSelector=Line0"});
    inverter.access = CAM_NODE_ACCESS_MODE_NA;
    EXPECT_EQ(SetCamLineInverterAll(hNodeCamera, 0xFFFFFFF8), 0u);
    EXPECT_EQ(TakeWrites(), (Lines{"LineSelector=Line0", "LineSelector=Line1", "LineSelector=Line2"}));
    EXPECT_EQ(SetCamLineInverterAll(hNodeCamera, 2), 0xDu);
    EXPECT_EQ(TakeWrites(), (Lines{"LineSelector=Line0", "LineSelector=Line1"}));
    inverter.access = CAM_NODE_ACCESS_MODE_RO;
    EXPECT_EQ(SetCamLineInverterAll(hNodeCamera, 7), 0u) << "skipped silently";
    EXPECT_EQ(TakeWrites().size(), 3u);
    inverter.access = CAM_NODE_ACCESS_MODE_WO;
    EXPECT_EQ(SetCamLineInverterAll(hNodeCamera, 7), 0u);
    EXPECT_EQ(TakeWrites().size(), 6u);
}

TEST_F(LineInverterTest, FailureIsTheStatus)
{
    layer.script["SetEnumStrValue2"] = {0, 0x12};
    EXPECT_EQ(SetCamLineInverterAll(hNodeCamera, 7), 0x12u);
    layer.script["SetBoolValue"] = {0, 0, 0x13};
    EXPECT_EQ(SetCamLineInverterAll(hNodeCamera, 7), 0x13u);
    selector.entries = {"Line0"};
    EXPECT_EQ(SetCamLineInverterAll(hNodeCamera, 7), 0x102u);
    for (const char *function : {"GetNode", "GetAccessMode", "SetEnumStrValue2", "SetBoolValue"}) {
        layer.throwFrom = function;
        EXPECT_EQ(SetCamLineInverterAll(hNodeCamera, 7), 0xFFFFFFFFu) << function;
    }
    layer.throwFrom.clear();
    layer.nodes.erase("LineInverter");
    EXPECT_EQ(SetCamLineInverterAll(hNodeCamera, 7), 0x102u);
}

} // namespace Orvi::Testing
