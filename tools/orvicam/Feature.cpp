#include "Feature.h"

#include "Failure.h"
#include "NodeAttributes.h"
#include "Quantity.h"
#include "Text.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Orvi::Tool {
namespace {

constexpr bool s_verify = true;
constexpr bool s_useCache = false;

std::string Words(std::int64_t value) { return std::to_string(value); }
std::string Words(double value) { return Number(value); }

template <class Value>
std::string Words(const std::optional<Range<Value>> &range, const std::string &unit)
{
    if (!range)
        return "";
    return "; it takes " + Words(range->min) + " to " + Words(range->max) + (unit.empty() ? "" : " " + unit) +
           (range->step != 0 ? " in steps of " + Words(range->step) : "");
}

std::optional<bool> ParseBool(const std::string &text)
{
    for (const char *yes : {"1", "true", "True", "on", "yes"})
        if (text == yes)
            return true;
    for (const char *no : {"0", "false", "False", "off", "no"})
        if (text == no)
            return false;
    return std::nullopt;
}

} // namespace

Feature::Feature(CAM_HANDLE camera, CAM_HANDLE node, std::string name)
    : camera_(camera), node_(node), name_(std::move(name))
{
    Check(Nd_GetType(camera_, node_, &type_), "cannot be examined");
}

bool Feature::IsReadable() const
{
    const CAM_NODE_ACCESS_MODE mode = AccessMode();
    return HasValue() && (mode == CAM_NODE_ACCESS_MODE_RO || mode == CAM_NODE_ACCESS_MODE_RW);
}

bool Feature::IsWritable() const
{
    const CAM_NODE_ACCESS_MODE mode = AccessMode();
    return HasValue() && (mode == CAM_NODE_ACCESS_MODE_WO || mode == CAM_NODE_ACCESS_MODE_RW);
}

bool Feature::HasValue() const
{
    switch (type_) {
    case CAM_NODE_TYPE_INTEGER:
    case CAM_NODE_TYPE_FLOAT:
    case CAM_NODE_TYPE_BOOLEAN:
    case CAM_NODE_TYPE_STRING:
    case CAM_NODE_TYPE_ENUMERATION:
        return true;
    default:
        return false;
    }
}

Json Feature::Value() const
{
    switch (AccessMode()) {
    case CAM_NODE_ACCESS_MODE_NI:
        Refuse("this camera does not implement it");
    case CAM_NODE_ACCESS_MODE_NA:
        Refuse("it is not available now; another setting disables it");
    case CAM_NODE_ACCESS_MODE_WO:
        Refuse(type_ == CAM_NODE_TYPE_COMMAND ? "a command has no value; execute it with: set " + name_
                                              : "it can only be written");
    default:
        break;
    }
    CAM_API_STATUS status = CAM_API_STS_SUCCESS;
    Json value;
    const auto read = [&](auto number, auto function) {
        status = function(camera_, node_, &number, s_verify, s_useCache);
        value = number;
    };
    const auto readText = [&](auto function) {
        std::string text;
        status = ReadText(text, [&](char *buffer, std::uint32_t *size) {
            return function(camera_, node_, buffer, size, s_verify, s_useCache);
        });
        value = text;
    };
    switch (type_) {
    // clang-format off
    case CAM_NODE_TYPE_INTEGER:     read(std::int64_t{}, Nd_GetIntValue); break;
    case CAM_NODE_TYPE_FLOAT:       read(double{}, Nd_GetFloatValue);     break;
    case CAM_NODE_TYPE_BOOLEAN:     read(bool{}, Nd_GetBoolValue);        break;
    case CAM_NODE_TYPE_STRING:      readText(Nd_GetStrValue);             break;
    case CAM_NODE_TYPE_ENUMERATION: readText(Nd_GetEnumStrValue);         break;
    case CAM_NODE_TYPE_COMMAND:     Refuse("a command has no value; execute it with: set " + name_);
    case CAM_NODE_TYPE_CATEGORY:    Refuse("it is a category, which has no value");
    default:                        Refuse("it has no value that can be shown");
        // clang-format on
    }
    Check(status, "cannot be read");
    return value;
}

std::string Feature::Text(const Json &value) const
{
    if (value.is_string())
        return value.get<std::string>();
    if (value.is_number_float())
        return Number(value.get<double>());
    CAM_NODE_REPRESENTATION representation{};
    if (value.is_number() && Nd_GetRepresentation(camera_, node_, &representation) == CAM_API_STS_SUCCESS &&
        representation == CAM_NODE_REPRESENTATION_HEX_NUMBER)
        return Hex(static_cast<std::uint64_t>(value.get<std::int64_t>()));
    return value.dump();
}

std::string Feature::InOwnUnit(const std::string &text) const
{
    const auto quantity = ParseQuantity(text);
    if (!quantity || (type_ != CAM_NODE_TYPE_INTEGER && type_ != CAM_NODE_TYPE_FLOAT))
        return text;
    const std::string unit = Unit();
    if (unit.empty())
        Refuse("'" + text + "' has the unit " + quantity->unit + ", but it takes a number without a unit" + Takes());
    if (const auto number = Convert(*quantity, unit))
        return *number;
    const std::string others = Join(UnitsAlike(unit), ", ");
    Refuse("'" + text + "' has the unit " + quantity->unit + ", but its unit is " + unit +
           (others.empty() ? "" : " (it takes " + others + " too)") + Takes());
}

CAM_API_STATUS Feature::TrySet(const std::string &text, const std::string &number) const
{
    const auto parsed = [&](const auto &value, const char *kind) {
        if (!value)
            Refuse("'" + text + "' is no " + kind + Takes());
        return *value;
    };
    switch (type_) {
    case CAM_NODE_TYPE_INTEGER:
        return Nd_SetIntValue(camera_, node_, parsed(ParseInteger(number), "integer"), s_verify);
    case CAM_NODE_TYPE_FLOAT:
        return Nd_SetFloatValue(camera_, node_, parsed(ParseFloat(number), "number"), s_verify);
    case CAM_NODE_TYPE_BOOLEAN:
        return Nd_SetBoolValue(camera_, node_, parsed(ParseBool(text), "truth value (true or false)"), s_verify);
    case CAM_NODE_TYPE_STRING:
        return Nd_SetStrValue(camera_, node_, text.c_str(), s_verify);
    case CAM_NODE_TYPE_ENUMERATION:
        return Nd_SetEnumStrValue(camera_, node_, text.c_str(), s_verify);
    case CAM_NODE_TYPE_COMMAND:
        Refuse("it is a command; execute it with: set " + name_);
    default:
        Refuse("it has no value that can be set");
    }
}

void Feature::Set(const std::string &text) const
{
    const std::string number = InOwnUnit(text);
    const CAM_API_STATUS status = TrySet(text, number);
    if (status == CAM_API_STS_SUCCESS)
        return;
    // Before another call can replace the camera's own words.
    const std::string reason = StatusText(status);
    if (IsCameraGone(status))
        Check(status, "cannot be set");
    switch (AccessMode()) {
    case CAM_NODE_ACCESS_MODE_NI:
        Refuse("this camera does not implement it");
    case CAM_NODE_ACCESS_MODE_NA:
        Refuse("it cannot be written now: access mode NA, not available; another setting disables it");
    case CAM_NODE_ACCESS_MODE_RO:
        Refuse("it cannot be written now: access mode RO, read only");
    default:
        break;
    }
    if (type_ == CAM_NODE_TYPE_ENUMERATION) {
        const std::vector<std::string> entries = Entries();
        if (std::find(entries.begin(), entries.end(), text) == entries.end())
            Refuse("'" + text + "' is none of its entries" + Takes());
    }
    if (!Fits(number))
        Refuse(text + " is out of range" + Takes());
    Refuse("'" + text + "' was refused: " + reason);
}

void Feature::Execute() const
{
    if (type_ != CAM_NODE_TYPE_COMMAND)
        Refuse("it is no command; give it a value: " + name_ + "=VALUE" + Takes());
    Check(Nd_CmdExecute(camera_, node_, s_verify), "cannot be executed");
}

CAM_NODE_ACCESS_MODE Feature::AccessMode() const
{
    CAM_NODE_ACCESS_MODE mode{};
    Check(Nd_GetAccessMode(camera_, node_, &mode), "cannot be examined");
    return mode;
}

std::string Feature::Unit() const { return UnitOf(camera_, node_); }

std::vector<std::string> Feature::Entries() const
{
    std::vector<std::string> entries;
    Check(ReadEntries(camera_, node_, entries), "cannot list its entries");
    return entries;
}

/// "; it takes ...": the end of a message about a value that does not fit.
std::string Feature::Takes() const
{
    switch (type_) {
    case CAM_NODE_TYPE_ENUMERATION:
        return "; it takes " + Join(Entries(), ", ");
    case CAM_NODE_TYPE_INTEGER:
        return Words(IntRange(camera_, node_), Unit());
    case CAM_NODE_TYPE_FLOAT:
        return Words(FloatRange(camera_, node_), Unit());
    default:
        return "";
    }
}

bool Feature::Fits(const std::string &text) const
{
    if (type_ == CAM_NODE_TYPE_INTEGER) {
        const auto range = IntRange(camera_, node_);
        if (!range)
            return true;
        const std::int64_t value = ParseInteger(text).value_or(range->min);
        const auto aboveMin = static_cast<std::uint64_t>(value) - static_cast<std::uint64_t>(range->min);
        return value >= range->min && value <= range->max &&
               (range->step == 0 || aboveMin % static_cast<std::uint64_t>(range->step) == 0);
    }
    if (type_ == CAM_NODE_TYPE_FLOAT) {
        const auto range = FloatRange(camera_, node_);
        if (!range)
            return true;
        const double value = ParseFloat(text).value_or(range->min);
        return value >= range->min && value <= range->max;
    }
    return true;
}

void Feature::Check(CAM_API_STATUS status, const char *doing) const
{
    if (status != CAM_API_STS_SUCCESS)
        throw Failure(IsCameraGone(status) ? ExitCode::Camera : ExitCode::Feature,
                      name_ + " " + doing + ": " + StatusText(status));
}

void Feature::Refuse(const std::string &why) const { throw Failure(ExitCode::Feature, name_ + ": " + why); }

} // namespace Orvi::Tool
