// The host operations that the add-on calls.
//
// The add-on sees the host only through the headers of this folder. Strings
// that the host hands out (ZorUtilStringAlloc, getters of string lists, names)
// belong to the caller, who gives them back with ZorUtilStringDealloc. Lists
// and sets are numbered from 1.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/ZorTypes.h"

extern "C" {

// ---- Add-on, loader and idle services --------------------------------------

// Registers an add-on; the result identifies it in ZorUtilLockStart/Finish.
ZOR_HOST_API ZorAddOnID ZorUtilAddOnRegister(int32_t hostVersionNeeded, const char* name, const char* version,
                                             const char* author);
// Registers a data loader. Arguments: "LoaderName" (string), "FileNameExtensions"
// (string), "LoaderCallbackVersion" (int), "LoaderCallback" (function),
// "LoaderSelectedCallback" (function), "AllowMultiFileSelection",
// "AllowAdvancedOptions", "AllowAppending" (ints). False when one is missing.
ZOR_HOST_API bool ZorUtilImportAddLoaderX(ZorArgList args);
// Records the instruction list with which a loader made the present data set,
// so that a layout can repeat the load. The host copies the list.
ZOR_HOST_API bool ZorUtilImportSetLoaderInstr(const char* loaderName, ZorStringList instructions);
// Registers a state-change callback. Arguments: "CallbackFunction" (function of
// type ZorStateChangeCallback), "StateChangeMode" (int, 2).
ZOR_HOST_API bool ZorUtilStateChangeAddCallbackX(ZorArgList args);
// Queues a callback to run once, the next time the host is idle.
ZOR_HOST_API void ZorUtilOnIdleQueueAddCallback(ZorOnIdleCallback callback, ZorArbParam clientData);

// The add-on lock: one process-wide recursive lock. LockOn/LockOff bracket the
// add-on entry; LockStart/LockFinish bracket every other entry of an add-on.
ZOR_HOST_API void ZorUtilLockOn(void);
ZOR_HOST_API void ZorUtilLockOff(void);
ZOR_HOST_API void ZorUtilLockStart(ZorAddOnID addOn);
ZOR_HOST_API void ZorUtilLockFinish(ZorAddOnID addOn);
// True while the calling thread holds the add-on lock.
ZOR_HOST_API bool ZorUtilLockIsOn(void);

// True when the user asked to interrupt the present operation.
ZOR_HOST_API bool ZorUtilInterruptCheck(void);
// Shows (show true) or takes down (show false, text ignored) a busy message.
ZOR_HOST_API void ZorUtilPleaseWait(const char* text, bool show);
// Tells every registered state-change callback of a change. For codes 1
// (variables added) and 3 (zones added) callData is a ZorSet.
ZOR_HOST_API void ZorUtilStateChanged(int32_t stateChange, ZorArbParam callData);
ZOR_HOST_API bool ZorUtilStateIsProcessingLayout(void);
ZOR_HOST_API bool ZorUtilMacroIsBatchModeActive(void);
// Gives a new, unused temporary file name, or false.
ZOR_HOST_API bool ZorUtilFileGetTempName(char** tempFileName);
// The folder part of a file name, with its trailing separator; a host string.
ZOR_HOST_API char* ZorUtilGetBasePath(const char* fileName);
ZOR_HOST_API bool ZorUtilHelp(const char* helpFileOrURL, bool goToWeb, int32_t helpContext);

// ---- Messages and file choosers ---------------------------------------------

// Shows an error message. The text is shown exactly as given.
ZOR_HOST_API void ZorUtilDialogErrMsg(const char* message);
// Shows a message box of a ZorMessageBoxType. For questions the result is the
// answer (true: yes or OK); for other kinds it is true.
ZOR_HOST_API bool ZorUtilDialogMessageBox(const char* message, int32_t messageBoxType);
// Shows the last error that the host recorded, if any.
ZOR_HOST_API void ZorUtilPostLastErrorMessage(void);
// File choosers (dialogType a ZorFileDialogType): false when the user cancelled.
// The names are host strings or lists.
ZOR_HOST_API bool ZorUtilDialogGetFileName(int32_t dialogType, char** fileName, const char* fileTypeName,
                                           const char* defaultFileName, const char* defaultFilter);
ZOR_HOST_API bool ZorUtilDialogGetFileNames(int32_t dialogType, ZorStringList* fileNames,
                                            const char* fileTypeName, ZorStringList defaultFileNames,
                                            const char* defaultFilter);

// ---- Strings ---------------------------------------------------------------

// A zero-filled host string of room for maxLength characters and the end;
// debugInfo names the purpose. Null when memory runs out.
ZOR_HOST_API char* ZorUtilStringAlloc(int64_t maxLength, const char* debugInfo);
// Frees a host string and sets the pointer to null; a null string is allowed.
ZOR_HOST_API void ZorUtilStringDealloc(char** string);

// ---- String lists ----------------------------------------------------------

ZOR_HOST_API ZorStringList ZorUtilStringListAlloc(void);
ZOR_HOST_API void ZorUtilStringListDealloc(ZorStringList* list);
ZOR_HOST_API void ZorUtilStringListClear(ZorStringList list);
ZOR_HOST_API ZorIndex ZorUtilStringListGetCount(ZorStringList list);
// A copy of string `index` (1-based), to be freed by the caller; null when the
// index is out of range or memory runs out. A null entry gives null.
ZOR_HOST_API char* ZorUtilStringListGetString(ZorStringList list, ZorIndex index);
// The list's own string, valid until the list changes.
ZOR_HOST_API const char* ZorUtilStringListGetRawStringPtr(ZorStringList list, ZorIndex index);
// Appends a copy of the string (null is kept as a null entry).
ZOR_HOST_API bool ZorUtilStringListAppendString(ZorStringList list, const char* string);
// Replaces string `index`; an index one past the end appends, further grows the
// list with null entries.
ZOR_HOST_API bool ZorUtilStringListSetString(ZorStringList list, ZorIndex index, const char* string);
ZOR_HOST_API bool ZorUtilStringListInsertString(ZorStringList list, ZorIndex index, const char* string);
ZOR_HOST_API void ZorUtilStringListRemoveString(ZorStringList list, ZorIndex index);
ZOR_HOST_API bool ZorUtilStringListAppend(ZorStringList target, ZorStringList source);
ZOR_HOST_API ZorStringList ZorUtilStringListCopy(ZorStringList source);
// Splits a text at newlines ("\n" or "\r\n") into a new list; null when out of memory.
ZOR_HOST_API ZorStringList ZorUtilStringListFromNLString(const char* text);
// Joins the list with "\n" into a host string.
ZOR_HOST_API char* ZorUtilStringListToNLString(ZorStringList list);

// ---- Sets ------------------------------------------------------------------

// A new empty set; showErr says whether an allocation failure is shown.
ZOR_HOST_API ZorSet ZorUtilSetAlloc(bool showErr);
ZOR_HOST_API void ZorUtilSetDealloc(ZorSet* set);
ZOR_HOST_API void ZorUtilSetClear(ZorSet set);
// Adds a member (at least 1); false when memory runs out.
ZOR_HOST_API bool ZorUtilSetAddMember(ZorSet set, ZorIndex member, bool showErr);
ZOR_HOST_API void ZorUtilSetRemoveMember(ZorSet set, ZorIndex member);
ZOR_HOST_API bool ZorUtilSetIsMember(ZorSet set, ZorIndex member);
// True for a null set too.
ZOR_HOST_API bool ZorUtilSetIsEmpty(ZorSet set);
ZOR_HOST_API ZorIndex ZorUtilSetGetMemberCount(ZorSet set);
// The member at a position (1-based) in rising order; ZorNoMember out of range.
ZOR_HOST_API ZorIndex ZorUtilSetGetMember(ZorSet set, ZorIndex position);
// The smallest member above `member` (ZorNoMember starts the walk); ZorNoMember at the end.
ZOR_HOST_API ZorIndex ZorUtilSetGetNextMember(ZorSet set, ZorIndex member);
ZOR_HOST_API bool ZorUtilSetCopy(ZorSet target, ZorSet source, bool showErr);

// ---- Argument lists ----------------------------------------------------------

ZOR_HOST_API ZorArgList ZorUtilArgListAlloc(void);
ZOR_HOST_API void ZorUtilArgListDealloc(ZorArgList* args);
ZOR_HOST_API void ZorUtilArgListClear(ZorArgList args);
ZOR_HOST_API bool ZorUtilArgListAppendInt(ZorArgList args, const char* name, int64_t value);
ZOR_HOST_API bool ZorUtilArgListAppendDouble(ZorArgList args, const char* name, double value);
// The string is copied.
ZOR_HOST_API bool ZorUtilArgListAppendString(ZorArgList args, const char* name, const char* value);
// The list and set are referenced, not copied: they must live until the call.
ZOR_HOST_API bool ZorUtilArgListAppendStringList(ZorArgList args, const char* name, ZorStringList value);
ZOR_HOST_API bool ZorUtilArgListAppendSet(ZorArgList args, const char* name, ZorSet value);
// An array of any kind, referenced, not copied.
ZOR_HOST_API bool ZorUtilArgListAppendArray(ZorArgList args, const char* name, const void* value);
ZOR_HOST_API bool ZorUtilArgListAppendFunction(ZorArgList args, const char* name, const void* value);
ZOR_HOST_API bool ZorUtilArgListAppendArbParam(ZorArgList args, const char* name, ZorArbParam value);

// ---- Threads -----------------------------------------------------------------

ZOR_HOST_API ZorMutex ZorUtilThreadMutexAlloc(void);
ZOR_HOST_API void ZorUtilThreadMutexLock(ZorMutex mutex);
ZOR_HOST_API void ZorUtilThreadMutexUnlock(ZorMutex mutex);
// Frees the mutex and sets the handle to null.
ZOR_HOST_API void ZorUtilThreadMutexDealloc(ZorMutex* mutex);

}  // extern "C"

// The families of host operations beside the general ones.
#include "host/ZorData.h"
#include "host/ZorGUI.h"
