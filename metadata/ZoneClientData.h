// Client data of a zone description in a case file's metadata: the fields of
// a CellZone or FaceZone that the description itself (kind, name, sizes)
// does not carry.
//
// Block layout, one 64-bit word per number, in this order:
//
//   nodeCount       numNodes of a FaceZone; 0 for a CellZone (its description has it)
//   sectionId       12/2012/3012 for a cell zone, 13/2013/3013 for a face zone
//   zoneId, filePosition
//   zoneType        zoneType of a CellZone, boundaryType of a FaceZone
//   elementType     elementType of a CellZone, faceType of a FaceZone
//   selectionIndex, lastIndex, firstIndex
//   polyhedralSize  numFaceNodes of a CellZone, numPolyFaceNodes of a FaceZone
//   parentZoneId    parentCellZoneId of a FaceZone; 0 for a CellZone
//
// The parent zone id is kept because a restored boundary finds its parent by
// it: the faces that the scan looked at to choose the parent are not read on
// a load from the cache.
#pragma once

#include <cstdint>

#include "host/Metadata.h"

namespace zorvane {
namespace zorutildataio {

class ZoneClientDataInterface : public virtual dataio::MetadataClientDataInterface {
  public:
    ~ZoneClientDataInterface() override;
    virtual int32_t nodeCount() const = 0;
    virtual void setNodeCount(int32_t nodeCount) = 0;
    virtual int32_t sectionId() const = 0;
    virtual void setSectionId(int32_t sectionId) = 0;
    virtual int32_t zoneId() const = 0;
    virtual void setZoneId(int32_t zoneId) = 0;
    virtual int64_t filePosition() const = 0;
    virtual void setFilePosition(int64_t filePosition) = 0;
    virtual int32_t zoneType() const = 0;
    virtual void setZoneType(int32_t zoneType) = 0;
    virtual int32_t elementType() const = 0;
    virtual void setElementType(int32_t elementType) = 0;
    virtual int32_t selectionIndex() const = 0;
    virtual void setSelectionIndex(int32_t selectionIndex) = 0;
    virtual int32_t lastIndex() const = 0;
    virtual void setLastIndex(int32_t lastIndex) = 0;
    virtual int32_t firstIndex() const = 0;
    virtual void setFirstIndex(int32_t firstIndex) = 0;
    virtual int32_t polyhedralSize() const = 0;
    virtual void setPolyhedralSize(int32_t polyhedralSize) = 0;
    virtual int32_t parentZoneId() const = 0;
    virtual void setParentZoneId(int32_t parentZoneId) = 0;
};

class ZoneClientDataVersion1 : public ZoneClientDataInterface {
  public:
    ZoneClientDataVersion1();
    ~ZoneClientDataVersion1() override;
    int32_t nodeCount() const override { return nodeCount_; }
    void setNodeCount(int32_t nodeCount) override { nodeCount_ = nodeCount; }
    int32_t sectionId() const override { return sectionId_; }
    void setSectionId(int32_t sectionId) override { sectionId_ = sectionId; }
    int32_t zoneId() const override { return zoneId_; }
    void setZoneId(int32_t zoneId) override { zoneId_ = zoneId; }
    int64_t filePosition() const override { return filePosition_; }
    void setFilePosition(int64_t filePosition) override { filePosition_ = filePosition; }
    int32_t zoneType() const override { return zoneType_; }
    void setZoneType(int32_t zoneType) override { zoneType_ = zoneType; }
    int32_t elementType() const override { return elementType_; }
    void setElementType(int32_t elementType) override { elementType_ = elementType; }
    int32_t selectionIndex() const override { return selectionIndex_; }
    void setSelectionIndex(int32_t selectionIndex) override { selectionIndex_ = selectionIndex; }
    int32_t lastIndex() const override { return lastIndex_; }
    void setLastIndex(int32_t lastIndex) override { lastIndex_ = lastIndex; }
    int32_t firstIndex() const override { return firstIndex_; }
    void setFirstIndex(int32_t firstIndex) override { firstIndex_ = firstIndex; }
    int32_t polyhedralSize() const override { return polyhedralSize_; }
    void setPolyhedralSize(int32_t polyhedralSize) override { polyhedralSize_ = polyhedralSize; }
    int32_t parentZoneId() const override { return parentZoneId_; }
    void setParentZoneId(int32_t parentZoneId) override { parentZoneId_ = parentZoneId; }

    void writeBlock(dataio::ClientDataBlock& block) const override;
    void readBlock(dataio::ClientDataBlock& block) override;

  private:
    int32_t nodeCount_ = 0;       // nodes of a face zone; 0 for a cell zone
    int32_t sectionId_ = 0;       // section family of the zone: tells cell zones from face zones
    int32_t zoneId_ = 0;          // Fluent zone id
    int64_t filePosition_ = 0;    // body of the zone's section
    int32_t zoneType_ = 0;        // zoneType or boundaryType
    int32_t elementType_ = 0;     // elementType or faceType
    int32_t selectionIndex_ = 0;  // place in the selection lists; 0 when none was given
    int32_t lastIndex_ = 0;       // last global cell or face number
    int32_t firstIndex_ = 0;      // first global cell or face number
    int32_t polyhedralSize_ = 0;  // face nodes of a polytope zone; 0 otherwise
    int32_t parentZoneId_ = 0;    // zone id of a boundary's parent; 0 = none or a cell zone
};

}  // namespace zorutildataio
}  // namespace zorvane
