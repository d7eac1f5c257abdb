// What the tests of zones, variables and load-on-demand share: the add-on
// registered with the host stand-in, a scratch folder, loads through the
// loader's callback as a macro would run them, and the data set read back
// through the host's own readers (which load items on demand).
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "addon/FluentSolution.h"
#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "host/ZorData.h"
#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

extern "C" void InitZorAddOn113(void);

namespace lodtest {

using Shown = std::pair<std::string, std::string>;  // kind ("error", "warning", ...), text

// Every message the host recorded so far, as (kind, text).
inline std::vector<Shown> shown() {
    std::vector<Shown> result;
    for (const minihost::Message& message : minihost::messages())
        result.emplace_back(message.kind, message.text);
    return result;
}

// Registers the add-on once per test program, as the host does at start
// (unless the program registered it already).
inline void ensureAddOn() {
    static const bool registered = [] {
        if (!minihost::findLoader("Fluent Data Loader"))
            minihost::initAddOn(InitZorAddOn113);
        return true;
    }();
    (void)registered;
}

// The data set goes, with the cleanups of every item and the purge that its
// removal queues; then every solution record goes.
inline void dropEverything() {
    minihost::deleteDataSet();
    minihost::runIdleQueue();
    DeleteAllSolutions();
}

// A test with the add-on registered, a scratch folder, and no data set, no
// solution and nothing recorded at its start and at its end.
class LoadTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ensureAddOn();
        dropEverything();
        minihost::resetRecords();
        minihost::setProgressBarEnabled(false);
        char pattern[] = "/tmp/fl-lod-test-XXXXXX";
        char* made = mkdtemp(pattern);
        ASSERT_NE(made, nullptr);
        dir_ = made;
    }
    void TearDown() override {
        minihost::setMemoryBudget(0);
        minihost::setRawPointersOffered(true);
        minihost::setWideNodeMaps(false);
        dropEverything();
        minihost::resetRecords();
        std::error_code ignored;
        std::filesystem::remove_all(dir_, ignored);
    }

    std::string path(const std::string& name) const { return dir_ + "/" + name; }

    std::string write(const std::string& name, const std::string& content) const {
        const std::string full = path(name);
        std::ofstream out(full, std::ios::binary);
        out << content;
        EXPECT_TRUE(out.good()) << full;
        return full;
    }

    // A load of a case file alone, in the standard syntax, with more pairs of
    // instructions behind.
    static bool loadCase(const std::string& casePath, const std::vector<std::string>& more = {}) {
        std::vector<std::string> list = {"STANDARDSYNTAX", "1.0",        "FILENAME_CaseFile",
                                         casePath,         "LoadOption", "CaseOnly"};
        list.insert(list.end(), more.begin(), more.end());
        return minihost::invokeLoader("Fluent Data Loader", list);
    }
    // A load of a case and a data file.
    static bool loadPair(const std::string& casePath, const std::string& dataPath,
                         const std::vector<std::string>& more = {}) {
        std::vector<std::string> list = {"STANDARDSYNTAX",    "1.0",    "FILENAME_CaseFile", casePath,
                                         "FILENAME_DataFile", dataPath, "LoadOption",        "CaseAndData"};
        list.insert(list.end(), more.begin(), more.end());
        return minihost::invokeLoader("Fluent Data Loader", list);
    }

    std::string dir_;
};

// ---- The latest solution and its files ---------------------------------------------------------

inline FluentSolution* lastSolution() {
    return SolutionTableCount > 0 ? &SolutionTable[SolutionTableCount - 1] : nullptr;
}
inline CaseFile* lastCaseFile() {
    FluentSolution* solution = lastSolution();
    return solution != nullptr && solution->numCaseFiles > 0 ? &solution->caseFiles[0] : nullptr;
}
inline DataFile* lastDataFile() {
    FluentSolution* solution = lastSolution();
    return solution != nullptr && solution->numDataFiles > 0 ? &solution->dataFiles[0] : nullptr;
}

// ---- The data set as the host holds it ---------------------------------------------------------

inline std::vector<std::string> variableNames() {
    std::vector<std::string> names;
    const ZorIndex count = ZorUtilDataSetGetNumVars();
    for (ZorIndex v = 1; v <= count; ++v) {
        char* name = nullptr;
        EXPECT_TRUE(ZorUtilVarGetName(v, &name));
        names.push_back(name != nullptr ? name : "");
        ZorUtilStringDealloc(&name);
    }
    return names;
}

inline std::string zoneName(ZorIndex zone) {
    char* name = nullptr;
    EXPECT_TRUE(ZorUtilZoneGetName(zone, &name));
    std::string result = name != nullptr ? name : "";
    ZorUtilStringDealloc(&name);
    return result;
}

inline std::vector<std::string> zoneNames() {
    std::vector<std::string> names;
    for (ZorIndex z = 1; z <= ZorUtilDataSetGetNumZones(); ++z)
        names.push_back(zoneName(z));
    return names;
}

// The number of the variable of exactly this name; 0 when there is none.
inline ZorIndex var(const std::string& name) {
    return ZorUtilVarGetNumByName(name.c_str());
}

// The values of a variable in a zone, loaded on demand; empty when the load failed.
inline std::vector<double> values(ZorIndex zone, ZorIndex variable) {
    std::vector<double> result;
    ZorFieldData data = ZorUtilDataValueGetReadableNativeRef(zone, variable);
    if (data == nullptr)
        return result;
    const ZorIndex count = ZorUtilDataValueGetCountByRef(data);
    result.reserve(static_cast<size_t>(count));
    for (ZorIndex i = 1; i <= count; ++i)
        result.push_back(ZorUtilDataValueGetByRef(data, i));
    return result;
}

// The node map of a zone, loaded on demand: one-based nodes, element after
// element. Empty when the load failed.
inline std::vector<std::vector<int64_t>> nodeMap(ZorIndex zone) {
    std::vector<std::vector<int64_t>> elements;
    ZorNodeMap map = ZorUtilDataNodeGetReadableRef(zone);
    if (map == nullptr)
        return elements;
    const ZorIndex numElements = ZorUtilDataNodeGetNumElems(map);
    const ZorIndex corners = ZorUtilDataNodeGetNodesPerElem(map);
    for (ZorIndex e = 1; e <= numElements; ++e) {
        std::vector<int64_t> nodes;
        for (ZorIndex k = 1; k <= corners; ++k)
            nodes.push_back(ZorUtilDataNodeGetByRef(map, e, k));
        elements.push_back(nodes);
    }
    return elements;
}

// The auxiliary item of a zone (0: the data set) of this name; "" when there is none.
inline std::string auxItem(ZorIndex zone, const std::string& name) {
    ZorAuxDataRef aux = zone == 0 ? ZorUtilAuxDataDataSetGetRef() : ZorUtilAuxDataZoneGetRef(zone);
    char* value = nullptr;
    std::string result;
    if (aux != nullptr && ZorUtilAuxDataGetItemByName(aux, name.c_str(), &value) && value != nullptr)
        result = value;
    ZorUtilStringDealloc(&value);
    return result;
}

inline size_t auxItemCount(ZorIndex zone) {
    ZorAuxDataRef aux = zone == 0 ? ZorUtilAuxDataDataSetGetRef() : ZorUtilAuxDataZoneGetRef(zone);
    return aux == nullptr ? 0 : static_cast<size_t>(ZorUtilAuxDataGetNumItems(aux));
}

}  // namespace lodtest
