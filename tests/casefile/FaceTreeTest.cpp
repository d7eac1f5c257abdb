// Face trees and child faces: parsing at scan time, loading, linking, and the
// marks that hide a parent face from fine cells and child faces from the
// coarse cell.
#include "CaseFileTestSupport.h"

namespace casefile_test {
namespace {

class FaceTreeTest : public CaseFileTest {
  protected:
    static std::vector<int32_t> array(const int32_t* data, size_t n) {
        return std::vector<int32_t>(data, data + n);
    }
    static std::vector<int32_t> cellsOf(const FaceZone& zone) {
        return array(zone.faceCells, 2 * static_cast<size_t>(zone.lastIndex - zone.firstIndex + 1));
    }
};

const char* kNodes2D = "(2 2)\n(10 (1 1 6 1 2)(0 0 1 0 2 0 0 1 1 1 2 1))\n";

// ---- Face Tree sections ---------------------------------------------------------------------------

TEST_F(FaceTreeTest, TreeIsReadWholeAtScanTime) {
    bool ok = false;
    CaseFile* caseFile =
        scanBytes(std::string(kNodes2D) + "(59 (1 3 1 2)(\n2 4 5\n0\n1 6\n))\n(12 (1 1 2 1 3))\n", &ok);
    ASSERT_TRUE(ok);
    ASSERT_EQ(caseFile->numFaceTrees, 1);
    const FaceTree& tree = caseFile->faceTrees[0];
    EXPECT_EQ(tree.sectionId, 59);
    EXPECT_EQ(tree.firstIndex, 1);
    EXPECT_EQ(tree.lastIndex, 3);
    EXPECT_EQ(tree.parentZoneId, 1);
    EXPECT_EQ(tree.childZoneId, 2);
    EXPECT_EQ(tree.maxChildren, 2);
    EXPECT_EQ(array(tree.children, 6), (std::vector<int32_t>{4, 5, 0, 0, 6, 0}));
    EXPECT_NE(tree.filePosition, 0);
    EXPECT_EQ(caseFile->numCellZones, 1);
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(FaceTreeTest, TwoDimensionalTreeWithThreeChildren) {
    bool ok = true;
    scanBytes(std::string(kNodes2D) + "(59 (1 1 1 2)(3 4 5 6))\n", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(
        messageTexts(),
        texts(
            {"Error reading Face Tree section (Section 59). Bad number of child faces: 3 (expected <= 2)."}));
}

TEST_F(FaceTreeTest, TreeAheadOfDimensionsTakesFourChildren) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(59 (1 1 1 2)(3 4 5 6))\n(2 2)\n", &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(caseFile->numDimensions, 2);
    EXPECT_EQ(caseFile->faceTrees[0].maxChildren, 4);
    EXPECT_EQ(array(caseFile->faceTrees[0].children, 4), (std::vector<int32_t>{4, 5, 6, 0}));
}

TEST_F(FaceTreeTest, HeaderChecks) {
    struct Case {
        const char* section;
        const char* message;
    } cases[] = {
        {"(59 (1 2 3))", "Parse error while reading ParseFaceTree section (section 59)."},
        {"(59 (5 4 1 2)())", "FirstIndex (5) > LastIndex (4) in Face Tree section (Section 59)"},
        {"(59 (1 1 -1 2)(1 4))", "ParentZoneID (-1) < 0 in Face Tree section (Section 59)"},
        {"(59 (1 1 1 -2)(1 4))", "ChildZoneID (-2) < 0 in Face Tree section (Section 59)"},
        {"(59 (1 1 1 2)", "Opening parenthesis not found while reading Face Tree section (Section 59)."},
    };
    for (const Case& c : cases) {
        minihost::clearMessages();
        bool ok = true;
        scanBytes(std::string("(2 3)\n") + c.section + "\n", &ok);
        EXPECT_FALSE(ok) << c.section;
        EXPECT_EQ(messageTexts(), texts({c.message})) << c.section;
    }
}

TEST_F(FaceTreeTest, BinaryTreeWithAnOverflowingCount) {
    CaseBytes file;
    file.text("(2 3)\n(4 (60 0 0 1 2 8 4 4 8 4 4))\n");
    file.text("(2059 (1 1 1 2)\n(").i64(0x100000002LL).i64(3).i64(4).endBinary(2059);
    bool ok = true;
    scanBytes(file.bytes(), &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), texts({"Number overflow while reading Face Tree section (section 2059)."}));
}

TEST_F(FaceTreeTest, BinaryTree) {
    CaseBytes file;
    file.text("(2 3)\n").text(kMachineConfig);
    file.text("(3059 (7 8 1 2)\n(").i32s({4, 10, 11, 12, 13, 2, 14, 15}).endBinary(3059);
    file.text("(12 (1 1 2 1 4))\n");
    bool ok = false;
    CaseFile* caseFile = scanBytes(file.bytes(), &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(array(caseFile->faceTrees[0].children, 8),
              (std::vector<int32_t>{10, 11, 12, 13, 14, 15, 0, 0}));
    EXPECT_EQ(caseFile->numCellZones, 1);
    // Released and read again from its position.
    { CaseFileUse use(caseFile); }
    EXPECT_EQ(caseFile->faceTrees[0].children, nullptr);
    ASSERT_TRUE(CaseFileLoadFaceTree(caseFile, &caseFile->faceTrees[0]));
    EXPECT_EQ(array(caseFile->faceTrees[0].children, 8),
              (std::vector<int32_t>{10, 11, 12, 13, 14, 15, 0, 0}));
}

TEST_F(FaceTreeTest, FindTreesByZone) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(std::string(kNodes2D) +
                                       "(13 (1 1 1 2 2)(1 2 1 2))\n(13 (2 2 3 2 2)(1 2 1 2 2 3 1 2))\n"
                                       "(59 (1 1 1 2)(2 2 3))\n(59 (2 2 2 9)(1 3))\n",
                                   &ok);
    ASSERT_TRUE(ok);
    int32_t tree = -1, other = -1;
    EXPECT_TRUE(FindFaceTreeByParentZone(caseFile, 1, &tree, &other));
    EXPECT_EQ(tree, 0);
    EXPECT_EQ(other, 1);
    tree = -1;
    other = -1;
    EXPECT_TRUE(FindFaceTreeByChildZone(caseFile, 2, &tree, &other));
    EXPECT_EQ(tree, 0);
    EXPECT_EQ(other, 0);
    // A tree whose other zone does not exist: only the tree index is given.
    tree = -1;
    other = -1;
    EXPECT_TRUE(FindFaceTreeByParentZone(caseFile, 2, &tree, &other));
    EXPECT_EQ(tree, 1);
    EXPECT_EQ(other, -1);
    EXPECT_FALSE(FindFaceTreeByChildZone(caseFile, 5, &tree, &other));
}

// ---- Child Faces sections ------------------------------------------------------------------------------

TEST_F(FaceTreeTest, ChildFacesAreRecordedAndLoadedSorted) {
    bool ok = false;
    CaseFile* caseFile =
        scanBytes(std::string(kNodes2D) +
                      "(13 (1 1 2 2 2)(1 2 1 0 2 3 1 0))\n(13 (2 3 5 2 2)(1 2 1 0 2 3 1 0 3 4 1 0))\n"
                      "(62 (2 1 3)(5 2 3 1 4 1))\n",
                  &ok);
    ASSERT_TRUE(ok);
    ASSERT_EQ(caseFile->numChildFaces, 1);
    ChildFace* record = &caseFile->childFaces[0];
    EXPECT_EQ(record->sectionId, 62);
    // Only the position is kept at scan time.
    EXPECT_EQ(record->childZoneId, 0);
    EXPECT_EQ(record->parentZoneId, 0);
    EXPECT_EQ(record->pairCount, 0);
    EXPECT_EQ(record->pairs, nullptr);
    ASSERT_TRUE(CaseFileStoreFaceTreeChildren(caseFile));
    EXPECT_EQ(record->childZoneId, 2);
    EXPECT_EQ(record->parentZoneId, 1);
    EXPECT_EQ(record->pairCount, 3);
    EXPECT_EQ(array(record->pairs, 6), (std::vector<int32_t>{3, 1, 4, 1, 5, 2}));
    EXPECT_EQ(caseFile->faceZones[1].childFaceIndex, 0);
    EXPECT_EQ(caseFile->faceZones[0].childFaceIndex, -1);
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(FaceTreeTest, BinaryChildFaces) {
    CaseBytes file;
    file.text("(2 2)\n").text(kMachineConfig);
    file.text("(13 (1 1 2 2 2)(1 2 1 0 2 3 1 0))\n(13 (2 3 4 2 2)(1 2 1 0 2 3 1 0))\n");
    file.text("(2062 (2 1 2)\n(").i32s({4, 2, 3, 1}).endBinary(2062);
    file.text("(12 (1 1 1 1 3))\n");
    bool ok = false;
    CaseFile* caseFile = scanBytes(file.bytes(), &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(caseFile->numCellZones, 1);
    ASSERT_TRUE(CaseFileStoreFaceTreeChildren(caseFile));
    EXPECT_EQ(array(caseFile->childFaces[0].pairs, 4), (std::vector<int32_t>{3, 1, 4, 2}));
}

TEST_F(FaceTreeTest, ChildFacesHeaderChecks) {
    struct Case {
        const char* section;
        const char* message;
    } cases[] = {
        {"(62 (1 2))", "Parse error while reading ParseChildFaces section (section 62)."},
        {"(62 (-1 2 0)())", "ChildZoneID (-1) < 0 in Child Face section (Section 62)"},
        {"(62 (1 -2 0)())", "ParentZoneID (-2) < 0 in Child Face section (Section 62)"},
        {"(62 (1 2 -3)())", "PairCount (-3) < 0 in Child Face section (Section 62)"},
        {"(62 (1 2 1)", "Opening parenthesis not found while reading Child Face section (Section 62)."},
    };
    for (const Case& c : cases) {
        minihost::clearMessages();
        bool ok = true;
        scanBytes(std::string("(2 3)\n") + c.section + "\n", &ok);
        EXPECT_FALSE(ok) << c.section;
        EXPECT_EQ(messageTexts(), texts({c.message})) << c.section;
    }
}

TEST_F(FaceTreeTest, OnlyTheFirstChildFaceRecordTellsWhetherPairsAreLoaded) {
    bool ok = false;
    CaseFile* caseFile =
        scanBytes(std::string(kNodes2D) +
                      "(13 (1 1 2 2 2)(1 2 1 0 2 3 1 0))\n(13 (2 3 4 2 2)(1 2 1 0 2 3 1 0))\n"
                      "(13 (3 5 6 2 2)(1 2 1 0 2 3 1 0))\n"
                      "(62 (2 1 1)(3 1))\n(62 (3 1 1)(5 2))\n",
                  &ok);
    ASSERT_TRUE(ok);
    FILE* stream = fopen(caseFile->fileName, "rb");
    ASSERT_NE(stream, nullptr);
    ASSERT_TRUE(caseFileReadChildFace(stream, &caseFile->machineConfig, &caseFile->childFaces[0]));
    fclose(stream);
    EXPECT_TRUE(CaseFileStoreFaceTreeChildren(caseFile));
    EXPECT_EQ(caseFile->childFaces[1].pairs, nullptr);
    EXPECT_EQ(caseFile->faceZones[1].childFaceIndex, -1);  // no linking either
}

TEST_F(FaceTreeTest, ChildFacesOfAMissingChildZoneAreReportedTwice) {
    bool ok = false;
    CaseFile* caseFile =
        scanBytes(std::string(kNodes2D) + "(13 (1 1 2 2 2)(1 2 1 0 2 3 1 0))\n(62 (7 1 1)(3 1))\n", &ok);
    ASSERT_TRUE(ok);
    EXPECT_FALSE(CaseFileStoreFaceTreeChildren(caseFile));
    const std::string message =
        "Error tracking parent-child face relationships.\nParent zone #1, Child zone #7.";
    EXPECT_EQ(messageTexts(), (std::vector<std::string>{message, message}));
}

TEST_F(FaceTreeTest, ChildFacesOfAMissingParentZoneAreReportedOnce) {
    bool ok = false;
    CaseFile* caseFile =
        scanBytes(std::string(kNodes2D) + "(13 (1 1 2 2 2)(1 2 1 0 2 3 1 0))\n(62 (1 8 1)(1 3))\n", &ok);
    ASSERT_TRUE(ok);
    EXPECT_FALSE(CaseFileStoreFaceTreeChildren(caseFile));
    EXPECT_EQ(messageTexts(),
              texts({"Error tracking parent-child face relationships.\nParent zone #8, Child zone #1."}));
}

// ---- Marking faceCells ------------------------------------------------------------------------------------

TEST_F(FaceTreeTest, MarksFollowTheFirstFittingRule) {
    // Parent faces 1 to 4 (zone 1), child faces 5 to 12 (zone 2), two per parent.
    bool ok = false;
    CaseFile* caseFile = scanBytes(std::string(kNodes2D) +
                                       "(13 (1 1 4 2 2)(\n"
                                       "1 2 1 2\n"  // parent 1: P0 1, P1 2
                                       "1 2 1 2\n"  // parent 2: P0 1, P1 2
                                       "1 2 3 0\n"  // parent 3: on a boundary, P1 0
                                       "1 2 1 2\n))\n"
                                       "(13 (2 5 c 2 2)(\n"
                                       "1 2 1 5\n"  // C0 == P0: C0 negated, P1 made negative
                                       "1 2 1 6\n"  // again: P1 stays negative
                                       "1 2 2 7\n"  // C0 == P1: C0 negated, P0 made negative
                                       "1 2 8 2\n"  // C1 == P1 (P0 is marked by now): C1 negated
                                       "1 2 3 0\n"  // C0 == P0 on the boundary: P1 stays 0
                                       "1 2 7 0\n"  // C1 == P1, both 0: C1 stays 0, P0 made negative
                                       "1 2 9 9\n"  // none fits
                                       "1 2 9 9\n))\n"
                                       "(59 (1 4 1 2)(2 5 6 2 7 8 2 9 a 2 b c))\n",
                                   &ok);
    ASSERT_TRUE(ok);
    ASSERT_TRUE(CaseFileTrackParentChildFaces(caseFile));
    EXPECT_TRUE(messageTexts().empty());
    EXPECT_EQ(cellsOf(caseFile->faceZones[0]), (std::vector<int32_t>{1, -2, -1, 2, -3, 0, 1, 2}));
    EXPECT_EQ(cellsOf(caseFile->faceZones[1]),
              (std::vector<int32_t>{-1, 5, -1, 6, -2, 7, 8, -2, -3, 0, 7, 0, 9, 9, 9, 9}));
}

TEST_F(FaceTreeTest, MarkedInteriorFacesCompareUnequalOnASecondRun) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(std::string(kNodes2D) +
                                       "(13 (1 1 2 2 2)(1 2 1 2 1 2 3 4))\n"
                                       "(13 (2 3 6 2 2)(1 2 1 5 1 2 6 1 1 2 4 7 1 2 8 4))\n"
                                       "(59 (1 2 1 2)(2 3 4 2 5 6))\n",
                                   &ok);
    ASSERT_TRUE(ok);
    ASSERT_TRUE(CaseFileTrackParentChildFaces(caseFile));
    const std::vector<int32_t> parents = {1, -2, -3, 4};
    const std::vector<int32_t> children = {-1, 5, 6, -1, -4, 7, 8, -4};
    EXPECT_EQ(cellsOf(caseFile->faceZones[0]), parents);
    EXPECT_EQ(cellsOf(caseFile->faceZones[1]), children);
    ASSERT_TRUE(CaseFileTrackParentChildFaces(caseFile));
    EXPECT_EQ(cellsOf(caseFile->faceZones[0]), parents);
    EXPECT_EQ(cellsOf(caseFile->faceZones[1]), children);
}

TEST_F(FaceTreeTest, ChildFaceInAThirdZoneIsFound) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(std::string(kNodes2D) +
                                       "(13 (1 1 1 2 2)(1 2 1 2))\n(13 (2 2 2 2 2)(1 2 4 4))\n"
                                       "(13 (3 3 4 2 2)(1 2 1 5 1 2 1 6))\n(59 (1 1 1 2)(2 3 4))\n",
                                   &ok);
    ASSERT_TRUE(ok);
    ASSERT_TRUE(CaseFileTrackParentChildFaces(caseFile));
    EXPECT_TRUE(messageTexts().empty());
    EXPECT_EQ(cellsOf(caseFile->faceZones[2]), (std::vector<int32_t>{-1, 5, -1, 6}));
    EXPECT_EQ(cellsOf(caseFile->faceZones[0]), (std::vector<int32_t>{1, -2}));
    EXPECT_NE(caseFile->faceZones[2].faceCells, nullptr);
}

TEST_F(FaceTreeTest, TreeWithOneZoneForParentsAndChildren) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(
        std::string(kNodes2D) + "(13 (1 1 3 2 2)(1 2 1 2 1 2 1 3 1 2 1 4))\n(59 (1 1 1 1)(2 2 3))\n", &ok);
    ASSERT_TRUE(ok);
    ASSERT_TRUE(CaseFileTrackParentChildFaces(caseFile));
    EXPECT_EQ(cellsOf(caseFile->faceZones[0]), (std::vector<int32_t>{1, -2, -1, 3, -1, 4}));
}

TEST_F(FaceTreeTest, TrackingErrors) {
    struct Case {
        const char* tree;
        const char* message;
    } cases[] = {
        {"(59 (1 1 7 2)(1 3))", "Bad parent face zone ID (7) in face tree section."},
        {"(59 (1 1 1 7)(1 3))", "Bad child face zone ID (7) in face tree section."},
        {"(59 (3 3 1 2)(1 3))",
         "Error in Face Tree section -- Parent face 3 is out of the range of faces in parent face zone 1."},
        {"(59 (1 1 1 2)(2 3 63))",
         "Error in Face Tree section -- Child face 99 is out of the range of faces in child face zone 2 and "
         "parent "
         "face zone 1."},
    };
    for (const Case& c : cases) {
        minihost::clearMessages();
        bool ok = false;
        CaseFile* caseFile = scanBytes(
            std::string(kNodes2D) + "(13 (1 1 2 2 2)(1 2 1 2 2 3 1 0))\n(13 (2 3 4 2 2)(1 2 1 3 2 3 1 4))\n" +
                c.tree + "\n",
            &ok);
        ASSERT_TRUE(ok) << c.tree;
        EXPECT_FALSE(CaseFileTrackParentChildFaces(caseFile)) << c.tree;
        EXPECT_EQ(messageTexts(), texts({c.message})) << c.tree;
    }
}

TEST_F(FaceTreeTest, MarksComeBackWithTheFacesAfterARelease) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(std::string(kNodes2D) +
                                       "(13 (1 1 1 2 2)(1 2 1 2))\n(13 (2 2 3 2 2)(1 2 1 3 2 3 1 4))\n"
                                       "(59 (1 1 1 2)(2 2 3))\n",
                                   &ok);
    ASSERT_TRUE(ok);
    {
        CaseFileUse use(caseFile);
        ASSERT_TRUE(CaseFileTrackParentChildFaces(caseFile));
    }
    EXPECT_EQ(caseFile->faceZones[0].faceCells, nullptr);
    EXPECT_EQ(caseFile->faceTrees[0].children, nullptr);
    {
        CaseFileUse use(caseFile);
        ASSERT_TRUE(CaseFileTrackParentChildFaces(caseFile));
        EXPECT_EQ(cellsOf(caseFile->faceZones[0]), (std::vector<int32_t>{1, -2}));
        EXPECT_EQ(cellsOf(caseFile->faceZones[1]), (std::vector<int32_t>{-1, 3, -1, 4}));
    }
}

}  // namespace
}  // namespace casefile_test
