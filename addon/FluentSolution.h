// FluentSolution: one loaded set of Fluent files, and the process-wide table
// that owns every such record.
//
// A solution lives as long as its host data set, since load-on-demand
// callbacks come back to it. Both the table of solutions and each solution's
// tables of case and data files move when they grow, so client data given to
// the host keeps a solutionId and table indices, never a pointer, and every
// callback looks its record up anew with findSolution.
#pragma once

#include <cstdint>

#include "host/ZorTypes.h"

struct CaseFile;
class DataFile;
struct ArrayList;

// Longest particle file name, with its terminating NUL.
constexpr int kParticleFileNameSize = 262;

struct FluentSolution {
    uint64_t datasetUniqueID;  // unique id of the frame's data set when the record was made; 0 = none then
    uint32_t solutionId;       // key from NextSolutionID; never reused
    int32_t numCaseFiles;      // entries of caseFiles
    CaseFile* caseFiles;       // contiguous table, grown by one per case file; null when empty
    int32_t numDataFiles;      // entries of dataFiles
    DataFile* dataFiles;       // new[]-allocated table of objects, replaced by a larger one per data file
    char particleFileName[kParticleFileNameSize + 2];  // the load's XML particle file; empty if none
};

// ---- Process-wide state, made by InitZorAddOn113 ---------------------------

extern ZorAddOnID AddOnID;              // result of ZorUtilAddOnRegister; used by every lock bracket
extern int32_t SolutionTableCount;      // records in SolutionTable
extern FluentSolution* SolutionTable;   // contiguous table of solutions; null when empty
extern uint32_t NextSolutionID;         // next solutionId to hand out; starts at 1
extern bool FilesArePreScanned;         // the last record of SolutionTable holds a pre-scan
extern bool PurgeEnabled;               // PurgeUnusedSolutions may run; cleared while a data set is made
extern ZorStringList SelectedFiles;     // files chosen in the host's file dialog; null when none
extern ArrayList* PendingStateChanges;  // state-change codes waiting for idle time; null when none

// Whether the files of the coming load were pre-scanned by the selection dialog.
bool filesArePreScanned();

// Appends a new record with the next solutionId and empty tables. Null when
// memory runs out. Pointers into SolutionTable are good until the next call.
FluentSolution* NewFluentSolution();

// Adds a zero-filled CaseFile with the name and a new host mutex. Null when the
// mutex or the table cannot be had; the name's length is not checked here.
CaseFile* FluentSolutionNewCaseFile(FluentSolution* solution, const char* fileName);

// Replaces the table of data files by one larger by one and returns the new
// record. Null when the name has 262 characters or more (the larger table
// stays, the count does not grow) or memory runs out.
DataFile* FluentSolutionNewDataFile(FluentSolution* solution, const char* fileName,
                                    bool loadAdditionalQuantities);

// Deletes the record at a table index and closes the gap.
void DeleteFluentSolution(int32_t index);

// The record with this id, or null.
FluentSolution* findSolution(uint32_t solutionId);

// Deletes every record whose data set is gone (see the .cpp for the walk).
void PurgeUnusedSolutions();

// Deletes every record.
void DeleteAllSolutions();
