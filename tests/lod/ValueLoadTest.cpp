// Coordinates and solution variables loaded on demand: the use count of the
// case, the life of field values, and the treatment of means, root mean
// squares and wall fluxes.
#include <cmath>
#include <cstdio>

#include "lod/LodTestSupport.h"
#include "lod/SmallCases.h"
#include "lod/ValueClientData.h"

namespace {

using namespace lodtest;

class ValueLoad : public LoadTest {
  protected:
    // Loads the square with a data file of these sections.
    void loadSquare(const std::string& sections, double deltaTimeSampled = 0.0,
                    const std::string& variables = "") {
        casePath_ = write("square.cas", squareCase(variables));
        dataPath_ = write("square.dat", squareData(sections, deltaTimeSampled));
        ASSERT_TRUE(loadPair(casePath_, dataPath_)) << testing::PrintToString(shown());
        ASSERT_TRUE(shown().empty()) << testing::PrintToString(shown());
    }
    DataField* field(int fieldId) {
        DataFile* dataFile = lastDataFile();
        for (int32_t i = 0; i < dataFile->numDataFields; ++i) {
            if (dataFile->dataFields[i].fieldId == fieldId)
                return &dataFile->dataFields[i];
        }
        ADD_FAILURE() << "no field " << fieldId;
        return nullptr;
    }

    std::string casePath_, dataPath_;
};

TEST_F(ValueLoad, CoordinatesOfEachZoneAreItsOwnNodesInRisingGlobalOrder) {
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    EXPECT_EQ(values(kSquareFluid, var("X")), (std::vector<double>{0, 2, 2, 0}));
    EXPECT_EQ(values(kSquareFluid, var("Y")), (std::vector<double>{0, 0, 2, 2}));
    EXPECT_EQ(values(kSquareWall, var("X")), (std::vector<double>{0, 2, 2}));
    EXPECT_EQ(values(kSquareWall, var("Y")), (std::vector<double>{0, 0, 2}));
    EXPECT_EQ(values(kSquareAxis, var("X")), (std::vector<double>{2, 0}));
    EXPECT_EQ(values(kSquareOutlet, var("Y")), (std::vector<double>{0, 2}));
    EXPECT_EQ(var("Z"), 0);  // a plane case has no z
    EXPECT_TRUE(shown().empty());
}

TEST_F(ValueLoad, AfterTheLastUnloadTheArraysAreGoneAndTheNextLoadReadsTheFileAgain) {
    const std::string casePath = write("square.cas", squareCase());
    ASSERT_TRUE(loadCase(casePath));
    CaseFile* caseFile = lastCaseFile();
    EXPECT_EQ(caseFile->useCount, 0);
    EXPECT_EQ(caseFile->nodePositions, nullptr);  // the zones were made, nothing bulk was kept

    EXPECT_EQ(values(kSquareFluid, var("X")), (std::vector<double>{0, 2, 2, 0}));
    EXPECT_EQ(caseFile->useCount, 1);
    EXPECT_NE(caseFile->nodePositions, nullptr);
    EXPECT_NE(caseFile->cellZones[0].newToOldNodes, nullptr);

    ASSERT_TRUE(minihost::unloadValues(kSquareFluid, var("X")));
    EXPECT_EQ(caseFile->useCount, 0);
    EXPECT_EQ(caseFile->nodePositions, nullptr);
    EXPECT_EQ(caseFile->cellZones[0].newToOldNodes, nullptr);
    EXPECT_EQ(caseFile->faceZones[0].faceCells, nullptr);

    // The same bytes with other digits: only a new read can see them.
    std::string moved = squareCase();
    moved.replace(moved.find("0 0\n2 0\n2 2\n0 2"), 15, "0 0\n3 0\n3 2\n0 2");
    write("square.cas", moved);
    EXPECT_EQ(values(kSquareFluid, var("X")), (std::vector<double>{0, 3, 3, 0}));
    EXPECT_EQ(caseFile->useCount, 1);
    EXPECT_EQ(minihost::valueStats(kSquareFluid, var("X")).loads, 2);
}

TEST_F(ValueLoad, UnloadingOneOfTwoLoadedItemsFreesNothing) {
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    CaseFile* caseFile = lastCaseFile();
    values(kSquareFluid, var("X"));
    values(kSquareWall, var("Y"));
    EXPECT_EQ(caseFile->useCount, 2);
    ASSERT_TRUE(minihost::unloadValues(kSquareFluid, var("X")));
    EXPECT_EQ(caseFile->useCount, 1);
    EXPECT_NE(caseFile->nodePositions, nullptr);
    EXPECT_NE(caseFile->faceZones[1].zoneNodes, nullptr);
}

TEST_F(ValueLoad, CleanupOfALoadedItemGivesItsUseBack) {
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    CaseFile* caseFile = lastCaseFile();
    values(kSquareFluid, var("X"));
    values(kSquareFluid, var("Y"));
    ASSERT_EQ(caseFile->useCount, 2);
    const int cleanupsBefore = minihost::cleanupCount();
    minihost::deleteDataSet();
    // Two coordinates and a node map in each of four zones.
    EXPECT_EQ(minihost::cleanupCount() - cleanupsBefore, 4 * 3);
    ASSERT_EQ(SolutionTableCount, 1);  // the purge waits for idle time
    EXPECT_EQ(caseFile->useCount, 0);
    EXPECT_EQ(caseFile->nodePositions, nullptr);
}

TEST_F(ValueLoad, CleanupAfterTheSolutionTableWasEmptiedFreesTheRecordWithoutTouchingTheCase) {
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    values(kSquareFluid, var("X"));
    DeleteAllSolutions();
    const int cleanupsBefore = minihost::cleanupCount();
    minihost::deleteDataSet();  // the case is gone; a touch of it would be a use after free
    EXPECT_EQ(minihost::cleanupCount() - cleanupsBefore, 4 * 3);
    EXPECT_TRUE(shown().empty());
}

TEST_F(ValueLoad, FailedLoadLeavesTheUseCountAsItWas) {
    loadSquare(dataSection(1, 2, 1, 1, 1, 2, "10\n20"));
    CaseFile* caseFile = lastCaseFile();
    values(kSquareFluid, var("X"));
    ASSERT_EQ(caseFile->useCount, 1);
    ASSERT_EQ(std::remove(dataPath_.c_str()), 0);
    EXPECT_TRUE(values(kSquareFluid, var("Pressure")).empty());
    EXPECT_EQ(shown(), (std::vector<Shown>{{"error", "Error opening case file '" + dataPath_ + "'"}}));
    EXPECT_EQ(caseFile->useCount, 1);
    EXPECT_EQ(field(1)->loadedComponents, 0);
    EXPECT_EQ(field(1)->values, nullptr);
    EXPECT_EQ(minihost::valueStats(kSquareFluid, var("Pressure")).failedLoads, 1);
}

TEST_F(ValueLoad, OneComponentFieldIsFreedAsSoonAsItIsLoadedAndTheNextLoadReadsTheFile) {
    loadSquare(dataSection(1, 2, 1, 1, 1, 2, "10\n20"));
    CaseFile* caseFile = lastCaseFile();
    EXPECT_EQ(values(kSquareFluid, var("Pressure")), (std::vector<double>{10, 20}));
    EXPECT_EQ(field(1)->values, nullptr);
    EXPECT_EQ(field(1)->loadedComponents, 1);
    EXPECT_EQ(caseFile->useCount, 1);

    ASSERT_TRUE(minihost::unloadValues(kSquareFluid, var("Pressure")));
    EXPECT_EQ(field(1)->loadedComponents, 0);
    EXPECT_EQ(caseFile->useCount, 0);

    std::string changed = squareData(dataSection(1, 2, 1, 1, 1, 2, "10\n20"));
    changed.replace(changed.find("10\n20"), 5, "30\n40");
    write("square.dat", changed);
    EXPECT_EQ(values(kSquareFluid, var("Pressure")), (std::vector<double>{30, 40}));
    EXPECT_EQ(field(1)->loadedComponents, 1);
}

TEST_F(ValueLoad, FieldOfSeveralComponentsStaysUntilItsLastComponentIsLoaded) {
    // Field 15 is no vector-family field: element after element, a variable per component.
    loadSquare(dataSection(15, 2, 3, 1, 1, 2, "1 2 3\n4 5 6"));
    EXPECT_EQ(values(kSquareFluid, var("body-force 0-2")), (std::vector<double>{2, 5}));
    ASSERT_NE(field(15)->values, nullptr);
    EXPECT_EQ(field(15)->loadedComponents, 1);
    EXPECT_EQ(values(kSquareFluid, var("body-force 0-1")), (std::vector<double>{1, 4}));
    ASSERT_NE(field(15)->values, nullptr);
    EXPECT_EQ(values(kSquareFluid, var("body-force 0-3")), (std::vector<double>{3, 6}));
    EXPECT_EQ(field(15)->values, nullptr);
    EXPECT_EQ(field(15)->loadedComponents, 3);
    // An unload of one component frees nothing more; the values come back from the file.
    ASSERT_TRUE(minihost::unloadValues(kSquareFluid, var("body-force 0-1")));
    EXPECT_EQ(field(15)->loadedComponents, 2);
    ASSERT_TRUE(minihost::unloadValues(kSquareFluid, var("body-force 0-3")));
    EXPECT_EQ(values(kSquareFluid, var("body-force 0-1")), (std::vector<double>{1, 4}));
    EXPECT_EQ(field(15)->loadedComponents, 2);
    ASSERT_NE(field(15)->values, nullptr);
}

TEST_F(ValueLoad, VectorFamilyFieldStandsComponentAfterComponent) {
    // Field 200 with two species: all cells of species 0, then all of species 1.
    loadSquare(dataSection(200, 2, 2, 1, 1, 2, "1\n2\n3\n4"));
    EXPECT_EQ(values(kSquareFluid, var("Species 0")), (std::vector<double>{1, 2}));
    EXPECT_EQ(values(kSquareFluid, var("Species 1")), (std::vector<double>{3, 4}));
}

TEST_F(ValueLoad, ScalarFieldOfAVectorFamilyIdReadsElementAfterElement) {
    loadSquare(dataSection(200, 2, 1, 1, 1, 2, "7\n8"));
    EXPECT_EQ(values(kSquareFluid, var("Species 0")), (std::vector<double>{7, 8}));
}

TEST_F(ValueLoad, MeansAreDividedByTheSampledTime) {
    loadSquare(dataSection(400, 2, 1, 1, 1, 2, "2\n4"), 2.0);
    EXPECT_EQ(values(kSquareFluid, var("Mean Pressure")), (std::vector<double>{1, 2}));
}

TEST_F(ValueLoad, SampledTimeZeroLeavesMeansUnscaled) {
    loadSquare(dataSection(400, 2, 1, 1, 1, 2, "2\n4"), 0.0);
    EXPECT_EQ(values(kSquareFluid, var("Mean Pressure")), (std::vector<double>{2, 4}));
}

TEST_F(ValueLoad, NegativeVarianceGivesANegativeRootMeanSquare) {
    // Means 2/2 = 1 and 4/2 = 2; squares 10/2 = 5 and 2/2 = 1: variances 4 and -3.
    loadSquare(dataSection(400, 2, 1, 1, 1, 2, "2\n4") + dataSection(401, 2, 1, 1, 1, 2, "10\n2"), 2.0);
    const std::vector<double> rms = values(kSquareFluid, var("RMS Pressure"));
    ASSERT_EQ(rms.size(), 2u);
    EXPECT_EQ(rms[0], 2.0);
    EXPECT_EQ(rms[1], static_cast<float>(-std::sqrt(3.0)));  // a single-precision case
    EXPECT_TRUE(shown().empty());
    // The mean read for the root mean square stays, divided once, and is not divided again.
    ASSERT_NE(field(400)->values, nullptr);
    EXPECT_EQ(values(kSquareFluid, var("Mean Pressure")), (std::vector<double>{1, 2}));
    EXPECT_EQ(field(400)->values, nullptr);
}

TEST_F(ValueLoad, RootMeanSquareAfterItsMeanReadsTheMeanAgain) {
    loadSquare(dataSection(400, 2, 1, 1, 1, 2, "2\n4") + dataSection(401, 2, 1, 1, 1, 2, "10\n2"), 2.0);
    EXPECT_EQ(values(kSquareFluid, var("Mean Pressure")), (std::vector<double>{1, 2}));
    EXPECT_EQ(field(400)->values, nullptr);
    const std::vector<double> rms = values(kSquareFluid, var("RMS Pressure"));
    ASSERT_EQ(rms.size(), 2u);
    EXPECT_EQ(rms[0], 2.0);
    EXPECT_EQ(rms[1], static_cast<float>(-std::sqrt(3.0)));  // a single-precision case
}

TEST_F(ValueLoad, RootMeanSquareWithoutAMeanPartnerStaysAsRead) {
    loadSquare(dataSection(401, 2, 1, 1, 1, 2, "10\n2"), 2.0);
    EXPECT_EQ(values(kSquareFluid, var("RMS Pressure")), (std::vector<double>{10, 2}));
}

TEST_F(ValueLoad, SpeciesRootMeanSquareTreatsOnlyItsFirstComponent) {
    // Fields 1000 and 1050 with two species: only the first count numbers are
    // divided and squared; the second species stays as read.
    loadSquare(
        dataSection(1000, 2, 2, 1, 1, 2, "2\n4\n6\n8") + dataSection(1050, 2, 2, 1, 1, 2, "10\n2\n9\n9"),
        2.0);
    const std::vector<double> rms0 = values(kSquareFluid, var("RMS Species 0"));
    ASSERT_EQ(rms0.size(), 2u);
    EXPECT_EQ(rms0[0], 2.0);
    EXPECT_EQ(rms0[1], static_cast<float>(-std::sqrt(3.0)));
    EXPECT_EQ(values(kSquareFluid, var("RMS Species 1")), (std::vector<double>{9, 9}));
    EXPECT_EQ(values(kSquareFluid, var("Mean Species 0")), (std::vector<double>{1, 2}));
    EXPECT_EQ(values(kSquareFluid, var("Mean Species 1")), (std::vector<double>{6, 8}));
}

TEST_F(ValueLoad, WallShearOfAFaceOfAreaTwoAndTotalThreeBecomesMinusOnePointFive) {
    loadSquare(dataSection(19, 4, 1, 1, 2, 3, "3\n5"));
    EXPECT_EQ(values(kSquareWall, var("Wall shear")), (std::vector<double>{-1.5, -2.5}));
    EXPECT_TRUE(shown().empty());
}

TEST_F(ValueLoad, HeatFluxesAreDividedByTheAreaWithTheirSign) {
    loadSquare(dataSection(20, 4, 1, 1, 2, 3, "3\n-5") + dataSection(21, 4, 1, 1, 2, 3, "8\n1"));
    EXPECT_EQ(values(kSquareWall, var("Boundary heat flux")), (std::vector<double>{1.5, -2.5}));
    EXPECT_EQ(values(kSquareWall, var("Boundary rad heat flux")), (std::vector<double>{4, 0.5}));
}

TEST_F(ValueLoad, WallFluxOfAPlaneCellZoneIsDividedByTheCellArea) {
    // Triangles of area 2: a plane cell zone is no volume zone.
    loadSquare(dataSection(20, 2, 1, 1, 1, 2, "3\n5"));
    EXPECT_EQ(values(kSquareFluid, var("Boundary heat flux")), (std::vector<double>{1.5, 2.5}));
}

TEST_F(ValueLoad, AxisymmetricFaceOnTheAxisHasZeroAreaAndKeepsItsTotal) {
    // Axisymmetric: the length times the mean radius. Face 2 lies on y = 0;
    // face 3 has length 2 and mean radius 1.
    loadSquare(dataSection(19, 4, 1, 1, 2, 3, "3\n4"), 0.0, "(rp-axi? . #t)");
    ASSERT_TRUE(lastCaseFile()->axisymmetric);
    EXPECT_EQ(values(kSquareWall, var("Wall shear")), (std::vector<double>{3, -2}));
}

TEST_F(ValueLoad, ValuesReachTheHostInTheCasesPrecision) {
    loadSquare(dataSection(1, 2, 1, 1, 1, 2, "0.1\n0.2"));
    EXPECT_EQ(ZorUtilDataValueGetType(kSquareFluid, var("Pressure")), ZorFieldDataType_Float);
    EXPECT_EQ(values(kSquareFluid, var("Pressure"))[0], static_cast<double>(0.1f));
    dropEverything();

    loadSquare(dataSection(1, 2, 1, 1, 1, 2, "0.1\n0.2"), 0.0, "(rp-axi? . #f) (rp-double? . #t)");
    EXPECT_EQ(ZorUtilDataValueGetType(kSquareFluid, var("Pressure")), ZorFieldDataType_Double);
    EXPECT_EQ(ZorUtilDataValueGetType(kSquareFluid, var("X")), ZorFieldDataType_Double);
    EXPECT_EQ(values(kSquareFluid, var("Pressure"))[0], 0.1);
}

TEST_F(ValueLoad, ZonesWithoutAFieldHaveNoLoaderForIt) {
    loadSquare(dataSection(19, 4, 1, 1, 2, 3, "3\n5"));
    EXPECT_TRUE(minihost::valueStats(kSquareWall, var("Wall shear")).hasLoader);
    EXPECT_FALSE(minihost::valueStats(kSquareFluid, var("Wall shear")).hasLoader);
    EXPECT_EQ(ZorUtilDataValueGetLocation(kSquareFluid, var("Wall shear")), ZorValueLocation_CellCentered);
}

// A strip of `cells` triangles (two nodes more) in one cell zone, in double
// or single precision, with pressure values given one per line.
std::string stripCase(int cells, bool doublePrecision) {
    char header[96];
    std::snprintf(header, sizeof header, "(10 (1 1 %x 1 2)(\n", cells + 2);
    std::string text = std::string("(1 \"a strip of triangles\")\n(2 2)\n") + header;
    for (int i = 0; i < (cells + 2) / 2; ++i)
        text += std::to_string(i) + " 0\n" + std::to_string(i) + " 1\n";
    std::snprintf(header, sizeof header, "))\n(12 (2 1 %x 1 1))\n", cells);
    return text + header + "(13 (3 1 1 2 2)(\n1 2 1 0\n))\n" +
           (doublePrecision ? "(37 ((rp-axi? . #f) (rp-double? . #t)))\n" : "");
}

std::string pressureData(const std::vector<std::string>& numbers) {
    std::string text = "(300 (1 2 1 0 0 1 " + std::to_string(numbers.size()) + ")\n(\n";
    for (const std::string& number : numbers)
        text += number + "\n";
    return text + "))\n";
}

TEST_F(ValueLoad, ManyValuesPassInBlocksAndKeepTheirRange) {
    // 2500 cells: more than two blocks of 1024 values.
    std::vector<std::string> numbers;
    for (int i = 0; i < 2500; ++i)
        numbers.push_back(std::to_string(i - 1000));
    for (bool doublePrecision : {true, false}) {
        SCOPED_TRACE(doublePrecision ? "double" : "single");
        dropEverything();
        const std::string casePath = write("strip.cas", stripCase(2500, doublePrecision));
        const std::string dataPath = write("strip.dat", pressureData(numbers));
        ASSERT_TRUE(loadPair(casePath, dataPath)) << testing::PrintToString(shown());
        EXPECT_EQ(ZorUtilDataValueGetType(1, var("Pressure")),
                  doublePrecision ? ZorFieldDataType_Double : ZorFieldDataType_Float);
        const std::vector<double> pressure = values(1, var("Pressure"));
        ASSERT_EQ(pressure.size(), 2500u);
        for (int i = 0; i < 2500; ++i)
            ASSERT_EQ(pressure[static_cast<size_t>(i)], i - 1000) << i;
        // Whole blocks, then the rest.
        EXPECT_EQ(minihost::valueArrayWrites(1, var("Pressure")), (std::vector<int64_t>{1024, 1024, 452}));
        ZorFieldData data = ZorUtilDataValueGetReadableNativeRef(1, var("Pressure"));
        double minimum = 0, maximum = 0;
        ZorUtilDataValueGetMinMaxByRef(data, &minimum, &maximum);
        EXPECT_EQ(minimum, -1000);
        EXPECT_EQ(maximum, 1499);
    }
}

TEST_F(ValueLoad, ValuesOfWholeBlocksEndInAnEmptyBlock) {
    std::vector<std::string> numbers;
    for (int i = 0; i < 2048; ++i)
        numbers.push_back(std::to_string(i % 7) + ".5");
    for (bool doublePrecision : {true, false}) {
        SCOPED_TRACE(doublePrecision ? "double" : "single");
        dropEverything();
        ASSERT_TRUE(loadPair(write("strip.cas", stripCase(2048, doublePrecision)),
                             write("strip.dat", pressureData(numbers))))
            << testing::PrintToString(shown());
        const std::vector<double> pressure = values(1, var("Pressure"));
        ASSERT_EQ(pressure.size(), 2048u);
        for (int i = 0; i < 2048; ++i)
            ASSERT_EQ(pressure[static_cast<size_t>(i)], i % 7 + 0.5) << i;
        EXPECT_EQ(minihost::valueArrayWrites(1, var("Pressure")), (std::vector<int64_t>{1024, 1024, 0}));
    }
}

// The range of a variable is the one a comparison value by value gives: of
// zeros of both signs the first one met, NaN passed over, in whichever block.
TEST_F(ValueLoad, RangeKeepsTheFirstZeroMetAndPassesOverNaN) {
    struct Case {
        std::vector<std::string> numbers;
        double minimum, maximum;
    };
    std::vector<Case> cases;
    for (size_t place : {size_t{0}, size_t{3}, size_t{1023}, size_t{1500}}) {
        // Positive numbers, then -0 at `place` and 0 behind it: the minimum is -0.
        Case positive{std::vector<std::string>(2100, "2.5"), -0.0, 2.5};
        positive.numbers[place] = "-0";
        positive.numbers[place + 7] = "0";
        positive.numbers[place + 1] = "nan";
        cases.push_back(positive);
        // Negative numbers, then 0 at `place` and -0 behind it: the maximum is +0.
        Case negative{std::vector<std::string>(2100, "-4"), -4.0, 0.0};
        negative.numbers[place] = "0";
        negative.numbers[place + 500] = "-0";
        negative.numbers[2099 - place] = "nan";
        cases.push_back(negative);
    }
    for (const Case& c : cases) {
        dropEverything();
        ASSERT_TRUE(
            loadPair(write("strip.cas", stripCase(2100, true)), write("strip.dat", pressureData(c.numbers))))
            << testing::PrintToString(shown());
        ASSERT_EQ(values(1, var("Pressure")).size(), 2100u);
        ZorFieldData data = ZorUtilDataValueGetReadableNativeRef(1, var("Pressure"));
        double minimum = 1, maximum = 1;
        ZorUtilDataValueGetMinMaxByRef(data, &minimum, &maximum);
        EXPECT_EQ(minimum, c.minimum);
        EXPECT_EQ(std::signbit(minimum), std::signbit(c.minimum));
        EXPECT_EQ(maximum, c.maximum);
        EXPECT_EQ(std::signbit(maximum), std::signbit(c.maximum));
    }
}

}  // namespace
