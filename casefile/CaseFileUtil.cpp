// Small helpers shared by the case file parsers.
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "casefile/CaseFileInternal.h"
#include "support/BulkMemory.h"

void showErrorf(const char* format, ...) {
    char message[kMessageSize];
    va_list args;
    va_start(args, format);
    vsnprintf(message, sizeof message, format, args);
    va_end(args);
    ZorUtilDialogErrMsg(message);
}

bool skipToOpenParen(FILE* stream) {
    for (;;) {
        int c = getc(stream);
        if (c == EOF) {
            return false;
        }
        if (c == '(') {
            return true;
        }
    }
}

FILE* openCaseFileStream(const CaseFile* caseFile) {
    FILE* stream = openFilePath(caseFile->fileName, "rb");
    if (stream == nullptr) {
        showErrorf("Error opening case file '%s'", caseFile->fileName);
    }
    return stream;
}

void* bulkCalloc(size_t count, size_t size) {
    if (count == 0) {
        count = 1;
    }
    void* block = calloc(count, size);
    if (block != nullptr) {
        bulkAdviseHugePages(block, count * size);
    }
    return block;
}
