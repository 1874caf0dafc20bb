#include "Session.h"

#include "Failure.h"
#include "Text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fnmatch.h>

namespace Orvi::Tool {
namespace {

constexpr char s_transportFile[] = "lib/libOrviU3vCamApi_64.so";
constexpr char s_virtualHint[] = "for a virtual camera say --virtual 1 or set ORVI_VIRTUAL_CAMERAS=1";

/// An SDK unpacks flat, so that bin/orvicam finds the transport in ../lib wherever the folder was put. Returns the path
/// that was tried in vain, if any.
std::filesystem::path FindSdkBesideProgram()
{
    if (std::getenv("ORVICAMSDK") != nullptr)
        return {};
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path sdk = program.parent_path().parent_path();
    if (!std::filesystem::exists(sdk / s_transportFile, error))
        return sdk / s_transportFile;
    setenv("ORVICAMSDK", sdk.c_str(), 1);
    return {};
}

Failure NoTransport(CAM_API_STATUS status, const std::filesystem::path &triedBefore)
{
    // The library has set ORVICAMSDK to the folder that it used.
    const char *sdk = std::getenv("ORVICAMSDK");
    const std::filesystem::path path =
        std::filesystem::path(sdk != nullptr ? sdk : "/opt/OrviCamSDK") / s_transportFile;
    const std::string before = triedBefore.empty() ? "" : triedBefore.string() + ", then ";
    std::string why;
    if (!std::filesystem::exists(path)) {
        why = "there is no such file";
    } else if (void *transport = dlopen(path.c_str(), RTLD_LAZY); transport == nullptr) {
        why = dlerror();
    } else {
        dlclose(transport);
        why = "it lacks entries or does not start";
    }
    return {ExitCode::NoTransport, "no transport: tried " + before + path.string() + ": " + why + " (status " +
                                       Hex(status) + "). Set ORVICAMSDK to the SDK folder, the one that holds " +
                                       s_transportFile};
}

template <std::size_t size>
std::string Text(const char (&text)[size])
{
    return {text, strnlen(text, size)};
}

CameraEntry Describe(std::uint32_t index)
{
    CAM_INFO info{};
    Check(Cam_GetInformation(0, index, &info), "camera " + std::to_string(index));
    CameraEntry entry;
    entry.index = index;
    entry.serial = Text(info.szSerialNumber);
    entry.userName = Text(info.szUserDefinedName);
    entry.manufacturer = Text(info.szManufacturer);
    entry.model = Text(info.szModelName);
    entry.family = Text(info.szFamilyName);
    entry.deviceVersion = Text(info.szDeviceVersion);
    entry.manufacturerInfo = Text(info.szManufacturerInfo);
    entry.linkSpeed = info.uiLinkSpeed;
    return entry;
}

bool IsGlob(const std::string &name) { return name.find_first_of("*?[") != std::string::npos; }

bool Matches(const CameraEntry &camera, const std::string &glob)
{
    return fnmatch(glob.c_str(), camera.serial.c_str(), 0) == 0 ||
           (!camera.userName.empty() && fnmatch(glob.c_str(), camera.userName.c_str(), 0) == 0);
}

/// All cameras that one name means. A serial number that looks like an index or a glob is still a serial number.
std::vector<CameraEntry> Named(const std::vector<CameraEntry> &cameras, const std::string &name)
{
    const auto filter = [&](auto &&wanted) {
        std::vector<CameraEntry> found;
        std::copy_if(cameras.begin(), cameras.end(), std::back_inserter(found), wanted);
        return found;
    };
    if (auto found = filter([&](const CameraEntry &camera) { return camera.serial == name; }); !found.empty())
        return found;
    if (auto found = filter([&](const CameraEntry &camera) { return camera.userName == name && !name.empty(); });
        !found.empty())
        return found;
    if (IsGlob(name))
        return filter([&](const CameraEntry &camera) { return Matches(camera, name); });
    return filter([&](const CameraEntry &camera) { return std::to_string(camera.index) == name; });
}

std::vector<std::string> Serials(const std::vector<CameraEntry> &cameras)
{
    std::vector<std::string> serials;
    for (const CameraEntry &camera : cameras)
        serials.push_back(camera.serial);
    return serials;
}

constexpr char s_noCamera[] =
    "no camera found: check that it is plugged in and powered and that lsusb shows it; 'orvicam doctor' "
    "checks this machine; ";

} // namespace

Session::Session(const std::optional<std::string> &virtualCameras)
{
    if (virtualCameras)
        setenv("ORVI_VIRTUAL_CAMERAS", virtualCameras->c_str(), 1);
    const std::filesystem::path tried = FindSdkBesideProgram();
    if (const CAM_API_STATUS status = Sys_Initialize(SYS_INIT_ALL); status != CAM_API_STS_SUCCESS)
        throw NoTransport(status, tried);
    try {
        std::uint32_t count = 0;
        Check(Sys_GetNumOfCameras(&count), "looking for cameras");
        for (std::uint32_t index = 0; index < count; ++index)
            cameras_.push_back(Describe(index));
    } catch (...) {
        Sys_Terminate();
        throw;
    }
}

Session::~Session() { Sys_Terminate(); }

std::vector<CameraEntry> Session::Select(const std::vector<std::string> &names, Default without) const
{
    if (cameras_.empty())
        throw Failure(ExitCode::NoCamera, std::string(s_noCamera) + s_virtualHint);
    if (names.empty()) {
        if (without == Default::TheOnly && cameras_.size() > 1)
            throw Failure(ExitCode::NoCamera, std::to_string(cameras_.size()) + " cameras are attached (" +
                                                  Join(Serials(cameras_), ", ") +
                                                  "): name one with --camera, or all with --camera '*'");
        return cameras_;
    }
    std::vector<CameraEntry> selected;
    for (const std::string &name : names) {
        const std::vector<CameraEntry> found = Named(cameras_, name);
        if (found.empty())
            throw Failure(ExitCode::NoCamera,
                          "no camera '" + name + "'; attached: " + Join(Serials(cameras_), ", ") +
                              ". A camera is named by serial number, user-defined name, index or a glob like 'VC*'");
        for (const CameraEntry &camera : found)
            if (std::none_of(selected.begin(), selected.end(),
                             [&](const CameraEntry &other) { return other.index == camera.index; }))
                selected.push_back(camera);
    }
    return selected;
}

} // namespace Orvi::Tool
