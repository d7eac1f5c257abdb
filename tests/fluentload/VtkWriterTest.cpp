// The VTK writer against VTK's own readers: cells of every kind, arrays of
// every type, field data, raw and compressed appended data, multiblock files
// and collections.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>

#include "VtkReadBack.h"
#include "apps/fluentload/VtkWriter.h"

namespace {

using fluentload::VtkArray;
using fluentload::VtkCell;
using fluentload::VtkGrid;
using fluentload::VtkWriteOptions;
using readback::Description;

#define REQUIRE_VTK()                                                         \
    do {                                                                      \
        if (!readback::pythonAvailable())                                     \
            GTEST_SKIP() << "no " << readback::kPython << " to run VTK with"; \
    } while (0)

// A hexahedron (points 0-7), a tetrahedron (8-11) and a polyhedron (a
// tetrahedron given by faces, 8-11 again), with arrays of every type.
VtkGrid sampleGrid() {
    VtkGrid grid;
    std::vector<double> xyz = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0, 1, 1, 0, 1,
                               1, 1, 1, 0, 1, 1, 2, 0, 0, 3, 0, 0, 2, 1, 0, 2, 0, 1};
    grid.points = fluentload::makeVtkArray("Points", xyz, 3);
    VtkCell hex;
    hex.type = fluentload::kVtkHexahedron;
    hex.points = {0, 1, 2, 3, 4, 5, 6, 7};
    grid.cells.append(hex);
    VtkCell tet;
    tet.type = fluentload::kVtkTetra;
    tet.points = {8, 9, 10, 11};
    grid.cells.append(tet);
    VtkCell poly;
    poly.type = fluentload::kVtkPolyhedron;
    poly.points = {8, 9, 10, 11};
    poly.faces = {4, 3, 8, 10, 9, 3, 8, 9, 11, 3, 9, 10, 11, 3, 10, 8, 11};
    grid.cells.append(poly);

    std::vector<float> pf;
    std::vector<int32_t> pi;
    std::vector<int16_t> ps;
    std::vector<uint8_t> pb;
    for (int p = 0; p < 12; ++p) {
        pf.push_back(0.5f * p);
        pi.push_back(-7 * p);
        ps.push_back(static_cast<int16_t>(300 - p));
        pb.push_back(static_cast<uint8_t>(p * 20));
    }
    grid.pointData.push_back(fluentload::makeVtkArray("Temperature", pf));
    grid.pointData.push_back(fluentload::makeVtkArray("Cell id & <mark>", pi));
    grid.pointData.push_back(fluentload::makeVtkArray("Short", ps));
    grid.pointData.push_back(fluentload::makeVtkArray("Byte", pb));
    grid.cellData.push_back(fluentload::makeVtkArray("Pressure", std::vector<double>{1.25, -2.5, 1e300}));
    grid.cellData.push_back(
        fluentload::makeVtkArray("Velocity", std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8, 9}, 3));
    grid.fieldData.push_back(fluentload::makeVtkArray("TimeValue", std::vector<double>{0.125}));
    grid.fieldStrings = {{"ZoneName", "inlet \"A\" <1>"}};
    return grid;
}

void expectSample(const readback::Block& b) {
    EXPECT_EQ(b.points, 12);
    EXPECT_EQ(b.cells, 3);
    EXPECT_EQ(b.types, (std::vector<int>{12, 10, 42}));
    ASSERT_EQ(b.cellPoints.size(), 3u);
    EXPECT_EQ(b.cellPoints[0], (std::vector<long>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(b.cellPoints[1], (std::vector<long>{8, 9, 10, 11}));
    EXPECT_EQ(b.cellPoints[2], (std::vector<long>{8, 9, 10, 11}));
    EXPECT_EQ(b.faceStreams.at(2),
              (std::vector<long>{4, 3, 8, 10, 9, 3, 8, 9, 11, 3, 9, 10, 11, 3, 10, 8, 11}));
    EXPECT_NEAR(b.volumes.at(0), 1.0, 1e-12);
    EXPECT_NEAR(b.volumes.at(1), 1.0 / 6.0, 1e-12);
    ASSERT_EQ(b.xyz.size(), 36u);
    EXPECT_EQ(b.xyz[3 * 9], 3.0);
    EXPECT_EQ(b.xyz[3 * 11 + 2], 1.0);
    EXPECT_EQ(b.pointData.at("Temperature").type, "float");
    EXPECT_EQ(b.pointData.at("Temperature").values[11], 5.5);
    EXPECT_EQ(b.pointData.at("Cell id & <mark>").type, "int");
    EXPECT_EQ(b.pointData.at("Cell id & <mark>").values[3], -21);
    EXPECT_EQ(b.pointData.at("Short").type, "short");
    EXPECT_EQ(b.pointData.at("Short").values[1], 299);
    EXPECT_EQ(b.pointData.at("Byte").type, "unsigned char");
    EXPECT_EQ(b.pointData.at("Byte").values[10], 200);
    EXPECT_EQ(b.cellData.at("Pressure").type, "double");
    EXPECT_EQ(b.cellData.at("Pressure").values, (std::vector<double>{1.25, -2.5, 1e300}));
    EXPECT_EQ(b.cellData.at("Velocity").components, 3);
    EXPECT_EQ(b.cellData.at("Velocity").values[7], 8);
    EXPECT_EQ(b.fields.at("TimeValue"), (std::vector<std::string>{"0.125"}));
    EXPECT_EQ(b.fields.at("ZoneName"), (std::vector<std::string>{"inlet \"A\" <1>"}));
}

TEST(VtkWriter, RawAppendedGridReadsBackWithVtk) {
    REQUIRE_VTK();
    readback::TempDir dir;
    std::string error;
    ASSERT_TRUE(fluentload::writeVtu(dir / "grid.vtu", sampleGrid(), VtkWriteOptions(), &error)) << error;
    Description d = readback::describe(dir / "grid.vtu");
    ASSERT_EQ(d.error, "");
    ASSERT_EQ(d.steps.size(), 1u);
    ASSERT_EQ(d.steps[0].blocks.size(), 1u);
    expectSample(d.steps[0].blocks[0]);
}

TEST(VtkWriter, CompressedGridReadsBackWithVtkAndSaysSo) {
    REQUIRE_VTK();
    readback::TempDir dir;
    std::string error;
    VtkWriteOptions options;
    options.compress = true;
    options.blockSize = 40;  // many blocks, the last one partial
    ASSERT_TRUE(fluentload::writeVtu(dir / "grid.vtu", sampleGrid(), options, &error)) << error;
    std::ifstream in(dir / "grid.vtu", std::ios::binary);
    std::string head(400, '\0');
    in.read(&head[0], 400);
    EXPECT_NE(head.find("compressor=\"vtkZLibDataCompressor\""), std::string::npos);
    EXPECT_NE(head.find("header_type=\"UInt64\""), std::string::npos);
    Description d = readback::describe(dir / "grid.vtu");
    ASSERT_EQ(d.error, "");
    ASSERT_EQ(d.steps.at(0).blocks.size(), 1u);
    expectSample(d.steps[0].blocks[0]);
}

TEST(VtkWriter, CompressedBlocksThatFillExactlyReadBack) {
    REQUIRE_VTK();
    readback::TempDir dir;
    VtkGrid grid;
    // 64 points of 3 doubles: 1536 bytes, exactly six blocks of 256 bytes.
    std::vector<double> xyz;
    for (int p = 0; p < 64; ++p)
        xyz.insert(xyz.end(), {static_cast<double>(p), p * 0.5, -p * 0.25});
    grid.points = fluentload::makeVtkArray("Points", xyz, 3);
    for (int64_t p = 0; p + 1 < 64; ++p) {
        VtkCell line;
        line.type = fluentload::kVtkLine;
        line.points = {p, p + 1};
        grid.cells.append(line);
    }
    VtkWriteOptions options;
    options.compress = true;
    options.blockSize = 256;
    std::string error;
    ASSERT_TRUE(fluentload::writeVtu(dir / "lines.vtu", grid, options, &error)) << error;
    Description d = readback::describe(dir / "lines.vtu");
    ASSERT_EQ(d.error, "");
    const readback::Block& b = d.steps.at(0).blocks.at(0);
    EXPECT_EQ(b.points, 64);
    EXPECT_EQ(b.cells, 63);
    EXPECT_EQ(b.xyz, std::vector<double>(xyz.begin(), xyz.end()));
    EXPECT_EQ(b.cellPoints[62], (std::vector<long>{62, 63}));
}

TEST(VtkWriter, EmptyGridReadsBack) {
    REQUIRE_VTK();
    readback::TempDir dir;
    VtkGrid grid;
    grid.points = fluentload::makeVtkArray("Points", std::vector<float>(), 3);
    grid.pointData.push_back(fluentload::makeVtkArray("P", std::vector<float>()));
    std::string error;
    for (bool compress : {false, true}) {
        VtkWriteOptions options;
        options.compress = compress;
        ASSERT_TRUE(fluentload::writeVtu(dir / "empty.vtu", grid, options, &error)) << error;
        Description d = readback::describe(dir / "empty.vtu");
        ASSERT_EQ(d.error, "");
        EXPECT_EQ(d.steps.at(0).blocks.at(0).points, 0);
        EXPECT_EQ(d.steps.at(0).blocks.at(0).cells, 0);
    }
}

TEST(VtkWriter, MultiblockNestsBlocksWithTheirNames) {
    REQUIRE_VTK();
    readback::TempDir dir;
    std::string error;
    std::filesystem::create_directory(dir / "parts");
    ASSERT_TRUE(fluentload::writeVtu(dir / "parts/a.vtu", sampleGrid(), VtkWriteOptions(), &error)) << error;
    std::vector<fluentload::VtmEntry> entries = {
        {"time 0.5", "", {{"fluid & solid", "parts/a.vtu", {}}, {"wall", "parts/a.vtu", {}}}},
        {"alone", "parts/a.vtu", {}}};
    ASSERT_TRUE(fluentload::writeVtm(dir / "all.vtm", entries, &error)) << error;
    Description d = readback::describe(dir / "all.vtm");
    ASSERT_EQ(d.error, "");
    ASSERT_EQ(d.steps.at(0).blocks.size(), 3u);
    EXPECT_EQ(d.steps[0].blocks[0].path, "time 0.5/fluid & solid");
    EXPECT_EQ(d.steps[0].blocks[1].path, "time 0.5/wall");
    EXPECT_EQ(d.steps[0].blocks[2].path, "alone");
    expectSample(d.steps[0].blocks[2]);
}

TEST(VtkWriter, CollectionListsEachTimeStep) {
    REQUIRE_VTK();
    readback::TempDir dir;
    std::string error;
    ASSERT_TRUE(fluentload::writeVtu(dir / "a.vtu", sampleGrid(), VtkWriteOptions(), &error)) << error;
    ASSERT_TRUE(fluentload::writeVtm(dir / "s0.vtm", {{"a", "a.vtu", {}}}, &error)) << error;
    ASSERT_TRUE(fluentload::writeVtm(dir / "s1.vtm", {{"b", "a.vtu", {}}, {"c", "a.vtu", {}}}, &error))
        << error;
    ASSERT_TRUE(fluentload::writePvd(dir / "series.pvd",
                                     {{0.1, 0, "s0.vtm"}, {0.30000000000000004, 0, "s1.vtm"}}, &error))
        << error;
    Description d = readback::describe(dir / "series.pvd");
    ASSERT_EQ(d.error, "");
    ASSERT_EQ(d.steps.size(), 2u);
    EXPECT_EQ(d.steps[0].time, 0.1);
    EXPECT_EQ(d.steps[1].time, 0.30000000000000004);
    EXPECT_EQ(d.steps[0].blocks.size(), 1u);
    ASSERT_EQ(d.steps[1].blocks.size(), 2u);
    EXPECT_EQ(d.steps[1].blocks[1].path, "c");
}

TEST(VtkWriter, ArrayOfTheWrongLengthIsRefusedWithItsName) {
    readback::TempDir dir;
    VtkGrid grid = sampleGrid();
    grid.cellData.push_back(fluentload::makeVtkArray("Short one", std::vector<float>{1, 2}));
    std::string error;
    EXPECT_FALSE(fluentload::writeVtu(dir / "bad.vtu", grid, VtkWriteOptions(), &error));
    EXPECT_EQ(error, "array Short one has 2 tuples where 3 are needed");
}

TEST(VtkWriter, CellOutsideThePointsIsRefused) {
    readback::TempDir dir;
    VtkGrid grid = sampleGrid();
    VtkCell line;
    line.type = fluentload::kVtkLine;
    line.points = {3, 12};
    grid.cells.append(line);
    grid.cellData.clear();
    std::string error;
    EXPECT_FALSE(fluentload::writeVtu(dir / "bad.vtu", grid, VtkWriteOptions(), &error));
    EXPECT_EQ(error, "a cell refers to point 12 of 12");
}

TEST(VtkWriter, UnwritablePlaceIsReported) {
    readback::TempDir dir;
    std::string error;
    std::string path = dir / "no-such-folder/grid.vtu";
    EXPECT_FALSE(fluentload::writeVtu(path, sampleGrid(), VtkWriteOptions(), &error));
    EXPECT_EQ(error, "cannot write " + path + ": No such file or directory");
}

}  // namespace
