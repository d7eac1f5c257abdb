#include "datafile/AdditionalQuantities.h"

#include "fluentio/SectionReader.h"

namespace zorvane {
namespace zorutildataio {

struct AdditionalQuantitiesParser::Impl {
    std::vector<std::string> additionalQuantityNames;  // the names, in file order
    bool loadAdditionalQuantities = false;             // the instruction's value; fixed at construction
};

AdditionalQuantitiesParser::AdditionalQuantitiesParser(bool loadAdditionalQuantities) : impl_(new Impl) {
    impl_->loadAdditionalQuantities = loadAdditionalQuantities;
}

AdditionalQuantitiesParser::AdditionalQuantitiesParser(const AdditionalQuantitiesParser& other)
    : impl_(new Impl(*other.impl_)) {}

AdditionalQuantitiesParser& AdditionalQuantitiesParser::operator=(const AdditionalQuantitiesParser& other) {
    if (this != &other) {
        impl_->additionalQuantityNames = other.impl_->additionalQuantityNames;
    }
    return *this;
}

AdditionalQuantitiesParser::~AdditionalQuantitiesParser() = default;

bool AdditionalQuantitiesParser::hasNames() const {
    return !impl_->additionalQuantityNames.empty();
}

bool AdditionalQuantitiesParser::shouldLoad() const {
    return impl_->loadAdditionalQuantities;
}

std::string AdditionalQuantitiesParser::getName(int32_t position) const {
    const std::vector<std::string>& list = impl_->additionalQuantityNames;
    if (position < 1 || static_cast<size_t>(position) > list.size()) {
        return std::string();
    }
    return list[static_cast<size_t>(position) - 1];
}

std::vector<std::string> AdditionalQuantitiesParser::names() const {
    return impl_->additionalQuantityNames;
}

void AdditionalQuantitiesParser::setNames(const std::vector<std::string>& names) {
    impl_->additionalQuantityNames = names;
}

// The list is searched as text: "cell-function-list" within the section, then
// the list's end "))))" (searched without a limit), then entries from the
// section's start up to that end. The first "((" of the section is taken for
// the first entry; an entry that does not read as number and two quoted texts
// is passed over.
bool AdditionalQuantitiesParser::parseVariablesSection(FILE* stream, int64_t endPosition) {
    const long long start = ftello(stream);
    if (start == -1) {
        return false;
    }
    int status = seekLiteralBounded(stream, "cell-function-list", endPosition);
    if (status == 2) {
        return false;
    }
    if (status != 0) {
        return fseeko(stream, start, SEEK_SET) == 0;
    }
    status = seekLiteral(stream, "))))", false, false);
    if (status == 2) {
        return false;
    }
    if (status != 0) {
        return fseeko(stream, start, SEEK_SET) == 0;
    }
    const long long listEnd = ftello(stream);
    if (listEnd == -1 || fseeko(stream, start, SEEK_SET) != 0) {
        return fseeko(stream, start, SEEK_SET) == 0;
    }
    const char* pattern = "((";
    for (;;) {
        status = seekLiteralBounded(stream, pattern, listEnd);
        if (status == 2) {
            return false;
        }
        if (status != 0) {
            return fseeko(stream, start, SEEK_SET) == 0;
        }
        int number = 0;
        char textOne[144];
        char textTwo[144];
        if (fscanf(stream, "%d \"%143[^\"]\" \"%143[^\"]\"", &number, textOne, textTwo) == 3) {
            impl_->additionalQuantityNames.push_back(textTwo);
        }
        pattern = ")) (";
    }
}

}  // namespace zorutildataio
}  // namespace zorvane
