// Data files written by fluentgen in every encoding, byte order and integer
// width, with every kind of field: each loaded value equals the formula, in
// the layout the loader promises (vector family component after component,
// field 970 transposed to element after element, all others as stored);
// particle sections of every encoding load, integer ids as integers; residuals
// parse to their formulas.

#include "DataFileTestSupport.h"

#include <sys/stat.h>

#include <cmath>

#include "datafile/Particles.h"
#include "datafile/Residuals.h"
#include "host/ZorUtil.h"
#include "tools/fluentgen/FluentGen.h"

using namespace datafile_test;

namespace {

struct Variant {
    fluentgen::Encoding encoding;
    fluentgen::ByteOrder byteOrder;
    int intSize;
    fluentgen::MeshKind mesh;
    const char* label;
};

const Variant kVariants[] = {
    {fluentgen::Encoding::Ascii, fluentgen::ByteOrder::Little, 4, fluentgen::MeshKind::Hex, "ascii-hex"},
    {fluentgen::Encoding::BinarySingle, fluentgen::ByteOrder::Little, 4, fluentgen::MeshKind::Tet,
     "single-tet"},
    {fluentgen::Encoding::BinaryDouble, fluentgen::ByteOrder::Little, 4, fluentgen::MeshKind::Mixed,
     "double-mixed"},
    {fluentgen::Encoding::BinaryMixed, fluentgen::ByteOrder::Little, 4, fluentgen::MeshKind::Wedge,
     "mixed-wedge"},
    {fluentgen::Encoding::BinaryDouble, fluentgen::ByteOrder::Big, 4, fluentgen::MeshKind::Hex, "double-big"},
    {fluentgen::Encoding::BinarySingle, fluentgen::ByteOrder::Big, 4, fluentgen::MeshKind::Quad,
     "single-big-2d"},
    {fluentgen::Encoding::BinaryDouble, fluentgen::ByteOrder::Little, 8, fluentgen::MeshKind::Pyramid,
     "double-int8"},
    {fluentgen::Encoding::Ascii, fluentgen::ByteOrder::Little, 4, fluentgen::MeshKind::Tri, "ascii-2d"},
};

std::string freshFolder(const std::string& label) {
    static int serial = 0;
    const std::string dir = ::testing::TempDir() + "datafile_fluentgen_" + std::to_string(getpid()) + "_" +
                            std::to_string(serial++) + "_" + label;
    mkdir(dir.c_str(), 0700);
    return dir;
}

fluentgen::Spec specFor(const Variant& v) {
    fluentgen::Spec s;
    s.mesh = v.mesh;
    s.cells = {3, 2, 2};
    s.cellZoneTypes = {1, 17};
    s.encoding = v.encoding;
    s.byteOrder = v.byteOrder;
    s.intSize = v.intSize;
    s.species = {"ch4", "o2", "n2"};
    s.fields = fluentgen::richFields(3);
    s.additionalQuantities = {"First Quantity", "Second Quantity"};
    s.flowTime = 2.5;
    s.deltaTimeSampled = 0.125;
    s.residuals.ids = {1, 2, 3};
    s.residuals.rows = 7;
    s.residuals.width = 2;
    s.residuals.firstIteration = 41;
    fluentgen::ParticleSpec particles;
    particles.count = 5;
    particles.fieldIds = {1, 2, 3, 4, 7, 8, 9, 10, 13, 16, 46, 48, 49, 56};
    s.particles = {particles};
    return s;
}

// The place of (element, component) in DataField::values.
size_t placeOf(const DataField& field, int64_t element, int component) {
    if (isVectorFamilyFieldId(field.fieldId)) {
        return static_cast<size_t>(component) * static_cast<size_t>(field.count) +
               static_cast<size_t>(element);
    }
    return static_cast<size_t>(element) * static_cast<size_t>(field.dimension) +
           static_cast<size_t>(component);
}

bool same(double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

class FluentGenFiles : public DataFileTest {
  protected:
    void TearDown() override {
        FluentResidualsClear();
        firstIteration = 1;
        DataFileTest::TearDown();
    }
};

// A case scanned through the case file code, deleted with the object.
class GeneratedCase {
  public:
    explicit GeneratedCase(const std::string& path) {
        memset(&caseFile_, 0, sizeof caseFile_);
        strcpy(caseFile_.fileName, path.c_str());
        caseFile_.mutex = ZorUtilThreadMutexAlloc();
        ok_ = CaseFileScan(&caseFile_, false, nullptr, nullptr);
    }
    ~GeneratedCase() { CaseFileDelete(&caseFile_); }
    bool ok() const { return ok_; }
    CaseFile* get() { return &caseFile_; }

  private:
    CaseFile caseFile_;
    bool ok_ = false;
};

}  // namespace

TEST_F(FluentGenFiles, EveryFieldOfEveryEncodingEqualsItsFormula) {
    size_t checkedFields = 0;
    bool sawTransposed = false;
    bool sawFamily = false;
    bool sawAdditional = false;
    for (const Variant& v : kVariants) {
        SCOPED_TRACE(v.label);
        const fluentgen::Spec spec = specFor(v);
        const fluentgen::WrittenFiles files = fluentgen::writeFiles(spec, freshFolder(v.label), "gen");
        const fluentgen::Model model(spec);
        GeneratedCase mesh(files.caseFiles.at(0));
        ASSERT_TRUE(mesh.ok());
        DataFile dataFile;
        ASSERT_TRUE(scanFile(&dataFile, files.dataFiles.at(0), mesh.get(), LoadOption_CaseAndData, true));
        EXPECT_TRUE(minihost::messages().empty());
        EXPECT_EQ(dataFile.flowTime, 2.5);
        EXPECT_EQ(dataFile.deltaTimeSampled, 0.125);
        EXPECT_EQ(dataFile.additionalQuantities->names(),
                  (std::vector<std::string>{"First Quantity", "Second Quantity"}));

        std::vector<fluentgen::DataSectionInfo> stored;
        for (const fluentgen::DataSectionInfo& section : model.dataSections()) {
            if (section.firstId >= 0) {
                stored.push_back(section);
            }
        }
        ASSERT_EQ(static_cast<size_t>(dataFile.numDataFields), stored.size());
        for (size_t f = 0; f < stored.size(); ++f) {
            const fluentgen::DataSectionInfo& section = stored[f];
            DataField& field = dataFile.dataFields[f];
            ASSERT_EQ(field.sectionId, section.sectionId);
            ASSERT_EQ(field.fieldId, section.fieldId);
            ASSERT_EQ(field.zoneId, section.zoneId);
            ASSERT_EQ(field.dimension, section.dimension);
            ASSERT_EQ(field.phase, section.phase);
            ASSERT_EQ(field.count, section.count);
            ASSERT_TRUE(DataFileLoadDataField(&dataFile, &field)) << "field " << field.fieldId;
            size_t differing = 0;
            for (int64_t e = 0; e < section.count; ++e) {
                for (int c = 0; c < section.dimension; ++c) {
                    differing += !same(field.values[placeOf(field, e, c)], model.dataValue(section, e, c));
                }
            }
            EXPECT_EQ(differing, 0u) << "field " << field.fieldId << " zone " << field.zoneId << " section "
                                     << field.sectionId;
            sawTransposed = sawTransposed || (field.fieldId == 970 && field.dimension > 1);
            sawFamily = sawFamily || (isVectorFamilyFieldId(field.fieldId) && field.dimension > 1);
            sawAdditional = sawAdditional || section.additional;
            DataFieldFreeArrays(&field);
            ++checkedFields;
        }
        EXPECT_TRUE(minihost::messages().empty());
    }
    EXPECT_TRUE(sawTransposed);
    EXPECT_TRUE(sawFamily);
    EXPECT_TRUE(sawAdditional);
    EXPECT_GT(checkedFields, 100u);
}

TEST_F(FluentGenFiles, ParticleSectionsOfEveryEncodingLoadIntegersAsIntegers) {
    size_t checked = 0;
    size_t refused = 0;
    for (const Variant& v : kVariants) {
        SCOPED_TRACE(v.label);
        const fluentgen::Spec spec = specFor(v);
        const fluentgen::WrittenFiles files = fluentgen::writeFiles(spec, freshFolder(v.label), "gen");
        const fluentgen::Model model(spec);
        GeneratedCase mesh(files.caseFiles.at(0));
        ASSERT_TRUE(mesh.ok());
        DataFile dataFile;
        ASSERT_TRUE(scanFile(&dataFile, files.dataFiles.at(0), mesh.get()));
        const std::vector<fluentgen::ParticleSectionInfo> sections = model.particleSections();
        ASSERT_EQ(static_cast<size_t>(dataFile.numParticles), sections.size());
        FluentSolution solution = emptySolution();
        for (size_t p = 0; p < sections.size(); ++p) {
            FluentParticle& particle = dataFile.particles[p];
            EXPECT_STREQ(particle.name, sections[p].name.c_str());
            EXPECT_EQ(particle.particleCount, sections[p].count);
            EXPECT_EQ(particle.numDimensions, sections[p].dimensions);
            EXPECT_EQ(particle.solutionTime, sections[p].time);
            ASSERT_EQ(static_cast<size_t>(particle.numFields), sections[p].fieldIds.size());
            for (int f = 0; f < particle.numFields; ++f) {
                DataField& field = particle.fields[f];
                EXPECT_EQ(field.sectionId, sections[p].sectionId);
                EXPECT_EQ(field.fieldId, sections[p].fieldIds[static_cast<size_t>(f)]);
                if (v.intSize == 8 && isIntegerParticleVariable(field.fieldId)) {
                    // Integers wider than four bytes: the bulk integer reader
                    // cannot read them (see ParticlesTest).
                    minihost::resetRecords();
                    EXPECT_FALSE(DataFileLoadParticleDataField(&solution, &dataFile, &field));
                    EXPECT_EQ(messageTexts(), std::vector<std::string>{
                                                  "Read error while reading Particle Data section (section " +
                                                  std::to_string(field.sectionId) + ")."});
                    minihost::resetRecords();
                    DataFieldFreeArrays(&field);
                    ++refused;
                    continue;
                }
                ASSERT_TRUE(DataFileLoadParticleDataField(&solution, &dataFile, &field)) << field.fieldId;
                for (int k = 0; k < field.count; ++k) {
                    double expected =
                        fluentgen::particleFormula(field.fieldId, static_cast<int>(p), k, sections[p].time);
                    if (sections[p].single && !isIntegerParticleVariable(field.fieldId)) {
                        expected = static_cast<float>(expected);
                    }
                    EXPECT_EQ(field.values[k], expected) << "id " << field.fieldId << " particle " << k;
                    if (isIntegerParticleVariable(field.fieldId)) {
                        EXPECT_EQ(field.values[k], std::floor(field.values[k]));
                    }
                }
                DataFieldFreeArrays(&field);
                ++checked;
            }
        }
        EXPECT_TRUE(minihost::messages().empty());
    }
    EXPECT_GT(checked, 50u);
    EXPECT_EQ(refused, 6u);  // ids 1-4, 48, 49 of the one file with 8-byte integers
}

TEST_F(FluentGenFiles, ResidualsOfEveryEncodingEqualTheirFormulas) {
    for (const Variant& v : kVariants) {
        for (bool scaled : {true, false}) {
            SCOPED_TRACE(std::string(v.label) + (scaled ? " 302" : " 301"));
            fluentgen::Spec spec = specFor(v);
            spec.residuals.scaleFactors = scaled;
            spec.residuals.fourHeaderNumbers = !scaled;
            const fluentgen::WrittenFiles files = fluentgen::writeFiles(spec, freshFolder(v.label), "gen");
            const fluentgen::Model model(spec);
            FluentResidualsClear();
            firstIteration = 1;
            DataFile dataFile;
            ASSERT_TRUE(scanFile(&dataFile, files.dataFiles.at(0), nullptr, LoadOption_ResidualsOnly));
            EXPECT_TRUE(minihost::messages().empty());
            EXPECT_EQ(dataFile.numDataFields, 0);
            EXPECT_EQ(dataFile.numParticles, 0);
            const std::vector<fluentgen::ResidualSectionInfo> sections = model.residualSections();
            ASSERT_EQ(static_cast<size_t>(numResiduals), sections.size());
            EXPECT_EQ(firstIteration, 41);
            for (int r = 0; r < numResiduals; ++r) {
                const FluentResidual& residual = FluentResiduals[r];
                const fluentgen::ResidualSectionInfo& s = sections[static_cast<size_t>(r)];
                EXPECT_EQ(residual.residualId, s.residualId);
                EXPECT_EQ(residual.numRows, s.rows);
                EXPECT_EQ(residual.width, s.width);
                EXPECT_EQ(residual.hasScaleFactors, s.scaleFactors);
                for (int row = 0; row < s.rows; ++row) {
                    for (int k = 0; k < s.width; ++k) {
                        double value = fluentgen::residualFormula(s.residualId, row, k);
                        double scale = fluentgen::residualScaleFormula(s.residualId, row, k);
                        if (s.single) {
                            value = static_cast<float>(value);
                            scale = static_cast<float>(scale);
                        }
                        EXPECT_EQ(residual.values[row * s.width + k], value);
                        if (s.scaleFactors) {
                            EXPECT_EQ(residual.scaleFactors[row * s.width + k], scale);
                        }
                    }
                }
            }
        }
    }
}
