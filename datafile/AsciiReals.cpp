#include "datafile/AsciiReals.h"

#include <sys/types.h>

#include <charconv>
#include <clocale>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <system_error>

namespace {

// White space as isspace() has it in the "C" locale, which "%lg" skips.
inline bool isBlank(int c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

inline bool isDigit(int c) {
    return c >= '0' && c <= '9';
}

inline bool isTokenChar(int c) {
    return isDigit(c) || c == '.' || c == 'e' || c == 'E' || c == '+' || c == '-';
}

inline bool isLetterOrDigit(int c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// [+-] (digits [. digits] | . digits) [(e|E) [+-] digits], the whole token.
bool isDecimalNumber(const char* token, size_t length) {
    size_t p = 0;
    if (p < length && (token[p] == '+' || token[p] == '-')) {
        ++p;
    }
    size_t digits = 0;
    while (p < length && isDigit(token[p])) {
        ++p;
        ++digits;
    }
    if (p < length && token[p] == '.') {
        ++p;
        while (p < length && isDigit(token[p])) {
            ++p;
            ++digits;
        }
    }
    if (digits == 0) {
        return false;
    }
    if (p < length && (token[p] == 'e' || token[p] == 'E')) {
        ++p;
        if (p < length && (token[p] == '+' || token[p] == '-')) {
            ++p;
        }
        size_t exponentDigits = 0;
        while (p < length && isDigit(token[p])) {
            ++p;
            ++exponentDigits;
        }
        if (exponentDigits == 0) {
            return false;
        }
    }
    return p == length;
}

// The value of a token that isDecimalNumber accepted, as strtod gives it.
double convert(char* token, size_t length) {
    const char* begin = token[0] == '+' ? token + 1 : token;
    double value;
    const std::from_chars_result r =
        std::from_chars(begin, token + length, value, std::chars_format::general);
    if (r.ec == std::errc() && r.ptr == token + length) {
        return value;
    }
    // Out of range: strtod's zero, subnormal or infinity, as "%lg" stores it.
    token[length] = '\0';
    return strtod(token, nullptr);
}

bool decimalPointIsDot() {
    const struct lconv* conventions = localeconv();
    return conventions != nullptr && conventions->decimal_point != nullptr &&
           strcmp(conventions->decimal_point, ".") == 0;
}

int readWithFscanf(double* out, int n, FILE* stream) {
    int i = 0;
    while (i < n && fscanf(stream, "%lg", &out[i]) == 1) {
        ++i;
    }
    return i;
}

}  // namespace

// One number through the stream's getc: the token is collected, checked and
// converted; anything else goes back to the token's start and through fscanf.
// False where fscanf would have failed (or the way back failed).
static bool readOneNumber(double* out, FILE* stream) {
    char token[72];
    int c;
    do {
        c = getc_unlocked(stream);
    } while (c != EOF && isBlank(c));
    if (c == EOF) {
        return false;  // where fscanf would give EOF: the stream's state tells why
    }
    size_t length = 0;
    while (isTokenChar(c) && length < sizeof token - 1) {
        token[length++] = static_cast<char>(c);
        c = getc_unlocked(stream);
    }
    const bool whole = length > 0 && length < sizeof token - 1 && !isTokenChar(c);
    if (c != EOF) {
        ungetc(c, stream);
    }
    if (whole && !isLetterOrDigit(c) && isDecimalNumber(token, length)) {
        *out = convert(token, length);
        return true;
    }
    if (length > 0) {
        // A stream that told its position at the start can go back to the token.
        const off_t now = ftello(stream);
        if (now == -1 || fseeko(stream, now - static_cast<off_t>(length), SEEK_SET) != 0) {
            return false;
        }
    }
    return fscanf(stream, "%lg", out) == 1;
}

int readAsciiReals(double* out, int n, FILE* stream) {
    if (n <= 0) {
        return 0;
    }
    if (!decimalPointIsDot() || ftello(stream) == -1) {
        return readWithFscanf(out, n, stream);
    }
    flockfile(stream);
    int i = 0;
    for (; i < n; ++i) {
#ifdef __GLIBC__
        // Most numbers lie whole inside the stream's buffer: they are found and
        // converted there, and the buffer's read pointer (what getc moves) is
        // moved past them. A number the buffer holds in part, or that does not
        // read whole, goes the slow way from where the pointer stands.
        const char* p = stream->_IO_read_ptr;
        const char* end = stream->_IO_read_end;
        while (p < end && isBlank(static_cast<unsigned char>(*p))) {
            ++p;
        }
        // The decimal grammar, then the rest of the token: a number is taken
        // here when the grammar covers the whole token.
        const char* first = p;
        if (p < end && (*p == '+' || *p == '-')) {
            ++p;
        }
        const char* digits = p;
        while (p < end && isDigit(*p)) {
            ++p;
        }
        ptrdiff_t digitCount = p - digits;
        if (p < end && *p == '.') {
            const char* fraction = ++p;
            while (p < end && isDigit(*p)) {
                ++p;
            }
            digitCount += p - fraction;
        }
        bool valid = digitCount > 0;
        if (valid && p < end && (*p == 'e' || *p == 'E')) {
            ++p;
            if (p < end && (*p == '+' || *p == '-')) {
                ++p;
            }
            const char* exponent = p;
            while (p < end && isDigit(*p)) {
                ++p;
            }
            valid = p > exponent;
        }
        if (valid && p < end && !isTokenChar(static_cast<unsigned char>(*p)) &&
            !isLetterOrDigit(static_cast<unsigned char>(*p))) {
            double value;
            const std::from_chars_result r =
                std::from_chars(*first == '+' ? first + 1 : first, p, value, std::chars_format::general);
            if (r.ec == std::errc() && r.ptr == p) {
                out[i] = value;
                stream->_IO_read_ptr = const_cast<char*>(p);
                continue;
            }
        }
        stream->_IO_read_ptr = const_cast<char*>(first);
#endif
        if (!readOneNumber(&out[i], stream)) {
            break;
        }
    }
    funlockfile(stream);
    return i;
}
