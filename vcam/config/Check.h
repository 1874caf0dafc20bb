#pragma once
// A description file looked at without making cameras of it: for `orvicam vcam check`. Also decodes the images.

#include "vcam/config/Mistake.h"

#include <cstdint>

namespace Orvi::Vcam {

/// A camera that the file describes, in words.
struct CheckedCamera {
    std::string serial, vendor, model, userName;
    std::uint32_t sensorWidth, sensorHeight;
    std::string pixelFormats; ///< "all", "its description's", or names
    std::string image;        ///< "pattern", "images ..."
    std::size_t faults;
    std::string description; ///< "its own", or "another model's"
};

struct CheckedFile {
    std::vector<CheckedCamera> cameras; ///< none when there are mistakes
    Mistakes mistakes;
    bool isUnreadable;
};

CheckedFile CheckConfigFile(const std::string &path);

} // namespace Orvi::Vcam
