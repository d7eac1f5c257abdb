// The scan of a data file: one pass over its sections that records where the
// numbers of each Data section stand and jumps over them.
//
// Sections handled (a family is the id, +2000 binary single, +3000 binary double):
//
//   4            Machine Configuration  parsed into machineConfig
//   37           Variables              additional-quantity names, flow-time, delta-time-sampled
//   300 family   Data                   (300 (fieldId zoneId dimension timeLevels phase firstId lastId)
//                                         (numbers ...))
//   314 family   Data of additional quantities: as 300, only when they are to be loaded
//   301 family   Residuals              (301 (numRows residualId width [unused]) (rows ...))
//   302 family   Residuals with scale factors
//   303 family   Particle               see datafile/Particles.h
//   305 family   (nothing is done: the scan looks for the next '(' inside the body)
//   others       skipped by their parentheses or their end marker

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "addon/FluentSolution.h"
#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "datafile/DataFileInternal.h"
#include "datafile/Particles.h"
#include "datafile/Residuals.h"
#include "host/ZorUtil.h"

namespace {

// Width in bytes of one real of a binary section, by the section id.
int64_t binaryRealWidth(const MachineConfig* config, int32_t sectionId) {
    return sectionId >= 3000 ? config->doubleSize : config->floatSize;
}

// Passes over n numbers of a body whose '(' has been read: "%lg" each for an
// ASCII section, one relative seek for a binary one. False, silently, when a
// number cannot be read or the seek fails.
bool passNumbers(FILE* stream, int64_t n, int32_t sectionId, const MachineConfig* config) {
    if (sectionId < 2000) {
        double value;
        for (int64_t i = 0; i < n; ++i) {
            if (fscanf(stream, "%lg", &value) != 1) {
                return false;
            }
        }
        return true;
    }
    return fseeko(stream, static_cast<off_t>(binaryRealWidth(config, sectionId) * n), SEEK_CUR) == 0;
}

// A Data section with a negative first id is passed over: n numbers behind the
// next '(', with the widths of the case file.
bool skipFieldValues(int64_t n, int32_t sectionId, const MachineConfig* caseConfig, FILE* stream) {
    if (!dataFileSkipPastOpenParen(stream)) {
        return false;
    }
    if (!passNumbers(stream, n, sectionId, caseConfig)) {
        return false;
    }
    return closeSection(sectionId, "Data Field", sectionId >= 2000, stream);
}

// A Data section that is not stored: the header is read and not checked (what
// fails to convert counts as 0), the numbers are passed over with the widths of
// the data file.
bool skipDataSection(DataFile* dataFile, int32_t sectionId) {
    FILE* stream = dataFile->stream;
    int fieldId = 0, zoneId = 0, dimension = 0, timeLevels = 0, phase = 0, firstId = 0, lastId = 0;
    (void)fscanf(stream, "(%d %d %d %d %d %d %d)", &fieldId, &zoneId, &dimension, &timeLevels, &phase,
                 &firstId, &lastId);
    const int64_t n = (static_cast<int64_t>(lastId) - firstId + 1) * dimension;
    if (!dataFileSkipPastOpenParen(stream)) {
        return false;
    }
    if (!passNumbers(stream, n, sectionId, &dataFile->machineConfig)) {
        return false;
    }
    return closeSection(sectionId, "Data Field", sectionId >= 2000, stream);
}

// A Residuals section that is not stored. The one format reads the header and
// the body's '('; with a three-number header it stops at the header's ')', so
// the body's '(' is still ahead and is looked for.
bool skipResidualsSection(DataFile* dataFile, int32_t sectionId) {
    FILE* stream = dataFile->stream;
    int numRows = 0, residualId = 0, width = 0, unused = 0;
    const int converted = fscanf(stream, "(%d %d %d %d) (", &numRows, &residualId, &width, &unused);
    if (converted != 3 && converted != 4) {
        return false;
    }
    int64_t n = (static_cast<int64_t>(width) + 1) * numRows;
    if (sectionIdMatches(sectionId, 302)) {
        n += static_cast<int64_t>(width) * numRows;
    }
    if (converted == 3 && !dataFileSkipPastOpenParen(stream)) {
        return false;
    }
    if (!passNumbers(stream, n, sectionId, &dataFile->machineConfig)) {
        return false;
    }
    return closeSection(sectionId, "Residuals", sectionId >= 2000, stream);
}

// Size of the case zone with this id: cell zones first, then face zones. -1
// when no zone has the id.
int64_t caseZoneSize(const CaseFile* caseFile, int32_t zoneId) {
    if (caseFile == nullptr) {
        return -1;
    }
    for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
        const CellZone& zone = caseFile->cellZones[i];
        if (zone.zoneId == zoneId) {
            return static_cast<int64_t>(zone.lastIndex) - zone.firstIndex + 1;
        }
    }
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        const FaceZone& zone = caseFile->faceZones[i];
        if (zone.zoneId == zoneId) {
            return static_cast<int64_t>(zone.lastIndex) - zone.firstIndex + 1;
        }
    }
    return -1;
}

// Records one Data section: checks its size against the case zone, takes the
// position of its numbers and jumps over them.
bool ParseData(DataFile* dataFile, const CaseFile* caseFile, int32_t sectionId,
               zorvane::dataio::DeferredMinMaxWriterFactory* factory) {
    FILE* stream = dataFile->stream;
    int fieldId, zoneId, dimension, timeLevels, phase, firstId, lastId;
    if (fscanf(stream, "(%d %d %d %d %d %d %d)", &fieldId, &zoneId, &dimension, &timeLevels, &phase, &firstId,
               &lastId) != 7) {
        reportStreamFailure(stream, "Data", sectionId);
        return false;
    }
    static const MachineConfig kNoConfig = {};
    const MachineConfig* caseConfig = caseFile != nullptr ? &caseFile->machineConfig : &kNoConfig;
    const int64_t count64 = static_cast<int64_t>(lastId) - firstId + 1;
    if (firstId < 0) {
        return skipFieldValues(count64 * dimension, sectionId, caseConfig, stream);
    }
    bool zoneMissing = false;
    int64_t zoneSize = caseZoneSize(caseFile, zoneId);
    if (zoneSize < 0) {
        dataFileShowError("ZoneID %d referenced in data file '%s' is not a valid zone.", zoneId,
                          dataFile->fileName);
        zoneSize = 0;
        zoneMissing = true;
    }
    const int32_t count = static_cast<int32_t>(count64);
    if (count64 != zoneSize) {
        dataFileShowError(
            "There is a size mismatch between the case file and the data file for zone ID #%d. In the case "
            "file, "
            "it is of size %d, but in the data file it is of size %d.",
            zoneId, static_cast<int>(zoneSize), count);
        return false;
    }
    if (zoneMissing) {
        return false;
    }
    DataField* field;
    if (!DataFileNewDataField(dataFile, &field)) {
        return false;
    }
    if (!setDataFieldAttributes(field, sectionId, zoneId, fieldId, count, dimension, phase, factory)) {
        return false;
    }
    if (!dataFileSkipPastOpenParen(stream)) {
        dataFileShowError("Opening parenthesis not found while reading Data section (Section %d).",
                          sectionId);
        return false;
    }
    field->filePosition = ftello(stream);
    if (field->filePosition == -1) {
        return false;
    }
    // The least room the numbers can take: 2 bytes for an ASCII number (a digit
    // and a blank), the case file's widths for binary ones. skipSection finds
    // the real end from there.
    int64_t width = 2;
    if (sectionId >= 2000) {
        width = binaryRealWidth(caseConfig, sectionId);
    }
    if (fseeko(stream, static_cast<off_t>(static_cast<int64_t>(count) * dimension * width), SEEK_CUR) != 0) {
        return false;
    }
    return skipSection(sectionId, sectionId >= 2000, stream);
}

}  // namespace

// ---- Section 37 -----------------------------------------------------------------------

// Finds a literal in the section, from where the stream stands and then once
// more from the section's start. 0 found, 1 not found, 2 read error, -1 the
// seek back failed.
static int seekLiteralInSection(FILE* stream, const char* literal, long long start, long long end) {
    int status = seekLiteralBounded(stream, literal, end);
    if (status == ReadStatus_Success || status == ReadStatus_ReadError) {
        return status;
    }
    if (fseeko(stream, start, SEEK_SET) != 0) {
        return -1;
    }
    status = seekLiteralBounded(stream, literal, end);
    return status == ReadStatus_EndOfFile ? 1 : status;
}

bool DataFileParseVariables(DataFile* dataFile, int32_t sectionId) {
    FILE* stream = dataFile->stream;
    const long long start = ftello(stream);
    if (start == -1) {
        reportStreamFailure(stream, "Variables", sectionId);
        return false;
    }
    if (!skipSection(sectionId, sectionId >= 2000, stream)) {
        return false;
    }
    const long long end = ftello(stream);
    if (end == -1 || fseeko(stream, start, SEEK_SET) != 0) {
        reportStreamFailure(stream, "Variables", sectionId);
        return false;
    }
    if (!dataFile->additionalQuantities->parseVariablesSection(stream, end)) {
        return false;
    }
    const char* literals[2] = {"flow-time", "delta-time-sampled"};
    double* targets[2] = {&dataFile->flowTime, &dataFile->deltaTimeSampled};
    for (int k = 0; k < 2; ++k) {
        const int status = seekLiteralInSection(stream, literals[k], start, end);
        if (status == ReadStatus_ReadError) {
            dataFileShowError("File read error while parsing \"Variables\" section (section %d).", sectionId);
            return false;
        }
        if (status == -1 || (status == ReadStatus_Success && fscanf(stream, "%lg", targets[k]) != 1)) {
            reportStreamFailure(stream, "Variables", sectionId);
            dataFileShowError("File read error while parsing \"Variables\" section (section %d).", sectionId);
            return false;
        }
    }
    return fseeko(stream, end, SEEK_SET) == 0;
}

// ---- The scan -----------------------------------------------------------------------------

bool DataFileScan(FluentSolution* solution, DataFile* dataFile, CaseFile* caseFile, LoadOption loadOption,
                  std::unique_ptr<zorvane::zorutilutil::TaskProgress> progress,
                  zorvane::dataio::DeferredMinMaxWriterFactory* factory) {
    if (progress != nullptr && !progress->begin("Reading Fluent data file...")) {
        return false;
    }
    if (!openFluentFile(&dataFile->stream, dataFile->fileName, "Data")) {
        return false;
    }
    FILE* stream = dataFile->stream;
    if (stream == nullptr) {
        return false;  // a compressed name: it should have been replaced by its plain copy
    }
    bool result = false;
    int id = 0;
    const bool storeData =
        loadOption == LoadOption_CaseAndData || loadOption == LoadOption_MultipleCaseAndData;
    const bool particleFileGiven = solution != nullptr && solution->particleFileName[0] != '\0';
    if (getFileSize(stream) == -1) {
        // Message shown by getFileSize.
    } else if (!findNextSection(&id, stream)) {
        dataFileShowError("File '%s' does not appear to be a valid FLUENT .dat file.", dataFile->fileName);
    } else {
        do {
            if (id == 4) {
                result = parseMachineConfig(&dataFile->machineConfig, stream);
            } else if (id == 37) {
                result = DataFileParseVariables(dataFile, id);
            } else if (sectionIdMatches(id, 300)) {
                result =
                    storeData ? ParseData(dataFile, caseFile, id, factory) : skipDataSection(dataFile, id);
            } else if (sectionIdMatches(id, 314)) {
                result = storeData && dataFile->additionalQuantities->shouldLoad()
                             ? ParseData(dataFile, caseFile, id, factory)
                             : skipDataSection(dataFile, id);
            } else if (sectionIdMatches(id, 301) || sectionIdMatches(id, 302)) {
                result = loadOption == LoadOption_ResidualsOnly ? DataFileParseResiduals(dataFile, id)
                                                                : skipResidualsSection(dataFile, id);
            } else if (sectionIdMatches(id, 303)) {
                result = storeData && !particleFileGiven
                             ? DataFileParseParticles(dataFile, caseFile, id, factory)
                             : DataFileSkipParticles(dataFile, id);
            } else if (sectionIdMatches(id, 305)) {
                // Nothing: the next '(' of this section's own body is taken for a section head.
                result = true;
            } else {
                result = skipSection(id, id >= 2000, stream);
            }
        } while (result && findNextSection(&id, stream));
    }
    fclose(dataFile->stream);
    dataFile->stream = nullptr;
    return result;
}
