#pragma once
// A virtual camera and its stream as an application uses them. What goes wrong against expectation is a Failure.

#include "OrviCamApi.h"

#include "vcam/Faults.h"

#include <atomic>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <vector>

namespace Orvi::Soak {

struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};
void Check(bool isTrue, const char *what);
/// The call's status must be 0.
void Check(CAM_API_STATUS status, const char *call);

/// Counts whatever happens: when it stands still, something hangs.
extern std::atomic<unsigned long long> g_progress;

class Camera {
  public:
    Camera();
    ~Camera() { Cam_Close(hCam_); }
    Camera(const Camera &) = delete;
    Camera &operator=(const Camera &) = delete;

    CAM_HANDLE Handle() const { return hCam_; }
    uint32_t Read(uint64_t address) const;
    void Write(uint64_t address, uint32_t value) const;
    CAM_API_STATUS TryRead(uint64_t address) const;

    void Arm(const Vcam::FaultRule &rule) const;
    void Disarm() const;
    /// Images per second; 0: as fast as they are taken.
    void SetRate(double imagesPerSecond) const;
    /// Blocks that the camera counts as lost, since its power-up.
    uint32_t Dropped() const;

  private:
    void Open();
    CAM_HANDLE hCam_ = 0;
};

/// A completed request.
struct Image {
    CAM_STREAM_REQUEST_INFO info{};
    std::size_t buffer = 0;
    const unsigned char *data = nullptr;
};

class Stream {
  public:
    static constexpr std::size_t buffers = 4;

    explicit Stream(const Camera &camera);
    ~Stream();
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;

    CAM_HANDLE Handle() const { return hStrm_; }
    uint32_t PayloadSize() const { return payload_; }
    std::size_t Queued() const { return queued_; }

    void QueueAll();
    /// 0x13 when the camera is gone.
    CAM_API_STATUS Queue(std::size_t buffer);
    /// Waits for the next one that completes.
    Image Next();
    std::optional<Image> TryNext();
    /// Flushes, and takes all that are queued back: exactly so many come.
    void TakeAllBack();
    uint64_t LostCount() const;
    /// The picture shows the block id that the information tells.
    bool IsTrue(const Image &image) const;

  private:
    CAM_HANDLE hReady_ = 0, hStrm_ = 0;
    uint32_t payload_ = 0;
    std::vector<std::vector<unsigned char>> memory_;
    std::vector<CAM_HANDLE> requests_;
    std::vector<bool> isQueued_;
    std::size_t queued_ = 0;
};

} // namespace Orvi::Soak
