#include "Vhci.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace Orvi::UsbIp {
namespace {

constexpr unsigned s_freeState = 4;

/// What Linux calls a device's speed, and the hub that has ports for it.
struct KernelSpeed {
    unsigned code;
    const char *hub;
};

KernelSpeed KernelSpeedOf(Vcam::LinkSpeed speed)
{
    switch (speed) {
    case Vcam::LinkSpeed::Low:
        return {1, "hs"};
    case Vcam::LinkSpeed::Full:
        return {2, "hs"};
    case Vcam::LinkSpeed::High:
        return {3, "hs"};
    case Vcam::LinkSpeed::Super:
    case Vcam::LinkSpeed::SuperPlus: // the controller knows no faster one
        break;
    }
    return {5, "ss"};
}

} // namespace

std::vector<Vhci::Port> Vhci::Ports() const
{
    std::vector<Port> ports;
    // Controllers after the first have their ports in status.1 and so on; all are attached through the first.
    for (unsigned controller = 0;; ++controller) {
        const std::string name = controller == 0 ? "status" : "status." + std::to_string(controller);
        std::ifstream file(folder_ / name);
        if (!file && controller == 0)
            throw NoController("this kernel has no virtual USB controller (" + (folder_ / name).string() +
                               " is missing); load it with: sudo modprobe vhci_hcd");
        if (!file)
            return ports;
        std::string line;
        std::getline(file, line); // the names of the columns
        while (std::getline(file, line)) {
            Port port;
            std::string speed, device, descriptor;
            if (std::istringstream(line) >> port.hub >> port.number >> port.state >> speed >> device >> descriptor >>
                port.busId)
                ports.push_back(port);
        }
    }
}

Vhci::Plug Vhci::Attach(Vcam::LinkSpeed speed, unsigned deviceId) const
{
    if (auto plug = AttachToOneOf(Ports(), speed, deviceId))
        return std::move(*plug);
    throw std::runtime_error(std::string("all ports of vhci_hcd's ") + KernelSpeedOf(speed).hub +
                             " hub are in use; see " + (folder_ / "status").string() +
                             " and end the programs that use them");
}

Vhci::Plug Vhci::AttachAgain(Vcam::LinkSpeed speed, unsigned deviceId, unsigned port, const std::string &busId) const
{
    if (AwaitFree(port, busId)) {
        std::vector<Port> ports = Ports();
        std::erase_if(ports, [port](const Port &other) { return other.number != port; });
        if (auto plug = AttachToOneOf(ports, speed, deviceId))
            return std::move(*plug);
    }
    return Attach(speed, deviceId);
}

std::optional<Vhci::Plug> Vhci::AttachToOneOf(const std::vector<Port> &ports, Vcam::LinkSpeed speed,
                                              unsigned deviceId) const
{
    const KernelSpeed kernelSpeed = KernelSpeedOf(speed);
    auto [ours, kernels] = Socket::Pair();
    for (const Port &port : ports) {
        // Another program may be faster: then the next port is tried.
        if (port.hub == kernelSpeed.hub && port.state == s_freeState &&
            TryAttach(port, kernels.Get(), deviceId, kernelSpeed.code))
            return Plug{port.number, std::move(ours)};
    }
    return std::nullopt;
}

bool Vhci::TryAttach(const Port &port, int descriptor, unsigned deviceId, unsigned speed) const
{
    const std::filesystem::path path = folder_ / "attach";
    const Socket file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (file.Get() < 0 && (errno == EACCES || errno == EPERM))
        throw NotPermitted("cannot write to " + path.string() + ": only root may plug devices in; use sudo");
    if (file.Get() < 0)
        throw std::system_error(errno, std::generic_category(), "cannot open " + path.string());
    std::ostringstream text;
    text << port.number << ' ' << descriptor << ' ' << deviceId << ' ' << speed;
    if (write(file.Get(), text.str().data(), text.str().size()) >= 0)
        return true;
    if (errno != EBUSY)
        throw std::system_error(errno, std::generic_category(),
                                "the kernel refuses '" + text.str() + "' in " + path.string());
    return false;
}

std::string Vhci::BusId(unsigned number) const
{
    const std::vector<Port> ports = Ports();
    const auto port = std::ranges::find(ports, number, &Port::number);
    return port == ports.end() ? "" : port->busId;
}

bool Vhci::AwaitFree(unsigned number, const std::string &busId) const
{
    constexpr std::chrono::milliseconds look{10}, patience{10000};
    const auto isThere = [&] { return !busId.empty() && std::filesystem::exists(devices_ / busId); };
    for (auto waited = look; waited < patience; waited += look) {
        const std::vector<Port> ports = Ports();
        const auto port = std::ranges::find(ports, number, &Port::number);
        if (port == ports.end())
            return false;
        if (port->state == s_freeState && !isThere())
            return true;
        std::this_thread::sleep_for(look);
    }
    return false;
}

} // namespace Orvi::UsbIp
