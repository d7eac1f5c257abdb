// BTree: keys by pointer, rank access, a cursor, rotation before splitting.
//
// Shape of a node of order m:
//
//   keys      k0  k1  ...  k(n-1)          n = numKeys <= m - 1
//   children  c0  c1  ...  c(n-1)  cn      all keys of ci lie between k(i-1) and ki
//
// A node that is not the root keeps at least (m - 1) / 2 keys where it can;
// insertion and removal restore this by rotating single keys through the
// separator in the parent, and by splitting and merging nodes.
//
// Cursor: for each node on the path from the root to currNode, currKey is the
// key left of the path (the child index less one, -1 for the first child); in
// currNode it is the key the cursor stands on. BTreeNext climbs by moving
// currKey one place right, BTreePrev by reading it as it is.
#include "support/BTree.h"

#include <cassert>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// Internal outcomes of an insertion into a subtree.
enum InsertOutcome { kInserted = 1, kFull = 0, kDuplicate = -1, kNoMemory = -2 };

static bool isLeaf(const BTreeNode* node) {
    return node->children == nullptr;
}

static void freeNode(BTreeNode* node) {
    free(node->keys);
    free(node->data);
    free(node->children);
    free(node);
}

// A zero-filled node with room for order - 1 keys, and for order children
// unless it is a leaf. Null when memory runs out.
static BTreeNode* allocNode(const BTree* tree, bool inner) {
    BTreeNode* node = static_cast<BTreeNode*>(calloc(1, sizeof(BTreeNode)));
    if (node == nullptr) {
        return nullptr;
    }
    node->keys = static_cast<BTreeKey*>(calloc(static_cast<size_t>(tree->order - 1), sizeof(BTreeKey)));
    node->data = static_cast<BTreeData*>(calloc(static_cast<size_t>(tree->order - 1), sizeof(BTreeData)));
    if (inner) {
        node->children =
            static_cast<BTreeNode**>(calloc(static_cast<size_t>(tree->order), sizeof(BTreeNode*)));
    }
    if (node->keys == nullptr || node->data == nullptr || (inner && node->children == nullptr)) {
        freeNode(node);
        return nullptr;
    }
    node->currKey = -1;
    return node;
}

BTree* BTreeCreate(const BTreeDefinition* definition) {
    if (definition == nullptr || definition->compare == nullptr || definition->order < 4) {
        return nullptr;
    }
    BTree* tree = static_cast<BTree*>(calloc(1, sizeof(BTree)));
    if (tree == nullptr) {
        return nullptr;
    }
    tree->order = definition->order;
    tree->compare = definition->compare;
    tree->data = definition->clientData;
    tree->root = allocNode(tree, false);
    if (tree->root == nullptr) {
        free(tree);
        return nullptr;
    }
    tree->capacity = tree->order - 1;
    return tree;
}

static void destroyNode(BTreeNode* node) {
    if (!isLeaf(node)) {
        for (int32_t i = 0; i <= node->numKeys; ++i) {
            destroyNode(node->children[i]);
        }
    }
    freeNode(node);
}

void BTreeDestroy(BTree* tree) {
    if (tree == nullptr) {
        return;
    }
    destroyNode(tree->root);
    free(tree);
}

// The first place whose key is not below the sought key; *equal tells whether
// it is equal. Small nodes are searched linearly, which avoids the branches of
// a binary search. Sets currKey to the place, less one when not equal.
static int32_t searchNode(const BTree* tree, BTreeNode* node, const void* key, bool* equal) {
    int32_t place = 0;
    *equal = false;
    if (node->numKeys > 7) {
        int32_t low = 0;
        int32_t high = node->numKeys;
        while (low < high) {
            int32_t middle = low + (high - low) / 2;
            if (tree->compare(node->keys[middle], key) < 0) {
                low = middle + 1;
            } else {
                high = middle;
            }
        }
        place = low;
        *equal = place < node->numKeys && tree->compare(node->keys[place], key) == 0;
    } else {
        for (place = 0; place < node->numKeys; ++place) {
            int comparison = tree->compare(node->keys[place], key);
            if (comparison >= 0) {
                *equal = comparison == 0;
                break;
            }
        }
    }
    node->currKey = *equal ? place : place - 1;
    return place;
}

// Keys in a subtree moved along with a key and, in an inner node, the child
// beside it.
static int32_t movedSize(const BTreeNode* child) {
    return child != nullptr ? child->treeSize : 0;
}

// Moves one key from child i of parent to child i + 1, through the separator
// key i. Works only when the giver has more than order / 2 keys and the
// taker fewer than order - 1.
static bool rotateToRight(BTree* tree, BTreeNode* parent, int32_t i) {
    BTreeNode* giver = parent->children[i];
    BTreeNode* taker = parent->children[i + 1];
    if (giver->numKeys <= tree->order / 2 || taker->numKeys >= tree->order - 1) {
        return false;
    }
    memmove(taker->keys + 1, taker->keys, static_cast<size_t>(taker->numKeys) * sizeof(BTreeKey));
    memmove(taker->data + 1, taker->data, static_cast<size_t>(taker->numKeys) * sizeof(BTreeData));
    taker->keys[0] = parent->keys[i];
    taker->data[0] = parent->data[i];
    BTreeNode* movedChild = nullptr;
    if (!isLeaf(taker)) {
        memmove(taker->children + 1, taker->children,
                static_cast<size_t>(taker->numKeys + 1) * sizeof(BTreeNode*));
        movedChild = giver->children[giver->numKeys];
        giver->children[giver->numKeys] = nullptr;
        taker->children[0] = movedChild;
        movedChild->parent = taker;
    }
    taker->numKeys++;
    giver->numKeys--;
    parent->keys[i] = giver->keys[giver->numKeys];
    parent->data[i] = giver->data[giver->numKeys];
    giver->keys[giver->numKeys] = nullptr;
    giver->data[giver->numKeys] = 0;
    int32_t moved = 1 + movedSize(movedChild);
    taker->treeSize += moved;
    giver->treeSize -= moved;
    return true;
}

// Moves one key from child i of parent to child i - 1, through the separator
// key i - 1, under the same conditions.
static bool rotateToLeft(BTree* tree, BTreeNode* parent, int32_t i) {
    BTreeNode* giver = parent->children[i];
    BTreeNode* taker = parent->children[i - 1];
    if (giver->numKeys <= tree->order / 2 || taker->numKeys >= tree->order - 1) {
        return false;
    }
    taker->keys[taker->numKeys] = parent->keys[i - 1];
    taker->data[taker->numKeys] = parent->data[i - 1];
    BTreeNode* movedChild = nullptr;
    if (!isLeaf(taker)) {
        movedChild = giver->children[0];
        taker->children[taker->numKeys + 1] = movedChild;
        movedChild->parent = taker;
        memmove(giver->children, giver->children + 1,
                static_cast<size_t>(giver->numKeys) * sizeof(BTreeNode*));
        giver->children[giver->numKeys] = nullptr;
    }
    taker->numKeys++;
    parent->keys[i - 1] = giver->keys[0];
    parent->data[i - 1] = giver->data[0];
    giver->numKeys--;
    memmove(giver->keys, giver->keys + 1, static_cast<size_t>(giver->numKeys) * sizeof(BTreeKey));
    memmove(giver->data, giver->data + 1, static_cast<size_t>(giver->numKeys) * sizeof(BTreeData));
    giver->keys[giver->numKeys] = nullptr;
    giver->data[giver->numKeys] = 0;
    int32_t moved = 1 + movedSize(movedChild);
    taker->treeSize += moved;
    giver->treeSize -= moved;
    return true;
}

// Splits child i of parent at order / 2: the keys from there on go to a new
// node behind it, the key before them rises into the parent. A full parent
// refuses (kFull); kNoMemory when the new node cannot be had.
static int splitChild(BTree* tree, BTreeNode* parent, int32_t i) {
    if (parent->numKeys >= tree->order - 1) {
        return kFull;
    }
    BTreeNode* child = parent->children[i];
    int32_t middle = tree->order / 2;
    assert(child->numKeys > middle);
    BTreeNode* sibling = allocNode(tree, !isLeaf(child));
    if (sibling == nullptr) {
        return kNoMemory;
    }
    int32_t moving = child->numKeys - middle;
    memcpy(sibling->keys, child->keys + middle, static_cast<size_t>(moving) * sizeof(BTreeKey));
    memcpy(sibling->data, child->data + middle, static_cast<size_t>(moving) * sizeof(BTreeData));
    sibling->numKeys = moving;
    sibling->treeSize = moving;
    if (!isLeaf(child)) {
        for (int32_t k = 0; k <= moving; ++k) {
            BTreeNode* grandChild = child->children[middle + k];
            sibling->children[k] = grandChild;
            grandChild->parent = sibling;
            sibling->treeSize += grandChild->treeSize;
            child->children[middle + k] = nullptr;
        }
    }
    BTreeKey risingKey = child->keys[middle - 1];
    BTreeData risingData = child->data[middle - 1];
    for (int32_t k = middle - 1; k < child->numKeys; ++k) {
        child->keys[k] = nullptr;
        child->data[k] = 0;
    }
    child->numKeys = middle - 1;
    child->treeSize -= sibling->treeSize + 1;

    memmove(parent->keys + i + 1, parent->keys + i,
            static_cast<size_t>(parent->numKeys - i) * sizeof(BTreeKey));
    memmove(parent->data + i + 1, parent->data + i,
            static_cast<size_t>(parent->numKeys - i) * sizeof(BTreeData));
    memmove(parent->children + i + 2, parent->children + i + 1,
            static_cast<size_t>(parent->numKeys - i) * sizeof(BTreeNode*));
    parent->keys[i] = risingKey;
    parent->data[i] = risingData;
    parent->children[i + 1] = sibling;
    sibling->parent = parent;
    parent->numKeys++;
    tree->capacity += tree->order - 1;
    return kInserted;
}

// Makes room in full child i of node: a rotation into the right sibling, else
// into the left one, when that sibling has fewer than order - 2 keys; else a
// split. kInserted when room was made.
static int makeRoom(BTree* tree, BTreeNode* node, int32_t i) {
    if (i < node->numKeys && node->children[i + 1]->numKeys < tree->order - 2 &&
        rotateToRight(tree, node, i)) {
        return kInserted;
    }
    if (i > 0 && node->children[i - 1]->numKeys < tree->order - 2 && rotateToLeft(tree, node, i)) {
        return kInserted;
    }
    return splitChild(tree, node, i);
}

static int insertInto(BTree* tree, BTreeNode* node, BTreeKey key) {
    bool madeRoom = false;
    for (;;) {
        bool equal = false;
        int32_t place = searchNode(tree, node, key, &equal);
        if (equal) {
            return kDuplicate;
        }
        if (isLeaf(node)) {
            if (node->numKeys >= tree->order - 1) {
                return kFull;
            }
            memmove(node->keys + place + 1, node->keys + place,
                    static_cast<size_t>(node->numKeys - place) * sizeof(BTreeKey));
            memmove(node->data + place + 1, node->data + place,
                    static_cast<size_t>(node->numKeys - place) * sizeof(BTreeData));
            node->keys[place] = key;
            node->data[place] = 0;
            node->numKeys++;
            node->treeSize++;
            return kInserted;
        }
        int outcome = insertInto(tree, node->children[place], key);
        if (outcome == kInserted) {
            node->treeSize++;
            if (madeRoom) {
                // Keep the child and its right sibling from staying thin.
                int32_t least = (tree->order - 1) / 2;
                if (node->children[place]->numKeys < least) {
                    if (place < node->numKeys) {
                        rotateToLeft(tree, node, place + 1);
                    }
                } else if (place < node->numKeys && node->children[place + 1]->numKeys < least) {
                    rotateToRight(tree, node, place);
                }
            }
            return kInserted;
        }
        if (outcome != kFull) {
            return outcome;
        }
        int room = makeRoom(tree, node, place);
        if (room != kInserted) {
            return room;
        }
        madeRoom = true;
    }
}

int BTreeInsert(BTree* tree, BTreeKey key) {
    if (tree == nullptr || key == nullptr) {
        return 0;
    }
    tree->currNode = nullptr;
    tree->nextOk = 0;
    BTreeNode* root = tree->root;
    if (root->numKeys == 0) {
        assert(isLeaf(root));
        root->keys[0] = key;
        root->data[0] = 0;
        root->numKeys = 1;
        root->treeSize = 1;
        return 1;
    }
    int outcome = insertInto(tree, root, key);
    if (outcome == kFull) {
        // The root itself is full: it becomes the only child of a new root
        // and is split there.
        BTreeNode* newRoot = allocNode(tree, true);
        if (newRoot == nullptr) {
            return 0;
        }
        newRoot->children[0] = root;
        newRoot->treeSize = root->treeSize;
        root->parent = newRoot;
        tree->root = newRoot;
        tree->capacity += tree->order - 1;
        if (splitChild(tree, newRoot, 0) != kInserted) {
            root->parent = nullptr;
            tree->root = root;
            tree->capacity -= tree->order - 1;
            freeNode(newRoot);
            return 0;
        }
        outcome = insertInto(tree, newRoot, key);
        int32_t least = (tree->order - 1) / 2;
        BTreeNode* left = newRoot->children[0];
        BTreeNode* right = newRoot->children[1];
        if (left->numKeys < least && right->numKeys > tree->order / 2) {
            rotateToLeft(tree, newRoot, 1);
        } else if (right->numKeys < least && left->numKeys > tree->order / 2) {
            rotateToRight(tree, newRoot, 0);
        }
    }
    switch (outcome) {
        case kInserted:
            return 1;
        case kDuplicate:
            return -1;
        default:
            return 0;
    }
}

BTreeKey BTreeFind(BTree* tree, const void* key) {
    if (tree == nullptr) {
        return nullptr;
    }
    BTreeNode* node = tree->root;
    for (;;) {
        bool equal = false;
        int32_t place = searchNode(tree, node, key, &equal);
        if (equal) {
            tree->currNode = node;
            tree->nextOk = 1;
            return node->keys[place];
        }
        if (isLeaf(node)) {
            tree->currNode = node;
            tree->nextOk = 0;
            return nullptr;
        }
        node = node->children[place];
    }
}

// Merges child i + 1 of parent into child i, with the separator key i between
// them, and frees the emptied node.
static void mergeChildren(BTree* tree, BTreeNode* parent, int32_t i) {
    BTreeNode* left = parent->children[i];
    BTreeNode* right = parent->children[i + 1];
    assert(left->numKeys + 1 + right->numKeys <= tree->order - 1);
    left->keys[left->numKeys] = parent->keys[i];
    left->data[left->numKeys] = parent->data[i];
    memcpy(left->keys + left->numKeys + 1, right->keys,
           static_cast<size_t>(right->numKeys) * sizeof(BTreeKey));
    memcpy(left->data + left->numKeys + 1, right->data,
           static_cast<size_t>(right->numKeys) * sizeof(BTreeData));
    if (!isLeaf(left)) {
        for (int32_t k = 0; k <= right->numKeys; ++k) {
            left->children[left->numKeys + 1 + k] = right->children[k];
            right->children[k]->parent = left;
        }
    }
    left->numKeys += 1 + right->numKeys;
    left->treeSize += 1 + right->treeSize;

    int32_t behind = parent->numKeys - i - 1;
    memmove(parent->keys + i, parent->keys + i + 1, static_cast<size_t>(behind) * sizeof(BTreeKey));
    memmove(parent->data + i, parent->data + i + 1, static_cast<size_t>(behind) * sizeof(BTreeData));
    memmove(parent->children + i + 1, parent->children + i + 2,
            static_cast<size_t>(behind) * sizeof(BTreeNode*));
    parent->numKeys--;
    parent->keys[parent->numKeys] = nullptr;
    parent->data[parent->numKeys] = 0;
    parent->children[parent->numKeys + 1] = nullptr;
    freeNode(right);
    tree->capacity -= tree->order - 1;
}

// Refills child i of parent when it has fallen below (order - 1) / 2 keys:
// by a rotation from its left sibling, else from its right one, else by a
// merge with a sibling.
static void refillChild(BTree* tree, BTreeNode* parent, int32_t i) {
    if (parent->children[i]->numKeys >= (tree->order - 1) / 2) {
        return;
    }
    if (i > 0 && rotateToRight(tree, parent, i - 1)) {
        return;
    }
    if (i < parent->numKeys && rotateToLeft(tree, parent, i + 1)) {
        return;
    }
    if (i > 0) {
        mergeChildren(tree, parent, i - 1);
    } else if (i < parent->numKeys) {
        mergeChildren(tree, parent, i);
    }
}

// Takes the greatest key of a subtree out.
static void removeGreatest(BTree* tree, BTreeNode* node, BTreeKey* key, BTreeData* data) {
    if (isLeaf(node)) {
        node->numKeys--;
        *key = node->keys[node->numKeys];
        *data = node->data[node->numKeys];
        node->keys[node->numKeys] = nullptr;
        node->data[node->numKeys] = 0;
        node->treeSize--;
        return;
    }
    int32_t last = node->numKeys;
    removeGreatest(tree, node->children[last], key, data);
    node->treeSize--;
    refillChild(tree, node, last);
}

// Which key a removal looks for: one equal to `key`, or the one of `rank`.
struct RemovalTarget {
    bool byRank;
    const void* key;
    int32_t rank;
};

static bool removeFrom(BTree* tree, BTreeNode* node, RemovalTarget target, BTreeKey* key, BTreeData* data) {
    int32_t place = 0;
    bool found = false;
    if (!target.byRank) {
        place = searchNode(tree, node, target.key, &found);
    } else if (isLeaf(node)) {
        if (target.rank >= node->numKeys) {
            return false;
        }
        place = target.rank;
        found = true;
    } else {
        for (place = 0; place < node->numKeys; ++place) {
            int32_t below = node->children[place]->treeSize;
            if (target.rank < below) {
                break;
            }
            if (target.rank == below) {
                found = true;
                break;
            }
            target.rank -= below + 1;
        }
    }

    if (found) {
        *key = node->keys[place];
        *data = node->data[place];
        if (isLeaf(node)) {
            node->numKeys--;
            memmove(node->keys + place, node->keys + place + 1,
                    static_cast<size_t>(node->numKeys - place) * sizeof(BTreeKey));
            memmove(node->data + place, node->data + place + 1,
                    static_cast<size_t>(node->numKeys - place) * sizeof(BTreeData));
            node->keys[node->numKeys] = nullptr;
            node->data[node->numKeys] = 0;
            node->treeSize--;
            return true;
        }
        // The greatest key of the left subtree takes the place.
        removeGreatest(tree, node->children[place], &node->keys[place], &node->data[place]);
        node->treeSize--;
        refillChild(tree, node, place);
        return true;
    }
    if (isLeaf(node)) {
        return false;
    }
    if (!removeFrom(tree, node->children[place], target, key, data)) {
        return false;
    }
    node->treeSize--;
    refillChild(tree, node, place);
    return true;
}

static BTreeKey removeTarget(BTree* tree, RemovalTarget target, BTreeData* outData) {
    BTreeKey key = nullptr;
    BTreeData data = 0;
    if (!removeFrom(tree, tree->root, target, &key, &data)) {
        return nullptr;
    }
    BTreeNode* root = tree->root;
    if (root->numKeys == 0 && !isLeaf(root)) {
        tree->root = root->children[0];
        tree->root->parent = nullptr;
        freeNode(root);
        tree->capacity -= tree->order - 1;
    }
    tree->currNode = nullptr;
    tree->nextOk = 0;
    if (outData != nullptr) {
        *outData = data;
    }
    return key;
}

BTreeKey BTreeRemove(BTree* tree, const void* key, BTreeData* outData) {
    if (tree == nullptr) {
        return nullptr;
    }
    return removeTarget(tree, RemovalTarget{false, key, 0}, outData);
}

BTreeKey BTreeRemoveAt(BTree* tree, int32_t rank, BTreeData* outData) {
    if (tree == nullptr || rank < 0 || rank >= tree->root->treeSize) {
        return nullptr;
    }
    return removeTarget(tree, RemovalTarget{true, nullptr, rank}, outData);
}

// Puts the cursor on key `place` of node and hands that key out.
static BTreeKey standOn(BTree* tree, BTreeNode* node, int32_t place, BTreeData* outData) {
    node->currKey = place;
    tree->currNode = node;
    tree->nextOk = 1;
    if (outData != nullptr) {
        *outData = node->data[place];
    }
    return node->keys[place];
}

// The cursor has run off an end.
static BTreeKey runOut(BTree* tree) {
    tree->nextOk = 0;
    return nullptr;
}

BTreeKey BTreeFindAt(BTree* tree, int32_t rank, BTreeData* outData) {
    if (tree == nullptr || rank < 0 || rank >= tree->root->treeSize) {
        return nullptr;
    }
    BTreeNode* node = tree->root;
    for (;;) {
        if (isLeaf(node)) {
            return standOn(tree, node, rank, outData);
        }
        int32_t place = 0;
        for (; place < node->numKeys; ++place) {
            int32_t below = node->children[place]->treeSize;
            if (rank < below) {
                break;
            }
            if (rank == below) {
                return standOn(tree, node, place, outData);
            }
            rank -= below + 1;
        }
        node->currKey = place - 1;
        node = node->children[place];
    }
}

// Runs down the first edge below node to the smallest key of its subtree.
static BTreeKey runDownFirst(BTree* tree, BTreeNode* node, BTreeData* outData) {
    while (!isLeaf(node)) {
        node->currKey = -1;
        node = node->children[0];
    }
    return standOn(tree, node, 0, outData);
}

// Runs down the last edge below node to the greatest key of its subtree.
static BTreeKey runDownLast(BTree* tree, BTreeNode* node, BTreeData* outData) {
    while (!isLeaf(node)) {
        node->currKey = node->numKeys - 1;
        node = node->children[node->numKeys];
    }
    return standOn(tree, node, node->numKeys - 1, outData);
}

BTreeKey BTreeFirst(BTree* tree, BTreeData* outData) {
    if (tree == nullptr) {
        return nullptr;
    }
    if (tree->root->numKeys == 0) {
        tree->currNode = nullptr;
        return runOut(tree);
    }
    return runDownFirst(tree, tree->root, outData);
}

BTreeKey BTreeLast(BTree* tree, BTreeData* outData) {
    if (tree == nullptr) {
        return nullptr;
    }
    if (tree->root->numKeys == 0) {
        tree->currNode = nullptr;
        return runOut(tree);
    }
    return runDownLast(tree, tree->root, outData);
}

BTreeKey BTreeNext(BTree* tree, BTreeData* outData) {
    if (tree == nullptr || tree->currNode == nullptr || tree->nextOk == 0) {
        return nullptr;
    }
    BTreeNode* node = tree->currNode;
    if (!isLeaf(node)) {
        // The next key is the smallest of the child right of the cursor; the
        // cursor's key is then the key left of the path.
        return runDownFirst(tree, node->children[node->currKey + 1], outData);
    }
    node->currKey++;
    if (node->currKey < node->numKeys) {
        return standOn(tree, node, node->currKey, outData);
    }
    for (node = node->parent; node != nullptr; node = node->parent) {
        node->currKey++;
        if (node->currKey < node->numKeys) {
            return standOn(tree, node, node->currKey, outData);
        }
    }
    return runOut(tree);
}

BTreeKey BTreePrev(BTree* tree, BTreeData* outData) {
    if (tree == nullptr || tree->currNode == nullptr || tree->nextOk == 0) {
        return nullptr;
    }
    BTreeNode* node = tree->currNode;
    if (!isLeaf(node)) {
        int32_t place = node->currKey;
        node->currKey = place - 1;
        return runDownLast(tree, node->children[place], outData);
    }
    node->currKey--;
    if (node->currKey >= 0) {
        return standOn(tree, node, node->currKey, outData);
    }
    // currKey -1 marks a node run out; the key left of the path above is the
    // one before.
    for (node = node->parent; node != nullptr; node = node->parent) {
        if (node->currKey >= 0) {
            return standOn(tree, node, node->currKey, outData);
        }
    }
    return runOut(tree);
}

void BTreeForEach(BTreeNode* node, BTreeVisitor visitor, BTreeClientData clientData) {
    if (node == nullptr) {
        return;
    }
    for (int32_t i = 0; i < node->numKeys; ++i) {
        if (!isLeaf(node)) {
            BTreeForEach(node->children[i], visitor, clientData);
        }
        visitor(node->keys[i], clientData, node->data[i]);
    }
    if (!isLeaf(node)) {
        BTreeForEach(node->children[node->numKeys], visitor, clientData);
    }
}

int32_t BTreeSize(const BTree* tree) {
    return tree != nullptr ? tree->root->treeSize : 0;
}

BTreeClientData BTreeGetData(const BTree* tree) {
    return tree != nullptr ? tree->data : 0;
}

void BTreeSetData(BTree* tree, BTreeClientData data) {
    if (tree != nullptr) {
        tree->data = data;
    }
}

static void dumpNode(const BTreeNode* node, BTreePrintKey printKey, BTreeClientData clientData) {
    if (node == nullptr) {
        printf("ERROR:  null node pointer\n");
        return;
    }
    printf("%8p: %d keys (keys %8p, children %8p, data %8p),\n", static_cast<const void*>(node),
           node->numKeys, static_cast<const void*>(node->keys), static_cast<const void*>(node->children),
           static_cast<const void*>(node->data));
    printf("currKey = %d, parent = %8p, tsize = %d\n", node->currKey, static_cast<const void*>(node->parent),
           node->treeSize);
    printf("--------\n");
    for (int32_t i = 0; i < node->numKeys; ++i) {
        const void* child = isLeaf(node) ? nullptr : static_cast<const void*>(node->children[i]);
        printf("    %8p\n", child);
        if (printKey != nullptr) {
            printf("        ");
            printKey(node->keys[i], clientData);
        }
    }
    if (!isLeaf(node)) {
        printf("    %8p\n", static_cast<const void*>(node->children[node->numKeys]));
        printf("\n");
        for (int32_t i = 0; i <= node->numKeys; ++i) {
            dumpNode(node->children[i], printKey, clientData);
        }
    } else {
        printf("\n");
    }
}

void BTreeDump(const BTree* tree, BTreePrintKey printKey, BTreeClientData clientData) {
    if (tree == nullptr) {
        return;
    }
    int32_t size = tree->root != nullptr ? tree->root->treeSize : 0;
    printf("B-tree dump  %p:\n\n", static_cast<const void*>(tree));
    printf("order = %d\n", tree->order);
    printf("capacity = %d\n", tree->capacity);
    printf("contains %d keys\n", size);
    printf("efficiency is %d per cent\n",
           tree->capacity > 0 ? static_cast<int>(static_cast<int64_t>(size) * 100 / tree->capacity) : 0);
    printf("handle at %8p\n", static_cast<const void*>(tree));
    printf("root  = %8p\n", static_cast<const void*>(tree->root));
    printf("currNode  = %8p\n", static_cast<const void*>(tree->currNode));
    printf("nextOk = %d\n", tree->nextOk);
    printf("data = %p\n", reinterpret_cast<void*>(static_cast<uintptr_t>(tree->data)));
    printf("\n");
    dumpNode(tree->root, printKey, clientData);
}
