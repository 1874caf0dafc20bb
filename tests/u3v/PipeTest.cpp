// Aborting and resetting the pipes and the port of an open camera.

#include "tests/u3v/FakeDevice.h"
#include "tests/u3v/MakeLink.h"
#include "tests/u3v/TestSignal.h"
#include "u3v/protocol/EventChannel.h"
#include "u3v/protocol/RequestStream.h"

#include <gtest/gtest.h>

#include <future>

namespace Orvi::Test {
namespace {

using namespace U3v;
using Vcam::Endpoint;

constexpr std::uint32_t payload = 1024;
constexpr std::size_t eventTransfers = 8, frameTransfers = 3;

class PipeTest : public testing::Test {
  protected:
    PipeTest()
    {
        device->SetPayload(payload);
        camera = std::make_shared<Camera>(MakeLink(device), Camera::Options{nullptr, false, ""});
    }

    /// A read that the camera does not answer; gives the status with which it ends.
    std::future<CAM_API_STATUS> ReadInVain()
    {
        device->onCommand = [](const Command &) { return std::vector<Bytes>(); };
        auto reading = std::async(std::launch::async, [this] {
            std::uint32_t word = 0;
            return StatusOf([&] { camera->ReadQuadlets(0, {&word, 1}); });
        });
        device->WaitPosted(Endpoint::ControlIn, 1);
        return reading;
    }

    void OpenEvents() { events = std::make_unique<EventChannel>(camera, signal.Handle(), 256, 20); }
    std::uint16_t TakeEvent()
    {
        for (;;) {
            if (const auto taken = events->Take(); taken.data != nullptr)
                return static_cast<std::uint16_t>(taken.data[14] | taken.data[15] << 8);
            if (!signal.Wait())
                throw std::runtime_error("no event arrived");
        }
    }

    void OpenStream()
    {
        stream = std::make_unique<RequestStream>(camera, signal.Handle(), 65536);
        stream->Queue(stream->AllRequests().Register(buffer.data(), buffer.size()));
        stream->Start(8);
    }
    CAM_API_STATUS TakeImage()
    {
        for (;;) {
            if (const Request *request = stream->AllRequests().TakeComplete())
                return request->info.uiStatus;
            if (!signal.Wait())
                throw std::runtime_error("no request completed");
        }
    }
    void SendImage()
    {
        device->SendStream(Leader(1, 32, 32));
        device->SendStream(Bytes(payload));
        device->SendStream(Trailer(1, payload, 32));
    }
    std::uint32_t StreamControl() const { return device->Get32(FakeDevice::sirm + 4); }

    static CAM_API_STATUS StatusOf(const std::function<void()> &call)
    {
        try {
            call();
        } catch (const StatusError &error) {
            return error.Status();
        }
        return CAM_API_STS_SUCCESS;
    }

    std::shared_ptr<FakeDevice> device = std::make_shared<FakeDevice>();
    Bytes buffer = Bytes(payload);
    TestSignal signal;
    std::shared_ptr<Camera> camera;
    std::unique_ptr<EventChannel> events;
    std::unique_ptr<RequestStream> stream;
};

TEST_F(PipeTest, AbortOfTheControlPipeEndsTheCommandUnderWay)
{
    auto reading = ReadInVain();
    camera->AbortPipe(Pipe::Control);
    EXPECT_EQ(reading.get(), CAM_API_STS_TIMEOUT);
    EXPECT_EQ(device->Posted(Endpoint::ControlIn), 0U);
}

TEST_F(PipeTest, ResetOfTheControlPipeEndsTheCommandUnderWayAndClearsBothEndpoints)
{
    auto reading = ReadInVain();
    const std::size_t out = device->Clears(Endpoint::ControlOut), in = device->Clears(Endpoint::ControlIn);
    camera->ResetPipe(Pipe::Control);
    EXPECT_EQ(reading.get(), CAM_API_STS_TIMEOUT);
    EXPECT_EQ(device->Clears(Endpoint::ControlOut), out + 1);
    EXPECT_EQ(device->Clears(Endpoint::ControlIn), in + 1);

    device->onCommand = nullptr;
    std::uint32_t word = 0;
    camera->ReadQuadlets(0, {&word, 1});
}

TEST_F(PipeTest, ResetOfAPipeThatNobodyUsesClearsIt)
{
    camera->ResetPipe(Pipe::Stream);
    camera->ResetPipe(Pipe::Event);
    camera->AbortPipe(Pipe::Stream);
    EXPECT_EQ(device->Clears(Endpoint::StreamIn), 1U);
    EXPECT_EQ(device->Clears(Endpoint::EventIn), 1U);
}

TEST_F(PipeTest, ResetOfTheEventPipePostsItsTransfersAnew)
{
    OpenEvents();
    device->SendEvent(EventPacket(0x9001, 0, {}));
    const std::size_t clears = device->Clears(Endpoint::EventIn);
    camera->ResetPipe(Pipe::Event);
    EXPECT_EQ(device->Clears(Endpoint::EventIn), clears + 1);
    EXPECT_EQ(device->Posted(Endpoint::EventIn), eventTransfers);
    device->SendEvent(EventPacket(0x9002, 0, {}));
    EXPECT_EQ(TakeEvent(), 0x9001);
    EXPECT_EQ(TakeEvent(), 0x9002);
}

TEST_F(PipeTest, EventsBeforeAHaltAreKeptInTheirOrder)
{
    OpenEvents();
    const std::size_t clears = device->Clears(Endpoint::EventIn);
    for (std::uint16_t id = 0x9001; id <= 0x9005; ++id)
        device->SendEvent(EventPacket(id, 0, {}));
    device->SetHalt(Endpoint::EventIn);
    for (std::uint16_t id = 0x9001; id <= 0x9005; ++id)
        EXPECT_EQ(TakeEvent(), id);
    device->WaitPosted(Endpoint::EventIn, eventTransfers);
    EXPECT_GT(device->Clears(Endpoint::EventIn), clears);
    device->SendEvent(EventPacket(0x9006, 0, {}));
    EXPECT_EQ(TakeEvent(), 0x9006);
}

TEST_F(PipeTest, AbortOfTheStreamPipeFlushesIt)
{
    OpenStream();
    camera->AbortPipe(Pipe::Stream);
    EXPECT_EQ(TakeImage(), CAM_API_STS_FLUSH_REQUESTED);
    EXPECT_EQ(StreamControl(), 1U);
}

TEST_F(PipeTest, ResetOfTheStreamPipeStopsItAndItStartsAgain)
{
    OpenStream();
    device->WaitPosted(Endpoint::StreamIn, frameTransfers);
    camera->ResetPipe(Pipe::Stream);
    EXPECT_EQ(StreamControl(), 0U);
    EXPECT_EQ(device->Posted(Endpoint::StreamIn), 0U);
    stream->Start(8); // what was queued still is
    SendImage();
    EXPECT_EQ(TakeImage(), CAM_API_STS_SUCCESS);
}

TEST_F(PipeTest, ResetOfThePortStopsTheStreamAndBringsAllPipesIntoStep)
{
    OpenEvents();
    OpenStream();
    device->WaitPosted(Endpoint::StreamIn, frameTransfers);
    camera->Reset();
    EXPECT_EQ(StreamControl(), 0U);
    EXPECT_EQ(device->Posted(Endpoint::StreamIn), 0U);
    EXPECT_FALSE(camera->IsGone());
    device->WaitPosted(Endpoint::EventIn, eventTransfers);
    device->SendEvent(EventPacket(0x9001, 0, {}));
    EXPECT_EQ(TakeEvent(), 0x9001);
    stream->Start(8);
    SendImage();
    EXPECT_EQ(TakeImage(), CAM_API_STS_SUCCESS);
}

TEST_F(PipeTest, NothingIsResetOnceTheCameraIsGone)
{
    OpenEvents();
    OpenStream();
    device->Unplug();
    EXPECT_EQ(TakeImage(), CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE);
    while (!camera->IsGone())
        std::this_thread::yield();
    EXPECT_EQ(StatusOf([&] { camera->Reset(); }), CAM_API_STS_CAMERA_NOT_RESPONDING);
    camera->ResetPipe(Pipe::Event);
    camera->ResetPipe(Pipe::Stream);
    camera->ResetPipe(Pipe::Control);
}

} // namespace
} // namespace Orvi::Test
