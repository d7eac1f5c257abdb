// fluentload: loads Fluent files through the Fluent Data Loader add-on inside
// the host stand-in, and reports what was loaded.
#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "apps/fluentload/DataSetInfo.h"
#include "apps/fluentload/HostItems.h"
#include "apps/fluentload/Json.h"
#include "apps/fluentload/Options.h"
#include "apps/fluentload/Session.h"
#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace {

const char* const kLoaderName = "Fluent Data Loader";

// The add-on: --addon, else $FLUENTLOAD_ADDON, else beside this program or in
// the build tree's top folder, else where the build put it.
std::string findAddOn(const fluentload::Options& options) {
    if (!options.addonPath.empty())
        return options.addonPath;
    if (const char* env = std::getenv("FLUENTLOAD_ADDON"))
        return env;
    char self[4096];
    ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    if (n > 0) {
        self[n] = '\0';
        std::string dir(self);
        dir = dir.substr(0, dir.rfind('/'));
        for (const std::string& candidate : {dir + "/libfluentloader.so", dir + "/../lib/libfluentloader.so",
                                             dir + "/../../libfluentloader.so"}) {
            if (access(candidate.c_str(), R_OK) == 0)
                return candidate;
        }
    }
    return FL_ADDON_DEFAULT_PATH;
}

void printMessage(const minihost::Message& m) {
    std::string text = m.text;
    if (m.kind == "question")
        text += m.answer ? " [answered: yes]" : " [answered: no]";
    std::fprintf(stderr, "%s: %s\n", m.kind.c_str(), text.c_str());
    std::fflush(stderr);
}

bool writeMessagesFile(const std::string& path, const std::vector<minihost::Message>& messages) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out)
        return false;
    for (const minihost::Message& m : messages) {
        std::string line =
            "{\"kind\": " + fluentload::jsonString(m.kind) + ", \"text\": " + fluentload::jsonString(m.text);
        if (m.kind == "question")
            line += std::string(", \"answer\": ") + (m.answer ? "true" : "false");
        line += "}\n";
        out << line;
    }
    return static_cast<bool>(out);
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    fluentload::Options options;
    std::string error;
    if (!fluentload::parseOptions(args, &options, &error)) {
        std::fprintf(stderr, "fluentload: %s\n%s", error.c_str(), fluentload::usageText());
        return 2;
    }
    if (options.help) {
        std::fputs(fluentload::usageText(), stdout);
        return 0;
    }

    const bool interactive = isatty(STDIN_FILENO) && isatty(STDERR_FILENO);
    // Without a terminal nobody can answer where to put uncompressed copies:
    // they go to temporary files, and the user's folders stay untouched.
    if (!interactive && options.saveUncompressed.empty() && !options.haveRawInstructions) {
        options.saveUncompressed = "no";
    }

    minihost::setMessageSink(printMessage);
    minihost::setProgressBarEnabled(options.progress);
    minihost::setBatchMode(options.batch);
    minihost::setProcessingLayout(options.layout);
    minihost::setLoadOnDemandAllowed(!options.noLOD);
    if (options.memoryBudgetMB > 0.0) {
        minihost::setMemoryBudget(static_cast<size_t>(options.memoryBudgetMB * 1024.0 * 1024.0));
        // The budget may unload an item between one thread's request and its
        // reading: requests and copies then go one at a time.
        fluentload::setRequestsSerialized(true);
    }
    for (bool answer : options.answers)
        minihost::pushAnswer(answer);
    if (!options.overwrite.empty())
        minihost::pushAnswer(options.overwrite == "yes");
    minihost::setDefaultAnswer(true);
    minihost::installInterruptHandler();

    const std::string addOn = findAddOn(options);
    if (!minihost::loadAddOnLibrary(addOn, &error)) {
        std::fprintf(stderr, "fluentload: cannot load the add-on %s: %s\n", addOn.c_str(), error.c_str());
        return 2;
    }
    if (!minihost::findLoader(kLoaderName)) {
        std::fprintf(stderr, "fluentload: the add-on %s registered no \"%s\"\n", addOn.c_str(), kLoaderName);
        return 2;
    }

    const std::vector<std::string> instructions = fluentload::buildInstructions(options);
    const bool loaded = minihost::invokeLoader(kLoaderName, instructions);

    int status = 1;
    if (loaded) {
        status = fluentload::afterLoad(options);
    } else {
        if (minihost::interruptRequested())
            std::fprintf(stderr, "fluentload: interrupted\n");
        // A refused load may still have made part of a data set: the JSON
        // summary says what the host holds either way.
        if (!options.summaryJsonFile.empty() &&
            !fluentload::writeSummaryJson(options.summaryJsonFile, fluentload::readDataSetInfo())) {
            std::fprintf(stderr, "fluentload: cannot write %s\n", options.summaryJsonFile.c_str());
        }
    }
    // The host quits: the data set goes (every item's cleanup runs), then the
    // add-on hears that the program ends.
    minihost::shutdown();
    if (!options.messagesFile.empty() && !writeMessagesFile(options.messagesFile, minihost::messages())) {
        std::fprintf(stderr, "fluentload: cannot write %s\n", options.messagesFile.c_str());
        status = status == 0 ? 1 : status;
    }
    return status;
}
