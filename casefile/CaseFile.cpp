// Tables, life cycle, counting and lookups of CaseFile.
#include "casefile/CaseFile.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

#include "casefile/CaseFileInternal.h"

// ---- Node number map -----------------------------------------------------------------

NodeNumberMap::NodeNumberMap(const int32_t* zoneNodes, int32_t count) {
    entries_.reserve(count > 0 ? static_cast<size_t>(count) : 0);
    for (int32_t k = 0; k < count; ++k) {
        entries_.emplace_back(zoneNodes[k], k);
    }
    // A boundary zone's nodes come sorted; a polygon zone's in order of first sight.
    if (!std::is_sorted(entries_.begin(), entries_.end())) {
        std::sort(entries_.begin(), entries_.end());
    }
}

int32_t NodeNumberMap::find(int32_t node) const {
    auto it = std::lower_bound(
        entries_.begin(), entries_.end(), node,
        [](const std::pair<int32_t, int32_t>& entry, int32_t key) { return entry.first < key; });
    return it != entries_.end() && it->first == node ? it->second : -1;
}

int32_t NodeNumberMap::at(int32_t node) const {
    const int32_t index = find(node);
    if (index < 0) {
        throw std::out_of_range("NodeNumberMap::at");
    }
    return index;
}

// ---- Tables ----------------------------------------------------------------------

// Grows a table of records by one zero-filled entry. False when memory runs
// out; the table and its count are then as they were.
template <typename Record>
static bool growTable(Record** table, int32_t* count, Record** out) {
    Record* grown = static_cast<Record*>(realloc(*table, sizeof(Record) * (static_cast<size_t>(*count) + 1)));
    if (grown == nullptr) {
        ZorUtilDialogErrMsg("Out of memory.");
        return false;
    }
    *table = grown;
    Record* entry = grown + *count;
    memset(static_cast<void*>(entry), 0, sizeof(Record));
    *count += 1;
    *out = entry;
    return true;
}

bool CaseFileNewNodeZone(CaseFile* caseFile, NodeZone** out) {
    return growTable(&caseFile->nodeZones, &caseFile->numNodeZones, out);
}

bool CaseFileNewCellZone(CaseFile* caseFile, CellZone** out) {
    return growTable(&caseFile->cellZones, &caseFile->numCellZones, out);
}

bool CaseFileNewFaceZone(CaseFile* caseFile, FaceZone** out) {
    return growTable(&caseFile->faceZones, &caseFile->numFaceZones, out);
}

bool CaseFileNewChildFace(CaseFile* caseFile, ChildFace** out) {
    return growTable(&caseFile->childFaces, &caseFile->numChildFaces, out);
}

bool CaseFileNewFaceTree(CaseFile* caseFile, FaceTree** out, int32_t childSlots) {
    if (!growTable(&caseFile->faceTrees, &caseFile->numFaceTrees, out)) {
        return false;
    }
    size_t places = childSlots > 0 ? static_cast<size_t>(childSlots) : 0;
    (*out)->children = static_cast<int32_t*>(calloc(places > 0 ? places : 1, sizeof(int32_t)));
    if ((*out)->children == nullptr) {
        ZorUtilDialogErrMsg("Out of memory.");
        caseFile->numFaceTrees -= 1;
        if (caseFile->numFaceTrees == 0) {
            // The first entry could not be completed: the table goes.
            free(caseFile->faceTrees);
            caseFile->faceTrees = nullptr;
        }
        *out = nullptr;
        return false;
    }
    return true;
}

template <typename Record>
static void allocRestoredTable(Record** table, int32_t count) {
    free(*table);
    *table = nullptr;
    if (count <= 0) {
        return;
    }
    *table = static_cast<Record*>(calloc(static_cast<size_t>(count), sizeof(Record)));
    if (*table == nullptr) {
        throw std::bad_alloc();
    }
}

void allocCellZones(CaseFile* caseFile) {
    allocRestoredTable(&caseFile->cellZones, caseFile->numCellZones);
}

void allocFaceZones(CaseFile* caseFile) {
    allocRestoredTable(&caseFile->faceZones, caseFile->numFaceZones);
}

void allocCaseFileChildFaces(CaseFile* caseFile) {
    allocRestoredTable(&caseFile->childFaces, caseFile->numChildFaces);
}

void allocSpeciesNames(CaseFile* caseFile) {
    allocRestoredTable(&caseFile->speciesNames, caseFile->numSpeciesNames);
}

// ---- Life cycle --------------------------------------------------------------------

static void freeAndClear(int32_t** array) {
    free(*array);
    *array = nullptr;
}

// The bulk arrays of a face zone that a release gives back.
static void faceZoneFreeBulk(FaceZone* zone) {
    freeAndClear(&zone->faceNodeCounts);
    freeAndClear(&zone->faceNodes);
    freeAndClear(&zone->faceCells);
    freeAndClear(&zone->faceConnectivity);
    freeAndClear(&zone->zoneNodes);
    delete zone->nodeNumberMap;
    zone->nodeNumberMap = nullptr;
    freeAndClear(&zone->polyOffsets);
    freeAndClear(&zone->polyNodes);
    freeAndClear(&zone->polyCell0);
    freeAndClear(&zone->polyCell1);
}

static void caseFileFreeBulk(CaseFile* caseFile) {
    free(caseFile->nodePositions);
    caseFile->nodePositions = nullptr;
    free(__atomic_exchange_n(&caseFile->nodeBits, nullptr, __ATOMIC_ACQUIRE));
    for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
        CellZone* zone = &caseFile->cellZones[i];
        freeAndClear(&zone->newToOldNodes);
        zone->newToOldBytes = 0;
        freeAndClear(&zone->oldToNewNodes);
    }
    for (int32_t i = 0; i < caseFile->numChildFaces; ++i) {
        freeAndClear(&caseFile->childFaces[i].pairs);
    }
    for (int32_t i = 0; i < caseFile->numFaceTrees; ++i) {
        freeAndClear(&caseFile->faceTrees[i].children);
    }
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        faceZoneFreeBulk(&caseFile->faceZones[i]);
    }
}

void CaseFileDelete(CaseFile* caseFile) {
    if (caseFile == nullptr) {
        return;
    }
    caseFileFreeBulk(caseFile);
    for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
        CellZone* zone = &caseFile->cellZones[i];
        freeAndClear(&zone->cellTypes);
        free(zone->nodeMinMaxWriters);
        zone->nodeMinMaxWriters = nullptr;
    }
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        free(caseFile->faceZones[i].nodeMinMaxWriters);
        caseFile->faceZones[i].nodeMinMaxWriters = nullptr;
    }
    for (int32_t i = 0; i < caseFile->numSpeciesNames; ++i) {
        free(caseFile->speciesNames[i]);
    }
    free(caseFile->speciesNames);
    caseFile->speciesNames = nullptr;
    caseFile->numSpeciesNames = 0;
    free(caseFile->nodeZones);
    caseFile->nodeZones = nullptr;
    caseFile->numNodeZones = 0;
    free(caseFile->cellZones);
    caseFile->cellZones = nullptr;
    caseFile->numCellZones = 0;
    free(caseFile->faceZones);
    caseFile->faceZones = nullptr;
    caseFile->numFaceZones = 0;
    free(caseFile->faceTrees);
    caseFile->faceTrees = nullptr;
    caseFile->numFaceTrees = 0;
    free(caseFile->childFaces);
    caseFile->childFaces = nullptr;
    caseFile->numChildFaces = 0;
    if (caseFile->stream != nullptr) {
        fclose(caseFile->stream);
        caseFile->stream = nullptr;
    }
    if (caseFile->mutex != nullptr) {
        ZorUtilThreadMutexDealloc(&caseFile->mutex);
        caseFile->mutex = nullptr;
    }
    caseFile->numLoadedNodes = 0;
    caseFile->useCount = 0;
}

void CaseFileRetain(CaseFile* caseFile) {
    caseFile->useCount += 1;
}

void CaseFileRelease(CaseFile* caseFile) {
    int32_t before = caseFile->useCount;
    caseFile->useCount = before - 1;
    if (before == 1) {
        caseFileFreeBulk(caseFile);
    }
}

// ---- Counting and lookups ------------------------------------------------------------

bool cellZoneIsListed(const CellZone* zone) {
    return zone->zoneType != 32;
}

bool faceZoneIsListed(const FaceZone* zone) {
    int32_t type = zone->boundaryType;
    return type < 1000 && type != 2 && type != 31 && type != 38;
}

int32_t CaseFileCountZones(const CaseFile* caseFile, int32_t mode, ZorSet selection) {
    // A selection that names zones answers for itself.
    if (!ZorUtilSetIsEmpty(selection)) {
        return static_cast<int32_t>(ZorUtilSetGetMemberCount(selection));
    }
    bool countCells = mode != 2;
    bool countFaces = mode != 1;
    int32_t count = 0;
    if (countCells) {
        for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
            if (cellZoneIsListed(&caseFile->cellZones[i])) {
                count += 1;
            }
        }
    }
    if (countFaces) {
        for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
            if (faceZoneIsListed(&caseFile->faceZones[i])) {
                count += 1;
            }
        }
    }
    return count;
}

int32_t CaseFileCellZoneIndex(const CaseFile* caseFile, int32_t zoneId) {
    for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
        if (caseFile->cellZones[i].zoneId == zoneId) {
            return i;
        }
    }
    return -1;
}

int32_t CaseFileFaceZoneIndex(const CaseFile* caseFile, int32_t zoneId) {
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        if (caseFile->faceZones[i].zoneId == zoneId) {
            return i;
        }
    }
    return -1;
}

CellZone* CaseFileFindCellZone(CaseFile* caseFile, int32_t zoneId, bool reportMissing) {
    int32_t index = CaseFileCellZoneIndex(caseFile, zoneId);
    if (index >= 0) {
        return &caseFile->cellZones[index];
    }
    if (reportMissing) {
        char message[kMessageSize];
        snprintf(message, sizeof message, "Cell Zone ID = %d (referenced in data file) does not exist.",
                 zoneId);
        ZorUtilDialogErrMsg(message);
    }
    return nullptr;
}

FaceZone* CaseFileFindFaceZone(CaseFile* caseFile, int32_t zoneId, bool reportMissing) {
    int32_t index = CaseFileFaceZoneIndex(caseFile, zoneId);
    if (index >= 0) {
        return &caseFile->faceZones[index];
    }
    if (reportMissing) {
        char message[kMessageSize];
        snprintf(message, sizeof message, "Face Zone ID = %d (referenced in data file) does not exist.",
                 zoneId);
        ZorUtilDialogErrMsg(message);
    }
    return nullptr;
}

FaceZone* CaseFileFindFaceZoneOfFace(CaseFile* caseFile, int32_t faceNumber, bool reportMissing) {
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        FaceZone* zone = &caseFile->faceZones[i];
        if (zone->firstIndex <= faceNumber && faceNumber <= zone->lastIndex) {
            return zone;
        }
    }
    if (reportMissing) {
        char message[kMessageSize];
        snprintf(message, sizeof message, "Face Zone for face = %d (referenced in data file) does not exist.",
                 faceNumber);
        ZorUtilDialogErrMsg(message);
    }
    return nullptr;
}

// ---- Host zone types --------------------------------------------------------------------

int32_t CellZoneGetZoneType(CellZone* zone, CaseFile* caseFile, bool allZonesAsPolyhedral) {
    int32_t type;
    switch (zone->elementType) {
        case 0: {
            int32_t first = CellZoneReadFirstCellType(zone, caseFile);
            if (first == 255) {
                return kUnknownHostZoneType;
            }
            type = (first == 1 || first == 3) ? ZorZoneType_FEQuad : ZorZoneType_FEBrick;
            break;
        }
        case 1:
            type = ZorZoneType_FETriangle;
            break;
        case 2:
            type = ZorZoneType_FETetra;
            break;
        case 3:
            type = ZorZoneType_FEQuad;
            break;
        case 4:
        case 5:
        case 6:
            type = ZorZoneType_FEBrick;
            break;
        case 7:
            return ZorZoneType_FEPolyhedron;
        default:
            return kUnknownHostZoneType;
    }
    if (allZonesAsPolyhedral) {
        return type < ZorZoneType_FETetra ? ZorZoneType_FEPolygon : ZorZoneType_FEPolyhedron;
    }
    return type;
}

int32_t FaceZoneGetZoneType(const FaceZone* zone, bool allZonesAsPolyhedral) {
    int32_t type;
    switch (zone->faceType) {
        case 0:
            type = ZorZoneType_FEQuad;
            break;
        case 2:
            type = ZorZoneType_FELineSeg;
            break;
        case 3:
            type = ZorZoneType_FETriangle;
            break;
        case 4:
            type = ZorZoneType_FEQuad;
            break;
        case 5:
            type = ZorZoneType_FEPolygon;
            break;
        default:
            type = kUnknownHostZoneType;
            break;
    }
    if (allZonesAsPolyhedral && (type == ZorZoneType_FETriangle || type == ZorZoneType_FEQuad)) {
        type = ZorZoneType_FEPolygon;
    }
    return type;
}
