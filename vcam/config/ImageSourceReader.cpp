#include "vcam/PixelFormats.h"
#include "vcam/config/CameraReader.h"
#include "vcam/image/ImageFeed.h"
#include "vcam/image/ImageReader.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>

namespace Orvi::Vcam {

namespace {

constexpr std::pair<std::string_view, ImageSource::Kind> s_sources[] = {
    {"pattern", ImageSource::Kind::Pattern},
    {"images", ImageSource::Kind::Images},
    {"raw", ImageSource::Kind::Raw},
    {"command", ImageSource::Kind::Command},
};
constexpr std::pair<std::string_view, ImageSource::Placement> s_placements[] = {
    {"tile", ImageSource::Placement::Tiled},
    {"center", ImageSource::Placement::Centred},
};
constexpr std::pair<std::string_view, ImageSource::Order> s_orders[] = {
    {"name", ImageSource::Order::ByName},
    {"random", ImageSource::Order::Random},
};

/// What a source other than the pattern needs, and what only some sources know.
struct KeyRule {
    std::string_view key;
    std::string_view sources; ///< that know it
    std::string_view needs;   ///< that need it
};
constexpr KeyRule s_rules[] = {
    {"path", "images, raw", "images, raw"},
    {"command", "command", "command"},
    {"timeout_ms", "command", ""},
    {"order", "images, raw", ""},
    {"width", "raw", "raw"},
    {"height", "raw", "raw"},
    {"pixel_format", "raw", "raw"},
    {"offset", "raw", ""},
    {"place", "images, raw, command", ""},
};

std::string_view NameOf(ImageSource::Kind kind) { return s_sources[static_cast<std::size_t>(kind)].first; }

bool Has(std::string_view words, std::string_view word) { return words.find(word) != std::string_view::npos; }

void CheckKeys(Section &section, ImageSource::Kind kind)
{
    const std::string name(NameOf(kind));
    for (const KeyRule &rule : s_rules) {
        const bool isThere = section.Find(rule.key) != nullptr;
        if (isThere && !Has(rule.sources, name)) {
            section.Wrong(rule.key, "means nothing to the source '" + name + "', only to " + std::string(rule.sources));
        } else if (!isThere && Has(rule.needs, name)) {
            section.Wrong(rule.key, "is missing: the source '" + name + "' needs it");
        }
    }
}

void CheckImages(Section &section, const ReadContext &context, const std::string &path)
{
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        section.Wrong("path", "names " + path + ", which does not exist");
        return;
    }
    const std::vector<std::string> files = ImageFilesOf(path);
    if (files.empty()) {
        section.Wrong("path", "names the folder " + path + ", which holds no .png, .tif, .tiff, .pgm, .ppm or .pnm");
    }
    for (const std::string &file : files) {
        try {
            std::array<char, 8> head{};
            std::ifstream stream(file, std::ios::binary);
            stream.read(head.data(), head.size());
            const auto length = static_cast<std::size_t>(stream.gcount());
            if (context.disk == Disk::ReadAll) {
                DecodeImage(ReadBytes(file));
            } else if (!LooksLikeImage(std::as_bytes(std::span(head)).first(length))) {
                throw ImageError("cannot be read, or is neither PNG nor TIFF nor PNM");
            }
        } catch (const ImageError &problem) {
            section.Wrong("path", "names " + file + ", which " + problem.what());
        }
    }
}

void CheckRaw(Section &section, const ImageSource &source)
{
    std::error_code error;
    const std::uint64_t size = std::filesystem::file_size(source.path, error);
    const std::uint64_t needed = source.offset + RawImageBytes(source.width, source.height, source.pixelFormat);
    if (error) {
        section.Wrong("path", "names " + source.path + ", which cannot be read: " + error.message());
    } else if (size < needed) {
        section.Wrong("path", "names " + source.path + " of " + std::to_string(size) + " bytes; the image needs " +
                                  std::to_string(needed));
    }
}

void ReadRawFormat(Section &section, std::uint32_t &code)
{
    const std::vector<std::string_view> names = PixelFormatNames(false);
    if (const auto index = section.IndexOf("pixel_format", names)) {
        code = FindPixelFormat(names[*index])->code;
    }
}

} // namespace

void ReadImageSource(const TomlValue &table, const ReadContext &context, ImageSource &source)
{
    Section section(table, "[camera.image]", context.mistakes);
    const std::size_t before = context.mistakes.size();
    section.OneOf<ImageSource::Kind>("source", s_sources, source.kind);
    section.Text("path", source.path);
    section.Text("command", source.command);
    section.Integer("timeout_ms", 1, 60000, source.timeout);
    section.OneOf<ImageSource::Order>("order", s_orders, source.order);
    section.Integer("width", 1, s_largestSide, source.width);
    section.Integer("height", 1, s_largestSide, source.height);
    ReadRawFormat(section, source.pixelFormat);
    section.Integer("offset", 0, INT64_MAX / 2, source.offset);
    section.OneOf<ImageSource::Placement>("place", s_placements, source.placement);
    // Pictures of one's own are shown as they are, unless asked for.
    const bool isPattern = source.kind == ImageSource::Kind::Pattern;
    source.subject = source.blockId = source.defects = isPattern;
    section.Flag("subject", source.subject);
    section.Flag("block_id", source.blockId);
    section.Flag("defects", source.defects);
    section.RefuseOthers();
    if (context.mistakes.size() == before) {
        CheckKeys(section, source.kind);
    }
    if (context.mistakes.size() != before || context.disk == Disk::Untouched) {
        return;
    }
    source.path = Resolved(context, source.path);
    if (source.kind == ImageSource::Kind::Images) {
        CheckImages(section, context, source.path);
    } else if (source.kind == ImageSource::Kind::Raw) {
        CheckRaw(section, source);
    }
}

} // namespace Orvi::Vcam
