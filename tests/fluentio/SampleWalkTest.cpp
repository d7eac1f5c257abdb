// Every real sample file walks from section to section to its end: compressed
// ones through their uncompressed copies, ASCII sections by parentheses,
// binary sections by their end markers.
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "FluentioTestSupport.h"
#include "fluentio/CompressedFile.h"
#include "fluentio/SectionReader.h"
#include "host/ZorUtil.h"

namespace fluentio_test {
namespace {

namespace fs = std::filesystem;

// The file whose binary end markers have one blank where the format has
// three and the id in four columns ("End of Binary Section 3010)").
const char* const kSingleBlankMarkers = "pyfluent__lid_driven_cavity__lid_driven_cavity.msh";

struct Walk {
    int sections = 0;
    long long endPosition = -1;
    long long fileSize = -1;
    std::vector<int> ids;
};

// Walks the sections of a plain file; messages stay with the host.
Walk walkFile(const std::string& name) {
    Walk walk;
    FILE* stream = nullptr;
    if (!openFluentFile(&stream, name.c_str(), "Case") || stream == nullptr)
        return walk;
    walk.fileSize = getFileSize(stream);
    int id = 0;
    while (findNextSection(&id, stream)) {
        ++walk.sections;
        walk.ids.push_back(id);
        if (!skipSection(id, id >= 2000, stream))
            break;
    }
    walk.endPosition = static_cast<long long>(ftello(stream));
    fclose(stream);
    return walk;
}

class SampleWalkTest : public FluentioTest {
  protected:
    void SetUp() override {
        FluentioTest::SetUp();
        std::string pattern = (fs::temp_directory_path() / "fluentio-samples-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        scratch_ = pattern;
        const char* previous = std::getenv("TMPDIR");
        hadTmpDir_ = previous != nullptr;
        if (hadTmpDir_)
            previousTmpDir_ = previous;
        setenv("TMPDIR", scratch_.c_str(), 1);
    }
    void TearDown() override {
        if (hadTmpDir_) {
            setenv("TMPDIR", previousTmpDir_.c_str(), 1);
        } else {
            unsetenv("TMPDIR");
        }
        std::error_code ignored;
        fs::remove_all(scratch_, ignored);
        FluentioTest::TearDown();
    }

    // The sample files (case, data and mesh files, compressed or not), sorted.
    static std::vector<fs::path> samples() {
        std::vector<fs::path> files;
        std::error_code error;
        for (fs::recursive_directory_iterator it(FL_SAMPLES_DIR, error), end; !error && it != end;
             it.increment(error)) {
            if (!it->is_regular_file())
                continue;
            const std::string name = it->path().filename().string();
            if (name.find(".cas") != std::string::npos || name.find(".dat") != std::string::npos ||
                name.find(".msh") != std::string::npos) {
                files.push_back(it->path());
            }
        }
        std::sort(files.begin(), files.end());
        return files;
    }

    fs::path scratch_;
    bool hadTmpDir_ = false;
    std::string previousTmpDir_;
};

TEST_F(SampleWalkTest, EverySampleWalksToItsEnd) {
    const std::vector<fs::path> files = samples();
    if (files.empty())
        GTEST_SKIP() << "no sample files in " << FL_SAMPLES_DIR;
    int compressed = 0;
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.string());
        minihost::clearMessages();
        std::string plain = file.string();
        if (isGzipFileName(plain.c_str())) {
            char* copy = nullptr;
            bool save = false, askSave = false, overwrite = true, askOverwrite = false;
            ASSERT_TRUE(
                uncompressFluentFile(plain.c_str(), &copy, save, askSave, overwrite, askOverwrite, nullptr));
            plain = copy;
            ZorUtilStringDealloc(&copy);
            ++compressed;
        }
        const Walk walk = walkFile(plain);
        if (file.filename() == kSingleBlankMarkers) {
            // The first binary section's marker is never found: its skip runs to
            // the end of the file and says so; the walk ends there.
            EXPECT_EQ(walk.sections, 8);
            ASSERT_FALSE(walk.ids.empty());
            EXPECT_EQ(walk.ids.back(), 3010);
            expectOneError("End-of-file while skipping section 3010.");
        } else {
            EXPECT_GT(walk.sections, 5);
            expectNoMessage();
        }
        EXPECT_GT(walk.fileSize, 0);
        EXPECT_EQ(walk.endPosition, walk.fileSize);
        if (plain != file.string())
            fs::remove(plain);
    }
    EXPECT_GT(compressed, 0);
}

}  // namespace
}  // namespace fluentio_test
