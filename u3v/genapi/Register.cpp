// Address arithmetic of registers, and their way through the cache to the port.

#include "u3v/genapi/RegisterNodes.h"

#include "u3v/core/Status.h"
#include "u3v/genapi/MapState.h"
#include "u3v/genapi/PortNode.h"
#include "u3v/genapi/Say.h"

#include <algorithm>

namespace Orvi::GenApi {

namespace {

constexpr std::string_view accessNames[] = {"NI", "NA", "WO", "RO", "RW"};
constexpr std::string_view cachingNames[] = {"NoCache", "WriteThrough", "WriteAround"};
constexpr std::string_view endianNames[] = {"LittleEndian", "BigEndian"};

/// The camera is gone or silent: the caller needs to see that, whichever node it asked.
constexpr bool IsLinkFailure(CAM_API_STATUS status)
{
    return status == CAM_API_STS_TIMEOUT || status == CAM_API_STS_CAMERA_NOT_RESPONDING ||
           status == CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE;
}

template <class F>
void Transfer(const Run &run, const Node &node, const char *what, std::uint64_t address, F &&f)
{
    try {
        f();
    } catch (const U3v::StatusError &error) {
        if (IsLinkFailure(error.Status()))
            throw;
        node.Fail(run, Say("cannot ", what, " ", Hex(address), ", ", error.what()));
    }
}

} // namespace

bool RegisterNode::TakeRegister(const Property &property)
{
    switch (property.prop) {
    // clang-format off
    case Prop::Address:    address_ += static_cast<std::uint64_t>(property.Int()); return true;
    case Prop::pAddress:   AddMoving().addresses.push_back(property.Target(Role::Address)); return true;
    case Prop::IntSwissKnife: AddMoving().addresses.push_back(property.Inner(Role::Address)); return true;
    case Prop::Length:     length_ = static_cast<std::uint32_t>(std::clamp<std::int64_t>(property.Int(), 0, notGiven - 1)); return true;
    case Prop::pLength:    lengthNode_ = property.Target(Role::Address); return true;
    case Prop::AccessMode: accessMode_ = property.OneOf<AccessMode>(accessNames); return true;
    case Prop::Cachable:   caching_ = property.OneOf<CachingMode>(cachingNames); return true;
    case Prop::Endianess:  bigEndian_ = property.OneOf<int>(endianNames) == 1; return true;
    case Prop::Swap:       if (property.YesNo()) bigEndian_ = !bigEndian_; return true;
        // clang-format on
    case Prop::pPort:
        port_ = dynamic_cast<PortNode *>(property.Target(Role::Port));
        if (port_ == nullptr)
            property.Fail(Say("'", property.Text(), "' is no Port"));
        return true;
    case Prop::pIndex: {
        Offset offset{property.Target(Role::Address), 0, nullptr};
        if (!property.Attribute("pOffset").empty())
            offset.factorNode = property.AttributeTarget("pOffset", Role::Address);
        else if (!property.Attribute("Offset").empty())
            offset.factor = property.IntAttribute("Offset");
        AddMoving().offsets.push_back(offset);
        return true;
    }
    default:
        return false;
    }
}

void RegisterNode::FinishRegister(Loader &loader, std::size_t limit)
{
    bigEndian_ = bigEndian_ != (port_ != nullptr && port_->SwapsEndianess());
    isRemembered_ = caching_ != CachingMode::NoCache && (port_ == nullptr || port_->IsCamera());
    if (length_ == notGiven && lengthNode_ == nullptr)
        FailLoading(loader, AsNode(), "has no Length");
    if (lengthNode_ == nullptr) {
        const std::int64_t length = length_;
        const std::size_t most = limit != 0 ? limit : maxLength;
        if (length <= 0 || static_cast<std::uint64_t>(length) > most)
            FailLoading(loader, AsNode(),
                        Say("has a Length of ", Text(length), ", 1 to ", std::to_string(most), " can be"));
        constexpr std::uint64_t page = RegisterCache::Page::size;
        const std::uint64_t end = address_ % page + static_cast<std::uint64_t>(length);
        isInOnePage_ = !moving_ && end <= page;
        // An index without an offset counts registers.
        if (moving_)
            for (Offset &offset : moving_->offsets)
                if (offset.factor == 0 && offset.factorNode == nullptr)
                    offset.factor = length;
    } else if (limit != 0) {
        FailLoading(loader, AsNode(), "has a pLength, a constant Length is needed");
    }
}

RegisterNode::Moving &RegisterNode::AddMoving()
{
    if (!moving_)
        moving_ = std::make_unique<Moving>();
    return *moving_;
}

AccessMode RegisterNode::RegisterAccess(Run &run)
{
    if (moving_) {
        for (Node *node : moving_->addresses)
            if (!IsReadable(node->Access(run)))
                return AccessMode::NotAvailable;
        for (const Offset &offset : moving_->offsets)
            if (!IsReadable(offset.index->Access(run)))
                return AccessMode::NotAvailable;
    }
    return port_ && !port_->IsAlwaysOpen() ? Combine(accessMode_, port_->Access(run)) : accessMode_;
}

std::uint64_t RegisterNode::MovingAddress(Run &run)
{
    run.map.Step(run, AsNode());
    std::uint64_t address = address_;
    for (Node *node : moving_->addresses)
        address += static_cast<std::uint64_t>(node->GetInt(run));
    for (const Offset &offset : moving_->offsets) {
        const std::int64_t factor = offset.factorNode ? offset.factorNode->GetInt(run) : offset.factor;
        address += static_cast<std::uint64_t>(offset.index->GetInt(run)) * static_cast<std::uint64_t>(factor);
    }
    return address;
}

std::size_t RegisterNode::LengthNow(Run &run)
{
    const std::int64_t length = lengthNode_ ? lengthNode_->GetInt(run) : length_;
    if (length < 0 || static_cast<std::uint64_t>(length) > maxLength)
        AsNode().Fail(run, Say("has a length of ", Text(length), " bytes, ", std::to_string(maxLength), " can be"));
    return static_cast<std::size_t>(length);
}

void RegisterNode::Poll(std::int64_t milliseconds, Node *block)
{
    const std::chrono::milliseconds time(milliseconds);
    if (!polling_ || time < polling_->time)
        polling_ = std::make_unique<Polling>(Polling{.time = time, .block = block});
}

bool RegisterNode::IsExpired(const Run &run, std::uint64_t address) const
{
    if (!polling_)
        return false;
    // The time is that of the last place alone.
    if (moving_ && address != moving_->last)
        return true;
    if (run.map.Now() - polling_->lastRead < polling_->time)
        return false;
    if (polling_->block == nullptr || run.blocking)
        return true;
    Run ask{run.map, run.subject};
    ask.blocking = true;
    try {
        return polling_->block->GetInt(ask) == 0;
    } catch (const Error &) {
        return true; // better one transaction too many than a value that is too old
    }
}

void RegisterNode::Read(Run &run, std::span<std::byte> data)
{
    if (accessMode_ == AccessMode::WriteOnly)
        AsNode().Fail(run, "cannot be read, it is write-only");
    const std::uint64_t address = AddressNow(run);
    if (isRemembered_ && !run.ignoreCache && !IsExpired(run, address))
        if (page_ ? page_->Read(address % RegisterCache::Page::size, data) : run.map.cache.Read(address, data))
            return;
    ReadPort(run, address, data);
}

void RegisterNode::ReadPort(Run &run, std::uint64_t address, std::span<std::byte> data)
{
    Transfer(run, AsNode(), "read", address, [&] {
        if (port_)
            port_->Read(run, address, data);
        else
            run.map.port.Read(address, data);
    });
    if (!isRemembered_)
        return;
    if (HasChanged(run.map, address, data))
        run.map.Changed(AsNode());
    Remember(run.map, address, data);
}

/// Whether the camera has another value than what was known of it.
bool RegisterNode::HasChanged(MapState &map, std::uint64_t address, std::span<const std::byte> data) const
{
    constexpr std::size_t most = 64; // what others depend on is a number or a short text
    std::array<std::byte, most> known;
    const auto before = std::span(known).first(std::min(data.size(), most));
    return map.cache.Read(address, before) && !std::equal(before.begin(), before.end(), data.begin());
}

void RegisterNode::Remember(MapState &map, std::uint64_t address, std::span<const std::byte> data)
{
    if (polling_)
        polling_->lastRead = map.Now();
    if (page_ == nullptr && isInOnePage_)
        page_ = map.cache.PageOf(address);
    if (page_ != nullptr)
        page_->Store(address % RegisterCache::Page::size, data);
    else
        map.cache.Store(address, data);
    if (!moving_)
        return;
    moving_->last = address;
    std::vector<std::uint64_t> &used = moving_->used;
    if (std::ranges::find(used, address) != used.end())
        return;
    constexpr std::size_t maxUsed = 256;
    if (used.size() == maxUsed) {
        for (const std::uint64_t old : used)
            map.cache.Forget(old, data.size());
        used.clear();
        map.cache.Store(address, data);
    }
    used.push_back(address);
}

void RegisterNode::Write(Run &run, std::span<const std::byte> data, std::span<const std::byte> mask)
{
    if (accessMode_ != AccessMode::ReadWrite && accessMode_ != AccessMode::WriteOnly)
        AsNode().Fail(run, "cannot be written, it is read-only");
    const std::uint64_t address = AddressNow(run);
    // Nothing is known of what a write leaves behind until it has succeeded.
    if (page_ != nullptr)
        page_->Forget(address % RegisterCache::Page::size, data.size());
    else if (port_ == nullptr || port_->IsCamera())
        run.map.cache.Forget(address, data.size());
    Transfer(run, AsNode(), "write", address, [&] {
        if (port_)
            port_->Write(run, address, data);
        else
            run.map.port.Write(address, data);
    });
    if (caching_ == CachingMode::WriteThrough && isRemembered_)
        Remember(run.map, address, data);
    run.map.Changed(AsNode());
    if (!run.verify || accessMode_ != AccessMode::ReadWrite)
        return;
    std::vector<std::byte> back(data.size());
    ReadPort(run, address, back);
    for (std::size_t i = 0; i < data.size(); ++i)
        if (((back[i] ^ data[i]) & (mask.empty() ? std::byte{0xFF} : mask[i])) != std::byte{0})
            AsNode().Fail(run, Say("does not keep what was written to ", Hex(address), ", byte ", std::to_string(i),
                                   " reads ", Hex(std::to_integer<std::uint64_t>(back[i])), " after ",
                                   Hex(std::to_integer<std::uint64_t>(data[i]))));
}

void RegisterNode::ForgetValue(MapState &map)
{
    if (lengthNode_ != nullptr) {
        map.cache.ForgetAll();
        return;
    }
    const std::size_t length = length_;
    if (!moving_) {
        if (page_ != nullptr)
            page_->Forget(address_ % RegisterCache::Page::size, length);
        else
            map.cache.Forget(address_, length);
        return;
    }
    for (const std::uint64_t address : moving_->used)
        map.cache.Forget(address, length);
    moving_->used.clear();
}

} // namespace Orvi::GenApi
