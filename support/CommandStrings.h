// Conversions between the texts of an instruction list and values: a set of
// positive integers, in both directions, and a floating-point number.
//
// A set is written as items separated by commas or blanks. An item is a
// number, a range "first-last", or a range with a step "first-last:skip":
// "1 3 5-9:2" holds 1, 3, 5, 7 and 9. Written back, runs of consecutive
// members become ranges and nothing else: {1, 2, 3, 5} gives "1-3,5".
#pragma once

#include "host/ZorTypes.h"

// Reads a set text into a new host set (the caller frees it). With
// `bracketed` the text must start with "[" and reading stops at "]"; without
// it a "[" is a failure. Every value, and a range's last value and skip, must
// be at least 1, and a range must not run backwards. On failure the set made
// so far is freed and `result` is null.
[[nodiscard]] bool stringToSet(const char* text, ZorSet& result, bool bracketed);

// Appends the set's members, in rising order, to the host string `text`
// (null counts as empty): runs as "first-last", single members as numbers,
// all separated by ",", enclosed in "[" and "]" with `bracketed`. A null or
// empty set gives "" ("[]" with `bracketed`). The string is replaced by a new
// host string; false when memory runs out, and `text` is then unchanged.
[[nodiscard]] bool setToString(ZorSet set, bool bracketed, char*& text);

// Reads an integer of at most 10 digits, after blanks and tabs and an optional
// "-". False when no digit or an eleventh digit follows; on success the
// cursor stands behind the last digit. The sign is allowed so that callers can
// tell a negative value from a malformed one.
[[nodiscard]] bool readPositiveInteger(const char*& cursor, long long& value);

// Reads a floating-point number after blanks and tabs: an optional sign,
// digits, an optional point and more digits, and an optional exponent brought
// in by "E", "e", "D" or "d" with an optional sign and at least one digit. The
// number must be followed by the end of the text or white space, and an
// exponent of 309 or more in magnitude is refused. A lone sign or point reads
// as 0. On success the cursor stands behind the number.
[[nodiscard]] bool readDouble(const char*& cursor, double& value);
