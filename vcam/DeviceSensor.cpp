#include "vcam/Device.h"

#include <algorithm>

namespace Orvi::Vcam {

namespace {

/// Images per second when nobody specifies the rate.
constexpr double s_freeRate = 60;

/// What a link carries at best in practice, in bytes per second.
constexpr double Throughput(LinkSpeed speed)
{
    switch (speed) {
    case LinkSpeed::Low:
        return 0.1e6;
    case LinkSpeed::Full:
        return 1e6;
    case LinkSpeed::High:
        return 40e6;
    case LinkSpeed::Super:
        return 400e6;
    case LinkSpeed::SuperPlus:
        break;
    }
    return 850e6;
}

std::chrono::nanoseconds Seconds(double seconds)
{
    return std::chrono::nanoseconds(static_cast<std::int64_t>(1e9 * seconds));
}

} // namespace

std::uint64_t Device::DeviceTime() const
{
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - poweredUp_).count());
}

/// Without a stream nobody takes images: there is no other pace than the frame rate.
bool Device::IsThrottled() const { return registers_.Word(Reg::Unthrottled) == 0 || !IsStreamEnabled(); }

Device::Clock::duration Device::FramePeriod() const
{
    const bool isFree = registers_.Word(Block::FrameRate + 8) == s_modeFree;
    const double rate = isFree ? std::min(s_freeRate, registers_.Word(Block::FrameRate + 0x18) / 1000.0)
                               : registers_.Word(Block::FrameRate + 0x1C) / 1000.0;
    // An image cannot begin before the exposure of the last one has ended, nor before the link has carried it; images
    // in the buffer do not use the link.
    Clock::duration period = std::max<Clock::duration>(std::chrono::microseconds(Exposure()), Seconds(1 / rate));
    if (config_.isLinkLimiting && IsStreamEnabled() && !IsBuffering()) {
        const double payload = registers_.Word(Reg::SiRequiredPayload);
        period = std::max<Clock::duration>(period, Seconds(payload / Throughput(config_.speed)));
    }
    return period;
}

Device::Clock::time_point Device::FrameDue() const
{
    const Clock::duration period = FramePeriod();
    if (registers_.Word(Reg::FrameSynchronization) != 0) {
        // The beat of the clock that all cameras of this computer share.
        return Clock::time_point((lastFrame_.time_since_epoch() / period + 1) * period);
    }
    return isFirstFrame_ ? lastFrame_ : lastFrame_ + period;
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
    lastFrame_ = Clock::now();
    shutterStep_ = 0;
    ClearImageBuffer();
    registers_.SetWord(Reg::AcquisitionActive, 1);
    Raise(EventKind::AcquisitionStart, 0);
}

void Device::EndAcquisition()
{
    if (acquisition_.isActive) {
        acquisition_.isActive = false;
        registers_.SetWord(Reg::AcquisitionActive, 0);
        DropTriggers();
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
    if (std::exchange(hasEvents_, false) || isEventHaltDue_ || isStreamCut_ || isEventCut_) {
        lock.unlock();
        Settle();
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
        if (readOuts_ != 0 && IsStreamEnabled()) {
            ReadOut(lock);
        } else if (acquisition_.isActive && (acquisition_.isStopping || !HasFramesLeft())) {
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
        const bool isDue = IsBuffering() ? HasRoom() : stream_.HasTransfer();
        if (!isDue) {
            wake_.wait(lock);
        }
        return isDue;
    }
    const Clock::time_point due = FrameDue();
    if (Clock::now() >= due) {
        return true;
    }
    wake_.wait_until(lock, due);
    return false;
}

void Device::BeginFrame(Shot &shot)
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
    shutterStep_ = (shutterStep_ + 1) % registers_.Word(Reg::ShutterTerminateAt);
    shot.block = nextBlock_++;
    shot.faults = TakeFrameFaults(shot.block);
}

void Device::TakeFrame(Lock &lock)
{
    const std::uint64_t run = acquisition_.run;
    const bool isThrottled = IsThrottled();
    Shot shot{0, 0, Settings(), PackingNow()};
    BeginFrame(shot);
    if (isUnplugRequested_) {
        return;
    }
    isInFrame_ = isExposing_ = true;
    Raise(EventKind::FrameStart, shot.block);
    Raise(EventKind::ExposureStart, shot.block);
    StartTimers(TimerSource::ExposureStart);
    Announce(lock);
    const bool isExposed = Expose(lock, shot.settings);
    isInFrame_ = isExposing_ = false;
    if (!isExposed) {
        return;
    }
    registers_.SetWord(Reg::LastExposure, shot.settings.exposure);
    AdjustAutomatic();
    shot.time = DeviceTime();
    RaiseAt(EventKind::ExposureEnd, shot.block, shot.time);
    StartTimers(TimerSource::ExposureEnd);
    Announce(lock);
    if (!IsRun(run)) {
        return;
    }
    bool isDelivered = !IsStreamEnabled();
    if (IsBuffering()) {
        isDelivered = HoldFrame(shot);
    } else if (!isDelivered) {
        // Without a transfer the image has nowhere to go. Unthrottled, one was seen before the image was begun.
        isDelivered = (stream_.HasTransfer() || !isThrottled) && SendFrame(lock, shot);
    }
    if (!IsRun(run)) {
        return;
    }
    if (isDelivered) {
        Raise(EventKind::FrameEnd, shot.block);
    } else {
        LoseFrame(shot.block);
    }
    Announce(lock);
}

/// Waits for the end of the exposure; false when the acquisition has ended before.
bool Device::Expose(Lock &lock, PictureSettings &settings)
{
    const std::uint64_t run = acquisition_.run;
    if (IsWidthExposed()) {
        while (IsRun(run) && (!pulse_.end || Clock::now() < *pulse_.end)) {
            if (pulse_.end) {
                wake_.wait_until(lock, *pulse_.end);
            } else {
                wake_.wait(lock);
            }
        }
        if (pulse_.end) {
            const auto width = std::chrono::duration_cast<std::chrono::microseconds>(*pulse_.end - pulse_.start);
            const auto limit = [this](std::uint32_t word) {
                return std::int64_t{registers_.Word(Block::ExposureTime + word)};
            };
            settings.exposure =
                static_cast<std::uint32_t>(std::clamp<std::int64_t>(width.count(), limit(0x14), limit(0x18)));
        }
    } else if (IsThrottled()) {
        const Clock::time_point exposed = Clock::now() + std::chrono::microseconds(settings.exposure);
        while (IsRun(run) && Clock::now() < exposed) {
            wake_.wait_until(lock, exposed);
        }
    }
    return IsRun(run);
}

} // namespace Orvi::Vcam
