#include "u3v/core/Signal.h"

#include "foundation/SignalRecord.h"

namespace Orvi::U3v {

void SetSignal(void *signal) noexcept
{
    auto *record = static_cast<SignalRecord *>(signal);
    if (record == nullptr || record->magic != SignalRecord::validMagic)
        return;
    pthread_mutex_lock(&record->mutex);
    record->signalled = 1;
    pthread_cond_signal(&record->cond);
    pthread_mutex_unlock(&record->mutex);
}

} // namespace Orvi::U3v
