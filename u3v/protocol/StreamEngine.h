#pragma once
// Moves images from the camera into requests: keeps several frames of transfers posted, in the order of the requests,
// and hands each request back on a thread of its own. Both stream modes stand on it.
//
// Locks: `operation_` makes start, stop and close one at a time; `mutex_` guards the queues and is never held while the
// link or the sink is called.

#include "u3v/protocol/Camera.h"
#include "u3v/protocol/StreamFrame.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace Orvi::U3v {

class StreamEngine final : private BulkIn::Listener, private Camera::Channel {
  public:
    class Sink {
      public:
        /// A request has completed as its information says, and is the sink's. On the stream's thread, no lock held;
        /// may call the engine, except Close().
        virtual void OnRequest(Request &request) noexcept = 0;

      protected:
        ~Sink() = default;
    };

    /// Throws StatusError: 0x4 when the camera streams to another engine, 0x11 when it has no stream interface.
    StreamEngine(std::shared_ptr<Camera> camera, std::size_t maxTransferSize, Sink &sink);
    ~StreamEngine();

    /// Posts what is queued, enables the camera's stream and starts its acquisition. Nothing when it runs already.
    void Start(std::uint32_t acquisitionMode);
    /// Requests that were not filled stay queued, in their order. Stops also when the camera cannot be told.
    void Stop();
    /// Completes all queued requests with 0x100B.
    void Flush();
    /// Stops and ends the thread: no request completes any more. Throws StatusError(0x805) on the stream's own thread.
    void Close();

    /// Queues a request that is its owner's. Throws StatusError: 0x13 when the camera is gone, 0x7 when it is closed.
    void Queue(Request &request);

    /// Images lost since the start: gaps in the block ids.
    std::uint64_t LostCount() const { return lostCount_; }
    bool IsOwnThread() const { return std::this_thread::get_id() == thread_.get_id(); }

  private:
    enum class Drain { Requeue, Flush, Remove };

    void OnDone(BulkIn &transfer) noexcept override;
    void OnGone() noexcept override;
    void OnCameraClose() override;
    void Abort() override { Flush(); }
    void Reset() override;

    void Run();
    bool Work(std::unique_lock<std::mutex> &lock);
    bool CanPost() const;
    void PostNext(std::unique_lock<std::mutex> &lock);
    bool IsHeadReady() const;
    void FinishHead(std::unique_lock<std::mutex> &lock);
    void Cancel(std::unique_lock<std::mutex> &lock, StreamFrame &frame);
    void DrainAll(std::unique_lock<std::mutex> &lock, Drain how);
    void Realign(std::unique_lock<std::mutex> &lock);
    void Deliver(std::unique_lock<std::mutex> &lock, Request &request);
    void CountLost(Request &request, std::uint64_t blockId);

    std::unique_lock<std::mutex> LockOperation();
    /// Has the stream's thread do something and waits for it; on that thread itself, does it.
    void AskThread(std::unique_lock<std::mutex> &lock, bool &wish);
    StreamLayout Negotiate(std::size_t maxTransferSize);
    bool IsStarved() const;
    void Shrink(std::unique_lock<std::mutex> &lock);
    void PrepareFrames(const StreamLayout &layout);
    void StopCamera();
    void ClearEndpoint();
    StreamFrame &FrameAt(std::size_t i) { return *frames_[(head_ + i) % frames_.size()]; }
    const StreamFrame &FrameAt(std::size_t i) const { return *frames_[(head_ + i) % frames_.size()]; }

    const std::shared_ptr<Camera> camera_;
    UsbLink &link_;
    const std::size_t maxTransferSize_;
    Sink &sink_;

    std::mutex operation_;
    bool isClosed_ = false; // under operation_

    std::mutex mutex_;
    std::condition_variable wake_; // for the thread
    std::atomic<int> waking_ = 0;  // threads that notify wake_ without the lock
    std::condition_variable idle_; // for those who wait for the thread
    RequestList waiting_;
    std::vector<std::unique_ptr<StreamFrame>> frames_;
    std::unique_ptr<std::byte[]> spill_;
    StreamLayout layout_;
    std::size_t head_ = 0;     // the oldest frame under way
    std::size_t underWay_ = 0; // number of frames under way
    std::size_t bytesInFlight_ = 0;
    std::size_t budget_;
    bool isRunning_ = false;
    bool isGone_ = false;
    bool isCameraClosed_ = false;
    bool wantsPost_ = false, wantsStop_ = false, wantsFlush_ = false, wantsQuit_ = false;
    int realigned_ = 0; // times in a row
    int refusals_ = 0;  // of memory for a transfer, in a row and with no other to wait for
    Deadline notBefore_{};
    std::uint32_t acquisitionMode_ = 0;
    std::optional<std::uint64_t> lastBlockId_;
    std::uint64_t toldBlockId_ = 0; // of the last frame, wrong or not
    std::atomic<std::uint64_t> lostCount_ = 0;
    std::atomic<bool> isRefused_ = false; // the link had no memory for a transfer

    std::thread thread_;
};

} // namespace Orvi::U3v
