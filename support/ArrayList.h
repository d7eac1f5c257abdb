// ArrayList: a growable array of fixed-size items for the C-style code.
//
// One malloc block holds the items, each of 1 to 8 bytes, the size taken from
// the item type. Item places that are not in use are always zero: blocks are
// zero-filled when made, and deleting items zeroes the vacated tail. How far
// a list grows is decided by a replaceable capacity estimator.
//
// Items pass by value in a 64-bit union; only the first itemSize bytes of it
// count. A list is not guarded: one thread at a time. ArrayListQSort keeps its
// comparator in process-wide variables and must not run on two threads at once.
#pragma once

#include <cstdint>

// The item kinds. Only their sizes matter (see ArrayListItemSizeOfType):
// types 0, 4, 13 have 1 byte; 1, 5 have 2; 2, 3, 6, 7, 8, 11, 12 have 4;
// 9, 10 and 14 to 30 have 8; any other has none and makes no list.
typedef int32_t ArrayListItemType;
constexpr ArrayListItemType ArrayListItemType_Char = 0;      // 1 byte
constexpr ArrayListItemType ArrayListItemType_Short = 1;     // 2 bytes
constexpr ArrayListItemType ArrayListItemType_Int32 = 6;     // 4 bytes: node and zone numbers
constexpr ArrayListItemType ArrayListItemType_Int64 = 10;    // 8 bytes
constexpr ArrayListItemType ArrayListItemType_Pointer = 14;  // 8 bytes
constexpr ArrayListItemType ArrayListItemType_Last = 30;     // highest valid type

// An item by value. Read and write the member that fits the list's type.
union ArrayListItem {
    char charValue;
    int16_t shortValue;
    int32_t int32Value;
    int64_t int64Value;
    double doubleValue;
    void* pointerValue;
    uint64_t bits;  // all 8 bytes; zero-fill an item through it
};

inline ArrayListItem ArrayListItemFromInt32(int32_t value) {
    ArrayListItem item;
    item.bits = 0;
    item.int32Value = value;
    return item;
}
inline ArrayListItem ArrayListItemFromInt64(int64_t value) {
    ArrayListItem item;
    item.int64Value = value;
    return item;
}
inline ArrayListItem ArrayListItemFromPointer(void* value) {
    ArrayListItem item;
    item.bits = 0;
    item.pointerValue = value;
    return item;
}

typedef uint64_t ArrayListClientData;  // passed through to the callbacks unchanged

struct ArrayList;

// Proposes a new capacity for a list that must hold requestedCapacity items
// (0: no particular need) and now has room for currentCapacity.
typedef int64_t (*ArrayListCapacityEstimator)(const ArrayList* list, int64_t currentCapacity,
                                              int64_t requestedCapacity, ArrayListClientData clientData);
// Called on an item's address before the item is deleted.
typedef void (*ArrayListItemDestructor)(void* itemRef, ArrayListClientData clientData);
// Copies one item from source to target address; false stops the copy.
typedef bool (*ArrayListItemCopier)(void* targetItemRef, const void* sourceItemRef,
                                    ArrayListClientData clientData);
// Called on an item's address by ArrayListVisitItems; false stops the walk.
typedef bool (*ArrayListItemVisitor)(void* itemRef, ArrayListClientData clientData);
// Orders two items: negative, 0 or positive.
typedef int (*ArrayListItemComparator)(ArrayListItem item1, ArrayListItem item2,
                                       ArrayListClientData clientData);

struct ArrayList {
    char* array;             // the items, capacity * itemSize bytes; null when capacity is 0
    ArrayListItemType type;  // kind of item, 0 to ArrayListItemType_Last
    int32_t itemSize;        // bytes per item, 1 to 8, from the type
    int64_t count;           // items in use, 0 to capacity
    int64_t capacity;        // items allocated
    bool isVisitingItems;    // true while ArrayListVisitItems runs
    ArrayListCapacityEstimator capacityEstimator;  // never null: ArrayListDefaultCapacity unless given
    ArrayListClientData estimatorClientData;       // passed to the estimator
};

// Bytes of an item of the type; 0 for a type that is not one.
int32_t ArrayListItemSizeOfType(ArrayListItemType type);

// True for a list that is not null, of a known type and size, with count
// between 0 and capacity.
bool ArrayListIsValid(const ArrayList* list);

// The default capacity rule: exactly the request for a first allocation, 32
// with no request, otherwise the smallest multiple of max(currentCapacity / 2,
// 32) that is not below the request.
int64_t ArrayListDefaultCapacity(const ArrayList* list, int64_t currentCapacity, int64_t requestedCapacity,
                                 ArrayListClientData clientData);

// A new list with room for estimatedCount items (32 for 0). A null estimator
// means the default rule, and clientData is then dropped. Null when memory
// runs out or the type has no size.
ArrayList* ArrayListAlloc(int64_t estimatedCount, ArrayListItemType type,
                          ArrayListCapacityEstimator capacityEstimator, ArrayListClientData clientData);

// Frees the list and sets *list to null; a null list is accepted. Items are
// not visited: delete them first if they own anything.
void ArrayListDealloc(ArrayList** list);

int64_t ArrayListGetCount(const ArrayList* list);

// Zeroes the items in use; count becomes 0, the capacity stays.
void ArrayListClear(ArrayList* list);

// Makes room for at least requestedCapacity items (0: for as many as the
// estimator proposes). When the estimator's answer cannot be allocated the
// request itself is tried. False, the list unchanged, when memory runs out.
[[nodiscard]] bool ArrayListEnlargeCapacity(ArrayList* list, int64_t requestedCapacity);

// Inserts the item at offset, shifting later items up. An offset beyond the
// end leaves a gap of zero items; count becomes max(count, offset) + 1.
[[nodiscard]] bool ArrayListInsertItem(ArrayList* list, int64_t offset, ArrayListItem item);
// Inserts all items of source (of the same item size) at offset, as above.
[[nodiscard]] bool ArrayListInsert(ArrayList* target, int64_t offset, const ArrayList* source);
// Appends one item at the end.
[[nodiscard]] bool ArrayListAppendItem(ArrayList* list, ArrayListItem item);
// Appends all items of source (of the same item size).
[[nodiscard]] bool ArrayListAppend(ArrayList* target, const ArrayList* source);

// Replaces the item at offset. Beyond the end, the gap is zero items and
// count becomes offset + 1.
[[nodiscard]] bool ArrayListSetItem(ArrayList* list, int64_t offset, ArrayListItem item);

// Deletes count items from offset: the destructor, if given, is called on
// each first; later items move down and the vacated tail is zeroed.
void ArrayListDeleteItems(ArrayList* list, int64_t offset, int64_t count,
                          ArrayListItemDestructor itemDestructor, ArrayListClientData clientData);
void ArrayListDeleteItem(ArrayList* list, int64_t offset, ArrayListItemDestructor itemDestructor,
                         ArrayListClientData clientData);
// Takes count items from offset out into a new list of the same type, which
// the caller owns. Null, the list unchanged, when memory runs out.
ArrayList* ArrayListRemoveItems(ArrayList* list, int64_t offset, int64_t count);
// Takes the item at offset out and returns it.
ArrayListItem ArrayListRemoveItem(ArrayList* list, int64_t offset);

// The item at offset (0 to count - 1).
ArrayListItem ArrayListGetItem(const ArrayList* list, int64_t offset);
// The address of the item at offset; good until the list changes size.
void* ArrayListGetItemRef(const ArrayList* list, int64_t offset);
// A new list holding a copy of count items from offset. Null when memory runs out.
ArrayList* ArrayListGetItems(const ArrayList* list, int64_t offset, int64_t count);

// A new list of the same type, estimator and items. With a copier, it copies
// each item and a false answer drops the partial copy (null).
ArrayList* ArrayListCopy(const ArrayList* list, ArrayListItemCopier itemCopier,
                         ArrayListClientData clientData);
// A zero-filled malloc block of count * itemSize bytes holding the items, which
// the caller frees. Null for an empty list (no failure), when memory runs
// out, or when the copier refused an item.
void* ArrayListToArray(const ArrayList* list, ArrayListItemCopier itemCopier, ArrayListClientData clientData);
// A new list holding count items of the type read from a plain array.
ArrayList* ArrayListFromArray(const void* source, int64_t count, ArrayListItemType type,
                              ArrayListItemCopier itemCopier, ArrayListClientData clientData);

// Calls the visitor on each item of the range while it answers true, with
// isVisitingItems set meanwhile. Returns the last answer (true for an empty
// range).
bool ArrayListVisitItems(ArrayList* list, int64_t offset, int64_t count, ArrayListItemVisitor visitor,
                         ArrayListClientData clientData);

// Sorts the items in place with qsort. Not reentrant: see the top of the file.
void ArrayListQSort(ArrayList* list, ArrayListItemComparator comparator, ArrayListClientData clientData);
