// What describe and features tell of a feature.

#include "Failure.h"
#include "Feature.h"
#include "NodeAttributes.h"

namespace Orvi::Tool {
namespace {

template <class Value>
void AddRange(Json &json, const std::optional<Range<Value>> &range)
{
    if (!range)
        return;
    json["min"] = range->min;
    json["max"] = range->max;
    if (range->step != 0)
        json["increment"] = range->step;
}

} // namespace

Json Feature::Describe() const
{
    Json json = {{"name", name_}, {"type", TypeName(type_)}, {"access", AccessName(AccessMode())}};
    CAM_NODE_VISIBILITY visibility{};
    Check(Nd_GetVisibility(camera_, node_, &visibility), "cannot be examined");
    json["visibility"] = VisibilityName(visibility);
    if (const std::string toolTip = ToolTipOf(camera_, node_); !toolTip.empty())
        json["toolTip"] = toolTip;
    if (const std::string description = DescriptionOf(camera_, node_); !description.empty())
        json["description"] = description;
    if (const auto value = TryValue())
        json["value"] = *value;
    if (type_ == CAM_NODE_TYPE_INTEGER || type_ == CAM_NODE_TYPE_FLOAT) {
        if (const std::string unit = Unit(); !unit.empty())
            json["unit"] = unit;
    }
    if (type_ == CAM_NODE_TYPE_INTEGER)
        AddRange(json, IntRange(camera_, node_));
    if (type_ == CAM_NODE_TYPE_FLOAT)
        AddRange(json, FloatRange(camera_, node_));
    if (type_ == CAM_NODE_TYPE_ENUMERATION)
        json["entries"] = Entries();
    return json;
}

std::optional<Json> Feature::TryValue() const
{
    if (!IsReadable())
        return std::nullopt;
    try {
        return Value();
    } catch (const Failure &failure) {
        if (failure.Code() == ExitCode::Feature)
            return std::nullopt;
        throw;
    }
}

} // namespace Orvi::Tool
