#include "tests/usb/FakeBus.h"

#include <algorithm>
#include <cstring>

void libusb_device::OnGone() noexcept { Orvi::Test::FakeBus::Instance().Unplug(*this); }

namespace Orvi::Test {

DescriptorBytes DeviceInfoBytes(std::size_t length)
{
    static constexpr unsigned char info[20] = {20, 0x24, 0x01, 0, 0, 1, 0, 2, 0, 1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 0x08};
    DescriptorBytes bytes(length, 0);
    std::copy_n(info, std::min(length, sizeof info), bytes.begin());
    bytes[0] = static_cast<unsigned char>(length);
    return bytes;
}

FakeBus &FakeBus::Instance()
{
    static FakeBus bus;
    return bus;
}

void FakeBus::Clear()
{
    for (const auto &device : devices)
        if (device->script.function != nullptr)
            device->script.function->SetGoneObserver(nullptr);
    std::lock_guard lock(mutex);
    devices.clear();
    events.clear();
    callbacks.clear();
    counts = {};
    log.clear();
    mistakes.clear();
    eventThreads.clear();
    overtakes = false;
    initError = hotplugError = eventError = 0;
    hasHotplug = true;
}

libusb_device &FakeBus::Plug(const FakeUsbDevice &script)
{
    std::unique_lock lock(mutex);
    devices.push_back(std::make_unique<libusb_device>());
    libusb_device &device = *devices.back();
    device.script = script;
    lock.unlock();
    if (script.function != nullptr)
        script.function->SetGoneObserver(&device);
    return device;
}

void FakeBus::Unplug(libusb_device &device)
{
    std::lock_guard lock(mutex);
    device.isAttached = false;
    // A virtual device completes its transfers itself.
    if (device.script.completesWhenUnplugged && device.script.function == nullptr)
        for (libusb_transfer *transfer : std::vector(pending))
            if (transfer->dev_handle->device == &device)
                Queue(transfer, LIBUSB_TRANSFER_NO_DEVICE, 0);
    for (const auto &[handle, callback] : callbacks)
        events.emplace_back([callback = callback, &device] {
            callback.function(nullptr, &device, LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT, callback.data);
        });
    changed.notify_all();
}

libusb_transfer *FakeBus::Oldest(const libusb_device &device, std::uint8_t endpoint) const
{
    const auto found = std::find_if(pending.begin(), pending.end(), [&](const libusb_transfer *transfer) {
        return transfer->dev_handle->device == &device && transfer->endpoint == endpoint;
    });
    return found == pending.end() ? nullptr : *found;
}

std::size_t FakeBus::Pending(const libusb_device &device, std::uint8_t endpoint) const
{
    std::lock_guard lock(mutex);
    return static_cast<std::size_t>(std::count_if(pending.begin(), pending.end(), [&](const libusb_transfer *transfer) {
        return transfer->dev_handle->device == &device && transfer->endpoint == endpoint;
    }));
}

void FakeBus::WaitPending(const libusb_device &device, std::uint8_t endpoint, std::size_t count)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (Pending(device, endpoint) < count) {
        std::unique_lock lock(mutex);
        if (changed.wait_until(lock, limit) == std::cv_status::timeout)
            throw std::runtime_error("no transfer was posted");
    }
}

void FakeBus::Complete(libusb_device &device, std::uint8_t endpoint, libusb_transfer_status status,
                       const std::vector<std::byte> &data)
{
    std::lock_guard lock(mutex);
    libusb_transfer *transfer = Oldest(device, endpoint);
    if (transfer == nullptr)
        throw std::runtime_error("no transfer to complete");
    const std::size_t size = std::min(data.size(), static_cast<std::size_t>(transfer->length));
    if ((endpoint & LIBUSB_ENDPOINT_IN) != 0 && size != 0)
        std::memcpy(transfer->buffer, data.data(), size);
    Queue(transfer, status, size);
}

const unsigned char *FakeBus::Memory(const libusb_device &device, std::uint8_t endpoint) const
{
    std::lock_guard lock(mutex);
    const libusb_transfer *transfer = Oldest(device, endpoint);
    return transfer == nullptr ? nullptr : transfer->buffer;
}

void FakeBus::OvertakeNextCancel(std::vector<std::byte> data)
{
    std::lock_guard lock(mutex);
    overtaking = std::move(data);
    overtakes = true;
}

FakeBus::Counts FakeBus::Count() const
{
    std::lock_guard lock(mutex);
    return counts;
}

std::vector<std::string> FakeBus::Log() const
{
    std::lock_guard lock(mutex);
    return log;
}

std::set<std::thread::id> FakeBus::EventThreads() const
{
    std::lock_guard lock(mutex);
    return eventThreads;
}

std::vector<std::string> FakeBus::Mistakes() const
{
    std::lock_guard lock(mutex);
    return mistakes;
}

// The completion reaches the transfer's owner on the event thread. With the lock held.
void FakeBus::Queue(libusb_transfer *transfer, libusb_transfer_status status, std::size_t length)
{
    Transfer &state = transfers[transfer];
    if (state.isDone)
        return;
    state.isDone = true;
    std::erase(pending, transfer);
    transfer->dev_handle->device->bytesInFlight -= static_cast<std::size_t>(transfer->length);
    events.emplace_back([this, transfer, status, length] {
        std::unique_lock lock(mutex);
        transfers[transfer].isPending = transfers[transfer].isDone = false;
        transfer->status = status;
        transfer->actual_length = static_cast<int>(length);
        lock.unlock();
        transfer->callback(transfer);
    });
    changed.notify_all();
}

} // namespace Orvi::Test
