// Temporary names and base paths.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace {

std::string basePath(const char* name) {
    char* base = ZorUtilGetBasePath(name);
    std::string result = base == nullptr ? "<null>" : base;
    ZorUtilStringDealloc(&base);
    return result;
}

TEST(HostFiles, BasePathIsTheFolderWithItsSeparator) {
    EXPECT_EQ(basePath("/data/run1/case.cas"), "/data/run1/");
    EXPECT_EQ(basePath("run1\\case.cas"), "run1\\");
    EXPECT_EQ(basePath("a/b\\c.dat"), "a/b\\");
    EXPECT_EQ(basePath("case.cas"), "");
    EXPECT_EQ(basePath("/case.cas"), "/");
    EXPECT_EQ(basePath(nullptr), "<null>");
}

TEST(HostFiles, TempNamesAreNewAndUnique) {
    std::set<std::string> names;
    for (int i = 0; i < 20; ++i) {
        char* name = nullptr;
        ASSERT_TRUE(ZorUtilFileGetTempName(&name));
        ASSERT_NE(name, nullptr);
        struct stat status {};
        EXPECT_EQ(stat(name, &status), 0);  // held by an empty file so that nobody else gets it
        EXPECT_EQ(status.st_size, 0);
        names.insert(name);
        unlink(name);
        ZorUtilStringDealloc(&name);
    }
    EXPECT_EQ(names.size(), 20u);
}

TEST(HostFiles, TempNameFailsInAMissingFolder) {
    const char* old = std::getenv("TMPDIR");
    std::string saved = old == nullptr ? "" : old;
    setenv("TMPDIR", "no-such-folder-for-minihost", 1);
    char* name = nullptr;
    EXPECT_FALSE(ZorUtilFileGetTempName(&name));
    EXPECT_EQ(name, nullptr);
    if (old == nullptr)
        unsetenv("TMPDIR");
    else
        setenv("TMPDIR", saved.c_str(), 1);
    minihost::resetRecords();
}

bool exists(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

void touch(const std::string& path) {
    std::ofstream(path) << "x";
}

// A loader writes an uncompressed copy under a temporary name with ".cas" or
// ".dat", and a metadata file goes beside it: the host's shutdown takes all of
// them, and leaves every other file of the folder alone.
TEST(HostFiles, ShutdownRemovesTheTemporaryFilesAndTheMetadataFilesBesideThem) {
    char folderPattern[] = "/tmp/minihost-files-test-XXXXXX";
    ASSERT_NE(mkdtemp(folderPattern), nullptr);
    const std::string folder = folderPattern;
    const char* old = std::getenv("TMPDIR");
    const std::string saved = old == nullptr ? "" : old;
    setenv("TMPDIR", folder.c_str(), 1);

    char* first = nullptr;
    char* second = nullptr;
    ASSERT_TRUE(ZorUtilFileGetTempName(&first));
    ASSERT_TRUE(ZorUtilFileGetTempName(&second));
    const std::string a = first, b = second;
    ZorUtilStringDealloc(&first);
    ZorUtilStringDealloc(&second);
    const std::string bareA = a.substr(a.rfind('/') + 1), bareB = b.substr(b.rfind('/') + 1);
    const std::vector<std::string> made = {a + ".cas", folder + "/." + bareA + ".cas.zmeta", b + ".dat",
                                           folder + "/." + bareB + ".dat.zmeta"};
    for (const std::string& path : made)
        touch(path);
    const std::string other = folder + "/kept.cas", otherMeta = folder + "/.kept.cas.zmeta";
    touch(other);
    touch(otherMeta);

    minihost::shutdown();

    EXPECT_FALSE(exists(a));
    EXPECT_FALSE(exists(b));
    for (const std::string& path : made)
        EXPECT_FALSE(exists(path)) << path;
    EXPECT_TRUE(exists(other));
    EXPECT_TRUE(exists(otherMeta));

    unlink(other.c_str());
    unlink(otherMeta.c_str());
    rmdir(folder.c_str());
    if (old == nullptr)
        unsetenv("TMPDIR");
    else
        setenv("TMPDIR", saved.c_str(), 1);
    minihost::resetRecords();
}

}  // namespace
