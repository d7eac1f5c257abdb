// A large cell zone is assembled by two threads, each taking half of its
// cells. Whatever the mesh, and whatever is wrong with it, that must give
// what one thread gives: the same slots, the same local face numbers, the
// same result and the same message, the failures included.
#include <climits>
#include <cstdlib>

#include <set>

#include "CaseFileTestSupport.h"
#include "MeshChecks.h"
#include "casefile/CaseFileInternal.h"
#include "tools/fluentgen/FluentGen.h"

namespace casefile_test {
namespace {

using fluentgen::MeshKind;

// Everything an assembly of one cell zone leaves behind.
struct AssemblyOutcome {
    bool ok = false;
    std::vector<int32_t> cellNodes;
    std::vector<std::vector<int32_t>> localFaces;  // faceConnectivity of every face zone
    std::vector<std::string> messages;
};

// Keeps the threshold of the two-thread assembly as a test set it, and puts
// it back afterwards.
class ThresholdGuard {
  public:
    explicit ThresholdGuard(int32_t minCells) : saved_(gParallelAssemblyMinCells) {
        gParallelAssemblyMinCells = minCells;
    }
    ~ThresholdGuard() { gParallelAssemblyMinCells = saved_; }

  private:
    int32_t saved_;
};

fluentgen::Spec box(MeshKind kind, std::array<int, 3> cells) {
    fluentgen::Spec spec;
    spec.mesh = kind;
    spec.cells = cells;
    spec.encoding = fluentgen::Encoding::BinaryDouble;
    return spec;
}

class AssemblyThreadTest : public CaseFileTest {
  protected:
    // Writes and scans a fluentgen case; numbers the nodes of every cell zone
    // (which reads every face zone).
    CaseFile* prepare(const fluentgen::Spec& spec) {
        std::string path = (folder_ / "halves.cas").string();
        fluentgen::writeCaseFile(spec, path);
        CaseFile* caseFile = newCaseFile(path);
        EXPECT_TRUE(CaseFileScan(caseFile, false, nullptr, nullptr));
        CaseFileRetain(caseFile);
        EXPECT_TRUE(CaseFileStoreFaceTreeChildren(caseFile));
        for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
            CellZone* zone = &caseFile->cellZones[i];
            if (zone->zoneType == 32)
                continue;
            if (zone->elementType == 0 && zone->cellTypes == nullptr) {
                EXPECT_TRUE(CaseFileLoadCellZoneCellTypes(caseFile, zone));
            }
            zone->hostZoneType = CellZoneGetZoneType(zone, caseFile, false);
            EXPECT_TRUE(CellZoneGetNewNodeNumbers(zone, caseFile, caseFile->totalNodes));
        }
        minihost::resetRecords();
        return caseFile;
    }

    static std::vector<std::vector<int32_t>> localFaces(const CaseFile* caseFile) {
        std::vector<std::vector<int32_t>> all;
        for (int32_t z = 0; z < caseFile->numFaceZones; ++z) {
            const FaceZone* zone = &caseFile->faceZones[z];
            const size_t count = static_cast<size_t>(zone->lastIndex - zone->firstIndex + 1);
            if (zone->faceConnectivity == nullptr)
                all.emplace_back();
            else
                all.emplace_back(zone->faceConnectivity, zone->faceConnectivity + 2 * count);
        }
        return all;
    }

    static void restoreLocalFaces(CaseFile* caseFile, const std::vector<std::vector<int32_t>>& saved) {
        for (int32_t z = 0; z < caseFile->numFaceZones; ++z) {
            FaceZone* zone = &caseFile->faceZones[z];
            if (zone->faceConnectivity != nullptr)
                std::copy(saved[z].begin(), saved[z].end(), zone->faceConnectivity);
        }
    }

    // Assembles cell zone `index` from `start` slots, with the threshold given.
    AssemblyOutcome assemble(CaseFile* caseFile, int32_t index, const std::vector<int32_t>& start,
                             int32_t minCells) {
        ThresholdGuard guard(minCells);
        minihost::resetRecords();
        CellZone* zone = &caseFile->cellZones[index];
        AssemblyOutcome out;
        out.cellNodes = start;
        const int32_t numCells = zone->lastIndex - zone->firstIndex + 1;
        out.ok = CellZoneAssembleFaces(caseFile, zone, numCells,
                                       nodesPerCellOfHostZoneType(zone->hostZoneType), out.cellNodes.data());
        out.localFaces = localFaces(caseFile);
        out.messages = messageTexts();
        return out;
    }

    static std::vector<int32_t> unsetSlots(const CellZone* zone) {
        const size_t numCells = static_cast<size_t>(zone->lastIndex - zone->firstIndex + 1);
        return std::vector<int32_t>(numCells * nodesPerCellOfHostZoneType(zone->hostZoneType), UNSET_NODE);
    }

    // One thread, then two, from the same local face numbers and slots: both
    // give the same. Returns the outcome of one thread.
    AssemblyOutcome compareOneAndTwo(CaseFile* caseFile, int32_t index, const std::vector<int32_t>& start) {
        const std::vector<std::vector<int32_t>> before = localFaces(caseFile);
        const AssemblyOutcome one = assemble(caseFile, index, start, INT32_MAX);
        restoreLocalFaces(caseFile, before);
        const AssemblyOutcome two = assemble(caseFile, index, start, 0);
        EXPECT_EQ(two.ok, one.ok);
        EXPECT_EQ(two.messages, one.messages);
        EXPECT_TRUE(two.cellNodes == one.cellNodes) << "slots differ";
        EXPECT_TRUE(two.localFaces == one.localFaces) << "local face numbers differ";
        return one;
    }

    // Every classic cell zone of a case, one thread against two.
    void compareAllZones(const fluentgen::Spec& spec) {
        CaseFile* caseFile = prepare(spec);
        int compared = 0;
        for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
            CellZone* zone = &caseFile->cellZones[i];
            if (zone->zoneType == 32 || nodesPerCellOfHostZoneType(zone->hostZoneType) == 0)
                continue;
            SCOPED_TRACE("cell zone " + std::to_string(zone->zoneId));
            const int64_t halvesBefore = gAssembliesInHalves.load();
            const AssemblyOutcome one = compareOneAndTwo(caseFile, i, unsetSlots(zone));
            EXPECT_TRUE(one.ok);
            EXPECT_TRUE(one.messages.empty()) << ::testing::PrintToString(one.messages);
            // The two threads did the work: no fallback to one.
            EXPECT_EQ(gAssembliesInHalves.load(), halvesBefore + 1);
            ++compared;
        }
        EXPECT_GT(compared, 0);
        CaseFileRelease(caseFile);
    }

    // The interior face zone of a generated box.
    static FaceZone* interiorZone(CaseFile* caseFile) {
        for (int32_t z = 0; z < caseFile->numFaceZones; ++z) {
            if (caseFile->faceZones[z].boundaryType == 2)
                return &caseFile->faceZones[z];
        }
        return nullptr;
    }

    // A face of `zone` whose side-0 cell lies in the upper half (upper) or the
    // lower half of cell zone 0, counted from the zone's end or start.
    static int64_t faceInHalf(const CaseFile* caseFile, const FaceZone* zone, bool upper) {
        const CellZone* cells = &caseFile->cellZones[0];
        const int32_t middle = cells->firstIndex + (cells->lastIndex - cells->firstIndex) / 2;
        const int64_t count = zone->lastIndex - zone->firstIndex + 1;
        for (int64_t k = 0; k < count; ++k) {
            const int64_t i = upper ? count - 1 - k : k;
            const int32_t c0 = zone->faceCells[2 * i];
            if (upper ? c0 > middle + 2 : (c0 >= cells->firstIndex && c0 < middle - 2))
                return i;
        }
        return -1;
    }

    // Makes a box of hexahedra, spoils one interior face of a cell in the
    // upper or the lower half of the zone with `damage`, and compares one
    // thread with two; the outcome of one thread.
    template <class Damage>
    AssemblyOutcome compareDamaged(bool upper, Damage damage) {
        minihost::resetRecords();
        CaseFile* caseFile = prepare(box(MeshKind::Hex, {6, 6, 6}));
        AssemblyOutcome one;
        FaceZone* interior = interiorZone(caseFile);
        const int64_t i = interior != nullptr ? faceInHalf(caseFile, interior, upper) : -1;
        if (i < 0) {
            ADD_FAILURE() << "no interior face in the half";
        } else {
            damage(caseFile, interior, i);
            one = compareOneAndTwo(caseFile, 0, unsetSlots(&caseFile->cellZones[0]));
        }
        CaseFileRelease(caseFile);
        return one;
    }
};

TEST_F(AssemblyThreadTest, EveryKindOfMeshGivesWhatOneThreadGives) {
    for (MeshKind kind : {MeshKind::Hex, MeshKind::Tet, MeshKind::Wedge, MeshKind::Pyramid, MeshKind::Mixed,
                          MeshKind::Quad, MeshKind::Tri, MeshKind::Mixed2D}) {
        SCOPED_TRACE(static_cast<int>(kind));
        compareAllZones(box(kind, {7, 5, 4}));
    }
}

TEST_F(AssemblyThreadTest, MixedFacesHangingNodesAndTwoCellZonesGiveWhatOneThreadGives) {
    fluentgen::Spec mixedFaces = box(MeshKind::Mixed, {6, 5, 4});
    mixedFaces.mixedFaceTypes = true;
    mixedFaces.mixedCellBodies = true;
    compareAllZones(mixedFaces);

    fluentgen::Spec hanging = box(MeshKind::Hex, {6, 5, 4});
    hanging.hanging = true;
    compareAllZones(hanging);

    fluentgen::Spec twoZones = box(MeshKind::Hex, {8, 5, 4});
    twoZones.cellZoneTypes = {1, 17};
    compareAllZones(twoZones);

    fluentgen::Spec ascii = box(MeshKind::Tet, {5, 4, 3});
    ascii.encoding = fluentgen::Encoding::Ascii;
    compareAllZones(ascii);
}

TEST_F(AssemblyThreadTest, ZonesAboveTheThresholdAreAssembledInHalvesAsTheGeneratorMadeThem) {
    // At the threshold as it stands, through the numbering and assembly of
    // the node map loader: every cell holds the nodes fluentgen gave it, and
    // every zone turns one way.
    for (MeshKind kind : {MeshKind::Hex, MeshKind::Tet}) {
        SCOPED_TRACE(static_cast<int>(kind));
        const fluentgen::Spec spec = box(
            kind, kind == MeshKind::Hex ? std::array<int, 3>{40, 40, 33} : std::array<int, 3>{21, 21, 21});
        const std::string path = (folder_ / "large.cas").string();
        fluentgen::writeCaseFile(spec, path);
        fluentgen::Model model(spec);
        CaseFile* caseFile = newCaseFile(path);
        ASSERT_TRUE(CaseFileScan(caseFile, false, nullptr, nullptr));
        const CellZone* cellZone = &caseFile->cellZones[0];
        ASSERT_GE(cellZone->lastIndex - cellZone->firstIndex + 1, gParallelAssemblyMinCells);
        const int64_t halvesBefore = gAssembliesInHalves.load();
        {
            CaseFileUse use(caseFile);
            AssembledCase assembled;
            ASSERT_TRUE(assembleAllZones(caseFile, &assembled));
            EXPECT_EQ(gAssembliesInHalves.load(), halvesBefore + 1);
            ASSERT_FALSE(assembled.zones.empty());
            const AssembledZone& zone = assembled.zones[0];
            ASSERT_TRUE(zone.isCellZone);
            EXPECT_EQ(zone.unsetSlots, 0);
            EXPECT_TRUE(hasOneOrientation(caseFile, zone)) << orientationSummary(caseFile, zone);
            size_t wrong = 0;
            for (size_t e = 0; e < zone.numElements(); ++e) {
                const std::vector<int64_t> expected =
                    model.cellNodes(cellZone->firstIndex + static_cast<int64_t>(e));
                const std::set<int64_t> want(expected.begin(), expected.end());
                const std::set<int64_t> got(
                    zone.globalNodes.begin() + static_cast<long>(e * zone.corners),
                    zone.globalNodes.begin() + static_cast<long>((e + 1) * zone.corners));
                wrong += want == got ? 0 : 1;
            }
            EXPECT_EQ(wrong, 0u);
        }
        EXPECT_TRUE(messageTexts().empty()) << ::testing::PrintToString(messageTexts());
    }
}

TEST_F(AssemblyThreadTest, AssemblingTwiceGivesWhatOneThreadGives) {
    CaseFile* caseFile = prepare(box(MeshKind::Hex, {6, 6, 6}));
    const CellZone* zone = &caseFile->cellZones[0];
    // The second assembly finds the local face numbers of the first.
    ASSERT_TRUE(assemble(caseFile, 0, unsetSlots(zone), INT32_MAX).ok);
    const AssemblyOutcome again = compareOneAndTwo(caseFile, 0, unsetSlots(zone));
    EXPECT_TRUE(again.ok);
    CaseFileRelease(caseFile);
}

TEST_F(AssemblyThreadTest, AFaceThatFitsNoCellFailsAsWithOneThreadInEitherHalf) {
    for (bool upper : {false, true}) {
        SCOPED_TRACE(upper ? "upper half" : "lower half");
        // Two nodes of the face swapped: its edges run across, not around.
        const AssemblyOutcome one = compareDamaged(upper, [](CaseFile*, FaceZone* interior, int64_t i) {
            std::swap(interior->faceNodes[4 * i + 1], interior->faceNodes[4 * i + 2]);
        });
        EXPECT_FALSE(one.ok);
        ASSERT_EQ(one.messages.size(), 1u) << ::testing::PrintToString(one.messages);
        EXPECT_EQ(one.messages[0].rfind("Error assembling cell ", 0), 0u) << one.messages[0];
        EXPECT_NE(one.messages[0].find(" from faces."), std::string::npos) << one.messages[0];
    }
}

TEST_F(AssemblyThreadTest, ANodeOutsideTheCaseFailsAsWithOneThread) {
    for (bool upper : {false, true}) {
        SCOPED_TRACE(upper ? "upper half" : "lower half");
        const AssemblyOutcome one =
            compareDamaged(upper, [](CaseFile* caseFile, FaceZone* interior, int64_t i) {
                interior->faceNodes[4 * i] = caseFile->totalNodes + 5;
            });
        EXPECT_FALSE(one.ok);
        EXPECT_EQ(one.messages, texts({"Error assembling cells from faces."}));
    }
}

TEST_F(AssemblyThreadTest, FailuresInBothHalvesEndAtTheFirstAsWithOneThread) {
    CaseFile* caseFile = prepare(box(MeshKind::Hex, {6, 6, 6}));
    FaceZone* interior = interiorZone(caseFile);
    ASSERT_NE(interior, nullptr);
    const int64_t low = faceInHalf(caseFile, interior, false);
    const int64_t high = faceInHalf(caseFile, interior, true);
    ASSERT_GE(low, 0);
    ASSERT_GE(high, 0);
    // The upper half fails by a node outside the case, the lower half (which
    // one thread meets later or earlier) by swapped nodes.
    interior->faceNodes[4 * high] = caseFile->totalNodes + 1;
    std::swap(interior->faceNodes[4 * low + 1], interior->faceNodes[4 * low + 2]);
    const AssemblyOutcome one = compareOneAndTwo(caseFile, 0, unsetSlots(&caseFile->cellZones[0]));
    EXPECT_FALSE(one.ok);
    EXPECT_EQ(one.messages.size(), 1u) << ::testing::PrintToString(one.messages);
    CaseFileRelease(caseFile);
}

TEST_F(AssemblyThreadTest, SlotsTheCallerSetGiveWhatOneThreadGives) {
    CaseFile* caseFile = prepare(box(MeshKind::Hex, {6, 6, 6}));
    const CellZone* zone = &caseFile->cellZones[0];
    std::vector<int32_t> start = unsetSlots(zone);
    // A cell of the upper half comes with a slot already set.
    start[start.size() - 8 * 3 + 5] = 7;
    const int64_t halvesBefore = gAssembliesInHalves.load();
    const AssemblyOutcome one = compareOneAndTwo(caseFile, 0, start);
    // Two threads gave up on finding the slot and left it to one.
    EXPECT_EQ(gAssembliesInHalves.load(), halvesBefore);
    (void)one;
    CaseFileRelease(caseFile);
}

TEST_F(AssemblyThreadTest, AFaceZoneNotInMemoryIsReadByOneThread) {
    CaseFile* caseFile = prepare(box(MeshKind::Hex, {6, 6, 6}));
    // A boundary zone let go: the walk must read it, which only one thread does.
    FaceZone* boundary = nullptr;
    for (int32_t z = 0; z < caseFile->numFaceZones; ++z) {
        if (caseFile->faceZones[z].boundaryType != 2)
            boundary = &caseFile->faceZones[z];
    }
    ASSERT_NE(boundary, nullptr);
    faceZoneFreeFaceSectionArrays(boundary);
    const int64_t halvesBefore = gAssembliesInHalves.load();
    ThresholdGuard guard(0);
    const CellZone* zone = &caseFile->cellZones[0];
    std::vector<int32_t> slots = unsetSlots(zone);
    EXPECT_TRUE(CellZoneAssembleFaces(caseFile, &caseFile->cellZones[0],
                                      zone->lastIndex - zone->firstIndex + 1, 8, slots.data()));
    EXPECT_EQ(gAssembliesInHalves.load(), halvesBefore);
    EXPECT_NE(boundary->faceCells, nullptr);
    EXPECT_TRUE(std::find(slots.begin(), slots.end(), UNSET_NODE) == slots.end());
    CaseFileRelease(caseFile);
}

}  // namespace
}  // namespace casefile_test
