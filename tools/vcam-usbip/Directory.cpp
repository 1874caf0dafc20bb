#include "Directory.h"

#include "Descriptors.h"
#include "Messages.h"

#include <algorithm>

namespace Orvi::UsbIp {
namespace {

constexpr std::size_t s_pathSize = 256;
constexpr std::uint32_t s_busNumber = 1;
enum ReplyStatus : std::uint32_t { Accepted = 0, NotAvailable = 1 };

template <class T>
void Put(Bytes &to, T value)
{
    to.resize(to.size() + sizeof value);
    StoreBe(&to[to.size() - sizeof value], value);
}

/// Padded with zeros, and at least one of them.
void PutText(Bytes &to, const std::string &text, std::size_t size)
{
    const std::size_t start = to.size();
    to.resize(start + size);
    std::transform(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(std::min(text.size(), size - 1)),
                   &to[start], [](char c) { return static_cast<std::byte>(c); });
}

Bytes Begin(Operation answered, ReplyStatus status)
{
    Bytes reply;
    Put(reply, s_version);
    Put(reply, static_cast<std::uint16_t>(static_cast<unsigned>(answered) & 0x7FFF));
    Put<std::uint32_t>(reply, status);
    return reply;
}

/// The kernel's codes.
std::uint32_t SpeedCode(Vcam::LinkSpeed speed)
{
    switch (speed) {
    case Vcam::LinkSpeed::Low:
        return 1;
    case Vcam::LinkSpeed::Full:
        return 2;
    case Vcam::LinkSpeed::High:
        return 3;
    default:
        return 5;
    }
}

void PutDevice(Bytes &to, const DirectoryEntry &entry)
{
    PutText(to, "/orvi-vcam/" + entry.identity.serial, s_pathSize);
    PutText(to, BusIdOf(entry.number), s_busIdSize);
    Put<std::uint32_t>(to, s_busNumber);
    Put<std::uint32_t>(to, entry.number);
    Put<std::uint32_t>(to, SpeedCode(entry.identity.speed));
    Put(to, s_vendorId);
    Put(to, s_productId);
    Put(to, s_deviceRelease);
    for (const std::uint8_t byte : s_deviceClass)
        Put(to, byte);
    Put(to, s_configurationValue);
    Put<std::uint8_t>(to, 1); // configurations
    Put(to, s_interfaceCount);
}

} // namespace

Operation ParseOperation(const std::array<std::byte, s_operationSize> &header)
{
    const auto version = LoadBe<std::uint16_t>(header.data());
    const auto code = LoadBe<std::uint16_t>(&header[2]);
    if (version != s_version)
        throw ProtocolError("the host speaks another version of USB/IP, or something else");
    if (code != static_cast<unsigned>(Operation::List) && code != static_cast<unsigned>(Operation::Import))
        throw ProtocolError("unknown operation " + std::to_string(code));
    return static_cast<Operation>(code);
}

std::string ParseBusId(const std::array<std::byte, s_busIdSize> &field)
{
    std::string text;
    for (auto at = field.begin(); at != field.end() && *at != std::byte{0}; ++at)
        text.push_back(static_cast<char>(*at));
    return text;
}

std::string BusIdOf(unsigned number) { return std::to_string(s_busNumber) + '-' + std::to_string(number); }

std::vector<std::byte> ListReply(const std::vector<DirectoryEntry> &entries)
{
    Bytes reply = Begin(Operation::List, Accepted);
    Put(reply, static_cast<std::uint32_t>(entries.size()));
    for (const DirectoryEntry &entry : entries) {
        PutDevice(reply, entry);
        for (std::uint8_t interface = 0; interface < s_interfaceCount; ++interface) {
            Put(reply, s_interfaceClass[0]);
            Put(reply, s_interfaceClass[1]);
            Put(reply, interface); // the protocol: control, event, stream
            Put<std::uint8_t>(reply, 0);
        }
    }
    return reply;
}

std::vector<std::byte> ImportReply(const DirectoryEntry &entry)
{
    Bytes reply = Begin(Operation::Import, Accepted);
    PutDevice(reply, entry);
    return reply;
}

std::vector<std::byte> ImportRefusal() { return Begin(Operation::Import, NotAvailable); }

} // namespace Orvi::UsbIp
