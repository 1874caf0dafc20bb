#pragma once
// An open camera: its registers, its description, its nodes. Streams and event channels are built on it.

#include "u3v/core/Status.h"

#include <cstdint>
#include <span>

namespace Orvi::GenApi {
class NodeMap;
}

namespace Orvi::U3v {

class Camera {
  public:
    /// The camera's nodes. Throws StatusError(0x101) when the camera was opened without its description.
    GenApi::NodeMap &Nodes() const;

    void ReadQuadlets(std::uint64_t address, std::span<std::uint32_t> words);
    void WriteQuadlets(std::uint64_t address, std::span<const std::uint32_t> words);
};

} // namespace Orvi::U3v
