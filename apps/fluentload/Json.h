// A small writer of JSON text, enough for fluentload's reports.
#pragma once

#include <cmath>
#include <cstdio>
#include <string>

namespace fluentload {

// Appends s as a JSON string literal, quotes included.
inline void appendJsonString(std::string& out, const std::string& s) {
    out += '"';
    for (unsigned char c : s) {
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                if (c < 0x20) {
                    char buf[8];
                    std::snprintf(buf, sizeof buf, "\\u%04x", c);
                    out += buf;
                } else {
                    out += static_cast<char>(c);
                }
        }
    }
    out += '"';
}

inline std::string jsonString(const std::string& s) {
    std::string out;
    appendJsonString(out, s);
    return out;
}

// A number as JSON has it: shortest round-trip form; NaN and infinities,
// which JSON cannot hold, become null.
inline std::string jsonNumber(double v) {
    if (!std::isfinite(v))
        return "null";
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.17g", v);
    return buf;
}

}  // namespace fluentload
