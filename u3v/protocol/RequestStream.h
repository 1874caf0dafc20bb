#pragma once
// Request mode: buffers of the application, filled in the order in which they are queued and taken back in the order in
// which they complete.

#include "u3v/protocol/RequestBook.h"
#include "u3v/protocol/Stream.h"

namespace Orvi::U3v {

class RequestStream : public Stream, private StreamEngine::Sink {
  public:
    using Book = RequestBook<HandleKind::StreamRequest>;

    RequestStream(std::shared_ptr<Camera> camera, void *signal, std::size_t maxTransferSize)
        : book_(signal), engine_(std::move(camera), maxTransferSize, *this)
    {
    }
    ~RequestStream() override { Close(); }

    StreamEngine &Engine() override { return engine_; }
    RequestStream &Requests() override { return *this; }
    void Close() override
    {
        engine_.Close();
        book_.Clear();
    }

    Book &AllRequests() { return book_; }
    void Queue(std::uint64_t handle)
    {
        book_.Enqueue(handle, [this](Request &request) { engine_.Queue(request); });
    }

  private:
    void OnRequest(Request &request) noexcept override { book_.Complete(request); }

    Book book_;
    StreamEngine engine_; // the last: it calls OnRequest() until it is gone
};

} // namespace Orvi::U3v
