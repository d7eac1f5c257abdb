// A small reader of Fluent files of the tests' own, independent of the add-on:
// it splits a file (plain or gzip) into its top-level sections and decodes
// their numbers, taking the byte order and integer size from the file's own
// Machine Configuration section.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace fgtest {

struct Section {
    int id = 0;
    std::string header;  // text inside the section's first parentheses (binary: the header only)
    std::string body;    // ASCII: everything behind the header; binary: the bytes between body '(' and marker
    std::string raw;     // binary: every byte between the header's ')' and the end marker
    std::vector<Section> subsections;  // particle sections: one per variable
};

struct ParsedFile {
    std::vector<Section> sections;
    bool bigEndian = false;
    int intSize = 4;
    std::string error;  // empty when the file parsed to its end
};

// Reads the whole file; gzip files (by their magic bytes) are inflated first.
std::string readFileBytes(const std::string& path);
std::string inflateIfGzip(const std::string& bytes);
ParsedFile parseFluent(const std::string& bytes);

// Numbers of a section body.
std::vector<int64_t> asciiHexInts(const std::string& text);
std::vector<double> asciiReals(const std::string& text);
std::vector<int64_t> binaryInts(const std::string& bytes, int intSize, bool bigEndian);
std::vector<double> binaryReals(const std::string& bytes, bool single, bool bigEndian);
// The body's inner text of an ASCII section: what stands inside the body parentheses.
std::string asciiBodyInner(const std::string& body);
// Whitespace separated words of a header.
std::vector<std::string> words(const std::string& text);
int64_t hexWord(const std::string& w);

}  // namespace fgtest
