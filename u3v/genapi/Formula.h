#pragma once
// Formulas of a description, compiled once into a flat program. The types of all steps are settled while compiling, so
// that 64-bit integers stay exact where both operands are integers, and running needs no look-up and no allocation.

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Orvi::GenApi {

/// What variables and the result are: int64 (IntSwissKnife, IntConverter) or double.
enum class Arithmetic : std::uint8_t { Integer, Float };

union Cell {
    std::int64_t i;
    double f;
};

/// A formula that cannot be compiled or has no result; the text says why.
class FormulaError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// What a name in a formula stands for.
struct FormulaName {
    enum class Kind { Variable, Integer, Float, Expression } kind;
    unsigned variable = 0;
    Cell constant{};
    std::string_view expression{}; ///< compiled in place
    bool integer = false;          ///< a variable that is an int64 in a formula of either arithmetic
};

class FormulaNames {
  public:
    virtual std::optional<FormulaName> Look(std::string_view name) = 0;

  protected:
    ~FormulaNames() = default;
};

/// Gives the variables while a formula runs, only those that are needed: as double in a formula of doubles, unless its
/// name says that it is an integer, else as int64.
class FormulaVariables {
  public:
    virtual Cell Load(unsigned variable) = 0;

  protected:
    ~FormulaVariables() = default;
};

/// One step of a program. I and F are the operand types.
enum class Op : std::uint8_t {
    // clang-format off
    Push, Load, ToFloat, ToFloatBelow, ToInt, ToIntBelow, BoolI, BoolF, Nop,
    Jump, JumpIfZero, AndJump, OrJump,
    AddI, SubI, MulI, DivI, ModI, PowI, AddF, SubF, MulF, DivF, ModF, PowF,
    And, Or, Xor, Not, Left, Right,
    EqI, NeI, LtI, LeI, GtI, GeI, EqF, NeF, LtF, LeF, GtF, GeF,
    NegI, AbsI, SgnI, NegF, AbsF, SgnF,
    Sin, Cos, Tan, Asin, Acos, Atan, Exp, Ln, Lg, Sqrt, Trunc, Floor, Ceil, Round, RoundDigits,
    // clang-format on
};

class Formula {
  public:
    struct Step {
        Op op;
        std::uint32_t target = 0; ///< of a jump; number of a variable
        Cell constant{};
    };

    static constexpr std::size_t maxSteps = 4096;
    static constexpr std::size_t maxStack = 64;

    Formula() = default;
    /// Not compiled yet.
    explicit Formula(std::string_view text) : text_(text) {}

    static Formula Compile(std::string_view text, Arithmetic arithmetic, FormulaNames &names);

    /// The result in the formula's arithmetic; a FormulaError when there is none (division by zero, not finite).
    Cell Run(FormulaVariables &variables) const;

    std::string_view Text() const { return text_; }
    bool IsCompiled() const { return !steps_.empty(); }

  private:
    std::string_view text_; ///< owned by whoever owns the description's text
    std::vector<Step> steps_;
    Arithmetic arithmetic_ = Arithmetic::Float;
};

/// Rounds half away from zero; nothing when the result is no int64.
std::optional<std::int64_t> RoundToInt64(double value);

} // namespace Orvi::GenApi
