#include "Descriptors.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace Orvi::UsbIp {
namespace {

// Types of descriptors that are part of others.
enum : std::uint8_t { Interface = 4, Endpoint = 5, DeviceCapability = 16, Association = 11, Companion = 48 };
// USB3 Vision's own.
enum : std::uint8_t { DeviceInfo = 0x24, DeviceInfoSubtype = 1 };

/// Strings by their index; 0 is the table of languages.
enum StringIndex : std::uint8_t {
    NoString,
    Vendor,
    Model,
    Serial,
    Guid,
    Family,
    DeviceVersion,
    ManufacturerInfo,
    UserDefinedName,
};

constexpr std::uint8_t s_bulk = 2;
constexpr std::uint8_t s_streamBurst = 15; // packets in a row, less one

void Put(Bytes &to, std::initializer_list<unsigned> bytes)
{
    for (const unsigned byte : bytes)
        to.push_back(static_cast<std::byte>(byte));
}

void Put16(Bytes &to, unsigned value) { Put(to, {value & 0xFF, value >> 8}); }

const std::string &Text(const Vcam::UsbIdentity &identity, unsigned index)
{
    static const std::string s_none;
    switch (index) {
    case Vendor:
        return identity.vendor;
    case Model:
        return identity.model;
    case Serial:
        return identity.serial;
    case Guid:
        return identity.guid;
    case Family:
        return identity.family;
    case DeviceVersion:
        return identity.deviceVersion;
    case ManufacturerInfo:
        return identity.manufacturerInfo;
    case UserDefinedName:
        return identity.userDefinedName;
    default:
        return s_none;
    }
}

StringIndex Index(const Vcam::UsbIdentity &identity, StringIndex index)
{
    return Text(identity, index).empty() ? NoString : index;
}

/// UTF-16 of UTF-8; a byte that is no UTF-8 becomes the replacement character.
std::u16string Widen(std::string_view text)
{
    std::u16string wide;
    for (std::size_t at = 0; at < text.size();) {
        const auto lead = static_cast<unsigned char>(text[at++]);
        const unsigned more = lead < 0x80 ? 0 : lead >> 5 == 6 ? 1 : lead >> 4 == 14 ? 2 : lead >> 3 == 30 ? 3 : 4;
        char32_t code = more == 0 ? lead : lead & (0x3Fu >> more);
        unsigned taken = 0;
        while (more < 4 && taken < more && at + taken < text.size() &&
               (static_cast<unsigned char>(text[at + taken]) & 0xC0) == 0x80)
            code = code << 6 | (static_cast<unsigned char>(text[at + taken++]) & 0x3F);
        if (taken != more || code > 0x10FFFF) {
            wide.push_back(u'\uFFFD');
            continue;
        }
        at += more;
        if (code >= 0x10000) {
            wide.push_back(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10)));
            code = 0xDC00 + ((code - 0x10000) & 0x3FF);
        }
        wide.push_back(static_cast<char16_t>(code));
    }
    return wide;
}

Bytes MakeDevice(const Vcam::UsbIdentity &identity)
{
    const bool isSuper = IsSuperSpeed(identity);
    Bytes d;
    Put(d, {18, static_cast<unsigned>(DescriptorType::Device)});
    Put16(d, isSuper ? 0x0300 : 0x0200);
    Put(d, {s_deviceClass[0], s_deviceClass[1], s_deviceClass[2]});
    Put(d, {isSuper ? 9u : 64u}); // packets of endpoint 0: an exponent at SuperSpeed
    Put16(d, s_vendorId);
    Put16(d, s_productId);
    Put16(d, s_deviceRelease);
    Put(d, {Index(identity, Vendor), Index(identity, Model), Index(identity, Serial), 1});
    return d;
}

void PutInterface(Bytes &to, unsigned number, unsigned endpoints, unsigned protocol)
{
    Put(to, {9, Interface, number, 0, endpoints, s_interfaceClass[0], s_interfaceClass[1], protocol, NoString});
}

void PutEndpoint(Bytes &to, const Vcam::UsbIdentity &identity, Vcam::Endpoint endpoint, unsigned burst)
{
    Put(to, {7, Endpoint, static_cast<unsigned>(endpoint), s_bulk});
    Put16(to, identity.maxPacketSize);
    Put(to, {0});
    if (IsSuperSpeed(identity))
        Put(to, {6, Companion, burst, 0, 0, 0});
}

void PutDeviceInfo(Bytes &to, const Vcam::UsbIdentity &identity)
{
    Put(to, {20, DeviceInfo, DeviceInfoSubtype});
    Put16(to, identity.genCpMinor);
    Put16(to, identity.genCpMajor);
    Put16(to, identity.u3vMinor);
    Put16(to, identity.u3vMajor);
    // The user-defined name has its index even while it is empty: it may get one later.
    Put(to,
        {Guid, Index(identity, Vendor), Index(identity, Model), Index(identity, Family), Index(identity, DeviceVersion),
         Index(identity, ManufacturerInfo), Index(identity, Serial), UserDefinedName});
    // Bits: low, full, high, super, super+.
    Put(to, {static_cast<unsigned>(identity.speed)});
}

Bytes MakeConfiguration(const Vcam::UsbIdentity &identity)
{
    const unsigned power = IsSuperSpeed(identity) ? 896 / 8 : 500 / 2; // mA
    Bytes d;
    Put(d, {9, static_cast<unsigned>(DescriptorType::Configuration), 0, 0, s_interfaceCount, s_configurationValue,
            NoString, 0x80, power});
    Put(d, {8, Association, 0, s_interfaceCount, s_interfaceClass[0], s_interfaceClass[1], 0, NoString});
    PutInterface(d, 0, 2, 0); // control
    PutDeviceInfo(d, identity);
    PutEndpoint(d, identity, Vcam::Endpoint::ControlIn, 0);
    PutEndpoint(d, identity, Vcam::Endpoint::ControlOut, 0);
    PutInterface(d, 1, 1, 1); // events
    PutEndpoint(d, identity, Vcam::Endpoint::EventIn, 0);
    PutInterface(d, 2, 1, 2); // stream
    PutEndpoint(d, identity, Vcam::Endpoint::StreamIn, s_streamBurst);
    d[2] = static_cast<std::byte>(d.size() & 0xFF);
    d[3] = static_cast<std::byte>(d.size() >> 8);
    return d;
}

Bytes MakeBos()
{
    Bytes d;
    Put(d, {5, static_cast<unsigned>(DescriptorType::Bos), 22, 0, 2});
    Put(d, {7, DeviceCapability, 2, 2, 0, 0, 0});           // USB 2.0 extension: link power management
    Put(d, {10, DeviceCapability, 3, 0, 8, 0, 3, 0, 0, 0}); // SuperSpeed: 5 Gbit/s alone
    return d;
}

std::optional<Bytes> MakeString(const Vcam::UsbIdentity &identity, unsigned index)
{
    constexpr std::size_t longest = 126; // of UTF-16 units: the descriptor's length is one byte
    Bytes d;
    if (index == 0) {
        Put(d, {4, static_cast<unsigned>(DescriptorType::String), 0x09, 0x04});
        return d;
    }
    const std::u16string text = Widen(Text(identity, index)).substr(0, longest);
    if (text.empty() && index != UserDefinedName)
        return std::nullopt;
    Put(d, {static_cast<unsigned>(2 + 2 * text.size()), static_cast<unsigned>(DescriptorType::String)});
    for (const char16_t unit : text)
        Put16(d, unit);
    return d;
}

} // namespace

bool IsSuperSpeed(const Vcam::UsbIdentity &identity) { return identity.speed >= Vcam::LinkSpeed::Super; }

std::optional<Bytes> MakeDescriptor(const Vcam::UsbIdentity &identity, DescriptorType type, std::uint8_t index)
{
    switch (type) {
    case DescriptorType::Device:
        return MakeDevice(identity);
    case DescriptorType::Configuration:
        return index == 0 ? std::optional(MakeConfiguration(identity)) : std::nullopt;
    case DescriptorType::String:
        return MakeString(identity, index);
    case DescriptorType::Bos:
        return IsSuperSpeed(identity) ? std::optional(MakeBos()) : std::nullopt;
    }
    return std::nullopt;
}

} // namespace Orvi::UsbIp
