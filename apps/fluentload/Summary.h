// The two reports of a loaded data set: a text for a person on standard
// output, and JSON for programs.
#pragma once

#include <string>

#include "apps/fluentload/DataSetInfo.h"

namespace fluentload {

// A readable summary: title, auxiliary data, variables (name, data type,
// location), zones (name, type, sizes, strand, solution time, parent zone,
// auxiliary data) and, after a pull, each variable's range per zone.
std::string summaryText(const DataSetInfo& info);

// The data set as JSON:
//   {"data_set", "title", "aux": {NAME: VALUE}, "variables": [{"name", "data_type", "location"}],
//    "zones": [{"number", "name", "type", "type_number", "imax", "jmax", "kmax", "points", "elements",
//               "strand", "solution_time", "parent_zone", "aux", "data_types", "locations",
//               "values": {VARNAME: {"location", "data_type", "count", "min", "max", "sum"}}}]}
// "values" appears only after a pull. A name that repeats within one object
// gets " #2", " #3", ... so that no key is lost.
std::string summaryJson(const DataSetInfo& info);

}  // namespace fluentload
