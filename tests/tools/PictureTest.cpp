#include "tools/orvicam/Picture.h"
#include "tools/orvicam/Failure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Orvi::Tool;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Property;

namespace {

CAM_STREAM_REQUEST_INFO Info(std::uint32_t format, std::uint32_t width, std::uint32_t height, std::uint32_t padding = 0)
{
    CAM_STREAM_REQUEST_INFO info{};
    info.uiPixelFormat = format;
    info.uiWidth = width;
    info.uiHeight = height;
    info.uiPaddingX = padding;
    return info;
}

Picture Take(const CAM_STREAM_REQUEST_INFO &info, const std::vector<std::uint8_t> &bytes)
{
    return TakeApart(info, std::as_bytes(std::span(bytes)));
}

} // namespace

TEST(Picture, Mono8KeepsItsBytesAndSkipsTheLinePadding)
{
    const Picture picture = Take(Info(0x01080001, 2, 2, 1), {1, 2, 99, 3, 4, 99});
    EXPECT_THAT(picture.samples, ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(picture.bits, 8u);
    EXPECT_EQ(picture.channels, 1u);
}

TEST(Picture, Mono12IsLittleEndian)
{
    const Picture picture = Take(Info(0x01100005, 2, 1), {0x34, 0x02, 0xFF, 0x0F});
    EXPECT_THAT(picture.samples, ElementsAre(0x234, 0xFFF));
    EXPECT_EQ(picture.bits, 12u);
}

TEST(Picture, Mono12pIsPackedLowestBitFirst)
{
    EXPECT_THAT(Take(Info(0x010C0047, 2, 1), {0x21, 0x43, 0x65}).samples, ElementsAre(0x321, 0x654));
}

TEST(Picture, Mono10pFillsFourPixelsIntoFiveBytes)
{
    // 0x3FF, 0x000, 0x155, 0x2AA
    EXPECT_THAT(Take(Info(0x010A0046, 4, 1), {0xFF, 0x03, 0x50, 0x95, 0xAA}).samples,
                ElementsAre(0x3FF, 0x000, 0x155, 0x2AA));
}

TEST(Picture, Bgr8BecomesRedFirst)
{
    const Picture picture = Take(Info(0x02180015, 2, 1), {3, 2, 1, 6, 5, 4});
    EXPECT_THAT(picture.samples, ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_EQ(picture.channels, 3u);
}

TEST(Picture, MissingBytesAreAFailureNotAnOverrun)
{
    EXPECT_THROW(Take(Info(0x01080001, 2, 2), {1, 2, 3}), Failure);
    EXPECT_THROW(Take(Info(0x01080001, 0, 2), {1, 2, 3}), Failure);
    EXPECT_THROW(Take(Info(0x02300033, UINT32_MAX, UINT32_MAX), {1, 2, 3}), Failure);
}

TEST(Picture, UnknownFormatSaysHowItCanBeWritten)
{
    EXPECT_EQ(PixelFormatName(0x02100032), "0x02100032");
    try {
        Take(Info(0x02100032, 1, 1), {1, 2});
        FAIL();
    } catch (const Failure &failure) {
        EXPECT_THAT(failure.what(), HasSubstr("0x02100032"));
        EXPECT_THAT(failure.what(), HasSubstr("--format raw"));
    }
}
