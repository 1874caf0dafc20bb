#include "tests/node/NodeRows.h"

#include <cstring>

namespace Orvi {
// The features' own enumeration write, so that it can be told from the application's in the log.
CAM_API_STATUS Nd_SetEnumStrValue2(CAM_HANDLE hCam, CAM_HANDLE hNode, const char *pszBuf, bool bVerify);
} // namespace Orvi

namespace Orvi::Testing {

namespace {

/// Makes an entry (hNode, buffer, size, ...) answer with "answer".
auto Text(auto Stub::Hooks::*entry)
{
    return [entry](Stub::Hooks &on) {
        on.*entry = [](CAM_HANDLE, char *buffer, uint32_t *size, auto...) -> CAM_API_STATUS {
            std::strcpy(buffer, "answer");
            *size = 7;
            return 0;
        };
    };
}

auto Accept(auto Stub::Hooks::*entry)
{
    return [entry](Stub::Hooks &on) { on.*entry = nullptr; };
}

} // namespace

std::vector<FrameRow> NodeTextRows()
{
    using H = Stub::Hooks;
    // clang-format off
    return {
        NodeRow("Nd_SetEnumStrValue", CALL(Nd_SetEnumStrValue(h, hNode, "Mono8", true)),
                                      CALL(Nd_SetEnumStrValue(h, 0, nullptr, false)),
                                      "(0x601, \"Mono8\", true)",
                                      {.answer = Accept(&H::Nd_SetEnumStrValue), .enter = ", hCam=0x11, hNode=0x601, pszBuf=Mono8"}),
        NodeRow("Nd_SetEnumStrValue2", CALL(Orvi::Nd_SetEnumStrValue2(h, hNode, "Mono8", true)),
                                      CALL(Orvi::Nd_SetEnumStrValue2(h, 0, nullptr, false)),
                                      "(0x601, \"Mono8\", true)",
                                      {.answer = Accept(&H::Nd_SetEnumStrValue), .enter = ", hCam=0x11, hNode=0x601, pszBuf=Mono8",
                                       .entry = "Nd_SetEnumStrValue"}),
        NodeRow("Nd_GetEnumStrValue", CALL(Nd_GetEnumStrValue(h, hNode, arg.text, &arg.uiSize, true, false)),
                                      CALL(Nd_GetEnumStrValue(h, 0, nullptr, nullptr, false, false)),
                                      "(0x601, text, uiSize, true, false)",
                                      {.exit = ", pszBuf=answer, *puiSize=7", .answer = Text(&H::Nd_GetEnumStrValue)}),
        NodeRow("Nd_GetEnumEntryStrValue", CALL(Nd_GetEnumEntryStrValue(h, hNode, arg.text, &arg.uiSize)),
                                      CALL(Nd_GetEnumEntryStrValue(h, 0, nullptr, nullptr)),
                                      "(0x601, text, uiSize)",
                                      {.exit = ", pszBuf=answer, *puiSize=7", .answer = Text(&H::Nd_GetEnumEntryStrValue),
                                       .enter = ", hCam=0x11, hNode=0x601, *puiSize=64"}),
        // The two functions on strings name no node in their lines.
        NodeRow("Nd_SetStrValue",     CALL(Nd_SetStrValue(h, hNode, "left", true)),
                                      CALL(Nd_SetStrValue(h, 0, nullptr, false)),
                                      "(0x601, \"left\", true)",
                                      {.answer = Accept(&H::Nd_SetStrValue), .enter = ", hCam=0x11, pszBuf=left"}),
        NodeRow("Nd_GetStrValue",     CALL(Nd_GetStrValue(h, hNode, arg.text, &arg.uiSize, true, false)),
                                      CALL(Nd_GetStrValue(h, 0, nullptr, nullptr, false, false)),
                                      "(0x601, text, uiSize, true, false)",
                                      {.exit = ", pszBuf=answer, *puiSize=7", .answer = Text(&H::Nd_GetStrValue),
                                       .enter = ", hCam=0x11, *puiSize=64"}),
    };
    // clang-format on
}

} // namespace Orvi::Testing
