#include "metadata/MetadataConversion.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "fluentio/SectionReader.h"

namespace zorvane {
namespace zorutildataio {

namespace {

using dataio::IOException;
using dataio::MetadataDataset;
using dataio::MetadataZone;
using dataio::MetadataZoneKind;
using dataio::VariableMinMax;

const char* const kLoaderName = "Fluent Data Loader";
constexpr int32_t kLoaderVersion = 1;
const char* const kCoordinateNames[3] = {"X", "Y", "Z"};
// Name of the variable that holds a particle section's time.
const char* const kParticleTimeName = "SolutionTime";

std::array<int32_t, 5> configToArray(const MachineConfig& config) {
    return {config.byteOrder, config.floatFormat, config.intSize, config.floatSize, config.doubleSize};
}

MachineConfig arrayToConfig(const std::array<int32_t, 5>& numbers) {
    MachineConfig config;
    config.byteOrder = numbers[0];
    config.floatFormat = numbers[1];
    config.intSize = numbers[2];
    config.floatSize = numbers[3];
    config.doubleSize = numbers[4];
    return config;
}

// The text behind the last '\\', and of that the text behind the last '/'.
std::string bareNameOf(const char* path) {
    const char* bare = path;
    if (const char* slash = std::strrchr(bare, '\\'))
        bare = slash + 1;
    if (const char* slash = std::strrchr(bare, '/'))
        bare = slash + 1;
    return bare;
}

std::unique_ptr<MetadataDataset> newDataset(const std::string& name) {
    auto dataset = std::make_unique<MetadataDataset>(kClientDataVersion);
    dataset->setLoaderName(kLoaderName);
    dataset->setLoaderVersion(kLoaderVersion);
    dataset->setName(name);
    return dataset;
}

// A zone description of a host zone type, with the polytope totals where the kind has them.
std::shared_ptr<MetadataZone> addZoneOfType(MetadataDataset& dataset, int32_t hostZoneType,
                                            const std::string& name, int64_t numNodes, int64_t numElements,
                                            int64_t numFaces, int64_t numFaceNodes,
                                            int64_t numBoundaryConnections) {
    switch (hostZoneType) {
        case 1:
            return dataset.addFETriangleZone(name, numNodes, numElements);
        case 2:
            return dataset.addFEQuadZone(name, numNodes, numElements);
        case 3:
            return dataset.addFETetraZone(name, numNodes, numElements);
        case 4:
            return dataset.addFEBrickZone(name, numNodes, numElements);
        case 5:
            return dataset.addFELineZone(name, numNodes, numElements);
        case 6:
            return dataset.addFEPolygonZone(name, numNodes, numElements, numFaces, numFaceNodes,
                                            numBoundaryConnections);
        case 7:
            return dataset.addFEPolyhedronZone(name, numNodes, numElements, numFaces, numFaceNodes,
                                               numBoundaryConnections);
        default:
            return dataset.addUnsupportedZone(name, numNodes, numElements);
    }
}

// The host zone type a description kind stands for; 255 for an unsupported one.
int32_t hostZoneTypeOfKind(MetadataZoneKind kind) {
    switch (kind) {
        case MetadataZoneKind::FETriangle:
            return 1;
        case MetadataZoneKind::FEQuad:
            return 2;
        case MetadataZoneKind::FETetra:
            return 3;
        case MetadataZoneKind::FEBrick:
            return 4;
        case MetadataZoneKind::FELine:
            return 5;
        case MetadataZoneKind::FEPolygon:
            return 6;
        case MetadataZoneKind::FEPolyhedron:
            return 7;
        default:
            return kUnknownHostZoneType;
    }
}

// One variable per coordinate, bound to the zone's writers (if the scan made any).
void addCoordinateRanges(MetadataZone& zone, int32_t numDimensions,
                         dataio::DeferredMinMaxWriter* const* writers) {
    const int32_t numAxes = numDimensions == 3 ? 3 : 2;
    for (int32_t axis = 0; axis < numAxes; ++axis) {
        std::shared_ptr<VariableMinMax> variable = zone.addVariable(kCoordinateNames[axis]);
        if (writers != nullptr && writers[axis] != nullptr)
            variable->bindDeferredWriter(writers[axis]);
    }
}

// The ranges of the coordinates kept with a zone; an axis whose range is not
// known gets a minimum above its maximum, which the zone builder passes over.
void restoreCoordinateRanges(const MetadataZone& zone, double* ranges) {
    for (int32_t axis = 0; axis < 3; ++axis) {
        ranges[2 * axis] = HUGE_VAL;
        ranges[2 * axis + 1] = -HUGE_VAL;
    }
    for (const auto& variable : zone.variables()) {
        for (int32_t axis = 0; axis < 3; ++axis) {
            if (variable->name() == kCoordinateNames[axis] && variable->hasRange()) {
                ranges[2 * axis] = variable->minimum();
                ranges[2 * axis + 1] = variable->maximum();
            }
        }
    }
}

void copyName(char* target, size_t size, const std::string& name) {
    if (name.size() >= size)
        throw IOException("zone name of " + std::to_string(name.size()) + " characters in a metadata file");
    std::memcpy(target, name.c_str(), name.size() + 1);
}

int32_t checkedInt32(int64_t value, const char* what) {
    if (value < 0 || value > INT32_MAX)
        throw IOException(std::string("bad ") + what + " in a metadata file: " + std::to_string(value));
    return static_cast<int32_t>(value);
}

// The client data factory of the version the data set was written with.
std::unique_ptr<ClientDataFactoryInterface> factoryOf(const MetadataDataset& dataset) {
    if (dataset.loaderName() != kLoaderName)
        throw IOException("metadata file of another loader: " + dataset.loaderName());
    std::unique_ptr<ClientDataFactoryInterface> factory =
        clientDataFactoryForVersion(dataset.clientDataVersion());
    if (factory == nullptr) {
        throw dataio::InvalidMetadataVersionException("client data of version " +
                                                      std::to_string(dataset.clientDataVersion()));
    }
    return factory;
}

// The one file entry of a data set.
const dataio::UniqueFilename& fileEntryOf(const MetadataDataset& dataset) {
    if (dataset.uniqueFilenames().size() != 1 || dataset.uniqueFilenames()[0] == nullptr)
        throw IOException("a metadata file without exactly one file entry");
    return *dataset.uniqueFilenames()[0];
}

// Client data blocks of a file written on a machine of the other byte order
// are swapped word by word on the way in.
bool mustSwap(const MetadataDataset& dataset) {
    return !dataset.isClientDataNativeByteOrder();
}

void restoreCellZone(CellZone& zone, const MetadataZone& description, const ZoneClientDataInterface& data) {
    zone.sectionId = data.sectionId();
    zone.zoneId = data.zoneId();
    zone.firstIndex = data.firstIndex();
    zone.lastIndex = data.lastIndex();
    zone.selectionIndex = data.selectionIndex();
    copyName(zone.name, sizeof zone.name, description.name());
    zone.zoneType = data.zoneType();
    zone.hostZoneType = hostZoneTypeOfKind(description.kind());
    zone.elementType = data.elementType();
    zone.numNodes = checkedInt32(description.numNodes(), "node count");
    zone.numFaces = checkedInt32(description.numFaces(), "face count");
    zone.numFaceNodes = data.polyhedralSize();
    zone.numBoundaryConnections = checkedInt32(description.numBoundaryConnections(), "connection count");
    zone.filePosition = data.filePosition();
    restoreCoordinateRanges(description, zone.coordinateRanges);
    if (description.numElements() != static_cast<int64_t>(zone.lastIndex) - zone.firstIndex + 1)
        throw IOException("cell zone " + std::to_string(zone.zoneId) + " of a wrong size in a metadata file");
}

void restoreFaceZone(FaceZone& zone, const MetadataZone& description, const ZoneClientDataInterface& data) {
    zone.sectionId = data.sectionId();
    zone.zoneId = data.zoneId();
    zone.firstIndex = data.firstIndex();
    zone.lastIndex = data.lastIndex();
    zone.selectionIndex = data.selectionIndex();
    copyName(zone.name, sizeof zone.name, description.name());
    zone.boundaryType = data.zoneType();
    zone.faceType = data.elementType();
    zone.parentCellZoneId = data.parentZoneId();
    zone.numNodes = data.nodeCount();
    zone.hostZoneType = hostZoneTypeOfKind(description.kind());
    zone.childFaceIndex = -1;
    zone.filePosition = data.filePosition();
    zone.numPolyFaceNodes = data.polyhedralSize();
    zone.numPolyFaces = checkedInt32(description.numFaces(), "face count");
    restoreCoordinateRanges(description, zone.coordinateRanges);
    if (description.numElements() != static_cast<int64_t>(zone.lastIndex) - zone.firstIndex + 1)
        throw IOException("face zone " + std::to_string(zone.zoneId) + " of a wrong size in a metadata file");
}

// Allocates a zero-filled table of count records for a restore; the count
// goes into *numRecords only once the table is there.
template <typename Record>
void allocTable(Record** table, int32_t* numRecords, size_t count) {
    std::free(*table);
    *table = nullptr;
    *numRecords = 0;
    if (count == 0)
        return;
    *table = static_cast<Record*>(std::calloc(count, sizeof(Record)));
    if (*table == nullptr)
        throw std::bad_alloc();
    *numRecords = static_cast<int32_t>(count);
}

// Runs one of the case file's own restore allocators, which take the size
// from the count: on failure the count goes back to 0 with the table.
template <typename Allocator>
void allocCaseTable(int32_t* count, int32_t wanted, Allocator allocate) {
    *count = wanted;
    try {
        allocate();
    } catch (...) {
        *count = 0;
        throw;
    }
}

}  // namespace

// ---- Case file, outward ----------------------------------------------------------------------

void convertNodeZones(const CaseFile& caseFile, CaseFileClientDataInterface& clientData) {
    std::vector<NodeZoneRecord> records;
    records.reserve(static_cast<size_t>(caseFile.numNodeZones));
    for (int32_t i = 0; i < caseFile.numNodeZones; ++i) {
        const NodeZone& zone = caseFile.nodeZones[i];
        records.push_back(
            NodeZoneRecord{zone.sectionId, zone.zoneId, zone.firstIndex, zone.lastIndex, zone.filePosition});
    }
    clientData.addNodeZones(records);
}

void convertFaceTrees(const CaseFile& caseFile, CaseFileClientDataInterface& clientData) {
    std::vector<FaceTreeRecord> records;
    records.reserve(static_cast<size_t>(caseFile.numFaceTrees));
    for (int32_t i = 0; i < caseFile.numFaceTrees; ++i) {
        const FaceTree& tree = caseFile.faceTrees[i];
        records.push_back(FaceTreeRecord{tree.sectionId, tree.firstIndex, tree.lastIndex, tree.parentZoneId,
                                         tree.childZoneId, tree.maxChildren, tree.filePosition});
    }
    clientData.addFaceTrees(records);
}

std::unique_ptr<MetadataDataset> datasetFromCaseFile(CaseFile& caseFile,
                                                     const ClientDataFactoryInterface& factory) {
    std::unique_ptr<MetadataDataset> dataset = newDataset(caseFile.header);
    std::unique_ptr<CaseFileClientDataInterface> clientData = factory.createCaseFileClientData();
    clientData->setNumDimensions(caseFile.numDimensions);
    clientData->setAxisymmetric(caseFile.axisymmetric);
    clientData->setDoublePrecision(caseFile.doublePrecision);
    clientData->setTotalNodes(caseFile.totalNodes);
    clientData->setMachineConfig(configToArray(caseFile.machineConfig));

    std::vector<std::string> species;
    for (int32_t i = 0; i < caseFile.numSpeciesNames; ++i)
        species.push_back(caseFile.speciesNames[i] != nullptr ? caseFile.speciesNames[i] : "");
    clientData->addSpeciesNames(species);
    std::vector<int32_t> sectionIds, zoneIds;
    std::vector<int64_t> positions;
    for (int32_t i = 0; i < caseFile.numChildFaces; ++i) {
        sectionIds.push_back(caseFile.childFaces[i].sectionId);
        zoneIds.push_back(caseFile.childFaces[i].childZoneId);
        positions.push_back(caseFile.childFaces[i].filePosition);
    }
    clientData->addChildFaceSectionIds(sectionIds);
    clientData->addChildFaceZoneIds(zoneIds);
    clientData->addChildFacePositions(positions);
    convertNodeZones(caseFile, *clientData);
    convertFaceTrees(caseFile, *clientData);

    auto file = std::make_shared<dataio::UniqueFilename>(
        bareNameOf(caseFile.fileName), caseFile.machineConfig.byteOrder == hostByteOrder, kClientDataVersion);
    file->submitClientData(*clientData);
    dataset->addUniqueFilename(file);
    return dataset;
}

void convertCellZone(CellZone& zone, int32_t numDimensions, MetadataDataset& dataset,
                     const ClientDataFactoryInterface& factory) {
    const int64_t numCells = static_cast<int64_t>(zone.lastIndex) - zone.firstIndex + 1;
    std::shared_ptr<MetadataZone> description =
        addZoneOfType(dataset, zone.hostZoneType, zone.name, zone.numNodes, numCells, zone.numFaces,
                      zone.numFaceNodes, zone.numBoundaryConnections);
    std::unique_ptr<ZoneClientDataInterface> clientData = factory.createZoneClientData();
    clientData->setSectionId(zone.sectionId);
    clientData->setZoneId(zone.zoneId);
    clientData->setFilePosition(zone.filePosition);
    clientData->setZoneType(zone.zoneType);
    clientData->setElementType(zone.elementType);
    clientData->setSelectionIndex(zone.selectionIndex);
    clientData->setLastIndex(zone.lastIndex);
    clientData->setFirstIndex(zone.firstIndex);
    clientData->setPolyhedralSize(zone.numFaceNodes);
    description->submitClientData(*clientData);
    addCoordinateRanges(*description, numDimensions, zone.nodeMinMaxWriters);
}

void convertFaceZone(FaceZone& zone, int32_t numDimensions, MetadataDataset& dataset,
                     const ClientDataFactoryInterface& factory) {
    const int64_t numFaces = static_cast<int64_t>(zone.lastIndex) - zone.firstIndex + 1;
    std::shared_ptr<MetadataZone> description =
        addZoneOfType(dataset, zone.hostZoneType, zone.name, zone.numNodes, numFaces, zone.numPolyFaces,
                      zone.hostZoneType == 6 ? zone.numPolyFaceNodes : 0, 0);
    std::unique_ptr<ZoneClientDataInterface> clientData = factory.createZoneClientData();
    clientData->setNodeCount(zone.numNodes);
    clientData->setSectionId(zone.sectionId);
    clientData->setZoneId(zone.zoneId);
    clientData->setFilePosition(zone.filePosition);
    clientData->setZoneType(zone.boundaryType);
    clientData->setElementType(zone.faceType);
    clientData->setSelectionIndex(zone.selectionIndex);
    clientData->setLastIndex(zone.lastIndex);
    clientData->setFirstIndex(zone.firstIndex);
    clientData->setPolyhedralSize(zone.numPolyFaceNodes);
    clientData->setParentZoneId(zone.parentCellZoneId);
    description->submitClientData(*clientData);
    addCoordinateRanges(*description, numDimensions, zone.nodeMinMaxWriters);
}

// ---- Case file, inward -----------------------------------------------------------------------

void restoreCaseFile(const MetadataDataset& dataset, CaseFile& caseFile) {
    std::unique_ptr<ClientDataFactoryInterface> factory = factoryOf(dataset);
    const bool swap = mustSwap(dataset);
    std::unique_ptr<CaseFileClientDataInterface> clientData = factory->createCaseFileClientData();
    fileEntryOf(dataset).fetchClientData(*clientData, swap);

    if (dataset.name().size() >= sizeof caseFile.header)
        throw IOException("case file header too long in a metadata file");
    std::memcpy(caseFile.header, dataset.name().c_str(), dataset.name().size() + 1);
    caseFile.numDimensions = clientData->numDimensions();
    caseFile.axisymmetric = clientData->axisymmetric();
    caseFile.doublePrecision = clientData->doublePrecision();
    caseFile.totalNodes = clientData->totalNodes();
    caseFile.machineConfig = arrayToConfig(clientData->machineConfig());
    if (caseFile.numDimensions != 2 && caseFile.numDimensions != 3)
        throw IOException("case file of " + std::to_string(caseFile.numDimensions) + " dimensions");

    const std::vector<std::string>& species = clientData->speciesNames();
    allocCaseTable(&caseFile.numSpeciesNames, static_cast<int32_t>(species.size()),
                   [&caseFile] { allocSpeciesNames(&caseFile); });
    for (size_t i = 0; i < species.size(); ++i) {
        caseFile.speciesNames[i] = strdup(species[i].c_str());
        if (caseFile.speciesNames[i] == nullptr)
            throw std::bad_alloc();
    }

    const std::vector<int64_t>& positions = clientData->childFacePositions();
    allocCaseTable(&caseFile.numChildFaces, static_cast<int32_t>(positions.size()),
                   [&caseFile] { allocCaseFileChildFaces(&caseFile); });
    for (size_t i = 0; i < positions.size(); ++i) {
        caseFile.childFaces[i].sectionId = clientData->childFaceSectionIds()[i];
        caseFile.childFaces[i].childZoneId = clientData->childFaceZoneIds()[i];
        caseFile.childFaces[i].filePosition = positions[i];
    }

    const std::vector<NodeZoneRecord>& nodeZones = clientData->nodeZones();
    allocTable(&caseFile.nodeZones, &caseFile.numNodeZones, nodeZones.size());
    for (size_t i = 0; i < nodeZones.size(); ++i) {
        NodeZone& zone = caseFile.nodeZones[i];
        zone.sectionId = nodeZones[i].sectionId;
        zone.zoneId = nodeZones[i].zoneId;
        zone.firstIndex = nodeZones[i].firstIndex;
        zone.lastIndex = nodeZones[i].lastIndex;
        zone.filePosition = nodeZones[i].filePosition;
    }

    // Children of the trees are read again from the file when they are needed.
    const std::vector<FaceTreeRecord>& trees = clientData->faceTrees();
    allocTable(&caseFile.faceTrees, &caseFile.numFaceTrees, trees.size());
    for (size_t i = 0; i < trees.size(); ++i) {
        FaceTree& tree = caseFile.faceTrees[i];
        tree.sectionId = trees[i].sectionId;
        tree.firstIndex = trees[i].firstIndex;
        tree.lastIndex = trees[i].lastIndex;
        tree.parentZoneId = trees[i].parentZoneId;
        tree.childZoneId = trees[i].childZoneId;
        tree.maxChildren = trees[i].maxChildren;
        tree.filePosition = trees[i].filePosition;
    }

    // Zones: the section family of each tells a cell zone from a face zone.
    std::vector<std::unique_ptr<ZoneClientDataInterface>> zoneData;
    int32_t numCellZones = 0, numFaceZones = 0;
    for (const auto& description : dataset.zones()) {
        zoneData.push_back(factory->createZoneClientData());
        description->fetchClientData(*zoneData.back(), swap);
        const int32_t family = zoneData.back()->sectionId() % 1000;
        if (family == 12) {
            numCellZones += 1;
        } else if (family == 13) {
            numFaceZones += 1;
        } else {
            throw IOException("zone of section " + std::to_string(zoneData.back()->sectionId()) +
                              " in a metadata file");
        }
    }
    allocCaseTable(&caseFile.numCellZones, numCellZones, [&caseFile] { allocCellZones(&caseFile); });
    allocCaseTable(&caseFile.numFaceZones, numFaceZones, [&caseFile] { allocFaceZones(&caseFile); });
    int32_t cellIndex = 0, faceIndex = 0;
    for (size_t z = 0; z < zoneData.size(); ++z) {
        if (zoneData[z]->sectionId() % 1000 == 12) {
            restoreCellZone(caseFile.cellZones[cellIndex++], *dataset.zones()[z], *zoneData[z]);
        } else {
            restoreFaceZone(caseFile.faceZones[faceIndex++], *dataset.zones()[z], *zoneData[z]);
        }
    }
}

// ---- Data file, outward ----------------------------------------------------------------------

void convertDataFieldsAndFluentParticles(DataFile& dataFile, MetadataDataset& dataset,
                                         const ClientDataFactoryInterface& factory) {
    // A field's variables: one per component, the first with the field's client data.
    auto addField = [&factory](MetadataZone& zone, const DataField& field) {
        std::unique_ptr<DataFileVarClientDataInterface> clientData = factory.createDataFileVarClientData();
        clientData->setSectionId(field.sectionId);
        clientData->setZoneId(field.zoneId);
        clientData->setFilePosition(field.filePosition);
        clientData->setFieldId(field.fieldId);
        clientData->setCount(field.count);
        clientData->setDimension(field.dimension);
        clientData->setPhase(field.phase);
        const int32_t components = field.dimension > 0 ? field.dimension : 1;
        for (int32_t c = 0; c < components; ++c) {
            std::string name = "Field " + std::to_string(field.fieldId);
            if (c > 0)
                name += " component " + std::to_string(c + 1);
            std::shared_ptr<VariableMinMax> variable = zone.addVariable(name);
            if (c == 0)
                variable->submitClientData(*clientData);
            if (field.minMaxWriters != nullptr && field.minMaxWriters[c] != nullptr)
                variable->bindDeferredWriter(field.minMaxWriters[c]);
        }
    };

    std::shared_ptr<MetadataZone> run;
    int32_t runZoneId = 0;
    for (int32_t i = 0; i < dataFile.numDataFields; ++i) {
        const DataField& field = dataFile.dataFields[i];
        if (run == nullptr || field.zoneId != runZoneId || field.zoneId <= 0) {
            if (field.zoneId <= 0)
                throw IOException("data field without a zone");
            runZoneId = field.zoneId;
            run = dataset.addUnsupportedZone("Zone " + std::to_string(runZoneId), 0, field.count);
            std::unique_ptr<DataFileZoneClientDataInterface> zoneData =
                factory.createDataFileZoneClientData();
            zoneData->setZoneId(runZoneId);
            run->submitClientData(*zoneData);
        }
        addField(*run, field);
    }

    for (int32_t p = 0; p < dataFile.numParticles; ++p) {
        const FluentParticle& particle = dataFile.particles[p];
        std::shared_ptr<MetadataZone> zone =
            dataset.addUnsupportedZone(particle.name, particle.numDimensions, particle.particleCount);
        std::unique_ptr<DataFileZoneClientDataInterface> zoneData = factory.createDataFileZoneClientData();
        zoneData->setZoneId(0);
        zone->submitClientData(*zoneData);
        zone->addVariable(kParticleTimeName)->setRange(particle.solutionTime, particle.solutionTime);
        for (int32_t f = 0; f < particle.numFields; ++f)
            addField(*zone, particle.fields[f]);
    }
}

std::unique_ptr<MetadataDataset> datasetFromDataFile(DataFile& dataFile,
                                                     const ClientDataFactoryInterface& factory) {
    const std::string bareName = bareNameOf(dataFile.fileName);
    std::unique_ptr<MetadataDataset> dataset = newDataset(bareName);
    std::unique_ptr<DataFileClientDataInterface> clientData = factory.createDataFileClientData();
    clientData->setMachineConfig(configToArray(dataFile.machineConfig));
    clientData->setFlowTime(dataFile.flowTime);
    clientData->setDeltaTimeSampled(dataFile.deltaTimeSampled);
    clientData->setNumDataFields(dataFile.numDataFields);
    clientData->setNumParticles(dataFile.numParticles);
    clientData->setAdditionalQuantities(dataFile.additionalQuantities->names());
    auto file = std::make_shared<dataio::UniqueFilename>(
        bareName, dataFile.machineConfig.byteOrder == hostByteOrder, kClientDataVersion);
    file->submitClientData(*clientData);
    dataset->addUniqueFilename(file);
    convertDataFieldsAndFluentParticles(dataFile, *dataset, factory);
    return dataset;
}

// ---- Data file, inward -----------------------------------------------------------------------

void populateDataFields(const MetadataDataset& dataset, DataFile& dataFile,
                        const ClientDataFactoryInterface& factory, int32_t numDataFields,
                        int32_t numParticles) {
    const bool swap = mustSwap(dataset);
    DataFileFreeContents(&dataFile);
    int32_t numFieldsTable = 0, numParticlesTable = 0;
    allocTable(&dataFile.dataFields, &numFieldsTable, static_cast<size_t>(numDataFields));
    allocTable(&dataFile.particles, &numParticlesTable, static_cast<size_t>(numParticles));

    // Restores the field whose first variable is variables[*next], with the
    // ranges of its components, and moves *next past it.
    auto restoreField = [&](const std::vector<std::shared_ptr<VariableMinMax>>& variables, size_t* next,
                            DataField* field) {
        std::unique_ptr<DataFileVarClientDataInterface> data = factory.createDataFileVarClientData();
        const VariableMinMax& first = *variables[*next];
        if (!first.hasClientData())
            throw IOException("component variable without its field in a metadata file");
        first.fetchClientData(*data, swap);
        if (data->dimension() < 0 || data->count() < 0)
            throw IOException("field of a negative size in a metadata file");
        if (!setDataFieldAttributes(field, data->sectionId(), data->zoneId(), data->fieldId(), data->count(),
                                    data->dimension(), data->phase(), nullptr))
            throw std::bad_alloc();
        field->filePosition = data->filePosition();
        const int32_t components = data->dimension() > 0 ? data->dimension() : 1;
        if (*next + static_cast<size_t>(components) > variables.size())
            throw IOException("field without all its components in a metadata file");
        for (int32_t c = 0; c < components; ++c) {
            const VariableMinMax& variable = *variables[*next + static_cast<size_t>(c)];
            if (c > 0 && variable.hasClientData())
                throw IOException("field with too few components in a metadata file");
            // A range not known stays with its minimum above its maximum.
            field->minima[c] = variable.hasRange() ? variable.minimum() : HUGE_VAL;
            field->maxima[c] = variable.hasRange() ? variable.maximum() : -HUGE_VAL;
        }
        *next += static_cast<size_t>(components);
    };

    for (const auto& description : dataset.zones()) {
        std::unique_ptr<DataFileZoneClientDataInterface> zoneData = factory.createDataFileZoneClientData();
        description->fetchClientData(*zoneData, swap);
        const auto& variables = description->variables();
        if (zoneData->zoneId() > 0) {
            for (size_t next = 0; next < variables.size();) {
                if (dataFile.numDataFields >= numFieldsTable)
                    throw IOException("more fields than the data file had in a metadata file");
                DataField* field = &dataFile.dataFields[dataFile.numDataFields];
                dataFile.numDataFields += 1;
                restoreField(variables, &next, field);
                if (field->zoneId != zoneData->zoneId())
                    throw IOException("field of zone " + std::to_string(field->zoneId) + " under zone " +
                                      std::to_string(zoneData->zoneId()) + " in a metadata file");
            }
            continue;
        }
        if (dataFile.numParticles >= numParticlesTable)
            throw IOException("more particle sections than the data file had in a metadata file");
        FluentParticle* particle = &dataFile.particles[dataFile.numParticles];
        dataFile.numParticles += 1;
        copyName(particle->name, sizeof particle->name, description->name());
        particle->particleCount = checkedInt32(description->numElements(), "particle count");
        particle->numDimensions = checkedInt32(description->numNodes(), "particle dimension");
        if (variables.empty() || variables[0]->name() != kParticleTimeName || !variables[0]->hasRange())
            throw IOException("particle section without its time in a metadata file");
        particle->solutionTime = variables[0]->minimum();
        const size_t numFields = variables.size() - 1;
        allocTable(&particle->fields, &particle->numFields, numFields);
        particle->numFields = 0;
        for (size_t next = 1; next < variables.size();) {
            DataField* field = &particle->fields[particle->numFields];
            particle->numFields += 1;
            restoreField(variables, &next, field);
        }
    }
    if (dataFile.numDataFields != numDataFields || dataFile.numParticles != numParticles)
        throw IOException("a metadata file whose tables do not match their counts");
}

void restoreDataFile(const MetadataDataset& dataset, DataFile& dataFile) {
    std::unique_ptr<ClientDataFactoryInterface> factory = factoryOf(dataset);
    std::unique_ptr<DataFileClientDataInterface> clientData = factory->createDataFileClientData();
    fileEntryOf(dataset).fetchClientData(*clientData, mustSwap(dataset));
    dataFile.machineConfig = arrayToConfig(clientData->machineConfig());
    dataFile.flowTime = clientData->flowTime();
    dataFile.deltaTimeSampled = clientData->deltaTimeSampled();
    dataFile.additionalQuantities->setNames(clientData->additionalQuantities());
    populateDataFields(dataset, dataFile, *factory, clientData->numDataFields(), clientData->numParticles());
}

}  // namespace zorutildataio
}  // namespace zorvane
