#pragma once
// The inside of a critical section, as it lies in memory: virtual table, mutex, mark.

#include "foundation/CsAutoLock.h"

namespace Orvi::Testing {

struct SectionMemory {
    void *virtualTable;
    pthread_mutex_t mutex;
    bool locked;
};
static_assert(sizeof(SectionMemory) == sizeof(CMyCriticalSection));

inline SectionMemory &MemoryOf(CMyCriticalSection &section) { return reinterpret_cast<SectionMemory &>(section); }

/// Whether somebody holds the mutex itself, whatever the mark says.
inline bool IsHeld(CMyCriticalSection &section)
{
    pthread_mutex_t &mutex = MemoryOf(section).mutex;
    if (pthread_mutex_trylock(&mutex) != 0)
        return true;
    pthread_mutex_unlock(&mutex);
    return false;
}

} // namespace Orvi::Testing
