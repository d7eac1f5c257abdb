// Helpers of the data file tests: temporary files, the pieces of a data file
// (sections in the three encodings), a case record made in memory, and the
// messages the host saw.
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "addon/FluentSolution.h"
#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "minihost/MiniHost.h"

namespace datafile_test {

// A file of the given bytes under the test's temporary folder; removed with the object.
class TempFile {
  public:
    explicit TempFile(const std::string& bytes, const std::string& suffix = ".dat") {
        static int serial = 0;
        path_ = ::testing::TempDir() + "datafile_test_" + std::to_string(getpid()) + "_" +
                std::to_string(serial++) + suffix;
        FILE* f = fopen(path_.c_str(), "wb");
        if (f != nullptr) {
            fwrite(bytes.data(), 1, bytes.size(), f);
            fclose(f);
        }
    }
    ~TempFile() { remove(path_.c_str()); }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

// ---- Numbers as bytes -----------------------------------------------------------------

template <typename T>
std::string rawBytes(const std::vector<T>& values, bool bigEndian = false) {
    std::string bytes;
    for (T v : values) {
        char b[sizeof(T)];
        memcpy(b, &v, sizeof(T));
        if (bigEndian) {
            for (size_t i = 0; i < sizeof(T) / 2; ++i) {
                std::swap(b[i], b[sizeof(T) - 1 - i]);
            }
        }
        bytes.append(b, sizeof(T));
    }
    return bytes;
}

inline std::string doubles(const std::vector<double>& v, bool bigEndian = false) {
    return rawBytes(v, bigEndian);
}
inline std::string floats(const std::vector<double>& v, bool bigEndian = false) {
    std::vector<float> f(v.begin(), v.end());
    return rawBytes(f, bigEndian);
}
inline std::string ints(const std::vector<int32_t>& v, bool bigEndian = false) {
    return rawBytes(v, bigEndian);
}

// Numbers as Fluent writes them in ASCII ("%.17g", one a line).
inline std::string asciiNumbers(const std::vector<double>& v) {
    std::string text;
    char buffer[64];
    for (double x : v) {
        snprintf(buffer, sizeof buffer, "%.17g\n", x);
        text += buffer;
    }
    return text;
}

// ---- Sections ----------------------------------------------------------------------------

// Section 4 of a file with IEEE numbers: ints of 4 bytes, floats of 4, doubles of 8.
inline std::string machineConfig(bool bigEndian = false, int intSize = 4, int floatSize = 4,
                                 int doubleSize = 8) {
    return "(4 (60 " + std::string(bigEndian ? "1" : "0") + " 0 1 2 " + std::to_string(intSize) + " 4 " +
           std::to_string(floatSize) + " " + std::to_string(doubleSize) + " 4 4))\n";
}

inline std::string endMarker(int id) {
    char marker[64];
    snprintf(marker, sizeof marker, "End of Binary Section   %4d)", id);
    return marker;
}

// The body of a section id: ASCII numbers, or binary numbers of the id's width.
inline std::string numbersFor(int sectionId, const std::vector<double>& v, bool bigEndian = false) {
    if (sectionId < 2000) {
        return asciiNumbers(v);
    }
    return sectionId >= 3000 ? doubles(v, bigEndian) : floats(v, bigEndian);
}

// A Data section: (id (fieldId zoneId dimension 0 phase first last) (numbers)).
inline std::string dataSection(int sectionId, int fieldId, int zoneId, int dimension, int phase, int first,
                               int last, const std::vector<double>& values, bool bigEndian = false) {
    std::string text = "(" + std::to_string(sectionId) + " (" + std::to_string(fieldId) + " " +
                       std::to_string(zoneId) + " " + std::to_string(dimension) + " 0 " +
                       std::to_string(phase) + " " + std::to_string(first) + " " + std::to_string(last) +
                       ")\n(";
    text += numbersFor(sectionId, values, bigEndian);
    if (sectionId >= 2000) {
        text += "\n" + endMarker(sectionId) + ")\n";
    } else {
        text += "))\n";
    }
    return text;
}

// A Residuals section with a header of three or four numbers.
inline std::string residualSection(int sectionId, int numRows, int residualId, int width,
                                   const std::vector<double>& body, bool fourNumbers = true) {
    std::string text = "(" + std::to_string(sectionId) + " (" + std::to_string(numRows) + " " +
                       std::to_string(residualId) + " " + std::to_string(width) + (fourNumbers ? " 1" : "") +
                       ")\n(";
    text += numbersFor(sectionId, body);
    if (sectionId >= 2000) {
        text += ")\n" + endMarker(sectionId) + "\n";
    } else {
        text += "))\n";
    }
    return text;
}

// One subsection of a Particle section; binary integers for the integer ids
// when `integers` is set.
inline std::string particleSubsection(int sectionId, int fieldId, const std::vector<double>& values,
                                      bool integers = false, bool bigEndian = false) {
    std::string text = "(" + std::to_string(fieldId) + " (";
    if (sectionId < 2000) {
        text += asciiNumbers(values) + "))\n";
        return text;
    }
    if (integers) {
        std::vector<int32_t> v(values.begin(), values.end());
        text += ints(v, bigEndian);
    } else {
        text += numbersFor(sectionId, values, bigEndian);
    }
    text += "\n" + endMarker(fieldId) + ")\n";
    return text;
}

inline std::string particleHeader(int sectionId, const std::string& name, int count, double time, int dims) {
    char head[256];
    snprintf(head, sizeof head, "(%d (%s %d %.17g %d)\n", sectionId, name.c_str(), count, time, dims);
    return head;
}

// ---- A case made in memory ---------------------------------------------------------------

// A CaseFile with cell and face zones, as far as the data file scan looks at it.
class MemoryCase {
  public:
    MemoryCase() {
        memset(&caseFile_, 0, sizeof caseFile_);
        caseFile_.numDimensions = 3;
        caseFile_.machineConfig.intSize = 4;
        caseFile_.machineConfig.floatSize = 4;
        caseFile_.machineConfig.doubleSize = 8;
    }
    MemoryCase(const MemoryCase&) = delete;
    MemoryCase& operator=(const MemoryCase&) = delete;

    void addCellZone(int zoneId, int first, int last) {
        CellZone zone;
        memset(&zone, 0, sizeof zone);
        zone.zoneId = zoneId;
        zone.firstIndex = first;
        zone.lastIndex = last;
        zone.zoneType = 1;
        cells_.push_back(zone);
        caseFile_.cellZones = cells_.data();
        caseFile_.numCellZones = static_cast<int32_t>(cells_.size());
    }
    void addFaceZone(int zoneId, int first, int last) {
        FaceZone zone;
        memset(&zone, 0, sizeof zone);
        zone.zoneId = zoneId;
        zone.firstIndex = first;
        zone.lastIndex = last;
        zone.boundaryType = 3;
        faces_.push_back(zone);
        caseFile_.faceZones = faces_.data();
        caseFile_.numFaceZones = static_cast<int32_t>(faces_.size());
    }
    CaseFile* get() { return &caseFile_; }

  private:
    CaseFile caseFile_;
    std::vector<CellZone> cells_;
    std::vector<FaceZone> faces_;
};

// A solution record with no files, for the scan's questions about particles.
inline FluentSolution emptySolution() {
    FluentSolution solution;
    memset(&solution, 0, sizeof solution);
    return solution;
}

// Scans a file into dataFile (made here) with the options given.
inline bool scanFile(DataFile* dataFile, const std::string& path, CaseFile* caseFile,
                     LoadOption option = LoadOption_CaseAndData, bool loadAdditional = false,
                     FluentSolution* solution = nullptr) {
    EXPECT_TRUE(DataFileInit(dataFile, path.c_str(), loadAdditional));
    FluentSolution none = emptySolution();
    return DataFileScan(solution != nullptr ? solution : &none, dataFile, caseFile, option, nullptr, nullptr);
}

// The texts of the messages shown so far.
inline std::vector<std::string> messageTexts() {
    std::vector<std::string> texts;
    for (const minihost::Message& m : minihost::messages()) {
        texts.push_back(m.text);
    }
    return texts;
}

// A test fixture that starts and ends with a clean host.
class DataFileTest : public ::testing::Test {
  protected:
    void SetUp() override { minihost::resetRecords(); }
    void TearDown() override { minihost::resetRecords(); }
};

}  // namespace datafile_test
