// The first byte chooses integers (even) or doubles (odd) and the values of the variables A to H; the rest is the text.

#include "u3v/genapi/Formula.h"

#include "tests/fuzz/Bytes.h"

#include <cmath>
#include <limits>

namespace Orvi::Fuzz {

using GenApi::Arithmetic;
using GenApi::Cell;
using GenApi::FormulaName;

namespace {

/// A to H are variables, G and H integers in any formula, I and J constants, X an expression, Y one that refers to
/// itself.
class Names : public GenApi::FormulaNames {
  public:
    std::optional<FormulaName> Look(std::string_view name) override
    {
        if (name.size() != 1)
            return std::nullopt;
        const char letter = name.front();
        if (letter >= 'A' && letter <= 'H')
            return FormulaName{FormulaName::Kind::Variable, static_cast<unsigned>(letter - 'A'), {}, {}, letter >= 'G'};
        if (letter == 'I')
            return FormulaName{FormulaName::Kind::Integer, 0, {.i = std::numeric_limits<std::int64_t>::min()}};
        if (letter == 'J')
            return FormulaName{FormulaName::Kind::Float, 0, {.f = 0.1}};
        if (letter == 'X')
            return FormulaName{FormulaName::Kind::Expression, 0, {}, "A * B + C"};
        if (letter == 'Y')
            return FormulaName{FormulaName::Kind::Expression, 0, {}, "Y - 1"};
        return std::nullopt;
    }
};

class Variables : public GenApi::FormulaVariables {
  public:
    Variables(Arithmetic arithmetic, unsigned shift) : arithmetic_(arithmetic), shift_(shift) {}
    Cell Load(unsigned variable) override
    {
        constexpr std::int64_t integers[] = {0, 1, -1, 7, 63, 1LL << 53, INT64_MAX, INT64_MIN};
        constexpr double floats[] = {0, 1, -1, 0.5, 63, 1e308, -1e308, 5e-324};
        const std::size_t place = (variable + shift_) % std::size(integers);
        const bool isInteger = arithmetic_ == Arithmetic::Integer || variable >= 6;
        return isInteger ? Cell{.i = integers[place]} : Cell{.f = floats[place]};
    }

  private:
    const Arithmetic arithmetic_;
    const unsigned shift_;
};

} // namespace

void Formula(Input input)
{
    Bytes bytes(input);
    const auto choice = bytes.Number<std::uint8_t>();
    const Arithmetic arithmetic = choice % 2 == 0 ? Arithmetic::Integer : Arithmetic::Float;
    Names names;
    try {
        const auto formula = GenApi::Formula::Compile(TextOf(bytes.TakeAll()), arithmetic, names);
        Require(formula.IsCompiled(), "what compiles has steps");
        Variables variables(arithmetic, choice / 2);
        const Cell result = formula.Run(variables);
        Require(arithmetic == Arithmetic::Integer || std::isfinite(result.f), "a result is finite");
    } catch (const GenApi::FormulaError &) {
    }
}

} // namespace Orvi::Fuzz
