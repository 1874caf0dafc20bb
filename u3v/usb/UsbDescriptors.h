#pragma once
// What a camera's USB descriptors say: pure functions on their bytes.

#include "u3v/usb/Libusb.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace Orvi::U3v {

/// The USB3 Vision device-info descriptor; its texts are numbers of string descriptors, 0 for none.
struct DeviceInfo {
    std::uint32_t genCpVersion = 0, u3vVersion = 0; ///< major in bits 31..16, minor below
    std::uint8_t guid = 0, vendor = 0, model = 0, family = 0, deviceVersion = 0, manufacturerInfo = 0, serial = 0,
                 userDefinedName = 0;
    std::uint8_t speeds = 0; ///< bit 0 low, 1 full, 2 high, 3 super, 4 super+
};

/// Looks for it among the descriptors that follow an interface descriptor.
std::optional<DeviceInfo> FindDeviceInfo(std::span<const unsigned char> descriptors);

/// An interface with its bulk endpoints, as addresses; 0 for one that it lacks.
struct BulkInterface {
    int number = 0;
    std::uint8_t in = 0, out = 0;
    std::size_t maxPacketSize = 0;
};

/// The interfaces of a USB3 Vision camera.
struct CameraInterfaces {
    int configuration = 0;
    BulkInterface control;
    std::optional<BulkInterface> event, stream;
    std::optional<DeviceInfo> info; ///< a camera must have it, and works without
};

/// Empty for a device that is no camera.
std::optional<CameraInterfaces> FindInterfaces(const libusb_config_descriptor &configuration);

/// A string descriptor as UTF-8. Empty when it is none.
std::string TextOfDescriptor(std::span<const unsigned char> descriptor);

} // namespace Orvi::U3v
