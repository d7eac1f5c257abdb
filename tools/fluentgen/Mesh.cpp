#include "tools/fluentgen/Mesh.h"

#include <algorithm>
#include <stdexcept>

namespace fluentgen {
namespace detail {

void Mesh::nodes(int64_t first, int64_t last, NodeVisitor& v) const {
    for (int64_t id = first; id <= last; ++id) {
        v.node(node(id));
    }
}

Vec3 Mesh::faceCentre(const int64_t* faceNodes, int n) const {
    Vec3 c;
    for (int a = 0; a < n; ++a) {
        Vec3 p = node(faceNodes[a]);
        c.x += p.x;
        c.y += p.y;
        c.z += p.z;
    }
    c.x /= n;
    c.y /= n;
    c.z /= n;
    return c;
}

void Mesh::cells(size_t cellZone, CellVisitor& v) const {
    const CellZoneInfo& z = cellZones[cellZone];
    for (int64_t c = z.first; c <= z.last; ++c) {
        v.cell(cellType(c), cellCentre(c));
    }
}

namespace {

// Passes on the faces of a range with the second cell dropped: a copy is one-sided.
class OneSided : public FaceVisitor {
  public:
    OneSided(FaceVisitor& inner, int64_t offset, int64_t count)
        : inner_(inner), offset_(offset), count_(count) {}
    void face(const int64_t* nodes, int n, int64_t c0, int64_t) override {
        if (k_ >= offset_ && k_ < offset_ + count_) {
            inner_.face(nodes, n, c0, 0);
        }
        ++k_;
    }

  private:
    FaceVisitor& inner_;
    int64_t offset_, count_, k_ = 0;
};

}  // namespace

void Mesh::faces(size_t faceZone, FaceVisitor& v) const {
    if (faceZone < dupOf_.size() && dupOf_[faceZone].original >= 0) {
        const Copy& c = dupOf_[faceZone];
        OneSided one(v, c.offset, c.count);
        ownFaces(static_cast<size_t>(c.original), one);
        return;
    }
    ownFaces(faceZone, v);
}

void Mesh::treeChildren(size_t, int64_t, std::vector<int64_t>& out) const {
    out.clear();
}

std::pair<int64_t, int64_t> Mesh::pair(size_t pairsIndex, int64_t k) const {
    const FacePairsInfo& p = pairs[pairsIndex];
    // Pairs of a copy with its original: zoneA is the copy, zoneB the original.
    for (size_t zi = 0; zi < faceZones.size() && zi < dupOf_.size(); ++zi) {
        const Copy& c = dupOf_[zi];
        if (faceZones[zi].id != p.zoneA || c.original < 0 || k < 0 || k >= p.count) {
            continue;
        }
        int64_t original = faceZones[static_cast<size_t>(c.original)].first + c.offset + k;
        if (p.sectionBase == 61) {
            return {original, original};  // interface face parents: the original on both sides
        }
        return {faceZones[zi].first + k, original};
    }
    throw std::out_of_range("fluentgen: no such face pair");
}

void Mesh::addDuplicateZone(size_t original, int bcType, const std::string& name, bool childFaces,
                            int64_t offset, int64_t count) {
    dupOf_.resize(faceZones.size());
    const FaceZoneInfo o = faceZones[original];  // a copy: faceZones grows below
    if (count < 0) {
        count = o.last - o.first + 1 - offset;
    }
    if (count <= 0) {
        return;
    }
    FaceZoneInfo z = o;
    int maxId = 0;
    for (const CellZoneInfo& c : cellZones) {
        maxId = std::max(maxId, c.id);
    }
    for (const FaceZoneInfo& f : faceZones) {
        maxId = std::max(maxId, f.id);
    }
    z.id = maxId + 1;
    z.bcType = bcType;
    z.name = name;
    z.boundary = false;
    z.first = faceCount + 1;
    z.last = faceCount + count;
    faceCount += count;
    faceZones.push_back(z);
    Copy copy;
    copy.original = static_cast<int>(original);
    copy.offset = offset;
    copy.count = count;
    dupOf_.push_back(copy);

    FacePairsInfo parents;
    parents.sectionBase = 61;
    parents.first = z.first;
    parents.last = z.last;
    parents.zoneA = z.id;
    parents.zoneB = o.id;
    parents.count = count;
    pairs.push_back(parents);
    if (childFaces) {
        FacePairsInfo kids;
        kids.sectionBase = 62;
        kids.first = 1;
        kids.last = count;
        kids.zoneA = z.id;
        kids.zoneB = o.id;
        kids.count = count;
        pairs.push_back(kids);
    }
}

void Mesh::nameZones(ZoneNames naming) {
    int k = 0;
    auto pick = [&]() {
        int s = 0;
        switch (naming) {
            case ZoneNames::Section39:
                s = 39;
                break;
            case ZoneNames::Section45:
                s = 45;
                break;
            case ZoneNames::None:
                s = 0;
                break;
            case ZoneNames::Varied:
                s = (k % 3 == 0) ? 39 : (k % 3 == 1) ? 45 : 0;
                break;
        }
        ++k;
        return s;
    };
    for (CellZoneInfo& z : cellZones) {
        z.nameSection = pick();
    }
    for (FaceZoneInfo& z : faceZones) {
        z.nameSection = pick();
    }
}

int defaultBoundaryType(int side, int dims, bool axisymmetric) {
    // x-: velocity inlet, x+: pressure outlet, y-: wall (axis when axisymmetric),
    // y+: pressure far field (wall in 2D), z-: symmetry, z+: pressure inlet.
    static const int types3[6] = {10, 5, 3, 9, 7, 4};
    static const int types2[4] = {10, 5, 3, 3};
    if (dims == 2) {
        if (side == 2 && axisymmetric) {
            return 37;
        }
        return types2[side];
    }
    return types3[side];
}

const char* boundaryTypeWord(int bcType) {
    switch (bcType) {
        case 2:
            return "interior";
        case 3:
            return "wall";
        case 4:
            return "pressure-inlet";
        case 5:
            return "pressure-outlet";
        case 7:
            return "symmetry";
        case 8:
            return "periodic-shadow";
        case 9:
            return "pressure-far-field";
        case 10:
            return "velocity-inlet";
        case 12:
            return "periodic";
        case 14:
            return "fan";
        case 20:
            return "mass-flow-inlet";
        case 24:
            return "interface";
        case 31:
            return "parent";
        case 36:
            return "outflow";
        case 37:
            return "axis";
        default:
            return "overlap";
    }
}

const char* cellZoneTypeWord(int type) {
    switch (type) {
        case 1:
            return "fluid";
        case 17:
            return "solid";
        case 32:
            return "parent";
        default:
            return "fluid";
    }
}

bool is3D(MeshKind kind) {
    switch (kind) {
        case MeshKind::Quad:
        case MeshKind::Tri:
        case MeshKind::Mixed2D:
        case MeshKind::Polygonal:
            return false;
        default:
            return true;
    }
}

std::unique_ptr<Mesh> buildMesh(const Spec& spec) {
    if (spec.hanging) {
        return buildHangingMesh(spec);
    }
    return buildBoxMesh(spec);
}

}  // namespace detail
}  // namespace fluentgen
