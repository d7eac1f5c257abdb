// Turning the host's elements into VTK cells: classic elements whose corners
// repeat become the smaller shapes they are, polygon zones' edges become
// polygons, polyhedron zones' faces become polyhedra with outward faces.
//
// Pure functions of their inputs: point numbers are zero-based, coordinates
// three doubles per point.
#pragma once

#include <cstdint>
#include <vector>

namespace fluentload {

// VTK's cell type numbers.
enum VtkCellType : uint8_t {
    kVtkEmptyCell = 0,
    kVtkVertex = 1,
    kVtkLine = 3,
    kVtkTriangle = 5,
    kVtkPolygon = 7,
    kVtkQuad = 9,
    kVtkTetra = 10,
    kVtkHexahedron = 12,
    kVtkWedge = 13,
    kVtkPyramid = 14,
    kVtkPolyhedron = 42
};

// One cell as VTK stores it.
struct VtkCell {
    uint8_t type = kVtkEmptyCell;  // a VtkCellType
    std::vector<int64_t> points;   // zero-based; for a polyhedron its distinct points
    std::vector<int64_t> faces;    // polyhedron only: face count, then per face its size and points
};

// The cells of a grid in VTK's arrays.
struct VtkCellArrays {
    std::vector<int64_t> connectivity;  // points of every cell, cell after cell
    std::vector<int64_t> offsets;       // per cell: end of its points in connectivity
    std::vector<uint8_t> types;         // per cell: a VtkCellType
    std::vector<int64_t> faces;         // polyhedra's face streams; empty while there is no polyhedron
    std::vector<int64_t> faceOffsets;   // per cell: end of its stream in faces, -1 for others; empty likewise

    int64_t count() const { return static_cast<int64_t>(types.size()); }
    bool hasPolyhedra() const { return !faceOffsets.empty(); }
    void append(const VtkCell& cell);
};

// The VTK cell of one classic element of a host zone type (1 triangle,
// 2 quadrilateral, 3 tetrahedron, 4 brick, 5 line segment) with its corners in
// the host's order, written to *cell (its vectors are reused). Repeated
// corners collapse: a brick becomes the tetrahedron, pyramid or wedge it is
// (or a polyhedron of its remaining faces for rarer collapses), a
// quadrilateral a triangle. Solid cells are put in VTK's orientation by their
// geometry. Every element gives one cell, a degenerate one the
// lower-dimensional cell of its distinct points, so that cell values stay
// aligned.
void classicCell(int32_t zoneType, const int64_t* corners, const double* xyz, VtkCell* cell);

// Orders the edges of one polygon into a closed loop. Edges are pairs of
// points, given in the direction that keeps the element on their left where
// known; directions are used when they chain, otherwise the edges are chained
// as undirected. Returns the loop's points, or the distinct points in first
// use order when the edges do not close.
std::vector<int64_t> polygonLoop(const std::vector<std::pair<int64_t, int64_t>>& edges);

// Faces of a polyhedron zone, as the host's face map holds them.
struct PolyFaces {
    std::vector<int64_t> start;  // faces + 1 offsets into nodes
    std::vector<int64_t> nodes;  // zero-based points, face after face
    std::vector<int64_t> left;   // per face: element from 1, or 0 / negative for none
    std::vector<int64_t> right;  // per face: element from 1, or 0 / negative for none
};

// Appends the elements of a polyhedron zone (numbered from 1 to numElements)
// to *cells as VTK polyhedra, element after element. Faces are turned
// outward: as given for the left element and reversed for the right one, or
// all the other way round when the zone's total volume says so.
void polyhedronCells(const PolyFaces& faces, int64_t numElements, const double* xyz, VtkCellArrays* cells);

// Appends the elements of a polygon zone, whose faces are edges of two points,
// to *cells as VTK polygons (a line or vertex for an element of fewer than
// three points).
void polygonCells(const PolyFaces& edges, int64_t numElements, VtkCellArrays* cells);

// Six times the signed volume of the tetrahedron (a, b, c, d),
// ((b - a) x (c - a)) . (d - a): positive when the normal of (a, b, c) by the
// right-hand rule points toward d, as VTK wants a tetrahedron.
double tetraVolume6(const double* a, const double* b, const double* c, const double* d);

}  // namespace fluentload
