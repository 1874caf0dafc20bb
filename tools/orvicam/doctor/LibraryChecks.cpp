#include "Checks.h"

#include "tools/orvicam/Text.h"
#include "vcam/config/Check.h"

#include <algorithm>
#include <cstdlib>
#include <unistd.h>

namespace Orvi::Tool {
namespace {

constexpr std::int64_t maxVirtualCameras = 64;

std::string Variable(const char *name)
{
    const char *value = std::getenv(name);
    return value != nullptr ? value : "";
}

bool IsReadable(const std::string &path) { return access(path.c_str(), R_OK) == 0; }

std::string CamerasText(std::size_t count) { return std::to_string(count) + (count == 1 ? " camera" : " cameras"); }

Finding CheckVirtualCameras()
{
    const std::string check = "virtual cameras", value = Variable("ORVI_VIRTUAL_CAMERAS");
    if (value.empty())
        return {Verdict::Ok, check, "none asked for (ORVI_VIRTUAL_CAMERAS is unset)"};
    const std::string setting = "ORVI_VIRTUAL_CAMERAS=" + value;
    if (const auto count = ParseInteger(value)) {
        if (*count >= 0 && *count <= maxVirtualCameras)
            return {Verdict::Ok, check, setting};
        return {Verdict::Fail, check, setting + ": there can be 0 to " + std::to_string(maxVirtualCameras),
                "export ORVI_VIRTUAL_CAMERAS=1"};
    }
    const Vcam::CheckedFile file = Vcam::CheckConfigFile(value);
    if (file.mistakes.empty())
        return {Verdict::Ok, check, CamerasText(file.cameras.size()) + " of " + value};
    return {Verdict::Fail, check, value + ": " + file.mistakes.front().text, "orvicam vcam check '" + value + "'"};
}

/// The kinds of links that the transport looks for.
Finding CheckLinkKinds()
{
    const std::string check = "link kinds", value = Variable("ORVI_TRANSPORT");
    if (value.empty() || value.find("usb") != std::string::npos)
        return {Verdict::Ok, check, value.empty() ? "all (ORVI_TRANSPORT is unset)" : "ORVI_TRANSPORT=" + value};
    return {Verdict::Warn, check, "ORVI_TRANSPORT=" + value + " leaves cameras on a USB port out",
            "unset ORVI_TRANSPORT"};
}

} // namespace

Finding CheckCameras(const std::vector<CameraEntry> &listed, const std::vector<UsbCamera> &cameras)
{
    std::vector<std::string> serials, missing;
    for (const CameraEntry &camera : listed)
        serials.push_back(camera.serial);
    for (const UsbCamera &camera : cameras)
        if (!camera.serial.empty() && std::find(serials.begin(), serials.end(), camera.serial) == serials.end())
            missing.push_back(camera.serial + " (" + camera.product + ")");
    if (!missing.empty())
        return {Verdict::Fail, "cameras", "plugged in, but not listed by the library: " + Join(missing, ", "),
                "mend what is said of them above; orvicam list"};
    if (listed.empty())
        return {Verdict::Warn, "cameras", "none is attached",
                "plug one in and see whether lsusb shows it, or try a virtual one: orvicam --virtual 1 list"};
    return {Verdict::Ok, "cameras", CamerasText(listed.size()) + ": " + Join(serials, ", ")};
}

Finding CheckConfiguration(const std::string &sdk)
{
    const std::string check = "configuration";
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    for (const std::filesystem::path &folder : {program, std::filesystem::path(sdk) / "lib"}) {
        const std::string path = (folder / "OrviCamSDK.cfg").string();
        if (!std::filesystem::exists(path, error))
            continue;
        if (IsReadable(path))
            return {Verdict::Ok, check, path};
        return {Verdict::Warn, check, path + ": you may not read it, so the library does without it",
                "sudo chmod a+r '" + path + "'"};
    }
    return {Verdict::Ok, check, "no OrviCamSDK.cfg beside the program or in " + sdk + "/lib: all is as built in"};
}

Finding CheckCache()
{
    const std::string check = "description cache", folder = Variable("GENICAM_CACHE_V3_0"), home = Variable("HOME");
    const std::string cost = ", so every open fetches the camera's description";
    std::error_code error;
    if (folder.empty()) {
        if (home.empty())
            return {Verdict::Warn, check, "HOME is unset" + cost,
                    "export HOME=$(getent passwd $(id -u) | cut -d: -f6)"};
        const std::string usual = home + "/OrviCamSDK/genicam/cache";
        return {Verdict::Warn, check, "the library uses none" + cost, "mkdir -p '" + usual + "'"};
    }
    if (!std::filesystem::is_directory(folder, error))
        return {Verdict::Warn, check, folder + " is no folder" + cost, "mkdir -p '" + folder + "'"};
    if (access(folder.c_str(), W_OK | X_OK) != 0)
        return {Verdict::Warn, check, "you may not write to " + folder + cost,
                "sudo chown -R $(id -un) '" + folder + "'"};
    return {Verdict::Ok, check, folder};
}

Findings CheckVariables() { return {CheckVirtualCameras(), CheckLinkKinds()}; }

} // namespace Orvi::Tool
