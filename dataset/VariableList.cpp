#include "dataset/VariableList.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "addon/FluentSolution.h"
#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "datafile/Particles.h"
#include "dataset/GridZones.h"
#include "dataset/VariableNames.h"
#include "host/ZorData.h"
#include "host/ZorUtil.h"

using zorvane::zorutilutil::TaskProgress;

namespace {

// The case file whose zones order the fields of the sort under way; set just
// before qsort and cleared behind it.
const CaseFile* SortCaseFile = nullptr;

int64_t zoneFilePosition(const CaseFile* caseFile, int32_t zoneId) {
    if (caseFile == nullptr)
        return 0;
    for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
        if (caseFile->cellZones[i].zoneId == zoneId)
            return caseFile->cellZones[i].filePosition;
    }
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        if (caseFile->faceZones[i].zoneId == zoneId)
            return caseFile->faceZones[i].filePosition;
    }
    return 0;
}

int compareDataFieldsForSort(const void* a, const void* b) {
    return compareDataFields(static_cast<const DataField*>(a), static_cast<const DataField*>(b));
}

int signOf(int64_t difference) {
    return difference < 0 ? -1 : (difference > 0 ? 1 : 0);
}

// The section ids of the additional quantities.
bool isAdditionalQuantitySection(int32_t sectionId) {
    return sectionId == 314 || sectionId == 2314 || sectionId == 3314;
}

}  // namespace

int compareDataFields(const DataField* a, const DataField* b) {
    const int64_t zoneOrder =
        zoneFilePosition(SortCaseFile, a->zoneId) - zoneFilePosition(SortCaseFile, b->zoneId);
    if (zoneOrder != 0)
        return signOf(zoneOrder);
    return signOf(a->filePosition - b->filePosition);
}

bool GetZorvaneVariableNumber(int32_t* out, const char* name, bool nodal, bool doublePrecision) {
    ZorIndex numZones = 0, numVars = 0;
    ZorUtilDataSetGetInfo(nullptr, &numZones, &numVars);
    *out = 0;
    for (ZorIndex var = 1; var <= numVars; ++var) {
        char* existing = nullptr;
        if (!ZorUtilVarGetName(var, &existing)) {
            char message[4097];
            snprintf(message, sizeof message, "Error getting the name of Zorvane variable %d.",
                     static_cast<int>(var));
            ZorUtilDialogErrMsg(message);
            return false;
        }
        const bool same = existing != nullptr && std::strcmp(existing, name) == 0;
        ZorUtilStringDealloc(&existing);
        if (same) {
            *out = static_cast<int32_t>(var);
            return true;
        }
    }

    const size_t entries = numZones > 0 ? static_cast<size_t>(numZones) : 1;
    int32_t* types = static_cast<int32_t*>(std::calloc(entries, sizeof(int32_t)));
    if (types == nullptr) {
        ZorUtilDialogErrMsg("Out of memory.");
        return false;
    }
    for (ZorIndex z = 0; z < numZones; ++z)
        types[z] = doublePrecision ? ZorFieldDataType_Double : ZorFieldDataType_Float;

    bool made = false;
    if (nodal) {
        made = ZorUtilDataSetAddVar(name, types);
    } else {
        // All cell centred, made only when a zone first needs the values.
        int32_t* locations = static_cast<int32_t*>(std::calloc(entries, sizeof(int32_t)));
        if (locations == nullptr) {
            std::free(types);
            ZorUtilDialogErrMsg("Out of memory.");
            return false;
        }
        ZorArgList args = ZorUtilArgListAlloc();
        made = args != nullptr && ZorUtilArgListAppendString(args, "Name", name) &&
               ZorUtilArgListAppendArray(args, "VarDataType", types) &&
               ZorUtilArgListAppendArray(args, "ValueLocation", locations) &&
               ZorUtilArgListAppendInt(args, "DeferVarCreation", 1) && ZorUtilDataSetAddVarX(args);
        ZorUtilArgListDealloc(&args);
        std::free(locations);
    }
    std::free(types);
    if (!made) {
        char message[4097];
        snprintf(message, sizeof message,
                 "Error attempting to create variable '%s'(would have been variable number %d).", name,
                 static_cast<int>(numVars + 1));
        ZorUtilDialogErrMsg(message);
        return false;
    }
    *out = static_cast<int32_t>(numVars + 1);
    return true;
}

bool addDataFileVariables(FluentSolution* solution, DataFile* dataFile, CaseFile* caseFile,
                          ZorStringList wantedNames, bool allZonesAsPolyhedral, bool averageToNodes,
                          int32_t averagingMethod, int32_t zoneOffset, bool fromMetadata,
                          std::unique_ptr<TaskProgress> task) {
    // Zones in the order of the case file, and in each zone the fields in the
    // order of the data file. Fields from a metadata file come sorted.
    if (!fromMetadata && dataFile->numDataFields > 1) {
        SortCaseFile = caseFile;
        std::qsort(dataFile->dataFields, static_cast<size_t>(dataFile->numDataFields), sizeof(DataField),
                   compareDataFieldsForSort);
        SortCaseFile = nullptr;
    }
    if (dataFile->numDataFields < 1)
        return true;
    task->setNumSteps(2);

    const size_t capacity = static_cast<size_t>(dataFile->numDataFields);
    DataFieldRef* plain = static_cast<DataFieldRef*>(std::malloc(capacity * sizeof(DataFieldRef)));
    DataFieldRef* additional = static_cast<DataFieldRef*>(std::malloc(capacity * sizeof(DataFieldRef)));
    if (plain == nullptr || additional == nullptr) {
        std::free(plain);
        std::free(additional);
        return false;
    }
    int32_t numPlain = 0, numAdditional = 0;
    const bool loadAdditional = dataFile->additionalQuantities->shouldLoad();
    for (int32_t i = 0; i < dataFile->numDataFields; ++i) {
        DataField* field = &dataFile->dataFields[i];
        if (!isAdditionalQuantitySection(field->sectionId)) {
            plain[numPlain++] = DataFieldRef{field, i};
        } else if (loadAdditional) {
            additional[numAdditional++] = DataFieldRef{field, i};
        }
    }

    bool ok = AddDataToZorvaneGridZones(solution, plain, numPlain, dataFile, caseFile, wantedNames,
                                        allZonesAsPolyhedral, averageToNodes, averagingMethod, zoneOffset,
                                        fromMetadata, task->createChildTask(numPlain));
    ok = ok && AddDataToZorvaneGridZones(solution, additional, numAdditional, dataFile, caseFile, wantedNames,
                                         allZonesAsPolyhedral, averageToNodes, averagingMethod, zoneOffset,
                                         fromMetadata, task->createChildTask(numAdditional));
    std::free(plain);
    std::free(additional);
    return ok;
}

bool AddNewParticleVariables(DataFile* dataFile, ZorStringList wantedNames) {
    const ZorIndex numZones = ZorUtilDataSetGetNumZones();
    const size_t entries = numZones > 0 ? static_cast<size_t>(numZones) : 1;
    int32_t* types = static_cast<int32_t*>(std::calloc(entries, sizeof(int32_t)));
    if (types == nullptr) {
        ZorUtilDialogErrMsg("Out of memory.");
        return false;
    }
    // No grid zone has values for a particle variable: the smallest type the host has.
    for (ZorIndex z = 0; z + 1 < numZones; ++z)
        types[z] = ZorFieldDataType_Bit;
    if (numZones > 0)
        types[numZones - 1] = ZorFieldDataType_Double;

    char** wanted = nullptr;
    int32_t numWanted = 0;
    if (wantedNames != nullptr)
        GetVarNameList(&wanted, &numWanted, wantedNames);

    bool ok = true;
    for (int32_t p = 0; ok && p < dataFile->numParticles; ++p) {
        const FluentParticle& particle = dataFile->particles[p];
        int32_t userIndex = 0;
        for (int32_t f = 0; ok && f < particle.numFields; ++f) {
            const DataField* field = &particle.fields[f];
            char name[kVariableNameSize + 16];
            if (!getParticleDisplayName(name, field))
                continue;
            if (wantedNames != nullptr && !variableIsSelected(name, wanted, field->fieldId, numWanted))
                continue;
            if (field->fieldId == 46) {
                const size_t length = std::strlen(name);
                snprintf(name + length, sizeof name - length, " %d", userIndex);
                ++userIndex;
            }
            if (ZorUtilVarGetNumByName(name) == 0 && !ZorUtilDataSetAddVar(name, types)) {
                char message[4097];
                snprintf(message, sizeof message,
                         "Error attempting to create variable '%s'(would have been variable number %d).",
                         name, static_cast<int>(ZorUtilDataSetGetNumVars() + 1));
                ZorUtilDialogErrMsg(message);
                ok = false;
            }
        }
    }
    FreeVarNameList(&wanted, numWanted);
    std::free(types);
    return ok;
}
