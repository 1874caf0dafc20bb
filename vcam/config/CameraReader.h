#pragma once
// The parts of a description file, each from its table into the configuration.

#include "vcam/config/ConfigFile.h"
#include "vcam/config/Section.h"

namespace Orvi::Vcam {

/// What the parts share.
struct ReadContext {
    const std::string &folder; ///< where relative paths start
    Disk disk;
    Mistakes &mistakes;
};

/// One [[camera]], which may stand for several.
struct CameraEntry {
    CameraConfig config;
    std::uint32_t count = 1;
    bool hasSeed = false;
    Place serialPlace;
};

/// For messages, each once.
std::vector<std::string_view> PixelFormatNames(bool withYuv);

/// Texts lie in registers of 64 bytes.
constexpr std::size_t s_longestName = 63;

CameraEntry ReadCamera(const TomlValue &table, const ReadContext &context);
/// [camera.image]
void ReadImageSource(const TomlValue &table, const ReadContext &context, ImageSource &source);
/// [[camera.fault]]
void ReadFault(const TomlValue &table, const ReadContext &context, FaultScript &script);
/// [[camera.register]]
void ReadPreset(const TomlValue &table, const ReadContext &context, std::vector<RegisterPreset> &presets);
/// xml: the path of a description, whose text is taken.
void ReadXml(Section &camera, const ReadContext &context, std::string &xml);

/// The path seen from the description file's folder.
std::string Resolved(const ReadContext &context, const std::string &path);

} // namespace Orvi::Vcam
