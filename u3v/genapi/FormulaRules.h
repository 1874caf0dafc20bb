#pragma once
// The operators and functions of formulas.

#include "u3v/genapi/Formula.h"

namespace Orvi::GenApi {

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
inline constexpr int powerLevel = 10;
inline constexpr BinaryRow binaryRows[] = {
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

inline constexpr FunctionRow functionRows[] = {
    // clang-format off
    {"NEG",   Op::NegI,    Op::NegF},  {"ABS",   Op::AbsI,    Op::AbsF},  {"SGN",  Op::SgnI,    Op::SgnF},
    {"SIN",   Op::ToFloat, Op::Sin},   {"COS",   Op::ToFloat, Op::Cos},   {"TAN",  Op::ToFloat, Op::Tan},
    {"ASIN",  Op::ToFloat, Op::Asin},  {"ACOS",  Op::ToFloat, Op::Acos},  {"ATAN", Op::ToFloat, Op::Atan},
    {"EXP",   Op::ToFloat, Op::Exp},   {"LN",    Op::ToFloat, Op::Ln},    {"LG",   Op::ToFloat, Op::Lg},
    {"SQRT",  Op::ToFloat, Op::Sqrt},  {"TRUNC", Op::Nop,     Op::Trunc}, {"FLOOR", Op::Nop,    Op::Floor},
    {"CEIL",  Op::Nop,     Op::Ceil},  {"ROUND", Op::Nop,     Op::Round},
    // clang-format on
};

} // namespace Orvi::GenApi
