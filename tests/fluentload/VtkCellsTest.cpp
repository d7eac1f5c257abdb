// The host's elements as VTK cells: collapsed bricks and quadrilaterals,
// orientation by geometry, polygon loops and outward polyhedron faces.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "apps/fluentload/VtkCells.h"

namespace {

using fluentload::classicCell;
using fluentload::PolyFaces;
using fluentload::VtkCell;
using fluentload::VtkCellArrays;

// The corners of the unit cube in the host's brick order: bottom 0-3, top 4-7.
const std::vector<double> kCube = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0, 1, 1, 0, 1, 1, 1, 1, 0, 1, 1};

double volume6(const std::vector<double>& xyz, const std::vector<int64_t>& p) {
    return fluentload::tetraVolume6(&xyz[3 * p[0]], &xyz[3 * p[1]], &xyz[3 * p[2]], &xyz[3 * p[3]]);
}

// Six times the signed volume enclosed by a polyhedron's face stream
// (positive when every face turns outward).
double streamVolume6(const std::vector<double>& xyz, const std::vector<int64_t>& stream) {
    double v = 0.0;
    size_t at = 1;
    for (int64_t f = 0; f < stream[0]; ++f) {
        int64_t n = stream[at++];
        // Fan of triangles from the face's first point, against the origin.
        for (int64_t k = 1; k + 1 < n; ++k) {
            const double* a = &xyz[3 * stream[at]];
            const double* b = &xyz[3 * stream[at + k]];
            const double* c = &xyz[3 * stream[at + k + 1]];
            v += a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) +
                 a[2] * (b[0] * c[1] - b[1] * c[0]);
        }
        at += static_cast<size_t>(n);
    }
    return v;
}

TEST(VtkCells, BrickWithEightCornersIsAHexahedronFacingItsTop) {
    const int64_t corners[8] = {0, 1, 2, 3, 4, 5, 6, 7};
    VtkCell cell;
    classicCell(4, corners, kCube.data(), &cell);
    EXPECT_EQ(cell.type, fluentload::kVtkHexahedron);
    EXPECT_EQ(cell.points, (std::vector<int64_t>{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST(VtkCells, UpsideDownBrickIsTurnedOver) {
    const int64_t corners[8] = {4, 5, 6, 7, 0, 1, 2, 3};
    VtkCell cell;
    classicCell(4, corners, kCube.data(), &cell);
    EXPECT_EQ(cell.type, fluentload::kVtkHexahedron);
    EXPECT_EQ(cell.points, (std::vector<int64_t>{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST(VtkCells, BrickCollapsedToFourPointsIsATetrahedron) {
    // The usual tetrahedron in a brick: a b c c d d d d.
    const int64_t corners[8] = {0, 1, 3, 3, 4, 4, 4, 4};
    VtkCell cell;
    classicCell(4, corners, kCube.data(), &cell);
    ASSERT_EQ(cell.type, fluentload::kVtkTetra);
    ASSERT_EQ(cell.points.size(), 4u);
    EXPECT_GT(volume6(kCube, cell.points), 0.0);
    EXPECT_NEAR(volume6(kCube, cell.points), 1.0, 1e-12);
}

TEST(VtkCells, InvertedTetrahedronIsTurned) {
    const int64_t corners[4] = {0, 3, 1, 4};  // (0, 3, 1) turns away from 4
    VtkCell cell;
    classicCell(3, corners, kCube.data(), &cell);
    ASSERT_EQ(cell.type, fluentload::kVtkTetra);
    EXPECT_NEAR(volume6(kCube, cell.points), 1.0, 1e-12);
}

TEST(VtkCells, BrickCollapsedToFivePointsIsAPyramidOverItsBase) {
    // Pyramid in a brick: base a b c d, apex repeated four times; base given upside down.
    const int64_t corners[8] = {0, 3, 2, 1, 4, 4, 4, 4};
    VtkCell cell;
    classicCell(4, corners, kCube.data(), &cell);
    ASSERT_EQ(cell.type, fluentload::kVtkPyramid);
    ASSERT_EQ(cell.points.size(), 5u);
    EXPECT_EQ(cell.points[4], 4);
    // The base's normal points to the apex: both halves of the base see it positively.
    EXPECT_GT(volume6(kCube, {cell.points[0], cell.points[1], cell.points[2], 4}), 0.0);
    EXPECT_GT(volume6(kCube, {cell.points[0], cell.points[2], cell.points[3], 4}), 0.0);
}

TEST(VtkCells, BrickCollapsedToSixPointsIsAWedgeWithMatchingCorners) {
    // Prism in a brick: a b c c d e f f, triangles (0, 1, 2) below and (4, 5, 6) above.
    const int64_t corners[8] = {0, 1, 2, 2, 4, 5, 6, 6};
    VtkCell cell;
    classicCell(4, corners, kCube.data(), &cell);
    ASSERT_EQ(cell.type, fluentload::kVtkWedge);
    ASSERT_EQ(cell.points.size(), 6u);
    // Each lower corner is joined to the corner straight above it.
    for (int k = 0; k < 3; ++k) {
        const double* low = &kCube[3 * cell.points[k]];
        const double* high = &kCube[3 * cell.points[k + 3]];
        EXPECT_EQ(low[0], high[0]);
        EXPECT_EQ(low[1], high[1]);
        EXPECT_NE(low[2], high[2]);
    }
    // VTK's wedge: the normal of (0, 1, 2) points away from (3, 4, 5).
    EXPECT_LT(volume6(kCube, {cell.points[0], cell.points[1], cell.points[2], cell.points[3]}), 0.0);
}

TEST(VtkCells, WedgeCollapsedAlongAnotherAxisIsFound) {
    // The triangles lie in the brick's side faces: corners 1 = 2 and 5 = 6.
    const int64_t corners[8] = {0, 1, 1, 3, 4, 5, 5, 7};
    VtkCell cell;
    classicCell(4, corners, kCube.data(), &cell);
    EXPECT_EQ(cell.type, fluentload::kVtkWedge);
}

TEST(VtkCells, OddBrickCollapseBecomesAPolyhedronWithOutwardFaces) {
    // Only corners 6 and 7 meet: seven distinct points, no standard shape.
    const int64_t corners[8] = {0, 1, 2, 3, 4, 5, 6, 6};
    VtkCell cell;
    classicCell(4, corners, kCube.data(), &cell);
    ASSERT_EQ(cell.type, fluentload::kVtkPolyhedron);
    EXPECT_EQ(cell.points.size(), 7u);
    EXPECT_GT(streamVolume6(kCube, cell.faces), 0.0);
}

TEST(VtkCells, FlatBrickKeepsItsPlaceAsAQuadrilateral) {
    const int64_t corners[8] = {0, 1, 2, 3, 0, 1, 2, 3};
    VtkCell cell;
    classicCell(4, corners, kCube.data(), &cell);
    EXPECT_EQ(cell.type, fluentload::kVtkQuad);
    EXPECT_EQ(cell.points.size(), 4u);
}

TEST(VtkCells, QuadrilateralWithRepeatedCornerIsATriangle) {
    const int64_t corners[4] = {0, 1, 2, 2};
    VtkCell cell;
    classicCell(2, corners, kCube.data(), &cell);
    EXPECT_EQ(cell.type, fluentload::kVtkTriangle);
    EXPECT_EQ(cell.points, (std::vector<int64_t>{0, 1, 2}));
    const int64_t wrapped[4] = {3, 0, 1, 3};
    classicCell(2, wrapped, kCube.data(), &cell);
    EXPECT_EQ(cell.type, fluentload::kVtkTriangle);
    EXPECT_EQ(cell.points, (std::vector<int64_t>{3, 0, 1}));
}

TEST(VtkCells, LineSegmentWithOnePointIsAVertex) {
    const int64_t same[2] = {5, 5};
    VtkCell cell;
    classicCell(5, same, kCube.data(), &cell);
    EXPECT_EQ(cell.type, fluentload::kVtkVertex);
    const int64_t two[2] = {5, 6};
    classicCell(5, two, kCube.data(), &cell);
    EXPECT_EQ(cell.type, fluentload::kVtkLine);
}

TEST(VtkCells, PolygonLoopFollowsDirectedEdges) {
    EXPECT_EQ(fluentload::polygonLoop({{1, 2}, {3, 0}, {2, 3}, {0, 1}}), (std::vector<int64_t>{1, 2, 3, 0}));
}

TEST(VtkCells, PolygonLoopChainsEdgesOfMixedDirection) {
    std::vector<int64_t> loop = fluentload::polygonLoop({{0, 1}, {2, 1}, {2, 3}, {0, 3}});
    EXPECT_EQ(loop, (std::vector<int64_t>{0, 1, 2, 3}));
}

TEST(VtkCells, OpenEdgesGiveTheirDistinctPoints) {
    std::vector<int64_t> loop = fluentload::polygonLoop({{0, 1}, {1, 2}});
    EXPECT_EQ(loop, (std::vector<int64_t>{0, 1, 2}));
}

// Two polygons in a square split along its diagonal 0-2; the diagonal's left
// side is element 1.
TEST(VtkCells, PolygonZoneEdgesBecomeLoopsThatTurnCounterClockwise) {
    PolyFaces edges;
    // Edges: 0-1 (left 1), 1-2 (left 1), 2-0 (left 1, right 2), 2-3 (left 2), 3-0 (left 2).
    edges.nodes = {0, 1, 1, 2, 2, 0, 2, 3, 3, 0};
    edges.start = {0, 2, 4, 6, 8, 10};
    edges.left = {1, 1, 1, 2, 2};
    edges.right = {0, 0, 2, 0, 0};
    VtkCellArrays cells;
    fluentload::polygonCells(edges, 2, &cells);
    ASSERT_EQ(cells.count(), 2);
    EXPECT_EQ(cells.types, (std::vector<uint8_t>{fluentload::kVtkPolygon, fluentload::kVtkPolygon}));
    EXPECT_EQ(cells.offsets, (std::vector<int64_t>{3, 6}));
    std::vector<int64_t> first(cells.connectivity.begin(), cells.connectivity.begin() + 3);
    std::vector<int64_t> second(cells.connectivity.begin() + 3, cells.connectivity.end());
    EXPECT_EQ(first, (std::vector<int64_t>{0, 1, 2}));
    EXPECT_EQ(second, (std::vector<int64_t>{0, 2, 3}));
    EXPECT_FALSE(cells.hasPolyhedra());
}

// The unit cube and a pyramid on its top, sharing the top face.
PolyFaces cubeAndPyramid(bool outwardForLeft) {
    PolyFaces f;
    // Faces with their normal by the right-hand rule pointing out of the cube
    // (left element 1), and the pyramid's sides pointing out of it (left 2).
    std::vector<std::vector<int64_t>> faces = {{0, 3, 2, 1}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6},
                                               {3, 0, 4, 7}, {4, 5, 6, 7}, {4, 5, 8},    {5, 6, 8},
                                               {6, 7, 8},    {7, 4, 8}};
    std::vector<int64_t> left = {1, 1, 1, 1, 1, 1, 2, 2, 2, 2};
    std::vector<int64_t> right = {0, 0, 0, 0, 0, 2, 0, 0, 0, 0};
    f.start = {0};
    for (auto& face : faces) {
        if (!outwardForLeft)
            std::reverse(face.begin(), face.end());
        f.nodes.insert(f.nodes.end(), face.begin(), face.end());
        f.start.push_back(static_cast<int64_t>(f.nodes.size()));
    }
    f.left = left;
    f.right = right;
    return f;
}

std::vector<double> cubeAndApex() {
    std::vector<double> xyz = kCube;
    xyz.insert(xyz.end(), {0.5, 0.5, 2.0});
    return xyz;
}

void expectOutwardPolyhedra(const PolyFaces& faces) {
    const std::vector<double> xyz = cubeAndApex();
    VtkCellArrays cells;
    fluentload::polyhedronCells(faces, 2, xyz.data(), &cells);
    ASSERT_EQ(cells.count(), 2);
    ASSERT_TRUE(cells.hasPolyhedra());
    EXPECT_EQ(cells.types, (std::vector<uint8_t>{fluentload::kVtkPolyhedron, fluentload::kVtkPolyhedron}));
    std::vector<int64_t> cube(cells.faces.begin(), cells.faces.begin() + cells.faceOffsets[0]);
    std::vector<int64_t> pyramid(cells.faces.begin() + cells.faceOffsets[0], cells.faces.end());
    EXPECT_EQ(cube[0], 6);
    EXPECT_EQ(pyramid[0], 5);
    EXPECT_NEAR(streamVolume6(xyz, cube), 6.0, 1e-12);
    EXPECT_NEAR(streamVolume6(xyz, pyramid), 2.0, 1e-12);
    EXPECT_EQ(cells.offsets, (std::vector<int64_t>{8, 13}));
}

TEST(VtkCells, PolyhedronFacesTurnOutwardWhenGivenOutwardForTheLeftElement) {
    expectOutwardPolyhedra(cubeAndPyramid(true));
}

TEST(VtkCells, PolyhedronFacesTurnOutwardWhenGivenOutwardForTheRightElement) {
    expectOutwardPolyhedra(cubeAndPyramid(false));
}

TEST(VtkCells, CellArraysMarkEarlierCellsWhenTheFirstPolyhedronComes) {
    VtkCellArrays cells;
    VtkCell tri;
    tri.type = fluentload::kVtkTriangle;
    tri.points = {0, 1, 2};
    cells.append(tri);
    VtkCell poly;
    poly.type = fluentload::kVtkPolyhedron;
    poly.points = {0, 1, 2, 3};
    poly.faces = {4, 3, 0, 2, 1, 3, 0, 1, 3, 3, 1, 2, 3, 3, 2, 0, 3};
    cells.append(poly);
    cells.append(tri);
    EXPECT_EQ(cells.faceOffsets, (std::vector<int64_t>{-1, 17, -1}));
    EXPECT_EQ(cells.offsets, (std::vector<int64_t>{3, 7, 10}));
}

}  // namespace
