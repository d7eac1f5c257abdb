// Checks of written files against the generator's model, and of the mesh a
// file describes on its own (closed cells, orientation, volumes).
#pragma once

#include <map>
#include <string>
#include <vector>

#include "FluentFileParser.h"
#include "tools/fluentgen/FluentGen.h"

namespace fgtest {

// Every section of a case file equals what the model says, number by number.
void expectCaseMatchesModel(const fluentgen::Model& model, const ParsedFile& file);
// Every section of data file `step` equals the model's values and the formulas.
void expectDataMatchesModel(const fluentgen::Model& model, const ParsedFile& file, int step);

// The mesh as the case file alone tells it.
struct FileMesh {
    int dims = 3;
    std::vector<fluentgen::Vec3> nodes;  // index = node number - 1
    struct Face {
        std::vector<int64_t> nodes;
        int64_t c0 = 0, c1 = 0;
        int zoneId = 0;
        int bcType = 0;
    };
    std::vector<Face> faces;  // index = face number - 1
    struct Zone {
        int id, type, elementType;
        int64_t first, last;
    };
    std::vector<Zone> cellZones;
    std::map<int64_t, std::vector<int64_t>> faceChildren;  // parent face -> children (Face Trees)
    std::vector<std::pair<int64_t, int64_t>> copies;       // face ranges of Interface Face Parents sections
};
FileMesh meshFromFile(const ParsedFile& file);
// Each active cell is closed (every edge of its outward faces used once in each
// direction), has positive volume (area in 2D), and its centre matches the
// model's; the cells fill the box.
void expectMeshValid(const FileMesh& mesh, const fluentgen::Model& model);
// Distinct nodes of each cell from its faces (children replaced as above).
std::map<int64_t, std::vector<int64_t>> cellNodesFromFaces(const FileMesh& mesh);

std::string tempDir(const std::string& tag);
void removeTree(const std::string& dir);

}  // namespace fgtest
