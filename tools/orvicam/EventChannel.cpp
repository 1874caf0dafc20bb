#include "EventChannel.h"

#include "Text.h"

#include <algorithm>
#include <fnmatch.h>

namespace Orvi::Tool {
namespace {

constexpr char s_selector[] = "EventSelector";

// Enough for a burst at every edge of several images while the output stands still.
constexpr std::size_t s_requests = 256;

} // namespace

std::vector<std::string> SelectEvents(const Camera &camera, const std::vector<std::string> &wanted)
{
    const std::string &serial = camera.Entry().serial;
    if (!camera.Has(s_selector))
        throw Failure(ExitCode::Feature, serial + " sends no events: it has no feature " + s_selector);
    const std::vector<std::string> known = camera.Find(s_selector).Entries();
    std::vector<std::string> selected;
    for (const std::string &name : wanted) {
        bool found = false;
        for (const std::string &event : known) {
            if (fnmatch(name.c_str(), event.c_str(), 0) != 0)
                continue;
            found = true;
            if (std::find(selected.begin(), selected.end(), event) == selected.end())
                selected.push_back(event);
        }
        if (!found)
            throw Failure(ExitCode::Feature, serial + " has no event '" + name + "'; it has " + Join(known, ", "));
    }
    return selected;
}

EventChannel::EventChannel(const Camera &camera, const std::vector<std::string> &names, const Signal &signal)
    : camera_(camera)
{
    const std::string &serial = camera.Entry().serial;
    try {
        std::uint32_t size = 0;
        Check(Evt_Open(camera.Handle(), &channel_, &size, signal.Parameter()), serial + ": cannot open its events");
        memory_.resize(s_requests * size);
        for (std::size_t i = 0; i < s_requests; ++i) {
            CAM_HANDLE &request = requests_.emplace_back(0);
            Check(Evt_CreateRequest(channel_, &memory_[i * size], size, &request),
                  serial + ": cannot register a buffer for events");
            Check(Evt_EnqueueRequest(channel_, request), serial + ": cannot queue a buffer for events");
            ++queued_;
        }
        for (const std::string &name : names) {
            Check(Evt_Activate(channel_, name.c_str(), nullptr), serial + ": cannot switch on the event " + name);
            active_.push_back(name);
        }
    } catch (...) {
        Close();
        throw;
    }
}

EventChannel::~EventChannel() { Close(); }

std::optional<Event> EventChannel::Next()
{
    const std::string &serial = camera_.Entry().serial;
    CAM_HANDLE request = 0;
    CAM_EVENT_REQUEST_INFO info{};
    const CAM_API_STATUS status =
        Evt_DequeueRequest(channel_, static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&request)), &info);
    if (status == CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE || (status == CAM_API_STS_EMPTY_COMPLETE_QUEUE && queued_ == 0))
        throw Failure(ExitCode::Camera, serial + " was unplugged");
    if (status == CAM_API_STS_EMPTY_COMPLETE_QUEUE)
        return std::nullopt;
    Check(status, serial + ": cannot take an event");
    // Unplugged since the event came: those behind it still tell.
    if (const CAM_API_STATUS queued = Evt_EnqueueRequest(channel_, request); IsCameraGone(queued))
        --queued_;
    else
        Check(queued, serial + ": cannot queue a buffer for events");
    return Event{NameOf(info.usEventId), info};
}

std::string EventChannel::NameOf(std::uint16_t id)
{
    if (const auto found = nameOfId_.find(id); found != nameOfId_.end())
        return found->second;
    // "Event" + name is the node that holds the event's id; some cameras can tell it only once the event has come.
    for (const std::string &name : active_) {
        if (!camera_.Has("Event" + name))
            continue;
        const auto value = camera_.Find("Event" + name).TryValue();
        if (value && value->is_number_integer() && value->get<std::int64_t>() == id)
            return nameOfId_.emplace(id, name).first->second;
    }
    return Hex(id, 4);
}

void EventChannel::Close() noexcept
{
    // What fails here has failed before, or the camera is gone: the rest is still to be given back.
    if (channel_ == 0)
        return;
    for (const std::string &name : active_)
        Evt_Deactivate(channel_, name.c_str());
    Evt_FlushWaitQueue(channel_);
    CAM_EVENT_REQUEST_INFO info{};
    while (Evt_DequeueRequest(channel_, 0, &info) != CAM_API_STS_EMPTY_COMPLETE_QUEUE)
        ;
    for (const CAM_HANDLE request : requests_)
        Evt_ReleaseRequest(channel_, request);
    Evt_Close(channel_);
}

} // namespace Orvi::Tool
