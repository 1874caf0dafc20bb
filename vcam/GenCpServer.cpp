#include "vcam/GenCpServer.h"

#include "vcam/Wire.h"

namespace Orvi::Vcam {

namespace {

constexpr std::size_t s_readEntry = 12;  // u64 address, u16 reserved, u16 count
constexpr std::size_t s_writeEntry = 12; // the same before the data of a stacked write

void StoreHeader(std::span<std::byte> ack, std::uint16_t status, std::uint16_t id, std::uint16_t requestId)
{
    FieldWriter(ack)
        .Put(s_controlPrefix)
        .Put(status)
        .Put(id)
        .Put(static_cast<std::uint16_t>(ack.size() - s_genCpHeader))
        .Put(requestId);
}

/// An error carries no data; the answer to a single write still tells that nothing was written.
constexpr std::size_t ErrorAckSize(std::uint16_t id)
{
    return s_genCpHeader + (id == static_cast<std::uint16_t>(GenCpCommand::WriteMem) ? 4 : 0);
}

} // namespace

GenCpStatus GenCpServer::Read(std::span<const std::byte> entry, Packet &ack)
{
    const auto count = LoadLe<std::uint16_t>(entry.data() + 10);
    if (count == 0 || ack.size() + count > s_maxAck) {
        return GenCpStatus::InvalidParameter;
    }
    const std::size_t at = ack.size();
    ack.resize(at + count);
    return memory_.Read(LoadLe<std::uint64_t>(entry.data()), std::span(ack).subspan(at));
}

GenCpStatus GenCpServer::ReadStacked(std::span<const std::byte> entries, Packet &ack)
{
    for (std::size_t at = 0; at < entries.size(); at += s_readEntry) {
        if (const GenCpStatus status = Read(entries.subspan(at, s_readEntry), ack); status != GenCpStatus::Success) {
            return status;
        }
    }
    return GenCpStatus::Success;
}

GenCpStatus GenCpServer::Write(std::uint64_t address, std::span<const std::byte> data, Packet &ack)
{
    const GenCpStatus status = memory_.Write(address, data);
    const std::size_t at = ack.size();
    ack.resize(at + 4);
    StoreLe(ack.data() + at + 2, static_cast<std::uint16_t>(status == GenCpStatus::Success ? data.size() : 0));
    return status;
}

GenCpStatus GenCpServer::WriteStacked(std::span<const std::byte> entries, Packet &ack)
{
    while (!entries.empty()) {
        if (entries.size() < s_writeEntry) {
            return GenCpStatus::InvalidHeader;
        }
        const auto count = LoadLe<std::uint16_t>(entries.data() + 10);
        if (count == 0 || count > entries.size() - s_writeEntry) {
            return GenCpStatus::InvalidParameter;
        }
        const auto address = LoadLe<std::uint64_t>(entries.data());
        if (const GenCpStatus status = Write(address, entries.subspan(s_writeEntry, count), ack);
            status != GenCpStatus::Success) {
            return status;
        }
        entries = entries.subspan(s_writeEntry + count);
    }
    return GenCpStatus::Success;
}

GenCpStatus GenCpServer::Dispatch(std::uint16_t command, std::span<const std::byte> scd, Packet &ack)
{
    switch (static_cast<GenCpCommand>(command)) {
    case GenCpCommand::ReadMem:
        return scd.size() == s_readEntry ? Read(scd, ack) : GenCpStatus::InvalidHeader;
    case GenCpCommand::WriteMem:
        return scd.size() > 8 ? Write(LoadLe<std::uint64_t>(scd.data()), scd.subspan(8), ack)
                              : GenCpStatus::InvalidHeader;
    case GenCpCommand::ReadMemStacked:
        return !scd.empty() && scd.size() % s_readEntry == 0 ? ReadStacked(scd, ack) : GenCpStatus::InvalidHeader;
    case GenCpCommand::WriteMemStacked:
        return !scd.empty() ? WriteStacked(scd, ack) : GenCpStatus::InvalidHeader;
    default:
        return GenCpStatus::NotImplemented;
    }
}

std::optional<GenCpServer::Packet> GenCpServer::Execute(std::span<const std::byte> command)
{
    if (command.size() < s_genCpHeader) {
        return std::nullopt;
    }
    const auto prefix = LoadLe<std::uint32_t>(command.data());
    const auto flags = LoadLe<std::uint16_t>(command.data() + 4);
    const auto id = LoadLe<std::uint16_t>(command.data() + 6);
    const auto length = LoadLe<std::uint16_t>(command.data() + 8);
    const auto requestId = LoadLe<std::uint16_t>(command.data() + 10);

    Packet plain(command.begin(), command.end());
    StoreLe(plain.data() + 4, std::uint16_t{0});
    if ((flags & s_flagResend) != 0 && plain == lastCommand_) {
        return lastAck_; // carried out already: a write must not run twice
    }

    Packet ack(s_genCpHeader);
    GenCpStatus status = GenCpStatus::InvalidHeader;
    if (prefix == s_controlPrefix && command.size() <= s_maxCommand && length == command.size() - s_genCpHeader) {
        status = Dispatch(id, command.subspan(s_genCpHeader), ack);
    }
    if (status != GenCpStatus::Success) {
        ack.assign(ErrorAckSize(id), std::byte{0});
    }
    StoreHeader(ack, static_cast<std::uint16_t>(status), static_cast<std::uint16_t>(id + 1), requestId);
    lastCommand_ = std::move(plain);
    lastAck_ = ack;
    if ((flags & s_flagAckWanted) == 0) {
        return Packet{};
    }
    return ack;
}

GenCpServer::Packet GenCpServer::PendingAck(std::span<const std::byte> command, std::uint16_t milliseconds)
{
    Packet ack(s_genCpHeader + 4);
    StoreHeader(ack, 0, static_cast<std::uint16_t>(GenCpCommand::PendingAck),
                LoadLe<std::uint16_t>(command.data() + 10));
    StoreLe(ack.data() + s_genCpHeader + 2, milliseconds);
    return ack;
}

GenCpServer::Packet GenCpServer::ErrorAck(std::span<const std::byte> command, std::uint16_t status)
{
    if (command.size() < s_genCpHeader) {
        return {};
    }
    const auto id = LoadLe<std::uint16_t>(command.data() + 6);
    Packet ack(ErrorAckSize(id));
    StoreHeader(ack, status, static_cast<std::uint16_t>(id + 1), LoadLe<std::uint16_t>(command.data() + 10));
    return ack;
}

void GenCpServer::ShiftRequestId(Packet &ack, std::uint16_t by)
{
    StoreLe(ack.data() + 10, static_cast<std::uint16_t>(LoadLe<std::uint16_t>(ack.data() + 10) + by));
}

} // namespace Orvi::Vcam
