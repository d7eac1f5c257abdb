// The XML particle history file. Each array begins on the line behind its
// <Data ...> tag, which stands alone on its line:
//
//   <Item id="0" type="OPTION" name="Injection">
//   <Option id="0" name="injection-0"/>
//   </Item>
//   <Section id="1" length="8">
//   <Data item="1" dataFormat="Base64/LE" minimum="0" maximum="0.07">
//   AAAAAArXIzwK1yM9...
//   </Data>
#include <algorithm>
#include <cstring>
#include <string>

#include "tools/fluentgen/Writers.h"

namespace fluentgen {
namespace detail {

std::vector<XmlItemInfo> xmlItemsOf(const Spec& spec) {
    bool three = is3D(spec.mesh);
    std::vector<XmlItemInfo> items;
    auto add = [&](const char* name, int formulaId, bool ascii, bool constant) {
        XmlItemInfo it;
        it.id = std::to_string(items.size() + 1);
        it.name = name;
        it.formulaId = formulaId;
        it.ascii = ascii || !spec.xml.base64;
        it.constant = constant;
        items.push_back(it);
    };
    add("Particle X Position", 7, false, false);
    add("Particle Y Position", 8, false, false);
    if (three) {
        add("Particle Z Position", 9, false, false);
    }
    add("Particle X Velocity", 10, false, false);
    add("Particle Y Velocity", 11, false, false);
    if (three) {
        add("Particle Z Velocity", 12, false, false);
    }
    add("Particle ID", 1, true, false);  // integer ids: always text
    add("Particle Diameter", 13, false, false);
    add("Particle Mass", 15, true, false);
    add("My Scalar", 900, false, false);
    add("Particle Residence Time", 901, false, true);
    return items;
}

void writeXml(const Spec& spec, Out& out) {
    const XmlSpec& x = spec.xml;
    double time = flowTimeOf(spec, 0);
    std::vector<XmlItemInfo> items = xmlItemsOf(spec);
    out.text("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ParticleHistory>\n");
    if (x.formatElement) {
        out.text("<Format version=\"1.0\"/>\n");
    }
    out.text("<Items>\n<Item id=\"0\" type=\"OPTION\" name=\"Injection\">\n<Option id=\"0\" name=\"");
    out.text(x.injection);
    out.text("\"/>\n</Item>\n");
    for (const XmlItemInfo& it : items) {
        out.text("<Item id=\"");
        out.text(it.id);
        out.text(it.formulaId == 1 ? "\" type=\"INTEGER\" name=\"" : "\" type=\"FLOAT\" name=\"");
        out.text(it.name);
        out.text("\"/>\n");
    }
    out.text("</Items>\n");
    for (int s = 0; s < x.sections; ++s) {
        out.text("<Section id=\"");
        out.dec(s + 1);
        if (x.sizeAttribute) {
            out.text("\" length=\"0\" size=\"");
        } else {
            out.text("\" length=\"");
        }
        out.dec(x.particles);
        out.text("\">\n");
        for (const XmlItemInfo& it : items) {
            std::vector<double> v(static_cast<size_t>(x.particles));
            for (int64_t p = 0; p < x.particles; ++p) {
                double w = particleFormula(it.formulaId, s, p, time);
                v[static_cast<size_t>(p)] = it.ascii ? w : static_cast<double>(static_cast<float>(w));
            }
            double lo = v.empty() ? 0.0 : *std::min_element(v.begin(), v.end());
            double hi = v.empty() ? 0.0 : *std::max_element(v.begin(), v.end());
            out.text("<Data item=\"");
            out.text(it.id);
            if (it.constant) {
                out.text("\" constant=\"true\" value=\"");
                out.real(v.empty() ? 0.0 : v[0]);
                out.text("\"/>\n");
                continue;
            }
            out.text(it.ascii ? "\" dataFormat=\"ASCII\" minimum=\""
                              : "\" dataFormat=\"Base64/LE\" minimum=\"");
            out.real(lo);
            out.text("\" maximum=\"");
            out.real(hi);
            out.text("\">\n");
            if (it.ascii) {
                for (size_t p = 0; p < v.size(); ++p) {
                    out.real(v[p]);
                    out.ch((p + 1) % 8 == 0 || p + 1 == v.size() ? '\n' : ' ');
                }
            } else {
                std::string raw(v.size() * 4, '\0');
                for (size_t p = 0; p < v.size(); ++p) {
                    float f = static_cast<float>(v[p]);
                    uint32_t u;
                    std::memcpy(&u, &f, 4);
                    for (int b = 0; b < 4; ++b) {
                        raw[p * 4 + static_cast<size_t>(b)] = static_cast<char>((u >> (8 * b)) & 0xff);
                    }
                }
                out.text(base64(reinterpret_cast<const unsigned char*>(raw.data()), raw.size()));
                out.ch('\n');
            }
            out.text("</Data>\n");
        }
        out.text("</Section>\n");
    }
    out.text("</ParticleHistory>\n");
    out.flush();
}

}  // namespace detail
}  // namespace fluentgen
