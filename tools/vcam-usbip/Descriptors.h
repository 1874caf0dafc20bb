#pragma once
// The USB descriptors of a virtual camera, byte by byte as a camera on a cable sends them.

#include "vcam/UsbFunction.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Orvi::UsbIp {

using Bytes = std::vector<std::byte>;

/// Ids for tests, given away by pid.codes: no product has them.
constexpr std::uint16_t s_vendorId = 0x1209, s_productId = 0x0001, s_deviceRelease = 0x0100;
/// Miscellaneous device with interface associations.
constexpr std::uint8_t s_deviceClass[3] = {0xEF, 0x02, 0x01};
constexpr std::uint8_t s_configurationValue = 1, s_interfaceCount = 3;
/// USB3 Vision's class and subclass; the third tells an interface's task.
constexpr std::uint8_t s_interfaceClass[2] = {0xEF, 0x05};

enum class DescriptorType : std::uint8_t { Device = 1, Configuration = 2, String = 3, Bos = 15 };

/// None when the device has no such descriptor.
std::optional<Bytes> MakeDescriptor(const Vcam::UsbIdentity &identity, DescriptorType type, std::uint8_t index);

bool IsSuperSpeed(const Vcam::UsbIdentity &identity);

} // namespace Orvi::UsbIp
