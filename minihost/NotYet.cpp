// Host operations that this stand-in does not carry out yet.
//
// Each is defined, so that an add-on linked against the host resolves all its
// symbols, but stops the program with a clear message when called: nothing
// here pretends to work. An operation leaves this file when it is built.
#include "host/ZorGUI.h"
#include "minihost/Internal.h"

extern "C" {

ZorGUIID ZorGUIMainDialogWindow(void) {
    minihost::detail::notImplemented("ZorGUIMainDialogWindow");
}
ZorGUIID ZorGUIDialogCreateModal(ZorGUIID, int32_t, int32_t, const char*, ZorGUIActionCallback,
                                 ZorGUIActionCallback, ZorGUIActionCallback, ZorGUIActionCallback) {
    minihost::detail::notImplemented("ZorGUIDialogCreateModal");
}
void ZorGUIDialogLaunch(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIDialogLaunch");
}
void ZorGUIDialogDrop(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIDialogDrop");
}
bool ZorGUIDialogIsUp(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIDialogIsUp");
}
void ZorGUIDialogDestroy(ZorGUIID*) {
    minihost::detail::notImplemented("ZorGUIDialogDestroy");
}
void ZorGUISetSensitivity(ZorGUIID, bool) {
    minihost::detail::notImplemented("ZorGUISetSensitivity");
}
bool ZorGUIGetSensitivity(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIGetSensitivity");
}
void ZorGUISetVisibility(ZorGUIID, bool) {
    minihost::detail::notImplemented("ZorGUISetVisibility");
}
bool ZorGUIGetVisibility(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIGetVisibility");
}
ZorGUIID ZorGUIFrameAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t, const char*) {
    minihost::detail::notImplemented("ZorGUIFrameAdd");
}
ZorGUIID ZorGUIFormAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t) {
    minihost::detail::notImplemented("ZorGUIFormAdd");
}
ZorGUIID ZorGUIFormAddPage(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIFormAddPage");
}
void ZorGUIFormShowPage(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIFormShowPage");
}
ZorGUIID ZorGUIFormGetShownPage(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIFormGetShownPage");
}
ZorGUIID ZorGUITabAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t, ZorGUIValueCallback) {
    minihost::detail::notImplemented("ZorGUITabAdd");
}
ZorGUIID ZorGUITabAddPage(ZorGUIID, const char*) {
    minihost::detail::notImplemented("ZorGUITabAddPage");
}
void ZorGUITabSetCurrentPage(ZorGUIID, ZorGUIID) {
    minihost::detail::notImplemented("ZorGUITabSetCurrentPage");
}
ZorGUIID ZorGUITabGetCurrentPage(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUITabGetCurrentPage");
}
ZorGUIID ZorGUILabelAdd(ZorGUIID, int32_t, int32_t, const char*) {
    minihost::detail::notImplemented("ZorGUILabelAdd");
}
void ZorGUILabelSetText(ZorGUIID, const char*) {
    minihost::detail::notImplemented("ZorGUILabelSetText");
}
ZorGUIID ZorGUIButtonAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t, const char*, ZorGUIActionCallback) {
    minihost::detail::notImplemented("ZorGUIButtonAdd");
}
ZorGUIID ZorGUIRadioBoxAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t, const char*, ZorGUIValueCallback) {
    minihost::detail::notImplemented("ZorGUIRadioBoxAdd");
}
void ZorGUIRadioBoxSetToggle(ZorGUIID, int32_t) {
    minihost::detail::notImplemented("ZorGUIRadioBoxSetToggle");
}
int32_t ZorGUIRadioBoxGetToggle(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIRadioBoxGetToggle");
}
ZorGUIID ZorGUIToggleAdd(ZorGUIID, int32_t, int32_t, const char*, ZorGUIValueCallback) {
    minihost::detail::notImplemented("ZorGUIToggleAdd");
}
void ZorGUIToggleSet(ZorGUIID, bool) {
    minihost::detail::notImplemented("ZorGUIToggleSet");
}
bool ZorGUIToggleGet(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIToggleGet");
}
ZorGUIID ZorGUIOptionMenuAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t, const char*, ZorGUIValueCallback) {
    minihost::detail::notImplemented("ZorGUIOptionMenuAdd");
}
void ZorGUIOptionMenuSet(ZorGUIID, int32_t) {
    minihost::detail::notImplemented("ZorGUIOptionMenuSet");
}
int32_t ZorGUIOptionMenuGet(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIOptionMenuGet");
}
ZorGUIID ZorGUIListAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t, bool, ZorGUIValueCallback) {
    minihost::detail::notImplemented("ZorGUIListAdd");
}
void ZorGUIListAppendItem(ZorGUIID, const char*) {
    minihost::detail::notImplemented("ZorGUIListAppendItem");
}
void ZorGUIListReplaceItem(ZorGUIID, const char*, int32_t) {
    minihost::detail::notImplemented("ZorGUIListReplaceItem");
}
void ZorGUIListDeleteItemAtPos(ZorGUIID, int32_t) {
    minihost::detail::notImplemented("ZorGUIListDeleteItemAtPos");
}
void ZorGUIListDeleteAllItems(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIListDeleteAllItems");
}
int32_t ZorGUIListGetItemCount(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIListGetItemCount");
}
char* ZorGUIListGetString(ZorGUIID, int32_t) {
    minihost::detail::notImplemented("ZorGUIListGetString");
}
ZorSet ZorGUIListGetSelectedItems(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIListGetSelectedItems");
}
int32_t ZorGUIListGetSelectedItemCount(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIListGetSelectedItemCount");
}
void ZorGUIListSetSelectedItems(ZorGUIID, ZorSet) {
    minihost::detail::notImplemented("ZorGUIListSetSelectedItems");
}
void ZorGUIListDeselectAllItems(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUIListDeselectAllItems");
}
ZorGUIID ZorGUITextFieldAdd(ZorGUIID, int32_t, int32_t, int32_t, int32_t, ZorGUITextCallback) {
    minihost::detail::notImplemented("ZorGUITextFieldAdd");
}
void ZorGUITextFieldSetString(ZorGUIID, const char*) {
    minihost::detail::notImplemented("ZorGUITextFieldSetString");
}
char* ZorGUITextFieldGetString(ZorGUIID) {
    minihost::detail::notImplemented("ZorGUITextFieldGetString");
}

}  // extern "C"
