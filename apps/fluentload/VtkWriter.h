// A writer of VTK XML files: unstructured grids (.vtu) with binary appended
// data, raw or compressed with zlib, multiblock files (.vtm) that gather them,
// and collections (.pvd) that give them solution times.
//
// Pure: it writes what it is given and knows nothing of the host.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "apps/fluentload/VtkCells.h"

namespace fluentload {

// One data array: tuples of components of one of VTK's number types.
struct VtkArray {
    std::string name;                  // as VTK shows it
    std::string type;                  // "Float32", "Float64", "Int8", "UInt8", "Int16", "Int32" or "Int64"
    int components = 1;                // values per tuple
    int64_t tuples = 0;                // number of tuples
    std::vector<unsigned char> bytes;  // tuples * components values in this machine's byte order
};

// VTK's name of the number type T.
template <typename T>
const char* vtkTypeName();
template <>
inline const char* vtkTypeName<float>() {
    return "Float32";
}
template <>
inline const char* vtkTypeName<double>() {
    return "Float64";
}
template <>
inline const char* vtkTypeName<int8_t>() {
    return "Int8";
}
template <>
inline const char* vtkTypeName<uint8_t>() {
    return "UInt8";
}
template <>
inline const char* vtkTypeName<int16_t>() {
    return "Int16";
}
template <>
inline const char* vtkTypeName<int32_t>() {
    return "Int32";
}
template <>
inline const char* vtkTypeName<int64_t>() {
    return "Int64";
}

// An array holding a copy of the values.
template <typename T>
VtkArray makeVtkArray(const std::string& name, const std::vector<T>& values, int components = 1) {
    VtkArray array;
    array.name = name;
    array.type = vtkTypeName<T>();
    array.components = components;
    array.tuples = static_cast<int64_t>(values.size()) / components;
    array.bytes.resize(values.size() * sizeof(T));
    if (!values.empty())
        std::memcpy(array.bytes.data(), values.data(), array.bytes.size());
    return array;
}

// One unstructured grid.
struct VtkGrid {
    VtkArray points;                                                // 3 components, Float32 or Float64
    VtkCellArrays cells;                                            // the cells
    std::vector<VtkArray> pointData;                                // one tuple per point
    std::vector<VtkArray> cellData;                                 // one tuple per cell
    std::vector<VtkArray> fieldData;                                // numbers about the whole grid
    std::vector<std::pair<std::string, std::string>> fieldStrings;  // texts about the whole grid: name, text
};

struct VtkWriteOptions {
    bool compress = false;        // zlib-compressed blocks instead of raw data
    int level = 1;                // zlib's compression level, 1 (fast, the default) to 9 (small)
    size_t blockSize = 1u << 20;  // bytes of uncompressed data per compressed block
};

// Writes the grid as a .vtu file. False with the reason in *error when the
// file cannot be written or the grid is inconsistent.
[[nodiscard]] bool writeVtu(const std::string& path, const VtkGrid& grid, const VtkWriteOptions& options,
                            std::string* error);

// One entry of a multiblock file: a data set file, or a block of entries.
struct VtmEntry {
    std::string name;                // the block name ParaView shows
    std::string file;                // a .vtu, relative to the .vtm's folder; empty for a block
    std::vector<VtmEntry> children;  // a block's entries
};

// Writes a .vtm file that gathers the entries.
[[nodiscard]] bool writeVtm(const std::string& path, const std::vector<VtmEntry>& entries,
                            std::string* error);

// One entry of a collection: a file at a solution time.
struct PvdEntry {
    double time = 0.0;  // the solution time
    int part = 0;       // files of one time with different parts are shown together
    std::string file;   // relative to the .pvd's folder
};

// Writes a .pvd collection file.
[[nodiscard]] bool writePvd(const std::string& path, const std::vector<PvdEntry>& entries,
                            std::string* error);

// Text with the characters that XML attributes cannot hold as they are escaped.
std::string xmlEscape(const std::string& text);

}  // namespace fluentload
