// Every case and mesh file of the shared samples: the scan finds every zone
// that the file declares, checked against a walk of the file that this test
// makes itself; and every classic zone assembles into the cells that VTK's
// independent reader builds from the same file, with one orientation per zone.
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

#include "CaseFileTestSupport.h"
#include "MeshChecks.h"

namespace casefile_test {
namespace {

namespace fs = std::filesystem;

// ---- The sample files --------------------------------------------------------------------

bool isMeshFileName(const std::string& name) {
    for (const char* tail : {".cas", ".msh", ".cas.gz", ".msh.gz"}) {
        size_t n = strlen(tail);
        if (name.size() > n && name.compare(name.size() - n, n, tail) == 0) {
            return true;
        }
    }
    return false;
}

std::vector<std::string> sampleFiles() {
    std::vector<std::string> files;
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(FL_SAMPLES_DIR, error)) {
        if (entry.is_regular_file() && isMeshFileName(entry.path().filename().string())) {
            files.push_back(fs::relative(entry.path(), FL_SAMPLES_DIR).string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string testNameOf(const ::testing::TestParamInfo<std::string>& info) {
    std::string name = fs::path(info.param).filename().string();
    for (char& c : name) {
        if (!isalnum(static_cast<unsigned char>(c))) {
            c = '_';
        }
    }
    return name;
}

// Files whose text the case file reader refuses by its own rules, with the
// message it gives: a header in single quotes, a first comment without quotes
// (read as the header), a Cells section of four fields for a zone above 0.
const std::map<std::string, std::string>& refusedFiles() {
    static const std::map<std::string, std::string> refused = {
        {"share__petsc__datafiles__meshes__cube_5tets.cas",
         "Parse error while reading Header section (section 1)."},
        {"share__petsc__datafiles__meshes__cube_5tets_ascii.cas",
         "Parse error while reading Header section (section 1)."},
        {"pyfluent__lid_driven_cavity__lid_driven_cavity.msh",
         "Parse error while reading Header section (section 1)."},
        {"tutorials__incompressible__icoFoam__elbow__elbow.msh",
         "Parse error while reading Cells section (section 12)."},
    };
    return refused;
}

// The sample as a plain file: a .gz one is uncompressed into the scratch folder.
std::string plainCopy(const std::string& relative, const fs::path& folder) {
    fs::path source = fs::path(FL_SAMPLES_DIR) / relative;
    std::string name = source.filename().string();
    if (name.size() < 3 || name.compare(name.size() - 3, 3, ".gz") != 0) {
        return source.string();
    }
    fs::path target = folder / name.substr(0, name.size() - 3);
    gzFile in = gzopen(source.c_str(), "rb");
    std::ofstream out(target, std::ios::binary);
    std::vector<char> buffer(1 << 20);
    int got;
    while (in != nullptr && (got = gzread(in, buffer.data(), static_cast<unsigned>(buffer.size()))) > 0) {
        out.write(buffer.data(), got);
    }
    if (in != nullptr) {
        gzclose(in);
    }
    return target.string();
}

// ---- An independent walk of a case file ---------------------------------------------------------

struct WalkedZone {
    char kind;  // 'n' nodes, 'c' cells, 'f' faces
    int id, first, last, type;
    std::string name;
};

// Walks the top-level sections of the file: ASCII sections by balanced
// parentheses (strings honoured), binary ones to their end marker. Gives the
// zones that the Nodes, Cells and Faces sections declare (zone id above 0) in
// file order, named by the Zone sections that follow them.
std::vector<WalkedZone> walkZones(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::string data((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::vector<WalkedZone> zones;
    size_t pos = 0;
    while ((pos = data.find('(', pos)) != std::string::npos) {
        size_t digits = pos + 1;
        while (digits < data.size() && isdigit(static_cast<unsigned char>(data[digits]))) {
            ++digits;
        }
        if (digits == pos + 1) {
            ++pos;
            continue;
        }
        int id = atoi(data.substr(pos + 1, digits - pos - 1).c_str());
        size_t end;
        if (id >= 2000 && id < 4000) {
            size_t marker = data.find("End of Binary Section", digits);
            end = data.find(')', marker) + 1;
        } else {
            int depth = 0;
            bool inString = false;
            size_t i = pos;
            for (; i < data.size(); ++i) {
                char c = data[i];
                if (inString) {
                    if (c == '\\') {
                        ++i;
                    } else if (c == '"') {
                        inString = false;
                    }
                } else if (c == '"') {
                    inString = true;
                } else if (c == '(') {
                    ++depth;
                } else if (c == ')' && --depth == 0) {
                    break;
                }
            }
            end = i + 1;
        }
        int base = id % 1000;
        std::string head = data.substr(digits, std::min<size_t>(200, end - digits));
        if (id < 4000 && (base == 10 || base == 12 || base == 13)) {
            size_t open = head.find('(');
            size_t close = head.find(')', open);
            std::istringstream fields(head.substr(open + 1, close - open - 1));
            std::vector<std::string> words;
            std::string word;
            while (fields >> word) {
                words.push_back(word);
            }
            int zoneId = static_cast<int>(strtol(words[0].c_str(), nullptr, 16));
            if (zoneId > 0) {
                WalkedZone zone;
                zone.kind = base == 10 ? 'n' : base == 12 ? 'c' : 'f';
                zone.id = zoneId;
                zone.first = static_cast<int>(strtol(words[1].c_str(), nullptr, 16));
                zone.last = static_cast<int>(strtol(words[2].c_str(), nullptr, 16));
                zone.type = words.size() > 4 ? atoi(words[4].c_str()) : -1;
                zones.push_back(zone);
            }
        } else if (id < 4000 && (base == 39 || base == 45)) {
            std::istringstream fields(head.substr(head.find('(') + 1));
            int zoneId;
            std::string kind, name;
            fields >> zoneId >> kind >> name;
            name = name.substr(0, name.find(')'));
            // A name goes to a zone already declared: a cell zone first.
            bool named = false;
            for (char wanted : {'c', 'f'}) {
                for (WalkedZone& zone : zones) {
                    if (!named && zone.kind == wanted && zone.id == zoneId) {
                        zone.name = name;
                        named = true;
                    }
                }
            }
        }
        pos = end;
    }
    return zones;
}

// ---- The scan of every sample ----------------------------------------------------------------------

class SampleScanTest : public CaseFileTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(SampleScanTest, ScanFindsEveryDeclaredZone) {
    const std::string plain = plainCopy(GetParam(), folder_);
    const std::string base = fs::path(plain).filename().string();
    CaseFile* caseFile = newCaseFile(plain);
    bool ok = CaseFileScan(caseFile, false, nullptr, nullptr);

    auto refused = refusedFiles().find(base);
    if (refused != refusedFiles().end()) {
        EXPECT_FALSE(ok);
        EXPECT_EQ(messageTexts(), std::vector<std::string>{refused->second});
        return;
    }
    ASSERT_TRUE(ok);
    EXPECT_TRUE(messageTexts().empty()) << ::testing::PrintToString(messageTexts());

    std::vector<WalkedZone> walked = walkZones(plain);
    std::vector<WalkedZone> nodes, cells, faces;
    for (const WalkedZone& zone : walked) {
        (zone.kind == 'n' ? nodes : zone.kind == 'c' ? cells : faces).push_back(zone);
    }
    ASSERT_FALSE(cells.empty());
    ASSERT_FALSE(faces.empty());
    ASSERT_EQ(caseFile->numNodeZones, static_cast<int>(nodes.size()));
    ASSERT_EQ(caseFile->numCellZones, static_cast<int>(cells.size()));
    ASSERT_EQ(caseFile->numFaceZones, static_cast<int>(faces.size()));
    int totalNodes = 0;
    for (size_t i = 0; i < nodes.size(); ++i) {
        EXPECT_EQ(caseFile->nodeZones[i].zoneId, nodes[i].id);
        EXPECT_EQ(caseFile->nodeZones[i].firstIndex, nodes[i].first);
        EXPECT_EQ(caseFile->nodeZones[i].lastIndex, nodes[i].last);
        totalNodes = std::max(totalNodes, nodes[i].last);
    }
    EXPECT_EQ(caseFile->totalNodes, totalNodes);
    for (size_t i = 0; i < cells.size(); ++i) {
        const CellZone& zone = caseFile->cellZones[i];
        EXPECT_EQ(zone.zoneId, cells[i].id);
        EXPECT_EQ(zone.firstIndex, cells[i].first);
        EXPECT_EQ(zone.lastIndex, cells[i].last);
        EXPECT_EQ(zone.elementType, cells[i].type);
        EXPECT_EQ(std::string(zone.name), cells[i].name);
        EXPECT_EQ(zone.hostZoneType, 255);
    }
    for (size_t i = 0; i < faces.size(); ++i) {
        const FaceZone& zone = caseFile->faceZones[i];
        EXPECT_EQ(zone.zoneId, faces[i].id);
        EXPECT_EQ(zone.firstIndex, faces[i].first);
        EXPECT_EQ(zone.lastIndex, faces[i].last);
        EXPECT_EQ(zone.faceType, faces[i].type);
        EXPECT_EQ(std::string(zone.name), faces[i].name);
        EXPECT_EQ(zone.childFaceIndex, -1);
        // Polygon zones are read at scan time, classic ones never.
        EXPECT_EQ(zone.polyNodes != nullptr, zone.faceType == 5);
        EXPECT_EQ(zone.faceNodes, nullptr);
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, SampleScanTest, ::testing::ValuesIn(sampleFiles()), testNameOf);
// Without the samples folder there is nothing to instantiate.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SampleScanTest);

// ---- Assembly of every classic sample, against VTK's reader ------------------------------------------

// The cells of one file as VTK's reader gives them.
struct OracleCells {
    std::vector<std::array<double, 3>> points;
    std::vector<std::vector<std::vector<int>>> blocks;  // block, cell, point ids
};

bool runOracle(const std::string& caseName, const fs::path& folder, OracleCells* cells, std::string* error) {
    std::string out = (folder / "vtk-cells.txt").string();
    std::string command = std::string("timeout 300 /usr/bin/python3 ") + FL_SOURCE_DIR +
                          "/tests/casefile/vtk_cells.py '" + caseName + "' '" + out + "' 2>" +
                          (folder / "vtk-stderr.txt").string();
    int status = std::system(command.c_str());
    if (status != 0) {
        *error = "the VTK reader script failed with status " + std::to_string(status);
        return false;
    }
    std::ifstream in(out);
    std::string word;
    size_t count = 0;
    in >> word >> count;
    cells->points.resize(count);
    for (auto& p : cells->points) {
        in >> p[0] >> p[1] >> p[2];
    }
    size_t blocks = 0;
    in >> word >> blocks;
    cells->blocks.resize(blocks);
    for (size_t b = 0; b < blocks; ++b) {
        size_t index = 0, numCells = 0;
        in >> word >> index >> numCells;
        cells->blocks[b].resize(numCells);
        for (auto& cell : cells->blocks[b]) {
            size_t n = 0;
            in >> n;
            cell.resize(n);
            for (int& id : cell) {
                in >> id;
            }
        }
    }
    if (!in) {
        *error = "the VTK reader's output could not be read";
        return false;
    }
    return true;
}

class SampleAssemblyTest : public CaseFileTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(SampleAssemblyTest, ClassicZonesAssembleAsVtkBuildsThem) {
    const std::string plain = plainCopy(GetParam(), folder_);
    const std::string base = fs::path(plain).filename().string();
    if (refusedFiles().count(base) != 0) {
        GTEST_SKIP() << "the scan refuses this file (see ScanFindsEveryDeclaredZone)";
    }
    CaseFile* caseFile = newCaseFile(plain);
    ASSERT_TRUE(CaseFileScan(caseFile, false, nullptr, nullptr));

    bool polygons = false;
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        polygons = polygons || caseFile->faceZones[i].faceType == 5;
    }
    for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
        polygons = polygons || caseFile->cellZones[i].elementType == 7;
    }
    if (polygons) {
        // Not a classic file: its zones are built as polyhedra, not assembled.
        for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
            EXPECT_EQ(CellZoneGetZoneType(&caseFile->cellZones[i], caseFile, false),
                      ZorZoneType_FEPolyhedron);
        }
        return;
    }

    CaseFileUse use(caseFile);
    AssembledCase assembled;
    ASSERT_TRUE(assembleAllZones(caseFile, &assembled));
    EXPECT_TRUE(messageTexts().empty()) << ::testing::PrintToString(messageTexts());

    for (const AssembledZone& zone : assembled.zones) {
        SCOPED_TRACE(zone.label);
        EXPECT_EQ(zone.unsetSlots, 0);
        if (zone.isCellZone) {
            EXPECT_TRUE(hasOneOrientation(caseFile, zone)) << orientationSummary(caseFile, zone);
        }
    }

    OracleCells oracle;
    std::string error;
    ASSERT_TRUE(runOracle(plain, folder_, &oracle, &error)) << error;
    std::vector<const AssembledZone*> cellZones;
    for (const AssembledZone& zone : assembled.zones) {
        if (zone.isCellZone) {
            cellZones.push_back(&zone);
        }
    }
    ASSERT_EQ(oracle.blocks.size(), cellZones.size());
    const double scale = coordinateScale(caseFile);
    for (size_t b = 0; b < cellZones.size(); ++b) {
        const AssembledZone& zone = *cellZones[b];
        SCOPED_TRACE(zone.label);
        ASSERT_EQ(oracle.blocks[b].size(), zone.numElements());
        size_t mismatches = 0;
        std::string first;
        for (size_t cell = 0; cell < zone.numElements(); ++cell) {
            std::vector<std::array<double, 3>> ours = zone.cornerSet(caseFile, cell);
            std::vector<std::array<double, 3>> theirs;
            for (int id : oracle.blocks[b][cell]) {
                theirs.push_back(oracle.points.at(static_cast<size_t>(id)));
            }
            if (!samePointSets(ours, theirs, scale)) {
                if (mismatches == 0) {
                    first = "cell " + std::to_string(cell + 1) + " differs";
                }
                ++mismatches;
            }
        }
        EXPECT_EQ(mismatches, 0u) << first;
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, SampleAssemblyTest, ::testing::ValuesIn(sampleFiles()), testNameOf);
// Without the samples folder there is nothing to instantiate.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SampleAssemblyTest);

}  // namespace
}  // namespace casefile_test
