// Load, unload and reload of every kind of item, in any order, from several
// threads and under a memory budget: the values stay the same, and once every
// item is let go the case holds no use and no bulk array.
#include <atomic>
#include <random>
#include <thread>

#include "lod/LodTestSupport.h"
#include "tools/fluentgen/FluentGen.h"

namespace {

using namespace lodtest;

// One item the host loads on demand: values of a variable in a zone (var > 0),
// or the zone's node map (var 0).
struct Item {
    ZorIndex zone;
    ZorIndex var;
};

class Items : public LoadTest {
  protected:
    void SetUp() override {
        LoadTest::SetUp();
        fluentgen::Spec spec;
        spec.mesh = fluentgen::MeshKind::Mixed;
        spec.cells = {3, 3, 5};
        spec.cellZoneTypes = {1, 17};
        spec.encoding = fluentgen::Encoding::BinaryMixed;
        spec.fields = fluentgen::richFields(3);
        spec.deltaTimeSampled = 2.0;
        spec.hanging = false;
        const fluentgen::WrittenFiles files = fluentgen::writeFiles(spec, dir_, "items");
        ASSERT_TRUE(loadPair(files.caseFiles[0], files.dataFiles[0])) << testing::PrintToString(shown());
        for (ZorIndex zone = 1; zone <= ZorUtilDataSetGetNumZones(); ++zone) {
            items_.push_back({zone, 0});
            for (ZorIndex v = 1; v <= ZorUtilDataSetGetNumVars(); ++v) {
                if (minihost::valueStats(zone, v).hasLoader)
                    items_.push_back({zone, v});
            }
        }
        ASSERT_GT(items_.size(), 50u);
        for (const Item& item : items_)
            reference_.push_back(read(item));
        minihost::unloadAll();
        expectNothingHeld();
    }

    // What the item holds, loaded on demand: values, or the node map's nodes.
    static std::vector<double> read(const Item& item) {
        if (item.var > 0)
            return values(item.zone, item.var);
        std::vector<double> nodes;
        for (const auto& element : nodeMap(item.zone))
            nodes.insert(nodes.end(), element.begin(), element.end());
        return nodes;
    }
    static bool unload(const Item& item) {
        return item.var > 0 ? minihost::unloadValues(item.zone, item.var)
                            : minihost::unloadNodeMap(item.zone);
    }

    // The case holds no use and no bulk array, and no field holds values.
    static void expectNothingHeld() {
        const CaseFile* caseFile = lastCaseFile();
        EXPECT_EQ(caseFile->useCount, 0);
        EXPECT_EQ(caseFile->nodePositions, nullptr);
        for (int32_t i = 0; i < caseFile->numCellZones; ++i)
            EXPECT_EQ(caseFile->cellZones[i].oldToNewNodes, nullptr);
        for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
            EXPECT_EQ(caseFile->faceZones[i].faceCells, nullptr);
            EXPECT_EQ(caseFile->faceZones[i].zoneNodes, nullptr);
        }
        // A mean that a root mean square read for itself while none of the
        // mean's own components was loaded keeps its values: no component
        // unload comes to free them.
        const DataFile* dataFile = lastDataFile();
        for (int32_t i = 0; i < dataFile->numDataFields; ++i) {
            const DataField& field = dataFile->dataFields[i];
            const bool readForARootMeanSquare =
                field.fieldId == 400 || (field.fieldId >= 1000 && field.fieldId < 1050);
            if (!readForARootMeanSquare) {
                EXPECT_EQ(field.values, nullptr) << "field " << field.fieldId;
            }
            EXPECT_EQ(field.loadedComponents, 0);
        }
        EXPECT_EQ(minihost::loadedBytes(), 0u);
    }

    std::vector<Item> items_;
    std::vector<std::vector<double>> reference_;
};

TEST_F(Items, LoadUnloadAndReloadInAnyOrderKeepTheValuesAndLeaveNoUseBehind) {
    std::mt19937 random(7);
    std::vector<bool> loaded(items_.size(), false);
    for (int step = 0; step < 3000; ++step) {
        const size_t i = random() % items_.size();
        if (loaded[i] && random() % 2 == 0) {
            ASSERT_TRUE(unload(items_[i]));
            loaded[i] = false;
        } else {
            ASSERT_EQ(read(items_[i]), reference_[i]) << "item " << i;
            loaded[i] = true;
        }
        // The use count is the number of loaded items.
        ASSERT_EQ(lastCaseFile()->useCount, std::count(loaded.begin(), loaded.end(), true));
    }
    minihost::unloadAll();
    expectNothingHeld();
    EXPECT_TRUE(shown().empty());
}

TEST_F(Items, ConcurrentLoadsUnloadsAndReloadsOfEveryKindOfItemLeaveNoUseBehind) {
    // Each thread loads, unloads and reloads its own items; items of one case,
    // and components of one field, fall to different threads.
    constexpr int kThreads = 4;
    std::atomic<int> mismatches{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            std::mt19937 random(static_cast<unsigned>(t) + 1);
            std::vector<size_t> mine;
            for (size_t i = static_cast<size_t>(t); i < items_.size(); i += kThreads)
                mine.push_back(i);
            for (int round = 0; round < 6; ++round) {
                std::shuffle(mine.begin(), mine.end(), random);
                for (size_t i : mine) {
                    if (read(items_[i]) != reference_[i])
                        ++mismatches;
                    if (random() % 2 == 0 && !unload(items_[i]))
                        ++mismatches;
                }
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(mismatches.load(), 0);
    minihost::unloadAll();
    expectNothingHeld();
    EXPECT_TRUE(shown().empty());
}

TEST_F(Items, ThreadsPullingTheSameItemsAtOnceSeeTheSameValues) {
    constexpr int kThreads = 4;
    std::atomic<int> mismatches{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            std::vector<size_t> order(items_.size());
            for (size_t i = 0; i < order.size(); ++i)
                order[i] = i;
            std::shuffle(order.begin(), order.end(), std::mt19937(static_cast<unsigned>(t) + 11));
            for (size_t i : order) {
                if (read(items_[i]) != reference_[i])
                    ++mismatches;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(mismatches.load(), 0);
    // Every item loaded once, each holding one use.
    EXPECT_EQ(lastCaseFile()->useCount, static_cast<int32_t>(items_.size()));
    minihost::unloadAll();
    expectNothingHeld();
}

TEST_F(Items, MemoryBudgetThatForcesUnloadsGivesTheSameValues) {
    minihost::setMemoryBudget(16 * 1024);
    for (int pass = 0; pass < 2; ++pass) {
        for (size_t i = 0; i < items_.size(); ++i)
            ASSERT_EQ(read(items_[i]), reference_[i]) << "item " << i << " in pass " << pass;
    }
    int unloads = 0;
    for (const Item& item : items_) {
        const minihost::ItemStats stats =
            item.var > 0 ? minihost::valueStats(item.zone, item.var) : minihost::nodeMapStats(item.zone);
        unloads += stats.unloads;
    }
    EXPECT_GT(unloads, static_cast<int>(items_.size()));  // the budget made the host let go, and reload
    EXPECT_LE(minihost::loadedBytes(), 16u * 1024u + 64u * 1024u);
    minihost::setMemoryBudget(0);
    minihost::unloadAll();
    expectNothingHeld();
    EXPECT_TRUE(shown().empty());
}

}  // namespace
