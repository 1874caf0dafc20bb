#include "vcam/Description.h"

#include "vcam/PixelFormats.h"
#include "vcam/Zip.h"

#include <algorithm>
#include <cstdlib>

namespace Orvi::Vcam {

// Made from VirtualCamera.xml by EmbedFile.cmake.
extern const unsigned char g_virtualCameraXml[];
extern const std::size_t g_virtualCameraXmlSize;

std::string_view DescriptionXml()
{
    return {reinterpret_cast<const char *>(g_virtualCameraXml), g_virtualCameraXmlSize};
}

std::shared_ptr<const StoredDescription> StoreDescription(std::string_view xml)
{
    auto stored = std::make_shared<StoredDescription>();
    stored->archive = ZipOneFile("VirtualCamera.xml", std::as_bytes(std::span(xml)));
    stored->sha1 = Sha1(stored->archive);
    return stored;
}

std::string KeepEntries(std::string xml, std::string_view enumeration, std::span<const std::uint32_t> values)
{
    constexpr std::string_view entryStart = "    <EnumEntry ", entryEnd = "</EnumEntry>\n", valueStart = "<Value>";
    const std::size_t start = xml.find("<Enumeration Name=\"" + std::string(enumeration) + '"');
    if (start == std::string::npos) {
        return xml;
    }
    std::size_t at = xml.find(entryStart, start);
    while (at < xml.find("</Enumeration>", start)) {
        const std::size_t end = xml.find(entryEnd, at) + entryEnd.size();
        const std::size_t value = xml.find(valueStart, at) + valueStart.size();
        const auto number = static_cast<std::uint32_t>(std::strtoul(xml.c_str() + value, nullptr, 0));
        if (std::ranges::find(values, number) == values.end()) {
            xml.erase(at, end - at);
            at = xml.find(entryStart, at);
        } else {
            at = xml.find(entryStart, end);
        }
    }
    return xml;
}

std::string OwnXml(std::span<const std::uint32_t> pixelFormats)
{
    if (pixelFormats.empty()) {
        return std::string(DescriptionXml());
    }
    std::vector<std::uint32_t> codings, sizes;
    for (const std::uint32_t code : pixelFormats) {
        if (const PixelFormat *format = FindPixelFormat(code)) {
            codings.push_back(format->coding);
            sizes.push_back(format->size);
        }
    }
    std::string xml = KeepEntries(std::string(DescriptionXml()), "PixelFormat", pixelFormats);
    xml = KeepEntries(std::move(xml), "PixelCoding", codings);
    return KeepEntries(std::move(xml), "PixelSize", sizes);
}

std::shared_ptr<const StoredDescription> OwnDescription(std::span<const std::uint32_t> pixelFormats)
{
    if (pixelFormats.empty()) {
        static const std::shared_ptr<const StoredDescription> s_whole = StoreDescription(DescriptionXml());
        return s_whole;
    }
    return StoreDescription(OwnXml(pixelFormats));
}

} // namespace Orvi::Vcam
