#include "u3v/protocol/CameraRegistry.h"

#include "u3v/protocol/CameraTable.h"
#include "u3v/usb/Enumerator.h"

namespace Orvi::U3v {

CameraRegistry &CameraRegistry::Instance()
{
    static CameraRegistry registry;
    return registry;
}

std::uint32_t CameraRegistry::Enumerate()
{
    auto devices = EnumerateDevices();
    std::lock_guard lock(mutex_);
    devices_ = std::move(devices);
    return static_cast<std::uint32_t>(devices_.size());
}

DeviceIdentity CameraRegistry::IdentityOf(std::uint32_t number) { return DeviceAt(number)->Identity(); }

CameraRegistry::Opened CameraRegistry::Open(std::uint32_t number, const Camera::Options &options)
{
    const auto device = DeviceAt(number);
    const std::string key = device->Identity().key;
    std::lock_guard lock(openMutex_);
    for (const auto &[handle, camera] : Cameras().All())
        if (camera->Link().Identity().key == key && !camera->IsGone())
            return {handle, true};
    return {Cameras().Insert(std::make_shared<Camera>(device->Open(), options)), false};
}

void CameraRegistry::Close(std::uint64_t handle)
{
    std::lock_guard lock(openMutex_);
    Cameras().Remove(handle)->Close();
}

void CameraRegistry::CloseAll()
{
    for (const auto &[handle, camera] : Cameras().All())
        Close(handle);
}

std::shared_ptr<UsbDevice> CameraRegistry::DeviceAt(std::uint32_t number)
{
    std::lock_guard lock(mutex_);
    if (number == 0 || number > devices_.size())
        throw StatusError(CAM_API_STS_INVALID_CAMERA_INDEX, "no camera of number " + std::to_string(number));
    return devices_[number - 1];
}

} // namespace Orvi::U3v
