#pragma once
// A stream in request mode with its buffers, as an application keeps them.

#include "tests/e2e/VirtualCameraTest.h"

#include <cstddef>
#include <optional>

namespace Orvi::Testing {

/// A completed request.
struct Delivered {
    CAM_HANDLE hRequest = 0;
    const std::byte *image = nullptr;
    uint32_t size = 0;
    CAM_STREAM_REQUEST_INFO info{};
};

class RequestChannel {
  public:
    /// @param bufferSize 0 for the payload size
    RequestChannel(CAM_HANDLE hCam, std::size_t buffers, uint32_t bufferSize = 0);
    ~RequestChannel();
    RequestChannel(const RequestChannel &) = delete;
    RequestChannel &operator=(const RequestChannel &) = delete;

    CAM_HANDLE Stream() const { return hStrm_; }
    uint32_t PayloadSize() const { return payload_; }
    CAM_HANDLE Request(std::size_t i) const { return requests_[i]; }

    void EnqueueAll();
    void Enqueue(CAM_HANDLE hRequest);
    void Start(CAM_ACQ_MODE eAcqMode = CAM_ACQ_MODE_CONTINUOUS);
    void Stop();
    void Flush();

    /// The oldest completed request, waiting for it.
    Delivered Next();
    /// The same, but nothing when none is complete.
    std::optional<Delivered> TryNext();

    uint64_t LostCount() const;

  private:
    CAM_HANDLE hStrm_ = 0, hReady_ = 0;
    uint32_t payload_ = 0;
    std::vector<std::vector<std::byte>> buffers_;
    std::vector<CAM_HANDLE> requests_;
};

} // namespace Orvi::Testing
