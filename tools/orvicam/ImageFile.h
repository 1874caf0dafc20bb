#pragma once
// Image files: PNG, PGM and PPM, and raw bytes with a JSON file beside them that says what they are.

#include "AtomicFile.h"
#include "OrviCamApi.h"
#include "Session.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace Orvi::Tool {

enum class FileFormat { Png, Pgm, Ppm, Raw };

/// "png" and so on, as --format takes them and as files are called.
const char *Extension(FileFormat format);
std::optional<FileFormat> FormatOfExtension(const std::string &extension);

/// A delivered image, still in its buffer.
struct Frame {
    const CameraEntry &camera;
    const CAM_STREAM_REQUEST_INFO &info;
    std::span<const std::byte> data; ///< the valid bytes
};

/// Throws Failure when the format cannot hold the image or the file cannot be written; then no file is left.
void WriteImage(const Frame &frame, FileFormat format, const std::filesystem::path &path, IfExists ifExists);

} // namespace Orvi::Tool
