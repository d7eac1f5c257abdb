// The add-on entry and the road of a load, driven through the host stand-in
// as the host would drive them: registration, instruction lists in both
// syntaxes, the choice of the solution, the scans, the messages the user sees
// and the state changes that purge solutions.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "addon/FluentSolution.h"
#include "addon/LoadDriver.h"
#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "host/ZorData.h"
#include "host/ZorUtil.h"
#include "instruction_test_support.h"
#include "minihost/MiniHost.h"

extern "C" void InitZorAddOn113(void);

namespace {

using addontest::Shown;
using addontest::shown;

const char* const kLoader = "Fluent Data Loader";

// A small valid 2D case file: a square of two triangles.
const char* const kSquareCase =
    "(0 \"a square of two triangles\")\n"
    "(1 \"test writer\")\n"
    "(2 2)\n"
    "(10 (0 1 4 0 2))\n"
    "(12 (0 1 2 0))\n"
    "(13 (0 1 5 0))\n"
    "(10 (1 1 4 1 2)(\n0 0\n1 0\n1 1\n0 1\n))\n"
    "(12 (2 1 2 1 1))\n"
    "(13 (3 1 1 2 2)(\n1 3 1 2\n))\n"
    "(13 (4 2 5 3 2)(\n1 2 1 0\n2 3 1 0\n3 4 2 0\n4 1 2 0\n))\n"
    "(39 (2 fluid square)())\n"
    "(39 (3 interior default-interior)())\n"
    "(39 (4 wall walls)())\n";

// Registers the add-on once for the whole test program, as the host does at start.
class AddOnEnvironment : public ::testing::Environment {
  public:
    void SetUp() override { minihost::initAddOn(InitZorAddOn113); }
};
const ::testing::Environment* const kEnvironment = ::testing::AddGlobalTestEnvironment(new AddOnEnvironment);

class DriverTest : public addontest::HostTest {
  protected:
    void SetUp() override {
        HostTest::SetUp();
        dropDataSet();
        DeleteAllSolutions();
        casePath_ = path("square.cas");
        addontest::writeFile(casePath_, kSquareCase);
    }
    void TearDown() override {
        minihost::setInterrupt(false);
        dropDataSet();
        DeleteAllSolutions();
        HostTest::TearDown();
    }

    // A load makes a data set: the next test starts without one, and without
    // the purge that its removal queues.
    static void dropDataSet() {
        minihost::deleteDataSet();
        minihost::runIdleQueue();
    }

    bool load(const std::vector<std::string>& instructions) {
        return minihost::invokeLoader(kLoader, instructions);
    }

    std::string casePath_;
};

TEST_F(DriverTest, RegistersTheLoaderWithItsNameExtensionsAndCallbacks) {
    minihost::LoaderRecord loader;
    ASSERT_TRUE(minihost::findLoader(kLoader, &loader));
    EXPECT_EQ(loader.fileNameExtensions, "*.cas *.*dat *.cas.gz *.*dat.gz *.xml");
    EXPECT_EQ(loader.callbackVersion, 1);
    EXPECT_EQ(loader.callback, &LoaderCallback);
    EXPECT_EQ(loader.selectedCallback, &LoaderSelectedCallback);
    EXPECT_TRUE(loader.allowMultiFileSelection);
    EXPECT_TRUE(loader.allowAdvancedOptions);
    EXPECT_TRUE(loader.allowAppending);
    bool registered = false;
    for (const minihost::AddOnRecord& addOn : minihost::addOns()) {
        if (addOn.name == kLoader) {
            registered = true;
            EXPECT_EQ(addOn.hostVersionNeeded, 100);
        }
    }
    EXPECT_TRUE(registered);
    EXPECT_GE(minihost::stateChangeCallbackCount(), 1u);
}

TEST_F(DriverTest, CaseOnlyLoadScansTheCaseAndLeavesTheListWithTheHost) {
    const std::vector<std::string> list = {"STANDARDSYNTAX", "1.0",        "FILENAME_CaseFile",
                                           casePath_,        "LoadOption", "CaseOnly"};
    ASSERT_TRUE(load(list));
    EXPECT_TRUE(shown().empty());
    ASSERT_EQ(SolutionTableCount, 1);
    const FluentSolution& solution = SolutionTable[0];
    ASSERT_EQ(solution.numCaseFiles, 1);
    const CaseFile& caseFile = solution.caseFiles[0];
    EXPECT_STREQ(caseFile.fileName, casePath_.c_str());
    EXPECT_EQ(caseFile.numDimensions, 2);
    // The first comment stands in for a header until the Header section replaces it.
    EXPECT_STREQ(caseFile.header, "test writer");
    ASSERT_EQ(caseFile.numCellZones, 1);
    EXPECT_STREQ(caseFile.cellZones[0].name, "square");
    ASSERT_EQ(caseFile.numFaceZones, 2);
    EXPECT_STREQ(caseFile.faceZones[1].name, "walls");
    EXPECT_EQ(caseFile.useCount, 0);  // retained for the load, released behind it

    // The list goes back to the host with the answer to the save question.
    const auto recorded = minihost::loaderInstructions();
    ASSERT_EQ(recorded.size(), 1u);
    EXPECT_EQ(recorded[0].loaderName, kLoader);
    std::vector<std::string> expected = list;
    expected.push_back("SaveUncompressedFiles");
    expected.push_back("No");
    EXPECT_EQ(recorded[0].instructions, expected);
}

TEST_F(DriverTest, OldSyntaxLoadsTheGridOnly) {
    ASSERT_TRUE(load({"-CaseFile", casePath_, "-LoadOption", "GridOnly"}));
    EXPECT_TRUE(shown().empty());
    ASSERT_EQ(SolutionTableCount, 1);
    EXPECT_EQ(SolutionTable[0].numCaseFiles, 1);
    EXPECT_EQ(SolutionTable[0].numDataFiles, 0);
}

TEST_F(DriverTest, ListWithAnEmptyFirstStringGoesToTheOldSyntax) {
    // An empty first string is no marker: the old parser reads ("", "STANDARDSYNTAX") as its first pair.
    EXPECT_FALSE(load({"", "STANDARDSYNTAX", "-CaseFile", casePath_}));
    EXPECT_EQ(shown(),
              (std::vector<Shown>{{"info", "Fluent data loader:\nUnrecognized parameter ''.\nIgnoring..."},
                                  {"error",
                                   "Invalid or missing setting for LoadOption in\nthe Fluent Data Loader "
                                   "instruction string."}}));
}

TEST_F(DriverTest, ListWithoutStringsGoesToTheOldSyntax) {
    EXPECT_FALSE(load(std::vector<std::string>{}));
    EXPECT_EQ(shown(),
              (std::vector<Shown>{{"error",
                                   "Invalid or missing setting for LoadOption in\nthe Fluent Data Loader "
                                   "instruction string."}}));
    EXPECT_EQ(SolutionTableCount, 0);
}

TEST_F(DriverTest, MarkerInSmallLettersSelectsTheStandardSyntax) {
    EXPECT_TRUE(load({"standardsyntax", "1.0", "FILENAME_CaseFile", casePath_, "LoadOption", "CaseOnly"}));
    EXPECT_TRUE(shown().empty());
}

TEST_F(DriverTest, AppendingWithoutADataSetIsAPlainLoad) {
    ASSERT_FALSE(ZorUtilDataSetIsAvailable());
    // A record whose data set is gone: a plain load purges it, an appending one would keep it.
    FluentSolution* stale = NewFluentSolution();
    ASSERT_NE(stale, nullptr);
    const uint32_t staleId = stale->solutionId;
    ASSERT_TRUE(load({"STANDARDSYNTAX", "1.0", "Append", "Yes", "FILENAME_CaseFile", casePath_, "LoadOption",
                      "CaseOnly"}));
    EXPECT_EQ(findSolution(staleId), nullptr);
    ASSERT_EQ(SolutionTableCount, 1);
    EXPECT_EQ(SolutionTable[0].numCaseFiles, 1);
}

TEST_F(DriverTest, LoadOnDemandNotAllowedRefusesTheLoad) {
    minihost::setLoadOnDemandAllowed(false);
    EXPECT_FALSE(load({"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", casePath_, "LoadOption", "CaseOnly"}));
    EXPECT_EQ(shown(), (std::vector<Shown>{
                           {"error",
                            "The Fluent loader requires that load-on-demand must be turned on.  Please allow "
                            "load-on-demand in your configuration file by removing the command '$!FileConfig "
                            "LoadOnDemand {Allow = FALSE}' or by setting 'Allow = TRUE'."}}));
    EXPECT_EQ(SolutionTableCount, 0);
}

TEST_F(DriverTest, FailedScanAddsTheErrorLoadingFileLineLast) {
    addontest::writeFile(casePath_, "");
    EXPECT_FALSE(load({"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", casePath_, "LoadOption", "CaseOnly"}));
    EXPECT_EQ(shown(), (std::vector<Shown>{{"error", "File '" + casePath_ +
                                                         "' does not appear to be a valid FLUENT .cas file."},
                                           {"error", "Error loading file " + casePath_}}));
    // A failed load keeps its record until a purge.
    EXPECT_EQ(SolutionTableCount, 1);
}

TEST_F(DriverTest, MissingCaseFileIsReportedWithItsName) {
    const std::string missing = path("missing.cas");
    EXPECT_FALSE(load({"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", missing, "LoadOption", "CaseOnly"}));
    EXPECT_EQ(shown(),
              (std::vector<Shown>{{"error", "Fluent data loader: Unable to open Case file\n" + missing + "."},
                                  {"error", "Error loading file " + missing}}));
}

TEST_F(DriverTest, InterruptedLoadShowsNoErrorText) {
    addontest::writeFile(casePath_, "");  // would fail with two messages if it were read
    minihost::setInterrupt(true);
    EXPECT_FALSE(load({"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", casePath_, "LoadOption", "CaseOnly"}));
    EXPECT_TRUE(shown().empty());
    EXPECT_EQ(SolutionTableCount, 0);
    EXPECT_FALSE(ZorUtilDataSetIsAvailable());
}

// A list whose FILELIST_Files names an XML file: the name goes into the solution.
std::vector<std::string> listWithParticleFile(const std::string& casePath, const std::string& xmlName) {
    return {"STANDARDSYNTAX", "1.0",        "FILENAME_CaseFile", casePath, "FILELIST_Files", "1",
            xmlName,          "LoadOption", "CaseOnly"};
}

TEST_F(DriverTest, ParticleFileNameOf261CharactersIsAccepted) {
    std::string name = "/" + std::string(256, 'p') + ".xml";
    ASSERT_EQ(name.size(), 261u);
    ASSERT_TRUE(load(listWithParticleFile(casePath_, name)));
    EXPECT_TRUE(shown().empty());
    ASSERT_EQ(SolutionTableCount, 1);
    EXPECT_EQ(std::string(SolutionTable[0].particleFileName), name);
}

TEST_F(DriverTest, ParticleFileNameOf262CharactersFailsWithNoMessage) {
    std::string name = "/" + std::string(257, 'p') + ".xml";
    ASSERT_EQ(name.size(), 262u);
    EXPECT_FALSE(load(listWithParticleFile(casePath_, name)));
    EXPECT_TRUE(shown().empty());
}

TEST_F(DriverTest, ReplacingLoadPurgesARecordWhoseDataSetIsGone) {
    ASSERT_TRUE(load({"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", casePath_, "LoadOption", "CaseOnly"}));
    ASSERT_EQ(SolutionTableCount, 1);
    const uint32_t firstId = SolutionTable[0].solutionId;
    // The first load's data set goes, so its record has no data set to live for.
    ASSERT_TRUE(ZorUtilDataSetIsAvailableByUniqueID(SolutionTable[0].datasetUniqueID));
    minihost::deleteDataSet();
    ASSERT_TRUE(load({"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", casePath_, "LoadOption", "CaseOnly"}));
    ASSERT_EQ(SolutionTableCount, 1);
    EXPECT_EQ(findSolution(firstId), nullptr);
    EXPECT_GT(SolutionTable[0].solutionId, firstId);
}

TEST_F(DriverTest, PreScanIsThrownAwayByALoadThatReplacesTheDataSet) {
    // A pre-scan: the last record holds the scanned case, and the flag says so.
    FluentSolution* preScan = NewFluentSolution();
    ASSERT_NE(preScan, nullptr);
    const uint32_t preScanId = preScan->solutionId;
    CaseFile* scanned = FluentSolutionNewCaseFile(preScan, casePath_.c_str());
    ASSERT_NE(scanned, nullptr);
    FilesArePreScanned = true;

    ASSERT_TRUE(load({"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", casePath_, "LoadOption", "CaseOnly"}));
    EXPECT_FALSE(FilesArePreScanned);
    // The pre-scan's record had no data set: purged. The file was scanned again into a new record.
    EXPECT_EQ(findSolution(preScanId), nullptr);
    ASSERT_EQ(SolutionTableCount, 1);
    ASSERT_EQ(SolutionTable[0].numCaseFiles, 1);
    EXPECT_EQ(SolutionTable[0].caseFiles[0].numCellZones, 1);
}

TEST_F(DriverTest, SelectedFilesWithoutAdvancedOptionsLoadAsAList) {
    ZorStringList files = minihost::makeStringList({path("nothing.txt")});
    minihost::LoaderRecord loader;
    ASSERT_TRUE(minihost::findLoader(kLoader, &loader));
    EXPECT_FALSE(loader.selectedCallback(files, false, false, 0));
    ZorUtilStringListDealloc(&files);
    // The list said MultipleCaseAndData: the file list was classified and refused.
    ASSERT_EQ(shown().size(), 1u);
    EXPECT_EQ(shown()[0].second, "Fluent data loader:\nUnable to determine the type of file " +
                                     path("nothing.txt") +
                                     ". For loading multiple files, each file must end in the suffix 'cas', "
                                     "'dat', 'cas.gz', 'dat.gz' or 'xml'.");
}

// ---- The solution table --------------------------------------------------------------

TEST_F(DriverTest, SolutionIdsAreNeverReused) {
    FluentSolution* a = NewFluentSolution();
    ASSERT_NE(a, nullptr);
    const uint32_t idA = a->solutionId;
    DeleteFluentSolution(0);
    FluentSolution* b = NewFluentSolution();
    ASSERT_NE(b, nullptr);
    EXPECT_GT(b->solutionId, idA);
    EXPECT_EQ(findSolution(idA), nullptr);
    EXPECT_EQ(findSolution(b->solutionId), b);
}

TEST_F(DriverTest, DataFileNameOf262CharactersIsRefusedButTheTableGrew) {
    FluentSolution* solution = NewFluentSolution();
    ASSERT_NE(solution, nullptr);
    ASSERT_NE(FluentSolutionNewDataFile(solution, "a.dat", false), nullptr);
    EXPECT_EQ(solution->numDataFiles, 1);
    const std::string longName(262, 'd');
    EXPECT_EQ(FluentSolutionNewDataFile(solution, longName.c_str(), false), nullptr);
    EXPECT_EQ(solution->numDataFiles, 1);
    EXPECT_STREQ(solution->dataFiles[0].fileName, "a.dat");
    const std::string longest(261, 'd');
    DataFile* last = FluentSolutionNewDataFile(solution, longest.c_str(), false);
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(solution->numDataFiles, 2);
    EXPECT_EQ(std::string(last->fileName), longest);
}

TEST_F(DriverTest, PurgePassesOverTheRecordThatSlidIntoAFreedPlace) {
    // Three records without data sets: the walk deletes the first, passes over
    // the second (now in place 0's successor slot), deletes the third.
    for (int i = 0; i < 3; ++i)
        ASSERT_NE(NewFluentSolution(), nullptr);
    const uint32_t second = SolutionTable[1].solutionId;
    PurgeUnusedSolutions();
    ASSERT_EQ(SolutionTableCount, 1);
    EXPECT_EQ(SolutionTable[0].solutionId, second);
    PurgeUnusedSolutions();
    EXPECT_EQ(SolutionTableCount, 0);
}

TEST_F(DriverTest, PurgeWaitsWhileADataSetIsBeingMade) {
    ASSERT_NE(NewFluentSolution(), nullptr);
    PurgeEnabled = false;
    PurgeUnusedSolutions();
    EXPECT_EQ(SolutionTableCount, 1);
    PurgeEnabled = true;
    PurgeUnusedSolutions();
    EXPECT_EQ(SolutionTableCount, 0);
}

// ---- State changes ---------------------------------------------------------------------

TEST_F(DriverTest, DataSetResetPurgesAtIdleTime) {
    ASSERT_NE(NewFluentSolution(), nullptr);
    const size_t queued = minihost::idleQueueSize();
    minihost::notifyStateChange(ZorStateChange_DataSetReset);
    minihost::notifyStateChange(ZorStateChange_NewTopFrame);
    // Deferred: the record stays until the host is idle, and one idle callback serves both.
    EXPECT_EQ(SolutionTableCount, 1);
    EXPECT_EQ(minihost::idleQueueSize(), queued + 1);
    minihost::runIdleQueue();
    EXPECT_EQ(SolutionTableCount, 0);
    EXPECT_EQ(PendingStateChanges, nullptr);
}

TEST_F(DriverTest, NewTopFrameAloneDoesNotPurge) {
    ASSERT_NE(NewFluentSolution(), nullptr);
    minihost::notifyStateChange(ZorStateChange_NewTopFrame);
    minihost::runIdleQueue();
    EXPECT_EQ(SolutionTableCount, 1);
    EXPECT_EQ(PendingStateChanges, nullptr);
}

TEST_F(DriverTest, NewLayoutDeletesEverySolutionAtOnce) {
    ASSERT_NE(NewFluentSolution(), nullptr);
    ASSERT_NE(NewFluentSolution(), nullptr);
    minihost::notifyStateChange(ZorStateChange_NewLayout);
    EXPECT_EQ(SolutionTableCount, 0);
}

}  // namespace
