#include "vcam/Outbox.h"

namespace Orvi::Vcam {

Outbox::Outbox(InEndpoint &endpoint, Source source, OnSent onSent)
    : endpoint_(endpoint), source_(std::move(source)), onSent_(std::move(onSent))
{
}

void Outbox::Pump()
{
    std::unique_lock lock(mutex_);
    isAskedAgain_ = true;
    if (isPumping_) {
        return; // the pumping thread looks once more
    }
    isPumping_ = true;
    while (isAskedAgain_) {
        isAskedAgain_ = false;
        for (;;) {
            lock.unlock();
            if (packet_.empty() && endpoint_.HasTransfer()) {
                epoch_ = endpoint_.Epoch();
                packet_ = source_();
                message_ = {.data = packet_};
            }
            const bool isSent = !packet_.empty() && endpoint_.Send(message_, epoch_);
            const bool isStale = !isSent && epoch_ != endpoint_.Epoch();
            if (isSent && onSent_) {
                onSent_();
            }
            lock.lock();
            if (!isSent && (packet_.empty() || !isStale)) {
                break;
            }
            packet_.clear();
        }
    }
    isPumping_ = false;
}

} // namespace Orvi::Vcam
