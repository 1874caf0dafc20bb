#include "Stream.h"

#include "Failure.h"

#include <algorithm>

namespace Orvi::Tool {
namespace {

// The buffers are the queue between the camera and the disk: enough for the camera to go on while a file is written.
constexpr std::uint64_t s_bufferMemory = 256u << 20;
constexpr std::uint64_t s_fewestBuffers = 4;
constexpr std::uint64_t s_mostBuffers = 256;

} // namespace

Stream::Stream(const Camera &camera, std::uint64_t images) : serial_(camera.Entry().serial)
{
    try {
        Check(Sys_CreateSignal(&signal_), "cannot create a signal");
        std::uint32_t payload = 0;
        void *signal = reinterpret_cast<void *>(static_cast<std::uintptr_t>(signal_));
        Check(Strm_Open(camera.Handle(), signal, &payload, &stream_, 0), serial_ + ": cannot open the stream");
        const std::uint64_t most = s_bufferMemory / std::max<std::uint32_t>(payload, 1);
        const std::uint64_t count = std::min(images, std::clamp(most, s_fewestBuffers, s_mostBuffers));
        for (std::uint64_t i = 0; i < count; ++i) {
            std::vector<std::byte> &buffer = buffers_.emplace_back(payload);
            CAM_HANDLE &request = requests_.emplace_back(0);
            Check(Strm_CreateRequest(stream_, buffer.data(), payload, &request),
                  serial_ + ": cannot register a buffer");
            Check(Strm_EnqueueRequest(stream_, request), serial_ + ": cannot queue a buffer");
            ++queued_;
        }
    } catch (...) {
        Close();
        throw;
    }
}

Stream::~Stream() { Close(); }

void Stream::Start()
{
    Check(Strm_Start(stream_, CAM_ACQ_MODE_CONTINUOUS), serial_ + ": cannot start the stream");
    running_ = true;
}

void Stream::Stop()
{
    running_ = false;
    Check(Strm_Stop(stream_), serial_ + ": cannot stop the stream");
}

Stream::End Stream::Run(std::chrono::milliseconds timeout, const Sink &sink)
{
    while (!interrupted_) {
        const CAM_API_STATUS status = Sys_WaitForSignal(signal_, static_cast<std::uint32_t>(timeout.count()));
        if (status == CAM_API_STS_TIMEOUT)
            return End::Timeout;
        Check(status, serial_ + ": cannot wait for an image");
        if (!interrupted_ && Drain(sink) == Answer::Enough)
            return End::Enough;
    }
    return End::Interrupted;
}

void Stream::Interrupt()
{
    interrupted_ = true;
    Sys_SetSignal(signal_);
}

Stream::Answer Stream::Drain(const Sink &sink)
{
    // One signal may stand for several images.
    for (;;) {
        CAM_HANDLE request = 0;
        void *data = nullptr;
        std::uint32_t size = 0;
        CAM_STREAM_REQUEST_INFO info{};
        const CAM_API_STATUS status = Strm_DequeueRequest(stream_, &request, &data, &size);
        if (status == CAM_API_STS_EMPTY_COMPLETE_QUEUE && queued_ == 0) {
            info.uiStatus = CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE;
            return sink(info, {});
        }
        if (status == CAM_API_STS_EMPTY_COMPLETE_QUEUE)
            return Answer::More;
        Check(status, serial_ + ": cannot take an image");
        Check(Strm_GetStrmReqInfo(stream_, request, &info), serial_ + ": cannot read what an image is");
        if (sink(info, {static_cast<const std::byte *>(data), size}) == Answer::Enough)
            return Answer::Enough;
        // Unplugged since the image came: those behind it still tell.
        if (const CAM_API_STATUS queued = Strm_EnqueueRequest(stream_, request); IsCameraGone(queued))
            --queued_;
        else
            Check(queued, serial_ + ": cannot queue a buffer");
    }
}

void Stream::Close() noexcept
{
    // What fails here has failed before, or the camera is gone: the rest is still to be given back.
    if (stream_ != 0) {
        if (running_)
            Strm_Stop(stream_);
        Strm_FlushWaitQueue(stream_);
        CAM_HANDLE request = 0;
        while (Strm_DequeueRequest(stream_, &request, nullptr, nullptr) == CAM_API_STS_SUCCESS)
            ;
        for (const CAM_HANDLE created : requests_)
            Strm_ReleaseRequest(stream_, created);
        Strm_Close(stream_);
    }
    if (signal_ != 0)
        Sys_CloseSignal(signal_);
}

} // namespace Orvi::Tool
