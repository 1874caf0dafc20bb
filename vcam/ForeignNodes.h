#pragma once
// The features of a foreign description by name, as the device itself reads and sets them. What a description lacks or
// does not allow reads as nothing, and setting it does nothing.

#include "u3v/genapi/NodeMap.h"
#include "vcam/GenCpServer.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvi::Vcam {

class ForeignNodes {
  public:
    /// @p memory is the camera's whole address space. Throws std::runtime_error for a description that cannot be used.
    ForeignNodes(std::string_view deviceSideXml, GenApi::Port &memory)
        : map_(GenApi::NodeMap::Load(deviceSideXml, memory))
    {
    }

    bool Has(std::string_view name) const { return map_->Find(name).has_value(); }
    /// Of a float, an integer, a boolean, or an enumeration.
    std::optional<double> Number(std::string_view name) const;
    void SetNumber(std::string_view name, double value);
    /// The nearest number that it takes.
    void SetNearest(std::string_view name, double value);
    /// The smallest and the largest number that it takes.
    std::optional<double> Minimum(std::string_view name) const;
    std::optional<double> Maximum(std::string_view name) const;
    bool IsFloat(std::string_view name) const;
    std::string_view Unit(std::string_view name) const;

    /// Of an enumeration; a boolean is "On" or "Off".
    std::optional<std::string> Symbol(std::string_view name) const;
    void SetSymbol(std::string_view name, std::string_view symbol);
    /// Symbols that can be chosen.
    std::vector<std::string> Symbols(std::string_view name) const;
    std::optional<std::int64_t> ValueOf(std::string_view name, std::string_view symbol) const;
    void SetText(std::string_view name, std::string_view text);

    /// Runs action with a selector at one of its symbols, and puts it back. Does nothing when there is no such choice.
    void With(std::string_view selector, std::string_view symbol, const std::function<void()> &action);

    /// Nodes that choose what others are about.
    std::vector<std::string> Selectors() const;
    /// Runs action with each choice of a selector, and puts it back.
    void EachChoice(std::string_view selector, const std::function<void()> &action);

    /// Whether a command's register holds its value.
    bool IsPending(std::string_view command) const;
    struct Place {
        std::uint64_t address;
        std::size_t size;
    };
    /// Where a register is now.
    std::optional<Place> PlaceOf(std::string_view registerNode) const;
    /// Sets enumerations to a choice that they have and numbers into their limits.
    void MakeValid();

  private:
    template <class Result, class Use>
    std::optional<Result> Try(std::string_view name, const Use &use) const;
    void MakeValid(GenApi::NodeId id);

    std::unique_ptr<GenApi::NodeMap> map_;
};

} // namespace Orvi::Vcam
