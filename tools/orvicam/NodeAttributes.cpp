#include "NodeAttributes.h"

#include <cstddef>

namespace Orvi::Tool {
namespace {

using TextCall = CAM_API_STATUS (*)(CAM_HANDLE, CAM_HANDLE, char *, std::uint32_t *);

std::string TextOf(TextCall call, CAM_HANDLE camera, CAM_HANDLE node)
{
    std::string text;
    ReadText(text, [&](char *buffer, std::uint32_t *size) { return call(camera, node, buffer, size); });
    return text;
}

template <std::size_t count>
const char *NameAt(const char *const (&names)[count], std::uint32_t index)
{
    return index < count ? names[index] : "?";
}

} // namespace

std::optional<Range<std::int64_t>> IntRange(CAM_HANDLE camera, CAM_HANDLE node)
{
    Range<std::int64_t> range;
    if (Nd_GetIntMin(camera, node, &range.min) != CAM_API_STS_SUCCESS ||
        Nd_GetIntMax(camera, node, &range.max) != CAM_API_STS_SUCCESS)
        return std::nullopt;
    if (Nd_GetIntInc(camera, node, &range.step) != CAM_API_STS_SUCCESS || range.step <= 1)
        range.step = 0;
    return range;
}

std::optional<Range<double>> FloatRange(CAM_HANDLE camera, CAM_HANDLE node)
{
    Range<double> range;
    bool hasStep = false;
    if (Nd_GetFloatMin(camera, node, &range.min) != CAM_API_STS_SUCCESS ||
        Nd_GetFloatMax(camera, node, &range.max) != CAM_API_STS_SUCCESS)
        return std::nullopt;
    if (Nd_GetFloatHasInc(camera, node, &hasStep) != CAM_API_STS_SUCCESS || !hasStep ||
        Nd_GetFloatInc(camera, node, &range.step) != CAM_API_STS_SUCCESS)
        range.step = 0;
    return range;
}

std::string UnitOf(CAM_HANDLE camera, CAM_HANDLE node) { return TextOf(Nd_GetUnit, camera, node); }
std::string ToolTipOf(CAM_HANDLE camera, CAM_HANDLE node) { return TextOf(Nd_GetToolTip, camera, node); }
std::string DescriptionOf(CAM_HANDLE camera, CAM_HANDLE node) { return TextOf(Nd_GetDescription, camera, node); }

CAM_API_STATUS ReadEntries(CAM_HANDLE camera, CAM_HANDLE node, std::vector<std::string> &entries)
{
    std::uint32_t count = 0;
    if (const CAM_API_STATUS status = Nd_GetNumOfEnumEntries(camera, node, &count); status != CAM_API_STS_SUCCESS)
        return status;
    for (std::uint32_t i = 0; i < count; ++i) {
        CAM_HANDLE entry = 0;
        CAM_NODE_ACCESS_MODE mode{};
        std::string name;
        const auto read = [&](char *buffer, std::uint32_t *size) {
            return Nd_GetEnumEntryStrValue(camera, entry, buffer, size);
        };
        CAM_API_STATUS status = Nd_GetEnumEntryByIndex(camera, node, i, &entry);
        if (status == CAM_API_STS_SUCCESS)
            status = ReadText(name, read);
        if (status != CAM_API_STS_SUCCESS)
            return status;
        const bool known = Nd_GetAccessMode(camera, entry, &mode) == CAM_API_STS_SUCCESS;
        if (!known || (mode != CAM_NODE_ACCESS_MODE_NI && mode != CAM_NODE_ACCESS_MODE_NA))
            entries.push_back(name);
    }
    return CAM_API_STS_SUCCESS;
}

const char *TypeName(CAM_NODE_TYPE type)
{
    static constexpr const char *names[] = {"Value",  "Base",     "Integer",  "Boolean",     "Command",   "Float",
                                            "String", "Register", "Category", "Enumeration", "EnumEntry", "Port"};
    return NameAt(names, type);
}

const char *AccessName(CAM_NODE_ACCESS_MODE mode)
{
    static constexpr const char *names[] = {"NI", "NA", "WO", "RO", "RW"};
    return NameAt(names, mode);
}

const char *VisibilityName(CAM_NODE_VISIBILITY visibility)
{
    static constexpr const char *names[] = {"Beginner", "Expert", "Guru", "Invisible"};
    return NameAt(names, visibility);
}

} // namespace Orvi::Tool
