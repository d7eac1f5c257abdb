// The box mesh: nx*ny*nz blocks (nx*ny in 2D), each cut by a template into
// cells. A template lists its vertices (block corners, the block centre, the
// middles of the block's x-edges) and cells; its faces are derived once:
// faces shared by two of its cells are internal, the others lie on one of the
// block's sides and are matched with the neighbour's side faces.
//
// Numbering. Nodes: grid corners first (x fastest), then block centres (by
// layer), then x-edge middles. Cells: cell zone by cell zone (slabs along x),
// inside a slab block by block with x fastest, then y, then z, and a block's
// cells in template order. Faces: zone by zone, each zone in block order.
#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <stdexcept>
#include <string>

#include "tools/fluentgen/Mesh.h"

namespace fluentgen {
namespace detail {
namespace {

enum VKind { kCorner, kCentre, kXMid };

struct TVert {
    VKind kind;
    int a, b, c;  // corner offsets, or the y/z offsets of an x-edge middle
    double p[3];  // position in the unit block
};

struct TCell {
    int type;                             // Fluent element type
    std::vector<int> v;                   // vertices
    std::vector<std::vector<int>> faces;  // explicit faces (polyhedra); empty: by type
};

struct TFace {
    std::vector<int> v;  // oriented into c0
    int c0 = 0;
    int c1 = -1;  // -1 on a side
};

struct Template {
    int dims = 3;
    std::vector<TVert> verts;
    std::vector<TCell> cells;
    std::vector<TFace> internal;
    std::vector<TFace> side[6];
    std::vector<std::array<double, 3>> centroid;  // per cell, mean of its vertices
    bool hasCentre = false;
    bool hasXMid = false;
    int sizeMask = 0;  // bit n set when a face of n nodes occurs
    std::set<int> types;
};

// Local faces of the classic shapes, any orientation (fixed later by geometry).
const std::vector<std::vector<int>>& shapeFaces(int type) {
    static const std::vector<std::vector<int>> tet = {{0, 1, 2}, {0, 1, 3}, {1, 2, 3}, {0, 2, 3}};
    static const std::vector<std::vector<int>> hex = {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4},
                                                      {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}};
    static const std::vector<std::vector<int>> pyr = {
        {0, 1, 2, 3}, {0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4}};
    static const std::vector<std::vector<int>> wedge = {
        {0, 1, 2}, {3, 4, 5}, {0, 1, 4, 3}, {1, 2, 5, 4}, {2, 0, 3, 5}};
    static const std::vector<std::vector<int>> none;
    switch (type) {
        case 2:
            return tet;
        case 4:
            return hex;
        case 5:
            return pyr;
        case 6:
            return wedge;
        default:
            return none;
    }
}

class TemplateBuilder {
  public:
    explicit TemplateBuilder(int dims) { t_.dims = dims; }
    int corner(int a, int b, int c = 0) {
        return vert({kCorner, a, b, c, {double(a), double(b), double(c)}});
    }
    int centre() {
        t_.hasCentre = true;
        return vert({kCentre, 0, 0, 0, {0.5, 0.5, t_.dims == 3 ? 0.5 : 0.0}});
    }
    int xmid(int b, int c = 0) {
        t_.hasXMid = true;
        return vert({kXMid, 0, b, c, {0.5, double(b), double(c)}});
    }
    void cell(int type, std::vector<int> v, std::vector<std::vector<int>> faces = {}) {
        t_.cells.push_back({type, std::move(v), std::move(faces)});
    }
    Template build();

  private:
    int vert(const TVert& v) {
        for (size_t i = 0; i < t_.verts.size(); ++i) {
            const TVert& w = t_.verts[i];
            if (w.p[0] == v.p[0] && w.p[1] == v.p[1] && w.p[2] == v.p[2]) {
                return static_cast<int>(i);
            }
        }
        t_.verts.push_back(v);
        return static_cast<int>(t_.verts.size() - 1);
    }
    Template t_;
};

Template TemplateBuilder::build() {
    Template& t = t_;
    for (const TCell& c : t.cells) {
        std::array<double, 3> m = {0, 0, 0};
        for (int v : c.v) {
            for (int a = 0; a < 3; ++a) {
                m[a] += t.verts[v].p[a];
            }
        }
        for (double& x : m) {
            x /= double(c.v.size());
        }
        t.centroid.push_back(m);
        t.types.insert(c.type);
    }
    std::map<std::vector<int>, size_t> seen;  // sorted vertices -> index in `all`
    std::vector<TFace> all;
    std::vector<int> count;
    for (size_t ci = 0; ci < t.cells.size(); ++ci) {
        const TCell& c = t.cells[ci];
        std::vector<std::vector<int>> fs;
        if (t.dims == 2) {
            for (size_t k = 0; k < c.v.size(); ++k) {
                fs.push_back({c.v[k], c.v[(k + 1) % c.v.size()]});
            }
        } else if (!c.faces.empty()) {
            fs = c.faces;
        } else {
            for (const std::vector<int>& f : shapeFaces(c.type)) {
                std::vector<int> g;
                for (int k : f) {
                    g.push_back(c.v[static_cast<size_t>(k)]);
                }
                fs.push_back(g);
            }
        }
        const std::array<double, 3>& cc = t.centroid[ci];
        for (std::vector<int>& f : fs) {
            // Orient into the cell: 3D normal (Newell) towards the centroid, 2D
            // the cell on the left of n0 -> n1.
            double fc[3] = {0, 0, 0};
            for (int v : f) {
                for (int a = 0; a < 3; ++a) {
                    fc[a] += t.verts[v].p[a] / double(f.size());
                }
            }
            bool flip;
            if (t.dims == 2) {
                const double* p0 = t.verts[f[0]].p;
                const double* p1 = t.verts[f[1]].p;
                double tx = p1[0] - p0[0], ty = p1[1] - p0[1];
                double dx = cc[0] - fc[0], dy = cc[1] - fc[1];
                flip = (tx * dy - ty * dx) < 0;
            } else {
                double n[3] = {0, 0, 0};
                for (size_t k = 0; k < f.size(); ++k) {
                    const double* p = t.verts[f[k]].p;
                    const double* q = t.verts[f[(k + 1) % f.size()]].p;
                    n[0] += (p[1] - q[1]) * (p[2] + q[2]);
                    n[1] += (p[2] - q[2]) * (p[0] + q[0]);
                    n[2] += (p[0] - q[0]) * (p[1] + q[1]);
                }
                double d = n[0] * (cc[0] - fc[0]) + n[1] * (cc[1] - fc[1]) + n[2] * (cc[2] - fc[2]);
                flip = d < 0;
            }
            if (flip) {
                std::reverse(f.begin(), f.end());
            }
            std::vector<int> key = f;
            std::sort(key.begin(), key.end());
            auto it = seen.find(key);
            if (it == seen.end()) {
                seen[key] = all.size();
                TFace tf;
                tf.v = f;
                tf.c0 = static_cast<int>(ci);
                all.push_back(tf);
                count.push_back(1);
            } else {
                all[it->second].c1 = static_cast<int>(ci);
                count[it->second]++;
            }
            t.sizeMask |= 1 << f.size();
        }
    }
    for (size_t i = 0; i < all.size(); ++i) {
        if (count[i] > 2) {
            throw std::logic_error("fluentgen: template face shared by more than two cells");
        }
        if (count[i] == 2) {
            t.internal.push_back(all[i]);
            continue;
        }
        int side = -1;
        for (int a = 0; a < t.dims && side < 0; ++a) {
            for (int s = 0; s < 2 && side < 0; ++s) {
                bool on = true;
                for (int v : all[i].v) {
                    on = on && t.verts[v].p[a] == double(s);
                }
                if (on) {
                    side = 2 * a + s;
                }
            }
        }
        if (side < 0) {
            throw std::logic_error("fluentgen: template face neither shared nor on a side");
        }
        t.side[side].push_back(all[i]);
    }
    return t;
}

Template hexTemplate() {
    TemplateBuilder b(3);
    int v[8] = {b.corner(0, 0, 0), b.corner(1, 0, 0), b.corner(1, 1, 0), b.corner(0, 1, 0),
                b.corner(0, 0, 1), b.corner(1, 0, 1), b.corner(1, 1, 1), b.corner(0, 1, 1)};
    b.cell(4, {v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7]});
    return b.build();
}

// Corners 0..7 in hexahedron order, for the templates below.
std::array<int, 8> corners(TemplateBuilder& b) {
    return {b.corner(0, 0, 0), b.corner(1, 0, 0), b.corner(1, 1, 0), b.corner(0, 1, 0),
            b.corner(0, 0, 1), b.corner(1, 0, 1), b.corner(1, 1, 1), b.corner(0, 1, 1)};
}

// Six tetrahedra around the diagonal 0-6; each block face is split along the
// diagonal from its lowest to its highest corner, so blocks conform.
Template tetTemplate() {
    TemplateBuilder b(3);
    auto v = corners(b);
    b.cell(2, {v[0], v[1], v[2], v[6]});
    b.cell(2, {v[0], v[1], v[5], v[6]});
    b.cell(2, {v[0], v[3], v[2], v[6]});
    b.cell(2, {v[0], v[3], v[7], v[6]});
    b.cell(2, {v[0], v[4], v[5], v[6]});
    b.cell(2, {v[0], v[4], v[7], v[6]});
    return b.build();
}

// Two wedges along z; the z faces are split along 0-2 and 4-6.
Template wedgeZTemplate() {
    TemplateBuilder b(3);
    auto v = corners(b);
    b.cell(6, {v[0], v[1], v[2], v[4], v[5], v[6]});
    b.cell(6, {v[0], v[2], v[3], v[4], v[6], v[7]});
    return b.build();
}

// Two wedges along x; all z and y faces stay whole.
Template wedgeXTemplate() {
    TemplateBuilder b(3);
    auto v = corners(b);
    b.cell(6, {v[0], v[3], v[7], v[1], v[2], v[6]});
    b.cell(6, {v[0], v[7], v[4], v[1], v[6], v[5]});
    return b.build();
}

// Six pyramids on the block faces with their apex at the block centre.
Template pyramidTemplate() {
    TemplateBuilder b(3);
    auto v = corners(b);
    int c = b.centre();
    b.cell(5, {v[0], v[1], v[2], v[3], c});
    b.cell(5, {v[4], v[7], v[6], v[5], c});
    b.cell(5, {v[0], v[4], v[5], v[1], c});
    b.cell(5, {v[1], v[5], v[6], v[2], c});
    b.cell(5, {v[2], v[6], v[7], v[3], c});
    b.cell(5, {v[3], v[7], v[4], v[0], c});
    return b.build();
}

// Whole bottom and side faces, the top split along 4-6: five pyramids and two
// tetrahedra around the centre. Joins a pyramid layer below to tetrahedra above.
Template transitionTemplate() {
    TemplateBuilder b(3);
    auto v = corners(b);
    int c = b.centre();
    b.cell(5, {v[0], v[1], v[2], v[3], c});
    b.cell(5, {v[0], v[4], v[5], v[1], c});
    b.cell(5, {v[1], v[5], v[6], v[2], c});
    b.cell(5, {v[2], v[6], v[7], v[3], c});
    b.cell(5, {v[3], v[7], v[4], v[0], c});
    b.cell(2, {v[4], v[5], v[6], c});
    b.cell(2, {v[4], v[6], v[7], c});
    return b.build();
}

// The transition turned upside down: the bottom split along 0-2 into two
// tetrahedra, pyramids on the top and the sides.
Template flippedTransitionTemplate() {
    TemplateBuilder b(3);
    auto v = corners(b);
    int c = b.centre();
    b.cell(5, {v[4], v[7], v[6], v[5], c});
    b.cell(5, {v[0], v[4], v[5], v[1], c});
    b.cell(5, {v[1], v[5], v[6], v[2], c});
    b.cell(5, {v[2], v[6], v[7], v[3], c});
    b.cell(5, {v[3], v[7], v[4], v[0], c});
    b.cell(2, {v[0], v[2], v[1], c});
    b.cell(2, {v[0], v[3], v[2], c});
    return b.build();
}

// A hexahedron with nodes in the middle of its four x-edges: two quadrilateral
// and four hexagonal faces.
Template polyhedronTemplate() {
    TemplateBuilder b(3);
    auto v = corners(b);
    int m00 = b.xmid(0, 0), m10 = b.xmid(1, 0), m01 = b.xmid(0, 1), m11 = b.xmid(1, 1);
    std::vector<std::vector<int>> faces = {
        {v[0], v[3], v[7], v[4]},           {v[1], v[2], v[6], v[5]},
        {v[0], m00, v[1], v[5], m01, v[4]}, {v[3], m10, v[2], v[6], m11, v[7]},
        {v[0], m00, v[1], v[2], m10, v[3]}, {v[4], m01, v[5], v[6], m11, v[7]}};
    b.cell(7, {v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], m00, m10, m01, m11}, faces);
    return b.build();
}

Template quadTemplate() {
    TemplateBuilder b(2);
    b.cell(3, {b.corner(0, 0), b.corner(1, 0), b.corner(1, 1), b.corner(0, 1)});
    return b.build();
}

Template triTemplate() {
    TemplateBuilder b(2);
    int v0 = b.corner(0, 0), v1 = b.corner(1, 0), v2 = b.corner(1, 1), v3 = b.corner(0, 1);
    b.cell(1, {v0, v1, v2});
    b.cell(1, {v0, v2, v3});
    return b.build();
}

Template polygonTemplate() {
    TemplateBuilder b(2);
    int v0 = b.corner(0, 0), m0 = b.xmid(0), v1 = b.corner(1, 0), v2 = b.corner(1, 1), m1 = b.xmid(1),
        v3 = b.corner(0, 1);
    b.cell(7, {v0, m0, v1, v2, m1, v3});
    return b.build();
}

class BoxMesh : public Mesh {
  public:
    explicit BoxMesh(const Spec& spec);

    Vec3 node(int64_t id) const override;
    void nodes(int64_t first, int64_t last, NodeVisitor& v) const override;
    int cellType(int64_t cell) const override;
    void cellNodes(int64_t cell, std::vector<int64_t>& out) const override;
    Vec3 cellCentre(int64_t cell) const override;
    void cells(size_t cellZone, CellVisitor& v) const override;
    std::pair<int64_t, int64_t> pair(size_t pairsIndex, int64_t k) const override;

  protected:
    void ownFaces(size_t faceZone, FaceVisitor& v) const override;

  private:
    enum ZoneKind { kSlabInterior, kSlabInterface, kSide };
    struct ZoneSource {
        ZoneKind kind;
        int slab;
        int side;
    };
    struct BlockRef {
        int i, j, k;
    };

    // The template of a block: by layer, by checkerboard, or (one or two
    // layers of mixed cells) by column along x. It repeats along x with
    // period_ blocks.
    int tmplOf(int i, int j, int k) const {
        if (period_ == 2) {
            return (i + j) % 2;
        }
        if (period_ == 3) {
            static const int columns[3][2] = {{6, 0}, {5, 5}, {0, 0}};
            return columns[i % 3][k > 0 ? 1 : 0];
        }
        return layerTmpl_[static_cast<size_t>(k)];
    }
    int64_t cellsOf(int i, int j, int k) const { return static_cast<int64_t>(tmpl(i, j, k).cells.size()); }
    int64_t centreRank(int i, int k) const;  // blocks with a centre node before block i of a row
    const Template& tmpl(int i, int j, int k) const { return tmpls_[static_cast<size_t>(tmplOf(i, j, k))]; }
    int64_t gridId(int i, int j, int k) const {
        return 1 + i + int64_t(nx_ + 1) * (j + int64_t(ny_ + 1) * k);
    }
    int64_t vertexId(const TVert& v, int i, int j, int k) const;
    int64_t blockCellBase(int slab, int i, int j, int k) const;       // 0-based id of the block's first cell
    int64_t blockCellBaseInRow(int slab, int i, int j, int k) const;  // cells of the row before block i
    int64_t countFaces(const ZoneSource& z, int& sizeMask) const;
    void emitZone(const ZoneSource& z, FaceVisitor& v) const;
    void sideBlocks(int slab, int side, std::vector<BlockRef>* out, int64_t* count) const;
    bool locateCell(int64_t cell, int& i, int& j, int& k, int& local) const;
    const std::vector<int>& match(int ta, int tb, int axis) const;
    void makeMatch(int ta, int tb, int axis);

    Spec spec_;
    int nx_, ny_, nz_;
    double h_[3], o_[3];
    std::vector<Template> tmpls_;
    std::vector<int> layerTmpl_;
    int period_ = 1;
    std::vector<int> xs_;                        // slab s covers blocks xs_[s] .. xs_[s+1]-1
    std::vector<int64_t> slabBase_;              // cells before slab s
    std::vector<std::vector<int64_t>> rowBase_;  // per slab, cells before row (j, k) in the slab
    std::vector<int64_t> layerCentreBase_;       // per layer, centres before it
    std::vector<int64_t> rowCentres_;            // per layer, centre nodes in a row of blocks
    int64_t gridCount_ = 0, centreCount_ = 0, centreBase_ = 0, xmidBase_ = 0, xmidCount_ = 0;
    std::vector<ZoneSource> sources_;
    // match_[(ta * T + tb) * 3 + axis][f]: face of tb's low side matching face f of ta's high side
    std::vector<std::vector<int>> match_;
    std::vector<int64_t> xSideRows_[2];  // faces of the x- / x+ side before row (j, k)
    int periodicPairs_ = -1;             // index in `pairs` of the periodic pairs, -1 if none
    int xMinus_ = -1, xPlus_ = -1;
};

BoxMesh::BoxMesh(const Spec& spec) : spec_(spec) {
    dims = is3D(spec.mesh) ? 3 : 2;
    nx_ = spec.cells[0];
    ny_ = spec.cells[1];
    nz_ = dims == 3 ? spec.cells[2] : 1;
    if (nx_ < 1 || ny_ < 1 || nz_ < 1) {
        throw std::invalid_argument("cell counts must be at least 1");
    }
    if (int64_t(nx_) * ny_ * nz_ > int64_t(1) << 40) {
        throw std::invalid_argument("too many cells");
    }
    for (int a = 0; a < 3; ++a) {
        h_[a] = spec.spacing[static_cast<size_t>(a)];
        o_[a] = spec.origin[static_cast<size_t>(a)];
    }
    if (dims == 2) {
        h_[2] = 0.0;
        o_[2] = 0.0;
    }
    switch (spec.mesh) {
        case MeshKind::Hex:
            tmpls_ = {hexTemplate()};
            break;
        case MeshKind::Tet:
            tmpls_ = {tetTemplate()};
            break;
        case MeshKind::Wedge:
            tmpls_ = {wedgeZTemplate()};
            break;
        case MeshKind::Pyramid:
            tmpls_ = {pyramidTemplate()};
            break;
        case MeshKind::Mixed:
            // Layers: hexahedra, wedges (along x), pyramids, transition, then
            // tetrahedra and wedges (along z) in turn.
            tmpls_ = {hexTemplate(), wedgeXTemplate(), pyramidTemplate(),          transitionTemplate(),
                      tetTemplate(), wedgeZTemplate(), flippedTransitionTemplate()};
            period_ = nz_ <= 2 ? 3 : 1;
            break;
        case MeshKind::Polyhedral:
            tmpls_ = {polyhedronTemplate()};
            break;
        case MeshKind::Quad:
            tmpls_ = {quadTemplate()};
            break;
        case MeshKind::Tri:
            tmpls_ = {triTemplate()};
            break;
        case MeshKind::Mixed2D:
            tmpls_ = {quadTemplate(), triTemplate()};
            period_ = 2;
            break;
        case MeshKind::Polygonal:
            tmpls_ = {polygonTemplate()};
            break;
    }
    layerTmpl_.resize(static_cast<size_t>(nz_), 0);
    if (spec.mesh == MeshKind::Mixed) {
        // Layers: tetrahedra and pyramids (the flipped transition), hexahedra,
        // wedges along x, pyramids, the transition, then tetrahedra and wedges
        // along z in turn; each layer's top matches the next one's bottom.
        static const int first[5] = {6, 0, 1, 2, 3};
        for (int k = 0; k < nz_; ++k) {
            layerTmpl_[static_cast<size_t>(k)] = k < 5 ? first[k] : (k % 2 == 1 ? 4 : 5);
        }
    }

    // Matching faces of every pair of templates that meet.
    match_.resize(tmpls_.size() * tmpls_.size() * 3);
    for (int k = 0; k < nz_; ++k) {
        for (int j = 0; j < std::min(ny_, 2); ++j) {
            for (int i = 0; i < std::min(nx_, 3); ++i) {
                int t = tmplOf(i, j, k);
                makeMatch(t, tmplOf(i + 1, j, k), 0);
                makeMatch(tmplOf(nx_ - 1, j, k), tmplOf(0, j, k), 0);  // periodic x sides
                makeMatch(t, tmplOf(i, j + 1, k), 1);
                if (dims == 3 && k + 1 < nz_) {
                    makeMatch(t, tmplOf(i, j, k + 1), 2);
                }
            }
        }
    }
    for (int s = 0; s < 2; ++s) {
        int64_t n = 0;
        for (int k = 0; k < nz_; ++k) {
            for (int j = 0; j < ny_; ++j) {
                xSideRows_[s].push_back(n);
                n += static_cast<int64_t>(tmpl(s == 0 ? 0 : nx_ - 1, j, k).side[s].size());
            }
        }
        xSideRows_[s].push_back(n);
    }

    // Nodes.
    gridCount_ = int64_t(nx_ + 1) * (ny_ + 1) * (dims == 3 ? nz_ + 1 : 1);
    centreBase_ = gridCount_;
    layerCentreBase_.assign(static_cast<size_t>(nz_), 0);
    rowCentres_.assign(static_cast<size_t>(nz_), 0);
    for (int k = 0; k < nz_; ++k) {
        layerCentreBase_[static_cast<size_t>(k)] = centreCount_;
        rowCentres_[static_cast<size_t>(k)] = centreRank(nx_, k);
        centreCount_ += rowCentres_[static_cast<size_t>(k)] * ny_;
    }
    xmidBase_ = centreBase_ + centreCount_;
    if (tmpls_[0].hasXMid) {
        xmidCount_ = int64_t(nx_) * (ny_ + 1) * (dims == 3 ? nz_ + 1 : 1);
    }
    nodeCount = xmidBase_ + xmidCount_;

    // Cell zones: slabs along x.
    int slabs = static_cast<int>(spec.cellZoneTypes.size());
    if (slabs < 1) {
        throw std::invalid_argument("at least one cell zone is needed");
    }
    if (slabs > nx_) {
        throw std::invalid_argument("more cell zones than blocks along x");
    }
    for (int s = 0; s <= slabs; ++s) {
        xs_.push_back(static_cast<int>(int64_t(s) * nx_ / slabs));
    }
    int64_t cellTotal = 0;
    for (int s = 0; s < slabs; ++s) {
        slabBase_.push_back(cellTotal);
        std::vector<int64_t> rows(static_cast<size_t>(ny_) * nz_);
        int64_t inSlab = 0;
        for (int k = 0; k < nz_; ++k) {
            for (int j = 0; j < ny_; ++j) {
                rows[static_cast<size_t>(k) * ny_ + j] = inSlab;
                // Cells of the whole row: the blocks before the slab's end.
                inSlab += blockCellBaseInRow(s, xs_[static_cast<size_t>(s) + 1], j, k);
            }
        }
        rowBase_.push_back(rows);
        std::set<int> types;
        for (int k = 0; k < nz_; ++k) {
            for (int j = 0; j < std::min(ny_, 2); ++j) {
                for (int i = xs_[s]; i < std::min(xs_[s + 1], xs_[s] + 3); ++i) {
                    const Template& t = tmpl(i, j, k);
                    types.insert(t.types.begin(), t.types.end());
                }
            }
        }
        CellZoneInfo z;
        z.id = s + 1;
        z.type = spec.cellZoneTypes[static_cast<size_t>(s)];
        z.elementType = (types.size() == 1 && !spec.mixedCellBodies) ? *types.begin() : 0;
        if (*types.rbegin() == 7) {
            z.elementType = 7;  // polyhedra have no mixed form
        }
        z.first = cellTotal + 1;
        z.last = cellTotal + inSlab;
        std::string word = cellZoneTypeWord(z.type);
        z.name = slabs == 1 ? word : word + "-" + std::to_string(s + 1);
        cellZones.push_back(z);
        cellTotal += inSlab;
    }
    cellCount = cellTotal;

    // Face zones.
    int nextId = slabs + 1;
    std::vector<int> sideType(static_cast<size_t>(2 * dims));
    for (int side = 0; side < 2 * dims; ++side) {
        sideType[static_cast<size_t>(side)] = static_cast<size_t>(side) < spec.boundaryTypes.size()
                                                  ? spec.boundaryTypes[static_cast<size_t>(side)]
                                                  : defaultBoundaryType(side, dims, spec.axisymmetric);
    }
    if (spec.extraSections) {
        sideType[0] = 12;
        sideType[1] = 8;
    }
    static const char* sideNames[6] = {"xmin", "xmax", "ymin", "ymax", "zmin", "zmax"};
    auto addZone = [&](const ZoneSource& src, int bcType, const std::string& name, int cellZone,
                       bool boundary) {
        int mask = 0;
        int64_t n = countFaces(src, mask);
        if (n == 0) {
            return;
        }
        FaceZoneInfo z;
        z.id = nextId++;
        z.bcType = bcType;
        bool polygon = (mask & ~((1 << 2) | (1 << 3) | (1 << 4))) != 0;
        bool several = __builtin_popcount(static_cast<unsigned>(mask)) > 1;
        if (dims == 2) {
            z.faceType = 2;
        } else if (polygon) {
            z.faceType = spec.polygonFaceType;
        } else if (several) {
            z.faceType = 0;
        } else {
            z.faceType = mask == (1 << 3) ? 3 : 4;
        }
        if (spec.mixedFaceTypes && dims == 3) {
            z.faceType = 0;
        }
        z.first = faceCount + 1;
        z.last = faceCount + n;
        faceCount += n;
        z.name = name;
        z.cellZoneId = cellZone;
        z.boundary = boundary;
        faceZones.push_back(z);
        sources_.push_back(src);
    };
    for (int s = 0; s < slabs; ++s) {
        addZone({kSlabInterior, s, 0}, 2, "interior-" + cellZones[static_cast<size_t>(s)].name, s + 1, false);
    }
    for (int s = 0; s + 1 < slabs; ++s) {
        addZone({kSlabInterface, s, 0}, 2,
                "interior-" + cellZones[static_cast<size_t>(s)].name + "-" +
                    cellZones[static_cast<size_t>(s + 1)].name,
                s + 1, false);
    }
    for (int side = 0; side < 2 * dims; ++side) {
        for (int s = 0; s < slabs; ++s) {
            if ((side == 0 && s != 0) || (side == 1 && s != slabs - 1)) {
                continue;
            }
            std::string name =
                std::string(boundaryTypeWord(sideType[static_cast<size_t>(side)])) + "-" + sideNames[side];
            if (slabs > 1 && side >= 2) {
                name += "-" + std::to_string(s + 1);
            }
            size_t before = faceZones.size();
            addZone({kSide, s, side}, sideType[static_cast<size_t>(side)], name, s + 1, true);
            if (faceZones.size() > before) {
                if (side == 0) {
                    xMinus_ = static_cast<int>(before);
                }
                if (side == 1) {
                    xPlus_ = static_cast<int>(before);
                }
            }
        }
    }
    if (spec.extraSections) {
        // Periodic x sides.
        if (xMinus_ >= 0 && xPlus_ >= 0) {
            FacePairsInfo p;
            p.sectionBase = 18;
            p.first = 1;
            p.count = faceZones[static_cast<size_t>(xMinus_)].last -
                      faceZones[static_cast<size_t>(xMinus_)].first + 1;
            p.last = p.count;
            p.zoneA = faceZones[static_cast<size_t>(xMinus_)].id;
            p.zoneB = faceZones[static_cast<size_t>(xPlus_)].id;
            periodicPairs_ = static_cast<int>(pairs.size());
            pairs.push_back(p);
        }
        // Duplicates of the y+ (2D) or z+ side with type 1012, and of the y- or
        // z- side with type 38, as non-conformal interfaces leave them.
        int hiSide = dims == 3 ? 5 : 3;
        int loSide = dims == 3 ? 4 : 2;
        size_t own = faceZones.size();
        for (size_t zi = 0; zi < own; ++zi) {
            if (sources_[zi].kind == kSide && sources_[zi].slab == 0 && sources_[zi].side == hiSide) {
                addDuplicateZone(zi, 1012, "overlap-" + faceZones[zi].name, true);
            }
        }
        for (size_t zi = 0; zi < own; ++zi) {
            if (sources_[zi].kind == kSide && sources_[zi].slab == 0 && sources_[zi].side == loSide) {
                addDuplicateZone(zi, 38, "shadow-" + faceZones[zi].name, false);
            }
        }
    }
    nameZones(spec.zoneNames);
}

int64_t BoxMesh::blockCellBaseInRow(int slab, int i, int j, int k) const {
    // The templates of a row repeat with period_ blocks from its start.
    int x0 = xs_[static_cast<size_t>(slab)];
    int64_t n = i - x0;
    if (period_ == 1) {
        return n * cellsOf(x0, j, k);
    }
    int64_t perPeriod = 0;
    for (int q = 0; q < period_; ++q) {
        perPeriod += cellsOf(x0 + q, j, k);
    }
    int64_t sum = n / period_ * perPeriod;
    for (int q = 0; q < n % period_; ++q) {
        sum += cellsOf(x0 + q, j, k);
    }
    return sum;
}

int64_t BoxMesh::centreRank(int i, int k) const {
    if (dims == 2) {
        return 0;
    }
    int64_t perPeriod = 0;
    for (int q = 0; q < period_; ++q) {
        perPeriod += tmpl(q, 0, k).hasCentre ? 1 : 0;
    }
    int64_t rank = int64_t(i / period_) * perPeriod;
    for (int q = 0; q < i % period_; ++q) {
        rank += tmpl(q, 0, k).hasCentre ? 1 : 0;
    }
    return rank;
}

int64_t BoxMesh::blockCellBase(int slab, int i, int j, int k) const {
    return slabBase_[static_cast<size_t>(slab)] +
           rowBase_[static_cast<size_t>(slab)][static_cast<size_t>(k) * ny_ + j] +
           blockCellBaseInRow(slab, i, j, k);
}

int64_t BoxMesh::vertexId(const TVert& v, int i, int j, int k) const {
    switch (v.kind) {
        case kCorner:
            return gridId(i + v.a, j + v.b, k + v.c);
        case kCentre:
            return centreBase_ + layerCentreBase_[static_cast<size_t>(k)] +
                   int64_t(j) * rowCentres_[static_cast<size_t>(k)] + centreRank(i, k) + 1;
        case kXMid:
            return xmidBase_ + 1 + i + int64_t(nx_) * ((j + v.b) + int64_t(ny_ + 1) * (k + v.c));
    }
    return 0;
}

Vec3 BoxMesh::node(int64_t id) const {
    if (id < 1 || id > nodeCount) {
        throw std::out_of_range("fluentgen: node id out of range");
    }
    double p[3] = {0, 0, 0};
    int64_t m = id - 1;
    if (m < gridCount_) {
        p[0] = double(m % (nx_ + 1));
        m /= (nx_ + 1);
        p[1] = double(m % (ny_ + 1));
        p[2] = double(m / (ny_ + 1));
    } else if (m < xmidBase_) {
        m -= centreBase_;
        int k = nz_ - 1;
        while (rowCentres_[static_cast<size_t>(k)] == 0 || layerCentreBase_[static_cast<size_t>(k)] > m) {
            --k;
        }
        m -= layerCentreBase_[static_cast<size_t>(k)];
        int64_t perRow = rowCentres_[static_cast<size_t>(k)];
        int64_t rank = m % perRow;
        int i = 0;
        while (!tmpl(i, 0, k).hasCentre || centreRank(i, k) != rank) {
            ++i;
        }
        p[0] = double(i) + 0.5;
        p[1] = double(m / perRow) + 0.5;
        p[2] = double(k) + 0.5;
    } else {
        m -= xmidBase_;
        p[0] = double(m % nx_) + 0.5;
        m /= nx_;
        p[1] = double(m % (ny_ + 1));
        p[2] = double(m / (ny_ + 1));
    }
    if (dims == 2) {
        p[2] = 0.0;
    }
    return {o_[0] + p[0] * h_[0], o_[1] + p[1] * h_[1], o_[2] + p[2] * h_[2]};
}

void BoxMesh::nodes(int64_t first, int64_t last, NodeVisitor& v) const {
    // Grid nodes in a tight loop; the few others one by one.
    int64_t id = first;
    if (id <= gridCount_) {
        int64_t m = id - 1;
        int i = static_cast<int>(m % (nx_ + 1));
        int64_t r = m / (nx_ + 1);
        int j = static_cast<int>(r % (ny_ + 1));
        int k = static_cast<int>(r / (ny_ + 1));
        int64_t end = std::min(last, gridCount_);
        Vec3 p;
        p.z = o_[2] + k * h_[2];
        p.y = o_[1] + j * h_[1];
        for (; id <= end; ++id) {
            p.x = o_[0] + i * h_[0];
            v.node(p);
            if (++i > nx_) {
                i = 0;
                if (++j > ny_) {
                    j = 0;
                    ++k;
                    p.z = o_[2] + k * h_[2];
                }
                p.y = o_[1] + j * h_[1];
            }
        }
    }
    // Block centres, layer by layer, row by row, x fastest.
    int64_t cur = centreBase_ + 1;
    for (int k = 0; k < nz_ && id <= last && id <= xmidBase_; ++k) {
        int64_t perRow = rowCentres_[static_cast<size_t>(k)];
        if (cur + perRow * ny_ <= id) {
            cur += perRow * ny_;  // the whole layer lies before the range
            continue;
        }
        for (int j = 0; j < ny_ && id <= last; ++j) {
            for (int i = 0; i < nx_ && id <= last; ++i) {
                if (!tmpl(i, j, k).hasCentre) {
                    continue;
                }
                if (cur == id) {
                    v.node({o_[0] + (i + 0.5) * h_[0], o_[1] + (j + 0.5) * h_[1], o_[2] + (k + 0.5) * h_[2]});
                    ++id;
                }
                ++cur;
            }
        }
    }
    // Middles of x-edges.
    for (; id <= last; ++id) {
        int64_t m = id - xmidBase_ - 1;
        double px = double(m % nx_) + 0.5;
        m /= nx_;
        double py = double(m % (ny_ + 1));
        double pz = dims == 3 ? double(m / (ny_ + 1)) : 0.0;
        v.node({o_[0] + px * h_[0], o_[1] + py * h_[1], o_[2] + pz * h_[2]});
    }
}

bool BoxMesh::locateCell(int64_t cell, int& i, int& j, int& k, int& local) const {
    if (cell < 1 || cell > cellCount) {
        return false;
    }
    int64_t m = cell - 1;
    size_t s =
        static_cast<size_t>(std::upper_bound(slabBase_.begin(), slabBase_.end(), m) - slabBase_.begin()) - 1;
    int64_t inSlab = m - slabBase_[s];
    const std::vector<int64_t>& rows = rowBase_[s];
    size_t r = static_cast<size_t>(std::upper_bound(rows.begin(), rows.end(), inSlab) - rows.begin()) - 1;
    k = static_cast<int>(r / static_cast<size_t>(ny_));
    j = static_cast<int>(r % static_cast<size_t>(ny_));
    int64_t inRow = inSlab - rows[r];
    for (i = xs_[s]; i < xs_[s + 1]; ++i) {
        int64_t n = static_cast<int64_t>(tmpl(i, j, k).cells.size());
        if (period_ == 1) {
            int64_t skip = inRow / n;
            i += static_cast<int>(skip);
            inRow -= skip * n;
            local = static_cast<int>(inRow);
            return true;
        }
        if (inRow < n) {
            local = static_cast<int>(inRow);
            return true;
        }
        inRow -= n;
    }
    return false;
}

int BoxMesh::cellType(int64_t cell) const {
    int i, j, k, local;
    if (!locateCell(cell, i, j, k, local)) {
        throw std::out_of_range("fluentgen: cell id out of range");
    }
    return tmpl(i, j, k).cells[static_cast<size_t>(local)].type;
}

void BoxMesh::cellNodes(int64_t cell, std::vector<int64_t>& out) const {
    int i, j, k, local;
    if (!locateCell(cell, i, j, k, local)) {
        throw std::out_of_range("fluentgen: cell id out of range");
    }
    const Template& t = tmpl(i, j, k);
    out.clear();
    for (int v : t.cells[static_cast<size_t>(local)].v) {
        out.push_back(vertexId(t.verts[static_cast<size_t>(v)], i, j, k));
    }
}

Vec3 BoxMesh::cellCentre(int64_t cell) const {
    int i, j, k, local;
    if (!locateCell(cell, i, j, k, local)) {
        throw std::out_of_range("fluentgen: cell id out of range");
    }
    const std::array<double, 3>& c = tmpl(i, j, k).centroid[static_cast<size_t>(local)];
    return {o_[0] + (i + c[0]) * h_[0], o_[1] + (j + c[1]) * h_[1],
            o_[2] + (dims == 3 ? (k + c[2]) * h_[2] : 0.0)};
}

void BoxMesh::cells(size_t cellZone, CellVisitor& v) const {
    int s = static_cast<int>(cellZone);
    for (int k = 0; k < nz_; ++k) {
        for (int j = 0; j < ny_; ++j) {
            for (int i = xs_[static_cast<size_t>(s)]; i < xs_[static_cast<size_t>(s) + 1]; ++i) {
                const Template& t = tmpl(i, j, k);
                for (size_t c = 0; c < t.cells.size(); ++c) {
                    const std::array<double, 3>& m = t.centroid[c];
                    Vec3 p{o_[0] + (i + m[0]) * h_[0], o_[1] + (j + m[1]) * h_[1],
                           dims == 3 ? o_[2] + (k + m[2]) * h_[2] : 0.0};
                    v.cell(t.cells[c].type, p);
                }
            }
        }
    }
}

// For blocks ta (low) and tb (high) along `axis`: for each face of ta's high
// side, the index of the face of tb's low side with the same nodes. Tables are
// made in the constructor for every pair of templates that meet.
const std::vector<int>& BoxMesh::match(int ta, int tb, int axis) const {
    return match_[static_cast<size_t>((ta * static_cast<int>(tmpls_.size()) + tb) * 3 + axis)];
}

void BoxMesh::makeMatch(int ta, int tb, int axis) {
    std::vector<int>& m = match_[static_cast<size_t>((ta * static_cast<int>(tmpls_.size()) + tb) * 3 + axis)];
    if (!m.empty()) {
        return;
    }
    const Template& A = tmpls_[static_cast<size_t>(ta)];
    const Template& B = tmpls_[static_cast<size_t>(tb)];
    const std::vector<TFace>& fa = A.side[2 * axis + 1];
    const std::vector<TFace>& fb = B.side[2 * axis];
    auto keyOf = [&](const Template& t, const TFace& f) {
        std::vector<std::array<double, 3>> k;
        for (int v : f.v) {
            std::array<double, 3> p = {t.verts[static_cast<size_t>(v)].p[0],
                                       t.verts[static_cast<size_t>(v)].p[1],
                                       t.verts[static_cast<size_t>(v)].p[2]};
            p[static_cast<size_t>(axis)] = 0.0;
            k.push_back(p);
        }
        std::sort(k.begin(), k.end());
        return k;
    };
    m.assign(fa.size(), -1);
    for (size_t a = 0; a < fa.size(); ++a) {
        auto ka = keyOf(A, fa[a]);
        for (size_t b = 0; b < fb.size(); ++b) {
            if (keyOf(B, fb[b]) == ka) {
                m[a] = static_cast<int>(b);
            }
        }
        if (m[a] < 0) {
            throw std::logic_error("fluentgen: neighbouring blocks do not conform");
        }
    }
    if (fa.size() != fb.size()) {
        throw std::logic_error("fluentgen: neighbouring blocks do not conform");
    }
}

void BoxMesh::sideBlocks(int slab, int side, std::vector<BlockRef>* out, int64_t* count) const {
    int axis = side / 2;
    int hi = side % 2;
    int x0 = xs_[static_cast<size_t>(slab)], x1 = xs_[static_cast<size_t>(slab) + 1];
    auto add = [&](int i, int j, int k) {
        if (out) {
            out->push_back({i, j, k});
        }
        if (count) {
            *count += static_cast<int64_t>(tmpl(i, j, k).side[side].size());
        }
    };
    if (axis == 0) {
        int i = hi ? nx_ - 1 : 0;
        for (int k = 0; k < nz_; ++k) {
            for (int j = 0; j < ny_; ++j) {
                add(i, j, k);
            }
        }
    } else if (axis == 1) {
        int j = hi ? ny_ - 1 : 0;
        for (int k = 0; k < nz_; ++k) {
            for (int i = x0; i < x1; ++i) {
                add(i, j, k);
            }
        }
    } else {
        int k = hi ? nz_ - 1 : 0;
        for (int j = 0; j < ny_; ++j) {
            for (int i = x0; i < x1; ++i) {
                add(i, j, k);
            }
        }
    }
}

int64_t BoxMesh::countFaces(const ZoneSource& z, int& sizeMask) const {
    int64_t n = 0;
    sizeMask = 0;
    auto note = [&](const std::vector<TFace>& fs) {
        for (const TFace& f : fs) {
            sizeMask |= 1 << f.v.size();
        }
    };
    int x0 = xs_[static_cast<size_t>(z.slab)], x1 = xs_[static_cast<size_t>(z.slab) + 1];
    if (z.kind == kSlabInterior) {
        for (int k = 0; k < nz_; ++k) {
            for (int j = 0; j < ny_; ++j) {
                // Without the checkerboard a row has one template: count it at once.
                int step = period_ == 1 ? (x1 - x0) : 1;
                for (int i = x0; i < x1; i += step) {
                    const Template& t = tmpl(i, j, k);
                    int64_t w = step;
                    int64_t inner = std::min<int64_t>(w, x1 - 1 - i);  // blocks with a +x neighbour here
                    n += w * static_cast<int64_t>(t.internal.size()) +
                         inner * static_cast<int64_t>(t.side[1].size());
                    note(t.internal);
                    if (inner > 0) {
                        note(t.side[1]);
                    }
                    if (j + 1 < ny_) {
                        n += w * static_cast<int64_t>(t.side[3].size());
                        note(t.side[3]);
                    }
                    if (dims == 3 && k + 1 < nz_) {
                        n += w * static_cast<int64_t>(t.side[5].size());
                        note(t.side[5]);
                    }
                }
            }
        }
    } else if (z.kind == kSlabInterface) {
        for (int k = 0; k < nz_; ++k) {
            for (int j = 0; j < ny_; ++j) {
                const Template& t = tmpl(x1 - 1, j, k);
                n += static_cast<int64_t>(t.side[1].size());
                note(t.side[1]);
            }
        }
    } else {
        sideBlocks(z.slab, z.side, nullptr, &n);
        for (int t = 0; t < static_cast<int>(tmpls_.size()); ++t) {
            note(tmpls_[static_cast<size_t>(t)].side[z.side]);
        }
    }
    return n;
}

void BoxMesh::emitZone(const ZoneSource& z, FaceVisitor& v) const {
    int64_t ids[16];
    int64_t fn[16];
    auto blockIds = [&](const Template& t, int i, int j, int k) {
        for (size_t a = 0; a < t.verts.size(); ++a) {
            ids[a] = vertexId(t.verts[a], i, j, k);
        }
    };
    auto emit = [&](const TFace& f, int64_t c0, int64_t c1) {
        int n = static_cast<int>(f.v.size());
        for (int a = 0; a < n; ++a) {
            fn[a] = ids[f.v[static_cast<size_t>(a)]];
        }
        v.face(fn, n, c0, c1);
    };
    // Faces of block (i,j,k)'s high side along `axis` with the neighbour.
    auto neighbour = [&](const Template& t, int ti, int64_t base, int i, int j, int k, int axis, int nslab) {
        int ni = i + (axis == 0), nj = j + (axis == 1), nk = k + (axis == 2);
        int tn = tmplOf(ni, nj, nk);
        const Template& tnb = tmpls_[static_cast<size_t>(tn)];
        int64_t nbase = axis == 0 && nslab == z.slab ? base + static_cast<int64_t>(t.cells.size())
                                                     : blockCellBase(nslab, ni, nj, nk);
        const std::vector<int>& m = match(ti, tn, axis);
        const std::vector<TFace>& fs = t.side[2 * axis + 1];
        for (size_t a = 0; a < fs.size(); ++a) {
            int other = tnb.side[2 * axis][static_cast<size_t>(m[a])].c0;
            emit(fs[a], base + fs[a].c0 + 1, nbase + other + 1);
        }
    };
    int x0 = xs_[static_cast<size_t>(z.slab)], x1 = xs_[static_cast<size_t>(z.slab) + 1];
    if (z.kind == kSlabInterior) {
        for (int k = 0; k < nz_; ++k) {
            for (int j = 0; j < ny_; ++j) {
                int64_t base = blockCellBase(z.slab, x0, j, k);
                for (int i = x0; i < x1; ++i) {
                    int ti = tmplOf(i, j, k);
                    const Template& t = tmpls_[static_cast<size_t>(ti)];
                    blockIds(t, i, j, k);
                    for (const TFace& f : t.internal) {
                        emit(f, base + f.c0 + 1, base + f.c1 + 1);
                    }
                    if (i + 1 < x1) {
                        neighbour(t, ti, base, i, j, k, 0, z.slab);
                    }
                    if (j + 1 < ny_) {
                        neighbour(t, ti, base, i, j, k, 1, z.slab);
                    }
                    if (dims == 3 && k + 1 < nz_) {
                        neighbour(t, ti, base, i, j, k, 2, z.slab);
                    }
                    base += static_cast<int64_t>(t.cells.size());
                }
            }
        }
    } else if (z.kind == kSlabInterface) {
        int i = x1 - 1;
        for (int k = 0; k < nz_; ++k) {
            for (int j = 0; j < ny_; ++j) {
                int ti = tmplOf(i, j, k);
                const Template& t = tmpls_[static_cast<size_t>(ti)];
                blockIds(t, i, j, k);
                neighbour(t, ti, blockCellBase(z.slab, i, j, k), i, j, k, 0, z.slab + 1);
            }
        }
    } else {
        std::vector<BlockRef> blocks;
        sideBlocks(z.slab, z.side, &blocks, nullptr);
        for (const BlockRef& b : blocks) {
            const Template& t = tmpl(b.i, b.j, b.k);
            blockIds(t, b.i, b.j, b.k);
            int64_t base = blockCellBase(z.slab, b.i, b.j, b.k);
            for (const TFace& f : t.side[z.side]) {
                emit(f, base + f.c0 + 1, 0);
            }
        }
    }
}

void BoxMesh::ownFaces(size_t faceZone, FaceVisitor& v) const {
    emitZone(sources_[faceZone], v);
}

std::pair<int64_t, int64_t> BoxMesh::pair(size_t pairsIndex, int64_t k) const {
    if (static_cast<int>(pairsIndex) != periodicPairs_) {
        return Mesh::pair(pairsIndex, k);
    }
    // Face k of the x- side with its translate on the x+ side; both sides list
    // their blocks in the same (j, k) order.
    const FaceZoneInfo& lo = faceZones[static_cast<size_t>(xMinus_)];
    const FaceZoneInfo& hi = faceZones[static_cast<size_t>(xPlus_)];
    const std::vector<int64_t>& rl = xSideRows_[0];
    if (k < 0 || k >= rl.back()) {
        throw std::out_of_range("fluentgen: no such periodic pair");
    }
    size_t row = static_cast<size_t>(std::upper_bound(rl.begin(), rl.end(), k) - rl.begin()) - 1;
    int j = static_cast<int>(row % static_cast<size_t>(ny_)),
        kk = static_cast<int>(row / static_cast<size_t>(ny_));
    int64_t m = k - rl[row];
    int tl = tmplOf(0, j, kk), th = tmplOf(nx_ - 1, j, kk);
    const std::vector<int>& mt = match(th, tl, 0);
    for (size_t a = 0; a < mt.size(); ++a) {
        if (mt[a] == m) {
            return {lo.first + k, hi.first + xSideRows_[1][row] + static_cast<int64_t>(a)};
        }
    }
    throw std::logic_error("fluentgen: periodic sides do not match");
}

}  // namespace

std::unique_ptr<Mesh> buildBoxMesh(const Spec& spec) {
    return std::unique_ptr<Mesh>(new BoxMesh(spec));
}

}  // namespace detail
}  // namespace fluentgen
