// The system, errors, and the transport's own logs.

#include "transport/TransportInterface.h"
#include "u3v/api/ApiCall.h"
#include "u3v/core/Log.h"
#include "u3v/protocol/CameraRegistry.h"
#include "u3v/protocol/EventChannel.h"
#include "u3v/protocol/Stream.h"
#include "u3v/usb/Libusb.h"

using namespace Orvi::U3v;

namespace {

std::string SystemText(uint32_t item)
{
    switch (item) {
    case 1:
        return "Orvi USB3 Vision transport";
    case 2:
        return ORVI_VERSION;
    case 3:
        return LibusbVersion();
    default:
        throw StatusError(CAM_API_STS_NOT_FOUND, "no system item " + std::to_string(item));
    }
}

} // namespace

CAM_API_STATUS UC_Sys_Initialize()
{
    return ApiCall([] { CameraRegistry::Instance().Enumerate(); });
}

CAM_API_STATUS UC_Sys_Terminate()
{
    // What the application has left open must not run on without its library.
    return ApiCall([] {
        for (const auto &[handle, stream] : Streams().All()) {
            stream->Close();
            Streams().Remove(handle);
        }
        for (const auto &[handle, channel] : EventChannels().All()) {
            channel->Close();
            EventChannels().Remove(handle);
        }
        CameraRegistry::Instance().CloseAll();
    });
}

CAM_API_STATUS UC_Sys_GetInformation(uint32_t uiItem, void *pvBuffer, uint32_t *puiSize)
{
    return ApiCall([&] { CopyText(SystemText(uiItem), static_cast<char *>(pvBuffer), puiSize); });
}

CAM_API_STATUS UC_Sys_GetNumOfCameras(uint32_t *puiNum)
{
    return ApiCall([&] {
        Require(puiNum);
        *puiNum = CameraRegistry::Instance().Enumerate();
    });
}

CAM_API_STATUS UC_Misc_GetLastGenICamError(CAM_GENICAM_ERROR *pError)
{
    return ApiCall([&] {
        Require(pError);
        *pError = {LastGenICamError(), {}};
    });
}
