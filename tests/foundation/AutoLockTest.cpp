// The scoped guard of the lock.

#include "tests/foundation/SectionMemory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <thread>

namespace Orvi::Testing {

namespace {

/// What a derived section was asked.
class RecordingSection : public CMyCriticalSection {
  public:
    int Lock() override
    {
        calls.emplace_back("Lock");
        return lockResult;
    }
    void Unlock() override { calls.emplace_back("Unlock"); }
    bool Try() override
    {
        calls.emplace_back("Try");
        return tryResult;
    }

    int lockResult = 0;
    bool tryResult = true;
    std::vector<std::string> calls;
};

using ::testing::ElementsAre;

} // namespace

TEST(AutoLockTest, TrueLocksForTheBlock)
{
    CMyCriticalSection section;
    {
        const CCsAutoLock lock(section, true);
        EXPECT_TRUE(IsHeld(section));
    }
    EXPECT_FALSE(IsHeld(section));
    {
        const CCsAutoLock lock(&section, true);
        EXPECT_TRUE(IsHeld(section));
    }
    EXPECT_FALSE(IsHeld(section));
}

TEST(AutoLockTest, FalseTakesAFreeSection)
{
    CMyCriticalSection section;
    {
        const CCsAutoLock lock(section, false);
        EXPECT_TRUE(IsHeld(section));
    }
    EXPECT_FALSE(IsHeld(section));
}

TEST(AutoLockTest, FalseNeitherWaitsForAHeldSectionNorReleasesIt)
{
    CMyCriticalSection section;
    section.Lock();
    std::thread other([&] {
        CCsAutoLock lock(section, false);
        EXPECT_TRUE(IsHeld(section));
        lock.Release();
        EXPECT_TRUE(IsHeld(section));
    });
    other.join();
    EXPECT_TRUE(IsHeld(section));
    EXPECT_TRUE(MemoryOf(section).locked);
    section.Unlock();
}

TEST(AutoLockTest, ReleaseUnlocksBeforeTheEndOfTheBlock)
{
    CMyCriticalSection section;
    CCsAutoLock lock(section, true);
    lock.Release();
    EXPECT_FALSE(IsHeld(section));
    section.Lock();
    lock.Release();
    EXPECT_TRUE(IsHeld(section)) << "released what another had taken";
    section.Unlock();
}

TEST(AutoLockTest, ReleaseAndEndUnlockOnce)
{
    RecordingSection section;
    {
        CCsAutoLock lock(section, true);
        lock.Release();
        lock.Release();
    }
    EXPECT_THAT(section.calls, ElementsAre("Lock", "Unlock"));
}

TEST(AutoLockTest, DerivedSectionReplacesTheCalls)
{
    RecordingSection section;
    {
        const CCsAutoLock lock(section, true);
    }
    {
        const CCsAutoLock lock(&section, false);
    }
    EXPECT_THAT(section.calls, ElementsAre("Lock", "Unlock", "Try", "Unlock"));
}

TEST(AutoLockTest, CountsAsLockedWhateverLockAnswered)
{
    RecordingSection section;
    section.lockResult = 35;
    {
        const CCsAutoLock lock(section, true);
    }
    EXPECT_THAT(section.calls, ElementsAre("Lock", "Unlock"));
}

TEST(AutoLockTest, FailedTryIsNeverUnlocked)
{
    RecordingSection section;
    section.tryResult = false;
    {
        CCsAutoLock lock(section, false);
        lock.Release();
    }
    EXPECT_THAT(section.calls, ElementsAre("Try"));
}

TEST(AutoLockTest, GuardsAreDestroyedThroughTheirBase)
{
    RecordingSection section;
    class Derived : public CCsAutoLock {
      public:
        explicit Derived(const CMyCriticalSection &of) : CCsAutoLock(of, true) {}
    };
    const CCsAutoLock *lock = new Derived(section);
    delete lock;
    EXPECT_THAT(section.calls, ElementsAre("Lock", "Unlock"));
}

} // namespace Orvi::Testing
