#include "vcam/Description.h"

#include "vcam/Zip.h"

namespace Orvi::Vcam {

// Made from VirtualCamera.xml by EmbedFile.cmake.
extern const unsigned char g_virtualCameraXml[];
extern const std::size_t g_virtualCameraXmlSize;

std::string_view DescriptionXml()
{
    return {reinterpret_cast<const char *>(g_virtualCameraXml), g_virtualCameraXmlSize};
}

std::span<const std::byte> DescriptionArchive()
{
    static const std::vector<std::byte> s_archive =
        ZipOneFile("VirtualCamera.xml", std::as_bytes(std::span(DescriptionXml())));
    return s_archive;
}

const std::array<std::byte, 20> &DescriptionSha1()
{
    static const std::array<std::byte, 20> s_digest = Sha1(DescriptionArchive());
    return s_digest;
}

} // namespace Orvi::Vcam
