// The host's progress and interrupt object.
//
// A load makes one with createTaskProgressBar and passes it, or child tasks of
// it, down through its steps. A child task covers one step of its parent: as
// the child's own steps end, the parent's bar moves within that step. begin and
// end return false once the user asked to interrupt; the caller then unwinds.
#pragma once

#include <memory>
#include <string>

#include "host/ZorTypes.h"

namespace zorvane {
namespace zorutilutil {

class ZOR_HOST_API TaskProgress {
  public:
    virtual ~TaskProgress();
    // A child task that spans one step of this task and has numSteps steps.
    virtual std::unique_ptr<TaskProgress> createChildTask(int numSteps) = 0;
    // Sets how many steps this task has; the steps done so far are kept.
    virtual void setNumSteps(int numSteps) = 0;
    // Begins the task and shows its text. False when refused (interrupted).
    virtual bool begin(const std::string& text) = 0;
    // Ends one step of the task. False after the user asked to interrupt.
    virtual bool end() = 0;
    // Replaces the text shown for the task. False after an interrupt request.
    virtual bool setText(const std::string& text) = 0;
    // True after the user asked to interrupt.
    virtual bool isInterrupted() const = 0;
};

// A progress object with a bar that the host shows to the user. `style` selects
// the look; 2 is a bar with a text and a cancel action.
ZOR_HOST_API std::unique_ptr<TaskProgress> createTaskProgressBar(int style);

}  // namespace zorutilutil
}  // namespace zorvane
