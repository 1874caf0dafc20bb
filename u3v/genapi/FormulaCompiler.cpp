#include "u3v/genapi/Formula.h"

#include "u3v/genapi/Say.h"

#include <charconv>
#include <cmath>

namespace Orvi::GenApi {

namespace {

enum class Type : std::uint8_t { Int, Float };

/// What an operator asks of its operands.
enum class Rule : std::uint8_t {
    Number,  ///< integer when both are and the formula is one of integers
    Compare, ///< as Number for the operands, whatever the formula; gives 0 or 1
    Bits,    ///< integers
};

struct BinaryRow {
    std::string_view token;
    int level;
    Rule rule;
    Op onInts, onFloats;
};

// Longer tokens stand before those that they begin with.
constexpr int powerLevel = 10;
constexpr BinaryRow binaryRows[] = {
    // clang-format off
    {"**", powerLevel, Rule::Number, Op::PowI, Op::PowF},
    {"*",  9, Rule::Number,  Op::MulI,  Op::MulF},
    {"/",  9, Rule::Number,  Op::DivI,  Op::DivF},
    {"%",  9, Rule::Number,  Op::ModI,  Op::ModF},
    {"+",  8, Rule::Number,  Op::AddI,  Op::AddF},
    {"-",  8, Rule::Number,  Op::SubI,  Op::SubF},
    {"<<", 7, Rule::Bits,    Op::Left,  Op::Nop},
    {">>", 7, Rule::Bits,    Op::Right, Op::Nop},
    {"<=", 6, Rule::Compare, Op::LeI,   Op::LeF},
    {"<>", 5, Rule::Compare, Op::NeI,   Op::NeF},
    {"<",  6, Rule::Compare, Op::LtI,   Op::LtF},
    {">=", 6, Rule::Compare, Op::GeI,   Op::GeF},
    {">",  6, Rule::Compare, Op::GtI,   Op::GtF},
    {"==", 5, Rule::Compare, Op::EqI,   Op::EqF},
    {"!=", 5, Rule::Compare, Op::NeI,   Op::NeF},
    {"=",  5, Rule::Compare, Op::EqI,   Op::EqF},
    {"&&", 1, Rule::Number,  Op::AndJump, Op::Nop},
    {"&",  4, Rule::Bits,    Op::And,   Op::Nop},
    {"^",  3, Rule::Bits,    Op::Xor,   Op::Nop},
    {"||", 0, Rule::Number,  Op::OrJump, Op::Nop},
    {"|",  2, Rule::Bits,    Op::Or,    Op::Nop},
    // clang-format on
};

struct FunctionRow {
    std::string_view name;
    Op onInt; ///< Op::ToFloat: has no form of its own for integers
    Op onFloat;
};

constexpr FunctionRow functionRows[] = {
    // clang-format off
    {"NEG",   Op::NegI,    Op::NegF},  {"ABS",   Op::AbsI,    Op::AbsF},  {"SGN",  Op::SgnI,    Op::SgnF},
    {"SIN",   Op::ToFloat, Op::Sin},   {"COS",   Op::ToFloat, Op::Cos},   {"TAN",  Op::ToFloat, Op::Tan},
    {"ASIN",  Op::ToFloat, Op::Asin},  {"ACOS",  Op::ToFloat, Op::Acos},  {"ATAN", Op::ToFloat, Op::Atan},
    {"EXP",   Op::ToFloat, Op::Exp},   {"LN",    Op::ToFloat, Op::Ln},    {"LG",   Op::ToFloat, Op::Lg},
    {"SQRT",  Op::ToFloat, Op::Sqrt},  {"TRUNC", Op::Nop,     Op::Trunc}, {"FLOOR", Op::Nop,    Op::Floor},
    {"CEIL",  Op::Nop,     Op::Ceil},  {"ROUND", Op::Nop,     Op::Round},
    // clang-format on
};

std::string Quoted(std::string_view text)
{
    std::string quoted(1, '\'');
    quoted.append(text);
    quoted.push_back('\'');
    return quoted;
}

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
        const std::string_view outerText = text_;
        const std::size_t outerAt = at_;
        text_ = text;
        at_ = 0;
        const Type type = Ternary();
        if (Skip(); at_ != text_.size())
            Fail(Say("unexpected ", Quoted(text_.substr(at_, 12))));
        text_ = outerText;
        at_ = outerAt;
        return type;
    }

    Type Ternary()
    {
        const Nested nested(*this);
        const Type condition = Binary(0);
        if (!Accept("?"))
            return condition;
        Bool(condition);
        const std::size_t toElse = Emit(Op::JumpIfZero, -1);
        Type first = Ternary();
        const std::size_t widenFirst = Emit(Op::Nop, 0);
        const std::size_t toEnd = Emit(Op::Jump, -1); // the other branch starts without this branch's value
        Expect(":");
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

    const BinaryRow *Operator()
    {
        Skip();
        for (const BinaryRow &row : binaryRows)
            if (text_.substr(at_).starts_with(row.token))
                return &row;
        return nullptr;
    }

    Type Binary(int level)
    {
        const Nested nested(*this);
        Type left = Unary();
        for (const BinaryRow *row = Operator(); row != nullptr && row->level >= level; row = Operator()) {
            at_ += row->token.size();
            left = row->onInts == Op::AndJump || row->onInts == Op::OrJump ? Logic(*row, left) : Apply(*row, left);
        }
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
        if (Accept("-")) {
            // -A**B is -(A**B).
            const Type type = Binary(powerLevel);
            Emit(type == Type::Int ? Op::NegI : Op::NegF, 0);
            return type;
        }
        if (Accept("+"))
            return Binary(powerLevel);
        if (Accept("~")) {
            Coerce(Unary(), Type::Int);
            Emit(Op::Not, 0);
            return Type::Int;
        }
        return Primary();
    }

    Type Primary()
    {
        Skip();
        if (Accept("(")) {
            const Type type = Ternary();
            Expect(")");
            return type;
        }
        if (at_ < text_.size() && (IsDigit(text_[at_]) || text_[at_] == '.'))
            return Number();
        const std::string_view name = Identifier();
        if (name.empty())
            Fail(at_ == text_.size() ? "it ends too early" : Say("unexpected ", Quoted(text_.substr(at_, 12))));
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
            if (row.name == name && Accept("("))
                return Call(row);
        if (name == "PI" || name == "E") {
            if (Accept("("))
                Expect(")");
            return Push({.f = name == "E" ? 2.71828182845904523536 : 3.14159265358979323846}, Type::Float);
        }
        Fail(Say(Quoted(name), " is neither a variable nor a function"));
    }

    Type Call(const FunctionRow &row)
    {
        const Type type = Ternary();
        if (row.onFloat == Op::Round && Accept(",")) {
            if (type == Type::Int)
                Emit(Op::ToFloat, 0);
            Coerce(Ternary(), Type::Float);
            Expect(")");
            Emit(Op::RoundDigits, -1);
            return Type::Float;
        }
        Expect(")");
        if (type == Type::Int) {
            Emit(row.onInt, 0);
            if (row.onInt != Op::ToFloat)
                return Type::Int;
        }
        Emit(row.onFloat, 0);
        return Type::Float;
    }

    Type Number()
    {
        const char *const first = text_.data() + at_;
        const char *const last = text_.data() + text_.size();
        const bool hex = last - first > 2 && first[0] == '0' && (first[1] == 'x' || first[1] == 'X');
        std::uint64_t integer = 0;
        const auto asInt = std::from_chars(hex ? first + 2 : first, last, integer, hex ? 16 : 10);
        const char *end = asInt.ptr;
        const bool fraction = !hex && end != last && (*end == '.' || *end == 'e' || *end == 'E');
        if (!fraction && asInt.ec == std::errc()) {
            EndNumber(end, last);
            return Push({.i = static_cast<std::int64_t>(integer)}, Type::Int);
        }
        double number = 0;
        const auto asFloat = std::from_chars(first, last, number);
        if (hex || asFloat.ec != std::errc())
            Fail(Say(Quoted(text_.substr(at_, 24)), " is no number"));
        EndNumber(asFloat.ptr, last);
        return Push({.f = number}, Type::Float);
    }

    void EndNumber(const char *end, const char *last)
    {
        if (end != last && (IsLetter(*end) || *end == '.'))
            Fail(Say(Quoted(text_.substr(at_, 24)), " is no number"));
        at_ = static_cast<std::size_t>(end - text_.data());
    }

    std::string_view Identifier()
    {
        const std::size_t begin = at_;
        if (at_ < text_.size() && IsLetter(text_[at_]))
            while (at_ < text_.size() && (IsLetter(text_[at_]) || IsDigit(text_[at_]) || text_[at_] == '.'))
                ++at_;
        return text_.substr(begin, at_ - begin);
    }

    static bool IsDigit(char c) { return c >= '0' && c <= '9'; }
    static bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }

    void Skip()
    {
        while (at_ < text_.size() && (text_[at_] == ' ' || (text_[at_] >= '\t' && text_[at_] <= '\r')))
            ++at_;
    }

    bool Accept(std::string_view token)
    {
        Skip();
        if (!text_.substr(at_).starts_with(token))
            return false;
        at_ += token.size();
        return true;
    }

    void Expect(std::string_view token)
    {
        if (!Accept(token))
            Fail(Say(Quoted(token), " is missing at ", Quoted(text_.substr(at_, 12))));
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
    std::string_view text_;
    std::size_t at_ = 0;
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
