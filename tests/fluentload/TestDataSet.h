// A data set made through the host's API as a loader makes one: zones of
// every type, variables of several types and locations, some items loaded on
// demand through callbacks that count their calls, the rest written at once.
#pragma once

#include <atomic>
#include <deque>
#include <string>
#include <vector>

#include "host/ZorData.h"
#include "host/ZorUtil.h"
#include "minihost/MiniHost.h"

namespace testdata {

// What a load-on-demand callback gives, and how often it was called.
struct Source {
    std::vector<double> values;        // values: one per point or element
    std::vector<int32_t> nodes;        // node map: one-based; face map: one-based face nodes
    std::vector<int32_t> counts;       // face map: nodes per face
    std::vector<int32_t> left, right;  // face map: elements per face
    bool fail = false;                 // the load says false
    std::atomic<int> loads{0};
    std::atomic<int> unloads{0};
    std::atomic<int> cleanups{0};
};

inline bool loadValues(ZorFieldData data) {
    Source* s = reinterpret_cast<Source*>(ZorUtilDataValueGetClientData(data));
    if (s->fail || static_cast<ZorIndex>(s->values.size()) != ZorUtilDataValueGetCountByRef(data))
        return false;
    for (size_t i = 0; i < s->values.size(); ++i)
        ZorUtilDataValueSetByRef(data, static_cast<ZorIndex>(i + 1), s->values[i]);
    ++s->loads;
    return true;
}
inline bool unloadValues(ZorFieldData data) {
    ++reinterpret_cast<Source*>(ZorUtilDataValueGetClientData(data))->unloads;
    return true;
}
inline void cleanupValues(ZorFieldData data) {
    ++reinterpret_cast<Source*>(ZorUtilDataValueGetClientData(data))->cleanups;
}

inline bool loadNodeMap(ZorNodeMap map) {
    Source* s = reinterpret_cast<Source*>(ZorUtilDataNodeGetClientData(map));
    if (s->fail)
        return false;
    ZorUtilDataNodeArraySetByRef(map, 1, static_cast<ZorIndex>(s->nodes.size()), s->nodes.data());
    ++s->loads;
    return true;
}
inline bool unloadNodeMap(ZorNodeMap map) {
    ++reinterpret_cast<Source*>(ZorUtilDataNodeGetClientData(map))->unloads;
    return true;
}
inline void cleanupNodeMap(ZorNodeMap map) {
    ++reinterpret_cast<Source*>(ZorUtilDataNodeGetClientData(map))->cleanups;
}

inline bool loadFaceMap(ZorFaceMap map) {
    Source* s = reinterpret_cast<Source*>(ZorUtilDataFaceMapGetClientData(map));
    if (s->fail)
        return false;
    ZorIndex faces = static_cast<ZorIndex>(s->counts.size());
    ZorUtilDataFaceMapAssignNodes(map, faces, s->counts.data(), s->nodes.data());
    ZorUtilDataFaceMapAssignElems(map, faces, s->left.data(), s->right.data());
    ++s->loads;
    return true;
}
inline bool unloadFaceMap(ZorFaceMap map) {
    ++reinterpret_cast<Source*>(ZorUtilDataFaceMapGetClientData(map))->unloads;
    return true;
}
inline void cleanupFaceMap(ZorFaceMap map) {
    ++reinterpret_cast<Source*>(ZorUtilDataFaceMapGetClientData(map))->cleanups;
}

inline bool loadNeighbors(ZorFaceNeighbor neighbors) {
    ++reinterpret_cast<Source*>(ZorUtilDataFaceNbrGetClientData(neighbors))->loads;
    return true;
}
inline bool unloadNeighbors(ZorFaceNeighbor neighbors) {
    ++reinterpret_cast<Source*>(ZorUtilDataFaceNbrGetClientData(neighbors))->unloads;
    return true;
}
inline void cleanupNeighbors(ZorFaceNeighbor neighbors) {
    ++reinterpret_cast<Source*>(ZorUtilDataFaceNbrGetClientData(neighbors))->cleanups;
}

// Builds data sets and keeps the sources of their callbacks alive.
class Builder {
  public:
    ~Builder() { minihost::deleteDataSet(); }

    // A new data set with these variables, replacing the frame's.
    void newDataSet(const std::string& title, const std::vector<std::string>& varNames) {
        ZorStringList names = minihost::makeStringList(varNames);
        ZorArgList args = ZorUtilArgListAlloc();
        ZorUtilArgListAppendString(args, "DataSetTitle", title.c_str());
        ZorUtilArgListAppendStringList(args, "VarNames", names);
        ZorUtilArgListAppendString(args, "LoaderName", "Test Loader");
        bool made = ZorUtilDataSetCreateX(args);
        ZorUtilArgListDealloc(&args);
        ZorUtilStringListDealloc(&names);
        if (!made)
            minihost::fatal("the test could not make a data set");
    }

    // Adds a zone and returns its number.
    ZorIndex addZone(const std::string& name, int32_t type, int64_t iMax, int64_t jMax, int64_t kMax,
                     const std::vector<int32_t>& types, const std::vector<int32_t>& locations, int32_t strand,
                     double time, int64_t parent = 0) {
        ZorArgList args = ZorUtilArgListAlloc();
        ZorUtilArgListAppendString(args, "Name", name.c_str());
        ZorUtilArgListAppendInt(args, "ZoneType", type);
        ZorUtilArgListAppendInt(args, "IMax", iMax);
        ZorUtilArgListAppendInt(args, "JMax", jMax);
        ZorUtilArgListAppendInt(args, "KMax", kMax);
        ZorUtilArgListAppendInt(args, "StrandID", strand);
        ZorUtilArgListAppendDouble(args, "SolutionTime", time);
        if (parent != 0)
            ZorUtilArgListAppendInt(args, "ParentZone", parent);
        ZorUtilArgListAppendArray(args, "VarDataType", types.data());
        ZorUtilArgListAppendArray(args, "ValueLocation", locations.data());
        ZorUtilArgListAppendInt(args, "DeferVarCreation", 1);
        bool added = ZorUtilDataSetAddZoneX(args);
        ZorUtilArgListDealloc(&args);
        if (!added)
            minihost::fatal("the test could not add zone " + name);
        return ZorUtilDataSetGetNumZones();
    }

    // Values written into the host at once.
    void setValues(ZorIndex zone, ZorIndex var, const std::vector<double>& values) {
        ZorFieldData data = ZorUtilDataValueGetWritableNativeRef(zone, var);
        if (data == nullptr || ZorUtilDataValueGetCountByRef(data) != static_cast<ZorIndex>(values.size()))
            minihost::fatal("the test gave the wrong number of values");
        for (size_t i = 0; i < values.size(); ++i)
            ZorUtilDataValueSetByRef(data, static_cast<ZorIndex>(i + 1), values[i]);
    }

    // Values loaded on demand.
    Source& lodValues(ZorIndex zone, ZorIndex var, const std::vector<double>& values) {
        Source& s = newSource();
        s.values = values;
        if (!ZorUtilDataValueCustomLOD(zone, var, loadValues, unloadValues, cleanupValues, nullptr, nullptr,
                                       reinterpret_cast<ZorArbParam>(&s))) {
            minihost::fatal("the test could not register values");
        }
        return s;
    }

    // A node map written at once (one-based nodes).
    void setNodeMap(ZorIndex zone, const std::vector<int32_t>& nodes) {
        ZorNodeMap map = ZorUtilDataNodeGetWritableRef(zone);
        if (map == nullptr)
            minihost::fatal("the test could not write a node map");
        ZorUtilDataNodeArraySetByRef(map, 1, static_cast<ZorIndex>(nodes.size()), nodes.data());
    }

    Source& lodNodeMap(ZorIndex zone, const std::vector<int32_t>& nodes) {
        Source& s = newSource();
        s.nodes = nodes;
        if (!ZorUtilDataNodeCustomLOD(zone, loadNodeMap, unloadNodeMap, cleanupNodeMap,
                                      reinterpret_cast<ZorArbParam>(&s))) {
            minihost::fatal("the test could not register a node map");
        }
        return s;
    }

    // A face map loaded on demand: faces as lists of one-based nodes.
    Source& lodFaceMap(ZorIndex zone, const std::vector<std::vector<int32_t>>& faces,
                       const std::vector<int32_t>& left, const std::vector<int32_t>& right) {
        Source& s = newSource();
        for (const auto& face : faces) {
            s.counts.push_back(static_cast<int32_t>(face.size()));
            s.nodes.insert(s.nodes.end(), face.begin(), face.end());
        }
        s.left = left;
        s.right = right;
        if (!ZorUtilDataFaceMapCustomLOD(zone, static_cast<ZorIndex>(faces.size()),
                                         static_cast<ZorIndex>(s.nodes.size()), 0, loadFaceMap, unloadFaceMap,
                                         cleanupFaceMap, reinterpret_cast<ZorArbParam>(&s))) {
            minihost::fatal("the test could not register a face map");
        }
        return s;
    }

    // Face neighbours on demand; mode a ZorFaceNbrLODMode.
    Source& lodNeighbors(ZorIndex zone, int32_t mode) {
        Source& s = newSource();
        if (!ZorUtilDataFaceNbrCustomLOD(zone, mode, loadNeighbors, unloadNeighbors, cleanupNeighbors,
                                         reinterpret_cast<ZorArbParam>(&s))) {
            minihost::fatal("the test could not register face neighbours");
        }
        return s;
    }

    void setAux(ZorAuxDataRef aux, const std::string& name, const std::string& value) {
        if (!ZorUtilAuxDataSetItem(aux, name.c_str(), value.c_str(), ZorAuxDataType_String, true))
            minihost::fatal("the test could not set auxiliary data");
    }

    const std::deque<Source>& sources() const { return sources_; }

  private:
    Source& newSource() {
        sources_.emplace_back();
        return sources_.back();
    }
    std::deque<Source> sources_;  // stable addresses for the callbacks' client data
};

}  // namespace testdata
