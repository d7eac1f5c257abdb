// The host zones made from a case file: which zones, in what order, with
// what names, types, sizes and parents, and the selection numbers.
#include <algorithm>
#include <filesystem>
#include <map>

#include "casefile/CaseFileTestSupport.h"
#include "dataset/GridZones.h"
#include "lod/LodTestSupport.h"
#include "lod/SmallCases.h"
#include "tools/fluentgen/FluentGen.h"

namespace {

using namespace lodtest;

class GridZones : public LoadTest {};

void replaceOnce(std::string& text, const std::string& from, const std::string& to) {
    const size_t at = text.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    text.replace(at, from.size(), to);
}

struct ZoneShape {
    std::string name;
    int32_t type;
    ZorIndex iMax, jMax, parent;
    bool operator==(const ZoneShape& o) const {
        return name == o.name && type == o.type && iMax == o.iMax && jMax == o.jMax && parent == o.parent;
    }
};
std::ostream& operator<<(std::ostream& out, const ZoneShape& z) {
    return out << "{" << z.name << ", type " << z.type << ", " << z.iMax << " x " << z.jMax << ", parent "
               << z.parent << "}";
}

std::vector<ZoneShape> zoneShapes() {
    std::vector<ZoneShape> shapes;
    for (ZorIndex z = 1; z <= ZorUtilDataSetGetNumZones(); ++z) {
        ZoneShape shape{zoneName(z), ZorUtilZoneGetType(z), 0, 0, ZorUtilZoneGetParentZone(z)};
        ZorIndex kMax = 0;
        EXPECT_TRUE(ZorUtilZoneGetInfo(z, &shape.iMax, &shape.jMax, &kMax));
        shapes.push_back(shape);
    }
    return shapes;
}

// The square with more zones that never become host zones: a cell zone of
// type 32 (cell 3, zone 7) and face zones of types 31, 38 and 1012 (zones 8,
// 9, 10: copies of faces 2, 3 and 4).
std::string squareWithHiddenZones() {
    std::string text = squareCase();
    replaceOnce(text, "(12 (0 1 2 0))", "(12 (0 1 3 0))");
    replaceOnce(text, "(13 (0 1 5 0))", "(13 (0 1 8 0))");
    text += "(12 (7 3 3 20 1))\n";
    text += "(13 (8 6 6 1f 2)(\n1 2 1 0\n))\n";
    text += "(13 (9 7 7 26 2)(\n2 3 1 0\n))\n";
    text += "(13 (a 8 8 3f4 2)(\n3 4 2 0\n))\n";
    return text;
}

TEST_F(GridZones, CellZonesComeFirstThenDisplayedBoundariesInFileOrder) {
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    EXPECT_TRUE(shown().empty());
    char* title = nullptr;
    ZorIndex numZones = 0, numVars = 0;
    ASSERT_TRUE(ZorUtilDataSetGetInfo(&title, &numZones, &numVars));
    EXPECT_STREQ(title, "square test");
    ZorUtilStringDealloc(&title);
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y"}));
    // The unnamed wall is named after its boundary type; the interior zone has no host zone.
    EXPECT_EQ(zoneShapes(), (std::vector<ZoneShape>{{"fluid", ZorZoneType_FETriangle, 4, 2, 0},
                                                    {"Wall Boundary Zone 4", ZorZoneType_FELineSeg, 3, 2, 1},
                                                    {"axis", ZorZoneType_FELineSeg, 2, 1, 1},
                                                    {"outlet", ZorZoneType_FELineSeg, 2, 1, 1}}));
    for (ZorIndex z = 1; z <= 4; ++z) {
        EXPECT_EQ(ZorUtilDataValueGetLocation(z, 1), ZorValueLocation_Nodal);
        EXPECT_EQ(ZorUtilDataValueGetType(z, 1), ZorFieldDataType_Float);
        EXPECT_TRUE(minihost::valueStats(z, 1).hasLoader);
        EXPECT_TRUE(minihost::nodeMapStats(z).hasLoader);
        EXPECT_FALSE(minihost::valueStats(z, 1).loaded);  // nothing is loaded until asked for
        EXPECT_EQ(ZorUtilZoneGetStrandID(z), 0);
    }
    const CaseFile* caseFile = lastCaseFile();
    EXPECT_EQ(caseFile->cellZones[0].hostZoneNumber, 1);
    EXPECT_EQ(caseFile->cellZones[0].hostZoneUniqueId, static_cast<int64_t>(ZorUtilZoneGetUniqueID(1)));
    EXPECT_EQ(caseFile->cellZones[0].hostZoneType, ZorZoneType_FETriangle);
    EXPECT_EQ(caseFile->faceZones[0].hostZoneNumber, 0);  // interior
    EXPECT_EQ(caseFile->faceZones[1].hostZoneNumber, 2);
    EXPECT_EQ(caseFile->faceZones[3].hostZoneUniqueId, static_cast<int64_t>(ZorUtilZoneGetUniqueID(4)));
    EXPECT_EQ(caseFile->faceZones[1].parentCellZoneId, 2);
    EXPECT_EQ(caseFile->totalNodes, 4);
    EXPECT_EQ(lastSolution()->datasetUniqueID, ZorUtilDataSetGetUniqueID());
    EXPECT_EQ(ZorUtilFrameGetPlotType(), ZorPlotType_Cartesian2D);
    // Zones and variables added are reported.
    const auto changes = minihost::stateChangesReported();
    ASSERT_FALSE(changes.empty());
    EXPECT_EQ(changes.back().code, ZorStateChange_ZonesAdded);
    EXPECT_EQ(changes.back().members, (std::vector<ZorIndex>{1, 2, 3, 4}));
}

TEST_F(GridZones, HiddenZoneKindsGetNeitherAHostZoneNorASelectionNumber) {
    ASSERT_TRUE(loadCase(write("square.cas", squareWithHiddenZones()),
                         {"GridZones", "SelectedZones", "ZoneList", "1-9"}));
    EXPECT_TRUE(shown().empty()) << testing::PrintToString(shown());
    EXPECT_EQ(zoneNames(), (std::vector<std::string>{"fluid", "Wall Boundary Zone 4", "axis", "outlet"}));
    const CaseFile* caseFile = lastCaseFile();
    ASSERT_EQ(caseFile->numCellZones, 2);
    EXPECT_EQ(caseFile->cellZones[0].selectionIndex, 1);
    EXPECT_EQ(caseFile->cellZones[1].selectionIndex, 0);  // type 32
    ASSERT_EQ(caseFile->numFaceZones, 7);
    const int32_t expected[7] = {0, 2, 3, 4, 0, 0, 0};  // interior, wall, axis, outlet, 31, 38, 1012
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(caseFile->faceZones[i].selectionIndex, expected[i]) << i;
        EXPECT_EQ(caseFile->faceZones[i].hostZoneNumber != 0, expected[i] != 0) << i;
    }
}

TEST_F(GridZones, SelectionPicksZonesByTheirNumberInTheList) {
    ASSERT_TRUE(loadCase(write("square.cas", squareWithHiddenZones()),
                         {"GridZones", "SelectedZones", "ZoneList", "1,3"}));
    EXPECT_EQ(zoneNames(), (std::vector<std::string>{"fluid", "axis"}));
    EXPECT_EQ(ZorUtilZoneGetParentZone(2), 1);
    const CaseFile* caseFile = lastCaseFile();
    EXPECT_EQ(caseFile->faceZones[2].hostZoneNumber, 2);
    EXPECT_EQ(caseFile->faceZones[1].hostZoneNumber, 0);
}

TEST_F(GridZones, CellsOnlyAndBoundariesOnly) {
    ASSERT_TRUE(loadCase(write("square.cas", squareCase()), {"GridZones", "CellsOnly"}));
    EXPECT_EQ(zoneNames(), (std::vector<std::string>{"fluid"}));
    dropEverything();
    ASSERT_TRUE(loadCase(write("square.cas", squareCase()), {"GridZones", "BoundariesOnly"}));
    EXPECT_EQ(zoneNames(), (std::vector<std::string>{"Wall Boundary Zone 4", "axis", "outlet"}));
    // The cell zone that holds them has no host zone.
    EXPECT_EQ(ZorUtilZoneGetParentZone(1), 0);
    EXPECT_EQ(lastCaseFile()->faceZones[1].parentCellZoneId, 2);
    EXPECT_EQ(values(1, var("X")), (std::vector<double>{0, 2, 2}));
}

TEST_F(GridZones, CaseWithOnlyInteriorFacesAndBoundariesOnlyYieldsVariablesAndNoZones) {
    std::string text = squareCase();
    for (const char* zone : {"(13 (4 2 3 3 2)(\n1 2 1 0\n2 3 1 0\n))\n", "(13 (5 4 4 25 2)(\n3 4 2 0\n))\n",
                             "(13 (6 5 5 5 2)(\n4 1 2 0\n))\n"}) {
        replaceOnce(text, zone, "");
    }
    ASSERT_TRUE(loadCase(write("square.cas", text), {"GridZones", "BoundariesOnly"}));
    EXPECT_TRUE(ZorUtilDataSetIsAvailable());
    EXPECT_EQ(ZorUtilDataSetGetNumZones(), 0);
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y"}));
}

TEST_F(GridZones, FieldOfAnInteriorFaceZoneIsIgnoredWithoutAMessage) {
    const std::string casePath = write("square.cas", squareCase());
    const std::string dataPath = write("square.dat", squareData(dataSection(18, 3, 1, 1, 1, 1, "5") +
                                                                dataSection(1, 2, 1, 1, 1, 2, "1\n2")));
    ASSERT_TRUE(loadPair(casePath, dataPath));
    EXPECT_TRUE(shown().empty());
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y", "Pressure"}));
}

TEST_F(GridZones, MixedPlaneCellZoneIsBuiltAsQuadrilateralsWithRepeatedNodes) {
    std::string text = squareCase();
    replaceOnce(text, "(12 (2 1 2 1 1))", "(12 (2 1 2 1 0)(\n1 1\n))");
    ASSERT_TRUE(loadCase(write("square.cas", text)));
    EXPECT_EQ(ZorUtilZoneGetType(1), ZorZoneType_FEQuad);
    const auto cells = nodeMap(1);
    ASSERT_EQ(cells.size(), 2u);
    for (const auto& cell : cells) {
        ASSERT_EQ(cell.size(), 4u);
        EXPECT_EQ(cell[3], cell[2]);  // a triangle as a quadrilateral repeats its last node
    }
    ASSERT_NE(lastCaseFile()->cellZones[0].cellTypes, nullptr);
}

TEST_F(GridZones, ProgressTextShowsShortPathsWholeAndLongOnesByTheirLast17Characters) {
    char text[kZoneSetupTextSize];
    zoneSetupText(text, 7, 12, "/a/b.cas");
    EXPECT_STREQ(text, "Setting up Zone=007, Var=012 from /a/b.cas");
    zoneSetupText(text, 1, 3, "0123456789abcdef");  // 16 characters
    EXPECT_STREQ(text, "Setting up Zone=001, Var=003 from 0123456789abcdef");
    zoneSetupText(text, 1234, 3, "0123456789abcdefg");  // 17 characters
    EXPECT_STREQ(text, "Setting up Zone=1234, Var=003 from ...0123456789abcdefg");
    zoneSetupText(text, 2, 1, "/a/long/folder/name/square.cas");
    EXPECT_STREQ(text, "Setting up Zone=002, Var=001 from ...r/name/square.cas");

    // What the user sees while the zones are made.
    const std::string casePath = write("square.cas", squareCase());
    ASSERT_TRUE(loadCase(casePath));
    char expected[kZoneSetupTextSize];
    zoneSetupText(expected, 3, 2, casePath.c_str());
    bool seen = false;
    for (const minihost::ProgressEvent& event : minihost::progressEvents())
        seen = seen || (event.what == "begin" && event.text == expected);
    EXPECT_TRUE(seen) << expected;
}

TEST_F(GridZones, AppendingAddsZonesBehindTheDataSetsOwn) {
    const std::string casePath = write("square.cas", squareCase());
    ASSERT_TRUE(loadCase(casePath));
    ASSERT_TRUE(loadCase(casePath, {"Append", "Yes"}));
    EXPECT_TRUE(shown().empty());
    EXPECT_EQ(ZorUtilDataSetGetNumZones(), 8);
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y"}));
    EXPECT_EQ(ZorUtilZoneGetParentZone(6), 5);
    EXPECT_EQ(zoneName(5), "fluid");
    EXPECT_EQ(values(6, var("X")), (std::vector<double>{0, 2, 2}));
    EXPECT_EQ(values(2, var("X")), (std::vector<double>{0, 2, 2}));
    ASSERT_EQ(SolutionTableCount, 2);
    EXPECT_EQ(SolutionTable[1].caseFiles[0].cellZones[0].hostZoneNumber, 5);
    EXPECT_EQ(minihost::stateChangesReported().back().members, (std::vector<ZorIndex>{5, 6, 7, 8}));
}

TEST_F(GridZones, PolygonZonesAreRefusedWithAClearMessage) {
    // A polyhedral cell zone and a polygon boundary.
    std::string text = squareCase();
    replaceOnce(text, "(12 (2 1 2 1 1))", "(12 (2 1 2 1 7))");
    replaceOnce(text, "(13 (6 5 5 5 2)(\n4 1 2 0\n))", "(13 (6 5 5 5 5)(\n2 4 1 2 0\n))");
    const std::string casePath = write("square.cas", text);
    EXPECT_FALSE(loadCase(casePath));
    EXPECT_EQ(shown(),
              (std::vector<Shown>{
                  {"error",
                   "Polygonal and polyhedral zones are not available in this version of the Fluent loader."},
                  {"error", "Error loading file " + casePath}}));
    EXPECT_FALSE(ZorUtilDataSetIsAvailable());

    minihost::clearMessages();
    EXPECT_FALSE(loadCase(write("square.cas", squareCase()), {"AllPolyZones", "Yes"}));
    EXPECT_EQ(shown().front().second,
              "Polygonal and polyhedral zones are not available in this version of the Fluent loader.");
}

// The parent of each boundary host zone, by the boundary's name.
std::map<std::string, ZorIndex> boundaryParents() {
    std::map<std::string, ZorIndex> parents;
    for (ZorIndex z = 1; z <= ZorUtilDataSetGetNumZones(); ++z) {
        if (ZorUtilZoneGetType(z) == ZorZoneType_FEQuad)
            parents[zoneName(z)] = ZorUtilZoneGetParentZone(z);
    }
    return parents;
}

TEST_F(GridZones, ABoundaryIsTheChildOfTheCellZoneOfAllItsSideZeroCells) {
    // Two cell zones in slabs along x; fluentgen splits each side by cell
    // zone. The binary case is numbered without keeping its faces, the text
    // one by loading them: the parents are the same.
    const std::map<std::string, ZorIndex> expected = {
        {"velocity-inlet-xmin", 1},  {"pressure-outlet-xmax", 2},      {"wall-ymin-1", 1},
        {"wall-ymin-2", 2},          {"pressure-far-field-ymax-1", 1}, {"pressure-far-field-ymax-2", 2},
        {"symmetry-zmin-1", 1},      {"symmetry-zmin-2", 2},           {"pressure-inlet-zmax-1", 1},
        {"pressure-inlet-zmax-2", 2}};
    std::string binaryPath;
    for (fluentgen::Encoding encoding : {fluentgen::Encoding::BinaryDouble, fluentgen::Encoding::Ascii}) {
        SCOPED_TRACE(static_cast<int>(encoding));
        fluentgen::Spec spec;
        spec.cells = {4, 2, 2};
        spec.cellZoneTypes = {1, 17};
        spec.encoding = encoding;
        const std::string file = path(encoding == fluentgen::Encoding::Ascii ? "two-text.cas" : "two.cas");
        fluentgen::writeCaseFile(spec, file);
        if (encoding != fluentgen::Encoding::Ascii)
            binaryPath = file;
        dropEverything();
        ASSERT_TRUE(loadCase(file, {"USE_METADATA", "No"}));
        EXPECT_TRUE(shown().empty());
        EXPECT_EQ(boundaryParents(), expected);
        const CaseFile* caseFile = lastCaseFile();
        for (int32_t z = 0; z < caseFile->numFaceZones; ++z) {
            const FaceZone& zone = caseFile->faceZones[z];
            if (zone.hostZoneNumber > 0) {
                const ZorIndex parent = ZorUtilZoneGetParentZone(zone.hostZoneNumber);
                EXPECT_EQ(zone.parentCellZoneId, caseFile->cellZones[parent - 1].zoneId);
            }
        }
    }
    // One face of wall-ymin-1 with a cell of the second zone on side 0: no
    // cell zone holds the whole boundary. A cell of 0 counts for any zone.
    int32_t mixedId = 0, zeroId = 0, secondFirstCell = 0;
    {
        const CaseFile* caseFile = lastCaseFile();
        for (int32_t z = 0; z < caseFile->numFaceZones; ++z) {
            const FaceZone& zone = caseFile->faceZones[z];
            if (zone.hostZoneNumber > 0 && zoneName(zone.hostZoneNumber) == "wall-ymin-1")
                mixedId = zone.zoneId;
            if (zone.hostZoneNumber > 0 && zoneName(zone.hostZoneNumber) == "pressure-inlet-zmax-2")
                zeroId = zone.zoneId;
        }
        secondFirstCell = caseFile->cellZones[1].firstIndex;
    }
    ASSERT_GT(mixedId, 0);
    ASSERT_GT(zeroId, 0);
    const std::string damaged = path("two-mixed.cas");
    std::filesystem::copy_file(binaryPath, damaged);
    int width = 0;
    casefile_test::poke(damaged, casefile_test::facePlace(damaged, mixedId, 1, 4, &width),
                        casefile_test::int32Bytes(secondFirstCell));
    casefile_test::poke(damaged, casefile_test::facePlace(damaged, zeroId, 0, 4, &width),
                        casefile_test::int32Bytes(0));
    dropEverything();
    ASSERT_TRUE(loadCase(damaged, {"USE_METADATA", "No"}));
    std::map<std::string, ZorIndex> parents = expected;
    parents["wall-ymin-1"] = 0;
    EXPECT_EQ(boundaryParents(), parents);
}

}  // namespace
