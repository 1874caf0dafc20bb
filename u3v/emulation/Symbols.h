#pragma once
// Values of registers and the symbols that enumeration nodes have for them.

#include "u3v/emulation/Block.h"

#include <span>

namespace Orvi::U3v::Emulation {

/// A value and its symbol. A name that ends in '#' stands for as many as there are numbers: "Line#" is value + 2 for
/// "Line2"; what follows the '#' follows the number.
struct Symbol {
    std::uint32_t value;
    const char *name;
};
using Symbols = std::span<const Symbol>;

std::optional<std::uint32_t> ValueOf(Symbols symbols, std::string_view name);

/// An enumeration as a choice of values; a boolean is one of 0 and 1.
class Choice {
  public:
    Choice(NodeMap &nodes, std::optional<NodeId> id, Symbols symbols) : nodes_(nodes), id_(id), symbols_(symbols) {}

    bool IsThere() const { return id_.has_value(); }
    AccessMode Access() const { return AccessOf(nodes_, id_); }
    /// Calls take(value) for each value that can be chosen now.
    template <class Take>
    void EachValue(const Take &take) const
    {
        if (!IsThere() || Access() == AccessMode::NotImplemented)
            return;
        if (IsBoolean()) {
            take(0U);
            take(1U);
            return;
        }
        for (std::uint32_t i = 0; i < nodes_.EntryCount(*id_); ++i)
            if (const auto value = ValueOfEntry(nodes_.Entry(*id_, i)))
                take(*value);
    }
    /// Throws StatusError 0xFFFFFFFF when the camera has chosen what no value stands for.
    std::uint32_t Get() const;
    void Set(std::uint32_t value);

  private:
    bool IsBoolean() const { return nodes_.Type(*id_) == GenApi::NodeType::Boolean; }
    std::optional<std::uint32_t> ValueOfEntry(NodeId entry) const;

    NodeMap &nodes_;
    std::optional<NodeId> id_;
    Symbols symbols_;
};

} // namespace Orvi::U3v::Emulation
