// A helper thread: runs its body once, joins, and starts off its caller's
// processor with every processor of the process back once it runs.
#include <gtest/gtest.h>
#include <sched.h>

#include <atomic>
#include <memory>

#include "support/HelperThread.h"

namespace {

// The processors the calling thread may run on.
cpu_set_t ownProcessors() {
    cpu_set_t set;
    CPU_ZERO(&set);
    EXPECT_EQ(sched_getaffinity(0, sizeof set, &set), 0);
    return set;
}

// Sets the calling thread's processors for the life of the object.
class Processors {
  public:
    explicit Processors(const cpu_set_t& set) : saved_(ownProcessors()) {
        ok_ = sched_setaffinity(0, sizeof set, &set) == 0;
    }
    ~Processors() { sched_setaffinity(0, sizeof saved_, &saved_); }
    bool ok() const { return ok_; }

  private:
    cpu_set_t saved_;
    bool ok_ = false;
};

TEST(HelperThreadTest, RunsItsBodyOnceAndJoins) {
    HelperThread helper;
    EXPECT_FALSE(helper.joinable());
    int runs = 0;
    ASSERT_TRUE(helper.start([&runs] { ++runs; }));
    EXPECT_TRUE(helper.joinable());
    helper.join();
    EXPECT_FALSE(helper.joinable());
    EXPECT_EQ(runs, 1);
    helper.join();  // a second join does nothing
    EXPECT_EQ(runs, 1);
    // Joined, it can start again; the body may own what it holds.
    auto value = std::make_unique<int>(7);
    int seen = 0;
    ASSERT_TRUE(helper.start([&seen, held = std::move(value)] { seen = *held; }));
    helper.join();
    EXPECT_EQ(seen, 7);
}

TEST(HelperThreadTest, ASecondStartWhileOneRunsIsRefused) {
    std::atomic<bool> release{false};
    std::atomic<int> runs{0};
    HelperThread helper;
    ASSERT_TRUE(helper.start([&] {
        while (!release.load())
            sched_yield();
        ++runs;
    }));
    EXPECT_FALSE(helper.start([&] { runs += 10; }));
    release = true;
    helper.join();
    EXPECT_EQ(runs.load(), 1);
}

TEST(HelperThreadTest, GoingOutOfScopeWaitsForTheBody) {
    std::atomic<int> done{0};
    {
        HelperThread helper;
        ASSERT_TRUE(helper.start([&done] {
            for (int i = 0; i < 1000; ++i)
                sched_yield();
            done = 1;
        }));
    }
    EXPECT_EQ(done.load(), 1);
}

TEST(HelperThreadTest, StartsOffTheCallersProcessorAndThenMayRunOnAny) {
    const cpu_set_t all = ownProcessors();
    if (CPU_COUNT(&all) < 2)
        GTEST_SKIP() << "the process may use one processor only";
    // Whichever processor the caller is on, the helper first runs elsewhere.
    for (int round = 0; round < 20; ++round) {
        SCOPED_TRACE(round);
        cpu_set_t inside;
        CPU_ZERO(&inside);
        HelperThread helper;
        ASSERT_TRUE(helper.start([&inside] { inside = ownProcessors(); }));
        helper.join();
        ASSERT_GE(helper.callerProcessor(), 0);
        ASSERT_GE(helper.firstProcessor(), 0);
        EXPECT_NE(helper.firstProcessor(), helper.callerProcessor());
        EXPECT_TRUE(CPU_ISSET(helper.firstProcessor(), &all));
        EXPECT_TRUE(CPU_EQUAL(&inside, &all));
    }
}

TEST(HelperThreadTest, WithOneProcessorTheHelperRunsThere) {
    const cpu_set_t all = ownProcessors();
    int only = -1;
    for (int cpu = 0; cpu < CPU_SETSIZE && only < 0; ++cpu) {
        if (CPU_ISSET(cpu, &all))
            only = cpu;
    }
    ASSERT_GE(only, 0);
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(only, &one);
    Processors pinned(one);
    ASSERT_TRUE(pinned.ok());
    cpu_set_t inside;
    CPU_ZERO(&inside);
    HelperThread helper;
    ASSERT_TRUE(helper.start([&inside] { inside = ownProcessors(); }));
    helper.join();
    EXPECT_EQ(helper.callerProcessor(), only);
    EXPECT_EQ(helper.firstProcessor(), only);
    EXPECT_TRUE(CPU_EQUAL(&inside, &one));
}

}  // namespace
