#pragma once
// Numeric nodes as scaled registers: raw * N / D is the value in the register's unit.

#include "u3v/emulation/Block.h"

namespace Orvi::U3v::Emulation {

/// What a register counts where its node counts microseconds.
enum class Unit : std::uint8_t { AsNode, Seconds };

/// How a node's value and its limits fit into 32 bits.
struct Scale {
    std::int32_t numerator, denominator, minimum, maximum; ///< the limits are raw values
};

/// An integer, a float, or an enumeration that counts (a binning of "X1" and "X2").
class Number {
  public:
    Number(NodeMap &nodes, std::optional<NodeId> id, Unit unit) : nodes_(nodes), id_(id), unit_(unit) {}

    std::optional<NodeId> Id() const { return id_; }
    AccessMode Access() const { return AccessOf(nodes_, id_); }
    Scale GetScale() const;
    std::int32_t GetRaw(const Scale &scale) const;
    void SetRaw(std::int32_t raw);

  private:
    struct Range {
        double min, max;
        double step; ///< 0 for none
    };
    GenApi::NodeType Type() const { return nodes_.Type(*id_); }
    /// Register unit for one unit of the node.
    double Factor() const;
    Range GetRange() const;
    double Get() const;

    NodeMap &nodes_;
    std::optional<NodeId> id_;
    Unit unit_;
};

/// Nearest 32-bit number.
std::int32_t Saturate(double value);

} // namespace Orvi::U3v::Emulation
