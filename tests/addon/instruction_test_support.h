// Helpers for the tests of instruction lists and file lists: a scratch folder
// for real files, small gzip files written with zlib, and the messages the
// host recorded as (kind, text) pairs.
#pragma once

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "addon/FluentSolution.h"
#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace addontest {

using Shown = std::pair<std::string, std::string>;  // kind ("error", "info", "question"), text

// Every message the host recorded so far, as (kind, text).
inline std::vector<Shown> shown() {
    std::vector<Shown> result;
    for (const minihost::Message& message : minihost::messages()) {
        result.emplace_back(message.kind, message.text);
    }
    return result;
}

inline void writeFile(const std::string& path, const std::string& content) {
    std::ofstream out(path, std::ios::binary);
    out << content;
    ASSERT_TRUE(out.good()) << path;
}

// Writes content gzip-compressed to path.
inline void writeGzip(const std::string& path, const std::string& content) {
    gzFile file = gzopen(path.c_str(), "wb");
    ASSERT_NE(file, nullptr) << path;
    if (!content.empty()) {
        ASSERT_EQ(gzwrite(file, content.data(), static_cast<unsigned>(content.size())),
                  static_cast<int>(content.size()));
    }
    ASSERT_EQ(gzclose(file), Z_OK);
}

inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline bool fileExists(const std::string& path) {
    std::ifstream in(path);
    return in.good();
}

inline bool endsWith(const std::string& text, const std::string& tail) {
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

// A fixture with a scratch folder of its own, which is also the folder of
// the host's temporary names, and a host with nothing recorded, no layout
// running and no pre-scan.
class HostTest : public ::testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/fl-addon-test-XXXXXX";
        char* made = mkdtemp(pattern);
        ASSERT_NE(made, nullptr);
        dir_ = made;
        const char* oldTmp = getenv("TMPDIR");
        hadTmp_ = oldTmp != nullptr;
        if (hadTmp_) {
            oldTmp_ = oldTmp;
        }
        setenv("TMPDIR", dir_.c_str(), 1);
        minihost::resetRecords();
        FilesArePreScanned = false;
    }

    void TearDown() override {
        minihost::resetRecords();
        FilesArePreScanned = false;
        if (hadTmp_) {
            setenv("TMPDIR", oldTmp_.c_str(), 1);
        } else {
            unsetenv("TMPDIR");
        }
        std::string command = "rm -rf '" + dir_ + "'";
        EXPECT_EQ(system(command.c_str()), 0);
    }

    // A path inside the scratch folder.
    std::string path(const std::string& name) const { return dir_ + "/" + name; }

    std::string dir_;

  private:
    bool hadTmp_ = false;
    std::string oldTmp_;
};

}  // namespace addontest
