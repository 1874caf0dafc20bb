#pragma once
// The value sets of node attributes, numbered as in the public header; bytes, for a description has thousands of nodes.

#include <cstdint>

namespace Orvi::GenApi {

/// Dense index of a node inside its map.
using NodeId = std::uint32_t;

/// A node handle has room for so many nodes, entries of enumerations included.
constexpr NodeId maxNodes = (1u << 20) - 1;

// clang-format off
enum class NodeType : std::uint8_t {
    Value, Base, Integer, Boolean, Command, Float, String, Register, Category, Enumeration, EnumEntry, Port
};
enum class AccessMode     : std::uint8_t { NotImplemented, NotAvailable, WriteOnly, ReadOnly, ReadWrite };
enum class Visibility     : std::uint8_t { Beginner, Expert, Guru, Invisible };
enum class CachingMode    : std::uint8_t { NoCache, WriteThrough, WriteAround };
enum class Representation : std::uint8_t {
    Linear, Logarithmic, Boolean, PureNumber, HexNumber, IpV4Address, MacAddress, Undefined
};
enum class DisplayNotation : std::uint8_t { Automatic, Fixed, Scientific };
// clang-format on

constexpr bool IsReadable(AccessMode mode) { return mode == AccessMode::ReadOnly || mode == AccessMode::ReadWrite; }
constexpr bool IsWritable(AccessMode mode) { return mode == AccessMode::WriteOnly || mode == AccessMode::ReadWrite; }

/// What may be done when both @p a and @p b allow it: read-only and write-only together leave nothing.
constexpr AccessMode Combine(AccessMode a, AccessMode b)
{
    if (a == AccessMode::NotImplemented || b == AccessMode::NotImplemented)
        return AccessMode::NotImplemented;
    const bool readable = IsReadable(a) && IsReadable(b);
    const bool writable = IsWritable(a) && IsWritable(b);
    if (readable)
        return writable ? AccessMode::ReadWrite : AccessMode::ReadOnly;
    return writable ? AccessMode::WriteOnly : AccessMode::NotAvailable;
}

/// How a value is read or written in one call.
struct ReadOptions {
    bool verify = false;      ///< refuse a value that the description does not allow
    bool ignoreCache = false; ///< ask the camera, whatever is remembered
};
enum class Verify : bool { No, Yes }; ///< read back what was written and compare

} // namespace Orvi::GenApi
