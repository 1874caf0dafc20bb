#include "vcam/Description.h"
#include "HostSide.h"
#include "vcam/Zip.h"

#include <pugixml.hpp>
#include <set>
#include <zlib.h>

namespace Orvi::Vcam::Test {
namespace {

std::vector<std::byte> ReadAll(Control &control, std::uint64_t address, std::size_t size)
{
    std::vector<std::byte> all(size);
    for (std::size_t at = 0; at < size; at += 1000) {
        const std::size_t part = std::min<std::size_t>(1000, size - at);
        EXPECT_EQ(control.ReadMemory(address + at, std::span(all).subspan(at, part)), GenCpStatus::Success);
    }
    return all;
}

/// The one file of an archive as the local header describes it.
std::string Unzip(std::span<const std::byte> archive)
{
    EXPECT_EQ(LoadLe<std::uint32_t>(archive.data()), 0x04034B50u);
    EXPECT_EQ(LoadLe<std::uint16_t>(archive.data() + 8), 8);
    const std::size_t packed = LoadLe<std::uint32_t>(archive.data() + 18);
    std::string content(LoadLe<std::uint32_t>(archive.data() + 22), '\0');
    const std::size_t start =
        30u + LoadLe<std::uint16_t>(archive.data() + 26) + LoadLe<std::uint16_t>(archive.data() + 28);
    std::vector<unsigned char> in(packed);
    std::memcpy(in.data(), archive.data() + start, packed);
    z_stream stream{};
    EXPECT_EQ(inflateInit2(&stream, -MAX_WBITS), Z_OK);
    stream.next_in = in.data();
    stream.avail_in = static_cast<uInt>(in.size());
    stream.next_out = reinterpret_cast<Bytef *>(content.data());
    stream.avail_out = static_cast<uInt>(content.size());
    EXPECT_EQ(inflate(&stream, Z_FINISH), Z_STREAM_END);
    inflateEnd(&stream);
    const auto crc = crc32(0, reinterpret_cast<const Bytef *>(content.data()), static_cast<uInt>(content.size()));
    EXPECT_EQ(crc, LoadLe<std::uint32_t>(archive.data() + 14));
    return content;
}

TEST(Sha1, GivesThePublishedDigests)
{
    const auto hex = [](std::string_view text) {
        std::string digits;
        for (const std::byte byte : Sha1(std::as_bytes(std::span(text)))) {
            char pair[3];
            std::snprintf(pair, sizeof pair, "%02x", std::to_integer<unsigned>(byte));
            digits += pair;
        }
        return digits;
    };
    EXPECT_EQ(hex("abc"), "a9993e364706816aba3e25717850c26c9cd0d89d");
    EXPECT_EQ(hex(""), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
    EXPECT_EQ(hex("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "84983e441c3bd26ebaae4aa1f95129e5e54670f1");
}

TEST(Description, ManifestNamesTheZippedFileAndItsDigest)
{
    const auto camera = MakeCamera();
    Control control(*camera);
    const std::uint64_t table = control.ReadLong(Reg::ManifestTableAddress);
    EXPECT_EQ(control.ReadLong(table), 1u);
    EXPECT_EQ(control.Read(table + 8 + 4), 0x01010400u);
    const std::uint64_t address = control.ReadLong(table + 8 + 8), size = control.ReadLong(table + 8 + 16);
    const auto archive = ReadAll(control, address, size);
    std::array<std::byte, 20> digest;
    EXPECT_EQ(control.ReadMemory(table + 8 + 0x18, digest), GenCpStatus::Success);
    EXPECT_EQ(digest, Sha1(archive));
    EXPECT_EQ(Unzip(archive), DescriptionXml());
}

class DescriptionXmlFile : public testing::Test {
  protected:
    void SetUp() override
    {
        const std::string_view xml = DescriptionXml();
        const pugi::xml_parse_result result = document_.load_buffer(xml.data(), xml.size());
        ASSERT_TRUE(result) << result.description() << " at " << result.offset;
        for (const pugi::xml_node node : document_.child("RegisterDescription")) {
            if (node.type() == pugi::node_element) {
                const std::string name = node.attribute("Name").value();
                EXPECT_TRUE(nodes_.emplace(name, node).second) << name << " twice";
            }
        }
    }

    pugi::xml_document document_;
    std::map<std::string, pugi::xml_node> nodes_;
};

TEST_F(DescriptionXmlFile, EveryReferenceNamesANode)
{
    for (const auto &[name, node] : nodes_) {
        for (const pugi::xml_node child : node) {
            const std::string_view property = child.name();
            if (property.size() > 1 && property[0] == 'p' && std::isupper(property[1]) != 0) {
                EXPECT_TRUE(nodes_.contains(child.text().get())) << name << ": " << child.text().get();
            }
        }
    }
}

TEST_F(DescriptionXmlFile, EveryFeatureHangsInTheTreeOnce)
{
    std::multiset<std::string> shown;
    for (const auto &[name, node] : nodes_) {
        for (const pugi::xml_node feature : node.children("pFeature")) {
            shown.insert(feature.text().get());
        }
    }
    for (const auto &[name, node] : nodes_) {
        const bool isFeature = node.child("ToolTip") && name != "Root" && name != "Device" &&
                               std::string_view(node.child_value("Visibility")) != "Invisible" &&
                               std::string_view(node.name()) != "Port";
        EXPECT_EQ(shown.count(name), isFeature || name == "TLParamsLocked" ? 1u : 0u) << name;
    }
}

TEST_F(DescriptionXmlFile, EveryRegisterExistsWithTheAccessThatIsClaimed)
{
    const auto camera = MakeCamera();
    Control control(*camera);
    for (const auto &[name, node] : nodes_) {
        const pugi::xml_node port = node.child("pPort");
        if (!port || std::string_view(port.text().get()) != "Device") {
            continue;
        }
        const std::uint64_t address = std::stoull(node.child_value("Address"), nullptr, 0);
        const std::string_view access = node.child_value("AccessMode");
        std::vector<std::byte> bytes(node.child("Length").text().as_uint());
        const GenCpStatus read = control.ReadMemory(address, bytes);
        EXPECT_EQ(read == GenCpStatus::Success, access != "WO") << name;
        if (access != "RO") {
            EXPECT_NE(control.WriteMemory(address, bytes), GenCpStatus::WriteProtect) << name;
        }
    }
}

TEST_F(DescriptionXmlFile, EveryEnumEntryIsAcceptedByItsRegister)
{
    const auto camera = MakeCamera();
    Control control(*camera);
    for (const auto &[name, node] : nodes_) {
        if (std::string_view(node.name()) != "Enumeration") {
            continue;
        }
        const std::string reg = node.child_value("pValue");
        if (std::string_view(nodes_.at(reg).child_value("AccessMode")) == "RO") {
            continue;
        }
        const std::uint64_t address = std::stoull(nodes_.at(reg).child_value("Address"), nullptr, 0);
        for (const pugi::xml_node entry : node.children("EnumEntry")) {
            const auto value = static_cast<std::uint32_t>(std::stoul(entry.child_value("Value"), nullptr, 0));
            EXPECT_EQ(control.TryWrite(address, value), GenCpStatus::Success)
                << name << ' ' << entry.attribute("Name").value();
        }
    }
}

TEST_F(DescriptionXmlFile, EveryFeatureThatApplicationsNameIsThere)
{
    for (const char *name : {"ImageFormatSelector",
                             "SensorWidth",
                             "SensorHeight",
                             "Width",
                             "Height",
                             "OffsetX",
                             "OffsetY",
                             "BinningHorizontal",
                             "BinningVertical",
                             "DecimationHorizontal",
                             "DecimationVertical",
                             "ReverseX",
                             "ReverseY",
                             "PixelFormat",
                             "PixelCoding",
                             "PixelSize",
                             "TestImageSelector",
                             "TestPattern",
                             "AcquisitionFrameCount",
                             "AcquisitionFrameRateControl",
                             "AcquisitionFrameRate",
                             "ImageBufferMode",
                             "ImageBufferFrameCount",
                             "ImageBufferRead",
                             "TriggerMode",
                             "TriggerSelector",
                             "TriggerSequence",
                             "TriggerSource",
                             "TriggerAdditionalParameter",
                             "AcquisitionBurstFrameCount",
                             "TriggerDelay",
                             "TriggerActivation",
                             "TriggerSoftware",
                             "ExposureMode",
                             "ExposureAuto",
                             "ExposureTimeControl",
                             "ExposureTime",
                             "LineSelector",
                             "LineSource",
                             "LineInverter",
                             "LineModeAll",
                             "LineInverterAll",
                             "LineStatusAll",
                             "UserOutputValueAll",
                             "TimerSelector",
                             "TimerDelay",
                             "TimerDuration",
                             "TimerTriggerSource",
                             "Gain",
                             "GainAuto",
                             "BlackLevel",
                             "Gamma",
                             "Hue",
                             "Saturation",
                             "Sharpness",
                             "BalanceWhiteAuto",
                             "BalanceRatioSelector",
                             "BalanceRatio",
                             "ColorCorrectionMatrixSelectorI",
                             "ColorCorrectionMatrixSelectorJ",
                             "ColorCorrectionMatrix",
                             "LUTEnable",
                             "LUTIndex",
                             "LUTValue",
                             "LUTEntry",
                             "UserSetSelector",
                             "UserSetLoad",
                             "UserSetSave",
                             "UserSetDefault",
                             "UserSetDone",
                             "FrameSynchronization",
                             "DPCEnable",
                             "DPCNumber",
                             "DPCIndex",
                             "DPCEntryX",
                             "DPCEntryY",
                             "SequentialShutterEnable",
                             "SequentialShutterTerminateAt",
                             "SequentialShutterIndex",
                             "SequentialShutterEntry",
                             "TLParamsLocked",
                             "UserDefinedName",
                             "DeviceUserID",
                             "PayloadSize",
                             "MaximumEventTransferLength"}) {
        EXPECT_TRUE(nodes_.contains(name)) << name;
    }
}

TEST_F(DescriptionXmlFile, EveryEnumeratedRegisterValueHasAnEntry)
{
    // A block's mask and its nodes agree: what one road can set, the other can name.
    const auto camera = MakeCamera();
    Control control(*camera);
    const std::pair<const char *, std::uint32_t> rows[] = {
        {"ImageFormatSelector", 0x202020}, {"PixelCoding", 0x2020C0},       {"PixelSize", 0x2020E0},
        {"ImageBufferMode", 0x203060},     {"TriggerMode", 0x207020},       {"TriggerSequence", 0x207040},
        {"TriggerSource", 0x207060},       {"LineSelector", 0x2090A0},      {"LineSource", 0x2090C0},
        {"TimerSelector", 0x20A020},       {"TestImageSelector", 0x21F120}, {"TestPattern", 0x21F120},
        {"TimerTriggerSource", 0x21F260},
    };
    for (const auto &[name, base] : rows) {
        std::array<std::uint32_t, 4> mask{};
        for (const pugi::xml_node entry : nodes_.at(name).children("EnumEntry")) {
            const auto value = std::stoul(entry.child_value("Value"), nullptr, 0);
            mask[value / 32] |= 1u << (value % 32);
        }
        for (std::uint32_t i = 0; i < 4; ++i) {
            EXPECT_EQ(control.Read(base + 0x0C + 4 * i), mask[i]) << name;
        }
    }
}

TEST_F(DescriptionXmlFile, EventPortsCarryTheIdsThatTheCameraSends)
{
    for (unsigned i = 0; i < static_cast<unsigned>(EventKind::Count); ++i) {
        const pugi::xml_node selector = nodes_.at("EventSelector");
        for (const pugi::xml_node entry : selector.children("EnumEntry")) {
            if (std::stoul(entry.child_value("Value")) == i) {
                const std::string port = std::string("Event") + entry.attribute("Name").value() + "Port";
                EXPECT_EQ(std::stoul(nodes_.at(port).child_value("EventID"), nullptr, 16),
                          EventId(static_cast<EventKind>(i)));
            }
        }
    }
}

} // namespace
} // namespace Orvi::Vcam::Test
