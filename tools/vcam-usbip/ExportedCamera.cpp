#include "ExportedCamera.h"

#include <chrono>
#include <cstdio>

namespace Orvi::UsbIp {
namespace {
// A camera tells that it is gone, but not that it is back.
constexpr std::chrono::milliseconds s_plugLook{10};
} // namespace

/// Shows a session to Stop() while it runs.
class ExportedCamera::Use {
  public:
    Use(ExportedCamera &camera, Session &session) : camera_(camera)
    {
        const std::lock_guard lock(camera_.mutex_);
        camera_.session_ = &session;
        // What happened before the session could notice it:
        if (camera_.isStopped_ || !camera_.camera_->IsPlugged())
            session.Stop();
    }
    ~Use()
    {
        const std::lock_guard lock(camera_.mutex_);
        camera_.session_ = nullptr;
        camera_.isReserved_ = false;
    }
    Use(const Use &) = delete;
    Use &operator=(const Use &) = delete;

  private:
    ExportedCamera &camera_;
};

bool ExportedCamera::IsAvailable()
{
    const std::lock_guard lock(mutex_);
    return !isReserved_ && !isStopped_ && camera_->IsPlugged();
}

bool ExportedCamera::Reserve()
{
    const std::lock_guard lock(mutex_);
    if (isReserved_ || isStopped_ || !camera_->IsPlugged())
        return false;
    isReserved_ = true;
    return true;
}

Session::End ExportedCamera::Serve(Socket socket, const std::function<void()> &onConfigured)
{
    struct PowerOff {
        Vcam::VirtualCamera &camera;
        ~PowerOff()
        {
            if (!camera.IsPlugged())
                return;
            camera.Unplug();
            camera.Plug();
        }
    };
    const PowerOff powerOff{*camera_};
    Session session(*camera_, std::move(socket));
    const Use use(*this, session);
    const Session::End end = session.Run(onConfigured);
    return end == Session::End::Stopped && !camera_->IsPlugged() ? Session::End::DeviceGone : end;
}

bool ExportedCamera::AwaitReplug()
{
    std::unique_lock lock(mutex_);
    while (!isStopped_ && (isReserved_ || !camera_->IsPlugged()))
        changed_.wait_for(lock, s_plugLook);
    isReserved_ = !isStopped_;
    return isReserved_;
}

void ExportedCamera::Stop()
{
    const std::lock_guard lock(mutex_);
    isStopped_ = true;
    changed_.notify_all();
    if (session_ != nullptr)
        session_->Stop();
}

void Say(const Vcam::UsbIdentity &camera, const std::string &what)
{
    std::printf("%s: %s\n", camera.serial.c_str(), what.c_str());
    std::fflush(stdout);
}

void Complain(const std::string &what) { std::fprintf(stderr, "orvi-vcam-usbip: %s\n", what.c_str()); }

} // namespace Orvi::UsbIp
