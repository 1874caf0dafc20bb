#include "u3v/usb/Sysfs.h"

#include <charconv>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace Orvi::U3v {
namespace {

constexpr std::size_t kernelDefault = 16, mebibyte = 1 << 20;

std::string FirstLine(const std::string &path)
{
    std::string line;
    std::ifstream file(path);
    std::getline(file, line);
    return line;
}

} // namespace

std::string Sysfs::Attribute(const std::string &busPath, const char *name) const
{
    return FirstLine(root_ + "/bus/usb/devices/" + busPath + '/' + name);
}

std::string Sysfs::Driver(const std::string &busPath, int configuration, int interface) const
{
    std::error_code error;
    const auto driver =
        std::filesystem::read_symlink(root_ + "/bus/usb/devices/" + busPath + ':' + std::to_string(configuration) +
                                          '.' + std::to_string(interface) + "/driver",
                                      error);
    return driver.filename();
}

std::size_t Sysfs::UsbfsMemory() const
{
    const std::string text = FirstLine(root_ + "/module/usbcore/parameters/usbfs_memory_mb");
    std::size_t megabytes = kernelDefault;
    std::from_chars(text.data(), text.data() + text.size(), megabytes);
    return megabytes == 0 ? SIZE_MAX : megabytes * mebibyte;
}

} // namespace Orvi::U3v
