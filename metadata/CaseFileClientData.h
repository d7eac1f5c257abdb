// Client data of a case file's entry in a metadata file: what a restore
// needs of a CaseFile beyond its zones (which have their own client data).
//
// Block layout, one 64-bit word per number:
//
//   numDimensions, axisymmetric, doublePrecision, totalNodes
//   machineConfig     five words: byteOrder, floatFormat, intSize, floatSize, doubleSize
//   nodeZones         count; per zone sectionId, zoneId, firstIndex, lastIndex, filePosition
//   child faces       count; per section sectionId, zoneId, filePosition
//   faceTrees         count; per tree sectionId, firstIndex, lastIndex, parentZoneId,
//                     childZoneId, maxChildren, filePosition
//   speciesNames      as ClientDataBlock::putStrings stores strings
//
// The child face sections keep their section id beside zone id and position:
// the pairs are read again from the file, and the section id says whether
// they are text or binary.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "host/Metadata.h"

namespace zorvane {
namespace zorutildataio {

// One Nodes section as the cache keeps it.
struct NodeZoneRecord {
    int32_t sectionId;     // 10, 2010 or 3010
    int32_t zoneId;        // Fluent zone id
    int32_t firstIndex;    // first global node number
    int32_t lastIndex;     // last global node number
    int64_t filePosition;  // first byte behind the body's '('
};

// One Face Tree section as the cache keeps it (its children are read again).
struct FaceTreeRecord {
    int32_t sectionId;     // 59, 2059 or 3059
    int32_t firstIndex;    // first parent face
    int32_t lastIndex;     // last parent face
    int32_t parentZoneId;  // face zone of the parents
    int32_t childZoneId;   // face zone of the children
    int32_t maxChildren;   // child places per parent
    int64_t filePosition;  // first byte behind the body's '('
};

// The getters and setters of a case file's client data, a pair per field.
class CaseFileClientDataInterface : public virtual dataio::MetadataClientDataInterface {
  public:
    ~CaseFileClientDataInterface() override;
    virtual int32_t numDimensions() const = 0;
    virtual void setNumDimensions(int32_t numDimensions) = 0;
    virtual bool axisymmetric() const = 0;
    virtual void setAxisymmetric(bool axisymmetric) = 0;
    virtual bool doublePrecision() const = 0;
    virtual void setDoublePrecision(bool doublePrecision) = 0;
    virtual int32_t totalNodes() const = 0;
    virtual void setTotalNodes(int32_t totalNodes) = 0;
    virtual std::array<int32_t, 5> machineConfig() const = 0;
    virtual void setMachineConfig(const std::array<int32_t, 5>& machineConfig) = 0;
    virtual const std::vector<NodeZoneRecord>& nodeZones() const = 0;
    virtual void addNodeZones(const std::vector<NodeZoneRecord>& nodeZones) = 0;
    // Child face sections: the three vectors have one entry per section, at the same index.
    virtual const std::vector<int32_t>& childFaceSectionIds() const = 0;
    virtual void addChildFaceSectionIds(const std::vector<int32_t>& sectionIds) = 0;
    virtual const std::vector<int32_t>& childFaceZoneIds() const = 0;
    virtual void addChildFaceZoneIds(const std::vector<int32_t>& zoneIds) = 0;
    virtual const std::vector<int64_t>& childFacePositions() const = 0;
    virtual void addChildFacePositions(const std::vector<int64_t>& positions) = 0;
    virtual const std::vector<FaceTreeRecord>& faceTrees() const = 0;
    virtual void addFaceTrees(const std::vector<FaceTreeRecord>& faceTrees) = 0;
    virtual const std::vector<std::string>& speciesNames() const = 0;
    virtual void addSpeciesNames(const std::vector<std::string>& speciesNames) = 0;
};

class CaseFileClientDataVersion1 : public CaseFileClientDataInterface {
  public:
    CaseFileClientDataVersion1();
    ~CaseFileClientDataVersion1() override;
    int32_t numDimensions() const override { return numDimensions_; }
    void setNumDimensions(int32_t numDimensions) override { numDimensions_ = numDimensions; }
    bool axisymmetric() const override { return axisymmetric_; }
    void setAxisymmetric(bool axisymmetric) override { axisymmetric_ = axisymmetric; }
    bool doublePrecision() const override { return doublePrecision_; }
    void setDoublePrecision(bool doublePrecision) override { doublePrecision_ = doublePrecision; }
    int32_t totalNodes() const override { return totalNodes_; }
    void setTotalNodes(int32_t totalNodes) override { totalNodes_ = totalNodes; }
    std::array<int32_t, 5> machineConfig() const override { return machineConfig_; }
    void setMachineConfig(const std::array<int32_t, 5>& machineConfig) override {
        machineConfig_ = machineConfig;
    }
    const std::vector<NodeZoneRecord>& nodeZones() const override { return nodeZones_; }
    void addNodeZones(const std::vector<NodeZoneRecord>& nodeZones) override;
    const std::vector<int32_t>& childFaceSectionIds() const override { return childFaceSectionIds_; }
    void addChildFaceSectionIds(const std::vector<int32_t>& sectionIds) override;
    const std::vector<int32_t>& childFaceZoneIds() const override { return childFaceZoneIds_; }
    void addChildFaceZoneIds(const std::vector<int32_t>& zoneIds) override;
    const std::vector<int64_t>& childFacePositions() const override { return childFacePositions_; }
    void addChildFacePositions(const std::vector<int64_t>& positions) override;
    const std::vector<FaceTreeRecord>& faceTrees() const override { return faceTrees_; }
    void addFaceTrees(const std::vector<FaceTreeRecord>& faceTrees) override;
    const std::vector<std::string>& speciesNames() const override { return speciesNames_; }
    void addSpeciesNames(const std::vector<std::string>& speciesNames) override;

    // Throws IOException when the three child face vectors differ in length.
    void writeBlock(dataio::ClientDataBlock& block) const override;
    void readBlock(dataio::ClientDataBlock& block) override;

  private:
    int32_t numDimensions_ = 0;                  // 2 or 3
    bool axisymmetric_ = false;                  // rp-axi? was true
    bool doublePrecision_ = false;               // rp-double? was true
    int32_t totalNodes_ = 0;                     // largest node number of the Nodes sections
    std::array<int32_t, 5> machineConfig_ = {};  // MachineConfig in field order
    std::vector<NodeZoneRecord> nodeZones_;      // in table order
    std::vector<int32_t> childFaceSectionIds_;   // per child face section
    std::vector<int32_t> childFaceZoneIds_;      // child zone id per section (0 until its pairs were read)
    std::vector<int64_t> childFacePositions_;    // start of each section's header
    std::vector<FaceTreeRecord> faceTrees_;      // in table order
    std::vector<std::string> speciesNames_;      // in table order
};

}  // namespace zorutildataio
}  // namespace zorvane
