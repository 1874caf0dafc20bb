#pragma once
// What the nodes that calculate have in common: the names in their formulas, and running them.

#include "u3v/genapi/Formula.h"
#include "u3v/genapi/NumberNodes.h"

namespace Orvi::GenApi {

// A cell from and to the type of a node's value.
template <class T>
Cell MakeCell(T value)
{
    if constexpr (std::is_same_v<T, double>)
        return {.f = value};
    else
        return {.i = value};
}

template <class T>
T FromCell(Cell cell)
{
    if constexpr (std::is_same_v<T, double>)
        return cell.f;
    else
        return cell.i;
}

/// Variables, constants and expressions of one node, and the running of its formulas.
class FormulaPart {
  public:
    /// A variable: a node's value or one of its attributes.
    struct Variable {
        enum class What : std::uint8_t { Value, Min, Max, Inc };
        std::string_view name;
        Node *node;
        What what;

        bool isInteger = node->Type() != NodeType::Float && node->Type() != NodeType::EnumEntry;
    };

    bool Take(const Property &property);
    /// @p argument names the one value that comes with each run ("FROM", "TO"); empty when there is none.
    Formula Compile(std::string_view text, Arithmetic arithmetic, std::string_view argument);
    /// All formulas are compiled: what was needed for that alone is given back.
    void Trim()
    {
        std::vector<Named>().swap(constants_);
        variables_.shrink_to_fit();
    }
    Cell Evaluate(Run &run, const Formula &formula, Arithmetic arithmetic, Cell argument = {}) const;
    [[noreturn]] void Explain(Run &run, const Node &node, const Formula &formula, const FormulaError &error,
                              const std::string &argument) const;
    /// Not available when a variable cannot be read.
    bool IsReadableNow(Run &run) const;

  private:
    static constexpr std::size_t maxNames = 1000;

    class Names;
    class Values;
    struct Named {
        std::string_view name;
        FormulaName meaning;
    };

    std::optional<FormulaName> LookVariable(std::string_view name);
    FormulaName VariableName(unsigned variable) const;
    unsigned AddVariable(Variable variable);

    std::vector<Variable> variables_;
    std::vector<Named> constants_;
};

} // namespace Orvi::GenApi
