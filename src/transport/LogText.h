#pragma once
// Texts of ENTER and EXIT lines: formats are checked when the library is compiled, arguments are evaluated only while
// the log is up.

#include "foundation/PublicApi.h"

#include <cstddef>
#include <string_view>
#include <type_traits>

namespace Orvi {

/// An argument of a log text.
struct LogArgument {
    enum class Kind { Word, Wide, Real, Text };

    template <class T>
    static constexpr Kind KindOf()
    {
        using Plain = std::remove_cvref_t<T>;
        if constexpr (std::is_convertible_v<Plain, const char *>)
            return Kind::Text;
        else if constexpr (std::is_floating_point_v<Plain>)
            return Kind::Real;
        else
            return sizeof(Plain) == 8 ? Kind::Wide : Kind::Word;
    }

    template <class T>
    LogArgument(const T &value)
    {
        if constexpr (KindOf<T>() == Kind::Text)
            text = value;
        else if constexpr (KindOf<T>() == Kind::Real)
            real = value;
        else if constexpr (std::is_pointer_v<T>)
            number = reinterpret_cast<std::uintptr_t>(value);
        else if constexpr (KindOf<T>() == Kind::Word)
            number = static_cast<uint32_t>(value);
        else
            number = static_cast<uint64_t>(value);
    }

    union {
        uint64_t number;
        double real;
        const char *text;
    };
};

/// A format with the conversions that the log uses: %d %08X %llX %llx %s %15.9f. Does not compile when it does not
/// match its arguments.
template <class... Arguments>
struct LogFormat {
    template <std::size_t size>
    consteval LogFormat(const char (&format)[size]) : text(format)
    {
        constexpr LogArgument::Kind kinds[] = {LogArgument::KindOf<Arguments>()..., LogArgument::Kind::Word};
        std::size_t argument = 0;
        for (std::string_view rest(format, size - 1); !rest.empty();) {
            const std::size_t percent = rest.find('%');
            if (percent == std::string_view::npos)
                break;
            rest.remove_prefix(percent + 1);
            const LogArgument::Kind kind = TakeConversion(rest);
            if (argument == sizeof...(Arguments) || kind != kinds[argument])
                throw "the conversion does not match its argument";
            ++argument;
        }
        if (argument != sizeof...(Arguments))
            throw "an argument without a conversion";
    }

    static constexpr LogArgument::Kind TakeConversion(std::string_view &rest)
    {
        constexpr struct {
            std::string_view text;
            LogArgument::Kind kind;
        } conversions[] = {{"d", LogArgument::Kind::Word},   {"08X", LogArgument::Kind::Word},
                           {"llX", LogArgument::Kind::Wide}, {"llx", LogArgument::Kind::Wide},
                           {"s", LogArgument::Kind::Text},   {"15.9f", LogArgument::Kind::Real}};
        for (const auto &conversion : conversions) {
            if (rest.starts_with(conversion.text)) {
                rest.remove_prefix(conversion.text.size());
                return conversion.kind;
            }
        }
        throw "a conversion that the log does not know";
    }

    const char *text;
};

/// Collects a line of at most 255 bytes.
class LogWriter {
  public:
    void Append(std::string_view text);

    template <class... Arguments>
    void Format(LogFormat<std::type_identity_t<Arguments>...> format, const Arguments &...arguments)
    {
        const LogArgument list[] = {LogArgument(arguments)..., LogArgument(0)};
        AppendFormatted(format.text, list);
    }

    /// Adds ", " and the text.
    template <class... Arguments>
    void operator()(LogFormat<std::type_identity_t<Arguments>...> format, const Arguments &...arguments)
    {
        Append(", ");
        Format<Arguments...>(format, arguments...);
    }

    const char *Text()
    {
        line_[size_] = '\0';
        return line_;
    }

  private:
    static constexpr std::size_t maxLine = 255;

    void AppendFormatted(const char *format, const LogArgument *arguments);
    void AppendHex(uint64_t number, unsigned leastDigits, const char *digits);
    void AppendDecimal(int32_t number);

    std::size_t size_ = 0;
    char line_[maxLine + 1];
};

/// The text after a function's name, as something that is only written when the log is up.
#define LOG_TEXT(...) [&](::Orvi::LogWriter &write) { write(__VA_ARGS__); }

/// The text of a line that is the function's name alone.
inline constexpr auto s_nameOnly = [](LogWriter &) {};

} // namespace Orvi
