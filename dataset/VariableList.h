// The variable list of the host's data set.
//
// The add-on keeps no list of its own: the data set is the list, and a
// variable's identity is its name, compared byte for byte. A load makes the
// variables in this order: "X", "Y" (and "Z" in 3D); then for each data file
// in load order the variables of its Data sections, each at its first
// appearance, with the additional quantities last; particle variables when a
// particle zone is made. A later data file only appends what is new.
#pragma once

#include <cstdint>
#include <memory>

#include "host/TaskProgress.h"
#include "host/ZorTypes.h"

struct CaseFile;
struct DataField;
struct FluentSolution;
class DataFile;

// Finds the variable named exactly `name`, or appends it to every zone:
// nodal with the host's default location when `nodal`, else cell centred and
// made only when first needed; double precision when `doublePrecision`. The
// number goes to *out. False with the message shown.
[[nodiscard]] bool GetZorvaneVariableNumber(int32_t* out, const char* name, bool nodal, bool doublePrecision);

// Orders two fields: by the file position of their zone in the case file
// (cell zones looked up first, 0 for no zone), then by their own file
// position. The case file is the one set by addDataFileVariables for its sort
// (a process-wide variable: one sort at a time).
int compareDataFields(const DataField* a, const DataField* b);

// Sorts the fields of a data file (unless they come sorted from a metadata
// file) and binds them to the zones of the case through
// AddDataToZorvaneGridZones: first every Data section, then the additional
// quantities when the data file loads them. `task` is destroyed here.
[[nodiscard]] bool addDataFileVariables(FluentSolution* solution, DataFile* dataFile, CaseFile* caseFile,
                                        ZorStringList wantedNames, bool allZonesAsPolyhedral,
                                        bool averageToNodes, int32_t averagingMethod, int32_t zoneOffset,
                                        bool fromMetadata,
                                        std::unique_ptr<zorvane::zorutilutil::TaskProgress> task);

// Adds the variables of the particle sections of a data file that the data
// set lacks, right behind the first particle zone (the data set's last zone):
// double precision there, the bit type in every other zone. Several "Particle
// User" fields of a section become "Particle User 0", "Particle User 1", ...
// False with the message shown.
[[nodiscard]] bool AddNewParticleVariables(DataFile* dataFile, ZorStringList wantedNames);
