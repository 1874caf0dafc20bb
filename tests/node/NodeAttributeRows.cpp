#include "tests/node/NodeRows.h"

namespace Orvi::Testing {

std::vector<FrameRow> NodeAttributeRows()
{
    const auto handleAnswer = [](auto Stub::Hooks::*entry) {
        return [entry](Stub::Hooks &on) {
            on.*entry = [](CAM_HANDLE, auto, CAM_HANDLE *handle) -> CAM_API_STATUS {
                *handle = 0xABCDEF0123;
                return 0;
            };
        };
    };
    // clang-format off
    return {
        NodeRow("Nd_GetNode",              CALL(Nd_GetNode(h, "Width", &arg.handle)),
                                           CALL(Nd_GetNode(h, nullptr, nullptr)),
                                           "(0x11, \"Width\", handle)",
                                           {.exit = ", *phNode=0xABCDEF0123", .answer = handleAnswer(&Stub::Hooks::Nd_GetNode),
                                            .enter = ", hCam=0x11, pszName=Width"}),
        NodeRow("Nd_GetType",              CALL(Nd_GetType(h, hNode, &arg.nodeType)),
                                           CALL(Nd_GetType(h, 0, nullptr)),
                                           "(0x601, nodeType)", {.answer = [](Stub::Hooks &on) { on.Nd_GetType = nullptr; }}),
        NodeRow("Nd_GetNumOfFeatures",     CALL(Nd_GetNumOfFeatures(h, hNode, &arg.number)),
                                           CALL(Nd_GetNumOfFeatures(h, 0, nullptr)),
                                           "(0x601, number)", {.answer = [](Stub::Hooks &on) { on.Nd_GetNumOfFeatures = nullptr; }}),
        NodeRow("Nd_GetFeatureByIndex",    CALL(Nd_GetFeatureByIndex(h, hNode, 6, &arg.handle)),
                                           CALL(Nd_GetFeatureByIndex(h, 0, 0, nullptr)),
                                           "(0x601, 7, handle)", {.answer = handleAnswer(&Stub::Hooks::Nd_GetFeatureByIndex)}),
        NodeRow("Nd_GetName",              CALL(Nd_GetName(h, hNode, arg.text)),
                                           CALL(Nd_GetName(h, 0, nullptr)),
                                           "(0x601, text, 64)",
                                           {.answer = [](Stub::Hooks &on) { on.Nd_GetName = nullptr; }, .diagnostic = "(Nd_GetName)"}),
        NodeRow("Nd_GetAccessMode",        CALL(Nd_GetAccessMode(h, hNode, &arg.accessMode)),
                                           CALL(Nd_GetAccessMode(h, 0, nullptr)),
                                           "(0x601, accessMode)", {.answer = [](Stub::Hooks &on) { on.Nd_GetAccessMode = nullptr; }}),
        NodeRow("Nd_GetVisibility",        CALL(Nd_GetVisibility(h, hNode, &arg.visibility)),
                                           CALL(Nd_GetVisibility(h, 0, nullptr)),
                                           "(0x601, visibility)"),
        NodeRow("Nd_GetCachingMode",       CALL(Nd_GetCachingMode(h, hNode, &arg.cachingMode)),
                                           CALL(Nd_GetCachingMode(h, 0, nullptr)),
                                           "(0x601, cachingMode)"),
        NodeRow("Nd_GetDescription",       CALL(Nd_GetDescription(h, hNode, arg.text, &arg.uiSize)),
                                           CALL(Nd_GetDescription(h, 0, nullptr, nullptr)),
                                           "(0x601, text, uiSize)"),
        NodeRow("Nd_GetToolTip",           CALL(Nd_GetToolTip(h, hNode, arg.text, &arg.uiSize)),
                                           CALL(Nd_GetToolTip(h, 0, nullptr, nullptr)),
                                           "(0x601, text, uiSize)"),
        NodeRow("Nd_GetRepresentation",    CALL(Nd_GetRepresentation(h, hNode, &arg.representation)),
                                           CALL(Nd_GetRepresentation(h, 0, nullptr)),
                                           "(0x601, representation)"),
        NodeRow("Nd_GetUnit",              CALL(Nd_GetUnit(h, hNode, arg.text, &arg.uiSize)),
                                           CALL(Nd_GetUnit(h, 0, nullptr, nullptr)),
                                           "(0x601, text, uiSize)"),
        NodeRow("Nd_CmdExecute",           CALL(Nd_CmdExecute(h, hNode, true)),
                                           CALL(Nd_CmdExecute(h, 0, false)),
                                           "(0x601, true)"),
        NodeRow("Nd_GetCmdIsDone",         CALL(Nd_GetCmdIsDone(h, hNode, &arg.flag, true)),
                                           CALL(Nd_GetCmdIsDone(h, 0, nullptr, false)),
                                           "(0x601, flag, true)", {.answer = [](Stub::Hooks &on) { on.Nd_GetCmdIsDone = nullptr; }}),
        NodeRow("Nd_GetNumOfEnumEntries",  CALL(Nd_GetNumOfEnumEntries(h, hNode, &arg.number)),
                                           CALL(Nd_GetNumOfEnumEntries(h, 0, nullptr)),
                                           "(0x601, number)", {.answer = [](Stub::Hooks &on) { on.Nd_GetNumOfEnumEntries = nullptr; }}),
        NodeRow("Nd_GetEnumEntryByIndex",  CALL(Nd_GetEnumEntryByIndex(h, hNode, 6, &arg.handle)),
                                           CALL(Nd_GetEnumEntryByIndex(h, 0, 0, nullptr)),
                                           "(0x601, 7, handle)", {.answer = handleAnswer(&Stub::Hooks::Nd_GetEnumEntryByIndex)}),
    };
    // clang-format on
}

} // namespace Orvi::Testing
