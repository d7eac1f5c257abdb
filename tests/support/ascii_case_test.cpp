// Comparison of texts with only a to z folded.
#include <gtest/gtest.h>

#include "support/AsciiCase.h"

namespace {

TEST(AsciiCaseTest, EndsWithFoldsLettersOnly) {
    EXPECT_TRUE(asciiEndsWithIgnoringCase("mesh.CAS.gz", "cas.GZ"));
    EXPECT_TRUE(asciiEndsWithIgnoringCase("mesh.cas", ".cas"));
    EXPECT_FALSE(asciiEndsWithIgnoringCase("mesh.cas", ".dat"));
    // Only a to z are folded: a byte above 127 compares as it is.
    EXPECT_TRUE(asciiEndsWithIgnoringCase("r\xe9sum\xe9", "SUM\xe9"));
    EXPECT_FALSE(asciiEndsWithIgnoringCase("r\xe9sum\xe9", "SUM\xc9"));
    EXPECT_FALSE(asciiEndsWithIgnoringCase("mesh_gz", ".gz"));
}

TEST(AsciiCaseTest, EndsWithNeedsTheWholeSuffixAndAText) {
    EXPECT_TRUE(asciiEndsWithIgnoringCase(".gz", ".GZ"));
    EXPECT_FALSE(asciiEndsWithIgnoringCase("gz", ".gz"));
    EXPECT_FALSE(asciiEndsWithIgnoringCase("", ".gz"));
    EXPECT_TRUE(asciiEndsWithIgnoringCase("", ""));
    EXPECT_TRUE(asciiEndsWithIgnoringCase("mesh", ""));
    EXPECT_FALSE(asciiEndsWithIgnoringCase(nullptr, ".gz"));
    EXPECT_FALSE(asciiEndsWithIgnoringCase(nullptr, ""));
}

}  // namespace
