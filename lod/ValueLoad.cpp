// The value callbacks: coordinates from the node positions of a case, solution
// variables from the fields of a data file.
//
// Every load follows one shape: add-on lock, case mutex, one more use of the
// case; bring in what is missing; fill the host's array in blocks of 1024
// values; on success keep the use (the next load of the same case finds the
// arrays in memory), on failure give it back. Unloads and cleanups give the
// use back.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "addon/FluentSolution.h"
#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "host/ZorData.h"
#include "host/ZorUtil.h"
#include "lod/ValueClientData.h"
#include "support/RunningRange.h"

namespace {

// Values handed to the host per call.
constexpr int kBlockSize = 1024;

// Fills a host value array block by block, in the array's own precision, and
// keeps the range of what it wrote. Every block but the last holds
// kBlockSize values; the last one (flush) is sent also when it is empty.
class BlockWriter {
  public:
    explicit BlockWriter(ZorFieldData fieldData)
        : fieldData_(fieldData),
          isDouble_(ZorUtilDataValueGetRefType(fieldData) == ZorFieldDataType_Double) {}

    // Writes `count` values that lie one after another. A whole block for a
    // double array goes to the host from where the values lie: the host
    // copies it, as it copies the buffer.
    void putRun(const double* values, int64_t count) {
        int64_t sent = 0;
        for (; isDouble_ && filled_ == 0 && count - sent >= kBlockSize; sent += kBlockSize) {
            widenRunningRange(values + sent, kBlockSize, &minimum, &maximum);
            send(kBlockSize, values + sent);
        }
        putEach(count - sent, [values, sent](int64_t i) { return values[sent + i]; });
    }
    // Writes `count` values, value i being valueAt(i): gathered a block at a
    // time into the buffer, whose range is then taken in one go.
    template <typename ValueAt>
    void putEach(int64_t count, ValueAt valueAt) {
        for (int64_t i = 0; i < count;) {
            const int32_t take = static_cast<int32_t>(std::min<int64_t>(count - i, kBlockSize - filled_));
            double* out = doubles_ + filled_;
            for (int32_t k = 0; k < take; ++k)
                out[k] = valueAt(i + k);
            widenRunningRange(out, take, &minimum, &maximum);
            if (!isDouble_)
                narrow(out, take, floats_ + filled_);
            filled_ += take;
            i += take;
            if (filled_ == kBlockSize)
                flush();
        }
    }
    // Writes what the buffer holds, also when that is nothing.
    void flush() {
        send(filled_, isDouble_ ? static_cast<const void*>(doubles_) : static_cast<const void*>(floats_));
        filled_ = 0;
    }

    double minimum = 1e150;   // smallest value written
    double maximum = -1e150;  // largest value written

  private:
    void send(int32_t count, const void* values) {
        ZorUtilDataValueArraySetByRef(fieldData_, next_, count, values);
        next_ += count;
    }
    static void narrow(const double* values, int32_t count, float* out) {
        for (int32_t k = 0; k < count; ++k)
            out[k] = static_cast<float>(values[k]);
    }

    ZorFieldData fieldData_;
    bool isDouble_;
    ZorIndex next_ = 1;   // host index of the next value sent
    int32_t filled_ = 0;  // values in the buffer
    float floats_[kBlockSize];
    double doubles_[kBlockSize];
};

ValueClientData* clientDataOf(ZorFieldData fieldData) {
    return reinterpret_cast<ValueClientData*>(ZorUtilDataValueGetClientData(fieldData));
}

// Gives the range to the host and to the record's metadata writer, which is
// then let go: the range of a variable is written once.
void handOverRange(ZorFieldData fieldData, ValueClientData* clientData, const BlockWriter& writer) {
    if (clientData->minMaxWriter == nullptr)
        return;
    ZorUtilDataValueSetMinMaxByRef(fieldData, writer.minimum, writer.maximum);
    clientData->minMaxWriter->setMinMax(writer.minimum, writer.maximum);
    clientData->minMaxWriter->release();
    clientData->minMaxWriter = nullptr;
}

// The data file and field of a record; null when either is gone.
DataField* fieldOf(FluentSolution* solution, const ValueClientData* clientData, DataFile** dataFile) {
    if (solution == nullptr || clientData->dataFileIndex < 0 ||
        clientData->dataFileIndex >= solution->numDataFiles)
        return nullptr;
    DataFile* file = &solution->dataFiles[clientData->dataFileIndex];
    if (clientData->fieldIndex < 0 || clientData->fieldIndex >= file->numDataFields)
        return nullptr;
    *dataFile = file;
    return &file->dataFields[clientData->fieldIndex];
}

void freeFieldValues(DataField* field) {
    std::free(field->values);
    field->values = nullptr;
}

// One component of a field has been let go: the values go with the last one.
void dropComponent(DataField* field) {
    const int32_t before = field->loadedComponents;
    field->loadedComponents = before - 1;
    if (before == 1)
        freeFieldValues(field);
}

bool isRootMeanSquareField(int32_t fieldId) {
    return fieldId == 401 || fieldId == 403 || fieldId == 405 || fieldId == 407 || fieldId == 409 ||
           fieldId == 411 || fieldId == 415 || (fieldId >= 1050 && fieldId <= 1099);
}

bool isMeanField(int32_t fieldId) {
    return fieldId == 400 || fieldId == 402 || fieldId == 404 || fieldId == 406 || fieldId == 408 ||
           fieldId == 410 || fieldId == 414 || (fieldId >= 1000 && fieldId <= 1049);
}

bool isWallFluxField(int32_t fieldId) {
    return fieldId == 19 || fieldId == 20 || fieldId == 21;
}

// Turns the sampled sums of a root-mean-square field into the root mean
// square about the mean of its partner field (id one less, or 50 less for the
// species): sqrt(sum of squares - mean^2), negative for a negative variance.
// A field without a partner stays as read. False when the partner could not
// be read (message shown).
bool treatRootMeanSquare(DataFile* dataFile, DataField* field) {
    const int32_t partnerId = field->fieldId >= 1050 ? field->fieldId - 50 : field->fieldId - 1;
    DataField* partner = nullptr;
    for (int32_t i = 0; i < dataFile->numDataFields; ++i) {
        DataField* candidate = &dataFile->dataFields[i];
        if (candidate->fieldId == partnerId && candidate->zoneId == field->zoneId) {
            partner = candidate;
            break;
        }
    }
    if (partner == nullptr)
        return true;
    const double sampled = dataFile->deltaTimeSampled;
    if (partner->values == nullptr) {
        if (!DataFileLoadDataField(dataFile, partner)) {
            freeFieldValues(partner);
            return false;
        }
        if (sampled != 0.0)
            divideByValue(partner->values, partner->count, sampled);
    }
    if (sampled != 0.0)
        divideByValue(field->values, field->count, sampled);
    for (int32_t i = 0; i < field->count; ++i) {
        const double variance = field->values[i] - partner->values[i] * partner->values[i];
        field->values[i] = variance < 0.0 ? -std::sqrt(std::fabs(variance)) : std::sqrt(variance);
    }
    return true;
}

}  // namespace

ValueClientData* ValueClientDataAlloc() {
    ValueClientData* clientData = static_cast<ValueClientData*>(std::calloc(1, sizeof(ValueClientData)));
    if (clientData == nullptr)
        return nullptr;
    clientData->caseIndex = -1;
    clientData->cellZoneIndex = -1;
    clientData->faceZoneIndex = -1;
    clientData->dataFileIndex = -1;
    clientData->fieldIndex = -1;
    clientData->method = kNoAveragingMethod;
    return clientData;
}

void ValueClientDataFree(ValueClientData* clientData) {
    if (clientData == nullptr)
        return;
    if (clientData->minMaxWriter != nullptr) {
        clientData->minMaxWriter->release();
        clientData->minMaxWriter = nullptr;
    }
    std::free(clientData);
}

CaseFile* lodFindCaseFile(uint32_t solutionId, int32_t caseIndex, FluentSolution** solution) {
    FluentSolution* found = findSolution(solutionId);
    if (solution != nullptr)
        *solution = found;
    if (found == nullptr || caseIndex < 0 || caseIndex >= found->numCaseFiles)
        return nullptr;
    return &found->caseFiles[caseIndex];
}

bool cellNodeMapReady(CaseFile* caseFile, int32_t numNodes, bool allZonesAsPolyhedral, CellZone* zone) {
    if (zone->newToOldNodes != nullptr)
        return true;
    if (zone->elementType != 7 && !allZonesAsPolyhedral)
        return CellZoneGetNewNodeNumbers(zone, caseFile, numNodes);
    ZorUtilDialogErrMsg(
        "Polygonal and polyhedral zones are not available in this version of the Fluent loader.");
    return false;
}

bool boundaryNodeMapReady(CaseFile* caseFile, int32_t numNodes, bool allZonesAsPolyhedral, FaceZone* zone) {
    if (zone->zoneNodes != nullptr)
        return true;
    if (zone->faceType != 5 && (!allZonesAsPolyhedral || zone->faceType == 2))
        return FaceZoneGetNodeNumbers(zone, caseFile, numNodes);
    ZorUtilDialogErrMsg(
        "Polygonal and polyhedral zones are not available in this version of the Fluent loader.");
    return false;
}

void divideByValue(double* values, int32_t n, double divisor) {
    for (int32_t i = 0; i < n; ++i)
        values[i] /= divisor;
}

// ---- Coordinates ---------------------------------------------------------------------------------

bool coordVarLoad(ZorFieldData fieldData) {
    ValueClientData* clientData = clientDataOf(fieldData);
    ZorUtilLockStart(AddOnID);
    CaseFile* caseFile = lodFindCaseFile(clientData->solutionId, clientData->caseIndex, nullptr);
    if (caseFile == nullptr) {
        ZorUtilLockFinish(AddOnID);
        return false;
    }
    ZorUtilThreadMutexLock(caseFile->mutex);
    CaseFileRetain(caseFile);

    bool ok = caseFile->nodePositions != nullptr || CaseFileLoadAllNodePositions(caseFile);
    ok = ok && CaseFileStoreFaceTreeChildren(caseFile);
    if (ok) {
        CellZone* cellZone =
            clientData->cellZoneIndex >= 0 ? &caseFile->cellZones[clientData->cellZoneIndex] : nullptr;
        FaceZone* faceZone = cellZone == nullptr ? &caseFile->faceZones[clientData->faceZoneIndex] : nullptr;
        const int32_t numPoints = cellZone != nullptr ? cellZone->numNodes : faceZone->numNodes;
        const bool mapReady = cellZone != nullptr
                                  ? cellNodeMapReady(caseFile, clientData->nodeCount,
                                                     clientData->allZonesAsPolyhedral, cellZone)
                                  : boundaryNodeMapReady(caseFile, clientData->nodeCount,
                                                         clientData->allZonesAsPolyhedral, faceZone);
        BlockWriter writer(fieldData);
        if (mapReady) {
            const int32_t* zoneToGlobal = cellZone != nullptr ? cellZone->newToOldNodes : faceZone->zoneNodes;
            const int32_t dimension = caseFile->numDimensions;
            const double* positions = caseFile->nodePositions;
            const double* column = positions + clientData->component;
            if (zoneToGlobal != nullptr) {
                writer.putEach(numPoints, [&](int64_t i) {
                    return column[(static_cast<int64_t>(zoneToGlobal[i]) - 1) * dimension];
                });
            } else {
                writer.putEach(numPoints, [&](int64_t i) { return column[i * dimension]; });
            }
        }
        writer.flush();
        ok = mapReady;
        if (ok)
            handOverRange(fieldData, clientData, writer);
    }
    if (ok) {
        clientData->isLoaded = true;
    } else {
        CaseFileRelease(caseFile);
    }
    ZorUtilThreadMutexUnlock(caseFile->mutex);
    ZorUtilLockFinish(AddOnID);
    return ok;
}

// Gives back what a value's load took: its use of the case and, for a field,
// its component of the values. An unload always gives them back; a cleanup
// only when the value is loaded, and not at all once the table is empty (the
// case is gone already, and nothing holds a use of it). Under the host lock,
// with the case's mutex around the change.
static void releaseValue(ValueClientData* clientData, bool isField, bool onlyIfLoaded) {
    if (onlyIfLoaded && SolutionTableCount == 0)
        return;
    FluentSolution* solution = nullptr;
    CaseFile* caseFile = lodFindCaseFile(clientData->solutionId, clientData->caseIndex, &solution);
    if (caseFile == nullptr)
        return;
    DataField* field = nullptr;
    if (isField) {
        DataFile* dataFile = nullptr;
        field = fieldOf(solution, clientData, &dataFile);
    }
    ZorUtilThreadMutexLock(caseFile->mutex);
    if (!onlyIfLoaded || clientData->isLoaded) {
        clientData->isLoaded = false;
        CaseFileRelease(caseFile);
        if (field != nullptr)
            dropComponent(field);
    }
    ZorUtilThreadMutexUnlock(caseFile->mutex);
}

bool coordVarUnload(ZorFieldData fieldData) {
    ZorUtilLockStart(AddOnID);
    releaseValue(clientDataOf(fieldData), false, false);
    ZorUtilLockFinish(AddOnID);
    return true;
}

void coordVarCleanup(ZorFieldData fieldData) {
    ValueClientData* clientData = clientDataOf(fieldData);
    ZorUtilLockStart(AddOnID);
    releaseValue(clientData, false, true);
    ValueClientDataFree(clientData);
    ZorUtilLockFinish(AddOnID);
}

// ---- Solution variables -----------------------------------------------------------------------------

bool fieldVarLoad(ZorFieldData fieldData) {
    ValueClientData* clientData = clientDataOf(fieldData);
    ZorUtilLockStart(AddOnID);
    const ZorIndex zone = ZorUtilZoneGetNumByUniqueID(static_cast<ZorUniqueID>(clientData->zoneUniqueId));
    FluentSolution* solution = nullptr;
    CaseFile* caseFile = lodFindCaseFile(clientData->solutionId, clientData->caseIndex, &solution);
    DataFile* dataFile = nullptr;
    DataField* field = caseFile != nullptr ? fieldOf(solution, clientData, &dataFile) : nullptr;
    if (field == nullptr) {
        ZorUtilLockFinish(AddOnID);
        return false;
    }
    ZorUtilThreadMutexLock(caseFile->mutex);
    CaseFileRetain(caseFile);

    bool ok = true;
    if (field->values == nullptr) {
        // Read and treated once per stay in memory: values held already are as the host wants them.
        ok = DataFileLoadDataField(dataFile, field);
        if (ok && isRootMeanSquareField(field->fieldId)) {
            ok = treatRootMeanSquare(dataFile, field);
        } else if (ok && isMeanField(field->fieldId)) {
            if (dataFile->deltaTimeSampled != 0.0)
                divideByValue(field->values, field->count, dataFile->deltaTimeSampled);
        } else if (ok && isWallFluxField(field->fieldId)) {
            // The areas come from host variables, whose loads take the mutex themselves.
            const bool axisymmetric = caseFile->axisymmetric;
            ZorUtilThreadMutexUnlock(caseFile->mutex);
            scaleBoundaryFluxesByArea(field->values, field->count, field->dimension, zone, axisymmetric,
                                      field->fieldId == 19);
            ZorUtilThreadMutexLock(caseFile->mutex);
        }
        if (!ok)
            freeFieldValues(field);
    }

    if (ok && clientData->isNodal) {
        ZorUtilDialogErrMsg(
            "Averaging cell-centred values to nodes is not available in this version of the Fluent loader.");
        ok = false;
    }
    if (ok) {
        BlockWriter writer(fieldData);
        const int32_t count = field->count;
        const int32_t dimension = field->dimension;
        const int32_t component = clientData->component;
        if ((dimension == 1 && component == 0) || (isVectorFamilyFieldId(field->fieldId) && dimension >= 2)) {
            // The component's values lie one after another.
            writer.putRun(field->values + static_cast<int64_t>(component) * count, count);
        } else {
            const double* values = field->values + component;
            writer.putEach(count, [&](int64_t e) { return values[e * dimension]; });
        }
        writer.flush();
        handOverRange(fieldData, clientData, writer);

        clientData->isLoaded = true;
        field->loadedComponents += 1;
        if (field->loadedComponents == field->dimension && field->values != nullptr)
            freeFieldValues(field);  // every component is with the host: the field is not kept
    } else {
        CaseFileRelease(caseFile);
    }
    ZorUtilThreadMutexUnlock(caseFile->mutex);
    ZorUtilLockFinish(AddOnID);
    return ok;
}

bool fieldVarUnload(ZorFieldData fieldData) {
    ZorUtilLockStart(AddOnID);
    releaseValue(clientDataOf(fieldData), true, false);
    ZorUtilLockFinish(AddOnID);
    return true;
}

void fieldVarCleanup(ZorFieldData fieldData) {
    ValueClientData* clientData = clientDataOf(fieldData);
    ZorUtilLockStart(AddOnID);
    releaseValue(clientData, true, true);
    ValueClientDataFree(clientData);
    ZorUtilLockFinish(AddOnID);
}
