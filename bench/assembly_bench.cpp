// Cell assembly benchmark: reading the faces, numbering the nodes and
// assembling the cells of one cell zone, as the node map loader does it,
// on fluentgen meshes of hexahedra and tetrahedra in binary double precision.
//
//   assembly_bench [--dir DIR] [--kinds hex,tet] [--sizes 1e4,1e5,1e6,1e7] [--repeat N]
//
// For each mesh the case file is written once (kept in DIR for later runs),
// read whole once so that it stands in the page cache, and scanned. Then, N
// times, with a fresh use of the case (all bulk arrays gone): the cell node
// array is filled with UNSET_NODE, child faces are stored, the zone's nodes
// are numbered (every face zone read from the file) and the cells assembled.
// That is timed, and the peak resident memory above what the process held
// before it is measured. Nothing is asserted; the figures are printed.
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "casefile/CaseFile.h"
#include "minihost/MiniHost.h"
#include "tools/fluentgen/FluentGen.h"

namespace {

// A figure of /proc/self/status in kB ("VmRSS", "VmHWM").
long statusKb(const char* key) {
    FILE* f = fopen("/proc/self/status", "r");
    if (f == nullptr) {
        return -1;
    }
    char line[256];
    long value = -1;
    size_t n = strlen(key);
    while (fgets(line, sizeof line, f) != nullptr) {
        if (strncmp(line, key, n) == 0 && line[n] == ':') {
            value = strtol(line + n + 1, nullptr, 10);
            break;
        }
    }
    fclose(f);
    return value;
}

// Sets the peak resident size back to the present size.
void resetPeak() {
    FILE* f = fopen("/proc/self/clear_refs", "w");
    if (f != nullptr) {
        fputs("5", f);
        fclose(f);
    }
}

// Processor time of this process (user and system), in seconds.
double cpuSeconds() {
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

void readWhole(const std::string& path) {
    FILE* f = fopen(path.c_str(), "rb");
    if (f == nullptr) {
        return;
    }
    std::vector<char> buffer(1 << 22);
    while (fread(buffer.data(), 1, buffer.size(), f) == buffer.size()) {
    }
    fclose(f);
}

struct Result {
    std::string kind;
    long cells = 0;
    long faces = 0;
    double fileMb = 0;
    double scanSeconds = 0;
    std::vector<double> seconds;     // wall time of each run
    std::vector<double> cpuSeconds;  // processor time of each run (user and system)
    std::vector<double> bytesPerCell;
};

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0.0 : v[v.size() / 2];
}

bool runOne(const std::string& kind, double wanted, const std::string& dir, int repeat, Result* result) {
    fluentgen::Spec spec;
    spec.encoding = fluentgen::Encoding::BinaryDouble;
    if (kind == "hex") {
        spec.mesh = fluentgen::MeshKind::Hex;
        int n = std::max(1, static_cast<int>(std::lround(std::cbrt(wanted))));
        spec.cells = {n, n, n};
    } else {
        spec.mesh = fluentgen::MeshKind::Tet;
        int n = std::max(1, static_cast<int>(std::lround(std::cbrt(wanted / 6.0))));
        spec.cells = {n, n, n};
    }
    std::string path = dir + "/" + kind + "-" + std::to_string(spec.cells[0]) + ".cas";
    struct stat info;
    if (stat(path.c_str(), &info) != 0) {
        fprintf(stderr, "writing %s ...\n", path.c_str());
        fluentgen::writeCaseFile(spec, path);
        if (stat(path.c_str(), &info) != 0) {
            fprintf(stderr, "cannot write %s\n", path.c_str());
            return false;
        }
    }
    {
        fluentgen::Model model(spec);
        result->faces = static_cast<long>(model.faceCount());
    }
    result->kind = kind;
    result->fileMb = static_cast<double>(info.st_size) / 1e6;
    readWhole(path);

    CaseFile* caseFile = static_cast<CaseFile*>(calloc(1, sizeof(CaseFile)));
    snprintf(caseFile->fileName, sizeof caseFile->fileName, "%s", path.c_str());
    caseFile->mutex = ZorUtilThreadMutexAlloc();
    auto start = std::chrono::steady_clock::now();
    bool ok = CaseFileScan(caseFile, false, nullptr, nullptr);
    result->scanSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (!ok || caseFile->numCellZones != 1) {
        fprintf(stderr, "scan of %s failed\n", path.c_str());
        return false;
    }
    CellZone* zone = &caseFile->cellZones[0];
    const int32_t numCells = zone->lastIndex - zone->firstIndex + 1;
    result->cells = numCells;
    zone->hostZoneType = CellZoneGetZoneType(zone, caseFile, false);
    const int32_t corners = nodesPerCellOfHostZoneType(zone->hostZoneType);

    for (int r = 0; r < repeat && ok; ++r) {
        ZorUtilThreadMutexLock(caseFile->mutex);
        CaseFileRetain(caseFile);
        long baseline = statusKb("VmRSS");
        resetPeak();
        start = std::chrono::steady_clock::now();
        double cpuStart = cpuSeconds();

        size_t slots = static_cast<size_t>(numCells) * corners;
        int32_t* cellNodes = static_cast<int32_t*>(malloc(slots * sizeof(int32_t)));
        std::fill(cellNodes, cellNodes + slots, UNSET_NODE);
        ok = cellNodes != nullptr && CaseFileStoreFaceTreeChildren(caseFile) &&
             CellZoneGetNewNodeNumbers(zone, caseFile, caseFile->totalNodes) &&
             CellZoneAssembleFaces(caseFile, zone, numCells, corners, cellNodes);

        double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        result->cpuSeconds.push_back(cpuSeconds() - cpuStart);
        long peak = statusKb("VmHWM");
        // A light check that the work was done: no slot left unset.
        for (size_t k = 0; ok && k < slots; ++k) {
            ok = cellNodes[k] != UNSET_NODE;
        }
        free(cellNodes);
        CaseFileRelease(caseFile);
        ZorUtilThreadMutexUnlock(caseFile->mutex);
        result->seconds.push_back(seconds);
        result->bytesPerCell.push_back((peak - baseline) * 1024.0 / numCells);
    }
    CaseFileDelete(caseFile);
    free(caseFile);
    if (!ok) {
        fprintf(stderr, "assembly of %s failed\n", path.c_str());
    }
    return ok;
}

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> parts;
    size_t start = 0;
    while (start <= text.size()) {
        size_t comma = text.find(',', start);
        if (comma == std::string::npos) {
            comma = text.size();
        }
        if (comma > start) {
            parts.push_back(text.substr(start, comma - start));
        }
        start = comma + 1;
    }
    return parts;
}

}  // namespace

int main(int argc, char** argv) {
    std::string dir = "/tmp/fl-assembly-bench";
    std::string kinds = "hex,tet";
    std::string sizes = "1e4,1e5,1e6,1e7";
    int repeat = 3;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "--dir" && i + 1 < argc) {
            dir = argv[++i];
        } else if (arg == "--kinds" && i + 1 < argc) {
            kinds = argv[++i];
        } else if (arg == "--sizes" && i + 1 < argc) {
            sizes = argv[++i];
        } else if (arg == "--repeat" && i + 1 < argc) {
            repeat = std::max(1, atoi(argv[++i]));
        } else {
            fprintf(stderr,
                    "usage: assembly_bench [--dir DIR] [--kinds hex,tet] [--sizes 1e4,...] [--repeat N]\n");
            return 2;
        }
    }
    mkdir(dir.c_str(), 0755);
    minihost::setMessageSink([](const minihost::Message& message) {
        fprintf(stderr, "[%s] %s\n", message.kind.c_str(), message.text.c_str());
    });

    printf("%-4s %10s %10s %9s %8s %9s %9s %14s %9s %13s %12s\n", "kind", "cells", "faces", "file MB",
           "scan s", "best s", "median s", "cells/s (best)", "cpu s", "cells/cpu s", "peak B/cell");
    int status = 0;
    for (const std::string& kind : split(kinds)) {
        for (const std::string& size : split(sizes)) {
            Result result;
            if (!runOne(kind, atof(size.c_str()), dir, repeat, &result)) {
                status = 1;
                continue;
            }
            double best = *std::min_element(result.seconds.begin(), result.seconds.end());
            double peak = *std::max_element(result.bytesPerCell.begin(), result.bytesPerCell.end());
            double cpu = *std::min_element(result.cpuSeconds.begin(), result.cpuSeconds.end());
            printf("%-4s %10ld %10ld %9.1f %8.3f %9.4f %9.4f %14.3e %9.4f %13.3e %12.1f\n",
                   result.kind.c_str(), result.cells, result.faces, result.fileMb, result.scanSeconds, best,
                   median(result.seconds), result.cells / best, cpu, result.cells / cpu, peak);
            fflush(stdout);
        }
    }
    return status;
}
