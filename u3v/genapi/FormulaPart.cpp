#include "u3v/genapi/FormulaPart.h"

#include "u3v/genapi/Enumeration.h"
#include "u3v/genapi/Properties.h"
#include "u3v/genapi/Say.h"

namespace Orvi::GenApi {

namespace {

using What = FormulaPart::Variable::What;

constexpr unsigned argumentIndex = ~0u;

constexpr struct {
    std::string_view suffix;
    What what;
} attributes[] = {{"Value", What::Value}, {"Min", What::Min}, {"Max", What::Max}, {"Inc", What::Inc}};

template <class T>
T Load(const FormulaPart::Variable &variable, Run &run)
{
    switch (variable.what) {
    case What::Min:
        return LimitsOf<T>(*variable.node, run).min;
    case What::Max:
        return LimitsOf<T>(*variable.node, run).max;
    case What::Inc:
        if constexpr (std::is_same_v<T, double>)
            return variable.node->FloatInc(run).value_or(0);
        else
            return variable.node->IntInc(run);
    default:
        return GetNumber<T>(*variable.node, run);
    }
}

/// "A.Min" is attribute Min of variable A.
std::pair<std::string_view, std::string_view> Split(std::string_view name)
{
    const std::size_t dot = name.find('.');
    return dot == name.npos ? std::pair{name, std::string_view()}
                            : std::pair{name.substr(0, dot), name.substr(dot + 1)};
}

std::optional<What> FindAttribute(std::string_view suffix)
{
    for (const auto &row : attributes)
        if (row.suffix == suffix)
            return row.what;
    return std::nullopt;
}

/// "Entry.Mono8" or "Enum.Mono8" of an enumeration asks for that entry's number; the name of the entry, or nothing.
std::string_view EntryAskedFor(const Node &node, std::string_view suffix)
{
    const std::size_t dot = suffix.find('.');
    const std::string_view word = suffix.substr(0, dot);
    const bool asks = dot != suffix.npos && (word == "Entry" || word == "Enum") && node.Type() == NodeType::Enumeration;
    return asks ? suffix.substr(dot + 1) : std::string_view();
}

} // namespace

class FormulaPart::Names final : public FormulaNames {
  public:
    Names(FormulaPart &part, std::string_view argument) : part_(part), argument_(argument) {}

    std::optional<FormulaName> Look(std::string_view name) override
    {
        if (!argument_.empty() && name == argument_)
            return FormulaName{FormulaName::Kind::Variable, argumentIndex};
        for (const Named &named : part_.constants_)
            if (named.name == name)
                return named.meaning;
        return part_.LookVariable(name);
    }

  private:
    FormulaPart &part_;
    std::string_view argument_;
};

class FormulaPart::Values final : public FormulaVariables {
  public:
    Values(Run &run, const FormulaPart &part, Arithmetic arithmetic, Cell argument)
        : run_(run), part_(part), arithmetic_(arithmetic), argument_(argument)
    {
    }

    Cell Load(unsigned variable) override
    {
        if (variable == argumentIndex)
            return argument_;
        const Variable &row = part_.variables_[variable];
        return arithmetic_ == Arithmetic::Float && !row.isInteger ? MakeCell(GenApi::Load<double>(row, run_))
                                                                  : MakeCell(GenApi::Load<std::int64_t>(row, run_));
    }

  private:
    Run &run_;
    const FormulaPart &part_;
    Arithmetic arithmetic_;
    Cell argument_;
};

bool FormulaPart::Take(const Property &property)
{
    const auto checkedName = [&] {
        const std::string_view name = property.KeptAttribute("Name");
        if (name.empty())
            property.Fail("the name is missing");
        if (constants_.size() + variables_.size() == maxNames)
            property.Fail(Say("a formula can have ", std::to_string(maxNames), " names"));
        for (const Named &named : constants_)
            if (named.name == name)
                property.Fail(Say("'", name, "' is there twice"));
        for (const Variable &variable : variables_)
            if (variable.name == name)
                property.Fail(Say("'", name, "' is there twice"));
        return name;
    };
    switch (property.prop) {
    case Prop::pVariable: {
        const std::string_view name = checkedName();
        const auto what = FindAttribute(Split(name).second);
        const bool limit = what && *what != What::Value;
        Node *const node = property.Target(limit ? Role::VariableLimit : Role::Variable);
        variables_.push_back({name, node, what.value_or(What::Value)});
        return true;
    }
    case Prop::Constant: {
        const std::string_view name = checkedName();
        if (const auto integer = ReadInt(property.Text()))
            constants_.push_back({name, {FormulaName::Kind::Integer, 0, {.i = *integer}}});
        else
            constants_.push_back({name, {FormulaName::Kind::Float, 0, {.f = property.Number<double>()}}});
        return true;
    }
    case Prop::Expression:
        constants_.push_back({checkedName(), {FormulaName::Kind::Expression, 0, {}, property.Kept()}});
        return true;
    default:
        return false;
    }
}

std::optional<FormulaName> FormulaPart::LookVariable(std::string_view name)
{
    // The attribute may be part of the variable's own name, or be asked of a variable in the formula.
    const auto [base, suffix] = Split(name);
    for (unsigned i = 0; i < variables_.size(); ++i) {
        const Variable &variable = variables_[i];
        if (variable.name != name && variable.name != base)
            continue;
        if (suffix.empty())
            return VariableName(i);
        if (const std::string_view symbol = EntryAskedFor(*variable.node, suffix); !symbol.empty()) {
            const EnumEntryNode *entry = static_cast<const EnumerationNode &>(*variable.node).FindSymbol(symbol);
            if (entry == nullptr)
                return std::nullopt;
            return FormulaName{FormulaName::Kind::Integer, 0, {.i = entry->Number()}};
        }
        const auto what = FindAttribute(suffix);
        if (!what && variable.name == name) // its own name has a dot
            return VariableName(i);
        if (!what)
            return std::nullopt;
        return VariableName(variable.what == *what ? i : AddVariable({name, variable.node, *what}));
    }
    return std::nullopt;
}

FormulaName FormulaPart::VariableName(unsigned variable) const
{
    return {FormulaName::Kind::Variable, variable, {}, {}, variables_[variable].isInteger};
}

unsigned FormulaPart::AddVariable(Variable variable)
{
    variables_.push_back(variable);
    return static_cast<unsigned>(variables_.size() - 1);
}

Formula FormulaPart::Compile(std::string_view text, Arithmetic arithmetic, std::string_view argument)
{
    Names names(*this, argument);
    return Formula::Compile(text, arithmetic, names);
}

Cell FormulaPart::Evaluate(Run &run, const Formula &formula, Arithmetic arithmetic, Cell argument) const
{
    Values values(run, *this, arithmetic, argument);
    return formula.Run(values);
}

void FormulaPart::Explain(Run &run, const Node &node, const Formula &formula, const FormulaError &error,
                          const std::string &argument) const
{
    std::string with = argument;
    for (const Variable &variable : variables_)
        with += (with.empty() ? "" : ", ") + std::string(variable.name) + " = " +
                (variable.isInteger ? Text(Load<std::int64_t>(variable, run)) : Text(Load<double>(variable, run)));
    node.Fail(run, Say(error.what(), ", formula ", formula.Text(), (with.empty() ? "" : " with " + with)));
}

bool FormulaPart::IsReadableNow(Run &run) const
{
    for (const Variable &variable : variables_)
        if (variable.what == What::Value && !IsReadable(variable.node->Access(run)))
            return false;
    return true;
}

} // namespace Orvi::GenApi
