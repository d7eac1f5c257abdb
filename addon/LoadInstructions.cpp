// Reading and checking the instruction list of a load.
#include "addon/LoadInstructions.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "addon/FileList.h"
#include "addon/FluentSolution.h"
#include "fluentio/SectionReader.h"
#include "host/ZorUtil.h"
#include "support/AsciiCase.h"
#include "support/CommandStrings.h"

const char* const LoadOptionNames[4] = {"CaseAndData", "CaseOnly", "ResidualsOnly", "MultipleCaseAndData"};
const char* const OldLoadOptionNames[3] = {"GridAndSolution", "GridOnly", "ResidualsOnly"};
const char* const GridZonesNames[4] = {"CellsAndBoundaries", "CellsOnly", "BoundariesOnly", "SelectedZones"};
const char* const AveragingMethodNames[2] = {"Arithmetic", "Laplacian"};
const char* const UnsteadyOptionNames[2] = {"ReadTimeFromDataFiles", "ApplyConstantTimeInterval"};

// Message texts are built in buffers of this size.
constexpr size_t kMessageSize = 4097;

void LoadInstructionsSetDefaults(LoadInstructions* instructions) {
    instructions->append = false;
    instructions->fileList = nullptr;
    instructions->saveUncompressedFiles = false;
    instructions->loadOption = LoadOption_Unset;
    instructions->caseFileName = nullptr;
    instructions->gridZones = GridZones_Unset;
    instructions->dataFileName = nullptr;
    instructions->includeParticleData = false;
    instructions->allZonesAsPolyhedral = false;
    instructions->averageToNodes = true;
    instructions->averagingMethod = AveragingMethod_Arithmetic;
    instructions->zoneList = nullptr;
    instructions->varNameList = nullptr;
    instructions->unsteadyOption = UnsteadyOption_ApplyConstantTimeInterval;
    instructions->timeInterval = 0.0;
    instructions->assignStrandIDs = false;
    instructions->addZonesToExistingStrands = false;
    instructions->useMetadata = true;
    instructions->loadAdditionalQuantities = false;
}

void LoadInstructionsFree(LoadInstructions* instructions) {
    ZorUtilStringDealloc(&instructions->caseFileName);
    ZorUtilStringDealloc(&instructions->dataFileName);
    if (instructions->fileList != nullptr) {
        ZorUtilStringListDealloc(&instructions->fileList);
    }
    if (instructions->zoneList != nullptr) {
        ZorUtilSetDealloc(&instructions->zoneList);
    }
    if (instructions->varNameList != nullptr) {
        ZorUtilStringListDealloc(&instructions->varNameList);
    }
}

// A list entry as text; a null entry reads as "".
static const char* entryText(ZorStringList list, ZorIndex index) {
    const char* text = ZorUtilStringListGetRawStringPtr(list, index);
    return text != nullptr ? text : "";
}

// A host string holding a copy of text; null when memory runs out.
static char* copyToHostString(const char* text) {
    size_t length = strlen(text);
    char* copy = ZorUtilStringAlloc(static_cast<int64_t>(length), "instruction string");
    if (copy != nullptr) {
        memcpy(copy, text, length + 1);
    }
    return copy;
}

// Shows a box of type 2 with a text holding one %s.
static void showIgnoredValue(const char* format, const char* value) {
    char message[kMessageSize];
    snprintf(message, sizeof(message), format, value);
    ZorUtilDialogMessageBox(message, ZorMessageBoxType_Information);
}

// Shows an error with a text holding one %s.
static void showError(const char* format, const char* value) {
    char message[kMessageSize];
    snprintf(message, sizeof(message), format, value);
    ZorUtilDialogErrMsg(message);
}

// The index of value among count names, without regard to case; -1 when none.
static int32_t enumerationIndex(const char* value, const char* const* names, int32_t count) {
    for (int32_t i = 0; i < count; ++i) {
        if (asciiEqualsIgnoringCase(value, names[i])) {
            return i;
        }
    }
    return -1;
}

void parseBoolean(bool& target, const char* value) {
    static const char* const words[] = {"Yes", "No", "True", "False", "On", "Off"};
    if (value == nullptr) {
        value = "";
    }
    int32_t place = enumerationIndex(value, words, 6);
    if (place < 0) {
        showIgnoredValue("Fluent data loader: Unrecognized boolean value: '%s'. Ignoring...", value);
        return;
    }
    target = place % 2 == 0;
}

// Sets target to the place of value among count names, compared without
// regard to case. Any other value leaves target as it is and shows a box with
// `format`, holding one %s for the value; that is no failure.
template <typename Enumeration>
static void parseEnumeration(Enumeration& target, const char* value, const char* const* names, int32_t count,
                             const char* format) {
    int32_t place = enumerationIndex(value, names, count);
    if (place >= 0) {
        target = static_cast<Enumeration>(place);
    } else {
        showIgnoredValue(format, value);
    }
}

// Shows a key that neither syntax knows; that is no failure.
static void showUnknownKey(const char* key) {
    showIgnoredValue("Fluent data loader:\nUnrecognized parameter '%s'.\nIgnoring...", key);
}

// Puts a host string copy of value in name, freeing the name it held. False
// when memory runs out.
[[nodiscard]] static bool replaceName(char*& name, const char* value) {
    ZorUtilStringDealloc(&name);
    name = copyToHostString(value);
    return name != nullptr;
}

// Walks the (key, value) pairs of a list, the first key at string `first`
// (strings are numbered from 1), while the key's place is below the count: a
// key in the last place has no value and is not read. readPair(key, value,
// next) reads one pair; next is the place of the following key, which the
// reader may move on past strings it took. False when a reader said false.
template <typename ReadPair>
[[nodiscard]] static bool walkPairs(ZorStringList instructions, ZorIndex first, ReadPair readPair) {
    const ZorIndex count = ZorUtilStringListGetCount(instructions);
    ZorIndex index = first;
    while (index < count) {
        const char* key = entryText(instructions, index);
        const char* value = entryText(instructions, index + 1);
        index += 2;
        if (!readPair(key, value, index)) {
            return false;
        }
    }
    return true;
}

// Load options that read a case file, and those that read a data file.
static bool needsCaseFile(LoadOption loadOption) {
    return loadOption == LoadOption_CaseAndData || loadOption == LoadOption_CaseOnly;
}
static bool needsDataFile(LoadOption loadOption) {
    return loadOption == LoadOption_CaseAndData || loadOption == LoadOption_ResidualsOnly;
}

// The checks both syntaxes make after the walk: a valid load option, and the
// name of each file it reads, since without one nothing could be opened.
[[nodiscard]] static bool checkLoadOptionAndNames(LoadOption loadOption, const char* caseFileName,
                                                  const char* dataFileName) {
    if (loadOption < LoadOption_CaseAndData || loadOption > LoadOption_MultipleCaseAndData) {
        ZorUtilDialogErrMsg(
            "Invalid or missing setting for LoadOption in\nthe Fluent Data Loader instruction string.");
        return false;
    }
    if (needsCaseFile(loadOption) && caseFileName == nullptr) {
        ZorUtilDialogErrMsg(
            "The instruction string for the Fluent Data Loader\nis missing the name of the case file.");
        return false;
    }
    if (needsDataFile(loadOption) && dataFileName == nullptr) {
        ZorUtilDialogErrMsg(
            "The instruction string for the Fluent Data Loader\nis missing the name of the data file.");
        return false;
    }
    return true;
}

// Uncompresses *name, a .gz case or data file name, and puts the name of the
// plain copy in its place.
static bool replaceByUncompressedFile(char*& name, bool& saveUncompressedFiles, bool& askSave,
                                      bool& overwrite, bool& askOverwrite,
                                      const ProgressCallback& progressCallback) {
    char* uncompressedName = nullptr;
    if (!uncompressFluentFile(name, &uncompressedName, saveUncompressedFiles, askSave, overwrite,
                              askOverwrite, progressCallback)) {
        return false;
    }
    ZorUtilStringDealloc(&name);
    name = uncompressedName;
    return true;
}

bool ParseAndCheckInstructions(ZorStringList instructions, bool& append, ZorStringList& fileList,
                               bool& saveUncompressedFiles, LoadOption& loadOption, char*& caseFileName,
                               GridZones& gridZones, char*& dataFileName, bool& includeParticleData,
                               bool& allZonesAsPolyhedral, bool& averageToNodes,
                               AveragingMethod& averagingMethod, ZorSet& zoneList, ZorStringList& varNameList,
                               UnsteadyOption& unsteadyOption, double& timeInterval, bool& assignStrandIDs,
                               bool& addZonesToExistingStrands, bool& useMetadata,
                               bool& loadAdditionalQuantities, ProgressCallback progressCallback) {
    // Owned here, destroyed when the function returns.
    const ProgressCallback progress = std::move(progressCallback);

    append = false;
    fileList = nullptr;
    saveUncompressedFiles = false;
    gridZones = GridZones_CellsAndBoundaries;
    averageToNodes = false;
    averagingMethod = AveragingMethod_Arithmetic;
    unsteadyOption = UnsteadyOption_ReadTimeFromDataFiles;
    timeInterval = 1.0;

    // The questions about uncompressed copies are asked once for the whole
    // load, and not at all after a pre-scan, which asked them already.
    bool askSave = !filesArePreScanned();
    bool overwrite = true;
    bool askOverwrite = !filesArePreScanned();
    bool saveKeyPresent = false;

    const ZorIndex count = ZorUtilStringListGetCount(instructions);
    // The walk starts behind the marker and the version.
    const bool walked = walkPairs(instructions, 3, [&](const char* key, const char* value, ZorIndex& index) {
        if (asciiEqualsIgnoringCase(key, "Append")) {
            parseBoolean(append, value);
        } else if (asciiEqualsIgnoringCase(key, "LoadOption")) {
            parseEnumeration(
                loadOption, value, LoadOptionNames, 4,
                "Fluent data loader: Unrecognized value for parameter LoadOption '%s'.Ignoring...");
        } else if (asciiEqualsIgnoringCase(key, "FILENAME_CaseFile")) {
            // The first name counts; a later one is shown and passed over.
            if (caseFileName != nullptr) {
                ZorUtilDialogErrMsg("Multiple FILENAME_CaseFile parameters.\nDuplicates will be ignored.");
            } else if (!replaceName(caseFileName, value)) {
                return false;
            }
        } else if (asciiEqualsIgnoringCase(key, "GridZones")) {
            parseEnumeration(
                gridZones, value, GridZonesNames, 4,
                "Fluent data loader: Unrecognized value for parameter GridZones '%s'.Ignoring...");
        } else if (asciiEqualsIgnoringCase(key, "FILENAME_DataFile")) {
            if (dataFileName != nullptr) {
                ZorUtilDialogErrMsg("Multiple FILENAME_DataFile parameters.\nDuplicates will be ignored.");
            } else if (!replaceName(dataFileName, value)) {
                return false;
            }
        } else if (asciiEqualsIgnoringCase(key, "IncludeParticleData")) {
            parseBoolean(includeParticleData, value);
        } else if (asciiEqualsIgnoringCase(key, "FILELIST_Files")) {
            // The value is the number of files, and that many names follow it.
            int numFiles = atoi(value);
            if (numFiles < 1) {
                showError("Fluent data loader: Bad value for number of files in file list: %s.", value);
                return false;
            }
            // At least one string must stand behind the last name: a list that
            // ends with its last file name is refused.
            if (numFiles + index > count) {
                char message[kMessageSize];
                snprintf(message, sizeof(message),
                         "Fluent data loader: Expected %s files in file list, found only %d.", value,
                         static_cast<int>(count - index + 1));
                ZorUtilDialogErrMsg(message);
                return false;
            }
            if (fileList != nullptr) {
                ZorUtilDialogErrMsg(
                    "Multiple FILELIST_Files parameters encountered.\nDuplicates will be ignored.");
            } else {
                fileList = ZorUtilStringListAlloc();
                if (fileList == nullptr) {
                    return false;
                }
                for (ZorIndex k = index; k < index + numFiles; ++k) {
                    if (!ZorUtilStringListAppendString(fileList, entryText(instructions, k))) {
                        return false;
                    }
                }
            }
            index += numFiles;
        } else if (asciiEqualsIgnoringCase(key, "AverageToNodes")) {
            parseBoolean(averageToNodes, value);
        } else if (asciiEqualsIgnoringCase(key, "AveragingMethod")) {
            parseEnumeration(averagingMethod, value, AveragingMethodNames, 2,
                             "Fluent data loader:\nUnrecognized value for parameter AveragingMethod "
                             "'%s'.\nIgnoring...");
        } else if (asciiEqualsIgnoringCase(key, "ZoneList")) {
            // A later ZoneList replaces an earlier one.
            if (zoneList != nullptr) {
                ZorUtilSetDealloc(&zoneList);
            }
            if (!stringToSet(value, zoneList, false)) {
                showError("Bad value for ZoneList set: '%s'.", value);
                return false;
            }
        } else if (asciiEqualsIgnoringCase(key, "VarNameList")) {
            if (varNameList != nullptr) {
                ZorUtilStringListDealloc(&varNameList);
            }
            varNameList = ZorUtilStringListFromNLString(value);
            if (varNameList == nullptr) {
                showError("Bad value for VarNameList: '%s'.", value);
                return false;
            }
        } else if (asciiEqualsIgnoringCase(key, "IsUnsteady")) {
            bool isUnsteady = unsteadyOption != UnsteadyOption_ReadTimeFromDataFiles;
            parseBoolean(isUnsteady, value);
            unsteadyOption =
                isUnsteady ? UnsteadyOption_ApplyConstantTimeInterval : UnsteadyOption_ReadTimeFromDataFiles;
        } else if (asciiEqualsIgnoringCase(key, "UnsteadyOption")) {
            parseEnumeration(
                unsteadyOption, value, UnsteadyOptionNames, 2,
                "Fluent data loader: Unrecognized value for parameter UnsteadyOption '%s'.Ignoring...");
        } else if (asciiEqualsIgnoringCase(key, "TimeInterval")) {
            // Read whatever the unsteady option, so a bad number fails even
            // where it would not be used.
            const char* cursor = value;
            if (!readDouble(cursor, timeInterval)) {
                showError("Bad value for TimeInterval: '%s'.", value);
                return false;
            }
        } else if (asciiEqualsIgnoringCase(key, "AssignStrandIDs")) {
            parseBoolean(assignStrandIDs, value);
        } else if (asciiEqualsIgnoringCase(key, "AddZonesToExistingStrands")) {
            parseBoolean(addZonesToExistingStrands, value);
        } else if (asciiEqualsIgnoringCase(key, "AllPolyZones")) {
            parseBoolean(allZonesAsPolyhedral, value);
        } else if (asciiEqualsIgnoringCase(key, "SaveUncompressedFiles")) {
            parseBoolean(saveUncompressedFiles, value);
            saveKeyPresent = true;
            askSave = false;
        } else if (asciiEqualsIgnoringCase(key, "USE_METADATA")) {
            parseBoolean(useMetadata, value);
        } else if (asciiEqualsIgnoringCase(key, "LoadAdditionalQuantities")) {
            parseBoolean(loadAdditionalQuantities, value);
        } else {
            showUnknownKey(key);
        }
        return true;
    });
    if (!walked || !checkLoadOptionAndNames(loadOption, caseFileName, dataFileName)) {
        return false;
    }
    if (loadOption == LoadOption_MultipleCaseAndData) {
        if (fileList == nullptr) {
            ZorUtilDialogErrMsg(
                "The instruction string for the Fluent Data Loader\nis missing the list of files to load.");
            return false;
        }
        if (!ClassifyFileList(fileList, append, saveUncompressedFiles, askSave, overwrite, askOverwrite,
                              progress)) {
            return false;
        }
    }
    if (needsCaseFile(loadOption) && isGzipFileName(caseFileName)) {
        if (!replaceByUncompressedFile(caseFileName, saveUncompressedFiles, askSave, overwrite, askOverwrite,
                                       progress)) {
            return false;
        }
    }
    if (needsDataFile(loadOption) && isGzipFileName(dataFileName)) {
        if (!replaceByUncompressedFile(dataFileName, saveUncompressedFiles, askSave, overwrite, askOverwrite,
                                       progress)) {
            return false;
        }
    }

    // The answer goes into the list, so that a layout repeats the load
    // without the question. The list keeps the compressed names.
    if (!saveKeyPresent) {
        if (!ZorUtilStringListAppendString(instructions, "SaveUncompressedFiles") ||
            !ZorUtilStringListAppendString(instructions, saveUncompressedFiles ? "Yes" : "No")) {
            return false;
        }
    }
    return true;
}

bool ParseOldInstructions(ZorStringList instructions, LoadOption& loadOption, char*& caseFileName,
                          GridZones& gridZones, char*& dataFileName) {
    gridZones = GridZones_CellsAndBoundaries;
    // The pairs start at the first string; a later name replaces an earlier one.
    const bool walked = walkPairs(instructions, 1, [&](const char* key, const char* value, ZorIndex&) {
        if (asciiEqualsIgnoringCase(key, "-LoadOption")) {
            parseEnumeration(
                loadOption, value, OldLoadOptionNames, 3,
                "Fluent data loader:\nUnrecognized value for parameter -LoadOption '%s'.\nIgnoring...");
        } else if (asciiEqualsIgnoringCase(key, "-CaseFile")) {
            return replaceName(caseFileName, value);
        } else if (asciiEqualsIgnoringCase(key, "-GridZones")) {
            parseEnumeration(
                gridZones, value, GridZonesNames, 4,
                "Fluent data loader:\nUnrecognized value for parameter -GridZones '%s'.\nIgnoring...");
        } else if (asciiEqualsIgnoringCase(key, "-DataFile")) {
            return replaceName(dataFileName, value);
        } else {
            showUnknownKey(key);
        }
        return true;
    });
    return walked && checkLoadOptionAndNames(loadOption, caseFileName, dataFileName);
}
