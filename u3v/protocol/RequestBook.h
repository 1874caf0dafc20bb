#pragma once
// The requests that an application registers with a channel, and the queue of those that are complete.

#include "u3v/core/Handles.h"
#include "u3v/core/Signal.h"
#include "u3v/protocol/Request.h"

#include <mutex>

namespace Orvi::U3v {

template <HandleKind kind>
class RequestBook {
  public:
    /// `signal` is set each time a request completes.
    explicit RequestBook(void *signal) : signal_(signal) {}
    RequestBook(const RequestBook &) = delete;
    RequestBook &operator=(const RequestBook &) = delete;
    ~RequestBook() { Clear(); }

    std::uint64_t Register(void *memory, std::size_t size)
    {
        auto request = std::make_shared<Request>();
        request->memory = static_cast<std::byte *>(memory);
        request->size = size;
        request->channel = this;
        Request &registered = *request;
        return registered.handle = All().Insert(std::move(request));
    }

    // These throw StatusError: 0xA for a handle that is none of this book's, 0x805 for a request that is queued.

    void Deregister(std::uint64_t handle)
    {
        const auto request = Own(handle);
        {
            std::lock_guard lock(mutex_);
            if (request->place == Request::Place::Complete) {
                complete_.Remove(*request);
                request->place = Request::Place::Owner;
            }
        }
        Move(*request, Request::Place::Released);
        All().Remove(handle);
    }

    /// Takes a request from its owner; `queue` puts it where it is to be filled, or throws.
    template <class Queue>
    void Enqueue(std::uint64_t handle, Queue queue)
    {
        const auto request = Own(handle);
        Move(*request, Request::Place::Waiting);
        try {
            queue(*request);
        } catch (...) {
            request->place = Request::Place::Owner;
            throw;
        }
    }

    CAM_STREAM_REQUEST_INFO Info(std::uint64_t handle) const
    {
        const auto request = Own(handle);
        if (const auto place = request->place.load();
            place == Request::Place::Waiting || place == Request::Place::InFlight)
            FailBusy();
        return request->info;
    }

    /// Puts a request into the queue of complete ones and sets the signal.
    void Complete(Request &request)
    {
        {
            std::lock_guard lock(mutex_);
            request.place = Request::Place::Complete;
            complete_.PushBack(request);
        }
        SetSignal(signal_);
    }

    /// The oldest complete request, which is its owner's again; null when none is. Asked once too often for every
    /// image, so an empty queue is no exception.
    Request *TakeComplete()
    {
        std::lock_guard lock(mutex_);
        Request *request = complete_.PopFront();
        if (request != nullptr)
            request->place = Request::Place::Owner;
        return request;
    }

    /// Forgets all requests; nobody may be filling one.
    void Clear()
    {
        for (const auto &[handle, request] : All().All())
            if (request->channel == this)
                All().Remove(handle);
        complete_ = {};
    }

  private:
    using Table = HandleTable<Request, kind, CAM_API_STS_INVALID_REQUEST_HANDLE>;

    static Table &All()
    {
        static Table table;
        return table;
    }

    std::shared_ptr<Request> Own(std::uint64_t handle) const
    {
        auto request = All().Get(handle);
        if (request->channel != this)
            throw StatusError(CAM_API_STS_INVALID_REQUEST_HANDLE, "a request of another channel");
        return request;
    }

    static void Move(Request &request, Request::Place to)
    {
        auto expected = Request::Place::Owner;
        if (!request.place.compare_exchange_strong(expected, to))
            FailBusy();
    }

    [[noreturn]] static void FailBusy() { throw StatusError(CAM_API_STS_BUSY, "the request is queued"); }

    void *const signal_;
    std::mutex mutex_;
    RequestList complete_;
};

} // namespace Orvi::U3v
