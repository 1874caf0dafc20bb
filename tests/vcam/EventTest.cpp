#include "HostSide.h"

namespace Orvi::Vcam::Test {
namespace {

struct Entry {
    std::uint16_t size, id;
    std::uint64_t time, block;
};

class Events : public testing::Test {
  protected:
    void Notify(EventKind kind, bool isOn)
    {
        control_.Write(Reg::EventSelector, static_cast<std::uint32_t>(kind));
        control_.Write(Reg::EventNotification, isOn ? 1 : 0);
    }
    void Test() { control_.Write(Reg::EiTestControl, 1); }
    /// The entries of the next packet.
    std::vector<Entry> Take()
    {
        Transfer transfer(1024);
        camera_->Submit(Endpoint::EventIn, transfer);
        const auto packet = transfer.Wait().Data();
        EXPECT_GE(packet.size(), 32u);
        EXPECT_EQ(LoadLe<std::uint32_t>(packet.data()), s_eventPrefix);
        EXPECT_EQ(LoadLe<std::uint16_t>(packet.data() + 6), 0x0C00);
        EXPECT_EQ(LoadLe<std::uint16_t>(packet.data() + 8), packet.size() - 12);
        std::vector<Entry> entries;
        for (std::size_t at = 12; at + 20 <= packet.size(); at += 20) {
            const std::byte *entry = packet.data() + at;
            entries.push_back({LoadLe<std::uint16_t>(entry), LoadLe<std::uint16_t>(entry + 2),
                               LoadLe<std::uint64_t>(entry + 4), LoadLe<std::uint64_t>(entry + 12)});
        }
        return entries;
    }
    void ExpectNothing()
    {
        Transfer none(1024);
        camera_->Submit(Endpoint::EventIn, none);
        EXPECT_TRUE(camera_->Cancel(Endpoint::EventIn, none));
    }

    std::shared_ptr<VirtualCamera> camera_ = MakeCamera();
    Control control_{*camera_};
};

TEST_F(Events, TestEventCarriesIdAndTime)
{
    control_.Write(Reg::EiControl, 1);
    control_.Write(Reg::TimestampLatch, 1);
    Test();
    const auto entries = Take();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].size, 0);
    EXPECT_EQ(entries[0].id, 0x4FFF);
    EXPECT_GE(entries[0].time, control_.ReadLong(Reg::Timestamp));
    EXPECT_EQ(entries[0].block, 0u);
}

TEST_F(Events, NothingIsSentWhileDisabledOrNotNotified)
{
    Test();
    control_.Write(Reg::EiControl, 1);
    ExpectNothing();
    Notify(EventKind::Test, false);
    Test();
    ExpectNothing();
    Notify(EventKind::Test, true);
    Test();
    EXPECT_EQ(Take().size(), 1u);
}

TEST_F(Events, NotificationBelongsToTheSelectedEvent)
{
    Notify(EventKind::ExposureEnd, true);
    control_.Write(Reg::EventSelector, static_cast<std::uint32_t>(EventKind::FrameStart));
    EXPECT_EQ(control_.Read(Reg::EventNotification), 0u);
    control_.Write(Reg::EventSelector, static_cast<std::uint32_t>(EventKind::ExposureEnd));
    EXPECT_EQ(control_.Read(Reg::EventNotification), 1u);
    EXPECT_EQ(control_.TryWrite(Reg::EventSelector, 9), GenCpStatus::InvalidParameter);
}

TEST_F(Events, SeveralEventsShareAPacketWhenTheHostWantsIt)
{
    control_.Write(Reg::EiControl, 1);
    control_.Write(Reg::DeviceConfiguration, 2);
    for (int i = 0; i < 3; ++i) {
        Test();
    }
    const auto entries = Take();
    ASSERT_EQ(entries.size(), 3u);
    for (const Entry &entry : entries) {
        EXPECT_EQ(entry.size, 20); // with its header
        EXPECT_EQ(entry.id, 0x4FFF);
    }
    EXPECT_LE(entries[0].time, entries[1].time);
}

TEST_F(Events, BurstBeyondTheQueueLosesTheNewestAndCountsThem)
{
    control_.Write(Reg::EiControl, 1);
    control_.Write(Reg::LineLevels, 0);
    for (std::size_t i = 0; i < EventQueue::s_depth; ++i) {
        Test();
    }
    EXPECT_EQ(control_.Read(Reg::EventLostCount), 0u);
    Notify(EventKind::Line0RisingEdge, true);
    control_.Write(Reg::LineLevels, 1);
    EXPECT_EQ(control_.Read(Reg::EventLostCount), 1u);
    for (std::size_t i = 0; i < EventQueue::s_depth; ++i) {
        EXPECT_EQ(Take()[0].id, 0x4FFF);
    }
    ExpectNothing();
    Test();
    EXPECT_EQ(Take().size(), 1u);
}

TEST_F(Events, RisingEdgeOfLine0IsAnEventAndFallingIsNot)
{
    control_.Write(Reg::EiControl, 1);
    Notify(EventKind::Line0RisingEdge, true);
    control_.Write(Reg::LineLevels, 1);
    EXPECT_EQ(Take()[0].id, EventId(EventKind::Line0RisingEdge));
    control_.Write(Reg::LineLevels, 3);
    control_.Write(Reg::LineLevels, 0);
    ExpectNothing();
}

TEST_F(Events, DisablingDropsWhatIsQueued)
{
    control_.Write(Reg::EiControl, 1);
    Test();
    control_.Write(Reg::EiControl, 0);
    control_.Write(Reg::EiControl, 1);
    ExpectNothing();
}

TEST_F(Events, HaltedEndpointCannotBeEnabled)
{
    camera_->SetHalt(Endpoint::EventIn);
    EXPECT_EQ(control_.TryWrite(Reg::EiControl, 1), GenCpStatus::EventEndpointHalted);
    camera_->ClearHalt(Endpoint::EventIn);
    control_.Write(Reg::EiControl, 1);
}

TEST_F(Events, FrameEventsComeInOrderWithTheImagesIdAndTime)
{
    for (const EventKind kind : {EventKind::AcquisitionStart, EventKind::FrameStart, EventKind::ExposureStart,
                                 EventKind::ExposureEnd, EventKind::FrameEnd, EventKind::AcquisitionEnd}) {
        Notify(kind, true);
    }
    control_.Write(Reg::EiControl, 1);
    control_.Write(Reg::Unthrottled, 1);
    control_.Write(Block::FrameCount + 0x1C, 2);
    Stream stream(*camera_, control_);
    stream.Configure(stream.SimpleCut());
    stream.Post();
    stream.Post();
    stream.Enable();
    stream.Start(9);
    const auto expect = [&](EventKind kind, std::uint64_t block) {
        const Entry entry = Take().at(0);
        EXPECT_EQ(entry.id, EventId(kind));
        EXPECT_EQ(entry.block, block);
        return entry.time;
    };
    std::uint64_t time = expect(EventKind::AcquisitionStart, 0);
    for (std::uint64_t block = 0; block < 2; ++block) {
        const std::uint64_t frameStart = expect(EventKind::FrameStart, block);
        const std::uint64_t exposureStart = expect(EventKind::ExposureStart, block);
        const std::uint64_t exposureEnd = expect(EventKind::ExposureEnd, block);
        const Frame frame = stream.Take();
        EXPECT_EQ(frame.time, exposureEnd);
        EXPECT_LE(time, frameStart);
        EXPECT_LE(frameStart, exposureStart);
        EXPECT_LE(exposureStart, exposureEnd);
        time = expect(EventKind::FrameEnd, block);
        EXPECT_LE(exposureEnd, time);
    }
    EXPECT_LE(time, expect(EventKind::AcquisitionEnd, 0));
}

TEST_F(Events, LostFrameIsAnEventWithItsBlockId)
{
    Notify(EventKind::FrameLost, true);
    control_.Write(Reg::EiControl, 1);
    control_.Write(Block::ExposureTime + 0x1C, 20);
    control_.Write(Block::FrameRate + 0x1C, 500000);
    Stream stream(*camera_, control_);
    stream.Configure(stream.SimpleCut());
    stream.Enable();
    stream.Start();
    for (std::uint64_t block = 0; block < 5; ++block) {
        const Entry entry = Take().at(0);
        EXPECT_EQ(entry.id, EventId(EventKind::FrameLost));
        EXPECT_EQ(entry.block, block);
    }
    control_.Write(Reg::SiControl, 0);
}

TEST_F(Events, RequestIdsCountUp)
{
    control_.Write(Reg::EiControl, 1);
    for (std::uint16_t id = 0; id < 3; ++id) {
        Test();
        Transfer transfer(1024);
        camera_->Submit(Endpoint::EventIn, transfer);
        EXPECT_EQ(LoadLe<std::uint16_t>(transfer.Wait().Data().data() + 10), id);
    }
}

} // namespace
} // namespace Orvi::Vcam::Test
