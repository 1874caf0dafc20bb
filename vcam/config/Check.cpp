#include "vcam/config/Check.h"

#include "vcam/ForeignXml.h"
#include "vcam/PixelFormats.h"
#include "vcam/config/ConfigFile.h"

namespace Orvi::Vcam {

namespace {

std::string FormatsOf(const CameraConfig &camera)
{
    std::string names;
    for (const std::uint32_t code : camera.pixelFormats) {
        names += names.empty() ? "" : ", ";
        names += FindPixelFormat(code)->name;
    }
    return !names.empty() ? names : camera.xml.empty() ? "all" : "its description's";
}

std::string ImageOf(const ImageSource &source)
{
    switch (source.kind) {
    case ImageSource::Kind::Images:
        return "images of " + source.path;
    case ImageSource::Kind::Raw:
        return "raw file " + source.path;
    case ImageSource::Kind::Command:
        return "output of " + source.command;
    case ImageSource::Kind::Pattern:
        break;
    }
    return "pattern";
}

} // namespace

CheckedFile CheckConfigFile(const std::string &path)
{
    const ConfigFile file = LoadConfigFile(path, Disk::ReadAll);
    CheckedFile checked{{}, file.mistakes, file.isUnreadable};
    if (!file.mistakes.empty()) {
        return checked;
    }
    for (const CameraConfig &config : file.cameras) {
        const CameraConfig camera = NameByDescription(config);
        checked.cameras.push_back({camera.serial, camera.vendor, camera.model, camera.userDefinedName,
                                   camera.sensorWidth, camera.sensorHeight, FormatsOf(camera), ImageOf(camera.image),
                                   camera.faults.rules.size(), camera.xml.empty() ? "its own" : "another model's"});
    }
    return checked;
}

} // namespace Orvi::Vcam
