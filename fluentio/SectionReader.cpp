// Reading the sections of a Fluent case or data file.
//
//   piece          form
//   -------------  ------------------------------------------------------------------
//   opening        '(' decimal-id, white space; the stream then stands on the body
//   ASCII body     id < 2000: balanced parentheses around a header and the numbers;
//                  integers hexadecimal ("%x"), reals "%lg"; the closing ')' ends it
//   binary body    id >= 2000: '(' text header ')' '(' raw numbers ')';
//                  integers of intSize bytes; reals of floatSize bytes (2000..2999)
//                  or doubleSize bytes (3000 and up), in the file's byte order
//   end marker     binary only: "End of Binary Section   %4d)" with the id
//
// Example:  (2012 (a 1 5 1 0)
//            (<20 binary bytes>)
//            End of Binary Section   2012)
//
// The section id alone decides the encoding. Nothing here holds state except
// hostByteOrder; every position lives in the caller's stream.
#include "fluentio/SectionReader.h"

#include <sys/types.h>

#include <QByteArray>
#include <boost/filesystem/path.hpp>
#include <cctype>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "host/ZorUtil.h"
#include "support/AsciiCase.h"

static_assert(sizeof(off_t) == 8, "stream positions must be 64-bit");
static_assert(sizeof(int) == 4 && sizeof(float) == 4 && sizeof(double) == 8,
              "32-bit int, IEEE float and double");

// Known at compile time so that it holds before any code runs; initHostByteOrder
// confirms it at the add-on entry.
int32_t hostByteOrder = (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__) ? 1 : 0;

void initHostByteOrder() {
    const uint32_t word = 1;
    unsigned char firstByte = 0;
    std::memcpy(&firstByte, &word, 1);
    hostByteOrder = firstByte == 1 ? 0 : 1;
}

namespace {

constexpr size_t kMessageSize = 4097;  // every message text is built in a buffer of this size

// Formats a message into a fixed buffer and shows it as an error.
__attribute__((format(printf, 1, 2))) void showError(const char* format, ...) {
    char text[kMessageSize];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof(text), format, args);
    va_end(args);
    ZorUtilDialogErrMsg(text);
}

// Holds the stream's lock for a scope, so that the character loops below can
// use the unlocked getc. The lock is recursive: fscanf, fseeko and friends
// inside the scope take it again.
class StreamLock {
  public:
    explicit StreamLock(FILE* stream) : stream_(stream) { flockfile(stream_); }
    ~StreamLock() { funlockfile(stream_); }
    StreamLock(const StreamLock&) = delete;
    StreamLock& operator=(const StreamLock&) = delete;

  private:
    FILE* stream_;
};

bool isIeeeFormat(const MachineConfig* config) {
    return (config->floatFormat & ~2) == 0;
}

bool ordersDiffer(const MachineConfig* config) {
    return config->byteOrder != hostByteOrder;
}

ReadStatus statusOfShortRead(FILE* stream) {
    return feof(stream) ? ReadStatus_EndOfFile : ReadStatus_ReadError;
}

void reverseBytes(unsigned char* bytes, size_t count) {
    for (size_t low = 0, high = count; low + 1 < high; ++low, --high) {
        const unsigned char c = bytes[low];
        bytes[low] = bytes[high - 1];
        bytes[high - 1] = c;
    }
}

void reverseEach32(void* items, size_t n) {
    uint32_t* words = static_cast<uint32_t*>(items);
    for (size_t i = 0; i < n; ++i)
        words[i] = __builtin_bswap32(words[i]);
}

void reverseEach64(void* items, size_t n) {
    uint64_t* words = static_cast<uint64_t*>(items);
    for (size_t i = 0; i < n; ++i)
        words[i] = __builtin_bswap64(words[i]);
}

// A byte buffer on the stack for the usual widths, on the heap for odd ones.
class ItemBuffer {
  public:
    explicit ItemBuffer(size_t size) {
        if (size > sizeof(local_)) {
            heap_.reset(new (std::nothrow) unsigned char[size]());
            data_ = heap_.get();
        }
    }
    unsigned char* data() { return data_; }

  private:
    unsigned char local_[32] = {};
    std::unique_ptr<unsigned char[]> heap_;
    unsigned char* data_ = local_;
};

// How a literal search ended.
enum class Match { Found, EndOfFile, StreamError, StepLimit, BoundReached };

// The one-position matcher behind the end-marker search and the literal
// searches. It reads one character ahead; on a mismatch after a partial match
// it goes back to just behind the partial match's first character. tolerant:
// a blank or '0' in the file stands for any literal character after the first.
// limited: at most 100 steps. bounded: stop once the last first-character
// match lies at or beyond endPosition. Caller holds the stream lock.
Match matchLiteral(FILE* stream, const char* literal, bool limited, bool tolerant, bool bounded,
                   long long endPosition) {
    const size_t length = std::strlen(literal);
    const int first = static_cast<unsigned char>(literal[0]);
    int c = getc_unlocked(stream);
    size_t i = 0;
    off_t mark = 0;
    int steps = 0;
    while (i < length) {
        if (!limited && !bounded && i == 0) {
            // Plain scan for the first character: the same steps, without the bookkeeping.
            while (c != EOF && c != first)
                c = getc_unlocked(stream);
        }
        if (limited && ++steps > 100)
            return Match::StepLimit;
        if (c == EOF)
            return feof(stream) ? Match::EndOfFile : Match::StreamError;
        if (c == static_cast<unsigned char>(literal[i])) {
            if (i == 0) {
                mark = ftello(stream);
                if (mark < 0)
                    return Match::StreamError;
            }
            ++i;
            if (i < length)
                c = getc_unlocked(stream);
        } else if (i > 0) {
            if (tolerant && (c == ' ' || c == '0')) {
                ++i;
                c = getc_unlocked(stream);
            } else {
                if (fseeko(stream, mark, SEEK_SET) != 0)
                    return Match::StreamError;
                i = 0;
                c = getc_unlocked(stream);
            }
        } else {
            c = getc_unlocked(stream);
        }
        if (bounded && mark >= endPosition)
            return Match::BoundReached;
    }
    return Match::Found;
}

}  // namespace

// ---- Section ids ---------------------------------------------------------------

bool sectionIdMatches(int id, int baseId) {
    return id == baseId || id == baseId + 2000 || id == baseId + 3000;
}

bool sectionIdIsDoublePrecision(int id) {
    return id > 3000;
}

bool sectionIdIsKnownSeries(int id) {
    return id < 4000;
}

// ---- File names and opening ----------------------------------------------------

bool isGzipFileName(const char* name) {
    return asciiEndsWithIgnoringCase(name, ".gz");
}

bool isDotZFileName(const char* name) {
    return asciiEndsWithIgnoringCase(name, ".Z");
}

bool isCompressedFileName(const char* name) {
    return isGzipFileName(name) || isDotZFileName(name);
}

FILE* openFilePath(const char* name, const char* mode) {
    if (name == nullptr || mode == nullptr)
        return nullptr;
    try {
        boost::filesystem::path path(name);
        path.make_preferred();
        return fopen(path.native().c_str(), mode);
    } catch (const std::exception&) {
        return nullptr;
    }
}

bool openFluentFile(FILE** stream, const char* name, const char* kind) {
    if (name == nullptr) {
        showError("Fluent data loader: %s file name not specified.", kind);
        return false;
    }
    if (name[0] == '\0') {
        showError("Fluent data loader: Empty %s file name.", kind);
        return false;
    }
    // Compressed names were replaced by their uncompressed copies before any
    // file is opened; such a name leaves the stream as it was.
    if (isCompressedFileName(name))
        return true;
    *stream = openFilePath(name, "rb");
    if (*stream == nullptr) {
        showError("Fluent data loader: Unable to open %s file\n%s.", kind, name);
        return false;
    }
    return true;
}

// ---- Sections --------------------------------------------------------------------

bool findNextSection(int* id, FILE* stream) {
    StreamLock lock(stream);
    int c;
    do {
        c = getc_unlocked(stream);
    } while (c != EOF && c != '(');
    if (c == EOF) {
        if (ferror(stream))
            showError("Read error while scanning file.");
        return false;
    }
    if (fscanf(stream, "%d", id) != 1) {
        showError("Error reading section number in file.");
        return false;
    }
    do {
        c = getc_unlocked(stream);
    } while (c != EOF && isspace(c));
    if (c == EOF) {
        if (ferror(stream)) {
            showError("Read error while scanning section #%d.", *id);
        } else {
            showError("Premature End-of-file while scanning section #%d.", *id);
        }
        return false;
    }
    if (ungetc(c, stream) == EOF) {
        showError("Read error while scanning section #%d.", *id);
        return false;
    }
    return true;
}

bool skipSection(int id, bool binary, FILE* stream) {
    if (binary) {
        // A missing end marker has been reported; the scan goes on from where the search stopped.
        (void)findBinarySectionEnd(id, false, stream);
        return true;
    }
    // Parentheses inside strings and comments count like all others.
    StreamLock lock(stream);
    int depth = 1;
    for (;;) {
        const int c = getc_unlocked(stream);
        if (c == EOF) {
            if (feof(stream)) {
                showError("End-of-file while skipping section %d.", id);
            } else {
                showError("Read error while skipping section %d.", id);
            }
            return false;
        }
        if (c == '(') {
            ++depth;
        } else if (c == ')') {
            if (--depth < 1)
                return true;
        }
    }
}

bool findBinarySectionEnd(int id, bool limited, FILE* stream) {
    char marker[64];
    snprintf(marker, sizeof(marker), "End of Binary Section   %4d)", id);
    // Sections 2300 and 3300 are accepted with blanks or zeros in the marker.
    const bool tolerant = id == 2300 || id == 3300;
    Match match;
    {
        StreamLock lock(stream);
        match = matchLiteral(stream, marker, limited, tolerant, false, 0);
    }
    switch (match) {
        case Match::Found:
            return true;
        case Match::EndOfFile:
            showError("End-of-file while skipping section %d.", id);
            return false;
        default:
            if (!limited)
                showError("Read error while skipping section %d.", id);
            return false;
    }
}

bool closeSection(int id, const char* sectionName, bool binary, FILE* stream) {
    if (binary)
        return findBinarySectionEnd(id, true, stream);
    int c;
    {
        StreamLock lock(stream);
        do {
            c = getc_unlocked(stream);
        } while (c != EOF && isspace(c));
    }
    if (c == EOF) {
        reportStreamFailure(stream, sectionName, id);
        return false;
    }
    if (c == ')')
        return true;
    if (ZorUtilMacroIsBatchModeActive())
        return true;
    // The warning says the load goes on; the section still counts as failed.
    char text[kMessageSize];
    snprintf(text, sizeof(text),
             "Parse error while reading %s section (section %d). Expected ')', found '%c'. Attempting to "
             "continue...",
             sectionName, id, c);
    ZorUtilDialogMessageBox(text, ZorMessageBoxType_Warning);
    return false;
}

bool parseMachineConfig(MachineConfig* config, FILE* stream) {
    int numbers[11];
    const int converted = fscanf(stream, "(%d %d %d %d %d %d %d %d %d %d %d))", &numbers[0], &numbers[1],
                                 &numbers[2], &numbers[3], &numbers[4], &numbers[5], &numbers[6], &numbers[7],
                                 &numbers[8], &numbers[9], &numbers[10]);
    if (converted != 11) {
        if (feof(stream)) {
            showError("End-of-file while reading Machine Configuration (Section 4).");
        } else if (ferror(stream)) {
            showError("Read error while reading Machine Configuration (Section 4).");
        } else {
            showError("Error parsing Machine Configuration (Section 4).");
        }
        return false;
    }
    config->byteOrder = numbers[1];
    config->floatFormat = numbers[2];
    config->intSize = numbers[5];
    config->floatSize = numbers[7];
    config->doubleSize = numbers[8];
    return true;
}

// ---- Numbers of a section body -------------------------------------------------------

bool readSectionInt(int* out, const MachineConfig* config, FILE* stream, const char* sectionName,
                    int sectionId) {
    if (sectionId < 2000) {
        if (fscanf(stream, "%x", reinterpret_cast<unsigned int*>(out)) != 1) {
            reportStreamFailure(stream, sectionName, sectionId);
            return false;
        }
        return true;
    }
    const ReadStatus status = readBinaryInt(out, stream, config);
    if (status != ReadStatus_Success) {
        reportReadStatus(status, sectionName, sectionId);
        return false;
    }
    return true;
}

bool readSectionInts(int* out, int n, const MachineConfig* config, FILE* stream, const char* sectionName,
                     int sectionId) {
    if (sectionId < 2000) {
        unsigned int* values = reinterpret_cast<unsigned int*>(out);
        for (int i = 0; i < n; ++i) {
            if (fscanf(stream, "%x", &values[i]) != 1) {
                reportStreamFailure(stream, sectionName, sectionId);
                return false;
            }
        }
        return true;
    }
    const ReadStatus status = readBinaryInts(out, n, config, stream);
    if (status != ReadStatus_Success) {
        reportReadStatus(status, sectionName, sectionId);
        return false;
    }
    return true;
}

bool readSectionReal(double* out, const MachineConfig* config, FILE* stream, int sectionId) {
    if (sectionId < 2000) {
        if (fscanf(stream, "%lg", out) != 1) {
            reportStreamFailure(stream, "Data", sectionId);
            return false;
        }
        return true;
    }
    const bool single = sectionId < 3000;
    const int width = single ? config->floatSize : config->doubleSize;
    if (width < 1) {
        reportReadStatus(ReadStatus_ReadError, "Data", sectionId);
        return false;
    }
    ItemBuffer buffer(static_cast<size_t>(width) < 8 ? 8 : static_cast<size_t>(width));
    unsigned char* bytes = buffer.data();
    if (bytes == nullptr) {
        reportReadStatus(ReadStatus_ReadError, "Data", sectionId);
        return false;
    }
    if (fread(bytes, 1, static_cast<size_t>(width), stream) != static_cast<size_t>(width)) {
        reportReadStatus(statusOfShortRead(stream), "Data", sectionId);
        return false;
    }
    if (!isIeeeFormat(config)) {
        if (!convertNonIeeeReal(out, bytes, width)) {
            reportReadStatus(ReadStatus_NumberOverflow, "Data", sectionId);
            return false;
        }
        return true;
    }
    if (ordersDiffer(config))
        reverseBytes(bytes, static_cast<size_t>(width));
    if (single) {
        float value;
        std::memcpy(&value, bytes, sizeof(value));
        *out = value;
    } else {
        std::memcpy(out, bytes, sizeof(double));
    }
    return true;
}

bool readSectionReals(double* out, int n, const MachineConfig* config, FILE* stream, const char* sectionName,
                      int sectionId, bool base64Text) {
    if (sectionId < 2000) {
        for (int i = 0; i < n; ++i) {
            if (fscanf(stream, "%lg", &out[i]) != 1) {
                reportStreamFailure(stream, sectionName, sectionId);
                return false;
            }
        }
        return true;
    }
    ReadStatus status;
    if (sectionId < 3000) {
        status = base64Text ? readBase64Floats(out, n, stream) : readBinaryFloats(out, n, config, stream);
    } else {
        status = readBinaryDoubles(out, n, config, stream);
    }
    if (status != ReadStatus_Success) {
        reportReadStatus(status, sectionName, sectionId);
        return false;
    }
    return true;
}

ReadStatus readBinaryInt(int* out, FILE* stream, const MachineConfig* config) {
    const int width = config->intSize;
    if (width < 1)
        return ReadStatus_ReadError;
    ItemBuffer buffer(static_cast<size_t>(width));
    unsigned char* bytes = buffer.data();
    if (bytes == nullptr)
        return ReadStatus_ReadError;
    if (fread(bytes, 1, static_cast<size_t>(width), stream) != static_cast<size_t>(width)) {
        return statusOfShortRead(stream);
    }
    // The value is built in the file's byte order from the four low-order
    // bytes (fewer for a narrower width, at the low-order end); the sign bit is
    // ORed into its top byte; higher bytes must merely repeat the sign.
    unsigned char value[4] = {0, 0, 0, 0};
    const int kept = width < 4 ? width : 4;
    if (config->byteOrder == 1) {
        const bool negative = bytes[0] > 127;
        const unsigned char fill = negative ? 0xFF : 0x00;
        for (int k = 0; k < width - 4; ++k) {
            if (bytes[k] != fill)
                return ReadStatus_NumberOverflow;
        }
        std::memcpy(value + (4 - kept), bytes + (width - kept), static_cast<size_t>(kept));
        if (negative)
            value[0] |= 0x80;
    } else {
        const bool negative = bytes[width - 1] > 127;
        const unsigned char fill = negative ? 0xFF : 0x00;
        for (int k = 4; k < width && k < 8; ++k) {
            if (bytes[k] != fill)
                return ReadStatus_NumberOverflow;
        }
        std::memcpy(value, bytes, static_cast<size_t>(kept));
        if (negative)
            value[3] |= 0x80;
    }
    if (ordersDiffer(config))
        reverseBytes(value, 4);
    std::memcpy(out, value, sizeof(value));
    return ReadStatus_Success;
}

ReadStatus readBinaryInts(int* out, int n, const MachineConfig* config, FILE* stream) {
    if (n < 0)
        return ReadStatus_ReadError;
    if (n == 0)
        return ReadStatus_Success;
    const size_t count = static_cast<size_t>(n);
    if (config->intSize == 4) {
        if (fread(out, 4, count, stream) != count)
            return ReadStatus_ReadError;
        if (ordersDiffer(config))
            reverseEach32(out, count);
        return ReadStatus_Success;
    }
    // Other widths go through a small buffer. The destination and the count
    // are never advanced: each step fills the start of the destination again,
    // until a read comes up short. Such files end in a read error.
    const int width = config->intSize;
    if (width < 1 || width > 4096)
        return ReadStatus_ReadError;
    unsigned char buffer[4096];
    const size_t itemsPerStep =
        count < 4096 / static_cast<size_t>(width) ? count : 4096 / static_cast<size_t>(width);
    for (;;) {
        if (fread(buffer, static_cast<size_t>(width), itemsPerStep, stream) != itemsPerStep) {
            return ReadStatus_ReadError;
        }
        if (width == 2) {
            for (size_t i = 0; i < itemsPerStep; ++i) {
                int16_t item;
                std::memcpy(&item, buffer + 2 * i, sizeof(item));
                out[i] = item;
            }
        } else if (width == 8) {
            for (size_t i = 0; i < itemsPerStep; ++i)
                std::memcpy(&out[i], buffer + 8 * i, 4);
        } else {
            return ReadStatus_ReadError;
        }
        if (ordersDiffer(config))
            reverseEach32(out, itemsPerStep);
    }
}

ReadStatus readBinaryFloats(double* out, int n, const MachineConfig* config, FILE* stream) {
    if (!isIeeeFormat(config))
        return convertNonIeeeReals(out, n, true, stream);
    if (n < 0)
        return ReadStatus_ReadError;
    if (n == 0)
        return ReadStatus_Success;
    const size_t count = static_cast<size_t>(n);
    float* items = static_cast<float*>(std::malloc(count * sizeof(float)));
    if (items == nullptr)
        return ReadStatus_ReadError;
    if (fread(items, sizeof(float), count, stream) != count) {
        std::free(items);
        return statusOfShortRead(stream);
    }
    if (ordersDiffer(config))
        reverseEach32(items, count);
    for (size_t i = 0; i < count; ++i)
        out[i] = items[i];
    std::free(items);
    return ReadStatus_Success;
}

ReadStatus readBinaryDoubles(double* out, int n, const MachineConfig* config, FILE* stream) {
    if (!isIeeeFormat(config))
        return convertNonIeeeReals(out, n, false, stream);
    if (n < 0)
        return ReadStatus_ReadError;
    if (n == 0)
        return ReadStatus_Success;
    const size_t count = static_cast<size_t>(n);
    if (fread(out, sizeof(double), count, stream) != count)
        return ReadStatus_ReadError;
    if (ordersDiffer(config))
        reverseEach64(out, count);
    return ReadStatus_Success;
}

ReadStatus readBase64Floats(double* out, int n, FILE* stream) {
    if (n < 0)
        return ReadStatus_ReadError;
    char* line = readTextLine(100, stream);
    if (line == nullptr)
        return ReadStatus_ReadError;
    // Characters outside the base64 alphabet (the newline) are passed over by the decoder.
    const QByteArray decoded =
        QByteArray::fromBase64(QByteArray::fromRawData(line, static_cast<qsizetype>(std::strlen(line))));
    std::free(line);
    const size_t count = static_cast<size_t>(n);
    if (static_cast<size_t>(decoded.size()) != 4 * count)
        return ReadStatus_ReadError;
    const char* bytes = decoded.constData();
    for (size_t i = 0; i < count; ++i) {
        float value;
        std::memcpy(&value, bytes + 4 * i, sizeof(value));
        out[i] = value;
    }
    return ReadStatus_Success;
}

// The non-IEEE real: sign bit, 15-bit exponent, mantissa with an explicit
// leading one, 8 or more bytes, big-endian.
//
//   byte 0      1         2          3 ...
//   s eeeeeee   eeeeeeee  1 mmmmmmm  mmmmmmmm ...
//
// The exponent range that maps onto a double is e = 15364 .. 17409, the
// double's exponent being e - 15362. Zero (e = 0) is outside it.
bool convertNonIeeeReal(double* out, const unsigned char* in, int width) {
    // Bytes beyond the item's width count as zero.
    auto byteAt = [in, width](int k) -> unsigned int { return k < width ? in[k] : 0u; };
    const unsigned int e = ((byteAt(0) & 0x7fu) << 8) | byteAt(1);
    if (e < 15364 || e > 17409)
        return false;
    const unsigned int exponent = e - 15362;
    unsigned char ieee[8];  // most significant first
    ieee[0] = static_cast<unsigned char>((byteAt(0) & 0x80u) | ((exponent >> 4) & 0x7fu));
    ieee[1] = static_cast<unsigned char>(((exponent & 0x0fu) << 4) | ((byteAt(2) >> 3) & 0x0fu));
    for (int k = 2; k <= 7; ++k) {
        ieee[k] = static_cast<unsigned char>(((byteAt(k) & 0x07u) << 5) | (byteAt(k + 1) >> 3));
    }
    if (hostByteOrder == 0)
        reverseBytes(ieee, sizeof(ieee));
    std::memcpy(out, ieee, sizeof(ieee));
    return true;
}

ReadStatus convertNonIeeeReals(double* out, int n, bool singleWidth, FILE* stream) {
    if (n < 0)
        return ReadStatus_ReadError;
    if (n == 0)
        return ReadStatus_Success;
    const size_t width = singleWidth ? 8 : 12;
    const size_t count = static_cast<size_t>(n);
    unsigned char* items = static_cast<unsigned char*>(std::malloc(count * width));
    if (items == nullptr)
        return ReadStatus_ReadError;
    if (fread(items, width, count, stream) != count) {
        std::free(items);
        return statusOfShortRead(stream);
    }
    for (size_t i = 0; i < count; ++i) {
        if (!convertNonIeeeReal(&out[i], items + i * width, static_cast<int>(width))) {
            std::free(items);
            return ReadStatus_NumberOverflow;
        }
    }
    std::free(items);
    return ReadStatus_Success;
}

// ---- Searching, tokens, lines ------------------------------------------------------------

ReadStatus seekLiteral(FILE* stream, const char* literal, bool limited, bool tolerant) {
    StreamLock lock(stream);
    if (matchLiteral(stream, literal, limited, tolerant, false, 0) == Match::Found)
        return ReadStatus_Success;
    return statusOfShortRead(stream);
}

ReadStatus seekLiteralBounded(FILE* stream, const char* literal, long long endPosition) {
    StreamLock lock(stream);
    switch (matchLiteral(stream, literal, false, false, true, endPosition)) {
        case Match::Found:
            return ReadStatus_Success;
        case Match::BoundReached:
            return ReadStatus_EndOfFile;
        default:
            return statusOfShortRead(stream);
    }
}

int readDelimitedToken(char* out, const char* delimiters, FILE* stream) {
    StreamLock lock(stream);
    // strchr finds the terminating NUL too, so a NUL byte is a delimiter.
    int c;
    do {
        c = getc_unlocked(stream);
    } while (c != EOF && std::strchr(delimiters, c) != nullptr);
    size_t taken = 0;
    size_t kept = 0;
    while (c != EOF && std::strchr(delimiters, c) == nullptr) {
        if (kept < 128)
            out[kept++] = static_cast<char>(c);
        ++taken;
        c = getc_unlocked(stream);
    }
    out[kept] = '\0';
    if (c == EOF)
        return 1;
    ungetc(c, stream);
    return taken == 0 ? 2 : 0;
}

char* readTextLine(size_t firstSize, FILE* stream) {
    size_t capacity = firstSize < 2 ? 2 : firstSize;
    char* line = static_cast<char*>(std::malloc(capacity));
    if (line == nullptr)
        return nullptr;
    size_t length = 0;
    StreamLock lock(stream);
    for (;;) {
        const int c = getc_unlocked(stream);
        if (c == EOF)
            break;
        if (length + 1 >= capacity) {
            const size_t grown = capacity < 100 ? 200 : 2 * capacity;
            char* larger = static_cast<char*>(std::realloc(line, grown));
            if (larger == nullptr) {
                std::free(line);
                return nullptr;
            }
            line = larger;
            capacity = grown;
        }
        line[length++] = static_cast<char>(c);
        if (c == '\n')
            break;
    }
    line[length] = '\0';
    return line;
}

long long getFileSize(FILE* stream) {
    if (fseeko(stream, 0, SEEK_END) == 0) {
        const off_t size = ftello(stream);
        if (size >= 0 && fseeko(stream, 0, SEEK_SET) == 0)
            return static_cast<long long>(size);
    }
    showError("Error getting file size.");
    return -1;
}

// ---- Messages -----------------------------------------------------------------------------

void reportReadStatus(int status, const char* sectionName, int sectionId) {
    switch (status) {
        case ReadStatus_EndOfFile:
            showError("End-of-file while reading %s section (section %d).", sectionName, sectionId);
            break;
        case ReadStatus_ReadError:
            showError("Read error while reading %s section (section %d).", sectionName, sectionId);
            break;
        case ReadStatus_NumberOverflow:
            showError("Number overflow while reading %s section (section %d).", sectionName, sectionId);
            break;
        default:
            break;
    }
}

void reportStreamFailure(FILE* stream, const char* sectionName, int sectionId) {
    if (ferror(stream)) {
        showError("Read error while reading %s section (section %d).", sectionName, sectionId);
    } else if (feof(stream)) {
        showError("End-of-file while reading %s section (section %d).", sectionName, sectionId);
    } else {
        showError("Parse error while reading %s section (section %d).", sectionName, sectionId);
    }
}
