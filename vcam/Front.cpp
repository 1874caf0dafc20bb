#include "vcam/Front.h"

#include "vcam/Description.h"
#include "vcam/Foreign.h"
#include "vcam/HiddenBlocks.h"

namespace Orvi::Vcam {

std::unique_ptr<Front> MakeFront(const CameraConfig &config, GenCpMemory &engine)
{
    if (!config.xml.empty()) {
        return std::make_unique<ForeignCamera>(config, engine);
    }
    if (config.controlRegisters) {
        return nullptr;
    }
    return std::make_unique<HiddenBlocks>(OwnXml(config.pixelFormats), engine);
}

} // namespace Orvi::Vcam
