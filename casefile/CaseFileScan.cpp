// The scan of a case file: one pass over its sections that records what each
// declares and where its bulk data stands, and jumps over the bulk data.
//
// Section ids handled here (binary variants +2000 / +3000 alike unless noted):
//
//   0        Comment          the first one that comes while no header is known is the header
//   1        Header           "text"
//   2        Dimensions       (2 3)
//   4        Machine Config   eleven numbers
//   10       Nodes            CaseFileParseNodes
//   12       Cells            CaseFileParseCell
//   13       Faces            CaseFileParseFace
//   18       Periodic Shadow  read and dropped
//   33       Grid Size        read and dropped
//   37       Variables        species names, rp-axi?, rp-double? (ASCII id only)
//   39, 45   Zone             names of cell and face zones
//   40       Partition        read and dropped; never fails by its format
//   58       Cell Tree        read and dropped
//   59       Face Tree        ParseFaceTree (read whole)
//   61       Interface Face Parents  read and dropped
//   62       Child Faces      ParseChildFaces
//   other    skipped; a failed skip is ignored
#include <cctype>
#include <cstdlib>
#include <cstring>

#include "casefile/CaseFileInternal.h"

// ---- Header and comments -------------------------------------------------------------
//
//   (1 "text")      the text is kept, at most 4096 characters
//   (0 "text")      the same, for the first comment while the header is empty

bool CaseFileParseHeader(CaseFile* caseFile) {
    FILE* stream = caseFile->stream;
    int c;
    do {
        c = getc(stream);
    } while (c != EOF && isspace(c));
    if (c != '"') {
        reportStreamFailure(stream, "Header", 1);
        return false;
    }
    size_t length = 0;
    for (;;) {
        c = getc(stream);
        if (c == EOF) {
            caseFile->header[length] = '\0';
            reportStreamFailure(stream, "Header", 1);
            return false;
        }
        if (c == '"') {
            break;
        }
        if (length < sizeof caseFile->header - 1) {
            caseFile->header[length++] = static_cast<char>(c);
        }
    }
    caseFile->header[length] = '\0';
    return skipSection(1, false, stream);
}

// ---- Zone names ----------------------------------------------------------------------
//
//   (39 (id type-word name ...)(...))    id decimal; the name ends at blank, tab, newline or ')'
//   (45 (id type-word name)())

bool CaseFileParseZone(CaseFile* caseFile, int32_t sectionId) {
    FILE* stream = caseFile->stream;
    if (getc(stream) != '(') {
        reportStreamFailure(stream, "Zone", sectionId);
        return false;
    }
    int zoneId = 0;
    if (fscanf(stream, "%d", &zoneId) != 1) {
        reportStreamFailure(stream, "Zone", sectionId);
        return false;
    }
    char typeWord[129];
    if (readDelimitedToken(typeWord, " ", stream) != 0) {
        reportStreamFailure(stream, "Zone", sectionId);
        return false;
    }
    char name[129];
    if (readDelimitedToken(name, " \n\t)", stream) != 0) {
        reportStreamFailure(stream, "Zone", sectionId);
        return false;
    }
    for (;;) {
        int c = getc(stream);
        if (c == EOF) {
            reportStreamFailure(stream, "Zone", sectionId);
            return false;
        }
        if (c == ')') {
            break;
        }
    }
    if (zoneId < 1) {
        return true;
    }
    // Only zones scanned already can take the name; a cell zone wins over a
    // face zone of the same id.
    CellZone* cellZone = CaseFileFindCellZone(caseFile, zoneId, false);
    if (cellZone != nullptr) {
        snprintf(cellZone->name, sizeof cellZone->name, "%s", name);
    } else {
        FaceZone* faceZone = CaseFileFindFaceZone(caseFile, zoneId, false);
        if (faceZone != nullptr) {
            snprintf(faceZone->name, sizeof faceZone->name, "%s", name);
        }
    }
    return skipSection(sectionId, sectionId >= 2000, stream);
}

// ---- Variables -------------------------------------------------------------------------
//
//   (37 ( ... (species (names (a b c)) ...) ... (rp-axi? . #f) ... (rp-double? . #t) ...))
//
// Only the three items are looked for, as text, between the section's start
// and its end; rp-double? counts only when it comes behind rp-axi?.

// Reads the species names behind "(species (names (" up to the closing ')'.
static bool readSpeciesNames(CaseFile* caseFile) {
    FILE* stream = caseFile->stream;
    for (;;) {
        int c;
        do {
            c = getc(stream);
        } while (c != EOF && isspace(c));
        if (c == EOF) {
            reportStreamFailure(stream, "Variables", 37);
            return false;
        }
        if (c == ')') {
            return true;
        }
        char name[129];
        size_t length = 0;
        while (c != EOF && !isspace(c) && c != ')') {
            if (length < sizeof name - 1) {
                name[length++] = static_cast<char>(c);
            }
            c = getc(stream);
        }
        name[length] = '\0';
        if (length > 0) {
            char** grown = static_cast<char**>(
                realloc(caseFile->speciesNames,
                        sizeof(char*) * (static_cast<size_t>(caseFile->numSpeciesNames) + 1)));
            if (grown == nullptr) {
                ZorUtilDialogErrMsg("Out of memory.");
                return false;
            }
            caseFile->speciesNames = grown;
            char* copy = static_cast<char*>(malloc(length + 1));
            if (copy == nullptr) {
                ZorUtilDialogErrMsg("Out of memory.");
                return false;
            }
            memcpy(copy, name, length + 1);
            caseFile->speciesNames[caseFile->numSpeciesNames++] = copy;
        }
        if (c == EOF) {
            reportStreamFailure(stream, "Variables", 37);
            return false;
        }
        if (c == ')') {
            return true;
        }
    }
}

bool CaseFileParseVariables(CaseFile* caseFile) {
    FILE* stream = caseFile->stream;
    long long start = ftell(stream);
    if (start < 0) {
        reportStreamFailure(stream, "Variables", 37);
        return false;
    }
    if (!skipSection(37, false, stream)) {
        return false;
    }
    long long end = ftell(stream);
    if (end < 0 || fseek(stream, start, SEEK_SET) != 0) {
        reportStreamFailure(stream, "Variables", 37);
        return false;
    }
    if (seekLiteralBounded(stream, "(species (names (", end) == ReadStatus_Success) {
        if (!readSpeciesNames(caseFile)) {
            return false;
        }
    }
    if (fseek(stream, start, SEEK_SET) != 0) {
        reportStreamFailure(stream, "Variables", 37);
        return false;
    }
    if (seekLiteralBounded(stream, "(rp-axi? . #", end) == ReadStatus_Success) {
        if (getc(stream) == 't') {
            caseFile->axisymmetric = true;
        }
        // Searched on from here: an rp-double? ahead of rp-axi? is not seen.
        if (seekLiteralBounded(stream, "(rp-double? . #", end) == ReadStatus_Success) {
            if (getc(stream) == 't') {
                caseFile->doublePrecision = true;
            }
        }
    }
    if (fseek(stream, start, SEEK_SET) != 0) {
        reportStreamFailure(stream, "Variables", 37);
        return false;
    }
    return skipSection(37, false, stream);
}

// ---- Sections read and dropped ---------------------------------------------------------

// Passes n integers of a body: ASCII reads them with "%x", binary jumps over
// them. False with no message of its own.
static bool passIntegers(CaseFile* caseFile, int32_t sectionId, int64_t n) {
    FILE* stream = caseFile->stream;
    if (n <= 0) {
        return true;
    }
    if (sectionId < 2000) {
        for (int64_t i = 0; i < n; ++i) {
            unsigned int value;
            if (fscanf(stream, "%x", &value) != 1) {
                return false;
            }
        }
        return true;
    }
    return fseeko(stream, static_cast<off_t>(n * caseFile->machineConfig.intSize), SEEK_CUR) == 0;
}

//   (18 (first last zone shadow-zone) (face shadow ...))   two numbers per face
static bool parsePeriodicShadowFaces(CaseFile* caseFile, int32_t sectionId) {
    FILE* stream = caseFile->stream;
    int first, last, zone, shadow;
    if (fscanf(stream, "(%x %x %x %x) (", &first, &last, &zone, &shadow) != 4) {
        return false;
    }
    if (!passIntegers(caseFile, sectionId, (static_cast<int64_t>(last) - first) * 2 + 2)) {
        return false;
    }
    return closeSection(sectionId, "Periodic Shadow Faces", sectionId >= 2000, stream);
}

//   (33 (cells faces nodes))   decimal
static bool parseGridSize(CaseFile* caseFile, int32_t sectionId) {
    FILE* stream = caseFile->stream;
    int cells, faces, nodes;
    if (fscanf(stream, "(%d %d %d)", &cells, &faces, &nodes) != 3) {
        return false;
    }
    return closeSection(sectionId, "Grid Size", sectionId >= 2000, stream);
}

//   (40 (zone first last kind) (partition of each cell ...))
// Never fails by its format: whatever goes wrong, the section is skipped from
// its start.
static bool parsePartition(CaseFile* caseFile, int32_t sectionId) {
    FILE* stream = caseFile->stream;
    long long position = ftell(stream);
    bool ok = position >= 0;
    if (ok) {
        int zone, first, last, kind;
        ok = fscanf(stream, "(%x %x %x %x) (", &zone, &first, &last, &kind) == 4 &&
             passIntegers(caseFile, sectionId, static_cast<int64_t>(last) - first + 1) &&
             closeSection(sectionId, "Partition", sectionId >= 2000, stream);
    }
    if (ok) {
        return true;
    }
    if (position >= 0) {
        clearerr(stream);
        if (fseek(stream, position, SEEK_SET) != 0) {
            return false;
        }
    }
    return skipSection(sectionId, sectionId >= 2000, stream);
}

//   (58 (first last zone child-zone) (count child ... count child ...))   counts decimal in ASCII
static bool parseCellTree(CaseFile* caseFile, int32_t sectionId) {
    FILE* stream = caseFile->stream;
    int first, last, zone, childZone;
    if (fscanf(stream, "(%x %x %x %x) (", &first, &last, &zone, &childZone) != 4) {
        return false;
    }
    for (int64_t parent = first; parent <= last; ++parent) {
        int count = 0;
        if (sectionId < 2000) {
            if (fscanf(stream, "%d", &count) != 1) {
                return false;
            }
        } else if (readBinaryInt(&count, stream, &caseFile->machineConfig) != ReadStatus_Success) {
            return false;
        }
        if (!passIntegers(caseFile, sectionId, count)) {
            return false;
        }
    }
    return closeSection(sectionId, "Cell Tree", sectionId >= 2000, stream);
}

//   (61 (first last) (face parent0 parent1 ...))   two numbers per face
static bool parseInterfaceFaceParents(CaseFile* caseFile, int32_t sectionId) {
    FILE* stream = caseFile->stream;
    int first, last;
    if (fscanf(stream, "(%x %x) (", &first, &last) != 2) {
        return false;
    }
    if (!passIntegers(caseFile, sectionId, (static_cast<int64_t>(last) - first) * 2 + 2)) {
        return false;
    }
    return closeSection(sectionId, "Interface Face Parents", sectionId >= 2000, stream);
}

// ---- Dimensions -------------------------------------------------------------------------
//
//   (2 3)   decimal

static bool parseDimensions(CaseFile* caseFile, int32_t sectionId) {
    int dimensions = 0;
    if (fscanf(caseFile->stream, "%d", &dimensions) != 1) {
        showErrorf("Error reading number of dimensions in section %d.", sectionId);
        return false;
    }
    if (dimensions != 2 && dimensions != 3) {
        showErrorf("Bad value for number of dimensions in section %d: %d.", sectionId, dimensions);
        return false;
    }
    caseFile->numDimensions = dimensions;
    return true;
}

// ---- The scan ----------------------------------------------------------------------------

// Handles one section whose id was just read. False ends the scan.
static bool scanSection(CaseFile* caseFile, int32_t id, bool allZonesAsPolyhedral,
                        zorvane::dataio::DeferredMinMaxWriterFactory* factory) {
    FILE* stream = caseFile->stream;
    switch (id) {
        case 0:
            if (caseFile->header[0] == '\0') {
                return CaseFileParseHeader(caseFile);
            }
            return skipSection(0, false, stream);
        case 1:
            return CaseFileParseHeader(caseFile);
        case 2:
            return parseDimensions(caseFile, id);
        case 4:
            return parseMachineConfig(&caseFile->machineConfig, stream);
        case 37:
            return CaseFileParseVariables(caseFile);
        default:
            break;
    }
    if (sectionIdMatches(id, 10)) {
        return CaseFileParseNodes(caseFile, id);
    }
    if (sectionIdMatches(id, 12)) {
        return CaseFileParseCell(caseFile, id, factory);
    }
    if (sectionIdMatches(id, 13)) {
        return CaseFileParseFace(caseFile, id, allZonesAsPolyhedral, factory);
    }
    if (sectionIdMatches(id, 18)) {
        return parsePeriodicShadowFaces(caseFile, id);
    }
    if (sectionIdMatches(id, 33)) {
        return parseGridSize(caseFile, id);
    }
    if (sectionIdMatches(id, 39) || sectionIdMatches(id, 45)) {
        return CaseFileParseZone(caseFile, id);
    }
    if (sectionIdMatches(id, 40)) {
        return parsePartition(caseFile, id);
    }
    if (sectionIdMatches(id, 58)) {
        return parseCellTree(caseFile, id);
    }
    if (sectionIdMatches(id, 59)) {
        return ParseFaceTree(caseFile, id);
    }
    if (sectionIdMatches(id, 61)) {
        return parseInterfaceFaceParents(caseFile, id);
    }
    if (sectionIdMatches(id, 62)) {
        return ParseChildFaces(caseFile, id);
    }
    // Of no interest (2037 and 3037 included): a failed skip does not stop the scan.
    (void)skipSection(id, id >= 2000, stream);
    return true;
}

bool CaseFileScan(CaseFile* caseFile, bool allZonesAsPolyhedral,
                  std::unique_ptr<zorvane::zorutilutil::TaskProgress> progress,
                  zorvane::dataio::DeferredMinMaxWriterFactory* factory) {
    if (progress != nullptr && !progress->begin("Reading Fluent case file...")) {
        return false;
    }
    if (!openFluentFile(&caseFile->stream, caseFile->fileName, "Case")) {
        return false;
    }
    if (caseFile->stream == nullptr) {
        // A compressed name reaches this point only by mistake: callers pass the
        // uncompressed copy. It cannot be read as it is.
        showErrorf("Fluent data loader: Unable to open %s file\n%s.", "Case", caseFile->fileName);
        return false;
    }
    caseFile->axisymmetric = false;
    caseFile->doublePrecision = false;

    bool ok = getFileSize(caseFile->stream) != -1;
    int id = 0;
    if (ok && !findNextSection(&id, caseFile->stream)) {
        showErrorf("File '%s' does not appear to be a valid FLUENT .cas file.", caseFile->fileName);
        ok = false;
    } else if (ok) {
        // Running out of sections ends the scan with the last handler's result.
        do {
            ok = scanSection(caseFile, id, allZonesAsPolyhedral, factory);
        } while (ok && findNextSection(&id, caseFile->stream));
    }
    fclose(caseFile->stream);
    caseFile->stream = nullptr;
    return ok;
}
