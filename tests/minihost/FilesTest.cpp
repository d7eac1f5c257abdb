// Temporary names and base paths.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <set>
#include <string>

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

}  // namespace
