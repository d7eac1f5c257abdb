// Helpers for the data set tests: a fresh data set, zones made by argument list.
#pragma once

#include <string>
#include <vector>

#include "host/ZorData.h"
#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace datasettest {

// A new data set titled "Test" with the named variables, replacing any other.
inline void newDataSet(const std::vector<std::string>& varNames) {
    ZorStringList names = minihost::makeStringList(varNames);
    ZorArgList args = ZorUtilArgListAlloc();
    ZorUtilArgListAppendString(args, "DataSetTitle", "Test");
    ZorUtilArgListAppendStringList(args, "VarNames", names);
    ZorUtilArgListAppendString(args, "LoaderName", "Test Loader");
    bool made = ZorUtilDataSetCreateX(args);
    ZorUtilArgListDealloc(&args);
    ZorUtilStringListDealloc(&names);
    if (!made)
        minihost::fatal("the test could not make a data set");
}

// Adds a zone; types and locations are per variable (empty: Float, nodal).
inline bool addZone(const std::string& name, int32_t zoneType, int64_t iMax, int64_t jMax, int64_t kMax,
                    const std::vector<int32_t>& types = {}, const std::vector<int32_t>& locations = {},
                    int64_t strand = 0, double time = 0.0, int64_t parent = 0) {
    ZorArgList args = ZorUtilArgListAlloc();
    ZorUtilArgListAppendString(args, "Name", name.c_str());
    ZorUtilArgListAppendInt(args, "ZoneType", zoneType);
    ZorUtilArgListAppendInt(args, "IMax", iMax);
    ZorUtilArgListAppendInt(args, "JMax", jMax);
    ZorUtilArgListAppendInt(args, "KMax", kMax);
    ZorUtilArgListAppendInt(args, "StrandID", strand);
    ZorUtilArgListAppendDouble(args, "SolutionTime", time);
    if (parent != 0)
        ZorUtilArgListAppendInt(args, "ParentZone", parent);
    if (!types.empty())
        ZorUtilArgListAppendArray(args, "VarDataType", types.data());
    if (!locations.empty())
        ZorUtilArgListAppendArray(args, "ValueLocation", locations.data());
    ZorUtilArgListAppendInt(args, "DeferVarCreation", 1);
    bool added = ZorUtilDataSetAddZoneX(args);
    ZorUtilArgListDealloc(&args);
    return added;
}

inline std::string zoneName(ZorIndex zone) {
    char* name = nullptr;
    if (!ZorUtilZoneGetName(zone, &name))
        return "<none>";
    std::string result = name;
    ZorUtilStringDealloc(&name);
    return result;
}

}  // namespace datasettest
