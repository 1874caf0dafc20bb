#include "u3v/core/Status.h"
#include "u3v/genapi/NodeMap.h"
#include "u3v/protocol/EventPacket.h"

#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/MemoryPort.h"

namespace Orvi::Fuzz {
namespace {

constexpr std::string_view xml = R"(<RegisterDescription SchemaMajorVersion="1" SchemaMinorVersion="1">
<Port Name="Device"/><Port Name="EventPort"><EventID>9001</EventID></Port>
<IntReg Name="Block"><EventID>9001</EventID><Address>12</Address><Length>8</Length><pPort>EventPort</pPort></IntReg>
<StringReg Name="Text"><EventID>9001</EventID><Address>20</Address><Length>16</Length><pPort>EventPort</pPort>
</StringReg></RegisterDescription>)";

bool IsInside(Input part, Input whole)
{
    return part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size();
}

} // namespace

void Event(Input input)
{
    const auto events = U3v::ParseEventPacket(input);
    if (!events)
        return;
    MemoryPort port;
    const auto nodes = GenApi::NodeMap::Load(xml, port);
    for (const U3v::EventEntry &event : *events) {
        Require(IsInside(event.raw, input) && IsInside(event.data, event.raw), "an event lies in its packet");
        for (const GenApi::NodeId id : nodes->DeliverEvent(event.id, event.raw)) {
            try {
                nodes->Type(id) == GenApi::NodeType::Integer ? (void)nodes->GetInt(id) : (void)nodes->GetString(id);
            } catch (const GenApi::Error &) {
            }
        }
    }
}

} // namespace Orvi::Fuzz
