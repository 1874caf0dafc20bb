#pragma once
// A transfer of the host while it waits for the device, and the stock of them: their memory is used again and again.

#include "vcam/UsbFunction.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace Orvi::UsbIp {

class Transfer;

/// Learns that the device is done with a transfer.
class TransferOwner {
  public:
    virtual void OnDone(Transfer &transfer) noexcept = 0;

  protected:
    ~TransferOwner() = default;
};

class Transfer final : public Vcam::InTransfer {
  public:
    void Prepare(TransferOwner *owner, std::uint32_t number, std::size_t size);

    std::uint32_t seqnum = 0;
    bool isDone = false;
    bool isUnlinked = false;        ///< the host wants it back
    std::uint32_t unlinkSeqnum = 0; ///< with this message

  private:
    void Complete() noexcept override { owner_->OnDone(*this); }

    TransferOwner *owner_ = nullptr;
    std::unique_ptr<std::byte[]> memory_;
    std::size_t capacity_ = 0;
};

class TransferPool {
  public:
    /// Without an owner it is a mere piece of memory.
    std::unique_ptr<Transfer> Take(TransferOwner *owner, std::uint32_t seqnum, std::size_t size);
    void Give(std::unique_ptr<Transfer> transfer);

  private:
    std::mutex mutex_;
    std::vector<std::unique_ptr<Transfer>> idle_;
};

} // namespace Orvi::UsbIp
