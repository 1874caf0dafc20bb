// orvicam doctor: runs the checks and prints what they say.

#include "Checks.h"

#include "tools/orvicam/Failure.h"
#include "tools/orvicam/Print.h"
#include "tools/orvicam/Verbs.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace Orvi::Tool {
namespace {

struct VerdictNames {
    const char *forPeople, *forPrograms;
};
constexpr VerdictNames verdictNames[] = {{"OK  ", "ok"}, {"WARN", "warn"}, {"FAIL", "fail"}};
const VerdictNames &Names(Verdict verdict) { return verdictNames[static_cast<std::size_t>(verdict)]; }

void Append(Findings &findings, Findings more) { std::move(more.begin(), more.end(), std::back_inserter(findings)); }

/// Loads the library's transport; what comes out of it is judged behind what explains it.
Findings CheckLibrary(const Options &options, const std::vector<UsbCamera> &cameras)
{
    try {
        const Session session(options.virtualCameras);
        CAM_SYSTEM_INFO info{};
        Check(Sys_GetInformation(&info), "versions");
        const std::string versions =
            std::string(info.szTransportName) + " " + info.szTransportVersion + ", USB: " + info.szTransportUsbVersion;
        const char *sdk = std::getenv("ORVICAMSDK");
        return {{Verdict::Ok, "transport", versions + ", from " + (sdk != nullptr ? sdk : "")},
                CheckCameras(session.Cameras(), cameras)};
    } catch (const Failure &failure) {
        return {{Verdict::Fail, "transport", failure.what(), "export ORVICAMSDK=/opt/OrviCamSDK"}};
    }
}

Findings Examine(const Options &options)
{
    const Machine machine(options.root);
    const std::vector<UsbCamera> cameras = FindUsbCameras(machine);
    // First, because it settles ORVICAMSDK and the cache folder.
    const Findings library = CheckLibrary(options, cameras);
    const char *variable = std::getenv("ORVICAMSDK");
    const std::string sdk = variable != nullptr ? variable : "/opt/OrviCamSDK";
    const UdevRule rule = FindUdevRule(machine);
    const char *virtualCameras = std::getenv("ORVI_VIRTUAL_CAMERAS");
    const bool isVirtual = virtualCameras != nullptr && *virtualCameras != '\0';

    Findings findings = {CheckKernel(machine, isVirtual ? Wanted::VirtualCameras : Wanted::RealCameras),
                         CheckVirtualBus(machine), CheckUdevRule(rule, cameras, machine, sdk),
                         CheckUsbMemory(machine, cameras.size())};
    for (const UsbCamera &camera : cameras)
        Append(findings, CheckUsbCamera(camera, machine, rule, sdk));
    Append(findings, library);
    Append(findings, {CheckConfiguration(sdk), CheckCache()});
    Append(findings, CheckVariables());
    return findings;
}

void PrintJson(const Findings &findings, Verdict worst)
{
    Json list = Json::array();
    for (const Finding &finding : findings) {
        Json row = {{"check", finding.check}, {"verdict", Names(finding.verdict).forPrograms}, {"text", finding.text}};
        if (!finding.remedy.empty())
            row["remedy"] = finding.remedy;
        list.push_back(std::move(row));
    }
    PrintLine(Dump({{"verdict", Names(worst).forPrograms}, {"findings", list}}));
}

void PrintText(const Findings &findings)
{
    std::size_t width = 0;
    for (const Finding &finding : findings)
        width = std::max(width, finding.check.size());
    for (const Finding &finding : findings) {
        const std::string blanks(width - finding.check.size() + 2, ' ');
        PrintLine(std::string(Names(finding.verdict).forPeople) + "  " + finding.check + blanks + finding.text);
        if (!finding.remedy.empty())
            PrintLine(std::string(width + 8, ' ') + "-> " + finding.remedy);
    }
}

} // namespace

void Doctor(const Options &options)
{
    const Findings findings = Examine(options);
    const auto count = [&](Verdict verdict) {
        return std::count_if(findings.begin(), findings.end(),
                             [&](const Finding &finding) { return finding.verdict == verdict; });
    };
    const auto failed = count(Verdict::Fail), warned = count(Verdict::Warn);
    if (options.json)
        PrintJson(findings, failed != 0 ? Verdict::Fail : warned != 0 ? Verdict::Warn : Verdict::Ok);
    else
        PrintText(findings);
    if (failed != 0)
        throw Failure(ExitCode::Failed, std::to_string(failed) + " of " + std::to_string(findings.size()) +
                                            " checks failed; the lines with -> say what to do");
}

} // namespace Orvi::Tool
