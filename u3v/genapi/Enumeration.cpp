#include "u3v/genapi/Enumeration.h"

#include "u3v/genapi/MapState.h"
#include "u3v/genapi/Say.h"

#include <algorithm>
#include <utility>

namespace Orvi::GenApi {

namespace {

/// Value and pValue, which all kinds here have.
bool TakeValue(const Property &property, Source<std::int64_t> &value)
{
    if (property.prop == Prop::Value)
        value.Take(property.Int());
    else if (property.prop == Prop::pValue)
        value.Take(property.Target(Role::Value));
    else
        return false;
    return true;
}

void StoreValue(Run &run, Node &node, Source<std::int64_t> &value, std::int64_t number)
{
    if (value.node) {
        value.node->SetInt(run, number);
    } else {
        value.constant = number;
        run.map.Changed(node);
    }
}

AccessMode AccessOf(Run &run, const Source<std::int64_t> &value)
{
    return value.node ? value.node->Access(run) : AccessMode::ReadWrite;
}

} // namespace

bool EnumEntryNode::Take(const Property &property)
{
    switch (property.prop) {
    case Prop::Value:
        number_ = property.Int();
        given_ = true;
        return true;
    case Prop::NumericValue:
        numeric_ = property.Number<double>();
        return true;
    case Prop::Symbolic:
        symbol_ = property.Kept();
        return true;
    case Prop::IsSelfClearing:
        selfClearing_ = property.YesNo();
        return true;
    default:
        return Node::Take(property);
    }
}

void EnumEntryNode::Finish(Loader &loader)
{
    if (!given_)
        FailLoading(loader, *this, "has no Value");
}

bool EnumerationNode::Take(const Property &property)
{
    return property.prop == Prop::EnumEntry || TakeValue(property, value_) || NumberNode::Take(property);
}

void EnumerationNode::Finish(Loader &loader)
{
    if (!value_.given)
        FailLoading(loader, *this, "has no value");
    entries_.shrink_to_fit();
    hasSelfClearing_ = std::ranges::any_of(entries_, &EnumEntryNode::IsSelfClearing);
    bySymbol_ = byNumber_ = entries_;
    std::ranges::stable_sort(bySymbol_, {}, &EnumEntryNode::Symbol);
    std::ranges::stable_sort(byNumber_, {}, &EnumEntryNode::Number);
    const auto twice = std::ranges::adjacent_find(bySymbol_, {}, &EnumEntryNode::Symbol);
    if (twice != bySymbol_.end())
        FailLoading(loader, *this, Say("has the entry ", (*twice)->Symbol(), " twice"));
}

const EnumEntryNode *EnumerationNode::FindSymbol(std::string_view symbol) const
{
    const auto found = std::ranges::lower_bound(bySymbol_, symbol, {}, &EnumEntryNode::Symbol);
    return found != bySymbol_.end() && (*found)->Symbol() == symbol ? *found : nullptr;
}

EnumEntryNode *EnumerationNode::FindNumber(std::int64_t number) const
{
    const auto found = std::ranges::lower_bound(byNumber_, number, {}, &EnumEntryNode::Number);
    return found != byNumber_.end() && (*found)->Number() == number ? *found : nullptr;
}

EnumEntryNode &EnumerationNode::Current(Run &run)
{
    const std::int64_t number = Value(run);
    if (EnumEntryNode *entry = FindNumber(number))
        return *entry;
    Fail(run, Say("reads ", Hex(static_cast<std::uint64_t>(number)), ", none of its entries has that value"));
}

void EnumerationNode::SetText(Run &run, std::string_view value)
{
    const EnumEntryNode *const entry = FindSymbol(value);
    if (!entry) {
        std::string known;
        for (const EnumEntryNode *other : entries_)
            known += (known.empty() ? "" : ", ") + std::string(other->Symbol());
        Fail(run, Say("has no entry '", value, "', its entries are ", known));
    }
    SetInt(run, entry->Number());
}

void EnumerationNode::Check(Run &run, std::int64_t value)
{
    EnumEntryNode *const entry = FindNumber(value);
    if (!entry)
        Fail(run, Say("cannot take ", Text(value), ", none of its entries has that value"));
    if (!IsReadable(entry->Access(run)))
        Fail(run, Say("cannot take ", entry->Symbol(), ", it ", entry->DescribeAccess(run)));
}

void EnumerationNode::SetValue(Run &run, std::int64_t value)
{
    if (!hasSelfClearing_) {
        StoreValue(run, *this, value_, value);
        return;
    }
    const EnumEntryNode *const entry = FindNumber(value);
    Run inner = run;
    const bool clears = entry && entry->IsSelfClearing();
    // The camera goes back from a self-clearing entry by itself: what is read back is another one.
    if (clears)
        inner.verify = false;
    StoreValue(inner, *this, value_, value);
    if (clears)
        run.map.Forget(*this);
}

AccessMode EnumerationNode::ValueAccess(Run &run) { return AccessOf(run, value_); }

bool BooleanNode::Take(const Property &property)
{
    switch (property.prop) {
    case Prop::OnValue:
        on_ = property.Int();
        return true;
    case Prop::OffValue:
        off_ = property.Int();
        return true;
    case Prop::Value:
        // A word or the number.
        if (property.Text() == "true" || property.Text() == "false") {
            word_ = property.Text() == "true";
            value_.given = true;
            return true;
        }
        [[fallthrough]];
    default:
        return TakeValue(property, value_) || NumberNode::Take(property);
    }
}

void BooleanNode::Finish(Loader &loader)
{
    if (!value_.given)
        FailLoading(loader, *this, "has no value");
    if (on_ == off_)
        FailLoading(loader, *this, "has the same OnValue and OffValue");
    if (word_)
        value_.Take(*word_ ? on_ : off_);
}

std::int64_t BooleanNode::Value(Run &run)
{
    const std::int64_t raw = value_.Get(run);
    if (raw != on_ && raw != off_)
        Fail(run, Say("reads ", Text(raw), ", on is ", Text(on_), " and off is ", Text(off_)));
    return raw == on_;
}

void BooleanNode::SetValue(Run &run, std::int64_t value) { StoreValue(run, *this, value_, value != 0 ? on_ : off_); }

AccessMode BooleanNode::ValueAccess(Run &run) { return AccessOf(run, value_); }

bool CommandNode::Take(const Property &property)
{
    switch (property.prop) {
    case Prop::CommandValue:
        command_.Take(property.Int());
        return true;
    case Prop::pCommandValue:
        command_.Take(property.Target(Role::CommandValue));
        return true;
    default:
        return TakeValue(property, value_) || Node::Take(property);
    }
}

void CommandNode::Finish(Loader &loader)
{
    if (!value_.given)
        FailLoading(loader, *this, "has no value");
    if (!command_.given)
        FailLoading(loader, *this, "has no CommandValue");
}

void CommandNode::Execute(Run &run)
{
    // A camera clears the register of a command that is done: nothing can be compared.
    Run inner{run.map, run.subject};
    StoreValue(inner, *this, value_, command_.Get(run));
    pending_ = true;
    run.map.Forget(*this);
}

bool CommandNode::IsDone(Run &run)
{
    if (!value_.node || !IsReadable(value_.node->Access(run))) {
        pending_ = false;
        return true;
    }
    Run fresh{run.map, run.subject, false, true};
    if (value_.node->GetInt(fresh) == command_.Get(run))
        return false;
    // What the command has changed in the camera is to be read anew now that it is done.
    if (std::exchange(pending_, false))
        run.map.Changed(*this);
    return true;
}

AccessMode CommandNode::ValueAccess(Run &run) { return value_.node ? value_.node->Access(run) : AccessMode::WriteOnly; }

} // namespace Orvi::GenApi
