// Streams in simple mode: the transport keeps the buffers.

#include "stream/StreamSettings.h"
#include "transport/CallFrame.h"

namespace Orvi {

uint32_t s_uiApiInternalStrmBufferCount = 10;

} // namespace Orvi

using namespace Orvi;

// Not guarded: the setting may be made before Sys_Initialize().
CAM_API_STATUS SetApiInternalStrmRingBufferCountEx(uint32_t uiCount)
{
    return FramedCall(__func__, LOG_TEXT("uiCount=%d", uiCount), [&]() -> CAM_API_STATUS {
        if (uiCount < 5 || uiCount > 64)
            return CAM_API_STS_INVALID_PARAMETER;
        s_uiApiInternalStrmBufferCount = uiCount;
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Strm_OpenSimple(CAM_HANDLE hCam, CAM_HANDLE *phStrm, uint32_t *puiMaxPayloadSize, void *pvTransportParam,
                               uint32_t uiApiBufferCount, uint32_t uiMaxPacketSize)
{
    const auto enter =
        LOG_TEXT("hCam=0x%llX, uiApiBufferCount=%d, uiMaxPacketSize=%d", hCam, uiApiBufferCount, uiMaxPacketSize);
    return GuardedCall(__func__, enter, [&](CallFrame &frame) -> CAM_API_STATUS {
        constexpr uint32_t defaultApiBufferCount = 8;
        const CAM_TYPE eCamType = TypeOfCamera(hCam); // tested only after the sizes
        if (const CAM_API_STATUS status = GetCamStreamPayloadSize(hCam, puiMaxPayloadSize))
            return status;
        if (eCamType == CAM_TYPE_GEV && *puiMaxPayloadSize % 8 != 0)
            *puiMaxPayloadSize = (*puiMaxPayloadSize & ~7U) + 8; // handed out although the stream is refused below
        if (uiMaxPacketSize == 0)
            uiMaxPacketSize = GetDefaultMaxPacketSizeFromHandle(hCam);
        if (uiApiBufferCount == 0)
            uiApiBufferCount = defaultApiBufferCount;
        if (const CAM_API_STATUS status = U3vOnly(eCamType))
            return status;
        if (const CAM_API_STATUS status =
                Forward(Uc::Strm_OpenSimple, hCam, pvTransportParam, *puiMaxPayloadSize, uiMaxPacketSize,
                        uiApiBufferCount, s_uiApiInternalStrmBufferCount, phStrm))
            return status;
        PushBackStrmList({eCamType, hCam, *phStrm});
        return frame.Exit(CAM_API_STS_SUCCESS,
                          LOG_TEXT("*phStrm=0x%llX, *puiMaxPayloadSize=%d", *phStrm, *puiMaxPayloadSize));
    });
}

CAM_API_STATUS Strm_ReadCurrentImage(CAM_HANDLE hStrm, void *pvBuffer, uint32_t *puiSize,
                                     CAM_STREAM_REQUEST_INFO *pvImageInfo)
{
    const auto enter = [&](LogWriter &write) {
        write("hStrm=0x%llX", hStrm);
        if (puiSize != nullptr)
            write("*puiSize=%d", *puiSize);
    };
    return StreamCall(__func__, hStrm, enter,
                      [&] { return Forward(Uc::Strm_GetImage, hStrm, pvBuffer, puiSize, pvImageInfo); });
}

CAM_API_STATUS Strm_GetCurrentBufferIndex(CAM_HANDLE hStrm, uint32_t *puiBufferIndex)
{
    return StreamCall(
        __func__, hStrm, LOG_TEXT("hStrm=0x%llX", hStrm),
        [&] { return Forward(Uc::Strm_GetApiCurrentBufferIndex, hStrm, puiBufferIndex); },
        LOG_TEXT("*puiBufferIndex=%d", *puiBufferIndex));
}

// Both lock functions report under the name that the lock's entry had in the first transports.
CAM_API_STATUS Strm_LockBuffer(CAM_HANDLE hStrm, uint32_t uiBufferIndex, void **ppvBuffer)
{
    return StreamCall(__func__, hStrm, LOG_TEXT("hStrm=0x%llX", hStrm), [&] {
        return Forward(Uc::Strm_LockApiImageBufferPointer.ReportedAs("(_Uc_Strm_GetImagePointer) Status %s\n"), hStrm,
                       uiBufferIndex, ppvBuffer);
    });
}

CAM_API_STATUS Strm_UnlockBuffer(CAM_HANDLE hStrm, uint32_t uiBufferIndex)
{
    return StreamCall(__func__, hStrm, LOG_TEXT("hStrm=0x%llX", hStrm), [&] {
        return Forward(Uc::Strm_UnlockApiImageBufferPointer.ReportedAs("(_Uc_Strm_GetImagePointer) Status %s\n"), hStrm,
                       uiBufferIndex);
    });
}

CAM_API_STATUS Strm_SetCallbackImageAcquired(CAM_HANDLE hStrm, CAM_STREAM_CALLBACK pfnCallback, void *pvContext)
{
    return StreamCall(__func__, hStrm, LOG_TEXT("hStrm=0x%llX", hStrm),
                      [&] { return Forward(Uc::Strm_SetCallbackImageAcquired, hStrm, pfnCallback, pvContext); });
}

CAM_API_STATUS Strm_SetCallbackImageError(CAM_HANDLE hStrm, CAM_STREAM_CALLBACK pfnCallback, void *pvContext)
{
    return StreamCall(__func__, hStrm, LOG_TEXT("hStrm=0x%llX", hStrm),
                      [&] { return Forward(Uc::Strm_SetCallbackImageError, hStrm, pfnCallback, pvContext); });
}

CAM_API_STATUS Strm_SetCallbackBufferBusy(CAM_HANDLE hStrm, CAM_STREAM_CALLBACK pfnCallback, void *pvContext)
{
    return GuardedCall(__func__, LOG_TEXT("hStrm=0x%llX", hStrm), [&](CallFrame &frame) -> CAM_API_STATUS {
        CAM_TYPE eCamType;
        if (const CAM_API_STATUS status = TypeOfStream(hStrm, &eCamType))
            return status;
        // Other kinds of camera never report a busy buffer: there is nothing to do and nothing to log.
        if (eCamType != CAM_TYPE_U3V)
            return frame.WithoutExitLine(CAM_API_STS_SUCCESS);
        return Forward(Uc::Strm_SetCallbackLostImage, hStrm, pfnCallback, pvContext);
    });
}

CAM_API_STATUS Strm_GetLostCount(CAM_HANDLE hStrm, uint64_t *pullCount)
{
    return StreamCall<U3vOnlyGevNotImplemented>(
        __func__, hStrm, LOG_TEXT("hStrm=0x%llX", hStrm),
        [&] { return Forward(Uc::Strm_GetLostCount, hStrm, pullCount); }, LOG_TEXT("*pullCount=0x%llX", *pullCount));
}
