#include "apps/fluentload/Pull.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <limits>
#include <mutex>
#include <thread>

#include "apps/fluentload/HostItems.h"
#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace fluentload {

namespace {

enum class Kind { NodeMap, FaceMap, FaceNeighbors, Values };

struct WorkItem {
    size_t zone;  // index into info->zones
    Kind kind;
    size_t var;  // index into the zone's values (Values only)
};

std::string zoneText(const ZoneInfo& z) {
    return "zone " + std::to_string(z.number) + " \"" + z.name + "\"";
}

}  // namespace

PullReport pullDataSet(DataSetInfo* info, int threads, zorvane::zorutilutil::TaskProgress* progress) {
    PullReport report;
    std::vector<WorkItem> work;
    for (size_t z = 0; z < info->zones.size(); ++z) {
        ZorIndex number = info->zones[z].number;
        if (minihost::nodeMapStats(number).exists)
            work.push_back({z, Kind::NodeMap, 0});
        if (minihost::faceMapStats(number).exists)
            work.push_back({z, Kind::FaceMap, 0});
        // Neighbours only where the loader gives them; the host's own search
        // inside a zone is no load.
        if (minihost::faceNeighborStats(number).hasLoader)
            work.push_back({z, Kind::FaceNeighbors, 0});
        for (size_t v = 0; v < info->zones[z].values.size(); ++v)
            work.push_back({z, Kind::Values, v});
    }
    report.items = static_cast<int64_t>(work.size());
    if (progress != nullptr) {
        progress->setNumSteps(static_cast<int>(std::max<size_t>(work.size(), 1)));
        progress->begin("Loading every item of " + std::to_string(info->zones.size()) + " zones");
    }

    std::atomic<size_t> next{0};
    std::atomic<bool> stop{false};
    std::mutex reportMutex;  // guards report's counters and problems
    auto fail = [&](const std::string& problem) {
        std::lock_guard<std::mutex> guard(reportMutex);
        ++report.failed;
        report.problems.push_back(problem);
    };
    auto count = [&](int64_t PullReport::*counter) {
        std::lock_guard<std::mutex> guard(reportMutex);
        ++(report.*counter);
    };

    auto worker = [&]() {
        Values values;
        PolyFaces faces;
        while (!stop.load()) {
            size_t i = next.fetch_add(1);
            if (i >= work.size())
                break;
            if (ZorUtilInterruptCheck()) {
                stop.store(true);
                break;
            }
            const WorkItem& item = work[i];
            ZoneInfo& zone = info->zones[item.zone];
            if (progress != nullptr && (i == 0 || work[i - 1].zone != item.zone)) {
                progress->setText("Loading zone " + std::to_string(zone.number) + " of " +
                                  std::to_string(info->zones.size()) + ": " + zone.name);
            }
            switch (item.kind) {
                case Kind::NodeMap: {
                    int64_t outside = 0;
                    if (!countNodeMapOutside(zone.number, zone.points(), &outside)) {
                        fail("cannot load the node map of " + zoneText(zone));
                        break;
                    }
                    if (outside > 0) {
                        fail("the node map of " + zoneText(zone) + " holds " + std::to_string(outside) +
                             " node numbers outside 1 to " + std::to_string(zone.points()));
                        break;
                    }
                    count(&PullReport::nodeMaps);
                    break;
                }
                case Kind::FaceMap: {
                    if (!fetchFaceMap(zone.number, &faces)) {
                        fail("cannot load the face map of " + zoneText(zone));
                        break;
                    }
                    int64_t outside = std::count_if(faces.nodes.begin(), faces.nodes.end(),
                                                    [&](int64_t p) { return p < 0 || p >= zone.points(); });
                    int64_t badElements = 0;
                    for (size_t f = 0; f < faces.left.size(); ++f) {
                        badElements += faces.left[f] > zone.elements();
                        badElements += faces.right[f] > zone.elements();
                    }
                    if (outside > 0 || badElements > 0) {
                        fail("the face map of " + zoneText(zone) + " holds " + std::to_string(outside) +
                             " node numbers outside 1 to " + std::to_string(zone.points()) + " and " +
                             std::to_string(badElements) + " elements beyond " +
                             std::to_string(zone.elements()));
                        break;
                    }
                    count(&PullReport::faceMaps);
                    break;
                }
                case Kind::FaceNeighbors:
                    if (!loadFaceNeighbors(zone.number)) {
                        fail("cannot load the face neighbours of " + zoneText(zone));
                        break;
                    }
                    count(&PullReport::faceNeighbors);
                    break;
                case Kind::Values: {
                    ZoneValueInfo& slot = zone.values[item.var];
                    if (!fetchValueStats(zone.number, static_cast<ZorIndex>(item.var + 1), &values,
                                         &slot.stats)) {
                        fail("cannot load the values of variable " + std::to_string(item.var + 1) + " \"" +
                             info->variables[item.var].name + "\" in " + zoneText(zone));
                        break;
                    }
                    count(&PullReport::valueBlocks);
                    break;
                }
            }
            {
                std::lock_guard<std::mutex> guard(reportMutex);
                ++report.done;
            }
            if (progress != nullptr && !progress->end())
                stop.store(true);
        }
    };

    const auto started = std::chrono::steady_clock::now();
    const int n = std::max(1, std::min<int>(threads, static_cast<int>(std::max<size_t>(work.size(), 1))));
    if (n == 1) {
        worker();
    } else {
        std::vector<std::thread> pool;
        for (int t = 0; t < n; ++t)
            pool.emplace_back(worker);
        for (std::thread& t : pool)
            t.join();
    }
    report.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    report.interrupted = stop.load() && ZorUtilInterruptCheck();
    info->pulled = true;
    return report;
}

}  // namespace fluentload
