#include "u3v/protocol/EventNodes.h"

#include "u3v/core/Log.h"
#include "u3v/genapi/NodeMap.h"

#include <algorithm>

namespace Orvi::U3v {
namespace {

GenApi::NodeId Find(const GenApi::NodeMap &nodes, const std::string &name)
{
    if (const auto id = nodes.Find(name))
        return *id;
    throw GenApi::Error("[" + name + "] the camera has no such node, so its events cannot be switched");
}

} // namespace

void EventNodes::Activate(const std::string &name, const std::string &nodeName, void *signal)
{
    std::lock_guard lock(mutex_);
    for (const Active &active : active_)
        if (active.name == name)
            throw StatusError(CAM_API_STS_ALREADY_ACTIVATED, "the event " + name + " is on");
    // Known before the first one arrives, which may be at once.
    active_.push_back({name, nodeName, signal, IdOf(nodeName)});
    try {
        Switch(name, true);
    } catch (...) {
        active_.pop_back();
        throw;
    }
}

void EventNodes::Deactivate(const std::string &name)
{
    std::lock_guard lock(mutex_);
    const auto found =
        std::find_if(active_.begin(), active_.end(), [&](const Active &active) { return active.name == name; });
    if (found == active_.end())
        throw StatusError(CAM_API_STS_NOT_FOUND, "the event " + name + " is not on");
    Switch(name, false);
    active_.erase(found);
}

void EventNodes::DeactivateAll() noexcept
{
    std::lock_guard lock(mutex_);
    for (const Active &active : active_) {
        try {
            Switch(active.name, false);
        } catch (const std::exception &error) {
            LogDevice(CAM_LOG_LEVEL_DEBUG, "event %s not switched off: %s", active.name.c_str(), error.what());
        }
    }
    active_.clear();
}

void EventNodes::Switch(const std::string &name, bool on)
{
    GenApi::NodeMap &nodes = camera_.Nodes();
    const auto map = nodes.Lock(); // no other thread may select another event in between
    nodes.SetEnumText(Find(nodes, "EventSelector"), name);
    nodes.SetEnumText(Find(nodes, "EventNotification"), on ? "On" : "Off");
}

EventNodes::Known EventNodes::Deliver(const EventEntry &event)
{
    if (!camera_.HasNodes())
        return {};
    Known known;
    try {
        camera_.Nodes().DeliverEvent(event.id, event.raw);
        std::lock_guard lock(mutex_);
        for (Active &active : active_) {
            // Where the description does not tell the id, the node named as the event shows it, perhaps only now.
            if (!active.id && ReadNode(active.nodeName) == event.id)
                active.id = event.id;
            if (active.id != event.id)
                continue;
            known.signal = active.signal;
            known.blockId = static_cast<std::uint64_t>(ReadNode(active.nodeName + "FrameID").value_or(0));
        }
    } catch (const std::exception &error) {
        LogDevice(CAM_LOG_LEVEL_WARN, "event 0x%04X not shown by its nodes: %s", event.id, error.what());
    }
    return known;
}

std::optional<std::uint64_t> EventNodes::IdOf(const std::string &nodeName)
{
    const GenApi::NodeMap &nodes = camera_.Nodes();
    const auto node = nodes.Find(nodeName);
    return node ? nodes.EventId(*node) : std::nullopt;
}

std::optional<std::int64_t> EventNodes::ReadNode(const std::string &name)
{
    const GenApi::NodeMap &nodes = camera_.Nodes();
    const auto id = nodes.Find(name);
    if (!id)
        return std::nullopt;
    try {
        return nodes.GetInt(*id);
    } catch (const GenApi::Error &) {
        return std::nullopt; // not an integer, or nothing has been delivered to it
    }
}

} // namespace Orvi::U3v
