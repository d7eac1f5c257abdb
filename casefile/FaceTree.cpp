// Face trees and child faces: what mesh adaption leaves of hanging nodes.
//
// Face Tree (59, 2059, 3059), read whole at scan time:
//   header        (first-parent last-parent parent-zone child-zone)   hexadecimal
//   body opening  the first '(' behind the header
//   per parent    a count, then that many child face numbers
//   closing       ')' or the binary end marker
//
// Child Faces (62, 2062, 3062), recorded at scan time, read on demand:
//   header        (child-zone parent-zone pair-count)   decimal
//   body opening  '('
//   per pair      child face, parent face
//   closing       ')' or the binary end marker
//
// Across a parent face there is one coarse cell on one side and several fine
// cells on the other. The coarse cell must see the parent face and none of its
// children; each fine cell its child face and not the parent. A negated cell
// number takes that side of a face out of every range test of the assembly,
// while the number stays readable.
#include <cstdlib>
#include <cstring>
#include <vector>

#include "casefile/CaseFileInternal.h"

// ---- Face Tree ---------------------------------------------------------------------------

bool caseFileReadFaceTreeBody(CaseFile* caseFile, FILE* stream, FaceTree* tree) {
    const MachineConfig* config = &caseFile->machineConfig;
    int64_t parents = static_cast<int64_t>(tree->lastIndex) - tree->firstIndex + 1;
    for (int64_t k = 0; k < parents; ++k) {
        int count = 0;
        if (tree->sectionId < 2000) {
            unsigned int value = 0;
            if (fscanf(stream, "%x", &value) != 1) {
                reportStreamFailure(stream, "Face Tree", tree->sectionId);
                return false;
            }
            count = static_cast<int>(value);
        } else {
            ReadStatus status = readBinaryInt(&count, stream, config);
            if (status != ReadStatus_Success) {
                reportReadStatus(status, "Face Tree", tree->sectionId);
                return false;
            }
        }
        if (count > tree->maxChildren) {
            showErrorf(
                "Error reading Face Tree section (Section %d). Bad number of child faces: %d (expected <= "
                "%d).",
                tree->sectionId, count, tree->maxChildren);
            return false;
        }
        if (count > 0 && !readSectionInts(tree->children + k * tree->maxChildren, count, config, stream,
                                          "Face Tree", tree->sectionId)) {
            return false;
        }
    }
    return true;
}

bool ParseFaceTree(CaseFile* caseFile, int32_t sectionId) {
    FILE* stream = caseFile->stream;
    // At most two children per parent face in 2D, four otherwise (also while
    // the dimension is not yet known).
    int32_t maxChildren = caseFile->numDimensions == 2 ? 2 : 4;
    int first = 0, last = 0, parentZoneId = 0, childZoneId = 0;
    if (fscanf(stream, "(%x %x %x %x)", &first, &last, &parentZoneId, &childZoneId) != 4) {
        reportStreamFailure(stream, "ParseFaceTree", sectionId);
        return false;
    }
    if (first > last) {
        showErrorf("FirstIndex (%d) > LastIndex (%d) in Face Tree section (Section %d)", first, last,
                   sectionId);
        return false;
    }
    if (parentZoneId < 0) {
        showErrorf("ParentZoneID (%d) < 0 in Face Tree section (Section %d)", parentZoneId, sectionId);
        return false;
    }
    if (childZoneId < 0) {
        showErrorf("ChildZoneID (%d) < 0 in Face Tree section (Section %d)", childZoneId, sectionId);
        return false;
    }
    if (!skipToOpenParen(stream)) {
        showErrorf("Opening parenthesis not found while reading Face Tree section (Section %d).", sectionId);
        return false;
    }
    int64_t slots = (static_cast<int64_t>(last) - first + 1) * maxChildren;
    FaceTree* tree = nullptr;
    if (!CaseFileNewFaceTree(caseFile, &tree, static_cast<int32_t>(slots))) {
        return false;
    }
    tree->sectionId = sectionId;
    tree->firstIndex = first;
    tree->lastIndex = last;
    tree->parentZoneId = parentZoneId;
    tree->childZoneId = childZoneId;
    tree->maxChildren = maxChildren;
    long long position = ftell(stream);
    if (position < 0) {
        return false;
    }
    tree->filePosition = position;
    if (!caseFileReadFaceTreeBody(caseFile, stream, tree)) {
        return false;
    }
    return closeSection(sectionId, "Face Tree", sectionId >= 2000, stream);
}

bool CaseFileLoadFaceTree(CaseFile* caseFile, FaceTree* tree) {
    FILE* stream = nullptr;
    if (!openFluentFile(&stream, caseFile->fileName, "Case")) {
        return false;
    }
    if (stream == nullptr) {
        showErrorf("Fluent data loader: Unable to open %s file\n%s.", "Case", caseFile->fileName);
        return false;
    }
    if (fseeko(stream, static_cast<off_t>(tree->filePosition), SEEK_SET) != 0) {
        fclose(stream);
        return false;
    }
    int64_t slots = (static_cast<int64_t>(tree->lastIndex) - tree->firstIndex + 1) * tree->maxChildren;
    free(tree->children);
    tree->children =
        static_cast<int32_t*>(bulkCalloc(slots > 0 ? static_cast<size_t>(slots) : 1, sizeof(int32_t)));
    if (tree->children == nullptr) {
        ZorUtilDialogErrMsg("Out of memory.");
        fclose(stream);
        return false;
    }
    bool ok = caseFileReadFaceTreeBody(caseFile, stream, tree);
    fclose(stream);
    return ok;
}

bool FindFaceTreeByParentZone(const CaseFile* caseFile, int32_t parentZoneId, int32_t* treeIndex,
                              int32_t* childZoneIndex) {
    for (int32_t i = 0; i < caseFile->numFaceTrees; ++i) {
        if (caseFile->faceTrees[i].parentZoneId == parentZoneId) {
            *treeIndex = i;
            int32_t other = CaseFileFaceZoneIndex(caseFile, caseFile->faceTrees[i].childZoneId);
            if (other >= 0) {
                *childZoneIndex = other;
            }
            return true;
        }
    }
    return false;
}

bool FindFaceTreeByChildZone(const CaseFile* caseFile, int32_t childZoneId, int32_t* treeIndex,
                             int32_t* parentZoneIndex) {
    for (int32_t i = 0; i < caseFile->numFaceTrees; ++i) {
        if (caseFile->faceTrees[i].childZoneId == childZoneId) {
            *treeIndex = i;
            int32_t other = CaseFileFaceZoneIndex(caseFile, caseFile->faceTrees[i].parentZoneId);
            if (other >= 0) {
                *parentZoneIndex = other;
            }
            return true;
        }
    }
    return false;
}

// ---- Child Faces ---------------------------------------------------------------------------

bool ParseChildFaces(CaseFile* caseFile, int32_t sectionId) {
    FILE* stream = caseFile->stream;
    long long position = ftell(stream);
    if (position < 0) {
        return false;
    }
    int childZoneId = 0, parentZoneId = 0, pairCount = 0;
    if (fscanf(stream, "(%d %d %d)", &childZoneId, &parentZoneId, &pairCount) != 3) {
        reportStreamFailure(stream, "ParseChildFaces", sectionId);
        return false;
    }
    if (childZoneId < 0) {
        showErrorf("ChildZoneID (%d) < 0 in Child Face section (Section %d)", childZoneId, sectionId);
        return false;
    }
    if (parentZoneId < 0) {
        showErrorf("ParentZoneID (%d) < 0 in Child Face section (Section %d)", parentZoneId, sectionId);
        return false;
    }
    if (pairCount < 0) {
        showErrorf("PairCount (%d) < 0 in Child Face section (Section %d)", pairCount, sectionId);
        return false;
    }
    if (!skipToOpenParen(stream)) {
        showErrorf("Opening parenthesis not found while reading Child Face section (Section %d).", sectionId);
        return false;
    }
    ChildFace* record = nullptr;
    if (!CaseFileNewChildFace(caseFile, &record)) {
        return false;
    }
    // The zone ids and the count are taken again when the pairs are loaded.
    record->sectionId = sectionId;
    record->filePosition = position;
    int64_t numbers = 2 * static_cast<int64_t>(pairCount);
    if (sectionId < 2000) {
        for (int64_t k = 0; k < numbers; ++k) {
            unsigned int value = 0;
            if (fscanf(stream, "%x", &value) != 1) {
                reportStreamFailure(stream, "Child Face", sectionId);
                return false;
            }
        }
    } else if (numbers > 0 &&
               fseeko(stream, static_cast<off_t>(numbers * caseFile->machineConfig.intSize), SEEK_CUR) != 0) {
        return false;
    }
    return closeSection(sectionId, "Child Face", sectionId >= 2000, stream);
}

static int compareChildPairs(const void* a, const void* b) {
    return static_cast<const int32_t*>(a)[0] - static_cast<const int32_t*>(b)[0];
}

bool caseFileReadChildFace(FILE* stream, const MachineConfig* config, ChildFace* childFace) {
    if (fseeko(stream, static_cast<off_t>(childFace->filePosition), SEEK_SET) != 0) {
        return false;
    }
    int childZoneId = 0, parentZoneId = 0, pairCount = 0;
    if (fscanf(stream, "(%d %d %d)", &childZoneId, &parentZoneId, &pairCount) != 3 || pairCount < 0 ||
        !skipToOpenParen(stream)) {
        reportStreamFailure(stream, "Child Faces", childFace->sectionId);
        return false;
    }
    size_t numbers = 2 * static_cast<size_t>(pairCount);
    free(childFace->pairs);
    childFace->pairs = static_cast<int32_t*>(bulkCalloc(numbers > 0 ? numbers : 1, sizeof(int32_t)));
    if (childFace->pairs == nullptr) {
        ZorUtilDialogErrMsg("Failed to allocate space for child faces");
        return false;
    }
    childFace->childZoneId = childZoneId;
    childFace->parentZoneId = parentZoneId;
    childFace->pairCount = pairCount;
    if (numbers == 0) {
        return true;
    }
    std::vector<int32_t> read(numbers);
    if (!readSectionInts(read.data(), static_cast<int>(numbers), config, stream, "Child Face",
                         childFace->sectionId)) {
        // Not loaded after all, so that a later load tries again.
        free(childFace->pairs);
        childFace->pairs = nullptr;
        return false;
    }
    memcpy(childFace->pairs, read.data(), numbers * sizeof(int32_t));
    qsort(childFace->pairs, static_cast<size_t>(pairCount), 2 * sizeof(int32_t), compareChildPairs);
    return true;
}

bool CaseFileStoreFaceTreeChildren(CaseFile* caseFile) {
    // Only the first record tells whether the pairs are loaded.
    if (caseFile->numChildFaces < 1 || caseFile->childFaces[0].pairs != nullptr) {
        return true;
    }
    FILE* stream = nullptr;
    if (!openFluentFile(&stream, caseFile->fileName, "Case")) {
        return false;
    }
    if (stream == nullptr) {
        showErrorf("Fluent data loader: Unable to open %s file\n%s.", "Case", caseFile->fileName);
        return false;
    }
    bool ok = true;
    for (int32_t k = 0; ok && k < caseFile->numChildFaces; ++k) {
        ok = caseFileReadChildFace(stream, &caseFile->machineConfig, &caseFile->childFaces[k]);
    }
    fclose(stream);
    if (!ok) {
        return false;
    }
    for (int32_t k = 0; k < caseFile->numChildFaces; ++k) {
        const ChildFace* record = &caseFile->childFaces[k];
        FaceZone* child = CaseFileFindFaceZone(caseFile, record->childZoneId, false);
        FaceZone* parent = CaseFileFindFaceZone(caseFile, record->parentZoneId, false);
        if (child == nullptr || parent == nullptr) {
            char message[kMessageSize];
            snprintf(message, sizeof message,
                     "Error tracking parent-child face relationships.\nParent zone #%d, Child zone #%d.",
                     record->parentZoneId, record->childZoneId);
            if (child == nullptr) {
                ZorUtilDialogErrMsg(message);
            }
            ZorUtilDialogErrMsg(message);
            return false;
        }
        child->childFaceIndex = k;
    }
    return true;
}

// ---- Marking ---------------------------------------------------------------------------------

static bool faceInZone(const FaceZone* zone, int32_t face) {
    return zone != nullptr && zone->firstIndex <= face && face <= zone->lastIndex;
}

static int32_t makeNegative(int32_t cell) {
    return cell > 0 ? -cell : cell;
}

bool CaseFileTrackParentChildFaces(CaseFile* caseFile) {
    for (int32_t t = 0; t < caseFile->numFaceTrees; ++t) {
        FaceTree* tree = &caseFile->faceTrees[t];
        FaceZone* parentZone = CaseFileFindFaceZone(caseFile, tree->parentZoneId, false);
        if (parentZone == nullptr) {
            showErrorf("Bad parent face zone ID (%d) in face tree section.", tree->parentZoneId);
            return false;
        }
        FaceZone* childZone = CaseFileFindFaceZone(caseFile, tree->childZoneId, false);
        if (childZone == nullptr) {
            showErrorf("Bad child face zone ID (%d) in face tree section.", tree->childZoneId);
            return false;
        }
        if (parentZone->faceCells == nullptr && !CaseFileLoadFaceZone(caseFile, parentZone)) {
            return false;
        }
        if (childZone->faceCells == nullptr && !CaseFileLoadFaceZone(caseFile, childZone)) {
            return false;
        }
        if (tree->children == nullptr && !CaseFileLoadFaceTree(caseFile, tree)) {
            return false;
        }
        if (parentZone->faceCells == nullptr || childZone->faceCells == nullptr) {
            // A zone that turned out to hold polygons has no classic arrays to
            // mark; polyhedral zones treat hanging nodes their own way.
            continue;
        }
        int64_t parents = static_cast<int64_t>(tree->lastIndex) - tree->firstIndex + 1;
        for (int64_t i = 0; i < parents; ++i) {
            int32_t parentFace = static_cast<int32_t>(tree->firstIndex + i);
            if (!faceInZone(parentZone, parentFace)) {
                showErrorf(
                    "Error in Face Tree section -- Parent face %d is out of the range of faces in parent "
                    "face zone %d.",
                    parentFace, tree->parentZoneId);
                return false;
            }
            int32_t* parentCells = parentZone->faceCells + 2 * (parentFace - parentZone->firstIndex);
            FaceZone* lastZone = nullptr;
            for (int32_t slot = 0; slot < tree->maxChildren; ++slot) {
                int32_t child = tree->children[i * tree->maxChildren + slot];
                if (child == 0) {
                    continue;
                }
                FaceZone* zone = nullptr;
                if (faceInZone(childZone, child)) {
                    zone = childZone;
                } else if (faceInZone(parentZone, child)) {
                    zone = parentZone;
                } else if (faceInZone(lastZone, child)) {
                    zone = lastZone;
                } else {
                    zone = CaseFileFindFaceZoneOfFace(caseFile, child, false);
                    if (zone != nullptr && zone->faceCells == nullptr &&
                        (!CaseFileLoadFaceZone(caseFile, zone) || zone->faceCells == nullptr)) {
                        zone = nullptr;
                    }
                }
                if (zone == nullptr || zone->faceCells == nullptr) {
                    showErrorf(
                        "Error in Face Tree section -- Child face %d is out of the range of faces in child "
                        "face zone %d and parent face zone %d.",
                        child, tree->childZoneId, tree->parentZoneId);
                    return false;
                }
                lastZone = zone;
                int32_t* childCells = zone->faceCells + 2 * (child - zone->firstIndex);
                int32_t p0 = parentCells[0], p1 = parentCells[1];
                int32_t c0 = childCells[0], c1 = childCells[1];
                if (c0 == p0) {
                    childCells[0] = -c0;
                    parentCells[1] = makeNegative(p1);
                } else if (c0 == p1) {
                    childCells[0] = -c0;
                    parentCells[0] = makeNegative(p0);
                } else if (c1 == p0) {
                    childCells[1] = -c1;
                    parentCells[1] = makeNegative(p1);
                } else if (c1 == p1) {
                    childCells[1] = -c1;
                    parentCells[0] = makeNegative(p0);
                }
            }
        }
    }
    return true;
}
