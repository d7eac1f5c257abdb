// Reading VTK files back with VTK's own readers (Debian's python3-vtk9, run
// by vtk_describe.py beside this file), and running small python checks.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace readback {

const char* const kPython = "/usr/bin/python3";

inline bool pythonAvailable() {
    return access(kPython, X_OK) == 0;
}

// Quotes a word for the shell.
inline std::string shellQuote(const std::string& s) {
    std::string out = "'";
    for (char c : s)
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

// Runs a command; its standard output (and error) in *output; returns the exit status.
inline int run(const std::string& command, std::string* output) {
    output->clear();
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr)
        return -1;
    char buf[65536];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, pipe)) > 0)
        output->append(buf, n);
    int status = pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

inline std::string testScript(const std::string& name) {
    return std::string(FL_SOURCE_DIR) + "/tests/fluentload/" + name;
}

// A fresh folder under the system's temporary folder, removed at the end.
class TempDir {
  public:
    TempDir() {
        std::random_device rd;
        path_ = std::filesystem::temp_directory_path() /
                ("fluentload-test-" + std::to_string(getpid()) + "-" + std::to_string(rd()));
        std::filesystem::create_directories(path_);
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

struct Array {
    std::string type;  // VTK's data type name, e.g. "float", "double", "int"
    int components = 0;
    std::vector<double> values;
};

// One data set as VTK read it.
struct Block {
    std::string path;  // block names joined by '/'
    long points = -1;
    long cells = -1;
    std::vector<double> xyz;
    std::vector<int> types;
    std::vector<std::vector<long>> cellPoints;
    std::map<long, std::vector<long>> faceStreams;  // polyhedra
    std::map<long, double> volumes;                 // 3-D cells
    std::map<long, int> validity;                   // 3-D cells
    std::map<std::string, Array> pointData, cellData;
    std::map<std::string, std::vector<std::string>> fields;
};

struct Step {
    double time = 0.0;
    std::string file;
    std::vector<Block> blocks;
};

// What vtk_describe.py printed: steps for a collection, else one step of time 0.
struct Description {
    std::vector<Step> steps;
    std::string error;  // the reader's complaint; empty when it read the files
};

inline std::vector<std::string> split(const std::string& line, char sep) {
    std::vector<std::string> parts;
    std::string part;
    std::istringstream in(line);
    while (std::getline(in, part, sep))
        parts.push_back(part);
    if (!line.empty() && line.back() == sep)
        parts.push_back("");
    return parts;
}

template <typename T>
std::vector<T> numbers(const std::string& text) {
    std::vector<T> out;
    std::istringstream in(text);
    T v;
    while (in >> v)
        out.push_back(v);
    return out;
}

inline Description describe(const std::string& file) {
    Description d;
    std::string output;
    int status =
        run(std::string(kPython) + " " + shellQuote(testScript("vtk_describe.py")) + " " + shellQuote(file),
            &output);
    if (status != 0) {
        d.error = "vtk_describe.py failed (status " + std::to_string(status) + "): " + output;
        return d;
    }
    std::istringstream lines(output);
    std::string line;
    Block* block = nullptr;
    while (std::getline(lines, line)) {
        std::vector<std::string> f = split(line, '\t');
        if (f.empty())
            continue;
        const std::string& kind = f[0];
        if (kind == "step") {
            d.steps.push_back({std::stod(f.at(1)), f.at(2), {}});
            block = nullptr;
        } else if (kind == "block") {
            if (d.steps.empty())
                d.steps.push_back({});
            d.steps.back().blocks.push_back({});
            block = &d.steps.back().blocks.back();
            block->path = f.at(1);
            block->points = f.at(2) == "missing" ? -1 : std::stol(f.at(2));
            block->cells = f.at(3) == "missing" ? -1 : std::stol(f.at(3));
        } else if (block == nullptr) {
            d.error = "a line before any block: " + line;
            return d;
        } else if (kind == "points") {
            block->xyz = numbers<double>(f.size() > 1 ? f[1] : "");
        } else if (kind == "cell") {
            block->types.push_back(std::stoi(f.at(2)));
            block->cellPoints.push_back(numbers<long>(f.size() > 3 ? f[3] : ""));
        } else if (kind == "faces") {
            block->faceStreams[std::stol(f.at(1))] = numbers<long>(f.at(2));
        } else if (kind == "volume") {
            block->volumes[std::stol(f.at(1))] = std::stod(f.at(2));
        } else if (kind == "valid") {
            block->validity[std::stol(f.at(1))] = std::stoi(f.at(2));
        } else if (kind == "pointdata" || kind == "celldata") {
            Array a{f.at(2), std::stoi(f.at(3)), numbers<double>(f.size() > 4 ? f[4] : "")};
            (kind == "pointdata" ? block->pointData : block->cellData)[f.at(1)] = a;
        } else if (kind == "field") {
            block->fields[f.at(1)] = std::vector<std::string>(f.begin() + 2, f.end());
        }
    }
    return d;
}

}  // namespace readback
