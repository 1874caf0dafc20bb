// Streams in request mode, and what both modes share.

#include "transport/CallFrame.h"

using namespace Orvi;

CAM_API_STATUS Strm_Open(CAM_HANDLE hCam, void *pvTransportParam, uint32_t *puiMaxPayloadSize, CAM_HANDLE *phStrm,
                         uint32_t uiMaxPacketSize)
{
    const auto enter = [&](LogWriter &write) {
        if (puiMaxPayloadSize != nullptr)
            write("hCam=0x%llX, *puiMaxPayloadSize=%d", hCam, *puiMaxPayloadSize);
        else
            write("hCam=0x%llX, puiMaxPayloadSize=NULL", hCam);
    };
    return GuardedCall(__func__, enter, [&](CallFrame &frame) -> CAM_API_STATUS {
        const CAM_TYPE eCamType = TypeOfCamera(hCam); // tested only after the sizes
        if (uiMaxPacketSize == 0)
            uiMaxPacketSize = GetDefaultMaxPacketSizeFromHandle(hCam);
        if (puiMaxPayloadSize == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        if (*puiMaxPayloadSize == 0) {
            if (const CAM_API_STATUS status = GetCamStreamPayloadSize(hCam, puiMaxPayloadSize))
                return status;
        }
        if (const CAM_API_STATUS status = U3vOnly(eCamType))
            return status;
        if (const CAM_API_STATUS status =
                Forward(Uc::Strm_Open, hCam, pvTransportParam, *puiMaxPayloadSize, uiMaxPacketSize, phStrm))
            return status;
        PushBackStrmList({eCamType, hCam, *phStrm});
        return frame.Exit(CAM_API_STS_SUCCESS, LOG_TEXT("*puiMaxPayloadSize=%d, *phStrm=0x%llX, uiMaxPacketSize=%d",
                                                        *puiMaxPayloadSize, *phStrm, uiMaxPacketSize));
    });
}

CAM_API_STATUS Strm_Close(CAM_HANDLE hStrm)
{
    return StreamCall(__func__, hStrm, LOG_TEXT("hStrm=0x%llX", hStrm), [&]() -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = Forward(Uc::Strm_Close, hStrm))
            return status;
        EraseStrmList(hStrm);
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Strm_Start(CAM_HANDLE hStrm, uint32_t eAcqMode)
{
    return StreamCall(__func__, hStrm, LOG_TEXT("hStrm=0x%llX, eAcqMode=%d", hStrm, eAcqMode),
                      [&] { return Forward(Uc::Strm_StartAcquisition, hStrm, eAcqMode); });
}

CAM_API_STATUS Strm_Stop(CAM_HANDLE hStrm)
{
    return StreamCall(__func__, hStrm, LOG_TEXT("hStrm=0x%llX", hStrm),
                      [&] { return Forward(Uc::Strm_StopAcquisition, hStrm); });
}

CAM_API_STATUS Strm_CreateRequest(CAM_HANDLE hStrm, void *pvPayloadBuf, uint32_t uiPayloaSize,
                                  CAM_HANDLE *phStrmRequest)
{
    // Log readers know the size under its misspelt name.
    const auto enter = [&](LogWriter &write) {
        if (pvPayloadBuf != nullptr)
            write("hStrm=0x%llX, pvPayloadBuf=0x%llX, uiPayloaSize=%d", hStrm, pvPayloadBuf, uiPayloaSize);
        else
            write("hStrm=0x%llX, pvPayloadBuf=NULL, uiPayloaSize=%d", hStrm, uiPayloaSize);
    };
    return StreamCall(
        __func__, hStrm, enter,
        [&] { return Forward(Uc::Strm_RegisterBuffer, hStrm, pvPayloadBuf, uiPayloaSize, phStrmRequest); },
        LOG_TEXT("*phStrmRequest=0x%llX", *phStrmRequest));
}

CAM_API_STATUS Strm_ReleaseRequest(CAM_HANDLE hStrm, CAM_HANDLE hStrmRequest)
{
    return StreamCall(__func__, hStrm, LOG_TEXT("hStrm=0x%llX, hStrmRequest=0x%llX", hStrm, hStrmRequest),
                      [&] { return Forward(Uc::Strm_DeregisterBuffer, hStrm, hStrmRequest); });
}

CAM_API_STATUS Strm_EnqueueRequest(CAM_HANDLE hStrm, CAM_HANDLE hStrmRequest)
{
    return StreamCall(__func__, hStrm, LOG_TEXT("hStrm=0x%llX, hStrmRequest=0x%llX", hStrm, hStrmRequest),
                      [&] { return Forward(Uc::Strm_QueueBuffer, hStrm, hStrmRequest); });
}

CAM_API_STATUS Strm_DequeueRequest(CAM_HANDLE hStrm, CAM_HANDLE *phStrmRequest, void **ppvPayloadBuf,
                                   uint32_t *puiPayloadSize)
{
    return GuardedCall(__func__, LOG_TEXT("hStrm=0x%llX", hStrm), [&](CallFrame &frame) -> CAM_API_STATUS {
        if (phStrmRequest == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        *phStrmRequest = 0;
        if (const CAM_API_STATUS status = CheckStream(hStrm))
            return status;
        if (const CAM_API_STATUS status =
                Forward(Uc::Strm_GetBuffer, hStrm, phStrmRequest, ppvPayloadBuf, puiPayloadSize))
            return status;
        if (ppvPayloadBuf == nullptr || puiPayloadSize == nullptr)
            return CAM_API_STS_SUCCESS;
        return frame.Exit(CAM_API_STS_SUCCESS,
                          LOG_TEXT("*phStrmRequest=0x%llX, *ppvPayloadBuf=0x%llX, *puiPayloadSize=%d", *phStrmRequest,
                                   *ppvPayloadBuf, *puiPayloadSize));
    });
}

CAM_API_STATUS Strm_FlushWaitQueue(CAM_HANDLE hStrm)
{
    return StreamCall(__func__, hStrm, LOG_TEXT("hStrm=0x%llX", hStrm),
                      [&] { return Forward(Uc::Strm_FlushQueue, hStrm); });
}

CAM_API_STATUS Strm_GetStrmReqInfo(CAM_HANDLE hStrm, CAM_HANDLE hStrmRequest, CAM_STREAM_REQUEST_INFO *pInfo)
{
    static_assert(sizeof *pInfo == 72);
    return GuardedCall(__func__, LOG_TEXT("hStrm=0x%llX", hStrm), [&]() -> CAM_API_STATUS {
        if (pInfo == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        CAM_TYPE eCamType;
        if (const CAM_API_STATUS status = TypeOfStream(hStrm, &eCamType))
            return status;
        *pInfo = {}; // also for a stream of another kind of camera, which is refused next
        if (const CAM_API_STATUS status = U3vOnly(eCamType))
            return status;
        return Forward(Uc::Strm_GetBufferInformation, hStrm, hStrmRequest, pInfo);
    });
}
