// Event channels.

#include "transport/TransportInterface.h"
#include "u3v/api/ApiCall.h"
#include "u3v/protocol/EventChannel.h"

using namespace Orvi::U3v;

CAM_API_STATUS UC_Evt_OpenUsingGenICam(CAM_HANDLE hCam, uint32_t uiTransferSize, uint32_t uiApiBufferCount,
                                       CAM_HANDLE *phEvt)
{
    return ApiCall([&] {
        auto camera = Cameras().Get(hCam);
        Require(phEvt);
        if (uiApiBufferCount == 0)
            throw StatusError(CAM_API_STS_INVALID_PARAMETER, "no event buffers");
        *phEvt = EventChannels().Insert(
            std::make_shared<EventChannel>(std::move(camera), nullptr, uiTransferSize, uiApiBufferCount));
    });
}

CAM_API_STATUS UC_Evt_Open(CAM_HANDLE hCam, void *pvTransportParam, uint32_t uiMaxPayloadSize, CAM_HANDLE *phEvt)
{
    return ApiCall([&] {
        auto camera = Cameras().Get(hCam);
        Require(phEvt);
        *phEvt = EventChannels().Insert(
            std::make_shared<EventChannel>(std::move(camera), pvTransportParam, uiMaxPayloadSize, 0));
    });
}

CAM_API_STATUS UC_Evt_Close(CAM_HANDLE hEvt)
{
    return ApiCall([&] {
        EventChannels().Get(hEvt)->Close();
        EventChannels().Remove(hEvt);
    });
}

CAM_API_STATUS UC_Evt_Register(CAM_HANDLE hEvt, const char *pszEventName, const char *pszNodeName,
                               void *pvRegisterParam)
{
    return ApiCall([&] {
        const auto channel = EventChannels().Get(hEvt);
        Require(pszEventName);
        Require(pszNodeName);
        channel->Activate(pszEventName, pszNodeName, pvRegisterParam);
    });
}

CAM_API_STATUS UC_Evt_RegisterCB(CAM_HANDLE hEvt, const char *, const char *, CAM_EVENT_CALLBACK, void *)
{
    // Events are taken from the queue; nothing calls back.
    return ApiCall([&] {
        EventChannels().Get(hEvt);
        throw StatusError(U3V_CAM_API_STS_FUNCTION_NOT_AVAILABLE, "events have no callbacks");
    });
}

CAM_API_STATUS UC_Evt_Deregister(CAM_HANDLE hEvt, const char *pszEventName)
{
    return ApiCall([&] {
        const auto channel = EventChannels().Get(hEvt);
        Require(pszEventName);
        channel->Deactivate(pszEventName);
    });
}

CAM_API_STATUS UC_Evt_RegisterBuffer(CAM_HANDLE hEvt, void *pvPayloadBuf, uint32_t uiPayloadSize,
                                     CAM_HANDLE *phEvtRequest)
{
    return ApiCall([&] {
        const auto channel = EventChannels().Get(hEvt);
        Require(pvPayloadBuf);
        Require(phEvtRequest);
        *phEvtRequest = channel->Register(pvPayloadBuf, uiPayloadSize);
    });
}

CAM_API_STATUS UC_Evt_DeregisterBuffer(CAM_HANDLE hEvt, CAM_HANDLE hEvtRequest)
{
    return ApiCall([&] { EventChannels().Get(hEvt)->Deregister(hEvtRequest); });
}

CAM_API_STATUS UC_Evt_QueueBuffer(CAM_HANDLE hEvt, CAM_HANDLE hEvtRequest)
{
    return ApiCall([&] { EventChannels().Get(hEvt)->Queue(hEvtRequest); });
}

CAM_API_STATUS UC_Evt_GetBuffer(CAM_HANDLE hEvt, uint64_t pvDequeueParam, const unsigned char **ppbData)
{
    return ApiCall([&] {
        const auto channel = EventChannels().Get(hEvt);
        Require(ppbData);
        const EventChannel::Taken taken = channel->Take();
        if (taken.status == CAM_API_STS_EMPTY_COMPLETE_QUEUE)
            return taken.status;
        if (auto *const request = reinterpret_cast<uint64_t *>(static_cast<uintptr_t>(pvDequeueParam)))
            *request = taken.request;
        if (taken.status == CAM_API_STS_SUCCESS)
            *ppbData = taken.data;
        return taken.status;
    });
}

CAM_API_STATUS UC_Evt_FlushQueue(CAM_HANDLE hEvt)
{
    return ApiCall([&] { EventChannels().Get(hEvt)->Flush(); });
}
