#include "Messages.h"

#include <cstdio>

#include "Progress.h"
#include "Text.h"

namespace qvt {

namespace {

void print(const std::string& line) {
    Progress::clear();
    std::fputs((line + "\n").c_str(), stderr);
}

}  // namespace

std::string placeIn(std::string_view file, const Place& place) {
    return std::string(file) + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
}

void Messages::report(std::string_view file, const Place& place, std::string_view words) {
    hasReports_ = true;
    if (!isQuiet_) print(printable(placeIn(file, place) + ": error: " + std::string(words)));
}

void Messages::lost(std::string_view words) {
    hasReports_ = true;
    print(printable(words));
}

void Messages::warn(std::string_view words) const {
    if (!isQuiet_) print(printable(words));
}

void Messages::fail(std::string_view words) { print(printable(words)); }

}  // namespace qvt
