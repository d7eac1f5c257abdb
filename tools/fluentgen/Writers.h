// The three file writers, on a mesh and an encoder.
#pragma once

#include "tools/fluentgen/FluentGen.h"
#include "tools/fluentgen/Mesh.h"
#include "tools/fluentgen/Output.h"

namespace fluentgen {
namespace detail {

// Section id offsets of the encoding of a Spec.
struct Families {
    bool ascii = false;
    int ints = 0;                       // cells, faces, trees, pairs, partitions: 0, 2000 or 3000
    int nodes = 0;                      // nodes
    int data(size_t fieldIndex) const;  // data sections
    int other = 0;                      // residuals and particles
};
Families familiesOf(Encoding e);

void writeCase(const Spec& spec, const Mesh& mesh, Out& out);
void writeData(const Spec& spec, const Mesh& mesh, int step, Out& out);
void writeXml(const Spec& spec, Out& out);

// The data sections of a spec on a mesh, in file order.
std::vector<DataSectionInfo> dataSectionsOf(const Spec& spec, const Mesh& mesh);
std::vector<XmlItemInfo> xmlItemsOf(const Spec& spec);
double flowTimeOf(const Spec& spec, int step);
std::string machineConfig(const Spec& spec);
// A comment section, (0 "text"), on a line of its own.
void writeComment(Out& out, const std::string& text);
// The grid size section of case and data files: (33 (cells faces nodes)), decimal.
void writeGridSize(Out& out, const Mesh& mesh);
void validate(const Spec& spec);

}  // namespace detail
}  // namespace fluentgen
