#include "vcam/Device.h"

#include <algorithm>

namespace Orvi::Vcam {

PictureSettings Device::Settings() const
{
    const auto value = [this](std::uint32_t block) { return registers_.Word(block + 0x1C); };
    PictureSettings settings;
    settings.sensorWidth = config_.sensorWidth;
    settings.sensorHeight = config_.sensorHeight;
    settings.width = registers_.Word(ImageSizeWord::Width);
    settings.height = registers_.Word(ImageSizeWord::Height);
    settings.offsetX = registers_.Word(ImageSizeWord::OffsetX);
    settings.offsetY = registers_.Word(ImageSizeWord::OffsetY);
    settings.pixelFormat = registers_.Word(Reg::PixelFormat);
    settings.exposure = value(Block::ExposureTime);
    settings.gain = value(Block::Gain);
    settings.blackLevel = value(Block::BlackLevel);
    settings.testPattern = value(Block::TestPattern);
    settings.binningX = value(Block::BinningX);
    settings.binningY = value(Block::BinningY);
    settings.decimationX = value(Block::DecimationX);
    settings.decimationY = value(Block::DecimationY);
    settings.reverseX = registers_.Word(Block::ReverseX + 0x10) != 0;
    settings.reverseY = registers_.Word(Block::ReverseY + 0x10) != 0;
    settings.gamma = value(Block::Gamma);
    settings.sharpness = value(Block::Sharpness);
    settings.hue = static_cast<std::int32_t>(value(Block::Hue));
    settings.saturation = value(Block::Saturation);
    settings.redRatio = value(Block::WhiteBalance);
    settings.blueRatio = registers_.Word(Reg::BlueRatio);
    return settings;
}

std::uint64_t Device::DeviceTime() const
{
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - poweredUp_).count());
}

bool Device::IsThrottled() const { return registers_.Word(Reg::Unthrottled) == 0; }

Device::Clock::duration Device::FramePeriod() const
{
    const double rate = registers_.Word(Block::FrameRate + 0x1C) / 1000.0;
    const std::chrono::microseconds exposure(registers_.Word(Block::ExposureTime + 0x1C));
    // An image cannot begin before the exposure of the last one has ended.
    return std::max<Clock::duration>(exposure, std::chrono::nanoseconds(static_cast<std::int64_t>(1e9 / rate)));
}

void Device::StartAcquisition(std::uint32_t mode)
{
    if (acquisition_.isActive) {
        return;
    }
    acquisition_.isActive = true;
    acquisition_.isStopping = false;
    acquisition_.isLimited = mode != AcquisitionCommand::Continuous;
    acquisition_.framesLeft = mode == AcquisitionCommand::MultiFrame ? registers_.Word(Block::FrameCount + 0x1C) : 1;
    ++acquisition_.run;
    isFirstFrame_ = true;
    registers_.SetWord(Reg::AcquisitionActive, 1);
    UpdateLines();
    Raise(EventKind::AcquisitionStart, 0);
}

void Device::EndAcquisition()
{
    if (acquisition_.isActive) {
        acquisition_.isActive = false;
        registers_.SetWord(Reg::AcquisitionActive, 0);
        triggers_.clear();
        burstLeft_ = 0;
        UpdateLines();
        Raise(EventKind::AcquisitionEnd, 0);
    }
}

void Device::Raise(EventKind kind, std::uint64_t block) { RaiseAt(kind, block, DeviceTime()); }

void Device::RaiseAt(EventKind kind, std::uint64_t block, std::uint64_t time)
{
    if ((registers_.Word(Reg::EiControl) & 1) != 0 && notifications_[static_cast<std::size_t>(kind)]) {
        events_.Push({kind, time, block});
        registers_.SetWord(Reg::EventLostCount, events_.Lost());
        hasEvents_ = true;
    }
}

void Device::Announce(Lock &lock)
{
    if (std::exchange(hasEvents_, false)) {
        lock.unlock();
        eventOutbox_.Pump();
        lock.lock();
    }
}

void Device::RunSensor()
{
    Lock lock(mutex_);
    while (!isQuitting_) {
        if (FollowPlug(lock)) {
            continue;
        }
        if (acquisition_.isActive && (acquisition_.isStopping || !HasFramesLeft())) {
            EndAcquisition();
            Announce(lock);
        } else if (IsFrameDue(lock)) {
            TakeFrame(lock);
        }
    }
}

bool Device::FollowPlug(Lock &lock)
{
    if (isUnplugRequested_) {
        isUnplugRequested_ = false;
        lock.unlock();
        Unplug();
        lock.lock();
        return true;
    }
    if (!isPlugged_ && replugAt_ && Clock::now() >= *replugAt_) {
        replugAt_.reset();
        lock.unlock();
        Plug();
        lock.lock();
        return true;
    }
    return false;
}

/// Answers at once when a frame is due, else after a while in which anything may have changed.
bool Device::IsFrameDue(Lock &lock)
{
    if (!acquisition_.isActive) {
        if (!isPlugged_ && replugAt_) {
            wake_.wait_until(lock, *replugAt_);
        } else {
            wake_.wait(lock);
        }
        return false;
    }
    if (IsTriggered() && burstLeft_ == 0 && !IsTriggerDue(lock)) {
        return false;
    }
    if (!IsThrottled()) {
        const bool isDue = stream_.HasTransfer() || !IsStreamEnabled();
        if (!isDue) {
            wake_.wait(lock);
        }
        return isDue;
    }
    const Clock::time_point due = lastFrame_ + FramePeriod();
    if (isFirstFrame_ || Clock::now() >= due) {
        return true;
    }
    wake_.wait_until(lock, due);
    return false;
}

bool Device::IsTriggerDue(Lock &lock)
{
    if (triggers_.empty()) {
        wake_.wait(lock);
        return false;
    }
    if (Clock::now() < triggers_.front()) {
        wake_.wait_until(lock, triggers_.front());
        return false;
    }
    triggers_.pop_front();
    const bool isBurst = registers_.Word(Block::TriggerSequence + 0x1C) == s_burstSequence;
    burstLeft_ = isBurst ? registers_.Word(Block::TriggerParameter + 0x1C) : 1;
    return true;
}

std::uint64_t Device::BeginFrame()
{
    const Clock::time_point now = Clock::now();
    const Clock::duration period = FramePeriod();
    // Keeps the rate exact, and begins anew after a standstill.
    const bool isInTime = !isFirstFrame_ && now - lastFrame_ < 2 * period;
    lastFrame_ = isInTime && IsThrottled() ? lastFrame_ + period : now;
    isFirstFrame_ = false;
    if (acquisition_.isLimited) {
        --acquisition_.framesLeft;
    }
    burstLeft_ -= burstLeft_ != 0 ? 1 : 0;
    return nextBlock_++;
}

void Device::TakeFrame(Lock &lock)
{
    const std::uint64_t run = acquisition_.run;
    const bool isThrottled = IsThrottled();
    const PictureSettings settings = Settings();
    const std::uint64_t block = BeginFrame();
    isInFrame_ = isExposing_ = true;
    UpdateLines();
    Raise(EventKind::FrameStart, block);
    Raise(EventKind::ExposureStart, block);
    Announce(lock);
    if (isThrottled) {
        const Clock::time_point exposed = Clock::now() + std::chrono::microseconds(settings.exposure);
        while (IsRun(run) && Clock::now() < exposed) {
            wake_.wait_until(lock, exposed);
        }
    }
    isInFrame_ = isExposing_ = false;
    UpdateLines();
    if (!IsRun(run)) {
        return;
    }
    AdjustAutomatic();
    const std::uint64_t time = DeviceTime();
    RaiseAt(EventKind::ExposureEnd, block, time);
    Announce(lock);
    bool isDelivered = IsRun(run) && !IsStreamEnabled();
    if (!isDelivered) {
        // Without a transfer the image has nowhere to go. Unthrottled, one was seen before the image was begun.
        isDelivered = (stream_.HasTransfer() || !isThrottled) && SendFrame(lock, block, time, settings);
    }
    if (!IsRun(run)) {
        return;
    }
    if (isDelivered) {
        Raise(EventKind::FrameEnd, block);
    } else {
        LoseFrame(block);
    }
    Announce(lock);
}

void Device::LoseFrame(std::uint64_t block)
{
    ++dropped_;
    registers_.SetWord(Reg::DroppedBlocks, static_cast<std::uint32_t>(dropped_));
    Raise(EventKind::FrameLost, block);
}

bool Device::SendFrame(Lock &lock, std::uint64_t block, std::uint64_t time, const PictureSettings &settings)
{
    const std::uint64_t run = acquisition_.run;
    const std::uint64_t epoch = stream_.Epoch();
    const auto word = [this](std::uint64_t address) { return std::size_t{registers_.Word(address)}; };
    const std::size_t slotSize = word(Reg::SiTransferSize), slotCount = word(Reg::SiTransferCount);
    const std::size_t finalSizes[] = {word(Reg::SiFinalTransfer1), word(Reg::SiFinalTransfer2)};
    if (!IsRun(run) || !IsStreamEnabled()) {
        return false;
    }
    isInFrame_ = isTransferring_ = true;
    UpdateLines();
    lock.unlock();
    const std::span image = painter_.Draw(settings, block);
    const std::uint16_t imageType = 1;

    std::array<std::byte, 52> leader{};
    FieldWriter(leader)
        .Put(s_leaderPrefix)
        .Put(std::uint16_t{0})
        .Put(std::uint16_t{leader.size()})
        .Put(block)
        .Put(std::uint16_t{0})
        .Put(imageType)
        .Put(time)
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
        .Put(block)
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
    UpdateLines();
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
        const std::uint64_t missed = BeginFrame();
        for (const EventKind kind : {EventKind::FrameStart, EventKind::ExposureStart, EventKind::ExposureEnd}) {
            Raise(kind, missed);
        }
        LoseFrame(missed);
        Announce(lock);
    }
    return true;
}

} // namespace Orvi::Vcam
