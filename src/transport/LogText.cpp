#include "transport/LogText.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace Orvi {

void LogWriter::Append(std::string_view text)
{
    const std::size_t count = std::min(text.size(), maxLine - size_);
    std::memcpy(line_ + size_, text.data(), count);
    size_ += count;
}

// What vsnprintf would give for the few conversions that LogFormat lets through, at a fifth of its cost: two of these
// lines are written for every call while the log is up.
void LogWriter::AppendFormatted(const char *format, const LogArgument *arguments)
{
    for (std::string_view rest(format); !rest.empty();) {
        const std::size_t percent = std::min(rest.find('%'), rest.size());
        Append(rest.substr(0, percent));
        rest.remove_prefix(percent);
        if (rest.empty())
            return;
        const LogArgument &argument = *arguments++;
        std::size_t length;
        switch (rest[1]) {
        case 'd':
            AppendDecimal(static_cast<int32_t>(argument.number));
            length = 2;
            break;
        case 's':
            Append(argument.text != nullptr ? argument.text : "(null)");
            length = 2;
            break;
        case 'l':
            AppendHex(argument.number, 1, rest[3] == 'X' ? "0123456789ABCDEF" : "0123456789abcdef");
            length = 4;
            break;
        case '0':
            AppendHex(argument.number, 8, "0123456789ABCDEF");
            length = 4;
            break;
        default: {
            char szReal[400];
            std::snprintf(szReal, sizeof szReal, "%15.9f", argument.real);
            Append(szReal);
            length = 6;
            break;
        }
        }
        rest.remove_prefix(length);
    }
}

void LogWriter::AppendHex(uint64_t number, unsigned leastDigits, const char *digits)
{
    char text[16];
    std::size_t first = sizeof text;
    do {
        text[--first] = digits[number & 0xF];
        number >>= 4;
    } while (number != 0 || sizeof text - first < leastDigits);
    Append({text + first, sizeof text - first});
}

void LogWriter::AppendDecimal(int32_t number)
{
    char text[11];
    std::size_t first = sizeof text;
    uint32_t magnitude = number < 0 ? 0U - static_cast<uint32_t>(number) : static_cast<uint32_t>(number);
    do {
        text[--first] = static_cast<char>('0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude != 0);
    if (number < 0)
        text[--first] = '-';
    Append({text + first, sizeof text - first});
}

} // namespace Orvi
