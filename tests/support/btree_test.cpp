// BTree: insertion, removal, rank and cursor against an ordered std::set,
// with the tree's whole structure checked as it goes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "support/BTree.h"

namespace {

// Keys are addresses of ints in a table that never moves; they order by value.
int compareInts(const void* keyInTree, const void* key) {
    int a = *static_cast<const int*>(keyInTree);
    int b = *static_cast<const int*>(key);
    return a < b ? -1 : (a > b ? 1 : 0);
}

struct IntKeys {
    std::vector<int> values;
    explicit IntKeys(int n) : values(static_cast<size_t>(n)) {
        for (int i = 0; i < n; ++i) {
            values[static_cast<size_t>(i)] = i;
        }
    }
    BTreeKey key(int value) { return &values[static_cast<size_t>(value)]; }
};

int valueOf(BTreeKey key) {
    return *static_cast<int*>(key);
}

BTree* makeTree(int order, BTreeCompare compare = compareInts) {
    BTreeDefinition definition{order, compare, 0};
    return BTreeCreate(&definition);
}

// Checks one subtree; returns its number of keys and fills the leaf depth.
// Keys must lie strictly between low and high (null: no bound).
int checkNode(const BTree* tree, const BTreeNode* node, const BTreeNode* parent, const int* low,
              const int* high, int depth, int* leafDepth, int* nodes) {
    ++*nodes;
    EXPECT_EQ(node->parent, parent);
    EXPECT_LE(node->numKeys, tree->order - 1);
    if (parent != nullptr) {
        EXPECT_GE(node->numKeys, 1);
    }
    for (int i = 0; i < node->numKeys; ++i) {
        int value = valueOf(node->keys[i]);
        if (i > 0) {
            EXPECT_LT(valueOf(node->keys[i - 1]), value);
        }
        if (low != nullptr) {
            EXPECT_LT(*low, value);
        }
        if (high != nullptr) {
            EXPECT_LT(value, *high);
        }
    }
    for (int i = node->numKeys; i < tree->order - 1; ++i) {
        EXPECT_EQ(node->keys[i], nullptr);
    }
    int size = node->numKeys;
    if (node->children == nullptr) {
        if (*leafDepth < 0) {
            *leafDepth = depth;
        }
        EXPECT_EQ(depth, *leafDepth) << "leaves at different depths";
    } else {
        for (int i = 0; i <= node->numKeys; ++i) {
            const int* childLow = i > 0 ? static_cast<const int*>(node->keys[i - 1]) : low;
            const int* childHigh = i < node->numKeys ? static_cast<const int*>(node->keys[i]) : high;
            EXPECT_NE(node->children[i], nullptr);
            if (node->children[i] != nullptr) {
                size += checkNode(tree, node->children[i], node, childLow, childHigh, depth + 1, leafDepth,
                                  nodes);
            }
        }
    }
    EXPECT_EQ(node->treeSize, size);
    return size;
}

void checkTree(const BTree* tree, const std::set<int>& model) {
    ASSERT_NE(tree->root, nullptr);
    int leafDepth = -1;
    int nodes = 0;
    int size = checkNode(tree, tree->root, nullptr, nullptr, nullptr, 0, &leafDepth, &nodes);
    EXPECT_EQ(size, static_cast<int>(model.size()));
    EXPECT_EQ(BTreeSize(tree), static_cast<int>(model.size()));
    EXPECT_EQ(tree->capacity, nodes * (tree->order - 1));
    if (tree->root->numKeys == 0) {
        EXPECT_EQ(tree->root->children, nullptr) << "an empty root must be a leaf";
    }
}

void collect(BTreeKey key, BTreeClientData clientData, BTreeData data) {
    auto* seen =
        reinterpret_cast<std::vector<std::pair<int, BTreeData>>*>(static_cast<uintptr_t>(clientData));
    seen->emplace_back(valueOf(key), data);
}

std::vector<int> walkForward(BTree* tree) {
    std::vector<int> seen;
    for (BTreeKey key = BTreeFirst(tree, nullptr); key != nullptr; key = BTreeNext(tree, nullptr)) {
        seen.push_back(valueOf(key));
    }
    return seen;
}

std::vector<int> walkBackward(BTree* tree) {
    std::vector<int> seen;
    for (BTreeKey key = BTreeLast(tree, nullptr); key != nullptr; key = BTreePrev(tree, nullptr)) {
        seen.push_back(valueOf(key));
    }
    return seen;
}

}  // namespace

TEST(BTree, CreateRefusesNullAndUnusableDefinitions) {
    EXPECT_EQ(BTreeCreate(nullptr), nullptr);
    BTreeDefinition noCompare{10, nullptr, 0};
    EXPECT_EQ(BTreeCreate(&noCompare), nullptr);
    BTreeDefinition tooSmall{3, compareInts, 0};
    EXPECT_EQ(BTreeCreate(&tooSmall), nullptr);
}

TEST(BTree, NewTreeIsAnEmptyLeafWithOneNodesCapacity) {
    BTreeDefinition definition{10, compareInts, 77};
    BTree* tree = BTreeCreate(&definition);
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(tree->order, 10);
    EXPECT_EQ(tree->capacity, 9);
    EXPECT_EQ(tree->root->numKeys, 0);
    EXPECT_EQ(tree->root->children, nullptr);
    EXPECT_EQ(BTreeSize(tree), 0);
    EXPECT_EQ(BTreeGetData(tree), 77u);
    BTreeSetData(tree, 78);
    EXPECT_EQ(BTreeGetData(tree), 78u);
    EXPECT_EQ(BTreeFirst(tree, nullptr), nullptr);
    EXPECT_EQ(BTreeLast(tree, nullptr), nullptr);
    EXPECT_EQ(BTreeFindAt(tree, 0, nullptr), nullptr);
    BTreeDestroy(tree);
}

TEST(BTree, SizeOfNullTreeIsZero) {
    EXPECT_EQ(BTreeSize(nullptr), 0);
    BTreeDestroy(nullptr);
}

TEST(BTree, InsertOfAnEqualKeyAnswersMinusOneAndStoresNothing) {
    IntKeys keys(10);
    std::vector<int> twin = {5};  // equal in value, another address
    BTree* tree = makeTree(10);
    EXPECT_EQ(BTreeInsert(tree, keys.key(5)), 1);
    EXPECT_EQ(BTreeInsert(tree, keys.key(3)), 1);
    EXPECT_EQ(BTreeInsert(tree, &twin[0]), -1);
    EXPECT_EQ(BTreeSize(tree), 2);
    EXPECT_EQ(BTreeFind(tree, &twin[0]), keys.key(5)) << "the stored key is the first one";
    BTreeDestroy(tree);
}

TEST(BTree, InsertOfNullTreeOrNullKeyAnswersZero) {
    IntKeys keys(1);
    BTree* tree = makeTree(10);
    EXPECT_EQ(BTreeInsert(nullptr, keys.key(0)), 0);
    EXPECT_EQ(BTreeInsert(tree, nullptr), 0);
    EXPECT_EQ(BTreeSize(tree), 0);
    BTreeDestroy(tree);
}

TEST(BTree, OrderTenRootTakesNineKeysAndTheTenthSplitsIt) {
    IntKeys keys(10);
    BTree* tree = makeTree(10);
    std::set<int> model;
    for (int i = 0; i < 9; ++i) {
        ASSERT_EQ(BTreeInsert(tree, keys.key(i)), 1);
        model.insert(i);
    }
    EXPECT_EQ(tree->root->numKeys, 9);
    EXPECT_EQ(tree->root->children, nullptr);
    EXPECT_EQ(tree->capacity, 9);

    ASSERT_EQ(BTreeInsert(tree, keys.key(9)), 1);
    model.insert(9);
    ASSERT_NE(tree->root->children, nullptr);
    EXPECT_EQ(tree->root->numKeys, 1);
    EXPECT_EQ(tree->capacity, 27);  // new root and two halves
    // Split at 10 / 2: keys 0..3 stay, 4 rises, 5..8 move; 9 then joins the right.
    EXPECT_EQ(valueOf(tree->root->keys[0]), 4);
    EXPECT_EQ(tree->root->children[0]->numKeys, 4);
    EXPECT_EQ(tree->root->children[1]->numKeys, 5);
    checkTree(tree, model);
    BTreeDestroy(tree);
}

TEST(BTree, FullLeafRotatesIntoASiblingBeforeSplitting) {
    IntKeys keys(100);
    BTree* tree = makeTree(10);
    std::set<int> model;
    for (int i = 0; i < 10; ++i) {  // root [8], leaves [0 2 4 6] and [10 .. 18]
        ASSERT_EQ(BTreeInsert(tree, keys.key(i * 2)), 1);
        model.insert(i * 2);
    }
    // Fill the right leaf to 9 keys, then one more: the left leaf has room, so
    // a key rotates left through the separator instead of a split.
    for (int v : {11, 13, 15, 17}) {
        ASSERT_EQ(BTreeInsert(tree, keys.key(v)), 1);
        model.insert(v);
    }
    ASSERT_EQ(tree->root->children[1]->numKeys, 9);
    int capacityBefore = tree->capacity;
    ASSERT_EQ(BTreeInsert(tree, keys.key(19)), 1);
    model.insert(19);
    EXPECT_EQ(tree->capacity, capacityBefore) << "no node was added";
    EXPECT_EQ(tree->root->numKeys, 1);
    EXPECT_EQ(tree->root->children[0]->numKeys, 5);
    EXPECT_EQ(tree->root->children[1]->numKeys, 9);
    checkTree(tree, model);
    BTreeDestroy(tree);
}

TEST(BTree, FindAtTheSizeAnswersNull) {
    IntKeys keys(50);
    BTree* tree = makeTree(10);
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(BTreeInsert(tree, keys.key(i)), 1);
    }
    EXPECT_EQ(BTreeFindAt(tree, BTreeSize(tree), nullptr), nullptr);
    EXPECT_EQ(BTreeFindAt(tree, -1, nullptr), nullptr);
    EXPECT_EQ(BTreeRemoveAt(tree, BTreeSize(tree), nullptr), nullptr);
    EXPECT_EQ(valueOf(BTreeFindAt(tree, BTreeSize(tree) - 1, nullptr)), 49);
    for (int rank = 0; rank < 50; ++rank) {
        EXPECT_EQ(valueOf(BTreeFindAt(tree, rank, nullptr)), rank);
    }
    BTreeDestroy(tree);
}

TEST(BTree, RemovingTheLastKeyLeavesAnEmptyLeafRootThatTakesNewKeys) {
    IntKeys keys(3);
    BTree* tree = makeTree(10);
    ASSERT_EQ(BTreeInsert(tree, keys.key(1)), 1);
    EXPECT_EQ(BTreeRemove(tree, keys.key(1), nullptr), keys.key(1));
    EXPECT_EQ(BTreeSize(tree), 0);
    EXPECT_EQ(tree->root->numKeys, 0);
    EXPECT_EQ(tree->root->children, nullptr);
    EXPECT_EQ(BTreeInsert(tree, keys.key(2)), 1);
    EXPECT_EQ(BTreeFind(tree, keys.key(2)), keys.key(2));
    EXPECT_EQ(BTreeSize(tree), 1);
    BTreeDestroy(tree);
}

TEST(BTree, RemovalOfAllKeysShrinksCapacityToOneNode) {
    for (int order : {4, 5, 10, 11}) {
        IntKeys keys(2000);
        BTree* tree = makeTree(order);
        for (int i = 0; i < 2000; ++i) {
            ASSERT_EQ(BTreeInsert(tree, keys.key((i * 7919) % 2000)), 1);
        }
        EXPECT_GT(tree->capacity, 2000);
        for (int i = 0; i < 2000; ++i) {
            int value = (i * 104729) % 2000;
            ASSERT_EQ(BTreeRemove(tree, keys.key(value), nullptr), keys.key(value)) << order;
        }
        EXPECT_EQ(BTreeSize(tree), 0);
        EXPECT_EQ(tree->capacity, order - 1) << order;
        EXPECT_EQ(tree->root->children, nullptr);
        BTreeDestroy(tree);
    }
}

TEST(BTree, RemoveOfAnAbsentKeyAnswersNullAndChangesNothing) {
    IntKeys keys(40);
    BTree* tree = makeTree(10);
    std::set<int> model;
    for (int i = 0; i < 40; i += 2) {
        ASSERT_EQ(BTreeInsert(tree, keys.key(i)), 1);
        model.insert(i);
    }
    EXPECT_EQ(BTreeRemove(tree, keys.key(7), nullptr), nullptr);
    EXPECT_EQ(BTreeRemove(nullptr, keys.key(8), nullptr), nullptr);
    checkTree(tree, model);
    BTreeDestroy(tree);
}

TEST(BTree, FindSetsTheCursorAndAMissLeavesItInvalid) {
    IntKeys keys(200);
    BTree* tree = makeTree(10);
    for (int i = 0; i < 200; i += 2) {
        ASSERT_EQ(BTreeInsert(tree, keys.key(i)), 1);
    }
    EXPECT_EQ(tree->currNode, nullptr) << "insertion clears the cursor";
    ASSERT_EQ(BTreeFind(tree, keys.key(100)), keys.key(100));
    EXPECT_EQ(tree->nextOk, 1);
    EXPECT_EQ(valueOf(BTreeNext(tree, nullptr)), 102);
    EXPECT_EQ(valueOf(BTreeNext(tree, nullptr)), 104);
    EXPECT_EQ(valueOf(BTreePrev(tree, nullptr)), 102);
    EXPECT_EQ(valueOf(BTreePrev(tree, nullptr)), 100);
    EXPECT_EQ(valueOf(BTreePrev(tree, nullptr)), 98);

    EXPECT_EQ(BTreeFind(tree, keys.key(101)), nullptr);
    EXPECT_NE(tree->currNode, nullptr);
    EXPECT_EQ(tree->currNode->children, nullptr) << "a miss ends on a leaf";
    EXPECT_EQ(tree->nextOk, 0);
    EXPECT_EQ(BTreeNext(tree, nullptr), nullptr);

    ASSERT_EQ(BTreeFind(tree, keys.key(50)), keys.key(50));
    ASSERT_NE(BTreeRemove(tree, keys.key(50), nullptr), nullptr);
    EXPECT_EQ(tree->currNode, nullptr) << "removal clears the cursor";
    EXPECT_EQ(BTreeNext(tree, nullptr), nullptr);
    BTreeDestroy(tree);
}

TEST(BTree, CursorStopsAtBothEnds) {
    IntKeys keys(300);
    BTree* tree = makeTree(10);
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ(BTreeInsert(tree, keys.key(i)), 1);
    }
    EXPECT_EQ(valueOf(BTreeLast(tree, nullptr)), 299);
    EXPECT_EQ(BTreeNext(tree, nullptr), nullptr);
    EXPECT_EQ(tree->nextOk, 0);
    EXPECT_EQ(valueOf(BTreeFirst(tree, nullptr)), 0);
    EXPECT_EQ(BTreePrev(tree, nullptr), nullptr);
    EXPECT_EQ(tree->nextOk, 0);
    BTreeDestroy(tree);
}

TEST(BTree, CursorFromEveryRankWalksBothWays) {
    IntKeys keys(500);
    BTree* tree = makeTree(5);
    for (int i = 0; i < 500; ++i) {
        ASSERT_EQ(BTreeInsert(tree, keys.key((i * 37) % 500)), 1);
    }
    for (int rank = 0; rank < 500; ++rank) {
        ASSERT_EQ(valueOf(BTreeFindAt(tree, rank, nullptr)), rank);
        BTreeKey next = BTreeNext(tree, nullptr);
        if (rank + 1 < 500) {
            ASSERT_NE(next, nullptr) << rank;
            EXPECT_EQ(valueOf(next), rank + 1);
            EXPECT_EQ(valueOf(BTreePrev(tree, nullptr)), rank);
        } else {
            EXPECT_EQ(next, nullptr);
        }
        ASSERT_EQ(valueOf(BTreeFind(tree, keys.key(rank))), rank);
        BTreeKey previous = BTreePrev(tree, nullptr);
        if (rank > 0) {
            ASSERT_NE(previous, nullptr) << rank;
            EXPECT_EQ(valueOf(previous), rank - 1);
            EXPECT_EQ(valueOf(BTreeNext(tree, nullptr)), rank);
        } else {
            EXPECT_EQ(previous, nullptr);
        }
    }
    BTreeDestroy(tree);
}

TEST(BTree, DataStaysBesideItsKeyThroughRotationsSplitsAndMerges) {
    IntKeys keys(3000);
    BTree* tree = makeTree(6);
    std::mt19937 random(99);
    std::set<int> model;
    // Insert everything, then give each key its own data through the cursor.
    for (int i = 0; i < 3000; ++i) {
        int value = static_cast<int>(random() % 3000);
        if (BTreeInsert(tree, keys.key(value)) == 1) {
            model.insert(value);
        }
    }
    for (int value : model) {
        ASSERT_EQ(BTreeFind(tree, keys.key(value)), keys.key(value));
        tree->currNode->data[tree->currNode->currKey] = static_cast<BTreeData>(value) * 10 + 1;
    }
    // Remove half at random; every removed key brings its data.
    std::vector<int> present(model.begin(), model.end());
    std::shuffle(present.begin(), present.end(), random);
    for (size_t i = 0; i < present.size() / 2; ++i) {
        BTreeData data = 0;
        ASSERT_EQ(BTreeRemove(tree, keys.key(present[i]), &data), keys.key(present[i]));
        EXPECT_EQ(data, static_cast<BTreeData>(present[i]) * 10 + 1);
        model.erase(present[i]);
    }
    checkTree(tree, model);
    std::vector<std::pair<int, BTreeData>> seen;
    BTreeForEach(tree->root, collect, static_cast<BTreeClientData>(reinterpret_cast<uintptr_t>(&seen)));
    ASSERT_EQ(seen.size(), model.size());
    size_t index = 0;
    for (int value : model) {
        EXPECT_EQ(seen[index].first, value);
        EXPECT_EQ(seen[index].second, static_cast<BTreeData>(value) * 10 + 1);
        ++index;
    }
    BTreeData data = 0;
    ASSERT_NE(BTreeFindAt(tree, 3, &data), nullptr);
    EXPECT_EQ(data, static_cast<BTreeData>(*std::next(model.begin(), 3)) * 10 + 1);
    ASSERT_NE(BTreeFirst(tree, &data), nullptr);
    EXPECT_EQ(data, static_cast<BTreeData>(*model.begin()) * 10 + 1);
    ASSERT_NE(BTreeLast(tree, &data), nullptr);
    EXPECT_EQ(data, static_cast<BTreeData>(*model.rbegin()) * 10 + 1);
    BTreeDestroy(tree);
}

TEST(BTree, NewKeysCarryZeroData) {
    IntKeys keys(100);
    BTree* tree = makeTree(10);
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(BTreeInsert(tree, keys.key(i)), 1);
    }
    std::vector<std::pair<int, BTreeData>> seen;
    BTreeForEach(tree->root, collect, static_cast<BTreeClientData>(reinterpret_cast<uintptr_t>(&seen)));
    ASSERT_EQ(seen.size(), 100u);
    for (const auto& entry : seen) {
        EXPECT_EQ(entry.second, 0u);
    }
    BTreeDestroy(tree);
}

// Random insertions and removals, by key and by rank, against std::set, for
// small, odd, even and large orders, with the whole structure checked often.
class BTreeRandom : public ::testing::TestWithParam<int> {};

TEST_P(BTreeRandom, MatchesAnOrderedSet) {
    const int order = GetParam();
    const int universe = 4000;
    IntKeys keys(universe);
    BTree* tree = makeTree(order);
    std::set<int> model;
    std::mt19937 random(static_cast<unsigned>(order) * 7919u);
    for (int step = 0; step < 20000; ++step) {
        int value = static_cast<int>(random() % universe);
        // Phases: mostly growing, then mostly shrinking, then mixed.
        int phase = step / 5000;
        unsigned insertShare = phase == 0 ? 80 : (phase == 1 ? 25 : 50);
        unsigned roll = random() % 100;
        if (roll < insertShare) {
            int expected = model.count(value) ? -1 : 1;
            ASSERT_EQ(BTreeInsert(tree, keys.key(value)), expected) << "step " << step;
            model.insert(value);
        } else if (roll < insertShare + (100 - insertShare) / 2 || model.empty()) {
            BTreeKey removed = BTreeRemove(tree, keys.key(value), nullptr);
            if (model.count(value)) {
                ASSERT_EQ(removed, keys.key(value)) << "step " << step;
                model.erase(value);
            } else {
                ASSERT_EQ(removed, nullptr) << "step " << step;
            }
        } else {
            int rank = static_cast<int>(random() % model.size());
            int expected = *std::next(model.begin(), rank);
            BTreeKey removed = BTreeRemoveAt(tree, rank, nullptr);
            ASSERT_NE(removed, nullptr) << "step " << step;
            ASSERT_EQ(valueOf(removed), expected) << "step " << step;
            model.erase(expected);
        }
        ASSERT_EQ(BTreeSize(tree), static_cast<int>(model.size()));
        if (step % 500 == 0) {
            checkTree(tree, model);
            ASSERT_FALSE(::testing::Test::HasFailure()) << "step " << step;
        }
    }
    checkTree(tree, model);
    std::vector<int> expected(model.begin(), model.end());
    EXPECT_EQ(walkForward(tree), expected);
    std::vector<int> reversed(expected.rbegin(), expected.rend());
    EXPECT_EQ(walkBackward(tree), reversed);
    int rank = 0;
    for (int value : model) {
        ASSERT_EQ(valueOf(BTreeFindAt(tree, rank, nullptr)), value);
        ASSERT_EQ(BTreeFind(tree, keys.key(value)), keys.key(value));
        ++rank;
    }
    for (int value = 0; value < universe; ++value) {
        if (!model.count(value)) {
            ASSERT_EQ(BTreeFind(tree, keys.key(value)), nullptr);
        }
    }
    BTreeDestroy(tree);
}

INSTANTIATE_TEST_SUITE_P(Orders, BTreeRandom, ::testing::Values(4, 5, 6, 7, 10, 11, 16, 33, 1000));

TEST(BTree, RotationKeepsSequentialInsertionsFullerThanHalf) {
    // A plain B-tree fills nodes to about half on sorted input; rotating into
    // a sibling before each split keeps them clearly fuller.
    IntKeys keys(20000);
    BTree* tree = makeTree(10);
    for (int i = 0; i < 20000; ++i) {
        ASSERT_EQ(BTreeInsert(tree, keys.key(i)), 1);
    }
    int efficiency = static_cast<int>(static_cast<int64_t>(BTreeSize(tree)) * 100 / tree->capacity);
    EXPECT_GE(efficiency, 80);
    checkTree(tree, std::set<int>(keys.values.begin(), keys.values.end()));
    BTreeDestroy(tree);
}

namespace {

// The edge records of the face neighbour code: two node numbers, ordered by
// the first, then the second.
struct Edge {
    int32_t first;
    int32_t second;
    int32_t payload;
};

int compareEdges(const void* keyInTree, const void* key) {
    const int32_t* a = static_cast<const int32_t*>(keyInTree);
    const int32_t* b = static_cast<const int32_t*>(key);
    if (a[0] != b[0]) {
        return a[0] < b[0] ? -1 : 1;
    }
    if (a[1] != b[1]) {
        return a[1] < b[1] ? -1 : 1;
    }
    return 0;
}

}  // namespace

TEST(BTree, EdgeRecordsAreFoundByAPairOfNodeNumbers) {
    std::vector<Edge> edges;
    for (int32_t a = 1; a <= 30; ++a) {
        for (int32_t b = a + 1; b <= a + 4; ++b) {
            edges.push_back(Edge{a, b, a * 100 + b});
        }
    }
    BTree* tree = makeTree(10, compareEdges);
    for (Edge& edge : edges) {
        ASSERT_EQ(BTreeInsert(tree, &edge), 1);
    }
    int32_t sought[2] = {17, 19};
    Edge* found = static_cast<Edge*>(BTreeFind(tree, sought));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->payload, 1719);
    int32_t absent[2] = {17, 30};
    EXPECT_EQ(BTreeFind(tree, absent), nullptr);
    Edge again{3, 5, 0};
    EXPECT_EQ(BTreeInsert(tree, &again), -1);
    BTreeDestroy(tree);
}

namespace {

void printInt(BTreeKey key, BTreeClientData) {
    printf("key %d\n", valueOf(key));
}

}  // namespace

TEST(BTree, DumpPrintsTheHeaderAndEveryNode) {
    IntKeys keys(30);
    BTree* tree = makeTree(10);
    for (int i = 0; i < 30; ++i) {
        ASSERT_EQ(BTreeInsert(tree, keys.key(i)), 1);
    }
    ::testing::internal::CaptureStdout();
    BTreeDump(tree, printInt, 0);
    std::string out = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(out.rfind("B-tree dump  ", 0), 0u);
    EXPECT_NE(out.find("order = 10\n"), std::string::npos);
    EXPECT_NE(out.find("capacity = " + std::to_string(tree->capacity) + "\n"), std::string::npos);
    EXPECT_NE(out.find("contains 30 keys\n"), std::string::npos);
    EXPECT_NE(out.find("efficiency is " + std::to_string(30 * 100 / tree->capacity) + " per cent\n"),
              std::string::npos);
    EXPECT_NE(out.find("nextOk = 0\n"), std::string::npos);
    for (int i = 0; i < 30; ++i) {
        EXPECT_NE(out.find("        key " + std::to_string(i) + "\n"), std::string::npos) << i;
    }
    EXPECT_EQ(out.find("ERROR"), std::string::npos);
    BTreeDestroy(tree);
}
