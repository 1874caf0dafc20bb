#pragma once
// The way from the nodes to the camera's memory.

#include <cstddef>
#include <cstdint>
#include <span>

namespace Orvi::GenApi {

/// Memory of the camera. Called with the map's lock held, by whichever thread uses a node.
class Port {
  public:
    virtual ~Port() = default;

    /// Fill or take all of @p data, or throw a StatusError. Statuses that say that the camera is gone or silent reach
    /// the caller of the node as they are; any other becomes an Error that names the node and the address.
    virtual void Read(std::uint64_t address, std::span<std::byte> data) = 0;
    virtual void Write(std::uint64_t address, std::span<const std::byte> data) = 0;
};

} // namespace Orvi::GenApi
