#include "Checks.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <set>

namespace fgtest {

using fluentgen::Model;
using fluentgen::Spec;
using fluentgen::Vec3;

namespace {

struct FamilyPlan {
    bool ascii = false;
    int ints = 0, nodes = 0;
};

FamilyPlan plan(const Spec& s) {
    FamilyPlan p;
    switch (s.encoding) {
        case fluentgen::Encoding::Ascii:
            p.ascii = true;
            break;
        case fluentgen::Encoding::BinarySingle:
            p.ints = p.nodes = 2000;
            break;
        case fluentgen::Encoding::BinaryDouble:
            p.ints = p.nodes = 3000;
            break;
        case fluentgen::Encoding::BinaryMixed:
            p.ints = 2000;
            p.nodes = 3000;
            break;
    }
    return p;
}

int baseOf(int id) {
    return id % 1000;
}

std::vector<int64_t> ints(const Section& s, const ParsedFile& f) {
    if (s.id < 2000) {
        return asciiHexInts(asciiBodyInner(s.body));
    }
    return binaryInts(s.body, f.intSize, f.bigEndian);
}

std::vector<double> reals(const Section& s, const ParsedFile& f) {
    if (s.id < 2000) {
        return asciiReals(asciiBodyInner(s.body));
    }
    return binaryReals(s.body, s.id < 3000, f.bigEndian);
}

double asStored(double v, bool single) {
    return single ? static_cast<double>(static_cast<float>(v)) : v;
}

// Number behind `key` in a text, NaN when absent.
double numberAfter(const std::string& text, const std::string& key) {
    size_t at = text.find(key);
    if (at == std::string::npos) {
        return std::nan("");
    }
    return std::strtod(text.c_str() + at + key.size(), nullptr);
}

}  // namespace

void expectCaseMatchesModel(const Model& m, const ParsedFile& f) {
    ASSERT_EQ(f.error, "");
    const Spec& spec = m.spec();
    FamilyPlan fam = plan(spec);
    EXPECT_EQ(f.bigEndian, spec.byteOrder == fluentgen::ByteOrder::Big);
    EXPECT_EQ(f.intSize, spec.intSize);
    size_t cz = 0, fz = 0, tr = 0, pr = 0, ns = 0, parts = 0;
    bool dimsSeen = false, vars = false, decl12 = false, decl13 = false, decl10 = false;
    std::set<int> named;
    for (const Section& sec : f.sections) {
        int base = baseOf(sec.id);
        int family = sec.id - base;
        SCOPED_TRACE("section " + std::to_string(sec.id) + " (" + sec.header.substr(0, 40) + ")");
        std::vector<std::string> w = words(sec.header);
        switch (base) {
            case 0:
            case 4:
                break;
            case 2:
                dimsSeen = true;
                EXPECT_EQ(sec.header, std::to_string(m.dimensions()));
                break;
            case 37: {
                // The section's whole body is its first parenthesised group.
                const std::string& body = sec.header;
                vars = true;
                EXPECT_EQ(sec.id, 37);
                std::string axi = spec.axisymmetric ? "(rp-axi? . #t)" : "(rp-axi? . #f)";
                EXPECT_NE(body.find(axi), std::string::npos);
                size_t a = body.find("(rp-axi? . #");
                size_t d = body.find("(rp-double? . #");
                EXPECT_LT(a, d) << "rp-axi? must come first";
                if (!spec.species.empty()) {
                    std::string list = "(species (names (";
                    for (size_t i = 0; i < spec.species.size(); ++i) {
                        list += (i ? " " : "") + spec.species[i];
                    }
                    EXPECT_NE(body.find(list + "))"), std::string::npos);
                }
                break;
            }
            case 33: {
                ASSERT_EQ(w.size(), 3u);
                EXPECT_EQ(std::stoll(w[0]), m.cellCount());
                EXPECT_EQ(std::stoll(w[1]), m.faceCount());
                EXPECT_EQ(std::stoll(w[2]), m.nodeCount());
                EXPECT_TRUE(spec.extraSections);
                break;
            }
            case 12: {
                ASSERT_GE(w.size(), 4u);
                if (hexWord(w[0]) == 0) {
                    decl12 = true;
                    EXPECT_EQ(sec.id, 12);
                    EXPECT_EQ(hexWord(w[2]), m.cellCount());
                    break;
                }
                ASSERT_LT(cz, m.cellZones().size());
                const fluentgen::CellZoneInfo& z = m.cellZones()[cz++];
                EXPECT_EQ(family, fam.ints);
                ASSERT_EQ(w.size(), 5u);
                EXPECT_EQ(hexWord(w[0]), z.id);
                EXPECT_EQ(hexWord(w[1]), z.first);
                EXPECT_EQ(hexWord(w[2]), z.last);
                EXPECT_EQ(hexWord(w[3]), z.type);
                EXPECT_EQ(std::stoi(w[4]), z.elementType);
                if (z.elementType == 0) {
                    std::vector<int64_t> t = ints(sec, f);
                    ASSERT_EQ(static_cast<int64_t>(t.size()), z.last - z.first + 1);
                    for (int64_t c = z.first; c <= z.last; ++c) {
                        ASSERT_EQ(t[static_cast<size_t>(c - z.first)], m.cellType(c)) << "cell " << c;
                    }
                } else {
                    EXPECT_TRUE(words(sec.body).empty());
                }
                break;
            }
            case 13: {
                ASSERT_GE(w.size(), 4u);
                if (hexWord(w[0]) == 0) {
                    decl13 = true;
                    EXPECT_EQ(hexWord(w[2]), m.faceCount());
                    break;
                }
                ASSERT_LT(fz, m.faceZones().size());
                size_t zi = fz++;
                const fluentgen::FaceZoneInfo& z = m.faceZones()[zi];
                EXPECT_EQ(family, fam.ints);
                ASSERT_EQ(w.size(), 5u);
                EXPECT_EQ(hexWord(w[0]), z.id);
                EXPECT_EQ(hexWord(w[1]), z.first);
                EXPECT_EQ(hexWord(w[2]), z.last);
                EXPECT_EQ(hexWord(w[3]), z.bcType);
                EXPECT_EQ(std::stoi(w[4]), z.faceType);
                std::vector<int64_t> v = ints(sec, f);
                size_t at = 0;
                int64_t faces = 0;
                int bad = 0;
                m.forEachFace(zi, [&](const int64_t* nodes, int n, int64_t c0, int64_t c1) {
                    ++faces;
                    if (bad > 3) {
                        return;
                    }
                    int count = z.faceType;
                    if (z.faceType == 0 || z.faceType == 5) {
                        count = at < v.size() ? static_cast<int>(v[at++]) : -1;
                    }
                    if (count != n || at + static_cast<size_t>(n) + 2 > v.size()) {
                        ADD_FAILURE()
                            << "face " << z.first + faces - 1 << ": node count " << count << " vs " << n;
                        ++bad;
                        return;
                    }
                    for (int k = 0; k < n; ++k) {
                        if (v[at + static_cast<size_t>(k)] != nodes[k]) {
                            ADD_FAILURE() << "face " << z.first + faces - 1 << " node " << k;
                            ++bad;
                        }
                    }
                    at += static_cast<size_t>(n);
                    if (v[at] != c0 || v[at + 1] != c1) {
                        ADD_FAILURE() << "face " << z.first + faces - 1 << " cells " << v[at] << " "
                                      << v[at + 1] << " vs " << c0 << " " << c1;
                        ++bad;
                    }
                    at += 2;
                });
                EXPECT_EQ(at, v.size());
                EXPECT_EQ(faces, z.last - z.first + 1);
                break;
            }
            case 58:
            case 59: {
                ASSERT_LT(tr, m.trees().size());
                size_t ti = tr++;
                const fluentgen::FaceTreeInfo& t = m.trees()[ti];
                EXPECT_EQ(base, t.sectionBase);
                EXPECT_EQ(family, fam.ints);
                ASSERT_EQ(w.size(), 4u);
                EXPECT_EQ(hexWord(w[0]), t.first);
                EXPECT_EQ(hexWord(w[1]), t.last);
                EXPECT_EQ(hexWord(w[2]), t.parentZoneId);
                EXPECT_EQ(hexWord(w[3]), t.childZoneId);
                std::vector<int64_t> v = ints(sec, f);
                size_t at = 0;
                for (int64_t p = t.first; p <= t.last; ++p) {
                    std::vector<int64_t> kids = m.treeChildren(ti, p);
                    ASSERT_LT(at, v.size());
                    ASSERT_EQ(v[at], static_cast<int64_t>(kids.size())) << "parent " << p;
                    ++at;
                    for (int64_t k : kids) {
                        ASSERT_EQ(v[at++], k) << "parent " << p;
                    }
                }
                EXPECT_EQ(at, v.size());
                break;
            }
            case 18:
            case 61:
            case 62: {
                ASSERT_LT(pr, m.facePairs().size());
                size_t pi = pr++;
                const fluentgen::FacePairsInfo& p = m.facePairs()[pi];
                EXPECT_EQ(base, p.sectionBase);
                EXPECT_EQ(family, fam.ints);
                if (base == 62) {
                    ASSERT_EQ(w.size(), 3u);
                    EXPECT_EQ(std::stoi(w[0]), p.zoneA);
                    EXPECT_EQ(std::stoi(w[1]), p.zoneB);
                    EXPECT_EQ(std::stoll(w[2]), p.count);
                } else if (base == 61) {
                    ASSERT_EQ(w.size(), 2u);
                    EXPECT_EQ(hexWord(w[0]), p.first);
                    EXPECT_EQ(hexWord(w[1]), p.last);
                } else {
                    ASSERT_EQ(w.size(), 4u);
                    EXPECT_EQ(hexWord(w[0]), 1);
                    EXPECT_EQ(hexWord(w[1]), p.count);
                    EXPECT_EQ(hexWord(w[2]), p.zoneA);
                    EXPECT_EQ(hexWord(w[3]), p.zoneB);
                }
                std::vector<int64_t> v = ints(sec, f);
                ASSERT_EQ(static_cast<int64_t>(v.size()), 2 * p.count);
                for (int64_t k = 0; k < p.count; ++k) {
                    std::pair<int64_t, int64_t> ab = m.facePair(pi, k);
                    ASSERT_EQ(v[static_cast<size_t>(2 * k)], ab.first);
                    ASSERT_EQ(v[static_cast<size_t>(2 * k + 1)], ab.second);
                }
                break;
            }
            case 10: {
                ASSERT_GE(w.size(), 4u);
                if (hexWord(w[0]) == 0) {
                    decl10 = true;
                    EXPECT_EQ(hexWord(w[2]), m.nodeCount());
                    ASSERT_EQ(w.size(), 5u);
                    EXPECT_EQ(std::stoi(w[4]), m.dimensions());
                    break;
                }
                ASSERT_LT(ns, m.nodeSections().size());
                std::pair<int64_t, int64_t> range = m.nodeSections()[ns++];
                EXPECT_EQ(family, fam.nodes);
                ASSERT_EQ(w.size(), 5u);
                EXPECT_EQ(hexWord(w[1]), range.first);
                EXPECT_EQ(hexWord(w[2]), range.second);
                EXPECT_EQ(std::stoi(w[4]), m.dimensions());
                std::vector<double> v = reals(sec, f);
                int d = m.dimensions();
                ASSERT_EQ(static_cast<int64_t>(v.size()), (range.second - range.first + 1) * d);
                bool single = sec.id >= 2000 && sec.id < 3000;
                for (int64_t id = range.first; id <= range.second; ++id) {
                    Vec3 p = m.node(id);
                    size_t k = static_cast<size_t>((id - range.first) * d);
                    ASSERT_EQ(v[k], asStored(p.x, single)) << "node " << id;
                    ASSERT_EQ(v[k + 1], asStored(p.y, single)) << "node " << id;
                    if (d == 3) {
                        ASSERT_EQ(v[k + 2], asStored(p.z, single)) << "node " << id;
                    }
                }
                break;
            }
            case 40: {
                EXPECT_TRUE(spec.extraSections);
                ASSERT_LT(parts, m.cellZones().size());
                const fluentgen::CellZoneInfo& z = m.cellZones()[parts++];
                ASSERT_EQ(w.size(), 4u);
                EXPECT_EQ(hexWord(w[0]), z.id);
                EXPECT_EQ(hexWord(w[1]), z.first);
                EXPECT_EQ(hexWord(w[2]), z.last);
                std::vector<int64_t> v = ints(sec, f);
                ASSERT_EQ(static_cast<int64_t>(v.size()), z.last - z.first + 1);
                for (int64_t p : v) {
                    EXPECT_GE(p, 0);
                    EXPECT_LT(p, hexWord(w[3]));
                }
                break;
            }
            case 39:
            case 45: {
                ASSERT_GE(w.size(), 3u);
                int id = std::stoi(w[0]);
                std::string name = w[2];
                if (!name.empty() && name.back() == ')') {
                    name.pop_back();
                }
                bool found = false;
                for (const fluentgen::CellZoneInfo& z : m.cellZones()) {
                    if (z.id == id) {
                        found = true;
                        EXPECT_EQ(z.nameSection, base);
                        EXPECT_EQ(z.name, name);
                    }
                }
                for (const fluentgen::FaceZoneInfo& z : m.faceZones()) {
                    if (z.id == id) {
                        found = true;
                        EXPECT_EQ(z.nameSection, base);
                        EXPECT_EQ(z.name, name);
                    }
                }
                EXPECT_TRUE(found) << "zone " << id;
                named.insert(id);
                break;
            }
            default:
                ADD_FAILURE() << "unexpected section " << sec.id;
        }
    }
    EXPECT_TRUE(dimsSeen && vars && decl12 && decl13 && decl10);
    EXPECT_EQ(cz, m.cellZones().size());
    EXPECT_EQ(fz, m.faceZones().size());
    EXPECT_EQ(tr, m.trees().size());
    EXPECT_EQ(pr, m.facePairs().size());
    EXPECT_EQ(ns, m.nodeSections().size());
    EXPECT_EQ(parts, spec.extraSections ? m.cellZones().size() : 0u);
    size_t shouldBeNamed = 0;
    for (const fluentgen::CellZoneInfo& z : m.cellZones()) {
        shouldBeNamed += z.nameSection != 0;
    }
    for (const fluentgen::FaceZoneInfo& z : m.faceZones()) {
        shouldBeNamed += z.nameSection != 0;
    }
    EXPECT_EQ(named.size(), shouldBeNamed);
}

void expectDataMatchesModel(const Model& m, const ParsedFile& f, int step) {
    ASSERT_EQ(f.error, "");
    const Spec& spec = m.spec();
    std::vector<fluentgen::DataSectionInfo> ds = m.dataSections();
    std::stable_partition(ds.begin(), ds.end(),
                          [](const fluentgen::DataSectionInfo& d) { return !d.additional; });
    std::vector<fluentgen::ResidualSectionInfo> rs = m.residualSections();
    std::vector<fluentgen::ParticleSectionInfo> ps = m.particleSections(step);
    size_t di = 0, ri = 0, pi = 0;
    bool vars = false, size = false;
    for (const Section& sec : f.sections) {
        int base = baseOf(sec.id);
        SCOPED_TRACE("section " + std::to_string(sec.id) + " (" + sec.header.substr(0, 40) + ")");
        std::vector<std::string> w = words(sec.header);
        switch (base) {
            case 0:
            case 4:
                break;
            case 33:
                size = true;
                ASSERT_EQ(w.size(), 3u);
                EXPECT_EQ(std::stoll(w[0]), m.cellCount());
                EXPECT_EQ(std::stoll(w[1]), m.faceCount());
                EXPECT_EQ(std::stoll(w[2]), m.nodeCount());
                break;
            case 37: {
                const std::string& body = sec.header;
                vars = true;
                EXPECT_EQ(numberAfter(body, "flow-time"), m.flowTime(step));
                EXPECT_EQ(numberAfter(body, "delta-time-sampled"), spec.deltaTimeSampled);
                // The cell-function list stands ahead of every other "((" of the section.
                if (!spec.additionalQuantities.empty()) {
                    size_t list = body.find("cell-function-list");
                    ASSERT_NE(list, std::string::npos);
                    EXPECT_GT(body.find("(("), list);
                    size_t at = list;
                    for (size_t q = 0; q < spec.additionalQuantities.size(); ++q) {
                        std::string entry = "(" + std::to_string(q + 1) + " \"";
                        at = body.find(entry, at);
                        ASSERT_NE(at, std::string::npos);
                        size_t one = body.find('"', at + entry.size());
                        std::string two = "\"" + spec.additionalQuantities[q] + "\"";
                        EXPECT_EQ(body.compare(one + 2, two.size(), two), 0) << spec.additionalQuantities[q];
                    }
                    EXPECT_NE(body.find("))))", list), std::string::npos);
                } else {
                    EXPECT_EQ(body.find("cell-function-list"), std::string::npos);
                }
                break;
            }
            case 300:
            case 314: {
                ASSERT_LT(di, ds.size());
                const fluentgen::DataSectionInfo& d = ds[di++];
                EXPECT_EQ(sec.id, d.sectionId);
                ASSERT_EQ(w.size(), 7u);
                EXPECT_EQ(std::stoi(w[0]), d.fieldId);
                EXPECT_EQ(std::stoi(w[1]), d.zoneId);
                EXPECT_EQ(std::stoi(w[2]), d.dimension);
                EXPECT_EQ(std::stoi(w[4]), d.phase);
                EXPECT_EQ(std::stoll(w[5]), d.firstId);
                EXPECT_EQ(std::stoll(w[6]), d.lastId);
                EXPECT_EQ(d.lastId - d.firstId + 1, d.count);
                std::vector<double> v = reals(sec, f);
                ASSERT_EQ(static_cast<int64_t>(v.size()), d.count * d.dimension);
                for (int64_t e = 0; e < d.count; ++e) {
                    for (int c = 0; c < d.dimension; ++c) {
                        size_t k =
                            static_cast<size_t>(d.componentMajor ? c * d.count + e : e * d.dimension + c);
                        ASSERT_EQ(v[k], m.dataValue(d, e, c, step)) << "element " << e << " component " << c;
                    }
                }
                break;
            }
            case 301:
            case 302: {
                ASSERT_LT(ri, rs.size());
                const fluentgen::ResidualSectionInfo& r = rs[ri++];
                EXPECT_EQ(sec.id, r.sectionId);
                ASSERT_EQ(w.size(), spec.residuals.fourHeaderNumbers ? 4u : 3u);
                EXPECT_EQ(std::stoi(w[0]), r.rows);
                EXPECT_EQ(std::stoi(w[1]), r.residualId);
                EXPECT_EQ(std::stoi(w[2]), r.width);
                std::vector<double> v = reals(sec, f);
                int per = 1 + r.width * (r.scaleFactors ? 2 : 1);
                ASSERT_EQ(v.size(), static_cast<size_t>(r.rows * per));
                for (int row = 0; row < r.rows; ++row) {
                    const double* p = &v[static_cast<size_t>(row * per)];
                    EXPECT_EQ(p[0], spec.residuals.firstIteration + row);
                    for (int c = 0; c < r.width; ++c) {
                        EXPECT_EQ(p[1 + c],
                                  asStored(fluentgen::residualFormula(r.residualId, row, c), r.single));
                        if (r.scaleFactors) {
                            EXPECT_EQ(
                                p[1 + r.width + c],
                                asStored(fluentgen::residualScaleFormula(r.residualId, row, c), r.single));
                        }
                    }
                }
                break;
            }
            case 303: {
                ASSERT_LT(pi, ps.size());
                const fluentgen::ParticleSectionInfo& p = ps[pi];
                EXPECT_EQ(sec.id, p.sectionId);
                ASSERT_EQ(w.size(), 4u);
                EXPECT_EQ(w[0], p.name);
                EXPECT_EQ(std::stoi(w[1]), p.count);
                EXPECT_EQ(std::strtod(w[2].c_str(), nullptr), p.time);
                EXPECT_EQ(std::stoi(w[3]), p.dimensions);
                // Subsections: binary ones from the parser; ASCII ones here.
                std::vector<std::pair<int, std::vector<double>>> subs;
                if (sec.id >= 2000) {
                    for (const Section& sub : sec.subsections) {
                        std::vector<double> v;
                        if (fluentgen::isIntegerParticleField(sub.id)) {
                            for (int64_t i : binaryInts(sub.body, f.intSize, f.bigEndian)) {
                                v.push_back(static_cast<double>(i));
                            }
                        } else {
                            v = binaryReals(sub.body, p.single, f.bigEndian);
                        }
                        subs.push_back({sub.id, v});
                    }
                } else {
                    const std::string& b = sec.body;
                    size_t at = 0;
                    while ((at = b.find('(', at)) != std::string::npos) {
                        int id = std::atoi(b.c_str() + at + 1);
                        size_t open = b.find('(', at + 1);
                        size_t close = b.find(')', open);
                        subs.push_back({id, asciiReals(b.substr(open + 1, close - open - 1))});
                        at = b.find(')', close + 1) + 1;
                    }
                }
                ASSERT_EQ(subs.size(), p.fieldIds.size());
                for (size_t k = 0; k < subs.size(); ++k) {
                    int fid = p.fieldIds[k];
                    EXPECT_EQ(subs[k].first, fid);
                    ASSERT_EQ(subs[k].second.size(), static_cast<size_t>(p.count)) << "field " << fid;
                    bool integer = fluentgen::isIntegerParticleField(fid);
                    for (int j = 0; j < p.count; ++j) {
                        double want = fluentgen::particleFormula(fid, static_cast<int>(pi), j, p.time);
                        EXPECT_EQ(subs[k].second[static_cast<size_t>(j)],
                                  integer ? want : asStored(want, p.single))
                            << "field " << fid << " particle " << j;
                    }
                }
                ++pi;
                break;
            }
            default:
                ADD_FAILURE() << "unexpected section " << sec.id;
        }
    }
    EXPECT_TRUE(vars && size);
    EXPECT_EQ(di, ds.size());
    EXPECT_EQ(ri, rs.size());
    EXPECT_EQ(pi, ps.size());
}

FileMesh meshFromFile(const ParsedFile& f) {
    FileMesh mesh;
    for (const Section& sec : f.sections) {
        int base = baseOf(sec.id);
        std::vector<std::string> w = words(sec.header);
        if (base == 2) {
            mesh.dims = std::stoi(sec.header);
        } else if (base == 10 && hexWord(w[0]) == 0) {
            mesh.nodes.resize(static_cast<size_t>(hexWord(w[2])));
        } else if (base == 13 && hexWord(w[0]) == 0) {
            mesh.faces.resize(static_cast<size_t>(hexWord(w[2])));
        } else if (base == 10) {
            std::vector<double> v = reals(sec, f);
            int64_t first = hexWord(w[1]);
            for (size_t k = 0; k + static_cast<size_t>(mesh.dims) <= v.size();
                 k += static_cast<size_t>(mesh.dims)) {
                Vec3 p{v[k], v[k + 1], mesh.dims == 3 ? v[k + 2] : 0.0};
                mesh.nodes.at(static_cast<size_t>(first - 1) + k / static_cast<size_t>(mesh.dims)) = p;
            }
        } else if (base == 12 && hexWord(w[0]) != 0) {
            mesh.cellZones.push_back({static_cast<int>(hexWord(w[0])), static_cast<int>(hexWord(w[3])),
                                      std::stoi(w[4]), hexWord(w[1]), hexWord(w[2])});
        } else if (base == 13) {
            int zone = static_cast<int>(hexWord(w[0]));
            int64_t first = hexWord(w[1]), last = hexWord(w[2]);
            int bc = static_cast<int>(hexWord(w[3]));
            int type = std::stoi(w[4]);
            std::vector<int64_t> v = ints(sec, f);
            size_t at = 0;
            for (int64_t id = first; id <= last; ++id) {
                int n = (type == 0 || type == 5) ? static_cast<int>(v.at(at++)) : type;
                FileMesh::Face face;
                face.nodes.assign(v.begin() + static_cast<long>(at), v.begin() + static_cast<long>(at) + n);
                at += static_cast<size_t>(n);
                face.c0 = v.at(at);
                face.c1 = v.at(at + 1);
                at += 2;
                face.zoneId = zone;
                face.bcType = bc;
                mesh.faces.at(static_cast<size_t>(id - 1)) = face;
            }
        } else if (base == 61) {
            mesh.copies.push_back({hexWord(w[0]), hexWord(w[1])});
        } else if (base == 59) {
            int64_t first = hexWord(w[0]), last = hexWord(w[1]);
            std::vector<int64_t> v = ints(sec, f);
            size_t at = 0;
            for (int64_t p = first; p <= last; ++p) {
                int64_t n = v.at(at++);
                for (int64_t k = 0; k < n; ++k) {
                    mesh.faceChildren[p].push_back(v.at(at++));
                }
            }
        }
    }
    return mesh;
}

namespace {

// Per cell: its faces, each with a flag telling whether the cell is on side 0.
std::map<int64_t, std::vector<std::pair<int64_t, bool>>> cellFaces(const FileMesh& mesh) {
    std::map<int64_t, std::vector<std::pair<int64_t, bool>>> out;
    std::set<std::pair<int64_t, int64_t>> dropped;  // (cell, face): children a coarse cell does not see
    for (const auto& pc : mesh.faceChildren) {
        const FileMesh::Face& parent = mesh.faces.at(static_cast<size_t>(pc.first - 1));
        for (int64_t k : pc.second) {
            const FileMesh::Face& kid = mesh.faces.at(static_cast<size_t>(k - 1));
            for (int64_t c : {kid.c0, kid.c1}) {
                if (c > 0 && (c == parent.c0 || c == parent.c1)) {
                    dropped.insert({c, k});
                }
            }
        }
    }
    for (size_t i = 0; i < mesh.faces.size(); ++i) {
        const FileMesh::Face& f = mesh.faces[i];
        int64_t id = static_cast<int64_t>(i) + 1;
        bool copy = false;
        for (const auto& r : mesh.copies) {
            copy = copy || (id >= r.first && id <= r.second);
        }
        if (copy) {
            continue;  // an interface face standing for other faces
        }
        if (f.c0 > 0 && !dropped.count({f.c0, id})) {
            out[f.c0].push_back({id, true});
        }
        if (f.c1 > 0 && !dropped.count({f.c1, id})) {
            out[f.c1].push_back({id, false});
        }
    }
    return out;
}

}  // namespace

std::map<int64_t, std::vector<int64_t>> cellNodesFromFaces(const FileMesh& mesh) {
    std::map<int64_t, std::vector<int64_t>> out;
    for (const auto& cf : cellFaces(mesh)) {
        std::vector<int64_t>& ns = out[cf.first];
        for (const auto& fs : cf.second) {
            for (int64_t n : mesh.faces[static_cast<size_t>(fs.first - 1)].nodes) {
                if (std::find(ns.begin(), ns.end(), n) == ns.end()) {
                    ns.push_back(n);
                }
            }
        }
    }
    return out;
}

void expectMeshValid(const FileMesh& mesh, const Model& m) {
    ASSERT_EQ(static_cast<int64_t>(mesh.nodes.size()), m.nodeCount());
    for (const FileMesh::Face& f : mesh.faces) {
        ASSERT_FALSE(f.nodes.empty()) << "a face number without a face";
    }
    auto faces = cellFaces(mesh);
    auto nodes = cellNodesFromFaces(mesh);
    ASSERT_EQ(static_cast<int64_t>(faces.size()), m.cellCount());
    const Spec& s = m.spec();
    double total = 0.0, parents = 0.0;
    int bad = 0;
    for (const auto& cf : faces) {
        int64_t cell = cf.first;
        std::map<std::pair<int64_t, int64_t>, int> edges;
        double volume = 0.0;
        for (const auto& fs : cf.second) {
            std::vector<int64_t> v = mesh.faces[static_cast<size_t>(fs.first - 1)].nodes;
            // Outward: in 3D the normal points into c0, so side 0 turns the face
            // round; in 2D the cell of side 0 lies left, which is the
            // counter-clockwise boundary already.
            bool reverse = mesh.dims == 3 ? fs.second : !fs.second;
            if (reverse) {
                std::reverse(v.begin(), v.end());
            }
            for (size_t k = 0; k < v.size(); ++k) {
                if (mesh.dims == 2 && k == 1) {
                    break;
                }
                edges[{v[k], v[(k + 1) % v.size()]}]++;
            }
            const Vec3& p0 = mesh.nodes[static_cast<size_t>(v[0] - 1)];
            if (mesh.dims == 2) {
                const Vec3& p1 = mesh.nodes[static_cast<size_t>(v[1] - 1)];
                volume += 0.5 * (p0.x * p1.y - p1.x * p0.y);
            } else {
                for (size_t k = 1; k + 1 < v.size(); ++k) {
                    const Vec3& a = mesh.nodes[static_cast<size_t>(v[k] - 1)];
                    const Vec3& b = mesh.nodes[static_cast<size_t>(v[k + 1] - 1)];
                    volume += (p0.x * (a.y * b.z - a.z * b.y) - p0.y * (a.x * b.z - a.z * b.x) +
                               p0.z * (a.x * b.y - a.y * b.x)) /
                              6.0;
                }
            }
        }
        // 3D: every edge of the outward faces once in each direction. 2D: the
        // edges form a cycle, one out of and one into every node.
        std::map<int64_t, int> out, in;
        for (const auto& e : edges) {
            out[e.first.first] += e.second;
            in[e.first.second] += e.second;
        }
        for (const auto& e : edges) {
            auto back = edges.find({e.first.second, e.first.first});
            bool closed = mesh.dims == 3 ? (e.second == 1 && back != edges.end() && back->second == 1)
                                         : (out[e.first.first] == 1 && in[e.first.first] == 1 &&
                                            out[e.first.second] == 1 && in[e.first.second] == 1);
            if (!closed) {
                if (++bad < 5) {
                    ADD_FAILURE() << "cell " << cell << " is not closed at edge " << e.first.first << "-"
                                  << e.first.second;
                }
                break;
            }
        }
        if (!(volume > 0.0)) {
            if (++bad < 5) {
                ADD_FAILURE() << "cell " << cell << " has volume " << volume;
            }
        }
        bool parent = false;
        for (const fluentgen::CellZoneInfo& z : m.cellZones()) {
            if (cell >= z.first && cell <= z.last && z.type == 32 && s.hanging) {
                parent = true;
            }
        }
        (parent ? parents : total) += volume;
        // The centre from the file's own nodes agrees with the model's.
        Vec3 c;
        const std::vector<int64_t>& ns = nodes[cell];
        for (int64_t n : ns) {
            const Vec3& p = mesh.nodes[static_cast<size_t>(n - 1)];
            c.x += p.x / double(ns.size());
            c.y += p.y / double(ns.size());
            c.z += p.z / double(ns.size());
        }
        Vec3 want = m.cellCentre(cell);
        double tol = 1e-5 * (1.0 + std::fabs(want.x) + std::fabs(want.y) + std::fabs(want.z));
        if (std::fabs(c.x - want.x) > tol || std::fabs(c.y - want.y) > tol || std::fabs(c.z - want.z) > tol) {
            if (++bad < 5) {
                ADD_FAILURE() << "cell " << cell << " centre differs from the model's";
            }
        }
        std::vector<int64_t> a = ns, b = m.cellNodes(cell);
        std::sort(a.begin(), a.end());
        std::sort(b.begin(), b.end());
        if (a != b && ++bad < 5) {
            ADD_FAILURE() << "cell " << cell << " nodes from faces differ from the model's";
        }
    }
    double box = s.spacing[0] * s.cells[0] * s.spacing[1] * s.cells[1] *
                 (m.dimensions() == 3 ? s.spacing[2] * s.cells[2] : 1.0);
    EXPECT_NEAR(total, box, 1e-6 * box);
    if (s.hanging) {
        EXPECT_GT(parents, 0.0);
        EXPECT_LE(parents, box * (1.0 + 1e-9));
    }
}

std::string tempDir(const std::string& tag) {
    static std::atomic<int> counter{0};
    std::filesystem::path p =
        std::filesystem::temp_directory_path() /
        ("fluentgen-" + tag + "-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
    std::filesystem::create_directories(p);
    return p.string();
}

void removeTree(const std::string& dir) {
    std::error_code ec;
    std::filesystem::remove_all(dir, ec);
}

}  // namespace fgtest
