#include "Failure.h"
#include "Print.h"
#include "Session.h"
#include "Table.h"
#include "Verbs.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace Orvi::Tool {
namespace {

struct LinkSpeed {
    std::uint32_t code;
    const char *name;
    const char *rate;
};

// clang-format off
constexpr LinkSpeed s_speeds[] = {
    {1,  "low",    "1.5 Mbit/s"},
    {2,  "full",   "12 Mbit/s"},
    {4,  "high",   "480 Mbit/s"},
    {8,  "super",  "5 Gbit/s"},
    {16, "super+", "10 Gbit/s"},
    {0,  "unknown", "unknown"},
};
// clang-format on

const LinkSpeed &Speed(const CameraEntry &camera)
{
    const auto *row = std::find_if(std::begin(s_speeds), std::end(s_speeds),
                                   [&](const LinkSpeed &speed) { return speed.code == camera.linkSpeed; });
    return row != std::end(s_speeds) ? *row : *std::prev(std::end(s_speeds));
}

/// Why it cannot be opened, or empty: the transport then says so in the place of the maker's remarks.
std::string_view Problem(const CameraEntry &camera)
{
    return camera.manufacturerInfo.starts_with("cannot be opened: ") ? camera.manufacturerInfo : std::string_view();
}

Json ToJson(const CameraEntry &camera)
{
    Json json = {{"index", camera.index}, {"serial", camera.serial},     {"manufacturer", camera.manufacturer},
                 {"model", camera.model}, {"userName", camera.userName}, {"linkSpeed", Speed(camera).name}};
    if (!Problem(camera).empty())
        json["problem"] = Problem(camera);
    return json;
}

Json Identity(const CameraEntry &camera)
{
    CAM_U3V_INFO_EX u3v{};
    Check(Cam_GetU3vInformationEx(0, camera.index, &u3v), camera.serial);
    Json json = ToJson(camera);
    json["family"] = camera.family;
    json["deviceVersion"] = camera.deviceVersion;
    json["manufacturerInfo"] = camera.manufacturerInfo;
    json["u3vVersion"] = std::to_string(u3v.uiU3vVersion >> 16) + "." + std::to_string(u3v.uiU3vVersion & 0xFFFF);
    json["maxTransferSize"] = u3v.uiMaxTransferSize;
    return json;
}

void PrintIdentity(const CameraEntry &camera, const Json &json)
{
    const auto text = [&](const char *key) {
        return json[key].is_string() ? json[key].get<std::string>() : json[key].dump();
    };
    PrintLine(camera.serial);
    PrintTable<2>({{"  index", text("index")},
                   {"  manufacturer", camera.manufacturer},
                   {"  model", camera.model},
                   {"  user name", camera.userName.empty() ? "-" : camera.userName},
                   {"  family", camera.family.empty() ? "-" : camera.family},
                   {"  device version", camera.deviceVersion},
                   {"  manufacturer info", camera.manufacturerInfo.empty() ? "-" : camera.manufacturerInfo},
                   {"  link", std::string(Speed(camera).name) + ", " + Speed(camera).rate},
                   {"  USB3 Vision", text("u3vVersion")},
                   {"  largest transfer", text("maxTransferSize") + " bytes"}});
}

void PrintVersions()
{
    CAM_SYSTEM_INFO info{};
    Check(Sys_GetInformation(&info), "versions");
    PrintLine(std::string("library ") + info.szApiVersion + ", transport " + info.szTransportName + " " +
              info.szTransportVersion + ", USB: " + info.szTransportUsbVersion);
}

} // namespace

void List(const Options &options)
{
    const Session session(options.virtualCameras);
    if (options.json && session.Cameras().empty())
        PrintLine("[]");
    const std::vector<CameraEntry> cameras = session.Select(options.cameras, Default::All);
    if (options.json) {
        Json list = Json::array();
        for (const CameraEntry &camera : cameras)
            list.push_back(ToJson(camera));
        PrintLine(Dump(list));
        return;
    }
    std::vector<std::array<std::string, 5>> rows = {{"INDEX", "SERIAL", "MODEL", "USER NAME", "LINK"}};
    for (const CameraEntry &camera : cameras)
        rows.push_back({std::to_string(camera.index), camera.serial, camera.manufacturer + " " + camera.model,
                        camera.userName.empty() ? "-" : camera.userName, Speed(camera).rate});
    PrintTable(rows);
    for (const CameraEntry &camera : cameras)
        if (!Problem(camera).empty())
            PrintLine(camera.serial + " " + std::string(Problem(camera)) + "; orvicam doctor tells what to do");
}

void Info(const Options &options)
{
    const Session session(options.virtualCameras);
    const std::vector<CameraEntry> cameras = session.Select(options.cameras, Default::All);
    Json list = Json::array();
    for (const CameraEntry &camera : cameras)
        list.push_back(Identity(camera));
    if (options.json) {
        PrintLine(Dump(list));
        return;
    }
    PrintVersions();
    for (std::size_t i = 0; i < cameras.size(); ++i)
        PrintIdentity(cameras[i], list[i]);
}

} // namespace Orvi::Tool
