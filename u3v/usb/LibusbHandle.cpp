#include "u3v/usb/LibusbHandle.h"

#include "u3v/core/Log.h"
#include "u3v/usb/UsbDescriptors.h"

#include <span>

namespace Orvi::U3v {
namespace {

constexpr std::uint16_t english = 0x0409;

} // namespace

std::string Remedy(int error, const std::string &driver)
{
    switch (error) {
    case LIBUSB_ERROR_ACCESS:
        return "install the udev rule 70-u3v.rules and plug the camera in again; 'orvicam doctor' checks it";
    case LIBUSB_ERROR_BUSY:
        if (!driver.empty() && driver != "usbfs")
            return "the kernel driver '" + driver + "' does not let go of it; unload that driver";
        return "another program has the camera open; close that one first";
    case LIBUSB_ERROR_NO_DEVICE:
        return "plug the camera in again and look for cameras anew";
    case LIBUSB_ERROR_NO_MEM:
        return "raise /sys/module/usbcore/parameters/usbfs_memory_mb or stop other USB programs";
    default:
        return "plug the camera in again; if it happens again, 'orvicam doctor' may tell why";
    }
}

LibusbHandle::LibusbHandle(const LibusbContext &context, LibusbContext::Device device, std::string name)
    : sysfs_(context.System()), device_(std::move(device)), name_(std::move(name))
{
    const int error = libusb_open(device_.get(), &handle_);
    if (error != 0)
        throw StatusError(StatusOfError(error),
                          name_ + ": opening: " + TextOfError(error) + "; " + Remedy(error, std::string()));
    LogDevice(CAM_LOG_LEVEL_DEBUG, "%s: device file opened", name_.c_str());
}

LibusbHandle::~LibusbHandle()
{
    for (const int interface : claimed_)
        if (const int error = libusb_release_interface(handle_, interface); error != 0)
            LogDevice(CAM_LOG_LEVEL_DEBUG, "%s: releasing interface %d: %s", name_.c_str(), interface,
                      TextOfError(error).c_str());
    libusb_close(handle_);
    LogDevice(CAM_LOG_LEVEL_DEBUG, "%s: device file closed", name_.c_str());
}

void LibusbHandle::Claim(int configuration, int interface)
{
    const std::string driver = sysfs_.Driver(BusPathOf(device_.get()), configuration, interface);
    if (libusb_kernel_driver_active(handle_, interface) == 1)
        LogDevice(CAM_LOG_LEVEL_INFO, "%s: taking interface %d from the kernel driver '%s'", name_.c_str(), interface,
                  driver.c_str());
    // Not every system has kernel drivers to detach; claiming tells in any case.
    libusb_set_auto_detach_kernel_driver(handle_, 1);
    if (const int error = libusb_claim_interface(handle_, interface); error != 0)
        throw StatusError(StatusOfError(error), name_ + ": claiming interface " + std::to_string(interface) + ": " +
                                                    TextOfError(error) + "; " + Remedy(error, driver));
    claimed_.push_back(interface);
    LogDevice(CAM_LOG_LEVEL_DEBUG, "%s: interface %d claimed", name_.c_str(), interface);
}

std::string LibusbHandle::Text(std::uint8_t number)
{
    if (number == 0 || isMute_)
        return {};
    unsigned char bytes[255];
    const auto read = [&](std::uint8_t index) -> std::span<const unsigned char> {
        const int length = libusb_get_string_descriptor(handle_, index, language_, bytes, sizeof bytes);
        if (length >= 0)
            return std::span<const unsigned char>(bytes).first(static_cast<std::size_t>(length));
        LogDevice(CAM_LOG_LEVEL_WARN, "%s: reading text %u: %s", name_.c_str(), unsigned{index},
                  TextOfError(length).c_str());
        isMute_ = length == LIBUSB_ERROR_TIMEOUT || length == LIBUSB_ERROR_NO_DEVICE;
        return {};
    };
    if (language_ == 0) {
        const auto languages = read(0);
        language_ = languages.size() >= 4 ? static_cast<std::uint16_t>(languages[2] | languages[3] << 8) : english;
    }
    return isMute_ ? std::string() : TextOfDescriptor(read(number));
}

} // namespace Orvi::U3v
