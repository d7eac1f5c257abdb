// The metadata library's streams, client data blocks and data set descriptions.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "host/Metadata.h"

namespace {

using namespace zorvane::dataio;

std::string tempPath() {
    char name[] = "/tmp/minihost-test-XXXXXX";
    int fd = mkstemp(name);
    EXPECT_GE(fd, 0);
    close(fd);
    return name;
}

// A client data object of a few fields, as a loader would write one.
struct SampleClientData : MetadataClientDataInterface {
    int64_t count = 0;
    double time = 0.0;
    std::vector<std::string> names;
    void writeBlock(ClientDataBlock& block) const override {
        block.putWord(count);
        int64_t bits;
        static_assert(sizeof bits == sizeof time, "a double fills one word");
        std::memcpy(&bits, &time, sizeof bits);
        block.putWord(bits);
        block.putStrings(names);
    }
    void readBlock(ClientDataBlock& block) override {
        count = block.getWord();
        int64_t bits = block.getWord();
        std::memcpy(&time, &bits, sizeof time);
        names = block.getStrings();
    }
};

TEST(MetadataStreams, WriteAndReadBackThroughBuffers) {
    std::string path = tempPath();
    std::string text;
    for (int i = 0; i < 10000; ++i)
        text += static_cast<char>('a' + i % 26);
    {
        auto out = std::make_shared<BufferedOutputStream>(std::make_shared<FileOutputStream>(path), 100);
        out->write(text.data(), 10);
        out->write(text.data() + 10, text.size() - 10);  // larger than the buffer
        out->flush();
    }
    auto in = std::make_shared<BufferedInputStream>(std::make_shared<FileInputStream>(path), 64);
    std::string back(text.size() + 5, '\0');
    size_t got = in->read(&back[0], 7);
    got += in->read(&back[7], back.size() - 7);
    EXPECT_EQ(got, text.size());
    back.resize(got);
    EXPECT_EQ(back, text);
    char extra;
    EXPECT_EQ(in->read(&extra, 1), 0u);
    unlink(path.c_str());
}

TEST(MetadataStreams, AMissingFileThrowsIOException) {
    EXPECT_THROW(FileInputStream("no-such-folder/no-such-file"), IOException);
    EXPECT_THROW(FileOutputStream("no-such-folder/no-such-file"), IOException);
}

TEST(MetadataClientData, RoundTripsThroughAHolder) {
    SampleClientData data;
    data.count = -7;
    data.time = 0.25;
    data.names = {"h2o", "", "o2"};
    UniqueFilename file("a.cas", true, 1);
    EXPECT_FALSE(file.hasClientData());
    file.submitClientData(data);
    ASSERT_TRUE(file.hasClientData());
    SampleClientData back;
    file.fetchClientData(back);
    EXPECT_EQ(back.count, -7);
    EXPECT_EQ(back.time, 0.25);
    EXPECT_EQ(back.names, data.names);
}

TEST(MetadataClientData, ABlockOfTheOtherByteOrderReadsBackWhenSwapped) {
    SampleClientData data;
    data.count = 0x0102030405060708;
    data.names = {"xy"};
    ClientDataBlock block;
    data.writeBlock(block);
    block.swapWordBytes();  // as written on a machine of the other byte order
    VariableMinMax variable("Pressure");
    variable.setClientDataWords(block.words());
    SampleClientData back;
    variable.fetchClientData(back, true);
    EXPECT_EQ(back.count, 0x0102030405060708);
    EXPECT_EQ(back.names, data.names);
}

TEST(MetadataClientData, AShortBlockThrowsIOException) {
    ClientDataBlock block(std::vector<int64_t>{2, 3, 'a', 'b'});  // two strings announced, one half there
    EXPECT_THROW(block.getStrings(), IOException);
    ClientDataHolder empty;
    SampleClientData data;
    EXPECT_THROW(empty.fetchClientData(data), IOException);
}

// A deferred writer that counts its references and remembers the range.
struct CountingWriter : DeferredMinMaxWriter {
    static int alive;
    double minimum = 0, maximum = 0;
    CountingWriter() { ++alive; }
    ~CountingWriter() override { --alive; }
    void setMinMax(double lo, double hi) override {
        minimum = lo;
        maximum = hi;
    }
};
int CountingWriter::alive = 0;

TEST(MetadataDatasets, DescribeFilesZonesAndVariables) {
    MetadataDataset dataset(1);
    dataset.setName("a case");
    dataset.setLoaderName("Fluent Data Loader");
    dataset.setLoaderVersion(1);
    dataset.addUniqueFilename(std::make_shared<UniqueFilename>("a.cas", false, 1));
    auto brick = dataset.addFEBrickZone("fluid", 27, 8);
    auto poly = dataset.addFEPolyhedronZone("poly", 10, 2, 11, 40, 3);
    dataset.addUnsupportedZone("odd", 1, 1);
    auto x = brick->addVariable("X");
    brick->addVariable("Y");
    x->setRange(-1.0, 2.0);
    EXPECT_EQ(dataset.clientDataVersion(), 1);
    EXPECT_EQ(dataset.name(), "a case");
    EXPECT_EQ(dataset.loaderName(), "Fluent Data Loader");
    EXPECT_EQ(dataset.loaderVersion(), 1);
    ASSERT_EQ(dataset.uniqueFilenames().size(), 1u);
    EXPECT_FALSE(dataset.uniqueFilenames()[0]->isNativeByteOrder());
    ASSERT_EQ(dataset.zones().size(), 3u);
    EXPECT_EQ(dataset.zones()[0]->kind(), MetadataZoneKind::FEBrick);
    EXPECT_EQ(dataset.zones()[0]->numElements(), 8);
    EXPECT_EQ(poly->numFaces(), 11);
    EXPECT_EQ(poly->numFaceNodes(), 40);
    EXPECT_EQ(poly->numBoundaryConnections(), 3);
    EXPECT_EQ(dataset.zones()[2]->kind(), MetadataZoneKind::Unsupported);
    ASSERT_EQ(brick->variables().size(), 2u);
    EXPECT_TRUE(brick->variables()[0]->hasRange());
    EXPECT_EQ(brick->variables()[0]->maximum(), 2.0);
    EXPECT_FALSE(brick->variables()[1]->hasRange());
    EXPECT_TRUE(dataset.isClientDataNativeByteOrder());
}

TEST(MetadataDatasets, AVariableHoldsItsDeferredWriterUntilItGoes) {
    auto* writer = new CountingWriter;  // one reference: the factory's
    {
        VariableMinMax variable("X");
        variable.bindDeferredWriter(writer);
        EXPECT_EQ(variable.deferredWriter(), writer);
        writer->release();  // the factory lets go; the variable still holds it
        EXPECT_EQ(CountingWriter::alive, 1);
    }
    EXPECT_EQ(CountingWriter::alive, 0);
}

}  // namespace
