#include "u3v/genapi/FormulaScanner.h"

#include "u3v/genapi/Say.h"

#include <charconv>
#include <limits>

namespace Orvi::GenApi {

namespace {

constexpr std::size_t shown = 12, shownOfNumber = 24;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }

} // namespace

std::string Quoted(std::string_view text)
{
    std::string quoted(1, '\'');
    quoted.append(text);
    quoted.push_back('\'');
    return quoted;
}

void FormulaScanner::Skip()
{
    while (at_ < text_.size() && (text_[at_] == ' ' || (text_[at_] >= '\t' && text_[at_] <= '\r')))
        ++at_;
}

bool FormulaScanner::Accept(std::string_view token)
{
    Skip();
    if (!text_.substr(at_).starts_with(token))
        return false;
    at_ += token.size();
    return true;
}

void FormulaScanner::Expect(std::string_view token)
{
    if (!Accept(token))
        throw FormulaError(Say(Quoted(token), " is missing at ", Quoted(Rest(shown))));
}

void FormulaScanner::ExpectEnd()
{
    if (Skip(); at_ != text_.size())
        FailUnexpected();
}

void FormulaScanner::FailUnexpected() const
{
    throw FormulaError(at_ == text_.size() ? "it ends too early" : Say("unexpected ", Quoted(Rest(shown))));
}

const BinaryRow *FormulaScanner::TakeOperator(int level)
{
    Skip();
    for (const BinaryRow &row : binaryRows)
        if (text_.substr(at_).starts_with(row.token)) {
            if (row.level < level)
                return nullptr;
            at_ += row.token.size();
            return &row;
        }
    return nullptr;
}

std::string_view FormulaScanner::TakeName()
{
    Skip();
    const std::size_t begin = at_;
    if (at_ < text_.size() && IsLetter(text_[at_]))
        while (at_ < text_.size() && (IsLetter(text_[at_]) || IsDigit(text_[at_]) || text_[at_] == '.'))
            ++at_;
    return text_.substr(begin, at_ - begin);
}

std::optional<FormulaScanner::Number> FormulaScanner::TakeNumber()
{
    Skip();
    if (at_ == text_.size() || !(IsDigit(text_[at_]) || text_[at_] == '.'))
        return std::nullopt;
    const char *const first = text_.data() + at_;
    const char *const last = text_.data() + text_.size();
    const bool hex = last - first > 2 && first[0] == '0' && (first[1] == 'x' || first[1] == 'X');
    std::uint64_t integer = 0;
    auto [end, error] = std::from_chars(hex ? first + 2 : first, last, integer, hex ? 16 : 10);
    // A hexadecimal number is a pattern of 64 bits; a decimal one that does not fit is no integer.
    const bool isFraction = end != last && (*end == '.' || *end == 'e' || *end == 'E');
    const bool fits = error == std::errc() && integer <= std::uint64_t{std::numeric_limits<std::int64_t>::max()};
    Number number{{.i = static_cast<std::int64_t>(integer)}, hex || (!isFraction && fits)};
    if (!number.isInteger) {
        const auto asFloat = std::from_chars(first, last, number.value.f);
        end = asFloat.ptr;
        error = asFloat.ec;
    }
    if (error != std::errc() || (end != last && (IsLetter(*end) || *end == '.')))
        FailNumber();
    at_ = static_cast<std::size_t>(end - text_.data());
    return number;
}

void FormulaScanner::FailNumber() const { throw FormulaError(Say(Quoted(Rest(shownOfNumber)), " is no number")); }

} // namespace Orvi::GenApi
