#include "u3v/protocol/RequestStream.h"

#include "u3v/core/Signal.h"

namespace Orvi::U3v {
namespace {

using Place = StreamRequest::Place;
using RequestTable = HandleTable<StreamRequest, HandleKind::StreamRequest, CAM_API_STS_INVALID_REQUEST_HANDLE>;

RequestTable &AllRequests()
{
    static RequestTable requests;
    return requests;
}

[[noreturn]] void FailBusy() { throw StatusError(CAM_API_STS_BUSY, "the request is queued"); }

} // namespace

RequestStream::RequestStream(std::shared_ptr<Camera> camera, void *signal, std::size_t maxTransferSize)
    : signal_(signal), engine_(std::move(camera), maxTransferSize, *this)
{
}

RequestStream::~RequestStream() { Close(); }

void RequestStream::Close()
{
    engine_.Close();
    for (const auto &[handle, request] : AllRequests().All())
        if (request->channel == this)
            AllRequests().Remove(handle);
}

std::uint64_t RequestStream::Register(void *memory, std::size_t size)
{
    auto request = std::make_shared<StreamRequest>();
    request->memory = static_cast<std::byte *>(memory);
    request->size = size;
    request->channel = this;
    StreamRequest &registered = *request;
    return registered.handle = AllRequests().Insert(std::move(request));
}

void RequestStream::Deregister(std::uint64_t handle)
{
    const auto request = Own(handle);
    {
        std::lock_guard lock(completeMutex_);
        if (request->place == Place::Complete) {
            complete_.Remove(*request);
            request->place = Place::Owner;
        }
    }
    Place expected = Place::Owner;
    if (!request->place.compare_exchange_strong(expected, Place::Released))
        FailBusy();
    AllRequests().Remove(handle);
}

void RequestStream::Queue(std::uint64_t handle)
{
    const auto request = Own(handle);
    Place expected = Place::Owner;
    if (!request->place.compare_exchange_strong(expected, Place::Waiting))
        FailBusy();
    try {
        engine_.Queue(*request);
    } catch (...) {
        request->place = Place::Owner;
        throw;
    }
}

CAM_STREAM_REQUEST_INFO RequestStream::Info(std::uint64_t handle) const
{
    const auto request = Own(handle);
    if (const Place place = request->place; place == Place::Waiting || place == Place::InFlight)
        FailBusy();
    return request->info;
}

StreamRequest &RequestStream::TakeComplete()
{
    std::lock_guard lock(completeMutex_);
    StreamRequest *request = complete_.PopFront();
    if (request == nullptr)
        throw StatusError(CAM_API_STS_EMPTY_COMPLETE_QUEUE, "no request is complete");
    request->place = Place::Owner;
    return *request;
}

void RequestStream::OnRequest(StreamRequest &request) noexcept
{
    {
        std::lock_guard lock(completeMutex_);
        request.place = Place::Complete;
        complete_.PushBack(request);
    }
    SetSignal(signal_);
}

std::shared_ptr<StreamRequest> RequestStream::Own(std::uint64_t handle) const
{
    auto request = AllRequests().Get(handle);
    if (request->channel != this)
        throw StatusError(CAM_API_STS_INVALID_REQUEST_HANDLE, "a request of another stream");
    return request;
}

} // namespace Orvi::U3v
