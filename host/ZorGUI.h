// The host's dialog toolkit.
//
// A dialog holds controls; each control has a parent (the dialog, a frame, a
// page of a form or a tab control) and a place (x, y, width, height, in the
// host's layout units; the host may ignore them). Ids of dialogs and controls
// are ZorGUIID values; ZorGUIBadID stands for a control not made yet. Callbacks
// run on the host's main thread. Positions in radio boxes, option menus and
// lists count from 1. Launching a modal dialog returns when it was dropped.
#pragma once

#include <cstdint>

#include "host/ZorTypes.h"

extern "C" {

// ---- Dialogs -------------------------------------------------------------------

// The host's main window, the parent of top dialogs.
ZOR_HOST_API ZorGUIID ZorGUIMainDialogWindow(void);
// Makes a modal dialog with OK, Cancel and Help buttons (null callbacks: no
// such button). init runs each time the dialog is launched.
ZOR_HOST_API ZorGUIID ZorGUIDialogCreateModal(ZorGUIID parent, int32_t width, int32_t height,
                                              const char* title, ZorGUIActionCallback init,
                                              ZorGUIActionCallback ok, ZorGUIActionCallback cancel,
                                              ZorGUIActionCallback help);
// Shows a dialog; for a modal one, returns once it has been dropped.
ZOR_HOST_API void ZorGUIDialogLaunch(ZorGUIID dialog);
// Takes a dialog down; its controls keep their state for the next launch.
ZOR_HOST_API void ZorGUIDialogDrop(ZorGUIID dialog);
// True while the dialog is shown.
ZOR_HOST_API bool ZorGUIDialogIsUp(ZorGUIID dialog);
// Destroys a dialog and its controls; the id is set to ZorGUIBadID.
ZOR_HOST_API void ZorGUIDialogDestroy(ZorGUIID* dialog);

// ---- Any control -------------------------------------------------------------------

// Whether the user can work the control.
ZOR_HOST_API void ZorGUISetSensitivity(ZorGUIID control, bool sensitive);
ZOR_HOST_API bool ZorGUIGetSensitivity(ZorGUIID control);
// Whether the control is shown.
ZOR_HOST_API void ZorGUISetVisibility(ZorGUIID control, bool visible);
ZOR_HOST_API bool ZorGUIGetVisibility(ZorGUIID control);

// ---- Grouping ------------------------------------------------------------------------

// A titled frame that groups controls.
ZOR_HOST_API ZorGUIID ZorGUIFrameAdd(ZorGUIID parent, int32_t x, int32_t y, int32_t width, int32_t height,
                                     const char* label);
// A form: pages on the same place, one shown at a time.
ZOR_HOST_API ZorGUIID ZorGUIFormAdd(ZorGUIID parent, int32_t x, int32_t y, int32_t width, int32_t height);
// Adds a page to a form; the first page is shown at first.
ZOR_HOST_API ZorGUIID ZorGUIFormAddPage(ZorGUIID form);
// Shows a page of its form, hiding the others.
ZOR_HOST_API void ZorGUIFormShowPage(ZorGUIID page);
// The page of the form that is shown.
ZOR_HOST_API ZorGUIID ZorGUIFormGetShownPage(ZorGUIID form);
// A tab control; activate gets the id of the page the user brought forward.
ZOR_HOST_API ZorGUIID ZorGUITabAdd(ZorGUIID parent, int32_t x, int32_t y, int32_t width, int32_t height,
                                   ZorGUIValueCallback activate);
// Adds a named page to a tab control.
ZOR_HOST_API ZorGUIID ZorGUITabAddPage(ZorGUIID tab, const char* name);
// Brings a page forward, without calling the callback.
ZOR_HOST_API void ZorGUITabSetCurrentPage(ZorGUIID tab, ZorGUIID page);
// The page in front.
ZOR_HOST_API ZorGUIID ZorGUITabGetCurrentPage(ZorGUIID tab);

// ---- Labels and buttons -------------------------------------------------------------------

ZOR_HOST_API ZorGUIID ZorGUILabelAdd(ZorGUIID parent, int32_t x, int32_t y, const char* text);
ZOR_HOST_API void ZorGUILabelSetText(ZorGUIID label, const char* text);
// A push button; pressed runs when the user presses it.
ZOR_HOST_API ZorGUIID ZorGUIButtonAdd(ZorGUIID parent, int32_t x, int32_t y, int32_t width, int32_t height,
                                      const char* label, ZorGUIActionCallback pressed);

// ---- Choices ---------------------------------------------------------------------------------

// A radio box of toggles, one per line of `labels` ("\n" between them); the
// first is chosen at first. changed gets the toggle the user chose.
ZOR_HOST_API ZorGUIID ZorGUIRadioBoxAdd(ZorGUIID parent, int32_t x, int32_t y, int32_t width, int32_t height,
                                        const char* labels, ZorGUIValueCallback changed);
// Chooses a toggle (from 1) without calling the callback.
ZOR_HOST_API void ZorGUIRadioBoxSetToggle(ZorGUIID radioBox, int32_t toggle);
ZOR_HOST_API int32_t ZorGUIRadioBoxGetToggle(ZorGUIID radioBox);
// A check toggle, off at first; changed gets 1 or 0.
ZOR_HOST_API ZorGUIID ZorGUIToggleAdd(ZorGUIID parent, int32_t x, int32_t y, const char* label,
                                      ZorGUIValueCallback changed);
// Sets the toggle without calling the callback.
ZOR_HOST_API void ZorGUIToggleSet(ZorGUIID toggle, bool on);
ZOR_HOST_API bool ZorGUIToggleGet(ZorGUIID toggle);
// An option menu of the lines of `options`; the first is chosen at first.
ZOR_HOST_API ZorGUIID ZorGUIOptionMenuAdd(ZorGUIID parent, int32_t x, int32_t y, int32_t width,
                                          int32_t height, const char* options, ZorGUIValueCallback changed);
// Chooses an option (from 1) without calling the callback.
ZOR_HOST_API void ZorGUIOptionMenuSet(ZorGUIID optionMenu, int32_t option);
ZOR_HOST_API int32_t ZorGUIOptionMenuGet(ZorGUIID optionMenu);

// ---- Lists -------------------------------------------------------------------------------------

// A list of text items; with multiSelection the user may select several.
// selected gets the position last clicked.
ZOR_HOST_API ZorGUIID ZorGUIListAdd(ZorGUIID parent, int32_t x, int32_t y, int32_t width, int32_t height,
                                    bool multiSelection, ZorGUIValueCallback selected);
ZOR_HOST_API void ZorGUIListAppendItem(ZorGUIID list, const char* item);
// Replaces the item at a position (from 1).
ZOR_HOST_API void ZorGUIListReplaceItem(ZorGUIID list, const char* item, int32_t position);
ZOR_HOST_API void ZorGUIListDeleteItemAtPos(ZorGUIID list, int32_t position);
ZOR_HOST_API void ZorGUIListDeleteAllItems(ZorGUIID list);
ZOR_HOST_API int32_t ZorGUIListGetItemCount(ZorGUIID list);
// The item at a position as a host string; null when out of range.
ZOR_HOST_API char* ZorGUIListGetString(ZorGUIID list, int32_t position);
// The selected positions as a new host set (the caller frees it); null on failure.
ZOR_HOST_API ZorSet ZorGUIListGetSelectedItems(ZorGUIID list);
ZOR_HOST_API int32_t ZorGUIListGetSelectedItemCount(ZorGUIID list);
// Selects exactly the positions of the set, without calling the callback.
ZOR_HOST_API void ZorGUIListSetSelectedItems(ZorGUIID list, ZorSet positions);
ZOR_HOST_API void ZorGUIListDeselectAllItems(ZorGUIID list);

// ---- Text fields ---------------------------------------------------------------------------------

// A one-line text field, empty at first; changed gets the text when the user leaves the field.
ZOR_HOST_API ZorGUIID ZorGUITextFieldAdd(ZorGUIID parent, int32_t x, int32_t y, int32_t width, int32_t height,
                                         ZorGUITextCallback changed);
// Sets the text without calling the callback.
ZOR_HOST_API void ZorGUITextFieldSetString(ZorGUIID textField, const char* text);
// The text as a host string.
ZOR_HOST_API char* ZorGUITextFieldGetString(ZorGUIID textField);

}  // extern "C"
