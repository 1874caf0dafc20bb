#pragma once
// Images of one camera in request mode: the transport writes into buffers of this program, which sleeps until one is
// full.

#include "Camera.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace Orvi::Tool {

/// Opens a stream with its buffers; closes it in whatever state it is. Not to be opened, started, stopped or closed
/// while another stream is.
class Stream {
  public:
    /// Buffers for up to `images`, as far as a share of memory allows.
    Stream(const Camera &camera, std::uint64_t images);
    ~Stream();
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;

    void Start();
    void Stop();

    enum class Answer { More, Enough };
    using Sink = std::function<Answer(const CAM_STREAM_REQUEST_INFO &info, std::span<const std::byte> data)>;

    enum class End { Enough, Interrupted, Timeout };
    /// Hands each completed request to the sink, good or bad, until the sink has enough, Interrupt() is called or no
    /// image comes within the time limit.
    End Run(std::chrono::milliseconds timeout, const Sink &sink);

    /// Ends Run(); from any thread.
    void Interrupt();

  private:
    /// Answers Enough when the sink has enough.
    Answer Drain(const Sink &sink);
    void Close() noexcept;

    std::string serial_;
    CAM_HANDLE signal_ = 0;
    CAM_HANDLE stream_ = 0;
    bool running_ = false;
    std::atomic<bool> interrupted_ = false;
    std::vector<std::vector<std::byte>> buffers_;
    std::vector<CAM_HANDLE> requests_;
    std::size_t queued_ = 0; ///< requests that the transport holds, or has completed
};

} // namespace Orvi::Tool
