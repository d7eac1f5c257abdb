// Host strings and string lists.
#include <gtest/gtest.h>

#include <cstring>

#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace {

TEST(HostStrings, AllocIsZeroFilledAndDeallocNullsThePointer) {
    char* text = ZorUtilStringAlloc(16, "test");
    ASSERT_NE(text, nullptr);
    for (int i = 0; i <= 16; ++i)
        EXPECT_EQ(text[i], '\0');
    std::strcpy(text, "0123456789abcdef");  // room for 16 characters and the end
    ZorUtilStringDealloc(&text);
    EXPECT_EQ(text, nullptr);
    ZorUtilStringDealloc(&text);  // a null string is allowed
}

TEST(HostStrings, NegativeLengthGivesNull) {
    EXPECT_EQ(ZorUtilStringAlloc(-1, "test"), nullptr);
}

TEST(HostStringLists, AreNumberedFromOneAndHandOutCopies) {
    ZorStringList list = ZorUtilStringListAlloc();
    ASSERT_TRUE(ZorUtilStringListAppendString(list, "first"));
    ASSERT_TRUE(ZorUtilStringListAppendString(list, "second"));
    EXPECT_EQ(ZorUtilStringListGetCount(list), 2);
    char* first = ZorUtilStringListGetString(list, 1);
    ASSERT_NE(first, nullptr);
    EXPECT_STREQ(first, "first");
    first[0] = 'F';  // a copy: the list keeps its own
    EXPECT_STREQ(ZorUtilStringListGetRawStringPtr(list, 1), "first");
    ZorUtilStringDealloc(&first);
    EXPECT_EQ(ZorUtilStringListGetString(list, 0), nullptr);
    EXPECT_EQ(ZorUtilStringListGetString(list, 3), nullptr);
    ZorUtilStringListDealloc(&list);
    EXPECT_EQ(list, nullptr);
}

TEST(HostStringLists, KeepNullEntries) {
    ZorStringList list = ZorUtilStringListAlloc();
    ASSERT_TRUE(ZorUtilStringListAppendString(list, nullptr));
    ASSERT_TRUE(ZorUtilStringListAppendString(list, "b"));
    EXPECT_EQ(ZorUtilStringListGetCount(list), 2);
    EXPECT_EQ(ZorUtilStringListGetString(list, 1), nullptr);
    EXPECT_EQ(ZorUtilStringListGetRawStringPtr(list, 1), nullptr);
    EXPECT_STREQ(ZorUtilStringListGetRawStringPtr(list, 2), "b");
    ZorUtilStringListDealloc(&list);
}

TEST(HostStringLists, SetReplacesAppendsAndGrowsWithNullEntries) {
    ZorStringList list = minihost::makeStringList({"a", "b"});
    ASSERT_TRUE(ZorUtilStringListSetString(list, 1, "A"));
    ASSERT_TRUE(ZorUtilStringListSetString(list, 3, "c"));  // one past the end appends
    ASSERT_TRUE(ZorUtilStringListSetString(list, 5, "e"));  // further grows with nulls
    EXPECT_EQ(ZorUtilStringListGetCount(list), 5);
    EXPECT_STREQ(ZorUtilStringListGetRawStringPtr(list, 1), "A");
    EXPECT_STREQ(ZorUtilStringListGetRawStringPtr(list, 3), "c");
    EXPECT_EQ(ZorUtilStringListGetRawStringPtr(list, 4), nullptr);
    EXPECT_STREQ(ZorUtilStringListGetRawStringPtr(list, 5), "e");
    EXPECT_FALSE(ZorUtilStringListSetString(list, 0, "x"));
    ZorUtilStringListDealloc(&list);
}

TEST(HostStringLists, InsertAndRemoveShiftTheRest) {
    ZorStringList list = minihost::makeStringList({"a", "c"});
    ASSERT_TRUE(ZorUtilStringListInsertString(list, 2, "b"));
    ASSERT_TRUE(ZorUtilStringListInsertString(list, 1, "0"));
    ASSERT_TRUE(ZorUtilStringListInsertString(list, 5, "d"));  // one past the end appends
    EXPECT_FALSE(ZorUtilStringListInsertString(list, 7, "x"));
    EXPECT_EQ(minihost::stringListToVector(list), (std::vector<std::string>{"0", "a", "b", "c", "d"}));
    ZorUtilStringListRemoveString(list, 1);
    ZorUtilStringListRemoveString(list, 4);
    ZorUtilStringListRemoveString(list, 9);  // out of range: nothing
    EXPECT_EQ(minihost::stringListToVector(list), (std::vector<std::string>{"a", "b", "c"}));
    ZorUtilStringListClear(list);
    EXPECT_EQ(ZorUtilStringListGetCount(list), 0);
    ZorUtilStringListDealloc(&list);
}

TEST(HostStringLists, CopyAndAppendAreDeep) {
    ZorStringList source = minihost::makeStringList({"x", "y"});
    ZorUtilStringListAppendString(source, nullptr);
    ZorStringList copy = ZorUtilStringListCopy(source);
    ASSERT_NE(copy, nullptr);
    ASSERT_TRUE(ZorUtilStringListAppend(copy, source));
    ZorUtilStringListDealloc(&source);
    ASSERT_EQ(ZorUtilStringListGetCount(copy), 6);
    EXPECT_STREQ(ZorUtilStringListGetRawStringPtr(copy, 4), "x");
    EXPECT_EQ(ZorUtilStringListGetRawStringPtr(copy, 6), nullptr);
    ZorUtilStringListDealloc(&copy);
    EXPECT_EQ(ZorUtilStringListCopy(nullptr), nullptr);
}

TEST(HostStringLists, SplitAtNewlinesOfBothKinds) {
    ZorStringList list = ZorUtilStringListFromNLString("alpha\r\nbeta\ngamma");
    EXPECT_EQ(minihost::stringListToVector(list), (std::vector<std::string>{"alpha", "beta", "gamma"}));
    ZorUtilStringListDealloc(&list);
    list = ZorUtilStringListFromNLString("a\n\nb\n");
    EXPECT_EQ(minihost::stringListToVector(list), (std::vector<std::string>{"a", "", "b", ""}));
    ZorUtilStringListDealloc(&list);
    list = ZorUtilStringListFromNLString("");
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(ZorUtilStringListGetCount(list), 0);
    ZorUtilStringListDealloc(&list);
}

TEST(HostStringLists, JoinWithNewlinesAndRoundTrip) {
    ZorStringList list = minihost::makeStringList({"Pressure", "", "X Velocity"});
    char* joined = ZorUtilStringListToNLString(list);
    ASSERT_NE(joined, nullptr);
    EXPECT_STREQ(joined, "Pressure\n\nX Velocity");
    ZorStringList back = ZorUtilStringListFromNLString(joined);
    EXPECT_EQ(minihost::stringListToVector(back), minihost::stringListToVector(list));
    ZorUtilStringDealloc(&joined);
    ZorUtilStringListDealloc(&back);
    ZorUtilStringListDealloc(&list);
}

}  // namespace
