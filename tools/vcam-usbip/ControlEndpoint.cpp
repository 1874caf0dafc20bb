#include "ControlEndpoint.h"

#include <algorithm>

namespace Orvi::UsbIp {
namespace {

// bmRequestType and bRequest as one number.
enum Request : std::uint16_t {
    GetDeviceStatus = 0x8000,
    GetInterfaceStatus = 0x8100,
    GetEndpointStatus = 0x8200,
    ClearDeviceFeature = 0x0001,
    ClearInterfaceFeature = 0x0101,
    ClearEndpointFeature = 0x0201,
    SetDeviceFeature = 0x0003,
    SetInterfaceFeature = 0x0103,
    SetEndpointFeature = 0x0203,
    GetDescriptor = 0x8006,
    GetConfiguration = 0x8008,
    SetConfiguration = 0x0009,
    GetInterface = 0x810A,
    SetInterface = 0x010B,
    SetSystemExitLatency = 0x0030,
    SetIsochDelay = 0x0031,
};

enum Feature : std::uint16_t { EndpointHalt = 0, FunctionSuspend = 0, U1Enable = 48, U2Enable = 49, LtmEnable = 50 };

struct BulkEndpoint {
    Vcam::Endpoint endpoint;
    std::uint8_t interface;
};
constexpr std::array<BulkEndpoint, 4> s_endpoints{{
    {Vcam::Endpoint::ControlOut, 0},
    {Vcam::Endpoint::ControlIn, 0},
    {Vcam::Endpoint::EventIn, 1},
    {Vcam::Endpoint::StreamIn, 2},
}};

/// Its row above, or the number of rows.
std::size_t IndexOf(std::uint16_t address)
{
    const auto *found = std::ranges::find(s_endpoints, address,
                                          [](const BulkEndpoint &row) { return static_cast<unsigned>(row.endpoint); });
    return static_cast<std::size_t>(found - s_endpoints.begin());
}

bool IsEndpointZero(std::uint16_t address) { return (address & 0xFF7F) == 0; }

Bytes Number(std::initializer_list<unsigned> bytes)
{
    Bytes data;
    for (const unsigned byte : bytes)
        data.push_back(static_cast<std::byte>(byte));
    return data;
}

const Bytes s_done;

} // namespace

struct ControlEndpoint::Setup {
    Request request;
    std::uint16_t value, index, length;
};

std::optional<Bytes> ControlEndpoint::Answer(const SetupPacket &packet)
{
    const auto word = [&](std::size_t at) { return static_cast<std::uint16_t>(packet[at] | packet[at + 1] << 8); };
    const Setup setup{static_cast<Request>(packet[0] << 8 | packet[1]), word(2), word(4), word(6)};
    auto answer = [&]() -> std::optional<Bytes> {
        switch (setup.request) {
        case GetDescriptor:
            return Describe(setup);
        case GetDeviceStatus:
        case GetInterfaceStatus:
        case GetEndpointStatus:
            return Status(setup);
        case ClearDeviceFeature:
        case ClearInterfaceFeature:
        case ClearEndpointFeature:
            return ChangeFeature(setup, false);
        case SetDeviceFeature:
        case SetInterfaceFeature:
        case SetEndpointFeature:
            return ChangeFeature(setup, true);
        case GetConfiguration:
            return Number({configuration_});
        case SetConfiguration:
            return Configure(setup.value);
        case GetInterface:
            return setup.index < s_interfaceCount ? std::optional(Number({0})) : std::nullopt;
        case SetInterface:
            return SelectSetting(setup);
        case SetSystemExitLatency:
        case SetIsochDelay:
            return s_done; // facts about the bus that a virtual device has no use for
        }
        return std::nullopt;
    }();
    if (!answer || answer->size() <= setup.length)
        return answer;
    return Bytes(answer->begin(), answer->begin() + setup.length);
}

void ControlEndpoint::NoteStall(Vcam::Endpoint endpoint)
{
    isHalted_[IndexOf(static_cast<std::uint16_t>(endpoint))] = true;
}

std::optional<Bytes> ControlEndpoint::Describe(const Setup &setup) const
{
    return MakeDescriptor(device_.Identity(), static_cast<DescriptorType>(setup.value >> 8),
                          static_cast<std::uint8_t>(setup.value & 0xFF));
}

std::optional<Bytes> ControlEndpoint::Status(const Setup &setup) const
{
    if (setup.request == GetDeviceStatus)
        return Number({powerStates_, 0});
    if (setup.request == GetInterfaceStatus)
        return setup.index < s_interfaceCount ? std::optional(Number({0, 0})) : std::nullopt;
    if (IsEndpointZero(setup.index))
        return Number({0, 0});
    const std::size_t index = IndexOf(setup.index);
    return index < s_endpoints.size() ? std::optional(Number({isHalted_[index], 0})) : std::nullopt;
}

std::optional<Bytes> ControlEndpoint::ChangeFeature(const Setup &setup, bool isSet)
{
    switch (setup.request) {
    case SetEndpointFeature:
    case ClearEndpointFeature:
        return setup.value == EndpointHalt ? ChangeHalt(setup.index, isSet) : std::nullopt;
    case SetInterfaceFeature:
    case ClearInterfaceFeature: // the upper byte of the index is an option of FunctionSuspend
        return setup.value == FunctionSuspend && (setup.index & 0xFF) == 0 ? std::optional(s_done) : std::nullopt;
    default:
        break;
    }
    if (setup.value < U1Enable || setup.value > LtmEnable || !IsSuperSpeed(device_.Identity()))
        return std::nullopt;
    const auto bit = static_cast<std::uint16_t>(4 << (setup.value - U1Enable));
    powerStates_ = static_cast<std::uint16_t>(isSet ? powerStates_ | bit : powerStates_ & ~bit);
    return s_done;
}

std::optional<Bytes> ControlEndpoint::ChangeHalt(std::uint16_t address, bool isSet)
{
    if (IsEndpointZero(address))
        return s_done;
    const std::size_t index = IndexOf(address);
    if (index == s_endpoints.size())
        return std::nullopt;
    if (isSet) {
        isHalted_[index] = true;
        device_.SetHalt(s_endpoints[index].endpoint);
    } else {
        ClearHalt(index);
    }
    return s_done;
}

std::optional<Bytes> ControlEndpoint::Configure(std::uint16_t value)
{
    if (value > s_configurationValue)
        return std::nullopt;
    configuration_ = static_cast<std::uint8_t>(value);
    powerStates_ = 0;
    for (std::size_t index = 0; index < s_endpoints.size(); ++index)
        ClearHalt(index);
    return s_done;
}

std::optional<Bytes> ControlEndpoint::SelectSetting(const Setup &setup)
{
    if (setup.value != 0 || setup.index >= s_interfaceCount)
        return std::nullopt;
    for (std::size_t index = 0; index < s_endpoints.size(); ++index) {
        if (s_endpoints[index].interface == setup.index)
            ClearHalt(index);
    }
    return s_done;
}

void ControlEndpoint::ClearHalt(std::size_t index)
{
    isHalted_[index] = false;
    device_.ClearHalt(s_endpoints[index].endpoint);
}

} // namespace Orvi::UsbIp
