#pragma once
// The node functions, one row each.

#include "tests/support/FrameContract.h"

namespace Orvi::Testing {

std::vector<FrameRow> NodeAttributeRows();
std::vector<FrameRow> NodeNumberRows();
std::vector<FrameRow> NodeTextRows();

/// What differs from the rule: the ENTER line shows both handles, the EXIT line nothing.
struct NodeTexts {
    const char *exit = "";
    std::function<void(Stub::Hooks &)> answer = nullptr;
    const char *enter = ", hCam=0x11, hNode=0x601";
    const char *diagnostic = nullptr; ///< "(_Uc_" and the name
    const char *entry = nullptr;      ///< the name
    bool emptyFaults = false;
};

using HandleCall = std::function<CAM_API_STATUS(CAM_HANDLE)>;

/// @param transportCall what the transport sees, without the entry's name
FrameRow NodeRow(const char *name, HandleCall call, HandleCall callEmpty, const char *transportCall,
                 const NodeTexts &texts = {});

} // namespace Orvi::Testing

/// A call on the camera handle h.
#define CALL(expression) [](CAM_HANDLE h) { return expression; }
