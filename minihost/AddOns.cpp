// Add-ons, their loaders, state-change callbacks and the idle queue.
#include <dlfcn.h>

#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "host/ZorUtil.h"
#include "minihost/Internal.h"
#include "minihost/MiniHost.h"

struct ZorAddOnImpl {
    size_t index;  // position in the add-on table
};

namespace {

std::mutex registryMutex;  // guards everything below
std::vector<std::unique_ptr<ZorAddOnImpl>> addOnHandles;
std::vector<minihost::AddOnRecord> addOnRecords;
std::vector<minihost::LoaderRecord> loaderRecords;
std::vector<minihost::LoaderInstructionsRecord> loaderInstructionRecords;
std::vector<ZorStateChangeCallback> stateChangeCallbacks;
std::vector<minihost::StateChangeRecord> reportedStateChanges;
std::deque<std::pair<ZorOnIdleCallback, ZorArbParam>> idleQueue;

std::string orEmpty(const char* text) {
    return text == nullptr ? "" : text;
}

// An integer argument read as a switch; absent means off.
bool flagArg(ZorArgList args, const char* name) {
    int64_t value = 0;
    return minihost::argInt(args, name, &value) && value != 0;
}

std::vector<ZorStateChangeCallback> callbacksSnapshot() {
    std::lock_guard<std::mutex> guard(registryMutex);
    return stateChangeCallbacks;
}

}  // namespace

extern "C" {

ZorAddOnID ZorUtilAddOnRegister(int32_t hostVersionNeeded, const char* name, const char* version,
                                const char* author) {
    std::lock_guard<std::mutex> guard(registryMutex);
    addOnHandles.push_back(std::make_unique<ZorAddOnImpl>(ZorAddOnImpl{addOnRecords.size()}));
    minihost::AddOnRecord record;
    record.id = addOnHandles.back().get();
    record.hostVersionNeeded = hostVersionNeeded;
    record.name = orEmpty(name);
    record.version = orEmpty(version);
    record.author = orEmpty(author);
    addOnRecords.push_back(record);
    return record.id;
}

// "LoaderName", "FileNameExtensions", "LoaderCallbackVersion" and
// "LoaderCallback" are required; the selected callback and the three Allow
// switches are optional. A second loader of the same name is refused.
bool ZorUtilImportAddLoaderX(ZorArgList args) {
    minihost::LoaderRecord loader;
    const char* name = nullptr;
    const char* extensions = nullptr;
    const void* callback = nullptr;
    const void* selectedCallback = nullptr;
    if (!minihost::argString(args, "LoaderName", &name) || name == nullptr ||
        !minihost::argString(args, "FileNameExtensions", &extensions) ||
        !minihost::argInt(args, "LoaderCallbackVersion", &loader.callbackVersion) ||
        !minihost::argFunction(args, "LoaderCallback", &callback) || callback == nullptr) {
        minihost::setLastError(
            "A loader must have a name, file name extensions, a callback version and a callback.");
        return false;
    }
    if (minihost::argType(args, "LoaderSelectedCallback") != minihost::ArgType::None &&
        !minihost::argFunction(args, "LoaderSelectedCallback", &selectedCallback)) {
        minihost::setLastError("LoaderSelectedCallback must be a function.");
        return false;
    }
    loader.name = name;
    loader.fileNameExtensions = orEmpty(extensions);
    loader.callback = reinterpret_cast<ZorDataSetLoaderCallback>(const_cast<void*>(callback));
    loader.selectedCallback =
        reinterpret_cast<ZorDataSetLoaderSelectedCallback>(const_cast<void*>(selectedCallback));
    loader.allowMultiFileSelection = flagArg(args, "AllowMultiFileSelection");
    loader.allowAdvancedOptions = flagArg(args, "AllowAdvancedOptions");
    loader.allowAppending = flagArg(args, "AllowAppending");
    std::lock_guard<std::mutex> guard(registryMutex);
    for (const minihost::LoaderRecord& existing : loaderRecords) {
        if (existing.name == loader.name)
            return false;
    }
    loaderRecords.push_back(loader);
    return true;
}

bool ZorUtilImportSetLoaderInstr(const char* loaderName, ZorStringList instructions) {
    if (loaderName == nullptr || instructions == nullptr)
        return false;
    minihost::LoaderInstructionsRecord record{loaderName, minihost::stringListToVector(instructions)};
    std::lock_guard<std::mutex> guard(registryMutex);
    loaderInstructionRecords.push_back(std::move(record));
    return true;
}

// Only mode 2 callbacks (code and call data) exist in this host.
bool ZorUtilStateChangeAddCallbackX(ZorArgList args) {
    const void* function = nullptr;
    int64_t mode = 0;
    if (!minihost::argFunction(args, "CallbackFunction", &function) || function == nullptr ||
        !minihost::argInt(args, "StateChangeMode", &mode) || mode != 2) {
        return false;
    }
    std::lock_guard<std::mutex> guard(registryMutex);
    stateChangeCallbacks.push_back(reinterpret_cast<ZorStateChangeCallback>(const_cast<void*>(function)));
    return true;
}

void ZorUtilOnIdleQueueAddCallback(ZorOnIdleCallback callback, ZorArbParam clientData) {
    if (callback == nullptr)
        minihost::fatal("ZorUtilOnIdleQueueAddCallback called with a null callback");
    std::lock_guard<std::mutex> guard(registryMutex);
    idleQueue.emplace_back(callback, clientData);
}

void ZorUtilStateChanged(int32_t stateChange, ZorArbParam callData) {
    minihost::StateChangeRecord record;
    record.code = stateChange;
    if ((stateChange == ZorStateChange_VarsAdded || stateChange == ZorStateChange_ZonesAdded) &&
        callData != 0) {
        record.members = minihost::setMembers(reinterpret_cast<ZorSet>(callData));
    }
    {
        std::lock_guard<std::mutex> guard(registryMutex);
        reportedStateChanges.push_back(std::move(record));
    }
    for (ZorStateChangeCallback callback : callbacksSnapshot())
        callback(stateChange, callData);
}

}  // extern "C"

namespace minihost {

bool loadAddOnLibrary(const std::string& path, std::string* error) {
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        if (error != nullptr)
            *error = orEmpty(dlerror());
        return false;
    }
    void* entry = dlsym(library, "InitZorAddOn113");
    if (entry == nullptr) {
        if (error != nullptr)
            *error = path + " has no function InitZorAddOn113";
        dlclose(library);
        return false;
    }
    initAddOn(reinterpret_cast<AddOnEntry>(entry));
    return true;
}

void initAddOn(AddOnEntry entry) {
    if (entry == nullptr)
        fatal("initAddOn called with a null entry");
    entry();
}

std::vector<AddOnRecord> addOns() {
    std::lock_guard<std::mutex> guard(registryMutex);
    return addOnRecords;
}

std::vector<LoaderRecord> loaders() {
    std::lock_guard<std::mutex> guard(registryMutex);
    return loaderRecords;
}

bool findLoader(const std::string& name, LoaderRecord* loader) {
    std::lock_guard<std::mutex> guard(registryMutex);
    for (const LoaderRecord& record : loaderRecords) {
        if (record.name == name) {
            if (loader != nullptr)
                *loader = record;
            return true;
        }
    }
    return false;
}

bool invokeLoader(const std::string& loaderName, ZorStringList instructions) {
    LoaderRecord loader;
    if (!findLoader(loaderName, &loader))
        fatal("no loader named \"" + loaderName + "\" is registered");
    return loader.callback(instructions);
}

bool invokeLoader(const std::string& loaderName, const std::vector<std::string>& instructions) {
    ZorStringList list = makeStringList(instructions);
    bool result = invokeLoader(loaderName, list);
    ZorUtilStringListDealloc(&list);
    return result;
}

bool invokeLoaderSelected(const std::string& loaderName, const std::vector<std::string>& fileNames,
                          bool advancedOptions, bool append) {
    LoaderRecord loader;
    if (!findLoader(loaderName, &loader))
        fatal("no loader named \"" + loaderName + "\" is registered");
    if (loader.selectedCallback == nullptr)
        fatal("the loader \"" + loaderName + "\" has no selected callback");
    ZorStringList list = makeStringList(fileNames);
    bool result = loader.selectedCallback(list, advancedOptions, append, 0);
    ZorUtilStringListDealloc(&list);
    return result;
}

std::vector<LoaderInstructionsRecord> loaderInstructions() {
    std::lock_guard<std::mutex> guard(registryMutex);
    return loaderInstructionRecords;
}

void notifyStateChange(int32_t code, ZorArbParam callData) {
    for (ZorStateChangeCallback callback : callbacksSnapshot())
        callback(code, callData);
}

std::vector<StateChangeRecord> stateChangesReported() {
    std::lock_guard<std::mutex> guard(registryMutex);
    return reportedStateChanges;
}

size_t stateChangeCallbackCount() {
    std::lock_guard<std::mutex> guard(registryMutex);
    return stateChangeCallbacks.size();
}

size_t runIdleQueue() {
    size_t ran = 0;
    for (;;) {
        std::pair<ZorOnIdleCallback, ZorArbParam> item;
        {
            std::lock_guard<std::mutex> guard(registryMutex);
            if (idleQueue.empty())
                return ran;
            item = idleQueue.front();
            idleQueue.pop_front();
        }
        item.first(item.second);
        ++ran;
    }
}

size_t idleQueueSize() {
    std::lock_guard<std::mutex> guard(registryMutex);
    return idleQueue.size();
}

namespace detail {

void resetAddOnRecords() {
    std::lock_guard<std::mutex> guard(registryMutex);
    loaderInstructionRecords.clear();
    reportedStateChanges.clear();
}

}  // namespace detail
}  // namespace minihost
