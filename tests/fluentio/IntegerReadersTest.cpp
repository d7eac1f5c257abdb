// Integers of section bodies: hexadecimal ASCII, and binary integers of 2, 4
// and 8 bytes (and odd widths) in both byte orders.
#include <climits>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "FluentioTestSupport.h"
#include "fluentio/SectionReader.h"

namespace fluentio_test {
namespace {

using AsciiIntegerTest = FluentioTest;

// Both byte orders of the file; the host's own is one of them.
class BinaryIntegerTest : public FluentioTest, public ::testing::WithParamInterface<int> {
  protected:
    int order() const { return GetParam(); }
};

INSTANTIATE_TEST_SUITE_P(ByteOrders, BinaryIntegerTest, ::testing::Values(0, 1),
                         [](const ::testing::TestParamInfo<int>& info) {
                             return std::string(info.param == 0 ? "LittleEndian" : "BigEndian");
                         });

// The four bytes of value reversed.
int32_t reversed32(int32_t value) {
    uint32_t bits;
    std::memcpy(&bits, &value, 4);
    bits = __builtin_bswap32(bits);
    int32_t result;
    std::memcpy(&result, &bits, 4);
    return result;
}

// ---- ASCII --------------------------------------------------------------------------------

TEST_F(AsciiIntegerTest, IntegersAreHexadecimal) {
    ByteStream stream(" a ff 1F\n-1 7fffffff 0x10 )");
    MachineConfig config{};
    int values[6] = {};
    ASSERT_TRUE(readSectionInts(values, 6, &config, stream.get(), "Cells", 12));
    EXPECT_EQ(values[0], 10);
    EXPECT_EQ(values[1], 255);
    EXPECT_EQ(values[2], 31);
    EXPECT_EQ(values[3], -1);
    EXPECT_EQ(values[4], 0x7fffffff);
    EXPECT_EQ(values[5], 16);
    EXPECT_EQ(stream.rest(), " )");
    expectNoMessage();
}

TEST_F(AsciiIntegerTest, OneInteger) {
    ByteStream stream("  1a2b");
    MachineConfig config{};
    int value = 0;
    ASSERT_TRUE(readSectionInt(&value, &config, stream.get(), "Faces", 13));
    EXPECT_EQ(value, 0x1a2b);
}

TEST_F(AsciiIntegerTest, NonNumberIsAParseErrorOfTheSection) {
    ByteStream stream("1 2 zz 4");
    MachineConfig config{};
    int values[4] = {};
    EXPECT_FALSE(readSectionInts(values, 4, &config, stream.get(), "Cells", 12));
    EXPECT_EQ(values[0], 1);
    EXPECT_EQ(values[1], 2);
    expectOneError("Parse error while reading Cells section (section 12).");
}

TEST_F(AsciiIntegerTest, EndOfFileIsReported) {
    ByteStream stream("1 2 ");
    MachineConfig config{};
    int values[3] = {};
    EXPECT_FALSE(readSectionInts(values, 3, &config, stream.get(), "Faces", 13));
    expectOneError("End-of-file while reading Faces section (section 13).");
}

TEST_F(AsciiIntegerTest, ReadErrorIsReported) {
    FailingStream stream("1 2 ");
    MachineConfig config{};
    int value = 0;
    EXPECT_TRUE(readSectionInt(&value, &config, stream.get(), "Face Tree", 59));
    EXPECT_TRUE(readSectionInt(&value, &config, stream.get(), "Face Tree", 59));
    EXPECT_FALSE(readSectionInt(&value, &config, stream.get(), "Face Tree", 59));
    expectOneError("Read error while reading Face Tree section (section 59).");
}

// ---- Four-byte integers ------------------------------------------------------------------------

TEST_P(BinaryIntegerTest, FourByteArrayIsReadInOneGo) {
    const std::vector<int32_t> expected = {1, -2, 0x12345678, INT_MIN, INT_MAX, 0};
    std::string bytes;
    for (int32_t v : expected)
        bytes += intBytes(static_cast<uint32_t>(v), 4, order());
    ByteStream stream(bytes + ")");
    MachineConfig config = machineConfig(order());
    std::vector<int> values(expected.size());
    ASSERT_TRUE(readSectionInts(values.data(), static_cast<int>(values.size()), &config, stream.get(),
                                "Faces", 2013));
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(values[i], expected[i]) << i;
    EXPECT_EQ(stream.rest(), ")");
    expectNoMessage();
}

TEST_P(BinaryIntegerTest, FourByteIntegerOneByOne) {
    ByteStream stream(intBytes(static_cast<uint32_t>(-77), 4, order()) + intBytes(4242, 4, order()));
    MachineConfig config = machineConfig(order());
    int value = 0;
    ASSERT_TRUE(readSectionInt(&value, &config, stream.get(), "Cells", 3012));
    EXPECT_EQ(value, -77);
    EXPECT_EQ(readBinaryInt(&value, stream.get(), &config), ReadStatus_Success);
    EXPECT_EQ(value, 4242);
    EXPECT_EQ(readBinaryInt(&value, stream.get(), &config), ReadStatus_EndOfFile);
}

TEST_P(BinaryIntegerTest, ShortArrayIsAReadErrorEvenAtEndOfFile) {
    ByteStream stream(intBytes(1, 4, order()) + intBytes(2, 4, order()) + "ab");
    MachineConfig config = machineConfig(order());
    int values[3] = {};
    EXPECT_EQ(readBinaryInts(values, 3, &config, stream.get()), ReadStatus_ReadError);
    EXPECT_TRUE(feof(stream.get()));
    minihost::clearMessages();
    rewind(stream.get());
    EXPECT_FALSE(readSectionInts(values, 3, &config, stream.get(), "Faces", 2013));
    expectOneError("Read error while reading Faces section (section 2013).");
}

TEST_P(BinaryIntegerTest, ShortSingleIntegerIsEndOfFile) {
    ByteStream stream("ab");
    MachineConfig config = machineConfig(order());
    int value = 0;
    EXPECT_FALSE(readSectionInt(&value, &config, stream.get(), "Cells", 2012));
    expectOneError("End-of-file while reading Cells section (section 2012).");
}

// ---- Eight-byte integers -----------------------------------------------------------------------

TEST_P(BinaryIntegerTest, EightByteIntegerWithinRange) {
    MachineConfig config = machineConfig(order(), 0, 8);
    ByteStream stream(intBytes(5, 8, order()) + intBytes(0x7fffffffu, 8, order()) +
                      intBytes(static_cast<uint64_t>(-2), 8, order()) +
                      intBytes(static_cast<uint64_t>(INT64_C(-2147483648)), 8, order()));
    int value = 0;
    EXPECT_EQ(readBinaryInt(&value, stream.get(), &config), ReadStatus_Success);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(readBinaryInt(&value, stream.get(), &config), ReadStatus_Success);
    EXPECT_EQ(value, INT_MAX);
    EXPECT_EQ(readBinaryInt(&value, stream.get(), &config), ReadStatus_Success);
    EXPECT_EQ(value, -2);
    EXPECT_EQ(readBinaryInt(&value, stream.get(), &config), ReadStatus_Success);
    EXPECT_EQ(value, INT_MIN);
}

TEST_P(BinaryIntegerTest, EightByteIntegerWithNonZeroHighHalfOverflows) {
    MachineConfig config = machineConfig(order(), 0, 8);
    ByteStream stream(intBytes(UINT64_C(0x100000000), 8, order()));
    int value = 0;
    EXPECT_FALSE(readSectionInt(&value, &config, stream.get(), "Cells", 2012));
    expectOneError("Number overflow while reading Cells section (section 2012).");
}

TEST_P(BinaryIntegerTest, NegativeEightByteIntegerNeedsAllOnesInItsHighHalf) {
    MachineConfig config = machineConfig(order(), 0, 8);
    ByteStream stream(intBytes(UINT64_C(0xff00fffffffffffe), 8, order()));
    int value = 0;
    EXPECT_EQ(readBinaryInt(&value, stream.get(), &config), ReadStatus_NumberOverflow);
}

TEST_P(BinaryIntegerTest, SignOfTheHighHalfIsOredIntoTheLowHalf) {
    // High half all ones, low half positive: the sign bit is set on the low half.
    MachineConfig config = machineConfig(order(), 0, 8);
    ByteStream stream(intBytes(UINT64_C(0xffffffff00000005), 8, order()));
    int value = 0;
    EXPECT_EQ(readBinaryInt(&value, stream.get(), &config), ReadStatus_Success);
    EXPECT_EQ(static_cast<uint32_t>(value), 0x80000005u);
}

TEST(BinaryIntegerWidthTest, BigEndianChecksEveryByteAheadOfTheLastFour) {
    MachineConfig config = machineConfig(1, 0, 12);
    ByteStream good(std::string(8, '\0') + intBytes(7, 4, 1));
    int value = 0;
    EXPECT_EQ(readBinaryInt(&value, good.get(), &config), ReadStatus_Success);
    EXPECT_EQ(value, 7);
    ByteStream bad(std::string(1, '\0') + std::string(1, '\x01') + std::string(6, '\0') + intBytes(7, 4, 1));
    EXPECT_EQ(readBinaryInt(&value, bad.get(), &config), ReadStatus_NumberOverflow);
}

TEST(BinaryIntegerWidthTest, LittleEndianChecksOnlyBytesFiveToEight) {
    MachineConfig config = machineConfig(0, 0, 12);
    ByteStream ignored(intBytes(7, 4, 0) + std::string(4, '\0') + bytesOf({0xab, 0xcd, 0x11, 0x00}));
    int value = 0;
    EXPECT_EQ(readBinaryInt(&value, ignored.get(), &config), ReadStatus_Success);
    EXPECT_EQ(value, 7);
    ByteStream bad(intBytes(7, 4, 0) + bytesOf({0, 0, 0, 1}) + std::string(4, '\0'));
    EXPECT_EQ(readBinaryInt(&value, bad.get(), &config), ReadStatus_NumberOverflow);
}

// ---- Two-byte integers ------------------------------------------------------------------------

TEST_P(BinaryIntegerTest, TwoByteIntegerKeepsItsBitsAndGetsOnlyTheSignBit) {
    MachineConfig config = machineConfig(order(), 0, 2);
    ByteStream stream(intBytes(5, 2, order()) + intBytes(0xfffe, 2, order()) + intBytes(0x7fff, 2, order()));
    int value = 0;
    EXPECT_EQ(readBinaryInt(&value, stream.get(), &config), ReadStatus_Success);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(readBinaryInt(&value, stream.get(), &config), ReadStatus_Success);
    EXPECT_EQ(static_cast<uint32_t>(value), 0x8000fffeu);  // not sign-extended
    EXPECT_EQ(readBinaryInt(&value, stream.get(), &config), ReadStatus_Success);
    EXPECT_EQ(value, 0x7fff);
    EXPECT_EQ(readBinaryInt(&value, stream.get(), &config), ReadStatus_EndOfFile);
}

// ---- Arrays of widths other than four ---------------------------------------------------------

TEST_P(BinaryIntegerTest, EightByteArrayRefillsTheSameSlotsAndEndsInAReadError) {
    // Seven items, three asked for: the reader fills slots 0..2 with items 0..2,
    // then again with items 3..5, then comes up short on item 6.
    MachineConfig config = machineConfig(order(), 0, 8);
    std::string bytes;
    for (uint64_t i = 0; i < 7; ++i)
        bytes += intBytes(((10 + i) << 32) | (1000 + i), 8, order());
    ByteStream stream(bytes);
    int values[4] = {-1, -1, -1, -1};
    EXPECT_EQ(readBinaryInts(values, 3, &config, stream.get()), ReadStatus_ReadError);
    EXPECT_EQ(stream.position(), 56);
    // Of each item the four bytes at its start: the low half of a little-endian
    // item, the high half of a big-endian one.
    for (int k = 0; k < 3; ++k)
        EXPECT_EQ(values[k], order() == 0 ? 1003 + k : 13 + k) << k;
    EXPECT_EQ(values[3], -1);
}

TEST_P(BinaryIntegerTest, EightByteArrayEndsInAReadErrorEvenWhenTheFileHoldsExactlyTheItems) {
    MachineConfig config = machineConfig(order(), 0, 8);
    std::string bytes;
    for (uint64_t i = 0; i < 3; ++i)
        bytes += intBytes(i + 1, 8, order());
    ByteStream stream(bytes + ")");
    int values[3] = {};
    EXPECT_FALSE(readSectionInts(values, 3, &config, stream.get(), "Cells", 2012));
    expectOneError("Read error while reading Cells section (section 2012).");
    EXPECT_TRUE(feof(stream.get()));
}

TEST_P(BinaryIntegerTest, TwoByteArrayIsSignExtendedNativelyAndEndsInAReadError) {
    MachineConfig config = machineConfig(order(), 0, 2);
    const std::vector<int16_t> items = {1, -3, 7, -9, 11};
    std::string bytes;
    for (int16_t v : items)
        bytes += intBytes(static_cast<uint16_t>(v), 2, order());
    ByteStream stream(bytes);
    int values[2] = {};
    EXPECT_EQ(readBinaryInts(values, 2, &config, stream.get()), ReadStatus_ReadError);
    EXPECT_EQ(stream.position(), 10);
    // Slots hold items 2 and 3: each two bytes taken as a native short and
    // widened; the four-byte result reversed when the orders differ.
    for (int k = 0; k < 2; ++k) {
        const std::string itemBytes = intBytes(static_cast<uint16_t>(items[2 + k]), 2, order());
        int16_t native;
        std::memcpy(&native, itemBytes.data(), 2);
        const int32_t expected = order() == hostByteOrder ? native : reversed32(native);
        EXPECT_EQ(values[k], expected) << k;
    }
    if (order() == hostByteOrder) {
        EXPECT_EQ(values[0], 7);
        EXPECT_EQ(values[1], -9);
    }
}

TEST_P(BinaryIntegerTest, ArrayOfAnOddWidthIsAReadError) {
    MachineConfig config = machineConfig(order(), 0, 3);
    ByteStream stream(std::string(30, '\x01'));
    int values[2] = {};
    EXPECT_EQ(readBinaryInts(values, 2, &config, stream.get()), ReadStatus_ReadError);
}

TEST_P(BinaryIntegerTest, EmptyArrayReadsNothing) {
    MachineConfig config = machineConfig(order(), 0, 8);
    ByteStream stream("abc");
    EXPECT_EQ(readBinaryInts(nullptr, 0, &config, stream.get()), ReadStatus_Success);
    EXPECT_EQ(stream.position(), 0);
}

}  // namespace
}  // namespace fluentio_test
