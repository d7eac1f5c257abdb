// Loading the numbers of one data field, on demand, from the position the scan
// recorded. Each load opens and closes its own stream, so that loads of
// different fields may run on different threads at once.
//
//   position -> count * dimension numbers, then ')' (ASCII) or the end marker
//               "End of Binary Section %4d)" within 100 bytes (binary)

#include <cinttypes>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "datafile/AsciiReals.h"
#include "datafile/DataFile.h"
#include "datafile/DataFileInternal.h"
#include "host/ZorUtil.h"
#include "support/BulkMemory.h"

bool DataFileLoadDataField(DataFile* dataFile, DataField* field) {
    FILE* stream = openFilePath(dataFile->fileName, "rb");
    if (stream == nullptr) {
        // The word is "case" for a data file too.
        const std::string message = std::string("Error opening case file '") + dataFile->fileName + "'";
        ZorUtilDialogErrMsg(message.c_str());
        return false;
    }
    if (fseeko(stream, static_cast<off_t>(field->filePosition), SEEK_SET) != 0) {
        // The message has no closing parenthesis.
        const std::string message = "Error setting file position (" + std::to_string(field->filePosition) +
                                    " while reading data in file\n" + dataFile->fileName;
        ZorUtilDialogErrMsg(message.c_str());
        fclose(stream);
        return false;
    }
    const int32_t count = field->count;
    const int32_t dimension = field->dimension;
    // The byte count is formed in 32 bits and then widened.
    const int32_t bytes32 =
        static_cast<int32_t>(static_cast<uint32_t>(count) * static_cast<uint32_t>(dimension) *
                             static_cast<uint32_t>(sizeof(double)));
    const int64_t bytes = bytes32;
    // An empty field still gets a block of its own, so that it reads as loaded.
    field->values =
        bytes >= 0 ? static_cast<double*>(calloc(bytes > 0 ? static_cast<size_t>(bytes) : 1, 1)) : nullptr;
    if (field->values == nullptr) {
        const std::string message = "Unable to allocate " + std::to_string(bytes) + " bytes for field data.";
        ZorUtilDialogErrMsg(message.c_str());
        fclose(stream);
        return false;
    }
    // Huge pages: the read then takes one page fault per 2 MB instead of one
    // per 4 kB, which on a virtual machine is most of the cost of a binary
    // load; and a second core faults the block in from its end meanwhile.
    bulkAdviseHugePages(field->values, static_cast<size_t>(bytes));
    BulkFaultIn faultIn(BulkOrder::OneAfterAnother, {{field->values, static_cast<size_t>(bytes)}});
    double* values = field->values;
    bool ok = true;
    if (field->fieldId == 970) {
        // The block of user-defined memories stands component after component
        // and is the one field put element after element.
        for (int32_t c = 0; c < dimension && ok; ++c) {
            for (int32_t e = 0; e < count; ++e) {
                if (!readSectionReal(&values[static_cast<int64_t>(e) * dimension + c],
                                     &dataFile->machineConfig, stream, field->sectionId)) {
                    ok = false;
                    break;
                }
            }
        }
    } else if (field->sectionId < 2000) {
        // What readSectionReals does for ASCII ("%lg" per number, the stream's
        // state reported at the first failure), at the speed of a tokenizer.
        ok = readAsciiReals(values, count * dimension, stream) == count * dimension;
        if (!ok) {
            reportStreamFailure(stream, "Data", field->sectionId);
        }
    } else {
        ok = readSectionReals(values, count * dimension, &dataFile->machineConfig, stream, "Data",
                              field->sectionId, false);
    }
    if (ok) {
        ok = closeSection(field->sectionId, "Data", field->sectionId >= 2000, stream);
    }
    fclose(stream);
    return ok;
}
