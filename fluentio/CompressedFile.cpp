// Uncompressing gzip-compressed case and data files into plain, seekable copies.
#include "fluentio/CompressedFile.h"

#include <zlib.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "fluentio/SectionReader.h"
#include "host/ZorUtil.h"
#include "support/AsciiCase.h"

namespace {

constexpr size_t kMessageSize = 4097;         // every message text is built in a buffer of this size
constexpr unsigned kCopyBufferSize = 512000;  // bytes uncompressed per step

// A host string holding the first `length` characters of text, then `suffix`; null when out of memory.
char* hostStringOf(const char* text, size_t length, const char* suffix) {
    const size_t suffixLength = std::strlen(suffix);
    char* copy = ZorUtilStringAlloc(static_cast<int64_t>(length + suffixLength), "uncompressedFileName");
    if (copy == nullptr)
        return nullptr;
    std::memcpy(copy, text, length);
    std::memcpy(copy + length, suffix, suffixLength);
    copy[length + suffixLength] = '\0';
    return copy;
}

}  // namespace

bool uncompressFluentFile(const char* name, char** uncompressedName, bool& saveUncompressedFiles,
                          bool& askSave, bool& overwrite, bool& askOverwrite,
                          ProgressCallback progressCallback) {
    // Owned here, destroyed when the function returns.
    const ProgressCallback progress = std::move(progressCallback);
    char text[kMessageSize];

    if (!isGzipFileName(name)) {
        snprintf(text, sizeof(text),
                 "Fluent data loader:\nThe file '%s' appears to be .Z compressed.\n.Z compression is not "
                 "supported.  "
                 "Please uncompress before loading.",
                 name == nullptr ? "" : name);
        ZorUtilDialogErrMsg(text);
        return false;
    }

    if (askSave && !ZorUtilStateIsProcessingLayout()) {
        saveUncompressedFiles = ZorUtilDialogMessageBox(
            "Save the uncompressed files to the compressed files' locations?", ZorMessageBoxType_YesNo);
        askSave = false;
    }

    if (progress && !progress(std::string("Uncompressing ") + name + "..."))
        return false;

    // The failure text, when a step sets one; otherwise the general one is shown.
    char errorText[kMessageSize] = "";

    char* newName = nullptr;
    if (saveUncompressedFiles) {
        // Beside the compressed file: the name without ".gz".
        newName = hostStringOf(name, std::strlen(name) - 3, "");
    } else {
        char* tempName = nullptr;
        if (!ZorUtilFileGetTempName(&tempName) || tempName == nullptr) {
            snprintf(
                errorText, sizeof(errorText),
                "Error writing uncompressed file %s.\nPlease check space and permissions for this location.",
                name);
        } else {
            // The suffix tells the kind of file to those who classify names later.
            const char* suffix = asciiEndsWithIgnoringCase(name, "cas.gz") ? ".cas" : ".dat";
            newName = hostStringOf(tempName, std::strlen(tempName), suffix);
        }
        ZorUtilStringDealloc(&tempName);
    }
    *uncompressedName = newName;

    FILE* output = nullptr;
    gzFile input = nullptr;
    char* buffer = nullptr;
    bool ok = false;
    if (newName != nullptr) {
        if (askOverwrite && !ZorUtilStateIsProcessingLayout()) {
            FILE* existing = openFilePath(newName, "rb");
            if (existing != nullptr) {
                fclose(existing);
                snprintf(text, sizeof(text),
                         "The uncompressed file %s already exists.\nOverwrite this and any other "
                         "uncompressed files "
                         "for the dataset?",
                         newName);
                overwrite = ZorUtilDialogMessageBox(text, ZorMessageBoxType_YesNo);
                askOverwrite = false;
            }
            // No copy there: the question stays open for the next file.
        }
        if (!overwrite)
            return true;  // the copy that is there is used as it is

        output = openFilePath(newName, "wb");
        if (output == nullptr) {
            snprintf(
                errorText, sizeof(errorText),
                "Error writing uncompressed file %s.\nPlease check space and permissions for this location.",
                newName);
        } else {
            input = gzopen(name, "rb");
            buffer = static_cast<char*>(std::malloc(kCopyBufferSize));
            if (input != nullptr && buffer != nullptr) {
                ok = true;
                for (;;) {
                    const int got = gzread(input, buffer, kCopyBufferSize);
                    if (got < 0) {
                        ok = false;
                        break;
                    }
                    if (got == 0)
                        break;
                    if (fwrite(buffer, 1, static_cast<size_t>(got), output) != static_cast<size_t>(got)) {
                        ok = false;
                        break;
                    }
                }
            }
            std::free(buffer);
            if (fclose(output) != 0)
                ok = false;
            if (input != nullptr && gzclose(input) != Z_OK)
                ok = false;
        }
    }
    if (ok)
        return true;

    if (errorText[0] == '\0')
        snprintf(errorText, sizeof(errorText), "Error uncompressing the file %s.", name);
    ZorUtilDialogErrMsg(errorText);
    ZorUtilStringDealloc(uncompressedName);
    *uncompressedName = nullptr;
    return false;
}
