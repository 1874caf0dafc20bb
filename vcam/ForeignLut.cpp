// The look-up table, of as many entries and bits as the description has.

#include "vcam/ForeignFeatures.h"
#include "vcam/Registers.h"
#include "vcam/Wire.h"

#include <algorithm>
#include <cmath>

namespace Orvi::Vcam {

namespace {

constexpr double s_engineLast = 1023; // entry and value
/// Larger tables are memory alone.
constexpr double s_mostEntries = 4096;

/// A channel that acts on all colours, where there are several tables.
constexpr const char *s_channel = "Luminance";

} // namespace

std::optional<double> ForeignFeatures::LastLutEntry() const
{
    const auto last = nodes_.Maximum("LUTIndex");
    return nodes_.Has("LUTEnable") && nodes_.Has("LUTValue") && last && *last >= 1 && *last < s_mostEntries
               ? last
               : std::nullopt;
}

/// Each entry stands for those of the engine's that lie nearest.
GenCpStatus ForeignFeatures::PassLutEntry(double last, double most)
{
    const auto index = nodes_.Number("LUTIndex"), value = nodes_.Number("LUTValue");
    if (!index || !value || *index > last || most <= 0) {
        return GenCpStatus::Success;
    }
    const auto entryOf = [&](double place) {
        return static_cast<std::uint32_t>(std::clamp(std::ceil(place / last * s_engineLast), 0.0, s_engineLast + 1));
    };
    const auto raw = static_cast<std::uint32_t>(std::llround(std::clamp(*value / most, 0.0, 1.0) * s_engineLast));
    for (std::uint32_t entry = entryOf(*index - 0.5); entry < entryOf(*index + 0.5); ++entry) {
        if (const GenCpStatus status = PassBehind(Reg::LutIndex, entry, Reg::LutValue, raw);
            status != GenCpStatus::Success) {
            return status;
        }
    }
    return GenCpStatus::Success;
}

GenCpStatus ForeignFeatures::ApplyLut()
{
    if (!nodes_.Has("LUTEnable")) {
        return GenCpStatus::Success;
    }
    const bool isOther = nodes_.ValueOf("LUTSelector", s_channel) && nodes_.Symbol("LUTSelector") != s_channel;
    if (isOther) {
        return GenCpStatus::Success;
    }
    GenCpStatus status = GenCpStatus::Success;
    if (const auto last = LastLutEntry()) {
        status = PassLutEntry(*last, nodes_.Maximum("LUTValue").value_or(0));
    }
    const auto isOn = nodes_.Number("LUTEnable");
    return isOn && status == GenCpStatus::Success ? Pass(Reg::LutEnable, *isOn != 0 ? 1 : 0) : status;
}

void ForeignFeatures::EachLutEntry(const std::function<void(double last)> &action)
{
    const auto last = LastLutEntry();
    const auto index = nodes_.Number("LUTIndex");
    for (double entry = 0; last && index && entry <= *last; ++entry) {
        nodes_.SetNumber("LUTIndex", entry);
        action(*last);
    }
    if (last && index) {
        nodes_.SetNumber("LUTIndex", *index);
    }
}

void ForeignFeatures::SetLutDefaults()
{
    const double most = nodes_.Maximum("LUTValue").value_or(0);
    EachLutEntry([&](double last) {
        nodes_.SetNumber("LUTValue", std::floor(nodes_.Number("LUTIndex").value_or(0) / last * most));
    });
}

GenCpStatus ForeignFeatures::PassLut()
{
    GenCpStatus status = GenCpStatus::Success;
    const double most = nodes_.Maximum("LUTValue").value_or(0);
    EachLutEntry([&](double last) { status = status == GenCpStatus::Success ? PassLutEntry(last, most) : status; });
    return status;
}

} // namespace Orvi::Vcam
