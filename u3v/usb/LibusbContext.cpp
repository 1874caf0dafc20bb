#include "u3v/usb/LibusbContext.h"

#include "u3v/core/Log.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <span>
#include <utility>

namespace Orvi::U3v {

LibusbContext &LibusbContext::Instance()
{
    // Devices and links of other static objects may outlive any order of destruction.
    static LibusbContext *const context = new LibusbContext();
    return *context;
}

LibusbContext::~LibusbContext()
{
    if (context_ != nullptr)
        libusb_exit(context_);
}

// A system without USB may get it later: what failed is tried again.
bool LibusbContext::Initialize()
{
    if (context_ != nullptr)
        return true;
    if (const int error = libusb_init(&context_); error != 0) {
        context_ = nullptr;
        LogDevice(CAM_LOG_LEVEL_WARN, "no USB here, virtual cameras only: starting libusb: %s",
                  TextOfError(error).c_str());
        return false;
    }
    hasHotplug_ = libusb_has_capability(LIBUSB_CAP_HAS_HOTPLUG) != 0;
    LogDevice(CAM_LOG_LEVEL_INFO, "%s started", LibusbVersion().c_str());
    if (!hasHotplug_)
        LogDevice(CAM_LOG_LEVEL_WARN,
                  "this libusb has no hot-plug: an unplugged camera is noticed by its next transfer, "
                  "and a new one by the next process");
    return true;
}

std::vector<LibusbContext::Device> LibusbContext::Devices()
{
    {
        std::lock_guard lock(lifeMutex_);
        if (!Initialize())
            return {};
    }
    libusb_device **list = nullptr;
    const auto count = libusb_get_device_list(context_, &list);
    if (count < 0) {
        LogDevice(CAM_LOG_LEVEL_ERROR, "listing USB devices: %s", TextOfError(static_cast<int>(count)).c_str());
        return {};
    }
    std::vector<Device> devices;
    for (libusb_device *device : std::span(list, static_cast<std::size_t>(count)))
        devices.emplace_back(device, libusb_unref_device);
    libusb_free_device_list(list, 0);
    return devices;
}

void LibusbContext::AddUser(libusb_device *device, User &user)
{
    std::lock_guard life(lifeMutex_);
    if (UserCount() == 0)
        StartThread();
    std::lock_guard lock(usersMutex_);
    users_.push_back({device, &user});
}

void LibusbContext::RemoveUser(User &user)
{
    std::lock_guard life(lifeMutex_);
    {
        std::lock_guard lock(usersMutex_);
        const auto use = std::find_if(users_.begin(), users_.end(), [&](const Use &u) { return u.user == &user; });
        if (use == users_.end())
            return;
        users_.erase(use);
        if (!users_.empty())
            return;
    }
    StopThread();
}

bool LibusbContext::HasUser(libusb_device *device) const
{
    std::lock_guard lock(usersMutex_);
    return std::any_of(users_.begin(), users_.end(), [&](const Use &use) { return use.device == device; });
}

std::size_t LibusbContext::UserCount() const
{
    std::lock_guard lock(usersMutex_);
    return users_.size();
}

void LibusbContext::StartThread()
{
    isStopping_ = false;
    thread_ = std::thread([this] { HandleEvents(); });
    if (!hasHotplug_)
        return;
    const int error = libusb_hotplug_register_callback(
        context_, LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT, LIBUSB_HOTPLUG_NO_FLAGS, LIBUSB_HOTPLUG_MATCH_ANY,
        LIBUSB_HOTPLUG_MATCH_ANY, LIBUSB_HOTPLUG_MATCH_ANY, OnHotplug, this, &hotplug_);
    isListening_ = error == 0;
    if (error != 0)
        LogDevice(CAM_LOG_LEVEL_WARN, "no news of unplugged cameras: %s", TextOfError(error).c_str());
}

void LibusbContext::StopThread()
{
    isStopping_ = true;
    libusb_interrupt_event_handler(context_);
    thread_.join();
    if (std::exchange(isListening_, false))
        libusb_hotplug_deregister_callback(context_, hotplug_);
}

void LibusbContext::HandleEvents() noexcept
{
    constexpr std::chrono::milliseconds pause(100);
    bool hasFailed = false;
    while (!isStopping_) {
        const int error = libusb_handle_events_completed(context_, nullptr);
        if (error == 0 || error == LIBUSB_ERROR_INTERRUPTED)
            continue;
        if (!hasFailed)
            LogDevice(CAM_LOG_LEVEL_ERROR, "waiting for USB transfers: %s", TextOfError(error).c_str());
        hasFailed = true;
        std::this_thread::sleep_for(pause); // what fails at once must not take all of a processor
    }
}

int LIBUSB_CALL LibusbContext::OnHotplug(libusb_context *, libusb_device *device, libusb_hotplug_event, void *self)
{
    auto &context = *static_cast<LibusbContext *>(self);
    std::lock_guard lock(context.usersMutex_);
    for (const Use &use : context.users_)
        if (use.device == device)
            use.user->OnDeviceLeft();
    return 0; // go on telling
}

std::string BusPathOf(libusb_device *device)
{
    std::uint8_t ports[8];
    const int count = libusb_get_port_numbers(device, ports, static_cast<int>(std::size(ports)));
    std::string path = std::to_string(libusb_get_bus_number(device));
    for (int i = 0; i < count; ++i) {
        path += i == 0 ? '-' : '.';
        path += std::to_string(ports[i]);
    }
    return path;
}

} // namespace Orvi::U3v
