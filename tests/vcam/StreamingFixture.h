#pragma once
// A camera that takes images as fast as a host fetches them, and a host that decides by itself which transfers it
// posts.

#include "HostSide.h"

namespace Orvi::Vcam::Test {

class Streaming : public testing::Test {
  protected:
    void SetUp() override { control_.Write(Reg::Unthrottled, 1); }
    void Throttle(std::uint32_t milliHertz)
    {
        control_.Write(Reg::Unthrottled, 0);
        control_.Write(Block::ExposureTime + 0x1C, 20);
        control_.Write(Block::FrameRate + 0x1C, milliHertz);
    }
    std::vector<std::byte> Reference(std::uint64_t block)
    {
        PictureSettings settings{.sensorWidth = 320, .sensorHeight = 240};
        settings.width = control_.Read(ImageSizeWord::Width);
        settings.height = control_.Read(ImageSizeWord::Height);
        settings.pixelFormat = control_.Read(Reg::PixelFormat);
        settings.exposure = control_.Read(Block::ExposureTime + 0x1C);
        std::vector<std::byte> image(settings.ImageBytes());
        RenderReference(settings, block, image);
        return image;
    }

    void Begin(std::uint32_t command = 8)
    {
        stream_.Enable();
        stream_.Start(command);
    }
    void Post(int frames)
    {
        for (int i = 0; i < frames; ++i) {
            stream_.Post();
        }
    }
    void Submit(std::initializer_list<Transfer *> transfers)
    {
        for (Transfer *transfer : transfers) {
            camera_->Submit(Endpoint::StreamIn, *transfer);
        }
    }
    /// Begins an acquisition whose first image has sent its leader and waits for further transfers.
    void BeginFrame(Transfer &leader)
    {
        stream_.Configure(stream_.SimpleCut());
        Submit({&leader});
        Begin();
        leader.Wait();
    }

    std::shared_ptr<VirtualCamera> camera_ = MakeCamera();
    Control control_{*camera_};
    Stream stream_{*camera_, control_};
};

} // namespace Orvi::Vcam::Test
