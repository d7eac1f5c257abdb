// Nodes sections: the header rules of the scan and the loading of all
// coordinates into one array.
#include <filesystem>

#include "CaseFileTestSupport.h"

namespace casefile_test {
namespace {

class NodesTest : public CaseFileTest {
  protected:
    // Loads the node positions as a load-on-demand callback does.
    bool load(CaseFile* caseFile) {
        ZorUtilThreadMutexLock(caseFile->mutex);
        bool ok = CaseFileLoadAllNodePositions(caseFile);
        ZorUtilThreadMutexUnlock(caseFile->mutex);
        return ok;
    }
    static std::vector<double> positions(const CaseFile* caseFile) {
        size_t n = static_cast<size_t>(caseFile->numLoadedNodes) * caseFile->numDimensions;
        return std::vector<double>(caseFile->nodePositions, caseFile->nodePositions + n);
    }
};

TEST_F(NodesTest, TwoDimensionalFileHasTwoValuesPerNode) {
    bool ok = false;
    CaseFile* caseFile =
        scanBytes("(2 2)\n(10 (0 1 3 0 2))\n(10 (1 1 3 1 2)(\n1.5 2\n3 4\n5 -6.25\n))\n", &ok);
    ASSERT_TRUE(ok);
    ASSERT_EQ(caseFile->numNodeZones, 1);
    EXPECT_EQ(caseFile->totalNodes, 3);
    EXPECT_EQ(caseFile->nodePositions, nullptr);
    ASSERT_TRUE(load(caseFile));
    EXPECT_EQ(caseFile->numLoadedNodes, 3);
    EXPECT_EQ(positions(caseFile), (std::vector<double>{1.5, 2, 3, 4, 5, -6.25}));
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(NodesTest, NodesAheadOfDimensionsWithFourFieldsAreRejected) {
    bool ok = true;
    CaseFile* caseFile = scanBytes("(10 (1 1 2 1)(0 0 0 1 1 1))\n(2 3)\n", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(),
              texts({"Unknown number of dimensions while reading Nodes section (Section 10)."}));
    EXPECT_EQ(caseFile->numNodeZones, 0);
}

TEST_F(NodesTest, FiveFieldHeaderAheadOfDimensionsSetsThem) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(10 (1 1 2 1 3)(0 0 0 1 1 1))\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(caseFile->numDimensions, 3);
    ASSERT_TRUE(load(caseFile));
    EXPECT_EQ(positions(caseFile), (std::vector<double>{0, 0, 0, 1, 1, 1}));
}

TEST_F(NodesTest, BadDimensionsInTheHeader) {
    bool ok = true;
    scanBytes("(10 (1 1 2 1 4)(0 0 0 1 1 1 2 2))\n", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(),
              texts({"Bad number of dimensions (4) while reading Nodes section (Section 10)."}));
}

TEST_F(NodesTest, HeaderWithTooFewFields) {
    bool ok = true;
    scanBytes("(2 3)\n(10 (1 1 x))\n", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(), texts({"Parse error while reading Nodes section (section 10)."}));
}

TEST_F(NodesTest, BodyWithoutOpeningParenthesis) {
    bool ok = true;
    scanBytes("(2 3)\n(10 (1 1 2 1 3)", &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(messageTexts(),
              texts({"Opening parenthesis not found while reading Nodes section (Section 10)."}));
}

TEST_F(NodesTest, DeclarationReadsItsCountButMakesNoZone) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(10 (0 1 abc 0 3))\n", &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(caseFile->numNodeZones, 0);
    EXPECT_EQ(caseFile->numDimensions, 3);
    EXPECT_TRUE(messageTexts().empty());
}

// The one-shot warning belongs to the process: each of these runs in a child
// process of its own, so that the order of tests does not matter.
const char* kMismatchedNodes = "(2 3)\n(10 (1 1 2 1 2)(0 0 0 1 1 1))\n(10 (2 3 3 1 2)(7 8 9))\n";

TEST_F(NodesTest, SectionOfAnotherDimensionWarnsOnceInTheProcess) {
    EXPECT_EXIT(
        {
            bool ok = false;
            CaseFile* caseFile = scanBytes(kMismatchedNodes, &ok);
            bool again = false;
            scanBytes(kMismatchedNodes, &again, false, "again.cas");
            std::vector<minihost::Message> shown = minihost::messages();
            bool good =
                ok && again && shown.size() == 1 && shown[0].kind == "warning" &&
                shown[0].text ==
                    "Number of dimensions (2) in Node section (Section 10) of Fluent Case file does not "
                    "agree with number of dimensions previously read (3). Processing will continue." &&
                caseFile->numDimensions == 3 && load(caseFile) && caseFile->numLoadedNodes == 3 &&
                caseFile->nodePositions[3] == 1.0 && caseFile->nodePositions[8] == 9.0;
            fprintf(stderr, "%s\n", good ? "one warning" : "wrong");
            exit(good ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "one warning");
}

TEST_F(NodesTest, SectionOfAnotherDimensionInBatchModeUsesUpTheWarning) {
    EXPECT_EXIT(
        {
            minihost::setBatchMode(true);
            bool ok = false;
            scanBytes(kMismatchedNodes, &ok);
            minihost::setBatchMode(false);
            bool again = false;
            scanBytes(kMismatchedNodes, &again, false, "again.cas");
            bool good = ok && again && minihost::messages().empty();
            fprintf(stderr, "%s\n", good ? "silent" : "wrong");
            exit(good ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "silent");
}

TEST_F(NodesTest, BinarySingleAndDoublePrecisionAreWidenedAndPlaced) {
    CaseBytes file;
    file.text("(2 3)\n").text(kMachineConfig);
    file.text("(3010 (2 3 4 1 3)\n(").f64(7.25).f64(-8).f64(9).f64(10).f64(11).f64(12.5).endBinary(3010);
    file.text("(2010 (1 1 2 1 3)\n(").f32(1.5f).f32(2).f32(3).f32(4).f32(5).f32(6.75f).endBinary(2010);
    bool ok = false;
    CaseFile* caseFile = scanBytes(file.bytes(), &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(caseFile->totalNodes, 4);
    ASSERT_TRUE(load(caseFile));
    EXPECT_EQ(positions(caseFile), (std::vector<double>{1.5, 2, 3, 4, 5, 6.75, 7.25, -8, 9, 10, 11, 12.5}));
}

TEST_F(NodesTest, BigEndianBinaryNodes) {
    CaseBytes file;
    file.bigEndian(true);
    file.text("(2 2)\n").text(kMachineConfigBigEndian);
    file.text("(3010 (1 1 2 1 2)\n(").f64(1.25).f64(-2).f64(3).f64(4.5).endBinary(3010);
    bool ok = false;
    CaseFile* caseFile = scanBytes(file.bytes(), &ok);
    ASSERT_TRUE(ok);
    ASSERT_TRUE(load(caseFile));
    EXPECT_EQ(positions(caseFile), (std::vector<double>{1.25, -2, 3, 4.5}));
}

TEST_F(NodesTest, ZeroInTheNonIeeeFormatIsANumberOverflow) {
    CaseBytes file;
    file.text("(2 2)\n(4 (60 0 1 1 2 4 4 4 8 4 4))\n");
    file.text("(3010 (1 1 1 1 2)\n(").text(std::string(24, '\0')).endBinary(3010);
    bool ok = false;
    CaseFile* caseFile = scanBytes(file.bytes(), &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(caseFile->machineConfig.floatFormat, 1);
    EXPECT_FALSE(load(caseFile));
    EXPECT_EQ(messageTexts(), texts({"Number overflow while reading Nodes section (section 3010)."}));
    EXPECT_EQ(caseFile->nodePositions, nullptr);
}

TEST_F(NodesTest, GapsStayZeroAndTheLastOverlappingZoneWins) {
    bool ok = false;
    CaseFile* caseFile = scanBytes(
        "(2 2)\n(10 (3 5 5 1 2)(50 51))\n(10 (1 1 3 1 2)(1 2 3 4 5 6))\n(10 (2 2 3 1 2)(20 21 30 31))\n",
        &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(caseFile->totalNodes, 5);
    ASSERT_TRUE(load(caseFile));
    EXPECT_EQ(positions(caseFile), (std::vector<double>{1, 2, 20, 21, 30, 31, 0, 0, 50, 51}));
}

TEST_F(NodesTest, AsciiBodyWithAnExtraNumberFailsAtItsClose) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 2)\n(10 (1 1 2 1 2)(1 2 3 4 7))\n", &ok);
    ASSERT_TRUE(ok);
    EXPECT_FALSE(load(caseFile));
    EXPECT_EQ(caseFile->nodePositions, nullptr);
    ASSERT_EQ(minihost::messages().size(), 1u);
    EXPECT_EQ(minihost::messages()[0].kind, "warning");
    EXPECT_EQ(minihost::messages()[0].text,
              "Parse error while reading Nodes section (section 10). Expected ')', found '7'. Attempting to "
              "continue...");
}

TEST_F(NodesTest, AsciiBodyWithAnExtraNumberLoadsInBatchMode) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 2)\n(10 (1 1 2 1 2)(1 2 3 4 7))\n", &ok);
    ASSERT_TRUE(ok);
    minihost::setBatchMode(true);
    EXPECT_TRUE(load(caseFile));
    EXPECT_TRUE(messageTexts().empty());
    EXPECT_EQ(positions(caseFile), (std::vector<double>{1, 2, 3, 4}));
}

TEST_F(NodesTest, AsciiBodyCutAtItsEndFailsAlsoInBatchMode) {
    bool ok = false;
    std::string text = "(2 2)\n(10 (1 1 2 1 2)(1 2 3 4 ))\n";
    CaseFile* caseFile = scanBytes(text, &ok);
    ASSERT_TRUE(ok);
    std::filesystem::resize_file(caseFile->fileName, text.find("4 ") + 1);
    minihost::setBatchMode(true);
    EXPECT_FALSE(load(caseFile));
    EXPECT_EQ(messageTexts(), texts({"End-of-file while reading Nodes section (section 10)."}));
}

TEST_F(NodesTest, AsciiBodyWithTooFewNumbers) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 2)\n(10 (1 1 3 1 2)(1.0 2.0 3.0 4.0 5.0))\n", &ok);
    ASSERT_TRUE(ok);
    EXPECT_FALSE(load(caseFile));
    EXPECT_EQ(messageTexts(), texts({"Parse error while reading Nodes section (section 10)."}));
    EXPECT_EQ(caseFile->nodePositions, nullptr);
}

TEST_F(NodesTest, FailedSeekStopsTheLoad) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 2)\n(10 (1 1 2 1 2)(1 2 3 4))\n", &ok);
    ASSERT_TRUE(ok);
    caseFile->nodeZones[0].filePosition = -1;
    EXPECT_FALSE(load(caseFile));
    EXPECT_EQ(messageTexts(), texts({"Error setting file position while reading node positions."}));
    EXPECT_EQ(caseFile->nodePositions, nullptr);
}

TEST_F(NodesTest, FileGoneAtLoadTime) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 2)\n(10 (1 1 2 1 2)(1 2 3 4))\n", &ok);
    ASSERT_TRUE(ok);
    std::filesystem::remove(caseFile->fileName);
    EXPECT_FALSE(load(caseFile));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"Fluent data loader: Unable to open Case file\n" +
                                                       std::string(caseFile->fileName) + "."});
}

TEST_F(NodesTest, ReleaseFreesThePositionsAndTheyLoadAgain) {
    bool ok = false;
    CaseFile* caseFile = scanBytes("(2 2)\n(10 (1 1 2 1 2)(1 2 3 4))\n", &ok);
    ASSERT_TRUE(ok);
    {
        CaseFileUse use(caseFile);
        ASSERT_TRUE(CaseFileLoadAllNodePositions(caseFile));
        CaseFileRetain(caseFile);  // a second user
        CaseFileRelease(caseFile);
        EXPECT_NE(caseFile->nodePositions, nullptr);
    }
    EXPECT_EQ(caseFile->useCount, 0);
    EXPECT_EQ(caseFile->nodePositions, nullptr);
    {
        CaseFileUse use(caseFile);
        ASSERT_TRUE(CaseFileLoadAllNodePositions(caseFile));
        EXPECT_EQ(positions(caseFile), (std::vector<double>{1, 2, 3, 4}));
        CaseFileFreeNodePositions(caseFile);
        EXPECT_EQ(caseFile->nodePositions, nullptr);
    }
}

}  // namespace
}  // namespace casefile_test
