// Views the host derives from node maps: elements around a node, local faces
// of an element, distinct nodes, and neighbours inside a zone.
#include <gtest/gtest.h>

#include <vector>

#include "DataSetTestUtil.h"

namespace {

using namespace datasettest;

class HostConnectivity : public ::testing::Test {
  protected:
    void SetUp() override {
        minihost::deleteDataSet();
        minihost::resetRecords();
        newDataSet({"X", "Y", "Z"});
    }
    void TearDown() override {
        minihost::deleteDataSet();
        minihost::resetRecords();
    }
};

// Writes element e's corners (one-based nodes) into the zone's node map.
void setElement(ZorIndex zone, ZorIndex element, const std::vector<ZorIndex>& nodes) {
    ZorNodeMap map = ZorUtilDataNodeGetWritableRef(zone);
    ASSERT_NE(map, nullptr);
    for (size_t c = 0; c < nodes.size(); ++c)
        ZorUtilDataNodeSetByRef(map, element, c + 1, nodes[c]);
}

TEST_F(HostConnectivity, NodesKnowTheirElementsInRisingOrder) {
    ASSERT_TRUE(addZone("tris", ZorZoneType_FETriangle, 4, 2, 1));
    setElement(1, 1, {1, 2, 3});
    setElement(1, 2, {3, 2, 4});
    ZorNodeToElemMap around = ZorUtilDataNodeToElemMapGetReadableRef(1);
    ASSERT_NE(around, nullptr);
    EXPECT_EQ(ZorUtilDataNodeToElemMapGetNumElems(around, 1), 1);
    ASSERT_EQ(ZorUtilDataNodeToElemMapGetNumElems(around, 3), 2);
    EXPECT_EQ(ZorUtilDataNodeToElemMapGetElem(around, 3, 1), 1);
    EXPECT_EQ(ZorUtilDataNodeToElemMapGetElem(around, 3, 2), 2);
    // A change of the map shows in a new view.
    setElement(1, 2, {1, 2, 4});
    around = ZorUtilDataNodeToElemMapGetReadableRef(1);
    EXPECT_EQ(ZorUtilDataNodeToElemMapGetNumElems(around, 3), 1);
    EXPECT_EQ(ZorUtilDataNodeToElemMapGetNumElems(around, 1), 2);
}

TEST_F(HostConnectivity, ClassicElementsHaveTheirLocalFaces) {
    ASSERT_TRUE(addZone("bricks", ZorZoneType_FEBrick, 8, 1, 1));
    ZorElemToFaceMap faces = ZorUtilDataElemGetReadableRef(1);
    ASSERT_NE(faces, nullptr);
    EXPECT_EQ(ZorUtilDataElemGetNumFaces(faces, 1), 6);
    EXPECT_EQ(ZorUtilDataElemGetFace(faces, 1, 4), 4);
}

TEST_F(HostConnectivity, AWedgeInABrickCountsEachNodeOnce) {
    ASSERT_TRUE(addZone("wedge", ZorZoneType_FEBrick, 6, 1, 1));
    setElement(1, 1, {1, 2, 3, 3, 4, 5, 6, 6});
    ZorIndex nodes[8];
    ASSERT_EQ(ZorUtilDataFECellGetUniqueNodes(1, 1, nodes, 8), 6);
    EXPECT_EQ(nodes[3], 4);
    ZorIndex few[2];
    EXPECT_EQ(ZorUtilDataFECellGetUniqueNodes(1, 1, few, 2), 6);  // the count, though only 2 fit
    EXPECT_EQ(few[1], 2);
    EXPECT_EQ(ZorUtilDataFECellGetUniqueNodes(1, 2, nodes, 8), 0);
}

TEST_F(HostConnectivity, TetrahedraMeetAcrossTheirSharedFace) {
    ASSERT_TRUE(addZone("tets", ZorZoneType_FETetra, 5, 2, 1));
    setElement(1, 1, {1, 2, 3, 4});
    setElement(1, 2, {2, 3, 4, 5});  // shares 2 3 4: face 4 (corners 1 2 3) of element 1
    ZorFaceNeighbor neighbors = ZorUtilDataFaceNbrGetReadableRef(1);
    ASSERT_NE(neighbors, nullptr);
    ASSERT_EQ(ZorUtilDataFaceNbrGetNumNByRef(neighbors, 1, 4), 1);
    ZorIndex element = 0, zone = -1;
    ZorUtilDataFaceNbrGetNbrByRef(neighbors, 1, 4, 1, &element, &zone);
    EXPECT_EQ(element, 2);
    EXPECT_EQ(zone, 0);
    // Element 2's face 1 (corners 0 1 2: nodes 2 3 4) is the same face.
    ZorUtilDataFaceNbrGetNbrByRef(neighbors, 2, 1, 1, &element, &zone);
    EXPECT_EQ(element, 1);
    for (ZorIndex face = 1; face <= 3; ++face)
        EXPECT_EQ(ZorUtilDataFaceNbrGetNumNByRef(neighbors, 1, face), 0);
}

// The element across face `face` of `element`, or 0 when none is found there.
ZorIndex across(ZorFaceNeighbor neighbors, ZorIndex element, ZorIndex face) {
    if (ZorUtilDataFaceNbrGetNumNByRef(neighbors, element, face) != 1)
        return 0;
    ZorIndex other = 0, zone = -1;
    ZorUtilDataFaceNbrGetNbrByRef(neighbors, element, face, 1, &other, &zone);
    EXPECT_EQ(zone, 0) << "a neighbour found inside the zone is in zone 0";
    return other;
}

TEST_F(HostConnectivity, AFaceOfThreeElementsJoinsNone) {
    ASSERT_TRUE(addZone("tris", ZorZoneType_FETriangle, 5, 4, 1));
    setElement(1, 1, {1, 2, 3});
    setElement(1, 2, {2, 1, 4});
    setElement(1, 3, {1, 2, 5});  // the third element on edge 1-2
    setElement(1, 4, {2, 3, 4});
    ZorFaceNeighbor neighbors = ZorUtilDataFaceNbrGetReadableRef(1);
    ASSERT_NE(neighbors, nullptr);
    EXPECT_EQ(across(neighbors, 1, 1), 0);
    EXPECT_EQ(across(neighbors, 2, 1), 0);
    EXPECT_EQ(across(neighbors, 3, 1), 0);
    EXPECT_EQ(across(neighbors, 1, 2), 4);  // edge 2-3
    EXPECT_EQ(across(neighbors, 4, 1), 1);
    EXPECT_EQ(across(neighbors, 2, 3), 4);  // edge 4-2
    EXPECT_EQ(across(neighbors, 4, 3), 2);
    EXPECT_EQ(across(neighbors, 3, 2), 0);
}

TEST_F(HostConnectivity, CollapsedFacesMeetNothing) {
    ASSERT_TRUE(addZone("quads", ZorZoneType_FEQuad, 5, 2, 1));
    setElement(1, 1, {1, 2, 3, 3});  // face 3 is node 3 alone
    setElement(1, 2, {4, 3, 3, 5});  // and so is face 2 here
    ZorFaceNeighbor neighbors = ZorUtilDataFaceNbrGetReadableRef(1);
    ASSERT_NE(neighbors, nullptr);
    for (ZorIndex face = 1; face <= 4; ++face) {
        EXPECT_EQ(across(neighbors, 1, face), 0) << face;
        EXPECT_EQ(across(neighbors, 2, face), 0) << face;
    }
}

TEST_F(HostConnectivity, LineSegmentsMeetAtAPoint) {
    ASSERT_TRUE(addZone("lines", ZorZoneType_FELineSeg, 3, 2, 1));
    setElement(1, 1, {1, 2});
    setElement(1, 2, {2, 3});
    ZorFaceNeighbor neighbors = ZorUtilDataFaceNbrGetReadableRef(1);
    ASSERT_NE(neighbors, nullptr);
    EXPECT_EQ(across(neighbors, 1, 2), 2);
    EXPECT_EQ(across(neighbors, 2, 1), 1);
    EXPECT_EQ(across(neighbors, 1, 1), 0);
    EXPECT_EQ(across(neighbors, 2, 2), 0);
}

// Three polygons. Face (edge): nodes, left, right.
//   1: 1-2, 1, 0    2: 2-3, 1, 2    3: 3-1, 1, -1   4: 2-4, 2, 3
//   5: 4-3, 2, 2    6: 4-5, 3, 0    7: 5-2, 3, 0
bool loadThreePolygons(ZorFaceMap map) {
    const int32_t nodes[] = {1, 2, 2, 3, 3, 1, 2, 4, 4, 3, 4, 5, 5, 2};
    const int32_t left[] = {1, 1, 1, 2, 2, 3, 3};
    const int32_t right[] = {0, 2, -1, 3, 2, 0, 0};
    ZorUtilDataFaceMapAssignNodes(map, 7, nullptr, nodes);
    ZorUtilDataFaceMapAssignElems(map, 7, left, right);
    return true;
}
bool agreeFaceMap(ZorFaceMap) {
    return true;
}
void cleanupFaceMap(ZorFaceMap) {}

TEST_F(HostConnectivity, PolygonsMeetWhereAFaceHasAnElementOnEachSide) {
    ASSERT_TRUE(addZone("polygons", ZorZoneType_FEPolygon, 5, 3, 7));
    ASSERT_TRUE(ZorUtilDataFaceMapCustomLOD(1, 7, 14, 0, loadThreePolygons, agreeFaceMap, cleanupFaceMap, 0));
    ZorFaceNeighbor neighbors = ZorUtilDataFaceNbrGetReadableRef(1);
    ASSERT_NE(neighbors, nullptr);
    // Element faces are the element's faces of the map in rising order:
    // element 1 has 1 2 3, element 2 has 2 4 5, element 3 has 4 6 7.
    EXPECT_EQ(across(neighbors, 1, 1), 0);  // nothing on the other side
    EXPECT_EQ(across(neighbors, 1, 2), 2);
    EXPECT_EQ(across(neighbors, 1, 3), 0);  // a boundary connection is no neighbour inside
    EXPECT_EQ(across(neighbors, 2, 1), 1);
    EXPECT_EQ(across(neighbors, 2, 2), 3);
    EXPECT_EQ(across(neighbors, 2, 3), 0);  // the same element on both sides
    EXPECT_EQ(across(neighbors, 3, 1), 2);
    EXPECT_EQ(across(neighbors, 3, 2), 0);
    EXPECT_EQ(across(neighbors, 3, 3), 0);
}

TEST_F(HostConnectivity, OrderedZonesHaveNoConnectivity) {
    ASSERT_TRUE(addZone("ordered", ZorZoneType_Ordered, 3, 3, 1));
    EXPECT_EQ(ZorUtilDataNodeGetReadableRef(1), nullptr);
    EXPECT_EQ(ZorUtilDataFaceMapGetReadableRef(1), nullptr);
    EXPECT_EQ(ZorUtilDataFaceNbrGetReadableRef(1), nullptr);
    EXPECT_EQ(ZorUtilDataNodeToElemMapGetReadableRef(1), nullptr);
}

}  // namespace
