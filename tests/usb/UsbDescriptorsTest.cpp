#include "u3v/usb/UsbDescriptors.h"
#include "tests/usb/FakeBus.h"

#include <gtest/gtest.h>

namespace Orvi::Test {
namespace {

using namespace U3v;

DescriptorBytes Joined(DescriptorBytes first, const DescriptorBytes &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST(DeviceInfoTest, HasVersionsTextsAndSpeeds)
{
    const DescriptorBytes bytes = {20,   0x24, 1,  0x05, 0x00, 0x01, 0x00, 0x02, 0x00, 0x01,
                                   0x00, 11,   12, 13,   14,   15,   16,   17,   18,   0x1C};
    const auto info = FindDeviceInfo(bytes);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->genCpVersion, 0x00010005U);
    EXPECT_EQ(info->u3vVersion, 0x00010002U);
    EXPECT_EQ(info->guid, 11);
    EXPECT_EQ(info->vendor, 12);
    EXPECT_EQ(info->model, 13);
    EXPECT_EQ(info->family, 14);
    EXPECT_EQ(info->deviceVersion, 15);
    EXPECT_EQ(info->manufacturerInfo, 16);
    EXPECT_EQ(info->serial, 17);
    EXPECT_EQ(info->userDefinedName, 18);
    EXPECT_EQ(info->speeds, 0x1C);
}

TEST(DeviceInfoTest, MayBeLonger) { EXPECT_EQ(FindDeviceInfo(DeviceInfoBytes(27)).value().serial, 7); }

TEST(DeviceInfoTest, MayFollowOtherDescriptors)
{
    EXPECT_TRUE(FindDeviceInfo(Joined({3, 0x24, 0x02}, DeviceInfoBytes())));
    EXPECT_TRUE(FindDeviceInfo(Joined({8, 0x0B, 0, 3, 0xEF, 5, 0, 0}, DeviceInfoBytes())));
}

TEST(DeviceInfoTest, IsMissingTooShortOrCutOff)
{
    EXPECT_FALSE(FindDeviceInfo({}));
    EXPECT_FALSE(FindDeviceInfo(DescriptorBytes{20}));
    EXPECT_FALSE(FindDeviceInfo(DescriptorBytes{3, 0x24, 0x02}));
    EXPECT_FALSE(FindDeviceInfo(DeviceInfoBytes(19)));
    DescriptorBytes cut = DeviceInfoBytes();
    cut.pop_back();
    EXPECT_FALSE(FindDeviceInfo(cut));
    EXPECT_FALSE(FindDeviceInfo(Joined({0, 0}, DeviceInfoBytes()))); // a length that would never end
    EXPECT_FALSE(FindDeviceInfo(Joined({1, 0}, DeviceInfoBytes())));
}

class InterfacesTest : public testing::Test {
  protected:
    ~InterfacesTest() override { FakeBus::Instance().Clear(); }

    std::optional<CameraInterfaces> Find(std::vector<FakeInterface> interfaces)
    {
        FakeUsbDevice script;
        script.interfaces = std::move(interfaces);
        libusb_config_descriptor *configuration = nullptr;
        libusb_get_active_config_descriptor(&FakeBus::Instance().Plug(script), &configuration);
        auto found = FindInterfaces(*configuration);
        libusb_free_config_descriptor(configuration);
        return found;
    }
};

TEST_F(InterfacesTest, AreKnownByTheirProtocolInAnyOrder)
{
    const auto found = Find({{4, 0xEF, 5, 2, {{0x8A, LIBUSB_TRANSFER_TYPE_BULK, 512}}, {}},
                             {5, 0xEF, 5, 0, {{0x81, LIBUSB_TRANSFER_TYPE_BULK, 1024}, {0x0F}}, DeviceInfoBytes()},
                             {7, 0xEF, 5, 1, {{0x83}}, {}}});
    ASSERT_TRUE(found);
    EXPECT_EQ(found->configuration, 1);
    EXPECT_EQ(found->control.number, 5);
    EXPECT_EQ(found->control.in, 0x81);
    EXPECT_EQ(found->control.out, 0x0F);
    EXPECT_EQ(found->control.maxPacketSize, 1024U);
    EXPECT_EQ(found->event.value().number, 7);
    EXPECT_EQ(found->event->in, 0x83);
    EXPECT_EQ(found->stream.value().number, 4);
    EXPECT_EQ(found->stream->in, 0x8A);
    EXPECT_EQ(found->stream->maxPacketSize, 512U);
    EXPECT_EQ(found->info.value().guid, 1);
}

TEST_F(InterfacesTest, OfOtherClassesAndEndpointsOfOtherTypesDoNotCount)
{
    const auto found = Find({{0, 0x0E, 1, 0, {{0x81}, {0x01}}, {}},
                             {1, 0xEF, 5, 0, {{0x82, LIBUSB_TRANSFER_TYPE_INTERRUPT}, {0x02}, {0x84}}, {}},
                             {2, 0xEF, 5, 1, {{0x85, LIBUSB_TRANSFER_TYPE_INTERRUPT}}, {}},
                             {3, 0xEF, 5, 2, {{0x06}}, {}}});
    ASSERT_TRUE(found);
    EXPECT_EQ(found->control.number, 1);
    EXPECT_EQ(found->control.in, 0x84);
    EXPECT_FALSE(found->event);
    EXPECT_FALSE(found->stream);
    EXPECT_FALSE(found->info);
}

TEST_F(InterfacesTest, WithoutControlAreNoCamera)
{
    EXPECT_FALSE(Find({}));
    EXPECT_FALSE(Find({{0, 0xEF, 5, 2, {{0x81}}, {}}}));
    EXPECT_FALSE(Find({{0, 0xEF, 5, 0, {{0x81}}, DeviceInfoBytes()}}));
    EXPECT_FALSE(Find({{0, 0xEF, 2, 0, {{0x81}, {0x02}}, DeviceInfoBytes()}}));
}

std::string TextOf(const std::u16string &units)
{
    DescriptorBytes bytes = {static_cast<unsigned char>(2 + 2 * units.size()), LIBUSB_DT_STRING};
    for (const char16_t unit : units) {
        bytes.push_back(static_cast<unsigned char>(unit & 0xFF));
        bytes.push_back(static_cast<unsigned char>(unit >> 8));
    }
    return TextOfDescriptor(bytes);
}

TEST(StringDescriptorTest, BecomesUtf8)
{
    EXPECT_EQ(TextOf(u""), "");
    EXPECT_EQ(TextOf(u"SN 1"), "SN 1");
    EXPECT_EQ(TextOf(u"\u00E4\u20AC\U0001F4F7"), "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x93\xB7");
}

TEST(StringDescriptorTest, MayBeBroken)
{
    EXPECT_EQ(TextOf({u'A', 0xD83D}), "A\xEF\xBF\xBD"); // half of a pair at the end
    EXPECT_EQ(TextOf({0xDC00, u'B'}), "\xEF\xBF\xBD"
                                      "B"); // the other half alone
    EXPECT_EQ(TextOf({0xD83D, u'B'}), "\xEF\xBF\xBD"
                                      "B");                               // half of a pair, then a character
    EXPECT_EQ(TextOf({u'A', 0, u'B'}), "A");                              // padded with NUL
    EXPECT_EQ(TextOfDescriptor(DescriptorBytes{5, 3, 'A', 0, 'B'}), "A"); // an odd length
    EXPECT_EQ(TextOfDescriptor(DescriptorBytes{8, 3, 'A', 0}), "A");      // a length beyond the end
    EXPECT_EQ(TextOfDescriptor(DescriptorBytes{4, 2, 'A', 0}), "");       // no string
    EXPECT_EQ(TextOfDescriptor(DescriptorBytes{4}), "");
    EXPECT_EQ(TextOfDescriptor({}), "");
}

} // namespace
} // namespace Orvi::Test
