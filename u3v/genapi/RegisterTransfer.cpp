// The way of registers through the cache to the port and back.

#include "u3v/core/Status.h"
#include "u3v/genapi/MapState.h"
#include "u3v/genapi/PortNode.h"
#include "u3v/genapi/RegisterNodes.h"
#include "u3v/genapi/Say.h"

#include <algorithm>

namespace Orvi::GenApi {

namespace {

/// The camera is gone or silent: the caller needs to see that, whichever node it asked.
constexpr bool IsLinkFailure(CAM_API_STATUS status)
{
    return status == CAM_API_STS_TIMEOUT || status == CAM_API_STS_CAMERA_NOT_RESPONDING ||
           status == CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE;
}

template <class F>
void Transfer(const Run &run, const RegisterNode &reg, const char *what, std::uint64_t address, F &&f)
{
    try {
        f();
    } catch (const U3v::StatusError &error) {
        if (IsLinkFailure(error.Status()))
            throw;
        reg.AsNode().Fail(run, Say("cannot ", what, " ", Hex(address), ", ", error.what()));
    }
}

} // namespace

void RegisterNode::Poll(std::int64_t milliseconds, Node *block)
{
    const std::chrono::milliseconds time(milliseconds);
    if (!polling_ || time < polling_->time)
        polling_ = std::make_unique<Polling>(Polling{.time = time, .block = block});
}

bool RegisterNode::IsExpired(const Run &run, std::uint64_t address) const
{
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
    if (isRemembered_ && !run.ignoreCache && (!polling_ || !IsExpired(run, address)))
        if (page_ ? page_->Read(address % RegisterCache::Page::size, data) : run.map.cache.Read(address, data))
            return;
    ReadPort(run, address, data);
}

void RegisterNode::ReadPort(Run &run, std::uint64_t address, std::span<std::byte> data)
{
    Transfer(run, *this, "read", address, [&] {
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
    if (moving_)
        RememberPlace(map, address, data);
}

void RegisterNode::RememberPlace(MapState &map, std::uint64_t address, std::span<const std::byte> data)
{
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
    try {
        Transfer(run, *this, "write", address, [&] {
            if (port_)
                port_->Write(run, address, data);
            else
                run.map.port.Write(address, data);
        });
    } catch (...) {
        Forget(run.map, address, data.size()); // nobody knows how far it went
        throw;
    }
    if (caching_ == CachingMode::WriteThrough && isRemembered_)
        Remember(run.map, address, data);
    else
        Forget(run.map, address, data.size());
    run.map.Changed(AsNode());
    if (run.verify && accessMode_ == AccessMode::ReadWrite)
        CompareWithPort(run, address, data, mask);
}

void RegisterNode::CompareWithPort(Run &run, std::uint64_t address, std::span<const std::byte> data,
                                   std::span<const std::byte> mask)
{
    std::vector<std::byte> back(data.size());
    ReadPort(run, address, back);
    for (std::size_t i = 0; i < data.size(); ++i)
        if (((back[i] ^ data[i]) & (mask.empty() ? std::byte{0xFF} : mask[i])) != std::byte{0})
            AsNode().Fail(run, Say("does not keep what was written to ", Hex(address), ", byte ", std::to_string(i),
                                   " reads ", Hex(std::to_integer<std::uint64_t>(back[i])), " after ",
                                   Hex(std::to_integer<std::uint64_t>(data[i]))));
}

void RegisterNode::Forget(MapState &map, std::uint64_t address, std::size_t length)
{
    if (page_ != nullptr)
        page_->Forget(address % RegisterCache::Page::size, length);
    else if (port_ == nullptr || port_->IsCamera())
        map.cache.Forget(address, length);
}

void RegisterNode::ForgetValue(MapState &map)
{
    if (lengthNode_ != nullptr) {
        map.cache.ForgetAll();
        return;
    }
    if (!moving_) {
        Forget(map, address_, length_);
        return;
    }
    for (const std::uint64_t address : moving_->used)
        Forget(map, address, length_);
    moving_->used.clear();
}

} // namespace Orvi::GenApi
