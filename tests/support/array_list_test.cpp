// ArrayList: capacity rule, insertion and deletion with zeroed places,
// copies, walks and the sort.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "support/ArrayList.h"

namespace {

// The int32 items of a list, in order.
std::vector<int32_t> int32Items(const ArrayList* list) {
    std::vector<int32_t> items;
    for (int64_t i = 0; i < ArrayListGetCount(list); ++i) {
        items.push_back(ArrayListGetItem(list, i).int32Value);
    }
    return items;
}

// True when every item place behind count holds zero bytes.
bool unusedPlacesAreZero(const ArrayList* list) {
    for (int64_t byte = list->count * list->itemSize; byte < list->capacity * list->itemSize; ++byte) {
        if (list->array[byte] != 0) {
            return false;
        }
    }
    return true;
}

ArrayList* int32List(const std::vector<int32_t>& values) {
    ArrayList* list = ArrayListAlloc(0, ArrayListItemType_Int32, nullptr, 0);
    for (int32_t value : values) {
        EXPECT_TRUE(ArrayListAppendItem(list, ArrayListItemFromInt32(value)));
    }
    return list;
}

}  // namespace

TEST(ArrayList, ItemSizesFollowTheTypeTable) {
    for (int32_t type : {0, 4, 13}) {
        EXPECT_EQ(ArrayListItemSizeOfType(type), 1) << type;
    }
    for (int32_t type : {1, 5}) {
        EXPECT_EQ(ArrayListItemSizeOfType(type), 2) << type;
    }
    for (int32_t type : {2, 3, 6, 7, 8, 11, 12}) {
        EXPECT_EQ(ArrayListItemSizeOfType(type), 4) << type;
    }
    for (int32_t type : {9, 10, 14, 20, 30}) {
        EXPECT_EQ(ArrayListItemSizeOfType(type), 8) << type;
    }
    for (int32_t type : {-1, 31, 100}) {
        EXPECT_EQ(ArrayListItemSizeOfType(type), 0) << type;
    }
}

TEST(ArrayList, AllocWithNoEstimateHas32PlacesAndNoItems) {
    ArrayList* list = ArrayListAlloc(0, 6, nullptr, 0);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->capacity, 32);
    EXPECT_EQ(list->count, 0);
    EXPECT_EQ(list->itemSize, 4);
    EXPECT_EQ(list->type, 6);
    EXPECT_TRUE(ArrayListIsValid(list));
    EXPECT_TRUE(unusedPlacesAreZero(list));
    ArrayListDealloc(&list);
    EXPECT_EQ(list, nullptr);
}

TEST(ArrayList, AllocWithAnEstimateTakesExactlyThat) {
    ArrayList* list = ArrayListAlloc(1000, 6, nullptr, 0);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->capacity, 1000);
    ArrayListDealloc(&list);
}

TEST(ArrayList, AllocOfATypeWithoutSizeFails) {
    EXPECT_EQ(ArrayListAlloc(0, 31, nullptr, 0), nullptr);
}

TEST(ArrayList, DeallocAcceptsNull) {
    ArrayList* list = nullptr;
    ArrayListDealloc(&list);
    ArrayListDealloc(nullptr);
    EXPECT_EQ(list, nullptr);
}

TEST(ArrayList, DefaultCapacityRule) {
    EXPECT_EQ(ArrayListDefaultCapacity(nullptr, 0, 7, 0), 7);
    EXPECT_EQ(ArrayListDefaultCapacity(nullptr, 0, 0, 0), 32);
    EXPECT_EQ(ArrayListDefaultCapacity(nullptr, 500, 0, 0), 32);
    EXPECT_EQ(ArrayListDefaultCapacity(nullptr, 32, 33, 0), 64);
    EXPECT_EQ(ArrayListDefaultCapacity(nullptr, 100, 101, 0), 150);
    EXPECT_EQ(ArrayListDefaultCapacity(nullptr, 10, 11, 0), 32);
    EXPECT_EQ(ArrayListDefaultCapacity(nullptr, 100, 250, 0), 250);
    EXPECT_EQ(ArrayListDefaultCapacity(nullptr, 100, 251, 0), 300);
}

TEST(ArrayList, GrowsFrom32To64ForARequestOf33) {
    ArrayList* list = ArrayListAlloc(0, 6, nullptr, 0);
    ASSERT_TRUE(ArrayListEnlargeCapacity(list, 33));
    EXPECT_EQ(list->capacity, 64);
    ArrayListDealloc(&list);
}

TEST(ArrayList, GrowsFrom100To150ForARequestOf101) {
    ArrayList* list = ArrayListAlloc(100, 6, nullptr, 0);
    ASSERT_EQ(list->capacity, 100);
    ASSERT_TRUE(ArrayListEnlargeCapacity(list, 101));
    EXPECT_EQ(list->capacity, 150);
    ArrayListDealloc(&list);
}

TEST(ArrayList, AppendingThe33rdItemGrowsTo64AndKeepsTheItems) {
    ArrayList* list = ArrayListAlloc(0, 6, nullptr, 0);
    for (int32_t i = 0; i < 33; ++i) {
        ASSERT_TRUE(ArrayListAppendItem(list, ArrayListItemFromInt32(i * 3)));
    }
    EXPECT_EQ(list->capacity, 64);
    EXPECT_EQ(list->count, 33);
    for (int32_t i = 0; i < 33; ++i) {
        EXPECT_EQ(ArrayListGetItem(list, i).int32Value, i * 3);
    }
    EXPECT_TRUE(unusedPlacesAreZero(list));
    ArrayListDealloc(&list);
}

TEST(ArrayList, EnlargeWithinCapacityChangesNothing) {
    ArrayList* list = ArrayListAlloc(0, 6, nullptr, 0);
    char* block = list->array;
    ASSERT_TRUE(ArrayListEnlargeCapacity(list, 32));
    EXPECT_EQ(list->array, block);
    EXPECT_EQ(list->capacity, 32);
    ArrayListDealloc(&list);
}

namespace {

struct EstimatorLog {
    std::vector<std::pair<int64_t, int64_t>> calls;  // (current capacity, request)
    int64_t answer = 0;
};

int64_t loggingEstimator(const ArrayList*, int64_t currentCapacity, int64_t requestedCapacity,
                         ArrayListClientData clientData) {
    EstimatorLog* log = reinterpret_cast<EstimatorLog*>(static_cast<uintptr_t>(clientData));
    log->calls.emplace_back(currentCapacity, requestedCapacity);
    return log->answer;
}

}  // namespace

TEST(ArrayList, CustomEstimatorIsAskedWithCurrentCapacityAndRequest) {
    EstimatorLog log;
    log.answer = 5;
    ArrayList* list = ArrayListAlloc(5, 6, loggingEstimator,
                                     static_cast<ArrayListClientData>(reinterpret_cast<uintptr_t>(&log)));
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(log.calls.size(), 1u);
    EXPECT_EQ(log.calls[0], std::make_pair(int64_t{0}, int64_t{5}));
    EXPECT_EQ(list->capacity, 5);

    log.answer = 1000;  // it may answer anything
    ASSERT_TRUE(ArrayListEnlargeCapacity(list, 6));
    ASSERT_EQ(log.calls.size(), 2u);
    EXPECT_EQ(log.calls[1], std::make_pair(int64_t{5}, int64_t{6}));
    EXPECT_EQ(list->capacity, 1000);
    ArrayListDealloc(&list);
}

TEST(ArrayList, UnallocatableEstimateFallsBackToTheRequest) {
    EstimatorLog log;
    log.answer = INT64_MAX;  // no block of that many items can exist
    ArrayList* list = ArrayListAlloc(7, 6, loggingEstimator,
                                     static_cast<ArrayListClientData>(reinterpret_cast<uintptr_t>(&log)));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->capacity, 7);
    for (int32_t i = 0; i < 7; ++i) {
        ASSERT_TRUE(ArrayListAppendItem(list, ArrayListItemFromInt32(i)));
    }
    ASSERT_TRUE(ArrayListAppendItem(list, ArrayListItemFromInt32(7)));
    EXPECT_EQ(list->capacity, 8);
    EXPECT_EQ(int32Items(list), (std::vector<int32_t>{0, 1, 2, 3, 4, 5, 6, 7}));
    ArrayListDealloc(&list);
}

TEST(ArrayList, UnallocatableEstimateWithoutRequestFallsBackToOnePlace) {
    EstimatorLog log;
    log.answer = INT64_MAX;
    ArrayList* list = ArrayListAlloc(0, 6, loggingEstimator,
                                     static_cast<ArrayListClientData>(reinterpret_cast<uintptr_t>(&log)));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->capacity, 1);
    ArrayListDealloc(&list);
}

TEST(ArrayList, DefaultEstimatorDropsTheClientData) {
    ArrayList* list = ArrayListAlloc(0, 6, nullptr, 1234);
    EXPECT_EQ(list->capacityEstimator, &ArrayListDefaultCapacity);
    EXPECT_EQ(list->estimatorClientData, 0u);
    ArrayListDealloc(&list);
}

TEST(ArrayList, InsertShiftsLaterItemsUp) {
    ArrayList* list = int32List({1, 2, 3});
    ASSERT_TRUE(ArrayListInsertItem(list, 1, ArrayListItemFromInt32(9)));
    EXPECT_EQ(int32Items(list), (std::vector<int32_t>{1, 9, 2, 3}));
    ASSERT_TRUE(ArrayListInsertItem(list, 0, ArrayListItemFromInt32(-5)));
    EXPECT_EQ(int32Items(list), (std::vector<int32_t>{-5, 1, 9, 2, 3}));
    ArrayListDealloc(&list);
}

TEST(ArrayList, InsertBeyondTheEndLeavesAGapOfZeros) {
    ArrayList* list = int32List({1, 2});
    ASSERT_TRUE(ArrayListInsertItem(list, 5, ArrayListItemFromInt32(7)));
    EXPECT_EQ(list->count, 6);
    EXPECT_EQ(int32Items(list), (std::vector<int32_t>{1, 2, 0, 0, 0, 7}));
    ArrayListDealloc(&list);
}

TEST(ArrayList, InsertBeyondCapacityGrows) {
    ArrayList* list = int32List({4});
    ASSERT_TRUE(ArrayListInsertItem(list, 40, ArrayListItemFromInt32(8)));
    EXPECT_EQ(list->count, 41);
    EXPECT_EQ(list->capacity, 64);
    EXPECT_EQ(ArrayListGetItem(list, 40).int32Value, 8);
    EXPECT_EQ(ArrayListGetItem(list, 20).int32Value, 0);
    EXPECT_TRUE(unusedPlacesAreZero(list));
    ArrayListDealloc(&list);
}

TEST(ArrayList, InsertListAtOffsetAndAppend) {
    ArrayList* target = int32List({1, 2, 3});
    ArrayList* source = int32List({7, 8});
    ASSERT_TRUE(ArrayListInsert(target, 1, source));
    EXPECT_EQ(int32Items(target), (std::vector<int32_t>{1, 7, 8, 2, 3}));
    ASSERT_TRUE(ArrayListAppend(target, source));
    EXPECT_EQ(int32Items(target), (std::vector<int32_t>{1, 7, 8, 2, 3, 7, 8}));
    EXPECT_EQ(int32Items(source), (std::vector<int32_t>{7, 8}));
    ArrayListDealloc(&target);
    ArrayListDealloc(&source);
}

TEST(ArrayList, InsertListIntoItself) {
    ArrayList* list = int32List({1, 2, 3});
    ASSERT_TRUE(ArrayListInsert(list, 1, list));
    EXPECT_EQ(int32Items(list), (std::vector<int32_t>{1, 1, 2, 3, 2, 3}));
    ArrayListDealloc(&list);
}

TEST(ArrayList, SetItemReplacesAndBeyondTheEndExtends) {
    ArrayList* list = int32List({1, 2, 3});
    ASSERT_TRUE(ArrayListSetItem(list, 1, ArrayListItemFromInt32(20)));
    EXPECT_EQ(int32Items(list), (std::vector<int32_t>{1, 20, 3}));
    ASSERT_TRUE(ArrayListSetItem(list, 5, ArrayListItemFromInt32(6)));
    EXPECT_EQ(int32Items(list), (std::vector<int32_t>{1, 20, 3, 0, 0, 6}));
    ArrayListDealloc(&list);
}

namespace {

struct DestructorLog {
    std::vector<int32_t> destroyed;
};

void logDestructor(void* itemRef, ArrayListClientData clientData) {
    DestructorLog* log = reinterpret_cast<DestructorLog*>(static_cast<uintptr_t>(clientData));
    int32_t value = 0;
    memcpy(&value, itemRef, sizeof(value));
    log->destroyed.push_back(value);
}

}  // namespace

TEST(ArrayList, DeleteItemsCallsTheDestructorAndZeroesTheTail) {
    ArrayList* list = int32List({1, 2, 3, 4, 5});
    DestructorLog log;
    ArrayListDeleteItems(list, 1, 2, logDestructor,
                         static_cast<ArrayListClientData>(reinterpret_cast<uintptr_t>(&log)));
    EXPECT_EQ(log.destroyed, (std::vector<int32_t>{2, 3}));
    EXPECT_EQ(int32Items(list), (std::vector<int32_t>{1, 4, 5}));
    EXPECT_TRUE(unusedPlacesAreZero(list));
    ArrayListDeleteItem(list, 2, nullptr, 0);
    EXPECT_EQ(int32Items(list), (std::vector<int32_t>{1, 4}));
    EXPECT_TRUE(unusedPlacesAreZero(list));
    ArrayListDealloc(&list);
}

TEST(ArrayList, RemoveItemsGivesThemInANewList) {
    ArrayList* list = int32List({1, 2, 3, 4, 5});
    ArrayList* removed = ArrayListRemoveItems(list, 1, 3);
    ASSERT_NE(removed, nullptr);
    EXPECT_EQ(int32Items(removed), (std::vector<int32_t>{2, 3, 4}));
    EXPECT_EQ(removed->type, list->type);
    EXPECT_EQ(int32Items(list), (std::vector<int32_t>{1, 5}));
    EXPECT_TRUE(unusedPlacesAreZero(list));
    EXPECT_EQ(ArrayListRemoveItem(list, 0).int32Value, 1);
    EXPECT_EQ(int32Items(list), (std::vector<int32_t>{5}));
    ArrayListDealloc(&removed);
    ArrayListDealloc(&list);
}

TEST(ArrayList, ClearZeroesTheItemsAndKeepsTheCapacity) {
    ArrayList* list = int32List({1, 2, 3});
    ArrayListClear(list);
    EXPECT_EQ(ArrayListGetCount(list), 0);
    EXPECT_EQ(list->capacity, 32);
    EXPECT_TRUE(unusedPlacesAreZero(list));
    ArrayListDealloc(&list);
}

TEST(ArrayList, GetItemRefAddressesTheItem) {
    ArrayList* list = int32List({1, 2, 3});
    int32_t* ref = static_cast<int32_t*>(ArrayListGetItemRef(list, 2));
    *ref = 30;
    EXPECT_EQ(ArrayListGetItem(list, 2).int32Value, 30);
    ArrayListDealloc(&list);
}

TEST(ArrayList, GetItemsCopiesARange) {
    ArrayList* list = int32List({1, 2, 3, 4});
    ArrayList* part = ArrayListGetItems(list, 1, 2);
    ASSERT_NE(part, nullptr);
    EXPECT_EQ(int32Items(part), (std::vector<int32_t>{2, 3}));
    EXPECT_EQ(int32Items(list), (std::vector<int32_t>{1, 2, 3, 4}));
    ArrayListDealloc(&part);
    ArrayListDealloc(&list);
}

TEST(ArrayList, ItemsOfEachSizeKeepOnlyTheirBytes) {
    ArrayList* bytes = ArrayListAlloc(0, ArrayListItemType_Char, nullptr, 0);
    ArrayListItem item;
    item.bits = 0;
    item.charValue = 'x';
    ASSERT_TRUE(ArrayListAppendItem(bytes, item));
    item.bits = ~uint64_t{0};  // only the first byte may reach the list
    ASSERT_TRUE(ArrayListAppendItem(bytes, item));
    EXPECT_EQ(ArrayListGetItem(bytes, 0).charValue, 'x');
    EXPECT_EQ(ArrayListGetItem(bytes, 1).bits, 0xffu);
    EXPECT_EQ(bytes->array[2], 0);

    ArrayList* shorts = ArrayListAlloc(0, ArrayListItemType_Short, nullptr, 0);
    item.bits = 0;
    item.shortValue = -300;
    ASSERT_TRUE(ArrayListAppendItem(shorts, item));
    EXPECT_EQ(ArrayListGetItem(shorts, 0).shortValue, -300);

    ArrayList* pointers = ArrayListAlloc(0, ArrayListItemType_Pointer, nullptr, 0);
    int target = 0;
    ASSERT_TRUE(ArrayListAppendItem(pointers, ArrayListItemFromPointer(&target)));
    EXPECT_EQ(ArrayListGetItem(pointers, 0).pointerValue, &target);

    ArrayList* wide = ArrayListAlloc(0, ArrayListItemType_Int64, nullptr, 0);
    ASSERT_TRUE(ArrayListAppendItem(wide, ArrayListItemFromInt64(-(int64_t{1} << 40))));
    EXPECT_EQ(ArrayListGetItem(wide, 0).int64Value, -(int64_t{1} << 40));

    ArrayListDealloc(&bytes);
    ArrayListDealloc(&shorts);
    ArrayListDealloc(&pointers);
    ArrayListDealloc(&wide);
}

namespace {

bool doublingCopier(void* targetRef, const void* sourceRef, ArrayListClientData) {
    int32_t value = 0;
    memcpy(&value, sourceRef, sizeof(value));
    value *= 2;
    memcpy(targetRef, &value, sizeof(value));
    return true;
}

// Copies items until it meets a negative one.
bool refusingCopier(void* targetRef, const void* sourceRef, ArrayListClientData clientData) {
    int* calls = reinterpret_cast<int*>(static_cast<uintptr_t>(clientData));
    ++*calls;
    int32_t value = 0;
    memcpy(&value, sourceRef, sizeof(value));
    if (value < 0) {
        return false;
    }
    memcpy(targetRef, &value, sizeof(value));
    return true;
}

}  // namespace

TEST(ArrayList, CopyWithAndWithoutCopier) {
    ArrayList* list = int32List({1, 2, 3});
    ArrayList* plain = ArrayListCopy(list, nullptr, 0);
    ArrayList* doubled = ArrayListCopy(list, doublingCopier, 0);
    ASSERT_NE(plain, nullptr);
    ASSERT_NE(doubled, nullptr);
    EXPECT_EQ(int32Items(plain), (std::vector<int32_t>{1, 2, 3}));
    EXPECT_EQ(int32Items(doubled), (std::vector<int32_t>{2, 4, 6}));
    EXPECT_EQ(plain->type, list->type);
    ArrayListDealloc(&plain);
    ArrayListDealloc(&doubled);
    ArrayListDealloc(&list);
}

TEST(ArrayList, RefusedCopyStopsAtTheFirstFalseAndDropsThePartialResult) {
    ArrayList* list = int32List({1, -2, 3});
    int calls = 0;
    ArrayListClientData data = static_cast<ArrayListClientData>(reinterpret_cast<uintptr_t>(&calls));
    EXPECT_EQ(ArrayListCopy(list, refusingCopier, data), nullptr);
    EXPECT_EQ(calls, 2);
    calls = 0;
    EXPECT_EQ(ArrayListToArray(list, refusingCopier, data), nullptr);
    EXPECT_EQ(calls, 2);
    int32_t raw[] = {5, -1, 6};
    calls = 0;
    EXPECT_EQ(ArrayListFromArray(raw, 3, 6, refusingCopier, data), nullptr);
    EXPECT_EQ(calls, 2);
    ArrayListDealloc(&list);
}

TEST(ArrayList, ToArrayOfAnEmptyListIsNull) {
    ArrayList* list = ArrayListAlloc(0, 6, nullptr, 0);
    EXPECT_EQ(ArrayListToArray(list, nullptr, 0), nullptr);
    ArrayListDealloc(&list);
}

TEST(ArrayList, ToArrayAndFromArrayRoundTrip) {
    ArrayList* list = int32List({9, 8, 7, 6});
    int32_t* raw = static_cast<int32_t*>(ArrayListToArray(list, nullptr, 0));
    ASSERT_NE(raw, nullptr);
    EXPECT_EQ(std::vector<int32_t>(raw, raw + 4), (std::vector<int32_t>{9, 8, 7, 6}));
    ArrayList* back = ArrayListFromArray(raw, 4, 6, nullptr, 0);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(int32Items(back), (std::vector<int32_t>{9, 8, 7, 6}));
    EXPECT_EQ(back->capacity, 4);
    free(raw);
    ArrayListDealloc(&back);
    ArrayListDealloc(&list);
}

namespace {

struct VisitLog {
    const ArrayList* list = nullptr;
    std::vector<int32_t> seen;
    bool sawFlag = true;
    int32_t stopAt = -1;
};

bool loggingVisitor(void* itemRef, ArrayListClientData clientData) {
    VisitLog* log = reinterpret_cast<VisitLog*>(static_cast<uintptr_t>(clientData));
    log->sawFlag = log->sawFlag && log->list->isVisitingItems;
    int32_t value = 0;
    memcpy(&value, itemRef, sizeof(value));
    log->seen.push_back(value);
    return value != log->stopAt;
}

}  // namespace

TEST(ArrayList, VisitItemsWalksTheRangeWithTheFlagSet) {
    ArrayList* list = int32List({1, 2, 3, 4, 5});
    VisitLog log;
    log.list = list;
    ArrayListClientData data = static_cast<ArrayListClientData>(reinterpret_cast<uintptr_t>(&log));
    EXPECT_TRUE(ArrayListVisitItems(list, 1, 3, loggingVisitor, data));
    EXPECT_EQ(log.seen, (std::vector<int32_t>{2, 3, 4}));
    EXPECT_TRUE(log.sawFlag);
    EXPECT_FALSE(list->isVisitingItems);

    log.seen.clear();
    log.stopAt = 2;
    EXPECT_FALSE(ArrayListVisitItems(list, 0, 5, loggingVisitor, data));
    EXPECT_EQ(log.seen, (std::vector<int32_t>{1, 2}));
    EXPECT_FALSE(list->isVisitingItems);
    ArrayListDealloc(&list);
}

namespace {

int compareInt32(ArrayListItem item1, ArrayListItem item2, ArrayListClientData clientData) {
    int direction = clientData == 0 ? 1 : -1;
    if (item1.int32Value < item2.int32Value) {
        return -direction;
    }
    return item1.int32Value > item2.int32Value ? direction : 0;
}

int compareShort(ArrayListItem item1, ArrayListItem item2, ArrayListClientData) {
    return item1.shortValue - item2.shortValue;
}

}  // namespace

TEST(ArrayList, QSortOrdersByTheComparatorAndPassesItsClientData) {
    std::mt19937 random(7);
    std::vector<int32_t> values(500);
    for (int32_t& value : values) {
        value = static_cast<int32_t>(random() % 2000) - 1000;
    }
    ArrayList* list = int32List(values);
    ArrayListQSort(list, compareInt32, 0);
    std::vector<int32_t> sorted = values;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(int32Items(list), sorted);

    ArrayListQSort(list, compareInt32, 1);  // client data 1: descending
    std::reverse(sorted.begin(), sorted.end());
    EXPECT_EQ(int32Items(list), sorted);
    ArrayListDealloc(&list);
}

TEST(ArrayList, QSortHandsItemsOfTheListsSize) {
    ArrayList* list = ArrayListAlloc(0, ArrayListItemType_Short, nullptr, 0);
    for (int16_t value : {300, -7, 12, -300, 0}) {
        ArrayListItem item;
        item.bits = 0;
        item.shortValue = value;
        ASSERT_TRUE(ArrayListAppendItem(list, item));
    }
    ArrayListQSort(list, compareShort, 0);
    std::vector<int16_t> got;
    for (int64_t i = 0; i < list->count; ++i) {
        got.push_back(ArrayListGetItem(list, i).shortValue);
    }
    EXPECT_EQ(got, (std::vector<int16_t>{-300, -7, 0, 12, 300}));
    ArrayListDealloc(&list);
}

TEST(ArrayList, RandomEditsMatchAVector) {
    std::mt19937 random(12345);
    ArrayList* list = ArrayListAlloc(0, 6, nullptr, 0);
    std::vector<int32_t> model;
    for (int step = 0; step < 5000; ++step) {
        int32_t value = static_cast<int32_t>(random());
        switch (random() % 5) {
            case 0:
            case 1: {
                int64_t offset = model.empty() ? 0 : static_cast<int64_t>(random() % (model.size() + 1));
                ASSERT_TRUE(ArrayListInsertItem(list, offset, ArrayListItemFromInt32(value)));
                model.insert(model.begin() + offset, value);
                break;
            }
            case 2:
                if (!model.empty()) {
                    int64_t offset = static_cast<int64_t>(random() % model.size());
                    ASSERT_TRUE(ArrayListSetItem(list, offset, ArrayListItemFromInt32(value)));
                    model[static_cast<size_t>(offset)] = value;
                }
                break;
            default:
                if (!model.empty()) {
                    int64_t offset = static_cast<int64_t>(random() % model.size());
                    int64_t n = std::min<int64_t>(static_cast<int64_t>(random() % 3) + 1,
                                                  static_cast<int64_t>(model.size()) - offset);
                    ArrayListDeleteItems(list, offset, n, nullptr, 0);
                    model.erase(model.begin() + offset, model.begin() + offset + n);
                }
                break;
        }
        ASSERT_TRUE(ArrayListIsValid(list));
    }
    EXPECT_EQ(int32Items(list), model);
    EXPECT_TRUE(unusedPlacesAreZero(list));
    ArrayListDealloc(&list);
}
