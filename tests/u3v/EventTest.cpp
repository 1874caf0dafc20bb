#include "tests/u3v/FakeDevice.h"
#include "tests/u3v/MakeLink.h"
#include "tests/u3v/TestSignal.h"
#include "u3v/core/Log.h"
#include "u3v/protocol/EventChannel.h"
#include "u3v/protocol/Wire.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <unistd.h>

namespace Orvi::Test {
namespace {

using namespace U3v;
using Vcam::Endpoint;

constexpr std::size_t blockHeader = 40;

class EventTest : public testing::Test {
  protected:
    EventTest() { camera = std::make_shared<Camera>(MakeLink(device), Camera::Options{nullptr, false, ""}); }

    void Open(std::uint32_t ownBuffers)
    {
        channel = std::make_unique<EventChannel>(camera, signal.Handle(), 256, ownBuffers);
    }

    /// An event of the channel, with the status that the taking gave.
    struct Event {
        CAM_API_STATUS status;
        std::uint64_t request;
        Bytes block;
        std::uint16_t Id() const { return Load<std::uint16_t>(block, 14); }
    };
    Event Take()
    {
        for (;;) {
            const EventChannel::Taken taken = channel->Take();
            Event event{taken.status, taken.request, {}};
            if (taken.status == CAM_API_STS_SUCCESS) {
                const auto *data = reinterpret_cast<const std::byte *>(taken.data);
                event.block.assign(data, data + blockHeader + Load<std::uint32_t>(std::span(data, blockHeader), 28));
            }
            if (event.status != CAM_API_STS_EMPTY_COMPLETE_QUEUE || !WaitABit())
                return event;
        }
    }
    // Own buffers have no signal of the channel, so their arrival is looked for.
    bool WaitABit() { return std::this_thread::sleep_for(std::chrono::milliseconds(1)), ++waited < 60000; }

    std::uint64_t Add(std::size_t size = 512)
    {
        buffers.emplace_back(size);
        const std::uint64_t handle = channel->Register(buffers.back().data(), size);
        channel->Queue(handle);
        return handle;
    }

    /// What the device log holds; stops it.
    static std::string LogText()
    {
        const std::string path = testing::TempDir() + "u3v-event-log-" + std::to_string(getpid());
        DeviceLog().Save(path.c_str());
        DeviceLog().Stop();
        std::ifstream file(path);
        std::string text(std::istreambuf_iterator<char>(file), {});
        std::remove(path.c_str());
        return text;
    }

    int waited = 0;
    std::shared_ptr<FakeDevice> device = std::make_shared<FakeDevice>();
    std::deque<Bytes> buffers;
    TestSignal signal;
    std::shared_ptr<Camera> camera;
    std::unique_ptr<EventChannel> channel;
};

TEST_F(EventTest, TransfersArePostedBeforeEventsAreEnabled)
{
    std::size_t posted = 0;
    device->onWritten = [&](const Command &command) {
        if (command.address == FakeDevice::eirm && command.data[0] == std::byte{1})
            posted = device->Posted(Endpoint::EventIn);
    };
    Open(4);
    EXPECT_GE(posted, 2U);
    channel->Close();
    EXPECT_EQ(device->Get32(FakeDevice::eirm), 0U);
    EXPECT_EQ(device->Posted(Endpoint::EventIn), 0U);
}

TEST_F(EventTest, EventIsDeliveredInTheBlockLayout)
{
    Open(0);
    const std::uint64_t handle = Add();
    device->SendEvent(EventPacket(0x9001, 123456789012345, Pack(std::uint64_t{77}, std::uint16_t{5})));
    EXPECT_TRUE(signal.Wait());
    const Event event = Take();
    EXPECT_EQ(event.request, handle);
    EXPECT_EQ(event.Id(), 0x9001);
    EXPECT_EQ(Load<std::uint16_t>(event.block, 18), 0U);
    EXPECT_EQ(Load<std::uint64_t>(event.block, 20), 123456789012345U);
    EXPECT_EQ(Load<std::uint32_t>(event.block, 28), 10U);
    EXPECT_EQ(Load<std::uint64_t>(event.block, blockHeader), 77U);
}

TEST_F(EventTest, PacketWithSeveralEventsGivesEachOfThem)
{
    Open(8);
    Bytes entries(5 * 20);
    for (std::uint16_t i = 0; i < 5; ++i) {
        const Bytes entry =
            Pack(std::uint16_t{20}, static_cast<std::uint16_t>(0x9000 + i), std::uint64_t{i}, std::uint64_t{100U + i});
        std::copy(entry.begin(), entry.end(), entries.begin() + 20 * i);
    }
    device->SendEvent(Joined({Pack(std::uint32_t{0x45563355}, std::uint16_t{0}, std::uint16_t{0x0C00},
                                   static_cast<std::uint16_t>(entries.size()), std::uint16_t{1}),
                              entries}));
    for (std::uint16_t i = 0; i < 5; ++i) {
        const Event event = Take();
        EXPECT_EQ(event.Id(), 0x9000 + i);
        EXPECT_EQ(Load<std::uint64_t>(event.block, blockHeader), 100U + i);
    }
}

TEST_F(EventTest, MalformedPacketsAreCountedAndTheChannelGoesOn)
{
    Open(8);
    const Bytes good = EventPacket(0x9001, 1, Bytes(8));
    std::vector<Bytes> malformed;
    malformed.push_back(Bytes(good.begin(), good.begin() + 10));
    malformed.push_back(good); // wrong prefix
    malformed.back()[0] = std::byte{0};
    malformed.push_back(good); // not an event
    malformed.back()[6] = std::byte{1};
    malformed.push_back(good); // longer than it is
    malformed.back()[8] = std::byte{200};
    malformed.push_back(good); // an entry that is longer than the packet
    malformed.back()[12] = std::byte{99};
    malformed.push_back(good); // an entry shorter than its own head
    malformed.back()[12] = std::byte{3};
    malformed.push_back(Bytes(5000)); // more than fits
    for (const Bytes &packet : malformed)
        device->SendEvent(packet);
    device->SendEvent(good);
    EXPECT_EQ(Take().Id(), 0x9001);
    EXPECT_EQ(channel->MalformedCount(), malformed.size());
}

TEST_F(EventTest, BurstLosesTheNewestAndCountsThem)
{
    Open(4);
    // One is lent out only after the first was taken, so five find room.
    for (std::uint16_t i = 0; i < 20; ++i)
        device->SendEvent(EventPacket(static_cast<std::uint16_t>(0x9000 + i), i, {}));
    for (; channel->LostCount() != 15 && waited < 60000;)
        WaitABit();
    EXPECT_EQ(channel->LostCount(), 15U);
    for (std::uint16_t i = 0; i < 5; ++i)
        EXPECT_EQ(Take().Id(), 0x9000 + i);
    DeviceLog().StartRing(10000, CAM_LOG_LEVEL_WARN);
    device->SendEvent(Bytes(3)); // malformed
    device->SendEvent(EventPacket(0x9999, 0, {}));
    EXPECT_EQ(Take().Id(), 0x9999);
    const std::string log = LogText();
    EXPECT_NE(log.find("15 events of F1 lost because no buffer was free, 15 in all"), std::string::npos) << log;
    EXPECT_NE(log.find("malformed event packet of 3 bytes from F1: skipped, 1 in all"), std::string::npos) << log;
}

TEST_F(EventTest, FlushAndUnplugEndRequestsWithTheirStatus)
{
    Open(0);
    const std::uint64_t first = Add();
    channel->Flush();
    const Event flushed = Take();
    EXPECT_EQ(flushed.status, CAM_API_STS_FLUSH_REQUESTED);
    EXPECT_EQ(flushed.request, first);
    const std::uint64_t second = Add();
    device->Unplug();
    const Event removed = Take();
    EXPECT_EQ(removed.status, CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE);
    EXPECT_EQ(removed.request, second);
    try {
        channel->Queue(second);
        FAIL();
    } catch (const StatusError &error) {
        EXPECT_EQ(error.Status(), CAM_API_STS_CAMERA_NOT_RESPONDING);
    }
    channel->Close();
    camera->Close();
}

TEST_F(EventTest, HaltedEndpointIsClearedAndTheChannelGoesOn)
{
    Open(4);
    device->SetHalt(Endpoint::EventIn);
    device->SendEvent(EventPacket(0x9001, 1, {}));
    EXPECT_EQ(Take().Id(), 0x9001);
}

TEST_F(EventTest, CameraMayBeClosedFirst)
{
    Open(0);
    Add();
    camera->Close();
    EXPECT_EQ(Take().status, CAM_API_STS_FLUSH_REQUESTED);
    channel->Close();
}

TEST_F(EventTest, ActivationNeedsTheDescription)
{
    Open(4);
    try {
        channel->Activate("ExposureEnd", "EventExposureEnd", nullptr);
        FAIL();
    } catch (const StatusError &error) {
        EXPECT_EQ(error.Status(), CAM_API_STS_XML_LOAD_ERR);
    }
}

} // namespace
} // namespace Orvi::Test
