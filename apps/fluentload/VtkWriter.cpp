// The file layout of a .vtu with appended data:
//
//   <?xml version="1.0"?>
//   <VTKFile type="UnstructuredGrid" version="1.0" byte_order="..." header_type="UInt64" [compressor]>
//     <UnstructuredGrid>
//       <FieldData> arrays, strings in ASCII </FieldData>
//       <Piece NumberOfPoints="n" NumberOfCells="m">
//         <PointData> ... <CellData> ... <Points> ... <Cells> ... (each array: format="appended" offset="k")
//       </Piece>
//     </UnstructuredGrid>
//     <AppendedData encoding="raw">_ blocks... </AppendedData>
//   </VTKFile>
//
// A raw block is the byte count (UInt64) and the bytes. A compressed block is
// a header of UInt64s (number of blocks, block size, size of the last partial
// block or 0, then each block's compressed size) and the zlib streams. Offsets
// count from the byte after the '_'.
#include "apps/fluentload/VtkWriter.h"

#include <zlib.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <thread>

namespace fluentload {

namespace {

const char* byteOrder() {
    const uint16_t one = 1;
    unsigned char first;
    std::memcpy(&first, &one, 1);
    return first == 1 ? "LittleEndian" : "BigEndian";
}

size_t typeSize(const std::string& type) {
    if (type == "Float64" || type == "Int64" || type == "UInt64")
        return 8;
    if (type == "Float32" || type == "Int32" || type == "UInt32")
        return 4;
    if (type == "Int16" || type == "UInt16")
        return 2;
    if (type == "Int8" || type == "UInt8")
        return 1;
    return 0;
}

std::string numberText(double v) {
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.17g", v);
    return buf;
}

// The bytes of one array, as they go into the appended section.
struct Payload {
    const unsigned char* data = nullptr;  // the array's own bytes (raw)
    size_t size = 0;
    std::vector<unsigned char> encoded;  // header and compressed blocks (compressed)
};

bool encode(Payload* payload, const VtkWriteOptions& options, std::string* error) {
    if (!options.compress) {
        return true;
    }
    const size_t blockSize = options.blockSize == 0 ? (1u << 20) : options.blockSize;
    const uint64_t fullBlocks = payload->size / blockSize;
    const uint64_t lastSize = payload->size % blockSize;
    const size_t numBlocks = static_cast<size_t>(fullBlocks + (lastSize != 0 ? 1 : 0));
    // Blocks are compressed independently, so workers share them out.
    std::vector<std::vector<unsigned char>> blocks(numBlocks);
    std::atomic<size_t> next{0};
    std::atomic<int> failure{Z_OK};
    auto worker = [&]() {
        for (size_t b = next.fetch_add(1); b < numBlocks; b = next.fetch_add(1)) {
            size_t from = b * blockSize;
            size_t length = std::min(blockSize, payload->size - from);
            std::vector<unsigned char>& out = blocks[b];
            out.resize(compressBound(static_cast<uLong>(length)));
            uLongf outSize = static_cast<uLongf>(out.size());
            int status = compress2(out.data(), &outSize, payload->data + from, static_cast<uLong>(length),
                                   options.level);
            if (status != Z_OK)
                failure.store(status);
            out.resize(outSize);
        }
    };
    const size_t threads = std::min<size_t>(std::max(1u, std::thread::hardware_concurrency()), numBlocks);
    if (threads <= 1) {
        worker();
    } else {
        std::vector<std::thread> pool;
        for (size_t t = 0; t < threads; ++t)
            pool.emplace_back(worker);
        for (std::thread& t : pool)
            t.join();
    }
    if (failure.load() != Z_OK) {
        *error = "zlib could not compress a block (status " + std::to_string(failure.load()) + ")";
        return false;
    }
    std::vector<uint64_t> header = {numBlocks, blockSize, lastSize};
    size_t total = 0;
    for (const auto& block : blocks) {
        header.push_back(block.size());
        total += block.size();
    }
    payload->encoded.resize(header.size() * 8 + total);
    std::memcpy(payload->encoded.data(), header.data(), header.size() * 8);
    unsigned char* at = payload->encoded.data() + header.size() * 8;
    for (auto& block : blocks) {
        if (!block.empty())
            std::memcpy(at, block.data(), block.size());
        at += block.size();
        std::vector<unsigned char>().swap(block);
    }
    return true;
}

uint64_t appendedSize(const Payload& p, bool compressed) {
    return compressed ? p.encoded.size() : 8 + p.size;
}

struct FileCloser {
    void operator()(FILE* f) const {
        if (f != nullptr)
            std::fclose(f);
    }
};

bool writeAll(FILE* f, const void* data, size_t size) {
    return size == 0 || std::fwrite(data, 1, size, f) == size;
}

// Opens a file for writing, with a reason in *error on failure.
std::unique_ptr<FILE, FileCloser> openOut(const std::string& path, std::string* error) {
    std::unique_ptr<FILE, FileCloser> f(std::fopen(path.c_str(), "wb"));
    if (f == nullptr)
        *error = "cannot write " + path + ": " + std::strerror(errno);
    return f;
}

bool finish(std::unique_ptr<FILE, FileCloser> f, const std::string& path, bool ok, std::string* error) {
    FILE* raw = f.release();
    bool closed = std::fclose(raw) == 0;
    if (!ok || !closed) {
        *error = "cannot write " + path + ": " + std::strerror(errno);
        return false;
    }
    return true;
}

}  // namespace

std::string xmlEscape(const std::string& text) {
    std::string out;
    for (char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\'':
                out += "&apos;";
                break;
            case '\n':
                out += "&#10;";
                break;
            case '\r':
                out += "&#13;";
                break;
            case '\t':
                out += "&#9;";
                break;
            default:
                out += c;
        }
    }
    return out;
}

bool writeVtu(const std::string& path, const VtkGrid& grid, const VtkWriteOptions& options,
              std::string* error) {
    const int64_t numPoints = grid.points.tuples;
    const int64_t numCells = grid.cells.count();

    // Every array of the file, in the order they appear, with where it goes.
    struct Item {
        std::string indent;
        std::string type;
        std::string name;
        int components;
        int64_t tuples;
        bool fieldData;
        Payload payload;
    };
    std::vector<Item> items;
    auto addArray = [&](const std::string& indent, const std::string& name, const VtkArray& array,
                        int64_t expectedTuples, bool fieldData) -> bool {
        size_t size = typeSize(array.type);
        if (size == 0) {
            *error = "array " + array.name + " has the unknown type " + array.type;
            return false;
        }
        if (array.components < 1 || array.bytes.size() != static_cast<size_t>(array.tuples) *
                                                              static_cast<size_t>(array.components) * size) {
            *error = "array " + array.name + " holds " + std::to_string(array.bytes.size()) +
                     " bytes, not what its tuples and type say";
            return false;
        }
        if (expectedTuples >= 0 && array.tuples != expectedTuples) {
            *error = "array " + array.name + " has " + std::to_string(array.tuples) + " tuples where " +
                     std::to_string(expectedTuples) + " are needed";
            return false;
        }
        Item item{indent, array.type, name, array.components, array.tuples, fieldData, {}};
        item.payload.data = array.bytes.data();
        item.payload.size = array.bytes.size();
        items.push_back(std::move(item));
        return true;
    };
    auto addIds = [&](const std::string& name, const void* data, size_t count, const char* type,
                      size_t size) {
        Item item{"        ", type, name, 1, static_cast<int64_t>(count), false, {}};
        item.payload.data = static_cast<const unsigned char*>(data);
        item.payload.size = count * size;
        items.push_back(std::move(item));
    };

    if (grid.points.components != 3 || (grid.points.type != "Float32" && grid.points.type != "Float64")) {
        *error = "points must be three Float32 or Float64 components";
        return false;
    }
    const VtkCellArrays& cells = grid.cells;
    if (static_cast<int64_t>(cells.offsets.size()) != numCells ||
        (cells.hasPolyhedra() && static_cast<int64_t>(cells.faceOffsets.size()) != numCells)) {
        *error = "the cell arrays disagree in length";
        return false;
    }
    for (int64_t p : cells.connectivity) {
        if (p < 0 || p >= numPoints) {
            *error = "a cell refers to point " + std::to_string(p) + " of " + std::to_string(numPoints);
            return false;
        }
    }

    for (const VtkArray& a : grid.fieldData) {
        if (!addArray("      ", a.name, a, -1, true))
            return false;
    }
    const size_t firstPointData = items.size();
    for (const VtkArray& a : grid.pointData) {
        if (!addArray("        ", a.name, a, numPoints, false))
            return false;
    }
    const size_t firstCellData = items.size();
    for (const VtkArray& a : grid.cellData) {
        if (!addArray("        ", a.name, a, numCells, false))
            return false;
    }
    const size_t pointsItem = items.size();
    if (!addArray("        ", "Points", grid.points, -1, false))
        return false;
    const size_t firstCellItem = items.size();
    addIds("connectivity", cells.connectivity.data(), cells.connectivity.size(), "Int64", 8);
    addIds("offsets", cells.offsets.data(), cells.offsets.size(), "Int64", 8);
    addIds("types", cells.types.data(), cells.types.size(), "UInt8", 1);
    if (cells.hasPolyhedra()) {
        addIds("faces", cells.faces.data(), cells.faces.size(), "Int64", 8);
        addIds("faceoffsets", cells.faceOffsets.data(), cells.faceOffsets.size(), "Int64", 8);
    }

    for (Item& item : items) {
        if (!encode(&item.payload, options, error))
            return false;
    }

    std::string xml =
        "<?xml version=\"1.0\"?>\n<VTKFile type=\"UnstructuredGrid\" version=\"1.0\" byte_order=\"";
    xml += byteOrder();
    xml += "\" header_type=\"UInt64\"";
    if (options.compress)
        xml += " compressor=\"vtkZLibDataCompressor\"";
    xml += ">\n  <UnstructuredGrid>\n";
    uint64_t offset = 0;
    auto arrayTag = [&](const Item& item) {
        std::string tag =
            item.indent + "<DataArray type=\"" + item.type + "\" Name=\"" + xmlEscape(item.name) + "\"";
        if (item.components != 1)
            tag += " NumberOfComponents=\"" + std::to_string(item.components) + "\"";
        if (item.fieldData)
            tag += " NumberOfTuples=\"" + std::to_string(item.tuples) + "\"";
        tag += " format=\"appended\" offset=\"" + std::to_string(offset) + "\"/>\n";
        offset += appendedSize(item.payload, options.compress);
        return tag;
    };
    if (!grid.fieldData.empty() || !grid.fieldStrings.empty()) {
        xml += "    <FieldData>\n";
        for (size_t i = 0; i < firstPointData; ++i)
            xml += arrayTag(items[i]);
        for (const auto& text : grid.fieldStrings) {
            xml += "      <Array type=\"String\" Name=\"" + xmlEscape(text.first) +
                   "\" NumberOfTuples=\"1\" format=\"ascii\">\n        ";
            for (unsigned char c : text.second)
                xml += std::to_string(c) + " ";
            xml += "0\n      </Array>\n";
        }
        xml += "    </FieldData>\n";
    }
    xml += "    <Piece NumberOfPoints=\"" + std::to_string(numPoints) + "\" NumberOfCells=\"" +
           std::to_string(numCells) + "\">\n";
    xml += "      <PointData>\n";
    for (size_t i = firstPointData; i < firstCellData; ++i)
        xml += arrayTag(items[i]);
    xml += "      </PointData>\n      <CellData>\n";
    for (size_t i = firstCellData; i < pointsItem; ++i)
        xml += arrayTag(items[i]);
    xml += "      </CellData>\n      <Points>\n";
    xml += arrayTag(items[pointsItem]);
    xml += "      </Points>\n      <Cells>\n";
    for (size_t i = firstCellItem; i < items.size(); ++i)
        xml += arrayTag(items[i]);
    xml += "      </Cells>\n    </Piece>\n  </UnstructuredGrid>\n  <AppendedData encoding=\"raw\">\n   _";

    std::unique_ptr<FILE, FileCloser> f = openOut(path, error);
    if (f == nullptr)
        return false;
    std::vector<char> buffer(1u << 20);
    std::setvbuf(f.get(), buffer.data(), _IOFBF, buffer.size());
    bool ok = writeAll(f.get(), xml.data(), xml.size());
    for (const Item& item : items) {
        if (!ok)
            break;
        if (options.compress) {
            ok = writeAll(f.get(), item.payload.encoded.data(), item.payload.encoded.size());
        } else {
            uint64_t size = item.payload.size;
            ok = writeAll(f.get(), &size, 8) && writeAll(f.get(), item.payload.data, item.payload.size);
        }
    }
    const std::string tail = "\n  </AppendedData>\n</VTKFile>\n";
    ok = ok && writeAll(f.get(), tail.data(), tail.size());
    return finish(std::move(f), path, ok, error);
}

namespace {

void vtmEntries(std::string& xml, const std::vector<VtmEntry>& entries, const std::string& indent) {
    for (size_t i = 0; i < entries.size(); ++i) {
        const VtmEntry& e = entries[i];
        if (e.file.empty()) {
            xml +=
                indent + "<Block index=\"" + std::to_string(i) + "\" name=\"" + xmlEscape(e.name) + "\">\n";
            vtmEntries(xml, e.children, indent + "  ");
            xml += indent + "</Block>\n";
        } else {
            xml += indent + "<DataSet index=\"" + std::to_string(i) + "\" name=\"" + xmlEscape(e.name) +
                   "\" file=\"" + xmlEscape(e.file) + "\"/>\n";
        }
    }
}

bool writeText(const std::string& path, const std::string& text, std::string* error) {
    std::unique_ptr<FILE, FileCloser> f = openOut(path, error);
    if (f == nullptr)
        return false;
    bool ok = writeAll(f.get(), text.data(), text.size());
    return finish(std::move(f), path, ok, error);
}

}  // namespace

bool writeVtm(const std::string& path, const std::vector<VtmEntry>& entries, std::string* error) {
    std::string xml =
        "<?xml version=\"1.0\"?>\n<VTKFile type=\"vtkMultiBlockDataSet\" version=\"1.0\" byte_order=\"";
    xml += byteOrder();
    xml += "\" header_type=\"UInt64\">\n  <vtkMultiBlockDataSet>\n";
    vtmEntries(xml, entries, "    ");
    xml += "  </vtkMultiBlockDataSet>\n</VTKFile>\n";
    return writeText(path, xml, error);
}

bool writePvd(const std::string& path, const std::vector<PvdEntry>& entries, std::string* error) {
    std::string xml = "<?xml version=\"1.0\"?>\n<VTKFile type=\"Collection\" version=\"0.1\" byte_order=\"";
    xml += byteOrder();
    xml += "\">\n  <Collection>\n";
    for (const PvdEntry& e : entries) {
        xml += "    <DataSet timestep=\"" + numberText(e.time) + "\" group=\"\" part=\"" +
               std::to_string(e.part) + "\" file=\"" + xmlEscape(e.file) + "\"/>\n";
    }
    xml += "  </Collection>\n</VTKFile>\n";
    return writeText(path, xml, error);
}

}  // namespace fluentload
