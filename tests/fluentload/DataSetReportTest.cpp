// fluentload's view of a data set made through the host's API: the summary
// text, the JSON summary (its shape checked with python's json module), the
// pull through load-on-demand with several threads and under a memory budget,
// and the export read back with VTK's own readers.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <limits>

#include "TestDataSet.h"
#include "VtkReadBack.h"
#include "apps/fluentload/DataSetInfo.h"
#include "apps/fluentload/Export.h"
#include "apps/fluentload/HostItems.h"
#include "apps/fluentload/Pull.h"
#include "apps/fluentload/Session.h"
#include "apps/fluentload/Summary.h"

namespace {

using fluentload::DataSetInfo;
using readback::Description;
using testdata::Builder;

constexpr int32_t F = ZorFieldDataType_Float;
constexpr int32_t D = ZorFieldDataType_Double;
constexpr int32_t I = ZorFieldDataType_Int32;
constexpr int32_t N = ZorValueLocation_Nodal;
constexpr int32_t C = ZorValueLocation_CellCentered;

using Point = std::array<double, 3>;

#define REQUIRE_VTK()                                                         \
    do {                                                                      \
        if (!readback::pythonAvailable())                                     \
            GTEST_SKIP() << "no " << readback::kPython << " to run VTK with"; \
    } while (0)

// One zone of the test data set and what VTK must read back of it.
struct ZoneSpec {
    std::string name;
    int32_t type;
    std::vector<Point> points;
    int64_t elements;
    int64_t kMax;
    std::vector<int32_t> types;  // per variable X Y Z P T N
    int32_t strand;
    int64_t parent;
    std::vector<double> pressure;  // P, cell-centred, as the host holds it
    // Expected of VTK:
    std::vector<int> vtkTypes;
    std::vector<double> volumes;  // per cell, 3-D cells only (0 to skip)
    std::vector<double> cellPressure;
};

const std::vector<std::string> kVariables = {"X", "Y", "Z", "P", "T", "N"};

std::vector<double> axis(const std::vector<Point>& points, int a) {
    std::vector<double> v;
    for (const Point& p : points)
        v.push_back(p[static_cast<size_t>(a)]);
    return v;
}
std::vector<double> temperatures(const ZoneSpec& z, ZorIndex number) {
    std::vector<double> v;
    for (size_t p = 0; p < z.points.size(); ++p)
        v.push_back(0.25 * static_cast<double>(p) + static_cast<double>(number));
    return v;
}
std::vector<double> counts(const ZoneSpec& z) {
    std::vector<double> v;
    for (size_t p = 0; p < z.points.size(); ++p)
        v.push_back(3.0 * static_cast<double>(p));
    return v;
}

std::vector<ZoneSpec> everyZoneType() {
    std::vector<ZoneSpec> zones;
    // 1: a brick zone: a hexahedron given upside down, and bricks collapsed to
    // a tetrahedron, a pyramid and a wedge.
    zones.push_back(
        {"bricks",
         ZorZoneType_FEBrick,
         {{0, 0, 0},     {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1},
          {2, 0, 0},     {3, 0, 0}, {2, 1, 0}, {2, 0, 1}, {4, 0, 0}, {5, 0, 0}, {5, 1, 0}, {4, 1, 0},
          {4.5, 0.5, 1}, {6, 0, 0}, {7, 0, 0}, {6, 1, 0}, {6, 0, 1}, {7, 0, 1}, {6, 1, 1}},
         4,
         0,
         {F, F, D, F, D, I},
         1,
         0,
         {1.5, 2.5, 3.5, 4.5},
         {12, 10, 14, 13},
         {1.0, 1.0 / 6.0, 1.0 / 3.0, 0.5},
         {1.5, 2.5, 3.5, 4.5}});
    // 2: quadrilaterals, the second with a repeated corner.
    zones.push_back({"surface",
                     ZorZoneType_FEQuad,
                     {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 0, 0}},
                     2,
                     0,
                     {F, F, F, F, D, I},
                     2,
                     1,
                     {10, 20},
                     {9, 5},
                     {},
                     {10, 20}});
    // 3: two polygons in a square.
    zones.push_back({"poly2d",
                     ZorZoneType_FEPolygon,
                     {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}},
                     2,
                     5,
                     {F, F, F, F, D, I},
                     3,
                     0,
                     {-1, -2},
                     {7, 7},
                     {},
                     {-1, -2}});
    // 4: a cube and a pyramid on it, as polyhedra.
    zones.push_back({"polyhedra",
                     ZorZoneType_FEPolyhedron,
                     {{0, 0, 0},
                      {1, 0, 0},
                      {1, 1, 0},
                      {0, 1, 0},
                      {0, 0, 1},
                      {1, 0, 1},
                      {1, 1, 1},
                      {0, 1, 1},
                      {0.5, 0.5, 2}},
                     2,
                     10,
                     {F, F, F, F, D, I},
                     4,
                     0,
                     {7, 8},
                     {42, 42},
                     {1.0, 1.0 / 3.0},
                     {7, 8}});
    // 5: line segments, the second of one point.
    zones.push_back({"particles",
                     ZorZoneType_FELineSeg,
                     {{0, 0, 5}, {1, 0, 5}, {2, 0, 5}},
                     2,
                     0,
                     {F, F, F, F, D, I},
                     5,
                     0,
                     {0.5, 0.75},
                     {3, 1},
                     {},
                     {0.5, 0.75}});
    // 6: an ordered zone of 3 x 2 points; its cell values are stored per point
    // index, the last row and column unused.
    zones.push_back({"ordered",
                     ZorZoneType_Ordered,
                     {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 2, 0}, {1, 2, 0}, {2, 2, 0}},
                     6,
                     1,
                     {F, F, F, F, D, I},
                     6,
                     0,
                     {100, 101, 102, 103, 104, 105},
                     {9, 9},
                     {},
                     {100, 101}});
    return zones;
}

// The cube-and-pyramid faces, outward for their left element.
const std::vector<std::vector<int32_t>> kPolyFaces = {{1, 4, 3, 2}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 4, 8, 7},
                                                      {4, 1, 5, 8}, {5, 6, 7, 8}, {5, 6, 9},    {6, 7, 9},
                                                      {7, 8, 9},    {8, 5, 9}};

// Makes the data set of everyZoneType(): zone 1 wholly on demand, zones 3 and
// 4 with face maps on demand, everything else written at once. Zone 1's face
// neighbours come from its loader, with or without the host's own search
// inside the zone.
void buildEveryZoneType(Builder& b, int32_t neighborMode = ZorFaceNbrLODMode_HostInside) {
    b.newDataSet("Test set", kVariables);
    b.setAux(ZorUtilAuxDataDataSetGetRef(), "Common.Note", "made by the test");
    b.setAux(ZorUtilAuxDataDataSetGetRef(), "Common.Solver", "none");
    std::vector<ZoneSpec> zones = everyZoneType();
    for (const ZoneSpec& z : zones) {
        int64_t iMax = static_cast<int64_t>(z.points.size()), jMax = z.elements, kMax = z.kMax;
        if (z.type == ZorZoneType_Ordered) {
            iMax = 3;
            jMax = 2;
            kMax = 1;
        }
        ZorIndex n =
            b.addZone(z.name, z.type, iMax, jMax, kMax, z.types, {N, N, N, C, N, N}, z.strand, 0.5, z.parent);
        std::vector<std::vector<double>> values = {axis(z.points, 0), axis(z.points, 1),  axis(z.points, 2),
                                                   z.pressure,        temperatures(z, n), counts(z)};
        for (ZorIndex v = 1; v <= 6; ++v) {
            if (n == 1) {
                b.lodValues(n, v, values[static_cast<size_t>(v - 1)]);
            } else {
                b.setValues(n, v, values[static_cast<size_t>(v - 1)]);
            }
        }
    }
    b.setAux(ZorUtilAuxDataZoneGetRef(1), "Zone.Kind", "fluid");
    b.setAux(ZorUtilAuxDataZoneGetRef(2), "Zone.Kind", "wall");
    b.lodNodeMap(1, {5,  6,  7,  8,  1,  2,  3,  4,  9,  10, 11, 11, 12, 12, 12, 12,
                     13, 14, 15, 16, 17, 17, 17, 17, 18, 19, 20, 20, 21, 22, 23, 23});
    b.lodNeighbors(1, neighborMode);
    b.setNodeMap(2, {1, 2, 3, 4, 2, 5, 3, 3});
    b.lodFaceMap(3, {{1, 2}, {2, 3}, {3, 1}, {3, 4}, {4, 1}}, {1, 1, 1, 2, 2}, {0, 0, 2, 0, 0});
    b.lodFaceMap(4, kPolyFaces, {1, 1, 1, 1, 1, 1, 2, 2, 2, 2}, {0, 0, 0, 0, 0, 2, 0, 0, 0, 0});
    b.setNodeMap(5, {1, 2, 3, 3});
}

// Six times the volume a polyhedron's face stream encloses; positive when its faces turn outward.
double streamVolume6(const std::vector<double>& xyz, const std::vector<long>& stream) {
    double v = 0.0;
    size_t at = 1;
    for (long f = 0; f < stream.at(0); ++f) {
        long n = stream.at(at++);
        for (long k = 1; k + 1 < n; ++k) {
            const double* a = &xyz.at(static_cast<size_t>(3 * stream[at]));
            const double* bb = &xyz.at(static_cast<size_t>(3 * stream[at + static_cast<size_t>(k)]));
            const double* c = &xyz.at(static_cast<size_t>(3 * stream[at + static_cast<size_t>(k) + 1]));
            v += a[0] * (bb[1] * c[2] - bb[2] * c[1]) - a[1] * (bb[0] * c[2] - bb[2] * c[0]) +
                 a[2] * (bb[0] * c[1] - bb[1] * c[0]);
        }
        at += static_cast<size_t>(n);
    }
    return v;
}

// Checks what VTK read of zone `number` (from 1) of everyZoneType().
void expectZone(const readback::Block& block, ZorIndex number) {
    const ZoneSpec z = everyZoneType()[static_cast<size_t>(number - 1)];
    SCOPED_TRACE("zone " + z.name);
    EXPECT_EQ(block.path, z.name);
    ASSERT_EQ(block.points, static_cast<long>(z.points.size()));
    EXPECT_EQ(block.types, z.vtkTypes);
    for (size_t p = 0; p < z.points.size(); ++p) {
        for (int a = 0; a < 3; ++a)
            EXPECT_EQ(block.xyz.at(3 * p + static_cast<size_t>(a)), z.points[p][static_cast<size_t>(a)]);
    }
    for (size_t c = 0; c < z.volumes.size(); ++c) {
        if (z.vtkTypes[c] == 42) {
            EXPECT_NEAR(streamVolume6(block.xyz, block.faceStreams.at(static_cast<long>(c))),
                        6.0 * z.volumes[c], 1e-12);
        } else {
            EXPECT_NEAR(block.volumes.at(static_cast<long>(c)), z.volumes[c], 1e-12);
            EXPECT_EQ(block.validity.at(static_cast<long>(c)), 0);
        }
    }
    ASSERT_EQ(block.cellData.count("P"), 1u);
    EXPECT_EQ(block.cellData.at("P").type, "float");
    EXPECT_EQ(block.cellData.at("P").values, z.cellPressure);
    EXPECT_EQ(block.pointData.count("X"), 0u) << "coordinates are points, not arrays";
    EXPECT_EQ(block.pointData.at("T").type, "double");
    EXPECT_EQ(block.pointData.at("T").values, temperatures(z, number));
    EXPECT_EQ(block.pointData.at("N").type, "int");
    EXPECT_EQ(block.pointData.at("N").values, counts(z));
    EXPECT_EQ(block.fields.at("ZoneName"), std::vector<std::string>{z.name});
    EXPECT_EQ(block.fields.at("TimeValue"), std::vector<std::string>{"0.5"});
    EXPECT_EQ(block.fields.at("StrandID"), std::vector<std::string>{std::to_string(z.strand) + ".0"});
    EXPECT_EQ(block.fields.at("ParentZone"), std::vector<std::string>{std::to_string(z.parent) + ".0"});
    EXPECT_EQ(block.fields.at("ZoneNumber"), std::vector<std::string>{std::to_string(number) + ".0"});
}

class DataSetReport : public ::testing::Test {
  protected:
    void SetUp() override { minihost::resetRecords(); }
    void TearDown() override {
        minihost::setMemoryBudget(0);
        fluentload::setRequestsSerialized(false);
        minihost::setInterrupt(false);
        minihost::setRawPointersOffered(true);
    }
    Builder builder;
};

TEST_F(DataSetReport, InfoReadsEveryZoneAsTheHostHoldsIt) {
    buildEveryZoneType(builder);
    DataSetInfo info = fluentload::readDataSetInfo();
    ASSERT_TRUE(info.exists);
    EXPECT_EQ(info.title, "Test set");
    ASSERT_EQ(info.zones.size(), 6u);
    ASSERT_EQ(info.variables.size(), 6u);
    EXPECT_EQ(info.variables[2].dataType, fluentload::kMixed);  // Z: double in zone 1 only
    EXPECT_EQ(info.variables[3].location, ZorValueLocation_CellCentered);
    EXPECT_EQ(info.zones[0].kMax, 8);   // corners of a brick
    EXPECT_EQ(info.zones[3].kMax, 10);  // faces of the polyhedra
    EXPECT_EQ(info.zones[1].parentZone, 1);
    // Nothing was loaded to read this.
    for (const testdata::Source& s : builder.sources())
        EXPECT_EQ(s.loads.load(), 0);
}

TEST_F(DataSetReport, SummaryTextShowsVariablesZonesAndAuxiliaryData) {
    buildEveryZoneType(builder);
    const std::string text = fluentload::summaryText(fluentload::readDataSetInfo());
    const char* expected =
        "Data set \"Test set\": 6 zones, 6 variables\n"
        "Auxiliary data:\n"
        "  Common.Note = made by the test\n"
        "  Common.Solver = none\n"
        "Variables:\n"
        "     1  X          float    nodal\n"
        "     2  Y          float    nodal\n"
        "     3  Z          mixed    nodal\n"
        "     4  P          float    cell-centred\n"
        "     5  T          double   nodal\n"
        "     6  N          int32    nodal\n"
        "Zones:\n"
        "     1  bricks     brick          23 nodes, 4 elements; strand 1, time 0.5\n"
        "        Zone.Kind = fluid\n"
        "     2  surface    quadrilateral  5 nodes, 2 elements; strand 2, time 0.5, parent zone 1\n"
        "        Zone.Kind = wall\n"
        "     3  poly2d     polygon        4 nodes, 2 elements, 5 faces; strand 3, time 0.5\n"
        "     4  polyhedra  polyhedron     9 nodes, 2 elements, 10 faces; strand 4, time 0.5\n"
        "     5  particles  line segment   3 nodes, 2 elements; strand 5, time 0.5\n"
        "     6  ordered    ordered        3 x 2 x 1; strand 6, time 0.5\n";
    EXPECT_EQ(text, expected);
}

TEST_F(DataSetReport, SummaryTextSaysWhenNoDataSetWasMade) {
    minihost::deleteDataSet();
    EXPECT_EQ(fluentload::summaryText(fluentload::readDataSetInfo()), "The load made no data set.\n");
}

// Runs check_summary.py on the JSON summary of the present data set.
std::string checkedJson(const DataSetInfo& info, const readback::TempDir& dir) {
    const std::string file = dir / "summary.json";
    std::ofstream(file) << fluentload::summaryJson(info);
    std::string output;
    int status = readback::run(std::string(readback::kPython) + " " +
                                   readback::shellQuote(readback::testScript("check_summary.py")) + " " +
                                   readback::shellQuote(file),
                               &output);
    EXPECT_EQ(status, 0) << output;
    return output;
}

TEST_F(DataSetReport, JsonSummaryHasItsShapeWithoutValuesBeforeAPull) {
    REQUIRE_VTK();
    buildEveryZoneType(builder);
    readback::TempDir dir;
    const std::string facts = checkedJson(fluentload::readDataSetInfo(), dir);
    const std::string head =
        "data_set\ttrue\n"
        "title\tTest set\n"
        "aux\tCommon.Note\tmade by the test\n"
        "aux\tCommon.Solver\tnone\n"
        "var\tX\tfloat\tnodal\n"
        "var\tY\tfloat\tnodal\n"
        "var\tZ\tmixed\tnodal\n"
        "var\tP\tfloat\tcell-centred\n"
        "var\tT\tdouble\tnodal\n"
        "var\tN\tint32\tnodal\n"
        "zone\t1\tbricks\tbrick\t4\t23\t4\t8\t23\t4\t1\t0.5\t0\n"
        "zoneaux\t1\tZone.Kind\tfluid\n"
        "zonevar\t1\tfloat\tnodal\n"
        "zonevar\t1\tfloat\tnodal\n"
        "zonevar\t1\tdouble\tnodal\n"
        "zonevar\t1\tfloat\tcell-centred\n"
        "zonevar\t1\tdouble\tnodal\n"
        "zonevar\t1\tint32\tnodal\n"
        "zone\t2\tsurface\tquadrilateral\t2\t5\t2\t4\t5\t2\t2\t0.5\t1\n";
    EXPECT_EQ(facts.substr(0, head.size()), head);
    EXPECT_NE(facts.find("zone\t4\tpolyhedra\tpolyhedron\t7\t9\t2\t10\t9\t2\t4\t0.5\t0\n"),
              std::string::npos);
    EXPECT_NE(facts.find("zone\t6\tordered\tordered\t0\t3\t2\t1\t6\t6\t6\t0.5\t0\n"), std::string::npos);
    EXPECT_EQ(facts.find("values\t"), std::string::npos) << "no values before a pull";
}

TEST_F(DataSetReport, JsonSummaryOfNoDataSetKeepsItsShape) {
    REQUIRE_VTK();
    minihost::deleteDataSet();
    readback::TempDir dir;
    EXPECT_EQ(checkedJson(fluentload::readDataSetInfo(), dir), "data_set\tfalse\ntitle\t\n");
}

TEST_F(DataSetReport, PullLoadsEveryItemOnceWithSeveralThreadsAndMeasuresValues) {
    REQUIRE_VTK();
    buildEveryZoneType(builder);
    DataSetInfo info = fluentload::readDataSetInfo();
    fluentload::PullReport report = fluentload::pullDataSet(&info, 3, nullptr);
    EXPECT_EQ(report.items, 3 + 2 + 1 + 36);
    EXPECT_EQ(report.done, report.items);
    EXPECT_EQ(report.failed, 0);
    EXPECT_EQ(report.nodeMaps, 3);
    EXPECT_EQ(report.faceMaps, 2);
    EXPECT_EQ(report.faceNeighbors, 1);
    EXPECT_EQ(report.valueBlocks, 36);
    EXPECT_TRUE(report.problems.empty());
    EXPECT_FALSE(report.interrupted);
    EXPECT_TRUE(info.pulled);
    for (const testdata::Source& s : builder.sources()) {
        EXPECT_EQ(s.loads.load(), 1);
        EXPECT_EQ(s.unloads.load(), 0);
    }
    const fluentload::ValueStats& t = info.zones[0].values[4].stats;
    EXPECT_TRUE(t.pulled);
    EXPECT_EQ(t.count, 23);
    EXPECT_EQ(t.min, 1.0);
    EXPECT_EQ(t.max, 1.0 + 0.25 * 22);
    EXPECT_EQ(t.sum, 23.0 + 0.25 * 253);
    const fluentload::ValueStats& p = info.zones[5].values[3].stats;
    EXPECT_EQ(p.count, 6);
    EXPECT_EQ(p.sum, 615.0);

    readback::TempDir dir;
    const std::string facts = checkedJson(info, dir);
    for (const char* line : {"values\t1\tX\tnodal\tfloat\t23\t0.0\t7.0\t73.5\n",
                             "values\t1\tZ\tnodal\tdouble\t23\t0.0\t1.0\t9.0\n",
                             "values\t1\tP\tcell-centred\tfloat\t4\t1.5\t4.5\t12.0\n",
                             "values\t1\tT\tnodal\tdouble\t23\t1.0\t6.5\t86.25\n",
                             "values\t1\tN\tnodal\tint32\t23\t0.0\t66.0\t759.0\n",
                             "values\t6\tP\tcell-centred\tfloat\t6\t100.0\t105.0\t615.0\n"}) {
        EXPECT_NE(facts.find(line), std::string::npos) << line << "not in:\n" << facts;
    }
}

TEST_F(DataSetReport, SummaryTextAfterAPullGivesRanges) {
    buildEveryZoneType(builder);
    DataSetInfo info = fluentload::readDataSetInfo();
    fluentload::pullDataSet(&info, 1, nullptr);
    const std::string text = fluentload::summaryText(info);
    EXPECT_NE(text.find("     1  bricks     brick          23 nodes, 4 elements; strand 1, time 0.5\n"
                        "        Zone.Kind = fluid\n"
                        "        X          nodal         0 to 7, sum 73.5\n"
                        "        Y          nodal         0 to 1, sum 9.5\n"
                        "        Z          nodal         0 to 1, sum 9\n"
                        "        P          cell-centred  1.5 to 4.5, sum 12\n"),
              std::string::npos)
        << text;
}

TEST_F(DataSetReport, PullReportsItemsThatDoNotLoad) {
    builder.newDataSet("Broken", {"X", "Y"});
    ZorIndex zone = builder.addZone("bad", ZorZoneType_FETriangle, 3, 1, 0, {F, F}, {N, N}, 0, 0.0);
    builder.setValues(zone, 1, {0, 1, 0});
    testdata::Source& values = builder.lodValues(zone, 2, {0, 0, 1});
    values.fail = true;
    testdata::Source& map = builder.lodNodeMap(zone, {1, 2, 3});
    map.fail = true;
    DataSetInfo info = fluentload::readDataSetInfo();
    fluentload::PullReport report = fluentload::pullDataSet(&info, 2, nullptr);
    EXPECT_EQ(report.items, 3);
    EXPECT_EQ(report.failed, 2);
    EXPECT_EQ(report.valueBlocks, 1);
    EXPECT_EQ(values.loads.load(), 0);
    EXPECT_EQ(map.loads.load(), 0);
    ASSERT_EQ(report.problems.size(), 2u);
    std::sort(report.problems.begin(), report.problems.end());
    EXPECT_EQ(report.problems[0], "cannot load the node map of zone 1 \"bad\"");
    EXPECT_EQ(report.problems[1], "cannot load the values of variable 2 \"Y\" in zone 1 \"bad\"");
    EXPECT_FALSE(info.zones[0].values[1].stats.pulled);
    const std::string text = fluentload::summaryText(info);
    EXPECT_NE(text.find("        Y         not loaded\n"), std::string::npos) << text;
}

// Exports the present data set and reads it back.
Description exportAndRead(const readback::TempDir& dir, const std::string& name, bool compress,
                          fluentload::ExportReport* report = nullptr) {
    DataSetInfo info = fluentload::readDataSetInfo();
    fluentload::VtkWriteOptions options;
    options.compress = compress;
    fluentload::ExportReport local;
    std::string error;
    EXPECT_TRUE(
        fluentload::exportDataSet(info, dir / name, options, nullptr, report ? report : &local, &error))
        << error;
    return readback::describe(dir / name);
}

TEST_F(DataSetReport, ExportOfEveryZoneTypeReadsBackWithVtk) {
    REQUIRE_VTK();
    buildEveryZoneType(builder);
    readback::TempDir dir;
    fluentload::ExportReport report;
    Description d = exportAndRead(dir, "out.vtm", false, &report);
    ASSERT_EQ(d.error, "");
    EXPECT_EQ(report.zones, 6);
    EXPECT_EQ(report.files, 7);
    EXPECT_EQ(report.timeSteps, 1);
    ASSERT_EQ(d.steps.size(), 1u);
    ASSERT_EQ(d.steps[0].blocks.size(), 6u);
    for (ZorIndex z = 1; z <= 6; ++z)
        expectZone(d.steps[0].blocks[static_cast<size_t>(z - 1)], z);
    EXPECT_TRUE(std::filesystem::exists(dir / "out/zone1_bricks.vtu"));
    EXPECT_TRUE(std::filesystem::exists(dir / "out/zone6_ordered.vtu"));
    // The cells VTK made of the collapsed elements.
    const readback::Block& bricks = d.steps[0].blocks[0];
    EXPECT_EQ(bricks.cellPoints[0], (std::vector<long>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(bricks.cellPoints[2], (std::vector<long>{12, 13, 14, 15, 16}));
    const readback::Block& surface = d.steps[0].blocks[1];
    EXPECT_EQ(surface.cellPoints[1], (std::vector<long>{1, 4, 2}));
    const readback::Block& poly2d = d.steps[0].blocks[2];
    EXPECT_EQ(poly2d.cellPoints[0], (std::vector<long>{0, 1, 2}));
    EXPECT_EQ(poly2d.cellPoints[1], (std::vector<long>{0, 2, 3}));
    const readback::Block& ordered = d.steps[0].blocks[5];
    EXPECT_EQ(ordered.cellPoints[0], (std::vector<long>{0, 1, 4, 3}));
    EXPECT_EQ(ordered.cellPoints[1], (std::vector<long>{1, 2, 5, 4}));
}

TEST_F(DataSetReport, CompressedExportReadsBackTheSame) {
    REQUIRE_VTK();
    buildEveryZoneType(builder);
    readback::TempDir dir;
    Description d = exportAndRead(dir, "packed.vtm", true);
    ASSERT_EQ(d.error, "");
    ASSERT_EQ(d.steps.at(0).blocks.size(), 6u);
    for (ZorIndex z = 1; z <= 6; ++z)
        expectZone(d.steps[0].blocks[static_cast<size_t>(z - 1)], z);
}

TEST_F(DataSetReport, MemoryBudgetUnloadsItemsThatTheExportLoadsAgain) {
    REQUIRE_VTK();
    // Loader-only neighbours: the host's own search for neighbours inside a
    // zone reads the node map after the budget may have unloaded it.
    buildEveryZoneType(builder, ZorFaceNbrLODMode_LoaderOnly);
    minihost::setMemoryBudget(1);  // nothing fits: each request unloads the others
    fluentload::setRequestsSerialized(true);
    DataSetInfo info = fluentload::readDataSetInfo();
    fluentload::PullReport report = fluentload::pullDataSet(&info, 2, nullptr);
    EXPECT_EQ(report.failed, 0);
    EXPECT_EQ(info.zones[0].values[5].stats.sum, 759.0);
    int unloaded = 0;
    for (const testdata::Source& s : builder.sources())
        unloaded += s.unloads.load() > 0 ? 1 : 0;
    // Each request unloads every other item before and after it, so only the
    // last one stays; but a request for the neighbours inside a zone holds
    // items together and unloads nothing, so when the two threads leave that
    // one for last, the item asked for just before it stays as well.
    EXPECT_GE(unloaded, static_cast<int>(builder.sources().size()) - 2);

    readback::TempDir dir;
    Description d = exportAndRead(dir, "budget.vtm", false);
    ASSERT_EQ(d.error, "");
    ASSERT_EQ(d.steps.at(0).blocks.size(), 6u);
    for (ZorIndex z = 1; z <= 6; ++z)
        expectZone(d.steps[0].blocks[static_cast<size_t>(z - 1)], z);
    // Zone 1's node map and coordinates were loaded by the pull and again by the export.
    for (size_t k = 0; k < 7; ++k)
        EXPECT_GE(builder.sources()[k].loads.load(), 2) << "source " << k;
}

// Regression: under a budget the request for a zone's face neighbours used to
// unload the node map it had just loaded, and the host's search for neighbours
// inside the zone then read the freed map.
TEST_F(DataSetReport, MemoryBudgetKeepsTheNodeMapWhileNeighboursInsideAreFound) {
    buildEveryZoneType(builder);
    minihost::setMemoryBudget(1);  // nothing fits: each request unloads the others
    fluentload::setRequestsSerialized(true);
    DataSetInfo info = fluentload::readDataSetInfo();
    fluentload::PullReport report = fluentload::pullDataSet(&info, 1, nullptr);
    EXPECT_EQ(report.failed, 0);
    EXPECT_EQ(info.zones[0].values[5].stats.sum, 759.0);
}

// Two strands at two times, made out of order.
void buildSeries(Builder& b) {
    b.newDataSet("Series", {"X", "Y", "Z", "P"});
    const std::vector<int32_t> types = {F, F, F, F}, locations = {N, N, N, C};
    struct Spec {
        const char* name;
        int32_t strand;
        double time;
    };
    for (const Spec& s :
         {Spec{"fluid", 1, 0.2}, Spec{"wall", 2, 0.1}, Spec{"fluid", 1, 0.1}, Spec{"wall", 2, 0.2}}) {
        ZorIndex z = b.addZone(s.name, ZorZoneType_FETriangle, 3, 1, 0, types, locations, s.strand, s.time);
        b.setValues(z, 1, {0, 1, 0});
        b.setValues(z, 2, {0, 0, 1});
        b.setValues(z, 3, {s.time, s.time, s.time});
        b.setValues(z, 4, {static_cast<double>(z)});
        b.setNodeMap(z, {1, 2, 3});
    }
}

TEST_F(DataSetReport, SeriesExportsACollectionWithAStepPerSolutionTime) {
    REQUIRE_VTK();
    buildSeries(builder);
    readback::TempDir dir;
    fluentload::ExportReport report;
    Description d = exportAndRead(dir, "series.pvd", false, &report);
    ASSERT_EQ(d.error, "");
    EXPECT_EQ(report.timeSteps, 2);
    EXPECT_EQ(report.files, 4 + 2 + 1);
    ASSERT_EQ(d.steps.size(), 2u);
    EXPECT_EQ(d.steps[0].time, 0.1);
    EXPECT_EQ(d.steps[0].file, "series/step0.vtm");
    EXPECT_EQ(d.steps[1].time, 0.2);
    // Within a time, strand by strand: the block of a strand keeps its place.
    const long zoneAt[2][2] = {{3, 2}, {1, 4}};
    for (size_t s = 0; s < 2; ++s) {
        ASSERT_EQ(d.steps[s].blocks.size(), 2u);
        EXPECT_EQ(d.steps[s].blocks[0].path, "fluid");
        EXPECT_EQ(d.steps[s].blocks[1].path, "wall");
        for (size_t k = 0; k < 2; ++k) {
            const readback::Block& b = d.steps[s].blocks[k];
            EXPECT_EQ(b.fields.at("ZoneNumber"),
                      std::vector<std::string>{std::to_string(zoneAt[s][k]) + ".0"});
            EXPECT_EQ(b.fields.at("TimeValue"), std::vector<std::string>{s == 0 ? "0.1" : "0.2"});
            EXPECT_EQ(b.cellData.at("P").values, std::vector<double>{static_cast<double>(zoneAt[s][k])});
            EXPECT_EQ(b.xyz.at(2), static_cast<double>(static_cast<float>(s == 0 ? 0.1 : 0.2)));
        }
    }
}

TEST_F(DataSetReport, SeriesInOneMultiblockHasABlockPerSolutionTime) {
    REQUIRE_VTK();
    buildSeries(builder);
    readback::TempDir dir;
    Description d = exportAndRead(dir, "series.vtm", true);
    ASSERT_EQ(d.error, "");
    ASSERT_EQ(d.steps.at(0).blocks.size(), 4u);
    EXPECT_EQ(d.steps[0].blocks[0].path, "time 0.1/fluid");
    EXPECT_EQ(d.steps[0].blocks[1].path, "time 0.1/wall");
    EXPECT_EQ(d.steps[0].blocks[2].path, "time 0.2/fluid");
    EXPECT_EQ(d.steps[0].blocks[3].path, "time 0.2/wall");
}

// Runs check_export.py, the end-to-end scripts' check, on a pull's summary and an export.
std::string checkedExport(const std::string& output, bool compress) {
    DataSetInfo info = fluentload::readDataSetInfo();
    fluentload::PullReport pulled = fluentload::pullDataSet(&info, 2, nullptr);
    EXPECT_EQ(pulled.failed, 0);
    readback::TempDir dir;
    std::ofstream(dir / "summary.json") << fluentload::summaryJson(info);
    fluentload::VtkWriteOptions options;
    options.compress = compress;
    fluentload::ExportReport report;
    std::string error;
    EXPECT_TRUE(fluentload::exportDataSet(info, dir / output, options, nullptr, &report, &error)) << error;
    std::string result;
    readback::run(std::string(readback::kPython) + " " +
                      readback::shellQuote(readback::testScript("check_export.py")) + " " +
                      readback::shellQuote(dir / "summary.json") + " " + readback::shellQuote(dir / output),
                  &result);
    return result;
}

TEST_F(DataSetReport, ExportAgreesWithThePullAsTheScriptsCheckIt) {
    REQUIRE_VTK();
    buildEveryZoneType(builder);
    EXPECT_EQ(checkedExport("all.vtm", false), "ok: 6 zones, 14 cells\n");
    buildSeries(builder);
    EXPECT_EQ(checkedExport("series.pvd", true), "ok: 4 zones, 4 cells\n");
}

TEST_F(DataSetReport, ScriptCheckFindsAnExportThatDisagreesWithThePull) {
    REQUIRE_VTK();
    buildSeries(builder);
    DataSetInfo info = fluentload::readDataSetInfo();
    fluentload::pullDataSet(&info, 1, nullptr);
    readback::TempDir dir;
    std::ofstream(dir / "summary.json") << fluentload::summaryJson(info);
    // The values change between the pull and the export.
    builder.setValues(2, 4, {42.0});
    fluentload::ExportReport report;
    std::string error;
    ASSERT_TRUE(fluentload::exportDataSet(info, dir / "series.vtm", {}, nullptr, &report, &error)) << error;
    std::string result;
    EXPECT_EQ(readback::run(std::string(readback::kPython) + " " +
                                readback::shellQuote(readback::testScript("check_export.py")) + " " +
                                readback::shellQuote(dir / "summary.json") + " " +
                                readback::shellQuote(dir / "series.vtm"),
                            &result),
              1);
    EXPECT_EQ(result, "zone 2 'wall', variable 'P': min 42.0 max 42.0 sum 42.0, the pull measured 2 2 2\n");
}

TEST_F(DataSetReport, OrderedZoneWithoutCoordinatesIsPlacedByItsIndices) {
    REQUIRE_VTK();
    builder.newDataSet("Residuals", {"Iteration", "continuity"});
    ZorIndex z = builder.addZone("Residuals", ZorZoneType_Ordered, 4, 1, 1, {D, D}, {N, N}, 0, 0.0);
    builder.setValues(z, 1, {1, 2, 3, 4});
    builder.setValues(z, 2, {1, 0.1, 0.01, 0.001});
    readback::TempDir dir;
    Description d = exportAndRead(dir, "residuals.vtm", false);
    ASSERT_EQ(d.error, "");
    const readback::Block& b = d.steps.at(0).blocks.at(0);
    EXPECT_EQ(b.types, (std::vector<int>{3, 3, 3}));
    EXPECT_EQ(b.xyz, (std::vector<double>{0, 0, 0, 1, 0, 0, 2, 0, 0, 3, 0, 0}));
    EXPECT_EQ(b.pointData.at("continuity").values, (std::vector<double>{1, 0.1, 0.01, 0.001}));
    EXPECT_EQ(b.pointData.at("Iteration").values, (std::vector<double>{1, 2, 3, 4}));
}

TEST_F(DataSetReport, FiniteElementZoneWithoutCoordinatesCannotBeExported) {
    builder.newDataSet("No coordinates", {"P"});
    ZorIndex z = builder.addZone("tri", ZorZoneType_FETriangle, 3, 1, 0, {F}, {N}, 0, 0.0);
    builder.setValues(z, 1, {1, 2, 3});
    builder.setNodeMap(z, {1, 2, 3});
    fluentload::VtkGrid grid;
    std::string error;
    std::vector<std::string> problems;
    EXPECT_FALSE(fluentload::zoneGrid(fluentload::readDataSetInfo(), 0, &grid, &error, &problems));
    EXPECT_EQ(error, "the data set has no variable X to place the points of zone 1 \"tri\"");
}

// The count of node numbers outside a zone, against the plain comparison,
// for every length up to a few rounds of four, a bad number in every place,
// the numbers next to both ends of the range, and limits at the ends of the
// 32-bit numbers.
TEST(CountOutside, CountsEveryNumberOutsideTheRangeAsThePlainComparison) {
    auto plain = [](const std::vector<int32_t>& v, int64_t points) {
        int64_t n = 0;
        for (int32_t x : v)
            n += x < 0 || x >= points;
        return n;
    };
    const int32_t kMax = std::numeric_limits<int32_t>::max();
    const int32_t kMin = std::numeric_limits<int32_t>::min();
    for (int64_t points : {int64_t{0}, int64_t{1}, int64_t{7}, int64_t{kMax}, int64_t{kMax} + 1,
                           int64_t{1} << 40, int64_t{-3}}) {
        for (size_t length = 0; length <= 19; ++length) {
            for (size_t bad = 0; bad <= length; ++bad) {
                std::vector<int32_t> v(length);
                for (size_t i = 0; i < length; ++i)
                    v[i] = static_cast<int32_t>(i % 7);
                if (bad < length)
                    v[bad] = bad % 2 == 0 ? -1 : 7;
                SCOPED_TRACE(std::to_string(points) + " " + std::to_string(length) + " " +
                             std::to_string(bad));
                EXPECT_EQ(fluentload::countOutside(v.data(), v.size(), points), plain(v, points));
            }
        }
        const std::vector<int32_t> edges = {kMin, kMin + 1, -2, -1, 0, 1, 5, 6, 7, 8, kMax - 1, kMax};
        EXPECT_EQ(fluentload::countOutside(edges.data(), edges.size(), points), plain(edges, points))
            << points;
    }
    // Of 7 points: 1, 5 and 6 of the edges lie inside, besides 0.
    const std::vector<int32_t> edges = {kMin, -1, 0, 1, 5, 6, 7, kMax};
    EXPECT_EQ(fluentload::countOutside(edges.data(), edges.size(), 7), 4);
}

// The statistics of a pull: smallest and largest as a comparison value by
// value from the first gives them (NaN passed over, of zeros of both signs
// the first met), the sum of every value; the same figures whether they are
// read where the host keeps the values or from a copy.
TEST_F(DataSetReport, PullStatisticsKeepTheFirstZeroPassOverNaNAndAgreeWithoutRawArrays) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<std::vector<double>> columns;
    for (size_t place : {size_t{0}, size_t{2}, size_t{5}, size_t{13}}) {
        std::vector<double> above(19, 2.5), below(19, -4.0);
        above[place] = -0.0;
        above[place + 3] = 0.0;
        above[18 - place] = nan;
        below[place] = 0.0;
        below[place + 4] = -0.0;
        columns.push_back(above);
        columns.push_back(below);
    }
    std::vector<double> ramp(19);
    for (size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = 0.125 * static_cast<double>(i) - 1.0;
    columns.push_back(ramp);
    for (bool raw : {true, false}) {
        SCOPED_TRACE(raw ? "raw arrays" : "copies");
        minihost::setRawPointersOffered(raw);
        std::vector<std::string> names;
        for (size_t c = 0; c < columns.size(); ++c)
            names.push_back("V" + std::to_string(c));
        builder.newDataSet("Statistics", names);
        const std::vector<int32_t> types(columns.size(), ZorFieldDataType_Double),
            locations(columns.size(), N);
        ZorIndex z = builder.addZone("points", ZorZoneType_Ordered, 19, 1, 1, types, locations, 0, 0.0);
        for (size_t c = 0; c < columns.size(); ++c)
            builder.setValues(z, static_cast<ZorIndex>(c + 1), columns[c]);
        DataSetInfo info = fluentload::readDataSetInfo();
        fluentload::PullReport report = fluentload::pullDataSet(&info, 1, nullptr);
        ASSERT_EQ(report.failed, 0);
        for (size_t c = 0; c < columns.size(); ++c) {
            const fluentload::ValueStats& s = info.zones[0].values[c].stats;
            double low = std::numeric_limits<double>::infinity(), high = -low, sum = 0.0;
            for (double v : columns[c]) {
                low = v < low ? v : low;
                high = high < v ? v : high;
                sum += v;
            }
            SCOPED_TRACE("column " + std::to_string(c));
            EXPECT_EQ(s.count, 19);
            EXPECT_EQ(s.min, low);
            EXPECT_EQ(std::signbit(s.min), std::signbit(low));
            EXPECT_EQ(s.max, high);
            EXPECT_EQ(std::signbit(s.max), std::signbit(high));
            // Every sum here is exact in any order, or NaN.
            if (std::isnan(sum)) {
                EXPECT_TRUE(std::isnan(s.sum));
            } else {
                EXPECT_EQ(s.sum, sum);
            }
        }
    }
}

TEST_F(DataSetReport, NodeMapOutsideTheZoneIsCaughtByThePullAndTheExport) {
    builder.newDataSet("Bad map", {"X", "Y"});
    ZorIndex z = builder.addZone("tri", ZorZoneType_FETriangle, 3, 1, 0, {F, F}, {N, N}, 0, 0.0);
    builder.setValues(z, 1, {0, 1, 0});
    builder.setValues(z, 2, {0, 0, 1});
    builder.setNodeMap(z, {1, 2, 4});
    DataSetInfo info = fluentload::readDataSetInfo();
    fluentload::PullReport report = fluentload::pullDataSet(&info, 1, nullptr);
    ASSERT_EQ(report.problems.size(), 1u);
    EXPECT_EQ(report.problems[0], "the node map of zone 1 \"tri\" holds 1 node numbers outside 1 to 3");
    fluentload::VtkGrid grid;
    std::string error;
    std::vector<std::string> problems;
    EXPECT_FALSE(fluentload::zoneGrid(info, 0, &grid, &error, &problems));
    EXPECT_EQ(error, "the node map of zone 1 \"tri\" refers to node 4 of 3");
}

TEST_F(DataSetReport, InterruptStopsThePull) {
    buildEveryZoneType(builder);
    DataSetInfo info = fluentload::readDataSetInfo();
    minihost::setInterrupt(true);
    fluentload::PullReport report = fluentload::pullDataSet(&info, 2, nullptr);
    EXPECT_TRUE(report.interrupted);
    EXPECT_EQ(report.done, 0);
    EXPECT_EQ(report.items, 42);
    for (const testdata::Source& s : builder.sources())
        EXPECT_EQ(s.loads.load(), 0);
}

TEST_F(DataSetReport, ExportNameMustBeAMultiblockOrACollection) {
    EXPECT_TRUE(fluentload::isExportName("a/b.vtm"));
    EXPECT_TRUE(fluentload::isExportName("B.PVD"));
    EXPECT_FALSE(fluentload::isExportName("b.vtu"));
    EXPECT_FALSE(fluentload::isExportName("vtm"));
}

// ---- The whole of fluentload's work after a load, as main() runs it ----------------

TEST_F(DataSetReport, AfterLoadPullsReportsAndExports) {
    REQUIRE_VTK();
    buildEveryZoneType(builder);
    readback::TempDir dir;
    fluentload::Options options;
    options.pull = true;
    options.threads = 2;
    options.summaryJsonFile = dir / "summary.json";
    options.output = dir / "all.vtm";
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    int status = fluentload::afterLoad(options);
    std::string out = testing::internal::GetCapturedStdout();
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(status, 0);
    EXPECT_EQ(err, "");
    EXPECT_EQ(out.rfind("Pulled 42 items in ", 0), 0u) << out;
    EXPECT_NE(
        out.find(
            " with 2 threads: 3 node maps, 2 face maps, 1 face neighbour items, 36 value blocks; 0 failed\n"
            "Data set \"Test set\": 6 zones, 6 variables\n"),
        std::string::npos)
        << out;
    EXPECT_NE(out.find("        P          cell-centred  1.5 to 4.5, sum 12\n"), std::string::npos) << out;
    EXPECT_NE(out.find("Exported 6 zones at 1 solution time to " + options.output + ": 7 files, "),
              std::string::npos)
        << out;
    EXPECT_NE(out.find("Load-on-demand: 10 loads, 0 unloads, 0 failed loads; "), std::string::npos) << out;
    std::string result;
    readback::run(
        std::string(readback::kPython) + " " + readback::shellQuote(readback::testScript("check_export.py")) +
            " " + readback::shellQuote(options.summaryJsonFile) + " " + readback::shellQuote(options.output),
        &result);
    EXPECT_EQ(result, "ok: 6 zones, 14 cells\n");
}

TEST_F(DataSetReport, AfterLoadUnderABudgetUnloadsAndReloads) {
    REQUIRE_VTK();
    buildEveryZoneType(builder, ZorFaceNbrLODMode_LoaderOnly);
    minihost::setMemoryBudget(1);
    fluentload::setRequestsSerialized(true);
    readback::TempDir dir;
    fluentload::Options options;
    options.pull = true;
    options.threads = 3;
    options.quiet = true;
    options.compress = true;
    options.summaryJsonFile = dir / "summary.json";
    options.output = dir / "all.pvd";
    testing::internal::CaptureStdout();
    int status = fluentload::afterLoad(options);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << "--quiet keeps standard output empty";
    EXPECT_EQ(status, 0);
    int reloaded = 0;
    for (const testdata::Source& s : builder.sources())
        reloaded += s.loads.load() >= 2 && s.unloads.load() >= 1 ? 1 : 0;
    EXPECT_GE(reloaded, 7);
    std::string result;
    readback::run(
        std::string(readback::kPython) + " " + readback::shellQuote(readback::testScript("check_export.py")) +
            " " + readback::shellQuote(options.summaryJsonFile) + " " + readback::shellQuote(options.output),
        &result);
    EXPECT_EQ(result, "ok: 6 zones, 14 cells\n");
}

TEST_F(DataSetReport, AfterLoadWithoutADataSetHasNothingToPullOrExport) {
    minihost::deleteDataSet();
    readback::TempDir dir;
    fluentload::Options options;
    options.pull = true;
    options.output = dir / "none.vtm";
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    int status = fluentload::afterLoad(options);
    std::string out = testing::internal::GetCapturedStdout();
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(status, 1);
    EXPECT_EQ(out, "The load made no data set.\n");
    EXPECT_EQ(err, "fluentload: the load made no data set; nothing to pull or export\n");
    EXPECT_FALSE(std::filesystem::exists(dir / "none.vtm"));
}

TEST_F(DataSetReport, AfterLoadReportsWhatFailedAndStillExportsWhatLoads) {
    REQUIRE_VTK();
    builder.newDataSet("Broken", {"X", "Y", "P"});
    ZorIndex zone =
        builder.addZone("bad values", ZorZoneType_FETriangle, 3, 1, 0, {F, F, F}, {N, N, C}, 0, 0.0);
    builder.setValues(zone, 1, {0, 1, 0});
    builder.setValues(zone, 2, {0, 0, 1});
    builder.setNodeMap(zone, {1, 2, 3});
    builder.lodValues(zone, 3, {5}).fail = true;
    zone = builder.addZone("bad map", ZorZoneType_FETriangle, 3, 1, 0, {F, F, F}, {N, N, C}, 0, 0.0);
    builder.lodNodeMap(zone, {1, 2, 3}).fail = true;
    zone = builder.addZone("good", ZorZoneType_FETriangle, 3, 1, 0, {F, F, F}, {N, N, C}, 0, 0.0);
    builder.setValues(zone, 1, {0, 1, 0});
    builder.setValues(zone, 2, {0, 0, 1});
    builder.setValues(zone, 3, {7});
    builder.setNodeMap(zone, {1, 2, 3});
    readback::TempDir dir;
    fluentload::Options options;
    options.pull = true;
    options.quiet = true;
    options.output = dir / "bad.vtm";
    testing::internal::CaptureStderr();
    int status = fluentload::afterLoad(options);
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(status, 1);
    EXPECT_EQ(
        err,
        "fluentload: cannot load the values of variable 3 \"P\" in zone 1 \"bad values\"\n"
        "fluentload: cannot load the node map of zone 2 \"bad map\"\n"
        "fluentload: cannot load variable P of zone 1 \"bad values\"; it is left out of the export\n"
        "fluentload: cannot load the node map of zone 2 \"bad map\"; the zone is left out of the export\n");
    Description d = readback::describe(options.output);
    ASSERT_EQ(d.error, "");
    ASSERT_EQ(d.steps.at(0).blocks.size(), 2u);
    EXPECT_EQ(d.steps[0].blocks[0].path, "bad values");
    EXPECT_EQ(d.steps[0].blocks[0].cellData.count("P"), 0u);
    EXPECT_EQ(d.steps[0].blocks[1].path, "good");
    EXPECT_EQ(d.steps[0].blocks[1].cellData.at("P").values, std::vector<double>{7});
}

}  // namespace
