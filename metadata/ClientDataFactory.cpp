#include "metadata/ClientDataFactory.h"

namespace zorvane {
namespace zorutildataio {

ClientDataFactoryInterface::~ClientDataFactoryInterface() = default;
ClientDataVersion1Factory::~ClientDataVersion1Factory() = default;

std::unique_ptr<CaseFileClientDataInterface> ClientDataVersion1Factory::createCaseFileClientData() const {
    return std::make_unique<CaseFileClientDataVersion1>();
}

std::unique_ptr<DataFileClientDataInterface> ClientDataVersion1Factory::createDataFileClientData() const {
    return std::make_unique<DataFileClientDataVersion1>();
}

std::unique_ptr<ZoneClientDataInterface> ClientDataVersion1Factory::createZoneClientData() const {
    return std::make_unique<ZoneClientDataVersion1>();
}

std::unique_ptr<DataFileZoneClientDataInterface> ClientDataVersion1Factory::createDataFileZoneClientData()
    const {
    return std::make_unique<DataFileZoneClientDataVersion1>();
}

std::unique_ptr<DataFileVarClientDataInterface> ClientDataVersion1Factory::createDataFileVarClientData()
    const {
    return std::make_unique<DataFileVarClientDataVersion1>();
}

std::unique_ptr<ClientDataFactoryInterface> clientDataFactoryForVersion(int32_t version) {
    if (version == 1)
        return std::make_unique<ClientDataVersion1Factory>();
    return nullptr;
}

}  // namespace zorutildataio
}  // namespace zorvane
