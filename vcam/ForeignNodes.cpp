#include "vcam/ForeignNodes.h"

#include "u3v/core/Status.h"

#include <algorithm>
#include <cmath>

namespace Orvi::Vcam {

using GenApi::NodeId;
using GenApi::NodeType;

template <class Result, class Use>
std::optional<Result> ForeignNodes::Try(std::string_view name, const Use &use) const
{
    const auto id = map_->Find(name);
    if (!id) {
        return std::nullopt;
    }
    try {
        return use(*id);
    } catch (const GenApi::Error &) {
        return std::nullopt;
    }
}

std::optional<double> ForeignNodes::Number(std::string_view name) const
{
    return Try<double>(name, [this](NodeId id) {
        switch (map_->Type(id)) {
        case NodeType::Float:
            return map_->GetFloat(id);
        case NodeType::Boolean:
            return map_->GetBool(id) ? 1.0 : 0.0;
        case NodeType::Enumeration:
            return static_cast<double>(map_->GetEnumInt(id));
        default:
            return static_cast<double>(map_->GetInt(id));
        }
    });
}

void ForeignNodes::SetNumber(std::string_view name, double value)
{
    Try<bool>(name, [&](NodeId id) {
        switch (map_->Type(id)) {
        case NodeType::Float:
            map_->SetFloat(id, value);
            break;
        case NodeType::Boolean:
            map_->SetBool(id, value != 0);
            break;
        case NodeType::Enumeration:
            map_->SetEnumInt(id, std::llround(value));
            break;
        default:
            map_->SetInt(id, std::llround(value));
        }
        return true;
    });
}

void ForeignNodes::SetNearest(std::string_view name, double value)
{
    const double low = Minimum(name).value_or(value), high = Maximum(name).value_or(value);
    const double inside = std::max(low, std::min(value, high));
    const double step = Try<double>(name, [this](NodeId id) {
                            return map_->Type(id) == NodeType::Float ? map_->FloatInc(id).value_or(0)
                                                                     : static_cast<double>(map_->IntInc(id));
                        }).value_or(0);
    const bool isOnAnyGrid =
        step == 0 || (step == 1 && !IsFloat(name)); // from limits that are none nothing can be counted
    SetNumber(name, isOnAnyGrid ? inside : low + std::floor((inside - low) / step) * step);
}

std::optional<double> ForeignNodes::Minimum(std::string_view name) const
{
    return Try<double>(name, [this](NodeId id) {
        return map_->Type(id) == NodeType::Float ? map_->FloatMin(id) : static_cast<double>(map_->IntMin(id));
    });
}

std::optional<double> ForeignNodes::Maximum(std::string_view name) const
{
    return Try<double>(name, [this](NodeId id) {
        return map_->Type(id) == NodeType::Float ? map_->FloatMax(id) : static_cast<double>(map_->IntMax(id));
    });
}

bool ForeignNodes::IsFloat(std::string_view name) const
{
    const auto id = map_->Find(name);
    return id && map_->Type(*id) == NodeType::Float;
}

std::string_view ForeignNodes::Unit(std::string_view name) const
{
    const auto id = map_->Find(name);
    return id ? map_->Unit(*id) : std::string_view();
}

std::optional<std::string> ForeignNodes::Symbol(std::string_view name) const
{
    return Try<std::string>(name, [this](NodeId id) -> std::string {
        if (map_->Type(id) == NodeType::Boolean) {
            return map_->GetBool(id) ? "On" : "Off";
        }
        return std::string(map_->GetEnumText(id));
    });
}

void ForeignNodes::SetSymbol(std::string_view name, std::string_view symbol)
{
    Try<bool>(name, [&](NodeId id) {
        if (map_->Type(id) == NodeType::Boolean) {
            map_->SetBool(id, symbol == "On");
        } else {
            map_->SetEnumText(id, symbol);
        }
        return true;
    });
}

std::vector<std::string> ForeignNodes::Symbols(std::string_view name) const
{
    return Try<std::vector<std::string>>(name,
                                         [this](NodeId id) {
                                             std::vector<std::string> symbols;
                                             for (std::uint32_t i = 0; i < map_->EntryCount(id); ++i) {
                                                 const NodeId entry = map_->Entry(id, i);
                                                 const auto access = map_->Access(entry);
                                                 if (access != GenApi::AccessMode::NotImplemented &&
                                                     access != GenApi::AccessMode::NotAvailable) {
                                                     symbols.emplace_back(map_->EntryText(entry));
                                                 }
                                             }
                                             return symbols;
                                         })
        .value_or(std::vector<std::string>());
}

std::optional<std::int64_t> ForeignNodes::ValueOf(std::string_view name, std::string_view symbol) const
{
    const auto value = Try<std::optional<std::int64_t>>(name, [&](NodeId id) -> std::optional<std::int64_t> {
        for (std::uint32_t i = 0; i < map_->EntryCount(id); ++i) {
            if (map_->EntryText(map_->Entry(id, i)) == symbol) {
                return map_->EntryInt(map_->Entry(id, i));
            }
        }
        return std::nullopt;
    });
    return value ? *value : std::nullopt;
}

void ForeignNodes::SetText(std::string_view name, std::string_view text)
{
    Try<bool>(name, [&](NodeId id) {
        map_->SetString(id, text);
        return true;
    });
}

void ForeignNodes::With(std::string_view selector, std::string_view symbol, const std::function<void()> &action)
{
    const auto value = ValueOf(selector, symbol);
    const auto before = Number(selector);
    if (!value || !before) {
        return;
    }
    SetNumber(selector, static_cast<double>(*value));
    action();
    SetNumber(selector, *before);
}

std::vector<std::string> ForeignNodes::Selectors() const
{
    std::vector<std::string> selectors;
    for (NodeId id = 0; id < map_->Size(); ++id) {
        if (map_->IsSelector(id)) {
            selectors.emplace_back(map_->Name(id));
        }
    }
    return selectors;
}

void ForeignNodes::EachChoice(std::string_view selector, const std::function<void()> &action)
{
    constexpr double most = 1024; // of a look-up table, say; further ones come with their choice
    const auto before = Number(selector);
    if (!before) {
        return;
    }
    const std::vector<std::string> symbols = Symbols(selector);
    for (const std::string &symbol : symbols) {
        SetSymbol(selector, symbol);
        action();
    }
    const double low = Minimum(selector).value_or(0), high = Maximum(selector).value_or(-1);
    for (double value = low; symbols.empty() && value <= std::min(high, low + most - 1); ++value) {
        SetNumber(selector, value);
        action();
    }
    SetNumber(selector, *before);
}

bool ForeignNodes::IsPending(std::string_view command) const
{
    return Try<bool>(command, [this](NodeId id) { return !map_->IsDone(id); }).value_or(false);
}

std::optional<ForeignNodes::Place> ForeignNodes::PlaceOf(std::string_view registerNode) const
{
    return Try<Place>(registerNode, [this](NodeId id) {
        return Place{map_->RegisterAddress(id), map_->RegisterLength(id)};
    });
}

void ForeignNodes::MakeValid()
{
    for (NodeId id = 0; id < map_->Size(); ++id) {
        try {
            MakeValid(id);
        } catch (const GenApi::Error &) {
            // Constants and formulas are as they are.
        }
    }
}

void ForeignNodes::MakeValid(NodeId id)
{
    switch (map_->Type(id)) {
    case NodeType::Enumeration: {
        const std::vector<std::string> symbols = Symbols(map_->Name(id));
        const auto now = Symbol(map_->Name(id));
        if (!symbols.empty() && (!now || std::ranges::find(symbols, *now) == symbols.end())) {
            map_->SetEnumText(id, symbols.front());
        }
        break;
    }
    case NodeType::Integer: {
        const std::int64_t now = map_->GetInt(id);
        const std::int64_t valid = std::max(map_->IntMin(id), std::min(now, map_->IntMax(id)));
        if (valid != now) {
            map_->SetInt(id, valid);
        }
        break;
    }
    case NodeType::Float: {
        const double now = map_->GetFloat(id);
        const double valid = std::max(map_->FloatMin(id), std::min(now, map_->FloatMax(id)));
        if (valid != now) {
            map_->SetFloat(id, valid);
        }
        break;
    }
    default:
        break;
    }
}

} // namespace Orvi::Vcam
