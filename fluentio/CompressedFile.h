// Uncompressing a gzip-compressed case or data file into a plain copy.
//
// Case and data files are read by seeking, and reopened later at stored
// positions, which a gzip stream cannot serve. A compressed file is therefore
// written out uncompressed first, beside it or under a temporary name, and from
// then on only the plain name is used.
#pragma once

#include <functional>
#include <string>

// Takes a text to show and answers whether to go on (false: the user interrupted).
using ProgressCallback = std::function<bool(const std::string&)>;

// Writes the uncompressed copy of the gzip file `name` and gives its name in
// *uncompressedName, a host string owned by the caller. The four flags live for
// one load, so that each question is asked at most once for all its files:
//   saveUncompressedFiles  true: beside the compressed file; false: a temporary file
//   askSave                the save question is still open
//   overwrite              write over an existing copy; false: use the copy that is there
//   askOverwrite           the overwrite question is still open
// No question is asked while the host processes a layout. The callback is
// told what is being uncompressed; it is owned by the call and destroyed before
// it returns. False when the user interrupted (no message) or on a failure
// (message shown; *uncompressedName then null if it was set). A partly written
// copy is not deleted.
[[nodiscard]] bool uncompressFluentFile(const char* name, char** uncompressedName,
                                        bool& saveUncompressedFiles, bool& askSave, bool& overwrite,
                                        bool& askOverwrite, ProgressCallback progressCallback);
