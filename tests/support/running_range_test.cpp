// The running range in lanes against the loop value by value, bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "support/RunningRange.h"

namespace {

// The loop that widenRunningRange stands for.
void widenOneByOne(const double* values, int64_t count, double* minimum, double* maximum) {
    for (int64_t i = 0; i < count; ++i) {
        if (values[i] < *minimum)
            *minimum = values[i];
        if (values[i] > *maximum)
            *maximum = values[i];
    }
}

bool sameBits(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// Checks both ways from the starting range (minimum, maximum) for the values.
void expectSameRange(const std::vector<double>& values, double minimum, double maximum) {
    double wantLow = minimum, wantHigh = maximum;
    widenOneByOne(values.data(), static_cast<int64_t>(values.size()), &wantLow, &wantHigh);
    double low = minimum, high = maximum;
    widenRunningRange(values.data(), static_cast<int64_t>(values.size()), &low, &high);
    std::string shown;
    for (double v : values)
        shown += std::to_string(v) + (std::signbit(v) ? "(-) " : " ");
    EXPECT_TRUE(sameBits(low, wantLow)) << low << " against " << wantLow << " for " << shown;
    EXPECT_TRUE(sameBits(high, wantHigh)) << high << " against " << wantHigh << " for " << shown;
}

TEST(RunningRange, NothingToWidenLeavesTheRange) {
    double low = 3, high = -3;
    widenRunningRange(nullptr, 0, &low, &high);
    widenRunningRange(nullptr, -5, &low, &high);
    EXPECT_EQ(low, 3);
    EXPECT_EQ(high, -3);
}

TEST(RunningRange, AgreesWithTheLoopForEveryLengthAndSpecialValue) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    // Few distinct values, so that ties, zeros of both signs and NaN come often.
    const std::vector<double> alphabet = {0.0, -0.0, 1.5, -1.5, 2e150, -2e150,
                                          inf, -inf, nan, 7.0,  -7.0,  1e-310};
    const std::vector<std::pair<double, double>> starts = {{1e150, -1e150}, {inf, -inf}, {0.0, -0.0},
                                                           {-0.0, 0.0},     {1.5, 1.5},  {-7.0, 7.0}};
    std::mt19937 random(12345);
    std::uniform_int_distribution<size_t> pick(0, alphabet.size() - 1);
    for (int length = 0; length <= 19; ++length) {
        for (int round = 0; round < 200; ++round) {
            std::vector<double> values(static_cast<size_t>(length));
            for (double& v : values)
                v = alphabet[pick(random)];
            for (const auto& start : starts)
                expectSameRange(values, start.first, start.second);
        }
    }
}

TEST(RunningRange, AZeroAnywhereInALongRunIsTheOneTheLoopKeeps) {
    // Positive numbers with -0 at one place and +0 at a later one, and the
    // other way round; and the same below zero for the maximum.
    for (size_t first = 0; first < 40; ++first) {
        for (size_t gap : {size_t{1}, size_t{2}, size_t{5}, size_t{17}}) {
            for (bool negativeFirst : {true, false}) {
                std::vector<double> above(64, 2.0), below(64, -2.0);
                const double a = negativeFirst ? -0.0 : 0.0, b = negativeFirst ? 0.0 : -0.0;
                above[first] = a;
                below[first] = a;
                if (first + gap < 64) {
                    above[first + gap] = b;
                    below[first + gap] = b;
                }
                expectSameRange(above, 1e150, -1e150);
                expectSameRange(below, 1e150, -1e150);
                // A zero held already stays against a zero of the other sign.
                expectSameRange(above, b, -1e150);
                expectSameRange(below, 1e150, b);
            }
        }
    }
}

TEST(RunningRange, LongRandomRunsAgreeFromAnyPlace) {
    std::mt19937 random(777);
    std::normal_distribution<double> normal(0.0, 1e3);
    std::vector<double> values(5000);
    for (double& v : values)
        v = normal(random);
    values[1234] = std::numeric_limits<double>::quiet_NaN();
    for (size_t offset = 0; offset < 9; ++offset) {
        const std::vector<double> part(values.begin() + static_cast<std::ptrdiff_t>(offset), values.end());
        expectSameRange(part, 1e150, -1e150);
        expectSameRange(part, -10.0, 10.0);
    }
}

}  // namespace
