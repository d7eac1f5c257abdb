// Residuals: the convergence history that a Fluent data file carries, read
// for a residuals-only load into one process-wide table.
//
// Section format (ids 301/2301/3301; with scale factors 302/2302/3302):
//
//   (301 (numRows residualId width [unused])
//    (it v1 .. vW   it v1 .. vW   ...))          301 family: 1 + width numbers a row
//    (it v1 .. vW s1 .. sW   ...))               302 family: 1 + 2 * width numbers a row
//
// Every number of the body, the iteration number too, is a real in the
// encoding of the section id. Only the first row's iteration number is kept:
// the rows are taken to follow one another with a step of 1.
//
// The table, its count and firstIteration are written only during a scan and
// read only when the residual data set is built, both on the loading thread.
#pragma once

#include <cstdint>

class DataFile;

// One Residuals section. Zero-filled when made.
struct FluentResidual {
    int32_t numRows;       // first header number: iterations held
    int32_t residualId;    // second header number: the quantity (VariableNameTable's residual column)
    int32_t width;         // third header number: numbers per row and kind
    bool hasScaleFactors;  // set for the 302 family
    double* values;        // numRows * width numbers, row after row
    double* scaleFactors;  // the same shape; null unless hasScaleFactors
};

extern int32_t numResiduals;             // entries of FluentResiduals; 0 at start
extern FluentResidual* FluentResiduals;  // the process-wide table; null when empty
extern int32_t firstIteration;           // first iteration of the section read last; 1 at start

// Appends an entry with zeroed values (numRows * width) and, when asked,
// zeroed scaleFactors. "Out of memory." and false on failure, *out null.
[[nodiscard]] bool NewFluentResidual(FluentResidual** out, int32_t numRows, int32_t width,
                                     bool withScaleFactors);

// Reads one Residuals section into the table; the scan's stream stands behind
// the section id. False with the message shown.
[[nodiscard]] bool DataFileParseResiduals(DataFile* dataFile, int32_t sectionId);

// Frees values and scaleFactors of one entry.
void FluentResidualFreeArrays(FluentResidual* residual);

// Frees every entry's arrays and the table; numResiduals becomes 0.
void FluentResidualsClear();
