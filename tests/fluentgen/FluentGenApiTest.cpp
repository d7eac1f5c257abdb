// The library's model, formulas and spec checks, the XML particle file, and
// the command line.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>

#include "Checks.h"
#include "FluentFileParser.h"
#include "tools/fluentgen/FluentGen.h"

using fluentgen::Model;
using fluentgen::Spec;

namespace {

std::string invalid(const Spec& s) {
    try {
        Model m(s);
    } catch (const std::invalid_argument& e) {
        return e.what();
    }
    return "";
}

// Runs a shell command; returns its exit status and fills out/err.
int run(const std::string& cmd, std::string* out, std::string* err, const std::string& dir) {
    std::string o = dir + "/stdout", e = dir + "/stderr";
    int rc = std::system((cmd + " >'" + o + "' 2>'" + e + "'").c_str());
    if (out) {
        *out = fgtest::readFileBytes(o);
    }
    if (err) {
        *err = fgtest::readFileBytes(e);
    }
    return WIFEXITED(rc) ? WEXITSTATUS(rc) : -1;
}

std::string fluentgenBinary() {
    return std::string(FL_BINARY_DIR) + "/tools/fluentgen/fluentgen";
}

std::vector<unsigned char> unbase64(const std::string& s) {
    std::vector<unsigned char> out;
    uint32_t acc = 0;
    int bits = 0;
    for (char c : s) {
        int v;
        if (c >= 'A' && c <= 'Z') {
            v = c - 'A';
        } else if (c >= 'a' && c <= 'z') {
            v = c - 'a' + 26;
        } else if (c >= '0' && c <= '9') {
            v = c - '0' + 52;
        } else if (c == '+') {
            v = 62;
        } else if (c == '/') {
            v = 63;
        } else {
            continue;  // padding, line ends
        }
        acc = (acc << 6) | static_cast<uint32_t>(v);
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            out.push_back(static_cast<unsigned char>((acc >> bits) & 0xff));
        }
    }
    return out;
}

std::string attribute(const std::string& tag, const std::string& name) {
    std::string key = " " + name + "=\"";
    size_t at = tag.find(key);
    if (at == std::string::npos) {
        return "<none>";
    }
    size_t end = tag.find('"', at + key.size());
    return tag.substr(at + key.size(), end - at - key.size());
}

}  // namespace

TEST(FluentGenModel, HexBoxCountsZonesAndFaces) {
    Spec s;
    s.cells = {4, 3, 2};
    Model m(s);
    EXPECT_EQ(m.dimensions(), 3);
    EXPECT_EQ(m.nodeCount(), 5 * 4 * 3);
    EXPECT_EQ(m.cellCount(), 24);
    int64_t interior = 3 * 3 * 2 + 4 * 2 * 2 + 4 * 3 * 1;
    int64_t boundary = 2 * (3 * 2 + 4 * 2 + 4 * 3);
    EXPECT_EQ(m.faceCount(), interior + boundary);
    // Zones tile the cell and face numbers without gaps.
    int64_t next = 1;
    for (const fluentgen::CellZoneInfo& z : m.cellZones()) {
        EXPECT_EQ(z.first, next);
        next = z.last + 1;
    }
    EXPECT_EQ(next, m.cellCount() + 1);
    next = 1;
    for (size_t zi = 0; zi < m.faceZones().size(); ++zi) {
        const fluentgen::FaceZoneInfo& z = m.faceZones()[zi];
        EXPECT_EQ(z.first, next);
        next = z.last + 1;
        int64_t n = 0;
        m.forEachFace(zi, [&](const int64_t* nodes, int k, int64_t c0, int64_t c1) {
            ++n;
            EXPECT_EQ(k, 4);
            EXPECT_GE(c0, 1);
            EXPECT_LE(c0, m.cellCount());
            if (z.boundary) {
                EXPECT_EQ(c1, 0);
            } else {
                EXPECT_GE(c1, 1);
            }
            for (int a = 0; a < k; ++a) {
                EXPECT_GE(nodes[a], 1);
                EXPECT_LE(nodes[a], m.nodeCount());
            }
        });
        EXPECT_EQ(n, z.last - z.first + 1);
    }
    EXPECT_EQ(next, m.faceCount() + 1);
    // Default sides: velocity inlet, pressure outlet, wall, far field, symmetry, pressure inlet.
    std::vector<int> sides;
    for (const fluentgen::FaceZoneInfo& z : m.faceZones()) {
        if (z.boundary) {
            sides.push_back(z.bcType);
        }
    }
    EXPECT_EQ(sides, (std::vector<int>{10, 5, 3, 9, 7, 4}));
    EXPECT_EQ(m.node(1).x, 0.0);
    EXPECT_DOUBLE_EQ(m.node(m.nodeCount()).x, 0.4);
    EXPECT_DOUBLE_EQ(m.node(m.nodeCount()).y, 0.6);
    EXPECT_DOUBLE_EQ(m.node(m.nodeCount()).z, 0.6);
}

TEST(FluentGenModel, CentresAreMeansOfTheCellNodes) {
    for (fluentgen::MeshKind k :
         {fluentgen::MeshKind::Mixed, fluentgen::MeshKind::Polyhedral, fluentgen::MeshKind::Mixed2D,
          fluentgen::MeshKind::Polygonal, fluentgen::MeshKind::Pyramid}) {
        Spec s;
        s.mesh = k;
        s.cells = {3, 2, 6};
        Model m(s);
        for (int64_t c = 1; c <= m.cellCount(); ++c) {
            std::vector<int64_t> ns = m.cellNodes(c);
            fluentgen::Vec3 sum;
            for (int64_t n : ns) {
                fluentgen::Vec3 p = m.node(n);
                sum.x += p.x / double(ns.size());
                sum.y += p.y / double(ns.size());
                sum.z += p.z / double(ns.size());
            }
            fluentgen::Vec3 c0 = m.cellCentre(c);
            ASSERT_NEAR(c0.x, sum.x, 1e-12);
            ASSERT_NEAR(c0.y, sum.y, 1e-12);
            ASSERT_NEAR(c0.z, sum.z, 1e-12);
        }
    }
    Spec h;
    h.cells = {4, 4, 4};
    h.hanging = true;
    Model m(h);
    // 56 coarse, 64 children, 8 parents.
    EXPECT_EQ(m.cellCount(), 56 + 64 + 8);
    EXPECT_EQ(m.nodeCount(), 125 + 125 - 27);
    for (int64_t c = 1; c <= m.cellCount(); ++c) {
        EXPECT_EQ(m.cellNodes(c).size(), 8u);
    }
}

TEST(FluentGenModel, InvalidSpecsAreRefusedWithAMessage) {
    Spec s;
    s.intSize = 2;
    EXPECT_EQ(invalid(s), "integer size must be 4 or 8");
    s = Spec();
    s.hanging = true;
    s.mesh = fluentgen::MeshKind::Tet;
    EXPECT_EQ(invalid(s), "hanging nodes need a hex or quad mesh");
    s = Spec();
    s.hanging = true;
    s.cellZoneTypes = {1, 17};
    EXPECT_EQ(invalid(s), "hanging nodes need a single cell zone");
    s = Spec();
    s.cellZoneTypes = {1, 17, 32};
    EXPECT_EQ(invalid(s), "more cell zones than blocks along x");
    s = Spec();
    s.cells = {0, 1, 1};
    EXPECT_EQ(invalid(s), "cell counts must be at least 1");
    s = Spec();
    s.species = {"h2 o"};
    EXPECT_EQ(invalid(s), "species name 'h2 o' must not hold blanks, parentheses or quotes");
    s = Spec();
    s.polygonFaceType = 3;
    EXPECT_EQ(invalid(s), "polygon face type must be 5 or 0");
    s = Spec();
    s.gzip = true;
    s.gzipLevel = 0;
    EXPECT_EQ(invalid(s), "gzip level must be 1 to 9");
    s = Spec();
    s.additionalQuantities = {"a(b)"};
    EXPECT_EQ(invalid(s), "additional quantity name 'a(b)' must not be empty nor hold parentheses or quotes");
    s = Spec();
    s.cells = {1300, 1300, 1300};  // 2.2e9 cells
    EXPECT_EQ(invalid(s), "mesh too large for 4-byte integers: use an integer size of 8");
    s.intSize = 8;
    EXPECT_EQ(invalid(s), "");
    s = Spec();
    s.mesh = fluentgen::MeshKind::Quad;
    s.spacing = {1.0, 1.0, 0.0};  // no z in 2D
    EXPECT_EQ(invalid(s), "");
    s.spacing = {1.0, -1.0, 0.0};
    EXPECT_EQ(invalid(s), "spacing must be positive");
    EXPECT_THROW(fluentgen::standardFields(100, 3), std::invalid_argument);
    EXPECT_THROW(fluentgen::richFields(0), std::invalid_argument);
}

TEST(FluentGenModel, FieldListsAndFormulas) {
    std::vector<int> ids3, ids2;
    for (const fluentgen::FieldSpec& f : fluentgen::standardFields(5, 3)) {
        ids3.push_back(f.fieldId);
    }
    for (const fluentgen::FieldSpec& f : fluentgen::standardFields(5, 2)) {
        ids2.push_back(f.fieldId);
    }
    EXPECT_EQ(ids3, (std::vector<int>{1, 111, 112, 113, 101}));
    EXPECT_EQ(ids2, (std::vector<int>{1, 111, 112, 101, 3}));
    std::set<int> rich;
    bool phase2 = false, phase3 = false, unstored = false, boundaries = false;
    for (const fluentgen::FieldSpec& f : fluentgen::richFields(4)) {
        rich.insert(f.fieldId);
        phase2 = phase2 || f.phase == 2;
        phase3 = phase3 || f.phase == 3;
        unstored = unstored || f.unstored;
        boundaries = boundaries || f.onBoundaries;
        if (f.fieldId == 200 || f.fieldId == 1000 || f.fieldId == 1050) {
            EXPECT_EQ(f.dimension, 4);
        }
    }
    for (int id : {200, 400, 401, 1000, 1050, 970, 15}) {
        EXPECT_TRUE(rich.count(id)) << id;
    }
    EXPECT_TRUE(phase2 && phase3 && unstored && boundaries);
    for (int id : {7, 13, 200, 399, 450, 499, 635, 637, 1000, 1099, 970}) {
        EXPECT_TRUE(fluentgen::isComponentMajor(id)) << id;
    }
    for (int id : {1, 6, 8, 199, 400, 401, 449, 500, 634, 638, 999, 1100}) {
        EXPECT_FALSE(fluentgen::isComponentMajor(id)) << id;
    }
    for (int id : {1, 2, 3, 4, 48, 49}) {
        EXPECT_TRUE(fluentgen::isIntegerParticleField(id));
        for (int p = 0; p < 20; ++p) {
            double v = fluentgen::particleFormula(id, 1, p, 0.5);
            EXPECT_EQ(v, std::floor(v)) << id;
        }
    }
    EXPECT_FALSE(fluentgen::isIntegerParticleField(7));
    // Values tell fields, components, phases and places apart.
    fluentgen::Vec3 a{0.1, 0.2, 0.3};
    std::set<double> values = {
        fluentgen::fieldFormula(1, 0, 1, 0, a),   fluentgen::fieldFormula(111, 0, 1, 0, a),
        fluentgen::fieldFormula(111, 1, 1, 0, a), fluentgen::fieldFormula(111, 0, 2, 0, a),
        fluentgen::fieldFormula(111, 0, 1, 1, a), fluentgen::fieldFormula(111, 0, 1, 0, {})};
    EXPECT_EQ(values.size(), 6u);
    EXPECT_NE(fluentgen::residualFormula(1, 0, 0), fluentgen::residualFormula(1, 1, 0));
    EXPECT_NE(fluentgen::residualScaleFormula(1, 0, 0), fluentgen::residualScaleFormula(2, 0, 0));
}

TEST(FluentGenModel, DataSectionsAndValuesAsWritten) {
    Spec s;
    s.cells = {2, 2, 1};
    s.encoding = fluentgen::Encoding::BinaryMixed;
    s.fields = {fluentgen::FieldSpec{1, 1, 1}, fluentgen::FieldSpec{111, 1, 1, false, true}};
    Model m(s);
    std::vector<fluentgen::DataSectionInfo> d = m.dataSections();
    // Field 0 on the cell zone (double); field 1 on the cell zone and the six sides (single).
    ASSERT_EQ(d.size(), 1u + 1u + 6u);
    EXPECT_EQ(d[0].sectionId, 3300);
    EXPECT_EQ(d[1].sectionId, 2300);
    EXPECT_TRUE(d[1].single);
    EXPECT_TRUE(d[2].faceZone);
    EXPECT_EQ(d[2].firstId, d[2].zoneFirst);
    double v = m.dataValue(d[1], 0, 0);
    EXPECT_EQ(v, static_cast<double>(static_cast<float>(v)));
    EXPECT_EQ(m.dataValue(d[0], 3, 0), fluentgen::fieldFormula(1, 0, 1, 0.0, m.cellCentre(4)));
    EXPECT_THROW(m.dataValue(d[0], 4, 0), std::out_of_range);
    EXPECT_TRUE(s.hasData());
    EXPECT_FALSE(Spec().hasData());
}

TEST(FluentGenModel, TextsEqualTheWrittenFiles) {
    Spec s;
    s.mesh = fluentgen::MeshKind::Mixed;
    s.cells = {2, 2, 5};
    s.fields = fluentgen::standardFields(3, 3);
    s.xml.enabled = true;
    std::string dir = fgtest::tempDir("texts");
    fluentgen::writeCaseFile(s, dir + "/a.cas");
    fluentgen::writeDataFile(s, 0, dir + "/a.dat");
    fluentgen::writeXmlFile(s, dir + "/a.xml");
    EXPECT_EQ(fgtest::readFileBytes(dir + "/a.cas"), fluentgen::caseText(s));
    EXPECT_EQ(fgtest::readFileBytes(dir + "/a.dat"), fluentgen::dataText(s));
    EXPECT_EQ(fgtest::readFileBytes(dir + "/a.xml"), fluentgen::xmlText(s));
    fluentgen::WrittenFiles w = fluentgen::writeFiles(s, dir, "b");
    EXPECT_EQ(w.xmlFile, dir + "/b.xml");
    EXPECT_EQ(fgtest::readFileBytes(w.caseFiles[0]), fluentgen::caseText(s));
    EXPECT_THROW(fluentgen::writeCaseFile(s, dir + "/no/such/dir/x.cas"), std::runtime_error);
    fgtest::removeTree(dir);
}

TEST(FluentGenXml, ParticleFileHoldsItemsSectionsAndArraysByFormula) {
    for (bool base64 : {true, false}) {
        for (bool size : {false, true}) {
            Spec s;
            s.flowTime = 0.75;
            s.xml.enabled = true;
            s.xml.sections = 3;
            s.xml.particles = 11;
            s.xml.base64 = base64;
            s.xml.sizeAttribute = size;
            s.xml.formatElement = !size;
            Model m(s);
            std::vector<fluentgen::XmlItemInfo> items = m.xmlItems();
            std::string text = fluentgen::xmlText(s);
            std::vector<std::string> lines;
            size_t at = 0;
            while (at < text.size()) {
                size_t nl = text.find('\n', at);
                lines.push_back(text.substr(at, nl - at));
                at = nl + 1;
            }
            ASSERT_EQ(lines[0], "<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
            EXPECT_EQ(text.find("<Format version=\"1.0\"/>") != std::string::npos, !size);
            EXPECT_NE(text.find("<Item id=\"0\" type=\"OPTION\" name=\"Injection\">\n<Option id=\"0\" "
                                "name=\"injection-0\"/>\n</Item>"),
                      std::string::npos);
            std::map<std::string, std::string> names;
            int section = -1, arrays = 0;
            for (size_t i = 0; i < lines.size(); ++i) {
                const std::string& l = lines[i];
                if (l.rfind("<Item ", 0) == 0 && attribute(l, "id") != "0") {
                    names[attribute(l, "id")] = attribute(l, "name");
                } else if (l.rfind("<Section ", 0) == 0) {
                    ++section;
                    EXPECT_EQ(attribute(l, "id"), std::to_string(section + 1));
                    EXPECT_EQ(attribute(l, "length"), size ? "0" : "11");
                    EXPECT_EQ(attribute(l, "size"), size ? "11" : "<none>");
                } else if (l.rfind("<Data ", 0) == 0) {
                    std::string id = attribute(l, "item");
                    const fluentgen::XmlItemInfo* it = nullptr;
                    for (const fluentgen::XmlItemInfo& x : items) {
                        if (x.id == id) {
                            it = &x;
                        }
                    }
                    ASSERT_NE(it, nullptr) << l;
                    EXPECT_EQ(names[id], it->name);
                    if (it->constant) {
                        EXPECT_EQ(attribute(l, "constant"), "true");
                        continue;
                    }
                    ++arrays;
                    std::string format = attribute(l, "dataFormat");
                    EXPECT_EQ(format, it->ascii ? "ASCII" : "Base64/LE");
                    if (it->name == "Particle ID" || !base64) {
                        EXPECT_EQ(format, "ASCII");
                    }
                    // The array starts on the next line.
                    std::vector<double> v;
                    size_t j = i + 1;
                    if (format == "ASCII") {
                        for (; lines[j] != "</Data>"; ++j) {
                            for (const std::string& w : fgtest::words(lines[j])) {
                                v.push_back(std::strtod(w.c_str(), nullptr));
                            }
                        }
                    } else {
                        std::vector<unsigned char> raw = unbase64(lines[j]);
                        ASSERT_EQ(raw.size(), 4u * 11u);
                        for (size_t p = 0; p < 11; ++p) {
                            uint32_t u = raw[4 * p] | (raw[4 * p + 1] << 8) | (raw[4 * p + 2] << 16) |
                                         (uint32_t(raw[4 * p + 3]) << 24);
                            float f;
                            std::memcpy(&f, &u, 4);
                            v.push_back(f);
                        }
                        EXPECT_EQ(lines[j + 1], "</Data>");
                    }
                    ASSERT_EQ(v.size(), 11u) << it->name;
                    for (size_t p = 0; p < v.size(); ++p) {
                        double want =
                            fluentgen::particleFormula(it->formulaId, section, static_cast<int64_t>(p), 0.75);
                        if (format != "ASCII") {
                            want = static_cast<float>(want);
                        }
                        EXPECT_EQ(v[p], want) << it->name << " particle " << p;
                    }
                    EXPECT_EQ(static_cast<float>(std::atof(attribute(l, "minimum").c_str())),
                              static_cast<float>(*std::min_element(v.begin(), v.end())));
                    EXPECT_EQ(static_cast<float>(std::atof(attribute(l, "maximum").c_str())),
                              static_cast<float>(*std::max_element(v.begin(), v.end())));
                }
            }
            EXPECT_EQ(section, 2);
            EXPECT_EQ(arrays, 3 * static_cast<int>(items.size() - 1));
            // Item names the loader maps, one it knows as is, one it does not know.
            std::set<std::string> all;
            for (const auto& n : names) {
                all.insert(n.second);
            }
            for (const char* n : {"Particle X Position", "Particle Y Position", "Particle Z Position",
                                  "Particle X Velocity", "Particle ID", "Particle Diameter", "My Scalar"}) {
                EXPECT_TRUE(all.count(n)) << n;
            }
        }
    }
}

TEST(FluentGenXml, AnXmlParserAcceptsTheFile) {
    if (std::system("/usr/bin/python3 -c 'import xml.etree.ElementTree' >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "no python3";
    }
    Spec s;
    s.xml.enabled = true;
    s.xml.sections = 2;
    std::string dir = fgtest::tempDir("xml");
    fluentgen::writeXmlFile(s, dir + "/p.xml");
    std::string out;
    int rc = run("/usr/bin/python3 -c \"import xml.etree.ElementTree as E; r=E.parse('" + dir +
                     "/p.xml').getroot(); print(r.tag, len(r.findall('Section')), len(r.find('Items')))\"",
                 &out, nullptr, dir);
    EXPECT_EQ(rc, 0);
    EXPECT_EQ(out, "ParticleHistory 2 12\n");
    fgtest::removeTree(dir);
}

TEST(FluentGenCommandLine, HelpAndUsageErrors) {
    std::string bin = fluentgenBinary();
    ASSERT_TRUE(std::filesystem::exists(bin)) << bin;
    std::string dir = fgtest::tempDir("cli");
    std::string out, err;
    EXPECT_EQ(run(bin + " --help", &out, &err, dir), 0);
    for (const char* opt :
         {"Usage: fluentgen", "--mesh", "--cells", "--encoding", "--byte-order", "--int-size", "--gzip",
          "--hanging", "--extra-sections", "--fields", "--rich-fields", "--residuals", "--particles", "--xml",
          "--series", "--case-per-step", "--additional"}) {
        EXPECT_NE(out.find(opt), std::string::npos) << opt;
    }
    EXPECT_EQ(run(bin, &out, &err, dir), 2);
    EXPECT_EQ(err, "fluentgen: --out DIR/NAME is required\n(fluentgen --help shows the options)\n");
    EXPECT_EQ(run(bin + " --bogus --out " + dir + "/x", &out, &err, dir), 2);
    EXPECT_EQ(err, "fluentgen: unknown option '--bogus'\n(fluentgen --help shows the options)\n");
    EXPECT_EQ(run(bin + " --cells 2x -1 --out " + dir + "/x", &out, &err, dir), 2);
    EXPECT_EQ(run(bin + " --cells 2xax2 --out " + dir + "/x", &out, &err, dir), 2);
    EXPECT_EQ(err,
              "fluentgen: option --cells: 'a' is not a whole number\n(fluentgen --help shows the options)\n");
    EXPECT_EQ(run(bin + " --int-size 6 --out " + dir + "/x", &out, &err, dir), 2);
    EXPECT_EQ(err, "fluentgen: integer size must be 4 or 8\n(fluentgen --help shows the options)\n");
    EXPECT_EQ(run(bin + " --mesh tet --hanging --out " + dir + "/x", &out, &err, dir), 2);
    EXPECT_EQ(err,
              "fluentgen: hanging nodes need a hex or quad mesh\n(fluentgen --help shows the options)\n");
    EXPECT_EQ(run(bin + " --mesh cube --out " + dir + "/x", &out, &err, dir), 2);
    EXPECT_EQ(run(bin + " --encoding text --out " + dir + "/x", &out, &err, dir), 2);
    EXPECT_EQ(run(bin + " --fields --out", &out, &err, dir), 2);
    EXPECT_EQ(run(bin + " --quiet=1 --out " + dir + "/x", &out, &err, dir), 2);
    EXPECT_FALSE(std::filesystem::exists(dir + "/x.cas"));
    fgtest::removeTree(dir);
}

TEST(FluentGenCommandLine, WritesWhatTheLibraryWrites) {
    std::string bin = fluentgenBinary();
    ASSERT_TRUE(std::filesystem::exists(bin)) << bin;
    std::string dir = fgtest::tempDir("cli-files");
    std::string out, err;
    // The example of the documentation, smaller.
    ASSERT_EQ(run(bin +
                      " --mesh hex --cells 4x3x2 --encoding binary-double --byte-order big --int-size 8 "
                      "--fields 5 --out " +
                      dir + "/sub/box",
                  &out, &err, dir),
              0)
        << err;
    EXPECT_EQ(out, dir + "/sub/box.cas\n" + dir + "/sub/box.dat\n");
    Spec s;
    s.cells = {4, 3, 2};
    s.byteOrder = fluentgen::ByteOrder::Big;
    s.intSize = 8;
    s.fields = fluentgen::standardFields(5, 3);
    EXPECT_EQ(fgtest::readFileBytes(dir + "/sub/box.cas"), fluentgen::caseText(s));
    EXPECT_EQ(fgtest::readFileBytes(dir + "/sub/box.dat"), fluentgen::dataText(s));

    // Every group of options at once.
    ASSERT_EQ(run(bin +
                      " --quiet --mesh quad --cells 4x4 --hanging --extra-sections --encoding binary-mixed "
                      "--gzip=1 --species a,b --rich-fields 2 --additional 'Heat Coef' --flow-time 1 "
                      "--delta-time-sampled 0.5 --residuals 1,2 --residual-rows 4 --residuals-301 "
                      "--particles 5 --particles 3,dust --particle-fields 1,7,8 --xml --xml-sections 2 "
                      "--series 2 --time-step 0.25 --case-per-step --zone-names varied --node-sections 2 "
                      "--out " +
                      dir + "/all",
                  &out, &err, dir),
              0)
        << err;
    EXPECT_EQ(out, "");
    Spec a;
    a.mesh = fluentgen::MeshKind::Quad;
    a.cells = {4, 4, 1};
    a.hanging = true;
    a.extraSections = true;
    a.encoding = fluentgen::Encoding::BinaryMixed;
    a.gzip = true;
    a.gzipLevel = 1;
    a.species = {"a", "b"};
    a.fields = fluentgen::richFields(2);
    a.additionalQuantities = {"Heat Coef"};
    a.flowTime = 1.0;
    a.deltaTimeSampled = 0.5;
    a.residuals.ids = {1, 2};
    a.residuals.rows = 4;
    a.residuals.scaleFactors = false;
    a.particles = {fluentgen::ParticleSpec{"injection-0", 5, {1, 7, 8}},
                   fluentgen::ParticleSpec{"dust", 3, {1, 7, 8}}};
    a.xml.enabled = true;
    a.xml.sections = 2;
    a.series.steps = 2;
    a.series.timeStep = 0.25;
    a.series.casePerStep = true;
    a.zoneNames = fluentgen::ZoneNames::Varied;
    a.nodeSections = 2;
    EXPECT_EQ(fgtest::readFileBytes(dir + "/all-00001.cas.gz"), fluentgen::caseText(a));
    EXPECT_EQ(fgtest::readFileBytes(dir + "/all-00001.dat.gz"), fluentgen::dataText(a, 1));
    EXPECT_EQ(fgtest::readFileBytes(dir + "/all.xml"), fluentgen::xmlText(a));  // XML is never compressed
    Model m(a);
    fgtest::expectDataMatchesModel(
        m, fgtest::parseFluent(fgtest::inflateIfGzip(fgtest::readFileBytes(dir + "/all-00001.dat.gz"))), 1);
    fgtest::removeTree(dir);
}
