// Host sets.
#include <gtest/gtest.h>

#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace {

TEST(HostSets, KeepMembersInRisingOrderWhateverTheOrderOfAdding) {
    ZorSet set = ZorUtilSetAlloc(true);
    ASSERT_NE(set, nullptr);
    EXPECT_TRUE(ZorUtilSetIsEmpty(set));
    for (ZorIndex member : {7, 3, 9, 3, 1})
        ASSERT_TRUE(ZorUtilSetAddMember(set, member, true));
    EXPECT_EQ(ZorUtilSetGetMemberCount(set), 4);
    EXPECT_EQ(minihost::setMembers(set), (std::vector<ZorIndex>{1, 3, 7, 9}));
    EXPECT_EQ(ZorUtilSetGetMember(set, 1), 1);
    EXPECT_EQ(ZorUtilSetGetMember(set, 4), 9);
    EXPECT_EQ(ZorUtilSetGetMember(set, 5), ZorNoMember);
    EXPECT_EQ(ZorUtilSetGetMember(set, 0), ZorNoMember);
    ZorUtilSetDealloc(&set);
    EXPECT_EQ(set, nullptr);
}

TEST(HostSets, RefuseMembersBelowOne) {
    ZorSet set = ZorUtilSetAlloc(false);
    EXPECT_FALSE(ZorUtilSetAddMember(set, 0, false));
    EXPECT_FALSE(ZorUtilSetAddMember(set, -4, false));
    EXPECT_TRUE(ZorUtilSetIsEmpty(set));
    ZorUtilSetDealloc(&set);
}

TEST(HostSets, WalkWithGetNextMember) {
    ZorSet set = ZorUtilSetAlloc(true);
    for (ZorIndex member : {2, 5, 6})
        ZorUtilSetAddMember(set, member, true);
    std::vector<ZorIndex> walked;
    for (ZorIndex m = ZorUtilSetGetNextMember(set, ZorNoMember); m != ZorNoMember;
         m = ZorUtilSetGetNextMember(set, m)) {
        walked.push_back(m);
    }
    EXPECT_EQ(walked, (std::vector<ZorIndex>{2, 5, 6}));
    EXPECT_EQ(ZorUtilSetGetNextMember(set, 3), 5);  // need not be a member
    ZorUtilSetDealloc(&set);
}

TEST(HostSets, RemoveClearCopyAndMembership) {
    ZorSet set = ZorUtilSetAlloc(true);
    for (ZorIndex member : {1, 2, 3})
        ZorUtilSetAddMember(set, member, true);
    ZorUtilSetRemoveMember(set, 2);
    ZorUtilSetRemoveMember(set, 10);
    EXPECT_TRUE(ZorUtilSetIsMember(set, 1));
    EXPECT_FALSE(ZorUtilSetIsMember(set, 2));
    ZorSet copy = ZorUtilSetAlloc(true);
    ZorUtilSetAddMember(copy, 99, true);
    ASSERT_TRUE(ZorUtilSetCopy(copy, set, true));
    EXPECT_EQ(minihost::setMembers(copy), (std::vector<ZorIndex>{1, 3}));
    ZorUtilSetClear(set);
    EXPECT_TRUE(ZorUtilSetIsEmpty(set));
    EXPECT_EQ(ZorUtilSetGetMemberCount(copy), 2);
    ZorUtilSetDealloc(&set);
    ZorUtilSetDealloc(&copy);
}

TEST(HostSets, NullSetIsEmpty) {
    EXPECT_TRUE(ZorUtilSetIsEmpty(nullptr));
    EXPECT_EQ(ZorUtilSetGetMemberCount(nullptr), 0);
    EXPECT_FALSE(ZorUtilSetIsMember(nullptr, 1));
}

}  // namespace
