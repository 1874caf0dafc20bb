// A thousand images in all pixel formats, none of which may differ in a single byte from the picture of its settings.
// It also prints a sum over all bytes: whatever lies between camera and application, it stays the same.

#include "tests/effects/EffectTest.h"

namespace Orvi::Testing {

namespace {

constexpr uint32_t imagesInAll = 1000, imageWidth = 64, imageHeight = 32;
constexpr uint64_t fnvBasis = 0xCBF29CE484222325, fnvPrime = 0x100000001B3;

uint64_t Add(uint64_t sum, const std::vector<std::byte> &bytes)
{
    for (const std::byte byte : bytes)
        sum = (sum ^ static_cast<uint64_t>(byte)) * fnvPrime;
    return sum;
}

} // namespace

using ThousandImagesTest = EffectTest;

TEST_F(ThousandImagesTest, AreThePicturesOfTheirSettings)
{
    SetRoi(imageWidth, imageHeight, 256, 128);
    const std::vector<PixelFormat> formats = PixelFormats(hCam);
    uint64_t sum = fnvBasis;
    uint32_t images = 0;
    for (uint32_t round = 0; images < imagesInAll && !HasFailure(); ++round) {
        const PixelFormat &format = formats[round % formats.size()];
        SCOPED_TRACE(format.name);
        SetEnum(hCam, "PixelFormat", format.name.c_str());
        settings_.pixelFormat = format.code;
        settings_.exposure = 2000 + 500 * round;
        ASSERT_EQ(SetCamExposureTime(hCam, settings_.exposure), 0u);
        RequestChannel channel(hCam, 4);
        channel.EnqueueAll();
        channel.Start();
        constexpr uint32_t imagesInARow = 20;
        for (uint64_t block = 0; block < imagesInARow && !HasFailure(); ++block, ++images) {
            const Delivered delivered = channel.Next();
            ASSERT_NE(delivered.image, nullptr);
            const Picture picture = Copy(delivered);
            EXPECT_EQ(picture.info.ullBlockId, block) << "none is lost";
            ExpectPicture(picture);
            sum = Add(sum, picture.bytes);
            channel.Enqueue(delivered.hRequest);
        }
        channel.Stop();
        EXPECT_EQ(channel.LostCount(), 0u);
    }
    std::printf("%u images, sum %016llx\n", images, static_cast<unsigned long long>(sum));
}

} // namespace Orvi::Testing
