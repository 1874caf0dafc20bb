// Integer and Float: values that the description or another node holds.

#include "u3v/genapi/Enumeration.h"
#include "u3v/genapi/MapState.h"
#include "u3v/genapi/Say.h"

#include <algorithm>
#include <numeric>

namespace Orvi::GenApi {

namespace {

/// Numbers between semicolons, each by @p read.
template <class T, class F>
std::vector<T> ReadSet(std::string_view text, F read)
{
    std::vector<T> set;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(';'), text.size());
        if (const std::string_view number = Trim(text.substr(0, end)); !number.empty())
            set.push_back(read(number));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    std::ranges::sort(set);
    return set;
}

/// A float may have been through a narrower register since the user read it.
template <class T>
bool IsIn(const std::vector<T> &set, T value)
{
    return std::ranges::any_of(set, [&](T valid) {
        if constexpr (std::is_same_v<T, double>)
            return std::fabs(value - valid) <= 1e-6 * std::fabs(valid);
        else
            return value == valid;
    });
}

/// The longest step that leads from the first to all others; 1 when there is none.
std::int64_t CommonStep(const std::vector<std::int64_t> &set)
{
    std::uint64_t step = 0;
    for (const std::int64_t value : set)
        step = std::gcd(step, static_cast<std::uint64_t>(value) - static_cast<std::uint64_t>(set.front()));
    return step == 0 || step > static_cast<std::uint64_t>(noLimits<std::int64_t>.max) ? 1
                                                                                      : static_cast<std::int64_t>(step);
}

} // namespace

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
    case Prop::ValidValueSet:
        rare().valid = ReadSet<T>(property.Text(), [&](std::string_view text) { return property.NumberOf<T>(text); });
        return true;
    case Prop::pValidValueSet:
        rare().validSet = property.Target(Role::ValidSet);
        if (const NodeType type = rare().validSet->Type(); type != NodeType::Enumeration && type != NodeType::String)
            property.Fail(Say("'", property.Text(), "' lists no values"));
        return true;
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
    run.map.Step(run, *this);
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
    Source<T> &source = Current(run);
    if (source.node)
        SetNumber<T>(*source.node, run, value);
    else {
        source.constant = value;
        run.map.Changed(*this);
    }
    if (rare_)
        SetCopies(run, value);
}

template <class T>
void ValueNode<T>::SetCopies(Run &run, T value)
{
    for (Node *copy : rare_->copies) {
        run.map.Step(run, *this);
        SetNumber<T>(*copy, run, value);
    }
}

template <class T>
Limits<T> ValueNode<T>::ValueLimits(Run &run)
{
    Limits<T> limits = noLimits<T>;
    if (!(min_.given && max_.given))
        if (Node *const below = Below(run))
            limits = LimitsOf<T>(*below, run);
    if (min_.given)
        limits.min = min_.Get(run);
    if (max_.given)
        limits.max = max_.Get(run);
    return HasValidSet() ? LimitsOfSet(run, limits) : limits;
}

template <class T>
Limits<T> ValueNode<T>::LimitsOfSet(Run &run, Limits<T> limits)
{
    const std::vector<T> valid = ValidValues(run);
    return valid.empty() ? limits : Limits<T>{std::max(limits.min, valid.front()), std::min(limits.max, valid.back())};
}

/// In order.
template <class T>
std::vector<T> ValueNode<T>::ValidValues(Run &run)
{
    Node *const source = rare_->validSet;
    if (source == nullptr)
        return rare_->valid;
    run.map.Step(run, *this);
    if (source->Type() == NodeType::String)
        return ReadSet<T>(source->GetText(run), [&](std::string_view text) {
            const auto number = ReadNumber<T>(text);
            return number ? *number : (this->Fail(run, Say(source->Name(), " lists '", text, "', no number")), T{});
        });
    std::vector<T> set;
    for (EnumEntryNode *entry : static_cast<const EnumerationNode *>(source)->Entries())
        if (IsReadable(entry->Access(run)))
            set.push_back(GetNumber<T>(*entry, run));
    std::ranges::sort(set);
    return set;
}

template <class T>
std::optional<T> ValueNode<T>::ValueInc(Run &run)
{
    if (inc_.given)
        return inc_.Get(run);
    if constexpr (!std::is_same_v<T, double>)
        if (HasValidSet())
            return CommonStep(ValidValues(run));
    Node *const below = Below(run);
    if (!below)
        return std::nullopt;
    if constexpr (std::is_same_v<T, double>)
        return below->FloatInc(run);
    else
        return below->IntInc(run);
}

template <class T>
void ValueNode<T>::CheckValid(Run &run, T value)
{
    const std::vector<T> valid = ValidValues(run);
    if (valid.empty() || IsIn(valid, value))
        return;
    std::string known;
    for (const T each : valid)
        known += (known.empty() ? "" : ", ") + Text(each);
    this->Fail(run, Say("cannot take ", Text(value), ", its valid values are ", known));
}

template <class T>
void ValueNode<T>::Check(Run &run, T value)
{
    if (HasValidSet())
        CheckValid(run, value);
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
    if (rare_ && rare_->index) {
        run.map.Step(run, *this);
        if (!IsReadable(rare_->index->Access(run)))
            return AccessMode::NotAvailable;
    }
    Node *const below = Below(run);
    return below ? below->Access(run) : AccessMode::ReadWrite;
}

template class ValueNode<std::int64_t>;
template class ValueNode<double>;

} // namespace Orvi::GenApi
