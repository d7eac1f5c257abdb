#include "addon/FluentSolution.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "host/ZorData.h"
#include "host/ZorUtil.h"

ZorAddOnID AddOnID = nullptr;
int32_t SolutionTableCount = 0;
FluentSolution* SolutionTable = nullptr;
uint32_t NextSolutionID = 1;
bool FilesArePreScanned = false;
bool PurgeEnabled = true;
ZorStringList SelectedFiles = nullptr;
ArrayList* PendingStateChanges = nullptr;

bool filesArePreScanned() {
    return FilesArePreScanned;
}

FluentSolution* NewFluentSolution() {
    void* grown =
        std::realloc(SolutionTable, sizeof(FluentSolution) * static_cast<size_t>(SolutionTableCount + 1));
    if (grown == nullptr)
        return nullptr;
    SolutionTable = static_cast<FluentSolution*>(grown);
    FluentSolution* solution = &SolutionTable[SolutionTableCount];
    std::memset(solution, 0, sizeof *solution);
    solution->datasetUniqueID = ZorUtilDataSetIsAvailable() ? ZorUtilDataSetGetUniqueID() : 0;
    solution->solutionId = NextSolutionID++;
    ++SolutionTableCount;
    return solution;
}

CaseFile* FluentSolutionNewCaseFile(FluentSolution* solution, const char* fileName) {
    ZorMutex mutex = ZorUtilThreadMutexAlloc();
    if (mutex == nullptr)
        return nullptr;
    void* grown =
        std::realloc(solution->caseFiles, sizeof(CaseFile) * static_cast<size_t>(solution->numCaseFiles + 1));
    if (grown == nullptr) {
        ZorUtilThreadMutexDealloc(&mutex);
        return nullptr;
    }
    solution->caseFiles = static_cast<CaseFile*>(grown);
    CaseFile* caseFile = &solution->caseFiles[solution->numCaseFiles++];
    std::memset(caseFile, 0, sizeof *caseFile);
    std::strncpy(caseFile->fileName, fileName, sizeof caseFile->fileName - 1);
    caseFile->mutex = mutex;
    return caseFile;
}

DataFile* FluentSolutionNewDataFile(FluentSolution* solution, const char* fileName,
                                    bool loadAdditionalQuantities) {
    const int32_t n = solution->numDataFiles;
    DataFile* table = new (std::nothrow) DataFile[static_cast<size_t>(n) + 1];
    if (table == nullptr)
        return nullptr;
    for (int32_t i = 0; i < n; ++i)
        table[i] = std::move(solution->dataFiles[i]);
    delete[] solution->dataFiles;
    solution->dataFiles = table;
    if (std::strlen(fileName) >= static_cast<size_t>(kDataFileNameSize))
        return nullptr;
    DataFile* dataFile = &table[n];
    if (!DataFileInit(dataFile, fileName, loadAdditionalQuantities))
        return nullptr;
    solution->numDataFiles = n + 1;
    return dataFile;
}

void DeleteFluentSolution(int32_t index) {
    if (index < 0 || index >= SolutionTableCount)
        return;
    FluentSolution* solution = &SolutionTable[index];
    for (int32_t i = 0; i < solution->numCaseFiles; ++i)
        CaseFileDelete(&solution->caseFiles[i]);
    std::free(solution->caseFiles);
    delete[] solution->dataFiles;
    std::memmove(&SolutionTable[index], &SolutionTable[index + 1],
                 sizeof(FluentSolution) * static_cast<size_t>(SolutionTableCount - index - 1));
    --SolutionTableCount;
    if (SolutionTableCount == 0) {
        std::free(SolutionTable);
        SolutionTable = nullptr;
    } else {
        void* shrunk =
            std::realloc(SolutionTable, sizeof(FluentSolution) * static_cast<size_t>(SolutionTableCount));
        if (shrunk != nullptr)
            SolutionTable = static_cast<FluentSolution*>(shrunk);
    }
}

FluentSolution* findSolution(uint32_t solutionId) {
    for (int32_t i = 0; i < SolutionTableCount; ++i) {
        if (SolutionTable[i].solutionId == solutionId)
            return &SolutionTable[i];
    }
    return nullptr;
}

void PurgeUnusedSolutions() {
    ZorUtilLockStart(AddOnID);
    if (PurgeEnabled && SolutionTableCount > 0) {
        // A deleted record's successor slides into its place and is passed
        // over until the next purge: the walk moves on one place after a
        // deletion as after a kept record.
        for (int32_t index = 0; index < SolutionTableCount; ++index) {
            const FluentSolution& solution = SolutionTable[index];
            const bool inUse = solution.datasetUniqueID != 0 &&
                               ZorUtilDataSetIsAvailableByUniqueID(solution.datasetUniqueID);
            if (!inUse)
                DeleteFluentSolution(index);
        }
    }
    ZorUtilLockFinish(AddOnID);
}

void DeleteAllSolutions() {
    while (SolutionTableCount > 0)
        DeleteFluentSolution(0);
}
