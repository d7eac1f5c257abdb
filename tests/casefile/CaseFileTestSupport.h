// Shared helpers of the case file tests: small case files built byte by byte,
// a scratch folder, CaseFile records made as the add-on makes them, and the
// messages the host recorded.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <vector>

#include "casefile/CaseFile.h"
#include "casefile/CaseFileInternal.h"
#include "minihost/MiniHost.h"

namespace casefile_test {

// Machine configuration of a little-endian file with 4-byte integers, 4-byte
// floats and 8-byte doubles.
inline const char* kMachineConfig = "(4 (60 0 0 1 2 4 4 4 8 4 4))\n";
// The same for a big-endian file.
inline const char* kMachineConfigBigEndian = "(4 (60 1 0 1 2 4 4 4 8 4 4))\n";

// The bytes of a case file under construction.
class CaseBytes {
  public:
    CaseBytes& text(const std::string& s) {
        bytes_ += s;
        return *this;
    }
    // A 4-byte integer in this machine's order, or reversed for a big-endian file.
    CaseBytes& i32(int32_t value) {
        unsigned char b[4];
        memcpy(b, &value, 4);
        if (bigEndian_) {
            std::swap(b[0], b[3]);
            std::swap(b[1], b[2]);
        }
        bytes_.append(reinterpret_cast<const char*>(b), 4);
        return *this;
    }
    CaseBytes& i32s(std::initializer_list<int32_t> values) {
        for (int32_t v : values) {
            i32(v);
        }
        return *this;
    }
    CaseBytes& i64(int64_t value) {
        bytes_.append(reinterpret_cast<const char*>(&value), 8);
        return *this;
    }
    CaseBytes& f32(float value) {
        unsigned char b[4];
        memcpy(b, &value, 4);
        if (bigEndian_) {
            std::swap(b[0], b[3]);
            std::swap(b[1], b[2]);
        }
        bytes_.append(reinterpret_cast<const char*>(b), 4);
        return *this;
    }
    CaseBytes& f64(double value) {
        unsigned char b[8];
        memcpy(b, &value, 8);
        if (bigEndian_) {
            for (int k = 0; k < 4; ++k) {
                std::swap(b[k], b[7 - k]);
            }
        }
        bytes_.append(reinterpret_cast<const char*>(b), 8);
        return *this;
    }
    // The end of a binary body: ")" and the end marker of the section.
    CaseBytes& endBinary(int sectionId) {
        char marker[64];
        snprintf(marker, sizeof marker, ")\nEnd of Binary Section   %4d)\n", sectionId);
        bytes_ += marker;
        return *this;
    }
    CaseBytes& bigEndian(bool on) {
        bigEndian_ = on;
        return *this;
    }
    const std::string& bytes() const { return bytes_; }
    size_t size() const { return bytes_.size(); }

  private:
    std::string bytes_;
    bool bigEndian_ = false;
};

// A fixture with a scratch folder, a clean host record, and the CaseFile
// records a test made (deleted at the end).
class CaseFileTest : public ::testing::Test {
  protected:
    void SetUp() override {
        minihost::resetRecords();
        savedMappedBodyMinBytes_ = gMappedBodyMinBytes;
        std::string pattern = (std::filesystem::temp_directory_path() / "casefile-test-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
    }
    void TearDown() override {
        for (CaseFile* caseFile : caseFiles_) {
            CaseFileDelete(caseFile);
            free(caseFile);
        }
        caseFiles_.clear();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
        minihost::resetRecords();
        gMappedBodyMinBytes = savedMappedBodyMinBytes_;
    }

    // Large binary face bodies are taken from a mapping of the file, or read
    // through a buffer: `mapped` chooses for bodies of every size, until
    // defaultBodyReads() or the end of the test.
    static void readBodies(bool mapped) { gMappedBodyMinBytes = mapped ? 0 : INT64_MAX; }
    void defaultBodyReads() const { gMappedBodyMinBytes = savedMappedBodyMinBytes_; }

    // Writes the bytes to a file of the scratch folder; its full name.
    std::string writeFile(const std::string& name, const std::string& bytes) {
        std::string path = (folder_ / name).string();
        std::ofstream out(path, std::ios::binary);
        out << bytes;
        return path;
    }

    // A zero-filled CaseFile with the name and a host mutex, as its solution makes it.
    CaseFile* newCaseFile(const std::string& path) {
        CaseFile* caseFile = static_cast<CaseFile*>(calloc(1, sizeof(CaseFile)));
        snprintf(caseFile->fileName, sizeof caseFile->fileName, "%s", path.c_str());
        caseFile->mutex = ZorUtilThreadMutexAlloc();
        caseFiles_.push_back(caseFile);
        return caseFile;
    }

    // Writes the bytes as a case file and scans it; the scan's result in *ok.
    CaseFile* scanBytes(const std::string& bytes, bool* ok, bool allZonesAsPolyhedral = false,
                        const std::string& name = "test.cas") {
        CaseFile* caseFile = newCaseFile(writeFile(name, bytes));
        *ok = CaseFileScan(caseFile, allZonesAsPolyhedral, nullptr, nullptr);
        return caseFile;
    }

    // Texts of all messages the host recorded, in order.
    static std::vector<std::string> messageTexts() {
        std::vector<std::string> texts;
        for (const minihost::Message& message : minihost::messages()) {
            texts.push_back(message.text);
        }
        return texts;
    }
    static std::vector<std::string> texts(std::initializer_list<const char*> list) {
        return std::vector<std::string>(list.begin(), list.end());
    }

    std::filesystem::path folder_;
    std::vector<CaseFile*> caseFiles_;

  private:
    int64_t savedMappedBodyMinBytes_ = 0;  // the setting before the test
};

// A Retain/Release bracket under the case mutex, as a load-on-demand callback holds it.
class CaseFileUse {
  public:
    explicit CaseFileUse(CaseFile* caseFile) : caseFile_(caseFile) {
        ZorUtilThreadMutexLock(caseFile_->mutex);
        CaseFileRetain(caseFile_);
    }
    ~CaseFileUse() {
        CaseFileRelease(caseFile_);
        ZorUtilThreadMutexUnlock(caseFile_->mutex);
    }
    CaseFileUse(const CaseFileUse&) = delete;
    CaseFileUse& operator=(const CaseFileUse&) = delete;

  private:
    CaseFile* caseFile_;
};

// The byte place in a binary case file of node k of face `face` (zero-based)
// of the face zone with `zoneId`, a zone of one face type; *width gets the
// places of a face (its nodes and two cells). A face of -1 gives the end of
// the zone's body. -1 when the case does not scan or has no such zone.
inline int64_t facePlace(const std::string& path, int32_t zoneId, int64_t face, int k, int* width) {
    CaseFile* caseFile = static_cast<CaseFile*>(calloc(1, sizeof(CaseFile)));
    snprintf(caseFile->fileName, sizeof caseFile->fileName, "%s", path.c_str());
    caseFile->mutex = ZorUtilThreadMutexAlloc();
    int64_t place = -1;
    if (CaseFileScan(caseFile, false, nullptr, nullptr)) {
        const FaceZone* zone = CaseFileFindFaceZone(caseFile, zoneId, false);
        if (zone != nullptr) {
            *width = zone->faceType + 2;
            place = zone->filePosition + (face * *width + k) * 4;
            if (face < 0)  // the end of the body
                place = zone->filePosition +
                        (static_cast<int64_t>(zone->lastIndex) - zone->firstIndex + 1) * *width * 4;
        }
    }
    CaseFileDelete(caseFile);
    free(caseFile);
    return place;
}

// Overwrites bytes of a file in place.
inline void poke(const std::string& path, int64_t place, const std::string& bytes) {
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(place);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// A 4-byte integer as this machine writes it.
inline std::string int32Bytes(int32_t value) {
    return std::string(reinterpret_cast<const char*>(&value), 4);
}

}  // namespace casefile_test
