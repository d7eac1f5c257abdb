// The fast ASCII reader gives what n calls of fscanf("%lg") give: the same
// values bit for bit, the same count, the same stream position and state.

#include <gtest/gtest.h>

#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "datafile/AsciiReals.h"

namespace {

struct Outcome {
    int count = 0;
    std::vector<uint64_t> bits;  // the values read, as bit patterns
    long long position = -1;
    bool eof = false;
    bool error = false;
    int next = EOF;  // the character the stream gives next
};

FILE* streamOf(const std::string& text) {
    FILE* f = tmpfile();
    fwrite(text.data(), 1, text.size(), f);
    rewind(f);
    return f;
}

Outcome outcomeOf(FILE* f, const std::vector<double>& values, int count) {
    Outcome o;
    o.count = count;
    for (int i = 0; i < count; ++i) {
        uint64_t b;
        memcpy(&b, &values[static_cast<size_t>(i)], sizeof b);
        o.bits.push_back(b);
    }
    o.position = ftello(f);
    o.eof = feof(f) != 0;
    o.error = ferror(f) != 0;
    o.next = getc(f);
    return o;
}

Outcome withFscanf(const std::string& text, int n) {
    FILE* f = streamOf(text);
    std::vector<double> values(static_cast<size_t>(n > 0 ? n : 1));
    int i = 0;
    while (i < n && fscanf(f, "%lg", &values[static_cast<size_t>(i)]) == 1) {
        ++i;
    }
    Outcome o = outcomeOf(f, values, i);
    fclose(f);
    return o;
}

Outcome withFastReader(const std::string& text, int n) {
    FILE* f = streamOf(text);
    std::vector<double> values(static_cast<size_t>(n > 0 ? n : 1));
    const int count = readAsciiReals(values.data(), n, f);
    Outcome o = outcomeOf(f, values, count);
    fclose(f);
    return o;
}

void expectSame(const std::string& text, int n) {
    const Outcome a = withFscanf(text, n);
    const Outcome b = withFastReader(text, n);
    const std::string shown = text.size() > 200 ? text.substr(0, 200) + "..." : text;
    EXPECT_EQ(a.count, b.count) << shown;
    EXPECT_EQ(a.bits, b.bits) << shown;
    EXPECT_EQ(a.position, b.position) << shown;
    EXPECT_EQ(a.eof, b.eof) << shown;
    EXPECT_EQ(a.error, b.error) << shown;
    EXPECT_EQ(a.next, b.next) << shown;
}

double bitsToDouble(uint64_t bits) {
    double d;
    memcpy(&d, &bits, sizeof d);
    return d;
}

}  // namespace

TEST(AsciiReals, ManyValuesInEveryFormatAFileHolds) {
    std::mt19937_64 random(20240611);
    std::vector<double> values = {0.0,
                                  -0.0,
                                  1.0,
                                  -1.0,
                                  0.1,
                                  1e-5,
                                  123456789012345678.0,
                                  DBL_MAX,
                                  -DBL_MAX,
                                  DBL_MIN,
                                  std::numeric_limits<double>::denorm_min(),
                                  -std::numeric_limits<double>::denorm_min(),
                                  2.2250738585072009e-308,
                                  4.9406564584124654e-324,
                                  1.7976931348623157e308,
                                  FLT_MAX,
                                  FLT_MIN,
                                  1e-45,
                                  9007199254740993.0};
    for (int i = 0; i < 20000; ++i) {
        values.push_back(bitsToDouble(random()));  // every exponent, subnormals, and NaN patterns
    }
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-320, 308);
    for (int i = 0; i < 20000; ++i) {
        values.push_back(unit(random) * std::pow(10.0, exponent(random)));
    }
    const char* formats[] = {"%.17g", "%.16g", "%.15g", "%g",     "%.6e",
                             "%.20e", "%.3f",  "%a",    "%+.10g", "%.0f"};
    const char* separators[] = {" ", "\n", "\t", "\r\n", "  \n ", "\v", "\f"};
    std::string text;
    int n = 0;
    char buffer[512];
    for (size_t i = 0; i < values.size(); ++i) {
        const char* format = formats[random() % (sizeof formats / sizeof formats[0])];
        if (std::isnan(values[i]) || std::isinf(values[i])) {
            format = "%.17g";  // "nan", "inf", "-nan": fscanf forms too
        }
        if (strcmp(format, "%.0f") == 0 && std::fabs(values[i]) > 1e30) {
            format = "%.17g";
        }
        snprintf(buffer, sizeof buffer, format, values[i]);
        text += buffer;
        text += separators[random() % (sizeof separators / sizeof separators[0])];
        ++n;
    }
    text += ")";
    expectSame(text, n);
    expectSame(text, n + 1);
    expectSame(text, n / 2);
}

TEST(AsciiReals, DecimalFormsAtTheirEdges) {
    const std::vector<std::string> numbers = {"1e-400",
                                              "-1e-400",
                                              "1e400",
                                              "-1e400",
                                              "2.4703282292062327e-324",
                                              "2.4703282292062328e-324",
                                              "1.7976931348623158e308",
                                              "1.7976931348623159e308",
                                              "+5",
                                              "-.5",
                                              ".5",
                                              "5.",
                                              "1E5",
                                              "1e+05",
                                              "1e-05",
                                              "00001.5000",
                                              "0.000000000000000000000000000001",
                                              "123456789012345678901234567890123456789012345678901234567890",
                                              "1.00000000000000011102230246251565404236316680908203125",
                                              "1.000000000000000111022302462515654042363166809082031251"};
    std::string text;
    for (const std::string& n : numbers) {
        text += n + "\n";
        expectSame(n, 1);
        expectSame(n + " ", 1);
        expectSame(" \n" + n + ")", 1);
    }
    expectSame(text, static_cast<int>(numbers.size()));
}

TEST(AsciiReals, EverythingFscanfTreatsSpeciallyGoesTheSameWay) {
    const std::vector<std::string> tails = {"1e)",
                                            "1e+ 2",
                                            "1.5-2.5 3",
                                            "0x1p3 4",
                                            "0X1.8P1 5",
                                            "-0x10 6",
                                            "inf 7",
                                            "-inf 8",
                                            "nan 9",
                                            "NaN(123) 10",
                                            "infinity 11",
                                            "1.#QNAN0 12",
                                            "abc 13",
                                            ". 14",
                                            "+ 15",
                                            "- 16",
                                            "1..2 17",
                                            "1e5e5 18",
                                            "--1 19",
                                            "+-1 20",
                                            "1.5x 21",
                                            "2e5abc 22",
                                            "1_000 23",
                                            "4,5 24",
                                            "(6 25",
                                            ")7",
                                            "1e5.5 26",
                                            "e5 27",
                                            ".e5 28",
                                            "1.5E+ 29",
                                            std::string(100, '7') + " 30",
                                            "1" + std::string(80, '0') + "e-80 31",
                                            "\x01 32",
                                            "9\xff 33"};
    for (const std::string& tail : tails) {
        const std::string text = "1.25 " + tail + " 99 100";
        for (int n = 1; n <= 5; ++n) {
            expectSame(text, n);
        }
    }
}

TEST(AsciiReals, EndOfFileInEveryPlace) {
    expectSame("", 1);
    expectSame("   \n", 1);
    expectSame("1.5", 1);
    expectSame("1.5", 2);
    expectSame("1.5 2.5\n", 3);
    expectSame("1e", 1);
    expectSame("-", 1);
    expectSame("1.5 ", 0);
    expectSame("1.5 ", -1);
}

TEST(AsciiReals, StreamsThatCannotTellTheirPositionAreReadByFscanf) {
    struct Source {
        std::string text;
        size_t at = 0;
    };
    cookie_io_functions_t functions{};
    functions.read = [](void* cookie, char* buffer, size_t size) -> ssize_t {
        Source* s = static_cast<Source*>(cookie);
        const size_t n = std::min(size, s->text.size() - s->at);
        memcpy(buffer, s->text.data() + s->at, n);
        s->at += n;
        return static_cast<ssize_t>(n);
    };
    Source source{"1.5 2.5e3 0x10 4"};
    FILE* f = fopencookie(&source, "r", functions);
    ASSERT_NE(f, nullptr);
    double values[4] = {};
    EXPECT_EQ(readAsciiReals(values, 4, f), 4);
    EXPECT_EQ(values[0], 1.5);
    EXPECT_EQ(values[1], 2500.0);
    EXPECT_EQ(values[2], 16.0);
    EXPECT_EQ(values[3], 4.0);
    fclose(f);
}

TEST(AsciiReals, AnotherDecimalPointIsLeftToFscanf) {
    if (setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr && setlocale(LC_NUMERIC, "de_DE") == nullptr &&
        setlocale(LC_NUMERIC, "fr_FR.UTF-8") == nullptr) {
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    expectSame("1,5 2.5 3", 3);
    expectSame("1.5 2,5 3", 3);
    setlocale(LC_NUMERIC, "C");
}
