#pragma once
// The cameras that are attached, numbered from 1 in the order of the last enumeration, and which of them are open.

#include "u3v/protocol/Camera.h"

#include <memory>
#include <mutex>
#include <vector>

namespace Orvi::U3v {

class CameraRegistry {
  public:
    static CameraRegistry &Instance();

    /// Looks for cameras and numbers them anew. Gives their number.
    std::uint32_t Enumerate();

    /// What the camera says of itself now. Throws StatusError(0x6) for a number that is not given.
    DeviceIdentity IdentityOf(std::uint32_t number);

    struct Opened {
        std::uint64_t handle;
        bool wasOpen; ///< the handle is that of an earlier open, and nothing was done
    };
    /// A camera that was unplugged and plugged again opens anew, while its old handle goes on failing.
    Opened Open(std::uint32_t number, const Camera::Options &options);
    /// Throws StatusError(0x7) for a handle that is not open.
    void Close(std::uint64_t handle);
    void CloseAll();

  private:
    std::shared_ptr<UsbDevice> DeviceAt(std::uint32_t number);

    std::mutex mutex_; // of devices_
    std::vector<std::shared_ptr<UsbDevice>> devices_;
    std::mutex openMutex_;
};

} // namespace Orvi::U3v
