#pragma once
// A stream of a virtual camera in request mode, waited for with its signal.

#include "BenchCamera.h"

#include <vector>

namespace Orvi::Bench {

class VirtualStream : public BenchCamera {
  public:
    explicit VirtualStream(std::size_t buffers)
    {
        Check("Sys_CreateSignal", Sys_CreateSignal(&hReady_));
        Check("Strm_Open", Strm_Open(hCam_, reinterpret_cast<void *>(hReady_), &uiPayload_, &hStrm_, 0));
        buffers_.assign(buffers, std::vector<unsigned char>(uiPayload_));
        for (std::vector<unsigned char> &buffer : buffers_) {
            CAM_HANDLE hRequest = 0;
            Check("Strm_CreateRequest", Strm_CreateRequest(hStrm_, buffer.data(), uiPayload_, &hRequest));
            Check("Strm_EnqueueRequest", Strm_EnqueueRequest(hStrm_, hRequest));
            requests_.push_back(hRequest);
        }
    }
    VirtualStream(const VirtualStream &) = delete;
    VirtualStream &operator=(const VirtualStream &) = delete;
    ~VirtualStream()
    {
        Check("Strm_FlushWaitQueue", Strm_FlushWaitQueue(hStrm_));
        for (CAM_HANDLE hRequest : requests_)
            Check("Strm_ReleaseRequest", Strm_ReleaseRequest(hStrm_, hRequest));
        Check("Strm_Close", Strm_Close(hStrm_));
        Check("Sys_CloseSignal", Sys_CloseSignal(hReady_));
    }

    uint32_t PayloadSize() const { return uiPayload_; }
    void Start() { Check("Strm_Start", Strm_Start(hStrm_, CAM_ACQ_MODE_CONTINUOUS)); }
    void Stop() { Check("Strm_Stop", Strm_Stop(hStrm_)); }

    /// Images as fast as they are taken. The camera keeps its settings from one stream to the next.
    void Unthrottle() { SetThrottle(1); }

    void SetFrameRate(double dFps)
    {
        SetThrottle(0);
        CAM_HANDLE hNode = 0;
        Check("Nd_GetNode", Nd_GetNode(hCam_, "AcquisitionFrameRate", &hNode));
        Check("Nd_SetFloatValue", Nd_SetFloatValue(hCam_, hNode, dFps, false));
    }

    /// Waits for an image and gives its buffer back.
    void TakeImage()
    {
        CAM_HANDLE hRequest = 0;
        void *pvImage = nullptr;
        uint32_t uiSize = 0;
        CAM_API_STATUS status;
        while ((status = Strm_DequeueRequest(hStrm_, &hRequest, &pvImage, &uiSize)) == CAM_API_STS_EMPTY_COMPLETE_QUEUE)
            Check("Sys_WaitForSignal", Sys_WaitForSignal(hReady_, 10000));
        Check("Strm_DequeueRequest", status);
        if (uiSize != uiPayload_)
            Check("image", CAM_API_STS_UNEXPECTED_BUFFER_SIZE);
        Check("Strm_EnqueueRequest", Strm_EnqueueRequest(hStrm_, hRequest));
    }

  private:
    void SetThrottle(uint32_t uiOff) { Check("Cam_WriteReg", Cam_WriteReg(hCam_, 0x0F00000C, 1, &uiOff)); }

    CAM_HANDLE hStrm_ = 0, hReady_ = 0;
    uint32_t uiPayload_ = 0;
    std::vector<std::vector<unsigned char>> buffers_;
    std::vector<CAM_HANDLE> requests_;
};

} // namespace Orvi::Bench
