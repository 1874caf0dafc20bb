#include "vcam/Device.h"
#include "vcam/FramePlan.h"

#include <algorithm>

namespace Orvi::Vcam {

namespace {

/// Images that the buffer holds; what a block says of its maximum.
std::uint32_t Depth(const RegisterSpace &registers) { return registers.Word(Block::ImageBufferCount + 0x18); }

} // namespace

bool Device::HasRoom() const { return held_.size() < Depth(registers_); }

void Device::ClearImageBuffer()
{
    held_.clear();
    readOuts_ = 0;
}

/// Keeps the image until it is read out; false when the buffer is full.
bool Device::HoldFrame(Shot shot)
{
    const bool hasRoom = HasRoom();
    if (hasRoom) {
        held_.push_back(std::move(shot));
    }
    return hasRoom;
}

/// Sends the oldest image that is held. It waits for a transfer as long as it takes.
void Device::ReadOut(Lock &lock)
{
    --readOuts_;
    const Shot shot = std::move(held_.front());
    held_.pop_front();
    if (!SendFrame(lock, shot)) {
        LoseFrame(shot.block);
    }
    Announce(lock);
}

void Device::LoseFrame(std::uint64_t block)
{
    ++dropped_;
    registers_.SetWord(Reg::DroppedBlocks, static_cast<std::uint32_t>(dropped_));
    Raise(EventKind::FrameLost, block);
}

bool Device::SendFrame(Lock &lock, const Shot &shot)
{
    const PictureSettings &settings = shot.settings;
    const FramePlan plan = PlanFrame(shot.block, PayloadBytes(settings, shot.packing), shot.faults);
    if (!IsStreamEnabled() || plan.isLost) {
        return false;
    }
    const auto word = [this](std::uint64_t address) { return std::size_t{registers_.Word(address)}; };
    const Slots slots{word(Reg::SiTransferSize),
                      word(Reg::SiTransferCount),
                      {word(Reg::SiFinalTransfer1), word(Reg::SiFinalTransfer2)}};
    const Sending sending{acquisition_.run, stream_.Epoch()};
    isInFrame_ = isTransferring_ = true;
    lock.unlock();
    const std::span image = DrawPayload(shot);
    const std::uint16_t imageType = 1;

    std::array<std::byte, 52> leader{};
    FieldWriter(leader)
        .Put(plan.leaderPrefix)
        .Put(std::uint16_t{0})
        .Put(std::uint16_t{leader.size()})
        .Put(plan.leaderId)
        .Put(std::uint16_t{0})
        .Put(imageType)
        .Put(shot.time)
        .Put(PackedCode(settings.Format(), shot.packing))
        .Put(settings.width)
        .Put(settings.height)
        .Put(settings.offsetX)
        .Put(settings.offsetY)
        .Put(std::uint16_t{0})
        .Put(std::uint16_t{0});
    std::array<std::byte, 32> trailer{};
    FieldWriter(trailer)
        .Put(plan.trailerPrefix)
        .Put(std::uint16_t{0})
        .Put(std::uint16_t{trailer.size()})
        .Put(plan.trailerId)
        .Put(plan.status)
        .Put(std::uint16_t{0})
        .Put(std::uint64_t{plan.valid})
        .Put(static_cast<std::uint32_t>(plan.valid * settings.height / image.size()));

    if (plan.stallAt == 0U) {
        stream_.SetHalt();
    }
    const bool isSent = (!plan.hasLeader || SendMessage(sending, {.data = leader})) &&
                        SendPayload(sending, image.first(plan.sent), slots, plan.stallAt) &&
                        (!plan.hasTrailer || SendMessage(sending, {.data = trailer}));
    lock.lock();
    isInFrame_ = isTransferring_ = false;
    return isSent && !plan.IsNameless();
}

/// The payload fills slots from the front; only the last one used ends with a short packet.
bool Device::SendPayload(const Sending &sending, std::span<const std::byte> payload, const Slots &slots,
                         std::optional<std::size_t> stallAt)
{
    std::size_t sent = 0;
    for (std::size_t slot = 0; sent != payload.size(); ++slot) {
        const std::size_t size =
            slot < slots.count ? slots.size : slots.finalSizes[std::min<std::size_t>(slot - slots.count, 1)];
        std::span part = payload.subspan(sent, std::min(size, payload.size() - sent));
        const bool isStalling = stallAt && *stallAt >= sent && *stallAt < sent + part.size();
        if (isStalling) {
            part = part.first(*stallAt - sent);
        }
        if (!part.empty() &&
            !SendMessage(sending, {.data = part, .ending = part.size() == size ? Ending::Open : Ending::ZeroLength})) {
            return false;
        }
        sent += part.size();
        if (isStalling) {
            stream_.SetHalt();
            return SendMessage(sending, {.data = payload.subspan(sent)}); // waits until the halt is cleared
        }
    }
    return true;
}

/// Called without the lock. False when the stream has been switched off or the endpoint cleared.
bool Device::SendMessage(const Sending &sending, Message message)
{
    while (!stream_.Send(message, sending.epoch)) {
        Lock lock(mutex_);
        // An aborted acquisition still finishes the image that has begun: never half an image without its trailer.
        const bool isCut = isQuitting_ || isUnplugRequested_ || !isPlugged_ || !IsStreamEnabled();
        if (isCut || stream_.Epoch() != sending.epoch) {
            return false;
        }
        if (stream_.HasTransfer()) {
            continue;
        }
        const bool mayMiss = IsRun(sending.run) && IsThrottled() && !acquisition_.isStopping && HasFramesLeft() &&
                             (!IsTriggered() || burstLeft_ != 0);
        if (!mayMiss) {
            wake_.wait(lock);
            continue;
        }
        // The sensor goes on while the host keeps an image waiting: what it sees meanwhile is lost.
        const Clock::time_point due = lastFrame_ + FramePeriod();
        if (Clock::now() < due) {
            wake_.wait_until(lock, due);
            continue;
        }
        MissFrame(lock);
    }
    return true;
}

/// An image that the sensor takes while another one waits for the host: held, or lost.
void Device::MissFrame(Lock &lock)
{
    Shot shot{0, 0, Settings(), PackingNow()};
    BeginFrame(shot);
    const std::uint64_t block = shot.block;
    for (const EventKind kind : {EventKind::FrameStart, EventKind::ExposureStart, EventKind::ExposureEnd}) {
        Raise(kind, block);
    }
    shot.time = DeviceTime();
    if (IsBuffering() && HoldFrame(std::move(shot))) {
        Raise(EventKind::FrameEnd, block);
    } else {
        LoseFrame(block);
    }
    Announce(lock);
}

} // namespace Orvi::Vcam
