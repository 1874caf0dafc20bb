#pragma once
// A small host at the virtual camera's USB side: transfers to wait for, register access, a stream.

#include "vcam/Device.h"
#include "vcam/Scene.h"

#include <gtest/gtest.h>

namespace Orvi::Vcam::Test {

/// Reached only when something hangs.
constexpr std::chrono::seconds s_limit{20};

class Transfer final : public InTransfer {
  public:
    explicit Transfer(std::size_t size = 2048) : memory_(size, std::byte{0xEE}) { buffer = memory_; }

    void Complete() noexcept override;
    bool IsDone() const;
    /// Fails the test when the transfer does not complete.
    Transfer &Wait();
    void Again();
    std::span<const std::byte> Data() const { return std::span(memory_).first(received); }

  private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    int completions_ = 0;
    std::vector<std::byte> memory_;
};

/// Waits for a condition of the camera without a notification.
bool Eventually(const std::function<bool()> &condition);

std::shared_ptr<VirtualCamera> MakeCamera(std::uint32_t sensorWidth = 320, std::uint32_t sensorHeight = 240);

class Control {
  public:
    explicit Control(UsbFunction &camera) : camera_(camera) {}

    static std::vector<std::byte> Command(std::uint16_t id, std::span<const std::byte> scd, std::uint16_t requestId,
                                          std::uint16_t flags = 0x4000);
    static std::vector<std::byte> ReadScd(std::uint64_t address, std::uint16_t count);
    static std::vector<std::byte> WriteScd(std::uint64_t address, std::span<const std::byte> data);

    /// Sends a command and fetches one acknowledge.
    std::vector<std::byte> Transact(std::span<const std::byte> command);
    GenCpStatus ReadMemory(std::uint64_t address, std::span<std::byte> to);
    GenCpStatus WriteMemory(std::uint64_t address, std::span<const std::byte> from);
    GenCpStatus TryWrite(std::uint64_t address, std::uint32_t value);
    void Write(std::uint64_t address, std::uint32_t value);
    std::uint32_t Read(std::uint64_t address);
    std::uint64_t ReadLong(std::uint64_t address);

  private:
    UsbFunction &camera_;
    std::uint16_t requestId_ = 100;
};

struct Frame {
    std::uint64_t block, time;
    std::uint32_t pixelFormat, width, height, offsetX, offsetY;
    std::vector<std::byte> image;
};

/// How a host cuts the payload.
struct Cut {
    std::uint32_t size, count, final1, final2;
};

class Stream {
  public:
    Stream(UsbFunction &camera, Control &control) : camera_(camera), control_(control) {}
    ~Stream();

    /// One transfer for everything below 1 MiB.
    Cut SimpleCut();
    void Configure(const Cut &cut);
    /// Posts all transfers of one frame.
    void Post();
    void Enable() { control_.Write(Reg::SiControl, 1); }
    void Start(std::uint32_t command = 8) { control_.Write(Block::AcquisitionCommand + 0x1C, command); }
    /// Waits for the oldest posted frame and checks leader, payload size and trailer.
    Frame Take();
    /// Takes back what is posted.
    void CancelAll();
    /// Post, enable, start, take one, stop.
    static Frame One(UsbFunction &camera, Control &control);

  private:
    std::unique_ptr<Transfer> PostOne(std::size_t size);

    UsbFunction &camera_;
    Control &control_;
    Cut cut_{};
    std::deque<std::vector<std::unique_ptr<Transfer>>> frames_;
};

} // namespace Orvi::Vcam::Test
