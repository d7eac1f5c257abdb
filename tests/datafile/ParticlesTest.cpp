// Particle sections: the scan of their subsections, the skip of unwanted
// ones, the load of one particle field, and the particle variable table.

#include "DataFileTestSupport.h"

#include "datafile/Particles.h"

using namespace datafile_test;

namespace {

class Particles : public DataFileTest {
  protected:
    bool scan(const std::string& bytes, int caseDimensions = 3, LoadOption option = LoadOption_CaseAndData) {
        file_.reset(new TempFile(bytes));
        mesh_.reset(new MemoryCase);
        mesh_->get()->numDimensions = caseDimensions;
        dataFile_.reset(new DataFile);
        return scanFile(dataFile_.get(), file_->path(), mesh_->get(), option);
    }
    std::vector<double> load(DataField* field) {
        FluentSolution solution = emptySolution();
        EXPECT_TRUE(DataFileLoadParticleDataField(&solution, dataFile_.get(), field));
        return std::vector<double>(field->values, field->values + field->count);
    }
    std::string displayName(const DataField& field) {
        char out[kDataFieldNameSize];
        return getParticleDisplayName(out, &field) ? std::string(out) : std::string("<none>");
    }
    std::unique_ptr<TempFile> file_;
    std::unique_ptr<MemoryCase> mesh_;
    std::unique_ptr<DataFile> dataFile_;
};

}  // namespace

TEST(ParticleVariableTable, FiftyNineRowsInIdOrder) {
    EXPECT_EQ(kParticleVariableTableSize, 59);
    EXPECT_EQ(sizeof ParticleVariableTable / sizeof ParticleVariableTable[0], 59u);
    EXPECT_EQ(ParticleVariableTable[0].id, 0);
    EXPECT_STREQ(ParticleVariableTable[0].name, "");
    for (int i = 1; i < kParticleVariableTableSize; ++i) {
        EXPECT_LT(ParticleVariableTable[i - 1].id, ParticleVariableTable[i].id);
    }
    EXPECT_EQ(ParticleVariableTable[37].id, 37);
    EXPECT_EQ(ParticleVariableTable[38].id, 45);
    EXPECT_EQ(ParticleVariableTable[43].id, 50);
    EXPECT_EQ(ParticleVariableTable[44].id, 101);
    EXPECT_EQ(ParticleVariableTable[58].id, 115);
    EXPECT_STREQ(ParticleVariableTable[58].name, "Particle Cell Viscosity");
}

TEST(ParticleVariableTable, NamesByIdAndIdsByName) {
    const std::pair<int, const char*> rows[] = {
        {1, "Particle ID"},
        {5, "Particle Birth Time"},
        {7, "X"},
        {8, "Y"},
        {9, "Z"},
        {10, "X Velocity"},
        {12, "Z Velocity"},
        {14, "Density"},
        {16, "Temperature"},
        {18, "Particle VFF"},
        {22, "Particle Z0"},
        {25, "Particle W0"},
        {31, "Particle Liquid Fraction0"},
        {34, "Particle WPrime"},
        {36, "Particle OldTKE"},
        {37, "Particle OldTED"},
        {45, "Particle Time Step Birth"},
        {46, "Particle User"},
        {47, "Particle In Parcel"},
        {48, "Particle Cell Thread ID"},
        {49, "Particle Cell Index"},
        {50, "Particle Scalar"},
        {101, "Particle Cell U"},
        {106, "Particle Cell dUdZ"},
        {110, "Particle Cell dWdX"},
        {113, "Particle Cell Temperature"},
        {114, "Particle Cell Density"},
    };
    for (const auto& row : rows) {
        DataField field = {};
        field.fieldId = row.first;
        char out[kDataFieldNameSize];
        ASSERT_TRUE(getParticleDisplayName(out, &field)) << row.first;
        EXPECT_STREQ(out, row.second);
        EXPECT_EQ(particleVariableIdFromName(row.second), row.first);
    }
    EXPECT_EQ(particleVariableIdFromName("x"), 0);
    EXPECT_EQ(particleVariableIdFromName("Particle Nothing"), 0);
    for (int missing : {38, 44, 51, 53, 56, 57, 59, 60, 100, 116, 117, 118}) {
        DataField field = {};
        field.fieldId = missing;
        char out[kDataFieldNameSize] = "junk";
        EXPECT_FALSE(getParticleDisplayName(out, &field)) << missing;
        EXPECT_STREQ(out, "");
    }
}

TEST(ParticleVariableTable, XmlItemsKeepTheirOwnNameOnlyWithoutAnId) {
    DataField field = {};
    strcpy(field.name, "my scalar");
    char out[kDataFieldNameSize];
    ASSERT_TRUE(getParticleDisplayName(out, &field));
    EXPECT_STREQ(out, "my scalar");
    field.fieldId = 16;
    ASSERT_TRUE(getParticleDisplayName(out, &field));
    EXPECT_STREQ(out, "Temperature");
}

TEST(ParticleVariableTable, IntegerIds) {
    for (int id = 0; id < 120; ++id) {
        const bool integer = id == 1 || id == 2 || id == 3 || id == 4 || id == 48 || id == 49;
        EXPECT_EQ(isIntegerParticleVariable(id), integer) << id;
    }
}

TEST_F(Particles, AsciiSectionRecordsEverySubsection) {
    const std::string bytes = machineConfig() + particleHeader(303, "injection-0", 3, 0.25, 3) +
                              particleSubsection(303, 7, {1, 2, 3}) +
                              particleSubsection(303, 1, {10, 11, 12}) +
                              particleSubsection(303, 56, {4, 5, 6}) + ")\n";
    ASSERT_TRUE(scan(bytes));
    EXPECT_TRUE(minihost::messages().empty());
    ASSERT_EQ(dataFile_->numParticles, 1);
    FluentParticle& p = dataFile_->particles[0];
    EXPECT_STREQ(p.name, "injection-0");
    EXPECT_EQ(p.particleCount, 3);
    EXPECT_EQ(p.solutionTime, 0.25);
    EXPECT_EQ(p.numDimensions, 3);
    ASSERT_EQ(p.numFields, 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(p.fields[i].sectionId, 303);
        EXPECT_EQ(p.fields[i].zoneId, 0);
        EXPECT_EQ(p.fields[i].count, 3);
        EXPECT_EQ(p.fields[i].dimension, 1);
        EXPECT_EQ(p.fields[i].phase, 0);
    }
    EXPECT_EQ(displayName(p.fields[0]), "X");
    EXPECT_EQ(load(&p.fields[0]), (std::vector<double>{1, 2, 3}));
    // An integer id in ASCII is a real, not a hexadecimal number.
    EXPECT_EQ(load(&p.fields[1]), (std::vector<double>{10, 11, 12}));
    // Id 56 has no row: the field is kept, without a name.
    EXPECT_EQ(p.fields[2].fieldId, 56);
    EXPECT_EQ(displayName(p.fields[2]), "<none>");
    EXPECT_EQ(load(&p.fields[2]), (std::vector<double>{4, 5, 6}));
}

TEST_F(Particles, BinarySectionsOfBothPrecisionsWithIntegerIds) {
    for (int id : {2303, 3303}) {
        for (bool bigEndian : {false, true}) {
            const std::string bytes = machineConfig(bigEndian) + particleHeader(id, "inj", 2, 1.5, 3) +
                                      particleSubsection(id, 1, {7, -8}, true, bigEndian) +
                                      particleSubsection(id, 16, {300.5, 301.25}, false, bigEndian) +
                                      particleSubsection(id, 49, {123456, 2}, true, bigEndian) + ")\n";
            ASSERT_TRUE(scan(bytes)) << id;
            FluentParticle& p = dataFile_->particles[0];
            ASSERT_EQ(p.numFields, 3);
            EXPECT_EQ(load(&p.fields[0]), (std::vector<double>{7, -8})) << id << bigEndian;
            EXPECT_EQ(load(&p.fields[1]), (std::vector<double>{300.5, 301.25})) << id << bigEndian;
            EXPECT_EQ(load(&p.fields[2]), (std::vector<double>{123456, 2})) << id << bigEndian;
            EXPECT_TRUE(minihost::messages().empty());
        }
    }
}

TEST_F(Particles, IntegerFieldsOfEightByteIntegersCannotBeRead) {
    // Integers wider than four bytes go through the bulk integer reader, which
    // reads them only at four bytes: such a field ends in a read error.
    std::vector<int64_t> wide = {7, -8};
    const std::string bytes = machineConfig(false, 8) + particleHeader(3303, "inj", 2, 0, 3) + "(1 (" +
                              rawBytes(wide) + "\n" + endMarker(1) + ")\n" +
                              particleSubsection(3303, 16, {300.5, 301.25}) + ")\n";
    ASSERT_TRUE(scan(bytes));
    FluentParticle& p = dataFile_->particles[0];
    ASSERT_EQ(p.numFields, 2);
    FluentSolution solution = emptySolution();
    EXPECT_FALSE(DataFileLoadParticleDataField(&solution, dataFile_.get(), &p.fields[0]));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{"Read error while reading Particle Data section (section 3303)."});
    EXPECT_EQ(load(&p.fields[1]), (std::vector<double>{300.5, 301.25}));
}

TEST_F(Particles, SectionWithoutSubsections) {
    ASSERT_TRUE(scan(machineConfig() + particleHeader(303, "empty", 5, 0, 3) + ")\n"));
    ASSERT_EQ(dataFile_->numParticles, 1);
    EXPECT_EQ(dataFile_->particles[0].numFields, 0);
    EXPECT_EQ(dataFile_->particles[0].fields, nullptr);
}

TEST_F(Particles, NoParticlesIsAnInvalidCount) {
    EXPECT_FALSE(scan(machineConfig() + particleHeader(303, "x", 0, 0, 3) + ")\n"));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{"Invalid number of particles (0) in particle section 'x'"});
    EXPECT_EQ(dataFile_->numParticles, 0);
}

TEST_F(Particles, DimensionsThatDisagreeWithTheCaseAreAWarning) {
    ASSERT_TRUE(scan(
        machineConfig() + particleHeader(303, "inj", 1, 0, 3) + particleSubsection(303, 7, {1}) + ")\n", 2));
    ASSERT_EQ(minihost::messages().size(), 1u);
    EXPECT_EQ(minihost::messages()[0].kind, "warning");
    EXPECT_EQ(
        minihost::messages()[0].text,
        "Number of dimensions (3) in Particle section 'Particle' of Fluent Data file does not agree with "
        "number of dimensions previously read (2). Processing will continue.");
    EXPECT_EQ(dataFile_->numParticles, 1);

    // Batch mode keeps it silent.
    minihost::resetRecords();
    minihost::setBatchMode(true);
    ASSERT_TRUE(scan(
        machineConfig() + particleHeader(303, "inj", 1, 0, 3) + particleSubsection(303, 7, {1}) + ")\n", 2));
    EXPECT_TRUE(minihost::messages().empty());

    // With no particles both messages come, the count's first.
    minihost::resetRecords();
    EXPECT_FALSE(scan(machineConfig() + particleHeader(303, "x", 0, 0, 3) + ")\n", 2));
    EXPECT_EQ(messageTexts(),
              (std::vector<std::string>{
                  "Invalid number of particles (0) in particle section 'x'",
                  "Number of dimensions (3) in Particle section 'Particle' of Fluent Data file does "
                  "not agree with number of dimensions previously read (2). Processing will "
                  "continue."}));
}

TEST_F(Particles, ShortHeader) {
    EXPECT_FALSE(scan(machineConfig() + "(303 (inj 3))\n"));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{"Parse error while reading Particle section (section 303)."});
}

TEST_F(Particles, UnexpectedCharacterBetweenSubsections) {
    EXPECT_FALSE(scan(machineConfig() + particleHeader(303, "inj", 1, 0, 3) +
                      particleSubsection(303, 7, {1}) + "x)\n"));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{
                  "Unexpected character 'x' (0x78) encountered while parsing particle section 'inj'"});
}

TEST_F(Particles, EndOfFileBetweenSubsections) {
    EXPECT_FALSE(
        scan(machineConfig() + particleHeader(303, "inj", 1, 0, 3) + particleSubsection(303, 7, {1})));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{"Unexpected character '\xff' (0xffffffff) encountered while "
                                       "parsing particle section 'inj'"});
}

TEST_F(Particles, SubsectionWithoutANumber) {
    EXPECT_FALSE(scan(machineConfig() + particleHeader(303, "inj", 1, 0, 3) + "(x (1))\n)\n"));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"Error parsing particle section 'inj'"});
}

TEST_F(Particles, SubsectionWithoutItsNumbers) {
    EXPECT_FALSE(scan(machineConfig() + particleHeader(303, "inj", 1, 0, 3) + "(7 "));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{
                  "Opening parenthesis not found while reading particle section 'inj' subsection 7."});
}

TEST_F(Particles, SkippedWhenResidualsOnlyInBothEncodings) {
    const std::string bytes =
        machineConfig() + particleHeader(303, "a", 2, 0, 3) + particleSubsection(303, 7, {1, 2}) + ")\n" +
        particleHeader(2303, "b", 2, 0, 3) + particleSubsection(2303, 1, {40, 41}, true) +
        particleSubsection(2303, 7, {1, 2}) + ")\n" + particleHeader(3303, "c", 1, 0, 3) +
        particleSubsection(3303, 8, {41}) + ")\n" + "(37 ((flow-time 3)))\n";
    ASSERT_TRUE(scan(bytes, 3, LoadOption_ResidualsOnly));
    EXPECT_EQ(dataFile_->numParticles, 0);
    EXPECT_EQ(dataFile_->flowTime, 3.0);
    EXPECT_TRUE(minihost::messages().empty());
}

TEST_F(Particles, SkipThatRunsOutOfFile) {
    EXPECT_FALSE(scan(machineConfig() + "(2303 (inj 2 0 3", 3, LoadOption_ResidualsOnly));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"End of file while skipping particle data."});

    minihost::resetRecords();
    EXPECT_FALSE(scan(machineConfig() + particleHeader(2303, "inj", 2, 0, 3) + "(7 (" + doubles({1, 2}), 3,
                      LoadOption_ResidualsOnly));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"End-of-file while skipping particle subsection 7."});

    minihost::resetRecords();
    EXPECT_FALSE(
        scan(machineConfig() + particleHeader(2303, "inj", 2, 0, 3) + particleSubsection(2303, 7, {1, 2}), 3,
             LoadOption_ResidualsOnly));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"End-of-file while skipping particle data."});

    minihost::resetRecords();
    EXPECT_FALSE(scan(machineConfig() + "(303 (inj 2 0 3)\n(7 (1 2", 3, LoadOption_ResidualsOnly));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"End-of-file while skipping section 303."});
}

TEST_F(Particles, LoadOfAFieldWhoseFileVanished) {
    ASSERT_TRUE(scan(machineConfig() + particleHeader(303, "inj", 1, 0, 3) + particleSubsection(303, 7, {1}) +
                     ")\n"));
    const std::string path = file_->path();
    file_.reset();
    FluentSolution solution = emptySolution();
    EXPECT_FALSE(
        DataFileLoadParticleDataField(&solution, dataFile_.get(), &dataFile_->particles[0].fields[0]));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"Error opening case file '" + path + "'"});
}

TEST_F(Particles, LoadAtAPositionThatCannotBeSet) {
    ASSERT_TRUE(scan(machineConfig() + particleHeader(303, "inj", 1, 0, 3) + particleSubsection(303, 7, {1}) +
                     ")\n"));
    DataField& field = dataFile_->particles[0].fields[0];
    field.filePosition = -3;
    FluentSolution solution = emptySolution();
    EXPECT_FALSE(DataFileLoadParticleDataField(&solution, dataFile_.get(), &field));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{
                  "Error setting file position (-3) while reading particle data in file\n" + file_->path()});
}

TEST_F(Particles, LoadReadsTheXmlFileWhenTheSolutionNamesOne) {
    // One base64 line of two native floats stands where the field points.
    ASSERT_TRUE(scan(machineConfig() + particleHeader(2303, "inj", 2, 0, 3) +
                     particleSubsection(2303, 16, {1, 2}) + ")\n"));
    const std::string xml = "<x>AADAPwAAIEA=\n</x>";  // 1.5f, 2.5f
    TempFile xmlFile(xml, ".xml");
    FluentSolution solution = emptySolution();
    strcpy(solution.particleFileName, xmlFile.path().c_str());
    DataField& field = dataFile_->particles[0].fields[0];
    field.filePosition = 3;
    ASSERT_TRUE(DataFileLoadParticleDataField(&solution, dataFile_.get(), &field));
    EXPECT_EQ(field.values[0], 1.5);
    EXPECT_EQ(field.values[1], 2.5);
}
