#include "u3v/genapi/FormulaNodes.h"

#include "u3v/genapi/Enumeration.h"
#include "u3v/genapi/MapState.h"
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
            return variable.node->Type() == NodeType::Integer ? static_cast<double>(variable.node->IntInc(run))
                                                              : variable.node->FloatInc(run).value_or(0);
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

/// "Entry.Mono8" of an enumeration is that entry's number.
std::optional<std::int64_t> FindEntryNumber(const Node &node, std::string_view suffix)
{
    for (const std::string_view word : {"Entry.", "Enum."})
        if (suffix.starts_with(word))
            if (const auto *choice = dynamic_cast<const EnumerationNode *>(&node))
                if (const EnumEntryNode *entry = choice->FindSymbol(suffix.substr(word.size())))
                    return entry->Number();
    return std::nullopt;
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
        return arithmetic_ == Arithmetic::Float ? MakeCell(GenApi::Load<double>(row, run_))
                                                : MakeCell(GenApi::Load<std::int64_t>(row, run_));
    }

  private:
    Run &run_;
    const FormulaPart &part_;
    Arithmetic arithmetic_;
    Cell argument_;
};

bool FormulaPart::Take(const Property &property, Arithmetic arithmetic)
{
    const auto checkedName = [&] {
        const std::string_view name = property.Attribute("Name");
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
        if (arithmetic == Arithmetic::Integer && property.Text().find_first_of(".") == std::string_view::npos)
            constants_.push_back({name, {FormulaName::Kind::Integer, 0, {.i = property.Int()}}});
        else
            constants_.push_back({name, {FormulaName::Kind::Float, 0, {.f = property.Number<double>()}}});
        return true;
    }
    case Prop::Expression:
        constants_.push_back({checkedName(), {FormulaName::Kind::Expression, 0, {}, property.Text()}});
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
            return FormulaName{FormulaName::Kind::Variable, i};
        if (const auto number = FindEntryNumber(*variable.node, suffix))
            return FormulaName{FormulaName::Kind::Integer, 0, {.i = *number}};
        const auto what = FindAttribute(suffix);
        if (!what)
            return std::nullopt;
        return FormulaName{FormulaName::Kind::Variable,
                           variable.what == *what ? i : AddVariable({name, variable.node, *what})};
    }
    return std::nullopt;
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
        with += (with.empty() ? "" : ", ") + std::string(variable.name) + " = " + Text(Load<double>(variable, run));
    node.Fail(run, Say(error.what(), ", formula ", formula.Text(), (with.empty() ? "" : " with " + with)));
}

bool FormulaPart::IsReadableNow(Run &run) const
{
    for (const Variable &variable : variables_)
        if (variable.what == What::Value && !IsReadable(variable.node->Access(run)))
            return false;
    return true;
}

namespace {

template <class T>
Formula CompileFor(Loader &loader, const Node &node, FormulaPart &part, std::string_view text,
                   std::string_view argument)
{
    if (text.empty())
        FailLoading(loader, node, Say("has no formula", argument.empty() ? "" : " of ", argument));
    try {
        return part.Compile(text, arithmeticOf<T>, argument);
    } catch (const FormulaError &error) {
        FailLoading(loader, node, Say("formula ", text, ": ", error.what()));
    }
}

} // namespace

template <class T>
bool SwissKnifeNode<T>::Take(const Property &property)
{
    if (property.prop == Prop::Formula) {
        text_ = property.Text();
        return true;
    }
    return property.prop == Prop::Input || part_.Take(property, arithmeticOf<T>) || NumberNode<T>::Take(property);
}

template <class T>
void SwissKnifeNode<T>::Finish(Loader &loader)
{
    formula_ = CompileFor<T>(loader, *this, part_, text_, {});
}

template <class T>
T SwissKnifeNode<T>::Value(Run &run)
{
    run.map.Step(run, *this);
    try {
        return FromCell<T>(part_.Evaluate(run, formula_, arithmeticOf<T>));
    } catch (const FormulaError &error) {
        part_.Explain(run, *this, formula_, error, {});
    }
}

template <class T>
void SwissKnifeNode<T>::SetValue(Run &run, T)
{
    this->Fail(run, "cannot be written, it is calculated");
}

template <class T>
AccessMode SwissKnifeNode<T>::ValueAccess(Run &run)
{
    return part_.IsReadableNow(run) ? AccessMode::ReadOnly : AccessMode::NotAvailable;
}

template <class T>
bool ConverterNode<T>::Take(const Property &property)
{
    constexpr std::string_view slopeNames[] = {"Increasing", "Decreasing", "Varying", "Automatic"};
    switch (property.prop) {
    // clang-format off
    case Prop::FormulaTo:   toText_ = property.Text(); return true;
    case Prop::FormulaFrom: fromText_ = property.Text(); return true;
    case Prop::pValue:      value_ = property.Target(Role::Value); return true;
    case Prop::Slope:       slope_ = property.OneOf<Slope>(slopeNames); return true;
    case Prop::IsLinear:    property.YesNo(); return true;
    case Prop::Input:       return true;
    default:                return part_.Take(property, arithmeticOf<T>) || NumberNode<T>::Take(property);
        // clang-format on
    }
}

template <class T>
void ConverterNode<T>::Finish(Loader &loader)
{
    if (value_ == nullptr)
        FailLoading(loader, *this, "has no pValue");
    to_ = CompileFor<T>(loader, *this, part_, toText_, "FROM");
    from_ = CompileFor<T>(loader, *this, part_, fromText_, "TO");
}

template <class T>
T ConverterNode<T>::Convert(Run &run, const Formula &formula, T argument)
{
    run.map.Step(run, *this);
    try {
        return FromCell<T>(part_.Evaluate(run, formula, arithmeticOf<T>, MakeCell(argument)));
    } catch (const FormulaError &error) {
        part_.Explain(run, *this, formula, error, Say((&formula == &to_ ? "FROM = " : "TO = "), Text(argument)));
    }
}

template <class T>
T ConverterNode<T>::Value(Run &run)
{
    return Convert(run, from_, GetNumber<T>(*value_, run));
}

template <class T>
void ConverterNode<T>::SetValue(Run &run, T value)
{
    SetNumber<T>(*value_, run, Convert(run, to_, value));
}

/// The user's value at one end of what is below; nothing where the formula has no result there, as 1/TO at 0: that end
/// is open, and the node below refuses what it cannot take.
template <class T>
std::optional<T> ConverterNode<T>::Limit(Run &run, T raw)
{
    if (raw == noLimits<T>.min || raw == noLimits<T>.max)
        return std::nullopt;
    run.map.Step(run, *this);
    try {
        return FromCell<T>(part_.Evaluate(run, from_, arithmeticOf<T>, MakeCell(raw)));
    } catch (const FormulaError &) {
        return std::nullopt;
    }
}

template <class T>
Limits<T> ConverterNode<T>::ValueLimits(Run &run)
{
    if (slope_ == Slope::Varying)
        return noLimits<T>;
    const Limits<T> raw = LimitsOf<T>(*value_, run);
    const std::optional<T> atMin = Limit(run, raw.min), atMax = Limit(run, raw.max);
    // With one end open it is not known on which side that lies, unless the description says so.
    bool decreasing = slope_ == Slope::Decreasing;
    if (slope_ == Slope::Automatic) {
        if (!atMin || !atMax)
            return noLimits<T>;
        decreasing = *atMin > *atMax;
    }
    const std::optional<T> low = decreasing ? atMax : atMin, high = decreasing ? atMin : atMax;
    return {low.value_or(noLimits<T>.min), high.value_or(noLimits<T>.max)};
}

template <class T>
AccessMode ConverterNode<T>::ValueAccess(Run &run)
{
    return part_.IsReadableNow(run) ? value_->Access(run) : AccessMode::NotAvailable;
}

template class SwissKnifeNode<std::int64_t>;
template class SwissKnifeNode<double>;
template class ConverterNode<std::int64_t>;
template class ConverterNode<double>;

} // namespace Orvi::GenApi
