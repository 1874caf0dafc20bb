#include "vcam/EventQueue.h"

#include "vcam/GenCpCodes.h"
#include "vcam/Wire.h"

#include <algorithm>

namespace Orvi::Vcam {

namespace {

constexpr std::size_t s_entryHeader = 12;
constexpr std::size_t s_entrySize = s_entryHeader + sizeof(Event::block);
constexpr std::size_t s_entriesInPacket = (s_maxEventTransfer - s_genCpHeader) / s_entrySize;

} // namespace

void EventQueue::Push(const Event &event)
{
    const std::lock_guard lock(mutex_);
    if (events_.size() < s_depth) {
        events_.push_back(event);
    } else {
        ++lost_;
    }
}

std::vector<std::byte> EventQueue::TakePacket(bool severalInPacket)
{
    const std::lock_guard lock(mutex_);
    const std::size_t count = std::min(events_.size(), severalInPacket ? s_entriesInPacket : 1);
    if (count == 0) {
        return {};
    }
    std::vector<std::byte> packet(s_genCpHeader + count * s_entrySize);
    FieldWriter writer(packet);
    writer.Put(s_eventPrefix).Put(std::uint16_t{0}).Put(static_cast<std::uint16_t>(GenCpCommand::Event));
    writer.Put(static_cast<std::uint16_t>(count * s_entrySize)).Put(requestId_++);
    for (std::size_t i = 0; i < count; ++i) {
        writer.Put(static_cast<std::uint16_t>(severalInPacket ? s_entrySize : 0));
        const Event &event = events_.front();
        const auto id = ids_.find(event.kind);
        writer.Put(id == ids_.end() ? EventId(event.kind) : id->second).Put(event.time).Put(event.block);
        events_.pop_front();
    }
    return packet;
}

void EventQueue::Clear()
{
    const std::lock_guard lock(mutex_);
    events_.clear();
}

void EventQueue::Reset()
{
    const std::lock_guard lock(mutex_);
    events_.clear();
    lost_ = 0;
    requestId_ = 0;
}

void EventQueue::SetId(EventKind kind, std::uint16_t id)
{
    const std::lock_guard lock(mutex_);
    ids_[kind] = id;
}

std::uint32_t EventQueue::Lost() const
{
    const std::lock_guard lock(mutex_);
    return lost_;
}

} // namespace Orvi::Vcam
