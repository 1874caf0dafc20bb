#include "vcam/config/ConfigFile.h"

#include "vcam/config/CameraReader.h"
#include "vcam/config/TextFile.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <map>

namespace Orvi::Vcam {

namespace {

/// The serial number counted up at its end: "VC000009" and 1 give "VC000010". Empty when there are no digits there.
std::string CountedUp(const std::string &serial, std::uint32_t by)
{
    if (by == 0) {
        return serial;
    }
    const std::size_t start = serial.find_last_not_of("0123456789") + 1;
    std::uint64_t number = 0;
    const char *end = serial.data() + serial.size();
    if (std::from_chars(serial.data() + start, end, number).ec != std::errc() || number > UINT64_MAX - by) {
        return "";
    }
    const std::string digits = std::to_string(number + by);
    const std::size_t width = std::max(serial.size() - start, digits.size());
    return serial.substr(0, start) + std::string(width - digits.size(), '0') + digits;
}

/// The cameras that the entries stand for.
class Expansion {
  public:
    Expansion(std::optional<std::uint64_t> seed, Mistakes &mistakes) : seed_(seed), mistakes_(mistakes) {}

    void Add(const CameraEntry &entry, Place place)
    {
        for (std::uint32_t i = 0; i < entry.count; ++i) {
            if (cameras_.size() == s_maxCameras) {
                mistakes_.push_back({place, "there are more than " + std::to_string(s_maxCameras) + " cameras"});
                return;
            }
            CameraConfig camera = entry.config;
            camera.serial = entry.config.serial.empty() ? CountedUp("VC000001", Number()) : CountedUp(camera.serial, i);
            if (camera.serial.empty() || camera.serial.size() > s_longestName) {
                mistakes_.push_back(
                    {entry.serialPlace, "serial must end in digits that can be counted up, as count is more than 1"});
                return;
            }
            // Cameras do not show the same when one seed is for several of them.
            camera.seed = entry.hasSeed ? camera.seed + i : seed_ ? *seed_ + Number() : 0;
            camera.faults.seed = camera.seed;
            const auto [other, isNew] = places_.try_emplace(camera.serial, entry.serialPlace);
            if (!isNew) {
                mistakes_.push_back({entry.serialPlace, "serial " + camera.serial + " is taken by the camera at " +
                                                            std::to_string(other->second.line) + ":" +
                                                            std::to_string(other->second.column)});
                return;
            }
            cameras_.push_back(std::move(camera));
        }
    }
    std::vector<CameraConfig> Take() { return std::move(cameras_); }

  private:
    std::uint32_t Number() const { return static_cast<std::uint32_t>(cameras_.size()); }

    const std::optional<std::uint64_t> seed_;
    Mistakes &mistakes_;
    std::vector<CameraConfig> cameras_;
    std::map<std::string, Place> places_;
};

} // namespace

ConfigFile ReadConfig(std::string_view text, const std::string &folder, Disk disk)
{
    ConfigFile file;
    const TomlValue document = ParseToml(text, file.mistakes);
    if (!file.mistakes.empty()) {
        return file;
    }
    Section top(document, "the file", file.mistakes);
    std::uint64_t seed = 0;
    const bool hasSeed = top.Integer("seed", 0, INT64_MAX, seed);
    Expansion expansion(hasSeed ? std::optional(seed) : std::nullopt, file.mistakes);
    const std::vector<const TomlValue *> tables = top.Tables("camera", "[[camera]]");
    if (const TomlValue *cameras = top.Find("camera");
        cameras == nullptr || (cameras->kind == TomlValue::Kind::Array && cameras->items.empty())) {
        file.mistakes.push_back({{}, "there is no [[camera]]"});
    }
    for (const TomlValue *table : tables) {
        expansion.Add(ReadCamera(*table, {folder, disk, file.mistakes}), table->place);
    }
    top.RefuseOthers("; what a camera has stands below its [[camera]]: keys, and the tables [camera.image], "
                     "[[camera.register]] and [[camera.fault]]");
    file.cameras = expansion.Take();
    std::ranges::stable_sort(file.mistakes, {}, [](const Mistake &mistake) { return mistake.place.Order(); });
    return file;
}

ConfigFile LoadConfigFile(const std::string &path, Disk disk)
{
    constexpr std::size_t largest = 1 << 20;
    std::string text;
    if (const std::string problem = ReadTextFile(path, largest, text); !problem.empty()) {
        return {{}, {{{}, problem}}, true};
    }
    return ReadConfig(text, std::filesystem::path(path).parent_path(), disk);
}

std::string MistakeText(const std::string &path, const Mistake &mistake)
{
    const bool hasPlace = mistake.place.line != 0;
    return path + ":" +
           (hasPlace ? std::to_string(mistake.place.line) + ":" + std::to_string(mistake.place.column) + ":" : "") +
           " " + mistake.text;
}

} // namespace Orvi::Vcam
