// MappedRange: the bytes of a range of a file as they lie in it, and no
// mapping where the file cannot give the whole range.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/MappedRange.h"

namespace {

class MappedRangeTest : public ::testing::Test {
  protected:
    void SetUp() override {
        folder_ = std::filesystem::temp_directory_path() /
                  ("mapped_range_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "_" +
                   ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(folder_);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    // A file of `size` bytes, byte i being i * 7 + 3 (mod 256).
    std::string writeFile(size_t size) {
        content_.resize(size);
        for (size_t i = 0; i < size; ++i)
            content_[i] = static_cast<char>((i * 7 + 3) & 0xff);
        const std::string path = (folder_ / "body.bin").string();
        std::ofstream(path, std::ios::binary).write(content_.data(), static_cast<std::streamsize>(size));
        return path;
    }

    std::filesystem::path folder_;
    std::string content_;
};

TEST_F(MappedRangeTest, GivesTheBytesOfTheRangeWhereverItStarts) {
    const std::string path = writeFile(3 * 4096 + 123);
    FILE* stream = fopen(path.c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    // Starts inside a page, on a page, in the last page; up to the last byte.
    for (int64_t offset : {0, 1, 4095, 4096, 4097, 3 * 4096 + 100}) {
        for (int64_t length : {int64_t{1}, int64_t{23}, 3 * 4096 + 123 - offset}) {
            SCOPED_TRACE(std::to_string(offset) + " " + std::to_string(length));
            if (offset + length > 3 * 4096 + 123)
                continue;
            MappedRange range;
            ASSERT_TRUE(range.map(stream, offset, length));
            ASSERT_NE(range.bytes(), nullptr);
            EXPECT_EQ(range.size(), static_cast<size_t>(length));
            EXPECT_EQ(std::string(reinterpret_cast<const char*>(range.bytes()), static_cast<size_t>(length)),
                      content_.substr(static_cast<size_t>(offset), static_cast<size_t>(length)));
        }
    }
    // The stream is where it was, and still reads.
    EXPECT_EQ(ftell(stream), 0);
    EXPECT_EQ(fgetc(stream), 3);
    fclose(stream);
}

TEST_F(MappedRangeTest, OutlivesTheStreamItWasMadeFrom) {
    const std::string path = writeFile(10000);
    MappedRange range;
    FILE* stream = fopen(path.c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    ASSERT_TRUE(range.map(stream, 5000, 5000));
    fclose(stream);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(range.bytes()), 5000), content_.substr(5000));
}

TEST_F(MappedRangeTest, ARangeTheFileCannotGiveIsNotMapped) {
    const std::string path = writeFile(5000);
    FILE* stream = fopen(path.c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    struct Bad {
        int64_t offset, length;
    };
    for (const Bad& bad : {Bad{0, 5001}, Bad{4999, 2}, Bad{5000, 1}, Bad{0, 0}, Bad{10, -1}, Bad{-1, 10},
                           Bad{1, INT64_MAX}, Bad{INT64_MAX, 1}}) {
        SCOPED_TRACE(std::to_string(bad.offset) + " " + std::to_string(bad.length));
        MappedRange range;
        EXPECT_FALSE(range.map(stream, bad.offset, bad.length));
        EXPECT_EQ(range.bytes(), nullptr);
        EXPECT_EQ(range.size(), 0u);
    }
    MappedRange range;
    EXPECT_FALSE(range.map(nullptr, 0, 1));
    fclose(stream);
}

TEST_F(MappedRangeTest, AStreamThatIsNotARegularFileIsNotMapped) {
    FILE* stream = fopen("/dev/zero", "rb");
    ASSERT_NE(stream, nullptr);
    MappedRange range;
    EXPECT_FALSE(range.map(stream, 0, 4096));
    fclose(stream);
}

TEST_F(MappedRangeTest, ASecondMapDropsTheFirstRange) {
    const std::string path = writeFile(9000);
    FILE* stream = fopen(path.c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    MappedRange range;
    ASSERT_TRUE(range.map(stream, 100, 200));
    ASSERT_TRUE(range.map(stream, 8000, 1000));
    EXPECT_EQ(range.size(), 1000u);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(range.bytes()), 1000), content_.substr(8000));
    // A failed map leaves nothing mapped.
    EXPECT_FALSE(range.map(stream, 8999, 2));
    EXPECT_EQ(range.bytes(), nullptr);
    fclose(stream);
}

}  // namespace
