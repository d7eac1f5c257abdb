// The list of the user's cell-function names in a Variables section.

#include "DataFileTestSupport.h"

#include "datafile/AdditionalQuantities.h"

using namespace datafile_test;
using zorvane::zorutildataio::AdditionalQuantitiesParser;

namespace {

// Runs the parser on a section body held in a file; the body starts at
// `start` and the section ends where the text ends.
struct ParsedSection {
    bool result = false;
    long long positionAfter = -1;
    std::vector<std::string> names;
};

ParsedSection parse(const std::string& body, const std::string& prefix = "(37 ", bool load = true) {
    TempFile file(prefix + body + "\n(0 \"after\")\n" + std::string(64, ' '));
    FILE* stream = fopen(file.path().c_str(), "rb");
    ParsedSection parsed;
    if (stream == nullptr) {
        ADD_FAILURE() << "cannot open " << file.path();
        return parsed;
    }
    fseeko(stream, static_cast<off_t>(prefix.size()), SEEK_SET);
    AdditionalQuantitiesParser parser(load);
    parsed.result = parser.parseVariablesSection(stream, static_cast<int64_t>(prefix.size() + body.size()));
    parsed.positionAfter = ftello(stream);
    parsed.names = parser.names();
    EXPECT_EQ(parser.hasNames(), !parsed.names.empty());
    fclose(stream);
    return parsed;
}

}  // namespace

TEST(AdditionalQuantities, SectionWithoutAListLeavesItEmpty) {
    const ParsedSection parsed = parse("((flow-time 0) (rp-seg-iter? . #t)))");
    EXPECT_TRUE(parsed.result);
    EXPECT_TRUE(parsed.names.empty());
    EXPECT_EQ(parsed.positionAfter, 4);
}

TEST(AdditionalQuantities, ListOfTwoEntriesInOrder) {
    const ParsedSection parsed = parse(
        "(cell-function-list ((1 \"htc-wall\" \"Wall Func. Heat Tran. Coef.\" htc (1. 0.)) "
        "(2 \"second\" \"Second Quantity\" other (0.))))\n(flow-time 0))");
    EXPECT_TRUE(parsed.result);
    EXPECT_EQ(parsed.names, (std::vector<std::string>{"Wall Func. Heat Tran. Coef.", "Second Quantity"}));
    EXPECT_EQ(parsed.positionAfter, 4);
}

TEST(AdditionalQuantities, EntryWithOneQuotedTextIsSkipped) {
    const ParsedSection parsed =
        parse("(cell-function-list ((1 \"a\" \"First\")) (2 \"only-one\")) (3 \"c\" \"Third\"))))\n)");
    EXPECT_TRUE(parsed.result);
    EXPECT_EQ(parsed.names, (std::vector<std::string>{"First", "Third"}));
}

TEST(AdditionalQuantities, FirstDoubleParenthesisOfTheSectionIsTakenForTheFirstEntry) {
    // A "((" ahead of the list: the first entry behind it is missed.
    const ParsedSection parsed =
        parse("((flow-time 0) (cell-function-list ((1 \"a\" \"First\")) (2 \"b\" \"Second\"))))\n)");
    EXPECT_TRUE(parsed.result);
    EXPECT_EQ(parsed.names, (std::vector<std::string>{"Second"}));
}

TEST(AdditionalQuantities, MissingListEndRunsToTheEndOfTheFile) {
    const ParsedSection parsed = parse("(cell-function-list ((1 \"a\" \"First\")) )\n)");
    EXPECT_TRUE(parsed.result);
    EXPECT_TRUE(parsed.names.empty());
    EXPECT_EQ(parsed.positionAfter, 4);
}

TEST(AdditionalQuantities, ListBeyondTheSectionEndIsNotSeen) {
    TempFile file("(37 (x))\n(38 (cell-function-list ((1 \"a\" \"First\"))))))\n");
    FILE* stream = fopen(file.path().c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    fseeko(stream, 4, SEEK_SET);
    AdditionalQuantitiesParser parser(false);
    EXPECT_TRUE(parser.parseVariablesSection(stream, 8));
    EXPECT_FALSE(parser.hasNames());
    EXPECT_EQ(ftello(stream), 4);
    fclose(stream);
}

TEST(AdditionalQuantities, FlagNamesAndCopies) {
    AdditionalQuantitiesParser on(true);
    AdditionalQuantitiesParser off(false);
    EXPECT_TRUE(on.shouldLoad());
    EXPECT_FALSE(off.shouldLoad());
    on.setNames({"a", "b"});
    EXPECT_EQ(on.getName(1), "a");
    EXPECT_EQ(on.getName(2), "b");
    EXPECT_EQ(on.getName(3), "");
    off = on;
    EXPECT_EQ(off.names(), (std::vector<std::string>{"a", "b"}));
    EXPECT_FALSE(off.shouldLoad());
    AdditionalQuantitiesParser copy(on);
    EXPECT_TRUE(copy.shouldLoad());
    EXPECT_EQ(copy.names(), on.names());
}

TEST(AdditionalQuantities, SecondVariablesSectionAppends) {
    const std::string section = "(37 (cell-function-list ((1 \"a\" \"First\"))))))\n";
    TempFile file(machineConfig() + section + "(37 (cell-function-list ((1 \"b\" \"Again\"))))))\n");
    DataFile dataFile;
    ASSERT_TRUE(scanFile(&dataFile, file.path(), nullptr, LoadOption_ResidualsOnly, true));
    EXPECT_EQ(dataFile.additionalQuantities->names(), (std::vector<std::string>{"First", "Again"}));
}
