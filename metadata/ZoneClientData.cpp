#include "metadata/ZoneClientData.h"

#include "metadata/ClientDataWords.h"

namespace zorvane {
namespace zorutildataio {

ZoneClientDataInterface::~ZoneClientDataInterface() = default;

ZoneClientDataVersion1::ZoneClientDataVersion1() = default;
ZoneClientDataVersion1::~ZoneClientDataVersion1() = default;

void ZoneClientDataVersion1::writeBlock(dataio::ClientDataBlock& block) const {
    block.putWord(nodeCount_);
    block.putWord(sectionId_);
    block.putWord(zoneId_);
    block.putWord(filePosition_);
    block.putWord(zoneType_);
    block.putWord(elementType_);
    block.putWord(selectionIndex_);
    block.putWord(lastIndex_);
    block.putWord(firstIndex_);
    block.putWord(polyhedralSize_);
    block.putWord(parentZoneId_);
}

void ZoneClientDataVersion1::readBlock(dataio::ClientDataBlock& block) {
    nodeCount_ = getInt32Word(block);
    sectionId_ = getInt32Word(block);
    zoneId_ = getInt32Word(block);
    filePosition_ = block.getWord();
    zoneType_ = getInt32Word(block);
    elementType_ = getInt32Word(block);
    selectionIndex_ = getInt32Word(block);
    lastIndex_ = getInt32Word(block);
    firstIndex_ = getInt32Word(block);
    polyhedralSize_ = getInt32Word(block);
    parentZoneId_ = getInt32Word(block);
    expectBlockEnd(block, "a zone");
}

}  // namespace zorutildataio
}  // namespace zorvane
