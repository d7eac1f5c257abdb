// fluentgen: writes Fluent case, data and particle files for tests and benchmarks.
//
// A `Spec` says what to write: the mesh (a box of blocks cut into hexahedra,
// tetrahedra, wedges, pyramids, polyhedra or their 2D kin), its zones, the
// encoding, and what the data file holds. `writeFiles` writes the files,
// `caseText` / `dataText` / `xmlText` give the same bytes in memory, and a
// `Model` answers, by formula and without reading anything back, what every
// number in those files is: node coordinates, the nodes of each cell, each
// face, and each value of each data section.
//
//   fluentgen::Spec s;
//   s.mesh = fluentgen::MeshKind::Hex;
//   s.cells = {4, 3, 2};
//   s.encoding = fluentgen::Encoding::BinaryDouble;
//   s.byteOrder = fluentgen::ByteOrder::Big;
//   s.intSize = 8;
//   s.fields = fluentgen::standardFields(5, 3);
//   fluentgen::WrittenFiles f = fluentgen::writeFiles(s, dir, "box");  // box.cas, box.dat
//   fluentgen::Model m(s);   // m.cellCentre(c), m.dataSections(), m.dataValue(...)
//
// Everything is streamed: neither the writers nor `Model` hold the mesh, so
// tens of millions of cells cost no more memory than a few small buffers.
// Invalid specs throw std::invalid_argument with a message for the user.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace fluentgen {

struct Vec3 {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;  // 0 in 2D
};

// Cell shapes of the box. The 3D box is cut into blocks of nx*ny*nz; each block
// becomes one hexahedron, six tetrahedra, two wedges or six pyramids (around a
// node at the block centre); `Mixed` uses a different cut per layer of blocks
// along z (tetrahedra with pyramids, hexahedra, wedges, pyramids, pyramids with
// tetrahedra, then tetrahedra and wedges alternating), conforming across
// layers, in one mixed cell zone; with one or two layers the cut changes by
// column along x instead. All four shapes appear with nz >= 3, or nx >= 3. `Polyhedral` gives each block
// extra nodes in the middle of its x-edges, so that four faces are hexagons and the cell a polyhedron. The 2D
// kinds do the same on nx*ny squares: quadrilaterals, two triangles each,
// quadrilaterals and triangles in a checkerboard, or hexagonal polygons.
enum class MeshKind { Hex, Tet, Wedge, Pyramid, Mixed, Polyhedral, Quad, Tri, Mixed2D, Polygonal };

// Ascii: ids 10, 12, 13, 300 ... with hexadecimal integers and text reals.
// BinarySingle / BinaryDouble: every section in the 2000 / 3000 family.
// BinaryMixed: what many real files do: integer-only sections (cells, faces,
// trees, partitions) in the 2000 family, nodes in the 3000 family, and data
// sections alternating between 3000 (even field index) and 2000 (odd).
enum class Encoding { Ascii, BinarySingle, BinaryDouble, BinaryMixed };

enum class ByteOrder { Little, Big };

// How zones are named: every zone by a Zone section 39, every zone by a 45,
// no zone named at all, or varied (cycling 39, 45, none over the zones).
enum class ZoneNames { Section39, Section45, None, Varied };

// One field of the data file. It is written for every cell zone (except zones of
// type 32) and, with `onBoundaries`, for every boundary face zone too.
struct FieldSpec {
    int fieldId = 1;            // Fluent field id of the section header
    int dimension = 1;          // numbers per element (components)
    int phase = 1;              // fifth header number; 1 single phase, 2 and up the phases
    bool unstored = false;      // header first id -1: a field readers pass over
    bool onBoundaries = false;  // also written for the boundary face zones
};

// Residual histories (301 or 302 family), one section per id.
struct ResidualSpec {
    std::vector<int> ids;           // residual ids; empty: no residuals
    int rows = 10;                  // iterations held
    int width = 1;                  // numbers per row and kind
    int firstIteration = 1;         // iteration number of the first row; rows count up by one
    bool scaleFactors = true;       // 302 family (values and scale factors); false: 301
    bool fourHeaderNumbers = true;  // header of four numbers; false: three
};

// One Particle section (303 family) of the data file.
struct ParticleSpec {
    std::string name = "injection-0";  // section name (no white space)
    int count = 8;                     // particles
    std::vector<int> fieldIds = {1, 2, 3, 7, 8, 9, 10, 11, 12, 13, 15, 16, 48, 49};
};

// The XML particle history file.
struct XmlSpec {
    bool enabled = false;
    int sections = 1;                       // Section elements
    int particles = 8;                      // particles per section
    bool base64 = true;                     // real arrays as "Base64/LE"; "Particle ID" stays "ASCII"
    bool sizeAttribute = false;             // Section gives `length="0" size="n"` instead of `length="n"`
    bool formatElement = true;              // write <Format version="1.0"/>
    std::string injection = "injection-0";  // name of the injection Option
};

// A transient series: `steps` data files of increasing flow time (step s at
// Spec::flowTime + s * timeStep), all for one case file, or (with
// `casePerStep`) a case file for each data file.
struct SeriesSpec {
    int steps = 1;
    double timeStep = 0.1;
    bool casePerStep = false;
};

struct Spec {
    // Mesh.
    MeshKind mesh = MeshKind::Hex;
    std::array<int, 3> cells = {2, 2, 2};             // blocks along x, y, z (z unused in 2D)
    std::array<double, 3> spacing = {0.1, 0.2, 0.3};  // block size along x, y, z
    std::array<double, 3> origin = {0.0, 0.0, 0.0};
    std::vector<int> cellZoneTypes = {
        1};                          // one cell zone per entry, slabs along x: 1 fluid, 17 solid, 32 ...
    std::vector<int> boundaryTypes;  // per side x-, x+, y-, y+, z-, z+; empty: defaults
    ZoneNames zoneNames = ZoneNames::Section39;
    bool mixedCellBodies = false;  // write uniform cell zones as mixed (element type 0 with a body)
    bool mixedFaceTypes = false;   // write face zones as mixed (face type 0, a count per face)
    int polygonFaceType = 5;       // face type of the zones that hold polygons: 5 or 0
    bool hanging = false;          // Hex / Quad only: a refined corner region with hanging nodes:
                                   // Face Trees (59), a Cell Tree (58), parent zones of types 31
                                   // and 32, and a copy of the boundary parent faces (type 1012)
                                   // paired with them by Interface Face Parents (61) and Child Faces (62)
    bool extraSections = false;    // periodic x sides (18), grid size (33), partitions (40),
                                   // duplicate face zones of types 1012 and 38 (61, 62)
    int nodeSections = 1;          // the node range is written in this many Nodes sections

    // Encoding.
    Encoding encoding = Encoding::BinaryDouble;
    ByteOrder byteOrder = ByteOrder::Little;
    int intSize = 4;  // bytes of a binary integer: 4 or 8
    bool gzip = false;
    int gzipLevel = 6;

    // Section 37 of the case file.
    std::vector<std::string> species;  // species names, "(species (names (...)))"
    bool axisymmetric = false;         // "(rp-axi? . #t)" (2D)
    int doublePrecisionFlag = -1;      // "(rp-double? . #t)": 1, #f: 0, -1: #t unless BinarySingle

    // Data file. No fields, no residuals and no particles: no data file.
    std::vector<FieldSpec> fields;
    std::vector<std::string> additionalQuantities;  // cell-function-list entries and 314 sections
    double flowTime = 0.0;                          // of the first data file (step 0)
    double deltaTimeSampled = 0.0;
    ResidualSpec residuals;
    std::vector<ParticleSpec> particles;
    XmlSpec xml;
    SeriesSpec series;

    bool hasData() const;
};

// The first `count` fields of a plain solution: pressure, velocities (no z in
// 2D), density, temperature, turbulence, viscosities ...
std::vector<FieldSpec> standardFields(int count, int dimensions);

// A field list that uses every data feature: species (200, dimension =
// species), the mean / rms pairs 400 / 401 and 1000 / 1050, a non-family field
// of dimension 3 (15), the user memories 970, a velocity in phases 2 and 3, an
// unstored field, and a field on the boundaries. `speciesCount` at least 1.
std::vector<FieldSpec> richFields(int speciesCount);

// ---- Formulas of every written value -------------------------------------------

// Value of component `component` of field `fieldId` in phase `phase` at time `time`
// and at a point (the cell centre, or the face centre for boundary data).
double fieldFormula(int fieldId, int component, int phase, double time, const Vec3& at);
// Value of the additional quantity at `position` (1-based, 314 family).
double additionalQuantityFormula(int position, double time, const Vec3& at);
// Value of particle variable `fieldId` of particle `particle` (0-based) in
// section `section` (0-based) at time `time`. Integer-valued ids give integers.
double particleFormula(int fieldId, int section, int64_t particle, double time);
bool isIntegerParticleField(int fieldId);  // 1, 2, 3, 4, 48, 49
// Residual `component` of row `row` (0-based) and its scale factor.
double residualFormula(int residualId, int row, int component);
double residualScaleFormula(int residualId, int row, int component);
// Field ids whose components stand component after component in the file:
// 7, 13, 200-399, 450-499, 635-637, 1000-1099, and 970.
bool isComponentMajor(int fieldId);

// ---- What was written -----------------------------------------------------------

struct CellZoneInfo {
    int id = 0;
    int type = 1;         // 1 fluid, 17 solid, 32 parent cells, ...
    int elementType = 0;  // as written in the header: 0 mixed, 1 tri ... 7 polyhedron
    int64_t first = 0;    // first and last cell number
    int64_t last = 0;
    std::string name;     // the name a Zone section gives; also kept when no section names it
    int nameSection = 0;  // 39, 45, or 0 when no Zone section names the zone
};

struct FaceZoneInfo {
    int id = 0;
    int bcType = 2;     // boundary type: 2 interior, 3 wall, 31 parent faces, 1012 ...
    int faceType = 4;   // as written: 0 mixed, 2 line, 3 tri, 4 quad, 5 polygon
    int64_t first = 0;  // first and last face number
    int64_t last = 0;
    std::string name;
    int nameSection = 0;    // 39, 45 or 0
    int cellZoneId = 0;     // the cell zone its faces bound (c0 side)
    bool boundary = false;  // a side of the box: gets boundary data
};

struct FaceTreeInfo {
    int sectionBase = 59;  // 59 face tree, 58 cell tree
    int64_t first = 0;     // first and last parent face (or cell)
    int64_t last = 0;
    int parentZoneId = 0;
    int childZoneId = 0;
};

// Pairs of faces written in sections 18 (periodic, shadow), 61 (interface face
// parents: the face range and two parents per face) and 62 (child, parent).
struct FacePairsInfo {
    int sectionBase = 18;
    int64_t first = 0;  // 18: 1; 61: first face of the range
    int64_t last = 0;   // 18: number of pairs; 61: last face of the range
    int zoneA = 0;      // 18: periodic zone, 62: child zone
    int zoneB = 0;      // 18: shadow zone, 62: parent zone
    int64_t count = 0;  // pairs
};

// One data section as written.
struct DataSectionInfo {
    int sectionId = 300;  // 300/2300/3300 or 314/2314/3314
    int fieldId = 1;      // header field id (for the 314 family the 1-based position)
    int zoneId = 0;
    int dimension = 1;
    int phase = 1;
    int64_t firstId = 1;  // as in the header (-1 for an unstored field)
    int64_t lastId = 0;
    int64_t count = 0;            // elements: the zone's size
    bool single = false;          // 2000 family: values rounded to float
    bool componentMajor = false;  // component after component in the file
    bool additional = false;      // 314 family
    bool faceZone = false;        // zone is a face zone (values at face centres)
    int64_t zoneFirst = 0;        // first cell or face number of the zone
};

struct ResidualSectionInfo {
    int sectionId = 302;
    int residualId = 0;
    int rows = 0;
    int width = 1;
    bool scaleFactors = true;
    bool single = false;
};

struct ParticleSectionInfo {
    int sectionId = 303;
    std::string name;
    int count = 0;
    double time = 0.0;
    int dimensions = 3;
    std::vector<int> fieldIds;
    bool single = false;
};

// An item of the XML particle file.
struct XmlItemInfo {
    std::string id;         // item id attribute
    std::string name;       // item name attribute
    int formulaId = 0;      // id given to particleFormula for its values
    bool ascii = true;      // "ASCII" (else "Base64/LE")
    bool constant = false;  // written with constant="true" (no array)
};

// The mesh and every value of the files of a Spec, by formula.
class Model {
  public:
    explicit Model(const Spec& spec);  // throws std::invalid_argument for an invalid spec
    ~Model();
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    const Spec& spec() const;
    int dimensions() const;
    int64_t nodeCount() const;
    int64_t cellCount() const;  // all cells, parent cells of a refined mesh included
    int64_t faceCount() const;
    Vec3 node(int64_t id) const;  // 1-based; coordinates as computed (before any float rounding)
    const std::vector<CellZoneInfo>& cellZones() const;
    const std::vector<FaceZoneInfo>& faceZones() const;
    const std::vector<FaceTreeInfo>& trees() const;
    const std::vector<FacePairsInfo>& facePairs() const;
    std::vector<std::pair<int64_t, int64_t>> nodeSections() const;  // first, last of each Nodes section

    int cellType(int64_t cell) const;  // 1 tri, 2 tet, 3 quad, 4 hex, 5 pyramid, 6 wedge, 7 poly
    std::vector<int64_t> cellNodes(int64_t cell) const;  // node ids of the cell, each once
    Vec3 cellCentre(int64_t cell) const;                 // mean of the cell's nodes
    // The faces of zone `faceZoneIndex` in file order: node ids (normal by the
    // right-hand rule into c0; in 2D c0 lies left of n0->n1), c0, c1 (0: none).
    using FaceFn = std::function<void(const int64_t* nodes, int n, int64_t c0, int64_t c1)>;
    void forEachFace(size_t faceZoneIndex, const FaceFn& fn) const;
    // Children of parent `parent` of tree `treeIndex` (faces or cells).
    std::vector<int64_t> treeChildren(size_t treeIndex, int64_t parent) const;
    // Pair `k` (0-based) of `facePairs()[pairsIndex]`.
    std::pair<int64_t, int64_t> facePair(size_t pairsIndex, int64_t k) const;

    // Data files (step 0 .. series.steps - 1).
    int steps() const;
    double flowTime(int step) const;
    std::vector<DataSectionInfo> dataSections() const;
    // Value as written: element `element` (0-based) and component `component`,
    // rounded to float for a single-precision section.
    double dataValue(const DataSectionInfo& section, int64_t element, int component, int step = 0) const;
    std::vector<ResidualSectionInfo> residualSections() const;
    std::vector<ParticleSectionInfo> particleSections(int step = 0) const;
    std::vector<XmlItemInfo> xmlItems() const;

    struct Impl;

  private:
    std::unique_ptr<Impl> impl_;
};

// ---- Writing --------------------------------------------------------------------

struct WrittenFiles {
    std::vector<std::string> caseFiles;  // one, or one per step with series.casePerStep
    std::vector<std::string> dataFiles;  // one per step; empty when the Spec asks for no data
    std::string xmlFile;                 // empty unless xml.enabled
};

// Writes DIR/BASE.cas (.gz), DIR/BASE.dat or, for a series, DIR/BASE-00000.dat
// ... (and DIR/BASE-00000.cas ... with casePerStep), and DIR/BASE.xml.
WrittenFiles writeFiles(const Spec& spec, const std::string& directory, const std::string& baseName);
// One file, at exactly this path; case and data files gzip-compressed when
// Spec::gzip (XML files never).
void writeCaseFile(const Spec& spec, const std::string& path);
void writeDataFile(const Spec& spec, int step, const std::string& path);
void writeXmlFile(const Spec& spec, const std::string& path);
// The bytes those functions write.
std::string caseText(const Spec& spec);
std::string dataText(const Spec& spec, int step = 0);
std::string xmlText(const Spec& spec);

}  // namespace fluentgen
