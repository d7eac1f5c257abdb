#include "dataset/VariableNames.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "datafile/Particles.h"
#include "host/ZorUtil.h"

// ---- Table lookups ---------------------------------------------------------------
//
// Rows whose id is 0 stand for quantities that no section can name, so a
// search never stops at them.

const char* lookupFieldIdName(int32_t fieldId) {
    if (fieldId == 0) {
        return nullptr;
    }
    for (int32_t i = 0; i < kVariableNameTableSize; ++i) {
        if (VariableNameTable[i].fieldId == fieldId) {
            return VariableNameTable[i].name;
        }
    }
    return nullptr;
}

void lookupResidualName(char* out, int32_t residualId) {
    if (residualId != 0) {
        for (int32_t i = 0; i < kVariableNameTableSize; ++i) {
            if (VariableNameTable[i].residualId == residualId) {
                snprintf(out, kVariableNameSize, "%s", VariableNameTable[i].name);
                return;
            }
        }
    }
    snprintf(out, kVariableNameSize, "Variable #%d", residualId);
}

// ---- Field names -------------------------------------------------------------------

// Species name `index` of the case with a suffix, the name cut to keep
// characters; false when the case has no such species.
static bool speciesName(char* out, const CaseFile* caseFile, int32_t index, int keep, const char* suffix) {
    if (caseFile == nullptr || index < 0 || index >= caseFile->numSpeciesNames) {
        return false;
    }
    snprintf(out, kVariableNameSize, "%.*s%s", keep, caseFile->speciesNames[index], suffix);
    return true;
}

static bool isAdditionalQuantitySection(int32_t sectionId) {
    return sectionId == 314 || sectionId == 2314 || sectionId == 3314;
}

void getVariableName(char* out, int32_t sectionId, int32_t fieldId, int32_t phase, const DataFile* dataFile,
                     const CaseFile* caseFile) {
    out[0] = '\0';
    const bool axisymmetric = caseFile != nullptr && caseFile->axisymmetric;
    bool named = false;
    if (fieldId >= 200 && fieldId <= 249) {
        named = speciesName(out, caseFile, fieldId - 200, 128, "");
    } else if (fieldId >= 250 && fieldId <= 299) {
        named = speciesName(out, caseFile, fieldId - 250, 124, " t-1");
    } else if (fieldId >= 300 && fieldId <= 349) {
        named = speciesName(out, caseFile, fieldId - 300, 124, " t-2");
    } else if (fieldId >= 350 && fieldId <= 399) {
        named = speciesName(out, caseFile, fieldId - 350, 112, " Deposition Rate");
    } else if (fieldId >= 450 && fieldId <= 499) {
        named = speciesName(out, caseFile, fieldId - 450, 124, " DPM");
    } else if ((fieldId == 113 || fieldId == 117 || fieldId == 124) && !axisymmetric) {
        strcpy(out, fieldId == 113 ? "Z Velocity" : fieldId == 117 ? "Z Velocity t-1" : "Z Velocity t-2");
        named = true;
    } else if (fieldId == 150 || fieldId == 160 || fieldId == 170) {
        snprintf(out, kVariableNameSize,
                 fieldId == 150   ? "Phase %d"
                 : fieldId == 160 ? "Phase %d t-1"
                                  : "Phase %d t-2",
                 phase);
        named = true;
    } else if (isAdditionalQuantitySection(sectionId) && dataFile != nullptr &&
               dataFile->additionalQuantities != nullptr && dataFile->additionalQuantities->hasNames()) {
        snprintf(out, kVariableNameSize, "%s", dataFile->additionalQuantities->getName(fieldId).c_str());
        named = true;
    }
    if (!named) {
        const char* tableName = lookupFieldIdName(fieldId);
        if (tableName != nullptr) {
            snprintf(out, kVariableNameSize, "%s", tableName);
        } else {
            snprintf(out, kVariableNameSize, "Variable #%d", fieldId);
        }
    }

    // Phases 0 and 1 bear no suffix; phase 2 is " Phase-1". A suffix that would
    // pass 128 characters is written over the name's tail instead.
    if (out[0] == '\0' || fieldId == 150 || fieldId == 160 || fieldId == 170 || phase < 2) {
        return;
    }
    char suffix[32];
    snprintf(suffix, sizeof suffix, " Phase-%d", phase - 1);
    const size_t nameLength = strlen(out);
    const size_t suffixLength = strlen(suffix);
    if (nameLength + suffixLength > 128) {
        const size_t at = nameLength >= suffixLength ? nameLength - suffixLength : 0;
        memcpy(out + at, suffix, suffixLength);
        out[at + suffixLength > nameLength ? at + suffixLength : nameLength] = '\0';
    } else {
        memcpy(out + nameLength, suffix, suffixLength + 1);
    }
}

// ---- Selections ---------------------------------------------------------------------

// Compares without regard to the case of the letters a to z only.
static bool equalIgnoringCase(const char* a, const char* b) {
    for (;; ++a, ++b) {
        char ca = *a;
        char cb = *b;
        if (ca >= 'A' && ca <= 'Z') {
            ca = static_cast<char>(ca - 'A' + 'a');
        }
        if (cb >= 'A' && cb <= 'Z') {
            cb = static_cast<char>(cb - 'A' + 'a');
        }
        if (ca != cb) {
            return false;
        }
        if (ca == '\0') {
            return true;
        }
    }
}

bool variableIsSelected(char* name, char** list, int32_t fieldId, int32_t count) {
    char numbered[kVariableNameSize];
    snprintf(numbered, sizeof numbered, "Variable #%d", fieldId);
    for (int32_t i = 0; i < count; ++i) {
        const char* entry = list[i];
        if (entry == nullptr || name == nullptr) {
            if (entry == nullptr && name == nullptr) {
                return true;
            }
            continue;
        }
        if (equalIgnoringCase(entry, name)) {
            return true;
        }
        if (equalIgnoringCase(entry, numbered)) {
            strcpy(name, numbered);
            return true;
        }
    }
    return false;
}

void GetVarNameList(char*** outList, int32_t* outCount, ZorStringList list) {
    const ZorIndex count = ZorUtilStringListGetCount(list);
    *outCount = static_cast<int32_t>(count);
    if (count == 0) {
        return;
    }
    char** array = static_cast<char**>(calloc(static_cast<size_t>(count), sizeof(char*)));
    if (array == nullptr) {
        *outCount = 0;
        return;
    }
    for (ZorIndex i = 0; i < count; ++i) {
        array[i] = ZorUtilStringListGetString(list, i + 1);
    }
    *outList = array;
}

bool AddVarNameToList(const char* name, char*** list, int32_t* count) {
    char* copy = ZorUtilStringAlloc(static_cast<int64_t>(strlen(name)), "variable name");
    if (copy == nullptr) {
        return false;
    }
    strcpy(copy, name);
    char** array = static_cast<char**>(realloc(*list, (static_cast<size_t>(*count) + 1) * sizeof(char*)));
    if (array == nullptr) {
        ZorUtilStringDealloc(&copy);
        return false;
    }
    array[*count] = copy;
    *list = array;
    *count += 1;
    return true;
}

void FreeVarNameList(char*** list, int32_t count) {
    if (*list == nullptr) {
        return;
    }
    for (int32_t i = 0; i < count; ++i) {
        ZorUtilStringDealloc(&(*list)[i]);
    }
    free(*list);
    *list = nullptr;
}

// ---- Zone labels ----------------------------------------------------------------------

// Boundary zones of these types are shown: below 1000, and none of interior
// (2), hanging-node parent (31) and 38.
static bool isDisplayedBoundaryType(int32_t boundaryType) {
    return boundaryType < 1000 && boundaryType != 2 && boundaryType != 31 && boundaryType != 38;
}

void faceZoneDisplayName(char* out, const FaceZone* zone) {
    static const struct {
        int32_t type;
        const char* name;
    } kBoundaryTypeNames[] = {
        {2, "Interior"},
        {3, "Wall"},
        {4, "Pressure-Inlet"},
        {5, "Pressure-Outlet"},
        {7, "Symmetry"},
        {8, "Periodic-Shadow"},
        {9, "Pressure-Far-Field"},
        {10, "Velocity-Inlet"},
        {12, "Periodic"},
        {14, "Fan"},
        {20, "Mass-Flow-Inlet"},
        {24, "Interface"},
        {31, "Hanging-Node-Parent"},
        {36, "Outflow"},
        {37, "Axis"},
    };
    if (zone->name[0] != '\0') {
        snprintf(out, kVariableNameSize, "%.128s", zone->name);
        return;
    }
    for (const auto& row : kBoundaryTypeNames) {
        if (row.type == zone->boundaryType) {
            snprintf(out, kVariableNameSize, "%s Boundary Zone %d", row.name, zone->zoneId);
            return;
        }
    }
    snprintf(out, kVariableNameSize, "Boundary Zone %d", zone->zoneId);
}

bool collectZoneNames(const CaseFile* caseFile, ZorStringList list) {
    char label[kVariableNameSize + 32];
    for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
        const CellZone& zone = caseFile->cellZones[i];
        if (zone.zoneType == 32) {
            continue;
        }
        if (zone.name[0] != '\0') {
            snprintf(label, sizeof label, "%s (cell zone %d)", zone.name, zone.zoneId);
        } else {
            const char* kind = zone.zoneType == 1    ? "Fluid Zone"
                               : zone.zoneType == 17 ? "Solid Zone"
                                                     : "Cell Zone";
            snprintf(label, sizeof label, "%s %d (cell zone %d)", kind, zone.zoneId, zone.zoneId);
        }
        if (!ZorUtilStringListAppendString(list, label)) {
            return false;
        }
    }
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        const FaceZone& zone = caseFile->faceZones[i];
        if (!isDisplayedBoundaryType(zone.boundaryType)) {
            continue;
        }
        char name[kVariableNameSize];
        faceZoneDisplayName(name, &zone);
        snprintf(label, sizeof label, "%s (face zone %d)", name, zone.zoneId);
        if (!ZorUtilStringListAppendString(list, label)) {
            return false;
        }
    }
    return true;
}

int32_t countDisplayZones(const CaseFile* caseFile) {
    int32_t count = 0;
    for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
        if (caseFile->cellZones[i].zoneType != 32) {
            ++count;
        }
    }
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        if (isDisplayedBoundaryType(caseFile->faceZones[i].boundaryType)) {
            ++count;
        }
    }
    return count;
}

bool collectParticleSectionNames(const DataFile* dataFile, ZorStringList list) {
    for (int32_t i = 0; i < dataFile->numParticles; ++i) {
        if (!ZorUtilStringListAppendString(list, dataFile->particles[i].name)) {
            return false;
        }
    }
    return true;
}

bool collectVariableNames(const DataFile* dataFile, const CaseFile* caseFile, ZorStringList list) {
    char** names = nullptr;
    int32_t count = 0;
    GetVarNameList(&names, &count, list);
    bool ok = true;
    char name[kVariableNameSize];
    for (int32_t i = 0; i < dataFile->numDataFields; ++i) {
        const DataField& field = dataFile->dataFields[i];
        if (field.fieldId == 59) {
            continue;
        }
        const int32_t components = isVectorFamilyFieldId(field.fieldId) ? field.dimension : 1;
        for (int32_t k = 0; k < components; ++k) {
            getVariableName(name, field.sectionId, field.fieldId + k, field.phase, dataFile, caseFile);
            if (variableIsSelected(name, names, field.fieldId + k, count)) {
                continue;
            }
            if (!AddVarNameToList(name, &names, &count)) {
                ok = false;
                break;
            }
        }
    }
    for (int32_t p = 0; p < dataFile->numParticles; ++p) {
        const FluentParticle& particle = dataFile->particles[p];
        for (int32_t f = 0; f < particle.numFields; ++f) {
            const DataField& field = particle.fields[f];
            if (!getParticleDisplayName(name, &field)) {
                continue;
            }
            if (strcmp(name, "X") == 0 || strcmp(name, "Y") == 0 || strcmp(name, "Z") == 0) {
                continue;
            }
            if (variableIsSelected(name, names, field.fieldId, count)) {
                continue;
            }
            if (!AddVarNameToList(name, &names, &count)) {
                ok = false;
            }
        }
    }
    ZorUtilStringListClear(list);
    for (int32_t i = 0; i < count; ++i) {
        if (!ZorUtilStringListAppendString(list, names[i])) {
            ok = false;
            break;
        }
    }
    FreeVarNameList(&names, count);
    return ok;
}
