// Load speed of one data field: a field of N cells (default 10^7) written as
// binary doubles (3300), binary floats (2300) and ASCII numbers (300), scanned
// once and then loaded repeatedly from the page cache. Prints the best and
// the median wall-clock rate of the load in MB/s of file bytes, and the rate
// by the process's CPU time (user and system), which a busy machine disturbs
// less. Measures; asserts nothing.
//
//   datafile_load_bench [cells] [repeats] [folder]

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "addon/FluentSolution.h"
#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"

namespace {

// Writes a data file of one field with `cells` values of the section id.
// Returns the number of bytes the values take in the file.
long long writeDataFile(const std::string& path, int sectionId, const std::vector<double>& values) {
    FILE* f = fopen(path.c_str(), "wb");
    if (f == nullptr) {
        perror(path.c_str());
        exit(1);
    }
    fprintf(f, "(0 \"benchmark\")\n(4 (60 0 0 1 2 4 4 4 8 4 4))\n");
    fprintf(f, "(%d (1 1 1 0 0 1 %zu)\n(", sectionId, values.size());
    const long long start = ftello(f);
    if (sectionId >= 3000) {
        fwrite(values.data(), sizeof(double), values.size(), f);
    } else if (sectionId >= 2000) {
        std::vector<float> floats(values.begin(), values.end());
        fwrite(floats.data(), sizeof(float), floats.size(), f);
    } else {
        // As the solver writes them: enough digits to read back the same double.
        char buffer[64];
        for (double v : values) {
            const int n = snprintf(buffer, sizeof buffer, "%.17g\n", v);
            fwrite(buffer, 1, static_cast<size_t>(n), f);
        }
    }
    const long long bytes = ftello(f) - start;
    if (sectionId >= 2000) {
        fprintf(f, "\nEnd of Binary Section   %4d))\n", sectionId);
    } else {
        fprintf(f, "))\n");
    }
    fclose(f);
    return bytes;
}

struct Result {
    double bestSeconds;     // wall clock
    double medianSeconds;   // wall clock
    double bestCpuSeconds;  // CPU time of the process (user and system), which other load disturbs less
};

double cpuSeconds() {
    timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

Result measure(const std::string& path, int cells, int repeats, const std::vector<double>& values) {
    CaseFile caseFile;
    memset(&caseFile, 0, sizeof caseFile);
    CellZone zone;
    memset(&zone, 0, sizeof zone);
    zone.zoneId = 1;
    zone.firstIndex = 1;
    zone.lastIndex = cells;
    caseFile.cellZones = &zone;
    caseFile.numCellZones = 1;
    caseFile.numDimensions = 3;
    caseFile.machineConfig.intSize = 4;
    caseFile.machineConfig.floatSize = 4;
    caseFile.machineConfig.doubleSize = 8;

    FluentSolution solution;
    memset(&solution, 0, sizeof solution);
    DataFile dataFile;
    if (!DataFileInit(&dataFile, path.c_str(), false) ||
        !DataFileScan(&solution, &dataFile, &caseFile, LoadOption_CaseAndData, nullptr, nullptr) ||
        dataFile.numDataFields != 1) {
        fprintf(stderr, "scan of %s failed\n", path.c_str());
        exit(1);
    }
    DataField& field = dataFile.dataFields[0];
    std::vector<double> seconds;
    std::vector<double> cpu;
    for (int r = 0; r < repeats + 1; ++r) {  // the first run warms the page cache
        const double c0 = cpuSeconds();
        const auto t0 = std::chrono::steady_clock::now();
        if (!DataFileLoadDataField(&dataFile, &field)) {
            fprintf(stderr, "load of %s failed\n", path.c_str());
            exit(1);
        }
        const auto t1 = std::chrono::steady_clock::now();
        const double c1 = cpuSeconds();
        if (r == 0) {
            // Check the numbers once: the rate of a wrong load is worth nothing.
            for (int i = 0; i < cells; ++i) {
                const double expected = field.sectionId >= 2000 && field.sectionId < 3000
                                            ? static_cast<float>(values[i])
                                            : values[i];
                if (field.values[i] != expected) {
                    fprintf(stderr, "%s: value %d is %.17g, not %.17g\n", path.c_str(), i, field.values[i],
                            expected);
                    exit(1);
                }
            }
        } else {
            seconds.push_back(std::chrono::duration<double>(t1 - t0).count());
            cpu.push_back(c1 - c0);
        }
        free(field.values);
        field.values = nullptr;
    }
    std::sort(seconds.begin(), seconds.end());
    std::sort(cpu.begin(), cpu.end());
    return {seconds.front(), seconds[seconds.size() / 2], cpu.front()};
}

}  // namespace

int main(int argc, char** argv) {
    const int cells = argc > 1 ? atoi(argv[1]) : 10000000;
    const int repeats = argc > 2 ? atoi(argv[2]) : 5;
    const std::string folder = argc > 3 ? argv[3] : "/tmp";

    // Values as a flow solver writes them: smooth, of every magnitude.
    std::vector<double> values(static_cast<size_t>(cells));
    std::mt19937_64 random(12345);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-12, 8);
    for (double& v : values) {
        v = mantissa(random) * std::pow(10.0, exponent(random));
    }

    printf("cells %d, repeats %d\n", cells, repeats);
    printf("%-24s %10s %10s %12s %12s\n", "field", "MB in file", "best MB/s", "median MB/s", "CPU MB/s");
    const struct {
        int sectionId;
        const char* label;
    } kinds[] = {{3300, "binary double (3300)"}, {2300, "binary float (2300)"}, {300, "ASCII %.17g (300)"}};
    for (const auto& kind : kinds) {
        const std::string path = folder + "/datafile_load_bench_" + std::to_string(getpid()) + "_" +
                                 std::to_string(kind.sectionId) + ".dat";
        const long long bytes = writeDataFile(path, kind.sectionId, values);
        const Result r = measure(path, cells, repeats, values);
        printf("%-24s %10.1f %10.0f %12.0f %12.0f\n", kind.label, bytes / 1e6, bytes / 1e6 / r.bestSeconds,
               bytes / 1e6 / r.medianSeconds, bytes / 1e6 / r.bestCpuSeconds);
        fflush(stdout);
        remove(path.c_str());
    }
    return 0;
}
