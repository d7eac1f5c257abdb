// Small helpers shared by the case file parsers; not part of the room's API.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <mutex>

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
// Face zones of at least this many faces whose nodes a cell zone's node
// count or numbering marks are marked by two threads, which share the faces
// out as they go (FaceShares): read through buffers and not kept, for the
// count of a first scan, or in memory; smaller ones by the calling thread
// alone. Tests lower it to reach small zones.
extern int64_t gParallelMarkMinFaces;
// Face zones that two threads marked, since the process began.
extern std::atomic<int64_t> gFaceZonesMarkedInParallel;
// Faces a thread takes at a time from a shared zone; a rest of fewer than
// twice this many is not split. Tests lower it to share small zones out.
extern int64_t gSharedFacesPerTake;
// Binary face zone bodies of one node count and at least this many bytes are
// read from a mapping of the case file, where the system gives one, both when
// a first scan marks their nodes without keeping the faces and when they are
// loaded (in this machine's byte order); smaller ones, and every body where
// the system gives no mapping, through buffers. Tests set it to 0 or
// INT64_MAX to reach either way.
extern int64_t gMappedBodyMinBytes;
// Face zone bodies read from a mapping, since the process began.
extern std::atomic<int64_t> gFaceBodiesMapped;

class MappedRange;
// Maps the binary body of a face zone of one node count (2, 3 or 4) from the
// case file open as `stream` into *body, when it is gMappedBodyMinBytes or
// larger and the system maps it (counted in gFaceBodiesMapped); false, with
// nothing mapped, when the body is to be read through the stream.
bool mapFaceZoneBody(FILE* stream, const FaceZone* zone, MappedRange* body);

// The faces of a zone shared out between two threads. Each starts with one
// half and reads its range forwards; one that has run out takes the upper
// half of what the other has not yet taken, so both finish together however
// the machine shares its cores out, and each still reads forwards through
// the file.
struct FaceShares {
    std::mutex mutex;
    int64_t next[2];  // zero-based face each thread takes next
    int64_t end[2];   // end of each thread's range (excluded)
};

// Shares `count` faces out: thread 0 the lower half, thread 1 the upper.
void FaceSharesInit(FaceShares* shares, int64_t count);

// Takes the next faces for thread `me` (0 or 1): [*begin, *end), at most
// gSharedFacesPerTake of them. False when nothing is left for it: its range
// is done and the other's rest is too small to split.
bool FaceSharesTake(FaceShares* shares, int me, int64_t* begin, int64_t* end);

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

// The zero-based place of `node` in the `count` ascending numbers of
// `sorted`, or -1 when it is not there: the answer of a binary search of the
// whole array, found by searching outwards from *hint (the last place found,
// updated). The nodes of neighbouring faces lie close together, so most
// searches end within a few steps.
int32_t sortedPlaceNear(const int32_t* sorted, int32_t count, int32_t node, int32_t* hint);
