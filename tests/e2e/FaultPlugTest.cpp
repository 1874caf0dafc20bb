// Cameras that are pulled out, and put in again, at the worst of times.

#include "tests/e2e/FaultTest.h"
#include "tests/e2e/SimpleChannel.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace Orvi::Testing {

class FaultPlugTest : public FaultTest {
  protected:
    static constexpr int64_t soon = 20; // ms until the camera is plugged in again

    /// The camera may be gone before it has answered.
    void UnplugAfter(uint64_t milliseconds) const
    {
        const CAM_API_STATUS status = TryArmFault(
            hCam, {.moment = FaultMoment::Time, .at = milliseconds, .action = FaultAction::Unplug, .amount = soon});
        EXPECT_TRUE(status == 0 || status == CAM_API_STS_CAMERA_NOT_RESPONDING) << std::hex << status;
    }
    /// From now on images are taken by TakeImage(), and the plug is pulled when the frame of that block begins.
    void UnplugAtFrame(uint64_t block) const
    {
        SetEnum(hCam, "TriggerMode", "On");
        SetEnum(hCam, "TriggerSource", "Software");
        Arm({.at = block, .action = FaultAction::Unplug, .amount = soon});
    }
    /// For callbacks, which run behind the stream's signal.
    template <class Condition>
    static void Await(Condition isTrue)
    {
        for (uint32_t waited = 0; !isTrue() && waited < patience; ++waited) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        EXPECT_TRUE(isTrue());
    }
    /// The camera may be gone before it has answered.
    void TakeImage() const
    {
        const uint32_t impulse = 8;
        Cam_WriteReg(hCam, 0x2070DC, 1, &impulse);
    }
    /// After an enumeration in the same process the camera is as good as new.
    void ExpectStreamsAgain()
    {
        EXPECT_EQ(Cam_Close(hCam), 0u);
        AwaitCameras(2);
        hCam = Open();
        RequestChannel channel(hCam, 2);
        channel.EnqueueAll();
        channel.Start();
        for (uint64_t block = 0; block < 5; ++block) {
            const Received received = Take(channel);
            EXPECT_EQ(received.status, 0u);
            EXPECT_EQ(received.block, block);
            EXPECT_TRUE(received.isWhole);
        }
        channel.Stop();
    }
    CAM_API_STATUS Read() const
    {
        uint32_t value = 0;
        return Cam_ReadReg(hCam, 0, 1, &value);
    }
};

TEST_F(FaultPlugTest, QueuedRequestsTellOfTheRemovalAndNothingWorksAnyMore)
{
    constexpr std::size_t buffers = 4;
    constexpr uint64_t images = 6;
    UnplugAtFrame(images);
    {
        RequestChannel channel(hCam, buffers);
        channel.EnqueueAll();
        channel.Start();
        for (uint64_t block = 0; block < images; ++block) {
            TakeImage();
            const Received received = Take(channel);
            EXPECT_EQ(received.status, 0u);
            EXPECT_EQ(received.block, block);
        }
        TakeImage();
        for (std::size_t i = 0; i < buffers; ++i) {
            const Delivered done = channel.Next();
            EXPECT_EQ(done.info.uiStatus, CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE);
            EXPECT_EQ(done.size, 0u);
        }
        EXPECT_FALSE(channel.TryNext());
        EXPECT_EQ(Read(), CAM_API_STS_CAMERA_NOT_RESPONDING);
        EXPECT_EQ(Strm_EnqueueRequest(channel.Stream(), channel.Request(0)), CAM_API_STS_CAMERA_NOT_RESPONDING);
        EXPECT_EQ(Strm_Start(channel.Stream(), CAM_ACQ_MODE_CONTINUOUS), CAM_API_STS_CAMERA_NOT_RESPONDING);
        EXPECT_EQ(Strm_Stop(channel.Stream()), CAM_API_STS_CAMERA_NOT_RESPONDING);
    }
    EXPECT_NE(log.Text().find("VC000001 was unplugged"), std::string::npos) << log.Text();
    ExpectStreamsAgain();
}

namespace {

struct Errors {
    std::atomic<int> images{0}, removals{0}, others{0};
};

void OnImage(CAM_HANDLE, const void *, uint32_t, const CAM_STREAM_REQUEST_INFO *, void *context)
{
    ++static_cast<Errors *>(context)->images;
}

void OnError(CAM_HANDLE, const void *image, uint32_t, const CAM_STREAM_REQUEST_INFO *info, void *context)
{
    auto *errors = static_cast<Errors *>(context);
    const bool isRemoval = info->uiStatus == CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE && image == nullptr;
    ++(isRemoval ? errors->removals : errors->others);
}

} // namespace

TEST_F(FaultPlugTest, SimpleModeIsToldOfTheRemovalOnceAndKeepsTheLastImage)
{
    constexpr int images = 6;
    UnplugAtFrame(images);
    {
        Errors seen;
        SimpleChannel channel(hCam);
        EXPECT_EQ(Strm_SetCallbackImageAcquired(channel.Stream(), OnImage, &seen), 0u);
        EXPECT_EQ(Strm_SetCallbackImageError(channel.Stream(), OnError, &seen), 0u);
        channel.Start();
        for (int image = 0; image < images; ++image) {
            TakeImage();
            Await([&] { return seen.images == image + 1; });
        }
        TakeImage();
        Await([&] { return seen.removals != 0; });
        EXPECT_EQ(seen.images, images);

        std::vector<unsigned char> image(channel.PayloadSize());
        auto size = static_cast<uint32_t>(image.size());
        CAM_STREAM_REQUEST_INFO info{};
        EXPECT_EQ(Strm_ReadCurrentImage(channel.Stream(), image.data(), &size, &info), 0u);
        EXPECT_EQ(info.ullBlockId, images - 1u);
        EXPECT_EQ(DrawnBlockId(image.data()), images - 1u);
        uint32_t index = 0;
        void *locked = nullptr;
        EXPECT_EQ(Strm_GetCurrentBufferIndex(channel.Stream(), &index), 0u);
        EXPECT_EQ(Strm_LockBuffer(channel.Stream(), index, &locked), 0u);
        EXPECT_EQ(Strm_UnlockBuffer(channel.Stream(), index), 0u);

        EXPECT_EQ(Strm_Stop(channel.Stream()), CAM_API_STS_CAMERA_NOT_RESPONDING);
        EXPECT_EQ(Strm_Start(channel.Stream(), CAM_ACQ_MODE_CONTINUOUS), CAM_API_STS_CAMERA_NOT_RESPONDING);
        EXPECT_EQ(seen.removals, 1);
        EXPECT_EQ(seen.others, 0);
    }
    ExpectStreamsAgain();
}

TEST_F(FaultPlugTest, SimpleModeTellsOfBadImagesAndShowsGoodOnes)
{
    Arm({.at = 3, .action = FaultAction::TrailerStatus, .amount = 0xA100});
    Errors seen;
    SimpleChannel channel(hCam);
    EXPECT_EQ(Strm_SetCallbackImageAcquired(channel.Stream(), OnImage, &seen), 0u);
    EXPECT_EQ(Strm_SetCallbackImageError(channel.Stream(), OnError, &seen), 0u);
    channel.Start();
    Await([&] { return seen.images >= 10; });
    channel.Stop();
    EXPECT_EQ(seen.others, 1);
    EXPECT_EQ(seen.removals, 0);
    uint64_t lost = 1;
    EXPECT_EQ(Strm_GetLostCount(channel.Stream(), &lost), 0u);
    EXPECT_EQ(lost, 0u) << "a bad image is no lost one";
}

TEST_F(FaultPlugTest, RemovalSignalIsSetAtATime)
{
    EXPECT_EQ(Cam_Close(hCam), 0u);
    CAM_HANDLE hRemoved = 0;
    EXPECT_EQ(Sys_CreateSignal(&hRemoved), 0u);
    EXPECT_EQ(Cam_Open(0, &hCam, reinterpret_cast<void *>(hRemoved), true, nullptr, CAM_ACCESS_MODE_CONTROL), 0u);
    UnplugAfter(5);
    EXPECT_EQ(Sys_WaitForSignal(hRemoved, patience), 0u);
    EXPECT_EQ(Read(), CAM_API_STS_CAMERA_NOT_RESPONDING);
    ExpectStreamsAgain();
    EXPECT_EQ(Sys_CloseSignal(hRemoved), 0u);
}

TEST_F(FaultPlugTest, UnpluggedInTheMiddleOfACommand)
{
    Arm({.moment = FaultMoment::Command, .at = 3, .action = FaultAction::Unplug, .amount = soon});
    EXPECT_EQ(Read(), 0u);
    EXPECT_EQ(Read(), 0u);
    EXPECT_EQ(Read(), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(Read(), CAM_API_STS_CAMERA_NOT_RESPONDING) << "plugged again, it is another camera";
    ExpectStreamsAgain();
}

TEST_F(FaultPlugTest, UnpluggedInTheMiddleOfALongExposure)
{
    constexpr double longer = 10e6; // us
    WriteWord(hCam, Virtual::unthrottled, 0);
    SetFloat(hCam, "ExposureTime", longer);
    const auto begun = std::chrono::steady_clock::now();
    {
        RequestChannel channel(hCam, 1);
        channel.EnqueueAll();
        channel.Start();
        UnplugAfter(30);
        EXPECT_EQ(channel.Next().info.uiStatus, CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::microseconds(static_cast<int64_t>(longer)));
    ExpectStreamsAgain();
}

TEST_F(FaultPlugTest, UnpluggedWhileItIsOpened)
{
    constexpr uint64_t manifest = 0x40000;
    Arm({.moment = FaultMoment::Command, .address = manifest, .action = FaultAction::Unplug, .amount = soon});
    EXPECT_EQ(Cam_Close(hCam), 0u);
    EXPECT_EQ(Cam_Open(0, &hCam, nullptr, true, nullptr, CAM_ACCESS_MODE_CONTROL), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(hCam, 0u);
    AwaitCameras(2);
    hCam = Open();
    ExpectStreamsAgain();
}

TEST_F(FaultPlugTest, UnpluggedWhileItsStreamIsStartedAndStopped)
{
    constexpr uint64_t streamControl = 0x20004, acquisitionCommand = 0x20303C;
    const FaultRule rules[] = {
        {.moment = FaultMoment::Write,
         .address = streamControl,
         .value = 1,
         .action = FaultAction::Unplug,
         .amount = soon},
        {.moment = FaultMoment::Write,
         .address = acquisitionCommand,
         .value = 8,
         .action = FaultAction::Unplug,
         .amount = soon},
        {.moment = FaultMoment::Write,
         .address = acquisitionCommand,
         .value = 1,
         .action = FaultAction::Unplug,
         .amount = soon},
    };
    for (const FaultRule &rule : rules) {
        SCOPED_TRACE(rule.value);
        Arm(rule);
        {
            RequestChannel channel(hCam, 2);
            channel.EnqueueAll();
            const CAM_API_STATUS started = Strm_Start(channel.Stream(), CAM_ACQ_MODE_CONTINUOUS);
            const CAM_API_STATUS stopped = Strm_Stop(channel.Stream());
            // Which call meets the write that pulls the plug?
            EXPECT_EQ(started, &rule == &rules[2] ? 0u : CAM_API_STS_CAMERA_NOT_RESPONDING);
            EXPECT_EQ(stopped, CAM_API_STS_CAMERA_NOT_RESPONDING);
            EXPECT_EQ(Read(), CAM_API_STS_CAMERA_NOT_RESPONDING);
            for (int i = 0; i < 2; ++i) {
                const uint32_t status = channel.Next().info.uiStatus;
                EXPECT_TRUE(status == 0 || status == CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE) << std::hex << status;
            }
        }
        ExpectStreamsAgain();
    }
}

TEST_F(FaultPlugTest, EventChannelOfAnUnpluggedCameraEndsItsRequests)
{
    CAM_HANDLE hReady = 0, hEvt = 0, hRequest = 0;
    uint32_t size = 0;
    EXPECT_EQ(Sys_CreateSignal(&hReady), 0u);
    EXPECT_EQ(Evt_Open(hCam, &hEvt, &size, reinterpret_cast<void *>(hReady)), 0u);
    std::vector<unsigned char> memory(size);
    EXPECT_EQ(Evt_CreateRequest(hEvt, memory.data(), size, &hRequest), 0u);
    EXPECT_EQ(Evt_EnqueueRequest(hEvt, hRequest), 0u);
    Arm({.moment = FaultMoment::Command, .at = 1, .action = FaultAction::Unplug, .amount = soon});
    EXPECT_EQ(Read(), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(Sys_WaitForSignal(hReady, patience), 0u);
    CAM_EVENT_REQUEST_INFO info{};
    EXPECT_EQ(Evt_DequeueRequest(hEvt, 0, &info), CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE);
    EXPECT_EQ(Evt_EnqueueRequest(hEvt, hRequest), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(Evt_Close(hEvt), 0u);
    EXPECT_EQ(Sys_CloseSignal(hReady), 0u);
    ExpectStreamsAgain();
}

} // namespace Orvi::Testing
