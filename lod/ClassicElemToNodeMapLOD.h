// ClassicElemToNodeMapLOD: the loader of the element-to-node map of one
// classic zone (triangles, quadrilaterals, tetrahedra, bricks, line segments).
//
// A cell zone's map is assembled from the faces of the case file, since a
// Fluent file has no cell-to-node table; a boundary zone's map is its faces.
// The object is the client data of ZorUtilDataNodeCustomLOD: the host owns it
// from a true registration on and destroys it in the cleanup callback.
//
// Locks: the load takes the add-on lock, then the case mutex; the unload and
// the destructor take the case mutex only.
#pragma once

#include <cstdint>

#include "host/ZorTypes.h"

struct CaseFile;

namespace zorvane {
namespace zorutildataio {

class ClassicElemToNodeMapLOD {
  public:
    ClassicElemToNodeMapLOD(uint32_t solutionId, int32_t caseIndex, int32_t cellZoneIndex,
                            int32_t faceZoneIndex, int32_t numElements, int32_t numNodes);
    // Gives back the use of the case if the map is loaded.
    virtual ~ClassicElemToNodeMapLOD();
    ClassicElemToNodeMapLOD(const ClassicElemToNodeMapLOD&) = delete;
    ClassicElemToNodeMapLOD& operator=(const ClassicElemToNodeMapLOD&) = delete;

    // Makes the loader of host zone `zone` and registers it. False, with the
    // object destroyed, when memory runs out or the host refuses.
    [[nodiscard]] static bool create(uint32_t solutionId, int32_t caseIndex, int32_t cellZoneIndex,
                                     int32_t faceZoneIndex, int32_t numElements, int32_t numNodes,
                                     ZorIndex zone);

    // Fills the host's map. False, with the message shown and no use of the
    // case kept, when the map cannot be made.
    bool load(ZorNodeMap nodeMap);
    // Lets go of the use of the case that the load took.
    bool unload();

    // The callbacks given to the host.
    static bool loadCallback(ZorNodeMap nodeMap);
    static bool unloadCallback(ZorNodeMap nodeMap);
    static void cleanupCallback(ZorNodeMap nodeMap);

    uint32_t solutionId;    // key of the FluentSolution
    int32_t caseIndex;      // index of the CaseFile in the solution
    int32_t cellZoneIndex;  // index of the CellZone, or -1 for a boundary zone
    int32_t faceZoneIndex;  // index of the FaceZone, or -1 for a cell zone
    int32_t numElements;    // cells or faces of the zone: the elements of the map
    int32_t numNodes;       // node count of the case: the size of every node number map
    bool isLoaded;          // the map holds one use of its case file

  private:
    bool loadBoundaryZone(::CaseFile* caseFile, ZorNodeMap nodeMap);
    bool loadCellZone(::CaseFile* caseFile, ZorNodeMap nodeMap);
};

}  // namespace zorutildataio
}  // namespace zorvane
