// Files written by fluentgen, read back by the tests' own parser and compared
// with the model and with the mesh the file itself describes.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <set>

#include "Checks.h"
#include "FluentFileParser.h"
#include "tools/fluentgen/FluentGen.h"

using fluentgen::ByteOrder;
using fluentgen::Encoding;
using fluentgen::MeshKind;
using fluentgen::Model;
using fluentgen::Spec;

namespace {

const MeshKind kKinds[] = {MeshKind::Hex,     MeshKind::Tet,        MeshKind::Wedge, MeshKind::Pyramid,
                           MeshKind::Mixed,   MeshKind::Polyhedral, MeshKind::Quad,  MeshKind::Tri,
                           MeshKind::Mixed2D, MeshKind::Polygonal};
const Encoding kEncodings[] = {Encoding::Ascii, Encoding::BinarySingle, Encoding::BinaryDouble,
                               Encoding::BinaryMixed};

bool is2D(MeshKind k) {
    return k == MeshKind::Quad || k == MeshKind::Tri || k == MeshKind::Mixed2D || k == MeshKind::Polygonal;
}

Spec smallSpec(MeshKind kind) {
    Spec s;
    s.mesh = kind;
    s.cells =
        is2D(kind) ? std::array<int, 3>{3, 2, 1} : std::array<int, 3>{2, 3, kind == MeshKind::Mixed ? 6 : 2};
    s.fields = fluentgen::standardFields(3, is2D(kind) ? 2 : 3);
    return s;
}

void checkCase(const Spec& s) {
    Model m(s);
    fgtest::ParsedFile f = fgtest::parseFluent(fgtest::inflateIfGzip(fluentgen::caseText(s)));
    fgtest::expectCaseMatchesModel(m, f);
    fgtest::expectMeshValid(fgtest::meshFromFile(f), m);
}

void checkData(const Spec& s, int step = 0) {
    Model m(s);
    fgtest::ParsedFile f = fgtest::parseFluent(fgtest::inflateIfGzip(fluentgen::dataText(s, step)));
    fgtest::expectDataMatchesModel(m, f, step);
}

std::string name(MeshKind k) {
    static const char* names[] = {"hex",  "tet",  "wedge", "pyramid", "mixed",
                                  "poly", "quad", "tri",   "mixed2d", "polygon"};
    return names[static_cast<int>(k)];
}

}  // namespace

TEST(FluentGenFiles, EveryMeshKindEncodingByteOrderAndIntegerSizeMatchesTheModel) {
    for (MeshKind kind : kKinds) {
        for (Encoding e : kEncodings) {
            for (ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
                for (int intSize : {4, 8}) {
                    Spec s = smallSpec(kind);
                    s.encoding = e;
                    s.byteOrder = order;
                    s.intSize = intSize;
                    SCOPED_TRACE(name(kind) + " encoding " + std::to_string(static_cast<int>(e)) +
                                 (order == ByteOrder::Big ? " big" : " little") + " int " +
                                 std::to_string(intSize));
                    checkCase(s);
                    checkData(s);
                    if (HasFatalFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

TEST(FluentGenFiles, MeshKindsHaveTheirCellTypes) {
    struct Want {
        MeshKind kind;
        std::set<int> types;
        int cellsPerBlock;
    };
    const Want wants[] = {{MeshKind::Hex, {4}, 1},        {MeshKind::Tet, {2}, 6},
                          {MeshKind::Wedge, {6}, 2},      {MeshKind::Pyramid, {5}, 6},
                          {MeshKind::Polyhedral, {7}, 1}, {MeshKind::Quad, {3}, 1},
                          {MeshKind::Tri, {1}, 2},        {MeshKind::Polygonal, {7}, 1}};
    for (const Want& w : wants) {
        Spec s = smallSpec(w.kind);
        Model m(s);
        int blocks = s.cells[0] * s.cells[1] * (is2D(w.kind) ? 1 : s.cells[2]);
        EXPECT_EQ(m.cellCount(), int64_t(blocks) * w.cellsPerBlock) << name(w.kind);
        std::set<int> types;
        for (int64_t c = 1; c <= m.cellCount(); ++c) {
            types.insert(m.cellType(c));
        }
        EXPECT_EQ(types, w.types) << name(w.kind);
        EXPECT_EQ(m.cellZones()[0].elementType, *w.types.begin()) << name(w.kind);
    }
    // The mixed kinds hold every shape of their dimension in one mixed zone.
    Model mixed(smallSpec(MeshKind::Mixed));
    std::set<int> t3;
    for (int64_t c = 1; c <= mixed.cellCount(); ++c) {
        t3.insert(mixed.cellType(c));
    }
    EXPECT_EQ(t3, (std::set<int>{2, 4, 5, 6}));
    EXPECT_EQ(mixed.cellZones()[0].elementType, 0);
    // One or two layers: the cut changes by column, and all four shapes still appear.
    for (std::array<int, 3> c :
         {std::array<int, 3>{3, 1, 1}, std::array<int, 3>{2, 2, 2}, std::array<int, 3>{4, 3, 2}}) {
        Spec s = smallSpec(MeshKind::Mixed);
        s.cells = c;
        Model few(s);
        std::set<int> t;
        for (int64_t cell = 1; cell <= few.cellCount(); ++cell) {
            t.insert(few.cellType(cell));
        }
        EXPECT_EQ(t, (std::set<int>{2, 4, 5, 6})) << c[0] << "x" << c[1] << "x" << c[2];
        checkCase(s);
        checkData(s);
    }
    Model mixed2(smallSpec(MeshKind::Mixed2D));
    std::set<int> t2;
    for (int64_t c = 1; c <= mixed2.cellCount(); ++c) {
        t2.insert(mixed2.cellType(c));
    }
    EXPECT_EQ(t2, (std::set<int>{1, 3}));
    // Faces: triangles and quadrilaterals mix in the 3D mixed zone; polygons carry counts.
    std::set<int> faceTypes;
    for (const fluentgen::FaceZoneInfo& z : mixed.faceZones()) {
        faceTypes.insert(z.faceType);
    }
    EXPECT_TRUE(faceTypes.count(0));
    Model poly(smallSpec(MeshKind::Polyhedral));
    EXPECT_EQ(poly.faceZones()[0].faceType, 5);
    int six = 0;
    poly.forEachFace(0, [&](const int64_t*, int n, int64_t, int64_t) { six += n == 6; });
    EXPECT_GT(six, 0);
}

TEST(FluentGenFiles, MixedBodiesMixedFacesAndPolygonFaceTypeZero) {
    for (MeshKind kind : {MeshKind::Hex, MeshKind::Tet, MeshKind::Polyhedral, MeshKind::Quad}) {
        for (Encoding e : {Encoding::Ascii, Encoding::BinaryDouble}) {
            Spec s = smallSpec(kind);
            s.encoding = e;
            s.mixedCellBodies = true;
            s.mixedFaceTypes = true;
            s.polygonFaceType = 0;
            SCOPED_TRACE(name(kind));
            checkCase(s);
            Model m(s);
            if (kind != MeshKind::Polyhedral) {
                EXPECT_EQ(m.cellZones()[0].elementType, 0);
            }
            if (!is2D(kind)) {
                for (const fluentgen::FaceZoneInfo& z : m.faceZones()) {
                    EXPECT_EQ(z.faceType, 0);
                }
            }
        }
    }
}

TEST(FluentGenFiles, HangingNodeMeshesHaveTreesParentZonesAndClosedCells) {
    for (MeshKind kind : {MeshKind::Hex, MeshKind::Quad}) {
        for (Encoding e : {Encoding::Ascii, Encoding::BinarySingle, Encoding::BinaryDouble}) {
            for (int intSize : {4, 8}) {
                Spec s;
                s.mesh = kind;
                s.cells = {4, 3, 2};
                s.hanging = true;
                s.encoding = e;
                s.intSize = intSize;
                s.fields = fluentgen::standardFields(2, is2D(kind) ? 2 : 3);
                SCOPED_TRACE(name(kind) + " " + std::to_string(static_cast<int>(e)) + " int " +
                             std::to_string(intSize));
                checkCase(s);
                checkData(s);
                Model m(s);
                // A parent cell zone of type 32 and a parent face zone of type 31.
                ASSERT_EQ(m.cellZones().size(), 2u);
                EXPECT_EQ(m.cellZones()[1].type, 32);
                int parentZone = 0;
                for (const fluentgen::FaceZoneInfo& z : m.faceZones()) {
                    if (z.bcType == 31) {
                        parentZone = z.id;
                    }
                }
                ASSERT_NE(parentZone, 0);
                int faceTrees = 0, cellTrees = 0;
                int kids = kind == MeshKind::Hex ? 4 : 2;
                for (size_t t = 0; t < m.trees().size(); ++t) {
                    const fluentgen::FaceTreeInfo& tr = m.trees()[t];
                    if (tr.sectionBase == 58) {
                        ++cellTrees;
                        EXPECT_EQ(tr.parentZoneId, m.cellZones()[1].id);
                        EXPECT_EQ(tr.childZoneId, m.cellZones()[0].id);
                        EXPECT_EQ(m.treeChildren(t, tr.first).size(), kind == MeshKind::Hex ? 8u : 4u);
                        continue;
                    }
                    ++faceTrees;
                    EXPECT_EQ(tr.parentZoneId, parentZone);
                    EXPECT_EQ(m.treeChildren(t, tr.first).size(), static_cast<size_t>(kids));
                }
                EXPECT_EQ(cellTrees, 1);
                EXPECT_GE(faceTrees, 2);  // interior children and at least one side's
                // Child Faces pair a copy of the boundary parents with the parents in the type 31 zone.
                int childFaces = 0;
                for (size_t p = 0; p < m.facePairs().size(); ++p) {
                    const fluentgen::FacePairsInfo& info = m.facePairs()[p];
                    if (info.sectionBase != 62) {
                        continue;
                    }
                    ++childFaces;
                    EXPECT_EQ(info.zoneB, parentZone);
                    EXPECT_GT(info.count, 0);
                    for (int64_t k = 0; k < info.count; ++k) {
                        std::pair<int64_t, int64_t> cp = m.facePair(p, k);
                        const fluentgen::FaceZoneInfo* child = nullptr;
                        const fluentgen::FaceZoneInfo* parent = nullptr;
                        for (const fluentgen::FaceZoneInfo& z : m.faceZones()) {
                            if (cp.first >= z.first && cp.first <= z.last) {
                                child = &z;
                            }
                            if (cp.second >= z.first && cp.second <= z.last) {
                                parent = &z;
                            }
                        }
                        ASSERT_TRUE(child && parent);
                        EXPECT_EQ(child->id, info.zoneA);
                        EXPECT_EQ(parent->id, parentZone);
                    }
                }
                EXPECT_EQ(childFaces, 1);
                // Children tile their parent: their nodes lie on it and their sizes add up.
                fgtest::FileMesh fm = fgtest::meshFromFile(fgtest::parseFluent(fluentgen::caseText(s)));
                ASSERT_FALSE(fm.faceChildren.empty());
                for (const auto& pc : fm.faceChildren) {
                    const fgtest::FileMesh::Face& p = fm.faces[static_cast<size_t>(pc.first - 1)];
                    EXPECT_EQ(p.bcType, 31);
                    auto size = [&](const std::vector<int64_t>& n) {
                        const fluentgen::Vec3& a = fm.nodes[static_cast<size_t>(n[0] - 1)];
                        const fluentgen::Vec3& b =
                            fm.nodes[static_cast<size_t>(n[n.size() == 2 ? 1 : 2] - 1)];
                        double dx = std::fabs(a.x - b.x), dy = std::fabs(a.y - b.y),
                               dz = std::fabs(a.z - b.z);
                        // Diagonal box of the face: the product of its two non-zero extents.
                        if (n.size() == 2) {
                            return dx + dy;
                        }
                        return (dx > 0 ? dx : 1) * (dy > 0 ? dy : 1) * (dz > 0 ? dz : 1);
                    };
                    double sum = 0;
                    for (int64_t k : pc.second) {
                        sum += size(fm.faces[static_cast<size_t>(k - 1)].nodes);
                    }
                    EXPECT_NEAR(sum, size(p.nodes), 1e-5) << "parent face " << pc.first;
                }
            }
        }
    }
}

TEST(FluentGenFiles, ExtraSectionsPairFacesThatMatch) {
    for (MeshKind kind : {MeshKind::Hex, MeshKind::Tet, MeshKind::Quad, MeshKind::Mixed2D}) {
        for (Encoding e : {Encoding::Ascii, Encoding::BinaryMixed}) {
            Spec s = smallSpec(kind);
            s.extraSections = true;
            s.encoding = e;
            s.intSize = 8;
            s.byteOrder = ByteOrder::Big;
            SCOPED_TRACE(name(kind));
            checkCase(s);
            Model m(s);
            fgtest::FileMesh fm = fgtest::meshFromFile(fgtest::parseFluent(fluentgen::caseText(s)));
            std::set<int> bases;
            std::set<int> types;
            for (const fluentgen::FaceZoneInfo& z : m.faceZones()) {
                types.insert(z.bcType);
            }
            EXPECT_TRUE(types.count(12) && types.count(8) && types.count(1012) && types.count(38));
            double lx = s.spacing[0] * s.cells[0];
            for (size_t p = 0; p < m.facePairs().size(); ++p) {
                const fluentgen::FacePairsInfo& info = m.facePairs()[p];
                bases.insert(info.sectionBase);
                for (int64_t k = 0; k < info.count; ++k) {
                    std::pair<int64_t, int64_t> ab = m.facePair(p, k);
                    const std::vector<int64_t>& a = fm.faces[static_cast<size_t>(ab.first - 1)].nodes;
                    const std::vector<int64_t>& b = fm.faces[static_cast<size_t>(ab.second - 1)].nodes;
                    ASSERT_EQ(a.size(), b.size());
                    // Periodic pairs are translates along x; the others are copies.
                    std::multiset<std::tuple<double, double, double>> pa, pb;
                    for (size_t i = 0; i < a.size(); ++i) {
                        const fluentgen::Vec3& u = fm.nodes[static_cast<size_t>(a[i] - 1)];
                        const fluentgen::Vec3& v = fm.nodes[static_cast<size_t>(b[i] - 1)];
                        double shift = info.sectionBase == 18 ? lx : 0.0;
                        pa.insert(
                            {std::round((u.x + shift) * 1e6), std::round(u.y * 1e6), std::round(u.z * 1e6)});
                        pb.insert({std::round(v.x * 1e6), std::round(v.y * 1e6), std::round(v.z * 1e6)});
                    }
                    ASSERT_EQ(pa, pb) << "pair " << k << " of section " << info.sectionBase;
                }
                if (info.sectionBase == 61) {
                    // The range of an interface parents section is a zone of copies.
                    bool found = false;
                    for (const fluentgen::FaceZoneInfo& z : m.faceZones()) {
                        if (z.first == info.first && z.last == info.last) {
                            found = true;
                            EXPECT_TRUE(z.bcType == 1012 || z.bcType == 38);
                        }
                    }
                    EXPECT_TRUE(found);
                }
            }
            EXPECT_EQ(bases, (std::set<int>{18, 61, 62}));
        }
    }
}

TEST(FluentGenFiles, CellZonesBoundaryTypesAndZoneNames) {
    Spec s;
    s.mesh = MeshKind::Hex;
    s.cells = {6, 2, 2};
    s.cellZoneTypes = {1, 17, 32};
    s.boundaryTypes = {10, 36, 31, 38, 1000, 1012};
    s.zoneNames = fluentgen::ZoneNames::Varied;
    s.fields = fluentgen::standardFields(2, 3);
    for (Encoding e : kEncodings) {
        s.encoding = e;
        checkCase(s);
        checkData(s);
    }
    Model m(s);
    ASSERT_EQ(m.cellZones().size(), 3u);
    EXPECT_EQ(m.cellZones()[1].type, 17);
    EXPECT_EQ(m.cellZones()[2].type, 32);
    std::set<int> bc, sections;
    int interiorBetween = 0;
    for (const fluentgen::FaceZoneInfo& z : m.faceZones()) {
        bc.insert(z.bcType);
        sections.insert(z.nameSection);
        interiorBetween += z.bcType == 2 && z.name.find("fluid-1-solid-2") != std::string::npos;
    }
    for (int t : {2, 10, 36, 31, 38, 1000, 1012}) {
        EXPECT_TRUE(bc.count(t)) << t;
    }
    EXPECT_EQ(sections, (std::set<int>{0, 39, 45}));
    EXPECT_EQ(interiorBetween, 1);
    // No data for the zone of type 32.
    for (const fluentgen::DataSectionInfo& d : m.dataSections()) {
        EXPECT_NE(d.zoneId, m.cellZones()[2].id);
    }
}

TEST(FluentGenFiles, UnnamedAnd45NamedZones) {
    for (fluentgen::ZoneNames n : {fluentgen::ZoneNames::None, fluentgen::ZoneNames::Section45}) {
        Spec s = smallSpec(MeshKind::Tet);
        s.zoneNames = n;
        checkCase(s);
        std::string text = fluentgen::caseText(s);
        EXPECT_EQ(text.find("(39 ("), std::string::npos);
        EXPECT_EQ(text.find("(45 (") == std::string::npos, n == fluentgen::ZoneNames::None);
    }
}

TEST(FluentGenFiles, NodeSectionsSplitTheNodeRange) {
    Spec s = smallSpec(MeshKind::Pyramid);
    s.nodeSections = 3;
    for (Encoding e : kEncodings) {
        s.encoding = e;
        checkCase(s);
    }
    Model m(s);
    std::vector<std::pair<int64_t, int64_t>> r = m.nodeSections();
    ASSERT_EQ(r.size(), 3u);
    EXPECT_EQ(r[0].first, 1);
    EXPECT_EQ(r[1].first, r[0].second + 1);
    EXPECT_EQ(r[2].second, m.nodeCount());
}

TEST(FluentGenFiles, RichFieldsResidualsAndParticlesInEveryEncoding) {
    for (Encoding e : kEncodings) {
        for (ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
            for (int intSize : {4, 8}) {
                Spec s = smallSpec(MeshKind::Hex);
                s.encoding = e;
                s.byteOrder = order;
                s.intSize = intSize;
                s.species = {"h2o", "o2", "n2"};
                s.fields = fluentgen::richFields(3);
                s.additionalQuantities = {"heat transfer coef", "My Function"};
                s.flowTime = 0.25;
                s.deltaTimeSampled = 0.5;
                s.residuals.ids = {1, 2, 3};
                s.residuals.rows = 5;
                s.residuals.width = intSize == 8 ? 2 : 1;
                s.residuals.scaleFactors = order == ByteOrder::Little;
                s.residuals.fourHeaderNumbers = intSize == 4;
                s.particles = {fluentgen::ParticleSpec{},
                               fluentgen::ParticleSpec{"injection-1", 5, {1, 7, 8, 9, 16}}};
                s.boundaryTypes = {10, 5, 3, 3, 7, 4};
                SCOPED_TRACE(std::to_string(static_cast<int>(e)) +
                             (order == ByteOrder::Big ? " big" : " little") + " int " +
                             std::to_string(intSize));
                checkData(s);
                Model m(s);
                std::set<int> families;
                bool boundary = false, unstored = false, additionalOnWall = false;
                for (const fluentgen::DataSectionInfo& d : m.dataSections()) {
                    families.insert(d.sectionId % 1000);
                    boundary = boundary || d.faceZone;
                    unstored = unstored || d.firstId == -1;
                    additionalOnWall = additionalOnWall || (d.additional && d.faceZone);
                }
                EXPECT_EQ(families, (std::set<int>{300, 314}));
                EXPECT_TRUE(boundary && unstored && additionalOnWall);
            }
        }
    }
}

TEST(FluentGenFiles, DataValuesFollowTheFormulasAtCentresFromTheFile) {
    // Independent of the model: cell centres from the case file's own nodes and
    // faces, values from the public formulas.
    for (MeshKind kind : {MeshKind::Mixed, MeshKind::Polyhedral, MeshKind::Tri}) {
        Spec s = smallSpec(kind);
        s.encoding = Encoding::Ascii;
        s.fields = {fluentgen::FieldSpec{1, 1, 1}, fluentgen::FieldSpec{200, 2, 1},
                    fluentgen::FieldSpec{15, 3, 2}};
        s.flowTime = 1.5;
        fgtest::FileMesh mesh = fgtest::meshFromFile(fgtest::parseFluent(fluentgen::caseText(s)));
        std::map<int64_t, std::vector<int64_t>> cells = fgtest::cellNodesFromFaces(mesh);
        fgtest::ParsedFile data = fgtest::parseFluent(fluentgen::dataText(s));
        int checked = 0;
        for (const fgtest::Section& sec : data.sections) {
            if (sec.id != 300) {
                continue;
            }
            std::vector<std::string> w = fgtest::words(sec.header);
            int fid = std::stoi(w[0]), dim = std::stoi(w[2]), phase = std::stoi(w[4]);
            int64_t first = std::stoll(w[5]), last = std::stoll(w[6]);
            std::vector<double> v = fgtest::asciiReals(fgtest::asciiBodyInner(sec.body));
            int64_t n = last - first + 1;
            ASSERT_EQ(static_cast<int64_t>(v.size()), n * dim);
            bool componentMajor = fid == 200;
            for (int64_t e = 0; e < n; ++e) {
                const std::vector<int64_t>& ns = cells.at(first + e);
                fluentgen::Vec3 c;
                for (int64_t id : ns) {
                    c.x += mesh.nodes[static_cast<size_t>(id - 1)].x / double(ns.size());
                    c.y += mesh.nodes[static_cast<size_t>(id - 1)].y / double(ns.size());
                    c.z += mesh.nodes[static_cast<size_t>(id - 1)].z / double(ns.size());
                }
                for (int k = 0; k < dim; ++k) {
                    double got = v[static_cast<size_t>(componentMajor ? k * n + e : e * dim + k)];
                    ASSERT_NEAR(got, fluentgen::fieldFormula(fid, k, phase, 1.5, c), 1e-9) << name(kind);
                    ++checked;
                }
            }
        }
        EXPECT_GT(checked, 0);
    }
}

TEST(FluentGenFiles, SeriesWritesIncreasingFlowTimes) {
    std::string dir = fgtest::tempDir("series");
    for (bool casePerStep : {false, true}) {
        Spec s = smallSpec(MeshKind::Wedge);
        s.flowTime = 2.0;
        s.series.steps = 3;
        s.series.timeStep = 0.5;
        s.series.casePerStep = casePerStep;
        s.gzip = casePerStep;
        fluentgen::WrittenFiles w = fluentgen::writeFiles(s, dir, casePerStep ? "each" : "one");
        ASSERT_EQ(w.dataFiles.size(), 3u);
        ASSERT_EQ(w.caseFiles.size(), casePerStep ? 3u : 1u);
        std::string gz = casePerStep ? ".gz" : "";
        EXPECT_EQ(w.dataFiles[2], dir + (casePerStep ? "/each-00002.dat" : "/one-00002.dat") + gz);
        EXPECT_EQ(w.caseFiles[0], dir + (casePerStep ? "/each-00000.cas" : "/one.cas") + gz);
        Model m(s);
        for (int step = 0; step < 3; ++step) {
            EXPECT_EQ(m.flowTime(step), 2.0 + 0.5 * step);
            fgtest::ParsedFile f = fgtest::parseFluent(
                fgtest::inflateIfGzip(fgtest::readFileBytes(w.dataFiles[static_cast<size_t>(step)])));
            fgtest::expectDataMatchesModel(m, f, step);
        }
        for (const std::string& c : w.caseFiles) {
            fgtest::ParsedFile f = fgtest::parseFluent(fgtest::inflateIfGzip(fgtest::readFileBytes(c)));
            fgtest::expectCaseMatchesModel(m, f);
            // A series is unsteady.
            EXPECT_NE(fgtest::inflateIfGzip(fgtest::readFileBytes(c)).find("(rp-unsteady? . #t)"),
                      std::string::npos);
        }
    }
    fgtest::removeTree(dir);
}

TEST(FluentGenFiles, GzipFilesInflateToThePlainBytes) {
    Spec s = smallSpec(MeshKind::Tet);
    s.residuals.ids = {1};
    Spec z = s;
    z.gzip = true;
    z.gzipLevel = 1;
    std::string gz = fluentgen::caseText(z);
    ASSERT_GT(gz.size(), 2u);
    EXPECT_EQ(static_cast<unsigned char>(gz[0]), 0x1f);
    EXPECT_EQ(static_cast<unsigned char>(gz[1]), 0x8b);
    EXPECT_EQ(fgtest::inflateIfGzip(gz), fluentgen::caseText(s));
    EXPECT_EQ(fgtest::inflateIfGzip(fluentgen::dataText(z)), fluentgen::dataText(s));
    std::string dir = fgtest::tempDir("gzip");
    fluentgen::WrittenFiles w = fluentgen::writeFiles(z, dir, "box");
    ASSERT_EQ(w.caseFiles.size(), 1u);
    EXPECT_EQ(w.caseFiles[0], dir + "/box.cas.gz");
    EXPECT_EQ(fgtest::inflateIfGzip(fgtest::readFileBytes(w.caseFiles[0])), fluentgen::caseText(s));
    EXPECT_EQ(fgtest::inflateIfGzip(fgtest::readFileBytes(w.dataFiles[0])), fluentgen::dataText(s));
    fgtest::removeTree(dir);
}

TEST(FluentGenFiles, BinarySectionsEndAsRealFilesEndThem) {
    Spec s;
    s.cells = {2, 1, 1};
    s.encoding = Encoding::BinaryMixed;
    s.fields = fluentgen::standardFields(2, 3);
    s.residuals.ids = {1};
    std::string c = fluentgen::caseText(s);
    // Uniform cells: a header and the marker; faces: body, ')' and the marker.
    EXPECT_NE(c.find("(2012 (1 1 2 1 4)\nEnd of Binary Section   2012)\n"), std::string::npos);
    EXPECT_NE(c.find(")\nEnd of Binary Section   2013)\n"), std::string::npos);
    EXPECT_NE(c.find(")\nEnd of Binary Section   3010)\n"), std::string::npos);
    EXPECT_NE(c.find("(12 (0 1 2 0))\n(13 (0 1 b 0))\n(10 (0 1 c 0 3))\n"), std::string::npos);
    EXPECT_EQ(c.find("(0 \"Machine Config:\")\n(4 (60 0 0 1 2 4 8 4 8 8 8 4))\n"),
              c.find("(0 \"Machine Config:\")"));
    std::string d = fluentgen::dataText(s);
    // Data: the marker right behind the numbers and two parentheses; residuals
    // close their body first.
    EXPECT_NE(d.find("\nEnd of Binary Section   3300))\n"), std::string::npos);
    EXPECT_NE(d.find("\nEnd of Binary Section   2300))\n"), std::string::npos);
    EXPECT_NE(d.find(")\n\nEnd of Binary Section   3302)\n"), std::string::npos);
    EXPECT_NE(d.find("(0 \"SV_P, domain 1, cell zone 1, 2 cells:\")\n(3300 (1 1 1 0 1 1 2)\n("),
              std::string::npos);
    s.byteOrder = ByteOrder::Big;
    EXPECT_NE(fluentgen::caseText(s).find("(4 (50 1 0 1 2 4 8 4 8 8 8 4))"), std::string::npos);
    s.particles = {fluentgen::ParticleSpec{"inj", 2, {1, 7}}};
    d = fluentgen::dataText(s);
    EXPECT_NE(d.find("(3303 (inj 2 0 3)\n(1 ("), std::string::npos);
    EXPECT_NE(d.find("\nEnd of Binary Section      1))\n(7 ("), std::string::npos);
    EXPECT_NE(d.find("\nEnd of Binary Section      7))\n)\n"), std::string::npos);
}

TEST(FluentGenFiles, CaseVariablesNameSpeciesAndFlags) {
    Spec s = smallSpec(MeshKind::Quad);
    s.species = {"c2h6", "o2", "co2"};
    s.axisymmetric = true;
    s.encoding = Encoding::BinarySingle;
    std::string c = fluentgen::caseText(s);
    EXPECT_NE(c.find("(species (names (c2h6 o2 co2))"), std::string::npos);
    EXPECT_NE(c.find("(rp-axi? . #t)"), std::string::npos);
    EXPECT_NE(c.find("(rp-double? . #f)"), std::string::npos);
    s.doublePrecisionFlag = 1;
    EXPECT_NE(fluentgen::caseText(s).find("(rp-double? . #t)"), std::string::npos);
    s.encoding = Encoding::BinaryDouble;
    s.doublePrecisionFlag = -1;
    s.axisymmetric = false;
    c = fluentgen::caseText(s);
    EXPECT_NE(c.find("(rp-double? . #t)"), std::string::npos);
    EXPECT_NE(c.find("(rp-axi? . #f)"), std::string::npos);
    // The axis is a side of an axisymmetric 2D case.
    s.axisymmetric = true;
    Model m(s);
    bool axis = false;
    for (const fluentgen::FaceZoneInfo& z : m.faceZones()) {
        axis = axis || z.bcType == 37;
    }
    EXPECT_TRUE(axis);
}

TEST(FluentGenFiles, SmallestAndThinBoxes) {
    const std::array<int, 3> sizes[] = {{1, 1, 1}, {1, 3, 2}, {3, 1, 1}, {2, 1, 4}, {1, 1, 5}};
    for (MeshKind kind : kKinds) {
        for (const std::array<int, 3>& c : sizes) {
            Spec s = smallSpec(kind);
            s.cells = c;
            s.fields = fluentgen::standardFields(2, is2D(kind) ? 2 : 3);
            s.extraSections = true;
            SCOPED_TRACE(name(kind) + " " + std::to_string(c[0]) + "x" + std::to_string(c[1]) + "x" +
                         std::to_string(c[2]));
            checkCase(s);
            checkData(s);
            if (kind == MeshKind::Hex || kind == MeshKind::Quad) {
                s.hanging = true;  // refines everything along an axis of one block
                checkCase(s);
                checkData(s);
            }
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}
