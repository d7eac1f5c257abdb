// Byte sinks and the encoder that writes Fluent numbers into them.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

namespace fluentgen {
namespace detail {

// Where bytes go: a plain file, a gzip stream, or a string.
class Sink {
  public:
    virtual ~Sink() = default;
    virtual void write(const char* data, size_t n) = 0;
    virtual void close() {}
};

// Opens `path` for writing, through zlib when `gzipLevel` is 1..9 (0: plain).
// Throws std::runtime_error when the file cannot be made.
std::unique_ptr<Sink> openFileSink(const std::string& path, int gzipLevel);
// Appends to `out`; compresses into it when `gzipLevel` is 1..9.
std::unique_ptr<Sink> openStringSink(std::string& out, int gzipLevel);

// Buffered writer of text, hexadecimal and decimal integers, text reals and
// binary integers and reals in a chosen width and byte order.
class Out {
  public:
    Out(Sink& sink, int intSize, bool bigEndian);
    ~Out();
    Out(const Out&) = delete;
    Out& operator=(const Out&) = delete;

    void flush();
    void text(const char* s) { bytes(s, std::strlen(s)); }
    void text(const std::string& s) { bytes(s.data(), s.size()); }
    void ch(char c) {
        room(1);
        buf_[n_++] = c;
    }
    void bytes(const char* s, size_t len);
    void hex(int64_t v);                   // lower-case hexadecimal, '-' for negatives
    void dec(int64_t v);                   // decimal
    void real(double v);                   // shortest text that reads back as the same double
    void realFixed(double v, int digits);  // "%.*e"-like scientific text
    void binInt(int64_t v);                // intSize bytes, sign-extended
    void binFloat(float v);
    void binDouble(double v);
    void binReal(double v, bool single) {
        if (single) {
            binFloat(static_cast<float>(v));
        } else {
            binDouble(v);
        }
    }
    int intSize() const { return intSize_; }
    bool bigEndian() const { return big_; }

  private:
    void room(size_t k) {
        if (n_ + k > cap_) {
            flush();
        }
    }
    Sink& sink_;
    int intSize_;
    bool big_;
    char* buf_;
    size_t n_ = 0;
    size_t cap_;
};

// Base64 of `n` bytes (standard alphabet, padded).
std::string base64(const unsigned char* data, size_t n);

}  // namespace detail
}  // namespace fluentgen
