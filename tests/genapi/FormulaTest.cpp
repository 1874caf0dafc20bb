#include "u3v/genapi/Formula.h"

#include "TestMap.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace Orvi::GenApi {
namespace {

using testing::HasSubstr;

/// A = 7, B = -3, BIG = 2^62 + 1, Z = 0, X = 0.5; an access to N counts.
class Names : public FormulaNames, public FormulaVariables {
  public:
    explicit Names(Arithmetic arithmetic) : arithmetic_(arithmetic) {}
    std::optional<FormulaName> Look(std::string_view name) override
    {
        constexpr std::string_view known[] = {"A", "B", "BIG", "Z", "X"};
        for (unsigned i = 0; i < std::size(known); ++i)
            if (known[i] == name)
                return FormulaName{FormulaName::Kind::Variable, i};
        if (name == "K")
            return FormulaName{FormulaName::Kind::Integer, 0, {.i = 0x7FFFFFFFFFFFFFFF}};
        if (name == "SUM")
            return FormulaName{FormulaName::Kind::Expression, 0, {}, "A + B"};
        if (name == "LOOP")
            return FormulaName{FormulaName::Kind::Expression, 0, {}, "LOOP + 1"};
        return std::nullopt;
    }
    Cell Load(unsigned variable) override
    {
        ++loads;
        constexpr std::int64_t ints[] = {7, -3, (std::int64_t{1} << 62) + 1, 0, 1};
        constexpr double floats[] = {7, -3, 4611686018427387904.0, 0, 0.5};
        return arithmetic_ == Arithmetic::Float ? Cell{.f = floats[variable]} : Cell{.i = ints[variable]};
    }
    int loads = 0;

  private:
    Arithmetic arithmetic_;
};

std::int64_t Int(std::string_view text)
{
    Names names(Arithmetic::Integer);
    return Formula::Compile(text, Arithmetic::Integer, names).Run(names).i;
}

double Float(std::string_view text)
{
    Names names(Arithmetic::Float);
    return Formula::Compile(text, Arithmetic::Float, names).Run(names).f;
}

std::string FormulaFailure(std::string_view text, Arithmetic arithmetic = Arithmetic::Float)
{
    Names names(arithmetic);
    try {
        Formula::Compile(text, arithmetic, names).Run(names);
    } catch (const FormulaError &error) {
        return error.what();
    }
    return {};
}

TEST(Formula, IntegersFollowTheTable)
{
    const struct {
        const char *text;
        std::int64_t value;
    } rows[] = {
        // clang-format off
        {"1 + 2 * 3", 7}, {"(1 + 2) * 3", 9}, {"10 - 4 - 3", 3}, {"7 / 2", 3}, {"-7 / 2", -3}, {"-7 % 4", -3},
        {"A / B", -2}, {"A % B", 1}, {"2 ** 10", 1024}, {"2 ** 3 ** 2", 512}, {"-2 ** 2", -4}, {"2 ** -1", 0},
        {"(0-1) ** -3", -1}, {"0x10 | 0x01", 0x11}, {"0xFF & 0x3C", 0x3C}, {"0xF0 ^ 0xFF", 0x0F}, {"~0", -1},
        {"~A & 0xF", 8}, {"1 << 40", 1099511627776}, {"-8 >> 1", -4}, {"1 << 64", 0}, {"-1 >> 99", -1},
        {"A = 7", 1}, {"A == 7", 1}, {"A <> 7", 0}, {"A != 7", 0}, {"A < 7", 0}, {"A <= 7", 1}, {"A > B", 1},
        {"A >= 8", 0}, {"A && Z", 0}, {"A && B", 1}, {"Z || B", 1}, {"Z || Z", 0}, {"A > 3 ? 10 : 20", 10},
        {"A > 9 ? 10 : A > 6 ? 15 : 20", 15}, {"1 | 2 ^ 3 & 5", 3}, {"1 + 1 << 2", 8}, {"4 > 3 = 1", 1},
        {"1 = 1 && 2 = 2 || 0", 1}, {"BIG + 1", 4611686018427387906}, {"BIG * 1 - 1", 4611686018427387904},
        {"BIG / 1", 4611686018427387905}, {"K", 9223372036854775807}, {"K + 1", std::numeric_limits<std::int64_t>::min()},
        {"0xFFFFFFFFFFFFFFFF", -1}, {"BIG >> 99", 0}, {"-8 >> 63", -1}, {"1 << 63 >> 63", -1}, {"A ? 1 : 2.5", 1}, {"Z ? 2.4 : 9", 9},
        {"0x8000000000000000 / -1", std::numeric_limits<std::int64_t>::min()},
        {"0x8000000000000000 % -1", 0}, {"-9223372036854775807 - 1", std::numeric_limits<std::int64_t>::min()}, {"9223372036854775807", 9223372036854775807}, {"SUM * 2", 8}, {"ABS(B)", 3},
        {"NEG(A)", -7}, {"SGN(B)", -1}, {"SGN(Z)", 0}, {"SGN(A)", 1}, {"ABS(BIG)", 4611686018427387905},
        {"ROUND(2.5)", 3}, {"ROUND(-2.5)", -3}, {"TRUNC(2.9)", 2}, {"FLOOR(-2.1)", -3}, {"CEIL(2.1)", 3},
        {"A * 0.5", 4}, {"B * 0.5", -2}, {"SQRT(16)", 4}, {"+A", 7}, {"- - A", 7}, {"\t( ( A ) )\n", 7},
        // clang-format on
    };
    for (const auto &row : rows)
        EXPECT_EQ(Int(row.text), row.value) << row.text;
}

TEST(Formula, FloatsFollowTheTable)
{
    const struct {
        const char *text;
        double value;
    } rows[] = {
        // clang-format off
        {"1 / 2", 0.5}, {"A / 2", 3.5}, {"1e3 + .5", 1000.5}, {"1.5E-2", 0.015}, {"2 ** 0.5", std::sqrt(2.0)},
        {"7.5 % 2", 1.5}, {"SIN(0)", 0}, {"COS(0)", 1}, {"TAN(X)", std::tan(0.5)}, {"ASIN(X)", std::asin(0.5)},
        {"ACOS(X)", std::acos(0.5)}, {"ATAN(X)", std::atan(0.5)}, {"EXP(1)", std::exp(1.0)}, {"LN(E)", 1},
        {"LG(1000)", 3}, {"SQRT(2)", std::sqrt(2.0)}, {"TRUNC(-1.5)", -1}, {"FLOOR(-1.5)", -2}, {"CEIL(1.2)", 2},
        {"ROUND(1.5)", 2}, {"ROUND(-0.5)", -1}, {"ROUND(3.14159, 2)", 3.14}, {"ROUND(1234, -2)", 1200},
        {"ABS(B / 2)", 1.5}, {"NEG(X)", -0.5}, {"SGN(B)", -1}, {"PI", 3.14159265358979323846}, {"E", std::exp(1.0)},
        {"9300000000000000000", 9.3e18}, {"0xFFFFFFFFFFFFFFFF", -1}, {"PI() + E()", 3.14159265358979323846 + std::exp(1.0)}, {"ROUND(-2.5)", -3}, {"ROUND(2.345, 1 + 1)", 2.35}, {"ROUND(A, 0)", 7}, {"ROUND(2.345, 1.6)", 2.35}, {"A ? 1 : 2.5", 1}, {"Z ? 2.5 : 1", 1},
        {"A > 6.5 ? X : 1", 0.5}, {"Z ? 1 : 2.5", 2.5}, {"A & 3", 3}, {"1 << 3", 8}, {"(A = 7) + 1", 2},
        {"X && 1", 1}, {"20 * LG(100 / 10)", 20},
        // clang-format on
    };
    for (const auto &row : rows)
        EXPECT_DOUBLE_EQ(Float(row.text), row.value) << row.text;
}

TEST(Formula, WhatHasNoResultIsAnError)
{
    for (const Arithmetic arithmetic : {Arithmetic::Integer, Arithmetic::Float}) {
        EXPECT_THAT(FormulaFailure("A / Z", arithmetic), HasSubstr("division by zero"));
        EXPECT_THAT(FormulaFailure("A % Z", arithmetic), HasSubstr("modulo by zero"));
    }
    EXPECT_THAT(FormulaFailure("Z ** -1", Arithmetic::Integer), HasSubstr("division by zero"));
    EXPECT_THAT(FormulaFailure("SQRT(B)"), HasSubstr("no finite result"));
    EXPECT_THAT(FormulaFailure("LN(Z)"), HasSubstr("no finite result"));
    EXPECT_THAT(FormulaFailure("10 ** 400"), HasSubstr("no finite result"));
    EXPECT_THAT(FormulaFailure("1e30", Arithmetic::Integer), HasSubstr("64-bit"));
    EXPECT_THAT(FormulaFailure("9223372036854775808", Arithmetic::Integer), HasSubstr("64-bit"));
    EXPECT_THAT(FormulaFailure("1 << B", Arithmetic::Integer), HasSubstr("negative"));
    EXPECT_THAT(FormulaFailure("1 >> B", Arithmetic::Integer), HasSubstr("negative"));
}

TEST(Formula, WhatIsNoFormulaIsRefusedWithAReason)
{
    const struct {
        const char *text, *reason;
    } rows[] = {
        // clang-format off
        {"", "ends too early"}, {"A +", "ends too early"}, {"A B", "unexpected 'B'"}, {"(A", "')' is missing"},
        {"A ? B", "':' is missing"}, {"FOO + 1", "'FOO' is neither"}, {"SIN", "'SIN' is neither"},
        {"FOO(1)", "'FOO' is neither"}, {"SIN()", "unexpected ')'"}, {"SIN(1, 2)", "')' is missing"},
        {"12abc", "is no number"}, {"1.2.3", "is no number"}, {"0xG", "is no number"}, {"3e", "is no number"},
        {"$", "unexpected '$'"}, {"LOOP", "nested too deeply"},
        // clang-format on
    };
    for (const auto &row : rows)
        EXPECT_THAT(FormulaFailure(row.text), HasSubstr(row.reason)) << row.text;
}

TEST(Formula, DepthAndLengthAreBounded)
{
    EXPECT_THAT(FormulaFailure(std::string(100000, '(')), HasSubstr("nested too deeply"));
    EXPECT_THAT(FormulaFailure(Say(std::string(100000, '-'), "1")), HasSubstr("nested too deeply"));
    std::string sum = "1", power = "1";
    for (int i = 0; i < 5000; ++i)
        sum += "+1";
    for (int i = 0; i < 500; ++i)
        power += "**1";
    EXPECT_THAT(FormulaFailure(sum), HasSubstr("too long"));
    EXPECT_THAT(FormulaFailure(power), HasSubstr("nested too deeply"));
}

TEST(Formula, OnlyTheBranchThatIsTakenIsEvaluated)
{
    EXPECT_EQ(Int("Z ? A / Z : 5"), 5);
    EXPECT_EQ(Int("Z <> 0 && A / Z > 1"), 0);
    EXPECT_EQ(Int("Z = 0 || A / Z > 1"), 1);
    Names names(Arithmetic::Integer);
    Formula::Compile("Z ? A : B", Arithmetic::Integer, names).Run(names);
    EXPECT_EQ(names.loads, 2);
}

TEST(Formula, RoundingToIntegersGoesAwayFromZero)
{
    EXPECT_EQ(RoundToInt64(0.5), 1);
    EXPECT_EQ(RoundToInt64(-0.5), -1);
    EXPECT_EQ(RoundToInt64(0.49999999999999994), 0);
    EXPECT_EQ(RoundToInt64(-9223372036854775808.0), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(RoundToInt64(9223372036854775808.0), std::nullopt);
    EXPECT_EQ(RoundToInt64(std::nan("")), std::nullopt);
}

} // namespace
} // namespace Orvi::GenApi
