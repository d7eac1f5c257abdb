// Host sets: sets of positive integers, walked in rising order.
#include <algorithm>
#include <new>
#include <vector>

#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

struct ZorSetImpl {
    std::vector<ZorIndex> members;  // rising, each at least 1
};

extern "C" {

ZorSet ZorUtilSetAlloc(bool /*showErr*/) {
    return new (std::nothrow) ZorSetImpl;
}

void ZorUtilSetDealloc(ZorSet* set) {
    if (set == nullptr)
        return;
    delete *set;
    *set = nullptr;
}

void ZorUtilSetClear(ZorSet set) {
    if (set != nullptr)
        set->members.clear();
}

// A member below 1 is refused (false).
bool ZorUtilSetAddMember(ZorSet set, ZorIndex member, bool /*showErr*/) {
    if (set == nullptr || member < 1)
        return false;
    std::vector<ZorIndex>& m = set->members;
    if (m.empty() || m.back() < member) {  // the common case: members come in rising order
        m.push_back(member);
        return true;
    }
    auto at = std::lower_bound(m.begin(), m.end(), member);
    if (at == m.end() || *at != member)
        m.insert(at, member);
    return true;
}

void ZorUtilSetRemoveMember(ZorSet set, ZorIndex member) {
    if (set == nullptr)
        return;
    auto at = std::lower_bound(set->members.begin(), set->members.end(), member);
    if (at != set->members.end() && *at == member)
        set->members.erase(at);
}

bool ZorUtilSetIsMember(ZorSet set, ZorIndex member) {
    return set != nullptr && std::binary_search(set->members.begin(), set->members.end(), member);
}

bool ZorUtilSetIsEmpty(ZorSet set) {
    return set == nullptr || set->members.empty();
}

ZorIndex ZorUtilSetGetMemberCount(ZorSet set) {
    return set == nullptr ? 0 : static_cast<ZorIndex>(set->members.size());
}

ZorIndex ZorUtilSetGetMember(ZorSet set, ZorIndex position) {
    if (set == nullptr || position < 1 || position > static_cast<ZorIndex>(set->members.size()))
        return ZorNoMember;
    return set->members[static_cast<size_t>(position - 1)];
}

// Any value below 1 (ZorNoMember among them) starts the walk.
ZorIndex ZorUtilSetGetNextMember(ZorSet set, ZorIndex member) {
    if (set == nullptr)
        return ZorNoMember;
    auto at = std::upper_bound(set->members.begin(), set->members.end(), member < 1 ? 0 : member);
    return at == set->members.end() ? ZorNoMember : *at;
}

// Makes target a copy of source; a null source empties target.
bool ZorUtilSetCopy(ZorSet target, ZorSet source, bool /*showErr*/) {
    if (target == nullptr)
        return false;
    if (target == source)
        return true;
    if (source == nullptr) {
        target->members.clear();
        return true;
    }
    target->members = source->members;
    return true;
}

}  // extern "C"

namespace minihost {

std::vector<ZorIndex> setMembers(ZorSet set) {
    return set == nullptr ? std::vector<ZorIndex>() : set->members;
}

}  // namespace minihost
