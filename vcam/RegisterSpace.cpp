#include "vcam/RegisterSpace.h"

#include <algorithm>

namespace Orvi::Vcam {

namespace {

bool Allows(Rights rights, Rights wanted)
{
    return (static_cast<unsigned>(rights) & static_cast<unsigned>(wanted)) != 0;
}

} // namespace

void RegisterSpace::AddRegion(std::uint64_t base, std::size_t size, Rights rights)
{
    regions_.push_back({base, size, std::vector<std::byte>(size), {}, std::vector<Rights>((size + 3) / 4, rights)});
}

void RegisterSpace::AddImage(std::uint64_t base, std::span<const std::byte> image)
{
    regions_.push_back({base, image.size(), {}, image, {}});
}

void RegisterSpace::SetRights(std::uint64_t address, std::size_t size, Rights rights)
{
    for (Region &region : regions_) {
        if (region.Holds(address, size) && !region.rights.empty()) {
            const auto first = region.rights.begin() + static_cast<std::ptrdiff_t>((address - region.base) / 4);
            std::fill_n(first, (size + 3) / 4, rights);
        }
    }
}

const RegisterSpace::Region *RegisterSpace::Find(std::uint64_t address, std::size_t size) const
{
    for (const Region &region : regions_) {
        if (region.Holds(address, size)) {
            return &region;
        }
    }
    return nullptr;
}

GenCpStatus RegisterSpace::Read(std::uint64_t address, std::span<std::byte> to) const
{
    const Region *region = Find(address, to.size());
    if (region == nullptr) {
        return GenCpStatus::InvalidAddress;
    }
    const std::size_t offset = static_cast<std::size_t>(address - region->base);
    for (std::size_t at = offset / 4 * 4; at < offset + to.size(); at += 4) {
        if (!Allows(region->RightsAt(at), Rights::Read)) {
            return GenCpStatus::AccessDenied;
        }
    }
    const std::byte *from = region->image.empty() ? region->memory.data() : region->image.data();
    std::memcpy(to.data(), from + offset, to.size());
    return GenCpStatus::Success;
}

GenCpStatus RegisterSpace::CheckWrite(std::uint64_t address, std::size_t size) const
{
    const Region *region = Find(address, size);
    if (region == nullptr) {
        return GenCpStatus::InvalidAddress;
    }
    const std::size_t offset = static_cast<std::size_t>(address - region->base);
    bool isText = true;
    for (std::size_t at = offset / 4 * 4; at < offset + size; at += 4) {
        if (!Allows(region->RightsAt(at), Rights::Write)) {
            return GenCpStatus::WriteProtect;
        }
        isText = isText && region->RightsAt(at) == Rights::Text;
    }
    return isText || (address % 4 == 0 && size % 4 == 0) ? GenCpStatus::Success : GenCpStatus::BadAlignment;
}

bool RegisterSpace::IsText(std::uint64_t address) const
{
    const Region *region = Find(address, 1);
    return region != nullptr && region->RightsAt(static_cast<std::size_t>(address - region->base)) == Rights::Text;
}

std::span<std::byte> RegisterSpace::Bytes(std::uint64_t address, std::size_t size)
{
    for (Region &region : regions_) {
        if (region.Holds(address, size) && !region.memory.empty()) {
            return {region.memory.data() + (address - region.base), size};
        }
    }
    return {};
}

std::uint32_t RegisterSpace::Word(std::uint64_t address) const
{
    const Region *region = Find(address, 4);
    if (region == nullptr || region->memory.empty()) {
        return 0;
    }
    return LoadLe<std::uint32_t>(region->memory.data() + (address - region->base));
}

void RegisterSpace::SetWord(std::uint64_t address, std::uint32_t value)
{
    if (const auto bytes = Bytes(address, sizeof value); !bytes.empty()) {
        StoreLe(bytes.data(), value);
    }
}

void RegisterSpace::SetLong(std::uint64_t address, std::uint64_t value)
{
    if (const auto bytes = Bytes(address, sizeof value); !bytes.empty()) {
        StoreLe(bytes.data(), value);
    }
}

void RegisterSpace::SetText(std::uint64_t address, std::size_t size, std::string_view text)
{
    const auto bytes = Bytes(address, size);
    std::fill(bytes.begin(), bytes.end(), std::byte{0});
    std::memcpy(bytes.data(), text.data(), std::min(text.size(), bytes.size()));
}

} // namespace Orvi::Vcam
