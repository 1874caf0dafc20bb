#include "u3v/usb/Enumerator.h"

#include "u3v/core/LastError.h"
#include "u3v/core/Log.h"
#include "u3v/usb/LibusbDevice.h"
#include "u3v/usb/LoopbackLink.h"
#include "vcam/Complaint.h"
#include "vcam/VirtualCamera.h"

#include <cstdlib>
#include <mutex>
#include <string>
#include <string_view>

namespace Orvi::U3v {
namespace {

class VirtualDevice : public UsbDevice {
  public:
    explicit VirtualDevice(std::shared_ptr<Vcam::VirtualCamera> camera) : camera_(std::move(camera)) {}
    DeviceIdentity Identity() const override { return LoopbackLink::IdentityOf(camera_->Identity()); }
    std::unique_ptr<UsbLink> Open() override { return std::make_unique<LoopbackLink>(camera_); }

  private:
    const std::shared_ptr<Vcam::VirtualCamera> camera_;
};

bool IsKindWanted(std::string_view kind)
{
    const char *value = std::getenv("ORVI_TRANSPORT");
    if (value == nullptr || *value == '\0')
        return true;
    for (std::string_view rest = value; !rest.empty();) {
        const std::size_t comma = rest.find(',');
        if (rest.substr(0, comma) == kind)
            return true;
        rest.remove_prefix(comma == std::string_view::npos ? rest.size() : comma + 1);
    }
    return false;
}

/// Puts into the log, and where applications ask why, what virtual cameras print: a description file with a mistake, an
/// image that cannot be read.
void ListenToVirtualCameras()
{
    static std::once_flag s_once;
    std::call_once(s_once, [] {
        Vcam::ListenToComplaints([](const std::string &text) {
            LogDevice(CAM_LOG_LEVEL_ERROR, "%s", text.c_str());
            SetLastGenICamError(text);
        });
    });
}

} // namespace

std::vector<std::shared_ptr<UsbDevice>> EnumerateDevices()
{
    std::vector<std::shared_ptr<UsbDevice>> devices;
    if (IsKindWanted("usb"))
        devices = EnumerateUsbDevices(LibusbContext::Instance());
    if (IsKindWanted("virtual")) {
        ListenToVirtualCameras();
        for (const auto &camera : Vcam::VirtualBench::Instance().Cameras())
            if (camera->IsPlugged())
                devices.push_back(std::make_shared<VirtualDevice>(camera));
    }
    return devices;
}

} // namespace Orvi::U3v
