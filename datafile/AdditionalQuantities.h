// AdditionalQuantitiesParser: the names of the user's cell functions, which
// give the Data sections of the 314 family their names, and the user's wish
// to load those sections at all.
//
// The names stand in the Variables section (37) of a data file, as free text:
//
//   ... cell-function-list ((1 "id-one" "Name One" ...)) (2 "id-two" "Name Two" ...))))
//
// Each entry is "((" or ")) (", a number, two quoted texts; the second text is
// the name. A 314-family section's field id is the one-based place of its name
// in this list.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace zorvane {
namespace zorutildataio {

class AdditionalQuantitiesParser {
  public:
    // An empty list; the flag is the LoadAdditionalQuantities instruction.
    explicit AdditionalQuantitiesParser(bool loadAdditionalQuantities);
    AdditionalQuantitiesParser(const AdditionalQuantitiesParser& other);
    // Assigns the whole list; the load flag stays as constructed.
    AdditionalQuantitiesParser& operator=(const AdditionalQuantitiesParser& other);
    virtual ~AdditionalQuantitiesParser();

    // Appends the names of the list in a Variables section whose body starts
    // at the stream's position and which ends at endPosition. No list is no
    // failure. Leaves the stream at the body's start; false only on a read
    // error (no message: the caller ends the scan).
    [[nodiscard]] bool parseVariablesSection(FILE* stream, int64_t endPosition);

    // The list holds at least one name.
    bool hasNames() const;
    // The user asked to load the 314-family sections.
    bool shouldLoad() const;
    // The name at a one-based place; "" for a place that the list lacks.
    std::string getName(int32_t position) const;
    // A copy of the list, in file order.
    std::vector<std::string> names() const;
    // Replaces the list (a restore from the metadata cache).
    void setNames(const std::vector<std::string>& names);

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace zorutildataio
}  // namespace zorvane
