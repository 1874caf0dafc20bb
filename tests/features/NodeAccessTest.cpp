// The helpers of the node road, each step of them.

#include "tests/features/NodeLayer.h"

#include "features/ImageSize.h"
#include "features/NodeAccess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <functional>

namespace Orvi::Testing {

/// One helper on the node "N".
struct HelperRow {
    const char *name;
    Access access;
    std::function<CAM_API_STATUS(CAM_HANDLE, const char *)> call;
    std::function<CAM_API_STATUS()> callNull; ///< a null output; empty when there is none
    Lines calls;                              ///< after the access mode
};

int32_t s_int[3];
double s_double[2];
bool s_bool;
EnumSymbol s_symbol;

const HelperRow s_helpers[] = {
    {"GetGenIntValue",
     Access::Read,
     [](CAM_HANDLE h, const char *n) { return GetGenIntValue(h, n, &s_int[0]); },
     [] { return GetGenIntValue(1, "N", static_cast<int32_t *>(nullptr)); },
     {"GetIntValue N"}},
    {"GetGenIntMinMax",
     Access::Read,
     [](CAM_HANDLE h, const char *n) { return GetGenIntMinMax(h, n, &s_int[0], &s_int[1]); },
     [] { return GetGenIntMinMax(1, "N", &s_int[0], nullptr); },
     {"GetIntMin N", "GetIntMax N"}},
    {"GetGenIntMinMaxInc",
     Access::Read,
     [](CAM_HANDLE h, const char *n) { return GetGenIntMinMaxInc(h, n, &s_int[0], &s_int[1], &s_int[2]); },
     [] { return GetGenIntMinMaxInc(1, "N", &s_int[0], &s_int[1], nullptr); },
     {"GetIntMin N", "GetIntMax N", "GetIntInc N"}},
    {"SetGenIntValue",
     Access::Write,
     [](CAM_HANDLE h, const char *n) { return SetGenIntValue(h, n, -5); },
     nullptr,
     {"GetIntMin N", "GetIntMax N", "SetIntValue N -5 verify"}},
    {"GetGenBoolValue",
     Access::Read,
     [](CAM_HANDLE h, const char *n) { return GetGenBoolValue(h, n, &s_bool); },
     [] { return GetGenBoolValue(1, "N", nullptr); },
     {"GetBoolValue N"}},
    {"SetGenBoolValue",
     Access::Write,
     [](CAM_HANDLE h, const char *n) { return SetGenBoolValue(h, n, true); },
     nullptr,
     {"SetBoolValue N true verify"}},
    {"GetGenFloatValue",
     Access::Read,
     [](CAM_HANDLE h, const char *n) { return GetGenFloatValue(h, n, &s_double[0]); },
     [] { return GetGenFloatValue(1, "N", nullptr); },
     {"GetFloatValue N"}},
    {"GetGenFloatMinMax",
     Access::Read,
     [](CAM_HANDLE h, const char *n) { return GetGenFloatMinMax(h, n, &s_double[0], &s_double[1]); },
     [] { return GetGenFloatMinMax(1, "N", nullptr, &s_double[1]); },
     {"GetFloatMin N", "GetFloatMax N"}},
    {"SetGenFloatValue",
     Access::Write,
     [](CAM_HANDLE h, const char *n) { return SetGenFloatValue(h, n, 1.5); },
     nullptr,
     {"GetFloatMin N", "GetFloatMax N", "SetFloatValue N 1.5 verify"}},
    {"GetGenEnumStrValue",
     Access::Read,
     [](CAM_HANDLE h, const char *n) { return GetGenEnumStrValue(h, n, &s_symbol); },
     [] { return GetGenEnumStrValue(1, "N", nullptr); },
     {"GetEnumStrValue N"}},
    {"SetGenEnumStrValue",
     Access::Write,
     [](CAM_HANDLE h, const char *n) { return SetGenEnumStrValue(h, n, "E"); },
     [] { return SetGenEnumStrValue(1, "N", nullptr); },
     {"SetEnumStrValue2 N E verify"}},
};

class NodeAccessTest : public ::testing::TestWithParam<HelperRow> {
  protected:
    NodeAccessTest()
    {
        layer.Reset();
        layer.nodes["N"];
    }

    NodeLayer &layer = NodeLayer::Instance();
    const HelperRow &row = GetParam();
};

void PrintTo(const HelperRow &row, std::ostream *out) { *out << row.name; }

INSTANTIATE_TEST_SUITE_P(Helpers, NodeAccessTest, ::testing::ValuesIn(s_helpers),
                         [](const auto &one) { return std::string(one.param.name); });

TEST_P(NodeAccessTest, CallsInOrder)
{
    EXPECT_EQ(row.call(1, "N"), 0u);
    Lines calls = {"GetNode N", "GetAccessMode N"};
    calls.insert(calls.end(), row.calls.begin(), row.calls.end());
    EXPECT_EQ(layer.TakeCalls(), calls);
}

TEST_P(NodeAccessTest, ArgumentsAreCheckedFirst)
{
    EXPECT_EQ(row.call(0, nullptr), 7u);
    EXPECT_EQ(row.call(1, nullptr), 0xDu);
    if (row.callNull) {
        EXPECT_EQ(row.callNull(), 0xDu);
    }
    EXPECT_EQ(layer.TakeCalls(), Lines{});
}

TEST_P(NodeAccessTest, AccessModeDecides)
{
    const bool reads = row.access == Access::Read;
    const CAM_API_STATUS refused = reads ? 0x806 : 0x807;
    const CAM_API_STATUS statuses[] = {0x11, 0x808, reads ? refused : 0, reads ? 0 : refused, 0, refused};
    for (uint32_t mode = 0; mode < 6; ++mode) {
        layer.nodes["N"].access = static_cast<CAM_NODE_ACCESS_MODE>(mode);
        layer.TakeCalls();
        EXPECT_EQ(row.call(1, "N"), statuses[mode]) << mode;
        if (statuses[mode] != 0) {
            EXPECT_EQ(layer.TakeCalls(), (Lines{"GetNode N", "GetAccessMode N"}));
        }
    }
}

TEST_P(NodeAccessTest, FirstFailureIsTheStatus)
{
    EXPECT_EQ(row.call(1, "Other"), 0x102u);
    Lines calls = {"GetNode N", "GetAccessMode N"};
    calls.insert(calls.end(), row.calls.begin(), row.calls.end());
    for (std::size_t i = 0; i < calls.size(); ++i) {
        const std::string function = calls[i].substr(0, calls[i].find(' '));
        layer.TakeCalls();
        layer.script[function] = {0x12};
        EXPECT_EQ(row.call(1, "N"), 0x12u);
        EXPECT_EQ(layer.TakeCalls(), Lines(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(i) + 1));
        layer.throwFrom = function;
        EXPECT_EQ(row.call(1, "N"), 0xFFFFFFFFu) << function;
        layer.throwFrom.clear();
    }
}

using NodeHelperTest = NodeLayerTest;

TEST_F(NodeHelperTest, IntegersAreCutTo32Bits)
{
    layer.nodes["N"].intValue = 0x1'8000'0001;
    layer.nodes["N"].intMax = 0x7'0000'0003;
    int32_t value = 0, min = 0, max = 0;
    EXPECT_EQ(GetGenIntValue(1, "N", &value), 0u);
    EXPECT_EQ(value, static_cast<int32_t>(0x80000001));
    EXPECT_EQ(GetGenIntMinMax(1, "N", &min, &max), 0u);
    EXPECT_EQ(max, 3);
    uint32_t word = 0;
    EXPECT_EQ(GetGenIntValue(1, "N", &word), 0u);
    EXPECT_EQ(word, 0x80000001u);
}

TEST_F(NodeHelperTest, OutputsAreWrittenOnSuccessButAMinimumBeforeItsMaximum)
{
    layer.nodes["N"];
    int32_t min = 7, max = 7, inc = 7;
    layer.script["GetIntMax"] = {0x12};
    EXPECT_EQ(GetGenIntMinMaxInc(1, "N", &min, &max, &inc), 0x12u);
    EXPECT_EQ(min, -1000);
    EXPECT_EQ(max, 7);
    double dMin = 7, dMax = 7;
    layer.script["GetFloatMax"] = {0x12};
    EXPECT_EQ(GetGenFloatMinMax(1, "N", &dMin, &dMax), 0x12u);
    EXPECT_EQ(dMin, -1000);
    EXPECT_EQ(dMax, 7);
}

TEST_F(NodeHelperTest, LimitsAreInclusive)
{
    FakeNode &node = layer.nodes["N"];
    node.intMin = -2;
    node.intMax = 0x100000000;
    EXPECT_EQ(SetGenIntValue(1, "N", -2), 0u);
    EXPECT_EQ(SetGenIntValue(1, "N", -3), 0xDu);
    EXPECT_EQ(SetGenIntValue(1, "N", uint32_t{0xFFFFFFFF}), 0u) << "as a signed word it is -1";
    EXPECT_EQ(node.intValue, -1);
    EXPECT_EQ(SetGenIntValue(1, "N", 5), 0u) << "limits have 64 bits";
    node.floatMin = -0.5;
    node.floatMax = 2;
    EXPECT_EQ(SetGenFloatValue(1, "N", -0.5), 0u);
    EXPECT_EQ(SetGenFloatValue(1, "N", 2), 0u);
    EXPECT_EQ(SetGenFloatValue(1, "N", 2.0000001), 0xDu);
    EXPECT_EQ(SetGenFloatValue(1, "N", -0.5000001), 0xDu);
    EXPECT_EQ(SetGenFloatValue(1, "N", std::nan("")), 0xDu);
    EXPECT_EQ(node.floatValue, 2);
}

TEST_F(NodeHelperTest, SymbolsHaveUpTo31Characters)
{
    EnumSymbol symbol;
    layer.nodes["N"].text = std::string(31, 'a');
    EXPECT_EQ(GetGenEnumStrValue(1, "N", &symbol), 0u);
    EXPECT_EQ(symbol.Text(), std::string(31, 'a'));
    layer.nodes["N"].text = std::string(32, 'a');
    EXPECT_EQ(GetGenEnumStrValue(1, "N", &symbol), 0xEu);
}

TEST_F(NodeHelperTest, CommandsArePolledWithoutAPauseUntilDone)
{
    FakeNode &command = layer.nodes["C"];
    command.access = CAM_NODE_ACCESS_MODE_NI; // nobody asks
    EXPECT_EQ(ExecuteGenCommand(1, "C", 50), 0u);
    EXPECT_EQ(layer.TakeCalls(), (Lines{"GetNode C", "CmdExecute C verify", "GetCmdIsDone C"}));
    command.done = false;
    EXPECT_EQ(ExecuteGenCommand(1, "C", 50), 0u);
    EXPECT_EQ(layer.TakeCalls().size(), 52u);
    layer.script["GetCmdIsDone"] = {0x12, 0x12};
    command.done = true;
    EXPECT_EQ(ExecuteGenCommand(1, "C", 50), 0u);
    EXPECT_EQ(layer.TakeCalls().size(), 5u) << "a poll that fails is one that is not done";
    EXPECT_EQ(ExecuteGenCommand(1, "D", 50), 0x102u);
    layer.script["CmdExecute"] = {0x12};
    EXPECT_EQ(ExecuteGenCommand(1, "C", 50), 0x12u);
    for (const char *function : {"GetNode", "CmdExecute", "GetCmdIsDone"}) {
        layer.throwFrom = function;
        EXPECT_EQ(ExecuteGenCommand(1, "C", 50), 0xFFFFFFFFu);
    }
}

TEST_F(NodeHelperTest, UserSetsAreWaitedForAlsoWithoutACamera)
{
    layer.nodes["UserSetDone"].boolValue = true;
    EXPECT_TRUE(CheckUserSetComplete(1));
    EXPECT_EQ(layer.TakeCalls(),
              (Lines{"GetNode UserSetDone", "GetAccessMode UserSetDone", "GetBoolValue UserSetDone"}));
    layer.throwFrom = "GetBoolValue";
    for (const auto &[hCam, calls] : {std::pair{CAM_HANDLE{0}, 0u}, {CAM_HANDLE{1}, 150u}}) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(CheckUserSetComplete(hCam));
        EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500)) << "50 polls of 10 ms";
        EXPECT_EQ(layer.TakeCalls().size(), calls);
    }
}

TEST_F(NodeHelperTest, ImageSizeHasFourFields)
{
    for (uint64_t word = 0; word < 17; ++word)
        layer.registers[0x202060 + 4 * word] = 1;
    layer.registers[0x202060] = 0xC3000000;
    EXPECT_EQ(WriteImageSizeIIDCReg(hRegisterCamera, static_cast<IIDC_IMAGE_SIZE_TYPE>(4), 1), 0xFFFFFFFFu);
    EXPECT_EQ(WriteImageSizeIIDCReg(0, IIDC_IMAGE_SIZE_WIDTH, 1), 7u);
}

} // namespace Orvi::Testing
