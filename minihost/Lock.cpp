// The add-on lock, the interrupt switch, the host's mode switches and its
// mutexes.
//
// The add-on lock is one process-wide recursive lock: ZorUtilLockOn/Off and
// ZorUtilLockStart/Finish all take and give back the same lock, so an add-on
// entry may nest them freely on one thread.
#include <atomic>
#include <csignal>
#include <mutex>
#include <new>

#include "host/ZorUtil.h"
#include "minihost/Internal.h"
#include "minihost/MiniHost.h"

struct ZorMutexImpl {
    std::mutex mutex;
};

namespace {

std::recursive_mutex addOnLock;
thread_local int addOnLockDepthOfThread = 0;  // how often this thread holds addOnLock

std::atomic<bool> interruptSwitch{false};
std::atomic<bool> batchModeSwitch{false};
std::atomic<bool> processingLayoutSwitch{false};
std::atomic<bool> loadOnDemandAllowedSwitch{true};

void takeLock() {
    addOnLock.lock();
    ++addOnLockDepthOfThread;
}

void giveBackLock(const char* caller) {
    if (addOnLockDepthOfThread == 0) {
        minihost::fatal(std::string(caller) + " called by a thread that does not hold the add-on lock");
    }
    --addOnLockDepthOfThread;
    addOnLock.unlock();
}

extern "C" void onInterruptSignal(int) {
    if (interruptSwitch.load()) {
        // A second Ctrl-C while the first is still pending ends the program.
        std::signal(SIGINT, SIG_DFL);
        std::raise(SIGINT);
        return;
    }
    interruptSwitch.store(true);
}

}  // namespace

extern "C" {

void ZorUtilLockOn(void) {
    takeLock();
}
void ZorUtilLockOff(void) {
    giveBackLock("ZorUtilLockOff");
}
void ZorUtilLockStart(ZorAddOnID /*addOn*/) {
    takeLock();
}
void ZorUtilLockFinish(ZorAddOnID /*addOn*/) {
    giveBackLock("ZorUtilLockFinish");
}
bool ZorUtilLockIsOn(void) {
    return addOnLockDepthOfThread > 0;
}

bool ZorUtilInterruptCheck(void) {
    return interruptSwitch.load();
}
bool ZorUtilStateIsProcessingLayout(void) {
    return processingLayoutSwitch.load();
}
bool ZorUtilMacroIsBatchModeActive(void) {
    return batchModeSwitch.load();
}

ZorMutex ZorUtilThreadMutexAlloc(void) {
    return new (std::nothrow) ZorMutexImpl;
}

void ZorUtilThreadMutexLock(ZorMutex mutex) {
    if (mutex == nullptr)
        minihost::fatal("ZorUtilThreadMutexLock called with a null mutex");
    mutex->mutex.lock();
}

void ZorUtilThreadMutexUnlock(ZorMutex mutex) {
    if (mutex == nullptr)
        minihost::fatal("ZorUtilThreadMutexUnlock called with a null mutex");
    mutex->mutex.unlock();
}

void ZorUtilThreadMutexDealloc(ZorMutex* mutex) {
    if (mutex == nullptr)
        return;
    delete *mutex;
    *mutex = nullptr;
}

}  // extern "C"

namespace minihost {

void lockAddOn() {
    takeLock();
}
void unlockAddOn() {
    giveBackLock("minihost::unlockAddOn");
}
int addOnLockDepth() {
    return addOnLockDepthOfThread;
}

void setInterrupt(bool interrupted) {
    interruptSwitch.store(interrupted);
}
bool interruptRequested() {
    return interruptSwitch.load();
}

void installInterruptHandler() {
    struct sigaction action {};
    action.sa_handler = onInterruptSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
}

void setBatchMode(bool on) {
    batchModeSwitch.store(on);
}
void setProcessingLayout(bool on) {
    processingLayoutSwitch.store(on);
}
void setLoadOnDemandAllowed(bool on) {
    loadOnDemandAllowedSwitch.store(on);
}

namespace detail {

bool loadOnDemandAllowed() {
    return loadOnDemandAllowedSwitch.load();
}

void resetSwitches() {
    interruptSwitch.store(false);
    batchModeSwitch.store(false);
    processingLayoutSwitch.store(false);
    loadOnDemandAllowedSwitch.store(true);
}

}  // namespace detail
}  // namespace minihost
