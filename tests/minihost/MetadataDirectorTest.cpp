// The metadata director: file names, staleness, reading back what was
// written, versions, damage, and ranges that come after the write.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>

#include "host/Metadata.h"

namespace {

using namespace zorvane::dataio;

struct Words : MetadataClientDataInterface {
    std::vector<int64_t> words;
    void writeBlock(ClientDataBlock& block) const override {
        for (int64_t w : words)
            block.putWord(w);
    }
    void readBlock(ClientDataBlock& block) override {
        words.clear();
        while (!block.atEnd())
            words.push_back(block.getWord());
    }
};

class MetadataDirectorTest : public ::testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/minihost-meta-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = std::string(pattern) + "/";
        writeDataFile("case contents");
    }
    void TearDown() override { std::system(("rm -rf '" + dir + "'").c_str()); }
    void writeDataFile(const std::string& text) { std::ofstream(dir + "a.cas", std::ios::binary) << text; }
    // Writes a data set with one zone and its X variable; returns X's writer.
    DeferredMinMaxWriter* writeMetadata(MetadataDirector& director, bool rangeBeforeWrite) {
        DeferredMinMaxWriter* writer =
            director.variableMinMaxDeferredWriterFactory()->createDeferredMinMaxWriter();
        if (rangeBeforeWrite)
            writer->setMinMax(-1.0, 1.0);
        MetadataDataset dataset(1);
        dataset.setName("header text");
        dataset.setLoaderName("Fluent Data Loader");
        dataset.setLoaderVersion(1);
        auto file = std::make_shared<UniqueFilename>("a.cas", true, 1);
        Words words;
        words.words = {3, -4, 5};
        file->submitClientData(words);
        dataset.addUniqueFilename(file);
        auto zone = dataset.addFEPolyhedronZone("fluid", 10, 2, 11, 40, 0);
        zone->submitClientData(words);
        zone->addVariable("X")->bindDeferredWriter(writer);
        zone->addVariable("Y")->setRange(2.0, 3.0);
        std::string name = director.initializeMetadataFilename(dir, "a.cas");
        EXPECT_EQ(name, dir + ".a.cas.zmeta");
        director.write(std::make_shared<BufferedOutputStream>(std::make_shared<FileOutputStream>(name)),
                       dataset);
        return writer;
    }
    MetadataDataset readMetadata() {
        MetadataDirector director;
        MetadataDataset dataset(1);
        director.read(std::make_shared<BufferedInputStream>(
                          std::make_shared<FileInputStream>(director.metadataFilename(dir, "a.cas"))),
                      dataset);
        return dataset;
    }
    std::string dir;
};

TEST_F(MetadataDirectorTest, WhatWasWrittenReadsBack) {
    MetadataDirector director;
    EXPECT_FALSE(director.metadataFileAvailable(dir, "a.cas"));
    writeMetadata(director, true);
    EXPECT_TRUE(director.metadataFileAvailable(dir, "a.cas"));
    MetadataDataset dataset = readMetadata();
    EXPECT_EQ(dataset.name(), "header text");
    EXPECT_EQ(dataset.loaderName(), "Fluent Data Loader");
    EXPECT_EQ(dataset.loaderVersion(), 1);
    EXPECT_EQ(dataset.clientDataVersion(), 1);
    EXPECT_TRUE(dataset.isClientDataNativeByteOrder());
    ASSERT_EQ(dataset.uniqueFilenames().size(), 1u);
    Words words;
    dataset.uniqueFilenames()[0]->fetchClientData(words);
    EXPECT_EQ(words.words, (std::vector<int64_t>{3, -4, 5}));
    ASSERT_EQ(dataset.zones().size(), 1u);
    const auto& zone = dataset.zones()[0];
    EXPECT_EQ(zone->kind(), MetadataZoneKind::FEPolyhedron);
    EXPECT_EQ(zone->name(), "fluid");
    EXPECT_EQ(zone->numFaceNodes(), 40);
    ASSERT_EQ(zone->variables().size(), 2u);
    EXPECT_TRUE(zone->variables()[0]->hasRange());
    EXPECT_EQ(zone->variables()[0]->minimum(), -1.0);
    EXPECT_EQ(zone->variables()[1]->maximum(), 3.0);
}

TEST_F(MetadataDirectorTest, ARangeThatComesAfterTheWriteReachesTheFile) {
    MetadataDirector director;
    DeferredMinMaxWriter* writer = writeMetadata(director, false);
    EXPECT_FALSE(readMetadata().zones()[0]->variables()[0]->hasRange());
    writer->setMinMax(0.5, 7.5);  // the values were loaded
    auto x = readMetadata().zones()[0]->variables()[0];
    ASSERT_TRUE(x->hasRange());
    EXPECT_EQ(x->minimum(), 0.5);
    EXPECT_EQ(x->maximum(), 7.5);
    EXPECT_TRUE(director.metadataFileAvailable(dir, "a.cas"));
}

TEST_F(MetadataDirectorTest, AChangedDataFileMakesTheMetadataStale) {
    MetadataDirector director;
    writeMetadata(director, true);
    writeDataFile("other, longer case contents");
    EXPECT_FALSE(director.metadataFileAvailable(dir, "a.cas"));
}

TEST_F(MetadataDirectorTest, AnotherVersionThrowsInvalidMetadataVersion) {
    MetadataDirector director;
    writeMetadata(director, true);
    std::string name = director.metadataFilename(dir, "a.cas");
    std::FILE* file = std::fopen(name.c_str(), "r+b");
    ASSERT_NE(file, nullptr);
    int32_t version = 2;
    std::fseek(file, 8, SEEK_SET);
    std::fwrite(&version, sizeof version, 1, file);
    std::fclose(file);
    EXPECT_TRUE(director.metadataFileAvailable(dir, "a.cas"));
    EXPECT_THROW(readMetadata(), InvalidMetadataVersionException);
}

TEST_F(MetadataDirectorTest, ACutFileThrowsIOExceptionAndStaysAvailable) {
    MetadataDirector director;
    writeMetadata(director, true);
    std::string name = director.metadataFilename(dir, "a.cas");
    struct stat status {};
    ASSERT_EQ(stat(name.c_str(), &status), 0);
    ASSERT_EQ(truncate(name.c_str(), status.st_size - 9), 0);
    EXPECT_THROW(readMetadata(), IOException);
    EXPECT_TRUE(director.metadataFileAvailable(dir, "a.cas"));  // a second try finds it again
    ASSERT_EQ(truncate(name.c_str(), 3), 0);
    EXPECT_THROW(readMetadata(), IOException);
}

}  // namespace
