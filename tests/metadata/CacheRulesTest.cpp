// When a load reads and writes metadata files, and what it does with one it
// cannot use: another version, a damaged file, a stale one, the other byte
// order; loads of a part of a file leave the cache alone.
#include <sys/stat.h>
#include <utime.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/Metadata.h"
#include "metadata/MetadataTestSupport.h"
#include "tools/fluentgen/FluentGen.h"

namespace {

using namespace metadatatest;
using zorvane::dataio::MetadataDataset;
using zorvane::dataio::MetadataDirector;

bool caseRestored() {
    const CaseFile* c = lastCaseFile();
    return c != nullptr && c->numCellZones > 0 && c->cellZones[0].nodeMinMaxWriters == nullptr;
}

bool dataRestored() {
    const DataFile* d = lastDataFile();
    return d != nullptr && d->numDataFields > 0 && d->dataFields[0].minMaxWriters == nullptr;
}

// Reads a metadata file through the host's library.
std::unique_ptr<MetadataDataset> readMetadataFile(const std::string& path) {
    MetadataDirector director;
    auto dataset = std::make_unique<MetadataDataset>(1);
    director.read(std::make_shared<zorvane::dataio::FileInputStream>(path), *dataset);
    return dataset;
}

// Writes a data set as the metadata file of folder + name, current for the file as it is now.
void writeMetadataFile(const std::string& folder, const std::string& name, const MetadataDataset& dataset) {
    MetadataDirector director;
    const std::string path = director.initializeMetadataFilename(folder, name);
    director.write(std::make_shared<zorvane::dataio::FileOutputStream>(path), dataset);
}

// The metadata file with every number in the other byte order, walked as the
// host's library lays it out: the header, the data set's strings and numbers,
// the files, the zones and their variables, and every client data word.
std::string otherByteOrder(const std::string& bytes) {
    std::string out = bytes;
    size_t at = 0;
    auto swap = [&](size_t size) {
        if (at + size > out.size())
            throw std::runtime_error("metadata file ends early");
        std::reverse(out.begin() + static_cast<long>(at), out.begin() + static_cast<long>(at + size));
        at += size;
    };
    auto number = [&](size_t size) {  // read in this machine's order, then swap
        int64_t value = 0;
        if (size == 8)
            std::memcpy(&value, out.data() + at, 8);
        else {
            int32_t small;
            std::memcpy(&small, out.data() + at, 4);
            value = small;
        }
        swap(size);
        return value;
    };
    auto string = [&] { at += static_cast<size_t>(number(8)); };
    auto clientData = [&] {
        number(4);
        const int64_t words = number(8);
        for (int64_t w = 0; w < words; ++w)
            swap(8);
    };
    at = 8;  // magic
    number(4);
    number(4);
    number(8);
    number(8);
    number(8);
    string();
    string();
    number(4);
    number(4);
    for (int64_t f = 0, files = number(8); f < files; ++f) {
        string();
        number(4);
        number(4);
        clientData();
    }
    for (int64_t z = 0, zones = number(8); z < zones; ++z) {
        number(4);
        string();
        for (int k = 0; k < 5; ++k)
            number(8);
        clientData();
        for (int64_t v = 0, vars = number(8); v < vars; ++v) {
            string();
            clientData();
            number(4);
            swap(8);
            swap(8);
        }
    }
    EXPECT_EQ(at, out.size());
    return out;
}

class CacheRules : public LoadTest {
  protected:
    void SetUp() override {
        LoadTest::SetUp();
        fluentgen::Spec spec;
        spec.fields = fluentgen::standardFields(4, 3);
        spec.flowTime = 0.5;
        files_ = fluentgen::writeFiles(spec, dir_, "gen");
        case_ = files_.caseFiles[0];
        data_ = files_.dataFiles[0];
        caseMeta_ = metadataPathOf(case_);
        dataMeta_ = metadataPathOf(data_);
    }
    bool load(const std::vector<std::string>& more = {}) {
        minihost::resetRecords();
        return loadPair(case_, data_, more);
    }
    // Loads with the cache on, so that both metadata files are written, and drops the data set.
    void loadAndDrop() {
        ASSERT_TRUE(load()) << testing::PrintToString(shown());
        ASSERT_TRUE(fileExists(caseMeta_));
        ASSERT_TRUE(fileExists(dataMeta_));
        dropEverything();
    }
    fluentgen::WrittenFiles files_;
    std::string case_, data_, caseMeta_, dataMeta_;
};

TEST_F(CacheRules, UseMetadataNoWritesNothingAndALaterLoadWithItOnWritesOne) {
    ASSERT_TRUE(load({"USE_METADATA", "No"}));
    EXPECT_FALSE(fileExists(caseMeta_));
    EXPECT_FALSE(fileExists(dataMeta_));
    dropEverything();
    ASSERT_TRUE(load());
    EXPECT_TRUE(shown().empty());
    EXPECT_TRUE(fileExists(caseMeta_));
    EXPECT_TRUE(fileExists(dataMeta_));
    dropEverything();
    ASSERT_TRUE(load());
    EXPECT_TRUE(caseRestored());
    EXPECT_TRUE(dataRestored());
}

TEST_F(CacheRules, UseMetadataNoNeitherReadsAFileThatIsThere) {
    loadAndDrop();
    writeBytes(caseMeta_, "ZORMETA");
    writeBytes(dataMeta_, "ZORMETA");
    ASSERT_TRUE(load({"USE_METADATA", "No"}));
    EXPECT_TRUE(shown().empty()) << testing::PrintToString(shown());
    EXPECT_FALSE(caseRestored());
    EXPECT_EQ(readBytes(caseMeta_), "ZORMETA");
}

TEST_F(CacheRules, ACaseAndItsDataFileGetSeparateMetadataFilesEachBesideItsOwnFile) {
    namespace fs = std::filesystem;
    fs::create_directory(path("cases"));
    fs::create_directory(path("data"));
    const std::string casePath = path("cases/gen.cas"), dataPath = path("data/gen.dat");
    fs::rename(case_, casePath);
    fs::rename(data_, dataPath);
    ASSERT_TRUE(loadPair(casePath, dataPath));
    EXPECT_TRUE(fileExists(path("cases/.gen.cas.zmeta")));
    EXPECT_TRUE(fileExists(path("data/.gen.dat.zmeta")));
    EXPECT_FALSE(fileExists(path("cases/.gen.dat.zmeta")));
    EXPECT_FALSE(fileExists(path("data/.gen.cas.zmeta")));

    const CaseFile* caseFile = lastCaseFile();
    std::unique_ptr<MetadataDataset> caseSet = readMetadataFile(path("cases/.gen.cas.zmeta"));
    EXPECT_EQ(caseSet->loaderName(), "Fluent Data Loader");
    EXPECT_EQ(caseSet->loaderVersion(), 1);
    EXPECT_EQ(caseSet->clientDataVersion(), 1);
    EXPECT_EQ(caseSet->name(), caseFile->header);
    ASSERT_EQ(caseSet->uniqueFilenames().size(), 1u);
    EXPECT_EQ(caseSet->uniqueFilenames()[0]->name(), "gen.cas");
    EXPECT_TRUE(caseSet->uniqueFilenames()[0]->isNativeByteOrder());
    ASSERT_EQ(caseSet->zones().size(), static_cast<size_t>(caseFile->numCellZones + caseFile->numFaceZones));
    // Cell zones, then face zones, in table order, each with the ranges of its coordinates.
    EXPECT_EQ(caseSet->zones()[0]->kind(), zorvane::dataio::MetadataZoneKind::FEBrick);
    EXPECT_EQ(caseSet->zones()[0]->name(), caseFile->cellZones[0].name);
    EXPECT_EQ(caseSet->zones()[0]->numNodes(), caseFile->cellZones[0].numNodes);
    EXPECT_EQ(caseSet->zones()[1]->name(), caseFile->faceZones[0].name);
    ASSERT_EQ(caseSet->zones()[0]->variables().size(), 3u);
    EXPECT_EQ(caseSet->zones()[0]->variables()[2]->name(), "Z");

    std::unique_ptr<MetadataDataset> dataSet = readMetadataFile(path("data/.gen.dat.zmeta"));
    ASSERT_EQ(dataSet->uniqueFilenames().size(), 1u);
    EXPECT_EQ(dataSet->uniqueFilenames()[0]->name(), "gen.dat");
    ASSERT_FALSE(dataSet->zones().empty());
    EXPECT_EQ(dataSet->zones()[0]->kind(), zorvane::dataio::MetadataZoneKind::Unsupported);
}

TEST_F(CacheRules, AMetadataFileOfAnotherVersionIsReplacedSilently) {
    loadAndDrop();
    // The format version stands behind the eight bytes of the magic.
    for (const std::string& meta : {caseMeta_, dataMeta_}) {
        std::string bytes = readBytes(meta);
        const int32_t other = 2;
        std::memcpy(&bytes[8], &other, sizeof other);
        writeBytes(meta, bytes);
    }
    ASSERT_TRUE(load());
    EXPECT_TRUE(shown().empty()) << testing::PrintToString(shown());
    EXPECT_FALSE(caseRestored());
    EXPECT_FALSE(dataRestored());
    for (const std::string& meta : {caseMeta_, dataMeta_}) {
        int32_t version = 0;
        std::memcpy(&version, readBytes(meta).data() + 8, sizeof version);
        EXPECT_EQ(version, 1) << meta;
    }
    dropEverything();
    ASSERT_TRUE(load());
    EXPECT_TRUE(caseRestored());
    EXPECT_TRUE(dataRestored());
}

TEST_F(CacheRules, ClientDataOfAnotherVersionIsRescannedSilently) {
    loadAndDrop();
    for (const std::string& name : {std::string("gen.cas"), std::string("gen.dat")}) {
        std::unique_ptr<MetadataDataset> dataset = readMetadataFile(metadataPathOf(path(name)));
        dataset->setClientDataVersion(7);
        writeMetadataFile(dir_ + "/", name, *dataset);
    }
    ASSERT_TRUE(load());
    EXPECT_TRUE(shown().empty()) << testing::PrintToString(shown());
    EXPECT_FALSE(caseRestored());
    EXPECT_FALSE(dataRestored());
    EXPECT_EQ(readMetadataFile(caseMeta_)->clientDataVersion(), 1);
    EXPECT_EQ(readMetadataFile(dataMeta_)->clientDataVersion(), 1);
}

TEST_F(CacheRules, ADamagedCaseMetadataFileStopsTheLoadWithTheLongMessageAndASecondTryStillFindsIt) {
    loadAndDrop();
    const std::string bytes = readBytes(caseMeta_);
    writeBytes(caseMeta_, bytes.substr(0, bytes.size() / 2));
    const std::vector<Shown> expected = {{"error", damagedMetadataMessage(case_, false)},
                                         {"error", "Error loading file " + case_}};
    EXPECT_FALSE(load());
    EXPECT_EQ(shown(), expected);
    dropEverything();
    EXPECT_FALSE(load());
    EXPECT_EQ(shown(), expected);
    // The damaged file stays for the user to remove.
    EXPECT_EQ(readBytes(caseMeta_), bytes.substr(0, bytes.size() / 2));
}

TEST_F(CacheRules, ADamagedDataMetadataFileStopsTheLoadWithTheLongMessageSpeltAsItIs) {
    loadAndDrop();
    writeBytes(dataMeta_, "not a metadata file at all, but long enough to have a header");
    const std::vector<Shown> expected = {{"error", damagedMetadataMessage(data_, true)},
                                         {"error", "Error loading file " + data_}};
    EXPECT_FALSE(load());
    EXPECT_EQ(shown(), expected);
    dropEverything();
    EXPECT_FALSE(load());
    EXPECT_EQ(shown(), expected);
}

TEST_F(CacheRules, ClientDataThatDoesNotFitItsRecordIsADamagedFile) {
    loadAndDrop();
    std::unique_ptr<MetadataDataset> dataset = readMetadataFile(caseMeta_);
    dataset->uniqueFilenames()[0]->setClientDataWords({3, 0, 1});  // ends after three of its words
    writeMetadataFile(dir_ + "/", "gen.cas", *dataset);
    EXPECT_FALSE(load());
    EXPECT_EQ(shown(), (std::vector<Shown>{{"error", damagedMetadataMessage(case_, false)},
                                           {"error", "Error loading file " + case_}}));
}

TEST_F(CacheRules, AZoneDescriptionOfTheWrongSizeIsADamagedFile) {
    loadAndDrop();
    std::unique_ptr<MetadataDataset> original = readMetadataFile(caseMeta_);
    MetadataDataset damaged(1);
    damaged.setName(original->name());
    damaged.setLoaderName(original->loaderName());
    damaged.setLoaderVersion(original->loaderVersion());
    damaged.addUniqueFilename(original->uniqueFilenames()[0]);
    for (const auto& zone : original->zones()) {
        auto copy = damaged.addUnsupportedZone(zone->name(), zone->numNodes(), zone->numElements() + 1);
        copy->setClientDataWords(zone->clientDataWords());
    }
    writeMetadataFile(dir_ + "/", "gen.cas", damaged);
    EXPECT_FALSE(load());
    EXPECT_EQ(shown(), (std::vector<Shown>{{"error", damagedMetadataMessage(case_, false)},
                                           {"error", "Error loading file " + case_}}));
}

TEST_F(CacheRules, RestrictedLoadsNeitherReadNorWriteMetadataFiles) {
    // A choice of variables restricts the data file only.
    struct Restriction {
        std::vector<std::string> instructions;
        bool caseRestricted;
    };
    const std::vector<Restriction> restrictions = {
        {{"GridZones", "CellsOnly"}, true},
        {{"GridZones", "BoundariesOnly"}, true},
        {{"GridZones", "SelectedZones", "ZoneList", "1"}, true},
        {{"AllPolyZones", "Yes"}, true},
        {{"VarNameList", "Pressure"}, false},
    };
    for (const Restriction& restriction : restrictions) {
        const std::string what = testing::PrintToString(restriction.instructions);
        const bool loaded = load(restriction.instructions);
        EXPECT_EQ(fileExists(caseMeta_), !restriction.caseRestricted && loaded) << what;
        EXPECT_FALSE(fileExists(dataMeta_)) << what;
        dropEverything();
        // With files that cannot be read present, no load of a part reads them.
        if (restriction.caseRestricted)
            writeBytes(caseMeta_, "ZORMETA damaged");
        writeBytes(dataMeta_, "ZORMETA damaged");
        EXPECT_EQ(load(restriction.instructions), loaded) << what;
        for (const Shown& message : shown())
            EXPECT_EQ(message.second.find("metadata"), std::string::npos) << what << ": " << message.second;
        if (!restriction.caseRestricted) {
            EXPECT_TRUE(caseRestored()) << what;
        }
        dropEverything();
        std::remove(caseMeta_.c_str());
        std::remove(dataMeta_.c_str());
    }
}

TEST_F(CacheRules, AStaleMetadataFileIsRescanned) {
    loadAndDrop();
    // The data file is written again, with another flow time.
    fluentgen::Spec spec;
    spec.fields = fluentgen::standardFields(4, 3);
    spec.flowTime = 2.75;
    fluentgen::writeDataFile(spec, 0, data_);
    ASSERT_TRUE(load({"UnsteadyOption", "ReadTimeFromDataFiles"}));
    EXPECT_TRUE(caseRestored());
    EXPECT_FALSE(dataRestored());
    EXPECT_EQ(ZorUtilZoneGetSolutionTime(1), 2.75);
    dropEverything();
    ASSERT_TRUE(load({"UnsteadyOption", "ReadTimeFromDataFiles"}));
    EXPECT_TRUE(dataRestored());
    EXPECT_EQ(lastDataFile()->flowTime, 2.75);
    EXPECT_EQ(ZorUtilZoneGetSolutionTime(1), 2.75);
    dropEverything();

    // The same bytes with another modification time are stale too.
    struct utimbuf times = {1000000000, 1000000000};
    ASSERT_EQ(utime(case_.c_str(), &times), 0);
    ASSERT_TRUE(load());
    EXPECT_FALSE(caseRestored());
    EXPECT_TRUE(dataRestored());
}

TEST_F(CacheRules, ADataFileWhoseCaseChangedSinceItsMetadataIsScannedAgainstTheNewCase) {
    loadAndDrop();
    // The case gets more cells; the data file and its metadata file stay.
    fluentgen::Spec spec;
    spec.cells = {3, 2, 2};
    fluentgen::writeCaseFile(spec, case_);
    EXPECT_FALSE(load());
    const std::vector<Shown> withCache = shown();
    dropEverything();
    EXPECT_FALSE(load({"USE_METADATA", "No"}));
    EXPECT_EQ(withCache, shown());
    ASSERT_EQ(withCache.size(), 2u);
    EXPECT_NE(withCache[0].second.find("size mismatch"), std::string::npos) << withCache[0].second;
}

TEST_F(CacheRules, AMetadataFileOfTheOtherByteOrderIsReadWithSwapping) {
    ASSERT_TRUE(load());
    const std::string scanned = describeDataSet(true);
    const std::string scannedCase = caseImage(lastCaseFile());
    const std::string scannedData = dataImage(lastDataFile());
    dropEverything();
    for (const std::string& meta : {caseMeta_, dataMeta_}) {
        const std::string bytes = readBytes(meta);
        const std::string swapped = otherByteOrder(bytes);
        ASSERT_NE(swapped, bytes);
        writeBytes(meta, swapped);
        EXPECT_FALSE(readMetadataFile(meta)->isClientDataNativeByteOrder());
    }
    ASSERT_TRUE(load());
    EXPECT_TRUE(caseRestored());
    EXPECT_TRUE(dataRestored());
    EXPECT_EQ(caseImage(lastCaseFile()), scannedCase);
    EXPECT_EQ(dataImage(lastDataFile()), scannedData);
    EXPECT_FALSE(heldRanges().empty());
    EXPECT_EQ(describeDataSet(true), scanned);
}

TEST_F(CacheRules, RangesCachedAreThoseOfTheValuesLoadedAfterTheWriteAndNoOthers) {
    ASSERT_TRUE(load());
    const ZorIndex pressure = var("Pressure"), velocity = var("X Velocity");
    ASSERT_NE(pressure, 0);
    ASSERT_NE(velocity, 0);
    const std::vector<double> data = values(1, pressure);
    ASSERT_FALSE(data.empty());
    const double lo = *std::min_element(data.begin(), data.end());
    const double hi = *std::max_element(data.begin(), data.end());
    const std::vector<double> xs = values(1, var("X"));
    dropEverything();

    ASSERT_TRUE(load());
    ASSERT_TRUE(dataRestored());
    double minimum = 0, maximum = 0;
    ASSERT_TRUE(minihost::valueRange(1, pressure, &minimum, &maximum));
    EXPECT_EQ(minimum, lo);
    EXPECT_EQ(maximum, hi);
    ASSERT_TRUE(minihost::valueRange(1, var("X"), &minimum, &maximum));
    EXPECT_EQ(minimum, *std::min_element(xs.begin(), xs.end()));
    EXPECT_EQ(maximum, *std::max_element(xs.begin(), xs.end()));
    EXPECT_FALSE(minihost::valueRange(1, velocity, &minimum, &maximum));
    EXPECT_FALSE(minihost::valueRange(1, var("Y"), &minimum, &maximum));
    EXPECT_EQ(minihost::valueStats(1, pressure).loads, 0);
    EXPECT_EQ(minihost::valueStats(1, var("X")).loads, 0);
}

TEST_F(CacheRules, CellZonesOfType32AreLeftOutOfTheMetadataFileAndTheDataSetIsTheSame) {
    fluentgen::Spec spec;
    spec.fields = fluentgen::standardFields(3, 3);
    spec.cellZoneTypes = {1, 32, 17};
    spec.cells = {3, 2, 2};
    fluentgen::WrittenFiles files = fluentgen::writeFiles(spec, dir_, "parents");
    const std::string casePath = files.caseFiles[0], dataPath = files.dataFiles[0];
    minihost::resetRecords();
    ASSERT_TRUE(loadPair(casePath, dataPath, {"USE_METADATA", "No"})) << testing::PrintToString(shown());
    const std::string scanned = describeDataSet(true);
    dropEverything();
    ASSERT_TRUE(loadPair(casePath, dataPath)) << testing::PrintToString(shown());
    const CaseFile* written = lastCaseFile();
    ASSERT_EQ(written->numCellZones, 3);
    ASSERT_EQ(written->cellZones[1].zoneType, 32);
    std::unique_ptr<MetadataDataset> caseSet = readMetadataFile(metadataPathOf(casePath));
    ASSERT_EQ(caseSet->zones().size(), static_cast<size_t>(2 + written->numFaceZones));
    EXPECT_EQ(caseSet->zones()[0]->name(), written->cellZones[0].name);
    EXPECT_EQ(caseSet->zones()[1]->name(), written->cellZones[2].name);
    dropEverything();

    minihost::resetRecords();
    ASSERT_TRUE(loadPair(casePath, dataPath)) << testing::PrintToString(shown());
    EXPECT_TRUE(caseRestored());
    EXPECT_TRUE(dataRestored());
    EXPECT_EQ(lastCaseFile()->numCellZones, 2);
    EXPECT_EQ(describeDataSet(true), scanned);
    EXPECT_TRUE(shown().empty()) << testing::PrintToString(shown());
}

TEST_F(CacheRules, ACaseOnlyLoadWritesTheCasesFileAlone) {
    minihost::resetRecords();
    ASSERT_TRUE(loadCase(case_));
    EXPECT_TRUE(fileExists(caseMeta_));
    EXPECT_FALSE(fileExists(dataMeta_));
    dropEverything();
    ASSERT_TRUE(loadCase(case_));
    EXPECT_TRUE(caseRestored());
    // The data file of a later pair load is scanned against the restored case.
    dropEverything();
    ASSERT_TRUE(load());
    EXPECT_TRUE(caseRestored());
    EXPECT_FALSE(dataRestored());
    EXPECT_TRUE(shown().empty());
}

}  // namespace
