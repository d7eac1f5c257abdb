// Cells assembled from faces: the seed, the rows of the brick face table,
// degenerate cells, the child face replacement with its step over the face
// behind a group, node numbering of cell and boundary zones, and their messages.
#include <algorithm>
#include <set>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "CaseFileTestSupport.h"

namespace casefile_test {
namespace {

constexpr int32_t U = UNSET_NODE;

class AssemblyTest : public CaseFileTest {
  protected:
    static std::vector<int32_t> array(const int32_t* data, size_t n) {
        return std::vector<int32_t>(data, data + n);
    }

    // Numbers and assembles one cell zone as the node map loader does; the
    // cells in global node numbers (0 for a slot left unset).
    bool assemble(CaseFile* caseFile, int32_t zoneIndex, std::vector<int32_t>* globalSlots) {
        CellZone* zone = &caseFile->cellZones[zoneIndex];
        zone->hostZoneType = CellZoneGetZoneType(zone, caseFile, false);
        int32_t corners = nodesPerCellOfHostZoneType(zone->hostZoneType);
        int32_t numCells = zone->lastIndex - zone->firstIndex + 1;
        std::vector<int32_t> cellNodes(static_cast<size_t>(numCells) * corners, UNSET_NODE);
        if (!CaseFileStoreFaceTreeChildren(caseFile) ||
            !CellZoneGetNewNodeNumbers(zone, caseFile, caseFile->totalNodes) ||
            !CellZoneAssembleFaces(caseFile, zone, numCells, corners, cellNodes.data())) {
            return false;
        }
        globalSlots->clear();
        for (int32_t slot : cellNodes) {
            globalSlots->push_back(slot == UNSET_NODE ? 0 : zone->newToOldNodes[slot - 1]);
        }
        return true;
    }
};

// ---- One hexahedron ----------------------------------------------------------------------------

// A unit cube, nodes 1-4 at z = 0 (anticlockwise seen from above), 5-8 above
// them. Each face is listed with its right-hand normal into cell 1 (side 0).
const char* kCubeNodes =
    "(2 3)\n(10 (1 1 8 1 3)(\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n0 0 1\n1 0 1\n1 1 1\n0 1 1\n))\n(12 (2 1 1 1 4))\n";
const char* kBottom = "1 2 3 4 1 0\n";
const char* kTop = "5 8 7 6 1 0\n";
const char* kFront = "1 5 6 2 1 0\n";
const char* kBack = "4 3 7 8 1 0\n";
const char* kLeft = "1 4 8 5 1 0\n";
const char* kRight = "2 6 7 3 1 0\n";

std::string cube(std::initializer_list<const char*> faces) {
    std::string text = kCubeNodes;
    text += "(13 (3 1 " + std::to_string(faces.size()) + " 3 4)(\n";
    for (const char* face : faces) {
        text += face;
    }
    return text + "))\n";
}

TEST_F(AssemblyTest, HexahedronGrowsFromItsFirstQuadrilateral) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(cube({kBottom, kFront, kBack, kLeft, kRight, kTop}), &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    std::vector<int32_t> slots;
    ASSERT_TRUE(assemble(caseFile, 0, &slots));
    EXPECT_EQ(slots, (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 7, 8}));
    // The bottom seed is local face 5; each side fits one row of the table; the top is 6.
    EXPECT_EQ(array(caseFile->faceZones[0].faceConnectivity, 12),
              (std::vector<int32_t>{5, 0, 3, 0, 4, 0, 1, 0, 2, 0, 6, 0}));
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(AssemblyTest, TopFaceAheadOfTheSidesStoresNothing) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(cube({kBottom, kTop, kRight, kLeft, kFront, kBack}), &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    std::vector<int32_t> slots;
    ASSERT_TRUE(assemble(caseFile, 0, &slots));
    EXPECT_EQ(slots, (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(caseFile->faceZones[0].faceConnectivity[2], 6);
}

TEST_F(AssemblyTest, FaceThatFitsNoRowOnceTopSlotsAreSet) {
    // The top face turned the wrong way round.
    bool ok = false;
    CaseFile* caseFile = scanBytes(cube({kBottom, kFront, "5 6 7 8 1 0\n", kBack, kLeft, kRight}), &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    std::vector<int32_t> slots;
    EXPECT_FALSE(assemble(caseFile, 0, &slots));
    EXPECT_EQ(messageTexts(), texts({"Error assembling cell 1 from faces."}));
    EXPECT_EQ(caseFile->faceZones[0].faceConnectivity[4], 6);
}

TEST_F(AssemblyTest, SideFaceInConflictWithTheSlots) {
    // Front face claims node 7 above node 1.
    bool ok = false;
    CaseFile* caseFile = scanBytes(cube({kBottom, kLeft, "1 7 6 2 1 0\n"}), &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    std::vector<int32_t> slots;
    EXPECT_FALSE(assemble(caseFile, 0, &slots));
    EXPECT_EQ(messageTexts(), texts({"Error assembling cell 1 from faces."}));
}

TEST_F(AssemblyTest, CellOnSideOneSeesItsFacesReversed) {
    // The same cube, every face listed the other way round with the cell on side 1.
    std::string text = kCubeNodes;
    text +=
        "(13 (3 1 6 3 4)(\n4 3 2 1 0 1\n2 6 5 1 0 1\n8 7 3 4 0 1\n5 8 4 1 0 1\n3 7 6 2 0 1\n6 7 8 5 0 "
        "1\n))\n";
    bool ok = false;
    CaseFile* caseFile = scanBytes(text, &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    std::vector<int32_t> slots;
    ASSERT_TRUE(assemble(caseFile, 0, &slots));
    EXPECT_EQ(slots, (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(array(caseFile->faceZones[0].faceConnectivity, 12),
              (std::vector<int32_t>{0, 5, 0, 3, 0, 4, 0, 1, 0, 2, 0, 6}));
}

// ---- Adding faces directly ------------------------------------------------------------------------------

TEST_F(AssemblyTest, PyramidIsABrickWithItsApexOnTop) {
    int32_t slots[8] = {U, U, U, U, U, U, U, U};
    int32_t localFace = 0;
    const int32_t base[] = {1, 2, 3, 4};
    ASSERT_TRUE(addFaceToCell(&localFace, 1, 0, base, 4, true, slots, ZorZoneType_FEBrick));
    EXPECT_EQ(localFace, 5);
    const int32_t sides[4][3] = {{1, 5, 2}, {2, 5, 3}, {3, 5, 4}, {4, 5, 1}};
    const int32_t rows[4] = {3, 2, 4, 1};
    for (int k = 0; k < 4; ++k) {
        ASSERT_TRUE(addFaceToCell(&localFace, 1, k + 1, sides[k], 3, true, slots, ZorZoneType_FEBrick));
        EXPECT_EQ(localFace, rows[k]);
    }
    EXPECT_EQ(array(slots, 8), (std::vector<int32_t>{1, 2, 3, 4, 5, 5, 5, 5}));
}

TEST_F(AssemblyTest, TetrahedronInABrickZoneRepeatsItsLastSeedNode) {
    int32_t slots[8] = {U, U, U, U, U, U, U, U};
    int32_t localFace = 0;
    const int32_t base[] = {1, 2, 3};
    ASSERT_TRUE(addFaceToCell(&localFace, 1, 0, base, 3, true, slots, ZorZoneType_FEBrick));
    EXPECT_EQ(array(slots, 8), (std::vector<int32_t>{1, 2, 3, 3, U, U, U, U}));
    const int32_t sides[3][3] = {{1, 4, 2}, {2, 4, 3}, {3, 4, 1}};
    for (int k = 0; k < 3; ++k) {
        ASSERT_TRUE(addFaceToCell(&localFace, 1, k + 1, sides[k], 3, true, slots, ZorZoneType_FEBrick));
    }
    EXPECT_EQ(array(slots, 8), (std::vector<int32_t>{1, 2, 3, 3, 4, 4, 4, 4}));
}

TEST_F(AssemblyTest, WedgeIsABrickWithCollapsedPairs) {
    // Triangles 1 2 3 (bottom) and 4 5 6 (top); quadrilaterals first, as pass 0 takes them.
    int32_t slots[8] = {U, U, U, U, U, U, U, U};
    int32_t localFace = 0;
    const int32_t quads[3][4] = {{1, 4, 5, 2}, {2, 5, 6, 3}, {3, 6, 4, 1}};
    const int32_t triangles[2][3] = {{1, 2, 3}, {4, 6, 5}};
    int facesSoFar = 0;
    for (const auto& quad : quads) {
        ASSERT_TRUE(addFaceToCell(&localFace, 1, facesSoFar++, quad, 4, true, slots, ZorZoneType_FEBrick));
    }
    for (const auto& triangle : triangles) {
        ASSERT_TRUE(
            addFaceToCell(&localFace, 1, facesSoFar++, triangle, 3, true, slots, ZorZoneType_FEBrick));
    }
    EXPECT_EQ(array(slots, 8), (std::vector<int32_t>{1, 4, 5, 2, 3, 6, 6, 3}));
}

TEST_F(AssemblyTest, TriangleFaceTouchingNeitherSeedNode) {
    int32_t slots[3] = {1, 2, U};
    int32_t localFace = 0;
    const int32_t face[] = {5, 6};
    EXPECT_FALSE(addFaceToTriangle(&localFace, 7, face, slots));
    EXPECT_EQ(messageTexts(), texts({"Error adding face nodes 5 and 6 to cell 7."}));
}

TEST_F(AssemblyTest, TriangleRules) {
    int32_t slots[3] = {1, 2, U};
    int32_t localFace = 0;
    const int32_t second[] = {2, 3};
    ASSERT_TRUE(addFaceToTriangle(&localFace, 1, second, slots));
    EXPECT_EQ(localFace, 2);
    const int32_t third[] = {3, 1};
    ASSERT_TRUE(addFaceToTriangle(&localFace, 1, third, slots));
    EXPECT_EQ(localFace, 3);
    EXPECT_EQ(array(slots, 3), (std::vector<int32_t>{1, 2, 3}));
    const int32_t conflict[] = {2, 9};
    EXPECT_FALSE(addFaceToTriangle(&localFace, 4, conflict, slots));
    EXPECT_EQ(messageTexts(), texts({"Error assembling cell 4 from faces."}));
}

TEST_F(AssemblyTest, QuadrilateralRulesAndADegenerateTriangle) {
    int32_t slots[4] = {U, U, U, U};
    int32_t localFace = 0;
    const int32_t edges[4][2] = {{1, 2}, {3, 4}, {2, 3}, {4, 1}};
    const int32_t expected[4] = {1, 3, 2, 4};
    for (int k = 0; k < 4; ++k) {
        ASSERT_TRUE(addFaceToCell(&localFace, 1, k, edges[k], 2, true, slots, ZorZoneType_FEQuad));
        EXPECT_EQ(localFace, expected[k]);
    }
    EXPECT_EQ(array(slots, 4), (std::vector<int32_t>{1, 2, 3, 4}));
    int32_t triangle[4] = {U, U, U, U};
    const int32_t tri[3][2] = {{5, 6}, {6, 7}, {7, 5}};
    for (int k = 0; k < 3; ++k) {
        ASSERT_TRUE(addFaceToCell(&localFace, 2, k, tri[k], 2, true, triangle, ZorZoneType_FEQuad));
    }
    EXPECT_EQ(array(triangle, 4), (std::vector<int32_t>{5, 6, 7, 7}));
    const int32_t conflict[] = {2, 8};
    EXPECT_FALSE(addFaceToQuad(&localFace, 3, conflict, slots));
    EXPECT_EQ(messageTexts(), texts({"Error assembling cell 3 from faces."}));
}

TEST_F(AssemblyTest, TetrahedronRules) {
    int32_t slots[4] = {U, U, U, U};
    int32_t localFace = 0;
    const int32_t seed[] = {1, 2, 3};
    ASSERT_TRUE(addFaceToCell(&localFace, 1, 0, seed, 3, true, slots, ZorZoneType_FETetra));
    EXPECT_EQ(localFace, 1);
    const int32_t faces[3][3] = {{2, 1, 4}, {4, 3, 2}, {3, 4, 1}};  // edges (1,2), (2,3), (3,1) backwards
    const int32_t expected[3] = {2, 4, 3};
    for (int k = 0; k < 3; ++k) {
        ASSERT_TRUE(addFaceToCell(&localFace, 1, k + 1, faces[k], 3, true, slots, ZorZoneType_FETetra));
        EXPECT_EQ(localFace, expected[k]);
    }
    EXPECT_EQ(array(slots, 4), (std::vector<int32_t>{1, 2, 3, 4}));
    const int32_t conflict[] = {2, 1, 9};
    EXPECT_FALSE(addFaceToTetra(&localFace, 5, conflict, slots));
    const int32_t nowhere[] = {7, 8, 9};
    EXPECT_FALSE(addFaceToTetra(&localFace, 6, nowhere, slots));
    EXPECT_EQ(messageTexts(),
              texts({"Error assembling cell 5 from faces.", "Error assembling cell 6 from faces."}));
}

// ---- Child faces stand in for their parents
// -----------------------------------------------------------------

// A unit square cell (quadrilateral zone 1). Its edges are parent faces of zone
// 5 (type 1012, left out of the walk); zone 6 holds their halves as child faces.
const char* kSquare =
    "(2 2)\n(10 (1 1 8 1 2)(\n0 0\n1 0\n1 1\n0 1\n0.5 0\n1 0.5\n0.5 1\n0 0.5\n))\n(12 (1 1 1 1 3))\n";

TEST_F(AssemblyTest, CellWhoseFacesAreAllReplacedChildrenTakesTheParentsNodes) {
    std::string text = kSquare;
    text += "(13 (5 1 4 3f4 2)(1 2 1 0 2 3 1 0 3 4 1 0 4 1 1 0))\n";
    text += "(13 (6 5 c 3 2)(1 5 1 0 5 2 1 0 2 6 1 0 6 3 1 0 3 7 1 0 7 4 1 0 4 8 1 0 8 1 1 0))\n";
    text += "(62 (6 5 8)(5 1 6 1 7 2 8 2 9 3 a 3 b 4 c 4))\n";
    bool ok = false;
    CaseFile* caseFile = scanBytes(text, &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    std::vector<int32_t> slots;
    ASSERT_TRUE(assemble(caseFile, 0, &slots));
    EXPECT_TRUE(messageTexts().empty());
    EXPECT_EQ(slots, (std::vector<int32_t>{1, 2, 3, 4}));
    // Only the parents' corners are numbered, not the middle nodes.
    EXPECT_EQ(caseFile->cellZones[0].numNodes, 4);
    EXPECT_EQ(caseFile->faceZones[1].childFaceIndex, 0);
}

TEST_F(AssemblyTest, FaceBehindAGroupOfChildrenIsNotVisited) {
    // Parent 1 (edge 1-2) has children 5 and 6; face 7 (edge 2-3) follows them
    // and is stepped over; faces 8 and 9 close the square.
    std::string text = kSquare;
    text += "(13 (5 1 1 3f4 2)(1 2 1 0))\n";
    text += "(13 (6 5 9 3 2)(1 5 1 0 5 2 1 0 2 3 1 0 3 4 1 0 4 1 1 0))\n";
    text += "(62 (6 5 2)(5 1 6 1))\n";
    bool ok = false;
    CaseFile* caseFile = scanBytes(text, &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    std::vector<int32_t> slots;
    ASSERT_TRUE(assemble(caseFile, 0, &slots));
    EXPECT_EQ(slots, (std::vector<int32_t>{1, 2, 3, 4}));
    // Face 7 received no local face number; the ones around it did.
    EXPECT_EQ(array(caseFile->faceZones[1].faceConnectivity, 10),
              (std::vector<int32_t>{1, 0, 0, 0, 0, 0, 3, 0, 4, 0}));
}

TEST_F(AssemblyTest, ChildFacesWhoseParentZoneIsGone) {
    std::string text = kSquare;
    text += "(13 (5 1 1 3f4 2)(1 2 1 0))\n";
    text += "(13 (6 5 9 3 2)(1 5 1 0 5 2 1 0 2 3 1 0 3 4 1 0 4 1 1 0))\n";
    text += "(62 (6 5 2)(5 1 6 1))\n";
    bool ok = false;
    CaseFile* caseFile = scanBytes(text, &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    ASSERT_TRUE(CaseFileStoreFaceTreeChildren(caseFile));
    caseFile->childFaces[0].parentZoneId = 99;
    EXPECT_FALSE(CellZoneGetNewNodeNumbers(&caseFile->cellZones[0], caseFile, caseFile->totalNodes));
    EXPECT_EQ(messageTexts(), texts({"Face Zone ID = 99 (referenced in data file) does not exist."}));
    EXPECT_EQ(caseFile->cellZones[0].oldToNewNodes, nullptr);
}

// ---- Numbering
// ---------------------------------------------------------------------------------------------

TEST_F(AssemblyTest, ZoneWithNoFacesInRange) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(cube({kBottom, kTop}) + "(12 (7 32 3c 1 4))\n", &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    EXPECT_FALSE(CellZoneGetNewNodeNumbers(&caseFile->cellZones[1], caseFile, caseFile->totalNodes));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"Zone ID 7 in file '" +
                                                       std::string(caseFile->fileName) + "' has no nodes."});
    EXPECT_EQ(caseFile->cellZones[1].oldToNewNodes, nullptr);
    EXPECT_EQ(caseFile->cellZones[1].newToOldNodes, nullptr);
}

TEST_F(AssemblyTest, NumberingCountsOnlyTheZonesNodesInAscendingOrder) {
    // Two cubes side by side: cell 1 (x 0..1) and cell 2 (x 1..2) in zones of their own.
    std::string text =
        "(2 3)\n(10 (1 1 c 1 3)(\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n0 0 1\n1 0 1\n1 1 1\n0 1 1\n"
        "2 0 0\n2 1 0\n2 0 1\n2 1 1\n))\n(12 (2 1 1 1 4))\n(12 (4 2 2 1 4))\n"
        "(13 (3 1 b 3 4)(\n"
        "1 2 3 4 1 0\n5 8 7 6 1 0\n1 5 6 2 1 0\n4 3 7 8 1 0\n1 4 8 5 1 0\n"
        "2 6 7 3 1 2\n"
        "2 9 a 3 2 0\n6 7 c b 2 0\n2 6 b 9 2 0\n3 a c 7 2 0\n9 b c a 2 0\n))\n";
    bool ok = false;
    CaseFile* caseFile = scanBytes(text, &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    std::vector<int32_t> first, second;
    ASSERT_TRUE(assemble(caseFile, 0, &first));
    ASSERT_TRUE(assemble(caseFile, 1, &second));
    EXPECT_EQ(first, (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 7, 8}));
    const CellZone& zone = caseFile->cellZones[1];
    EXPECT_EQ(zone.numNodes, 8);
    EXPECT_EQ(array(zone.newToOldNodes, 8), (std::vector<int32_t>{2, 3, 6, 7, 9, 10, 11, 12}));
    EXPECT_EQ(zone.oldToNewNodes[0], 0);
    EXPECT_EQ(zone.oldToNewNodes[1], 1);
    EXPECT_EQ(zone.oldToNewNodes[11], 8);
    EXPECT_EQ(zone.newToOldBytes, 8u * sizeof(int32_t));
    // The shared face tells each cell its own local face number.
    EXPECT_EQ(caseFile->faceZones[0].faceConnectivity[10], 2);
    EXPECT_NE(caseFile->faceZones[0].faceConnectivity[11], 0);
    EXPECT_EQ(std::set<int32_t>(second.begin(), second.end()),
              (std::set<int32_t>{2, 3, 6, 7, 9, 10, 11, 12}));
}

TEST_F(AssemblyTest, NegativeNodeNumberOnSideZeroStopsTheAssembly) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(cube({kBottom, kFront, kBack, kLeft, kRight, kTop}), &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    CellZone* zone = &caseFile->cellZones[0];
    zone->hostZoneType = ZorZoneType_FEBrick;
    ASSERT_TRUE(CellZoneGetNewNodeNumbers(zone, caseFile, caseFile->totalNodes));
    zone->oldToNewNodes[6] = -3;
    std::vector<int32_t> cellNodes(8, UNSET_NODE);
    EXPECT_FALSE(CellZoneAssembleFaces(caseFile, zone, 1, 8, cellNodes.data()));
    EXPECT_EQ(messageTexts(), texts({"Error assembling cells from faces."}));
}

TEST_F(AssemblyTest, UnnumberedZoneTakesGlobalNodeNumbers) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(cube({kBottom, kFront, kBack, kLeft, kRight, kTop}), &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    CellZone* zone = &caseFile->cellZones[0];
    zone->hostZoneType = ZorZoneType_FEBrick;
    std::vector<int32_t> cellNodes(8, UNSET_NODE);
    ASSERT_TRUE(CellZoneAssembleFaces(caseFile, zone, 1, 8, cellNodes.data()));
    EXPECT_EQ(cellNodes, (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(AssemblyTest, FacesOfTypeThirtyEightAndAbove1000AreLeftOut) {
    // A second copy of the bottom face in a zone of type 38 and one of type
    // 1003 would conflict with the seed if they took part.
    std::string text = cube({kBottom, kFront, kBack, kLeft, kRight, kTop});
    text += "(13 (4 7 7 26 4)(2 3 4 1 1 0))\n(13 (5 8 8 3eb 4)(3 4 1 2 1 0))\n";
    bool ok = false;
    CaseFile* caseFile = scanBytes(text, &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    std::vector<int32_t> slots;
    ASSERT_TRUE(assemble(caseFile, 0, &slots));
    EXPECT_EQ(slots, (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_TRUE(messageTexts().empty());
}

// ---- Boundary zones
// ---------------------------------------------------------------------------------------------

TEST_F(AssemblyTest, BoundaryZoneNumbersItsNodesInAscendingOrder) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(std::string(kCubeNodes) +
                                       "(13 (3 1 3 3 0)(\n4 5 8 7 6 1 0\n3 2 6 7 1 0\n"
                                       "4 1 5 6 2 1 0\n))\n",
                                   &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    FaceZone* zone = &caseFile->faceZones[0];
    ASSERT_TRUE(FaceZoneGetNodeNumbers(zone, caseFile, caseFile->totalNodes));
    ASSERT_EQ(zone->numNodes, 6);
    EXPECT_EQ(array(zone->zoneNodes, 6), (std::vector<int32_t>{1, 2, 5, 6, 7, 8}));
    ASSERT_NE(zone->nodeNumberMap, nullptr);
    EXPECT_EQ(zone->nodeNumberMap->size(), 6u);
    EXPECT_EQ(zone->nodeNumberMap->at(7), 4);
    for (int32_t k = 0; k < 6; ++k)
        EXPECT_EQ(zone->nodeNumberMap->find(zone->zoneNodes[k]), k);
    EXPECT_EQ(zone->nodeNumberMap->find(3), -1);
    EXPECT_EQ(zone->nodeNumberMap->find(9), -1);
    EXPECT_THROW(zone->nodeNumberMap->at(4), std::out_of_range);
    // Quadrilateral rows; the triangle repeats its last node.
    int32_t hostType = FaceZoneGetZoneType(zone, false);
    ASSERT_EQ(hostType, ZorZoneType_FEQuad);
    std::vector<int64_t> rows(12, -9);
    FaceZoneConnectivityTarget target = {nullptr, rows.data(), true, 4};
    FaceZoneWriteConnectivity(zone, hostType, &target);
    EXPECT_EQ(rows, (std::vector<int64_t>{2, 5, 4, 3, 1, 3, 4, 4, 0, 2, 3, 1}));
    std::vector<int32_t> rows32(12, -9);
    FaceZoneConnectivityTarget target32 = {nullptr, rows32.data(), false, 4};
    FaceZoneWriteConnectivity(zone, hostType, &target32);
    EXPECT_EQ(rows32, (std::vector<int32_t>{2, 5, 4, 3, 1, 3, 4, 4, 0, 2, 3, 1}));
}

// The search a boundary zone's rows take gives the answer of a binary search
// of the whole array, whatever place it starts from: arrays with gaps and
// without, every number in and around them, every hint from below the array
// to beyond it, and queries in order, reversed and scattered with the hint
// carried from one to the next.
TEST(SortedPlaceNearTest, AgreesWithABinarySearchOfTheWholeArray) {
    const auto reference = [](const std::vector<int32_t>& sorted, int32_t node) {
        auto found = std::lower_bound(sorted.begin(), sorted.end(), node);
        return found == sorted.end() || *found != node ? -1 : static_cast<int32_t>(found - sorted.begin());
    };
    std::vector<std::vector<int32_t>> arrays = {{}, {5}, {1, 2}, {3, 9, 10, 40}};
    std::vector<int32_t> gaps;
    std::vector<int32_t> dense;
    for (int32_t k = 0; k < 300; ++k) {
        gaps.push_back(1 + 3 * k + (k * k) % 7);  // ascending, uneven gaps
        dense.push_back(1000 + k);
    }
    arrays.push_back(gaps);
    arrays.push_back(dense);
    int64_t checked = 0;
    for (const std::vector<int32_t>& sorted : arrays) {
        const int32_t count = static_cast<int32_t>(sorted.size());
        const int32_t low = sorted.empty() ? 0 : sorted.front() - 3;
        const int32_t high = sorted.empty() ? 5 : sorted.back() + 3;
        for (int32_t hint = -2; hint <= count + 2; ++hint) {
            for (int32_t node = low; node <= high; ++node) {
                int32_t h = hint;
                const int32_t expected = reference(sorted, node);
                ASSERT_EQ(sortedPlaceNear(sorted.data(), count, node, &h), expected)
                    << "node " << node << " hint " << hint << " of " << count;
                // A hit moves the hint there; a miss leaves it.
                EXPECT_EQ(h, expected >= 0 ? expected : hint);
                ++checked;
            }
        }
        int32_t carried = 0;
        for (int32_t step = 0; step < 3 * (high - low + 1); ++step) {
            const int32_t span = high - low + 1;
            const int32_t node = step < span       ? low + step
                                 : step < 2 * span ? high - (step - span)
                                                   : low + (step * 7919) % span;
            ASSERT_EQ(sortedPlaceNear(sorted.data(), count, node, &carried), reference(sorted, node))
                << "node " << node << " at step " << step;
            ++checked;
        }
    }
    EXPECT_GT(checked, 100000);
}

// Whether every bit of the case's spare numbering block is clear.
bool spareBitsClear(const CaseFile* caseFile) {
    const uint64_t* block = caseFile->nodeBits;
    for (uint64_t w = 0; block != nullptr && w < block[0]; ++w)
        if (block[1 + w] != 0)
            return false;
    return true;
}

TEST_F(AssemblyTest, BoundaryZonesNumberedOneAfterAnotherShareOneClearBlock) {
    bool ok = false;
    // Bottom and top of the cube, then the bottom again with the front.
    CaseFile* caseFile =
        scanBytes(std::string(kCubeNodes) + "(13 (3 1 1 3 4)(\n" + kBottom + "))\n(13 (4 2 2 3 4)(\n" + kTop +
                      "))\n(13 (5 3 4 3 4)(\n" + kBottom + kFront + "))\n",
                  &ok);
    ASSERT_TRUE(ok);
    {
        CaseFileUse use(caseFile);
        ASSERT_TRUE(FaceZoneGetNodeNumbers(&caseFile->faceZones[0], caseFile, caseFile->totalNodes));
        const uint64_t* block = caseFile->nodeBits;
        ASSERT_NE(block, nullptr);
        EXPECT_TRUE(spareBitsClear(caseFile));
        ASSERT_TRUE(FaceZoneGetNodeNumbers(&caseFile->faceZones[1], caseFile, caseFile->totalNodes));
        EXPECT_EQ(caseFile->nodeBits, block);
        EXPECT_TRUE(spareBitsClear(caseFile));
        ASSERT_TRUE(FaceZoneGetNodeNumbers(&caseFile->faceZones[2], caseFile, caseFile->totalNodes));
        EXPECT_TRUE(spareBitsClear(caseFile));
        // No node of one zone is left over for the next.
        EXPECT_EQ(array(caseFile->faceZones[0].zoneNodes, caseFile->faceZones[0].numNodes),
                  (std::vector<int32_t>{1, 2, 3, 4}));
        EXPECT_EQ(array(caseFile->faceZones[1].zoneNodes, caseFile->faceZones[1].numNodes),
                  (std::vector<int32_t>{5, 6, 7, 8}));
        EXPECT_EQ(array(caseFile->faceZones[2].zoneNodes, caseFile->faceZones[2].numNodes),
                  (std::vector<int32_t>{1, 2, 3, 4, 5, 6}));
    }
    // The block goes with the other bulk arrays when the last user leaves.
    EXPECT_EQ(caseFile->nodeBits, nullptr);
}

TEST_F(AssemblyTest, BoundaryNumberingsOnTwoThreadsEachGetTheirOwnNodes) {
    // Zones numbered at the same time: one takes the case's block, the other
    // a fresh one; one block is kept, and every zone gets its own nodes.
    std::string body = kCubeNodes;
    const char* faces[] = {kBottom, kTop, kFront, kBack, kLeft, kRight};
    for (int z = 0; z < 6; ++z)
        body += "(13 (" + std::to_string(3 + z) + " " + std::to_string(z + 1) + " " + std::to_string(z + 1) +
                " 3 4)(\n" + faces[z] + "))\n";
    bool ok = false;
    CaseFile* caseFile = scanBytes(body, &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    for (int round = 0; round < 20; ++round) {
        for (int z = 0; z < 6; ++z) {
            FaceZone* zone = &caseFile->faceZones[z];
            free(zone->zoneNodes);
            zone->zoneNodes = nullptr;
            delete zone->nodeNumberMap;
            zone->nodeNumberMap = nullptr;
            ASSERT_TRUE(zone->faceCells != nullptr || CaseFileLoadFaceZone(caseFile, zone));
        }
        bool results[6] = {};
        std::thread other([&] {
            for (int z = 1; z < 6; z += 2)
                results[z] = FaceZoneGetNodeNumbers(&caseFile->faceZones[z], caseFile, caseFile->totalNodes);
        });
        for (int z = 0; z < 6; z += 2)
            results[z] = FaceZoneGetNodeNumbers(&caseFile->faceZones[z], caseFile, caseFile->totalNodes);
        other.join();
        for (int z = 0; z < 6; ++z) {
            ASSERT_TRUE(results[z]);
            const FaceZone* zone = &caseFile->faceZones[z];
            std::vector<int32_t> expected;
            std::istringstream row(faces[z]);
            for (int k = 0; k < 4; ++k) {
                int32_t node = 0;
                row >> node;
                expected.push_back(node);
            }
            std::sort(expected.begin(), expected.end());
            EXPECT_EQ(array(zone->zoneNodes, zone->numNodes), expected) << z;
        }
        EXPECT_NE(caseFile->nodeBits, nullptr);
        EXPECT_TRUE(spareBitsClear(caseFile));
    }
}

TEST_F(AssemblyTest, BoundaryZoneWithoutFacesHasNoNodes) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(std::string(kCubeNodes) + "(13 (3 5 4 3 4)())\n", &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    EXPECT_FALSE(FaceZoneGetNodeNumbers(&caseFile->faceZones[0], caseFile, caseFile->totalNodes));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"Zone ID 3 in file '" +
                                                       std::string(caseFile->fileName) + "' has no nodes."});
}

TEST_F(AssemblyTest, PolygonZoneNumbersNodesInOrderOfFirstSight) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(
        std::string(kCubeNodes) + "(13 (3 1 2 3 5)(\n5 7 3 8 1 2 1 0\n3 8 6 3 1 0\n))\n(13 (4 3 2 3 5)())\n",
        &ok);
    ASSERT_TRUE(ok);
    CaseFileUse use(caseFile);
    FaceZone* zone = &caseFile->faceZones[0];
    ASSERT_TRUE(FaceZoneGetNodeNumsForPoly(zone, caseFile, caseFile->totalNodes));
    ASSERT_EQ(zone->numNodes, 6);
    EXPECT_EQ(array(zone->zoneNodes, 6), (std::vector<int32_t>{7, 3, 8, 1, 2, 6}));
    EXPECT_EQ(zone->nodeNumberMap->at(6), 5);
    EXPECT_EQ(zone->nodeNumberMap->at(7), 0);
    // The map answers every node, though they are not in ascending order.
    ASSERT_EQ(zone->nodeNumberMap->size(), 6u);
    for (int32_t k = 0; k < 6; ++k)
        EXPECT_EQ(zone->nodeNumberMap->at(zone->zoneNodes[k]), k);
    EXPECT_EQ(zone->nodeNumberMap->find(4), -1);
    // No nodes at all is no error here.
    ASSERT_TRUE(FaceZoneGetNodeNumsForPoly(&caseFile->faceZones[1], caseFile, caseFile->totalNodes));
    EXPECT_EQ(caseFile->faceZones[1].numNodes, 0);
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(AssemblyTest, CornersPerHostZoneType) {
    EXPECT_EQ(nodesPerCellOfHostZoneType(1), 3);
    EXPECT_EQ(nodesPerCellOfHostZoneType(2), 4);
    EXPECT_EQ(nodesPerCellOfHostZoneType(3), 4);
    EXPECT_EQ(nodesPerCellOfHostZoneType(4), 8);
    EXPECT_EQ(nodesPerCellOfHostZoneType(5), 2);
    EXPECT_EQ(nodesPerCellOfHostZoneType(6), 0);
}

}  // namespace
}  // namespace casefile_test
