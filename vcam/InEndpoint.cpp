#include "vcam/InEndpoint.h"

#include <algorithm>
#include <cstring>

namespace Orvi::Vcam {

namespace {

/// What one round of packets does to a transfer and a message.
struct Step {
    std::size_t copied = 0; ///< into the transfer
    std::size_t taken = 0;  ///< from the message; more than copied when a packet is lost
    bool terminates = false;
    bool completes = false;
    bool babbles = false;
};

Step PlanStep(std::size_t room, const Message &message, std::size_t packet)
{
    const std::size_t left = message.data.size() - message.sent;
    if (left == 0) {
        return {.terminates = true, .completes = true}; // the zero-length packet alone
    }
    if (left <= room) {
        const bool isFull = left == room;
        const bool isShort = left % packet != 0;
        const bool terminates =
            isShort || message.ending == Ending::IfRoom || (message.ending == Ending::ZeroLength && !isFull);
        return {.copied = left, .taken = left, .terminates = terminates, .completes = isFull || terminates};
    }
    const std::size_t whole = room / packet * packet;
    if (whole == room && room != 0) {
        return {.copied = whole, .taken = whole, .completes = true};
    }
    // The next packet is larger than the room that is left: the host controller throws it away.
    const std::size_t lost = std::min(packet, left - whole);
    return {
        .copied = whole, .taken = whole + lost, .terminates = whole + lost == left, .completes = true, .babbles = true};
}

} // namespace

InEndpoint::InEndpoint(std::size_t packetSize, std::function<void()> onPosted)
    : packetSize_(packetSize), onPosted_(std::move(onPosted))
{
}

void InEndpoint::Submit(InTransfer &transfer)
{
    transfer.received = 0;
    bool isQueued = false;
    {
        const std::lock_guard lock(mutex_);
        isQueued = !halted_ && !gone_;
        transfer.status = gone_ ? TransferStatus::Gone : halted_ ? TransferStatus::Stalled : TransferStatus::Completed;
        if (isQueued) {
            posted_.PushBack(&transfer); // from here on it may complete at any time
        }
    }
    if (isQueued) {
        onPosted_();
    } else {
        transfer.Complete();
    }
}

bool InEndpoint::Cancel(InTransfer &transfer)
{
    {
        const std::lock_guard lock(mutex_);
        if (busy_ == &transfer) {
            cancelBusy_ = true; // should its packets not complete it, the sender ends it
            return false;
        }
        if (!posted_.Remove(&transfer)) {
            return false;
        }
    }
    transfer.status = TransferStatus::Cancelled;
    transfer.Complete();
    return true;
}

void InEndpoint::SetHalt()
{
    std::unique_lock lock(mutex_);
    halted_ = true;
    EndAll(lock, TransferStatus::Stalled);
}

void InEndpoint::ClearHalt()
{
    const std::lock_guard lock(mutex_);
    halted_ = false;
    ++epoch_;
}

void InEndpoint::SetGone(bool gone)
{
    std::unique_lock lock(mutex_);
    gone_ = gone;
    halted_ = false;
    ++epoch_;
    if (gone) {
        EndAll(lock, TransferStatus::Gone);
    }
}

void InEndpoint::Abort()
{
    std::unique_lock lock(mutex_);
    ++epoch_;
    idle_.wait(lock, [&] { return busy_ == nullptr; });
}

bool InEndpoint::IsHalted() const
{
    const std::lock_guard lock(mutex_);
    return halted_;
}

bool InEndpoint::HasTransfer() const
{
    const std::lock_guard lock(mutex_);
    return !posted_.IsEmpty();
}

std::uint64_t InEndpoint::Epoch() const
{
    const std::lock_guard lock(mutex_);
    return epoch_;
}

void InEndpoint::EndAll(std::unique_lock<std::mutex> &lock, TransferStatus status)
{
    Fifo<InTransfer> ended;
    std::swap(ended, posted_);
    lock.unlock();
    while (!ended.IsEmpty()) {
        InTransfer *transfer = ended.PopFront();
        transfer->status = status;
        transfer->Complete();
    }
}

bool InEndpoint::Send(Message &message, std::uint64_t epoch)
{
    std::unique_lock lock(mutex_);
    while (!message.IsSent()) {
        if (!CanSend(epoch)) {
            return false;
        }
        InTransfer *transfer = posted_.PopFront();
        busy_ = transfer;
        cancelBusy_ = false;
        lock.unlock();

        const Step step = PlanStep(transfer->buffer.size() - transfer->received, message, packetSize_);
        if (step.copied != 0) {
            std::memcpy(transfer->buffer.data() + transfer->received, message.data.data() + message.sent, step.copied);
        }
        message.sent += step.taken;
        message.terminated = message.terminated || step.terminates;
        transfer->received = step.babbles ? 0 : transfer->received + step.copied;
        transfer->status = step.babbles ? TransferStatus::Babble : TransferStatus::Completed;

        lock.lock();
        busy_ = nullptr;
        idle_.notify_all();
        bool isOver = step.completes;
        if (!isOver && (cancelBusy_ || halted_ || gone_)) {
            isOver = true;
            transfer->status = gone_     ? TransferStatus::Gone
                               : halted_ ? TransferStatus::Stalled
                                         : TransferStatus::Cancelled;
        }
        if (!isOver) {
            posted_.PushFront(transfer);
            continue;
        }
        lock.unlock();
        transfer->Complete();
        lock.lock();
    }
    return true;
}

} // namespace Orvi::Vcam
