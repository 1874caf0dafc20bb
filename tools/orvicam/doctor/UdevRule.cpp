#include "UdevRule.h"

#include <map>
#include <sstream>

namespace Orvi::Tool {
namespace {

constexpr char ruleFile[] = "70-u3v.rules";
// A file hides those of the same name in the folders behind its own.
constexpr const char *folders[] = {"/etc/udev/rules.d", "/run/udev/rules.d", "/usr/local/lib/udev/rules.d",
                                   "/usr/lib/udev/rules.d", "/lib/udev/rules.d"};

std::string WithoutComments(const std::string &text)
{
    std::istringstream lines(text);
    std::string all;
    for (std::string line; std::getline(lines, line);)
        if (const auto first = line.find_first_not_of(" \t"); first != std::string::npos && line[first] != '#')
            all += line + '\n';
    return all;
}

/// Why a rules file lets nobody open a camera; empty when it does.
std::string MistakeOf(const std::string &name, const std::string &rules)
{
    const auto has = [&](const char *text) { return rules.find(text) != std::string::npos; };
    if (!has("ef0500"))
        return "does not match the interface class of USB3 Vision (:ef0500:)";
    if (has("MODE=") || has("GROUP="))
        return "";
    if (!has("uaccess"))
        return "gives nobody access";
    return name < "73" ? "" : "is read too late: its number must be below 73";
}

} // namespace

const std::string reloadRulesCommand =
    "sudo udevadm control --reload && sudo udevadm trigger --subsystem-match=usb --action=change";

std::string InstallRuleCommand(const std::string &sdk)
{
    return "sudo cp '" + (std::filesystem::path(sdk) / "share/udev/rules.d" / ruleFile).string() +
           "' /etc/udev/rules.d/ && " + reloadRulesCommand;
}

UdevRule FindUdevRule(const Machine &machine)
{
    std::map<std::string, std::string> files; // name, folder
    for (const char *folder : folders)
        for (const std::string &name : machine.Names(folder))
            if (name.ends_with(".rules"))
                files.emplace(name, folder);

    UdevRule ours;
    for (const auto &[name, folder] : files) {
        const std::string path = folder + "/" + name;
        const std::string rules = WithoutComments(machine.Text(path).value_or(""));
        UdevRule rule{path, MistakeOf(name, rules)};
        if (rule.mistake.empty())
            return rule;
        if (name == ruleFile || rules.find("ef0500") != std::string::npos)
            ours = rule;
    }
    return ours;
}

} // namespace Orvi::Tool
