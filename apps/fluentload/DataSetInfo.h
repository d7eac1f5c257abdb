// What the host holds after a load, as plain records: title, auxiliary data,
// variables, zones, and the value statistics of a pull.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/ZorTypes.h"

namespace fluentload {

// A data type or value location that differs between zones.
constexpr int32_t kMixed = -2;

struct AuxItem {
    std::string name;   // as the host holds it
    std::string value;  // as the host holds it
};

// What a pull found in the values of one variable in one zone.
struct ValueStats {
    bool pulled = false;  // the values were loaded and read
    int64_t count = 0;    // values read
    double min = 0.0;     // smallest value; 0 when count is 0
    double max = 0.0;     // largest value; 0 when count is 0
    double sum = 0.0;     // sum of all values, the checksum
};

// One variable in one zone.
struct ZoneValueInfo {
    int32_t dataType = ZorFieldDataType_Invalid;  // a ZorFieldDataType
    int32_t location = ZorValueLocation_Invalid;  // a ZorValueLocation
    ValueStats stats;                             // filled by a pull
};

struct ZoneInfo {
    ZorIndex number = 0;  // host zone number, from 1
    std::string name;     // as the host holds it
    int32_t type = 0;     // a ZorZoneType
    int64_t iMax = 0;     // ordered: I; finite-element: points
    int64_t jMax = 0;     // ordered: J; finite-element: elements
    int64_t kMax = 0;     // ordered: K; classic: corners per element; polytope: faces
    int32_t strand = 0;   // 0: no strand
    double solutionTime = 0.0;
    int64_t parentZone = 0;             // 0: none
    std::vector<AuxItem> aux;           // in the host's order
    std::vector<ZoneValueInfo> values;  // one per variable, in variable order

    int64_t points() const { return type == ZorZoneType_Ordered ? iMax * jMax * kMax : iMax; }
    int64_t elements() const { return type == ZorZoneType_Ordered ? iMax * jMax * kMax : jMax; }
};

struct VariableInfo {
    std::string name;                             // as the host holds it
    int32_t dataType = ZorFieldDataType_Invalid;  // the same in every zone, or kMixed
    int32_t location = ZorValueLocation_Invalid;  // the same in every zone, or kMixed
};

struct DataSetInfo {
    bool exists = false;                  // the frame has a data set
    std::string title;                    // the data set's title
    std::vector<AuxItem> aux;             // data set auxiliary data
    std::vector<VariableInfo> variables;  // variable n at n - 1
    std::vector<ZoneInfo> zones;          // zone n at n - 1
    bool pulled = false;                  // a pull filled the value statistics
};

// Reads the frame's data set from the host without loading anything.
DataSetInfo readDataSetInfo();

// Names for the host's numbers, as the summaries show them.
const char* zoneTypeName(int32_t zoneType);
const char* dataTypeName(int32_t dataType);
const char* locationName(int32_t location);

}  // namespace fluentload
