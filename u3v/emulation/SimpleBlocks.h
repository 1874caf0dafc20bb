#pragma once
// The blocks that are one node each, or a value and a mode: a row of the table in BlockTable.cpp makes one.

#include "u3v/emulation/Numbers.h"
#include "u3v/emulation/Symbols.h"

namespace Orvi::U3v::Emulation {

/// Scale, limits and value of a number, and who decides on it.
struct NumberRow {
    std::uint64_t address;
    Names names;
    Unit unit;
    Names modeNames;
    Symbols modes; ///< empty: the feature has no modes
};

class NumberBlock final : public Block {
  public:
    NumberBlock(NodeMap &nodes, const NumberRow &row) : Block(row.address), nodes_(nodes), row_(row) {}
    void Read(Words &words) override;
    void Write(unsigned word, std::uint32_t value) override;

  private:
    Number Value() const { return {nodes_, FindNode(nodes_, row_.names), row_.unit}; }
    Choice Mode() const { return {nodes_, FindNode(nodes_, row_.modeNames), row_.modes}; }

    NodeMap &nodes_;
    const NumberRow row_;
};

/// A mask of values and the one chosen.
struct ChoiceRow {
    std::uint64_t address;
    Names names;
    Symbols symbols;
};

class ChoiceBlock final : public Block {
  public:
    ChoiceBlock(NodeMap &nodes, const ChoiceRow &row) : Block(row.address), nodes_(nodes), row_(row) {}
    void Read(Words &words) override;
    void Write(unsigned word, std::uint32_t value) override;

  private:
    Choice Node() const { return {nodes_, FindNode(nodes_, row_.names), row_.symbols}; }

    NodeMap &nodes_;
    const ChoiceRow row_;
};

/// On or off, in a word of its own.
struct FlagRow {
    std::uint64_t address;
    Names names;
};

class FlagBlock final : public Block {
  public:
    FlagBlock(NodeMap &nodes, const FlagRow &row) : Block(row.address), nodes_(nodes), row_(row) {}
    void Read(Words &words) override;
    void Write(unsigned word, std::uint32_t value) override;

  private:
    Choice Node() const;

    NodeMap &nodes_;
    const FlagRow row_;
};

/// One bit for each line: a node for all of them, or the node of each line behind a selector.
struct LinesRow {
    std::uint64_t address;
    const char *all;
    const char *selector; ///< its entries are lines by number: "Line1"
    Symbols lines;
    const char *one; ///< a boolean, or an enumeration
    Symbols states;  ///< of the enumeration
};

class LinesBlock final : public Block {
  public:
    LinesBlock(NodeMap &nodes, const LinesRow &row) : Block(row.address), nodes_(nodes), row_(row) {}
    void Read(Words &words) override;
    void Write(unsigned word, std::uint32_t value) override;

  private:
    std::optional<NodeId> All() const;
    void ReadEach(Words &words);
    /// Calls act(number of the line) with each line selected, and selects the one from before again.
    template <class Act>
    void EachLine(const Act &act);
    Choice One() const { return {nodes_, nodes_.Find(row_.one), row_.states}; }

    NodeMap &nodes_;
    const LinesRow row_;
};

} // namespace Orvi::U3v::Emulation
