#include "InPipe.h"

#include <algorithm>
#include <utility>

namespace Orvi::UsbIp {

using Vcam::TransferStatus;

InPipe::InPipe(Vcam::UsbFunction &device, Vcam::Endpoint endpoint, TransferPool &pool, Replies &replies,
               std::function<void()> onStall)
    : device_(device), endpoint_(endpoint), pool_(pool), replies_(replies), onStall_(std::move(onStall))
{
}

void InPipe::Submit(std::uint32_t seqnum, std::size_t length)
{
    auto transfer = pool_.Take(this, seqnum, length);
    Transfer &posted = *transfer;
    {
        const std::lock_guard lock(mutex_);
        pending_.push_back(std::move(transfer));
    }
    device_.Submit(endpoint_, posted);
}

Transfer *InPipe::FindPending(std::uint32_t seqnum)
{
    const auto found =
        std::ranges::find(pending_, seqnum, [](const std::unique_ptr<Transfer> &transfer) { return transfer->seqnum; });
    return found == pending_.end() ? nullptr : found->get();
}

bool InPipe::Unlink(const UsbIp::Unlink &unlink)
{
    Transfer *transfer = nullptr;
    {
        const std::lock_guard lock(mutex_);
        transfer = FindPending(unlink.target);
        if (transfer == nullptr || transfer->isUnlinked)
            return false;
        transfer->isUnlinked = true;
        transfer->unlinkSeqnum = unlink.seqnum;
    }
    // It may be answered in this moment; its memory is used again by Submit() alone, which this thread calls.
    device_.Cancel(endpoint_, *transfer);
    return true;
}

void InPipe::Drain()
{
    std::vector<Transfer *> all;
    {
        const std::lock_guard lock(mutex_);
        isDraining_ = true;
        for (const auto &transfer : pending_)
            all.push_back(transfer.get());
    }
    for (Transfer *transfer : all)
        device_.Cancel(endpoint_, *transfer);
    std::unique_lock lock(mutex_);
    empty_.wait(lock, [this] { return pending_.empty(); });
}

void InPipe::OnDone(Transfer &transfer) noexcept
{
    if (transfer.status == TransferStatus::Stalled)
        onStall_();
    const std::lock_guard lock(mutex_);
    transfer.isDone = true;
    if (transfer.status == TransferStatus::Cancelled) {
        // Those before it may stay with the device for long.
        const auto found = std::ranges::find(pending_, &transfer, &std::unique_ptr<Transfer>::get);
        auto cancelled = std::move(*found);
        pending_.erase(found);
        Answer(std::move(cancelled));
    }
    if (!isHeld_)
        AnswerAllDone();
}

void InPipe::Hold()
{
    const std::lock_guard lock(mutex_);
    isHeld_ = true;
}

void InPipe::Release()
{
    const std::lock_guard lock(mutex_);
    isHeld_ = false;
    AnswerAllDone();
}

void InPipe::AnswerAllDone()
{
    while (!pending_.empty() && pending_.front()->isDone) {
        auto done = std::move(pending_.front());
        pending_.pop_front();
        Answer(std::move(done));
    }
    if (pending_.empty())
        empty_.notify_all();
}

void InPipe::Answer(std::unique_ptr<Transfer> transfer)
{
    // What ends with the plug ends with the connection.
    if (isDraining_ || transfer->status == TransferStatus::Gone) {
        pool_.Give(std::move(transfer));
        return;
    }
    const bool isCancelled = transfer->status == TransferStatus::Cancelled;
    const bool isUnlinked = transfer->isUnlinked;
    const std::uint32_t seqnum = transfer->seqnum, unlinkSeqnum = transfer->unlinkSeqnum;
    if (isCancelled && transfer->received == 0) {
        pool_.Give(std::move(transfer));
        replies_.Push({UnlinkReply(unlinkSeqnum, UrbStatus::Unlinked), nullptr});
        return;
    }
    // Data of a cancelled transfer reaches the host as if the transfer had just been faster.
    const UrbStatus status = transfer->status == TransferStatus::Stalled  ? UrbStatus::Stalled
                             : transfer->status == TransferStatus::Babble ? UrbStatus::Babble
                             : isCancelled                                ? UrbStatus::Unlinked
                                                                          : UrbStatus::Success;
    const std::size_t received = transfer->received;
    replies_.Push({SubmitReply(seqnum, status, received), std::move(transfer)});
    if (isUnlinked)
        replies_.Push({UnlinkReply(unlinkSeqnum, UrbStatus::Success), nullptr});
}

} // namespace Orvi::UsbIp
