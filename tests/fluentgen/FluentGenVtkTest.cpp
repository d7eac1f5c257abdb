// Files written by fluentgen, read by VTK's Fluent reader (Debian's python3-vtk9,
// through tests/fluentgen/vtk_read.py) and compared with the model: zones,
// cell types, the nodes of every cell, their coordinates, the orientation VTK
// reconstructs, and every cell value.
//
// VTK reads ASCII and binary files in both byte orders with 4-byte integers,
// without gzip; the variants it cannot read are checked by the tests' own
// reader in FluentGenFileTest.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>

#include "Checks.h"
#include "tools/fluentgen/FluentGen.h"

using fluentgen::ByteOrder;
using fluentgen::Encoding;
using fluentgen::MeshKind;
using fluentgen::Model;
using fluentgen::Spec;

namespace {

const char* kPython = "/usr/bin/python3";

bool vtkAvailable() {
    std::string cmd = std::string(kPython) + " -c 'import vtk' >/dev/null 2>&1";
    return std::system(cmd.c_str()) == 0;
}

struct VtkCell {
    int type = 0;
    double measure = 0.0;
    std::vector<int64_t> points;
};

struct VtkArray {
    std::string name;
    int components = 0;
    std::vector<double> values;  // tuple after tuple
};

struct VtkBlock {
    std::vector<VtkCell> cells;
    std::map<int64_t, fluentgen::Vec3> points;
    std::vector<VtkArray> arrays;
};

using VtkOutput = std::map<std::string, std::vector<VtkBlock>>;

// Runs the helper on all case files at once and parses what it prints.
VtkOutput readWithVtk(const std::vector<std::string>& cases) {
    std::string cmd = std::string(kPython) + " " + FL_SOURCE_DIR + "/tests/fluentgen/vtk_read.py";
    for (const std::string& c : cases) {
        cmd += " '" + c + "'";
    }
    cmd += " 2>/dev/null";
    FILE* p = popen(cmd.c_str(), "r");
    EXPECT_NE(p, nullptr);
    std::string text;
    char buf[1 << 16];
    size_t n;
    while (p && (n = fread(buf, 1, sizeof buf, p)) > 0) {
        text.append(buf, n);
    }
    int rc = p ? pclose(p) : -1;
    EXPECT_EQ(rc, 0) << "the VTK helper failed";
    VtkOutput out;
    std::istringstream in(text);
    std::string line, file;
    while (std::getline(in, line)) {
        std::istringstream l(line);
        std::string tag;
        l >> tag;
        if (tag == "FILE") {
            l >> file;
            out[file];
        } else if (tag == "BLOCK") {
            out[file].emplace_back();
        } else if (tag == "CELL") {
            VtkCell c;
            int count;
            std::string m;
            l >> c.type >> m >> count;
            c.measure = std::strtod(m.c_str(), nullptr);
            c.points.resize(static_cast<size_t>(count));
            for (int64_t& id : c.points) {
                l >> id;
            }
            out[file].back().cells.push_back(c);
        } else if (tag == "POINT") {
            int64_t id;
            fluentgen::Vec3 v;
            l >> id >> v.x >> v.y >> v.z;
            out[file].back().points[id] = v;
        } else if (tag == "ARRAY") {
            VtkArray a;
            int64_t tuples;
            l >> a.name >> a.components >> tuples;
            for (int64_t t = 0; t < tuples * a.components; ++t) {
                double v;
                in >> v;
                a.values.push_back(v);
            }
            out[file].back().arrays.push_back(a);
        }
    }
    return out;
}

int vtkType(int fluentType) {
    switch (fluentType) {
        case 1:
            return 5;  // triangle
        case 2:
            return 10;  // tetrahedron
        case 3:
            return 9;  // quadrilateral
        case 4:
            return 12;  // hexahedron
        case 5:
            return 14;  // pyramid
        case 6:
            return 13;  // wedge
        default:
            return 41;  // convex point set, VTK's form of polygons and polyhedra
    }
}

// Field ids of the names VTK gives the fields these tests write.
int fieldOfVtkName(const std::string& name) {
    static const std::map<std::string, int> ids = {
        {"PRESSURE", 1},     {"TEMPERATURE", 3},  {"TKE", 5},         {"TED", 6},  {"BODY_FORCES", 15},
        {"DENSITY", 101},    {"MU_LAM", 102},     {"MU_TURB", 103},   {"CP", 104}, {"KTC", 105},
        {"X_VELOCITY", 111}, {"Y_VELOCITY", 112}, {"Z_VELOCITY", 113}};
    auto it = ids.find(name);
    return it == ids.end() ? -1 : it->second;
}

void compare(const Model& m, const std::vector<VtkBlock>& blocks) {
    const std::vector<fluentgen::CellZoneInfo>& zones = m.cellZones();
    ASSERT_EQ(blocks.size(), zones.size());
    bool singleNodes = m.spec().encoding == Encoding::BinarySingle;
    std::vector<fluentgen::DataSectionInfo> sections = m.dataSections();
    for (size_t b = 0; b < blocks.size(); ++b) {
        const VtkBlock& block = blocks[b];
        const fluentgen::CellZoneInfo& z = zones[b];
        SCOPED_TRACE("zone " + std::to_string(z.id));
        ASSERT_EQ(static_cast<int64_t>(block.cells.size()), z.last - z.first + 1);
        for (size_t k = 0; k < block.cells.size(); ++k) {
            int64_t cell = z.first + static_cast<int64_t>(k);
            const VtkCell& c = block.cells[k];
            int type = m.cellType(cell);
            ASSERT_EQ(c.type, vtkType(type)) << "cell " << cell;
            std::vector<int64_t> got;
            for (int64_t p : c.points) {
                got.push_back(p + 1);
            }
            std::vector<int64_t> want = m.cellNodes(cell);
            if (c.type == 41) {
                // A convex point set lists every node once.
                ASSERT_EQ(got.size(), want.size()) << "cell " << cell;
            }
            std::sort(got.begin(), got.end());
            got.erase(std::unique(got.begin(), got.end()), got.end());
            std::sort(want.begin(), want.end());
            ASSERT_EQ(got, want) << "cell " << cell;
            // VTK turns real files' wedges inside out and every other shape
            // outward; these files must come out the same.
            if (c.type != 41) {
                if (c.type == 13) {
                    ASSERT_LT(c.measure, 0.0) << "cell " << cell;
                } else {
                    ASSERT_GT(c.measure, 0.0) << "cell " << cell;
                }
            }
        }
        for (const auto& p : block.points) {
            fluentgen::Vec3 want = m.node(p.first + 1);
            double tol = (singleNodes ? 1e-6 : 1e-7) *
                         (1.0 + std::fabs(want.x) + std::fabs(want.y) + std::fabs(want.z));
            ASSERT_NEAR(p.second.x, want.x, tol) << "node " << p.first + 1;
            ASSERT_NEAR(p.second.y, want.y, tol) << "node " << p.first + 1;
            ASSERT_NEAR(p.second.z, want.z, tol) << "node " << p.first + 1;
        }
        // Every cell field VTK knows by name, value by value.
        size_t expected = 0;
        for (const fluentgen::DataSectionInfo& d : sections) {
            if (d.zoneId == z.id && !d.faceZone && !d.additional && fieldOfVtkName("") != d.fieldId &&
                (d.dimension == 1 || d.dimension == 3)) {
                ++expected;
            }
        }
        EXPECT_EQ(block.arrays.size(), expected);
        for (const VtkArray& a : block.arrays) {
            int fid = fieldOfVtkName(a.name);
            ASSERT_GT(fid, 0) << a.name;
            const fluentgen::DataSectionInfo* d = nullptr;
            for (const fluentgen::DataSectionInfo& s : sections) {
                if (s.zoneId == z.id && s.fieldId == fid && !s.faceZone) {
                    d = &s;
                }
            }
            ASSERT_NE(d, nullptr) << a.name;
            ASSERT_EQ(a.components, d->dimension) << a.name;
            ASSERT_EQ(static_cast<int64_t>(a.values.size()), d->count * d->dimension) << a.name;
            for (int64_t e = 0; e < d->count; ++e) {
                for (int c = 0; c < d->dimension; ++c) {
                    ASSERT_EQ(a.values[static_cast<size_t>(e * d->dimension + c)], m.dataValue(*d, e, c))
                        << a.name << " element " << e << " component " << c;
                }
            }
        }
    }
}

struct Variant {
    std::string name;
    Spec spec;
};

std::string kindName(MeshKind k) {
    static const char* names[] = {"hex",  "tet",  "wedge", "pyramid", "mixed",
                                  "poly", "quad", "tri",   "mixed2d", "polygon"};
    return names[static_cast<int>(k)];
}

bool is2D(MeshKind k) {
    return k == MeshKind::Quad || k == MeshKind::Tri || k == MeshKind::Mixed2D || k == MeshKind::Polygonal;
}

void runVariants(const std::vector<Variant>& variants, const std::string& tag) {
    if (!vtkAvailable()) {
        GTEST_SKIP() << "/usr/bin/python3 cannot import vtk";
    }
    std::string dir = fgtest::tempDir(tag);
    std::vector<std::string> cases;
    for (const Variant& v : variants) {
        fluentgen::WrittenFiles w = fluentgen::writeFiles(v.spec, dir, v.name);
        cases.push_back(w.caseFiles.at(0));
    }
    VtkOutput out = readWithVtk(cases);
    for (size_t i = 0; i < variants.size(); ++i) {
        SCOPED_TRACE(variants[i].name);
        ASSERT_TRUE(out.count(cases[i])) << "VTK gave nothing for " << cases[i];
        Model m(variants[i].spec);
        compare(m, out[cases[i]]);
    }
    fgtest::removeTree(dir);
}

Spec base(MeshKind kind) {
    Spec s;
    s.mesh = kind;
    s.cells =
        is2D(kind) ? std::array<int, 3>{4, 3, 1} : std::array<int, 3>{3, 2, kind == MeshKind::Mixed ? 6 : 2};
    s.fields = fluentgen::standardFields(4, is2D(kind) ? 2 : 3);
    s.fields.push_back(fluentgen::FieldSpec{15, 3, 1});  // a vector VTK reads element after element
    return s;
}

}  // namespace

TEST(FluentGenVtk, EveryMeshKindInEveryEncodingAndByteOrder) {
    std::vector<Variant> variants;
    const MeshKind kinds[] = {MeshKind::Hex,     MeshKind::Tet,        MeshKind::Wedge, MeshKind::Pyramid,
                              MeshKind::Mixed,   MeshKind::Polyhedral, MeshKind::Quad,  MeshKind::Tri,
                              MeshKind::Mixed2D, MeshKind::Polygonal};
    const std::pair<Encoding, const char*> encodings[] = {{Encoding::Ascii, "ascii"},
                                                          {Encoding::BinarySingle, "single"},
                                                          {Encoding::BinaryDouble, "double"},
                                                          {Encoding::BinaryMixed, "mixed"}};
    for (MeshKind k : kinds) {
        for (const auto& e : encodings) {
            for (ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
                Spec s = base(k);
                s.encoding = e.first;
                s.byteOrder = order;
                variants.push_back(
                    {kindName(k) + "-" + e.second + (order == ByteOrder::Big ? "-big" : "-little"), s});
            }
        }
    }
    runVariants(variants, "vtk-kinds");
}

TEST(FluentGenVtk, HangingNodesZonesExtrasAndFormVariants) {
    std::vector<Variant> variants;
    for (MeshKind k : {MeshKind::Hex, MeshKind::Quad}) {
        for (Encoding e : {Encoding::Ascii, Encoding::BinaryDouble, Encoding::BinaryMixed}) {
            Spec s = base(k);
            s.cells = {4, 4, 3};
            s.hanging = true;
            s.encoding = e;
            s.byteOrder = e == Encoding::BinaryDouble ? ByteOrder::Big : ByteOrder::Little;
            variants.push_back({"hanging-" + kindName(k) + "-" + std::to_string(static_cast<int>(e)), s});
            Spec x = s;
            x.extraSections = true;
            variants.push_back(
                {"hanging-extra-" + kindName(k) + "-" + std::to_string(static_cast<int>(e)), x});
        }
    }
    for (std::array<int, 3> c : {std::array<int, 3>{4, 2, 2}, std::array<int, 3>{3, 3, 1}}) {
        for (Encoding e : {Encoding::Ascii, Encoding::BinaryMixed}) {
            Spec s = base(MeshKind::Mixed);
            s.cells = c;
            s.encoding = e;
            variants.push_back(
                {"mixed-columns-" + std::to_string(c[2]) + "-" + std::to_string(static_cast<int>(e)), s});
        }
    }
    for (MeshKind k : {MeshKind::Hex, MeshKind::Tet, MeshKind::Polyhedral, MeshKind::Quad, MeshKind::Tri}) {
        for (Encoding e : {Encoding::Ascii, Encoding::BinarySingle}) {
            Spec s = base(k);
            s.extraSections = true;
            s.encoding = e;
            variants.push_back({"extra-" + kindName(k) + "-" + std::to_string(static_cast<int>(e)), s});
            Spec z = base(k);
            z.cells[0] = 6;
            z.cellZoneTypes = {1, 17, 32};
            z.zoneNames = fluentgen::ZoneNames::Varied;
            z.boundaryTypes = {10, 36, 3, 7, 9, 4};
            z.encoding = e;
            variants.push_back({"zones-" + kindName(k) + "-" + std::to_string(static_cast<int>(e)), z});
            Spec f = base(k);
            f.mixedCellBodies = true;
            f.mixedFaceTypes = true;
            f.polygonFaceType = 0;
            f.nodeSections = 3;
            f.encoding = e;
            variants.push_back({"forms-" + kindName(k) + "-" + std::to_string(static_cast<int>(e)), f});
        }
    }
    runVariants(variants, "vtk-variants");
}
