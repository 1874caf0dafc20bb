// Images into the application's own memory.

#include "tests/e2e/RequestChannel.h"

namespace Orvi::Testing {

using RequestModeTest = VirtualCameraTest;

/// An image that is what its information says, with the block id that it should have.
void ExpectGood(const Delivered &done)
{
    EXPECT_EQ(done.info.uiStatus, 0u);
    EXPECT_EQ(done.info.ullValidPayloadSize, done.size);
    if (done.image != nullptr) {
        EXPECT_EQ(DrawnBlockId(done.image, done.info.uiPixelFormat), done.info.ullBlockId);
    }
}

TEST_F(RequestModeTest, EveryPixelFormatDeliversItsOwnBytes)
{
    const CAM_HANDLE hCam = Open();
    const std::vector<PixelFormat> formats = PixelFormats(hCam);
    ASSERT_GE(formats.size(), 4u);
    for (const PixelFormat &format : formats) {
        SCOPED_TRACE(format.name);
        SetEnum(hCam, "PixelFormat", format.name.c_str());
        RequestChannel channel(hCam, 3);
        const auto width = static_cast<uint32_t>(GetInt(hCam, "Width"));
        const auto height = static_cast<uint32_t>(GetInt(hCam, "Height"));
        channel.EnqueueAll();
        channel.Start();
        uint64_t last = 0;
        for (int i = 0; i < 5; ++i) {
            const Delivered done = channel.Next();
            ExpectGood(done);
            EXPECT_EQ(done.size, format.ImageBytes(width, height));
            EXPECT_EQ(done.info.uiPixelFormat, format.code);
            EXPECT_EQ(done.info.uiWidth, width);
            EXPECT_EQ(done.info.uiHeight, height);
            if (i > 0) {
                EXPECT_EQ(done.info.ullBlockId, last + 1) << "an unthrottled camera waits for a buffer";
            }
            last = done.info.ullBlockId;
            channel.Enqueue(done.hRequest);
        }
        channel.Stop();
        channel.Flush();
        EXPECT_EQ(channel.LostCount(), 0u);
    }
}

TEST_F(RequestModeTest, TwoCamerasStreamAtOnce)
{
    const CAM_HANDLE hCams[] = {Open(0), Open(1)};
    SetEnum(hCams[1], "PixelFormat", "RGB8");
    RequestChannel first(hCams[0], 4), second(hCams[1], 4);
    RequestChannel *channels[] = {&first, &second};
    for (RequestChannel *channel : channels) {
        channel->EnqueueAll();
        channel->Start();
    }
    uint64_t last[2] = {};
    for (int i = 0; i < 100; ++i)
        for (int c = 0; c < 2; ++c) {
            const Delivered done = channels[c]->Next();
            ExpectGood(done);
            if (i > 0) {
                EXPECT_EQ(done.info.ullBlockId, last[c] + 1);
            }
            last[c] = done.info.ullBlockId;
            channels[c]->Enqueue(done.hRequest);
        }
    for (RequestChannel *channel : channels)
        channel->Stop();
}

TEST_F(RequestModeTest, ThousandRoundsOfStartAndStopLoseNoRequest)
{
    const CAM_HANDLE hCam = Open();
    constexpr std::size_t buffers = 3;
    RequestChannel channel(hCam, buffers);
    for (int round = 0; round < Rounds(1000, 300) && !HasFailure(); ++round) {
        channel.EnqueueAll();
        channel.Start();
        ExpectGood(channel.Next());
        channel.Stop();
        channel.Flush();
        for (std::size_t rest = 1; rest < buffers; ++rest) {
            const Delivered done = channel.Next();
            EXPECT_TRUE(done.info.uiStatus == 0 || done.info.uiStatus == CAM_API_STS_FLUSH_REQUESTED)
                << std::hex << done.info.uiStatus;
        }
        EXPECT_FALSE(channel.TryNext()) << "more requests than there are";
    }
}

TEST_F(RequestModeTest, BufferSmallerThanTheImageGetsWhatFits)
{
    const CAM_HANDLE hCam = Open();
    constexpr uint32_t small = 100;
    RequestChannel channel(hCam, 2, small);
    ASSERT_GT(channel.PayloadSize(), small);
    channel.EnqueueAll();
    channel.Start();
    const Delivered done = channel.Next();
    EXPECT_EQ(done.info.uiStatus, CAM_API_STS_UNEXPECTED_BUFFER_SIZE);
    EXPECT_EQ(done.info.ullValidPayloadSize, small);
    EXPECT_EQ(DrawnBlockId(done.image), done.info.ullBlockId);
    channel.Stop();
}

TEST_F(RequestModeTest, BuffersOfNoSizeAndNoMemoryAreRefused)
{
    RequestChannel channel(Open(), 1);
    std::byte memory[16];
    CAM_HANDLE hRequest = 0;
    EXPECT_EQ(Strm_CreateRequest(channel.Stream(), memory, 0, &hRequest), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Strm_CreateRequest(channel.Stream(), nullptr, 16, &hRequest), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(Strm_CreateRequest(channel.Stream(), memory, 16, nullptr), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(hRequest, 0u);
}

TEST_F(RequestModeTest, CallerThatNeverQueuesHarmsNobody)
{
    const CAM_HANDLE hCam = Open();
    WriteWord(hCam, Virtual::unthrottled, 0);
    RequestChannel channel(hCam, 2);
    channel.Start();
    AwaitDrops(hCam, 3);
    EXPECT_FALSE(channel.TryNext());
    channel.Stop();
    channel.EnqueueAll();
    channel.Start();
    ExpectGood(channel.Next());
    channel.Stop();
}

TEST_F(RequestModeTest, SlowConsumerLosesWholeImagesAndEachIsCounted)
{
    const CAM_HANDLE hCam = Open();
    WriteWord(hCam, Virtual::unthrottled, 0);
    RequestChannel channel(hCam, 2);
    channel.EnqueueAll();
    channel.Start();
    std::optional<uint64_t> last;
    uint64_t gaps = 0;
    for (int round = 0; round < 3 && !HasFailure(); ++round) {
        // All buffers are full from here on until they are queued again.
        const Delivered full[] = {channel.Next(), channel.Next()};
        for (const Delivered &done : full) {
            ExpectGood(done);
            if (last) {
                EXPECT_GT(done.info.ullBlockId, *last);
                EXPECT_EQ(done.info.uiLostBlocks, done.info.ullBlockId - *last - 1);
                gaps += done.info.ullBlockId - *last - 1;
            }
            last = done.info.ullBlockId;
        }
        AwaitDrops(hCam, 2);
        for (const Delivered &done : full)
            channel.Enqueue(done.hRequest);
    }
    const Delivered end = channel.Next();
    gaps += end.info.ullBlockId - *last - 1;
    channel.Stop();
    channel.Flush();
    while (const std::optional<Delivered> rest = channel.TryNext())
        gaps += rest->info.uiLostBlocks;
    EXPECT_GE(gaps, 6u);
    EXPECT_EQ(channel.LostCount(), gaps);
}

} // namespace Orvi::Testing
