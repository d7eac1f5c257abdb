// Storage of the host's large arrays: values and node maps.
//
// A fresh block of a few megabytes costs the kernel more to hand out (one
// zeroed page per fault) than the loader needs to fill it. Two things keep
// that cost off the path of a load: the blocks come from calloc, whose fresh
// pages are zero already, so making an array of zeros writes nothing; and
// while the add-on's load callback runs, another thread asks the kernel to
// fault the pages of the array in, so that the callback finds them ready.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>
#include <thread>
#include <utility>
#include <vector>

namespace minihost {
namespace data {

// An allocator whose blocks are all zeros and whose elements are
// default-initialised: a vector of n numbers made with it is n zeros, and
// nothing writes them.
template <class T>
struct ZeroedAllocator {
    using value_type = T;

    ZeroedAllocator() noexcept = default;
    template <class U>
    ZeroedAllocator(const ZeroedAllocator<U>&) noexcept {}

    T* allocate(size_t n) {
        void* block = std::calloc(n > 0 ? n : 1, sizeof(T));
        if (block == nullptr)
            throw std::bad_alloc();
        return static_cast<T*>(block);
    }
    void deallocate(T* block, size_t) noexcept { std::free(block); }

    // Default-initialisation: no write for numbers, which calloc made zero.
    template <class U>
    void construct(U* place) noexcept {
        ::new (static_cast<void*>(place)) U;
    }
    template <class U, class... Args>
    void construct(U* place, Args&&... args) {
        ::new (static_cast<void*>(place)) U(std::forward<Args>(args)...);
    }
};

template <class T, class U>
bool operator==(const ZeroedAllocator<T>&, const ZeroedAllocator<U>&) noexcept {
    return true;
}
template <class T, class U>
bool operator!=(const ZeroedAllocator<T>&, const ZeroedAllocator<U>&) noexcept {
    return false;
}

// A vector of numbers that starts as zeros without a pass that writes them.
template <class T>
using ZeroedVector = std::vector<T, ZeroedAllocator<T>>;

// Faults the pages of a block in for writing on a thread of its own, while
// the caller goes on to fill the block; the destructor waits for it. Blocks
// under 4 MB are left alone (a thread costs more than their faults). The
// kernel does the work (madvise), so the thread never touches the block's
// bytes and races with no writer.
class BackgroundPopulate {
  public:
    BackgroundPopulate(void* block, size_t bytes);
    ~BackgroundPopulate();
    BackgroundPopulate(const BackgroundPopulate&) = delete;
    BackgroundPopulate& operator=(const BackgroundPopulate&) = delete;

  private:
    std::thread thread_;  // not joinable when the block was left alone
};

}  // namespace data
}  // namespace minihost
