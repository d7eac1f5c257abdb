#include "apps/fluentload/Export.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <system_error>

#include "apps/fluentload/HostItems.h"

namespace fluentload {

namespace fs = std::filesystem;

namespace {

std::string lower(std::string s) {
    for (char& c : s)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

std::string zoneText(const ZoneInfo& z) {
    return "zone " + std::to_string(z.number) + " \"" + z.name + "\"";
}

// The variables that place the points: those named X, Y and Z (any case); 0 for none.
struct Coordinates {
    ZorIndex var[3] = {0, 0, 0};
};

Coordinates coordinatesOf(const DataSetInfo& info) {
    Coordinates c;
    const char* names[3] = {"x", "y", "z"};
    for (int axis = 0; axis < 3; ++axis) {
        for (size_t v = 0; v < info.variables.size() && c.var[axis] == 0; ++v) {
            if (lower(info.variables[v].name) == names[axis])
                c.var[axis] = static_cast<ZorIndex>(v + 1);
        }
    }
    return c;
}

int32_t cornersOf(int32_t zoneType) {
    switch (zoneType) {
        case ZorZoneType_FETriangle:
            return 3;
        case ZorZoneType_FEQuad:
        case ZorZoneType_FETetra:
            return 4;
        case ZorZoneType_FEBrick:
            return 8;
        case ZorZoneType_FELineSeg:
            return 2;
        default:
            return 0;
    }
}

// A VTK array holding values of the host's type, picked by `index` when
// given; without an index the values' bytes move into the array.
VtkArray arrayOf(const std::string& name, Values& values, const std::vector<int64_t>* index) {
    VtkArray array;
    array.name = name;
    size_t size = 0;
    switch (values.type) {
        case ZorFieldDataType_Double:
            array.type = "Float64";
            size = 8;
            break;
        case ZorFieldDataType_Float:
            array.type = "Float32";
            size = 4;
            break;
        case ZorFieldDataType_Int32:
            array.type = "Int32";
            size = 4;
            break;
        case ZorFieldDataType_Int16:
            array.type = "Int16";
            size = 2;
            break;
        default:
            array.type = "UInt8";
            size = 1;
            break;
    }
    if (index == nullptr) {
        array.tuples = values.count;
        array.bytes = std::move(values.bytes);
        return array;
    }
    array.tuples = static_cast<int64_t>(index->size());
    array.bytes.resize(index->size() * size);
    for (size_t i = 0; i < index->size(); ++i)
        std::memcpy(array.bytes.data() + i * size,
                    values.bytes.data() + static_cast<size_t>((*index)[i]) * size, size);
    return array;
}

// The cells of an ordered zone: lines, quadrilaterals or bricks between
// neighbouring points along the directions of more than one point; one vertex
// for a zone of one point. *cellIndex receives, per cell, the host's index of
// its cell-centred value (that of its lowest corner).
void orderedCells(const ZoneInfo& z, VtkCellArrays* cells, std::vector<int64_t>* cellIndex) {
    const int64_t dims[3] = {z.iMax, z.jMax, z.kMax};
    std::vector<int> active;
    for (int a = 0; a < 3; ++a) {
        if (dims[a] > 1)
            active.push_back(a);
    }
    auto pointAt = [&](int64_t i, int64_t j, int64_t k) { return i + j * dims[0] + k * dims[0] * dims[1]; };
    VtkCell cell;
    if (active.empty()) {
        cell.type = kVtkVertex;
        cell.points = {0};
        cells->append(cell);
        cellIndex->push_back(0);
        return;
    }
    const int64_t ci = std::max<int64_t>(dims[0] - 1, 1), cj = std::max<int64_t>(dims[1] - 1, 1),
                  ck = std::max<int64_t>(dims[2] - 1, 1);
    // Unit steps along the active directions.
    int64_t step[3][3] = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}};
    for (size_t n = 0; n < active.size(); ++n)
        step[n][active[n]] = 1;
    for (int64_t k = 0; k < ck; ++k) {
        for (int64_t j = 0; j < cj; ++j) {
            for (int64_t i = 0; i < ci; ++i) {
                auto corner = [&](int a, int b, int c) {
                    return pointAt(i + a * step[0][0] + b * step[1][0] + c * step[2][0],
                                   j + a * step[0][1] + b * step[1][1] + c * step[2][1],
                                   k + a * step[0][2] + b * step[1][2] + c * step[2][2]);
                };
                if (active.size() == 1) {
                    cell.type = kVtkLine;
                    cell.points = {corner(0, 0, 0), corner(1, 0, 0)};
                } else if (active.size() == 2) {
                    cell.type = kVtkQuad;
                    cell.points = {corner(0, 0, 0), corner(1, 0, 0), corner(1, 1, 0), corner(0, 1, 0)};
                } else {
                    cell.type = kVtkHexahedron;
                    cell.points = {corner(0, 0, 0), corner(1, 0, 0), corner(1, 1, 0), corner(0, 1, 0),
                                   corner(0, 0, 1), corner(1, 0, 1), corner(1, 1, 1), corner(0, 1, 1)};
                }
                cells->append(cell);
                cellIndex->push_back(pointAt(i, j, k));
            }
        }
    }
}

// A file name made of the zone name's safe characters.
std::string safeName(const std::string& name) {
    std::string out;
    for (unsigned char c : name) {
        if (std::isalnum(c) || c == '-' || c == '_' || c == '.') {
            out += static_cast<char>(c);
        } else if (!out.empty() && out.back() != '_') {
            out += '_';
        }
        if (out.size() >= 48)
            break;
    }
    while (!out.empty() && (out.back() == '_' || out.back() == '.'))
        out.pop_back();
    return out;
}

std::string padded(int64_t n, int64_t largest) {
    std::string digits = std::to_string(n);
    size_t width = std::to_string(largest).size();
    return std::string(width > digits.size() ? width - digits.size() : 0, '0') + digits;
}

std::string timeText(double t) {
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.9g", t);
    return buf;
}

}  // namespace

bool isExportName(const std::string& output) {
    std::string ext = lower(fs::path(output).extension().string());
    return ext == ".vtm" || ext == ".pvd";
}

bool zoneGrid(const DataSetInfo& info, size_t zoneIndex, VtkGrid* grid, std::string* error,
              std::vector<std::string>* problems) {
    const ZoneInfo& z = info.zones[zoneIndex];
    const Coordinates coords = coordinatesOf(info);
    const int64_t numPoints = z.points();
    *grid = VtkGrid();

    // Points.
    std::vector<double> xyz(static_cast<size_t>(numPoints) * 3, 0.0);
    bool doubleCoordinates = false;
    Values values;
    for (int axis = 0; axis < 3; ++axis) {
        ZorIndex var = coords.var[axis];
        if (var == 0) {
            if (z.type == ZorZoneType_Ordered) {
                const int64_t dims[3] = {z.iMax, z.jMax, z.kMax};
                int64_t stride = axis == 0 ? 1 : axis == 1 ? dims[0] : dims[0] * dims[1];
                for (int64_t p = 0; p < numPoints; ++p)
                    xyz[static_cast<size_t>(3 * p + axis)] = static_cast<double>((p / stride) % dims[axis]);
            } else if (axis < 2) {
                *error = std::string("the data set has no variable ") + (axis == 0 ? "X" : "Y") +
                         " to place the points of " + zoneText(z);
                return false;
            }
            continue;
        }
        if (!fetchValues(z.number, var, &values)) {
            *error = "cannot load variable " + info.variables[static_cast<size_t>(var - 1)].name + " of " +
                     zoneText(z);
            return false;
        }
        if (values.count != numPoints) {
            *error = "variable " + info.variables[static_cast<size_t>(var - 1)].name + " of " + zoneText(z) +
                     " has " + std::to_string(values.count) + " values for " + std::to_string(numPoints) +
                     " points";
            return false;
        }
        doubleCoordinates = doubleCoordinates || values.type != ZorFieldDataType_Float;
        for (int64_t p = 0; p < numPoints; ++p)
            xyz[static_cast<size_t>(3 * p + axis)] = values.at(p);
    }
    if (doubleCoordinates) {
        grid->points = makeVtkArray("Points", xyz, 3);
    } else {
        std::vector<float> narrow(xyz.begin(), xyz.end());
        grid->points = makeVtkArray("Points", narrow, 3);
    }

    // Cells.
    std::vector<int64_t> orderedIndex;
    if (z.type == ZorZoneType_Ordered) {
        orderedCells(z, &grid->cells, &orderedIndex);
    } else if (cornersOf(z.type) > 0) {
        int64_t corners = 0;
        std::vector<int64_t> nodes;
        if (!fetchNodeMap(z.number, &corners, &nodes)) {
            *error = "cannot load the node map of " + zoneText(z);
            return false;
        }
        if (corners != cornersOf(z.type) || static_cast<int64_t>(nodes.size()) != corners * z.elements()) {
            *error = "the node map of " + zoneText(z) + " has " + std::to_string(nodes.size()) +
                     " slots of " + std::to_string(corners) + " corners for " + std::to_string(z.elements()) +
                     " elements";
            return false;
        }
        for (int64_t p : nodes) {
            if (p < 0 || p >= numPoints) {
                *error = "the node map of " + zoneText(z) + " refers to node " + std::to_string(p + 1) +
                         " of " + std::to_string(numPoints);
                return false;
            }
        }
        grid->cells.connectivity.reserve(nodes.size());
        grid->cells.offsets.reserve(static_cast<size_t>(z.elements()));
        grid->cells.types.reserve(static_cast<size_t>(z.elements()));
        VtkCell cell;
        for (int64_t e = 0; e < z.elements(); ++e) {
            classicCell(z.type, &nodes[static_cast<size_t>(e * corners)], xyz.data(), &cell);
            grid->cells.append(cell);
        }
    } else if (z.type == ZorZoneType_FEPolygon || z.type == ZorZoneType_FEPolyhedron) {
        PolyFaces faces;
        if (!fetchFaceMap(z.number, &faces)) {
            *error = "cannot load the face map of " + zoneText(z);
            return false;
        }
        for (int64_t p : faces.nodes) {
            if (p < 0 || p >= numPoints) {
                *error = "the face map of " + zoneText(z) + " refers to node " + std::to_string(p + 1) +
                         " of " + std::to_string(numPoints);
                return false;
            }
        }
        if (z.type == ZorZoneType_FEPolygon) {
            polygonCells(faces, z.elements(), &grid->cells);
        } else {
            polyhedronCells(faces, z.elements(), xyz.data(), &grid->cells);
        }
    } else {
        *error = zoneText(z) + " is of the unknown zone type " + std::to_string(z.type);
        return false;
    }

    // Values of the other variables.
    std::map<std::string, int> names;
    for (size_t v = 0; v < info.variables.size(); ++v) {
        ZorIndex var = static_cast<ZorIndex>(v + 1);
        if (var == coords.var[0] || var == coords.var[1] || var == coords.var[2])
            continue;
        if (!fetchValues(z.number, var, &values)) {
            problems->push_back("cannot load variable " + info.variables[v].name + " of " + zoneText(z) +
                                "; it is left out of the export");
            continue;
        }
        std::string name = info.variables[v].name;
        int seen = ++names[name];
        if (seen > 1)
            name += " #" + std::to_string(seen);
        if (values.location == ZorValueLocation_CellCentered) {
            if (values.count != z.elements()) {
                *error = "variable " + info.variables[v].name + " of " + zoneText(z) + " has " +
                         std::to_string(values.count) + " values for " + std::to_string(z.elements()) +
                         " elements";
                return false;
            }
            grid->cellData.push_back(
                arrayOf(name, values, z.type == ZorZoneType_Ordered ? &orderedIndex : nullptr));
        } else {
            if (values.count != numPoints) {
                *error = "variable " + info.variables[v].name + " of " + zoneText(z) + " has " +
                         std::to_string(values.count) + " values for " + std::to_string(numPoints) +
                         " points";
                return false;
            }
            grid->pointData.push_back(arrayOf(name, values, nullptr));
        }
    }

    // What the zone is.
    grid->fieldStrings = {{"ZoneName", z.name}, {"ZoneType", zoneTypeName(z.type)}};
    grid->fieldData.push_back(makeVtkArray("TimeValue", std::vector<double>{z.solutionTime}));
    grid->fieldData.push_back(
        makeVtkArray("ZoneNumber", std::vector<int32_t>{static_cast<int32_t>(z.number)}));
    grid->fieldData.push_back(makeVtkArray("StrandID", std::vector<int32_t>{z.strand}));
    grid->fieldData.push_back(
        makeVtkArray("ParentZone", std::vector<int32_t>{static_cast<int32_t>(z.parentZone)}));
    return true;
}

bool exportDataSet(const DataSetInfo& info, const std::string& output, const VtkWriteOptions& options,
                   zorvane::zorutilutil::TaskProgress* progress, ExportReport* report, std::string* error) {
    const auto started = std::chrono::steady_clock::now();
    *report = ExportReport();
    if (!isExportName(output)) {
        *error = "the output " + output + " must end in .vtm or .pvd";
        return false;
    }
    const fs::path outPath(output);
    const bool collection = lower(outPath.extension().string()) == ".pvd";
    const fs::path folder = outPath.parent_path() / outPath.stem();
    const std::string folderName = outPath.stem().string();
    std::error_code ec;
    if (!fs::is_directory(folder, ec) && !fs::create_directory(folder, ec)) {
        *error = "cannot make the folder " + folder.string() + ": " + ec.message();
        return false;
    }

    // Zones by solution time, then strand, then number.
    std::map<double, std::vector<size_t>> byTime;
    for (size_t z = 0; z < info.zones.size(); ++z)
        byTime[info.zones[z].solutionTime].push_back(z);
    for (auto& step : byTime) {
        std::stable_sort(step.second.begin(), step.second.end(),
                         [&](size_t a, size_t b) { return info.zones[a].strand < info.zones[b].strand; });
    }
    report->timeSteps = static_cast<int64_t>(byTime.size());

    if (progress != nullptr) {
        progress->setNumSteps(static_cast<int>(info.zones.size() + (collection ? byTime.size() : 0) + 1));
        progress->begin("Writing " + std::to_string(info.zones.size()) + " zones to " + output);
    }
    auto written = [&](const fs::path& file) {
        ++report->files;
        report->bytes += fs::file_size(file, ec);
    };

    // One file per zone.
    std::vector<std::string> zoneFiles(info.zones.size());
    const int64_t largest = info.zones.empty() ? 1 : info.zones.back().number;
    VtkGrid grid;
    for (size_t z = 0; z < info.zones.size(); ++z) {
        const ZoneInfo& zone = info.zones[z];
        std::string safe = safeName(zone.name);
        zoneFiles[z] = "zone" + padded(zone.number, largest) + (safe.empty() ? "" : "_" + safe) + ".vtu";
        if (progress != nullptr)
            progress->setText("Writing zone " + std::to_string(zone.number) + " of " +
                              std::to_string(info.zones.size()) + ": " + zone.name);
        std::string why;
        if (!zoneGrid(info, z, &grid, &why, &report->problems)) {
            report->problems.push_back(why + "; the zone is left out of the export");
            zoneFiles[z].clear();
            if (progress != nullptr && !progress->end()) {
                report->interrupted = true;
                *error = "interrupted";
                return false;
            }
            continue;
        }
        const fs::path file = folder / zoneFiles[z];
        if (!writeVtu(file.string(), grid, options, error))
            return false;
        written(file);
        ++report->zones;
        if (progress != nullptr && !progress->end()) {
            report->interrupted = true;
            *error = "interrupted";
            return false;
        }
    }
    grid = VtkGrid();

    auto entriesOf = [&](const std::vector<size_t>& zones, const std::string& prefix) {
        std::vector<VtmEntry> entries;
        for (size_t z : zones) {
            if (!zoneFiles[z].empty())
                entries.push_back({info.zones[z].name, prefix + zoneFiles[z], {}});
        }
        return entries;
    };
    if (!collection) {
        std::vector<VtmEntry> entries;
        if (byTime.size() <= 1) {
            entries = byTime.empty() ? std::vector<VtmEntry>()
                                     : entriesOf(byTime.begin()->second, folderName + "/");
        } else {
            for (const auto& step : byTime)
                entries.push_back(
                    {"time " + timeText(step.first), "", entriesOf(step.second, folderName + "/")});
        }
        if (!writeVtm(output, entries, error))
            return false;
        written(outPath);
    } else {
        std::vector<PvdEntry> steps;
        int64_t n = 0;
        for (const auto& step : byTime) {
            const std::string name = "step" + padded(n++, static_cast<int64_t>(byTime.size()) - 1) + ".vtm";
            const fs::path file = folder / name;
            if (!writeVtm(file.string(), entriesOf(step.second, ""), error))
                return false;
            written(file);
            steps.push_back({step.first, 0, folderName + "/" + name});
            if (progress != nullptr && !progress->end()) {
                report->interrupted = true;
                *error = "interrupted";
                return false;
            }
        }
        if (!writePvd(output, steps, error))
            return false;
        written(outPath);
    }
    if (progress != nullptr)
        progress->end();
    report->seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    return true;
}

}  // namespace fluentload
