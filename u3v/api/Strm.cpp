// Image streams.

#include "transport/TransportInterface.h"
#include "u3v/api/ApiCall.h"
#include "u3v/protocol/RequestStream.h"
#include "u3v/protocol/SimpleRing.h"

using namespace Orvi::U3v;

namespace {

constexpr uint32_t defaultTransferSize = 0x10000;

uint32_t TransferSizeOf(uint32_t maxPacketSize) { return maxPacketSize == 0 ? defaultTransferSize : maxPacketSize; }

CAM_API_STATUS SetCallback(CAM_HANDLE hStrm, SimpleRing::On what, CAM_STREAM_CALLBACK function, void *context)
{
    return ApiCall([&] { Streams().Get(hStrm)->Ring().SetCallback(what, {function, context}); });
}

} // namespace

CAM_API_STATUS UC_Strm_Open(CAM_HANDLE hCam, void *pvTransportParam, uint32_t uiMaxPayloadSize,
                            uint32_t uiMaxPacketSize, CAM_HANDLE *phStrm)
{
    return ApiCall([&] {
        auto camera = Cameras().Get(hCam);
        Require(phStrm);
        if (uiMaxPayloadSize == 0)
            throw StatusError(CAM_API_STS_INVALID_PARAMETER, "a payload of no bytes");
        *phStrm = Streams().Insert(
            std::make_shared<RequestStream>(std::move(camera), pvTransportParam, TransferSizeOf(uiMaxPacketSize)));
    });
}

CAM_API_STATUS UC_Strm_OpenSimple(CAM_HANDLE hCam, void *pvTransportParam, uint32_t uiMaxPayloadSize,
                                  uint32_t uiMaxPacketSize, uint32_t uiApiBufferCount, uint32_t uiInternalBufferCount,
                                  CAM_HANDLE *phStrm)
{
    return ApiCall([&] {
        auto camera = Cameras().Get(hCam);
        Require(phStrm);
        const SimpleRing::Sizes sizes = {uiMaxPayloadSize, TransferSizeOf(uiMaxPacketSize), uiApiBufferCount,
                                         uiInternalBufferCount};
        auto ring = std::make_shared<SimpleRing>(std::move(camera), pvTransportParam, sizes);
        *phStrm = Streams().Insert(ring);
        ring->SetHandle(*phStrm);
    });
}

CAM_API_STATUS UC_Strm_Close(CAM_HANDLE hStrm)
{
    return ApiCall([&] {
        Streams().Get(hStrm)->Close();
        Streams().Remove(hStrm);
    });
}

CAM_API_STATUS UC_Strm_StartAcquisition(CAM_HANDLE hStrm, uint32_t eAcqMode)
{
    return ApiCall([&] { Streams().Get(hStrm)->Start(eAcqMode); });
}

CAM_API_STATUS UC_Strm_StopAcquisition(CAM_HANDLE hStrm)
{
    return ApiCall([&] { Streams().Get(hStrm)->Engine().Stop(); });
}

CAM_API_STATUS UC_Strm_RegisterBuffer(CAM_HANDLE hStrm, void *pvPayloadBuf, uint32_t uiPayloadSize,
                                      CAM_HANDLE *phStrmRequest)
{
    return ApiCall([&] {
        const auto stream = Streams().Get(hStrm);
        Require(pvPayloadBuf);
        Require(phStrmRequest);
        if (uiPayloadSize == 0)
            throw StatusError(CAM_API_STS_INVALID_PARAMETER, "a buffer of no bytes");
        *phStrmRequest = stream->Requests().AllRequests().Register(pvPayloadBuf, uiPayloadSize);
    });
}

CAM_API_STATUS UC_Strm_DeregisterBuffer(CAM_HANDLE hStrm, CAM_HANDLE hStrmRequest)
{
    return ApiCall([&] { Streams().Get(hStrm)->Requests().AllRequests().Deregister(hStrmRequest); });
}

CAM_API_STATUS UC_Strm_QueueBuffer(CAM_HANDLE hStrm, CAM_HANDLE hStrmRequest)
{
    return ApiCall([&] { Streams().Get(hStrm)->Requests().Queue(hStrmRequest); });
}

CAM_API_STATUS UC_Strm_GetBuffer(CAM_HANDLE hStrm, CAM_HANDLE *phStrmRequest, void **ppvPayloadBuf,
                                 uint32_t *puiPayloadSize)
{
    return ApiCall([&]() -> CAM_API_STATUS {
        const auto stream = Streams().Get(hStrm);
        Require(phStrmRequest);
        const Request *request = stream->Requests().AllRequests().TakeComplete();
        if (request == nullptr)
            return CAM_API_STS_EMPTY_COMPLETE_QUEUE;
        *phStrmRequest = request->handle;
        if (ppvPayloadBuf != nullptr)
            *ppvPayloadBuf = request->memory;
        if (puiPayloadSize != nullptr)
            *puiPayloadSize = static_cast<uint32_t>(request->info.ullValidPayloadSize);
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS UC_Strm_FlushQueue(CAM_HANDLE hStrm)
{
    return ApiCall([&] { Streams().Get(hStrm)->Engine().Flush(); });
}

CAM_API_STATUS UC_Strm_GetBufferInformation(CAM_HANDLE hStrm, CAM_HANDLE hStrmRequest, CAM_STREAM_REQUEST_INFO *pInfo)
{
    return ApiCall([&] {
        const auto stream = Streams().Get(hStrm);
        Require(pInfo);
        *pInfo = stream->Requests().AllRequests().Info(hStrmRequest);
    });
}

CAM_API_STATUS UC_Strm_GetImage(CAM_HANDLE hStrm, void *pvBuffer, uint32_t *puiSize,
                                CAM_STREAM_REQUEST_INFO *pImageInfo)
{
    return ApiCall([&] {
        const auto stream = Streams().Get(hStrm);
        Require(puiSize);
        stream->Ring().CopyCurrent(pvBuffer, *puiSize, pImageInfo);
    });
}

CAM_API_STATUS UC_Strm_GetApiCurrentBufferIndex(CAM_HANDLE hStrm, uint32_t *puiBufferIndex)
{
    return ApiCall([&] {
        const auto stream = Streams().Get(hStrm);
        Require(puiBufferIndex);
        *puiBufferIndex = stream->Ring().CurrentIndex();
    });
}

CAM_API_STATUS UC_Strm_LockApiImageBufferPointer(CAM_HANDLE hStrm, uint32_t uiBufferIndex, void **ppvBuffer)
{
    return ApiCall([&] {
        const auto stream = Streams().Get(hStrm);
        Require(ppvBuffer);
        *ppvBuffer = stream->Ring().Lock(uiBufferIndex);
    });
}

CAM_API_STATUS UC_Strm_UnlockApiImageBufferPointer(CAM_HANDLE hStrm, uint32_t uiBufferIndex)
{
    return ApiCall([&] { Streams().Get(hStrm)->Ring().Unlock(uiBufferIndex); });
}

CAM_API_STATUS UC_Strm_SetCallbackImageAcquired(CAM_HANDLE hStrm, CAM_STREAM_CALLBACK pfnCallback, void *pvContext)
{
    return SetCallback(hStrm, SimpleRing::On::Acquired, pfnCallback, pvContext);
}

CAM_API_STATUS UC_Strm_SetCallbackImageError(CAM_HANDLE hStrm, CAM_STREAM_CALLBACK pfnCallback, void *pvContext)
{
    return SetCallback(hStrm, SimpleRing::On::Error, pfnCallback, pvContext);
}

CAM_API_STATUS UC_Strm_SetCallbackLostImage(CAM_HANDLE hStrm, CAM_STREAM_CALLBACK pfnCallback, void *pvContext)
{
    return SetCallback(hStrm, SimpleRing::On::Lost, pfnCallback, pvContext);
}

CAM_API_STATUS UC_Strm_GetLostCount(CAM_HANDLE hStrm, uint64_t *pullCount)
{
    return ApiCall([&] {
        const auto stream = Streams().Get(hStrm);
        Require(pullCount);
        *pullCount = stream->LostCount();
    });
}
