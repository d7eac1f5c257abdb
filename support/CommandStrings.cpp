// Set texts and numbers of the instruction list.
#include "support/CommandStrings.h"

#include <locale.h>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <string>

#include "host/ZorUtil.h"

static bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

static const char* skipBlanks(const char* p) {
    while (*p == ' ' || *p == '\t') {
        ++p;
    }
    return p;
}

bool readPositiveInteger(const char*& cursor, long long& value) {
    const char* p = skipBlanks(cursor);
    bool negative = false;
    if (*p == '-') {
        negative = true;
        ++p;
    }
    // Summed in a double, as the macro language does; ten digits fit exactly,
    // and the small addend guards the truncation.
    double sum = 0.0;
    int digits = 0;
    while (isDigit(*p)) {
        if (digits == 10) {
            return false;
        }
        sum = sum * 10.0 + (*p - '0');
        ++digits;
        ++p;
    }
    if (digits == 0) {
        return false;
    }
    long long result = static_cast<long long>(sum + 0.001);
    value = negative ? -result : result;
    cursor = p;
    return true;
}

bool stringToSet(const char* text, ZorSet& result, bool bracketed) {
    result = nullptr;
    if (text == nullptr) {
        return false;
    }
    ZorSet set = ZorUtilSetAlloc(false);
    if (set == nullptr) {
        return false;
    }
    bool ok = true;
    const char* p = skipBlanks(text);
    if (bracketed) {
        if (*p == '[') {
            ++p;
        } else {
            ok = false;
        }
    }
    while (ok) {
        p = skipBlanks(p);
        if (*p == '\0' || (bracketed && *p == ']')) {
            break;
        }
        long long first = 0;
        if (!readPositiveInteger(p, first)) {
            ok = false;
            break;
        }
        long long last = first;
        long long skip = 1;
        p = skipBlanks(p);
        if (*p == '-') {
            ++p;
            if (!readPositiveInteger(p, last)) {
                ok = false;
                break;
            }
            p = skipBlanks(p);
            if (*p == ':') {
                ++p;
                if (!readPositiveInteger(p, skip)) {
                    ok = false;
                    break;
                }
                p = skipBlanks(p);
            }
        }
        if (first < 1 || last < first || skip < 1) {
            ok = false;
            break;
        }
        for (long long member = first; member <= last; member += skip) {
            if (!ZorUtilSetAddMember(set, static_cast<ZorIndex>(member), false)) {
                ok = false;
                break;
            }
        }
        if (*p == ',') {
            ++p;
        }
    }
    if (!ok) {
        ZorUtilSetDealloc(&set);
        return false;
    }
    result = set;
    return true;
}

bool setToString(ZorSet set, bool bracketed, char*& text) {
    std::string runs;
    if (bracketed) {
        runs += '[';
    }
    if (set != nullptr) {
        bool firstRun = true;
        ZorIndex member = ZorUtilSetGetNextMember(set, ZorNoMember);
        while (member != ZorNoMember) {
            ZorIndex runStart = member;
            ZorIndex runEnd = member;
            member = ZorUtilSetGetNextMember(set, member);
            while (member != ZorNoMember && member == runEnd + 1) {
                runEnd = member;
                member = ZorUtilSetGetNextMember(set, member);
            }
            if (!firstRun) {
                runs += ',';
            }
            firstRun = false;
            runs += std::to_string(runStart);
            if (runEnd != runStart) {
                runs += '-';
                runs += std::to_string(runEnd);
            }
        }
    }
    if (bracketed) {
        runs += ']';
    }

    size_t oldLength = text != nullptr ? strlen(text) : 0;
    char* grown = ZorUtilStringAlloc(static_cast<int64_t>(oldLength + runs.size()), "new string");
    if (grown == nullptr) {
        return false;
    }
    if (oldLength > 0) {
        memcpy(grown, text, oldLength);
    }
    memcpy(grown + oldLength, runs.c_str(), runs.size() + 1);
    if (text != nullptr) {
        ZorUtilStringDealloc(&text);
    }
    text = grown;
    return true;
}

// The "C" locale, so that the decimal point is "." whatever the host set.
static locale_t cLocale() {
    static locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
    return locale;
}

bool readDouble(const char*& cursor, double& value) {
    const char* start = skipBlanks(cursor);
    if (*start == '\0') {
        return false;
    }
    const char* p = start;
    if (*p == '+' || *p == '-') {
        ++p;
    }
    while (isDigit(*p)) {
        ++p;
    }
    if (*p == '.') {
        ++p;
    }
    while (isDigit(*p)) {
        ++p;
    }
    if (p == start) {
        return false;
    }
    if (*p == 'D' || *p == 'E' || *p == 'd' || *p == 'e') {
        const char* q = p + 1;
        if (*q == '+' || *q == '-') {
            ++q;
        }
        if (!isDigit(*q)) {
            return false;
        }
        long exponent = 0;
        while (isDigit(*q)) {
            if (exponent < 100000) {
                exponent = exponent * 10 + (*q - '0');
            }
            ++q;
        }
        if (exponent >= 309) {
            return false;
        }
        p = q;
    }
    if (*p != '\0' && *p != ' ' && *p != '\t' && *p != '\n' && *p != '\r' && *p != '\v' && *p != '\f') {
        return false;
    }

    // The macro language writes Fortran exponents ("1.5D3"); the C library
    // knows only "e".
    std::string number(start, static_cast<size_t>(p - start));
    for (char& c : number) {
        if (c == 'D' || c == 'd') {
            c = 'e';
        }
    }
    locale_t locale = cLocale();
    value = locale != static_cast<locale_t>(0) ? strtod_l(number.c_str(), nullptr, locale)
                                               : strtod(number.c_str(), nullptr);
    cursor = p;
    return true;
}
