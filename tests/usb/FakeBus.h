#pragma once
// A USB bus in memory behind the functions of libusb that the transport uses: tests script devices, refusals and
// completions, and see what was asked for. FakeLibusb.cpp defines those functions, and so keeps the real ones out of
// the program.

#include "vcam/UsbFunction.h"

#include <libusb.h>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace Orvi::Test {

using DescriptorBytes = std::vector<unsigned char>;

struct FakeEndpoint {
    std::uint8_t address = 0;
    std::uint8_t attributes = LIBUSB_TRANSFER_TYPE_BULK;
    std::uint16_t maxPacketSize = 1024;
};

struct FakeInterface {
    std::uint8_t number = 0, interfaceClass = 0xEF, subclass = 0x05, protocol = 0;
    std::vector<FakeEndpoint> endpoints;
    DescriptorBytes extra; ///< the descriptors behind the interface's own
};

/// A device-info descriptor whose texts are the string descriptors 1 to 8.
DescriptorBytes DeviceInfoBytes(std::size_t length = 20);

/// What a device is and how it answers. The default is a camera with all interfaces.
struct FakeUsbDevice {
    std::uint8_t bus = 2;
    std::vector<std::uint8_t> ports = {1};
    std::uint8_t address = 5;
    int speed = LIBUSB_SPEED_SUPER;
    std::vector<FakeInterface> interfaces = {{0, 0xEF, 5, 0, {{0x02}, {0x81}}, DeviceInfoBytes()},
                                             {1, 0xEF, 5, 1, {{0x83}}, {}},
                                             {2, 0xEF, 5, 2, {{0x85}}, {}}};
    std::uint8_t deviceTexts[3] = {2, 3, 7}; ///< manufacturer, product, serial number of the device descriptor
    std::map<std::uint8_t, std::u16string> texts = {{1, u"ORVI00000001"}, {2, u"Maker"},   {3, u"Model"},
                                                    {4, u"Family"},       {5, u"Version"}, {6, u"Remarks"},
                                                    {7, u"SN1"},          {8, u"Name"}};

    // Refusals, as libusb's error codes.
    int configurationError = 0, openError = 0, haltError = 0, resetResult = 0;
    std::map<int, int> claimErrors;         ///< by interface
    std::map<std::uint8_t, int> textErrors; ///< by number
    std::set<int> kernelDrivers;            ///< interfaces that a kernel driver holds
    std::size_t maxInFlight = SIZE_MAX;     ///< bytes; more is refused as LIBUSB_ERROR_NO_MEM
    std::size_t maxTransfer = SIZE_MAX;     ///< bytes of one transfer, likewise
    bool completesWhenUnplugged = true;     ///< else pending transfers are completed by their cancellation alone
    bool takesOut = true;                   ///< else OUT transfers pend until the test completes them

    /// Answers bulk transfers and halts in the place of the test.
    std::shared_ptr<Vcam::UsbFunction> function;
};

} // namespace Orvi::Test

struct libusb_context {
    bool isInterrupted = false;
};

struct libusb_device : Orvi::Vcam::UsbFunction::GoneObserver {
    void OnGone() noexcept override;

    Orvi::Test::FakeUsbDevice script;
    bool isAttached = true;
    std::size_t bytesInFlight = 0;
};

struct libusb_device_handle {
    libusb_device *device = nullptr;
    std::set<int> claimed;
    bool detachesDrivers = false;
};

namespace Orvi::Test {

struct FakeBus {
    static FakeBus &Instance();

    /// Forgets all devices and counts. Nothing may be open.
    void Clear();

    libusb_device &Plug(const FakeUsbDevice &script);
    /// Takes the device from the bus; with hot-plug, those who registered for it are told.
    void Unplug(libusb_device &device);

    // Of the transfers that pend on an endpoint, the oldest first.
    std::size_t Pending(const libusb_device &device, std::uint8_t endpoint) const;
    void WaitPending(const libusb_device &device, std::uint8_t endpoint, std::size_t count);
    void Complete(libusb_device &device, std::uint8_t endpoint, libusb_transfer_status status,
                  const std::vector<std::byte> &data = {});
    const unsigned char *Memory(const libusb_device &device, std::uint8_t endpoint) const;

    /// The next cancellation comes too late: the transfer is complete already, with this data.
    void OvertakeNextCancel(std::vector<std::byte> data);

    // What the system is like.
    int initError = 0;
    bool hasHotplug = true;
    int hotplugError = 0;
    int eventError = 0; ///< of the next waits for events, until it is 0 again

    // What was asked for.
    struct Counts {
        int contexts = 0, references = 0, configurations = 0, lists = 0, handles = 0, claims = 0, transfers = 0,
            hotplugCallbacks = 0; // all of these are back at 0 when nothing is leaked
        int opened = 0, waits = 0, textsAsked = 0, driversDetached = 0, driversAttached = 0, resets = 0;
    };
    Counts Count() const;
    std::vector<std::string> Log() const; ///< "halt 0x85", "clear 0x85", "claim 0", "release 0", "reset"
    std::set<std::thread::id> EventThreads() const;
    /// What no correct caller does: transfers pending at close, freed while pending, and the like.
    std::vector<std::string> Mistakes() const;

    // From here on, of the two sources alone.

    struct Transfer {
        bool isPending = false;
        bool isDone = false; // its completion waits for the event thread
        std::unique_ptr<Vcam::InTransfer> in;
    };
    struct Callback {
        libusb_hotplug_callback_fn function;
        void *data;
    };

    void Queue(libusb_transfer *transfer, libusb_transfer_status status, std::size_t length);
    libusb_transfer *Oldest(const libusb_device &device, std::uint8_t endpoint) const;
    void Mistake(const std::string &text) { mistakes.push_back(text); }

    mutable std::mutex mutex;
    std::condition_variable changed;
    std::mutex eventMutex; // held by the thread that handles events
    std::deque<std::unique_ptr<libusb_device>> devices;
    std::map<libusb_transfer *, Transfer> transfers;
    std::vector<libusb_transfer *> pending; // in the order of posting
    std::deque<std::function<void()>> events;
    std::map<int, Callback> callbacks;
    int nextCallback = 1;
    Counts counts;
    std::vector<std::string> log, mistakes;
    std::set<std::thread::id> eventThreads;
    std::vector<std::byte> overtaking;
    bool overtakes = false;
};

} // namespace Orvi::Test
