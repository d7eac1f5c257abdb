// Add-on registration, loaders, state changes and the idle queue, driven by a
// small add-on written in this test.
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <string>
#include <vector>

#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace {

// ---- A small add-on -------------------------------------------------------------

ZorAddOnID testAddOnID = nullptr;
std::vector<std::vector<std::string>> loaderCalls;    // instruction lists the loader got
std::vector<std::vector<std::string>> selectedCalls;  // file lists the selected callback got
std::vector<std::pair<bool, bool>> selectedFlags;     // advancedOptions, append
std::vector<int32_t> stateChangesSeen;                // codes the callback got
std::vector<ZorArbParam> idleRuns;                    // client data of idle callbacks run
bool lockHeldInLoader = false;

bool testLoader(ZorStringList instructions) {
    ZorUtilLockStart(testAddOnID);
    lockHeldInLoader = ZorUtilLockIsOn();
    loaderCalls.push_back(minihost::stringListToVector(instructions));
    ZorUtilImportSetLoaderInstr("Test Loader", instructions);
    ZorUtilLockFinish(testAddOnID);
    return ZorUtilStringListGetCount(instructions) > 0;
}

bool testLoaderSelected(ZorStringList fileNames, bool advancedOptions, bool append, ZorArbParam) {
    selectedCalls.push_back(minihost::stringListToVector(fileNames));
    selectedFlags.emplace_back(advancedOptions, append);
    return true;
}

void queuedAgain(ZorArbParam clientData) {
    idleRuns.push_back(clientData);
}

void onIdle(ZorArbParam clientData) {
    idleRuns.push_back(clientData);
    if (clientData == 1)
        ZorUtilOnIdleQueueAddCallback(queuedAgain, 99);  // queued while the queue runs
}

void testStateChange(int32_t stateChange, ZorArbParam) {
    stateChangesSeen.push_back(stateChange);
    if (stateChange == ZorStateChange_DataSetReset)
        ZorUtilOnIdleQueueAddCallback(onIdle, 1);
}

void initTestAddOn() {
    ZorUtilLockOn();
    testAddOnID = ZorUtilAddOnRegister(100, "Test Add-on", "1.0", "Tests");
    ZorArgList args = ZorUtilArgListAlloc();
    ZorUtilArgListAppendString(args, "LoaderName", "Test Loader");
    ZorUtilArgListAppendString(args, "FileNameExtensions", "*.tst");
    ZorUtilArgListAppendInt(args, "LoaderCallbackVersion", 1);
    ZorUtilArgListAppendFunction(args, "LoaderCallback", reinterpret_cast<const void*>(&testLoader));
    ZorUtilArgListAppendFunction(args, "LoaderSelectedCallback",
                                 reinterpret_cast<const void*>(&testLoaderSelected));
    ZorUtilArgListAppendInt(args, "AllowMultiFileSelection", 1);
    ZorUtilArgListAppendInt(args, "AllowAdvancedOptions", 0);
    ZorUtilArgListAppendInt(args, "AllowAppending", 1);
    ZorUtilImportAddLoaderX(args);
    ZorUtilArgListDealloc(&args);
    args = ZorUtilArgListAlloc();
    ZorUtilArgListAppendFunction(args, "CallbackFunction", reinterpret_cast<const void*>(&testStateChange));
    ZorUtilArgListAppendInt(args, "StateChangeMode", 2);
    ZorUtilStateChangeAddCallbackX(args);
    ZorUtilArgListDealloc(&args);
    ZorUtilLockOff();
}

class HostAddOns : public ::testing::Test {
  protected:
    void SetUp() override {
        static bool initialised = false;
        if (!initialised) {
            minihost::initAddOn(initTestAddOn);
            initialised = true;
        }
        minihost::resetRecords();
        minihost::runIdleQueue();
        loaderCalls.clear();
        selectedCalls.clear();
        selectedFlags.clear();
        stateChangesSeen.clear();
        idleRuns.clear();
    }
};

TEST_F(HostAddOns, RecordTheRegistrationAndTheLoader) {
    bool found = false;
    for (const minihost::AddOnRecord& addOn : minihost::addOns()) {
        if (addOn.name != "Test Add-on")
            continue;
        found = true;
        EXPECT_EQ(addOn.id, testAddOnID);
        EXPECT_EQ(addOn.hostVersionNeeded, 100);
        EXPECT_EQ(addOn.version, "1.0");
        EXPECT_EQ(addOn.author, "Tests");
    }
    EXPECT_TRUE(found);
    minihost::LoaderRecord loader;
    ASSERT_TRUE(minihost::findLoader("Test Loader", &loader));
    EXPECT_EQ(loader.fileNameExtensions, "*.tst");
    EXPECT_EQ(loader.callbackVersion, 1);
    EXPECT_EQ(loader.callback, &testLoader);
    EXPECT_EQ(loader.selectedCallback, &testLoaderSelected);
    EXPECT_TRUE(loader.allowMultiFileSelection);
    EXPECT_FALSE(loader.allowAdvancedOptions);
    EXPECT_TRUE(loader.allowAppending);
    EXPECT_FALSE(minihost::findLoader("No Such Loader"));
    EXPECT_EQ(minihost::addOnLockDepth(), 0);
}

TEST_F(HostAddOns, InvokeTheLoaderWithAnInstructionList) {
    EXPECT_TRUE(
        minihost::invokeLoader("Test Loader", {"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", "a.cas"}));
    ASSERT_EQ(loaderCalls.size(), 1u);
    EXPECT_EQ(loaderCalls[0],
              (std::vector<std::string>{"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", "a.cas"}));
    EXPECT_TRUE(lockHeldInLoader);
    EXPECT_FALSE(minihost::invokeLoader("Test Loader", std::vector<std::string>{}));
    std::vector<minihost::LoaderInstructionsRecord> recorded = minihost::loaderInstructions();
    ASSERT_EQ(recorded.size(), 2u);
    EXPECT_EQ(recorded[0].loaderName, "Test Loader");
    EXPECT_EQ(recorded[0].instructions[3], "a.cas");
    EXPECT_TRUE(recorded[1].instructions.empty());
}

TEST_F(HostAddOns, InvokeTheSelectedCallback) {
    EXPECT_TRUE(minihost::invokeLoaderSelected("Test Loader", {"a.cas", "a.dat"}, false, true));
    ASSERT_EQ(selectedCalls.size(), 1u);
    EXPECT_EQ(selectedCalls[0], (std::vector<std::string>{"a.cas", "a.dat"}));
    EXPECT_EQ(selectedFlags[0], std::make_pair(false, true));
}

TEST_F(HostAddOns, RefuseALoaderWithoutCallbackOrOfATakenName) {
    ZorArgList args = ZorUtilArgListAlloc();
    ZorUtilArgListAppendString(args, "LoaderName", "Incomplete Loader");
    ZorUtilArgListAppendString(args, "FileNameExtensions", "*.x");
    ZorUtilArgListAppendInt(args, "LoaderCallbackVersion", 1);
    EXPECT_FALSE(ZorUtilImportAddLoaderX(args));
    EXPECT_FALSE(minihost::findLoader("Incomplete Loader"));
    ZorUtilArgListClear(args);
    ZorUtilArgListAppendString(args, "LoaderName", "Test Loader");
    ZorUtilArgListAppendString(args, "FileNameExtensions", "*.x");
    ZorUtilArgListAppendInt(args, "LoaderCallbackVersion", 1);
    ZorUtilArgListAppendFunction(args, "LoaderCallback", reinterpret_cast<const void*>(&testLoader));
    EXPECT_FALSE(ZorUtilImportAddLoaderX(args));
    ZorUtilArgListDealloc(&args);
}

TEST_F(HostAddOns, RefuseAStateChangeCallbackOfAnotherMode) {
    size_t before = minihost::stateChangeCallbackCount();
    ZorArgList args = ZorUtilArgListAlloc();
    ZorUtilArgListAppendFunction(args, "CallbackFunction", reinterpret_cast<const void*>(&testStateChange));
    ZorUtilArgListAppendInt(args, "StateChangeMode", 1);
    EXPECT_FALSE(ZorUtilStateChangeAddCallbackX(args));
    ZorUtilArgListDealloc(&args);
    EXPECT_EQ(minihost::stateChangeCallbackCount(), before);
}

TEST_F(HostAddOns, StateChangesReachTheCallbackAndAreRecorded) {
    minihost::notifyStateChange(ZorStateChange_FrameDeleted);
    ZorSet zones = ZorUtilSetAlloc(true);
    ZorUtilSetAddMember(zones, 2, true);
    ZorUtilSetAddMember(zones, 4, true);
    ZorUtilStateChanged(ZorStateChange_ZonesAdded, reinterpret_cast<ZorArbParam>(zones));
    ZorUtilSetDealloc(&zones);
    EXPECT_EQ(stateChangesSeen,
              (std::vector<int32_t>{ZorStateChange_FrameDeleted, ZorStateChange_ZonesAdded}));
    std::vector<minihost::StateChangeRecord> reported = minihost::stateChangesReported();
    ASSERT_EQ(reported.size(), 1u);  // only what the add-on reported
    EXPECT_EQ(reported[0].code, ZorStateChange_ZonesAdded);
    EXPECT_EQ(reported[0].members, (std::vector<ZorIndex>{2, 4}));
}

TEST_F(HostAddOns, IdleQueueRunsOnlyWhenAskedAndTakesWhatIsQueuedMeanwhile) {
    minihost::notifyStateChange(ZorStateChange_DataSetReset);
    EXPECT_TRUE(idleRuns.empty());
    EXPECT_EQ(minihost::idleQueueSize(), 1u);
    EXPECT_EQ(minihost::runIdleQueue(), 2u);
    EXPECT_EQ(idleRuns, (std::vector<ZorArbParam>{1, 99}));
    EXPECT_EQ(minihost::idleQueueSize(), 0u);
    EXPECT_EQ(minihost::runIdleQueue(), 0u);
}

TEST(HostAddOnLibraries, LoadingAMissingLibraryFailsWithTheReason) {
    std::string error;
    EXPECT_FALSE(minihost::loadAddOnLibrary("no-such-directory/libnothing.so", &error));
    EXPECT_NE(error.find("libnothing.so"), std::string::npos) << error;
}

TEST(HostAddOnLibraries, ALibraryWithoutTheEntryIsRefused) {
    // The host stand-in itself is a shared library without an add-on entry.
    Dl_info info{};
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&ZorUtilAddOnRegister), &info), 0);
    std::string error;
    EXPECT_FALSE(minihost::loadAddOnLibrary(info.dli_fname, &error));
    EXPECT_EQ(error, std::string(info.dli_fname) + " has no function InitZorAddOn113");
}

}  // namespace
