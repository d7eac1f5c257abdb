// The dialog toolkit, driven as a user would drive it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/ZorGUI.h"
#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace {

// A small dialog like a loader's: a radio box, a toggle that the radio box
// makes sensitive, a list with a remove button, a text field that takes only
// digits, and a second modal dialog launched from OK.
ZorGUIID dialog = ZorGUIBadID, radio, toggle, list, removeButton, field, inner = ZorGUIBadID;
std::vector<std::string> calls;  // what the callbacks saw

void onRadio(const int32_t* value) {
    calls.push_back("radio " + std::to_string(*value));
    ZorGUISetSensitivity(toggle, *value == 2);
}
void onToggle(const int32_t* value) {
    calls.push_back("toggle " + std::to_string(*value));
}
void onList(const int32_t* value) {
    calls.push_back("list " + std::to_string(*value));
    ZorGUISetSensitivity(removeButton, true);
}
void onRemove() {
    ZorSet selected = ZorGUIListGetSelectedItems(list);
    for (ZorIndex i = ZorUtilSetGetMemberCount(selected); i >= 1; --i) {
        ZorGUIListDeleteItemAtPos(list, static_cast<int32_t>(ZorUtilSetGetMember(selected, i)));
    }
    ZorUtilSetDealloc(&selected);
    calls.push_back("remove");
}
bool onText(const char* text) {
    calls.push_back(std::string("text ") + text);
    return std::string(text).find_first_not_of("0123456789") == std::string::npos;
}
void onInit() {
    calls.push_back("init");
}
void onInnerOK() {
    calls.push_back("inner ok");
    ZorGUIDialogDrop(inner);
}
void onOK() {
    calls.push_back("ok");
    ZorGUIDialogDrop(dialog);
    if (inner == ZorGUIBadID) {
        inner = ZorGUIDialogCreateModal(ZorGUIMainDialogWindow(), 100, 100, "Inner", nullptr, onInnerOK,
                                        nullptr, nullptr);
    }
    ZorGUIDialogLaunch(inner);  // returns once the inner dialog is dropped
    calls.push_back("after inner");
}
void onCancel() {
    calls.push_back("cancel");
    ZorGUIDialogDrop(dialog);
}
void onHelp() {
    ZorUtilHelp("import_fluent.html", false, 0);
}

void build() {
    if (dialog != ZorGUIBadID)
        return;
    dialog = ZorGUIDialogCreateModal(ZorGUIMainDialogWindow(), 400, 300, "Test Dialog", onInit, onOK,
                                     onCancel, onHelp);
    ZorGUIID frame = ZorGUIFrameAdd(dialog, 0, 0, 100, 100, "Options");
    radio = ZorGUIRadioBoxAdd(frame, 0, 0, 100, 30, "Replace data set\nAdd to current data set", onRadio);
    toggle = ZorGUIToggleAdd(frame, 0, 40, "Assign Strand IDs for Zones", onToggle);
    ZorGUISetSensitivity(toggle, false);
    list = ZorGUIListAdd(dialog, 0, 100, 100, 100, true, onList);
    removeButton = ZorGUIButtonAdd(dialog, 0, 200, 50, 20, "Remove       ", onRemove);
    ZorGUISetSensitivity(removeButton, false);
    field = ZorGUITextFieldAdd(dialog, 0, 230, 50, 20, onText);
}

class HostGUI : public ::testing::Test {
  protected:
    void SetUp() override {
        minihost::resetRecords();
        build();
        calls.clear();
        ZorGUIListDeleteAllItems(list);
        for (const char* item : {"a.cas", "a.dat", "b.dat"})
            ZorGUIListAppendItem(list, item);
        ZorGUIRadioBoxSetToggle(radio, 1);
        ZorGUISetSensitivity(toggle, false);
        ZorGUISetSensitivity(removeButton, false);
    }
    void TearDown() override {
        minihost::setDialogDriver(nullptr);
        minihost::resetRecords();
    }
};

TEST_F(HostGUI, WithoutADriverTheUserClosesTheDialog) {
    ZorGUIDialogLaunch(dialog);
    EXPECT_EQ(calls, (std::vector<std::string>{"init", "cancel"}));
    EXPECT_FALSE(ZorGUIDialogIsUp(dialog));
}

TEST_F(HostGUI, TheDriverWorksTheControlsAndNestedDialogsReturnWhenDropped) {
    minihost::setDialogDriver([](ZorGUIID up, const std::string& title) {
        if (title == "Inner") {
            minihost::pressOK(up);
            return;
        }
        EXPECT_EQ(minihost::findControl(up, "Add to current data set"), radio);
        EXPECT_FALSE(minihost::controlInfo(toggle).usable);
        minihost::chooseRadio(radio, 2);
        EXPECT_TRUE(minihost::controlInfo(toggle).usable);
        minihost::setToggleByUser(minihost::findControl(up, "Assign Strand IDs for Zones"), true);
        minihost::selectListItems(minihost::findControl(up, "list"), {1, 3});
        minihost::pressButton(minihost::findControl(up, "Remove       "));
        EXPECT_TRUE(minihost::enterText(field, "42"));
        EXPECT_FALSE(minihost::enterText(field, "4x"));
        minihost::pressHelp(up);
        minihost::pressOK(up);
    });
    ZorGUIDialogLaunch(dialog);
    EXPECT_EQ(calls, (std::vector<std::string>{"init", "radio 2", "toggle 1", "list 3", "remove", "text 42",
                                               "text 4x", "ok", "inner ok", "after inner"}));
    EXPECT_EQ(ZorGUIRadioBoxGetToggle(radio), 2);
    EXPECT_TRUE(ZorGUIToggleGet(toggle));
    ASSERT_EQ(ZorGUIListGetItemCount(list), 1);
    char* item = ZorGUIListGetString(list, 1);
    EXPECT_STREQ(item, "a.dat");
    ZorUtilStringDealloc(&item);
    char* text = ZorGUITextFieldGetString(field);
    EXPECT_STREQ(text, "42");  // the refused text did not stay
    ZorUtilStringDealloc(&text);
    ASSERT_EQ(minihost::helpCalls().size(), 1u);
    EXPECT_TRUE(minihost::dialogsUp().empty());
}

TEST_F(HostGUI, SettingValuesInCodeCallsNoCallback) {
    ZorGUIToggleSet(toggle, true);
    ZorGUIRadioBoxSetToggle(radio, 2);
    ZorSet selection = ZorUtilSetAlloc(true);
    ZorUtilSetAddMember(selection, 2, true);
    ZorGUIListSetSelectedItems(list, selection);
    ZorUtilSetDealloc(&selection);
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(ZorGUIListGetSelectedItemCount(list), 1);
    ZorGUIListDeleteItemAtPos(list, 1);  // the selection follows its item
    EXPECT_EQ(minihost::controlInfo(list).selected, (std::vector<int32_t>{1}));
}

TEST_F(HostGUI, FormsShowOnePageAndTabsCallOnActivation) {
    static std::vector<int32_t> activated;
    ZorGUIID d = ZorGUIDialogCreateModal(ZorGUIMainDialogWindow(), 10, 10, "Pages", nullptr, nullptr, nullptr,
                                         nullptr);
    ZorGUIID form = ZorGUIFormAdd(d, 0, 0, 10, 10);
    ZorGUIID page1 = ZorGUIFormAddPage(form);
    ZorGUIID page2 = ZorGUIFormAddPage(form);
    ZorGUIID onPage2 = ZorGUIToggleAdd(page2, 0, 0, "Include Particle Data from .dat", nullptr);
    ZorGUIID tab = ZorGUITabAdd(d, 0, 0, 10, 10, [](const int32_t* page) { activated.push_back(*page); });
    ZorGUIID zones = ZorGUITabAddPage(tab, "Zones");
    ZorGUIID variables = ZorGUITabAddPage(tab, "Variables");
    EXPECT_EQ(ZorGUIFormGetShownPage(form), page1);
    EXPECT_EQ(ZorGUITabGetCurrentPage(tab), zones);
    minihost::setDialogDriver([&](ZorGUIID up, const std::string&) {
        EXPECT_FALSE(minihost::controlInfo(onPage2).usable);
        ZorGUIFormShowPage(page2);
        EXPECT_TRUE(minihost::controlInfo(onPage2).usable);
        minihost::activateTabPage(variables);
        ZorGUIDialogDrop(up);
    });
    ZorGUIDialogLaunch(d);
    EXPECT_EQ(activated, (std::vector<int32_t>{variables}));
    EXPECT_EQ(ZorGUITabGetCurrentPage(tab), variables);
    ZorGUIDialogDestroy(&d);
    EXPECT_EQ(d, ZorGUIBadID);
}

TEST(HostGUIDeathTest, WorkingAnInsensitiveControlStopsTheScript) {
    build();
    ZorGUISetSensitivity(toggle, false);
    minihost::setDialogDriver([](ZorGUIID, const std::string&) { minihost::setToggleByUser(toggle, true); });
    EXPECT_DEATH(ZorGUIDialogLaunch(dialog), "the user cannot reach control");
    minihost::setDialogDriver(nullptr);
}

}  // namespace
