// From the text of a formula to its program, in one pass.

#include "u3v/genapi/FormulaScanner.h"
#include "u3v/genapi/Say.h"

#include <utility>

namespace Orvi::GenApi {

namespace {

enum class Type : std::uint8_t { Int, Float };

class Compiler {
  public:
    Compiler(Arithmetic arithmetic, FormulaNames &names) : arithmetic_(arithmetic), names_(names) {}

    std::vector<Formula::Step> Compile(std::string_view text)
    {
        const Type type = Whole(text);
        Coerce(type, arithmetic_ == Arithmetic::Integer ? Type::Int : Type::Float);
        return std::move(steps_);
    }

  private:
    static constexpr int maxNesting = 100;

    /// A whole text: the formula, or an expression that is put in its place.
    Type Whole(std::string_view text)
    {
        const Nested nested(*this);
        const FormulaScanner outer = std::exchange(scanner_, FormulaScanner(text));
        const Type type = Ternary();
        scanner_.ExpectEnd();
        scanner_ = outer;
        return type;
    }

    Type Ternary()
    {
        const Nested nested(*this);
        const Type condition = Binary(0);
        if (!scanner_.Accept("?"))
            return condition;
        Bool(condition);
        const std::size_t toElse = Emit(Op::JumpIfZero, -1);
        Type first = Ternary();
        const std::size_t widenFirst = Emit(Op::Nop, 0);
        const std::size_t toEnd = Emit(Op::Jump, -1); // the other branch starts without this branch's value
        scanner_.Expect(":");
        Land(toElse);
        const Type second = Ternary();
        if (first != second) {
            if (first == Type::Int)
                steps_[widenFirst].op = Op::ToFloat;
            Coerce(second, Type::Float);
            first = Type::Float;
        }
        Land(toEnd);
        return first;
    }

    Type Binary(int level)
    {
        const Nested nested(*this);
        Type left = Unary();
        while (const BinaryRow *row = scanner_.TakeOperator(level))
            left = row->onInts == Op::AndJump || row->onInts == Op::OrJump ? Logic(*row, left) : Apply(*row, left);
        return left;
    }

    /// The right side runs only when the left one leaves the result open.
    Type Logic(const BinaryRow &row, Type left)
    {
        Bool(left);
        const std::size_t jump = Emit(row.onInts, -1);
        Bool(Binary(row.level + 1));
        Land(jump);
        return Type::Int;
    }

    Type Apply(const BinaryRow &row, Type left)
    {
        const Type right = row.level == powerLevel ? Power() : Binary(row.level + 1);
        bool ints = row.rule == Rule::Bits;
        if (!ints && left == Type::Int && right == Type::Int)
            ints = row.rule == Rule::Compare || arithmetic_ == Arithmetic::Integer;
        const Type wanted = ints ? Type::Int : Type::Float;
        if (left != wanted)
            Emit(ints ? Op::ToIntBelow : Op::ToFloatBelow, 0);
        Coerce(right, wanted);
        Emit(ints ? row.onInts : row.onFloats, -1);
        return row.rule == Rule::Compare ? Type::Int : wanted;
    }

    /// The exponent: to the right, and a sign belongs to it.
    Type Power() { return Binary(powerLevel); }

    Type Unary()
    {
        const Nested nested(*this);
        if (scanner_.Accept("-")) {
            // -A**B is -(A**B).
            const Type type = Binary(powerLevel);
            Emit(type == Type::Int ? Op::NegI : Op::NegF, 0);
            return type;
        }
        if (scanner_.Accept("+"))
            return Binary(powerLevel);
        if (scanner_.Accept("~")) {
            Coerce(Unary(), Type::Int);
            Emit(Op::Not, 0);
            return Type::Int;
        }
        return Primary();
    }

    Type Primary()
    {
        if (scanner_.Accept("(")) {
            const Type type = Ternary();
            scanner_.Expect(")");
            return type;
        }
        if (const auto number = scanner_.TakeNumber())
            return Push(number->value, number->isInteger ? Type::Int : Type::Float);
        const std::string_view name = scanner_.TakeName();
        if (name.empty())
            scanner_.FailUnexpected();
        return Named(name);
    }

    Type Named(std::string_view name)
    {
        if (const auto known = names_.Look(name)) {
            switch (known->kind) {
            case FormulaName::Kind::Variable:
                Emit(Op::Load, 1, known->variable);
                return known->integer || arithmetic_ == Arithmetic::Integer ? Type::Int : Type::Float;
            case FormulaName::Kind::Integer:
                return Push(known->constant, Type::Int);
            case FormulaName::Kind::Float:
                return Push(known->constant, Type::Float);
            case FormulaName::Kind::Expression:
                return Whole(known->expression);
            }
        }
        for (const FunctionRow &row : functionRows)
            if (row.name == name && scanner_.Accept("("))
                return Call(row);
        if (name == "PI" || name == "E") {
            if (scanner_.Accept("("))
                scanner_.Expect(")");
            return Push({.f = name == "E" ? 2.71828182845904523536 : 3.14159265358979323846}, Type::Float);
        }
        Fail(Say(Quoted(name), " is neither a variable nor a function"));
    }

    Type Call(const FunctionRow &row)
    {
        const Type type = Ternary();
        if (row.onFloat == Op::Round && scanner_.Accept(",")) {
            if (type == Type::Int)
                Emit(Op::ToFloat, 0);
            Coerce(Ternary(), Type::Float);
            scanner_.Expect(")");
            Emit(Op::RoundDigits, -1);
            return Type::Float;
        }
        scanner_.Expect(")");
        if (type == Type::Int) {
            Emit(row.onInt, 0);
            if (row.onInt != Op::ToFloat)
                return Type::Int;
        }
        Emit(row.onFloat, 0);
        return Type::Float;
    }

    Type Push(Cell constant, Type type)
    {
        Emit(Op::Push, 1);
        steps_.back().constant = constant;
        return type;
    }

    void Coerce(Type from, Type to)
    {
        if (from != to)
            Emit(to == Type::Float ? Op::ToFloat : Op::ToInt, 0);
    }

    void Bool(Type type) { Emit(type == Type::Int ? Op::BoolI : Op::BoolF, 0); }

    std::size_t Emit(Op op, int stackChange, unsigned target = 0)
    {
        depth_ += stackChange;
        if (depth_ > static_cast<int>(Formula::maxStack))
            Fail("it is nested too deeply");
        if (steps_.size() == Formula::maxSteps)
            Fail("it is too long");
        steps_.push_back({op, target, {}});
        return steps_.size() - 1;
    }

    void Land(std::size_t jump) { steps_[jump].target = static_cast<std::uint32_t>(steps_.size()); }

    [[noreturn]] static void Fail(const std::string &why) { throw FormulaError(why); }

    /// Bounds the recursion, of parentheses as of expressions that use each other.
    struct Nested {
        explicit Nested(Compiler &owner) : compiler(owner)
        {
            if (++compiler.nesting_ > 8 * maxNesting)
                Fail("it is nested too deeply");
        }
        ~Nested() { --compiler.nesting_; }
        Compiler &compiler;
    };

    Arithmetic arithmetic_;
    FormulaNames &names_;
    std::vector<Formula::Step> steps_;
    FormulaScanner scanner_{{}};
    int depth_ = 0;
    int nesting_ = 0;
};

} // namespace

Formula Formula::Compile(std::string_view text, Arithmetic arithmetic, FormulaNames &names)
{
    Formula formula;
    formula.text_ = text;
    formula.arithmetic_ = arithmetic;
    formula.steps_ = Compiler(arithmetic, names).Compile(text);
    formula.steps_.shrink_to_fit();
    return formula;
}

} // namespace Orvi::GenApi
