// Interrupt, batch mode and layout switches.
#include <gtest/gtest.h>

#include <csignal>

#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace {

class HostSwitches : public ::testing::Test {
  protected:
    void SetUp() override { minihost::resetRecords(); }
    void TearDown() override { minihost::resetRecords(); }
};

TEST_F(HostSwitches, StartOff) {
    EXPECT_FALSE(ZorUtilInterruptCheck());
    EXPECT_FALSE(ZorUtilMacroIsBatchModeActive());
    EXPECT_FALSE(ZorUtilStateIsProcessingLayout());
}

TEST_F(HostSwitches, AreSetByTheProgram) {
    minihost::setInterrupt(true);
    minihost::setBatchMode(true);
    minihost::setProcessingLayout(true);
    EXPECT_TRUE(ZorUtilInterruptCheck());
    EXPECT_TRUE(ZorUtilMacroIsBatchModeActive());
    EXPECT_TRUE(ZorUtilStateIsProcessingLayout());
    minihost::resetRecords();
    EXPECT_FALSE(ZorUtilInterruptCheck());
    EXPECT_FALSE(ZorUtilMacroIsBatchModeActive());
    EXPECT_FALSE(ZorUtilStateIsProcessingLayout());
}

TEST_F(HostSwitches, CtrlCSetsTheInterrupt) {
    minihost::installInterruptHandler();
    std::raise(SIGINT);
    EXPECT_TRUE(ZorUtilInterruptCheck());
    EXPECT_TRUE(minihost::interruptRequested());
    minihost::setInterrupt(false);
    EXPECT_FALSE(ZorUtilInterruptCheck());
    std::signal(SIGINT, SIG_DFL);
}

}  // namespace
