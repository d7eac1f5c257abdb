// Comparison of texts without regard to case.
//
// Only the letters a to z are folded (to capitals); every other byte, those
// above 127 included, compares as it is. This keeps keys, enumerated values
// and file suffixes independent of the user's locale.
#pragma once

#include <cstddef>
#include <cstring>

// The byte with a to z turned into A to Z.
inline char asciiToUpper(char c) {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

// True when both texts are equal after folding; a null text equals nothing.
inline bool asciiEqualsIgnoringCase(const char* a, const char* b) {
    if (a == nullptr || b == nullptr) {
        return false;
    }
    for (; *a != '\0' && *b != '\0'; ++a, ++b) {
        if (asciiToUpper(*a) != asciiToUpper(*b)) {
            return false;
        }
    }
    return *a == *b;
}

// True when the first n bytes of both are equal after folding (no NUL is
// looked for: the caller knows both have n bytes).
inline bool asciiEqualsIgnoringCaseN(const char* a, const char* b, size_t n) {
    for (size_t i = 0; i < n; ++i) {
        if (asciiToUpper(a[i]) != asciiToUpper(b[i])) {
            return false;
        }
    }
    return true;
}

// True when text is at least as long as suffix and ends in it after folding;
// a null text ends in nothing.
inline bool asciiEndsWithIgnoringCase(const char* text, const char* suffix) {
    if (text == nullptr) {
        return false;
    }
    const size_t textLength = std::strlen(text);
    const size_t suffixLength = std::strlen(suffix);
    return textLength >= suffixLength &&
           asciiEqualsIgnoringCaseN(text + textLength - suffixLength, suffix, suffixLength);
}
