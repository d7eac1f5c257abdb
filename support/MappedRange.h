// A read-only view of a byte range of a file, straight from the page cache.
//
// Reading a large body through a buffer has the kernel copy every byte out
// of the page cache first; a mapping lets the reader take the bytes where
// they lie. Where the kernel keeps the file in large folios (ext4 and XFS on
// recent kernels) one fault maps hundreds of kB, and two threads read a
// mapped body about twice as fast as through buffers. A mapping ends with the
// file: one that another process truncates while it is read raises SIGBUS,
// as it does for every reader that maps its input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

class MappedRange {
  public:
    MappedRange() = default;
    ~MappedRange();  // unmaps
    MappedRange(const MappedRange&) = delete;
    MappedRange& operator=(const MappedRange&) = delete;

    // Maps bytes [offset, offset + length) of the regular file open as
    // `stream`, which is not moved and may be closed afterwards. False, with
    // nothing mapped and nothing shown, when the file is not regular or ends
    // before offset + length, when length is 0, or when the system refuses
    // the mapping; the caller then reads the bytes through the stream. A
    // second call drops the first range.
    [[nodiscard]] bool map(FILE* stream, int64_t offset, int64_t length);

    // The first byte of the range; NULL when nothing is mapped. No alignment
    // beyond one byte: the range starts where the caller asked.
    const unsigned char* bytes() const { return first_; }
    // Bytes in the range; 0 when nothing is mapped.
    size_t size() const { return length_; }

  private:
    void unmap();

    void* base_ = nullptr;                  // start of the mapping (page aligned); NULL = none
    size_t mappedBytes_ = 0;                // bytes mapped from base_, whole pages
    const unsigned char* first_ = nullptr;  // first byte of the range, inside the mapping
    size_t length_ = 0;                     // bytes in the range
};
