#pragma once
// The messages of USB/IP that carry transfers: 48 bytes of header, big endian, then data. docs.kernel.org/usb/
// usbip_protocol.html describes them.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <variant>

namespace Orvi::UsbIp {

constexpr std::size_t s_headerSize = 48;
using Header = std::array<std::byte, s_headerSize>;

/// A transfer that the host wants.
struct Submit {
    std::uint32_t seqnum;
    bool isIn;
    std::uint32_t endpoint; ///< number without direction
    std::uint32_t length;   ///< of the buffer
    std::array<std::uint8_t, 8> setup;
};

/// A transfer that the host wants back.
struct Unlink {
    std::uint32_t seqnum;
    std::uint32_t target; ///< the transfer's seqnum
};

using Request = std::variant<Submit, Unlink>;

/// How a transfer ended, as Linux counts errors.
enum class UrbStatus : std::int32_t {
    Success = 0,
    Stalled = -32,  ///< EPIPE
    Babble = -75,   ///< EOVERFLOW
    Unlinked = -104 ///< ECONNRESET
};

/// What the host sent is no USB/IP; the connection cannot go on.
class ProtocolError : public std::runtime_error {
  public:
    using runtime_error::runtime_error;
};

/// Throws ProtocolError.
Request ParseRequest(const Header &header);

Header SubmitReply(std::uint32_t seqnum, UrbStatus status, std::size_t actualLength);
Header UnlinkReply(std::uint32_t seqnum, UrbStatus status);

/// Numbers of any size in network order.
template <class T>
void StoreBe(std::byte *to, T value)
{
    for (std::size_t i = sizeof(T); i-- > 0; value = static_cast<T>(value >> 8 * (sizeof(T) > 1)))
        to[i] = static_cast<std::byte>(value & 0xFF);
}
template <class T>
T LoadBe(const std::byte *from)
{
    T value = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i)
        value = static_cast<T>(value << 8 * (sizeof(T) > 1) | static_cast<T>(from[i]));
    return value;
}

} // namespace Orvi::UsbIp
