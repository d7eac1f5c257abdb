// Cells sections: declarations, zone headers, the element types of mixed
// zones and the first cell type that decides a mixed zone's host type.
#include <filesystem>

#include "CaseFileTestSupport.h"

namespace casefile_test {
namespace {

class CellsTest : public CaseFileTest {};

TEST_F(CellsTest, DeclarationWithFourFieldsIsSkipped) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(12 (0 1 3e8 0))\n(12 (5 1 3e8 1 2))\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(messageTexts().empty());
    ASSERT_EQ(caseFile->numCellZones, 1);
    EXPECT_EQ(caseFile->cellZones[0].zoneId, 5);
    EXPECT_EQ(caseFile->cellZones[0].lastIndex, 1000);
}

TEST_F(CellsTest, ZoneWithFourFieldsIsAParseError) {
    bool ok = true;
    CaseFile* caseFile = scanBytes("(2 3)\n(12 (1 1 3e8 1))\n", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), texts({"Parse error while reading Cells section (section 12)."}));
    EXPECT_EQ(caseFile->numCellZones, 0);
}

TEST_F(CellsTest, HeaderFieldsAreRecorded) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(12 (1a 10 2f 11 6))\n", &ok);
    ASSERT_TRUE(ok);
    const CellZone& zone = caseFile->cellZones[0];
    EXPECT_EQ(zone.sectionId, 12);
    EXPECT_EQ(zone.zoneId, 26);
    EXPECT_EQ(zone.firstIndex, 16);
    EXPECT_EQ(zone.lastIndex, 47);
    EXPECT_EQ(zone.zoneType, 17);
    EXPECT_EQ(zone.elementType, 6);
    EXPECT_EQ(zone.hostZoneType, 255);
    EXPECT_EQ(zone.cellTypes, nullptr);
    EXPECT_NE(zone.filePosition, 0);
}

TEST_F(CellsTest, AsciiMixedZoneWithLowerCaseHexadecimal) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(12 (a b 1a 1 0)(\n4 2 5 6 4 4 2 2 5 6 6 4 4 2 5 4\n))\n", &ok);
    ASSERT_TRUE(ok);
    CellZone* zone = &caseFile->cellZones[0];
    EXPECT_EQ(zone->zoneId, 10);
    EXPECT_EQ(zone->firstIndex, 11);
    EXPECT_EQ(zone->lastIndex, 26);
    ASSERT_TRUE(CaseFileLoadCellZoneCellTypes(caseFile, zone));
    std::vector<int32_t> types(zone->cellTypes, zone->cellTypes + 16);
    EXPECT_EQ(types, (std::vector<int32_t>{4, 2, 5, 6, 4, 4, 2, 2, 5, 6, 6, 4, 4, 2, 5, 4}));
    EXPECT_EQ(CellZoneReadFirstCellType(zone, caseFile), 4);
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(CellsTest, NonMixedZonesEndAtTheirHeader) {
    CaseBytes file;
    file.text("(2 3)\n").text(kMachineConfig);
    file.text("(12 (1 1 4 1 2))\n");
    file.text("(2012 (2 5 8 1 4)\nEnd of Binary Section   2012)\n");
    file.text("(3012 (3 9 9 1 5)\nEnd of Binary Section   3012)\n");
    file.text("(12 (4 a a 1 6))\n");
    bool ok = false;
    CaseFile* caseFile = scanBytes(file.bytes(), &ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(messageTexts().empty());
    ASSERT_EQ(caseFile->numCellZones, 4);
    // The position is taken right behind the header: no body there.
    EXPECT_EQ(caseFile->cellZones[0].filePosition,
              static_cast<int64_t>(file.bytes().find("(12 (1 1 4 1 2)") + strlen("(12 (1 1 4 1 2)")));
}

TEST_F(CellsTest, BinaryMixedZoneOfTrianglesAndQuadrilateralsIsAQuadrilateralZone) {
    CaseBytes file;
    file.text("(2 2)\n").text(kMachineConfig);
    file.text("(2012 (1 1 5 1 0)\n(").i32s({3, 1, 1, 3, 3}).endBinary(2012);
    file.text("(3012 (2 6 7 1 0)\n(").i32s({1, 3}).endBinary(3012);
    bool ok = false;
    CaseFile* caseFile = scanBytes(file.bytes(), &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(CellZoneReadFirstCellType(&caseFile->cellZones[0], caseFile), 3);
    EXPECT_EQ(CellZoneReadFirstCellType(&caseFile->cellZones[1], caseFile), 1);
    EXPECT_EQ(CellZoneGetZoneType(&caseFile->cellZones[0], caseFile, false), ZorZoneType_FEQuad);
    EXPECT_EQ(CellZoneGetZoneType(&caseFile->cellZones[1], caseFile, false), ZorZoneType_FEQuad);
    ASSERT_TRUE(CaseFileLoadCellZoneCellTypes(caseFile, &caseFile->cellZones[0]));
    std::vector<int32_t> types(caseFile->cellZones[0].cellTypes, caseFile->cellZones[0].cellTypes + 5);
    EXPECT_EQ(types, (std::vector<int32_t>{3, 1, 1, 3, 3}));
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(CellsTest, BigEndianCellTypes) {
    CaseBytes file;
    file.bigEndian(true);
    file.text("(2 3)\n").text(kMachineConfigBigEndian);
    file.text("(2012 (1 1 3 1 0)\n(").i32s({5, 2, 6}).endBinary(2012);
    bool ok = false;
    CaseFile* caseFile = scanBytes(file.bytes(), &ok);
    ASSERT_TRUE(ok);
    ASSERT_TRUE(CaseFileLoadCellZoneCellTypes(caseFile, &caseFile->cellZones[0]));
    EXPECT_EQ(std::vector<int32_t>(caseFile->cellZones[0].cellTypes, caseFile->cellZones[0].cellTypes + 3),
              (std::vector<int32_t>{5, 2, 6}));
    EXPECT_EQ(CellZoneReadFirstCellType(&caseFile->cellZones[0], caseFile), 5);
}

TEST_F(CellsTest, MixedZoneWithoutBody) {
    bool ok = true;
    scanBytes("(2 3)\n(12 (1 1 4 1 0)", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(),
              texts({"Opening parenthesis not found while reading Cells section (Section 12)."}));
}

TEST_F(CellsTest, CellTypesOfAFileGoneMissing) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(12 (1 1 2 1 0)(4 4))\n", &ok);
    ASSERT_TRUE(ok);
    std::filesystem::remove(caseFile->fileName);
    EXPECT_FALSE(CaseFileLoadCellZoneCellTypes(caseFile, &caseFile->cellZones[0]));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{"Error opening case file '" + std::string(caseFile->fileName) + "'"});
    minihost::clearMessages();
    // The first cell type says nothing and answers unknown.
    EXPECT_EQ(CellZoneReadFirstCellType(&caseFile->cellZones[0], caseFile), 255);
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(CellsTest, CellTypesAtABadPosition) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(12 (1 1 2 1 0)(4 4))\n", &ok);
    ASSERT_TRUE(ok);
    caseFile->cellZones[0].filePosition = -3;
    EXPECT_FALSE(CaseFileLoadCellZoneCellTypes(caseFile, &caseFile->cellZones[0]));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"Error setting file position to -3\nin file '" +
                                                       std::string(caseFile->fileName) + "'."});
}

TEST_F(CellsTest, CellTypesCutShort) {
    bool ok = false;
    std::string text = "(2 3)\n(12 (1 1 3 1 0)(4 4 4))\n";
    CaseFile* caseFile = scanBytes(text, &ok);
    ASSERT_TRUE(ok);
    std::filesystem::resize_file(caseFile->fileName, text.find("(4 4") + 3);
    EXPECT_FALSE(CaseFileLoadCellZoneCellTypes(caseFile, &caseFile->cellZones[0]));
    EXPECT_EQ(messageTexts(), texts({"End-of-file while reading Cells section (section 12)."}));
}

TEST_F(CellsTest, UnreadableFirstCellTypeSpeaksOfFaces) {
    bool ok = false;
    std::string text = "(2 3)\n(12 (1 1 3 1 0)(4 4 4))\n";
    CaseFile* caseFile = scanBytes(text, &ok);
    ASSERT_TRUE(ok);
    std::filesystem::resize_file(caseFile->fileName, text.find("(4 4") + 1);
    EXPECT_EQ(CellZoneReadFirstCellType(&caseFile->cellZones[0], caseFile), 255);
    EXPECT_EQ(messageTexts(), texts({"End-of-file while reading faces section (section 12)."}));
    minihost::clearMessages();
    EXPECT_EQ(CellZoneGetZoneType(&caseFile->cellZones[0], caseFile, false), 255);
}

TEST_F(CellsTest, UnreadableBinaryFirstCellTypeSpeaksOfFaces) {
    CaseBytes file;
    file.text("(2 3)\n").text(kMachineConfig);
    file.text("(3012 (7 1 2 1 0)\n(").i32s({4, 4}).endBinary(3012);
    bool ok = false;
    CaseFile* caseFile = scanBytes(file.bytes(), &ok);
    ASSERT_TRUE(ok);
    std::filesystem::resize_file(caseFile->fileName, caseFile->cellZones[0].filePosition + 2);
    EXPECT_EQ(CellZoneReadFirstCellType(&caseFile->cellZones[0], caseFile), 255);
    EXPECT_EQ(messageTexts(), texts({"Read error while reading faces section (section 3012)."}));
}

TEST_F(CellsTest, CellTypesOutliveARelease) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(12 (1 1 2 1 0)(4 6))\n", &ok);
    ASSERT_TRUE(ok);
    {
        CaseFileUse use(caseFile);
        ASSERT_TRUE(CaseFileLoadCellZoneCellTypes(caseFile, &caseFile->cellZones[0]));
    }
    ASSERT_NE(caseFile->cellZones[0].cellTypes, nullptr);
    EXPECT_EQ(caseFile->cellZones[0].cellTypes[1], 6);
}

}  // namespace
}  // namespace casefile_test
