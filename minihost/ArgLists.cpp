// Argument lists: named, typed values that an add-on hands to an "...X" call.
// Strings are copied; lists, sets, arrays and functions are referenced.
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace {

struct Arg {
    std::string name;
    minihost::ArgType type = minihost::ArgType::None;
    int64_t intValue = 0;
    double doubleValue = 0.0;
    std::string stringValue;
    bool stringIsNull = false;      // AppendString was given null
    const void* pointer = nullptr;  // string list, set, array or function
    ZorArbParam arbParam = 0;
};

}  // namespace

struct ZorArgListImpl {
    std::vector<Arg> args;  // in order of appending
};

namespace {

bool append(ZorArgList args, const char* name, Arg arg) {
    if (args == nullptr || name == nullptr)
        return false;
    arg.name = name;
    args->args.push_back(std::move(arg));
    return true;
}

const Arg* find(ZorArgList args, const char* name) {
    if (args == nullptr || name == nullptr)
        return nullptr;
    for (const Arg& arg : args->args) {
        if (arg.name == name)
            return &arg;
    }
    return nullptr;
}

const Arg* findTyped(ZorArgList args, const char* name, minihost::ArgType type) {
    const Arg* arg = find(args, name);
    return arg != nullptr && arg->type == type ? arg : nullptr;
}

}  // namespace

extern "C" {

ZorArgList ZorUtilArgListAlloc(void) {
    return new (std::nothrow) ZorArgListImpl;
}

void ZorUtilArgListDealloc(ZorArgList* args) {
    if (args == nullptr)
        return;
    delete *args;
    *args = nullptr;
}

void ZorUtilArgListClear(ZorArgList args) {
    if (args != nullptr)
        args->args.clear();
}

bool ZorUtilArgListAppendInt(ZorArgList args, const char* name, int64_t value) {
    Arg arg;
    arg.type = minihost::ArgType::Int;
    arg.intValue = value;
    return append(args, name, std::move(arg));
}

bool ZorUtilArgListAppendDouble(ZorArgList args, const char* name, double value) {
    Arg arg;
    arg.type = minihost::ArgType::Double;
    arg.doubleValue = value;
    return append(args, name, std::move(arg));
}

bool ZorUtilArgListAppendString(ZorArgList args, const char* name, const char* value) {
    Arg arg;
    arg.type = minihost::ArgType::String;
    arg.stringIsNull = value == nullptr;
    if (value != nullptr)
        arg.stringValue = value;
    return append(args, name, std::move(arg));
}

bool ZorUtilArgListAppendStringList(ZorArgList args, const char* name, ZorStringList value) {
    Arg arg;
    arg.type = minihost::ArgType::StringList;
    arg.pointer = value;
    return append(args, name, std::move(arg));
}

bool ZorUtilArgListAppendSet(ZorArgList args, const char* name, ZorSet value) {
    Arg arg;
    arg.type = minihost::ArgType::Set;
    arg.pointer = value;
    return append(args, name, std::move(arg));
}

bool ZorUtilArgListAppendArray(ZorArgList args, const char* name, const void* value) {
    Arg arg;
    arg.type = minihost::ArgType::Array;
    arg.pointer = value;
    return append(args, name, std::move(arg));
}

bool ZorUtilArgListAppendFunction(ZorArgList args, const char* name, const void* value) {
    Arg arg;
    arg.type = minihost::ArgType::Function;
    arg.pointer = value;
    return append(args, name, std::move(arg));
}

bool ZorUtilArgListAppendArbParam(ZorArgList args, const char* name, ZorArbParam value) {
    Arg arg;
    arg.type = minihost::ArgType::ArbParam;
    arg.arbParam = value;
    return append(args, name, std::move(arg));
}

}  // extern "C"

namespace minihost {

ArgType argType(ZorArgList args, const char* name) {
    const Arg* arg = find(args, name);
    return arg == nullptr ? ArgType::None : arg->type;
}

bool argInt(ZorArgList args, const char* name, int64_t* value) {
    const Arg* arg = findTyped(args, name, ArgType::Int);
    if (arg == nullptr)
        return false;
    *value = arg->intValue;
    return true;
}

bool argDouble(ZorArgList args, const char* name, double* value) {
    const Arg* arg = findTyped(args, name, ArgType::Double);
    if (arg == nullptr)
        return false;
    *value = arg->doubleValue;
    return true;
}

bool argString(ZorArgList args, const char* name, const char** value) {
    const Arg* arg = findTyped(args, name, ArgType::String);
    if (arg == nullptr)
        return false;
    *value = arg->stringIsNull ? nullptr : arg->stringValue.c_str();
    return true;
}

bool argStringList(ZorArgList args, const char* name, ZorStringList* value) {
    const Arg* arg = findTyped(args, name, ArgType::StringList);
    if (arg == nullptr)
        return false;
    *value = static_cast<ZorStringList>(const_cast<void*>(arg->pointer));
    return true;
}

bool argSet(ZorArgList args, const char* name, ZorSet* value) {
    const Arg* arg = findTyped(args, name, ArgType::Set);
    if (arg == nullptr)
        return false;
    *value = static_cast<ZorSet>(const_cast<void*>(arg->pointer));
    return true;
}

bool argArray(ZorArgList args, const char* name, const void** value) {
    const Arg* arg = findTyped(args, name, ArgType::Array);
    if (arg == nullptr)
        return false;
    *value = arg->pointer;
    return true;
}

bool argFunction(ZorArgList args, const char* name, const void** value) {
    const Arg* arg = findTyped(args, name, ArgType::Function);
    if (arg == nullptr)
        return false;
    *value = arg->pointer;
    return true;
}

bool argArbParam(ZorArgList args, const char* name, ZorArbParam* value) {
    const Arg* arg = findTyped(args, name, ArgType::ArbParam);
    if (arg == nullptr)
        return false;
    *value = arg->arbParam;
    return true;
}

std::vector<std::string> argNames(ZorArgList args) {
    std::vector<std::string> names;
    if (args == nullptr)
        return names;
    for (const Arg& arg : args->args)
        names.push_back(arg.name);
    return names;
}

}  // namespace minihost
