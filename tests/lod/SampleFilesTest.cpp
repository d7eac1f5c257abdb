// Every real sample file, loaded through the loader's callback and pulled
// item by item through the host, against VTK's reader of the same format and
// against an independent reader of the data sections (the dump scripts of
// tests/casefile and tests/datafile).
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <set>
#include <sstream>

#include "datafile/DataFile.h"
#include "dataset/GridZones.h"
#include "dataset/VariableNames.h"
#include "lod/LodTestSupport.h"

namespace {

using namespace lodtest;
namespace fs = std::filesystem;

const char* const kPolytopeMessage =
    "Polygonal and polyhedral zones are not available in this version of the Fluent loader.";

struct Sample {
    std::string caseFile;  // under FL_SAMPLES_DIR
    std::string dataFile;  // under FL_SAMPLES_DIR; empty for a case alone
    bool vtkReadsData;     // VTK's reader ends in a crash on the case of the two-data-file pair
};

std::string samplesDir() {
    return FL_SAMPLES_DIR;
}

std::vector<Sample> samples() {
    std::vector<Sample> list;
    std::error_code error;
    if (!fs::is_directory(samplesDir(), error))
        return list;
    std::vector<std::string> cases;
    for (const auto& entry : fs::recursive_directory_iterator(samplesDir())) {
        const std::string name = entry.path().filename().string();
        auto ends = [&](const std::string& tail) {
            return name.size() > tail.size() &&
                   name.compare(name.size() - tail.size(), tail.size(), tail) == 0;
        };
        if (entry.is_regular_file() && (ends(".cas") || ends(".cas.gz") || ends(".msh") || ends(".msh.gz")))
            cases.push_back(fs::relative(entry.path(), samplesDir()).string());
    }
    std::sort(cases.begin(), cases.end());
    for (const std::string& c : cases)
        list.push_back({c, "", false});
    const std::string fff =
        "aviacheslav__AnsysFluent/"
        "TriesOfAeroDynHeatProj_VsO__proj_AD_heat_2024-03-13__proj1_files__dp0__FFF__Fluent__FFF-1";
    list.push_back({"ansys__example-data/pyfluent__adjoint_cylinder_tutorial__cylinder_tutorial.cas",
                    "ansys__example-data/pyfluent__adjoint_cylinder_tutorial__cylinder_tutorial.dat", true});
    list.push_back({"kimtaikee__QVTKDemo_data/airfoil.cas", "kimtaikee__QVTKDemo_data/airfoil.dat", true});
    list.push_back({"kimtaikee__QVTKDemo_data/elbow.cas", "kimtaikee__QVTKDemo_data/elbow.dat", true});
    list.push_back({"rezamarzban__Fluent-Simulations/Tube2D-Combustion__combustion.cas",
                    "rezamarzban__Fluent-Simulations/Tube2D-Combustion__combustion.dat", true});
    list.push_back({fff + ".cas.gz", fff + "-00000.dat.gz", false});
    list.push_back({fff + ".cas.gz", fff + "-00124.dat.gz", false});
    return list;
}

std::string testNameOf(const ::testing::TestParamInfo<Sample>& info) {
    std::string name =
        fs::path(info.param.dataFile.empty() ? info.param.caseFile : info.param.dataFile).filename().string();
    if (!info.param.dataFile.empty())
        name = "pair_" + name;
    for (char& c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c)))
            c = '_';
    }
    return name;
}

// The files the loader refuses by its own rules, with the first message.
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

// Writes a plain copy of a sample (uncompressed for .gz).
bool plainCopy(const std::string& source, const std::string& target) {
    gzFile in = gzopen(source.c_str(), "rb");
    if (in == nullptr)
        return false;
    FILE* out = std::fopen(target.c_str(), "wb");
    if (out == nullptr) {
        gzclose(in);
        return false;
    }
    char buffer[1 << 16];
    int n;
    while ((n = gzread(in, buffer, sizeof buffer)) > 0)
        std::fwrite(buffer, 1, static_cast<size_t>(n), out);
    gzclose(in);
    return std::fclose(out) == 0 && n == 0;
}

bool runScript(const std::string& command) {
    return std::system(("timeout 600 /usr/bin/python3 " + command + " > /dev/null 2>&1").c_str()) == 0;
}

using Point = std::array<float, 3>;

// The cells of VTK's reader: its global points and, per cell zone, the point ids of each cell.
struct VtkCells {
    std::vector<Point> points;
    std::vector<std::vector<std::vector<int64_t>>> blocks;
};

bool readVtkCells(const std::string& path, VtkCells* cells) {
    std::ifstream in(path);
    std::string word;
    size_t count = 0;
    in >> word >> count;
    cells->points.resize(count);
    for (Point& p : cells->points) {
        double x, y, z;
        in >> x >> y >> z;
        p = {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
    }
    size_t blocks = 0;
    in >> word >> blocks;
    cells->blocks.resize(blocks);
    for (auto& block : cells->blocks) {
        size_t index = 0, numCells = 0;
        in >> word >> index >> numCells;
        block.resize(numCells);
        for (auto& cell : block) {
            size_t n = 0;
            in >> n;
            cell.resize(n);
            for (int64_t& id : cell)
                in >> id;
        }
    }
    return static_cast<bool>(in);
}

// One item of a dump of fluent_arrays.py: its header words and its numbers.
struct DumpItem {
    std::vector<std::string> words;
    std::vector<double> values;
};

std::vector<DumpItem> readDump(const std::string& path) {
    std::vector<DumpItem> items;
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        const char first = line.empty() ? ' ' : line[0];
        if (std::isdigit(static_cast<unsigned char>(first)) || first == '-' || first == '.' ||
            line == "nan" || line == "inf") {
            if (!items.empty())
                items.back().values.push_back(std::strtod(line.c_str(), nullptr));
        } else {
            DumpItem item;
            std::istringstream words(line);
            std::string w;
            while (words >> w)
                item.words.push_back(w);
            items.push_back(item);
        }
    }
    return items;
}

bool sameFloat(double a, double b) {
    return static_cast<float>(a) == static_cast<float>(b) || (std::isnan(a) && std::isnan(b));
}

// A data section as the independent reader found it, in file order.
struct RawField {
    int32_t sectionId, fieldId, zoneId, dimension, first, last;
    bool shortSection;  // its numbers run into the end marker: the loader refuses it
    std::vector<double> values;
};

// The data sections the scan records: all, less each one behind a short
// section (a binary section whose numbers run two bytes or more into its end
// marker: the scan takes the next section's marker for its end).
std::vector<RawField> rawFields(const std::string& dumpPath) {
    std::vector<RawField> fields;
    bool swallowed = false;
    for (const DumpItem& item : readDump(dumpPath)) {
        if (item.words.empty() || item.words[0] != "field")
            continue;
        if (swallowed) {
            swallowed = false;
            continue;
        }
        RawField f;
        f.sectionId = std::stoi(item.words[1]);
        f.fieldId = std::stoi(item.words[2]);
        f.zoneId = std::stoi(item.words[3]);
        f.dimension = std::stoi(item.words[4]);
        f.first = std::stoi(item.words[5]);
        f.last = std::stoi(item.words[6]);
        f.shortSection = std::stoi(item.words[7]) <= -2;
        f.values = item.values;
        fields.push_back(f);
        swallowed = f.shortSection;
    }
    return fields;
}

class SampleFiles : public LoadTest, public ::testing::WithParamInterface<Sample> {
  protected:
    // The host zone of a Fluent zone id, and its table places; 0 when none.
    ZorIndex hostZoneOf(int32_t zoneId, const CellZone** cellZone, const FaceZone** faceZone) {
        const CaseFile* caseFile = lastCaseFile();
        *cellZone = nullptr;
        *faceZone = nullptr;
        for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
            if (caseFile->cellZones[i].zoneId == zoneId) {
                *cellZone = &caseFile->cellZones[i];
                return caseFile->cellZones[i].hostZoneNumber;
            }
        }
        for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
            if (caseFile->faceZones[i].zoneId == zoneId) {
                *faceZone = &caseFile->faceZones[i];
                return caseFile->faceZones[i].hostZoneNumber;
            }
        }
        return 0;
    }

    // The names of a field's variables, one per component, as the loader
    // builds them from the naming rules.
    std::vector<std::string> componentNames(const DataField& field) {
        std::vector<std::string> names;
        char base[kVariableNameSize];
        getVariableName(base, field.sectionId, field.fieldId, field.phase, lastDataFile(), lastCaseFile());
        const bool vectorFamily = isVectorFamilyFieldId(field.fieldId);
        for (int32_t c = 0; c < field.dimension; ++c) {
            if (vectorFamily && c > 0)
                getVariableName(base, field.sectionId, field.fieldId + c, field.phase, lastDataFile(),
                                lastCaseFile());
            names.push_back(field.dimension == 1 || vectorFamily
                                ? std::string(base)
                                : std::string(base) + "-" + std::to_string(c + 1));
        }
        return names;
    }

    const DataField* findField(int32_t sectionId, int32_t fieldId, int32_t zoneId) {
        const DataFile* dataFile = lastDataFile();
        for (int32_t i = 0; i < dataFile->numDataFields; ++i) {
            const DataField& f = dataFile->dataFields[i];
            if (f.sectionId == sectionId && f.fieldId == fieldId && f.zoneId == zoneId)
                return &f;
        }
        return nullptr;
    }

    void checkZones();
    void checkNodeMapsAndCoordinates(const VtkCells& vtk);
    void checkVariables(const std::vector<RawField>& raw);
    void checkValues(const std::vector<RawField>& raw, const std::string& vtkArraysPath);
    void checkEverythingUnloads();
};

// Zones: the cell zones, then the displayed boundaries, with their names, types and sizes.
void SampleFiles::checkZones() {
    const CaseFile* caseFile = lastCaseFile();
    ZorIndex expected = 0;
    for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
        const CellZone& zone = caseFile->cellZones[i];
        if (zone.zoneType == 32)
            continue;
        ++expected;
        SCOPED_TRACE("cell zone " + std::to_string(zone.zoneId));
        ASSERT_EQ(zone.hostZoneNumber, expected);
        if (zone.name[0] != '\0') {
            EXPECT_EQ(zoneName(expected), zone.name);
        }
        const int32_t first =
            zone.elementType != 0 ? zone.elementType : (zone.cellTypes != nullptr ? zone.cellTypes[0] : -1);
        const int32_t type = ZorUtilZoneGetType(expected);
        if (zone.elementType == 0) {
            EXPECT_EQ(type, first == 1 || first == 3 ? ZorZoneType_FEQuad : ZorZoneType_FEBrick);
        } else {
            const int32_t byElement[] = {-1,
                                         ZorZoneType_FETriangle,
                                         ZorZoneType_FETetra,
                                         ZorZoneType_FEQuad,
                                         ZorZoneType_FEBrick,
                                         ZorZoneType_FEBrick,
                                         ZorZoneType_FEBrick};
            EXPECT_EQ(type, byElement[zone.elementType]);
        }
        ZorIndex iMax = 0, jMax = 0, kMax = 0;
        ASSERT_TRUE(ZorUtilZoneGetInfo(expected, &iMax, &jMax, &kMax));
        EXPECT_EQ(jMax, zone.lastIndex - zone.firstIndex + 1);
        EXPECT_EQ(ZorUtilZoneGetParentZone(expected), 0);
    }
    const ZorIndex numCellZones = expected;
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        const FaceZone& zone = caseFile->faceZones[i];
        const bool displayed = zone.boundaryType < 1000 && zone.boundaryType != 2 &&
                               zone.boundaryType != 31 && zone.boundaryType != 38;
        SCOPED_TRACE("face zone " + std::to_string(zone.zoneId));
        if (!displayed) {
            EXPECT_EQ(zone.hostZoneNumber, 0);
            continue;
        }
        ++expected;
        ASSERT_EQ(zone.hostZoneNumber, expected);
        if (zone.name[0] != '\0') {
            EXPECT_EQ(zoneName(expected), zone.name);
        }
        const int32_t byFaceType[] = {ZorZoneType_FEQuad, -1, ZorZoneType_FELineSeg, ZorZoneType_FETriangle,
                                      ZorZoneType_FEQuad};
        EXPECT_EQ(ZorUtilZoneGetType(expected), byFaceType[zone.faceType]);
        ZorIndex iMax = 0, jMax = 0, kMax = 0;
        ASSERT_TRUE(ZorUtilZoneGetInfo(expected, &iMax, &jMax, &kMax));
        EXPECT_EQ(jMax, zone.lastIndex - zone.firstIndex + 1);
        // Every boundary of these files bounds a cell zone.
        EXPECT_GE(ZorUtilZoneGetParentZone(expected), 1);
        EXPECT_LE(ZorUtilZoneGetParentZone(expected), numCellZones);
    }
    EXPECT_EQ(ZorUtilDataSetGetNumZones(), expected);
}

// Node maps: complete, every zone node used; cells as VTK builds them, every
// coordinate one of VTK's points.
void SampleFiles::checkNodeMapsAndCoordinates(const VtkCells& vtk) {
    const CaseFile* caseFile = lastCaseFile();
    const bool threeD = caseFile->numDimensions == 3;
    const std::set<Point> vtkPoints(vtk.points.begin(), vtk.points.end());
    for (ZorIndex zone = 1; zone <= ZorUtilDataSetGetNumZones(); ++zone) {
        SCOPED_TRACE("zone " + std::to_string(zone) + " " + zoneName(zone));
        const std::vector<double> xs = values(zone, var("X")), ys = values(zone, var("Y"));
        const std::vector<double> zs = threeD ? values(zone, var("Z")) : std::vector<double>(xs.size(), 0.0);
        const auto elements = nodeMap(zone);
        ZorIndex iMax = 0, jMax = 0, kMax = 0;
        ASSERT_TRUE(ZorUtilZoneGetInfo(zone, &iMax, &jMax, &kMax));
        ASSERT_EQ(xs.size(), static_cast<size_t>(iMax));
        ASSERT_EQ(ys.size(), xs.size());
        ASSERT_EQ(zs.size(), xs.size());
        ASSERT_EQ(elements.size(), static_cast<size_t>(jMax));
        std::vector<bool> used(static_cast<size_t>(iMax), false);
        size_t badSlots = 0;
        for (const auto& element : elements) {
            for (int64_t node : element) {
                if (node < 1 || node > iMax) {
                    ++badSlots;
                } else {
                    used[static_cast<size_t>(node - 1)] = true;
                }
            }
        }
        EXPECT_EQ(badSlots, 0u) << "slots unset or out of the zone's nodes";
        EXPECT_EQ(std::count(used.begin(), used.end(), false), 0) << "zone nodes no element uses";
        auto point = [&](int64_t node) {
            const size_t i = static_cast<size_t>(node - 1);
            return Point{static_cast<float>(xs[i]), static_cast<float>(ys[i]), static_cast<float>(zs[i])};
        };
        size_t strangers = 0;
        for (ZorIndex n = 1; n <= iMax; ++n)
            strangers += vtkPoints.count(point(n)) == 0 ? 1 : 0;
        EXPECT_EQ(strangers, 0u) << "zone nodes that are no point of VTK's";

        // Cell zones: VTK's block of the same place, cell by cell.
        const CellZone* cellZone = nullptr;
        for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
            if (caseFile->cellZones[i].hostZoneNumber == zone)
                cellZone = &caseFile->cellZones[i];
        }
        if (cellZone == nullptr || badSlots != 0)
            continue;
        const size_t block = static_cast<size_t>(cellZone - caseFile->cellZones);
        ASSERT_LT(block, vtk.blocks.size());
        ASSERT_EQ(vtk.blocks[block].size(), elements.size());
        size_t differing = 0;
        for (size_t e = 0; e < elements.size(); ++e) {
            std::set<Point> ours, theirs;
            for (int64_t node : elements[e])
                ours.insert(point(node));
            for (int64_t id : vtk.blocks[block][e])
                theirs.insert(vtk.points[static_cast<size_t>(id)]);
            if (ours != theirs && ++differing <= 3) {
                ADD_FAILURE() << "cell " << e + 1 << " differs from VTK's";
            }
        }
        EXPECT_EQ(differing, 0u);
    }
}

// Variables: the coordinates, then the fields' variables in the order of
// their zones in the case file and inside a zone in data file order.
void SampleFiles::checkVariables(const std::vector<RawField>& raw) {
    const CaseFile* caseFile = lastCaseFile();
    struct Placed {
        int64_t zonePosition;
        size_t order;
        const RawField* field;
    };
    std::vector<Placed> placed;
    for (size_t i = 0; i < raw.size(); ++i) {
        const RawField& f = raw[i];
        const CellZone* cellZone;
        const FaceZone* faceZone;
        if (f.first < 0 || f.fieldId == 59 || f.sectionId % 1000 == 314 ||
            hostZoneOf(f.zoneId, &cellZone, &faceZone) == 0)
            continue;
        placed.push_back({cellZone != nullptr ? cellZone->filePosition : faceZone->filePosition, i, &f});
    }
    std::stable_sort(placed.begin(), placed.end(),
                     [](const Placed& a, const Placed& b) { return a.zonePosition < b.zonePosition; });
    std::vector<std::string> expected = {"X", "Y"};
    if (caseFile->numDimensions == 3)
        expected.push_back("Z");
    for (const Placed& p : placed) {
        const DataField* field = findField(p.field->sectionId, p.field->fieldId, p.field->zoneId);
        ASSERT_NE(field, nullptr);
        for (const std::string& name : componentNames(*field)) {
            if (std::find(expected.begin(), expected.end(), name) == expected.end())
                expected.push_back(name);
        }
    }
    EXPECT_EQ(variableNames(), expected);
}

// Values: every variable of every zone, against the independent reader; cell
// zones also against VTK's arrays.
void SampleFiles::checkValues(const std::vector<RawField>& raw, const std::string& vtkArraysPath) {
    size_t compared = 0;
    std::set<std::pair<ZorIndex, ZorIndex>> checked;
    std::set<std::pair<int32_t, int32_t>> owners;  // (zone id, field id) whose values a variable shows
    for (const RawField& f : raw) {
        const CellZone* cellZone;
        const FaceZone* faceZone;
        const ZorIndex zone = hostZoneOf(f.zoneId, &cellZone, &faceZone);
        if (f.first < 0 || f.fieldId == 59 || f.sectionId % 1000 == 314 || zone == 0)
            continue;
        const DataField* field = findField(f.sectionId, f.fieldId, f.zoneId);
        ASSERT_NE(field, nullptr);
        SCOPED_TRACE("field " + std::to_string(f.fieldId) + " in zone " + std::to_string(f.zoneId));
        const std::vector<std::string> names = componentNames(*field);
        const int32_t count = f.last - f.first + 1;
        const int32_t type = ZorUtilZoneGetType(zone);
        // Wall fluxes are divided by the area where the zone is no volume zone.
        const bool scaled = (f.fieldId >= 19 && f.fieldId <= 21) && type != ZorZoneType_FETetra &&
                            type != ZorZoneType_FEBrick;
        const bool componentMajor = isVectorFamilyFieldId(f.fieldId) || f.fieldId == 970;
        for (int32_t c = 0; c < f.dimension; ++c) {
            const ZorIndex variable = var(names[static_cast<size_t>(c)]);
            ASSERT_NE(variable, 0) << names[static_cast<size_t>(c)];
            if (!checked.insert({zone, variable}).second)
                continue;  // a later field of the same name in the zone: the variable keeps the first
            owners.insert({f.zoneId, f.fieldId});
            const std::vector<double> ours = values(zone, variable);
            if (f.shortSection) {
                EXPECT_TRUE(ours.empty()) << "a section that runs into its end marker loads";
                continue;
            }
            ASSERT_EQ(ours.size(), static_cast<size_t>(count));
            if (scaled)
                continue;
            size_t differing = 0;
            for (int32_t e = 0; e < count; ++e) {
                const double theirs = componentMajor ? f.values[static_cast<size_t>(c) * count + e]
                                                     : f.values[static_cast<size_t>(e) * f.dimension + c];
                if (!sameFloat(ours[static_cast<size_t>(e)], theirs) && ++differing <= 3) {
                    ADD_FAILURE() << names[static_cast<size_t>(c)] << " element " << e + 1 << ": "
                                  << ours[static_cast<size_t>(e)] << " against " << theirs;
                }
            }
            EXPECT_EQ(differing, 0u);
            ++compared;
        }
    }
    EXPECT_GT(compared, 0u);
    // A short section fails without a message of its own: nothing was said.
    EXPECT_TRUE(shown().empty()) << testing::PrintToString(shown());

    if (vtkArraysPath.empty())
        return;
    // VTK lists the distinct field ids of the cell zones in data file order,
    // leaving out fields of two components; its k-th name is the k-th id.
    const CaseFile* caseFile = lastCaseFile();
    std::vector<int32_t> listed;
    for (const RawField& f : raw) {
        const CellZone* cellZone;
        const FaceZone* faceZone;
        hostZoneOf(f.zoneId, &cellZone, &faceZone);
        if (cellZone != nullptr && f.dimension != 2 && f.sectionId % 1000 == 300 &&
            std::find(listed.begin(), listed.end(), f.fieldId) == listed.end())
            listed.push_back(f.fieldId);
    }
    const std::vector<DumpItem> items = readDump(vtkArraysPath);
    std::vector<std::string> readerNames;
    for (const DumpItem& item : items) {
        if (item.words[0] == "name")
            readerNames.push_back(item.words.size() > 2 ? item.words[2] : "-");
    }
    ASSERT_EQ(readerNames.size(), listed.size());
    size_t vtkCompared = 0;
    std::map<std::pair<int, std::string>, int> seenInBlock;
    for (const DumpItem& item : items) {
        if (item.words[0] != "array")
            continue;
        const int block = std::stoi(item.words[1]);
        const std::string name = item.words[2];
        const int components = std::stoi(item.words[3]);
        const int tuples = std::stoi(item.words[4]);
        const int occurrence = seenInBlock[{block, name}]++;
        int seen = 0;
        int32_t fieldId = -1;
        for (size_t k = 0; k < readerNames.size(); ++k) {
            if (readerNames[k] == name && seen++ == occurrence) {
                fieldId = listed[k];
                break;
            }
        }
        ASSERT_NE(fieldId, -1) << name;
        ASSERT_LT(block, caseFile->numCellZones);
        const CellZone& zone = caseFile->cellZones[block];
        const DataField* field = nullptr;
        for (const RawField& f : raw) {
            if (f.zoneId == zone.zoneId && f.fieldId == fieldId && f.sectionId % 1000 == 300) {
                field = findField(f.sectionId, f.fieldId, f.zoneId);
                if (f.shortSection)
                    field = nullptr;
                break;
            }
        }
        if (field == nullptr || owners.count({zone.zoneId, fieldId}) == 0)
            continue;  // a section the loader refuses, or one whose name an earlier field has
        SCOPED_TRACE("VTK's " + name + " in block " + std::to_string(block));
        ASSERT_EQ(components, field->dimension);
        ASSERT_EQ(tuples, field->count);
        const std::vector<std::string> names = componentNames(*field);
        for (int c = 0; c < components; ++c) {
            const std::vector<double> ours = values(zone.hostZoneNumber, var(names[static_cast<size_t>(c)]));
            ASSERT_EQ(ours.size(), static_cast<size_t>(tuples));
            size_t differing = 0;
            for (int t = 0; t < tuples; ++t) {
                const double theirs = item.values[static_cast<size_t>(t) * components + c];
                if (!sameFloat(ours[static_cast<size_t>(t)], theirs) && ++differing <= 3) {
                    ADD_FAILURE() << names[static_cast<size_t>(c)] << " cell " << t + 1 << ": "
                                  << ours[static_cast<size_t>(t)] << " against VTK's " << theirs;
                }
            }
            EXPECT_EQ(differing, 0u);
            ++vtkCompared;
        }
    }
    EXPECT_GT(vtkCompared, 0u);
}

// Once every item is let go, the case holds no use and no bulk array, and no
// field holds values.
void SampleFiles::checkEverythingUnloads() {
    minihost::unloadAll();
    EXPECT_EQ(minihost::loadedBytes(), 0u);
    const CaseFile* caseFile = lastCaseFile();
    EXPECT_EQ(caseFile->useCount, 0);
    EXPECT_EQ(caseFile->nodePositions, nullptr);
    for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
        EXPECT_EQ(caseFile->cellZones[i].newToOldNodes, nullptr);
        EXPECT_EQ(caseFile->cellZones[i].oldToNewNodes, nullptr);
    }
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        EXPECT_EQ(caseFile->faceZones[i].faceCells, nullptr);
        EXPECT_EQ(caseFile->faceZones[i].faceNodes, nullptr);
        EXPECT_EQ(caseFile->faceZones[i].zoneNodes, nullptr);
    }
    if (const DataFile* dataFile = lastDataFile()) {
        for (int32_t i = 0; i < dataFile->numDataFields; ++i) {
            EXPECT_EQ(dataFile->dataFields[i].values, nullptr);
            EXPECT_EQ(dataFile->dataFields[i].loadedComponents, 0);
        }
    }
}

TEST_P(SampleFiles, LoadsAndPullsAsVtksReaderReadsThem) {
    const Sample& sample = GetParam();
    const std::string base = fs::path(sample.caseFile).filename().string();
    // Plain copies with one base name, as VTK's reader wants a pair.
    std::string stem = base.substr(0, base.find('.'));
    const std::string casePath = path(stem + ".cas");
    ASSERT_TRUE(plainCopy(samplesDir() + "/" + sample.caseFile, casePath));
    std::string dataPath;
    if (!sample.dataFile.empty()) {
        dataPath = path(stem + ".dat");
        ASSERT_TRUE(plainCopy(samplesDir() + "/" + sample.dataFile, dataPath));
    }

    const bool loaded = dataPath.empty() ? loadCase(casePath) : loadPair(casePath, dataPath);
    const auto refused = refusedFiles().find(base);
    if (refused != refusedFiles().end()) {
        EXPECT_FALSE(loaded);
        EXPECT_EQ(shown(), (std::vector<Shown>{{"error", refused->second},
                                               {"error", "Error loading file " + casePath}}));
        return;
    }
    if (base.find("Static_Mixer_Parameters") != std::string::npos) {
        EXPECT_FALSE(loaded);
        EXPECT_EQ(shown(), (std::vector<Shown>{{"error", kPolytopeMessage},
                                               {"error", "Error loading file " + casePath}}));
        return;
    }
    ASSERT_TRUE(loaded) << testing::PrintToString(shown());
    ASSERT_TRUE(shown().empty()) << testing::PrintToString(shown());
    ASSERT_NO_FATAL_FAILURE(checkZones());

    VtkCells vtk;
    const std::string cellsDump = path("vtk-cells.txt");
    ASSERT_TRUE(runScript(std::string(FL_SOURCE_DIR) + "/tests/casefile/vtk_cells.py '" + casePath + "' '" +
                          cellsDump + "'"))
        << "VTK's reader (python3-vtk9) failed on " << casePath;
    ASSERT_TRUE(readVtkCells(cellsDump, &vtk));
    checkNodeMapsAndCoordinates(vtk);

    if (!dataPath.empty()) {
        const std::string rawDump = path("raw.txt");
        ASSERT_TRUE(runScript(std::string(FL_SOURCE_DIR) + "/tests/datafile/fluent_arrays.py raw '" +
                              dataPath + "' '" + rawDump + "'"));
        const std::vector<RawField> raw = rawFields(rawDump);
        ASSERT_FALSE(raw.empty());
        checkVariables(raw);
        std::string arraysDump;
        if (sample.vtkReadsData) {
            arraysDump = path("vtk-arrays.txt");
            ASSERT_TRUE(runScript(std::string(FL_SOURCE_DIR) + "/tests/datafile/fluent_arrays.py vtk '" +
                                  casePath + "' '" + arraysDump + "'"));
        }
        checkValues(raw, arraysDump);
    }
    checkEverythingUnloads();
}

INSTANTIATE_TEST_SUITE_P(Samples, SampleFiles, ::testing::ValuesIn(samples()), testNameOf);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SampleFiles);

}  // namespace
