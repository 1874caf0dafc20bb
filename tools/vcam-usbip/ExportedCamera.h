#pragma once
// A virtual camera that one host at a time can have.

#include "Session.h"
#include "vcam/VirtualCamera.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace Orvi::UsbIp {

class ExportedCamera {
  public:
    explicit ExportedCamera(std::shared_ptr<Vcam::VirtualCamera> camera) : camera_(std::move(camera)) {}

    Vcam::UsbIdentity Identity() const { return camera_->Identity(); }
    bool IsAvailable();
    /// Reserves it for Serve(); false while it is unplugged, another host has it, or after Stop().
    bool Reserve();
    /// Serves the host at the other end of the socket until one of both leaves; what Session::Run() throws. A camera
    /// that its host has left starts anew, as one that was pulled out does.
    Session::End Serve(Socket socket, const std::function<void()> &onConfigured);
    /// Waits until the unplugged camera is plugged in again and reserves it; false after Stop().
    bool AwaitReplug();
    /// Takes the camera away from its host for good.
    void Stop();

  private:
    class Use;

    const std::shared_ptr<Vcam::VirtualCamera> camera_;
    std::mutex mutex_;
    std::condition_variable changed_;
    Session *session_ = nullptr;
    bool isReserved_ = false, isStopped_ = false;
};

/// Prints a line on a camera, e.g. that it was plugged in.
void Say(const Vcam::UsbIdentity &camera, const std::string &what);
/// Prints a fault.
void Complain(const std::string &what);

} // namespace Orvi::UsbIp
