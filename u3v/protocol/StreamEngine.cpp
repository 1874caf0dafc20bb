// What applications ask of a stream; the work is done in StreamThread.cpp and StreamSetup.cpp.

#include "u3v/protocol/StreamEngine.h"

#include "u3v/core/Log.h"
#include "u3v/protocol/Acquisition.h"

namespace Orvi::U3v {

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
    const StreamLayout layout = Negotiate(maxTransferSize_);
    ClearEndpoint();
    const std::size_t budget = link_.MaxBytesInFlight();

    std::unique_lock lock(mutex_);
    budget_ = budget;
    PrepareFrames(layout);
    lastBlockId_.reset();
    lostCount_ = 0;
    realigned_ = 0;
    refusals_ = 0;
    acquisitionMode_ = acquisitionMode;
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
    while (waking_ != 0)
        std::this_thread::yield();
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
