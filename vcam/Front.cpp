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

CameraConfig NameByDescription(CameraConfig config)
{
    if (config.xml.empty()) {
        return config;
    }
    const CameraConfig own;
    const ForeignXml xml = ReadForeignXml(config.xml);
    if (config.vendor == own.vendor && !xml.vendor.empty()) {
        config.vendor = xml.vendor;
    }
    if (config.model == own.model && !xml.model.empty()) {
        config.model = xml.model;
    }
    return config;
}

} // namespace Orvi::Vcam
