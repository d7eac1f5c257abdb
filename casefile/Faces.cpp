// Faces sections: the true mesh of a case file.
//
//   header        (zone first last boundary-type face-type)   hexadecimal, face type decimal
//   body opening  the first '(' behind the header
//   face, type t  t node numbers, then cell 0 and cell 1          (t = 2, 3 or 4)
//   face, type 0/5  a count n, n node numbers, cell 0, cell 1
//   numbers       hexadecimal text for id 13; integers of intSize bytes for 2013 and 3013
//   closing       ')' or the binary end marker
//
// Two layouts in memory: the classic one (faceNodes with a stride of faceType,
// 4 in a mixed zone, faceCells, faceConnectivity) for faces of up to four
// nodes, and the polygon one (polyOffsets, polyNodes, polyCell0, polyCell1)
// for faces of any size.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "casefile/CaseFileInternal.h"
#include "support/BulkMemory.h"
#include "support/MappedRange.h"

bool zoneMakeMinMaxWriters(zorvane::dataio::DeferredMinMaxWriter*** writers, int32_t numDimensions,
                           zorvane::dataio::DeferredMinMaxWriterFactory* factory);

static int64_t faceZoneCount(const FaceZone* zone) {
    int64_t count = static_cast<int64_t>(zone->lastIndex) - zone->firstIndex + 1;
    return count > 0 ? count : 0;
}

// ---- Scan time -------------------------------------------------------------------------

bool CaseFileParseFace(CaseFile* caseFile, int32_t sectionId, bool allZonesAsPolyhedral,
                       zorvane::dataio::DeferredMinMaxWriterFactory* factory) {
    FILE* stream = caseFile->stream;
    int zoneId = 0, first = 0, last = 0, boundaryType = 0, faceType = 0;
    int fields = fscanf(stream, "(%x %x %x %x %d)", &zoneId, &first, &last, &boundaryType, &faceType);
    if (fields < 4) {
        reportStreamFailure(stream, "Faces", sectionId);
        return false;
    }
    if (zoneId == 0) {
        // A declaration of the total; findNextSection passes its rest.
        return true;
    }
    if (fields != 5) {
        reportStreamFailure(stream, "Faces", sectionId);
        return false;
    }
    if (zoneId < 0) {
        return true;
    }
    FaceZone* zone = nullptr;
    if (!CaseFileNewFaceZone(caseFile, &zone)) {
        return false;
    }
    zone->sectionId = sectionId;
    zone->zoneId = zoneId;
    zone->firstIndex = first;
    zone->lastIndex = last;
    zone->boundaryType = boundaryType;
    zone->faceType = faceType;
    zone->hostZoneType = kUnknownHostZoneType;
    zone->childFaceIndex = -1;
    if (!zoneMakeMinMaxWriters(&zone->nodeMinMaxWriters, caseFile->numDimensions, factory)) {
        return false;
    }
    if (!skipToOpenParen(stream)) {
        showErrorf("Opening parenthesis not found while reading Faces section (Section %d).", sectionId);
        return false;
    }
    long long position = ftell(stream);
    if (position < 0) {
        return false;
    }
    zone->filePosition = position;
    if (faceType != 5 && (!allZonesAsPolyhedral || faceType == 2)) {
        // Classic faces are read on demand. A mixed zone counts three numbers a
        // face: a lower bound, the end of the section does the rest.
        int64_t numbersPerFace = std::max(faceType, 1) + 2;
        int64_t jump = numbersPerFace * (static_cast<int64_t>(last) - first + 1) *
                       integerWidth(&caseFile->machineConfig, sectionId);
        if (jump > 0 && fseeko(stream, static_cast<off_t>(jump), SEEK_CUR) != 0) {
            return false;
        }
        return skipSection(sectionId, sectionId >= 2000, stream);
    }
    // Polygon data is read now.
    return PolyFaceZoneRead(stream, caseFile, zone, sectionId);
}

// ---- Classic arrays ----------------------------------------------------------------------

void faceZoneFreeFaceSectionArrays(FaceZone* zone) {
    free(zone->faceNodeCounts);
    zone->faceNodeCounts = nullptr;
    free(zone->faceNodes);
    zone->faceNodes = nullptr;
    free(zone->faceCells);
    zone->faceCells = nullptr;
    free(zone->faceConnectivity);
    zone->faceConnectivity = nullptr;
}

bool faceZoneAllocFaceSectionArrays(FaceZone* zone, int32_t* stride) {
    faceZoneFreeFaceSectionArrays(zone);
    size_t count = static_cast<size_t>(faceZoneCount(zone));
    size_t places = count > 0 ? count : 1;
    bool ok = true;
    if (zone->faceType != 0) {
        *stride = zone->faceType > 0 ? zone->faceType : 0;
    } else {
        *stride = 4;
        zone->faceNodeCounts = static_cast<int32_t*>(bulkCalloc(places, sizeof(int32_t)));
        ok = zone->faceNodeCounts != nullptr;
    }
    if (ok) {
        size_t nodes = count * static_cast<size_t>(*stride);
        zone->faceNodes = static_cast<int32_t*>(bulkCalloc(nodes > 0 ? nodes : 1, sizeof(int32_t)));
        zone->faceCells = static_cast<int32_t*>(bulkCalloc(2 * places, sizeof(int32_t)));
        zone->faceConnectivity = static_cast<int32_t*>(bulkCalloc(2 * places, sizeof(int32_t)));
        ok = zone->faceNodes != nullptr && zone->faceCells != nullptr && zone->faceConnectivity != nullptr;
    }
    if (!ok) {
        showErrorf("Out of memory while reading Faces section (section %d).", zone->sectionId);
        faceZoneFreeFaceSectionArrays(zone);
        return false;
    }
    return true;
}

// What happened to one face of the classic read.
enum FaceReadResult { FaceRead_Ok, FaceRead_Failed, FaceRead_Polygons };

static bool checkFaceNodes(const FaceZone* zone, const int32_t* nodes, int32_t count, int64_t faceIndex) {
    for (int32_t k = 0; k < count; ++k) {
        if (nodes[k] < 1) {
            showErrorf("Bad node number %d for node %d of face #%lld in Faces section (Section %d).",
                       nodes[k], k + 1, static_cast<long long>(faceIndex + 1), zone->sectionId);
            return false;
        }
    }
    return true;
}

// Reads face i through the section reader, number by number.
static FaceReadResult readOneFace(CaseFile* caseFile, FaceZone* zone, FILE* stream, int64_t i,
                                  int32_t stride) {
    const MachineConfig* config = &caseFile->machineConfig;
    bool mixed = zone->faceType == 0;
    int32_t count = zone->faceType;
    if (mixed) {
        int value = 0;
        if (zone->sectionId < 2000) {
            unsigned int hex = 0;
            if (fscanf(stream, "%x", &hex) != 1) {
                reportStreamFailure(stream, "Faces", zone->sectionId);
                return FaceRead_Failed;
            }
            value = static_cast<int>(hex);
        } else {
            ReadStatus status = readBinaryInt(&value, stream, config);
            if (status != ReadStatus_Success) {
                reportReadStatus(status, "Faces", zone->sectionId);
                return FaceRead_Failed;
            }
        }
        count = value;
        zone->faceNodeCounts[i] = count;
    }
    if (count > 4) {
        if (mixed) {
            return FaceRead_Polygons;
        }
        ZorUtilDialogErrMsg(
            "Native Polyhedral files are currently not supported. Please load your data using the \"Create "
            "All "
            "Zones As Polyhedral Zones\" option within the advanced options dialog.");
        return FaceRead_Failed;
    }
    if (count < 0) {
        count = 0;
    }
    int32_t* nodes = zone->faceNodes + i * stride;
    if (count > 0 && !readSectionInts(nodes, count, config, stream, "Faces", zone->sectionId)) {
        return FaceRead_Failed;
    }
    if (!checkFaceNodes(zone, nodes, count, i)) {
        return FaceRead_Failed;
    }
    if (!readSectionInts(zone->faceCells + 2 * i, 2, config, stream, "Faces", zone->sectionId)) {
        return FaceRead_Failed;
    }
    return FaceRead_Ok;
}

static inline int32_t byteSwap32(int32_t value) {
    return static_cast<int32_t>(__builtin_bswap32(static_cast<uint32_t>(value)));
}

// Copies up to `faces` whole faces of a fixed node count from `bytes` (each
// the node numbers, then the two cells, as 4-byte integers of this machine's
// order, aligned or not) into the zone's arrays from face `first` on. Stops
// at the first face with a node number below 1, which the face-by-face
// reader must report; answers how many faces were copied.
template <int Nodes>
static int64_t copyFixedFaces(const unsigned char* bytes, int64_t faces, FaceZone* zone, int64_t first) {
    int32_t* nodesOut = zone->faceNodes + first * Nodes;
    int32_t* cellsOut = zone->faceCells + 2 * first;
    for (int64_t f = 0; f < faces; ++f, bytes += 4 * (Nodes + 2)) {
        int32_t p[Nodes + 2];
        memcpy(p, bytes, sizeof p);
        int32_t smallest = p[0];
        for (int k = 1; k < Nodes; ++k)
            smallest = p[k] < smallest ? p[k] : smallest;
        if (smallest < 1)
            return f;
        for (int k = 0; k < Nodes; ++k)
            nodesOut[f * Nodes + k] = p[k];
        cellsOut[2 * f] = p[Nodes];
        cellsOut[2 * f + 1] = p[Nodes + 1];
    }
    return faces;
}

static int64_t copyFixedFaces(int32_t faceType, const unsigned char* bytes, int64_t faces, FaceZone* zone,
                              int64_t first) {
    switch (faceType) {
        case 2:
            return copyFixedFaces<2>(bytes, faces, zone, first);
        case 3:
            return copyFixedFaces<3>(bytes, faces, zone, first);
        default:
            return copyFixedFaces<4>(bytes, faces, zone, first);
    }
}

// The faces of a zone of one node count, in this machine's byte order, taken
// straight from a mapping of the body where it is gMappedBodyMinBytes or
// larger and the system maps it: answers the faces copied, as
// readFacesInBlocks does (-1 where the stream cannot be set behind them), or
// -2 when the body was not mapped and must be read through the stream.
static int64_t copyMappedFaces(FaceZone* zone, FILE* stream) {
    const int64_t count = faceZoneCount(zone);
    const int64_t width = zone->faceType + 2;
    MappedRange body;
    if (!mapFaceZoneBody(stream, zone, &body)) {
        return -2;
    }
    const int64_t copied = copyFixedFaces(zone->faceType, body.bytes(), count, zone, 0);
    if (fseeko(stream, static_cast<off_t>(zone->filePosition + copied * width * 4), SEEK_SET) != 0) {
        return -1;
    }
    return copied;
}

// The fast path for binary bodies of 4-byte integers: the body is taken
// from a mapping of the file (one node count, this machine's byte order) or
// read in large blocks, and taken apart in memory. It stops at the first face that
// needs attention (a short read, a polygon, a bad node number) and answers
// the index of that face, with the stream set back to its first byte, so
// that the face-by-face reader takes over from there and says what is wrong.
// Answers the face count when all faces were read, the stream then standing
// behind the last face.
static int64_t readFacesInBlocks(CaseFile* caseFile, FaceZone* zone, FILE* stream, int32_t stride) {
    const int64_t count = faceZoneCount(zone);
    const bool mixed = zone->faceType == 0;
    const bool swap = caseFile->machineConfig.byteOrder != hostByteOrder;
    const int64_t start = zone->filePosition;
    if (!mixed && zone->faceType >= 2 && !swap) {
        const int64_t copied = copyMappedFaces(zone, stream);
        if (copied != -2) {
            return copied;
        }
    }
    const size_t blockInts = 1 << 16;
    std::vector<int32_t> block(blockInts);
    size_t have = 0;       // integers in block
    size_t used = 0;       // integers of block consumed by complete faces
    int64_t consumed = 0;  // integers consumed since the body's start
    bool atEnd = false;
    int64_t i = 0;
    while (i < count) {
        // A face needs at most 1 + 4 + 2 integers; refill when fewer are left.
        if (have - used < 7 && !atEnd) {
            size_t left = have - used;
            memmove(block.data(), block.data() + used, left * sizeof(int32_t));
            size_t got = fread(block.data() + left, sizeof(int32_t), blockInts - left, stream);
            if (swap) {
                for (size_t k = left; k < left + got; ++k) {
                    block[k] = byteSwap32(block[k]);
                }
            }
            atEnd = got < blockInts - left;
            have = left + got;
            used = 0;
        }
        const int32_t* p = block.data() + used;
        size_t available = have - used;
        if (!mixed && zone->faceType >= 2) {
            // Every whole face of a fixed node count in the block at once.
            const size_t width = static_cast<size_t>(zone->faceType) + 2;
            const int64_t whole = std::min<int64_t>(static_cast<int64_t>(available / width), count - i);
            if (whole > 0) {
                const int64_t copied =
                    copyFixedFaces(zone->faceType, reinterpret_cast<const unsigned char*>(p), whole, zone, i);
                used += static_cast<size_t>(copied) * width;
                consumed += copied * static_cast<int64_t>(width);
                i += copied;
                if (copied < whole)
                    break;  // face i needs the face-by-face reader
                continue;
            }
        }
        int32_t nodes = zone->faceType;
        size_t need = static_cast<size_t>(nodes) + 2;
        if (mixed) {
            if (available < 1) {
                break;
            }
            nodes = p[0];
            if (nodes < 0 || nodes > 4) {
                break;
            }
            need = static_cast<size_t>(nodes) + 3;
            ++p;
        }
        if (available < need) {
            break;
        }
        int32_t* target = zone->faceNodes + i * stride;
        bool good = true;
        for (int32_t k = 0; k < nodes; ++k) {
            target[k] = p[k];
            good = good && p[k] >= 1;
        }
        if (!good) {
            break;
        }
        if (mixed) {
            zone->faceNodeCounts[i] = nodes;
        }
        zone->faceCells[2 * i] = p[nodes];
        zone->faceCells[2 * i + 1] = p[nodes + 1];
        used += need;
        consumed += static_cast<int64_t>(need);
        ++i;
    }
    clearerr(stream);
    if (fseeko(stream, static_cast<off_t>(start + consumed * 4), SEEK_SET) != 0) {
        return -1;
    }
    return i;
}

bool CaseFileLoadFaceZone(CaseFile* caseFile, FaceZone* zone) {
    FILE* stream = openCaseFileStream(caseFile);
    if (stream == nullptr) {
        return false;
    }
    if (fseeko(stream, static_cast<off_t>(zone->filePosition), SEEK_SET) != 0) {
        showErrorf("Error setting file position to %lld\nin file '%s'",
                   static_cast<long long>(zone->filePosition), caseFile->fileName);
        fclose(stream);
        return false;
    }
    int32_t stride = 0;
    if (!faceZoneAllocFaceSectionArrays(zone, &stride)) {
        fclose(stream);
        return false;
    }
    const int64_t count = faceZoneCount(zone);
    // A second core faults the fresh arrays in from their ends while this one
    // fills them from their starts, all at one pace. The local face numbers
    // wait for the assembly.
    const size_t places = static_cast<size_t>(count > 0 ? count : 1);
    const size_t nodePlaces = static_cast<size_t>(count > 0 ? count : 0) * static_cast<size_t>(stride);
    BulkFaultIn faultIn(BulkOrder::Together,
                        {{zone->faceNodes, (nodePlaces > 0 ? nodePlaces : 1) * sizeof(int32_t)},
                         {zone->faceCells, 2 * places * sizeof(int32_t)},
                         {zone->faceNodeCounts, places * sizeof(int32_t)}});
    int64_t i = 0;
    bool blocks = zone->sectionId >= 2000 && caseFile->machineConfig.intSize == 4 &&
                  (zone->faceType == 0 || (zone->faceType >= 1 && zone->faceType <= 4));
    if (blocks) {
        i = readFacesInBlocks(caseFile, zone, stream, stride);
        if (i < 0) {
            showErrorf("Error setting file position to %lld\nin file '%s'",
                       static_cast<long long>(zone->filePosition), caseFile->fileName);
            fclose(stream);
            return false;
        }
    }
    for (; i < count; ++i) {
        FaceReadResult result = readOneFace(caseFile, zone, stream, i, stride);
        if (result == FaceRead_Failed) {
            fclose(stream);
            return false;
        }
        if (result == FaceRead_Polygons) {
            // The zone holds polygons after all: it is read as a polygon zone.
            faultIn.finish();
            faceZoneFreeFaceSectionArrays(zone);
            zone->faceType = 5;
            bool ok = PolyFaceZoneRead(stream, caseFile, zone, zone->sectionId);
            fclose(stream);
            return ok;
        }
    }
    bool ok = closeSection(zone->sectionId, "Faces", zone->sectionId >= 2000, stream);
    fclose(stream);
    return ok;
}

// ---- Polygon arrays ---------------------------------------------------------------------

int32_t PolyFaceGetNodeCount(FILE* stream, const MachineConfig* config, FaceZone* zone, int32_t faceIndex,
                             bool fromFile) {
    if (zone->faceType != 0 && zone->faceType != 5) {
        return zone->faceType;
    }
    if (!fromFile) {
        if (zone->polyOffsets == nullptr) {
            return 0;
        }
        return zone->polyOffsets[faceIndex + 1] - zone->polyOffsets[faceIndex];
    }
    if (zone->sectionId < 2000) {
        unsigned int value = 0;
        if (fscanf(stream, "%x", &value) != 1) {
            reportStreamFailure(stream, "Faces", zone->sectionId);
            return 0;
        }
        return static_cast<int32_t>(value);
    }
    int value = 0;
    ReadStatus status = readBinaryInt(&value, stream, config);
    if (status != ReadStatus_Success) {
        reportReadStatus(status, "Faces", zone->sectionId);
        return 0;
    }
    return value;
}

static void freePolygonArrays(FaceZone* zone) {
    free(zone->polyOffsets);
    zone->polyOffsets = nullptr;
    free(zone->polyNodes);
    zone->polyNodes = nullptr;
    free(zone->polyCell0);
    zone->polyCell0 = nullptr;
    free(zone->polyCell1);
    zone->polyCell1 = nullptr;
}

bool PolyFaceZoneRead(FILE* stream, CaseFile* caseFile, FaceZone* zone, int32_t sectionId) {
    const MachineConfig* config = &caseFile->machineConfig;
    if (fseeko(stream, static_cast<off_t>(zone->filePosition), SEEK_SET) != 0) {
        return false;
    }
    freePolygonArrays(zone);
    const int64_t count = faceZoneCount(zone);
    const size_t places = count > 0 ? static_cast<size_t>(count) : 1;
    const bool fixedType = zone->faceType != 0 && zone->faceType != 5;
    zone->numPolyFaceNodes = 0;
    zone->numPolyFaces = static_cast<int32_t>(count);
    zone->polyCell0 = static_cast<int32_t*>(bulkCalloc(places, sizeof(int32_t)));
    zone->polyCell1 = static_cast<int32_t*>(bulkCalloc(places, sizeof(int32_t)));
    if (zone->polyCell0 == nullptr || zone->polyCell1 == nullptr) {
        return false;
    }
    if (fixedType) {
        size_t nodes = static_cast<size_t>(count) * static_cast<size_t>(std::max(zone->faceType, 0));
        zone->polyNodes = static_cast<int32_t*>(bulkCalloc(nodes > 0 ? nodes : 1, sizeof(int32_t)));
        if (zone->polyNodes == nullptr) {
            return false;
        }
    }
    zone->polyOffsets = static_cast<int32_t*>(bulkCalloc(places + 1, sizeof(int32_t)));
    if (zone->polyOffsets == nullptr) {
        return false;
    }
    zone->polyOffsets[0] = 0;

    // First pass: counts, cells, and the nodes of a zone of fixed type.
    std::vector<int32_t> faceNodes;
    for (int64_t i = 0; i < count; ++i) {
        int32_t nodes = PolyFaceGetNodeCount(stream, config, zone, static_cast<int32_t>(i), true);
        if (nodes < 1) {
            if (fixedType) {
                showErrorf("The number of nodes is not specified in Face zone %d.\n", zone->zoneId);
                return false;
            }
            zone->polyOffsets[i + 1] = zone->numPolyFaceNodes;
        } else {
            int32_t offset = zone->numPolyFaceNodes;
            zone->numPolyFaceNodes += nodes;
            zone->polyOffsets[i + 1] = zone->numPolyFaceNodes;
            faceNodes.resize(static_cast<size_t>(nodes));
            if (!readSectionInts(faceNodes.data(), nodes, config, stream, "Faces", sectionId)) {
                return false;
            }
            if (fixedType) {
                memcpy(zone->polyNodes + offset, faceNodes.data(),
                       static_cast<size_t>(nodes) * sizeof(int32_t));
            }
        }
        int32_t cells[2];
        if (!readSectionInts(cells, 2, config, stream, "Faces", sectionId)) {
            return false;
        }
        zone->polyCell0[i] = cells[0];
        zone->polyCell1[i] = cells[1];
        if (i == 0) {
            zone->maxCell = std::max(cells[0], cells[1]);
            zone->minCell = (cells[0] > 0 && cells[1] > 0) ? std::min(cells[0], cells[1]) : zone->maxCell;
        } else {
            for (int32_t cell : cells) {
                if (cell > 0 && cell < zone->minCell) {
                    zone->minCell = cell;
                }
            }
            zone->maxCell = std::max(zone->maxCell, std::max(cells[0], cells[1]));
        }
    }
    if (fixedType) {
        return closeSection(sectionId, "Faces", sectionId >= 2000, stream);
    }

    // Second pass: now that the total is known, the nodes of every face.
    zone->polyNodes = static_cast<int32_t*>(bulkCalloc(
        zone->numPolyFaceNodes > 0 ? static_cast<size_t>(zone->numPolyFaceNodes) : 1, sizeof(int32_t)));
    if (zone->polyNodes == nullptr) {
        return false;
    }
    if (fseeko(stream, static_cast<off_t>(zone->filePosition), SEEK_SET) != 0) {
        return false;
    }
    int32_t place = 0;
    for (int64_t i = 0; i < count; ++i) {
        int32_t nodes = PolyFaceGetNodeCount(stream, config, zone, static_cast<int32_t>(i), true);
        if (nodes >= 1 && place + nodes <= zone->numPolyFaceNodes) {
            // A failed node read does not end the pass; the place stays.
            if (readSectionInts(zone->polyNodes + place, nodes, config, stream, "Faces", sectionId)) {
                place += nodes;
            }
        }
        int32_t cells[2];
        if (!readSectionInts(cells, 2, config, stream, "Faces", sectionId)) {
            return false;
        }
    }
    return closeSection(sectionId, "Faces", sectionId >= 2000, stream);
}
