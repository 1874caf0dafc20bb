#pragma once
// A bulk IN endpoint: transfers that the host has posted, and the packet rules by which the device's data fill them.

#include "vcam/Fifo.h"
#include "vcam/UsbFunction.h"

#include <condition_variable>
#include <functional>
#include <mutex>

namespace Orvi::Vcam {

/// What follows the last byte of a message that ends on a packet boundary.
enum class Ending : std::uint8_t {
    Open,       ///< nothing: a transfer that is not full yet waits for the next message
    IfRoom,     ///< a zero-length packet when the transfer has room left, none when it is exactly full
    ZeroLength, ///< a zero-length packet, which completes the next transfer when this one is exactly full
};

/// Bytes on their way into transfers. The memory stays with the sender.
struct Message {
    std::span<const std::byte> data;
    Ending ending = Ending::IfRoom;
    std::size_t sent = 0;
    bool terminated = false; ///< by a short or zero-length packet, or needing none

    bool IsSent() const { return sent == data.size() && (terminated || (ending == Ending::Open && !data.empty())); }
};

class InEndpoint {
  public:
    /// `onPosted` is called after each Submit() that queued a transfer, without a lock held.
    InEndpoint(std::size_t packetSize, std::function<void()> onPosted);

    void Submit(InTransfer &transfer);
    bool Cancel(InTransfer &transfer);
    void SetHalt();
    /// Ends the halt and begins a new epoch.
    void ClearHalt();
    /// Pulls the plug (posted transfers end as Gone) or puts it back in.
    void SetGone(bool gone);
    /// Begins a new epoch: what a sender still has of the old one will not be sent. Returns when no byte is under way.
    void Abort();

    bool IsHalted() const;
    bool HasTransfer() const;
    /// Counts ClearHalt(), Abort() and SetGone(): a message belongs to the epoch in which its sending began.
    std::uint64_t Epoch() const;

    /// Fills posted transfers as far as they reach. True when the whole message is sent; false when transfers are
    /// missing or the epoch is over. One thread at a time sends.
    bool Send(Message &message, std::uint64_t epoch);

  private:
    bool CanSend(std::uint64_t epoch) const { return !halted_ && !gone_ && epoch == epoch_ && !posted_.IsEmpty(); }
    void EndAll(std::unique_lock<std::mutex> &lock, TransferStatus status);

    const std::size_t packetSize_;
    const std::function<void()> onPosted_;
    mutable std::mutex mutex_;
    std::condition_variable idle_;
    Fifo<InTransfer> posted_;
    InTransfer *busy_ = nullptr; // being filled without the lock
    bool cancelBusy_ = false;
    bool halted_ = false;
    bool gone_ = false;
    std::uint64_t epoch_ = 0;
};

} // namespace Orvi::Vcam
