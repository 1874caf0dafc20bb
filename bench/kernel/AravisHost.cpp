// Aravis's host, with synchronous transfers, on the same camera: an independent peer to compare with.

#include "HostBench.h"

#include <arv.h>

#include <cstdlib>

namespace Orvi::Bench {
namespace {

class AravisHost final : public Host {
  public:
    AravisHost()
    {
        GError *error = nullptr;
        camera_ = arv_camera_new(nullptr, &error);
        Check("open", error);
        device_ = arv_camera_get_device(camera_);
        arv_uv_device_set_usb_mode(ARV_UV_DEVICE(device_), ARV_UV_USB_MODE_SYNC);
        arv_camera_set_pixel_format(camera_, ARV_PIXEL_FORMAT_MONO_8, &error);
        Check("pixel format", error);
        arv_camera_set_region(camera_, 0, 0, s_width, s_height, &error);
        Check("region", error);
        arv_device_write_register(device_, s_unthrottled, 1, &error);
        Check("write register", error);
        arv_camera_set_acquisition_mode(camera_, ARV_ACQUISITION_MODE_CONTINUOUS, &error);
        Check("acquisition mode", error);
        payload_ = arv_camera_get_payload(camera_, &error);
        Check("payload", error);
    }
    ~AravisHost() override { g_object_unref(camera_); }
    AravisHost(const AravisHost &) = delete;
    AravisHost &operator=(const AravisHost &) = delete;

    void Start() override
    {
        GError *error = nullptr;
        stream_ = arv_camera_create_stream(camera_, nullptr, nullptr, &error);
        Check("create stream", error);
        for (std::uint32_t i = 0; i < s_buffers; ++i)
            arv_stream_push_buffer(stream_, arv_buffer_new(payload_, nullptr));
        arv_camera_start_acquisition(camera_, &error);
        Check("start", error);
    }

    std::size_t TakeImage() override
    {
        for (int tries = 0; tries < 20; ++tries) {
            ArvBuffer *buffer = arv_stream_timeout_pop_buffer(stream_, 20'000'000);
            if (buffer == nullptr)
                break;
            const bool isGood = arv_buffer_get_status(buffer) == ARV_BUFFER_STATUS_SUCCESS;
            arv_stream_push_buffer(stream_, buffer);
            if (isGood)
                return payload_;
        }
        std::fputs("aravis: no good image\n", stderr);
        std::exit(1);
    }

    void Stop() override
    {
        GError *error = nullptr;
        arv_camera_stop_acquisition(camera_, &error);
        Check("stop", error);
        g_object_unref(stream_); // its thread runs until then
    }

    std::uint32_t ReadRegister(std::uint64_t address) override
    {
        GError *error = nullptr;
        guint32 value = 0;
        arv_device_read_register(device_, address, &value, &error);
        Check("read register", error);
        return value;
    }

  private:
    static void Check(const char *what, const GError *error)
    {
        if (error == nullptr)
            return;
        std::fprintf(stderr, "aravis: %s: %s\n", what, error->message);
        std::exit(1);
    }

    ArvCamera *camera_ = nullptr;
    ArvDevice *device_ = nullptr;
    ArvStream *stream_ = nullptr;
    std::size_t payload_ = 0;
};

} // namespace
} // namespace Orvi::Bench

int main()
{
    Orvi::Bench::AravisHost host;
    Orvi::Bench::Measure(host);
}
