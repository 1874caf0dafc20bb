#pragma once
// An open stream of either mode, as its handle names it.

#include "u3v/core/Handles.h"
#include "u3v/protocol/StreamEngine.h"

namespace Orvi::U3v {

class RequestStream;
class SimpleRing;

class Stream {
  public:
    virtual ~Stream() = default;

    virtual StreamEngine &Engine() = 0;
    virtual void Start(std::uint32_t acquisitionMode) { Engine().Start(acquisitionMode); }
    virtual std::uint64_t LostCount() { return Engine().LostCount(); }
    /// Frees what belongs to the stream. As StreamEngine::Close.
    virtual void Close() { Engine().Close(); }

    /// Throw StatusError(0x808) when the stream is of the other mode.
    virtual RequestStream &Requests();
    virtual SimpleRing &Ring();
};

using StreamTable = HandleTable<Stream, HandleKind::Stream, CAM_API_STS_INVALID_STREAM_HANDLE>;
StreamTable &Streams();

} // namespace Orvi::U3v
