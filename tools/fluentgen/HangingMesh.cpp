// A box of hexahedra (quadrilaterals in 2D) whose corner region of
// max(1, n/2) blocks along each axis is refined once, as an adapted mesh is:
// each refined block becomes a parent cell (in a cell zone of type 32) with
// eight children (four in 2D) in the fluid zone; each block face with a
// refined block on a side is a parent face (in a face zone of type 31) with
// four children (two in 2D). Coarse cells next to the region see the parent
// face; its children carry hanging nodes.
//
// Face Tree sections list the children of each parent face, a Cell Tree the
// children of each parent cell.
//
// Numbering. Nodes: the coarse grid (x fastest), then the new nodes of the
// refined region's fine grid, which has twice the resolution, in fine-grid
// order without the points that are coarse nodes. Cells: unrefined blocks in
// block order, then the children of each refined block, then the parents.
// Faces: the interior zone (coarse-coarse faces, faces inside refined blocks,
// children of split faces), the parent faces, then one zone per side (coarse
// faces, then children).
#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include "tools/fluentgen/Mesh.h"

namespace fluentgen {
namespace detail {
namespace {

class HangingMesh : public Mesh {
  public:
    explicit HangingMesh(const Spec& spec);

    Vec3 node(int64_t id) const override;
    int cellType(int64_t) const override { return dims == 3 ? 4 : 3; }
    void cellNodes(int64_t cell, std::vector<int64_t>& out) const override;
    Vec3 cellCentre(int64_t cell) const override;
    void cells(size_t cellZone, CellVisitor& v) const override;
    void treeChildren(size_t tree, int64_t parent, std::vector<int64_t>& out) const override;

  protected:
    void ownFaces(size_t faceZone, FaceVisitor& v) const override;

  private:
    struct B {
        int c[3];
    };
    bool inR(const int* b) const { return b[0] < r_[0] && b[1] < r_[1] && b[2] < r_[2]; }
    bool exists(const int* b) const {
        return b[0] >= 0 && b[1] >= 0 && b[2] >= 0 && b[0] < n_[0] && b[1] < n_[1] && b[2] < n_[2];
    }
    int64_t linear(const int* b) const { return b[0] + int64_t(n_[0]) * (b[1] + int64_t(n_[1]) * b[2]); }
    int64_t refinedBefore(const int* b) const;
    int64_t rIndex(const int* b) const { return b[0] + int64_t(r_[0]) * (b[1] + int64_t(r_[1]) * b[2]); }
    int64_t coarseCell(const int* b) const { return 1 + linear(b) - refinedBefore(b); }
    int64_t fineCell(const int* b, const int* child) const {
        return unrefined_ + kids_ * rIndex(b) + (child[0] + 2 * child[1] + 4 * child[2]) + 1;
    }
    int64_t parentCell(const int* b) const { return unrefined_ + kids_ * refined_ + rIndex(b) + 1; }
    int64_t gridId(const int* g) const {
        return 1 + g[0] + int64_t(n_[0] + 1) * (g[1] + int64_t(n_[1] + 1) * g[2]);
    }
    int64_t fineId(const int* f) const;
    int64_t evenBefore(const int* f) const;
    // Nodes of the face on the plane normal to `axis` whose low corner is `g`
    // (coarse or fine grid coordinates), oriented into the side `sign` (+1/-1).
    int faceNodes(bool fine, int axis, const int* g, int sign, int64_t* out) const;
    // Blocks of a side, in side order.
    void sideBlocks(int side, std::vector<B>& out) const;
    // Calls fn(b, axis) for every block face between b and b + e_axis, in order.
    template <class Fn>
    void interBlockFaces(Fn fn) const;
    void splitFace(const int* b, int axis, bool parent, FaceVisitor& v) const;
    Vec3 centreOf(const int* low, double size) const;  // of a cell of `size` blocks with low corner `low`

    int n_[3];
    int r_[3];
    double h_[3], o_[3];
    int kids_ = 8;      // children per refined cell
    int faceKids_ = 4;  // children per split face
    int64_t refined_ = 0, unrefined_ = 0, grid_ = 0, fineDims_[3] = {1, 1, 1};
    int64_t splitCount_ = 0;
    enum Kind { kInterior, kParents, kSide };
    std::vector<std::pair<Kind, int>> sources_;  // per own face zone: kind, side
    std::vector<int64_t> sideChildBase_;         // per own face zone of a side: first child face
    int interiorZone_ = -1, parentZone_ = -1;
    std::vector<int> treeSide_;  // per tree: -1 interior face tree, -2 cell tree, else the side
    std::vector<int64_t> treeChildBase_;
};

HangingMesh::HangingMesh(const Spec& spec) {
    dims = spec.mesh == MeshKind::Hex ? 3 : 2;
    for (int a = 0; a < 3; ++a) {
        n_[a] = a < dims ? spec.cells[static_cast<size_t>(a)] : 1;
        if (n_[a] < 1) {
            throw std::invalid_argument("cell counts must be at least 1");
        }
        r_[a] = a < dims ? std::max(1, n_[a] / 2) : 1;
        h_[a] = a < dims ? spec.spacing[static_cast<size_t>(a)] : 0.0;
        o_[a] = a < dims ? spec.origin[static_cast<size_t>(a)] : 0.0;
        fineDims_[a] = a < dims ? 2 * r_[a] + 1 : 1;
    }
    kids_ = dims == 3 ? 8 : 4;
    faceKids_ = dims == 3 ? 4 : 2;
    refined_ = int64_t(r_[0]) * r_[1] * r_[2];
    unrefined_ = int64_t(n_[0]) * n_[1] * n_[2] - refined_;
    grid_ = int64_t(n_[0] + 1) * (n_[1] + 1) * (dims == 3 ? n_[2] + 1 : 1);
    int64_t coarseInFine = int64_t(r_[0] + 1) * (r_[1] + 1) * (dims == 3 ? r_[2] + 1 : 1);
    nodeCount = grid_ + fineDims_[0] * fineDims_[1] * fineDims_[2] - coarseInFine;
    cellCount = unrefined_ + kids_ * refined_ + refined_;

    CellZoneInfo fluid;
    fluid.id = 1;
    fluid.type = spec.cellZoneTypes[0];
    fluid.elementType = spec.mixedCellBodies ? 0 : (dims == 3 ? 4 : 3);
    fluid.first = 1;
    fluid.last = unrefined_ + kids_ * refined_;
    fluid.name = cellZoneTypeWord(fluid.type);
    cellZones.push_back(fluid);
    CellZoneInfo parents = fluid;
    parents.id = 2;
    parents.type = 32;
    parents.first = fluid.last + 1;
    parents.last = cellCount;
    parents.name = "parent-cells";
    cellZones.push_back(parents);

    int64_t a = 0, split = 0;
    interBlockFaces([&](const int* b, int axis) {
        int nb[3] = {b[0], b[1], b[2]};
        nb[axis]++;
        if (inR(b) || inR(nb)) {
            ++split;
        } else {
            ++a;
        }
    });
    splitCount_ = split;
    int faceType = dims == 3 ? 4 : 2;
    if (spec.mixedFaceTypes && dims == 3) {
        faceType = 0;
    }
    auto addZone = [&](Kind kind, int side, int bc, const std::string& name, int64_t count, bool boundary) {
        FaceZoneInfo z;
        z.id = static_cast<int>(cellZones.size() + faceZones.size()) + 1;
        z.bcType = bc;
        z.faceType = faceType;
        z.first = faceCount + 1;
        z.last = faceCount + count;
        faceCount += count;
        z.name = name;
        z.cellZoneId = kind == kParents ? 2 : 1;
        z.boundary = boundary;
        faceZones.push_back(z);
        sources_.push_back({kind, side});
        sideChildBase_.push_back(0);
    };
    int64_t inner = refined_ * dims * faceKids_;
    interiorZone_ = static_cast<int>(faceZones.size());
    addZone(kInterior, -1, 2, "interior-fluid", a + inner + split * faceKids_, false);

    std::vector<B> blocks;
    int64_t boundaryParents = 0;
    std::vector<int64_t> sideRefined(static_cast<size_t>(2 * dims)),
        sideCoarse(static_cast<size_t>(2 * dims));
    for (int side = 0; side < 2 * dims; ++side) {
        sideBlocks(side, blocks);
        for (const B& b : blocks) {
            if (inR(b.c)) {
                sideRefined[static_cast<size_t>(side)]++;
            } else {
                sideCoarse[static_cast<size_t>(side)]++;
            }
        }
        boundaryParents += sideRefined[static_cast<size_t>(side)];
    }
    parentZone_ = static_cast<int>(faceZones.size());
    addZone(kParents, -1, 31, "parent-faces", split + boundaryParents, false);

    static const char* sideNames[6] = {"xmin", "xmax", "ymin", "ymax", "zmin", "zmax"};
    std::vector<int> sideZone(static_cast<size_t>(2 * dims), -1);
    for (int side = 0; side < 2 * dims; ++side) {
        int bc = static_cast<size_t>(side) < spec.boundaryTypes.size()
                     ? spec.boundaryTypes[static_cast<size_t>(side)]
                     : defaultBoundaryType(side, dims, spec.axisymmetric);
        sideZone[static_cast<size_t>(side)] = static_cast<int>(faceZones.size());
        addZone(kSide, side, bc, std::string(boundaryTypeWord(bc)) + "-" + sideNames[side],
                sideCoarse[static_cast<size_t>(side)] + faceKids_ * sideRefined[static_cast<size_t>(side)],
                true);
        sideChildBase_.back() = faceZones.back().first + sideCoarse[static_cast<size_t>(side)];
    }

    // Trees: split interior faces, then each side's parents, then the cells.
    const FaceZoneInfo& interior = faceZones[static_cast<size_t>(interiorZone_)];
    const FaceZoneInfo& parentFaces = faceZones[static_cast<size_t>(parentZone_)];
    if (split > 0) {
        FaceTreeInfo t;
        t.sectionBase = 59;
        t.first = parentFaces.first;
        t.last = parentFaces.first + split - 1;
        t.parentZoneId = parentFaces.id;
        t.childZoneId = interior.id;
        trees.push_back(t);
        treeSide_.push_back(-1);
        treeChildBase_.push_back(interior.first + a + inner);
    }
    int64_t next = parentFaces.first + split;
    for (int side = 0; side < 2 * dims; ++side) {
        int64_t k = sideRefined[static_cast<size_t>(side)];
        if (k == 0) {
            continue;
        }
        const FaceZoneInfo& sz = faceZones[static_cast<size_t>(sideZone[static_cast<size_t>(side)])];
        FaceTreeInfo t;
        t.sectionBase = 59;
        t.first = next;
        t.last = next + k - 1;
        t.parentZoneId = parentFaces.id;
        t.childZoneId = sz.id;
        trees.push_back(t);
        treeSide_.push_back(side);
        treeChildBase_.push_back(sideChildBase_[static_cast<size_t>(sideZone[static_cast<size_t>(side)])]);
        next += k;
    }
    FaceTreeInfo ct;
    ct.sectionBase = 58;
    ct.first = cellZones[1].first;
    ct.last = cellZones[1].last;
    ct.parentZoneId = cellZones[1].id;
    ct.childZoneId = cellZones[0].id;
    trees.push_back(ct);
    treeSide_.push_back(-2);
    treeChildBase_.push_back(unrefined_ + 1);

    // A one-sided copy of the boundary parent faces, paired with them by
    // Interface Face Parents and Child Faces sections, as interfaces over a
    // refined boundary leave them. The copies bound no cell of the fluid zone.
    addDuplicateZone(static_cast<size_t>(parentZone_), 1012, "overlap-parent-faces", true, split,
                     boundaryParents);
    if (spec.extraSections) {
        int hiSide = dims == 3 ? 5 : 3;
        int loSide = dims == 3 ? 4 : 2;
        addDuplicateZone(
            static_cast<size_t>(sideZone[static_cast<size_t>(hiSide)]), 1012,
            "overlap-" + faceZones[static_cast<size_t>(sideZone[static_cast<size_t>(hiSide)])].name, true);
        addDuplicateZone(
            static_cast<size_t>(sideZone[static_cast<size_t>(loSide)]), 38,
            "shadow-" + faceZones[static_cast<size_t>(sideZone[static_cast<size_t>(loSide)])].name, false);
    }
    nameZones(spec.zoneNames);
}

int64_t HangingMesh::refinedBefore(const int* b) const {
    int64_t n = int64_t(std::min(b[2], r_[2])) * r_[0] * r_[1];
    if (b[2] < r_[2]) {
        n += int64_t(std::min(b[1], r_[1])) * r_[0];
        if (b[1] < r_[1]) {
            n += std::min(b[0], r_[0]);
        }
    }
    return n;
}

int64_t HangingMesh::evenBefore(const int* f) const {
    // Fine points with all coordinates even (coarse nodes) before f in fine-grid order.
    int64_t n = int64_t((f[2] + 1) / 2) * (r_[0] + 1) * (r_[1] + 1);
    if (f[2] % 2 == 0) {
        n += int64_t((f[1] + 1) / 2) * (r_[0] + 1);
        if (f[1] % 2 == 0) {
            n += (f[0] + 1) / 2;
        }
    }
    return n;
}

int64_t HangingMesh::fineId(const int* f) const {
    if (f[0] % 2 == 0 && f[1] % 2 == 0 && f[2] % 2 == 0) {
        int g[3] = {f[0] / 2, f[1] / 2, f[2] / 2};
        return gridId(g);
    }
    int64_t lin = f[0] + fineDims_[0] * (f[1] + fineDims_[1] * f[2]);
    return grid_ + 1 + lin - evenBefore(f);
}

Vec3 HangingMesh::node(int64_t id) const {
    if (id < 1 || id > nodeCount) {
        throw std::out_of_range("fluentgen: node id out of range");
    }
    if (id <= grid_) {
        int64_t m = id - 1;
        double x = double(m % (n_[0] + 1));
        m /= (n_[0] + 1);
        double y = double(m % (n_[1] + 1));
        double z = double(m / (n_[1] + 1));
        return {o_[0] + x * h_[0], o_[1] + y * h_[1], dims == 3 ? o_[2] + z * h_[2] : 0.0};
    }
    // The new node m (0-based) is the fine point L with L - evenBefore(L) == m
    // and L not all even: the smallest L whose count up to and including it exceeds m.
    int64_t m = id - grid_ - 1;
    int64_t total = fineDims_[0] * fineDims_[1] * fineDims_[2];
    auto point = [&](int64_t lin, int* f) {
        f[0] = static_cast<int>(lin % fineDims_[0]);
        f[1] = static_cast<int>((lin / fineDims_[0]) % fineDims_[1]);
        f[2] = static_cast<int>(lin / (fineDims_[0] * fineDims_[1]));
    };
    auto newUpTo = [&](int64_t lin) {  // new points with fine index <= lin
        int f[3];
        point(lin, f);
        bool even = f[0] % 2 == 0 && f[1] % 2 == 0 && f[2] % 2 == 0;
        return lin - evenBefore(f) + (even ? 0 : 1);
    };
    int64_t lo = 0, hi = total - 1;
    while (lo < hi) {
        int64_t mid = (lo + hi) / 2;
        if (newUpTo(mid) > m) {
            hi = mid;
        } else {
            lo = mid + 1;
        }
    }
    int f[3];
    point(lo, f);
    return {o_[0] + 0.5 * f[0] * h_[0], o_[1] + 0.5 * f[1] * h_[1],
            dims == 3 ? o_[2] + 0.5 * f[2] * h_[2] : 0.0};
}

void HangingMesh::cellNodes(int64_t cell, std::vector<int64_t>& out) const {
    out.clear();
    if (cell < 1 || cell > cellCount) {
        throw std::out_of_range("fluentgen: cell id out of range");
    }
    // Corners in hexahedron (quadrilateral) order, in grid units of `scale`.
    auto corners = [&](const int* low, bool fine) {
        static const int hex[8][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0},
                                      {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
        int n = dims == 3 ? 8 : 4;
        for (int k = 0; k < n; ++k) {
            int g[3] = {low[0] + hex[k][0], low[1] + hex[k][1], dims == 3 ? low[2] + hex[k][2] : 0};
            out.push_back(fine ? fineId(g) : gridId(g));
        }
    };
    if (cell <= unrefined_) {
        // The unrefined block with `cell - 1` unrefined blocks before it.
        int64_t total = int64_t(n_[0]) * n_[1] * n_[2];
        auto blockOf = [&](int64_t lin, int* b) {
            b[0] = static_cast<int>(lin % n_[0]);
            b[1] = static_cast<int>((lin / n_[0]) % n_[1]);
            b[2] = static_cast<int>(lin / (int64_t(n_[0]) * n_[1]));
        };
        int64_t lo = 0, hi = total - 1;
        while (lo < hi) {
            int64_t mid = (lo + hi) / 2;
            int b[3];
            blockOf(mid, b);
            int64_t upTo = mid - refinedBefore(b) + (inR(b) ? 0 : 1);
            if (upTo >= cell) {
                hi = mid;
            } else {
                lo = mid + 1;
            }
        }
        int b[3];
        blockOf(lo, b);
        corners(b, false);
        return;
    }
    int64_t m = cell - unrefined_ - 1;
    bool parent = m >= kids_ * refined_;
    int64_t r = parent ? m - kids_ * refined_ : m / kids_;
    int b[3] = {static_cast<int>(r % r_[0]), static_cast<int>((r / r_[0]) % r_[1]),
                static_cast<int>(r / (int64_t(r_[0]) * r_[1]))};
    if (parent) {
        corners(b, false);
        return;
    }
    int child = static_cast<int>(m % kids_);
    int low[3] = {2 * b[0] + (child & 1), 2 * b[1] + ((child >> 1) & 1), 2 * b[2] + ((child >> 2) & 1)};
    corners(low, true);
}

Vec3 HangingMesh::cellCentre(int64_t cell) const {
    // From the first corner, in the same arithmetic as cells().
    std::vector<int64_t> ns;
    cellNodes(cell, ns);
    bool fine = cell > unrefined_ && cell <= unrefined_ + kids_ * refined_;
    Vec3 a = node(ns[0]);
    double size = fine ? 0.5 : 1.0;
    int low[3] = {static_cast<int>(std::lround((a.x - o_[0]) / (size * h_[0]))),
                  static_cast<int>(std::lround((a.y - o_[1]) / (size * h_[1]))),
                  dims == 3 ? static_cast<int>(std::lround((a.z - o_[2]) / (size * h_[2]))) : 0};
    return centreOf(low, size);
}

Vec3 HangingMesh::centreOf(const int* low, double size) const {
    return Vec3{o_[0] + (low[0] + 0.5) * size * h_[0], o_[1] + (low[1] + 0.5) * size * h_[1],
                dims == 3 ? o_[2] + (low[2] + 0.5) * size * h_[2] : 0.0};
}

void HangingMesh::cells(size_t cellZone, CellVisitor& v) const {
    int type = dims == 3 ? 4 : 3;
    auto centre = [&](const int* low, double size) { return centreOf(low, size); };
    int b[3];
    if (cellZone == 0) {
        for (b[2] = 0; b[2] < n_[2]; ++b[2]) {
            for (b[1] = 0; b[1] < n_[1]; ++b[1]) {
                for (b[0] = 0; b[0] < n_[0]; ++b[0]) {
                    if (!inR(b)) {
                        v.cell(type, centre(b, 1.0));
                    }
                }
            }
        }
    }
    for (b[2] = 0; b[2] < r_[2]; ++b[2]) {
        for (b[1] = 0; b[1] < r_[1]; ++b[1]) {
            for (b[0] = 0; b[0] < r_[0]; ++b[0]) {
                if (cellZone == 1) {
                    v.cell(type, centre(b, 1.0));
                    continue;
                }
                for (int child = 0; child < kids_; ++child) {
                    int low[3] = {2 * b[0] + (child & 1), 2 * b[1] + ((child >> 1) & 1),
                                  dims == 3 ? 2 * b[2] + ((child >> 2) & 1) : 0};
                    v.cell(type, centre(low, 0.5));
                }
            }
        }
    }
}

int HangingMesh::faceNodes(bool fine, int axis, const int* g, int sign, int64_t* out) const {
    auto id = [&](int x, int y, int z) {
        int p[3] = {x, y, z};
        return fine ? fineId(p) : gridId(p);
    };
    if (dims == 2) {
        // Along y on an x plane the cell lies left (-x) of n0 -> n1; along x on
        // a y plane it lies left (+y).
        int64_t p0, p1;
        if (axis == 0) {
            p0 = id(g[0], g[1], 0);
            p1 = id(g[0], g[1] + 1, 0);
            if (sign > 0) {
                std::swap(p0, p1);
            }
        } else {
            p0 = id(g[0], g[1], 0);
            p1 = id(g[0] + 1, g[1], 0);
            if (sign < 0) {
                std::swap(p0, p1);
            }
        }
        out[0] = p0;
        out[1] = p1;
        return 2;
    }
    int u = (axis + 1) % 3, v = (axis + 2) % 3;
    static const int cyc[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};  // normal +axis
    for (int k = 0; k < 4; ++k) {
        int p[3] = {g[0], g[1], g[2]};
        p[u] += cyc[k][0];
        p[v] += cyc[k][1];
        out[sign > 0 ? k : 3 - k] = fine ? fineId(p) : gridId(p);
    }
    return 4;
}

template <class Fn>
void HangingMesh::interBlockFaces(Fn fn) const {
    int b[3];
    for (b[2] = 0; b[2] < n_[2]; ++b[2]) {
        for (b[1] = 0; b[1] < n_[1]; ++b[1]) {
            for (b[0] = 0; b[0] < n_[0]; ++b[0]) {
                for (int axis = 0; axis < dims; ++axis) {
                    if (b[axis] + 1 < n_[axis]) {
                        fn(b, axis);
                    }
                }
            }
        }
    }
}

void HangingMesh::sideBlocks(int side, std::vector<B>& out) const {
    out.clear();
    int axis = side / 2;
    int pos = side % 2 ? n_[axis] - 1 : 0;
    int u = axis == 0 ? 1 : 0;  // faster running axis
    int w = axis == 2 ? 1 : 2;  // slower running axis
    for (int j = 0; j < n_[w]; ++j) {
        for (int i = 0; i < n_[u]; ++i) {
            B b;
            b.c[axis] = pos;
            b.c[u] = i;
            b.c[w] = j;
            out.push_back(b);
        }
    }
}

// The split face between b and b + e_axis: the parent, or its children.
void HangingMesh::splitFace(const int* b, int axis, bool parent, FaceVisitor& v) const {
    int nb[3] = {b[0], b[1], b[2]};
    nb[axis]++;
    bool lowR = inR(b), highR = inR(nb);
    int64_t nodes[4];
    if (parent) {
        int g[3] = {b[0], b[1], b[2]};
        g[axis]++;
        int64_t c0, c1;
        int sign;
        if (!lowR) {
            c0 = coarseCell(b);
            c1 = parentCell(nb);
            sign = -1;
        } else if (!highR) {
            c0 = coarseCell(nb);
            c1 = parentCell(b);
            sign = +1;
        } else {
            c0 = parentCell(b);
            c1 = parentCell(nb);
            sign = -1;
        }
        int n = faceNodes(false, axis, g, sign, nodes);
        v.face(nodes, n, c0, c1);
        return;
    }
    int u = (axis + 1) % 3, w = (axis + 2) % 3;
    int su = dims == 3 || u < 2 ? 2 : 1, sw = dims == 3 || w < 2 ? 2 : 1;
    for (int a = 0; a < sw; ++a) {
        for (int c = 0; c < su; ++c) {
            int f[3];
            f[axis] = 2 * (b[axis] + 1);
            f[u] = 2 * b[u] + c;
            f[w] = 2 * b[w] + a;
            if (dims == 2) {
                f[2] = 0;
            }
            int lowChild[3] = {0, 0, 0}, highChild[3] = {0, 0, 0};
            lowChild[axis] = 1;
            highChild[axis] = 0;
            lowChild[u] = highChild[u] = (su == 2) ? c : 0;
            lowChild[w] = highChild[w] = (sw == 2) ? a : 0;
            if (dims == 2) {
                lowChild[2] = highChild[2] = 0;
            }
            int64_t c0, c1;
            int sign;
            if (lowR) {
                c0 = fineCell(b, lowChild);
                c1 = highR ? fineCell(nb, highChild) : coarseCell(nb);
                sign = -1;
            } else {
                c0 = fineCell(nb, highChild);
                c1 = coarseCell(b);
                sign = +1;
            }
            int n = faceNodes(true, axis, f, sign, nodes);
            v.face(nodes, n, c0, c1);
        }
    }
}

void HangingMesh::ownFaces(size_t faceZone, FaceVisitor& v) const {
    Kind kind = sources_[faceZone].first;
    int side = sources_[faceZone].second;
    int64_t nodes[4];
    if (kind == kInterior) {
        interBlockFaces([&](const int* b, int axis) {
            int nb[3] = {b[0], b[1], b[2]};
            nb[axis]++;
            if (inR(b) || inR(nb)) {
                return;
            }
            int g[3] = {b[0], b[1], b[2]};
            g[axis]++;
            int n = faceNodes(false, axis, g, -1, nodes);
            v.face(nodes, n, coarseCell(b), coarseCell(nb));
        });
        // Faces inside refined blocks: between the children on either side of
        // each middle plane.
        int b[3];
        for (b[2] = 0; b[2] < r_[2]; ++b[2]) {
            for (b[1] = 0; b[1] < r_[1]; ++b[1]) {
                for (b[0] = 0; b[0] < r_[0]; ++b[0]) {
                    for (int axis = 0; axis < dims; ++axis) {
                        int u = (axis + 1) % 3, w = (axis + 2) % 3;
                        int su = dims == 3 || u < 2 ? 2 : 1, sw = dims == 3 || w < 2 ? 2 : 1;
                        for (int a = 0; a < sw; ++a) {
                            for (int c = 0; c < su; ++c) {
                                int f[3] = {0, 0, 0};
                                f[axis] = 2 * b[axis] + 1;
                                f[u] = 2 * b[u] + c;
                                f[w] = 2 * b[w] + a;
                                if (dims == 2) {
                                    f[2] = 0;
                                }
                                int lo[3] = {0, 0, 0}, hi[3] = {0, 0, 0};
                                hi[axis] = 1;
                                lo[u] = hi[u] = su == 2 ? c : 0;
                                lo[w] = hi[w] = sw == 2 ? a : 0;
                                if (dims == 2) {
                                    lo[2] = hi[2] = 0;
                                }
                                int n = faceNodes(true, axis, f, -1, nodes);
                                v.face(nodes, n, fineCell(b, lo), fineCell(b, hi));
                            }
                        }
                    }
                }
            }
        }
        interBlockFaces([&](const int* b, int axis) {
            int nb[3] = {b[0], b[1], b[2]};
            nb[axis]++;
            if (inR(b) || inR(nb)) {
                splitFace(b, axis, false, v);
            }
        });
        return;
    }
    std::vector<B> blocks;
    if (kind == kParents) {
        interBlockFaces([&](const int* b, int axis) {
            int nb[3] = {b[0], b[1], b[2]};
            nb[axis]++;
            if (inR(b) || inR(nb)) {
                splitFace(b, axis, true, v);
            }
        });
        for (int s = 0; s < 2 * dims; ++s) {
            sideBlocks(s, blocks);
            int axis = s / 2;
            for (const B& bl : blocks) {
                if (!inR(bl.c)) {
                    continue;
                }
                int g[3] = {bl.c[0], bl.c[1], bl.c[2]};
                g[axis] += s % 2;
                int n = faceNodes(false, axis, g, s % 2 ? -1 : +1, nodes);
                v.face(nodes, n, parentCell(bl.c), 0);
            }
        }
        return;
    }
    // A side: coarse faces first, then the children of refined blocks.
    sideBlocks(side, blocks);
    int axis = side / 2;
    int sign = side % 2 ? -1 : +1;
    for (const B& bl : blocks) {
        if (inR(bl.c)) {
            continue;
        }
        int g[3] = {bl.c[0], bl.c[1], bl.c[2]};
        g[axis] += side % 2;
        int n = faceNodes(false, axis, g, sign, nodes);
        v.face(nodes, n, coarseCell(bl.c), 0);
    }
    int u = (axis + 1) % 3, w = (axis + 2) % 3;
    int su = dims == 3 || u < 2 ? 2 : 1, sw = dims == 3 || w < 2 ? 2 : 1;
    for (const B& bl : blocks) {
        if (!inR(bl.c)) {
            continue;
        }
        for (int a = 0; a < sw; ++a) {
            for (int c = 0; c < su; ++c) {
                int f[3] = {0, 0, 0};
                f[axis] = 2 * (bl.c[axis] + side % 2);
                f[u] = 2 * bl.c[u] + c;
                f[w] = 2 * bl.c[w] + a;
                if (dims == 2) {
                    f[2] = 0;
                }
                int child[3] = {0, 0, 0};
                child[axis] = side % 2;
                child[u] = su == 2 ? c : 0;
                child[w] = sw == 2 ? a : 0;
                if (dims == 2) {
                    child[2] = 0;
                }
                int n = faceNodes(true, axis, f, sign, nodes);
                v.face(nodes, n, fineCell(bl.c, child), 0);
            }
        }
    }
}

void HangingMesh::treeChildren(size_t tree, int64_t parent, std::vector<int64_t>& out) const {
    out.clear();
    const FaceTreeInfo& t = trees[tree];
    if (parent < t.first || parent > t.last) {
        return;
    }
    int per = t.sectionBase == 58 ? kids_ : faceKids_;
    int64_t base = treeChildBase_[tree] + per * (parent - t.first);
    for (int k = 0; k < per; ++k) {
        out.push_back(base + k);
    }
}

}  // namespace

std::unique_ptr<Mesh> buildHangingMesh(const Spec& spec) {
    return std::unique_ptr<Mesh>(new HangingMesh(spec));
}

}  // namespace detail
}  // namespace fluentgen
