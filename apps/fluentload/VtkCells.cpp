#include "apps/fluentload/VtkCells.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <utility>

namespace fluentload {

namespace {

// Local faces of the host's brick, corners numbered from 0 (the host's face table).
constexpr int kBrickFaces[6][4] = {{0, 3, 7, 4}, {2, 1, 5, 6}, {1, 0, 4, 5},
                                   {3, 2, 6, 7}, {0, 1, 2, 3}, {4, 5, 6, 7}};

struct Vec3 {
    double x = 0.0, y = 0.0, z = 0.0;
};

Vec3 pointOf(const double* xyz, int64_t p) {
    return {xyz[3 * p], xyz[3 * p + 1], xyz[3 * p + 2]};
}
Vec3 operator-(Vec3 a, Vec3 b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
Vec3 operator+(Vec3 a, Vec3 b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
Vec3 scaled(Vec3 a, double s) {
    return {a.x * s, a.y * s, a.z * s};
}
double dot(Vec3 a, Vec3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
Vec3 cross(Vec3 a, Vec3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// The centroid of points (the mean of their coordinates).
template <typename It>
Vec3 centroid(It first, It last, const double* xyz) {
    Vec3 sum;
    int64_t n = 0;
    for (It it = first; it != last; ++it, ++n)
        sum = sum + pointOf(xyz, *it);
    return n == 0 ? sum : scaled(sum, 1.0 / static_cast<double>(n));
}

// Twice the area vector of a polygon by Newell's rule: its direction is the
// normal by the right-hand rule.
template <typename It>
Vec3 areaVector2(It first, It last, const double* xyz) {
    Vec3 sum;
    for (It it = first; it != last; ++it) {
        It next = it + 1 == last ? first : it + 1;
        sum = sum + cross(pointOf(xyz, *it), pointOf(xyz, *next));
    }
    return sum;
}

// Up to eight points, kept on the stack: the corners of one classic element
// or one of its faces. Elements come by the million; these stay off the heap.
struct Small {
    int64_t p[8];
    int n = 0;

    void push(int64_t v) { p[n++] = v; }
    bool has(int64_t v) const { return std::find(p, p + n, v) != p + n; }
    const int64_t* begin() const { return p; }
    const int64_t* end() const { return p + n; }
    int64_t* begin() { return p; }
    int64_t* end() { return p + n; }
};

// The points of a closed loop with cyclically repeated neighbours removed.
Small collapsedLoop(const int64_t* points, int n) {
    Small loop;
    for (int i = 0; i < n; ++i) {
        if (loop.n == 0 || loop.p[loop.n - 1] != points[i])
            loop.push(points[i]);
    }
    while (loop.n > 1 && loop.p[0] == loop.p[loop.n - 1])
        --loop.n;
    return loop;
}

Small distinctOf(const int64_t* points, int n) {
    Small distinct;
    for (int i = 0; i < n; ++i) {
        if (!distinct.has(points[i]))
            distinct.push(points[i]);
    }
    return distinct;
}

std::vector<int64_t> distinctPoints(const int64_t* points, size_t n) {
    std::vector<int64_t> distinct;
    for (size_t i = 0; i < n; ++i) {
        if (std::find(distinct.begin(), distinct.end(), points[i]) == distinct.end())
            distinct.push_back(points[i]);
    }
    return distinct;
}

bool contains(const std::vector<int64_t>& v, int64_t p) {
    return std::find(v.begin(), v.end(), p) != v.end();
}

void setCell(uint8_t type, const int64_t* points, int n, VtkCell* cell) {
    cell->type = type;
    cell->points.assign(points, points + n);
}

// A cell of fewer points than its type needs: the cell of its distinct points.
void lowerCell(const int64_t* points, int n, VtkCell* cell) {
    static const uint8_t kTypes[4] = {kVtkEmptyCell, kVtkVertex, kVtkLine, kVtkTriangle};
    setCell(n < 4 ? kTypes[n] : static_cast<uint8_t>(kVtkPolygon), points, n, cell);
}

void lowerCell(const std::vector<int64_t>& points, VtkCell* cell) {
    lowerCell(points.data(), static_cast<int>(points.size()), cell);
}

void tetraCell(Small p, const double* xyz, VtkCell* cell) {
    if (tetraVolume6(&xyz[3 * p.p[0]], &xyz[3 * p.p[1]], &xyz[3 * p.p[2]], &xyz[3 * p.p[3]]) < 0.0)
        std::swap(p.p[1], p.p[2]);
    setCell(kVtkTetra, p.p, 4, cell);
}

// A polyhedron of the given faces, each turned to face away from the cell's centroid.
void polyhedronOfFaces(const Small* faces, int numFaces, const Small& distinct, const double* xyz,
                       VtkCell* cell) {
    Vec3 center = centroid(distinct.begin(), distinct.end(), xyz);
    setCell(kVtkPolyhedron, distinct.p, distinct.n, cell);
    cell->faces.push_back(numFaces);
    for (int f = 0; f < numFaces; ++f) {
        const Small& face = faces[f];
        Vec3 area = areaVector2(face.begin(), face.end(), xyz);
        Vec3 out = centroid(face.begin(), face.end(), xyz) - center;
        cell->faces.push_back(face.n);
        if (dot(area, out) < 0.0) {
            cell->faces.insert(cell->faces.end(), std::make_reverse_iterator(face.end()),
                               std::make_reverse_iterator(face.begin()));
        } else {
            cell->faces.insert(cell->faces.end(), face.begin(), face.end());
        }
    }
}

bool samePointSet(Small a, Small b) {
    if (a.n != b.n)
        return false;
    std::sort(a.begin(), a.end());
    std::sort(b.begin(), b.end());
    return std::equal(a.begin(), a.end(), b.begin());
}

void brickCell(const int64_t* c, const double* xyz, VtkCell* cell) {
    const Small distinct = distinctOf(c, 8);
    if (distinct.n == 8) {
        // VTK wants the normal of (0, 1, 2, 3) to point toward (4, 5, 6, 7).
        Vec3 bottomArea = areaVector2(c, c + 4, xyz);
        Vec3 rise = centroid(c + 4, c + 8, xyz) - centroid(c, c + 4, xyz);
        cell->type = kVtkHexahedron;
        if (dot(bottomArea, rise) < 0.0) {
            cell->points.assign(c + 4, c + 8);
            cell->points.insert(cell->points.end(), c, c + 4);
        } else {
            cell->points.assign(c, c + 8);
        }
        return;
    }
    // The faces that remain after repeated corners collapse, each once.
    Small faces[6];
    int numFaces = 0, numTriangles = 0, numQuads = 0;
    int triangle[6], quad[6];  // which faces
    for (const auto& local : kBrickFaces) {
        int64_t corners[4] = {c[local[0]], c[local[1]], c[local[2]], c[local[3]]};
        Small loop = collapsedLoop(corners, 4);
        Small loopDistinct = distinctOf(loop.p, loop.n);
        if (loopDistinct.n < 3)
            continue;
        if (loopDistinct.n != loop.n)
            loop = loopDistinct;
        bool seen = false;
        for (int f = 0; f < numFaces && !seen; ++f)
            seen = samePointSet(faces[f], loop);
        if (seen)
            continue;
        if (loop.n == 3)
            triangle[numTriangles++] = numFaces;
        if (loop.n == 4)
            quad[numQuads++] = numFaces;
        faces[numFaces++] = loop;
    }
    if (distinct.n == 4 && numFaces == 4 && numTriangles == 4) {
        tetraCell(distinct, xyz, cell);
        return;
    }
    if (distinct.n == 5 && numFaces == 5 && numQuads == 1 && numTriangles == 4) {
        Small base = faces[quad[0]];
        int64_t apex = -1;
        for (int64_t p : distinct) {
            if (!base.has(p))
                apex = p;
        }
        // VTK wants the base's normal to point toward the apex.
        Vec3 rise = pointOf(xyz, apex) - centroid(base.begin(), base.end(), xyz);
        if (dot(areaVector2(base.begin(), base.end(), xyz), rise) < 0.0)
            std::reverse(base.begin() + 1, base.end());
        base.push(apex);
        setCell(kVtkPyramid, base.p, 5, cell);
        return;
    }
    if (distinct.n == 6 && numFaces == 5 && numTriangles == 2 && numQuads == 3) {
        Small bottom = faces[triangle[0]];
        const Small& top = faces[triangle[1]];
        // The side faces join each bottom corner to one top corner.
        int64_t across[3] = {-1, -1, -1};
        for (int q = 0; q < 3; ++q) {
            const Small& side = faces[quad[q]];
            for (int i = 0; i < 4; ++i) {
                int64_t a = side.p[i], b = side.p[(i + 1) % 4];
                for (int k = 0; k < 3; ++k) {
                    if ((a == bottom.p[k] && top.has(b)) || (b == bottom.p[k] && top.has(a)))
                        across[k] = a == bottom.p[k] ? b : a;
                }
            }
        }
        if (across[0] >= 0 && across[1] >= 0 && across[2] >= 0) {
            // VTK wants the normal of (0, 1, 2) to point away from (3, 4, 5).
            Vec3 rise = centroid(top.begin(), top.end(), xyz) - centroid(bottom.begin(), bottom.end(), xyz);
            if (dot(areaVector2(bottom.begin(), bottom.end(), xyz), rise) > 0.0) {
                std::swap(bottom.p[1], bottom.p[2]);
                std::swap(across[1], across[2]);
            }
            const int64_t wedge[6] = {bottom.p[0], bottom.p[1], bottom.p[2], across[0], across[1], across[2]};
            setCell(kVtkWedge, wedge, 6, cell);
            return;
        }
    }
    if (numFaces >= 4 && distinct.n >= 4) {
        polyhedronOfFaces(faces, numFaces, distinct, xyz, cell);
        return;
    }
    if (numFaces == 1 || numFaces == 2) {
        // Flat: the largest remaining face.
        const Small& face = numFaces == 2 && faces[1].n > faces[0].n ? faces[1] : faces[0];
        lowerCell(face.p, face.n, cell);
        if (face.n == 4)
            cell->type = kVtkQuad;
        return;
    }
    lowerCell(distinct.p, distinct.n, cell);
}

}  // namespace

double tetraVolume6(const double* a, const double* b, const double* c, const double* d) {
    Vec3 pa{a[0], a[1], a[2]}, pb{b[0], b[1], b[2]}, pc{c[0], c[1], c[2]}, pd{d[0], d[1], d[2]};
    return dot(cross(pb - pa, pc - pa), pd - pa);
}

void VtkCellArrays::append(const VtkCell& cell) {
    if (cell.type == kVtkPolyhedron && faceOffsets.empty())
        faceOffsets.assign(types.size(), -1);
    connectivity.insert(connectivity.end(), cell.points.begin(), cell.points.end());
    offsets.push_back(static_cast<int64_t>(connectivity.size()));
    types.push_back(cell.type);
    if (cell.type == kVtkPolyhedron) {
        faces.insert(faces.end(), cell.faces.begin(), cell.faces.end());
        faceOffsets.push_back(static_cast<int64_t>(faces.size()));
    } else if (!faceOffsets.empty()) {
        faceOffsets.push_back(-1);
    }
}

void classicCell(int32_t zoneType, const int64_t* corners, const double* xyz, VtkCell* cell) {
    cell->type = kVtkEmptyCell;
    cell->points.clear();
    cell->faces.clear();
    switch (zoneType) {
        case 1: {  // triangle
            Small distinct = distinctOf(corners, 3);
            lowerCell(distinct.p, distinct.n, cell);
            break;
        }
        case 2: {  // quadrilateral
            Small loop = collapsedLoop(corners, 4);
            Small distinct = distinctOf(corners, 4);
            if (loop.n != distinct.n)
                loop = distinct;  // corners repeat out of turn: keep first use order
            lowerCell(loop.p, loop.n, cell);
            if (loop.n == 4)
                cell->type = kVtkQuad;
            break;
        }
        case 3: {  // tetrahedron
            Small distinct = distinctOf(corners, 4);
            if (distinct.n == 4) {
                tetraCell(distinct, xyz, cell);
            } else {
                lowerCell(distinct.p, distinct.n, cell);
            }
            break;
        }
        case 4:  // brick
            brickCell(corners, xyz, cell);
            break;
        case 5: {  // line segment
            Small distinct = distinctOf(corners, 2);
            lowerCell(distinct.p, distinct.n, cell);
            break;
        }
        default:
            break;
    }
}

std::vector<int64_t> polygonLoop(const std::vector<std::pair<int64_t, int64_t>>& edges) {
    std::vector<int64_t> loop;
    if (edges.empty())
        return loop;
    // Directed walk: from each point the edge that starts there.
    std::map<int64_t, int64_t> next;
    bool directed = true;
    for (const auto& e : edges) {
        if (!next.emplace(e.first, e.second).second)
            directed = false;
    }
    if (directed) {
        int64_t at = edges[0].first;
        for (size_t steps = 0; steps < edges.size(); ++steps) {
            loop.push_back(at);
            auto it = next.find(at);
            if (it == next.end()) {
                directed = false;
                break;
            }
            at = it->second;
        }
        if (directed && at == edges[0].first && loop.size() == edges.size() &&
            distinctPoints(loop.data(), loop.size()).size() == loop.size()) {
            return loop;
        }
    }
    // Undirected walk: follow unused edges through shared points, starting
    // along the first edge's direction.
    loop.clear();
    std::vector<bool> used(edges.size(), false);
    loop.push_back(edges[0].first);
    int64_t at = edges[0].second;
    used[0] = true;
    for (size_t steps = 1; steps < edges.size(); ++steps) {
        loop.push_back(at);
        bool moved = false;
        for (size_t i = 0; i < edges.size() && !moved; ++i) {
            if (used[i])
                continue;
            if (edges[i].first == at) {
                at = edges[i].second;
                moved = true;
            } else if (edges[i].second == at) {
                at = edges[i].first;
                moved = true;
            }
            if (moved)
                used[i] = true;
        }
        if (!moved)
            break;
    }
    if (at == loop.front() && loop.size() == edges.size() &&
        distinctPoints(loop.data(), loop.size()).size() == loop.size()) {
        return loop;
    }
    // The edges do not close: the distinct points in first use order.
    std::vector<int64_t> all;
    for (const auto& e : edges) {
        all.push_back(e.first);
        all.push_back(e.second);
    }
    return distinctPoints(all.data(), all.size());
}

namespace {

// Faces of each element (elements from 1), with the side it stands on: +1
// left, -1 right. Compressed rows.
struct ElementFaces {
    std::vector<int64_t> start;  // numElements + 1
    std::vector<int64_t> face;   // face index from 0
    std::vector<int8_t> side;    // +1 left, -1 right
};

ElementFaces elementFaces(const PolyFaces& faces, int64_t numElements) {
    ElementFaces result;
    result.start.assign(static_cast<size_t>(numElements) + 1, 0);
    const size_t numFaces = faces.left.size();
    auto inRange = [numElements](int64_t e) { return e >= 1 && e <= numElements; };
    for (size_t f = 0; f < numFaces; ++f) {
        if (inRange(faces.left[f]))
            ++result.start[static_cast<size_t>(faces.left[f])];
        if (inRange(faces.right[f]))
            ++result.start[static_cast<size_t>(faces.right[f])];
    }
    for (size_t e = 1; e < result.start.size(); ++e)
        result.start[e] += result.start[e - 1];
    result.face.resize(static_cast<size_t>(result.start.back()));
    result.side.resize(result.face.size());
    std::vector<int64_t> fill(result.start.begin(), result.start.end() - 1);
    for (size_t f = 0; f < numFaces; ++f) {
        if (inRange(faces.left[f])) {
            size_t at = static_cast<size_t>(fill[static_cast<size_t>(faces.left[f] - 1)]++);
            result.face[at] = static_cast<int64_t>(f);
            result.side[at] = 1;
        }
        if (inRange(faces.right[f])) {
            size_t at = static_cast<size_t>(fill[static_cast<size_t>(faces.right[f] - 1)]++);
            result.face[at] = static_cast<int64_t>(f);
            result.side[at] = -1;
        }
    }
    return result;
}

}  // namespace

void polyhedronCells(const PolyFaces& faces, int64_t numElements, const double* xyz, VtkCellArrays* cells) {
    ElementFaces ef = elementFaces(faces, numElements);
    auto faceBegin = [&](int64_t f) { return faces.nodes.begin() + faces.start[static_cast<size_t>(f)]; };
    auto faceEnd = [&](int64_t f) { return faces.nodes.begin() + faces.start[static_cast<size_t>(f) + 1]; };

    // Per face its doubled area vector and centroid, worked out once.
    const size_t numFaces = faces.left.size();
    std::vector<Vec3> area(numFaces), center(numFaces);
    for (size_t f = 0; f < numFaces; ++f) {
        area[f] = areaVector2(faceBegin(static_cast<int64_t>(f)), faceEnd(static_cast<int64_t>(f)), xyz);
        center[f] = centroid(faceBegin(static_cast<int64_t>(f)), faceEnd(static_cast<int64_t>(f)), xyz);
    }

    // The zone's volume with faces as given for left elements and reversed for
    // right ones (six times it, by the divergence theorem, measured from each
    // element's own centroid): negative when that rule turns faces inward.
    std::vector<int64_t> points;
    double volume = 0.0;
    for (int64_t e = 0; e < numElements; ++e) {
        points.clear();
        for (int64_t k = ef.start[static_cast<size_t>(e)]; k < ef.start[static_cast<size_t>(e) + 1]; ++k) {
            for (auto it = faceBegin(ef.face[static_cast<size_t>(k)]);
                 it != faceEnd(ef.face[static_cast<size_t>(k)]); ++it) {
                if (!contains(points, *it))
                    points.push_back(*it);
            }
        }
        Vec3 middle = centroid(points.begin(), points.end(), xyz);
        for (int64_t k = ef.start[static_cast<size_t>(e)]; k < ef.start[static_cast<size_t>(e) + 1]; ++k) {
            size_t f = static_cast<size_t>(ef.face[static_cast<size_t>(k)]);
            volume += ef.side[static_cast<size_t>(k)] * dot(center[f] - middle, area[f]);
        }
    }
    const int outward = volume < 0.0 ? -1 : 1;

    VtkCell cell;
    cell.type = kVtkPolyhedron;
    for (int64_t e = 0; e < numElements; ++e) {
        cell.points.clear();
        cell.faces.clear();
        int64_t begin = ef.start[static_cast<size_t>(e)], end = ef.start[static_cast<size_t>(e) + 1];
        cell.faces.push_back(end - begin);
        for (int64_t k = begin; k < end; ++k) {
            int64_t f = ef.face[static_cast<size_t>(k)];
            cell.faces.push_back(faceEnd(f) - faceBegin(f));
            if (ef.side[static_cast<size_t>(k)] * outward > 0) {
                cell.faces.insert(cell.faces.end(), faceBegin(f), faceEnd(f));
            } else {
                cell.faces.insert(cell.faces.end(), std::make_reverse_iterator(faceEnd(f)),
                                  std::make_reverse_iterator(faceBegin(f)));
            }
            for (auto it = faceBegin(f); it != faceEnd(f); ++it) {
                if (!contains(cell.points, *it))
                    cell.points.push_back(*it);
            }
        }
        if (begin == end) {
            // An element without faces: nothing VTK could draw, but it keeps its place.
            VtkCell empty;
            cells->append(empty);
            continue;
        }
        cells->append(cell);
    }
}

void polygonCells(const PolyFaces& edges, int64_t numElements, VtkCellArrays* cells) {
    ElementFaces ef = elementFaces(edges, numElements);
    std::vector<std::pair<int64_t, int64_t>> list;
    VtkCell cell;
    for (int64_t e = 0; e < numElements; ++e) {
        list.clear();
        for (int64_t k = ef.start[static_cast<size_t>(e)]; k < ef.start[static_cast<size_t>(e) + 1]; ++k) {
            size_t f = static_cast<size_t>(ef.face[static_cast<size_t>(k)]);
            int64_t from = edges.start[f], to = edges.start[f + 1];
            if (to - from < 2)
                continue;
            int64_t a = edges.nodes[static_cast<size_t>(from)], b = edges.nodes[static_cast<size_t>(to - 1)];
            // The element lies on the left of its own edges walked this way.
            if (ef.side[static_cast<size_t>(k)] > 0) {
                list.emplace_back(a, b);
            } else {
                list.emplace_back(b, a);
            }
        }
        std::vector<int64_t> loop = polygonLoop(list);
        lowerCell(loop, &cell);
        if (loop.size() >= 3)
            cell.type = kVtkPolygon;
        cells->append(cell);
    }
}

}  // namespace fluentload
