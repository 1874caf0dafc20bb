// Features behind a selector, nodes on every camera: what is selected first, and what then.

#include "tests/features/FeatureTest.h"

#include <algorithm>

namespace Orvi::Testing {

using SelectedFeatureTest = FeatureTest;

/// The selector refuses what is not its entry.
void AcceptOnly(Stub::Transport &stub, std::initializer_list<std::string> symbols)
{
    stub.on.Nd_SetEnumStrValue = [&stub, symbols = std::vector(symbols)](CAM_HANDLE node, const char *symbol,
                                                                         bool) -> CAM_API_STATUS {
        if (std::find(symbols.begin(), symbols.end(), symbol) == symbols.end())
            return CAM_API_STS_GENICAM_ERR;
        stub.FindNode(node)->text = symbol;
        return 0;
    };
}

TEST_F(SelectedFeatureTest, BalanceRatioSelectsByEitherName)
{
    Stub::Node &selector = stub.nodes["BalanceRatioSelector"];
    Stub::Node &ratio = stub.nodes["BalanceRatio"];
    ratio.floatValue = 1.5;
    ratio.floatMin = 0.5;
    ratio.floatMax = 4;
    double value = 0, min = 0, max = 0;
    EXPECT_EQ(GetCamBalanceRatio(hCamera, CAM_BALANCE_RATIO_SELECTOR_RED, &value), 0u);
    EXPECT_EQ(selector.text, "Red");
    EXPECT_EQ(value, 1.5);
    ExpectExit("GetCamBalanceRatio, *pdBalanceRatio=" + LogReal(1.5));
    AcceptOnly(stub, {"R", "B"});
    EXPECT_EQ(SetCamBalanceRatio(hCamera, CAM_BALANCE_RATIO_SELECTOR_BLUE, 4), 0u);
    EXPECT_EQ(selector.text, "B");
    EXPECT_EQ(ratio.floatValue, 4);
    EXPECT_EQ(SetCamBalanceRatio(hCamera, CAM_BALANCE_RATIO_SELECTOR_RED, 4.1), 0xDu);
    EXPECT_EQ(SetCamBalanceRatio(hCamera, CAM_BALANCE_RATIO_SELECTOR_RED, 0.4), 0xDu);
    EXPECT_EQ(GetCamBalanceRatioMinMax(hCamera, CAM_BALANCE_RATIO_SELECTOR_RED, &min, &max), 0u);
    EXPECT_EQ(min, 0.5);
    EXPECT_EQ(max, 4);
    ExpectExit("GetCamBalanceRatioMinMax, *pdBalanceRatioMin=" + LogReal(0.5) + ", *pdBalanceRatioMax=" + LogReal(4));
    // Neither name: the second refusal is the status.
    stub.Script(Stub::Entry::Nd_SetEnumStrValue, {0x12, 0x13});
    EXPECT_EQ(GetCamBalanceRatio(hCamera, CAM_BALANCE_RATIO_SELECTOR_RED, &value), 0x13u);
    Forget();
    for (const uint32_t none : {0u, 3u, 0xFFFFFFFFu}) {
        const auto selected = static_cast<CAM_BALANCE_RATIO_SELECTOR_TYPE>(none);
        EXPECT_EQ(GetCamBalanceRatio(hCamera, selected, &value), 0xDu);
        EXPECT_EQ(SetCamBalanceRatio(hCamera, selected, 1), 0xDu);
        EXPECT_EQ(GetCamBalanceRatioMinMax(hCamera, selected, &min, &max), 0xDu);
    }
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(SelectedFeatureTest, ColorCorrectionMatrixSelectsRowAndColumn)
{
    const char *elements[][2] = {{"R", "G"}, {"R", "B"}, {"G", "R"}, {"G", "B"}, {"B", "R"}, {"B", "G"}};
    Stub::Node &row = stub.nodes["ColorCorrectionMatrixSelectorI"];
    Stub::Node &column = stub.nodes["ColorCorrectionMatrixSelectorJ"];
    Stub::Node &matrix = stub.nodes["ColorCorrectionMatrix"];
    matrix.floatMin = -2;
    matrix.floatMax = 2;
    for (uint32_t element = 0; element < 6; ++element) {
        const auto type = static_cast<CAM_COLOR_CORRECTION_MATRIX_TYPE>(element);
        EXPECT_EQ(SetCamColorCorrectionMatrix(hCamera, type, 0.25 * element), 0u);
        EXPECT_EQ(row.text, elements[element][0]);
        EXPECT_EQ(column.text, elements[element][1]);
        double value = 0, min = 0, max = 0;
        EXPECT_EQ(GetCamColorCorrectionMatrix(hCamera, type, &value), 0u);
        EXPECT_EQ(value, 0.25 * element);
        EXPECT_EQ(GetCamColorCorrectionMatrixMinMax(hCamera, type, &min, &max), 0u);
        EXPECT_EQ(min, -2);
        EXPECT_EQ(max, 2);
    }
    EXPECT_EQ(SetCamColorCorrectionMatrix(hCamera, CAM_COLOR_CORRECTION_MATRIX_RG, 2.5), 0xDu);
    Forget();
    double value = 0;
    EXPECT_EQ(SetCamColorCorrectionMatrix(hCamera, static_cast<CAM_COLOR_CORRECTION_MATRIX_TYPE>(6), 1), 0xDu);
    EXPECT_EQ(GetCamColorCorrectionMatrix(hCamera, static_cast<CAM_COLOR_CORRECTION_MATRIX_TYPE>(0xFFFFFFFF), &value),
              0xDu);
    EXPECT_EQ(TakeCalls(), Lines{});
    const std::pair<CAM_NODE_ACCESS_MODE, CAM_API_STATUS> refusals[] = {
        {CAM_NODE_ACCESS_MODE_NI, 0x11}, {CAM_NODE_ACCESS_MODE_NA, 0x808}, {CAM_NODE_ACCESS_MODE_RO, 0x807}};
    for (Stub::Node *node : {&row, &column}) {
        for (const auto &[access, status] : refusals) {
            node->access = access;
            EXPECT_EQ(GetCamColorCorrectionMatrix(hCamera, CAM_COLOR_CORRECTION_MATRIX_RG, &value), status);
        }
        node->access = CAM_NODE_ACCESS_MODE_WO;
        EXPECT_EQ(GetCamColorCorrectionMatrix(hCamera, CAM_COLOR_CORRECTION_MATRIX_RG, &value), 0u);
    }
}

TEST_F(SelectedFeatureTest, LutValueIsValueOrEntry)
{
    Stub::Node &index = stub.nodes["LUTIndex"];
    index.intMax = 255;
    uint32_t value = 77;
    EXPECT_EQ(GetCamLutValue(hCamera, 5, &value), 0x102u);
    EXPECT_EQ(index.intValue, 5) << "the selection stays";
    stub.nodes["LUTEntry"].intValue = 8;
    EXPECT_EQ(GetCamLutValue(hCamera, 6, &value), 0u);
    EXPECT_EQ(value, 8u);
    ExpectExit("GetCamLutValue, *puiLutValue=8");
    EXPECT_EQ(SetCamLutValue(hCamera, 7, 9), 0u);
    EXPECT_EQ(stub.nodes["LUTEntry"].intValue, 9);
    stub.nodes["LUTValue"].intValue = 10;
    EXPECT_EQ(GetCamLutValue(hCamera, 7, &value), 0u);
    EXPECT_EQ(value, 10u);
    // Both refuse: LUTValue's status.
    stub.nodes["LUTValue"].access = CAM_NODE_ACCESS_MODE_NA;
    stub.nodes["LUTEntry"].access = CAM_NODE_ACCESS_MODE_NI;
    EXPECT_EQ(GetCamLutValue(hCamera, 7, &value), 0x808u);
    EXPECT_EQ(SetCamLutValue(hCamera, 7, 9), 0x808u);
    const std::size_t writes = stub.CountOf(Stub::Entry::Nd_SetIntValue);
    EXPECT_EQ(SetCamLutValue(hCamera, 256, 9), 0xDu);
    EXPECT_EQ(GetCamLutValue(hCamera, 0xFFFFFFFF, &value), 0xDu);
    EXPECT_EQ(stub.CountOf(Stub::Entry::Nd_SetIntValue), writes);
    index.access = CAM_NODE_ACCESS_MODE_RO;
    EXPECT_EQ(GetCamLutValue(hCamera, 7, &value), 0x807u);
}

TEST_F(SelectedFeatureTest, DpcPositionIsReadAndWrittenByDifferentIndices)
{
    uint32_t x = 77, y = 77;
    stub.nodes["DPCIndex"];
    stub.nodes["DPCEntryX"].intValue = 3;
    EXPECT_EQ(GetCamDpcPosition(hCamera, 1, &x, &y), 0x102u);
    EXPECT_EQ(x, 77u);
    stub.nodes["DPCEntryY"].intValue = 4;
    EXPECT_EQ(GetCamDpcPosition(hCamera, 1, &x, &y), 0u);
    EXPECT_EQ(stub.nodes["DPCIndex"].intValue, 1);
    EXPECT_EQ(x, 3u);
    EXPECT_EQ(y, 4u);
    ExpectExit("GetCamDpcPosition, *puiEntryX=3, *puiEntryY=4");
    EXPECT_EQ(SetCamDpcPosition(hCamera, 2, 5, 6), 0x102u) << "DPCIndex does not help";
    EXPECT_EQ(stub.nodes["DPCEntryX"].intValue, 3);
    stub.nodes["LUTIndex"];
    EXPECT_EQ(SetCamDpcPosition(hCamera, 2, 5, 6), 0u);
    EXPECT_EQ(stub.nodes["LUTIndex"].intValue, 2);
    EXPECT_EQ(stub.nodes["DPCIndex"].intValue, 1);
    EXPECT_EQ(stub.nodes["DPCEntryX"].intValue, 5);
    EXPECT_EQ(stub.nodes["DPCEntryY"].intValue, 6);
    stub.nodes["DPCEntryX"].intMax = 4;
    EXPECT_EQ(SetCamDpcPosition(hCamera, 2, 5, 7), 0xDu);
    EXPECT_EQ(stub.nodes["DPCEntryY"].intValue, 6);
}

TEST_F(SelectedFeatureTest, SequentialShutterEntrySelectsItsIndex)
{
    stub.nodes["SequentialShutterIndex"].intMax = 15;
    stub.nodes["SequentialShutterEntry"].intMax = 3;
    uint32_t entry = 0;
    EXPECT_EQ(SetCamSequentialShutterEntry(hCamera, 4, 2), 0u);
    EXPECT_EQ(stub.nodes["SequentialShutterIndex"].intValue, 4);
    EXPECT_EQ(GetCamSequentialShutterEntry(hCamera, 5, &entry), 0u);
    EXPECT_EQ(stub.nodes["SequentialShutterIndex"].intValue, 5);
    EXPECT_EQ(entry, 2u);
    ExpectExit("GetCamSequentialShutterEntry, *puiEntry=2");
    EXPECT_EQ(SetCamSequentialShutterEntry(hCamera, 16, 2), 0xDu);
    EXPECT_EQ(SetCamSequentialShutterEntry(hCamera, 6, 4), 0xDu);
    EXPECT_EQ(stub.nodes["SequentialShutterEntry"].intValue, 2);
}

} // namespace Orvi::Testing
