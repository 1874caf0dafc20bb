#include "u3v/protocol/GenCp.h"

#include "u3v/core/Log.h"
#include "u3v/core/Status.h"
#include "u3v/protocol/Wire.h"

#include <algorithm>
#include <cstdio>

namespace Orvi::U3v {
namespace {

constexpr std::uint16_t readMem = 0x0800, writeMem = 0x0802, pendingAck = 0x0805;
constexpr std::uint16_t ackWanted = 0x4000, isResend = 0x8000;
constexpr std::size_t headerSize = 12, addressSize = 8;
constexpr std::uint16_t resendNotSupported = 0xA001;
constexpr int maxTries = 3;
// A camera that keeps asking for more time is given this much in all.
constexpr std::chrono::seconds maxPending{60};

struct CodeRow {
    std::uint16_t code;
    CAM_API_STATUS status;
    const char *text;
};

// clang-format off
constexpr CodeRow codeRows[] = {
    {0x8001, CAM_API_STS_NOT_IMPLEMENTED,        "the camera does not know the command"},
    {0x8002, CAM_API_STS_INVALID_PARAMETER,      "invalid parameter"},
    {0x8003, CAM_API_STS_INVALID_ADDRESS,        "no register there"},
    {0x8004, CAM_API_STS_WRITE_PROTECT,          "the register is read-only"},
    {0x8005, CAM_API_STS_BAD_ALIGNMENT,          "address or size is not aligned"},
    {0x8006, CAM_API_STS_ACCESS_DENIED,          "access denied"},
    {0x8007, CAM_API_STS_BUSY,                   "the camera is busy"},
    {0x800B, CAM_API_STS_TIMEOUT,                "time-out inside the camera"},
    {0x800E, CAM_API_STS_INVALID_PARAMETER,      "the camera refuses the packet's header"},
    {0x800F, CAM_API_STS_NOT_WRITABLE,           "not in the camera's present configuration"},
    {0xA001, CAM_API_STS_RESEND_NOT_IMPLEMENTED, "the camera cannot repeat an answer"},
    {0xA002, CAM_API_STS_NOT_READY,              "the stream endpoint is halted"},
    {0xA003, CAM_API_STS_INVALID_PARAMETER,      "a stream size is not aligned"},
    {0xA004, CAM_API_STS_INVALID_PARAMETER,      "the stream sizes do not fit the payload"},
    {0xA005, CAM_API_STS_NOT_READY,              "the event endpoint is halted"},
};
// clang-format on

CodeRow RowOf(std::uint16_t code)
{
    for (const CodeRow &row : codeRows)
        if (row.code == code)
            return row;
    return {code, CAM_API_STS_UNSUCCESSFUL, "refused"};
}

// Also after an error on the bus, both ends begin anew by the clearing of a halt.
bool IsOutOfStep(TransferStatus status)
{
    return status == TransferStatus::Stalled || status == TransferStatus::Failed;
}

CAM_API_STATUS StatusOf(TransferStatus status)
{
    return status == TransferStatus::NoMemory ? CAM_API_STS_NO_MEMORY : CAM_API_STS_CAMERA_NOT_RESPONDING;
}

} // namespace

GenCp::GenCp(UsbLink &link) : link_(link), transfer_(link.NewTransfer(Pipe::Control, *this)) { SetLimits({}); }

void GenCp::SetLimits(const Limits &limits)
{
    std::lock_guard lock(mutex_);
    limits_ = limits;
    limits_.maxCommand = std::clamp<std::size_t>(limits.maxCommand, 64, headerSize + 0xFFFF);
    limits_.maxAck = std::clamp<std::size_t>(limits.maxAck, 64, headerSize + 0xFFFF);
    limits_.responseTime = std::clamp(limits.responseTime, std::chrono::milliseconds(100),
                                      std::chrono::milliseconds(std::chrono::seconds(10)));
    packet_.resize(limits_.maxCommand);
    // Whole packets, so that no answer, however long, is more than fits.
    ackBuffer_.resize(RoundUp(limits_.maxAck, link_.MaxPacketSize(Pipe::Control)));
}

void GenCp::Read(std::uint64_t address, std::span<std::byte> data)
{
    std::lock_guard lock(mutex_);
    while (!data.empty()) {
        std::size_t count = std::min(data.size(), limits_.maxAck - headerSize);
        // Cameras disagree whether an answer of whole packets ends with an empty one: no such answer is asked for.
        if ((headerSize + count) % link_.MaxPacketSize(Pipe::Control) == 0)
            count -= 4;
        ReadBlock(address, data.first(count));
        address += count;
        data = data.subspan(count);
    }
}

void GenCp::Write(std::uint64_t address, std::span<const std::byte> data)
{
    std::lock_guard lock(mutex_);
    while (!data.empty()) {
        const std::size_t count = std::min(data.size(), (limits_.maxCommand - headerSize - addressSize) / 4 * 4);
        WriteBlock(address, data.first(count));
        address += count;
        data = data.subspan(count);
    }
}

void GenCp::ReadBlock(std::uint64_t address, std::span<std::byte> data)
{
    Store<std::uint64_t>(packet_, headerSize, address);
    Store<std::uint16_t>(packet_, headerSize + 8, 0);
    Store<std::uint16_t>(packet_, headerSize + 10, static_cast<std::uint16_t>(data.size()));
    const Command command = {readMem, 12, address, data.size()};
    const std::span<const std::byte> ack = Transact(command);
    if (ack.size() < data.size())
        Fail(command, CAM_API_STS_UNSUCCESSFUL, "the camera answered with fewer bytes");
    std::copy_n(ack.begin(), data.size(), data.begin());
}

void GenCp::WriteBlock(std::uint64_t address, std::span<const std::byte> data)
{
    Store<std::uint64_t>(packet_, headerSize, address);
    std::copy(data.begin(), data.end(), packet_.begin() + headerSize + addressSize);
    const Command command = {writeMem, addressSize + data.size(), address, data.size()};
    const std::span<const std::byte> ack = Transact(command);
    // Cameras may leave the number of written bytes out.
    if (ack.size() >= 4 && Load<std::uint16_t>(ack, 2) != data.size())
        Fail(command, CAM_API_STS_UNSUCCESSFUL, "the camera wrote fewer bytes");
}

// The answer's data; a span of ackBuffer_.
std::span<const std::byte> GenCp::Transact(const Command &command)
{
    {
        std::lock_guard lock(doneMutex_);
        isAborted_ = false;
    }
    const std::uint16_t requestId = ++requestId_;
    std::span<const std::byte> ack;
    std::uint16_t flags = ackWanted;
    std::uint16_t id = requestId;
    for (int attempt = 0; attempt < maxTries; ++attempt) {
        const Outcome outcome = Try(command, flags, id, ack);
        if (outcome == Outcome::NoAnswer) {
            // The same command again, so marked that the camera does not execute it a second time.
            flags = ackWanted | isResend;
            LogDevice(CAM_LOG_LEVEL_WARN, "%s has not answered within %lld ms: asked again",
                      link_.Identity().serial.c_str(), static_cast<long long>(limits_.responseTime.count()));
            continue;
        }
        if (outcome == Outcome::Stalled) {
            link_.ClearHalt(Pipe::Control);
            flags = ackWanted | isResend;
            LogDevice(CAM_LOG_LEVEL_WARN, "%s has halted its control endpoints: cleared",
                      link_.Identity().serial.c_str());
            continue;
        }
        const auto code = Load<std::uint16_t>(ack, 4);
        if (code == resendNotSupported && command.id == readMem) {
            flags = ackWanted;
            id = ++requestId_;
            continue;
        }
        if ((code & 0x8000) != 0) {
            const CodeRow row = RowOf(code);
            char text[96];
            std::snprintf(text, sizeof text, "%s (0x%04X)", row.text, code);
            Fail(command, row.status, text);
        }
        return ack.subspan(headerSize);
    }
    Fail(command, CAM_API_STS_CAMERA_NOT_RESPONDING, "the camera does not answer");
}

GenCp::Outcome GenCp::Try(const Command &command, std::uint16_t flags, std::uint16_t requestId,
                          std::span<const std::byte> &ack)
{
    FillHeader(command, flags, requestId);
    Deadline deadline = Clock::now() + limits_.responseTime;
    const Deadline lastDeadline = Clock::now() + maxPending;
    TransferStatus status = link_.Out(std::span(packet_).first(headerSize + command.scdSize), deadline);
    if (IsOutOfStep(status))
        return Outcome::Stalled;
    if (status == TransferStatus::TimedOut)
        return Outcome::NoAnswer;
    if (status != TransferStatus::Completed)
        Fail(command, StatusOf(status), Name(status));

    for (;;) {
        status = Receive(deadline);
        if (IsOutOfStep(status))
            return Outcome::Stalled;
        if (status == TransferStatus::TimedOut)
            return Outcome::NoAnswer;
        if (status == TransferStatus::Cancelled)
            Fail(command, CAM_API_STS_TIMEOUT, "aborted");
        if (status == TransferStatus::Babble)
            continue;
        if (status != TransferStatus::Completed)
            Fail(command, StatusOf(status), Name(status));

        // Empty packets, and answers that come too late for an earlier command, are not for this one.
        ack = transfer_->Received();
        if (ack.size() < headerSize || Load<std::uint32_t>(ack, 0) != controlPrefix ||
            Load<std::uint16_t>(ack, 10) != requestId)
            continue;
        const auto id = Load<std::uint16_t>(ack, 6);
        const std::size_t length = Load<std::uint16_t>(ack, 8);
        if (ack.size() < headerSize + length)
            continue;
        if (id == pendingAck && length >= 4) {
            const std::chrono::milliseconds more(Load<std::uint16_t>(ack, headerSize + 2));
            deadline = std::min(Clock::now() + std::max(more, limits_.responseTime), lastDeadline);
            continue;
        }
        if (id != command.id + 1)
            continue;
        ack = ack.first(headerSize + length);
        return Outcome::Acknowledged;
    }
}

void GenCp::FillHeader(const Command &command, std::uint16_t flags, std::uint16_t requestId)
{
    Store<std::uint32_t>(packet_, 0, controlPrefix);
    Store<std::uint16_t>(packet_, 4, flags);
    Store<std::uint16_t>(packet_, 6, command.id);
    Store<std::uint16_t>(packet_, 8, static_cast<std::uint16_t>(command.scdSize));
    Store<std::uint16_t>(packet_, 10, requestId);
}

TransferStatus GenCp::Receive(Deadline deadline)
{
    {
        std::lock_guard lock(doneMutex_);
        if (isAborted_)
            return TransferStatus::Cancelled;
        isPending_ = true;
    }
    transfer_->Submit(ackBuffer_);
    std::unique_lock lock(doneMutex_);
    const bool inTime = done_.wait_until(lock, deadline, [this] { return !isPending_ || isAborted_; });
    if (isPending_) {
        lock.unlock();
        transfer_->Cancel();
        lock.lock();
        done_.wait(lock, [this] { return !isPending_; });
    }
    if (transfer_->Status() == TransferStatus::Cancelled && !inTime)
        return TransferStatus::TimedOut;
    return transfer_->Status();
}

void GenCp::OnDone(BulkIn &) noexcept
{
    std::lock_guard lock(doneMutex_);
    isPending_ = false;
    done_.notify_all();
}

void GenCp::Abort()
{
    std::lock_guard lock(doneMutex_);
    isAborted_ = true;
    done_.notify_all();
}

void GenCp::Reset()
{
    Abort();
    std::lock_guard lock(mutex_); // no transfer may pend when a halt is cleared
    link_.ClearHalt(Pipe::Control);
}

void GenCp::Fail(const Command &command, CAM_API_STATUS status, const std::string &why) const
{
    char what[96];
    std::snprintf(what, sizeof what, ": %s %zu bytes at 0x%llX: ", command.id == readMem ? "reading" : "writing",
                  command.count, static_cast<unsigned long long>(command.address));
    const std::string text = "camera " + link_.Identity().serial + what + why;
    // A refusal may be what the caller wants to know; silence never is.
    LogDevice(status == CAM_API_STS_CAMERA_NOT_RESPONDING ? CAM_LOG_LEVEL_WARN : CAM_LOG_LEVEL_INFO, "%s",
              text.c_str());
    throw StatusError(status, text);
}

} // namespace Orvi::U3v
