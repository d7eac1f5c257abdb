// Four lanes of minimum and maximum (two SSE2 registers of two each), folded
// together at the end. The lanes find the smallest and the largest number;
// only two equal numbers can differ in their bits, +0 and -0, and the loop
// value by value keeps whichever of them it met first. So where the range's
// end is a zero that the lanes bring in, that first zero is looked up.
#include "support/RunningRange.h"

#include <limits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

// The first zero of the values, of either sign; the caller knows there is one.
double firstZero(const double* values, int64_t count) {
    for (int64_t i = 0; i < count; ++i) {
        if (values[i] == 0.0)
            return values[i];
    }
    return 0.0;
}

}  // namespace

void widenRunningRange(const double* values, int64_t count, double* minimum, double* maximum) {
    if (count <= 0)
        return;
    const double infinity = std::numeric_limits<double>::infinity();
    double lo = infinity, hi = -infinity;
    int64_t i = 0;
#if defined(__SSE2__)
    // minpd(v, lo) is v < lo ? v : lo, and maxpd(v, hi) is v > hi ? v : hi:
    // the comparisons of the loop value by value, NaN left out as there.
    __m128d lo0 = _mm_set1_pd(infinity), lo1 = lo0;
    __m128d hi0 = _mm_set1_pd(-infinity), hi1 = hi0;
    for (; i + 4 <= count; i += 4) {
        const __m128d a = _mm_loadu_pd(values + i);
        const __m128d b = _mm_loadu_pd(values + i + 2);
        lo0 = _mm_min_pd(a, lo0);
        lo1 = _mm_min_pd(b, lo1);
        hi0 = _mm_max_pd(a, hi0);
        hi1 = _mm_max_pd(b, hi1);
    }
    double lanes[8];
    _mm_storeu_pd(lanes, lo0);
    _mm_storeu_pd(lanes + 2, lo1);
    _mm_storeu_pd(lanes + 4, hi0);
    _mm_storeu_pd(lanes + 6, hi1);
    for (int k = 0; k < 4; ++k) {
        lo = lanes[k] < lo ? lanes[k] : lo;
        hi = lanes[4 + k] > hi ? lanes[4 + k] : hi;
    }
#endif
    for (; i < count; ++i) {
        const double v = values[i];
        lo = v < lo ? v : lo;
        hi = v > hi ? v : hi;
    }
    // Before the first zero every value was above it (or NaN), so the loop
    // value by value takes the first zero and keeps it.
    if (lo < *minimum)
        *minimum = lo == 0.0 ? firstZero(values, count) : lo;
    if (hi > *maximum)
        *maximum = hi == 0.0 ? firstZero(values, count) : hi;
}
