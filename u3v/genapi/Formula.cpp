#include "u3v/genapi/Formula.h"

#include <array>
#include <cmath>
#include <limits>

namespace Orvi::GenApi {

namespace {

// Signed overflow wraps, as it does in the camera's own registers.
template <class F>
std::int64_t Wrapping(std::int64_t a, std::int64_t b, F f)
{
    return static_cast<std::int64_t>(f(static_cast<std::uint64_t>(a), static_cast<std::uint64_t>(b)));
}

std::int64_t Divide(std::int64_t a, std::int64_t b)
{
    if (b == 0)
        throw FormulaError("division by zero");
    return b == -1 ? Wrapping(0, a, std::minus<>()) : a / b;
}

std::int64_t Modulo(std::int64_t a, std::int64_t b)
{
    if (b == 0)
        throw FormulaError("modulo by zero");
    return b == -1 ? 0 : a % b;
}

std::int64_t Power(std::int64_t base, std::int64_t exponent)
{
    if (exponent < 0)
        return Divide(1, base == 1 || base == -1 ? Power(base, -(exponent % 2)) : base == 0 ? 0 : 2);
    std::int64_t result = 1;
    for (; exponent > 0; exponent >>= 1) {
        if (exponent & 1)
            result = Wrapping(result, base, std::multiplies<>());
        base = Wrapping(base, base, std::multiplies<>());
    }
    return result;
}

std::int64_t ShiftLeft(std::int64_t a, std::int64_t count)
{
    if (count < 0)
        throw FormulaError("shift by a negative count");
    return count > 63 ? 0 : Wrapping(a, count, [](auto x, auto n) { return x << n; });
}

std::int64_t ShiftRight(std::int64_t a, std::int64_t count)
{
    if (count < 0)
        throw FormulaError("shift by a negative count");
    return a >> (count > 63 ? 63 : count);
}

double DivideFloat(double a, double b)
{
    if (b == 0)
        throw FormulaError("division by zero");
    return a / b;
}

double ModuloFloat(double a, double b)
{
    if (b == 0)
        throw FormulaError("modulo by zero");
    return std::fmod(a, b);
}

double RoundToDigits(double value, double digits)
{
    const double scale = std::pow(10.0, std::round(digits));
    return std::round(value * scale) / scale;
}

std::int64_t ToInteger(double value)
{
    if (const auto rounded = RoundToInt64(value))
        return *rounded;
    throw FormulaError("a value that fits no 64-bit integer");
}

template <class T>
T Sign(T value)
{
    return static_cast<T>((value > 0) - (value < 0));
}

} // namespace

std::optional<std::int64_t> RoundToInt64(double value)
{
    const double rounded = std::round(value);
    constexpr double limit = 9223372036854775808.0;
    if (!(rounded >= -limit && rounded < limit))
        return std::nullopt;
    return static_cast<std::int64_t>(rounded);
}

Cell Formula::Run(FormulaVariables &variables) const
{
    std::array<Cell, maxStack + 2> stack;
    Cell *top = stack.data() + 1; // the compiler has counted: no program leaves the array
    const Step *const begin = steps_.data();
    const Step *const end = begin + steps_.size();

    for (const Step *step = begin; step != end; ++step) {
        Cell &below = top[-1];
        switch (step->op) {
        // clang-format off
        case Op::Push:         *++top = step->constant; break;
        case Op::Load:         { const Cell cell = variables.Load(step->target); *++top = cell; break; }
        case Op::ToFloat:      top->f = static_cast<double>(top->i); break;
        case Op::ToFloatBelow: below.f = static_cast<double>(below.i); break;
        case Op::ToInt:        top->i = ToInteger(top->f); break;
        case Op::ToIntBelow:   below.i = ToInteger(below.f); break;
        case Op::BoolI:        top->i = top->i != 0; break;
        case Op::BoolF:        top->i = top->f != 0; break;
        case Op::Nop:          break;

        case Op::Jump:         step = begin + step->target - 1; break;
        case Op::JumpIfZero:   if ((top--)->i == 0) step = begin + step->target - 1; break;
        case Op::AndJump:      if (top->i == 0) step = begin + step->target - 1; else --top; break;
        case Op::OrJump:       if (top->i != 0) step = begin + step->target - 1; else --top; break;

        case Op::AddI:  below.i = Wrapping(below.i, top->i, std::plus<>()); --top; break;
        case Op::SubI:  below.i = Wrapping(below.i, top->i, std::minus<>()); --top; break;
        case Op::MulI:  below.i = Wrapping(below.i, top->i, std::multiplies<>()); --top; break;
        case Op::DivI:  below.i = Divide(below.i, top->i); --top; break;
        case Op::ModI:  below.i = Modulo(below.i, top->i); --top; break;
        case Op::PowI:  below.i = Power(below.i, top->i); --top; break;
        case Op::AddF:  below.f += top->f; --top; break;
        case Op::SubF:  below.f -= top->f; --top; break;
        case Op::MulF:  below.f *= top->f; --top; break;
        case Op::DivF:  below.f = DivideFloat(below.f, top->f); --top; break;
        case Op::ModF:  below.f = ModuloFloat(below.f, top->f); --top; break;
        case Op::PowF:  below.f = std::pow(below.f, top->f); --top; break;

        case Op::And:   below.i &= top->i; --top; break;
        case Op::Or:    below.i |= top->i; --top; break;
        case Op::Xor:   below.i ^= top->i; --top; break;
        case Op::Not:   top->i = ~top->i; break;
        case Op::Left:  below.i = ShiftLeft(below.i, top->i); --top; break;
        case Op::Right: below.i = ShiftRight(below.i, top->i); --top; break;

        case Op::EqI:   below.i = below.i == top->i; --top; break;
        case Op::NeI:   below.i = below.i != top->i; --top; break;
        case Op::LtI:   below.i = below.i <  top->i; --top; break;
        case Op::LeI:   below.i = below.i <= top->i; --top; break;
        case Op::GtI:   below.i = below.i >  top->i; --top; break;
        case Op::GeI:   below.i = below.i >= top->i; --top; break;
        case Op::EqF:   below.i = below.f == top->f; --top; break;
        case Op::NeF:   below.i = below.f != top->f; --top; break;
        case Op::LtF:   below.i = below.f <  top->f; --top; break;
        case Op::LeF:   below.i = below.f <= top->f; --top; break;
        case Op::GtF:   below.i = below.f >  top->f; --top; break;
        case Op::GeF:   below.i = below.f >= top->f; --top; break;

        case Op::NegI:  top->i = Wrapping(0, top->i, std::minus<>()); break;
        case Op::AbsI:  if (top->i < 0) top->i = Wrapping(0, top->i, std::minus<>()); break;
        case Op::SgnI:  top->i = Sign(top->i); break;
        case Op::NegF:  top->f = -top->f; break;
        case Op::AbsF:  top->f = std::fabs(top->f); break;
        case Op::SgnF:  top->f = Sign(top->f); break;

        case Op::Sin:   top->f = std::sin(top->f); break;
        case Op::Cos:   top->f = std::cos(top->f); break;
        case Op::Tan:   top->f = std::tan(top->f); break;
        case Op::Asin:  top->f = std::asin(top->f); break;
        case Op::Acos:  top->f = std::acos(top->f); break;
        case Op::Atan:  top->f = std::atan(top->f); break;
        case Op::Exp:   top->f = std::exp(top->f); break;
        case Op::Ln:    top->f = std::log(top->f); break;
        case Op::Lg:    top->f = std::log10(top->f); break;
        case Op::Sqrt:  top->f = std::sqrt(top->f); break;
        case Op::Trunc: top->f = std::trunc(top->f); break;
        case Op::Floor: top->f = std::floor(top->f); break;
        case Op::Ceil:  top->f = std::ceil(top->f); break;
        case Op::Round: top->f = std::round(top->f); break;
        case Op::RoundDigits: below.f = RoundToDigits(below.f, top->f); --top; break;
            // clang-format on
        }
    }
    if (arithmetic_ == Arithmetic::Float && !std::isfinite(top->f))
        throw FormulaError("no finite result");
    return *top;
}

} // namespace Orvi::GenApi
