// Every mesh kind that fluentgen writes, in every encoding: each assembled
// cell holds exactly the nodes the generator gave it, each boundary face its
// nodes in file order, every cell of a zone turns one way, and the cells
// cover the box once. Refined meshes with hanging nodes included.
#include <cmath>
#include <cstdlib>
#include <set>

#include "CaseFileTestSupport.h"
#include "MeshChecks.h"
#include "tools/fluentgen/FluentGen.h"

namespace casefile_test {
namespace {

using fluentgen::Encoding;
using fluentgen::MeshKind;

struct MeshCase {
    MeshKind kind;
    Encoding encoding;
    bool bigEndian = false;
    bool mixedCells = false;
    bool mixedFaces = false;
    bool hanging = false;
    bool twoCellZones = false;
    bool extraSections = false;
    std::array<int, 3> cells = {3, 2, 2};
};

std::string kindName(MeshKind kind) {
    switch (kind) {
        case MeshKind::Hex:
            return "Hex";
        case MeshKind::Tet:
            return "Tet";
        case MeshKind::Wedge:
            return "Wedge";
        case MeshKind::Pyramid:
            return "Pyramid";
        case MeshKind::Mixed:
            return "Mixed";
        case MeshKind::Quad:
            return "Quad";
        case MeshKind::Tri:
            return "Tri";
        case MeshKind::Mixed2D:
            return "Mixed2D";
        default:
            return "Other";
    }
}

std::string encodingName(Encoding encoding) {
    switch (encoding) {
        case Encoding::Ascii:
            return "Ascii";
        case Encoding::BinarySingle:
            return "Single";
        case Encoding::BinaryDouble:
            return "Double";
        default:
            return "BinaryMixed";
    }
}

std::string describe(const MeshCase& c) {
    std::string name = kindName(c.kind) + encodingName(c.encoding);
    if (c.bigEndian)
        name += "BigEndian";
    if (c.mixedCells)
        name += "MixedCells";
    if (c.mixedFaces)
        name += "MixedFaces";
    if (c.hanging)
        name += "Hanging";
    if (c.twoCellZones)
        name += "TwoCellZones";
    if (c.extraSections)
        name += "ExtraSections";
    name += std::to_string(c.cells[0]) + "x" + std::to_string(c.cells[1]) + "x" + std::to_string(c.cells[2]);
    return name;
}

std::string caseName(const ::testing::TestParamInfo<MeshCase>& info) {
    return describe(info.param);
}

void PrintTo(const MeshCase& c, std::ostream* os) {
    *os << describe(c);
}

fluentgen::Spec specOf(const MeshCase& c) {
    fluentgen::Spec spec;
    spec.mesh = c.kind;
    spec.cells = c.cells;
    spec.encoding = c.encoding;
    spec.byteOrder = c.bigEndian ? fluentgen::ByteOrder::Big : fluentgen::ByteOrder::Little;
    spec.mixedCellBodies = c.mixedCells;
    spec.mixedFaceTypes = c.mixedFaces;
    spec.hanging = c.hanging;
    spec.extraSections = c.extraSections;
    if (c.twoCellZones) {
        spec.cellZoneTypes = {1, 17};
    }
    spec.origin = {-0.5, 1.25, 2.0};
    return spec;
}

class GeneratedMeshTest : public CaseFileTest, public ::testing::WithParamInterface<MeshCase> {
  protected:
    // Writes the case, scans and assembles it, and checks it against the model.
    void checkMesh(const fluentgen::Spec& spec) {
        std::string path = (folder_ / "mesh.cas").string();
        fluentgen::writeCaseFile(spec, path);
        fluentgen::Model model(spec);
        CaseFile* caseFile = newCaseFile(path);
        ASSERT_TRUE(CaseFileScan(caseFile, false, nullptr, nullptr));
        ASSERT_TRUE(messageTexts().empty()) << ::testing::PrintToString(messageTexts());

        CaseFileUse use(caseFile);
        AssembledCase assembled;
        ASSERT_TRUE(assembleAllZones(caseFile, &assembled));
        ASSERT_TRUE(messageTexts().empty()) << ::testing::PrintToString(messageTexts());

        const bool flat = model.dimensions() == 2;
        double boxMeasure = 1.0;
        for (int axis = 0; axis < model.dimensions(); ++axis) {
            boxMeasure *= spec.cells[axis] * spec.spacing[axis];
        }
        double cellMeasure = 0.0;
        size_t cellZones = 0;
        for (const AssembledZone& zone : assembled.zones) {
            SCOPED_TRACE(zone.label);
            EXPECT_EQ(zone.unsetSlots, 0);
            if (zone.isCellZone) {
                ++cellZones;
                EXPECT_TRUE(hasOneOrientation(caseFile, zone)) << orientationSummary(caseFile, zone);
                cellMeasure += totalMeasure(caseFile, zone);
                const CellZone* cellZone = CaseFileFindCellZone(caseFile, zone.zoneId, false);
                ASSERT_NE(cellZone, nullptr);
                size_t wrong = 0;
                std::string first;
                for (size_t e = 0; e < zone.numElements(); ++e) {
                    int64_t cell = cellZone->firstIndex + static_cast<int64_t>(e);
                    std::vector<int64_t> expected = model.cellNodes(cell);
                    std::set<int64_t> want(expected.begin(), expected.end());
                    std::set<int64_t> got(
                        zone.globalNodes.begin() + static_cast<long>(e * zone.corners),
                        zone.globalNodes.begin() + static_cast<long>((e + 1) * zone.corners));
                    if (want != got) {
                        if (wrong++ == 0) {
                            first = "cell " + std::to_string(cell) + ": " + ::testing::PrintToString(got) +
                                    " instead of " + ::testing::PrintToString(want);
                        }
                    }
                }
                EXPECT_EQ(wrong, 0u) << first;
            } else {
                checkBoundaryZone(model, caseFile, zone);
            }
        }
        EXPECT_GE(cellZones, 1u);
        // The cells cover the box once.
        const double tolerance = spec.encoding == Encoding::BinarySingle ? 1e-5 : 1e-10;
        EXPECT_NEAR(cellMeasure, boxMeasure, tolerance * boxMeasure) << (flat ? "area" : "volume");
    }

    // Each face of a boundary zone holds the model's nodes in file order, the
    // places behind its count repeating its last node.
    void checkBoundaryZone(const fluentgen::Model& model, const CaseFile* caseFile,
                           const AssembledZone& zone) {
        size_t zoneIndex = 0;
        while (zoneIndex < model.faceZones().size() && model.faceZones()[zoneIndex].id != zone.zoneId) {
            ++zoneIndex;
        }
        ASSERT_LT(zoneIndex, model.faceZones().size());
        size_t face = 0, wrong = 0;
        model.forEachFace(zoneIndex, [&](const int64_t* nodes, int n, int64_t, int64_t) {
            for (int k = 0; k < zone.corners; ++k) {
                int64_t want = nodes[std::min(k, n - 1)];
                if (face >= zone.numElements() || zone.globalNodes[face * zone.corners + k] != want) {
                    ++wrong;
                    break;
                }
            }
            ++face;
        });
        EXPECT_EQ(face, zone.numElements());
        EXPECT_EQ(wrong, 0u);
        (void)caseFile;
    }
};

TEST_P(GeneratedMeshTest, AssemblesTheGeneratorsCells) {
    checkMesh(specOf(GetParam()));
}

std::vector<MeshCase> meshCases() {
    std::vector<MeshCase> cases;
    const MeshKind kinds[] = {MeshKind::Hex,   MeshKind::Tet,  MeshKind::Wedge, MeshKind::Pyramid,
                              MeshKind::Mixed, MeshKind::Quad, MeshKind::Tri,   MeshKind::Mixed2D};
    const Encoding encodings[] = {Encoding::Ascii, Encoding::BinarySingle, Encoding::BinaryDouble,
                                  Encoding::BinaryMixed};
    for (MeshKind kind : kinds) {
        for (Encoding encoding : encodings) {
            MeshCase c{kind, encoding};
            if (kind == MeshKind::Mixed) {
                c.cells = {2, 2, 6};  // every layer kind
            }
            cases.push_back(c);
        }
        MeshCase big{kind, Encoding::BinaryDouble};
        big.bigEndian = true;
        cases.push_back(big);
        MeshCase mixed{kind, Encoding::BinaryMixed};
        mixed.mixedCells = true;
        mixed.mixedFaces = true;
        mixed.twoCellZones = true;
        cases.push_back(mixed);
        MeshCase mixedAscii{kind, Encoding::Ascii};
        mixedAscii.mixedCells = true;
        mixedAscii.mixedFaces = true;
        cases.push_back(mixedAscii);
        MeshCase extra{kind, Encoding::BinaryDouble};
        extra.extraSections = true;
        extra.twoCellZones = true;
        cases.push_back(extra);
    }
    for (MeshKind kind : {MeshKind::Hex, MeshKind::Quad}) {
        for (Encoding encoding : encodings) {
            MeshCase c{kind, encoding};
            c.hanging = true;
            c.cells = {4, 4, 4};
            cases.push_back(c);
        }
        MeshCase mixed{kind, Encoding::BinaryDouble};
        mixed.hanging = true;
        mixed.mixedFaces = true;
        mixed.cells = {4, 6, 4};
        cases.push_back(mixed);
        MeshCase big{kind, Encoding::BinarySingle};
        big.hanging = true;
        big.bigEndian = true;
        big.cells = {6, 4, 4};
        cases.push_back(big);
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Fluentgen, GeneratedMeshTest, ::testing::ValuesIn(meshCases()), caseName);

// Large meshes, run when FL_SLOW=1.
class LargeGeneratedMeshTest : public GeneratedMeshTest {};

TEST_P(LargeGeneratedMeshTest, AssemblesTheGeneratorsCells) {
    if (std::getenv("FL_SLOW") == nullptr || std::string(std::getenv("FL_SLOW")) != "1") {
        GTEST_SKIP() << "large mesh: runs with FL_SLOW=1";
    }
    checkMesh(specOf(GetParam()));
}

std::vector<MeshCase> largeCases() {
    std::vector<MeshCase> cases;
    MeshCase hex{MeshKind::Hex, Encoding::BinaryDouble};
    hex.cells = {60, 60, 60};
    cases.push_back(hex);
    MeshCase tet{MeshKind::Tet, Encoding::BinaryDouble};
    tet.cells = {30, 30, 30};
    cases.push_back(tet);
    MeshCase mixed{MeshKind::Mixed, Encoding::Ascii};
    mixed.cells = {20, 20, 30};
    mixed.mixedFaces = true;
    cases.push_back(mixed);
    MeshCase hanging{MeshKind::Hex, Encoding::BinaryMixed};
    hanging.hanging = true;
    hanging.cells = {40, 40, 40};
    cases.push_back(hanging);
    MeshCase quad{MeshKind::Quad, Encoding::BinarySingle};
    quad.hanging = true;
    quad.cells = {400, 300, 1};
    cases.push_back(quad);
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Fluentgen, LargeGeneratedMeshTest, ::testing::ValuesIn(largeCases()), caseName);

// ---- What the reader refuses or hands on -----------------------------------------------------------

class GeneratedMeshLimitsTest : public CaseFileTest {};

TEST_F(GeneratedMeshLimitsTest, EightByteIntegersCannotBeReadAsFaces) {
    fluentgen::Spec spec;
    spec.mesh = MeshKind::Hex;
    spec.encoding = Encoding::BinaryDouble;
    spec.intSize = 8;
    std::string path = (folder_ / "wide.cas").string();
    fluentgen::writeCaseFile(spec, path);
    CaseFile* caseFile = newCaseFile(path);
    ASSERT_TRUE(CaseFileScan(caseFile, false, nullptr, nullptr));
    EXPECT_TRUE(messageTexts().empty());
    EXPECT_EQ(caseFile->numFaceZones, static_cast<int>(fluentgen::Model(spec).faceZones().size()));
    CaseFileUse use(caseFile);
    EXPECT_FALSE(CaseFileLoadFaceZone(caseFile, &caseFile->faceZones[0]));
    EXPECT_EQ(messageTexts(), texts({"Read error while reading Faces section (section 3013)."}));
}

TEST_F(GeneratedMeshLimitsTest, PolygonFacesAnywhereTurnTheCellZonePolyhedral) {
    fluentgen::Spec spec;
    spec.mesh = MeshKind::Polyhedral;
    spec.polygonFaceType = 0;  // polygons in mixed face zones
    spec.encoding = Encoding::BinaryDouble;
    std::string path = (folder_ / "poly.cas").string();
    fluentgen::writeCaseFile(spec, path);
    CaseFile* caseFile = newCaseFile(path);
    ASSERT_TRUE(CaseFileScan(caseFile, false, nullptr, nullptr));
    CaseFileUse use(caseFile);
    CellZone* zone = &caseFile->cellZones[0];
    zone->elementType = 4;  // as if it had been declared a hexahedral zone
    ASSERT_TRUE(CellZoneGetNewNodeNumbers(zone, caseFile, caseFile->totalNodes));
    EXPECT_EQ(zone->elementType, 7);
    EXPECT_EQ(zone->newToOldNodes, nullptr);
    bool polygonZone = false;
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        polygonZone = polygonZone || caseFile->faceZones[i].faceType == 5;
    }
    EXPECT_TRUE(polygonZone);
    EXPECT_TRUE(messageTexts().empty());
}

TEST_F(GeneratedMeshLimitsTest, SecondLoadAfterAReleaseRebuildsTheSameCells) {
    fluentgen::Spec spec;
    spec.mesh = MeshKind::Mixed;
    spec.cells = {2, 3, 6};
    spec.hanging = false;
    std::string path = (folder_ / "again.cas").string();
    fluentgen::writeCaseFile(spec, path);
    CaseFile* caseFile = newCaseFile(path);
    ASSERT_TRUE(CaseFileScan(caseFile, false, nullptr, nullptr));
    AssembledCase first, second;
    {
        CaseFileUse use(caseFile);
        ASSERT_TRUE(assembleAllZones(caseFile, &first));
    }
    // Everything bulk went with the last user.
    EXPECT_EQ(caseFile->nodePositions, nullptr);
    EXPECT_EQ(caseFile->cellZones[0].oldToNewNodes, nullptr);
    EXPECT_EQ(caseFile->cellZones[0].newToOldNodes, nullptr);
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        EXPECT_EQ(caseFile->faceZones[i].faceCells, nullptr);
        EXPECT_EQ(caseFile->faceZones[i].zoneNodes, nullptr);
        EXPECT_EQ(caseFile->faceZones[i].nodeNumberMap, nullptr);
    }
    {
        CaseFileUse use(caseFile);
        ASSERT_TRUE(assembleAllZones(caseFile, &second));
    }
    ASSERT_EQ(first.zones.size(), second.zones.size());
    for (size_t z = 0; z < first.zones.size(); ++z) {
        EXPECT_EQ(first.zones[z].globalNodes, second.zones[z].globalNodes) << first.zones[z].label;
    }
}

}  // namespace
}  // namespace casefile_test
