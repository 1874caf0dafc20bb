#pragma once
// The description file of virtual cameras: TOML in, configurations or a list of mistakes out. What the file may hold is
// told in docs/virtual-camera.md.

#include "vcam/VirtualCamera.h"
#include "vcam/config/Mistake.h"

namespace Orvi::Vcam {

/// Cameras at most, in all.
constexpr std::size_t s_maxCameras = 64;

struct ConfigFile {
    std::vector<CameraConfig> cameras;
    Mistakes mistakes;         ///< in the order of the file; with any, the cameras are not to be used
    bool isUnreadable = false; ///< there is no file, or none that can be read: that is the only mistake
};

/// How much of what a file names is looked at.
enum class Disk : std::uint8_t {
    Untouched, ///< nothing: paths stay as they are, and a description is not read
    Read,      ///< images are looked for and descriptions read
    ReadAll,   ///< images are decoded and descriptions loaded, too
};

/// Reads a text. Relative paths in it start at `folder`.
ConfigFile ReadConfig(std::string_view text, const std::string &folder, Disk disk);

/// Reads a file and what it names. A file that cannot be read is a mistake without a place.
ConfigFile LoadConfigFile(const std::string &path, Disk disk = Disk::Read);

/// "cameras.toml:3:5: vendor takes a text, not an integer"
std::string MistakeText(const std::string &path, const Mistake &mistake);

} // namespace Orvi::Vcam
