#pragma once
// The 64-bit handles that applications hold: kind, generation, slot. A handle is looked up, never followed: one that is
// stale, made up or of another family is refused with the family's status.

#include "u3v/core/Status.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace Orvi::U3v {

enum class HandleKind : std::uint8_t { Camera = 1, Stream, StreamRequest, Event, EventRequest, Node };

/// The parts of a handle: kind in bits 63..56, generation in 55..32, slot below.
struct HandleParts {
    static constexpr std::uint32_t maxGeneration = 0xFFFFFF;

    HandleKind kind;
    std::uint32_t generation;
    std::uint32_t slot;

    static constexpr HandleParts Of(std::uint64_t handle)
    {
        return {static_cast<HandleKind>(handle >> 56), static_cast<std::uint32_t>(handle >> 32) & maxGeneration,
                static_cast<std::uint32_t>(handle)};
    }
    constexpr std::uint64_t Handle() const
    {
        return static_cast<std::uint64_t>(kind) << 56 | static_cast<std::uint64_t>(generation) << 32 | slot;
    }
};

template <class T, HandleKind kind, CAM_API_STATUS unknown>
class HandleTable {
  public:
    std::uint64_t Insert(std::shared_ptr<T> object)
    {
        std::lock_guard lock(mutex_);
        std::uint32_t slot;
        if (free_.empty()) {
            slot = static_cast<std::uint32_t>(slots_.size());
            slots_.emplace_back();
        } else {
            // The slot that is free for longest, so that a stale handle stays recognisable for as long as possible.
            slot = free_.front();
            free_.pop_front();
        }
        slots_[slot].object = std::move(object);
        return HandleParts{kind, slots_[slot].generation, slot}.Handle();
    }

    /// Throws StatusError(unknown).
    std::shared_ptr<T> Get(std::uint64_t handle) const
    {
        std::lock_guard lock(mutex_);
        return slots_[SlotOf(handle)].object;
    }

    std::shared_ptr<T> Remove(std::uint64_t handle)
    {
        std::lock_guard lock(mutex_);
        const std::uint32_t slot = SlotOf(handle);
        // A slot whose generations are used up is never given out again.
        if (++slots_[slot].generation <= HandleParts::maxGeneration)
            free_.push_back(slot);
        return std::exchange(slots_[slot].object, nullptr);
    }

    /// All objects of the table, for looking through them without holding its lock.
    std::vector<std::pair<std::uint64_t, std::shared_ptr<T>>> All() const
    {
        std::lock_guard lock(mutex_);
        std::vector<std::pair<std::uint64_t, std::shared_ptr<T>>> all;
        for (std::uint32_t slot = 0; slot < slots_.size(); ++slot)
            if (slots_[slot].object != nullptr)
                all.emplace_back(HandleParts{kind, slots_[slot].generation, slot}.Handle(), slots_[slot].object);
        return all;
    }

  private:
    struct Slot {
        std::shared_ptr<T> object;
        std::uint32_t generation = 1;
    };

    std::uint32_t SlotOf(std::uint64_t handle) const
    {
        const HandleParts parts = HandleParts::Of(handle);
        if (parts.kind != kind || parts.slot >= slots_.size() || slots_[parts.slot].object == nullptr ||
            slots_[parts.slot].generation != parts.generation)
            throw StatusError(unknown, "unknown or stale handle");
        return parts.slot;
    }

    mutable std::mutex mutex_;
    std::vector<Slot> slots_;
    std::deque<std::uint32_t> free_;
};

/// A node handle names its camera's handle and the node's number: its generation, 12 bits of slot, 20 bits of number.
struct NodeHandleParts {
    static constexpr std::uint32_t idBits = 20, slotBits = 12;

    std::uint64_t camera;
    std::uint32_t id;

    static constexpr bool IsNode(std::uint64_t handle) { return HandleParts::Of(handle).kind == HandleKind::Node; }
    static constexpr NodeHandleParts Of(std::uint64_t handle)
    {
        const HandleParts parts = HandleParts::Of(handle);
        return {HandleParts{HandleKind::Camera, parts.generation, parts.slot >> idBits}.Handle(),
                parts.slot & ((1U << idBits) - 1)};
    }
    constexpr std::uint64_t Handle() const
    {
        const HandleParts parts = HandleParts::Of(camera);
        return HandleParts{HandleKind::Node, parts.generation, parts.slot << idBits | id}.Handle();
    }
};

} // namespace Orvi::U3v
