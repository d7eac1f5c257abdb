// File-name tests, opening of case and data files, section id families and
// the host byte order.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "FluentioTestSupport.h"
#include "fluentio/SectionReader.h"

namespace fluentio_test {
namespace {

namespace fs = std::filesystem;

// A fresh folder below the system's temporary folder, removed at the end.
class ScratchFolder {
  public:
    ScratchFolder() {
        std::string pattern = (fs::temp_directory_path() / "fluentio-names-XXXXXX").string();
        if (mkdtemp(pattern.data()) != nullptr)
            path_ = pattern;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        if (!path_.empty())
            fs::remove_all(path_, ignored);
    }
    const fs::path& path() const { return path_; }

  private:
    fs::path path_;
};

using FileNamesTest = FluentioTest;
using OpenFluentFileTest = FluentioTest;

TEST(SectionIdTest, IdMatchesItsBaseAndBothBinaryFamilies) {
    EXPECT_TRUE(sectionIdMatches(13, 13));
    EXPECT_TRUE(sectionIdMatches(2013, 13));
    EXPECT_TRUE(sectionIdMatches(3013, 13));
    EXPECT_FALSE(sectionIdMatches(4013, 13));
    EXPECT_FALSE(sectionIdMatches(1013, 13));
    EXPECT_FALSE(sectionIdMatches(12, 13));
    EXPECT_FALSE(sectionIdMatches(2012, 13));
}

TEST(SectionIdTest, DoublePrecisionMeansAbove3000) {
    EXPECT_FALSE(sectionIdIsDoublePrecision(13));
    EXPECT_FALSE(sectionIdIsDoublePrecision(2013));
    EXPECT_FALSE(sectionIdIsDoublePrecision(3000));
    EXPECT_TRUE(sectionIdIsDoublePrecision(3001));
    EXPECT_TRUE(sectionIdIsDoublePrecision(3300));
}

TEST(SectionIdTest, KnownSeriesMeansBelow4000) {
    EXPECT_TRUE(sectionIdIsKnownSeries(0));
    EXPECT_TRUE(sectionIdIsKnownSeries(3999));
    EXPECT_FALSE(sectionIdIsKnownSeries(4000));
    EXPECT_FALSE(sectionIdIsKnownSeries(4013));
}

TEST(ReadStatusTest, NumbersAreFixed) {
    EXPECT_EQ(static_cast<int>(ReadStatus_Success), 0);
    EXPECT_EQ(static_cast<int>(ReadStatus_EndOfFile), 1);
    EXPECT_EQ(static_cast<int>(ReadStatus_ReadError), 2);
    EXPECT_EQ(static_cast<int>(ReadStatus_NumberOverflow), 3);
}

TEST(HostByteOrderTest, HoldsBeforeInitAndInitKeepsTheProbedValue) {
    const uint32_t word = 0x01020304u;
    unsigned char first;
    std::memcpy(&first, &word, 1);
    const int32_t expected = first == 0x04 ? 0 : 1;
    EXPECT_EQ(hostByteOrder, expected);
    initHostByteOrder();
    EXPECT_EQ(hostByteOrder, expected);
}

TEST_F(FileNamesTest, GzipSuffixIgnoresCaseAndNeedsThreeCharacters) {
    EXPECT_TRUE(isGzipFileName("mesh.cas.gz"));
    EXPECT_TRUE(isGzipFileName("mesh.cas.GZ"));
    EXPECT_TRUE(isGzipFileName("mesh.cas.gZ"));
    EXPECT_TRUE(isGzipFileName(".gz"));
    EXPECT_FALSE(isGzipFileName("gz"));
    EXPECT_FALSE(isGzipFileName("mesh.cas"));
    EXPECT_FALSE(isGzipFileName("mesh.gzip"));
    EXPECT_FALSE(isGzipFileName("mesh_gz"));
    EXPECT_FALSE(isGzipFileName(""));
}

TEST_F(FileNamesTest, DotZSuffixIgnoresCaseAndNeedsTwoCharacters) {
    EXPECT_TRUE(isDotZFileName("mesh.cas.Z"));
    EXPECT_TRUE(isDotZFileName("mesh.cas.z"));
    EXPECT_TRUE(isDotZFileName(".Z"));
    EXPECT_FALSE(isDotZFileName("Z"));
    EXPECT_FALSE(isDotZFileName("mesh.cas.gz"));
    EXPECT_FALSE(isDotZFileName("meshZ"));
}

TEST_F(FileNamesTest, CompressedIsEitherSuffix) {
    EXPECT_TRUE(isCompressedFileName("a.dat.gz"));
    EXPECT_TRUE(isCompressedFileName("a.dat.Z"));
    EXPECT_TRUE(isCompressedFileName("a.fdat.z"));
    EXPECT_FALSE(isCompressedFileName("a.dat"));
    EXPECT_FALSE(isCompressedFileName("a.xml"));
}

TEST_F(OpenFluentFileTest, NullNameSaysTheNameIsNotSpecified) {
    FILE* stream = nullptr;
    EXPECT_FALSE(openFluentFile(&stream, nullptr, "Case"));
    EXPECT_EQ(stream, nullptr);
    expectOneError("Fluent data loader: Case file name not specified.");
}

TEST_F(OpenFluentFileTest, EmptyNameSaysTheNameIsEmpty) {
    FILE* stream = nullptr;
    EXPECT_FALSE(openFluentFile(&stream, "", "Data"));
    EXPECT_EQ(stream, nullptr);
    expectOneError("Fluent data loader: Empty Data file name.");
}

TEST_F(OpenFluentFileTest, CompressedNameAnswersTrueAndLeavesTheStream) {
    FILE* sentinel = reinterpret_cast<FILE*>(0x1234);
    FILE* stream = sentinel;
    EXPECT_TRUE(openFluentFile(&stream, "does-not-exist.cas.gz", "Case"));
    EXPECT_EQ(stream, sentinel);
    stream = nullptr;
    EXPECT_TRUE(openFluentFile(&stream, "does-not-exist.cas.Z", "Case"));
    EXPECT_EQ(stream, nullptr);
    expectNoMessage();
}

TEST_F(OpenFluentFileTest, MissingFileSaysUnableToOpenWithTheName) {
    ScratchFolder folder;
    const std::string name = (folder.path() / "missing.cas").string();
    FILE* stream = nullptr;
    EXPECT_FALSE(openFluentFile(&stream, name.c_str(), "Case"));
    EXPECT_EQ(stream, nullptr);
    expectOneError("Fluent data loader: Unable to open Case file\n" + name + ".");
}

TEST_F(OpenFluentFileTest, OpensAnExistingFileForReading) {
    ScratchFolder folder;
    const std::string name = (folder.path() / "m\xc3\xa9sh \xe2\x82\xac.dat").string();  // non-ASCII name
    {
        FILE* out = fopen(name.c_str(), "wb");
        ASSERT_NE(out, nullptr);
        fputs("(0 \"hello\")", out);
        fclose(out);
    }
    FILE* stream = nullptr;
    ASSERT_TRUE(openFluentFile(&stream, name.c_str(), "Data"));
    ASSERT_NE(stream, nullptr);
    char text[32] = {};
    EXPECT_EQ(fread(text, 1, sizeof(text) - 1, stream), 11u);
    EXPECT_STREQ(text, "(0 \"hello\")");
    fclose(stream);
    expectNoMessage();
}

TEST_F(FileNamesTest, OpenFilePathWritesAndReadsAndGivesNullForAMissingFolder) {
    ScratchFolder folder;
    const std::string name = (folder.path() / "copy.cas").string();
    FILE* out = openFilePath(name.c_str(), "wb");
    ASSERT_NE(out, nullptr);
    fputs("abc", out);
    fclose(out);
    FILE* in = openFilePath(name.c_str(), "rb");
    ASSERT_NE(in, nullptr);
    EXPECT_EQ(getc(in), 'a');
    fclose(in);
    EXPECT_EQ(openFilePath((folder.path() / "no-folder" / "x.cas").string().c_str(), "rb"), nullptr);
    expectNoMessage();
}

}  // namespace
}  // namespace fluentio_test
