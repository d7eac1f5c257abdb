// LoadInstructions: the parsed options of one load, read from an instruction
// list in the standard or the old syntax.
//
// An instruction list is a host string list of keys and values. The standard
// syntax starts with "STANDARDSYNTAX" and a version string and goes on in
// pairs ("LoadOption", "CaseAndData", ...); "FILELIST_Files" takes a count and
// that many file names. The old syntax is a plain list of pairs whose keys
// start with "-". Keys and enumerated values are compared without regard to
// case (a to z only).
//
//   standard:  STANDARDSYNTAX 1.0 FILENAME_CaseFile a.cas FILENAME_DataFile a.dat LoadOption CaseAndData
//   old:       -CaseFile a.cas -DataFile a.dat -LoadOption GridAndSolution
#pragma once

#include <cstdint>
#include <utility>

#include "datafile/DataFile.h"  // LoadOption
#include "fluentio/CompressedFile.h"
#include "host/ZorTypes.h"

// The value of loadOption before any instruction set it: no load can run.
constexpr LoadOption LoadOption_Unset = static_cast<LoadOption>(4);

enum GridZones : int32_t {
    GridZones_CellsAndBoundaries = 0,
    GridZones_CellsOnly = 1,
    GridZones_BoundariesOnly = 2,
    GridZones_SelectedZones = 3,
    GridZones_Unset = 4  // the driver's value before parsing; both parsers set a real one
};

enum AveragingMethod : int32_t { AveragingMethod_Arithmetic = 0, AveragingMethod_Laplacian = 1 };

enum UnsteadyOption : int32_t {
    UnsteadyOption_ReadTimeFromDataFiles = 0,
    UnsteadyOption_ApplyConstantTimeInterval = 1
};

// The words of the enumerations, indexed by value.
extern const char* const
    LoadOptionNames[4];  // "CaseAndData", "CaseOnly", "ResidualsOnly", "MultipleCaseAndData"
extern const char* const OldLoadOptionNames[3];  // "GridAndSolution", "GridOnly", "ResidualsOnly"
extern const char* const
    GridZonesNames[4];  // "CellsAndBoundaries", "CellsOnly", "BoundariesOnly", "SelectedZones"
extern const char* const AveragingMethodNames[2];  // "Arithmetic", "Laplacian"
extern const char* const UnsteadyOptionNames[2];   // "ReadTimeFromDataFiles", "ApplyConstantTimeInterval"

// The options of one load. The strings, the list and the set belong to the
// driver, which frees them with LoadInstructionsFree at the end of the load,
// whether the parse succeeded or not.
struct LoadInstructions {
    bool append;                      // add to the frame's data set instead of replacing it
    ZorStringList fileList;           // files of a MultipleCaseAndData load, ordered; null when not given
    bool saveUncompressedFiles;       // uncompressed copies go beside the .gz files, not to temporary files
    LoadOption loadOption;            // what to load; LoadOption_Unset until an instruction says
    char* caseFileName;               // host string; the uncompressed name for a .gz; null when not given
    GridZones gridZones;              // which zones of a case become host zones
    char* dataFileName;               // host string; the uncompressed name for a .gz; null when not given
    bool includeParticleData;         // load the particle sections of the data files
    bool allZonesAsPolyhedral;        // build every zone as polyhedral or polygonal
    bool averageToNodes;              // make nodal variables from the cell-centred ones
    AveragingMethod averagingMethod;  // how averageToNodes averages
    ZorSet zoneList;                  // zones to load, numbered over all case files; null: all
    ZorStringList varNameList;        // names of the variables to load; null: all
    UnsteadyOption unsteadyOption;    // where solution times come from
    double timeInterval;              // time step of ApplyConstantTimeInterval
    bool assignStrandIDs;             // give zones of a series strand ids
    bool addZonesToExistingStrands;   // when appending, continue the strands already there
    bool useMetadata;                 // read and write metadata files beside the Fluent files
    bool loadAdditionalQuantities;    // load the user-defined quantities of data files
};

// Sets the values the driver starts every load with: loadOption and
// gridZones unset (4), averageToNodes true, unsteadyOption 1, useMetadata
// true, everything else false, 0 or null. Owns nothing afterwards.
void LoadInstructionsSetDefaults(LoadInstructions* instructions);

// Frees the names, the file list, the zone set and the variable list, and
// sets them to null; a second call is harmless.
void LoadInstructionsFree(LoadInstructions* instructions);

// Sets target from "Yes", "True", "On" (true) or "No", "False", "Off" (false).
// Any other value leaves it as it is and shows a box saying so; that is no
// failure.
void parseBoolean(bool& target, const char* value);

// Reads a list in the standard syntax, string 1 being the marker and string 2
// the version, and checks it: unknown keys and values are shown and passed
// over; a missing or bad load option, a bad number, set, variable list or file
// list, or a missing file name fails, with the message shown. The file list
// of a MultipleCaseAndData load is classified and ordered, and compressed case,
// data and listed files are uncompressed, with each question asked once for
// the whole load. Unless the list has "SaveUncompressedFiles", that key is
// appended to it with the value used ("Yes" or "No"), so that a layout repeats
// the load with no question; this is the only change to the list. The
// progress callback is told what is being uncompressed; it is owned by the
// call. On failure what was made stays in the outputs for the driver to free.
[[nodiscard]] bool ParseAndCheckInstructions(
    ZorStringList instructions, bool& append, ZorStringList& fileList, bool& saveUncompressedFiles,
    LoadOption& loadOption, char*& caseFileName, GridZones& gridZones, char*& dataFileName,
    bool& includeParticleData, bool& allZonesAsPolyhedral, bool& averageToNodes,
    AveragingMethod& averagingMethod, ZorSet& zoneList, ZorStringList& varNameList,
    UnsteadyOption& unsteadyOption, double& timeInterval, bool& assignStrandIDs,
    bool& addZonesToExistingStrands, bool& useMetadata, bool& loadAdditionalQuantities,
    ProgressCallback progressCallback);

// Reads a list in the old syntax ("-LoadOption", "-CaseFile", "-GridZones",
// "-DataFile"). Changes only these four fields; uncompresses nothing and
// leaves the list as it is. False, message shown, without a valid load
// option or without a file name the load option needs.
[[nodiscard]] bool ParseOldInstructions(ZorStringList instructions, LoadOption& loadOption,
                                        char*& caseFileName, GridZones& gridZones, char*& dataFileName);

// The two parsers on a whole record.
[[nodiscard]] inline bool LoadInstructionsParseStandard(ZorStringList instructions, LoadInstructions* li,
                                                        ProgressCallback progressCallback) {
    return ParseAndCheckInstructions(
        instructions, li->append, li->fileList, li->saveUncompressedFiles, li->loadOption, li->caseFileName,
        li->gridZones, li->dataFileName, li->includeParticleData, li->allZonesAsPolyhedral,
        li->averageToNodes, li->averagingMethod, li->zoneList, li->varNameList, li->unsteadyOption,
        li->timeInterval, li->assignStrandIDs, li->addZonesToExistingStrands, li->useMetadata,
        li->loadAdditionalQuantities, std::move(progressCallback));
}
[[nodiscard]] inline bool LoadInstructionsParseOld(ZorStringList instructions, LoadInstructions* li) {
    return ParseOldInstructions(instructions, li->loadOption, li->caseFileName, li->gridZones,
                                li->dataFileName);
}
