#include "datafile/Particles.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string>

#include "addon/FluentSolution.h"
#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "datafile/DataFileInternal.h"
#include "host/ZorUtil.h"

const ParticleVariableRow ParticleVariableTable[kParticleVariableTableSize] = {
    {0, ""},
    {1, "Particle ID"},
    {2, "Particle Type"},
    {3, "Particle Stream Index"},
    {4, "Particle Law Index"},
    {5, "Particle Birth Time"},
    {6, "Particle Flow Rate"},
    {7, "X"},
    {8, "Y"},
    {9, "Z"},
    {10, "X Velocity"},
    {11, "Y Velocity"},
    {12, "Z Velocity"},
    {13, "Particle Diameter"},
    {14, "Density"},
    {15, "Particle Mass"},
    {16, "Temperature"},
    {17, "Particle Time"},
    {18, "Particle VFF"},
    {19, "Particle Liquid Fraction"},
    {20, "Particle X0"},
    {21, "Particle Y0"},
    {22, "Particle Z0"},
    {23, "Particle U0"},
    {24, "Particle V0"},
    {25, "Particle W0"},
    {26, "Particle Diameter0"},
    {27, "Particle Density0"},
    {28, "Particle Mass0"},
    {29, "Particle Temperature0"},
    {30, "Particle Time0"},
    {31, "Particle Liquid Fraction0"},
    {32, "Particle UPrime"},
    {33, "Particle VPrime"},
    {34, "Particle WPrime"},
    {35, "Particle Eddy Time"},
    {36, "Particle OldTKE"},
    {37, "Particle OldTED"},
    {45, "Particle Time Step Birth"},
    {46, "Particle User"},
    {47, "Particle In Parcel"},
    {48, "Particle Cell Thread ID"},
    {49, "Particle Cell Index"},
    {50, "Particle Scalar"},
    {101, "Particle Cell U"},
    {102, "Particle Cell V"},
    {103, "Particle Cell W"},
    {104, "Particle Cell dUdX"},
    {105, "Particle Cell dUdY"},
    {106, "Particle Cell dUdZ"},
    {107, "Particle Cell dVdX"},
    {108, "Particle Cell dVdY"},
    {109, "Particle Cell dVdZ"},
    {110, "Particle Cell dWdX"},
    {111, "Particle Cell dWdY"},
    {112, "Particle Cell dWdZ"},
    {113, "Particle Cell Temperature"},
    {114, "Particle Cell Density"},
    {115, "Particle Cell Viscosity"},
};

bool isIntegerParticleVariable(int32_t fieldId) {
    return (fieldId >= 1 && fieldId <= 4) || fieldId == 48 || fieldId == 49;
}

bool getParticleDisplayName(char* out, const DataField* field) {
    out[0] = '\0';
    if (field->name[0] != '\0' && field->fieldId == 0) {
        strcpy(out, field->name);
        return true;
    }
    for (int32_t i = 0; i < kParticleVariableTableSize; ++i) {
        if (ParticleVariableTable[i].id == field->fieldId) {
            strcpy(out, ParticleVariableTable[i].name);
            return true;
        }
    }
    return false;
}

int32_t particleVariableIdFromName(const std::string& name) {
    for (int32_t i = 0; i < kParticleVariableTableSize; ++i) {
        if (name == ParticleVariableTable[i].name) {
            return ParticleVariableTable[i].id;
        }
    }
    return 0;
}

bool DataFileNewParticleField(FluentParticle* particle) {
    DataField* table = static_cast<DataField*>(
        realloc(particle->fields, (static_cast<size_t>(particle->numFields) + 1) * sizeof(DataField)));
    if (table == nullptr) {
        dataFileShowError("Out of memory while parsing particle section '%s'", particle->name);
        return false;
    }
    particle->fields = table;
    memset(&table[particle->numFields], 0, sizeof(DataField));
    return true;
}

bool DataFileParseParticles(DataFile* dataFile, const CaseFile* caseFile, int32_t sectionId,
                            zorvane::dataio::DeferredMinMaxWriterFactory* factory) {
    FILE* stream = dataFile->stream;
    char name[kParticleNameSize] = "";
    int particleCount = 0;
    double solutionTime = 0.0;
    int numDimensions = 0;
    if (fscanf(stream, "(%131s %d %lg %d)", name, &particleCount, &solutionTime, &numDimensions) < 4) {
        reportStreamFailure(stream, "Particle", sectionId);
        return false;
    }
    if (particleCount <= 0) {
        dataFileShowError("Invalid number of particles (%d) in particle section '%s'", particleCount, name);
    }
    const int caseDimensions = caseFile != nullptr ? caseFile->numDimensions : 0;
    if (numDimensions != caseDimensions && !ZorUtilMacroIsBatchModeActive()) {
        dataFileShowBox(
            ZorMessageBoxType_Warning,
            "Number of dimensions (%d) in Particle section '%s' of Fluent Data file does not agree with "
            "number of dimensions previously read (%d). Processing will continue.",
            numDimensions, "Particle", caseDimensions);
    }
    if (particleCount <= 0) {
        return false;
    }
    FluentParticle* particle;
    if (!NewFluentParticle(dataFile, &particle)) {
        return false;
    }
    strcpy(particle->name, name);
    particle->particleCount = particleCount;
    particle->solutionTime = solutionTime;
    particle->numDimensions = numDimensions;

    for (;;) {
        int c;
        do {
            c = getc(stream);
        } while (c != EOF && isspace(c));
        if (c == EOF) {
            if (ferror(stream)) {
                dataFileShowError("Read error while scanning particle section '%s'", particle->name);
            } else {
                dataFileShowError(
                    "Unexpected character '%c' (0x%x) encountered while parsing particle section '%s'", c, c,
                    particle->name);
            }
            return false;
        }
        if (c == ')') {
            return true;
        }
        if (c != '(') {
            dataFileShowError(
                "Unexpected character '%c' (0x%x) encountered while parsing particle section '%s'", c, c,
                particle->name);
            return false;
        }
        int fieldId;
        if (fscanf(stream, "%d", &fieldId) != 1) {
            dataFileShowError("Error parsing particle section '%s'", particle->name);
            return false;
        }
        if (!DataFileNewParticleField(particle)) {
            return false;
        }
        DataField* field = &particle->fields[particle->numFields];
        particle->numFields += 1;
        if (!setDataFieldAttributes(field, sectionId, 0, fieldId, particleCount, 1, 0, factory)) {
            return false;
        }
        if (!dataFileSkipPastOpenParen(stream)) {
            dataFileShowError(
                "Opening parenthesis not found while reading particle section '%s' subsection %d.",
                particle->name, fieldId);
            return false;
        }
        field->filePosition = ftello(stream);
        // The subsection's own id, which is what its binary end marker holds.
        if (!skipSection(fieldId, sectionId >= 2000, stream)) {
            return false;
        }
        while ((c = getc(stream)) != EOF && c != ')') {
        }
    }
}

// ASCII sections are passed over by their parentheses. A binary section:
//
//   (name count time dims)                                  header: '(' then ')'
//   (fieldId (<binary>End of Binary Section   %4d))         per subsection, found by its marker
//   )                                                       the section's end
bool DataFileSkipParticles(DataFile* dataFile, int32_t sectionId) {
    FILE* stream = dataFile->stream;
    if (sectionId < 2000) {
        return skipSection(sectionId, false, stream);
    }
    int c;
    for (int wanted : {'(', ')'}) {
        while ((c = getc(stream)) != EOF && c != wanted) {
        }
        if (c == EOF) {
            if (ferror(stream)) {
                ZorUtilDialogErrMsg("Read error while skipping particle data.");
            } else {
                ZorUtilDialogErrMsg("End of file while skipping particle data.");
            }
            return false;
        }
    }
    for (;;) {
        int subId;
        if (!findNextSection(&subId, stream)) {
            return false;
        }
        char pattern[64];
        snprintf(pattern, sizeof pattern, "End of Binary Section   %4d))", subId);
        const ReadStatus status = seekLiteral(stream, pattern, false, false);
        if (status == ReadStatus_EndOfFile) {
            dataFileShowError("End-of-file while skipping particle subsection %d.", subId);
            return false;
        }
        if (status != ReadStatus_Success) {
            dataFileShowError("Read error while skipping particle subsection %d.", subId);
            return false;
        }
        for (;;) {
            c = getc(stream);
            if (c == EOF) {
                ZorUtilDialogErrMsg("End-of-file while skipping particle data.");
                return false;
            }
            if (c == ')') {
                return true;
            }
            if (c == '(') {
                if (fseeko(stream, -1, SEEK_CUR) != 0) {
                    ZorUtilDialogErrMsg("Seek error while skipping particle data.");
                    return false;
                }
                break;
            }
        }
    }
}

bool DataFileLoadParticleDataField(const FluentSolution* solution, DataFile* dataFile, DataField* field) {
    const bool isXml = solution != nullptr && solution->particleFileName[0] != '\0';
    const char* fileName = isXml ? solution->particleFileName : dataFile->fileName;
    FILE* stream = openFilePath(fileName, "rb");
    if (stream == nullptr) {
        dataFileShowError("Error opening case file '%s'", fileName);
        return false;
    }
    if (fseeko(stream, static_cast<off_t>(field->filePosition), SEEK_SET) != 0) {
        dataFileShowError("Error setting file position (%lld) while reading particle data in file\n%s",
                          static_cast<long long>(field->filePosition), fileName);
        fclose(stream);
        return false;
    }
    const int32_t count = field->count;
    const int64_t bytes = static_cast<int64_t>(count) * static_cast<int64_t>(sizeof(double));
    field->values =
        bytes >= 0 ? static_cast<double*>(calloc(count > 0 ? static_cast<size_t>(count) : 1, sizeof(double)))
                   : nullptr;
    if (field->values == nullptr) {
        const std::string message =
            "Unable to allocate " + std::to_string(bytes) + " bytes for particle data";
        ZorUtilDialogErrMsg(message.c_str());
        fclose(stream);
        return false;
    }
    bool ok;
    if (isIntegerParticleVariable(field->fieldId) && field->sectionId != 303) {
        int* integers = static_cast<int*>(malloc((count > 0 ? static_cast<size_t>(count) : 1) * sizeof(int)));
        if (integers == nullptr) {
            fclose(stream);
            return false;
        }
        ok = readSectionInts(integers, count, &dataFile->machineConfig, stream, "Particle Data",
                             field->sectionId);
        if (ok) {
            for (int32_t i = 0; i < count; ++i) {
                field->values[i] = integers[i];
            }
        }
        free(integers);
    } else {
        ok = readSectionReals(field->values, count, &dataFile->machineConfig, stream, "Particle Data",
                              field->sectionId, isXml);
    }
    if (ok && !isXml) {
        // The subsection's field id, for its end marker.
        ok = closeSection(field->fieldId, "Particle Data", field->sectionId >= 2000, stream);
    }
    fclose(stream);
    return ok;
}
