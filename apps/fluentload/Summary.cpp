#include "apps/fluentload/Summary.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <map>

#include "apps/fluentload/Json.h"

namespace fluentload {

namespace {

std::string format(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

std::string format(const char* fmt, ...) {
    char buf[512];
    va_list args;
    va_start(args, fmt);
    std::vsnprintf(buf, sizeof buf, fmt, args);
    va_end(args);
    return buf;
}

std::string number(double v) {
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.6g", v);
    return buf;
}

std::string quoted(const std::string& s) {
    return "\"" + s + "\"";
}

// Left-aligned in a column of `width`, the text kept whole.
std::string padded(const std::string& s, size_t width) {
    return s.size() >= width ? s : s + std::string(width - s.size(), ' ');
}

std::string sizesText(const ZoneInfo& z) {
    if (z.type == ZorZoneType_Ordered)
        return format("%lld x %lld x %lld", static_cast<long long>(z.iMax), static_cast<long long>(z.jMax),
                      static_cast<long long>(z.kMax));
    std::string text =
        format("%lld nodes, %lld elements", static_cast<long long>(z.iMax), static_cast<long long>(z.jMax));
    if (z.type == ZorZoneType_FEPolygon || z.type == ZorZoneType_FEPolyhedron)
        text += format(", %lld faces", static_cast<long long>(z.kMax));
    return text;
}

// Keys that repeat within one object get " #2", " #3", ...
class UniqueKeys {
  public:
    std::string operator()(const std::string& key) {
        int n = ++seen_[key];
        return n == 1 ? key : key + " #" + std::to_string(n);
    }

  private:
    std::map<std::string, int> seen_;
};

void auxJson(std::string& out, const std::vector<AuxItem>& aux, const std::string& indent) {
    if (aux.empty()) {
        out += "{}";
        return;
    }
    out += "{";
    UniqueKeys keys;
    for (size_t i = 0; i < aux.size(); ++i) {
        out += i ? ",\n" : "\n";
        out += indent + "  ";
        appendJsonString(out, keys(aux[i].name));
        out += ": ";
        appendJsonString(out, aux[i].value);
    }
    out += "\n" + indent + "}";
}

}  // namespace

std::string summaryText(const DataSetInfo& info) {
    if (!info.exists)
        return "The load made no data set.\n";
    std::string out = format("Data set %s: %zu zones, %zu variables\n", quoted(info.title).c_str(),
                             info.zones.size(), info.variables.size());
    if (!info.aux.empty()) {
        out += "Auxiliary data:\n";
        for (const AuxItem& a : info.aux)
            out += "  " + a.name + " = " + a.value + "\n";
    }
    size_t nameWidth = 8;
    for (const VariableInfo& v : info.variables)
        nameWidth = std::max(nameWidth, v.name.size());
    for (const ZoneInfo& z : info.zones)
        nameWidth = std::max(nameWidth, z.name.size());
    nameWidth = std::min<size_t>(nameWidth, 40);

    if (!info.variables.empty()) {
        out += "Variables:\n";
        for (size_t v = 0; v < info.variables.size(); ++v) {
            const VariableInfo& var = info.variables[v];
            out += format("  %4zu  ", v + 1) + padded(var.name, nameWidth) + "  " +
                   padded(dataTypeName(var.dataType), 7) + "  " + locationName(var.location) + "\n";
        }
    }
    if (!info.zones.empty()) {
        out += "Zones:\n";
        for (const ZoneInfo& z : info.zones) {
            out += format("  %4lld  ", static_cast<long long>(z.number)) + padded(z.name, nameWidth) + "  " +
                   padded(zoneTypeName(z.type), 13) + "  " + sizesText(z);
            out += "; strand " + std::to_string(z.strand) + ", time " + number(z.solutionTime);
            if (z.parentZone != 0)
                out += ", parent zone " + std::to_string(z.parentZone);
            out += "\n";
            for (const AuxItem& a : z.aux)
                out += "        " + a.name + " = " + a.value + "\n";
            if (!info.pulled)
                continue;
            for (size_t v = 0; v < z.values.size() && v < info.variables.size(); ++v) {
                const ValueStats& s = z.values[v].stats;
                if (!s.pulled) {
                    out += "        " + padded(info.variables[v].name, nameWidth) + "  not loaded\n";
                    continue;
                }
                out += "        " + padded(info.variables[v].name, nameWidth) + "  " +
                       padded(locationName(z.values[v].location), 12) + "  " + number(s.min) + " to " +
                       number(s.max) + ", sum " + number(s.sum) + "\n";
            }
        }
    }
    return out;
}

std::string summaryJson(const DataSetInfo& info) {
    std::string out = "{\n  \"data_set\": ";
    out += info.exists ? "true" : "false";
    out += ",\n  \"title\": ";
    appendJsonString(out, info.title);
    out += ",\n  \"aux\": ";
    auxJson(out, info.aux, "  ");
    out += ",\n  \"variables\": [";
    for (size_t v = 0; v < info.variables.size(); ++v) {
        const VariableInfo& var = info.variables[v];
        out += v ? ",\n    " : "\n    ";
        out += "{\"name\": " + jsonString(var.name) +
               ", \"data_type\": " + jsonString(dataTypeName(var.dataType)) +
               ", \"location\": " + jsonString(locationName(var.location)) + "}";
    }
    out += info.variables.empty() ? "]" : "\n  ]";
    out += ",\n  \"zones\": [";
    for (size_t zi = 0; zi < info.zones.size(); ++zi) {
        const ZoneInfo& z = info.zones[zi];
        out += zi ? ",\n    {" : "\n    {";
        out += "\n      \"number\": " + std::to_string(z.number);
        out += ",\n      \"name\": " + jsonString(z.name);
        out += ",\n      \"type\": " + jsonString(zoneTypeName(z.type));
        out += ",\n      \"type_number\": " + std::to_string(z.type);
        out += ",\n      \"imax\": " + std::to_string(z.iMax);
        out += ",\n      \"jmax\": " + std::to_string(z.jMax);
        out += ",\n      \"kmax\": " + std::to_string(z.kMax);
        out += ",\n      \"points\": " + std::to_string(z.points());
        out += ",\n      \"elements\": " + std::to_string(z.elements());
        out += ",\n      \"strand\": " + std::to_string(z.strand);
        out += ",\n      \"solution_time\": " + jsonNumber(z.solutionTime);
        out += ",\n      \"parent_zone\": " + std::to_string(z.parentZone);
        out += ",\n      \"aux\": ";
        auxJson(out, z.aux, "      ");
        out += ",\n      \"data_types\": [";
        for (size_t v = 0; v < z.values.size(); ++v)
            out += (v ? ", " : "") + jsonString(dataTypeName(z.values[v].dataType));
        out += "],\n      \"locations\": [";
        for (size_t v = 0; v < z.values.size(); ++v)
            out += (v ? ", " : "") + jsonString(locationName(z.values[v].location));
        out += "]";
        if (info.pulled) {
            out += ",\n      \"values\": {";
            UniqueKeys keys;
            bool first = true;
            for (size_t v = 0; v < z.values.size() && v < info.variables.size(); ++v) {
                const ZoneValueInfo& value = z.values[v];
                if (!value.stats.pulled)
                    continue;
                out += first ? "\n        " : ",\n        ";
                first = false;
                appendJsonString(out, keys(info.variables[v].name));
                out += ": {\"location\": " + jsonString(locationName(value.location)) +
                       ", \"data_type\": " + jsonString(dataTypeName(value.dataType)) +
                       ", \"count\": " + std::to_string(value.stats.count) +
                       ", \"min\": " + jsonNumber(value.stats.min) +
                       ", \"max\": " + jsonNumber(value.stats.max) +
                       ", \"sum\": " + jsonNumber(value.stats.sum) + "}";
            }
            out += first ? "}" : "\n      }";
        }
        out += "\n    }";
    }
    out += info.zones.empty() ? "]" : "\n  ]";
    out += "\n}\n";
    return out;
}

}  // namespace fluentload
