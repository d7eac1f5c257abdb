// The host's file dialog: the instruction list made for a plain selection of
// files.
#include <string>

#include "addon/FluentSolution.h"
#include "addon/LoadDriver.h"
#include "host/ZorUtil.h"

bool LoaderSelectedCallback(ZorStringList fileNames, bool advancedOptions, bool append,
                            ZorArbParam /*clientData*/) {
    if (advancedOptions) {
        ZorUtilLockStart(AddOnID);
        ZorUtilDialogErrMsg(
            "The advanced load options of the Fluent loader are not available in this version.");
        ZorUtilLockFinish(AddOnID);
        return false;
    }
    ZorStringList list = ZorUtilStringListAlloc();
    if (list == nullptr)
        return false;
    const ZorIndex count = ZorUtilStringListGetCount(fileNames);
    bool ok = ZorUtilStringListAppendString(list, "STANDARDSYNTAX") &&
              ZorUtilStringListAppendString(list, "1.0") &&
              ZorUtilStringListAppendString(list, "FILELIST_Files") &&
              ZorUtilStringListAppendString(list, std::to_string(count).c_str());
    for (ZorIndex i = 1; ok && i <= count; ++i) {
        ok = ZorUtilStringListAppendString(list, ZorUtilStringListGetRawStringPtr(fileNames, i));
    }
    for (const char* s : {"LoadOption", "MultipleCaseAndData", "UnsteadyOption", "ReadTimeFromDataFiles",
                          "AssignStrandIDs", "Yes", "LoadAdditionalQuantities", "Yes"}) {
        ok = ok && ZorUtilStringListAppendString(list, s);
    }
    if (append)
        ok =
            ok && ZorUtilStringListAppendString(list, "Append") && ZorUtilStringListAppendString(list, "Yes");
    const bool loaded = ok && LoaderCallback(list);
    ZorUtilStringListDealloc(&list);
    return loaded;
}

void DropLoaderDialogs() {
    // The loader's dialogs are not part of this version: none can be up.
}
