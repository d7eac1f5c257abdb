// Writing a boundary zone's faces as the elements of a host zone.
//
// The row width follows the host zone type (3 triangle, 4 quadrilateral and
// tetrahedron, 8 brick, 2 line segment). Each node is written as its one-based
// place in the zone's sorted zoneNodes; the places behind a face's node count
// repeat its last node. A raw target takes the numbers less one.
#include <algorithm>

#include "casefile/CaseFileInternal.h"
#include "host/ZorData.h"

int32_t sortedPlaceNear(const int32_t* sorted, int32_t count, int32_t node, int32_t* hint) {
    if (count <= 0) {
        return -1;
    }
    const int64_t n = count;
    const int64_t h = std::min<int64_t>(std::max<int32_t>(*hint, 0), n - 1);
    int64_t lo;  // the place lies in [lo, hi): sorted[lo - 1] < node, and sorted[hi - 1] >= node or hi == n
    int64_t hi;
    if (sorted[h] < node) {
        // Gallop up: the steps double while the number there stays below the node.
        lo = h + 1;
        int64_t step = 1;
        while (lo + step <= n && sorted[lo + step - 1] < node) {
            lo += step;
            step *= 2;
        }
        hi = std::min(n, lo + step);
    } else {
        // Gallop down, keeping sorted[hi - 1] >= node.
        hi = h + 1;
        int64_t step = 1;
        while (hi - 1 - step >= 0 && sorted[hi - 1 - step] >= node) {
            hi -= step;
            step *= 2;
        }
        lo = std::max<int64_t>(0, hi - step);
    }
    const int32_t* found = std::lower_bound(sorted + lo, sorted + hi, node);
    const int64_t place = found - sorted;
    if (place == n || *found != node) {
        return -1;
    }
    *hint = static_cast<int32_t>(place);
    return static_cast<int32_t>(place);
}

// One-based place of a global node in the sorted zoneNodes (0 when it is not
// there), or the node itself when the zone has no numbering.
static inline int32_t zoneNodeNumber(const FaceZone* zone, int32_t node, int32_t* hint) {
    if (zone->zoneNodes == nullptr) {
        return node;
    }
    return sortedPlaceNear(zone->zoneNodes, zone->numNodes, node, hint) + 1;
}

void FaceZoneWriteConnectivity(FaceZone* zone, int32_t hostZoneType,
                               const FaceZoneConnectivityTarget* target) {
    const int32_t width = nodesPerCellOfHostZoneType(hostZoneType);
    if (width == 0 || zone->faceNodes == nullptr) {
        return;
    }
    const int32_t stride = zone->faceType == 0 ? 4 : zone->faceType;
    const int64_t count = static_cast<int64_t>(zone->lastIndex) - zone->firstIndex + 1;
    int32_t hint = 0;  // place of the last node found
    for (int64_t i = 0; i < count; ++i) {
        int32_t nodes = 0;
        if (zone->faceType == 0) {
            nodes = zone->faceNodeCounts != nullptr ? zone->faceNodeCounts[i] : 0;
        } else if (zone->faceType >= 2 && zone->faceType <= 4) {
            nodes = zone->faceType;
        }
        nodes = std::min(nodes, width);
        if (nodes <= 0) {
            continue;
        }
        int32_t row[8];
        for (int32_t k = 0; k < nodes; ++k) {
            row[k] = zoneNodeNumber(zone, zone->faceNodes[i * stride + k], &hint);
        }
        for (int32_t k = nodes; k < width; ++k) {
            row[k] = row[nodes - 1];
        }
        for (int32_t k = 0; k < width; ++k) {
            if (target->raw != nullptr) {
                if (target->raw64) {
                    static_cast<int64_t*>(target->raw)[i * width + k] = static_cast<int64_t>(row[k]) - 1;
                } else {
                    static_cast<int32_t*>(target->raw)[i * width + k] = row[k] - 1;
                }
            } else if (target->nodeMap != nullptr) {
                ZorUtilDataNodeSetByRef(target->nodeMap, static_cast<ZorIndex>(i + 1),
                                        static_cast<int32_t>(k + 1), static_cast<ZorIndex>(row[k]));
            }
        }
    }
}
