// File names: temporary names and the folder part of a name.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

#include "host/ZorUtil.h"
#include "minihost/Internal.h"
#include "minihost/MiniHost.h"

namespace {

// Every temporary name handed out, for the removal at shutdown.
std::mutex tempNamesMutex;
std::vector<std::string> tempNames;

}  // namespace

extern "C" {

// Makes an empty file of a new name in $TMPDIR (or /tmp), so that no other
// caller gets the same name, and hands out the name. The host keeps the name:
// shutdown removes the file and what was written under it (see
// removeTemporaryFiles).
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
    {
        std::lock_guard<std::mutex> guard(tempNamesMutex);
        tempNames.emplace_back(name.data());
    }
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

namespace minihost {

void removeTemporaryFiles() {
    std::vector<std::string> names;
    {
        std::lock_guard<std::mutex> guard(tempNamesMutex);
        names.swap(tempNames);
    }
    // A loader writes its file under the name, or under the name with a
    // suffix (an uncompressed case or data file), and the host's metadata
    // library a metadata file beside each of those.
    for (const std::string& name : names) {
        const size_t slash = name.rfind('/');
        const std::string folder = slash == std::string::npos ? "" : name.substr(0, slash + 1);
        const std::string bare = slash == std::string::npos ? name : name.substr(slash + 1);
        for (const char* suffix : {"", ".cas", ".dat"}) {
            std::remove((name + suffix).c_str());
            std::remove((folder + "." + bare + suffix + ".zmeta").c_str());
        }
    }
}

}  // namespace minihost
