// Small services of the host that the add-on uses beside the data set.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/ZorTypes.h"

namespace zorvane {
namespace zorutilutil {

// Holds back the notices of changed solution times while it lives; when the
// last one goes, listeners hear of the changes once (state change 19).
class ZOR_HOST_API SolutionTimeNotificationDeferrer {
  public:
    SolutionTimeNotificationDeferrer();
    ~SolutionTimeNotificationDeferrer();
    SolutionTimeNotificationDeferrer(const SolutionTimeNotificationDeferrer&) = delete;
    SolutionTimeNotificationDeferrer& operator=(const SolutionTimeNotificationDeferrer&) = delete;
};

}  // namespace zorutilutil

namespace dataio {

// The unique ids of the zones that one load made, in the order made.
typedef std::vector<int64_t> ZoneIdList;

// The unique id of zone number `zone`, as a boundary connection or neighbour
// names it: ownUniqueId when zone is 0; the entry zone - zoneBase (from 1) of
// zoneIds when it lies there; else the unique id of that zone of the data set;
// 0 when there is none.
ZOR_HOST_API int64_t uniqueIdForBndryZone(int64_t zone, int64_t zoneBase, int64_t ownUniqueId,
                                          const std::shared_ptr<ZoneIdList>& zoneIds);

}  // namespace dataio
}  // namespace zorvane
