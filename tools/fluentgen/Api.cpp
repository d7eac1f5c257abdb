// The public face of fluentgen: specs, formulas, the model, file writing.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <map>
#include <mutex>
#include <stdexcept>

#include "tools/fluentgen/FluentGen.h"
#include "tools/fluentgen/Mesh.h"
#include "tools/fluentgen/Output.h"
#include "tools/fluentgen/Writers.h"

namespace fluentgen {

bool Spec::hasData() const {
    return !fields.empty() || !residuals.ids.empty() || !particles.empty() || !additionalQuantities.empty();
}

std::vector<FieldSpec> standardFields(int count, int dimensions) {
    static const int ids3[] = {1, 111, 112, 113, 101, 3, 5, 6, 102, 103, 104, 105, 96, 59};
    static const int ids2[] = {1, 111, 112, 101, 3, 5, 6, 102, 103, 104, 105, 96, 59};
    const int* ids = dimensions == 2 ? ids2 : ids3;
    int n = dimensions == 2 ? 13 : 14;
    if (count < 0 || count > n + 20) {
        throw std::invalid_argument("number of fields must be 0 to " + std::to_string(n + 20));
    }
    std::vector<FieldSpec> out;
    for (int i = 0; i < count; ++i) {
        FieldSpec f;
        f.fieldId = i < n ? ids[i] : 700 + (i - n);  // then user scalars 700 ...
        out.push_back(f);
    }
    return out;
}

std::vector<FieldSpec> richFields(int speciesCount) {
    if (speciesCount < 1) {
        throw std::invalid_argument("rich fields need at least one species");
    }
    auto f = [](int id, int dim = 1, int phase = 1, bool unstored = false, bool boundaries = false) {
        FieldSpec s;
        s.fieldId = id;
        s.dimension = dim;
        s.phase = phase;
        s.unstored = unstored;
        s.onBoundaries = boundaries;
        return s;
    };
    return {f(1, 1, 1, false, true),
            f(111),
            f(112),
            f(200, speciesCount),
            f(400),
            f(401),
            f(1000, speciesCount),
            f(1050, speciesCount),
            f(15, 3),
            f(970, 3),
            f(111, 1, 2),
            f(111, 1, 3),
            f(3, 1, 1, true)};
}

double fieldFormula(int fieldId, int component, int phase, double time, const Vec3& at) {
    return 0.01 * (fieldId % 10000) + 0.5 * component + 0.25 * (phase - 1) + time + at.x + 2.0 * at.y +
           4.0 * at.z + 0.5 * (component + 1) * at.x * at.y;
}

double additionalQuantityFormula(int position, double time, const Vec3& at) {
    return 100.0 + 10.0 * position + time + at.x - at.y + 0.5 * at.z;
}

bool isIntegerParticleField(int fieldId) {
    return (fieldId >= 1 && fieldId <= 4) || fieldId == 48 || fieldId == 49;
}

double particleFormula(int fieldId, int section, int64_t particle, double time) {
    double p = static_cast<double>(particle);
    switch (fieldId) {
        case 1:
            return 1000.0 * section + p + 1.0;
        case 2:
            return 1.0 + section;
        case 3:
            return static_cast<double>(particle % 5);
        case 4:
            return static_cast<double>(1 + particle % 3);
        case 48:
            return 2.0;
        case 49:
            return static_cast<double>((particle * 3) % 17 + 1);
        case 7:
            return 0.01 * p + 0.1 * section + time;
        case 8:
            return 0.02 * p + 0.05;
        case 9:
            return 0.03 * p + 0.07;
        case 900:
            return 900.0 + 0.5 * p;
        case 901:
            return 1.5;
        default:
            return fieldId + 0.001 * p + 0.1 * section + time;
    }
}

double residualFormula(int residualId, int row, int component) {
    return 1.0 / (1.0 + row) + 0.01 * residualId + 0.1 * component;
}

double residualScaleFormula(int residualId, int row, int component) {
    return 100.0 + residualId + 0.5 * component + 0.001 * row;
}

bool isComponentMajor(int fieldId) {
    return fieldId == 7 || fieldId == 13 || (fieldId >= 200 && fieldId <= 399) ||
           (fieldId >= 450 && fieldId <= 499) || (fieldId >= 635 && fieldId <= 637) ||
           (fieldId >= 1000 && fieldId <= 1099) || fieldId == 970;
}

namespace detail {

namespace {

void checkWord(const std::string& w, const char* what) {
    if (w.empty()) {
        throw std::invalid_argument(std::string(what) + " must not be empty");
    }
    for (char c : w) {
        if (c == ' ' || c == '\t' || c == '\n' || c == '(' || c == ')' || c == '"') {
            throw std::invalid_argument(std::string(what) + " '" + w +
                                        "' must not hold blanks, parentheses or quotes");
        }
    }
}

}  // namespace

void validate(const Spec& spec) {
    if (spec.intSize != 4 && spec.intSize != 8) {
        throw std::invalid_argument("integer size must be 4 or 8");
    }
    if (spec.gzip && (spec.gzipLevel < 1 || spec.gzipLevel > 9)) {
        throw std::invalid_argument("gzip level must be 1 to 9");
    }
    if (spec.polygonFaceType != 5 && spec.polygonFaceType != 0) {
        throw std::invalid_argument("polygon face type must be 5 or 0");
    }
    if (spec.hanging) {
        if (spec.mesh != MeshKind::Hex && spec.mesh != MeshKind::Quad) {
            throw std::invalid_argument("hanging nodes need a hex or quad mesh");
        }
        if (spec.cellZoneTypes.size() != 1) {
            throw std::invalid_argument("hanging nodes need a single cell zone");
        }
    }
    if (spec.nodeSections < 1) {
        throw std::invalid_argument("node sections must be at least 1");
    }
    for (int a = 0; a < (detail::is3D(spec.mesh) ? 3 : 2); ++a) {
        if (!(spec.spacing[static_cast<size_t>(a)] > 0.0)) {
            throw std::invalid_argument("spacing must be positive");
        }
    }
    for (const FieldSpec& f : spec.fields) {
        if (f.dimension < 1) {
            throw std::invalid_argument("field dimension must be at least 1");
        }
        if (f.phase < 0) {
            throw std::invalid_argument("field phase must not be negative");
        }
    }
    for (const std::string& s : spec.species) {
        checkWord(s, "species name");
    }
    for (const std::string& s : spec.additionalQuantities) {
        if (s.empty() || s.find_first_of("()\"") != std::string::npos) {
            throw std::invalid_argument("additional quantity name '" + s +
                                        "' must not be empty nor hold parentheses or quotes");
        }
    }
    for (const ParticleSpec& p : spec.particles) {
        checkWord(p.name, "particle section name");
        if (p.count < 0) {
            throw std::invalid_argument("particle count must not be negative");
        }
    }
    if (spec.residuals.rows < 1 || spec.residuals.width < 1) {
        throw std::invalid_argument("residual rows and width must be at least 1");
    }
    if (spec.series.steps < 1) {
        throw std::invalid_argument("series steps must be at least 1");
    }
    if (spec.xml.sections < 1 || spec.xml.particles < 0) {
        throw std::invalid_argument("xml sections must be at least 1 and particles not negative");
    }
    checkWord(spec.xml.injection, "injection name");
}

}  // namespace detail

// ---- Model ------------------------------------------------------------------------

struct Model::Impl {
    Spec spec;
    std::unique_ptr<detail::Mesh> mesh;
    mutable std::mutex lock;
    mutable std::map<int, std::vector<Vec3>> faceCentres;  // by zone id, made on first use
};

namespace detail {

std::unique_ptr<Mesh> buildChecked(const Spec& spec) {
    validate(spec);
    std::unique_ptr<Mesh> mesh = buildMesh(spec);
    int64_t largest = std::max(mesh->nodeCount, std::max(mesh->cellCount, mesh->faceCount));
    if (spec.intSize == 4 && largest > INT32_MAX) {
        throw std::invalid_argument("mesh too large for 4-byte integers: use an integer size of 8");
    }
    return mesh;
}

}  // namespace detail

Model::Model(const Spec& spec) : impl_(new Impl) {
    impl_->mesh = detail::buildChecked(spec);
    impl_->spec = spec;
}

Model::~Model() = default;

const Spec& Model::spec() const {
    return impl_->spec;
}
int Model::dimensions() const {
    return impl_->mesh->dims;
}
int64_t Model::nodeCount() const {
    return impl_->mesh->nodeCount;
}
int64_t Model::cellCount() const {
    return impl_->mesh->cellCount;
}
int64_t Model::faceCount() const {
    return impl_->mesh->faceCount;
}
Vec3 Model::node(int64_t id) const {
    return impl_->mesh->node(id);
}
const std::vector<CellZoneInfo>& Model::cellZones() const {
    return impl_->mesh->cellZones;
}
const std::vector<FaceZoneInfo>& Model::faceZones() const {
    return impl_->mesh->faceZones;
}
const std::vector<FaceTreeInfo>& Model::trees() const {
    return impl_->mesh->trees;
}
const std::vector<FacePairsInfo>& Model::facePairs() const {
    return impl_->mesh->pairs;
}

std::vector<std::pair<int64_t, int64_t>> Model::nodeSections() const {
    std::vector<std::pair<int64_t, int64_t>> out;
    int sections = std::max(1, impl_->spec.nodeSections);
    int64_t n = impl_->mesh->nodeCount;
    for (int s = 0; s < sections; ++s) {
        int64_t first = n * s / sections + 1, last = n * (s + 1) / sections;
        if (last >= first) {
            out.push_back({first, last});
        }
    }
    return out;
}

int Model::cellType(int64_t cell) const {
    return impl_->mesh->cellType(cell);
}

std::vector<int64_t> Model::cellNodes(int64_t cell) const {
    std::vector<int64_t> out;
    impl_->mesh->cellNodes(cell, out);
    std::vector<int64_t> once;
    for (int64_t n : out) {
        if (std::find(once.begin(), once.end(), n) == once.end()) {
            once.push_back(n);
        }
    }
    return once;
}

Vec3 Model::cellCentre(int64_t cell) const {
    return impl_->mesh->cellCentre(cell);
}

void Model::forEachFace(size_t faceZoneIndex, const FaceFn& fn) const {
    if (faceZoneIndex >= impl_->mesh->faceZones.size()) {
        throw std::out_of_range("fluentgen: no such face zone");
    }
    class Adapter : public detail::FaceVisitor {
      public:
        explicit Adapter(const FaceFn& fn) : fn_(fn) {}
        void face(const int64_t* nodes, int n, int64_t c0, int64_t c1) override { fn_(nodes, n, c0, c1); }

      private:
        const FaceFn& fn_;
    } adapter(fn);
    impl_->mesh->faces(faceZoneIndex, adapter);
}

std::vector<int64_t> Model::treeChildren(size_t treeIndex, int64_t parent) const {
    std::vector<int64_t> out;
    impl_->mesh->treeChildren(treeIndex, parent, out);
    return out;
}

std::pair<int64_t, int64_t> Model::facePair(size_t pairsIndex, int64_t k) const {
    return impl_->mesh->pair(pairsIndex, k);
}

int Model::steps() const {
    return impl_->spec.series.steps;
}
double Model::flowTime(int step) const {
    return detail::flowTimeOf(impl_->spec, step);
}

std::vector<DataSectionInfo> Model::dataSections() const {
    return detail::dataSectionsOf(impl_->spec, *impl_->mesh);
}

double Model::dataValue(const DataSectionInfo& d, int64_t element, int component, int step) const {
    if (element < 0 || element >= d.count || component < 0 || component >= d.dimension) {
        throw std::out_of_range("fluentgen: no such data value");
    }
    Vec3 at;
    if (d.faceZone) {
        std::lock_guard<std::mutex> g(impl_->lock);
        auto it = impl_->faceCentres.find(d.zoneId);
        if (it == impl_->faceCentres.end()) {
            std::vector<Vec3> c;
            const detail::Mesh& m = *impl_->mesh;
            for (size_t zi = 0; zi < m.faceZones.size(); ++zi) {
                if (m.faceZones[zi].id != d.zoneId) {
                    continue;
                }
                forEachFace(zi, [&](const int64_t* nodes, int n, int64_t, int64_t) {
                    c.push_back(m.faceCentre(nodes, n));
                });
            }
            it = impl_->faceCentres.emplace(d.zoneId, std::move(c)).first;
        }
        at = it->second.at(static_cast<size_t>(element));
    } else {
        at = impl_->mesh->cellCentre(d.zoneFirst + element);
    }
    double t = flowTime(step);
    double v = d.additional ? additionalQuantityFormula(d.fieldId, t, at)
                            : fieldFormula(d.fieldId, component, d.phase, t, at);
    return d.single ? static_cast<double>(static_cast<float>(v)) : v;
}

std::vector<ResidualSectionInfo> Model::residualSections() const {
    const Spec& s = impl_->spec;
    detail::Families fam = detail::familiesOf(s.encoding);
    std::vector<ResidualSectionInfo> out;
    for (int id : s.residuals.ids) {
        ResidualSectionInfo r;
        r.sectionId = (s.residuals.scaleFactors ? 302 : 301) + (fam.ascii ? 0 : fam.other);
        r.residualId = id;
        r.rows = s.residuals.rows;
        r.width = s.residuals.width;
        r.scaleFactors = s.residuals.scaleFactors;
        r.single = r.sectionId >= 2000 && r.sectionId < 3000;
        out.push_back(r);
    }
    return out;
}

std::vector<ParticleSectionInfo> Model::particleSections(int step) const {
    const Spec& s = impl_->spec;
    detail::Families fam = detail::familiesOf(s.encoding);
    std::vector<ParticleSectionInfo> out;
    for (const ParticleSpec& p : s.particles) {
        ParticleSectionInfo i;
        i.sectionId = 303 + (fam.ascii ? 0 : fam.other);
        i.name = p.name;
        i.count = p.count;
        i.time = flowTime(step);
        i.dimensions = dimensions();
        i.fieldIds = p.fieldIds;
        i.single = i.sectionId >= 2000 && i.sectionId < 3000;
        out.push_back(i);
    }
    return out;
}

std::vector<XmlItemInfo> Model::xmlItems() const {
    return detail::xmlItemsOf(impl_->spec);
}

// ---- Writing ----------------------------------------------------------------------

namespace {

void caseTo(const Spec& spec, const detail::Mesh& mesh, detail::Sink& sink) {
    detail::Out out(sink, spec.intSize, spec.byteOrder == ByteOrder::Big);
    detail::writeCase(spec, mesh, out);
    sink.close();
}

void dataTo(const Spec& spec, const detail::Mesh& mesh, int step, detail::Sink& sink) {
    detail::Out out(sink, spec.intSize, spec.byteOrder == ByteOrder::Big);
    detail::writeData(spec, mesh, step, out);
    sink.close();
}

void xmlTo(const Spec& spec, detail::Sink& sink) {
    detail::Out out(sink, spec.intSize, false);
    detail::writeXml(spec, out);
    sink.close();
}

int level(const Spec& spec) {
    return spec.gzip ? spec.gzipLevel : 0;
}

std::string stepName(const std::string& base, int step) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "-%05d", step);
    return base + buf;
}

}  // namespace

void writeCaseFile(const Spec& spec, const std::string& path) {
    auto mesh = detail::buildChecked(spec);
    auto sink = detail::openFileSink(path, level(spec));
    caseTo(spec, *mesh, *sink);
}

void writeDataFile(const Spec& spec, int step, const std::string& path) {
    auto mesh = detail::buildChecked(spec);
    auto sink = detail::openFileSink(path, level(spec));
    dataTo(spec, *mesh, step, *sink);
}

void writeXmlFile(const Spec& spec, const std::string& path) {
    detail::validate(spec);
    auto sink = detail::openFileSink(path, 0);  // XML files are read as they are: never compressed
    xmlTo(spec, *sink);
}

std::string caseText(const Spec& spec) {
    auto mesh = detail::buildChecked(spec);
    std::string s;
    auto sink = detail::openStringSink(s, level(spec));
    caseTo(spec, *mesh, *sink);
    return s;
}

std::string dataText(const Spec& spec, int step) {
    auto mesh = detail::buildChecked(spec);
    std::string s;
    auto sink = detail::openStringSink(s, level(spec));
    dataTo(spec, *mesh, step, *sink);
    return s;
}

std::string xmlText(const Spec& spec) {
    detail::validate(spec);
    std::string s;
    auto sink = detail::openStringSink(s, 0);
    xmlTo(spec, *sink);
    return s;
}

WrittenFiles writeFiles(const Spec& spec, const std::string& directory, const std::string& baseName) {
    std::unique_ptr<detail::Mesh> meshHolder = detail::buildChecked(spec);
    const detail::Mesh& mesh = *meshHolder;
    std::string gz = spec.gzip ? ".gz" : "";
    std::string base = directory.empty() ? baseName : directory + "/" + baseName;
    int steps = spec.series.steps;
    WrittenFiles files;
    if (steps == 1 || !spec.series.casePerStep) {
        files.caseFiles.push_back(base + ".cas" + gz);
    } else {
        for (int s = 0; s < steps; ++s) {
            files.caseFiles.push_back(stepName(base, s) + ".cas" + gz);
        }
    }
    if (spec.hasData()) {
        for (int s = 0; s < steps; ++s) {
            files.dataFiles.push_back((steps == 1 ? base : stepName(base, s)) + ".dat" + gz);
        }
    }
    if (spec.xml.enabled) {
        files.xmlFile = base + ".xml";
    }
    for (const std::string& c : files.caseFiles) {
        auto sink = detail::openFileSink(c, level(spec));
        caseTo(spec, mesh, *sink);
    }
    for (size_t s = 0; s < files.dataFiles.size(); ++s) {
        auto sink = detail::openFileSink(files.dataFiles[s], level(spec));
        dataTo(spec, mesh, static_cast<int>(s), *sink);
    }
    if (!files.xmlFile.empty()) {
        auto sink = detail::openFileSink(files.xmlFile, 0);
        xmlTo(spec, *sink);
    }
    return files;
}

}  // namespace fluentgen
