#pragma once
// A buffer on its way: from its owner into the wait queue, under transfers, and back complete.

#include "OrviCamApi.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Orvi::U3v {

struct Request {
    enum class Place : std::uint8_t { Owner, Waiting, InFlight, Complete, Released };

    std::byte *memory = nullptr;
    std::size_t size = 0;
    CAM_STREAM_REQUEST_INFO info{}; ///< of an event only status and valid size
    std::atomic<Place> place = Place::Owner;
    std::uint64_t handle = 0;
    const void *channel = nullptr; ///< whose request it is
    Request *next = nullptr;       ///< in the list that it is in
};

/// A queue through the requests themselves: no allocation on the way of an image.
class RequestList {
  public:
    bool IsEmpty() const { return first_ == nullptr; }

    void PushBack(Request &request)
    {
        request.next = nullptr;
        *(last_ == nullptr ? &first_ : &last_->next) = &request;
        last_ = &request;
    }

    void PushFront(Request &request)
    {
        request.next = first_;
        first_ = &request;
        if (last_ == nullptr)
            last_ = &request;
    }

    /// Null when empty.
    Request *PopFront()
    {
        Request *request = first_;
        if (request == nullptr)
            return nullptr;
        first_ = request->next;
        if (first_ == nullptr)
            last_ = nullptr;
        return request;
    }

    void Remove(Request &request)
    {
        RequestList rest;
        while (Request *other = PopFront())
            if (other != &request)
                rest.PushBack(*other);
        *this = rest;
    }

  private:
    Request *first_ = nullptr;
    Request *last_ = nullptr;
};

} // namespace Orvi::U3v
