#pragma once
// Asynchronous events of a camera: packets of the event interface, taken apart into events, each delivered into a
// request of the application or a buffer of the channel's own.

#include "u3v/protocol/Camera.h"
#include "u3v/protocol/EventNodes.h"
#include "u3v/protocol/EventPacket.h"
#include "u3v/protocol/RequestBook.h"

#include <deque>
#include <thread>
#include <vector>

namespace Orvi::U3v {

class EventChannel final : private BulkIn::Listener, private Camera::Channel {
  public:
    using Book = RequestBook<HandleKind::EventRequest>;

    /// With ownBuffers > 0 the channel keeps so many buffers itself, else the application registers requests. Throws
    /// StatusError: 0x4 when the camera has an event channel already, 0x11 when it sends no events.
    EventChannel(std::shared_ptr<Camera> camera, void *signal, std::size_t transferSize, std::uint32_t ownBuffers);
    ~EventChannel() { Close(); }

    /// Switches the events off and ends the thread.
    void Close();

    /// `signal` is set when that event arrives. Throw StatusError: 0x5 when it is on, 0x3 when it is not.
    void Activate(const std::string &name, const std::string &nodeName, void *signal);
    void Deactivate(const std::string &name);

    std::uint64_t Register(void *memory, std::size_t size);
    void Deregister(std::uint64_t handle);
    void Queue(std::uint64_t handle);
    /// Completes all queued requests with 0x100B. Own buffers: drops the events that wait.
    void Flush();

    struct Taken {
        CAM_API_STATUS status = CAM_API_STS_EMPTY_COMPLETE_QUEUE; ///< else that with which the request ended
        const unsigned char *data = nullptr;                      ///< set when the status is 0
        std::uint64_t request = 0;                                ///< 0 for own buffers
    };
    /// The oldest complete request; the data of an own buffer is valid until the next call. An empty queue is asked
    /// once too often for every event: nothing is thrown or allocated for it.
    Taken Take();

    // Both are logged too: malformed packets as they come, lost events with the next one that finds a buffer.
    std::uint64_t LostCount() const;      ///< events for which no buffer was free
    std::uint64_t MalformedCount() const; ///< packets that could not be understood

  private:
    struct Transfer {
        std::vector<std::byte> buffer;
        std::unique_ptr<BulkIn> in;
    };

    void OnDone(BulkIn &transfer) noexcept override;
    void OnGone() noexcept override;
    void OnCameraClose() override;
    void Abort() override { Flush(); }
    void Reset() override;

    void Run();
    void HandleTransfer(std::unique_lock<std::mutex> &lock, BulkIn &transfer);
    bool IsEnding() const { return isClosing_ || isGone_ || isCameraClosed_; }
    void Submit(std::unique_lock<std::mutex> &lock, BulkIn &transfer, std::span<std::byte> buffer);
    void ClearEndpoint(std::unique_lock<std::mutex> &lock);
    void HandlePacket(std::span<const std::byte> packet);
    void Deliver(const EventEntry &event, std::uint64_t blockId);
    void CountMalformed(std::size_t size);
    void LogLost(std::uint64_t lost, std::uint64_t all) const;
    void CompleteWaiting(CAM_API_STATUS status);
    void SwitchOff() noexcept;
    bool HasOwnBuffers() const { return !own_.empty(); }

    const std::shared_ptr<Camera> camera_;
    UsbLink &link_;
    Book book_;
    EventNodes nodes_;
    std::vector<Transfer> transfers_;
    std::deque<Request> own_;
    std::vector<std::vector<std::byte>> ownMemory_;
    Request *lent_ = nullptr; // own buffer that the application looks at

    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<BulkIn *> done_;
    RequestList waiting_;
    std::size_t pending_ = 0;
    bool isGone_ = false, isCameraClosed_ = false, isClosing_ = false, isClosed_ = false;
    bool wantsReset_ = false;
    int failures_ = 0; // in a row
    std::uint64_t lost_ = 0, malformed_ = 0;
    std::uint64_t loggedLost_ = 0;

    std::thread thread_;
};

using EventTable = HandleTable<EventChannel, HandleKind::Event, CAM_API_STS_INVALID_EVENT_HANDLE>;
EventTable &EventChannels();

} // namespace Orvi::U3v
