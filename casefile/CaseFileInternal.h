// Small helpers shared by the case file parsers; not part of the room's API.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>

#include "casefile/CaseFile.h"

// Size of every message buffer.
constexpr int kMessageSize = 4097;

// Formats a message into a buffer of kMessageSize characters and shows it
// through the host's error dialog.
void showErrorf(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Reads characters up to and including the next '('. False at end of file or
// on a read error; nothing is shown.
bool skipToOpenParen(FILE* stream);

// Bytes a number takes at least in the body of a section: 2 for ASCII (one
// digit and one blank), else the binary width.
inline int64_t integerWidth(const MachineConfig* config, int32_t sectionId) {
    return sectionId < 2000 ? 2 : config->intSize;
}
inline int64_t realWidth(const MachineConfig* config, int32_t sectionId) {
    if (sectionId < 2000) {
        return 2;
    }
    return sectionId < 3000 ? config->floatSize : config->doubleSize;
}

// Zones that may be offered to the user.
bool cellZoneIsListed(const CellZone* zone);
bool faceZoneIsListed(const FaceZone* zone);

// calloc for the bulk arrays: a block of 4 MB or more is advised to the
// kernel as one for huge pages, so that filling it takes one page fault per
// 2 MB rather than one per 4 kB. At least one element is allocated, so that
// an empty array still reads as loaded. NULL when memory runs out.
void* bulkCalloc(size_t count, size_t size);

// Cell zones of at least this many cells are assembled by two threads, each
// taking the cells of one half of the zone, when every face zone is in memory;
// smaller zones by the calling thread alone. Tests lower it to reach small
// zones, or raise it to keep one thread.
extern int32_t gParallelAssemblyMinCells;
// Assemblies that two threads completed, since the process began.
extern std::atomic<int64_t> gAssembliesInHalves;
// Face zones of at least this many faces that a first scan reads for a cell
// zone's node count without keeping them are read by two threads, each taking
// one half of the faces; smaller ones by the calling thread alone. Tests lower
// it to reach small zones.
extern int64_t gParallelMarkMinFaces;
// Face zones that two threads read and marked, since the process began.
extern std::atomic<int64_t> gFaceZonesMarkedInHalves;

// Opens the case file for binary reading with a stream of its own; on failure
// shows "Error opening case file '<name>'" and returns NULL.
FILE* openCaseFileStream(const CaseFile* caseFile);

// Node slots of a classic face zone: faceType 0 -> 4, 2/3/4 -> themselves, else 0.
inline int32_t faceZoneSlots(const FaceZone* zone) {
    if (zone->faceType == 0) {
        return 4;
    }
    if (zone->faceType >= 2 && zone->faceType <= 4) {
        return zone->faceType;
    }
    return 0;
}
