// Asking the host for the items of a zone and copying them out: values, node
// maps, face maps, face neighbours. Each request goes through the host's
// getters, so an item registered for load-on-demand is loaded on the calling
// thread.
//
// Under a memory budget the host may unload any item at the start of a
// request, also one another thread is reading; so while requests are
// serialized (setRequestsSerialized), each request and its copy run under one
// lock, and readers work on the copies only.
#pragma once

#include <cstdint>
#include <vector>

#include "apps/fluentload/DataSetInfo.h"
#include "apps/fluentload/VtkCells.h"
#include "host/ZorTypes.h"

namespace fluentload {

// Whether fluentload's requests and copies run one at a time (on while a
// memory budget is set).
void setRequestsSerialized(bool on);

// The values of one variable in one zone, in the item's own type.
struct Values {
    int32_t type = ZorFieldDataType_Invalid;      // a ZorFieldDataType; Bit values are one byte each
    int32_t location = ZorValueLocation_Invalid;  // a ZorValueLocation
    int64_t count = 0;                            // number of values
    std::vector<unsigned char> bytes;             // count values of `type`

    double at(int64_t i) const;  // value i (from 0) as a double
};

// Loads (if need be) and copies the values. False when the host has no such
// item or its load failed.
bool fetchValues(ZorIndex zone, ZorIndex var, Values* out);

// Loads (if need be) the values and works out their statistics where the host
// keeps them, or from a copy in scratch when it has no raw array. False as for
// fetchValues.
bool fetchValueStats(ZorIndex zone, ZorIndex var, Values* scratch, ValueStats* stats);

// How many of n zero-based node numbers lie outside 0 to points - 1.
int64_t countOutside(const int32_t* numbers, size_t n, int64_t points);

// Loads a classic zone's node map and counts its points outside 0 to points - 1,
// reading the map where the host keeps it. False when the zone has none or its
// load failed.
bool countNodeMapOutside(ZorIndex zone, int64_t points, int64_t* outside);

// Loads and copies a classic zone's node map: zero-based points, element after
// element. False when the zone has none or its load failed.
bool fetchNodeMap(ZorIndex zone, int64_t* nodesPerElement, std::vector<int64_t>* nodes);

// Loads and copies a polytope zone's face map; points zero-based, elements as
// the host gives them (from 1; 0 or negative for none).
bool fetchFaceMap(ZorIndex zone, PolyFaces* faces);

// Loads a zone's face neighbours. False when the zone has none or the load failed.
bool loadFaceNeighbors(ZorIndex zone);

}  // namespace fluentload
