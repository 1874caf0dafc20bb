#include "u3v/usb/LibusbDevice.h"

#include "u3v/core/Log.h"
#include "u3v/usb/LibusbLink.h"

#include <algorithm>
#include <cstdio>
#include <tuple>

namespace Orvi::U3v {
namespace {

// Above it a transfer needs memory in one piece, which a system that has run for a while may not have.
constexpr std::uint32_t safeTransferSize = 512 * 1024;

// clang-format off
constexpr std::pair<int, std::uint32_t> speedCodes[] = {
    {LIBUSB_SPEED_LOW, 1}, {LIBUSB_SPEED_FULL, 2}, {LIBUSB_SPEED_HIGH, 4}, {LIBUSB_SPEED_SUPER, 8},
    {LIBUSB_SPEED_SUPER_PLUS, 16},
};
// clang-format on

std::uint32_t SpeedCode(libusb_device *device)
{
    const int speed = libusb_get_device_speed(device);
    const auto *row = std::find_if(std::begin(speedCodes), std::end(speedCodes),
                                   [speed](const auto &candidate) { return candidate.first == speed; });
    return row != std::end(speedCodes) ? row->second : 0;
}

std::string NodePathOf(libusb_device *device)
{
    char path[64];
    std::snprintf(path, sizeof path, "/dev/bus/usb/%03u/%03u", unsigned{libusb_get_bus_number(device)},
                  unsigned{libusb_get_device_address(device)});
    return path;
}

const std::string &FirstOf(const std::string &wanted, const std::string &otherwise)
{
    return wanted.empty() ? otherwise : wanted;
}

/// Ports compare as numbers: 2-9 comes before 2-10.
std::vector<std::uint8_t> OrderOf(libusb_device *device)
{
    std::vector<std::uint8_t> order(8);
    const int count = libusb_get_port_numbers(device, order.data(), static_cast<int>(order.size()));
    order.resize(static_cast<std::size_t>(std::max(count, 0)));
    order.insert(order.begin(), libusb_get_bus_number(device));
    return order;
}

} // namespace

std::shared_ptr<LibusbDevice> LibusbDevice::Describe(LibusbContext &context, LibusbContext::Device device)
{
    libusb_config_descriptor *configuration = nullptr;
    if (libusb_get_active_config_descriptor(device.get(), &configuration) != 0 &&
        libusb_get_config_descriptor(device.get(), 0, &configuration) != 0)
        return nullptr;
    const auto interfaces = FindInterfaces(*configuration);
    libusb_free_config_descriptor(configuration);
    return interfaces ? std::make_shared<LibusbDevice>(context, std::move(device), *interfaces) : nullptr;
}

LibusbDevice::LibusbDevice(LibusbContext &context, LibusbContext::Device device, const CameraInterfaces &interfaces)
    : context_(context),
      device_(std::move(device)),
      interfaces_(interfaces),
      busPath_(BusPathOf(device_.get())),
      nodePath_(NodePathOf(device_.get()))
{
    ReadDescriptors();
    try {
        LibusbHandle handle(context_, device_, Name());
        ReadTexts(handle);
    } catch (const StatusError &error) {
        ReadTextsOfSystem();
        SetProblem(error.Status() == CAM_API_STS_ACCESS_DENIED ? "no permission, see 70-u3v.rules" : "see the log",
                   error.what());
        return;
    }
    const std::string driver =
        context_.System().Driver(busPath_, interfaces_.configuration, interfaces_.control.number);
    if (driver == "usbfs" && !context_.HasUser(device_.get()))
        SetProblem("in use by another program", Name() + ": " + Remedy(LIBUSB_ERROR_BUSY, driver));
}

void LibusbDevice::ReadDescriptors()
{
    libusb_get_device_descriptor(device_.get(), &descriptor_);
    // The address tells a camera that was unplugged and plugged again from what it was before.
    identity_.key = "usb:" + busPath_ + '@' + std::to_string(libusb_get_device_address(device_.get()));
    identity_.linkSpeed = SpeedCode(device_.get());
    identity_.maxTransferSize = safeTransferSize;
    if (interfaces_.info)
        identity_.u3vVersion = interfaces_.info->u3vVersion;
    else
        LogDevice(CAM_LOG_LEVEL_WARN, "camera at %s: no USB3 Vision device-info descriptor", busPath_.c_str());
}

void LibusbDevice::ReadTexts(LibusbHandle &handle)
{
    const DeviceInfo info = interfaces_.info.value_or(DeviceInfo());
    const auto text = [&](std::uint8_t number, std::uint8_t otherwise = 0) {
        std::string found = handle.Text(number);
        return found.empty() && otherwise != number ? handle.Text(otherwise) : found;
    };
    identity_.guid = text(info.guid);
    identity_.manufacturer = text(info.vendor, descriptor_.iManufacturer);
    identity_.model = text(info.model, descriptor_.iProduct);
    identity_.family = text(info.family);
    identity_.deviceVersion = text(info.deviceVersion);
    identity_.manufacturerInfo = text(info.manufacturerInfo);
    identity_.serial = text(info.serial, descriptor_.iSerialNumber);
    identity_.userDefinedName = text(info.userDefinedName);
    if (identity_.serial.empty())
        identity_.serial = identity_.guid;
}

// The kernel has read the strings of the device descriptor, and shows them to everybody.
void LibusbDevice::ReadTextsOfSystem()
{
    const Sysfs &system = context_.System();
    identity_.manufacturer = system.Attribute(busPath_, "manufacturer");
    identity_.model = system.Attribute(busPath_, "product");
    identity_.serial = system.Attribute(busPath_, "serial");
}

void LibusbDevice::SetProblem(const std::string &shortly, const std::string &text)
{
    identity_.problem = text;
    // Programs that list cameras show this text, and do not know of problems.
    identity_.manufacturerInfo = "cannot be opened: " + shortly;
    LogDevice(CAM_LOG_LEVEL_WARN, "%s", text.c_str());
}

std::string LibusbDevice::Name() const
{
    char ids[16];
    std::snprintf(ids, sizeof ids, "%04x:%04x", unsigned{descriptor_.idVendor}, unsigned{descriptor_.idProduct});
    return "camera " + FirstOf(identity_.serial, ids) + " at " + busPath_ + " (" + nodePath_ + ")";
}

std::unique_ptr<UsbLink> LibusbDevice::Open()
{
    auto handle = std::make_unique<LibusbHandle>(context_, device_, Name());
    DeviceIdentity identity = identity_;
    // Who may open it now may not have been allowed to when it was found.
    if (!identity.problem.empty())
        identity = LibusbDevice(context_, device_, interfaces_).identity_;
    return std::make_unique<LibusbLink>(context_, std::move(handle), interfaces_, std::move(identity));
}

std::vector<std::shared_ptr<UsbDevice>> EnumerateUsbDevices(LibusbContext &context)
{
    auto devices = context.Devices();
    std::sort(devices.begin(), devices.end(), [](const LibusbContext::Device &a, const LibusbContext::Device &b) {
        return OrderOf(a.get()) < OrderOf(b.get());
    });
    std::vector<std::shared_ptr<UsbDevice>> cameras;
    for (LibusbContext::Device &device : devices)
        if (auto camera = LibusbDevice::Describe(context, std::move(device)))
            cameras.push_back(std::move(camera));
    return cameras;
}

} // namespace Orvi::U3v
