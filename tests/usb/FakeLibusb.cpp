// The functions of libusb that the transport uses, on the bus in memory.

#include "tests/usb/FakeBus.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace Orvi::Test {

/// An IN transfer that a virtual device fills.
class FunctionTransfer : public Vcam::InTransfer {
  public:
    explicit FunctionTransfer(libusb_transfer *transfer) : transfer_(transfer) {}
    void Complete() noexcept override;

  private:
    libusb_transfer *const transfer_;
};

struct FakeLibusb {
    FakeBus &bus = FakeBus::Instance();
    std::unique_lock<std::mutex> lock{bus.mutex};

    FakeBus::Counts &Counts() { return bus.counts; }
    void Log(const char *what, unsigned number, const char *format = "%s %u")
    {
        char text[64];
        std::snprintf(text, sizeof text, format, what, number);
        bus.log.emplace_back(text);
    }
    void Mistake(const std::string &text) { bus.Mistake(text); }

    static libusb_transfer_status StatusOf(Vcam::TransferStatus status)
    {
        switch (status) {
        case Vcam::TransferStatus::Completed:
            return LIBUSB_TRANSFER_COMPLETED;
        case Vcam::TransferStatus::Stalled:
            return LIBUSB_TRANSFER_STALL;
        case Vcam::TransferStatus::Babble:
            return LIBUSB_TRANSFER_OVERFLOW;
        case Vcam::TransferStatus::Cancelled:
            return LIBUSB_TRANSFER_CANCELLED;
        case Vcam::TransferStatus::Gone:
            break;
        }
        return LIBUSB_TRANSFER_NO_DEVICE;
    }

    // A virtual device numbers its endpoints in its own way.
    static Vcam::Endpoint EndpointOf(const libusb_device &device, std::uint8_t address)
    {
        for (const FakeInterface &interface : device.script.interfaces)
            for (const FakeEndpoint &endpoint : interface.endpoints)
                if (endpoint.address == address && (address & LIBUSB_ENDPOINT_IN) != 0)
                    return interface.protocol == 0   ? Vcam::Endpoint::ControlIn
                           : interface.protocol == 1 ? Vcam::Endpoint::EventIn
                                                     : Vcam::Endpoint::StreamIn;
        return Vcam::Endpoint::ControlOut;
    }

    void SubmitToFunction(libusb_transfer *transfer)
    {
        const libusb_device &device = *transfer->dev_handle->device;
        const auto function = device.script.function;
        const std::span memory(reinterpret_cast<std::byte *>(transfer->buffer),
                               static_cast<std::size_t>(transfer->length));
        if ((transfer->endpoint & LIBUSB_ENDPOINT_IN) == 0) {
            lock.unlock();
            const Vcam::TransferStatus status = function->Out(memory);
            lock.lock();
            bus.Queue(transfer, StatusOf(status), memory.size());
            return;
        }
        auto in = std::make_unique<FunctionTransfer>(transfer);
        in->buffer = memory;
        Vcam::InTransfer &posted = *(bus.transfers[transfer].in = std::move(in));
        const Vcam::Endpoint endpoint = EndpointOf(device, transfer->endpoint);
        lock.unlock();
        function->Submit(endpoint, posted);
        lock.lock();
    }

    void Halt(libusb_device &device, std::uint8_t endpoint, bool halted)
    {
        Log(halted ? "halt" : "clear", endpoint, "%s 0x%02X");
        const auto function = device.script.function;
        if (function == nullptr)
            return;
        const Vcam::Endpoint itsEndpoint = EndpointOf(device, endpoint);
        lock.unlock();
        if (halted)
            function->SetHalt(itsEndpoint);
        else
            function->ClearHalt(itsEndpoint);
        lock.lock();
    }
};

// Once it is queued it may be submitted anew, and this object replaced.
void FunctionTransfer::Complete() noexcept
{
    FakeLibusb().bus.Queue(transfer_, FakeLibusb::StatusOf(status), received);
}

} // namespace Orvi::Test

using Orvi::Test::FakeBus;
using Orvi::Test::FakeLibusb;

int libusb_init(libusb_context **context)
{
    FakeLibusb fake;
    if (fake.bus.initError != 0)
        return fake.bus.initError;
    ++fake.Counts().contexts;
    *context = new libusb_context;
    return 0;
}

void libusb_exit(libusb_context *context)
{
    FakeLibusb fake;
    --fake.Counts().contexts;
    delete context;
}

const libusb_version *libusb_get_version()
{
    static constexpr libusb_version version = {1, 0, 99, 0, "-fake", ""};
    return &version;
}

const char *libusb_error_name(int error)
{
    switch (error) {
    case LIBUSB_ERROR_ACCESS:
        return "LIBUSB_ERROR_ACCESS";
    case LIBUSB_ERROR_BUSY:
        return "LIBUSB_ERROR_BUSY";
    case LIBUSB_ERROR_NO_DEVICE:
        return "LIBUSB_ERROR_NO_DEVICE";
    default:
        return "LIBUSB_ERROR";
    }
}

int libusb_has_capability(std::uint32_t capability)
{
    return capability == LIBUSB_CAP_HAS_HOTPLUG && FakeLibusb().bus.hasHotplug ? 1 : 0;
}

ssize_t libusb_get_device_list(libusb_context *, libusb_device ***list)
{
    FakeLibusb fake;
    std::vector<libusb_device *> attached;
    for (const auto &device : fake.bus.devices)
        if (device->isAttached)
            attached.push_back(device.get());
    *list = static_cast<libusb_device **>(std::calloc(attached.size() + 1, sizeof(libusb_device *)));
    std::copy(attached.begin(), attached.end(), *list);
    fake.Counts().references += static_cast<int>(attached.size());
    ++fake.Counts().lists;
    return static_cast<ssize_t>(attached.size());
}

void libusb_free_device_list(libusb_device **list, int unreference)
{
    FakeLibusb fake;
    if (unreference != 0)
        fake.Mistake("the references of a list are its taker's");
    --fake.Counts().lists;
    std::free(list);
}

void libusb_unref_device(libusb_device *) { --FakeLibusb().Counts().references; }

std::uint8_t libusb_get_bus_number(libusb_device *device) { return device->script.bus; }
std::uint8_t libusb_get_device_address(libusb_device *device) { return device->script.address; }
int libusb_get_device_speed(libusb_device *device) { return device->script.speed; }

int libusb_get_port_numbers(libusb_device *device, std::uint8_t *ports, int size)
{
    const auto &all = device->script.ports;
    if (static_cast<std::size_t>(size) < all.size())
        return LIBUSB_ERROR_OVERFLOW;
    std::copy(all.begin(), all.end(), ports);
    return static_cast<int>(all.size());
}

int libusb_get_device_descriptor(libusb_device *device, libusb_device_descriptor *descriptor)
{
    *descriptor = {};
    descriptor->idVendor = 0x1D6B;
    descriptor->idProduct = 0x0104;
    descriptor->iManufacturer = device->script.deviceTexts[0];
    descriptor->iProduct = device->script.deviceTexts[1];
    descriptor->iSerialNumber = device->script.deviceTexts[2];
    return 0;
}

int libusb_get_active_config_descriptor(libusb_device *device, libusb_config_descriptor **result)
{
    FakeLibusb fake;
    if (device->script.configurationError != 0)
        return device->script.configurationError;
    const auto &scripts = device->script.interfaces;
    auto *interfaces = new libusb_interface[scripts.size()];
    for (std::size_t i = 0; i < scripts.size(); ++i) {
        const auto &script = scripts[i];
        auto *endpoints = new libusb_endpoint_descriptor[script.endpoints.size()];
        for (std::size_t k = 0; k < script.endpoints.size(); ++k) {
            endpoints[k] = {};
            endpoints[k].bEndpointAddress = script.endpoints[k].address;
            endpoints[k].bmAttributes = script.endpoints[k].attributes;
            endpoints[k].wMaxPacketSize = script.endpoints[k].maxPacketSize;
        }
        auto *setting = new libusb_interface_descriptor{};
        setting->bInterfaceNumber = script.number;
        setting->bInterfaceClass = script.interfaceClass;
        setting->bInterfaceSubClass = script.subclass;
        setting->bInterfaceProtocol = script.protocol;
        setting->bNumEndpoints = static_cast<std::uint8_t>(script.endpoints.size());
        setting->endpoint = endpoints;
        setting->extra = script.extra.data();
        setting->extra_length = static_cast<int>(script.extra.size());
        interfaces[i] = {setting, 1};
    }
    *result = new libusb_config_descriptor{};
    (*result)->bNumInterfaces = static_cast<std::uint8_t>(scripts.size());
    (*result)->bConfigurationValue = 1;
    (*result)->interface = interfaces;
    ++fake.Counts().configurations;
    return 0;
}

int libusb_get_config_descriptor(libusb_device *device, std::uint8_t, libusb_config_descriptor **result)
{
    return libusb_get_active_config_descriptor(device, result);
}

void libusb_free_config_descriptor(libusb_config_descriptor *configuration)
{
    FakeLibusb fake;
    --fake.Counts().configurations;
    for (int i = 0; i < configuration->bNumInterfaces; ++i) {
        delete[] configuration->interface[i].altsetting->endpoint;
        delete configuration->interface[i].altsetting;
    }
    delete[] configuration->interface;
    delete configuration;
}

int libusb_open(libusb_device *device, libusb_device_handle **handle)
{
    FakeLibusb fake;
    if (!device->isAttached)
        return LIBUSB_ERROR_NO_DEVICE;
    if (device->script.openError != 0)
        return device->script.openError;
    *handle = new libusb_device_handle{device, {}, false};
    ++fake.Counts().handles;
    ++fake.Counts().opened;
    return 0;
}

void libusb_close(libusb_device_handle *handle)
{
    // As the real one: it waits until no callback is under way.
    std::lock_guard events(FakeBus::Instance().eventMutex);
    FakeLibusb fake;
    for (const auto &[transfer, state] : fake.bus.transfers)
        if (transfer->dev_handle == handle && state.isPending)
            fake.Mistake("closed with pending transfers");
    if (!handle->claimed.empty())
        fake.Mistake("closed with claimed interfaces");
    --fake.Counts().handles;
    delete handle;
}

int libusb_kernel_driver_active(libusb_device_handle *handle, int interface)
{
    FakeLibusb fake;
    return handle->device->script.kernelDrivers.contains(interface) ? 1 : 0;
}

int libusb_set_auto_detach_kernel_driver(libusb_device_handle *handle, int enable)
{
    FakeLibusb fake;
    handle->detachesDrivers = enable != 0;
    return 0;
}

int libusb_claim_interface(libusb_device_handle *handle, int interface)
{
    FakeLibusb fake;
    const auto &script = handle->device->script;
    if (!handle->device->isAttached)
        return LIBUSB_ERROR_NO_DEVICE;
    if (const auto error = script.claimErrors.find(interface); error != script.claimErrors.end())
        return error->second;
    if (script.kernelDrivers.contains(interface)) {
        if (!handle->detachesDrivers)
            return LIBUSB_ERROR_BUSY;
        ++fake.Counts().driversDetached;
    }
    handle->claimed.insert(interface);
    ++fake.Counts().claims;
    fake.Log("claim", static_cast<unsigned>(interface));
    return 0;
}

int libusb_release_interface(libusb_device_handle *handle, int interface)
{
    FakeLibusb fake;
    if (handle->claimed.erase(interface) == 0)
        fake.Mistake("released an interface that was not claimed");
    if (handle->device->script.kernelDrivers.contains(interface))
        ++fake.Counts().driversAttached;
    --fake.Counts().claims;
    fake.Log("release", static_cast<unsigned>(interface));
    return handle->device->isAttached ? 0 : LIBUSB_ERROR_NO_DEVICE;
}

int libusb_control_transfer(libusb_device_handle *handle, std::uint8_t type, std::uint8_t request, std::uint16_t value,
                            std::uint16_t index, unsigned char *data, std::uint16_t length, unsigned)
{
    FakeLibusb fake;
    libusb_device &device = *handle->device;
    if (!device.isAttached)
        return LIBUSB_ERROR_NO_DEVICE;
    if (type == LIBUSB_RECIPIENT_ENDPOINT && request == LIBUSB_REQUEST_SET_FEATURE && value == 0) {
        if (device.script.haltError != 0)
            return device.script.haltError;
        fake.Halt(device, static_cast<std::uint8_t>(index), true);
        return 0;
    }
    if (type != LIBUSB_ENDPOINT_IN || request != LIBUSB_REQUEST_GET_DESCRIPTOR || value >> 8 != LIBUSB_DT_STRING) {
        fake.Mistake("an unknown request");
        return LIBUSB_ERROR_PIPE;
    }
    const auto number = static_cast<std::uint8_t>(value & 0xFF);
    ++fake.Counts().textsAsked;
    if (const auto error = device.script.textErrors.find(number); error != device.script.textErrors.end())
        return error->second;
    std::vector<unsigned char> bytes = {0, LIBUSB_DT_STRING};
    if (number == 0) {
        bytes.insert(bytes.end(), {0x09, 0x04});
    } else if (const auto text = device.script.texts.find(number); text != device.script.texts.end()) {
        if (index != 0x0409)
            fake.Mistake("a text in a language that the device does not speak");
        for (const char16_t unit : text->second) {
            bytes.push_back(static_cast<unsigned char>(unit & 0xFF));
            bytes.push_back(static_cast<unsigned char>(unit >> 8));
        }
    } else {
        return LIBUSB_ERROR_PIPE;
    }
    bytes[0] = static_cast<unsigned char>(bytes.size());
    const std::size_t size = std::min<std::size_t>(bytes.size(), length);
    std::memcpy(data, bytes.data(), size);
    return static_cast<int>(size);
}

int libusb_clear_halt(libusb_device_handle *handle, unsigned char endpoint)
{
    FakeLibusb fake;
    libusb_device &device = *handle->device;
    if (!device.isAttached)
        return LIBUSB_ERROR_NO_DEVICE;
    // A host controller cannot begin anew on an endpoint that has transfers: host and device get out of step.
    if (fake.bus.Oldest(device, endpoint) != nullptr)
        fake.Mistake("cleared a halt under pending transfers");
    fake.Halt(device, endpoint, false);
    return 0;
}

int libusb_reset_device(libusb_device_handle *handle)
{
    FakeLibusb fake;
    libusb_device &device = *handle->device;
    if (!device.isAttached)
        return LIBUSB_ERROR_NO_DEVICE;
    for (const libusb_transfer *transfer : fake.bus.pending)
        if (transfer->dev_handle == handle)
            fake.Mistake("reset under pending transfers");
    ++fake.Counts().resets;
    return device.script.resetResult;
}

libusb_transfer *libusb_alloc_transfer(int)
{
    FakeLibusb fake;
    auto *transfer = static_cast<libusb_transfer *>(std::calloc(1, sizeof(libusb_transfer)));
    fake.bus.transfers[transfer];
    ++fake.Counts().transfers;
    return transfer;
}

void libusb_free_transfer(libusb_transfer *transfer)
{
    FakeLibusb fake;
    if (fake.bus.transfers[transfer].isPending)
        fake.Mistake("freed a pending transfer");
    fake.bus.transfers.erase(transfer);
    --fake.Counts().transfers;
    std::free(transfer);
}

int libusb_submit_transfer(libusb_transfer *transfer)
{
    FakeLibusb fake;
    libusb_device &device = *transfer->dev_handle->device;
    FakeBus::Transfer &state = fake.bus.transfers[transfer];
    if (state.isPending) {
        fake.Mistake("submitted a pending transfer");
        return LIBUSB_ERROR_BUSY;
    }
    if (!device.isAttached)
        return LIBUSB_ERROR_NO_DEVICE;
    const auto length = static_cast<std::size_t>(transfer->length);
    if (length > device.script.maxTransfer || device.bytesInFlight + length > device.script.maxInFlight)
        return LIBUSB_ERROR_NO_MEM;
    state.isPending = true;
    device.bytesInFlight += length;
    fake.bus.pending.push_back(transfer);
    fake.bus.changed.notify_all();
    if (device.script.function != nullptr)
        fake.SubmitToFunction(transfer);
    else if ((transfer->endpoint & LIBUSB_ENDPOINT_IN) == 0 && device.script.takesOut)
        fake.bus.Queue(transfer, LIBUSB_TRANSFER_COMPLETED, length);
    return 0;
}

int libusb_cancel_transfer(libusb_transfer *transfer)
{
    FakeLibusb fake;
    FakeBus::Transfer &state = fake.bus.transfers[transfer];
    if (!state.isPending || state.isDone)
        return LIBUSB_ERROR_NOT_FOUND;
    libusb_device &device = *transfer->dev_handle->device;
    if (state.in != nullptr) {
        const auto function = device.script.function;
        Orvi::Vcam::InTransfer &in = *state.in;
        const Orvi::Vcam::Endpoint endpoint = FakeLibusb::EndpointOf(device, transfer->endpoint);
        fake.lock.unlock();
        function->Cancel(endpoint, in);
        return 0;
    }
    if (std::exchange(fake.bus.overtakes, false)) {
        std::memcpy(transfer->buffer, fake.bus.overtaking.data(), fake.bus.overtaking.size());
        fake.bus.Queue(transfer, LIBUSB_TRANSFER_COMPLETED, fake.bus.overtaking.size());
        return 0;
    }
    fake.bus.Queue(transfer, LIBUSB_TRANSFER_CANCELLED, 0);
    return 0;
}

int libusb_handle_events_completed(libusb_context *context, int *)
{
    FakeBus &bus = FakeBus::Instance();
    {
        FakeLibusb fake;
        ++fake.Counts().waits;
        bus.eventThreads.insert(std::this_thread::get_id());
        if (bus.eventError != 0)
            return bus.eventError;
        bus.changed.wait(fake.lock, [&] { return !bus.events.empty() || context->isInterrupted; });
        context->isInterrupted = false;
        if (bus.events.empty())
            return 0;
    }
    std::lock_guard handling(bus.eventMutex);
    std::function<void()> event;
    {
        FakeLibusb fake;
        event = std::move(bus.events.front());
        bus.events.pop_front();
    }
    event();
    return 0;
}

void libusb_interrupt_event_handler(libusb_context *context)
{
    FakeLibusb fake;
    context->isInterrupted = true;
    fake.bus.changed.notify_all();
}

int libusb_hotplug_register_callback(libusb_context *, int events, int, int, int, int,
                                     libusb_hotplug_callback_fn function, void *data,
                                     libusb_hotplug_callback_handle *handle)
{
    FakeLibusb fake;
    if (fake.bus.hotplugError != 0)
        return fake.bus.hotplugError;
    if (events != LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT)
        fake.Mistake("registered for other events than a device's leaving");
    fake.bus.callbacks[ *handle = fake.bus.nextCallback++] = {function, data};
    ++fake.Counts().hotplugCallbacks;
    return 0;
}

void libusb_hotplug_deregister_callback(libusb_context *, libusb_hotplug_callback_handle handle)
{
    FakeLibusb fake;
    fake.bus.callbacks.erase(handle);
    --fake.Counts().hotplugCallbacks;
}
