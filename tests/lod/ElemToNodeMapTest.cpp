// Element-to-node maps of classic zones, loaded on demand: cell zones
// assembled from faces, boundary zones from their own faces.
#include "lod/ClassicElemToNodeMapLOD.h"

#include <algorithm>

#include "lod/LodTestSupport.h"
#include "lod/SmallCases.h"

namespace {

using namespace lodtest;
using zorvane::zorutildataio::ClassicElemToNodeMapLOD;

class ElemToNodeMap : public LoadTest {};

void replaceOnce(std::string& text, const std::string& from, const std::string& to) {
    const size_t at = text.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    text.replace(at, from.size(), to);
}

TEST_F(ElemToNodeMap, CellZoneIsAssembledFromTheFacesAndBoundaryZonesAreTheirFaces) {
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    const auto cells = nodeMap(kSquareFluid);
    ASSERT_EQ(cells.size(), 2u);
    // Each triangle holds its three nodes once (zone nodes 1-4 are global nodes 1-4).
    for (const auto& cell : cells) {
        EXPECT_EQ(cell.size(), 3u);
        std::vector<int64_t> sorted = cell;
        std::sort(sorted.begin(), sorted.end());
        EXPECT_TRUE(std::unique(sorted.begin(), sorted.end()) == sorted.end());
    }
    std::vector<int64_t> first = cells[0], second = cells[1];
    std::sort(first.begin(), first.end());
    std::sort(second.begin(), second.end());
    EXPECT_EQ(first, (std::vector<int64_t>{1, 2, 3}));
    EXPECT_EQ(second, (std::vector<int64_t>{1, 3, 4}));
    // The wall's faces 1-2 and 2-3 over its zone nodes 1, 2, 3.
    EXPECT_EQ(nodeMap(kSquareWall), (std::vector<std::vector<int64_t>>{{1, 2}, {2, 3}}));
    EXPECT_EQ(nodeMap(kSquareAxis), (std::vector<std::vector<int64_t>>{{1, 2}}));
    EXPECT_TRUE(shown().empty());
    EXPECT_EQ(lastCaseFile()->useCount, 3);
}

TEST_F(ElemToNodeMap, BoundaryZoneIsWrittenTheSameWithoutRawPointers) {
    minihost::setRawPointersOffered(false);
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    EXPECT_EQ(nodeMap(kSquareWall), (std::vector<std::vector<int64_t>>{{1, 2}, {2, 3}}));
    EXPECT_EQ(nodeMap(kSquareFluid).size(), 2u);
}

TEST_F(ElemToNodeMap, BoundaryZoneIsWrittenTheSameIntoWideMaps) {
    minihost::setWideNodeMaps(true);
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    EXPECT_EQ(nodeMap(kSquareWall), (std::vector<std::vector<int64_t>>{{1, 2}, {2, 3}}));
}

TEST_F(ElemToNodeMap, CellZoneIsWrittenTheSameIntoWideMaps) {
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    const std::vector<std::vector<int64_t>> narrow = nodeMap(kSquareFluid);
    ASSERT_EQ(narrow.size(), 2u);
    dropEverything();
    minihost::setWideNodeMaps(true);
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    EXPECT_EQ(nodeMap(kSquareFluid), narrow);
}

TEST_F(ElemToNodeMap, FaceWithoutNodesLeavesItsSlotsUnsetAndTheBoundaryLoadFails) {
    // A mixed wall zone whose second face has no nodes (a count of 0).
    std::string text = squareCase();
    replaceOnce(text, "(13 (4 2 3 3 2)(\n1 2 1 0\n2 3 1 0\n))", "(13 (4 2 3 3 0)(\n2 1 2 1 0\n0 1 0\n))");
    ASSERT_TRUE(loadCase(write("square.cas", text)));
    CaseFile* caseFile = lastCaseFile();
    EXPECT_TRUE(nodeMap(kSquareWall).empty());
    EXPECT_EQ(shown(),
              (std::vector<Shown>{{"error",
                                   "Error assembling faces (connectivity index 1 of cell 2 not set). "
                                   "Face list may be incomplete."}}));
    EXPECT_EQ(caseFile->useCount, 0);
    EXPECT_EQ(minihost::nodeMapStats(kSquareWall).failedLoads, 1);
}

TEST_F(ElemToNodeMap, CellThatNoFaceCompletesLoadsWithoutAMessageAndKeepsUnsetSlots) {
    // Without the interior face and with a cell-less outlet face, cell 2 sees
    // only the axis face: its third corner stays unset.
    std::string text = squareCase();
    replaceOnce(text, "(13 (3 1 1 2 2)(\n1 3 2 1\n))\n", "");
    replaceOnce(text, "4 1 2 0", "4 1 0 0");
    ASSERT_TRUE(loadCase(write("square.cas", text)));
    const auto cells = nodeMap(kSquareFluid);
    ASSERT_EQ(cells.size(), 2u);
    EXPECT_TRUE(shown().empty());
    size_t unset = 0;
    for (const auto& cell : cells)
        unset += static_cast<size_t>(std::count(cell.begin(), cell.end(), UNSET_NODE));
    EXPECT_GT(unset, 0u);
    EXPECT_EQ(lastCaseFile()->useCount, 1);
}

TEST_F(ElemToNodeMap, SecondLoadAfterAnUnloadRebuildsTheNumbering) {
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    CaseFile* caseFile = lastCaseFile();
    const auto cells = nodeMap(kSquareFluid);
    const auto wall = nodeMap(kSquareWall);
    ASSERT_TRUE(minihost::unloadNodeMap(kSquareFluid));
    ASSERT_TRUE(minihost::unloadNodeMap(kSquareWall));
    EXPECT_EQ(caseFile->useCount, 0);
    EXPECT_EQ(caseFile->cellZones[0].oldToNewNodes, nullptr);
    EXPECT_EQ(caseFile->faceZones[1].zoneNodes, nullptr);
    EXPECT_EQ(nodeMap(kSquareWall), wall);
    EXPECT_EQ(nodeMap(kSquareFluid), cells);
    EXPECT_NE(caseFile->cellZones[0].oldToNewNodes, nullptr);
    EXPECT_EQ(caseFile->useCount, 2);
}

TEST_F(ElemToNodeMap, DestructorOfANeverLoadedObjectLeavesTheUseCountAlone) {
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    CaseFile* caseFile = lastCaseFile();
    values(kSquareFluid, var("X"));
    ASSERT_EQ(caseFile->useCount, 1);
    { ClassicElemToNodeMapLOD object(lastSolution()->solutionId, 0, 0, -1, 2, 4); }
    EXPECT_EQ(caseFile->useCount, 1);
    // A loaded one gives its use back.
    nodeMap(kSquareFluid);
    ASSERT_EQ(caseFile->useCount, 2);
    minihost::deleteDataSet();
    EXPECT_EQ(caseFile->useCount, 0);
}

TEST_F(ElemToNodeMap, HostRefusingTheRegistrationDestroysTheObject) {
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    // The zone has its loader already: a second registration is refused.
    EXPECT_FALSE(ClassicElemToNodeMapLOD::create(lastSolution()->solutionId, 0, 0, -1, 2, 4, kSquareFluid));
}

}  // namespace
