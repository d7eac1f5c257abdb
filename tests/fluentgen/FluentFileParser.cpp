#include "FluentFileParser.h"

#include <zlib.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fgtest {

std::string readFileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw std::runtime_error("cannot open " + path);
    }
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::string inflateIfGzip(const std::string& bytes) {
    if (bytes.size() < 2 || static_cast<unsigned char>(bytes[0]) != 0x1f ||
        static_cast<unsigned char>(bytes[1]) != 0x8b) {
        return bytes;
    }
    z_stream z;
    std::memset(&z, 0, sizeof z);
    if (inflateInit2(&z, 16 + MAX_WBITS) != Z_OK) {
        throw std::runtime_error("inflateInit2 failed");
    }
    std::string out;
    char buf[1 << 16];
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    z.avail_in = static_cast<uInt>(bytes.size());
    int rc;
    do {
        z.next_out = reinterpret_cast<Bytef*>(buf);
        z.avail_out = sizeof buf;
        rc = inflate(&z, Z_NO_FLUSH);
        if (rc != Z_OK && rc != Z_STREAM_END) {
            inflateEnd(&z);
            throw std::runtime_error("corrupt gzip data");
        }
        out.append(buf, sizeof buf - z.avail_out);
    } while (rc != Z_STREAM_END);
    inflateEnd(&z);
    return out;
}

namespace {

// Index of the ')' that closes the '(' at `open`, counting nesting and
// passing over strings in double quotes (with backslash escapes).
size_t closing(const std::string& s, size_t open) {
    int depth = 0;
    for (size_t i = open; i < s.size(); ++i) {
        if (s[i] == '"') {
            for (++i; i < s.size() && s[i] != '"'; ++i) {
                if (s[i] == '\\') {
                    ++i;
                }
            }
        } else if (s[i] == '(') {
            ++depth;
        } else if (s[i] == ')') {
            if (--depth == 0) {
                return i;
            }
        }
    }
    return std::string::npos;
}

// Finds "End of Binary Section", blanks, `id` and `tail` from `from`; returns
// its position and sets `length`. Solvers put three blanks and the id in four
// columns; some meshers one blank.
size_t findMarker(const std::string& s, size_t from, int id, const std::string& tail, size_t* length) {
    static const std::string words = "End of Binary Section";
    std::string number = std::to_string(id);
    for (size_t at = s.find(words, from); at != std::string::npos; at = s.find(words, at + 1)) {
        size_t p = at + words.size();
        if (p >= s.size() || s[p] != ' ') {
            continue;
        }
        while (p < s.size() && s[p] == ' ') {
            ++p;
        }
        if (s.compare(p, number.size(), number) == 0 &&
            s.compare(p + number.size(), tail.size(), tail) == 0) {
            *length = p + number.size() + tail.size() - at;
            return at;
        }
    }
    return std::string::npos;
}

bool isDataFamily(int id) {
    return id % 1000 == 300 || id % 1000 == 314;
}

}  // namespace

ParsedFile parseFluent(const std::string& bytes) {
    ParsedFile f;
    const std::string& s = bytes;
    size_t pos = 0;
    while (true) {
        while (pos < s.size() && s[pos] != '(') {
            if (!std::isspace(static_cast<unsigned char>(s[pos])) && s[pos] != ')') {
                f.error = "stray character at " + std::to_string(pos);
                return f;
            }
            ++pos;
        }
        if (pos >= s.size()) {
            break;
        }
        size_t start = pos;
        size_t p = pos + 1;
        size_t digits = p;
        while (p < s.size() && std::isdigit(static_cast<unsigned char>(s[p]))) {
            ++p;
        }
        if (p == digits) {
            f.error = "no section id at " + std::to_string(start);
            return f;
        }
        Section sec;
        sec.id = std::atoi(s.substr(digits, p - digits).c_str());
        while (p < s.size() && (s[p] == ' ' || s[p] == '\n')) {
            ++p;
        }
        if (sec.id < 2000) {
            size_t end = closing(s, start);
            if (end == std::string::npos) {
                f.error = "unclosed section " + std::to_string(sec.id);
                return f;
            }
            if (s[p] == '(') {
                size_t h = closing(s, p);
                sec.header = s.substr(p + 1, h - p - 1);
                sec.body = s.substr(h + 1, end - h - 1);
            } else {
                sec.header = s.substr(p, end - p);
            }
            if (sec.id == 4) {
                std::vector<std::string> w = words(sec.header);
                if (w.size() >= 6) {
                    f.bigEndian = w[1] == "1";
                    f.intSize = std::atoi(w[5].c_str());
                }
            }
            pos = end + 1;
            f.sections.push_back(sec);
            continue;
        }
        if (s[p] != '(') {
            f.error = "no header of binary section " + std::to_string(sec.id);
            return f;
        }
        size_t h = s.find(')', p);
        sec.header = s.substr(p + 1, h - p - 1);
        size_t q = h + 1;
        if (sec.id % 1000 == 303) {
            // Particle section: subsections (id (<numbers>\nEnd of Binary Section   id))
            while (true) {
                while (q < s.size() && std::isspace(static_cast<unsigned char>(s[q]))) {
                    ++q;
                }
                if (q >= s.size()) {
                    f.error = "unclosed particle section";
                    return f;
                }
                if (s[q] == ')') {
                    ++q;
                    break;
                }
                if (s[q] != '(') {
                    f.error = "bad particle subsection";
                    return f;
                }
                Section sub;
                size_t r = q + 1;
                sub.id = std::atoi(s.c_str() + r);
                size_t open = s.find('(', r);
                size_t mlen = 0;
                size_t at = open == std::string::npos ? std::string::npos
                                                      : findMarker(s, open + 1, sub.id, "))", &mlen);
                if (open == std::string::npos || at == std::string::npos) {
                    f.error = "no end of particle subsection";
                    return f;
                }
                sub.body = s.substr(open + 1, at - open - 1);
                if (!sub.body.empty() && sub.body.back() == '\n') {
                    sub.body.pop_back();
                }
                sec.subsections.push_back(sub);
                q = at + mlen;
            }
            pos = q;
            f.sections.push_back(sec);
            continue;
        }
        size_t mlen = 0;
        size_t at = findMarker(s, q, sec.id, ")", &mlen);
        if (at == std::string::npos) {
            f.error = "no end marker of section " + std::to_string(sec.id);
            return f;
        }
        sec.raw = s.substr(q, at - q);
        size_t b = q;
        while (b < at && (s[b] == '\n' || s[b] == ' ')) {
            ++b;
        }
        if (b < at && s[b] == '(') {
            std::string body = s.substr(b + 1, at - b - 1);
            if (isDataFamily(sec.id)) {
                if (!body.empty() && body.back() == '\n') {
                    body.pop_back();
                }
            } else if (body.size() >= 3 && body.compare(body.size() - 3, 3, ")\n\n") == 0) {
                body.resize(body.size() - 3);
            } else if (body.size() >= 2 && body.compare(body.size() - 2, 2, ")\n") == 0) {
                body.resize(body.size() - 2);
            }
            sec.body = body;
        }
        pos = at + mlen;
        f.sections.push_back(sec);
    }
    return f;
}

std::vector<std::string> words(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    std::string w;
    while (in >> w) {
        out.push_back(w);
    }
    return out;
}

int64_t hexWord(const std::string& w) {
    return std::strtoll(w.c_str(), nullptr, 16);
}

std::string asciiBodyInner(const std::string& body) {
    size_t open = body.find('(');
    if (open == std::string::npos) {
        return "";
    }
    size_t end = closing(body, open);
    return body.substr(open + 1, end == std::string::npos ? std::string::npos : end - open - 1);
}

std::vector<int64_t> asciiHexInts(const std::string& text) {
    std::vector<int64_t> out;
    for (const std::string& w : words(text)) {
        out.push_back(hexWord(w));
    }
    return out;
}

std::vector<double> asciiReals(const std::string& text) {
    std::vector<double> out;
    for (const std::string& w : words(text)) {
        out.push_back(std::strtod(w.c_str(), nullptr));
    }
    return out;
}

std::vector<int64_t> binaryInts(const std::string& bytes, int intSize, bool bigEndian) {
    std::vector<int64_t> out;
    for (size_t i = 0; i + static_cast<size_t>(intSize) <= bytes.size(); i += static_cast<size_t>(intSize)) {
        uint64_t v = 0;
        for (int k = 0; k < intSize; ++k) {
            unsigned char c =
                static_cast<unsigned char>(bytes[i + static_cast<size_t>(bigEndian ? k : intSize - 1 - k)]);
            v = (v << 8) | c;
        }
        if (intSize == 4) {
            out.push_back(static_cast<int32_t>(static_cast<uint32_t>(v)));
        } else {
            out.push_back(static_cast<int64_t>(v));
        }
    }
    return out;
}

std::vector<double> binaryReals(const std::string& bytes, bool single, bool bigEndian) {
    std::vector<double> out;
    size_t w = single ? 4 : 8;
    for (size_t i = 0; i + w <= bytes.size(); i += w) {
        unsigned char b[8];
        for (size_t k = 0; k < w; ++k) {
            b[k] = static_cast<unsigned char>(bytes[i + (bigEndian ? w - 1 - k : k)]);
        }
        if (single) {
            float f;
            std::memcpy(&f, b, 4);
            out.push_back(f);
        } else {
            double d;
            std::memcpy(&d, b, 8);
            out.push_back(d);
        }
    }
    return out;
}

}  // namespace fgtest
