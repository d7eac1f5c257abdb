#include "MeshChecks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace casefile_test {

std::vector<std::array<double, 3>> AssembledZone::cornerSet(const CaseFile* caseFile, size_t element) const {
    std::vector<int32_t> nodes(globalNodes.begin() + static_cast<long>(element * corners),
                               globalNodes.begin() + static_cast<long>((element + 1) * corners));
    std::sort(nodes.begin(), nodes.end());
    nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
    std::vector<std::array<double, 3>> points;
    const int d = caseFile->numDimensions;
    for (int32_t node : nodes) {
        std::array<double, 3> p = {0.0, 0.0, 0.0};
        if (node >= 1 && node <= caseFile->numLoadedNodes) {
            for (int axis = 0; axis < d; ++axis) {
                p[axis] = caseFile->nodePositions[static_cast<size_t>(node - 1) * d + axis];
            }
        }
        points.push_back(p);
    }
    return points;
}

static bool isDisplayedBoundary(const FaceZone* zone) {
    int32_t t = zone->boundaryType;
    return t < 1000 && t != 2 && t != 31 && t != 38;
}

bool assembleAllZones(CaseFile* caseFile, AssembledCase* out) {
    if (caseFile->nodePositions == nullptr && !CaseFileLoadAllNodePositions(caseFile)) {
        ADD_FAILURE() << "node positions not loaded";
        return false;
    }
    if (!CaseFileStoreFaceTreeChildren(caseFile) || !CaseFileTrackParentChildFaces(caseFile)) {
        ADD_FAILURE() << "child faces or face tree marks failed";
        return false;
    }
    for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
        CellZone* zone = &caseFile->cellZones[i];
        if (zone->zoneType == 32) {
            continue;
        }
        if (zone->elementType == 0 && zone->cellTypes == nullptr &&
            !CaseFileLoadCellZoneCellTypes(caseFile, zone)) {
            ADD_FAILURE() << "cell types of zone " << zone->zoneId << " not loaded";
            return false;
        }
        int32_t hostType = CellZoneGetZoneType(zone, caseFile, false);
        int32_t corners = nodesPerCellOfHostZoneType(hostType);
        if (corners == 0) {
            ADD_FAILURE() << "cell zone " << zone->zoneId << " is no classic zone (host type " << hostType
                          << ")";
            return false;
        }
        zone->hostZoneType = hostType;
        int32_t numCells = zone->lastIndex - zone->firstIndex + 1;
        std::vector<int32_t> cellNodes(static_cast<size_t>(numCells) * corners, UNSET_NODE);
        if (zone->newToOldNodes == nullptr &&
            !CellZoneGetNewNodeNumbers(zone, caseFile, caseFile->totalNodes)) {
            ADD_FAILURE() << "numbering of cell zone " << zone->zoneId << " failed";
            return false;
        }
        if (zone->elementType == 7) {
            ADD_FAILURE() << "cell zone " << zone->zoneId << " turned polyhedral";
            return false;
        }
        if (!CellZoneAssembleFaces(caseFile, zone, numCells, corners, cellNodes.data())) {
            ADD_FAILURE() << "assembly of cell zone " << zone->zoneId << " failed";
            return false;
        }
        AssembledZone assembled;
        assembled.label = "cell zone " + std::to_string(zone->zoneId);
        assembled.isCellZone = true;
        assembled.zoneId = zone->zoneId;
        assembled.hostZoneType = hostType;
        assembled.corners = corners;
        assembled.globalNodes.resize(cellNodes.size());
        for (size_t k = 0; k < cellNodes.size(); ++k) {
            int32_t local = cellNodes[k];
            if (local == UNSET_NODE || local < 1 || local > zone->numNodes) {
                ++assembled.unsetSlots;
                assembled.globalNodes[k] = 0;
            } else {
                assembled.globalNodes[k] = zone->newToOldNodes[local - 1];
            }
        }
        out->zones.push_back(std::move(assembled));
    }
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        FaceZone* zone = &caseFile->faceZones[i];
        if (!isDisplayedBoundary(zone)) {
            continue;
        }
        if (!FaceZoneGetNodeNumbers(zone, caseFile, caseFile->totalNodes)) {
            ADD_FAILURE() << "numbering of face zone " << zone->zoneId << " failed";
            return false;
        }
        int32_t hostType = FaceZoneGetZoneType(zone, false);
        int32_t corners = nodesPerCellOfHostZoneType(hostType);
        if (corners == 0) {
            ADD_FAILURE() << "face zone " << zone->zoneId << " is no classic zone";
            return false;
        }
        zone->hostZoneType = hostType;
        int32_t numFaces = zone->lastIndex - zone->firstIndex + 1;
        // Filled as the node map loader fills a raw map: unset first.
        std::vector<int32_t> map(static_cast<size_t>(numFaces) * corners, UNSET_NODE - 1);
        FaceZoneConnectivityTarget target = {nullptr, map.data(), false, corners};
        FaceZoneWriteConnectivity(zone, hostType, &target);
        AssembledZone assembled;
        assembled.label = "face zone " + std::to_string(zone->zoneId);
        assembled.zoneId = zone->zoneId;
        assembled.hostZoneType = hostType;
        assembled.corners = corners;
        assembled.globalNodes.resize(map.size());
        for (size_t k = 0; k < map.size(); ++k) {
            int32_t local = map[k];
            if (local < 0 || local >= zone->numNodes) {
                ++assembled.unsetSlots;
                assembled.globalNodes[k] = 0;
            } else {
                assembled.globalNodes[k] = zone->zoneNodes[local];
            }
        }
        out->zones.push_back(std::move(assembled));
    }
    return true;
}

namespace {

using Point = std::array<double, 3>;

Point cornerPoint(const CaseFile* caseFile, const AssembledZone& zone, size_t element, int corner) {
    Point p = {0.0, 0.0, 0.0};
    int32_t node = zone.globalNodes[element * zone.corners + corner];
    if (node < 1 || node > caseFile->numLoadedNodes) {
        return p;
    }
    const int d = caseFile->numDimensions;
    for (int axis = 0; axis < d; ++axis) {
        p[axis] = caseFile->nodePositions[static_cast<size_t>(node - 1) * d + axis];
    }
    return p;
}

double tripleProduct(const Point& a, const Point& b, const Point& c) {
    return a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) +
           a[2] * (b[0] * c[1] - b[1] * c[0]);
}

}  // namespace

double signedMeasure(const CaseFile* caseFile, const AssembledZone& zone, size_t element) {
    auto p = [&](int corner) { return cornerPoint(caseFile, zone, element, corner); };
    switch (zone.hostZoneType) {
        case ZorZoneType_FETriangle:
        case ZorZoneType_FEQuad: {
            double area = 0.0;
            for (int k = 0; k < zone.corners; ++k) {
                Point a = p(k), b = p((k + 1) % zone.corners);
                area += a[0] * b[1] - b[0] * a[1];
            }
            return 0.5 * area;
        }
        case ZorZoneType_FETetra: {
            Point a = p(0), b = p(1), c = p(2), d = p(3);
            Point u = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
            Point v = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
            Point w = {d[0] - a[0], d[1] - a[1], d[2] - a[2]};
            return tripleProduct(u, v, w) / 6.0;
        }
        case ZorZoneType_FEBrick: {
            // Divergence theorem over the six faces, all turning the same way
            // for corners 0-3 on one face and k + 4 across from corner k.
            static const int faces[6][4] = {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4},
                                            {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}};
            double volume = 0.0;
            for (const auto& face : faces) {
                Point a = p(face[0]);
                for (int k = 1; k < 3; ++k) {
                    volume += tripleProduct(a, p(face[k]), p(face[k + 1]));
                }
            }
            return volume / 6.0;
        }
        default:
            return 0.0;
    }
}

double coordinateScale(const CaseFile* caseFile) {
    double scale = 1.0;
    size_t n = static_cast<size_t>(caseFile->numLoadedNodes) * caseFile->numDimensions;
    for (size_t k = 0; k < n; ++k) {
        scale = std::max(scale, std::fabs(caseFile->nodePositions[k]));
    }
    return scale;
}

// A measure counts as zero below this fraction of the zone's largest one.
static double zeroLimit(const CaseFile* caseFile, const AssembledZone& zone) {
    double largest = 0.0;
    for (size_t e = 0; e < zone.numElements(); ++e) {
        largest = std::max(largest, std::fabs(signedMeasure(caseFile, zone, e)));
    }
    return largest * 1e-12;
}

bool hasOneOrientation(const CaseFile* caseFile, const AssembledZone& zone) {
    const double limit = zeroLimit(caseFile, zone);
    size_t positive = 0, negative = 0;
    for (size_t e = 0; e < zone.numElements(); ++e) {
        double measure = signedMeasure(caseFile, zone, e);
        if (measure > limit) {
            ++positive;
        } else if (measure < -limit) {
            ++negative;
        }
    }
    return zone.numElements() > 0 && (positive == zone.numElements() || negative == zone.numElements());
}

std::string orientationSummary(const CaseFile* caseFile, const AssembledZone& zone) {
    const double limit = zeroLimit(caseFile, zone);
    size_t positive = 0, negative = 0, zero = 0;
    long firstOdd = -1;
    double firstMeasure = 0.0;
    for (size_t e = 0; e < zone.numElements(); ++e) {
        double measure = signedMeasure(caseFile, zone, e);
        if (measure > limit) {
            ++positive;
        } else if (measure < -limit) {
            ++negative;
        } else {
            ++zero;
        }
        if (e == 0) {
            firstMeasure = measure;
        } else if (firstOdd < 0 && (measure > limit) != (firstMeasure > limit)) {
            firstOdd = static_cast<long>(e);
        }
    }
    std::ostringstream text;
    text << zone.label << ": " << positive << " positive, " << negative << " negative, " << zero
         << " zero; first other cell " << (firstOdd + 1);
    return text.str();
}

double totalMeasure(const CaseFile* caseFile, const AssembledZone& zone) {
    double total = 0.0;
    for (size_t e = 0; e < zone.numElements(); ++e) {
        total += std::fabs(signedMeasure(caseFile, zone, e));
    }
    return total;
}

bool samePointSets(const std::vector<std::array<double, 3>>& a, const std::vector<std::array<double, 3>>& b,
                   double scale) {
    if (a.size() != b.size()) {
        return false;
    }
    const double tolerance = 2e-7 * scale;
    std::vector<bool> used(b.size(), false);
    for (const auto& p : a) {
        bool found = false;
        for (size_t k = 0; k < b.size() && !found; ++k) {
            if (!used[k] && std::fabs(p[0] - b[k][0]) <= tolerance &&
                std::fabs(p[1] - b[k][1]) <= tolerance && std::fabs(p[2] - b[k][2]) <= tolerance) {
                used[k] = true;
                found = true;
            }
        }
        if (!found) {
            return false;
        }
    }
    return true;
}

}  // namespace casefile_test
