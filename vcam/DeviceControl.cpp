#include "vcam/Device.h"

#include <algorithm>

namespace Orvi::Vcam {

namespace {

// A host has one command outstanding; acknowledges that it never fetched do not pile up.
constexpr std::size_t s_ackDepth = 16;
constexpr std::uint16_t s_pendingMilliseconds = 500;

/// The last one counts.
const FaultRule *FindFault(const std::vector<FaultRule> &faults, FaultAction action)
{
    const auto found = std::find_if(faults.rbegin(), faults.rend(),
                                    [action](const FaultRule &fault) { return fault.action == action; });
    return found == faults.rend() ? nullptr : &*found;
}

} // namespace

TransferStatus Device::Out(std::span<const std::byte> data)
{
    TransferStatus status;
    {
        const std::lock_guard command(controlMutex_);
        status = Execute(data);
    }
    ackOutbox_.Pump();
    if (isSettleDue_.exchange(false)) {
        Settle();
    } else {
        eventOutbox_.Pump(); // a read wakes nobody
    }
    return status;
}

TransferStatus Device::Execute(std::span<const std::byte> command)
{
    std::vector<FaultRule> faults;
    {
        const std::lock_guard lock(mutex_);
        if (!isPlugged_ || isControlOutHalted_) {
            return isPlugged_ ? TransferStatus::Stalled : TransferStatus::Gone;
        }
        isUnplugWritten_ = false;
        faults = TakeCommandFaults(command);
        if (isUnplugRequested_) {
            return TransferStatus::Completed; // pulled before it is carried out
        }
    }
    const FaultRule *stall = FindFault(faults, FaultAction::StallControl);
    const FaultRule *refusal = FindFault(faults, FaultAction::ErrorAck);
    std::optional<GenCpServer::Packet> ack;
    if (refusal != nullptr) {
        ack = GenCpServer::ErrorAck(command, static_cast<std::uint16_t>(refusal->amount));
    } else if (stall == nullptr || stall->amount != 0) {
        ack = server_.Execute(command);
        KeepFrontState();
    }
    if (!ack) {
        SetHalt(Endpoint::ControlOut);
        SetHalt(Endpoint::ControlIn);
        return TransferStatus::Stalled;
    }
    if (stall != nullptr) {
        SetHalt(Endpoint::ControlIn);
        return TransferStatus::Completed;
    }
    {
        const std::lock_guard lock(mutex_);
        if (isUnplugRequested_) {
            return TransferStatus::Completed; // by a rule about what the command has written: nobody answers any more
        }
    }
    QueueAcks(command, std::move(*ack), faults);
    return TransferStatus::Completed;
}

void Device::QueueAcks(std::span<const std::byte> command, GenCpServer::Packet ack,
                       const std::vector<FaultRule> &faults)
{
    const std::lock_guard lock(mutex_);
    const auto countDown = [&](std::uint64_t address) {
        const std::uint32_t left = registers_.Word(address);
        registers_.SetWord(address, left == 0 ? 0 : left - 1);
        return left != 0;
    };
    // The command that asks for a fault is itself answered as usual.
    const std::uint64_t target =
        command.size() >= s_genCpHeader + 8 ? LoadLe<std::uint64_t>(command.data() + s_genCpHeader) : 0;
    const bool asksForFault = target == Reg::PendingAcks || target == Reg::LostAcks;
    const bool isPending = !asksForFault && countDown(Reg::PendingAcks);
    const bool isLost = FindFault(faults, FaultAction::LoseAck) != nullptr;
    if (ack.empty() || isLost || (!asksForFault && countDown(Reg::LostAcks))) {
        isUnplugRequested_ = isUnplugRequested_ || isUnplugWritten_;
        wake_.notify_all();
        return;
    }
    if (isPending) {
        QueueAck({GenCpServer::PendingAck(command, s_pendingMilliseconds), false});
    }
    if (const FaultRule *pending = FindFault(faults, FaultAction::PendingAck)) {
        QueueAck({GenCpServer::PendingAck(command, static_cast<std::uint16_t>(pending->amount)), false});
    }
    if (const FaultRule *shift = FindFault(faults, FaultAction::ShiftRequestId)) {
        GenCpServer::ShiftRequestId(ack, static_cast<std::uint16_t>(shift->amount));
    }
    const FaultRule *delay = FindFault(faults, FaultAction::DelayAck);
    if (delay == nullptr) {
        QueueAck({std::move(ack), isUnplugWritten_});
        return;
    }
    alarm_.Set(
        Clock::now() + std::chrono::milliseconds(delay->amount),
        [this, late = Ack{std::move(ack), isUnplugWritten_}, powerUps = powerUps_] { SendLate(late, powerUps); });
}

void Device::SendLate(const Ack &ack, std::uint64_t powerUps)
{
    {
        const std::lock_guard lock(mutex_);
        if (!isPlugged_ || powerUps != powerUps_) {
            return;
        }
        QueueAck(ack);
    }
    ackOutbox_.Pump();
}

void Device::QueueAck(Ack ack)
{
    acks_.push_back(std::move(ack));
    while (acks_.size() > s_ackDepth) {
        acks_.pop_front();
    }
}

std::vector<std::byte> Device::TakeAck()
{
    const std::lock_guard lock(mutex_);
    if (acks_.empty()) {
        return {};
    }
    const Ack ack = std::move(acks_.front());
    acks_.pop_front();
    isAckUnplugging_ = ack.unplugs;
    return ack.packet;
}

void Device::AckSent()
{
    const std::lock_guard lock(mutex_);
    if (isAckUnplugging_) {
        isAckUnplugging_ = false;
        isUnplugRequested_ = true;
        wake_.notify_all();
    }
}

} // namespace Orvi::Vcam
