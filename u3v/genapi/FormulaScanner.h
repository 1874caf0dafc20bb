#pragma once
// The text of a formula, token by token. What is no token is a FormulaError with a reason.

#include "u3v/genapi/FormulaRules.h"

namespace Orvi::GenApi {

class FormulaScanner {
  public:
    explicit FormulaScanner(std::string_view text) : text_(text) {}

    bool Accept(std::string_view token);
    void Expect(std::string_view token);
    /// The binary operator that stands next, when it binds at least as closely as @p level.
    const BinaryRow *TakeOperator(int level);
    /// A name, with dots; empty when there is none.
    std::string_view TakeName();

    struct Number {
        Cell value;
        bool isInteger;
    };
    std::optional<Number> TakeNumber();

    void ExpectEnd();
    [[noreturn]] void FailUnexpected() const;

  private:
    void Skip();
    [[noreturn]] void FailNumber() const;
    std::string_view Rest(std::size_t most) const { return text_.substr(at_, most); }

    std::string_view text_;
    std::size_t at_ = 0;
};

/// In quotes, for messages.
std::string Quoted(std::string_view text);

} // namespace Orvi::GenApi
