// Grid zones: the host data set made from a scanned case file and the fields
// of its data files.
//
// One host zone is made per cell zone (zone type 32 never) and per displayed
// boundary zone, in a fixed order: the chosen cell zones in file order, then
// the chosen boundary zones in file order. Nothing bulk is kept: every
// coordinate, node map and variable of a zone is registered for load on
// demand, and the host pulls it later (lod/).
//
// A displayed boundary is a face zone whose boundary type is below 1000 and
// none of 2 (interior), 31 (hanging-node parent) and 38. When the host is
// given a selection of zones, the selection numbers run over the cell zones
// (type 32 left out), then over the displayed boundaries, from 1.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "host/TaskProgress.h"
#include "host/ZorTypes.h"

struct CaseFile;
struct DataField;
struct FluentSolution;
class DataFile;

// A field of a data file and its index in the file's table.
struct DataFieldRef {
    DataField* field;  // the field; owned by its DataFile
    int32_t index;     // its index in DataFile::dataFields: what the value loader finds it by
};

// True for a boundary type that gets a host zone.
bool isDisplayedBoundary(int32_t boundaryType);

// Writes the progress text of one zone and variable:
// "Setting up Zone=007, Var=003 from ...<the last 17 characters of the path>"
// (a path shorter than 17 characters stands whole, without the dots).
// `out` holds kZoneSetupTextSize bytes.
constexpr size_t kZoneSetupTextSize = 128;
void zoneSetupText(char* out, int64_t zone, int32_t var, const char* casePath);

// Makes the data set (or, when appending, finds X, Y and Z in it) and the
// zones of one case file. gridZones: 0 cells and boundaries, 1 cells, 2
// boundaries, 3 the zones of `selection`. zonesAdded collects the host zone
// numbers made by the load. caseNumber counts the case files of the load
// from 1. *strandId is the running strand id (read and written); timeKind 1
// gives the zones `solutionTime`, any other 0. `task` is destroyed here.
// False with the message shown; zones made so far stay.
[[nodiscard]] bool CreateZorvaneGridZones(FluentSolution* solution, CaseFile* caseFile, int32_t gridZones,
                                          ZorSet selection, ZorSet zonesAdded, int32_t caseNumber,
                                          bool append, bool allZonesAsPolyhedral, bool averageToNodes,
                                          int32_t averagingMethod, bool assignStrandIds,
                                          bool addToExistingStrands, int32_t strandBase, int32_t* strandId,
                                          int32_t timeKind, double solutionTime, bool fromMetadata,
                                          std::unique_ptr<zorvane::zorutilutil::TaskProgress> task);

// Finds or adds a variable per component of each field and registers the
// field's loader in the field's zone (the zone's stored host number plus
// zoneOffset). Fields of zones without a host zone are passed over, as is
// field 59. With wantedNames only the named variables are made. `task` is
// destroyed here. False with the message shown.
[[nodiscard]] bool AddDataToZorvaneGridZones(FluentSolution* solution, const DataFieldRef* fields,
                                             int32_t numFields, DataFile* dataFile, CaseFile* caseFile,
                                             ZorStringList wantedNames, bool allZonesAsPolyhedral,
                                             bool averageToNodes, int32_t averagingMethod, int32_t zoneOffset,
                                             bool fromMetadata,
                                             std::unique_ptr<zorvane::zorutilutil::TaskProgress> task);

// A later time step on the same grid: copies every host zone of the case
// (cell zones, then face zones) behind the data set's last zone, and gives
// each copy its own items of every variable but the coordinates, which stay
// shared with the first step. False when the host refuses (no message of its
// own).
[[nodiscard]] bool CopyZonesForTimeStep(const CaseFile* caseFile);
