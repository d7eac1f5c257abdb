// Every operation declared in host/ is defined by the host stand-in, so that an
// add-on linked against the host finds all its symbols; and an operation not
// built yet stops the program loudly instead of pretending to work.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "host/ZorUtil.h"
#include "minihost/Internal.h"

namespace {

std::string readFile(const std::string& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// The text without comments and preprocessor lines.
std::string stripComments(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        bool lineStart = i == 0 || text[i - 1] == '\n';
        if (text.compare(i, 2, "//") == 0 || (lineStart && text[i] == '#')) {
            while (i < text.size() && text[i] != '\n')
                ++i;
            out += '\n';
        } else if (text.compare(i, 2, "/*") == 0) {
            size_t end = text.find("*/", i + 2);
            i = end == std::string::npos ? text.size() : end + 1;
        } else {
            out += text[i];
        }
    }
    return out;
}

// The position behind the brace that closes the one at `open`.
size_t matchBrace(const std::string& text, size_t open) {
    int depth = 0;
    for (size_t i = open; i < text.size(); ++i) {
        if (text[i] == '{')
            ++depth;
        if (text[i] == '}' && --depth == 0)
            return i + 1;
    }
    return text.size();
}

std::string trim(const std::string& s) {
    size_t b = s.find_first_not_of(" \t\n");
    size_t e = s.find_last_not_of(" \t\n");
    return b == std::string::npos ? "" : s.substr(b, e - b + 1);
}

struct Declarations {
    std::vector<std::string> freeFunctions;  // plain names: C functions or namespace functions
    std::vector<std::string> members;        // "Class::name" or "Class::~Class"
};

// Member functions of a class body that need a definition: not pure, not
// defaulted or deleted, not defined inline.
void collectMembers(const std::string& className, const std::string& body, Declarations* found) {
    std::string statement;
    for (size_t i = 0; i < body.size(); ++i) {
        char c = body[i];
        if (c == '{') {  // an inline body, or a nested type: its declaration needs no definition
            i = matchBrace(body, i) - 1;
            statement.clear();
            continue;
        }
        if (c != ';') {
            statement += c;
            continue;
        }
        std::string s = trim(statement);
        statement.clear();
        size_t paren = s.find('(');
        if (paren == std::string::npos || s.find("typedef") == 0 || s.find("friend") != std::string::npos)
            continue;
        std::string tail = trim(s.substr(s.rfind(')') + 1));
        if (tail.find("= 0") != std::string::npos || tail.find("= default") != std::string::npos ||
            tail.find("= delete") != std::string::npos) {
            continue;
        }
        std::smatch m;
        std::string head = s.substr(0, paren);
        if (!std::regex_search(head, m, std::regex(R"((~?\w+)\s*$)")))
            continue;
        found->members.push_back(className + "::" + m[1].str());
    }
}

Declarations parseHeader(const std::string& path) {
    Declarations found;
    std::string text = stripComments(readFile(path));
    // Classes first; their bodies are then cut out of the text.
    std::regex classHead(R"(class\s+ZOR_HOST_API\s+(\w+)[^;{]*\{)");
    std::string rest;
    size_t from = 0;
    for (std::sregex_iterator it(text.begin(), text.end(), classHead), end; it != end; ++it) {
        size_t open = static_cast<size_t>(it->position(0) + it->length(0) - 1);
        if (open < from)
            continue;
        size_t close = matchBrace(text, open);
        collectMembers((*it)[1].str(), text.substr(open + 1, close - open - 2), &found);
        rest += text.substr(from, static_cast<size_t>(it->position(0)) - from);
        from = close;
    }
    rest += text.substr(from);
    std::regex function(R"(ZOR_HOST_API\s+[^;{}()]*?\b(\w+)\s*\()");
    for (std::sregex_iterator it(rest.begin(), rest.end(), function), end; it != end; ++it) {
        found.freeFunctions.push_back((*it)[1].str());
    }
    return found;
}

// The demangled names of the functions libminihost.so defines.
std::vector<std::string> definedSymbols() {
    Dl_info info{};
    EXPECT_NE(dladdr(reinterpret_cast<void*>(&ZorUtilAddOnRegister), &info), 0);
    std::string command = std::string("nm -DC --defined-only '") + info.dli_fname + "'";
    std::vector<std::string> symbols;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return symbols;
    char line[4096];
    while (std::fgets(line, sizeof line, pipe) != nullptr) {
        std::string s(line);
        // "<address> <type> <name>": keep text symbols and their names.
        if (s.size() <= 19 || (s[17] != 'T' && s[17] != 'W'))
            continue;
        std::string name = trim(s.substr(19));
        for (size_t at; (at = name.find("[abi:cxx11]")) != std::string::npos;)
            name.erase(at, 11);
        symbols.push_back(name);
    }
    pclose(pipe);
    return symbols;
}

TEST(HostSymbols, EveryDeclaredOperationIsDefinedByTheStandIn) {
    const std::string hostDir = std::string(FL_SOURCE_DIR) + "/host/";
    Declarations all;
    for (const char* header : {"ZorUtil.h", "ZorData.h", "ZorGUI.h", "Metadata.h", "TaskProgress.h",
                               "HostServices.h", "ZorTypes.h"}) {
        Declarations one = parseHeader(hostDir + header);
        all.freeFunctions.insert(all.freeFunctions.end(), one.freeFunctions.begin(), one.freeFunctions.end());
        all.members.insert(all.members.end(), one.members.begin(), one.members.end());
    }
    // The parser must see the whole interface, or this test proves nothing.
    EXPECT_GT(all.freeFunctions.size(), 200u);
    EXPECT_GT(all.members.size(), 80u);
    auto has = [](const std::vector<std::string>& v, const std::string& s) {
        return std::find(v.begin(), v.end(), s) != v.end();
    };
    EXPECT_TRUE(has(all.freeFunctions, "ZorUtilDataValueCustomLOD"));
    EXPECT_TRUE(has(all.freeFunctions, "ZorGUIDialogIsUp"));
    EXPECT_TRUE(has(all.freeFunctions, "createTaskProgressBar"));
    EXPECT_TRUE(has(all.freeFunctions, "uniqueIdForBndryZone"));
    EXPECT_TRUE(has(all.members, "MetadataDirector::read"));
    EXPECT_TRUE(has(all.members, "IOException::~IOException"));
    EXPECT_TRUE(has(all.members, "SolutionTimeNotificationDeferrer::SolutionTimeNotificationDeferrer"));
    EXPECT_FALSE(has(all.members, "TaskProgress::begin"));  // pure: nothing to define

    std::vector<std::string> symbols = definedSymbols();
    ASSERT_FALSE(symbols.empty());
    std::set<std::string> plain(symbols.begin(), symbols.end());
    for (const std::string& name : all.freeFunctions) {
        bool defined = plain.count(name) > 0;
        for (size_t i = 0; !defined && i < symbols.size(); ++i) {
            defined = symbols[i].find("::" + name + "(") != std::string::npos;
        }
        EXPECT_TRUE(defined) << name << " is declared in host/ but not defined by libminihost.so";
    }
    for (const std::string& member : all.members) {
        bool defined = false;
        for (size_t i = 0; !defined && i < symbols.size(); ++i) {
            defined = symbols[i].find(member + "(") != std::string::npos;
        }
        EXPECT_TRUE(defined) << member << " is declared in host/ but not defined by libminihost.so";
    }
}

TEST(HostSymbolsDeathTest, AnOperationNotBuiltStopsLoudly) {
    // What every operation that the stand-in does not carry out calls.
    EXPECT_DEATH(minihost::detail::notImplemented("ZorUtilSomething"),
                 "minihost: ZorUtilSomething is not implemented yet");
}

}  // namespace
