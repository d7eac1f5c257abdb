// The compiled variable name table against the Fluent field-name list it is
// generated from, and the lookups by field id and by residual id.

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include "dataset/VariableNames.h"

namespace {

struct Row {
    int fieldId;
    std::string name;
};

// Expands the list file on its own terms (an independent reading of the format
// that the generator reads): "ID name;" or "ID[-ID] name with # (# LO-HI);".
std::vector<Row> readFieldNameList(const std::string& path) {
    std::ifstream in(path);
    EXPECT_TRUE(in.good()) << path;
    std::vector<Row> rows;
    std::string line;
    const std::regex run(R"(^(\d+)(?:-(\d+))? (.*) \(# (\d+)-(\d+)\)$)");
    const std::regex single(R"(^(\d+) (.*)$)");
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        EXPECT_EQ(line.back(), ';') << line;
        line.pop_back();
        std::smatch m;
        if (std::regex_match(line, m, run)) {
            const int firstId = std::stoi(m[1]);
            const bool idsRun = m[2].matched;
            const int lo = std::stoi(m[4]);
            const int hi = std::stoi(m[5]);
            for (int k = lo; k <= hi; ++k) {
                std::string name = m[3];
                for (size_t at; (at = name.find('#')) != std::string::npos;) {
                    name.replace(at, 1, std::to_string(k));
                }
                rows.push_back({idsRun ? firstId + (k - lo) : firstId, name});
            }
        } else if (std::regex_match(line, m, single)) {
            rows.push_back({std::stoi(m[1]), m[2]});
        } else {
            ADD_FAILURE() << "unreadable entry: " << line;
        }
    }
    return rows;
}

std::string residualName(int residualId) {
    char out[kVariableNameSize];
    lookupResidualName(out, residualId);
    return out;
}

}  // namespace

TEST(VariableNameTable, HasEighteenHundredAndSixRows) {
    EXPECT_EQ(kVariableNameTableSize, 1806);
    EXPECT_EQ(sizeof VariableNameTable / sizeof VariableNameTable[0], 1806u);
}

TEST(VariableNameTable, EqualsTheFieldNameListRowByRow) {
    const std::vector<Row> rows =
        readFieldNameList(std::string(FL_SOURCE_DIR) + "/dataset/variable_names.txt");
    ASSERT_EQ(rows.size(), 1806u);
    for (size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(VariableNameTable[i].fieldId, rows[i].fieldId) << "row " << i;
        EXPECT_EQ(std::string(VariableNameTable[i].name), rows[i].name) << "row " << i;
    }
}

TEST(VariableNameTable, FirstAndLastRows) {
    EXPECT_EQ(VariableNameTable[0].fieldId, 2);
    EXPECT_STREQ(VariableNameTable[0].name, "Momentum");
    EXPECT_EQ(VariableNameTable[1].fieldId, 22);
    EXPECT_STREQ(VariableNameTable[1].name, "Pressure");
    EXPECT_EQ(VariableNameTable[1805].fieldId, 10419);
    EXPECT_STREQ(VariableNameTable[1805].name, "uns-custom-function-9");
    EXPECT_EQ(VariableNameTable[1786].fieldId, 10360);
    EXPECT_STREQ(VariableNameTable[1786].name, "uns-custom-function-0");
}

TEST(VariableNameTable, ParticleRowsStandAheadOfTheTwentyCustomFunctionRows) {
    // 47 rows of in-file particle names, then 20 custom-function rows.
    EXPECT_STREQ(VariableNameTable[1806 - 20 - 47].name, "particle time of birth");
    EXPECT_EQ(VariableNameTable[1806 - 20 - 47].fieldId, 5);
    EXPECT_STREQ(VariableNameTable[1806 - 21].name, "init V prime[2]");
    EXPECT_EQ(VariableNameTable[1806 - 21].fieldId, 34);
    EXPECT_STREQ(VariableNameTable[1806 - 20 - 48].name, "Swirl Velocity");
}

TEST(VariableNameTable, RunsAreExpandedWithTheirNumbers) {
    EXPECT_STREQ(lookupFieldIdName(200), "Species 0");
    EXPECT_STREQ(lookupFieldIdName(249), "Species 49");
    EXPECT_STREQ(lookupFieldIdName(299), "Species 49 t-1");
    EXPECT_STREQ(lookupFieldIdName(7709), "Bin-9-fraction");
    EXPECT_STREQ(lookupFieldIdName(9059), "Eulerian PDF Variance Specie9");
    EXPECT_STREQ(lookupFieldIdName(171), "Phase 1 t-2");
    EXPECT_STREQ(lookupFieldIdName(170), "VOF m2 0");
    EXPECT_STREQ(lookupFieldIdName(160), "Phase 0 t-1");
}

TEST(VariableNameTable, OnlyTheTopmostRowOfAFieldIdWins) {
    // Field id 1: "Pressure" far above "particle id".
    EXPECT_STREQ(lookupFieldIdName(1), "Pressure");
    // Field id 7: "Species" above "pos[0]".
    EXPECT_STREQ(lookupFieldIdName(7), "Species");
    // Field id 150: "Phase 0" above "Volume Fraction".
    EXPECT_STREQ(lookupFieldIdName(150), "Phase 0");
    int onePressure = 0, oneParticle = 0, sevenPos = 0, volumeFraction = 0;
    for (const VariableNameRow& row : VariableNameTable) {
        onePressure += row.fieldId == 1 && strcmp(row.name, "Pressure") == 0;
        oneParticle += row.fieldId == 1 && strcmp(row.name, "particle id") == 0;
        sevenPos += row.fieldId == 7 && strcmp(row.name, "pos[0]") == 0;
        volumeFraction += row.fieldId == 150 && strcmp(row.name, "Volume Fraction") == 0;
    }
    EXPECT_EQ(onePressure, 2);
    EXPECT_EQ(oneParticle, 1);
    EXPECT_EQ(sevenPos, 1);
    EXPECT_EQ(volumeFraction, 1);
}

TEST(VariableNameTable, FiveNamesEndInABlank) {
    EXPECT_STREQ(lookupFieldIdName(11026), "DPM Species ");
    EXPECT_STREQ(lookupFieldIdName(11027), "DPM Species AP ");
    EXPECT_STREQ(lookupFieldIdName(11028), "DPM-DS-Species ");
    EXPECT_STREQ(lookupFieldIdName(11029), "DPM-DS-Species-AP ");
    EXPECT_STREQ(lookupFieldIdName(11031), "Pressure Work Previous ");
    int endingInBlank = 0;
    for (const VariableNameRow& row : VariableNameTable) {
        const size_t length = strlen(row.name);
        endingInBlank += length > 0 && row.name[length - 1] == ' ';
    }
    EXPECT_EQ(endingInBlank, 5);
}

TEST(VariableNameTable, NamesThatLookLikeFormatsAreLiteral) {
    bool found = false;
    for (const VariableNameRow& row : VariableNameTable) {
        found = found || strcmp(row.name, "%s Velocity Prev Itn") == 0;
    }
    EXPECT_TRUE(found);
    EXPECT_STREQ(VariableNameTable[54].name, "%s Velocity Prev Itn");
    EXPECT_STREQ(VariableNameTable[55].name, "%s-velocity-prev- 1");
}

TEST(VariableNameTable, UnknownFieldIdHasNoRow) {
    EXPECT_EQ(lookupFieldIdName(1234), nullptr);
    EXPECT_EQ(lookupFieldIdName(0), nullptr);
}

TEST(ResidualNames, EveryResidualIdNamesItsQuantity) {
    EXPECT_EQ(residualName(1), "Pressure");
    EXPECT_EQ(residualName(2), "Momentum");
    EXPECT_EQ(residualName(3), "Temperature");
    EXPECT_EQ(residualName(4), "Enthalpy");
    EXPECT_EQ(residualName(5), "Turbulent Kinetic Energy");
    EXPECT_EQ(residualName(6), "Turbulent Dissipation Rate");
    EXPECT_EQ(residualName(8), "Species");
    EXPECT_EQ(residualName(10), "Mean Mixture Fraction");
    EXPECT_EQ(residualName(11), "Mixture Fraction Variance");
    EXPECT_EQ(residualName(14), "X Velocity");
    EXPECT_EQ(residualName(15), "Y Velocity");
    EXPECT_EQ(residualName(16), "Swirl Velocity");
    EXPECT_EQ(residualName(17), "NO");
    EXPECT_EQ(residualName(18), "HCN");
    EXPECT_EQ(residualName(19), "UU Stress");
    EXPECT_EQ(residualName(20), "VV Stress");
    EXPECT_EQ(residualName(21), "WW Stress");
    EXPECT_EQ(residualName(22), "UV Stress");
    EXPECT_EQ(residualName(23), "VW Stress");
    EXPECT_EQ(residualName(24), "UW Stress");
    EXPECT_EQ(residualName(25), "Progress Variable");
    EXPECT_EQ(residualName(26), "Secondary Mean Mixture Fraction");
    EXPECT_EQ(residualName(27), "Secondary Mixture Fraction Variance");
    EXPECT_EQ(residualName(28), "Soot");
    EXPECT_EQ(residualName(29), "Nuclei");
    EXPECT_EQ(residualName(30), "DO Intensity");
    EXPECT_EQ(residualName(32), "Granular Temperature");
    for (int k = 0; k <= 4; ++k) {
        EXPECT_EQ(residualName(50 + k), "Phase " + std::to_string(k));
    }
    for (int k = 0; k <= 49; ++k) {
        EXPECT_EQ(residualName(100 + k), "Species " + std::to_string(k));
    }
    for (int k = 0; k <= 19; ++k) {
        EXPECT_EQ(residualName(150 + k), "UDS " + std::to_string(k));
    }
    EXPECT_EQ(residualName(200), "Turbulent Viscosity");
    EXPECT_EQ(residualName(202), "Granular Continuity");
}

TEST(ResidualNames, IdsWithNoRowAreNumbered) {
    EXPECT_EQ(residualName(7), "Variable #7");
    EXPECT_EQ(residualName(9), "Variable #9");
    EXPECT_EQ(residualName(31), "Variable #31");
    EXPECT_EQ(residualName(170), "Variable #170");
    EXPECT_EQ(residualName(201), "Variable #201");
    EXPECT_EQ(residualName(0), "Variable #0");
}

TEST(ResidualNames, ExactlyTheListedIdsHaveRows) {
    int rowsWithResidualId = 0;
    for (const VariableNameRow& row : VariableNameTable) {
        rowsWithResidualId += row.residualId != 0;
    }
    // 27 single ids, 5 phases, 50 species, 20 UDS, 200 and 202.
    EXPECT_EQ(rowsWithResidualId, 27 + 5 + 50 + 20 + 2);
}
