// Loading the numbers of a scanned data field: layouts, encodings, byte
// orders and the failures a user sees.

#include "DataFileTestSupport.h"

using namespace datafile_test;

namespace {

class FieldLoad : public DataFileTest {
  protected:
    // Scans a file of the given sections (behind section 4) against one cell
    // zone of `cells` cells, and gives the first field.
    DataField* scanOne(const std::string& sections, int cells, bool bigEndian = false) {
        file_.reset(new TempFile(machineConfig(bigEndian) + sections));
        mesh_.reset(new MemoryCase);
        mesh_->addCellZone(5, 1, cells);
        dataFile_.reset(new DataFile);
        EXPECT_TRUE(scanFile(dataFile_.get(), file_->path(), mesh_->get()));
        EXPECT_GE(dataFile_->numDataFields, 1);
        return dataFile_->numDataFields > 0 ? &dataFile_->dataFields[0] : nullptr;
    }
    std::vector<double> load(DataField* field) {
        EXPECT_TRUE(DataFileLoadDataField(dataFile_.get(), field));
        std::vector<double> v(field->values,
                              field->values + static_cast<size_t>(field->count) * field->dimension);
        return v;
    }
    std::unique_ptr<TempFile> file_;
    std::unique_ptr<MemoryCase> mesh_;
    std::unique_ptr<DataFile> dataFile_;
};

const std::vector<double> kOneToSix = {1, 2, 3, 4, 5, 6};

}  // namespace

TEST_F(FieldLoad, ElementAfterElementFieldIsTakenAsItComes) {
    for (int id : {300, 2300, 3300}) {
        DataField* field = scanOne(dataSection(id, 15, 5, 3, 0, 1, 2, kOneToSix), 2);
        ASSERT_NE(field, nullptr);
        EXPECT_EQ(load(field), kOneToSix) << id;
        // Element 1, component 2 at e * 3 + c.
        EXPECT_EQ(field->values[1 * 3 + 2], 6.0);
    }
    EXPECT_TRUE(minihost::messages().empty());
}

TEST_F(FieldLoad, VectorFamilyStaysComponentAfterComponent) {
    for (int id : {300, 2300, 3300}) {
        DataField* field = scanOne(dataSection(id, 200, 5, 2, 0, 1, 3, kOneToSix), 3);
        ASSERT_NE(field, nullptr);
        EXPECT_EQ(load(field), kOneToSix) << id;
        // Element 0 of component 1 at c * count + e.
        EXPECT_EQ(field->values[1 * 3 + 0], 4.0);
    }
}

TEST_F(FieldLoad, UserMemoriesAreTransposed) {
    for (int id : {300, 2300, 3300}) {
        DataField* field = scanOne(dataSection(id, 970, 5, 2, 0, 1, 3, kOneToSix), 3);
        ASSERT_NE(field, nullptr);
        EXPECT_EQ(load(field), (std::vector<double>{1, 4, 2, 5, 3, 6})) << id;
    }
}

TEST_F(FieldLoad, SinglePrecisionIsWidenedAndAsciiReadAsWritten) {
    const std::vector<double> values = {0.1, -2.5e-30, 3.4e38, 1e-40, -0.0};
    DataField* single = scanOne(dataSection(2300, 1, 5, 1, 0, 1, 5, values), 5);
    ASSERT_NE(single, nullptr);
    std::vector<double> widened;
    for (double v : values) {
        widened.push_back(static_cast<float>(v));
    }
    EXPECT_EQ(load(single), widened);

    DataField* text = scanOne(dataSection(300, 1, 5, 1, 0, 1, 5, values), 5);
    EXPECT_EQ(load(text), values);
    DataField* binary = scanOne(dataSection(3300, 1, 5, 1, 0, 1, 5, values), 5);
    EXPECT_EQ(load(binary), values);
}

TEST_F(FieldLoad, BigEndianFilesAreReversedItemByItem) {
    const std::vector<double> values = {1.25, -7.5, 1e300};
    DataField* d = scanOne(dataSection(3300, 1, 5, 1, 0, 1, 3, values, true), 3, true);
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(load(d), values);
    DataField* f = scanOne(dataSection(2300, 1, 5, 1, 0, 1, 2, {1.25, -7.5}, true), 2, true);
    EXPECT_EQ(load(f), (std::vector<double>{1.25, -7.5}));
}

TEST_F(FieldLoad, PhaseAndFieldOfAFaceZoneLoadAlike) {
    file_.reset(new TempFile(machineConfig() + dataSection(300, 1, 5, 1, 0, 1, 2, {1, 2}) +
                             dataSection(3300, 18, 9, 1, 3, 3, 5, {7, 8, 9})));
    mesh_.reset(new MemoryCase);
    mesh_->addCellZone(5, 1, 2);
    mesh_->addFaceZone(9, 3, 5);
    dataFile_.reset(new DataFile);
    ASSERT_TRUE(scanFile(dataFile_.get(), file_->path(), mesh_->get()));
    ASSERT_EQ(dataFile_->numDataFields, 2);
    EXPECT_EQ(load(&dataFile_->dataFields[1]), (std::vector<double>{7, 8, 9}));
    EXPECT_EQ(dataFile_->dataFields[1].phase, 3);
    EXPECT_EQ(load(&dataFile_->dataFields[0]), (std::vector<double>{1, 2}));
}

TEST_F(FieldLoad, AsciiFileTruncatedInsideAField) {
    const std::string section = dataSection(300, 1, 5, 1, 0, 1, 4, {1, 2, 3, 4});
    DataField* field = scanOne(section, 4);
    ASSERT_NE(field, nullptr);
    // Cut the file behind the second number.
    const std::string bytes = machineConfig() + section;
    const size_t cut = bytes.find("2\n") + 2;
    TempFile cutFile(bytes.substr(0, cut));
    strcpy(dataFile_->fileName, cutFile.path().c_str());
    EXPECT_FALSE(DataFileLoadDataField(dataFile_.get(), field));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{"End-of-file while reading Data section (section 300)."});
    ASSERT_NE(field->values, nullptr);
    EXPECT_EQ(field->values[0], 1.0);
    EXPECT_EQ(field->values[1], 2.0);
    DataFieldFreeArrays(field);
}

TEST_F(FieldLoad, BinaryFileTruncatedInsideAField) {
    // A short read of doubles is a read error; one of floats is told by the
    // stream's state, here its end.
    const std::pair<int, const char*> cases[] = {
        {3300, "Read error while reading Data section (section 3300)."},
        {2300, "End-of-file while reading Data section (section 2300)."},
    };
    for (const auto& c : cases) {
        minihost::resetRecords();
        const std::string section = dataSection(c.first, 1, 5, 1, 0, 1, 4, {1, 2, 3, 4});
        DataField* field = scanOne(section, 4);
        ASSERT_NE(field, nullptr);
        const std::string bytes = machineConfig() + section;
        TempFile cutFile(bytes.substr(0, static_cast<size_t>(field->filePosition) + 10));
        strcpy(dataFile_->fileName, cutFile.path().c_str());
        EXPECT_FALSE(DataFileLoadDataField(dataFile_.get(), field));
        EXPECT_EQ(messageTexts(), std::vector<std::string>{c.second});
        DataFieldFreeArrays(field);
    }
}

TEST_F(FieldLoad, FileThatVanishedIsCalledACaseFile) {
    DataField* field = scanOne(dataSection(300, 1, 5, 1, 0, 1, 2, {1, 2}), 2);
    ASSERT_NE(field, nullptr);
    const std::string path = file_->path();
    file_.reset();
    EXPECT_FALSE(DataFileLoadDataField(dataFile_.get(), field));
    EXPECT_EQ(messageTexts(), std::vector<std::string>{"Error opening case file '" + path + "'"});
    EXPECT_EQ(field->values, nullptr);
}

TEST_F(FieldLoad, PositionThatCannotBeSetHasNoClosingParenthesis) {
    DataField* field = scanOne(dataSection(300, 1, 5, 1, 0, 1, 2, {1, 2}), 2);
    ASSERT_NE(field, nullptr);
    field->filePosition = -5;
    EXPECT_FALSE(DataFileLoadDataField(dataFile_.get(), field));
    EXPECT_EQ(messageTexts(),
              std::vector<std::string>{"Error setting file position (-5 while reading data in file\n" +
                                       file_->path()});
}

TEST_F(FieldLoad, AsciiFieldWithStrayTextBeforeItsEndFailsWithTheWarning) {
    // Three numbers where the header says two: all numbers arrive, the close does not.
    DataField* field = scanOne("(300 (1 5 1 0 0 1 2)\n(1\n2\n3\n))\n", 2);
    ASSERT_NE(field, nullptr);
    EXPECT_FALSE(DataFileLoadDataField(dataFile_.get(), field));
    ASSERT_EQ(minihost::messages().size(), 1u);
    EXPECT_EQ(minihost::messages()[0].kind, "warning");
    EXPECT_EQ(minihost::messages()[0].text,
              "Parse error while reading Data section (section 300). Expected ')', found '3'. Attempting to "
              "continue...");
    DataFieldFreeArrays(field);
    minihost::resetRecords();
    minihost::setBatchMode(true);
    EXPECT_TRUE(DataFileLoadDataField(dataFile_.get(), field));
    EXPECT_TRUE(minihost::messages().empty());
}

TEST_F(FieldLoad, BinaryFieldWhoseMarkerIsFarBehindFailsSilently) {
    std::string section = dataSection(3300, 1, 5, 1, 0, 1, 2, {1, 2});
    section.insert(section.find("\nEnd of"), std::string(120, ' '));
    DataField* field = scanOne(section, 2);
    ASSERT_NE(field, nullptr);
    EXPECT_FALSE(DataFileLoadDataField(dataFile_.get(), field));
    EXPECT_TRUE(minihost::messages().empty());
    ASSERT_NE(field->values, nullptr);
    EXPECT_EQ(field->values[1], 2.0);
    DataFieldFreeArrays(field);
}

TEST_F(FieldLoad, SecondLoadOfTheSameRecordReadsAgain) {
    DataField* field = scanOne(dataSection(3300, 1, 5, 1, 0, 1, 2, {1, 2}), 2);
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(load(field), (std::vector<double>{1, 2}));
    DataField copy = *field;
    copy.values = nullptr;
    copy.minima = copy.maxima = nullptr;
    EXPECT_EQ(load(&copy), (std::vector<double>{1, 2}));
    free(copy.values);
}
