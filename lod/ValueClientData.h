// ValueClientData: what the host hands back to the value callbacks of one
// variable in one zone, and those callbacks.
//
// The host owns the values and asks for them late, from any thread, and
// possibly many times, since it may unload what it loaded. A record holds no
// pointer into the add-on's tables, which move as they grow: only the
// solution id and table indices, so every callback looks its case file,
// zone and field up anew.
//
// The bulk arrays of a CaseFile (node positions, node numberings, face
// arrays) are the one cache: every loaded item holds one use of its case
// (CaseFile::useCount), and the release of the last use frees them. Field
// values follow a count of their own (DataField::loadedComponents): the
// values of a field are dropped as soon as every component has been copied.
//
// Locks, as each callback takes them: loads, unloads and cleanups of values
// take the host's add-on lock, then the case mutex, and leave them in the
// reverse order.
#pragma once

#include <cstdint>

#include "host/Metadata.h"
#include "host/ZorTypes.h"

struct CaseFile;
struct CellZone;
struct FaceZone;
struct DataField;
struct FluentSolution;

// The averaging method of a record that averages nothing (coordinates).
constexpr int32_t kNoAveragingMethod = 255;

// The client data of ZorUtilDataValueCustomLOD, one per zone and variable.
// Allocated zero-filled; the host owns it from a true registration on, and
// the cleanup callback frees it.
struct ValueClientData {
    uint32_t solutionId;        // key of the FluentSolution in the solution table
    int32_t caseIndex;          // index of the CaseFile in the solution
    int32_t cellZoneIndex;      // index of the CellZone; -1 for a boundary zone
    int32_t faceZoneIndex;      // index of the FaceZone; -1 for a cell zone
    int32_t dataFileIndex;      // index of the DataFile in the solution; -1 for a coordinate
    int32_t fieldIndex;         // index of the DataField in the data file; -1 for a coordinate
    int32_t component;          // component of the field, or coordinate axis 0, 1, 2
    bool isNodal;               // the cell values are to be averaged to the nodes
    int32_t method;             // averaging: 0 arithmetic, 1 Laplacian, 255 none
    int32_t dimension;          // 2 or 3: dimensions of the case
    int32_t nodeCount;          // node count of the case: the size of every node number map
    bool allZonesAsPolyhedral;  // the zones were built as polygons and polyhedra
    int64_t zoneUniqueId;       // unique id of the host zone (ZorUtilZoneGetNumByUniqueID finds it)
    bool isLoaded;              // this variable holds one use of its case file
    // Writer of the variable's range for a metadata file, or null. Retained
    // while held; given the range, released and nulled after the first load.
    zorvane::dataio::DeferredMinMaxWriter* minMaxWriter;
};

// Allocates a zero-filled record with every index set to -1, the method to
// kNoAveragingMethod and the writer to null. Null when memory runs out.
ValueClientData* ValueClientDataAlloc();
// Releases the writer, if any, and frees the record.
void ValueClientDataFree(ValueClientData* clientData);

// ---- The callbacks given to ZorUtilDataValueCustomLOD --------------------------------------

// The coordinates of a zone, from the node positions of its case.
bool coordVarLoad(ZorFieldData fieldData);
bool coordVarUnload(ZorFieldData fieldData);
void coordVarCleanup(ZorFieldData fieldData);

// A solution variable, from one component of a DataField; means, root mean
// squares and wall fluxes are treated on the way.
bool fieldVarLoad(ZorFieldData fieldData);
bool fieldVarUnload(ZorFieldData fieldData);
void fieldVarCleanup(ZorFieldData fieldData);

// ---- What the callbacks are made of ----------------------------------------------------------

// The case file of a record, found anew: the solution with the id, its case
// file at the index. Null when either is gone.
CaseFile* lodFindCaseFile(uint32_t solutionId, int32_t caseIndex, FluentSolution** solution);

// Makes the zone's node numbering (newToOldNodes) if it is not there. Classic
// zones only; a polyhedral zone shows that it cannot be numbered here.
[[nodiscard]] bool cellNodeMapReady(CaseFile* caseFile, int32_t numNodes, bool allZonesAsPolyhedral,
                                    CellZone* zone);
// The same for a boundary zone (zoneNodes).
[[nodiscard]] bool boundaryNodeMapReady(CaseFile* caseFile, int32_t numNodes, bool allZonesAsPolyhedral,
                                        FaceZone* zone);

// Divides each of the first n values by the divisor.
void divideByValue(double* values, int32_t n, double divisor);

// Turns the face totals of a wall flux field into values per area: each
// element's numbers are divided by the element's area (negated with
// `negate`), worked out from the zone's coordinate variables and node map.
// Volume zones (host types 3, 4 and 7) are left alone unless the host runs in
// batch mode. `zone` is the host zone number; values hold `dimension` numbers
// per element, element after element.
void scaleBoundaryFluxesByArea(double* values, int32_t count, int32_t dimension, ZorIndex zone,
                               bool axisymmetric, bool negate);
