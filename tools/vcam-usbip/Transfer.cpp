#include "Transfer.h"

namespace Orvi::UsbIp {

void Transfer::Prepare(TransferOwner *owner, std::uint32_t number, std::size_t size)
{
    if (size > capacity_) {
        memory_ = std::make_unique_for_overwrite<std::byte[]>(size);
        capacity_ = size;
    }
    owner_ = owner;
    buffer = {memory_.get(), size};
    received = 0;
    seqnum = number;
    isDone = isUnlinked = false;
}

std::unique_ptr<Transfer> TransferPool::Take(TransferOwner *owner, std::uint32_t seqnum, std::size_t size)
{
    std::unique_ptr<Transfer> transfer;
    {
        const std::lock_guard lock(mutex_);
        if (!idle_.empty()) {
            transfer = std::move(idle_.back());
            idle_.pop_back();
        }
    }
    if (transfer == nullptr)
        transfer = std::make_unique<Transfer>();
    transfer->Prepare(owner, seqnum, size);
    return transfer;
}

void TransferPool::Give(std::unique_ptr<Transfer> transfer)
{
    if (transfer == nullptr)
        return;
    const std::lock_guard lock(mutex_);
    idle_.push_back(std::move(transfer));
}

} // namespace Orvi::UsbIp
