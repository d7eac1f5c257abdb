#include "datafile/Residuals.h"

#include <cstdlib>
#include <cstring>

#include "datafile/DataFile.h"
#include "datafile/DataFileInternal.h"
#include "host/ZorUtil.h"

int32_t numResiduals = 0;
FluentResidual* FluentResiduals = nullptr;
int32_t firstIteration = 1;

// A zeroed block of n doubles; a block of one for n == 0, null for n < 0 or
// when memory runs out.
static double* allocZeroedDoubles(int64_t n) {
    if (n < 0) {
        return nullptr;
    }
    return static_cast<double*>(calloc(n > 0 ? static_cast<size_t>(n) : 1, sizeof(double)));
}

bool NewFluentResidual(FluentResidual** out, int32_t numRows, int32_t width, bool withScaleFactors) {
    *out = nullptr;
    const int64_t n = static_cast<int64_t>(numRows) * width;
    double* values = allocZeroedDoubles(n);
    if (values == nullptr) {
        ZorUtilDialogErrMsg("Out of memory.");
        return false;
    }
    double* scaleFactors = nullptr;
    if (withScaleFactors) {
        scaleFactors = allocZeroedDoubles(n);
        if (scaleFactors == nullptr) {
            ZorUtilDialogErrMsg("Out of memory.");
            free(values);
            return false;
        }
    }
    FluentResidual* table = static_cast<FluentResidual*>(
        realloc(FluentResiduals, (static_cast<size_t>(numResiduals) + 1) * sizeof(FluentResidual)));
    if (table == nullptr) {
        ZorUtilDialogErrMsg("Out of memory.");
        free(values);
        free(scaleFactors);
        return false;
    }
    FluentResiduals = table;
    FluentResidual* residual = &table[numResiduals];
    memset(residual, 0, sizeof *residual);
    residual->values = values;
    residual->scaleFactors = scaleFactors;
    numResiduals += 1;
    *out = residual;
    return true;
}

void FluentResidualFreeArrays(FluentResidual* residual) {
    free(residual->values);
    residual->values = nullptr;
    free(residual->scaleFactors);
    residual->scaleFactors = nullptr;
}

void FluentResidualsClear() {
    for (int32_t i = 0; i < numResiduals; ++i) {
        FluentResidualFreeArrays(&FluentResiduals[i]);
    }
    free(FluentResiduals);
    FluentResiduals = nullptr;
    numResiduals = 0;
}

bool DataFileParseResiduals(DataFile* dataFile, int32_t sectionId) {
    FILE* stream = dataFile->stream;
    int numRows = 0, residualId = 0, width = 0, unused = 0;
    const int converted = fscanf(stream, "(%d %d %d %d)", &numRows, &residualId, &width, &unused);
    if (converted != 3 && converted != 4) {
        reportStreamFailure(stream, "Residuals", sectionId);
        return false;
    }
    const bool withScaleFactors = sectionId == 302 || sectionId == 2302 || sectionId == 3302;
    FluentResidual* residual;
    if (!NewFluentResidual(&residual, numRows, width, withScaleFactors)) {
        return false;
    }
    if (!dataFileSkipPastOpenParen(stream)) {
        dataFileShowError("Opening parenthesis not found while reading Residuals section (Section %d).",
                          sectionId);
        return false;
    }
    residual->numRows = numRows;
    residual->residualId = residualId;
    residual->width = width;
    residual->hasScaleFactors = withScaleFactors;

    const int64_t rowLength =
        withScaleFactors ? 2 * static_cast<int64_t>(width) + 1 : static_cast<int64_t>(width) + 1;
    const int64_t total = rowLength * numRows;
    double* numbers = allocZeroedDoubles(total);
    if (numbers == nullptr) {
        return false;
    }
    const bool ok = readSectionReals(numbers, static_cast<int>(total), &dataFile->machineConfig, stream,
                                     "Residuals", sectionId, false);
    if (ok) {
        // Only the first iteration number is kept; the rows count on by one.
        if (total > 0) {
            firstIteration = static_cast<int32_t>(numbers[0]);
        }
        const double* p = numbers;
        for (int32_t r = 0; r < numRows; ++r) {
            ++p;  // the row's iteration number
            memcpy(&residual->values[static_cast<int64_t>(r) * width], p,
                   static_cast<size_t>(width) * sizeof(double));
            p += width;
            if (withScaleFactors) {
                memcpy(&residual->scaleFactors[static_cast<int64_t>(r) * width], p,
                       static_cast<size_t>(width) * sizeof(double));
                p += width;
            }
        }
    }
    free(numbers);
    if (!ok) {
        return false;
    }
    return closeSection(sectionId, "Residuals", sectionId >= 2000, stream);
}
