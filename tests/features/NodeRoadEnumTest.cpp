// Choices on cameras that have nodes alone.

#include "tests/features/NodeLayer.h"
#include "tests/features/PlainEnum.h"

#include <gmock/gmock.h>

namespace Orvi::Testing {

using NodeRoadEnumTest = NodeLayerTest;

struct EnumRow {
    const char *node;
    std::vector<std::pair<uint32_t, const char *>> values;
    CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *);
    CAM_API_STATUS (*set)(CAM_HANDLE, uint32_t);
};

#define BOTH(feature) GetPlain<GetCam##feature>, SetPlain<SetCam##feature>

const EnumRow s_rows[] = {
    // clang-format off
    {"ImageFormatSelector", {{0, "Format0"}, {1, "Format1"}, {2, "Format2"}}, BOTH(ImageFormatSelector)},
    {"AcquisitionFrameRateControl", {{0, "NoSpecify"}, {1, "Manual"}}, BOTH(AcquisitionFrameRateControl)},
    {"ImageBufferMode", {{0, "Off"}, {1, "On"}}, BOTH(ImageBufferMode)},
    {"TriggerSource", {{0, "Line0"}, {0x40, "Software"}}, BOTH(TriggerSource)},
    {"TimerTriggerSource", {{0, "Off"}, {32, "Line0Active"}, {104, "FrameTrigger"}, {124, "ExposureStart"}, {125, "ExposureEnd"}},
     BOTH(TimerTriggerSource)},
    {"BalanceWhiteAuto", {{1, "Off"}, {3, "Once"}}, BOTH(BalanceWhiteAuto)},
    // clang-format on
};

TEST_F(NodeRoadEnumTest, ValuesAreSymbols)
{
    for (const EnumRow &row : s_rows) {
        SCOPED_TRACE(row.node);
        FakeNode &node = layer.nodes[row.node];
        uint32_t read = 0;
        std::set<uint32_t> known;
        for (const auto &[value, symbol] : row.values) {
            known.insert(value);
            EXPECT_EQ(row.set(hNodeCamera, value), 0u);
            EXPECT_EQ(node.text, symbol);
            EXPECT_EQ(row.get(hNodeCamera, &read), 0u);
            EXPECT_EQ(read, value);
        }
        TakeWrites();
        for (const uint32_t value : {0u, 1u, 2u, 3u, 5u, 33u, 0x41u, 126u, 128u, 0xFFFFFFFFu})
            if (known.count(value) == 0) {
                EXPECT_EQ(row.set(hNodeCamera, value), 0xDu) << value;
            }
        EXPECT_EQ(TakeWrites(), Lines{});
        for (const char *symbol : {"", "off", "Other", "Format00"}) {
            node.text = symbol;
            read = 77;
            EXPECT_EQ(row.get(hNodeCamera, &read), 0xFFFFFFFFu) << symbol;
            EXPECT_EQ(read, 77u);
        }
        node.access = CAM_NODE_ACCESS_MODE_NA;
        EXPECT_EQ(row.get(hNodeCamera, &read), 0x808u);
        EXPECT_EQ(row.set(hNodeCamera, row.values[0].first), 0x808u);
        EXPECT_EQ(row.set(hOtherCamera, row.values[0].first), 7u);
        if (std::string(row.node) != "BalanceWhiteAuto") {
            EXPECT_EQ(row.get(hOtherCamera, &read), 7u);
        }
    }
}

TEST_F(NodeRoadEnumTest, OtherNamesAreReadAndTried)
{
    const struct {
        std::size_t row;
        uint32_t value;
        const char *other;
    } cases[] = {{3, 0x40, "TriggerSoftware"}, {5, 1, "Manual"}, {5, 3, "AutoOnce"}};
    for (const auto &one : cases) {
        const EnumRow &row = s_rows[one.row];
        FakeNode &node = layer.nodes[row.node];
        node.entries = {one.other};
        EXPECT_EQ(row.set(hNodeCamera, one.value), 0u) << one.other;
        uint32_t read = 0;
        EXPECT_EQ(row.get(hNodeCamera, &read), 0u);
        EXPECT_EQ(read, one.value);
        layer.script["SetEnumStrValue2"] = {0x12, 0x13};
        EXPECT_EQ(row.set(hNodeCamera, one.value), 0x12u) << "both refuse: the first refusal";
    }
}

TEST_F(NodeRoadEnumTest, GainAutoIsLenient)
{
    FakeNode &node = layer.nodes["GainAuto"];
    const auto set = SetPlain<SetCamGainAuto>;
    const auto get = GetPlain<GetCamGainAuto>;
    EXPECT_EQ(set(hNodeCamera, 1), 0u);
    EXPECT_EQ(node.text, "Off");
    EXPECT_EQ(set(hNodeCamera, 2), 0u);
    EXPECT_EQ(node.text, "Continuous");
    layer.script["SetEnumStrValue2"] = {0x11};
    EXPECT_EQ(set(hNodeCamera, 2), 0u);
    EXPECT_EQ(node.text, "Auto");
    TakeWrites();
    layer.script["SetEnumStrValue2"] = {0x12};
    EXPECT_EQ(set(hNodeCamera, 2), 0u);
    for (const uint32_t mode : {0u, 3u, 0xFFFFFFFFu})
        EXPECT_EQ(set(hNodeCamera, mode), 0u);
    EXPECT_EQ(TakeWrites(), Lines{}) << "\"Auto\" only where the mode is not implemented; other modes not at all";
    layer.throwFrom = "SetEnumStrValue2";
    EXPECT_EQ(set(hNodeCamera, 2), 0u);
    layer.throwFrom.clear();
    EXPECT_EQ(set(hOtherCamera, 2), 7u);
    uint32_t mode = 0;
    for (const auto &[symbol, value] : {std::pair{"Off", 1u}, {"Continuous", 2u}, {"Auto", 2u}}) {
        node.text = symbol;
        EXPECT_EQ(get(hNodeCamera, &mode), 0u);
        EXPECT_EQ(mode, value);
    }
    node.text = "Once";
    EXPECT_EQ(get(hNodeCamera, &mode), 0xFFFFFFFFu);
    EXPECT_EQ(get(hOtherCamera, &mode), 7u);
    layer.nodes.clear();
    EXPECT_EQ(set(hNodeCamera, 2), 0u);
}

TEST_F(NodeRoadEnumTest, ExposureTimeControlHasTwoNodes)
{
    const auto set = SetPlain<SetCamExposureTimeControl>;
    const auto get = GetPlain<GetCamExposureTimeControl>;
    FakeNode &automatic = layer.nodes["ExposureAuto"];
    FakeNode &control = layer.nodes["ExposureTimeControl"];
    EXPECT_EQ(set(hNodeCamera, 1), 0u);
    EXPECT_EQ(set(hNodeCamera, 2), 0u);
    EXPECT_EQ(TakeWrites(), (Lines{"ExposureAuto=Off", "ExposureAuto=Continuous"}));
    EXPECT_EQ(set(hNodeCamera, 0), 0x808u);
    for (const uint32_t mode : {3u, 4u, 0xFFFFFFFFu})
        EXPECT_EQ(set(hNodeCamera, mode), 0xDu);
    EXPECT_EQ(set(hOtherCamera, 1), 7u);
    automatic.access = CAM_NODE_ACCESS_MODE_NI;
    EXPECT_EQ(set(hNodeCamera, 1), 0u);
    EXPECT_EQ(set(hNodeCamera, 2), 0u);
    EXPECT_EQ(TakeWrites(), (Lines{"ExposureTimeControl=Manual", "ExposureTimeControl=Auto"}));
    uint32_t mode = 0;
    EXPECT_EQ(get(hNodeCamera, &mode), 0u);
    EXPECT_EQ(mode, 2u);
    control.access = CAM_NODE_ACCESS_MODE_NA;
    EXPECT_EQ(set(hNodeCamera, 1), 0x11u) << "the first refusal";
    automatic.access = CAM_NODE_ACCESS_MODE_NA;
    control.access = CAM_NODE_ACCESS_MODE_RW;
    EXPECT_EQ(set(hNodeCamera, 1), 0x808u) << "only where it is not implemented is the other node tried";
    automatic.access = CAM_NODE_ACCESS_MODE_RW;
    const std::pair<const char *, uint32_t> symbols[] = {
        {"NoSpecify", 0}, {"Manual", 1}, {"Off", 1}, {"Continuous", 2}, {"Auto", 2}};
    for (const auto &[symbol, value] : symbols) {
        automatic.text = symbol;
        EXPECT_EQ(get(hNodeCamera, &mode), 0u);
        EXPECT_EQ(mode, value);
    }
    automatic.text = "Once";
    EXPECT_EQ(get(hNodeCamera, &mode), 0xFFFFFFFFu);
}

TEST_F(NodeRoadEnumTest, TriggerSequenceIsTwoNodes)
{
    const auto set = SetPlain<SetCamTriggerSequence>;
    const auto get = GetPlain<GetCamTriggerSequence>;
    FakeNode &mode = layer.nodes["ExposureMode"];
    FakeNode &selector = layer.nodes["TriggerSelector"];
    layer.nodes["TriggerSequence"];
    EXPECT_EQ(set(hNodeCamera, 1), 0u);
    EXPECT_EQ(TakeWrites(), (Lines{"TriggerSelector=FrameStart", "ExposureMode=TriggerWidth"}));
    EXPECT_EQ(set(hNodeCamera, 6), 0u);
    EXPECT_EQ(TakeWrites(), (Lines{"ExposureMode=Timed", "TriggerSelector=FrameBurstStart"}));
    for (const uint32_t value : {0u, 2u, 99u}) {
        EXPECT_EQ(set(hNodeCamera, value), 0u);
        EXPECT_EQ(TakeWrites(), (Lines{"ExposureMode=Timed", "TriggerSelector=FrameStart"}));
    }
    mode.access = CAM_NODE_ACCESS_MODE_NI;
    EXPECT_EQ(set(hNodeCamera, 1), 0u);
    EXPECT_EQ(TakeWrites(), (Lines{"TriggerSelector=FrameStart", "TriggerSequence=TriggerSequence1"}));
    EXPECT_EQ(set(hNodeCamera, 6), 0u);
    EXPECT_EQ(TakeWrites(), (Lines{"TriggerSequence=TriggerSequence0", "TriggerSelector=FrameBurstStart"}));
    EXPECT_EQ(set(hNodeCamera, 0), 0u);
    EXPECT_EQ(TakeWrites(), (Lines{"TriggerSequence=TriggerSequence0", "TriggerSelector=FrameStart"}));
    // A failing step ends it.
    mode.access = CAM_NODE_ACCESS_MODE_NA;
    EXPECT_EQ(set(hNodeCamera, 6), 0x808u);
    EXPECT_EQ(TakeWrites(), Lines{});
    mode.access = CAM_NODE_ACCESS_MODE_RW;
    selector.access = CAM_NODE_ACCESS_MODE_RO;
    EXPECT_EQ(set(hNodeCamera, 1), 0x807u);
    EXPECT_EQ(TakeWrites(), Lines{});
    EXPECT_EQ(set(hOtherCamera, 1), 7u);

    const struct {
        const char *mode, *selector;
        uint32_t sequence;
    } rows[] = {{"TriggerSequence1", "FrameStart", 1}, {"TriggerWidth", "FrameBurstStart", 1},
                {"TriggerSequence6", "FrameStart", 6}, {"TriggerSequence0", "FrameBurstStart", 6},
                {"Timed", "FrameBurstStart", 6},       {"Timed", "FrameStart", 0},
                {"TriggerSequence0", "Other", 0}};
    uint32_t sequence = 0;
    for (const auto &row : rows)
        for (FakeNode *node : {&mode, &layer.nodes["TriggerSequence"]}) {
            mode.access = node == &mode ? CAM_NODE_ACCESS_MODE_RO : CAM_NODE_ACCESS_MODE_NI;
            node->text = row.mode;
            selector.text = row.selector;
            EXPECT_EQ(get(hNodeCamera, &sequence), 0u);
            EXPECT_EQ(sequence, row.sequence) << row.mode << row.selector;
        }
    layer.nodes["TriggerSequence"].text = "TriggerSequence2";
    EXPECT_EQ(get(hNodeCamera, &sequence), 0xFFFFFFFFu);
    EXPECT_EQ(get(hOtherCamera, &sequence), 7u);
}

TEST_F(NodeRoadEnumTest, LineSourceSelectsTheLineFirst)
{
    const std::pair<uint32_t, const char *> sources[] = {{0, "Off"},
                                                         {17, "VD"},
                                                         {32, "UserOutput"},
                                                         {64, "Timer0Active"},
                                                         {99, "AcquisitionActive"},
                                                         {106, "FrameTriggerWait"},
                                                         {107, "FrameActive"},
                                                         {115, "FrameTransferActive"},
                                                         {123, "ExposureActive"}};
    layer.nodes["LineSelector"];
    FakeNode &node = layer.nodes["LineSource"];
    const auto line = [](uint32_t number) { return static_cast<CAM_LINE_SELECTOR_TYPE>(number); };
    const auto source = [](uint32_t number) { return static_cast<CAM_LINE_SOURCE_TYPE>(number); };
    CAM_LINE_SOURCE_TYPE read = {};
    for (uint32_t number = 0; number < 3; ++number)
        for (const auto &[value, symbol] : sources) {
            EXPECT_EQ(SetCamLineSource(hNodeCamera, line(number), source(value)), 0u);
            EXPECT_EQ(TakeWrites(),
                      (Lines{"LineSelector=Line" + std::to_string(number), std::string("LineSource=") + symbol}));
            EXPECT_EQ(GetCamLineSource(hNodeCamera, line(number), &read), 0u);
            EXPECT_EQ(read, value);
            TakeWrites();
        }
    for (const uint32_t number : {3u, 0xFFFFFFFFu}) {
        EXPECT_EQ(SetCamLineSource(hNodeCamera, line(number), source(0)), 0xDu);
        EXPECT_EQ(GetCamLineSource(hNodeCamera, line(number), &read), 0xDu);
    }
    EXPECT_EQ(TakeWrites(), Lines{});
    for (const uint32_t value : {1u, 65u, 124u})
        EXPECT_EQ(SetCamLineSource(hNodeCamera, line(0), source(value)), 0xDu);
    EXPECT_EQ(TakeWrites(), (Lines{"LineSelector=Line0", "LineSelector=Line0", "LineSelector=Line0"}));
    node.entries = {"FrameTransfer"};
    EXPECT_EQ(SetCamLineSource(hNodeCamera, line(0), source(115)), 0u);
    EXPECT_EQ(GetCamLineSource(hNodeCamera, line(0), &read), 0u);
    EXPECT_EQ(read, CAM_LINE_SOURCE_FRAME_TRANSFER_ACTIVE);
    layer.script["SetEnumStrValue2"] = {0, 0x12, 0x13};
    EXPECT_EQ(SetCamLineSource(hNodeCamera, line(0), source(115)), 0x12u);
    node.text = "Timer1Active";
    EXPECT_EQ(GetCamLineSource(hNodeCamera, line(0), &read), 0xFFFFFFFFu);
    TakeWrites();
    EXPECT_EQ(SetCamLineSource(hOtherCamera, line(0), source(0)), 7u);
    EXPECT_EQ(GetCamLineSource(hOtherCamera, line(0), &read), 7u);
    EXPECT_EQ(TakeWrites(), (Lines{"LineSelector=Line0", "LineSelector=Line0"})) << "the line is selected all the same";
}

} // namespace Orvi::Testing
