// The load-on-demand engine: loading an item on the calling thread, unloading
// it, cleaning it up, and unloading old items when a memory budget is set.
//
// A request first looks at the item under its own mutex; a loaded item is
// handed out at once. Otherwise the engine takes the add-on lock, then marks
// the item as under load, and calls the add-on's load callback with the lock
// held. Other threads asking for the same item meanwhile wait for the add-on
// lock and find the item loaded when they get it. Because the lock is taken
// before the mark, a load callback that asks the host for other items on its
// own thread never waits for a thread that waits for the lock. Unloading for
// the budget happens only before and after a request made outside any load
// callback, never while one runs, and never takes the item just asked for.
#include <algorithm>
#include <atomic>
#include <vector>

#include "host/ZorUtil.h"
#include "minihost/DataModel.h"
#include "minihost/Internal.h"
#include "minihost/MiniHost.h"

namespace minihost {
namespace data {

namespace {

std::atomic<uint64_t> tick{0};        // request counter, the age of items
std::atomic<size_t> memoryBudget{0};  // bytes; 0: no budget
std::atomic<bool> rawPointers{true};
std::atomic<bool> wideMaps{false};
// Readers of this thread that hold items together (RequestScope); while one
// does, no request unloads anything for the budget.
thread_local int heldRequests = 0;

// Every loaded item with a loader in the data set, each once.
std::vector<std::shared_ptr<LodItem>> loadedItems() {
    std::vector<std::shared_ptr<LodItem>> items;
    std::lock_guard<std::mutex> guard(dataMutex);
    if (dataSet == nullptr)
        return items;
    auto add = [&items](const std::shared_ptr<LodItem>& item) {
        if (item != nullptr && std::find(items.begin(), items.end(), item) == items.end())
            items.push_back(item);
    };
    for (Zone& zone : dataSet->zones) {
        for (auto& value : zone.values)
            add(value);
        add(zone.nodeMap);
        add(zone.faceMap);
        add(zone.faceNeighbors);
    }
    return items;
}

// Unloads the oldest loaded items, other than `wanted`, until the storage of
// loaded items fits the budget.
void keepToBudget(const LodItem* wanted) {
    size_t budget = memoryBudget.load();
    if (budget == 0)
        return;
    std::vector<std::pair<uint64_t, std::shared_ptr<LodItem>>> candidates;
    size_t total = 0;
    for (auto& item : loadedItems()) {
        std::lock_guard<std::mutex> guard(item->mutex);
        if (item->state != LodItem::Loaded || !item->hasLoader)
            continue;
        total += item->storageBytes();
        if (item.get() != wanted)
            candidates.emplace_back(item->lastUse, item);
    }
    std::sort(candidates.begin(), candidates.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    for (auto& candidate : candidates) {
        if (total <= budget)
            break;
        size_t bytes;
        {
            std::lock_guard<std::mutex> guard(candidate.second->mutex);
            bytes = candidate.second->storageBytes();
        }
        if (unloadItem(*candidate.second))
            total -= std::min(total, bytes);
    }
}

}  // namespace

RequestScope::RequestScope() {
    ++heldRequests;
}
RequestScope::~RequestScope() {
    --heldRequests;
}

bool rawPointersOffered() {
    return rawPointers.load();
}
bool wideNodeMaps() {
    return wideMaps.load();
}

bool ensureLoaded(LodItem& item) {
    {
        std::lock_guard<std::mutex> guard(item.mutex);
        item.lastUse = ++tick;
        if (item.cleanedUp)
            fatal(item.what + " was asked for after its cleanup");
        if (item.state == LodItem::Loaded)
            return true;
        if (!item.hasLoader && item.state == LodItem::Unmade) {
            item.makeStorage();
            item.state = LodItem::Loaded;
            return true;
        }
    }
    // A request made outside any load callback and outside a reader that holds
    // items together.
    bool topLevel = !ZorUtilLockIsOn() && heldRequests == 0;
    if (topLevel)
        keepToBudget(&item);
    lockAddOn();
    std::unique_lock<std::mutex> lock(item.mutex);
    if (item.state == LodItem::Loaded) {  // another thread loaded it while this one waited
        lock.unlock();
        unlockAddOn();
        return true;
    }
    if (item.state == LodItem::Loading) {
        // Only the thread holding the add-on lock can be loading: this one.
        fatal(item.what + " was asked for by its own load callback");
    }
    item.state = LodItem::Loading;
    item.loadingThread = std::this_thread::get_id();
    item.makeStorage();
    const std::pair<void*, size_t> block = item.storageBlock();
    lock.unlock();
    bool loaded;
    {
        // The block's pages come in on another thread while the add-on reads.
        BackgroundPopulate populate(block.first, block.second);
        loaded = item.callLoad();
    }
    lock.lock();
    if (loaded) {
        item.state = LodItem::Loaded;
        ++item.loads;
    } else {
        item.dropStorage();
        item.state = LodItem::Unmade;
        ++item.failedLoads;
    }
    item.loadingThread = std::thread::id();
    lock.unlock();
    unlockAddOn();
    if (topLevel)
        keepToBudget(&item);  // the request is over: make room again
    return loaded;
}

bool unloadItem(LodItem& item) {
    {
        std::lock_guard<std::mutex> guard(item.mutex);
        if (item.state != LodItem::Loaded || !item.hasLoader || item.cleanedUp)
            return false;
    }
    if (!item.callUnload())
        return false;
    std::lock_guard<std::mutex> guard(item.mutex);
    item.dropStorage();
    item.state = LodItem::Unmade;
    ++item.unloads;
    return true;
}

void cleanupItem(LodItem& item) {
    {
        std::lock_guard<std::mutex> guard(item.mutex);
        if (!item.hasLoader || item.cleanedUp)
            return;
        item.cleanedUp = true;
    }
    lockAddOn();
    item.callCleanup();
    unlockAddOn();
    std::lock_guard<std::mutex> guard(item.mutex);
    ++item.cleanups;
    item.dropStorage();
    item.state = LodItem::Unmade;
}

}  // namespace data

void setMemoryBudget(size_t bytes) {
    data::memoryBudget.store(bytes);
}
void setRawPointersOffered(bool on) {
    data::rawPointers.store(on);
}
void setWideNodeMaps(bool on) {
    data::wideMaps.store(on);
}

}  // namespace minihost
