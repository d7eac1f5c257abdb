// The dialog toolkit: dialogs and controls with state and callbacks, which a
// program or a test drives as the user would (MiniHost.h).
//
// Launching a modal dialog shows it, runs its init callback, then hands it to
// the dialog driver (the stand-in for the user). When the driver returns and
// the dialog is still up, the user closed its window: the cancel callback runs,
// and the dialog is dropped if that left it up. Without a driver the user
// closes every dialog at once. Callbacks run without any host lock held.
#include <algorithm>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "host/ZorGUI.h"
#include "host/ZorUtil.h"
#include "minihost/DataModel.h"
#include "minihost/Internal.h"
#include "minihost/MiniHost.h"

namespace {

struct Control {
    std::string kind;  // "dialog", "frame", "form", "page", "tab", "tabpage", "label", "button",
                       // "radiobox", "toggle", "optionmenu", "list", "textfield"
    ZorGUIID parent = ZorGUIBadID;
    std::string label;                 // title, label, button text, tab page name or label text
    std::vector<std::string> choices;  // radio box toggles, option menu options, list items
    int32_t value = 0;           // radio toggle or option (from 1), toggle 0/1, form's shown page, tab's page
    std::set<int32_t> selected;  // list positions
    bool multiSelection = false;
    std::string text;  // text field
    bool sensitive = true;
    bool visible = true;
    bool up = false;                        // dialogs
    ZorGUIActionCallback action = nullptr;  // button press
    ZorGUIValueCallback valueChanged = nullptr;
    ZorGUITextCallback textChanged = nullptr;
    ZorGUIActionCallback init = nullptr, ok = nullptr, cancel = nullptr, help = nullptr;  // dialogs
};

std::recursive_mutex guiMutex;  // guards the table; never held across a callback
std::map<ZorGUIID, Control> controls;
ZorGUIID nextId = 2;  // 1 is the main window
constexpr ZorGUIID mainWindow = 1;
std::function<void(ZorGUIID, const std::string&)> driver;

std::vector<std::string> splitLines(const char* text) {
    std::vector<std::string> lines;
    if (text == nullptr)
        return lines;
    std::stringstream in(text);
    std::string line;
    while (std::getline(in, line))
        lines.push_back(line);
    return lines;
}

// The control, or a loud stop for an id that names none.
Control& get(ZorGUIID id, const char* call) {
    auto at = controls.find(id);
    if (at == controls.end())
        minihost::fatal(std::string(call) + ": no control " + std::to_string(id));
    return at->second;
}

Control& getKind(ZorGUIID id, const char* kind, const char* call) {
    Control& c = get(id, call);
    if (c.kind != kind) {
        minihost::fatal(std::string(call) + ": control " + std::to_string(id) + " is a " + c.kind +
                        ", not a " + kind);
    }
    return c;
}

ZorGUIID add(ZorGUIID parent, Control control, const char* call) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    if (parent != mainWindow)
        get(parent, call);
    control.parent = parent;
    ZorGUIID id = nextId++;
    controls[id] = std::move(control);
    return id;
}

// The dialog a control belongs to.
ZorGUIID dialogOf(ZorGUIID id) {
    while (id != mainWindow && id != ZorGUIBadID) {
        Control& c = get(id, "dialogOf");
        if (c.kind == "dialog")
            return id;
        id = c.parent;
    }
    return ZorGUIBadID;
}

// Whether the user can work the control now: its dialog is up, and it and
// every parent are sensitive and shown (a form page only while shown, a tab
// page only while in front).
bool usable(ZorGUIID id) {
    ZorGUIID dialog = dialogOf(id);
    if (dialog == ZorGUIBadID || !get(dialog, "usable").up)
        return false;
    for (ZorGUIID at = id; at != mainWindow && at != ZorGUIBadID;) {
        Control& c = get(at, "usable");
        if (!c.sensitive || !c.visible)
            return false;
        if (c.kind == "page" && get(c.parent, "usable").value != at)
            return false;
        if (c.kind == "tabpage" && get(c.parent, "usable").value != at)
            return false;
        at = c.parent;
    }
    return true;
}

void requireUsable(ZorGUIID id, const char* action) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    if (!usable(id)) {
        minihost::fatal(std::string(action) + ": the user cannot reach control " + std::to_string(id) + " (" +
                        get(id, action).kind + " \"" + get(id, action).label + "\")");
    }
}

}  // namespace

extern "C" {

ZorGUIID ZorGUIMainDialogWindow(void) {
    return mainWindow;
}

ZorGUIID ZorGUIDialogCreateModal(ZorGUIID parent, int32_t, int32_t, const char* title,
                                 ZorGUIActionCallback init, ZorGUIActionCallback ok,
                                 ZorGUIActionCallback cancel, ZorGUIActionCallback help) {
    Control c;
    c.kind = "dialog";
    c.label = title == nullptr ? "" : title;
    c.init = init;
    c.ok = ok;
    c.cancel = cancel;
    c.help = help;
    return add(parent, c, "ZorGUIDialogCreateModal");
}

void ZorGUIDialogLaunch(ZorGUIID dialog) {
    ZorGUIActionCallback init;
    std::string title;
    std::function<void(ZorGUIID, const std::string&)> drive;
    {
        std::lock_guard<std::recursive_mutex> guard(guiMutex);
        Control& c = getKind(dialog, "dialog", "ZorGUIDialogLaunch");
        if (c.up)
            minihost::fatal("ZorGUIDialogLaunch: dialog \"" + c.label + "\" is up already");
        c.up = true;
        init = c.init;
        title = c.label;
        drive = driver;
    }
    minihost::data::hostStateChange(ZorStateChange_ModalDialogLaunch);
    if (init != nullptr)
        init();
    if (drive && ZorGUIDialogIsUp(dialog))
        drive(dialog, title);
    if (ZorGUIDialogIsUp(dialog)) {  // the user closed the window
        ZorGUIActionCallback cancel;
        {
            std::lock_guard<std::recursive_mutex> guard(guiMutex);
            cancel = get(dialog, "ZorGUIDialogLaunch").cancel;
        }
        if (cancel != nullptr)
            cancel();
        if (ZorGUIDialogIsUp(dialog))
            ZorGUIDialogDrop(dialog);
    }
}

void ZorGUIDialogDrop(ZorGUIID dialog) {
    bool wasUp;
    {
        std::lock_guard<std::recursive_mutex> guard(guiMutex);
        Control& c = getKind(dialog, "dialog", "ZorGUIDialogDrop");
        wasUp = c.up;
        c.up = false;
    }
    if (wasUp)
        minihost::data::hostStateChange(ZorStateChange_ModalDialogDismiss);
}

bool ZorGUIDialogIsUp(ZorGUIID dialog) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    auto at = controls.find(dialog);
    return at != controls.end() && at->second.kind == "dialog" && at->second.up;
}

void ZorGUIDialogDestroy(ZorGUIID* dialog) {
    if (dialog == nullptr || *dialog == ZorGUIBadID)
        return;
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    getKind(*dialog, "dialog", "ZorGUIDialogDestroy");
    std::vector<ZorGUIID> gone;
    for (auto& entry : controls) {
        if (dialogOf(entry.first) == *dialog)
            gone.push_back(entry.first);
    }
    for (ZorGUIID id : gone)
        controls.erase(id);
    *dialog = ZorGUIBadID;
}

void ZorGUISetSensitivity(ZorGUIID control, bool sensitive) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    get(control, "ZorGUISetSensitivity").sensitive = sensitive;
}

bool ZorGUIGetSensitivity(ZorGUIID control) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    return get(control, "ZorGUIGetSensitivity").sensitive;
}

void ZorGUISetVisibility(ZorGUIID control, bool visible) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    get(control, "ZorGUISetVisibility").visible = visible;
}

bool ZorGUIGetVisibility(ZorGUIID control) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    return get(control, "ZorGUIGetVisibility").visible;
}

ZorGUIID ZorGUIFrameAdd(ZorGUIID parent, int32_t, int32_t, int32_t, int32_t, const char* label) {
    Control c;
    c.kind = "frame";
    c.label = label == nullptr ? "" : label;
    return add(parent, c, "ZorGUIFrameAdd");
}

ZorGUIID ZorGUIFormAdd(ZorGUIID parent, int32_t, int32_t, int32_t, int32_t) {
    Control c;
    c.kind = "form";
    c.value = ZorGUIBadID;
    return add(parent, c, "ZorGUIFormAdd");
}

ZorGUIID ZorGUIFormAddPage(ZorGUIID form) {
    Control c;
    c.kind = "page";
    ZorGUIID page = add(form, c, "ZorGUIFormAddPage");
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    Control& f = getKind(form, "form", "ZorGUIFormAddPage");
    if (f.value == ZorGUIBadID)
        f.value = page;
    return page;
}

void ZorGUIFormShowPage(ZorGUIID page) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    Control& p = getKind(page, "page", "ZorGUIFormShowPage");
    get(p.parent, "ZorGUIFormShowPage").value = page;
}

ZorGUIID ZorGUIFormGetShownPage(ZorGUIID form) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    return getKind(form, "form", "ZorGUIFormGetShownPage").value;
}

ZorGUIID ZorGUITabAdd(ZorGUIID parent, int32_t, int32_t, int32_t, int32_t, ZorGUIValueCallback activate) {
    Control c;
    c.kind = "tab";
    c.value = ZorGUIBadID;
    c.valueChanged = activate;
    return add(parent, c, "ZorGUITabAdd");
}

ZorGUIID ZorGUITabAddPage(ZorGUIID tab, const char* name) {
    Control c;
    c.kind = "tabpage";
    c.label = name == nullptr ? "" : name;
    ZorGUIID page = add(tab, c, "ZorGUITabAddPage");
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    Control& t = getKind(tab, "tab", "ZorGUITabAddPage");
    if (t.value == ZorGUIBadID)
        t.value = page;
    return page;
}

void ZorGUITabSetCurrentPage(ZorGUIID tab, ZorGUIID page) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    Control& t = getKind(tab, "tab", "ZorGUITabSetCurrentPage");
    if (getKind(page, "tabpage", "ZorGUITabSetCurrentPage").parent != tab) {
        minihost::fatal("ZorGUITabSetCurrentPage: the page is not of that tab control");
    }
    t.value = page;
}

ZorGUIID ZorGUITabGetCurrentPage(ZorGUIID tab) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    return getKind(tab, "tab", "ZorGUITabGetCurrentPage").value;
}

ZorGUIID ZorGUILabelAdd(ZorGUIID parent, int32_t, int32_t, const char* text) {
    Control c;
    c.kind = "label";
    c.label = text == nullptr ? "" : text;
    return add(parent, c, "ZorGUILabelAdd");
}

void ZorGUILabelSetText(ZorGUIID label, const char* text) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    getKind(label, "label", "ZorGUILabelSetText").label = text == nullptr ? "" : text;
}

ZorGUIID ZorGUIButtonAdd(ZorGUIID parent, int32_t, int32_t, int32_t, int32_t, const char* label,
                         ZorGUIActionCallback pressed) {
    Control c;
    c.kind = "button";
    c.label = label == nullptr ? "" : label;
    c.action = pressed;
    return add(parent, c, "ZorGUIButtonAdd");
}

ZorGUIID ZorGUIRadioBoxAdd(ZorGUIID parent, int32_t, int32_t, int32_t, int32_t, const char* labels,
                           ZorGUIValueCallback changed) {
    Control c;
    c.kind = "radiobox";
    c.choices = splitLines(labels);
    c.value = 1;
    c.valueChanged = changed;
    return add(parent, c, "ZorGUIRadioBoxAdd");
}

void ZorGUIRadioBoxSetToggle(ZorGUIID radioBox, int32_t toggle) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    Control& c = getKind(radioBox, "radiobox", "ZorGUIRadioBoxSetToggle");
    if (toggle < 1 || toggle > static_cast<int32_t>(c.choices.size())) {
        minihost::fatal("ZorGUIRadioBoxSetToggle: no toggle " + std::to_string(toggle));
    }
    c.value = toggle;
}

int32_t ZorGUIRadioBoxGetToggle(ZorGUIID radioBox) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    return getKind(radioBox, "radiobox", "ZorGUIRadioBoxGetToggle").value;
}

ZorGUIID ZorGUIToggleAdd(ZorGUIID parent, int32_t, int32_t, const char* label, ZorGUIValueCallback changed) {
    Control c;
    c.kind = "toggle";
    c.label = label == nullptr ? "" : label;
    c.valueChanged = changed;
    return add(parent, c, "ZorGUIToggleAdd");
}

void ZorGUIToggleSet(ZorGUIID toggle, bool on) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    getKind(toggle, "toggle", "ZorGUIToggleSet").value = on ? 1 : 0;
}

bool ZorGUIToggleGet(ZorGUIID toggle) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    return getKind(toggle, "toggle", "ZorGUIToggleGet").value != 0;
}

ZorGUIID ZorGUIOptionMenuAdd(ZorGUIID parent, int32_t, int32_t, int32_t, int32_t, const char* options,
                             ZorGUIValueCallback changed) {
    Control c;
    c.kind = "optionmenu";
    c.choices = splitLines(options);
    c.value = 1;
    c.valueChanged = changed;
    return add(parent, c, "ZorGUIOptionMenuAdd");
}

void ZorGUIOptionMenuSet(ZorGUIID optionMenu, int32_t option) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    Control& c = getKind(optionMenu, "optionmenu", "ZorGUIOptionMenuSet");
    if (option < 1 || option > static_cast<int32_t>(c.choices.size())) {
        minihost::fatal("ZorGUIOptionMenuSet: no option " + std::to_string(option));
    }
    c.value = option;
}

int32_t ZorGUIOptionMenuGet(ZorGUIID optionMenu) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    return getKind(optionMenu, "optionmenu", "ZorGUIOptionMenuGet").value;
}

ZorGUIID ZorGUIListAdd(ZorGUIID parent, int32_t, int32_t, int32_t, int32_t, bool multiSelection,
                       ZorGUIValueCallback selected) {
    Control c;
    c.kind = "list";
    c.multiSelection = multiSelection;
    c.valueChanged = selected;
    return add(parent, c, "ZorGUIListAdd");
}

void ZorGUIListAppendItem(ZorGUIID list, const char* item) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    getKind(list, "list", "ZorGUIListAppendItem").choices.push_back(item == nullptr ? "" : item);
}

void ZorGUIListReplaceItem(ZorGUIID list, const char* item, int32_t position) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    Control& c = getKind(list, "list", "ZorGUIListReplaceItem");
    if (position < 1 || position > static_cast<int32_t>(c.choices.size())) {
        minihost::fatal("ZorGUIListReplaceItem: no item " + std::to_string(position));
    }
    c.choices[static_cast<size_t>(position - 1)] = item == nullptr ? "" : item;
}

void ZorGUIListDeleteItemAtPos(ZorGUIID list, int32_t position) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    Control& c = getKind(list, "list", "ZorGUIListDeleteItemAtPos");
    if (position < 1 || position > static_cast<int32_t>(c.choices.size())) {
        minihost::fatal("ZorGUIListDeleteItemAtPos: no item " + std::to_string(position));
    }
    c.choices.erase(c.choices.begin() + (position - 1));
    std::set<int32_t> moved;  // the selection follows its items
    for (int32_t s : c.selected) {
        if (s < position)
            moved.insert(s);
        if (s > position)
            moved.insert(s - 1);
    }
    c.selected = moved;
}

void ZorGUIListDeleteAllItems(ZorGUIID list) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    Control& c = getKind(list, "list", "ZorGUIListDeleteAllItems");
    c.choices.clear();
    c.selected.clear();
}

int32_t ZorGUIListGetItemCount(ZorGUIID list) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    return static_cast<int32_t>(getKind(list, "list", "ZorGUIListGetItemCount").choices.size());
}

char* ZorGUIListGetString(ZorGUIID list, int32_t position) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    Control& c = getKind(list, "list", "ZorGUIListGetString");
    if (position < 1 || position > static_cast<int32_t>(c.choices.size()))
        return nullptr;
    return minihost::detail::hostStringCopy(c.choices[static_cast<size_t>(position - 1)]);
}

ZorSet ZorGUIListGetSelectedItems(ZorGUIID list) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    Control& c = getKind(list, "list", "ZorGUIListGetSelectedItems");
    ZorSet set = ZorUtilSetAlloc(false);
    if (set == nullptr)
        return nullptr;
    for (int32_t s : c.selected)
        ZorUtilSetAddMember(set, s, false);
    return set;
}

int32_t ZorGUIListGetSelectedItemCount(ZorGUIID list) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    return static_cast<int32_t>(getKind(list, "list", "ZorGUIListGetSelectedItemCount").selected.size());
}

void ZorGUIListSetSelectedItems(ZorGUIID list, ZorSet positions) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    Control& c = getKind(list, "list", "ZorGUIListSetSelectedItems");
    c.selected.clear();
    for (ZorIndex p : minihost::setMembers(positions)) {
        if (p >= 1 && p <= static_cast<ZorIndex>(c.choices.size()))
            c.selected.insert(static_cast<int32_t>(p));
    }
}

void ZorGUIListDeselectAllItems(ZorGUIID list) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    getKind(list, "list", "ZorGUIListDeselectAllItems").selected.clear();
}

ZorGUIID ZorGUITextFieldAdd(ZorGUIID parent, int32_t, int32_t, int32_t, int32_t, ZorGUITextCallback changed) {
    Control c;
    c.kind = "textfield";
    c.textChanged = changed;
    return add(parent, c, "ZorGUITextFieldAdd");
}

void ZorGUITextFieldSetString(ZorGUIID textField, const char* text) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    getKind(textField, "textfield", "ZorGUITextFieldSetString").text = text == nullptr ? "" : text;
}

char* ZorGUITextFieldGetString(ZorGUIID textField) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    return minihost::detail::hostStringCopy(getKind(textField, "textfield", "ZorGUITextFieldGetString").text);
}

}  // extern "C"

// ---- The user's side ---------------------------------------------------------------------

namespace minihost {

void setDialogDriver(std::function<void(ZorGUIID dialog, const std::string& title)> dialogDriver) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    driver = std::move(dialogDriver);
}

std::vector<ZorGUIID> dialogsUp() {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    std::vector<ZorGUIID> up;
    for (auto& entry : controls) {
        if (entry.second.kind == "dialog" && entry.second.up)
            up.push_back(entry.first);
    }
    return up;
}

ZorGUIID findDialog(const std::string& title) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    for (auto& entry : controls) {
        if (entry.second.kind == "dialog" && entry.second.label == title)
            return entry.first;
    }
    return ZorGUIBadID;
}

ZorGUIID findControl(ZorGUIID dialog, const std::string& label, int which) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    int seen = 0;
    for (auto& entry : controls) {
        const Control& c = entry.second;
        if (entry.first == dialog || dialogOf(entry.first) != dialog)
            continue;
        bool match =
            c.label == label || std::find(c.choices.begin(), c.choices.end(), label) != c.choices.end();
        if (c.kind == "list")
            match = label == "list";
        if (c.kind == "textfield")
            match = label == "textfield";
        if (match && ++seen == which)
            return entry.first;
    }
    return ZorGUIBadID;
}

ControlInfo controlInfo(ZorGUIID control) {
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    const Control& c = get(control, "minihost::controlInfo");
    ControlInfo info;
    info.kind = c.kind;
    info.label = c.label;
    info.parent = c.parent;
    info.choices = c.choices;
    info.value = c.value;
    info.selected.assign(c.selected.begin(), c.selected.end());
    info.text = c.text;
    info.sensitive = c.sensitive;
    info.visible = c.visible;
    info.usable = usable(control);
    return info;
}

void pressButton(ZorGUIID button) {
    requireUsable(button, "minihost::pressButton");
    ZorGUIActionCallback action;
    {
        std::lock_guard<std::recursive_mutex> guard(guiMutex);
        action = getKind(button, "button", "minihost::pressButton").action;
    }
    if (action != nullptr)
        action();
}

namespace {

// Sets a value as the user does and calls the control's callback.
void userValue(ZorGUIID control, const char* kind, int32_t value, const char* action) {
    requireUsable(control, action);
    ZorGUIValueCallback changed;
    {
        std::lock_guard<std::recursive_mutex> guard(guiMutex);
        Control& c = getKind(control, kind, action);
        if ((c.kind == "radiobox" || c.kind == "optionmenu") &&
            (value < 1 || value > static_cast<int32_t>(c.choices.size()))) {
            fatal(std::string(action) + ": no choice " + std::to_string(value));
        }
        c.value = value;
        changed = c.valueChanged;
    }
    if (changed != nullptr)
        changed(&value);
}

// Runs a dialog's OK, cancel or help callback.
void dialogAction(ZorGUIID dialog, ZorGUIActionCallback Control::*which, const char* action) {
    ZorGUIActionCallback callback;
    {
        std::lock_guard<std::recursive_mutex> guard(guiMutex);
        Control& c = getKind(dialog, "dialog", action);
        if (!c.up)
            fatal(std::string(action) + ": dialog \"" + c.label + "\" is not up");
        callback = c.*which;
    }
    if (callback == nullptr)
        fatal(std::string(action) + ": the dialog has no such button");
    callback();
}

}  // namespace

void chooseRadio(ZorGUIID radioBox, int32_t toggle) {
    userValue(radioBox, "radiobox", toggle, "minihost::chooseRadio");
}
void setToggleByUser(ZorGUIID toggle, bool on) {
    userValue(toggle, "toggle", on ? 1 : 0, "minihost::setToggleByUser");
}
void chooseOption(ZorGUIID optionMenu, int32_t option) {
    userValue(optionMenu, "optionmenu", option, "minihost::chooseOption");
}

void selectListItems(ZorGUIID list, const std::vector<int32_t>& positions) {
    requireUsable(list, "minihost::selectListItems");
    ZorGUIValueCallback changed;
    int32_t last = 0;
    {
        std::lock_guard<std::recursive_mutex> guard(guiMutex);
        Control& c = getKind(list, "list", "minihost::selectListItems");
        if (positions.size() > 1 && !c.multiSelection)
            fatal("minihost::selectListItems: the list takes one item");
        c.selected.clear();
        for (int32_t p : positions) {
            if (p < 1 || p > static_cast<int32_t>(c.choices.size())) {
                fatal("minihost::selectListItems: no item " + std::to_string(p));
            }
            c.selected.insert(p);
            last = p;
        }
        changed = c.valueChanged;
    }
    if (changed != nullptr && last != 0)
        changed(&last);
}

bool enterText(ZorGUIID textField, const std::string& text) {
    requireUsable(textField, "minihost::enterText");
    ZorGUITextCallback changed;
    std::string before;
    {
        std::lock_guard<std::recursive_mutex> guard(guiMutex);
        Control& c = getKind(textField, "textfield", "minihost::enterText");
        before = c.text;
        c.text = text;
        changed = c.textChanged;
    }
    if (changed == nullptr || changed(text.c_str()))
        return true;
    std::lock_guard<std::recursive_mutex> guard(guiMutex);
    get(textField, "minihost::enterText").text = before;  // refused: the old text comes back
    return false;
}

void activateTabPage(ZorGUIID page) {
    requireUsable(get(page, "minihost::activateTabPage").parent, "minihost::activateTabPage");
    ZorGUIValueCallback activate;
    int32_t id = page;
    {
        std::lock_guard<std::recursive_mutex> guard(guiMutex);
        Control& p = getKind(page, "tabpage", "minihost::activateTabPage");
        Control& tab = get(p.parent, "minihost::activateTabPage");
        tab.value = page;
        activate = tab.valueChanged;
    }
    if (activate != nullptr)
        activate(&id);
}

void pressOK(ZorGUIID dialog) {
    dialogAction(dialog, &Control::ok, "minihost::pressOK");
}
void pressCancel(ZorGUIID dialog) {
    dialogAction(dialog, &Control::cancel, "minihost::pressCancel");
}
void pressHelp(ZorGUIID dialog) {
    dialogAction(dialog, &Control::help, "minihost::pressHelp");
}

}  // namespace minihost
