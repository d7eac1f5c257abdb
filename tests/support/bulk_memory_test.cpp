// Large arrays: filling on a second thread, and faulting pages in on one.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <thread>
#include <vector>

#include "support/BulkMemory.h"

namespace {

constexpr size_t kMiB = size_t(1) << 20;

// A fresh anonymous mapping, unmapped at the end.
struct Mapping {
    explicit Mapping(size_t bytes_) : bytes(bytes_) {
        void* p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        block = p == MAP_FAILED ? nullptr : static_cast<char*>(p);
    }
    ~Mapping() {
        if (block != nullptr)
            munmap(block, bytes);
    }
    // Pages of the mapping that stand in memory.
    size_t residentPages() const {
        const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        std::vector<unsigned char> flags((bytes + page - 1) / page);
        if (mincore(block, bytes, flags.data()) != 0)
            return 0;
        size_t resident = 0;
        for (unsigned char f : flags)
            resident += f & 1;
        return resident;
    }
    size_t pages() const { return bytes / static_cast<size_t>(sysconf(_SC_PAGESIZE)); }

    char* block;
    size_t bytes;
};

// Waits up to ten seconds for every page of the mappings to stand in memory.
bool allResidentSoon(const std::vector<const Mapping*>& mappings) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    for (;;) {
        bool all = true;
        for (const Mapping* m : mappings)
            all = all && m->residentPages() == m->pages();
        if (all)
            return true;
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

bool kernelCanPopulate() {
    Mapping probe(4096);
    // MADV_POPULATE_WRITE is 23 from Linux 5.14 on.
    return probe.block != nullptr && madvise(probe.block, 4096, 23) == 0;
}

TEST(BulkMemoryThreadTest, FaultInBringsEveryPageOfFreshBlocksInWithoutWriting) {
    if (!kernelCanPopulate())
        GTEST_SKIP() << "this kernel cannot fault pages in by madvise";
    Mapping a(9 * kMiB + 4096);
    Mapping b(5 * kMiB);
    ASSERT_NE(a.block, nullptr);
    ASSERT_NE(b.block, nullptr);
    ASSERT_EQ(a.residentPages(), 0u);
    ASSERT_EQ(b.residentPages(), 0u);
    {
        BulkFaultIn faultIn(BulkOrder::Together, {{a.block, a.bytes}, {b.block, b.bytes}});
        EXPECT_TRUE(allResidentSoon({&a, &b}));
    }
    // Faulted in, never written: the pages read as zeros.
    for (size_t i = 0; i < a.bytes; i += 4096)
        ASSERT_EQ(a.block[i], 0) << "byte " << i;
    {
        Mapping c(6 * kMiB);
        BulkFaultIn faultIn(BulkOrder::OneAfterAnother, {{c.block, c.bytes}});
        EXPECT_TRUE(allResidentSoon({&c}));
    }
}

TEST(BulkMemoryThreadTest, FaultInLeavesWhatTheFillerWritesMeanwhile) {
    // The filler writes from the start while the other thread faults from
    // the end: every number the filler wrote is still there afterwards.
    const size_t count = 12 * kMiB / sizeof(int32_t);
    int32_t* first = static_cast<int32_t*>(std::calloc(count, sizeof(int32_t)));
    int32_t* second = static_cast<int32_t*>(std::calloc(count / 2, sizeof(int32_t)));
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    {
        BulkFaultIn faultIn(BulkOrder::Together,
                            {{first, count * sizeof(int32_t)}, {second, count / 2 * sizeof(int32_t)}});
        for (size_t i = 0; i < count; ++i) {
            first[i] = static_cast<int32_t>(i * 7 + 1);
            if (i % 2 == 0)
                second[i / 2] = static_cast<int32_t>(i);
        }
    }
    for (size_t i = 0; i < count; ++i)
        ASSERT_EQ(first[i], static_cast<int32_t>(i * 7 + 1)) << "at " << i;
    for (size_t i = 0; i < count / 2; ++i)
        ASSERT_EQ(second[i], static_cast<int32_t>(2 * i)) << "at " << i;
    std::free(first);
    std::free(second);
}

TEST(BulkMemoryThreadTest, FaultInStopsWhenFinishedEarlyAndTakesSmallAndNullBlocks) {
    Mapping big(64 * kMiB);
    ASSERT_NE(big.block, nullptr);
    char small[64] = {};
    BulkFaultIn faultIn(BulkOrder::OneAfterAnother,
                        {{nullptr, 64 * kMiB}, {small, sizeof small}, {big.block, big.bytes}});
    faultIn.finish();
    faultIn.finish();  // a second call does nothing
    // Stopped at a step: the block is usable and unchanged.
    big.block[0] = 1;
    big.block[big.bytes - 1] = 2;
    EXPECT_EQ(big.block[0], 1);
    EXPECT_EQ(big.block[big.bytes - 1], 2);
    EXPECT_EQ(small[0], 0);
}

TEST(BulkMemoryThreadTest, FillSetsEveryNumberOfLargeAndSmallBlocks) {
    for (size_t count : {size_t(0), size_t(1), size_t(1000), kBulkBlockBytes / sizeof(int32_t) - 1,
                         kBulkBlockBytes / sizeof(int32_t), 3 * kBulkBlockBytes / sizeof(int32_t) + 5}) {
        std::vector<int32_t> block(count + 2, -5);
        {
            BulkFill fill(block.data() + 1, count, 0x7ffffffe);
            fill.wait();
            for (size_t i = 0; i < count; ++i)
                ASSERT_EQ(block[i + 1], 0x7ffffffe) << "count " << count << ", at " << i;
            fill.wait();  // a second wait returns at once
        }
        // Nothing outside the block.
        EXPECT_EQ(block.front(), -5);
        EXPECT_EQ(block.back(), -5);
    }
}

TEST(BulkMemoryThreadTest, FillIsDoneWhenTheObjectGoes) {
    const size_t count = 8 * kMiB / sizeof(int32_t);
    std::vector<int32_t> block(count, 0);
    { BulkFill fill(block.data(), count, 42); }
    for (size_t i = 0; i < count; ++i)
        ASSERT_EQ(block[i], 42) << "at " << i;
}

TEST(BulkMemoryTest, HugePageAdviceLeavesTheBlockAsItWas) {
    const size_t bytes = 8 * kMiB + 100;
    char* block = static_cast<char*>(std::malloc(bytes));
    ASSERT_NE(block, nullptr);
    for (size_t i = 0; i < bytes; ++i)
        block[i] = static_cast<char>(i % 251);
    bulkAdviseHugePages(block, bytes);
    bulkAdviseHugePages(block, 100);  // too small: left alone
    bulkAdviseHugePages(nullptr, bytes);
    for (size_t i = 0; i < bytes; ++i)
        ASSERT_EQ(block[i], static_cast<char>(i % 251)) << "at " << i;
    std::free(block);
}

}  // namespace
