#pragma once
// The process's way into libusb: one context, and one thread that completes the transfers of all links and tells them
// when their devices have left. The thread runs while links are open, and sleeps in the kernel.

#include "u3v/usb/Libusb.h"
#include "u3v/usb/Sysfs.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Orvi::U3v {

class LibusbContext {
  public:
    /// A link to a device.
    class User {
      public:
        /// The device has left. On the event thread; must neither wait nor call the context.
        virtual void OnDeviceLeft() noexcept = 0;

      protected:
        ~User() = default;
    };
    using Device = std::shared_ptr<libusb_device>;

    /// That of the process; it is never destroyed.
    static LibusbContext &Instance();

    explicit LibusbContext(Sysfs sysfs = Sysfs()) : sysfs_(std::move(sysfs)) {}
    LibusbContext(const LibusbContext &) = delete;
    LibusbContext &operator=(const LibusbContext &) = delete;
    /// No device and no user may be left.
    ~LibusbContext();

    /// All USB devices that are attached now. None when the system has no USB.
    std::vector<Device> Devices();

    const Sysfs &System() const { return sysfs_; }

    /// While a device has a user, its transfers complete. Throws StatusError.
    void AddUser(libusb_device *device, User &user);
    /// Afterwards the user is told nothing more. Not on the event thread.
    void RemoveUser(User &user);
    bool HasUser(libusb_device *device) const;
    std::size_t UserCount() const;

  private:
    static int LIBUSB_CALL OnHotplug(libusb_context *, libusb_device *device, libusb_hotplug_event event, void *self);
    bool Initialize();
    void StartThread();
    void StopThread();
    void HandleEvents() noexcept;

    const Sysfs sysfs_;
    std::mutex lifeMutex_; // of context_ and thread_
    libusb_context *context_ = nullptr;
    libusb_hotplug_callback_handle hotplug_ = 0;
    bool hasHotplug_ = false;  // what this libusb can
    bool isListening_ = false; // the callback is registered
    std::thread thread_;
    std::atomic<bool> isStopping_ = false;

    struct Use {
        libusb_device *device;
        User *user;
    };
    mutable std::mutex usersMutex_; // held while a user is told
    std::vector<Use> users_;
};

/// "2-1.4": bus and ports on the way to the device, as sysfs names it.
std::string BusPathOf(libusb_device *device);

} // namespace Orvi::U3v
