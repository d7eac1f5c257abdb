// The storage of the host's large arrays: zeros without a writing pass, and
// pages faulted in on another thread while the owner fills them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <numeric>

#include "minihost/ZeroedStorage.h"

namespace {

using minihost::data::BackgroundPopulate;
using minihost::data::ZeroedVector;

TEST(ZeroedStorage, NewVectorsAreZerosWhateverTheSize) {
    for (size_t count : {size_t(0), size_t(1), size_t(1000), size_t(3) << 20}) {
        ZeroedVector<int32_t> numbers(count);
        ASSERT_EQ(numbers.size(), count);
        EXPECT_EQ(std::count(numbers.begin(), numbers.end(), 0), static_cast<std::ptrdiff_t>(count));
    }
}

TEST(ZeroedStorage, AVectorMadeAgainAfterUseIsZerosAgain) {
    ZeroedVector<double> values(size_t(1) << 20);
    std::iota(values.begin(), values.end(), 1.0);
    values = ZeroedVector<double>(size_t(1) << 20);
    EXPECT_EQ(std::count(values.begin(), values.end(), 0.0), static_cast<std::ptrdiff_t>(values.size()));
}

TEST(ZeroedStorage, ValuesGivenAtConstructionAreKept) {
    ZeroedVector<int64_t> numbers(5, -7);
    EXPECT_EQ(std::count(numbers.begin(), numbers.end(), -7), 5);
}

// The block is filled while its pages are faulted in: every value written is
// read back, and the untouched tail stays zero.
TEST(ZeroedStorage, ABlockFilledOnOneThreadWhileAnotherThreadFaultsItsPagesInKeepsWhatWasWritten) {
    const size_t count = size_t(6) << 20;  // 48 MB of doubles
    ZeroedVector<double> values(count);
    {
        BackgroundPopulate populate(values.data(), count * sizeof(double));
        for (size_t i = 0; i < count / 2; ++i)
            values[i] = static_cast<double>(i);
    }
    for (size_t i = 0; i < count / 2; i += 4093)
        ASSERT_EQ(values[i], static_cast<double>(i));
    EXPECT_EQ(std::count(values.begin() + count / 2, values.end(), 0.0),
              static_cast<std::ptrdiff_t>(count - count / 2));
}

TEST(ZeroedStorage, SmallOrMissingBlocksAreLeftAlone) {
    ZeroedVector<char> small(1000);
    { BackgroundPopulate populate(small.data(), small.size()); }
    { BackgroundPopulate populate(nullptr, size_t(64) << 20); }
    EXPECT_EQ(std::count(small.begin(), small.end(), 0), 1000);
}

}  // namespace
