// What a stream agrees upon with the camera: when it starts, and when memory has run short.

#include "u3v/protocol/StreamEngine.h"

#include "u3v/core/Log.h"
#include "u3v/protocol/Acquisition.h"
#include "u3v/protocol/TransferProbe.h"

#include <algorithm>

namespace Orvi::U3v {
namespace {

constexpr std::size_t maxFrames = 16, minFrames = 2;
constexpr std::size_t safeTransferSize = 512 * 1024;
constexpr int patience = 5; // refusals in a row

} // namespace

// Large transfers need memory in one piece, which a system that has run for a while may not have.
StreamLayout StreamEngine::Negotiate(std::size_t maxTransferSize)
{
    for (std::size_t size = maxTransferSize;; size /= 2) {
        const StreamLayout layout =
            NegotiateLayout(camera_->Control(), camera_->Map().sirm, link_.MaxPacketSize(Pipe::Stream), size);
        if (layout.MaxSlot() <= safeTransferSize || HasMemoryFor(link_, Pipe::Stream, layout.MaxSlot()))
            return layout;
        LogDevice(CAM_LOG_LEVEL_WARN, "stream of %s: no memory for transfers of %zu bytes: trying half of it",
                  link_.Identity().serial.c_str(), layout.MaxSlot());
    }
}

void StreamEngine::PrepareFrames(const StreamLayout &layout)
{
    const std::size_t fitting = budget_ / std::max<std::size_t>(layout.BytesInFlight(), 1);
    const std::size_t count = std::clamp(fitting, minFrames, maxFrames);
    if (layout == layout_ && count == frames_.size())
        return;
    layout_ = {};
    frames_.clear();
    BulkIn::Listener &listener = *this;
    spill_ = std::make_unique_for_overwrite<std::byte[]>(layout.MaxSlot());
    for (std::size_t i = 0; i < count; ++i)
        frames_.push_back(
            std::make_unique<StreamFrame>(link_, listener, layout, i, std::span(spill_.get(), layout.MaxSlot())));
    layout_ = layout;
    head_ = 0;
}

/// The memory may come back, and comes back with each transfer that ends: only when none is left is there no hope.
bool StreamEngine::IsStarved() const
{
    return isRunning_ && !wantsPost_ && refusals_ >= patience && layout_.MaxSlot() > safeTransferSize;
}

// The camera takes no other sizes while it streams: the stream begins anew.
void StreamEngine::Shrink(std::unique_lock<std::mutex> &lock)
{
    refusals_ = 0;
    DrainAll(lock, Drain::Requeue);
    if (!isRunning_) // a callback has stopped it
        return;
    const std::unique_lock operation(operation_, std::try_to_lock);
    if (!operation.owns_lock()) { // whoever starts or stops it now comes first
        Realign(lock);
        return;
    }
    LogDevice(CAM_LOG_LEVEL_WARN,
              "stream of %s: no memory for transfers of %zu bytes any more: started anew with half of it",
              link_.Identity().serial.c_str(), layout_.MaxSlot());
    const std::size_t half = layout_.MaxSlot() / 2;
    lock.unlock();
    try {
        StopAcquisition(*camera_);
        StopCamera();
        const StreamLayout layout = Negotiate(half);
        ClearEndpoint();
        const std::size_t budget = link_.MaxBytesInFlight();
        lock.lock();
        budget_ = budget;
        PrepareFrames(layout);
        lastBlockId_.reset();
        while (CanPost() && refusals_ == 0)
            PostNext(lock);
        lock.unlock();
        WriteRegister(camera_->Control(), camera_->Map().sirm, Sirm::control, 1U);
        StartAcquisition(*camera_, acquisitionMode_);
    } catch (const std::exception &error) {
        LogDevice(CAM_LOG_LEVEL_ERROR, "stream of %s cannot be started anew: %s", link_.Identity().serial.c_str(),
                  error.what());
    }
    if (!lock.owns_lock())
        lock.lock();
}

void StreamEngine::StopCamera()
{
    GenCp &control = camera_->Control();
    const std::uint64_t sirm = camera_->Map().sirm;
    if (ReadRegister(control, sirm, Sirm::control) != 0) {
        WriteRegister(control, sirm, Sirm::control, 0U);
        camera_->ForgetCached();
    }
}

void StreamEngine::ClearEndpoint()
{
    link_.SetHalt(Pipe::Stream);
    link_.ClearHalt(Pipe::Stream);
}

} // namespace Orvi::U3v
