// The road of a load: from an instruction list to scanned files and, later,
// a host data set. Everything here runs on the host's main thread under the
// add-on lock.
#pragma once

#include <memory>
#include <string>

#include "host/TaskProgress.h"
#include "host/ZorTypes.h"

struct CaseFile;
class DataFile;
struct FluentSolution;

// The loader callback the host calls with an instruction list (a macro, a
// layout, the dialogs). True when the load succeeded; every failure has been
// shown to the user.
bool LoaderCallback(ZorStringList instructions);

// Scans one case file into a new CaseFile of the solution (or takes the
// pre-scanned one given in *caseFile) and builds its zones. The arguments are
// those of the load instructions; `task` is a child task the call takes over.
bool ScanCaseFile(CaseFile** caseFile, FluentSolution* solution, const char* fileName, int32_t gridZones,
                  ZorSet zoneList, ZorSet zonesAdded, int32_t fileIndex, bool append, bool allPolyZones,
                  bool averageToNodes, int32_t averagingMethod, bool assignStrandIDs,
                  bool addZonesToExistingStrands, int32_t strandBase, int32_t* zoneOffset,
                  int32_t unsteadyOption, double solutionTime, bool useMetadata,
                  std::unique_ptr<zorvane::zorutilutil::TaskProgress> task);

// The base path of a file name (through the host) and its bare name: the text
// behind the last '\\', and of that the text behind the last '/'.
void SplitPathAndName(const char* fileName, std::string* basePath, std::string* bareName);

// Scans one data file into a new DataFile of the solution (or takes the
// pre-scanned one given in *dataFile) against its case file, and binds its
// fields to the zones. `task` is a child task the call takes over.
bool ScanDataFile(DataFile** dataFile, FluentSolution* solution, const char* fileName, CaseFile* caseFile,
                  int32_t gridZones, int32_t loadOption, ZorSet zoneList, ZorSet zonesAdded,
                  ZorStringList varNameList, bool isRepeatDataFile, bool allPolyZones,
                  bool includeParticleData, bool assignStrandIDs, int32_t* zoneOffset, int32_t ordinal,
                  bool averageToNodes, int32_t averagingMethod, int32_t unsteadyOption, double solutionTime,
                  bool useMetadata, int32_t* particleStrand, const char* particleFileName,
                  int32_t numFileSteps, bool loadAdditionalQuantities,
                  std::unique_ptr<zorvane::zorutilutil::TaskProgress> task);

// Called by the host when the user chose files in its file dialog: without
// advanced options the files load as a list; with them the load dialog opens.
bool LoaderSelectedCallback(ZorStringList fileNames, bool advancedOptions, bool append,
                            ZorArbParam clientData);

// Closes the loader's dialogs that are up.
void DropLoaderDialogs();
