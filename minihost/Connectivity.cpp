// Connectivity: node maps of classic zones, face maps of polytope zones, face
// neighbours, and the views the host derives from them (elements around a
// node, faces of an element, the distinct nodes of an element).
//
// Local faces of classic elements, corners numbered from 0:
//
//   triangle       0 1 | 1 2 | 2 0
//   quadrilateral  0 1 | 1 2 | 2 3 | 3 0
//   tetrahedron    0 1 2 | 0 1 3 | 2 0 3 | 1 2 3
//   brick          0 3 7 4 | 2 1 5 6 | 1 0 4 5 | 3 2 6 7 | 0 1 2 3 | 4 5 6 7
//   line segment   0 | 1
#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <vector>

#include "host/ZorData.h"
#include "minihost/DataModel.h"
#include "minihost/Internal.h"
#include "minihost/MiniHost.h"

using namespace minihost::data;

namespace {

struct LocalFace {
    int count;
    int corners[4];
};

const LocalFace triangleFaces[] = {{2, {0, 1}}, {2, {1, 2}}, {2, {2, 0}}};
const LocalFace quadFaces[] = {{2, {0, 1}}, {2, {1, 2}}, {2, {2, 3}}, {2, {3, 0}}};
const LocalFace tetraFaces[] = {{3, {0, 1, 2}}, {3, {0, 1, 3}}, {3, {2, 0, 3}}, {3, {1, 2, 3}}};
const LocalFace brickFaces[] = {{4, {0, 3, 7, 4}}, {4, {2, 1, 5, 6}}, {4, {1, 0, 4, 5}},
                                {4, {3, 2, 6, 7}}, {4, {0, 1, 2, 3}}, {4, {4, 5, 6, 7}}};
const LocalFace lineFaces[] = {{1, {0}}, {1, {1}}};

const LocalFace* localFacesOf(int32_t zoneType) {
    switch (zoneType) {
        case ZorZoneType_FETriangle:
            return triangleFaces;
        case ZorZoneType_FEQuad:
            return quadFaces;
        case ZorZoneType_FETetra:
            return tetraFaces;
        case ZorZoneType_FEBrick:
            return brickFaces;
        case ZorZoneType_FELineSeg:
            return lineFaces;
        default:
            return nullptr;
    }
}

// The zone's items and type (takes dataMutex).
struct ZoneItems {
    bool exists = false;
    int32_t type = 0;
    int64_t points = 0;
    int64_t elements = 0;
    ZorUniqueID uniqueId = 0;
    std::shared_ptr<ZorNodeMapImpl> nodeMap;
    std::shared_ptr<ZorFaceMapImpl> faceMap;
    std::shared_ptr<ZorFaceNeighborImpl> faceNeighbors;
};

ZoneItems itemsOf(ZorIndex zone) {
    ZoneItems items;
    std::lock_guard<std::mutex> guard(dataMutex);
    Zone* z = zoneAt(zone);
    if (z == nullptr)
        return items;
    items.exists = true;
    items.type = z->type;
    items.points = z->numPoints();
    items.elements = z->numElements();
    items.uniqueId = z->uniqueId;
    items.nodeMap = z->nodeMap;
    items.faceMap = z->faceMap;
    items.faceNeighbors = z->faceNeighbors;
    return items;
}

[[noreturn]] void misuse(const std::string& what) {
    minihost::fatal(what);
}

void checkSlot(const ZorNodeMapImpl* map, ZorIndex element, ZorIndex corner, const char* call) {
    if (map == nullptr)
        misuse(std::string(call) + " called with a null node map");
    if (element < 1 || element > map->numElements || corner < 1 || corner > map->nodesPerElement) {
        misuse(std::string(call) + ": element " + std::to_string(element) + ", corner " +
               std::to_string(corner) + " is outside " + map->what);
    }
    if (map->narrowNodes.empty() && map->wideNodes.empty())
        misuse(std::string(call) + ": " + map->what + " is not loaded");
}

void checkFace(const ZorFaceMapImpl* map, ZorIndex face, const char* call) {
    if (map == nullptr)
        misuse(std::string(call) + " called with a null face map");
    if (face < 1 || face > static_cast<ZorIndex>(map->leftElems.size())) {
        misuse(std::string(call) + ": face " + std::to_string(face) + " is outside " + map->what);
    }
}

// Elements around each point, from the node map.
std::shared_ptr<ZorNodeToElemMapImpl> buildNodeToElem(const ZorNodeMapImpl& map) {
    auto result = std::make_shared<ZorNodeToElemMapImpl>();
    result->start.assign(static_cast<size_t>(map.numPoints) + 1, 0);
    std::vector<std::vector<int64_t>> around(static_cast<size_t>(map.numPoints));
    for (int64_t e = 0; e < map.numElements; ++e) {
        for (int32_t c = 0; c < map.nodesPerElement; ++c) {
            int64_t node = map.get(e * map.nodesPerElement + c);
            if (node < 0 || node >= map.numPoints)
                continue;
            std::vector<int64_t>& list = around[static_cast<size_t>(node)];
            if (list.empty() || list.back() != e + 1)
                list.push_back(e + 1);
        }
    }
    for (size_t p = 0; p < around.size(); ++p) {
        result->start[p + 1] = result->start[p] + static_cast<int64_t>(around[p].size());
        result->elements.insert(result->elements.end(), around[p].begin(), around[p].end());
    }
    return result;
}

// Faces of each element, from the face map.
std::shared_ptr<ZorElemToFaceMapImpl> buildElemToFace(const ZorFaceMapImpl& map, int64_t numElements) {
    auto result = std::make_shared<ZorElemToFaceMapImpl>();
    std::vector<std::vector<int64_t>> faces(static_cast<size_t>(numElements));
    for (size_t f = 0; f < map.leftElems.size(); ++f) {
        for (int32_t element : {map.leftElems[f], map.rightElems[f]}) {
            if (element >= 1 && element <= numElements)
                faces[static_cast<size_t>(element - 1)].push_back(f + 1);
        }
    }
    result->start.assign(static_cast<size_t>(numElements) + 1, 0);
    for (size_t e = 0; e < faces.size(); ++e) {
        std::vector<int64_t>& list = faces[e];
        list.erase(std::unique(list.begin(), list.end()), list.end());
        result->start[e + 1] = result->start[e] + static_cast<int64_t>(list.size());
        result->faces.insert(result->faces.end(), list.begin(), list.end());
    }
    return result;
}

// Elements around each point, from the face map.
std::shared_ptr<ZorNodeToElemMapImpl> buildNodeToElem(const ZorFaceMapImpl& map, int64_t numPoints) {
    std::vector<std::set<int64_t>> around(static_cast<size_t>(numPoints));
    for (size_t f = 0; f + 1 < map.faceStart.size(); ++f) {
        for (int64_t k = map.faceStart[f]; k < map.faceStart[f + 1]; ++k) {
            int64_t node = map.faceNodes[static_cast<size_t>(k)];
            if (node < 1 || node > numPoints)
                continue;
            for (int32_t element : {map.leftElems[f], map.rightElems[f]}) {
                if (element >= 1)
                    around[static_cast<size_t>(node - 1)].insert(element);
            }
        }
    }
    auto result = std::make_shared<ZorNodeToElemMapImpl>();
    result->start.assign(static_cast<size_t>(numPoints) + 1, 0);
    for (size_t p = 0; p < around.size(); ++p) {
        result->start[p + 1] = result->start[p] + static_cast<int64_t>(around[p].size());
        result->elements.insert(result->elements.end(), around[p].begin(), around[p].end());
    }
    return result;
}

// The nodes of face `face` (from 1) of a face map.
std::vector<int64_t> faceNodesOf(const ZorFaceMapImpl& map, size_t face) {
    return std::vector<int64_t>(map.faceNodes.begin() + map.faceStart[face - 1],
                                map.faceNodes.begin() + map.faceStart[face]);
}

// Distinct nodes of an element of a polytope zone, as its faces meet them; a
// polygon's edges are chained into its outline.
std::vector<int64_t> polytopeElementNodes(const ZorFaceMapImpl& map, const ZorElemToFaceMapImpl& faces,
                                          int64_t element, bool polygon) {
    std::vector<int64_t> nodes;
    int64_t begin = faces.start[static_cast<size_t>(element - 1)];
    int64_t end = faces.start[static_cast<size_t>(element)];
    if (polygon) {
        std::vector<std::pair<int64_t, int64_t>> edges;
        for (int64_t k = begin; k < end; ++k) {
            std::vector<int64_t> n =
                faceNodesOf(map, static_cast<size_t>(faces.faces[static_cast<size_t>(k)]));
            if (n.size() == 2)
                edges.emplace_back(n[0], n[1]);
        }
        if (edges.empty())
            return nodes;
        nodes.push_back(edges[0].first);
        nodes.push_back(edges[0].second);
        std::vector<bool> used(edges.size(), false);
        used[0] = true;
        for (size_t step = 1; step < edges.size(); ++step) {
            int64_t last = nodes.back();
            bool found = false;
            for (size_t i = 0; i < edges.size() && !found; ++i) {
                if (used[i])
                    continue;
                int64_t next = edges[i].first == last    ? edges[i].second
                               : edges[i].second == last ? edges[i].first
                                                         : 0;
                if (next == 0)
                    continue;
                used[i] = found = true;
                if (next != nodes.front())
                    nodes.push_back(next);
            }
            if (!found)
                break;
        }
        for (size_t i = 0; i < edges.size(); ++i) {  // edges that do not chain still give their nodes
            if (used[i])
                continue;
            for (int64_t n : {edges[i].first, edges[i].second}) {
                if (std::find(nodes.begin(), nodes.end(), n) == nodes.end())
                    nodes.push_back(n);
            }
        }
        return nodes;
    }
    for (int64_t k = begin; k < end; ++k) {
        for (int64_t n : faceNodesOf(map, static_cast<size_t>(faces.faces[static_cast<size_t>(k)]))) {
            if (std::find(nodes.begin(), nodes.end(), n) == nodes.end())
                nodes.push_back(n);
        }
    }
    return nodes;
}

// Neighbours that the host finds inside a zone: two element faces that are
// one face join their elements. facesOf(e, add) calls add(slot, key) for the
// faces of element e (both from 1) that can meet another, the key being equal
// for element faces that are one face. A face that one element alone has, or
// that three or more have, joins none.
template <typename Key, typename FacesOf>
std::map<std::pair<int64_t, int64_t>, int64_t> joinSharedFaces(int64_t numElements, FacesOf facesOf) {
    struct ElementFace {
        Key key;
        int64_t element;
        int64_t slot;
    };
    std::vector<ElementFace> all;
    for (int64_t e = 1; e <= numElements; ++e)
        facesOf(e, [&](int64_t slot, Key key) { all.push_back({std::move(key), e, slot}); });
    std::sort(all.begin(), all.end(), [](const ElementFace& a, const ElementFace& b) {
        return std::tie(a.key, a.element, a.slot) < std::tie(b.key, b.element, b.slot);
    });
    std::map<std::pair<int64_t, int64_t>, int64_t> result;
    for (size_t first = 0; first < all.size();) {
        size_t end = first + 1;
        while (end < all.size() && all[end].key == all[first].key)
            ++end;
        if (end - first == 2) {
            const ElementFace& a = all[first];
            const ElementFace& b = all[first + 1];
            result[{a.element, a.slot}] = b.element;
            result[{b.element, b.slot}] = a.element;
        }
        first = end;
    }
    return result;
}

// The neighbours inside a zone. A classic element's local faces are one face
// when their distinct nodes are the same; a face with fewer nodes than its
// kind needs is collapsed and meets nothing. A polytope element's faces are
// faces of the face map, one face for the elements on its two sides.
std::map<std::pair<int64_t, int64_t>, int64_t> insideNeighbors(const ZoneItems& items) {
    if (items.nodeMap != nullptr) {
        const ZorNodeMapImpl& map = *items.nodeMap;
        const LocalFace* faces = localFacesOf(items.type);
        int32_t numFaces = facesOf(items.type);
        int minNodes = items.type == ZorZoneType_FETetra || items.type == ZorZoneType_FEBrick ? 3
                       : items.type == ZorZoneType_FELineSeg                                  ? 1
                                                                                              : 2;
        return joinSharedFaces<std::vector<int64_t>>(map.numElements, [&](int64_t e, auto&& add) {
            for (int32_t f = 0; f < numFaces; ++f) {
                std::vector<int64_t> key;
                for (int c = 0; c < faces[f].count; ++c)
                    key.push_back(map.get((e - 1) * map.nodesPerElement + faces[f].corners[c]));
                std::sort(key.begin(), key.end());
                key.erase(std::unique(key.begin(), key.end()), key.end());
                if (static_cast<int>(key.size()) >= minNodes)
                    add(f + 1, std::move(key));
            }
        });
    }
    if (items.faceMap != nullptr) {
        std::shared_ptr<ZorElemToFaceMapImpl> elemFaces = items.faceMap->elemToFace;
        if (elemFaces == nullptr)
            elemFaces = buildElemToFace(*items.faceMap, items.elements);
        return joinSharedFaces<int64_t>(items.elements, [&](int64_t e, auto&& add) {
            int64_t begin = elemFaces->start[static_cast<size_t>(e - 1)];
            for (int64_t k = begin; k < elemFaces->start[static_cast<size_t>(e)]; ++k)
                add(k - begin + 1, elemFaces->faces[static_cast<size_t>(k)]);
        });
    }
    return {};
}

}  // namespace

void ZorNodeMapImpl::makeStorage() {
    size_t slots = static_cast<size_t>(numElements) * static_cast<size_t>(nodesPerElement);
    if (wide) {
        if (wideNodes.empty())
            wideNodes = minihost::data::ZeroedVector<int64_t>(slots);
    } else if (narrowNodes.empty()) {
        narrowNodes = minihost::data::ZeroedVector<int32_t>(slots);
    }
    ++version;
}

void ZorNodeMapImpl::dropStorage() {
    narrowNodes = minihost::data::ZeroedVector<int32_t>();
    wideNodes = minihost::data::ZeroedVector<int64_t>();
    nodeToElem.reset();
    ++version;
}

void ZorFaceMapImpl::makeStorage() {
    faceStart.assign(1, 0);
    connStart.assign(1, 0);
    ++version;
}

void ZorFaceMapImpl::dropStorage() {
    faceStart = std::vector<int64_t>();
    faceNodes = std::vector<int32_t>();
    leftElems = std::vector<int32_t>();
    rightElems = std::vector<int32_t>();
    connStart = std::vector<int64_t>();
    connElems = std::vector<int32_t>();
    connZones = std::vector<int64_t>();
    nodeToElem.reset();
    elemToFace.reset();
    ++version;
}

extern "C" {

// ---- Node maps -----------------------------------------------------------------------

bool ZorUtilDataNodeCustomLOD(ZorIndex zone, ZorLoadNodeMapCallback load, ZorUnloadNodeMapCallback unload,
                              ZorCleanupNodeMapCallback cleanup, ZorArbParam clientData) {
    if (load == nullptr || unload == nullptr || cleanup == nullptr)
        return false;
    std::shared_ptr<ZorNodeMapImpl> map = itemsOf(zone).nodeMap;
    if (map == nullptr)
        return false;
    return registerLoader(*map, load, unload, cleanup, clientData, [](ZorNodeMapImpl&) {});
}

ZorArbParam ZorUtilDataNodeGetClientData(ZorNodeMap nodeMap) {
    return nodeMap == nullptr ? 0 : nodeMap->clientData;
}

ZorNodeMap ZorUtilDataNodeGetReadableRef(ZorIndex zone) {
    std::shared_ptr<ZorNodeMapImpl> map = itemsOf(zone).nodeMap;
    if (map == nullptr || !ensureLoaded(*map))
        return nullptr;
    return map.get();
}

ZorNodeMap ZorUtilDataNodeGetWritableRef(ZorIndex zone) {
    ZorNodeMap map = ZorUtilDataNodeGetReadableRef(zone);
    if (map != nullptr) {
        std::lock_guard<std::mutex> guard(map->mutex);
        map->nodeToElem.reset();
        ++map->version;
    }
    return map;
}

void* ZorUtilDataNodeGetRawPtrByRef(ZorNodeMap nodeMap) {
    if (nodeMap == nullptr || !rawPointersOffered())
        return nullptr;
    if (nodeMap->wide)
        return nodeMap->wideNodes.empty() ? nullptr : nodeMap->wideNodes.data();
    return nodeMap->narrowNodes.empty() ? nullptr : nodeMap->narrowNodes.data();
}

int32_t ZorUtilDataNodeGetRawItemType(ZorNodeMap nodeMap) {
    return nodeMap != nullptr && nodeMap->wide ? ZorRawItemType_Int64 : ZorRawItemType_Int32;
}

ZorIndex ZorUtilDataNodeGetNodesPerElem(ZorNodeMap nodeMap) {
    return nodeMap == nullptr ? 0 : nodeMap->nodesPerElement;
}

ZorIndex ZorUtilDataNodeGetNumElems(ZorNodeMap nodeMap) {
    return nodeMap == nullptr ? 0 : nodeMap->numElements;
}

ZorIndex ZorUtilDataNodeGetByRef(ZorNodeMap nodeMap, ZorIndex element, ZorIndex corner) {
    checkSlot(nodeMap, element, corner, "ZorUtilDataNodeGetByRef");
    return nodeMap->get((element - 1) * nodeMap->nodesPerElement + corner - 1) + 1;
}

void ZorUtilDataNodeSetByRef(ZorNodeMap nodeMap, ZorIndex element, ZorIndex corner, ZorIndex node) {
    checkSlot(nodeMap, element, corner, "ZorUtilDataNodeSetByRef");
    nodeMap->set((element - 1) * nodeMap->nodesPerElement + corner - 1, node - 1);
    nodeMap->nodeToElem.reset();
    ++nodeMap->version;
}

void ZorUtilDataNodeArraySetByRef(ZorNodeMap nodeMap, ZorIndex destOffset, ZorIndex count,
                                  const int32_t* nodes) {
    if (count == 0)
        return;
    if (nodeMap == nullptr || nodes == nullptr || count < 0 || destOffset < 1 ||
        destOffset + count - 1 > nodeMap->numElements * nodeMap->nodesPerElement) {
        misuse("ZorUtilDataNodeArraySetByRef: slots " + std::to_string(destOffset) + " to " +
               std::to_string(destOffset + count - 1) + " do not fit " +
               (nodeMap == nullptr ? std::string("a null node map") : nodeMap->what));
    }
    if (nodeMap->narrowNodes.empty() && nodeMap->wideNodes.empty()) {
        misuse("ZorUtilDataNodeArraySetByRef: " + nodeMap->what + " is not loaded");
    }
    // One loop per width, with nothing to decide inside: a cell zone's whole
    // map comes in one call, and the compiler makes each loop a vector one.
    if (nodeMap->wide) {
        int64_t* slots = nodeMap->wideNodes.data() + (destOffset - 1);
        for (ZorIndex i = 0; i < count; ++i)
            slots[i] = static_cast<int64_t>(nodes[i]) - 1;
    } else {
        int32_t* slots = nodeMap->narrowNodes.data() + (destOffset - 1);
        for (ZorIndex i = 0; i < count; ++i)
            slots[i] =
                static_cast<int32_t>(static_cast<uint32_t>(nodes[i]) - 1u);  // as the narrowing of n - 1
    }
    nodeMap->nodeToElem.reset();
    ++nodeMap->version;
}

void ZorUtilDataNodeArrayGetByRef(ZorNodeMap nodeMap, ZorIndex sourceOffset, ZorIndex count, int32_t* nodes) {
    if (count == 0)
        return;
    if (nodeMap == nullptr || nodes == nullptr || count < 0 || sourceOffset < 1 ||
        sourceOffset + count - 1 > nodeMap->numElements * nodeMap->nodesPerElement) {
        misuse("ZorUtilDataNodeArrayGetByRef: the slots do not fit the node map");
    }
    for (ZorIndex i = 0; i < count; ++i)
        nodes[i] = static_cast<int32_t>(nodeMap->get(sourceOffset - 1 + i) + 1);
}

// ---- Node-to-element maps --------------------------------------------------------------------

ZorNodeToElemMap ZorUtilDataNodeToElemMapGetReadableRef(ZorIndex zone) {
    ZoneItems items = itemsOf(zone);
    if (items.nodeMap != nullptr) {
        if (!ensureLoaded(*items.nodeMap))
            return nullptr;
        std::lock_guard<std::mutex> guard(items.nodeMap->mutex);
        if (items.nodeMap->nodeToElem == nullptr)
            items.nodeMap->nodeToElem = buildNodeToElem(*items.nodeMap);
        return items.nodeMap->nodeToElem.get();
    }
    if (items.faceMap != nullptr) {
        if (!ensureLoaded(*items.faceMap))
            return nullptr;
        std::lock_guard<std::mutex> guard(items.faceMap->mutex);
        if (items.faceMap->nodeToElem == nullptr) {
            items.faceMap->nodeToElem = buildNodeToElem(*items.faceMap, items.points);
        }
        return items.faceMap->nodeToElem.get();
    }
    return nullptr;
}

ZorIndex ZorUtilDataNodeToElemMapGetNumElems(ZorNodeToElemMap map, ZorIndex node) {
    if (map == nullptr || node < 1 || node + 1 > static_cast<ZorIndex>(map->start.size())) {
        misuse("ZorUtilDataNodeToElemMapGetNumElems: no node " + std::to_string(node));
    }
    return map->start[static_cast<size_t>(node)] - map->start[static_cast<size_t>(node - 1)];
}

ZorIndex ZorUtilDataNodeToElemMapGetElem(ZorNodeToElemMap map, ZorIndex node, ZorIndex elemOffset) {
    ZorIndex count = ZorUtilDataNodeToElemMapGetNumElems(map, node);
    if (elemOffset < 1 || elemOffset > count) {
        misuse("ZorUtilDataNodeToElemMapGetElem: node " + std::to_string(node) + " has no element " +
               std::to_string(elemOffset));
    }
    return map->elements[static_cast<size_t>(map->start[static_cast<size_t>(node - 1)] + elemOffset - 1)];
}

// ---- Face maps ---------------------------------------------------------------------------------

bool ZorUtilDataFaceMapCustomLOD(ZorIndex zone, ZorIndex numFaces, ZorIndex numFaceNodes,
                                 ZorIndex numFaceBndryConns, ZorLoadFaceMapCallback load,
                                 ZorUnloadFaceMapCallback unload, ZorCleanupFaceMapCallback cleanup,
                                 ZorArbParam clientData) {
    if (load == nullptr || unload == nullptr || cleanup == nullptr || numFaces < 0 || numFaceNodes < 0 ||
        numFaceBndryConns < 0) {
        return false;
    }
    std::shared_ptr<ZorFaceMapImpl> map = itemsOf(zone).faceMap;
    if (map == nullptr)
        return false;
    return registerLoader(*map, load, unload, cleanup, clientData, [&](ZorFaceMapImpl& item) {
        item.declaredFaces = numFaces;
        item.declaredFaceNodes = numFaceNodes;
        item.declaredBndryConnFaces = numFaceBndryConns;
    });
}

ZorArbParam ZorUtilDataFaceMapGetClientData(ZorFaceMap faceMap) {
    return faceMap == nullptr ? 0 : faceMap->clientData;
}

ZorFaceMap ZorUtilDataFaceMapGetReadableRef(ZorIndex zone) {
    std::shared_ptr<ZorFaceMapImpl> map = itemsOf(zone).faceMap;
    if (map == nullptr || !ensureLoaded(*map))
        return nullptr;
    return map.get();
}

ZorFaceMap ZorUtilDataFaceMapGetWritableRef(ZorIndex zone) {
    ZorFaceMap map = ZorUtilDataFaceMapGetReadableRef(zone);
    if (map != nullptr) {
        std::lock_guard<std::mutex> guard(map->mutex);
        map->nodeToElem.reset();
        map->elemToFace.reset();
    }
    return map;
}

void ZorUtilDataFaceMapAssignNodes(ZorFaceMap faceMap, ZorIndex numFaces, const int32_t* faceNodeCounts,
                                   const int32_t* faceNodes) {
    if (faceMap == nullptr || numFaces < 0 || (numFaces > 0 && faceNodes == nullptr)) {
        misuse("ZorUtilDataFaceMapAssignNodes called without a face map or nodes");
    }
    if (faceMap->faceStart.empty())
        misuse("ZorUtilDataFaceMapAssignNodes: " + faceMap->what + " is not loaded");
    int64_t assigned = static_cast<int64_t>(faceMap->faceStart.size()) - 1;
    if (assigned + numFaces > faceMap->declaredFaces) {
        misuse("ZorUtilDataFaceMapAssignNodes: " + std::to_string(assigned + numFaces) + " faces given to " +
               faceMap->what + ", which has " + std::to_string(faceMap->declaredFaces));
    }
    int64_t k = 0;
    for (ZorIndex f = 0; f < numFaces; ++f) {
        int32_t count = faceNodeCounts == nullptr ? 2 : faceNodeCounts[f];
        if (count < 0)
            misuse("ZorUtilDataFaceMapAssignNodes: a negative node count");
        faceMap->faceNodes.insert(faceMap->faceNodes.end(), faceNodes + k, faceNodes + k + count);
        k += count;
        faceMap->faceStart.push_back(static_cast<int64_t>(faceMap->faceNodes.size()));
    }
    if (static_cast<int64_t>(faceMap->faceNodes.size()) > faceMap->declaredFaceNodes) {
        misuse("ZorUtilDataFaceMapAssignNodes: " + std::to_string(faceMap->faceNodes.size()) +
               " face nodes given to " + faceMap->what + ", which has " +
               std::to_string(faceMap->declaredFaceNodes));
    }
    faceMap->leftElems.resize(faceMap->faceStart.size() - 1, 0);
    faceMap->rightElems.resize(faceMap->faceStart.size() - 1, 0);
    faceMap->elemToFace.reset();
    faceMap->nodeToElem.reset();
    ++faceMap->version;
}

void ZorUtilDataFaceMapAssignElems(ZorFaceMap faceMap, ZorIndex numFaces, const int32_t* leftElems,
                                   const int32_t* rightElems) {
    if (faceMap == nullptr || numFaces < 0 ||
        (numFaces > 0 && (leftElems == nullptr || rightElems == nullptr))) {
        misuse("ZorUtilDataFaceMapAssignElems called without a face map or elements");
    }
    if (numFaces > static_cast<ZorIndex>(faceMap->leftElems.size())) {
        misuse("ZorUtilDataFaceMapAssignElems: elements of " + std::to_string(numFaces) + " faces given to " +
               faceMap->what + ", which has " + std::to_string(faceMap->leftElems.size()) +
               " faces assigned");
    }
    std::copy(leftElems, leftElems + numFaces, faceMap->leftElems.begin());
    std::copy(rightElems, rightElems + numFaces, faceMap->rightElems.begin());
    faceMap->elemToFace.reset();
    faceMap->nodeToElem.reset();
    ++faceMap->version;
}

void ZorUtilDataFaceMapAssignBConns(ZorFaceMap faceMap, ZorIndex numFaceBndryConns,
                                    const int32_t* connectionCounts, const int32_t* connectionElems,
                                    const int64_t* connectionZones) {
    if (faceMap == nullptr || numFaceBndryConns < 0 ||
        (numFaceBndryConns > 0 &&
         (connectionCounts == nullptr || connectionElems == nullptr || connectionZones == nullptr))) {
        misuse("ZorUtilDataFaceMapAssignBConns called without a face map or connections");
    }
    int64_t assigned = static_cast<int64_t>(faceMap->connStart.size()) - 1;
    if (assigned + numFaceBndryConns > faceMap->declaredBndryConnFaces) {
        misuse("ZorUtilDataFaceMapAssignBConns: " + std::to_string(assigned + numFaceBndryConns) +
               " boundary connection faces given to " + faceMap->what + ", which has " +
               std::to_string(faceMap->declaredBndryConnFaces));
    }
    int64_t k = 0;
    for (ZorIndex f = 0; f < numFaceBndryConns; ++f) {
        for (int32_t c = 0; c < connectionCounts[f]; ++c, ++k) {
            faceMap->connElems.push_back(connectionElems[k]);
            faceMap->connZones.push_back(connectionZones[k]);
        }
        faceMap->connStart.push_back(static_cast<int64_t>(faceMap->connElems.size()));
    }
}

ZorIndex ZorUtilDataFaceMapGetNFaces(ZorFaceMap faceMap) {
    return faceMap == nullptr ? 0 : static_cast<ZorIndex>(faceMap->leftElems.size());
}

ZorIndex ZorUtilDataFaceMapGetNFaceNodes(ZorFaceMap faceMap, ZorIndex face) {
    checkFace(faceMap, face, "ZorUtilDataFaceMapGetNFaceNodes");
    return faceMap->faceStart[static_cast<size_t>(face)] - faceMap->faceStart[static_cast<size_t>(face - 1)];
}

ZorIndex ZorUtilDataFaceMapGetFaceNode(ZorFaceMap faceMap, ZorIndex face, ZorIndex nodeOffset) {
    ZorIndex count = ZorUtilDataFaceMapGetNFaceNodes(faceMap, face);
    if (nodeOffset < 1 || nodeOffset > count) {
        misuse("ZorUtilDataFaceMapGetFaceNode: face " + std::to_string(face) + " has no node " +
               std::to_string(nodeOffset));
    }
    return faceMap
        ->faceNodes[static_cast<size_t>(faceMap->faceStart[static_cast<size_t>(face - 1)] + nodeOffset - 1)];
}

ZorIndex ZorUtilDataFaceMapGetLeftElem(ZorFaceMap faceMap, ZorIndex face) {
    checkFace(faceMap, face, "ZorUtilDataFaceMapGetLeftElem");
    return faceMap->leftElems[static_cast<size_t>(face - 1)];
}

ZorIndex ZorUtilDataFaceMapGetRightElem(ZorFaceMap faceMap, ZorIndex face) {
    checkFace(faceMap, face, "ZorUtilDataFaceMapGetRightElem");
    return faceMap->rightElems[static_cast<size_t>(face - 1)];
}

ZorIndex ZorUtilDataFaceMapGetNBndryConns(ZorFaceMap faceMap, ZorIndex bndryConnFace) {
    if (faceMap == nullptr || bndryConnFace < 1 ||
        bndryConnFace + 1 > static_cast<ZorIndex>(faceMap->connStart.size())) {
        misuse("ZorUtilDataFaceMapGetNBndryConns: no boundary connection face " +
               std::to_string(bndryConnFace));
    }
    return faceMap->connStart[static_cast<size_t>(bndryConnFace)] -
           faceMap->connStart[static_cast<size_t>(bndryConnFace - 1)];
}

bool ZorUtilDataFaceMapGetBndryConn(ZorFaceMap faceMap, ZorIndex bndryConnFace, ZorIndex connection,
                                    ZorIndex* element, ZorIndex* zone) {
    if (faceMap == nullptr || bndryConnFace < 1 ||
        bndryConnFace + 1 > static_cast<ZorIndex>(faceMap->connStart.size())) {
        return false;
    }
    ZorIndex count = ZorUtilDataFaceMapGetNBndryConns(faceMap, bndryConnFace);
    if (connection < 1 || connection > count)
        return false;
    size_t at =
        static_cast<size_t>(faceMap->connStart[static_cast<size_t>(bndryConnFace - 1)] + connection - 1);
    if (element != nullptr)
        *element = faceMap->connElems[at];
    if (zone != nullptr)
        *zone = ZorUtilZoneGetNumByUniqueID(static_cast<ZorUniqueID>(faceMap->connZones[at]));
    return true;
}

// ---- Element faces -------------------------------------------------------------------------------

ZorElemToFaceMap ZorUtilDataElemGetReadableRef(ZorIndex zone) {
    ZoneItems items = itemsOf(zone);
    if (items.nodeMap != nullptr) {
        if (!ensureLoaded(*items.nodeMap))
            return nullptr;
        static ZorElemToFaceMapImpl classic[8];  // one per classic zone type, never changed after set-up
        static std::once_flag once;
        std::call_once(once, [] {
            for (int32_t type = 1; type <= 5; ++type) {
                classic[type].localFaces = true;
                classic[type].facesPerElement = facesOf(type);
            }
        });
        return &classic[items.type];
    }
    if (items.faceMap != nullptr) {
        if (!ensureLoaded(*items.faceMap))
            return nullptr;
        std::lock_guard<std::mutex> guard(items.faceMap->mutex);
        if (items.faceMap->elemToFace == nullptr) {
            items.faceMap->elemToFace = buildElemToFace(*items.faceMap, items.elements);
        }
        return items.faceMap->elemToFace.get();
    }
    return nullptr;
}

ZorIndex ZorUtilDataElemGetNumFaces(ZorElemToFaceMap map, ZorIndex element) {
    if (map == nullptr)
        misuse("ZorUtilDataElemGetNumFaces called with a null map");
    if (map->localFaces)
        return map->facesPerElement;
    if (element < 1 || element + 1 > static_cast<ZorIndex>(map->start.size())) {
        misuse("ZorUtilDataElemGetNumFaces: no element " + std::to_string(element));
    }
    return map->start[static_cast<size_t>(element)] - map->start[static_cast<size_t>(element - 1)];
}

ZorIndex ZorUtilDataElemGetFace(ZorElemToFaceMap map, ZorIndex element, ZorIndex faceOffset) {
    ZorIndex count = ZorUtilDataElemGetNumFaces(map, element);
    if (faceOffset < 1 || faceOffset > count) {
        misuse("ZorUtilDataElemGetFace: element " + std::to_string(element) + " has no face " +
               std::to_string(faceOffset));
    }
    if (map->localFaces)
        return faceOffset;
    return map->faces[static_cast<size_t>(map->start[static_cast<size_t>(element - 1)] + faceOffset - 1)];
}

ZorIndex ZorUtilDataFECellGetUniqueNodes(ZorIndex zone, ZorIndex element, ZorIndex* nodes,
                                         ZorIndex capacity) {
    ZoneItems items = itemsOf(zone);
    if (!items.exists || element < 1 || element > items.elements)
        return 0;
    std::vector<int64_t> found;
    if (items.nodeMap != nullptr) {
        if (!ensureLoaded(*items.nodeMap))
            return 0;
        const ZorNodeMapImpl& map = *items.nodeMap;
        for (int32_t c = 0; c < map.nodesPerElement; ++c) {
            int64_t node = map.get((element - 1) * map.nodesPerElement + c) + 1;
            if (std::find(found.begin(), found.end(), node) == found.end())
                found.push_back(node);
        }
    } else if (items.faceMap != nullptr) {
        ZorElemToFaceMap faces = ZorUtilDataElemGetReadableRef(zone);
        if (faces == nullptr)
            return 0;
        found = polytopeElementNodes(*items.faceMap, *faces, element, items.type == ZorZoneType_FEPolygon);
    } else {
        return 0;
    }
    for (size_t i = 0; i < found.size() && static_cast<ZorIndex>(i) < capacity; ++i)
        nodes[i] = found[i];
    return static_cast<ZorIndex>(found.size());
}

// ---- Face neighbours ---------------------------------------------------------------------------------

bool ZorUtilDataFaceNbrCustomLOD(ZorIndex zone, int32_t mode, ZorLoadFaceNbrCallback load,
                                 ZorUnloadFaceNbrCallback unload, ZorCleanupFaceNbrCallback cleanup,
                                 ZorArbParam clientData) {
    if (load == nullptr || unload == nullptr || cleanup == nullptr ||
        (mode != ZorFaceNbrLODMode_LoaderOnly && mode != ZorFaceNbrLODMode_HostInside)) {
        return false;
    }
    std::shared_ptr<ZorFaceNeighborImpl> neighbors = itemsOf(zone).faceNeighbors;
    if (neighbors == nullptr)
        return false;
    return registerLoader(*neighbors, load, unload, cleanup, clientData,
                          [&](ZorFaceNeighborImpl& item) { item.lodMode = mode; });
}

ZorArbParam ZorUtilDataFaceNbrGetClientData(ZorFaceNeighbor faceNeighbor) {
    return faceNeighbor == nullptr ? 0 : faceNeighbor->clientData;
}

void ZorUtilDataFaceNbrAssignByRef(ZorFaceNeighbor faceNeighbor, ZorIndex element, ZorIndex face,
                                   bool /*obscuresFace*/, ZorIndex numNeighbors, const int32_t* neighborElems,
                                   const int64_t* neighborZones) {
    if (faceNeighbor == nullptr || element < 1 || face < 1 || numNeighbors < 0 ||
        (numNeighbors > 0 && (neighborElems == nullptr || neighborZones == nullptr))) {
        misuse("ZorUtilDataFaceNbrAssignByRef called with a bad handle, element, face or neighbour list");
    }
    std::lock_guard<std::mutex> guard(faceNeighbor->mutex);
    std::vector<ZorFaceNeighborImpl::Neighbor>& list = faceNeighbor->assigned[{element, face}];
    list.clear();
    for (ZorIndex i = 0; i < numNeighbors; ++i)
        list.push_back({neighborElems[i], neighborZones[i]});
}

}  // extern "C"

namespace {

// Neighbours found inside the zone, kept in the item until the map they come
// from changes.
void refreshInside(const ZoneItems& items) {
    const LodItem* geometry = items.nodeMap != nullptr ? static_cast<const LodItem*>(items.nodeMap.get())
                                                       : static_cast<const LodItem*>(items.faceMap.get());
    uint64_t version = items.nodeMap != nullptr ? items.nodeMap->version : items.faceMap->version;
    std::lock_guard<std::mutex> guard(items.faceNeighbors->mutex);
    ZorFaceNeighborImpl& neighbors = *items.faceNeighbors;
    if (neighbors.insideValid && neighbors.insideGeometry == geometry && neighbors.insideVersion == version)
        return;
    neighbors.inside = insideNeighbors(items);
    neighbors.insideGeometry = geometry;
    neighbors.insideVersion = version;
    neighbors.insideValid = true;
}

}  // namespace

extern "C" {

ZorFaceNeighbor ZorUtilDataFaceNbrGetReadableRef(ZorIndex zone) {
    ZoneItems items = itemsOf(zone);
    if (items.faceNeighbors == nullptr)
        return nullptr;
    LodItem* geometry = items.nodeMap != nullptr ? static_cast<LodItem*>(items.nodeMap.get())
                                                 : static_cast<LodItem*>(items.faceMap.get());
    RequestScope holdBoth;  // the neighbours inside the zone are read from the geometry
    if (geometry == nullptr || !ensureLoaded(*geometry) || !ensureLoaded(*items.faceNeighbors))
        return nullptr;
    if (items.faceNeighbors->lodMode == ZorFaceNbrLODMode_HostInside || !items.faceNeighbors->hasLoader) {
        refreshInside(items);
    }
    return items.faceNeighbors.get();
}

ZorIndex ZorUtilDataFaceNbrGetNumNByRef(ZorFaceNeighbor faceNeighbor, ZorIndex element, ZorIndex face) {
    if (faceNeighbor == nullptr)
        misuse("ZorUtilDataFaceNbrGetNumNByRef called with a null handle");
    ZorIndex count = 0;
    {
        std::lock_guard<std::mutex> guard(faceNeighbor->mutex);
        auto at = faceNeighbor->assigned.find({element, face});
        if (at != faceNeighbor->assigned.end())
            count = static_cast<ZorIndex>(at->second.size());
    }
    if (count > 0)
        return count;  // what the loader gave stands for the whole face
    std::lock_guard<std::mutex> guard(faceNeighbor->mutex);
    return faceNeighbor->insideValid && faceNeighbor->inside.count({element, face}) > 0 ? 1 : 0;
}

void ZorUtilDataFaceNbrGetNbrByRef(ZorFaceNeighbor faceNeighbor, ZorIndex element, ZorIndex face,
                                   ZorIndex nbrOffset, ZorIndex* neighborElem, ZorIndex* neighborZone) {
    ZorIndex count = ZorUtilDataFaceNbrGetNumNByRef(faceNeighbor, element, face);
    if (nbrOffset < 1 || nbrOffset > count) {
        misuse("ZorUtilDataFaceNbrGetNbrByRef: face " + std::to_string(face) + " of element " +
               std::to_string(element) + " has no neighbour " + std::to_string(nbrOffset));
    }
    ZorFaceNeighborImpl::Neighbor found{0, 0};
    bool assigned = false;
    {
        std::lock_guard<std::mutex> guard(faceNeighbor->mutex);
        auto at = faceNeighbor->assigned.find({element, face});
        if (at != faceNeighbor->assigned.end() && !at->second.empty()) {
            found = at->second[static_cast<size_t>(nbrOffset - 1)];
            assigned = true;
        }
    }
    if (!assigned) {
        std::lock_guard<std::mutex> guard(faceNeighbor->mutex);
        found.element = faceNeighbor->inside[{element, face}];
        found.zoneId = static_cast<int64_t>(faceNeighbor->ownerZoneId);
    }
    if (neighborElem != nullptr)
        *neighborElem = found.element;
    if (neighborZone != nullptr) {
        *neighborZone = found.zoneId == static_cast<int64_t>(faceNeighbor->ownerZoneId)
                            ? 0
                            : ZorUtilZoneGetNumByUniqueID(static_cast<ZorUniqueID>(found.zoneId));
    }
}

}  // extern "C"
