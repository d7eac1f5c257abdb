// CaseFile: one Fluent case file as the add-on keeps it.
//
// A case file is scanned once. The scan records what each section declares
// (dimensions, zones, their ranges, types and names) and where each zone's bulk
// data starts in the file, and jumps over the bulk data itself. Bulk data
// (coordinates, face nodes and cells, child face pairs, face tree children) is
// read later from the recorded positions, each load with a stream of its own,
// and freed again by CaseFileRelease when the last user lets go.
//
// All records are plain structures, zero-filled when made; text fields are
// NUL-terminated. Mesh numbers (nodes, faces, cells, first and last indices)
// are one-based as in the file, and 0 means "none". A negative cell number in
// faceCells is a mark: that side of the face does not bound the cell (hanging
// nodes, see CaseFileTrackParentChildFaces).
//
// Tables grow by one entry at a time with realloc: a pointer into a table is
// good until the next insertion, which only the scan (or a metadata restore)
// makes. Every function that can fail shows its message itself through the
// host's error dialog and returns false; callers only unwind.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

#include "fluentio/SectionReader.h"
#include "host/Metadata.h"
#include "host/TaskProgress.h"
#include "host/ZorTypes.h"
#include "host/ZorUtil.h"

// A connectivity slot of a cell that no face has filled yet (one-based).
constexpr int32_t UNSET_NODE = 0x7ffffffe;

// Host zone type standing for "not known" inside the add-on.
constexpr int32_t kUnknownHostZoneType = 255;

// Global node number -> zero-based index into a face zone's zoneNodes: an
// ordered map held as one array of (node, index) pairs sorted by node, made
// with one allocation and searched by halves. A boundary zone's map has an
// entry for each of its nodes, so a tree of one allocation per entry would
// cost more to make and to free than the rest of the numbering.
class NodeNumberMap {
  public:
    // The map of `count` zone nodes: zoneNodes[k] -> k. The numbers must
    // differ; they need not be sorted. Throws std::bad_alloc or
    // std::length_error as a vector does.
    NodeNumberMap(const int32_t* zoneNodes, int32_t count);

    size_t size() const { return entries_.size(); }
    // The index of `node`; throws std::out_of_range when it has none.
    int32_t at(int32_t node) const;
    // The index of `node`, or -1.
    int32_t find(int32_t node) const;

  private:
    std::vector<std::pair<int32_t, int32_t>> entries_;  // (global node, zone index), ascending by node
};

// One Nodes section with a zone id above 0.
struct NodeZone {
    int32_t sectionId;     // 10, 2010 or 3010: decides ASCII, single or double reals
    int32_t zoneId;        // Fluent zone id, above 0
    int32_t firstIndex;    // first global node number of the section
    int32_t lastIndex;     // last global node number of the section
    int64_t filePosition;  // first byte behind the body's '('; recorded by the scan
};

// One Cells section with a zone id above 0.
struct CellZone {
    int32_t sectionId;   // 12, 2012 or 3012
    int32_t zoneId;      // Fluent zone id, above 0
    int32_t firstIndex;  // first global cell number
    int32_t lastIndex;   // last global cell number
    int32_t
        selectionIndex;    // place in the list of zones offered to the user, from 1; 0 until zones are built
    char name[132];        // zone name, at most 128 characters; empty when no Zone section named it
    int32_t zoneType;      // fourth header field: 1 fluid, 17 solid; 32 = left out of every list and count
    int32_t hostZoneType;  // host zone type (1..7) once the zone is built; 255 = not yet known
    int32_t elementType;   // 0 mixed, 1 tri, 2 tet, 3 quad, 4 hex, 5 pyramid, 6 wedge, 7 polyhedron
    int32_t* cellTypes;    // mixed zones: element type of each cell; NULL until loaded; freed by Delete only
    int32_t numNodes;      // nodes used by the zone; valid once the numbering was made
    int32_t numFaces;      // polyhedral zone: faces of its face map; 0 otherwise
    int32_t numFaceNodes;  // polyhedral zone: total nodes over those faces; 0 otherwise
    int32_t numBoundaryConnections;  // polyhedral zone: faces with a neighbour in another zone
    int32_t* newToOldNodes;      // zone node number - 1 -> global node number; numNodes places (totalNodes
                                 // in a polyhedral zone); NULL until numbered; freed by Release
    uint64_t newToOldBytes;      // size of newToOldNodes in bytes; 0 when not allocated with a size
    int32_t* oldToNewNodes;      // global node number - 1 -> zone node number, 0 = unused; totalNodes places;
                                 // NULL until numbered; freed by Release
    int32_t hostZoneNumber;      // host zone made for it; 0 while there is none
    int64_t filePosition;        // behind the body's '(' of a mixed zone; behind the header otherwise
    int64_t hostZoneUniqueId;    // unique id of the host zone; 0 while there is none
    double coordinateRanges[6];  // min and max of x, y, z; set only by a metadata restore
    zorvane::dataio::DeferredMinMaxWriter** nodeMinMaxWriters;  // numDimensions writers from the factory,
                                                                // shared, not owned; NULL when none
};

// One Faces section with a zone id above 0.
struct FaceZone {
    int32_t sectionId;             // 13, 2013 or 3013
    int32_t zoneId;                // Fluent zone id, above 0
    int32_t firstIndex;            // first global face number
    int32_t lastIndex;             // last global face number
    int32_t selectionIndex;        // as for CellZone
    char name[132];                // zone name, at most 128 characters; empty when no Zone section named it
    int32_t boundaryType;          // fourth header field: 2 interior, 3 wall, ...; 1000 and up never shown
    int32_t faceType;              // 0 mixed, 2 line, 3 tri, 4 quad, 5 polygon; a mixed zone that holds
                                   // polygons becomes 5 when its faces are loaded
    int32_t* faceNodeCounts;       // mixed zones: node count of each face; NULL otherwise or until loaded
    int32_t* faceNodes;            // classic layout, stride faceType (4 when mixed); NULL until loaded
    int32_t* faceCells;            // two per face: cell on side 0, cell on side 1; 0 = no cell, negative =
                                   // marked side; NULL until loaded
    int32_t* faceConnectivity;     // two per face: local face number in cell 0 and in cell 1, from 1;
                                   // 0 until assembled; NULL until loaded
    int32_t parentCellZoneId;      // zoneId of the CellZone that holds this boundary; 0 = none found yet
    int32_t numNodes;              // nodes used by the zone; valid once the numbering was made
    int32_t* zoneNodes;            // global numbers of the used nodes (sorted; in order of first appearance
                                   // for polygon zones); numNodes places; NULL until numbered
    NodeNumberMap* nodeNumberMap;  // global node number -> zero-based index in zoneNodes; NULL until numbered
    int32_t hostZoneNumber;        // host zone made for it; 0 while there is none
    int32_t hostZoneType;          // host zone type once built; 255 = not yet known
    int32_t childFaceIndex;        // index into CaseFile::childFaces naming this zone's parents; -1 = none
    int64_t filePosition;          // first byte behind the body's '('
    int32_t minCell;  // polygon read: smallest cell number above 0 (the larger if a face has only 0s)
    int32_t maxCell;  // polygon read: largest cell number
    int32_t numPolyFaceNodes;    // entries of polyNodes
    int32_t numPolyFaces;        // faces of the polygon arrays
    int32_t* polyOffsets;        // numPolyFaces + 1 offsets into polyNodes; NULL until read
    int32_t* polyNodes;          // nodes of all polygon faces one after the other; NULL until read
    int32_t* polyCell0;          // cell on side 0 of each polygon face; NULL until read
    int32_t* polyCell1;          // cell on side 1 of each polygon face; NULL until read
    int64_t hostZoneUniqueId;    // unique id of the host zone; 0 while there is none
    double coordinateRanges[6];  // min and max of x, y, z; set only by a metadata restore
    zorvane::dataio::DeferredMinMaxWriter** nodeMinMaxWriters;  // as for CellZone
};

// One Face Tree section: the children of a run of parent faces.
struct FaceTree {
    int32_t sectionId;     // 59, 2059 or 3059
    int32_t firstIndex;    // first parent face number
    int32_t lastIndex;     // last parent face number
    int32_t parentZoneId;  // face zone of the parents
    int32_t childZoneId;   // face zone of the children
    int32_t maxChildren;   // child places per parent: 2 in a 2D file, 4 otherwise
    int32_t* children;     // maxChildren places per parent, 0 = empty place; NULL when not loaded
    int64_t filePosition;  // first byte behind the body's '('
};

// One Child Faces section: pairs of child face and parent face.
struct ChildFace {
    int32_t sectionId;     // 62, 2062 or 3062
    int32_t childZoneId;   // face zone of the children; 0 until the pairs are loaded
    int32_t parentZoneId;  // face zone of the parents; 0 until the pairs are loaded
    int32_t pairCount;     // number of pairs; 0 until loaded
    int32_t* pairs;        // two per pair: child face, parent face; sorted by child; NULL until loaded
    int64_t filePosition;  // start of the section's own header, which the load reads again
};

// One Fluent case file. Made by its FluentSolution with the name and a mutex.
struct CaseFile {
    char fileName[264];           // path of the case file; used to reopen it and in messages
    FILE* stream;                 // open only during the scan; NULL afterwards
    MachineConfig machineConfig;  // binary layout from section 4; all 0 until read
    char header[4097];            // text of the Header section (or first comment); empty if none
    bool axisymmetric;            // "(rp-axi? . #t" seen in section 37
    bool doublePrecision;         // "(rp-double? . #t" seen in section 37 behind rp-axi?
    int32_t numDimensions;        // 0 until known, then 2 or 3
    int32_t numNodeZones;         // entries of nodeZones
    NodeZone* nodeZones;          // table; NULL when empty
    int32_t numFaceZones;         // entries of faceZones
    FaceZone* faceZones;          // table; NULL when empty
    int32_t numCellZones;         // entries of cellZones
    CellZone* cellZones;          // table; NULL when empty
    int32_t numSpeciesNames;      // entries of speciesNames
    char** speciesNames;          // table; each name its own malloc block; NULL when empty
    int32_t numFaceTrees;         // entries of faceTrees
    FaceTree* faceTrees;          // table; NULL when empty
    int32_t numChildFaces;        // entries of childFaces
    ChildFace* childFaces;        // table; NULL when empty
    int32_t totalNodes;           // largest lastIndex over nodeZones: the size of every node number map
    int32_t numLoadedNodes;       // the same, computed by CaseFileLoadAllNodePositions; 0 until then
    double* nodePositions;        // numLoadedNodes * numDimensions values, node by node; NULL until loaded
    ZorMutex mutex;               // guards the bulk arrays and useCount; from the host
    int32_t useCount;             // users of the bulk arrays; at 0 they are freed
    uint64_t* nodeBits;           // scratch of the boundary numbering: [0] its word count, then one bit per
                         // case node, all clear; taken and given back atomically; NULL when none is spare
};

// ---- Tables --------------------------------------------------------------------

// Grow a table by one zero-filled entry and hand out its address. "Out of
// memory." and false on failure. hostZoneType and childFaceIndex are left to
// the caller (a zero-filled entry has 0 there).
[[nodiscard]] bool CaseFileNewNodeZone(CaseFile* caseFile, NodeZone** out);
[[nodiscard]] bool CaseFileNewCellZone(CaseFile* caseFile, CellZone** out);
[[nodiscard]] bool CaseFileNewFaceZone(CaseFile* caseFile, FaceZone** out);
[[nodiscard]] bool CaseFileNewChildFace(CaseFile* caseFile, ChildFace** out);
// Also allocates the zeroed children of childSlots places; drops the whole
// table when the first entry's array cannot be had.
[[nodiscard]] bool CaseFileNewFaceTree(CaseFile* caseFile, FaceTree** out, int32_t childSlots);

// For a metadata restore: allocate the table at the size already in its count,
// zero-filled. Throw std::bad_alloc when memory runs out.
void allocCellZones(CaseFile* caseFile);
void allocFaceZones(CaseFile* caseFile);
void allocCaseFileChildFaces(CaseFile* caseFile);
void allocSpeciesNames(CaseFile* caseFile);

// ---- Life cycle ------------------------------------------------------------------

// The first pass over the file: records sections, zones and file positions.
// progress is owned by the call and destroyed at its end; factory may be null
// (then no deferred min/max writers are made). False after a failure, the
// message shown; what was read stays, and the caller deletes the CaseFile.
[[nodiscard]] bool CaseFileScan(CaseFile* caseFile, bool allZonesAsPolyhedral,
                                std::unique_ptr<zorvane::zorutilutil::TaskProgress> progress,
                                zorvane::dataio::DeferredMinMaxWriterFactory* factory);
// Frees every array of every table and the tables, closes stream if open and
// releases the mutex. The record itself belongs to the caller; it is left
// zero-filled apart from fileName.
void CaseFileDelete(CaseFile* caseFile);
// Adds one user of the bulk arrays. The caller holds the mutex.
void CaseFileRetain(CaseFile* caseFile);
// Takes one user away; when the count had been 1, frees all bulk arrays
// (node positions, node numberings, face arrays, polygon arrays, pairs,
// children). Scan results stay. The caller holds the mutex.
void CaseFileRelease(CaseFile* caseFile);

// Zones that can be offered to the user. A non-empty selection answers its
// member count. Otherwise mode 0 or 3 counts cell and face zones, 1 cell zones
// only, 2 face zones only: cell zones whose zoneType is not 32, face zones whose
// boundaryType is below 1000 and none of 2, 31, 38.
int32_t CaseFileCountZones(const CaseFile* caseFile, int32_t mode, ZorSet selection);

// ---- Lookups -----------------------------------------------------------------------

// The first zone with this zone id, or NULL. With reportMissing a miss shows
// "Cell Zone ID = %d (referenced in data file) does not exist." (or the Face
// Zone form).
CellZone* CaseFileFindCellZone(CaseFile* caseFile, int32_t zoneId, bool reportMissing);
FaceZone* CaseFileFindFaceZone(CaseFile* caseFile, int32_t zoneId, bool reportMissing);
// The first face zone with firstIndex <= faceNumber <= lastIndex, or NULL; with
// reportMissing "Face Zone for face = %d (referenced in data file) does not exist.".
FaceZone* CaseFileFindFaceZoneOfFace(CaseFile* caseFile, int32_t faceNumber, bool reportMissing);
// Table index of a zone with this zone id, or -1; silent.
int32_t CaseFileCellZoneIndex(const CaseFile* caseFile, int32_t zoneId);
int32_t CaseFileFaceZoneIndex(const CaseFile* caseFile, int32_t zoneId);

// Host zone type of a cell zone from its elementType: 1 tri, 2 quad, 3 tet,
// 4 brick (hexahedra, pyramids, wedges), 7 polyhedron, 255 unknown. A mixed
// zone reads its first cell type from the file: triangle or quadrilateral
// gives 2, unreadable 255, else 4. With allZonesAsPolyhedral 1 and 2 become 6,
// 3 and 4 become 7. (A 2D file builds 6 and 7 as 6; the zone builder does that.)
int32_t CellZoneGetZoneType(CellZone* zone, CaseFile* caseFile, bool allZonesAsPolyhedral);
// Host zone type of a face zone: mixed 2, line 5, tri 1, quad 2, polygon 6,
// else 255; with allZonesAsPolyhedral 1 and 2 become 6.
int32_t FaceZoneGetZoneType(const FaceZone* zone, bool allZonesAsPolyhedral);

// ---- Section parsers of the scan ----------------------------------------------------
// Each reads one section from caseFile->stream, which stands on the body
// behind the section id; true when the scan may go on.

[[nodiscard]] bool CaseFileParseHeader(CaseFile* caseFile);
[[nodiscard]] bool CaseFileParseZone(CaseFile* caseFile, int32_t sectionId);
[[nodiscard]] bool CaseFileParseVariables(CaseFile* caseFile);
[[nodiscard]] bool CaseFileParseNodes(CaseFile* caseFile, int32_t sectionId);
[[nodiscard]] bool CaseFileParseCell(CaseFile* caseFile, int32_t sectionId,
                                     zorvane::dataio::DeferredMinMaxWriterFactory* factory);
[[nodiscard]] bool CaseFileParseFace(CaseFile* caseFile, int32_t sectionId, bool allZonesAsPolyhedral,
                                     zorvane::dataio::DeferredMinMaxWriterFactory* factory);
[[nodiscard]] bool ParseFaceTree(CaseFile* caseFile, int32_t sectionId);
[[nodiscard]] bool ParseChildFaces(CaseFile* caseFile, int32_t sectionId);

// ---- Nodes ---------------------------------------------------------------------------

// Reads every Nodes section into nodePositions (numLoadedNodes * numDimensions
// doubles, node n axis a at (n - 1) * numDimensions + a). Gaps stay 0.0. On
// failure nodePositions stays NULL. The caller tested nodePositions for NULL
// and holds the mutex.
[[nodiscard]] bool CaseFileLoadAllNodePositions(CaseFile* caseFile);
// Frees nodePositions at once.
void CaseFileFreeNodePositions(CaseFile* caseFile);

// ---- Cells ---------------------------------------------------------------------------

// Reads the element type of each cell of a mixed zone into cellTypes.
[[nodiscard]] bool CaseFileLoadCellZoneCellTypes(CaseFile* caseFile, CellZone* zone);
// The first element type in a mixed zone's body, or 255 when it cannot be read.
int32_t CellZoneReadFirstCellType(CellZone* zone, CaseFile* caseFile);

// ---- Faces ---------------------------------------------------------------------------

// Reads the classic arrays of a face zone (faceNodes, faceCells, and the
// zeroed faceConnectivity). A mixed zone that holds a face of more than four
// nodes becomes a polygon zone (faceType 5) read by PolyFaceZoneRead instead.
// On failure the arrays may stay allocated: callers look at the result.
[[nodiscard]] bool CaseFileLoadFaceZone(CaseFile* caseFile, FaceZone* zone);
// Reads a zone's polygon arrays from an open stream (its position does not matter).
[[nodiscard]] bool PolyFaceZoneRead(FILE* stream, CaseFile* caseFile, FaceZone* zone, int32_t sectionId);
// Node count of a face: faceType for a fixed type; else read from the stream
// (fromFile, 0 on failure) or taken from polyOffsets (0 without offsets).
int32_t PolyFaceGetNodeCount(FILE* stream, const MachineConfig* config, FaceZone* zone, int32_t faceIndex,
                             bool fromFile);
// Allocates faceNodes (stride in *stride), faceCells, faceConnectivity and, for a
// mixed zone, faceNodeCounts, all zeroed. On failure shows the message and frees all four.
[[nodiscard]] bool faceZoneAllocFaceSectionArrays(FaceZone* zone, int32_t* stride);
void faceZoneFreeFaceSectionArrays(FaceZone* zone);

// ---- Face trees and child faces --------------------------------------------------------

// Reads a Face Tree body from the stream's position into tree->children.
[[nodiscard]] bool caseFileReadFaceTreeBody(CaseFile* caseFile, FILE* stream, FaceTree* tree);
// Reads a tree's children again after a release.
[[nodiscard]] bool CaseFileLoadFaceTree(CaseFile* caseFile, FaceTree* tree);
// Reads one Child Faces section (header again, then pairs, sorted by child).
[[nodiscard]] bool caseFileReadChildFace(FILE* stream, const MachineConfig* config, ChildFace* childFace);
// Loads all pairs unless the first record has them, and links each child zone
// to its record through childFaceIndex. Run before any assembly.
[[nodiscard]] bool CaseFileStoreFaceTreeChildren(CaseFile* caseFile);
// Marks faceCells so that a coarse cell sees a parent face and not its
// children, and each fine cell its child face and not the parent.
[[nodiscard]] bool CaseFileTrackParentChildFaces(CaseFile* caseFile);
// The first tree with this parent (child) zone id: its index, and the table
// index of the face zone on the other end. True with only *treeIndex set when
// that zone does not exist; false when there is no such tree.
bool FindFaceTreeByParentZone(const CaseFile* caseFile, int32_t parentZoneId, int32_t* treeIndex,
                              int32_t* childZoneIndex);
bool FindFaceTreeByChildZone(const CaseFile* caseFile, int32_t childZoneId, int32_t* treeIndex,
                             int32_t* parentZoneIndex);

// ---- Cell assembly -------------------------------------------------------------------------

// Corners per element of a host zone type: 1 -> 3, 2 and 3 -> 4, 4 -> 8, 5 -> 2; 0 otherwise.
int32_t nodesPerCellOfHostZoneType(int32_t hostZoneType);

// Numbers the nodes that the zone's cells use (oldToNewNodes, newToOldNodes,
// numNodes). Loads faces as needed; if a face zone turns out to hold polygons
// the zone's elementType becomes 7 and the numbering is left to the
// polyhedral code.
[[nodiscard]] bool CellZoneGetNewNodeNumbers(CellZone* zone, CaseFile* caseFile, int32_t totalNodes);
// The zone's node count alone (numNodes), as CellZoneGetNewNodeNumbers counts
// it, with the same messages and result, but leaving no numbering behind
// (oldToNewNodes and newToOldNodes stay NULL; a load makes them). Face zones
// that are not in memory are read through a buffer and not kept where the
// case allows it (binary bodies of one face type, no face trees or child
// faces, at most two cell zones), a large one by two threads, and loaded
// otherwise. True at once when the zone is numbered already.
[[nodiscard]] bool CellZoneGetNodeCountWithoutFaces(CellZone* zone, CaseFile* caseFile, int32_t totalNodes);
// Fills cellNodes (nodesPerCell slots per cell, preset to UNSET_NODE by the
// caller) with one-based zone node numbers, face by face, and records each
// face's local face number in faceConnectivity.
[[nodiscard]] bool CellZoneAssembleFaces(CaseFile* caseFile, CellZone* zone, int32_t numCells,
                                         int32_t nodesPerCell, int32_t* cellNodes);
// Adds one face to one cell's slots. cellNumber (one-based within the zone)
// serves the messages only.
[[nodiscard]] bool addFaceToCell(int32_t* localFace, int32_t cellNumber, int32_t facesSoFar,
                                 const int32_t* faceNodes, int32_t numFaceNodes, bool forward,
                                 int32_t* cellSlots, int32_t hostZoneType);
[[nodiscard]] bool addFaceToTriangle(int32_t* localFace, int32_t cellNumber, const int32_t* face,
                                     int32_t* slots);
[[nodiscard]] bool addFaceToQuad(int32_t* localFace, int32_t cellNumber, const int32_t* face, int32_t* slots);
[[nodiscard]] bool addFaceToTetra(int32_t* localFace, int32_t cellNumber, const int32_t* face,
                                  int32_t* slots);
[[nodiscard]] bool addFaceToBrick(int32_t* localFace, int32_t cellNumber, const int32_t* face,
                                  int32_t numFaceNodes, int32_t* slots);

// Numbers the nodes of a classic boundary zone: zoneNodes sorted, nodeNumberMap.
// On success the zone's faces are in memory, also when it was numbered already.
[[nodiscard]] bool FaceZoneGetNodeNumbers(FaceZone* zone, CaseFile* caseFile, int32_t totalNodes);

// The extremes of a set of cell numbers.
struct CellRange {
    int32_t lowest;   // INT32_MAX when the set is empty
    int32_t highest;  // INT32_MIN when the set is empty
};

// The numbering of FaceZoneGetNodeNumbers, with the same messages and
// result, for a first scan: a zone whose faces are not in memory is read
// through a buffer and not kept where its body allows it (binary, 4-byte
// integers, one node count), a large one by two threads, and loaded
// otherwise. `sideZero` gets the extremes of the non-zero cells on side 0 of
// the zone's faces, which decide the zone's parent cell zone.
[[nodiscard]] bool FaceZoneGetNodeNumbersWithoutFaces(FaceZone* zone, CaseFile* caseFile, int32_t totalNodes,
                                                      CellRange* sideZero);
// The same for a polygon zone, in order of first appearance in polyNodes.
[[nodiscard]] bool FaceZoneGetNodeNumsForPoly(FaceZone* zone, CaseFile* caseFile, int32_t totalNodes);

// Where FaceZoneWriteConnectivity writes: the host's node map (nodeMap, through
// ZorUtilDataNodeSetByRef, one-based), or a raw array (raw, zero-based items
// of 32 or 64 bits). rowWidth is informative: the width follows hostZoneType.
struct FaceZoneConnectivityTarget {
    ZorNodeMap nodeMap;  // host node map; used when raw is NULL
    void* raw;           // raw item array; NULL to use nodeMap
    bool raw64;          // raw items are 64-bit (else 32-bit)
    int32_t rowWidth;    // corners per element of the target
};
// Writes the boundary zone's faces as elements of hostZoneType, each node as
// its one-based place in the sorted zoneNodes; places behind a face's node
// count repeat its last node.
void FaceZoneWriteConnectivity(FaceZone* zone, int32_t hostZoneType,
                               const FaceZoneConnectivityTarget* target);
