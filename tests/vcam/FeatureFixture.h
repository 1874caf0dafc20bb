#pragma once
// A small unthrottled camera with its control, a stream, and the settings that its pictures are to have.

#include "HostSide.h"

namespace Orvi::Vcam::Test {

class Feature : public testing::Test {
  protected:
    static constexpr std::uint32_t Value(std::uint32_t block) { return block + 0x1C; }
    void SetUp() override
    {
        control_.Write(Reg::Unthrottled, 1);
        settings_.sensorWidth = settings_.width = 320;
        settings_.sensorHeight = settings_.height = 240;
    }
    static constexpr std::uint32_t s_rgb8 = 0x02180014;
    /// Takes one image and compares it with the reference for settings_.
    void ExpectReference()
    {
        const Frame frame = Stream::One(*camera_, control_);
        std::vector<std::byte> image(settings_.ImageBytes());
        RenderReference(settings_, 0, image);
        EXPECT_EQ(frame.image, image);
    }
    void Begin(std::uint32_t command = 8)
    {
        stream_.Configure(stream_.SimpleCut());
        stream_.Enable();
        stream_.Start(command);
    }
    Frame Next()
    {
        stream_.Post();
        return stream_.Take();
    }
    void ExpectImage(const Frame &frame, const PictureSettings &settings) const
    {
        std::vector<std::byte> image(settings.ImageBytes());
        RenderReference(settings, frame.block, image);
        EXPECT_TRUE(frame.image == image) << "block " << frame.block;
    }
    /// No image comes for a while: the posted transfer is still there.
    void ExpectNoImage()
    {
        Transfer none(1024);
        camera_->Submit(Endpoint::StreamIn, none);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_FALSE(none.IsDone());
        EXPECT_TRUE(camera_->Cancel(Endpoint::StreamIn, none));
    }
    /// Waits until the camera takes the next user-set command.
    void AwaitUserSet()
    {
        EXPECT_TRUE(Eventually([&] { return control_.Read(Reg::UserSetDone) == 1; }));
    }
    void SaveUserSet(std::uint32_t set) { CommandUserSet(Reg::UserSetSave, set); }
    void LoadUserSet(std::uint32_t set) { CommandUserSet(Reg::UserSetLoad, set); }
    void CommandUserSet(std::uint64_t command, std::uint32_t set)
    {
        control_.Write(Reg::UserSetSelector, set);
        control_.Write(command, 1);
        AwaitUserSet();
    }
    void Trigger() { control_.Write(Value(Block::SoftwareTrigger), 8); }

    std::shared_ptr<VirtualCamera> camera_ = MakeCamera();
    Control control_{*camera_};
    Stream stream_{*camera_, control_};
    PictureSettings settings_;
};

} // namespace Orvi::Vcam::Test
