#include "apps/fluentload/Session.h"

#include <cstdio>
#include <fstream>

#include "apps/fluentload/DataSetInfo.h"
#include "apps/fluentload/Export.h"
#include "apps/fluentload/Pull.h"
#include "apps/fluentload/Summary.h"
#include "host/TaskProgress.h"
#include "minihost/MiniHost.h"

namespace fluentload {

namespace {

// What load-on-demand did over the whole run, summed over every zone's items
// (an item shared by zone copies counts once per zone).
void printLoadOnDemandTotals(const DataSetInfo& info) {
    long long loads = 0, unloads = 0, failed = 0;
    auto add = [&](const minihost::ItemStats& s) {
        loads += s.loads;
        unloads += s.unloads;
        failed += s.failedLoads;
    };
    for (const ZoneInfo& z : info.zones) {
        add(minihost::nodeMapStats(z.number));
        add(minihost::faceMapStats(z.number));
        add(minihost::faceNeighborStats(z.number));
        for (size_t v = 0; v < z.values.size(); ++v)
            add(minihost::valueStats(z.number, static_cast<ZorIndex>(v + 1)));
    }
    std::printf("Load-on-demand: %lld loads, %lld unloads, %lld failed loads; %.1f MB loaded now\n", loads,
                unloads, failed, static_cast<double>(minihost::loadedBytes()) / (1024.0 * 1024.0));
}

}  // namespace

bool writeSummaryJson(const std::string& path, const DataSetInfo& info) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << summaryJson(info);
    return static_cast<bool>(out);
}

int afterLoad(const Options& options) {
    using zorvane::zorutilutil::createTaskProgressBar;
    int status = 0;
    DataSetInfo info = readDataSetInfo();
    const bool wantsData = options.pull || !options.output.empty();
    if (wantsData && !info.exists) {
        std::fprintf(stderr, "fluentload: the load made no data set; nothing to pull or export\n");
        status = 1;
    }
    bool interrupted = false;
    if (options.pull && info.exists) {
        PullReport report;
        {
            auto bar = createTaskProgressBar(2);
            report = pullDataSet(&info, options.threads, bar.get());
        }
        for (const std::string& problem : report.problems)
            std::fprintf(stderr, "fluentload: %s\n", problem.c_str());
        if (!options.quiet) {
            if (report.interrupted) {
                std::printf("Pull interrupted after %lld of %lld items in %.3f s\n",
                            static_cast<long long>(report.done), static_cast<long long>(report.items),
                            report.seconds);
            } else {
                std::printf(
                    "Pulled %lld items in %.3f s with %d thread%s: %lld node maps, %lld face maps, %lld face "
                    "neighbour items, %lld value blocks; %lld failed\n",
                    static_cast<long long>(report.items), report.seconds, options.threads,
                    options.threads == 1 ? "" : "s", static_cast<long long>(report.nodeMaps),
                    static_cast<long long>(report.faceMaps), static_cast<long long>(report.faceNeighbors),
                    static_cast<long long>(report.valueBlocks), static_cast<long long>(report.failed));
            }
        }
        if (report.failed > 0)
            status = 1;
        interrupted = report.interrupted;
    }
    if (!options.quiet)
        std::fputs(summaryText(info).c_str(), stdout);
    if (!options.summaryJsonFile.empty() && !writeSummaryJson(options.summaryJsonFile, info)) {
        std::fprintf(stderr, "fluentload: cannot write %s\n", options.summaryJsonFile.c_str());
        status = 1;
    }
    if (!options.output.empty() && info.exists && !interrupted) {
        VtkWriteOptions writeOptions;
        writeOptions.compress = options.compress;
        writeOptions.level = options.compressLevel;
        ExportReport report;
        std::string error;
        bool exported;
        {
            auto bar = createTaskProgressBar(2);
            exported = exportDataSet(info, options.output, writeOptions, bar.get(), &report, &error);
        }
        interrupted = report.interrupted;
        for (const std::string& problem : report.problems)
            std::fprintf(stderr, "fluentload: %s\n", problem.c_str());
        if (!report.problems.empty())
            status = 1;
        if (!exported && !interrupted) {
            std::fprintf(stderr, "fluentload: export to %s failed: %s\n", options.output.c_str(),
                         error.c_str());
            status = 1;
        } else if (exported && !options.quiet) {
            std::printf("Exported %lld zones at %lld solution time%s to %s: %lld files, %.1f MB in %.3f s\n",
                        static_cast<long long>(report.zones), static_cast<long long>(report.timeSteps),
                        report.timeSteps == 1 ? "" : "s", options.output.c_str(),
                        static_cast<long long>(report.files),
                        static_cast<double>(report.bytes) / (1024.0 * 1024.0), report.seconds);
        }
    }
    if (wantsData && info.exists && !options.quiet)
        printLoadOnDemandTotals(info);
    if (interrupted) {
        std::fprintf(stderr, "fluentload: interrupted\n");
        status = 1;
    }
    std::fflush(stdout);
    return status;
}

}  // namespace fluentload
