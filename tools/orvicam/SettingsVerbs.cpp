// A camera's settings in a file: save, load.

#include "AtomicFile.h"
#include "Camera.h"
#include "Failure.h"
#include "Print.h"
#include "Session.h"
#include "Text.h"
#include "Verbs.h"

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace Orvi::Tool {
namespace {

ExitCode CodeOf(CAM_API_STATUS status)
{
    switch (status) {
    case CAM_API_STS_FILE_OPEN_ERROR:
    case CAM_API_STS_FILE_WRITE_ERROR:
    case CAM_API_STS_FILE_READ_ERROR:
    case CAM_API_STS_FILE_NOT_FOUND:
        return ExitCode::File;
    case CAM_API_STS_NOT_IMPLEMENTED:
    case CAM_API_STS_NOT_AVAILABLE:
        return ExitCode::Failed;
    default:
        return IsCameraGone(status) ? ExitCode::Camera : ExitCode::Feature;
    }
}

void CheckFile(CAM_API_STATUS status, const std::string &what)
{
    if (status == CAM_API_STS_NOT_IMPLEMENTED || status == CAM_API_STS_NOT_AVAILABLE)
        throw Failure(CodeOf(status), what + ": this transport cannot save and load settings (status " + Hex(status) +
                                          "); values --writable prints them, set takes them back");
    if (status == CAM_API_STS_GENICAM_ERR)
        Misc_SetLastGenICamError(1); // the library fetches the reason by itself for node functions only
    if (status != CAM_API_STS_SUCCESS)
        throw Failure(CodeOf(status), what + ": " + StatusText(status));
}

/// Unlike images, which go into folders of their own, settings go where the user has a folder for them.
void CheckFolder(const std::string &file)
{
    const std::filesystem::path folder = std::filesystem::path(file).parent_path();
    std::error_code ignored;
    if (!folder.empty() && !std::filesystem::is_directory(folder, ignored))
        throw Failure(ExitCode::File, "cannot write " + file + ": there is no folder " + folder.string() +
                                          "; make it first, or give another name");
}

void CheckReadable(const std::string &file)
{
    std::error_code ignored;
    const int error = access(file.c_str(), R_OK) != 0                ? errno
                      : std::filesystem::is_directory(file, ignored) ? EISDIR
                                                                     : 0;
    if (error != 0)
        throw Failure(ExitCode::File, "cannot read " + file + ": " + std::generic_category().message(error));
}

void Report(const Options &options, Json &list, const char *verb, const CameraEntry &entry)
{
    list.push_back({{"serial", entry.serial}, {"file", options.file}});
    if (!options.json)
        PrintLine(entry.serial + ": " + verb + " " + options.file);
}

} // namespace

void Save(const Options &options)
{
    const Session session(options.virtualCameras);
    const std::vector<CameraEntry> cameras = session.Select(options.cameras, Default::TheOnly);
    if (cameras.size() > 1)
        throw Failure(ExitCode::Usage,
                      std::to_string(cameras.size()) + " cameras cannot be saved to one file: name one with --camera");
    CheckFolder(options.file);
    AtomicFile file(options.file, options.ifExists);
    const Camera camera(cameras.front());
    CheckFile(Cam_SaveParameter(camera.Handle(), file.Temporary().c_str()),
              cameras.front().serial + ": cannot save to " + options.file);
    file.Commit();
    Json list = Json::array();
    Report(options, list, "saved to", cameras.front());
    if (options.json)
        PrintLine(Dump(list));
}

void Load(const Options &options)
{
    const Session session(options.virtualCameras);
    const std::vector<CameraEntry> cameras = session.Select(options.cameras, Default::TheOnly);
    CheckReadable(options.file);
    Json list = Json::array();
    for (const CameraEntry &entry : cameras) {
        const Camera camera(entry);
        CheckFile(Cam_LoadParameter(camera.Handle(), options.file.c_str(), options.defectivePixels),
                  entry.serial + ": cannot load " + options.file);
        Report(options, list, "loaded", entry);
    }
    if (options.json)
        PrintLine(Dump(list));
}

} // namespace Orvi::Tool
