// A load from the metadata files gives the data set that a scan gives: the
// same zones, variables, values, node maps, auxiliary data and times, and
// the same scan records; the ranges that the first load found reach the host
// on the second without a value being loaded.
#include <filesystem>
#include <string>
#include <vector>

#include "metadata/MetadataTestSupport.h"
#include "tools/fluentgen/FluentGen.h"

namespace {

using namespace metadatatest;

// True when the latest case (data) file was restored: a scan with the cache on
// gives every zone (field) deferred range writers, a restore none.
bool caseRestored() {
    const CaseFile* c = lastCaseFile();
    if (c == nullptr)
        return false;
    for (int32_t i = 0; i < c->numCellZones; ++i) {
        if (c->cellZones[i].nodeMinMaxWriters != nullptr)
            return false;
    }
    for (int32_t i = 0; i < c->numFaceZones; ++i) {
        if (c->faceZones[i].nodeMinMaxWriters != nullptr)
            return false;
    }
    return c->numCellZones + c->numFaceZones > 0;
}

bool dataRestored() {
    const DataFile* d = lastDataFile();
    if (d == nullptr || d->numDataFields == 0)
        return false;
    for (int32_t i = 0; i < d->numDataFields; ++i) {
        if (d->dataFields[i].minMaxWriters != nullptr)
            return false;
    }
    return true;
}

struct Kind {
    const char* name;
    fluentgen::Spec spec;
    bool caseOnly = false;
    std::vector<std::string> more;  // further instructions of every load
};

void PrintTo(const Kind& kind, std::ostream* out) {
    *out << kind.name;
}

std::vector<Kind> kinds() {
    using fluentgen::MeshKind;
    std::vector<Kind> list;
    auto add = [&list](const char* name, fluentgen::Spec spec, int dimensions) {
        if (spec.fields.empty())
            spec.fields = fluentgen::standardFields(5, dimensions);
        list.push_back(Kind{name, spec, false, {}});
        return &list.back();
    };
    fluentgen::Spec spec;
    add("Hex", spec, 3);
    spec = {};
    spec.mesh = MeshKind::Tet;
    add("Tet", spec, 3);
    spec = {};
    spec.mesh = MeshKind::Mixed;
    spec.mixedCellBodies = true;
    spec.mixedFaceTypes = true;
    spec.encoding = fluentgen::Encoding::Ascii;
    add("MixedAsciiWithMixedBodies", spec, 3);
    spec = {};
    spec.mesh = MeshKind::Wedge;
    spec.nodeSections = 3;
    add("WedgeInThreeNodeSections", spec, 3);
    spec = {};
    spec.mesh = MeshKind::Pyramid;
    spec.encoding = fluentgen::Encoding::BinaryMixed;
    add("PyramidBinaryMixed", spec, 3);
    spec = {};
    spec.mesh = MeshKind::Quad;
    spec.cells = {3, 2, 1};
    spec.axisymmetric = true;
    add("QuadAxisymmetric", spec, 2);
    spec = {};
    spec.mesh = MeshKind::Tri;
    spec.cells = {2, 3, 1};
    add("Tri", spec, 2);
    spec = {};
    spec.mesh = MeshKind::Mixed2D;
    spec.cells = {4, 2, 1};
    add("Mixed2D", spec, 2);
    spec = {};
    spec.hanging = true;
    spec.cells = {3, 3, 3};
    spec.fields = fluentgen::standardFields(3, 3);
    spec.fields.push_back(fluentgen::FieldSpec{1, 1, 1, false, true});
    add("HexHangingWithFaceTreesAndChildFaces", spec, 3);
    spec = {};
    spec.mesh = MeshKind::Quad;
    spec.hanging = true;
    spec.cells = {4, 4, 1};
    add("QuadHanging", spec, 2);
    spec = {};
    spec.species = {"h2o", "o2", "n2"};
    spec.fields = fluentgen::richFields(3);
    spec.additionalQuantities = {"First Quantity", "Second Quantity"};
    spec.flowTime = 1.5;
    spec.deltaTimeSampled = 0.25;
    add("SpeciesRichFieldsAndAdditionalQuantities", spec, 3)->more = {"LoadAdditionalQuantities", "Yes"};
    spec = {};
    spec.encoding = fluentgen::Encoding::BinarySingle;
    spec.cellZoneTypes = {1, 17, 1};
    spec.cells = {3, 2, 2};
    spec.zoneNames = fluentgen::ZoneNames::Varied;
    add("SinglePrecisionThreeCellZonesVariedNames", spec, 3);
    spec = {};
    spec.byteOrder = fluentgen::ByteOrder::Big;
    spec.boundaryTypes = {3, 5, 31, 38, 1003, 4};
    add("BigEndianHiddenBoundaries", spec, 3);
    spec = {};
    spec.extraSections = true;
    spec.zoneNames = fluentgen::ZoneNames::None;
    spec.fields = fluentgen::standardFields(3, 3);
    for (fluentgen::FieldSpec& field : spec.fields)
        field.onBoundaries = true;
    add("ExtraSectionsUnnamedZonesFaceData", spec, 3);
    spec = {};
    spec.mesh = MeshKind::Quad;
    spec.cells = {2, 2, 1};
    spec.particles.push_back(fluentgen::ParticleSpec{});
    spec.particles.push_back(fluentgen::ParticleSpec{"injection-1", 5, {1, 2, 7, 48}});
    add("QuadWithParticleSections", spec, 2);
    spec = {};
    spec.mesh = MeshKind::Tet;
    Kind* caseOnly = add("TetCaseOnly", spec, 3);
    caseOnly->caseOnly = true;
    return list;
}

class CacheRoundTrip : public LoadTest, public ::testing::WithParamInterface<Kind> {
  protected:
    bool load(const fluentgen::WrittenFiles& files, std::vector<std::string> more) {
        const Kind& kind = GetParam();
        more.insert(more.end(), kind.more.begin(), kind.more.end());
        return kind.caseOnly ? loadCase(files.caseFiles[0], more)
                             : loadPair(files.caseFiles[0], files.dataFiles[0], more);
    }
};

TEST_P(CacheRoundTrip, LoadFromMetadataGivesTheDataSetOfAScan) {
    const Kind& kind = GetParam();
    const fluentgen::WrittenFiles files = fluentgen::writeFiles(kind.spec, dir_, "gen");
    const std::string caseMeta = metadataPathOf(files.caseFiles[0]);
    const std::string dataMeta = kind.caseOnly ? "" : metadataPathOf(files.dataFiles[0]);

    // A scan with the cache off: the reference.
    ASSERT_TRUE(load(files, {"USE_METADATA", "No"})) << testing::PrintToString(shown());
    EXPECT_FALSE(fileExists(caseMeta));
    const std::string scannedCase = caseImage(lastCaseFile());
    const std::string scannedData = kind.caseOnly ? "" : dataImage(lastDataFile());
    const std::string scanned = describeDataSet(true);
    dropEverything();
    minihost::resetRecords();

    // A scan that writes the metadata files; pulling every value gives them their ranges.
    ASSERT_TRUE(load(files, {}));
    EXPECT_FALSE(caseRestored());
    ASSERT_TRUE(fileExists(caseMeta));
    if (!kind.caseOnly) {
        ASSERT_TRUE(fileExists(dataMeta));
    }
    EXPECT_EQ(caseImage(lastCaseFile()), scannedCase);
    EXPECT_EQ(describeDataSet(true), scanned);
    dropEverything();
    minihost::resetRecords();
    const std::string caseMetaBytes = readBytes(caseMeta);

    // The load from the metadata files.
    ASSERT_TRUE(load(files, {})) << testing::PrintToString(shown());
    EXPECT_TRUE(caseRestored());
    if (!kind.caseOnly) {
        EXPECT_TRUE(dataRestored());
        EXPECT_EQ(dataImage(lastDataFile()), scannedData);
    }
    EXPECT_EQ(caseImage(lastCaseFile()), scannedCase);
    // Every range the host holds came from the cache: nothing is loaded yet.
    const auto ranges = heldRanges();
    EXPECT_EQ(valueLoads(), 0);
    EXPECT_FALSE(ranges.empty());
    EXPECT_EQ(describeDataSet(false), describeDataSet(false));  // describing without pull loads nothing
    EXPECT_EQ(valueLoads(), 0);
    EXPECT_EQ(describeDataSet(true), scanned);
    // Each cached range is the range of the values the host then loaded.
    for (const auto& [item, range] : ranges) {
        const std::vector<double> data = values(item.first, item.second);
        ASSERT_FALSE(data.empty());
        double lo = data[0], hi = data[0];
        for (double value : data) {
            lo = std::min(lo, value);
            hi = std::max(hi, value);
        }
        const double tolerance = 1e-6 * std::max(1.0, std::max(std::fabs(lo), std::fabs(hi)));
        EXPECT_NEAR(range.first, lo, tolerance) << "zone " << item.first << " var " << item.second;
        EXPECT_NEAR(range.second, hi, tolerance) << "zone " << item.first << " var " << item.second;
    }
    // Every variable with a loader got its range.
    for (ZorIndex z = 1; z <= ZorUtilDataSetGetNumZones(); ++z) {
        for (ZorIndex v = 1; v <= ZorUtilDataSetGetNumVars(); ++v) {
            if (minihost::valueStats(z, v).hasLoader) {
                EXPECT_EQ(ranges.count({z, v}), 1u) << "zone " << z << " var " << v;
            }
        }
    }
    // A load from the cache does not write it again.
    EXPECT_EQ(readBytes(caseMeta), caseMetaBytes);
}

INSTANTIATE_TEST_SUITE_P(Generated, CacheRoundTrip, ::testing::ValuesIn(kinds()),
                         [](const ::testing::TestParamInfo<Kind>& info) { return info.param.name; });

// ---- Real files ---------------------------------------------------------------------------------

struct Sample {
    std::string caseFile;  // under FL_SAMPLES_DIR
    std::string dataFile;  // empty: the case alone
};

void PrintTo(const Sample& sample, std::ostream* out) {
    *out << sample.caseFile;
}

std::vector<Sample> samples() {
    return {
        {"ansys__example-data/pyfluent__adjoint_cylinder_tutorial__cylinder_tutorial.cas",
         "ansys__example-data/pyfluent__adjoint_cylinder_tutorial__cylinder_tutorial.dat"},
        {"kimtaikee__QVTKDemo_data/airfoil.cas", "kimtaikee__QVTKDemo_data/airfoil.dat"},
        {"kimtaikee__QVTKDemo_data/elbow.cas", "kimtaikee__QVTKDemo_data/elbow.dat"},
        {"rezamarzban__Fluent-Simulations/Tube2D-Combustion__combustion.cas",
         "rezamarzban__Fluent-Simulations/Tube2D-Combustion__combustion.dat"},
        {"ansys__example-data/pyprimemesh__unit_test_examples__hex.cas", ""},
        {"petsc__petsc/share__petsc__datafiles__meshes__testcase3D.cas", ""},
        {"precice__fluent-adapter/examples__Cavity2D__Cavity2D.cas", ""},
        {"cfd-dev__PyMeshGen/examples__semisphere__semisphere-hybrid.cas", ""},
    };
}

class CacheOfSamples : public LoadTest, public ::testing::WithParamInterface<Sample> {};

TEST_P(CacheOfSamples, CopiedSampleLoadsFromMetadataAsFromAScan) {
    namespace fs = std::filesystem;
    const Sample& sample = GetParam();
    const std::string source = std::string(FL_SAMPLES_DIR) + "/" + sample.caseFile;
    if (!fs::exists(source))
        GTEST_SKIP() << "no sample " << source;
    // Copies, so that no metadata file goes beside the shared samples.
    const std::string casePath = path(fs::path(sample.caseFile).filename().string());
    fs::copy_file(source, casePath);
    std::string dataPath;
    if (!sample.dataFile.empty()) {
        dataPath = path(fs::path(sample.dataFile).filename().string());
        fs::copy_file(std::string(FL_SAMPLES_DIR) + "/" + sample.dataFile, dataPath);
    }
    auto loadIt = [&](const std::vector<std::string>& more) {
        return dataPath.empty() ? loadCase(casePath, more) : loadPair(casePath, dataPath, more);
    };

    const bool loaded = loadIt({});
    const std::string scanned = describeDataSet(true);
    const std::string scannedCase = caseImage(lastCaseFile());
    const std::string scannedData = dataPath.empty() ? "" : dataImage(lastDataFile());
    ASSERT_TRUE(loaded) << scanned;
    ASSERT_TRUE(fileExists(metadataPathOf(casePath)));
    if (!dataPath.empty()) {
        ASSERT_TRUE(fileExists(metadataPathOf(dataPath)));
    }
    dropEverything();
    minihost::resetRecords();

    ASSERT_TRUE(loadIt({}));
    EXPECT_TRUE(caseRestored());
    EXPECT_EQ(caseImage(lastCaseFile()), scannedCase);
    if (!dataPath.empty()) {
        EXPECT_TRUE(dataRestored());
        EXPECT_EQ(dataImage(lastDataFile()), scannedData);
    }
    EXPECT_EQ(valueLoads(), 0);
    EXPECT_EQ(describeDataSet(true), scanned);
}

INSTANTIATE_TEST_SUITE_P(Samples, CacheOfSamples, ::testing::ValuesIn(samples()),
                         [](const ::testing::TestParamInfo<Sample>& info) {
                             std::string name = std::filesystem::path(info.param.caseFile).stem().string();
                             for (char& c : name) {
                                 if (!isalnum(static_cast<unsigned char>(c)))
                                     c = '_';
                             }
                             return name;
                         });

}  // namespace
