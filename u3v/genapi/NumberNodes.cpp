#include "u3v/genapi/NumberNodes.h"

#include "u3v/genapi/Formula.h"
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
void NumberNode<T>::FailRange(const Run &run, T value, Limits<T> limits) const
{
    const bool low = value < limits.min;
    Fail(run, Say("cannot take ", Text(value), ", it is ",
                  (low ? "below the minimum " + Text(limits.min) : "above the maximum " + Text(limits.max))));
}

template <class T>
void NumberNode<T>::FailInc(const Run &run, T value, T min, T inc, T below) const
{
    Fail(run, Say("cannot take ", Text(value), ", the step is ", Text(inc), " from ", Text(min), ": ", Text(below),
                  " is the next below"));
}

template class NumberNode<std::int64_t>;
template class NumberNode<double>;

} // namespace Orvi::GenApi
