// Event channels. Two rules for other kinds of camera stand side by side: opening for the transport's own requests,
// activating and closing say that the handle is no such camera's; everything about requests says only that it failed.

#include "features/UNI_Interface.h"
#include "transport/CallFrame.h"

#include <cstdio>
#include <cstring>

using namespace Orvi;

namespace {

constexpr CameraTypeRule s_requestRule = U3vOnlyGevUnsuccessful;

template <class Field>
void Copy(Field &field, const unsigned char *pbData)
{
    std::memcpy(&field, pbData, sizeof field); // some fields are not aligned in the block
}

CAM_API_STATUS Record(CAM_TYPE eCamType, CAM_HANDLE hCam, CAM_HANDLE hEvt)
{
    PushBackEvtList({eCamType, hCam, hEvt});
    return CAM_API_STS_SUCCESS;
}

} // namespace

CAM_API_STATUS Evt_OpenSimple(CAM_HANDLE hCam, CAM_HANDLE *phEvt, uint32_t uiApiBufferCount)
{
    const auto enter = LOG_TEXT("hCam=0x%llX, uiApiBufferCount=%d", hCam, uiApiBufferCount);
    return GuardedCall(__func__, enter, [&](CallFrame &frame) -> CAM_API_STATUS {
        constexpr uint32_t defaultApiBufferCount = 8;
        const CAM_TYPE eCamType = TypeOfCamera(hCam); // tested only after the size
        uint32_t uiTransferSize = 0;
        if (const CAM_API_STATUS status = GetCamEventTransferSize(hCam, &uiTransferSize))
            return status;
        if (uiApiBufferCount == 0)
            uiApiBufferCount = defaultApiBufferCount;
        if (const CAM_API_STATUS status = U3vOnly(eCamType))
            return status;
        if (const CAM_API_STATUS status =
                Forward(Uc::Evt_OpenUsingGenICam, hCam, uiTransferSize, uiApiBufferCount, phEvt))
            return status;
        return frame.Exit(Record(eCamType, hCam, *phEvt), LOG_TEXT("*phEvt=0x%llX", *phEvt));
    });
}

CAM_API_STATUS Evt_Open(CAM_HANDLE hCam, CAM_HANDLE *phEvt, uint32_t *puiMaxPayloadSize, void *pvTransportParam)
{
    const auto enter = [&](LogWriter &write) {
        if (puiMaxPayloadSize != nullptr)
            write("hCam=0x%llX, *puiMaxPayloadSize=%d", hCam, *puiMaxPayloadSize);
        else
            write("hCam=0x%llX, *puiMaxPayloadSize=NULL", hCam);
    };
    return GuardedCall(__func__, enter, [&](CallFrame &frame) -> CAM_API_STATUS {
        const CAM_TYPE eCamType = TypeOfCamera(hCam); // tested only after the size
        if (*puiMaxPayloadSize == 0) {
            if (const CAM_API_STATUS status = GetCamEventTransferSize(hCam, puiMaxPayloadSize))
                return status;
        }
        if (const CAM_API_STATUS status = s_requestRule(eCamType))
            return status;
        if (const CAM_API_STATUS status = Forward(Uc::Evt_Open, hCam, pvTransportParam, *puiMaxPayloadSize, phEvt))
            return status;
        return frame.Exit(Record(eCamType, hCam, *phEvt),
                          LOG_TEXT("*phEvt=0x%llX, *puiMaxPayloadSize=%d", *phEvt, *puiMaxPayloadSize));
    });
}

CAM_API_STATUS Evt_Close(CAM_HANDLE hEvt)
{
    return EventCall(__func__, hEvt, [&]() -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = Forward(Uc::Evt_Close, hEvt))
            return status;
        EraseEvtList(hEvt);
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Evt_Activate(CAM_HANDLE hEvt, const char *pszEventName, void *pvRegisterParam)
{
    return GuardedCall(__func__, LOG_TEXT("hEvt=0x%llX", hEvt), [&]() -> CAM_API_STATUS {
        CAM_TYPE eCamType;
        if (const CAM_API_STATUS status = TypeOfEvent(hEvt, &eCamType))
            return status;
        if (pszEventName == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        // The node that carries the event's data; a name that would be cut is refused.
        char szNodeName[128];
        const int length = std::snprintf(szNodeName, sizeof szNodeName, "Event%s", pszEventName);
        if (length < 0 || static_cast<std::size_t>(length) >= sizeof szNodeName)
            return CAM_API_STS_INVALID_PARAMETER;
        if (const CAM_API_STATUS status = U3vOnly(eCamType))
            return status;
        return Forward(Uc::Evt_Register, hEvt, pszEventName, szNodeName, pvRegisterParam);
    });
}

CAM_API_STATUS Evt_Deactivate(CAM_HANDLE hEvt, const char *pszEventName)
{
    return EventCall(__func__, hEvt, [&] { return Forward(Uc::Evt_Deregister, hEvt, pszEventName); });
}

CAM_API_STATUS Evt_CreateRequest(CAM_HANDLE hEvt, void *pvPayloadBuf, uint32_t uiPayloadSize, CAM_HANDLE *phEvtRequest)
{
    return EventCall<s_requestRule>(__func__, hEvt, [&] {
        return Forward(Uc::Evt_RegisterBuffer, hEvt, pvPayloadBuf, uiPayloadSize, phEvtRequest);
    });
}

CAM_API_STATUS Evt_ReleaseRequest(CAM_HANDLE hEvt, CAM_HANDLE hEvtRequest)
{
    return EventCall<s_requestRule>(__func__, hEvt,
                                    [&] { return Forward(Uc::Evt_DeregisterBuffer, hEvt, hEvtRequest); });
}

CAM_API_STATUS Evt_EnqueueRequest(CAM_HANDLE hEvt, CAM_HANDLE hEvtRequest)
{
    return EventCall<s_requestRule>(__func__, hEvt, [&] { return Forward(Uc::Evt_QueueBuffer, hEvt, hEvtRequest); });
}

CAM_API_STATUS Evt_DequeueRequest(CAM_HANDLE hEvt, uint64_t pvDequeueParam, CAM_EVENT_REQUEST_INFO *pEventInfo)
{
    return GuardedCall(__func__, LOG_TEXT("hEvt=0x%llX", hEvt), [&](CallFrame &frame) -> CAM_API_STATUS {
        if (pEventInfo == nullptr)
            return frame.WithoutExitLine(CAM_API_STS_INVALID_PARAMETER);
        if (const CAM_API_STATUS status = CheckEvent<s_requestRule>(hEvt))
            return status;
        const unsigned char *pbData = nullptr;
        if (const CAM_API_STATUS status = Forward(Uc::Evt_GetBuffer, hEvt, pvDequeueParam, &pbData))
            return status;
        Copy(pEventInfo->usEventId, pbData + 14);
        Copy(pEventInfo->usStreamChannel, pbData + 18);
        Copy(pEventInfo->ullTimestamp, pbData + 20);
        Copy(pEventInfo->ullBlockId, pbData + 32);
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Evt_FlushWaitQueue(CAM_HANDLE hEvt)
{
    return EventCall<s_requestRule>(__func__, hEvt, [&] { return Forward(Uc::Evt_FlushQueue, hEvt); });
}
