#include "u3v/protocol/SimpleRing.h"

#include "u3v/core/Log.h"
#include "u3v/core/Signal.h"

#include <cstring>

namespace Orvi::U3v {
namespace {

constexpr std::uint32_t maxBuffers = 1024;

} // namespace

SimpleRing::SimpleRing(std::shared_ptr<Camera> camera, void *signal, const Sizes &sizes)
    : signal_(signal), engine_(std::move(camera), sizes.maxTransfer, *this)
{
    if (sizes.apiBuffers == 0 || sizes.apiBuffers > maxBuffers || sizes.internalBuffers == 0 ||
        sizes.internalBuffers > maxBuffers || sizes.payload == 0)
        throw StatusError(CAM_API_STS_INVALID_PARAMETER, "a number of buffers or a payload size out of range");
    for (std::uint32_t i = 0; i < sizes.apiBuffers + sizes.internalBuffers; ++i) {
        memory_.push_back(std::make_unique_for_overwrite<std::byte[]>(sizes.payload));
        Request &request = requests_.emplace_back();
        request.memory = memory_.back().get();
        request.size = sizes.payload;
        if (i < sizes.apiBuffers)
            slots_.push_back({&request});
        else
            engine_.Queue(request);
    }
}

void SimpleRing::Start(std::uint32_t acquisitionMode)
{
    {
        std::lock_guard lock(mutex_);
        lostInRing_ = 0;
        lostSinceLast_ = 0;
    }
    engine_.Start(acquisitionMode);
}

std::uint64_t SimpleRing::LostCount()
{
    std::lock_guard lock(mutex_);
    return engine_.LostCount() + lostInRing_;
}

void SimpleRing::SetHandle(std::uint64_t handle)
{
    std::lock_guard lock(mutex_);
    handle_ = handle;
}

void SimpleRing::SetCallback(On what, const Callback &callback)
{
    std::lock_guard lock(mutex_);
    callbacks_[static_cast<std::size_t>(what)] = callback;
}

void SimpleRing::CopyCurrent(void *buffer, std::uint32_t &size, CAM_STREAM_REQUEST_INFO *info)
{
    std::unique_lock lock(mutex_);
    if (!current_)
        throw StatusError(CAM_API_STS_EMPTY_COMPLETE_QUEUE, "no image has arrived yet");
    Slot &slot = slots_[*current_];
    const Request &image = *slot.image;
    ++slot.locks; // the image stays in its place without the mutex
    lock.unlock();
    const std::uint32_t capacity = size;
    size = static_cast<std::uint32_t>(image.info.ullValidPayloadSize);
    if (info != nullptr)
        *info = image.info;
    const bool fits = buffer != nullptr && capacity >= size;
    if (fits)
        std::memcpy(buffer, image.memory, size);
    lock.lock();
    --slot.locks;
    if (buffer != nullptr && !fits)
        throw StatusError(CAM_API_STS_BUFFER_TOO_SMALL, "the image is larger than the buffer");
}

std::uint32_t SimpleRing::CurrentIndex() const
{
    std::lock_guard lock(mutex_);
    if (!current_)
        throw StatusError(CAM_API_STS_EMPTY_COMPLETE_QUEUE, "no image has arrived yet");
    return *current_;
}

void *SimpleRing::Lock(std::uint32_t index)
{
    std::lock_guard lock(mutex_);
    Slot &slot = SlotAt(index);
    ++slot.locks;
    return slot.image->memory;
}

void SimpleRing::Unlock(std::uint32_t index)
{
    std::lock_guard lock(mutex_);
    Slot &slot = SlotAt(index);
    if (slot.locks == 0)
        throw StatusError(CAM_API_STS_INVALID_PARAMETER, "the buffer is not locked");
    --slot.locks;
}

SimpleRing::Slot &SimpleRing::SlotAt(std::uint32_t index)
{
    if (index >= slots_.size())
        throw StatusError(CAM_API_STS_INVALID_PARAMETER, "no such buffer");
    return slots_[index];
}

// The one after the current image that is not locked.
SimpleRing::Slot *SimpleRing::FindFreeSlot()
{
    const std::size_t first = current_ ? *current_ + 1U : 0U;
    for (std::size_t i = 0; i < slots_.size(); ++i)
        if (Slot &slot = slots_[(first + i) % slots_.size()]; slot.locks == 0)
            return &slot;
    return nullptr;
}

void SimpleRing::OnRequest(Request &request) noexcept
{
    if (request.info.uiStatus == CAM_API_STS_SUCCESS)
        OnImage(request);
    else
        OnFailure(request);
}

void SimpleRing::OnImage(Request &image)
{
    // While the application was busy the camera found no buffer posted.
    if (image.info.uiLostBlocks != 0)
        Call(On::Lost, nullptr, image.info);

    std::unique_lock lock(mutex_);
    Slot *slot = FindFreeSlot();
    if (slot == nullptr) {
        ++lostInRing_;
        lostSinceLast_ += image.info.uiLostBlocks + 1;
        CAM_STREAM_REQUEST_INFO info = image.info;
        info.uiLostBlocks = 1;
        lock.unlock();
        Requeue(image);
        Call(On::Lost, nullptr, info);
        return;
    }
    image.info.uiLostBlocks += lostSinceLast_;
    lostSinceLast_ = 0;
    Request &old = *slot->image;
    slot->image = &image;
    current_ = static_cast<std::uint32_t>(slot - slots_.data());
    lock.unlock();
    Requeue(old);
    SetSignal(signal_);
    // No other thread replaces the image before this one comes back for the next.
    Call(On::Acquired, image.memory, image.info);
}

void SimpleRing::OnFailure(Request &request)
{
    const CAM_STREAM_REQUEST_INFO info = request.info;
    if (info.uiStatus == CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE) {
        // Every buffer comes back so; the application is told once.
        if (!std::exchange(isRemovalTold_, true))
            Call(On::Error, nullptr, info);
    } else if (info.uiStatus != CAM_API_STS_FLUSH_REQUESTED) {
        {
            std::lock_guard lock(mutex_);
            lostSinceLast_ += info.uiLostBlocks;
        }
        Call(On::Error, request.memory, info);
    }
    Requeue(request);
    SetSignal(signal_);
}

void SimpleRing::Requeue(Request &request) noexcept
{
    try {
        engine_.Queue(request);
    } catch (const StatusError &error) {
        // The camera is gone or closed: the buffer rests until the stream is closed.
        LogDevice(CAM_LOG_LEVEL_DEBUG, "buffer not queued again: %s", error.what());
    }
}

void SimpleRing::Call(On what, const void *data, const CAM_STREAM_REQUEST_INFO &info)
{
    Callback callback;
    std::uint64_t handle = 0;
    {
        std::lock_guard lock(mutex_);
        callback = callbacks_[static_cast<std::size_t>(what)];
        handle = handle_;
    }
    const auto size = data == nullptr ? 0U : static_cast<std::uint32_t>(info.ullValidPayloadSize);
    if (callback.function != nullptr)
        callback.function(handle, data, size, &info, callback.context);
}

} // namespace Orvi::U3v
