// Wall fluxes per area.
//
// Fluent stores wall shear and the two boundary heat fluxes as totals over a
// face; the user wants them per area. The area of each element comes from the
// zone as the host holds it (its coordinate variables and its node map):
//
//   3 nodes   half the length of (P3 - P2) x (P1 - P2)
//   4 nodes   the quadrilateral split along P1-P3: the triangle P3 P2 P1 plus P1 P4 P3
//   2 nodes   the segment's length in x and y; times the mean y when axisymmetric
//   more      polygons only: the fan of triangles around P1
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "casefile/CaseFile.h"
#include "host/ZorData.h"
#include "host/ZorUtil.h"
#include "lod/ValueClientData.h"

namespace {

struct Point {
    double x, y, z;
};

Point minus(const Point& a, const Point& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

// Length of the cross product of two vectors.
double crossLength(const Point& u, const Point& v) {
    const double cx = u.y * v.z - u.z * v.y;
    const double cy = u.z * v.x - u.x * v.z;
    const double cz = u.x * v.y - u.y * v.x;
    return std::sqrt(cx * cx + cy * cy + cz * cz);
}

// Whether variable 3 of the data set is the z coordinate.
bool thirdVariableIsZ() {
    if (ZorUtilDataSetGetNumVars() < 3)
        return false;
    char* name = nullptr;
    bool isZ = false;
    if (ZorUtilVarGetName(3, &name) && name != nullptr)
        isZ = std::strcmp(name, "Z") == 0;
    ZorUtilStringDealloc(&name);
    return isZ;
}

}  // namespace

void scaleBoundaryFluxesByArea(double* values, int32_t count, int32_t dimension, ZorIndex zone,
                               bool axisymmetric, bool negate) {
    const int32_t zoneType = ZorUtilZoneGetType(zone);
    const bool volumeZone = zoneType == ZorZoneType_FETetra || zoneType == ZorZoneType_FEBrick ||
                            zoneType == ZorZoneType_FEPolyhedron;
    if (volumeZone && !ZorUtilMacroIsBatchModeActive())
        return;

    ZorFieldData xs = ZorUtilDataValueGetReadableDerivedRef(zone, 1);
    ZorFieldData ys = ZorUtilDataValueGetReadableDerivedRef(zone, 2);
    ZorFieldData zs = thirdVariableIsZ() ? ZorUtilDataValueGetReadableDerivedRef(zone, 3) : nullptr;
    if (xs == nullptr || ys == nullptr)
        return;
    const bool polygons = zoneType == ZorZoneType_FEPolygon;
    ZorNodeMap nodeMap = polygons ? nullptr : ZorUtilDataNodeGetReadableRef(zone);
    if (!polygons && nodeMap == nullptr)
        return;
    const int32_t corners = nodesPerCellOfHostZoneType(zoneType);

    for (int32_t e = 1; e <= count; ++e) {
        // The element's nodes, in a list of its own.
        int32_t n = corners;
        ZorIndex* nodes = nullptr;
        if (polygons) {
            ZorIndex capacity = 16;
            nodes = static_cast<ZorIndex*>(std::malloc(sizeof(ZorIndex) * static_cast<size_t>(capacity)));
            if (nodes == nullptr)
                continue;
            ZorIndex found = ZorUtilDataFECellGetUniqueNodes(zone, e, nodes, capacity);
            if (found > capacity) {
                std::free(nodes);
                capacity = found;
                nodes = static_cast<ZorIndex*>(std::malloc(sizeof(ZorIndex) * static_cast<size_t>(capacity)));
                if (nodes == nullptr)
                    continue;
                found = ZorUtilDataFECellGetUniqueNodes(zone, e, nodes, capacity);
            }
            n = static_cast<int32_t>(found);
        } else {
            nodes = static_cast<ZorIndex*>(
                std::malloc(sizeof(ZorIndex) * static_cast<size_t>(corners > 0 ? corners : 1)));
            if (nodes == nullptr)
                continue;
            for (int32_t k = 0; k < corners; ++k)
                nodes[k] = ZorUtilDataNodeGetByRef(nodeMap, e, k + 1);
        }
        auto point = [&](int32_t k) {
            return Point{ZorUtilDataValueGetByRef(xs, nodes[k]), ZorUtilDataValueGetByRef(ys, nodes[k]),
                         zs != nullptr ? ZorUtilDataValueGetByRef(zs, nodes[k]) : 0.0};
        };

        double area = 0.0;
        bool known = true;
        if (n == 3) {
            const Point p1 = point(0), p2 = point(1), p3 = point(2);
            area = 0.5 * crossLength(minus(p3, p2), minus(p1, p2));
        } else if (n == 4) {
            const Point p1 = point(0), p2 = point(1), p3 = point(2), p4 = point(3);
            area =
                0.5 * (crossLength(minus(p3, p2), minus(p1, p2)) + crossLength(minus(p1, p4), minus(p3, p4)));
        } else if (n == 2) {
            const Point p1 = point(0), p2 = point(1);
            area = std::sqrt((p2.x - p1.x) * (p2.x - p1.x) + (p2.y - p1.y) * (p2.y - p1.y));
            if (axisymmetric)
                area *= 0.5 * (p1.y + p2.y);
        } else if (n > 4 && polygons) {
            const Point apex = point(0);
            for (int32_t k = 1; k + 1 < n; ++k)
                area += 0.5 * crossLength(minus(point(k), apex), minus(point(k + 1), apex));
        } else {
            known = false;
        }
        std::free(nodes);

        if (known && area > 0.0) {
            if (negate)
                area = -area;
            double* element = values + static_cast<int64_t>(e - 1) * dimension;
            for (int32_t k = 0; k < dimension; ++k)
                element[k] /= area;
        }
    }
}
