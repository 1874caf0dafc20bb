#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/MemoryPort.h"
#include "tests/fuzz/NodeWalk.h"

namespace Orvi::Fuzz {

void Description(Input input)
{
    MemoryPort port;
    std::chrono::milliseconds time{};
    try {
        const auto nodes = GenApi::NodeMap::Load(TextOf(input), port, {.clock = [&] { return ++time; }});
        nodes->ModelName();
        nodes->VendorName();
        nodes->DeliverChunk(1, input.first(std::min<std::size_t>(input.size(), 64)));
        UseNodes(*nodes);
    } catch (const GenApi::Error &) {
    }
}

} // namespace Orvi::Fuzz
