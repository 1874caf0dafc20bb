#include "u3v/protocol/BootstrapMap.h"

#include <algorithm>

namespace Orvi::U3v {

std::string ReadText(GenCp &control, TextRegister reg)
{
    std::array<std::byte, TextRegister::size> bytes;
    control.Read(reg.offset, bytes);
    const auto end = std::find(bytes.begin(), bytes.end(), std::byte{0});
    std::string text;
    std::transform(bytes.begin(), end, std::back_inserter(text), [](std::byte b) { return static_cast<char>(b); });
    return text;
}

BootstrapMap BootstrapMap::Read(GenCp &control)
{
    BootstrapMap map;
    map.abrmCapability = ReadRegister(control, 0, Abrm::capability);
    map.manifestAddress = ReadRegister(control, 0, Abrm::manifestAddress);
    map.sbrm = ReadRegister(control, 0, Abrm::sbrmAddress);
    map.u3vVersion = ReadRegister(control, map.sbrm, Sbrm::u3vVersion);

    GenCp::Limits limits;
    limits.maxCommand = ReadRegister(control, map.sbrm, Sbrm::maxCommand);
    limits.maxAck = ReadRegister(control, map.sbrm, Sbrm::maxAck);
    // Twice the camera's own estimate: the rest of the way has to fit in too.
    limits.responseTime = std::chrono::milliseconds(2ULL * ReadRegister(control, 0, Abrm::maxResponseTime));
    control.SetLimits(limits);

    const auto capability = ReadRegister(control, map.sbrm, Sbrm::capability);
    if ((capability & Sbrm::hasSirm) != 0)
        map.sirm = ReadRegister(control, map.sbrm, Sbrm::sirmAddress);
    if ((capability & Sbrm::hasEirm) != 0)
        map.eirm = ReadRegister(control, map.sbrm, Sbrm::eirmAddress);
    map.linkSpeed = ReadRegister(control, map.sbrm, Sbrm::linkSpeed);
    return map;
}

} // namespace Orvi::U3v
