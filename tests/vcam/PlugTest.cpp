#include "HostSide.h"

#include <atomic>

namespace Orvi::Vcam::Test {
namespace {

class Observer final : public UsbFunction::GoneObserver {
  public:
    void OnGone() noexcept override { ++calls; }
    std::atomic<int> calls = 0;
};

class PlugTest : public testing::Test {
  protected:
    std::shared_ptr<VirtualCamera> camera_ = MakeCamera();
    Control control_{*camera_};
};

TEST_F(PlugTest, UnplugEndsAllTransfersAndTellsTheObserver)
{
    Observer observer;
    camera_->SetGoneObserver(&observer);
    Transfer control, event, stream;
    camera_->Submit(Endpoint::ControlIn, control);
    camera_->Submit(Endpoint::EventIn, event);
    camera_->Submit(Endpoint::StreamIn, stream);
    camera_->Unplug();
    for (Transfer *transfer : {&control, &event, &stream}) {
        EXPECT_TRUE(transfer->IsDone());
        EXPECT_EQ(transfer->status, TransferStatus::Gone);
    }
    EXPECT_EQ(observer.calls, 1);
    EXPECT_FALSE(camera_->IsPlugged());
    Transfer later;
    camera_->Submit(Endpoint::StreamIn, later);
    EXPECT_EQ(later.Wait().status, TransferStatus::Gone);
    EXPECT_EQ(camera_->Out(Control::Command(0x0800, Control::ReadScd(0, 4), 1)), TransferStatus::Gone);
    camera_->Unplug();
    EXPECT_EQ(observer.calls, 1);
}

TEST_F(PlugTest, ObserverThatHasLeftIsNotCalled)
{
    Observer observer;
    camera_->SetGoneObserver(&observer);
    camera_->SetGoneObserver(nullptr);
    camera_->Unplug();
    EXPECT_EQ(observer.calls, 0);
}

TEST_F(PlugTest, ReplugIsAPowerUpThatKeepsTheUserDefinedName)
{
    const std::string_view name = "gate";
    control_.WriteMemory(Reg::UserDefinedName, std::as_bytes(std::span(name.data(), name.size() + 1)));
    control_.Write(Block::Gain + 0x1C, 600);
    control_.Write(ImageSizeWord::Width, 160);
    camera_->Unplug();
    camera_->Plug();
    EXPECT_TRUE(camera_->IsPlugged());
    EXPECT_EQ(control_.Read(Block::Gain + 0x1C), 0u);
    EXPECT_EQ(control_.Read(ImageSizeWord::Width), 320u);
    char stored[64];
    control_.ReadMemory(Reg::UserDefinedName, std::as_writable_bytes(std::span(stored)));
    EXPECT_STREQ(stored, "gate");
}

TEST_F(PlugTest, RegisterPullsThePlugAfterItsAcknowledge)
{
    Observer observer;
    camera_->SetGoneObserver(&observer);
    control_.Write(Reg::UnplugNow, 1); // fails the test unless acknowledged
    EXPECT_TRUE(Eventually([&] { return observer.calls == 1; }));
    EXPECT_FALSE(camera_->IsPlugged());
    camera_->SetGoneObserver(nullptr);
}

TEST_F(PlugTest, RegisterBringsTheCameraBack)
{
    control_.Write(Reg::ReplugDelay, 30);
    control_.Write(Reg::UnplugNow, 1);
    EXPECT_TRUE(Eventually([&] { return !camera_->IsPlugged(); }));
    EXPECT_TRUE(Eventually([&] { return camera_->IsPlugged(); }));
    EXPECT_EQ(control_.Read(Reg::ReplugDelay), 0u);
    control_.Write(Reg::Unthrottled, 1);
    EXPECT_EQ(Stream::One(*camera_, control_).block, 0u);
}

TEST_F(PlugTest, CameraWithoutADelayStaysUnplugged)
{
    control_.Write(Reg::UnplugNow, 1);
    EXPECT_TRUE(Eventually([&] { return !camera_->IsPlugged(); }));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(camera_->IsPlugged());
}

TEST_F(PlugTest, UnplugWhileStreamingEndsEveryTransferOnce)
{
    for (int round = 0; round < 20; ++round) {
        control_.Write(Reg::Unthrottled, 1);
        Stream stream(*camera_, control_);
        stream.Configure({4096, 18, 4096, 0});
        std::vector<std::unique_ptr<Transfer>> transfers;
        for (int i = 0; i < 100; ++i) {
            camera_->Submit(Endpoint::StreamIn, *transfers.emplace_back(std::make_unique<Transfer>(4096)));
        }
        stream.Enable();
        stream.Start();
        transfers[static_cast<std::size_t>(round)]->Wait();
        camera_->Unplug();
        for (auto &transfer : transfers) {
            transfer->Wait();
        }
        EXPECT_EQ(transfers.back()->status == TransferStatus::Gone || transfers.back()->received > 0, true);
        camera_->Plug();
    }
}

TEST_F(PlugTest, UnplugByRegisterWhileTheHostKeepsAFrameWaiting)
{
    control_.Write(Reg::Unthrottled, 1);
    Stream stream(*camera_, control_);
    stream.Configure(stream.SimpleCut());
    Transfer leader(1024);
    camera_->Submit(Endpoint::StreamIn, leader);
    stream.Enable();
    stream.Start();
    leader.Wait(); // the payload has no transfer
    control_.Write(Reg::UnplugNow, 1);
    EXPECT_TRUE(Eventually([&] { return !camera_->IsPlugged(); }));
}

TEST_F(PlugTest, CameraWithPostedTransfersCanBeDestroyed)
{
    Transfer event, stream;
    camera_->Submit(Endpoint::EventIn, event);
    camera_->Submit(Endpoint::StreamIn, stream);
    camera_.reset();
    EXPECT_EQ(event.Wait().status, TransferStatus::Gone);
    EXPECT_EQ(stream.Wait().status, TransferStatus::Gone);
}

TEST_F(PlugTest, PlugMayBePulledFromSeveralThreadsAtOnce)
{
    Observer observer;
    camera_->SetGoneObserver(&observer);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] { camera_->Unplug(); });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(observer.calls, 1);
    camera_->SetGoneObserver(nullptr);
}

} // namespace
} // namespace Orvi::Vcam::Test
