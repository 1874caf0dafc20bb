#pragma once
// Nodes that calculate: SwissKnife and IntSwissKnife read, Converter and IntConverter stand between a user's value and
// another node's.

#include "u3v/genapi/Formula.h"
#include "u3v/genapi/NumberNodes.h"

namespace Orvi::GenApi {

/// Variables, constants and expressions of one node, and the running of its formulas.
class FormulaPart {
  public:
    /// A variable: a node's value or one of its attributes.
    struct Variable {
        enum class What : std::uint8_t { Value, Min, Max, Inc };
        std::string_view name;
        Node *node;
        What what;
    };

    bool Take(const Property &property, Arithmetic arithmetic);
    /// @p argument names the one value that comes with each run ("FROM", "TO"); empty when there is none.
    Formula Compile(std::string_view text, Arithmetic arithmetic, std::string_view argument);
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
    unsigned AddVariable(Variable variable);

    std::vector<Variable> variables_;
    std::vector<Named> constants_;
};

template <class T>
constexpr Arithmetic arithmeticOf = std::is_same_v<T, double> ? Arithmetic::Float : Arithmetic::Integer;

template <class T>
class SwissKnifeNode final : public NumberNode<T> {
  public:
    using NumberNode<T>::NumberNode;

    bool Take(const Property &property) override;
    void Finish(Loader &loader) override;

  protected:
    T Value(Run &run) override;
    void SetValue(Run &run, T value) override;
    AccessMode ValueAccess(Run &run) override;

  private:
    FormulaPart part_;
    std::string_view text_;
    Formula formula_;
};

template <class T>
class ConverterNode final : public NumberNode<T> {
  public:
    using NumberNode<T>::NumberNode;

    bool Take(const Property &property) override;
    void Finish(Loader &loader) override;

  protected:
    T Value(Run &run) override;
    void SetValue(Run &run, T value) override;
    Limits<T> ValueLimits(Run &run) override;
    AccessMode ValueAccess(Run &run) override;

  private:
    enum class Slope { Increasing, Decreasing, Varying, Automatic };

    T Convert(Run &run, const Formula &formula, T argument);
    std::optional<T> Limit(Run &run, T raw);

    FormulaPart part_;
    std::string_view toText_, fromText_;
    Formula to_, from_;
    Node *value_ = nullptr;
    Slope slope_ = Slope::Automatic;
};

extern template class SwissKnifeNode<std::int64_t>;
extern template class SwissKnifeNode<double>;
extern template class ConverterNode<std::int64_t>;
extern template class ConverterNode<double>;

} // namespace Orvi::GenApi
