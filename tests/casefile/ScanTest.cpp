// The scan of a case file: which sections it records, which it drops, what
// it says when a file is damaged, and the small functions on its tables.
#include <memory>

#include "CaseFileTestSupport.h"

namespace casefile_test {
namespace {

class ScanTest : public CaseFileTest {};

// ---- Whole files ------------------------------------------------------------------------

TEST_F(ScanTest, EmptyFileIsNotACaseFile) {
    bool ok = true;
    CaseFile* caseFile = scanBytes("", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"File '" + std::string(caseFile->fileName) +
                                                       "' does not appear to be a valid FLUENT .cas file."});
    EXPECT_EQ(caseFile->stream, nullptr);
}

TEST_F(ScanTest, TextWithoutAnySectionIsNotACaseFile) {
    bool ok = true;
    CaseFile* caseFile = scanBytes("just some words\nand no parenthesis at all\n", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"File '" + std::string(caseFile->fileName) +
                                                       "' does not appear to be a valid FLUENT .cas file."});
}

TEST_F(ScanTest, SectionNumberAtEndOfFileAsFirstSection) {
    bool ok = true;
    CaseFile* caseFile = scanBytes("(12", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(),
              (std::vector<std::string>{"Premature End-of-file while scanning section #12.",
                                        "File '" + std::string(caseFile->fileName) +
                                            "' does not appear to be a valid FLUENT .cas file."}));
}

TEST_F(ScanTest, SectionNumberAtEndOfFileAfterOtherSectionsEndsTheScanWithSuccess) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(12 (1 1 4 1 2))\n(12", &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(messageTexts(), texts({"Premature End-of-file while scanning section #12."}));
    EXPECT_EQ(caseFile->numCellZones, 1);
}

TEST_F(ScanTest, RunningOutOfSectionsIsASuccess) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(std::string("(0 \"a header\")\n(2 2)\n") + kMachineConfig, &ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(messageTexts().empty());
    EXPECT_STREQ(caseFile->header, "a header");
    EXPECT_EQ(caseFile->numDimensions, 2);
    EXPECT_EQ(caseFile->machineConfig.byteOrder, 0);
    EXPECT_EQ(caseFile->machineConfig.intSize, 4);
    EXPECT_EQ(caseFile->machineConfig.floatSize, 4);
    EXPECT_EQ(caseFile->machineConfig.doubleSize, 8);
    EXPECT_EQ(caseFile->stream, nullptr);
}

TEST_F(ScanTest, FileEndingInsideARecordedSectionFailsTheScan) {
    bool ok = true;
    CaseFile* caseFile = scanBytes("(2 3)\n(10 (1 1 3 1 3)(1 2 3 4", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), texts({"End-of-file while skipping section 10."}));
    // What was read stays.
    ASSERT_EQ(caseFile->numNodeZones, 1);
    EXPECT_EQ(caseFile->nodeZones[0].lastIndex, 3);
}

TEST_F(ScanTest, FileEndingInsideASkippedSectionIsASuccess) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(12 (1 1 4 1 2))\n(38 (abc (def", &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(messageTexts(), texts({"End-of-file while skipping section 38."}));
    EXPECT_EQ(caseFile->numCellZones, 1);
}

TEST_F(ScanTest, MissingFileGivesTheOpenError) {
    CaseFile* caseFile = newCaseFile((folder_ / "missing.cas").string());
    EXPECT_FALSE(CaseFileScan(caseFile, false, nullptr, nullptr));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"Fluent data loader: Unable to open Case file\n" +
                                                       std::string(caseFile->fileName) + "."});
}

TEST_F(ScanTest, CompressedNameIsNotReadAsItIs) {
    CaseFile* caseFile = newCaseFile(writeFile("mesh.cas.gz", "(2 3)\n"));
    EXPECT_FALSE(CaseFileScan(caseFile, false, nullptr, nullptr));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"Fluent data loader: Unable to open Case file\n" +
                                                       std::string(caseFile->fileName) + "."});
}

// ---- Header and comments --------------------------------------------------------------------

TEST_F(ScanTest, FirstCommentBecomesTheHeaderAndASecondNeverReplacesIt) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(0 \"first\")\n(0 \"second\")\n(0 not even quoted)\n(2 3)\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(messageTexts().empty());
    EXPECT_STREQ(caseFile->header, "first");
    EXPECT_EQ(caseFile->numDimensions, 3);
}

TEST_F(ScanTest, HeaderSectionIsAlwaysParsed) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(0 \"a comment\")\n(1 \"the header\")\n(2 3)\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_STREQ(caseFile->header, "the header");
}

TEST_F(ScanTest, HeaderWithoutDoubleQuoteIsAParseError) {
    bool ok = true;
    CaseFile* caseFile = scanBytes("(1 'single quotes')\n(2 3)\n", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), texts({"Parse error while reading Header section (section 1)."}));
    EXPECT_EQ(caseFile->numDimensions, 0);
}

TEST_F(ScanTest, FirstCommentWithoutQuoteIsParsedAsHeaderAndFails) {
    bool ok = true;
    scanBytes("(0 machine configuration:)\n(2 2)\n", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), texts({"Parse error while reading Header section (section 1)."}));
}

TEST_F(ScanTest, HeaderEndingAtEndOfFile) {
    bool ok = true;
    CaseFile* caseFile = scanBytes("(1 \"never closed", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), texts({"End-of-file while reading Header section (section 1)."}));
    EXPECT_STREQ(caseFile->header, "never closed");
}

TEST_F(ScanTest, HeaderKeepsAtMost4096Characters) {
    std::string longText(5000, 'h');
    bool ok = false;
    CaseFile* caseFile = scanBytes("(1 \"" + longText + "\")\n(2 3)\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(strlen(caseFile->header), 4096u);
    EXPECT_EQ(caseFile->numDimensions, 3);
}

// ---- Dimensions and machine configuration -------------------------------------------------------

TEST_F(ScanTest, DimensionsThatCannotBeRead) {
    bool ok = true;
    scanBytes("(2 x)\n", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), texts({"Error reading number of dimensions in section 2."}));
}

TEST_F(ScanTest, DimensionsOtherThanTwoOrThree) {
    bool ok = true;
    scanBytes("(2 4)\n", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), texts({"Bad value for number of dimensions in section 2: 4."}));
}

TEST_F(ScanTest, MachineConfigurationWithTooFewNumbers) {
    bool ok = true;
    scanBytes("(4 (60 0 0 1 2))\n", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), texts({"Error parsing Machine Configuration (Section 4)."}));
}

// ---- Variables ------------------------------------------------------------------------------------

const char* kVariables =
    "(37 (\n(rp-seg-max-init 500)\n(species (names (ch4 o2 co2 h2o n2)))\n(rp-axi? . #t)\n(x (y))\n"
    "(rp-double? . #t)\n))\n";

TEST_F(ScanTest, VariablesGiveSpeciesAndFlags) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(std::string("(2 2)\n") + kVariables + "(12 (3 1 2 1 1))\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(messageTexts().empty());
    ASSERT_EQ(caseFile->numSpeciesNames, 5);
    EXPECT_STREQ(caseFile->speciesNames[0], "ch4");
    EXPECT_STREQ(caseFile->speciesNames[4], "n2");
    EXPECT_TRUE(caseFile->axisymmetric);
    EXPECT_TRUE(caseFile->doublePrecision);
    // The section was passed whole: the next one is found.
    EXPECT_EQ(caseFile->numCellZones, 1);
}

TEST_F(ScanTest, RpDoubleAheadOfRpAxiIsNotSeen) {
    bool ok = false;
    CaseFile* caseFile =
        scanBytes("(2 2)\n(37 (\n(rp-double? . #t)\n(rp-axi? . #f)\n))\n(12 (3 1 2 1 1))\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_FALSE(caseFile->axisymmetric);
    EXPECT_FALSE(caseFile->doublePrecision);
    EXPECT_EQ(caseFile->numCellZones, 1);
}

TEST_F(ScanTest, RpDoubleWithoutRpAxiIsNotSeen) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 2)\n(37 (\n(rp-double? . #t)\n))\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_FALSE(caseFile->doublePrecision);
}

TEST_F(ScanTest, BinaryVariablesSectionIsSkipped) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(
        "(2 2)\n(2037 (\n(species (names (a b)))\n(rp-axi? . #t)\n(rp-double? . #t)\n)\n"
        "End of Binary Section   2037)\n(37 (\n(species (names (only)))\n))\n(12 (3 1 2 1 1))\n",
        &ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(messageTexts().empty());
    ASSERT_EQ(caseFile->numSpeciesNames, 1);
    EXPECT_STREQ(caseFile->speciesNames[0], "only");
    EXPECT_FALSE(caseFile->axisymmetric);
    EXPECT_FALSE(caseFile->doublePrecision);
    EXPECT_EQ(caseFile->numCellZones, 1);
}

TEST_F(ScanTest, SpeciesListCutByEndOfFile) {
    bool ok = true;
    scanBytes("(2 2)\n(37 ((species (names (a b", &ok);
    EXPECT_FALSE(ok);
    // The skip that measures the section meets the end first.
    EXPECT_EQ(messageTexts(), texts({"End-of-file while skipping section 37."}));
}

// ---- Zone names ---------------------------------------------------------------------------------------

TEST_F(ScanTest, ZoneNameGoesToTheFaceZoneWhenNoCellZoneHasTheId) {
    bool ok = false;
    CaseFile* caseFile =
        scanBytes("(2 2)\n(13 (5 1 2 3 2)(1 2 1 0 2 3 2 0))\n(39 (5 wall outer-wall 1)())\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(messageTexts().empty());
    ASSERT_EQ(caseFile->numFaceZones, 1);
    EXPECT_STREQ(caseFile->faceZones[0].name, "outer-wall");
}

TEST_F(ScanTest, ZoneNameGoesToTheCellZoneOnlyWhenBothHaveTheId) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(
        "(2 2)\n(12 (5 1 2 1 1))\n(13 (5 1 2 3 2)(1 2 1 0 2 3 2 0))\n(45 (5 fluid the-fluid)())\n", &ok);
    EXPECT_TRUE(ok);
    ASSERT_EQ(caseFile->numCellZones, 1);
    ASSERT_EQ(caseFile->numFaceZones, 1);
    EXPECT_STREQ(caseFile->cellZones[0].name, "the-fluid");
    EXPECT_STREQ(caseFile->faceZones[0].name, "");
}

TEST_F(ScanTest, ZoneSectionAheadOfItsZoneNamesNothing) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 2)\n(39 (5 fluid early 1)())\n(12 (5 1 2 1 1))\n", &ok);
    EXPECT_TRUE(ok);
    ASSERT_EQ(caseFile->numCellZones, 1);
    EXPECT_STREQ(caseFile->cellZones[0].name, "");
}

TEST_F(ScanTest, ZoneNameKeepsAtMost128Characters) {
    std::string name(200, 'n');
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 2)\n(12 (7 1 2 1 1))\n(39 (7 fluid " + name + " 1)())\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(std::string(caseFile->cellZones[0].name), std::string(128, 'n'));
}

TEST_F(ScanTest, ZoneSectionWithoutParenthesis) {
    bool ok = true;
    scanBytes("(2 2)\n(12 (5 1 2 1 1))\n(39 5 fluid x)\n", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), texts({"Parse error while reading Zone section (section 39)."}));
}

TEST_F(ScanTest, ZoneSectionWithZoneIdZeroLeavesItsRestToTheNextSearch) {
    bool ok = false;
    // The rest of the zone section holds text that looks like a section.
    CaseFile* caseFile = scanBytes("(2 2)\n(39 (0 fluid none 1)(12 (5 1 2 1 1)))\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(caseFile->numCellZones, 1);
}

// ---- Declarations and dropped sections -----------------------------------------------------------------

TEST_F(ScanTest, DeclarationsWithZoneIdZeroMakeNoZone) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(10 (0 1 8 0 3))\n(12 (0 1 5 0))\n(13 (0 1 10 0))\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(messageTexts().empty());
    EXPECT_EQ(caseFile->numNodeZones, 0);
    EXPECT_EQ(caseFile->numCellZones, 0);
    EXPECT_EQ(caseFile->numFaceZones, 0);
    EXPECT_EQ(caseFile->totalNodes, 0);
}

TEST_F(ScanTest, DroppedAsciiSectionsArePassedWhole) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(
        "(2 2)\n"
        "(18 (1 3 5 6) (\n1 4\n2 5\n3 6\n))\n"
        "(33 (10 20 30))\n"
        "(40 (1 1 4 0) (\n0 1 0 1\n))\n"
        "(58 (1 2 1 2) (\n2 3 4\n1 5\n))\n"
        "(61 (1 2) (\n1 2\n3 4\n))\n"
        "(12 (9 1 4 1 3))\n",
        &ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(messageTexts().empty());
    ASSERT_EQ(caseFile->numCellZones, 1);
    EXPECT_EQ(caseFile->cellZones[0].zoneId, 9);
}

TEST_F(ScanTest, DroppedBinarySectionsArePassedWhole) {
    CaseBytes file;
    file.text("(2 2)\n").text(kMachineConfig);
    file.text("(2018 (1 3 5 6) (").i32s({1, 4, 2, 5, 3, 6}).endBinary(2018);
    file.text("(3033 (10 20 30))\nEnd of Binary Section   3033)\n");
    file.text("(2040 (1 1 4 0) (").i32s({0, 1, 0, 1}).endBinary(2040);
    file.text("(3058 (1 2 1 2) (").i32s({2, 3, 4, 1, 5}).endBinary(3058);
    file.text("(2061 (1 2) (").i32s({1, 2, 3, 4}).endBinary(2061);
    file.text("(12 (9 1 4 1 3))\n");
    bool ok = false;
    CaseFile* caseFile = scanBytes(file.bytes(), &ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(messageTexts().empty());
    ASSERT_EQ(caseFile->numCellZones, 1);
    EXPECT_EQ(caseFile->cellZones[0].zoneId, 9);
}

TEST_F(ScanTest, DroppedSectionWithABrokenHeaderFailsTheScanSilently) {
    bool ok = true;
    scanBytes("(2 2)\n(18 (1 x))\n(12 (9 1 4 1 3))\n", &ok);
    EXPECT_FALSE(ok);
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(ScanTest, PartitionSectionNeverFailsByItsFormat) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 2)\n(40 (garbage (more) here))\n(12 (9 1 4 1 3))\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(messageTexts().empty());
    EXPECT_EQ(caseFile->numCellZones, 1);
}

TEST_F(ScanTest, StrayTextBeforeAClosingParenthesisWarns) {
    bool ok = true;
    scanBytes("(2 2)\n(33 (1 2 3) x)\n(12 (9 1 4 1 3))\n", &ok);
    EXPECT_FALSE(ok);
    ASSERT_EQ(minihost::messages().size(), 1u);
    EXPECT_EQ(minihost::messages()[0].kind, "warning");
    EXPECT_EQ(
        minihost::messages()[0].text,
        "Parse error while reading Grid Size section (section 33). Expected ')', found 'x'. Attempting to "
        "continue...");
}

TEST_F(ScanTest, StrayTextBeforeAClosingParenthesisIsAcceptedInBatchMode) {
    minihost::setBatchMode(true);
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 2)\n(33 (1 2 3) x)\n(12 (9 1 4 1 3))\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(messageTexts().empty());
    EXPECT_EQ(caseFile->numCellZones, 1);
}

TEST_F(ScanTest, BinaryEndMarkerFarBehindTheDataFailsSilently) {
    CaseBytes file;
    file.text("(2 2)\n").text(kMachineConfig);
    file.text("(2018 (1 2 5 6) (").i32s({1, 4, 2, 5}).text(std::string(150, ' ')).endBinary(2018);
    bool ok = true;
    scanBytes(file.bytes(), &ok);
    EXPECT_FALSE(ok);
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(ScanTest, UnbalancedParenthesisInAStringSkipsTooFar) {
    bool ok = false;
    // The '(' inside the string opens a level that the comment never closes:
    // the skip swallows the Cells section behind it, up to the lone ')'.
    CaseFile* caseFile =
        scanBytes("(1 \"h\")\n(0 \"open ( here\")\n(12 (5 1 2 1 1))\n)\n(12 (6 3 4 1 1))\n", &ok);
    EXPECT_TRUE(ok);
    ASSERT_EQ(caseFile->numCellZones, 1);
    EXPECT_EQ(caseFile->cellZones[0].zoneId, 6);
}

TEST_F(ScanTest, UnbalancedParenthesisInAStringSkipsTooLittle) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(1 \"h\")\n(0 \"close ) early\")\n(12 (5 1 2 1 1))\n", &ok);
    EXPECT_TRUE(ok);
    ASSERT_EQ(caseFile->numCellZones, 1);
    EXPECT_EQ(caseFile->cellZones[0].zoneId, 5);
}

// ---- Progress and deferred writers ------------------------------------------------------------------------

struct ProgressRecord {
    std::vector<std::string> begun;
    bool destroyed = false;
};

class FakeProgress : public zorvane::zorutilutil::TaskProgress {
  public:
    FakeProgress(ProgressRecord* record, bool answer) : record_(record), answer_(answer) {}
    ~FakeProgress() override { record_->destroyed = true; }
    std::unique_ptr<TaskProgress> createChildTask(int) override { return nullptr; }
    void setNumSteps(int) override {}
    bool begin(const std::string& text) override {
        record_->begun.push_back(text);
        return answer_;
    }
    bool end() override { return true; }
    bool setText(const std::string&) override { return true; }
    bool isInterrupted() const override { return !answer_; }

  private:
    ProgressRecord* record_;
    bool answer_;
};

TEST_F(ScanTest, ScanBeginsItsTaskAndDestroysTheProgress) {
    ProgressRecord record;
    CaseFile* caseFile = newCaseFile(writeFile("a.cas", "(2 3)\n"));
    EXPECT_TRUE(CaseFileScan(caseFile, false, std::make_unique<FakeProgress>(&record, true), nullptr));
    EXPECT_EQ(record.begun, texts({"Reading Fluent case file..."}));
    EXPECT_TRUE(record.destroyed);
    EXPECT_EQ(caseFile->numDimensions, 3);
}

TEST_F(ScanTest, RefusedProgressEndsTheScanAtOnce) {
    ProgressRecord record;
    CaseFile* caseFile = newCaseFile(writeFile("a.cas", "(2 3)\n"));
    EXPECT_FALSE(CaseFileScan(caseFile, false, std::make_unique<FakeProgress>(&record, false), nullptr));
    EXPECT_TRUE(record.destroyed);
    EXPECT_TRUE(messageTexts().empty());
    EXPECT_EQ(caseFile->numDimensions, 0);
}

class CountingWriter : public zorvane::dataio::DeferredMinMaxWriter {
  public:
    void setMinMax(double, double) override {}
};

class CountingFactory : public zorvane::dataio::DeferredMinMaxWriterFactory {
  public:
    ~CountingFactory() override {
        for (auto* writer : made) {
            writer->release();
        }
    }
    zorvane::dataio::DeferredMinMaxWriter* createDeferredMinMaxWriter() override {
        made.push_back(new CountingWriter());
        return made.back();
    }
    std::vector<zorvane::dataio::DeferredMinMaxWriter*> made;
};

TEST_F(ScanTest, FactoryGivesEachZoneOneWriterPerDimension) {
    CountingFactory factory;
    CaseFile* caseFile = newCaseFile(
        writeFile("a.cas",
                  "(2 3)\n(12 (5 1 2 1 2))\n(13 (6 1 2 3 3)(1 2 3 1 0 2 3 4 1 0))\n(10 (1 1 4 1 3)"
                  "(0 0 0 1 0 0 0 1 0 0 0 1))\n"));
    EXPECT_TRUE(CaseFileScan(caseFile, false, nullptr, &factory));
    ASSERT_EQ(factory.made.size(), 6u);
    ASSERT_NE(caseFile->cellZones[0].nodeMinMaxWriters, nullptr);
    ASSERT_NE(caseFile->faceZones[0].nodeMinMaxWriters, nullptr);
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(caseFile->cellZones[0].nodeMinMaxWriters[axis], factory.made[axis]);
        EXPECT_EQ(caseFile->faceZones[0].nodeMinMaxWriters[axis], factory.made[3 + axis]);
    }
}

TEST_F(ScanTest, WithoutFactoryZonesHaveNoWriters) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 3)\n(12 (5 1 2 1 2))\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(caseFile->cellZones[0].nodeMinMaxWriters, nullptr);
}

// ---- Tables, counting, lookups, zone types
// ---------------------------------------------------------------------

TEST_F(ScanTest, NewTableEntriesAreZeroFilled) {
    CaseFile* caseFile = newCaseFile("unused.cas");
    CellZone* first = nullptr;
    ASSERT_TRUE(CaseFileNewCellZone(caseFile, &first));
    first->zoneId = 4;
    CellZone* second = nullptr;
    ASSERT_TRUE(CaseFileNewCellZone(caseFile, &second));
    EXPECT_EQ(caseFile->numCellZones, 2);
    EXPECT_EQ(caseFile->cellZones[0].zoneId, 4);
    EXPECT_EQ(second->zoneId, 0);
    EXPECT_EQ(second->cellTypes, nullptr);
    FaceTree* tree = nullptr;
    ASSERT_TRUE(CaseFileNewFaceTree(caseFile, &tree, 8));
    ASSERT_NE(tree->children, nullptr);
    for (int k = 0; k < 8; ++k) {
        EXPECT_EQ(tree->children[k], 0);
    }
    ChildFace* child = nullptr;
    ASSERT_TRUE(CaseFileNewChildFace(caseFile, &child));
    EXPECT_EQ(child->pairs, nullptr);
    NodeZone* nodes = nullptr;
    ASSERT_TRUE(CaseFileNewNodeZone(caseFile, &nodes));
    FaceZone* faces = nullptr;
    ASSERT_TRUE(CaseFileNewFaceZone(caseFile, &faces));
    EXPECT_EQ(faces->nodeNumberMap, nullptr);
}

TEST_F(ScanTest, RestoredTablesAreAllocatedAtTheirCounts) {
    CaseFile* caseFile = newCaseFile("unused.cas");
    caseFile->numCellZones = 3;
    caseFile->numFaceZones = 2;
    caseFile->numChildFaces = 1;
    caseFile->numSpeciesNames = 2;
    allocCellZones(caseFile);
    allocFaceZones(caseFile);
    allocCaseFileChildFaces(caseFile);
    allocSpeciesNames(caseFile);
    ASSERT_NE(caseFile->cellZones, nullptr);
    EXPECT_EQ(caseFile->cellZones[2].zoneId, 0);
    ASSERT_NE(caseFile->faceZones, nullptr);
    EXPECT_EQ(caseFile->faceZones[1].faceCells, nullptr);
    ASSERT_NE(caseFile->childFaces, nullptr);
    ASSERT_NE(caseFile->speciesNames, nullptr);
    EXPECT_EQ(caseFile->speciesNames[1], nullptr);
}

const char* kZoneKinds =
    "(2 3)\n"
    "(12 (1 1 2 1 2))\n"
    "(12 (2 3 4 20 2))\n"                        // zone type 32: never listed
    "(12 (3 5 6 11 4))\n"                        // solid
    "(13 (4 1 2 2 3)(1 2 3 1 2 2 3 4 1 2))\n"    // interior
    "(13 (5 3 4 3 3)(1 2 3 1 0 2 3 4 2 0))\n"    // wall
    "(13 (6 5 6 1f 3)(1 2 3 1 0 2 3 4 2 0))\n"   // hanging-node parent
    "(13 (7 7 8 26 3)(1 2 3 1 0 2 3 4 2 0))\n"   // 38
    "(13 (8 9 a 3eb 3)(1 2 3 1 0 2 3 4 2 0))\n"  // 1003
    "(13 (9 b c 5 3)(1 2 3 1 0 2 3 4 2 0))\n";   // pressure outlet

TEST_F(ScanTest, CountZonesCountsWhatCanBeOffered) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(kZoneKinds, &ok);
    ASSERT_TRUE(ok);
    ASSERT_EQ(caseFile->numCellZones, 3);
    ASSERT_EQ(caseFile->numFaceZones, 6);
    EXPECT_EQ(CaseFileCountZones(caseFile, 0, nullptr), 4);
    EXPECT_EQ(CaseFileCountZones(caseFile, 1, nullptr), 2);
    EXPECT_EQ(CaseFileCountZones(caseFile, 2, nullptr), 2);
    EXPECT_EQ(CaseFileCountZones(caseFile, 3, nullptr), 4);
    ZorSet selection = ZorUtilSetAlloc(false);
    EXPECT_EQ(CaseFileCountZones(caseFile, 1, selection), 2);  // empty: no selection
    ASSERT_TRUE(ZorUtilSetAddMember(selection, 1, false));
    ASSERT_TRUE(ZorUtilSetAddMember(selection, 3, false));
    ASSERT_TRUE(ZorUtilSetAddMember(selection, 9, false));
    EXPECT_EQ(CaseFileCountZones(caseFile, 1, selection), 3);
    ZorUtilSetDealloc(&selection);
}

TEST_F(ScanTest, LookupsFindTheFirstZoneAndReportMisses) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(kZoneKinds, &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(CaseFileFindCellZone(caseFile, 3, true), &caseFile->cellZones[2]);
    EXPECT_EQ(CaseFileFindFaceZone(caseFile, 9, true), &caseFile->faceZones[5]);
    EXPECT_EQ(CaseFileFindFaceZoneOfFace(caseFile, 4, true), &caseFile->faceZones[1]);
    EXPECT_EQ(CaseFileCellZoneIndex(caseFile, 2), 1);
    EXPECT_EQ(CaseFileFaceZoneIndex(caseFile, 8), 4);
    EXPECT_TRUE(messageTexts().empty());
    EXPECT_EQ(CaseFileFindCellZone(caseFile, 4, false), nullptr);
    EXPECT_TRUE(messageTexts().empty());
    EXPECT_EQ(CaseFileFindCellZone(caseFile, 4, true), nullptr);
    EXPECT_EQ(CaseFileFindFaceZone(caseFile, 1, true), nullptr);
    EXPECT_EQ(CaseFileFindFaceZoneOfFace(caseFile, 13, true), nullptr);
    EXPECT_EQ(messageTexts(), texts({"Cell Zone ID = 4 (referenced in data file) does not exist.",
                                     "Face Zone ID = 1 (referenced in data file) does not exist.",
                                     "Face Zone for face = 13 (referenced in data file) does not exist."}));
}

TEST_F(ScanTest, CellZoneHostTypes) {
    CaseFile* caseFile = newCaseFile("unused.cas");
    CellZone zone{};
    const int32_t expected[][3] = {{1, 1, 6}, {2, 3, 7}, {3, 2, 6}, {4, 4, 7},
                                   {5, 4, 7}, {6, 4, 7}, {7, 7, 7}, {8, 255, 255}};
    for (const auto& row : expected) {
        zone.elementType = row[0];
        EXPECT_EQ(CellZoneGetZoneType(&zone, caseFile, false), row[1]) << "element type " << row[0];
        EXPECT_EQ(CellZoneGetZoneType(&zone, caseFile, true), row[2]) << "element type " << row[0];
    }
}

TEST_F(ScanTest, MixedCellZoneHostTypeFollowsItsFirstCell) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(
        "(2 2)\n(12 (1 1 3 1 0)(3 1 3))\n(12 (2 4 5 1 0)(1 3))\n(12 (3 6 7 1 0)(6 4))\n(12 (4 8 9 1 0)(0 "
        "4))\n",
        &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(CellZoneGetZoneType(&caseFile->cellZones[0], caseFile, false), 2);
    EXPECT_EQ(CellZoneGetZoneType(&caseFile->cellZones[1], caseFile, false), 2);
    EXPECT_EQ(CellZoneGetZoneType(&caseFile->cellZones[2], caseFile, false), 4);
    EXPECT_EQ(CellZoneGetZoneType(&caseFile->cellZones[3], caseFile, false), 4);
    EXPECT_EQ(CellZoneGetZoneType(&caseFile->cellZones[0], caseFile, true), 6);
    EXPECT_EQ(CellZoneGetZoneType(&caseFile->cellZones[2], caseFile, true), 7);
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(ScanTest, MixedCellZoneWithUnreadableFirstCellHasUnknownType) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 2)\n(12 (1 1 3 1 0)(3 1 3))\n", &ok);
    ASSERT_TRUE(ok);
    caseFile->cellZones[0].filePosition = -4;  // the seek fails: no message
    EXPECT_EQ(CellZoneGetZoneType(&caseFile->cellZones[0], caseFile, false), 255);
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(ScanTest, FaceZoneHostTypes) {
    FaceZone zone{};
    const int32_t expected[][3] = {{0, 2, 6}, {2, 5, 5},     {3, 1, 6},    {4, 2, 6},
                                   {5, 6, 6}, {1, 255, 255}, {6, 255, 255}};
    for (const auto& row : expected) {
        zone.faceType = row[0];
        EXPECT_EQ(FaceZoneGetZoneType(&zone, false), row[1]) << "face type " << row[0];
        EXPECT_EQ(FaceZoneGetZoneType(&zone, true), row[2]) << "face type " << row[0];
    }
}

TEST_F(ScanTest, DeleteFreesEverythingAndIsHarmlessTwice) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(std::string("(2 2)\n") + kVariables + kZoneKinds, &ok);
    ASSERT_TRUE(ok);
    CaseFileDelete(caseFile);
    EXPECT_EQ(caseFile->numCellZones, 0);
    EXPECT_EQ(caseFile->cellZones, nullptr);
    EXPECT_EQ(caseFile->speciesNames, nullptr);
    EXPECT_EQ(caseFile->mutex, nullptr);
    CaseFileDelete(caseFile);
}

}  // namespace
}  // namespace casefile_test
