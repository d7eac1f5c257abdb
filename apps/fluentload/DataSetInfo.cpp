#include "apps/fluentload/DataSetInfo.h"

#include "host/ZorData.h"
#include "host/ZorUtil.h"

namespace fluentload {

namespace {

// A host string taken over: copied and given back.
std::string takeString(char* s) {
    std::string result = s == nullptr ? "" : s;
    ZorUtilStringDealloc(&s);
    return result;
}

std::vector<AuxItem> auxItems(ZorAuxDataRef aux) {
    std::vector<AuxItem> items;
    if (aux == nullptr)
        return items;
    ZorIndex n = ZorUtilAuxDataGetNumItems(aux);
    for (ZorIndex i = 1; i <= n; ++i) {
        char* name = nullptr;
        char* value = nullptr;
        if (ZorUtilAuxDataGetItemByIndex(aux, i, &name, &value, nullptr, nullptr))
            items.push_back({takeString(name), takeString(value)});
    }
    return items;
}

}  // namespace

DataSetInfo readDataSetInfo() {
    DataSetInfo info;
    char* title = nullptr;
    ZorIndex numZones = 0, numVars = 0;
    if (!ZorUtilDataSetGetInfo(&title, &numZones, &numVars))
        return info;
    info.exists = true;
    info.title = takeString(title);
    info.aux = auxItems(ZorUtilAuxDataDataSetGetRef());
    for (ZorIndex v = 1; v <= numVars; ++v) {
        char* name = nullptr;
        VariableInfo var;
        if (ZorUtilVarGetName(v, &name))
            var.name = takeString(name);
        info.variables.push_back(var);
    }
    for (ZorIndex z = 1; z <= numZones; ++z) {
        ZoneInfo zone;
        zone.number = z;
        char* name = nullptr;
        if (ZorUtilZoneGetName(z, &name))
            zone.name = takeString(name);
        zone.type = ZorUtilZoneGetType(z);
        ZorIndex i = 0, j = 0, k = 0;
        ZorUtilZoneGetInfo(z, &i, &j, &k);
        zone.iMax = i;
        zone.jMax = j;
        zone.kMax = k;
        zone.strand = ZorUtilZoneGetStrandID(z);
        zone.solutionTime = ZorUtilZoneGetSolutionTime(z);
        zone.parentZone = ZorUtilZoneGetParentZone(z);
        zone.aux = auxItems(ZorUtilAuxDataZoneGetRef(z));
        for (ZorIndex v = 1; v <= numVars; ++v) {
            ZoneValueInfo value;
            value.dataType = ZorUtilDataValueGetType(z, v);
            value.location = ZorUtilDataValueGetLocation(z, v);
            zone.values.push_back(value);
            VariableInfo& var = info.variables[static_cast<size_t>(v - 1)];
            if (z == 1) {
                var.dataType = value.dataType;
                var.location = value.location;
            } else {
                if (var.dataType != value.dataType)
                    var.dataType = kMixed;
                if (var.location != value.location)
                    var.location = kMixed;
            }
        }
        info.zones.push_back(std::move(zone));
    }
    return info;
}

const char* zoneTypeName(int32_t zoneType) {
    switch (zoneType) {
        case ZorZoneType_Ordered:
            return "ordered";
        case ZorZoneType_FETriangle:
            return "triangle";
        case ZorZoneType_FEQuad:
            return "quadrilateral";
        case ZorZoneType_FETetra:
            return "tetrahedron";
        case ZorZoneType_FEBrick:
            return "brick";
        case ZorZoneType_FELineSeg:
            return "line segment";
        case ZorZoneType_FEPolygon:
            return "polygon";
        case ZorZoneType_FEPolyhedron:
            return "polyhedron";
        default:
            return "unknown";
    }
}

const char* dataTypeName(int32_t dataType) {
    switch (dataType) {
        case ZorFieldDataType_Float:
            return "float";
        case ZorFieldDataType_Double:
            return "double";
        case ZorFieldDataType_Int32:
            return "int32";
        case ZorFieldDataType_Int16:
            return "int16";
        case ZorFieldDataType_Byte:
            return "byte";
        case ZorFieldDataType_Bit:
            return "bit";
        case kMixed:
            return "mixed";
        default:
            return "none";
    }
}

const char* locationName(int32_t location) {
    switch (location) {
        case ZorValueLocation_CellCentered:
            return "cell-centred";
        case ZorValueLocation_Nodal:
            return "nodal";
        case kMixed:
            return "mixed";
        default:
            return "none";
    }
}

}  // namespace fluentload
