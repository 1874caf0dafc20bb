#pragma once
// Where registers live: the camera, or the data of an event or chunk that has been delivered.

#include "u3v/genapi/Node.h"

#include <vector>

namespace Orvi::GenApi {

class PortNode final : public Node {
  public:
    using Node::Node;

    bool Take(const Property &property) override;

    /// Else the port shows delivered data, and has nothing to show before the first delivery.
    bool IsCamera() const { return !Said().eventId && !chunkId_; }
    bool IsAlwaysOpen() const { return IsCamera() && !HasConditions(); }
    std::optional<std::uint64_t> ChunkId() const { return chunkId_; }
    bool SwapsEndianess() const { return swap_; }

    void Deliver(std::span<const std::byte> data);
    void Read(Run &run, std::uint64_t address, std::span<std::byte> data);
    void Write(Run &run, std::uint64_t address, std::span<const std::byte> data);

  protected:
    AccessMode ValueAccess(Run &run) override;

  private:
    std::optional<std::uint64_t> chunkId_;
    bool swap_ = false;
    bool delivered_ = false;
    std::vector<std::byte> data_;
};

} // namespace Orvi::GenApi
