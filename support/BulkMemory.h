// Large arrays of a load, and the cost of their fresh pages.
//
// A block of many megabytes is cheap to allocate and dear to touch: the
// kernel zeroes every fresh page on its first write, and on a virtual machine
// that gives memory back to its host each such page can cost a fault in the
// host as well. Two things cut that cost: advising huge pages (one fault per
// 2 MB instead of per 4 kB), and having a second core fault the pages in while
// the loading thread fills them.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "support/HelperThread.h"

// Blocks smaller than this are left alone: advice and a thread cost more than
// their faults.
constexpr size_t kBulkBlockBytes = size_t(4) << 20;

// Asks the kernel to back a large, fresh block with huge pages. Only the
// page-aligned inside of the block is advised; the block stays a malloc block.
void bulkAdviseHugePages(void* block, size_t bytes);

// A block to fault in: its first byte and its size. A null block is passed over.
struct BulkRange {
    void* block;   // first byte; NULL = nothing
    size_t bytes;  // size of the block
};

// The order in which BulkFaultIn takes its blocks.
enum class BulkOrder {
    OneAfterAnother,  // the caller fills the blocks one after another, in the order given
    Together,         // the caller fills all blocks at once, each at the same pace
};

// Faults the pages of some fresh blocks in for writing on a thread of its own,
// while the caller fills the blocks from their starts. Each block is taken from
// its end towards its start in steps of 2 MB, so the two threads meet in the
// middle and each page is faulted once: blocks filled one after another are
// taken last block first; blocks filled together are taken so that each has
// the same share left. The kernel does the work (madvise), so the thread never
// reads or writes the blocks' bytes and races with no writer. Destroying the
// object stops the thread at its next step and waits for it; the blocks must
// live until then. Where the kernel lacks the advice (before Linux 5.14), or
// no thread can be started, nothing happens and the pages come in as the
// blocks are filled.
class BulkFaultIn {
  public:
    BulkFaultIn(BulkOrder order, std::initializer_list<BulkRange> ranges);
    BulkFaultIn(BulkOrder order, const std::vector<BulkRange>& ranges);
    ~BulkFaultIn();
    BulkFaultIn(const BulkFaultIn&) = delete;
    BulkFaultIn& operator=(const BulkFaultIn&) = delete;
    // Stops the thread at its next step and waits for it; the blocks may go
    // after this. A second call does nothing.
    void finish();

  private:
    void start(const BulkRange* first, size_t count);
    void run();

    BulkOrder order_;
    std::vector<BulkRange> ranges_;  // the blocks large enough to be worth it
    std::atomic<bool> stop_{false};  // set by finish()
    HelperThread thread_;            // not joinable when no block was large enough
};

// Sets every number of a block to one value, on a second thread when the block
// is large, while the caller goes on with other work; wait() (or the
// destructor) returns when the block is filled. A small block, or one whose
// thread cannot be started, is filled at once by the caller.
class BulkFill {
  public:
    BulkFill(int32_t* block, size_t count, int32_t value);
    ~BulkFill();
    BulkFill(const BulkFill&) = delete;
    BulkFill& operator=(const BulkFill&) = delete;
    void wait();

  private:
    HelperThread thread_;  // not joinable once the block is filled
};
