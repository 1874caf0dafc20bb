#pragma once
// The registers that every USB3 Vision camera has: technology-agnostic (ABRM, at 0), technology-specific (SBRM),
// streaming (SIRM) and event interface (EIRM). The latter three are found through pointers.

#include "u3v/protocol/GenCp.h"
#include "u3v/protocol/Wire.h"

#include <array>
#include <cstdint>
#include <string>

namespace Orvi::U3v {

template <class T>
struct Register {
    std::uint64_t offset;
};
struct TextRegister {
    std::uint64_t offset;
    static constexpr std::size_t size = 64;
};

// clang-format off
namespace Abrm {
constexpr TextRegister            manufacturer     = {0x004};
constexpr TextRegister            model            = {0x044};
constexpr TextRegister            family           = {0x084};
constexpr TextRegister            deviceVersion    = {0x0C4};
constexpr TextRegister            manufacturerInfo = {0x104};
constexpr TextRegister            serial           = {0x144};
constexpr TextRegister            userDefinedName  = {0x184};
constexpr Register<std::uint64_t> capability       = {0x1C4};
constexpr Register<std::uint32_t> maxResponseTime  = {0x1CC}; // ms
constexpr Register<std::uint64_t> manifestAddress  = {0x1D0};
constexpr Register<std::uint64_t> sbrmAddress      = {0x1D8};
constexpr Register<std::uint64_t> configuration    = {0x1E0};

constexpr std::uint64_t hasUserDefinedName = 1U << 0;
constexpr std::uint64_t hasFamily          = 1U << 8;
constexpr std::uint64_t canSendMultiEvent  = 1U << 12;
constexpr std::uint64_t enableMultiEvent   = 1U << 1;
}

namespace Sbrm {
constexpr Register<std::uint32_t> u3vVersion  = {0x00};
constexpr Register<std::uint64_t> capability  = {0x04};
constexpr Register<std::uint32_t> maxCommand  = {0x14};
constexpr Register<std::uint32_t> maxAck      = {0x18};
constexpr Register<std::uint64_t> sirmAddress = {0x20};
constexpr Register<std::uint64_t> eirmAddress = {0x2C};
constexpr Register<std::uint32_t> linkSpeed   = {0x40};

constexpr std::uint64_t hasSirm = 1U << 0;
constexpr std::uint64_t hasEirm = 1U << 1;
}

namespace Sirm {
constexpr Register<std::uint32_t> info                = {0x00}; // bits 31..24: log2 of the alignment
constexpr Register<std::uint32_t> control             = {0x04}; // bit 0: stream enable
constexpr Register<std::uint64_t> requiredPayloadSize = {0x08};
constexpr Register<std::uint32_t> requiredLeaderSize  = {0x10};
constexpr Register<std::uint32_t> requiredTrailerSize = {0x14};
constexpr Register<std::uint32_t> maxLeaderSize       = {0x18};
constexpr Register<std::uint32_t> transferSize        = {0x1C};
constexpr Register<std::uint32_t> transferCount       = {0x20};
constexpr Register<std::uint32_t> final1Size          = {0x24};
constexpr Register<std::uint32_t> final2Size          = {0x28};
constexpr Register<std::uint32_t> maxTrailerSize      = {0x2C};
}

namespace Eirm {
constexpr Register<std::uint32_t> control         = {0x00}; // bit 0: event enable
constexpr Register<std::uint32_t> maxTransferSize = {0x04};
}

// Of cameras with control registers; the acquisition command is the value word of its block.
namespace ControlRegister {
constexpr Register<std::uint32_t> acquisitionCommand = {0x20303C};
constexpr std::uint32_t           acquisitionStop    = 1;
}
// clang-format on

template <class T>
T ReadRegister(GenCp &control, std::uint64_t base, Register<T> reg)
{
    std::array<std::byte, sizeof(T)> bytes;
    control.Read(base + reg.offset, bytes);
    return Load<T>(bytes, 0);
}

template <class T>
void WriteRegister(GenCp &control, std::uint64_t base, Register<T> reg, T value)
{
    std::array<std::byte, sizeof(T)> bytes;
    Store(bytes, 0, value);
    control.Write(base + reg.offset, bytes);
}

/// The text up to its NUL; a text that fills the register has none.
std::string ReadText(GenCp &control, TextRegister reg);

/// Where the camera's register maps are and what they say for good.
struct BootstrapMap {
    std::uint64_t abrmCapability = 0;
    std::uint64_t manifestAddress = 0;
    std::uint64_t sbrm = 0;
    std::uint64_t sirm = 0; ///< 0: the camera does not stream
    std::uint64_t eirm = 0; ///< 0: the camera sends no events
    std::uint32_t u3vVersion = 0;
    std::uint32_t linkSpeed = 0;

    /// Reads the map and gives the control protocol the camera's limits.
    static BootstrapMap Read(GenCp &control);
};

} // namespace Orvi::U3v
