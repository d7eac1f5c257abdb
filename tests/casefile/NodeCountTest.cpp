// The node count of a cell zone for the zones of a scan: face zones read
// through a buffer and not kept, where the case allows it, large ones by two
// threads. The count, the messages and the result are those of the numbering
// that loads the faces, and no numbering is left behind. And the numbering of
// a boundary zone for a scan, read the same way: the nodes, map, messages and
// result of the numbering that loads the faces, and the extremes of the cells
// on side 0 of its faces.
#include <algorithm>
#include <array>
#include <climits>
#include <fstream>
#include <functional>
#include <iterator>
#include <thread>

#include "CaseFileTestSupport.h"
#include "casefile/CaseFileInternal.h"
#include "tools/fluentgen/FluentGen.h"

namespace casefile_test {
namespace {

using fluentgen::MeshKind;

// What a numbering of every classic cell zone of a case left behind.
struct Numbering {
    bool ok = true;
    std::vector<std::vector<int32_t>> newToOld;  // per cell zone; empty when not numbered
    std::vector<int32_t> counts;                 // per cell zone: numNodes, 0 when not counted
    int numbered = 0;                            // cell zones left with oldToNewNodes
    std::vector<int32_t> elementTypes;           // per cell zone
    std::vector<std::string> messages;
    int facesInMemory = 0;     // face zones with classic arrays afterwards
    int oneFaceTypeZones = 0;  // face zones of one face type (2, 3 or 4) after the scan
    int mixedZones = 0;        // the other face zones
};

class NodeCountTest : public CaseFileTest {
  protected:
    // Runs `read` once with every body read through buffers and once with
    // every body mapped from the file where the system maps it, and adds the
    // bodies mapped to mappedBodies_. Returns both outcomes, buffered first.
    template <typename Outcome, typename Read>
    std::pair<Outcome, Outcome> bufferedAndMapped(Read read) {
        readBodies(false);
        Outcome buffered = read();
        readBodies(true);
        const int64_t before = gFaceBodiesMapped.load();
        Outcome mapped = read();
        mappedBodies_ += gFaceBodiesMapped.load() - before;
        defaultBodyReads();
        return {std::move(buffered), std::move(mapped)};
    }

    std::string write(const fluentgen::Spec& spec, const std::string& name = "count.cas") {
        const std::string path = (folder_ / name).string();
        fluentgen::writeCaseFile(spec, path);
        return path;
    }

    // Scans the file and numbers every cell zone, one way or the other, as
    // the zones of a load are made (within one use of the case).
    Numbering number(const std::string& path, bool withoutFaces) {
        minihost::resetRecords();
        CaseFile* caseFile = newCaseFile(path);
        Numbering out;
        if (!CaseFileScan(caseFile, false, nullptr, nullptr)) {
            out.ok = false;
            out.messages = messageTexts();
            return out;
        }
        for (int32_t z = 0; z < caseFile->numFaceZones; ++z) {
            const int32_t type = caseFile->faceZones[z].faceType;
            out.oneFaceTypeZones += type >= 2 && type <= 4 ? 1 : 0;
            out.mixedZones += type >= 2 && type <= 4 ? 0 : 1;
        }
        CaseFileUse use(caseFile);
        for (int32_t i = 0; i < caseFile->numCellZones && out.ok; ++i) {
            CellZone* zone = &caseFile->cellZones[i];
            if (zone->zoneType == 32)
                continue;
            out.ok = withoutFaces ? CellZoneGetNodeCountWithoutFaces(zone, caseFile, caseFile->totalNodes)
                                  : CellZoneGetNewNodeNumbers(zone, caseFile, caseFile->totalNodes);
        }
        for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
            const CellZone* zone = &caseFile->cellZones[i];
            out.elementTypes.push_back(zone->elementType);
            out.counts.push_back(zone->numNodes);
            out.numbered += zone->oldToNewNodes != nullptr ? 1 : 0;
            if (zone->newToOldNodes == nullptr)
                out.newToOld.emplace_back();
            else
                out.newToOld.emplace_back(zone->newToOldNodes, zone->newToOldNodes + zone->numNodes);
        }
        for (int32_t z = 0; z < caseFile->numFaceZones; ++z)
            out.facesInMemory += caseFile->faceZones[z].faceCells != nullptr ? 1 : 0;
        out.messages = messageTexts();
        return out;
    }

    // Both ways on one file: the same counts, result and messages, and the
    // count leaves no numbering. Returns the count's outcome.
    // The scan's way runs with the bodies read through buffers and mapped
    // from the file, with the same outcome.
    Numbering compare(const std::string& path) {
        const Numbering loading = number(path, false);
        const auto [buffered, streaming] = bufferedAndMapped<Numbering>([&] { return number(path, true); });
        EXPECT_EQ(streaming.ok, buffered.ok);
        EXPECT_EQ(streaming.messages, buffered.messages);
        EXPECT_EQ(streaming.counts, buffered.counts);
        EXPECT_EQ(streaming.elementTypes, buffered.elementTypes);
        EXPECT_EQ(streaming.facesInMemory, buffered.facesInMemory);
        EXPECT_EQ(streaming.ok, loading.ok);
        EXPECT_EQ(streaming.messages, loading.messages);
        EXPECT_EQ(streaming.elementTypes, loading.elementTypes);
        if (loading.ok) {
            EXPECT_EQ(streaming.counts, loading.counts);
            for (size_t i = 0; i < loading.newToOld.size(); ++i)
                EXPECT_EQ(static_cast<size_t>(loading.counts[i]), loading.newToOld[i].size());
        }
        EXPECT_EQ(streaming.numbered, 0);
        for (const std::vector<int32_t>& numbering : streaming.newToOld)
            EXPECT_TRUE(numbering.empty());
        return streaming;
    }

    // Both ways on a case of one cell zone: it succeeds with `nodes` nodes.
    void expectOneZoneOf(const std::string& path, int32_t nodes) {
        const Numbering streaming = compare(path);
        EXPECT_TRUE(streaming.ok);
        ASSERT_EQ(streaming.counts.size(), 1u);
        EXPECT_EQ(streaming.counts[0], nodes);
    }

    int64_t mappedBodies_ = 0;  // bodies the mapped runs of bufferedAndMapped mapped
};

fluentgen::Spec box(MeshKind kind, fluentgen::Encoding encoding = fluentgen::Encoding::BinaryDouble) {
    fluentgen::Spec spec;
    spec.mesh = kind;
    spec.cells = {5, 4, 3};
    spec.encoding = encoding;
    return spec;
}

TEST_F(NodeCountTest, EveryKindOfMeshIsNumberedAsByLoadingWithoutKeepingFaces) {
    for (MeshKind kind : {MeshKind::Hex, MeshKind::Tet, MeshKind::Wedge, MeshKind::Pyramid, MeshKind::Mixed,
                          MeshKind::Quad, MeshKind::Tri, MeshKind::Mixed2D}) {
        SCOPED_TRACE(static_cast<int>(kind));
        const Numbering streaming = compare(write(box(kind)));
        EXPECT_TRUE(streaming.ok);
        EXPECT_TRUE(streaming.messages.empty()) << ::testing::PrintToString(streaming.messages);
        // Zones of one face type were read without being kept; mixed ones
        // (wedges, pyramids and mixed cells have some) were loaded.
        if (kind == MeshKind::Hex || kind == MeshKind::Tet || kind == MeshKind::Quad ||
            kind == MeshKind::Tri) {
            EXPECT_GT(streaming.oneFaceTypeZones, 0);
        }
        EXPECT_EQ(streaming.facesInMemory, streaming.mixedZones);
    }
    // The zones of one face type were also read from mappings of the file.
    EXPECT_GT(mappedBodies_, 0);
}

TEST_F(NodeCountTest, OtherByteOrderAndTwoCellZonesAreReadWithoutKeepingFaces) {
    fluentgen::Spec big = box(MeshKind::Tet);
    big.byteOrder = fluentgen::ByteOrder::Big;
    Numbering streaming = compare(write(big));
    EXPECT_TRUE(streaming.ok);
    EXPECT_EQ(streaming.facesInMemory, 0);
    EXPECT_GT(mappedBodies_, 0);  // swapped after being taken from the mapping

    fluentgen::Spec two = box(MeshKind::Hex);
    two.cells = {6, 3, 3};
    two.cellZoneTypes = {1, 17};
    streaming = compare(write(two));
    EXPECT_TRUE(streaming.ok);
    EXPECT_EQ(streaming.counts.size(), 2u);
    EXPECT_EQ(streaming.facesInMemory, 0);
}

TEST_F(NodeCountTest, CasesItCannotStreamAreLoadedAsBefore) {
    // Text bodies, mixed face zones and hanging nodes (face trees) are loaded.
    for (int variant = 0; variant < 3; ++variant) {
        SCOPED_TRACE(variant);
        fluentgen::Spec spec =
            box(MeshKind::Hex, variant == 0 ? fluentgen::Encoding::Ascii : fluentgen::Encoding::BinaryDouble);
        spec.mixedFaceTypes = variant == 1;
        spec.hanging = variant == 2;
        const Numbering streaming = compare(write(spec));
        EXPECT_TRUE(streaming.ok);
        EXPECT_GT(streaming.facesInMemory, 0);
    }
}

TEST_F(NodeCountTest, ABadNodeNumberGivesTheLoadsMessage) {
    int width = 0;
    // Interior faces are zone 2 in fluentgen's boxes; a boundary face too.
    for (int32_t zoneId : {2, 5}) {
        SCOPED_TRACE(zoneId);
        const std::string damaged = write(box(MeshKind::Hex), "damaged" + std::to_string(zoneId) + ".cas");
        const int64_t place = facePlace(damaged, zoneId, 7, 2, &width);
        ASSERT_GT(place, 0);
        poke(damaged, place, int32Bytes(0));
        const Numbering streaming = compare(damaged);
        EXPECT_FALSE(streaming.ok);
        ASSERT_EQ(streaming.messages.size(), 1u);
        EXPECT_EQ(streaming.messages[0],
                  "Bad node number 0 for node 3 of face #8 in Faces section (Section 3013).");
    }
}

TEST_F(NodeCountTest, ABadNodeInAnyPlaceOfAFaceGivesTheLoadsMessage) {
    // Faces are checked four at a time before a block is marked: a bad node
    // in each place of the first four faces (every lane of every group) and
    // in the last face (checked alone when the count is not a multiple of four).
    for (MeshKind kind : {MeshKind::Hex, MeshKind::Tet, MeshKind::Quad}) {
        SCOPED_TRACE(static_cast<int>(kind));
        const std::string probe = write(box(kind), "probe.cas");
        int width = 0;
        const int64_t end = facePlace(probe, 2, -1, 0, &width);
        const int64_t faces = (end - facePlace(probe, 2, 0, 0, &width)) / (width * 4);
        ASSERT_GT(faces % 4, 0);
        for (int64_t face : {int64_t{0}, int64_t{1}, int64_t{2}, int64_t{3}, faces - 1}) {
            for (int k = 0; k < width - 2; ++k) {
                SCOPED_TRACE(std::to_string(face) + " " + std::to_string(k));
                const std::string damaged = write(box(kind), "damaged.cas");
                poke(damaged, facePlace(damaged, 2, face, k, &width), int32Bytes(0));
                const Numbering streaming = compare(damaged);
                EXPECT_FALSE(streaming.ok);
                ASSERT_EQ(streaming.messages.size(), 1u);
                EXPECT_EQ(streaming.messages[0], "Bad node number 0 for node " + std::to_string(k + 1) +
                                                     " of face #" + std::to_string(face + 1) +
                                                     " in Faces section (Section 3013).");
            }
        }
    }
}

TEST_F(NodeCountTest, NodesAboveTheCaseAreLeftOut) {
    // A node number above the case's nodes is passed over, by the count as by
    // the numbering, wherever it stands in a block.
    for (int64_t face : {0, 1, 2, 3, 9}) {
        SCOPED_TRACE(face);
        const std::string path = write(box(MeshKind::Hex));
        int width = 0;
        poke(path, facePlace(path, 2, face, static_cast<int>(face % 4), &width), int32Bytes(6 * 5 * 4 + 1));
        expectOneZoneOf(path, 6 * 5 * 4);
    }
}

// A box of 24 x 20 x 20 hexahedra: its interior zone (id 2) has 27,440
// faces, more than one read of 8192 faces, which is checked and marked a
// run of faces at a time.
fluentgen::Spec largeBox(fluentgen::ByteOrder order) {
    fluentgen::Spec spec = box(MeshKind::Hex);
    spec.cells = {24, 20, 20};
    spec.byteOrder = order;
    return spec;
}

// A 4-byte integer as a file of `order` holds it.
std::string int32BytesIn(fluentgen::ByteOrder order, int32_t value) {
    const std::string bytes = int32Bytes(value);
    const bool here = order == fluentgen::ByteOrder::Little;
    const uint16_t probe = 1;
    const bool littleMachine = *reinterpret_cast<const uint8_t*>(&probe) == 1;
    return here == littleMachine ? bytes : std::string(bytes.rbegin(), bytes.rend());
}

TEST_F(NodeCountTest, AFaceBehindTheFirstRunsOfARead) {
    // A face outside the checks, a run or more into a read of faces, with the
    // runs before it marked: the rest of the read goes face by face, from
    // that run on, in the file's byte order or the other, mapped or not. A
    // node above the case is left out (the box's other faces hold it), a
    // node of 0 gives the load's message.
    const int32_t nodes = 25 * 21 * 21;
    for (fluentgen::ByteOrder order : {fluentgen::ByteOrder::Little, fluentgen::ByteOrder::Big}) {
        for (int64_t face : {int64_t{200}, int64_t{5001}, int64_t{8191}, int64_t{8192 + 700}}) {
            SCOPED_TRACE(std::to_string(static_cast<int>(order)) + " " + std::to_string(face));
            int width = 0;
            const std::string above = write(largeBox(order), "above.cas");
            poke(above, facePlace(above, 2, face, 2, &width), int32BytesIn(order, nodes + 5));
            expectOneZoneOf(above, nodes);

            const std::string bad = write(largeBox(order), "bad.cas");
            poke(bad, facePlace(bad, 2, face, 1, &width), int32BytesIn(order, 0));
            const Numbering streaming = compare(bad);
            EXPECT_FALSE(streaming.ok);
            ASSERT_EQ(streaming.messages.size(), 1u);
            EXPECT_EQ(streaming.messages[0], "Bad node number 0 for node 2 of face #" +
                                                 std::to_string(face + 1) +
                                                 " in Faces section (Section 3013).");
        }
    }
    EXPECT_GT(mappedBodies_, 0);
}

TEST_F(NodeCountTest, FacesWithNoCellOfTheZoneAreNotCounted) {
    // A corner node of a box lies on three boundary faces and no interior
    // one: with a cell outside the zone on side 0 of those faces (side 1 of
    // a boundary face is 0), the corner is not a node of the zone.
    const std::string path = write(box(MeshKind::Hex));
    int width = 0;
    int changed = 0;
    for (int32_t zoneId = 3; zoneId <= 8; ++zoneId) {
        const int64_t end = facePlace(path, zoneId, -1, 0, &width);
        for (int64_t face = 0;; ++face) {
            const int64_t place = facePlace(path, zoneId, face, 0, &width);
            if (place < 0 || place >= end)
                break;
            std::ifstream in(path, std::ios::binary);
            in.seekg(place);
            std::vector<int32_t> row(static_cast<size_t>(width));
            in.read(reinterpret_cast<char*>(row.data()), width * 4);
            if (std::find(row.begin(), row.end() - 2, 1) != row.end() - 2) {
                poke(path, place + (width - 2) * 4, int32Bytes(1000));
                ++changed;
            }
        }
    }
    ASSERT_EQ(changed, 3);
    expectOneZoneOf(path, 6 * 5 * 4 - 1);
}

TEST_F(NodeCountTest, FacesWithTheZoneOnSideOneOnlyAreCounted) {
    const std::string path = write(box(MeshKind::Hex));
    int width = 0;
    ASSERT_GT(facePlace(path, 2, 0, 0, &width), 0);
    // No cell on side 0 of any interior face: the nodes inside the box are
    // reached through side 1 alone.
    for (int64_t face = 0;; ++face) {
        const int64_t end = facePlace(path, 2, -1, 0, &width);
        const int64_t place = facePlace(path, 2, face, width - 2, &width);
        if (place >= end)
            break;
        poke(path, place, int32Bytes(0));
    }
    expectOneZoneOf(path, 6 * 5 * 4);
}

TEST_F(NodeCountTest, ADamagedEndOfTheFacesGivesTheLoadsMessage) {
    const std::string path = write(box(MeshKind::Hex));
    int width = 0;
    const int64_t end = facePlace(path, 2, -1, 0, &width);
    ASSERT_GT(end, 0);
    // ")\nEnd of Binary Section" follows the last face: the marker is spoilt,
    // which fails the section without a message of its own.
    poke(path, end + 2, "Xnd");
    const Numbering streaming = compare(path);
    EXPECT_FALSE(streaming.ok);
    EXPECT_TRUE(streaming.messages.empty()) << ::testing::PrintToString(streaming.messages);
}

TEST_F(NodeCountTest, ACutFileGivesTheLoadsMessage) {
    const std::string path = write(box(MeshKind::Hex));
    int width = 0;
    const int64_t place = facePlace(path, 2, 20, 1, &width);
    ASSERT_GT(place, 0);
    std::filesystem::resize_file(path, static_cast<uintmax_t>(place));
    const Numbering streaming = compare(path);
    EXPECT_FALSE(streaming.ok);
    EXPECT_FALSE(streaming.messages.empty());
}

// Every face taken by the threads of a shared zone, in the order taken.
struct Takes {
    std::vector<std::pair<int64_t, int64_t>> ranges[2];  // per thread, [begin, end)

    // Each face of 0..count-1 taken exactly once.
    bool coverOnce(int64_t count) const {
        std::vector<int> seen(static_cast<size_t>(count), 0);
        for (const auto& thread : ranges)
            for (const auto& range : thread)
                for (int64_t face = range.first; face < range.second; ++face) {
                    if (face < 0 || face >= count)
                        return false;
                    ++seen[static_cast<size_t>(face)];
                }
        return std::all_of(seen.begin(), seen.end(), [](int n) { return n == 1; });
    }
};

class FaceSharesTest : public ::testing::Test {
  protected:
    void SetUp() override { saved_ = gSharedFacesPerTake; }
    void TearDown() override { gSharedFacesPerTake = saved_; }

    // Takes for thread `me` until it gets nothing, recording what it took.
    static void takeAll(FaceShares* shares, int me, Takes* takes) {
        int64_t begin = 0, end = 0;
        while (FaceSharesTake(shares, me, &begin, &end))
            takes->ranges[me].emplace_back(begin, end);
    }

  private:
    int64_t saved_ = 0;
};

TEST_F(FaceSharesTest, AThreadThatRunsOutTakesTheUpperHalfOfTheOthersRest) {
    gSharedFacesPerTake = 10;
    FaceShares shares;
    FaceSharesInit(&shares, 100);
    Takes takes;
    // Thread 1 takes one block, then thread 0 runs through everything it can.
    int64_t begin = 0, end = 0;
    ASSERT_TRUE(FaceSharesTake(&shares, 1, &begin, &end));
    takes.ranges[1].emplace_back(begin, end);
    EXPECT_EQ(begin, 50);
    EXPECT_EQ(end, 60);
    takeAll(&shares, 0, &takes);
    // Its own half, then the upper half of 60..99 (80..99), then of 60..79
    // (70..79); a rest of 10 is left to thread 1.
    const std::vector<std::pair<int64_t, int64_t>> expected = {{0, 10},  {10, 20}, {20, 30},  {30, 40},
                                                               {40, 50}, {80, 90}, {90, 100}, {70, 80}};
    EXPECT_EQ(takes.ranges[0], expected);
    takeAll(&shares, 1, &takes);
    EXPECT_EQ(takes.ranges[1], (std::vector<std::pair<int64_t, int64_t>>{{50, 60}, {60, 70}}));
    EXPECT_TRUE(takes.coverOnce(100));
}

TEST_F(FaceSharesTest, EveryFaceIsTakenOnceWhateverTheOrder) {
    for (int64_t take : {1, 3, 8192}) {
        for (int64_t count : {1, 2, 7, 64, 1001}) {
            for (unsigned pattern : {0u, 1u, 0x5555u, 0x3c3cu, 0xffffu}) {
                SCOPED_TRACE(std::to_string(take) + " " + std::to_string(count) + " " +
                             std::to_string(pattern));
                gSharedFacesPerTake = take;
                FaceShares shares;
                FaceSharesInit(&shares, count);
                Takes takes;
                bool live[2] = {true, true};
                // The threads take in turns given by the bits of the pattern.
                for (unsigned step = 0; live[0] || live[1]; ++step) {
                    int me = (pattern >> (step % 16)) & 1;
                    if (!live[me])
                        me = 1 - me;
                    int64_t begin = 0, end = 0;
                    if (FaceSharesTake(&shares, me, &begin, &end)) {
                        EXPECT_LT(begin, end);
                        EXPECT_LE(end - begin, take);
                        takes.ranges[me].emplace_back(begin, end);
                    } else {
                        live[me] = false;
                    }
                }
                EXPECT_TRUE(takes.coverOnce(count));
            }
        }
    }
}

TEST_F(FaceSharesTest, TwoThreadsTakeEveryFaceOnce) {
    gSharedFacesPerTake = 2;
    for (int round = 0; round < 50; ++round) {
        FaceShares shares;
        FaceSharesInit(&shares, 997);
        Takes takes;
        std::thread other([&] { takeAll(&shares, 1, &takes); });
        takeAll(&shares, 0, &takes);
        other.join();
        ASSERT_TRUE(takes.coverOnce(997)) << round;
    }
}

// Large face zones are read by two threads, which share the faces out as
// they go. A low threshold sends the small zones of these boxes that way, and
// a small take makes the threads split each other's rest many times over.
class NodeCountThreadTest : public NodeCountTest {
  protected:
    void SetUp() override {
        NodeCountTest::SetUp();
        saved_ = gParallelMarkMinFaces;
        savedTake_ = gSharedFacesPerTake;
        gParallelMarkMinFaces = 8;
        gSharedFacesPerTake = 3;
    }
    void TearDown() override {
        gParallelMarkMinFaces = saved_;
        gSharedFacesPerTake = savedTake_;
        NodeCountTest::TearDown();
    }
    // Face zones that two threads read during `run`.
    template <typename Run>
    static int64_t zonesInHalves(Run run) {
        const int64_t before = gFaceZonesMarkedInParallel.load();
        run();
        return gFaceZonesMarkedInParallel.load() - before;
    }
    // A box of hexahedra whose interior face zone (id 2) goes to two threads.
    std::string writeBox(const std::string& name = "count.cas") {
        fluentgen::Spec spec = box(MeshKind::Hex);
        spec.cells = {7, 5, 4};
        return write(spec, name);
    }
    // Faces of the interior face zone of such a box.
    static int64_t interiorFaces(const std::string& path) {
        int width = 0;
        const int64_t end = facePlace(path, 2, -1, 0, &width);
        const int64_t first = facePlace(path, 2, 0, 0, &width);
        EXPECT_GT(end, first);
        return (end - first) / (width * 4);
    }

  private:
    int64_t saved_ = 0;
    int64_t savedTake_ = 0;
};

TEST_F(NodeCountThreadTest, TwoThreadsCountAsTheLoadingNumbering) {
    struct Case {
        MeshKind kind;
        fluentgen::ByteOrder order;
        std::array<int, 3> cells;  // z unused in 2D
        bool is2D;
    };
    for (const Case& c : {Case{MeshKind::Hex, fluentgen::ByteOrder::Little, {7, 5, 4}, false},
                          Case{MeshKind::Tet, fluentgen::ByteOrder::Big, {4, 4, 3}, false},
                          Case{MeshKind::Quad, fluentgen::ByteOrder::Little, {9, 7, 1}, true},
                          Case{MeshKind::Tri, fluentgen::ByteOrder::Big, {6, 5, 1}, true}}) {
        SCOPED_TRACE(static_cast<int>(c.kind));
        fluentgen::Spec spec = box(c.kind);
        spec.cells = c.cells;
        spec.byteOrder = c.order;
        const std::string path = write(spec);
        Numbering streaming;
        EXPECT_GT(zonesInHalves([&] { streaming = compare(path); }), 0);
        EXPECT_TRUE(streaming.ok);
        EXPECT_EQ(streaming.facesInMemory, 0);
        // Every node of a box belongs to its one cell zone.
        int32_t nodes = (c.cells[0] + 1) * (c.cells[1] + 1) * (c.is2D ? 1 : c.cells[2] + 1);
        ASSERT_EQ(streaming.counts.size(), 1u);
        EXPECT_EQ(streaming.counts[0], nodes);
    }
    EXPECT_GT(mappedBodies_, 0);
}

TEST_F(NodeCountThreadTest, TwoCellZonesEachCountTheirOwnNodes) {
    fluentgen::Spec two = box(MeshKind::Hex);
    two.cells = {8, 3, 3};
    two.cellZoneTypes = {1, 17};
    Numbering streaming;
    EXPECT_GT(zonesInHalves([&] { streaming = compare(write(two)); }), 0);
    EXPECT_TRUE(streaming.ok);
    ASSERT_EQ(streaming.counts.size(), 2u);
    // The two zones share the nodes of the plane between them.
    EXPECT_EQ(streaming.counts[0] + streaming.counts[1], 9 * 4 * 4 + 4 * 4);
}

TEST_F(NodeCountThreadTest, ABadNodeInEitherHalfGivesTheLoadsMessage) {
    const int64_t faces = interiorFaces(writeBox("probe.cas"));
    int width = 0;
    for (int64_t face : {int64_t{3}, faces / 2 + 3, faces - 1}) {
        SCOPED_TRACE(face);
        const std::string damaged = writeBox("bad" + std::to_string(face) + ".cas");
        poke(damaged, facePlace(damaged, 2, face, 1, &width), int32Bytes(-4));
        const Numbering streaming = compare(damaged);
        EXPECT_FALSE(streaming.ok);
        ASSERT_EQ(streaming.messages.size(), 1u);
        EXPECT_EQ(streaming.messages[0], "Bad node number -4 for node 2 of face #" +
                                             std::to_string(face + 1) + " in Faces section (Section 3013).");
    }
}

TEST_F(NodeCountThreadTest, AFileCutInTheSecondHalfGivesTheLoadsMessage) {
    const std::string path = writeBox();
    const int64_t faces = interiorFaces(path);
    int width = 0;
    std::filesystem::resize_file(path, static_cast<uintmax_t>(facePlace(path, 2, faces - 5, 2, &width)));
    const Numbering streaming = compare(path);
    EXPECT_FALSE(streaming.ok);
    EXPECT_FALSE(streaming.messages.empty());
}

TEST_F(NodeCountThreadTest, ADamagedEndMarkerBehindTheSecondHalfFailsAsTheLoad) {
    const std::string path = writeBox();
    int width = 0;
    const int64_t end = facePlace(path, 2, -1, 0, &width);
    ASSERT_GT(end, 0);
    poke(path, end + 2, "Xnd");
    Numbering streaming;
    // Both halves are read before the marker is met.
    EXPECT_GT(zonesInHalves([&] { streaming = compare(path); }), 0);
    EXPECT_FALSE(streaming.ok);
    EXPECT_TRUE(streaming.messages.empty()) << ::testing::PrintToString(streaming.messages);
}

// The numbering that loads the faces marks a large zone in memory with two
// threads as well: the numbering, the count and the messages are those of one
// thread, on every kind of mesh, with mixed face zones, hanging nodes (whose
// zones with child faces one thread marks) and two cell zones.
TEST_F(NodeCountThreadTest, TwoThreadsNumberAZoneInMemoryAsOne) {
    struct Case {
        MeshKind kind;
        bool mixedFaces;
        bool hanging;
        std::vector<int> cellZoneTypes;  // empty: the generator's default
    };
    const std::vector<Case> cases = {
        {MeshKind::Hex, false, false, {}},        {MeshKind::Tet, false, false, {}},
        {MeshKind::Wedge, false, false, {}},      {MeshKind::Pyramid, true, false, {}},
        {MeshKind::Mixed, false, false, {}},      {MeshKind::Quad, false, false, {}},
        {MeshKind::Tri, true, false, {}},         {MeshKind::Mixed2D, false, false, {}},
        {MeshKind::Hex, false, true, {}},         {MeshKind::Hex, true, false, {1, 17}},
        {MeshKind::Wedge, false, false, {1, 17}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(static_cast<int>(c.kind)) + (c.mixedFaces ? " mixed faces" : "") +
                     (c.hanging ? " hanging" : "") + " zones " + std::to_string(c.cellZoneTypes.size()));
        fluentgen::Spec spec = box(c.kind);
        spec.cells = {6, 5, 4};
        spec.mixedFaceTypes = c.mixedFaces;
        spec.hanging = c.hanging;
        if (!c.cellZoneTypes.empty())
            spec.cellZoneTypes = c.cellZoneTypes;
        const std::string path = write(spec);
        Numbering two;
        EXPECT_GT(zonesInHalves([&] { two = number(path, false); }), 0);
        const int64_t saved = gParallelMarkMinFaces;
        gParallelMarkMinFaces = INT64_MAX;
        Numbering one;
        EXPECT_EQ(zonesInHalves([&] { one = number(path, false); }), 0);
        gParallelMarkMinFaces = saved;
        EXPECT_TRUE(one.ok);
        EXPECT_TRUE(one.messages.empty()) << ::testing::PrintToString(one.messages);
        EXPECT_EQ(two.ok, one.ok);
        EXPECT_EQ(two.messages, one.messages);
        EXPECT_EQ(two.counts, one.counts);
        EXPECT_EQ(two.newToOld, one.newToOld);
        EXPECT_EQ(two.elementTypes, one.elementTypes);
        // Zones of parent cells (hanging nodes) are not numbered.
        EXPECT_GT(one.numbered, 0);
        for (size_t i = 0; i < one.counts.size(); ++i)
            EXPECT_EQ(static_cast<size_t>(one.counts[i]), one.newToOld[i].size());
    }
}

TEST_F(NodeCountThreadTest, TwoThreadsNumberTwoCellZonesEachWithTheirOwnNodes) {
    // Two zones of 4 x 3 x 3 hexahedra each: each has 5 x 4 x 4 nodes, and
    // the plane between them (4 x 4 nodes) belongs to both.
    fluentgen::Spec two = box(MeshKind::Hex);
    two.cells = {8, 3, 3};
    two.cellZoneTypes = {1, 17};
    const std::string path = write(two);
    Numbering numbering;
    EXPECT_GT(zonesInHalves([&] { numbering = number(path, false); }), 0);
    ASSERT_TRUE(numbering.ok);
    ASSERT_EQ(numbering.counts.size(), 2u);
    EXPECT_EQ(numbering.counts[0], 5 * 4 * 4);
    EXPECT_EQ(numbering.counts[1], 5 * 4 * 4);
    // Each numbering lists its zone's nodes in ascending order, and they
    // share exactly the 16 nodes of the plane between them.
    for (const std::vector<int32_t>& nodes : numbering.newToOld)
        EXPECT_TRUE(std::is_sorted(nodes.begin(), nodes.end()));
    std::vector<int32_t> shared;
    std::set_intersection(numbering.newToOld[0].begin(), numbering.newToOld[0].end(),
                          numbering.newToOld[1].begin(), numbering.newToOld[1].end(),
                          std::back_inserter(shared));
    EXPECT_EQ(shared.size(), 16u);
}

// ---- Boundary zones numbered without keeping their faces ----------------------------------------

// What numbering one face zone left behind.
struct ZoneNumbering {
    bool scanned = false;
    bool ok = false;
    std::vector<int32_t> zoneNodes;                    // the zone's nodes, ascending
    std::vector<int32_t> mapped;                       // the map's number of each of them
    CellRange sideZero = {INT32_MAX, INT32_MIN};       // as the scan's numbering gave it
    CellRange facesSideZero = {INT32_MAX, INT32_MIN};  // from the faces in memory afterwards
    bool facesInMemory = false;
    std::vector<std::string> messages;
};

class BoundaryNumberingTest : public NodeCountTest {
  protected:
    // Scans the file and numbers the face zone with `zoneId` by loading its
    // faces or, for a scan, without keeping them. `afterScan` may change the
    // file between the scan and the numbering.
    ZoneNumbering numberZone(const std::string& path, int32_t zoneId, bool withoutFaces,
                             const std::function<void()>& afterScan = nullptr) {
        minihost::resetRecords();
        CaseFile* caseFile = newCaseFile(path);
        ZoneNumbering out;
        out.scanned = CaseFileScan(caseFile, false, nullptr, nullptr);
        if (!out.scanned) {
            out.messages = messageTexts();
            return out;
        }
        if (afterScan)
            afterScan();
        CaseFileUse use(caseFile);
        FaceZone* zone = CaseFileFindFaceZone(caseFile, zoneId, false);
        if (zone == nullptr) {
            ADD_FAILURE() << "no face zone " << zoneId;
            return out;
        }
        out.ok = withoutFaces
                     ? FaceZoneGetNodeNumbersWithoutFaces(zone, caseFile, caseFile->totalNodes, &out.sideZero)
                     : FaceZoneGetNodeNumbers(zone, caseFile, caseFile->totalNodes);
        if (out.ok) {
            out.zoneNodes.assign(zone->zoneNodes, zone->zoneNodes + zone->numNodes);
            EXPECT_EQ(zone->nodeNumberMap->size(), out.zoneNodes.size());
            for (int32_t node : out.zoneNodes)
                out.mapped.push_back(zone->nodeNumberMap->find(node));
        }
        out.facesInMemory = zone->faceCells != nullptr;
        if (zone->faceCells != nullptr) {
            const int64_t faces = static_cast<int64_t>(zone->lastIndex) - zone->firstIndex + 1;
            for (int64_t f = 0; f < faces; ++f) {
                const int32_t cell = zone->faceCells[2 * f];
                if (cell != 0) {
                    out.facesSideZero.lowest = std::min(out.facesSideZero.lowest, cell);
                    out.facesSideZero.highest = std::max(out.facesSideZero.highest, cell);
                }
            }
        }
        out.messages = messageTexts();
        return out;
    }

    // Both ways on one zone: the same result, messages, nodes and map, and
    // the side-0 extremes of the faces as the loading numbering leaves them.
    // Returns the scan's numbering.
    ZoneNumbering compareZone(const std::string& path, int32_t zoneId,
                              const std::function<void()>& afterScan = nullptr) {
        const ZoneNumbering loading = numberZone(path, zoneId, false, afterScan);
        const auto [buffered, streaming] =
            bufferedAndMapped<ZoneNumbering>([&] { return numberZone(path, zoneId, true, afterScan); });
        EXPECT_EQ(streaming.ok, buffered.ok);
        EXPECT_EQ(streaming.messages, buffered.messages);
        EXPECT_EQ(streaming.zoneNodes, buffered.zoneNodes);
        EXPECT_EQ(streaming.facesInMemory, buffered.facesInMemory);
        EXPECT_EQ(streaming.sideZero.lowest, buffered.sideZero.lowest);
        EXPECT_EQ(streaming.sideZero.highest, buffered.sideZero.highest);
        EXPECT_TRUE(streaming.scanned);
        EXPECT_EQ(streaming.ok, loading.ok);
        EXPECT_EQ(streaming.messages, loading.messages);
        EXPECT_EQ(streaming.zoneNodes, loading.zoneNodes);
        EXPECT_EQ(streaming.mapped, loading.mapped);
        for (size_t i = 0; i < streaming.mapped.size(); ++i)
            EXPECT_EQ(streaming.mapped[i], static_cast<int32_t>(i));
        if (loading.ok && loading.facesInMemory) {
            EXPECT_EQ(streaming.sideZero.lowest, loading.facesSideZero.lowest);
            EXPECT_EQ(streaming.sideZero.highest, loading.facesSideZero.highest);
        }
        return streaming;
    }

    // The face zone ids of a case, in file order.
    std::vector<int32_t> faceZoneIds(const std::string& path) {
        CaseFile* caseFile = newCaseFile(path);
        std::vector<int32_t> ids;
        if (CaseFileScan(caseFile, false, nullptr, nullptr)) {
            for (int32_t z = 0; z < caseFile->numFaceZones; ++z)
                ids.push_back(caseFile->faceZones[z].zoneId);
        }
        return ids;
    }
};

TEST_F(BoundaryNumberingTest, EveryZoneOfEveryKindOfMeshIsNumberedAsByLoading) {
    for (MeshKind kind : {MeshKind::Hex, MeshKind::Tet, MeshKind::Wedge, MeshKind::Pyramid, MeshKind::Mixed,
                          MeshKind::Quad, MeshKind::Tri, MeshKind::Mixed2D}) {
        SCOPED_TRACE(static_cast<int>(kind));
        // The larger box has sides of more faces than one read of the buffer holds.
        for (std::array<int, 3> cells : {std::array<int, 3>{5, 4, 3}, std::array<int, 3>{40, 33, 2}}) {
            fluentgen::Spec spec = box(kind);
            spec.cells = cells;
            const std::string path = write(spec);
            const std::vector<int32_t> ids = faceZoneIds(path);
            ASSERT_GE(ids.size(), 4u);
            int streamed = 0;
            const int64_t mappedBefore = mappedBodies_;
            for (int32_t id : ids) {
                SCOPED_TRACE(id);
                const ZoneNumbering streaming = compareZone(path, id);
                EXPECT_TRUE(streaming.ok);
                EXPECT_TRUE(streaming.messages.empty()) << ::testing::PrintToString(streaming.messages);
                EXPECT_FALSE(streaming.zoneNodes.empty());
                EXPECT_LE(streaming.sideZero.lowest, streaming.sideZero.highest);
                streamed += streaming.facesInMemory ? 0 : 1;
            }
            // Every zone read without being kept was read from a mapping too.
            EXPECT_EQ(mappedBodies_ - mappedBefore, streamed);
            // Zones of one face type are read without being kept; mixed ones are loaded.
            if (kind == MeshKind::Hex || kind == MeshKind::Tet || kind == MeshKind::Quad ||
                kind == MeshKind::Tri) {
                EXPECT_EQ(streamed, static_cast<int>(ids.size()));
            }
        }
    }
}

TEST_F(BoundaryNumberingTest, TheOtherByteOrderIsReadAndTextBodiesAreLoaded) {
    fluentgen::Spec big = box(MeshKind::Tet);
    big.byteOrder = fluentgen::ByteOrder::Big;
    const std::string bigPath = write(big, "big.cas");
    for (int32_t id : faceZoneIds(bigPath)) {
        SCOPED_TRACE(id);
        const ZoneNumbering streaming = compareZone(bigPath, id);
        EXPECT_TRUE(streaming.ok);
        EXPECT_FALSE(streaming.facesInMemory);
    }
    const std::string textPath = write(box(MeshKind::Hex, fluentgen::Encoding::Ascii), "text.cas");
    for (int32_t id : faceZoneIds(textPath)) {
        SCOPED_TRACE(id);
        const ZoneNumbering streaming = compareZone(textPath, id);
        EXPECT_TRUE(streaming.ok);
        EXPECT_TRUE(streaming.facesInMemory);
    }
}

TEST_F(BoundaryNumberingTest, ABadNodeGivesTheLoadsMessage) {
    const std::string path = write(box(MeshKind::Hex));
    int width = 0;
    poke(path, facePlace(path, 5, 3, 1, &width), int32Bytes(0));
    const ZoneNumbering streaming = compareZone(path, 5);
    EXPECT_FALSE(streaming.ok);
    EXPECT_EQ(streaming.messages,
              texts({"Bad node number 0 for node 2 of face #4 in Faces section (Section 3013)."}));
}

TEST_F(BoundaryNumberingTest, NodesAboveTheCaseAreLeftOut) {
    const std::string path = write(box(MeshKind::Hex));
    const ZoneNumbering before = compareZone(path, 5);
    int width = 0;
    poke(path, facePlace(path, 5, 2, 3, &width), int32Bytes(6 * 5 * 4 + 1));
    const ZoneNumbering after = compareZone(path, 5);
    EXPECT_TRUE(after.ok);
    // The face's other nodes are on neighbouring faces of the side; the node
    // replaced may have been a node of this face alone.
    EXPECT_LE(after.zoneNodes.size(), before.zoneNodes.size());
    EXPECT_GE(after.zoneNodes.size() + 1, before.zoneNodes.size());
    EXPECT_LE(after.zoneNodes.back(), 6 * 5 * 4);
}

TEST_F(BoundaryNumberingTest, AFileChangedBehindTheScanGivesTheLoadsMessage) {
    // Cut inside the zone's faces, or its end marker spoilt, after the scan
    // has passed over it: the read fails where the load fails.
    for (int variant = 0; variant < 2; ++variant) {
        SCOPED_TRACE(variant);
        const std::string path = write(box(MeshKind::Hex), "changed" + std::to_string(variant) + ".cas");
        const std::string original = [&] {
            std::ifstream in(path, std::ios::binary);
            return std::string(std::istreambuf_iterator<char>(in), {});
        }();
        int width = 0;
        const int64_t cut = facePlace(path, 6, 5, 1, &width);
        const int64_t end = facePlace(path, 6, -1, 0, &width);
        ASSERT_GT(cut, 0);
        const auto restore = [&] {
            std::ofstream out(path, std::ios::binary | std::ios::trunc);
            out << original;
        };
        const auto change = [&] {
            if (variant == 0)
                std::filesystem::resize_file(path, static_cast<uintmax_t>(cut));
            else
                poke(path, end + 2, "Xnd");
        };
        restore();
        const ZoneNumbering loading = numberZone(path, 6, false, change);
        restore();
        const ZoneNumbering streaming = numberZone(path, 6, true, change);
        EXPECT_TRUE(loading.scanned);
        EXPECT_TRUE(streaming.scanned);
        EXPECT_FALSE(loading.ok);
        EXPECT_FALSE(streaming.ok);
        EXPECT_EQ(streaming.messages, loading.messages);
        if (variant == 0) {
            EXPECT_EQ(streaming.messages, texts({"Read error while reading Faces section (section 3013)."}));
        } else {
            // The marker fails the section without a message of its own.
            EXPECT_TRUE(streaming.messages.empty()) << ::testing::PrintToString(streaming.messages);
        }
    }
}

TEST_F(BoundaryNumberingTest, SideZeroHoldsTheExtremesOfTheNonZeroCells) {
    const std::string path = write(box(MeshKind::Hex));
    int width = 0;
    ASSERT_GT(facePlace(path, 5, 0, 0, &width), 0);
    const int64_t faces =
        (facePlace(path, 5, -1, 0, &width) - facePlace(path, 5, 0, 0, &width)) / (width * 4);
    ASSERT_GE(faces, 4);
    // A cell of 0 is left out; any other number counts, in range or not.
    poke(path, facePlace(path, 5, 0, width - 2, &width), int32Bytes(0));
    poke(path, facePlace(path, 5, 2, width - 2, &width), int32Bytes(1000));
    poke(path, facePlace(path, 5, 3, width - 2, &width), int32Bytes(-7));
    ZoneNumbering streaming = compareZone(path, 5);
    EXPECT_TRUE(streaming.ok);
    EXPECT_EQ(streaming.sideZero.lowest, -7);
    EXPECT_EQ(streaming.sideZero.highest, 1000);
    // No cell on side 0 at all: an empty range.
    for (int64_t face = 0; face < faces; ++face)
        poke(path, facePlace(path, 5, face, width - 2, &width), int32Bytes(0));
    streaming = compareZone(path, 5);
    EXPECT_TRUE(streaming.ok);
    EXPECT_EQ(streaming.sideZero.lowest, INT32_MAX);
    EXPECT_EQ(streaming.sideZero.highest, INT32_MIN);
}

TEST_F(BoundaryNumberingTest, AZoneNumberedWithoutItsFacesLoadsThemWhenNumberedAgain) {
    const std::string path = write(box(MeshKind::Hex));
    CaseFile* caseFile = newCaseFile(path);
    ASSERT_TRUE(CaseFileScan(caseFile, false, nullptr, nullptr));
    CaseFileUse use(caseFile);
    FaceZone* zone = CaseFileFindFaceZone(caseFile, 4, false);
    ASSERT_NE(zone, nullptr);
    CellRange sideZero;
    ASSERT_TRUE(FaceZoneGetNodeNumbersWithoutFaces(zone, caseFile, caseFile->totalNodes, &sideZero));
    EXPECT_EQ(zone->faceCells, nullptr);
    const int32_t* numbering = zone->zoneNodes;
    const std::vector<int32_t> nodes(numbering, numbering + zone->numNodes);
    // The callers of the loading numbering go on to use the faces.
    ASSERT_TRUE(FaceZoneGetNodeNumbers(zone, caseFile, caseFile->totalNodes));
    EXPECT_NE(zone->faceCells, nullptr);
    EXPECT_NE(zone->faceNodes, nullptr);
    EXPECT_EQ(zone->zoneNodes, numbering);
    EXPECT_EQ(std::vector<int32_t>(zone->zoneNodes, zone->zoneNodes + zone->numNodes), nodes);
    // Faces in memory are used as they are, also for the side-0 extremes.
    FaceZone* other = CaseFileFindFaceZone(caseFile, 5, false);
    ASSERT_NE(other, nullptr);
    ASSERT_TRUE(CaseFileLoadFaceZone(caseFile, other));
    other->faceCells[0] = 999;
    ASSERT_TRUE(FaceZoneGetNodeNumbersWithoutFaces(other, caseFile, caseFile->totalNodes, &sideZero));
    EXPECT_EQ(sideZero.highest, 999);
    EXPECT_TRUE(messageTexts().empty());
}

}  // namespace
}  // namespace casefile_test
