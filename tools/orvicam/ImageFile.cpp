#include "ImageFile.h"

#include "Failure.h"
#include "Picture.h"
#include "PngWriter.h"
#include "Print.h"
#include "Text.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

namespace Orvi::Tool {
namespace {

struct FormatRow {
    FileFormat format;
    const char *extension;
};
constexpr FormatRow s_formats[] = {
    {FileFormat::Png, "png"}, {FileFormat::Pgm, "pgm"}, {FileFormat::Ppm, "ppm"}, {FileFormat::Raw, "raw"}};

Labels LabelsOf(const Frame &frame)
{
    return {{"PixelFormat", PixelFormatName(frame.info.uiPixelFormat)},
            {"BlockId", std::to_string(frame.info.ullBlockId)},
            {"Camera", frame.camera.manufacturer + " " + frame.camera.model + " " + frame.camera.serial},
            {"DeviceTimestampNs", std::to_string(frame.info.ullDeviceTimestamp)}};
}

void WriteBytes(std::FILE *file, std::span<const std::byte> bytes) { std::fwrite(bytes.data(), 1, bytes.size(), file); }

/// PGM and PPM say their greatest value, so samples stay as the camera sent them. Two bytes a sample: high byte first.
void WritePnm(std::FILE *file, const Picture &picture, const Labels &labels)
{
    std::string head = picture.channels == 1 ? "P5\n" : "P6\n";
    for (const auto &[key, value] : labels)
        head += "# " + key + " " + value + "\n";
    head += std::to_string(picture.width) + " " + std::to_string(picture.height) + "\n" +
            std::to_string((1u << picture.bits) - 1) + "\n";
    std::fputs(head.c_str(), file);

    std::vector<std::byte> bytes;
    bytes.reserve(picture.samples.size() * 2);
    for (const std::uint16_t sample : picture.samples) {
        if (picture.bits > 8)
            bytes.push_back(static_cast<std::byte>(sample >> 8));
        bytes.push_back(static_cast<std::byte>(sample));
    }
    WriteBytes(file, bytes);
}

void RequireChannels(const Picture &picture, const Frame &frame, unsigned channels, FileFormat format)
{
    if (picture.channels != channels)
        throw Failure(ExitCode::Images, std::string(Extension(format)) + " files hold " + std::to_string(channels) +
                                            " channel(s), " + PixelFormatName(frame.info.uiPixelFormat) +
                                            " images have " + std::to_string(picture.channels) + ": use --format " +
                                            (channels == 1 ? "ppm" : "pgm") + " or png");
}

std::string Sidecar(const Frame &frame)
{
    const CAM_STREAM_REQUEST_INFO &info = frame.info;
    const Json json = {
        {"pixelFormat", PixelFormatName(info.uiPixelFormat)},
        {"pixelFormatCode", Hex(info.uiPixelFormat, 8)},
        {"bitsPerPixel", BitsPerPixel(info.uiPixelFormat)},
        {"byteOrder", "little"},
        {"width", info.uiWidth},
        {"height", info.uiHeight},
        {"offsetX", info.uiOffsetX},
        {"offsetY", info.uiOffsetY},
        {"paddingX", info.uiPaddingX},
        {"size", frame.data.size()},
        {"blockId", info.ullBlockId},
        {"deviceTimestampNs", info.ullDeviceTimestamp},
        {"hostTimestampNs", info.ullHostTimestamp},
        {"camera",
         {{"manufacturer", frame.camera.manufacturer},
          {"model", frame.camera.model},
          {"serial", frame.camera.serial},
          {"userName", frame.camera.userName}}},
    };
    return Dump(json) + "\n";
}

} // namespace

const char *Extension(FileFormat format)
{
    return std::find_if(std::begin(s_formats), std::end(s_formats),
                        [format](const FormatRow &row) { return row.format == format; })
        ->extension;
}

std::optional<FileFormat> FormatOfExtension(const std::string &extension)
{
    for (const FormatRow &row : s_formats)
        if (row.extension == extension)
            return row.format;
    return std::nullopt;
}

void WriteImage(const Frame &frame, FileFormat format, const std::filesystem::path &path, IfExists ifExists)
{
    if (format == FileFormat::Raw) {
        AtomicFile file(path, ifExists);
        AtomicFile sidecar(path.string() + ".json", ifExists);
        WriteBytes(file.Stream(), frame.data);
        std::fputs(Sidecar(frame).c_str(), sidecar.Stream());
        // The description first: raw bytes never stand there unexplained.
        sidecar.Commit();
        file.Commit();
        return;
    }
    const Picture picture = TakeApart(frame.info, frame.data);
    if (format != FileFormat::Png)
        RequireChannels(picture, frame, format == FileFormat::Pgm ? 1 : 3, format);
    AtomicFile file(path, ifExists);
    if (format == FileFormat::Png)
        WritePng(file.Stream(), picture, LabelsOf(frame));
    else
        WritePnm(file.Stream(), picture, LabelsOf(frame));
    file.Commit();
}

} // namespace Orvi::Tool
