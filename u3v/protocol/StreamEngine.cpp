// What applications ask of a stream; the work is done in StreamThread.cpp.

#include "u3v/protocol/StreamEngine.h"

#include "u3v/core/Log.h"
#include "u3v/protocol/Acquisition.h"
#include "u3v/protocol/TransferProbe.h"

#include <algorithm>

namespace Orvi::U3v {
namespace {

constexpr std::size_t maxFrames = 16, minFrames = 2;
constexpr std::size_t safeTransferSize = 512 * 1024;

} // namespace

StreamEngine::StreamEngine(std::shared_ptr<Camera> camera, std::size_t maxTransferSize, Sink &sink)
    : camera_(std::move(camera)),
      link_(camera_->Link()),
      maxTransferSize_(maxTransferSize),
      sink_(sink),
      budget_(link_.MaxBytesInFlight())
{
    if (camera_->Map().sirm == 0 || !link_.HasPipe(Pipe::Stream))
        throw StatusError(CAM_API_STS_NOT_IMPLEMENTED, "the camera has no stream interface");
    camera_->Attach(Pipe::Stream, *this);
    try {
        ClearEndpoint();
        StopCamera();
        thread_ = std::thread([this] { Run(); });
    } catch (...) {
        camera_->Detach(Pipe::Stream, *this);
        throw;
    }
}

StreamEngine::~StreamEngine() { Close(); }

void StreamEngine::Start(std::uint32_t acquisitionMode)
{
    const auto operation = LockOperation();
    GenCp &control = camera_->Control();
    const std::uint64_t sirm = camera_->Map().sirm;
    {
        std::lock_guard lock(mutex_);
        if (isGone_)
            throw StatusError(CAM_API_STS_CAMERA_NOT_RESPONDING, "the camera was unplugged");
        if (isRunning_)
            return;
    }
    WriteRegister(control, sirm, Sirm::control, 0U);
    const StreamLayout layout = Negotiate(control);
    ClearEndpoint();
    const std::size_t budget = link_.MaxBytesInFlight();

    std::unique_lock lock(mutex_);
    budget_ = budget;
    PrepareFrames(layout);
    lastBlockId_.reset();
    lostCount_ = 0;
    realigned_ = 0;
    notBefore_ = {};
    isRunning_ = true;
    // A camera that finds no transfer when it begins to send throws its first images away.
    AskThread(lock, wantsPost_);
    lock.unlock();
    try {
        WriteRegister(control, sirm, Sirm::control, 1U);
        StartAcquisition(*camera_, acquisitionMode);
    } catch (...) {
        try {
            StopCamera();
        } catch (const StatusError &) {
            // The first failure is the one to report.
        }
        lock.lock();
        AskThread(lock, wantsStop_);
        throw;
    }
}

void StreamEngine::Stop()
{
    const auto operation = LockOperation();
    std::unique_lock lock(mutex_);
    if (!isRunning_) {
        if (isGone_)
            throw StatusError(CAM_API_STS_CAMERA_NOT_RESPONDING, "the camera was unplugged");
        return;
    }
    lock.unlock();
    std::exception_ptr failure;
    try {
        StopAcquisition(*camera_);
    } catch (const std::exception &) {
        failure = std::current_exception();
    }
    try {
        StopCamera();
    } catch (const StatusError &) {
        failure = std::current_exception();
    }
    lock.lock();
    AskThread(lock, wantsStop_);
    if (failure != nullptr)
        std::rethrow_exception(failure);
}

void StreamEngine::Flush()
{
    std::unique_lock lock(mutex_);
    if (!wantsQuit_)
        AskThread(lock, wantsFlush_);
}

void StreamEngine::Close()
{
    if (IsOwnThread())
        throw StatusError(CAM_API_STS_BUSY, "a stream cannot be closed by its own callback");
    try {
        Stop();
    } catch (const std::exception &error) {
        LogDevice(CAM_LOG_LEVEL_WARN, "stream of %s stopped without the camera: %s", link_.Identity().serial.c_str(),
                  error.what());
    }
    const auto operation = LockOperation();
    if (isClosed_)
        return;
    isClosed_ = true;
    try {
        StopCamera();
    } catch (const StatusError &) {
        // The camera is gone or silent; there is nothing left to stop.
    }
    {
        std::lock_guard lock(mutex_);
        wantsQuit_ = true;
        wake_.notify_all();
    }
    thread_.join();
    camera_->Detach(Pipe::Stream, *this);
}

void StreamEngine::Queue(Request &request)
{
    std::lock_guard lock(mutex_);
    if (isCameraClosed_)
        throw StatusError(CAM_API_STS_INVALID_CAMERA_HANDLE, "the camera is closed");
    if (isGone_)
        throw StatusError(CAM_API_STS_CAMERA_NOT_RESPONDING, "the camera was unplugged");
    request.place = Request::Place::Waiting;
    waiting_.PushBack(request);
    if (isRunning_)
        wake_.notify_one();
}

// A wait here would be for ever when the callback of the thread that stops is the one that waits.
std::unique_lock<std::mutex> StreamEngine::LockOperation()
{
    if (!IsOwnThread())
        return std::unique_lock(operation_);
    std::unique_lock lock(operation_, std::try_to_lock);
    if (!lock.owns_lock())
        throw StatusError(CAM_API_STS_BUSY, "the stream is being started or stopped by another thread");
    return lock;
}

void StreamEngine::AskThread(std::unique_lock<std::mutex> &lock, bool &wish)
{
    wish = true;
    if (IsOwnThread()) {
        while (wish)
            Work(lock);
        return;
    }
    wake_.notify_one();
    idle_.wait(lock, [&] { return !wish || wantsQuit_; });
}

// Large transfers need memory in one piece, which a system that has run for a while may not have.
StreamLayout StreamEngine::Negotiate(GenCp &control)
{
    for (std::size_t size = maxTransferSize_;; size /= 2) {
        const StreamLayout layout =
            NegotiateLayout(control, camera_->Map().sirm, link_.MaxPacketSize(Pipe::Stream), size);
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

void StreamEngine::OnGone() noexcept
{
    std::lock_guard lock(mutex_);
    isGone_ = true;
    wake_.notify_all();
}

void StreamEngine::OnCameraClose()
{
    try {
        Stop();
    } catch (const std::exception &) {
        // Closing goes on: what is queued is flushed in any case.
    }
    {
        std::lock_guard lock(mutex_);
        isCameraClosed_ = true;
    }
    Flush();
}

void StreamEngine::Reset()
{
    try {
        Stop();
    } catch (const std::exception &) {
        // The endpoint is cleared in any case.
    }
    ClearEndpoint();
}

} // namespace Orvi::U3v
