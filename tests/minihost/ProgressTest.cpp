// The progress object: nesting, fractions, interruption.
#include <gtest/gtest.h>

#include <memory>

#include "host/TaskProgress.h"
#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace {

using zorvane::zorutilutil::createTaskProgressBar;
using zorvane::zorutilutil::TaskProgress;

class HostProgress : public ::testing::Test {
  protected:
    void SetUp() override {
        minihost::setProgressBarEnabled(false);
        minihost::resetRecords();
    }
    void TearDown() override { minihost::resetRecords(); }
};

TEST_F(HostProgress, StepsOfTheBarMoveTheFraction) {
    std::unique_ptr<TaskProgress> bar = createTaskProgressBar(2);
    bar->setNumSteps(4);
    ASSERT_TRUE(bar->begin("Loading Fluent data..."));
    EXPECT_DOUBLE_EQ(minihost::progressFraction(), 0.0);
    ASSERT_TRUE(bar->end());
    EXPECT_DOUBLE_EQ(minihost::progressFraction(), 0.25);
    ASSERT_TRUE(bar->end());
    ASSERT_TRUE(bar->end());
    ASSERT_TRUE(bar->end());
    ASSERT_TRUE(bar->end());  // one step too many stays at the whole
    EXPECT_DOUBLE_EQ(minihost::progressFraction(), 1.0);
}

TEST_F(HostProgress, AChildSpansTheStepUnderWayOfItsParent) {
    std::unique_ptr<TaskProgress> bar = createTaskProgressBar(2);
    bar->setNumSteps(2);
    ASSERT_TRUE(bar->begin("Loading"));
    std::unique_ptr<TaskProgress> child = bar->createChildTask(4);
    ASSERT_TRUE(child->begin("Scanning Fluent case file..."));
    ASSERT_TRUE(child->end());
    EXPECT_DOUBLE_EQ(minihost::progressFraction(), 0.125);  // a quarter of the first half
    std::unique_ptr<TaskProgress> grandchild = child->createChildTask(2);
    ASSERT_TRUE(grandchild->end());
    EXPECT_DOUBLE_EQ(minihost::progressFraction(), (1.0 + 0.5) / 4.0 / 2.0);
    grandchild.reset();
    ASSERT_TRUE(child->end());
    ASSERT_TRUE(child->end());
    ASSERT_TRUE(child->end());
    EXPECT_DOUBLE_EQ(minihost::progressFraction(), 0.5);
    child.reset();
    ASSERT_TRUE(bar->end());  // completes the step the child spanned
    EXPECT_DOUBLE_EQ(minihost::progressFraction(), 0.5);
    ASSERT_TRUE(bar->end());
    EXPECT_DOUBLE_EQ(minihost::progressFraction(), 1.0);
}

TEST_F(HostProgress, SetNumStepsKeepsTheStepsDone) {
    std::unique_ptr<TaskProgress> bar = createTaskProgressBar(2);
    bar->setNumSteps(2);
    ASSERT_TRUE(bar->end());
    EXPECT_DOUBLE_EQ(minihost::progressFraction(), 0.5);
    bar->setNumSteps(4);
    EXPECT_DOUBLE_EQ(minihost::progressFraction(), 0.25);
}

TEST_F(HostProgress, AChildMayOutliveItsParent) {
    std::unique_ptr<TaskProgress> bar = createTaskProgressBar(2);
    std::unique_ptr<TaskProgress> child = bar->createChildTask(3);
    bar.reset();
    EXPECT_TRUE(child->begin("still here"));
    EXPECT_TRUE(child->end());
}

TEST_F(HostProgress, AnInterruptRefusesBeginAndMakesEndSayStop) {
    std::unique_ptr<TaskProgress> bar = createTaskProgressBar(2);
    std::unique_ptr<TaskProgress> child = bar->createChildTask(3);
    ASSERT_TRUE(child->begin("Scanning"));
    EXPECT_FALSE(child->isInterrupted());
    minihost::setInterrupt(true);
    EXPECT_TRUE(child->isInterrupted());
    EXPECT_TRUE(bar->isInterrupted());
    EXPECT_FALSE(child->end());
    EXPECT_FALSE(child->begin("next"));
    EXPECT_FALSE(bar->setText("other"));
    EXPECT_FALSE(bar->end());
    minihost::setInterrupt(false);
    EXPECT_TRUE(bar->begin("again"));
}

TEST_F(HostProgress, EventsTellWhatTheUserSaw) {
    std::unique_ptr<TaskProgress> bar = createTaskProgressBar(2);
    ASSERT_TRUE(bar->begin("Loading Fluent data..."));
    std::unique_ptr<TaskProgress> child = bar->createChildTask(2);
    ASSERT_TRUE(child->begin("Scanning Fluent data file..."));
    ASSERT_TRUE(child->setText("Reading"));
    ASSERT_TRUE(child->end());
    std::vector<minihost::ProgressEvent> events = minihost::progressEvents();
    ASSERT_EQ(events.size(), 4u);
    EXPECT_EQ(events[0].what, "begin");
    EXPECT_EQ(events[0].text, "Loading Fluent data...");
    EXPECT_EQ(events[0].depth, 0);
    EXPECT_EQ(events[1].text, "Scanning Fluent data file...");
    EXPECT_EQ(events[1].depth, 1);
    EXPECT_EQ(events[2].what, "text");
    EXPECT_EQ(events[2].text, "Reading");
    EXPECT_EQ(events[3].what, "end");
    EXPECT_DOUBLE_EQ(events[3].fraction, 0.5);
}

}  // namespace
