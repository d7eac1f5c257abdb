// fluentload's command line: the instruction list each option makes, and the
// usage errors.
#include <gtest/gtest.h>

#include "apps/fluentload/Options.h"

namespace {

using fluentload::Options;

// The instruction list of a command line that must parse.
std::vector<std::string> listOf(const std::vector<std::string>& args) {
    Options o;
    std::string error;
    EXPECT_TRUE(fluentload::parseOptions(args, &o, &error)) << error;
    return fluentload::buildInstructions(o);
}

std::string usageError(const std::vector<std::string>& args) {
    Options o;
    std::string error;
    EXPECT_FALSE(fluentload::parseOptions(args, &o, &error));
    return error;
}

using List = std::vector<std::string>;

TEST(FluentloadOptions, CaseAloneLoadsTheCaseOnly) {
    EXPECT_EQ(listOf({"a.cas"}),
              (List{"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", "a.cas", "LoadOption", "CaseOnly"}));
}

TEST(FluentloadOptions, CaseAndDataLoadBoth) {
    EXPECT_EQ(listOf({"a.dat.gz", "a.cas.gz"}),
              (List{"STANDARDSYNTAX", "1.0", "FILENAME_DataFile", "a.dat.gz", "FILENAME_CaseFile", "a.cas.gz",
                    "LoadOption", "CaseAndData"}));
}

TEST(FluentloadOptions, MoreFilesLoadAsASeriesWithTimesFromTheDataFiles) {
    EXPECT_EQ(listOf({"a.cas", "a-1.dat", "a-2.dat"}),
              (List{"STANDARDSYNTAX", "1.0", "FILELIST_Files", "3", "a.cas", "a-1.dat", "a-2.dat",
                    "LoadOption", "MultipleCaseAndData", "UnsteadyOption", "ReadTimeFromDataFiles"}));
}

TEST(FluentloadOptions, ConstantTimeIntervalForASeries) {
    EXPECT_EQ(
        listOf({"--time-interval", "0.25", "--strands", "--existing-strands", "a.cas", "a-1.dat", "a-2.dat"}),
        (List{"STANDARDSYNTAX", "1.0", "FILELIST_Files", "3", "a.cas", "a-1.dat", "a-2.dat", "LoadOption",
              "MultipleCaseAndData", "UnsteadyOption", "ApplyConstantTimeInterval", "TimeInterval", "0.25",
              "AssignStrandIDs", "Yes", "AddZonesToExistingStrands", "Yes"}));
}

TEST(FluentloadOptions, EveryLoadChoiceHasItsKey) {
    EXPECT_EQ(listOf({"--zones", "1-3,5", "--var", "Pressure", "--var", "X Velocity", "--average",
                      "Laplacian", "--all-poly", "--particles", "--metadata", "off",
                      "--additional-quantities", "--save-uncompressed", "yes", "a.cas", "a.dat"}),
              (List{"STANDARDSYNTAX",
                    "1.0",
                    "FILENAME_CaseFile",
                    "a.cas",
                    "FILENAME_DataFile",
                    "a.dat",
                    "LoadOption",
                    "CaseAndData",
                    "GridZones",
                    "SelectedZones",
                    "ZoneList",
                    "1-3,5",
                    "VarNameList",
                    "Pressure\nX Velocity",
                    "AverageToNodes",
                    "Yes",
                    "AveragingMethod",
                    "Laplacian",
                    "AllPolyZones",
                    "Yes",
                    "IncludeParticleData",
                    "Yes",
                    "USE_METADATA",
                    "No",
                    "LoadAdditionalQuantities",
                    "Yes",
                    "SaveUncompressedFiles",
                    "Yes"}));
}

TEST(FluentloadOptions, ZoneFamiliesAndNoAveraging) {
    EXPECT_EQ(listOf({"--cells-only", "--average", "none", "a.cas"}),
              (List{"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", "a.cas", "LoadOption", "CaseOnly",
                    "GridZones", "CellsOnly", "AverageToNodes", "No"}));
    EXPECT_EQ(listOf({"--boundaries-only", "--no-metadata", "a.cas"}),
              (List{"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", "a.cas", "LoadOption", "CaseOnly",
                    "GridZones", "BoundariesOnly", "USE_METADATA", "No"}));
    EXPECT_EQ(listOf({"--metadata", "on", "a.cas"}),
              (List{"STANDARDSYNTAX", "1.0", "FILENAME_CaseFile", "a.cas", "LoadOption", "CaseOnly"}));
}

TEST(FluentloadOptions, ResidualsOfOneDataFile) {
    EXPECT_EQ(listOf({"--residuals", "a.dat"}),
              (List{"STANDARDSYNTAX", "1.0", "FILENAME_DataFile", "a.dat", "LoadOption", "ResidualsOnly"}));
}

TEST(FluentloadOptions, RawListIsHandedOverAsItIs) {
    EXPECT_EQ(listOf({"--pull", "--instr", "-CaseFile", "a.cas", "--pull"}),
              (List{"-CaseFile", "a.cas", "--pull"}));
}

TEST(FluentloadOptions, ViewAndExportOptionsAreRead) {
    Options o;
    std::string error;
    ASSERT_TRUE(fluentload::parseOptions({"--pull", "--threads", "4", "-o", "out/a.pvd", "--compress",
                                          "--memory-budget", "1.5", "--summary-json", "s.json", "a.cas"},
                                         &o, &error))
        << error;
    EXPECT_TRUE(o.pull);
    EXPECT_EQ(o.threads, 4);
    EXPECT_EQ(o.output, "out/a.pvd");
    EXPECT_TRUE(o.compress);
    EXPECT_EQ(o.memoryBudgetMB, 1.5);
    EXPECT_EQ(o.summaryJsonFile, "s.json");
    EXPECT_EQ(o.compressLevel, 1);
    Options level;
    ASSERT_TRUE(fluentload::parseOptions({"--compress=9", "a.cas"}, &level, &error)) << error;
    EXPECT_TRUE(level.compress);
    EXPECT_EQ(level.compressLevel, 9);
}

TEST(FluentloadOptions, UsageErrorsSayWhatIsWrong) {
    EXPECT_EQ(usageError({}), "no file to load");
    EXPECT_EQ(usageError({"--threads", "0", "a.cas"}), "--threads takes a whole number from 1 to 256");
    EXPECT_EQ(usageError({"--threads", "2x", "a.cas"}), "--threads takes a whole number from 1 to 256");
    EXPECT_EQ(usageError({"-o", "a.vtu", "a.cas"}), "-o takes a file name ending in .vtm or .pvd");
    EXPECT_EQ(usageError({"--memory-budget", "-1", "a.cas"}), "--memory-budget takes a number of megabytes");
    EXPECT_EQ(usageError({"--metadata", "sometimes", "a.cas"}), "--metadata takes on or off");
    EXPECT_EQ(usageError({"--compress=0", "a.cas"}), "--compress= takes a zlib level from 1 to 9");
    EXPECT_EQ(usageError({"--average", "median", "a.cas"}), "--average takes arithmetic, laplacian or none");
    EXPECT_EQ(usageError({"--read-time", "--time-interval", "1", "a.cas", "a.dat", "b.dat"}),
              "--read-time and --time-interval exclude each other");
    EXPECT_EQ(usageError({"--time-interval", "1", "a.cas", "a.dat"}),
              "--read-time and --time-interval apply to a series of files");
    EXPECT_EQ(usageError({"--summary-json"}), "option --summary-json needs a value");
    EXPECT_EQ(usageError({"a.dat"}),
              "a data file needs its case file (or --residuals to load only its residuals)");
}

TEST(FluentloadOptions, HelpDocumentsEveryOption) {
    const std::string help = fluentload::usageText();
    for (const char* option : {"--case-only",
                               "--residuals",
                               "--series",
                               "--cells-only",
                               "--boundaries-only",
                               "--zones",
                               "--var",
                               "--average",
                               "--all-poly",
                               "--particles",
                               "--additional-quantities",
                               "--read-time",
                               "--time-interval",
                               "--strands",
                               "--existing-strands",
                               "--save-uncompressed",
                               "--overwrite",
                               "--metadata",
                               "--no-metadata",
                               "--answer",
                               "--batch",
                               "--layout",
                               "--no-lod",
                               "--addon",
                               "--memory-budget",
                               "--pull",
                               "--threads",
                               "--output",
                               "--compress[=LEVEL]",
                               "--summary-json",
                               "--messages",
                               "--no-progress",
                               "--quiet",
                               "--instr",
                               "--help"}) {
        EXPECT_NE(help.find(std::string(" ") + option + " "), std::string::npos) << option;
    }
}

}  // namespace
