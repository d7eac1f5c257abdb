// The scan of a data file: dispatch by section id, Data sections checked
// against the case zones, section 37, and what each load option stores.

#include "DataFileTestSupport.h"

#include "datafile/Residuals.h"
#include "host/TaskProgress.h"

using namespace datafile_test;

namespace {

class ScanOfDataFile : public DataFileTest {
  protected:
    void TearDown() override {
        FluentResidualsClear();
        DataFileTest::TearDown();
    }
};

}  // namespace

TEST_F(ScanOfDataFile, FileWithoutAnyParenthesisIsNoDataFile) {
    TempFile file("no sections here at all\n");
    MemoryCase mesh;
    DataFile dataFile;
    EXPECT_FALSE(scanFile(&dataFile, file.path(), mesh.get()));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"File '" + file.path() +
                                                       "' does not appear to be a valid FLUENT .dat file."});
    EXPECT_EQ(dataFile.stream, nullptr);
}

TEST_F(ScanOfDataFile, EmptyFileIsNoDataFile) {
    TempFile file("");
    DataFile dataFile;
    EXPECT_FALSE(scanFile(&dataFile, file.path(), nullptr, LoadOption_ResidualsOnly));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"File '" + file.path() +
                                                       "' does not appear to be a valid FLUENT .dat file."});
}

TEST_F(ScanOfDataFile, MissingFileIsReportedByTheOpen) {
    DataFile dataFile;
    const std::string path = ::testing::TempDir() + "no_such_file_here.dat";
    EXPECT_FALSE(scanFile(&dataFile, path, nullptr));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{"Fluent data loader: Unable to open Data file\n" + path + "."});
}

TEST_F(ScanOfDataFile, ScanBeginsItsTaskAndStopsWhenRefused) {
    TempFile file(machineConfig() + dataSection(300, 1, 5, 1, 1, 1, 2, {1, 2}));
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 2);
    DataFile dataFile;
    ASSERT_TRUE(DataFileInit(&dataFile, file.path().c_str(), false));
    FluentSolution solution = emptySolution();
    EXPECT_TRUE(DataFileScan(&solution, &dataFile, mesh.get(), LoadOption_CaseAndData,
                             zorvane::zorutilutil::createTaskProgressBar(2), nullptr));
    bool begun = false;
    for (const minihost::ProgressEvent& event : minihost::progressEvents()) {
        begun = begun || (event.what == "begin" && event.text == "Reading Fluent data file...");
    }
    EXPECT_TRUE(begun);
    EXPECT_EQ(dataFile.numDataFields, 1);

    minihost::setInterrupt(true);
    DataFile refused;
    ASSERT_TRUE(DataFileInit(&refused, file.path().c_str(), false));
    EXPECT_FALSE(DataFileScan(&solution, &refused, mesh.get(), LoadOption_CaseAndData,
                              zorvane::zorutilutil::createTaskProgressBar(2), nullptr));
    EXPECT_EQ(refused.numDataFields, 0);
    minihost::setInterrupt(false);
}

TEST_F(ScanOfDataFile, DataSectionsAreRecordedInFileOrderWithTheirHeaders) {
    const std::string head = "(0 \"comment (with a parenthesis)\")\n" + machineConfig();
    const std::string first = dataSection(300, 1, 5, 1, 0, 1, 3, {1.5, 2.5, 3.5});
    const std::string second = dataSection(3300, 111, 7, 1, 2, 4, 5, {7, 8});
    const std::string third = dataSection(2300, 15, 5, 3, 0, 1, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    TempFile file(head + first + second + third);
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 3);
    mesh.addFaceZone(7, 4, 5);
    DataFile dataFile;
    ASSERT_TRUE(scanFile(&dataFile, file.path(), mesh.get()));
    EXPECT_TRUE(minihost::messages().empty());
    ASSERT_EQ(dataFile.numDataFields, 3);
    const DataField& a = dataFile.dataFields[0];
    EXPECT_EQ(a.sectionId, 300);
    EXPECT_EQ(a.fieldId, 1);
    EXPECT_EQ(a.zoneId, 5);
    EXPECT_EQ(a.count, 3);
    EXPECT_EQ(a.dimension, 1);
    EXPECT_EQ(a.phase, 0);
    EXPECT_EQ(a.values, nullptr);
    EXPECT_NE(a.minima, nullptr);
    EXPECT_NE(a.maxima, nullptr);
    EXPECT_EQ(a.minMaxWriters, nullptr);
    // The position is the first byte behind the '(' of the numbers.
    const std::string bytes = head + first;
    EXPECT_EQ(a.filePosition, static_cast<int64_t>(head.size() + first.find(")\n(") + 3));
    const DataField& b = dataFile.dataFields[1];
    EXPECT_EQ(b.sectionId, 3300);
    EXPECT_EQ(b.fieldId, 111);
    EXPECT_EQ(b.zoneId, 7);
    EXPECT_EQ(b.count, 2);
    EXPECT_EQ(b.phase, 2);
    EXPECT_EQ(b.filePosition, static_cast<int64_t>(head.size() + first.size() + second.find(")\n(") + 3));
    const DataField& c = dataFile.dataFields[2];
    EXPECT_EQ(c.sectionId, 2300);
    EXPECT_EQ(c.dimension, 3);
    EXPECT_EQ(dataFile.stream, nullptr);
}

TEST_F(ScanOfDataFile, MachineConfigurationIsTakenFromSectionFour) {
    TempFile file(machineConfig(true, 8, 4, 8));
    DataFile dataFile;
    ASSERT_TRUE(scanFile(&dataFile, file.path(), nullptr, LoadOption_ResidualsOnly));
    EXPECT_EQ(dataFile.machineConfig.byteOrder, 1);
    EXPECT_EQ(dataFile.machineConfig.intSize, 8);
    EXPECT_EQ(dataFile.machineConfig.floatSize, 4);
    EXPECT_EQ(dataFile.machineConfig.doubleSize, 8);
}

TEST_F(ScanOfDataFile, WithoutSectionThirtySevenTheTimesStayZero) {
    TempFile file(machineConfig() + dataSection(300, 1, 5, 1, 0, 1, 1, {1}));
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 1);
    DataFile dataFile;
    ASSERT_TRUE(scanFile(&dataFile, file.path(), mesh.get()));
    EXPECT_EQ(dataFile.flowTime, 0.0);
    EXPECT_EQ(dataFile.deltaTimeSampled, 0.0);
}

TEST_F(ScanOfDataFile, FlowTimeAndDeltaTimeSampledInEitherOrder) {
    const std::string variables =
        "(37 (\n(delta-time-sampled 0.25)\n(time-step 3)\n(flow-time 12.5)\n(other (a b))))\n";
    TempFile file(machineConfig() + variables + dataSection(300, 1, 5, 1, 0, 1, 1, {1}));
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 1);
    DataFile dataFile;
    ASSERT_TRUE(scanFile(&dataFile, file.path(), mesh.get()));
    EXPECT_EQ(dataFile.flowTime, 12.5);
    EXPECT_EQ(dataFile.deltaTimeSampled, 0.25);
    EXPECT_EQ(dataFile.numDataFields, 1);
    EXPECT_TRUE(minihost::messages().empty());
}

TEST_F(ScanOfDataFile, FlowTimeInOrderAndALiteralInsideAnotherWordIsFound) {
    const std::string variables = "(37 ((xflow-time 4) (delta-time-sampled 2)))\n";
    TempFile file(variables);
    DataFile dataFile;
    ASSERT_TRUE(scanFile(&dataFile, file.path(), nullptr, LoadOption_ResidualsOnly));
    EXPECT_EQ(dataFile.flowTime, 4.0);
    EXPECT_EQ(dataFile.deltaTimeSampled, 2.0);
}

TEST_F(ScanOfDataFile, FlowTimeThatIsNoNumberFailsTheSection) {
    TempFile file("(37 ((flow-time . x)))\n");
    DataFile dataFile;
    EXPECT_FALSE(scanFile(&dataFile, file.path(), nullptr, LoadOption_ResidualsOnly));
    EXPECT_EQ(messageTexts(),
              (std::vector<std::string>{"Parse error while reading Variables section (section 37).",
                                        "File read error while parsing \"Variables\" section "
                                        "(section 37)."}));
}

TEST_F(ScanOfDataFile, VariablesSectionOfBinaryIdsIsOnlySkipped) {
    TempFile file("(3037 ((flow-time 9)))\n");
    DataFile dataFile;
    ASSERT_TRUE(scanFile(&dataFile, file.path(), nullptr, LoadOption_ResidualsOnly));
    EXPECT_EQ(dataFile.flowTime, 0.0);
}

TEST_F(ScanOfDataFile, DataSectionWithNegativeFirstIdIsPassedOver) {
    const std::string skipped = "(300 (1 5 1 0 0 -1 1)\n(\n1\n2\n3\n))\n";
    TempFile file(machineConfig() + skipped + dataSection(300, 2, 5, 1, 0, 1, 2, {1, 2}));
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 2);
    DataFile dataFile;
    ASSERT_TRUE(scanFile(&dataFile, file.path(), mesh.get()));
    ASSERT_EQ(dataFile.numDataFields, 1);
    EXPECT_EQ(dataFile.dataFields[0].fieldId, 2);
    EXPECT_TRUE(minihost::messages().empty());
}

TEST_F(ScanOfDataFile, ZoneInNoZoneGivesBothMessagesAndFails) {
    TempFile file(machineConfig() + dataSection(300, 1, 9, 1, 0, 1, 2, {1, 2}));
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 2);
    DataFile dataFile;
    EXPECT_FALSE(scanFile(&dataFile, file.path(), mesh.get()));
    EXPECT_EQ(messageTexts(),
              (std::vector<std::string>{
                  "ZoneID 9 referenced in data file '" + file.path() + "' is not a valid zone.",
                  "There is a size mismatch between the case file and the data file for "
                  "zone ID #9. In the case file, it is of size 0, but in the data file it is "
                  "of size 2."}));
    EXPECT_EQ(dataFile.numDataFields, 0);
}

TEST_F(ScanOfDataFile, EmptySectionOfAMissingZoneFailsAfterOneMessage) {
    TempFile file(machineConfig() + "(300 (1 9 1 0 0 1 0)\n())\n");
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 2);
    DataFile dataFile;
    EXPECT_FALSE(scanFile(&dataFile, file.path(), mesh.get()));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"ZoneID 9 referenced in data file '" + file.path() +
                                                       "' is not a valid zone."});
}

TEST_F(ScanOfDataFile, SizeMismatchWithTheCaseZone) {
    TempFile file(machineConfig() + dataSection(3300, 1, 5, 1, 0, 1, 3, {1, 2, 3}));
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 4);
    DataFile dataFile;
    EXPECT_FALSE(scanFile(&dataFile, file.path(), mesh.get()));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{"There is a size mismatch between the case file and the data "
                                       "file for zone ID #5. In the case file, it is of size 4, but "
                                       "in the data file it is of size 3."});
}

TEST_F(ScanOfDataFile, CellZonesAreLookedUpBeforeFaceZones) {
    TempFile file(machineConfig() + dataSection(300, 1, 5, 1, 0, 1, 2, {1, 2}));
    MemoryCase mesh;
    mesh.addFaceZone(5, 1, 3);
    mesh.addCellZone(5, 1, 2);
    DataFile dataFile;
    EXPECT_TRUE(scanFile(&dataFile, file.path(), mesh.get()));
    EXPECT_EQ(dataFile.numDataFields, 1);
}

TEST_F(ScanOfDataFile, ShortHeaderOfADataSection) {
    TempFile file(machineConfig() + "(300 (1 5 1 0))\n");
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 2);
    DataFile dataFile;
    EXPECT_FALSE(scanFile(&dataFile, file.path(), mesh.get()));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{"Parse error while reading Data section (section 300)."});
}

TEST_F(ScanOfDataFile, DataSectionWithoutItsBody) {
    TempFile file(machineConfig() + "(300 (1 5 1 0 0 1 2)");
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 2);
    DataFile dataFile;
    EXPECT_FALSE(scanFile(&dataFile, file.path(), mesh.get()));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{
                                  "Opening parenthesis not found while reading Data section (Section 300)."});
    // The record was made before the body was looked for, and stays.
    EXPECT_EQ(dataFile.numDataFields, 1);
}

TEST_F(ScanOfDataFile, TheJumpUsesTheCaseWidthsAndTheSkipTheDataWidths) {
    // Both sections of 2 doubles. A case that believes doubles are 16 bytes
    // jumps 32 bytes: past the first end marker, so that the search for it
    // runs through the second section, which is lost.
    const std::string bytes = machineConfig() + dataSection(3300, 1, 5, 1, 0, 1, 2, {1, 2}) +
                              dataSection(3300, 2, 5, 1, 0, 1, 2, {3, 4});
    TempFile file(bytes);
    {
        MemoryCase mesh;
        mesh.addCellZone(5, 1, 2);
        DataFile dataFile;
        ASSERT_TRUE(scanFile(&dataFile, file.path(), mesh.get()));
        EXPECT_EQ(dataFile.numDataFields, 2);
    }
    {
        MemoryCase mesh;
        mesh.addCellZone(5, 1, 2);
        mesh.get()->machineConfig.doubleSize = 16;
        DataFile dataFile;
        ASSERT_TRUE(scanFile(&dataFile, file.path(), mesh.get()));
        EXPECT_EQ(dataFile.numDataFields, 1);
    }
    // Skipping (residuals only) goes by the data file's own widths: with
    // doubles of 16 bytes the skip overruns and the close fails silently.
    {
        TempFile wide(machineConfig(false, 4, 4, 16) + dataSection(3300, 1, 5, 1, 0, 1, 2, {1, 2}) + "(0 \"" +
                      std::string(200, '-') + "\")\n" + residualSection(301, 1, 1, 1, {1, 0.5}));
        DataFile dataFile;
        EXPECT_FALSE(scanFile(&dataFile, wide.path(), nullptr, LoadOption_ResidualsOnly));
        EXPECT_EQ(numResiduals, 0);
        EXPECT_TRUE(minihost::messages().empty());
    }
}

TEST_F(ScanOfDataFile, AdditionalQuantitiesAreSkippedUnlessAskedFor) {
    // Zone 99 exists nowhere: with the flag off the section is not even looked at.
    const std::string bytes = machineConfig() + dataSection(3314, 1, 99, 1, 0, 1, 2, {1, 2}) +
                              dataSection(300, 1, 5, 1, 0, 1, 2, {1, 2});
    TempFile file(bytes);
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 2);
    DataFile off;
    ASSERT_TRUE(scanFile(&off, file.path(), mesh.get(), LoadOption_CaseAndData, false));
    EXPECT_EQ(off.numDataFields, 1);
    EXPECT_TRUE(minihost::messages().empty());

    DataFile on;
    EXPECT_FALSE(scanFile(&on, file.path(), mesh.get(), LoadOption_CaseAndData, true));
    EXPECT_EQ(messageTexts()[0],
              "ZoneID 99 referenced in data file '" + file.path() + "' is not a valid zone.");
}

TEST_F(ScanOfDataFile, AdditionalQuantitiesAreStoredWhenAskedFor) {
    const std::string bytes = machineConfig() + dataSection(314, 1, 5, 1, 0, 1, 2, {1, 2});
    TempFile file(bytes);
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 2);
    DataFile dataFile;
    ASSERT_TRUE(scanFile(&dataFile, file.path(), mesh.get(), LoadOption_MultipleCaseAndData, true));
    ASSERT_EQ(dataFile.numDataFields, 1);
    EXPECT_EQ(dataFile.dataFields[0].sectionId, 314);
}

TEST_F(ScanOfDataFile, SectionOfTheFamily305IsNotSkipped) {
    // The scan goes straight on: the body's own "(37" is taken for a section.
    TempFile file("(2305 (37 ((flow-time 7.5))))\n");
    DataFile dataFile;
    ASSERT_TRUE(scanFile(&dataFile, file.path(), nullptr, LoadOption_ResidualsOnly));
    EXPECT_EQ(dataFile.flowTime, 7.5);
}

TEST_F(ScanOfDataFile, ResidualsOnlyStoresResidualsAndSkipsDataAndParticles) {
    const std::string bytes =
        machineConfig() + dataSection(300, 1, 5, 1, 0, 1, 2, {1, 2}) +
        dataSection(2300, 1, 6, 2, 0, 1, 2, {1, 2, 3, 4}) + particleHeader(303, "inj", 2, 0.5, 3) +
        particleSubsection(303, 7, {1, 2}) + ")\n" + residualSection(301, 2, 1, 1, {4, 0.5, 5, 0.25}) +
        dataSection(3300, 1, 7, 1, 0, 1, 1, {1}) + residualSection(3302, 1, 2, 2, {9, 1, 2, 3, 4});
    TempFile file(bytes);
    DataFile dataFile;
    ASSERT_TRUE(scanFile(&dataFile, file.path(), nullptr, LoadOption_ResidualsOnly));
    EXPECT_EQ(dataFile.numDataFields, 0);
    EXPECT_EQ(dataFile.numParticles, 0);
    ASSERT_EQ(numResiduals, 2);
    EXPECT_EQ(FluentResiduals[0].residualId, 1);
    EXPECT_EQ(FluentResiduals[1].residualId, 2);
    EXPECT_EQ(firstIteration, 9);
    EXPECT_TRUE(minihost::messages().empty());
}

TEST_F(ScanOfDataFile, ResidualsAreSkippedUnlessResidualsOnly) {
    const std::string bytes = machineConfig() + residualSection(301, 2, 1, 1, {4, 0.5, 5, 0.25}) +
                              residualSection(2302, 2, 1, 1, {4, 0.5, 1, 5, 0.25, 1}) +
                              residualSection(3301, 1, 1, 1, {4, 0.5}, false) +
                              residualSection(302, 1, 1, 1, {4, 0.5, 1}, false) +
                              dataSection(300, 1, 5, 1, 0, 1, 2, {1, 2});
    TempFile file(bytes);
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 2);
    DataFile dataFile;
    ASSERT_TRUE(scanFile(&dataFile, file.path(), mesh.get()));
    EXPECT_EQ(numResiduals, 0);
    EXPECT_EQ(dataFile.numDataFields, 1);
    EXPECT_TRUE(minihost::messages().empty());
}

TEST_F(ScanOfDataFile, ParticlesAreSkippedWhenAnXmlFileTakesTheirPlace) {
    const std::string bytes = machineConfig() + particleHeader(303, "inj", 2, 0.5, 3) +
                              particleSubsection(303, 7, {1, 2}) + ")\n" +
                              dataSection(300, 1, 5, 1, 0, 1, 2, {1, 2});
    TempFile file(bytes);
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 2);
    FluentSolution solution = emptySolution();
    strcpy(solution.particleFileName, "particles.xml");
    DataFile dataFile;
    ASSERT_TRUE(scanFile(&dataFile, file.path(), mesh.get(), LoadOption_CaseAndData, false, &solution));
    EXPECT_EQ(dataFile.numParticles, 0);
    EXPECT_EQ(dataFile.numDataFields, 1);
}

TEST_F(ScanOfDataFile, UnknownSectionsAreSkippedByTheirParenthesesOrMarker) {
    const std::string bytes = "(64 (x (y \"z\") ()))\n(2999 (1 2)\n(" + std::string("\x01\x28\x29\x00", 4) +
                              "\n" + endMarker(2999) + ")\n" + machineConfig() +
                              dataSection(300, 1, 5, 1, 0, 1, 2, {1, 2});
    TempFile file(bytes);
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 2);
    DataFile dataFile;
    ASSERT_TRUE(scanFile(&dataFile, file.path(), mesh.get()));
    EXPECT_EQ(dataFile.numDataFields, 1);
}

TEST_F(ScanOfDataFile, UnknownAsciiSectionCutOffFailsTheScan) {
    TempFile file(machineConfig() + "(64 (x (y z)");
    DataFile dataFile;
    EXPECT_FALSE(scanFile(&dataFile, file.path(), nullptr));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"End-of-file while skipping section 64."});
}

TEST_F(ScanOfDataFile, DeferredWritersComeFromTheFactoryOnePerComponent) {
    struct CountingWriter : zorvane::dataio::DeferredMinMaxWriter {
        void setMinMax(double, double) override {}
    };
    struct Factory : zorvane::dataio::DeferredMinMaxWriterFactory {
        std::vector<zorvane::dataio::DeferredMinMaxWriter*> made;
        zorvane::dataio::DeferredMinMaxWriter* createDeferredMinMaxWriter() override {
            made.push_back(new CountingWriter);
            return made.back();
        }
        ~Factory() override {
            for (auto* writer : made) {
                writer->release();
            }
        }
    } factory;
    TempFile file(machineConfig() + dataSection(300, 15, 5, 3, 0, 1, 1, {1, 2, 3}));
    MemoryCase mesh;
    mesh.addCellZone(5, 1, 1);
    DataFile dataFile;
    ASSERT_TRUE(DataFileInit(&dataFile, file.path().c_str(), false));
    FluentSolution solution = emptySolution();
    ASSERT_TRUE(DataFileScan(&solution, &dataFile, mesh.get(), LoadOption_CaseAndData, nullptr, &factory));
    ASSERT_EQ(factory.made.size(), 3u);
    ASSERT_NE(dataFile.dataFields[0].minMaxWriters, nullptr);
    for (int c = 0; c < 3; ++c) {
        EXPECT_EQ(dataFile.dataFields[0].minMaxWriters[c], factory.made[c]);
    }
}

TEST(DataFileRecords, MovingARecordLeavesTheSourceEmpty) {
    DataFile a;
    ASSERT_TRUE(DataFileInit(&a, "a.dat", true));
    DataField* field;
    ASSERT_TRUE(DataFileNewDataField(&a, &field));
    ASSERT_TRUE(setDataFieldAttributes(field, 300, 1, 2, 3, 2, 0, nullptr));
    DataFile b(std::move(a));
    EXPECT_EQ(a.numDataFields, 0);
    EXPECT_EQ(a.dataFields, nullptr);
    EXPECT_EQ(b.numDataFields, 1);
    EXPECT_STREQ(b.fileName, "a.dat");
    EXPECT_TRUE(b.additionalQuantities->shouldLoad());
    DataFile* table = new DataFile[2];
    table[1] = std::move(b);
    EXPECT_EQ(table[1].dataFields[0].dimension, 2);
    delete[] table;
}

TEST(DataFileRecords, NameOf262CharactersDoesNotFit) {
    DataFile dataFile;
    EXPECT_FALSE(DataFileInit(&dataFile, std::string(262, 'a').c_str(), false));
    EXPECT_TRUE(DataFileInit(&dataFile, std::string(261, 'a').c_str(), false));
}

TEST(DataFileRecords, FieldAttributesAreStoredAndArraysZeroed) {
    DataField field;
    memset(&field, 0x5a, sizeof field);
    ASSERT_TRUE(setDataFieldAttributes(&field, 2300, 4, 111, 10, 2, 3, nullptr));
    EXPECT_EQ(field.sectionId, 2300);
    EXPECT_EQ(field.zoneId, 4);
    EXPECT_EQ(field.fieldId, 111);
    EXPECT_EQ(field.count, 10);
    EXPECT_EQ(field.dimension, 2);
    EXPECT_EQ(field.phase, 3);
    EXPECT_EQ(field.values, nullptr);
    EXPECT_EQ(field.filePosition, 0);
    EXPECT_EQ(field.name[0], '\0');
    EXPECT_EQ(field.minima[0], 0.0);
    EXPECT_EQ(field.minima[1], 0.0);
    EXPECT_EQ(field.maxima[1], 0.0);
    EXPECT_EQ(field.minMaxWriters, nullptr);
    DataFieldFreeArrays(&field);
    EXPECT_EQ(field.minima, nullptr);
    DataFieldFreeArrays(&field);
}

TEST(DataFileRecords, VectorFamily) {
    for (int id : {7, 13, 200, 399, 450, 499, 635, 637, 1000, 1099}) {
        EXPECT_TRUE(isVectorFamilyFieldId(id)) << id;
    }
    for (int id : {1, 6, 8, 12, 14, 199, 400, 449, 500, 634, 638, 970, 999, 1100}) {
        EXPECT_FALSE(isVectorFamilyFieldId(id)) << id;
    }
}
