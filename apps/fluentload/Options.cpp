#include "apps/fluentload/Options.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>

namespace fluentload {

namespace {

std::string lower(std::string s) {
    for (char& c : s)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

bool endsWith(const std::string& name, const std::string& suffix) {
    std::string n = lower(name);
    return n.size() >= suffix.size() && n.compare(n.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// Mesh files (.msh) hold the same sections as case files and load as one.
bool isCaseName(const std::string& name) {
    return endsWith(name, ".cas") || endsWith(name, ".cas.gz") || endsWith(name, ".msh") ||
           endsWith(name, ".msh.gz");
}

bool isDataName(const std::string& name) {
    return endsWith(name, ".dat") || endsWith(name, ".dat.gz") || endsWith(name, ".fdat") ||
           endsWith(name, ".fdat.gz");
}

// A whole number in [low, high]; false for anything else.
bool parseInt(const std::string& text, long low, long high, int* out) {
    if (text.empty())
        return false;
    char* end = nullptr;
    errno = 0;
    long v = std::strtol(text.c_str(), &end, 10);
    if (errno != 0 || *end != '\0' || v < low || v > high)
        return false;
    *out = static_cast<int>(v);
    return true;
}

// A finite number of at least 0; false for anything else.
bool parseNonNegative(const std::string& text, double* out) {
    if (text.empty())
        return false;
    char* end = nullptr;
    errno = 0;
    double v = std::strtod(text.c_str(), &end);
    if (errno != 0 || *end != '\0' || !(v >= 0.0) || v > 1e12)
        return false;
    *out = v;
    return true;
}

bool endsWithExport(const std::string& name) {
    return endsWith(name, ".vtm") || endsWith(name, ".pvd");
}

bool parseYesNo(const std::string& value, bool* out) {
    std::string v = lower(value);
    if (v == "yes" || v == "y" || v == "true" || v == "on") {
        *out = true;
        return true;
    }
    if (v == "no" || v == "n" || v == "false" || v == "off") {
        *out = false;
        return true;
    }
    return false;
}

}  // namespace

const char* usageText() {
    return "usage: fluentload [options] FILE...\n"
           "       fluentload [options] --instr STRING...\n"
           "\n"
           "Loads Fluent case (.cas, or mesh .msh), data (.dat, .fdat) and XML particle files through the\n"
           "Fluent Data Loader add-on inside the host stand-in, and reports what was loaded.\n"
           "One case file loads the case only; a case and a data file load both; more files,\n"
           "or an XML particle file, load as a series (each case followed by its data files).\n"
           "\n"
           "What to load:\n"
           "  --case-only            load the case file alone even if a data file is given\n"
           "  --residuals            load only the residual history of the data file\n"
           "  --series               load the files as a list (MultipleCaseAndData)\n"
           "  --cells-only           only cell zones\n"
           "  --boundaries-only      only boundary zones\n"
           "  --zones SET            only these zones, numbered as listed, e.g. \"1-3,5\"\n"
           "  --var NAME             load this variable (repeatable); default: all\n"
           "  --average MODE         average cell values to nodes: arithmetic or laplacian\n"
           "                         (none: keep them cell-centred, the default)\n"
           "  --all-poly             build every zone as polygons or polyhedra\n"
           "  --particles            include particle data\n"
           "  --additional-quantities  load additional quantities of the data files\n"
           "Series:\n"
           "  --read-time            solution times from the data files (default for series)\n"
           "  --time-interval T      a constant time interval T between the files\n"
           "  --strands              assign strand ids\n"
           "  --existing-strands     add the zones to existing strands\n"
           "Compressed files and metadata:\n"
           "  --save-uncompressed yes|no  keep uncompressed copies beside .gz files\n"
           "                         (default without a terminal: no, temporary copies)\n"
           "  --overwrite yes|no     overwrite existing uncompressed copies (default: yes)\n"
           "  --metadata on|off      read and write metadata files beside the data (default: on)\n"
           "  --no-metadata          the same as --metadata off\n"
           "Host:\n"
           "  --answer yes|no        answer the next yes/no question so (repeatable)\n"
           "  --batch                run as the host does in batch mode\n"
           "  --layout               run as the host does while processing a layout\n"
           "  --no-lod               the host forbids load-on-demand\n"
           "  --addon PATH           the add-on library to load\n"
           "  --memory-budget MB     the host unloads the oldest items to keep what is loaded\n"
           "                         under MB megabytes (reloading them when asked again)\n"
           "After the load:\n"
           "  --pull                 load every item of every zone through load-on-demand (node\n"
           "                         maps, face maps, face neighbours, every variable's values),\n"
           "                         report the time taken and each variable's range per zone\n"
           "  --threads N            workers of --pull (default 1)\n"
           "  -o, --output OUT.vtm   export to VTK XML files ParaView opens: a .vtu per zone in\n"
           "                         the folder OUT/, gathered by OUT.vtm (a block per solution\n"
           "                         time for a series)\n"
           "  -o, --output OUT.pvd   the same as a collection, one OUT/stepN.vtm per solution time\n"
           "  --compress[=LEVEL]     compress the VTK data with zlib, level 1 (fast, the\n"
           "                         default) to 9 (smallest)\n"
           "Output:\n"
           "  --summary-json FILE    write the data set as JSON: title, aux, variables, zones\n"
           "                         (and, with --pull, each variable's location, min, max, sum)\n"
           "  --messages FILE        also write every message as JSON lines {\"kind\", \"text\"}\n"
           "  --no-progress          no progress bar\n"
           "  --quiet                no summary on standard output\n"
           "  --instr STRING...      hand the rest of the arguments to the loader as its\n"
           "                         instruction list, in either syntax\n"
           "  --help                 this text\n"
           "\n"
           "Every message of the add-on goes to standard error as \"KIND: TEXT\".\n"
           "Exit status: 0 loaded (and pulled and exported as asked), 1 the add-on refused the\n"
           "load or a later step failed or was interrupted, 2 usage error.\n";
}

bool parseOptions(const std::vector<std::string>& args, Options* o, std::string* error) {
    auto needValue = [&](size_t& i, std::string* value) -> bool {
        if (i + 1 >= args.size()) {
            *error = "option " + args[i] + " needs a value";
            return false;
        }
        *value = args[++i];
        return true;
    };
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        std::string v;
        if (a == "--instr") {
            o->haveRawInstructions = true;
            o->rawInstructions.assign(args.begin() + static_cast<long>(i) + 1, args.end());
            break;
        } else if (a == "--help" || a == "-h") {
            o->help = true;
        } else if (a == "--case-only") {
            o->loadOption = "CaseOnly";
        } else if (a == "--residuals") {
            o->loadOption = "ResidualsOnly";
        } else if (a == "--series") {
            o->loadOption = "MultipleCaseAndData";
        } else if (a == "--cells-only") {
            o->gridZones = "CellsOnly";
        } else if (a == "--boundaries-only") {
            o->gridZones = "BoundariesOnly";
        } else if (a == "--zones") {
            if (!needValue(i, &o->zoneList))
                return false;
            o->gridZones = "SelectedZones";
        } else if (a == "--var") {
            if (!needValue(i, &v))
                return false;
            o->variables.push_back(v);
        } else if (a == "--average") {
            if (!needValue(i, &v))
                return false;
            v = lower(v);
            if (v != "arithmetic" && v != "laplacian" && v != "none") {
                *error = "--average takes arithmetic, laplacian or none";
                return false;
            }
            o->averaging = v;
        } else if (a == "--all-poly") {
            o->allPoly = true;
        } else if (a == "--particles") {
            o->particles = true;
        } else if (a == "--additional-quantities") {
            o->additionalQuantities = true;
        } else if (a == "--read-time") {
            o->readTimeFromData = true;
        } else if (a == "--time-interval") {
            if (!needValue(i, &o->timeInterval))
                return false;
        } else if (a == "--strands") {
            o->assignStrands = true;
        } else if (a == "--existing-strands") {
            o->addToExistingStrands = true;
        } else if (a == "--save-uncompressed" || a == "--overwrite") {
            if (!needValue(i, &v))
                return false;
            bool yes = false;
            if (!parseYesNo(v, &yes)) {
                *error = a + " takes yes or no";
                return false;
            }
            (a == "--overwrite" ? o->overwrite : o->saveUncompressed) = yes ? "yes" : "no";
        } else if (a == "--no-metadata") {
            o->noMetadata = true;
        } else if (a == "--metadata") {
            if (!needValue(i, &v))
                return false;
            bool on = true;
            if (!parseYesNo(v, &on)) {
                *error = "--metadata takes on or off";
                return false;
            }
            o->noMetadata = !on;
        } else if (a == "--summary-json") {
            if (!needValue(i, &o->summaryJsonFile))
                return false;
        } else if (a == "--pull") {
            o->pull = true;
        } else if (a == "--threads") {
            if (!needValue(i, &v))
                return false;
            if (!parseInt(v, 1, 256, &o->threads)) {
                *error = "--threads takes a whole number from 1 to 256";
                return false;
            }
        } else if (a == "-o" || a == "--output") {
            if (!needValue(i, &o->output))
                return false;
            if (!endsWithExport(o->output)) {
                *error = a + " takes a file name ending in .vtm or .pvd";
                return false;
            }
        } else if (a == "--compress") {
            o->compress = true;
        } else if (a.compare(0, 11, "--compress=") == 0) {
            o->compress = true;
            if (!parseInt(a.substr(11), 1, 9, &o->compressLevel)) {
                *error = "--compress= takes a zlib level from 1 to 9";
                return false;
            }
        } else if (a == "--memory-budget") {
            if (!needValue(i, &v))
                return false;
            if (!parseNonNegative(v, &o->memoryBudgetMB)) {
                *error = "--memory-budget takes a number of megabytes";
                return false;
            }
        } else if (a == "--answer") {
            if (!needValue(i, &v))
                return false;
            bool yes = false;
            if (!parseYesNo(v, &yes)) {
                *error = "--answer takes yes or no";
                return false;
            }
            o->answers.push_back(yes);
        } else if (a == "--batch") {
            o->batch = true;
        } else if (a == "--layout") {
            o->layout = true;
        } else if (a == "--no-lod") {
            o->noLOD = true;
        } else if (a == "--addon") {
            if (!needValue(i, &o->addonPath))
                return false;
        } else if (a == "--messages") {
            if (!needValue(i, &o->messagesFile))
                return false;
        } else if (a == "--no-progress") {
            o->progress = false;
        } else if (a == "--quiet" || a == "-q") {
            o->quiet = true;
        } else if (a.size() > 1 && a[0] == '-' && a != "-") {
            *error = "unknown option " + a;
            return false;
        } else {
            o->files.push_back(a);
        }
    }
    if (o->help)
        return true;
    if (o->readTimeFromData && !o->timeInterval.empty()) {
        *error = "--read-time and --time-interval exclude each other";
        return false;
    }
    if (!o->haveRawInstructions && o->files.empty()) {
        *error = "no file to load";
        return false;
    }
    if (o->haveRawInstructions && !o->files.empty()) {
        *error = "files and --instr cannot be combined: name the files inside the instruction list";
        return false;
    }
    if (o->haveRawInstructions)
        return true;

    int cases = 0, datas = 0, others = 0;
    for (const std::string& f : o->files) {
        if (isCaseName(f)) {
            ++cases;
        } else if (isDataName(f)) {
            ++datas;
        } else {
            ++others;
        }
    }
    if (o->loadOption.empty()) {
        if (cases == 1 && datas == 0 && others == 0) {
            o->loadOption = "CaseOnly";
        } else if (cases == 1 && datas == 1 && others == 0) {
            o->loadOption = "CaseAndData";
        } else if (cases == 0 && datas == 1 && others == 0) {
            *error = "a data file needs its case file (or --residuals to load only its residuals)";
            return false;
        } else {
            o->loadOption = "MultipleCaseAndData";
        }
    } else if (o->loadOption == "CaseOnly" && cases != 1) {
        *error = "--case-only needs exactly one case file";
        return false;
    } else if (o->loadOption == "ResidualsOnly" && datas != 1) {
        *error = "--residuals needs exactly one data file";
        return false;
    }
    if (o->loadOption != "MultipleCaseAndData" && (o->readTimeFromData || !o->timeInterval.empty())) {
        *error = "--read-time and --time-interval apply to a series of files";
        return false;
    }
    return true;
}

std::vector<std::string> buildInstructions(const Options& o) {
    if (o.haveRawInstructions)
        return o.rawInstructions;

    std::vector<std::string> list = {"STANDARDSYNTAX", "1.0"};
    auto add = [&](const std::string& key, const std::string& value) {
        list.push_back(key);
        list.push_back(value);
    };
    if (o.loadOption == "MultipleCaseAndData") {
        list.push_back("FILELIST_Files");
        list.push_back(std::to_string(o.files.size()));
        list.insert(list.end(), o.files.begin(), o.files.end());
    } else {
        for (const std::string& f : o.files) {
            if (isCaseName(f)) {
                add("FILENAME_CaseFile", f);
            } else if (isDataName(f)) {
                add("FILENAME_DataFile", f);
            }
        }
    }
    // The file list must have a string behind its last file: the load option follows it.
    add("LoadOption", o.loadOption);
    if (!o.gridZones.empty())
        add("GridZones", o.gridZones);
    if (!o.zoneList.empty())
        add("ZoneList", o.zoneList);
    if (!o.variables.empty()) {
        std::string names;
        for (size_t i = 0; i < o.variables.size(); ++i)
            names += (i ? "\n" : "") + o.variables[i];
        add("VarNameList", names);
    }
    if (o.averaging == "none") {
        add("AverageToNodes", "No");
    } else if (!o.averaging.empty()) {
        add("AverageToNodes", "Yes");
        add("AveragingMethod", o.averaging == "laplacian" ? "Laplacian" : "Arithmetic");
    }
    if (o.allPoly)
        add("AllPolyZones", "Yes");
    if (o.particles)
        add("IncludeParticleData", "Yes");
    if (o.loadOption == "MultipleCaseAndData") {
        if (!o.timeInterval.empty() && !o.readTimeFromData) {
            add("UnsteadyOption", "ApplyConstantTimeInterval");
            add("TimeInterval", o.timeInterval);
        } else {
            add("UnsteadyOption", "ReadTimeFromDataFiles");
        }
    }
    if (o.assignStrands)
        add("AssignStrandIDs", "Yes");
    if (o.addToExistingStrands)
        add("AddZonesToExistingStrands", "Yes");
    if (o.noMetadata)
        add("USE_METADATA", "No");
    if (o.additionalQuantities)
        add("LoadAdditionalQuantities", "Yes");
    if (!o.saveUncompressed.empty())
        add("SaveUncompressedFiles", o.saveUncompressed == "yes" ? "Yes" : "No");
    return list;
}

}  // namespace fluentload
