#include "u3v/genapi/NumberNodes.h"

#include "u3v/genapi/Formula.h"
#include "u3v/genapi/MapState.h"
#include "u3v/genapi/Say.h"

namespace Orvi::GenApi {

namespace {

/// The nearest int64 of a limit: a limit may lie outside of what integers can be.
std::int64_t Clamp(double value)
{
    if (const auto rounded = RoundToInt64(value))
        return *rounded;
    return value < 0 ? noLimits<std::int64_t>.min : noLimits<std::int64_t>.max;
}

} // namespace

template <class T>
void NumberNode<T>::SetFloat(Run &run, double value)
{
    if (std::isnan(value))
        Fail(run, "cannot take a value that is not a number");
    if constexpr (std::is_same_v<T, double>)
        Set(run, value);
    else
        Set(run, RoundToInt(run, *this, value));
}

template <class T>
Limits<std::int64_t> NumberNode<T>::IntLimits(Run &run)
{
    const Limits<T> limits = ValueLimits(run);
    if constexpr (std::is_same_v<T, double>)
        return {Clamp(std::ceil(limits.min)), Clamp(std::floor(limits.max))};
    else
        return limits;
}

template <class T>
std::int64_t NumberNode<T>::IntInc(Run &run)
{
    const auto inc = ValueInc(run);
    return inc ? std::max<std::int64_t>(ToInt(run, *inc), 1) : 1;
}

template <class T>
std::optional<double> NumberNode<T>::FloatInc(Run &run)
{
    // An integer's step says nothing of the float above it: that one rounds.
    if constexpr (std::is_same_v<T, double>)
        return ValueInc(run);
    else
        return std::nullopt;
}

template <class T>
void NumberNode<T>::Check(Run &run, T value)
{
    const Limits<T> limits = ValueLimits(run);
    CheckRange(run, value, limits);
    if (const auto inc = ValueInc(run))
        CheckInc(run, value, limits.min == noLimits<T>.min ? T{} : limits.min, *inc);
}

template <class T>
void NumberNode<T>::CheckRange(const Run &run, T value, Limits<T> limits) const
{
    if (value >= limits.min && value <= limits.max)
        return;
    const bool low = value < limits.min;
    Fail(run, Say("cannot take ", Text(value), ", it is ",
                  (low ? "below the minimum " + Text(limits.min) : "above the maximum " + Text(limits.max))));
}

template <class T>
void NumberNode<T>::CheckInc(const Run &run, T value, T min, T inc) const
{
    if (inc <= 0)
        return;
    T below;
    if constexpr (std::is_same_v<T, double>) {
        const double steps = (value - min) / inc;
        if (std::fabs(steps - std::round(steps)) < 1e-6)
            return;
        below = min + std::floor(steps) * inc;
    } else {
        const std::uint64_t distance = static_cast<std::uint64_t>(value) - static_cast<std::uint64_t>(min);
        const std::uint64_t rest = distance % static_cast<std::uint64_t>(inc);
        if (rest == 0)
            return;
        below = static_cast<T>(static_cast<std::uint64_t>(value) - rest);
    }
    Fail(run, Say("cannot take ", Text(value), ", the step is ", Text(inc), " from ", Text(min), ": ", Text(below),
                  " is the next below"));
}

template <class T>
bool ValueNode<T>::Take(const Property &property)
{
    switch (property.prop) {
    // clang-format off
    case Prop::Value:         value_.Take(property.Number<T>()); return true;
    case Prop::pValue:        value_.Take(property.Target(Role::Value)); return true;
    case Prop::Min:           min_.Take(property.Number<T>()); return true;
    case Prop::pMin:          min_.Take(property.Target(Role::Limit)); return true;
    case Prop::Max:           max_.Take(property.Number<T>()); return true;
    case Prop::pMax:          max_.Take(property.Target(Role::Limit)); return true;
    case Prop::Inc:           inc_.Take(property.Number<T>()); return true;
    case Prop::pInc:          inc_.Take(property.Target(Role::Limit)); return true;
    default:                  return TakeRare(property) || NumberNode<T>::Take(property);
        // clang-format on
    }
}

template <class T>
bool ValueNode<T>::TakeRare(const Property &property)
{
    const auto rare = [&]() -> Rare & {
        if (!rare_)
            rare_ = std::make_unique<Rare>();
        return *rare_;
    };
    switch (property.prop) {
    // clang-format off
    case Prop::pIndex:        rare().index = property.Target(Role::Index); return true;
    case Prop::ValueDefault:  rare().otherwise.Take(property.Number<T>()); return true;
    case Prop::pValueDefault: rare().otherwise.Take(property.Target(Role::Value)); return true;
    case Prop::pValueCopy:    rare().copies.push_back(property.Target(Role::Copy)); return true;
        // clang-format on
    case Prop::ValueIndexed:
    case Prop::pValueIndexed: {
        Indexed &entry = rare().indexed.emplace_back(Indexed{property.IntAttribute("Index"), {}});
        if (property.prop == Prop::ValueIndexed)
            entry.source.Take(property.Number<T>());
        else
            entry.source.Take(property.Target(Role::Value));
        return true;
    }
    case Prop::ValidValueSet: {
        // Numbers between semicolons.
        std::string_view rest = property.Text();
        while (!rest.empty()) {
            const std::size_t end = std::min(rest.find(';'), rest.size());
            rare().validValues.push_back(property.NumberOf<T>(rest.substr(0, end)));
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        return true;
    }
    default:
        return false;
    }
}

template <class T>
void ValueNode<T>::Finish(Loader &loader)
{
    const bool given = rare_ && rare_->index ? rare_->otherwise.given || !rare_->indexed.empty() : value_.given;
    if (!given)
        FailLoading(loader, *this, "has no value");
}

template <class T>
Source<T> &ValueNode<T>::Chosen(Run &run)
{
    const std::int64_t index = rare_->index->GetInt(run);
    for (Indexed &entry : rare_->indexed)
        if (entry.index == index)
            return entry.source;
    if (!rare_->otherwise.given)
        this->Fail(run, Say("has no value for index ", Text(index)));
    return rare_->otherwise;
}

template <class T>
void ValueNode<T>::SetValue(Run &run, T value)
{
    run.map.Step(run, *this);
    Source<T> &source = Current(run);
    if (source.node)
        SetNumber<T>(*source.node, run, value);
    else {
        source.constant = value;
        run.map.Changed(*this);
    }
    if (rare_)
        for (Node *copy : rare_->copies)
            SetNumber<T>(*copy, run, value);
}

template <class T>
Limits<T> ValueNode<T>::ValueLimits(Run &run)
{
    run.map.Step(run, *this);
    Limits<T> limits = noLimits<T>;
    if (!(min_.given && max_.given))
        if (Node *const below = Below(run))
            limits = LimitsOf<T>(*below, run);
    if (min_.given)
        limits.min = min_.Get(run);
    if (max_.given)
        limits.max = max_.Get(run);
    return limits;
}

template <class T>
std::optional<T> ValueNode<T>::ValueInc(Run &run)
{
    if (inc_.given)
        return inc_.Get(run);
    Node *const below = Below(run);
    if (!below)
        return std::nullopt;
    if constexpr (std::is_same_v<T, double>)
        return below->FloatInc(run);
    else
        return below->IntInc(run);
}

template <class T>
void ValueNode<T>::Check(Run &run, T value)
{
    if (rare_ && !rare_->validValues.empty() && std::ranges::count(rare_->validValues, value) == 0)
        this->Fail(run, Say("cannot take ", Text(value), ", it is not in the set of valid values"));
    // Limits that are not said here are those of the node below, which checks them itself.
    Node *const below = Below(run);
    if (below && !min_.given && !max_.given && !inc_.given)
        return;
    const Limits<T> limits = ValueLimits(run);
    this->CheckRange(run, value, limits);
    if (inc_.given)
        this->CheckInc(run, value, limits.min == noLimits<T>.min ? T{} : limits.min, inc_.Get(run));
}

template <class T>
AccessMode ValueNode<T>::ValueAccess(Run &run)
{
    if (rare_ && rare_->index && !IsReadable(rare_->index->Access(run)))
        return AccessMode::NotAvailable;
    Node *const below = Below(run);
    return below ? below->Access(run) : AccessMode::ReadWrite;
}

template class NumberNode<std::int64_t>;
template class NumberNode<double>;
template class ValueNode<std::int64_t>;
template class ValueNode<double>;

} // namespace Orvi::GenApi
