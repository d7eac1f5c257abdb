// The command line of fluentload, and the instruction list it makes of it.
#pragma once

#include <string>
#include <vector>

namespace fluentload {

struct Options {
    std::vector<std::string> files;            // files named on the command line, in order
    std::vector<std::string> rawInstructions;  // --instr: a list handed to the loader as it is
    bool haveRawInstructions = false;          // --instr was given
    std::string loadOption;                    // "", or a LoadOption value forced by an option
    std::string gridZones;                     // "", or a GridZones value
    std::string zoneList;                      // --zones: a set string such as "1-3,5"
    std::vector<std::string> variables;        // --var, repeatable: names to load
    std::string averaging;                     // "", "none", "arithmetic" or "laplacian"
    bool allPoly = false;                      // --all-poly
    bool particles = false;                    // --particles
    std::string timeInterval;                  // --time-interval T: constant interval
    bool readTimeFromData = false;             // --read-time
    bool assignStrands = false;                // --strands
    bool addToExistingStrands = false;         // --existing-strands
    bool noMetadata = false;                   // --no-metadata, --metadata off
    bool additionalQuantities = false;         // --additional-quantities
    std::string saveUncompressed;              // "", "yes" or "no"
    std::string overwrite;                     // "", "yes" or "no"
    std::vector<bool> answers;                 // --answer yes|no, repeatable, in order
    bool batch = false;                        // --batch
    bool layout = false;                       // --layout
    bool progress = true;                      // --no-progress turns the bar off
    bool quiet = false;                        // --quiet: no summary on standard output
    bool noLOD = false;                        // --no-lod: the host forbids load-on-demand
    std::string messagesFile;                  // --messages FILE
    std::string summaryJsonFile;               // --summary-json FILE: the data set as JSON
    bool pull = false;                         // --pull: load every item through load-on-demand
    int threads = 1;                           // --threads N: workers of the pull, 1 to 256
    std::string output;                        // -o FILE: export to FILE.vtm or FILE.pvd
    bool compress = false;                     // --compress[=LEVEL]: zlib-compressed VTK data
    int compressLevel = 1;                     // zlib's level, 1 (fast) to 9 (small)
    double memoryBudgetMB = 0.0;               // --memory-budget MB: 0 for none
    std::string addonPath;                     // --addon PATH
    bool help = false;                         // --help
};

// Parses the arguments (without the program name). False with a message in
// *error for a usage error.
bool parseOptions(const std::vector<std::string>& args, Options* options, std::string* error);

// The standard-syntax instruction list for the options, or the raw list of --instr.
std::vector<std::string> buildInstructions(const Options& options);

// The text of --help.
const char* usageText();

}  // namespace fluentload
