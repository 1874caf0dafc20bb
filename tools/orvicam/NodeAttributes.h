#pragma once
// What a description says of a node: unit, limits, entries, and the words for its kind.

#include "OrviCamApi.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Orvi::Tool {

/// A text from a call that takes (buffer, size) and tells the size for a null buffer.
template <class Call>
CAM_API_STATUS ReadText(std::string &text, const Call &call)
{
    std::uint32_t size = 0;
    if (const CAM_API_STATUS status = call(nullptr, &size); status != CAM_API_STS_SUCCESS)
        return status;
    std::string buffer(size, '\0');
    const CAM_API_STATUS status = call(buffer.data(), &size);
    if (status == CAM_API_STS_SUCCESS)
        text = buffer.c_str(); // up to the NUL
    return status;
}

template <class Value>
struct Range {
    Value min{}, max{};
    Value step{}; ///< 0 when every value between the limits is taken
};

/// Nothing when the limits cannot be read.
std::optional<Range<std::int64_t>> IntRange(CAM_HANDLE camera, CAM_HANDLE node);
std::optional<Range<double>> FloatRange(CAM_HANDLE camera, CAM_HANDLE node);

/// Empty when it has none.
std::string UnitOf(CAM_HANDLE camera, CAM_HANDLE node);
std::string ToolTipOf(CAM_HANDLE camera, CAM_HANDLE node);
std::string DescriptionOf(CAM_HANDLE camera, CAM_HANDLE node);

/// Those that can be chosen now.
CAM_API_STATUS ReadEntries(CAM_HANDLE camera, CAM_HANDLE node, std::vector<std::string> &entries);

/// "Integer"
const char *TypeName(CAM_NODE_TYPE type);
/// "RW"
const char *AccessName(CAM_NODE_ACCESS_MODE mode);
/// "Expert"
const char *VisibilityName(CAM_NODE_VISIBILITY visibility);

} // namespace Orvi::Tool
