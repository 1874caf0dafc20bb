#include "vcam/ForeignMemory.h"

namespace Orvi::Vcam {

namespace {

constexpr unsigned Bits(Rights rights) { return static_cast<unsigned>(rights); }
constexpr bool Allows(Rights rights, Rights wanted) { return (Bits(rights) & Bits(wanted)) != 0; }

} // namespace

void ForeignMemory::Add(std::uint64_t address, std::size_t size, Rights rights)
{
    for (std::uint64_t at = address; at < address + size; ++at) {
        Rights &now = pages_[at / s_pageSize].rights[at % s_pageSize];
        now = static_cast<Rights>(Bits(now) | Bits(rights));
    }
}

const ForeignMemory::Page *ForeignMemory::Find(std::uint64_t address) const
{
    const auto page = pages_.find(address / s_pageSize);
    return page == pages_.end() ? nullptr : &page->second;
}

Rights ForeignMemory::RightsAt(std::uint64_t address) const
{
    const Page *page = Find(address);
    return page == nullptr ? Rights::None : page->rights[address % s_pageSize];
}

bool ForeignMemory::Holds(std::uint64_t address, std::size_t size) const
{
    for (std::uint64_t at = address; at < address + size; ++at) {
        if (RightsAt(at) == Rights::None) {
            return false;
        }
    }
    return true;
}

bool ForeignMemory::Touches(std::uint64_t address, std::uint64_t size) const
{
    for (auto page = pages_.lower_bound(address / s_pageSize);
         page != pages_.end() && page->first * s_pageSize < address + size; ++page) {
        for (std::size_t i = 0; i < s_pageSize; ++i) {
            const std::uint64_t at = page->first * s_pageSize + i;
            if (at >= address && at - address < size && page->second.rights[i] != Rights::None) {
                return true;
            }
        }
    }
    return false;
}

GenCpStatus ForeignMemory::Read(std::uint64_t address, std::span<std::byte> to) const
{
    if (!Holds(address, to.size())) {
        return GenCpStatus::InvalidAddress;
    }
    for (std::uint64_t at = address; at < address + to.size(); ++at) {
        if (!Allows(RightsAt(at), Rights::Read)) {
            return GenCpStatus::AccessDenied;
        }
    }
    Get(address, to);
    return GenCpStatus::Success;
}

GenCpStatus ForeignMemory::CheckWrite(std::uint64_t address, std::size_t size) const
{
    if (!Holds(address, size)) {
        return GenCpStatus::InvalidAddress;
    }
    for (std::uint64_t at = address; at < address + size; ++at) {
        if (!Allows(RightsAt(at), Rights::Write)) {
            return GenCpStatus::WriteProtect;
        }
    }
    return GenCpStatus::Success;
}

void ForeignMemory::Get(std::uint64_t address, std::span<std::byte> to) const
{
    for (std::size_t i = 0; i < to.size(); ++i) {
        const Page *page = Find(address + i);
        to[i] = page == nullptr ? std::byte{0} : page->bytes[(address + i) % s_pageSize];
    }
}

void ForeignMemory::Set(std::uint64_t address, std::span<const std::byte> from)
{
    for (std::size_t i = 0; i < from.size(); ++i) {
        const std::uint64_t at = address + i;
        if (RightsAt(at) != Rights::None) {
            pages_[at / s_pageSize].bytes[at % s_pageSize] = from[i];
        }
    }
}

std::vector<std::pair<std::uint64_t, std::byte>> ForeignMemory::Differences(const ForeignMemory &other) const
{
    std::vector<std::pair<std::uint64_t, std::byte>> differences;
    for (const auto &[number, page] : pages_) {
        const Page *before = other.Find(number * s_pageSize);
        for (std::size_t i = 0; i < s_pageSize; ++i) {
            if (before == nullptr ? page.bytes[i] != std::byte{0} : page.bytes[i] != before->bytes[i]) {
                differences.emplace_back(number * s_pageSize + i, page.bytes[i]);
            }
        }
    }
    return differences;
}

} // namespace Orvi::Vcam
