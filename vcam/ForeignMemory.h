#pragma once
// Memory where a description has registers, byte by byte, with the rights of each byte.

#include "vcam/RegisterSpace.h"

#include <array>
#include <map>
#include <utility>

namespace Orvi::Vcam {

class ForeignMemory {
  public:
    /// Adds a register, whatever is there already; where registers lie over one another each adds its rights.
    void Add(std::uint64_t address, std::size_t size, Rights rights);
    bool Holds(std::uint64_t address, std::size_t size) const;
    /// Whether a register has a byte in that range.
    bool Touches(std::uint64_t address, std::uint64_t size) const;

    // The host's access.
    GenCpStatus Read(std::uint64_t address, std::span<std::byte> to) const;
    GenCpStatus CheckWrite(std::uint64_t address, std::size_t size) const;

    // The device's own access: any rights. Bytes outside read 0 and keep nothing.
    void Get(std::uint64_t address, std::span<std::byte> to) const;
    void Set(std::uint64_t address, std::span<const std::byte> from);

    /// The bytes that differ from another memory's, or that it does not have.
    std::vector<std::pair<std::uint64_t, std::byte>> Differences(const ForeignMemory &other) const;

  private:
    static constexpr std::size_t s_pageSize = 256;
    struct Page {
        std::array<std::byte, s_pageSize> bytes{};
        std::array<Rights, s_pageSize> rights{};
    };
    const Page *Find(std::uint64_t address) const;
    Rights RightsAt(std::uint64_t address) const;

    std::map<std::uint64_t, Page> pages_; // by address / s_pageSize
};

} // namespace Orvi::Vcam
