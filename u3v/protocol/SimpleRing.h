#pragma once
// Simple mode: the transport's own buffers. The application sees a row of API buffers; behind them further buffers are
// under transfer. A new image takes the place of the oldest API buffer that is not locked, without being copied.

#include "u3v/protocol/Stream.h"

#include <deque>
#include <mutex>

namespace Orvi::U3v {

class SimpleRing : public Stream, private StreamEngine::Sink {
  public:
    struct Sizes {
        std::size_t payload;
        std::size_t maxTransfer;
        std::uint32_t apiBuffers;
        std::uint32_t internalBuffers;
    };
    struct Callback {
        CAM_STREAM_CALLBACK function = nullptr;
        void *context = nullptr;
    };
    enum class On { Acquired, Error, Lost };

    SimpleRing(std::shared_ptr<Camera> camera, void *signal, const Sizes &sizes);
    ~SimpleRing() override { Close(); }

    StreamEngine &Engine() override { return engine_; }
    SimpleRing &Ring() override { return *this; }
    void Start(std::uint32_t acquisitionMode) override;
    /// Gaps in the block ids and images for which no API buffer was free.
    std::uint64_t LostCount() override;

    /// The stream's handle, for the callbacks.
    void SetHandle(std::uint64_t handle);
    void SetCallback(On what, const Callback &callback);

    /// Copies the newest image. Throw StatusError: 0x14 when there is none yet, 0xE with the size needed in `size`.
    void CopyCurrent(void *buffer, std::uint32_t &size, CAM_STREAM_REQUEST_INFO *info);
    std::uint32_t CurrentIndex() const;
    /// A buffer may be locked several times. Throw StatusError(0xD) for a number out of range or one not locked.
    void *Lock(std::uint32_t index);
    void Unlock(std::uint32_t index);

  private:
    struct Slot {
        Request *image;
        int locks = 0;
    };

    void OnRequest(Request &request) noexcept override;
    void OnImage(Request &image);
    void OnFailure(Request &request);
    Slot *FindFreeSlot();
    Slot &SlotAt(std::uint32_t index);
    void Requeue(Request &request) noexcept;
    void Call(On what, const void *data, const CAM_STREAM_REQUEST_INFO &info);

    void *const signal_;
    std::deque<std::unique_ptr<std::byte[]>> memory_;
    std::deque<Request> requests_;

    mutable std::mutex mutex_;
    std::vector<Slot> slots_;
    std::optional<std::uint32_t> current_;
    std::array<Callback, 3> callbacks_{};
    std::uint64_t handle_ = 0;
    std::uint64_t lostInRing_ = 0;
    std::uint32_t lostSinceLast_ = 0;
    bool isRemovalTold_ = false;

    StreamEngine engine_; // the last: it calls OnRequest() until it is gone
};

} // namespace Orvi::U3v
