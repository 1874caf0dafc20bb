// Pixel formats.

#include "tests/effects/EffectTest.h"

#include <algorithm>
#include <string_view>

namespace Orvi::Testing {
namespace {

/// The formats that have a pair of registers, and their names.
struct FormatRow {
    CAM_PIXEL_FORMAT code;
    const char *name;
    uint32_t coding, size;
};
// clang-format off
constexpr FormatRow formats[] = {
    {CAM_PIXEL_FORMAT_MONO8,           "Mono8",           0x00,  8},
    {CAM_PIXEL_FORMAT_MONO10,          "Mono10",          0x00, 10},
    {CAM_PIXEL_FORMAT_MONO12,          "Mono12",          0x00, 12},
    {CAM_PIXEL_FORMAT_MONO16,          "Mono16",          0x00, 16},
    {CAM_PIXEL_FORMAT_BAYERGR8,        "BayerGR8",        0x60,  8},
    {CAM_PIXEL_FORMAT_BAYERGR10,       "BayerGR10",       0x60, 10},
    {CAM_PIXEL_FORMAT_BAYERGR12,       "BayerGR12",       0x60, 12},
    {CAM_PIXEL_FORMAT_BAYERRG8,        "BayerRG8",        0x63,  8},
    {CAM_PIXEL_FORMAT_BAYERRG10,       "BayerRG10",       0x63, 10},
    {CAM_PIXEL_FORMAT_BAYERRG12,       "BayerRG12",       0x63, 12},
    {CAM_PIXEL_FORMAT_BAYERGB8,        "BayerGB8",        0x66,  8},
    {CAM_PIXEL_FORMAT_BAYERGB10,       "BayerGB10",       0x66, 10},
    {CAM_PIXEL_FORMAT_BAYERGB12,       "BayerGB12",       0x66, 12},
    {CAM_PIXEL_FORMAT_BAYERBG8,        "BayerBG8",        0x69,  8},
    {CAM_PIXEL_FORMAT_BAYERBG10,       "BayerBG10",       0x69, 10},
    {CAM_PIXEL_FORMAT_BAYERBG12,       "BayerBG12",       0x69, 12},
    {CAM_PIXEL_FORMAT_RGB8,            "RGB8",            0x20, 24},
    {CAM_PIXEL_FORMAT_BGR8,            "BGR8",            0x2A, 24},
    {CAM_PIXEL_FORMAT_YUV411_8_UYYVYY, "YUV411_8_UYYVYY", 0x42, 12},
    {CAM_PIXEL_FORMAT_YUV422_8_UYVY,   "YUV422_8_UYVY",   0x4A, 16},
};
// clang-format on
constexpr uint64_t codingValue = 0x2020DC, sizeValue = 0x2020FC;

class FormatEffectTest : public EffectTest {
  protected:
    /// Format, payload size and image are those of the row, whichever road asks.
    void ExpectFormat(const FormatRow &row)
    {
        SCOPED_TRACE(row.name);
        settings_.pixelFormat = row.code;
        CAM_PIXEL_FORMAT format{};
        EXPECT_EQ(GetCamPixelFormat(hCam, &format), 0u);
        EXPECT_EQ(format, row.code);
        EXPECT_EQ(EnumNode("PixelFormat"), row.name);
        EXPECT_EQ(PayloadSize(), 160u * 120u * (row.code >> 16 & 0xFF) / 8) << "the code tells the bits of a pixel";
        ExpectPicture();
    }
};

TEST_F(FormatEffectTest, EveryFormatWithARegisterPairSetByFunction)
{
    ASSERT_EQ(SetCamGain(hCam, 2.5), 0u); // so that low bits are not all zero
    settings_.gain = 250;
    for (const FormatRow &row : formats) {
        ASSERT_EQ(SetCamPixelFormat(hCam, row.code), 0u) << row.name;
        EXPECT_EQ(ReadWord(hCam, codingValue), row.coding) << row.name;
        EXPECT_EQ(ReadWord(hCam, sizeValue), row.size) << row.name;
        ExpectFormat(row);
    }
}

struct Colour {
    double red, green, blue; ///< of 1
};

/// The bytes of four pixels of one colour, from an even column on, as the format's name says.
std::vector<int> BytesOf(const FormatRow &row, const Colour &colour, bool isOddLine)
{
    const auto &[red, green, blue] = colour;
    const auto byte = [](double value) { return static_cast<int>(std::clamp(value, 0.0, 255.0)); };
    const int r = byte(255 * red), g = byte(255 * green), b = byte(255 * blue);
    // Full range, as in JPEG files.
    const int y = byte(255 * (0.299 * red + 0.587 * green + 0.114 * blue));
    const int u = byte(128 + 255 * (-0.168736 * red - 0.331264 * green + 0.5 * blue));
    const int v = byte(128 + 255 * (0.5 * red - 0.418688 * green - 0.081312 * blue));
    const std::string_view name = row.name;
    if (name == "RGB8")
        return {r, g, b, r, g, b, r, g, b, r, g, b};
    if (name == "BGR8")
        return {b, g, r, b, g, r, b, g, r, b, g, r};
    if (name == "YUV411_8_UYYVYY")
        return {u, y, y, v, y, y};
    if (name == "YUV422_8_UYVY")
        return {u, y, v, y, u, y, v, y};
    // BayerGR begins with green and red; the next line has the other two, green below red and blue below green.
    const auto other = [](char letter) { return letter == 'R' ? 'B' : letter == 'B' ? 'R' : 'G'; };
    const char first = isOddLine ? other(name[6]) : name[5], second = isOddLine ? other(name[5]) : name[6];
    std::vector<int> bytes;
    for (const char letter : {first, second, first, second}) {
        const double light = letter == 'R' ? red : letter == 'G' ? green : blue;
        const int value = static_cast<int>(light * ((1 << row.size) - 1));
        bytes.push_back(value & 0xFF);
        if (row.size > 8)
            bytes.push_back(value >> 8);
    }
    return bytes;
}

// The other tests compare with the picture that the camera's own encoder makes.
TEST_F(FormatEffectTest, ColoursAreBytesInTheOrderOfTheFormatsName)
{
    constexpr Colour bars[] = {{1, 1, 1}, {1, 1, 0}, {0, 1, 1}, {0, 1, 0}, {1, 0, 1}, {1, 0, 0}, {0, 0, 1}, {0, 0, 0}};
    constexpr std::size_t width = 160, barWidth = 20, line = 110; // below the block id and what moves
    ASSERT_EQ(SetCamTestPattern(hCam, CAM_TEST_PATTERN_COLOR_BAR), 0u);
    for (const FormatRow &row : formats) {
        if (std::string_view(row.name).starts_with("Mono"))
            continue;
        ASSERT_EQ(SetCamPixelFormat(hCam, row.code), 0u);
        const Picture picture = Take();
        const std::size_t bits = row.code >> 16 & 0xFF;
        for (std::size_t y = line; y < line + 2; ++y)
            for (std::size_t bar = 0; bar < std::size(bars); ++bar) {
                const std::vector<int> wanted = BytesOf(row, bars[bar], y % 2 != 0);
                const std::size_t at = (y * width + bar * barWidth + barWidth / 2 - 2) * bits / 8;
                for (std::size_t i = 0; i < wanted.size(); ++i)
                    ASSERT_NEAR(std::to_integer<int>(picture.bytes.at(at + i)), wanted[i], 1)
                        << row.name << ", line " << y << ", bar " << bar << ", byte " << i;
            }
    }
}

TEST_F(FormatEffectTest, MoreBitsAreFinerStepsOfTheSameGrey)
{
    ASSERT_EQ(SetCamTestPattern(hCam, CAM_TEST_PATTERN_HORIZONTAL_RAMP), 0u);
    for (const FormatRow &row : formats) {
        if (row.coding >= 0x20 && row.coding < 0x60)
            continue; // colours
        ASSERT_EQ(SetCamPixelFormat(hCam, row.code), 0u);
        const Picture picture = Take();
        for (std::size_t x = 0; x < 160; ++x) {
            const std::size_t at = 110 * 160 + x;
            const auto byte = [&](std::size_t index) { return std::to_integer<uint32_t>(picture.bytes.at(index)); };
            const uint32_t value = row.size > 8 ? byte(2 * at) | byte(2 * at + 1) << 8 : byte(at);
            ASSERT_EQ(value >> (row.size - 8), x) << row.name;
        }
    }
}

TEST_F(FormatEffectTest, EveryFormatSetByNode)
{
    for (const FormatRow &row : formats) {
        SetEnum(hCam, "PixelFormat", row.name);
        ExpectFormat(row);
    }
}

TEST_F(FormatEffectTest, EveryFormatSetByItsRegisters)
{
    for (const FormatRow &row : formats) {
        WriteWord(hCam, codingValue, row.coding);
        WriteWord(hCam, sizeValue, row.size);
        ExpectFormat(row);
    }
}

TEST_F(FormatEffectTest, PackedColoursAreAnotherCodeForTheSameFormat)
{
    WriteWord(hCam, codingValue, 0x22);
    WriteWord(hCam, sizeValue, 24);
    ExpectFormat({CAM_PIXEL_FORMAT_RGB8, "RGB8", 0x22, 24});
}

TEST_F(FormatEffectTest, FormatsWithoutARegisterPairAreRefused)
{
    ASSERT_EQ(SetCamPixelFormat(hCam, CAM_PIXEL_FORMAT_MONO12), 0u);
    for (const CAM_PIXEL_FORMAT format : {CAM_PIXEL_FORMAT_BGR10, CAM_PIXEL_FORMAT_BGR12, CAM_PIXEL_FORMAT_YUV8_UYV,
                                          CAM_PIXEL_FORMAT{0}, CAM_PIXEL_FORMAT{0x01080002}})
        EXPECT_EQ(SetCamPixelFormat(hCam, format), CAM_API_STS_INVALID_PARAMETER) << std::hex << format;
    ExpectFormat(formats[2]);
}

TEST_F(FormatEffectTest, FormatsWithWindowsAndMirrors)
{
    SetRoi(84, 34, 900, 600);
    ASSERT_EQ(SetCamReverseX(hCam, settings_.reverseX = true), 0u);
    for (const CAM_PIXEL_FORMAT format : {CAM_PIXEL_FORMAT_BAYERBG12, CAM_PIXEL_FORMAT_YUV411_8_UYYVYY,
                                          CAM_PIXEL_FORMAT_YUV422_8_UYVY, CAM_PIXEL_FORMAT_BGR8}) {
        ASSERT_EQ(SetCamPixelFormat(hCam, format), 0u);
        settings_.pixelFormat = format;
        ExpectPicture();
    }
}

} // namespace
} // namespace Orvi::Testing
