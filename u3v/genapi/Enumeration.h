#pragma once
// Nodes that choose: Enumeration with its entries, Boolean, Command.

#include "u3v/genapi/NumberNodes.h"

namespace Orvi::GenApi {

class EnumEntryNode final : public Node {
  public:
    EnumEntryNode(NodeId id, std::string_view name, std::string_view symbol, const Kind &kind)
        : Node(id, name, kind), symbol_(symbol)
    {
    }

    bool Take(const Property &property) override;
    void Finish(Loader &loader) override;

    std::int64_t Number() const { return number_; }
    double NumericValue() const { return numeric_.value_or(static_cast<double>(number_)); }
    std::string_view Symbol() const { return symbol_; }
    bool IsSelfClearing() const { return selfClearing_; }

    std::int64_t GetInt(Run &) override { return number_; }
    double GetFloat(Run &) override { return NumericValue(); }
    std::string GetText(Run &) override { return std::string(symbol_); }

  private:
    std::string_view symbol_;
    std::int64_t number_ = 0;
    std::optional<double> numeric_;
    bool given_ = false, selfClearing_ = false;
};

class EnumerationNode final : public NumberNode<std::int64_t> {
  public:
    using NumberNode::NumberNode;

    bool Take(const Property &property) override;
    void Finish(Loader &loader) override;
    void AddEntry(EnumEntryNode &entry) { entries_.push_back(&entry); }

    const std::vector<EnumEntryNode *> &Entries() const { return entries_; }
    const EnumEntryNode *FindSymbol(std::string_view symbol) const;
    /// The entry that is set now; refuses a value that none has.
    EnumEntryNode &Current(Run &run);

    std::string GetText(Run &run) override { return std::string(Current(run).Symbol()); }
    void SetText(Run &run, std::string_view value) override;

  protected:
    std::int64_t Value(Run &run) override { return value_.Get(run); }
    void SetValue(Run &run, std::int64_t value) override;
    void Check(Run &run, std::int64_t value) override;
    AccessMode ValueAccess(Run &run) override;

  private:
    EnumEntryNode *FindNumber(std::int64_t number) const;

    Source<std::int64_t> value_;
    std::vector<EnumEntryNode *> entries_;             ///< as the description lists them
    std::vector<EnumEntryNode *> bySymbol_, byNumber_; ///< the same, sorted
    bool hasSelfClearing_ = false;
};

class BooleanNode final : public NumberNode<std::int64_t> {
  public:
    using NumberNode::NumberNode;

    bool Take(const Property &property) override;
    void Finish(Loader &loader) override;

  protected:
    std::int64_t Value(Run &run) override;
    void SetValue(Run &run, std::int64_t value) override;
    Limits<std::int64_t> ValueLimits(Run &) override { return {0, 1}; }
    AccessMode ValueAccess(Run &run) override;

  private:
    Source<std::int64_t> value_;
    std::int64_t on_ = 1, off_ = 0;
    std::optional<bool> word_; ///< its value, which may stand before that of OnValue
};

class CommandNode final : public Node {
  public:
    using Node::Node;

    bool Take(const Property &property) override;
    void Finish(Loader &loader) override;

    void Execute(Run &run);
    /// Done when the camera has taken the command value back; a command that cannot be read is done at once.
    bool IsDone(Run &run);

  protected:
    AccessMode ValueAccess(Run &run) override;

  private:
    Source<std::int64_t> value_, command_;
    bool pending_ = false;
};

} // namespace Orvi::GenApi
