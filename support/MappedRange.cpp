#include "support/MappedRange.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

MappedRange::~MappedRange() {
    unmap();
}

void MappedRange::unmap() {
    if (base_ != nullptr) {
        munmap(base_, mappedBytes_);
    }
    base_ = nullptr;
    mappedBytes_ = 0;
    first_ = nullptr;
    length_ = 0;
}

bool MappedRange::map(FILE* stream, int64_t offset, int64_t length) {
    unmap();
    if (stream == nullptr || offset < 0 || length <= 0) {
        return false;
    }
    const int fd = fileno(stream);
    struct stat status;
    if (fd < 0 || fstat(fd, &status) != 0 || !S_ISREG(status.st_mode) ||
        length > static_cast<int64_t>(status.st_size) ||
        offset > static_cast<int64_t>(status.st_size) - length) {
        return false;
    }
    const long page = sysconf(_SC_PAGESIZE);
    if (page <= 0) {
        return false;
    }
    const int64_t start = offset - offset % page;
    const size_t mapped = static_cast<size_t>(offset - start + length);
    void* base = mmap(nullptr, mapped, PROT_READ, MAP_PRIVATE, fd, static_cast<off_t>(start));
    if (base == MAP_FAILED) {
        return false;
    }
    // Read once, front to back: the kernel reads ahead of a fault for a file
    // that is not in the page cache yet.
    (void)madvise(base, mapped, MADV_SEQUENTIAL);
    base_ = base;
    mappedBytes_ = mapped;
    first_ = static_cast<const unsigned char*>(base) + (offset - start);
    length_ = static_cast<size_t>(length);
    return true;
}
