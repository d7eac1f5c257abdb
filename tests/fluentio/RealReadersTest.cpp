// Reals of section bodies: ASCII, binary single and double precision in both
// byte orders, base64 text, and the non-IEEE real format.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "FluentioTestSupport.h"
#include "fluentio/SectionReader.h"

namespace fluentio_test {
namespace {

using AsciiRealTest = FluentioTest;
using Base64RealTest = FluentioTest;
using NonIeeeRealTest = FluentioTest;

class BinaryRealTest : public FluentioTest, public ::testing::WithParamInterface<int> {
  protected:
    int order() const { return GetParam(); }
};

INSTANTIATE_TEST_SUITE_P(ByteOrders, BinaryRealTest, ::testing::Values(0, 1),
                         [](const ::testing::TestParamInfo<int>& info) {
                             return std::string(info.param == 0 ? "LittleEndian" : "BigEndian");
                         });

// Base64 text of the bytes (standard alphabet, '=' padding).
std::string base64(const std::string& bytes) {
    static const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    size_t k = 0;
    for (; k + 2 < bytes.size(); k += 3) {
        const uint32_t group = (static_cast<unsigned char>(bytes[k]) << 16) |
                               (static_cast<unsigned char>(bytes[k + 1]) << 8) |
                               static_cast<unsigned char>(bytes[k + 2]);
        for (int shift = 18; shift >= 0; shift -= 6)
            text.push_back(alphabet[(group >> shift) & 63]);
    }
    if (k + 1 == bytes.size()) {
        const uint32_t group = static_cast<unsigned char>(bytes[k]) << 16;
        text += std::string{alphabet[(group >> 18) & 63], alphabet[(group >> 12) & 63], '=', '='};
    } else if (k + 2 == bytes.size()) {
        const uint32_t group =
            (static_cast<unsigned char>(bytes[k]) << 16) | (static_cast<unsigned char>(bytes[k + 1]) << 8);
        text += std::string{alphabet[(group >> 18) & 63], alphabet[(group >> 12) & 63],
                            alphabet[(group >> 6) & 63], '='};
    }
    return text;
}

// The native bytes of floats, as base64 text carries them.
std::string nativeFloatBytes(const std::vector<float>& values) {
    std::string bytes(values.size() * 4, '\0');
    std::memcpy(&bytes[0], values.data(), bytes.size());
    return bytes;
}

// A normal double in the non-IEEE format of `width` bytes: sign, exponent
// e = E + 15362 in 15 bits, then the mantissa with its explicit leading one
// from bit 7 of byte 2 on, cut off at the item's end.
std::string nonIeeeBytes(double value, int width) {
    uint64_t bits;
    std::memcpy(&bits, &value, 8);
    const unsigned sign = static_cast<unsigned>(bits >> 63);
    const unsigned exponent = static_cast<unsigned>((bits >> 52) & 0x7ff);
    const uint64_t mantissa = bits & ((UINT64_C(1) << 52) - 1);
    const unsigned e = exponent + 15362;
    std::string bytes(static_cast<size_t>(width), '\0');
    bytes[0] = static_cast<char>((sign << 7) | ((e >> 8) & 0x7f));
    bytes[1] = static_cast<char>(e & 0xff);
    for (int bit = 0; bit < 53; ++bit) {
        const bool set = bit == 0 || ((mantissa >> (52 - bit)) & 1) != 0;
        const int index = 2 + bit / 8;
        if (set && index < width)
            bytes[static_cast<size_t>(index)] |= static_cast<char>(0x80 >> (bit % 8));
    }
    return bytes;
}

// The double with the lowest `dropped` bits of its mantissa cleared.
double truncatedMantissa(double value, int dropped) {
    uint64_t bits;
    std::memcpy(&bits, &value, 8);
    bits &= ~((UINT64_C(1) << dropped) - 1);
    double result;
    std::memcpy(&result, &bits, 8);
    return result;
}

// ---- ASCII ------------------------------------------------------------------------------------

TEST_F(AsciiRealTest, RealsAreReadAsDecimalNumbers) {
    ByteStream stream(" 1.5e3\n-0.25 7 1e-300 )");
    MachineConfig config{};
    double value = 0;
    ASSERT_TRUE(readSectionReal(&value, &config, stream.get(), 300));
    EXPECT_EQ(value, 1500.0);
    double values[3] = {};
    ASSERT_TRUE(readSectionReals(values, 3, &config, stream.get(), "Data", 300, false));
    EXPECT_EQ(values[0], -0.25);
    EXPECT_EQ(values[1], 7.0);
    EXPECT_EQ(values[2], 1e-300);
    EXPECT_EQ(stream.rest(), " )");
    expectNoMessage();
}

TEST_F(AsciiRealTest, SingleRealAlwaysNamesTheDataSection) {
    ByteStream stream("abc");
    MachineConfig config{};
    double value = 0;
    EXPECT_FALSE(readSectionReal(&value, &config, stream.get(), 10));
    expectOneError("Parse error while reading Data section (section 10).");
}

TEST_F(AsciiRealTest, ArrayStopsAtTheFirstFailureWithTheGivenSectionName) {
    ByteStream stream("1 2 x 4");
    MachineConfig config{};
    double values[4] = {0, 0, -1, -1};
    EXPECT_FALSE(readSectionReals(values, 4, &config, stream.get(), "Nodes", 10, false));
    EXPECT_EQ(values[1], 2.0);
    EXPECT_EQ(values[3], -1.0);
    expectOneError("Parse error while reading Nodes section (section 10).");
}

TEST_F(AsciiRealTest, ArrayEndOfFileIsReported) {
    ByteStream stream("1 2");
    MachineConfig config{};
    double values[3] = {};
    EXPECT_FALSE(readSectionReals(values, 3, &config, stream.get(), "Nodes", 10, false));
    expectOneError("End-of-file while reading Nodes section (section 10).");
}

// ---- Binary IEEE ---------------------------------------------------------------------------------

TEST_P(BinaryRealTest, SingleRealsAreWidened) {
    const std::vector<float> expected = {3.25f, -0.1f, 1e-30f, std::numeric_limits<float>::max(), 0.0f};
    std::string bytes;
    for (float v : expected)
        bytes += floatBytes(v, order());
    ByteStream stream(floatBytes(-7.5f, order()) + bytes + ")");
    MachineConfig config = machineConfig(order());
    double value = 0;
    ASSERT_TRUE(readSectionReal(&value, &config, stream.get(), 2300));
    EXPECT_EQ(value, -7.5);
    std::vector<double> values(expected.size());
    ASSERT_TRUE(readSectionReals(values.data(), static_cast<int>(values.size()), &config, stream.get(),
                                 "Data", 2300, false));
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(values[i], static_cast<double>(expected[i])) << i;
    EXPECT_EQ(stream.rest(), ")");
    expectNoMessage();
}

TEST_P(BinaryRealTest, DoubleRealsAreReadInPlace) {
    const std::vector<double> expected = {-1.0 / 3.0, 6.02214076e23, 5e-324, -0.0, 12345.678};
    std::string bytes;
    for (double v : expected)
        bytes += doubleBytes(v, order());
    ByteStream stream(doubleBytes(2.0 / 3.0, order()) + bytes + ")");
    MachineConfig config = machineConfig(order());
    double value = 0;
    ASSERT_TRUE(readSectionReal(&value, &config, stream.get(), 3300));
    EXPECT_EQ(value, 2.0 / 3.0);
    std::vector<double> values(expected.size());
    ASSERT_TRUE(readSectionReals(values.data(), static_cast<int>(values.size()), &config, stream.get(),
                                 "Data", 3300, false));
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(values[i], expected[i]) << i;
        EXPECT_EQ(std::signbit(values[i]), std::signbit(expected[i])) << i;
    }
    EXPECT_EQ(stream.rest(), ")");
}

TEST_P(BinaryRealTest, LargeArraysOfBothWidths) {
    const int n = 100000;
    std::string singles;
    std::string doubles;
    for (int i = 0; i < n; ++i) {
        singles += floatBytes(static_cast<float>(i) * 0.5f - 100.0f, order());
        doubles += doubleBytes(static_cast<double>(i) / 7.0, order());
    }
    ByteStream stream(singles + doubles);
    MachineConfig config = machineConfig(order());
    std::vector<double> values(n);
    ASSERT_EQ(readBinaryFloats(values.data(), n, &config, stream.get()), ReadStatus_Success);
    for (int i = 0; i < n; ++i)
        ASSERT_EQ(values[i], static_cast<double>(static_cast<float>(i) * 0.5f - 100.0f)) << i;
    ASSERT_EQ(readBinaryDoubles(values.data(), n, &config, stream.get()), ReadStatus_Success);
    for (int i = 0; i < n; ++i)
        ASSERT_EQ(values[i], static_cast<double>(i) / 7.0) << i;
}

TEST_P(BinaryRealTest, SingleRealOfEightBytesIsTakenFromItsLowFourBytes) {
    // floatSize 8: the whole width is reversed when the orders differ, and the
    // first four bytes then make the float.
    MachineConfig config = machineConfig(order(), 0, 4, 8, 8);
    const std::string item = order() == hostByteOrder ? floatBytes(1.75f, order()) + std::string(4, '\x55')
                                                      : std::string(4, '\x55') + floatBytes(1.75f, order());
    ByteStream stream(item);
    double value = 0;
    ASSERT_TRUE(readSectionReal(&value, &config, stream.get(), 2300));
    EXPECT_EQ(value, 1.75);
    EXPECT_EQ(stream.position(), 8);
}

TEST_P(BinaryRealTest, ShortSingleRealIsEndOfFileInTheDataSection) {
    ByteStream stream("ab");
    MachineConfig config = machineConfig(order());
    double value = 0;
    EXPECT_FALSE(readSectionReal(&value, &config, stream.get(), 2300));
    expectOneError("End-of-file while reading Data section (section 2300).");
}

TEST_P(BinaryRealTest, ShortFloatArrayIsEndOfFile) {
    ByteStream stream(floatBytes(1.0f, order()) + "ab");
    MachineConfig config = machineConfig(order());
    double values[2] = {};
    EXPECT_FALSE(readSectionReals(values, 2, &config, stream.get(), "Data", 2300, false));
    expectOneError("End-of-file while reading Data section (section 2300).");
}

TEST_P(BinaryRealTest, ShortDoubleArrayIsAReadErrorEvenAtEndOfFile) {
    ByteStream stream(doubleBytes(1.0, order()) + "abcd");
    MachineConfig config = machineConfig(order());
    double values[2] = {};
    EXPECT_FALSE(readSectionReals(values, 2, &config, stream.get(), "Data", 3300, false));
    EXPECT_TRUE(feof(stream.get()));
    expectOneError("Read error while reading Data section (section 3300).");
}

TEST_P(BinaryRealTest, FloatFormatTwoIsIeee) {
    MachineConfig config = machineConfig(order(), 2);
    ByteStream stream(doubleBytes(0.125, order()));
    double value = 0;
    ASSERT_TRUE(readSectionReal(&value, &config, stream.get(), 3300));
    EXPECT_EQ(value, 0.125);
}

// ---- Base64 text ---------------------------------------------------------------------------------

TEST_F(Base64RealTest, LineOfNativeFloatsIsDecodedAndWidened) {
    const std::vector<float> expected = {1.5f, -2.25f, 3e8f, 0.1f, -0.0f};
    ByteStream stream(base64(nativeFloatBytes(expected)) + "\n)next");
    // The byte order of the file does not apply to base64 text.
    MachineConfig config = machineConfig(1 - hostByteOrder);
    std::vector<double> values(expected.size());
    ASSERT_TRUE(readSectionReals(values.data(), static_cast<int>(values.size()), &config, stream.get(),
                                 "Particle Data", 2300, true));
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(values[i], static_cast<double>(expected[i])) << i;
    EXPECT_EQ(stream.rest(), ")next");
    expectNoMessage();
}

TEST_F(Base64RealTest, LongLineIsReadWhole) {
    std::vector<float> expected(30000);
    for (size_t i = 0; i < expected.size(); ++i)
        expected[i] = static_cast<float>(i) * 0.25f;
    ByteStream stream(base64(nativeFloatBytes(expected)) + "\n");
    std::vector<double> values(expected.size());
    ASSERT_EQ(readBase64Floats(values.data(), static_cast<int>(values.size()), stream.get()),
              ReadStatus_Success);
    for (size_t i = 0; i < expected.size(); ++i)
        ASSERT_EQ(values[i], static_cast<double>(expected[i])) << i;
}

TEST_F(Base64RealTest, WrongCountIsAReadError) {
    const std::vector<float> floats = {1.0f, 2.0f, 3.0f};
    ByteStream stream(base64(nativeFloatBytes(floats)) + "\n");
    MachineConfig config = machineConfig(hostByteOrder);
    double values[4] = {};
    EXPECT_FALSE(readSectionReals(values, 4, &config, stream.get(), "Particle Data", 2300, true));
    expectOneError("Read error while reading Particle Data section (section 2300).");
}

TEST_F(Base64RealTest, EmptyStreamIsAReadError) {
    ByteStream stream("");
    double value = 0;
    EXPECT_EQ(readBase64Floats(&value, 1, stream.get()), ReadStatus_ReadError);
}

// ---- The non-IEEE real format -----------------------------------------------------------------------

TEST_F(NonIeeeRealTest, HandBuiltItemsConvert) {
    // 1.0: e = 1023 + 15362 = 0x4001, explicit one, nothing else.
    const std::string one = bytesOf({0x40, 0x01, 0x80, 0, 0, 0, 0, 0});
    // -2.5 = -1.25 * 2^1: sign, e = 0x4002, mantissa .01 after the explicit one.
    const std::string minusTwoAndAHalf = bytesOf({0xc0, 0x02, 0xa0, 0, 0, 0, 0, 0});
    // 0.75 = 1.5 * 2^-1: e = 1022 + 15362 = 0x4000, mantissa .1.
    const std::string threeQuarters = bytesOf({0x40, 0x00, 0xc0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    double value = 0;
    ASSERT_TRUE(convertNonIeeeReal(&value, reinterpret_cast<const unsigned char*>(one.data()), 8));
    EXPECT_EQ(value, 1.0);
    ASSERT_TRUE(
        convertNonIeeeReal(&value, reinterpret_cast<const unsigned char*>(minusTwoAndAHalf.data()), 8));
    EXPECT_EQ(value, -2.5);
    ASSERT_TRUE(convertNonIeeeReal(&value, reinterpret_cast<const unsigned char*>(threeQuarters.data()), 12));
    EXPECT_EQ(value, 0.75);
}

TEST_F(NonIeeeRealTest, TwelveByteItemsKeepTheWholeMantissaEightByteItemsLoseFiveBits) {
    for (double v : {3.141592653589793, -1.0 / 3.0, 1e100, -2.718281828459045e-200}) {
        const std::string wide = nonIeeeBytes(v, 12);
        const std::string narrow = nonIeeeBytes(v, 8);
        double value = 0;
        ASSERT_TRUE(convertNonIeeeReal(&value, reinterpret_cast<const unsigned char*>(wide.data()), 12));
        EXPECT_EQ(value, v);
        ASSERT_TRUE(convertNonIeeeReal(&value, reinterpret_cast<const unsigned char*>(narrow.data()), 8));
        EXPECT_EQ(value, truncatedMantissa(v, 5));
    }
}

TEST_F(NonIeeeRealTest, ExponentRangeEndsAt15364And17409) {
    std::string item = bytesOf({0x3c, 0x04, 0x80, 0, 0, 0, 0, 0});  // e = 15364: 2^(2 - 1023)
    double value = 0;
    ASSERT_TRUE(convertNonIeeeReal(&value, reinterpret_cast<const unsigned char*>(item.data()), 8));
    EXPECT_EQ(value, std::ldexp(1.0, -1021));
    item[1] = 0x03;  // e = 15363
    EXPECT_FALSE(convertNonIeeeReal(&value, reinterpret_cast<const unsigned char*>(item.data()), 8));
    item = bytesOf({0x44, 0x01, 0x80, 0, 0, 0, 0, 0});  // e = 17409: the double's exponent is all ones
    ASSERT_TRUE(convertNonIeeeReal(&value, reinterpret_cast<const unsigned char*>(item.data()), 8));
    EXPECT_TRUE(std::isinf(value));
    item[1] = 0x02;  // e = 17410
    EXPECT_FALSE(convertNonIeeeReal(&value, reinterpret_cast<const unsigned char*>(item.data()), 8));
}

TEST_F(NonIeeeRealTest, ZeroDoesNotConvert) {
    const std::string zero(12, '\0');
    double value = -1;
    EXPECT_FALSE(convertNonIeeeReal(&value, reinterpret_cast<const unsigned char*>(zero.data()), 12));
    ByteStream stream(zero);
    EXPECT_EQ(convertNonIeeeReals(&value, 1, false, stream.get()), ReadStatus_NumberOverflow);
}

TEST_F(NonIeeeRealTest, ZeroInASectionIsANumberOverflow) {
    MachineConfig config = machineConfig(hostByteOrder, 1, 4, 8, 12);
    ByteStream stream(nonIeeeBytes(1.0, 12) + std::string(12, '\0'));
    double values[2] = {};
    EXPECT_FALSE(readSectionReals(values, 2, &config, stream.get(), "Data", 3300, false));
    expectOneError("Number overflow while reading Data section (section 3300).");
}

TEST_F(NonIeeeRealTest, SingleRealOfTheSectionUsesTheConfiguredWidth) {
    MachineConfig config = machineConfig(1, 1, 4, 8, 12);
    ByteStream stream(nonIeeeBytes(-6.5, 8) + nonIeeeBytes(1.0 / 3.0, 12) + std::string(8, '\0'));
    double value = 0;
    ASSERT_TRUE(readSectionReal(&value, &config, stream.get(), 2300));
    EXPECT_EQ(value, -6.5);
    ASSERT_TRUE(readSectionReal(&value, &config, stream.get(), 3300));
    EXPECT_EQ(value, 1.0 / 3.0);
    EXPECT_FALSE(readSectionReal(&value, &config, stream.get(), 2300));
    expectOneError("Number overflow while reading Data section (section 2300).");
}

TEST_F(NonIeeeRealTest, ArraysUseEightAndTwelveByteItemsWhateverTheConfiguration) {
    // Widths in the configuration are ignored by the array readers.
    MachineConfig config = machineConfig(0, 3, 4, 4, 8);
    const std::vector<double> expected = {1.0, -0.5, 1234.5, 1e-10};
    std::string singles;
    std::string doubles;
    for (double v : expected) {
        singles += nonIeeeBytes(v, 8);
        doubles += nonIeeeBytes(v, 12);
    }
    ByteStream stream(singles + doubles + ")");
    std::vector<double> values(expected.size());
    ASSERT_TRUE(readSectionReals(values.data(), 4, &config, stream.get(), "Data", 2300, false));
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(values[i], truncatedMantissa(expected[i], 5)) << i;
    ASSERT_TRUE(readSectionReals(values.data(), 4, &config, stream.get(), "Data", 3300, false));
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(values[i], expected[i]) << i;
    EXPECT_EQ(stream.rest(), ")");
    expectNoMessage();
}

TEST_F(NonIeeeRealTest, ShortArrayIsEndOfFile) {
    ByteStream stream(nonIeeeBytes(1.0, 12) + "abc");
    double values[2] = {};
    EXPECT_EQ(convertNonIeeeReals(values, 2, false, stream.get()), ReadStatus_EndOfFile);
}

}  // namespace
}  // namespace fluentio_test
