// The link to a camera on the bus: transfers, halts, unplugging, closing.

#include "u3v/usb/LibusbLink.h"
#include "tests/usb/UsbTest.h"

#include <atomic>
#include <future>

namespace Orvi::Test {
namespace {

using namespace U3v;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::uint8_t controlOut = 0x02, controlIn = 0x81, eventIn = 0x83, streamIn = 0x85;

/// Counts completions and waits for them.
class Done : public BulkIn::Listener {
  public:
    void OnDone(BulkIn &transfer) noexcept override
    {
        std::lock_guard lock(mutex_);
        last = &transfer;
        ++count_;
        changed_.notify_all();
    }
    bool Wait(int count)
    {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, 60s, [&] { return count_ >= count; });
    }
    int Count() const
    {
        std::lock_guard lock(mutex_);
        return count_;
    }
    BulkIn *last = nullptr;

  private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    int count_ = 0;
};

class Gone : public UsbLink::GoneListener {
  public:
    void OnGone() noexcept override { told.fetch_add(1); }
    std::atomic<int> told = 0;
};

Deadline Later() { return Clock::now() + 60s; }

class LibusbLinkTest : public UsbTest {
  protected:
    ~LibusbLinkTest() override
    {
        transfer.reset();
        link.reset();
    }

    void Open(const FakeUsbDevice &script = {})
    {
        device = &bus.Plug(script);
        link = Enumerate().back()->Open();
        transfer = link->NewTransfer(Pipe::Stream, done);
    }

    std::vector<std::byte> memory = std::vector<std::byte>(4096);
    libusb_device *device = nullptr;
    std::unique_ptr<UsbLink> link;
    Done done;
    std::unique_ptr<BulkIn> transfer;
};

TEST_F(LibusbLinkTest, ClaimsTheInterfacesThatTheCameraHas)
{
    Open();
    EXPECT_THAT(bus.Log(), ElementsAre("claim 0", "claim 1", "claim 2"));
    for (const Pipe pipe : {Pipe::Control, Pipe::Event, Pipe::Stream}) {
        EXPECT_TRUE(link->HasPipe(pipe));
        EXPECT_EQ(link->MaxPacketSize(pipe), 1024U);
    }
    EXPECT_EQ(link->Identity().serial, "SN1");
}

TEST_F(LibusbLinkTest, CameraMayLackEventsAndImages)
{
    FakeUsbDevice script;
    script.interfaces.resize(1);
    Open(script);
    EXPECT_TRUE(link->HasPipe(Pipe::Control));
    EXPECT_FALSE(link->HasPipe(Pipe::Event));
    EXPECT_FALSE(link->HasPipe(Pipe::Stream));
    EXPECT_THAT(bus.Log(), ElementsAre("claim 0"));
}

TEST_F(LibusbLinkTest, DataLandsInTheCallersMemory)
{
    Open();
    transfer->Submit(memory);
    EXPECT_EQ(bus.Memory(*device, streamIn), reinterpret_cast<unsigned char *>(memory.data()));
    bus.Complete(*device, streamIn, LIBUSB_TRANSFER_COMPLETED, {std::byte{7}, std::byte{8}});
    ASSERT_TRUE(done.Wait(1));
    EXPECT_EQ(done.last, transfer.get());
    EXPECT_EQ(transfer->Status(), TransferStatus::Completed);
    EXPECT_EQ(transfer->Received().data(), memory.data());
    EXPECT_EQ(transfer->Received().size(), 2U);
    EXPECT_EQ(transfer->Buffer().size(), memory.size());
    EXPECT_EQ(memory[1], std::byte{8});
}

struct Ending {
    libusb_transfer_status libusb;
    TransferStatus status;
    std::size_t received; ///< of two bytes
};
class EndingTest : public LibusbLinkTest, public testing::WithParamInterface<Ending> {};

TEST_P(EndingTest, HasItsStatus)
{
    Open();
    transfer->Submit(memory);
    bus.Complete(*device, streamIn, GetParam().libusb, {std::byte{7}, std::byte{8}});
    ASSERT_TRUE(done.Wait(1));
    EXPECT_EQ(transfer->Status(), GetParam().status);
    EXPECT_EQ(transfer->Received().size(), GetParam().received);
    EXPECT_EQ(link->IsGone(), GetParam().status == TransferStatus::Gone);
}

INSTANTIATE_TEST_SUITE_P(All, EndingTest,
                         testing::Values(Ending{LIBUSB_TRANSFER_COMPLETED, TransferStatus::Completed, 2},
                                         Ending{LIBUSB_TRANSFER_CANCELLED, TransferStatus::Cancelled, 2},
                                         Ending{LIBUSB_TRANSFER_STALL, TransferStatus::Stalled, 0},
                                         Ending{LIBUSB_TRANSFER_OVERFLOW, TransferStatus::Babble, 0},
                                         Ending{LIBUSB_TRANSFER_ERROR, TransferStatus::Failed, 0},
                                         Ending{LIBUSB_TRANSFER_TIMED_OUT, TransferStatus::TimedOut, 0},
                                         Ending{LIBUSB_TRANSFER_NO_DEVICE, TransferStatus::Gone, 0}));

TEST_F(LibusbLinkTest, TransfersOfAPipeAreFilledInTheirOrder)
{
    Open();
    const auto second = link->NewTransfer(Pipe::Stream, done);
    std::vector<std::byte> other(4096);
    transfer->Submit(memory);
    second->Submit(other);
    bus.Complete(*device, streamIn, LIBUSB_TRANSFER_COMPLETED, {std::byte{1}});
    bus.Complete(*device, streamIn, LIBUSB_TRANSFER_COMPLETED, {}); // an empty packet
    ASSERT_TRUE(done.Wait(2));
    EXPECT_EQ(transfer->Received().size(), 1U);
    EXPECT_EQ(second->Received().size(), 0U);
    EXPECT_EQ(second->Status(), TransferStatus::Completed);
}

TEST_F(LibusbLinkTest, CancelBringsTheTransferBack)
{
    Open();
    transfer->Cancel(); // nothing to cancel
    EXPECT_EQ(done.Count(), 0);
    transfer->Submit(memory);
    transfer->Cancel();
    ASSERT_TRUE(done.Wait(1));
    EXPECT_EQ(transfer->Status(), TransferStatus::Cancelled);
    transfer->Cancel();
    transfer->Submit(memory); // it can be used again
    bus.Complete(*device, streamIn, LIBUSB_TRANSFER_COMPLETED, {std::byte{1}});
    ASSERT_TRUE(done.Wait(2));
    EXPECT_EQ(transfer->Status(), TransferStatus::Completed);
}

TEST_F(LibusbLinkTest, CancelThatComesTooLateLeavesTheData)
{
    Open();
    bus.OvertakeNextCancel({std::byte{9}, std::byte{9}, std::byte{9}});
    transfer->Submit(memory);
    transfer->Cancel();
    ASSERT_TRUE(done.Wait(1));
    EXPECT_EQ(transfer->Status(), TransferStatus::Completed);
    EXPECT_EQ(transfer->Received().size(), 3U);
    EXPECT_EQ(done.Count(), 1);
}

TEST_F(LibusbLinkTest, MemoryThatTheSystemLacksIsSaidAtOnce)
{
    FakeUsbDevice script;
    script.maxInFlight = 6000;
    Open(script);
    const auto second = link->NewTransfer(Pipe::Stream, done);
    std::vector<std::byte> other(4096);
    transfer->Submit(memory);
    second->Submit(other);
    EXPECT_EQ(done.Count(), 1);
    EXPECT_EQ(second->Status(), TransferStatus::NoMemory);
    EXPECT_TRUE(second->Received().empty());
    bus.Complete(*device, streamIn, LIBUSB_TRANSFER_COMPLETED, {std::byte{1}});
    ASSERT_TRUE(done.Wait(2));
    second->Submit(other);
    EXPECT_EQ(bus.Pending(*device, streamIn), 1U);
    second->Cancel();
    ASSERT_TRUE(done.Wait(3));
}

TEST_F(LibusbLinkTest, OutIsCompleteStalledShortOrLate)
{
    FakeUsbDevice script;
    script.takesOut = false;
    Open(script);
    const auto end = [&](libusb_transfer_status status, std::size_t size) {
        auto result = std::async(std::launch::async, [&] { return link->Out(std::span(memory).first(24), Later()); });
        bus.WaitPending(*device, controlOut, 1);
        bus.Complete(*device, controlOut, status, std::vector<std::byte>(size));
        return result.get();
    };
    EXPECT_EQ(end(LIBUSB_TRANSFER_COMPLETED, 24), TransferStatus::Completed);
    EXPECT_EQ(end(LIBUSB_TRANSFER_COMPLETED, 23), TransferStatus::Failed);
    EXPECT_EQ(end(LIBUSB_TRANSFER_STALL, 0), TransferStatus::Stalled);
    EXPECT_EQ(link->Out(std::span(memory).first(24), Clock::now() + 1ms), TransferStatus::TimedOut);
    EXPECT_EQ(bus.Pending(*device, controlOut), 0U);
    EXPECT_EQ(end(LIBUSB_TRANSFER_COMPLETED, 24), TransferStatus::Completed);
    EXPECT_EQ(end(LIBUSB_TRANSFER_NO_DEVICE, 0), TransferStatus::Gone);
    EXPECT_EQ(link->Out(memory, Later()), TransferStatus::Gone);
}

TEST_F(LibusbLinkTest, HaltsAreSetAndClearedByEndpoint)
{
    Open();
    for (const Pipe pipe : {Pipe::Control, Pipe::Event, Pipe::Stream}) {
        link->SetHalt(pipe);
        link->ClearHalt(pipe);
    }
    EXPECT_THAT(bus.Log(), ElementsAre("claim 0", "claim 1", "claim 2", "halt 0x02", "halt 0x81", "clear 0x02",
                                       "clear 0x81", "halt 0x83", "clear 0x83", "halt 0x85", "clear 0x85"));
    device->script.haltError = LIBUSB_ERROR_PIPE; // a camera that refuses
    link->SetHalt(Pipe::Stream);
    EXPECT_FALSE(link->IsGone());
    EXPECT_THAT(Log(), HasSubstr("SN1: halting endpoint 0x85"));
}

TEST_F(LibusbLinkTest, UnplugEndsEveryTransferAndIsToldOnce)
{
    Open();
    Gone gone;
    link->SetGoneListener(&gone);
    std::vector<std::unique_ptr<BulkIn>> transfers;
    for (int i = 0; i < 10; ++i) {
        transfers.push_back(link->NewTransfer(i % 2 == 0 ? Pipe::Stream : Pipe::Event, done));
        transfers.back()->Submit(memory);
    }
    bus.Unplug(*device);
    ASSERT_TRUE(done.Wait(10));
    for (const auto &each : transfers)
        EXPECT_EQ(each->Status(), TransferStatus::Gone);
    EXPECT_TRUE(link->IsGone());
    EXPECT_EQ(gone.told, 1);

    transfer->Submit(memory);
    EXPECT_EQ(done.Count(), 11);
    EXPECT_EQ(transfer->Status(), TransferStatus::Gone);
    EXPECT_EQ(link->Out(memory, Later()), TransferStatus::Gone);
    link->SetHalt(Pipe::Stream);
    link->ClearHalt(Pipe::Stream);
    EXPECT_EQ(link->Reset(), TransferStatus::Gone);
    link->Close();
    EXPECT_EQ(gone.told, 1);
    EXPECT_EQ(bus.Count().handles, 0);

    Gone late;
    link->SetGoneListener(&late);
    EXPECT_EQ(late.told, 1);
}

TEST_F(LibusbLinkTest, UnplugIsNoticedWithoutTransfers)
{
    Open();
    Gone gone;
    link->SetGoneListener(&gone);
    bus.Unplug(*device);
    while (gone.told == 0)
        std::this_thread::yield();
    EXPECT_TRUE(link->IsGone());
    link->SetGoneListener(nullptr);
}

TEST_F(LibusbLinkTest, TransfersThatTheUnpluggingLeavesBehindAreTakenBack)
{
    FakeUsbDevice script;
    script.completesWhenUnplugged = false;
    Open(script);
    transfer->Submit(memory);
    bus.Unplug(*device);
    ASSERT_TRUE(done.Wait(1));
    EXPECT_EQ(transfer->Status(), TransferStatus::Gone);
}

TEST_F(LibusbLinkTest, WithoutHotplugATransferTellsOfTheUnplugging)
{
    bus.hasHotplug = false;
    Open();
    EXPECT_THAT(Log(), HasSubstr("this libusb has no hot-plug"));
    EXPECT_EQ(bus.Count().hotplugCallbacks, 0);
    Gone gone;
    link->SetGoneListener(&gone);
    transfer->Submit(memory);
    bus.Unplug(*device);
    ASSERT_TRUE(done.Wait(1));
    EXPECT_EQ(transfer->Status(), TransferStatus::Gone);
    EXPECT_EQ(gone.told, 1);
}

TEST_F(LibusbLinkTest, WithoutHotplugACallTellsOfTheUnplugging)
{
    bus.hotplugError = LIBUSB_ERROR_NO_MEM;
    Open();
    EXPECT_THAT(Log(), HasSubstr("no news of unplugged cameras"));
    Gone gone;
    link->SetGoneListener(&gone);
    bus.Unplug(*device);
    link->ClearHalt(Pipe::Stream);
    EXPECT_TRUE(link->IsGone());
    EXPECT_EQ(gone.told, 1);
}

TEST_F(LibusbLinkTest, NeighbourDoesNotNotice)
{
    Open();
    FakeUsbDevice script;
    script.ports = {2};
    libusb_device &neighbour = bus.Plug(script);
    const auto other = Enumerate().at(1)->Open();
    Gone gone;
    other->SetGoneListener(&gone);
    const auto its = other->NewTransfer(Pipe::Stream, done);
    std::vector<std::byte> its_memory(1024);
    its->Submit(its_memory);
    transfer->Submit(memory);
    bus.Unplug(*device);
    ASSERT_TRUE(done.Wait(1));
    EXPECT_EQ(done.last, transfer.get());
    link->Close();
    EXPECT_FALSE(other->IsGone());
    EXPECT_EQ(gone.told, 0);
    EXPECT_EQ(other->Out(its_memory, Later()), TransferStatus::Completed);
    bus.Complete(neighbour, streamIn, LIBUSB_TRANSFER_COMPLETED, {std::byte{1}});
    ASSERT_TRUE(done.Wait(2));
    EXPECT_EQ(its->Status(), TransferStatus::Completed);
}

TEST_F(LibusbLinkTest, CameraThatIsPluggedAgainOpensAnew)
{
    Open();
    transfer->Submit(memory);
    bus.Unplug(*device);
    ASSERT_TRUE(done.Wait(1));
    FakeUsbDevice script;
    script.address = 6;
    libusb_device &again = bus.Plug(script);
    const auto devices = Enumerate();
    ASSERT_EQ(devices.size(), 1U);
    EXPECT_NE(devices[0]->Identity().key, link->Identity().key);
    const auto second = devices[0]->Open(); // the old link is still there
    const auto its = second->NewTransfer(Pipe::Stream, done);
    its->Submit(memory);
    bus.Complete(again, streamIn, LIBUSB_TRANSFER_COMPLETED, {std::byte{1}});
    ASSERT_TRUE(done.Wait(2));
    EXPECT_EQ(its->Status(), TransferStatus::Completed);
    link->Close();
    EXPECT_FALSE(second->IsGone());
}

TEST_F(LibusbLinkTest, OneThreadServesAllLinksAndSleepsBetweenEvents)
{
    Open();
    std::vector<std::unique_ptr<UsbLink>> links;
    for (std::uint8_t port = 2; port < 6; ++port) {
        FakeUsbDevice script;
        script.ports = {port};
        bus.Plug(script);
        links.push_back(Enumerate().back()->Open());
    }
    for (const auto &each : links)
        EXPECT_EQ(each->Out(memory, Later()), TransferStatus::Completed);
    EXPECT_EQ(bus.EventThreads().size(), 1U);
    EXPECT_LE(bus.Count().waits, 5); // one for each transfer, and the one under way
    links.clear();
    transfer.reset();
    link->Close();
    const int waits = bus.Count().waits;
    EXPECT_LE(waits, 6);
    EXPECT_EQ(bus.Count().hotplugCallbacks, 0);

    link = Enumerate().at(0)->Open(); // and comes back
    EXPECT_EQ(link->Out(memory, Later()), TransferStatus::Completed);
}

TEST_F(LibusbLinkTest, FailureToWaitForEventsIsReportedOnceAndOvercome)
{
    Open();
    {
        std::lock_guard lock(bus.mutex);
        bus.eventError = LIBUSB_ERROR_IO;
    }
    // Wakes the thread if it waits already; its next wait fails.
    transfer->Submit(memory);
    bus.Complete(*device, streamIn, LIBUSB_TRANSFER_COMPLETED, {std::byte{1}});
    const auto failures = [&] {
        const std::string log = Log();
        std::size_t count = 0;
        for (auto at = log.find("waiting for USB transfers"); at != std::string::npos;
             at = log.find("waiting for USB transfers", at + 1))
            ++count;
        return count;
    };
    while (failures() == 0)
        std::this_thread::yield();
    {
        std::lock_guard lock(bus.mutex);
        bus.eventError = 0;
    }
    ASSERT_TRUE(done.Wait(1));
    EXPECT_EQ(link->Out(memory, Later()), TransferStatus::Completed);
    EXPECT_EQ(failures(), 1U);
}

TEST_F(LibusbLinkTest, ResetTakesTransfersBackFirst)
{
    Open();
    transfer->Submit(memory);
    EXPECT_EQ(link->Reset(), TransferStatus::Completed);
    ASSERT_TRUE(done.Wait(1));
    EXPECT_EQ(transfer->Status(), TransferStatus::Cancelled);
    EXPECT_EQ(bus.Count().resets, 1);
    EXPECT_FALSE(link->IsGone());
    transfer->Submit(memory);
    bus.Complete(*device, streamIn, LIBUSB_TRANSFER_COMPLETED, {std::byte{1}});
    ASSERT_TRUE(done.Wait(2));
    EXPECT_EQ(transfer->Status(), TransferStatus::Completed);
}

TEST_F(LibusbLinkTest, CameraThatComesBackFromItsResetAsANewOneIsGone)
{
    FakeUsbDevice script;
    script.resetResult = LIBUSB_ERROR_NOT_FOUND;
    Open(script);
    Gone gone;
    link->SetGoneListener(&gone);
    EXPECT_EQ(link->Reset(), TransferStatus::Completed);
    EXPECT_TRUE(link->IsGone());
    EXPECT_EQ(gone.told, 1);
    EXPECT_THAT(Log(), HasSubstr("SN1: reset: the camera comes back as a new device"));
}

TEST_F(LibusbLinkTest, ResetThatFailsLeavesTheLinkOpen)
{
    FakeUsbDevice script;
    script.resetResult = LIBUSB_ERROR_IO;
    Open(script);
    EXPECT_EQ(link->Reset(), TransferStatus::Failed);
    EXPECT_FALSE(link->IsGone());
    EXPECT_EQ(link->Out(memory, Later()), TransferStatus::Completed);
}

TEST_F(LibusbLinkTest, BytesInFlightAreTheSystemsLimitSharedByTheLinks)
{
    Open();
    constexpr std::size_t mebibyte = 1 << 20;
    EXPECT_EQ(link->MaxBytesInFlight(), 14 * mebibyte); // the kernel's default is 16
    WriteUsbfsMemory("1000");
    EXPECT_EQ(link->MaxBytesInFlight(), 875 * mebibyte);
    WriteUsbfsMemory("0");
    EXPECT_EQ(link->MaxBytesInFlight(), SIZE_MAX);
    WriteUsbfsMemory("64");
    FakeUsbDevice script;
    script.ports = {2};
    bus.Plug(script);
    const auto other = Enumerate().at(1)->Open();
    EXPECT_EQ(link->MaxBytesInFlight(), 28 * mebibyte);
    other->Close();
    EXPECT_EQ(link->MaxBytesInFlight(), 56 * mebibyte);
}

TEST_F(LibusbLinkTest, CloseTakesBackWhatStillPends)
{
    FakeUsbDevice script;
    script.takesOut = false;
    Open(script);
    transfer->Submit(memory);
    auto out = std::async(std::launch::async, [&] { return link->Out(std::span(memory).first(24), Later()); });
    bus.WaitPending(*device, controlOut, 1);
    link->Close();
    EXPECT_EQ(out.get(), TransferStatus::Gone);
    ASSERT_TRUE(done.Wait(1));
    EXPECT_EQ(transfer->Status(), TransferStatus::Gone);
    EXPECT_EQ(bus.Count().handles, 0);
    transfer->Submit(memory);
    EXPECT_EQ(done.Count(), 2);
    EXPECT_EQ(transfer->Status(), TransferStatus::Gone);
    link->Close(); // and once more
}

TEST_F(LibusbLinkTest, ManyThreadsMaySubmitCancelAndUnplug)
{
    for (std::uint8_t round = 0; round < 50; ++round) {
        FakeUsbDevice script;
        script.ports = {static_cast<std::uint8_t>(round + 1)};
        libusb_device &camera = bus.Plug(script);
        const auto devices = Enumerate();
        const auto itsLink = devices.back()->Open();
        Done itsDone;
        std::vector<std::unique_ptr<BulkIn>> transfers;
        std::vector<std::vector<std::byte>> buffers(8, std::vector<std::byte>(1024));
        for (int i = 0; i < 8; ++i)
            transfers.push_back(itsLink->NewTransfer(i % 2 == 0 ? Pipe::Stream : Pipe::Event, itsDone));
        std::thread submitter([&] {
            for (std::size_t i = 0; i < 8; ++i)
                transfers[i]->Submit(buffers[i]);
        });
        std::thread canceller([&] {
            for (auto each = transfers.rbegin(); each != transfers.rend(); ++each)
                (*each)->Cancel();
        });
        bus.Unplug(camera);
        submitter.join();
        canceller.join();
        ASSERT_TRUE(itsDone.Wait(8));
        itsLink->Close();
        ASSERT_EQ(itsDone.Count(), 8);
    }
}

} // namespace
} // namespace Orvi::Test
