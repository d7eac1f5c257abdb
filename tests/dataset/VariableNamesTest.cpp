// Names of data field components, selections by name, and the name lists of
// the zone and variable selection dialog.

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "dataset/VariableNames.h"
#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace {

// A case record with a species list, made in memory.
struct TestCase {
    CaseFile caseFile = {};
    std::vector<std::string> species;
    std::vector<char*> speciesPointers;

    explicit TestCase(std::vector<std::string> names = {}, bool axisymmetric = false)
        : species(std::move(names)) {
        for (std::string& name : species) {
            speciesPointers.push_back(&name[0]);
        }
        caseFile.numSpeciesNames = static_cast<int32_t>(species.size());
        caseFile.speciesNames = speciesPointers.empty() ? nullptr : speciesPointers.data();
        caseFile.axisymmetric = axisymmetric;
        caseFile.numDimensions = 3;
    }
};

std::string nameOf(int32_t fieldId, int32_t phase = 0, const CaseFile* caseFile = nullptr,
                   int32_t sectionId = 300, const DataFile* dataFile = nullptr) {
    char out[kVariableNameSize];
    memset(out, 'x', sizeof out);
    getVariableName(out, sectionId, fieldId, phase, dataFile, caseFile);
    return out;
}

}  // namespace

TEST(VariableNames, UnknownFieldIdIsNumbered) {
    EXPECT_EQ(nameOf(1234), "Variable #1234");
}

TEST(VariableNames, TableNameWhenNoRuleApplies) {
    TestCase plain;
    EXPECT_EQ(nameOf(1, 0, &plain.caseFile), "Pressure");
    EXPECT_EQ(nameOf(111, 0, &plain.caseFile), "X Velocity");
    EXPECT_EQ(nameOf(101, 0, &plain.caseFile), "Density");
}

TEST(VariableNames, SpeciesBeyondTheCaseListFallBackToTheTable) {
    TestCase twoSpecies({"o2", "n2"});
    EXPECT_EQ(nameOf(203, 0, &twoSpecies.caseFile), "Species 3");
    EXPECT_EQ(nameOf(255, 0, &twoSpecies.caseFile), "Species 5 t-1");
    EXPECT_EQ(nameOf(305, 0, &twoSpecies.caseFile), "Species 5 t-2");
    EXPECT_EQ(nameOf(355, 0, &twoSpecies.caseFile), "Deposition Rate 5");
    EXPECT_EQ(nameOf(455, 0, &twoSpecies.caseFile), "DPM Species 5");
    EXPECT_EQ(nameOf(201, 0, &twoSpecies.caseFile), "n2");
}

TEST(VariableNames, SpeciesNamesOfTheCaseWithTheirSuffixes) {
    TestCase oxygen({"o2"});
    EXPECT_EQ(nameOf(200, 0, &oxygen.caseFile), "o2");
    EXPECT_EQ(nameOf(250, 0, &oxygen.caseFile), "o2 t-1");
    EXPECT_EQ(nameOf(300, 0, &oxygen.caseFile), "o2 t-2");
    EXPECT_EQ(nameOf(350, 0, &oxygen.caseFile), "o2 Deposition Rate");
    EXPECT_EQ(nameOf(450, 0, &oxygen.caseFile), "o2 DPM");
}

TEST(VariableNames, LongSpeciesNamesAreCut) {
    const std::string longName(130, 'a');
    TestCase longSpecies({longName});
    EXPECT_EQ(nameOf(200, 0, &longSpecies.caseFile), std::string(128, 'a'));
    EXPECT_EQ(nameOf(250, 0, &longSpecies.caseFile), std::string(124, 'a') + " t-1");
    EXPECT_EQ(nameOf(300, 0, &longSpecies.caseFile), std::string(124, 'a') + " t-2");
    EXPECT_EQ(nameOf(350, 0, &longSpecies.caseFile), std::string(112, 'a') + " Deposition Rate");
    EXPECT_EQ(nameOf(450, 0, &longSpecies.caseFile), std::string(124, 'a') + " DPM");
}

TEST(VariableNames, ThirdVelocityIsZUnlessAxisymmetric) {
    TestCase plane;
    TestCase axisymmetric({}, true);
    EXPECT_EQ(nameOf(113, 0, &plane.caseFile), "Z Velocity");
    EXPECT_EQ(nameOf(117, 0, &plane.caseFile), "Z Velocity t-1");
    EXPECT_EQ(nameOf(124, 0, &plane.caseFile), "Z Velocity t-2");
    EXPECT_EQ(nameOf(113, 0, &axisymmetric.caseFile), "Swirl Velocity");
    EXPECT_EQ(nameOf(117, 0, &axisymmetric.caseFile), "Swirl Velocity t-1");
    EXPECT_EQ(nameOf(124, 0, &axisymmetric.caseFile), "Swirl Velocity t-2");
}

TEST(VariableNames, PhaseSuffixFromPhaseTwoOn) {
    TestCase plain;
    EXPECT_EQ(nameOf(111, 0, &plain.caseFile), "X Velocity");
    EXPECT_EQ(nameOf(111, 1, &plain.caseFile), "X Velocity");
    EXPECT_EQ(nameOf(111, 2, &plain.caseFile), "X Velocity Phase-1");
    EXPECT_EQ(nameOf(111, 3, &plain.caseFile), "X Velocity Phase-2");
    EXPECT_EQ(nameOf(1234, 2, &plain.caseFile), "Variable #1234 Phase-1");
}

TEST(VariableNames, PhaseFieldsNameThePlainPhaseNumber) {
    EXPECT_EQ(nameOf(150, 2), "Phase 2");
    EXPECT_EQ(nameOf(160, 2), "Phase 2 t-1");
    EXPECT_EQ(nameOf(170, 2), "Phase 2 t-2");
    EXPECT_EQ(nameOf(150, 0), "Phase 0");
    EXPECT_EQ(nameOf(151, 2), "Phase 1 Phase-1");
}

TEST(VariableNames, PhaseSuffixOverwritesTheTailOfALongName) {
    const std::string longName(125, 'b');
    TestCase longSpecies({longName});
    const std::string name = nameOf(200, 2, &longSpecies.caseFile);
    EXPECT_EQ(name.size(), 125u);
    EXPECT_EQ(name, std::string(125 - 8, 'b') + " Phase-1");
    // 120 + 8 = 128 still fits and is appended.
    TestCase fits({std::string(120, 'c')});
    EXPECT_EQ(nameOf(200, 2, &fits.caseFile), std::string(120, 'c') + " Phase-1");
}

TEST(VariableNames, AdditionalQuantitiesAreNamedFromTheirList) {
    DataFile dataFile;
    ASSERT_TRUE(DataFileInit(&dataFile, "x.dat", true));
    dataFile.additionalQuantities->setNames({"Wall Func. Heat Tran. Coef.", "Second"});
    EXPECT_EQ(nameOf(1, 0, nullptr, 314, &dataFile), "Wall Func. Heat Tran. Coef.");
    EXPECT_EQ(nameOf(2, 0, nullptr, 3314, &dataFile), "Second");
    EXPECT_EQ(nameOf(1, 0, nullptr, 300, &dataFile), "Pressure");
    // An empty list leaves the table to name them.
    DataFile noNames;
    ASSERT_TRUE(DataFileInit(&noNames, "y.dat", true));
    EXPECT_EQ(nameOf(1, 0, nullptr, 2314, &noNames), "Pressure");
}

TEST(VariableSelection, MatchesWithoutRegardToCase) {
    char name[kVariableNameSize] = "X Velocity";
    char entryA[] = "pressure";
    char entryB[] = "x velocity";
    char* list[] = {entryA, entryB};
    EXPECT_TRUE(variableIsSelected(name, list, 111, 2));
    EXPECT_STREQ(name, "X Velocity");
    char other[kVariableNameSize] = "Y Velocity";
    EXPECT_FALSE(variableIsSelected(other, list, 112, 2));
    EXPECT_FALSE(variableIsSelected(other, list, 112, 0));
}

TEST(VariableSelection, OnlyTheLettersAToZFoldCase) {
    char name[kVariableNameSize] = "\xc3\x84 Velocity";
    char entry[] = "\xc3\xa4 velocity";
    char* list[] = {entry};
    EXPECT_FALSE(variableIsSelected(name, list, 1, 1));
}

TEST(VariableSelection, NumberedEntrySelectsAndRenames) {
    char name[kVariableNameSize] = "Variable #1234";
    char entry[] = "variable #1234";
    char* list[] = {entry};
    EXPECT_TRUE(variableIsSelected(name, list, 1234, 1));
    EXPECT_STREQ(name, "Variable #1234");
    // A known field chosen by its number takes the numbered name.
    char pressure[kVariableNameSize] = "Pressure";
    char byNumber[] = "VARIABLE #1";
    char* numbered[] = {byNumber};
    EXPECT_TRUE(variableIsSelected(pressure, numbered, 1, 1));
    EXPECT_STREQ(pressure, "Variable #1");
}

TEST(VariableSelection, NullNameMatchesNullEntry) {
    char* list[] = {nullptr};
    EXPECT_TRUE(variableIsSelected(nullptr, list, 1, 1));
    char name[kVariableNameSize] = "Pressure";
    EXPECT_FALSE(variableIsSelected(name, list, 1, 1));
}

TEST(VariableNameArrays, CopyAndGrow) {
    ZorStringList list = minihost::makeStringList({"A", "B"});
    char** names = nullptr;
    int32_t count = -1;
    GetVarNameList(&names, &count, list);
    ASSERT_EQ(count, 2);
    EXPECT_STREQ(names[0], "A");
    EXPECT_STREQ(names[1], "B");
    EXPECT_TRUE(AddVarNameToList("C", &names, &count));
    EXPECT_EQ(count, 3);
    EXPECT_STREQ(names[2], "C");
    FreeVarNameList(&names, count);
    EXPECT_EQ(names, nullptr);
    ZorUtilStringListDealloc(&list);

    ZorStringList empty = minihost::makeStringList({});
    char** none = nullptr;
    GetVarNameList(&none, &count, empty);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(none, nullptr);
    ZorUtilStringListDealloc(&empty);
}

// ---- Zone labels -------------------------------------------------------------------------

namespace {

struct ZoneCase {
    CaseFile caseFile = {};
    std::vector<CellZone> cells;
    std::vector<FaceZone> faces;

    void addCell(int32_t zoneId, int32_t zoneType, const char* name) {
        CellZone zone = {};
        zone.zoneId = zoneId;
        zone.zoneType = zoneType;
        strcpy(zone.name, name);
        cells.push_back(zone);
        caseFile.cellZones = cells.data();
        caseFile.numCellZones = static_cast<int32_t>(cells.size());
    }
    void addFace(int32_t zoneId, int32_t boundaryType, const char* name) {
        FaceZone zone = {};
        zone.zoneId = zoneId;
        zone.boundaryType = boundaryType;
        strcpy(zone.name, name);
        faces.push_back(zone);
        caseFile.faceZones = faces.data();
        caseFile.numFaceZones = static_cast<int32_t>(faces.size());
    }
};

}  // namespace

TEST(ZoneNames, CellZonesThenDisplayedBoundaries) {
    ZoneCase zones;
    zones.addCell(2, 1, "fluid");
    zones.addCell(3, 1, "");
    zones.addCell(4, 17, "");
    zones.addCell(5, 99, "");
    zones.addCell(6, 32, "hidden");
    zones.addFace(7, 2, "interior-1");
    zones.addFace(8, 3, "");
    zones.addFace(9, 3, "wall-top");
    zones.addFace(10, 31, "parents");
    zones.addFace(11, 38, "thirty-eight");
    zones.addFace(12, 1000, "big");
    zones.addFace(13, 77, "");
    zones.addFace(14, 37, "");
    ZorStringList list = minihost::makeStringList({});
    ASSERT_TRUE(collectZoneNames(&zones.caseFile, list));
    const std::vector<std::string> expected = {
        "fluid (cell zone 2)",
        "Fluid Zone 3 (cell zone 3)",
        "Solid Zone 4 (cell zone 4)",
        "Cell Zone 5 (cell zone 5)",
        "Wall Boundary Zone 8 (face zone 8)",
        "wall-top (face zone 9)",
        "Boundary Zone 13 (face zone 13)",
        "Axis Boundary Zone 14 (face zone 14)",
    };
    EXPECT_EQ(minihost::stringListToVector(list), expected);
    EXPECT_EQ(countDisplayZones(&zones.caseFile), 8);
    ZorUtilStringListDealloc(&list);
}

TEST(ZoneNames, FaceZoneDisplayNameFromTheBoundaryType) {
    ZoneCase zones;
    const std::pair<int32_t, const char*> rows[] = {
        {2, "Interior"},
        {3, "Wall"},
        {4, "Pressure-Inlet"},
        {5, "Pressure-Outlet"},
        {7, "Symmetry"},
        {8, "Periodic-Shadow"},
        {9, "Pressure-Far-Field"},
        {10, "Velocity-Inlet"},
        {12, "Periodic"},
        {14, "Fan"},
        {20, "Mass-Flow-Inlet"},
        {24, "Interface"},
        {31, "Hanging-Node-Parent"},
        {36, "Outflow"},
        {37, "Axis"},
    };
    for (const auto& row : rows) {
        FaceZone zone = {};
        zone.zoneId = 5;
        zone.boundaryType = row.first;
        char out[kVariableNameSize];
        faceZoneDisplayName(out, &zone);
        EXPECT_EQ(std::string(out), std::string(row.second) + " Boundary Zone 5");
    }
    FaceZone unnamed = {};
    unnamed.zoneId = 6;
    unnamed.boundaryType = 6;
    char out[kVariableNameSize];
    faceZoneDisplayName(out, &unnamed);
    EXPECT_STREQ(out, "Boundary Zone 6");
}

// ---- Variable lists ------------------------------------------------------------------------

namespace {

DataField makeField(int32_t sectionId, int32_t fieldId, int32_t dimension, int32_t phase = 0) {
    DataField field = {};
    field.sectionId = sectionId;
    field.fieldId = fieldId;
    field.dimension = dimension;
    field.phase = phase;
    field.count = 1;
    return field;
}

}  // namespace

TEST(VariableLists, MergeKeepsFirstSeenOrderAndFoldsCase) {
    TestCase species({"ch4", "o2"});
    DataFile dataFile;
    ASSERT_TRUE(DataFileInit(&dataFile, "x.dat", false));
    std::vector<DataField> fields = {
        makeField(300, 1, 1),    // Pressure: already listed as "pressure"
        makeField(300, 200, 3),  // vector family: ch4, o2, Species 2
        makeField(300, 59, 1),   // never listed
        makeField(300, 111, 1),  // X Velocity
        makeField(300, 111, 1),  // second zone, same name
        makeField(300, 15, 2),   // not a family: one name for both components
        makeField(300, 4321, 1, 2),
    };
    dataFile.dataFields = fields.data();
    dataFile.numDataFields = static_cast<int32_t>(fields.size());
    ZorStringList list = minihost::makeStringList({"pressure", "Earlier"});
    EXPECT_TRUE(collectVariableNames(&dataFile, &species.caseFile, list));
    const std::vector<std::string> expected = {
        "pressure",  "Earlier",    "ch4",          "o2",
        "Species 2", "X Velocity", "body-force 0", "Variable #4321 Phase-1",
    };
    EXPECT_EQ(minihost::stringListToVector(list), expected);
    dataFile.dataFields = nullptr;
    dataFile.numDataFields = 0;
    ZorUtilStringListDealloc(&list);
}

TEST(VariableLists, ParticleFieldsOtherThanCoordinatesAreListed) {
    DataFile dataFile;
    ASSERT_TRUE(DataFileInit(&dataFile, "x.dat", false));
    std::vector<DataField> fields = {
        makeField(303, 7, 1),   // X: left out
        makeField(303, 8, 1),   // Y: left out
        makeField(303, 14, 1),  // Density
        makeField(303, 56, 1),  // no row: left out
        makeField(303, 1, 1),   // Particle ID
        makeField(303, 0, 1),   // a named XML item
    };
    strcpy(fields[5].name, "my-scalar");
    FluentParticle particle = {};
    strcpy(particle.name, "injection-0");
    particle.fields = fields.data();
    particle.numFields = static_cast<int32_t>(fields.size());
    dataFile.particles = &particle;
    dataFile.numParticles = 1;
    ZorStringList list = minihost::makeStringList({"density"});
    EXPECT_TRUE(collectVariableNames(&dataFile, nullptr, list));
    const std::vector<std::string> expected = {"density", "Particle ID", "my-scalar"};
    EXPECT_EQ(minihost::stringListToVector(list), expected);

    ZorStringList sections = minihost::makeStringList({});
    EXPECT_TRUE(collectParticleSectionNames(&dataFile, sections));
    EXPECT_EQ(minihost::stringListToVector(sections), std::vector<std::string>{"injection-0"});
    dataFile.particles = nullptr;
    dataFile.numParticles = 0;
    ZorUtilStringListDealloc(&list);
    ZorUtilStringListDealloc(&sections);
}
