#pragma once
// A camera on a real bus, as an enumeration finds it.

#include "u3v/usb/LibusbHandle.h"
#include "u3v/usb/UsbDescriptors.h"

#include <memory>

namespace Orvi::U3v {

class LibusbDevice : public UsbDevice {
  public:
    /// Null when the device is no camera.
    static std::shared_ptr<LibusbDevice> Describe(LibusbContext &context, LibusbContext::Device device);

    LibusbDevice(LibusbContext &context, LibusbContext::Device device, const CameraInterfaces &interfaces);

    const std::string &BusPath() const { return busPath_; }
    DeviceIdentity Identity() const override { return identity_; }
    std::unique_ptr<UsbLink> Open() override;

  private:
    std::string Name() const;
    void ReadDescriptors();
    void ReadTexts(LibusbHandle &handle);
    void ReadTextsOfSystem();
    void SetProblem(const std::string &shortly, const std::string &text);

    LibusbContext &context_;
    const LibusbContext::Device device_;
    const CameraInterfaces interfaces_;
    const std::string busPath_;
    const std::string nodePath_;
    libusb_device_descriptor descriptor_{};
    DeviceIdentity identity_;
};

/// The cameras on the bus, by bus path.
std::vector<std::shared_ptr<UsbDevice>> EnumerateUsbDevices(LibusbContext &context);

} // namespace Orvi::U3v
