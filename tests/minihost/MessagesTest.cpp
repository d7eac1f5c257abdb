// Dialog messages, scripted answers, busy notices, help and file choosers.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace {

class HostMessages : public ::testing::Test {
  protected:
    void SetUp() override { minihost::resetRecords(); }
    void TearDown() override {
        minihost::setMessageSink(nullptr);
        minihost::resetRecords();
    }
};

TEST_F(HostMessages, AreRecordedWithKindAndExactText) {
    ZorUtilDialogErrMsg("Error loading file a.cas");
    EXPECT_TRUE(ZorUtilDialogMessageBox("  two spaces  and a\nnewline", ZorMessageBoxType_Warning));
    EXPECT_TRUE(ZorUtilDialogMessageBox("Error loading particle file p.xml. This file will be skipped.",
                                        ZorMessageBoxType_Information));
    EXPECT_TRUE(ZorUtilDialogMessageBox("boxed error", ZorMessageBoxType_Error));
    std::vector<minihost::Message> shown = minihost::messages();
    ASSERT_EQ(shown.size(), 4u);
    EXPECT_EQ(shown[0].kind, "error");
    EXPECT_EQ(shown[0].text, "Error loading file a.cas");
    EXPECT_EQ(shown[0].boxType, -1);
    EXPECT_EQ(shown[1].kind, "warning");
    EXPECT_EQ(shown[1].text, "  two spaces  and a\nnewline");
    EXPECT_EQ(shown[2].kind, "info");
    EXPECT_EQ(shown[2].text, "Error loading particle file p.xml. This file will be skipped.");
    EXPECT_EQ(shown[3].kind, "error");
    EXPECT_EQ(shown[3].boxType, ZorMessageBoxType_Error);
    minihost::clearMessages();
    EXPECT_TRUE(minihost::messages().empty());
}

TEST_F(HostMessages, QuestionsTakeScriptedAnswersThenTheDefault) {
    minihost::pushAnswer(false);
    minihost::pushAnswer(true);
    EXPECT_EQ(minihost::pendingAnswers(), 2u);
    EXPECT_FALSE(ZorUtilDialogMessageBox("first?", ZorMessageBoxType_YesNo));
    EXPECT_TRUE(ZorUtilDialogMessageBox("second?", ZorMessageBoxType_Question));
    EXPECT_TRUE(ZorUtilDialogMessageBox("third?", ZorMessageBoxType_YesNoCancel));  // default: yes
    minihost::setDefaultAnswer(false);
    EXPECT_FALSE(ZorUtilDialogMessageBox("fourth?", ZorMessageBoxType_WarningOkCancel));
    std::vector<minihost::Message> shown = minihost::messages();
    ASSERT_EQ(shown.size(), 4u);
    for (const minihost::Message& message : shown)
        EXPECT_EQ(message.kind, "question");
    EXPECT_FALSE(shown[0].answer);
    EXPECT_TRUE(shown[1].answer);
    EXPECT_TRUE(shown[2].answer);
    EXPECT_FALSE(shown[3].answer);
    EXPECT_EQ(shown[3].text, "fourth?");
}

TEST_F(HostMessages, AnInformationBoxUsesNoScriptedAnswer) {
    minihost::pushAnswer(false);
    EXPECT_TRUE(ZorUtilDialogMessageBox("note", ZorMessageBoxType_Information));
    EXPECT_EQ(minihost::pendingAnswers(), 1u);
}

TEST_F(HostMessages, BatchModeIsRecordedNotSuppressed) {
    minihost::setBatchMode(true);
    ZorUtilDialogMessageBox("a warning", ZorMessageBoxType_Warning);
    std::vector<minihost::Message> shown = minihost::messages();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_TRUE(shown[0].batchMode);
}

TEST_F(HostMessages, TheSinkSeesEachMessageAsItComes) {
    std::vector<std::string> seen;
    minihost::setMessageSink([&](const minihost::Message& m) { seen.push_back(m.kind + ": " + m.text); });
    ZorUtilDialogErrMsg("one");
    EXPECT_EQ(seen, (std::vector<std::string>{"error: one"}));
    ZorUtilDialogMessageBox("two", ZorMessageBoxType_Warning);
    EXPECT_EQ(seen, (std::vector<std::string>{"error: one", "warning: two"}));
}

TEST_F(HostMessages, PostLastErrorShowsTheHostsErrorOnce) {
    ZorUtilPostLastErrorMessage();
    EXPECT_TRUE(minihost::messages().empty());
    minihost::setLastError("Data set could not be created.");
    ZorUtilPostLastErrorMessage();
    ZorUtilPostLastErrorMessage();
    std::vector<minihost::Message> shown = minihost::messages();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].kind, "error");
    EXPECT_EQ(shown[0].text, "Data set could not be created.");
}

TEST_F(HostMessages, PleaseWaitAndHelpAreRecorded) {
    ZorUtilPleaseWait("Loading Fluent data...", true);
    ZorUtilPleaseWait(nullptr, false);
    std::vector<minihost::PleaseWaitRecord> waits = minihost::pleaseWaitCalls();
    ASSERT_EQ(waits.size(), 2u);
    EXPECT_EQ(waits[0].text, "Loading Fluent data...");
    EXPECT_TRUE(waits[0].show);
    EXPECT_EQ(waits[1].text, "");
    EXPECT_FALSE(waits[1].show);
    EXPECT_TRUE(ZorUtilHelp("import_fluent.html", false, 0));
    std::vector<minihost::HelpRecord> helps = minihost::helpCalls();
    ASSERT_EQ(helps.size(), 1u);
    EXPECT_EQ(helps[0].helpFileOrURL, "import_fluent.html");
}

TEST_F(HostMessages, FileChoosersTakeScriptedChoicesOrCancel) {
    char* name = nullptr;
    EXPECT_FALSE(ZorUtilDialogGetFileName(1, &name, "Case", "a.cas", "*.cas"));
    EXPECT_EQ(name, nullptr);
    minihost::pushFileChoice({"b.cas"});
    ASSERT_TRUE(ZorUtilDialogGetFileName(1, &name, "Case", "a.cas", "*.cas"));
    EXPECT_STREQ(name, "b.cas");
    ZorUtilStringDealloc(&name);
    minihost::pushFileChoice({"c.cas", "c.dat"});
    ZorStringList names = nullptr;
    ASSERT_TRUE(ZorUtilDialogGetFileNames(2, &names, "Case and Data", nullptr, "*.cas *.*dat"));
    EXPECT_EQ(minihost::stringListToVector(names), (std::vector<std::string>{"c.cas", "c.dat"}));
    ZorUtilStringListDealloc(&names);
    std::vector<minihost::FileChooserRecord> calls = minihost::fileChooserCalls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_TRUE(calls[0].cancelled);
    EXPECT_EQ(calls[1].defaultFileNames, (std::vector<std::string>{"a.cas"}));
    EXPECT_FALSE(calls[2].cancelled);
    EXPECT_TRUE(calls[2].multiple);
    EXPECT_EQ(calls[2].fileTypeName, "Case and Data");
}

TEST(HostMessagesDeathTest, UnknownBoxTypeAborts) {
    EXPECT_DEATH(ZorUtilDialogMessageBox("x", 42),
                 "minihost: ZorUtilDialogMessageBox called with the unknown box type 42");
}

}  // namespace
