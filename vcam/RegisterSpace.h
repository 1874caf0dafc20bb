#pragma once
// The camera's memory as GenCP sees it: regions with access rights for every quadlet. What a register means is told
// elsewhere.

#include "vcam/GenCpCodes.h"
#include "vcam/Wire.h"

#include <vector>

namespace Orvi::Vcam {

enum class Rights : std::uint8_t {
    None = 0,
    Read = 1,
    Write = 2,
    ReadWrite = 3,
    Text = 7, ///< read and write at any byte; all else is written in whole quadlets
};

class RegisterSpace {
  public:
    void AddRegion(std::uint64_t base, std::size_t size, Rights rights);
    /// A read-only region over memory that outlives the space.
    void AddImage(std::uint64_t base, std::span<const std::byte> image);
    void SetRights(std::uint64_t address, std::size_t size, Rights rights);

    GenCpStatus Read(std::uint64_t address, std::span<std::byte> to) const;
    /// What the rights say to a write; nothing is written.
    GenCpStatus CheckWrite(std::uint64_t address, std::size_t size) const;
    bool IsText(std::uint64_t address) const;

    // The device's own access: any rights. An address outside all regions reads 0 and keeps nothing.
    std::span<std::byte> Bytes(std::uint64_t address, std::size_t size);
    std::uint32_t Word(std::uint64_t address) const;
    void SetWord(std::uint64_t address, std::uint32_t value);
    void SetLong(std::uint64_t address, std::uint64_t value);
    /// Fills the field with the text and NULs; a full field has no NUL.
    void SetText(std::uint64_t address, std::size_t size, std::string_view text);

  private:
    struct Region {
        std::uint64_t base;
        std::size_t size;
        std::vector<std::byte> memory;
        std::span<const std::byte> image; // instead of memory
        std::vector<Rights> rights;       // one for each quadlet; empty for an image

        bool Holds(std::uint64_t address, std::size_t length) const
        {
            return address >= base && address - base <= size && length <= size - (address - base);
        }
        Rights RightsAt(std::size_t offset) const { return rights.empty() ? Rights::Read : rights[offset / 4]; }
    };
    const Region *Find(std::uint64_t address, std::size_t size) const;

    std::vector<Region> regions_;
};

} // namespace Orvi::Vcam
