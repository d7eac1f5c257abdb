// XY maps of the frame and low-level style values.
//
// In XY mode the frame has one map per variable beyond the first: map m draws
// variable m + 1 against variable 1 in zone 1. Only map 1 is active at first.
// Index ranges count from 1; a maximum of 0 means "to the end".
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "host/ZorData.h"
#include "minihost/DataModel.h"
#include "minihost/Internal.h"
#include "minihost/MiniHost.h"

namespace {

struct XYMap {
    bool active = false;
    std::map<std::string, ZorIndex> indices{{"IRange.Min", 1}, {"IRange.Max", 0}, {"IRange.Skip", 1},
                                            {"JRange.Min", 1}, {"JRange.Max", 0}, {"JRange.Skip", 1},
                                            {"KRange.Min", 1}, {"KRange.Max", 0}, {"KRange.Skip", 1}};
};

std::mutex plotMutex;  // guards the records below
std::vector<XYMap> xyMaps;
typedef std::tuple<std::string, std::string, std::string, ZorIndex, ZorIndex> StylePath;
std::map<StylePath, std::pair<ZorArbParam, double>> styleValues;

// Makes the maps match the data set's variables (plotMutex held).
size_t mapCount() {
    ZorIndex vars = ZorUtilDataSetGetNumVars();
    size_t wanted = vars > 1 ? static_cast<size_t>(vars - 1) : 0;
    if (xyMaps.size() < wanted) {
        size_t before = xyMaps.size();
        xyMaps.resize(wanted);
        if (before == 0)
            xyMaps[0].active = true;
    }
    if (xyMaps.size() > wanted)
        xyMaps.resize(wanted);
    return wanted;
}

std::string key(const char* attribute, const char* subAttribute) {
    if (attribute == nullptr || subAttribute == nullptr)
        return "";
    return std::string(attribute) + "." + subAttribute;
}

StylePath pathOf(const char* w1, const char* w2, const char* w3, ZorIndex o1, ZorIndex o2) {
    return StylePath(w1 == nullptr ? "" : w1, w2 == nullptr ? "" : w2, w3 == nullptr ? "" : w3, o1, o2);
}

}  // namespace

extern "C" {

ZorIndex ZorUtilXYMapGetCount(void) {
    std::lock_guard<std::mutex> guard(plotMutex);
    return static_cast<ZorIndex>(mapCount());
}

bool ZorUtilXYMapSetIndices(const char* attribute, const char* subAttribute, ZorSet maps, ZorIndex value) {
    std::lock_guard<std::mutex> guard(plotMutex);
    size_t count = mapCount();
    std::string name = key(attribute, subAttribute);
    if (XYMap().indices.count(name) == 0)
        return false;
    for (ZorIndex map : minihost::setMembers(maps)) {
        if (map < 1 || static_cast<size_t>(map) > count)
            return false;
    }
    for (ZorIndex map : minihost::setMembers(maps))
        xyMaps[static_cast<size_t>(map - 1)].indices[name] = value;
    return true;
}

bool ZorUtilXYMapGetIndices(ZorIndex map, const char* attribute, const char* subAttribute, ZorIndex* value) {
    std::lock_guard<std::mutex> guard(plotMutex);
    size_t count = mapCount();
    std::string name = key(attribute, subAttribute);
    if (map < 1 || static_cast<size_t>(map) > count || XYMap().indices.count(name) == 0 || value == nullptr) {
        return false;
    }
    *value = xyMaps[static_cast<size_t>(map - 1)].indices[name];
    return true;
}

bool ZorUtilXYMapSetActive(ZorSet maps, int32_t assignOp) {
    std::lock_guard<std::mutex> guard(plotMutex);
    size_t count = mapCount();
    std::vector<ZorIndex> members = minihost::setMembers(maps);
    for (ZorIndex map : members) {
        if (map < 1 || static_cast<size_t>(map) > count)
            return false;
    }
    switch (assignOp) {
        case ZorAssignOp_Equals:
            for (XYMap& m : xyMaps)
                m.active = false;
            for (ZorIndex map : members)
                xyMaps[static_cast<size_t>(map - 1)].active = true;
            return true;
        case ZorAssignOp_PlusEquals:
            for (ZorIndex map : members)
                xyMaps[static_cast<size_t>(map - 1)].active = true;
            return true;
        case ZorAssignOp_MinusEquals:
            for (ZorIndex map : members)
                xyMaps[static_cast<size_t>(map - 1)].active = false;
            return true;
        default:
            return false;
    }
}

bool ZorUtilXYMapIsActive(ZorIndex map) {
    std::lock_guard<std::mutex> guard(plotMutex);
    size_t count = mapCount();
    return map >= 1 && static_cast<size_t>(map) <= count && xyMaps[static_cast<size_t>(map - 1)].active;
}

bool ZorUtilStyleSetLowLevel(const char* word1, const char* word2, const char* word3, ZorIndex offset1,
                             ZorIndex offset2, ZorArbParam intValue, double doubleValue, bool notify) {
    if (word1 == nullptr || word1[0] == '\0')
        return false;
    {
        std::lock_guard<std::mutex> guard(plotMutex);
        styleValues[pathOf(word1, word2, word3, offset1, offset2)] = {intValue, doubleValue};
    }
    if (notify)
        minihost::data::hostStateChange(ZorStateChange_Style);
    return true;
}

bool ZorUtilStyleGetLowLevel(const char* word1, const char* word2, const char* word3, ZorIndex offset1,
                             ZorIndex offset2, ZorArbParam* intValue, double* doubleValue) {
    std::lock_guard<std::mutex> guard(plotMutex);
    auto at = styleValues.find(pathOf(word1, word2, word3, offset1, offset2));
    if (at == styleValues.end())
        return false;
    if (intValue != nullptr)
        *intValue = at->second.first;
    if (doubleValue != nullptr)
        *doubleValue = at->second.second;
    return true;
}

}  // extern "C"

namespace minihost {
namespace detail {

void resetPlot() {
    std::lock_guard<std::mutex> guard(plotMutex);
    xyMaps.clear();
    styleValues.clear();
}

}  // namespace detail
}  // namespace minihost
