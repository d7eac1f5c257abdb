// The host's progress object: nested tasks, a bar on a terminal, and the
// user's interrupt.
//
// Every task has a number of steps and counts the steps it ended. A child
// task spans the step of its parent that is under way: while the child's own
// steps end, the parent's fraction moves inside that step, and the parent's
// next end() completes the step. Fractions are worked out upwards, child to
// parent to bar, whenever a task changes; the bar (the root task) draws a
// line on stderr when stderr is a terminal and drawing is enabled.
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/TaskProgress.h"
#include "host/ZorUtil.h"
#include "minihost/Internal.h"
#include "minihost/MiniHost.h"

namespace {

using zorvane::zorutilutil::TaskProgress;

// What one bar and all its tasks share.
struct Bar {
    std::mutex mutex;       // guards every TaskState of the bar and the fields below
    bool draws = false;     // stderr is a terminal and drawing was enabled at creation
    bool drewLine = false;  // a line is on the terminal that the next draw overwrites
    int shownPercent = -1;  // what the line shows now
    std::string shownText;  // what the line shows now
    double fraction = 0.0;  // the root's fraction done
};

struct TaskState {
    std::shared_ptr<Bar> bar;
    std::shared_ptr<TaskState> parent;  // null for the root
    int depth = 0;                      // 0 for the root
    int numSteps = 1;                   // at least 1
    int stepsDone = 0;                  // steps ended, may exceed numSteps
    double partial = 0.0;               // progress of the step under way, from the latest child, 0 to 1
    std::string text;                   // the text of the last begin or setText
};

std::atomic<bool> drawingEnabled{true};
std::mutex eventsMutex;  // guards the records below
std::vector<minihost::ProgressEvent> events;
constexpr size_t maxEvents = 1000000;  // a cap for long runs; later events are not recorded
std::shared_ptr<Bar> latestBar;        // kept so that the last fraction can be read after the load

double fractionOf(const TaskState& task) {
    double fraction = (std::min(task.stepsDone, task.numSteps) + task.partial) / task.numSteps;
    return std::clamp(fraction, 0.0, 1.0);
}

// Carries the task's new fraction up to the bar. Bar mutex held.
void propagate(TaskState& task) {
    TaskState* node = &task;
    while (node->parent != nullptr) {
        node->parent->partial = fractionOf(*node);
        node = node->parent.get();
    }
    node->bar->fraction = fractionOf(*node);
}

// Redraws the bar's line if what it shows changed. Bar mutex held.
void draw(Bar& bar, const std::string& text) {
    if (!bar.draws || !drawingEnabled.load())
        return;
    int percent = static_cast<int>(bar.fraction * 100.0 + 0.5);
    if (percent == bar.shownPercent && text == bar.shownText)
        return;
    bar.shownPercent = percent;
    bar.shownText = text;
    constexpr int width = 30;
    int filled = percent * width / 100;
    std::string line = "\r[" + std::string(filled, '#') + std::string(width - filled, '.') + "] ";
    char number[8];
    std::snprintf(number, sizeof number, "%3d%% ", percent);
    line += number;
    line += text.substr(0, 60);
    line += "\033[K";  // clears what a longer earlier line left
    std::fputs(line.c_str(), stderr);
    std::fflush(stderr);
    bar.drewLine = true;
}

void record(const char* what, const TaskState& task) {
    std::lock_guard<std::mutex> guard(eventsMutex);
    if (events.size() >= maxEvents)
        return;
    events.push_back({what, task.text, task.depth, task.bar->fraction});
}

class Task : public TaskProgress {
  public:
    explicit Task(std::shared_ptr<TaskState> state) : state_(std::move(state)) {}

    ~Task() override {
        Bar& bar = *state_->bar;
        std::lock_guard<std::mutex> guard(bar.mutex);
        if (state_->parent == nullptr && bar.drewLine && drawingEnabled.load()) {
            std::fputs("\n", stderr);  // leaves the bar's last line standing
            std::fflush(stderr);
            bar.drewLine = false;
        }
    }

    std::unique_ptr<TaskProgress> createChildTask(int numSteps) override {
        auto child = std::make_shared<TaskState>();
        std::lock_guard<std::mutex> guard(state_->bar->mutex);
        child->bar = state_->bar;
        child->parent = state_;
        child->depth = state_->depth + 1;
        child->numSteps = std::max(numSteps, 1);
        state_->partial = 0.0;  // the new child starts the step under way afresh
        propagate(*state_);
        return std::make_unique<Task>(std::move(child));
    }

    void setNumSteps(int numSteps) override {
        std::lock_guard<std::mutex> guard(state_->bar->mutex);
        state_->numSteps = std::max(numSteps, 1);
        propagate(*state_);
    }

    bool begin(const std::string& text) override {
        if (ZorUtilInterruptCheck())
            return false;
        std::lock_guard<std::mutex> guard(state_->bar->mutex);
        state_->text = text;
        propagate(*state_);
        record("begin", *state_);
        draw(*state_->bar, text);
        return true;
    }

    bool end() override {
        std::lock_guard<std::mutex> guard(state_->bar->mutex);
        ++state_->stepsDone;
        state_->partial = 0.0;
        propagate(*state_);
        record("end", *state_);
        draw(*state_->bar, state_->bar->shownText);
        return !ZorUtilInterruptCheck();
    }

    bool setText(const std::string& text) override {
        if (ZorUtilInterruptCheck())
            return false;
        std::lock_guard<std::mutex> guard(state_->bar->mutex);
        state_->text = text;
        record("text", *state_);
        draw(*state_->bar, text);
        return true;
    }

    bool isInterrupted() const override { return ZorUtilInterruptCheck(); }

  private:
    std::shared_ptr<TaskState> state_;
};

}  // namespace

namespace zorvane {
namespace zorutilutil {

TaskProgress::~TaskProgress() = default;

// Every style gets the same bar here.
std::unique_ptr<TaskProgress> createTaskProgressBar(int /*style*/) {
    auto bar = std::make_shared<Bar>();
    bar->draws = drawingEnabled.load() && isatty(STDERR_FILENO) == 1;
    auto root = std::make_shared<TaskState>();
    root->bar = bar;
    {
        std::lock_guard<std::mutex> guard(eventsMutex);
        latestBar = bar;
    }
    return std::make_unique<Task>(std::move(root));
}

}  // namespace zorutilutil
}  // namespace zorvane

namespace minihost {

void setProgressBarEnabled(bool on) {
    drawingEnabled.store(on);
}

std::vector<ProgressEvent> progressEvents() {
    std::lock_guard<std::mutex> guard(eventsMutex);
    return events;
}

double progressFraction() {
    std::shared_ptr<Bar> bar;
    {
        std::lock_guard<std::mutex> guard(eventsMutex);
        bar = latestBar;
    }
    if (bar == nullptr)
        return 0.0;
    std::lock_guard<std::mutex> guard(bar->mutex);
    return bar->fraction;
}

namespace detail {

void resetProgressRecords() {
    std::lock_guard<std::mutex> guard(eventsMutex);
    events.clear();
}

}  // namespace detail
}  // namespace minihost
