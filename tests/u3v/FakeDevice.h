#pragma once
// A USB3 Vision device that does exactly what a test tells it: registers in memory, a control protocol whose answers
// can be tampered with, and stream and event endpoints that send what the test hands them.

#include "vcam/UsbFunction.h"

#include <condition_variable>
#include <cstring>
#include <deque>
#include <functional>
#include <initializer_list>
#include <map>
#include <mutex>
#include <vector>

namespace Orvi::Test {

using Bytes = std::vector<std::byte>;

template <class... T>
Bytes Pack(T... values)
{
    Bytes bytes((sizeof(T) + ...));
    std::size_t at = 0;
    ((std::memcpy(bytes.data() + at, &values, sizeof values), at += sizeof values), ...);
    return bytes;
}

Bytes Joined(std::initializer_list<Bytes> parts);

struct Command {
    std::uint16_t flags, id, requestId;
    std::uint64_t address;
    std::size_t count; ///< bytes to read or written
    Bytes data;        ///< to write
};

class FakeDevice : public Vcam::UsbFunction {
  public:
    static constexpr std::uint64_t sbrm = 0x10000, sirm = 0x20000, eirm = 0x30000, acquisition = 0x20303C;
    static constexpr std::uint64_t manifest = 0x40000, file = 0x50000;

    FakeDevice();

    // Registers.
    void Set32(std::uint64_t address, std::uint32_t value);
    void Set64(std::uint64_t address, std::uint64_t value);
    void SetBytes(std::uint64_t address, const Bytes &bytes);
    std::uint32_t Get32(std::uint64_t address) const;
    void SetPayload(std::uint32_t size) { Set64(sirm + 8, size); }

    /// Called instead of the normal answer; gives the packets to answer with. May call Answer().
    std::function<std::vector<Bytes>(const Command &)> onCommand;
    /// Called after a register was written, without a lock held.
    std::function<void(const Command &)> onWritten;
    /// The normal acknowledge of a command, which it executes.
    Bytes Answer(const Command &command);
    static Bytes Ack(const Command &command, std::uint16_t status, std::uint16_t ackId, const Bytes &scd);

    std::vector<Command> Commands() const;

    // The stream and event endpoints: one message fills one posted transfer, and waits for it.
    void Send(Vcam::Endpoint endpoint, const Bytes &message);
    void SendStream(const Bytes &message) { Send(Vcam::Endpoint::StreamIn, message); }
    void SendEvent(const Bytes &message) { Send(Vcam::Endpoint::EventIn, message); }
    /// Waits until at least so many transfers are posted.
    void WaitPosted(Vcam::Endpoint endpoint, std::size_t count);
    std::size_t Posted(Vcam::Endpoint endpoint) const;
    std::size_t Halts(Vcam::Endpoint endpoint) const;
    std::size_t Clears(Vcam::Endpoint endpoint) const;
    void Unplug();
    void WaitHalts(Vcam::Endpoint endpoint, std::size_t count);

    Vcam::UsbIdentity Identity() const override;
    Vcam::TransferStatus Out(std::span<const std::byte> data) override;
    void Submit(Vcam::Endpoint endpoint, Vcam::InTransfer &transfer) override;
    bool Cancel(Vcam::Endpoint endpoint, Vcam::InTransfer &transfer) override;
    void SetHalt(Vcam::Endpoint endpoint) override;
    void ClearHalt(Vcam::Endpoint endpoint) override;
    void SetGoneObserver(GoneObserver *observer) override;

  private:
    struct EndpointState {
        std::deque<Vcam::InTransfer *> posted;
        std::deque<Bytes> queued; // of the control endpoint: answers that wait for a transfer
        bool isHalted = false;
        std::size_t halts = 0, clears = 0;
    };

    void PumpControl();
    static void Fill(Vcam::InTransfer &transfer, const Bytes &message);

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::map<std::uint64_t, std::byte> memory_;
    std::map<Vcam::Endpoint, EndpointState> endpoints_;
    std::vector<Command> commands_;
    bool isGone_ = false;
    GoneObserver *observer_ = nullptr;
};

// Stream and event packets.
Bytes Leader(std::uint64_t blockId, std::uint32_t width, std::uint32_t height);
Bytes Trailer(std::uint64_t blockId, std::uint64_t payloadSize, std::uint32_t height, std::uint16_t status = 0);
Bytes EventPacket(std::uint16_t eventId, std::uint64_t timestamp, const Bytes &data);

} // namespace Orvi::Test
