#include "u3v/protocol/Stream.h"

namespace Orvi::U3v {

RequestStream &Stream::Requests() { throw StatusError(CAM_API_STS_NOT_AVAILABLE, "a simple stream has no requests"); }

SimpleRing &Stream::Ring()
{
    throw StatusError(CAM_API_STS_NOT_AVAILABLE, "a stream with requests has no buffers of its own");
}

StreamTable &Streams()
{
    static StreamTable streams;
    return streams;
}

} // namespace Orvi::U3v
