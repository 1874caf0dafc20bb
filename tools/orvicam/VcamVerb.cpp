#include "Failure.h"
#include "Print.h"
#include "Table.h"
#include "Verbs.h"
#include "vcam/config/Check.h"

#include <array>

namespace Orvi::Tool {
namespace {

Json ToJson(const Vcam::CheckedCamera &camera)
{
    return {{"serial", camera.serial},
            {"manufacturer", camera.vendor},
            {"model", camera.model},
            {"userName", camera.userName},
            {"sensorWidth", camera.sensorWidth},
            {"sensorHeight", camera.sensorHeight},
            {"pixelFormats", camera.pixelFormats},
            {"image", camera.image},
            {"faults", camera.faults},
            {"description", camera.description}};
}

Json ToJson(const Vcam::Mistake &mistake)
{
    return {{"line", mistake.place.line}, {"column", mistake.place.column}, {"text", mistake.text}};
}

void PrintJson(const std::string &path, const Vcam::CheckedFile &file)
{
    Json cameras = Json::array(), mistakes = Json::array();
    for (const Vcam::CheckedCamera &camera : file.cameras)
        cameras.push_back(ToJson(camera));
    for (const Vcam::Mistake &mistake : file.mistakes)
        mistakes.push_back(ToJson(mistake));
    PrintLine(Dump({{"file", path}, {"cameras", cameras}, {"mistakes", mistakes}}));
}

void PrintText(const std::string &path, const Vcam::CheckedFile &file)
{
    for (const Vcam::Mistake &mistake : file.mistakes) {
        std::string line = path;
        if (mistake.place.line != 0)
            line.append(":")
                .append(std::to_string(mistake.place.line))
                .append(":")
                .append(std::to_string(mistake.place.column));
        PrintLine(line.append(": ").append(mistake.text));
    }
    if (!file.mistakes.empty())
        return;
    std::vector<std::array<std::string, 6>> rows = {{"SERIAL", "MODEL", "SENSOR", "PIXEL FORMATS", "FAULTS", "IMAGE"}};
    for (const Vcam::CheckedCamera &camera : file.cameras)
        rows.push_back({camera.serial, camera.vendor + " " + camera.model,
                        std::to_string(camera.sensorWidth) + " x " + std::to_string(camera.sensorHeight),
                        camera.pixelFormats, std::to_string(camera.faults), camera.image});
    PrintTable(rows);
}

} // namespace

void VcamCheck(const Options &options)
{
    const Vcam::CheckedFile file = Vcam::CheckConfigFile(options.file);
    if (file.isUnreadable)
        throw Failure(ExitCode::File, options.file + " " + file.mistakes.front().text);
    if (options.json)
        PrintJson(options.file, file);
    else
        PrintText(options.file, file);
    if (!file.mistakes.empty())
        throw Failure(ExitCode::Failed, options.file + ": " + std::to_string(file.mistakes.size()) +
                                            (file.mistakes.size() == 1 ? " mistake" : " mistakes") +
                                            "; what a file may hold is told in docs/virtual-camera.md");
}

} // namespace Orvi::Tool
