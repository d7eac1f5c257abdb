// The stand-in's own view of load-on-demand: asking items to unload, and
// reading back how often each was loaded, unloaded and cleaned up.
#include <algorithm>

#include "host/ZorData.h"
#include "minihost/DataModel.h"
#include "minihost/MiniHost.h"

namespace minihost {

namespace {

using data::dataMutex;
using data::LodItem;
using data::zoneAt;

// The item that `pick` chooses from zone `zone`, or null.
template <typename Pick>
std::shared_ptr<LodItem> itemOfZone(ZorIndex zone, Pick pick) {
    std::lock_guard<std::mutex> guard(dataMutex);
    data::Zone* z = zoneAt(zone);
    return z == nullptr ? nullptr : pick(*z);
}

std::shared_ptr<LodItem> valuesOf(ZorIndex zone, ZorIndex var) {
    return itemOfZone(zone, [var](data::Zone& z) -> std::shared_ptr<LodItem> {
        if (var < 1 || var > static_cast<ZorIndex>(z.values.size()))
            return nullptr;
        return z.values[static_cast<size_t>(var - 1)];
    });
}

std::shared_ptr<LodItem> nodeMapOf(ZorIndex zone) {
    return itemOfZone(zone, [](data::Zone& z) -> std::shared_ptr<LodItem> { return z.nodeMap; });
}

std::shared_ptr<LodItem> faceMapOf(ZorIndex zone) {
    return itemOfZone(zone, [](data::Zone& z) -> std::shared_ptr<LodItem> { return z.faceMap; });
}

std::shared_ptr<LodItem> faceNeighborsOf(ZorIndex zone) {
    return itemOfZone(zone, [](data::Zone& z) -> std::shared_ptr<LodItem> { return z.faceNeighbors; });
}

bool unload(const std::shared_ptr<LodItem>& item) {
    return item != nullptr && data::unloadItem(*item);
}

ItemStats statsOf(const std::shared_ptr<LodItem>& item) {
    ItemStats stats;
    if (item == nullptr)
        return stats;
    std::lock_guard<std::mutex> guard(item->mutex);
    stats.exists = true;
    stats.hasLoader = item->hasLoader;
    stats.loaded = item->state == LodItem::Loaded;
    stats.loads = item->loads;
    stats.failedLoads = item->failedLoads;
    stats.unloads = item->unloads;
    stats.cleanups = item->cleanups;
    stats.bytes = item->storageBytes();
    return stats;
}

}  // namespace

bool unloadValues(ZorIndex zone, ZorIndex var) {
    return unload(valuesOf(zone, var));
}
bool unloadNodeMap(ZorIndex zone) {
    return unload(nodeMapOf(zone));
}
bool unloadFaceMap(ZorIndex zone) {
    return unload(faceMapOf(zone));
}
bool unloadFaceNeighbors(ZorIndex zone) {
    return unload(faceNeighborsOf(zone));
}

size_t unloadAll() {
    std::vector<std::shared_ptr<LodItem>> items;
    {
        std::lock_guard<std::mutex> guard(dataMutex);
        if (data::dataSet == nullptr)
            return 0;
        for (data::Zone& zone : data::dataSet->zones) {
            for (auto& value : zone.values)
                items.push_back(value);
            items.push_back(zone.nodeMap);
            items.push_back(zone.faceMap);
            items.push_back(zone.faceNeighbors);
        }
    }
    size_t unloaded = 0;
    std::vector<LodItem*> seen;
    for (auto& item : items) {
        if (item == nullptr || std::find(seen.begin(), seen.end(), item.get()) != seen.end())
            continue;
        seen.push_back(item.get());
        if (data::unloadItem(*item))
            ++unloaded;
    }
    return unloaded;
}

ItemStats valueStats(ZorIndex zone, ZorIndex var) {
    return statsOf(valuesOf(zone, var));
}
bool valueRange(ZorIndex zone, ZorIndex var, double* minimum, double* maximum) {
    std::shared_ptr<LodItem> item = valuesOf(zone, var);
    if (item == nullptr)
        return false;
    const auto* values = static_cast<const ZorFieldDataImpl*>(item.get());
    std::lock_guard<std::mutex> guard(item->mutex);
    if (!values->hasMinMax)
        return false;
    *minimum = values->minimum;
    *maximum = values->maximum;
    return true;
}

std::vector<int64_t> valueArrayWrites(ZorIndex zone, ZorIndex var) {
    std::shared_ptr<LodItem> item = valuesOf(zone, var);
    if (item == nullptr)
        return {};
    std::lock_guard<std::mutex> guard(item->mutex);
    return static_cast<const ZorFieldDataImpl*>(item.get())->arrayWrites;
}

ItemStats nodeMapStats(ZorIndex zone) {
    return statsOf(nodeMapOf(zone));
}
ItemStats faceMapStats(ZorIndex zone) {
    return statsOf(faceMapOf(zone));
}
ItemStats faceNeighborStats(ZorIndex zone) {
    return statsOf(faceNeighborsOf(zone));
}

size_t loadedBytes() {
    size_t total = 0;
    std::vector<LodItem*> seen;
    std::lock_guard<std::mutex> guard(dataMutex);
    if (data::dataSet == nullptr)
        return 0;
    auto add = [&](LodItem* item) {
        if (item == nullptr || std::find(seen.begin(), seen.end(), item) != seen.end())
            return;
        seen.push_back(item);
        std::lock_guard<std::mutex> itemGuard(item->mutex);
        if (item->state == LodItem::Loaded)
            total += item->storageBytes();
    };
    for (data::Zone& zone : data::dataSet->zones) {
        for (auto& value : zone.values)
            add(value.get());
        add(zone.nodeMap.get());
        add(zone.faceMap.get());
        add(zone.faceNeighbors.get());
    }
    return total;
}

}  // namespace minihost
