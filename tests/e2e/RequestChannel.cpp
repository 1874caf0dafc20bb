#include "tests/e2e/RequestChannel.h"

namespace Orvi::Testing {

RequestChannel::RequestChannel(CAM_HANDLE hCam, std::size_t buffers, uint32_t bufferSize)
{
    EXPECT_EQ(Sys_CreateSignal(&hReady_), 0u);
    EXPECT_EQ(Strm_Open(hCam, reinterpret_cast<void *>(hReady_), &payload_, &hStrm_, 0), 0u);
    buffers_.assign(buffers, std::vector<std::byte>(bufferSize == 0 ? payload_ : bufferSize));
    for (std::vector<std::byte> &buffer : buffers_) {
        requests_.push_back(0);
        EXPECT_EQ(Strm_CreateRequest(hStrm_, buffer.data(), static_cast<uint32_t>(buffer.size()), &requests_.back()),
                  0u);
    }
}

RequestChannel::~RequestChannel()
{
    EXPECT_EQ(Strm_Close(hStrm_), 0u);
    EXPECT_EQ(Sys_CloseSignal(hReady_), 0u);
}

void RequestChannel::EnqueueAll()
{
    for (const CAM_HANDLE hRequest : requests_)
        Enqueue(hRequest);
}

void RequestChannel::Enqueue(CAM_HANDLE hRequest) { EXPECT_EQ(Strm_EnqueueRequest(hStrm_, hRequest), 0u); }

void RequestChannel::Start(CAM_ACQ_MODE eAcqMode) { EXPECT_EQ(Strm_Start(hStrm_, eAcqMode), 0u); }

void RequestChannel::Stop() { EXPECT_EQ(Strm_Stop(hStrm_), 0u); }

void RequestChannel::Flush() { EXPECT_EQ(Strm_FlushWaitQueue(hStrm_), 0u); }

std::optional<Delivered> RequestChannel::TryNext()
{
    Delivered done;
    void *image = nullptr;
    const CAM_API_STATUS status = Strm_DequeueRequest(hStrm_, &done.hRequest, &image, &done.size);
    if (status == CAM_API_STS_EMPTY_COMPLETE_QUEUE)
        return std::nullopt;
    EXPECT_EQ(status, 0u);
    done.image = static_cast<const std::byte *>(image);
    EXPECT_EQ(Strm_GetStrmReqInfo(hStrm_, done.hRequest, &done.info), 0u);
    return done;
}

Delivered RequestChannel::Next()
{
    for (;;) {
        if (std::optional<Delivered> done = TryNext())
            return *done;
        if (Sys_WaitForSignal(hReady_, patience) != CAM_API_STS_SUCCESS) {
            ADD_FAILURE() << "no request has completed";
            return {};
        }
    }
}

uint64_t RequestChannel::LostCount() const
{
    uint64_t count = 0;
    EXPECT_EQ(Strm_GetLostCount(hStrm_, &count), 0u);
    return count;
}

} // namespace Orvi::Testing
