// A fast reader of ASCII reals that gives what n calls of fscanf("%lg") give.
//
// The numbers of an ASCII data section are read with "%lg"; at a few hundred
// nanoseconds a call that caps a load near 60 MB/s. This reader finds each
// number in the stream's buffer (glibc's read pointer, the one getc moves),
// checks it against the decimal grammar that "%lg" accepts whole, converts it
// with std::from_chars and moves the pointer past it. A number that the
// buffer holds only in part is read through getc_unlocked the same way
// (strtod where from_chars reports a range error, as "%lg" does). Anything
// else (an empty or ill-formed token, a letter right behind it, which could
// continue a hex or infinity form, a decimal point other than '.') goes back
// to the token's start and through fscanf itself, so results, stream state
// and stream position are those of the fscanf loop in every case.
#pragma once

#include <cstdio>

// Reads up to n reals into out, as "%lg" would, stopping at the first
// failure. Returns how many were read; the stream's error and end-of-file
// state then tell why (as they do after fscanf). Streams that cannot tell
// their position are read with fscanf throughout.
int readAsciiReals(double* out, int n, FILE* stream);
