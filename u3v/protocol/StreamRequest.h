#pragma once
// A buffer on its way: from its owner into the wait queue, under transfers, and back complete.

#include "OrviCamApi.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Orvi::U3v {

struct StreamRequest {
    enum class Place : std::uint8_t { Owner, Waiting, InFlight, Complete, Released };

    std::byte *memory = nullptr;
    std::size_t size = 0;
    CAM_STREAM_REQUEST_INFO info{};
    std::atomic<Place> place = Place::Owner;
    std::uint64_t handle = 0;
    const void *channel = nullptr; ///< whose request it is
    StreamRequest *next = nullptr; ///< in the list that it is in
};

/// A queue through the requests themselves: no allocation on the way of an image.
class RequestList {
  public:
    bool IsEmpty() const { return first_ == nullptr; }

    void PushBack(StreamRequest &request)
    {
        request.next = nullptr;
        *(last_ == nullptr ? &first_ : &last_->next) = &request;
        last_ = &request;
    }

    void PushFront(StreamRequest &request)
    {
        request.next = first_;
        first_ = &request;
        if (last_ == nullptr)
            last_ = &request;
    }

    /// Null when empty.
    StreamRequest *PopFront()
    {
        StreamRequest *request = first_;
        if (request == nullptr)
            return nullptr;
        first_ = request->next;
        if (first_ == nullptr)
            last_ = nullptr;
        return request;
    }

    void Remove(StreamRequest &request)
    {
        RequestList rest;
        while (StreamRequest *other = PopFront())
            if (other != &request)
                rest.PushBack(*other);
        *this = rest;
    }

  private:
    StreamRequest *first_ = nullptr;
    StreamRequest *last_ = nullptr;
};

} // namespace Orvi::U3v
