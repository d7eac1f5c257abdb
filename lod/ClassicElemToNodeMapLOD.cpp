#include "lod/ClassicElemToNodeMapLOD.h"

#include <cstdint>
#include <cstdlib>
#include <new>

#include "addon/FluentSolution.h"
#include "casefile/CaseFile.h"
#include "host/ZorData.h"
#include "host/ZorUtil.h"
#include "lod/ValueClientData.h"
#include "support/BulkMemory.h"

namespace zorvane {
namespace zorutildataio {

namespace {

ClassicElemToNodeMapLOD* objectOf(ZorNodeMap nodeMap) {
    return reinterpret_cast<ClassicElemToNodeMapLOD*>(ZorUtilDataNodeGetClientData(nodeMap));
}

// An unset slot as a raw map holds it: zero-based.
constexpr int64_t kRawUnsetNode = UNSET_NODE - 1;

}  // namespace

ClassicElemToNodeMapLOD::ClassicElemToNodeMapLOD(uint32_t solutionId_, int32_t caseIndex_,
                                                 int32_t cellZoneIndex_, int32_t faceZoneIndex_,
                                                 int32_t numElements_, int32_t numNodes_)
    : solutionId(solutionId_),
      caseIndex(caseIndex_),
      cellZoneIndex(cellZoneIndex_),
      faceZoneIndex(faceZoneIndex_),
      numElements(numElements_),
      numNodes(numNodes_),
      isLoaded(false) {}

ClassicElemToNodeMapLOD::~ClassicElemToNodeMapLOD() {
    CaseFile* caseFile = lodFindCaseFile(solutionId, caseIndex, nullptr);
    if (caseFile == nullptr)
        return;
    ZorUtilThreadMutexLock(caseFile->mutex);
    if (isLoaded) {
        isLoaded = false;
        CaseFileRelease(caseFile);
    }
    ZorUtilThreadMutexUnlock(caseFile->mutex);
}

bool ClassicElemToNodeMapLOD::create(uint32_t solutionId, int32_t caseIndex, int32_t cellZoneIndex,
                                     int32_t faceZoneIndex, int32_t numElements, int32_t numNodes,
                                     ZorIndex zone) {
    ClassicElemToNodeMapLOD* object = new (std::nothrow)
        ClassicElemToNodeMapLOD(solutionId, caseIndex, cellZoneIndex, faceZoneIndex, numElements, numNodes);
    if (object == nullptr)
        return false;
    if (!ZorUtilDataNodeCustomLOD(zone, loadCallback, unloadCallback, cleanupCallback,
                                  reinterpret_cast<ZorArbParam>(object))) {
        delete object;
        return false;
    }
    return true;
}

bool ClassicElemToNodeMapLOD::loadCallback(ZorNodeMap nodeMap) {
    return objectOf(nodeMap)->load(nodeMap);
}

bool ClassicElemToNodeMapLOD::unloadCallback(ZorNodeMap nodeMap) {
    return objectOf(nodeMap)->unload();
}

void ClassicElemToNodeMapLOD::cleanupCallback(ZorNodeMap nodeMap) {
    delete objectOf(nodeMap);
}

bool ClassicElemToNodeMapLOD::load(ZorNodeMap nodeMap) {
    ZorUtilLockStart(AddOnID);
    CaseFile* caseFile = lodFindCaseFile(solutionId, caseIndex, nullptr);
    if (caseFile == nullptr) {
        ZorUtilLockFinish(AddOnID);
        return false;
    }
    ZorUtilThreadMutexLock(caseFile->mutex);
    CaseFileRetain(caseFile);
    const bool ok =
        cellZoneIndex == -1 ? loadBoundaryZone(caseFile, nodeMap) : loadCellZone(caseFile, nodeMap);
    if (ok) {
        isLoaded = true;
    } else {
        CaseFileRelease(caseFile);
    }
    ZorUtilThreadMutexUnlock(caseFile->mutex);
    ZorUtilLockFinish(AddOnID);
    return ok;
}

// A boundary zone: its faces written straight into the host's map, which is
// then read back for slots that no face filled.
bool ClassicElemToNodeMapLOD::loadBoundaryZone(CaseFile* caseFile, ZorNodeMap nodeMap) {
    FaceZone* zone = &caseFile->faceZones[faceZoneIndex];
    const int32_t corners = nodesPerCellOfHostZoneType(zone->hostZoneType);
    void* raw = ZorUtilDataNodeGetRawPtrByRef(nodeMap);
    const bool raw64 = ZorUtilDataNodeGetRawItemType(nodeMap) != ZorRawItemType_Int32;
    const int64_t slots = static_cast<int64_t>(numElements) * corners;

    if (raw != nullptr) {
        for (int64_t s = 0; s < slots; ++s) {
            if (raw64) {
                static_cast<int64_t*>(raw)[s] = kRawUnsetNode;
            } else {
                static_cast<int32_t*>(raw)[s] = static_cast<int32_t>(kRawUnsetNode);
            }
        }
    } else {
        for (int32_t e = 1; e <= numElements; ++e) {
            for (int32_t k = 1; k <= corners; ++k)
                ZorUtilDataNodeSetByRef(nodeMap, e, k, UNSET_NODE);
        }
    }

    if (!FaceZoneGetNodeNumbers(zone, caseFile, numNodes))
        return false;
    FaceZoneConnectivityTarget target;
    target.nodeMap = nodeMap;
    target.raw = raw;
    target.raw64 = raw64;
    target.rowWidth = corners;
    FaceZoneWriteConnectivity(zone, zone->hostZoneType, &target);

    for (int32_t e = 1; e <= numElements; ++e) {
        for (int32_t k = 1; k <= corners; ++k) {
            int64_t node;
            const int64_t slot = static_cast<int64_t>(e - 1) * corners + (k - 1);
            if (raw != nullptr) {
                node = (raw64 ? static_cast<int64_t*>(raw)[slot] : static_cast<int32_t*>(raw)[slot]) + 1;
            } else {
                node = ZorUtilDataNodeGetByRef(nodeMap, e, k);
            }
            if (node == UNSET_NODE) {
                char message[4097];
                snprintf(
                    message, sizeof message,
                    "Error assembling faces (connectivity index %d of cell %d not set). Face list may be "
                    "incomplete.",
                    k, e);
                ZorUtilDialogErrMsg(message);
                return false;
            }
        }
    }
    return true;
}

// A cell zone: assembled from the faces of the whole case into an array of
// one-based zone node numbers, which the host takes as a whole. Slots that no
// face filled stay UNSET_NODE.
bool ClassicElemToNodeMapLOD::loadCellZone(CaseFile* caseFile, ZorNodeMap nodeMap) {
    CellZone* zone = &caseFile->cellZones[cellZoneIndex];
    const int32_t corners = nodesPerCellOfHostZoneType(zone->hostZoneType);
    const int64_t slots = static_cast<int64_t>(zone->lastIndex - zone->firstIndex + 1) * corners;
    const size_t bytes = sizeof(int32_t) * static_cast<size_t>(slots > 0 ? slots : 1);
    int32_t* cellNodes = static_cast<int32_t*>(std::malloc(bytes));
    if (cellNodes == nullptr) {
        ZorUtilDialogErrMsg("Out of memory.");
        return false;
    }
    // Huge pages; and the array is set to UNSET_NODE on a second core while
    // this one reads the faces and numbers the nodes.
    bulkAdviseHugePages(cellNodes, bytes);
    BulkFill unset(cellNodes, static_cast<size_t>(slots > 0 ? slots : 0), UNSET_NODE);

    const bool ok =
        CaseFileStoreFaceTreeChildren(caseFile) && CellZoneGetNewNodeNumbers(zone, caseFile, numNodes) &&
        (unset.wait(),
         CellZoneAssembleFaces(caseFile, zone, zone->lastIndex - zone->firstIndex + 1, corners, cellNodes));
    unset.wait();
    ZorUtilDataNodeArraySetByRef(nodeMap, 1, slots, cellNodes);
    std::free(cellNodes);
    return ok;
}

bool ClassicElemToNodeMapLOD::unload() {
    CaseFile* caseFile = lodFindCaseFile(solutionId, caseIndex, nullptr);
    if (caseFile == nullptr)
        return true;
    ZorUtilThreadMutexLock(caseFile->mutex);
    isLoaded = false;
    CaseFileRelease(caseFile);
    ZorUtilThreadMutexUnlock(caseFile->mutex);
    return true;
}

}  // namespace zorutildataio
}  // namespace zorvane
