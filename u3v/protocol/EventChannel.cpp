// What applications ask of an event channel; the work is done in EventThread.cpp.

#include "u3v/protocol/EventChannel.h"

#include "u3v/protocol/Wire.h"

#include <algorithm>

namespace Orvi::U3v {
namespace {

constexpr std::size_t transferCount = 8;
constexpr std::uint32_t maxOwnBuffers = 65536;

} // namespace

EventChannel::EventChannel(std::shared_ptr<Camera> camera, void *signal, std::size_t transferSize,
                           std::uint32_t ownBuffers)
    : camera_(std::move(camera)), link_(camera_->Link()), book_(signal), nodes_(*camera_), transfers_(transferCount)
{
    const std::uint64_t eirm = camera_->Map().eirm;
    if (eirm == 0 || !link_.HasPipe(Pipe::Event))
        throw StatusError(CAM_API_STS_NOT_IMPLEMENTED, "the camera has no event interface");
    if (ownBuffers > maxOwnBuffers)
        throw StatusError(CAM_API_STS_INVALID_PARAMETER, "too many event buffers");
    GenCp &control = camera_->Control();
    transferSize = std::max<std::size_t>(transferSize, ReadRegister(control, eirm, Eirm::maxTransferSize));
    transferSize = RoundUp(transferSize, link_.MaxPacketSize(Pipe::Event));

    // One more than asked for: the application looks at one while the others wait.
    for (std::uint32_t i = 0; ownBuffers != 0 && i < ownBuffers + 1; ++i) {
        Request &request = own_.emplace_back();
        ownMemory_.emplace_back(eventBlockHeader + transferSize);
        request.memory = ownMemory_.back().data();
        request.size = ownMemory_.back().size();
        request.place = Request::Place::Waiting;
        waiting_.PushBack(request);
    }
    camera_->Attach(Pipe::Event, *this);
    try {
        WriteRegister(control, eirm, Eirm::control, 0U);
        if ((camera_->Map().abrmCapability & Abrm::canSendMultiEvent) != 0)
            WriteRegister(control, 0, Abrm::configuration,
                          ReadRegister(control, 0, Abrm::configuration) | Abrm::enableMultiEvent);
        link_.SetHalt(Pipe::Event);
        link_.ClearHalt(Pipe::Event);
        thread_ = std::thread([this] { Run(); });
        // Events that find no transfer are lost, so these come before the interface is enabled.
        for (Transfer &transfer : transfers_) {
            transfer.buffer.resize(transferSize);
            transfer.in = link_.NewTransfer(Pipe::Event, *this);
            std::unique_lock lock(mutex_);
            Submit(lock, *transfer.in, transfer.buffer);
        }
        WriteRegister(control, eirm, Eirm::control, 1U);
    } catch (...) {
        Close();
        throw;
    }
}

void EventChannel::Close()
{
    {
        std::lock_guard lock(mutex_);
        if (isClosed_)
            return;
        isClosed_ = true;
    }
    SwitchOff();
    {
        std::lock_guard lock(mutex_);
        isClosing_ = true;
        wake_.notify_all();
    }
    if (thread_.joinable())
        thread_.join();
    for (Transfer &transfer : transfers_)
        if (transfer.in != nullptr)
            transfer.in->Cancel();
    {
        std::unique_lock lock(mutex_);
        wake_.wait(lock, [this] { return pending_ == 0; });
    }
    camera_->Detach(Pipe::Event, *this);
    book_.Clear();
    LogLost(lost_ - loggedLost_, lost_); // the last burst: no event came after it
}

void EventChannel::SwitchOff() noexcept
{
    nodes_.DeactivateAll();
    try {
        WriteRegister(camera_->Control(), camera_->Map().eirm, Eirm::control, 0U);
    } catch (const StatusError &) {
        // The camera is gone, silent or closed: it sends no more events.
    }
}

void EventChannel::Activate(const std::string &name, const std::string &nodeName, void *signal)
{
    nodes_.Activate(name, nodeName, signal);
}

void EventChannel::Deactivate(const std::string &name) { nodes_.Deactivate(name); }

std::uint64_t EventChannel::Register(void *memory, std::size_t size)
{
    if (HasOwnBuffers())
        throw StatusError(CAM_API_STS_NOT_AVAILABLE, "the channel keeps its buffers itself");
    if (size < eventBlockHeader)
        throw StatusError(CAM_API_STS_BUFFER_TOO_SMALL, "no room for an event");
    return book_.Register(memory, size);
}

void EventChannel::Deregister(std::uint64_t handle) { book_.Deregister(handle); }

void EventChannel::Queue(std::uint64_t handle)
{
    book_.Enqueue(handle, [this](Request &request) {
        std::lock_guard lock(mutex_);
        if (isCameraClosed_)
            throw StatusError(CAM_API_STS_INVALID_CAMERA_HANDLE, "the camera is closed");
        if (isGone_)
            throw StatusError(CAM_API_STS_CAMERA_NOT_RESPONDING, "the camera was unplugged");
        waiting_.PushBack(request);
    });
}

void EventChannel::Flush()
{
    if (!HasOwnBuffers()) {
        CompleteWaiting(CAM_API_STS_FLUSH_REQUESTED);
        return;
    }
    while (Request *request = book_.TakeComplete()) {
        std::lock_guard lock(mutex_);
        waiting_.PushBack(*request);
    }
}

EventChannel::Taken EventChannel::Take()
{
    Request *const request = book_.TakeComplete();
    if (request == nullptr)
        return {};
    if (HasOwnBuffers()) {
        std::lock_guard lock(mutex_);
        if (lent_ != nullptr)
            waiting_.PushBack(*lent_);
        lent_ = request;
    }
    const CAM_API_STATUS status = request->info.uiStatus;
    const auto *data = reinterpret_cast<const unsigned char *>(request->memory);
    return {status, status == CAM_API_STS_SUCCESS ? data : nullptr, request->handle};
}

std::uint64_t EventChannel::LostCount() const
{
    std::lock_guard lock(mutex_);
    return lost_;
}

std::uint64_t EventChannel::MalformedCount() const
{
    std::lock_guard lock(mutex_);
    return malformed_;
}

void EventChannel::OnGone() noexcept
{
    std::lock_guard lock(mutex_);
    isGone_ = true;
    wake_.notify_all();
}

void EventChannel::OnCameraClose()
{
    SwitchOff();
    {
        std::lock_guard lock(mutex_);
        isCameraClosed_ = true;
    }
    for (Transfer &transfer : transfers_)
        transfer.in->Cancel();
    {
        std::unique_lock lock(mutex_);
        wake_.wait(lock, [this] { return pending_ == 0; });
    }
    CompleteWaiting(CAM_API_STS_FLUSH_REQUESTED);
}

void EventChannel::Reset()
{
    std::unique_lock lock(mutex_);
    wantsReset_ = true;
    wake_.notify_all();
    wake_.wait(lock, [this] { return !wantsReset_ || IsEnding(); });
}

void EventChannel::CompleteWaiting(CAM_API_STATUS status)
{
    RequestList ended;
    {
        std::lock_guard lock(mutex_);
        std::swap(ended, waiting_);
    }
    while (Request *request = ended.PopFront()) {
        request->info = {};
        request->info.uiStatus = status;
        book_.Complete(*request);
    }
}

EventTable &EventChannels()
{
    static EventTable channels;
    return channels;
}

} // namespace Orvi::U3v
