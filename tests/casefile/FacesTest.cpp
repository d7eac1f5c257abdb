// Faces sections: what the scan records or reads, the classic arrays, the
// polygon arrays, and every message of a damaged body.
#include <filesystem>
#include <random>

#include "CaseFileTestSupport.h"

namespace casefile_test {
namespace {

class FacesTest : public CaseFileTest {
  protected:
    static std::vector<int32_t> array(const int32_t* data, size_t n) {
        return std::vector<int32_t>(data, data + n);
    }
};

TEST_F(FacesTest, MixedZoneOfTrianglesAndQuadrilaterals) {
    bool ok = false;
    CaseFile* caseFile =
        scanBytes("(2 3)\n(13 (1 1 3 2 0)(\n3 1 2 3 1 2\n4 1 2 3 4 1 0\n3 2 3 4 2 0\n))\n", &ok);
    ASSERT_TRUE(ok);
    FaceZone* zone = &caseFile->faceZones[0];
    EXPECT_EQ(zone->faceCells, nullptr);
    ASSERT_TRUE(CaseFileLoadFaceZone(caseFile, zone));
    EXPECT_EQ(zone->faceType, 0);
    EXPECT_EQ(array(zone->faceNodeCounts, 3), (std::vector<int32_t>{3, 4, 3}));
    EXPECT_EQ(array(zone->faceNodes, 12), (std::vector<int32_t>{1, 2, 3, 0, 1, 2, 3, 4, 2, 3, 4, 0}));
    EXPECT_EQ(array(zone->faceCells, 6), (std::vector<int32_t>{1, 2, 1, 0, 2, 0}));
    EXPECT_EQ(array(zone->faceConnectivity, 6), (std::vector<int32_t>(6, 0)));
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(FacesTest, MixedZoneWithAHexagonAtItsLastFaceBecomesAPolygonZone) {
    bool ok = false;
    CaseFile* caseFile =
        scanBytes("(2 3)\n(13 (1 1 3 2 0)(\n3 1 2 3 1 2\n4 1 2 3 4 1 0\n6 5 6 7 8 9 a 2 0\n))\n", &ok);
    ASSERT_TRUE(ok);
    FaceZone* zone = &caseFile->faceZones[0];
    ASSERT_TRUE(CaseFileLoadFaceZone(caseFile, zone));
    EXPECT_EQ(zone->faceType, 5);
    EXPECT_EQ(zone->faceNodes, nullptr);
    EXPECT_EQ(zone->faceCells, nullptr);
    EXPECT_EQ(zone->faceNodeCounts, nullptr);
    ASSERT_EQ(zone->numPolyFaces, 3);
    ASSERT_EQ(zone->numPolyFaceNodes, 13);
    EXPECT_EQ(array(zone->polyOffsets, 4), (std::vector<int32_t>{0, 3, 7, 13}));
    EXPECT_EQ(array(zone->polyNodes, 13), (std::vector<int32_t>{1, 2, 3, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(array(zone->polyCell0, 3), (std::vector<int32_t>{1, 1, 2}));
    EXPECT_EQ(array(zone->polyCell1, 3), (std::vector<int32_t>{2, 0, 0}));
    EXPECT_EQ(zone->minCell, 1);
    EXPECT_EQ(zone->maxCell, 2);
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(FacesTest, FaceWithNodeNumberZero) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(13 (1 1 3 2 3)(\n1 2 3 1 2\n2 3 4 1 0\n5 0 6 2 0\n))\n", &ok);
    ASSERT_TRUE(ok);
    EXPECT_FALSE(CaseFileLoadFaceZone(caseFile, &caseFile->faceZones[0]));
    EXPECT_EQ(messageTexts(),
              texts({"Bad node number 0 for node 2 of face #3 in Faces section (Section 13)."}));
}

TEST_F(FacesTest, EmptyFaceOfAMixedZoneReadAsPolygonsKeepsItsCells) {
    bool ok = false;
    CaseFile* caseFile =
        scanBytes("(2 3)\n(13 (4 1 3 2 0)(\n5 1 2 3 4 5 1 0\n0 7 8\n3 2 3 4 3 0\n))\n", &ok, true);
    ASSERT_TRUE(ok);
    FaceZone* zone = &caseFile->faceZones[0];
    // Read as polygons at scan time.
    ASSERT_NE(zone->polyNodes, nullptr);
    EXPECT_EQ(array(zone->polyOffsets, 4), (std::vector<int32_t>{0, 5, 5, 8}));
    EXPECT_EQ(array(zone->polyNodes, 8), (std::vector<int32_t>{1, 2, 3, 4, 5, 2, 3, 4}));
    EXPECT_EQ(array(zone->polyCell0, 3), (std::vector<int32_t>{1, 7, 3}));
    EXPECT_EQ(array(zone->polyCell1, 3), (std::vector<int32_t>{0, 8, 0}));
    EXPECT_EQ(PolyFaceGetNodeCount(nullptr, &caseFile->machineConfig, zone, 1, false), 0);
    EXPECT_EQ(PolyFaceGetNodeCount(nullptr, &caseFile->machineConfig, zone, 0, false), 5);
    EXPECT_EQ(zone->minCell, 1);
    EXPECT_EQ(zone->maxCell, 8);
}

TEST_F(FacesTest, PolygonCellRange) {
    bool ok = false;
    CaseFile* caseFile =
        scanBytes("(2 3)\n(13 (4 1 3 2 5)(\n3 1 2 3 5 0\n3 1 2 3 0 7\n4 1 2 3 4 2 9\n))\n", &ok);
    ASSERT_TRUE(ok);
    FaceZone* zone = &caseFile->faceZones[0];
    // The first face has a cell on one side only: both extremes start at it.
    EXPECT_EQ(zone->minCell, 2);
    EXPECT_EQ(zone->maxCell, 9);
    EXPECT_EQ(zone->numPolyFaceNodes, 10);
}

TEST_F(FacesTest, LineZoneStaysClassicWhenAllZonesArePolyhedral) {
    bool ok = false;
    CaseFile* caseFile =
        scanBytes("(2 2)\n(13 (1 1 2 3 2)(1 2 1 0 2 3 1 0))\n(13 (2 3 3 3 3)(1 2 3 1 0))\n", &ok, true);
    ASSERT_TRUE(ok);
    EXPECT_EQ(caseFile->faceZones[0].polyNodes, nullptr);
    EXPECT_NE(caseFile->faceZones[1].polyNodes, nullptr);  // a triangle zone reads as polygons
    ASSERT_TRUE(CaseFileLoadFaceZone(caseFile, &caseFile->faceZones[0]));
    EXPECT_EQ(array(caseFile->faceZones[0].faceNodes, 4), (std::vector<int32_t>{1, 2, 2, 3}));
}

TEST_F(FacesTest, DeclarationWithZoneIdZeroIsNotEvenSkipped) {
    bool ok = false;
    // What follows the declaration's header is read as sections of their own.
    CaseFile* caseFile = scanBytes("(2 3)\n(13 (0 1 4 0)(10 (1 1 2 1 3)(0 0 0 1 1 1)))\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(caseFile->numFaceZones, 0);
    EXPECT_EQ(caseFile->numNodeZones, 1);
}

TEST_F(FacesTest, NegativeZoneIdMakesNoZone) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(13 (-1 1 4 0 3))\n(12 (1 1 2 1 2))\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(caseFile->numFaceZones, 0);
    EXPECT_EQ(caseFile->numCellZones, 1);
}

TEST_F(FacesTest, ZoneHeaderWithFourFields) {
    bool ok = true;
    scanBytes("(2 3)\n(13 (1 1 4 2))\n", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), texts({"Parse error while reading Faces section (section 13)."}));
}

TEST_F(FacesTest, ZoneWithoutBody) {
    bool ok = true;
    scanBytes("(2 3)\n(13 (1 1 4 2 3)", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(),
              texts({"Opening parenthesis not found while reading Faces section (Section 13)."}));
}

TEST_F(FacesTest, PolygonZoneAskedForClassicArraysIsRefused) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(13 (1 1 1 2 5)(\n5 1 2 3 4 5 1 0\n))\n", &ok);
    ASSERT_TRUE(ok);
    EXPECT_FALSE(CaseFileLoadFaceZone(caseFile, &caseFile->faceZones[0]));
    EXPECT_EQ(
        messageTexts(),
        texts(
            {"Native Polyhedral files are currently not supported. Please load your data using the \"Create "
             "All Zones As Polyhedral Zones\" option within the advanced options dialog."}));
}

TEST_F(FacesTest, PolygonZoneOfFixedTypeWithoutNodeCount) {
    bool ok = true;
    scanBytes("(2 3)\n(13 (1 1 1 2 -1)(\n1 2 3 1 0\n))\n", &ok, true);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), texts({"The number of nodes is not specified in Face zone 1.\n"}));
}

TEST_F(FacesTest, FacesOfAFileGoneMissing) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(13 (1 1 1 2 3)(1 2 3 1 0))\n", &ok);
    ASSERT_TRUE(ok);
    std::filesystem::remove(caseFile->fileName);
    EXPECT_FALSE(CaseFileLoadFaceZone(caseFile, &caseFile->faceZones[0]));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{"Error opening case file '" + std::string(caseFile->fileName) + "'"});
}

TEST_F(FacesTest, FacesAtABadPosition) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(13 (1 1 1 2 3)(1 2 3 1 0))\n", &ok);
    ASSERT_TRUE(ok);
    caseFile->faceZones[0].filePosition = -7;
    EXPECT_FALSE(CaseFileLoadFaceZone(caseFile, &caseFile->faceZones[0]));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"Error setting file position to -7\nin file '" +
                                                       std::string(caseFile->fileName) + "'"});
}

TEST_F(FacesTest, AsciiBodyWithStrayText) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(13 (1 1 1 2 3)(1 2 3 1 0 9))\n", &ok);
    ASSERT_TRUE(ok);
    EXPECT_FALSE(CaseFileLoadFaceZone(caseFile, &caseFile->faceZones[0]));
    EXPECT_EQ(messageTexts(),
              texts({"Parse error while reading Faces section (section 13). Expected ')', found "
                     "'9'. Attempting to continue..."}));
}

// ---- Large binary bodies ---------------------------------------------------------------------

struct GeneratedZone {
    std::vector<int32_t> counts, nodes, cells;  // nodes with a stride of 4 for mixed zones
};

// A binary face zone of `count` faces; faceType 0 mixes triangles and quadrilaterals.
GeneratedZone generateFaces(int32_t count, int32_t faceType, unsigned seed, CaseBytes* file,
                            int32_t sectionId) {
    std::mt19937 random(seed);
    GeneratedZone zone;
    int32_t stride = faceType == 0 ? 4 : faceType;
    char header[96];
    snprintf(header, sizeof header, "(%d (7 1 %x 2 %d)\n(", sectionId, count, faceType);
    file->text(header);
    for (int32_t i = 0; i < count; ++i) {
        int32_t n = faceType == 0 ? 3 + static_cast<int32_t>(random() % 2) : faceType;
        if (faceType == 0) {
            file->i32(n);
            zone.counts.push_back(n);
        }
        for (int32_t k = 0; k < stride; ++k) {
            int32_t node = k < n ? 1 + static_cast<int32_t>(random() % 1000000) : 0;
            if (k < n) {
                file->i32(node);
            }
            zone.nodes.push_back(node);
        }
        int32_t c0 = 1 + static_cast<int32_t>(random() % 500000);
        int32_t c1 = static_cast<int32_t>(random() % 500000);
        file->i32(c0).i32(c1);
        zone.cells.push_back(c0);
        zone.cells.push_back(c1);
    }
    file->endBinary(sectionId);
    return zone;
}

// The bytes of a little-endian case of one binary face zone (section 2013)
// of `count` faces of `faceType`; what the zone holds in *expected.
std::string binaryZoneCase(int32_t count, int32_t faceType, unsigned seed, GeneratedZone* expected) {
    CaseBytes file;
    file.text("(2 3)\n").text(kMachineConfig);
    *expected = generateFaces(count, faceType, seed, &file, 2013);
    return file.bytes();
}

class BinaryFacesTest : public FacesTest,
                        public ::testing::WithParamInterface<std::tuple<int, bool, bool>> {};

TEST_P(BinaryFacesTest, LargeBodyReadsExactly) {
    const int32_t faceType = std::get<0>(GetParam());
    const bool bigEndian = std::get<1>(GetParam());
    const bool mapped = std::get<2>(GetParam());
    readBodies(mapped);
    CaseBytes file;
    file.bigEndian(bigEndian);
    file.text("(2 3)\n").text(bigEndian ? kMachineConfigBigEndian : kMachineConfig);
    const int32_t count = 70001;
    GeneratedZone expected = generateFaces(count, faceType, 17, &file, 3013);
    file.text("(12 (1 1 2 1 2))\n");
    bool ok = false;
    CaseFile* caseFile = scanBytes(file.bytes(), &ok);
    ASSERT_TRUE(ok);
    ASSERT_EQ(caseFile->numCellZones, 1);  // the section behind was found
    FaceZone* zone = &caseFile->faceZones[0];
    const int64_t mappedBefore = gFaceBodiesMapped.load();
    ASSERT_TRUE(CaseFileLoadFaceZone(caseFile, zone));
    EXPECT_TRUE(messageTexts().empty());
    // Mixed bodies and those of the other byte order are always read through the buffer.
    EXPECT_EQ(gFaceBodiesMapped.load() - mappedBefore, mapped && faceType != 0 && !bigEndian ? 1 : 0);
    int32_t stride = faceType == 0 ? 4 : faceType;
    EXPECT_EQ(array(zone->faceNodes, static_cast<size_t>(count) * stride), expected.nodes);
    EXPECT_EQ(array(zone->faceCells, 2 * static_cast<size_t>(count)), expected.cells);
    if (faceType == 0) {
        EXPECT_EQ(array(zone->faceNodeCounts, count), expected.counts);
    }
}

INSTANTIATE_TEST_SUITE_P(Encodings, BinaryFacesTest,
                         ::testing::Combine(::testing::Values(0, 2, 3, 4), ::testing::Bool(),
                                            ::testing::Bool()));

TEST_F(FacesTest, BinaryBadNodeNumberFarIntoTheBody) {
    // Far into the body, and in the first and the last face, read both ways.
    for (bool mapped : {false, true}) {
        for (int32_t bad : {1, 39999, 40000}) {
            SCOPED_TRACE(std::to_string(mapped) + " " + std::to_string(bad));
            readBodies(mapped);
            CaseBytes file;
            file.text("(2 3)\n").text(kMachineConfig);
            file.text("(2013 (7 1 9c40 2 3)\n(");
            for (int32_t i = 1; i <= 40000; ++i) {
                file.i32s({1, 2, i == bad ? 0 : 3, 1, 0});
            }
            file.endBinary(2013);
            bool ok = false;
            CaseFile* caseFile = scanBytes(file.bytes(), &ok);
            ASSERT_TRUE(ok);
            const int64_t mappedBefore = gFaceBodiesMapped.load();
            EXPECT_FALSE(CaseFileLoadFaceZone(caseFile, &caseFile->faceZones[0]));
            EXPECT_EQ(gFaceBodiesMapped.load() - mappedBefore, mapped ? 1 : 0);
            EXPECT_EQ(messageTexts(),
                      std::vector<std::string>{"Bad node number 0 for node 3 of face #" +
                                               std::to_string(bad) + " in Faces section (Section 2013)."});
            minihost::resetRecords();
        }
    }
}

TEST_F(FacesTest, BinaryBodyCutShort) {
    GeneratedZone expected;
    bool ok = false;
    CaseFile* caseFile = scanBytes(binaryZoneCase(30000, 4, 5, &expected), &ok);
    ASSERT_TRUE(ok);
    // Cut in the middle of face 20001. The file cannot give the whole body,
    // so it is not mapped, however large: the buffer comes short.
    std::filesystem::resize_file(caseFile->fileName, caseFile->faceZones[0].filePosition + 20000 * 24 + 10);
    readBodies(true);
    const int64_t mappedBefore = gFaceBodiesMapped.load();
    EXPECT_FALSE(CaseFileLoadFaceZone(caseFile, &caseFile->faceZones[0]));
    EXPECT_EQ(gFaceBodiesMapped.load(), mappedBefore);
    EXPECT_EQ(messageTexts(), texts({"Read error while reading Faces section (section 2013)."}));
    // The faces ahead of the cut were read.
    EXPECT_EQ(caseFile->faceZones[0].faceCells[2 * 19999], expected.cells[2 * 19999]);
}

TEST_F(FacesTest, BinaryBodyEndingTheFileLacksItsEndMarker) {
    // Every face is there and the body is mapped; what follows it is not.
    for (bool mapped : {false, true}) {
        SCOPED_TRACE(mapped);
        readBodies(mapped);
        GeneratedZone expected;
        bool ok = false;
        CaseFile* caseFile = scanBytes(binaryZoneCase(3000, 3, 9, &expected), &ok);
        ASSERT_TRUE(ok);
        FaceZone* zone = &caseFile->faceZones[0];
        std::filesystem::resize_file(caseFile->fileName, zone->filePosition + 3000 * 20);
        const int64_t mappedBefore = gFaceBodiesMapped.load();
        EXPECT_FALSE(CaseFileLoadFaceZone(caseFile, zone));
        EXPECT_EQ(gFaceBodiesMapped.load() - mappedBefore, mapped ? 1 : 0);
        EXPECT_EQ(messageTexts(), texts({"End-of-file while skipping section 2013."}));
        EXPECT_EQ(array(zone->faceCells, 2 * 3000), expected.cells);
        minihost::resetRecords();
    }
}

TEST_F(FacesTest, BinaryMixedBodyCutAtAFaceBoundary) {
    CaseBytes file;
    file.text("(2 3)\n").text(kMachineConfig);
    file.text("(2013 (7 1 3 2 0)\n(")
        .i32s({3, 1, 2, 3, 1, 0, 4, 1, 2, 3, 4, 1, 2, 3, 2, 3, 4, 2, 0})
        .endBinary(2013);
    bool ok = false;
    CaseFile* caseFile = scanBytes(file.bytes(), &ok);
    ASSERT_TRUE(ok);
    std::filesystem::resize_file(caseFile->fileName, caseFile->faceZones[0].filePosition + 13 * 4);
    EXPECT_FALSE(CaseFileLoadFaceZone(caseFile, &caseFile->faceZones[0]));
    EXPECT_EQ(messageTexts(), texts({"End-of-file while reading Faces section (section 2013)."}));
}

TEST_F(FacesTest, BinaryMixedZoneWithAPolygonIsReadAsPolygons) {
    CaseBytes file;
    file.text("(2 3)\n").text(kMachineConfig);
    file.text("(3013 (7 1 3 2 0)\n(")
        .i32s({3, 1, 2, 3, 1, 0, 5, 1, 2, 3, 4, 5, 1, 2, 4, 2, 3, 4, 5, 2, 0})
        .endBinary(3013);
    bool ok = false;
    CaseFile* caseFile = scanBytes(file.bytes(), &ok);
    ASSERT_TRUE(ok);
    FaceZone* zone = &caseFile->faceZones[0];
    ASSERT_TRUE(CaseFileLoadFaceZone(caseFile, zone));
    EXPECT_EQ(zone->faceType, 5);
    EXPECT_EQ(array(zone->polyOffsets, 4), (std::vector<int32_t>{0, 3, 8, 12}));
    EXPECT_EQ(array(zone->polyNodes, 12), (std::vector<int32_t>{1, 2, 3, 1, 2, 3, 4, 5, 2, 3, 4, 5}));
    EXPECT_EQ(array(zone->polyCell1, 3), (std::vector<int32_t>{0, 2, 0}));
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(FacesTest, ReleaseFreesFaceArraysAndPolygonsComeBack) {
    bool ok = false;
    CaseFile* caseFile =
        scanBytes("(2 3)\n(13 (1 1 1 2 3)(1 2 3 1 0))\n(13 (2 2 2 3 5)(4 1 2 3 4 1 0))\n", &ok);
    ASSERT_TRUE(ok);
    {
        CaseFileUse use(caseFile);
        ASSERT_TRUE(CaseFileLoadFaceZone(caseFile, &caseFile->faceZones[0]));
    }
    EXPECT_EQ(caseFile->faceZones[0].faceNodes, nullptr);
    EXPECT_EQ(caseFile->faceZones[0].faceCells, nullptr);
    EXPECT_EQ(caseFile->faceZones[0].faceConnectivity, nullptr);
    EXPECT_EQ(caseFile->faceZones[1].polyNodes, nullptr);
    EXPECT_EQ(caseFile->faceZones[1].polyOffsets, nullptr);
    FILE* stream = fopen(caseFile->fileName, "rb");
    ASSERT_NE(stream, nullptr);
    EXPECT_TRUE(
        PolyFaceZoneRead(stream, caseFile, &caseFile->faceZones[1], caseFile->faceZones[1].sectionId));
    fclose(stream);
    EXPECT_EQ(array(caseFile->faceZones[1].polyNodes, 4), (std::vector<int32_t>{1, 2, 3, 4}));
}

}  // namespace
}  // namespace casefile_test
