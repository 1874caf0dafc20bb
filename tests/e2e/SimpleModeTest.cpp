// Images in the transport's own buffers.

#include "tests/e2e/SimpleChannel.h"

#include <atomic>

namespace Orvi::Testing {

namespace {

/// What a callback has seen.
struct Seen {
    std::atomic<int> images{0};
    std::atomic<int> wrong{0};
};

void OnImage(CAM_HANDLE, const void *image, uint32_t size, const CAM_STREAM_REQUEST_INFO *info, void *context)
{
    auto *seen = static_cast<Seen *>(context);
    if (size != info->ullValidPayloadSize || DrawnBlockId(image, info->uiPixelFormat) != info->ullBlockId)
        ++seen->wrong;
    ++seen->images;
}

} // namespace

using SimpleModeTest = VirtualCameraTest;

TEST_F(SimpleModeTest, EveryPixelFormatArrivesByCallbackAndByReading)
{
    const CAM_HANDLE hCam = Open();
    for (const PixelFormat &format : PixelFormats(hCam)) {
        SCOPED_TRACE(format.name);
        SetEnum(hCam, "PixelFormat", format.name.c_str());
        Seen seen;
        SimpleChannel channel(hCam);
        EXPECT_EQ(Strm_SetCallbackImageAcquired(channel.Stream(), OnImage, &seen), 0u);
        channel.Start();
        while (seen.images < 5 && !HasFailure())
            channel.AwaitImage();
        std::vector<unsigned char> image(channel.PayloadSize());
        auto size = static_cast<uint32_t>(image.size());
        CAM_STREAM_REQUEST_INFO info;
        EXPECT_EQ(Strm_ReadCurrentImage(channel.Stream(), image.data(), &size, &info), 0u);
        EXPECT_EQ(size, image.size());
        EXPECT_EQ(info.uiPixelFormat, format.code);
        EXPECT_EQ(DrawnBlockId(image.data(), info.uiPixelFormat), info.ullBlockId);
        channel.Stop();
        EXPECT_EQ(seen.wrong, 0);
    }
}

TEST_F(SimpleModeTest, NothingCanBeReadBeforeTheFirstImage)
{
    SimpleChannel channel(Open());
    unsigned char byte;
    uint32_t size = 1, index = 77;
    EXPECT_EQ(Strm_ReadCurrentImage(channel.Stream(), &byte, &size, nullptr), CAM_API_STS_EMPTY_COMPLETE_QUEUE);
    EXPECT_EQ(Strm_GetCurrentBufferIndex(channel.Stream(), &index), CAM_API_STS_EMPTY_COMPLETE_QUEUE);
    EXPECT_EQ(index, 77u);
}

TEST_F(SimpleModeTest, BufferTooSmallIsToldTheSize)
{
    SimpleChannel channel(Open());
    channel.Start();
    channel.AwaitImage();
    unsigned char byte = 0x5A;
    uint32_t size = 1;
    EXPECT_EQ(Strm_ReadCurrentImage(channel.Stream(), &byte, &size, nullptr), CAM_API_STS_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, channel.PayloadSize());
    EXPECT_EQ(byte, 0x5A);
    channel.Stop();
}

TEST_F(SimpleModeTest, LockedBufferKeepsItsImage)
{
    SimpleChannel channel(Open(), 3);
    Seen seen;
    EXPECT_EQ(Strm_SetCallbackImageAcquired(channel.Stream(), OnImage, &seen), 0u);
    channel.Start();
    channel.AwaitImage();
    uint32_t index = 0;
    void *image = nullptr;
    EXPECT_EQ(Strm_GetCurrentBufferIndex(channel.Stream(), &index), 0u);
    ASSERT_LT(index, 3u);
    EXPECT_EQ(Strm_LockBuffer(channel.Stream(), index, &image), 0u);
    ASSERT_NE(image, nullptr);
    const uint64_t id = DrawnBlockId(image);
    const int before = seen.images;
    while (seen.images < before + 20 && !HasFailure())
        channel.AwaitImage();
    EXPECT_EQ(DrawnBlockId(image), id);
    EXPECT_EQ(Strm_UnlockBuffer(channel.Stream(), index), 0u);
    EXPECT_EQ(Strm_UnlockBuffer(channel.Stream(), index), CAM_API_STS_INVALID_PARAMETER) << "not locked any more";
    EXPECT_EQ(Strm_LockBuffer(channel.Stream(), 3, &image), CAM_API_STS_INVALID_PARAMETER);
    channel.Stop();
    EXPECT_EQ(seen.wrong, 0);
}

TEST_F(SimpleModeTest, ThousandRoundsOfStartAndStop)
{
    SimpleChannel channel(Open());
    Seen seen;
    EXPECT_EQ(Strm_SetCallbackImageAcquired(channel.Stream(), OnImage, &seen), 0u);
    for (int round = 0; round < Rounds(1000, 50) && !HasFailure(); ++round) {
        const int before = seen.images;
        channel.Start();
        while (seen.images == before && !HasFailure())
            channel.AwaitImage();
        channel.Stop();
    }
    EXPECT_EQ(seen.wrong, 0);
}

} // namespace Orvi::Testing
