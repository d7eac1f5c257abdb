// Cell assembly from faces, and the node numbering of zones.
//
// A case file has no cell-to-node table. Every face lists its nodes and the
// cells on its two sides; each cell grows its node list face by face in fixed
// slots, so that the node order comes out right by topology alone:
//
//   - a cell on side 0 sees a face as it stands, one on side 1 sees it reversed;
//   - the first face of a cell (the seed) fills the first slots;
//   - every later face is fitted to an edge that the cell already holds.
//
// Faces of four nodes go first (pass 0), then those of fewer (pass 1), so that
// a quadrilateral base seeds a brick before any triangle is seen: pyramids,
// wedges and tetrahedra in a brick zone come out as degenerate bricks, and
// triangles in a quadrilateral zone as degenerate quadrilaterals.
//
// Local node numbers of the six faces of a brick, by local face number:
//
//   face 1: 0 3 7 4    face 2: 2 1 5 6    face 3: 1 0 4 5
//   face 4: 3 2 6 7    face 5: 0 1 2 3    face 6: 4 5 6 7
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "casefile/CaseFileInternal.h"
#include "support/BulkMemory.h"
#include "support/HelperThread.h"
#include "support/MappedRange.h"

static const int kBrickFaceTable[6][4] = {{0, 3, 7, 4}, {2, 1, 5, 6}, {1, 0, 4, 5},
                                          {3, 2, 6, 7}, {0, 1, 2, 3}, {4, 5, 6, 7}};

int32_t nodesPerCellOfHostZoneType(int32_t hostZoneType) {
    switch (hostZoneType) {
        case ZorZoneType_FETriangle:
            return 3;
        case ZorZoneType_FEQuad:
        case ZorZoneType_FETetra:
            return 4;
        case ZorZoneType_FEBrick:
            return 8;
        case ZorZoneType_FELineSeg:
            return 2;
        default:
            return 0;
    }
}

// ---- Adding one face to one cell -------------------------------------------------------

// A slot is free or equal when it holds UNSET_NODE or the named value.
static inline bool freeOrEqual(int32_t slot, int32_t value) {
    return slot == UNSET_NODE || slot == value;
}

// Set on the threads of a quiet walk, which show no message: a failure is
// repeated by the walk that reports.
static thread_local bool tlsQuietAssembly = false;

static bool assemblyError(int32_t cellNumber) {
    if (!tlsQuietAssembly) {
        showErrorf("Error assembling cell %d from faces.", cellNumber);
    }
    return false;
}

static inline bool addFaceToTriangleInline(int32_t* localFace, int32_t cellNumber, const int32_t* face,
                                           int32_t* slots) {
    int32_t a = face[0], b = face[1];
    if (a == slots[1] && freeOrEqual(slots[2], b)) {
        slots[2] = b;
        *localFace = 2;
        return true;
    }
    if (a != slots[1] && b == slots[0] && freeOrEqual(slots[2], a)) {
        slots[2] = a;
        *localFace = 3;
        return true;
    }
    if (a != slots[1] && b != slots[0]) {
        if (!tlsQuietAssembly) {
            showErrorf("Error adding face nodes %d and %d to cell %d.", a, b, cellNumber);
        }
        return false;
    }
    return assemblyError(cellNumber);
}

static inline bool addFaceToQuadInline(int32_t* localFace, int32_t cellNumber, const int32_t* face,
                                       int32_t* slots) {
    int32_t a = face[0], b = face[1];
    if (a == slots[1] && freeOrEqual(slots[2], b)) {
        slots[2] = b;
        *localFace = 2;
        return true;
    }
    if (a != slots[1] && b == slots[0] && freeOrEqual(slots[3], a)) {
        slots[3] = a;
        *localFace = 4;
        return true;
    }
    if (a != slots[1] && b != slots[0] && freeOrEqual(slots[2], a) && freeOrEqual(slots[3], b)) {
        slots[2] = a;
        slots[3] = b;
        *localFace = 3;
        return true;
    }
    return assemblyError(cellNumber);
}

static inline bool addFaceToTetraInline(int32_t* localFace, int32_t cellNumber, const int32_t* face,
                                        int32_t* slots) {
    static const int32_t kLocalFaceOfEdge[3] = {2, 4, 3};
    for (int k = 0; k < 3; ++k) {
        int32_t p = slots[k];
        int32_t q = slots[(k + 1) % 3];
        // The face fits when it runs through the edge (p, q) backwards.
        int32_t r;
        if (face[0] == q && face[1] == p) {
            r = face[2];
        } else if (face[1] == q && face[2] == p) {
            r = face[0];
        } else if (face[2] == q && face[0] == p) {
            r = face[1];
        } else {
            continue;
        }
        if (!freeOrEqual(slots[3], r)) {
            return assemblyError(cellNumber);
        }
        slots[3] = r;
        *localFace = kLocalFaceOfEdge[k];
        return true;
    }
    return assemblyError(cellNumber);
}

// Place m (1..4) at which (first, second) stand as consecutive nodes of the
// face, or 0. For a triangle the third pair is (t[2], t[0]) and there is no fourth.
static inline int findEdge(const int32_t* t, int32_t n, int32_t first, int32_t second) {
    if (t[0] == first && t[1] == second) {
        return 1;
    }
    if (t[1] == first && t[2] == second) {
        return 2;
    }
    if (n == 3) {
        return (t[2] == first && t[0] == second) ? 3 : 0;
    }
    if (t[2] == first && t[3] == second) {
        return 3;
    }
    if (t[3] == first && t[0] == second) {
        return 4;
    }
    return 0;
}

// Sets slots x and y from the face nodes behind place m; a collapsed edge for a triangle.
static inline bool setFromEdge(int32_t cellNumber, const int32_t* t, int32_t n, int m, int x, int y,
                               int32_t* slots) {
    int32_t valueX, valueY;
    if (n == 4) {
        valueX = t[(m + 1) % 4];
        valueY = t[(m + 2) % 4];
    } else {
        valueX = t[(m + 1) % 3];
        valueY = valueX;
    }
    if (!freeOrEqual(slots[x], valueX) || !freeOrEqual(slots[y], valueY)) {
        return assemblyError(cellNumber);
    }
    slots[x] = valueX;
    slots[y] = valueY;
    return true;
}

// The two rules below are forced inline into the assembly loop, where the
// zone type and the side are fixed: as calls (the compiler's choice, as they
// are used elsewhere too) they took a third of the assembly's time.
[[gnu::always_inline]] static inline bool addFaceToBrickInline(int32_t* localFace, int32_t cellNumber,
                                                               const int32_t* face, int32_t numFaceNodes,
                                                               int32_t* slots) {
    const int32_t n = numFaceNodes;
    if (n != 3 && n != 4) {
        return assemblyError(cellNumber);
    }
    // A side face: it shares an edge with the bottom (local face 5).
    for (int f = 0; f < 4; ++f) {
        const int* row = kBrickFaceTable[f];
        int m = findEdge(face, n, slots[row[0]], slots[row[1]]);
        if (m != 0) {
            *localFace = f + 1;
            return setFromEdge(cellNumber, face, n, m, row[2], row[3], slots);
        }
    }
    // The top face: nothing to learn while slots 4 to 7 are all alike.
    if (slots[4] == slots[5] && slots[5] == slots[6] && slots[6] == slots[7]) {
        *localFace = 6;
        return true;
    }
    for (int j = 0; j < 4; ++j) {
        int32_t c = slots[4 + j];
        int32_t d = slots[4 + (j + 1) % 4];
        int m = findEdge(face, n, d, c);
        if (m != 0) {
            *localFace = 6;
            return setFromEdge(cellNumber, face, n, m, 4 + (j + 3) % 4, 4 + (j + 2) % 4, slots);
        }
    }
    *localFace = 6;
    return assemblyError(cellNumber);
}

[[gnu::always_inline]] static inline bool addFaceToCellInline(int32_t* localFace, int32_t cellNumber,
                                                              int32_t facesSoFar, const int32_t* faceNodes,
                                                              int32_t numFaceNodes, bool forward,
                                                              int32_t* cellSlots, int32_t hostZoneType) {
    if (numFaceNodes < 1) {
        return true;  // an empty face adds nothing
    }
    // The whole of the orientation logic: side 1 sees the face mirrored.
    // Places behind the face's nodes repeat its last node. Written out: as a
    // loop, the compiler turned the copy into a call of memcpy for every face.
    int32_t t[4];
    const int32_t n = std::min(numFaceNodes, 4);
    t[0] = faceNodes[forward ? 0 : n - 1];
    t[1] = n > 1 ? faceNodes[forward ? 1 : n - 2] : t[0];
    t[2] = n > 2 ? faceNodes[forward ? 2 : n - 3] : t[1];
    t[3] = n > 3 ? faceNodes[forward ? 3 : 0] : t[2];
    if (facesSoFar == 0) {
        int32_t seedSize;
        switch (hostZoneType) {
            case ZorZoneType_FETriangle:
            case ZorZoneType_FEQuad:
                seedSize = 2;
                break;
            case ZorZoneType_FETetra:
                seedSize = 3;
                break;
            case ZorZoneType_FEBrick:
                seedSize = 4;
                break;
            default:
                seedSize = n;
                break;
        }
        int32_t slots = nodesPerCellOfHostZoneType(hostZoneType);
        int32_t filled = std::max(n, seedSize);
        if (slots > 0 && filled > slots) {
            filled = slots;
        }
        for (int32_t s = 0; s < filled; ++s) {
            cellSlots[s] = s < n ? t[s] : t[n - 1];
        }
        *localFace = hostZoneType == ZorZoneType_FEBrick ? 5 : 1;
        return true;
    }
    switch (hostZoneType) {
        case ZorZoneType_FETriangle:
            return addFaceToTriangleInline(localFace, cellNumber, t, cellSlots);
        case ZorZoneType_FEQuad:
            return addFaceToQuadInline(localFace, cellNumber, t, cellSlots);
        case ZorZoneType_FETetra:
            return addFaceToTetraInline(localFace, cellNumber, t, cellSlots);
        case ZorZoneType_FEBrick:
            return addFaceToBrickInline(localFace, cellNumber, t, n, cellSlots);
        default:
            return true;
    }
}

bool addFaceToTriangle(int32_t* localFace, int32_t cellNumber, const int32_t* face, int32_t* slots) {
    return addFaceToTriangleInline(localFace, cellNumber, face, slots);
}

bool addFaceToQuad(int32_t* localFace, int32_t cellNumber, const int32_t* face, int32_t* slots) {
    return addFaceToQuadInline(localFace, cellNumber, face, slots);
}

bool addFaceToTetra(int32_t* localFace, int32_t cellNumber, const int32_t* face, int32_t* slots) {
    return addFaceToTetraInline(localFace, cellNumber, face, slots);
}

bool addFaceToBrick(int32_t* localFace, int32_t cellNumber, const int32_t* face, int32_t numFaceNodes,
                    int32_t* slots) {
    return addFaceToBrickInline(localFace, cellNumber, face, numFaceNodes, slots);
}

bool addFaceToCell(int32_t* localFace, int32_t cellNumber, int32_t facesSoFar, const int32_t* faceNodes,
                   int32_t numFaceNodes, bool forward, int32_t* cellSlots, int32_t hostZoneType) {
    return addFaceToCellInline(localFace, cellNumber, facesSoFar, faceNodes, numFaceNodes, forward, cellSlots,
                               hostZoneType);
}

// ---- Child face replacement ---------------------------------------------------------------

// Index of the pair whose child face is `face`, by binary search, or -1.
static int32_t findChildPair(const ChildFace* record, int32_t face) {
    int32_t low = 0, high = record->pairCount - 1;
    while (low <= high) {
        int32_t middle = low + (high - low) / 2;
        int32_t child = record->pairs[2 * middle];
        if (child == face) {
            return middle;
        }
        if (child < face) {
            low = middle + 1;
        } else {
            high = middle - 1;
        }
    }
    return -1;
}

// First pair above j with another parent than pair j, or the pair count.
static int32_t endOfParentGroup(const ChildFace* record, int32_t j) {
    int32_t parent = record->pairs[2 * j + 1];
    int32_t k = j + 1;
    while (k < record->pairCount && record->pairs[2 * k + 1] == parent) {
        ++k;
    }
    return k;
}

// ---- Node marks --------------------------------------------------------------------------------

// Marks of the nodes of a zone, one per case node: the integers of a cell
// zone's numbering (set to 1) or the bytes of a cell zone's node count (set
// to 1), which two threads may mark at once; or bits, for a boundary zone's
// few nodes, which a numbering passes over 64 nodes a word. A byte is the
// quickest mark to set: it is only written.
static inline void setMark(int32_t* marks, uint32_t g) {
    __atomic_store_n(&marks[g], int32_t{1}, __ATOMIC_RELAXED);  // two threads may mark a zone in memory
}

static inline void setMark(uint8_t* marks, uint32_t g) {
    __atomic_store_n(&marks[g], uint8_t{1}, __ATOMIC_RELAXED);  // a plain store on the machines this runs on
}

static inline void setMark(uint64_t* bits, uint32_t g) {
    bits[g >> 6] |= uint64_t{1} << (g & 63);
}

// Sets the mark of one node; a node outside the case is passed over.
template <typename Mark>
static inline void markNode(Mark* marks, int32_t totalNodes, int32_t node) {
    if (node >= 1 && node <= totalNodes) {
        setMark(marks, static_cast<uint32_t>(node - 1));
    }
}

template <typename Mark>
static inline void markFaceNodes(Mark* marks, int32_t totalNodes, const int32_t* nodes, int32_t places) {
    for (int32_t k = 0; k < places; ++k) {
        markNode(marks, totalNodes, nodes[k]);
    }
}

// Sets the bits of a face's nodes; returns how many of them were clear.
static inline int32_t markFaceNodeBits(uint64_t* bits, int32_t totalNodes, const int32_t* nodes,
                                       int32_t places) {
    int32_t added = 0;
    for (int32_t k = 0; k < places; ++k) {
        int32_t node = nodes[k];
        if (node != 0 && node >= 1 && node <= totalNodes) {
            const uint32_t g = static_cast<uint32_t>(node - 1);
            const uint64_t bit = uint64_t{1} << (g & 63);
            added += (bits[g >> 6] & bit) == 0;
            bits[g >> 6] |= bit;
        }
    }
    return added;
}

// The set bits of one word, by halves, quarters and bytes (no population
// count instruction is assumed).
static inline int32_t bitCount(uint64_t word) {
    word -= (word >> 1) & 0x5555555555555555ull;
    word = (word & 0x3333333333333333ull) + ((word >> 2) & 0x3333333333333333ull);
    word = (word + (word >> 4)) & 0x0f0f0f0f0f0f0f0full;
    return static_cast<int32_t>((word * 0x0101010101010101ull) >> 56);
}

// The set bits of `words` words. Those of a boundary zone lie close together:
// most words are clear.
static int32_t countBits(const uint64_t* bits, size_t words) {
    int64_t count = 0;
    for (size_t w = 0; w < words; ++w) {
        if (bits[w] != 0) {
            count += bitCount(bits[w]);
        }
    }
    return static_cast<int32_t>(count);
}

// The number of set marks among `places` byte marks of 0 or 1, eight at a
// time: the product of eight such bytes with 0x0101010101010101 holds their
// sum in its top byte.
static int32_t countMarks(const uint8_t* marks, size_t places) {
    size_t count = 0;
    size_t g = 0;
    for (; g + 8 <= places; g += 8) {
        uint64_t eight;
        memcpy(&eight, marks + g, sizeof eight);
        count += static_cast<size_t>((eight * 0x0101010101010101ull) >> 56);
    }
    for (; g < places; ++g) {
        count += marks[g];
    }
    return static_cast<int32_t>(count);
}

// Bits for the nodes of a case: `words` clear words behind a word that holds
// their count. The case keeps one such block from one boundary numbering to
// the next, since a case may have hundreds of zones and fresh pages cost a
// fault each: a numbering takes it (and one that comes meanwhile makes a
// fresh block). NULL when memory runs out.
static uint64_t* takeNodeBits(CaseFile* caseFile, size_t words) {
    uint64_t* block = __atomic_exchange_n(&caseFile->nodeBits, nullptr, __ATOMIC_ACQUIRE);
    if (block != nullptr && block[0] == words) {
        return block;
    }
    free(block);
    block = static_cast<uint64_t*>(calloc(words + 1, sizeof(uint64_t)));
    if (block != nullptr) {
        block[0] = words;
    }
    return block;
}

// Gives a block whose bits are all clear again back to the case, or frees it
// when the case holds another by now.
static void giveNodeBits(CaseFile* caseFile, uint64_t* block) {
    uint64_t* none = nullptr;
    if (!__atomic_compare_exchange_n(&caseFile->nodeBits, &none, block, false, __ATOMIC_RELEASE,
                                     __ATOMIC_RELAXED)) {
        free(block);
    }
}

// Words of node bits for `totalNodes` nodes; at least one.
static size_t nodeBitWords(int32_t totalNodes) {
    return totalNodes > 0 ? (static_cast<size_t>(totalNodes) + 63) / 64 : 1;
}

// ---- Faces read without keeping them ------------------------------------------------------------

// Four 32-bit lanes: one SSE2 register, which every x86-64 has. (Wider
// vectors are split lane by lane where the target lacks them.)
typedef uint32_t Lanes __attribute__((vector_size(16)));
typedef int32_t LaneFlags __attribute__((vector_size(16)));

// The 4-byte integer at place `place` of rows in memory, however the rows
// are aligned: a body mapped from the file starts where its section put it.
static inline int32_t placeAt(const unsigned char* rows, int64_t place) {
    int32_t value;
    memcpy(&value, rows + 4 * place, sizeof value);
    return value;
}

// The bounds that the rows of a zone of Nodes nodes are checked against:
// every node in 1..totalNodes, the first cell in first..last, the second
// cell anything. Four rows fill Nodes + 2 groups of lanes exactly: lane l of
// group v always holds place (4 v + l) mod (Nodes + 2) of a row, and one
// bound per lane checks it. A place is inside when value - low <= span, as
// unsigned numbers; the comparison is the signed one of SSE2 on both sides
// with the sign bit flipped.
template <int Nodes>
struct RowBounds {
    static constexpr int kWidth = Nodes + 2;
    static constexpr uint32_t kSign = 0x80000000u;
    Lanes low[kWidth];   // subtracted from each place
    Lanes span[kWidth];  // largest difference inside, sign bit flipped
    int32_t totalNodes;  // nodes of the case
    int32_t first;       // lowest first cell inside
    int32_t last;        // highest first cell inside
    bool none;           // no row can be inside: no nodes, or an empty cell range

    RowBounds(int32_t totalNodesIn, int32_t firstIn, int32_t lastIn)
        : totalNodes(totalNodesIn), first(firstIn), last(lastIn), none(totalNodesIn < 1 || lastIn < firstIn) {
        for (int v = 0; v < kWidth; ++v) {
            for (int l = 0; l < 4; ++l) {
                const int place = (4 * v + l) % kWidth;
                low[v][l] = place < Nodes ? 1u : place == Nodes ? static_cast<uint32_t>(first) : 0u;
                const uint32_t width = place < Nodes ? static_cast<uint32_t>(totalNodes) - 1u
                                       : place == Nodes
                                           ? static_cast<uint32_t>(last) - static_cast<uint32_t>(first)
                                           : UINT32_MAX;
                span[v][l] = width ^ kSign;
            }
        }
    }
};

// Whether every one of `faces` rows (Nodes nodes, then two cells) lies
// inside `bounds`, so that every node of every face is marked with no test
// left to make.
template <int Nodes>
static bool facesAreInside(const RowBounds<Nodes>& bounds, const unsigned char* rows, int64_t faces) {
    constexpr int kWidth = Nodes + 2;
    if (bounds.none) {
        return false;
    }
    LaneFlags outside = {0, 0, 0, 0};
    int64_t f = 0;
    for (; f + 4 <= faces; f += 4) {
        const unsigned char* group = rows + 4 * f * kWidth;
        for (int v = 0; v < kWidth; ++v) {
            Lanes x;
            memcpy(&x, group + 16 * v, sizeof x);
            outside |= reinterpret_cast<LaneFlags>((x - bounds.low[v]) ^ RowBounds<Nodes>::kSign) >
                       reinterpret_cast<LaneFlags>(bounds.span[v]);
        }
    }
    bool inside = outside[0] == 0 && outside[1] == 0 && outside[2] == 0 && outside[3] == 0;
    for (; inside && f < faces; ++f) {
        for (int k = 0; k < Nodes; ++k) {
            const int32_t node = placeAt(rows, f * kWidth + k);
            inside = inside && node >= 1 && node <= bounds.totalNodes;
        }
        const int32_t cell = placeAt(rows, f * kWidth + Nodes);
        inside = inside && bounds.first <= cell && cell <= bounds.last;
    }
    return inside;
}

// Marks every node of `faces` rows whose nodes are known to be in the case.
// A face's nodes are all loaded before the first is marked, four stores in a
// row: a mark is a byte, which may alias the rows, so the compiler could not
// move a load that follows a mark ahead of it.
template <int Nodes, typename Mark>
static inline void markInsideFaces(Mark* marks, const unsigned char* rows, int64_t faces) {
    constexpr int kWidth = Nodes + 2;
    for (int64_t f = 0; f < faces; ++f, rows += 4 * kWidth) {
        uint32_t g[Nodes];
#pragma GCC unroll 4
        for (int k = 0; k < Nodes; ++k) {
            g[k] = static_cast<uint32_t>(placeAt(rows, k) - 1);
        }
#pragma GCC unroll 4
        for (int k = 0; k < Nodes; ++k) {
            setMark(marks, g[k]);
        }
    }
}

// Takes the non-zero cells on side 0 of `faces` rows of `width` places, the
// first of them at place `place` of `rows`, into `range`.
static void widenSideZero(CellRange* range, const unsigned char* rows, int64_t place, int64_t faces,
                          int64_t width) {
    int32_t lowest = range->lowest, highest = range->highest;
    for (int64_t f = 0; f < faces; ++f, place += width) {
        const int32_t cell = placeAt(rows, place);
        if (cell != 0) {
            lowest = std::min(lowest, cell);
            highest = std::max(highest, cell);
        }
    }
    range->lowest = lowest;
    range->highest = highest;
}

// What marking a face zone that is not in memory needs: the zone, the cells
// whose faces count, and the marks: bytes, which two threads may share, or
// bits, which one thread sets.
template <typename Mark>
struct FaceMarking {
    const CaseFile* caseFile;   // the case: file name and byte order
    const FaceZone* faceZone;   // the zone read: body position, face range and type
    int32_t first;              // first cell whose faces count (on either side); INT32_MIN for every face
    int32_t last;               // last cell whose faces count; INT32_MAX for every face
    Mark* marks;                // one per case node, set for the nodes of faces that count
    int32_t totalNodes;         // marks that are nodes
    CellRange* sideZero;        // widened by the non-zero cells on side 0 of every face; NULL when not wanted
    std::atomic<bool>* stop;    // set when the other thread failed; its result no longer matters
    const unsigned char* body;  // the zone's body mapped, face 0 first; NULL = read through streams
};

// Rows read at a time while marking: at most four nodes and two cells each.
struct FaceRows {
    int32_t* rows;  // 6 * faces places, owned by the caller
    int64_t faces;  // rows the buffer holds, at least 1
};

// One buffer for every read of a marking thread, since a fresh one costs
// its pages' faults each time.
constexpr int64_t kMarkFacesPerBlock = 8192;
// Faces checked and then marked together: 3 kB of rows at most.
constexpr int64_t kMarkFacesPerRun = 128;
using MarkBlock = std::unique_ptr<int32_t[]>;
static MarkBlock newMarkBlock() {
    return MarkBlock(new (std::nothrow) int32_t[6 * kMarkFacesPerBlock]);
}

// Marks the nodes of faces `begin` to `end` (zero-based, end excluded) of a
// zone of one node count (2, 3 or 4), in a binary body of 4-byte integers,
// that have a cell of first..last on a side, keeping nothing. The rows come
// from the mapped body when there is one; else they are read through
// `buffer` from `stream`, which stands at face `begin`, and on success stands
// behind face `end`. False, nothing shown and perhaps some nodes marked,
// where the load's block reader would hand a face to the face-by-face reader
// (a node number below 1, a short read), where the file cannot be read, or
// where the other thread stopped it: the caller then loads the zone, which
// says what is wrong. Marks are only ever set, so those of a false start are
// set again by the load.
template <int Nodes, typename Mark>
static bool markStreamedFaces(const FaceMarking<Mark>& job, FILE* stream, int64_t begin, int64_t end,
                              const FaceRows& buffer) {
    constexpr int64_t kWidth = Nodes + 2;
    // Copies, so that the stores into the marks need not reload them.
    const int32_t first = job.first, last = job.last, totalNodes = job.totalNodes;
    Mark* const marks = job.marks;
    int32_t* const block = buffer.rows;
    const bool swap = job.caseFile->machineConfig.byteOrder != hostByteOrder;
    const RowBounds<Nodes> bounds(totalNodes, first, last);
    for (int64_t done = begin; done < end;) {
        if (job.stop->load(std::memory_order_relaxed)) {
            return false;
        }
        const int64_t faces = std::min(buffer.faces, end - done);
        const size_t want = static_cast<size_t>(faces * kWidth);
        const unsigned char* rows = reinterpret_cast<const unsigned char*>(block);
        if (job.body != nullptr) {
            rows = job.body + 4 * done * kWidth;
            if (swap) {
                memcpy(block, rows, want * sizeof(int32_t));
                rows = reinterpret_cast<const unsigned char*>(block);
            }
        } else if (fread(block, sizeof(int32_t), want, stream) != want) {
            return false;
        }
        if (swap) {
            for (size_t k = 0; k < want; ++k) {
                block[k] = static_cast<int32_t>(__builtin_bswap32(static_cast<uint32_t>(block[k])));
            }
        }
        if (job.sideZero != nullptr) {
            widenSideZero(job.sideZero, rows, Nodes, faces, kWidth);
        }
        // The common block: checked and marked a run of faces at a time, so
        // that a run's rows are marked while they are in the first-level
        // cache; from the first run with a face outside the bounds on, face
        // by face.
        int64_t checked = 0;
        while (checked < faces) {
            const int64_t run = std::min(kMarkFacesPerRun, faces - checked);
            const unsigned char* runRows = rows + 4 * checked * kWidth;
            if (!facesAreInside(bounds, runRows, run)) {
                break;
            }
            markInsideFaces<Nodes>(marks, runRows, run);
            checked += run;
        }
        if (checked == faces) {
            done += faces;
            continue;
        }
        const int32_t* p = block + checked * kWidth;
        if (rows != reinterpret_cast<const unsigned char*>(block)) {
            // aligned for the face-by-face marking
            memcpy(block, rows + 4 * checked * kWidth, static_cast<size_t>((faces - checked) * kWidth) * 4);
            p = block;
        }
        for (int64_t f = checked; f < faces; ++f, p += kWidth) {
            for (int k = 0; k < Nodes; ++k) {
                if (p[k] < 1) {
                    return false;
                }
            }
            const int32_t c0 = p[Nodes], c1 = p[Nodes + 1];
            if ((first <= c0 && c0 <= last) || (first <= c1 && c1 <= last)) {
                markFaceNodes(marks, totalNodes, p, Nodes);
            }
        }
        done += faces;
    }
    return true;
}

template <typename Mark>
static bool markStreamedFaceRange(const FaceMarking<Mark>& job, FILE* stream, int64_t begin, int64_t end,
                                  const FaceRows& buffer) {
    switch (job.faceZone->faceType) {
        case 2:
            return markStreamedFaces<2>(job, stream, begin, end, buffer);
        case 3:
            return markStreamedFaces<3>(job, stream, begin, end, buffer);
        default:
            return markStreamedFaces<4>(job, stream, begin, end, buffer);
    }
}

// Byte place of face `face` (zero-based) of a binary zone of one node count.
static off_t streamedFacePlace(const FaceZone* faceZone, int64_t face) {
    return static_cast<off_t>(faceZone->filePosition + face * (faceZone->faceType + 2) * 4);
}

void FaceSharesInit(FaceShares* shares, int64_t count) {
    shares->next[0] = 0;
    shares->end[0] = shares->next[1] = count / 2;
    shares->end[1] = count;
}

bool FaceSharesTake(FaceShares* shares, int me, int64_t* begin, int64_t* end) {
    const int64_t take = gSharedFacesPerTake > 0 ? gSharedFacesPerTake : 1;
    std::lock_guard<std::mutex> lock(shares->mutex);
    if (shares->next[me] >= shares->end[me]) {
        const int other = 1 - me;
        const int64_t rest = shares->end[other] - shares->next[other];
        if (rest < 2 * take) {
            return false;
        }
        const int64_t middle = shares->next[other] + rest / 2;
        shares->next[me] = middle;
        shares->end[me] = shares->end[other];
        shares->end[other] = middle;
    }
    *begin = shares->next[me];
    *end = std::min(*begin + take, shares->end[me]);
    shares->next[me] = *end;
    return true;
}

// One thread's part of a shared zone, read from the mapped body or through
// `stream` (its own).
static bool markSharedFaces(const FaceMarking<uint8_t>& job, FaceShares* shares, int me, FILE* stream,
                            const FaceRows& buffer) {
    int64_t begin = 0, end = 0;
    while (FaceSharesTake(shares, me, &begin, &end)) {
        if (job.body == nullptr && fseeko(stream, streamedFacePlace(job.faceZone, begin), SEEK_SET) != 0) {
            return false;
        }
        if (!markStreamedFaceRange(job, stream, begin, end, buffer)) {
            return false;
        }
    }
    return true;
}

// The second thread's part, through a buffer of its own, and a stream of its
// own where the body is not mapped.
static bool markSecondPart(const FaceMarking<uint8_t>& job, FaceShares* shares) {
    MarkBlock block = newMarkBlock();
    if (block == nullptr) {
        return false;
    }
    FILE* stream = nullptr;
    if (job.body == nullptr) {
        stream = openFilePath(job.caseFile->fileName, "rb");
        if (stream == nullptr) {
            return false;
        }
    }
    const bool read = markSharedFaces(job, shares, 1, stream, FaceRows{block.get(), kMarkFacesPerBlock});
    if (stream != nullptr) {
        fclose(stream);
    }
    return read;
}

// Marks the `count` faces of a face zone into bytes, through `stream`, which
// stands at its first face, and `buffer`, with a second thread, which reads
// through a buffer of its own: they start at the first face and at the
// middle and share out the rest as they go.
static bool markZoneInTwoThreads(const FaceMarking<uint8_t>& job, FILE* stream, const FaceRows& buffer,
                                 int64_t count) {
    FaceShares shares;
    FaceSharesInit(&shares, count);
    bool secondRead = false;
    HelperThread second;
    if (!second.start([&job, &shares, &secondRead] {
            secondRead = markSecondPart(job, &shares);
            if (!secondRead) {
                job.stop->store(true, std::memory_order_relaxed);
            }
        })) {
        // No thread: this one reads the whole zone.
        return markStreamedFaceRange(job, stream, 0, count, buffer);
    }
    const bool read = markSharedFaces(job, &shares, 0, stream, buffer);
    if (!read) {
        job.stop->store(true, std::memory_order_relaxed);
    }
    second.join();
    if (!read || !secondRead) {
        return false;
    }
    gFaceZonesMarkedInParallel.fetch_add(1, std::memory_order_relaxed);
    return true;
}

// Marks the faces of a face zone through `stream`, which stands at its first
// face, and `buffer`, or from the mapped body: a large zone, where the marks
// are bytes, by two threads. On success the stream stands behind the last
// face, where reading every face would have left it.
template <typename Mark>
static bool markStreamedZone(FaceMarking<Mark> job, FILE* stream, const FaceRows& buffer) {
    const int64_t count = static_cast<int64_t>(job.faceZone->lastIndex) - job.faceZone->firstIndex + 1;
    std::atomic<bool> stop{false};
    job.stop = &stop;
    bool read = false;
    if constexpr (std::is_same<Mark, uint8_t>::value) {
        read = count >= gParallelMarkMinFaces && count >= 2
                   ? markZoneInTwoThreads(job, stream, buffer, count)
                   : markStreamedFaceRange(job, stream, 0, count, buffer);
    } else {
        read = markStreamedFaceRange(job, stream, 0, count, buffer);
    }
    // Two threads, or a mapping, leave the stream elsewhere.
    return read && fseeko(stream, streamedFacePlace(job.faceZone, count), SEEK_SET) == 0;
}

// Marks the nodes of the faces of a face zone that is not in memory that
// have a cell of first..last on a side, into `marks`, without loading the
// zone: true when the zone's faces were read and marked and its section
// closed. False with *failed clear when the zone must be loaded instead
// (nothing shown; the body is not binary with 4-byte integers and one node
// count, or the faces are not as the load's block reader takes them); false
// with *failed set when closing the section failed, the message shown as the
// load shows it. A body of gMappedBodyMinBytes or more is read from a mapping
// of the file where the system gives one, a smaller one through `buffer`.
template <typename Mark>
static bool markFaceZoneWithoutLoading(CaseFile* caseFile, const FaceZone* faceZone, int32_t first,
                                       int32_t last, Mark* marks, int32_t totalNodes, CellRange* sideZero,
                                       const FaceRows& buffer, bool* failed) {
    *failed = false;
    if (faceZone->sectionId < 2000 || caseFile->machineConfig.intSize != 4 || faceZone->faceType < 2 ||
        faceZone->faceType > 4 || faceZone->childFaceIndex >= 0) {
        return false;
    }
    FILE* stream = openFilePath(caseFile->fileName, "rb");
    if (stream == nullptr) {
        return false;
    }
    // Where the file is shorter than the body, it is not mapped, and the
    // reads through the stream come short, as the load's do.
    MappedRange body;
    (void)mapFaceZoneBody(stream, faceZone, &body);
    const FaceMarking<Mark> job{caseFile,   faceZone, first,   last,        marks,
                                totalNodes, sideZero, nullptr, body.bytes()};
    const bool read = fseeko(stream, streamedFacePlace(faceZone, 0), SEEK_SET) == 0 &&
                      markStreamedZone(job, stream, buffer);
    if (!read) {
        fclose(stream);
        return false;
    }
    // Where the load would close the section, and with its message.
    const bool closed = closeSection(faceZone->sectionId, "Faces", true, stream);
    fclose(stream);
    *failed = !closed;
    return closed;
}

bool mapFaceZoneBody(FILE* stream, const FaceZone* zone, MappedRange* body) {
    const int64_t count = static_cast<int64_t>(zone->lastIndex) - zone->firstIndex + 1;
    const int64_t bytes = count * (zone->faceType + 2) * 4;
    if (bytes < gMappedBodyMinBytes || !body->map(stream, streamedFacePlace(zone, 0), bytes)) {
        return false;
    }
    gFaceBodiesMapped.fetch_add(1, std::memory_order_relaxed);
    return true;
}

// ---- Faces in memory -----------------------------------------------------------------------------

// What marking a face zone in memory needs, for a zone without child faces.
template <typename Mark>
struct LoadedMarking {
    const FaceZone* faceZone;  // the zone: faceCells and faceNodes in memory
    int32_t slots;             // places per face in faceNodes
    int32_t first;             // first cell whose faces count (on either side)
    int32_t last;              // last cell whose faces count
    Mark* marks;               // one per case node, set for the nodes of faces that count
    int32_t totalNodes;        // marks that are nodes
};

// Marks the nodes of faces `begin` to `end` (zero-based, end excluded) that
// have a cell of first..last on a side.
template <typename Mark>
static void markLoadedFaces(const LoadedMarking<Mark>& job, int64_t begin, int64_t end) {
    const int32_t first = job.first, last = job.last, totalNodes = job.totalNodes, slots = job.slots;
    const int32_t* cells = job.faceZone->faceCells;
    const int32_t* nodes = job.faceZone->faceNodes;
    Mark* const marks = job.marks;
    for (int64_t i = begin; i < end; ++i) {
        const int32_t c0 = cells[2 * i], c1 = cells[2 * i + 1];
        if ((first <= c0 && c0 <= last) || (first <= c1 && c1 <= last)) {
            markFaceNodes(marks, totalNodes, nodes + i * slots, slots);
        }
    }
}

// One thread's part of a zone in memory shared out between two.
template <typename Mark>
static void markSharedLoadedFaces(const LoadedMarking<Mark>& job, FaceShares* shares, int me) {
    int64_t begin = 0, end = 0;
    while (FaceSharesTake(shares, me, &begin, &end)) {
        markLoadedFaces(job, begin, end);
    }
}

// Marks the `count` faces of a zone in memory; a large zone by two threads,
// which share the faces out as they go. Every mark is only set, so the marks
// are those of one thread marking every face, whichever thread sets them.
template <typename Mark>
static void markLoadedZone(const LoadedMarking<Mark>& job, int64_t count) {
    static_assert(!std::is_same<Mark, uint64_t>::value, "bits are set by one thread");
    if (count >= gParallelMarkMinFaces && count >= 2) {
        FaceShares shares;
        FaceSharesInit(&shares, count);
        HelperThread second;
        if (second.start([&job, &shares] { markSharedLoadedFaces(job, &shares, 1); })) {
            markSharedLoadedFaces(job, &shares, 0);
            second.join();
            gFaceZonesMarkedInParallel.fetch_add(1, std::memory_order_relaxed);
            return;
        }
    }
    markLoadedFaces(job, 0, count);  // a small zone, or no thread
}

// ---- Node numbering of a cell zone ------------------------------------------------------------

static void freeCellZoneNumbering(CellZone* zone) {
    free(zone->newToOldNodes);
    zone->newToOldNodes = nullptr;
    zone->newToOldBytes = 0;
    free(zone->oldToNewNodes);
    zone->oldToNewNodes = nullptr;
}

// How a walk over the faces of a case for a cell zone's nodes ended.
enum class NodeWalk {
    Marked,    // every node of the zone is marked
    Failed,    // a face zone could not be read or is broken; the message is shown
    Polygons,  // a face zone holds polygons: the zone is a polyhedral one, numbered elsewhere
};

// Marks every node of the faces that bound cell zone `zone` (one mark per case
// node), loading the face zones that are not in memory. With a `buffer`
// (byte marks only), a face zone that is not in memory is read through it and
// not kept where it can be (see markFaceZoneWithoutLoading), and loaded
// otherwise. A face zone that holds polygons makes the cell zone's
// elementType 7, whether or not it could be loaded.
template <typename Mark>
static NodeWalk markCellZoneNodes(CellZone* zone, CaseFile* caseFile, int32_t totalNodes, Mark* marks,
                                  const FaceRows* buffer) {
    // Face trees mark faceCells as their zones are loaded; with no trees this
    // loads nothing, and the marks make repeats harmless.
    for (int32_t z = 0; z < caseFile->numFaceZones; ++z) {
        if (caseFile->faceZones[z].faceCells == nullptr && !CaseFileTrackParentChildFaces(caseFile)) {
            return NodeWalk::Failed;
        }
    }

    const int32_t first = zone->firstIndex, last = zone->lastIndex;
    for (int32_t z = 0; z < caseFile->numFaceZones; ++z) {
        FaceZone* faceZone = &caseFile->faceZones[z];
        if constexpr (std::is_same<Mark, uint8_t>::value) {
            if (buffer != nullptr && faceZone->faceCells == nullptr) {
                bool failed = false;
                if (markFaceZoneWithoutLoading(caseFile, faceZone, first, last, marks, totalNodes, nullptr,
                                               *buffer, &failed)) {
                    continue;
                }
                if (failed) {
                    return NodeWalk::Failed;
                }
            }
        }
        if (faceZone->faceCells == nullptr) {
            bool loaded = CaseFileLoadFaceZone(caseFile, faceZone);
            if (faceZone->faceType == 5) {
                zone->elementType = 7;
                return loaded ? NodeWalk::Polygons : NodeWalk::Failed;
            }
            if (!loaded) {
                return NodeWalk::Failed;
            }
        }
        const ChildFace* record = nullptr;
        const FaceZone* parentZone = nullptr;
        int32_t parentSlots = 0;
        if (faceZone->childFaceIndex >= 0) {
            record = &caseFile->childFaces[faceZone->childFaceIndex];
            FaceZone* parent = CaseFileFindFaceZone(caseFile, record->parentZoneId, false);
            if (parent == nullptr) {
                showErrorf("Face Zone ID = %d (referenced in data file) does not exist.",
                           record->parentZoneId);
                return NodeWalk::Failed;
            }
            if (parent->faceCells == nullptr && !CaseFileLoadFaceZone(caseFile, parent)) {
                return NodeWalk::Failed;
            }
            parentSlots = faceZoneSlots(parent);
            if (parentSlots == 0 || parent->faceNodes == nullptr) {
                return NodeWalk::Failed;
            }
            parentZone = parent;
        }
        const int32_t slots = faceZoneSlots(faceZone);
        if (slots == 0) {
            return NodeWalk::Failed;
        }
        const int32_t* cells = faceZone->faceCells;
        const int64_t count = static_cast<int64_t>(faceZone->lastIndex) - faceZone->firstIndex + 1;
        if (record == nullptr || record->pairs == nullptr) {
            markLoadedZone(LoadedMarking<Mark>{faceZone, slots, first, last, marks, totalNodes}, count);
            continue;
        }
        // Child faces: a parent stands in for the group it replaces.
        for (int64_t i = 0; i < count;) {
            int32_t c0 = cells[2 * i], c1 = cells[2 * i + 1];
            if (!(first <= c0 && c0 <= last) && !(first <= c1 && c1 <= last)) {
                ++i;
                continue;
            }
            const int32_t j = findChildPair(record, static_cast<int32_t>(faceZone->firstIndex + i));
            if (j >= 0) {
                int64_t parentIndex = static_cast<int64_t>(record->pairs[2 * j + 1]) - parentZone->firstIndex;
                if (parentIndex >= 0 && parentIndex <= parentZone->lastIndex - parentZone->firstIndex) {
                    markFaceNodes(marks, totalNodes, parentZone->faceNodes + parentIndex * parentSlots,
                                  parentSlots);
                }
                // The face behind the group is stepped over unseen (the "+ 1").
                int32_t k = endOfParentGroup(record, j);
                i += (k - j) + 1;
                continue;
            }
            markFaceNodes(marks, totalNodes, faceZone->faceNodes + i * slots, slots);
            ++i;
        }
    }
    return NodeWalk::Marked;
}

bool CellZoneGetNewNodeNumbers(CellZone* zone, CaseFile* caseFile, int32_t totalNodes) {
    if (zone->oldToNewNodes != nullptr) {
        return true;
    }
    size_t places = totalNodes > 0 ? static_cast<size_t>(totalNodes) : 0;
    zone->oldToNewNodes = static_cast<int32_t*>(bulkCalloc(places > 0 ? places : 1, sizeof(int32_t)));
    if (zone->oldToNewNodes == nullptr) {
        return false;
    }
    int32_t* marks = zone->oldToNewNodes;
    switch (markCellZoneNodes(zone, caseFile, totalNodes, marks, nullptr)) {
        case NodeWalk::Marked:
            break;
        case NodeWalk::Polygons:
            return true;
        case NodeWalk::Failed:
            freeCellZoneNumbering(zone);
            return false;
    }

    int32_t numNodes = 0;
    for (size_t g = 0; g < places; ++g) {
        if (marks[g] != 0) {
            marks[g] = ++numNodes;
        }
    }
    if (numNodes == 0) {
        showErrorf("Zone ID %d in file '%s' has no nodes.", zone->zoneId, caseFile->fileName);
        freeCellZoneNumbering(zone);
        return false;
    }
    size_t bytes = static_cast<size_t>(numNodes) * sizeof(int32_t);
    zone->newToOldNodes = static_cast<int32_t*>(malloc(bytes));
    if (zone->newToOldNodes == nullptr) {
        showErrorf("Unable to allocate %lu bytes of memory for nodes of zone ID %d\nin file '%s'.",
                   static_cast<unsigned long>(bytes), zone->zoneId, caseFile->fileName);
        freeCellZoneNumbering(zone);
        return false;
    }
    zone->newToOldBytes = bytes;
    for (size_t g = 0; g < places; ++g) {
        if (marks[g] != 0) {
            zone->newToOldNodes[marks[g] - 1] = static_cast<int32_t>(g + 1);
        }
    }
    zone->numNodes = numNodes;
    return true;
}

bool CellZoneGetNodeCountWithoutFaces(CellZone* zone, CaseFile* caseFile, int32_t totalNodes) {
    if (zone->oldToNewNodes != nullptr) {
        return true;
    }
    // One byte per node, and no numbering is left behind. The zeroed pages of
    // calloc are faulted in by the threads that mark them, not cleared by
    // this one.
    size_t places = totalNodes > 0 ? static_cast<size_t>(totalNodes) : 0;
    std::unique_ptr<uint8_t, void (*)(void*)> block(static_cast<uint8_t*>(calloc(places > 0 ? places : 1, 1)),
                                                    free);
    uint8_t* marks = block.get();
    if (marks == nullptr) {
        return false;
    }
    const bool streaming =
        caseFile->numFaceTrees == 0 && caseFile->numChildFaces == 0 && caseFile->numCellZones <= 2;
    MarkBlock rows = streaming ? newMarkBlock() : nullptr;
    const FaceRows buffer{rows.get(), kMarkFacesPerBlock};
    switch (markCellZoneNodes(zone, caseFile, totalNodes, marks, rows != nullptr ? &buffer : nullptr)) {
        case NodeWalk::Marked:
            break;
        case NodeWalk::Polygons:
            return true;
        case NodeWalk::Failed:
            return false;
    }
    const int32_t numNodes = countMarks(marks, places);
    if (numNodes == 0) {
        showErrorf("Zone ID %d in file '%s' has no nodes.", zone->zoneId, caseFile->fileName);
        return false;
    }
    // The numbering that a load makes needs this much; where it cannot be had,
    // the count fails as the numbering would.
    size_t bytes = static_cast<size_t>(numNodes) * sizeof(int32_t);
    void* numbering = malloc(bytes);
    if (numbering == nullptr) {
        showErrorf("Unable to allocate %lu bytes of memory for nodes of zone ID %d\nin file '%s'.",
                   static_cast<unsigned long>(bytes), zone->zoneId, caseFile->fileName);
        return false;
    }
    free(numbering);
    zone->numNodes = numNodes;
    return true;
}

// ---- Assembly ------------------------------------------------------------------------------

int32_t gParallelAssemblyMinCells = 50000;
std::atomic<int64_t> gAssembliesInHalves{0};
int64_t gParallelMarkMinFaces = 262144;
std::atomic<int64_t> gFaceZonesMarkedInParallel{0};
int64_t gSharedFacesPerTake = kMarkFacesPerBlock;  // one read of a buffer per take
int64_t gMappedBodyMinBytes = int64_t(1) << 20;
std::atomic<int64_t> gFaceBodiesMapped{0};

namespace {

// What a walk over the faces does with the sides that lie in its cells.
enum class WalkMode {
    Report,  // adds each face to its cells; reads missing face zones; shows the first error
    Quiet,   // the same, on a thread of its own: reads nothing, shows nothing, stops when told
    Clear,   // sets the local face numbers of the sides to 0
};

// One walk over the faces of a case for the cells `low` to `high` of a zone.
struct AssemblyWalk {
    CaseFile* caseFile;
    const CellZone* zone;
    int32_t nodesPerCell;           // slots per cell in cellNodes
    int32_t* cellNodes;             // the caller's slots, nodesPerCell per cell of the zone
    int32_t* counters;              // faces added so far, one per cell of the zone
    int32_t low;                    // first cell number taken (global numbering)
    int32_t high;                   // last cell number taken
    const std::atomic<bool>* stop;  // Quiet: set when the other half failed; NULL otherwise
};

}  // namespace

// A cell met for the first time must still hold the caller's UNSET_NODE in
// every slot: what a failed quiet walk changed is then known and undone.
static inline bool freshRow(const AssemblyWalk& walk, int32_t cellIndex) {
    if (walk.counters[cellIndex] != 0) {
        return true;
    }
    const int32_t* row = walk.cellNodes + static_cast<int64_t>(walk.nodesPerCell) * cellIndex;
    for (int32_t k = 0; k < walk.nodesPerCell; ++k) {
        if (row[k] != UNSET_NODE) {
            return false;
        }
    }
    return true;
}

// Walks every face of the case in the order of the assembly: faces of four
// nodes first, then those of fewer, zone after zone. False at the first
// failure (Report: the message shown).
template <WalkMode kMode>
static bool walkFaces(const AssemblyWalk& walk) {
    CaseFile* caseFile = walk.caseFile;
    const CellZone* zone = walk.zone;
    const int32_t first = zone->firstIndex;
    const int32_t* oldToNew = zone->oldToNewNodes;
    const int32_t totalNodes = caseFile->totalNodes;
    const int32_t hostZoneType = zone->hostZoneType;
    bool ok = true;
    for (int pass = 0; ok && pass < 2; ++pass) {
        for (int32_t z = 0; ok && z < caseFile->numFaceZones; ++z) {
            FaceZone* faceZone = &caseFile->faceZones[z];
            if (faceZone->boundaryType == 38 || faceZone->boundaryType > 1000) {
                continue;
            }
            // A zone of one face type without replacements has nothing for
            // the other pass (its faces are read all the same when they are
            // missing, below).
            const bool onlyQuadrilaterals = faceZone->faceType == 4 && faceZone->childFaceIndex < 0;
            const bool noQuadrilaterals =
                (faceZone->faceType == 2 || faceZone->faceType == 3) && faceZone->childFaceIndex < 0;
            if (faceZone->faceCells != nullptr && (pass == 0 ? noQuadrilaterals : onlyQuadrilaterals)) {
                continue;
            }
            const int32_t stride = faceZone->faceType == 0 ? 4 : faceZone->faceType;
            const ChildFace* record = nullptr;
            FaceZone* replacement = nullptr;
            if (faceZone->childFaceIndex >= 0) {
                record = &caseFile->childFaces[faceZone->childFaceIndex];
                replacement = CaseFileFindFaceZone(caseFile, record->parentZoneId, false);
                if (replacement == nullptr || record->pairs == nullptr) {
                    record = nullptr;
                    replacement = nullptr;
                }
            }
            if (kMode == WalkMode::Report) {
                if (faceZone->faceCells == nullptr && !CaseFileLoadFaceZone(caseFile, faceZone)) {
                    ok = false;
                    break;
                }
                if (replacement != nullptr && replacement->faceCells == nullptr &&
                    !CaseFileLoadFaceZone(caseFile, replacement)) {
                    ok = false;
                    break;
                }
            } else if (faceZone->faceCells == nullptr ||
                       (replacement != nullptr && replacement->faceCells == nullptr)) {
                // A zone to read: only the walk that reports may (checked before a quiet walk).
                ok = false;
                break;
            }
            if (faceZone->faceCells == nullptr || stride <= 0) {
                continue;  // polygons take no part
            }
            if (replacement != nullptr && replacement->faceCells == nullptr) {
                record = nullptr;
                replacement = nullptr;
            }
            const int64_t count = static_cast<int64_t>(faceZone->lastIndex) - faceZone->firstIndex + 1;
            for (int64_t i = 0; ok && i < count;) {
                if (kMode == WalkMode::Quiet && (i & 0xffff) == 0 &&
                    walk.stop->load(std::memory_order_relaxed)) {
                    ok = false;  // the other half failed
                    break;
                }
                const int32_t* nodes;
                const int32_t* cells;
                int32_t numNodes;
                int32_t j = -1;
                if (record != nullptr) {
                    j = findChildPair(record, static_cast<int32_t>(faceZone->firstIndex + i));
                }
                if (j >= 0) {
                    // The parent stands in for its children. Its nodes are
                    // addressed with the stride of the zone being walked.
                    int64_t w = static_cast<int64_t>(record->pairs[2 * j + 1]) - replacement->firstIndex;
                    if (w < 0 || w > replacement->lastIndex - replacement->firstIndex) {
                        ++i;
                        continue;
                    }
                    nodes = replacement->faceNodes + w * stride;
                    cells = replacement->faceCells + 2 * w;
                    numNodes =
                        replacement->faceType != 0 ? replacement->faceType : replacement->faceNodeCounts[w];
                } else {
                    nodes = faceZone->faceNodes + i * stride;
                    cells = faceZone->faceCells + 2 * i;
                    numNodes = faceZone->faceType != 0 ? faceZone->faceType : faceZone->faceNodeCounts[i];
                }
                if (pass == 0 ? numNodes != 4 : numNodes >= 4) {
                    ++i;
                    continue;
                }
                const int32_t c0 = cells[0], c1 = cells[1];
                const bool side0 = c0 >= walk.low && c0 <= walk.high;
                const bool side1 = c1 >= walk.low && c1 <= walk.high;
                if (kMode == WalkMode::Clear) {
                    if (side0) {
                        faceZone->faceConnectivity[2 * i] = 0;
                    }
                    if (side1) {
                        faceZone->faceConnectivity[2 * i + 1] = 0;
                    }
                } else if (side0 || side1) {
                    // The face's nodes in zone numbers, once for both sides.
                    int32_t mapped[4];
                    bool negative = false;
                    for (int32_t k = 0; k < numNodes; ++k) {
                        int32_t node = nodes[k];
                        if (oldToNew == nullptr) {
                            mapped[k] = node;
                        } else if (node >= 1 && node <= totalNodes) {
                            mapped[k] = oldToNew[node - 1];
                        } else {
                            mapped[k] = -1;
                        }
                        negative = negative || mapped[k] < 0;
                    }
                    if (side0) {
                        // Only this side checks the numbers.
                        if (negative) {
                            if (kMode == WalkMode::Report) {
                                ZorUtilDialogErrMsg("Error assembling cells from faces.");
                            }
                            ok = false;
                            break;
                        }
                        const int32_t cellIndex = c0 - first;
                        if (kMode == WalkMode::Quiet && !freshRow(walk, cellIndex)) {
                            ok = false;
                            break;
                        }
                        ok = addFaceToCellInline(
                            &faceZone->faceConnectivity[2 * i], cellIndex + 1, walk.counters[cellIndex],
                            mapped, numNodes, true,
                            walk.cellNodes + static_cast<int64_t>(walk.nodesPerCell) * cellIndex,
                            hostZoneType);
                        walk.counters[cellIndex] += 1;
                        if (!ok) {
                            break;
                        }
                    }
                    if (side1) {
                        const int32_t cellIndex = c1 - first;
                        if (kMode == WalkMode::Quiet && !freshRow(walk, cellIndex)) {
                            ok = false;
                            break;
                        }
                        ok = addFaceToCellInline(
                            &faceZone->faceConnectivity[2 * i + 1], cellIndex + 1, walk.counters[cellIndex],
                            mapped, numNodes, false,
                            walk.cellNodes + static_cast<int64_t>(walk.nodesPerCell) * cellIndex,
                            hostZoneType);
                        walk.counters[cellIndex] += 1;
                        if (!ok) {
                            break;
                        }
                    }
                }
                if (j >= 0) {
                    // As in the numbering: the face behind the group is stepped over.
                    int32_t k = endOfParentGroup(record, j);
                    i += (k - j) + 1;
                } else {
                    ++i;
                }
            }
        }
    }
    return ok;
}

// True when a walk would read no face zone: all that take part are in memory.
static bool faceZonesInMemory(CaseFile* caseFile) {
    for (int32_t z = 0; z < caseFile->numFaceZones; ++z) {
        const FaceZone* faceZone = &caseFile->faceZones[z];
        if (faceZone->boundaryType == 38 || faceZone->boundaryType > 1000) {
            continue;
        }
        if (faceZone->faceCells == nullptr) {
            return false;
        }
        if (faceZone->childFaceIndex >= 0) {
            const ChildFace* record = &caseFile->childFaces[faceZone->childFaceIndex];
            const FaceZone* replacement = CaseFileFindFaceZone(caseFile, record->parentZoneId, false);
            if (replacement != nullptr && record->pairs != nullptr && replacement->faceCells == nullptr) {
                return false;
            }
        }
    }
    return true;
}

// The two halves of a large zone on two threads. False when either failed
// (or found a slot it did not expect, or no thread could be started): what
// they did is then undone, and the caller walks again on one thread, which
// fails at the same face with the same message.
static bool assembleInHalves(const AssemblyWalk& whole) {
    std::atomic<bool> stop{false};
    AssemblyWalk lower = whole;
    AssemblyWalk upper = whole;
    lower.high = whole.low + (whole.high - whole.low) / 2;
    upper.low = lower.high + 1;
    lower.stop = &stop;
    upper.stop = &stop;
    bool upperOk = false;
    HelperThread other;
    if (!other.start([&upper, &upperOk, &stop] {
            tlsQuietAssembly = true;
            upperOk = walkFaces<WalkMode::Quiet>(upper);
            if (!upperOk) {
                stop.store(true, std::memory_order_relaxed);
            }
        })) {
        return false;  // no thread: nothing was done
    }
    tlsQuietAssembly = true;
    const bool lowerOk = walkFaces<WalkMode::Quiet>(lower);
    tlsQuietAssembly = false;
    if (!lowerOk) {
        stop.store(true, std::memory_order_relaxed);
    }
    other.join();
    if (lowerOk && upperOk) {
        gAssembliesInHalves.fetch_add(1, std::memory_order_relaxed);
        return true;
    }
    // Undo: the cells met hold UNSET_NODE again, no face is counted, and the
    // sides of the zone's cells have no local face number. That is how one
    // thread finds them behind the face where it fails: the same faces make
    // every assembly of the zone fail there, and only an assembly that gets
    // through sets those numbers.
    const int64_t numCells = static_cast<int64_t>(whole.high) - whole.low + 1;
    for (int64_t c = 0; c < numCells; ++c) {
        if (whole.counters[c] != 0) {
            std::fill(whole.cellNodes + whole.nodesPerCell * c,
                      whole.cellNodes + whole.nodesPerCell * (c + 1), UNSET_NODE);
            whole.counters[c] = 0;
        }
    }
    walkFaces<WalkMode::Clear>(whole);
    return false;
}

bool CellZoneAssembleFaces(CaseFile* caseFile, CellZone* zone, int32_t numCells, int32_t nodesPerCell,
                           int32_t* cellNodes) {
    int32_t* counters =
        static_cast<int32_t*>(bulkCalloc(numCells > 0 ? static_cast<size_t>(numCells) : 1, sizeof(int32_t)));
    if (counters == nullptr) {
        ZorUtilDialogErrMsg("Out of memory while assembling cells from faces.");
        return false;
    }
    // A second core faults the counters and the fresh local face numbers in
    // from their ends (the counters first, then the zones from the last)
    // while this one fills them from their starts, zone after zone.
    std::vector<BulkRange> fresh;
    for (int32_t z = 0; z < caseFile->numFaceZones; ++z) {
        const FaceZone* faceZone = &caseFile->faceZones[z];
        if (faceZone->faceCells != nullptr && faceZone->faceConnectivity != nullptr) {
            const int64_t count = static_cast<int64_t>(faceZone->lastIndex) - faceZone->firstIndex + 1;
            fresh.push_back({faceZone->faceConnectivity,
                             static_cast<size_t>(count > 0 ? 2 * count : 2) * sizeof(int32_t)});
        }
    }
    fresh.push_back({counters, static_cast<size_t>(numCells > 0 ? numCells : 1) * sizeof(int32_t)});
    BulkFaultIn faultIn(BulkOrder::OneAfterAnother, fresh);

    const AssemblyWalk walk = {caseFile,        zone,   nodesPerCell, cellNodes, counters, zone->firstIndex,
                               zone->lastIndex, nullptr};
    // Each cell sees its faces in the same order whichever thread walks it,
    // so two halves give what one walk gives; a failure is left to one walk,
    // for its message and for where it stops.
    const bool halves = numCells >= 2 && numCells >= gParallelAssemblyMinCells &&
                        numCells == zone->lastIndex - zone->firstIndex + 1 && faceZonesInMemory(caseFile);
    const bool ok = (halves && assembleInHalves(walk)) || walkFaces<WalkMode::Report>(walk);
    faultIn.finish();
    free(counters);
    return ok;
}

// ---- Boundary zones ---------------------------------------------------------------------------

// A boundary zone has few nodes: its marks are bits (see setMark), and the
// numbering passes over 64 nodes a word, where an integer per node would be
// cleared, written and read twice in full for every zone.

static void freeFaceZoneNumbering(FaceZone* zone) {
    free(zone->zoneNodes);
    zone->zoneNodes = nullptr;
    delete zone->nodeNumberMap;
    zone->nodeNumberMap = nullptr;
}

// Numbers the `numNodes` nodes whose bits are set in `block` (from
// takeNodeBits): zoneNodes in ascending order of the global node number, and
// the map. Clears the bits behind the walk and gives the block back.
static bool numberMarkedNodes(FaceZone* zone, CaseFile* caseFile, uint64_t* block, int32_t numNodes) {
    const size_t words = block[0];
    uint64_t* marks = block + 1;
    if (numNodes == 0) {
        showErrorf("Zone ID %d in file '%s' has no nodes.", zone->zoneId, caseFile->fileName);
        giveNodeBits(caseFile, block);
        return false;
    }
    zone->zoneNodes = static_cast<int32_t*>(malloc(static_cast<size_t>(numNodes) * sizeof(int32_t)));
    if (zone->zoneNodes == nullptr) {
        free(block);
        return false;
    }
    int32_t next = 0;
    for (size_t w = 0; w < words; ++w) {
        if (marks[w] == 0) {
            continue;
        }
        for (uint64_t bits = marks[w]; bits != 0; bits &= bits - 1) {
            zone->zoneNodes[next++] =
                static_cast<int32_t>(w * 64 + static_cast<size_t>(__builtin_ctzll(bits)) + 1);
        }
        marks[w] = 0;
    }
    giveNodeBits(caseFile, block);
    try {
        zone->nodeNumberMap = new NodeNumberMap(zone->zoneNodes, numNodes);
    } catch (const std::exception&) {
        freeFaceZoneNumbering(zone);
        return false;
    }
    zone->numNodes = numNodes;
    return true;
}

bool FaceZoneGetNodeNumbers(FaceZone* zone, CaseFile* caseFile, int32_t totalNodes) {
    if (zone->zoneNodes != nullptr) {
        // A first scan numbers a zone without keeping its faces; the callers go on to use them.
        return zone->faceCells != nullptr || zone->faceType == 5 || CaseFileLoadFaceZone(caseFile, zone);
    }
    if (zone->faceCells == nullptr && !CaseFileLoadFaceZone(caseFile, zone)) {
        return false;
    }
    const int32_t slots = zone->faceNodes != nullptr ? faceZoneSlots(zone) : 0;
    uint64_t* block = takeNodeBits(caseFile, nodeBitWords(totalNodes));
    if (block == nullptr) {
        return false;
    }
    // Counted as they are marked, which spares a pass over every word of the
    // case's bits.
    const int64_t count = static_cast<int64_t>(zone->lastIndex) - zone->firstIndex + 1;
    int32_t numNodes = 0;
    for (int64_t i = 0; slots > 0 && i < count; ++i) {
        numNodes += markFaceNodeBits(block + 1, totalNodes, zone->faceNodes + i * slots, slots);
    }
    return numberMarkedNodes(zone, caseFile, block, numNodes);
}

bool FaceZoneGetNodeNumbersWithoutFaces(FaceZone* zone, CaseFile* caseFile, int32_t totalNodes,
                                        CellRange* sideZero) {
    *sideZero = CellRange{INT32_MAX, INT32_MIN};
    if (zone->zoneNodes == nullptr && zone->faceCells == nullptr) {
        const size_t words = nodeBitWords(totalNodes);
        uint64_t* block = takeNodeBits(caseFile, words);
        if (block == nullptr) {
            return false;
        }
        // A boundary zone is small: a buffer on the stack spares the fresh
        // pages of a large one.
        int32_t rows[6 * 1024];
        bool failed = false;
        if (markFaceZoneWithoutLoading(caseFile, zone, INT32_MIN, INT32_MAX, block + 1, totalNodes, sideZero,
                                       FaceRows{rows, 1024}, &failed)) {
            // The streamed marking, which the cell zone count shares, does not
            // count; one pass over the words does, most of them clear.
            return numberMarkedNodes(zone, caseFile, block, countBits(block + 1, words));
        }
        // Marks of a false start are not cleared: the block goes.
        free(block);
        if (failed) {
            return false;
        }
        *sideZero = CellRange{INT32_MAX, INT32_MIN};
    }
    if (!FaceZoneGetNodeNumbers(zone, caseFile, totalNodes)) {
        return false;
    }
    if (zone->faceCells != nullptr) {
        widenSideZero(sideZero, reinterpret_cast<const unsigned char*>(zone->faceCells), 0,
                      static_cast<int64_t>(zone->lastIndex) - zone->firstIndex + 1, 2);
    }
    return true;
}

bool FaceZoneGetNodeNumsForPoly(FaceZone* zone, CaseFile* caseFile, int32_t totalNodes) {
    (void)caseFile;
    size_t places = totalNodes > 0 ? static_cast<size_t>(totalNodes) : 0;
    int32_t* numbers = static_cast<int32_t*>(bulkCalloc(places > 0 ? places : 1, sizeof(int32_t)));
    if (numbers == nullptr) {
        return false;
    }
    // Each node gets its number at first sight.
    int32_t numNodes = 0;
    const int32_t total = zone->polyNodes != nullptr ? zone->numPolyFaceNodes : 0;
    for (int32_t k = 0; k < total; ++k) {
        int32_t node = zone->polyNodes[k];
        if (node >= 1 && node <= totalNodes && numbers[node - 1] == 0) {
            numbers[node - 1] = ++numNodes;
        }
    }
    if (zone->zoneNodes == nullptr) {
        zone->zoneNodes = static_cast<int32_t*>(
            malloc(numNodes > 0 ? static_cast<size_t>(numNodes) * sizeof(int32_t) : sizeof(int32_t)));
        if (zone->zoneNodes == nullptr) {
            free(numbers);
            return false;
        }
    }
    for (int32_t k = 0; k < total; ++k) {
        int32_t node = zone->polyNodes[k];
        if (node >= 1 && node <= totalNodes && numbers[node - 1] > 0) {
            zone->zoneNodes[numbers[node - 1] - 1] = node;
        }
    }
    delete zone->nodeNumberMap;
    zone->nodeNumberMap = nullptr;
    try {
        zone->nodeNumberMap = new NodeNumberMap(zone->zoneNodes, numNodes);
    } catch (const std::exception&) {
        free(numbers);
        freeFaceZoneNumbering(zone);
        return false;
    }
    free(numbers);
    zone->numNodes = numNodes;
    return true;
}
