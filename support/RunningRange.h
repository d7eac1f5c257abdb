// The running range of a sequence of doubles, taken many values at a time.
#pragma once

#include <cstdint>

// Widens *minimum and *maximum by `count` values, with the outcome of
//
//     for each value v, in order:
//         if (v < *minimum) *minimum = v;
//         if (v > *maximum) *maximum = v;
//
// bit for bit: a NaN is passed over, and where zeros of both signs tie for
// the minimum or the maximum, the one that comes first is kept. A count of
// 0 or less changes nothing.
void widenRunningRange(const double* values, int64_t count, double* minimum, double* maximum);
