#pragma once
// The control protocol's device side: takes one command packet, carries it out on a memory, gives the acknowledges.

#include "vcam/GenCpCodes.h"

#include <optional>
#include <span>
#include <vector>

namespace Orvi::Vcam {

/// What commands act on.
class GenCpMemory {
  public:
    virtual ~GenCpMemory() = default;
    virtual GenCpStatus Read(std::uint64_t address, std::span<std::byte> to) = 0;
    virtual GenCpStatus Write(std::uint64_t address, std::span<const std::byte> from) = 0;
};

class GenCpServer {
  public:
    using Packet = std::vector<std::byte>;

    explicit GenCpServer(GenCpMemory &memory) : memory_(memory) {}

    /// The acknowledge, empty when none is wanted. Nothing at all for bytes that are no command packet: no request
    /// id to answer to.
    std::optional<Packet> Execute(std::span<const std::byte> command);
    /// PENDING_ACK for a command that has just been executed.
    static Packet PendingAck(std::span<const std::byte> command, std::uint16_t milliseconds);
    /// A refusal of a command that is not carried out.
    static Packet ErrorAck(std::span<const std::byte> command, std::uint16_t status);
    static void ShiftRequestId(Packet &ack, std::uint16_t by);
    /// Forgets the last acknowledge.
    void Reset() { lastCommand_.clear(); }

  private:
    GenCpStatus Read(std::span<const std::byte> entry, Packet &ack);
    GenCpStatus ReadStacked(std::span<const std::byte> entries, Packet &ack);
    GenCpStatus Write(std::uint64_t address, std::span<const std::byte> data, Packet &ack);
    GenCpStatus WriteStacked(std::span<const std::byte> entries, Packet &ack);
    GenCpStatus Dispatch(std::uint16_t command, std::span<const std::byte> scd, Packet &ack);

    GenCpMemory &memory_;
    Packet lastCommand_; // with the flags cleared: a resent command is known by being the same
    Packet lastAck_;
};

} // namespace Orvi::Vcam
