// DataFile: one Fluent data file (.dat, .fdat; a .gz has been replaced by its
// plain copy before it gets here), and the records of what it holds.
//
// A data file is scanned once and not held: the scan records, for every Data
// section, what its header declares and where its numbers start, and jumps
// over the numbers. DataFileLoadDataField reads them later, on demand, from a
// stream of its own. Residuals are the exception: they are read whole during
// the scan, into the process-wide table of datafile/Residuals.h, and only for
// a residuals-only load.
//
// Section families: a base id, the base plus 2000 (binary, single-precision
// reals), the base plus 3000 (binary, double-precision reals).
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>

#include "datafile/AdditionalQuantities.h"
#include "fluentio/SectionReader.h"
#include "host/TaskProgress.h"

struct CaseFile;
struct FluentSolution;
namespace zorvane {
namespace dataio {
class DeferredMinMaxWriter;
class DeferredMinMaxWriterFactory;
}  // namespace dataio
}  // namespace zorvane

// Bytes of DataFile::fileName; a path of 262 characters or more does not fit.
constexpr int kDataFileNameSize = 262;
// Bytes of DataField::name.
constexpr int kDataFieldNameSize = 129;
// Bytes of FluentParticle::name.
constexpr int kParticleNameSize = 132;

// The load option of a load instruction.
enum LoadOption : int32_t {
    LoadOption_CaseAndData = 0,
    LoadOption_CaseOnly = 1,
    LoadOption_ResidualsOnly = 2,
    LoadOption_MultipleCaseAndData = 3
};

// One Data section, or one subsection of a Particle section. Zero-filled when made.
struct DataField {
    int32_t sectionId;     // id as in the file: 300/2300/3300, 314/2314/3314, or 303/2303/3303 for particles
    int32_t zoneId;        // zone of the case file; 0 for particle fields
    int64_t filePosition;  // first byte behind the '(' of the number body; recorded by the scan
    int32_t fieldId;  // Fluent field id; a ParticleVariableTable id for particles; the name's place for 314
    char name[kDataFieldNameSize];  // XML particle fields only: the item's name; empty otherwise
    int32_t count;                  // elements: lastId - firstId + 1, or the particle count
    int32_t dimension;              // numbers per element; 1 for particle fields
    int32_t phase;                  // phase number of the header; 0 for particle fields
    double* values;            // null until loaded; count * dimension numbers (layout: DataFileLoadDataField)
    int32_t loadedComponents;  // components the host holds at this moment; 0 at the start
    double* minima;            // dimension places, zero-filled; per-component minima where known
    double* maxima;            // dimension places, zero-filled; per-component maxima where known
    // Null, or dimension writers from the factory of the scan; the writers are
    // shared objects: only the array belongs to the field.
    zorvane::dataio::DeferredMinMaxWriter** minMaxWriters;
};

// One Particle section (or XML particle section). Zero-filled when made.
struct FluentParticle {
    char name[kParticleNameSize];  // section name from the header; at most 128 characters from XML
    int32_t particleCount;         // particles; every field of the section has this count
    double solutionTime;           // time of the section header; the data file's flowTime for XML
    int32_t numDimensions;         // dimensions of the header; for XML from the item names
    int32_t numFields;             // entries of fields
    DataField* fields;             // one per subsection; null when empty
};

// One Fluent data file. Held in FluentSolution's table, which is replaced by a
// larger one as it grows: records move (the source is left empty) and are
// destroyed with the table, freeing what they own.
class DataFile {
  public:
    DataFile();
    DataFile(DataFile&& other) noexcept;
    DataFile& operator=(DataFile&& other) noexcept;
    DataFile(const DataFile&) = delete;
    DataFile& operator=(const DataFile&) = delete;
    ~DataFile();  // DataFileFreeContents, then the additional-quantities holder

    char fileName[kDataFileNameSize];  // path; the plain copy for a compressed file
    FILE* stream;                      // open only during the scan; null afterwards
    MachineConfig machineConfig;       // binary layout of the file; all zero until section 4
    double flowTime;                   // "flow-time" of section 37; 0 if absent; the file's solution time
    double deltaTimeSampled;           // "delta-time-sampled" of section 37; 0 if absent
    int32_t numDataFields;             // entries of dataFields
    DataField* dataFields;      // one per stored Data section, file order until sorted; null when empty
    int32_t numParticles;       // entries of particles
    FluentParticle* particles;  // one per Particle or XML section; null when empty
    // The user's cell-function names and the LoadAdditionalQuantities flag; always present.
    std::unique_ptr<zorvane::zorutildataio::AdditionalQuantitiesParser> additionalQuantities;
};

// Gives a new record its name and its additional-quantities holder. False,
// with nothing changed, for a name of kDataFileNameSize characters or more.
[[nodiscard]] bool DataFileInit(DataFile* dataFile, const char* fileName, bool loadAdditionalQuantities);

// Frees, per field, values, minMaxWriters, minima, maxima; the field table;
// the same for every particle section's fields; the particle table; closes
// the stream. The record keeps its name and the holder. A second call is harmless.
void DataFileFreeContents(DataFile* dataFile);

// Frees the arrays of every field of the section and the field table.
void FluentParticleFreeFields(FluentParticle* particle);

// Frees values, minMaxWriters, minima and maxima of one field.
void DataFieldFreeArrays(DataField* field);

// Appends a zero-filled field to the table. "Out of memory." and false on failure.
[[nodiscard]] bool DataFileNewDataField(DataFile* dataFile, DataField** out);

// Appends a zero-filled particle section. "Out of memory." and false on failure.
[[nodiscard]] bool NewFluentParticle(DataFile* dataFile, FluentParticle** out);

// Zeroes the record, stores the six numbers, allocates minima and maxima
// (dimension zeroed doubles) and, with a factory, dimension writers. False
// when an allocation fails (no message). filePosition, name and values are
// the caller's.
[[nodiscard]] bool setDataFieldAttributes(DataField* field, int32_t sectionId, int32_t zoneId,
                                          int32_t fieldId, int32_t count, int32_t dimension, int32_t phase,
                                          zorvane::dataio::DeferredMinMaxWriterFactory* factory);

// Scans the data file: records the Data sections (checked against the zones of
// caseFile), the Particle sections, flowTime and deltaTimeSampled, and for
// LoadOption_ResidualsOnly reads the Residuals sections into the residual
// table. progress is destroyed at the end; factory may be null; caseFile may be
// null for a residuals-only scan. False when a section failed; the message has
// been shown.
[[nodiscard]] bool DataFileScan(FluentSolution* solution, DataFile* dataFile, CaseFile* caseFile,
                                LoadOption loadOption,
                                std::unique_ptr<zorvane::zorutilutil::TaskProgress> progress,
                                zorvane::dataio::DeferredMinMaxWriterFactory* factory);

// Reads section 37 of the data file (the scan's stream stands behind the id):
// the additional-quantity names, flowTime and deltaTimeSampled.
[[nodiscard]] bool DataFileParseVariables(DataFile* dataFile, int32_t sectionId);

// True for the field ids whose components stand component after component in
// the file and in `values`: 7, 13, 200-399, 450-499, 635-637, 1000-1099.
bool isVectorFamilyFieldId(int32_t fieldId);

// Fills field->values from the field's file position, opening a stream of its
// own. Layout of values, with e the element and c the component:
//   field 970 (stored component after component): transposed to e * dimension + c
//   the vector family (component after component): c * count + e, as stored
//   all others (element after element):             e * dimension + c, as stored
// False with the message shown; values may then be set and partly filled (the
// caller frees it). values is overwritten without a look at what it held.
[[nodiscard]] bool DataFileLoadDataField(DataFile* dataFile, DataField* field);
