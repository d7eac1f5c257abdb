// Auxiliary data of the data set and of boundary zones, solution times, and
// the strands that tie the same Fluent zone together over time steps.
#include <algorithm>

#include "addon/LoadDriver.h"
#include "addon/LoadInstructions.h"
#include "dataset/AuxData.h"
#include "host/TaskProgress.h"
#include "lod/LodTestSupport.h"
#include "lod/SmallCases.h"

namespace {

using namespace lodtest;

class AuxDataStrands : public LoadTest {};

// A data set of the given variables and as many line zones as asked.
void makeDataSet(const std::vector<std::string>& variables, int zones) {
    ZorStringList names = minihost::makeStringList(variables);
    ZorArgList args = ZorUtilArgListAlloc();
    ASSERT_TRUE(ZorUtilArgListAppendString(args, "DataSetTitle", "made by the test"));
    ASSERT_TRUE(ZorUtilArgListAppendStringList(args, "VarNames", names));
    ASSERT_TRUE(ZorUtilDataSetCreateX(args));
    ZorUtilArgListDealloc(&args);
    ZorUtilStringListDealloc(&names);
    for (int z = 0; z < zones; ++z)
        ASSERT_TRUE(ZorUtilDataSetAddZone(("zone " + std::to_string(z + 1)).c_str(), 2, 1, 1,
                                          ZorZoneType_FELineSeg, nullptr));
}

TEST_F(AuxDataStrands, DataSetItemsNameTheKnownQuantities) {
    makeDataSet(
        {"X", "Y", "Pressure", "X Velocity", "Y Velocity", "Temperature", "Density", "Laminar Viscosity",
         "Turbulent Viscosity", "Turbulent Kinetic Energy", "Turbulent Dissipation Rate", "pressure"},
        0);
    setDatasetAuxData();
    EXPECT_EQ(auxItem(0, "Common.VectorVarsAreVelocity"), "TRUE");
    EXPECT_EQ(auxItem(0, "Common.PressureVar"), "3");
    EXPECT_EQ(auxItem(0, "Common.UVar"), "4");
    EXPECT_EQ(auxItem(0, "Common.VVar"), "5");
    EXPECT_EQ(auxItem(0, "Common.WVar"), "");
    EXPECT_EQ(auxItem(0, "Common.TemperatureVar"), "6");
    EXPECT_EQ(auxItem(0, "Common.DensityVar"), "7");
    EXPECT_EQ(auxItem(0, "Common.ViscosityVar"), "8");
    EXPECT_EQ(auxItem(0, "Common.TurbulentDynamicViscosityVar"), "9");
    EXPECT_EQ(auxItem(0, "Common.TurbulentKineticEnergyVar"), "10");
    EXPECT_EQ(auxItem(0, "Common.TurbulentDissipationRateVar"), "11");
    EXPECT_EQ(auxItemCount(0), 10u);  // "pressure" in small letters is no known quantity
}

TEST_F(AuxDataStrands, DisabledVariableGetsNoItem) {
    makeDataSet({"X", "Y", "Pressure", "X Velocity", "Density"}, 0);
    ASSERT_TRUE(minihost::setVariableEnabled(3, false));
    setDatasetAuxData();
    EXPECT_EQ(auxItem(0, "Common.PressureVar"), "");
    EXPECT_EQ(auxItem(0, "Common.UVar"), "4");
    EXPECT_EQ(auxItem(0, "Common.DensityVar"), "5");
    EXPECT_EQ(auxItemCount(0), 3u);  // VectorVarsAreVelocity, UVar, DensityVar
}

TEST_F(AuxDataStrands, ZVelocityAndSwirlVelocityShareAnItemAndTheLaterVariableWins) {
    makeDataSet({"X", "Y", "Swirl Velocity", "Z Velocity"}, 0);
    setDatasetAuxData();
    EXPECT_EQ(auxItem(0, "Common.WVar"), "4");
    dropEverything();
    makeDataSet({"X", "Y", "Z Velocity", "Swirl Velocity"}, 0);
    setDatasetAuxData();
    EXPECT_EQ(auxItem(0, "Common.WVar"), "4");
    dropEverything();
    makeDataSet({"X", "Y", "Z Velocity", "Pressure"}, 0);
    setDatasetAuxData();
    EXPECT_EQ(auxItem(0, "Common.WVar"), "3");
}

TEST_F(AuxDataStrands, BoundaryZonesAreMarkedByTheKindOfTheirBoundary) {
    const std::vector<std::pair<int32_t, std::string>> kinds = {
        {3, "Wall"},     {4, "Inflow"},   {10, "Inflow"},  {20, "Inflow"},   {5, "Outflow"},
        {36, "Outflow"}, {7, "Symmetry"}, {9, "Pressure"}, {12, "Periodic"}, {37, ""},
        {2, ""},         {8, ""},         {1, ""},         {24, ""},         {38, ""},
    };
    makeDataSet({"X", "Y"}, static_cast<int>(kinds.size()));
    std::vector<FaceZone> zones(kinds.size() + 1);
    for (size_t i = 0; i < kinds.size(); ++i) {
        zones[i].boundaryType = kinds[i].first;
        zones[i].hostZoneNumber = static_cast<int32_t>(i + 1);
    }
    zones.back().boundaryType = 3;  // a wall that has no host zone
    CaseFile caseFile{};
    caseFile.faceZones = zones.data();
    caseFile.numFaceZones = static_cast<int32_t>(zones.size());
    setBoundaryAuxData(&caseFile);
    for (size_t i = 0; i < kinds.size(); ++i) {
        const ZorIndex zone = static_cast<ZorIndex>(i + 1);
        SCOPED_TRACE(kinds[i].first);
        EXPECT_EQ(auxItem(zone, "Common.BoundaryCondition"), kinds[i].second);
        EXPECT_EQ(auxItem(zone, "Common.IsBoundaryZone"), kinds[i].second.empty() ? "" : "TRUE");
        EXPECT_EQ(auxItemCount(zone), kinds[i].second.empty() ? 0u : 2u);
    }
}

TEST_F(AuxDataStrands, LoadedSquareCarriesItsItems) {
    const std::string casePath = write("square.cas", squareCase());
    const std::string dataPath = write("square.dat", squareData(dataSection(1, 2, 1, 1, 1, 2, "1\n2") +
                                                                dataSection(111, 2, 1, 1, 1, 2, "1\n2")));
    ASSERT_TRUE(loadPair(casePath, dataPath));
    EXPECT_EQ(auxItem(0, "Common.VectorVarsAreVelocity"), "TRUE");
    EXPECT_EQ(auxItem(0, "Common.PressureVar"), "3");
    EXPECT_EQ(auxItem(0, "Common.UVar"), "4");
    EXPECT_EQ(auxItem(kSquareWall, "Common.BoundaryCondition"), "Wall");
    EXPECT_EQ(auxItem(kSquareOutlet, "Common.BoundaryCondition"), "Outflow");
    EXPECT_EQ(auxItemCount(kSquareAxis), 0u);  // an axis is no boundary kind of the table
    EXPECT_EQ(auxItemCount(kSquareFluid), 0u);
}

TEST_F(AuxDataStrands, ZonesTakeTheFlowTimeOfTheDataFileAndTheHostHearsOfItOnce) {
    const std::string casePath = write("square.cas", squareCase());
    const std::string dataPath =
        write("square.dat", squareData(dataSection(1, 2, 1, 1, 1, 2, "1\n2"), 0.0, 2.25));
    ASSERT_TRUE(loadPair(casePath, dataPath));
    for (ZorIndex z = 1; z <= 4; ++z)
        EXPECT_EQ(ZorUtilZoneGetSolutionTime(z), 2.25);
    const std::vector<int32_t> notices = minihost::hostStateChanges();
    EXPECT_EQ(std::count(notices.begin(), notices.end(), ZorStateChange_SolutionTime), 1);

    dropEverything();
    minihost::resetRecords();
    ASSERT_TRUE(loadPair(casePath, dataPath, {"UnsteadyOption", "ApplyConstantTimeInterval"}));
    for (ZorIndex z = 1; z <= 4; ++z)
        EXPECT_EQ(ZorUtilZoneGetSolutionTime(z), 0.0);
    const std::vector<int32_t> none = minihost::hostStateChanges();
    EXPECT_EQ(std::count(none.begin(), none.end(), ZorStateChange_SolutionTime), 0);
}

TEST_F(AuxDataStrands, EachZoneOfAPlainLoadStartsAStrand) {
    ASSERT_TRUE(loadCase(write("square.cas", squareCase()), {"AssignStrandIDs", "Yes"}));
    for (ZorIndex z = 1; z <= 4; ++z)
        EXPECT_EQ(ZorUtilZoneGetStrandID(z), z);
}

// Scans and builds a further case of the latest solution, as a series does.
bool scanFurtherCase(const std::string& casePath, ZorSet zonesAdded, int32_t caseNumber, bool append,
                     bool addToExisting, int32_t strandBase, int32_t* strandId) {
    CaseFile* caseFile = nullptr;
    minihost::lockAddOn();
    const bool ok = ScanCaseFile(&caseFile, lastSolution(), casePath.c_str(), GridZones_CellsAndBoundaries,
                                 nullptr, zonesAdded, caseNumber, append, false, false, 0, true,
                                 addToExisting, strandBase, strandId, UnsteadyOption_ReadTimeFromDataFiles,
                                 0.0, false, zorvane::zorutilutil::createTaskProgressBar(2));
    minihost::unlockAddOn();
    return ok;
}

TEST_F(AuxDataStrands, SecondTimeStepOfTheSameCaseKeepsEachZonesStrandAndANewZoneStartsOne) {
    ASSERT_TRUE(loadCase(write("first.cas", squareCase()), {"AssignStrandIDs", "Yes"}));
    // The second case has one more boundary zone (zone 7, an inlet on face 5).
    std::string second = squareCase();
    second.replace(second.find("(13 (0 1 5 0))"), 14, "(13 (0 1 6 0))");
    second += "(13 (7 6 6 4 2)(\n4 1 2 0\n))\n";
    ZorSet zonesAdded = ZorUtilSetAlloc(true);
    for (ZorIndex z = 1; z <= 4; ++z)
        ZorUtilSetAddMember(zonesAdded, z, true);
    int32_t strandId = 4;
    ASSERT_TRUE(scanFurtherCase(write("second.cas", second), zonesAdded, 2, false, false, 0, &strandId));
    EXPECT_TRUE(shown().empty()) << testing::PrintToString(shown());
    ASSERT_EQ(ZorUtilDataSetGetNumZones(), 9);
    EXPECT_EQ(zoneName(9), "Pressure-Inlet Boundary Zone 7");
    const int32_t expected[9] = {1, 2, 3, 4, 1, 2, 3, 4, 9};
    for (ZorIndex z = 1; z <= 9; ++z)
        EXPECT_EQ(ZorUtilZoneGetStrandID(z), expected[z - 1]) << z;
    EXPECT_EQ(strandId, 9);
    EXPECT_EQ(ZorUtilSetGetMemberCount(zonesAdded), 9);
    ZorUtilSetDealloc(&zonesAdded);
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y"}));
}

TEST_F(AuxDataStrands, AppendedZonesCountFromTheStrandBaseOrContinueTheStrandsFromOne) {
    ASSERT_TRUE(loadCase(write("first.cas", squareCase()), {"AssignStrandIDs", "Yes"}));
    ZorSet zonesAdded = ZorUtilSetAlloc(true);
    ZorUtilSetAddMember(zonesAdded, 4, true);  // an appending load holds the old zone count
    int32_t strandId = 0;
    ASSERT_NE(NewFluentSolution(), nullptr);
    ASSERT_TRUE(
        scanFurtherCase(write("second.cas", squareCase()), zonesAdded, 1, true, false, 10, &strandId));
    for (ZorIndex z = 5; z <= 8; ++z)
        EXPECT_EQ(ZorUtilZoneGetStrandID(z), 10 + (z - 4)) << z;
    EXPECT_EQ(strandId, 14);

    strandId = 0;
    ASSERT_NE(NewFluentSolution(), nullptr);
    ASSERT_TRUE(scanFurtherCase(write("third.cas", squareCase()), zonesAdded, 1, true, true, 10, &strandId));
    for (ZorIndex z = 9; z <= 12; ++z)
        EXPECT_EQ(ZorUtilZoneGetStrandID(z), z - 8) << z;
    ZorUtilSetDealloc(&zonesAdded);
}

TEST_F(AuxDataStrands, LaterTimeStepOnTheSameGridCopiesTheZonesAndSharesOnlyTheCoordinates) {
    const std::string casePath = write("square.cas", squareCase());
    ASSERT_TRUE(loadPair(casePath,
                         write("first.dat", squareData(dataSection(1, 2, 1, 1, 1, 2, "1\n2"), 0.0, 0.5)),
                         {"AssignStrandIDs", "Yes"}));
    const std::string secondPath = write(
        "second.dat",
        squareData(dataSection(1, 2, 1, 1, 1, 2, "3\n4") + dataSection(19, 4, 1, 1, 2, 3, "2\n4"), 0.0, 1.5));
    DataFile* dataFile = nullptr;
    int32_t zoneOffset = 0;
    ZorSet zonesAdded = ZorUtilSetAlloc(true);
    minihost::lockAddOn();
    const bool ok =
        ScanDataFile(&dataFile, lastSolution(), secondPath.c_str(), lastCaseFile(),
                     GridZones_CellsAndBoundaries, LoadOption_CaseAndData, nullptr, zonesAdded, nullptr, true,
                     false, false, true, &zoneOffset, 1, false, 0, UnsteadyOption_ReadTimeFromDataFiles, 0.0,
                     false, nullptr, "", 2, false, zorvane::zorutilutil::createTaskProgressBar(2));
    minihost::unlockAddOn();
    ZorUtilSetDealloc(&zonesAdded);
    ASSERT_TRUE(ok) << testing::PrintToString(shown());
    EXPECT_EQ(zoneOffset, 4);
    ASSERT_EQ(ZorUtilDataSetGetNumZones(), 8);
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y", "Pressure", "Wall shear"}));
    for (ZorIndex z = 1; z <= 4; ++z) {
        SCOPED_TRACE(z);
        EXPECT_EQ(zoneName(z + 4), zoneName(z));
        EXPECT_EQ(ZorUtilZoneGetStrandID(z + 4), ZorUtilZoneGetStrandID(z));
        EXPECT_EQ(ZorUtilZoneGetSolutionTime(z), 0.5);
        EXPECT_EQ(ZorUtilZoneGetSolutionTime(z + 4), 1.5);
        EXPECT_TRUE(ZorUtilDataValueIsShared(z + 4, var("X")));
        EXPECT_FALSE(ZorUtilDataValueIsShared(z + 4, var("Pressure")));
        EXPECT_EQ(values(z + 4, var("Y")), values(z, var("Y")));
    }
    EXPECT_EQ(values(kSquareFluid, var("Pressure")), (std::vector<double>{1, 2}));
    EXPECT_EQ(values(4 + kSquareFluid, var("Pressure")), (std::vector<double>{3, 4}));
    EXPECT_EQ(values(4 + kSquareWall, var("Wall shear")), (std::vector<double>{-1, -2}));
    EXPECT_EQ(auxItem(4 + kSquareWall, "Common.BoundaryCondition"), "Wall");
    // The coordinates are read once for both steps.
    EXPECT_EQ(values(4 + kSquareFluid, var("X")), values(kSquareFluid, var("X")));
    EXPECT_EQ(minihost::valueStats(kSquareFluid, var("X")).loads, 1);
}

}  // namespace
