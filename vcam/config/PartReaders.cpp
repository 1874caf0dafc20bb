#include "vcam/config/CameraReader.h"
#include "vcam/config/TextFile.h"

#include "u3v/genapi/Error.h"
#include "u3v/genapi/NodeMap.h"
#include "u3v/genapi/Port.h"

#include <array>
#include <filesystem>
#include <pugixml.hpp>
#include <tuple>

namespace Orvi::Vcam {

namespace {

/// "12:3" of an offset in a text.
std::string PlaceIn(std::string_view text, std::ptrdiff_t offset)
{
    const std::string_view before = text.substr(0, static_cast<std::size_t>(offset));
    std::size_t line = 1;
    for (const char c : before) {
        line += c == '\n' ? 1 : 0;
    }
    return std::to_string(line) + ":" + std::to_string(before.size() - (before.rfind('\n') + 1) + 1);
}

/// A camera that is not there: loading a description reads nothing.
class NoPort final : public GenApi::Port {
  public:
    void Read(std::uint64_t, std::span<std::byte>) override { throw GenApi::Error("there is no camera"); }
    void Write(std::uint64_t, std::span<const std::byte>) override { throw GenApi::Error("there is no camera"); }
};

std::string ProblemOfNodes(const std::string &path, const std::string &xml)
{
    try {
        NoPort port;
        GenApi::NodeMap::Load(xml, port);
        return "";
    } catch (const std::exception &error) {
        return "names " + path + ", which cannot be used: " + error.what();
    }
}

/// What is wrong with a description as such; its nodes are looked at by a check alone.
std::string ProblemOfXml(const std::string &path, const std::string &xml, Disk disk)
{
    pugi::xml_document document;
    if (const pugi::xml_parse_result parsed = document.load_buffer(xml.data(), xml.size()); !parsed) {
        return "names no XML: " + path + ":" + PlaceIn(xml, parsed.offset) + ": " + parsed.description();
    }
    const std::string root = document.document_element().name();
    if (root != "RegisterDescription") {
        return "names no GenICam description: " + path + " holds <" + root + ">";
    }
    return disk == Disk::ReadAll ? ProblemOfNodes(path, xml) : "";
}

/// The key of a file for what the struct calls it.
std::string_view KeyOf(std::string_view member) { return member == "moment" ? "on" : member; }

} // namespace

std::string Resolved(const ReadContext &context, const std::string &path)
{
    return (std::filesystem::path(context.folder) / path).lexically_normal();
}

void ReadXml(Section &camera, const ReadContext &context, std::string &xml)
{
    constexpr std::size_t largest = 16 << 20;
    std::string path;
    if (!camera.Text("xml", path) || context.disk == Disk::Untouched) {
        return;
    }
    path = Resolved(context, path);
    std::string text, problem = ReadTextFile(path, largest, text);
    problem = problem.empty() ? ProblemOfXml(path, text, context.disk) : "names " + path + ", which " + problem;
    if (!problem.empty()) {
        camera.Wrong("xml", problem);
        return;
    }
    xml = std::move(text);
}

void ReadPreset(const TomlValue &table, const ReadContext &context, std::vector<RegisterPreset> &presets)
{
    Section section(table, "[[camera.register]]", context.mistakes);
    RegisterPreset preset;
    for (const std::string_view key : {"address", "value"}) {
        if (section.Find(key) == nullptr) {
            section.Wrong(key, "is missing in [[camera.register]]");
        }
    }
    if (section.Integer("address", 0, INT64_MAX, preset.address) && preset.address % 4 != 0) {
        section.Wrong("address", "takes multiples of 4, not " + std::to_string(preset.address));
    }
    section.Integer("value", INT32_MIN, UINT32_MAX, preset.value);
    section.RefuseOthers();
    presets.push_back(preset);
}

void ReadFault(const TomlValue &table, const ReadContext &context, FaultScript &script)
{
    using enum FaultMoment;
    std::vector<std::string_view> moments, actions;
    for (const FaultMoment moment : {Frame, Command, Write, Time}) {
        moments.push_back(NameOf(moment));
    }
    for (std::size_t i = 0; i < static_cast<std::size_t>(FaultAction::Count); ++i) {
        actions.push_back(NameOf(static_cast<FaultAction>(i)));
    }

    Section section(table, "[[camera.fault]]", context.mistakes);
    const std::size_t before = context.mistakes.size();
    FaultRule rule;
    for (const std::string_view key : {"on", "action"}) {
        if (section.Find(key) == nullptr) {
            section.Wrong(key, "is missing in [[camera.fault]]; it takes " + Listed(key == "on" ? moments : actions));
        }
    }
    if (const auto index = section.IndexOf("on", moments)) {
        rule.moment = static_cast<FaultMoment>(*index);
    }
    if (const auto index = section.IndexOf("action", actions)) {
        rule.action = static_cast<FaultAction>(*index);
    }
    if (std::uint64_t at = 0; section.Integer("at", 0, INT64_MAX, at)) {
        rule.at = at;
    }
    section.Integer("every", 1, INT64_MAX, rule.every);
    section.Integer("from", 0, INT64_MAX, rule.from);
    section.Real("probability", 0, 1, rule.probability);
    section.Integer("times", 0, UINT32_MAX, rule.times);
    if (std::uint64_t address = 0; section.Integer("address", 0, INT64_MAX, address)) {
        rule.address = address;
    }
    section.Integer("value", INT32_MIN, UINT32_MAX, rule.value);
    section.Integer("mask", 0, UINT32_MAX, rule.mask);
    section.Integer("amount", INT64_MIN, INT64_MAX, rule.amount);
    section.Integer("target", 0, INT64_MAX, rule.target);
    section.RefuseOthers();
    const bool isWrite = section.Find("on") != nullptr && rule.moment == FaultMoment::Write;
    for (const auto &[key, isIdle, why] :
         {std::tuple("every", rule.at.has_value(), "means nothing beside 'at', which is one number"),
          std::tuple("from", rule.at.has_value(), "means nothing beside 'at', which is one number"),
          std::tuple("value", !isWrite, "belongs to writes alone"),
          std::tuple("mask", !isWrite, "belongs to writes alone")}) {
        if (isIdle && section.Find(key) != nullptr) {
            section.Wrong(key, why);
        }
    }
    if (rule.action == FaultAction::Poke && section.Find("target") == nullptr) {
        section.Wrong("target", "is missing: poke needs the register's address");
    }
    if (context.mistakes.size() != before) {
        return;
    }
    if (const FaultProblem problem = ProblemOf(rule)) {
        section.Wrong(KeyOf(problem.member), problem.reason);
        return;
    }
    script.rules.push_back(rule);
}

} // namespace Orvi::Vcam
