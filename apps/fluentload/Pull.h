// Pulling a whole data set through load-on-demand: every node map, face map,
// face neighbour item (where the loader registered one) and every variable's
// values of every zone, by a number of worker threads.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "apps/fluentload/DataSetInfo.h"
#include "host/TaskProgress.h"

namespace fluentload {

struct PullReport {
    int64_t items = 0;                  // items to ask for
    int64_t done = 0;                   // items asked for before the end or an interrupt
    int64_t failed = 0;                 // items the host could not load, or that failed a check
    int64_t valueBlocks = 0;            // values of one variable in one zone, loaded
    int64_t nodeMaps = 0;               // node maps loaded
    int64_t faceMaps = 0;               // face maps loaded
    int64_t faceNeighbors = 0;          // face neighbour items loaded
    double seconds = 0.0;               // wall time of the pull
    bool interrupted = false;           // the user interrupted; the rest was not asked for
    std::vector<std::string> problems;  // one line per failed item, for the user
};

// Asks the host for every item of every zone of *info with `threads` workers,
// and fills the value statistics of *info (and sets info->pulled). The
// progress task, when given, gets one step per item.
PullReport pullDataSet(DataSetInfo* info, int threads, zorvane::zorutilutil::TaskProgress* progress);

}  // namespace fluentload
