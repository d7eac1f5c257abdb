// ArrayList: items of fixed size in one zero-filled block.
#include "support/ArrayList.h"

#include <cassert>
#include <cstdint>
#include <cstdlib>
#include <cstring>

int32_t ArrayListItemSizeOfType(ArrayListItemType type) {
    switch (type) {
        case 0:
        case 4:
        case 13:
            return 1;
        case 1:
        case 5:
            return 2;
        case 2:
        case 3:
        case 6:
        case 7:
        case 8:
        case 11:
        case 12:
            return 4;
        default:
            if (type == 9 || type == 10 || (type >= 14 && type <= ArrayListItemType_Last)) {
                return 8;
            }
            return 0;
    }
}

bool ArrayListIsValid(const ArrayList* list) {
    return list != nullptr && list->type >= 0 && list->type <= ArrayListItemType_Last &&
           list->itemSize >= 1 && list->itemSize <= 8 && list->count >= 0 && list->count <= list->capacity;
}

int64_t ArrayListDefaultCapacity(const ArrayList* /*list*/, int64_t currentCapacity,
                                 int64_t requestedCapacity, ArrayListClientData /*clientData*/) {
    if (requestedCapacity != 0 && currentCapacity == 0) {
        return requestedCapacity;
    }
    if (requestedCapacity == 0) {
        return 32;
    }
    int64_t block = currentCapacity / 2;
    if (block < 32) {
        block = 32;
    }
    return ((requestedCapacity + block - 1) / block) * block;
}

// A zero-filled block for `capacity` items, or null when it is too large to
// express or cannot be had.
static char* allocateItems(int64_t capacity, int32_t itemSize) {
    if (capacity <= 0 || capacity > PTRDIFF_MAX / itemSize) {
        return nullptr;
    }
    size_t bytes = static_cast<size_t>(capacity) * static_cast<size_t>(itemSize);
    char* block = static_cast<char*>(malloc(bytes));
    if (block != nullptr) {
        memset(block, 0, bytes);
    }
    return block;
}

static char* itemAddress(const ArrayList* list, int64_t offset) {
    return list->array + offset * list->itemSize;
}

bool ArrayListEnlargeCapacity(ArrayList* list, int64_t requestedCapacity) {
    assert(ArrayListIsValid(list) && requestedCapacity >= 0);
    if (requestedCapacity != 0 && requestedCapacity <= list->capacity) {
        return true;
    }
    int64_t newCapacity =
        list->capacityEstimator(list, list->capacity, requestedCapacity, list->estimatorClientData);
    // A proposal that would not hold the items in use or the request cannot be
    // taken; the request itself stands in for it.
    int64_t needed = requestedCapacity > list->count ? requestedCapacity : list->count;
    if (newCapacity < needed) {
        newCapacity = needed;
    }
    char* block = allocateItems(newCapacity, list->itemSize);
    if (block == nullptr) {
        newCapacity = needed != 0 ? needed : 1;
        block = allocateItems(newCapacity, list->itemSize);
        if (block == nullptr) {
            return false;
        }
    }
    if (list->count > 0) {
        memcpy(block, list->array, static_cast<size_t>(list->count * list->itemSize));
    }
    if (list->capacity != 0) {
        free(list->array);
    }
    list->array = block;
    list->capacity = newCapacity;
    return true;
}

ArrayList* ArrayListAlloc(int64_t estimatedCount, ArrayListItemType type,
                          ArrayListCapacityEstimator capacityEstimator, ArrayListClientData clientData) {
    int32_t itemSize = ArrayListItemSizeOfType(type);
    if (itemSize == 0 || estimatedCount < 0) {
        return nullptr;
    }
    ArrayList* list = static_cast<ArrayList*>(calloc(1, sizeof(ArrayList)));
    if (list == nullptr) {
        return nullptr;
    }
    list->type = type;
    list->itemSize = itemSize;
    if (capacityEstimator != nullptr) {
        list->capacityEstimator = capacityEstimator;
        list->estimatorClientData = clientData;
    } else {
        list->capacityEstimator = ArrayListDefaultCapacity;
        list->estimatorClientData = 0;
    }
    if (!ArrayListEnlargeCapacity(list, estimatedCount)) {
        ArrayListDealloc(&list);
        return nullptr;
    }
    return list;
}

void ArrayListDealloc(ArrayList** list) {
    if (list == nullptr || *list == nullptr) {
        return;
    }
    if ((*list)->capacity != 0) {
        free((*list)->array);
    }
    free(*list);
    *list = nullptr;
}

int64_t ArrayListGetCount(const ArrayList* list) {
    assert(ArrayListIsValid(list));
    return list->count;
}

void ArrayListClear(ArrayList* list) {
    assert(ArrayListIsValid(list));
    if (list->count > 0) {
        memset(list->array, 0, static_cast<size_t>(list->count * list->itemSize));
    }
    list->count = 0;
}

// Inserts n items from `items` (not inside the list) at offset.
static bool insertBytes(ArrayList* list, int64_t offset, const char* items, int64_t n) {
    assert(ArrayListIsValid(list) && offset >= 0 && n >= 0);
    int64_t end = list->count > offset ? list->count : offset;
    if (!ArrayListEnlargeCapacity(list, end + n)) {
        return false;
    }
    if (offset < list->count) {
        memmove(itemAddress(list, offset + n), itemAddress(list, offset),
                static_cast<size_t>((list->count - offset) * list->itemSize));
    }
    if (n > 0) {
        memcpy(itemAddress(list, offset), items, static_cast<size_t>(n * list->itemSize));
    }
    list->count = end + n;
    return true;
}

bool ArrayListInsertItem(ArrayList* list, int64_t offset, ArrayListItem item) {
    return insertBytes(list, offset, reinterpret_cast<const char*>(&item), 1);
}

bool ArrayListInsert(ArrayList* target, int64_t offset, const ArrayList* source) {
    assert(ArrayListIsValid(target) && ArrayListIsValid(source) && target->itemSize == source->itemSize);
    if (source != target) {
        return insertBytes(target, offset, source->array, source->count);
    }
    // Inserting a list into itself: the items move while they are inserted,
    // so they are copied out first.
    if (source->count == 0) {
        return insertBytes(target, offset, nullptr, 0);
    }
    size_t bytes = static_cast<size_t>(source->count * source->itemSize);
    char* copy = static_cast<char*>(malloc(bytes));
    if (copy == nullptr) {
        return false;
    }
    memcpy(copy, source->array, bytes);
    bool ok = insertBytes(target, offset, copy, source->count);
    free(copy);
    return ok;
}

bool ArrayListAppendItem(ArrayList* list, ArrayListItem item) {
    assert(ArrayListIsValid(list));
    return ArrayListInsertItem(list, list->count, item);
}

bool ArrayListAppend(ArrayList* target, const ArrayList* source) {
    assert(ArrayListIsValid(target));
    return ArrayListInsert(target, target->count, source);
}

bool ArrayListSetItem(ArrayList* list, int64_t offset, ArrayListItem item) {
    assert(ArrayListIsValid(list) && offset >= 0);
    if (offset >= list->count) {
        if (!ArrayListEnlargeCapacity(list, offset + 1)) {
            return false;
        }
        list->count = offset + 1;
    }
    memcpy(itemAddress(list, offset), &item, static_cast<size_t>(list->itemSize));
    return true;
}

void ArrayListDeleteItems(ArrayList* list, int64_t offset, int64_t count,
                          ArrayListItemDestructor itemDestructor, ArrayListClientData clientData) {
    assert(ArrayListIsValid(list) && offset >= 0 && count >= 0 && offset + count <= list->count);
    if (count == 0) {
        return;
    }
    if (itemDestructor != nullptr) {
        for (int64_t i = offset; i < offset + count; ++i) {
            itemDestructor(itemAddress(list, i), clientData);
        }
    }
    int64_t behind = list->count - (offset + count);
    if (behind > 0) {
        memmove(itemAddress(list, offset), itemAddress(list, offset + count),
                static_cast<size_t>(behind * list->itemSize));
    }
    memset(itemAddress(list, list->count - count), 0, static_cast<size_t>(count * list->itemSize));
    list->count -= count;
}

void ArrayListDeleteItem(ArrayList* list, int64_t offset, ArrayListItemDestructor itemDestructor,
                         ArrayListClientData clientData) {
    ArrayListDeleteItems(list, offset, 1, itemDestructor, clientData);
}

ArrayList* ArrayListRemoveItems(ArrayList* list, int64_t offset, int64_t count) {
    ArrayList* removed = ArrayListGetItems(list, offset, count);
    if (removed != nullptr) {
        ArrayListDeleteItems(list, offset, count, nullptr, 0);
    }
    return removed;
}

ArrayListItem ArrayListRemoveItem(ArrayList* list, int64_t offset) {
    ArrayListItem item = ArrayListGetItem(list, offset);
    ArrayListDeleteItems(list, offset, 1, nullptr, 0);
    return item;
}

ArrayListItem ArrayListGetItem(const ArrayList* list, int64_t offset) {
    assert(ArrayListIsValid(list) && offset >= 0 && offset < list->count);
    ArrayListItem item;
    item.bits = 0;
    memcpy(&item, itemAddress(list, offset), static_cast<size_t>(list->itemSize));
    return item;
}

void* ArrayListGetItemRef(const ArrayList* list, int64_t offset) {
    assert(ArrayListIsValid(list) && offset >= 0 && offset < list->count);
    return itemAddress(list, offset);
}

// A new empty list of the same type and estimator with room for n items.
static ArrayList* allocLike(const ArrayList* list, int64_t n) {
    return ArrayListAlloc(n, list->type, list->capacityEstimator, list->estimatorClientData);
}

ArrayList* ArrayListGetItems(const ArrayList* list, int64_t offset, int64_t count) {
    assert(ArrayListIsValid(list) && offset >= 0 && count >= 0 && offset + count <= list->count);
    ArrayList* result = allocLike(list, count);
    if (result == nullptr) {
        return nullptr;
    }
    if (count > 0) {
        memcpy(result->array, itemAddress(list, offset), static_cast<size_t>(count * list->itemSize));
    }
    result->count = count;
    return result;
}

// Copies n items of itemSize bytes from source to a zeroed target, through
// the copier when there is one. False when the copier refused an item.
static bool copyItems(char* target, const char* source, int64_t n, int32_t itemSize,
                      ArrayListItemCopier itemCopier, ArrayListClientData clientData) {
    if (n == 0) {
        return true;
    }
    if (itemCopier == nullptr) {
        memcpy(target, source, static_cast<size_t>(n * itemSize));
        return true;
    }
    for (int64_t i = 0; i < n; ++i) {
        if (!itemCopier(target + i * itemSize, source + i * itemSize, clientData)) {
            return false;
        }
    }
    return true;
}

ArrayList* ArrayListCopy(const ArrayList* list, ArrayListItemCopier itemCopier,
                         ArrayListClientData clientData) {
    assert(ArrayListIsValid(list));
    ArrayList* result = allocLike(list, list->count);
    if (result == nullptr) {
        return nullptr;
    }
    if (!copyItems(result->array, list->array, list->count, list->itemSize, itemCopier, clientData)) {
        ArrayListDealloc(&result);
        return nullptr;
    }
    result->count = list->count;
    return result;
}

void* ArrayListToArray(const ArrayList* list, ArrayListItemCopier itemCopier,
                       ArrayListClientData clientData) {
    assert(ArrayListIsValid(list));
    if (list->count == 0) {
        return nullptr;
    }
    char* block = allocateItems(list->count, list->itemSize);
    if (block == nullptr) {
        return nullptr;
    }
    if (!copyItems(block, list->array, list->count, list->itemSize, itemCopier, clientData)) {
        free(block);
        return nullptr;
    }
    return block;
}

ArrayList* ArrayListFromArray(const void* source, int64_t count, ArrayListItemType type,
                              ArrayListItemCopier itemCopier, ArrayListClientData clientData) {
    assert(count >= 0 && (count == 0 || source != nullptr));
    ArrayList* result = ArrayListAlloc(count, type, nullptr, 0);
    if (result == nullptr) {
        return nullptr;
    }
    if (!copyItems(result->array, static_cast<const char*>(source), count, result->itemSize, itemCopier,
                   clientData)) {
        ArrayListDealloc(&result);
        return nullptr;
    }
    result->count = count;
    return result;
}

bool ArrayListVisitItems(ArrayList* list, int64_t offset, int64_t count, ArrayListItemVisitor visitor,
                         ArrayListClientData clientData) {
    assert(ArrayListIsValid(list) && offset >= 0 && count >= 0 && offset + count <= list->count);
    bool wasVisiting = list->isVisitingItems;
    list->isVisitingItems = true;
    bool answer = true;
    for (int64_t i = offset; answer && i < offset + count; ++i) {
        answer = visitor(itemAddress(list, i), clientData);
    }
    list->isVisitingItems = wasVisiting;
    return answer;
}

// qsort carries no context, so the comparator, its client data and the item
// size stand here while a sort runs.
static ArrayListItemComparator ArrayListQSortComparator = nullptr;
static ArrayListClientData ArrayListQSortClientData = 0;
static int32_t ArrayListQSortItemSize = 0;

static int qsortAdapter(const void* item1Ref, const void* item2Ref) {
    ArrayListItem item1;
    ArrayListItem item2;
    item1.bits = 0;
    item2.bits = 0;
    memcpy(&item1, item1Ref, static_cast<size_t>(ArrayListQSortItemSize));
    memcpy(&item2, item2Ref, static_cast<size_t>(ArrayListQSortItemSize));
    return ArrayListQSortComparator(item1, item2, ArrayListQSortClientData);
}

void ArrayListQSort(ArrayList* list, ArrayListItemComparator comparator, ArrayListClientData clientData) {
    assert(ArrayListIsValid(list) && comparator != nullptr);
    if (list->count < 2) {
        return;
    }
    ArrayListQSortComparator = comparator;
    ArrayListQSortClientData = clientData;
    ArrayListQSortItemSize = list->itemSize;
    qsort(list->array, static_cast<size_t>(list->count), static_cast<size_t>(list->itemSize), qsortAdapter);
    ArrayListQSortComparator = nullptr;
    ArrayListQSortClientData = 0;
    ArrayListQSortItemSize = 0;
}
