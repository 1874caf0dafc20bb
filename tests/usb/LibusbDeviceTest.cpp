// How cameras on the bus are found, described and refused.

#include "tests/usb/UsbTest.h"
#include "u3v/usb/Enumerator.h"

#include <cstdlib>

namespace Orvi::Test {
namespace {

using namespace U3v;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using LibusbDeviceTest = UsbTest;

StatusError FailureOf(UsbDevice &device)
{
    try {
        device.Open();
    } catch (const StatusError &error) {
        return error;
    }
    return {CAM_API_STS_SUCCESS, "it opened"};
}

TEST_F(LibusbDeviceTest, CamerasComeInTheOrderOfTheirBusPaths)
{
    const auto plug = [&](std::uint8_t busNumber, std::vector<std::uint8_t> ports, const char16_t *serial) {
        FakeUsbDevice script;
        script.bus = busNumber;
        script.ports = std::move(ports);
        script.texts[7] = serial;
        bus.Plug(script);
    };
    plug(2, {10}, u"2-10");
    plug(2, {9, 1}, u"2-9.1");
    plug(3, {1}, u"3-1");
    plug(2, {9}, u"2-9");
    plug(1, {4, 2, 1}, u"1-4.2.1");
    FakeUsbDevice stick;
    stick.interfaces = {{0, 0x08, 6, 0x50, {{0x81}, {0x02}}, {}}};
    bus.Plug(stick);
    FakeUsbDevice unreadable;
    unreadable.configurationError = LIBUSB_ERROR_IO;
    bus.Plug(unreadable);

    std::vector<std::string> serials;
    for (const auto &device : Enumerate())
        serials.push_back(device->Identity().serial);
    EXPECT_THAT(serials, ElementsAre("1-4.2.1", "2-9", "2-9.1", "2-10", "3-1"));
}

TEST_F(LibusbDeviceTest, IdentityIsThatOfTheDescriptors)
{
    FakeUsbDevice script;
    script.texts[6] = u"gr\u00FCn";
    bus.Plug(script);
    const DeviceIdentity identity = Enumerate().at(0)->Identity();
    EXPECT_EQ(identity.guid, "ORVI00000001");
    EXPECT_EQ(identity.manufacturer, "Maker");
    EXPECT_EQ(identity.model, "Model");
    EXPECT_EQ(identity.family, "Family");
    EXPECT_EQ(identity.deviceVersion, "Version");
    EXPECT_EQ(identity.manufacturerInfo, "gr\xC3\xBCn");
    EXPECT_EQ(identity.serial, "SN1");
    EXPECT_EQ(identity.userDefinedName, "Name");
    EXPECT_EQ(identity.u3vVersion, 0x00010002U);
    EXPECT_EQ(identity.maxTransferSize, 0x80000U);
    EXPECT_EQ(identity.key, "usb:2-1@5");
    EXPECT_EQ(identity.problem, "");
    EXPECT_EQ(bus.Count().opened, 1); // for the texts
}

TEST_F(LibusbDeviceTest, LinkSpeedHasTheCodesOfUsb3Vision)
{
    const std::pair<int, std::uint32_t> speeds[] = {
        {LIBUSB_SPEED_UNKNOWN, 0}, {LIBUSB_SPEED_LOW, 1},   {LIBUSB_SPEED_FULL, 2},
        {LIBUSB_SPEED_HIGH, 4},    {LIBUSB_SPEED_SUPER, 8}, {LIBUSB_SPEED_SUPER_PLUS, 16},
    };
    libusb_device &device = bus.Plug({});
    for (const auto &[speed, code] : speeds) {
        device.script.speed = speed;
        EXPECT_EQ(Enumerate().at(0)->Identity().linkSpeed, code);
    }
}

TEST_F(LibusbDeviceTest, TextsThatTheDeviceInfoLacksAreThoseOfTheDeviceDescriptor)
{
    FakeUsbDevice script;
    DescriptorBytes &info = script.interfaces[0].extra;
    info[12] = info[13] = info[14] = info[17] = info[18] = 0;
    script.texts = {{1, u"ORVI00000001"}, {2, u"By the device"}, {3, u"Product"}, {7, u"123"}};
    bus.Plug(script);
    const DeviceIdentity identity = Enumerate().at(0)->Identity();
    EXPECT_EQ(identity.manufacturer, "By the device");
    EXPECT_EQ(identity.model, "Product");
    EXPECT_EQ(identity.family, "");
    EXPECT_EQ(identity.serial, "123");
}

TEST_F(LibusbDeviceTest, CameraWithoutDeviceInfoWorksAndIsReported)
{
    FakeUsbDevice script;
    script.interfaces[0].extra = DeviceInfoBytes(19);
    bus.Plug(script);
    const DeviceIdentity identity = Enumerate().at(0)->Identity();
    EXPECT_EQ(identity.model, "Model");
    EXPECT_EQ(identity.serial, "SN1");
    EXPECT_EQ(identity.u3vVersion, 0U);
    EXPECT_THAT(Log(), HasSubstr("camera at 2-1: no USB3 Vision device-info descriptor"));
}

TEST_F(LibusbDeviceTest, GuidStandsInForAMissingSerialNumber)
{
    FakeUsbDevice script;
    script.texts[7] = u"";
    bus.Plug(script);
    EXPECT_EQ(Enumerate().at(0)->Identity().serial, "ORVI00000001");
}

TEST_F(LibusbDeviceTest, UnreadableTextIsEmptyAndTheOthersAreRead)
{
    FakeUsbDevice script;
    script.textErrors[4] = LIBUSB_ERROR_PIPE;
    bus.Plug(script);
    const DeviceIdentity identity = Enumerate().at(0)->Identity();
    EXPECT_EQ(identity.family, "");
    EXPECT_EQ(identity.deviceVersion, "Version");
    EXPECT_EQ(identity.problem, "");
}

TEST_F(LibusbDeviceTest, DeviceThatDoesNotAnswerIsAskedForNoMoreTexts)
{
    FakeUsbDevice script;
    script.textErrors[2] = LIBUSB_ERROR_TIMEOUT;
    bus.Plug(script);
    const DeviceIdentity identity = Enumerate().at(0)->Identity();
    EXPECT_EQ(identity.guid, "ORVI00000001");
    EXPECT_EQ(identity.model, "");
    EXPECT_EQ(bus.Count().textsAsked, 3); // the language, the GUID and the one
}

TEST_F(LibusbDeviceTest, CameraWithoutPermissionIsListedWithTheRemedy)
{
    FakeUsbDevice script;
    script.openError = LIBUSB_ERROR_ACCESS;
    bus.Plug(script);
    WriteAttribute("manufacturer", "System's maker");
    WriteAttribute("product", "System's model");
    WriteAttribute("serial", "SN1");
    const auto device = Enumerate().at(0);
    const DeviceIdentity identity = device->Identity();
    EXPECT_EQ(identity.manufacturer, "System's maker");
    EXPECT_EQ(identity.model, "System's model");
    EXPECT_EQ(identity.serial, "SN1");
    EXPECT_EQ(identity.u3vVersion, 0x00010002U);
    EXPECT_EQ(identity.linkSpeed, 8U);
    EXPECT_EQ(identity.manufacturerInfo, "cannot be opened: no permission, see 70-u3v.rules");
    EXPECT_THAT(identity.problem,
                AllOf(HasSubstr("at 2-1 (/dev/bus/usb/002/005): opening: LIBUSB_ERROR_ACCESS (EACCES, permission "
                                "denied); install the udev rule 70-u3v.rules"),
                      HasSubstr("'orvicam doctor'")));
    EXPECT_THAT(Log(), HasSubstr(identity.problem));

    const StatusError failure = FailureOf(*device);
    EXPECT_EQ(failure.Status(), CAM_API_STS_ACCESS_DENIED);
    EXPECT_THAT(failure.what(), HasSubstr("camera SN1 at 2-1 (/dev/bus/usb/002/005): opening: LIBUSB_ERROR_ACCESS"));
}

TEST_F(LibusbDeviceTest, PermissionThatCameLaterIsUsed)
{
    FakeUsbDevice script;
    script.openError = LIBUSB_ERROR_ACCESS;
    libusb_device &camera = bus.Plug(script);
    const auto device = Enumerate().at(0);
    EXPECT_EQ(device->Identity().model, "");
    camera.script.openError = 0;
    const auto link = device->Open();
    EXPECT_EQ(link->Identity().model, "Model");
    EXPECT_EQ(link->Identity().manufacturerInfo, "Remarks");
    EXPECT_EQ(link->Identity().problem, "");
}

TEST_F(LibusbDeviceTest, CameraOfAnotherProgramIsListedAsInUse)
{
    FakeUsbDevice script;
    script.claimErrors[0] = LIBUSB_ERROR_BUSY;
    bus.Plug(script);
    BindDriver(0, "usbfs");
    const auto device = Enumerate().at(0);
    EXPECT_EQ(device->Identity().model, "Model");
    EXPECT_EQ(device->Identity().manufacturerInfo, "cannot be opened: in use by another program");
    EXPECT_THAT(device->Identity().problem, HasSubstr("camera SN1 at 2-1 (/dev/bus/usb/002/005): another program has"));
    const StatusError failure = FailureOf(*device);
    EXPECT_EQ(failure.Status(), CAM_API_STS_BUSY);
    EXPECT_THAT(failure.what(), AllOf(HasSubstr("claiming interface 0: LIBUSB_ERROR_BUSY (EBUSY, in use)"),
                                      HasSubstr("another program has the camera open")));
}

TEST_F(LibusbDeviceTest, CameraThatThisProcessHasOpenHasNoProblem)
{
    bus.Plug({});
    const auto link = OpenFirst();
    BindDriver(0, "usbfs");
    EXPECT_EQ(Enumerate().at(0)->Identity().problem, "");
    link->Close();
    EXPECT_THAT(Enumerate().at(0)->Identity().problem, Not(IsEmpty()));
}

TEST_F(LibusbDeviceTest, KernelDriverLendsItsInterface)
{
    FakeUsbDevice script;
    script.kernelDrivers = {0, 2};
    bus.Plug(script);
    BindDriver(0, "somedriver");
    const auto device = Enumerate().at(0);
    EXPECT_EQ(device->Identity().problem, ""); // opening takes it
    const auto link = device->Open();
    EXPECT_EQ(bus.Count().driversDetached, 2);
    EXPECT_EQ(bus.Count().driversAttached, 0);
    EXPECT_THAT(Log(), HasSubstr("taking interface 0 from the kernel driver 'somedriver'"));
    link->Close();
    EXPECT_EQ(bus.Count().driversAttached, 2);
}

TEST_F(LibusbDeviceTest, KernelDriverThatDoesNotLetGoIsNamedAndNothingStaysClaimed)
{
    FakeUsbDevice script;
    script.claimErrors[2] = LIBUSB_ERROR_BUSY;
    bus.Plug(script);
    BindDriver(2, "somedriver");
    const StatusError failure = FailureOf(*Enumerate().at(0));
    EXPECT_EQ(failure.Status(), CAM_API_STS_BUSY);
    EXPECT_THAT(failure.what(), AllOf(HasSubstr("claiming interface 2"), HasSubstr("'somedriver' does not let go")));
    EXPECT_THAT(bus.Log(), ElementsAre("claim 0", "claim 1", "release 0", "release 1"));
}

TEST_F(LibusbDeviceTest, CameraThatLeftSinceItWasFoundDoesNotAnswer)
{
    libusb_device &camera = bus.Plug({});
    const auto device = Enumerate().at(0);
    bus.Unplug(camera);
    const StatusError failure = FailureOf(*device);
    EXPECT_EQ(failure.Status(), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_THAT(failure.what(), HasSubstr("LIBUSB_ERROR_NO_DEVICE (ENODEV, the device was unplugged)"));
    EXPECT_THAT(Enumerate(), IsEmpty());
}

TEST_F(LibusbDeviceTest, SystemWithoutUsbHasNoCamerasAndMayGetUsbLater)
{
    bus.Plug({});
    bus.initError = LIBUSB_ERROR_OTHER;
    EXPECT_THAT(Enumerate(), IsEmpty());
    EXPECT_THAT(Log(), HasSubstr("no USB here, virtual cameras only"));
    bus.initError = 0;
    EXPECT_EQ(Enumerate().size(), 1U);
}

TEST_F(LibusbDeviceTest, RealCamerasComeBeforeVirtualOnes)
{
    setenv("ORVI_VIRTUAL_CAMERAS", "1", 1);
    bus.Plug({});
    const auto keys = [] {
        std::vector<std::string> found;
        for (const auto &device : EnumerateDevices())
            found.push_back(device->Identity().key.substr(0, 4));
        return found;
    };
    EXPECT_THAT(keys(), ElementsAre("usb:", "virt"));
    setenv("ORVI_TRANSPORT", "usb", 1);
    EXPECT_THAT(keys(), ElementsAre("usb:"));
    setenv("ORVI_TRANSPORT", "virtual", 1);
    EXPECT_THAT(keys(), ElementsAre("virt"));
    unsetenv("ORVI_TRANSPORT");
    unsetenv("ORVI_VIRTUAL_CAMERAS");
    bus.counts.contexts = 0; // the process's own context stays
}

} // namespace
} // namespace Orvi::Test
