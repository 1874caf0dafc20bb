#include "u3v/protocol/TransferProbe.h"

#include <condition_variable>
#include <memory>
#include <mutex>

namespace Orvi::U3v {
namespace {

class Waiter : public BulkIn::Listener {
  public:
    void OnDone(BulkIn &) noexcept override
    {
        std::lock_guard lock(mutex_);
        isDone_ = true;
        done_.notify_one();
    }

    void Wait()
    {
        std::unique_lock lock(mutex_);
        done_.wait(lock, [this] { return isDone_; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable done_;
    bool isDone_ = false;
};

} // namespace

bool HasMemoryFor(UsbLink &link, Pipe pipe, std::size_t size)
{
    const auto memory = std::make_unique_for_overwrite<std::byte[]>(size);
    Waiter waiter;
    const auto transfer = link.NewTransfer(pipe, waiter);
    transfer->Submit({memory.get(), size});
    transfer->Cancel();
    waiter.Wait();
    return transfer->Status() != TransferStatus::NoMemory;
}

} // namespace Orvi::U3v
