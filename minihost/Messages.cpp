// Dialog messages, busy notices, help requests and file choosers.
//
// Every message is recorded with its kind and exact text and handed to the
// program's sink. Questions take their answers from the queue of scripted
// answers, then from the default answer. The host records in batch mode too:
// keeping quiet in batch mode is the caller's decision.
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "host/ZorUtil.h"
#include "minihost/Internal.h"
#include "minihost/MiniHost.h"

namespace {

std::mutex messagesMutex;  // guards everything below
std::vector<minihost::Message> recordedMessages;
std::function<void(const minihost::Message&)> messageSink;
std::deque<bool> scriptedAnswers;
bool defaultAnswer = true;
std::vector<minihost::PleaseWaitRecord> recordedPleaseWaits;
std::vector<minihost::HelpRecord> recordedHelps;
std::string lastError;
std::deque<std::vector<std::string>> scriptedFileChoices;
std::vector<minihost::FileChooserRecord> recordedFileChoosers;

// Records the message, takes a question's answer, and calls the sink outside
// the mutex (a sink may well ask the host something).
bool show(const char* kind, const char* text, int32_t boxType, bool isQuestion) {
    minihost::Message message;
    message.kind = kind;
    message.text = text == nullptr ? "" : text;
    message.boxType = boxType;
    message.batchMode = ZorUtilMacroIsBatchModeActive();
    std::function<void(const minihost::Message&)> sink;
    {
        std::lock_guard<std::mutex> guard(messagesMutex);
        if (isQuestion) {
            if (!scriptedAnswers.empty()) {
                message.answer = scriptedAnswers.front();
                scriptedAnswers.pop_front();
            } else {
                message.answer = defaultAnswer;
            }
        }
        recordedMessages.push_back(message);
        sink = messageSink;
    }
    if (sink)
        sink(message);
    return message.answer;
}

// Takes the next scripted file choice; false when none is queued (cancel).
bool takeFileChoice(minihost::FileChooserRecord record, std::vector<std::string>* chosen) {
    std::lock_guard<std::mutex> guard(messagesMutex);
    bool haveChoice = !scriptedFileChoices.empty();
    if (haveChoice) {
        *chosen = scriptedFileChoices.front();
        scriptedFileChoices.pop_front();
    }
    record.cancelled = !haveChoice || chosen->empty();
    recordedFileChoosers.push_back(record);
    return !record.cancelled;
}

}  // namespace

extern "C" {

void ZorUtilDialogErrMsg(const char* message) {
    show("error", message, -1, false);
}

bool ZorUtilDialogMessageBox(const char* message, int32_t messageBoxType) {
    switch (messageBoxType) {
        case ZorMessageBoxType_Error:
            return show("error", message, messageBoxType, false);
        case ZorMessageBoxType_Warning:
            return show("warning", message, messageBoxType, false);
        case ZorMessageBoxType_Information:
            return show("info", message, messageBoxType, false);
        case ZorMessageBoxType_Question:
        case ZorMessageBoxType_YesNo:
        case ZorMessageBoxType_YesNoCancel:
        case ZorMessageBoxType_WarningOkCancel:
            return show("question", message, messageBoxType, true);
        default:
            minihost::fatal("ZorUtilDialogMessageBox called with the unknown box type " +
                            std::to_string(messageBoxType));
    }
}

void ZorUtilPostLastErrorMessage(void) {
    std::string text;
    {
        std::lock_guard<std::mutex> guard(messagesMutex);
        text.swap(lastError);
    }
    if (!text.empty())
        show("error", text.c_str(), -1, false);
}

void ZorUtilPleaseWait(const char* text, bool show) {
    std::lock_guard<std::mutex> guard(messagesMutex);
    recordedPleaseWaits.push_back({text == nullptr ? "" : text, show});
}

bool ZorUtilHelp(const char* helpFileOrURL, bool goToWeb, int32_t helpContext) {
    std::lock_guard<std::mutex> guard(messagesMutex);
    recordedHelps.push_back({helpFileOrURL == nullptr ? "" : helpFileOrURL, goToWeb, helpContext});
    return true;
}

bool ZorUtilDialogGetFileName(int32_t dialogType, char** fileName, const char* fileTypeName,
                              const char* defaultFileName, const char* defaultFilter) {
    minihost::FileChooserRecord record;
    record.dialogType = dialogType;
    record.fileTypeName = fileTypeName == nullptr ? "" : fileTypeName;
    if (defaultFileName != nullptr)
        record.defaultFileNames.push_back(defaultFileName);
    record.defaultFilter = defaultFilter == nullptr ? "" : defaultFilter;
    std::vector<std::string> chosen;
    if (fileName == nullptr || !takeFileChoice(record, &chosen))
        return false;
    *fileName = minihost::detail::hostStringCopy(chosen.front());
    return *fileName != nullptr;
}

bool ZorUtilDialogGetFileNames(int32_t dialogType, ZorStringList* fileNames, const char* fileTypeName,
                               ZorStringList defaultFileNames, const char* defaultFilter) {
    minihost::FileChooserRecord record;
    record.dialogType = dialogType;
    record.multiple = true;
    record.fileTypeName = fileTypeName == nullptr ? "" : fileTypeName;
    record.defaultFileNames = minihost::stringListToVector(defaultFileNames);
    record.defaultFilter = defaultFilter == nullptr ? "" : defaultFilter;
    std::vector<std::string> chosen;
    if (fileNames == nullptr || !takeFileChoice(record, &chosen))
        return false;
    *fileNames = minihost::makeStringList(chosen);
    return true;
}

}  // extern "C"

namespace minihost {

std::vector<Message> messages() {
    std::lock_guard<std::mutex> guard(messagesMutex);
    return recordedMessages;
}

void clearMessages() {
    std::lock_guard<std::mutex> guard(messagesMutex);
    recordedMessages.clear();
}

void setMessageSink(std::function<void(const Message&)> sink) {
    std::lock_guard<std::mutex> guard(messagesMutex);
    messageSink = std::move(sink);
}

void pushAnswer(bool answer) {
    std::lock_guard<std::mutex> guard(messagesMutex);
    scriptedAnswers.push_back(answer);
}

void setDefaultAnswer(bool answer) {
    std::lock_guard<std::mutex> guard(messagesMutex);
    defaultAnswer = answer;
}

size_t pendingAnswers() {
    std::lock_guard<std::mutex> guard(messagesMutex);
    return scriptedAnswers.size();
}

std::vector<PleaseWaitRecord> pleaseWaitCalls() {
    std::lock_guard<std::mutex> guard(messagesMutex);
    return recordedPleaseWaits;
}

std::vector<HelpRecord> helpCalls() {
    std::lock_guard<std::mutex> guard(messagesMutex);
    return recordedHelps;
}

void setLastError(const std::string& text) {
    std::lock_guard<std::mutex> guard(messagesMutex);
    lastError = text;
}

void pushFileChoice(const std::vector<std::string>& fileNames) {
    std::lock_guard<std::mutex> guard(messagesMutex);
    scriptedFileChoices.push_back(fileNames);
}

std::vector<FileChooserRecord> fileChooserCalls() {
    std::lock_guard<std::mutex> guard(messagesMutex);
    return recordedFileChoosers;
}

namespace detail {

void resetMessageRecords() {
    std::lock_guard<std::mutex> guard(messagesMutex);
    recordedMessages.clear();
    scriptedAnswers.clear();
    defaultAnswer = true;
    recordedPleaseWaits.clear();
    recordedHelps.clear();
    lastError.clear();
    scriptedFileChoices.clear();
    recordedFileChoosers.clear();
}

}  // namespace detail
}  // namespace minihost
