// Set texts and numbers of the instruction list.
#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"
#include "support/CommandStrings.h"

namespace {

// Reads a set text; the members, or nothing when it fails (then `ok` is false).
std::vector<ZorIndex> readSet(const char* text, bool bracketed, bool* ok) {
    ZorSet set = reinterpret_cast<ZorSet>(1);  // must be replaced in any case
    *ok = stringToSet(text, set, bracketed);
    std::vector<ZorIndex> members;
    if (*ok) {
        EXPECT_NE(set, nullptr);
        members = minihost::setMembers(set);
        ZorUtilSetDealloc(&set);
    } else {
        EXPECT_EQ(set, nullptr) << "a failed read leaves no set";
    }
    return members;
}

std::vector<ZorIndex> accepted(const char* text, bool bracketed = false) {
    bool ok = false;
    std::vector<ZorIndex> members = readSet(text, bracketed, &ok);
    EXPECT_TRUE(ok) << "'" << text << "' was refused";
    return members;
}

bool refused(const char* text, bool bracketed = false) {
    bool ok = true;
    readSet(text, bracketed, &ok);
    return !ok;
}

ZorSet makeSet(const std::vector<ZorIndex>& members) {
    ZorSet set = ZorUtilSetAlloc(false);
    for (ZorIndex member : members) {
        EXPECT_TRUE(ZorUtilSetAddMember(set, member, false));
    }
    return set;
}

// The text setToString appends to `start` (null: no text yet).
std::string written(ZorSet set, bool bracketed, const char* start = nullptr) {
    char* text = nullptr;
    if (start != nullptr) {
        text = ZorUtilStringAlloc(static_cast<int64_t>(strlen(start)), "test");
        strcpy(text, start);
    }
    EXPECT_TRUE(setToString(set, bracketed, text));
    std::string result = text != nullptr ? text : "(null)";
    ZorUtilStringDealloc(&text);
    return result;
}

}  // namespace

// ---- stringToSet ---------------------------------------------------------------

TEST(StringToSet, ItemsMaySeparateByBlanksOrCommasAndRangesTakeASkip) {
    EXPECT_EQ(accepted("1 3 5-9:2"), (std::vector<ZorIndex>{1, 3, 5, 7, 9}));
    EXPECT_EQ(accepted("1-3,5"), (std::vector<ZorIndex>{1, 2, 3, 5}));
    EXPECT_EQ(accepted("1-10:3"), (std::vector<ZorIndex>{1, 4, 7, 10}));
    EXPECT_EQ(accepted("2-9:4"), (std::vector<ZorIndex>{2, 6}));
    EXPECT_EQ(accepted("4-4"), (std::vector<ZorIndex>{4}));
}

TEST(StringToSet, BlanksAndTabsAroundEveryToken) {
    EXPECT_EQ(accepted(" \t1 - 4 : 2 ,\t7\t"), (std::vector<ZorIndex>{1, 3, 7}));
    EXPECT_EQ(accepted("  [ 2 , 3 ] ", true), (std::vector<ZorIndex>{2, 3}));
}

TEST(StringToSet, RepeatedMembersCountOnce) {
    EXPECT_EQ(accepted("3,3,1-4"), (std::vector<ZorIndex>{1, 2, 3, 4}));
}

TEST(StringToSet, EmptyTextsGiveEmptySets) {
    EXPECT_EQ(accepted(""), (std::vector<ZorIndex>{}));
    EXPECT_EQ(accepted("   "), (std::vector<ZorIndex>{}));
    EXPECT_EQ(accepted("[]", true), (std::vector<ZorIndex>{}));
}

TEST(StringToSet, BracketedTextMustOpenWithABracket) {
    EXPECT_EQ(accepted("[1-3,5]", true), (std::vector<ZorIndex>{1, 2, 3, 5}));
    EXPECT_TRUE(refused("1-3,5", true));
    EXPECT_TRUE(refused("", true));
}

TEST(StringToSet, NothingBehindTheClosingBracketIsRead) {
    EXPECT_EQ(accepted("[1,2] and anything", true), (std::vector<ZorIndex>{1, 2}));
}

TEST(StringToSet, BracketedTextMayEndWithoutTheClosingBracket) {
    EXPECT_EQ(accepted("[1,2", true), (std::vector<ZorIndex>{1, 2}));
}

TEST(StringToSet, UnbracketedTextRefusesALeadingBracket) {
    EXPECT_TRUE(refused("[1]"));
}

TEST(StringToSet, ValuesBelowOneAndBackwardRangesAreRefused) {
    EXPECT_TRUE(refused("0"));
    EXPECT_TRUE(refused("-2"));
    EXPECT_TRUE(refused("1,0,2"));
    EXPECT_TRUE(refused("3-1"));
    EXPECT_TRUE(refused("1-5:0"));
    EXPECT_TRUE(refused("1-5:-1"));
    EXPECT_TRUE(refused("1--3"));
}

TEST(StringToSet, MalformedItemsAreRefused) {
    EXPECT_TRUE(refused(nullptr));
    EXPECT_TRUE(refused("a"));
    EXPECT_TRUE(refused("1,,2"));
    EXPECT_TRUE(refused("5:2"));  // a skip needs a range
    EXPECT_TRUE(refused("1-"));
    EXPECT_TRUE(refused("1-3:"));
    EXPECT_TRUE(refused("2;3"));
    EXPECT_TRUE(refused("12345678901"));  // eleven digits
    EXPECT_TRUE(refused("[1,2]", false));
}

TEST(StringToSet, TenDigitsAreAccepted) {
    EXPECT_EQ(accepted("9999999999"), (std::vector<ZorIndex>{9999999999LL}));
}

// ---- setToString ----------------------------------------------------------------

TEST(SetToString, RunsBecomeRangesSeparatedByCommas) {
    ZorSet set = makeSet({1, 2, 3, 5});
    EXPECT_EQ(written(set, false), "1-3,5");
    EXPECT_EQ(written(set, true), "[1-3,5]");
    ZorUtilSetDealloc(&set);
}

TEST(SetToString, SingleMembersAndShortRuns) {
    ZorSet set = makeSet({7});
    EXPECT_EQ(written(set, false), "7");
    ZorUtilSetDealloc(&set);
    set = makeSet({1, 3, 5});
    EXPECT_EQ(written(set, false), "1,3,5");
    ZorUtilSetDealloc(&set);
    set = makeSet({4, 5, 9, 10, 11, 20});
    EXPECT_EQ(written(set, false), "4-5,9-11,20");
    ZorUtilSetDealloc(&set);
}

TEST(SetToString, MembersAreWrittenInRisingOrder) {
    ZorSet set = makeSet({30, 2, 1, 12, 3});
    EXPECT_EQ(written(set, false), "1-3,12,30");
    ZorUtilSetDealloc(&set);
}

TEST(SetToString, NullAndEmptySets) {
    EXPECT_EQ(written(nullptr, false), "");
    EXPECT_EQ(written(nullptr, true), "[]");
    ZorSet empty = ZorUtilSetAlloc(false);
    EXPECT_EQ(written(empty, false), "");
    EXPECT_EQ(written(empty, true), "[]");
    ZorUtilSetDealloc(&empty);
}

TEST(SetToString, AppendsToTheTextItIsGiven) {
    ZorSet set = makeSet({2, 3});
    EXPECT_EQ(written(set, true, "Zones "), "Zones [2-3]");
    EXPECT_EQ(written(nullptr, true, "Zones "), "Zones []");
    ZorUtilSetDealloc(&set);
}

TEST(SetToString, WrittenTextsReadBackToTheSameSet) {
    std::mt19937 random(2024);
    for (int round = 0; round < 300; ++round) {
        std::set<ZorIndex> members;
        int n = static_cast<int>(random() % 40);
        for (int i = 0; i < n; ++i) {
            members.insert(static_cast<ZorIndex>(random() % 60) + 1);
        }
        ZorSet set = makeSet(std::vector<ZorIndex>(members.begin(), members.end()));
        for (bool bracketed : {false, true}) {
            std::string text = written(set, bracketed);
            EXPECT_EQ(accepted(text.c_str(), bracketed),
                      std::vector<ZorIndex>(members.begin(), members.end()))
                << text;
        }
        ZorUtilSetDealloc(&set);
    }
}

TEST(SetToString, CanonicalTextsSurviveARoundTrip) {
    for (const char* text : {"1-3,5", "1", "2,4,6-9,100-102", "7-8", ""}) {
        ZorSet set = nullptr;
        ASSERT_TRUE(stringToSet(text, set, false)) << text;
        EXPECT_EQ(written(set, false), text);
        ZorUtilSetDealloc(&set);
    }
    ZorSet set = nullptr;
    ASSERT_TRUE(stringToSet("1 3 5-9:2", set, false));
    EXPECT_EQ(written(set, false), "1,3,5,7,9");
    ZorUtilSetDealloc(&set);
}

// ---- readPositiveInteger ---------------------------------------------------------

TEST(ReadPositiveInteger, SkipsBlanksAndStopsBehindTheLastDigit) {
    const char* text = " \t42abc";
    const char* cursor = text;
    long long value = 0;
    ASSERT_TRUE(readPositiveInteger(cursor, value));
    EXPECT_EQ(value, 42);
    EXPECT_STREQ(cursor, "abc");
}

TEST(ReadPositiveInteger, TakesAMinusSign) {
    const char* cursor = "-7,";
    long long value = 0;
    ASSERT_TRUE(readPositiveInteger(cursor, value));
    EXPECT_EQ(value, -7);
    EXPECT_STREQ(cursor, ",");
}

TEST(ReadPositiveInteger, AtMostTenDigits) {
    const char* cursor = "9999999999";
    long long value = 0;
    ASSERT_TRUE(readPositiveInteger(cursor, value));
    EXPECT_EQ(value, 9999999999LL);
    cursor = "0000000012";
    ASSERT_TRUE(readPositiveInteger(cursor, value));
    EXPECT_EQ(value, 12);
    cursor = "12345678901";
    EXPECT_FALSE(readPositiveInteger(cursor, value));
}

TEST(ReadPositiveInteger, NoDigitIsAFailure) {
    long long value = 5;
    for (const char* text : {"", "-", " ", "x1", "+1"}) {
        const char* cursor = text;
        EXPECT_FALSE(readPositiveInteger(cursor, value)) << "'" << text << "'";
    }
}

// ---- readDouble --------------------------------------------------------------------

namespace {

bool readsAs(const char* text, double expected) {
    const char* cursor = text;
    double value = -12345.0;
    if (!readDouble(cursor, value)) {
        ADD_FAILURE() << "'" << text << "' was refused";
        return false;
    }
    EXPECT_DOUBLE_EQ(value, expected) << "'" << text << "'";
    return true;
}

bool doubleRefused(const char* text) {
    const char* cursor = text;
    double value = 0.0;
    return !readDouble(cursor, value);
}

}  // namespace

TEST(ReadDouble, PlainNumbers) {
    readsAs("1.5", 1.5);
    readsAs("  -2.25", -2.25);
    readsAs("\t+.5", 0.5);
    readsAs("3.", 3.0);
    readsAs("42", 42.0);
    readsAs("0.001", 0.001);
}

TEST(ReadDouble, AllFourExponentLetters) {
    readsAs("1.5e3", 1500.0);
    readsAs("1.5E3", 1500.0);
    readsAs("1.5D3", 1500.0);
    readsAs("1.5d-3", 0.0015);
    readsAs("7E+2", 700.0);
}

TEST(ReadDouble, ExponentsOf309OrMoreAreRefused) {
    readsAs("1e308", 1e308);
    readsAs("1e-308", 1e-308);
    EXPECT_TRUE(doubleRefused("1e309"));
    EXPECT_TRUE(doubleRefused("1e-309"));
    EXPECT_TRUE(doubleRefused("1D400"));
    EXPECT_TRUE(doubleRefused("1e99999999999999999999"));
}

TEST(ReadDouble, AnExponentNeedsADigit) {
    EXPECT_TRUE(doubleRefused("1e"));
    EXPECT_TRUE(doubleRefused("1e+"));
    EXPECT_TRUE(doubleRefused("1D "));
}

TEST(ReadDouble, MustEndAtTheTextsEndOrWhiteSpace) {
    EXPECT_TRUE(doubleRefused("1.5x"));
    EXPECT_TRUE(doubleRefused("1.5.3"));
    EXPECT_TRUE(doubleRefused("1,5"));
    const char* cursor = "2.5 rest";
    double value = 0.0;
    ASSERT_TRUE(readDouble(cursor, value));
    EXPECT_DOUBLE_EQ(value, 2.5);
    EXPECT_STREQ(cursor, " rest");
    cursor = "4\n";
    ASSERT_TRUE(readDouble(cursor, value));
    EXPECT_DOUBLE_EQ(value, 4.0);
}

TEST(ReadDouble, EmptyTextsAndWordsAreRefused) {
    EXPECT_TRUE(doubleRefused(""));
    EXPECT_TRUE(doubleRefused("   "));
    EXPECT_TRUE(doubleRefused("abc"));
    EXPECT_TRUE(doubleRefused("e5"));
}

TEST(ReadDouble, ALoneSignOrPointReadsAsZero) {
    readsAs("-", 0.0);
    readsAs("+", 0.0);
    readsAs(".", 0.0);
}

TEST(ReadDouble, ThePointIsAPointInEveryLocale) {
    const char* previous = setlocale(LC_NUMERIC, nullptr);
    std::string saved = previous != nullptr ? previous : "C";
    if (setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr && setlocale(LC_NUMERIC, "fr_FR.UTF-8") == nullptr) {
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    readsAs("1.25", 1.25);
    setlocale(LC_NUMERIC, saved.c_str());
}
