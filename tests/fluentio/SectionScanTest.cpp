// Finding, skipping and closing sections, the binary end marker, the Machine
// Configuration, the file size and the two message families.
#include <unistd.h>

#include <cstdio>
#include <string>

#include "FluentioTestSupport.h"
#include "fluentio/SectionReader.h"

namespace fluentio_test {
namespace {

using FindNextSectionTest = FluentioTest;
using SkipSectionTest = FluentioTest;
using BinarySectionEndTest = FluentioTest;
using CloseSectionTest = FluentioTest;
using MachineConfigTest = FluentioTest;
using FileSizeTest = FluentioTest;
using ReportTest = FluentioTest;

// The end marker of a binary section as files carry it.
std::string marker(int id) {
    char text[64];
    snprintf(text, sizeof(text), "End of Binary Section   %4d)", id);
    return text;
}

// ---- findNextSection ------------------------------------------------------------------

TEST_F(FindNextSectionTest, FileWithoutParenthesisEndsSilently) {
    ByteStream stream("no sections here at all\n");
    int id = -7;
    EXPECT_FALSE(findNextSection(&id, stream.get()));
    expectNoMessage();
}

TEST_F(FindNextSectionTest, EmptyFileEndsSilently) {
    ByteStream stream("");
    int id = 0;
    EXPECT_FALSE(findNextSection(&id, stream.get()));
    expectNoMessage();
}

TEST_F(FindNextSectionTest, ReadsTheDecimalIdAndStandsOnTheBody) {
    ByteStream stream("junk ) \n(2012 \n\t (a 1 5 1 0)");
    int id = 0;
    ASSERT_TRUE(findNextSection(&id, stream.get()));
    EXPECT_EQ(id, 2012);
    EXPECT_EQ(stream.rest(), "(a 1 5 1 0)");
    expectNoMessage();
}

TEST_F(FindNextSectionTest, WalksConsecutiveSectionsPassingClosingParentheses) {
    ByteStream stream("(0 \"Grid:\")\n(2 3)\n(10 (0 1 8 0 3))\n");
    int id = -1;
    ASSERT_TRUE(findNextSection(&id, stream.get()));
    EXPECT_EQ(id, 0);
    ASSERT_TRUE(skipSection(id, false, stream.get()));
    ASSERT_TRUE(findNextSection(&id, stream.get()));
    EXPECT_EQ(id, 2);
    ASSERT_TRUE(findNextSection(&id, stream.get()));  // the ')' of section 2 is passed over
    EXPECT_EQ(id, 10);
    EXPECT_EQ(stream.rest(), "(0 1 8 0 3))\n");
    expectNoMessage();
}

TEST_F(FindNextSectionTest, SectionNumberFollowedByEndOfFileIsPremature) {
    ByteStream stream("(0 \"x\")(12");
    int id = 0;
    ASSERT_TRUE(findNextSection(&id, stream.get()));
    ASSERT_TRUE(skipSection(id, false, stream.get()));
    EXPECT_FALSE(findNextSection(&id, stream.get()));
    expectOneError("Premature End-of-file while scanning section #12.");
}

TEST_F(FindNextSectionTest, SectionNumberFollowedByBlanksAndEndOfFileIsPremature) {
    ByteStream stream("(45 \n\n  ");
    int id = 0;
    EXPECT_FALSE(findNextSection(&id, stream.get()));
    expectOneError("Premature End-of-file while scanning section #45.");
}

TEST_F(FindNextSectionTest, MissingSectionNumberIsReported) {
    ByteStream stream("(abc)");
    int id = 0;
    EXPECT_FALSE(findNextSection(&id, stream.get()));
    expectOneError("Error reading section number in file.");
}

TEST_F(FindNextSectionTest, ReadErrorBeforeAnyParenthesisIsReported) {
    FailingStream stream("some text without a section");
    int id = 0;
    EXPECT_FALSE(findNextSection(&id, stream.get()));
    expectOneError("Read error while scanning file.");
}

TEST_F(FindNextSectionTest, ReadErrorBehindTheNumberIsReported) {
    FailingStream stream("(37 ");
    int id = 0;
    EXPECT_FALSE(findNextSection(&id, stream.get()));
    expectOneError("Read error while scanning section #37.");
}

// ---- skipSection -------------------------------------------------------------------------

TEST_F(SkipSectionTest, AsciiBodyStopsBehindItsClosingParenthesis) {
    ByteStream stream("(12 (0 1 3 0))\n(13 (1 2))");
    int id = 0;
    ASSERT_TRUE(findNextSection(&id, stream.get()));
    ASSERT_TRUE(skipSection(id, false, stream.get()));
    EXPECT_EQ(stream.rest(), "\n(13 (1 2))");
    expectNoMessage();
}

TEST_F(SkipSectionTest, FromInsideABodyLeavesTheSectionsLastParenthesis) {
    // After the body's '(' has been read, depth 1 stands for the body.
    ByteStream stream("(1 2 (3 4) 5))(2 3)");
    ASSERT_EQ(getc(stream.get()), '(');
    ASSERT_TRUE(skipSection(1, false, stream.get()));
    EXPECT_EQ(stream.rest(), ")(2 3)");
}

TEST_F(SkipSectionTest, ParenthesisInsideAStringCountsSoTheSkipGoesTooFar) {
    // The string's '(' opens a level that the section never closes: the skip
    // swallows the next sections up to an unbalanced ')' further on.
    ByteStream stream("(0 \"Zone (fluid\")\n(2 3)\n(0 \"end)\")\n(10 (1 2)) tail");
    int id = 0;
    ASSERT_TRUE(findNextSection(&id, stream.get()));
    ASSERT_TRUE(skipSection(id, false, stream.get()));
    EXPECT_EQ(stream.rest(), "\n(10 (1 2)) tail");
    expectNoMessage();
}

TEST_F(SkipSectionTest, UnbalancedStringInTheLastSectionRunsToTheEndOfFile) {
    ByteStream stream("(0 \"Zone (fluid\")\n(2 3)\n(10 (1 2))\n");
    int id = 0;
    ASSERT_TRUE(findNextSection(&id, stream.get()));
    EXPECT_FALSE(skipSection(id, false, stream.get()));
    expectOneError("End-of-file while skipping section 0.");
}

TEST_F(SkipSectionTest, ClosingParenthesisInsideAStringStopsTheSkipTooEarly) {
    ByteStream stream("(0 \"a) b\")\n(2 3)");
    int id = 0;
    ASSERT_TRUE(findNextSection(&id, stream.get()));
    ASSERT_TRUE(skipSection(id, false, stream.get()));
    EXPECT_EQ(stream.rest(), " b\")\n(2 3)");
}

TEST_F(SkipSectionTest, EndOfFileInsideAnAsciiBodyIsReported) {
    ByteStream stream("(12 (0 1 3 0)");
    int id = 0;
    ASSERT_TRUE(findNextSection(&id, stream.get()));
    EXPECT_FALSE(skipSection(id, false, stream.get()));
    expectOneError("End-of-file while skipping section 12.");
}

TEST_F(SkipSectionTest, ReadErrorInsideAnAsciiBodyIsReported) {
    FailingStream stream("(12 (0 1 3 0)");
    int id = 0;
    ASSERT_TRUE(findNextSection(&id, stream.get()));
    EXPECT_FALSE(skipSection(id, false, stream.get()));
    expectOneError("Read error while skipping section 12.");
}

TEST_F(SkipSectionTest, BinaryBodyStopsBehindTheEndMarker) {
    std::string body = "(2012 (a 1 5 1 0)\n(";
    body += intBytes(0x29282928u, 4, 0);  // ")()(" as raw data: no parenthesis counting in binary bodies
    body += ")\n" + marker(2012) + "\n(39 (10 fluid Volume_1)())";
    ByteStream stream(body);
    int id = 0;
    ASSERT_TRUE(findNextSection(&id, stream.get()));
    ASSERT_TRUE(skipSection(id, true, stream.get()));
    EXPECT_EQ(stream.rest(), "\n(39 (10 fluid Volume_1)())");
    expectNoMessage();
}

TEST_F(SkipSectionTest, BinaryBodyWithoutMarkerIsReportedButAnswersTrue) {
    ByteStream stream("(2012 (a 1 5 1 0)\n(\x01\x02\x03\x04)\nEnd of Binary Sec");
    int id = 0;
    ASSERT_TRUE(findNextSection(&id, stream.get()));
    EXPECT_TRUE(skipSection(id, true, stream.get()));
    expectOneError("End-of-file while skipping section 2012.");
}

TEST_F(SkipSectionTest, BinaryBodyWithReadErrorIsReportedButAnswersTrue) {
    FailingStream stream("(3010 (1 1 8 1 3)\n(\x01\x02\x03\x04");
    int id = 0;
    ASSERT_TRUE(findNextSection(&id, stream.get()));
    EXPECT_TRUE(skipSection(id, true, stream.get()));
    expectOneError("Read error while skipping section 3010.");
}

// ---- findBinarySectionEnd -------------------------------------------------------------------

TEST_F(BinarySectionEndTest, MarkerPatternRightAlignsTheIdInFourColumns) {
    EXPECT_EQ(marker(12), "End of Binary Section     12)");
    ByteStream stream("xx)\nEnd of Binary Section     12)rest");
    EXPECT_TRUE(findBinarySectionEnd(12, false, stream.get()));
    EXPECT_EQ(stream.rest(), "rest");
    expectNoMessage();
}

TEST_F(BinarySectionEndTest, PartialMatchesGoBackAndMatchLater) {
    // False starts that share prefixes with the marker, one of them overlapping it.
    ByteStream stream("EEnd End of End of Binary Section   201End of Binary Section   2012)after");
    EXPECT_TRUE(findBinarySectionEnd(2012, false, stream.get()));
    EXPECT_EQ(stream.rest(), "after");
    expectNoMessage();
}

TEST_F(BinarySectionEndTest, Section2300AcceptsBlanksAndZerosInTheMarker) {
    ByteStream zeros("data)\nEnd of Binary Section   0000)next");
    EXPECT_TRUE(findBinarySectionEnd(2300, false, zeros.get()));
    EXPECT_EQ(zeros.rest(), "next");
    ByteStream blanks("data)\nEnd of Binary Section       )next");
    EXPECT_TRUE(findBinarySectionEnd(2300, false, blanks.get()));
    EXPECT_EQ(blanks.rest(), "next");
    ByteStream mixed("data)\nEnd 0f Binary Secti0n   2 0 )next");
    EXPECT_TRUE(findBinarySectionEnd(2300, false, mixed.get()));
    EXPECT_EQ(mixed.rest(), "next");
    expectNoMessage();
}

TEST_F(BinarySectionEndTest, Section3300AcceptsZerosInTheMarker) {
    ByteStream stream("data)\nEnd of Binary Section   0300)next");
    EXPECT_TRUE(findBinarySectionEnd(3300, true, stream.get()));
    EXPECT_EQ(stream.rest(), "next");
    expectNoMessage();
}

TEST_F(BinarySectionEndTest, Section2301DoesNotAcceptTheSameText) {
    ByteStream stream("data)\nEnd of Binary Section   0000)next");
    EXPECT_FALSE(findBinarySectionEnd(2301, false, stream.get()));
    expectOneError("End-of-file while skipping section 2301.");
}

TEST_F(BinarySectionEndTest, BlankStandingForTheClosingParenthesisIsTakenWithOneMoreCharacter) {
    // In place of the last character too: the matcher reads one character past it.
    ByteStream stream("End of Binary Section   2300 XYZ");
    EXPECT_TRUE(findBinarySectionEnd(2300, false, stream.get()));
    EXPECT_EQ(stream.rest(), "YZ");
}

TEST_F(BinarySectionEndTest, EndOfFileIsReportedWhenLimitedToo) {
    ByteStream stream(")\nEnd of Binary");
    EXPECT_FALSE(findBinarySectionEnd(2010, true, stream.get()));
    expectOneError("End-of-file while skipping section 2010.");
}

TEST_F(BinarySectionEndTest, ReadErrorIsReportedOnlyWhenNotLimited) {
    FailingStream unlimited("\x01\x02\x03");
    EXPECT_FALSE(findBinarySectionEnd(3012, false, unlimited.get()));
    expectOneError("Read error while skipping section 3012.");
    minihost::clearMessages();
    FailingStream limited("\x01\x02\x03");
    EXPECT_FALSE(findBinarySectionEnd(3012, true, limited.get()));
    expectNoMessage();
}

TEST_F(BinarySectionEndTest, UnlimitedSearchCrossesLongData) {
    std::string data(100000, 'E');  // every byte a false start
    ByteStream stream(data + marker(3013) + "!");
    EXPECT_TRUE(findBinarySectionEnd(3013, false, stream.get()));
    EXPECT_EQ(stream.rest(), "!");
}

// ---- closeSection ---------------------------------------------------------------------------

TEST_F(CloseSectionTest, AsciiClosesOnParenthesisAfterWhiteSpace) {
    ByteStream stream("  \n\t)(next");
    EXPECT_TRUE(closeSection(13, "Faces", false, stream.get()));
    EXPECT_EQ(stream.rest(), "(next");
    expectNoMessage();
}

TEST_F(CloseSectionTest, AsciiStrayTextShowsAWarningAndFails) {
    ByteStream stream("  x)");
    EXPECT_FALSE(closeSection(13, "Faces", false, stream.get()));
    const std::vector<minihost::Message> shown = minihost::messages();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].kind, "warning");
    EXPECT_EQ(shown[0].boxType, 1);
    EXPECT_EQ(shown[0].text,
              "Parse error while reading Faces section (section 13). Expected ')', found 'x'. Attempting to "
              "continue...");
    EXPECT_EQ(stream.rest(), ")");
}

TEST_F(CloseSectionTest, AsciiStrayTextInBatchModeSucceedsSilently) {
    minihost::setBatchMode(true);
    ByteStream stream("  x)");
    EXPECT_TRUE(closeSection(13, "Faces", false, stream.get()));
    expectNoMessage();
}

TEST_F(CloseSectionTest, AsciiEndOfFileGoesToTheStreamMessage) {
    ByteStream stream("   \n");
    EXPECT_FALSE(closeSection(10, "Nodes", false, stream.get()));
    expectOneError("End-of-file while reading Nodes section (section 10).");
}

TEST_F(CloseSectionTest, AsciiReadErrorGoesToTheStreamMessage) {
    FailingStream stream("   ");
    EXPECT_FALSE(closeSection(12, "Cells", false, stream.get()));
    expectOneError("Read error while reading Cells section (section 12).");
}

TEST_F(CloseSectionTest, BinaryFindsAMarkerThatBeginsSoonAfterTheData) {
    ByteStream stream(")\n" + marker(3010) + "\n(3013");
    EXPECT_TRUE(closeSection(3010, "Nodes", true, stream.get()));
    EXPECT_EQ(stream.rest(), "\n(3013");
    expectNoMessage();
}

TEST_F(CloseSectionTest, BinaryMarkerMoreThan100CharactersBehindFailsSilently) {
    ByteStream stream(")" + std::string(120, ' ') + marker(3010) + "\n");
    EXPECT_FALSE(closeSection(3010, "Nodes", true, stream.get()));
    expectNoMessage();
}

TEST_F(CloseSectionTest, BinaryStepLimitCountsMarkerCharactersToo) {
    // 100 steps: a marker of 29 characters fits behind 71 other characters, not behind 72.
    ASSERT_EQ(marker(3010).size(), 29u);
    ByteStream fits(std::string(71, '-') + marker(3010));
    EXPECT_TRUE(closeSection(3010, "Nodes", true, fits.get()));
    ByteStream tooFar(std::string(72, '-') + marker(3010));
    EXPECT_FALSE(closeSection(3010, "Nodes", true, tooFar.get()));
    expectNoMessage();
}

// ---- parseMachineConfig -----------------------------------------------------------------------

TEST_F(MachineConfigTest, StoresTheSecondThirdSixthEighthAndNinthNumbers) {
    ByteStream stream("(4 (60 1 2 3 5 8 7 4 12 10 11))\n(2 3)");
    int id = 0;
    ASSERT_TRUE(findNextSection(&id, stream.get()));
    ASSERT_EQ(id, 4);
    MachineConfig config{};
    ASSERT_TRUE(parseMachineConfig(&config, stream.get()));
    EXPECT_EQ(config.byteOrder, 1);
    EXPECT_EQ(config.floatFormat, 2);
    EXPECT_EQ(config.intSize, 8);
    EXPECT_EQ(config.floatSize, 4);
    EXPECT_EQ(config.doubleSize, 12);
    EXPECT_EQ(stream.rest(), "\n(2 3)");
    expectNoMessage();
}

TEST_F(MachineConfigTest, ParseErrorLeavesTheRecordAsItWas) {
    ByteStream stream("(60 0 0 1 2 x 4 4 8 4 4))");
    MachineConfig config = machineConfig(1, 5, 6, 7, 9);
    EXPECT_FALSE(parseMachineConfig(&config, stream.get()));
    EXPECT_EQ(config.byteOrder, 1);
    EXPECT_EQ(config.floatFormat, 5);
    EXPECT_EQ(config.intSize, 6);
    expectOneError("Error parsing Machine Configuration (Section 4).");
}

TEST_F(MachineConfigTest, EndOfFileBeforeElevenNumbersIsReported) {
    ByteStream stream("(60 0 0 1 2 4 4 4 8 4");
    MachineConfig config{};
    EXPECT_FALSE(parseMachineConfig(&config, stream.get()));
    EXPECT_EQ(config.intSize, 0);
    expectOneError("End-of-file while reading Machine Configuration (Section 4).");
}

TEST_F(MachineConfigTest, ReadErrorIsReported) {
    FailingStream stream("(60 0 0 1");
    MachineConfig config{};
    EXPECT_FALSE(parseMachineConfig(&config, stream.get()));
    expectOneError("Read error while reading Machine Configuration (Section 4).");
}

// ---- getFileSize ---------------------------------------------------------------------------------

TEST_F(FileSizeTest, GivesTheSizeAndLeavesTheStreamAtTheStart) {
    ByteStream stream(std::string(12345, 'a') + "b");
    ASSERT_EQ(fseek(stream.get(), 100, SEEK_SET), 0);
    EXPECT_EQ(getFileSize(stream.get()), 12346);
    EXPECT_EQ(stream.position(), 0);
    expectNoMessage();
}

TEST_F(FileSizeTest, StreamThatCannotSeekGivesMinusOneAndAMessage) {
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    ASSERT_EQ(write(fds[1], "abc", 3), 3);
    close(fds[1]);
    FILE* stream = fdopen(fds[0], "r");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(getFileSize(stream), -1);
    fclose(stream);
    expectOneError("Error getting file size.");
}

// ---- The message families -------------------------------------------------------------------------

TEST_F(ReportTest, ReadStatusMessages) {
    reportReadStatus(0, "Faces", 2013);
    EXPECT_TRUE(minihost::messages().empty());
    reportReadStatus(1, "Faces", 2013);
    reportReadStatus(2, "Nodes", 3010);
    reportReadStatus(3, "Data", 3300);
    const std::vector<std::string> texts = messageTexts("error");
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(texts[0], "End-of-file while reading Faces section (section 2013).");
    EXPECT_EQ(texts[1], "Read error while reading Nodes section (section 3010).");
    EXPECT_EQ(texts[2], "Number overflow while reading Data section (section 3300).");
}

TEST_F(ReportTest, StreamFailureLooksAtErrorThenEndOfFileThenParse) {
    ByteStream parse("abc");
    reportStreamFailure(parse.get(), "Cells", 12);
    ByteStream atEnd("");
    EXPECT_EQ(getc(atEnd.get()), EOF);
    reportStreamFailure(atEnd.get(), "Cells", 12);
    FailingStream failed("");
    EXPECT_EQ(getc(failed.get()), EOF);
    reportStreamFailure(failed.get(), "Cells", 12);
    const std::vector<std::string> texts = messageTexts("error");
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(texts[0], "Parse error while reading Cells section (section 12).");
    EXPECT_EQ(texts[1], "End-of-file while reading Cells section (section 12).");
    EXPECT_EQ(texts[2], "Read error while reading Cells section (section 12).");
}

}  // namespace
}  // namespace fluentio_test
