#include "vcam/Device.h"

namespace Orvi::Vcam {

void Device::Unplug()
{
    {
        const std::lock_guard plug(plugMutex_);
        {
            const std::lock_guard lock(mutex_);
            if (!isPlugged_) {
                return;
            }
            isPlugged_ = false;
            isUnplugRequested_ = false;
            acquisition_.isActive = false;
            acks_.clear();
            events_.Clear();
            const std::uint32_t delay = registers_.Word(Reg::ReplugDelay);
            replugAt_.reset();
            if (delay != 0) {
                replugAt_ = Clock::now() + std::chrono::milliseconds(delay);
            }
        }
        for (InEndpoint *endpoint : {&control_, &event_, &stream_}) {
            endpoint->SetGone(true);
        }
    }
    wake_.notify_all();
    TellObserver();
}

void Device::Plug()
{
    const std::lock_guard plug(plugMutex_);
    {
        const std::lock_guard command(controlMutex_);
        {
            const std::lock_guard lock(mutex_);
            if (isPlugged_) {
                return;
            }
            PowerUp();
        }
        if (front_) {
            front_->PowerUp();
        }
        SetPresets();
        const std::lock_guard lock(mutex_);
        for (InEndpoint *endpoint : {&control_, &event_, &stream_}) {
            endpoint->SetGone(false);
        }
        isPlugged_ = true;
    }
    wake_.notify_all();
}

bool Device::IsPlugged() const
{
    const std::lock_guard lock(mutex_);
    return isPlugged_;
}

void Device::SetGoneObserver(GoneObserver *observer)
{
    Lock lock(observerMutex_);
    observer_ = observer;
    // After this the old one may be destroyed; a call that is under way ends first.
    observerIdle_.wait(
        lock, [this] { return observerBusy_ == std::thread::id() || observerBusy_ == std::this_thread::get_id(); });
}

void Device::TellObserver()
{
    Lock lock(observerMutex_);
    GoneObserver *observer = std::exchange(observer_, nullptr);
    if (observer == nullptr) {
        return;
    }
    observerBusy_ = std::this_thread::get_id();
    lock.unlock();
    observer->OnGone();
    lock.lock();
    observerBusy_ = {};
    observerIdle_.notify_all();
}

} // namespace Orvi::Vcam
