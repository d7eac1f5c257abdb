// Host strings and string lists.
//
// A host string is a malloc block; ZorUtilStringDealloc frees it. A string
// list owns copies of its strings, numbered from 1; an entry may be null.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "host/ZorUtil.h"
#include "minihost/Internal.h"
#include "minihost/MiniHost.h"

struct ZorStringListImpl {
    std::vector<char*> items;  // owned copies; null entries allowed
};

using minihost::detail::hostStringCopy;

namespace {

// Makes the entry's copy; false when memory runs out for a non-null string.
bool copyEntry(const char* string, char** copy) {
    *copy = hostStringCopy(string);
    return string == nullptr || *copy != nullptr;
}

bool validIndex(ZorStringList list, ZorIndex index) {
    return list != nullptr && index >= 1 && index <= static_cast<ZorIndex>(list->items.size());
}

}  // namespace

extern "C" {

char* ZorUtilStringAlloc(int64_t maxLength, const char* /*debugInfo*/) {
    if (maxLength < 0)
        return nullptr;
    return static_cast<char*>(std::calloc(static_cast<size_t>(maxLength) + 1, 1));
}

void ZorUtilStringDealloc(char** string) {
    if (string == nullptr)
        return;
    std::free(*string);
    *string = nullptr;
}

ZorStringList ZorUtilStringListAlloc(void) {
    return new (std::nothrow) ZorStringListImpl;
}

void ZorUtilStringListDealloc(ZorStringList* list) {
    if (list == nullptr || *list == nullptr)
        return;
    ZorUtilStringListClear(*list);
    delete *list;
    *list = nullptr;
}

void ZorUtilStringListClear(ZorStringList list) {
    if (list == nullptr)
        return;
    for (char* item : list->items)
        std::free(item);
    list->items.clear();
}

ZorIndex ZorUtilStringListGetCount(ZorStringList list) {
    return list == nullptr ? 0 : static_cast<ZorIndex>(list->items.size());
}

char* ZorUtilStringListGetString(ZorStringList list, ZorIndex index) {
    if (!validIndex(list, index))
        return nullptr;
    return hostStringCopy(list->items[static_cast<size_t>(index - 1)]);
}

const char* ZorUtilStringListGetRawStringPtr(ZorStringList list, ZorIndex index) {
    if (!validIndex(list, index))
        return nullptr;
    return list->items[static_cast<size_t>(index - 1)];
}

bool ZorUtilStringListAppendString(ZorStringList list, const char* string) {
    if (list == nullptr)
        return false;
    char* copy;
    if (!copyEntry(string, &copy))
        return false;
    list->items.push_back(copy);
    return true;
}

bool ZorUtilStringListSetString(ZorStringList list, ZorIndex index, const char* string) {
    if (list == nullptr || index < 1)
        return false;
    char* copy;
    if (!copyEntry(string, &copy))
        return false;
    size_t position = static_cast<size_t>(index - 1);
    if (position >= list->items.size())
        list->items.resize(position + 1, nullptr);
    std::free(list->items[position]);
    list->items[position] = copy;
    return true;
}

bool ZorUtilStringListInsertString(ZorStringList list, ZorIndex index, const char* string) {
    if (list == nullptr || index < 1 || index > static_cast<ZorIndex>(list->items.size()) + 1)
        return false;
    char* copy;
    if (!copyEntry(string, &copy))
        return false;
    list->items.insert(list->items.begin() + (index - 1), copy);
    return true;
}

void ZorUtilStringListRemoveString(ZorStringList list, ZorIndex index) {
    if (!validIndex(list, index))
        return;
    std::free(list->items[static_cast<size_t>(index - 1)]);
    list->items.erase(list->items.begin() + (index - 1));
}

bool ZorUtilStringListAppend(ZorStringList target, ZorStringList source) {
    if (target == nullptr)
        return false;
    if (source == nullptr)
        return true;
    std::vector<char*> copies;
    for (char* item : source->items) {
        char* copy;
        if (!copyEntry(item, &copy)) {
            for (char* done : copies)
                std::free(done);
            return false;
        }
        copies.push_back(copy);
    }
    target->items.insert(target->items.end(), copies.begin(), copies.end());
    return true;
}

ZorStringList ZorUtilStringListCopy(ZorStringList source) {
    if (source == nullptr)
        return nullptr;
    ZorStringList copy = ZorUtilStringListAlloc();
    if (copy == nullptr)
        return nullptr;
    if (!ZorUtilStringListAppend(copy, source))
        ZorUtilStringListDealloc(&copy);
    return copy;
}

// An empty or null text gives an empty list; otherwise every "\n" (or
// "\r\n") ends one string, and the text behind the last one is the last
// string, so "a\n" gives "a" and "" and a list round-trips through
// ZorUtilStringListToNLString (except a list of one empty string).
ZorStringList ZorUtilStringListFromNLString(const char* text) {
    ZorStringList list = ZorUtilStringListAlloc();
    if (list == nullptr || text == nullptr || text[0] == '\0')
        return list;
    const char* start = text;
    for (;;) {
        const char* newline = std::strchr(start, '\n');
        size_t length = newline == nullptr ? std::strlen(start) : static_cast<size_t>(newline - start);
        if (newline != nullptr && length > 0 && start[length - 1] == '\r')
            --length;
        if (!ZorUtilStringListAppendString(list, std::string(start, length).c_str())) {
            ZorUtilStringListDealloc(&list);
            return nullptr;
        }
        if (newline == nullptr)
            break;
        start = newline + 1;
    }
    return list;
}

// Null entries count as empty strings.
char* ZorUtilStringListToNLString(ZorStringList list) {
    std::string joined;
    if (list != nullptr) {
        for (size_t i = 0; i < list->items.size(); ++i) {
            if (i > 0)
                joined += '\n';
            if (list->items[i] != nullptr)
                joined += list->items[i];
        }
    }
    return hostStringCopy(joined);
}

}  // extern "C"

namespace minihost {

ZorStringList makeStringList(const std::vector<std::string>& strings) {
    ZorStringList list = ZorUtilStringListAlloc();
    if (list == nullptr)
        fatal("out of memory making a string list");
    for (const std::string& s : strings) {
        if (!ZorUtilStringListAppendString(list, s.c_str()))
            fatal("out of memory making a string list");
    }
    return list;
}

std::vector<std::string> stringListToVector(ZorStringList list) {
    std::vector<std::string> result;
    if (list == nullptr)
        return result;
    for (char* item : list->items)
        result.emplace_back(item == nullptr ? "" : item);
    return result;
}

}  // namespace minihost
