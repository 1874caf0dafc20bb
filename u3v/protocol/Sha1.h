#pragma once
// SHA-1, with which a camera's manifest marks its description.

#include <array>
#include <cstddef>
#include <span>

namespace Orvi::U3v {

std::array<std::byte, 20> Sha1(std::span<const std::byte> data);

} // namespace Orvi::U3v
