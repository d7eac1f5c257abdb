// The host stand-in's own interface, for programs and tests that play the
// host: load an add-on, call its loaders, script the user's answers, and read
// back what the add-on asked the host to do.
//
// The add-on never includes this header; it sees the host only through the
// headers of host/. Everything here is safe to call from any thread unless a
// comment says otherwise.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/ZorTypes.h"

namespace minihost {

// ---- Add-ons -----------------------------------------------------------------

// One call of ZorUtilAddOnRegister.
struct AddOnRecord {
    ZorAddOnID id = nullptr;        // the handle handed to the add-on
    int32_t hostVersionNeeded = 0;  // as the add-on gave it
    std::string name;               // as the add-on gave it
    std::string version;            // as the add-on gave it
    std::string author;             // as the add-on gave it
};

// The entry function of an add-on, InitZorAddOn113.
typedef void (*AddOnEntry)(void);

// Opens the shared library with dlopen and calls its InitZorAddOn113. The
// library stays loaded until the process ends. False, with the reason in
// *error (when given), if the library or the entry cannot be found.
bool loadAddOnLibrary(const std::string& path, std::string* error = nullptr);
// Calls an entry function that is linked into the program (tests that link
// the add-on's static library).
void initAddOn(AddOnEntry entry);
// Every add-on registered so far, in order.
std::vector<AddOnRecord> addOns();

// ---- Loaders -------------------------------------------------------------------

// One call of ZorUtilImportAddLoaderX.
struct LoaderRecord {
    std::string name;                                             // "LoaderName"
    std::string fileNameExtensions;                               // "FileNameExtensions"
    int64_t callbackVersion = 0;                                  // "LoaderCallbackVersion"
    ZorDataSetLoaderCallback callback = nullptr;                  // "LoaderCallback"
    ZorDataSetLoaderSelectedCallback selectedCallback = nullptr;  // "LoaderSelectedCallback"
    bool allowMultiFileSelection = false;                         // "AllowMultiFileSelection"
    bool allowAdvancedOptions = false;                            // "AllowAdvancedOptions"
    bool allowAppending = false;                                  // "AllowAppending"
};

// Every loader registered so far, in order.
std::vector<LoaderRecord> loaders();
// True when a loader of that name was registered; fills *loader when given.
bool findLoader(const std::string& name, LoaderRecord* loader = nullptr);

// Calls the loader's LoaderCallback with a host string list holding the
// instructions, as a macro or a layout would. The list is freed afterwards.
// Aborts when no loader of that name exists (a test or program error).
bool invokeLoader(const std::string& loaderName, const std::vector<std::string>& instructions);
// The same with a list the caller made and still owns (to pass null entries).
bool invokeLoader(const std::string& loaderName, ZorStringList instructions);
// Calls the loader's LoaderSelectedCallback as the host's file dialog does
// after the user chose files. Aborts when no such loader or callback exists.
bool invokeLoaderSelected(const std::string& loaderName, const std::vector<std::string>& fileNames,
                          bool advancedOptions, bool append);

// One call of ZorUtilImportSetLoaderInstr.
struct LoaderInstructionsRecord {
    std::string loaderName;                 // as the add-on gave it
    std::vector<std::string> instructions;  // a copy; a null entry is kept as ""
};
// Every call of ZorUtilImportSetLoaderInstr so far, in order.
std::vector<LoaderInstructionsRecord> loaderInstructions();

// ---- State changes and idle time -------------------------------------------------

// One call of ZorUtilStateChanged by the add-on.
struct StateChangeRecord {
    int32_t code = 0;               // a ZorStateChange
    std::vector<ZorIndex> members;  // for codes 1 and 3: the set's members; else empty
};

// Sends a state change from the host to every registered callback (for
// example 15 when the program quits, 9 for a new layout).
void notifyStateChange(int32_t code, ZorArbParam callData = 0);
// Every state change that the add-on reported with ZorUtilStateChanged.
std::vector<StateChangeRecord> stateChangesReported();
// How many state-change callbacks are registered.
size_t stateChangeCallbackCount();

// Runs the callbacks queued with ZorUtilOnIdleQueueAddCallback, in order,
// including those queued while it runs. Returns how many ran.
size_t runIdleQueue();
// How many callbacks wait in the idle queue.
size_t idleQueueSize();

// ---- The add-on lock, interrupts and switches ------------------------------------

// Takes the add-on lock as the host does around its own calls into an add-on.
void lockAddOn();
void unlockAddOn();
// How often the calling thread holds the add-on lock (0: not at all).
int addOnLockDepth();

// Sets or clears the user's request to interrupt (what Ctrl-C does).
void setInterrupt(bool interrupted);
bool interruptRequested();
// Makes Ctrl-C (SIGINT) set the interrupt switch; a second Ctrl-C while the
// switch is set ends the program as usual.
void installInterruptHandler();

void setBatchMode(bool on);            // ZorUtilMacroIsBatchModeActive; off at start
void setProcessingLayout(bool on);     // ZorUtilStateIsProcessingLayout; off at start
void setLoadOnDemandAllowed(bool on);  // ZorUtilDataSetIsLODAllowed; on at start

// How many ZorUtilDataLoadBegin brackets are open.
int dataLoadDepth();

// ---- Messages ---------------------------------------------------------------------

// One message shown through ZorUtilDialogErrMsg or ZorUtilDialogMessageBox.
// The host records every call, in batch mode too: staying silent in batch
// mode is the caller's business, and a test must be able to see that it did.
struct Message {
    std::string kind;        // "error", "warning", "info" or "question"
    std::string text;        // exactly as given; "" for a null text
    int32_t boxType = -1;    // the ZorMessageBoxType; -1 for ZorUtilDialogErrMsg
    bool answer = true;      // a question's answer (true: yes / OK); true otherwise
    bool batchMode = false;  // whether batch mode was on when it came
};

// Every message so far, in order.
std::vector<Message> messages();
void clearMessages();
// Called with each message as it comes (for a program that prints them), on
// the thread that showed it; null removes the sink.
void setMessageSink(std::function<void(const Message&)> sink);
// Queues the answer to the next question; questions take queued answers first.
void pushAnswer(bool answer);
// The answer to questions when no queued answer is left; true (yes) at start.
void setDefaultAnswer(bool answer);
// How many queued answers are still unused.
size_t pendingAnswers();

// One call of ZorUtilPleaseWait.
struct PleaseWaitRecord {
    std::string text;  // "" for a null text
    bool show = false;
};
std::vector<PleaseWaitRecord> pleaseWaitCalls();

// One call of ZorUtilHelp.
struct HelpRecord {
    std::string helpFileOrURL;
    bool goToWeb = false;
    int32_t helpContext = 0;
};
std::vector<HelpRecord> helpCalls();

// Sets the error that ZorUtilPostLastErrorMessage shows next (the host sets it
// itself when one of its operations fails).
void setLastError(const std::string& text);

// The answers of the host's file choosers: each call of ZorUtilDialogGetFileName
// or ZorUtilDialogGetFileNames takes the next queued choice; with none queued the
// user cancels.
void pushFileChoice(const std::vector<std::string>& fileNames);

// One call of a file chooser.
struct FileChooserRecord {
    int32_t dialogType = 0;
    bool multiple = false;     // ZorUtilDialogGetFileNames
    std::string fileTypeName;  // "" for null
    std::vector<std::string> defaultFileNames;
    std::string defaultFilter;  // "" for null
    bool cancelled = true;      // no choice was queued
};
std::vector<FileChooserRecord> fileChooserCalls();

// ---- Progress -----------------------------------------------------------------------

// Whether progress bars made by createTaskProgressBar draw on stderr. They
// draw only when stderr is a terminal; this switch can turn them off there.
void setProgressBarEnabled(bool on);

// One begin, setText or end of a progress task: what the user would see.
struct ProgressEvent {
    std::string what;       // "begin", "text" or "end"
    std::string text;       // the task's text at that moment
    int depth = 0;          // 0 for the bar itself, 1 for a child, ...
    double fraction = 0.0;  // the bar's fraction done afterwards, 0 to 1
};
// Every progress event since the last clear, in order (all bars).
std::vector<ProgressEvent> progressEvents();
// The fraction done of the most recent bar made by createTaskProgressBar.
double progressFraction();

// ---- The data set and load-on-demand --------------------------------------------------

// Takes the frame's data set away: every registered item's cleanup runs once
// (with the add-on lock held), then listeners hear state change 8.
void deleteDataSet();
// What the host does when it quits: the data set goes (cleanups), then
// listeners hear state change 15, then the temporary files go.
void shutdown();
// Removes the files of every temporary name the host has handed out
// (ZorUtilFileGetTempName): the name itself, the name with ".cas" or ".dat"
// (where loaders put uncompressed copies), and the metadata files beside
// them. Nothing may read them any more: shutdown calls it last.
void removeTemporaryFiles();
// State changes the host itself sent (8 for a data set gone, 19 for solution
// times), in order; resetRecords forgets them.
std::vector<int32_t> hostStateChanges();
// Cleanup callbacks run so far, over all data sets.
int cleanupCount();

// A memory budget for loaded items, in bytes (0, the start value: none). At
// the start of each request made outside a load callback, the oldest loaded
// items are unloaded until the rest fits.
void setMemoryBudget(size_t bytes);
// Whether raw pointers of values and node maps are offered (on at start);
// off, callers must use the getters and setters.
void setRawPointersOffered(bool on);
// Whether node maps of zones made from now on use 64-bit items (off at
// start; zones of more than 2^31 - 1 points always do).
void setWideNodeMaps(bool on);
// Switches a variable of the data set on or off, as the user does in the
// host's data set dialog (ZorUtilVarIsEnabled answers it). False when there is
// no such variable. Variables start enabled.
bool setVariableEnabled(ZorIndex var, bool enabled);

// Asks a loaded item to unload (its unload callback runs; no host lock held).
// False when it was not loaded, has no loader, or the loader refused.
bool unloadValues(ZorIndex zone, ZorIndex var);
bool unloadNodeMap(ZorIndex zone);
bool unloadFaceMap(ZorIndex zone);
bool unloadFaceNeighbors(ZorIndex zone);
// Unloads every loaded item that can be; returns how many did.
size_t unloadAll();

// What happened to one item.
struct ItemStats {
    bool exists = false;     // the zone (and variable) has such an item
    bool hasLoader = false;  // load-on-demand callbacks are registered
    bool loaded = false;     // its storage is there now
    int loads = 0;           // successful load callbacks
    int failedLoads = 0;     // load callbacks that said false
    int unloads = 0;         // unload callbacks that agreed
    int cleanups = 0;        // cleanup callbacks (at most 1)
    size_t bytes = 0;        // storage held now
};
ItemStats valueStats(ZorIndex zone, ZorIndex var);
ItemStats nodeMapStats(ZorIndex zone);
ItemStats faceMapStats(ZorIndex zone);
ItemStats faceNeighborStats(ZorIndex zone);
// The range the host holds for a variable of a zone (given to it, or computed),
// without loading the values; false when it holds none or there is no such item.
bool valueRange(ZorIndex zone, ZorIndex var, double* minimum, double* maximum);
// The counts of the ZorUtilDataValueArraySetByRef calls on a variable of a
// zone since its storage was last made, in order (a call with no values
// too); empty when there is no such item.
std::vector<int64_t> valueArrayWrites(ZorIndex zone, ZorIndex var);
// Bytes of storage of all loaded items of the data set.
size_t loadedBytes();

// ---- The dialog toolkit, from the user's side ---------------------------------------------
//
// Launching a modal dialog runs its init callback and then the dialog driver,
// which acts as the user with the calls below. A dialog the driver leaves up
// is closed as by its window's close box (cancel callback). Actions on a
// control the user cannot reach (insensitive, hidden, or its dialog down)
// stop the program, as they point at a wrong script.

// The driver, called with each modal dialog as it is launched (null: the user
// closes every dialog at once).
void setDialogDriver(std::function<void(ZorGUIID dialog, const std::string& title)> driver);
// The dialogs shown now.
std::vector<ZorGUIID> dialogsUp();
// The first dialog of that title; ZorGUIBadID when none.
ZorGUIID findDialog(const std::string& title);
// The `which`-th control (from 1, in order of making) of a dialog whose label
// (title, text, toggle or option) is `label`; lists are found by "list" and
// text fields by "textfield". ZorGUIBadID when none.
ZorGUIID findControl(ZorGUIID dialog, const std::string& label, int which = 1);

// What a control shows.
struct ControlInfo {
    std::string kind;   // "dialog", "frame", "form", "page", "tab", "tabpage", "label", "button",
                        // "radiobox", "toggle", "optionmenu", "list" or "textfield"
    std::string label;  // title, label or text
    ZorGUIID parent = ZorGUIBadID;
    std::vector<std::string> choices;  // toggles, options or list items
    int32_t value = 0;                 // toggle or option from 1; toggle 0/1; shown page
    std::vector<int32_t> selected;     // list positions, rising
    std::string text;                  // text field
    bool sensitive = true;
    bool visible = true;
    bool usable = false;  // the user can reach it now
};
ControlInfo controlInfo(ZorGUIID control);

// The user's actions; each calls the control's callback.
void pressButton(ZorGUIID button);
void chooseRadio(ZorGUIID radioBox, int32_t toggle);
void setToggleByUser(ZorGUIID toggle, bool on);
void chooseOption(ZorGUIID optionMenu, int32_t option);
// Selects exactly these positions; the callback gets the last one.
void selectListItems(ZorGUIID list, const std::vector<int32_t>& positions);
// Types a text and leaves the field; false (old text back) when the callback refused it.
bool enterText(ZorGUIID textField, const std::string& text);
// Brings a tab page forward.
void activateTabPage(ZorGUIID page);
// A dialog's OK, Cancel and Help buttons.
void pressOK(ZorGUIID dialog);
void pressCancel(ZorGUIID dialog);
void pressHelp(ZorGUIID dialog);

// ---- Argument lists, for the host's own reading -------------------------------------

enum class ArgType { None, Int, Double, String, StringList, Set, Array, Function, ArbParam };

// The type of the argument of that name (the first, if several), None if absent.
ArgType argType(ZorArgList args, const char* name);
// The value as the type says; false when absent or of another type. Strings
// are the list's own (valid while the list lives).
bool argInt(ZorArgList args, const char* name, int64_t* value);
bool argDouble(ZorArgList args, const char* name, double* value);
bool argString(ZorArgList args, const char* name, const char** value);
bool argStringList(ZorArgList args, const char* name, ZorStringList* value);
bool argSet(ZorArgList args, const char* name, ZorSet* value);
bool argArray(ZorArgList args, const char* name, const void** value);
bool argFunction(ZorArgList args, const char* name, const void** value);
bool argArbParam(ZorArgList args, const char* name, ZorArbParam* value);
// The names in the list, in order of appending.
std::vector<std::string> argNames(ZorArgList args);

// ---- Helpers for tests and programs ---------------------------------------------------

// A host string list holding the strings; the caller frees it.
ZorStringList makeStringList(const std::vector<std::string>& strings);
// The strings of a host list; a null entry gives "".
std::vector<std::string> stringListToVector(ZorStringList list);
// The members of a host set in rising order.
std::vector<ZorIndex> setMembers(ZorSet set);

// Forgets everything recorded (messages, calls, events, scripted answers and
// choices, state changes reported) and sets the switches back to their start
// values; the frame's plot type goes back to sketch. Registered add-ons,
// loaders, state-change callbacks, the message sink and the idle queue stay.
void resetRecords();

// Prints "minihost: <what>" on stderr and aborts: the host's answer to a
// misuse that a real host would not survive either.
[[noreturn]] void fatal(const std::string& what);

}  // namespace minihost
