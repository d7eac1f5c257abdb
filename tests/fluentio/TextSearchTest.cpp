// Literal searches, tokens and lines.
#include <cstdlib>
#include <string>

#include "FluentioTestSupport.h"
#include "fluentio/SectionReader.h"

namespace fluentio_test {
namespace {

using SeekLiteralTest = FluentioTest;
using SeekLiteralBoundedTest = FluentioTest;
using DelimitedTokenTest = FluentioTest;
using TextLineTest = FluentioTest;

// ---- seekLiteral -------------------------------------------------------------------------------

TEST_F(SeekLiteralTest, FoundLeavesTheStreamBehindTheLiteral) {
    ByteStream stream("(rp-axi? . #f) (rp-double? . #t)");
    EXPECT_EQ(seekLiteral(stream.get(), "(rp-double? . #", false, false), ReadStatus_Success);
    EXPECT_EQ(stream.rest(), "t)");
    expectNoMessage();
}

TEST_F(SeekLiteralTest, MissingLiteralIsEndOfFile) {
    ByteStream stream("(rp-axi? . #f)");
    EXPECT_EQ(seekLiteral(stream.get(), "(rp-double? . #", false, false), ReadStatus_EndOfFile);
    expectNoMessage();
}

TEST_F(SeekLiteralTest, ReadErrorIsAReadError) {
    FailingStream stream("(rp-axi? . #f)");
    EXPECT_EQ(seekLiteral(stream.get(), "(rp-double? . #", false, false), ReadStatus_ReadError);
}

TEST_F(SeekLiteralTest, LimitedSearchGivesUpAfter100StepsBeforeTheEnd) {
    ByteStream far(std::string(200, '.') + "key" + std::string(10, '.'));
    EXPECT_EQ(seekLiteral(far.get(), "key", true, false), ReadStatus_ReadError);
    ByteStream near(std::string(90, '.') + "key!");
    EXPECT_EQ(seekLiteral(near.get(), "key", true, false), ReadStatus_Success);
    EXPECT_EQ(near.rest(), "!");
}

TEST_F(SeekLiteralTest, ToleranceIsSwitchedByItsArgument) {
    ByteStream strict("ab 0d");
    EXPECT_EQ(seekLiteral(strict.get(), "abcd", false, false), ReadStatus_EndOfFile);
    ByteStream tolerant("ab 0d!");
    EXPECT_EQ(seekLiteral(tolerant.get(), "abcd", false, true), ReadStatus_Success);
    EXPECT_EQ(tolerant.rest(), "!");
}

// ---- seekLiteralBounded --------------------------------------------------------------------------

TEST_F(SeekLiteralBoundedTest, FoundBeforeTheEnd) {
    const std::string body = "(37 ((rp-axi? . #t) (flow-time 0.25)))";
    ByteStream stream(body + "(38 (flow-time 9))");
    EXPECT_EQ(seekLiteralBounded(stream.get(), "(flow-time ", static_cast<long long>(body.size())),
              ReadStatus_Success);
    EXPECT_EQ(stream.rest(), "0.25)))(38 (flow-time 9))");
}

TEST_F(SeekLiteralBoundedTest, LiteralBehindTheEndIsNotFound) {
    const std::string body = "(37 ((rp-axi? . #t)))";
    ByteStream stream(body + "(38 (flow-time 9))");
    EXPECT_EQ(seekLiteralBounded(stream.get(), "(flow-time ", static_cast<long long>(body.size())),
              ReadStatus_EndOfFile);
    // The search stopped at the first character match behind the end.
    EXPECT_LE(stream.position(), static_cast<long long>(body.size()) + 6);
    expectNoMessage();
}

TEST_F(SeekLiteralBoundedTest, LimitIsTheFirstCharacterPosition) {
    // The literal's first character stands at offset 2; behind it the position is 3.
    ByteStream reached("..(abc)");
    EXPECT_EQ(seekLiteralBounded(reached.get(), "(abc", 3), ReadStatus_EndOfFile);
    ByteStream within("..(abc)");
    EXPECT_EQ(seekLiteralBounded(within.get(), "(abc", 4), ReadStatus_Success);
    EXPECT_EQ(within.rest(), ")");
}

TEST_F(SeekLiteralBoundedTest, EndOfStreamIsEndOfFileAndReadErrorIsReadError) {
    ByteStream stream("no literal here");
    EXPECT_EQ(seekLiteralBounded(stream.get(), "(species (names (", 1000), ReadStatus_EndOfFile);
    FailingStream failing("no literal here");
    EXPECT_EQ(seekLiteralBounded(failing.get(), "(species (names (", 1000), ReadStatus_ReadError);
}

// ---- readDelimitedToken ------------------------------------------------------------------------------

TEST_F(DelimitedTokenTest, SkipsLeadingDelimitersAndPutsTheNextOneBack) {
    ByteStream stream("   fluid wall-3)");
    char token[129];
    EXPECT_EQ(readDelimitedToken(token, " ", stream.get()), 0);
    EXPECT_STREQ(token, "fluid");
    EXPECT_EQ(readDelimitedToken(token, " \n\t)", stream.get()), 0);
    EXPECT_STREQ(token, "wall-3");
    EXPECT_EQ(stream.rest(), ")");
}

TEST_F(DelimitedTokenTest, NulByteIsADelimiter) {
    ByteStream stream(std::string("\0\0name\0x", 8));
    char token[129];
    EXPECT_EQ(readDelimitedToken(token, " ", stream.get()), 0);
    EXPECT_STREQ(token, "name");
    EXPECT_EQ(stream.rest(), std::string("\0x", 2));
}

TEST_F(DelimitedTokenTest, KeepsAtMost128CharactersAndConsumesTheRest) {
    ByteStream stream(std::string(200, 'n') + " next");
    char token[129];
    EXPECT_EQ(readDelimitedToken(token, " ", stream.get()), 0);
    EXPECT_EQ(std::string(token), std::string(128, 'n'));
    EXPECT_EQ(stream.rest(), " next");
}

TEST_F(DelimitedTokenTest, EndOfFileGivesOneWithTheTokenTaken) {
    ByteStream stream(" abc");
    char token[129];
    EXPECT_EQ(readDelimitedToken(token, " ", stream.get()), 1);
    EXPECT_STREQ(token, "abc");
    ByteStream blanks("   ");
    EXPECT_EQ(readDelimitedToken(token, " ", blanks.get()), 1);
    EXPECT_STREQ(token, "");
}

// ---- readTextLine ---------------------------------------------------------------------------------------

TEST_F(TextLineTest, ReadsUpToAndIncludingTheNewline) {
    ByteStream stream("first line\nsecond");
    char* line = readTextLine(100, stream.get());
    ASSERT_NE(line, nullptr);
    EXPECT_STREQ(line, "first line\n");
    std::free(line);
    line = readTextLine(100, stream.get());
    ASSERT_NE(line, nullptr);
    EXPECT_STREQ(line, "second");
    std::free(line);
    line = readTextLine(100, stream.get());
    ASSERT_NE(line, nullptr);
    EXPECT_STREQ(line, "");
    std::free(line);
}

TEST_F(TextLineTest, LongLinesGrowTheBlock) {
    for (size_t length : {99u, 100u, 101u, 199u, 200u, 201u, 100000u}) {
        std::string text;
        for (size_t k = 0; k < length; ++k)
            text.push_back(static_cast<char>('a' + k % 26));
        ByteStream stream(text + "\nnext");
        for (size_t firstSize : {size_t{1}, size_t{100}, size_t{4096}}) {
            rewind(stream.get());
            char* line = readTextLine(firstSize, stream.get());
            ASSERT_NE(line, nullptr);
            EXPECT_EQ(std::string(line), text + "\n") << length << " " << firstSize;
            std::free(line);
            EXPECT_EQ(stream.position(), static_cast<long long>(length + 1));
        }
    }
}

}  // namespace
}  // namespace fluentio_test
