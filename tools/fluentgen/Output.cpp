#include "tools/fluentgen/Output.h"

#include <zlib.h>

#include <fcntl.h>
#include <unistd.h>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <stdexcept>

namespace fluentgen {
namespace detail {

namespace {

const size_t kBufferSize = 1 << 20;

class FdSink : public Sink {
  public:
    FdSink(const std::string& path) : path_(path) {
        fd_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd_ < 0) {
            throw std::runtime_error("cannot create " + path);
        }
    }
    ~FdSink() override {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    void write(const char* data, size_t n) override {
        while (n > 0) {
            ssize_t k = ::write(fd_, data, n);
            if (k < 0) {
                if (errno == EINTR) {
                    continue;
                }
                throw std::runtime_error("write error on " + path_);
            }
            data += k;
            n -= static_cast<size_t>(k);
        }
    }
    void close() override {
        if (fd_ >= 0 && ::close(fd_) != 0) {
            fd_ = -1;
            throw std::runtime_error("write error on " + path_);
        }
        fd_ = -1;
    }

  private:
    std::string path_;
    int fd_ = -1;
};

// Deflates with a gzip wrapper into another sink.
class GzipSink : public Sink {
  public:
    GzipSink(std::unique_ptr<Sink> inner, int level) : inner_(std::move(inner)), out_(kBufferSize, '\0') {
        std::memset(&z_, 0, sizeof z_);
        if (deflateInit2(&z_, level, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
            throw std::runtime_error("zlib deflateInit2 failed");
        }
        open_ = true;
    }
    ~GzipSink() override {
        if (open_) {
            deflateEnd(&z_);
        }
    }
    void write(const char* data, size_t n) override { pump(data, n, Z_NO_FLUSH); }
    void close() override {
        if (!open_) {
            return;
        }
        pump(nullptr, 0, Z_FINISH);
        deflateEnd(&z_);
        open_ = false;
        inner_->close();
    }

  private:
    void pump(const char* data, size_t n, int mode) {
        z_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
        z_.avail_in = static_cast<uInt>(n);
        for (;;) {
            z_.next_out = reinterpret_cast<Bytef*>(&out_[0]);
            z_.avail_out = static_cast<uInt>(out_.size());
            int rc = deflate(&z_, mode);
            if (rc == Z_STREAM_ERROR) {
                throw std::runtime_error("zlib deflate failed");
            }
            size_t have = out_.size() - z_.avail_out;
            if (have > 0) {
                inner_->write(out_.data(), have);
            }
            if (mode == Z_FINISH) {
                if (rc == Z_STREAM_END) {
                    break;
                }
            } else if (z_.avail_in == 0 && z_.avail_out != 0) {
                break;
            }
        }
    }
    std::unique_ptr<Sink> inner_;
    std::string out_;
    z_stream z_;
    bool open_ = false;
};

class StringSink : public Sink {
  public:
    explicit StringSink(std::string& out) : out_(out) {}
    void write(const char* data, size_t n) override { out_.append(data, n); }

  private:
    std::string& out_;
};

inline void put32(char* p, uint32_t v, bool big) {
    if (big) {
        v = __builtin_bswap32(v);
    }
    std::memcpy(p, &v, 4);
}

inline void put64(char* p, uint64_t v, bool big) {
    if (big) {
        v = __builtin_bswap64(v);
    }
    std::memcpy(p, &v, 8);
}

}  // namespace

std::unique_ptr<Sink> openFileSink(const std::string& path, int gzipLevel) {
    std::unique_ptr<Sink> s(new FdSink(path));
    if (gzipLevel > 0) {
        return std::unique_ptr<Sink>(new GzipSink(std::move(s), gzipLevel));
    }
    return s;
}

std::unique_ptr<Sink> openStringSink(std::string& out, int gzipLevel) {
    std::unique_ptr<Sink> s(new StringSink(out));
    if (gzipLevel > 0) {
        return std::unique_ptr<Sink>(new GzipSink(std::move(s), gzipLevel));
    }
    return s;
}

Out::Out(Sink& sink, int intSize, bool bigEndian)
    : sink_(sink), intSize_(intSize), big_(bigEndian), buf_(new char[kBufferSize]), cap_(kBufferSize) {}

Out::~Out() {
    delete[] buf_;
}

void Out::flush() {
    if (n_ > 0) {
        sink_.write(buf_, n_);
        n_ = 0;
    }
}

void Out::bytes(const char* s, size_t len) {
    if (len > cap_) {
        flush();
        sink_.write(s, len);
        return;
    }
    room(len);
    std::memcpy(buf_ + n_, s, len);
    n_ += len;
}

void Out::hex(int64_t v) {
    room(24);
    if (v < 0) {
        buf_[n_++] = '-';
        v = -v;
    }
    auto r = std::to_chars(buf_ + n_, buf_ + cap_, static_cast<uint64_t>(v), 16);
    n_ = static_cast<size_t>(r.ptr - buf_);
}

void Out::dec(int64_t v) {
    room(24);
    auto r = std::to_chars(buf_ + n_, buf_ + cap_, v);
    n_ = static_cast<size_t>(r.ptr - buf_);
}

void Out::real(double v) {
    room(32);
    auto r = std::to_chars(buf_ + n_, buf_ + cap_, v);
    n_ = static_cast<size_t>(r.ptr - buf_);
}

void Out::realFixed(double v, int digits) {
    room(40);
    auto r = std::to_chars(buf_ + n_, buf_ + cap_, v, std::chars_format::scientific, digits);
    n_ = static_cast<size_t>(r.ptr - buf_);
}

void Out::binInt(int64_t v) {
    room(8);
    if (intSize_ == 8) {
        put64(buf_ + n_, static_cast<uint64_t>(v), big_);
        n_ += 8;
    } else {
        put32(buf_ + n_, static_cast<uint32_t>(static_cast<int32_t>(v)), big_);
        n_ += 4;
    }
}

void Out::binFloat(float v) {
    room(4);
    uint32_t u;
    std::memcpy(&u, &v, 4);
    put32(buf_ + n_, u, big_);
    n_ += 4;
}

void Out::binDouble(double v) {
    room(8);
    uint64_t u;
    std::memcpy(&u, &v, 8);
    put64(buf_ + n_, u, big_);
    n_ += 8;
}

std::string base64(const unsigned char* data, size_t n) {
    static const char* abc = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string s;
    s.reserve((n + 2) / 3 * 4);
    size_t i = 0;
    for (; i + 3 <= n; i += 3) {
        uint32_t v = (uint32_t(data[i]) << 16) | (uint32_t(data[i + 1]) << 8) | data[i + 2];
        s += abc[(v >> 18) & 63];
        s += abc[(v >> 12) & 63];
        s += abc[(v >> 6) & 63];
        s += abc[v & 63];
    }
    if (i + 1 == n) {
        uint32_t v = uint32_t(data[i]) << 16;
        s += abc[(v >> 18) & 63];
        s += abc[(v >> 12) & 63];
        s += "==";
    } else if (i + 2 == n) {
        uint32_t v = (uint32_t(data[i]) << 16) | (uint32_t(data[i + 1]) << 8);
        s += abc[(v >> 18) & 63];
        s += abc[(v >> 12) & 63];
        s += abc[(v >> 6) & 63];
        s += '=';
    }
    return s;
}

}  // namespace detail
}  // namespace fluentgen
