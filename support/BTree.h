// BTree: an in-memory B-tree of keys held by pointer.
//
// The caller owns the keys and orders them with a comparison of its own; the
// tree stores each key's pointer value and hands that same value back. A null
// pointer is not a key. Every node knows the number of keys below it, so keys
// can be reached by rank, and a cursor walks the keys in order. Before a full
// node is split one key is rotated into a sibling with room, which keeps nodes
// fuller than in a plain B-tree.
//
// A tree is not guarded: one thread at a time.
#pragma once

#include <cstdint>

typedef void* BTreeKey;            // the caller's pointer; null is no key
typedef uint64_t BTreeData;        // value kept beside each key; 0 as inserted
typedef uint64_t BTreeClientData;  // passed through unchanged

// Orders a key in the tree against a sought key: negative, 0 or positive.
typedef int (*BTreeCompare)(const void* keyInTree, const void* key);
// Called for each key in order by BTreeForEach.
typedef void (*BTreeVisitor)(BTreeKey key, BTreeClientData clientData, BTreeData data);
// Prints one key for BTreeDump (a line of its own, newline included).
typedef void (*BTreePrintKey)(BTreeKey key, BTreeClientData clientData);

// What a tree is made from.
struct BTreeDefinition {
    int32_t order;               // most children of a node, at least 4; a node holds order - 1 keys
    BTreeCompare compare;        // ordering of the keys; never null
    BTreeClientData clientData;  // becomes the tree's data
};

struct BTreeNode {
    int32_t numKeys;       // keys in use in this node
    int32_t treeSize;      // keys in this node and every node below it
    int32_t currKey;       // cursor place: the key the cursor stands on, or the key left of the path; -1 none
    BTreeNode* parent;     // null in the root
    BTreeKey* keys;        // order - 1 places, in rising order; places behind numKeys are null
    BTreeData* data;       // order - 1 places, beside the keys
    BTreeNode** children;  // order places, numKeys + 1 in use; null in a leaf
};

struct BTree {
    int32_t order;         // from the definition
    BTreeCompare compare;  // from the definition
    BTreeNode* root;       // never null; an empty tree has an empty leaf
    int32_t capacity;      // key places in all nodes: order - 1 per node
    BTreeNode* currNode;   // node of the cursor; null after an insertion or removal
    int32_t nextOk;        // 1 when the cursor stands on a key
    BTreeClientData data;  // the caller's value (BTreeGetData, BTreeSetData)
};

// A new empty tree; null on a null or unusable definition or out of memory.
BTree* BTreeCreate(const BTreeDefinition* definition);
// Frees every node and the handle; the keys are left alone. A null tree is accepted.
void BTreeDestroy(BTree* tree);

// Inserts a key with data 0. Returns 1 when inserted, -1 when an equal key was
// there already (nothing stored), 0 when memory ran out or the tree or key is
// null; the tree stays whole in every case. The cursor is cleared.
int BTreeInsert(BTree* tree, BTreeKey key);

// The stored key equal to the sought one, or null. Sets the cursor on it; when
// there is none the cursor stays on the leaf reached, with nextOk 0.
BTreeKey BTreeFind(BTree* tree, const void* key);

// Takes the key equal to the sought one out and returns it, its data in
// *outData when given; null when there is none. The cursor is cleared.
BTreeKey BTreeRemove(BTree* tree, const void* key, BTreeData* outData);
// The same for the key of a rank (0 for the smallest).
BTreeKey BTreeRemoveAt(BTree* tree, int32_t rank, BTreeData* outData);

// The key of a rank (0 for the smallest), its data in *outData; null when the
// rank is out of range. Sets the cursor on it.
BTreeKey BTreeFindAt(BTree* tree, int32_t rank, BTreeData* outData);

// Cursor walks: the smallest or greatest key, or the key after or before the
// cursor, with its data in *outData when given. Null at either end, or when
// the cursor stands on no key.
BTreeKey BTreeFirst(BTree* tree, BTreeData* outData);
BTreeKey BTreeLast(BTree* tree, BTreeData* outData);
BTreeKey BTreeNext(BTree* tree, BTreeData* outData);
BTreeKey BTreePrev(BTree* tree, BTreeData* outData);

// Calls the visitor on each key below a node (the root for the whole tree), in order.
void BTreeForEach(BTreeNode* node, BTreeVisitor visitor, BTreeClientData clientData);

// Number of keys; 0 for a null tree.
int32_t BTreeSize(const BTree* tree);

BTreeClientData BTreeGetData(const BTree* tree);
void BTreeSetData(BTree* tree, BTreeClientData data);

// Prints the tree and every node to standard output, for debugging.
void BTreeDump(const BTree* tree, BTreePrintKey printKey, BTreeClientData clientData);
