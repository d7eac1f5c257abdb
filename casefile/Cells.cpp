// Cells sections: the cell zones. Only a mixed zone has a body.
//
//   header        (zone first last zone-type element-type)   hexadecimal, element type decimal
//   body opening  the first '(' behind the header (mixed zones only)
//   body  12      one element type per cell, hexadecimal text
//   body  2012/3012  one integer of intSize bytes per cell
//   closing       ')' or the binary end marker
#include <cstdlib>
#include <cstring>

#include "casefile/CaseFileInternal.h"

// Gives a new zone its deferred min/max writers, one per dimension.
bool zoneMakeMinMaxWriters(zorvane::dataio::DeferredMinMaxWriter*** writers, int32_t numDimensions,
                           zorvane::dataio::DeferredMinMaxWriterFactory* factory) {
    if (factory == nullptr) {
        return true;
    }
    int32_t count = numDimensions > 0 ? numDimensions : 0;
    *writers = static_cast<zorvane::dataio::DeferredMinMaxWriter**>(
        calloc(count > 0 ? static_cast<size_t>(count) : 1, sizeof(zorvane::dataio::DeferredMinMaxWriter*)));
    if (*writers == nullptr) {
        return false;
    }
    for (int32_t axis = 0; axis < count; ++axis) {
        (*writers)[axis] = factory->createDeferredMinMaxWriter();
    }
    return true;
}

bool CaseFileParseCell(CaseFile* caseFile, int32_t sectionId,
                       zorvane::dataio::DeferredMinMaxWriterFactory* factory) {
    FILE* stream = caseFile->stream;
    int zoneId = 0, first = 0, last = 0, zoneType = 0, elementType = 0;
    int fields = fscanf(stream, "(%x %x %x %x %d)", &zoneId, &first, &last, &zoneType, &elementType);
    if (fields < 4 || (zoneId != 0 && fields < 5)) {
        reportStreamFailure(stream, "Cells", sectionId);
        return false;
    }
    if (zoneId < 1) {
        // A declaration of the total count.
        return skipSection(sectionId, sectionId >= 2000, stream);
    }
    CellZone* zone = nullptr;
    if (!CaseFileNewCellZone(caseFile, &zone)) {
        return false;
    }
    zone->sectionId = sectionId;
    zone->zoneId = zoneId;
    zone->firstIndex = first;
    zone->lastIndex = last;
    zone->zoneType = zoneType;
    zone->elementType = elementType;
    zone->hostZoneType = kUnknownHostZoneType;
    if (!zoneMakeMinMaxWriters(&zone->nodeMinMaxWriters, caseFile->numDimensions, factory)) {
        return false;
    }
    if (elementType == 0 && !skipToOpenParen(stream)) {
        showErrorf("Opening parenthesis not found while reading Cells section (Section %d).", sectionId);
        return false;
    }
    long long position = ftell(stream);
    if (position < 0) {
        if (elementType == 0) {
            showErrorf("Opening parenthesis not found while reading Cells section (Section %d).", sectionId);
        }
        return false;
    }
    zone->filePosition = position;
    if (elementType == 0) {
        int64_t jump =
            (static_cast<int64_t>(last) - first + 1) * integerWidth(&caseFile->machineConfig, sectionId);
        if (jump > 0 && fseeko(stream, static_cast<off_t>(jump), SEEK_CUR) != 0) {
            return false;
        }
    }
    return skipSection(sectionId, sectionId >= 2000, stream);
}

bool CaseFileLoadCellZoneCellTypes(CaseFile* caseFile, CellZone* zone) {
    FILE* stream = openCaseFileStream(caseFile);
    if (stream == nullptr) {
        return false;
    }
    if (fseeko(stream, static_cast<off_t>(zone->filePosition), SEEK_SET) != 0) {
        showErrorf("Error setting file position to %lld\nin file '%s'.",
                   static_cast<long long>(zone->filePosition), caseFile->fileName);
        fclose(stream);
        return false;
    }
    int64_t count = static_cast<int64_t>(zone->lastIndex) - zone->firstIndex + 1;
    size_t places = count > 0 ? static_cast<size_t>(count) : 0;
    free(zone->cellTypes);
    zone->cellTypes = static_cast<int32_t*>(bulkCalloc(places > 0 ? places : 1, sizeof(int32_t)));
    if (zone->cellTypes == nullptr) {
        showErrorf("Out of memory while reading Cells section (Section %d).", zone->sectionId);
        fclose(stream);
        return false;
    }
    int32_t* types = static_cast<int32_t*>(malloc((places > 0 ? places : 1) * sizeof(int32_t)));
    if (types == nullptr) {
        fclose(stream);
        return false;
    }
    bool ok = places == 0 || readSectionInts(types, static_cast<int>(places), &caseFile->machineConfig,
                                             stream, "Cells", zone->sectionId);
    if (ok) {
        memcpy(zone->cellTypes, types, places * sizeof(int32_t));
        ok = closeSection(zone->sectionId, "Cells", zone->sectionId >= 2000, stream);
    }
    free(types);
    fclose(stream);
    return ok;
}

int32_t CellZoneReadFirstCellType(CellZone* zone, CaseFile* caseFile) {
    FILE* stream = openFilePath(caseFile->fileName, "rb");
    if (stream == nullptr) {
        return 255;
    }
    if (fseeko(stream, static_cast<off_t>(zone->filePosition), SEEK_SET) != 0) {
        fclose(stream);
        return 255;
    }
    int type = 255;
    if (zone->sectionId < 2000) {
        unsigned int value = 0;
        if (fscanf(stream, "%x", &value) == 1) {
            type = static_cast<int>(value);
        } else {
            // The section word is "faces" here, in lower case, though the
            // section holds cells.
            reportStreamFailure(stream, "faces", zone->sectionId);
        }
    } else {
        int value = 0;
        ReadStatus status = readBinaryInts(&value, 1, &caseFile->machineConfig, stream);
        if (status == ReadStatus_Success) {
            type = value;
        } else {
            reportReadStatus(status, "faces", zone->sectionId);
        }
    }
    fclose(stream);
    return type;
}
