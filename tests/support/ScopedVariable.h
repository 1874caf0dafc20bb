#pragma once
// An environment variable for the length of a block.

#include <cstdlib>
#include <optional>
#include <string>

namespace Orvi::Testing {

/// Sets the variable, or unsets it when no value is given, and puts back what was there.
class ScopedVariable {
  public:
    ScopedVariable(const char *name, const std::optional<std::string> &value) : name_(name)
    {
        if (const char *before = std::getenv(name))
            before_ = before;
        Set(value);
    }
    ~ScopedVariable() { Set(before_); }
    ScopedVariable(const ScopedVariable &) = delete;
    ScopedVariable &operator=(const ScopedVariable &) = delete;

  private:
    void Set(const std::optional<std::string> &value) const
    {
        if (value)
            setenv(name_, value->c_str(), 1);
        else
            unsetenv(name_);
    }

    const char *name_;
    std::optional<std::string> before_;
};

} // namespace Orvi::Testing
