// Conversion between the scan records (CaseFile, DataFile) and the host's
// metadata data set, in both directions.
//
// A case file's metadata holds one file entry (the bare name, with the
// CaseFileClientDataVersion1 of the record) and one zone description per
// cell zone but those of zone type 32, then per face zone, each in table
// order, with the zone's
// ZoneClientDataVersion1 and the ranges of its coordinates "X", "Y" (and
// "Z"). A data file's metadata holds its entry (DataFileClientDataVersion1)
// and the zone descriptions told at DataFileZoneClientDataInterface.
//
// Every function throws on failure: IOException (from the host library, or
// for a data set that does not describe a record), InvalidMetadataVersionException
// for client data of a version this loader cannot read, std::bad_alloc.
// Restoring fills a record that FluentSolution has just made (name and mutex
// set, tables empty); after a throw the record may be partly filled, with
// every table consistent with its count, and the caller deletes it.
#pragma once

#include <cstdint>
#include <memory>

#include "host/Metadata.h"
#include "metadata/ClientDataFactory.h"

struct CaseFile;
struct CellZone;
struct FaceZone;
class DataFile;

namespace zorvane {
namespace zorutildataio {

// The data set of a case file: loader name and version, the header as its
// name, and the file entry with the case's client data. The zones are added
// by the caller, through convertCellZone and convertFaceZone.
std::unique_ptr<dataio::MetadataDataset> datasetFromCaseFile(CaseFile& caseFile,
                                                             const ClientDataFactoryInterface& factory);

// Adds the zone's description by its host zone type, its client data and a
// range per coordinate, bound to the zone's deferred writers.
void convertCellZone(CellZone& zone, int32_t numDimensions, dataio::MetadataDataset& dataset,
                     const ClientDataFactoryInterface& factory);
void convertFaceZone(FaceZone& zone, int32_t numDimensions, dataio::MetadataDataset& dataset,
                     const ClientDataFactoryInterface& factory);

// Copy the case's Nodes and Face Tree tables into its client data.
void convertNodeZones(const CaseFile& caseFile, CaseFileClientDataInterface& clientData);
void convertFaceTrees(const CaseFile& caseFile, CaseFileClientDataInterface& clientData);

// The data set of a data file, with its fields and particle sections.
std::unique_ptr<dataio::MetadataDataset> datasetFromDataFile(DataFile& dataFile,
                                                             const ClientDataFactoryInterface& factory);

// Adds the zone descriptions of the data file's fields and particle sections.
void convertDataFieldsAndFluentParticles(DataFile& dataFile, dataio::MetadataDataset& dataset,
                                         const ClientDataFactoryInterface& factory);

// Rebuilds the field and particle tables from the data set's zone descriptions.
void populateDataFields(const dataio::MetadataDataset& dataset, DataFile& dataFile,
                        const ClientDataFactoryInterface& factory, int32_t numDataFields,
                        int32_t numParticles);

// Fill a record from a data set that a metadata file was read into.
void restoreCaseFile(const dataio::MetadataDataset& dataset, CaseFile& caseFile);
void restoreDataFile(const dataio::MetadataDataset& dataset, DataFile& dataFile);

}  // namespace zorutildataio
}  // namespace zorvane
