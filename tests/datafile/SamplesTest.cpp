// The real case and data pairs of ../shared/fluent-samples/: every pair scans,
// every stored field loads and equals the numbers an independent reader
// (tests/datafile/fluent_arrays.py, "raw") finds in the file, every cell field
// equals the cell array of VTK's Fluent reader for the same zone and field,
// and the Residuals sections parse and equal the file's numbers.

#include "DataFileTestSupport.h"

#include <sys/stat.h>
#include <zlib.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>

#include "datafile/Residuals.h"
#include "host/ZorUtil.h"

using namespace datafile_test;

namespace {

struct SamplePair {
    const char* caseFile;                // under FL_SAMPLES_DIR
    std::vector<const char*> dataFiles;  // under FL_SAMPLES_DIR
    bool vtkReadsIt;                     // VTK's reader ends in a crash on the case of the last pair
};

const std::vector<SamplePair>& samplePairs() {
    static const std::vector<SamplePair> pairs = {
        {"ansys__example-data/pyfluent__adjoint_cylinder_tutorial__cylinder_tutorial.cas",
         {"ansys__example-data/pyfluent__adjoint_cylinder_tutorial__cylinder_tutorial.dat"},
         true},
        {"kimtaikee__QVTKDemo_data/airfoil.cas", {"kimtaikee__QVTKDemo_data/airfoil.dat"}, true},
        {"kimtaikee__QVTKDemo_data/elbow.cas", {"kimtaikee__QVTKDemo_data/elbow.dat"}, true},
        {"rezamarzban__Fluent-Simulations/Tube2D-Combustion__combustion.cas",
         {"rezamarzban__Fluent-Simulations/Tube2D-Combustion__combustion.dat"},
         true},
        {"aviacheslav__AnsysFluent/"
         "TriesOfAeroDynHeatProj_VsO__proj_AD_heat_2024-03-13__proj1_files__dp0__FFF__Fluent__FFF-1.cas.gz",
         {"aviacheslav__AnsysFluent/"
          "TriesOfAeroDynHeatProj_VsO__proj_AD_heat_2024-03-13__proj1_files__dp0__FFF__Fluent__FFF-1-00000."
          "dat.gz",
          "aviacheslav__AnsysFluent/"
          "TriesOfAeroDynHeatProj_VsO__proj_AD_heat_2024-03-13__proj1_files__dp0__FFF__Fluent__FFF-1-00124."
          "dat.gz"},
         false},
    };
    return pairs;
}

std::string samplePath(const char* relative) {
    return std::string(FL_SAMPLES_DIR) + "/" + relative;
}

// Writes a plain copy of a sample file (uncompressed with zlib for .gz).
bool plainCopy(const std::string& source, const std::string& target) {
    gzFile in = gzopen(source.c_str(), "rb");  // reads plain files as they are
    if (in == nullptr) {
        return false;
    }
    FILE* out = fopen(target.c_str(), "wb");
    if (out == nullptr) {
        gzclose(in);
        return false;
    }
    char buffer[1 << 16];
    int n;
    while ((n = gzread(in, buffer, sizeof buffer)) > 0) {
        fwrite(buffer, 1, static_cast<size_t>(n), out);
    }
    gzclose(in);
    return fclose(out) == 0 && n == 0;
}

// One item of a dump of fluent_arrays.py: its header words and its numbers.
struct DumpItem {
    std::vector<std::string> words;
    std::vector<double> values;
};

std::vector<DumpItem> readDump(const std::string& path) {
    std::vector<DumpItem> items;
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        const char first = line.empty() ? ' ' : line[0];
        const bool number = (first >= '0' && first <= '9') || first == '-' || first == '.' || line == "nan" ||
                            line == "inf" || line == "-inf";
        if (number) {
            if (items.empty()) {
                ADD_FAILURE() << "number before any header in " << path;
                continue;
            }
            items.back().values.push_back(strtod(line.c_str(), nullptr));
        } else {
            DumpItem item;
            std::istringstream words(line);
            std::string w;
            while (words >> w) {
                item.words.push_back(w);
            }
            items.push_back(item);
        }
    }
    return items;
}

bool sameValue(double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

// Runs the dump script; false when python or the script's imports fail.
bool runDump(const std::string& mode, const std::string& input, const std::string& output) {
    const std::string command = "/usr/bin/python3 '" + std::string(FL_SOURCE_DIR) +
                                "/tests/datafile/fluent_arrays.py' " + mode + " '" + input + "' '" + output +
                                "' > /dev/null 2>&1";
    return std::system(command.c_str()) == 0;
}

// Plain copies of one pair, named alike as VTK's reader wants them, and the
// raw dumps of its data files, made once per test program.
struct PreparedPair {
    std::string casePath;
    std::vector<std::string> dataPaths;
    std::vector<std::string> rawDumps;
};

const PreparedPair& prepared(size_t index) {
    static std::map<size_t, PreparedPair> cache;
    auto found = cache.find(index);
    if (found != cache.end()) {
        return found->second;
    }
    const SamplePair& pair = samplePairs()[index];
    PreparedPair p;
    const std::string dir =
        ::testing::TempDir() + "datafile_samples_" + std::to_string(getpid()) + "_" + std::to_string(index);
    mkdir(dir.c_str(), 0700);
    p.casePath = dir + "/sample.cas";
    EXPECT_TRUE(plainCopy(samplePath(pair.caseFile), p.casePath)) << pair.caseFile;
    for (size_t d = 0; d < pair.dataFiles.size(); ++d) {
        // The first data file takes the case's base name, for VTK's reader.
        const std::string data = d == 0 ? dir + "/sample.dat" : dir + "/sample_" + std::to_string(d) + ".dat";
        EXPECT_TRUE(plainCopy(samplePath(pair.dataFiles[d]), data)) << pair.dataFiles[d];
        p.dataPaths.push_back(data);
        const std::string dump = data + ".raw";
        EXPECT_TRUE(runDump("raw", data, dump)) << "raw dump of " << pair.dataFiles[d];
        p.rawDumps.push_back(dump);
    }
    return cache.emplace(index, p).first->second;
}

// A scanned case, deleted with the object.
class ScannedCase {
  public:
    explicit ScannedCase(const std::string& path) {
        memset(&caseFile_, 0, sizeof caseFile_);
        strcpy(caseFile_.fileName, path.c_str());
        caseFile_.mutex = ZorUtilThreadMutexAlloc();
        ok_ = CaseFileScan(&caseFile_, false, nullptr, nullptr);
    }
    ~ScannedCase() { CaseFileDelete(&caseFile_); }
    bool ok() const { return ok_; }
    CaseFile* get() { return &caseFile_; }

  private:
    CaseFile caseFile_;
    bool ok_ = false;
};

bool isCellZone(const CaseFile* caseFile, int zoneId) {
    for (int i = 0; i < caseFile->numCellZones; ++i) {
        if (caseFile->cellZones[i].zoneId == zoneId) {
            return true;
        }
    }
    return false;
}

class Samples : public DataFileTest {
  protected:
    void SetUp() override {
        DataFileTest::SetUp();
        if (!std::filesystem::is_directory(FL_SAMPLES_DIR))
            GTEST_SKIP() << "no sample files in " << FL_SAMPLES_DIR;
    }
    void TearDown() override {
        FluentResidualsClear();
        DataFileTest::TearDown();
    }
};

}  // namespace

// A binary section whose numbers run at least two bytes into its end marker
// is shorter than its header says. The cylinder tutorial's data file has
// three (its line ends were rewritten: no "\r\n" pair is left in 2.2 MB of
// binary numbers). The scan jumps past such a marker and takes the next
// section's marker for its end, so the next section is not recorded; the load
// of the short field finds no marker within reach and fails, silently.
bool isShortSection(const DumpItem& item) {
    return item.words.size() > 7 && std::stoi(item.words[7]) <= -2;
}

TEST_F(Samples, EveryPairScansAndEveryStoredFieldLoadsAsTheFileHoldsIt) {
    size_t loadedFields = 0;
    size_t shortSections = 0;
    for (size_t i = 0; i < samplePairs().size(); ++i) {
        const PreparedPair& p = prepared(i);
        SCOPED_TRACE(samplePairs()[i].caseFile);
        ScannedCase mesh(p.casePath);
        ASSERT_TRUE(mesh.ok());
        for (size_t d = 0; d < p.dataPaths.size(); ++d) {
            SCOPED_TRACE(samplePairs()[i].dataFiles[d]);
            minihost::resetRecords();
            DataFile dataFile;
            ASSERT_TRUE(scanFile(&dataFile, p.dataPaths[d], mesh.get(), LoadOption_CaseAndData, true));
            EXPECT_TRUE(minihost::messages().empty());
            std::vector<DumpItem> raw;
            for (DumpItem& item : readDump(p.rawDumps[d])) {
                if (item.words[0] == "field") {
                    raw.push_back(item);
                }
            }
            ASSERT_GT(raw.size(), 0u);
            // The sections the scan records: all, less each one behind a short section.
            std::vector<const DumpItem*> recorded;
            bool swallowed = false;
            for (const DumpItem& item : raw) {
                if (swallowed) {
                    swallowed = false;
                    continue;
                }
                recorded.push_back(&item);
                swallowed = isShortSection(item);
            }
            ASSERT_EQ(static_cast<size_t>(dataFile.numDataFields), recorded.size());
            for (int f = 0; f < dataFile.numDataFields; ++f) {
                DataField& field = dataFile.dataFields[f];
                const DumpItem& item = *recorded[static_cast<size_t>(f)];
                const std::vector<std::string>& w = item.words;
                EXPECT_EQ(field.sectionId, std::stoi(w[1]));
                EXPECT_EQ(field.fieldId, std::stoi(w[2]));
                EXPECT_EQ(field.zoneId, std::stoi(w[3]));
                EXPECT_EQ(field.dimension, std::stoi(w[4]));
                EXPECT_EQ(field.count, std::stoi(w[6]) - std::stoi(w[5]) + 1);
                // No field of these files is the transposed one (970).
                ASSERT_NE(field.fieldId, 970);
                if (isShortSection(item)) {
                    EXPECT_FALSE(DataFileLoadDataField(&dataFile, &field)) << "field " << field.fieldId;
                    EXPECT_TRUE(minihost::messages().empty());
                    DataFieldFreeArrays(&field);
                    ++shortSections;
                    continue;
                }
                ASSERT_TRUE(DataFileLoadDataField(&dataFile, &field)) << "field " << field.fieldId;
                const std::vector<double>& expected = item.values;
                ASSERT_EQ(expected.size(), static_cast<size_t>(field.count) * field.dimension);
                size_t differing = 0;
                for (size_t k = 0; k < expected.size(); ++k) {
                    differing += !sameValue(field.values[k], expected[k]);
                }
                EXPECT_EQ(differing, 0u) << "field " << field.fieldId << " zone " << field.zoneId;
                DataFieldFreeArrays(&field);
                ++loadedFields;
            }
            EXPECT_TRUE(minihost::messages().empty());
        }
    }
    EXPECT_EQ(shortSections, 3u);
    EXPECT_GT(loadedFields, 900u);
}

TEST_F(Samples, CellFieldsEqualTheCellArraysOfVtksReader) {
    // VTK's reader names arrays by a table of its own. Its behaviour, seen on
    // these files: it lists the distinct field ids of the cell zones in the
    // data file's order, leaving out fields of two components; the names it
    // knows are cross-checked against this table.
    const std::map<std::string, int> vtkNames = {
        {"PRESSURE", 1},  {"X_VELOCITY", 111}, {"Y_VELOCITY", 112}, {"Z_VELOCITY", 113},
        {"TKE", 5},       {"TED", 6},          {"DENSITY", 101},    {"MU_LAM", 102},
        {"MU_TURB", 103}, {"BODY_FORCES", 15}, {"TEMPERATURE", 3},  {"ENTHALPY", 4},
        {"NUT", 500},     {"WALL_DIST", 96},   {"Y_02", 202},       {"Y_03", 203},
        {"Y_04", 204},
    };
    if (std::system("/usr/bin/python3 -c 'import vtk' > /dev/null 2>&1") != 0) {
        GTEST_SKIP() << "python3-vtk9 is not installed";
    }
    size_t comparedArrays = 0;
    size_t refusedArrays = 0;
    for (size_t i = 0; i < samplePairs().size(); ++i) {
        if (!samplePairs()[i].vtkReadsIt) {
            continue;
        }
        const PreparedPair& p = prepared(i);
        SCOPED_TRACE(samplePairs()[i].caseFile);
        const std::string dump = p.casePath + ".vtk";
        ASSERT_TRUE(runDump("vtk", p.casePath, dump));
        const std::vector<DumpItem> items = readDump(dump);

        ScannedCase mesh(p.casePath);
        ASSERT_TRUE(mesh.ok());
        DataFile dataFile;
        ASSERT_TRUE(scanFile(&dataFile, p.dataPaths[0], mesh.get(), LoadOption_CaseAndData, true));
        std::set<std::pair<int, int>> shortFields;
        for (const DumpItem& item : readDump(p.rawDumps[0])) {
            if (item.words[0] == "field" && isShortSection(item)) {
                shortFields.insert({std::stoi(item.words[3]), std::stoi(item.words[2])});
            }
        }

        std::vector<int> listed;
        for (int f = 0; f < dataFile.numDataFields; ++f) {
            const DataField& field = dataFile.dataFields[f];
            if (isCellZone(mesh.get(), field.zoneId) && field.dimension != 2 &&
                std::find(listed.begin(), listed.end(), field.fieldId) == listed.end()) {
                listed.push_back(field.fieldId);
            }
        }
        std::vector<std::string> readerNames;
        std::map<int, int> blockCells;
        for (const DumpItem& item : items) {
            if (item.words[0] == "name") {
                readerNames.push_back(item.words.size() > 2 ? item.words[2] : "-");
            } else if (item.words[0] == "block") {
                blockCells[std::stoi(item.words[1])] = std::stoi(item.words[2]);
            }
        }
        ASSERT_EQ(readerNames.size(), listed.size());
        for (size_t k = 0; k < readerNames.size(); ++k) {
            auto known = vtkNames.find(readerNames[k]);
            if (known != vtkNames.end()) {
                EXPECT_EQ(known->second, listed[k]) << readerNames[k];
            }
        }
        ASSERT_EQ(blockCells.size(), static_cast<size_t>(mesh.get()->numCellZones));

        size_t arraysOfThisPair = 0;
        std::map<std::pair<int, std::string>, int> seenInBlock;
        for (const DumpItem& item : items) {
            if (item.words[0] != "array") {
                continue;
            }
            const int block = std::stoi(item.words[1]);
            const std::string name = item.words[2];
            const int components = std::stoi(item.words[3]);
            const int tuples = std::stoi(item.words[4]);
            // The k-th array of a name in a block is the k-th of that name in the reader's list.
            const int occurrence = seenInBlock[{block, name}]++;
            int seen = 0;
            int fieldId = -1;
            for (size_t k = 0; k < readerNames.size(); ++k) {
                if (readerNames[k] == name && seen++ == occurrence) {
                    fieldId = listed[k];
                    break;
                }
            }
            ASSERT_NE(fieldId, -1) << name;
            const CellZone& zone = mesh.get()->cellZones[block];
            ASSERT_EQ(blockCells[block], zone.lastIndex - zone.firstIndex + 1);
            DataField* field = nullptr;
            for (int f = 0; f < dataFile.numDataFields; ++f) {
                if (dataFile.dataFields[f].zoneId == zone.zoneId &&
                    dataFile.dataFields[f].fieldId == fieldId) {
                    field = &dataFile.dataFields[f];
                    break;
                }
            }
            ASSERT_NE(field, nullptr) << "no field " << fieldId << " in zone " << zone.zoneId;
            ASSERT_EQ(components, field->dimension) << name;
            ASSERT_EQ(tuples, field->count) << name;
            if (shortFields.count({zone.zoneId, fieldId}) != 0) {
                // VTK reads the numbers on into the end marker; the loader refuses the field.
                EXPECT_FALSE(DataFileLoadDataField(&dataFile, field));
                DataFieldFreeArrays(field);
                ++arraysOfThisPair;
                ++refusedArrays;
                continue;
            }
            ASSERT_TRUE(DataFileLoadDataField(&dataFile, field));
            size_t differing = 0;
            for (int t = 0; t < tuples; ++t) {
                for (int c = 0; c < components; ++c) {
                    const double ours = field->values[static_cast<size_t>(t) * components + c];
                    const double theirs = item.values[static_cast<size_t>(t) * components + c];
                    differing += !sameValue(ours, theirs);
                }
            }
            EXPECT_EQ(differing, 0u) << name << " (field " << fieldId << ")";
            DataFieldFreeArrays(field);
            ++arraysOfThisPair;
        }
        // Every listed field of every cell zone was compared.
        size_t expectedArrays = 0;
        for (int f = 0; f < dataFile.numDataFields; ++f) {
            const DataField& field = dataFile.dataFields[f];
            expectedArrays += isCellZone(mesh.get(), field.zoneId) && field.dimension != 2;
        }
        EXPECT_EQ(arraysOfThisPair, expectedArrays);
        comparedArrays += arraysOfThisPair;
    }
    EXPECT_GT(comparedArrays, 30u);
    EXPECT_EQ(refusedArrays, 2u);
}

TEST_F(Samples, ResidualSectionsParseUnderResidualsOnly) {
    size_t filesWithResiduals = 0;
    for (size_t i = 0; i < samplePairs().size(); ++i) {
        const PreparedPair& p = prepared(i);
        for (size_t d = 0; d < p.dataPaths.size(); ++d) {
            SCOPED_TRACE(samplePairs()[i].dataFiles[d]);
            FluentResidualsClear();
            firstIteration = 1;
            std::vector<DumpItem> raw;
            bool hasShortSection = false;
            for (DumpItem& item : readDump(p.rawDumps[d])) {
                if (item.words[0] == "residual") {
                    raw.push_back(item);
                }
                hasShortSection = hasShortSection || (item.words[0] == "field" && isShortSection(item));
            }
            DataFile dataFile;
            if (hasShortSection) {
                // The skip of a short Data section finds no end marker within
                // reach: the scan fails there, before any Residuals section.
                EXPECT_FALSE(scanFile(&dataFile, p.dataPaths[d], nullptr, LoadOption_ResidualsOnly));
                EXPECT_TRUE(minihost::messages().empty());
                EXPECT_EQ(numResiduals, 0);
                continue;
            }
            ASSERT_TRUE(scanFile(&dataFile, p.dataPaths[d], nullptr, LoadOption_ResidualsOnly));
            EXPECT_TRUE(minihost::messages().empty());
            EXPECT_EQ(dataFile.numDataFields, 0);
            ++filesWithResiduals;
            ASSERT_EQ(static_cast<size_t>(numResiduals), raw.size());
            for (int r = 0; r < numResiduals; ++r) {
                const FluentResidual& residual = FluentResiduals[r];
                const std::vector<std::string>& w = raw[static_cast<size_t>(r)].words;
                const std::vector<double>& body = raw[static_cast<size_t>(r)].values;
                const bool scaled = std::stoi(w[1]) % 1000 == 302;
                EXPECT_EQ(residual.numRows, std::stoi(w[2]));
                EXPECT_EQ(residual.residualId, std::stoi(w[3]));
                EXPECT_EQ(residual.width, std::stoi(w[4]));
                EXPECT_EQ(residual.hasScaleFactors, scaled);
                const int width = residual.width;
                const int rowLength = 1 + width * (scaled ? 2 : 1);
                ASSERT_EQ(body.size(), static_cast<size_t>(rowLength) * residual.numRows);
                for (int row = 0; row < residual.numRows; ++row) {
                    for (int k = 0; k < width; ++k) {
                        EXPECT_TRUE(
                            sameValue(residual.values[row * width + k], body[row * rowLength + 1 + k]));
                        if (scaled) {
                            EXPECT_TRUE(sameValue(residual.scaleFactors[row * width + k],
                                                  body[row * rowLength + 1 + width + k]));
                        }
                    }
                }
            }
            if (!raw.empty()) {
                EXPECT_EQ(firstIteration, static_cast<int32_t>(raw.back().values[0]));
            } else {
                EXPECT_EQ(firstIteration, 1);
            }
        }
    }
    EXPECT_EQ(filesWithResiduals, 5u);
}

TEST_F(Samples, FlowTimesOfTheTwoDataFilesOfOneCase) {
    const PreparedPair& p = prepared(samplePairs().size() - 1);
    ScannedCase mesh(p.casePath);
    ASSERT_TRUE(mesh.ok());
    DataFile first;
    ASSERT_TRUE(scanFile(&first, p.dataPaths[0], mesh.get()));
    DataFile later;
    ASSERT_TRUE(scanFile(&later, p.dataPaths[1], mesh.get()));
    EXPECT_EQ(first.flowTime, 0.0);
    // The cell-function sections are stored only when asked for.
    for (int f = 0; f < first.numDataFields; ++f) {
        EXPECT_LT(first.dataFields[f].sectionId % 1000, 314);
    }
    EXPECT_EQ(first.numDataFields, 346);
    EXPECT_EQ(later.numDataFields, 346);
    EXPECT_EQ(later.flowTime, 124.0);
    EXPECT_EQ(later.deltaTimeSampled, 0.0);
    EXPECT_EQ(later.additionalQuantities->names(), std::vector<std::string>{"Wall Func. Heat Tran. Coef."});
}
