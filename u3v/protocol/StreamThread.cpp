// The stream's own thread: posts transfers, takes frames back in their order, and comes into step again.

#include "u3v/protocol/StreamEngine.h"

#include "u3v/core/Log.h"

#include <algorithm>
#include <ctime>

namespace Orvi::U3v {
namespace {

std::uint64_t HostTime()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000 + static_cast<std::uint64_t>(now.tv_nsec);
}

} // namespace

void StreamEngine::OnDone(BulkIn &transfer) noexcept
{
    {
        std::lock_guard lock(mutex_);
        StreamFrame &frame = *frames_[StreamFrame::IndexOf(transfer)];
        bytesInFlight_ -= transfer.Buffer().size();
        if (transfer.Status() == TransferStatus::NoMemory) {
            isRefused_ = true;
            return;
        }
        frame.CountReturned(transfer, HostTime());
        if (!frame.IsReturned() && !frame.IsBroken() && FrameAt(underWay_ - 1).IsFullyPosted())
            return;
        ++waking_;
    }
    // Without the lock, or the thread would wake only to wait for it.
    wake_.notify_one();
    --waking_; // the last: from here on the engine may be gone
}

void StreamEngine::Run()
{
    std::unique_lock lock(mutex_);
    while (!wantsQuit_) {
        if (Work(lock))
            continue;
        if (isRunning_ && Clock::now() < notBefore_)
            wake_.wait_until(lock, notBefore_);
        else
            wake_.wait(lock);
    }
    DrainAll(lock, Drain::Requeue);
    idle_.notify_all();
}

// One piece of work; false when there is none.
bool StreamEngine::Work(std::unique_lock<std::mutex> &lock)
{
    const auto fulfil = [&](bool &wish) {
        wish = false;
        idle_.notify_all();
        return true;
    };
    if (isGone_ && (underWay_ != 0 || !waiting_.IsEmpty() || isRunning_)) {
        DrainAll(lock, Drain::Remove);
        isRunning_ = false;
        return true;
    }
    if (wantsStop_) {
        isRunning_ = false;
        DrainAll(lock, Drain::Requeue);
        return fulfil(wantsStop_);
    }
    if (wantsFlush_) {
        const bool hadTransfers = underWay_ != 0;
        DrainAll(lock, Drain::Flush);
        if (hadTransfers && isRunning_)
            Realign(lock);
        return fulfil(wantsFlush_);
    }
    if (underWay_ != 0 && IsHeadReady()) {
        FinishHead(lock);
        return true;
    }
    if (IsStarved()) {
        Shrink(lock);
        return true;
    }
    if (CanPost()) {
        PostNext(lock);
        return true;
    }
    if (wantsPost_)
        return fulfil(wantsPost_);
    return false;
}

bool StreamEngine::CanPost() const
{
    if (!isRunning_ || isGone_ || Clock::now() < notBefore_)
        return false;
    // Behind a broken frame nothing can be in step.
    if (underWay_ != 0 && FrameAt(underWay_ - 1).IsBroken())
        return false;
    const bool isTailOpen = underWay_ != 0 && !FrameAt(underWay_ - 1).IsFullyPosted();
    if (!isTailOpen && (underWay_ == frames_.size() || waiting_.IsEmpty()))
        return false;
    return bytesInFlight_ == 0 || bytesInFlight_ + layout_.transferSize <= budget_;
}

// Posts transfers of one frame, as many as may be in flight.
void StreamEngine::PostNext(std::unique_lock<std::mutex> &lock)
{
    if (underWay_ == 0 || FrameAt(underWay_ - 1).IsFullyPosted()) {
        Request &request = *waiting_.PopFront();
        request.place = Request::Place::InFlight;
        FrameAt(underWay_++).Begin(request);
    }
    StreamFrame &frame = FrameAt(underWay_ - 1);
    isRefused_ = false;
    while (!frame.IsFullyPosted() && CanPost()) {
        bytesInFlight_ += frame.NextSize();
        const std::size_t transfer = frame.CountPosted();
        lock.unlock();
        frame.Submit(transfer);
        lock.lock();
        if (!isRefused_) {
            refusals_ = 0;
            continue;
        }
        refusals_ = bytesInFlight_ < layout_.MaxSlot() ? refusals_ + 1 : 0;
        frame.UncountPosted();
        notBefore_ = Clock::now() + std::chrono::milliseconds(10);
        const std::size_t fitting = std::max(bytesInFlight_, layout_.leaderSize + layout_.transferSize);
        if (fitting < budget_)
            LogDevice(CAM_LOG_LEVEL_WARN,
                      "stream of %s: no memory for more than %zu bytes of transfers: going on with "
                      "that; usbfs_memory_mb limits it",
                      link_.Identity().serial.c_str(), fitting);
        budget_ = std::min(budget_, fitting);
        return;
    }
}

bool StreamEngine::IsHeadReady() const { return FrameAt(0).IsDone() || FrameAt(0).IsBroken(); }

void StreamEngine::FinishHead(std::unique_lock<std::mutex> &lock)
{
    StreamFrame &frame = FrameAt(0);
    if (!frame.IsDone()) {
        Cancel(lock, frame);
        wake_.wait(lock, [&] { return frame.IsReturned(); });
    }
    // A transfer can end because the camera is gone before the news of it is here.
    if (isGone_ || frame.IsRemoved()) {
        isGone_ = true;
        return;
    }
    Request &request = frame.Carried();
    const StreamFrame::Result result = frame.Evaluate();
    head_ = (head_ + 1) % frames_.size();
    --underWay_;
    if (result.blockId)
        CountLost(request, *result.blockId);
    const auto blockId = static_cast<unsigned long long>(request.info.ullBlockId);
    Deliver(lock, request);
    if (result.isAligned) {
        realigned_ = 0;
        return;
    }
    LogDevice(CAM_LOG_LEVEL_WARN, "stream of %s out of step at block %llu: aligning anew",
              link_.Identity().serial.c_str(), blockId);
    DrainAll(lock, Drain::Requeue);
    if (isRunning_)
        Realign(lock);
}

void StreamEngine::CountLost(Request &request, std::uint64_t blockId)
{
    if (lastBlockId_ && blockId > *lastBlockId_ + 1) {
        const std::uint64_t lost = blockId - *lastBlockId_ - 1;
        lostCount_ += lost;
        request.info.uiLostBlocks = static_cast<std::uint32_t>(std::min<std::uint64_t>(lost, UINT32_MAX));
    }
    // An id that goes back is a wrong one, and stands for the block that was to come; unless the one before it went
    // back too: then the camera counts anew.
    const bool isBack = lastBlockId_ && blockId <= *lastBlockId_;
    const bool isNewCount = isBack && blockId == toldBlockId_ + 1;
    lastBlockId_ = isBack && !isNewCount ? *lastBlockId_ + 1 : blockId;
    toldBlockId_ = blockId;
}

// What the camera still has for transfers that are gone must not run into the next ones.
void StreamEngine::Realign(std::unique_lock<std::mutex> &lock)
{
    lock.unlock();
    ClearEndpoint();
    lock.lock();
    // A camera that is out of step again and again gets ever longer pauses instead of all of the processor.
    if (realigned_++ > 0)
        notBefore_ = Clock::now() + std::chrono::milliseconds(1LL << std::min(realigned_, 8));
}

// The last first, so that what the camera sends meanwhile does not run into transfers meant for other data.
void StreamEngine::Cancel(std::unique_lock<std::mutex> &lock, StreamFrame &frame)
{
    for (std::size_t i = frame.Posted(); i-- > 0 && !frame.IsReturned();) {
        lock.unlock();
        frame.Cancel(i);
        lock.lock();
    }
}

// Takes all transfers back and empties the frames; complete ones are delivered.
void StreamEngine::DrainAll(std::unique_lock<std::mutex> &lock, Drain how)
{
    for (std::size_t i = underWay_; i-- > 0;)
        Cancel(lock, FrameAt(i));
    wake_.wait(lock, [&] { return bytesInFlight_ == 0; });

    RequestList unfilled;
    while (underWay_ != 0) {
        StreamFrame &frame = FrameAt(0);
        Request &request = frame.Carried();
        head_ = (head_ + 1) % frames_.size();
        --underWay_;
        if (!frame.IsDone() || frame.IsBroken()) {
            unfilled.PushBack(request);
            continue;
        }
        if (const StreamFrame::Result result = frame.Evaluate(); result.blockId)
            CountLost(request, *result.blockId);
        Deliver(lock, request);
    }
    while (Request *request = waiting_.PopFront())
        unfilled.PushBack(*request);
    if (how == Drain::Requeue) {
        while (Request *request = unfilled.PopFront()) {
            request->place = Request::Place::Waiting;
            waiting_.PushBack(*request);
        }
        return;
    }
    const CAM_API_STATUS status =
        how == Drain::Flush ? CAM_API_STS_FLUSH_REQUESTED : CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE;
    while (Request *request = unfilled.PopFront()) {
        request->info = {};
        request->info.uiStatus = status;
        Deliver(lock, *request);
    }
}

void StreamEngine::Deliver(std::unique_lock<std::mutex> &lock, Request &request)
{
    lock.unlock();
    sink_.OnRequest(request);
    lock.lock();
}

} // namespace Orvi::U3v
