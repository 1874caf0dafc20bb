#include "Attachment.h"

namespace Orvi::UsbIp {

Attachment::Attachment(std::shared_ptr<Vcam::VirtualCamera> camera, unsigned deviceId, const Vhci &vhci,
                       std::function<void()> onEnd)
    : camera_(std::move(camera)), deviceId_(deviceId), vhci_(vhci), onEnd_(std::move(onEnd))
{
    if (!camera_.Reserve())
        throw std::runtime_error("the camera " + camera_.Identity().serial + " is unplugged");
    Vhci::Plug plug = vhci_.Attach(camera_.Identity().speed, deviceId_);
    port_ = plug.port;
    thread_ = std::thread([this, first = std::move(plug)]() mutable { Run(std::move(first)); });
}

Attachment::~Attachment()
{
    camera_.Stop();
    thread_.join();
    if (hasFailed_)
        return;
    try {
        vhci_.AwaitFree(port_, busId_); // who starts this program anew at once finds the port free
    } catch (const std::exception &gone) {
        Complain(gone.what()); // the controller itself was removed
    }
}

void Attachment::Run(Vhci::Plug plug)
{
    try {
        while (ServeOnce(std::move(plug)) && camera_.AwaitReplug())
            plug = vhci_.AttachAgain(camera_.Identity().speed, deviceId_, port_, busId_);
    } catch (const std::exception &fault) {
        Complain(camera_.Identity().serial + ": " + fault.what());
        hasFailed_ = true;
    }
    onEnd_();
}

/// Answers whether the camera may come back.
bool Attachment::ServeOnce(Vhci::Plug plug)
{
    port_ = plug.port;
    const auto say = [this](const std::string &what) { Say(camera_.Identity(), what); };
    const std::string where = "port " + std::to_string(plug.port);
    const auto onConfigured = [&] {
        busId_ = vhci_.BusId(port_);
        say("plugged into " + where + " as " + busId_);
    };
    switch (camera_.Serve(std::move(plug.socket), onConfigured)) {
    case Session::End::HostLeft:
        say("detached from " + where + " by the kernel");
        return false;
    case Session::End::DeviceGone:
        say("unplugged from " + where);
        return true;
    case Session::End::Stopped:
        break;
    }
    say("pulled out of " + where);
    return false;
}

} // namespace Orvi::UsbIp
