// What the stand-in's own files share and nobody else sees.
#pragma once

#include <string>

namespace minihost {
namespace detail {

// Each file forgets its records and sets its switches back (resetRecords).
void resetAddOnRecords();
void resetSwitches();
void resetMessageRecords();
void resetProgressRecords();
void resetFrame();
void resetPlot();

// The switch behind ZorUtilDataSetIsLODAllowed.
bool loadOnDemandAllowed();

// Prints "minihost: <name> is not implemented yet" on stderr and aborts.
[[noreturn]] void notImplemented(const char* name);

// A copy of a C string in a host string (malloc'd, freed with free or
// ZorUtilStringDealloc); null for null or when memory runs out.
char* hostStringCopy(const char* text);
char* hostStringCopy(const std::string& text);

}  // namespace detail
}  // namespace minihost
