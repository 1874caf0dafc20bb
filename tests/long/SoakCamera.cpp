#include "tests/long/SoakCamera.h"

#include "tests/e2e/FaultRegisters.h"

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

namespace Orvi::Soak {

std::atomic<unsigned long long> g_progress = 0;

namespace {

constexpr uint32_t s_patience = 1000; // ms between looks; how often is the watchdog's matter
constexpr uint64_t s_maxResponseTime = 0x1CC, s_dropped = 0x0F000008, s_unthrottled = 0x0F00000C;

} // namespace

void Check(bool isTrue, const char *what)
{
    if (!isTrue) {
        throw Failure(what);
    }
}

void Check(CAM_API_STATUS status, const char *call)
{
    ++g_progress;
    if (status != CAM_API_STS_SUCCESS) {
        char text[160];
        std::snprintf(text, sizeof text, "%s returned 0x%X", call, status);
        throw Failure(text);
    }
}

Camera::Camera()
{
    Open();
    // Time-outs shall not take most of the time.
    Arm({.moment = Vcam::FaultMoment::Command,
         .at = 1,
         .action = Vcam::FaultAction::Poke,
         .amount = 100,
         .target = s_maxResponseTime});
    Read(0);
    Check(Cam_Close(hCam_), "Cam_Close");
    Open();
    SetRate(0);
}

void Camera::Open()
{
    for (uint32_t found = 0; found == 0;) {
        Check(Sys_GetNumOfCameras(&found), "Sys_GetNumOfCameras");
        std::this_thread::sleep_for(std::chrono::milliseconds(found == 0 ? 5 : 0));
    }
    Check(Cam_Open(0, &hCam_, nullptr, true, nullptr, CAM_ACCESS_MODE_CONTROL), "Cam_Open");
    for (const auto &[name, value] : {std::pair{"Width", 128}, std::pair{"Height", 32}}) {
        CAM_HANDLE hNode = 0;
        Check(Nd_GetNode(hCam_, name, &hNode), "Nd_GetNode");
        Check(Nd_SetIntValue(hCam_, hNode, value, true), "Nd_SetIntValue");
    }
}

uint32_t Camera::Read(uint64_t address) const
{
    uint32_t value = 0;
    Check(Cam_ReadReg(hCam_, address, 1, &value), "Cam_ReadReg");
    return value;
}

void Camera::Write(uint64_t address, uint32_t value) const
{
    Check(Cam_WriteReg(hCam_, address, 1, &value), "Cam_WriteReg");
}

CAM_API_STATUS Camera::TryRead(uint64_t address) const
{
    uint32_t value = 0;
    ++g_progress;
    return Cam_ReadReg(hCam_, address, 1, &value);
}

void Camera::Arm(const Vcam::FaultRule &rule) const
{
    const auto words = Testing::FaultWords(rule);
    Check(Cam_WriteReg(hCam_, Testing::faultRule, static_cast<uint32_t>(words.size()), words.data()),
          "Cam_WriteReg of a fault");
}

void Camera::Disarm() const { Write(Testing::faultArm, 0); }

void Camera::SetRate(double imagesPerSecond) const
{
    Write(s_unthrottled, imagesPerSecond == 0 ? 1 : 0);
    if (imagesPerSecond != 0) {
        CAM_HANDLE hNode = 0;
        Check(Nd_GetNode(hCam_, "AcquisitionFrameRate", &hNode), "Nd_GetNode");
        Check(Nd_SetFloatValue(hCam_, hNode, imagesPerSecond, true), "Nd_SetFloatValue");
    }
}

uint32_t Camera::Dropped() const { return Read(s_dropped); }

Stream::Stream(const Camera &camera) : isQueued_(buffers)
{
    Check(Sys_CreateSignal(&hReady_), "Sys_CreateSignal");
    Check(Strm_Open(camera.Handle(), reinterpret_cast<void *>(hReady_), &payload_, &hStrm_, 0), "Strm_Open");
    memory_.assign(buffers, std::vector<unsigned char>(payload_));
    for (auto &memory : memory_) {
        CAM_HANDLE hRequest = 0;
        Check(Strm_CreateRequest(hStrm_, memory.data(), payload_, &hRequest), "Strm_CreateRequest");
        requests_.push_back(hRequest);
    }
}

Stream::~Stream()
{
    Strm_Close(hStrm_);
    Sys_CloseSignal(hReady_);
}

void Stream::QueueAll()
{
    for (std::size_t i = 0; i < buffers; ++i) {
        if (!isQueued_[i]) {
            Check(Queue(i), "Strm_EnqueueRequest");
        }
    }
}

CAM_API_STATUS Stream::Queue(std::size_t buffer)
{
    const CAM_API_STATUS status = Strm_EnqueueRequest(hStrm_, requests_[buffer]);
    if (status == CAM_API_STS_SUCCESS) {
        isQueued_[buffer] = true;
        ++queued_;
    } else {
        Check(status == CAM_API_STS_CAMERA_NOT_RESPONDING, "a request is refused by a camera that is there");
    }
    return status;
}

std::optional<Image> Stream::TryNext()
{
    CAM_HANDLE hRequest = 0;
    void *data = nullptr;
    uint32_t size = 0;
    const CAM_API_STATUS status = Strm_DequeueRequest(hStrm_, &hRequest, &data, &size);
    if (status == CAM_API_STS_EMPTY_COMPLETE_QUEUE) {
        return std::nullopt;
    }
    Check(status, "Strm_DequeueRequest");
    Image image;
    while (image.buffer < buffers && requests_[image.buffer] != hRequest) {
        ++image.buffer;
    }
    Check(image.buffer < buffers && isQueued_[image.buffer], "a request completes that was not queued");
    isQueued_[image.buffer] = false;
    --queued_;
    image.data = memory_[image.buffer].data();
    Check(data == image.data, "a request completes with another's memory");
    Check(Strm_GetStrmReqInfo(hStrm_, hRequest, &image.info), "Strm_GetStrmReqInfo");
    Check(image.info.ullValidPayloadSize <= payload_, "more bytes are valid than there are");
    return image;
}

Image Stream::Next()
{
    for (;;) {
        if (const auto image = TryNext()) {
            return *image;
        }
        Check(queued_ != 0, "an image is awaited and nothing is queued");
        Sys_WaitForSignal(hReady_, s_patience);
    }
}

void Stream::TakeAllBack()
{
    Check(Strm_FlushWaitQueue(hStrm_), "Strm_FlushWaitQueue");
    while (queued_ != 0) {
        Next();
    }
    Check(!TryNext(), "more requests complete than were queued");
}

uint64_t Stream::LostCount() const
{
    uint64_t count = 0;
    Check(Strm_GetLostCount(hStrm_, &count), "Strm_GetLostCount");
    return count;
}

bool Stream::IsTrue(const Image &image) const
{
    uint64_t id = 0;
    for (std::size_t pixel = 0; pixel < 64; ++pixel) {
        id = id << 1 | (image.data[pixel] != 0 ? 1 : 0);
    }
    return id == image.info.ullBlockId;
}

} // namespace Orvi::Soak
