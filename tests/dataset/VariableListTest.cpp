// The variable list of a data set: its order, the names of the variables,
// the selection by name, and variables added by later files.
#include "datafile/Particles.h"
#include "dataset/VariableList.h"
#include "dataset/VariableNames.h"
#include "lod/LodTestSupport.h"
#include "lod/SmallCases.h"

namespace {

using namespace lodtest;

class VariableList : public LoadTest {
  protected:
    bool loadSquare(const std::string& data, const std::vector<std::string>& more = {}) {
        return loadPair(write("square.cas", squareCase()), write("square.dat", data), more);
    }
};

// A tetrahedron: nodes (0,0,0) (1,0,0) (0,1,0) (0,0,1), one cell, its four faces a wall.
const char* const kTetraCase =
    "(1 \"one tetrahedron\")\n(2 3)\n"
    "(10 (1 1 4 1 3)(\n0 0 0\n1 0 0\n0 1 0\n0 0 1\n))\n"
    "(12 (2 1 1 1 2))\n"
    "(13 (3 1 4 3 3)(\n1 3 2 1 0\n1 2 4 1 0\n2 3 4 1 0\n3 1 4 1 0\n))\n";

TEST_F(VariableList, DataFileWithoutDataSectionsAddsNoVariables) {
    ASSERT_TRUE(loadSquare(squareData("")));
    EXPECT_TRUE(shown().empty());
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y"}));
    EXPECT_EQ(lastDataFile()->numDataFields, 0);
}

TEST_F(VariableList, ZonesComeInCaseFileOrderAndInAZoneTheFieldsInDataFileOrder) {
    // The wall's field stands first in the data file, but the wall's Faces
    // section stands behind the cell zone's Cells section in the case.
    ASSERT_TRUE(
        loadSquare(squareData(dataSection(19, 4, 1, 1, 2, 3, "1\n2") + dataSection(3, 2, 1, 1, 1, 2, "5\n6") +
                              dataSection(1, 2, 1, 1, 1, 2, "7\n8"))));
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y", "Temperature", "Pressure", "Wall shear"}));
    const DataFile* dataFile = lastDataFile();
    ASSERT_EQ(dataFile->numDataFields, 3);
    EXPECT_EQ(dataFile->dataFields[0].fieldId, 3);
    EXPECT_EQ(dataFile->dataFields[1].fieldId, 1);
    EXPECT_EQ(dataFile->dataFields[2].fieldId, 19);
    // The value loaders find the fields at their sorted places.
    EXPECT_EQ(values(kSquareFluid, var("Pressure")), (std::vector<double>{7, 8}));
    EXPECT_EQ(values(kSquareFluid, var("Temperature")), (std::vector<double>{5, 6}));
}

TEST_F(VariableList, SecondDataFileKeepsTheOrderOfTheFirstAndAppendsWhatIsNew) {
    const std::string casePath = write("square.cas", squareCase());
    ASSERT_TRUE(loadPair(casePath, write("first.dat", squareData(dataSection(1, 2, 1, 1, 1, 2, "1\n2") +
                                                                 dataSection(3, 2, 1, 1, 1, 2, "3\n4")))));
    ASSERT_TRUE(loadPair(casePath,
                         write("second.dat", squareData(dataSection(101, 2, 1, 1, 1, 2, "9\n9") +
                                                        dataSection(3, 2, 1, 1, 1, 2, "5\n6") +
                                                        dataSection(1, 2, 1, 1, 1, 2, "7\n8"))),
                         {"Append", "Yes"}));
    EXPECT_TRUE(shown().empty()) << testing::PrintToString(shown());
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y", "Pressure", "Temperature", "Density"}));
    // The new variable exists in the zones of the first file, with no loader there.
    EXPECT_EQ(ZorUtilDataValueGetLocation(kSquareFluid, var("Density")), ZorValueLocation_CellCentered);
    EXPECT_FALSE(minihost::valueStats(kSquareFluid, var("Density")).hasLoader);
    EXPECT_TRUE(minihost::valueStats(4 + kSquareFluid, var("Density")).hasLoader);
    EXPECT_EQ(values(kSquareFluid, var("Pressure")), (std::vector<double>{1, 2}));
    EXPECT_EQ(values(4 + kSquareFluid, var("Pressure")), (std::vector<double>{7, 8}));
}

TEST_F(VariableList, AdditionalQuantitiesAreMadeOnlyWhenTheDataFileLoadsThem) {
    const std::string data =
        "(37 (\n(cell-function-list ((1 \"a\" \"First Quantity\" x (1.)) (2 \"b\" \"Second Quantity\" y "
        "(0.))))\n(flow-time 0)))\n" +
        std::string("(314 (2 4 1 0 0 2 3)\n(\n1\n2\n))\n(314 (1 2 1 0 0 1 2)\n(\n3\n4\n))\n") +
        dataSection(1, 2, 1, 1, 1, 2, "5\n6");
    ASSERT_TRUE(loadSquare(data, {"VarNameList", "First Quantity\nPressure"}));
    EXPECT_TRUE(shown().empty()) << testing::PrintToString(shown());
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y", "Pressure"}));
    dropEverything();

    ASSERT_TRUE(loadSquare(data, {"LoadAdditionalQuantities", "Yes"}));
    // Behind all others of the file, in the order of their zones.
    EXPECT_EQ(variableNames(),
              (std::vector<std::string>{"X", "Y", "Pressure", "First Quantity", "Second Quantity"}));
    EXPECT_EQ(values(kSquareFluid, var("First Quantity")), (std::vector<double>{3, 4}));
    EXPECT_EQ(values(kSquareWall, var("Second Quantity")), (std::vector<double>{1, 2}));
}

TEST_F(VariableList, SelectionByVariableNumberMakesTheVariableUnderThatName) {
    ASSERT_TRUE(
        loadSquare(squareData(dataSection(1234, 2, 1, 1, 1, 2, "1\n2") +
                              dataSection(1, 2, 1, 1, 1, 2, "3\n4") + dataSection(3, 2, 1, 1, 1, 2, "5\n6")),
                   {"VarNameList", "variable #1234\nVariable #1"}));
    EXPECT_TRUE(shown().empty()) << testing::PrintToString(shown());
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y", "Variable #1234", "Variable #1"}));
    EXPECT_EQ(values(kSquareFluid, var("Variable #1")), (std::vector<double>{3, 4}));
}

TEST_F(VariableList, NamesDifferingInCaseAreOneForTheSelectionAndTwoForTheDataSet) {
    ASSERT_TRUE(
        loadSquare(squareData(dataSection(1, 2, 1, 1, 1, 2, "3\n4") + dataSection(3, 2, 1, 1, 1, 2, "5\n6")),
                   {"VarNameList", "PRESSURE"}));
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y", "Pressure"}));
    int32_t number = 0;
    ASSERT_TRUE(GetZorvaneVariableNumber(&number, "pressure", false, false));
    EXPECT_EQ(number, 4);
    ASSERT_TRUE(GetZorvaneVariableNumber(&number, "Pressure", false, false));
    EXPECT_EQ(number, 3);
}

TEST_F(VariableList, VariableIsMadeCellCentredOrNodalInEveryZone) {
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    int32_t number = 0;
    ASSERT_TRUE(GetZorvaneVariableNumber(&number, "Cells", false, true));
    EXPECT_EQ(number, 3);
    ASSERT_TRUE(GetZorvaneVariableNumber(&number, "Nodes", true, false));
    EXPECT_EQ(number, 4);
    for (ZorIndex z = 1; z <= 4; ++z) {
        EXPECT_EQ(ZorUtilDataValueGetLocation(z, 3), ZorValueLocation_CellCentered);
        EXPECT_EQ(ZorUtilDataValueGetType(z, 3), ZorFieldDataType_Double);
        EXPECT_EQ(ZorUtilDataValueGetLocation(z, 4), ZorValueLocation_Nodal);
        EXPECT_EQ(ZorUtilDataValueGetType(z, 4), ZorFieldDataType_Float);
    }
}

TEST_F(VariableList, VariableThatTheHostRefusesIsReported) {
    // Without a data set the host can add no variable.
    int32_t number = -1;
    EXPECT_FALSE(GetZorvaneVariableNumber(&number, "Pressure", false, false));
    EXPECT_EQ(number, 0);
    EXPECT_EQ(shown(), (std::vector<Shown>{{"error",
                                            "Error attempting to create variable 'Pressure'(would have been "
                                            "variable number 1)."}}));
}

TEST_F(VariableList, AppendingAThreeDimensionalCaseAddsZAsANodalVariable) {
    ASSERT_TRUE(loadSquare(squareData(dataSection(1, 2, 1, 1, 1, 2, "3\n4"))));
    ASSERT_TRUE(loadCase(write("tetra.cas", kTetraCase), {"Append", "Yes"}));
    EXPECT_TRUE(shown().empty()) << testing::PrintToString(shown());
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y", "Pressure", "Z"}));
    EXPECT_EQ(ZorUtilDataValueGetLocation(kSquareFluid, var("Z")), ZorValueLocation_Nodal);
    EXPECT_EQ(ZorUtilZoneGetType(5), ZorZoneType_FETetra);
    EXPECT_EQ(values(5, var("Z")), (std::vector<double>{0, 0, 0, 1}));
    EXPECT_EQ(values(6, var("X")), (std::vector<double>{0, 1, 0, 0}));
    // The new zones have the old variables, cell centred as the appending load had them.
    EXPECT_EQ(ZorUtilDataValueGetLocation(5, var("Pressure")), ZorValueLocation_CellCentered);
}

TEST_F(VariableList, ParticleVariablesAreAddedOnceWithNumberedUserScalars) {
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    DataFile dataFile;
    ASSERT_TRUE(DataFileInit(&dataFile, "particles.dat", false));
    for (int section = 0; section < 2; ++section) {
        FluentParticle* particle = nullptr;
        ASSERT_TRUE(NewFluentParticle(&dataFile, &particle));
        for (int32_t id : {46, 7, 46, 16}) {
            ASSERT_TRUE(DataFileNewParticleField(particle));
            particle->fields[particle->numFields++].fieldId = id;
        }
    }
    char names[2][kVariableNameSize];
    ASSERT_TRUE(getParticleDisplayName(names[0], &dataFile.particles[0].fields[1]));
    ASSERT_TRUE(getParticleDisplayName(names[1], &dataFile.particles[0].fields[3]));
    ASSERT_TRUE(AddNewParticleVariables(&dataFile, nullptr));
    std::vector<std::string> expected = {"X", "Y", "Particle User 0"};
    if (std::string(names[0]) != "X" && std::string(names[0]) != "Y")
        expected.push_back(names[0]);
    expected.push_back("Particle User 1");
    expected.push_back(names[1]);
    EXPECT_EQ(variableNames(), expected);
    // The bit type in every zone but the last, where the particles are.
    const ZorIndex user = var("Particle User 0");
    EXPECT_EQ(ZorUtilDataValueGetType(1, user), ZorFieldDataType_Bit);
    EXPECT_EQ(ZorUtilDataValueGetType(3, user), ZorFieldDataType_Bit);
    EXPECT_EQ(ZorUtilDataValueGetType(4, user), ZorFieldDataType_Double);

    // A selection that leaves the first user scalar out numbers the next from 0.
    dropEverything();
    ASSERT_TRUE(loadCase(write("square.cas", squareCase())));
    ZorStringList wanted = minihost::makeStringList({"particle user"});
    ASSERT_TRUE(AddNewParticleVariables(&dataFile, wanted));
    ZorUtilStringListDealloc(&wanted);
    EXPECT_EQ(variableNames(), (std::vector<std::string>{"X", "Y", "Particle User 0", "Particle User 1"}));
}

}  // namespace
