// The factory of client data objects of one version. A metadata file records
// the version of its client data; a restore asks for the factory of that
// version, and a version this loader does not know has none.
#pragma once

#include <cstdint>
#include <memory>

#include "metadata/CaseFileClientData.h"
#include "metadata/DataFileClientData.h"
#include "metadata/ZoneClientData.h"

namespace zorvane {
namespace zorutildataio {

// The client data version this loader writes.
constexpr int32_t kClientDataVersion = 1;

class ClientDataFactoryInterface {
  public:
    virtual std::unique_ptr<CaseFileClientDataInterface> createCaseFileClientData() const = 0;
    virtual std::unique_ptr<DataFileClientDataInterface> createDataFileClientData() const = 0;
    virtual std::unique_ptr<ZoneClientDataInterface> createZoneClientData() const = 0;
    virtual std::unique_ptr<DataFileZoneClientDataInterface> createDataFileZoneClientData() const = 0;
    virtual std::unique_ptr<DataFileVarClientDataInterface> createDataFileVarClientData() const = 0;
    virtual ~ClientDataFactoryInterface();
};

class ClientDataVersion1Factory : public ClientDataFactoryInterface {
  public:
    std::unique_ptr<CaseFileClientDataInterface> createCaseFileClientData() const override;
    std::unique_ptr<DataFileClientDataInterface> createDataFileClientData() const override;
    std::unique_ptr<ZoneClientDataInterface> createZoneClientData() const override;
    std::unique_ptr<DataFileZoneClientDataInterface> createDataFileZoneClientData() const override;
    std::unique_ptr<DataFileVarClientDataInterface> createDataFileVarClientData() const override;
    ~ClientDataVersion1Factory() override;
};

// The factory of a client data version; null for a version this loader does not know.
std::unique_ptr<ClientDataFactoryInterface> clientDataFactoryForVersion(int32_t version);

}  // namespace zorutildataio
}  // namespace zorvane
