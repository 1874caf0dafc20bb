#pragma once
// What the kernel tells of USB devices to everybody, with or without the permission to open them.

#include <cstddef>
#include <string>

namespace Orvi::U3v {

class Sysfs {
  public:
    /// `root` is where sysfs is mounted.
    explicit Sysfs(std::string root = "/sys") : root_(std::move(root)) {}

    /// An attribute of the device at a bus path ("2-1.4"): "manufacturer", "product", "serial". Empty when there is
    /// none.
    std::string Attribute(const std::string &busPath, const char *name) const;

    /// The driver that an interface of the device is bound to, "usbfs" when a program has claimed it. Empty for none.
    std::string Driver(const std::string &busPath, int configuration, int interface) const;

    /// What all transfers of all programs may hold together, in bytes: SIZE_MAX when there is no limit.
    std::size_t UsbfsMemory() const;

  private:
    const std::string root_;
};

} // namespace Orvi::U3v
