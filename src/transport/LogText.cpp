#include "transport/LogText.h"

#include "foundation/TextBytes.h"

#include <cstdio>

namespace Orvi {

// What vsnprintf would give for the few conversions that LogFormat lets through, at a fraction of its cost: two of
// these lines are written for every call while the log is up.
void LogWriter::AppendPieces(const char *text, const LogPiece *pieces, std::size_t count, const LogArgument *arguments)
{
    for (std::size_t i = 0; i < count; ++i) {
        Append({text, pieces[i].literal});
        text += pieces[i].literal + pieces[i].skipped;
        switch (pieces[i].conversion) {
        case 's':
            Append(arguments[i].text != nullptr ? arguments[i].text : "(null)");
            break;
        case 'f': {
            char szReal[400];
            std::snprintf(szReal, sizeof szReal, "%15.9f", arguments[i].real);
            Append(szReal);
            break;
        }
        default:
            AppendNumber(pieces[i].conversion, arguments[i].number);
            break;
        }
    }
    Append({text, pieces[count].literal});
}

void LogWriter::AppendNumber(char conversion, uint64_t number)
{
    char *const to = line_ + size_; // there is room for all digits; what lies beyond the end is cut below
    switch (conversion) {
    case 'd':
        size_ += WriteDecimal(to, static_cast<int32_t>(number));
        break;
    case '0':
        WriteHex8(to, static_cast<uint32_t>(number), HexCase::Upper);
        size_ += 8;
        break;
    default:
        size_ += WriteHex(to, number, conversion == 'X' ? HexCase::Upper : HexCase::Lower);
        break;
    }
    size_ = std::min(size_, maxLine);
}

} // namespace Orvi
