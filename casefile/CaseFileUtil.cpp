// Small helpers shared by the case file parsers.
#include <sys/mman.h>

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "casefile/CaseFileInternal.h"

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
    const size_t bytes = count * size;
    if (block != nullptr && bytes >= (size_t(4) << 20)) {
        const uintptr_t page = 4096;
        const uintptr_t start = (reinterpret_cast<uintptr_t>(block) + page - 1) & ~(page - 1);
        const uintptr_t end = (reinterpret_cast<uintptr_t>(block) + bytes) & ~(page - 1);
        if (end > start) {
            (void)madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
        }
    }
    return block;
}
