// Verbs about all that a camera has: features, values, describe.

#include "Camera.h"
#include "Session.h"
#include "Table.h"
#include "Text.h"
#include "Verbs.h"

#include <algorithm>
#include <limits>
#include <set>

namespace Orvi::Tool {
namespace {

/// A number of a description as Set() takes it, anything else as it stands.
std::string Words(const Json &value)
{
    if (value.is_string())
        return value.get<std::string>();
    return value.is_number_float() ? Number(value.get<double>()) : value.dump();
}

std::string Words(const Json &json, const char *key) { return json.contains(key) ? Words(json[key]) : ""; }

std::string Limits(const Json &json)
{
    // All that 64 bits hold is no limit worth a line.
    if (!json.contains("min") || (json["min"] == std::numeric_limits<std::int64_t>::min() &&
                                  json["max"] == std::numeric_limits<std::int64_t>::max()))
        return "";
    return Words(json["min"]) + " to " + Words(json["max"]) +
           (json.contains("increment") ? " in steps of " + Words(json["increment"]) : "");
}

std::string WithUnit(const std::string &text, const Json &json)
{
    return text.empty() || !json.contains("unit") ? text : text + " " + Words(json["unit"]);
}

/// Runs a function for each selected camera; what it returns becomes the member `key` of the JSON output.
template <class Each>
void ForEachCamera(const Options &options, const char *key, const Each &each)
{
    const Session session(options.virtualCameras);
    const std::vector<CameraEntry> cameras = session.Select(options.cameras, Default::TheOnly);
    Json list = Json::array();
    for (const CameraEntry &entry : cameras) {
        if (cameras.size() > 1 && !options.json)
            PrintLine(entry.serial);
        const Camera camera(entry);
        list.push_back({{"serial", entry.serial}, {key, each(camera)}});
    }
    if (options.json)
        PrintLine(Dump(list));
}

std::string Indented(std::size_t depth, const std::string &text) { return std::string(2 * depth, ' ') + text; }

/// Prints a tree from a flat list: a category has a line where its features begin.
class TreePrinter {
  public:
    void Add(const std::vector<std::string> &categories, const std::string &value, const Json &feature)
    {
        std::size_t common = 0;
        while (common < std::min(path_.size(), categories.size()) && path_[common] == categories[common])
            ++common;
        for (std::size_t depth = common; depth < categories.size(); ++depth)
            rows_.push_back({Indented(depth, categories[depth]), "", "", ""});
        path_ = categories;
        rows_.push_back({Indented(path_.size(), Words(feature["name"])), Words(feature["access"]),
                         WithUnit(value, feature), Limits(feature)});
    }
    void Finish() const { PrintTable(rows_); }

  private:
    std::vector<std::string> path_;
    std::vector<std::array<std::string, 4>> rows_;
};

std::string ValueText(const Feature &feature, const Json &description)
{
    return description.contains("value") ? feature.Text(description["value"]) : "";
}

Json PrintTree(const Camera &camera, const Options &options)
{
    Json list = Json::array();
    TreePrinter printer;
    for (const auto &[categories, visibility, feature] : camera.Features()) {
        if (visibility > CAM_NODE_VISIBILITY_EXPERT && !options.all)
            continue;
        Json description = feature.Describe();
        printer.Add(categories, ValueText(feature, description), description);
        description["categories"] = categories;
        list.push_back(std::move(description));
    }
    if (!options.json)
        printer.Finish();
    return list;
}

Json PrintValues(const Camera &camera, const Options &options)
{
    Json values = Json::object();
    std::set<std::string> seen; // a feature may lie in several categories
    for (const auto &[categories, visibility, feature] : camera.Features()) {
        if (!seen.insert(feature.Name()).second || (options.writable && !feature.IsWritable()))
            continue;
        const auto value = feature.TryValue();
        if (!value)
            continue;
        values[feature.Name()] = *value;
        if (!options.json)
            PrintLine(feature.Name() + "=" + feature.Text(*value));
    }
    return values;
}

void PrintDescription(const Feature &feature, const Json &json)
{
    std::vector<std::array<std::string, 2>> rows;
    const auto add = [&](const char *label, const std::string &text) {
        if (!text.empty())
            rows.push_back({std::string("  ") + label, text});
    };
    add("type", Words(json, "type"));
    add("tool tip", Words(json, "toolTip"));
    add("description", Words(json, "description"));
    add("value", WithUnit(ValueText(feature, json), json));
    add("unit", Words(json, "unit"));
    add("limits", Limits(json));
    if (json.contains("entries"))
        add("entries", Join(json["entries"].get<std::vector<std::string>>(), ", "));
    add("access", Words(json, "access"));
    add("visibility", Words(json, "visibility"));
    PrintLine(feature.Name());
    PrintTable(rows);
}

} // namespace

void Features(const Options &options)
{
    ForEachCamera(options, "features", [&](const Camera &camera) { return PrintTree(camera, options); });
}

void Values(const Options &options)
{
    ForEachCamera(options, "values", [&](const Camera &camera) { return PrintValues(camera, options); });
}

void Describe(const Options &options)
{
    ForEachCamera(options, "features", [&](const Camera &camera) {
        Json list = Json::array();
        for (const std::string &name : options.features) {
            const Feature feature = camera.Find(name);
            list.push_back(feature.Describe());
            if (!options.json)
                PrintDescription(feature, list.back());
        }
        return list;
    });
}

} // namespace Orvi::Tool
