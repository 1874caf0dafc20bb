#include "u3v/genapi/FormulaNodes.h"

#include "u3v/genapi/MapState.h"
#include "u3v/genapi/Say.h"

namespace Orvi::GenApi {

namespace {

template <class T>
Formula CompileFor(Loader &loader, const Node &node, FormulaPart &part, std::string_view text,
                   std::string_view argument)
{
    if (text.empty())
        FailLoading(loader, node, Say("has no formula", argument.empty() ? "" : " of ", argument));
    try {
        return part.Compile(text, arithmeticOf<T>, argument);
    } catch (const FormulaError &error) {
        FailLoading(loader, node, Say("formula ", text, ": ", error.what()));
    }
}

// Nothing when the result fits no 64-bit integer.
std::optional<std::int64_t> Sum(std::int64_t a, std::int64_t b)
{
    std::int64_t sum;
    return __builtin_add_overflow(a, b, &sum) ? std::nullopt : std::optional(sum);
}
std::optional<double> Sum(double a, double b) { return a + b; }
std::optional<std::int64_t> Difference(std::int64_t a, std::int64_t b)
{
    std::int64_t difference;
    return __builtin_sub_overflow(a, b, &difference) ? std::nullopt : std::optional(difference);
}
std::optional<double> Difference(double a, double b) { return a - b; }

} // namespace

template <class T>
bool SwissKnifeNode<T>::Take(const Property &property)
{
    if (property.prop == Prop::Formula) {
        formula_ = Formula(property.Kept());
        return true;
    }
    return property.prop == Prop::Input || part_.Take(property) || NumberNode<T>::Take(property);
}

template <class T>
void SwissKnifeNode<T>::Finish(Loader &loader)
{
    formula_ = CompileFor<T>(loader, *this, part_, formula_.Text(), {});
    part_.Trim();
}

template <class T>
T SwissKnifeNode<T>::Value(Run &run)
{
    run.map.Step(run, *this);
    try {
        return FromCell<T>(part_.Evaluate(run, formula_, arithmeticOf<T>));
    } catch (const FormulaError &error) {
        part_.Explain(run, *this, formula_, error, {});
    }
}

template <class T>
void SwissKnifeNode<T>::SetValue(Run &run, T)
{
    this->Fail(run, "cannot be written, it is calculated");
}

template <class T>
AccessMode SwissKnifeNode<T>::ValueAccess(Run &run)
{
    run.map.Step(run, *this);
    return part_.IsReadableNow(run) ? AccessMode::ReadOnly : AccessMode::NotAvailable;
}

template <class T>
bool ConverterNode<T>::Take(const Property &property)
{
    constexpr std::string_view slopeNames[] = {"Increasing", "Decreasing", "Varying", "Automatic"};
    switch (property.prop) {
    // clang-format off
    case Prop::FormulaTo:   to_ = Formula(property.Kept()); return true;
    case Prop::FormulaFrom: from_ = Formula(property.Kept()); return true;
    case Prop::pValue:      value_ = property.Target(Role::Value); return true;
    case Prop::Slope:       slope_ = property.OneOf<Slope>(slopeNames); return true;
    case Prop::IsLinear:    linear_ = property.YesNo(); return true;
    case Prop::Input:       return true;
    default:                return part_.Take(property) || NumberNode<T>::Take(property);
        // clang-format on
    }
}

template <class T>
void ConverterNode<T>::Finish(Loader &loader)
{
    if (value_ == nullptr)
        FailLoading(loader, *this, "has no pValue");
    to_ = CompileFor<T>(loader, *this, part_, to_.Text(), "FROM");
    from_ = CompileFor<T>(loader, *this, part_, from_.Text(), "TO");
    part_.Trim();
}

template <class T>
T ConverterNode<T>::Convert(Run &run, const Formula &formula, T argument)
{
    run.map.Step(run, *this);
    try {
        return FromCell<T>(part_.Evaluate(run, formula, arithmeticOf<T>, MakeCell(argument)));
    } catch (const FormulaError &error) {
        part_.Explain(run, *this, formula, error, Say((&formula == &to_ ? "FROM = " : "TO = "), Text(argument)));
    }
}

template <class T>
T ConverterNode<T>::Value(Run &run)
{
    return Convert(run, from_, GetNumber<T>(*value_, run));
}

template <class T>
void ConverterNode<T>::SetValue(Run &run, T value)
{
    SetNumber<T>(*value_, run, Convert(run, to_, value));
}

/// The user's value at one end of what is below; nothing where the formula has no result there, as 1/TO at 0: that end
/// is open, and the node below refuses what it cannot take.
template <class T>
std::optional<T> ConverterNode<T>::Limit(Run &run, T raw)
{
    if (raw == noLimits<T>.min || raw == noLimits<T>.max)
        return std::nullopt;
    run.map.Step(run, *this);
    try {
        return FromCell<T>(part_.Evaluate(run, from_, arithmeticOf<T>, MakeCell(raw)));
    } catch (const FormulaError &) {
        return std::nullopt;
    }
}

template <class T>
Limits<T> ConverterNode<T>::ValueLimits(Run &run)
{
    if (slope_ == Slope::Varying)
        return noLimits<T>;
    const Limits<T> raw = LimitsOf<T>(*value_, run);
    const std::optional<T> atMin = Limit(run, raw.min), atMax = Limit(run, raw.max);
    // With one end open it is not known on which side that lies, unless the description says so.
    bool decreasing = slope_ == Slope::Decreasing;
    if (slope_ == Slope::Automatic) {
        if (!atMin || !atMax)
            return noLimits<T>;
        decreasing = *atMin > *atMax;
    }
    const std::optional<T> low = decreasing ? atMax : atMin, high = decreasing ? atMin : atMax;
    return {low.value_or(noLimits<T>.min), high.value_or(noLimits<T>.max)};
}

/// One step below, as the user sees it; it is the same everywhere only when the formula is linear.
template <class T>
std::optional<T> ConverterNode<T>::ValueInc(Run &run)
{
    if (!linear_)
        return std::nullopt;
    std::optional<T> step;
    if constexpr (std::is_same_v<T, double>)
        step = value_->Type() == NodeType::Integer ? static_cast<double>(value_->IntInc(run)) : value_->FloatInc(run);
    else
        step = value_->IntInc(run);
    if (!step)
        return std::nullopt;
    const Limits<T> raw = LimitsOf<T>(*value_, run);
    const T from = raw.min == noLimits<T>.min ? T{} : raw.min;
    const std::optional<T> next = Sum(from, *step);
    if (!next)
        return std::nullopt;
    const std::optional<T> a = Limit(run, from), b = Limit(run, *next);
    if (!a || !b || *a == *b)
        return std::nullopt;
    return Difference(std::max(*a, *b), std::min(*a, *b));
}

template <class T>
AccessMode ConverterNode<T>::ValueAccess(Run &run)
{
    run.map.Step(run, *this);
    return part_.IsReadableNow(run) ? value_->Access(run) : AccessMode::NotAvailable;
}

template class SwissKnifeNode<std::int64_t>;
template class SwissKnifeNode<double>;
template class ConverterNode<std::int64_t>;
template class ConverterNode<double>;

} // namespace Orvi::GenApi
