#include "u3v/usb/UsbDescriptors.h"

#include <algorithm>

namespace Orvi::U3v {
namespace {

constexpr std::uint8_t miscellaneousClass = 0xEF, visionSubclass = 0x05;
constexpr std::uint8_t controlProtocol = 0, eventProtocol = 1, streamProtocol = 2;
constexpr std::uint8_t classInterface = 0x24, deviceInfoSubtype = 0x01;
constexpr std::size_t deviceInfoSize = 20;

std::uint32_t Load16(std::span<const unsigned char> bytes, std::size_t at)
{
    return static_cast<std::uint32_t>(bytes[at] | bytes[at + 1] << 8);
}

std::uint32_t VersionAt(std::span<const unsigned char> bytes, std::size_t at)
{
    return Load16(bytes, at + 2) << 16 | Load16(bytes, at);
}

bool IsBulk(const libusb_endpoint_descriptor &endpoint)
{
    return (endpoint.bmAttributes & LIBUSB_TRANSFER_TYPE_MASK) == LIBUSB_TRANSFER_TYPE_BULK;
}

BulkInterface Describe(const libusb_interface_descriptor &interface)
{
    BulkInterface description;
    description.number = interface.bInterfaceNumber;
    for (const libusb_endpoint_descriptor &endpoint : std::span(interface.endpoint, interface.bNumEndpoints)) {
        if (!IsBulk(endpoint))
            continue;
        const bool isIn = (endpoint.bEndpointAddress & LIBUSB_ENDPOINT_IN) != 0;
        std::uint8_t &address = isIn ? description.in : description.out;
        if (address != 0)
            continue;
        address = endpoint.bEndpointAddress;
        if (isIn)
            description.maxPacketSize = endpoint.wMaxPacketSize & 0x7FF;
    }
    return description;
}

void AppendUtf8(std::string &text, std::uint32_t code)
{
    const auto put = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

} // namespace

std::optional<DeviceInfo> FindDeviceInfo(std::span<const unsigned char> descriptors)
{
    while (descriptors.size() >= 2) {
        const std::size_t length = descriptors[0];
        if (length < 2 || length > descriptors.size())
            return {};
        const auto bytes = descriptors.first(length);
        descriptors = descriptors.subspan(length);
        if (length < deviceInfoSize || bytes[1] != classInterface || bytes[2] != deviceInfoSubtype)
            continue;
        DeviceInfo info;
        info.genCpVersion = VersionAt(bytes, 3);
        info.u3vVersion = VersionAt(bytes, 7);
        info.guid = bytes[11];
        info.vendor = bytes[12];
        info.model = bytes[13];
        info.family = bytes[14];
        info.deviceVersion = bytes[15];
        info.manufacturerInfo = bytes[16];
        info.serial = bytes[17];
        info.userDefinedName = bytes[18];
        info.speeds = bytes[19];
        return info;
    }
    return {};
}

std::optional<CameraInterfaces> FindInterfaces(const libusb_config_descriptor &configuration)
{
    CameraInterfaces camera;
    camera.configuration = configuration.bConfigurationValue;
    bool hasControl = false;
    for (const libusb_interface &interface : std::span(configuration.interface, configuration.bNumInterfaces)) {
        if (interface.num_altsetting < 1)
            continue;
        // Cameras have no other settings that were ever worth choosing.
        const libusb_interface_descriptor &first = interface.altsetting[0];
        if (first.bInterfaceClass != miscellaneousClass || first.bInterfaceSubClass != visionSubclass)
            continue;
        const BulkInterface found = Describe(first);
        if (found.in == 0)
            continue;
        if (first.bInterfaceProtocol == controlProtocol && !hasControl && found.out != 0) {
            hasControl = true;
            camera.control = found;
            if (first.extra_length > 0)
                camera.info = FindDeviceInfo({first.extra, static_cast<std::size_t>(first.extra_length)});
        } else if (first.bInterfaceProtocol == eventProtocol && !camera.event) {
            camera.event = found;
        } else if (first.bInterfaceProtocol == streamProtocol && !camera.stream) {
            camera.stream = found;
        }
    }
    return hasControl ? std::optional(camera) : std::nullopt;
}

std::string TextOfDescriptor(std::span<const unsigned char> descriptor)
{
    if (descriptor.size() < 2 || descriptor[1] != LIBUSB_DT_STRING)
        return {};
    const auto units = descriptor.first(std::min<std::size_t>(descriptor[0], descriptor.size()));
    std::string text;
    for (std::size_t at = 2; at + 1 < units.size(); at += 2) {
        std::uint32_t code = Load16(units, at);
        if (code == 0)
            break;
        const bool isHigh = code >= 0xD800 && code < 0xDC00;
        const std::uint32_t low = isHigh && at + 3 < units.size() ? Load16(units, at + 2) : 0;
        if (low >= 0xDC00 && low < 0xE000) {
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
            at += 2;
        } else if (code >= 0xD800 && code < 0xE000) {
            code = 0xFFFD; // half of a pair
        }
        AppendUtf8(text, code);
    }
    return text;
}

} // namespace Orvi::U3v
