#include "transport/LogText.h"

#include <cstdio>

namespace Orvi {

// What vsnprintf would give for the few conversions that LogFormat lets through, at a fraction of its cost: two of
// these lines are written for every call while the log is up.
char *LogWriter::WriteNumber(char *to, char conversion, uint64_t number)
{
    switch (conversion) {
    case 'X':
        return WriteHex(to, number, HexCase::Upper);
    case 'x':
        return WriteHex(to, number, HexCase::Lower);
    case '0':
        return WriteHex8(to, static_cast<uint32_t>(number), HexCase::Upper);
    default:
        return WriteDecimal(to, static_cast<int32_t>(number));
    }
}

char *LogWriter::AppendArgument(char *end, char conversion, const LogArgument &argument)
{
    if (conversion == 's')
        return Append(end, argument.text != nullptr ? argument.text : "(null)");
    if (conversion == 'f') {
        char szReal[400];
        std::snprintf(szReal, sizeof szReal, "%15.9f", argument.real);
        return Append(end, szReal);
    }
    return Cut(WriteNumber(end, conversion, argument.number));
}

void LogWriter::AppendPieces(const char *text, const LogPiece *pieces, std::size_t count, const LogArgument *arguments)
{
    char *end = End();
    for (std::size_t i = 0; i < count; ++i) {
        end = Append(end, {text, pieces[i].literal});
        text += pieces[i].literal + pieces[i].skipped;
        end = AppendArgument(end, pieces[i].conversion, arguments[i]);
    }
    SetEnd(Append(end, {text, pieces[count].literal}));
}

} // namespace Orvi
