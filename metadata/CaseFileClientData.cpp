#include "metadata/CaseFileClientData.h"

#include "metadata/ClientDataWords.h"

namespace zorvane {
namespace zorutildataio {

CaseFileClientDataInterface::~CaseFileClientDataInterface() = default;

CaseFileClientDataVersion1::CaseFileClientDataVersion1() = default;
CaseFileClientDataVersion1::~CaseFileClientDataVersion1() = default;

void CaseFileClientDataVersion1::addNodeZones(const std::vector<NodeZoneRecord>& nodeZones) {
    nodeZones_.insert(nodeZones_.end(), nodeZones.begin(), nodeZones.end());
}

void CaseFileClientDataVersion1::addChildFaceSectionIds(const std::vector<int32_t>& sectionIds) {
    childFaceSectionIds_.insert(childFaceSectionIds_.end(), sectionIds.begin(), sectionIds.end());
}

void CaseFileClientDataVersion1::addChildFaceZoneIds(const std::vector<int32_t>& zoneIds) {
    childFaceZoneIds_.insert(childFaceZoneIds_.end(), zoneIds.begin(), zoneIds.end());
}

void CaseFileClientDataVersion1::addChildFacePositions(const std::vector<int64_t>& positions) {
    childFacePositions_.insert(childFacePositions_.end(), positions.begin(), positions.end());
}

void CaseFileClientDataVersion1::addFaceTrees(const std::vector<FaceTreeRecord>& faceTrees) {
    faceTrees_.insert(faceTrees_.end(), faceTrees.begin(), faceTrees.end());
}

void CaseFileClientDataVersion1::addSpeciesNames(const std::vector<std::string>& speciesNames) {
    speciesNames_.insert(speciesNames_.end(), speciesNames.begin(), speciesNames.end());
}

void CaseFileClientDataVersion1::writeBlock(dataio::ClientDataBlock& block) const {
    if (childFaceZoneIds_.size() != childFacePositions_.size() ||
        childFaceSectionIds_.size() != childFacePositions_.size())
        throw dataio::IOException("child face vectors of different lengths");
    block.putWord(numDimensions_);
    block.putWord(axisymmetric_ ? 1 : 0);
    block.putWord(doublePrecision_ ? 1 : 0);
    block.putWord(totalNodes_);
    for (int32_t number : machineConfig_)
        block.putWord(number);
    block.putWord(static_cast<int64_t>(nodeZones_.size()));
    for (const NodeZoneRecord& zone : nodeZones_) {
        block.putWord(zone.sectionId);
        block.putWord(zone.zoneId);
        block.putWord(zone.firstIndex);
        block.putWord(zone.lastIndex);
        block.putWord(zone.filePosition);
    }
    block.putWord(static_cast<int64_t>(childFacePositions_.size()));
    for (size_t i = 0; i < childFacePositions_.size(); ++i) {
        block.putWord(childFaceSectionIds_[i]);
        block.putWord(childFaceZoneIds_[i]);
        block.putWord(childFacePositions_[i]);
    }
    block.putWord(static_cast<int64_t>(faceTrees_.size()));
    for (const FaceTreeRecord& tree : faceTrees_) {
        block.putWord(tree.sectionId);
        block.putWord(tree.firstIndex);
        block.putWord(tree.lastIndex);
        block.putWord(tree.parentZoneId);
        block.putWord(tree.childZoneId);
        block.putWord(tree.maxChildren);
        block.putWord(tree.filePosition);
    }
    block.putStrings(speciesNames_);
}

void CaseFileClientDataVersion1::readBlock(dataio::ClientDataBlock& block) {
    numDimensions_ = getInt32Word(block);
    axisymmetric_ = getBoolWord(block);
    doublePrecision_ = getBoolWord(block);
    totalNodes_ = getInt32Word(block);
    for (int32_t& number : machineConfig_)
        number = getInt32Word(block);

    const size_t numNodeZones = getCountWord(block, 5);
    nodeZones_.clear();
    nodeZones_.reserve(numNodeZones);
    for (size_t i = 0; i < numNodeZones; ++i) {
        NodeZoneRecord zone;
        zone.sectionId = getInt32Word(block);
        zone.zoneId = getInt32Word(block);
        zone.firstIndex = getInt32Word(block);
        zone.lastIndex = getInt32Word(block);
        zone.filePosition = block.getWord();
        nodeZones_.push_back(zone);
    }

    const size_t numChildFaces = getCountWord(block, 3);
    childFaceSectionIds_.assign(numChildFaces, 0);
    childFaceZoneIds_.assign(numChildFaces, 0);
    childFacePositions_.assign(numChildFaces, 0);
    for (size_t i = 0; i < numChildFaces; ++i) {
        childFaceSectionIds_[i] = getInt32Word(block);
        childFaceZoneIds_[i] = getInt32Word(block);
        childFacePositions_[i] = block.getWord();
    }

    const size_t numFaceTrees = getCountWord(block, 7);
    faceTrees_.clear();
    faceTrees_.reserve(numFaceTrees);
    for (size_t i = 0; i < numFaceTrees; ++i) {
        FaceTreeRecord tree;
        tree.sectionId = getInt32Word(block);
        tree.firstIndex = getInt32Word(block);
        tree.lastIndex = getInt32Word(block);
        tree.parentZoneId = getInt32Word(block);
        tree.childZoneId = getInt32Word(block);
        tree.maxChildren = getInt32Word(block);
        tree.filePosition = block.getWord();
        faceTrees_.push_back(tree);
    }
    speciesNames_ = block.getStrings();
    expectBlockEnd(block, "a case file");
}

}  // namespace zorutildataio
}  // namespace zorvane
