// The stand-in's data set, as its own files see it: the records behind the
// host's handles and the load-on-demand engine that fills them.
//
// Locks, outermost first: the add-on lock (taken by the engine before it marks
// an item as under load, and held while any load or cleanup callback runs),
// then dataMutex (the data set's structure: zones, variables, their items),
// then an item's own mutex (its state and storage). No callback of the add-on
// is ever called with dataMutex or an item mutex held.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/ZorData.h"
#include "minihost/ZeroedStorage.h"

// ---- Items that may be loaded on demand -------------------------------------------

namespace minihost {
namespace data {

// What every item that the host may load on demand has.
struct LodItem {
    enum State { Unmade, Loading, Loaded };

    virtual ~LodItem() = default;
    std::mutex mutex;               // guards the fields below and the storage of the derived record
    State state = Unmade;           // Unmade: no storage (not loaded, or not written yet)
    std::thread::id loadingThread;  // the thread running the load callback while Loading
    bool hasLoader = false;         // load, unload and cleanup callbacks are registered
    bool cleanedUp = false;         // the cleanup callback ran; the item is gone for the add-on
    ZorArbParam clientData = 0;     // given at registration; owned by the add-on's cleanup
    uint64_t lastUse = 0;           // tick of the last request, for unloading by age
    int loads = 0;                  // successful load callbacks
    int failedLoads = 0;            // load callbacks that returned false
    int unloads = 0;                // unload callbacks that returned true
    int cleanups = 0;               // cleanup callbacks (0 or 1)
    std::string what;               // "values of variable 2 in zone 3": for messages

    // Calls the registered callback. Called without any host mutex held.
    virtual bool callLoad() = 0;
    virtual bool callUnload() = 0;
    virtual void callCleanup() = 0;
    // Makes zero-filled storage (item mutex held).
    virtual void makeStorage() = 0;
    // Frees the storage and whatever was derived from it (item mutex held).
    virtual void dropStorage() = 0;
    // Bytes of storage held now (item mutex held).
    virtual size_t storageBytes() const = 0;
    // The block the load callback fills, if the item has one (item mutex held).
    virtual std::pair<void*, size_t> storageBlock() { return {nullptr, 0}; }
};

}  // namespace data
}  // namespace minihost

// The values of one variable in one zone (possibly shared by zone copies).
struct ZorFieldDataImpl : minihost::data::LodItem {
    int32_t type = ZorFieldDataType_Float;              // a ZorFieldDataType
    int32_t location = ZorValueLocation_Nodal;          // a ZorValueLocation
    int64_t count = 0;                                  // values: points or elements
    minihost::data::ZeroedVector<unsigned char> bytes;  // count values of `type`; empty while Unmade
    ZorLoadValueCallback load = nullptr;
    ZorUnloadValueCallback unload = nullptr;
    ZorCleanupValueCallback cleanup = nullptr;
    ZorValueGetFunction customGet = nullptr;  // the add-on's getter; then bytes stay empty
    ZorValueSetFunction customSet = nullptr;
    bool hasMinMax = false;  // a range was given or computed
    double minimum = 0.0, maximum = 0.0;
    std::vector<int64_t> arrayWrites;  // counts of ZorUtilDataValueArraySetByRef since the storage was made

    bool callLoad() override { return load(this); }
    bool callUnload() override { return unload(this); }
    void callCleanup() override { cleanup(this); }
    void makeStorage() override;
    void dropStorage() override;
    size_t storageBytes() const override { return bytes.size(); }
    std::pair<void*, size_t> storageBlock() override { return {bytes.data(), bytes.size()}; }
};

// The element-to-node map of a classic finite-element zone.
struct ZorNodeMapImpl : minihost::data::LodItem {
    int64_t numElements = 0;
    int32_t nodesPerElement = 0;
    int64_t numPoints = 0;                              // nodes of the zone, for checks
    bool wide = false;                                  // 64-bit items
    minihost::data::ZeroedVector<int32_t> narrowNodes;  // zero-based; when !wide
    minihost::data::ZeroedVector<int64_t> wideNodes;    // zero-based; when wide
    ZorLoadNodeMapCallback load = nullptr;
    ZorUnloadNodeMapCallback unload = nullptr;
    ZorCleanupNodeMapCallback cleanup = nullptr;
    uint64_t version = 0;                              // rises with every change, for derived views
    std::shared_ptr<ZorNodeToElemMapImpl> nodeToElem;  // derived; null until asked for

    bool callLoad() override { return load(this); }
    bool callUnload() override { return unload(this); }
    void callCleanup() override { cleanup(this); }
    void makeStorage() override;
    void dropStorage() override;
    size_t storageBytes() const override { return narrowNodes.size() * 4 + wideNodes.size() * 8; }
    std::pair<void*, size_t> storageBlock() override {
        if (wide)
            return {wideNodes.data(), wideNodes.size() * 8};
        return {narrowNodes.data(), narrowNodes.size() * 4};
    }
    int64_t get(int64_t slot) const { return wide ? wideNodes[slot] : narrowNodes[slot]; }
    void set(int64_t slot, int64_t node) {
        if (wide) {
            wideNodes[slot] = node;
        } else {
            narrowNodes[slot] = static_cast<int32_t>(node);
        }
    }
};

// The face map of a polygon or polyhedron zone.
struct ZorFaceMapImpl : minihost::data::LodItem {
    int64_t declaredFaces = 0;  // sizes given at registration
    int64_t declaredFaceNodes = 0;
    int64_t declaredBndryConnFaces = 0;
    int32_t zoneType = 0;            // 6 or 7
    std::vector<int64_t> faceStart;  // faces + 1 offsets into faceNodes
    std::vector<int32_t> faceNodes;  // one-based nodes, face after face
    std::vector<int32_t> leftElems;  // per face: element, 0, or -k
    std::vector<int32_t> rightElems;
    std::vector<int64_t> connStart;  // boundary connection faces + 1 offsets into the two below
    std::vector<int32_t> connElems;  // per connection: element in the far zone
    std::vector<int64_t> connZones;  // per connection: unique id of the far zone
    ZorLoadFaceMapCallback load = nullptr;
    ZorUnloadFaceMapCallback unload = nullptr;
    ZorCleanupFaceMapCallback cleanup = nullptr;
    uint64_t version = 0;
    std::shared_ptr<ZorNodeToElemMapImpl> nodeToElem;  // derived
    std::shared_ptr<ZorElemToFaceMapImpl> elemToFace;  // derived

    bool callLoad() override { return load(this); }
    bool callUnload() override { return unload(this); }
    void callCleanup() override { cleanup(this); }
    void makeStorage() override;
    void dropStorage() override;
    size_t storageBytes() const override {
        return faceStart.size() * 8 + faceNodes.size() * 4 + leftElems.size() * 8 + connElems.size() * 4 +
               connZones.size() * 8 + connStart.size() * 8;
    }
};

// The face neighbours of a zone: those the add-on assigned, and those the host
// works out inside the zone.
struct ZorFaceNeighborImpl : minihost::data::LodItem {
    struct Neighbor {
        int64_t element;  // from 1
        int64_t zoneId;   // unique id of its zone
    };
    ZorUniqueID ownerZoneId = 0;                     // the zone the item was made for: its id reads as zone 0
    int32_t lodMode = ZorFaceNbrLODMode_HostInside;  // a ZorFaceNbrLODMode
    std::map<std::pair<int64_t, int64_t>, std::vector<Neighbor>> assigned;  // (element, face) -> neighbours
    std::map<std::pair<int64_t, int64_t>, int64_t> inside;  // (element, face) -> element across, in the zone
    bool insideValid = false;                               // `inside` was worked out from...
    const void* insideGeometry = nullptr;                   // ...this node map or face map...
    uint64_t insideVersion = 0;                             // ...at this version
    ZorLoadFaceNbrCallback load = nullptr;
    ZorUnloadFaceNbrCallback unload = nullptr;
    ZorCleanupFaceNbrCallback cleanup = nullptr;

    bool callLoad() override { return load(this); }
    bool callUnload() override { return unload(this); }
    void callCleanup() override { cleanup(this); }
    void makeStorage() override {}
    void dropStorage() override {
        assigned.clear();
        inside.clear();
        insideValid = false;
    }
    size_t storageBytes() const override { return assigned.size() * 48; }
};

// Elements around each node (compressed rows).
struct ZorNodeToElemMapImpl {
    std::vector<int64_t> start;     // points + 1 offsets
    std::vector<int64_t> elements;  // from 1, rising within a node
};

// Faces of each element (compressed rows).
struct ZorElemToFaceMapImpl {
    bool localFaces = false;      // classic zone: faces are 1..facesPerElement
    int32_t facesPerElement = 0;  // classic zones
    std::vector<int64_t> start;   // polytopes: elements + 1 offsets
    std::vector<int64_t> faces;   // polytopes: faces of the face map, from 1
};

// Auxiliary data of the data set or of a zone.
struct ZorAuxDataImpl {
    struct Item {
        std::string name;
        std::string value;
        int32_t type = ZorAuxDataType_String;
        bool retain = true;
    };
    std::vector<Item> items;  // in order of first setting
};

namespace minihost {
namespace data {

struct Zone {
    std::string name;
    int32_t type = ZorZoneType_Ordered;
    int64_t iMax = 1, jMax = 1, kMax = 1;  // as given
    int64_t parentZone = 0;
    int32_t strand = 0;
    double solutionTime = 0.0;
    int32_t faceNeighborMode = ZorFaceNeighborMode_LocalOneToOne;
    ZorUniqueID uniqueId = 0;
    std::vector<std::shared_ptr<ZorFieldDataImpl>> values;  // one per variable
    std::shared_ptr<ZorNodeMapImpl> nodeMap;                // classic zones
    std::shared_ptr<ZorFaceMapImpl> faceMap;                // polytope zones
    std::shared_ptr<ZorFaceNeighborImpl> faceNeighbors;     // finite-element zones
    std::shared_ptr<ZorAuxDataImpl> aux = std::make_shared<ZorAuxDataImpl>();

    int64_t numPoints() const;
    int64_t numElements() const;
};

struct Variable {
    std::string name;
    ZorUniqueID uniqueId = 0;
    bool enabled = true;  // the user can switch a variable off; ZorUtilVarIsEnabled says so
};

struct DataSet {
    std::string title;
    std::string loaderName;
    ZorUniqueID uniqueId = 0;
    std::vector<Zone> zones;          // zone n at n - 1
    std::vector<Variable> variables;  // variable n at n - 1
    std::shared_ptr<ZorAuxDataImpl> aux = std::make_shared<ZorAuxDataImpl>();
};

// The data set's structure. Held only briefly, never across a callback.
extern std::mutex dataMutex;
// The frame's data set; null when there is none (dataMutex).
extern std::unique_ptr<DataSet> dataSet;

// A new unique id: data sets, zones and variables draw from one counter.
ZorUniqueID newUniqueId();
// Zone n (from 1) of the data set, or null (dataMutex held).
Zone* zoneAt(ZorIndex zone);
// Corners per element of a classic zone type; 0 for others.
int32_t cornersOf(int32_t zoneType);
// Local faces per element of a finite-element zone type; 0 for others.
int32_t facesOf(int32_t zoneType);
// Bytes of one value of a ZorFieldDataType; 0 for an unknown type.
size_t valueSize(int32_t type);

// Loads the item if it is not loaded: on the calling thread, with the add-on
// lock held, once even when several threads ask. An item without a loader is
// made zero-filled. False when the load failed.
bool ensureLoaded(LodItem& item);
// Held by a host reader that needs several items at once (face neighbours
// need the zone's node map or face map too): while it lives, requests of this
// thread unload nothing for the memory budget, so the items got first stay
// loaded. The budget is kept again by the next request outside it.
class RequestScope {
  public:
    RequestScope();
    ~RequestScope();
    RequestScope(const RequestScope&) = delete;
    RequestScope& operator=(const RequestScope&) = delete;
};
// Calls the item's unload callback (no host lock held) and frees its storage
// when it agrees. False when it was not loaded or the callback refused.
bool unloadItem(LodItem& item);
// Calls the item's cleanup callback once, with the add-on lock held.
void cleanupItem(LodItem& item);
// Removes the data set: every item's cleanup runs once, then listeners hear
// state change 8 when `notify`.
void deleteDataSet(bool notify);
// Sends a state change from the host to every listener and records it.
void hostStateChange(int32_t code);

// Registers a loader's callbacks on an item, under the item's mutex; refused
// (false) while a loader is registered or a load runs. What the item held is
// dropped, since the loader gives it anew. setOwn sets the fields of the
// item's own kind under the same lock.
template <typename Item, typename SetOwn>
bool registerLoader(Item& item, decltype(Item::load) load, decltype(Item::unload) unload,
                    decltype(Item::cleanup) cleanup, ZorArbParam clientData, SetOwn setOwn) {
    std::lock_guard<std::mutex> guard(item.mutex);
    if (item.hasLoader || item.state == LodItem::Loading)
        return false;
    item.hasLoader = true;
    setOwn(item);
    item.load = load;
    item.unload = unload;
    item.cleanup = cleanup;
    item.clientData = clientData;
    item.dropStorage();
    item.state = LodItem::Unmade;
    return true;
}

// The raw-pointer and node-map-width switches.
bool rawPointersOffered();
bool wideNodeMaps();

}  // namespace data
}  // namespace minihost
