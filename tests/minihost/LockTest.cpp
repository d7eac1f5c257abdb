// The add-on lock and the host's mutexes, with threads.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace {

TEST(AddOnLock, IsRecursiveAcrossAllFourCalls) {
    EXPECT_FALSE(ZorUtilLockIsOn());
    ZorUtilLockOn();
    ZorUtilLockStart(nullptr);
    ZorUtilLockStart(nullptr);
    EXPECT_EQ(minihost::addOnLockDepth(), 3);
    EXPECT_TRUE(ZorUtilLockIsOn());
    ZorUtilLockFinish(nullptr);
    ZorUtilLockFinish(nullptr);
    EXPECT_TRUE(ZorUtilLockIsOn());
    ZorUtilLockOff();
    EXPECT_FALSE(ZorUtilLockIsOn());
}

TEST(AddOnLock, IsOneLockForAllThreads) {
    // Each thread increments a plain counter in two halves under the lock; a
    // second holder at the same time would be caught by the check in between.
    int counter = 0;
    std::atomic<int> holders{0};
    std::atomic<bool> overlapSeen{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 2000; ++i) {
                ZorUtilLockStart(nullptr);
                ZorUtilLockOn();  // nested, as a load callback asking the host for more
                if (holders.fetch_add(1) != 0)
                    overlapSeen = true;
                int seen = counter;
                counter = seen + 1;
                holders.fetch_sub(1);
                ZorUtilLockOff();
                ZorUtilLockFinish(nullptr);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_FALSE(overlapSeen.load());
    EXPECT_EQ(counter, 8000);
}

TEST(AddOnLock, ABlockedThreadWaitsUntilTheHolderLetsGo) {
    std::atomic<bool> otherGotIt{false};
    minihost::lockAddOn();
    std::thread other([&] {
        ZorUtilLockStart(nullptr);
        otherGotIt = true;
        EXPECT_TRUE(ZorUtilLockIsOn());
        ZorUtilLockFinish(nullptr);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(otherGotIt.load());
    minihost::unlockAddOn();
    other.join();
    EXPECT_TRUE(otherGotIt.load());
}

TEST(AddOnLockDeathTest, FinishWithoutStartAborts) {
    EXPECT_DEATH(ZorUtilLockFinish(nullptr),
                 "minihost: ZorUtilLockFinish called by a thread that does not hold the add-on lock");
}

TEST(HostMutex, ExcludesOtherThreads) {
    ZorMutex mutex = ZorUtilThreadMutexAlloc();
    ASSERT_NE(mutex, nullptr);
    int64_t total = 0;
    std::atomic<int> inside{0};
    std::atomic<bool> overlapSeen{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 5000; ++i) {
                ZorUtilThreadMutexLock(mutex);
                if (inside.fetch_add(1) != 0)
                    overlapSeen = true;
                total += 1;
                inside.fetch_sub(1);
                ZorUtilThreadMutexUnlock(mutex);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_FALSE(overlapSeen.load());
    EXPECT_EQ(total, 20000);
    ZorUtilThreadMutexDealloc(&mutex);
    EXPECT_EQ(mutex, nullptr);
}

TEST(HostMutex, IsIndependentOfTheAddOnLock) {
    ZorMutex mutex = ZorUtilThreadMutexAlloc();
    ZorUtilThreadMutexLock(mutex);
    std::atomic<bool> done{false};
    std::thread other([&] {
        ZorUtilLockStart(nullptr);  // the add-on lock is free though the mutex is held
        ZorUtilLockFinish(nullptr);
        done = true;
    });
    other.join();
    EXPECT_TRUE(done.load());
    ZorUtilThreadMutexUnlock(mutex);
    ZorUtilThreadMutexDealloc(&mutex);
}

}  // namespace
