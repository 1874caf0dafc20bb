#include "u3v/genapi/Encoding.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace Orvi::GenApi {

namespace {

std::uint32_t Byte(char c) { return static_cast<unsigned char>(c); }

void Append(std::string &text, std::uint32_t character)
{
    const auto put = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
    const auto rest = [&](unsigned shift) { put(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0 | character >> 6);
        rest(0);
    } else if (character < 0x10000) {
        put(0xE0 | character >> 12);
        rest(6);
        rest(0);
    } else {
        put(0xF0 | character >> 18);
        rest(12);
        rest(6);
        rest(0);
    }
}

std::string FromUtf16(std::string_view xml, bool bigEndian)
{
    const auto unit = [&](std::size_t at) {
        return bigEndian ? Byte(xml[at]) << 8 | Byte(xml[at + 1]) : Byte(xml[at + 1]) << 8 | Byte(xml[at]);
    };
    std::string text;
    for (std::size_t at = 0; at + 1 < xml.size(); at += 2) {
        std::uint32_t character = unit(at);
        const bool isHigh = character >> 10 == 0x36, hasLow = at + 3 < xml.size() && unit(at + 2) >> 10 == 0x37;
        if (isHigh && hasLow) {
            at += 2;
            character = 0x10000 + ((character & 0x3FF) << 10 | (unit(at) & 0x3FF));
        } else if (character >> 11 == 0x1B) {
            character = 0xFFFD; // half of a pair
        }
        Append(text, character);
    }
    return text;
}

/// How many bytes form a character here; 0 when they are none.
std::size_t Utf8Length(std::string_view text)
{
    const std::uint32_t first = Byte(text.front());
    const std::size_t length = first < 0x80 ? 1 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if ((first >= 0x80 && first < 0xC2) || first > 0xF4 || length > text.size())
        return 0;
    const auto isRest = [](char c) { return (Byte(c) & 0xC0) == 0x80; };
    return std::ranges::all_of(text.substr(1, length - 1), isRest) ? length : 0;
}

/// What Windows-1252 has where ISO 8859-1 has control characters; five bytes are left to these.
constexpr std::uint16_t windows[] = {
    // clang-format off
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
    // clang-format on
};

std::uint32_t FromWindows(std::uint32_t byte)
{
    return byte >= 0x80 && byte < 0x80 + std::size(windows) ? windows[byte - 0x80] : byte;
}

bool DeclaresSingleBytes(std::string_view xml)
{
    const std::string_view declaration = xml.substr(0, xml.find("?>"));
    return declaration.starts_with("<?xml") &&
           (declaration.find("8859-1") != declaration.npos || declaration.find("1252") != declaration.npos);
}

} // namespace

std::optional<std::string> ToUtf8(std::string_view xml)
{
    using namespace std::string_view_literals;
    if (xml.starts_with("\xFF\xFE") || xml.starts_with("<\0"sv))
        return FromUtf16(xml, false);
    if (xml.starts_with("\xFE\xFF") || xml.starts_with("\0<"sv))
        return FromUtf16(xml, true);
    if (std::ranges::none_of(xml, [](char c) { return Byte(c) >= 0x80; }))
        return std::nullopt;
    const bool singleBytes = DeclaresSingleBytes(xml);
    std::string text;
    bool changed = false;
    for (std::size_t at = 0; at < xml.size();) {
        const std::size_t length = singleBytes ? 0 : Utf8Length(xml.substr(at));
        if (length != 0) {
            text += xml.substr(at, length);
            at += length;
        } else {
            changed |= Byte(xml[at]) >= 0x80;
            Append(text, FromWindows(Byte(xml[at++])));
        }
    }
    return changed ? std::optional(std::move(text)) : std::nullopt;
}

} // namespace Orvi::GenApi
