#pragma once
// Texts of ENTER and EXIT lines: formats are checked when the library is compiled, arguments are evaluated only while
// the log is up.

#include "log/LogLine.h"

#include <cstddef>
#include <string_view>
#include <type_traits>
#include <utility>

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

/// A literal and the conversion behind it.
struct LogPiece {
    uint8_t literal = 0;    ///< bytes before the percent sign
    uint8_t skipped = 0;    ///< bytes of the conversion
    char conversion = '\0'; ///< d, 0, X, x, s or f; none behind the last literal
};

/// A format taken apart when the library is compiled. Does not compile when it does not match its arguments.
template <class... Arguments>
struct LogFormat {
    template <std::size_t size>
    consteval LogFormat(const char (&format)[size]) : text(format), maxSize(0), pieces{}
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
        maxSize = size + sizeof...(Arguments) * maxDigits;
        for (const LogArgument::Kind kind : kinds)
            if (kind == LogArgument::Kind::Text || kind == LogArgument::Kind::Real)
                maxSize = SIZE_MAX;
    }

    const char *text;
    std::size_t maxSize; ///< that it can give; unlimited unless all arguments are integers
    LogPiece pieces[sizeof...(Arguments) + 1];
};

/// A log line that takes formatted texts.
class LogWriter : public LogLine {
  public:
    template <class... Arguments>
    [[gnu::always_inline]] void Format(LogFormat<std::type_identity_t<Arguments>...> format,
                                       const Arguments &...arguments)
    {
        const LogArgument list[] = {LogArgument(arguments)..., LogArgument(0)};
        // Mostly nothing can be cut. The compiler knows all literals here and makes a few stores of them.
        if (format.maxSize <= Room()) [[likely]]
            SetEnd(AppendAll(End(), format, list, std::index_sequence_for<Arguments...>()));
        else
            AppendPieces(format.text, format.pieces, sizeof...(Arguments), list);
    }

    /// Adds ", " and the text.
    template <class... Arguments>
    [[gnu::always_inline]] void operator()(LogFormat<std::type_identity_t<Arguments>...> format,
                                           const Arguments &...arguments)
    {
        Append(", ");
        Format<Arguments...>(format, arguments...);
    }

  private:
    template <class Format, std::size_t... indices>
    [[gnu::always_inline]] static char *AppendAll(char *end, const Format &format, const LogArgument *arguments,
                                                  std::index_sequence<indices...>)
    {
        const char *text = format.text;
        const auto appendLiteral = [&](const LogPiece &piece) {
            std::memcpy(end, text, piece.literal);
            end += piece.literal;
            text += piece.literal + piece.skipped;
        };
        ((appendLiteral(format.pieces[indices]),
          end = WriteNumber(end, format.pieces[indices].conversion, arguments[indices].number)),
         ...);
        appendLiteral(format.pieces[sizeof...(indices)]);
        return end;
    }

    static char *WriteNumber(char *to, char conversion, uint64_t number);
    char *AppendArgument(char *end, char conversion, const LogArgument &argument);
    void AppendPieces(const char *text, const LogPiece *pieces, std::size_t count, const LogArgument *arguments);
};

/// The text after a function's name, as something that is only written when the log is up.
#define LOG_TEXT(...) [&](::Orvi::LogWriter &write) { write(__VA_ARGS__); }

/// The text of a line that is the function's name alone.
inline constexpr auto s_nameOnly = [](LogWriter &) {};

} // namespace Orvi
