#pragma once
// The host's transfers on one bulk IN endpoint. They are answered in the order of their submission, whatever the order
// in which the device lets go of them, and an unlinked one is never answered twice.

#include "Replies.h"
#include "Transfer.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

namespace Orvi::UsbIp {

class InPipe final : private TransferOwner {
  public:
    /// `onStall` is called for each transfer that ends so, on the device's thread.
    InPipe(Vcam::UsbFunction &device, Vcam::Endpoint endpoint, TransferPool &pool, Replies &replies,
           std::function<void()> onStall);

    void Submit(std::uint32_t seqnum, std::size_t length);
    /// Takes a transfer back and answers the message; false when it is not here. The answer comes at once, or with the
    /// transfer that is just being completed.
    bool Unlink(const UsbIp::Unlink &unlink);
    /// Between these two no transfer is answered.
    void Hold();
    void Release();
    /// Takes all transfers back without an answer. Returns when the device has let go of the last one.
    void Drain();

  private:
    void OnDone(Transfer &transfer) noexcept override;
    void AnswerAllDone();
    void Answer(std::unique_ptr<Transfer> transfer);
    Transfer *FindPending(std::uint32_t seqnum);

    Vcam::UsbFunction &device_;
    const Vcam::Endpoint endpoint_;
    TransferPool &pool_;
    Replies &replies_;
    const std::function<void()> onStall_;

    std::mutex mutex_;
    std::condition_variable empty_;
    std::deque<std::unique_ptr<Transfer>> pending_;
    bool isHeld_ = false, isDraining_ = false;
};

} // namespace Orvi::UsbIp
