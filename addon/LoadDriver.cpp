#include "addon/LoadDriver.h"

#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

#include "addon/FileList.h"
#include "addon/FluentSolution.h"
#include "addon/LoadInstructions.h"
#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "datafile/Residuals.h"
#include "dataset/AuxData.h"
#include "dataset/GridZones.h"
#include "dataset/VariableList.h"
#include "host/Metadata.h"
#include "host/TaskProgress.h"
#include "host/ZorData.h"
#include "host/ZorUtil.h"
#include "metadata/MetadataConversion.h"
#include "support/AsciiCase.h"

using zorvane::dataio::MetadataDataset;
using zorvane::dataio::MetadataDirector;
using zorvane::zorutildataio::ClientDataVersion1Factory;
using zorvane::zorutilutil::TaskProgress;
namespace zorutildataio = zorvane::zorutildataio;

namespace {

const char* const kLoaderName = "Fluent Data Loader";

// Longest XML particle file name that a load accepts, with its NUL.
constexpr size_t kMaxParticleFileName = 262;

// Everything one load holds between its steps.
struct LoadState {
    LoadInstructions li;                     // the parsed instructions; freed at the end
    std::unique_ptr<TaskProgress> progress;  // the load's progress bar
    std::unique_ptr<TaskProgress> fileTask;  // one step per file
    FluentSolution* solution = nullptr;      // the record the load fills
    CaseFile* caseFile = nullptr;            // the case file scanned, retained while the load runs
    ZorSet zonesAdded = nullptr;             // host zones the load made (with the old count when appending)
    ZorIndex oldNumZones = 0;                // zones of the data set before an appending load
    ZorIndex oldNumVars = 0;                 // variables of the data set before an appending load
    std::string errorText;                   // shown last, unless the user interrupted
};

// Says so when the instructions ask for what this version of the loader
// cannot load: series, residuals, particles, values averaged to nodes.
// (Polygonal and polyhedral zones show only when the zones are made.)
bool versionCanLoad(const LoadInstructions& li) {
    const char* refusal = nullptr;
    if (li.loadOption == LoadOption_MultipleCaseAndData) {
        refusal =
            "Loading a list of files as a series is not available in this version of the Fluent loader.";
    } else if (li.loadOption == LoadOption_ResidualsOnly) {
        refusal = "Loading residuals is not available in this version of the Fluent loader.";
    } else if (li.includeParticleData) {
        refusal = "Loading particle data is not available in this version of the Fluent loader.";
    } else if (li.averageToNodes && li.loadOption == LoadOption_CaseAndData) {
        refusal =
            "Averaging cell-centred values to nodes is not available in this version of the Fluent loader.";
    }
    if (refusal != nullptr)
        ZorUtilDialogErrMsg(refusal);
    return refusal == nullptr;
}

// How the reading of a metadata file ended.
enum class MetadataRead {
    Restored,      // the record was filled from the file
    OtherVersion,  // a file of a version this loader cannot read: scan as if there were none
    Failed         // a damaged or unreadable file: the load stops with the long message
};

// Reads the metadata file of basePath + bareName and hands the data set to
// restore, which fills the record (and throws what it finds wrong).
template <typename Restore>
MetadataRead readMetadata(MetadataDirector& director, const std::string& basePath,
                          const std::string& bareName, Restore restore) {
    try {
        auto input = std::make_shared<zorvane::dataio::BufferedInputStream>(
            std::make_shared<zorvane::dataio::FileInputStream>(
                director.metadataFilename(basePath, bareName)));
        auto dataset = std::make_unique<MetadataDataset>(zorutildataio::kClientDataVersion);
        director.read(input, *dataset);
        restore(*dataset);
        return MetadataRead::Restored;
    } catch (const zorvane::dataio::InvalidMetadataVersionException&) {
        return MetadataRead::OtherVersion;
    } catch (const std::exception&) {
        return MetadataRead::Failed;
    }
}

// Writes the metadata file of basePath + bareName from the data set that
// fill makes. A failure costs only the cache: the load goes on, and a file
// left half written is removed so that the next load scans again.
template <typename Fill>
void writeMetadata(MetadataDirector& director, const std::string& basePath, const std::string& bareName,
                   Fill fill) {
    std::string name;
    try {
        name = director.initializeMetadataFilename(basePath, bareName);
        auto output = std::make_shared<zorvane::dataio::BufferedOutputStream>(
            std::make_shared<zorvane::dataio::FileOutputStream>(name));
        ClientDataVersion1Factory factory;
        std::unique_ptr<MetadataDataset> dataset = fill(factory);
        director.write(output, *dataset);
    } catch (const std::exception&) {
        if (!name.empty())
            std::remove(name.c_str());
    }
}

// A data file's metadata describes it as it was scanned against the case file
// of that load. When the case has changed since, so that a field no longer
// fits the size of its zone, the data file is scanned again: the scan then
// says what is wrong, as it does without a cache.
bool fieldsFitCase(const DataFile& dataFile, const CaseFile* caseFile) {
    if (caseFile == nullptr)
        return false;
    for (int32_t i = 0; i < dataFile.numDataFields; ++i) {
        const DataField& field = dataFile.dataFields[i];
        int64_t size = -1;
        for (int32_t z = 0; size < 0 && z < caseFile->numCellZones; ++z) {
            const CellZone& zone = caseFile->cellZones[z];
            if (zone.zoneId == field.zoneId)
                size = static_cast<int64_t>(zone.lastIndex) - zone.firstIndex + 1;
        }
        for (int32_t z = 0; size < 0 && z < caseFile->numFaceZones; ++z) {
            const FaceZone& zone = caseFile->faceZones[z];
            if (zone.zoneId == field.zoneId)
                size = static_cast<int64_t>(zone.lastIndex) - zone.firstIndex + 1;
        }
        // A zone the case does not hold (one of type 32, which its metadata
        // file leaves out) makes no host zone: its fields are passed over.
        if (size >= 0 && size != field.count)
            return false;
    }
    return true;
}

// Empties a data file that a restore filled, for a scan.
void clearRestoredDataFile(DataFile* dataFile) {
    DataFileFreeContents(dataFile);
    dataFile->machineConfig = MachineConfig{};
    dataFile->flowTime = 0.0;
    dataFile->deltaTimeSampled = 0.0;
    dataFile->additionalQuantities->setNames({});
}

// Steps 2 to 14 of the road: the checks, the parse, the scans. False when
// the load failed; messages of the parts are shown already, state.errorText
// holds the driver's own.
bool runLoad(ZorStringList instructions, LoadState& s) {
    LoadInstructions& li = s.li;
    if (!ZorUtilDataSetIsLODAllowed()) {
        ZorUtilDialogErrMsg(
            "The Fluent loader requires that load-on-demand must be turned on.  Please allow load-on-demand "
            "in "
            "your configuration file by removing the command '$!FileConfig LoadOnDemand {Allow = FALSE}' or "
            "by "
            "setting 'Allow = TRUE'.");
        return false;
    }
    if (!s.progress->begin("Loading Fluent data..."))
        return false;

    bool parsed;
    const char* first = ZorUtilStringListGetCount(instructions) >= 1
                            ? ZorUtilStringListGetRawStringPtr(instructions, 1)
                            : nullptr;
    if (first != nullptr && asciiEqualsIgnoringCase(first, "STANDARDSYNTAX")) {
        TaskProgress* bar = s.progress.get();
        parsed = LoadInstructionsParseStandard(instructions, &li,
                                               [bar](const std::string& text) { return bar->setText(text); });
        // Appending to nothing is a plain load.
        if (!ZorUtilDataSetIsAvailable())
            li.append = false;
    } else {
        parsed = LoadInstructionsParseOld(instructions, &li);
    }
    const bool ended = s.progress->end();
    if (!(ended && parsed))
        return false;
    if (!versionCanLoad(li))
        return false;

    // The solution: a load that replaces the data set throws any pre-scan away.
    if (SolutionTableCount > 0 && !li.append) {
        PurgeUnusedSolutions();
        FilesArePreScanned = false;
        s.solution = NewFluentSolution();
    } else if (FilesArePreScanned) {
        s.solution = &SolutionTable[SolutionTableCount - 1];
    } else {
        s.solution = NewFluentSolution();
    }
    if (s.solution == nullptr)
        return false;
    const uint32_t solutionId = s.solution->solutionId;

    s.zonesAdded = ZorUtilSetAlloc(true);
    if (li.append) {
        char* title = nullptr;
        if (ZorUtilDataSetGetInfo(&title, &s.oldNumZones, &s.oldNumVars) && s.oldNumZones > 0) {
            ZorUtilSetAddMember(s.zonesAdded, s.oldNumZones, true);
        }
        ZorUtilStringDealloc(&title);
    }

    const ZorIndex listCount = li.fileList != nullptr ? ZorUtilStringListGetCount(li.fileList) : 0;
    const int numFileSteps = static_cast<int>(listCount) + (li.caseFileName != nullptr ? 1 : 0) +
                             (li.dataFileName != nullptr ? 1 : 0);
    s.fileTask = s.progress->createChildTask(
        numFileSteps + (li.append && li.loadOption == LoadOption_MultipleCaseAndData ? 1 : 0));

    bool ok = true;
    if (li.loadOption == LoadOption_CaseAndData || li.loadOption == LoadOption_CaseOnly) {
        s.caseFile = FilesArePreScanned && s.solution->numCaseFiles > 0 ? &s.solution->caseFiles[0] : nullptr;
        ok = ScanCaseFile(&s.caseFile, s.solution, li.caseFileName, li.gridZones, li.zoneList, s.zonesAdded,
                          1, li.append, li.allZonesAsPolyhedral, li.averageToNodes, li.averagingMethod,
                          li.assignStrandIDs, li.addZonesToExistingStrands, 0, nullptr, li.unsteadyOption,
                          0.0, li.useMetadata, s.fileTask->createChildTask(1));
        s.solution = findSolution(solutionId);
        if (!ok)
            s.errorText = std::string("Error loading file ") + li.caseFileName;
        if (s.caseFile != nullptr)
            CaseFileRetain(s.caseFile);
    }

    std::string particleFileName;
    if (li.fileList != nullptr && ok) {
        for (ZorIndex i = 1; i <= listCount; ++i) {
            char* name = ZorUtilStringListGetString(li.fileList, i);
            if (name == nullptr) {
                ZorUtilDialogErrMsg("Out of memory while reading file list.");
                ok = false;
                break;
            }
            const bool isXml = hasSuffixInTable(name, ParticleSuffixes);
            if (isXml) {
                if (std::strlen(name) >= kMaxParticleFileName) {
                    ok = false;
                } else {
                    particleFileName = name;
                    std::strcpy(s.solution->particleFileName, name);
                }
            }
            ZorUtilStringDealloc(&name);
            if (isXml)
                break;
        }
    }

    if (ok && (li.loadOption == LoadOption_CaseAndData || li.loadOption == LoadOption_ResidualsOnly)) {
        DataFile* dataFile =
            FilesArePreScanned && s.solution->numDataFiles > 0 ? &s.solution->dataFiles[0] : nullptr;
        ok = ScanDataFile(&dataFile, s.solution, li.dataFileName, s.caseFile, li.gridZones, li.loadOption,
                          li.zoneList, s.zonesAdded, li.varNameList, false, li.allZonesAsPolyhedral,
                          li.includeParticleData, li.assignStrandIDs, nullptr, 0, li.averageToNodes,
                          li.averagingMethod, li.unsteadyOption, 0.0, li.useMetadata, nullptr,
                          particleFileName.c_str(), numFileSteps, li.loadAdditionalQuantities,
                          s.fileTask->createChildTask(1));
        s.solution = findSolution(solutionId);
        if (!ok)
            s.errorText = std::string("Error loading file ") + li.dataFileName;
    }

    if (s.caseFile != nullptr) {
        CaseFileRelease(s.caseFile);
        s.caseFile = nullptr;
    }
    if (!ok)
        return false;

    setDatasetAuxData();
    return true;
}

}  // namespace

void SplitPathAndName(const char* fileName, std::string* basePath, std::string* bareName) {
    char* base = ZorUtilGetBasePath(fileName);
    *basePath = base != nullptr ? base : "";
    ZorUtilStringDealloc(&base);
    const char* bare = fileName;
    if (const char* slash = std::strrchr(bare, '\\'))
        bare = slash + 1;
    if (const char* slash = std::strrchr(bare, '/'))
        bare = slash + 1;
    *bareName = bare;
}

bool ScanCaseFile(CaseFile** caseFile, FluentSolution* solution, const char* fileName, int32_t gridZones,
                  ZorSet zoneList, ZorSet zonesAdded, int32_t fileIndex, bool append, bool allPolyZones,
                  bool averageToNodes, int32_t averagingMethod, bool assignStrandIDs,
                  bool addZonesToExistingStrands, int32_t strandBase, int32_t* zoneOffset,
                  int32_t unsteadyOption, double solutionTime, bool useMetadata,
                  std::unique_ptr<TaskProgress> task) {
    std::string basePath, bareName;
    SplitPathAndName(fileName, &basePath, &bareName);
    // A metadata file describes the whole file: a load of a part of it neither reads nor writes one.
    const bool restrictedLoad =
        zoneList != nullptr || gridZones != GridZones_CellsAndBoundaries || allPolyZones;

    ZorUtilDataLoadBegin();
    task->setNumSteps(3);
    const bool began = task->begin("Scanning Fluent case file...");
    MetadataDirector director;
    bool fromMetadata = false;
    bool ok = false;
    if (!FilesArePreScanned) {
        if (began) {
            *caseFile = FluentSolutionNewCaseFile(solution, fileName);
            if (*caseFile != nullptr) {
                bool scan = true;
                if (useMetadata && !restrictedLoad && director.metadataFileAvailable(basePath, bareName)) {
                    switch (readMetadata(director, basePath, bareName,
                                         [caseFile](const MetadataDataset& dataset) {
                                             zorutildataio::restoreCaseFile(dataset, **caseFile);
                                         })) {
                        case MetadataRead::Restored:
                            scan = false;
                            fromMetadata = true;
                            ok = true;
                            break;
                        case MetadataRead::OtherVersion:
                            break;  // scanned as if there were no metadata file; the write replaces it
                        case MetadataRead::Failed:
                            ZorUtilDialogErrMsg((std::string("An error occurred while loading ") + fileName +
                                                 " using its metadata file. " +
                                                 "Please remove the metadata file located at " +
                                                 director.metadataFilename(basePath, bareName) +
                                                 " and, if the error persists, contact " +
                                                 "Technical Support or refer to the documentation on how to "
                                                 "disable metadata files in " +
                                                 "the Fluent loader.")
                                                    .c_str());
                            scan = false;
                            break;
                    }
                }
                if (scan) {
                    ok = CaseFileScan(*caseFile, allPolyZones, task->createChildTask(1),
                                      director.variableMinMaxDeferredWriterFactory());
                }
            }
        }
    } else {
        ok = began && !task->isInterrupted();
    }
    if (ok) {
        // The running strand id of the load; a first case starts from none.
        int32_t firstStrand = 0;
        int32_t* strandId = zoneOffset != nullptr ? zoneOffset : &firstStrand;
        ok = CreateZorvaneGridZones(solution, *caseFile, gridZones, zoneList, zonesAdded, fileIndex, append,
                                    allPolyZones, averageToNodes, averagingMethod, assignStrandIDs,
                                    addZonesToExistingStrands, strandBase, strandId, unsteadyOption,
                                    solutionTime, fromMetadata, task->createChildTask(1));
        if (ok)
            setBoundaryAuxData(*caseFile);
    }
    if (ok && useMetadata && !fromMetadata && !restrictedLoad) {
        CaseFile* record = *caseFile;
        writeMetadata(director, basePath, bareName, [record](const ClientDataVersion1Factory& factory) {
            std::unique_ptr<MetadataDataset> dataset = zorutildataio::datasetFromCaseFile(*record, factory);
            // Cell zones of type 32 are left out: no list shows them and no host zone is made of
            // them, so a restored case does without them.
            for (int32_t i = 0; i < record->numCellZones; ++i) {
                if (record->cellZones[i].zoneType == 32)
                    continue;
                zorutildataio::convertCellZone(record->cellZones[i], record->numDimensions, *dataset,
                                               factory);
            }
            for (int32_t i = 0; i < record->numFaceZones; ++i) {
                zorutildataio::convertFaceZone(record->faceZones[i], record->numDimensions, *dataset,
                                               factory);
            }
            return dataset;
        });
    }
    ok = task->end() && ok;
    ZorUtilDataLoadEnd();
    return ok;
}

bool ScanDataFile(DataFile** dataFile, FluentSolution* solution, const char* fileName, CaseFile* caseFile,
                  int32_t gridZones, int32_t loadOption, ZorSet zoneList, ZorSet /*zonesAdded*/,
                  ZorStringList varNameList, bool isRepeatDataFile, bool allPolyZones,
                  bool includeParticleData, bool /*assignStrandIDs*/, int32_t* zoneOffset,
                  int32_t /*ordinal*/, bool averageToNodes, int32_t averagingMethod, int32_t unsteadyOption,
                  double solutionTime, bool useMetadata, int32_t* /*particleStrand*/,
                  const char* particleFileName, int32_t /*numFileSteps*/, bool loadAdditionalQuantities,
                  std::unique_ptr<TaskProgress> task) {
    const bool particleFile = particleFileName != nullptr && particleFileName[0] != '\0';
    const bool restrictedLoad = zoneList != nullptr || varNameList != nullptr ||
                                gridZones != GridZones_CellsAndBoundaries || allPolyZones ||
                                loadOption == LoadOption_ResidualsOnly || includeParticleData || particleFile;
    std::string basePath, bareName;
    SplitPathAndName(fileName, &basePath, &bareName);
    task->setNumSteps(5);
    const bool began = task->begin("Scanning Fluent data file...");
    MetadataDirector director;
    bool fromMetadata = false;
    bool ok = false;
    if (!FilesArePreScanned) {
        if (began) {
            *dataFile = FluentSolutionNewDataFile(solution, fileName, loadAdditionalQuantities);
            if (*dataFile != nullptr) {
                bool scan = true;
                if (useMetadata && !restrictedLoad && director.metadataFileAvailable(basePath, bareName)) {
                    switch (readMetadata(director, basePath, bareName,
                                         [dataFile](const MetadataDataset& dataset) {
                                             zorutildataio::restoreDataFile(dataset, **dataFile);
                                         })) {
                        case MetadataRead::Restored:
                            if (fieldsFitCase(**dataFile, caseFile)) {
                                scan = false;
                                fromMetadata = true;
                                ok = true;
                            } else {
                                clearRestoredDataFile(*dataFile);
                            }
                            break;
                        case MetadataRead::OtherVersion:
                            break;  // scanned as if there were no metadata file; the write replaces it
                        case MetadataRead::Failed:
                            ZorUtilDialogErrMsg((std::string("An error ocurred while loading ") + fileName +
                                                 " using its metadata file. " +
                                                 "Please remove the metadata file located at " +
                                                 director.metadataFilename(basePath, bareName) +
                                                 " and, if the error persists, contact " +
                                                 "Technical Support or refer to the documentation on how to "
                                                 "disable metadata files in " +
                                                 "the Fluent loader.")
                                                    .c_str());
                            scan = false;
                            break;
                    }
                }
                if (scan) {
                    ok = DataFileScan(solution, *dataFile, caseFile, static_cast<LoadOption>(loadOption),
                                      task->createChildTask(1),
                                      director.variableMinMaxDeferredWriterFactory());
                }
            }
        }
    } else {
        ok = began && !task->isInterrupted();
    }

    // A later time step of the grid loaded already: its zones follow the ones the case put in.
    if (ok && isRepeatDataFile && zoneOffset != nullptr) {
        if (zoneList != nullptr && !ZorUtilSetIsEmpty(zoneList)) {
            *zoneOffset += static_cast<int32_t>(ZorUtilSetGetMemberCount(zoneList));
        } else {
            for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
                const CellZone& zone = caseFile->cellZones[i];
                if ((gridZones == GridZones_CellsAndBoundaries || gridZones == GridZones_CellsOnly ||
                     gridZones == GridZones_SelectedZones) &&
                    zone.zoneType != 32 &&
                    (zoneList == nullptr || ZorUtilSetIsMember(zoneList, zone.selectionIndex)))
                    *zoneOffset += 1;
            }
            for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
                const FaceZone& zone = caseFile->faceZones[i];
                if ((gridZones == GridZones_CellsAndBoundaries || gridZones == GridZones_BoundariesOnly ||
                     gridZones == GridZones_SelectedZones) &&
                    isDisplayedBoundary(zone.boundaryType) &&
                    (zoneList == nullptr || ZorUtilSetIsMember(zoneList, zone.selectionIndex)))
                    *zoneOffset += 1;
            }
        }
    }

    if (loadOption == LoadOption_ResidualsOnly) {
        // The residual data set is not made by this version (the load is refused ahead of the scans).
        FluentResidualsClear();
        ZorUtilDialogErrMsg("Loading residuals is not available in this version of the Fluent loader.");
        return false;
    }

    if (ok && isRepeatDataFile)
        ok = CopyZonesForTimeStep(caseFile) && task->end();

    const int32_t offset = zoneOffset != nullptr ? *zoneOffset : 0;
    if (ok) {
        ok = addDataFileVariables(solution, *dataFile, caseFile, varNameList, allPolyZones, averageToNodes,
                                  averagingMethod, offset, fromMetadata, task->createChildTask(1));
    }
    if (ok) {
        if (unsteadyOption == UnsteadyOption_ReadTimeFromDataFiles) {
            setZoneSolutionTimes(caseFile, offset, (*dataFile)->flowTime);
            setBoundaryAuxData(caseFile);
        } else if (unsteadyOption == UnsteadyOption_ApplyConstantTimeInterval && isRepeatDataFile) {
            setZoneSolutionTimes(caseFile, offset, solutionTime);
            setBoundaryAuxData(caseFile);
        }
    }

    // Particle zones are not made by this version.
    if (ok && (zoneList != nullptr || includeParticleData || particleFile) &&
        ((*dataFile)->numParticles > 0 || particleFile)) {
        ZorUtilDialogErrMsg("Loading particle data is not available in this version of the Fluent loader.");
        ok = false;
    }

    // The field table is sorted now, as a restore gives it back.
    if (ok && useMetadata && !fromMetadata && !restrictedLoad) {
        DataFile* record = *dataFile;
        writeMetadata(director, basePath, bareName, [record](const ClientDataVersion1Factory& factory) {
            return zorutildataio::datasetFromDataFile(*record, factory);
        });
    }
    ok = task->end() && ok;
    return ok;
}

bool LoaderCallback(ZorStringList instructions) {
    ZorUtilLockStart(AddOnID);
    LoadState s;
    LoadInstructionsSetDefaults(&s.li);
    s.progress = zorvane::zorutilutil::createTaskProgressBar(2);

    bool ok = runLoad(instructions, s);

    s.fileTask.reset();
    s.progress.reset();
    if (ok) {
        ZorUtilPleaseWait("Loading Fluent data...", true);
        if (s.li.loadOption != LoadOption_ResidualsOnly && !s.li.append) {
            const FluentSolution* solution = s.solution;
            const bool twoD = solution != nullptr && solution->numCaseFiles > 0 &&
                              solution->caseFiles[solution->numCaseFiles - 1].numDimensions == 2;
            ZorUtilFrameSetPlotType(twoD ? ZorPlotType_Cartesian2D : ZorPlotType_Cartesian3D);
        }
        ZorUtilPleaseWait(nullptr, false);
        ZorUtilImportSetLoaderInstr(kLoaderName, instructions);
    } else {
        if (!s.li.append)
            ZorUtilFrameReset(ZorUtilFrameGetUniqueID());
        if (!ZorUtilInterruptCheck() && !s.errorText.empty())
            ZorUtilDialogErrMsg(s.errorText.c_str());
    }
    LoadInstructionsFree(&s.li);

    if (s.zonesAdded != nullptr) {
        if (s.li.append)
            ZorUtilSetRemoveMember(s.zonesAdded, s.oldNumZones);
        char* title = nullptr;
        ZorIndex numZones = 0, numVars = 0;
        if (ZorUtilDataSetIsAvailable() && ZorUtilDataSetGetInfo(&title, &numZones, &numVars)) {
            ZorSet varsAdded = ZorUtilSetAlloc(true);
            for (ZorIndex v = s.oldNumVars + 1; v <= numVars; ++v)
                ZorUtilSetAddMember(varsAdded, v, true);
            if (!ZorUtilSetIsEmpty(varsAdded)) {
                ZorUtilStateChanged(ZorStateChange_VarsAdded, reinterpret_cast<ZorArbParam>(varsAdded));
            }
            ZorUtilSetDealloc(&varsAdded);
        }
        ZorUtilStringDealloc(&title);
        if (ok) {
            ZorUtilStateChanged(ZorStateChange_ZonesAdded, reinterpret_cast<ZorArbParam>(s.zonesAdded));
            const int32_t plotType = ZorUtilFrameGetPlotType();
            if (plotType == ZorPlotType_Cartesian3D || plotType == ZorPlotType_Cartesian2D) {
                ZorUtilZoneStyleApplyAuto(s.zonesAdded);
            }
        }
        ZorUtilSetDealloc(&s.zonesAdded);
    }
    ZorUtilLockFinish(AddOnID);
    return ok;
}
