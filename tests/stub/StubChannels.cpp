// Streams and event channels: handles that count up, and nothing behind them.

#include "tests/stub/StubTransport.h"

#include <tuple>

namespace Orvi::Stub {

void InstallChannelHooks(Transport &stub)
{
    /// A hook that hands out the next handle through its last argument.
    const auto handles = [](CAM_HANDLE first) {
        return [next = first](auto... arguments) mutable -> CAM_API_STATUS {
            CAM_HANDLE *output = std::get<sizeof...(arguments) - 1>(std::tuple(arguments...));
            if (output == nullptr)
                return CAM_API_STS_INVALID_PARAMETER;
            *output = next++;
            return CAM_API_STS_SUCCESS;
        };
    };
    stub.on.Strm_Open = handles(0x21);
    stub.on.Strm_OpenSimple = handles(0x29);
    stub.on.Strm_RegisterBuffer = handles(0x31);
    stub.on.Evt_Open = handles(0x41);
    stub.on.Evt_OpenUsingGenICam = handles(0x49);
    stub.on.Evt_RegisterBuffer = handles(0x51);
    stub.on.Evt_GetBuffer = [&stub](CAM_HANDLE, uint64_t, const unsigned char **data) -> CAM_API_STATUS {
        *data = stub.eventData.data();
        return CAM_API_STS_SUCCESS;
    };
}

} // namespace Orvi::Stub
