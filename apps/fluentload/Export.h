// Export of the host's data set to VTK XML files that ParaView opens as they
// are: a .vtu per zone, gathered by a .vtm, or for a series a .pvd that gives
// each solution time its own .vtm.
//
// Layout for OUT.vtm or OUT.pvd: the zone files and the .vtm of each time
// step go into the folder OUT/ beside it, named zone<N>_<name>.vtu and
// step<N>.vtm. Zones are grouped by solution time (in rising order), and
// within a time by strand, then zone number. A .vtm of a series holds one
// block per solution time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "apps/fluentload/DataSetInfo.h"
#include "apps/fluentload/VtkWriter.h"
#include "host/TaskProgress.h"

namespace fluentload {

struct ExportReport {
    int64_t zones = 0;                  // zone files written
    int64_t files = 0;                  // files written in all
    int64_t timeSteps = 0;              // distinct solution times
    uint64_t bytes = 0;                 // bytes written in all
    double seconds = 0.0;               // wall time of the export
    bool interrupted = false;           // the user interrupted; the files are incomplete
    std::vector<std::string> problems;  // zones and variables left out, one line each
};

// Builds the VTK grid of zone zoneIndex (from 0) of the data set from the
// host: points from the variables named X, Y and Z (Z missing: 0; ordered
// zones without coordinates: their I, J, K indices), cells, the other
// variables as point or cell data by their location, and the zone's name,
// type, strand, parent zone and solution time as field data. A variable whose
// values cannot be loaded is left out, with a line in *problems. False with
// the reason in *error when the points or cells cannot be made.
[[nodiscard]] bool zoneGrid(const DataSetInfo& info, size_t zoneIndex, VtkGrid* grid, std::string* error,
                            std::vector<std::string>* problems);

// Writes the data set to `output`, a name ending in .vtm or .pvd. A zone
// whose grid cannot be made is left out, and so is a variable that cannot be
// loaded, each with a line in report->problems. The progress task, when
// given, gets one step per zone and one per collection file. False with the
// reason in *error when a file cannot be written or the user interrupted.
[[nodiscard]] bool exportDataSet(const DataSetInfo& info, const std::string& output,
                                 const VtkWriteOptions& options, zorvane::zorutilutil::TaskProgress* progress,
                                 ExportReport* report, std::string* error);

// True for an output name that exportDataSet takes (.vtm or .pvd, any case).
bool isExportName(const std::string& output);

}  // namespace fluentload
