// fluentgen: the command line of the test-file writer.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/fluentgen/FluentGen.h"

namespace {

const char* kUsage =
    "Usage: fluentgen [options] --out DIR/NAME\n"
    "\n"
    "Writes a Fluent case file DIR/NAME.cas and, when anything of a data file is asked\n"
    "for, DIR/NAME.dat (a series: DIR/NAME-00000.dat ...), and DIR/NAME.xml. Every\n"
    "coordinate and value follows a formula of the fluentgen library, so readers can be\n"
    "checked number by number.\n"
    "\n"
    "Mesh:\n"
    "  --mesh KIND            hex (default), tet, wedge, pyramid, mixed, poly,\n"
    "                         quad, tri, mixed2d, polygon\n"
    "  --cells NXxNYxNZ       blocks along x, y, z (2D: NXxNY); default 2x2x2.\n"
    "                         tet: 6 cells a block, wedge 2, pyramid 6, mixed by layer\n"
    "  --spacing DXxDYxDZ     block size; default 0.1x0.2x0.3\n"
    "  --origin XxYxZ         lowest corner; default 0x0x0\n"
    "  --cell-zones T,T,...   one cell zone per type, in slabs along x (1 fluid,\n"
    "                         17 solid, 32 ...); default 1\n"
    "  --boundary-types T,... types of the sides x-,x+,y-,y+,z-,z+ (any numbers,\n"
    "                         31, 38, 1000 and above included)\n"
    "  --zone-names MODE      39 (default), 45, none, varied (39, 45 and none in turn)\n"
    "  --mixed-cells          write uniform cell zones as mixed, with a type per cell\n"
    "  --mixed-faces          write face zones as mixed (face type 0, a count per face)\n"
    "  --polygon-face-type T  5 (default) or 0 for zones holding polygons\n"
    "  --hanging              refine a corner region (hex, quad): Face Tree (59) and\n"
    "                         Cell Tree (58) sections, parent zones of types 31 and 32,\n"
    "                         Child Faces (62) pairing a copy with the boundary parents\n"
    "  --extra-sections       periodic x sides (18), grid size (33), partitions (40),\n"
    "                         copies of sides in zones of types 1012 and 38 with\n"
    "                         Interface Face Parents (61) and Child Faces (62)\n"
    "  --node-sections N      write the nodes in N sections\n"
    "\n"
    "Encoding:\n"
    "  --encoding E           ascii, binary-single, binary-double (default),\n"
    "                         binary-mixed (integer sections single, nodes double,\n"
    "                         data sections alternating)\n"
    "  --byte-order B         little (default) or big\n"
    "  --int-size N           4 (default) or 8\n"
    "  --gzip[=LEVEL]         compress the case and data files (level 1-9, default 6)\n"
    "\n"
    "Case variables:\n"
    "  --species A,B,...      species names\n"
    "  --axisymmetric         (rp-axi? . #t)\n"
    "  --rp-double yes|no     (rp-double? . #t / #f); default: yes unless binary-single\n"
    "\n"
    "Data file:\n"
    "  --fields N             the first N fields of a plain solution (pressure,\n"
    "                         velocities, density, temperature, ...)\n"
    "  --field ID[:DIM[:PHASE]][,unstored][,boundaries]\n"
    "                         one field (repeatable); unstored: first id -1;\n"
    "                         boundaries: also on the boundary face zones\n"
    "  --rich-fields N        species (200, dimension N), 400/401, 1000/1050, a vector\n"
    "                         (15), user memories (970), phases 2 and 3, an unstored\n"
    "                         field and a field on the boundaries\n"
    "  --face-data            write every field on the boundary face zones too\n"
    "  --additional NAME,...  additional quantities: cell-function list and 314 sections\n"
    "  --flow-time T          flow time of the (first) data file\n"
    "  --delta-time-sampled T\n"
    "  --residuals ID,...     residual histories (302 family), one per id\n"
    "  --residual-rows N      iterations held (default 10)\n"
    "  --residual-width N     numbers per row and kind (default 1)\n"
    "  --residual-first N     iteration number of the first row (default 1)\n"
    "  --residuals-301        without scale factors (301 family)\n"
    "  --residual-header3     headers of three numbers\n"
    "  --particles N[,NAME]   a Particle section (303 family) of N particles (repeatable)\n"
    "  --particle-fields ID,...  variables of the particle sections (default\n"
    "                         1,2,3,7,8,9,10,11,12,13,15,16,48,49)\n"
    "\n"
    "XML particle file:\n"
    "  --xml                  write DIR/NAME.xml\n"
    "  --xml-sections N       Section elements (default 1)\n"
    "  --xml-particles N      particles per section (default 8)\n"
    "  --xml-ascii            real arrays as ASCII instead of Base64/LE\n"
    "  --xml-size             sections give size=\"N\" and length=\"0\"\n"
    "  --xml-no-format        leave out the Format element\n"
    "\n"
    "Series:\n"
    "  --series N             N data files of increasing flow time\n"
    "  --time-step DT         flow time between them (default 0.1)\n"
    "  --case-per-step        a case file for each data file\n"
    "\n"
    "  --quiet                do not list the written files\n"
    "  --help                 this text\n"
    "\n"
    "Example: fluentgen --mesh hex --cells 20x20x20 --encoding binary-double \\\n"
    "             --byte-order big --int-size 8 --fields 5 --out out/box\n"
    "Exit status: 0 written, 1 write failure, 2 usage error.\n";

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

long long toInt(const std::string& s, const std::string& option) {
    errno = 0;
    char* end = nullptr;
    long long v = std::strtoll(s.c_str(), &end, 10);
    if (s.empty() || errno != 0 || *end != '\0') {
        throw UsageError("option " + option + ": '" + s + "' is not a whole number");
    }
    return v;
}

int toSmallInt(const std::string& s, const std::string& option, long long lo, long long hi) {
    long long v = toInt(s, option);
    if (v < lo || v > hi) {
        throw UsageError("option " + option + ": " + s + " is out of range " + std::to_string(lo) + " to " +
                         std::to_string(hi));
    }
    return static_cast<int>(v);
}

double toReal(const std::string& s, const std::string& option) {
    errno = 0;
    char* end = nullptr;
    double v = std::strtod(s.c_str(), &end);
    if (s.empty() || errno != 0 || *end != '\0') {
        throw UsageError("option " + option + ": '" + s + "' is not a number");
    }
    return v;
}

std::vector<std::string> split(const std::string& s, char sep) {
    std::vector<std::string> out;
    std::string cur;
    for (char c : s) {
        if (c == sep) {
            out.push_back(cur);
            cur.clear();
        } else {
            cur += c;
        }
    }
    out.push_back(cur);
    return out;
}

// "AxBxC" with reals that may be negative.
std::vector<std::string> splitDims(const std::string& s) {
    return split(s, 'x');
}

std::vector<int> intList(const std::string& s, const std::string& option) {
    std::vector<int> out;
    for (const std::string& w : split(s, ',')) {
        out.push_back(toSmallInt(w, option, -1000000, 1000000));
    }
    return out;
}

fluentgen::MeshKind meshKind(const std::string& s) {
    using fluentgen::MeshKind;
    static const std::pair<const char*, MeshKind> kinds[] = {
        {"hex", MeshKind::Hex},          {"tet", MeshKind::Tet},     {"wedge", MeshKind::Wedge},
        {"pyramid", MeshKind::Pyramid},  {"mixed", MeshKind::Mixed}, {"poly", MeshKind::Polyhedral},
        {"quad", MeshKind::Quad},        {"tri", MeshKind::Tri},     {"mixed2d", MeshKind::Mixed2D},
        {"polygon", MeshKind::Polygonal}};
    for (const auto& k : kinds) {
        if (s == k.first) {
            return k.second;
        }
    }
    throw UsageError("option --mesh: unknown kind '" + s + "'");
}

struct Options {
    fluentgen::Spec spec;
    std::string out;
    bool quiet = false;
    bool faceData = false;
    std::vector<int> particleFields;
    bool particleFieldsGiven = false;
    int standard = -1;
};

Options parse(int argc, char** argv) {
    Options o;
    fluentgen::Spec& s = o.spec;
    std::vector<std::string> args(argv + 1, argv + argc);
    for (size_t i = 0; i < args.size(); ++i) {
        std::string a = args[i];
        std::string value;
        bool hasValue = false;
        size_t eq = a.find('=');
        if (a.compare(0, 2, "--") == 0 && eq != std::string::npos) {
            value = a.substr(eq + 1);
            a = a.substr(0, eq);
            hasValue = true;
        }
        auto next = [&]() -> std::string {
            if (hasValue) {
                return value;
            }
            if (i + 1 >= args.size()) {
                throw UsageError("option " + a + " needs a value");
            }
            return args[++i];
        };
        auto flag = [&]() {
            if (hasValue) {
                throw UsageError("option " + a + " takes no value");
            }
        };
        if (a == "--help" || a == "-h") {
            flag();
            std::cout << kUsage;
            std::exit(0);
        } else if (a == "--out") {
            o.out = next();
        } else if (a == "--quiet") {
            flag();
            o.quiet = true;
        } else if (a == "--mesh") {
            s.mesh = meshKind(next());
        } else if (a == "--cells") {
            std::vector<std::string> d = splitDims(next());
            if (d.size() < 2 || d.size() > 3) {
                throw UsageError("option --cells: expected NXxNY or NXxNYxNZ");
            }
            for (size_t k = 0; k < 3; ++k) {
                s.cells[k] = k < d.size() ? toSmallInt(d[k], a, 1, 100000000) : 1;
            }
        } else if (a == "--spacing" || a == "--origin") {
            std::vector<std::string> d = splitDims(next());
            if (d.size() < 2 || d.size() > 3) {
                throw UsageError("option " + a + ": expected AxB or AxBxC");
            }
            std::array<double, 3>& target = a == "--spacing" ? s.spacing : s.origin;
            for (size_t k = 0; k < d.size(); ++k) {
                target[k] = toReal(d[k], a);
            }
        } else if (a == "--cell-zones") {
            s.cellZoneTypes = intList(next(), a);
        } else if (a == "--boundary-types") {
            s.boundaryTypes = intList(next(), a);
        } else if (a == "--zone-names") {
            std::string v = next();
            if (v == "39") {
                s.zoneNames = fluentgen::ZoneNames::Section39;
            } else if (v == "45") {
                s.zoneNames = fluentgen::ZoneNames::Section45;
            } else if (v == "none") {
                s.zoneNames = fluentgen::ZoneNames::None;
            } else if (v == "varied") {
                s.zoneNames = fluentgen::ZoneNames::Varied;
            } else {
                throw UsageError("option --zone-names: expected 39, 45, none or varied");
            }
        } else if (a == "--mixed-cells") {
            flag();
            s.mixedCellBodies = true;
        } else if (a == "--mixed-faces") {
            flag();
            s.mixedFaceTypes = true;
        } else if (a == "--polygon-face-type") {
            s.polygonFaceType = toSmallInt(next(), a, 0, 5);
        } else if (a == "--hanging") {
            flag();
            s.hanging = true;
        } else if (a == "--extra-sections") {
            flag();
            s.extraSections = true;
        } else if (a == "--node-sections") {
            s.nodeSections = toSmallInt(next(), a, 1, 1000);
        } else if (a == "--encoding") {
            std::string v = next();
            if (v == "ascii") {
                s.encoding = fluentgen::Encoding::Ascii;
            } else if (v == "binary-single") {
                s.encoding = fluentgen::Encoding::BinarySingle;
            } else if (v == "binary-double") {
                s.encoding = fluentgen::Encoding::BinaryDouble;
            } else if (v == "binary-mixed") {
                s.encoding = fluentgen::Encoding::BinaryMixed;
            } else {
                throw UsageError(
                    "option --encoding: expected ascii, binary-single, binary-double or binary-mixed");
            }
        } else if (a == "--byte-order") {
            std::string v = next();
            if (v == "little") {
                s.byteOrder = fluentgen::ByteOrder::Little;
            } else if (v == "big") {
                s.byteOrder = fluentgen::ByteOrder::Big;
            } else {
                throw UsageError("option --byte-order: expected little or big");
            }
        } else if (a == "--int-size") {
            s.intSize = toSmallInt(next(), a, 4, 8);
        } else if (a == "--gzip") {
            s.gzip = true;
            if (hasValue) {
                s.gzipLevel = toSmallInt(value, a, 1, 9);
            }
        } else if (a == "--species") {
            s.species = split(next(), ',');
        } else if (a == "--axisymmetric") {
            flag();
            s.axisymmetric = true;
        } else if (a == "--rp-double") {
            std::string v = next();
            if (v != "yes" && v != "no") {
                throw UsageError("option --rp-double: expected yes or no");
            }
            s.doublePrecisionFlag = v == "yes" ? 1 : 0;
        } else if (a == "--fields") {
            o.standard = toSmallInt(next(), a, 0, 1000);
        } else if (a == "--field") {
            std::vector<std::string> parts = split(next(), ',');
            std::vector<std::string> nums = split(parts[0], ':');
            if (nums.size() > 3) {
                throw UsageError("option --field: expected ID[:DIM[:PHASE]]");
            }
            fluentgen::FieldSpec f;
            f.fieldId = toSmallInt(nums[0], a, 0, 100000);
            if (nums.size() > 1) {
                f.dimension = toSmallInt(nums[1], a, 1, 1000);
            }
            if (nums.size() > 2) {
                f.phase = toSmallInt(nums[2], a, 0, 1000);
            }
            for (size_t k = 1; k < parts.size(); ++k) {
                if (parts[k] == "unstored") {
                    f.unstored = true;
                } else if (parts[k] == "boundaries") {
                    f.onBoundaries = true;
                } else {
                    throw UsageError("option --field: unknown flag '" + parts[k] + "'");
                }
            }
            s.fields.push_back(f);
        } else if (a == "--rich-fields") {
            int n = toSmallInt(next(), a, 1, 100);
            for (const fluentgen::FieldSpec& f : fluentgen::richFields(n)) {
                s.fields.push_back(f);
            }
        } else if (a == "--face-data") {
            flag();
            o.faceData = true;
        } else if (a == "--additional") {
            s.additionalQuantities = split(next(), ',');
        } else if (a == "--flow-time") {
            s.flowTime = toReal(next(), a);
        } else if (a == "--delta-time-sampled") {
            s.deltaTimeSampled = toReal(next(), a);
        } else if (a == "--residuals") {
            s.residuals.ids = intList(next(), a);
        } else if (a == "--residual-rows") {
            s.residuals.rows = toSmallInt(next(), a, 1, 100000000);
        } else if (a == "--residual-width") {
            s.residuals.width = toSmallInt(next(), a, 1, 1000);
        } else if (a == "--residual-first") {
            s.residuals.firstIteration = toSmallInt(next(), a, -1000000000, 1000000000);
        } else if (a == "--residuals-301") {
            flag();
            s.residuals.scaleFactors = false;
        } else if (a == "--residual-header3") {
            flag();
            s.residuals.fourHeaderNumbers = false;
        } else if (a == "--particles") {
            std::vector<std::string> parts = split(next(), ',');
            if (parts.size() > 2) {
                throw UsageError("option --particles: expected N[,NAME]");
            }
            fluentgen::ParticleSpec p;
            p.count = toSmallInt(parts[0], a, 0, 1000000000);
            if (parts.size() == 2) {
                p.name = parts[1];
            } else {
                p.name = "injection-" + std::to_string(s.particles.size());
            }
            s.particles.push_back(p);
        } else if (a == "--particle-fields") {
            o.particleFields = intList(next(), a);
            o.particleFieldsGiven = true;
        } else if (a == "--xml") {
            flag();
            s.xml.enabled = true;
        } else if (a == "--xml-sections") {
            s.xml.sections = toSmallInt(next(), a, 1, 1000000);
            s.xml.enabled = true;
        } else if (a == "--xml-particles") {
            s.xml.particles = toSmallInt(next(), a, 0, 1000000000);
            s.xml.enabled = true;
        } else if (a == "--xml-ascii") {
            flag();
            s.xml.base64 = false;
            s.xml.enabled = true;
        } else if (a == "--xml-size") {
            flag();
            s.xml.sizeAttribute = true;
            s.xml.enabled = true;
        } else if (a == "--xml-no-format") {
            flag();
            s.xml.formatElement = false;
            s.xml.enabled = true;
        } else if (a == "--series") {
            s.series.steps = toSmallInt(next(), a, 1, 1000000);
        } else if (a == "--time-step") {
            s.series.timeStep = toReal(next(), a);
        } else if (a == "--case-per-step") {
            flag();
            s.series.casePerStep = true;
        } else {
            throw UsageError("unknown option '" + args[i] + "'");
        }
    }
    if (o.out.empty()) {
        throw UsageError("--out DIR/NAME is required");
    }
    if (o.standard >= 0) {
        int dims = (s.mesh == fluentgen::MeshKind::Quad || s.mesh == fluentgen::MeshKind::Tri ||
                    s.mesh == fluentgen::MeshKind::Mixed2D || s.mesh == fluentgen::MeshKind::Polygonal)
                       ? 2
                       : 3;
        std::vector<fluentgen::FieldSpec> f;
        try {
            f = fluentgen::standardFields(o.standard, dims);
        } catch (const std::invalid_argument& e) {
            throw UsageError(std::string("option --fields: ") + e.what());
        }
        s.fields.insert(s.fields.begin(), f.begin(), f.end());
    }
    if (o.faceData) {
        for (fluentgen::FieldSpec& f : s.fields) {
            f.onBoundaries = true;
        }
    }
    if (o.particleFieldsGiven) {
        for (fluentgen::ParticleSpec& p : s.particles) {
            p.fieldIds = o.particleFields;
        }
    }
    return o;
}

}  // namespace

int main(int argc, char** argv) {
    Options o;
    try {
        o = parse(argc, argv);
        fluentgen::Model check(o.spec);  // validates the Spec before anything is written
    } catch (const UsageError& e) {
        std::cerr << "fluentgen: " << e.what() << "\n(fluentgen --help shows the options)\n";
        return 2;
    } catch (const std::invalid_argument& e) {
        std::cerr << "fluentgen: " << e.what() << "\n(fluentgen --help shows the options)\n";
        return 2;
    }
    std::string dir, base = o.out;
    size_t slash = o.out.rfind('/');
    if (slash != std::string::npos) {
        dir = o.out.substr(0, slash);
        base = o.out.substr(slash + 1);
    }
    if (base.empty()) {
        std::cerr << "fluentgen: --out needs a file name after the directory\n";
        return 2;
    }
    try {
        if (!dir.empty()) {
            std::filesystem::create_directories(dir);
        }
        fluentgen::WrittenFiles f = fluentgen::writeFiles(o.spec, dir, base);
        if (!o.quiet) {
            for (const std::string& n : f.caseFiles) {
                std::cout << n << "\n";
            }
            for (const std::string& n : f.dataFiles) {
                std::cout << n << "\n";
            }
            if (!f.xmlFile.empty()) {
                std::cout << f.xmlFile << "\n";
            }
        }
    } catch (const std::exception& e) {
        std::cerr << "fluentgen: " << e.what() << "\n";
        return 1;
    }
    return 0;
}
