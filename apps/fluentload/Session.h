// What fluentload does with the data set a load made: pull it through
// load-on-demand, report it on standard output and as JSON, export it to VTK.
#pragma once

#include <string>

#include "apps/fluentload/DataSetInfo.h"
#include "apps/fluentload/Options.h"

namespace fluentload {

// Everything after a successful load, as the options ask: the pull (with its
// report), the summary on standard output unless quiet, the JSON summary, the
// export, and the load-on-demand totals. Problems go to standard error as
// "fluentload: ...". Returns the exit status: 0, or 1 when a step failed, was
// interrupted, or had no data set to work on.
int afterLoad(const Options& options);

// Writes the JSON summary of the data set to a file; false when it cannot.
[[nodiscard]] bool writeSummaryJson(const std::string& path, const DataSetInfo& info);

}  // namespace fluentload
