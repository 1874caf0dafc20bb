#pragma once
// Texts of ENTER and EXIT lines: formats are checked when the library is compiled, arguments are evaluated only while
// the log is up.

#include "log/LogLine.h"

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

/// The conversions that the log uses.
struct LogConversion {
    std::string_view text; ///< behind the percent sign
    LogArgument::Kind kind;
};
inline constexpr LogConversion s_logConversions[] = {
    {"d", LogArgument::Kind::Word},   {"08X", LogArgument::Kind::Word}, {"llX", LogArgument::Kind::Wide},
    {"llx", LogArgument::Kind::Wide}, {"s", LogArgument::Kind::Text},   {"15.9f", LogArgument::Kind::Real},
};

/// A literal and the conversion behind it. Small: a format travels in registers.
struct LogPiece {
    uint8_t literal = 0;    ///< bytes before the percent sign
    uint8_t skipped = 0;    ///< bytes of the conversion
    char conversion = '\0'; ///< d, 0, X, x, s or f; none behind the last literal
};

/// A format taken apart when the library is compiled. Does not compile when it does not match its arguments.
template <class... Arguments>
struct LogFormat {
    template <std::size_t size>
    consteval LogFormat(const char (&format)[size]) : text(format), pieces{}
    {
        static_assert(size < 256);
        constexpr LogArgument::Kind kinds[] = {LogArgument::KindOf<Arguments>()..., LogArgument::Kind::Word};
        std::string_view rest(format, size - 1);
        for (std::size_t argument = 0; argument < sizeof...(Arguments); ++argument) {
            LogPiece &piece = pieces[argument];
            const std::size_t percent = rest.find('%');
            if (percent == std::string_view::npos)
                throw "an argument without a conversion";
            piece.literal = static_cast<uint8_t>(percent);
            rest.remove_prefix(percent + 1);
            for (const LogConversion &known : s_logConversions)
                if (piece.conversion == '\0' && known.kind == kinds[argument] && rest.starts_with(known.text)) {
                    piece.conversion = known.text[0] == '0' ? '0' : known.text.back();
                    piece.skipped = static_cast<uint8_t>(known.text.size() + 1);
                    rest.remove_prefix(known.text.size());
                }
            if (piece.conversion == '\0')
                throw "the conversion does not match its argument";
        }
        if (rest.find('%') != std::string_view::npos)
            throw "a conversion without an argument";
        pieces[sizeof...(Arguments)].literal = static_cast<uint8_t>(rest.size());
    }

    const char *text;
    LogPiece pieces[sizeof...(Arguments) + 1];
};

/// A log line that takes formatted texts.
class LogWriter : public LogLine {
  public:
    template <class... Arguments>
    void Format(LogFormat<std::type_identity_t<Arguments>...> format, const Arguments &...arguments)
    {
        const LogArgument list[] = {LogArgument(arguments)..., LogArgument(0)};
        AppendPieces(format.text, format.pieces, sizeof...(Arguments), list);
    }

    /// Adds ", " and the text.
    template <class... Arguments>
    void operator()(LogFormat<std::type_identity_t<Arguments>...> format, const Arguments &...arguments)
    {
        Append(", ");
        Format<Arguments...>(format, arguments...);
    }

  private:
    void AppendPieces(const char *text, const LogPiece *pieces, std::size_t count, const LogArgument *arguments);
    void AppendArgument(char conversion, const LogArgument &argument);
};

/// The text after a function's name, as something that is only written when the log is up.
#define LOG_TEXT(...) [&](::Orvi::LogWriter &write) { write(__VA_ARGS__); }

/// The text of a line that is the function's name alone.
inline constexpr auto s_nameOnly = [](LogWriter &) {};

} // namespace Orvi
