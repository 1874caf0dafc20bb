#include "foundation/CsAutoLock.h"

namespace Orvi {

CMyCriticalSection::CMyCriticalSection() : locked_(false) { pthread_mutex_init(&mutex_, nullptr); }

CMyCriticalSection::~CMyCriticalSection()
{
    if (locked_)
        pthread_mutex_unlock(&mutex_);
    locked_ = false;
    pthread_mutex_destroy(&mutex_);
}

int CMyCriticalSection::Lock()
{
    const int result = pthread_mutex_lock(&mutex_);
    locked_ = true;
    return result;
}

void CMyCriticalSection::Unlock()
{
    if (!locked_)
        return;
    // Cleared while the mutex is still held: cleared later, it could erase the mark of the next holder.
    locked_ = false;
    pthread_mutex_unlock(&mutex_);
}

bool CMyCriticalSection::Try()
{
    if (pthread_mutex_trylock(&mutex_) != 0)
        return false;
    locked_ = true;
    return true;
}

CCsAutoLock::CCsAutoLock(const CMyCriticalSection &section, bool bLock) : CCsAutoLock(&section, bLock) {}

CCsAutoLock::CCsAutoLock(const CMyCriticalSection *section, bool bLock)
    : section_(const_cast<CMyCriticalSection *>(section)), locked_(false)
{
    if (bLock) {
        section_->Lock();
        locked_ = true;
    } else {
        locked_ = section_->Try();
    }
}

CCsAutoLock::~CCsAutoLock()
{
    if (locked_)
        section_->Unlock();
}

void CCsAutoLock::Release()
{
    if (!locked_)
        return;
    section_->Unlock();
    locked_ = false;
}

} // namespace Orvi
