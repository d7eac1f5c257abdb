#include "support/BulkMemory.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>

// Faults pages in for writing without writing them (Linux 5.14 and later);
// older kernels answer EINVAL.
#ifndef MADV_POPULATE_WRITE
#define MADV_POPULATE_WRITE 23
#endif

namespace {

constexpr uintptr_t kPage = 4096;
constexpr uintptr_t kStep = uintptr_t(2) << 20;  // one huge page

// The whole pages inside a block: [*start, *end). False when there are none.
bool pagesInside(const BulkRange& range, uintptr_t* start, uintptr_t* end) {
    const uintptr_t first = reinterpret_cast<uintptr_t>(range.block);
    *start = (first + kPage - 1) & ~(kPage - 1);
    *end = (first + range.bytes) & ~(kPage - 1);
    return range.block != nullptr && *end > *start;
}

}  // namespace

void bulkAdviseHugePages(void* block, size_t bytes) {
    uintptr_t start;
    uintptr_t end;
    if (bytes < kBulkBlockBytes || !pagesInside(BulkRange{block, bytes}, &start, &end)) {
        return;
    }
    (void)madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
}

BulkFaultIn::BulkFaultIn(BulkOrder order, std::initializer_list<BulkRange> ranges) : order_(order) {
    start(ranges.begin(), ranges.size());
}

BulkFaultIn::BulkFaultIn(BulkOrder order, const std::vector<BulkRange>& ranges) : order_(order) {
    start(ranges.data(), ranges.size());
}

void BulkFaultIn::start(const BulkRange* first, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        uintptr_t start;
        uintptr_t end;
        if (first[i].bytes >= kBulkBlockBytes && pagesInside(first[i], &start, &end)) {
            ranges_.push_back(first[i]);
        }
    }
    if (ranges_.empty()) {
        return;
    }
    // Without a thread the filler faults the pages itself.
    (void)thread_.start([this] { run(); });
}

BulkFaultIn::~BulkFaultIn() {
    finish();
}

void BulkFaultIn::finish() {
    if (thread_.joinable()) {
        stop_.store(true, std::memory_order_relaxed);
        thread_.join();
    }
}

void BulkFaultIn::run() {
    // What is left of each block: [start, top).
    const size_t n = ranges_.size();
    std::vector<uintptr_t> starts(n), tops(n), sizes(n);
    for (size_t i = 0; i < n; ++i) {
        uintptr_t end;
        pagesInside(ranges_[i], &starts[i], &end);
        tops[i] = end;
        sizes[i] = end - starts[i];
    }
    for (;;) {
        if (stop_.load(std::memory_order_relaxed)) {
            return;
        }
        // The next block: the last one with anything left, or the one with
        // the largest share left.
        size_t pick = n;
        for (size_t i = 0; i < n; ++i) {
            if (tops[i] == starts[i]) {
                continue;
            }
            if (order_ == BulkOrder::OneAfterAnother) {
                pick = i;
            } else if (pick == n || static_cast<double>(tops[i] - starts[i]) / static_cast<double>(sizes[i]) >
                                        static_cast<double>(tops[pick] - starts[pick]) /
                                            static_cast<double>(sizes[pick])) {
                pick = i;
            }
        }
        if (pick == n) {
            return;
        }
        // Steps end on huge-page boundaries, so an advised block gets whole huge pages.
        uintptr_t bottom = (tops[pick] - 1) & ~(kStep - 1);
        if (bottom < starts[pick]) {
            bottom = starts[pick];
        }
        if (madvise(reinterpret_cast<void*>(bottom), tops[pick] - bottom, MADV_POPULATE_WRITE) != 0) {
            return;  // no such advice here, or the block is not writable: the filler faults
        }
        tops[pick] = bottom;
    }
}

BulkFill::BulkFill(int32_t* block, size_t count, int32_t value) {
    if (count * sizeof(int32_t) >= kBulkBlockBytes &&
        thread_.start([block, count, value] { std::fill(block, block + count, value); })) {
        return;
    }
    // Small, or no thread: filled here.
    std::fill(block, block + count, value);
}

BulkFill::~BulkFill() {
    wait();
}

void BulkFill::wait() {
    if (thread_.joinable()) {
        thread_.join();
    }
}
