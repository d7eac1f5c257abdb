// What the tests of the metadata cache share: the data set as the host holds
// it written out as text (so that two loads compare as two strings), images
// of the scan records, and the metadata files beside the loaded files.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "casefile/CaseFile.h"
#include "datafile/DataFile.h"
#include "host/ZorData.h"
#include "host/ZorUtil.h"
#include "lod/LodTestSupport.h"
#include "minihost/MiniHost.h"

namespace metadatatest {

using namespace lodtest;

// The metadata file of a loaded file: `.NAME.zmeta` in the same folder.
inline std::string metadataPathOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    return folder + "." + name + ".zmeta";
}

inline bool fileExists(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

inline std::string readBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << bytes;
    ASSERT_TRUE(out.good()) << path;
}

// FNV-1a over bytes: a checksum of values that must agree bit for bit.
inline uint64_t fnv(const void* data, size_t size, uint64_t hash = 1469598103934665603ull) {
    const unsigned char* bytes = static_cast<const unsigned char*>(data);
    for (size_t i = 0; i < size; ++i)
        hash = (hash ^ bytes[i]) * 1099511628211ull;
    return hash;
}

inline std::string auxText(ZorAuxDataRef aux) {
    std::ostringstream out;
    const ZorIndex count = aux != nullptr ? ZorUtilAuxDataGetNumItems(aux) : 0;
    for (ZorIndex i = 1; i <= count; ++i) {
        char* name = nullptr;
        char* value = nullptr;
        int32_t type = 0;
        bool retain = false;
        if (ZorUtilAuxDataGetItemByIndex(aux, i, &name, &value, &type, &retain))
            out << "  aux " << (name ? name : "") << " = " << (value ? value : "") << " " << type << retain
                << "\n";
        ZorUtilStringDealloc(&name);
        ZorUtilStringDealloc(&value);
    }
    return out.str();
}

// The data set as the host holds it: title, variables, every zone with its
// name, type, sizes, parent, strand, time, auxiliary data and per variable
// its data type, location and loader; with pull also the values and node
// maps (their count, extremes and checksum), loaded on demand. Then every
// message shown so far.
inline std::string describeDataSet(bool pull) {
    std::ostringstream out;
    char* title = nullptr;
    ZorIndex numZones = 0, numVars = 0;
    if (!ZorUtilDataSetIsAvailable() || !ZorUtilDataSetGetInfo(&title, &numZones, &numVars))
        return "no data set\n";
    out << "title " << (title ? title : "") << "\n";
    ZorUtilStringDealloc(&title);
    out << auxText(ZorUtilAuxDataDataSetGetRef());
    for (const std::string& name : variableNames())
        out << "var " << name << "\n";
    for (ZorIndex z = 1; z <= numZones; ++z) {
        ZorIndex iMax = 0, jMax = 0, kMax = 0;
        ZorUtilZoneGetInfo(z, &iMax, &jMax, &kMax);
        out << "zone " << z << " " << zoneName(z) << " type " << ZorUtilZoneGetType(z) << " sizes " << iMax
            << " " << jMax << " " << kMax << " parent " << ZorUtilZoneGetParentZone(z) << " strand "
            << ZorUtilZoneGetStrandID(z) << " time " << ZorUtilZoneGetSolutionTime(z) << "\n";
        out << auxText(ZorUtilAuxDataZoneGetRef(z));
        for (ZorIndex v = 1; v <= numVars; ++v) {
            out << "  var " << v << " type " << ZorUtilDataValueGetType(z, v) << " location "
                << ZorUtilDataValueGetLocation(z, v) << " loader " << minihost::valueStats(z, v).hasLoader;
            if (pull) {
                const std::vector<double> data = values(z, v);
                double lo = 0, hi = 0;
                for (size_t i = 0; i < data.size(); ++i) {
                    lo = i == 0 ? data[i] : std::min(lo, data[i]);
                    hi = i == 0 ? data[i] : std::max(hi, data[i]);
                }
                char range[80];
                snprintf(range, sizeof range, "%.17g %.17g", lo, hi);
                out << " values " << data.size() << " " << range << " "
                    << fnv(data.data(), data.size() * sizeof(double));
            }
            out << "\n";
        }
        if (pull) {
            uint64_t hash = fnv(nullptr, 0);
            size_t count = 0;
            for (const std::vector<int64_t>& element : nodeMap(z)) {
                hash = fnv(element.data(), element.size() * sizeof(int64_t), hash);
                count += 1;
            }
            out << "  node map " << count << " " << hash << "\n";
        }
    }
    for (const Shown& message : shown())
        out << "message " << message.first << ": " << message.second << "\n";
    return out.str();
}

// What a scan (or a restore) put into a CaseFile, apart from host numbers and
// bulk arrays.
inline std::string caseImage(const CaseFile* c) {
    if (c == nullptr)
        return "no case file\n";
    std::ostringstream out;
    out << "header " << c->header << "\ndims " << c->numDimensions << " axi " << c->axisymmetric << " dp "
        << c->doublePrecision << " totalNodes " << c->totalNodes << " config " << c->machineConfig.byteOrder
        << " " << c->machineConfig.floatFormat << " " << c->machineConfig.intSize << " "
        << c->machineConfig.floatSize << " " << c->machineConfig.doubleSize << "\n";
    for (int32_t i = 0; i < c->numNodeZones; ++i) {
        const NodeZone& z = c->nodeZones[i];
        out << "nodes " << z.sectionId << " " << z.zoneId << " " << z.firstIndex << " " << z.lastIndex << " "
            << z.filePosition << "\n";
    }
    for (int32_t i = 0; i < c->numCellZones; ++i) {
        const CellZone& z = c->cellZones[i];
        if (z.zoneType == 32)
            continue;  // not kept in a metadata file: a restored case has none
        out << "cells " << z.sectionId << " " << z.zoneId << " " << z.firstIndex << " " << z.lastIndex << " "
            << z.selectionIndex << " '" << z.name << "' " << z.zoneType << " " << z.hostZoneType << " "
            << z.elementType << " " << z.numNodes << " " << z.numFaces << " " << z.numFaceNodes << " "
            << z.numBoundaryConnections << " " << z.filePosition << "\n";
    }
    for (int32_t i = 0; i < c->numFaceZones; ++i) {
        const FaceZone& z = c->faceZones[i];
        out << "faces " << z.sectionId << " " << z.zoneId << " " << z.firstIndex << " " << z.lastIndex << " "
            << z.selectionIndex << " '" << z.name << "' " << z.boundaryType << " " << z.faceType << " "
            << z.parentCellZoneId << " " << z.numNodes << " " << z.hostZoneType << " " << z.childFaceIndex
            << " " << z.filePosition << " " << z.numPolyFaceNodes << " " << z.numPolyFaces << "\n";
    }
    for (int32_t i = 0; i < c->numFaceTrees; ++i) {
        const FaceTree& t = c->faceTrees[i];
        out << "tree " << t.sectionId << " " << t.firstIndex << " " << t.lastIndex << " " << t.parentZoneId
            << " " << t.childZoneId << " " << t.maxChildren << " " << t.filePosition << "\n";
    }
    for (int32_t i = 0; i < c->numChildFaces; ++i) {
        const ChildFace& f = c->childFaces[i];
        out << "child faces " << f.sectionId << " " << f.childZoneId << " " << f.parentZoneId << " "
            << f.pairCount << " " << f.filePosition << "\n";
    }
    for (int32_t i = 0; i < c->numSpeciesNames; ++i)
        out << "species " << c->speciesNames[i] << "\n";
    return out.str();
}

inline std::string fieldImage(const DataField& f) {
    std::ostringstream out;
    out << f.sectionId << " " << f.zoneId << " " << f.filePosition << " " << f.fieldId << " '" << f.name
        << "' " << f.count << " " << f.dimension << " " << f.phase;
    return out.str();
}

// What a scan (or a restore) put into a DataFile: its numbers and its field
// and particle tables in order.
inline std::string dataImage(const DataFile* d) {
    if (d == nullptr)
        return "no data file\n";
    std::ostringstream out;
    char times[80];
    snprintf(times, sizeof times, "%.17g %.17g", d->flowTime, d->deltaTimeSampled);
    out << "times " << times << " config " << d->machineConfig.byteOrder << " "
        << d->machineConfig.floatFormat << " " << d->machineConfig.intSize << " "
        << d->machineConfig.floatSize << " " << d->machineConfig.doubleSize << "\n";
    for (const std::string& name : d->additionalQuantities->names())
        out << "quantity " << name << "\n";
    for (int32_t i = 0; i < d->numDataFields; ++i)
        out << "field " << fieldImage(d->dataFields[i]) << "\n";
    for (int32_t p = 0; p < d->numParticles; ++p) {
        const FluentParticle& particle = d->particles[p];
        char time[40];
        snprintf(time, sizeof time, "%.17g", particle.solutionTime);
        out << "particles '" << particle.name << "' " << particle.particleCount << " " << time << " "
            << particle.numDimensions << "\n";
        for (int32_t f = 0; f < particle.numFields; ++f)
            out << "  field " << fieldImage(particle.fields[f]) << "\n";
    }
    return out.str();
}

// The ranges the host holds for every variable of every zone, without loading anything.
inline std::map<std::pair<ZorIndex, ZorIndex>, std::pair<double, double>> heldRanges() {
    std::map<std::pair<ZorIndex, ZorIndex>, std::pair<double, double>> ranges;
    const ZorIndex numZones = ZorUtilDataSetGetNumZones(), numVars = ZorUtilDataSetGetNumVars();
    for (ZorIndex z = 1; z <= numZones; ++z) {
        for (ZorIndex v = 1; v <= numVars; ++v) {
            double lo = 0, hi = 0;
            if (minihost::valueRange(z, v, &lo, &hi))
                ranges[{z, v}] = {lo, hi};
        }
    }
    return ranges;
}

// Values loaded so far, over the whole data set.
inline int valueLoads() {
    int loads = 0;
    const ZorIndex numZones = ZorUtilDataSetGetNumZones(), numVars = ZorUtilDataSetGetNumVars();
    for (ZorIndex z = 1; z <= numZones; ++z) {
        for (ZorIndex v = 1; v <= numVars; ++v)
            loads += minihost::valueStats(z, v).loads;
    }
    return loads;
}

// The long message of a metadata file that cannot be read.
inline std::string damagedMetadataMessage(const std::string& path, bool dataFile) {
    return std::string(dataFile ? "An error ocurred while loading " : "An error occurred while loading ") +
           path + " using its metadata file. Please remove the metadata file located at " +
           metadataPathOf(path) +
           " and, if the error persists, contact Technical Support or refer to the documentation on how to "
           "disable metadata files in the Fluent loader.";
}

}  // namespace metadatatest
