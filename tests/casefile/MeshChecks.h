// Assembling every zone of a scanned case file the way the zone builder and
// the node map loader do, and the geometric checks on the result: signed
// measures, one orientation per zone, total measure, point sets of cells.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "casefile/CaseFile.h"

namespace casefile_test {

// One assembled zone, with global one-based node numbers.
struct AssembledZone {
    std::string label;
    bool isCellZone = false;
    int32_t zoneId = 0;
    int32_t hostZoneType = 0;
    int32_t corners = 0;
    std::vector<int32_t> globalNodes;  // corners per element; 0 where a slot stayed unset
    long unsetSlots = 0;               // slots left at UNSET_NODE (or out of the zone's numbering)

    size_t numElements() const { return corners > 0 ? globalNodes.size() / corners : 0; }
    // The distinct corner coordinates of an element (z = 0 in 2D).
    std::vector<std::array<double, 3>> cornerSet(const CaseFile* caseFile, size_t element) const;
};

struct AssembledCase {
    std::vector<AssembledZone> zones;  // cell zones in table order, then displayed boundary zones
};

// Loads node positions, child faces and face tree marks, then numbers and
// assembles every cell zone (zone type 32 left out) and every displayed
// boundary zone, in the calling order of the node map loader. The caller holds
// a use of the case. False, with the failure added as a test failure, when a
// step fails or a zone turns out not to be classic.
bool assembleAllZones(CaseFile* caseFile, AssembledCase* out);

// Signed area (2D elements) or volume (tetrahedra and bricks) of an element
// in the host's corner order.
double signedMeasure(const CaseFile* caseFile, const AssembledZone& zone, size_t element);
// True when every element of the zone has a non-zero measure of one sign.
bool hasOneOrientation(const CaseFile* caseFile, const AssembledZone& zone);
std::string orientationSummary(const CaseFile* caseFile, const AssembledZone& zone);
// Sum of the absolute measures of the zone's elements.
double totalMeasure(const CaseFile* caseFile, const AssembledZone& zone);

// Largest absolute coordinate of the case, at least 1.
double coordinateScale(const CaseFile* caseFile);
// Equal point sets up to a tolerance relative to the scale (coordinates read
// as single precision by one side, double by the other).
bool samePointSets(const std::vector<std::array<double, 3>>& a, const std::vector<std::array<double, 3>>& b,
                   double scale);

}  // namespace casefile_test
