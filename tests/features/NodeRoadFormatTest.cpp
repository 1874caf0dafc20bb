// Pixel format and test pattern on cameras that have nodes alone.

#include "tests/features/NodeLayer.h"
#include "tests/features/PlainEnum.h"

namespace Orvi::Testing {

using NodeRoadFormatTest = NodeLayerTest;

TEST_F(NodeRoadFormatTest, TestPatternHasTwoNodes)
{
    const auto set = SetPlain<SetCamTestPattern>;
    const auto get = GetPlain<GetCamTestPattern>;
    const char *symbols[] = {"Off",       "Black",    "White",           "BrightGrey", "DarkGrey", "GreyHorizontalRamp",
                             "GreyScale", "ColorBar", "GreyVerticalRamp"};
    FakeNode &selector = layer.nodes["TestImageSelector"];
    uint32_t pattern = 0;
    for (uint32_t value = 0; value < 9; ++value) {
        EXPECT_EQ(set(hNodeCamera, value), 0u);
        EXPECT_EQ(TakeWrites(), Lines{std::string("TestImageSelector=") + symbols[value]});
        EXPECT_EQ(get(hNodeCamera, &pattern), 0u);
        EXPECT_EQ(pattern, value);
    }
    for (const uint32_t value : {9u, 128u, 0xFFFFFFFFu})
        EXPECT_EQ(set(hNodeCamera, value), 0xDu);
    EXPECT_EQ(set(hOtherCamera, 0), 7u);
    // Only the greys have another node.
    selector.access = CAM_NODE_ACCESS_MODE_NI;
    EXPECT_EQ(set(hNodeCamera, 3), 0x11u);
    layer.nodes["TestPattern"];
    EXPECT_EQ(set(hNodeCamera, 3), 0u);
    EXPECT_EQ(get(hNodeCamera, &pattern), 0u);
    EXPECT_EQ(pattern, 3u);
    EXPECT_EQ(set(hNodeCamera, 4), 0u);
    EXPECT_EQ(TakeWrites(), (Lines{"TestPattern=GreyA", "TestPattern=GreyB"}));
    EXPECT_EQ(set(hNodeCamera, 2), 0x11u);
    EXPECT_EQ(get(hOtherCamera, &pattern), 7u);
}

TEST_F(NodeRoadFormatTest, PixelFormatIsOneNodeOrAPair)
{
    const auto set = SetPlain<SetCamPixelFormat>;
    const auto get = GetPlain<GetCamPixelFormat>;
    const struct {
        uint32_t format;
        const char *name, *other, *coding, *otherCoding, *size;
    } rows[] = {
        // clang-format off
        {0x01080001, "Mono8", "Mono8", "Mono", "Mono", "Bpp8"},
        {0x01100003, "Mono10", "Mono10", "Mono", "Mono", "Bpp10"},
        {0x01100005, "Mono12", "Mono12", "Mono", "Mono", "Bpp12"},
        {0x01100007, "Mono16", "Mono16", "Mono", "Mono", "Bpp16"},
        {0x01080008, "BayerGR8", "BayerGR8", "BayerGR", "BayerGR", "Bpp8"},
        {0x0110000C, "BayerGR10", "BayerGR10", "BayerGR", "BayerGR", "Bpp10"},
        {0x01100010, "BayerGR12", "BayerGR12", "BayerGR", "BayerGR", "Bpp12"},
        {0x01080009, "BayerRG8", "BayerRG8", "BayerRG", "BayerRG", "Bpp8"},
        {0x0110000D, "BayerRG10", "BayerRG10", "BayerRG", "BayerRG", "Bpp10"},
        {0x01100011, "BayerRG12", "BayerRG12", "BayerRG", "BayerRG", "Bpp12"},
        {0x0108000A, "BayerGB8", "BayerGB8", "BayerGB", "BayerGB", "Bpp8"},
        {0x0110000E, "BayerGB10", "BayerGB10", "BayerGB", "BayerGB", "Bpp10"},
        {0x01100012, "BayerGB12", "BayerGB12", "BayerGB", "BayerGB", "Bpp12"},
        {0x0108000B, "BayerBG8", "BayerBG8", "BayerBG", "BayerBG", "Bpp8"},
        {0x0110000F, "BayerBG10", "BayerBG10", "BayerBG", "BayerBG", "Bpp10"},
        {0x01100013, "BayerBG12", "BayerBG12", "BayerBG", "BayerBG", "Bpp12"},
        {0x02180014, "RGB8", "RGB8Packed", "RGB", "RGBPacked", "Bpp24"},
        {0x02180015, "BGR8", "BGR8Packed", "BGR", "BGRPacked", "Bpp24"},
        {0x02300019, "BGR10", "BGR10", "BGR", "BGRPacked", "Bpp48"},
        {0x0230001B, "BGR12", "BGR12", "BGR", "BGRPacked", "Bpp48"},
        {0x020C001E, "YUV411Packed", "YUV411_8_UYYVYY", "YUV411Packed", "YUV411Packed", "Bpp12"},
        {0x0210001F, "YUV422Packed", "YUV422_8_UYVY", "YUV422Packed", "YUV422Packed", "Bpp16"},
        {0x02180020, "YUV444Packed", "YUV8_UYV", "YUV444Packed", "YUV444Packed", "Bpp24"},
        // clang-format on
    };
    for (const auto &row : rows) {
        FakeNode &node = layer.nodes["PixelFormat"];
        uint32_t format = 0;
        EXPECT_EQ(set(hNodeCamera, row.format), 0u);
        EXPECT_EQ(node.text, row.name);
        EXPECT_EQ(get(hNodeCamera, &format), 0u);
        EXPECT_EQ(format, row.format);
        node.entries = {row.other};
        EXPECT_EQ(set(hNodeCamera, row.format), 0u);
        EXPECT_EQ(node.text, row.other);
        EXPECT_EQ(get(hOtherCamera, &format), 0u) << "reading asks the node on every other camera";
        EXPECT_EQ(format, row.format);
        layer.nodes.clear();
        EXPECT_EQ(set(hNodeCamera, row.format), 0x102u);
        layer.nodes["PixelCoding"];
        layer.nodes["PixelSize"];
        TakeWrites();
        EXPECT_EQ(set(hNodeCamera, row.format), 0u);
        EXPECT_EQ(TakeWrites(),
                  (Lines{std::string("PixelCoding=") + row.coding, std::string("PixelSize=") + row.size}));
        layer.nodes["PixelCoding"].entries = {row.otherCoding};
        EXPECT_EQ(set(hNodeCamera, row.format), 0u);
        EXPECT_EQ(TakeWrites().front(), std::string("PixelCoding=") + row.otherCoding);
        layer.nodes["PixelSize"].access = CAM_NODE_ACCESS_MODE_RO;
        EXPECT_EQ(set(hNodeCamera, row.format), 0x807u);
        layer.nodes.clear();
    }
    uint32_t format = 0;
    EXPECT_EQ(set(hNodeCamera, 0x01080002), 0xDu);
    EXPECT_EQ(set(hOtherCamera, 0x01080001), 7u);
    layer.nodes["PixelFormat"].text = "Mono12Packed";
    EXPECT_EQ(get(hNodeCamera, &format), 0xFFFFFFFFu);
    EXPECT_EQ(format, 0u);
    layer.nodes["PixelFormat"].access = CAM_NODE_ACCESS_MODE_NA;
    EXPECT_EQ(get(hNodeCamera, &format), 0x808u);
}

} // namespace Orvi::Testing
