#include "dataset/AuxData.h"

#include <cstdio>
#include <cstring>

#include "addon/FluentSolution.h"
#include "casefile/CaseFile.h"
#include "host/HostServices.h"
#include "host/ZorData.h"
#include "host/ZorUtil.h"

namespace {

// Known quantities, searched whole: every row whose name matches gets its item.
const struct {
    const char* variableName;
    const char* itemName;
} kVariableItems[] = {
    {"X Velocity", "Common.UVar"},
    {"Y Velocity", "Common.VVar"},
    {"Z Velocity", "Common.WVar"},
    {"Swirl Velocity", "Common.WVar"},
    {"Pressure", "Common.PressureVar"},
    {"Temperature", "Common.TemperatureVar"},
    {"Density", "Common.DensityVar"},
    {"Laminar Viscosity", "Common.ViscosityVar"},
    {"Turbulent Viscosity", "Common.TurbulentDynamicViscosityVar"},
    {"Turbulent Kinetic Energy", "Common.TurbulentKineticEnergyVar"},
    {"Turbulent Dissipation Rate", "Common.TurbulentDissipationRateVar"},
};

// The boundary condition a boundary type stands for; null for none.
const char* boundaryCondition(int32_t boundaryType) {
    switch (boundaryType) {
        case 3:
            return "Wall";
        case 4:
        case 10:
        case 20:
            return "Inflow";
        case 5:
        case 36:
            return "Outflow";
        case 7:
            return "Symmetry";
        case 9:
            return "Pressure";
        case 12:
            return "Periodic";
        default:
            return nullptr;
    }
}

void setItem(ZorAuxDataRef aux, const char* name, const char* value) {
    ZorUtilAuxDataSetItem(aux, name, value, ZorAuxDataType_String, true);
}

}  // namespace

void setDatasetAuxData() {
    ZorAuxDataRef aux = ZorUtilAuxDataDataSetGetRef();
    if (aux == nullptr)
        return;
    setItem(aux, "Common.VectorVarsAreVelocity", "TRUE");
    const ZorIndex numVars = ZorUtilDataSetGetNumVars();
    for (ZorIndex var = 1; var <= numVars; ++var) {
        if (!ZorUtilVarIsEnabled(var))
            continue;
        char* name = nullptr;
        if (!ZorUtilVarGetName(var, &name) || name == nullptr) {
            ZorUtilStringDealloc(&name);
            continue;
        }
        char number[32];
        snprintf(number, sizeof number, "%d", static_cast<int>(var));
        for (const auto& row : kVariableItems) {
            if (std::strcmp(name, row.variableName) == 0)
                setItem(aux, row.itemName, number);
        }
        ZorUtilStringDealloc(&name);
    }
}

void setBoundaryAuxData(const CaseFile* caseFile) {
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        const FaceZone& zone = caseFile->faceZones[i];
        if (zone.hostZoneNumber == 0)
            continue;
        const char* condition = boundaryCondition(zone.boundaryType);
        if (condition == nullptr)
            continue;
        ZorAuxDataRef aux = ZorUtilAuxDataZoneGetRef(zone.hostZoneNumber);
        if (aux == nullptr)
            continue;
        setItem(aux, "Common.IsBoundaryZone", "TRUE");
        setItem(aux, "Common.BoundaryCondition", condition);
    }
}

void setZoneSolutionTimes(const CaseFile* caseFile, int32_t zoneOffset, double time) {
    zorvane::zorutilutil::SolutionTimeNotificationDeferrer deferrer;
    for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
        if (caseFile->cellZones[i].hostZoneNumber != 0)
            ZorUtilZoneSetSolutionTime(caseFile->cellZones[i].hostZoneNumber + zoneOffset, time);
    }
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        if (caseFile->faceZones[i].hostZoneNumber != 0)
            ZorUtilZoneSetSolutionTime(caseFile->faceZones[i].hostZoneNumber + zoneOffset, time);
    }
}

int32_t zoneStrandLookup(int32_t fluentZoneId, int64_t limit, const FluentSolution* solution) {
    int64_t counted = 0;
    for (int32_t c = 0; c < solution->numCaseFiles; ++c) {
        const CaseFile& caseFile = solution->caseFiles[c];
        for (int32_t i = 0; i < caseFile.numCellZones; ++i) {
            const CellZone& zone = caseFile.cellZones[i];
            if (zone.hostZoneNumber <= 0)
                continue;
            if (zone.zoneId == fluentZoneId)
                return ZorUtilZoneGetStrandID(zone.hostZoneNumber);
            if (++counted >= limit)
                return 0;
        }
        for (int32_t i = 0; i < caseFile.numFaceZones; ++i) {
            const FaceZone& zone = caseFile.faceZones[i];
            if (zone.hostZoneNumber <= 0)
                continue;
            if (zone.zoneId == fluentZoneId)
                return ZorUtilZoneGetStrandID(zone.hostZoneNumber);
            if (++counted >= limit)
                return 0;
        }
    }
    return 0;
}

int32_t newZoneStrandId(StrandRules* rules, const FluentSolution* solution, int32_t fluentZoneId,
                        bool isFirstZone, ZorSet zonesAdded) {
    if (!rules->assignStrandIds)
        return 0;
    const int32_t found = zoneStrandLookup(fluentZoneId, ZorUtilSetGetMemberCount(zonesAdded), solution);
    if (found != 0) {
        *rules->strandId += 1;
        return found;
    }
    if (!rules->append) {
        *rules->strandId += 1;
        return *rules->strandId;
    }
    if (!rules->addToExistingStrands) {
        rules->localCount += 1;
        *rules->strandId = rules->strandBase + rules->localCount;
        return *rules->strandId;
    }
    if (isFirstZone && rules->caseNumber == 1) {
        *rules->strandId = 1;
        return 1;
    }
    *rules->strandId += 1;
    return *rules->strandId;
}
