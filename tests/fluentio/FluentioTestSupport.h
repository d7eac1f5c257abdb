// Helpers of the fluentio tests: streams built from bytes, streams that fail
// on read, byte encoders for both byte orders, and the messages the host saw.
#pragma once

#include <gtest/gtest.h>

#include <sys/types.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "fluentio/SectionReader.h"
#include "minihost/MiniHost.h"

namespace fluentio_test {

// A temporary file holding the bytes, open for reading and writing, at its start.
class ByteStream {
  public:
    explicit ByteStream(const std::string& bytes) {
        stream_ = tmpfile();
        if (stream_ == nullptr)
            return;
        if (!bytes.empty())
            fwrite(bytes.data(), 1, bytes.size(), stream_);
        rewind(stream_);
    }
    ~ByteStream() {
        if (stream_ != nullptr)
            fclose(stream_);
    }
    ByteStream(const ByteStream&) = delete;
    ByteStream& operator=(const ByteStream&) = delete;

    FILE* get() const { return stream_; }
    long long position() const { return static_cast<long long>(ftello(stream_)); }
    // Everything from the present position to the end.
    std::string rest() const {
        std::string text;
        int c;
        while ((c = getc(stream_)) != EOF)
            text.push_back(static_cast<char>(c));
        return text;
    }

  private:
    FILE* stream_ = nullptr;
};

// A stream that gives the bytes and then fails with a read error (not an end of file).
class FailingStream {
  public:
    explicit FailingStream(const std::string& bytes) : bytes_(bytes) {
        cookie_io_functions_t functions{};
        functions.read = &FailingStream::read;
        functions.seek = &FailingStream::seek;
        stream_ = fopencookie(this, "r", functions);
    }
    ~FailingStream() {
        if (stream_ != nullptr)
            fclose(stream_);
    }
    FailingStream(const FailingStream&) = delete;
    FailingStream& operator=(const FailingStream&) = delete;

    FILE* get() const { return stream_; }

  private:
    static ssize_t read(void* cookie, char* buffer, size_t size) {
        FailingStream* self = static_cast<FailingStream*>(cookie);
        if (self->position_ >= self->bytes_.size()) {
            errno = EIO;
            return -1;
        }
        const size_t count = std::min(size, self->bytes_.size() - self->position_);
        std::memcpy(buffer, self->bytes_.data() + self->position_, count);
        self->position_ += count;
        return static_cast<ssize_t>(count);
    }
    static int seek(void* cookie, off64_t* offset, int whence) {
        FailingStream* self = static_cast<FailingStream*>(cookie);
        off64_t base = whence == SEEK_SET   ? 0
                       : whence == SEEK_CUR ? static_cast<off64_t>(self->position_)
                                            : static_cast<off64_t>(self->bytes_.size());
        if (base + *offset < 0)
            return -1;
        self->position_ = static_cast<size_t>(base + *offset);
        *offset = static_cast<off64_t>(self->position_);
        return 0;
    }

    std::string bytes_;
    size_t position_ = 0;
    FILE* stream_ = nullptr;
};

// ---- Byte encoders ----------------------------------------------------------------

// The low `width` bytes of value in the given byte order (0 little-endian, 1 big-endian).
inline std::string intBytes(uint64_t value, int width, int byteOrder) {
    std::string bytes(static_cast<size_t>(width), '\0');
    for (int k = 0; k < width; ++k) {
        const unsigned char b = static_cast<unsigned char>((value >> (8 * k)) & 0xffu);
        bytes[static_cast<size_t>(byteOrder == 0 ? k : width - 1 - k)] = static_cast<char>(b);
    }
    return bytes;
}

inline std::string floatBytes(float value, int byteOrder) {
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    return intBytes(bits, 4, byteOrder);
}

inline std::string doubleBytes(double value, int byteOrder) {
    uint64_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    return intBytes(bits, 8, byteOrder);
}

inline std::string bytesOf(std::initializer_list<int> values) {
    std::string bytes;
    for (int v : values)
        bytes.push_back(static_cast<char>(static_cast<unsigned char>(v)));
    return bytes;
}

// A Machine Configuration of the usual widths with the given byte order and real format.
inline MachineConfig machineConfig(int byteOrder, int floatFormat = 0, int intSize = 4, int floatSize = 4,
                                   int doubleSize = 8) {
    MachineConfig config{};
    config.byteOrder = byteOrder;
    config.floatFormat = floatFormat;
    config.intSize = intSize;
    config.floatSize = floatSize;
    config.doubleSize = doubleSize;
    return config;
}

// ---- Messages -------------------------------------------------------------------------

inline std::vector<std::string> messageTexts(const char* kind) {
    std::vector<std::string> texts;
    for (const minihost::Message& message : minihost::messages()) {
        if (message.kind == kind)
            texts.push_back(message.text);
    }
    return texts;
}

// Clears what the host recorded before each test and restores its switches.
class FluentioTest : public ::testing::Test {
  protected:
    void SetUp() override { minihost::resetRecords(); }
    void TearDown() override { minihost::resetRecords(); }

    // Exactly one message was shown, an error with this text.
    static void expectOneError(const std::string& text) {
        const std::vector<minihost::Message> shown = minihost::messages();
        ASSERT_EQ(shown.size(), 1u) << (shown.empty() ? std::string("no message") : shown.back().text);
        EXPECT_EQ(shown[0].kind, "error");
        EXPECT_EQ(shown[0].text, text);
    }
    static void expectNoMessage() {
        const std::vector<minihost::Message> shown = minihost::messages();
        EXPECT_TRUE(shown.empty()) << shown.front().text;
    }
};

}  // namespace fluentio_test
