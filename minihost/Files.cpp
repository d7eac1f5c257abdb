// File names: temporary names and the folder part of a name.
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "host/ZorUtil.h"
#include "minihost/Internal.h"
#include "minihost/MiniHost.h"

extern "C" {

// Makes an empty file of a new name in $TMPDIR (or /tmp), so that no other
// caller gets the same name, and hands out the name.
bool ZorUtilFileGetTempName(char** tempFileName) {
    if (tempFileName == nullptr)
        return false;
    const char* folder = std::getenv("TMPDIR");
    std::string pattern = (folder != nullptr && folder[0] != '\0') ? folder : "/tmp";
    if (pattern.back() != '/')
        pattern += '/';
    pattern += "minihost-XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    int fd = mkstemp(name.data());
    if (fd < 0) {
        minihost::setLastError("Unable to create a temporary file in " +
                               pattern.substr(0, pattern.rfind('/')) + ": " + std::strerror(errno));
        return false;
    }
    close(fd);
    *tempFileName = minihost::detail::hostStringCopy(name.data());
    return *tempFileName != nullptr;
}

// Both "/" and "\\" separate folders; a name without either gives "".
char* ZorUtilGetBasePath(const char* fileName) {
    if (fileName == nullptr)
        return nullptr;
    const char* lastSeparator = nullptr;
    for (const char* c = fileName; *c != '\0'; ++c) {
        if (*c == '/' || *c == '\\')
            lastSeparator = c;
    }
    size_t length = lastSeparator == nullptr ? 0 : static_cast<size_t>(lastSeparator - fileName) + 1;
    return minihost::detail::hostStringCopy(std::string(fileName, length));
}

}  // extern "C"
