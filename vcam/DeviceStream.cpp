#include "vcam/Device.h"

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
    const std::uint64_t run = acquisition_.run;
    const std::uint64_t epoch = stream_.Epoch();
    const auto word = [this](std::uint64_t address) { return std::size_t{registers_.Word(address)}; };
    const std::size_t slotSize = word(Reg::SiTransferSize), slotCount = word(Reg::SiTransferCount);
    const std::size_t finalSizes[] = {word(Reg::SiFinalTransfer1), word(Reg::SiFinalTransfer2)};
    if (!IsStreamEnabled()) {
        return false;
    }
    const PictureSettings &settings = shot.settings;
    isInFrame_ = isTransferring_ = true;
    lock.unlock();
    const std::span image = painter_.Draw(settings, shot.block);
    const std::uint16_t imageType = 1;

    std::array<std::byte, 52> leader{};
    FieldWriter(leader)
        .Put(s_leaderPrefix)
        .Put(std::uint16_t{0})
        .Put(std::uint16_t{leader.size()})
        .Put(shot.block)
        .Put(std::uint16_t{0})
        .Put(imageType)
        .Put(shot.time)
        .Put(settings.pixelFormat)
        .Put(settings.width)
        .Put(settings.height)
        .Put(settings.offsetX)
        .Put(settings.offsetY)
        .Put(std::uint16_t{0})
        .Put(std::uint16_t{0});
    std::array<std::byte, 32> trailer{};
    FieldWriter(trailer)
        .Put(s_trailerPrefix)
        .Put(std::uint16_t{0})
        .Put(std::uint16_t{trailer.size()})
        .Put(shot.block)
        .Put(std::uint16_t{0})
        .Put(std::uint16_t{0})
        .Put(std::uint64_t{image.size()})
        .Put(settings.height);

    bool isSent = SendMessage(run, epoch, {.data = leader});
    std::span rest = image;
    // The payload fills slots from the front; only the last one used ends with a short packet.
    for (std::size_t slot = 0; isSent && !rest.empty(); ++slot) {
        const std::size_t size = slot < slotCount ? slotSize : finalSizes[std::min<std::size_t>(slot - slotCount, 1)];
        const std::size_t part = std::min(size, rest.size());
        if (part != 0) {
            isSent = SendMessage(
                run, epoch, {.data = rest.first(part), .ending = part == size ? Ending::Open : Ending::ZeroLength});
            rest = rest.subspan(part);
        }
    }
    isSent = isSent && SendMessage(run, epoch, {.data = trailer});
    lock.lock();
    isInFrame_ = isTransferring_ = false;
    return isSent;
}

/// Called without the lock. False when the stream has been switched off or the endpoint cleared.
bool Device::SendMessage(std::uint64_t run, std::uint64_t epoch, Message message)
{
    while (!stream_.Send(message, epoch)) {
        Lock lock(mutex_);
        // An aborted acquisition still finishes the image that has begun: never half an image without its trailer.
        const bool isCut = isQuitting_ || isUnplugRequested_ || !isPlugged_ || !IsStreamEnabled();
        if (isCut || stream_.Epoch() != epoch) {
            return false;
        }
        if (stream_.HasTransfer()) {
            continue;
        }
        const bool mayMiss = IsRun(run) && IsThrottled() && !acquisition_.isStopping && HasFramesLeft() &&
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
    Shot shot{0, 0, Settings()};
    const std::uint64_t block = shot.block = BeginFrame();
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
