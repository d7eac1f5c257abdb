// The records of a data file: life cycle, tables, and the helpers that the
// parsers of this folder share.

#include "datafile/DataFile.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "datafile/DataFileInternal.h"
#include "host/Metadata.h"
#include "host/ZorUtil.h"

using zorvane::zorutildataio::AdditionalQuantitiesParser;

// ---- Shared helpers -----------------------------------------------------------

void dataFileShowError(const char* format, ...) {
    char message[4097];
    va_list args;
    va_start(args, format);
    vsnprintf(message, sizeof message, format, args);
    va_end(args);
    ZorUtilDialogErrMsg(message);
}

void dataFileShowBox(int messageBoxType, const char* format, ...) {
    char message[4097];
    va_list args;
    va_start(args, format);
    vsnprintf(message, sizeof message, format, args);
    va_end(args);
    ZorUtilDialogMessageBox(message, messageBoxType);
}

bool dataFileSkipPastOpenParen(FILE* stream) {
    int c;
    while ((c = getc(stream)) != EOF) {
        if (c == '(') {
            return true;
        }
    }
    return false;
}

// ---- The record ------------------------------------------------------------------

DataFile::DataFile()
    : fileName(),
      stream(nullptr),
      machineConfig(),
      flowTime(0.0),
      deltaTimeSampled(0.0),
      numDataFields(0),
      dataFields(nullptr),
      numParticles(0),
      particles(nullptr),
      additionalQuantities(new AdditionalQuantitiesParser(false)) {}

DataFile::DataFile(DataFile&& other) noexcept : DataFile() {
    *this = std::move(other);
}

DataFile& DataFile::operator=(DataFile&& other) noexcept {
    if (this == &other) {
        return *this;
    }
    DataFileFreeContents(this);
    memcpy(fileName, other.fileName, sizeof fileName);
    stream = other.stream;
    machineConfig = other.machineConfig;
    flowTime = other.flowTime;
    deltaTimeSampled = other.deltaTimeSampled;
    numDataFields = other.numDataFields;
    dataFields = other.dataFields;
    numParticles = other.numParticles;
    particles = other.particles;
    additionalQuantities = std::move(other.additionalQuantities);
    // The source keeps nothing, so that destroying it frees nothing twice.
    other.stream = nullptr;
    other.numDataFields = 0;
    other.dataFields = nullptr;
    other.numParticles = 0;
    other.particles = nullptr;
    return *this;
}

DataFile::~DataFile() {
    DataFileFreeContents(this);
}

bool DataFileInit(DataFile* dataFile, const char* fileName, bool loadAdditionalQuantities) {
    if (fileName == nullptr || strlen(fileName) >= static_cast<size_t>(kDataFileNameSize)) {
        return false;
    }
    strcpy(dataFile->fileName, fileName);
    dataFile->additionalQuantities.reset(new AdditionalQuantitiesParser(loadAdditionalQuantities));
    return true;
}

void DataFieldFreeArrays(DataField* field) {
    free(field->values);
    field->values = nullptr;
    free(field->minMaxWriters);
    field->minMaxWriters = nullptr;
    free(field->minima);
    field->minima = nullptr;
    free(field->maxima);
    field->maxima = nullptr;
}

void FluentParticleFreeFields(FluentParticle* particle) {
    for (int32_t i = 0; i < particle->numFields; ++i) {
        DataFieldFreeArrays(&particle->fields[i]);
    }
    free(particle->fields);
    particle->fields = nullptr;
    particle->numFields = 0;
}

void DataFileFreeContents(DataFile* dataFile) {
    for (int32_t i = 0; i < dataFile->numDataFields; ++i) {
        DataFieldFreeArrays(&dataFile->dataFields[i]);
    }
    free(dataFile->dataFields);
    dataFile->dataFields = nullptr;
    dataFile->numDataFields = 0;
    for (int32_t i = 0; i < dataFile->numParticles; ++i) {
        FluentParticleFreeFields(&dataFile->particles[i]);
    }
    free(dataFile->particles);
    dataFile->particles = nullptr;
    dataFile->numParticles = 0;
    if (dataFile->stream != nullptr) {
        fclose(dataFile->stream);
        dataFile->stream = nullptr;
    }
}

// ---- Tables --------------------------------------------------------------------------

bool DataFileNewDataField(DataFile* dataFile, DataField** out) {
    DataField* table = static_cast<DataField*>(realloc(
        dataFile->dataFields, (static_cast<size_t>(dataFile->numDataFields) + 1) * sizeof(DataField)));
    if (table == nullptr) {
        ZorUtilDialogErrMsg("Out of memory.");
        *out = nullptr;
        return false;
    }
    dataFile->dataFields = table;
    DataField* field = &table[dataFile->numDataFields];
    memset(field, 0, sizeof *field);
    dataFile->numDataFields += 1;
    *out = field;
    return true;
}

bool NewFluentParticle(DataFile* dataFile, FluentParticle** out) {
    FluentParticle* table = static_cast<FluentParticle*>(realloc(
        dataFile->particles, (static_cast<size_t>(dataFile->numParticles) + 1) * sizeof(FluentParticle)));
    if (table == nullptr) {
        ZorUtilDialogErrMsg("Out of memory.");
        *out = nullptr;
        return false;
    }
    dataFile->particles = table;
    FluentParticle* particle = &table[dataFile->numParticles];
    memset(particle, 0, sizeof *particle);
    dataFile->numParticles += 1;
    *out = particle;
    return true;
}

bool setDataFieldAttributes(DataField* field, int32_t sectionId, int32_t zoneId, int32_t fieldId,
                            int32_t count, int32_t dimension, int32_t phase,
                            zorvane::dataio::DeferredMinMaxWriterFactory* factory) {
    memset(field, 0, sizeof *field);
    field->sectionId = sectionId;
    field->zoneId = zoneId;
    field->fieldId = fieldId;
    field->count = count;
    field->dimension = dimension;
    field->phase = phase;
    // A dimension of 0 still gets blocks of their own, so that "not loaded"
    // and "failed" stay apart from "nothing to hold".
    const size_t places = dimension > 0 ? static_cast<size_t>(dimension) : 1;
    if (dimension < 0) {
        return false;
    }
    field->minima = static_cast<double*>(calloc(places, sizeof(double)));
    field->maxima = static_cast<double*>(calloc(places, sizeof(double)));
    if (field->minima == nullptr || field->maxima == nullptr) {
        return false;
    }
    if (factory != nullptr) {
        field->minMaxWriters = static_cast<zorvane::dataio::DeferredMinMaxWriter**>(
            calloc(places, sizeof(zorvane::dataio::DeferredMinMaxWriter*)));
        if (field->minMaxWriters == nullptr) {
            return false;
        }
        for (int32_t c = 0; c < dimension; ++c) {
            field->minMaxWriters[c] = factory->createDeferredMinMaxWriter();
        }
    }
    return true;
}

bool isVectorFamilyFieldId(int32_t fieldId) {
    return fieldId == 7 || fieldId == 13 || (fieldId >= 200 && fieldId <= 399) ||
           (fieldId >= 450 && fieldId <= 499) || (fieldId >= 635 && fieldId <= 637) ||
           (fieldId >= 1000 && fieldId <= 1099);
}
