// The event channel's own thread: takes transfers back, hands their events out, and clears a halted endpoint.

#include "u3v/protocol/EventChannel.h"

#include "u3v/core/Log.h"
#include "u3v/core/Signal.h"

#include <algorithm>

namespace Orvi::U3v {

void EventChannel::OnDone(BulkIn &transfer) noexcept
{
    std::lock_guard lock(mutex_);
    --pending_;
    done_.push_back(&transfer);
    wake_.notify_all();
}

void EventChannel::Run()
{
    std::unique_lock lock(mutex_);
    while (!isClosing_) {
        if (wantsReset_ && !IsEnding()) {
            failures_ = 0;
            ClearEndpoint(lock);
            wantsReset_ = false;
            wake_.notify_all();
        } else if (!done_.empty()) {
            BulkIn &transfer = *done_.front();
            done_.pop_front();
            HandleTransfer(lock, transfer);
        } else if (isGone_ && !waiting_.IsEmpty() && !HasOwnBuffers()) {
            lock.unlock();
            CompleteWaiting(CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE);
            lock.lock();
        } else {
            wake_.wait(lock);
        }
    }
}

void EventChannel::HandleTransfer(std::unique_lock<std::mutex> &lock, BulkIn &transfer)
{
    const TransferStatus status = transfer.Status();
    if (status == TransferStatus::Gone || isCameraClosed_ || isClosing_)
        return;
    if (status == TransferStatus::Completed) {
        failures_ = 0;
        lock.unlock();
        if (!transfer.Received().empty())
            HandlePacket(transfer.Received());
        lock.lock();
    } else if (status == TransferStatus::Babble) {
        lock.unlock();
        CountMalformed(transfer.Buffer().size() + 1); // at least: it was larger than the buffer
        lock.lock();
    } else {
        // A camera that halts the endpoint again and again gets ever longer pauses.
        wake_.wait_for(lock, std::chrono::milliseconds(1LL << std::min(failures_++, 8)), [this] { return IsEnding(); });
        if (status == TransferStatus::Stalled && !IsEnding()) {
            done_.push_front(&transfer);
            ClearEndpoint(lock);
            LogDevice(CAM_LOG_LEVEL_WARN, "%s has halted its event endpoint: cleared", link_.Identity().serial.c_str());
            return;
        }
    }
    if (!IsEnding())
        Submit(lock, transfer, transfer.Buffer());
}

void EventChannel::Submit(std::unique_lock<std::mutex> &lock, BulkIn &transfer, std::span<std::byte> buffer)
{
    ++pending_;
    lock.unlock();
    transfer.Submit(buffer);
    lock.lock();
    if (!isCameraClosed_)
        return;
    // Whoever closes the camera may have come before it was there to be cancelled.
    lock.unlock();
    transfer.Cancel();
    lock.lock();
}

// A host cannot begin anew on an endpoint that has transfers: all come back first.
void EventChannel::ClearEndpoint(std::unique_lock<std::mutex> &lock)
{
    lock.unlock();
    for (auto transfer = transfers_.rbegin(); transfer != transfers_.rend(); ++transfer)
        if (transfer->in != nullptr)
            transfer->in->Cancel();
    lock.lock();
    wake_.wait(lock, [this] { return pending_ == 0; });
    const std::deque<BulkIn *> returned = std::exchange(done_, {});
    lock.unlock();
    for (BulkIn *transfer : returned)
        if (transfer->Status() == TransferStatus::Completed && !transfer->Received().empty())
            HandlePacket(transfer->Received());
    link_.ClearHalt(Pipe::Event);
    lock.lock();
    for (BulkIn *transfer : returned)
        if (!IsEnding())
            Submit(lock, *transfer, transfer->Buffer());
}

void EventChannel::HandlePacket(std::span<const std::byte> packet)
{
    const auto events = ParseEventPacket(packet);
    if (!events) {
        CountMalformed(packet.size());
        return;
    }
    for (const EventEntry &event : *events) {
        const EventNodes::Known known = nodes_.Deliver(event);
        Deliver(event, known.blockId);
        SetSignal(known.signal);
    }
}

void EventChannel::Deliver(const EventEntry &event, std::uint64_t blockId)
{
    Request *request = nullptr;
    std::uint64_t lost = 0, all = 0;
    {
        std::lock_guard lock(mutex_);
        request = waiting_.PopFront();
        if (request == nullptr) {
            ++lost_;
            return;
        }
        all = lost_;
        lost = all - std::exchange(loggedLost_, all);
    }
    LogLost(lost, all);
    request->info = {};
    request->info.ullValidPayloadSize = WriteEventBlock(event, blockId, {request->memory, request->size});
    book_.Complete(*request);
}

void EventChannel::CountMalformed(std::size_t size)
{
    std::uint64_t count = 0;
    {
        std::lock_guard lock(mutex_);
        count = ++malformed_;
    }
    LogDevice(CAM_LOG_LEVEL_WARN, "malformed event packet of %zu bytes from %s: skipped, %llu in all", size,
              link_.Identity().serial.c_str(), static_cast<unsigned long long>(count));
}

void EventChannel::LogLost(std::uint64_t lost, std::uint64_t all) const
{
    if (lost != 0)
        LogDevice(CAM_LOG_LEVEL_WARN, "%llu events of %s lost because no buffer was free, %llu in all",
                  static_cast<unsigned long long>(lost), link_.Identity().serial.c_str(),
                  static_cast<unsigned long long>(all));
}

} // namespace Orvi::U3v
