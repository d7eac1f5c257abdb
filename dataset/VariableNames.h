// Variable names: the table of known Fluent field and residual ids, the rules
// that build a variable's display name from a field id, the species list of
// the case and the phase, and the name lists of the zone and variable
// selection dialog.
//
// The table is searched from the top and the first matching row wins; rows
// further down with the same id never win. All name buffers hold at least
// kVariableNameSize bytes: names are at most 128 characters.
#pragma once

#include <cstdint>

#include "host/ZorTypes.h"

struct CaseFile;
struct FaceZone;
class DataFile;

// Bytes of a buffer that takes any variable name and its end.
constexpr int kVariableNameSize = 129;

// One row of VariableNameTable.
struct VariableNameRow {
    int32_t residualId;  // id under which a Residuals section names the quantity; 0 for no residual
    int32_t fieldId;     // id under which a Data section names the quantity; 0 when none can
    const char* name;    // display name, at most 128 characters; a trailing blank belongs to it
};

// Rows of VariableNameTable.
constexpr int32_t kVariableNameTableSize = 1806;

// The Fluent field-name list in lookup order (generated, see
// tools/gen_variable_table.py).
extern const VariableNameRow VariableNameTable[kVariableNameTableSize];

// The name of the first row with this field id, or null when no row has it.
const char* lookupFieldIdName(int32_t fieldId);

// Writes the name of the first row with this residual id, or "Variable #%d".
void lookupResidualName(char* out, int32_t residualId);

// Writes the display name of one component of a data field. fieldId is the
// field's id plus the component number for the vector family. dataFile and
// caseFile give the additional-quantity names, the species names and the
// axisymmetric flag; either may be null, and then gives none of them.
void getVariableName(char* out, int32_t sectionId, int32_t fieldId, int32_t phase, const DataFile* dataFile,
                     const CaseFile* caseFile);

// Whether a name is in a selection of names (case of the letters a-z
// ignored). An entry "Variable #<fieldId>" selects too; `name` is then
// rewritten to "Variable #<fieldId>" (it must hold kVariableNameSize bytes).
// A null name matches a null entry.
bool variableIsSelected(char* name, char** list, int32_t fieldId, int32_t count);

// Copies a host string list into an array of host strings. *outCount is the
// list's length, or 0 when memory runs out; *outList is left alone for an
// empty list. Free the result with FreeVarNameList.
void GetVarNameList(char*** outList, int32_t* outCount, ZorStringList list);

// Appends a host-string copy of `name` to the array, which grows by one.
// False when memory runs out; the array is then unchanged.
bool AddVarNameToList(const char* name, char*** list, int32_t* count);

// Frees every string of the array and the array; the pointer becomes null.
void FreeVarNameList(char*** list, int32_t count);

// Writes the name a face zone is shown under when the case gives it none:
// "<boundary type name> Boundary Zone %d", or "Boundary Zone %d" for a type
// with no name; a named zone keeps its name.
void faceZoneDisplayName(char* out, const FaceZone* zone);

// Appends the label of every zone that can be offered to the user: cell zones
// as "<name> (cell zone %d)", then displayed boundaries as "<name> (face zone
// %d)". False when an append fails.
bool collectZoneNames(const CaseFile* caseFile, ZorStringList list);

// The number of labels collectZoneNames gives.
int32_t countDisplayZones(const CaseFile* caseFile);

// Appends the name of every particle section of the data file.
bool collectParticleSectionNames(const DataFile* dataFile, ZorStringList list);

// Merges the variable names of one data file into a list that may hold those
// of earlier files: first-seen order, duplicates found without regard to
// case. False when memory runs out.
bool collectVariableNames(const DataFile* dataFile, const CaseFile* caseFile, ZorStringList list);
