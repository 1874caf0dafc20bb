#pragma once
// A USB device that is open, with the interfaces claimed on it. Gives all of it back at its end.

#include "u3v/usb/LibusbContext.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Orvi::U3v {

class LibusbHandle {
  public:
    /// `name` stands for the device in texts. Throws StatusError, as Claim() does, with a text that says what to do.
    LibusbHandle(const LibusbContext &context, LibusbContext::Device device, std::string name);
    LibusbHandle(const LibusbHandle &) = delete;
    LibusbHandle &operator=(const LibusbHandle &) = delete;
    ~LibusbHandle();

    /// A kernel driver that holds the interface gets it back at the end.
    void Claim(int configuration, int interface);

    libusb_device_handle *Get() const { return handle_; }
    const LibusbContext::Device &Device() const { return device_; }
    const std::string &Name() const { return name_; }

    /// A string descriptor as UTF-8. Empty for number 0, and when the device does not tell.
    std::string Text(std::uint8_t number);

  private:
    const Sysfs &sysfs_;
    const LibusbContext::Device device_;
    const std::string name_;
    libusb_device_handle *handle_ = nullptr;
    std::vector<int> claimed_;
    bool isMute_ = false; // a string was not answered in time: no more are asked for
    std::uint16_t language_ = 0;
};

/// Why a device cannot be used, and what to do about it. `driver` is the one that sysfs names, or empty.
std::string Remedy(int error, const std::string &driver);

} // namespace Orvi::U3v
