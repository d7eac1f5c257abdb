// The data file: header, machine configuration, grid size, variables (flow
// time, the cell-function list), Data sections field by field and zone by
// zone, Residuals, additional quantities (314), Particle sections.
//
// Binary Data:   (3300 (1 8 1 0 1 1 19200)\n(<reals>\nEnd of Binary Section   3300))\n
// Binary Residuals: (3302 (72 1 1 1)\n(<reals>)\n\nEnd of Binary Section   3302)\n
// ASCII Data:    (300 (1 1 1 0 1 1 10228)\n(<one element a line>\n))\n
// Particles:     (2303 (name count time dims)\n(7 (<reals>\nEnd of Binary Section      7))\n ... )\n
#include <algorithm>
#include <cstdio>
#include <string>

#include "tools/fluentgen/Writers.h"

namespace fluentgen {
namespace detail {

int Families::data(size_t fieldIndex) const {
    if (ascii) {
        return 0;
    }
    if (ints == 2000 && nodes == 3000) {
        return fieldIndex % 2 == 0 ? 3000 : 2000;  // mixed: alternate per field
    }
    return other;
}

double flowTimeOf(const Spec& spec, int step) {
    return spec.flowTime + step * spec.series.timeStep;
}

std::vector<DataSectionInfo> dataSectionsOf(const Spec& spec, const Mesh& mesh) {
    Families fam = familiesOf(spec.encoding);
    std::vector<DataSectionInfo> out;
    auto add = [&](int base, int family, int fieldId, int dimension, int phase, bool unstored,
                   bool additional, int zoneId, int64_t first, int64_t last, bool faceZone) {
        DataSectionInfo d;
        d.sectionId = base + family;
        d.fieldId = fieldId;
        d.zoneId = zoneId;
        d.dimension = dimension;
        d.phase = phase;
        d.count = last - first + 1;
        d.firstId = unstored ? -1 : 1;
        d.lastId = d.firstId + d.count - 1;
        if (faceZone && !unstored) {
            // Face data counts faces by their numbers, as the case file does.
            d.firstId = first;
            d.lastId = last;
        }
        d.single = family == 2000;
        d.componentMajor = !additional && isComponentMajor(fieldId);
        d.additional = additional;
        d.faceZone = faceZone;
        d.zoneFirst = first;
        out.push_back(d);
    };
    for (size_t fi = 0; fi < spec.fields.size(); ++fi) {
        const FieldSpec& f = spec.fields[fi];
        for (const CellZoneInfo& z : mesh.cellZones) {
            if (z.type != 32) {
                add(300, fam.data(fi), f.fieldId, f.dimension, f.phase, f.unstored, false, z.id, z.first,
                    z.last, false);
            }
        }
        if (f.onBoundaries) {
            for (const FaceZoneInfo& z : mesh.faceZones) {
                if (z.boundary) {
                    add(300, fam.data(fi), f.fieldId, f.dimension, f.phase, f.unstored, false, z.id, z.first,
                        z.last, true);
                }
            }
        }
    }
    for (size_t q = 0; q < spec.additionalQuantities.size(); ++q) {
        int position = static_cast<int>(q) + 1;
        for (const CellZoneInfo& z : mesh.cellZones) {
            if (z.type != 32) {
                add(314, fam.data(q), position, 1, 1, false, true, z.id, z.first, z.last, false);
            }
        }
        for (const FaceZoneInfo& z : mesh.faceZones) {
            if (z.boundary && z.bcType == 3) {
                add(314, fam.data(q), position, 1, 1, false, true, z.id, z.first, z.last, true);
            }
        }
    }
    return out;
}

namespace {

const char* solverName(int fieldId) {
    switch (fieldId) {
        case 1:
            return "SV_P";
        case 3:
            return "SV_T";
        case 5:
            return "SV_K";
        case 6:
            return "SV_D";
        case 15:
            return "SV_BF_V";
        case 101:
            return "SV_DENSITY";
        case 102:
            return "SV_MU_LAM";
        case 103:
            return "SV_MU_T";
        case 111:
            return "SV_U";
        case 112:
            return "SV_V";
        case 113:
            return "SV_W";
        case 200:
            return "SV_Y";
        case 400:
            return "SV_P_MEAN";
        case 401:
            return "SV_P_RMS";
        case 970:
            return "SV_UDM_I";
        case 1000:
            return "SV_Y_MEAN";
        case 1050:
            return "SV_Y_RMS";
        default:
            return nullptr;
    }
}

class DataWriter {
  public:
    DataWriter(const Spec& spec, const Mesh& mesh, int step, Out& out)
        : spec_(spec),
          mesh_(mesh),
          step_(step),
          time_(flowTimeOf(spec, step)),
          out_(out),
          fam_(familiesOf(spec.encoding)) {}
    void write();

  private:
    void comment(const std::string& text) { writeComment(out_, text); }
    void variables();
    void section(const DataSectionInfo& d);
    void residuals();
    void particles();

    const Spec& spec_;
    const Mesh& mesh_;
    int step_;
    double time_;
    Out& out_;
    Families fam_;
};

void DataWriter::write() {
    comment("fluentgen 1.0: synthetic Fluent data");
    comment("Machine Config:");
    out_.text(machineConfig(spec_));
    out_.ch('\n');
    comment("Grid size:");
    writeGridSize(out_, mesh_);
    variables();
    std::vector<DataSectionInfo> sections = dataSectionsOf(spec_, mesh_);
    comment("Data:");
    for (const DataSectionInfo& d : sections) {
        if (!d.additional) {
            section(d);
        }
    }
    residuals();
    for (const DataSectionInfo& d : sections) {
        if (d.additional) {
            section(d);
        }
    }
    particles();
    out_.flush();
}

void DataWriter::variables() {
    // flow-time first and the cell-function list ahead of any other "((" of
    // the section, where readers look for them.
    comment("Variables:");
    out_.text("(37 (\n(flow-time ");
    out_.real(time_);
    out_.text(")\n(time-step ");
    out_.dec(step_);
    out_.text(")\n");
    if (!spec_.additionalQuantities.empty()) {
        out_.text("(cell-function-list (");
        for (size_t q = 0; q < spec_.additionalQuantities.size(); ++q) {
            const std::string& name = spec_.additionalQuantities[q];
            std::string word = name;
            for (char& c : word) {
                c = c == ' ' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            }
            if (q > 0) {
                out_.ch(' ');
            }
            out_.ch('(');
            out_.dec(static_cast<int64_t>(q) + 1);
            out_.text(" \"");
            out_.text(word);
            out_.text("\" \"");
            out_.text(name);
            out_.text("\" custom-function (1. 0. 0. 0.))");
        }
        out_.text("))\n");
    }
    out_.text("(delta-time-sampled ");
    out_.real(spec_.deltaTimeSampled);
    out_.text(")\n(rp-unsteady? ");
    out_.text(spec_.series.steps > 1 ? "#t" : "#f");
    out_.text(")\n(solution/history ((0 (flow-time . 0))))\n))\n");
}

void DataWriter::section(const DataSectionInfo& d) {
    std::string zoneWord;
    if (d.faceZone) {
        for (const FaceZoneInfo& z : mesh_.faceZones) {
            if (z.id == d.zoneId) {
                zoneWord = std::string(boundaryTypeWord(z.bcType)) + " zone " + std::to_string(z.id) + ", " +
                           std::to_string(d.count) + " faces:";
            }
        }
    } else {
        zoneWord = "cell zone " + std::to_string(d.zoneId) + ", " + std::to_string(d.count) + " cells:";
    }
    std::string name;
    if (d.additional) {
        name = spec_.additionalQuantities[static_cast<size_t>(d.fieldId - 1)];
        for (char& c : name) {
            c = c == ' ' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
    } else {
        const char* s = solverName(d.fieldId);
        name = s ? s : "SV_" + std::to_string(d.fieldId);
    }
    comment(name + ", domain " + std::to_string(d.phase) + ", " + zoneWord);

    out_.ch('(');
    out_.dec(d.sectionId);
    out_.text(" (");
    out_.dec(d.fieldId);
    out_.ch(' ');
    out_.dec(d.zoneId);
    out_.ch(' ');
    out_.dec(d.dimension);
    out_.text(" 0 ");
    out_.dec(d.phase);
    out_.ch(' ');
    out_.dec(d.firstId);
    out_.ch(' ');
    out_.dec(d.lastId);
    out_.text(")\n(");
    // Values are written as the elements stream by: all components of an
    // element in a row, or (component after component) one pass per component.
    bool binary = d.sectionId >= 2000;
    class Values {
      public:
        Values(Out& o, const DataSectionInfo& d, double time, bool binary)
            : o_(o), d_(d), time_(time), binary_(binary) {}
        void at(const Vec3& p) {
            int c0 = component_ < 0 ? 0 : component_;
            int c1 = component_ < 0 ? d_.dimension : component_ + 1;
            for (int c = c0; c < c1; ++c) {
                double v = d_.additional ? additionalQuantityFormula(d_.fieldId, time_, p)
                                         : fieldFormula(d_.fieldId, c, d_.phase, time_, p);
                if (binary_) {
                    o_.binReal(v, d_.single);
                } else {
                    o_.real(v);
                    o_.ch(c + 1 < c1 ? ' ' : '\n');
                }
            }
        }
        int component_ = -1;  // -1: all components of each element

      private:
        Out& o_;
        const DataSectionInfo& d_;
        double time_;
        bool binary_;
    } values(out_, d, time_, binary);
    class FaceCentres : public FaceVisitor {
      public:
        FaceCentres(const Mesh& m, Values& v) : m_(m), v_(v) {}
        void face(const int64_t* nodes, int n, int64_t, int64_t) override { v_.at(m_.faceCentre(nodes, n)); }

      private:
        const Mesh& m_;
        Values& v_;
    } faceCentres(mesh_, values);
    class CellCentres : public CellVisitor {
      public:
        explicit CellCentres(Values& v) : v_(v) {}
        void cell(int, const Vec3& c) override { v_.at(c); }

      private:
        Values& v_;
    } cellCentres(values);
    auto pass = [&]() {
        if (d.faceZone) {
            for (size_t zi = 0; zi < mesh_.faceZones.size(); ++zi) {
                if (mesh_.faceZones[zi].id == d.zoneId) {
                    mesh_.faces(zi, faceCentres);
                }
            }
        } else {
            for (size_t zi = 0; zi < mesh_.cellZones.size(); ++zi) {
                if (mesh_.cellZones[zi].id == d.zoneId) {
                    mesh_.cells(zi, cellCentres);
                }
            }
        }
    };
    if (d.componentMajor) {
        for (int c = 0; c < d.dimension; ++c) {
            values.component_ = c;
            pass();
        }
    } else {
        pass();
    }
    if (binary) {
        char buf[64];
        std::snprintf(buf, sizeof buf, "\nEnd of Binary Section   %4d))\n", d.sectionId);
        out_.text(buf);
    } else {
        out_.text("))\n");
    }
}

void DataWriter::residuals() {
    const ResidualSpec& r = spec_.residuals;
    if (r.ids.empty()) {
        return;
    }
    comment("Residuals:");
    int id = (r.scaleFactors ? 302 : 301) + (fam_.ascii ? 0 : fam_.other);
    bool binary = id >= 2000;
    bool single = id >= 2000 && id < 3000;
    for (int rid : r.ids) {
        out_.ch('(');
        out_.dec(id);
        out_.text(" (");
        out_.dec(r.rows);
        out_.ch(' ');
        out_.dec(rid);
        out_.ch(' ');
        out_.dec(r.width);
        if (r.fourHeaderNumbers) {
            out_.text(" 1");
        }
        out_.text(")\n(");
        if (!binary) {
            out_.ch('\n');
        }
        for (int row = 0; row < r.rows; ++row) {
            double iteration = r.firstIteration + row;
            if (binary) {
                out_.binReal(iteration, single);
            } else {
                out_.dec(static_cast<int64_t>(iteration));
            }
            for (int c = 0; c < r.width; ++c) {
                if (binary) {
                    out_.binReal(residualFormula(rid, row, c), single);
                } else {
                    out_.ch(' ');
                    out_.real(residualFormula(rid, row, c));
                }
            }
            if (r.scaleFactors) {
                for (int c = 0; c < r.width; ++c) {
                    if (binary) {
                        out_.binReal(residualScaleFormula(rid, row, c), single);
                    } else {
                        out_.ch(' ');
                        out_.real(residualScaleFormula(rid, row, c));
                    }
                }
            }
            if (!binary && row + 1 < r.rows) {
                out_.ch('\n');
            }
        }
        if (binary) {
            char buf[64];
            std::snprintf(buf, sizeof buf, ")\n\nEnd of Binary Section   %4d)\n", id);
            out_.text(buf);
        } else {
            out_.text(")\n)\n");
        }
    }
}

void DataWriter::particles() {
    if (spec_.particles.empty()) {
        return;
    }
    comment("Particles:");
    int id = 303 + (fam_.ascii ? 0 : fam_.other);
    bool binary = id >= 2000;
    bool single = id >= 2000 && id < 3000;
    for (size_t s = 0; s < spec_.particles.size(); ++s) {
        const ParticleSpec& p = spec_.particles[s];
        out_.ch('(');
        out_.dec(id);
        out_.text(" (");
        out_.text(p.name);
        out_.ch(' ');
        out_.dec(p.count);
        out_.ch(' ');
        out_.real(time_);
        out_.ch(' ');
        out_.dec(mesh_.dims);
        out_.text(")\n");
        for (int fid : p.fieldIds) {
            out_.ch('(');
            out_.dec(fid);
            out_.text(" (");
            if (!binary) {
                out_.ch('\n');
            }
            bool integer = isIntegerParticleField(fid);
            for (int64_t k = 0; k < p.count; ++k) {
                double v = particleFormula(fid, static_cast<int>(s), k, time_);
                if (binary) {
                    if (integer) {
                        out_.binInt(static_cast<int64_t>(v));
                    } else {
                        out_.binReal(v, single);
                    }
                } else {
                    out_.real(v);
                    out_.ch('\n');
                }
            }
            if (binary) {
                char buf[64];
                std::snprintf(buf, sizeof buf, "\nEnd of Binary Section   %4d))\n", fid);
                out_.text(buf);
            } else {
                out_.text("))\n");
            }
        }
        out_.text(")\n");
    }
}

}  // namespace

void writeData(const Spec& spec, const Mesh& mesh, int step, Out& out) {
    DataWriter w(spec, mesh, step, out);
    w.write();
}

}  // namespace detail
}  // namespace fluentgen
