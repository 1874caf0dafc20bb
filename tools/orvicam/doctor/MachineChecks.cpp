#include "Checks.h"

#include "tools/orvicam/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Orvi::Tool {
namespace {

constexpr unsigned superSpeed = 5000;                           // Mbit/s
constexpr std::size_t memoryOfACamera = 16, enoughMemory = 256; // MB

bool MayOpen(const UsbCamera &camera, const Machine &machine)
{
    return access(machine.At(camera.node).c_str(), R_OK | W_OK) == 0;
}

std::string UserName(uid_t uid)
{
    const passwd *entry = getpwuid(uid);
    return entry != nullptr ? entry->pw_name : std::to_string(uid);
}

std::string GroupName(gid_t gid)
{
    const group *entry = getgrgid(gid);
    return entry != nullptr ? entry->gr_name : std::to_string(gid);
}

/// "root:plugdev 0660"
std::string OwnerText(const struct stat &facts)
{
    char mode[8];
    std::snprintf(mode, sizeof mode, "%04o", static_cast<unsigned>(facts.st_mode & 07777));
    return UserName(facts.st_uid) + ":" + GroupName(facts.st_gid) + " " + mode;
}

Finding CheckPermission(const UsbCamera &camera, const Machine &machine, const UdevRule &rule, const std::string &sdk)
{
    const std::string check = "permission of " + camera.Name();
    struct stat facts;
    if (stat(machine.At(camera.node).c_str(), &facts) != 0)
        return {Verdict::Fail, check, "its device file " + camera.node + ": " + std::strerror(errno),
                "plug the camera in again; in a container say --device=/dev/bus/usb"};
    const std::string file = camera.node + " (" + OwnerText(facts) + ")";
    if (MayOpen(camera, machine))
        return {Verdict::Ok, check, "you may open " + file};
    const std::string user = UserName(getuid());
    std::string remedy;
    if (!rule.Works())
        remedy = InstallRuleCommand(sdk);
    else if ((facts.st_mode & 0060) == 0060 && facts.st_gid != 0)
        remedy = "sudo usermod -aG " + GroupName(facts.st_gid) + " " + user + ", then log in again";
    else
        remedy = reloadRulesCommand;
    return {Verdict::Fail, check, user + " may not open " + file, remedy};
}

Finding CheckLink(const UsbCamera &camera)
{
    const std::string check = "link of " + camera.Name();
    const std::string rate = std::to_string(camera.speed) + " Mbit/s at port " + camera.port;
    if (camera.speed >= superSpeed)
        return {Verdict::Ok, check, rate};
    return {Verdict::Warn, check, rate + ": a USB 2 link, on which images come slowly or not at all",
            "use a USB 3 port, cable and hub; lsusb -t shows the rates"};
}

Findings CheckHolders(const UsbCamera &camera)
{
    Findings findings;
    const std::string check = "driver of " + camera.Name();
    for (const std::string &driver : camera.drivers) {
        const std::size_t end = driver.find(' ');
        findings.push_back({Verdict::Warn, check,
                            "the kernel driver " + driver + " holds the camera; the library takes it over where it can",
                            "echo " + driver.substr(driver.rfind(' ') + 1) + " | sudo tee /sys/bus/usb/drivers/" +
                                driver.substr(0, end) + "/unbind"});
    }
    if (camera.isInUse)
        findings.push_back({Verdict::Warn, check, "a program is using the camera: another one cannot open it",
                            "sudo fuser -v " + camera.node});
    return findings;
}

} // namespace

Finding CheckKernel(const Machine &machine, Wanted wanted)
{
    const Verdict missing = wanted == Wanted::RealCameras ? Verdict::Fail : Verdict::Warn;
    if (!machine.Exists("/sys/bus/usb"))
        return {missing, "kernel", "there is no USB here: /sys/bus/usb is missing",
                "sudo modprobe usbcore; a container needs the host's /sys and --device=/dev/bus/usb"};
    if (!machine.Exists("/dev/bus/usb"))
        return {missing, "kernel", "programs cannot reach USB devices: /dev/bus/usb is missing",
                "sudo modprobe usbcore; a container needs --device=/dev/bus/usb"};
    return {Verdict::Ok, "kernel", "USB is there: /sys/bus/usb, /dev/bus/usb"};
}

Finding CheckVirtualBus(const Machine &machine)
{
    // It is needed for plugging virtual cameras into the kernel alone, so its absence is no fault.
    const bool isThere = !machine.Names("/sys/devices/platform/vhci_hcd.0").empty();
    return {Verdict::Ok, "virtual bus",
            isThere ? "vhci_hcd is loaded: virtual cameras can be plugged into the kernel"
                    : "vhci_hcd is not loaded; only to plug virtual cameras into the kernel: sudo modprobe vhci_hcd"};
}

Finding CheckUdevRule(const UdevRule &rule, const std::vector<UsbCamera> &cameras, const Machine &machine,
                      const std::string &sdk)
{
    if (rule.Works())
        return {Verdict::Ok, "udev rule", rule.path};
    // Access may have been given in another way.
    const bool isMissed =
        std::any_of(cameras.begin(), cameras.end(), [&](const UsbCamera &camera) { return !MayOpen(camera, machine); });
    return {isMissed ? Verdict::Fail : Verdict::Warn, "udev rule",
            rule.IsThere() ? rule.path + " " + rule.mistake
                           : "udev reads no rule for USB3 Vision cameras, which root alone may open then",
            InstallRuleCommand(sdk)};
}

Findings CheckUsbCamera(const UsbCamera &camera, const Machine &machine, const UdevRule &rule, const std::string &sdk)
{
    Findings findings = {CheckPermission(camera, machine, rule, sdk), CheckLink(camera)};
    for (Finding &finding : CheckHolders(camera))
        findings.push_back(std::move(finding));
    return findings;
}

Finding CheckUsbMemory(const Machine &machine, std::size_t cameras)
{
    const std::string path = "/sys/module/usbcore/parameters/usbfs_memory_mb";
    const std::string text = machine.Attribute(path);
    const auto limit = ParseInteger(text);
    if (!limit)
        return {Verdict::Ok, "usbfs memory", "the kernel tells no limit"};
    if (*limit == 0)
        return {Verdict::Ok, "usbfs memory", "no limit"};
    const std::size_t wanted = memoryOfACamera * std::max<std::size_t>(cameras, 1);
    if (static_cast<std::size_t>(*limit) >= wanted)
        return {Verdict::Ok, "usbfs memory", text + " MB for the transfers of all programs"};
    return {Verdict::Warn, "usbfs memory",
            text + " MB for the transfers of all programs, " + std::to_string(cameras) + " cameras want " +
                std::to_string(wanted) + " to lose no image",
            "echo " + std::to_string(std::max(enoughMemory, wanted)) + " | sudo tee " + path +
                " (for good: usbcore.usbfs_memory_mb=" + std::to_string(std::max(enoughMemory, wanted)) +
                " on the kernel's command line)"};
}

} // namespace Orvi::Tool
