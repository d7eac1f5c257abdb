// The frame and its data set: zones, variables, copies, strands, solution
// times and auxiliary data.
//
// One frame holds at most one data set. Data sets, zones and variables draw
// their unique ids from one counter, so no id is ever given twice. Storage of
// values and maps is made when first needed (see LoadOnDemand.cpp); making a
// zone only makes empty items.
#include <algorithm>
#include <atomic>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "host/HostServices.h"
#include "host/ZorData.h"
#include "host/ZorUtil.h"
#include "minihost/DataModel.h"
#include "minihost/Internal.h"
#include "minihost/MiniHost.h"

namespace minihost {
namespace data {

std::mutex dataMutex;
std::unique_ptr<DataSet> dataSet;

namespace {

std::atomic<uint64_t> uniqueIdCounter{0};
constexpr ZorUniqueID frameUniqueID = 1;  // the one frame's id; item ids start above it
int32_t frameMode = ZorFrameMode_Sketch;  // dataMutex
int32_t plotType = ZorPlotType_Sketch;    // dataMutex
int dataLoadDepth = 0;                    // dataMutex
int deferrers = 0;                        // live SolutionTimeNotificationDeferrers (dataMutex)
bool solutionTimeNoticePending = false;   // a time changed under a deferrer (dataMutex)
std::vector<int32_t> hostNotices;         // state changes the host sent (dataMutex)
std::atomic<int> totalCleanups{0};

// The names that ZorUtilDataSetAddZoneX understands.
const char* const zoneArgNames[] = {"Name",
                                    "ZoneType",
                                    "IMax",
                                    "JMax",
                                    "KMax",
                                    "ParentZone",
                                    "StrandID",
                                    "SolutionTime",
                                    "VarDataType",
                                    "ValueLocation",
                                    "DeferVarCreation",
                                    "DeferNodeMapCreation",
                                    "FaceNeighborMode"};

bool knownArgs(ZorArgList args, const char* const* names, size_t count, const char* call) {
    for (const std::string& name : argNames(args)) {
        if (std::find_if(names, names + count, [&](const char* n) { return name == n; }) == names + count) {
            setLastError(std::string(call) + ": unknown argument \"" + name + "\".");
            return false;
        }
    }
    return true;
}

std::shared_ptr<ZorFieldDataImpl> newValues(const Zone& zone, ZorIndex var, int32_t type, int32_t location) {
    auto item = std::make_shared<ZorFieldDataImpl>();
    item->type = type;
    item->location = location;
    item->count = location == ZorValueLocation_CellCentered ? zone.numElements() : zone.numPoints();
    item->what = "the values of variable " + std::to_string(var) + " in zone " + zone.name;
    return item;
}

bool validType(int32_t type) {
    return type >= ZorFieldDataType_Float && type <= ZorFieldDataType_Bit;
}
bool validLocation(int32_t location) {
    return location == ZorValueLocation_CellCentered || location == ZorValueLocation_Nodal;
}

// Adds a zone to the data set (dataMutex held). False, with the last error set, on bad sizes.
bool addZone(Zone zone, const int32_t* types, const int32_t* locations) {
    if (dataSet == nullptr) {
        setLastError("There is no data set to add a zone to.");
        return false;
    }
    if (zone.type < ZorZoneType_Ordered || zone.type > ZorZoneType_FEPolyhedron) {
        setLastError("Invalid zone type " + std::to_string(zone.type) + ".");
        return false;
    }
    if (zone.iMax < 0 || zone.jMax < 0 || zone.kMax < 0 ||
        (zone.type == ZorZoneType_Ordered && (zone.iMax < 1 || zone.jMax < 1 || zone.kMax < 1))) {
        setLastError("Invalid zone dimensions.");
        return false;
    }
    zone.uniqueId = newUniqueId();
    ZorIndex number = static_cast<ZorIndex>(dataSet->zones.size()) + 1;
    for (size_t v = 0; v < dataSet->variables.size(); ++v) {
        int32_t type = types != nullptr ? types[v] : ZorFieldDataType_Float;
        int32_t location = locations != nullptr ? locations[v] : ZorValueLocation_Nodal;
        if (!validType(type) || !validLocation(location)) {
            setLastError("Invalid data type or value location for variable " + std::to_string(v + 1) + ".");
            return false;
        }
        zone.values.push_back(newValues(zone, static_cast<ZorIndex>(v + 1), type, location));
    }
    int32_t corners = cornersOf(zone.type);
    if (corners > 0) {
        zone.nodeMap = std::make_shared<ZorNodeMapImpl>();
        zone.nodeMap->numElements = zone.jMax;
        zone.nodeMap->nodesPerElement = corners;
        zone.nodeMap->numPoints = zone.iMax;
        zone.nodeMap->wide = wideNodeMaps() || zone.iMax > INT32_MAX;
        zone.nodeMap->what = "the node map of zone " + zone.name;
    }
    if (zone.type == ZorZoneType_FEPolygon || zone.type == ZorZoneType_FEPolyhedron) {
        zone.faceMap = std::make_shared<ZorFaceMapImpl>();
        zone.faceMap->zoneType = zone.type;
        zone.faceMap->declaredFaces = zone.kMax;
        zone.faceMap->what = "the face map of zone " + zone.name;
    }
    if (zone.type != ZorZoneType_Ordered) {
        zone.faceNeighbors = std::make_shared<ZorFaceNeighborImpl>();
        zone.faceNeighbors->ownerZoneId = zone.uniqueId;
        zone.faceNeighbors->what = "the face neighbours of zone " + zone.name;
    }
    (void)number;
    dataSet->zones.push_back(std::move(zone));
    return true;
}

// Adds a variable to every zone (dataMutex held).
bool addVariable(const std::string& name, const int32_t* types, const int32_t* locations) {
    if (dataSet == nullptr) {
        setLastError("There is no data set to add a variable to.");
        return false;
    }
    for (size_t z = 0; z < dataSet->zones.size(); ++z) {
        int32_t type = types != nullptr ? types[z] : ZorFieldDataType_Float;
        int32_t location = locations != nullptr ? locations[z] : ZorValueLocation_Nodal;
        if (!validType(type) || !validLocation(location)) {
            setLastError("Invalid data type or value location for zone " + std::to_string(z + 1) + ".");
            return false;
        }
    }
    ZorIndex var = static_cast<ZorIndex>(dataSet->variables.size()) + 1;
    dataSet->variables.push_back({name, newUniqueId()});
    for (size_t z = 0; z < dataSet->zones.size(); ++z) {
        Zone& zone = dataSet->zones[z];
        zone.values.push_back(newValues(zone, var, types != nullptr ? types[z] : ZorFieldDataType_Float,
                                        locations != nullptr ? locations[z] : ZorValueLocation_Nodal));
    }
    return true;
}

bool needsDataSet(int32_t type) {
    return type == ZorPlotType_Cartesian3D || type == ZorPlotType_Cartesian2D || type == ZorPlotType_XYLine ||
           type == ZorPlotType_PolarLine;
}

char* copyOut(const std::string& text) {
    return detail::hostStringCopy(text);
}

}  // namespace

ZorUniqueID newUniqueId() {
    return frameUniqueID + ++uniqueIdCounter;
}

Zone* zoneAt(ZorIndex zone) {
    if (dataSet == nullptr || zone < 1 || zone > static_cast<ZorIndex>(dataSet->zones.size()))
        return nullptr;
    return &dataSet->zones[static_cast<size_t>(zone - 1)];
}

int32_t cornersOf(int32_t zoneType) {
    switch (zoneType) {
        case ZorZoneType_FETriangle:
            return 3;
        case ZorZoneType_FEQuad:
            return 4;
        case ZorZoneType_FETetra:
            return 4;
        case ZorZoneType_FEBrick:
            return 8;
        case ZorZoneType_FELineSeg:
            return 2;
        default:
            return 0;
    }
}

int32_t facesOf(int32_t zoneType) {
    switch (zoneType) {
        case ZorZoneType_FETriangle:
            return 3;
        case ZorZoneType_FEQuad:
            return 4;
        case ZorZoneType_FETetra:
            return 4;
        case ZorZoneType_FEBrick:
            return 6;
        case ZorZoneType_FELineSeg:
            return 2;
        default:
            return 0;
    }
}

size_t valueSize(int32_t type) {
    switch (type) {
        case ZorFieldDataType_Float:
            return 4;
        case ZorFieldDataType_Double:
            return 8;
        case ZorFieldDataType_Int32:
            return 4;
        case ZorFieldDataType_Int16:
            return 2;
        case ZorFieldDataType_Byte:
            return 1;
        case ZorFieldDataType_Bit:
            return 1;  // one byte per value in this host
        default:
            return 0;
    }
}

int64_t Zone::numPoints() const {
    return type == ZorZoneType_Ordered ? iMax * jMax * kMax : iMax;
}
int64_t Zone::numElements() const {
    return type == ZorZoneType_Ordered ? iMax * jMax * kMax : jMax;
}

void hostStateChange(int32_t code) {
    {
        std::lock_guard<std::mutex> guard(dataMutex);
        hostNotices.push_back(code);
    }
    notifyStateChange(code);
}

void deleteDataSet(bool notify) {
    std::unique_ptr<DataSet> gone;
    {
        std::lock_guard<std::mutex> guard(dataMutex);
        gone = std::move(dataSet);
    }
    if (gone == nullptr)
        return;
    std::vector<LodItem*> items;
    auto add = [&items](LodItem* item) {
        if (item != nullptr && std::find(items.begin(), items.end(), item) == items.end())
            items.push_back(item);
    };
    for (Zone& zone : gone->zones) {
        for (auto& value : zone.values)
            add(value.get());
        add(zone.nodeMap.get());
        add(zone.faceMap.get());
        add(zone.faceNeighbors.get());
    }
    for (LodItem* item : items) {
        bool hadLoader;
        {
            std::lock_guard<std::mutex> guard(item->mutex);
            hadLoader = item->hasLoader && !item->cleanedUp;
        }
        cleanupItem(*item);
        if (hadLoader)
            ++totalCleanups;
    }
    if (notify)
        hostStateChange(ZorStateChange_DataSetReset);
}

}  // namespace data
}  // namespace minihost

using namespace minihost::data;
using minihost::argDouble;
using minihost::argInt;
using minihost::argString;
using minihost::argStringList;
using minihost::setLastError;

extern "C" {

// ---- Frame ----------------------------------------------------------------------

ZorUniqueID ZorUtilFrameGetUniqueID(void) {
    return frameUniqueID;
}

bool ZorUtilFrameReset(ZorUniqueID frameID) {
    if (frameID != frameUniqueID)
        return false;
    deleteDataSet(true);
    std::lock_guard<std::mutex> guard(dataMutex);
    plotType = ZorPlotType_Sketch;
    frameMode = ZorFrameMode_Sketch;
    return true;
}

bool ZorUtilFrameSetMode(int32_t mode) {
    std::lock_guard<std::mutex> guard(dataMutex);
    if (mode < ZorFrameMode_Empty || mode > ZorFrameMode_Sketch)
        return false;
    bool showsData = mode == ZorFrameMode_ThreeD || mode == ZorFrameMode_TwoD || mode == ZorFrameMode_XY;
    if (showsData && dataSet == nullptr)
        return false;
    frameMode = mode;
    switch (mode) {
        case ZorFrameMode_ThreeD:
            plotType = ZorPlotType_Cartesian3D;
            break;
        case ZorFrameMode_TwoD:
            plotType = ZorPlotType_Cartesian2D;
            break;
        case ZorFrameMode_XY:
            plotType = ZorPlotType_XYLine;
            break;
        default:
            plotType = ZorPlotType_Sketch;
            break;
    }
    return true;
}

int32_t ZorUtilFrameGetMode(void) {
    std::lock_guard<std::mutex> guard(dataMutex);
    return frameMode;
}

int32_t ZorUtilFrameGetPlotType(void) {
    std::lock_guard<std::mutex> guard(dataMutex);
    return plotType;
}

bool ZorUtilFrameSetPlotType(int32_t type) {
    std::lock_guard<std::mutex> guard(dataMutex);
    if (type < ZorPlotType_Automatic || type > ZorPlotType_PolarLine)
        return false;
    if (needsDataSet(type) && dataSet == nullptr)
        return false;
    plotType = type;
    switch (type) {
        case ZorPlotType_Cartesian3D:
            frameMode = ZorFrameMode_ThreeD;
            break;
        case ZorPlotType_Cartesian2D:
            frameMode = ZorFrameMode_TwoD;
            break;
        case ZorPlotType_XYLine:
        case ZorPlotType_PolarLine:
            frameMode = ZorFrameMode_XY;
            break;
        case ZorPlotType_Sketch:
            frameMode = ZorFrameMode_Sketch;
            break;
        default:
            break;
    }
    return true;
}

// ---- Data set -------------------------------------------------------------------

bool ZorUtilDataSetIsAvailable(void) {
    std::lock_guard<std::mutex> guard(dataMutex);
    return dataSet != nullptr;
}

bool ZorUtilDataSetIsAvailableByUniqueID(ZorUniqueID dataSetID) {
    std::lock_guard<std::mutex> guard(dataMutex);
    return dataSet != nullptr && dataSetID != 0 && dataSet->uniqueId == dataSetID;
}

ZorUniqueID ZorUtilDataSetGetUniqueID(void) {
    std::lock_guard<std::mutex> guard(dataMutex);
    return dataSet == nullptr ? 0 : dataSet->uniqueId;
}

bool ZorUtilDataSetIsLODAllowed(void) {
    return minihost::detail::loadOnDemandAllowed();
}

bool ZorUtilDataSetCreateX(ZorArgList args) {
    static const char* const names[] = {"DataSetTitle", "VarNames", "LoaderName"};
    if (!knownArgs(args, names, 3, "ZorUtilDataSetCreateX"))
        return false;
    const char* title = "";
    const char* loaderName = "";
    ZorStringList varNames = nullptr;
    if ((minihost::argType(args, "DataSetTitle") != minihost::ArgType::None &&
         !argString(args, "DataSetTitle", &title)) ||
        (minihost::argType(args, "VarNames") != minihost::ArgType::None &&
         !argStringList(args, "VarNames", &varNames)) ||
        (minihost::argType(args, "LoaderName") != minihost::ArgType::None &&
         !argString(args, "LoaderName", &loaderName))) {
        setLastError("ZorUtilDataSetCreateX: an argument has the wrong type.");
        return false;
    }
    auto created = std::make_unique<DataSet>();
    created->title = title == nullptr ? "" : title;
    created->loaderName = loaderName == nullptr ? "" : loaderName;
    for (const std::string& name : minihost::stringListToVector(varNames)) {
        created->variables.push_back({name, 0});
    }
    deleteDataSet(true);  // the frame's old data set goes
    std::lock_guard<std::mutex> guard(dataMutex);
    created->uniqueId = newUniqueId();
    for (Variable& variable : created->variables)
        variable.uniqueId = newUniqueId();
    dataSet = std::move(created);
    return true;
}

bool ZorUtilDataSetGetInfo(char** dataSetTitle, ZorIndex* numZones, ZorIndex* numVars) {
    std::lock_guard<std::mutex> guard(dataMutex);
    if (dataSet == nullptr)
        return false;
    if (dataSetTitle != nullptr)
        *dataSetTitle = copyOut(dataSet->title);
    if (numZones != nullptr)
        *numZones = static_cast<ZorIndex>(dataSet->zones.size());
    if (numVars != nullptr)
        *numVars = static_cast<ZorIndex>(dataSet->variables.size());
    return true;
}

ZorIndex ZorUtilDataSetGetNumZones(void) {
    std::lock_guard<std::mutex> guard(dataMutex);
    return dataSet == nullptr ? 0 : static_cast<ZorIndex>(dataSet->zones.size());
}

ZorIndex ZorUtilDataSetGetNumVars(void) {
    std::lock_guard<std::mutex> guard(dataMutex);
    return dataSet == nullptr ? 0 : static_cast<ZorIndex>(dataSet->variables.size());
}

int32_t ZorUtilDataSetGetMaxStrandID(void) {
    std::lock_guard<std::mutex> guard(dataMutex);
    int32_t strand = 0;
    if (dataSet != nullptr) {
        for (const Zone& zone : dataSet->zones)
            strand = std::max(strand, zone.strand);
    }
    return strand;
}

bool ZorUtilDataSetAddZone(const char* name, ZorIndex iMax, ZorIndex jMax, ZorIndex kMax, int32_t zoneType,
                           const int32_t* varDataTypes) {
    Zone zone;
    zone.name = name == nullptr ? "" : name;
    zone.type = zoneType;
    zone.iMax = iMax;
    zone.jMax = jMax;
    zone.kMax = kMax;
    std::lock_guard<std::mutex> guard(dataMutex);
    return addZone(std::move(zone), varDataTypes, nullptr);
}

bool ZorUtilDataSetAddZoneX(ZorArgList args) {
    if (!knownArgs(args, zoneArgNames, sizeof zoneArgNames / sizeof zoneArgNames[0],
                   "ZorUtilDataSetAddZoneX")) {
        return false;
    }
    Zone zone;
    const char* name = nullptr;
    int64_t type = -1;
    if (!argString(args, "Name", &name) || !argInt(args, "ZoneType", &type)) {
        setLastError("ZorUtilDataSetAddZoneX needs \"Name\" and \"ZoneType\".");
        return false;
    }
    zone.name = name == nullptr ? "" : name;
    zone.type = static_cast<int32_t>(type);
    int64_t value = 0;
    double time = 0.0;
    const void* types = nullptr;
    const void* locations = nullptr;
    auto optionalInt = [&](const char* n, int64_t* out) {
        return minihost::argType(args, n) == minihost::ArgType::None || argInt(args, n, out);
    };
    int64_t strand = 0, neighborMode = ZorFaceNeighborMode_LocalOneToOne, deferVar = 0, deferMap = 0;
    if (!optionalInt("IMax", &zone.iMax) || !optionalInt("JMax", &zone.jMax) ||
        !optionalInt("KMax", &zone.kMax) || !optionalInt("ParentZone", &zone.parentZone) ||
        !optionalInt("StrandID", &strand) || !optionalInt("FaceNeighborMode", &neighborMode) ||
        !optionalInt("DeferVarCreation", &deferVar) || !optionalInt("DeferNodeMapCreation", &deferMap) ||
        (minihost::argType(args, "SolutionTime") != minihost::ArgType::None &&
         !argDouble(args, "SolutionTime", &time)) ||
        (minihost::argType(args, "VarDataType") != minihost::ArgType::None &&
         !minihost::argArray(args, "VarDataType", &types)) ||
        (minihost::argType(args, "ValueLocation") != minihost::ArgType::None &&
         !minihost::argArray(args, "ValueLocation", &locations))) {
        setLastError("ZorUtilDataSetAddZoneX: an argument has the wrong type.");
        return false;
    }
    (void)value;
    zone.strand = static_cast<int32_t>(strand);
    zone.solutionTime = time;
    zone.faceNeighborMode = static_cast<int32_t>(neighborMode);
    std::lock_guard<std::mutex> guard(dataMutex);
    if (zone.parentZone < 0 ||
        (dataSet != nullptr && zone.parentZone > static_cast<int64_t>(dataSet->zones.size()))) {
        setLastError("ZorUtilDataSetAddZoneX: no parent zone " + std::to_string(zone.parentZone) + ".");
        return false;
    }
    return addZone(std::move(zone), static_cast<const int32_t*>(types),
                   static_cast<const int32_t*>(locations));
}

bool ZorUtilDataSetAddVar(const char* name, const int32_t* fieldDataTypes) {
    std::lock_guard<std::mutex> guard(dataMutex);
    return addVariable(name == nullptr ? "" : name, fieldDataTypes, nullptr);
}

bool ZorUtilDataSetAddVarX(ZorArgList args) {
    static const char* const names[] = {"Name", "VarDataType", "ValueLocation", "DeferVarCreation"};
    if (!knownArgs(args, names, 4, "ZorUtilDataSetAddVarX"))
        return false;
    const char* name = nullptr;
    const void* types = nullptr;
    const void* locations = nullptr;
    int64_t defer = 0;
    if (!argString(args, "Name", &name) ||
        (minihost::argType(args, "VarDataType") != minihost::ArgType::None &&
         !minihost::argArray(args, "VarDataType", &types)) ||
        (minihost::argType(args, "ValueLocation") != minihost::ArgType::None &&
         !minihost::argArray(args, "ValueLocation", &locations)) ||
        (minihost::argType(args, "DeferVarCreation") != minihost::ArgType::None &&
         !argInt(args, "DeferVarCreation", &defer))) {
        setLastError("ZorUtilDataSetAddVarX: a missing name or an argument of the wrong type.");
        return false;
    }
    std::lock_guard<std::mutex> guard(dataMutex);
    return addVariable(name == nullptr ? "" : name, static_cast<const int32_t*>(types),
                       static_cast<const int32_t*>(locations));
}

void ZorUtilDataLoadBegin(void) {
    std::lock_guard<std::mutex> guard(dataMutex);
    ++dataLoadDepth;
}

void ZorUtilDataLoadEnd(void) {
    std::lock_guard<std::mutex> guard(dataMutex);
    if (dataLoadDepth == 0)
        minihost::fatal("ZorUtilDataLoadEnd without ZorUtilDataLoadBegin");
    --dataLoadDepth;
}

// ---- Zones ------------------------------------------------------------------------

bool ZorUtilZoneCopyX(ZorArgList args) {
    static const char* const names[] = {"SourceZones"};
    if (!knownArgs(args, names, 1, "ZorUtilZoneCopyX"))
        return false;
    ZorSet sources = nullptr;
    if (!minihost::argSet(args, "SourceZones", &sources)) {
        setLastError("ZorUtilZoneCopyX needs \"SourceZones\".");
        return false;
    }
    std::lock_guard<std::mutex> guard(dataMutex);
    if (dataSet == nullptr)
        return false;
    std::vector<ZorIndex> members = minihost::setMembers(sources);
    for (ZorIndex member : members) {
        if (zoneAt(member) == nullptr) {
            setLastError("ZorUtilZoneCopyX: no zone " + std::to_string(member) + ".");
            return false;
        }
    }
    for (ZorIndex member : members) {
        Zone copy = *zoneAt(member);  // shares every item with its source
        copy.uniqueId = newUniqueId();
        copy.aux = std::make_shared<ZorAuxDataImpl>(*copy.aux);
        dataSet->zones.push_back(std::move(copy));
    }
    return true;
}

ZorUniqueID ZorUtilZoneGetUniqueID(ZorIndex zone) {
    std::lock_guard<std::mutex> guard(dataMutex);
    Zone* z = zoneAt(zone);
    return z == nullptr ? 0 : z->uniqueId;
}

ZorIndex ZorUtilZoneGetNumByUniqueID(ZorUniqueID zoneID) {
    std::lock_guard<std::mutex> guard(dataMutex);
    if (dataSet == nullptr || zoneID == 0)
        return 0;
    for (size_t z = 0; z < dataSet->zones.size(); ++z) {
        if (dataSet->zones[z].uniqueId == zoneID)
            return static_cast<ZorIndex>(z + 1);
    }
    return 0;
}

bool ZorUtilZoneGetInfo(ZorIndex zone, ZorIndex* iMax, ZorIndex* jMax, ZorIndex* kMax) {
    std::lock_guard<std::mutex> guard(dataMutex);
    Zone* z = zoneAt(zone);
    if (z == nullptr)
        return false;
    int32_t corners = cornersOf(z->type);
    if (iMax != nullptr)
        *iMax = z->iMax;
    if (jMax != nullptr)
        *jMax = z->jMax;
    if (kMax != nullptr)
        *kMax = corners > 0 ? corners : z->kMax;
    return true;
}

int32_t ZorUtilZoneGetType(ZorIndex zone) {
    std::lock_guard<std::mutex> guard(dataMutex);
    Zone* z = zoneAt(zone);
    return z == nullptr ? ZorZoneType_Invalid : z->type;
}

bool ZorUtilZoneIsFiniteElement(ZorIndex zone) {
    std::lock_guard<std::mutex> guard(dataMutex);
    Zone* z = zoneAt(zone);
    return z != nullptr && z->type != ZorZoneType_Ordered;
}

bool ZorUtilZoneGetName(ZorIndex zone, char** name) {
    std::lock_guard<std::mutex> guard(dataMutex);
    Zone* z = zoneAt(zone);
    if (z == nullptr || name == nullptr)
        return false;
    *name = copyOut(z->name);
    return *name != nullptr;
}

ZorIndex ZorUtilZoneGetParentZone(ZorIndex zone) {
    std::lock_guard<std::mutex> guard(dataMutex);
    Zone* z = zoneAt(zone);
    return z == nullptr ? 0 : z->parentZone;
}

int32_t ZorUtilZoneGetStrandID(ZorIndex zone) {
    std::lock_guard<std::mutex> guard(dataMutex);
    Zone* z = zoneAt(zone);
    return z == nullptr ? 0 : z->strand;
}

double ZorUtilZoneGetSolutionTime(ZorIndex zone) {
    std::lock_guard<std::mutex> guard(dataMutex);
    Zone* z = zoneAt(zone);
    return z == nullptr ? 0.0 : z->solutionTime;
}

bool ZorUtilZoneSetSolutionTime(ZorIndex zone, double solutionTime) {
    {
        std::lock_guard<std::mutex> guard(dataMutex);
        Zone* z = zoneAt(zone);
        if (z == nullptr)
            return false;
        z->solutionTime = solutionTime;
        if (deferrers > 0) {
            solutionTimeNoticePending = true;
            return true;
        }
    }
    hostStateChange(ZorStateChange_SolutionTime);
    return true;
}

void ZorUtilZoneStyleApplyAuto(ZorSet zones) {
    std::lock_guard<std::mutex> guard(dataMutex);
    for (ZorIndex zone : minihost::setMembers(zones)) {
        if (zoneAt(zone) == nullptr)
            minihost::fatal("ZorUtilZoneStyleApplyAuto: no zone " + std::to_string(zone));
    }
}

// ---- Variables ----------------------------------------------------------------------

bool ZorUtilVarGetName(ZorIndex var, char** name) {
    std::lock_guard<std::mutex> guard(dataMutex);
    if (dataSet == nullptr || name == nullptr || var < 1 ||
        var > static_cast<ZorIndex>(dataSet->variables.size())) {
        return false;
    }
    *name = copyOut(dataSet->variables[static_cast<size_t>(var - 1)].name);
    return *name != nullptr;
}

ZorIndex ZorUtilVarGetNumByName(const char* name) {
    std::lock_guard<std::mutex> guard(dataMutex);
    if (dataSet == nullptr || name == nullptr)
        return 0;
    for (size_t v = 0; v < dataSet->variables.size(); ++v) {
        if (dataSet->variables[v].name == name)
            return static_cast<ZorIndex>(v + 1);
    }
    return 0;
}

bool ZorUtilVarIsEnabled(ZorIndex var) {
    std::lock_guard<std::mutex> guard(dataMutex);
    return dataSet != nullptr && var >= 1 && var <= static_cast<ZorIndex>(dataSet->variables.size()) &&
           dataSet->variables[static_cast<size_t>(var - 1)].enabled;
}

ZorUniqueID ZorUtilVarGetUniqueID(ZorIndex var) {
    std::lock_guard<std::mutex> guard(dataMutex);
    if (dataSet == nullptr || var < 1 || var > static_cast<ZorIndex>(dataSet->variables.size()))
        return 0;
    return dataSet->variables[static_cast<size_t>(var - 1)].uniqueId;
}

ZorIndex ZorUtilVarGetNumByUniqueID(ZorUniqueID varID) {
    std::lock_guard<std::mutex> guard(dataMutex);
    if (dataSet == nullptr || varID == 0)
        return 0;
    for (size_t v = 0; v < dataSet->variables.size(); ++v) {
        if (dataSet->variables[v].uniqueId == varID)
            return static_cast<ZorIndex>(v + 1);
    }
    return 0;
}

// ---- Auxiliary data -------------------------------------------------------------------

ZorAuxDataRef ZorUtilAuxDataDataSetGetRef(void) {
    std::lock_guard<std::mutex> guard(dataMutex);
    return dataSet == nullptr ? nullptr : dataSet->aux.get();
}

ZorAuxDataRef ZorUtilAuxDataZoneGetRef(ZorIndex zone) {
    std::lock_guard<std::mutex> guard(dataMutex);
    Zone* z = zoneAt(zone);
    return z == nullptr ? nullptr : z->aux.get();
}

bool ZorUtilAuxDataSetItem(ZorAuxDataRef auxData, const char* name, const char* value, int32_t type,
                           bool retain) {
    if (auxData == nullptr || name == nullptr || name[0] == '\0' || value == nullptr ||
        type != ZorAuxDataType_String) {
        return false;
    }
    std::lock_guard<std::mutex> guard(dataMutex);
    for (ZorAuxDataImpl::Item& item : auxData->items) {
        if (item.name == name) {
            item.value = value;
            item.retain = retain;
            return true;
        }
    }
    auxData->items.push_back({name, value, type, retain});
    return true;
}

ZorIndex ZorUtilAuxDataGetNumItems(ZorAuxDataRef auxData) {
    std::lock_guard<std::mutex> guard(dataMutex);
    return auxData == nullptr ? 0 : static_cast<ZorIndex>(auxData->items.size());
}

bool ZorUtilAuxDataGetItemByIndex(ZorAuxDataRef auxData, ZorIndex index, char** name, char** value,
                                  int32_t* type, bool* retain) {
    std::lock_guard<std::mutex> guard(dataMutex);
    if (auxData == nullptr || index < 1 || index > static_cast<ZorIndex>(auxData->items.size()))
        return false;
    const ZorAuxDataImpl::Item& item = auxData->items[static_cast<size_t>(index - 1)];
    if (name != nullptr)
        *name = copyOut(item.name);
    if (value != nullptr)
        *value = copyOut(item.value);
    if (type != nullptr)
        *type = item.type;
    if (retain != nullptr)
        *retain = item.retain;
    return true;
}

bool ZorUtilAuxDataGetItemByName(ZorAuxDataRef auxData, const char* name, char** value) {
    std::lock_guard<std::mutex> guard(dataMutex);
    if (auxData == nullptr || name == nullptr || value == nullptr)
        return false;
    for (const ZorAuxDataImpl::Item& item : auxData->items) {
        if (item.name == name) {
            *value = copyOut(item.value);
            return *value != nullptr;
        }
    }
    return false;
}

bool ZorUtilAuxDataDeleteItemByName(ZorAuxDataRef auxData, const char* name) {
    std::lock_guard<std::mutex> guard(dataMutex);
    if (auxData == nullptr || name == nullptr)
        return false;
    auto& items = auxData->items;
    auto at = std::find_if(items.begin(), items.end(),
                           [&](const ZorAuxDataImpl::Item& i) { return i.name == name; });
    if (at == items.end())
        return false;
    items.erase(at);
    return true;
}

}  // extern "C"

// ---- Small services of the data set ----------------------------------------------------

namespace zorvane {
namespace zorutilutil {

SolutionTimeNotificationDeferrer::SolutionTimeNotificationDeferrer() {
    std::lock_guard<std::mutex> guard(dataMutex);
    ++deferrers;
}

SolutionTimeNotificationDeferrer::~SolutionTimeNotificationDeferrer() {
    bool notify;
    {
        std::lock_guard<std::mutex> guard(dataMutex);
        notify = --deferrers == 0 && solutionTimeNoticePending;
        if (notify)
            solutionTimeNoticePending = false;
    }
    if (notify)
        hostStateChange(ZorStateChange_SolutionTime);
}

}  // namespace zorutilutil

namespace dataio {

int64_t uniqueIdForBndryZone(int64_t zone, int64_t zoneBase, int64_t ownUniqueId,
                             const std::shared_ptr<ZoneIdList>& zoneIds) {
    if (zone == 0)
        return ownUniqueId;
    int64_t place = zone - zoneBase;
    if (zoneIds != nullptr && place >= 1 && place <= static_cast<int64_t>(zoneIds->size())) {
        return (*zoneIds)[static_cast<size_t>(place - 1)];
    }
    return static_cast<int64_t>(ZorUtilZoneGetUniqueID(zone));
}

}  // namespace dataio
}  // namespace zorvane

// ---- The stand-in's own view ---------------------------------------------------------------

namespace minihost {

int dataLoadDepth() {
    std::lock_guard<std::mutex> guard(data::dataMutex);
    return data::dataLoadDepth;
}

void deleteDataSet() {
    data::deleteDataSet(true);
}

void shutdown() {
    data::deleteDataSet(false);
    notifyStateChange(ZorStateChange_QuitProgram);
    removeTemporaryFiles();
}

std::vector<int32_t> hostStateChanges() {
    std::lock_guard<std::mutex> guard(data::dataMutex);
    return data::hostNotices;
}

int cleanupCount() {
    return data::totalCleanups.load();
}

namespace detail {

void resetFrame() {
    std::lock_guard<std::mutex> guard(data::dataMutex);
    data::plotType = ZorPlotType_Sketch;
    data::frameMode = ZorFrameMode_Sketch;
    data::dataLoadDepth = 0;
    data::hostNotices.clear();
}

}  // namespace detail
}  // namespace minihost

namespace minihost {

bool setVariableEnabled(ZorIndex var, bool enabled) {
    std::lock_guard<std::mutex> guard(data::dataMutex);
    if (data::dataSet == nullptr || var < 1 || var > static_cast<ZorIndex>(data::dataSet->variables.size()))
        return false;
    data::dataSet->variables[static_cast<size_t>(var - 1)].enabled = enabled;
    return true;
}

}  // namespace minihost
