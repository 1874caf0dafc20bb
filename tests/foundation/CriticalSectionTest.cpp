// The lock: the mutex and its mark.

#include "tests/foundation/SectionMemory.h"
#include "tests/support/SystemCalls.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <future>
#include <new>
#include <thread>

namespace Orvi::Testing {

namespace {

/// Destroys a section and answers what the system said to the destruction of its mutex.
int ResultOfDestroying(void (*prepare)(CMyCriticalSection &))
{
    static const void *watched;
    static int answer;
    const ScopedSystemCalls calls;
    answer = -1;
    alignas(CMyCriticalSection) unsigned char memory[sizeof(CMyCriticalSection)];
    auto *section = new (memory) CMyCriticalSection;
    watched = &MemoryOf(*section).mutex;
    calls->mutexDestroyed = [](pthread_mutex_t *mutex, int result) {
        if (mutex == watched)
            answer = result;
    };
    prepare(*section);
    section->~CMyCriticalSection();
    return answer;
}

} // namespace

TEST(CriticalSectionTest, StartsFreeAndUnmarked)
{
    CMyCriticalSection section;
    EXPECT_FALSE(MemoryOf(section).locked);
    EXPECT_FALSE(IsHeld(section));
}

TEST(CriticalSectionTest, LockAnswersTheMutexAndMarks)
{
    CMyCriticalSection section;
    EXPECT_EQ(section.Lock(), 0);
    EXPECT_TRUE(MemoryOf(section).locked);
    EXPECT_TRUE(IsHeld(section));
    section.Unlock();
    EXPECT_FALSE(MemoryOf(section).locked);
    EXPECT_FALSE(IsHeld(section));
}

TEST(CriticalSectionTest, LockMarksEvenWhenTheMutexRefuses)
{
    CMyCriticalSection section;
    pthread_mutex_t &mutex = MemoryOf(section).mutex;
    pthread_mutex_destroy(&mutex);
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);

    EXPECT_EQ(section.Lock(), 0);
    MemoryOf(section).locked = false;
    EXPECT_EQ(section.Lock(), EDEADLK);
    EXPECT_TRUE(MemoryOf(section).locked);
    section.Unlock();
}

TEST(CriticalSectionTest, TryTakesAFreeSectionOnly)
{
    CMyCriticalSection section;
    EXPECT_TRUE(section.Try());
    EXPECT_TRUE(MemoryOf(section).locked);
    EXPECT_FALSE(section.Try()) << "not recursive";
    EXPECT_TRUE(MemoryOf(section).locked) << "a failed try must leave the mark";
    section.Unlock();
    EXPECT_TRUE(section.Try());
    section.Unlock();
}

TEST(CriticalSectionTest, FailedTryDoesNotMark)
{
    CMyCriticalSection section;
    pthread_mutex_lock(&MemoryOf(section).mutex);
    EXPECT_FALSE(section.Try());
    EXPECT_FALSE(MemoryOf(section).locked);
    pthread_mutex_unlock(&MemoryOf(section).mutex);
}

TEST(CriticalSectionTest, UnlockWithoutMarkLeavesTheMutexAlone)
{
    CMyCriticalSection section;
    section.Unlock();
    EXPECT_FALSE(IsHeld(section));
    pthread_mutex_lock(&MemoryOf(section).mutex);
    section.Unlock();
    EXPECT_TRUE(IsHeld(section));
    pthread_mutex_unlock(&MemoryOf(section).mutex);
}

TEST(CriticalSectionTest, UnlocksItselfBeforeItsMutexIsDestroyed)
{
    EXPECT_EQ(ResultOfDestroying([](CMyCriticalSection &section) { section.Lock(); }), 0);
    EXPECT_EQ(ResultOfDestroying([](CMyCriticalSection &section) { section.Try(); }), 0);
}

TEST(CriticalSectionTest, DestroysAFreeMutexAsItIs)
{
    EXPECT_EQ(ResultOfDestroying([](CMyCriticalSection &) {}), 0);
    EXPECT_EQ(ResultOfDestroying([](CMyCriticalSection &section) {
                  section.Lock();
                  section.Unlock();
              }),
              0);
}

TEST(CriticalSectionTest, KeepsThreadsApart)
{
    CMyCriticalSection section;
    unsigned count = 0;
    const auto work = [&] {
        for (int i = 0; i < 20000; ++i) {
            if (i % 2 == 0)
                section.Lock();
            else
                while (!section.Try())
                    std::this_thread::yield();
            ++count;
            section.Unlock();
        }
    };
    std::thread first(work), second(work);
    first.join();
    second.join();
    EXPECT_EQ(count, 40000u);
}

TEST(CriticalSectionTest, LockWaitsForTheHolder)
{
    CMyCriticalSection section;
    section.Lock();
    bool released = false;
    auto waiter = std::async(std::launch::async, [&] {
        section.Lock();
        const bool saw = released;
        section.Unlock();
        return saw;
    });
    released = true;
    section.Unlock();
    EXPECT_TRUE(waiter.get());
}

} // namespace Orvi::Testing
