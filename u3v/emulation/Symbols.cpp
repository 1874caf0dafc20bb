#include "u3v/emulation/Symbols.h"

#include <charconv>

namespace Orvi::U3v::Emulation {

namespace {

constexpr std::uint32_t maxNumber = 31;

/// The number in place of the '#'.
std::optional<std::uint32_t> NumberIn(std::string_view name, std::string_view pattern)
{
    const std::size_t mark = pattern.find('#');
    const std::string_view prefix = pattern.substr(0, mark), suffix = pattern.substr(mark + 1);
    if (!name.starts_with(prefix) || !name.ends_with(suffix) || name.size() <= prefix.size() + suffix.size())
        return std::nullopt;
    const std::string_view digits = name.substr(prefix.size(), name.size() - prefix.size() - suffix.size());
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool isNumber = error == std::errc() && end == digits.data() + digits.size() && number <= maxNumber;
    return isNumber ? std::optional(number) : std::nullopt;
}

} // namespace

std::optional<std::uint32_t> ValueOf(Symbols symbols, std::string_view name)
{
    for (const Symbol &symbol : symbols) {
        const std::string_view pattern = symbol.name;
        if (pattern.find('#') == std::string_view::npos) {
            if (pattern == name)
                return symbol.value;
        } else if (const auto number = NumberIn(name, pattern)) {
            return symbol.value + *number;
        }
    }
    return std::nullopt;
}

std::optional<std::uint32_t> Choice::ValueOfEntry(NodeId entry) const
{
    const AccessMode access = nodes_.Access(entry);
    if (access == AccessMode::NotImplemented || access == AccessMode::NotAvailable)
        return std::nullopt;
    return ValueOf(symbols_, nodes_.EntryText(entry));
}

std::uint32_t Choice::Get() const
{
    RequireReadable(nodes_, id_);
    if (IsBoolean())
        return nodes_.GetBool(*id_) ? 1 : 0;
    const std::string_view name = nodes_.GetEnumText(*id_);
    if (const auto value = ValueOf(symbols_, name))
        return *value;
    throw StatusError(CAM_API_STS_UNSUCCESSFUL, "[" + std::string(nodes_.Name(*id_)) + "] is '" + std::string(name) +
                                                    "', which no register value stands for");
}

void Choice::Set(std::uint32_t value)
{
    RequireWritable(nodes_, id_);
    if (IsBoolean()) {
        if (value > 1)
            RefuseValue(value);
        nodes_.SetBool(*id_, value != 0);
        return;
    }
    for (std::uint32_t i = 0; i < nodes_.EntryCount(*id_); ++i) {
        const NodeId entry = nodes_.Entry(*id_, i);
        if (ValueOfEntry(entry) == value) {
            nodes_.SetEnumText(*id_, nodes_.EntryText(entry));
            return;
        }
    }
    RefuseValue(value);
}

} // namespace Orvi::U3v::Emulation
