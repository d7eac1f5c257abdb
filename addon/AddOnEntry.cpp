// Entry of the add-on: registration with the host, and the host's state
// changes, by which solutions are given up when their data sets go away.
#include <cstdlib>

#include "addon/FluentSolution.h"
#include "addon/LoadDriver.h"
#include "fluentio/SectionReader.h"
#include "host/ZorUtil.h"
#include "support/ArrayList.h"

namespace {

// A small record that the entry allocates and the final tear-down frees.
// Nothing reads it; it keeps the add-on's start-up footprint as it has always
// been.
struct EntryRecord {
    int32_t capacity;                  // 1000
    int (*compare)(int32_t, int32_t);  // difference of two integers
    int32_t count;                     // 0
};

EntryRecord* EntryState = nullptr;

int compareIntegers(int32_t a, int32_t b) {
    return a - b;
}

void OnIdleProcessStateChanges(ZorArbParam /*clientData*/) {
    if (PendingStateChanges == nullptr)
        return;
    const int64_t count = ArrayListGetCount(PendingStateChanges);
    for (int64_t i = 0; i < count; ++i) {
        const int32_t code = ArrayListGetItem(PendingStateChanges, i).int32Value;
        if (code == ZorStateChange_FrameDeleted || code == ZorStateChange_DataSetReset) {
            PurgeUnusedSolutions();
            break;
        }
    }
    ArrayListDealloc(&PendingStateChanges);
}

// Queues a state change for idle time; the first one of a queue registers
// the idle callback.
void QueueStateChange(int32_t code) {
    if (PendingStateChanges == nullptr) {
        PendingStateChanges = ArrayListAlloc(0, ArrayListItemType_Int32, nullptr, 0);
        if (PendingStateChanges == nullptr)
            return;
        ZorUtilOnIdleQueueAddCallback(OnIdleProcessStateChanges, 0);
    }
    if (!ArrayListAppendItem(PendingStateChanges, ArrayListItemFromInt32(code))) {
        // Out of memory: the purge waits for the next state change.
    }
}

void LoaderStateChangeCallback(int32_t stateChange, ZorArbParam /*callData*/) {
    switch (stateChange) {
        case ZorStateChange_FrameDeleted:
        case ZorStateChange_NewTopFrame:
        case ZorStateChange_DataSetReset:
            QueueStateChange(stateChange);
            break;
        case ZorStateChange_NewLayout:
            DeleteAllSolutions();
            DropLoaderDialogs();
            break;
        case ZorStateChange_QuitProgram:
            ArrayListDealloc(&PendingStateChanges);
            DeleteAllSolutions();
            std::free(EntryState);
            EntryState = nullptr;
            break;
        default:
            break;
    }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void InitZorAddOn113(void) {
    ZorUtilLockOn();
    AddOnID = ZorUtilAddOnRegister(100, "Fluent Data Loader", "1.0", "Fluent loader team");

    ZorArgList args = ZorUtilArgListAlloc();
    ZorUtilArgListAppendString(args, "LoaderName", "Fluent Data Loader");
    ZorUtilArgListAppendString(args, "FileNameExtensions", "*.cas *.*dat *.cas.gz *.*dat.gz *.xml");
    ZorUtilArgListAppendInt(args, "LoaderCallbackVersion", 1);
    ZorUtilArgListAppendFunction(args, "LoaderCallback", reinterpret_cast<const void*>(&LoaderCallback));
    ZorUtilArgListAppendFunction(args, "LoaderSelectedCallback",
                                 reinterpret_cast<const void*>(&LoaderSelectedCallback));
    ZorUtilArgListAppendInt(args, "AllowMultiFileSelection", 1);
    ZorUtilArgListAppendInt(args, "AllowAdvancedOptions", 1);
    ZorUtilArgListAppendInt(args, "AllowAppending", 1);
    ZorUtilImportAddLoaderX(args);
    ZorUtilArgListDealloc(&args);

    args = ZorUtilArgListAlloc();
    ZorUtilArgListAppendFunction(args, "CallbackFunction",
                                 reinterpret_cast<const void*>(&LoaderStateChangeCallback));
    ZorUtilArgListAppendInt(args, "StateChangeMode", 2);
    ZorUtilStateChangeAddCallbackX(args);
    ZorUtilArgListDealloc(&args);

    SolutionTableCount = 0;
    SolutionTable = nullptr;
    NextSolutionID = 1;
    FilesArePreScanned = false;
    PurgeEnabled = true;
    SelectedFiles = nullptr;
    PendingStateChanges = nullptr;
    initHostByteOrder();
    EntryState = static_cast<EntryRecord*>(std::calloc(1, sizeof(EntryRecord)));
    if (EntryState != nullptr) {
        EntryState->capacity = 1000;
        EntryState->compare = compareIntegers;
        EntryState->count = 0;
    }
    ZorUtilLockOff();
}
