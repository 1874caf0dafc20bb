#include "vcam/ForeignXml.h"

#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/MemoryPort.h"
#include "tests/fuzz/NodeWalk.h"

#include <stdexcept>

namespace Orvi::Fuzz {

void ModelFile(Input input)
{
    try {
        const Vcam::ForeignXml xml = Vcam::ReadForeignXml(TextOf(input));
        MemoryPort port;
        const auto nodes = GenApi::NodeMap::Load(xml.deviceSide, port);
        for (const auto &reg : xml.registers)
            nodes->Find(reg.node);
        UseNodes(*nodes);
    } catch (const std::runtime_error &error) {
        Require(*error.what() != '\0', "an error has a text");
    }
}

} // namespace Orvi::Fuzz
