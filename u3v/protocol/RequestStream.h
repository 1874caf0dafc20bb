#pragma once
// Request mode: buffers of the application, filled in the order in which they are queued and taken back in the order in
// which they complete.

#include "u3v/protocol/Stream.h"

#include <mutex>

namespace Orvi::U3v {

class RequestStream : public Stream, private StreamEngine::Sink {
  public:
    /// `signal` is set each time a request completes.
    RequestStream(std::shared_ptr<Camera> camera, void *signal, std::size_t maxTransferSize);
    ~RequestStream() override;

    StreamEngine &Engine() override { return engine_; }
    RequestStream &Requests() override { return *this; }
    void Close() override;

    /// Throw StatusError: 0xA for a handle that is no request of this stream, 0x805 for a request that is queued.
    std::uint64_t Register(void *memory, std::size_t size);
    void Deregister(std::uint64_t handle);
    void Queue(std::uint64_t handle);
    CAM_STREAM_REQUEST_INFO Info(std::uint64_t handle) const;

    /// The oldest complete request, which is its owner's again. Throws StatusError(0x14) when none is complete.
    StreamRequest &TakeComplete();

  private:
    void OnRequest(StreamRequest &request) noexcept override;
    std::shared_ptr<StreamRequest> Own(std::uint64_t handle) const;

    void *const signal_;
    std::mutex completeMutex_;
    RequestList complete_;
    StreamEngine engine_; // the last: it calls OnRequest() until it is gone
};

} // namespace Orvi::U3v
