// Particle sections of a Fluent data file: the scan of their subsections, the
// load of one particle field, and the table that names particle variables.
//
// Section format (ids 303/2303/3303):
//
//   (303 (name particleCount solutionTime numDimensions)      header
//     (fieldId (n1 n2 ... nCount))                            ASCII subsection, repeated
//     (fieldId (<binary numbers>End of Binary Section   %4d)) binary: marker with the subsection's fieldId
//   )                                                         end of the section
//
// Fields 1-4, 48 and 49 hold integers; in a binary section they are stored as
// binary integers, in an ASCII one as reals like the others.
#pragma once

#include <cstdint>
#include <string>

class DataFile;
struct CaseFile;
struct DataField;
struct FluentParticle;
struct FluentSolution;
namespace zorvane {
namespace dataio {
class DeferredMinMaxWriterFactory;
}
}  // namespace zorvane

// One row of ParticleVariableTable.
struct ParticleVariableRow {
    int32_t id;        // particle variable id, as a subsection names it
    const char* name;  // display name; "X", "Density" and the like are shared with the grid
};

// Rows of ParticleVariableTable.
constexpr int32_t kParticleVariableTableSize = 59;

// The known particle variables, searched from the top.
extern const ParticleVariableRow ParticleVariableTable[kParticleVariableTableSize];

// True for the particle variables that hold integers (1-4, 48, 49).
bool isIntegerParticleVariable(int32_t fieldId);

// Writes the name a particle field is shown under: its own name when it has
// one and fieldId is 0, else the table's name. False (out empty) when neither
// exists: such fields have no variable.
[[nodiscard]] bool getParticleDisplayName(char* out, const DataField* field);

// The id of the row whose display name equals `name` exactly; 0 if none.
int32_t particleVariableIdFromName(const std::string& name);

// Grows the section's field table by one zeroed entry (numFields is the
// caller's to raise). "Out of memory while parsing particle section '%s'"
// and false on failure.
[[nodiscard]] bool DataFileNewParticleField(FluentParticle* particle);

// Scans one Particle section into a new FluentParticle: its header and the
// file position of each subsection. The scan's stream stands behind the id.
[[nodiscard]] bool DataFileParseParticles(DataFile* dataFile, const CaseFile* caseFile, int32_t sectionId,
                                          zorvane::dataio::DeferredMinMaxWriterFactory* factory);

// Passes over one Particle section that is not stored.
[[nodiscard]] bool DataFileSkipParticles(DataFile* dataFile, int32_t sectionId);

// Fills field->values (count doubles) from the field's position, in the
// solution's XML particle file when it names one, else in the data file.
// False with the message shown; values may then be set.
[[nodiscard]] bool DataFileLoadParticleDataField(const FluentSolution* solution, DataFile* dataFile,
                                                 DataField* field);
