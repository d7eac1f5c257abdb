#include "dataset/GridZones.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "addon/FluentSolution.h"
#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "dataset/AuxData.h"
#include "dataset/VariableList.h"
#include "dataset/VariableNames.h"
#include "host/HostServices.h"
#include "host/ZorData.h"
#include "host/ZorUtil.h"
#include "lod/ClassicElemToNodeMapLOD.h"
#include "lod/ValueClientData.h"

using zorvane::zorutildataio::ClassicElemToNodeMapLOD;
using zorvane::zorutilutil::TaskProgress;

namespace {

const char* const kLoaderName = "Fluent Data Loader";
const char* const kCoordinateNames[3] = {"X", "Y", "Z"};

// Zones of these host types need face maps, which this version does not make.
bool isPolytopeZoneType(int32_t hostZoneType) {
    return hostZoneType == ZorZoneType_FEPolygon || hostZoneType == ZorZoneType_FEPolyhedron;
}

void refusePolytopes() {
    ZorUtilDialogErrMsg(
        "Polygonal and polyhedral zones are not available in this version of the Fluent loader.");
}

// The largest node number of the case's Nodes sections.
int32_t largestNodeNumber(const CaseFile* caseFile) {
    int32_t largest = 0;
    for (int32_t i = 0; i < caseFile->numNodeZones; ++i) {
        if (caseFile->nodeZones[i].lastIndex > largest)
            largest = caseFile->nodeZones[i].lastIndex;
    }
    return largest;
}

// The number the next zone of the load gets: one behind the last zone added.
ZorIndex nextZoneNumber(ZorSet zonesAdded) {
    const ZorIndex count = ZorUtilSetGetMemberCount(zonesAdded);
    return count == 0 ? 1 : ZorUtilSetGetMember(zonesAdded, count) + 1;
}

// What every zone of one CreateZorvaneGridZones call shares.
struct ZoneBuild {
    FluentSolution* solution;
    CaseFile* caseFile;
    int32_t caseIndex;
    ZorSet zonesAdded;
    bool allZonesAsPolyhedral;
    bool fromMetadata;
    int32_t numCoordinates;       // 2 or 3
    int32_t coordVars[3];         // variable numbers of X, Y, Z
    const int32_t* varTypes;      // "VarDataType", one per variable
    const int32_t* varLocations;  // "ValueLocation", one per variable
    StrandRules strands;
    int32_t timeKind;
    double solutionTime;
    std::shared_ptr<zorvane::dataio::ZoneIdList> zoneIds;
    ZorArgList args;
};

// Adds the zone whose arguments (from "Name" to "ZoneType", and "ParentZone"
// where it belongs) stand in b.args already: the sizes and variable layout go
// on, then the host makes it. The zone's number goes to *zoneNumber.
bool addZone(ZoneBuild& b, int64_t iMax, int64_t jMax, ZorIndex* zoneNumber) {
    ZorArgList args = b.args;
    bool ok = ZorUtilArgListAppendInt(args, "IMax", iMax) && ZorUtilArgListAppendInt(args, "JMax", jMax) &&
              ZorUtilArgListAppendInt(args, "KMax", 1) &&
              ZorUtilArgListAppendArray(args, "VarDataType", b.varTypes) &&
              ZorUtilArgListAppendArray(args, "ValueLocation", b.varLocations) &&
              ZorUtilArgListAppendInt(args, "DeferVarCreation", 1);
    if (ok && b.fromMetadata)
        ok = ZorUtilArgListAppendInt(args, "DeferNodeMapCreation", 1);
    ok = ok && ZorUtilArgListAppendInt(args, "FaceNeighborMode", ZorFaceNeighborMode_GlobalOneToMany);
    if (!ok || !ZorUtilDataSetAddZoneX(args))
        return false;
    *zoneNumber = nextZoneNumber(b.zonesAdded);
    if (!ZorUtilSetAddMember(b.zonesAdded, *zoneNumber, true))
        return false;
    try {
        b.zoneIds->push_back(static_cast<int64_t>(ZorUtilZoneGetUniqueID(*zoneNumber)));
    } catch (const std::bad_alloc&) {
        ZorUtilDialogErrMsg("Out of memory while creating zones.");
        return false;
    }
    return true;
}

// Registers the loaders of the zone's coordinates, one per axis, and shows
// the progress of each.
bool registerCoordinates(ZoneBuild& b, ZorIndex zoneNumber, int32_t cellZoneIndex, int32_t faceZoneIndex,
                         zorvane::dataio::DeferredMinMaxWriter** writers, const double* cachedRanges,
                         TaskProgress* task) {
    const ZorUniqueID zoneId = ZorUtilZoneGetUniqueID(zoneNumber);
    std::unique_ptr<TaskProgress> varTask = task->createChildTask(b.numCoordinates);
    for (int32_t axis = 0; axis < b.numCoordinates; ++axis) {
        ValueClientData* clientData = ValueClientDataAlloc();
        if (clientData == nullptr) {
            ZorUtilDialogErrMsg("Out of memory.");
            return false;
        }
        clientData->solutionId = b.solution->solutionId;
        clientData->caseIndex = b.caseIndex;
        clientData->cellZoneIndex = cellZoneIndex;
        clientData->faceZoneIndex = faceZoneIndex;
        clientData->component = axis;
        clientData->isNodal = false;
        clientData->method = kNoAveragingMethod;
        clientData->dimension = b.caseFile->numDimensions;
        clientData->nodeCount = b.caseFile->totalNodes;
        clientData->allZonesAsPolyhedral = b.allZonesAsPolyhedral;
        clientData->zoneUniqueId = static_cast<int64_t>(zoneId);
        if (writers != nullptr && writers[axis] != nullptr && !b.fromMetadata) {
            writers[axis]->retain();
            clientData->minMaxWriter = writers[axis];
        }
        if (!ZorUtilDataValueCustomLOD(zoneNumber, b.coordVars[axis], coordVarLoad, coordVarUnload,
                                       coordVarCleanup, nullptr, nullptr,
                                       reinterpret_cast<ZorArbParam>(clientData))) {
            ValueClientDataFree(clientData);
            return false;
        }
        if (b.fromMetadata && cachedRanges[2 * axis] <= cachedRanges[2 * axis + 1]) {
            ZorUtilDataValueSetMinMaxByZoneVar(zoneNumber, b.coordVars[axis], cachedRanges[2 * axis],
                                               cachedRanges[2 * axis + 1]);
        }
        char text[kZoneSetupTextSize];
        zoneSetupText(text, zoneNumber, b.coordVars[axis], b.caseFile->fileName);
        if (!varTask->begin(text) || !varTask->end())
            return false;
    }
    return true;
}

// "Name", "ParentZone" (boundary zones only), "StrandID", "SolutionTime",
// "ZoneType": the arguments ahead of the sizes.
bool startZoneArgs(ZoneBuild& b, const char* name, const ZorIndex* parentZone, int32_t strand,
                   int32_t hostZoneType) {
    ZorUtilArgListClear(b.args);
    bool ok = ZorUtilArgListAppendString(b.args, "Name", name);
    if (ok && parentZone != nullptr)
        ok = ZorUtilArgListAppendInt(b.args, "ParentZone", *parentZone);
    return ok && ZorUtilArgListAppendInt(b.args, "StrandID", strand) &&
           ZorUtilArgListAppendDouble(b.args, "SolutionTime", b.timeKind == 1 ? b.solutionTime : 0.0) &&
           ZorUtilArgListAppendInt(b.args, "ZoneType", hostZoneType);
}

bool buildCellZone(ZoneBuild& b, int32_t index, TaskProgress* task) {
    CaseFile* caseFile = b.caseFile;
    CellZone* zone = &caseFile->cellZones[index];
    if (zone->elementType == 0 && zone->cellTypes == nullptr && !b.fromMetadata &&
        !CaseFileLoadCellZoneCellTypes(caseFile, zone))
        return false;
    if (zone->elementType == 7 || b.allZonesAsPolyhedral) {
        refusePolytopes();
        return false;
    }
    // Only the node count is needed here: the faces are not kept.
    if (!b.fromMetadata && !CellZoneGetNodeCountWithoutFaces(zone, caseFile, caseFile->totalNodes))
        return false;
    if (zone->elementType == 7) {  // a face zone of the case turned out to hold polygons
        refusePolytopes();
        return false;
    }

    char name[kVariableNameSize + 32];
    if (zone->name[0] != '\0') {
        snprintf(name, sizeof name, "%s", zone->name);
    } else if (zone->zoneType == 1) {
        snprintf(name, sizeof name, "Fluid Zone %d", zone->zoneId);
    } else if (zone->zoneType == 17) {
        snprintf(name, sizeof name, "Solid Zone %d", zone->zoneId);
    } else {
        snprintf(name, sizeof name, "Cell Zone %d", zone->zoneId);
    }
    if (!b.fromMetadata)
        zone->hostZoneType = CellZoneGetZoneType(zone, caseFile, b.allZonesAsPolyhedral);
    if (isPolytopeZoneType(zone->hostZoneType)) {
        refusePolytopes();
        return false;
    }
    const int32_t numCells = zone->lastIndex - zone->firstIndex + 1;

    const int32_t strand = newZoneStrandId(&b.strands, b.solution, zone->zoneId, index == 0, b.zonesAdded);
    ZorIndex zoneNumber = 0;
    if (!startZoneArgs(b, name, nullptr, strand, zone->hostZoneType) ||
        !addZone(b, zone->numNodes, numCells, &zoneNumber))
        return false;
    if (!registerCoordinates(b, zoneNumber, index, -1, zone->nodeMinMaxWriters, zone->coordinateRanges, task))
        return false;
    if (!ClassicElemToNodeMapLOD::create(b.solution->solutionId, b.caseIndex, index, -1, numCells,
                                         caseFile->totalNodes, zoneNumber))
        return false;
    zone->hostZoneNumber = static_cast<int32_t>(zoneNumber);
    zone->hostZoneUniqueId = static_cast<int64_t>(ZorUtilZoneGetUniqueID(zoneNumber));
    return true;
}

// The host number of the cell zone that holds a boundary zone: the first
// cell zone whose cell range holds the cell on side 0 of every face, of which
// `sideZero` has the non-zero extremes. Its Fluent id goes to
// parentCellZoneId. 0 when none does.
ZorIndex findParentZone(ZoneBuild& b, FaceZone* zone, const CellRange& sideZero) {
    const CaseFile* caseFile = b.caseFile;
    if (b.fromMetadata) {
        for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
            if (caseFile->cellZones[i].zoneId == zone->parentCellZoneId)
                return caseFile->cellZones[i].hostZoneNumber;
        }
        for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
            if (caseFile->faceZones[i].zoneId == zone->parentCellZoneId)
                return caseFile->faceZones[i].hostZoneNumber;
        }
        return 0;
    }
    for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
        const CellZone& cellZone = caseFile->cellZones[i];
        bool holds = true;
        if (zone->faceType == 5) {
            holds = cellZone.firstIndex <= zone->minCell && zone->maxCell <= cellZone.lastIndex;
        } else if (sideZero.lowest <= sideZero.highest) {
            holds = cellZone.firstIndex <= sideZero.lowest && sideZero.highest <= cellZone.lastIndex;
        }
        if (holds) {
            zone->parentCellZoneId = cellZone.zoneId;
            return cellZone.hostZoneNumber;
        }
    }
    return 0;
}

bool buildBoundaryZone(ZoneBuild& b, int32_t index, TaskProgress* task) {
    CaseFile* caseFile = b.caseFile;
    FaceZone* zone = &caseFile->faceZones[index];
    CellRange sideZero = {INT32_MAX, INT32_MIN};
    if (zone->faceType == 5 || (b.allZonesAsPolyhedral && zone->faceType != 2)) {
        refusePolytopes();
        return false;
    }
    if (!b.fromMetadata) {
        // A mixed zone shows only when its faces are read whether it holds polygons.
        if (zone->faceCells == nullptr && zone->faceType == 0 && !CaseFileLoadFaceZone(caseFile, zone))
            return false;
        if (zone->faceType == 5) {
            refusePolytopes();
            return false;
        }
        if (!FaceZoneGetNodeNumbersWithoutFaces(zone, caseFile, caseFile->totalNodes, &sideZero))
            return false;
    }

    char name[kVariableNameSize + 32];
    faceZoneDisplayName(name, zone);
    if (!b.fromMetadata)
        zone->hostZoneType = FaceZoneGetZoneType(zone, b.allZonesAsPolyhedral);
    if (isPolytopeZoneType(zone->hostZoneType)) {
        refusePolytopes();
        return false;
    }
    const int32_t numFaces = zone->lastIndex - zone->firstIndex + 1;

    const int32_t strand = newZoneStrandId(&b.strands, b.solution, zone->zoneId,
                                           index == 0 && caseFile->numCellZones == 0, b.zonesAdded);
    const ZorIndex parent = findParentZone(b, zone, sideZero);
    ZorIndex zoneNumber = 0;
    if (!startZoneArgs(b, name, &parent, strand, zone->hostZoneType) ||
        !addZone(b, zone->numNodes, numFaces, &zoneNumber))
        return false;
    if (!registerCoordinates(b, zoneNumber, -1, index, zone->nodeMinMaxWriters, zone->coordinateRanges, task))
        return false;
    if (!ClassicElemToNodeMapLOD::create(b.solution->solutionId, b.caseIndex, -1, index, numFaces,
                                         caseFile->totalNodes, zoneNumber))
        return false;
    zone->hostZoneNumber = static_cast<int32_t>(zoneNumber);
    zone->hostZoneUniqueId = static_cast<int64_t>(ZorUtilZoneGetUniqueID(zoneNumber));
    return true;
}

// Makes the data set with the coordinates as its first variables.
bool createDataSet(FluentSolution* solution, const CaseFile* caseFile, int32_t numCoordinates,
                   ZorArgList args) {
    ZorStringList names = ZorUtilStringListAlloc();
    bool ok = names != nullptr;
    for (int32_t axis = 0; ok && axis < numCoordinates; ++axis)
        ok = ZorUtilStringListAppendString(names, kCoordinateNames[axis]);
    if (!ok) {
        ZorUtilStringListDealloc(&names);
        ZorUtilDialogErrMsg("Out of memory while creating zones.");
        return false;
    }
    if (ZorUtilDataSetIsAvailable())
        ZorUtilFrameSetMode(ZorFrameMode_Sketch);
    // No purge may strike while the data set is being made.
    PurgeEnabled = false;
    ZorUtilArgListClear(args);
    if (!ZorUtilArgListAppendString(args, "LoaderName", kLoaderName) ||
        !ZorUtilArgListAppendString(args, "DataSetTitle", caseFile->header) ||
        !ZorUtilArgListAppendStringList(args, "VarNames", names)) {
        ZorUtilStringListDealloc(&names);
        ZorUtilDialogErrMsg("Memory issue constructing new dataset");
        return false;
    }
    ok = ZorUtilDataSetCreateX(args);
    ZorUtilStringListDealloc(&names);
    if (!ok)
        return false;
    solution->datasetUniqueID = ZorUtilDataSetGetUniqueID();
    PurgeEnabled = true;
    return true;
}

}  // namespace

bool isDisplayedBoundary(int32_t boundaryType) {
    return boundaryType < 1000 && boundaryType != 2 && boundaryType != 31 && boundaryType != 38;
}

void zoneSetupText(char* out, int64_t zone, int32_t var, const char* casePath) {
    const size_t length = std::strlen(casePath);
    if (length < 17) {
        snprintf(out, kZoneSetupTextSize, "Setting up Zone=%03lld, Var=%03d from %s",
                 static_cast<long long>(zone), var, casePath);
    } else {
        snprintf(out, kZoneSetupTextSize, "Setting up Zone=%03lld, Var=%03d from ...%s",
                 static_cast<long long>(zone), var, casePath + length - 17);
    }
}

bool CreateZorvaneGridZones(FluentSolution* solution, CaseFile* caseFile, int32_t gridZones, ZorSet selection,
                            ZorSet zonesAdded, int32_t caseNumber, bool append, bool allZonesAsPolyhedral,
                            bool averageToNodes, int32_t /*averagingMethod*/, bool assignStrandIds,
                            bool addToExistingStrands, int32_t strandBase, int32_t* strandId,
                            int32_t timeKind, double solutionTime, bool fromMetadata,
                            std::unique_ptr<TaskProgress> task) {
    ZoneBuild b;
    b.solution = solution;
    b.caseFile = caseFile;
    b.caseIndex = static_cast<int32_t>(caseFile - solution->caseFiles);
    b.zonesAdded = zonesAdded;
    b.allZonesAsPolyhedral = allZonesAsPolyhedral;
    b.fromMetadata = fromMetadata;
    b.numCoordinates = caseFile->numDimensions == 3 ? 3 : 2;
    b.coordVars[0] = 1;
    b.coordVars[1] = 2;
    b.coordVars[2] = 3;
    b.strands =
        StrandRules{assignStrandIds, append, addToExistingStrands, strandBase, strandId, 0, caseNumber};
    b.timeKind = timeKind;
    b.solutionTime = solutionTime;
    b.args = ZorUtilArgListAlloc();
    if (b.args == nullptr) {
        ZorUtilDialogErrMsg("Memory issue constructing new dataset");
        return false;
    }

    // The data set, or the coordinates in the one there is.
    bool ok = true;
    if ((!append && caseNumber < 2) || !ZorUtilDataSetIsAvailable()) {
        ok = createDataSet(solution, caseFile, b.numCoordinates, b.args);
    } else {
        for (int32_t axis = 0; ok && axis < b.numCoordinates; ++axis) {
            ok = GetZorvaneVariableNumber(&b.coordVars[axis], kCoordinateNames[axis], true,
                                          caseFile->doublePrecision);
        }
        if (!ok)
            ZorUtilDialogErrMsg("Error adding variables to data set.");
    }

    int32_t* varTypes = nullptr;
    int32_t* varLocations = nullptr;
    if (ok) {
        try {
            b.zoneIds = std::make_shared<zorvane::dataio::ZoneIdList>();
        } catch (const std::bad_alloc&) {
            ZorUtilDialogErrMsg("Out of memory while creating zones.");
            ok = false;
        }
    }
    if (ok) {
        const ZorIndex numVars = ZorUtilDataSetGetNumVars();
        const size_t entries = numVars > 0 ? static_cast<size_t>(numVars) : 1;
        varTypes = static_cast<int32_t*>(std::calloc(entries, sizeof(int32_t)));
        varLocations = static_cast<int32_t*>(std::calloc(entries, sizeof(int32_t)));
        if (varTypes == nullptr || varLocations == nullptr) {
            ZorUtilDialogErrMsg("Out of memory while creating zones.");
            ok = false;
        } else {
            for (ZorIndex v = 0; v < numVars; ++v) {
                varTypes[v] = caseFile->doublePrecision ? ZorFieldDataType_Double : ZorFieldDataType_Float;
                varLocations[v] = averageToNodes ? ZorValueLocation_Nodal : ZorValueLocation_CellCentered;
            }
            for (int32_t axis = 0; axis < b.numCoordinates; ++axis)
                varLocations[b.coordVars[axis] - 1] = ZorValueLocation_Nodal;
        }
        b.varTypes = varTypes;
        b.varLocations = varLocations;
    }

    // Selection numbers: cell zones, then displayed boundaries, as the selection dialog lists them.
    if (ok && selection != nullptr) {
        int32_t next = 1;
        for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
            if (caseFile->cellZones[i].zoneType != 32)
                caseFile->cellZones[i].selectionIndex = next++;
        }
        for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
            if (isDisplayedBoundary(caseFile->faceZones[i].boundaryType))
                caseFile->faceZones[i].selectionIndex = next++;
        }
    }
    if (ok && !fromMetadata)
        caseFile->totalNodes = largestNodeNumber(caseFile);
    ok = ok && CaseFileStoreFaceTreeChildren(caseFile);

    if (ok) {
        task->setNumSteps(3);
        ok = task->begin("Setting up zones...");
    }
    if (ok && (gridZones == 0 || gridZones == 1 || gridZones == 3)) {
        if (!allZonesAsPolyhedral)
            ok = CaseFileTrackParentChildFaces(caseFile);
        std::unique_ptr<TaskProgress> cellTask = task->createChildTask(caseFile->numCellZones);
        for (int32_t i = 0; ok && i < caseFile->numCellZones; ++i) {
            const CellZone& zone = caseFile->cellZones[i];
            const bool chosen = zone.zoneType != 32 &&
                                (selection == nullptr || ZorUtilSetIsMember(selection, zone.selectionIndex));
            ok = (!chosen || buildCellZone(b, i, cellTask.get())) && cellTask->end();
        }
    }
    ok = ok && task->end();
    if (ok && (gridZones == 0 || gridZones == 2 || gridZones == 3)) {
        std::unique_ptr<TaskProgress> faceTask = task->createChildTask(caseFile->numFaceZones);
        for (int32_t i = 0; ok && i < caseFile->numFaceZones; ++i) {
            const FaceZone& zone = caseFile->faceZones[i];
            const bool chosen = isDisplayedBoundary(zone.boundaryType) &&
                                (selection == nullptr || ZorUtilSetIsMember(selection, zone.selectionIndex));
            ok = (!chosen || buildBoundaryZone(b, i, faceTask.get())) && faceTask->end();
        }
    }
    ok = ok && task->end();
    // Neighbours across zones and hanging nodes are not gathered in this
    // version: the host finds the neighbours inside each zone by itself.
    ok = ok && task->end();

    std::free(varTypes);
    std::free(varLocations);
    ZorUtilArgListDealloc(&b.args);
    return ok;
}

bool AddDataToZorvaneGridZones(FluentSolution* solution, const DataFieldRef* fields, int32_t numFields,
                               DataFile* dataFile, CaseFile* caseFile, ZorStringList wantedNames,
                               bool allZonesAsPolyhedral, bool averageToNodes, int32_t averagingMethod,
                               int32_t zoneOffset, bool fromMetadata, std::unique_ptr<TaskProgress> task) {
    char** wanted = nullptr;
    int32_t numWanted = 0;
    if (wantedNames != nullptr)
        GetVarNameList(&wanted, &numWanted, wantedNames);
    task->setNumSteps(numFields);

    const int32_t caseIndex = static_cast<int32_t>(caseFile - solution->caseFiles);
    const int32_t dataFileIndex = static_cast<int32_t>(dataFile - solution->dataFiles);
    const int32_t nodeCount = largestNodeNumber(caseFile);
    bool polytopesSearched = false, polytopesFound = false, laplacianMessageShown = false;

    bool ok = true;
    for (int32_t n = 0; ok && n < numFields; ++n) {
        DataField* field = fields[n].field;
        int32_t cellZoneIndex = CaseFileCellZoneIndex(caseFile, field->zoneId);
        int32_t faceZoneIndex = cellZoneIndex < 0 ? CaseFileFaceZoneIndex(caseFile, field->zoneId) : -1;
        int32_t hostZoneNumber = 0;
        if (cellZoneIndex >= 0) {
            hostZoneNumber = caseFile->cellZones[cellZoneIndex].hostZoneNumber;
        } else if (faceZoneIndex >= 0) {
            hostZoneNumber = caseFile->faceZones[faceZoneIndex].hostZoneNumber;
        }
        if (hostZoneNumber <= 0 || field->fieldId == 59) {
            ok = task->end();
            continue;
        }
        const ZorIndex zoneNumber = zoneOffset + hostZoneNumber;
        const bool vectorFamily = isVectorFamilyFieldId(field->fieldId);

        char baseName[kVariableNameSize];
        getVariableName(baseName, field->sectionId, field->fieldId, field->phase, dataFile, caseFile);
        for (int32_t component = 0; ok && component < field->dimension; ++component) {
            const int32_t nameId = vectorFamily ? field->fieldId + component : field->fieldId;
            if (component > 0 && vectorFamily)
                getVariableName(baseName, field->sectionId, nameId, field->phase, dataFile, caseFile);
            if (wantedNames != nullptr && !variableIsSelected(baseName, wanted, nameId, numWanted))
                continue;
            char name[kVariableNameSize + 16];
            if (field->dimension == 1 || vectorFamily) {
                snprintf(name, sizeof name, "%s", baseName);
            } else {
                snprintf(name, sizeof name, "%s-%d", baseName, component + 1);
                name[kVariableNameSize - 1] = '\0';  // names are at most 128 characters
            }

            bool nodal = averageToNodes;
            if (averageToNodes && averagingMethod == 1) {
                if (!polytopesSearched) {
                    polytopesSearched = true;
                    polytopesFound = allZonesAsPolyhedral;
                    for (int32_t i = 0; !polytopesFound && i < caseFile->numCellZones; ++i) {
                        polytopesFound =
                            caseFile->cellZones[i].elementType == 7 && caseFile->cellZones[i].zoneType != 32;
                    }
                    for (int32_t i = 0; !polytopesFound && i < caseFile->numFaceZones; ++i) {
                        polytopesFound = isDisplayedBoundary(caseFile->faceZones[i].boundaryType) &&
                                         caseFile->faceZones[i].faceType == 5;
                    }
                }
                if (polytopesFound) {
                    nodal = false;
                    if (!laplacianMessageShown) {
                        laplacianMessageShown = true;
                        ZorUtilDialogErrMsg(
                            "Laplacian averaging has not been implemented for polyhedral/polygonal zones.\n"
                            "The variables for these zones will remain cell centered.\n"
                            "To convert these variables to nodal, use the Laplacian averaging method in "
                            "Options->Performance->Misc.");
                    }
                }
            }

            int32_t var = 0;
            if (!GetZorvaneVariableNumber(&var, name, nodal, caseFile->doublePrecision)) {
                ok = false;
                break;
            }
            ValueClientData* clientData = ValueClientDataAlloc();
            if (clientData == nullptr) {
                ZorUtilDialogErrMsg("Out of memory while loading variables.");
                ok = false;
                break;
            }
            clientData->solutionId = solution->solutionId;
            clientData->caseIndex = caseIndex;
            clientData->cellZoneIndex = cellZoneIndex;
            clientData->faceZoneIndex = faceZoneIndex;
            clientData->dataFileIndex = dataFileIndex;
            clientData->fieldIndex = fields[n].index;
            clientData->component = component;
            clientData->isNodal = nodal;
            clientData->method = averagingMethod;
            clientData->dimension = caseFile->numDimensions;
            clientData->nodeCount = nodeCount;
            clientData->allZonesAsPolyhedral = allZonesAsPolyhedral;
            clientData->zoneUniqueId = static_cast<int64_t>(ZorUtilZoneGetUniqueID(zoneNumber));
            if (!fromMetadata && field->minMaxWriters != nullptr &&
                field->minMaxWriters[component] != nullptr) {
                field->minMaxWriters[component]->retain();
                clientData->minMaxWriter = field->minMaxWriters[component];
            }
            if (!ZorUtilDataValueCustomLOD(zoneNumber, var, fieldVarLoad, fieldVarUnload, fieldVarCleanup,
                                           nullptr, nullptr, reinterpret_cast<ZorArbParam>(clientData))) {
                // Two fields of one zone under one name (Fluent has several ids
                // for some quantities): the variable keeps the first field's loader.
                ValueClientDataFree(clientData);
                ok = task->end();
                continue;
            }
            if (fromMetadata && field->minima != nullptr && field->maxima != nullptr &&
                field->minima[component] <= field->maxima[component]) {
                ZorUtilDataValueSetMinMaxByZoneVar(zoneNumber, var, field->minima[component],
                                                   field->maxima[component]);
            }
            char text[kZoneSetupTextSize];
            zoneSetupText(text, zoneNumber, var, caseFile->fileName);
            ok = task->begin(text) && task->end();
        }
    }
    FreeVarNameList(&wanted, numWanted);
    return ok;
}

bool CopyZonesForTimeStep(const CaseFile* caseFile) {
    const int32_t plotType = ZorUtilFrameGetPlotType();
    if (plotType != ZorPlotType_Cartesian3D && plotType != ZorPlotType_Cartesian2D &&
        !ZorUtilFrameSetPlotType(caseFile->numDimensions == 2 ? ZorPlotType_Cartesian2D
                                                              : ZorPlotType_Cartesian3D))
        return false;

    ZorSet sources = ZorUtilSetAlloc(true);
    if (sources == nullptr)
        return false;
    bool ok = true;
    for (int32_t i = 0; ok && i < caseFile->numCellZones; ++i) {
        if (caseFile->cellZones[i].hostZoneNumber != 0)
            ok = ZorUtilSetAddMember(sources, caseFile->cellZones[i].hostZoneNumber, true);
    }
    for (int32_t i = 0; ok && i < caseFile->numFaceZones; ++i) {
        if (caseFile->faceZones[i].hostZoneNumber != 0)
            ok = ZorUtilSetAddMember(sources, caseFile->faceZones[i].hostZoneNumber, true);
    }
    const ZorIndex oldNumZones = ZorUtilDataSetGetNumZones();
    const ZorIndex numCopies = ZorUtilSetGetMemberCount(sources);
    ZorArgList args = ZorUtilArgListAlloc();
    ok = ok && args != nullptr && ZorUtilArgListAppendSet(args, "SourceZones", sources) &&
         ZorUtilZoneCopyX(args);
    ZorUtilArgListDealloc(&args);
    ZorUtilSetDealloc(&sources);

    // Only the coordinates stay shared with the first time step.
    const ZorIndex numVars = ZorUtilDataSetGetNumVars();
    for (ZorIndex var = 1; ok && var <= numVars; ++var) {
        char* name = nullptr;
        bool coordinate = false;
        if (ZorUtilVarGetName(var, &name) && name != nullptr) {
            coordinate = std::strcmp(name, "X") == 0 || std::strcmp(name, "Y") == 0 ||
                         (caseFile->numDimensions == 3 && std::strcmp(name, "Z") == 0);
        }
        ZorUtilStringDealloc(&name);
        for (ZorIndex zone = oldNumZones + 1; ok && !coordinate && zone <= oldNumZones + numCopies; ++zone)
            ok = ZorUtilDataValueBranchShared(zone, var, false);
    }
    return ok;
}
