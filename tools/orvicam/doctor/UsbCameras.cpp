#include "UsbCameras.h"

#include <cstdio>
#include <cstdlib>

namespace Orvi::Tool {
namespace {

const std::string devices = "/sys/bus/usb/devices/";

/// Class, subclass and protocol of a device or an interface, e.g. "ef0201".
std::string ClassOf(const Machine &machine, const std::string &name, const std::string &kind)
{
    std::string text;
    for (const char *part : {"Class", "SubClass", "Protocol"})
        text += machine.Attribute(devices + name + "/b" + kind + part);
    return text;
}

unsigned Number(const std::string &text) { return static_cast<unsigned>(std::strtoul(text.c_str(), nullptr, 10)); }

/// The driver that is bound to an interface; empty when none is.
std::string DriverOf(const Machine &machine, const std::string &interface)
{
    std::error_code error;
    const auto link = std::filesystem::read_symlink(machine.At(devices + interface + "/driver"), error);
    return link.filename().string();
}

UsbCamera Describe(const Machine &machine, const std::string &name, const std::vector<std::string> &interfaces)
{
    const auto attribute = [&](const char *what) { return machine.Attribute(devices + name + "/" + what); };
    UsbCamera camera;
    camera.port = name;
    camera.serial = attribute("serial");
    camera.product = attribute("manufacturer") + " " + attribute("product");
    camera.speed = Number(attribute("speed"));
    char node[64];
    std::snprintf(node, sizeof node, "/dev/bus/usb/%03u/%03u", Number(attribute("busnum")),
                  Number(attribute("devnum")));
    camera.node = node;
    for (const std::string &interface : interfaces) {
        const std::string driver = DriverOf(machine, interface);
        if (driver == "usbfs")
            camera.isInUse = true;
        else if (!driver.empty())
            camera.drivers.push_back(driver + " at " + interface);
    }
    return camera;
}

} // namespace

std::vector<UsbCamera> FindUsbCameras(const Machine &machine)
{
    const std::vector<std::string> names = machine.Names(devices);
    std::vector<UsbCamera> cameras;
    for (const std::string &name : names) {
        if (ClassOf(machine, name, "Device") != "ef0201")
            continue;
        // Control, event and stream interface of a camera are ef/05/00 to 02; other functions may stand beside them.
        std::vector<std::string> interfaces;
        bool isCamera = false;
        for (const std::string &interface : names) {
            if (!interface.starts_with(name + ":"))
                continue;
            const std::string kind = ClassOf(machine, interface, "Interface");
            isCamera = isCamera || kind == "ef0500";
            if (kind.starts_with("ef05"))
                interfaces.push_back(interface);
        }
        if (isCamera)
            cameras.push_back(Describe(machine, name, interfaces));
    }
    return cameras;
}

} // namespace Orvi::Tool
