#include "transport/LogText.h"

#include <cstdio>

namespace Orvi {

// What vsnprintf would give for the few conversions that LogFormat lets through, at a fraction of its cost: two of
// these lines are written for every call while the log is up.
void LogWriter::AppendPieces(const char *text, const LogPiece *pieces, std::size_t count, const LogArgument *arguments)
{
    for (std::size_t i = 0; i < count; ++i) {
        Append({text, pieces[i].literal});
        text += pieces[i].literal + pieces[i].skipped;
        AppendArgument(pieces[i].conversion, arguments[i]);
    }
    Append({text, pieces[count].literal});
}

void LogWriter::AppendArgument(char conversion, const LogArgument &argument)
{
    switch (conversion) {
    case 'X':
        AppendHex(argument.number, HexCase::Upper);
        break;
    case 'x':
        AppendHex(argument.number, HexCase::Lower);
        break;
    case '0':
        AppendHex8(static_cast<uint32_t>(argument.number), HexCase::Upper);
        break;
    case 'd':
        AppendDecimal(static_cast<int32_t>(argument.number));
        break;
    case 's':
        Append(argument.text != nullptr ? argument.text : "(null)");
        break;
    default: {
        char szReal[400];
        std::snprintf(szReal, sizeof szReal, "%15.9f", argument.real);
        Append(szReal);
        break;
    }
    }
}

} // namespace Orvi
