// Nodes sections: recorded at scan time, read all at once on demand.
//
//   header        (zone first last type [dimensions])   hexadecimal, the last field decimal and optional
//   body opening  the first '(' behind the header
//   body  10      dimensions reals per node, text ("%lg")
//   body  2010    dimensions reals of floatSize bytes per node
//   body  3010    dimensions reals of doubleSize bytes per node
//   closing       ')' or the binary end marker
//
// Coordinates are interleaved node by node. In memory axis a of node n
// (one-based) is nodePositions[(n - 1) * numDimensions + a], always double.
#include <cstdlib>

#include "casefile/CaseFileInternal.h"
#include "support/BulkMemory.h"

// The warning about a Nodes section of another dimension is shown once in
// the life of the process. Touched by the scan only.
static bool dimensionWarningGiven = false;

bool CaseFileParseNodes(CaseFile* caseFile, int32_t sectionId) {
    FILE* stream = caseFile->stream;
    int zoneId = 0, first = 0, last = 0, type = 0, dimensions = 0;
    int fields = fscanf(stream, "(%x %x %x %x %d)", &zoneId, &first, &last, &type, &dimensions);
    if (fields < 4) {
        reportStreamFailure(stream, "Nodes", sectionId);
        return false;
    }
    if (fields == 4 && caseFile->numDimensions == 0) {
        showErrorf("Unknown number of dimensions while reading Nodes section (Section %d).", sectionId);
        return false;
    }
    if (fields == 5 && caseFile->numDimensions == 0) {
        if (dimensions != 2 && dimensions != 3) {
            showErrorf("Bad number of dimensions (%d) while reading Nodes section (Section %d).", dimensions,
                       sectionId);
            return false;
        }
        caseFile->numDimensions = dimensions;
    } else if (fields == 5 && dimensions != caseFile->numDimensions) {
        // The file's first word on dimensions stands; the section is read with it.
        if (!dimensionWarningGiven) {
            dimensionWarningGiven = true;
            if (!ZorUtilMacroIsBatchModeActive()) {
                char message[kMessageSize];
                snprintf(
                    message, sizeof message,
                    "Number of dimensions (%d) in Node section (Section %d) of Fluent Case file does not "
                    "agree with number of dimensions previously read (%d). Processing will continue.",
                    dimensions, sectionId, caseFile->numDimensions);
                ZorUtilDialogMessageBox(message, ZorMessageBoxType_Warning);
            }
        }
    }
    if (zoneId < 1) {
        // A declaration of the total count; findNextSection passes its rest.
        return true;
    }
    if (!skipToOpenParen(stream)) {
        showErrorf("Opening parenthesis not found while reading Nodes section (Section %d).", sectionId);
        return false;
    }
    long long position = ftell(stream);
    if (position < 0) {
        showErrorf("Opening parenthesis not found while reading Nodes section (Section %d).", sectionId);
        return false;
    }
    NodeZone* zone = nullptr;
    if (!CaseFileNewNodeZone(caseFile, &zone)) {
        return false;
    }
    zone->sectionId = sectionId;
    zone->zoneId = zoneId;
    zone->firstIndex = first;
    zone->lastIndex = last;
    zone->filePosition = position;
    if (last > caseFile->totalNodes) {
        caseFile->totalNodes = last;
    }
    int64_t jump = static_cast<int64_t>(caseFile->numDimensions) * (static_cast<int64_t>(last) - first + 1) *
                   realWidth(&caseFile->machineConfig, sectionId);
    if (jump > 0 && fseeko(stream, static_cast<off_t>(jump), SEEK_CUR) != 0) {
        return false;
    }
    return skipSection(sectionId, sectionId >= 2000, stream);
}

void CaseFileFreeNodePositions(CaseFile* caseFile) {
    free(caseFile->nodePositions);
    caseFile->nodePositions = nullptr;
}

bool CaseFileLoadAllNodePositions(CaseFile* caseFile) {
    FILE* stream = nullptr;
    if (!openFluentFile(&stream, caseFile->fileName, "Case")) {
        return false;
    }
    if (stream == nullptr) {
        showErrorf("Fluent data loader: Unable to open %s file\n%s.", "Case", caseFile->fileName);
        return false;
    }
    int32_t numNodes = 0;
    for (int32_t i = 0; i < caseFile->numNodeZones; ++i) {
        if (caseFile->nodeZones[i].lastIndex > numNodes) {
            numNodes = caseFile->nodeZones[i].lastIndex;
        }
    }
    caseFile->numLoadedNodes = numNodes;
    size_t count = static_cast<size_t>(numNodes) * static_cast<size_t>(caseFile->numDimensions);
    double* positions = static_cast<double*>(bulkCalloc(count > 0 ? count : 1, sizeof(double)));
    if (positions == nullptr) {
        showErrorf("Unable to allocate %llu bytes of memory for node positions.",
                   static_cast<unsigned long long>(count * sizeof(double)));
        fclose(stream);
        return false;
    }
    // A second core faults the fresh block in from its end while this one fills it.
    BulkFaultIn faultIn(BulkOrder::OneAfterAnother, {{positions, (count > 0 ? count : 1) * sizeof(double)}});
    bool ok = true;
    for (int32_t i = 0; ok && i < caseFile->numNodeZones; ++i) {
        const NodeZone* zone = &caseFile->nodeZones[i];
        if (zone->firstIndex < 1 || zone->lastIndex < zone->firstIndex) {
            continue;  // no place in the array
        }
        if (fseeko(stream, static_cast<off_t>(zone->filePosition), SEEK_SET) != 0) {
            ZorUtilDialogErrMsg("Error setting file position while reading node positions.");
            ok = false;
            break;
        }
        int64_t values =
            (static_cast<int64_t>(zone->lastIndex) - zone->firstIndex + 1) * caseFile->numDimensions;
        double* target = positions + static_cast<int64_t>(zone->firstIndex - 1) * caseFile->numDimensions;
        ok = values <= 0 || readSectionReals(target, static_cast<int>(values), &caseFile->machineConfig,
                                             stream, "Nodes", zone->sectionId, false);
        ok = ok && closeSection(zone->sectionId, "Nodes", zone->sectionId >= 2000, stream);
    }
    faultIn.finish();
    fclose(stream);
    if (!ok) {
        free(positions);
        caseFile->nodePositions = nullptr;
        return false;
    }
    caseFile->nodePositions = positions;
    return true;
}
