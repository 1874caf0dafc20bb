// The descriptors byte by byte.

#include "HostEnd.h"

namespace Orvi::UsbIp::Test {

namespace {

constexpr std::uint16_t s_ample = 255;

class DescriptorTest : public testing::Test {
  protected:
    DescriptorTest()
    {
        device.identity.guid = "ORVI00000007";
        device.identity.vendor = "Orvi";
        device.identity.model = "Virtual Camera";
        device.identity.serial = "VC000007";
        device.identity.deviceVersion = "1.0";
    }

    Bytes Descriptor(unsigned type, unsigned index, std::uint16_t length = s_ample)
    {
        SessionRig rig(device);
        const Answer answer = rig.Host().ControlIn(0x80, 6, static_cast<std::uint16_t>(type << 8 | index), 0, length);
        EXPECT_EQ(answer.length, answer.data.size());
        status = answer.status;
        return answer.data;
    }

    FakeFunction device;
    std::int32_t status = 0;
};

Bytes Hex(const std::string &text)
{
    Bytes bytes;
    std::istringstream stream(text);
    for (unsigned byte = 0; stream >> std::hex >> byte;)
        bytes.push_back(static_cast<std::byte>(byte));
    return bytes;
}

} // namespace

TEST_F(DescriptorTest, DeviceAtSuperSpeed)
{
    const Bytes expected = Hex("12 01 00 03 EF 02 01 09 09 12 01 00 00 01 01 02 03 01");
    EXPECT_EQ(Descriptor(1, 0), expected);
    EXPECT_EQ(Descriptor(1, 0, 8), Bytes(expected.begin(), expected.begin() + 8)) << "no more than asked for";
}

TEST_F(DescriptorTest, DeviceAtHighSpeed)
{
    device.identity.speed = Vcam::LinkSpeed::High;
    EXPECT_EQ(Descriptor(1, 0), Hex("12 01 00 02 EF 02 01 40 09 12 01 00 00 01 01 02 03 01"));
}

TEST_F(DescriptorTest, ConfigurationAtSuperSpeed)
{
    EXPECT_EQ(Descriptor(2, 0), Hex("09 02 74 00 03 01 00 80 70 "
                                    "08 0B 00 03 EF 05 00 00 "
                                    "09 04 00 00 02 EF 05 00 00 "
                                    "14 24 01 00 00 01 00 00 00 01 00 04 01 02 00 06 00 03 08 08 "
                                    "07 05 81 02 00 04 00 06 30 00 00 00 00 "
                                    "07 05 01 02 00 04 00 06 30 00 00 00 00 "
                                    "09 04 01 00 01 EF 05 01 00 "
                                    "07 05 82 02 00 04 00 06 30 00 00 00 00 "
                                    "09 04 02 00 01 EF 05 02 00 "
                                    "07 05 83 02 00 04 00 06 30 0F 00 00 00"));
}

TEST_F(DescriptorTest, ConfigurationAtHighSpeedHasNoCompanions)
{
    device.identity.speed = Vcam::LinkSpeed::High;
    device.identity.maxPacketSize = 512;
    EXPECT_EQ(Descriptor(2, 0), Hex("09 02 5C 00 03 01 00 80 FA "
                                    "08 0B 00 03 EF 05 00 00 "
                                    "09 04 00 00 02 EF 05 00 00 "
                                    "14 24 01 00 00 01 00 00 00 01 00 04 01 02 00 06 00 03 08 04 "
                                    "07 05 81 02 00 02 00 "
                                    "07 05 01 02 00 02 00 "
                                    "09 04 01 00 01 EF 05 01 00 "
                                    "07 05 82 02 00 02 00 "
                                    "09 04 02 00 01 EF 05 02 00 "
                                    "07 05 83 02 00 02 00"));
}

TEST_F(DescriptorTest, BinaryObjectStore)
{
    EXPECT_EQ(Descriptor(15, 0), Hex("05 0F 16 00 02 07 10 02 02 00 00 00 0A 10 03 00 08 00 03 00 00 00"));
    device.identity.speed = Vcam::LinkSpeed::High;
    EXPECT_EQ(Descriptor(15, 0), Bytes());
    EXPECT_EQ(status, -32);
}

TEST_F(DescriptorTest, Strings)
{
    EXPECT_EQ(Descriptor(3, 0), Hex("04 03 09 04"));
    EXPECT_EQ(Descriptor(3, 1), Hex("0A 03 4F 00 72 00 76 00 69 00"));
    EXPECT_EQ(Descriptor(3, 4), Hex("1A 03 4F 00 52 00 56 00 49 00 30 00 30 00 30 00 30 00 30 00 30 00 30 00 37 00"));
    EXPECT_EQ(Descriptor(3, 8), Hex("02 03")) << "a name that may be given later";
    EXPECT_EQ(status, 0);
    EXPECT_EQ(Descriptor(3, 5), Bytes()) << "no family, no string";
    EXPECT_EQ(status, -32);
    EXPECT_EQ(Descriptor(3, 9), Bytes());
    EXPECT_EQ(status, -32);
}

TEST_F(DescriptorTest, StringsAreUtf16)
{
    device.identity.userDefinedName =
        "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x93\xB7\xFF.\xC3"; // a umlaut, euro, camera, two faults
    EXPECT_EQ(Descriptor(3, 8), Hex("10 03 E4 00 AC 20 3D D8 F7 DC FD FF 2E 00 FD FF"));
    device.identity.userDefinedName = std::string(300, 'x');
    EXPECT_EQ(Descriptor(3, 8).size(), 254u) << "as long as a descriptor can be";
}

TEST_F(DescriptorTest, UnknownOnesAreRefused)
{
    for (const unsigned type : {0u, 4u, 6u, 7u, 0x24u}) {
        EXPECT_EQ(Descriptor(type, 0), Bytes());
        EXPECT_EQ(status, -32) << type;
    }
    EXPECT_EQ(Descriptor(2, 1), Bytes());
    EXPECT_EQ(status, -32) << "there is one configuration";
}

} // namespace Orvi::UsbIp::Test
