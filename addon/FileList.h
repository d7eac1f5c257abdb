// File lists of a MultipleCaseAndData load: what each file is, and the order
// in which the series loop reads them.
//
// The user gives a flat list of case, data and at most one XML particle file
// in any order. Compressed files are uncompressed and replaced by their plain
// copies, and the list is reordered: each case file followed by its data
// files, the XML file last.
//
//   given:    run2.dat  run1.cas  run1.dat  particles.xml  run2.cas
//   ordered:  run1.cas  run1.dat  run2.cas  run2.dat  particles.xml
#pragma once

#include "fluentio/CompressedFile.h"
#include "host/ZorTypes.h"

// Null-terminated suffix tables, tested without regard to case against the
// end of a file name.
extern const char* const CaseSuffixes[];      // ".cas", ".cas.gz"
extern const char* const DataSuffixes[];      // ".dat", ".dat.gz", ".fdat", ".fdat.gz"
extern const char* const ParticleSuffixes[];  // ".xml"

// True when the name ends in one of the table's suffixes, without regard to
// case; a name equal to a suffix ends in it.
[[nodiscard]] bool hasSuffixInTable(const char* fileName, const char* const* table);

// Classifies and orders the list in place. Compressed files are uncompressed
// first (the four flags are those of the load, so that each question is asked
// once) and count by the suffix of their plain copies. One case file takes
// any number of data files as a series; several case files need as many data
// files, paired by the case file's name without its suffix as the start of
// the data file's name (the first such file in the user's order). Several
// case files with no data file, or data files alone when appending, leave the
// list as it came. False, message shown, for an empty name, a file of no known
// kind, a second XML file, counts that do not pair, or a case file without a
// match; the list may then be partly ordered. The progress callback is told
// what is being uncompressed; it is owned by the call.
[[nodiscard]] bool ClassifyFileList(ZorStringList fileList, bool append, bool& saveUncompressedFiles,
                                    bool& askSave, bool& overwrite, bool& askOverwrite,
                                    ProgressCallback progressCallback);
