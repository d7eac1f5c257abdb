// Residuals sections read into the process-wide table for a residuals-only load.

#include "DataFileTestSupport.h"

#include "datafile/Residuals.h"

using namespace datafile_test;

namespace {

class Residuals : public DataFileTest {
  protected:
    void SetUp() override {
        DataFileTest::SetUp();
        FluentResidualsClear();
        firstIteration = 1;
    }
    void TearDown() override {
        FluentResidualsClear();
        firstIteration = 1;
        DataFileTest::TearDown();
    }
    bool scan(const std::string& bytes) {
        file_.reset(new TempFile(bytes));
        dataFile_.reset(new DataFile);
        return scanFile(dataFile_.get(), file_->path(), nullptr, LoadOption_ResidualsOnly);
    }
    static std::vector<double> values(const FluentResidual& r) {
        return std::vector<double>(r.values, r.values + static_cast<size_t>(r.numRows) * r.width);
    }
    static std::vector<double> scales(const FluentResidual& r) {
        return std::vector<double>(r.scaleFactors, r.scaleFactors + static_cast<size_t>(r.numRows) * r.width);
    }
    std::unique_ptr<TempFile> file_;
    std::unique_ptr<DataFile> dataFile_;
};

}  // namespace

TEST_F(Residuals, StartWithAnEmptyTableAndIterationOne) {
    EXPECT_EQ(numResiduals, 0);
    EXPECT_EQ(FluentResiduals, nullptr);
    EXPECT_EQ(firstIteration, 1);
}

TEST_F(Residuals, FileWithoutResidualsLeavesTheTableEmpty) {
    ASSERT_TRUE(scan(machineConfig() + "(37 ((flow-time 1)))\n"));
    EXPECT_EQ(numResiduals, 0);
    EXPECT_EQ(firstIteration, 1);
}

TEST_F(Residuals, PlainResidualsKeepTheFirstIterationAndTheValues) {
    for (int id : {301, 2301, 3301}) {
        FluentResidualsClear();
        ASSERT_TRUE(scan(machineConfig() + residualSection(id, 3, 1, 1, {10, 0.5, 11, 0.25, 12, 0.125})))
            << id;
        ASSERT_EQ(numResiduals, 1);
        const FluentResidual& r = FluentResiduals[0];
        EXPECT_EQ(firstIteration, 10);
        EXPECT_EQ(r.numRows, 3);
        EXPECT_EQ(r.residualId, 1);
        EXPECT_EQ(r.width, 1);
        EXPECT_FALSE(r.hasScaleFactors);
        EXPECT_EQ(r.scaleFactors, nullptr);
        EXPECT_EQ(values(r), (std::vector<double>{0.5, 0.25, 0.125}));
    }
}

TEST_F(Residuals, ScaleFactorsOfThe302Family) {
    for (int id : {302, 2302, 3302}) {
        FluentResidualsClear();
        ASSERT_TRUE(scan(machineConfig() + residualSection(id, 2, 1, 1, {10, 0.5, 1.5, 11, 0.25, 1.25})))
            << id;
        ASSERT_EQ(numResiduals, 1);
        const FluentResidual& r = FluentResiduals[0];
        EXPECT_TRUE(r.hasScaleFactors);
        EXPECT_EQ(values(r), (std::vector<double>{0.5, 0.25}));
        EXPECT_EQ(scales(r), (std::vector<double>{1.5, 1.25}));
    }
}

TEST_F(Residuals, RowsOfSeveralNumbers) {
    ASSERT_TRUE(scan(machineConfig() +
                     residualSection(302, 2, 2, 3, {5, 1, 2, 3, 10, 20, 30, 6, 4, 5, 6, 40, 50, 60})));
    const FluentResidual& r = FluentResiduals[0];
    EXPECT_EQ(values(r), (std::vector<double>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(scales(r), (std::vector<double>{10, 20, 30, 40, 50, 60}));
    EXPECT_EQ(firstIteration, 5);
}

TEST_F(Residuals, HeadersOfThreeAndFourNumbersReadAlike) {
    ASSERT_TRUE(scan(machineConfig() + residualSection(301, 2, 4, 1, {3, 0.5, 4, 0.25}, false) +
                     residualSection(3301, 2, 5, 1, {3, 0.5, 4, 0.25}, false) +
                     residualSection(301, 2, 6, 1, {3, 0.5, 4, 0.25}, true)));
    ASSERT_EQ(numResiduals, 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(FluentResiduals[i].residualId, 4 + i);
        EXPECT_EQ(values(FluentResiduals[i]), (std::vector<double>{0.5, 0.25}));
    }
}

TEST_F(Residuals, GapsInTheIterationsVanish) {
    ASSERT_TRUE(scan(machineConfig() + residualSection(301, 3, 1, 1, {10, 0.5, 20, 0.25, 35, 0.125})));
    EXPECT_EQ(firstIteration, 10);
    EXPECT_EQ(values(FluentResiduals[0]), (std::vector<double>{0.5, 0.25, 0.125}));
}

TEST_F(Residuals, TheSectionReadLastDecidesTheFirstIteration) {
    ASSERT_TRUE(scan(machineConfig() + residualSection(301, 1, 1, 1, {10, 0.5}) +
                     residualSection(3301, 1, 2, 1, {42.9, 0.5})));
    EXPECT_EQ(numResiduals, 2);
    EXPECT_EQ(firstIteration, 42);
}

TEST_F(Residuals, ShortHeaderIsAParseError) {
    EXPECT_FALSE(scan(machineConfig() + "(301 (3 1))\n"));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{"Parse error while reading Residuals section (section 301)."});
    EXPECT_EQ(numResiduals, 0);
}

TEST_F(Residuals, BodyThatNeverOpens) {
    EXPECT_FALSE(scan(machineConfig() + "(2302 (3 1 1 1)"));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{
                  "Opening parenthesis not found while reading Residuals section (Section 2302)."});
    // The entry stays with its zeroed arrays.
    ASSERT_EQ(numResiduals, 1);
    EXPECT_EQ(FluentResiduals[0].values[0], 0.0);
}

TEST_F(Residuals, BodyCutShort) {
    EXPECT_FALSE(scan(machineConfig() + "(301 (3 1 1)\n(10 0.5 11"));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{"End-of-file while reading Residuals section (section 301)."});
    EXPECT_EQ(firstIteration, 1);
}

TEST_F(Residuals, ClearEmptiesTheTable) {
    FluentResidual* r;
    ASSERT_TRUE(NewFluentResidual(&r, 2, 3, true));
    EXPECT_EQ(numResiduals, 1);
    EXPECT_NE(r->values, nullptr);
    EXPECT_NE(r->scaleFactors, nullptr);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(r->values[i], 0.0);
        EXPECT_EQ(r->scaleFactors[i], 0.0);
    }
    ASSERT_TRUE(NewFluentResidual(&r, 1, 1, false));
    EXPECT_EQ(r->scaleFactors, nullptr);
    EXPECT_EQ(numResiduals, 2);
    FluentResidualsClear();
    EXPECT_EQ(numResiduals, 0);
    EXPECT_EQ(FluentResiduals, nullptr);
    FluentResidualsClear();
}

TEST_F(Residuals, SizeThatCannotBeHadIsOutOfMemory) {
    FluentResidual* r = reinterpret_cast<FluentResidual*>(1);
    EXPECT_FALSE(NewFluentResidual(&r, -1, 5, false));
    EXPECT_EQ(r, nullptr);
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"Out of memory."});
    EXPECT_EQ(numResiduals, 0);
}
