// Features that are nodes on every camera.

#include "tests/features/FeatureTest.h"
#include "tests/features/PlainEnum.h"

namespace Orvi::Testing {
namespace {

using NodeFeatureTest = FeatureTest;

/// One number with node and log names.
struct NumberRow {
    const char *node;
    const char *getter, *argument;
    CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *);
    CAM_API_STATUS (*set)(CAM_HANDLE, uint32_t);
};

TEST_F(NodeFeatureTest, Numbers)
{
    const NumberRow rows[] = {
        {"DPCNumber", "GetCamDpcNumber", "puiNumber", GetCamDpcNumber, SetCamDpcNumber},
        {"SequentialShutterTerminateAt", "GetCamSequentialShutterTerminateAt", "puiValue",
         GetCamSequentialShutterTerminateAt, SetCamSequentialShutterTerminateAt},
        {"TLParamsLocked", "GetCamTLParamsLocked", "puiValue", GetCamTLParamsLocked, nullptr},
    };
    for (const NumberRow &row : rows) {
        Stub::Node &node = stub.nodes[row.node];
        node.intValue = 0x100000005;
        node.intMin = 2;
        node.intMax = 10;
        uint32_t value = 0;
        EXPECT_EQ(row.get(hCamera, &value), 0u);
        EXPECT_EQ(value, 5u);
        ExpectExit(std::string(row.getter) + ", *" + row.argument + "=5");
        node.access = CAM_NODE_ACCESS_MODE_WO;
        EXPECT_EQ(row.get(hCamera, &value), 0x806u);
        if (row.set == nullptr)
            continue;
        EXPECT_EQ(row.set(hCamera, 10), 0u);
        EXPECT_EQ(node.intValue, 10);
        for (const uint32_t outside : {1u, 11u, 0xFFFFFFFFu})
            EXPECT_EQ(row.set(hCamera, outside), 0xDu);
        node.access = CAM_NODE_ACCESS_MODE_RO;
        EXPECT_EQ(row.set(hCamera, 9), 0x807u);
        node.access = CAM_NODE_ACCESS_MODE_NA;
        EXPECT_EQ(row.set(hCamera, 9), 0x808u);
        node.access = CAM_NODE_ACCESS_MODE_NI;
        EXPECT_EQ(row.set(hCamera, 9), 0x11u);
        EXPECT_EQ(node.intValue, 10);
    }
}

struct LimitsRow {
    const char *node, *name;
    CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *, uint32_t *);
};

TEST_F(NodeFeatureTest, Limits)
{
    const LimitsRow rows[] = {
        {"SequentialShutterTerminateAt", "GetCamSequentialShutterTerminateAtMinMax",
         GetCamSequentialShutterTerminateAtMinMax},
        {"SequentialShutterIndex", "GetCamSequentialShutterIndexMinMax", GetCamSequentialShutterIndexMinMax},
        {"SequentialShutterEntry", "GetCamSequentialShutterEntryMinMax", GetCamSequentialShutterEntryMinMax},
    };
    for (const LimitsRow &row : rows) {
        stub.nodes[row.node].intMin = 2;
        stub.nodes[row.node].intMax = 10;
        uint32_t min = 0, max = 0;
        EXPECT_EQ(row.get(hCamera, &min, &max), 0u);
        EXPECT_EQ(min, 2u);
        EXPECT_EQ(max, 10u);
        ExpectExit(std::string(row.name) + ", *puiMin=2, *puiMax=10");
        stub.Script(Stub::Entry::Nd_GetIntMax, {0x12});
        min = max = 77;
        EXPECT_EQ(row.get(hCamera, &min, &max), 0x12u);
        EXPECT_EQ(min, 2u) << "already stored";
        EXPECT_EQ(max, 77u);
    }
}

struct FlagRow {
    const char *node, *feature;
    CAM_API_STATUS (*get)(CAM_HANDLE, bool *);
    CAM_API_STATUS (*set)(CAM_HANDLE, bool);
};

TEST_F(NodeFeatureTest, Flags)
{
    const FlagRow rows[] = {
        {"LUTEnable", "LutEnable", GetCamLutEnable, SetCamLutEnable},
        {"DPCEnable", "DpcEnable", GetCamDpcEnable, SetCamDpcEnable},
        {"SequentialShutterEnable", "SequentialShutterEnable", GetCamSequentialShutterEnable,
         SetCamSequentialShutterEnable},
    };
    for (const FlagRow &row : rows) {
        bool flag = false;
        EXPECT_EQ(row.get(hCamera, &flag), 0x102u);
        Stub::Node &node = stub.nodes[row.node];
        EXPECT_EQ(row.set(hCamera, true), 0u);
        EXPECT_TRUE(node.boolValue);
        EXPECT_EQ(row.get(hCamera, &flag), 0u);
        EXPECT_TRUE(flag);
        ExpectExit("GetCam" + std::string(row.feature) + ", *pbEnable=1");
        node.access = CAM_NODE_ACCESS_MODE_RO;
        EXPECT_EQ(row.set(hCamera, false), 0x807u);
        EXPECT_TRUE(node.boolValue);
        node.access = CAM_NODE_ACCESS_MODE_WO;
        EXPECT_EQ(row.get(hCamera, &flag), 0x806u);
        EXPECT_EQ(row.set(hCamera, false), 0u);
    }
}

struct ChoiceRow {
    const char *node, *argument; ///< the log's, behind "*pe"
    const char *symbols[2];      ///< of 0 and 1, which are all
    CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *);
    CAM_API_STATUS (*set)(CAM_HANDLE, uint32_t);
};

TEST_F(NodeFeatureTest, Choices)
{
    const ChoiceRow rows[] = {
        {"FrameSynchronization",
         "Sync",
         {"Off", "Bus"},
         GetPlain<GetCamFrameSynchronization>,
         SetPlain<SetCamFrameSynchronization>},
        {"TriggerActivation",
         "TriggerActivation",
         {"FallingEdge", "RisingEdge"},
         GetPlain<GetCamTriggerActivation>,
         SetPlain<SetCamTriggerActivation>},
    };
    for (const ChoiceRow &row : rows) {
        Stub::Node &node = stub.nodes[row.node];
        for (const uint32_t value : {0u, 1u}) {
            uint32_t got = 77;
            EXPECT_EQ(row.set(hCamera, value), 0u);
            EXPECT_EQ(node.text, row.symbols[value]);
            EXPECT_EQ(row.get(hCamera, &got), 0u);
            EXPECT_EQ(got, value);
            ExpectExit(std::string("GetCam") + row.node + ", *pe" + row.argument + "=" + std::to_string(value));
        }
        for (const uint32_t none : {2u, 0xFFFFFFFFu})
            EXPECT_EQ(row.set(hCamera, none), 0xDu);
        uint32_t got = 77;
        node.text = "Line0";
        EXPECT_EQ(row.get(hCamera, &got), 0xFFFFFFFFu);
        node.access = CAM_NODE_ACCESS_MODE_WO;
        EXPECT_EQ(row.get(hCamera, &got), 0x806u);
        EXPECT_EQ(got, 77u);
        node.access = CAM_NODE_ACCESS_MODE_RO;
        EXPECT_EQ(row.set(hCamera, 1), 0x807u);
        EXPECT_EQ(node.text, "Line0");
    }
}

TEST_F(NodeFeatureTest, SymbolsAreWrittenUnderTheFeaturesOwnName)
{
    stub.nodes["FrameSynchronization"];
    SetCamFrameSynchronization(hCamera, CAM_FRAME_SYNCHRONIZATION_BUS);
    const Lines calls = TakeCalls();
    EXPECT_EQ(calls.back(), "Nd_SetEnumStrValue(0x600000, \"Bus\", true)");
    EXPECT_THAT(TakeLog(),
                ::testing::Contains(EnterLine("Nd_SetEnumStrValue2, hCam=0x11, hNode=0x600000, pszBuf=Bus")));
}

} // namespace
} // namespace Orvi::Testing
