// casescan: shows what the scan of a Fluent case file finds, and, with
// --assemble, builds the connectivity of every zone and prints a listing or
// writes a legacy VTK file that a viewer opens.
//
//   casescan [options] FILE.cas|FILE.msh|FILE.cas.gz
//     --assemble        assemble every cell zone and every boundary zone
//     --cells N         with --assemble: list the first N cells of each zone (default 0)
//     --vtk OUT.vtk     with --assemble: write all classic zones as one unstructured grid
//     --all-poly        scan as with "all zones as polyhedral"
//
// A .gz file is uncompressed into a temporary file first. Every message the
// add-on shows is printed on stderr with its kind. Exit status 0 on success,
// 1 when the scan or an assembly failed, 2 on a usage error.
#include <zlib.h>

#include <unistd.h>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "casefile/CaseFile.h"
#include "minihost/MiniHost.h"

namespace {

struct Options {
    std::string file;
    bool assemble = false;
    long listCells = 0;
    std::string vtkFile;
    bool allPoly = false;
};

void usage() {
    fprintf(stderr,
            "usage: casescan [--assemble] [--cells N] [--vtk OUT.vtk] [--all-poly] "
            "FILE.cas|FILE.msh|FILE.cas.gz\n");
}

bool endsWith(const std::string& text, const char* tail) {
    size_t n = strlen(tail);
    return text.size() >= n && strcasecmp(text.c_str() + text.size() - n, tail) == 0;
}

// Uncompresses a gzip file into a new temporary file; its name in *plain.
bool gunzipToTemp(const std::string& name, std::string* plain) {
    char pattern[] = "/tmp/casescan-XXXXXX";
    int fd = mkstemp(pattern);
    if (fd < 0) {
        perror("mkstemp");
        return false;
    }
    FILE* out = fdopen(fd, "wb");
    gzFile in = gzopen(name.c_str(), "rb");
    if (in == nullptr || out == nullptr) {
        fprintf(stderr, "casescan: cannot uncompress %s\n", name.c_str());
        return false;
    }
    std::vector<char> buffer(1 << 20);
    int got;
    while ((got = gzread(in, buffer.data(), static_cast<unsigned>(buffer.size()))) > 0) {
        if (fwrite(buffer.data(), 1, static_cast<size_t>(got), out) != static_cast<size_t>(got)) {
            got = -1;
            break;
        }
    }
    gzclose(in);
    fclose(out);
    if (got < 0) {
        fprintf(stderr, "casescan: cannot uncompress %s\n", name.c_str());
        unlink(pattern);
        return false;
    }
    *plain = pattern;
    return true;
}

const char* elementTypeName(int32_t type) {
    static const char* names[] = {"mixed",      "triangle", "tetrahedron", "quadrilateral",
                                  "hexahedron", "pyramid",  "wedge",       "polyhedron"};
    return type >= 0 && type <= 7 ? names[type] : "unknown";
}

const char* faceTypeName(int32_t type) {
    switch (type) {
        case 0:
            return "mixed";
        case 2:
            return "line";
        case 3:
            return "triangle";
        case 4:
            return "quadrilateral";
        case 5:
            return "polygon";
        default:
            return "unknown";
    }
}

const char* hostTypeName(int32_t type) {
    static const char* names[] = {"ordered", "triangle",     "quadrilateral", "tetrahedron",
                                  "brick",   "line segment", "polygon",       "polyhedron"};
    return type >= 0 && type <= 7 ? names[type] : "unknown";
}

void printScan(const CaseFile* caseFile) {
    printf("file: %s\n", caseFile->fileName);
    printf("header: %s\n", caseFile->header);
    printf("dimensions: %d\n", caseFile->numDimensions);
    printf("axisymmetric: %s\n", caseFile->axisymmetric ? "yes" : "no");
    printf("double precision: %s\n", caseFile->doublePrecision ? "yes" : "no");
    const MachineConfig& m = caseFile->machineConfig;
    printf("machine config: byte order %d, float format %d, int size %d, float size %d, double size %d\n",
           m.byteOrder, m.floatFormat, m.intSize, m.floatSize, m.doubleSize);
    printf("species:");
    for (int32_t i = 0; i < caseFile->numSpeciesNames; ++i) {
        printf(" %s", caseFile->speciesNames[i]);
    }
    printf("%s\n", caseFile->numSpeciesNames == 0 ? " none" : "");
    printf("total nodes: %d\n", caseFile->totalNodes);
    printf("zones:\n");
    printf("  %-11s %6s %6s %10s %10s  %-26s %s\n", "kind", "id", "section", "first", "last", "type", "name");
    for (int32_t i = 0; i < caseFile->numNodeZones; ++i) {
        const NodeZone& z = caseFile->nodeZones[i];
        printf("  %-11s %6d %6d %10d %10d  %-26s %s\n", "node", z.zoneId, z.sectionId, z.firstIndex,
               z.lastIndex, "-", "");
    }
    for (int32_t i = 0; i < caseFile->numCellZones; ++i) {
        const CellZone& z = caseFile->cellZones[i];
        char type[64];
        snprintf(type, sizeof type, "%s (zone type %d)", elementTypeName(z.elementType), z.zoneType);
        printf("  %-11s %6d %6d %10d %10d  %-26s %s\n", "cell", z.zoneId, z.sectionId, z.firstIndex,
               z.lastIndex, type, z.name);
    }
    for (int32_t i = 0; i < caseFile->numFaceZones; ++i) {
        const FaceZone& z = caseFile->faceZones[i];
        char type[64];
        snprintf(type, sizeof type, "%s (bc %d)", faceTypeName(z.faceType), z.boundaryType);
        printf("  %-11s %6d %6d %10d %10d  %-26s %s\n", "face", z.zoneId, z.sectionId, z.firstIndex,
               z.lastIndex, type, z.name);
    }
    for (int32_t i = 0; i < caseFile->numFaceTrees; ++i) {
        const FaceTree& t = caseFile->faceTrees[i];
        char type[64];
        snprintf(type, sizeof type, "parent %d child %d", t.parentZoneId, t.childZoneId);
        printf("  %-11s %6s %6d %10d %10d  %-26s\n", "face tree", "-", t.sectionId, t.firstIndex, t.lastIndex,
               type);
    }
    for (int32_t i = 0; i < caseFile->numChildFaces; ++i) {
        const ChildFace& c = caseFile->childFaces[i];
        printf("  %-11s %6s %6d %10s %10s  %-26s\n", "child faces", "-", c.sectionId, "-", "-",
               "(pairs read on demand)");
    }
}

// One assembled zone, ready to be listed or written.
struct AssembledZone {
    std::string label;
    int32_t hostZoneType = 0;
    int32_t corners = 0;
    std::vector<int32_t> globalNodes;  // corners per element, global one-based numbers
};

bool assembleCellZone(CaseFile* caseFile, int32_t index, AssembledZone* out) {
    CellZone* zone = &caseFile->cellZones[index];
    int32_t hostType = CellZoneGetZoneType(zone, caseFile, false);
    int32_t numCells = zone->lastIndex - zone->firstIndex + 1;
    if (zone->elementType == 7 || hostType == ZorZoneType_FEPolyhedron || hostType == 255) {
        printf("cell zone %d: %s, not a classic zone; skipped\n", zone->zoneId, hostTypeName(hostType));
        return true;
    }
    if (zone->elementType == 0 && zone->cellTypes == nullptr &&
        !CaseFileLoadCellZoneCellTypes(caseFile, zone)) {
        return false;
    }
    zone->hostZoneType = hostType;
    int32_t corners = nodesPerCellOfHostZoneType(hostType);
    std::vector<int32_t> cellNodes(static_cast<size_t>(numCells) * corners, UNSET_NODE);
    bool ok = CaseFileStoreFaceTreeChildren(caseFile) &&
              CellZoneGetNewNodeNumbers(zone, caseFile, caseFile->totalNodes);
    if (ok && zone->elementType == 7) {
        printf("cell zone %d: its faces hold polygons; the zone is polyhedral; skipped\n", zone->zoneId);
        return true;
    }
    ok = ok && CellZoneAssembleFaces(caseFile, zone, numCells, corners, cellNodes.data());
    if (!ok) {
        return false;
    }
    long unset = 0;
    out->label = std::string("cell zone ") + std::to_string(zone->zoneId) + " " + zone->name;
    out->hostZoneType = hostType;
    out->corners = corners;
    out->globalNodes.resize(cellNodes.size());
    for (size_t k = 0; k < cellNodes.size(); ++k) {
        int32_t local = cellNodes[k];
        if (local == UNSET_NODE || local < 1 || local > zone->numNodes) {
            ++unset;
            out->globalNodes[k] = 0;
        } else {
            out->globalNodes[k] = zone->newToOldNodes[local - 1];
        }
    }
    printf("cell zone %d: %d cells as %s, %d nodes, %ld unset slots\n", zone->zoneId, numCells,
           hostTypeName(hostType), zone->numNodes, unset);
    return true;
}

bool assembleFaceZone(CaseFile* caseFile, int32_t index, AssembledZone* out) {
    FaceZone* zone = &caseFile->faceZones[index];
    if (zone->boundaryType >= 1000 || zone->boundaryType == 2 || zone->boundaryType == 31 ||
        zone->boundaryType == 38) {
        return true;  // not a displayed boundary
    }
    if (zone->faceType == 5) {
        printf("face zone %d: polygons; skipped\n", zone->zoneId);
        return true;
    }
    if (!FaceZoneGetNodeNumbers(zone, caseFile, caseFile->totalNodes)) {
        return false;
    }
    int32_t hostType = FaceZoneGetZoneType(zone, false);
    if (zone->faceType == 5) {
        printf("face zone %d: polygons; skipped\n", zone->zoneId);
        return true;
    }
    int32_t corners = nodesPerCellOfHostZoneType(hostType);
    int32_t numFaces = zone->lastIndex - zone->firstIndex + 1;
    std::vector<int32_t> map(static_cast<size_t>(numFaces) * corners, UNSET_NODE - 1);
    FaceZoneConnectivityTarget target = {nullptr, map.data(), false, corners};
    FaceZoneWriteConnectivity(zone, hostType, &target);
    long unset = 0;
    out->label = std::string("face zone ") + std::to_string(zone->zoneId) + " " + zone->name;
    out->hostZoneType = hostType;
    out->corners = corners;
    out->globalNodes.resize(map.size());
    for (size_t k = 0; k < map.size(); ++k) {
        int32_t local = map[k];
        if (local < 0 || local >= zone->numNodes) {
            ++unset;
            out->globalNodes[k] = 0;
        } else {
            out->globalNodes[k] = zone->zoneNodes[local];
        }
    }
    printf("face zone %d: %d faces as %s, %d nodes, %ld unset slots\n", zone->zoneId, numFaces,
           hostTypeName(hostType), zone->numNodes, unset);
    return true;
}

// Signed measure of one element from its corner coordinates in the host's
// corner order: area for 2D elements, volume for bricks and tetrahedra.
double signedMeasure(const CaseFile* caseFile, const AssembledZone& zone, size_t element) {
    const int d = caseFile->numDimensions;
    auto p = [&](int corner, int axis) {
        int32_t g = zone.globalNodes[element * zone.corners + corner];
        if (g < 1 || g > caseFile->numLoadedNodes || axis >= d) {
            return 0.0;  // an unset slot, or z in 2D
        }
        return caseFile->nodePositions[static_cast<size_t>(g - 1) * d + axis];
    };
    if (zone.hostZoneType == ZorZoneType_FETriangle || zone.hostZoneType == ZorZoneType_FEQuad) {
        double area = 0.0;
        for (int k = 0; k < zone.corners; ++k) {
            int n = (k + 1) % zone.corners;
            area += p(k, 0) * p(n, 1) - p(n, 0) * p(k, 1);
        }
        return 0.5 * area;
    }
    auto triple = [&](int a, int b, int c) {
        return p(a, 0) * (p(b, 1) * p(c, 2) - p(b, 2) * p(c, 1)) -
               p(a, 1) * (p(b, 0) * p(c, 2) - p(b, 2) * p(c, 0)) +
               p(a, 2) * (p(b, 0) * p(c, 1) - p(b, 1) * p(c, 0));
    };
    if (zone.hostZoneType == ZorZoneType_FETetra) {
        // Volume of the corners 0..3 as the sum over the four faces, each turned outward for a positive cell.
        return (triple(0, 2, 1) + triple(0, 1, 3) + triple(1, 2, 3) + triple(2, 0, 3)) / 6.0;
    }
    if (zone.hostZoneType == ZorZoneType_FEBrick) {
        // Corners 0..3 on one face, corner k + 4 across from corner k.
        static const int faces[6][4] = {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4},
                                        {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}};
        double volume = 0.0;
        for (const auto& f : faces) {
            volume += triple(f[0], f[1], f[2]) + triple(f[0], f[2], f[3]);
        }
        return volume / 6.0;
    }
    return 0.0;
}

void listCells(const AssembledZone& zone, long count) {
    size_t elements = zone.corners > 0 ? zone.globalNodes.size() / zone.corners : 0;
    for (size_t e = 0; e < elements && static_cast<long>(e) < count; ++e) {
        printf("  %zu:", e + 1);
        for (int k = 0; k < zone.corners; ++k) {
            printf(" %d", zone.globalNodes[e * zone.corners + k]);
        }
        printf("\n");
    }
}

// Legacy VTK cell type of a host zone type: degenerate bricks stay hexahedra.
int vtkCellType(int32_t hostType) {
    switch (hostType) {
        case ZorZoneType_FETriangle:
            return 5;
        case ZorZoneType_FEQuad:
            return 9;
        case ZorZoneType_FETetra:
            return 10;
        case ZorZoneType_FEBrick:
            return 12;
        case ZorZoneType_FELineSeg:
            return 3;
        default:
            return 0;
    }
}

// Hexahedra of the host in VTK's corner order: bottom face 0..3, top 4..7.
// The host's brick numbering runs the same way, so only the cell kind changes.
bool writeVtk(const CaseFile* caseFile, const std::vector<AssembledZone>& zones, const std::string& name) {
    FILE* out = fopen(name.c_str(), "w");
    if (out == nullptr) {
        perror(name.c_str());
        return false;
    }
    const int d = caseFile->numDimensions;
    fprintf(out, "# vtk DataFile Version 3.0\ncasescan %s\nASCII\nDATASET UNSTRUCTURED_GRID\n",
            caseFile->fileName);
    fprintf(out, "POINTS %d double\n", caseFile->numLoadedNodes);
    for (int32_t n = 0; n < caseFile->numLoadedNodes; ++n) {
        const double* x = caseFile->nodePositions + static_cast<size_t>(n) * d;
        fprintf(out, "%.17g %.17g %.17g\n", x[0], x[1], d == 3 ? x[2] : 0.0);
    }
    size_t cells = 0, size = 0;
    for (const AssembledZone& z : zones) {
        size_t elements = z.corners > 0 ? z.globalNodes.size() / z.corners : 0;
        cells += elements;
        size += elements * (z.corners + 1);
    }
    fprintf(out, "CELLS %zu %zu\n", cells, size);
    for (const AssembledZone& z : zones) {
        size_t elements = z.corners > 0 ? z.globalNodes.size() / z.corners : 0;
        for (size_t e = 0; e < elements; ++e) {
            fprintf(out, "%d", z.corners);
            for (int k = 0; k < z.corners; ++k) {
                int32_t g = z.globalNodes[e * z.corners + k];
                fprintf(out, " %d", g > 0 ? g - 1 : 0);
            }
            fprintf(out, "\n");
        }
    }
    fprintf(out, "CELL_TYPES %zu\n", cells);
    for (const AssembledZone& z : zones) {
        size_t elements = z.corners > 0 ? z.globalNodes.size() / z.corners : 0;
        for (size_t e = 0; e < elements; ++e) {
            fprintf(out, "%d\n", vtkCellType(z.hostZoneType));
        }
    }
    fprintf(out, "CELL_DATA %zu\nSCALARS zone int 1\nLOOKUP_TABLE default\n", cells);
    int index = 0;
    for (const AssembledZone& z : zones) {
        size_t elements = z.corners > 0 ? z.globalNodes.size() / z.corners : 0;
        for (size_t e = 0; e < elements; ++e) {
            fprintf(out, "%d\n", index);
        }
        ++index;
    }
    return fclose(out) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "--assemble") {
            options.assemble = true;
        } else if (arg == "--cells" && i + 1 < argc) {
            options.listCells = strtol(argv[++i], nullptr, 10);
        } else if (arg == "--vtk" && i + 1 < argc) {
            options.vtkFile = argv[++i];
        } else if (arg == "--all-poly") {
            options.allPoly = true;
        } else if (arg == "-h" || arg == "--help") {
            usage();
            return 0;
        } else if (!arg.empty() && arg[0] == '-') {
            usage();
            return 2;
        } else if (options.file.empty()) {
            options.file = arg;
        } else {
            usage();
            return 2;
        }
    }
    if (options.file.empty()) {
        usage();
        return 2;
    }
    minihost::setMessageSink([](const minihost::Message& message) {
        fprintf(stderr, "[%s] %s\n", message.kind.c_str(), message.text.c_str());
    });

    std::string plain = options.file;
    bool temporary = false;
    if (endsWith(options.file, ".gz")) {
        if (!gunzipToTemp(options.file, &plain)) {
            return 1;
        }
        temporary = true;
    }
    if (plain.size() >= sizeof(CaseFile{}.fileName)) {
        fprintf(stderr, "casescan: file name too long\n");
        return 2;
    }
    CaseFile* caseFile = static_cast<CaseFile*>(calloc(1, sizeof(CaseFile)));
    snprintf(caseFile->fileName, sizeof caseFile->fileName, "%s", plain.c_str());
    caseFile->mutex = ZorUtilThreadMutexAlloc();

    int status = 0;
    if (!CaseFileScan(caseFile, options.allPoly, nullptr, nullptr)) {
        fprintf(stderr, "casescan: the scan failed\n");
        status = 1;
    }
    printScan(caseFile);

    if (status == 0 && options.assemble) {
        ZorUtilThreadMutexLock(caseFile->mutex);
        CaseFileRetain(caseFile);
        std::vector<AssembledZone> zones;
        bool ok = CaseFileLoadAllNodePositions(caseFile);
        for (int32_t i = 0; ok && i < caseFile->numCellZones; ++i) {
            if (caseFile->cellZones[i].zoneType == 32) {
                continue;
            }
            AssembledZone zone;
            ok = assembleCellZone(caseFile, i, &zone);
            if (ok && !zone.globalNodes.empty()) {
                listCells(zone, options.listCells);
                zones.push_back(std::move(zone));
            }
        }
        if (ok && !CaseFileTrackParentChildFaces(caseFile)) {
            ok = false;
        }
        for (int32_t i = 0; ok && i < caseFile->numFaceZones; ++i) {
            AssembledZone zone;
            ok = assembleFaceZone(caseFile, i, &zone);
            if (ok && !zone.globalNodes.empty()) {
                listCells(zone, options.listCells);
                zones.push_back(std::move(zone));
            }
        }
        if (ok) {
            for (const AssembledZone& zone : zones) {
                // Cell zones only: area in 2D, volume in 3D.
                if (zone.label.compare(0, 4, "cell") != 0) {
                    continue;
                }
                size_t elements = zone.globalNodes.size() / zone.corners;
                size_t positive = 0, negative = 0, zero = 0;
                double total = 0.0;
                for (size_t e = 0; e < elements; ++e) {
                    double measure = signedMeasure(caseFile, zone, e);
                    (measure > 0 ? positive : measure < 0 ? negative : zero) += 1;
                    total += std::fabs(measure);
                }
                printf("%s: signed %s: %zu positive, %zu negative, %zu zero; total %.10g\n",
                       zone.label.c_str(), caseFile->numDimensions == 2 ? "areas" : "volumes", positive,
                       negative, zero, total);
            }
        }
        if (ok && !options.vtkFile.empty() && !writeVtk(caseFile, zones, options.vtkFile)) {
            ok = false;
        }
        CaseFileRelease(caseFile);
        ZorUtilThreadMutexUnlock(caseFile->mutex);
        if (!ok) {
            fprintf(stderr, "casescan: assembly failed\n");
            status = 1;
        }
    }
    CaseFileDelete(caseFile);
    free(caseFile);
    if (temporary) {
        unlink(plain.c_str());
    }
    return status;
}
