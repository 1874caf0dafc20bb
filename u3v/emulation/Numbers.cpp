#include "u3v/emulation/Numbers.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Orvi::U3v::Emulation {

namespace {

constexpr double most = std::numeric_limits<std::int32_t>::max();
constexpr double leastLimit = 1e9; // nodes without limits give the largest float, or nearly so

/// A limit as a raw value inside the limit; what is whole but for rounding is whole.
std::int32_t Inside(double raw, bool isMinimum)
{
    const double nearest = std::round(raw);
    if (std::abs(nearest - raw) <= 1e-7 * std::max(1.0, std::abs(raw)))
        return Saturate(nearest);
    return Saturate(isMinimum ? std::ceil(raw) : std::floor(raw));
}

/// The finest power of ten that keeps a value of that size within 32 bits.
std::int32_t DenominatorFor(double largest)
{
    std::int32_t denominator = 1'000'000'000;
    while (denominator > 10 && largest * denominator > most)
        denominator /= 10;
    return denominator;
}

} // namespace

std::int32_t Saturate(double value)
{
    return static_cast<std::int32_t>(std::clamp(value, double{std::numeric_limits<std::int32_t>::min()}, most));
}

double Number::Factor() const
{
    if (unit_ == Unit::AsNode)
        return 1;
    const std::string_view unit = nodes_.Unit(*id_);
    return unit == "s" ? 1 : unit == "ms" ? 1e-3 : unit == "ns" ? 1e-9 : 1e-6;
}

Number::Range Number::GetRange() const
{
    if (Type() == GenApi::NodeType::Enumeration) {
        Range range = {0, 0, 1};
        for (std::uint32_t i = 0; i < nodes_.EntryCount(*id_); ++i) {
            const auto value = static_cast<double>(nodes_.EntryInt(nodes_.Entry(*id_, i)));
            range.min = i == 0 ? value : std::min(range.min, value);
            range.max = i == 0 ? value : std::max(range.max, value);
        }
        return range;
    }
    if (Type() == GenApi::NodeType::Integer)
        return {static_cast<double>(nodes_.IntMin(*id_)), static_cast<double>(nodes_.IntMax(*id_)),
                static_cast<double>(nodes_.IntInc(*id_))};
    return {nodes_.FloatMin(*id_), nodes_.FloatMax(*id_), nodes_.FloatInc(*id_).value_or(0)};
}

Scale Number::GetScale() const
{
    const Range range = GetRange();
    const double factor = Factor();
    const bool isWhole = Type() != GenApi::NodeType::Float && unit_ == Unit::AsNode;
    if (isWhole) {
        // Equal ones are an increment.
        const std::int32_t increment = std::max(1, Saturate(range.step));
        return {increment, increment, Inside(range.min, true), Inside(range.max, false)};
    }
    const double largest = std::max(std::abs(range.min), std::abs(range.max)) * factor;
    constexpr std::int32_t thousandths = 1000, microseconds = 1'000'000;
    const std::int32_t denominator = largest < leastLimit     ? DenominatorFor(largest)
                                     : unit_ == Unit::Seconds ? microseconds
                                                              : thousandths;
    return {1, denominator, Inside(range.min * factor * denominator, true),
            Inside(range.max * factor * denominator, false)};
}

double Number::Get() const
{
    RequireReadable(nodes_, id_);
    switch (Type()) {
    case GenApi::NodeType::Integer:
        return static_cast<double>(nodes_.GetInt(*id_));
    case GenApi::NodeType::Enumeration:
        return static_cast<double>(nodes_.GetEnumInt(*id_));
    default:
        return nodes_.GetFloat(*id_);
    }
}

std::int32_t Number::GetRaw(const Scale &scale) const
{
    const double value = Get();
    if (scale.numerator == scale.denominator)
        return Saturate(std::round(value));
    return Saturate(std::round(value * Factor() * scale.denominator / scale.numerator));
}

void Number::SetRaw(std::int32_t raw)
{
    RequireWritable(nodes_, id_);
    const Scale scale = GetScale();
    if (raw < scale.minimum || raw > scale.maximum)
        throw StatusError(CAM_API_STS_INVALID_PARAMETER,
                          "[" + std::string(nodes_.Name(*id_)) + "] the value is outside its range");
    const Range range = GetRange();
    double value = raw;
    if (scale.numerator != scale.denominator) {
        value = raw / (scale.denominator * Factor());
        // A register's steps are not the node's: the node gets the next of its own.
        if (range.step > 0)
            value = range.min + std::round((value - range.min) / range.step) * range.step;
        value = std::clamp(value, range.min, range.max);
    }
    switch (Type()) {
    case GenApi::NodeType::Integer:
        nodes_.SetInt(*id_, std::llround(value));
        break;
    case GenApi::NodeType::Enumeration:
        nodes_.SetEnumInt(*id_, std::llround(value));
        break;
    default:
        nodes_.SetFloat(*id_, value);
    }
}

} // namespace Orvi::U3v::Emulation
