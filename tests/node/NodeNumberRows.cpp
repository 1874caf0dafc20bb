#include "tests/node/NodeRows.h"

namespace Orvi::Testing {

namespace {

using Answer = std::function<void(Stub::Hooks &)>;

/// Makes an entry (hNode, output, ...) answer with this value.
template <class Value>
auto Output(auto Stub::Hooks::*entry, Value value)
{
    return [entry, value](Stub::Hooks &on) {
        on.*entry = [value](CAM_HANDLE, auto *output, auto...) -> CAM_API_STATUS {
            *output = value;
            return 0;
        };
    };
}

/// Makes an entry that answers with an output of this kind and shows nothing of it.
Answer Silent(auto Stub::Hooks::*entry)
{
    return [entry](Stub::Hooks &on) { on.*entry = nullptr; };
}

} // namespace

std::vector<FrameRow> NodeNumberRows()
{
    using H = Stub::Hooks;
    // clang-format off
    return {
        NodeRow("Nd_GetIntMin",   CALL(Nd_GetIntMin(h, hNode, &arg.integer)), CALL(Nd_GetIntMin(h, 0, nullptr)),
                                  "(0x601, integer)", {.answer = Silent(&H::Nd_GetIntMin)}),
        NodeRow("Nd_GetIntMax",   CALL(Nd_GetIntMax(h, hNode, &arg.integer)), CALL(Nd_GetIntMax(h, 0, nullptr)),
                                  "(0x601, integer)", {.answer = Silent(&H::Nd_GetIntMax)}),
        NodeRow("Nd_GetIntInc",   CALL(Nd_GetIntInc(h, hNode, &arg.integer)), CALL(Nd_GetIntInc(h, 0, nullptr)),
                                  "(0x601, integer)", {.answer = Silent(&H::Nd_GetIntInc)}),
        NodeRow("Nd_SetIntValue", CALL(Nd_SetIntValue(h, hNode, -2, true)), CALL(Nd_SetIntValue(h, 0, 0, false)),
                                  "(0x601, 0xFFFFFFFFFFFFFFFE, true)",
                                  {.answer = Silent(&H::Nd_SetIntValue), .enter = ", hCam=0x11, hNode=0x601, llValue=0xFFFFFFFFFFFFFFFE"}),
        NodeRow("Nd_GetIntValue", CALL(Nd_GetIntValue(h, hNode, &arg.integer, true, false)),
                                  CALL(Nd_GetIntValue(h, 0, nullptr, false, false)),
                                  "(0x601, integer, true, false)",
                                  {.exit = ", *pllValue=0xFFFFFFFFFFFFFFFF", .answer = Output(&H::Nd_GetIntValue, -1)}),

        NodeRow("Nd_GetFloatMin", CALL(Nd_GetFloatMin(h, hNode, &arg.real)), CALL(Nd_GetFloatMin(h, 0, nullptr)),
                                  "(0x601, real)", {.answer = Silent(&H::Nd_GetFloatMin)}),
        NodeRow("Nd_GetFloatMax", CALL(Nd_GetFloatMax(h, hNode, &arg.real)), CALL(Nd_GetFloatMax(h, 0, nullptr)),
                                  "(0x601, real)", {.answer = Silent(&H::Nd_GetFloatMax)}),
        NodeRow("Nd_GetFloatHasInc", CALL(Nd_GetFloatHasInc(h, hNode, &arg.flag)), CALL(Nd_GetFloatHasInc(h, 0, nullptr)),
                                  "(0x601, flag)"),
        NodeRow("Nd_GetFloatInc", CALL(Nd_GetFloatInc(h, hNode, &arg.real)), CALL(Nd_GetFloatInc(h, 0, nullptr)),
                                  "(0x601, real)", {.answer = Silent(&H::Nd_GetFloatInc)}),
        NodeRow("Nd_GetFloatDisplayNotation",  CALL(Nd_GetFloatDisplayNotation(h, hNode, &arg.notation)),
                                  CALL(Nd_GetFloatDisplayNotation(h, 0, nullptr)), "(0x601, notation)"),
        NodeRow("Nd_GetFloatDisplayPrecision", CALL(Nd_GetFloatDisplayPrecision(h, hNode, &arg.integer)),
                                  CALL(Nd_GetFloatDisplayPrecision(h, 0, nullptr)), "(0x601, integer)"),
        NodeRow("Nd_SetFloatValue", CALL(Nd_SetFloatValue(h, hNode, -1.5, true)), CALL(Nd_SetFloatValue(h, 0, 0, false)),
                                  "(0x601, -1.5, true)",
                                  {.answer = Silent(&H::Nd_SetFloatValue), .enter = ", hCam=0x11, hNode=0x601, dValue=   -1.500000000"}),
        NodeRow("Nd_GetFloatValue", CALL(Nd_GetFloatValue(h, hNode, &arg.real, true, false)),
                                  CALL(Nd_GetFloatValue(h, 0, nullptr, false, false)),
                                  "(0x601, real, true, false)",
                                  {.exit = ", *pdValue=12345.678900000", .answer = Output(&H::Nd_GetFloatValue, 12345.6789)}),

        NodeRow("Nd_SetBoolValue", CALL(Nd_SetBoolValue(h, hNode, true, false)), CALL(Nd_SetBoolValue(h, 0, false, false)),
                                  "(0x601, true, false)",
                                  {.answer = Silent(&H::Nd_SetBoolValue), .enter = ", hCam=0x11, hNode=0x601, bValue=1"}),
        NodeRow("Nd_GetBoolValue", CALL(Nd_GetBoolValue(h, hNode, &arg.flag, true, false)),
                                  CALL(Nd_GetBoolValue(h, 0, nullptr, false, false)),
                                  "(0x601, flag, true, false)",
                                  {.exit = ", *pbValue=1", .answer = Output(&H::Nd_GetBoolValue, true)}),

        NodeRow("Nd_SetEnumIntValue", CALL(Nd_SetEnumIntValue(h, hNode, 7, true)), CALL(Nd_SetEnumIntValue(h, 0, 0, false)),
                                  "(0x601, 0x7, true)", {.answer = Silent(&H::Nd_SetEnumIntValue)}),
        NodeRow("Nd_GetEnumIntValue", CALL(Nd_GetEnumIntValue(h, hNode, &arg.integer, true, false)),
                                  CALL(Nd_GetEnumIntValue(h, 0, nullptr, false, false)),
                                  "(0x601, integer, true, false)",
                                  {.exit = ", *pllValue=0xBEEF", .answer = Output(&H::Nd_GetEnumIntValue, 0xBEEF)}),
        NodeRow("Nd_GetEnumEntryIntValue", CALL(Nd_GetEnumEntryIntValue(h, hNode, &arg.integer)),
                                  CALL(Nd_GetEnumEntryIntValue(h, 0, nullptr)),
                                  "(0x601, integer)",
                                  {.exit = ", *pllValue=0xBEEF", .answer = Output(&H::Nd_GetEnumEntryIntValue, 0xBEEF)}),
    };
    // clang-format on
}

} // namespace Orvi::Testing
