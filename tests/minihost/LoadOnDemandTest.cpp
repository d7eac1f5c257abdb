// Load-on-demand: values, node maps, face maps and face neighbours loaded on
// the calling thread under the add-on lock, unloaded, and cleaned up once.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "DataSetTestUtil.h"

namespace {

using namespace datasettest;

// What the test loader records; client data is a pointer to one of these.
struct Record {
    ZorIndex zone = 0;
    ZorIndex var = 0;
    double scale = 1.0;    // values are scale * point
    bool fail = false;     // the load says false
    int sleepMs = 0;       // the load takes this long
    ZorIndex alsoAsk = 0;  // the load first reads variable alsoAsk of the same zone
    std::atomic<int> loads{0};
    std::atomic<int> unloads{0};
    std::atomic<int> cleanups{0};
    std::atomic<bool> lockHeldInLoad{false};
    std::atomic<bool> lockHeldInCleanup{false};
    std::thread::id loadThread;
};

Record* recordOf(ZorFieldData data) {
    return reinterpret_cast<Record*>(ZorUtilDataValueGetClientData(data));
}

bool loadValues(ZorFieldData data) {
    Record* r = recordOf(data);
    r->lockHeldInLoad = ZorUtilLockIsOn();
    r->loadThread = std::this_thread::get_id();
    ++r->loads;
    if (r->sleepMs > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(r->sleepMs));
    if (r->fail)
        return false;
    double offset = 0.0;
    if (r->alsoAsk != 0) {
        ZorFieldData other = ZorUtilDataValueGetReadableNativeRef(r->zone, r->alsoAsk);
        if (other == nullptr)
            return false;
        offset = ZorUtilDataValueGetByRef(other, 1);
    }
    std::vector<float> values(static_cast<size_t>(ZorUtilDataValueGetCountByRef(data)));
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<float>(r->scale * (i + 1) + offset);
    ZorUtilDataValueArraySetByRef(data, 1, static_cast<ZorIndex>(values.size()), values.data());
    return true;
}

bool unloadValues(ZorFieldData data) {
    ++recordOf(data)->unloads;
    return true;
}

void cleanupValues(ZorFieldData data) {
    Record* r = recordOf(data);
    r->lockHeldInCleanup = ZorUtilLockIsOn();
    ++r->cleanups;
}

bool registerValues(ZorIndex zone, ZorIndex var, Record* r) {
    r->zone = zone;
    r->var = var;
    return ZorUtilDataValueCustomLOD(zone, var, loadValues, unloadValues, cleanupValues, nullptr, nullptr,
                                     reinterpret_cast<ZorArbParam>(r));
}

class HostLoadOnDemand : public ::testing::Test {
  protected:
    void SetUp() override {
        minihost::deleteDataSet();
        minihost::resetRecords();
        newDataSet({"X", "Y", "P"});
        ASSERT_TRUE(addZone("quads", ZorZoneType_FEQuad, 100, 81, 1));
    }
    void TearDown() override {
        minihost::deleteDataSet();
        minihost::setMemoryBudget(0);
        minihost::setRawPointersOffered(true);
        minihost::setWideNodeMaps(false);
        minihost::resetRecords();
    }
    // Client data of the loaders; they outlive the data set, whose cleanups use them.
    Record r, x, y, p;
};

TEST_F(HostLoadOnDemand, ValuesLoadOnTheCallingThreadWithTheLockHeldAndOnce) {
    r.scale = 2.0;
    ASSERT_TRUE(registerValues(1, 3, &r));
    EXPECT_FALSE(registerValues(1, 3, &r));  // one loader per item
    EXPECT_EQ(r.loads, 0);
    ZorFieldData p = ZorUtilDataValueGetReadableNativeRef(1, 3);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(r.loads, 1);
    EXPECT_TRUE(r.lockHeldInLoad);
    EXPECT_EQ(r.loadThread, std::this_thread::get_id());
    EXPECT_FALSE(ZorUtilLockIsOn());  // given back after the load
    EXPECT_EQ(ZorUtilDataValueGetByRef(p, 10), 20.0);
    ASSERT_NE(ZorUtilDataValueGetReadableDerivedRef(1, 3), nullptr);
    EXPECT_EQ(r.loads, 1);
    minihost::ItemStats stats = minihost::valueStats(1, 3);
    EXPECT_TRUE(stats.hasLoader);
    EXPECT_TRUE(stats.loaded);
    EXPECT_EQ(stats.bytes, 400u);
}

TEST_F(HostLoadOnDemand, AFailedLoadGivesNoValuesAndIsTriedAgain) {
    r.fail = true;
    ASSERT_TRUE(registerValues(1, 3, &r));
    EXPECT_EQ(ZorUtilDataValueGetReadableNativeRef(1, 3), nullptr);
    EXPECT_FALSE(minihost::valueStats(1, 3).loaded);
    r.fail = false;
    ASSERT_NE(ZorUtilDataValueGetReadableNativeRef(1, 3), nullptr);
    EXPECT_EQ(r.loads, 2);
    EXPECT_EQ(minihost::valueStats(1, 3).failedLoads, 1);
}

TEST_F(HostLoadOnDemand, UnloadedValuesLoadAgain) {
    ASSERT_TRUE(registerValues(1, 3, &r));
    ASSERT_NE(ZorUtilDataValueGetReadableNativeRef(1, 3), nullptr);
    ASSERT_TRUE(minihost::unloadValues(1, 3));
    EXPECT_EQ(r.unloads, 1);
    EXPECT_FALSE(minihost::unloadValues(1, 3));  // not loaded now
    EXPECT_EQ(minihost::valueStats(1, 3).bytes, 0u);
    ZorFieldData p = ZorUtilDataValueGetReadableNativeRef(1, 3);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(r.loads, 2);
    EXPECT_EQ(ZorUtilDataValueGetByRef(p, 81), 81.0);
}

TEST_F(HostLoadOnDemand, CleanupRunsOncePerItemWithTheLockHeldEvenWhenShared) {
    ASSERT_TRUE(registerValues(1, 1, &x));
    ASSERT_TRUE(registerValues(1, 3, &p));
    ASSERT_NE(ZorUtilDataValueGetReadableNativeRef(1, 3), nullptr);
    ZorSet sources = ZorUtilSetAlloc(true);
    ZorUtilSetAddMember(sources, 1, true);
    ZorArgList args = ZorUtilArgListAlloc();
    ZorUtilArgListAppendSet(args, "SourceZones", sources);
    ASSERT_TRUE(ZorUtilZoneCopyX(args));
    ZorUtilArgListDealloc(&args);
    ZorUtilSetDealloc(&sources);
    // The copy reads the shared, loaded values without a new load.
    ASSERT_NE(ZorUtilDataValueGetReadableNativeRef(2, 3), nullptr);
    EXPECT_EQ(p.loads, 1);
    int before = minihost::cleanupCount();
    minihost::deleteDataSet();
    EXPECT_EQ(x.cleanups, 1);
    EXPECT_EQ(p.cleanups, 1);
    EXPECT_TRUE(p.lockHeldInCleanup);
    EXPECT_EQ(minihost::cleanupCount() - before, 2);
    EXPECT_EQ(x.loads, 0);  // never asked for, never loaded
}

TEST_F(HostLoadOnDemand, ThreadsAskingForOneItemGetItLoadedOnce) {
    r.sleepMs = 50;
    ASSERT_TRUE(registerValues(1, 3, &r));
    std::vector<std::thread> threads;
    std::atomic<int> good{0};
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            ZorFieldData p = ZorUtilDataValueGetReadableNativeRef(1, 3);
            if (p != nullptr && ZorUtilDataValueGetByRef(p, 5) == 5.0)
                ++good;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(good, 4);
    EXPECT_EQ(r.loads, 1);
}

TEST_F(HostLoadOnDemand, ALoadMayAskForAnotherItemOnItsThread) {
    x.scale = 1.0;
    p.scale = 0.0;
    p.alsoAsk = 1;
    ASSERT_TRUE(registerValues(1, 1, &x));
    ASSERT_TRUE(registerValues(1, 3, &p));
    ZorFieldData values = ZorUtilDataValueGetReadableNativeRef(1, 3);
    ASSERT_NE(values, nullptr);
    EXPECT_EQ(x.loads, 1);
    EXPECT_EQ(x.loadThread, p.loadThread);
    EXPECT_EQ(ZorUtilDataValueGetByRef(values, 7), 1.0);  // x at point 1
}

TEST_F(HostLoadOnDemand, AMemoryBudgetUnloadsTheOldestItems) {
    ASSERT_TRUE(registerValues(1, 1, &x));
    ASSERT_TRUE(registerValues(1, 2, &y));
    ASSERT_TRUE(registerValues(1, 3, &p));
    minihost::setMemoryBudget(700);  // room for one variable of the zone (400 bytes), not two
    ASSERT_NE(ZorUtilDataValueGetReadableNativeRef(1, 1), nullptr);
    EXPECT_EQ(x.unloads, 0);
    ASSERT_NE(ZorUtilDataValueGetReadableNativeRef(1, 2), nullptr);
    EXPECT_EQ(x.unloads, 1);  // the oldest went; the one asked for stays
    EXPECT_EQ(y.unloads, 0);
    ASSERT_NE(ZorUtilDataValueGetReadableNativeRef(1, 3), nullptr);
    EXPECT_EQ(y.unloads, 1);
    EXPECT_EQ(p.unloads, 0);
    EXPECT_LE(minihost::loadedBytes(), 700u);
    EXPECT_TRUE(minihost::valueStats(1, 3).loaded);
    // Without a budget nothing is unloaded.
    minihost::setMemoryBudget(0);
    ASSERT_NE(ZorUtilDataValueGetReadableNativeRef(1, 1), nullptr);
    ASSERT_NE(ZorUtilDataValueGetReadableNativeRef(1, 2), nullptr);
    EXPECT_EQ(minihost::loadedBytes(), 1200u);
}

bool selfAskingLoad(ZorFieldData) {
    return ZorUtilDataValueGetReadableNativeRef(1, 3) != nullptr;
}
bool agree(ZorFieldData) {
    return true;
}
void nothing(ZorFieldData) {}

TEST(HostLoadOnDemandDeathTest, ALoadAskingForItsOwnItemAborts) {
    minihost::deleteDataSet();
    newDataSet({"X", "Y", "P"});
    ASSERT_TRUE(addZone("quads", ZorZoneType_FEQuad, 4, 1, 1));
    ASSERT_TRUE(ZorUtilDataValueCustomLOD(1, 3, selfAskingLoad, agree, nothing, nullptr, nullptr, 0));
    EXPECT_DEATH(ZorUtilDataValueGetReadableNativeRef(1, 3), "was asked for by its own load callback");
    minihost::deleteDataSet();
}

// ---- Node maps ------------------------------------------------------------------------

std::atomic<int> nodeMapLoads{0};
std::atomic<int> nodeMapCleanups{0};

// Fills a 9 x 9 grid of quads (10 x 10 nodes), through the raw pointer when offered.
bool loadGrid(ZorNodeMap map) {
    ++nodeMapLoads;
    if (ZorUtilDataNodeGetClientData(map) != 42)
        return false;
    void* raw = ZorUtilDataNodeGetRawPtrByRef(map);
    bool wide = ZorUtilDataNodeGetRawItemType(map) == ZorRawItemType_Int64;
    for (int64_t j = 0; j < 9; ++j) {
        for (int64_t i = 0; i < 9; ++i) {
            int64_t e = j * 9 + i;
            int64_t corners[4] = {j * 10 + i, j * 10 + i + 1, (j + 1) * 10 + i + 1, (j + 1) * 10 + i};
            for (int c = 0; c < 4; ++c) {
                if (raw == nullptr) {
                    ZorUtilDataNodeSetByRef(map, e + 1, c + 1, corners[c] + 1);
                } else if (wide) {
                    static_cast<int64_t*>(raw)[e * 4 + c] = corners[c];
                } else {
                    static_cast<int32_t*>(raw)[e * 4 + c] = static_cast<int32_t>(corners[c]);
                }
            }
        }
    }
    return true;
}
bool agreeMap(ZorNodeMap) {
    return true;
}
void cleanupMap(ZorNodeMap) {
    ++nodeMapCleanups;
}

void checkGrid(ZorIndex zone) {
    ZorNodeMap map = ZorUtilDataNodeGetReadableRef(zone);
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(ZorUtilDataNodeGetNodesPerElem(map), 4);
    EXPECT_EQ(ZorUtilDataNodeGetNumElems(map), 81);
    EXPECT_EQ(ZorUtilDataNodeGetByRef(map, 1, 1), 1);
    EXPECT_EQ(ZorUtilDataNodeGetByRef(map, 81, 3), 100);
    int32_t slots[4];
    ZorUtilDataNodeArrayGetByRef(map, 5, 4, slots);  // element 2
    EXPECT_EQ(slots[0], 2);
    EXPECT_EQ(slots[2], 13);
}

TEST_F(HostLoadOnDemand, NodeMapsLoadThroughRawPointersOf32Bits) {
    nodeMapLoads = 0;
    ASSERT_TRUE(ZorUtilDataNodeCustomLOD(1, loadGrid, agreeMap, cleanupMap, 42));
    checkGrid(1);
    EXPECT_EQ(ZorUtilDataNodeGetRawItemType(ZorUtilDataNodeGetReadableRef(1)), ZorRawItemType_Int32);
    EXPECT_EQ(nodeMapLoads, 1);
    EXPECT_EQ(minihost::nodeMapStats(1).bytes, 81u * 4 * 4);
}

TEST_F(HostLoadOnDemand, NodeMapsLoadThroughRawPointersOf64Bits) {
    minihost::setWideNodeMaps(true);
    ASSERT_TRUE(addZone("wide quads", ZorZoneType_FEQuad, 100, 81, 1));
    ASSERT_TRUE(ZorUtilDataNodeCustomLOD(2, loadGrid, agreeMap, cleanupMap, 42));
    checkGrid(2);
    EXPECT_EQ(ZorUtilDataNodeGetRawItemType(ZorUtilDataNodeGetReadableRef(2)), ZorRawItemType_Int64);
}

TEST_F(HostLoadOnDemand, NodeMapsLoadThroughTheSetterWithoutRawPointers) {
    minihost::setRawPointersOffered(false);
    ASSERT_TRUE(ZorUtilDataNodeCustomLOD(1, loadGrid, agreeMap, cleanupMap, 42));
    checkGrid(1);
    EXPECT_EQ(ZorUtilDataNodeGetRawPtrByRef(ZorUtilDataNodeGetReadableRef(1)), nullptr);
}

TEST_F(HostLoadOnDemand, NodeMapsUnloadAndAreCleanedUp) {
    nodeMapLoads = 0;
    nodeMapCleanups = 0;
    ASSERT_TRUE(ZorUtilDataNodeCustomLOD(1, loadGrid, agreeMap, cleanupMap, 42));
    checkGrid(1);
    ASSERT_TRUE(minihost::unloadNodeMap(1));
    checkGrid(1);
    EXPECT_EQ(nodeMapLoads, 2);
    minihost::deleteDataSet();
    EXPECT_EQ(nodeMapCleanups, 1);
}

// ---- Face maps -------------------------------------------------------------------------

// Two triangles of a polygon zone: faces are edges; face 5 (2-4) is between
// them, face 3 (3-4) has a boundary connection to element 7 of `farZone`.
ZorUniqueID farZone = 0;
bool loadPolygons(ZorFaceMap map) {
    const int32_t nodes[] = {1, 2, 2, 4, 4, 3, 3, 1, 2, 3};
    const int32_t left[] = {1, 2, -1, 1, 1};
    const int32_t right[] = {0, 0, 2, 0, 2};
    const int32_t counts[] = {1};
    const int32_t elems[] = {7};
    const int64_t zones[] = {static_cast<int64_t>(farZone)};
    ZorUtilDataFaceMapAssignNodes(map, 5, nullptr, nodes);
    ZorUtilDataFaceMapAssignElems(map, 5, left, right);
    ZorUtilDataFaceMapAssignBConns(map, 1, counts, elems, zones);
    return true;
}
bool agreeFaceMap(ZorFaceMap) {
    return true;
}
void cleanupFaceMap(ZorFaceMap) {}

TEST_F(HostLoadOnDemand, FaceMapsLoadWithBoundaryConnections) {
    ASSERT_TRUE(addZone("polygons", ZorZoneType_FEPolygon, 4, 2, 5));
    farZone = ZorUtilZoneGetUniqueID(1);
    ASSERT_TRUE(ZorUtilDataFaceMapCustomLOD(2, 5, 10, 1, loadPolygons, agreeFaceMap, cleanupFaceMap, 9));
    ZorFaceMap map = ZorUtilDataFaceMapGetReadableRef(2);
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(ZorUtilDataFaceMapGetClientData(map), 9);
    EXPECT_EQ(ZorUtilDataFaceMapGetNFaces(map), 5);
    EXPECT_EQ(ZorUtilDataFaceMapGetNFaceNodes(map, 2), 2);
    EXPECT_EQ(ZorUtilDataFaceMapGetFaceNode(map, 2, 2), 4);
    EXPECT_EQ(ZorUtilDataFaceMapGetLeftElem(map, 3), -1);
    EXPECT_EQ(ZorUtilDataFaceMapGetRightElem(map, 5), 2);
    EXPECT_EQ(ZorUtilDataFaceMapGetNBndryConns(map, 1), 1);
    ZorIndex element = 0, zone = 0;
    ASSERT_TRUE(ZorUtilDataFaceMapGetBndryConn(map, 1, 1, &element, &zone));
    EXPECT_EQ(element, 7);
    EXPECT_EQ(zone, 1);
    // Derived views of the polygon zone.
    ZorElemToFaceMap faces = ZorUtilDataElemGetReadableRef(2);
    ASSERT_NE(faces, nullptr);
    EXPECT_EQ(ZorUtilDataElemGetNumFaces(faces, 1), 3);
    EXPECT_EQ(ZorUtilDataElemGetFace(faces, 2, 1), 2);
    ZorIndex outline[8];
    ASSERT_EQ(ZorUtilDataFECellGetUniqueNodes(2, 2, outline, 8), 3);
    EXPECT_EQ(outline[0], 2);
    EXPECT_EQ(outline[1], 4);
    EXPECT_EQ(outline[2], 3);
    ZorNodeToElemMap around = ZorUtilDataNodeToElemMapGetReadableRef(2);
    ASSERT_NE(around, nullptr);
    EXPECT_EQ(ZorUtilDataNodeToElemMapGetNumElems(around, 2), 2);
    EXPECT_EQ(ZorUtilDataNodeToElemMapGetNumElems(around, 1), 1);
    // Inside neighbours come from the shared face 5.
    ZorFaceNeighbor neighbors = ZorUtilDataFaceNbrGetReadableRef(2);
    ASSERT_NE(neighbors, nullptr);
    ZorIndex nbrElem = 0, nbrZone = -1;
    ASSERT_EQ(ZorUtilDataFaceNbrGetNumNByRef(neighbors, 1, 3), 1);  // element 1's third face is face 5
    ZorUtilDataFaceNbrGetNbrByRef(neighbors, 1, 3, 1, &nbrElem, &nbrZone);
    EXPECT_EQ(nbrElem, 2);
    EXPECT_EQ(nbrZone, 0);
}

bool loadTooManyFaces(ZorFaceMap map) {
    const int32_t nodes[] = {1, 2, 2, 3};
    ZorUtilDataFaceMapAssignNodes(map, 2, nullptr, nodes);
    return true;
}

TEST(HostLoadOnDemandDeathTest, MoreFacesThanDeclaredAbort) {
    minihost::deleteDataSet();
    newDataSet({"X"});
    ASSERT_TRUE(addZone("polygons", ZorZoneType_FEPolygon, 3, 1, 1));
    ASSERT_TRUE(ZorUtilDataFaceMapCustomLOD(1, 1, 2, 0, loadTooManyFaces, agreeFaceMap, cleanupFaceMap, 0));
    EXPECT_DEATH(ZorUtilDataFaceMapGetReadableRef(1),
                 "2 faces given to the face map of zone polygons, which has 1");
    minihost::deleteDataSet();
}

// ---- Face neighbours ---------------------------------------------------------------------

ZorUniqueID otherZone = 0;
std::atomic<int> neighborLoads{0};
bool loadNeighbors(ZorFaceNeighbor neighbors) {
    ++neighborLoads;
    // Element 9 (top right of the bottom row) has, across its right face (2),
    // two elements of the other zone, as at a hanging node.
    const int32_t elems[] = {3, 4};
    const int64_t zones[] = {static_cast<int64_t>(otherZone), static_cast<int64_t>(otherZone)};
    ZorUtilDataFaceNbrAssignByRef(neighbors, 9, 2, true, 2, elems, zones);
    return true;
}
bool agreeNeighbors(ZorFaceNeighbor) {
    return true;
}
void cleanupNeighbors(ZorFaceNeighbor) {}

TEST_F(HostLoadOnDemand, FaceNeighborsJoinAssignedOnesAndThoseInsideTheZone) {
    ASSERT_TRUE(addZone("other", ZorZoneType_FEQuad, 100, 81, 1));
    otherZone = ZorUtilZoneGetUniqueID(2);
    ASSERT_TRUE(ZorUtilDataNodeCustomLOD(1, loadGrid, agreeMap, cleanupMap, 42));
    ASSERT_TRUE(ZorUtilDataFaceNbrCustomLOD(1, ZorFaceNbrLODMode_HostInside, loadNeighbors, agreeNeighbors,
                                            cleanupNeighbors, 0));
    neighborLoads = 0;
    ZorFaceNeighbor neighbors = ZorUtilDataFaceNbrGetReadableRef(1);
    ASSERT_NE(neighbors, nullptr);
    EXPECT_EQ(neighborLoads, 1);
    ZorIndex elem = 0, zone = -1;
    // Inside: element 1's face 2 (corners 1-2) meets element 2.
    ASSERT_EQ(ZorUtilDataFaceNbrGetNumNByRef(neighbors, 1, 2), 1);
    ZorUtilDataFaceNbrGetNbrByRef(neighbors, 1, 2, 1, &elem, &zone);
    EXPECT_EQ(elem, 2);
    EXPECT_EQ(zone, 0);
    // Face 3 (corners 2-3) of element 1 meets element 10 above it.
    ZorUtilDataFaceNbrGetNbrByRef(neighbors, 1, 3, 1, &elem, &zone);
    EXPECT_EQ(elem, 10);
    // The rim has none, except where the loader gave some.
    EXPECT_EQ(ZorUtilDataFaceNbrGetNumNByRef(neighbors, 1, 1), 0);
    ASSERT_EQ(ZorUtilDataFaceNbrGetNumNByRef(neighbors, 9, 2), 2);
    ZorUtilDataFaceNbrGetNbrByRef(neighbors, 9, 2, 2, &elem, &zone);
    EXPECT_EQ(elem, 4);
    EXPECT_EQ(zone, 2);
}

// ---- Registration ------------------------------------------------------------------------

TEST_F(HostLoadOnDemand, EachKindOfItemTakesOneLoaderAndDropsWhatItHeld) {
    // Values written before a loader registers are dropped: the loader gives them anew.
    ZorFieldData before = ZorUtilDataValueGetWritableNativeRef(1, 1);
    ASSERT_NE(before, nullptr);
    ZorUtilDataValueSetByRef(before, 1, 99.0);
    ASSERT_TRUE(registerValues(1, 1, &x));
    EXPECT_FALSE(registerValues(1, 1, &y));
    ZorFieldData values = ZorUtilDataValueGetReadableNativeRef(1, 1);
    ASSERT_NE(values, nullptr);
    EXPECT_EQ(ZorUtilDataValueGetClientData(values), reinterpret_cast<ZorArbParam>(&x));
    EXPECT_EQ(ZorUtilDataValueGetByRef(values, 1), 1.0);
    EXPECT_EQ(x.loads, 1);
    EXPECT_EQ(y.loads, 0);

    ASSERT_TRUE(ZorUtilDataNodeCustomLOD(1, loadGrid, agreeMap, cleanupMap, 42));
    EXPECT_FALSE(ZorUtilDataNodeCustomLOD(1, loadGrid, agreeMap, cleanupMap, 43));
    EXPECT_EQ(ZorUtilDataNodeGetClientData(ZorUtilDataNodeGetReadableRef(1)), 42);

    // The refused second registration leaves the first one's mode: with the
    // loader alone, the host looks for no neighbours inside the zone.
    ASSERT_TRUE(ZorUtilDataFaceNbrCustomLOD(1, ZorFaceNbrLODMode_LoaderOnly, loadNeighbors, agreeNeighbors,
                                            cleanupNeighbors, 5));
    EXPECT_FALSE(ZorUtilDataFaceNbrCustomLOD(1, ZorFaceNbrLODMode_HostInside, loadNeighbors, agreeNeighbors,
                                             cleanupNeighbors, 6));
    ZorFaceNeighbor neighbors = ZorUtilDataFaceNbrGetReadableRef(1);
    ASSERT_NE(neighbors, nullptr);
    EXPECT_EQ(ZorUtilDataFaceNbrGetClientData(neighbors), 5);
    EXPECT_EQ(ZorUtilDataFaceNbrGetNumNByRef(neighbors, 1, 2), 0);
    EXPECT_EQ(ZorUtilDataFaceNbrGetNumNByRef(neighbors, 9, 2), 2);

    // The sizes of a refused second face map registration are not taken.
    ASSERT_TRUE(addZone("polygons", ZorZoneType_FEPolygon, 4, 2, 5));
    farZone = ZorUtilZoneGetUniqueID(1);
    ASSERT_TRUE(ZorUtilDataFaceMapCustomLOD(2, 5, 10, 1, loadPolygons, agreeFaceMap, cleanupFaceMap, 9));
    EXPECT_FALSE(ZorUtilDataFaceMapCustomLOD(2, 4, 8, 1, loadPolygons, agreeFaceMap, cleanupFaceMap, 10));
    ZorFaceMap map = ZorUtilDataFaceMapGetReadableRef(2);
    ASSERT_NE(map, nullptr);
    EXPECT_EQ(ZorUtilDataFaceMapGetClientData(map), 9);
    EXPECT_EQ(ZorUtilDataFaceMapGetNFaces(map), 5);
}

}  // namespace
