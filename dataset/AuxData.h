// Strands, solution times and auxiliary data of the zones a load made.
//
// A strand ties the same Fluent zone in successive time steps together; the
// auxiliary data items tell the host's analysis tools which variable is a
// velocity, a pressure and so on, and what kind of boundary each boundary zone
// is. Items are plain strings, kept with the data set.
#pragma once

#include <cstdint>

#include "host/ZorTypes.h"

struct CaseFile;
struct FluentSolution;

// Marks the data set: "Common.VectorVarsAreVelocity" = "TRUE", and for each
// enabled variable whose name is in the table of known quantities
// ("X Velocity", "Pressure", ...) the item of that quantity = its number.
void setDatasetAuxData();

// Gives every boundary zone of the case that has a host zone and a known kind
// "Common.IsBoundaryZone" = "TRUE" and "Common.BoundaryCondition" (wall,
// inflow, outflow, symmetry, pressure, periodic).
void setBoundaryAuxData(const CaseFile* caseFile);

// Sets the solution time of every host zone of the case, at the zone's
// stored number plus zoneOffset; the host hears of it once at the end.
void setZoneSolutionTimes(const CaseFile* caseFile, int32_t zoneOffset, double time);

// The strand of the zone with this Fluent zone id among the zones the
// solution's case files made so far, or 0. At most `limit` host zones are
// looked at.
int32_t zoneStrandLookup(int32_t fluentZoneId, int64_t limit, const FluentSolution* solution);

// How the zones of one CreateZorvaneGridZones call get their strands.
struct StrandRules {
    bool assignStrandIds;       // without it every zone has strand 0
    bool append;                // the load adds to a data set
    bool addToExistingStrands;  // appended zones continue the strands from 1
    int32_t strandBase;         // appended zones not continuing strands count from here
    int32_t* strandId;          // the running strand id of the load (read and written)
    int32_t localCount;         // appended zones of this call not continuing strands; starts at 0
    int32_t caseNumber;         // the case file's number in the load, from 1
};

// The strand id of a zone about to be made: the strand of the same Fluent
// zone made before, else a new one by the rules. `isFirstZone` says that the
// zone is the case's first cell zone, or, in a case without cell zones, its
// first face zone.
int32_t newZoneStrandId(StrandRules* rules, const FluentSolution* solution, int32_t fluentZoneId,
                        bool isFirstZone, ZorSet zonesAdded);
