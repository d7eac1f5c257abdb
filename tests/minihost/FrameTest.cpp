// The frame before any data set exists.
#include <gtest/gtest.h>

#include "host/ZorData.h"
#include "minihost/MiniHost.h"

namespace {

class HostFrame : public ::testing::Test {
  protected:
    void SetUp() override { minihost::resetRecords(); }
    void TearDown() override { minihost::resetRecords(); }
};

TEST_F(HostFrame, HasNoDataSetAtFirst) {
    EXPECT_FALSE(ZorUtilDataSetIsAvailable());
    EXPECT_EQ(ZorUtilDataSetGetUniqueID(), 0u);
    EXPECT_FALSE(ZorUtilDataSetIsAvailableByUniqueID(0));
    EXPECT_FALSE(ZorUtilDataSetIsAvailableByUniqueID(1));
    EXPECT_NE(ZorUtilFrameGetUniqueID(), 0u);
    EXPECT_EQ(ZorUtilFrameGetPlotType(), ZorPlotType_Sketch);
}

TEST_F(HostFrame, RefusesPlotTypesThatNeedADataSet) {
    EXPECT_FALSE(ZorUtilFrameSetPlotType(ZorPlotType_Cartesian3D));
    EXPECT_FALSE(ZorUtilFrameSetPlotType(ZorPlotType_Cartesian2D));
    EXPECT_FALSE(ZorUtilFrameSetPlotType(ZorPlotType_XYLine));
    EXPECT_EQ(ZorUtilFrameGetPlotType(), ZorPlotType_Sketch);
    EXPECT_TRUE(ZorUtilFrameSetPlotType(ZorPlotType_Automatic));
    EXPECT_EQ(ZorUtilFrameGetPlotType(), ZorPlotType_Automatic);
    EXPECT_FALSE(ZorUtilFrameSetPlotType(42));
}

TEST_F(HostFrame, ResetTakesOnlyItsOwnId) {
    ASSERT_TRUE(ZorUtilFrameSetPlotType(ZorPlotType_Automatic));
    EXPECT_FALSE(ZorUtilFrameReset(ZorUtilFrameGetUniqueID() + 1));
    EXPECT_EQ(ZorUtilFrameGetPlotType(), ZorPlotType_Automatic);
    EXPECT_TRUE(ZorUtilFrameReset(ZorUtilFrameGetUniqueID()));
    EXPECT_EQ(ZorUtilFrameGetPlotType(), ZorPlotType_Sketch);
    EXPECT_FALSE(ZorUtilDataSetIsAvailable());
}

TEST_F(HostFrame, LoadOnDemandIsAllowedUnlessSwitchedOff) {
    EXPECT_TRUE(ZorUtilDataSetIsLODAllowed());
    minihost::setLoadOnDemandAllowed(false);
    EXPECT_FALSE(ZorUtilDataSetIsLODAllowed());
}

TEST_F(HostFrame, DataLoadBracketsNest) {
    ZorUtilDataLoadBegin();
    ZorUtilDataLoadBegin();
    EXPECT_EQ(minihost::dataLoadDepth(), 2);
    ZorUtilDataLoadEnd();
    ZorUtilDataLoadEnd();
    EXPECT_EQ(minihost::dataLoadDepth(), 0);
}

TEST(HostFrameDeathTest, DataLoadEndWithoutBeginAborts) {
    EXPECT_DEATH(ZorUtilDataLoadEnd(), "minihost: ZorUtilDataLoadEnd without ZorUtilDataLoadBegin");
}

}  // namespace
