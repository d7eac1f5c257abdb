#include "metadata/DataFileClientData.h"

#include "metadata/ClientDataWords.h"

namespace zorvane {
namespace zorutildataio {

DataFileClientDataInterface::~DataFileClientDataInterface() = default;
DataFileClientDataVersion1::DataFileClientDataVersion1() = default;
DataFileClientDataVersion1::~DataFileClientDataVersion1() = default;

void DataFileClientDataVersion1::writeBlock(dataio::ClientDataBlock& block) const {
    for (int32_t number : machineConfig_)
        block.putWord(number);
    block.putWord(doubleToWord(flowTime_));
    block.putWord(doubleToWord(deltaTimeSampled_));
    block.putWord(numDataFields_);
    block.putWord(numParticles_);
    block.putStrings(additionalQuantities_);
}

void DataFileClientDataVersion1::readBlock(dataio::ClientDataBlock& block) {
    for (int32_t& number : machineConfig_)
        number = getInt32Word(block);
    flowTime_ = wordToDouble(block.getWord());
    deltaTimeSampled_ = wordToDouble(block.getWord());
    numDataFields_ = getInt32Word(block);
    numParticles_ = getInt32Word(block);
    if (numDataFields_ < 0 || numParticles_ < 0)
        throw dataio::IOException("negative table size in a data file's client data");
    additionalQuantities_ = block.getStrings();
    expectBlockEnd(block, "a data file");
}

DataFileZoneClientDataInterface::~DataFileZoneClientDataInterface() = default;
DataFileZoneClientDataVersion1::DataFileZoneClientDataVersion1() = default;
DataFileZoneClientDataVersion1::~DataFileZoneClientDataVersion1() = default;

void DataFileZoneClientDataVersion1::writeBlock(dataio::ClientDataBlock& block) const {
    block.putWord(zoneId_);
}

void DataFileZoneClientDataVersion1::readBlock(dataio::ClientDataBlock& block) {
    zoneId_ = getInt32Word(block);
    expectBlockEnd(block, "a data file zone");
}

DataFileVarClientDataInterface::~DataFileVarClientDataInterface() = default;
DataFileVarClientDataVersion1::DataFileVarClientDataVersion1() = default;
DataFileVarClientDataVersion1::~DataFileVarClientDataVersion1() = default;

void DataFileVarClientDataVersion1::writeBlock(dataio::ClientDataBlock& block) const {
    block.putWord(sectionId_);
    block.putWord(zoneId_);
    block.putWord(filePosition_);
    block.putWord(fieldId_);
    block.putWord(count_);
    block.putWord(dimension_);
    block.putWord(phase_);
}

void DataFileVarClientDataVersion1::readBlock(dataio::ClientDataBlock& block) {
    sectionId_ = getInt32Word(block);
    zoneId_ = getInt32Word(block);
    filePosition_ = block.getWord();
    fieldId_ = getInt32Word(block);
    count_ = getInt32Word(block);
    dimension_ = getInt32Word(block);
    phase_ = getInt32Word(block);
    expectBlockEnd(block, "a data file variable");
}

}  // namespace zorutildataio
}  // namespace zorvane
