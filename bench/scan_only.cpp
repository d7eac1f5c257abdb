// The scans alone: the section scan of a case file and of its data file, as
// the load runs them, without the zones and variables that follow.
//
//   scan_only CASE DAT
//
// Output, one line of JSON: {"case_s": S, "data_s": S, "seconds": S, "zones": N,
// "fields": N}, the wall times of CaseFileScan and DataFileScan inside this
// process (start-up not included) and what they found. A load of the same
// pair does more: it numbers the nodes of every zone it makes, which reads
// every face of the case. Exit status 1 when a scan fails (its messages on
// standard error), 2 on a usage error.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "addon/FluentSolution.h"
#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace {

double since(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: scan_only CASE DAT\n");
        return 2;
    }
    minihost::setMessageSink(
        [](const minihost::Message& m) { std::fprintf(stderr, "%s: %s\n", m.kind.c_str(), m.text.c_str()); });

    // A zero-filled record with its name and mutex, as a solution makes it.
    CaseFile* caseFile = static_cast<CaseFile*>(std::calloc(1, sizeof(CaseFile)));
    std::snprintf(caseFile->fileName, sizeof caseFile->fileName, "%s", argv[1]);
    caseFile->mutex = ZorUtilThreadMutexAlloc();
    auto start = std::chrono::steady_clock::now();
    const bool caseScanned = CaseFileScan(caseFile, false, nullptr, nullptr);
    const double caseSeconds = since(start);

    DataFile dataFile{};
    FluentSolution solution;
    std::memset(&solution, 0, sizeof solution);
    bool dataScanned = false;
    double dataSeconds = 0.0;
    if (caseScanned && DataFileInit(&dataFile, argv[2], false)) {
        start = std::chrono::steady_clock::now();
        dataScanned = DataFileScan(&solution, &dataFile, caseFile, LoadOption_CaseAndData, nullptr, nullptr);
        dataSeconds = since(start);
    }
    if (caseScanned && dataScanned) {
        std::printf(
            "{\"case_s\": %.9f, \"data_s\": %.9f, \"seconds\": %.9f, \"zones\": %d, \"fields\": %d}\n",
            caseSeconds, dataSeconds, caseSeconds + dataSeconds,
            caseFile->numCellZones + caseFile->numFaceZones, dataFile.numDataFields);
    }
    DataFileFreeContents(&dataFile);
    CaseFileDelete(caseFile);
    std::free(caseFile);
    return caseScanned && dataScanned ? 0 : 1;
}
