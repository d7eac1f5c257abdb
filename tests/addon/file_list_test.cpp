// File lists of a series load: the kind of each file, the count checks, the
// pairing of case and data files and the resulting order, with compressed
// files uncompressed on the way.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "addon/FileList.h"
#include "instruction_test_support.h"

using addontest::endsWith;
using addontest::readFile;
using addontest::Shown;
using addontest::shown;
using addontest::writeFile;
using addontest::writeGzip;

namespace {

const std::vector<Shown> kNone;

Shown error(const std::string& text) {
    return {"error", text};
}
Shown question(const std::string& text) {
    return {"question", text};
}

const char* const kSaveQuestion = "Save the uncompressed files to the compressed files' locations?";
const char* const kNoCaseFiles = "The file list has no case files.";

std::string countMessage(int cases, int data) {
    return "Fluent data loader:\nThe file list contains " + std::to_string(cases) + " case files and " +
           std::to_string(data) +
           " data files. If you load more than one case file and data file, then they must be matched pairs.";
}

std::string noMatchMessage(const std::string& caseName) {
    return "Fluent data loader: Case file " + caseName +
           " has no matching data file. If you load more than one case file and data file, then they must be "
           "matched pairs.";
}

// The four flags of one load, as the instruction parser starts them.
struct Flags {
    bool save = false;
    bool askSave = true;
    bool overwrite = true;
    bool askOverwrite = true;
};

// Classifies a list; the list afterwards in `result`.
bool classify(const std::vector<std::string>& names, bool append, std::vector<std::string>* result,
              Flags* flags = nullptr, ProgressCallback progress = nullptr) {
    Flags own;
    Flags& f = flags != nullptr ? *flags : own;
    ZorStringList list = minihost::makeStringList(names);
    bool ok =
        ClassifyFileList(list, append, f.save, f.askSave, f.overwrite, f.askOverwrite, std::move(progress));
    *result = minihost::stringListToVector(list);
    ZorUtilStringListDealloc(&list);
    return ok;
}

using Names = std::vector<std::string>;

class FileListTest : public addontest::HostTest {};

}  // namespace

// ---- Suffixes ---------------------------------------------------------------------------

TEST(FileListSuffixes, TablesInOrder) {
    EXPECT_EQ(Names(CaseSuffixes, CaseSuffixes + 2), (Names{".cas", ".cas.gz"}));
    EXPECT_EQ(CaseSuffixes[2], nullptr);
    EXPECT_EQ(Names(DataSuffixes, DataSuffixes + 4), (Names{".dat", ".dat.gz", ".fdat", ".fdat.gz"}));
    EXPECT_EQ(DataSuffixes[4], nullptr);
    EXPECT_EQ(Names(ParticleSuffixes, ParticleSuffixes + 1), (Names{".xml"}));
    EXPECT_EQ(ParticleSuffixes[1], nullptr);
}

TEST(FileListSuffixes, ANameEqualToASuffixEndsInIt) {
    EXPECT_TRUE(hasSuffixInTable(".cas", CaseSuffixes));
    EXPECT_TRUE(hasSuffixInTable(".xml", ParticleSuffixes));
    EXPECT_FALSE(hasSuffixInTable("cas", CaseSuffixes));
    EXPECT_FALSE(hasSuffixInTable("", CaseSuffixes));
}

TEST(FileListSuffixes, SuffixesIgnoreCase) {
    EXPECT_TRUE(hasSuffixInTable("A.CAS", CaseSuffixes));
    EXPECT_TRUE(hasSuffixInTable("a.Dat.GZ", DataSuffixes));
    EXPECT_TRUE(hasSuffixInTable("flow.FDAT", DataSuffixes));
    EXPECT_TRUE(hasSuffixInTable("flow.fdat.gz", DataSuffixes));
    EXPECT_TRUE(hasSuffixInTable("p.XmL", ParticleSuffixes));
    EXPECT_FALSE(hasSuffixInTable("a.cas", DataSuffixes));
    EXPECT_FALSE(hasSuffixInTable("a.dat", CaseSuffixes));
    EXPECT_FALSE(hasSuffixInTable("a.cas.bak", CaseSuffixes));
    EXPECT_FALSE(hasSuffixInTable("a.dat.Z", DataSuffixes));
}

// ---- Kinds and counts ----------------------------------------------------------------------

TEST_F(FileListTest, TheBareSuffixIsACaseFile) {
    Names result;
    ASSERT_TRUE(classify({".cas"}, false, &result));
    EXPECT_EQ(result, (Names{".cas"}));
    EXPECT_EQ(shown(), kNone);
}

TEST_F(FileListTest, OneCaseFileWithoutDataStaysAsItCame) {
    Names result;
    ASSERT_TRUE(classify({"p.xml", "a.cas"}, false, &result));
    EXPECT_EQ(result, (Names{"p.xml", "a.cas"}));
}

TEST_F(FileListTest, OneCaseAndFiveDataFilesMakeASeriesInListOrder) {
    Names result;
    ASSERT_TRUE(classify({"t3.dat", "t1.dat", "mesh.cas", "t2.dat", "t5.fdat", "t4.dat"}, false, &result));
    EXPECT_EQ(result, (Names{"mesh.cas", "t3.dat", "t1.dat", "t2.dat", "t5.fdat", "t4.dat"}));
    EXPECT_EQ(shown(), kNone);
}

TEST_F(FileListTest, SeriesPutsTheXmlFileLast) {
    Names result;
    ASSERT_TRUE(classify({"p.xml", "a.dat", "mesh.cas", "b.dat"}, false, &result));
    EXPECT_EQ(result, (Names{"mesh.cas", "a.dat", "b.dat", "p.xml"}));
}

TEST_F(FileListTest, PairsAreFormedByPrefix) {
    Names result;
    ASSERT_TRUE(classify({"d2.dat", "d1.cas", "d1.dat", "d2.cas"}, false, &result));
    EXPECT_EQ(result, (Names{"d1.cas", "d1.dat", "d2.cas", "d2.dat"}));
    EXPECT_EQ(shown(), kNone);
}

TEST_F(FileListTest, PairsWithTheXmlFileLast) {
    Names result;
    ASSERT_TRUE(
        classify({"p.xml", "run2.cas", "run1.cas", "run1-0100.dat", "run2-0100.dat"}, false, &result));
    EXPECT_EQ(result, (Names{"run2.cas", "run2-0100.dat", "run1.cas", "run1-0100.dat", "p.xml"}));
}

TEST_F(FileListTest, PrefixMatchTakesTheFirstInTheUsersOrder) {
    Names result;
    // run1 takes run10.dat, which stands before run1.dat; run10 then finds nothing.
    ASSERT_FALSE(classify({"run1.cas", "run10.cas", "run10.dat", "run1.dat"}, false, &result));
    EXPECT_EQ(shown(), (std::vector<Shown>{error(noMatchMessage("run10.cas"))}));
    // With run10 first in the list, each takes its own.
    minihost::clearMessages();
    ASSERT_TRUE(classify({"run10.cas", "run1.cas", "run1.dat", "run10.dat"}, false, &result));
    EXPECT_EQ(result, (Names{"run10.cas", "run10.dat", "run1.cas", "run1.dat"}));
    // A shorter case name takes any data file it starts, the first one listed.
    ASSERT_TRUE(classify({"a.cas", "ab.cas", "ab1.dat", "ab2.dat"}, false, &result));
    EXPECT_EQ(result, (Names{"a.cas", "ab1.dat", "ab.cas", "ab2.dat"}));
    EXPECT_EQ(shown(), kNone);
}

TEST_F(FileListTest, PrefixTestRespectsCase) {
    Names result;
    ASSERT_FALSE(classify({"A.CAS", "b.cas", "a.dat", "b.dat"}, false, &result));
    EXPECT_EQ(shown(), (std::vector<Shown>{error(noMatchMessage("A.CAS"))}));
}

TEST_F(FileListTest, CaseSuffixIsCutWithoutRegardToCase) {
    Names result;
    ASSERT_TRUE(classify({"B.CAS", "A.Cas", "A.dat", "B.dat"}, false, &result));
    EXPECT_EQ(result, (Names{"B.CAS", "B.dat", "A.Cas", "A.dat"}));
}

TEST_F(FileListTest, ThreeCaseAndTwoDataFilesFail) {
    Names result;
    ASSERT_FALSE(classify({"a.cas", "b.cas", "c.cas", "a.dat", "b.dat"}, false, &result));
    EXPECT_EQ(shown(), (std::vector<Shown>{error(countMessage(3, 2))}));
}

TEST_F(FileListTest, SeveralCaseFilesWithoutDataStayAsTheyCame) {
    Names result;
    ASSERT_TRUE(classify({"a.cas", "p.xml", "b.cas"}, false, &result));
    EXPECT_EQ(result, (Names{"a.cas", "p.xml", "b.cas"}));
    EXPECT_EQ(shown(), kNone);
}

TEST_F(FileListTest, TwoXmlFilesFail) {
    Names result;
    ASSERT_FALSE(classify({"a.cas", "a.dat", "p.xml", "q.XML"}, false, &result));
    EXPECT_EQ(shown(),
              (std::vector<Shown>{error("Fluent data loader:\nMore than one XML files were selected. Only "
                                        "one XML should be specified for particle data.")}));
}

TEST_F(FileListTest, XmlFileAloneWithoutAppendHasNoCaseFile) {
    Names result;
    ASSERT_FALSE(classify({"p.xml"}, false, &result));
    EXPECT_EQ(shown(), (std::vector<Shown>{error(kNoCaseFiles)}));
}

TEST_F(FileListTest, DataFilesAloneNeedAppend) {
    Names result;
    ASSERT_FALSE(classify({"a.dat", "b.dat"}, false, &result));
    EXPECT_EQ(shown(), (std::vector<Shown>{error(kNoCaseFiles)}));
}

TEST_F(FileListTest, DataFilesAloneWhenAppendingAreOrderedWithTheXmlFileLast) {
    Names result;
    ASSERT_TRUE(classify({"p.xml", "b.dat", "a.dat"}, true, &result));
    EXPECT_EQ(result, (Names{"b.dat", "a.dat", "p.xml"}));
    EXPECT_EQ(shown(), kNone);
}

TEST_F(FileListTest, XmlFileAloneWhenAppendingStaysAsItIs) {
    Names result;
    ASSERT_TRUE(classify({"p.xml"}, true, &result));
    EXPECT_EQ(result, (Names{"p.xml"}));
    EXPECT_EQ(shown(), kNone);
}

TEST_F(FileListTest, EmptyNameFails) {
    Names result;
    ASSERT_FALSE(classify({"a.cas", "", "a.dat"}, false, &result));
    EXPECT_EQ(shown(), (std::vector<Shown>{error("The file list contains an empty file name.")}));
}

TEST_F(FileListTest, FileOfNoKnownKindFails) {
    Names result;
    ASSERT_FALSE(classify({"a.cas", "notes.txt", "a.dat"}, false, &result));
    EXPECT_EQ(shown(),
              (std::vector<Shown>{error(
                  "Fluent data loader:\nUnable to determine the type of file notes.txt. For loading multiple "
                  "files, each file must end in the suffix 'cas', 'dat', 'cas.gz', 'dat.gz' or 'xml'.")}));
}

TEST_F(FileListTest, NullEntryIsOutOfMemory) {
    ZorStringList list = minihost::makeStringList({"a.cas"});
    ASSERT_TRUE(ZorUtilStringListAppendString(list, nullptr));
    Flags f;
    EXPECT_FALSE(ClassifyFileList(list, false, f.save, f.askSave, f.overwrite, f.askOverwrite, nullptr));
    EXPECT_EQ(shown(), (std::vector<Shown>{error("Out of memory while processing file list.")}));
    ZorUtilStringListDealloc(&list);
}

TEST_F(FileListTest, DataFilesLeftWithoutCaseFileNamesFail) {
    // Two case files take both data files; the third data file has no case.
    Names result;
    ASSERT_FALSE(classify({"a.cas", "b.cas", "c.cas", "a.dat", "b.dat", "x.dat"}, false, &result));
    EXPECT_EQ(shown(), (std::vector<Shown>{error(noMatchMessage("c.cas"))}));
}

// ---- Compressed files ------------------------------------------------------------------------

TEST_F(FileListTest, CompressedFilesAreSavedBesideAndPaired) {
    writeGzip(path("b.dat.gz"), "data b");
    writeGzip(path("b.cas.gz"), "case b");
    writeGzip(path("a.dat.gz"), "data a");
    writeGzip(path("a.cas.gz"), "case a");
    minihost::pushAnswer(true);
    Flags flags;
    Names result;
    ASSERT_TRUE(classify({path("a.dat.gz"), path("b.cas.gz"), path("b.dat.gz"), path("a.cas.gz")}, false,
                         &result, &flags));
    EXPECT_EQ(result, (Names{path("b.cas"), path("b.dat"), path("a.cas"), path("a.dat")}));
    EXPECT_EQ(readFile(path("a.dat")), "data a");
    EXPECT_EQ(readFile(path("b.cas")), "case b");
    EXPECT_TRUE(flags.save);
    EXPECT_FALSE(flags.askSave);
    EXPECT_EQ(shown(), (std::vector<Shown>{question(kSaveQuestion)}));
}

TEST_F(FileListTest, TemporaryCopiesArePairedByTheGivenNames) {
    writeGzip(path("b.dat.gz"), "data b");
    writeGzip(path("b.cas.gz"), "case b");
    writeGzip(path("a.dat.gz"), "data a");
    writeGzip(path("a.cas.gz"), "case a");
    minihost::pushAnswer(false);
    Names result;
    ASSERT_TRUE(
        classify({path("a.dat.gz"), path("b.cas.gz"), path("b.dat.gz"), path("a.cas.gz")}, false, &result));
    ASSERT_EQ(result.size(), 4u);
    EXPECT_EQ(readFile(result[0]), "case b");
    EXPECT_EQ(readFile(result[1]), "data b");
    EXPECT_EQ(readFile(result[2]), "case a");
    EXPECT_EQ(readFile(result[3]), "data a");
    EXPECT_TRUE(endsWith(result[0], ".cas"));
    EXPECT_TRUE(endsWith(result[1], ".dat"));
    EXPECT_EQ(result[0].rfind(dir_ + "/", 0), 0u) << "temporary names come from the host";
}

TEST_F(FileListTest, UpperCaseGzCaseFileCountsAsACase) {
    writeGzip(path("mesh.cas.GZ"), "case");
    minihost::pushAnswer(false);
    Names result;
    ASSERT_TRUE(classify({path("mesh.cas.GZ"), path("t1.dat")}, false, &result));
    ASSERT_EQ(result.size(), 2u);
    EXPECT_TRUE(endsWith(result[0], ".cas")) << result[0];
    EXPECT_EQ(readFile(result[0]), "case");
    EXPECT_EQ(result[1], path("t1.dat"));
}

TEST_F(FileListTest, CompressedFilesCountByTheirUncompressedNames) {
    writeGzip(path("a.cas.gz"), "a");
    writeGzip(path("b.cas.gz"), "b");
    writeGzip(path("c.cas.gz"), "c");
    writeGzip(path("a.dat.gz"), "a");
    writeGzip(path("b.dat.gz"), "b");
    minihost::pushAnswer(true);
    Names result;
    ASSERT_FALSE(
        classify({path("a.cas.gz"), path("b.cas.gz"), path("c.cas.gz"), path("a.dat.gz"), path("b.dat.gz")},
                 false, &result));
    EXPECT_EQ(shown(), (std::vector<Shown>{question(kSaveQuestion), error(countMessage(3, 2))}));
}

TEST_F(FileListTest, CompressedFileWithATemporaryNameCountsAsData) {
    writeGzip(path("foo.gz"), "data");
    minihost::pushAnswer(false);
    Names result;
    ASSERT_FALSE(classify({path("a.cas"), path("b.cas"), path("foo.gz")}, false, &result));
    EXPECT_EQ(shown(), (std::vector<Shown>{question(kSaveQuestion), error(countMessage(2, 1))}));
}

TEST_F(FileListTest, SavedCopyOfABareGzFileHasNoKind) {
    writeGzip(path("foo.gz"), "data");
    Flags flags;
    flags.save = true;
    flags.askSave = false;
    Names result;
    ASSERT_FALSE(classify({path("a.cas"), path("foo.gz")}, false, &result, &flags));
    EXPECT_EQ(readFile(path("foo")), "data");
    EXPECT_EQ(
        shown(),
        (std::vector<Shown>{error("Fluent data loader:\nUnable to determine the type of file " + path("foo") +
                                  ". For loading multiple files, each file must end in the suffix "
                                  "'cas', 'dat', 'cas.gz', 'dat.gz' or 'xml'.")}));
}

TEST_F(FileListTest, DotZFileFailsTheList) {
    Names result;
    ASSERT_FALSE(classify({path("a.cas"), path("a.dat.Z")}, false, &result));
    EXPECT_EQ(shown(),
              (std::vector<Shown>{error("Fluent data loader:\nThe file '" + path("a.dat.Z") +
                                        "' appears to be .Z compressed.\n.Z compression is not supported.  "
                                        "Please uncompress before loading.")}));
}

TEST_F(FileListTest, ExistingCopiesAreAskedAboutOnceAndUsedOnNo) {
    // The compressed files are damaged: reading them would fail the list.
    writeFile(path("a.cas.gz"), "\x1f\x8b damaged");
    writeFile(path("a.dat.gz"), "\x1f\x8b damaged");
    writeFile(path("a.cas"), "old case");
    writeFile(path("a.dat"), "old data");
    Flags flags;
    flags.save = true;
    flags.askSave = false;
    minihost::pushAnswer(false);
    Names result;
    ASSERT_TRUE(classify({path("a.dat.gz"), path("a.cas.gz")}, false, &result, &flags));
    EXPECT_EQ(result, (Names{path("a.cas"), path("a.dat")}));
    EXPECT_EQ(readFile(path("a.cas")), "old case");
    EXPECT_EQ(readFile(path("a.dat")), "old data");
    EXPECT_FALSE(flags.overwrite);
    EXPECT_FALSE(flags.askOverwrite);
    EXPECT_EQ(shown(),
              (std::vector<Shown>{question("The uncompressed file " + path("a.dat") +
                                           " already exists.\nOverwrite this and any other uncompressed "
                                           "files for the dataset?")}));
}

TEST_F(FileListTest, InALayoutNoQuestionIsAskedAndCopiesAreOverwritten) {
    writeGzip(path("a.cas.gz"), "new case");
    writeFile(path("a.cas"), "old case");
    minihost::setProcessingLayout(true);
    Flags flags;
    flags.save = true;
    Names result;
    ASSERT_TRUE(classify({path("a.cas.gz"), path("a.dat")}, false, &result, &flags));
    EXPECT_EQ(result, (Names{path("a.cas"), path("a.dat")}));
    EXPECT_EQ(readFile(path("a.cas")), "new case");
    EXPECT_TRUE(flags.overwrite);
    EXPECT_TRUE(flags.askSave) << "the questions stay open for a later load";
    EXPECT_EQ(shown(), kNone);
}

TEST_F(FileListTest, EachUncompressionIsToldToTheProgressCallback) {
    writeGzip(path("a.cas.gz"), "case");
    writeGzip(path("a.dat.gz"), "data");
    minihost::pushAnswer(true);
    std::vector<std::string> told;
    Names result;
    ASSERT_TRUE(classify({path("a.cas.gz"), path("a.dat.gz")}, false, &result, nullptr,
                         [&told](const std::string& text) {
                             told.push_back(text);
                             return true;
                         }));
    EXPECT_EQ(told, (Names{"Uncompressing " + path("a.cas.gz") + "...",
                           "Uncompressing " + path("a.dat.gz") + "..."}));
}

TEST_F(FileListTest, StopFromTheProgressCallbackEndsTheListSilently) {
    writeGzip(path("a.cas.gz"), "case");
    Flags flags;
    flags.askSave = false;
    Names result;
    ASSERT_FALSE(classify({path("a.cas.gz"), path("a.dat")}, false, &result, &flags,
                          [](const std::string&) { return false; }));
    EXPECT_EQ(shown(), kNone);
}
