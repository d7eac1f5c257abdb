// Classification and ordering of the file list of a MultipleCaseAndData load.
#include "addon/FileList.h"

#include <cstring>
#include <sstream>
#include <string>
#include <utility>

#include "fluentio/SectionReader.h"
#include "host/ZorUtil.h"
#include "support/AsciiCase.h"

const char* const CaseSuffixes[] = {".cas", ".cas.gz", nullptr};
const char* const DataSuffixes[] = {".dat", ".dat.gz", ".fdat", ".fdat.gz", nullptr};
const char* const ParticleSuffixes[] = {".xml", nullptr};

bool hasSuffixInTable(const char* fileName, const char* const* table) {
    size_t nameLength = strlen(fileName);
    for (; *table != nullptr; ++table) {
        size_t suffixLength = strlen(*table);
        if (suffixLength <= nameLength &&
            asciiEqualsIgnoringCaseN(fileName + nameLength - suffixLength, *table, suffixLength)) {
            return true;
        }
    }
    return false;
}

namespace {

constexpr const char* kOutOfMemory = "Out of memory while processing file list.";

// The two working lists of the ordering: the names to load and, in step with
// them, the names the user gave, by which every kind is told. Both are freed
// on every road.
struct WorkingLists {
    ZorStringList work = nullptr;
    ZorStringList given = nullptr;
    ~WorkingLists() {
        if (work != nullptr) {
            ZorUtilStringListDealloc(&work);
        }
        if (given != nullptr) {
            ZorUtilStringListDealloc(&given);
        }
    }
};

// Whether the given name at a place of the list is of a kind.
bool givenNameHasSuffix(ZorStringList given, ZorIndex index, const char* const* table) {
    const char* name = ZorUtilStringListGetRawStringPtr(given, index);
    return name != nullptr && hasSuffixInTable(name, table);
}

// The first place whose given name is of the kind; 0 when none.
ZorIndex firstOfKind(ZorStringList given, const char* const* table) {
    ZorIndex count = ZorUtilStringListGetCount(given);
    for (ZorIndex k = 1; k <= count; ++k) {
        if (givenNameHasSuffix(given, k, table)) {
            return k;
        }
    }
    return 0;
}

// Appends the name at a place of the work list to fileList and removes the
// place from both working lists.
bool moveFile(WorkingLists& lists, ZorIndex index, ZorStringList fileList) {
    char* name = ZorUtilStringListGetString(lists.work, index);
    if (name == nullptr) {
        return false;
    }
    bool appended = ZorUtilStringListAppendString(fileList, name);
    ZorUtilStringDealloc(&name);
    if (!appended) {
        return false;
    }
    ZorUtilStringListRemoveString(lists.work, index);
    ZorUtilStringListRemoveString(lists.given, index);
    return true;
}

// The case file's name without its suffix: the first suffix of the case table
// that is shorter than the name and ends it is cut.
std::string casePrefix(const std::string& caseName) {
    for (const char* const* suffix = CaseSuffixes; *suffix != nullptr; ++suffix) {
        size_t suffixLength = strlen(*suffix);
        if (suffixLength < caseName.size() &&
            asciiEqualsIgnoringCaseN(caseName.c_str() + caseName.size() - suffixLength, *suffix,
                                     suffixLength)) {
            return caseName.substr(0, caseName.size() - suffixLength);
        }
    }
    return caseName;
}

}  // namespace

bool ClassifyFileList(ZorStringList fileList, bool append, bool& saveUncompressedFiles, bool& askSave,
                      bool& overwrite, bool& askOverwrite, ProgressCallback progressCallback) {
    // Owned here, destroyed when the function returns.
    const ProgressCallback progress = std::move(progressCallback);

    WorkingLists lists;
    lists.given = ZorUtilStringListCopy(fileList);
    if (lists.given == nullptr) {
        ZorUtilDialogErrMsg(kOutOfMemory);
        return false;
    }

    // Classification: every name is of one kind, compressed files counting by
    // the names of their plain copies.
    int caseFiles = 0;
    int dataFiles = 0;
    int xmlFiles = 0;
    const ZorIndex count = ZorUtilStringListGetCount(fileList);
    ZorIndex index = 1;
    while (index <= count) {
        char* name = ZorUtilStringListGetString(fileList, index);
        if (name == nullptr) {
            ZorUtilDialogErrMsg(kOutOfMemory);
            return false;
        }
        if (name[0] == '\0') {
            ZorUtilStringDealloc(&name);
            ZorUtilDialogErrMsg("The file list contains an empty file name.");
            return false;
        }
        if (isCompressedFileName(name)) {
            char* uncompressedName = nullptr;
            bool uncompressed = uncompressFluentFile(name, &uncompressedName, saveUncompressedFiles, askSave,
                                                     overwrite, askOverwrite, progress);
            ZorUtilStringDealloc(&name);
            if (!uncompressed) {
                return false;
            }
            bool replaced = ZorUtilStringListSetString(fileList, index, uncompressedName);
            ZorUtilStringDealloc(&uncompressedName);
            if (!replaced) {
                ZorUtilDialogErrMsg(kOutOfMemory);
                return false;
            }
            continue;  // the same place again, with the plain copy's name
        }
        if (hasSuffixInTable(name, CaseSuffixes)) {
            ++caseFiles;
        } else if (hasSuffixInTable(name, DataSuffixes)) {
            ++dataFiles;
        } else if (hasSuffixInTable(name, ParticleSuffixes)) {
            ++xmlFiles;
            if (xmlFiles > 1) {
                ZorUtilStringDealloc(&name);
                ZorUtilDialogErrMsg(
                    "Fluent data loader:\nMore than one XML files were selected. Only one XML should be "
                    "specified "
                    "for particle data.");
                return false;
            }
        } else {
            std::ostringstream message;
            message
                << "Fluent data loader:\nUnable to determine the type of file " << name
                << ". For loading multiple files, each file must end in the suffix 'cas', 'dat', 'cas.gz', "
                   "'dat.gz' or 'xml'.";
            ZorUtilStringDealloc(&name);
            ZorUtilDialogErrMsg(message.str().c_str());
            return false;
        }
        ZorUtilStringDealloc(&name);
        ++index;
    }

    // Counts: one case file takes any number of data files; several need
    // matched pairs. Lists that need no pairing stay as they came.
    if (caseFiles == 0) {
        if (!append) {
            ZorUtilDialogErrMsg("The file list has no case files.");
            return false;
        }
        if (dataFiles == 0) {
            return true;
        }
    } else if (caseFiles == 1) {
        if (dataFiles == 0) {
            return true;
        }
    } else if (dataFiles == 0) {
        return true;
    } else if (caseFiles != dataFiles) {
        std::ostringstream message;
        message
            << "Fluent data loader:\nThe file list contains " << caseFiles << " case files and " << dataFiles
            << " data files. If you load more than one case file and data file, then they must be matched "
               "pairs.";
        ZorUtilDialogErrMsg(message.str().c_str());
        return false;
    }

    // Ordering: the names move from a working copy back into fileList.
    lists.work = ZorUtilStringListCopy(fileList);
    if (lists.work == nullptr) {
        ZorUtilDialogErrMsg(kOutOfMemory);
        return false;
    }
    ZorUtilStringListClear(fileList);

    std::string caseName;  // the given name of the case file moved last
    ZorIndex first = firstOfKind(lists.given, CaseSuffixes);
    if (first != 0) {
        caseName = ZorUtilStringListGetRawStringPtr(lists.given, first);
        if (!moveFile(lists, first, fileList)) {
            ZorUtilDialogErrMsg(kOutOfMemory);
            return false;
        }
    }

    if (caseFiles == 1 || (caseFiles == 0 && append)) {
        // A series: the one case file and all data files in the user's order.
        ZorIndex remaining = ZorUtilStringListGetCount(lists.work);
        for (ZorIndex k = 1; k <= remaining; ++k) {
            if (givenNameHasSuffix(lists.given, k, DataSuffixes)) {
                const char* name = ZorUtilStringListGetRawStringPtr(lists.work, k);
                if (name == nullptr || !ZorUtilStringListAppendString(fileList, name)) {
                    ZorUtilDialogErrMsg(kOutOfMemory);
                    return false;
                }
            }
        }
        for (ZorIndex k = remaining; k >= 1; --k) {
            if (givenNameHasSuffix(lists.given, k, DataSuffixes)) {
                ZorUtilStringListRemoveString(lists.work, k);
                ZorUtilStringListRemoveString(lists.given, k);
            }
        }
    } else {
        // Pairs: each case file takes the first data file whose given name
        // starts with the case file's name less its suffix (case counts).
        while (ZorUtilStringListGetCount(lists.work) - xmlFiles >= 1) {
            const std::string prefix = casePrefix(caseName);
            ZorIndex match = 0;
            ZorIndex remaining = ZorUtilStringListGetCount(lists.given);
            for (ZorIndex k = 1; k <= remaining && match == 0; ++k) {
                const char* given = ZorUtilStringListGetRawStringPtr(lists.given, k);
                if (given != nullptr && hasSuffixInTable(given, DataSuffixes) &&
                    strncmp(given, prefix.c_str(), prefix.size()) == 0) {
                    match = k;
                }
            }
            if (match == 0) {
                std::ostringstream message;
                message
                    << "Fluent data loader: Case file " << caseName
                    << " has no matching data file. If you load more than one case file and data file, then "
                       "they must be matched pairs.";
                ZorUtilDialogErrMsg(message.str().c_str());
                return false;
            }
            if (!moveFile(lists, match, fileList)) {
                ZorUtilDialogErrMsg(kOutOfMemory);
                return false;
            }
            if (ZorUtilStringListGetCount(lists.work) - xmlFiles >= 1) {
                ZorIndex next = firstOfKind(lists.given, CaseSuffixes);
                if (next == 0) {
                    ZorUtilDialogErrMsg(
                        "The file list has one or more data files\nthat do not have matching case files. "
                        "If\nyou "
                        "load more than one case file and\ndata file, then they must be matched pairs.");
                    return false;
                }
                caseName = ZorUtilStringListGetRawStringPtr(lists.given, next);
                if (!moveFile(lists, next, fileList)) {
                    ZorUtilDialogErrMsg(kOutOfMemory);
                    return false;
                }
            }
        }
    }

    // The XML particle file goes last.
    ZorIndex xml = firstOfKind(lists.given, ParticleSuffixes);
    if (xml != 0 && !moveFile(lists, xml, fileList)) {
        ZorUtilDialogErrMsg(kOutOfMemory);
        return false;
    }
    return true;
}
