#include "OutputName.h"

#include "Failure.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace Orvi::Tool {
namespace {

struct Placeholder {
    const char *text;
    bool tellsCameras, tellsImages;
    std::string (*value)(const Frame &frame, std::uint64_t number);
};

std::string Padded(std::uint64_t value)
{
    const std::string digits = std::to_string(value);
    return std::string(digits.size() < 6 ? 6 - digits.size() : 0, '0') + digits;
}

/// A name that a camera told: it must stay within its folder.
std::string Safe(std::string name)
{
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
}

// clang-format off
constexpr Placeholder s_placeholders[] = {
    {"{serial}", true,  false, [](const Frame &frame, std::uint64_t) { return Safe(frame.camera.serial); }},
    {"{index}",  true,  false, [](const Frame &frame, std::uint64_t) { return std::to_string(frame.camera.index); }},
    {"{name}",   false, false, [](const Frame &frame, std::uint64_t) { return Safe(frame.camera.userName); }},
    {"{block}",  false, true,  [](const Frame &frame, std::uint64_t) { return Padded(frame.info.ullBlockId); }},
    {"{n}",      false, true,  [](const Frame &, std::uint64_t number) { return Padded(number); }},
};
// clang-format on

/// Null when none begins there.
const Placeholder *PlaceholderAt(const std::string &pattern, std::size_t at)
{
    for (const Placeholder &placeholder : s_placeholders)
        if (pattern.compare(at, std::strlen(placeholder.text), placeholder.text) == 0)
            return &placeholder;
    return nullptr;
}

bool Tells(const std::string &pattern, bool Placeholder::*what)
{
    return std::any_of(std::begin(s_placeholders), std::end(s_placeholders), [&](const Placeholder &placeholder) {
        return placeholder.*what && pattern.find(placeholder.text) != std::string::npos;
    });
}

Failure Unusable(const std::string &pattern, const std::string &why)
{
    return {ExitCode::Usage, "--output " + pattern + ": " + why};
}

void RequireKnownPlaceholders(const std::string &pattern)
{
    for (std::size_t at = pattern.find('{'); at != std::string::npos; at = pattern.find('{', at + 1))
        if (PlaceholderAt(pattern, at) == nullptr)
            throw Unusable(pattern, "knows only {serial}, {index}, {name}, {block} and {n}");
}

/// The ending of a file name without its dot.
std::string Ending(const std::string &name)
{
    const std::string ending = std::filesystem::path(name).extension().string();
    return ending.empty() ? ending : ending.substr(1);
}

} // namespace

OutputName::OutputName(const std::string &output, std::optional<FileFormat> format, std::size_t cameras,
                       std::uint64_t images)
    : pattern_(output)
{
    const std::optional<FileFormat> byEnding = FormatOfExtension(Ending(output));
    if (byEnding && format && *byEnding != *format)
        throw Unusable(output, std::string("does not end in .") + Extension(*format) + ", which --format asks for");
    format_ = format ? *format : byEnding.value_or(FileFormat::Png);

    if (!byEnding && output.find('{') == std::string::npos)
        pattern_ = (std::filesystem::path(output) / "{serial}-{block}").string();
    RequireKnownPlaceholders(pattern_);
    if (cameras > 1 && !Tells(pattern_, &Placeholder::tellsCameras))
        throw Unusable(output, "needs {serial} or {index} to tell the cameras' images apart");
    if (images > 1 && !Tells(pattern_, &Placeholder::tellsImages))
        throw Unusable(output, "needs {block} or {n} to tell the images apart");
    if (!byEnding)
        pattern_ += std::string(".") + Extension(format_);
}

std::filesystem::path OutputName::For(const Frame &frame, std::uint64_t number) const
{
    std::string name;
    for (std::size_t at = 0; at < pattern_.size();) {
        const Placeholder *placeholder = PlaceholderAt(pattern_, at);
        name += placeholder != nullptr ? placeholder->value(frame, number) : pattern_.substr(at, 1);
        at += placeholder != nullptr ? std::strlen(placeholder->text) : 1;
    }
    return name;
}

} // namespace Orvi::Tool
