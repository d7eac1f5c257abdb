// The stand-in's shared helpers: resetting the records, the fatal exit.
#include "minihost/MiniHost.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "minihost/Internal.h"

namespace minihost {

void resetRecords() {
    detail::resetAddOnRecords();
    detail::resetSwitches();
    detail::resetMessageRecords();
    detail::resetProgressRecords();
    detail::resetFrame();
    detail::resetPlot();
}

void fatal(const std::string& what) {
    std::fprintf(stderr, "minihost: %s\n", what.c_str());
    std::fflush(stderr);
    std::abort();
}

namespace detail {

void notImplemented(const char* name) {
    fatal(std::string(name) + " is not implemented yet");
}

char* hostStringCopy(const char* text) {
    if (text == nullptr)
        return nullptr;
    size_t length = std::strlen(text);
    char* copy = static_cast<char*>(std::malloc(length + 1));
    if (copy == nullptr)
        return nullptr;
    std::memcpy(copy, text, length + 1);
    return copy;
}

char* hostStringCopy(const std::string& text) {
    return hostStringCopy(text.c_str());
}

}  // namespace detail
}  // namespace minihost
