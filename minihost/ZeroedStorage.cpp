#include "minihost/ZeroedStorage.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

// Faults pages in for writing without writing them (Linux 5.14 and later);
// older kernels answer EINVAL and the pages come in as the block is filled.
#ifndef MADV_POPULATE_WRITE
#define MADV_POPULATE_WRITE 23
#endif

namespace minihost {
namespace data {

namespace {

constexpr size_t kSmallestBlock = size_t(4) << 20;

}  // namespace

BackgroundPopulate::BackgroundPopulate(void* block, size_t bytes) {
    if (block == nullptr || bytes < kSmallestBlock)
        return;
    // madvise takes whole pages: the part of the block from its first page boundary on.
    const uintptr_t page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    const uintptr_t start = (reinterpret_cast<uintptr_t>(block) + page - 1) & ~(page - 1);
    const uintptr_t end = (reinterpret_cast<uintptr_t>(block) + bytes) & ~(page - 1);
    if (end <= start)
        return;
    thread_ = std::thread(
        [start, end] { madvise(reinterpret_cast<void*>(start), end - start, MADV_POPULATE_WRITE); });
}

BackgroundPopulate::~BackgroundPopulate() {
    if (thread_.joinable())
        thread_.join();
}

}  // namespace data
}  // namespace minihost
