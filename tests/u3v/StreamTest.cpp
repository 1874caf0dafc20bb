#include "tests/u3v/FakeDevice.h"
#include "tests/u3v/MakeLink.h"
#include "tests/u3v/TestSignal.h"
#include "u3v/protocol/RequestStream.h"

#include <gtest/gtest.h>

#include <numeric>

namespace Orvi::Test {
namespace {

using namespace U3v;
using Vcam::Endpoint;

constexpr std::uint32_t payload = 10000; // 4096 + 4096 + 1024 + 784
constexpr std::size_t transfers = 6;     // leader, four of payload, trailer
constexpr std::uint32_t transferSize = 4096;

class StreamTest : public testing::Test {
  protected:
    StreamTest()
    {
        device->SetPayload(payload);
        std::iota(reinterpret_cast<unsigned char *>(image.data()),
                  reinterpret_cast<unsigned char *>(image.data()) + image.size(), static_cast<unsigned char>(3));
        camera = std::make_shared<Camera>(MakeLink(device), Camera::Options{nullptr, false, ""});
        stream = std::make_unique<RequestStream>(camera, signal.Handle(), transferSize);
    }

    std::uint64_t Add(std::size_t size = payload)
    {
        buffers.emplace_back(size + 64, std::byte{0xEE}); // room behind, which must stay as it is
        const std::uint64_t handle = stream->AllRequests().Register(buffers.back().data(), size);
        stream->Queue(handle);
        return handle;
    }

    void SendFrame(std::uint64_t blockId)
    {
        device->SendStream(Leader(blockId, 100, 100));
        SendPayload(payload);
        device->SendStream(Trailer(blockId, payload, 100));
    }

    void SendPayload(std::size_t size)
    {
        for (std::size_t at = 0; at < size;) {
            const std::size_t left = payload - at;
            const std::size_t slot = left >= transferSize ? transferSize : left >= 1024 ? left / 1024 * 1024 : left;
            const std::size_t count = std::min(slot, size - at);
            device->SendStream(Bytes(image.begin() + static_cast<std::ptrdiff_t>(at),
                                     image.begin() + static_cast<std::ptrdiff_t>(at + count)));
            at += count;
        }
    }

    Request &Take()
    {
        for (;;) {
            if (Request *request = stream->AllRequests().TakeComplete())
                return *request;
            if (!signal.Wait())
                throw std::runtime_error("no request completed");
        }
    }

    bool HasImage(const Request &request, std::size_t size)
    {
        return std::equal(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(size), request.memory) &&
               std::all_of(request.memory + size, request.memory + request.size + 64,
                           [](std::byte b) { return b == std::byte{0xEE}; });
    }

    bool NothingIsComplete() { return stream->AllRequests().TakeComplete() == nullptr; }

    std::shared_ptr<FakeDevice> device = std::make_shared<FakeDevice>();
    std::deque<Bytes> buffers; // outlive the stream
    Bytes image = Bytes(payload);
    TestSignal signal;
    std::shared_ptr<Camera> camera;
    std::unique_ptr<RequestStream> stream;
};

TEST_F(StreamTest, ImageLandsInTheCallersMemory)
{
    const std::uint64_t handle = Add();
    stream->Start(8);
    SendFrame(7);
    const Request &request = Take();
    EXPECT_EQ(request.handle, handle);
    EXPECT_EQ(request.info.uiStatus, CAM_API_STS_SUCCESS);
    EXPECT_EQ(request.info.ullBlockId, 7U);
    EXPECT_EQ(request.info.ullDeviceTimestamp, 1007U);
    EXPECT_EQ(request.info.uiWidth, 100U);
    EXPECT_EQ(request.info.uiHeight, 100U);
    EXPECT_EQ(request.info.uiPixelFormat, 0x01080001U);
    EXPECT_EQ(request.info.ullValidPayloadSize, payload);
    EXPECT_NE(request.info.ullHostTimestamp, 0U);
    EXPECT_TRUE(HasImage(request, payload));
}

TEST_F(StreamTest, TransfersArePostedBeforeTheStreamIsEnabled)
{
    Add();
    Add();
    std::size_t postedAtEnable = 0;
    std::uint32_t enabledAtCommand = 0;
    device->onWritten = [&](const Command &command) {
        if (command.address == FakeDevice::sirm + 4 && command.data[0] == std::byte{1})
            postedAtEnable = device->Posted(Endpoint::StreamIn);
        if (command.address == FakeDevice::acquisition && command.data[0] == std::byte{8})
            enabledAtCommand = device->Get32(FakeDevice::sirm + 4);
    };
    stream->Start(8);
    EXPECT_EQ(postedAtEnable, 2 * transfers);
    EXPECT_EQ(enabledAtCommand, 1U);
    stream->Engine().Stop();
    EXPECT_EQ(device->Get32(FakeDevice::acquisition), 1U);
    EXPECT_EQ(device->Get32(FakeDevice::sirm + 4), 0U);
    EXPECT_EQ(device->Posted(Endpoint::StreamIn), 0U);
}

TEST_F(StreamTest, SizesToldToTheCameraAddUpToThePayload)
{
    Add();
    stream->Start(8);
    const auto reg = [&](std::uint64_t offset) { return device->Get32(FakeDevice::sirm + offset); };
    EXPECT_EQ(reg(0x1C), transferSize);
    EXPECT_EQ(reg(0x20), 2U);
    EXPECT_EQ(reg(0x24), 1024U);
    EXPECT_EQ(reg(0x28), 1024U);
    EXPECT_GE(reg(0x18), 52U);
    EXPECT_GE(reg(0x2C), 32U);
}

TEST_F(StreamTest, SmallBufferGetsWhatFitsAndTheStreamGoesOn)
{
    Add(5000);
    Add();
    stream->Start(8);
    SendFrame(0);
    SendFrame(1);
    const Request &small = Take();
    EXPECT_EQ(small.info.uiStatus, CAM_API_STS_UNEXPECTED_BUFFER_SIZE);
    EXPECT_EQ(small.info.ullValidPayloadSize, 5000U);
    EXPECT_TRUE(HasImage(small, 5000));
    const Request &whole = Take();
    EXPECT_EQ(whole.info.uiStatus, CAM_API_STS_SUCCESS);
    EXPECT_TRUE(HasImage(whole, payload));
}

TEST_F(StreamTest, ShortImageThatTheTrailerAnnouncesIsGood)
{
    Add();
    Add();
    stream->Start(8);
    device->SendStream(Leader(0, 100, 100));
    SendPayload(4096 + 500);
    device->SendStream(Trailer(0, 4596, 45));
    const Request &shorter = Take();
    EXPECT_EQ(shorter.info.uiStatus, CAM_API_STS_SUCCESS);
    EXPECT_EQ(shorter.info.ullValidPayloadSize, 4596U);
    EXPECT_EQ(shorter.info.uiHeight, 45U);
    // The unused transfers are taken back before they can swallow the next image.
    const std::size_t halts = device->Halts(Endpoint::StreamIn);
    device->WaitPosted(Endpoint::StreamIn, transfers);
    SendFrame(1);
    const Request &next = Take();
    EXPECT_EQ(next.info.uiStatus, CAM_API_STS_SUCCESS);
    EXPECT_EQ(next.info.ullBlockId, 1U);
    EXPECT_TRUE(HasImage(next, payload));
    EXPECT_EQ(device->Halts(Endpoint::StreamIn), halts);
}

TEST_F(StreamTest, MissingDataAreToldWithTheValidBytes)
{
    Add();
    stream->Start(8);
    device->SendStream(Leader(0, 100, 100));
    SendPayload(4096);
    device->SendStream({}); // an empty packet for each transfer that stays unused
    device->SendStream({});
    device->SendStream({});
    device->SendStream(Trailer(0, payload, 100));
    const Request &request = Take();
    EXPECT_EQ(request.info.uiStatus, CAM_API_STS_MISSING_PACKETS);
    EXPECT_EQ(request.info.ullValidPayloadSize, 4096U);
    EXPECT_TRUE(HasImage(request, 4096));
}

TEST_F(StreamTest, StatusOfTheTrailerIsPassedOn)
{
    Add();
    stream->Start(8);
    device->SendStream(Leader(0, 100, 100));
    SendPayload(payload);
    device->SendStream(Trailer(0, payload, 100, 0xA100));
    EXPECT_EQ(Take().info.uiStatus, CAM_API_STS_DATA_DISCARDED);
}

TEST_F(StreamTest, GapsInTheBlockIdsAreCounted)
{
    for (int i = 0; i < 3; ++i)
        Add();
    stream->Start(8);
    for (const std::uint64_t blockId : {5U, 6U, 16U})
        SendFrame(blockId);
    EXPECT_EQ(Take().info.uiLostBlocks, 0U);
    EXPECT_EQ(Take().info.uiLostBlocks, 0U);
    EXPECT_EQ(Take().info.uiLostBlocks, 9U);
    EXPECT_EQ(stream->LostCount(), 9U);
}

class BrokenFrameTest : public StreamTest, public testing::WithParamInterface<int> {
  protected:
    void SendBrokenFrame()
    {
        switch (GetParam()) {
        case 0: // no leader
            device->SendStream(Bytes(52, std::byte{0x11}));
            return;
        case 1: // a leader too short to be one
            device->SendStream(Pack(std::uint32_t{0x4C563355}, std::uint16_t{0}, std::uint16_t{52}));
            return;
        case 2: // a leader that is far too long
            device->SendStream(Bytes(60000));
            return;
        case 3: // payload that is more than fits
            device->SendStream(Leader(0, 100, 100));
            device->SendStream(Bytes(transferSize + 1));
            return;
        case 4: // the trailer of another image
            device->SendStream(Leader(0, 100, 100));
            SendPayload(payload);
            device->SendStream(Trailer(1, payload, 100));
            return;
        case 5: // the endpoint halts
            device->SendStream(Leader(0, 100, 100));
            device->SetHalt(Endpoint::StreamIn);
            return;
        default: // the next leader instead of the trailer
            device->SendStream(Leader(0, 100, 100));
            SendPayload(payload);
            device->SendStream(Leader(1, 100, 100));
            return;
        }
    }
};

TEST_P(BrokenFrameTest, CostsItsRequestAndTheStreamGoesOn)
{
    Add();
    Add();
    Add();
    stream->Start(8);
    const std::size_t halts = device->Halts(Endpoint::StreamIn);
    SendBrokenFrame();
    const Request &broken = Take();
    EXPECT_EQ(broken.info.uiStatus, CAM_API_STS_MISSING_PACKETS);
    EXPECT_LE(broken.info.ullValidPayloadSize, payload);
    // The endpoint is cleared, so that nothing of the broken image is left; then both requests are posted anew.
    device->WaitHalts(Endpoint::StreamIn, halts + 1);
    device->WaitPosted(Endpoint::StreamIn, 2 * transfers);
    SendFrame(10);
    const Request &good = Take();
    EXPECT_EQ(good.info.uiStatus, CAM_API_STS_SUCCESS);
    EXPECT_EQ(good.info.ullBlockId, 10U);
    EXPECT_TRUE(HasImage(good, payload));
}

INSTANTIATE_TEST_SUITE_P(Faults, BrokenFrameTest, testing::Range(0, 7));

TEST_F(StreamTest, StopKeepsRequestsQueuedInTheirOrder)
{
    const std::uint64_t first = Add(), second = Add();
    stream->Start(8);
    device->SendStream(Leader(0, 100, 100)); // an image that never ends
    stream->Engine().Stop();
    EXPECT_TRUE(NothingIsComplete());
    stream->Start(8);
    SendFrame(0);
    SendFrame(1);
    EXPECT_EQ(Take().handle, first);
    EXPECT_EQ(Take().handle, second);
}

TEST_F(StreamTest, ImagesThatAreWholeAtStopAreDelivered)
{
    Add();
    Add();
    stream->Start(8);
    SendFrame(0);
    stream->Engine().Stop();
    EXPECT_EQ(Take().info.uiStatus, CAM_API_STS_SUCCESS);
    EXPECT_TRUE(NothingIsComplete());
}

TEST_F(StreamTest, FlushCompletesAllRequestsWithItsStatus)
{
    for (const bool isRunning : {false, true}) {
        std::vector<std::uint64_t> handles = {Add(), Add(), Add()};
        if (isRunning)
            stream->Start(8);
        stream->Engine().Flush();
        for (const std::uint64_t handle : handles) {
            const Request &request = Take();
            EXPECT_EQ(request.handle, handle);
            EXPECT_EQ(request.info.uiStatus, CAM_API_STS_FLUSH_REQUESTED);
            EXPECT_EQ(request.info.ullValidPayloadSize, 0U);
        }
    }
    Add();
    SendFrame(3);
    EXPECT_EQ(Take().info.uiStatus, CAM_API_STS_SUCCESS);
}

TEST_F(StreamTest, UnplugCompletesAllRequestsAndLaterCallsFail)
{
    // More than fit under transfers at a time.
    std::vector<std::uint64_t> handles;
    for (int i = 0; i < 40; ++i)
        handles.push_back(Add());
    stream->Start(8);
    SendFrame(0);
    device->SendStream(Leader(1, 100, 100));
    device->Unplug();
    EXPECT_EQ(Take().info.uiStatus, CAM_API_STS_SUCCESS);
    for (std::size_t i = 1; i < handles.size(); ++i) {
        const Request &request = Take();
        EXPECT_EQ(request.handle, handles[i]);
        EXPECT_EQ(request.info.uiStatus, CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE);
    }
    const auto statusOf = [](auto call) -> CAM_API_STATUS {
        try {
            call();
            return CAM_API_STS_SUCCESS;
        } catch (const StatusError &error) {
            return error.Status();
        }
    };
    EXPECT_EQ(statusOf([&] { stream->Queue(handles[0]); }), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(statusOf([&] { stream->Start(8); }), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(statusOf([&] { stream->Engine().Stop(); }), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(statusOf([&] { stream->Engine().Flush(); }), CAM_API_STS_SUCCESS);
    EXPECT_EQ(statusOf([&] { stream->AllRequests().Deregister(handles[0]); }), CAM_API_STS_SUCCESS);
    EXPECT_EQ(statusOf([&] { stream->Close(); }), CAM_API_STS_SUCCESS);
    EXPECT_EQ(statusOf([&] { camera->Close(); }), CAM_API_STS_SUCCESS);
}

TEST_F(StreamTest, RequestsQueuedWhileStoppedEndWithTheUnplugToo)
{
    Add();
    device->Unplug();
    EXPECT_EQ(Take().info.uiStatus, CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE);
}

TEST_F(StreamTest, QueuedRequestIsNeitherQueuedNorReleased)
{
    const std::uint64_t handle = Add();
    EXPECT_THROW(stream->Queue(handle), StatusError);
    EXPECT_THROW(stream->AllRequests().Deregister(handle), StatusError);
    stream->Engine().Flush();
    stream->AllRequests().Deregister(handle); // complete, not taken
    EXPECT_TRUE(NothingIsComplete());
    EXPECT_THROW(stream->Queue(handle), StatusError);
}

TEST_F(StreamTest, CameraStreamsToOneChannelOnly)
{
    try {
        RequestStream second(camera, nullptr, transferSize);
        FAIL();
    } catch (const StatusError &error) {
        EXPECT_EQ(error.Status(), CAM_API_STS_ALREADY_OPENED);
    }
    stream.reset();
    RequestStream next(camera, nullptr, transferSize);
}

TEST_F(StreamTest, FailedStartLeavesNothingPostedAndRequestsQueued)
{
    const std::uint64_t handle = Add();
    device->onCommand = [&](const Command &command) -> std::vector<Bytes> {
        if (command.address == FakeDevice::acquisition)
            return {FakeDevice::Ack(command, 0x8006, static_cast<std::uint16_t>(command.id + 1), {})};
        return {device->Answer(command)};
    };
    EXPECT_THROW(stream->Start(8), StatusError);
    EXPECT_EQ(device->Posted(Endpoint::StreamIn), 0U);
    EXPECT_EQ(device->Get32(FakeDevice::sirm + 4), 0U);
    device->onCommand = nullptr;
    stream->Start(8);
    SendFrame(0);
    EXPECT_EQ(Take().handle, handle);
}

TEST_F(StreamTest, CameraThatClosesFirstFlushesAndDisablesTheStream)
{
    Add();
    stream->Start(8);
    camera->Close();
    EXPECT_EQ(Take().info.uiStatus, CAM_API_STS_FLUSH_REQUESTED);
    EXPECT_EQ(device->Get32(FakeDevice::sirm + 4), 0U);
    try {
        stream->Start(8);
        FAIL();
    } catch (const StatusError &error) {
        EXPECT_EQ(error.Status(), CAM_API_STS_INVALID_CAMERA_HANDLE);
    }
    stream->Close();
}

} // namespace
} // namespace Orvi::Test
