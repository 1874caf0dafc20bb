#pragma once
// All blocks of the control-register map, each over the nodes that a camera may have for it.

#include "u3v/emulation/Block.h"
#include "u3v/protocol/Camera.h"

#include <memory>
#include <vector>

namespace Orvi::U3v::Emulation {

class BlockTable {
  public:
    explicit BlockTable(Camera &camera);
    ~BlockTable();

    /// The block that owns the address, or null.
    Block *Find(std::uint64_t address) const;

  private:
    struct Shared;
    std::unique_ptr<Shared> shared_;
    std::vector<std::unique_ptr<Block>> blocks_;
};

/// The block that every camera with the map has.
constexpr std::uint64_t imageSizeAddress = 0x202060;

} // namespace Orvi::U3v::Emulation
