// The primitives beneath every Fluent parser: finding, skipping and closing
// sections, the Machine Configuration, integers and reals in the three
// numeric encodings (ASCII, binary, base64 text), the non-IEEE real format,
// literal searches, tokens and lines, and the messages of every failure.
//
// Every reader works on an open stream that the caller owns; nothing here
// closes or frees it. A reader that fails has already shown its message
// through the host when it returns, so callers only unwind. The only state
// outside the stream is hostByteOrder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

// The binary layout of one file, from its Machine Configuration (section 4).
// Plain record held inside CaseFile and DataFile; all zero until section 4 was read.
struct MachineConfig {
    int32_t byteOrder;   /* byte order of binary numbers: 0 little-endian, 1 big-endian; 2nd number */
    int32_t floatFormat; /* 0 or 2: IEEE; anything else: the non-IEEE real format; 3rd number */
    int32_t intSize;     /* bytes of a binary integer; 6th number */
    int32_t floatSize;   /* bytes of a single-precision real; 8th number */
    int32_t doubleSize;  /* bytes of a double-precision real; 9th number */
};

// Result of the binary readers.
enum ReadStatus : int {
    ReadStatus_Success = 0,
    ReadStatus_EndOfFile = 1,
    ReadStatus_ReadError = 2,
    ReadStatus_NumberOverflow = 3
};

// Byte order of this process: 0 little-endian, 1 big-endian. Valid from the
// start of the process; written again (with the same value) by
// initHostByteOrder at the add-on entry, and only read afterwards.
extern int32_t hostByteOrder;
// Sets hostByteOrder from a store-and-test of a 32-bit word.
void initHostByteOrder();

// ---- Section ids -------------------------------------------------------------
//
// A base id is an ASCII section; the base plus 2000 the same section with
// binary single-precision reals, the base plus 3000 with binary
// double-precision reals.

// True when id is baseId, baseId + 2000 or baseId + 3000.
[[nodiscard]] bool sectionIdMatches(int id, int baseId);
// True when id is above 3000 (binary double precision).
[[nodiscard]] bool sectionIdIsDoublePrecision(int id);
// True when id is below 4000 (one of the three families).
[[nodiscard]] bool sectionIdIsKnownSeries(int id);

// ---- File names and opening ------------------------------------------------------

// At least 3 characters, the last 3 being ".gz" in any case.
[[nodiscard]] bool isGzipFileName(const char* name);
// At least 2 characters, the last 2 being ".Z" or ".z".
[[nodiscard]] bool isDotZFileName(const char* name);
// isGzipFileName or isDotZFileName.
[[nodiscard]] bool isCompressedFileName(const char* name);

// Opens a case or data file for reading; kind is "Case" or "Data" and goes
// into the messages. For a compressed name it returns true at once and leaves
// *stream as it was. False, message shown, for a missing, empty or unopenable name.
[[nodiscard]] bool openFluentFile(FILE** stream, const char* name, const char* kind);
// Opens a file by name through a Boost filesystem path (native separators),
// mode "rb" or "wb". Null when it cannot be opened; no message.
[[nodiscard]] FILE* openFilePath(const char* name, const char* mode);

// ---- Sections ----------------------------------------------------------------------

// Reads up to the next '(' and the decimal id behind it, and leaves the stream
// on the first character of the body. False at a clean end of file (silent)
// and on every failure (message shown).
[[nodiscard]] bool findNextSection(int* id, FILE* stream);
// Skips the rest of a section. ASCII: counts parentheses from depth 1 and
// stops behind the ')' that closes depth 1. Binary: searches the end marker
// and answers true whatever it found (a failure has been shown).
[[nodiscard]] bool skipSection(int id, bool binary, FILE* stream);
// Searches "End of Binary Section   %4d)" for the id and leaves the stream
// behind it. With limited, the search gives up silently after 100 steps.
[[nodiscard]] bool findBinarySectionEnd(int id, bool limited, FILE* stream);
// Closes a section: binary, the end marker within 100 steps; ASCII, the next
// non-blank character must be ')'. A stray character is a warning (none in
// batch mode, where the result is true) and a false result.
[[nodiscard]] bool closeSection(int id, const char* sectionName, bool binary, FILE* stream);
// Reads the body of section 4 and fills the record; false, message shown, when
// not all eleven numbers arrive.
[[nodiscard]] bool parseMachineConfig(MachineConfig* config, FILE* stream);

// ---- Numbers of a section body ------------------------------------------------------
//
// Section ids below 2000 are ASCII ("%x" integers, "%lg" reals); 2000 to 2999
// binary with floatSize reals; 3000 and above binary with doubleSize reals.
// Binary integers are intSize bytes in both binary ranges.

[[nodiscard]] bool readSectionInt(int* out, const MachineConfig* config, FILE* stream,
                                  const char* sectionName, int sectionId);
[[nodiscard]] bool readSectionInts(int* out, int n, const MachineConfig* config, FILE* stream,
                                   const char* sectionName, int sectionId);
// The section name in its messages is always "Data".
[[nodiscard]] bool readSectionReal(double* out, const MachineConfig* config, FILE* stream, int sectionId);
// base64Text: single-precision reals as one line of base64 text.
[[nodiscard]] bool readSectionReals(double* out, int n, const MachineConfig* config, FILE* stream,
                                    const char* sectionName, int sectionId, bool base64Text);

// The binary readers show nothing; the caller passes a failure to reportReadStatus.

// One integer of intSize bytes as a signed 32-bit value; NumberOverflow when
// the bytes beyond the low four do not carry the sign.
[[nodiscard]] ReadStatus readBinaryInt(int* out, FILE* stream, const MachineConfig* config);
// n integers. Only intSize 4 is read correctly: any other width fills the
// start of the destination again and again and ends in ReadError.
[[nodiscard]] ReadStatus readBinaryInts(int* out, int n, const MachineConfig* config, FILE* stream);
// n single-precision reals, widened to double.
[[nodiscard]] ReadStatus readBinaryFloats(double* out, int n, const MachineConfig* config, FILE* stream);
// n double-precision reals; a short read of IEEE doubles is ReadError.
[[nodiscard]] ReadStatus readBinaryDoubles(double* out, int n, const MachineConfig* config, FILE* stream);
// One line of base64 text that must decode to exactly n native floats.
[[nodiscard]] ReadStatus readBase64Floats(double* out, int n, FILE* stream);

// Converts one non-IEEE real of `width` bytes (file order) to double; false
// when its exponent is out of the convertible range (zero included).
[[nodiscard]] bool convertNonIeeeReal(double* out, const unsigned char* in, int width);
// Reads n non-IEEE reals of 8 bytes (singleWidth) or 12 bytes and converts them.
[[nodiscard]] ReadStatus convertNonIeeeReals(double* out, int n, bool singleWidth, FILE* stream);

// ---- Searching, tokens, lines ---------------------------------------------------------

// Searches the literal and leaves the stream behind it: Success, or EndOfFile /
// ReadError by feof. limited: give up after 100 steps. tolerant: a blank or a
// '0' in the file stands for any character of the literal after the first.
[[nodiscard]] ReadStatus seekLiteral(FILE* stream, const char* literal, bool limited, bool tolerant);
// Searches the literal, giving EndOfFile once a first-character match lies at
// or beyond endPosition (a stream position).
[[nodiscard]] ReadStatus seekLiteralBounded(FILE* stream, const char* literal, long long endPosition);
// Skips delimiters (NUL counts as one), then reads a token up to the next
// delimiter into out (129 bytes: at most 128 characters kept) and puts the
// delimiter back. 1 at end of file, 2 when nothing was read, 0 otherwise.
[[nodiscard]] int readDelimitedToken(char* out, const char* delimiters, FILE* stream);
// Reads up to and including a newline (or to the end of file) into a malloc
// block owned by the caller. Null when memory runs out.
[[nodiscard]] char* readTextLine(size_t firstSize, FILE* stream);
// The size of the file in bytes; the stream is left at the start. -1, message
// shown, when a seek or tell fails.
[[nodiscard]] long long getFileSize(FILE* stream);

// ---- Messages --------------------------------------------------------------------------

// Shows the message of a non-zero ReadStatus for the section; nothing for 0.
void reportReadStatus(int status, const char* sectionName, int sectionId);
// Shows the read error, end-of-file or parse error message, as the stream's state says.
void reportStreamFailure(FILE* stream, const char* sectionName, int sectionId);
