// Instruction lists in the standard and the old syntax: values, defaults,
// the messages of every bad or unknown thing, file lists, compressed files
// and the completion of the list.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "addon/LoadInstructions.h"
#include "instruction_test_support.h"

using addontest::endsWith;
using addontest::readFile;
using addontest::Shown;
using addontest::shown;
using addontest::writeFile;
using addontest::writeGzip;

namespace {

// "STANDARDSYNTAX", "1.0" and the strings.
std::vector<std::string> standard(const std::vector<std::string>& strings) {
    std::vector<std::string> list = {"STANDARDSYNTAX", "1.0"};
    list.insert(list.end(), strings.begin(), strings.end());
    return list;
}

// One parse of a list into a record that starts at the driver's defaults.
class Parse {
  public:
    explicit Parse(const std::vector<std::string>& strings) : list_(minihost::makeStringList(strings)) {
        LoadInstructionsSetDefaults(&li);
    }
    ~Parse() {
        LoadInstructionsFree(&li);
        ZorUtilStringListDealloc(&list_);
    }
    Parse(const Parse&) = delete;
    Parse& operator=(const Parse&) = delete;

    bool standard(ProgressCallback progress = nullptr) {
        return LoadInstructionsParseStandard(list_, &li, std::move(progress));
    }
    bool old() { return LoadInstructionsParseOld(list_, &li); }
    // The instruction list as it stands after the parse.
    std::vector<std::string> list() const { return minihost::stringListToVector(list_); }
    std::vector<std::string> files() const {
        return li.fileList != nullptr ? minihost::stringListToVector(li.fileList)
                                      : std::vector<std::string>{};
    }
    std::string caseName() const { return li.caseFileName != nullptr ? li.caseFileName : "(null)"; }
    std::string dataName() const { return li.dataFileName != nullptr ? li.dataFileName : "(null)"; }

    LoadInstructions li;

  private:
    ZorStringList list_;
};

const std::vector<Shown> kNone;

Shown info(const std::string& text) {
    return {"info", text};
}
Shown error(const std::string& text) {
    return {"error", text};
}
Shown question(const std::string& text) {
    return {"question", text};
}

const char* const kSaveQuestion = "Save the uncompressed files to the compressed files' locations?";

class LoadInstructionsTest : public addontest::HostTest {};

}  // namespace

// ---- The record and its defaults ---------------------------------------------------

TEST(LoadInstructionsRecord, DriverDefaults) {
    LoadInstructions li;
    memset(&li, 0x5a, sizeof(li));
    LoadInstructionsSetDefaults(&li);
    EXPECT_FALSE(li.append);
    EXPECT_EQ(li.fileList, nullptr);
    EXPECT_FALSE(li.saveUncompressedFiles);
    EXPECT_EQ(li.loadOption, 4);
    EXPECT_EQ(li.caseFileName, nullptr);
    EXPECT_EQ(li.gridZones, 4);
    EXPECT_EQ(li.dataFileName, nullptr);
    EXPECT_FALSE(li.includeParticleData);
    EXPECT_FALSE(li.allZonesAsPolyhedral);
    EXPECT_TRUE(li.averageToNodes);
    EXPECT_EQ(li.averagingMethod, 0);
    EXPECT_EQ(li.zoneList, nullptr);
    EXPECT_EQ(li.varNameList, nullptr);
    EXPECT_EQ(li.unsteadyOption, 1);
    EXPECT_EQ(li.timeInterval, 0.0);
    EXPECT_FALSE(li.assignStrandIDs);
    EXPECT_FALSE(li.addZonesToExistingStrands);
    EXPECT_TRUE(li.useMetadata);
    EXPECT_FALSE(li.loadAdditionalQuantities);
    LoadInstructionsFree(&li);
    LoadInstructionsFree(&li);  // a second release is harmless
}

TEST(LoadInstructionsRecord, EnumerationNamesInTableOrder) {
    EXPECT_STREQ(LoadOptionNames[LoadOption_CaseAndData], "CaseAndData");
    EXPECT_STREQ(LoadOptionNames[LoadOption_CaseOnly], "CaseOnly");
    EXPECT_STREQ(LoadOptionNames[LoadOption_ResidualsOnly], "ResidualsOnly");
    EXPECT_STREQ(LoadOptionNames[LoadOption_MultipleCaseAndData], "MultipleCaseAndData");
    EXPECT_STREQ(OldLoadOptionNames[0], "GridAndSolution");
    EXPECT_STREQ(OldLoadOptionNames[1], "GridOnly");
    EXPECT_STREQ(OldLoadOptionNames[2], "ResidualsOnly");
    EXPECT_STREQ(GridZonesNames[GridZones_CellsAndBoundaries], "CellsAndBoundaries");
    EXPECT_STREQ(GridZonesNames[GridZones_CellsOnly], "CellsOnly");
    EXPECT_STREQ(GridZonesNames[GridZones_BoundariesOnly], "BoundariesOnly");
    EXPECT_STREQ(GridZonesNames[GridZones_SelectedZones], "SelectedZones");
    EXPECT_STREQ(AveragingMethodNames[AveragingMethod_Arithmetic], "Arithmetic");
    EXPECT_STREQ(AveragingMethodNames[AveragingMethod_Laplacian], "Laplacian");
    EXPECT_STREQ(UnsteadyOptionNames[UnsteadyOption_ReadTimeFromDataFiles], "ReadTimeFromDataFiles");
    EXPECT_STREQ(UnsteadyOptionNames[UnsteadyOption_ApplyConstantTimeInterval], "ApplyConstantTimeInterval");
}

// ---- parseBoolean -------------------------------------------------------------------

TEST_F(LoadInstructionsTest, BooleanWordsInAnyCase) {
    const std::vector<std::pair<const char*, bool>> words = {
        {"Yes", true}, {"No", false}, {"True", true}, {"False", false}, {"On", true}, {"Off", false},
        {"YES", true}, {"no", false}, {"tRuE", true}, {"FALSE", false}, {"on", true}, {"oFF", false}};
    for (const auto& word : words) {
        bool target = !word.second;
        parseBoolean(target, word.first);
        EXPECT_EQ(target, word.second) << word.first;
    }
    EXPECT_EQ(shown(), kNone);
}

TEST_F(LoadInstructionsTest, UnknownBooleanKeepsTheTargetAndSaysSo) {
    for (bool start : {false, true}) {
        bool target = start;
        parseBoolean(target, "maybe");
        EXPECT_EQ(target, start);
    }
    bool target = true;
    parseBoolean(target, "1");
    EXPECT_TRUE(target);
    EXPECT_EQ(shown(), (std::vector<Shown>{
                           info("Fluent data loader: Unrecognized boolean value: 'maybe'. Ignoring..."),
                           info("Fluent data loader: Unrecognized boolean value: 'maybe'. Ignoring..."),
                           info("Fluent data loader: Unrecognized boolean value: '1'. Ignoring...")}));
    EXPECT_EQ(minihost::messages()[0].boxType, 2);
}

// ---- Standard syntax: values ----------------------------------------------------------

TEST_F(LoadInstructionsTest, StandardSyntaxStartValues) {
    Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas"}));
    parse.li.append = true;  // the start values overwrite the driver's
    parse.li.averageToNodes = true;
    parse.li.unsteadyOption = UnsteadyOption_ApplyConstantTimeInterval;
    ASSERT_TRUE(parse.standard());
    EXPECT_FALSE(parse.li.append);
    EXPECT_EQ(parse.li.fileList, nullptr);
    EXPECT_FALSE(parse.li.saveUncompressedFiles);
    EXPECT_EQ(parse.li.gridZones, GridZones_CellsAndBoundaries);
    EXPECT_FALSE(parse.li.averageToNodes);
    EXPECT_EQ(parse.li.averagingMethod, AveragingMethod_Arithmetic);
    EXPECT_EQ(parse.li.unsteadyOption, UnsteadyOption_ReadTimeFromDataFiles);
    EXPECT_EQ(parse.li.timeInterval, 1.0);
    // Fields without a start value keep the driver's.
    EXPECT_TRUE(parse.li.useMetadata);
    EXPECT_FALSE(parse.li.includeParticleData);
    EXPECT_FALSE(parse.li.loadAdditionalQuantities);
    EXPECT_EQ(parse.li.zoneList, nullptr);
    EXPECT_EQ(parse.li.varNameList, nullptr);
    EXPECT_EQ(shown(), kNone);
}

TEST_F(LoadInstructionsTest, EveryKeySetsItsField) {
    Parse parse(standard({"Append",
                          "Yes",
                          "LoadOption",
                          "CaseAndData",
                          "FILENAME_CaseFile",
                          "a.cas",
                          "GridZones",
                          "SelectedZones",
                          "FILENAME_DataFile",
                          "a.dat",
                          "IncludeParticleData",
                          "Yes",
                          "AverageToNodes",
                          "Yes",
                          "AveragingMethod",
                          "Laplacian",
                          "ZoneList",
                          "1-3,5",
                          "VarNameList",
                          "Pressure\nVelocity Magnitude",
                          "UnsteadyOption",
                          "ApplyConstantTimeInterval",
                          "TimeInterval",
                          "0.25",
                          "AssignStrandIDs",
                          "Yes",
                          "AddZonesToExistingStrands",
                          "Yes",
                          "AllPolyZones",
                          "Yes",
                          "USE_METADATA",
                          "No",
                          "LoadAdditionalQuantities",
                          "Yes"}));
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(shown(), kNone);
    EXPECT_TRUE(parse.li.append);
    EXPECT_EQ(parse.li.loadOption, LoadOption_CaseAndData);
    EXPECT_EQ(parse.caseName(), "a.cas");
    EXPECT_EQ(parse.li.gridZones, GridZones_SelectedZones);
    EXPECT_EQ(parse.dataName(), "a.dat");
    EXPECT_TRUE(parse.li.includeParticleData);
    EXPECT_TRUE(parse.li.averageToNodes);
    EXPECT_EQ(parse.li.averagingMethod, AveragingMethod_Laplacian);
    ASSERT_NE(parse.li.zoneList, nullptr);
    EXPECT_EQ(minihost::setMembers(parse.li.zoneList), (std::vector<ZorIndex>{1, 2, 3, 5}));
    ASSERT_NE(parse.li.varNameList, nullptr);
    EXPECT_EQ(minihost::stringListToVector(parse.li.varNameList),
              (std::vector<std::string>{"Pressure", "Velocity Magnitude"}));
    EXPECT_EQ(parse.li.unsteadyOption, UnsteadyOption_ApplyConstantTimeInterval);
    EXPECT_EQ(parse.li.timeInterval, 0.25);
    EXPECT_TRUE(parse.li.assignStrandIDs);
    EXPECT_TRUE(parse.li.addZonesToExistingStrands);
    EXPECT_TRUE(parse.li.allZonesAsPolyhedral);
    EXPECT_FALSE(parse.li.useMetadata);
    EXPECT_TRUE(parse.li.loadAdditionalQuantities);
}

TEST_F(LoadInstructionsTest, TheExactArgumentListFillsEachOutput) {
    ZorStringList list = minihost::makeStringList(standard(
        {"LoadOption", "ResidualsOnly", "FILENAME_DataFile", "r.dat", "GridZones", "BoundariesOnly"}));
    bool append = true;
    ZorStringList fileList = nullptr;
    bool save = true;
    LoadOption loadOption = LoadOption_Unset;
    char* caseFileName = nullptr;
    GridZones gridZones = GridZones_Unset;
    char* dataFileName = nullptr;
    bool particles = false, poly = false, average = true;
    AveragingMethod method = AveragingMethod_Laplacian;
    ZorSet zones = nullptr;
    ZorStringList vars = nullptr;
    UnsteadyOption unsteady = UnsteadyOption_ApplyConstantTimeInterval;
    double interval = 0.0;
    bool strands = false, existing = false, metadata = true, quantities = false;
    ASSERT_TRUE(ParseAndCheckInstructions(
        list, append, fileList, save, loadOption, caseFileName, gridZones, dataFileName, particles, poly,
        average, method, zones, vars, unsteady, interval, strands, existing, metadata, quantities, nullptr));
    EXPECT_FALSE(append);
    EXPECT_FALSE(save);
    EXPECT_EQ(loadOption, LoadOption_ResidualsOnly);
    EXPECT_EQ(caseFileName, nullptr);
    EXPECT_EQ(gridZones, GridZones_BoundariesOnly);
    ASSERT_NE(dataFileName, nullptr);
    EXPECT_STREQ(dataFileName, "r.dat");
    EXPECT_FALSE(average);
    EXPECT_EQ(method, AveragingMethod_Arithmetic);
    EXPECT_EQ(unsteady, UnsteadyOption_ReadTimeFromDataFiles);
    EXPECT_EQ(interval, 1.0);
    ZorUtilStringDealloc(&dataFileName);
    ZorUtilStringListDealloc(&list);
}

TEST_F(LoadInstructionsTest, KeyAndValueAreFoldedToCapitals) {
    Parse parse(standard({"append", "YES", "loadoption", "caseonly", "filename_casefile", "A.cas",
                          "GRIDZONES", "cellsonly", "averagingmethod", "LAPLACIAN", "unsteadyoption",
                          "applyconstanttimeinterval"}));
    ASSERT_TRUE(parse.standard());
    EXPECT_TRUE(parse.li.append);
    EXPECT_EQ(parse.li.loadOption, LoadOption_CaseOnly);
    EXPECT_EQ(parse.caseName(), "A.cas") << "names are copied as they are";
    EXPECT_EQ(parse.li.gridZones, GridZones_CellsOnly);
    EXPECT_EQ(parse.li.averagingMethod, AveragingMethod_Laplacian);
    EXPECT_EQ(parse.li.unsteadyOption, UnsteadyOption_ApplyConstantTimeInterval);
    EXPECT_EQ(shown(), kNone);
}

TEST_F(LoadInstructionsTest, BadAverageToNodesKeepsTheStartValueWithABox) {
    Parse parse(
        standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas", "AverageToNodes", "maybe"}));
    ASSERT_TRUE(parse.standard());
    EXPECT_FALSE(parse.li.averageToNodes);
    EXPECT_EQ(
        shown(),
        (std::vector<Shown>{info("Fluent data loader: Unrecognized boolean value: 'maybe'. Ignoring...")}));
}

TEST_F(LoadInstructionsTest, TheLastOfIsUnsteadyAndUnsteadyOptionCounts) {
    {
        Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas", "IsUnsteady", "Yes",
                              "UnsteadyOption", "ReadTimeFromDataFiles"}));
        ASSERT_TRUE(parse.standard());
        EXPECT_EQ(parse.li.unsteadyOption, 0);
    }
    {
        Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas", "UnsteadyOption",
                              "ReadTimeFromDataFiles", "IsUnsteady", "Yes"}));
        ASSERT_TRUE(parse.standard());
        EXPECT_EQ(parse.li.unsteadyOption, 1);
    }
    {
        Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas", "UnsteadyOption",
                              "ApplyConstantTimeInterval", "IsUnsteady", "off"}));
        ASSERT_TRUE(parse.standard());
        EXPECT_EQ(parse.li.unsteadyOption, 0);
    }
    {
        Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas", "UnsteadyOption",
                              "ApplyConstantTimeInterval", "IsUnsteady", "sometimes"}));
        ASSERT_TRUE(parse.standard());
        EXPECT_EQ(parse.li.unsteadyOption, 1) << "a bad boolean leaves the option alone";
    }
    EXPECT_EQ(shown(), (std::vector<Shown>{info(
                           "Fluent data loader: Unrecognized boolean value: 'sometimes'. Ignoring...")}));
}

TEST_F(LoadInstructionsTest, BadEnumeratedValuesAreShownAndIgnored) {
    Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas", "LoadOption", "Everything",
                          "GridZones", "SomeZones", "AveragingMethod", "Median", "UnsteadyOption", "Whenever",
                          "GridZones", "CellsOnly"}));
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(parse.li.loadOption, LoadOption_CaseOnly);
    EXPECT_EQ(parse.li.gridZones, GridZones_CellsOnly);
    EXPECT_EQ(parse.li.averagingMethod, AveragingMethod_Arithmetic);
    EXPECT_EQ(parse.li.unsteadyOption, UnsteadyOption_ReadTimeFromDataFiles);
    EXPECT_EQ(
        shown(),
        (std::vector<Shown>{
            info("Fluent data loader: Unrecognized value for parameter LoadOption 'Everything'.Ignoring..."),
            info("Fluent data loader: Unrecognized value for parameter GridZones 'SomeZones'.Ignoring..."),
            info("Fluent data loader:\nUnrecognized value for parameter AveragingMethod "
                 "'Median'.\nIgnoring..."),
            info("Fluent data loader: Unrecognized value for parameter UnsteadyOption "
                 "'Whenever'.Ignoring...")}));
    for (const minihost::Message& message : minihost::messages()) {
        EXPECT_EQ(message.boxType, 2);
    }
}

TEST_F(LoadInstructionsTest, UnknownKeysAreShownAndPassedOver) {
    Parse parse(standard({"Colour", "Blue", "LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas"}));
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(parse.li.loadOption, LoadOption_CaseOnly);
    EXPECT_EQ(
        shown(),
        (std::vector<Shown>{info("Fluent data loader:\nUnrecognized parameter 'Colour'.\nIgnoring...")}));
}

TEST_F(LoadInstructionsTest, TheVersionStringIsNeverRead) {
    Parse parse({"STANDARDSYNTAX", "LoadOption", "LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas"});
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(parse.li.loadOption, LoadOption_CaseOnly);
    EXPECT_EQ(shown(), kNone);
}

TEST_F(LoadInstructionsTest, AKeyWithoutValueInTheLastPlaceIsNotRead) {
    Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas", "Append"}));
    ASSERT_TRUE(parse.standard());
    EXPECT_FALSE(parse.li.append);
    EXPECT_EQ(shown(), kNone);
    EXPECT_EQ(parse.list(), standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas", "Append",
                                      "SaveUncompressedFiles", "No"}));
}

TEST_F(LoadInstructionsTest, SecondFileNamesAreShownAndIgnored) {
    Parse parse(standard({"LoadOption", "CaseAndData", "FILENAME_CaseFile", "a.cas", "FILENAME_DataFile",
                          "a.dat", "FILENAME_CaseFile", "b.cas", "FILENAME_DataFile", "b.dat"}));
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(parse.caseName(), "a.cas");
    EXPECT_EQ(parse.dataName(), "a.dat");
    EXPECT_EQ(shown(), (std::vector<Shown>{
                           error("Multiple FILENAME_CaseFile parameters.\nDuplicates will be ignored."),
                           error("Multiple FILENAME_DataFile parameters.\nDuplicates will be ignored.")}));
}

// ---- Standard syntax: failures ------------------------------------------------------

TEST_F(LoadInstructionsTest, MissingLoadOptionFails) {
    Parse parse(standard({"FILENAME_CaseFile", "a.cas"}));
    EXPECT_FALSE(parse.standard());
    EXPECT_EQ(
        shown(),
        (std::vector<Shown>{error(
            "Invalid or missing setting for LoadOption in\nthe Fluent Data Loader instruction string.")}));
    EXPECT_EQ(parse.caseName(), "a.cas") << "what was made stays for the driver to free";
    EXPECT_EQ(parse.list(), standard({"FILENAME_CaseFile", "a.cas"}))
        << "a failed parse does not complete the list";
}

TEST_F(LoadInstructionsTest, MissingCaseFileNameFailsWithTheCaseFileMessage) {
    for (const char* option : {"CaseAndData", "CaseOnly"}) {
        minihost::clearMessages();
        Parse parse(standard({"LoadOption", option, "FILENAME_DataFile", "a.dat"}));
        EXPECT_FALSE(parse.standard()) << option;
        EXPECT_EQ(shown(),
                  (std::vector<Shown>{error("The instruction string for the Fluent Data Loader\nis missing "
                                            "the name of the case file.")}))
            << option;
    }
}

TEST_F(LoadInstructionsTest, MissingDataFileNameFailsWithTheDataFileMessage) {
    for (const char* option : {"CaseAndData", "ResidualsOnly"}) {
        minihost::clearMessages();
        Parse parse(standard({"LoadOption", option, "FILENAME_CaseFile", "a.cas"}));
        EXPECT_FALSE(parse.standard()) << option;
        EXPECT_EQ(shown(),
                  (std::vector<Shown>{error("The instruction string for the Fluent Data Loader\nis missing "
                                            "the name of the data file.")}))
            << option;
    }
}

TEST_F(LoadInstructionsTest, MultipleCaseAndDataWithoutFileListFails) {
    Parse parse(standard({"LoadOption", "MultipleCaseAndData"}));
    EXPECT_FALSE(parse.standard());
    EXPECT_EQ(shown(),
              (std::vector<Shown>{error("The instruction string for the Fluent Data Loader\nis missing the "
                                        "list of files to load.")}));
}

TEST_F(LoadInstructionsTest, FileListEndingWithItsLastNameFails) {
    Parse parse(standard({"LoadOption", "MultipleCaseAndData", "FILELIST_Files", "2", "a.cas", "a.dat"}));
    EXPECT_FALSE(parse.standard());
    EXPECT_EQ(
        shown(),
        (std::vector<Shown>{error("Fluent data loader: Expected 2 files in file list, found only 2.")}));
}

TEST_F(LoadInstructionsTest, FileListWithAPairBehindItSucceeds) {
    Parse parse(standard({"FILELIST_Files", "2", "a.cas", "a.dat", "LoadOption", "MultipleCaseAndData"}));
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(parse.files(), (std::vector<std::string>{"a.cas", "a.dat"}));
    EXPECT_EQ(parse.li.loadOption, LoadOption_MultipleCaseAndData);
    EXPECT_EQ(shown(), kNone);
}

TEST_F(LoadInstructionsTest, FileListLongerThanTheListFails) {
    Parse parse(standard({"LoadOption", "MultipleCaseAndData", "FILELIST_Files", "5", "a.cas", "a.dat"}));
    EXPECT_FALSE(parse.standard());
    EXPECT_EQ(
        shown(),
        (std::vector<Shown>{error("Fluent data loader: Expected 5 files in file list, found only 2.")}));
}

TEST_F(LoadInstructionsTest, FileListCountBelowOneFails) {
    for (const char* count : {"0", "-3", "many"}) {
        minihost::clearMessages();
        Parse parse(
            standard({"LoadOption", "MultipleCaseAndData", "FILELIST_Files", count, "a.cas", "x", "y"}));
        EXPECT_FALSE(parse.standard());
        EXPECT_EQ(shown(),
                  (std::vector<Shown>{error(std::string("Fluent data loader: Bad value for number of files "
                                                        "in file list: ") +
                                            count + ".")}));
    }
}

TEST_F(LoadInstructionsTest, SecondFileListIsPassedOverWithAMessage) {
    Parse parse(standard({"FILELIST_Files", "1", "a.cas", "FILELIST_Files", "2", "b.cas", "b.dat",
                          "LoadOption", "MultipleCaseAndData"}));
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(parse.files(), (std::vector<std::string>{"a.cas"}));
    EXPECT_EQ(parse.li.loadOption, LoadOption_MultipleCaseAndData) << "the walk goes on behind the names";
    EXPECT_EQ(shown(), (std::vector<Shown>{error(
                           "Multiple FILELIST_Files parameters encountered.\nDuplicates will be ignored.")}));
}

TEST_F(LoadInstructionsTest, FileListIsClassifiedAndOrdered) {
    Parse parse(standard(
        {"FILELIST_Files", "4", "b.dat", "a.cas", "a.dat", "b.cas", "LoadOption", "MultipleCaseAndData"}));
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(parse.files(), (std::vector<std::string>{"a.cas", "a.dat", "b.cas", "b.dat"}));
    EXPECT_EQ(parse.list(), standard({"FILELIST_Files", "4", "b.dat", "a.cas", "a.dat", "b.cas", "LoadOption",
                                      "MultipleCaseAndData", "SaveUncompressedFiles", "No"}))
        << "the instruction list keeps the user's order";
}

TEST_F(LoadInstructionsTest, FileListClassificationFailureFailsTheParse) {
    Parse parse(
        standard({"FILELIST_Files", "3", "a.cas", "b.cas", "a.dat", "LoadOption", "MultipleCaseAndData"}));
    EXPECT_FALSE(parse.standard());
    EXPECT_EQ(shown(),
              (std::vector<Shown>{error("Fluent data loader:\nThe file list contains 2 case files and 1 data "
                                        "files. If you load more than one case file and data file, then "
                                        "they must be matched pairs.")}));
}

TEST_F(LoadInstructionsTest, TimeIntervalIsReadEvenWhenNotUsed) {
    {
        Parse parse(
            standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas", "TimeInterval", "2.5D-1"}));
        ASSERT_TRUE(parse.standard());
        EXPECT_EQ(parse.li.unsteadyOption, UnsteadyOption_ReadTimeFromDataFiles);
        EXPECT_EQ(parse.li.timeInterval, 0.25);
    }
    Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas", "UnsteadyOption",
                          "ReadTimeFromDataFiles", "TimeInterval", "soon"}));
    EXPECT_FALSE(parse.standard());
    EXPECT_EQ(shown(), (std::vector<Shown>{error("Bad value for TimeInterval: 'soon'.")}));
}

TEST_F(LoadInstructionsTest, BadZoneListFails) {
    Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas", "ZoneList", "3-1"}));
    EXPECT_FALSE(parse.standard());
    EXPECT_EQ(parse.li.zoneList, nullptr);
    EXPECT_EQ(shown(), (std::vector<Shown>{error("Bad value for ZoneList set: '3-1'.")}));
}

TEST_F(LoadInstructionsTest, ZoneListIsReadWithoutBrackets) {
    Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas", "ZoneList", "[1-2]"}));
    EXPECT_FALSE(parse.standard());
    EXPECT_EQ(shown(), (std::vector<Shown>{error("Bad value for ZoneList set: '[1-2]'.")}));
}

TEST_F(LoadInstructionsTest, VariableNamesSplitAtNewlines) {
    Parse parse(standard(
        {"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas", "VarNameList", "X\r\nY\nPressure"}));
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(minihost::stringListToVector(parse.li.varNameList),
              (std::vector<std::string>{"X", "Y", "Pressure"}));
}

// ---- Completing the list ------------------------------------------------------------

TEST_F(LoadInstructionsTest, AbsentSaveKeyIsAppendedWithTheValueUsed) {
    Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas"}));
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(parse.list(), standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas",
                                      "SaveUncompressedFiles", "No"}));
}

TEST_F(LoadInstructionsTest, PresentSaveKeyLeavesTheListAlone) {
    Parse parse(
        standard({"SaveUncompressedFiles", "yes", "LoadOption", "CaseOnly", "FILENAME_CaseFile", "a.cas"}));
    ASSERT_TRUE(parse.standard());
    EXPECT_TRUE(parse.li.saveUncompressedFiles);
    EXPECT_EQ(parse.list(), standard({"SaveUncompressedFiles", "yes", "LoadOption", "CaseOnly",
                                      "FILENAME_CaseFile", "a.cas"}));
}

// ---- Compressed case and data files ----------------------------------------------------

TEST_F(LoadInstructionsTest, CompressedCaseFileIsReplacedByATemporaryCopy) {
    writeGzip(path("mesh.cas.GZ"), "case contents");
    Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", path("mesh.cas.GZ")}));
    minihost::pushAnswer(false);  // do not save beside
    std::vector<std::string> told;
    ASSERT_TRUE(parse.standard([&told](const std::string& text) {
        told.push_back(text);
        return true;
    }));
    EXPECT_TRUE(endsWith(parse.caseName(), ".cas")) << parse.caseName();
    EXPECT_NE(parse.caseName(), path("mesh.cas"));
    EXPECT_EQ(readFile(parse.caseName()), "case contents");
    EXPECT_FALSE(parse.li.saveUncompressedFiles);
    EXPECT_EQ(shown(), (std::vector<Shown>{question(kSaveQuestion)}));
    EXPECT_EQ(told, (std::vector<std::string>{"Uncompressing " + path("mesh.cas.GZ") + "..."}));
    EXPECT_EQ(parse.list(), standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", path("mesh.cas.GZ"),
                                      "SaveUncompressedFiles", "No"}))
        << "the list keeps the compressed name and records the answer";
}

TEST_F(LoadInstructionsTest, CaseAndDataAreAskedOnceAndSavedBesideOnYes) {
    writeGzip(path("run.cas.gz"), "the case");
    writeGzip(path("run.dat.gz"), "the data");
    Parse parse(standard({"LoadOption", "CaseAndData", "FILENAME_CaseFile", path("run.cas.gz"),
                          "FILENAME_DataFile", path("run.dat.gz")}));
    minihost::pushAnswer(true);
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(parse.caseName(), path("run.cas"));
    EXPECT_EQ(parse.dataName(), path("run.dat"));
    EXPECT_EQ(readFile(path("run.cas")), "the case");
    EXPECT_EQ(readFile(path("run.dat")), "the data");
    EXPECT_TRUE(parse.li.saveUncompressedFiles);
    EXPECT_EQ(shown(), (std::vector<Shown>{question(kSaveQuestion)}));
    EXPECT_EQ(parse.list().back(), "Yes");
    EXPECT_EQ(parse.list()[parse.list().size() - 2], "SaveUncompressedFiles");
}

TEST_F(LoadInstructionsTest, ExistingCopiesAreAskedAboutOnceAndKeptOnNo) {
    writeGzip(path("run.cas.gz"), "new case");
    writeGzip(path("run.dat.gz"), "new data");
    writeFile(path("run.cas"), "old case");
    writeFile(path("run.dat"), "old data");
    Parse parse(standard({"LoadOption", "CaseAndData", "FILENAME_CaseFile", path("run.cas.gz"),
                          "FILENAME_DataFile", path("run.dat.gz"), "SaveUncompressedFiles", "Yes"}));
    minihost::pushAnswer(false);  // do not overwrite
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(parse.caseName(), path("run.cas"));
    EXPECT_EQ(parse.dataName(), path("run.dat"));
    EXPECT_EQ(readFile(path("run.cas")), "old case");
    EXPECT_EQ(readFile(path("run.dat")), "old data");
    EXPECT_EQ(shown(),
              (std::vector<Shown>{question("The uncompressed file " + path("run.cas") +
                                           " already exists.\nOverwrite this and any other uncompressed "
                                           "files for the dataset?")}));
}

TEST_F(LoadInstructionsTest, InALayoutNothingIsAskedAndCopiesAreOverwritten) {
    writeGzip(path("run.cas.gz"), "new case");
    writeFile(path("run.cas"), "old case");
    minihost::setProcessingLayout(true);
    Parse parse(standard(
        {"LoadOption", "CaseOnly", "FILENAME_CaseFile", path("run.cas.gz"), "SaveUncompressedFiles", "On"}));
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(parse.caseName(), path("run.cas"));
    EXPECT_EQ(readFile(path("run.cas")), "new case");
    EXPECT_EQ(shown(), kNone);
}

TEST_F(LoadInstructionsTest, InALayoutWithoutTheSaveKeyTemporaryCopiesAreUsed) {
    writeGzip(path("run.cas.gz"), "case");
    minihost::setProcessingLayout(true);
    Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", path("run.cas.gz")}));
    ASSERT_TRUE(parse.standard());
    EXPECT_NE(parse.caseName(), path("run.cas"));
    EXPECT_TRUE(endsWith(parse.caseName(), ".cas"));
    EXPECT_EQ(readFile(parse.caseName()), "case");
    EXPECT_EQ(shown(), kNone);
    EXPECT_EQ(parse.list().back(), "No");
}

TEST_F(LoadInstructionsTest, AfterAPreScanNoQuestionIsAsked) {
    writeGzip(path("run.cas.gz"), "new case");
    writeFile(path("run.cas"), "old case");
    FilesArePreScanned = true;
    // Without the key the copy goes to a temporary file, with no question.
    {
        Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", path("run.cas.gz")}));
        ASSERT_TRUE(parse.standard());
        EXPECT_NE(parse.caseName(), path("run.cas"));
        EXPECT_EQ(readFile(parse.caseName()), "new case");
    }
    // With save on, the copy beside is overwritten, with no question.
    {
        Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", path("run.cas.gz"),
                              "SaveUncompressedFiles", "Yes"}));
        ASSERT_TRUE(parse.standard());
        EXPECT_EQ(parse.caseName(), path("run.cas"));
        EXPECT_EQ(readFile(path("run.cas")), "new case");
    }
    EXPECT_EQ(shown(), kNone);
}

TEST_F(LoadInstructionsTest, DotZCaseFileIsNotUncompressedHere) {
    Parse parse(standard({"LoadOption", "CaseOnly", "FILENAME_CaseFile", path("mesh.cas.Z")}));
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(parse.caseName(), path("mesh.cas.Z"));
    EXPECT_EQ(shown(), kNone);
}

TEST_F(LoadInstructionsTest, DotZFileInAFileListFailsTheParse) {
    writeFile(path("a.cas"), "case");
    Parse parse(standard(
        {"FILELIST_Files", "2", path("a.cas"), path("a.dat.Z"), "LoadOption", "MultipleCaseAndData"}));
    EXPECT_FALSE(parse.standard());
    EXPECT_EQ(shown(),
              (std::vector<Shown>{error("Fluent data loader:\nThe file '" + path("a.dat.Z") +
                                        "' appears to be .Z compressed.\n.Z compression is not supported.  "
                                        "Please uncompress before loading.")}));
}

TEST_F(LoadInstructionsTest, CompressedFilesOfAListShareTheQuestionsWithTheRest) {
    writeGzip(path("a.cas.gz"), "case a");
    writeGzip(path("a.dat.gz"), "data a");
    Parse parse(standard(
        {"FILELIST_Files", "2", path("a.dat.gz"), path("a.cas.gz"), "LoadOption", "MultipleCaseAndData"}));
    minihost::pushAnswer(true);
    ASSERT_TRUE(parse.standard());
    EXPECT_EQ(parse.files(), (std::vector<std::string>{path("a.cas"), path("a.dat")}));
    EXPECT_EQ(shown(), (std::vector<Shown>{question(kSaveQuestion)}));
    EXPECT_EQ(parse.list().back(), "Yes");
}

TEST_F(LoadInstructionsTest, StopFromTheProgressCallbackEndsTheParseSilently) {
    writeGzip(path("run.cas.gz"), "case");
    Parse parse(standard(
        {"LoadOption", "CaseOnly", "FILENAME_CaseFile", path("run.cas.gz"), "SaveUncompressedFiles", "No"}));
    EXPECT_FALSE(parse.standard([](const std::string&) { return false; }));
    EXPECT_EQ(shown(), kNone);
    EXPECT_EQ(parse.caseName(), path("run.cas.gz"));
}

TEST_F(LoadInstructionsTest, CutCompressedFileFailsWithTheUncompressMessage) {
    writeGzip(path("full.gz"), std::string(5000, 'x'));
    std::string whole = readFile(path("full.gz"));
    writeFile(path("run.cas.gz"), whole.substr(0, whole.size() / 2));
    Parse parse(standard(
        {"LoadOption", "CaseOnly", "FILENAME_CaseFile", path("run.cas.gz"), "SaveUncompressedFiles", "Yes"}));
    EXPECT_FALSE(parse.standard());
    EXPECT_EQ(shown(),
              (std::vector<Shown>{error("Error uncompressing the file " + path("run.cas.gz") + ".")}));
}

// ---- Old syntax --------------------------------------------------------------------------

TEST_F(LoadInstructionsTest, OldSyntaxReadsItsFourKeys) {
    Parse parse({"-CaseFile", "a.cas", "-DataFile", "a.dat", "-LoadOption", "gridandsolution", "-GRIDZONES",
                 "BoundariesOnly"});
    ASSERT_TRUE(parse.old());
    EXPECT_EQ(parse.li.loadOption, LoadOption_CaseAndData);
    EXPECT_EQ(parse.caseName(), "a.cas");
    EXPECT_EQ(parse.dataName(), "a.dat");
    EXPECT_EQ(parse.li.gridZones, GridZones_BoundariesOnly);
    EXPECT_EQ(shown(), kNone);
    // The rest keeps the driver's defaults: the old syntax averages to nodes.
    EXPECT_TRUE(parse.li.averageToNodes);
    EXPECT_EQ(parse.li.unsteadyOption, UnsteadyOption_ApplyConstantTimeInterval);
    EXPECT_EQ(parse.li.timeInterval, 0.0);
    EXPECT_EQ(parse.list(),
              (std::vector<std::string>{"-CaseFile", "a.cas", "-DataFile", "a.dat", "-LoadOption",
                                        "gridandsolution", "-GRIDZONES", "BoundariesOnly"}))
        << "the old syntax leaves the list alone";
}

TEST_F(LoadInstructionsTest, OldSyntaxOptionsAndDefaultGridZones) {
    {
        Parse parse({"-LoadOption", "GridOnly", "-CaseFile", "a.cas"});
        ASSERT_TRUE(parse.old());
        EXPECT_EQ(parse.li.loadOption, LoadOption_CaseOnly);
        EXPECT_EQ(parse.li.gridZones, GridZones_CellsAndBoundaries);
    }
    {
        Parse parse({"-LoadOption", "ResidualsOnly", "-DataFile", "a.dat"});
        ASSERT_TRUE(parse.old());
        EXPECT_EQ(parse.li.loadOption, LoadOption_ResidualsOnly);
    }
    EXPECT_EQ(shown(), kNone);
}

TEST_F(LoadInstructionsTest, OldSyntaxSecondNamesOverwriteTheFirst) {
    Parse parse({"-CaseFile", "a.cas", "-DataFile", "a.dat", "-CaseFile", "b.cas", "-DataFile", "b.dat",
                 "-LoadOption", "GridAndSolution"});
    ASSERT_TRUE(parse.old());
    EXPECT_EQ(parse.caseName(), "b.cas");
    EXPECT_EQ(parse.dataName(), "b.dat");
    EXPECT_EQ(shown(), kNone);
}

TEST_F(LoadInstructionsTest, OldSyntaxBadValuesAndUnknownKeys) {
    Parse parse({"-LoadOption", "CaseAndData", "-GridZones", "Most", "-Colour", "Red", "-CaseFile", "a.cas",
                 "-LoadOption", "GridOnly"});
    ASSERT_TRUE(parse.old());
    EXPECT_EQ(parse.li.loadOption, LoadOption_CaseOnly);
    EXPECT_EQ(
        shown(),
        (std::vector<Shown>{
            info("Fluent data loader:\nUnrecognized value for parameter -LoadOption "
                 "'CaseAndData'.\nIgnoring..."),
            info("Fluent data loader:\nUnrecognized value for parameter -GridZones 'Most'.\nIgnoring..."),
            info("Fluent data loader:\nUnrecognized parameter '-Colour'.\nIgnoring...")}));
}

TEST_F(LoadInstructionsTest, OldSyntaxBadValuesKeepTheEarlierOnes) {
    Parse parse({"-LoadOption", "GridOnly", "-GridZones", "CellsOnly", "-LoadOption", "Everything",
                 "-GridZones", "Most", "-CaseFile", "a.cas"});
    ASSERT_TRUE(parse.old());
    EXPECT_EQ(parse.li.loadOption, LoadOption_CaseOnly);
    EXPECT_EQ(parse.li.gridZones, GridZones_CellsOnly);
    EXPECT_EQ(
        shown(),
        (std::vector<Shown>{
            info("Fluent data loader:\nUnrecognized value for parameter -LoadOption "
                 "'Everything'.\nIgnoring..."),
            info("Fluent data loader:\nUnrecognized value for parameter -GridZones 'Most'.\nIgnoring...")}));
    for (const minihost::Message& message : minihost::messages()) {
        EXPECT_EQ(message.boxType, 2);
    }
}

TEST_F(LoadInstructionsTest, OldSyntaxWithoutLoadOptionFails) {
    Parse parse({"-CaseFile", "a.cas", "-DataFile", "a.dat"});
    EXPECT_FALSE(parse.old());
    EXPECT_EQ(parse.li.loadOption, LoadOption_Unset);
    EXPECT_EQ(
        shown(),
        (std::vector<Shown>{error(
            "Invalid or missing setting for LoadOption in\nthe Fluent Data Loader instruction string.")}));
}

TEST_F(LoadInstructionsTest, OldSyntaxMissingNamesFail) {
    {
        Parse parse({"-LoadOption", "GridAndSolution", "-DataFile", "a.dat"});
        EXPECT_FALSE(parse.old());
    }
    {
        Parse parse({"-LoadOption", "GridAndSolution", "-CaseFile", "a.cas"});
        EXPECT_FALSE(parse.old());
    }
    {
        Parse parse({"-LoadOption", "ResidualsOnly", "-CaseFile", "a.cas"});
        EXPECT_FALSE(parse.old());
    }
    EXPECT_EQ(
        shown(),
        (std::vector<Shown>{
            error("The instruction string for the Fluent Data Loader\nis missing the name of the case file."),
            error("The instruction string for the Fluent Data Loader\nis missing the name of the data file."),
            error("The instruction string for the Fluent Data Loader\nis missing the name of the data "
                  "file.")}));
}

TEST_F(LoadInstructionsTest, OldSyntaxLastOddStringIsNotRead) {
    Parse parse({"-LoadOption", "GridOnly", "-CaseFile", "a.cas", "-CaseFile"});
    ASSERT_TRUE(parse.old());
    EXPECT_EQ(parse.caseName(), "a.cas");
    EXPECT_EQ(shown(), kNone);
}

TEST_F(LoadInstructionsTest, ListsThatGoToTheOldSyntaxWithoutAMarker) {
    // An empty first string and an empty list both end up here.
    {
        Parse parse({"", "GridOnly"});
        EXPECT_FALSE(parse.old());
    }
    {
        Parse parse({});
        EXPECT_FALSE(parse.old());
    }
    EXPECT_EQ(shown(),
              (std::vector<Shown>{
                  info("Fluent data loader:\nUnrecognized parameter ''.\nIgnoring..."),
                  error("Invalid or missing setting for LoadOption in\nthe Fluent Data Loader instruction "
                        "string."),
                  error("Invalid or missing setting for LoadOption in\nthe Fluent Data Loader instruction "
                        "string.")}));
}

TEST_F(LoadInstructionsTest, OldSyntaxUncompressesNothing) {
    Parse parse({"-LoadOption", "GridOnly", "-CaseFile", "mesh.cas.gz"});
    ASSERT_TRUE(parse.old());
    EXPECT_EQ(parse.caseName(), "mesh.cas.gz");
    EXPECT_EQ(shown(), kNone);
}
