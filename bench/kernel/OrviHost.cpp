// Our own host on a camera behind the kernel's USB.

#include "HostBench.h"

#include "OrviCamApi.h"

#include <cstdlib>
#include <vector>

namespace Orvi::Bench {
namespace {

void Check(const char *what, CAM_API_STATUS status)
{
    if (status == CAM_API_STS_SUCCESS)
        return;
    std::fprintf(stderr, "%s: status 0x%X\n", what, status);
    std::exit(1);
}

class OrviHost final : public Host {
  public:
    OrviHost()
    {
        uint32_t cameras = 0;
        Check("Sys_Initialize", Sys_Initialize(SYS_INIT_U3V));
        Check("Sys_GetNumOfCameras", Sys_GetNumOfCameras(&cameras));
        Check("Cam_Open", Cam_Open(0, &hCam_, nullptr, true, nullptr, CAM_ACCESS_MODE_CONTROL));
        Check("SetCamPixelFormat", SetCamPixelFormat(hCam_, CAM_PIXEL_FORMAT_MONO8));
        Check("SetCamRoi", SetCamRoi(hCam_, s_width, s_height, 0, 0));
        const uint32_t yes = 1;
        Check("Cam_WriteReg", Cam_WriteReg(hCam_, s_unthrottled, 1, &yes));
        Check("Sys_CreateSignal", Sys_CreateSignal(&hReady_));
        uint32_t payload = 0;
        Check("Strm_Open", Strm_Open(hCam_, reinterpret_cast<void *>(hReady_), &payload, &hStrm_, 0));
        buffers_.assign(s_buffers, std::vector<unsigned char>(payload));
        for (std::vector<unsigned char> &buffer : buffers_) {
            CAM_HANDLE hRequest = 0;
            Check("Strm_CreateRequest", Strm_CreateRequest(hStrm_, buffer.data(), payload, &hRequest));
            requests_.push_back(hRequest);
        }
    }
    ~OrviHost() override
    {
        Check("Strm_Close", Strm_Close(hStrm_));
        Check("Cam_Close", Cam_Close(hCam_));
        Check("Sys_Terminate", Sys_Terminate());
    }
    OrviHost(const OrviHost &) = delete;
    OrviHost &operator=(const OrviHost &) = delete;

    void Start() override
    {
        for (const CAM_HANDLE hRequest : requests_)
            Check("Strm_EnqueueRequest", Strm_EnqueueRequest(hStrm_, hRequest));
        Check("Strm_Start", Strm_Start(hStrm_, CAM_ACQ_MODE_CONTINUOUS));
    }

    std::size_t TakeImage() override
    {
        CAM_HANDLE hRequest = 0;
        void *image = nullptr;
        uint32_t size = 0;
        CAM_API_STATUS status = 0;
        while ((status = Strm_DequeueRequest(hStrm_, &hRequest, &image, &size)) == CAM_API_STS_EMPTY_COMPLETE_QUEUE)
            Check("Sys_WaitForSignal", Sys_WaitForSignal(hReady_, 20000));
        Check("Strm_DequeueRequest", status);
        CAM_STREAM_REQUEST_INFO info{};
        Check("Strm_GetStrmReqInfo", Strm_GetStrmReqInfo(hStrm_, hRequest, &info));
        Check("the image", info.uiStatus);
        Check("Strm_EnqueueRequest", Strm_EnqueueRequest(hStrm_, hRequest));
        return size;
    }

    void Stop() override
    {
        Check("Strm_Stop", Strm_Stop(hStrm_));
        Check("Strm_FlushWaitQueue", Strm_FlushWaitQueue(hStrm_));
        CAM_HANDLE hRequest = 0;
        void *image = nullptr;
        uint32_t size = 0;
        while (Strm_DequeueRequest(hStrm_, &hRequest, &image, &size) != CAM_API_STS_EMPTY_COMPLETE_QUEUE) {
        }
    }

    std::uint32_t ReadRegister(std::uint64_t address) override
    {
        uint32_t value = 0;
        Check("Cam_ReadReg", Cam_ReadReg(hCam_, address, 1, &value));
        return value;
    }

  private:
    CAM_HANDLE hCam_ = 0, hReady_ = 0, hStrm_ = 0;
    std::vector<std::vector<unsigned char>> buffers_;
    std::vector<CAM_HANDLE> requests_;
};

} // namespace
} // namespace Orvi::Bench

int main()
{
    Orvi::Bench::OrviHost host;
    Orvi::Bench::Measure(host);
}
