#include "tests/u3v/MakeLink.h"
#include "tests/usb/FakeBus.h"
#include "u3v/usb/LibusbDevice.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace Orvi::Test {
namespace {

/// After all tests nothing is left open, and nothing was done that a real bus would not bear.
class BusAtRest : public testing::Environment {
  public:
    void TearDown() override
    {
        const auto counts = FakeBus::Instance().Count();
        EXPECT_EQ(counts.handles, 0);
        EXPECT_EQ(counts.claims, 0);
        EXPECT_EQ(counts.transfers, 0);
        EXPECT_EQ(counts.references, 0);
        EXPECT_EQ(counts.hotplugCallbacks, 0);
        EXPECT_EQ(counts.lists, 0);
        EXPECT_EQ(counts.configurations, 0);
        EXPECT_THAT(FakeBus::Instance().Mistakes(), testing::IsEmpty());
    }
};

[[maybe_unused]] const auto *const busAtRest = testing::AddGlobalTestEnvironment(new BusAtRest);

} // namespace

std::unique_ptr<U3v::UsbLink> MakeLink(const std::shared_ptr<Vcam::UsbFunction> &device)
{
    static std::uint8_t port = 0;
    FakeUsbDevice script;
    script.function = device;
    script.ports = {++port};
    const auto text = [](const std::string &t) { return std::u16string(t.begin(), t.end()); };
    script.texts[7] = text(device->Identity().serial);
    const libusb_device &plugged = FakeBus::Instance().Plug(script);
    auto &context = U3v::LibusbContext::Instance();
    for (const auto &candidate : context.Devices())
        if (candidate.get() == &plugged)
            return U3v::LibusbDevice::Describe(context, candidate)->Open();
    throw std::runtime_error("the device is not on the bus");
}

} // namespace Orvi::Test
