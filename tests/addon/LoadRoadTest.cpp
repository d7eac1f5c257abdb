// The road of a load to its end: a case alone and a pair of case and data
// file end in a data set that the host is told about; loads that need what
// this version does not build end with a message that says so.
#include <algorithm>

#include "lod/LodTestSupport.h"
#include "lod/SmallCases.h"
#include "tools/fluentgen/FluentGen.h"

namespace {

using namespace lodtest;

class LoadRoad : public LoadTest {
  protected:
    void SetUp() override {
        LoadTest::SetUp();
        casePath_ = write("square.cas", squareCase());
        dataPath_ = write("square.dat", squareData(dataSection(1, 2, 1, 1, 1, 2, "1\n2") +
                                                   dataSection(111, 2, 1, 1, 1, 2, "3\n4")));
    }
    // A refused load: its message, then nothing made.
    void expectRefused(const std::vector<std::string>& instructions, const std::string& message) {
        minihost::resetRecords();
        EXPECT_FALSE(minihost::invokeLoader("Fluent Data Loader", instructions));
        EXPECT_EQ(shown(), (std::vector<Shown>{{"error", message}}));
        EXPECT_FALSE(ZorUtilDataSetIsAvailable());
        EXPECT_EQ(SolutionTableCount, 0);
    }
    std::string casePath_, dataPath_;
};

TEST_F(LoadRoad, CaseAndDataEndInADataSetThatTheHostIsToldAbout) {
    ASSERT_TRUE(loadPair(casePath_, dataPath_));
    EXPECT_TRUE(shown().empty());
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y", "Pressure", "X Velocity"}));
    EXPECT_EQ(ZorUtilDataSetGetNumZones(), 4);
    const auto changes = minihost::stateChangesReported();
    ASSERT_EQ(changes.size(), 2u);
    EXPECT_EQ(changes[0].code, ZorStateChange_VarsAdded);
    EXPECT_EQ(changes[0].members, (std::vector<ZorIndex>{1, 2, 3, 4}));
    EXPECT_EQ(changes[1].code, ZorStateChange_ZonesAdded);
    EXPECT_EQ(changes[1].members, (std::vector<ZorIndex>{1, 2, 3, 4}));
    EXPECT_EQ(ZorUtilFrameGetPlotType(), ZorPlotType_Cartesian2D);
    EXPECT_EQ(auxItem(0, "Common.PressureVar"), "3");
    // The case's bulk arrays were kept only while the zones were made.
    const CaseFile* caseFile = lastCaseFile();
    EXPECT_EQ(caseFile->useCount, 0);
    EXPECT_EQ(caseFile->faceZones[0].faceCells, nullptr);
    EXPECT_EQ(caseFile->cellZones[0].newToOldNodes, nullptr);
    EXPECT_EQ(minihost::dataLoadDepth(), 0);
    // The instructions stay with the host, so that a layout repeats the load.
    const auto left = minihost::loaderInstructions();
    ASSERT_EQ(left.size(), 1u);
    EXPECT_EQ(left[0].instructions[3], casePath_);
    EXPECT_EQ(left[0].instructions[5], dataPath_);
}

TEST_F(LoadRoad, AppendingReportsOnlyTheNewZonesAndVariables) {
    ASSERT_TRUE(loadCase(casePath_));
    minihost::resetRecords();
    ASSERT_TRUE(loadPair(casePath_, dataPath_, {"Append", "Yes"}));
    const auto changes = minihost::stateChangesReported();
    ASSERT_EQ(changes.size(), 2u);
    EXPECT_EQ(changes[0].members, (std::vector<ZorIndex>{3, 4}));
    EXPECT_EQ(changes[1].members, (std::vector<ZorIndex>{5, 6, 7, 8}));
}

TEST_F(LoadRoad, ReplacingLoadKeepsTheSolutionOfTheDataSetItReplacesUntilThePurge) {
    ASSERT_TRUE(loadPair(casePath_, dataPath_));
    const uint32_t first = lastSolution()->solutionId;
    ASSERT_TRUE(loadPair(casePath_, dataPath_));
    // The first data set lived when the second load began: its record stays until the next purge.
    ASSERT_EQ(SolutionTableCount, 2);
    EXPECT_EQ(values(kSquareFluid, var("Pressure")), (std::vector<double>{1, 2}));
    minihost::runIdleQueue();  // the replaced data set's state change purges its record
    EXPECT_EQ(findSolution(first), nullptr);
    EXPECT_EQ(SolutionTableCount, 1);
    EXPECT_EQ(values(kSquareFluid, var("X Velocity")), (std::vector<double>{3, 4}));
}

TEST_F(LoadRoad, LoadsThatNeedWhatThisVersionDoesNotBuildEndWithAMessage) {
    expectRefused({"STANDARDSYNTAX", "1.0", "FILENAME_DataFile", dataPath_, "LoadOption", "ResidualsOnly"},
                  "Loading residuals is not available in this version of the Fluent loader.");
    expectRefused({"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", casePath_, "FILENAME_DataFile", dataPath_,
                   "LoadOption", "CaseAndData", "IncludeParticleData", "Yes"},
                  "Loading particle data is not available in this version of the Fluent loader.");
    expectRefused(
        {"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", casePath_, "FILENAME_DataFile", dataPath_,
         "LoadOption", "CaseAndData", "AverageToNodes", "Yes"},
        "Averaging cell-centred values to nodes is not available in this version of the Fluent loader.");
    // The old syntax averages to nodes.
    expectRefused(
        {"-CaseFile", casePath_, "-DataFile", dataPath_, "-LoadOption", "GridAndSolution"},
        "Averaging cell-centred values to nodes is not available in this version of the Fluent loader.");
    expectRefused(
        {"STANDARDSYNTAX", "1.0", "FILELIST_Files", "2", casePath_, dataPath_, "LoadOption",
         "MultipleCaseAndData"},
        "Loading a list of files as a series is not available in this version of the Fluent loader.");
    // A case alone needs no averaging.
    EXPECT_TRUE(loadCase(casePath_, {"AverageToNodes", "Yes"}));
    EXPECT_TRUE(loadCase(casePath_, {"IncludeParticleData", "No"}));
}

TEST_F(LoadRoad, ParticleSectionsOfADataFileAreLeftAloneUnlessASelectionMayNameThem) {
    fluentgen::Spec spec;
    spec.mesh = fluentgen::MeshKind::Quad;
    spec.cells = {2, 2, 1};
    spec.fields = fluentgen::standardFields(2, 2);
    spec.particles.push_back(fluentgen::ParticleSpec{});
    const fluentgen::WrittenFiles files = fluentgen::writeFiles(spec, dir_, "particles");
    ASSERT_TRUE(loadPair(files.caseFiles[0], files.dataFiles[0]));
    EXPECT_TRUE(shown().empty()) << testing::PrintToString(shown());
    ASSERT_EQ(lastDataFile()->numParticles, 1);
    dropEverything();

    // A zone selection may name particle zones, which this version does not make.
    EXPECT_FALSE(
        loadPair(files.caseFiles[0], files.dataFiles[0], {"GridZones", "SelectedZones", "ZoneList", "1"}));
    EXPECT_EQ(shown(),
              (std::vector<Shown>{
                  {"error", "Loading particle data is not available in this version of the Fluent loader."},
                  {"error", "Error loading file " + files.dataFiles[0]}}));
}

}  // namespace
