#pragma once
// Where images go: a folder, or a pattern like "out/{serial}-{block}.png".

#include "ImageFile.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace Orvi::Tool {

class OutputName {
  public:
    /// `output` is a folder unless it has a placeholder or ends as an image file does. Without a format the ending
    /// decides, else it is PNG. Throws Failure(Usage) for a pattern that would name two images alike.
    OutputName(const std::string &output, std::optional<FileFormat> format, std::size_t cameras, std::uint64_t images);

    FileFormat Format() const { return format_; }

    /// Name of the image that is `number`th of its camera, counted from 1.
    std::filesystem::path For(const Frame &frame, std::uint64_t number) const;

  private:
    std::string pattern_;
    FileFormat format_;
};

} // namespace Orvi::Tool
