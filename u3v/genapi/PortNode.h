#pragma once
// Where registers live: the camera, or the data of an event or chunk that has been delivered.

#include "u3v/genapi/NumberNodes.h"

#include <vector>

namespace Orvi::GenApi {

class PortNode final : public Node {
  public:
    using Node::Node;

    bool Take(const Property &property) override;

    /// Else the port shows delivered data, and has nothing to show before the first delivery.
    bool IsCamera() const { return !More().eventId && !chunkId_.given; }
    bool IsAlwaysOpen() const { return IsCamera() && !HasConditions(); }
    /// The chunk that it shows, as far as that is known now.
    bool Shows(Run &run, std::uint64_t chunkId) const;
    bool SwapsEndianess() const { return swap_; }

    void Deliver(std::span<const std::byte> data);
    void Read(Run &run, std::uint64_t address, std::span<std::byte> data);
    void Write(Run &run, std::uint64_t address, std::span<const std::byte> data);

  protected:
    AccessMode ValueAccess(Run &run) override;

  private:
    Source<std::int64_t> chunkId_;
    bool swap_ = false;
    bool delivered_ = false;
    std::vector<std::byte> data_;
};

} // namespace Orvi::GenApi
