// Argument lists as the host reads them.
#include <gtest/gtest.h>

#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace {

void someFunction() {}

TEST(HostArgLists, HoldNamedTypedValues) {
    ZorArgList args = ZorUtilArgListAlloc();
    ZorStringList names = minihost::makeStringList({"X"});
    ZorSet set = ZorUtilSetAlloc(true);
    const int32_t array[2] = {4, 5};
    ASSERT_TRUE(ZorUtilArgListAppendInt(args, "Count", 42));
    ASSERT_TRUE(ZorUtilArgListAppendDouble(args, "Time", 0.5));
    ASSERT_TRUE(ZorUtilArgListAppendString(args, "Title", "Case"));
    ASSERT_TRUE(ZorUtilArgListAppendStringList(args, "VarNames", names));
    ASSERT_TRUE(ZorUtilArgListAppendSet(args, "Zones", set));
    ASSERT_TRUE(ZorUtilArgListAppendArray(args, "Types", array));
    ASSERT_TRUE(ZorUtilArgListAppendFunction(args, "Callback", reinterpret_cast<const void*>(&someFunction)));
    ASSERT_TRUE(ZorUtilArgListAppendArbParam(args, "Data", 77));

    int64_t count = 0;
    double time = 0;
    const char* title = nullptr;
    ZorStringList gotNames = nullptr;
    ZorSet gotSet = nullptr;
    const void* gotArray = nullptr;
    const void* gotFunction = nullptr;
    ZorArbParam data = 0;
    EXPECT_TRUE(minihost::argInt(args, "Count", &count));
    EXPECT_EQ(count, 42);
    EXPECT_TRUE(minihost::argDouble(args, "Time", &time));
    EXPECT_EQ(time, 0.5);
    EXPECT_TRUE(minihost::argString(args, "Title", &title));
    EXPECT_STREQ(title, "Case");
    EXPECT_TRUE(minihost::argStringList(args, "VarNames", &gotNames));
    EXPECT_EQ(gotNames, names);
    EXPECT_TRUE(minihost::argSet(args, "Zones", &gotSet));
    EXPECT_EQ(gotSet, set);
    EXPECT_TRUE(minihost::argArray(args, "Types", &gotArray));
    EXPECT_EQ(gotArray, array);
    EXPECT_TRUE(minihost::argFunction(args, "Callback", &gotFunction));
    EXPECT_EQ(gotFunction, reinterpret_cast<const void*>(&someFunction));
    EXPECT_TRUE(minihost::argArbParam(args, "Data", &data));
    EXPECT_EQ(data, 77);
    EXPECT_EQ(minihost::argNames(args), (std::vector<std::string>{"Count", "Time", "Title", "VarNames",
                                                                  "Zones", "Types", "Callback", "Data"}));

    // A wrong type or a missing name is not found.
    EXPECT_FALSE(minihost::argInt(args, "Title", &count));
    EXPECT_FALSE(minihost::argInt(args, "Missing", &count));
    EXPECT_EQ(minihost::argType(args, "Missing"), minihost::ArgType::None);
    EXPECT_EQ(minihost::argType(args, "Time"), minihost::ArgType::Double);

    ZorUtilArgListClear(args);
    EXPECT_TRUE(minihost::argNames(args).empty());
    ZorUtilArgListDealloc(&args);
    EXPECT_EQ(args, nullptr);
    ZorUtilStringListDealloc(&names);
    ZorUtilSetDealloc(&set);
}

TEST(HostArgLists, CopyStrings) {
    ZorArgList args = ZorUtilArgListAlloc();
    char text[] = "original";
    ZorUtilArgListAppendString(args, "Name", text);
    text[0] = 'X';
    const char* value = nullptr;
    ASSERT_TRUE(minihost::argString(args, "Name", &value));
    EXPECT_STREQ(value, "original");
    ZorUtilArgListDealloc(&args);
}

}  // namespace
