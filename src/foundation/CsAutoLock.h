#pragma once
// The library's lock and its scoped guard.

#include "foundation/PublicApi.h"

#include <pthread.h>

namespace Orvi {

/// A mutex, not recursive, that remembers whether it is held. The mark is only a hint for Unlock() and the destructor:
/// it is not atomic, and nobody may learn from it whether another thread holds the lock.
class ORVI_EXPORT CMyCriticalSection {
  public:
    CMyCriticalSection();
    CMyCriticalSection(const CMyCriticalSection &) = delete;
    CMyCriticalSection &operator=(const CMyCriticalSection &) = delete;
    /// Unlocks first when it is still marked as held.
    virtual ~CMyCriticalSection();

    /// Returns what the mutex answered.
    virtual int Lock();
    /// Does nothing when not marked as held.
    virtual void Unlock();
    /// Locks if that is possible at once; true when it did.
    virtual bool Try();

  private:
    pthread_mutex_t mutex_;
    bool locked_;
};

/// Holds a critical section for a block.
class ORVI_EXPORT CCsAutoLock {
  public:
    /// @param bLock true waits for the section; false takes it only if it is free now
    CCsAutoLock(const CMyCriticalSection &section, bool bLock);
    CCsAutoLock(const CMyCriticalSection *section, bool bLock);
    CCsAutoLock(const CCsAutoLock &) = delete;
    CCsAutoLock &operator=(const CCsAutoLock &) = delete;
    virtual ~CCsAutoLock();

    /// Unlocks before the end of the block; may be called more than once.
    void Release();

  private:
    CMyCriticalSection *section_;
    bool locked_;
};

} // namespace Orvi
