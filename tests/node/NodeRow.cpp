#include "tests/node/NodeRows.h"

namespace Orvi::Testing {

FrameRow NodeRow(const char *name, HandleCall call, HandleCall callEmpty, const char *transportCall,
                 const NodeTexts &texts)
{
    const std::string entry = texts.entry != nullptr ? texts.entry : name;
    return {.name = name,
            .family = Family::Camera,
            .call = std::move(call),
            .callEmpty = std::move(callEmpty),
            .entry = Stub::EntryNamed(entry),
            .calls = {entry + transportCall},
            .enter = texts.enter,
            .exit = texts.exit,
            .diagnostic = texts.diagnostic != nullptr ? texts.diagnostic : "(_Uc_" + entry + ")",
            .answer = texts.answer,
            .refreshesGenICamError = true,
            .emptyFaults = texts.emptyFaults};
}

} // namespace Orvi::Testing
