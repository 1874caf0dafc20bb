#pragma once
// The questions with which a USB/IP connection begins: which devices are there, and may I have this one.

#include "vcam/UsbFunction.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvi::UsbIp {

constexpr std::uint16_t s_version = 0x0111;
constexpr std::size_t s_operationSize = 8, s_busIdSize = 32, s_deviceRecordSize = 312;

enum class Operation : std::uint16_t { List = 0x8005, Import = 0x8003 };

/// What the host asks. Throws ProtocolError.
Operation ParseOperation(const std::array<std::byte, s_operationSize> &header);
/// The text in a field that it may fill completely.
std::string ParseBusId(const std::array<std::byte, s_busIdSize> &field);

struct DirectoryEntry {
    unsigned number; ///< from 1
    Vcam::UsbIdentity identity;
};
std::string BusIdOf(unsigned number);

std::vector<std::byte> ListReply(const std::vector<DirectoryEntry> &entries);
std::vector<std::byte> ImportReply(const DirectoryEntry &entry);
/// For a device that is not there or that another host has.
std::vector<std::byte> ImportRefusal();

} // namespace Orvi::UsbIp
