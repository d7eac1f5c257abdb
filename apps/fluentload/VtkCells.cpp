#include "apps/fluentload/VtkCells.h"

#include <algorithm>
#include <array>
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

// The points of a closed loop with cyclically repeated neighbours removed.
std::vector<int64_t> collapsedLoop(const int64_t* points, int n) {
    std::vector<int64_t> loop;
    for (int i = 0; i < n; ++i) {
        if (loop.empty() || loop.back() != points[i])
            loop.push_back(points[i]);
    }
    while (loop.size() > 1 && loop.front() == loop.back())
        loop.pop_back();
    return loop;
}

std::vector<int64_t> distinctPoints(const int64_t* points, int n) {
    std::vector<int64_t> distinct;
    for (int i = 0; i < n; ++i) {
        if (std::find(distinct.begin(), distinct.end(), points[i]) == distinct.end())
            distinct.push_back(points[i]);
    }
    return distinct;
}

bool contains(const std::vector<int64_t>& v, int64_t p) {
    return std::find(v.begin(), v.end(), p) != v.end();
}

// A cell of fewer points than its type needs: the cell of its distinct points.
void lowerCell(const std::vector<int64_t>& distinct, VtkCell* cell) {
    cell->points = distinct;
    switch (distinct.size()) {
        case 0:
            cell->type = kVtkEmptyCell;
            break;
        case 1:
            cell->type = kVtkVertex;
            break;
        case 2:
            cell->type = kVtkLine;
            break;
        case 3:
            cell->type = kVtkTriangle;
            break;
        default:
            cell->type = kVtkPolygon;
            break;
    }
}

void tetraCell(std::vector<int64_t> p, const double* xyz, VtkCell* cell) {
    if (tetraVolume6(&xyz[3 * p[0]], &xyz[3 * p[1]], &xyz[3 * p[2]], &xyz[3 * p[3]]) < 0.0)
        std::swap(p[1], p[2]);
    cell->type = kVtkTetra;
    cell->points = std::move(p);
}

// A polyhedron of the given faces, each turned to face away from the cell's centroid.
void polyhedronOfFaces(const std::vector<std::vector<int64_t>>& faces, const std::vector<int64_t>& distinct,
                       const double* xyz, VtkCell* cell) {
    Vec3 center = centroid(distinct.begin(), distinct.end(), xyz);
    cell->type = kVtkPolyhedron;
    cell->points = distinct;
    cell->faces.push_back(static_cast<int64_t>(faces.size()));
    for (const std::vector<int64_t>& face : faces) {
        Vec3 area = areaVector2(face.begin(), face.end(), xyz);
        Vec3 out = centroid(face.begin(), face.end(), xyz) - center;
        cell->faces.push_back(static_cast<int64_t>(face.size()));
        if (dot(area, out) < 0.0) {
            cell->faces.insert(cell->faces.end(), face.rbegin(), face.rend());
        } else {
            cell->faces.insert(cell->faces.end(), face.begin(), face.end());
        }
    }
}

void brickCell(const int64_t* c, const double* xyz, VtkCell* cell) {
    std::vector<int64_t> distinct = distinctPoints(c, 8);
    if (distinct.size() == 8) {
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
    std::vector<std::vector<int64_t>> faces;
    for (const auto& local : kBrickFaces) {
        int64_t corners[4] = {c[local[0]], c[local[1]], c[local[2]], c[local[3]]};
        std::vector<int64_t> loop = collapsedLoop(corners, 4);
        std::vector<int64_t> loopDistinct = distinctPoints(loop.data(), static_cast<int>(loop.size()));
        if (loopDistinct.size() < 3)
            continue;
        if (loopDistinct.size() != loop.size())
            loop = loopDistinct;
        std::vector<int64_t> key = loop;
        std::sort(key.begin(), key.end());
        bool seen = std::any_of(faces.begin(), faces.end(), [&](const std::vector<int64_t>& f) {
            std::vector<int64_t> k = f;
            std::sort(k.begin(), k.end());
            return k == key;
        });
        if (!seen)
            faces.push_back(std::move(loop));
    }
    std::vector<const std::vector<int64_t>*> triangles, quads;
    for (const auto& face : faces)
        (face.size() == 3 ? triangles : quads).push_back(&face);
    if (distinct.size() == 4 && faces.size() == 4 && triangles.size() == 4) {
        tetraCell(distinct, xyz, cell);
        return;
    }
    if (distinct.size() == 5 && faces.size() == 5 && quads.size() == 1 && quads[0]->size() == 4) {
        std::vector<int64_t> base = *quads[0];
        int64_t apex = -1;
        for (int64_t p : distinct) {
            if (!contains(base, p))
                apex = p;
        }
        // VTK wants the base's normal to point toward the apex.
        Vec3 rise = pointOf(xyz, apex) - centroid(base.begin(), base.end(), xyz);
        if (dot(areaVector2(base.begin(), base.end(), xyz), rise) < 0.0)
            std::reverse(base.begin() + 1, base.end());
        cell->type = kVtkPyramid;
        cell->points = base;
        cell->points.push_back(apex);
        return;
    }
    if (distinct.size() == 6 && faces.size() == 5 && triangles.size() == 2 && quads.size() == 3 &&
        std::all_of(quads.begin(), quads.end(),
                    [](const std::vector<int64_t>* q) { return q->size() == 4; })) {
        std::vector<int64_t> bottom = *triangles[0];
        const std::vector<int64_t>& top = *triangles[1];
        // The side faces join each bottom corner to one top corner.
        std::map<int64_t, int64_t> across;
        for (const std::vector<int64_t>* quad : quads) {
            for (size_t i = 0; i < 4; ++i) {
                int64_t a = (*quad)[i], b = (*quad)[(i + 1) % 4];
                if (contains(bottom, a) && contains(top, b))
                    across[a] = b;
                if (contains(bottom, b) && contains(top, a))
                    across[b] = a;
            }
        }
        if (across.size() == 3) {
            // VTK wants the normal of (0, 1, 2) to point away from (3, 4, 5).
            Vec3 rise = centroid(top.begin(), top.end(), xyz) - centroid(bottom.begin(), bottom.end(), xyz);
            if (dot(areaVector2(bottom.begin(), bottom.end(), xyz), rise) > 0.0)
                std::swap(bottom[1], bottom[2]);
            cell->type = kVtkWedge;
            cell->points = {bottom[0],         bottom[1],         bottom[2],
                            across[bottom[0]], across[bottom[1]], across[bottom[2]]};
            return;
        }
    }
    if (faces.size() >= 4 && distinct.size() >= 4) {
        polyhedronOfFaces(faces, distinct, xyz, cell);
        return;
    }
    if (faces.size() == 1 || faces.size() == 2) {
        // Flat: the largest remaining face.
        const std::vector<int64_t>& face =
            faces.size() == 2 && faces[1].size() > faces[0].size() ? faces[1] : faces[0];
        lowerCell(face, cell);
        if (face.size() == 4)
            cell->type = kVtkQuad;
        return;
    }
    lowerCell(distinct, cell);
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
            std::vector<int64_t> distinct = distinctPoints(corners, 3);
            lowerCell(distinct, cell);
            break;
        }
        case 2: {  // quadrilateral
            std::vector<int64_t> loop = collapsedLoop(corners, 4);
            std::vector<int64_t> distinct = distinctPoints(corners, 4);
            if (loop.size() != distinct.size())
                loop = distinct;  // corners repeat out of turn: keep first use order
            lowerCell(loop, cell);
            if (loop.size() == 4)
                cell->type = kVtkQuad;
            break;
        }
        case 3: {  // tetrahedron
            std::vector<int64_t> distinct = distinctPoints(corners, 4);
            if (distinct.size() == 4) {
                tetraCell(distinct, xyz, cell);
            } else {
                lowerCell(distinct, cell);
            }
            break;
        }
        case 4:  // brick
            brickCell(corners, xyz, cell);
            break;
        case 5: {  // line segment
            std::vector<int64_t> distinct = distinctPoints(corners, 2);
            lowerCell(distinct, cell);
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
            distinctPoints(loop.data(), static_cast<int>(loop.size())).size() == loop.size()) {
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
        distinctPoints(loop.data(), static_cast<int>(loop.size())).size() == loop.size()) {
        return loop;
    }
    // The edges do not close: the distinct points in first use order.
    std::vector<int64_t> all;
    for (const auto& e : edges) {
        all.push_back(e.first);
        all.push_back(e.second);
    }
    return distinctPoints(all.data(), static_cast<int>(all.size()));
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
