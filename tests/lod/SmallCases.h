// Small hand-written Fluent files whose every number a test can name.
#pragma once

#include <string>

namespace lodtest {

// A 2 by 2 square of two triangles, cells 1 (nodes 1 2 3) and 2 (nodes 1 3 4):
//
//   4 (0,2) ---- 3 (2,2)      zone 2 "fluid": cells 1-2
//     |  cell 2 / |           zone 3 interior: face 1 (1-3)
//     |       /   |           zone 4 wall, unnamed: faces 2 (1-2), 3 (2-3)
//     |     /     |           zone 5 axis (type 37): face 4 (3-4)
//     |   / cell 1|           zone 6 pressure outlet: face 5 (4-1)
//   1 (0,0) ---- 2 (2,0)
//
// `variables` goes into a section 37 (for example "(rp-axi? . #t)").
inline std::string squareCase(const std::string& variables = "") {
    std::string text =
        "(0 \"a square of two triangles\")\n"
        "(1 \"square test\")\n"
        "(2 2)\n"
        "(10 (0 1 4 0 2))\n"
        "(12 (0 1 2 0))\n"
        "(13 (0 1 5 0))\n"
        "(10 (1 1 4 1 2)(\n0 0\n2 0\n2 2\n0 2\n))\n"
        "(12 (2 1 2 1 1))\n"
        "(13 (3 1 1 2 2)(\n1 3 2 1\n))\n"
        "(13 (4 2 3 3 2)(\n1 2 1 0\n2 3 1 0\n))\n"
        "(13 (5 4 4 25 2)(\n3 4 2 0\n))\n"
        "(13 (6 5 5 5 2)(\n4 1 2 0\n))\n"
        "(39 (2 fluid fluid)())\n"
        "(39 (3 interior default-interior)())\n"
        "(39 (5 axis axis)())\n"
        "(39 (6 pressure-outlet outlet)())\n";
    if (!variables.empty())
        text += "(37 (" + variables + "))\n";
    return text;
}

// The host zones of the square: the cell zone, then the displayed boundaries.
constexpr int kSquareFluid = 1;
constexpr int kSquareWall = 2;
constexpr int kSquareAxis = 3;
constexpr int kSquareOutlet = 4;

// One ASCII Data section: field, zone, dimension, phase, first and last id, numbers.
inline std::string dataSection(int fieldId, int zoneId, int dimension, int phase, int first, int last,
                               const std::string& numbers) {
    return "(300 (" + std::to_string(fieldId) + " " + std::to_string(zoneId) + " " +
           std::to_string(dimension) + " 0 " + std::to_string(phase) + " " + std::to_string(first) + " " +
           std::to_string(last) + ")\n(\n" + numbers + "\n))\n";
}

// A data file of the square: a section 37 with the sampling time, then the sections.
inline std::string squareData(const std::string& sections, double deltaTimeSampled = 0.0,
                              double flowTime = 0.5) {
    return "(0 \"square data\")\n(37 ((flow-time " + std::to_string(flowTime) + ") (delta-time-sampled " +
           std::to_string(deltaTimeSampled) + ")))\n" + sections;
}

}  // namespace lodtest
