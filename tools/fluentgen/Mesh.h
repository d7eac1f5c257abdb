// The meshes fluentgen writes, as streams: nodes, cells and faces are computed
// from their numbers, never stored.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "tools/fluentgen/FluentGen.h"

namespace fluentgen {
namespace detail {

// Receives faces in file order: node ids (normal into c0), c0, c1 (0: none).
class FaceVisitor {
  public:
    virtual ~FaceVisitor() = default;
    virtual void face(const int64_t* nodes, int n, int64_t c0, int64_t c1) = 0;
};

// Receives the centre and element type of each cell of a zone, in order.
class CellVisitor {
  public:
    virtual ~CellVisitor() = default;
    virtual void cell(int type, const Vec3& centre) = 0;
};

// Receives node coordinates in id order.
class NodeVisitor {
  public:
    virtual ~NodeVisitor() = default;
    virtual void node(const Vec3& p) = 0;
};

class Mesh {
  public:
    virtual ~Mesh() = default;

    int dims = 3;
    int64_t nodeCount = 0;
    int64_t cellCount = 0;
    int64_t faceCount = 0;
    std::vector<CellZoneInfo> cellZones;
    std::vector<FaceZoneInfo> faceZones;
    std::vector<FaceTreeInfo> trees;
    std::vector<FacePairsInfo> pairs;

    virtual Vec3 node(int64_t id) const = 0;
    virtual void nodes(int64_t first, int64_t last, NodeVisitor& v) const;
    virtual int cellType(int64_t cell) const = 0;
    virtual void cellNodes(int64_t cell, std::vector<int64_t>& out) const = 0;
    virtual Vec3 cellCentre(int64_t cell) const = 0;
    // The mean of a face's n nodes.
    Vec3 faceCentre(const int64_t* faceNodes, int n) const;
    virtual void cells(size_t cellZone, CellVisitor& v) const;
    // Faces of a zone; duplicate zones are served here from their originals.
    void faces(size_t faceZone, FaceVisitor& v) const;
    virtual void treeChildren(size_t tree, int64_t parent, std::vector<int64_t>& out) const;
    virtual std::pair<int64_t, int64_t> pair(size_t pairsIndex, int64_t k) const;

  protected:
    virtual void ownFaces(size_t faceZone, FaceVisitor& v) const = 0;
    // Adds, behind the zones made so far, a one-sided copy of `count` faces of
    // face zone `original` from its face `offset` (0-based; count -1: all),
    // with boundary type `bcType`, its Interface Face Parents (61) and, when
    // `childFaces`, a Child Faces (62) pairing each copy with its original.
    void addDuplicateZone(size_t original, int bcType, const std::string& name, bool childFaces,
                          int64_t offset = 0, int64_t count = -1);
    // Gives each zone its name section by the naming rule of the Spec.
    void nameZones(ZoneNames naming);
    struct Copy {
        int original = -1;   // index of the face zone copied, -1: not a copy
        int64_t offset = 0;  // first face copied, 0-based in the original
        int64_t count = 0;
    };
    std::vector<Copy> dupOf_;  // per face zone
};

// Builds the mesh of a spec; throws std::invalid_argument for a bad spec.
std::unique_ptr<Mesh> buildMesh(const Spec& spec);
std::unique_ptr<Mesh> buildBoxMesh(const Spec& spec);
std::unique_ptr<Mesh> buildHangingMesh(const Spec& spec);

// Default boundary types of the sides x-, x+, y-, y+, z-, z+.
int defaultBoundaryType(int side, int dims, bool axisymmetric);
const char* boundaryTypeWord(int bcType);
const char* cellZoneTypeWord(int type);
bool is3D(MeshKind kind);

}  // namespace detail
}  // namespace fluentgen
