// Client data of a data file's metadata: the file's entry, its zone
// descriptions and the variables on them.
//
// Block layouts, one 64-bit word per number:
//
//   data file   machineConfig (five words), flowTime and deltaTimeSampled (the
//               bits of the doubles), numDataFields, numParticles, then the
//               additional quantity names as ClientDataBlock::putStrings stores them
//   zone        one integer (see DataFileZoneClientDataVersion1)
//   variable    sectionId, zoneId, filePosition, fieldId, count, dimension, phase
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "host/Metadata.h"

namespace zorvane {
namespace zorutildataio {

class DataFileClientDataInterface : public virtual dataio::MetadataClientDataInterface {
  public:
    ~DataFileClientDataInterface() override;
    virtual std::array<int32_t, 5> machineConfig() const = 0;
    virtual void setMachineConfig(const std::array<int32_t, 5>& machineConfig) = 0;
    virtual double flowTime() const = 0;
    virtual void setFlowTime(double flowTime) = 0;
    virtual double deltaTimeSampled() const = 0;
    virtual void setDeltaTimeSampled(double deltaTimeSampled) = 0;
    virtual int32_t numDataFields() const = 0;
    virtual void setNumDataFields(int32_t numDataFields) = 0;
    virtual int32_t numParticles() const = 0;
    virtual void setNumParticles(int32_t numParticles) = 0;
    virtual const std::vector<std::string>& additionalQuantities() const = 0;
    virtual void setAdditionalQuantities(const std::vector<std::string>& names) = 0;
};

class DataFileClientDataVersion1 : public DataFileClientDataInterface {
  public:
    DataFileClientDataVersion1();
    ~DataFileClientDataVersion1() override;
    std::array<int32_t, 5> machineConfig() const override { return machineConfig_; }
    void setMachineConfig(const std::array<int32_t, 5>& machineConfig) override {
        machineConfig_ = machineConfig;
    }
    double flowTime() const override { return flowTime_; }
    void setFlowTime(double flowTime) override { flowTime_ = flowTime; }
    double deltaTimeSampled() const override { return deltaTimeSampled_; }
    void setDeltaTimeSampled(double deltaTimeSampled) override { deltaTimeSampled_ = deltaTimeSampled; }
    int32_t numDataFields() const override { return numDataFields_; }
    void setNumDataFields(int32_t numDataFields) override { numDataFields_ = numDataFields; }
    int32_t numParticles() const override { return numParticles_; }
    void setNumParticles(int32_t numParticles) override { numParticles_ = numParticles; }
    const std::vector<std::string>& additionalQuantities() const override { return additionalQuantities_; }
    void setAdditionalQuantities(const std::vector<std::string>& names) override {
        additionalQuantities_ = names;
    }

    void writeBlock(dataio::ClientDataBlock& block) const override;
    void readBlock(dataio::ClientDataBlock& block) override;

  private:
    std::array<int32_t, 5> machineConfig_ = {};      // MachineConfig in field order
    double flowTime_ = 0.0;                          // seconds
    double deltaTimeSampled_ = 0.0;                  // seconds
    int32_t numDataFields_ = 0;                      // entries of the field table
    int32_t numParticles_ = 0;                       // entries of the particle table
    std::vector<std::string> additionalQuantities_;  // the user's cell-function names, in file order
};

// What a zone description of a data file's metadata stands for. The data
// file's descriptions are not host zones: they group the variables so that a
// restore gives back the field table as the scan left it (sorted):
//
//   - a run of consecutive fields of one Fluent zone is one description; its
//     integer is that zone id (above 0). The run's fields follow in order, one
//     variable per component: the variable of component 0 carries the field's
//     DataFileVarClientDataVersion1, the other components only their ranges.
//   - a particle section is one description whose integer is 0, named after the
//     section, with the dimensions as node count and the particle count as
//     element count. Its first variable, "SolutionTime", holds the section's time
//     as a range of one value; each of its fields follows as one variable with
//     client data.
class DataFileZoneClientDataInterface : public virtual dataio::MetadataClientDataInterface {
  public:
    ~DataFileZoneClientDataInterface() override;
    virtual int32_t zoneId() const = 0;
    virtual void setZoneId(int32_t zoneId) = 0;
};

class DataFileZoneClientDataVersion1 : public DataFileZoneClientDataInterface {
  public:
    DataFileZoneClientDataVersion1();
    ~DataFileZoneClientDataVersion1() override;
    int32_t zoneId() const override { return zoneId_; }
    void setZoneId(int32_t zoneId) override { zoneId_ = zoneId; }
    void writeBlock(dataio::ClientDataBlock& block) const override;
    void readBlock(dataio::ClientDataBlock& block) override;

  private:
    int32_t zoneId_ = 0;  // Fluent zone id of the run of fields; 0 for a particle section
};

class DataFileVarClientDataInterface : public virtual dataio::MetadataClientDataInterface {
  public:
    ~DataFileVarClientDataInterface() override;
    virtual int32_t sectionId() const = 0;
    virtual void setSectionId(int32_t sectionId) = 0;
    virtual int32_t zoneId() const = 0;
    virtual void setZoneId(int32_t zoneId) = 0;
    virtual int64_t filePosition() const = 0;
    virtual void setFilePosition(int64_t filePosition) = 0;
    virtual int32_t fieldId() const = 0;
    virtual void setFieldId(int32_t fieldId) = 0;
    virtual int32_t count() const = 0;
    virtual void setCount(int32_t count) = 0;
    virtual int32_t dimension() const = 0;
    virtual void setDimension(int32_t dimension) = 0;
    virtual int32_t phase() const = 0;
    virtual void setPhase(int32_t phase) = 0;
};

class DataFileVarClientDataVersion1 : public DataFileVarClientDataInterface {
  public:
    DataFileVarClientDataVersion1();
    ~DataFileVarClientDataVersion1() override;
    int32_t sectionId() const override { return sectionId_; }
    void setSectionId(int32_t sectionId) override { sectionId_ = sectionId; }
    int32_t zoneId() const override { return zoneId_; }
    void setZoneId(int32_t zoneId) override { zoneId_ = zoneId; }
    int64_t filePosition() const override { return filePosition_; }
    void setFilePosition(int64_t filePosition) override { filePosition_ = filePosition; }
    int32_t fieldId() const override { return fieldId_; }
    void setFieldId(int32_t fieldId) override { fieldId_ = fieldId; }
    int32_t count() const override { return count_; }
    void setCount(int32_t count) override { count_ = count; }
    int32_t dimension() const override { return dimension_; }
    void setDimension(int32_t dimension) override { dimension_ = dimension; }
    int32_t phase() const override { return phase_; }
    void setPhase(int32_t phase) override { phase_ = phase; }
    void writeBlock(dataio::ClientDataBlock& block) const override;
    void readBlock(dataio::ClientDataBlock& block) override;

  private:
    int32_t sectionId_ = 0;     // 300/314/303 family of the section
    int32_t zoneId_ = 0;        // Fluent zone id; 0 for particle fields
    int64_t filePosition_ = 0;  // first byte of the numbers
    int32_t fieldId_ = 0;       // Fluent field id
    int32_t count_ = 0;         // elements
    int32_t dimension_ = 0;     // numbers per element
    int32_t phase_ = 0;         // phase of the header
};

}  // namespace zorutildataio
}  // namespace zorvane
