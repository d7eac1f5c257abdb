// The physical floor of a load: reads whole files once with large read(2)
// calls into one reused buffer, and prints the time that took.
//
//   raw_read FILE...
//
// Output, one line of JSON: {"seconds": S, "bytes": B}, S the wall time of
// the opens, reads and closes of all files together. Nothing is kept of what
// was read, so the process's peak memory is the buffer and the program.
// Exit status 1 when a file cannot be opened or read.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: raw_read FILE...\n");
        return 2;
    }
    // 1 MiB a call: large enough that the cost of the calls is negligible,
    // small enough that the buffer stays in the processor's caches (16 MiB
    // calls measured 30-50% slower here).
    const size_t chunk = size_t{1} << 20;
    char* buffer = static_cast<char*>(std::malloc(chunk));
    if (buffer == nullptr) {
        std::fprintf(stderr, "raw_read: out of memory\n");
        return 1;
    }
    // Touch the buffer once so that the timed reads do not fault it in.
    std::memset(buffer, 0, chunk);

    long long total = 0;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 1; i < argc; ++i) {
        int fd = open(argv[i], O_RDONLY);
        if (fd < 0) {
            std::fprintf(stderr, "raw_read: cannot open %s: %s\n", argv[i], std::strerror(errno));
            return 1;
        }
        for (;;) {
            ssize_t n = read(fd, buffer, chunk);
            if (n < 0) {
                if (errno == EINTR) {
                    continue;
                }
                std::fprintf(stderr, "raw_read: cannot read %s: %s\n", argv[i], std::strerror(errno));
                close(fd);
                return 1;
            }
            if (n == 0) {
                break;
            }
            total += n;
        }
        close(fd);
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("{\"seconds\": %.9f, \"bytes\": %lld}\n", seconds, total);
    std::free(buffer);
    return 0;
}
