// The case file, in the order a recent solver writes it: header, machine
// configuration, dimensions, variables, declarations of the totals (zone id
// 0), cells, faces, trees and face pairs, nodes, partitions, zone names.
//
// Binary sections:  (2013 (b 21d 2f4 3 4)\n(<numbers>)\nEnd of Binary Section   2013)\n
// a uniform cell zone has no body:  (2012 (9 1 d8 1 4)\nEnd of Binary Section   2012)\n
// ASCII sections:   (13 (b 21d 2f4 3 4)\n(\n<hexadecimal numbers, a face a line>))\n
#include <algorithm>
#include <cstdio>
#include <string>

#include "tools/fluentgen/Writers.h"

namespace fluentgen {
namespace detail {

Families familiesOf(Encoding e) {
    Families f;
    switch (e) {
        case Encoding::Ascii:
            f.ascii = true;
            break;
        case Encoding::BinarySingle:
            f.ints = f.nodes = f.other = 2000;
            break;
        case Encoding::BinaryDouble:
            f.ints = f.nodes = f.other = 3000;
            break;
        case Encoding::BinaryMixed:
            f.ints = 2000;
            f.nodes = 3000;
            f.other = 3000;
            break;
    }
    return f;
}

std::string machineConfig(const Spec& spec) {
    // Second number the byte order, sixth the integer size, eighth and ninth
    // the sizes of single and double reals. A first number other than 60 goes
    // with big-endian files.
    char buf[128];
    bool big = spec.byteOrder == ByteOrder::Big;
    std::snprintf(buf, sizeof buf, "(4 (%d %d 0 1 2 %d 8 4 8 8 8 4))", big ? 50 : 60, big ? 1 : 0,
                  spec.intSize);
    return buf;
}

void writeComment(Out& out, const std::string& text) {
    out.text("(0 \"");
    out.text(text);
    out.text("\")\n");
}

void writeGridSize(Out& out, const Mesh& mesh) {
    out.text("(33 (");
    out.dec(mesh.cellCount);
    out.ch(' ');
    out.dec(mesh.faceCount);
    out.ch(' ');
    out.dec(mesh.nodeCount);
    out.text("))\n");
}

namespace {

class CaseWriter {
  public:
    CaseWriter(const Spec& spec, const Mesh& mesh, Out& out)
        : spec_(spec), mesh_(mesh), out_(out), fam_(familiesOf(spec.encoding)) {}
    void write();

  private:
    void comment(const char* text) { writeComment(out_, text); }
    // "(id (" ... header numbers; the caller writes them and calls body().
    void open(int base, int family) {
        id_ = base + family;
        out_.ch('(');
        out_.dec(id_);
        out_.text(" (");
    }
    void headerHex(int64_t v, bool last = false) {
        out_.hex(v);
        out_.ch(last ? ')' : ' ');
    }
    void headerDec(int64_t v, bool last = false) {
        out_.dec(v);
        out_.ch(last ? ')' : ' ');
    }
    // ASCII bodies as a recent solver writes them: "\n(\n", numbers a line
    // apart by single blanks, and "))" right behind the last line.
    void body() {
        out_.text(id_ >= 2000 ? "\n(" : "\n(\n");
        lineStart_ = true;
        newline_ = false;
    }
    void startNumber() {
        if (newline_) {
            out_.ch('\n');
            newline_ = false;
        } else if (!lineStart_) {
            out_.ch(' ');
        }
        lineStart_ = false;
    }
    void integer(int64_t v) {
        if (id_ >= 2000) {
            out_.binInt(v);
        } else {
            startNumber();
            out_.hex(v);
        }
    }
    void real(double v, bool single) {
        if (id_ >= 2000) {
            out_.binReal(v, single);
        } else {
            startNumber();
            out_.real(v);
        }
    }
    void endLine() {
        if (id_ < 2000 && !lineStart_) {
            newline_ = true;
            lineStart_ = true;
        }
    }
    void close() {
        if (id_ >= 2000) {
            // The marker has three blanks, then the id right-aligned in four columns.
            char buf[64];
            std::snprintf(buf, sizeof buf, ")\nEnd of Binary Section   %4d)\n", id_);
            out_.text(buf);
        } else {
            out_.text("))\n");
        }
    }
    // A section with a header only: "(2012 (9 1 d8 1 4)\nEnd of Binary Section   2012)\n".
    void closeHeaderOnly() {
        if (id_ >= 2000) {
            char buf[64];
            std::snprintf(buf, sizeof buf, "\nEnd of Binary Section   %4d)\n", id_);
            out_.text(buf);
        } else {
            out_.text(")\n");
        }
    }
    int maxZoneId() const {
        int m = 0;
        for (const CellZoneInfo& z : mesh_.cellZones) {
            m = std::max(m, z.id);
        }
        for (const FaceZoneInfo& z : mesh_.faceZones) {
            m = std::max(m, z.id);
        }
        return m;
    }
    void variables();
    void cells();
    void faces();
    void trees();
    void pairs();
    void nodes();
    void partitions();
    void zoneNames();

    const Spec& spec_;
    const Mesh& mesh_;
    Out& out_;
    Families fam_;
    int id_ = 0;
    bool lineStart_ = true;  // ASCII: no number on the current line yet
    bool newline_ = false;   // ASCII: a line break is due before the next number
};

void CaseWriter::write() {
    comment("fluentgen 1.0: synthetic Fluent case");
    comment("Machine Config:");
    out_.text(machineConfig(spec_));
    out_.ch('\n');
    comment("Dimensions:");
    out_.text(mesh_.dims == 3 ? "(2 3)\n" : "(2 2)\n");
    variables();
    if (spec_.extraSections) {
        comment("Grid size:");
        writeGridSize(out_, mesh_);
    }
    comment("Grid:");
    // Declarations of the totals, zone id 0.
    out_.text("(12 (0 1 ");
    out_.hex(mesh_.cellCount);
    out_.text(" 0))\n(13 (0 1 ");
    out_.hex(mesh_.faceCount);
    out_.text(" 0))\n(10 (0 1 ");
    out_.hex(mesh_.nodeCount);
    out_.text(" 0 ");
    out_.dec(mesh_.dims);
    out_.text("))\n");
    cells();
    faces();
    trees();
    pairs();
    nodes();
    if (spec_.extraSections) {
        partitions();
    }
    zoneNames();
    out_.flush();
}

void CaseWriter::variables() {
    bool dbl = spec_.doublePrecisionFlag < 0 ? spec_.encoding != Encoding::BinarySingle
                                             : spec_.doublePrecisionFlag != 0;
    bool unsteady = spec_.series.steps > 1;
    comment("Variables:");
    out_.text("(37 (\n(rp-seg? #t)\n(rp-lam? #t)\n(rp-unsteady? ");
    out_.text(unsteady ? "#t" : "#f");
    out_.text(")\n(case-config ((rp-seg? . #t) (rp-acoustics? . #f) (rp-atm? . #f) (rp-axi? . ");
    out_.text(spec_.axisymmetric ? "#t" : "#f");
    out_.text(") (rp-des? . #f) (rp-unsteady? . ");
    out_.text(unsteady ? "#t" : "#f");
    out_.text(") (rp-3d? . ");
    out_.text(mesh_.dims == 3 ? "#t" : "#f");
    out_.text(") (rp-double? . ");
    out_.text(dbl ? "#t" : "#f");
    out_.text(") (rp-graphics? . #t)))\n");
    if (!spec_.species.empty()) {
        out_.text("(species (names (");
        for (size_t i = 0; i < spec_.species.size(); ++i) {
            if (i > 0) {
                out_.ch(' ');
            }
            out_.text(spec_.species[i]);
        }
        out_.text(")) (reactions ()))\n(rp-spe? #t)\n");
    }
    out_.text("(sg-swirl? #f)\n(time-step 0)\n))\n");
}

void CaseWriter::cells() {
    for (size_t zi = 0; zi < mesh_.cellZones.size(); ++zi) {
        const CellZoneInfo& z = mesh_.cellZones[zi];
        open(12, fam_.ints);
        headerHex(z.id);
        headerHex(z.first);
        headerHex(z.last);
        headerHex(z.type);
        headerDec(z.elementType, true);
        if (z.elementType != 0) {
            closeHeaderOnly();
            continue;
        }
        body();
        class Types : public CellVisitor {
          public:
            explicit Types(CaseWriter& w) : w_(w) {}
            void cell(int type, const Vec3&) override {
                w_.integer(type);
                if (++n_ % 16 == 0) {
                    w_.endLine();
                }
            }

          private:
            CaseWriter& w_;
            int n_ = 0;
        } types(*this);
        mesh_.cells(zi, types);
        close();
    }
}

void CaseWriter::faces() {
    class Faces : public FaceVisitor {
      public:
        Faces(CaseWriter& w, bool counted) : w_(w), counted_(counted) {}
        void face(const int64_t* nodes, int n, int64_t c0, int64_t c1) override {
            if (counted_) {
                w_.integer(n);
            }
            for (int a = 0; a < n; ++a) {
                w_.integer(nodes[a]);
            }
            w_.integer(c0);
            w_.integer(c1);
            w_.endLine();
        }

      private:
        CaseWriter& w_;
        bool counted_;
    };
    for (size_t zi = 0; zi < mesh_.faceZones.size(); ++zi) {
        const FaceZoneInfo& z = mesh_.faceZones[zi];
        open(13, fam_.ints);
        headerHex(z.id);
        headerHex(z.first);
        headerHex(z.last);
        headerHex(z.bcType);
        headerDec(z.faceType, true);
        body();
        Faces f(*this, z.faceType == 0 || z.faceType == 5);
        mesh_.faces(zi, f);
        close();
    }
}

void CaseWriter::trees() {
    std::vector<int64_t> kids;
    for (size_t t = 0; t < mesh_.trees.size(); ++t) {
        const FaceTreeInfo& tr = mesh_.trees[t];
        open(tr.sectionBase, fam_.ints);
        headerHex(tr.first);
        headerHex(tr.last);
        headerHex(tr.parentZoneId);
        headerHex(tr.childZoneId, true);
        body();
        for (int64_t p = tr.first; p <= tr.last; ++p) {
            mesh_.treeChildren(t, p, kids);
            integer(static_cast<int64_t>(kids.size()));
            for (int64_t k : kids) {
                integer(k);
            }
            endLine();
        }
        close();
    }
}

void CaseWriter::pairs() {
    for (size_t pi = 0; pi < mesh_.pairs.size(); ++pi) {
        const FacePairsInfo& p = mesh_.pairs[pi];
        open(p.sectionBase, fam_.ints);
        if (p.sectionBase == 62) {
            headerDec(p.zoneA);
            headerDec(p.zoneB);
            headerDec(p.count, true);
        } else if (p.sectionBase == 61) {
            headerHex(p.first);
            headerHex(p.last, true);
        } else {
            headerHex(p.first);
            headerHex(p.last);
            headerHex(p.zoneA);
            headerHex(p.zoneB, true);
        }
        body();
        for (int64_t k = 0; k < p.count; ++k) {
            std::pair<int64_t, int64_t> ab = mesh_.pair(pi, k);
            integer(ab.first);
            integer(ab.second);
            endLine();
        }
        close();
    }
}

void CaseWriter::nodes() {
    int sections = std::max(1, spec_.nodeSections);
    int64_t n = mesh_.nodeCount;
    class Nodes : public NodeVisitor {
      public:
        Nodes(CaseWriter& w, int dims, bool single) : w_(w), dims_(dims), single_(single) {}
        void node(const Vec3& p) override {
            w_.real(p.x, single_);
            w_.real(p.y, single_);
            if (dims_ == 3) {
                w_.real(p.z, single_);
            }
            w_.endLine();
        }

      private:
        CaseWriter& w_;
        int dims_;
        bool single_;
    } visitor(*this, mesh_.dims, fam_.nodes == 2000);
    for (int s = 0; s < sections; ++s) {
        int64_t first = n * s / sections + 1;
        int64_t last = n * (s + 1) / sections;
        if (last < first) {
            continue;
        }
        open(10, fam_.nodes);
        headerHex(maxZoneId() + 1 + s);  // node zones numbered behind all other zones
        headerHex(first);
        headerHex(last);
        headerHex(1);
        headerDec(mesh_.dims, true);
        body();
        mesh_.nodes(first, last, visitor);
        close();
    }
}

void CaseWriter::partitions() {
    comment("Cell partition ids:");
    const int parts = 4;
    for (const CellZoneInfo& z : mesh_.cellZones) {
        open(40, fam_.ints);
        headerHex(z.id);
        headerHex(z.first);
        headerHex(z.last);
        headerHex(parts, true);
        body();
        int64_t n = z.last - z.first + 1;
        for (int64_t c = 0; c < n; ++c) {
            integer(c * parts / n);
            if (c % 16 == 15) {
                endLine();
            }
        }
        close();
    }
}

void CaseWriter::zoneNames() {
    bool any = false;
    for (const CellZoneInfo& z : mesh_.cellZones) {
        any = any || z.nameSection != 0;
    }
    for (const FaceZoneInfo& z : mesh_.faceZones) {
        any = any || z.nameSection != 0;
    }
    if (!any) {
        return;
    }
    comment("Zone variables:");
    auto zone = [&](int section, int id, const char* word, const std::string& name, bool fluid) {
        out_.ch('(');
        out_.dec(section);
        out_.text(" (");
        out_.dec(id);
        out_.ch(' ');
        out_.text(word);
        out_.ch(' ');
        out_.text(name);
        if (section == 39) {
            out_.text(" 1)(\n");
            if (fluid) {
                out_.text(" (material . air)\n (sources? . #f)\n");
            }
            out_.text("))\n");
        } else {
            out_.text(")())\n");
        }
    };
    for (const CellZoneInfo& z : mesh_.cellZones) {
        if (z.nameSection != 0) {
            zone(z.nameSection, z.id, cellZoneTypeWord(z.type), z.name, true);
        }
    }
    for (const FaceZoneInfo& z : mesh_.faceZones) {
        if (z.nameSection != 0) {
            zone(z.nameSection, z.id, boundaryTypeWord(z.bcType), z.name, false);
        }
    }
}

}  // namespace

void writeCase(const Spec& spec, const Mesh& mesh, Out& out) {
    CaseWriter w(spec, mesh, out);
    w.write();
}

}  // namespace detail
}  // namespace fluentgen
