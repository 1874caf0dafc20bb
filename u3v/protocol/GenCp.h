#pragma once
// The control protocol: register reads and writes as commands and acknowledges over the control pipe. One command is
// outstanding at a time; any thread may ask.

#include "u3v/core/Status.h"
#include "u3v/usb/UsbLink.h"

#include <condition_variable>
#include <mutex>
#include <vector>

namespace Orvi::U3v {

class GenCp : private BulkIn::Listener {
  public:
    struct Limits {
        std::size_t maxCommand = 128; ///< bytes, header included; small enough for every camera
        std::size_t maxAck = 128;
        std::chrono::milliseconds responseTime{500};
    };

    explicit GenCp(UsbLink &link);

    /// Replaces the cautious limits of the start by those that the camera reports.
    void SetLimits(const Limits &limits);

    /// Read and write any number of bytes. Throw StatusError: the camera's refusal, or 0x13 when it does not answer.
    void Read(std::uint64_t address, std::span<std::byte> data);
    void Write(std::uint64_t address, std::span<const std::byte> data);

    /// Ends the command under way, which then fails with 0x12.
    void Abort();
    /// Aborts, and brings the control endpoints into step.
    void Reset();

  private:
    struct Command {
        std::uint16_t id;
        std::size_t scdSize; // its data stand in packet_
        std::uint64_t address;
        std::size_t count;
    };
    enum class Outcome { Acknowledged, NoAnswer, Stalled };

    void OnDone(BulkIn &transfer) noexcept override;

    void ReadBlock(std::uint64_t address, std::span<std::byte> data);
    void WriteBlock(std::uint64_t address, std::span<const std::byte> data);
    std::span<const std::byte> Transact(const Command &command);
    Outcome Try(const Command &command, std::uint16_t flags, std::uint16_t requestId, std::span<const std::byte> &ack);
    TransferStatus Receive(Deadline deadline);
    void FillHeader(const Command &command, std::uint16_t flags, std::uint16_t requestId);
    [[noreturn]] void Fail(const Command &command, CAM_API_STATUS status, const std::string &why) const;

    UsbLink &link_;
    std::mutex mutex_; // one command at a time
    Limits limits_;
    std::uint16_t requestId_ = 0;
    std::vector<std::byte> packet_;
    std::vector<std::byte> ackBuffer_;
    std::unique_ptr<BulkIn> transfer_;

    std::mutex doneMutex_;
    std::condition_variable done_;
    bool isPending_ = false;
    bool isAborted_ = false;
};

} // namespace Orvi::U3v
