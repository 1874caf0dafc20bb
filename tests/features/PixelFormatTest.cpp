// Pixel formats on the register road.

#include "tests/features/FeatureTest.h"

namespace Orvi::Testing {

constexpr uint64_t codingBlock = 0x2020C0, bitsBlock = 0x2020E0;
constexpr uint32_t none = 0xFFFFFFFF;

struct FormatRow {
    uint32_t format, coding, bits;
    const char *name, *otherName;
};

const FormatRow s_formats[] = {
    // clang-format off
    {0x01080001, 0x00, 8,  "Mono8", "Mono8"},         {0x01100003, 0x00, 10, "Mono10", "Mono10"},
    {0x01100005, 0x00, 12, "Mono12", "Mono12"},       {0x01100007, 0x00, 16, "Mono16", "Mono16"},
    {0x01080008, 0x60, 8,  "BayerGR8", "BayerGR8"},   {0x0110000C, 0x60, 10, "BayerGR10", "BayerGR10"},
    {0x01100010, 0x60, 12, "BayerGR12", "BayerGR12"}, {0x01080009, 0x63, 8,  "BayerRG8", "BayerRG8"},
    {0x0110000D, 0x63, 10, "BayerRG10", "BayerRG10"}, {0x01100011, 0x63, 12, "BayerRG12", "BayerRG12"},
    {0x0108000A, 0x66, 8,  "BayerGB8", "BayerGB8"},   {0x0110000E, 0x66, 10, "BayerGB10", "BayerGB10"},
    {0x01100012, 0x66, 12, "BayerGB12", "BayerGB12"}, {0x0108000B, 0x69, 8,  "BayerBG8", "BayerBG8"},
    {0x0110000F, 0x69, 10, "BayerBG10", "BayerBG10"}, {0x01100013, 0x69, 12, "BayerBG12", "BayerBG12"},
    {0x02180014, 0x20, 24, "RGB8", "RGB8Packed"},     {0x02180015, 0x2A, 24, "BGR8", "BGR8Packed"},
    {0x02300019, none, 48, "BGR10", "BGR10"},         {0x0230001B, none, 48, "BGR12", "BGR12"},
    {0x020C001E, 0x42, 12, "YUV411Packed", "YUV411_8_UYYVYY"},
    {0x0210001F, 0x4A, 16, "YUV422Packed", "YUV422_8_UYVY"},
    {0x02180020, none, 24, "YUV444Packed", "YUV8_UYV"},
    // clang-format on
};

class PixelFormatTest : public FeatureTest {
  protected:
    PixelFormatTest()
    {
        SetStreaming(false);
        for (const uint64_t block : {codingBlock, bitsBlock})
            SetBlock(block, {allAccess, 0, 0, ~0u, ~0u, ~0u, ~0u, 0});
        Forget();
    }

    void SetPair(uint32_t coding, uint32_t bits)
    {
        stub.registers[codingBlock + 0x1C] = coding;
        stub.registers[bitsBlock + 0x1C] = bits;
    }

    uint32_t Get(CAM_API_STATUS expected = 0)
    {
        auto format = static_cast<CAM_PIXEL_FORMAT>(77);
        EXPECT_EQ(GetCamPixelFormat(hCamera, &format), expected);
        return format;
    }

    CAM_API_STATUS Set(uint32_t format) { return SetCamPixelFormat(hCamera, static_cast<CAM_PIXEL_FORMAT>(format)); }
};

TEST_F(PixelFormatTest, PairsGoBothWays)
{
    for (const FormatRow &row : s_formats) {
        Forget();
        if (row.coding == none) {
            const auto before = stub.registers;
            EXPECT_EQ(Set(row.format), 0xDu) << row.name;
            EXPECT_EQ(stub.registers, before);
            continue;
        }
        SetPair(99, 99);
        EXPECT_EQ(Set(row.format), 0u) << row.name;
        EXPECT_EQ(stub.registers[codingBlock + 0x1C], row.coding) << row.name;
        EXPECT_EQ(stub.registers[bitsBlock + 0x1C], row.bits) << row.name;
        EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(0x20004, 1), ReadOf(codingBlock, 7), WriteOf(codingBlock + 0x1C),
                                         ReadOf(bitsBlock, 7), WriteOf(bitsBlock + 0x1C)}));
        EXPECT_EQ(Get(), row.format) << row.name;
        EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(codingBlock, 1), ReadOf(codingBlock + 0x1C, 1), ReadOf(bitsBlock, 1),
                                         ReadOf(bitsBlock + 0x1C, 1)}));
    }
}

TEST_F(PixelFormatTest, SecondCodingOfRgbIsOnlyRead)
{
    SetPair(0x22, 24);
    EXPECT_EQ(Get(), 0x02180014u);
    SetPair(0x22, 8);
    EXPECT_EQ(Get(), 0u);
}

TEST_F(PixelFormatTest, UnknownPairWithoutNodeIsZeroAndSuccess)
{
    for (const auto &[coding, bits] : {std::pair{0u, 9u}, {0x61u, 8u}, {none, 48u}, {none, 24u}, {0u, 24u}}) {
        SetPair(coding, bits);
        EXPECT_EQ(Get(0), 0u);
    }
    EXPECT_EQ(TakeFrame().back(), ExitLine(0, "GetCamPixelFormat, *pePixelFormat=0"));
}

TEST_F(PixelFormatTest, UnknownPairAsksTheNode)
{
    SetPair(0, 9);
    for (const FormatRow &row : s_formats)
        for (const char *name : {row.name, row.otherName}) {
            stub.nodes["PixelFormat"].text = name;
            EXPECT_EQ(Get(), row.format) << name;
        }
    for (const char *name : {"Mono", "Mono8 ", "mono8", "", "Mono10p"}) {
        stub.nodes["PixelFormat"].text = name;
        EXPECT_EQ(Get(0xFFFFFFFF), 0u) << name;
    }
    stub.nodes["PixelFormat"].text = std::string(32, 'x'); // longer than any name
    EXPECT_EQ(Get(0), 0u) << "the node's failure gives way to the registers' success";
}

TEST_F(PixelFormatTest, FailedRegistersAskTheNode)
{
    stub.nodes["PixelFormat"].text = "RGB8Packed";
    for (const uint64_t block : {codingBlock, bitsBlock}) {
        for (const RefusedInquiry &refused : readRefusals) {
            SetInquiry(block, refused.inquiry);
            EXPECT_EQ(Get(), 0x02180014u);
            stub.Script(Stub::Entry::Nd_GetNode, {0x13});
            EXPECT_EQ(Get(refused.status), 0u) << "when both fail, the registers' status";
        }
        SetInquiry(block, allAccess);
    }
    stub.Script(Stub::Entry::Cam_ReadReg, {0x12});
    stub.nodes.clear();
    EXPECT_EQ(Get(0x12), 0u);
    EXPECT_EQ(TakeFrame().back(), ExitLine(0x12, "GetCamPixelFormat"));
}

TEST_F(PixelFormatTest, UnknownFormatIsRefused)
{
    for (const uint32_t format : {0u, 1u, 0x01080002u, 0x010C0047u, none})
        EXPECT_EQ(Set(format), 0xDu);
    EXPECT_EQ(TakeLog().back(), ExitLine(0xD, "SetCamPixelFormat"));
}

TEST_F(PixelFormatTest, RefusedRegistersTryTheNodesButStayTheStatus)
{
    SetInquiry(bitsBlock, allAccess & ~writable);
    stub.nodes["PixelFormat"].text = "Mono8";
    EXPECT_EQ(Set(0x02180014), 0x807u);
    EXPECT_EQ(stub.nodes["PixelFormat"].text, "RGB8");
    EXPECT_EQ(stub.registers[codingBlock + 0x1C], 0x20u) << "the first half stays written";
    SetBlock(codingBlock + 0xC, {0, 0, 0, 0});
    EXPECT_EQ(Set(0x01080001), 0x808u);
    EXPECT_EQ(stub.nodes["PixelFormat"].text, "Mono8");
}

TEST_F(PixelFormatTest, ChecksInOrder)
{
    auto format = static_cast<CAM_PIXEL_FORMAT>(77);
    EXPECT_EQ(GetCamPixelFormat(0, nullptr), 7u);
    EXPECT_EQ(GetCamPixelFormat(hCamera, nullptr), 0xDu);
    EXPECT_EQ(GetCamPixelFormat(0, &format), 7u);
    EXPECT_EQ(format, 77u);
    EXPECT_EQ(SetCamPixelFormat(0, CAM_PIXEL_FORMAT_MONO8), 7u);
    for (const CAM_HANDLE handle : {hCameraGev, hCameraUnknown, hForeign}) {
        EXPECT_EQ(SetCamPixelFormat(handle, CAM_PIXEL_FORMAT_MONO8), 7u);
        format = CAM_PIXEL_FORMAT_MONO8;
        EXPECT_EQ(GetCamPixelFormat(handle, &format), 7u);
        EXPECT_EQ(format, 0u) << "the output is cleared before anything is asked";
    }
    EXPECT_EQ(TakeCalls(), Lines{});
    Terminate();
    EXPECT_EQ(Get(1), 0u);
    EXPECT_EQ(Set(0x01080001), 1u);
    EXPECT_EQ(TakeFrame().back(), ExitLine(1, "SetCamPixelFormat"));
}

TEST_F(PixelFormatTest, LetsNoExceptionThrough)
{
    stub.on.Cam_ReadReg = [](auto...) -> CAM_API_STATUS { throw 42; }; // NOLINT: no std::exception either
    stub.on.Nd_GetNode = [](auto...) -> CAM_API_STATUS { throw 42; };  // NOLINT
    EXPECT_EQ(Get(0xFFFFFFFF), 0u);
    EXPECT_EQ(Set(0x01080001), 0xFFFFFFFFu);
    EXPECT_EQ(TakeFrame().back(), ExitLine(0xFFFFFFFF, "SetCamPixelFormat"));
}

TEST_F(PixelFormatTest, StreamingRefuses)
{
    SetStreaming(true);
    Forget();
    const auto before = stub.registers;
    EXPECT_EQ(Set(0x01080001), 0x807u);
    EXPECT_EQ(stub.registers, before);
    EXPECT_EQ(TakeAccesses(), Lines{ReadOf(0x20004, 1)});
    EXPECT_EQ(TakeFrame(), (Lines{EnterLine("SetCamPixelFormat, hCam=0x11, ePixelFormat=17301505"),
                                  ExitLine(0x807, "SetCamPixelFormat")}));
}

} // namespace Orvi::Testing
