// The client data objects turn into the words of a host block and back, field
// for field; a block that does not fit its object raises IOException.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "host/Metadata.h"
#include "metadata/ClientDataFactory.h"

namespace {

using namespace zorvane::zorutildataio;
using zorvane::dataio::ClientDataBlock;
using zorvane::dataio::IOException;

// The object's words, read back into a fresh object of the same factory.
template <typename Object>
ClientDataBlock blockOf(const Object& object) {
    ClientDataBlock block;
    object.writeBlock(block);
    return ClientDataBlock(block.words());
}

TEST(ClientData, CaseFileDataRoundTripsEveryField) {
    CaseFileClientDataVersion1 written;
    written.setNumDimensions(3);
    written.setAxisymmetric(true);
    written.setDoublePrecision(true);
    written.setTotalNodes(1234);
    written.setMachineConfig({1, 0, 4, 4, 8});
    written.addNodeZones({{3010, 1, 1, 1000, 77}, {10, 2, 1001, 1234, 1ll << 40}});
    written.addChildFaceSectionIds({62, 3062});
    written.addChildFaceZoneIds({9, 0});
    written.addChildFacePositions({500, 600});
    written.addFaceTrees({{59, 1, 4, 5, 6, 4, 900}});
    written.addSpeciesNames({"h2o", "", "o2 with spaces"});

    ClientDataBlock block = blockOf(written);
    CaseFileClientDataVersion1 read;
    read.readBlock(block);
    EXPECT_EQ(read.numDimensions(), 3);
    EXPECT_TRUE(read.axisymmetric());
    EXPECT_TRUE(read.doublePrecision());
    EXPECT_EQ(read.totalNodes(), 1234);
    EXPECT_EQ(read.machineConfig(), (std::array<int32_t, 5>{1, 0, 4, 4, 8}));
    ASSERT_EQ(read.nodeZones().size(), 2u);
    EXPECT_EQ(read.nodeZones()[1].firstIndex, 1001);
    EXPECT_EQ(read.nodeZones()[1].filePosition, 1ll << 40);
    EXPECT_EQ(read.childFaceSectionIds(), (std::vector<int32_t>{62, 3062}));
    EXPECT_EQ(read.childFaceZoneIds(), (std::vector<int32_t>{9, 0}));
    EXPECT_EQ(read.childFacePositions(), (std::vector<int64_t>{500, 600}));
    ASSERT_EQ(read.faceTrees().size(), 1u);
    EXPECT_EQ(read.faceTrees()[0].childZoneId, 6);
    EXPECT_EQ(read.faceTrees()[0].maxChildren, 4);
    EXPECT_EQ(read.faceTrees()[0].filePosition, 900);
    EXPECT_EQ(read.speciesNames(), (std::vector<std::string>{"h2o", "", "o2 with spaces"}));
}

TEST(ClientData, ZoneDataRoundTripsEveryFieldInItsOrder) {
    ZoneClientDataVersion1 written;
    written.setNodeCount(11);
    written.setSectionId(2013);
    written.setZoneId(7);
    written.setFilePosition(123456789012ll);
    written.setZoneType(3);
    written.setElementType(4);
    written.setSelectionIndex(2);
    written.setLastIndex(40);
    written.setFirstIndex(31);
    written.setPolyhedralSize(0);
    written.setParentZoneId(1);
    ClientDataBlock block = blockOf(written);
    EXPECT_EQ(block.words(), (std::vector<int64_t>{11, 2013, 7, 123456789012ll, 3, 4, 2, 40, 31, 0, 1}));
    ZoneClientDataVersion1 read;
    read.readBlock(block);
    EXPECT_EQ(read.sectionId(), 2013);
    EXPECT_EQ(read.filePosition(), 123456789012ll);
    EXPECT_EQ(read.firstIndex(), 31);
    EXPECT_EQ(read.parentZoneId(), 1);
}

TEST(ClientData, DataFileDataKeepsItsTimesBitForBit) {
    DataFileClientDataVersion1 written;
    written.setMachineConfig({0, 0, 4, 4, 8});
    written.setFlowTime(0.1 + 0.2);
    written.setDeltaTimeSampled(-1e-300);
    written.setNumDataFields(12);
    written.setNumParticles(1);
    written.setAdditionalQuantities({"First Quantity"});
    ClientDataBlock block = blockOf(written);
    DataFileClientDataVersion1 read;
    read.readBlock(block);
    EXPECT_EQ(read.flowTime(), 0.1 + 0.2);
    EXPECT_EQ(read.deltaTimeSampled(), -1e-300);
    EXPECT_EQ(read.numDataFields(), 12);
    EXPECT_EQ(read.numParticles(), 1);
    EXPECT_EQ(read.additionalQuantities(), (std::vector<std::string>{"First Quantity"}));
}

TEST(ClientData, FieldDataRoundTripsEveryField) {
    DataFileVarClientDataVersion1 written;
    written.setSectionId(3300);
    written.setZoneId(4);
    written.setFilePosition(99);
    written.setFieldId(200);
    written.setCount(16);
    written.setDimension(3);
    written.setPhase(2);
    ClientDataBlock block = blockOf(written);
    EXPECT_EQ(block.words(), (std::vector<int64_t>{3300, 4, 99, 200, 16, 3, 2}));
    DataFileVarClientDataVersion1 read;
    read.readBlock(block);
    EXPECT_EQ(read.fieldId(), 200);
    EXPECT_EQ(read.dimension(), 3);
    EXPECT_EQ(read.phase(), 2);
}

TEST(ClientData, ABlockCutShortRaisesIOException) {
    ZoneClientDataVersion1 written;
    ClientDataBlock whole = blockOf(written);
    std::vector<int64_t> words = whole.words();
    words.pop_back();
    ClientDataBlock cut(words);
    ZoneClientDataVersion1 read;
    EXPECT_THROW(read.readBlock(cut), IOException);
}

TEST(ClientData, ABlockLongerThanItsObjectRaisesIOException) {
    DataFileZoneClientDataVersion1 read;
    ClientDataBlock block(std::vector<int64_t>{5, 6});
    EXPECT_THROW(read.readBlock(block), IOException);
    ClientDataBlock good(std::vector<int64_t>{5});
    read.readBlock(good);
    EXPECT_EQ(read.zoneId(), 5);
}

TEST(ClientData, AWordOutOfItsFieldsRangeRaisesIOException) {
    ZoneClientDataVersion1 written;
    std::vector<int64_t> words = blockOf(written).words();
    words[2] = int64_t(std::numeric_limits<int32_t>::max()) + 1;  // the zone id
    ClientDataBlock block(words);
    ZoneClientDataVersion1 read;
    EXPECT_THROW(read.readBlock(block), IOException);

    CaseFileClientDataVersion1 caseData;
    std::vector<int64_t> caseWords = blockOf(caseData).words();
    caseWords[1] = 2;  // axisymmetric is a boolean
    ClientDataBlock caseBlock(caseWords);
    EXPECT_THROW(caseData.readBlock(caseBlock), IOException);
}

TEST(ClientData, ARecordCountBeyondTheBlockRaisesIOExceptionBeforeAnyAllocation) {
    CaseFileClientDataVersion1 written;
    std::vector<int64_t> words = blockOf(written).words();
    words[9] = int64_t(1) << 60;  // the count of node zones
    ClientDataBlock block(words);
    CaseFileClientDataVersion1 read;
    EXPECT_THROW(read.readBlock(block), IOException);
}

TEST(ClientData, OnlyVersionOneHasAFactory) {
    std::unique_ptr<ClientDataFactoryInterface> factory = clientDataFactoryForVersion(1);
    ASSERT_NE(factory, nullptr);
    EXPECT_NE(dynamic_cast<CaseFileClientDataVersion1*>(factory->createCaseFileClientData().get()), nullptr);
    EXPECT_NE(dynamic_cast<ZoneClientDataVersion1*>(factory->createZoneClientData().get()), nullptr);
    EXPECT_NE(dynamic_cast<DataFileVarClientDataVersion1*>(factory->createDataFileVarClientData().get()),
              nullptr);
    EXPECT_EQ(clientDataFactoryForVersion(0), nullptr);
    EXPECT_EQ(clientDataFactoryForVersion(2), nullptr);
}

}  // namespace
