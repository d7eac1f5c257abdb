// Uncompressing gzip files: names of the copies, the save and overwrite
// questions, layouts, progress, and every failure message.
#include <unistd.h>
#include <zlib.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "FluentioTestSupport.h"
#include "fluentio/CompressedFile.h"
#include "fluentio/SectionReader.h"
#include "host/ZorUtil.h"

namespace fluentio_test {
namespace {

namespace fs = std::filesystem;

const char* const kSaveQuestion = "Save the uncompressed files to the compressed files' locations?";

std::string readWholeFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeWholeFile(const fs::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary);
    out << bytes;
}

// Content that looks like a small case file, repeated to the size wanted.
std::string caseText(size_t size) {
    std::string text;
    int k = 0;
    while (text.size() < size)
        text += "(10 (" + std::to_string(k++) + " 1 8 0 3))\n";
    text.resize(size);
    return text;
}

// A scratch folder that also serves as the host's temporary folder, and a
// host that answers every question with yes unless a test scripts otherwise.
class UncompressTest : public FluentioTest {
  protected:
    void SetUp() override {
        FluentioTest::SetUp();
        std::string pattern = (fs::temp_directory_path() / "fluentio-gz-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
        const char* previous = std::getenv("TMPDIR");
        hadTmpDir_ = previous != nullptr;
        if (hadTmpDir_)
            previousTmpDir_ = previous;
        tempFolder_ = folder_ / "tmp";
        fs::create_directory(tempFolder_);
        setenv("TMPDIR", tempFolder_.c_str(), 1);
    }
    void TearDown() override {
        if (hadTmpDir_) {
            setenv("TMPDIR", previousTmpDir_.c_str(), 1);
        } else {
            unsetenv("TMPDIR");
        }
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
        FluentioTest::TearDown();
    }

    // Writes a gzip file of the content below the scratch folder; its full name.
    std::string gzipFile(const std::string& name, const std::string& content) {
        const fs::path path = folder_ / name;
        gzFile out = gzopen(path.c_str(), "wb");
        EXPECT_NE(out, nullptr);
        if (out != nullptr) {
            EXPECT_EQ(gzwrite(out, content.data(), static_cast<unsigned>(content.size())),
                      static_cast<int>(content.size()));
            gzclose(out);
        }
        return path.string();
    }

    // Calls the uncompression with the flags, a progress callback that records
    // its texts, and frees the name it gives into `result`.
    bool uncompress(const std::string& name, std::string* result) {
        char* newName = nullptr;
        const bool ok = uncompressFluentFile(name.c_str(), &newName, save, askSave, overwrite, askOverwrite,
                                             [this](const std::string& text) {
                                                 progressTexts.push_back(text);
                                                 return true;
                                             });
        if (result != nullptr)
            *result = newName == nullptr ? std::string() : std::string(newName);
        nullNameAfterCall = newName == nullptr;
        ZorUtilStringDealloc(&newName);
        return ok;
    }

    fs::path folder_;
    fs::path tempFolder_;
    bool hadTmpDir_ = false;
    std::string previousTmpDir_;

    bool save = false;
    bool askSave = false;
    bool overwrite = true;
    bool askOverwrite = false;
    std::vector<std::string> progressTexts;
    bool nullNameAfterCall = false;
};

bool endsWith(const std::string& text, const std::string& suffix) {
    return text.size() >= suffix.size() &&
           text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

TEST_F(UncompressTest, UpperCaseGzCaseFileGetsATemporaryNameEndingInCas) {
    const std::string content = caseText(3000);
    const std::string name = gzipFile("mesh.cas.GZ", content);
    ASSERT_TRUE(isCompressedFileName(name.c_str()));
    std::string copy;
    ASSERT_TRUE(uncompress(name, &copy));
    EXPECT_TRUE(endsWith(copy, ".cas")) << copy;
    EXPECT_EQ(fs::path(copy).parent_path(), tempFolder_);
    EXPECT_EQ(readWholeFile(copy), content);
    expectNoMessage();
}

TEST_F(UncompressTest, SaveBesideDropsTheGzSuffix) {
    save = true;
    const std::string content = caseText(500);
    const std::string dat = gzipFile("foo.dat.gz", content);
    std::string copy;
    ASSERT_TRUE(uncompress(dat, &copy));
    EXPECT_EQ(copy, (folder_ / "foo.dat").string());
    EXPECT_EQ(readWholeFile(copy), content);

    const std::string bare = gzipFile("foo.gz", content);
    ASSERT_TRUE(uncompress(bare, &copy));
    EXPECT_EQ(copy, (folder_ / "foo").string());
    EXPECT_EQ(readWholeFile(copy), content);
    expectNoMessage();
}

TEST_F(UncompressTest, TemporaryNameEndsInDatForAnythingButCasGz) {
    const std::string content = caseText(200);
    std::string copy;
    ASSERT_TRUE(uncompress(gzipFile("foo.gz", content), &copy));
    EXPECT_TRUE(endsWith(copy, ".dat")) << copy;
    EXPECT_EQ(readWholeFile(copy), content);
    ASSERT_TRUE(uncompress(gzipFile("x.gz", content), &copy));  // shorter than six characters
    EXPECT_TRUE(endsWith(copy, ".dat")) << copy;
    ASSERT_TRUE(uncompress(gzipFile("run-1.fdat.gz", content), &copy));
    EXPECT_TRUE(endsWith(copy, ".dat")) << copy;
    ASSERT_TRUE(uncompress(gzipFile("Mesh.CAS.gz", content), &copy));
    EXPECT_TRUE(endsWith(copy, ".cas")) << copy;
}

TEST_F(UncompressTest, ContentLargerThanTheCopyBufferIsCopiedWhole) {
    std::string content = caseText(1500000);
    for (size_t k = 0; k < content.size(); k += 977)
        content[k] = static_cast<char>(k * 31 % 251);
    std::string copy;
    ASSERT_TRUE(uncompress(gzipFile("big.cas.gz", content), &copy));
    EXPECT_EQ(readWholeFile(copy), content);
}

TEST_F(UncompressTest, SaveQuestionIsAskedOnceAndItsAnswerKept) {
    askSave = true;
    minihost::pushAnswer(true);
    const std::string content = caseText(100);
    std::string copy;
    ASSERT_TRUE(uncompress(gzipFile("a.cas.gz", content), &copy));
    EXPECT_EQ(copy, (folder_ / "a.cas").string());
    EXPECT_TRUE(save);
    EXPECT_FALSE(askSave);
    ASSERT_TRUE(uncompress(gzipFile("a.dat.gz", content), &copy));
    EXPECT_EQ(copy, (folder_ / "a.dat").string());
    const std::vector<minihost::Message> shown = minihost::messages();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].kind, "question");
    EXPECT_EQ(shown[0].boxType, 4);
    EXPECT_EQ(shown[0].text, kSaveQuestion);
}

TEST_F(UncompressTest, SaveQuestionAnsweredNoWritesTemporaryCopies) {
    askSave = true;
    minihost::pushAnswer(false);
    std::string copy;
    ASSERT_TRUE(uncompress(gzipFile("b.cas.gz", caseText(100)), &copy));
    EXPECT_FALSE(save);
    EXPECT_FALSE(askSave);
    EXPECT_EQ(fs::path(copy).parent_path(), tempFolder_);
    EXPECT_FALSE(fs::exists(folder_ / "b.cas"));
}

TEST_F(UncompressTest, TwoExistingCopiesOneQuestionAnsweredNoUsesBoth) {
    save = true;
    askOverwrite = true;
    // The compressed files are not even gzip: they must not be read.
    writeWholeFile(folder_ / "c.cas.gz", "not a gzip stream");
    writeWholeFile(folder_ / "c.dat.gz", "not a gzip stream either");
    writeWholeFile(folder_ / "c.cas", "existing case");
    writeWholeFile(folder_ / "c.dat", "existing data");
    minihost::pushAnswer(false);
    std::string copy;
    ASSERT_TRUE(uncompress((folder_ / "c.cas.gz").string(), &copy));
    EXPECT_EQ(copy, (folder_ / "c.cas").string());
    EXPECT_FALSE(overwrite);
    EXPECT_FALSE(askOverwrite);
    ASSERT_TRUE(uncompress((folder_ / "c.dat.gz").string(), &copy));
    EXPECT_EQ(copy, (folder_ / "c.dat").string());
    EXPECT_EQ(readWholeFile(folder_ / "c.cas"), "existing case");
    EXPECT_EQ(readWholeFile(folder_ / "c.dat"), "existing data");
    const std::vector<minihost::Message> shown = minihost::messages();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].kind, "question");
    EXPECT_EQ(shown[0].boxType, 4);
    EXPECT_EQ(shown[0].text,
              "The uncompressed file " + (folder_ / "c.cas").string() +
                  " already exists.\nOverwrite this and any other uncompressed files for the dataset?");
}

TEST_F(UncompressTest, OverwriteAnsweredYesWritesOverTheCopy) {
    save = true;
    askOverwrite = true;
    writeWholeFile(folder_ / "d.cas", "old");
    minihost::pushAnswer(true);
    const std::string content = caseText(300);
    std::string copy;
    ASSERT_TRUE(uncompress(gzipFile("d.cas.gz", content), &copy));
    EXPECT_TRUE(overwrite);
    EXPECT_FALSE(askOverwrite);
    EXPECT_EQ(readWholeFile(copy), content);
    EXPECT_EQ(minihost::messages().size(), 1u);
}

TEST_F(UncompressTest, NoCopyThereLeavesTheOverwriteQuestionOpen) {
    save = true;
    askOverwrite = true;
    std::string copy;
    ASSERT_TRUE(uncompress(gzipFile("e.cas.gz", caseText(50)), &copy));
    EXPECT_TRUE(askOverwrite);
    EXPECT_TRUE(overwrite);
    expectNoMessage();
}

TEST_F(UncompressTest, NoQuestionWhileALayoutIsProcessed) {
    minihost::setProcessingLayout(true);
    save = true;  // from the instruction
    askSave = true;
    askOverwrite = true;
    writeWholeFile(folder_ / "f.cas", "old");
    const std::string content = caseText(400);
    std::string copy;
    ASSERT_TRUE(uncompress(gzipFile("f.cas.gz", content), &copy));
    EXPECT_EQ(copy, (folder_ / "f.cas").string());
    EXPECT_TRUE(askSave);
    EXPECT_TRUE(askOverwrite);
    EXPECT_TRUE(overwrite);
    EXPECT_EQ(readWholeFile(copy), content);
    expectNoMessage();
}

TEST_F(UncompressTest, DotZFileIsRefused) {
    const std::string name = (folder_ / "g.cas.Z").string();
    writeWholeFile(name, "compressed with compress");
    std::string copy;
    EXPECT_FALSE(uncompress(name, &copy));
    expectOneError(
        "Fluent data loader:\nThe file '" + name +
        "' appears to be .Z compressed.\n.Z compression is not supported.  Please uncompress before "
        "loading.");
    EXPECT_TRUE(progressTexts.empty());
    // Opening such a name answers true and gives no stream.
    minihost::clearMessages();
    FILE* stream = nullptr;
    EXPECT_TRUE(openFluentFile(&stream, name.c_str(), "Case"));
    EXPECT_EQ(stream, nullptr);
    expectNoMessage();
}

TEST_F(UncompressTest, ProgressIsToldAndItsRefusalStopsSilently) {
    const std::string name = gzipFile("h.dat.gz", caseText(100));
    std::string copy;
    ASSERT_TRUE(uncompress(name, &copy));
    ASSERT_EQ(progressTexts.size(), 1u);
    EXPECT_EQ(progressTexts[0], "Uncompressing " + name + "...");

    save = true;
    char* newName = nullptr;
    std::vector<std::string> texts;
    EXPECT_FALSE(uncompressFluentFile(name.c_str(), &newName, save, askSave, overwrite, askOverwrite,
                                      [&texts](const std::string& text) {
                                          texts.push_back(text);
                                          return false;
                                      }));
    EXPECT_EQ(texts.size(), 1u);
    EXPECT_FALSE(fs::exists(folder_ / "h.dat"));
    ZorUtilStringDealloc(&newName);
    expectNoMessage();
}

TEST_F(UncompressTest, ProgressCallbackIsDestroyedByTheCall) {
    auto token = std::make_shared<int>(7);
    std::weak_ptr<int> watch = token;
    ProgressCallback callback = [token](const std::string&) { return true; };
    token.reset();
    char* newName = nullptr;
    ASSERT_TRUE(uncompressFluentFile(gzipFile("i.dat.gz", "x").c_str(), &newName, save, askSave, overwrite,
                                     askOverwrite, std::move(callback)));
    EXPECT_TRUE(watch.expired());
    ZorUtilStringDealloc(&newName);
}

TEST_F(UncompressTest, TruncatedGzipIsAnUncompressingError) {
    const std::string name = gzipFile("j.cas.gz", caseText(200000));
    std::string bytes = readWholeFile(name);
    writeWholeFile(name, bytes.substr(0, bytes.size() / 2));
    std::string copy;
    EXPECT_FALSE(uncompress(name, &copy));
    EXPECT_TRUE(nullNameAfterCall);
    expectOneError("Error uncompressing the file " + name + ".");
}

TEST_F(UncompressTest, MissingGzipFileIsAnUncompressingError) {
    const std::string name = (folder_ / "missing.dat.gz").string();
    save = true;
    std::string copy;
    EXPECT_FALSE(uncompress(name, &copy));
    EXPECT_TRUE(nullNameAfterCall);
    expectOneError("Error uncompressing the file " + name + ".");
}

TEST_F(UncompressTest, UnwritableCopyNamesTheCopy) {
    save = true;
    fs::create_directory(folder_ / "k.cas");  // a folder where the copy should go
    const std::string name = gzipFile("k.cas.gz", caseText(100));
    std::string copy;
    EXPECT_FALSE(uncompress(name, &copy));
    EXPECT_TRUE(nullNameAfterCall);
    expectOneError("Error writing uncompressed file " + (folder_ / "k.cas").string() +
                   ".\nPlease check space and permissions for this location.");
}

TEST_F(UncompressTest, NoTemporaryNameFromTheHostIsAWritingError) {
    const std::string name = gzipFile("l.dat.gz", caseText(100));
    setenv("TMPDIR", (folder_ / "no-such-folder").c_str(), 1);
    std::string copy;
    EXPECT_FALSE(uncompress(name, &copy));
    EXPECT_TRUE(nullNameAfterCall);
    expectOneError("Error writing uncompressed file " + name +
                   ".\nPlease check space and permissions for this location.");
}

}  // namespace
}  // namespace fluentio_test
