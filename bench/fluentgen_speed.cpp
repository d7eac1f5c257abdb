// fluentgen_speed: how fast fluentgen writes a large hexahedral case and data
// file, and how much memory it takes while it does.
//
//   fluentgen_speed [cells per axis=216] [fields=5] [encoding=binary-double]
//                   [folder=/tmp] [keep]
//
// Writes NX^3 hexahedra (216^3 = 10,077,696) with a data file of `fields`
// fields, prints the wall time of writing, the file sizes, the rate, and the
// peak resident memory of the process. The files are removed afterwards
// unless `keep` is given. It measures; it asserts nothing.
#include <sys/resource.h>

#include <unistd.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "tools/fluentgen/FluentGen.h"

int main(int argc, char** argv) {
    int n = argc > 1 ? std::atoi(argv[1]) : 216;
    int fields = argc > 2 ? std::atoi(argv[2]) : 5;
    std::string encoding = argc > 3 ? argv[3] : "binary-double";
    std::string folder = argc > 4 ? argv[4] : "/tmp";
    bool keep = argc > 5 && std::string(argv[5]) == "keep";
    if (n < 1 || fields < 0) {
        std::fprintf(stderr, "usage: fluentgen_speed [cells per axis] [fields] [encoding] [folder] [keep]\n");
        return 2;
    }
    fluentgen::Spec s;
    s.mesh = fluentgen::MeshKind::Hex;
    s.cells = {n, n, n};
    s.fields = fluentgen::standardFields(fields, 3);
    if (encoding == "ascii") {
        s.encoding = fluentgen::Encoding::Ascii;
    } else if (encoding == "binary-single") {
        s.encoding = fluentgen::Encoding::BinarySingle;
    } else if (encoding == "binary-mixed") {
        s.encoding = fluentgen::Encoding::BinaryMixed;
    } else {
        s.encoding = fluentgen::Encoding::BinaryDouble;
    }
    std::string dir = folder + "/fluentgen-speed-" + std::to_string(::getpid());
    std::filesystem::create_directories(dir);
    auto t0 = std::chrono::steady_clock::now();
    fluentgen::WrittenFiles w = fluentgen::writeFiles(s, dir, "box");
    double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    uintmax_t bytes = 0;
    for (const std::string& f : w.caseFiles) {
        bytes += std::filesystem::file_size(f);
    }
    for (const std::string& f : w.dataFiles) {
        bytes += std::filesystem::file_size(f);
    }
    struct rusage ru;
    getrusage(RUSAGE_SELF, &ru);
    int64_t cells = int64_t(n) * n * n;
    std::printf(
        "fluentgen_speed: %lld hexahedra, %d fields, %s: %.2f s, %.1f MB written (%.0f MB/s), "
        "peak RSS %.1f MB\n",
        static_cast<long long>(cells), fields, encoding.c_str(), seconds, bytes / 1e6, bytes / 1e6 / seconds,
        ru.ru_maxrss / 1024.0);
    if (!keep) {
        std::filesystem::remove_all(dir);
    } else {
        std::printf("kept in %s\n", dir.c_str());
    }
    return 0;
}
