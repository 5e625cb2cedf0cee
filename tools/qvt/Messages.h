// What goes to standard error.
#pragma once

#include <string>
#include <string_view>

#include "norvane/platform/core/xml/XMLParser.h"

namespace qvt {

using Place = norvane::platform::core::xml::tPlace;

// "file:line:column" in the compilers' form, which editors and build servers find.
std::string placeIn(std::string_view file, const Place& place);

class Messages {
  public:
    explicit Messages(bool isQuiet) : isQuiet_(isQuiet) {}

    // An element that was skipped. Counted also when nothing is printed.
    void report(std::string_view file, const Place& place, std::string_view words);
    // What the answer lacks without any fault of a document. Counted like a report, and printed even when
    // quiet: without it nobody would know.
    void lost(std::string_view words);
    // Something that the user may want to know and that changes no exit status.
    void warn(std::string_view words) const;
    // What ends the run; printed even when quiet.
    static void fail(std::string_view words);

    bool isQuiet() const { return isQuiet_; }
    bool hasReports() const { return hasReports_; }

  private:
    bool isQuiet_;
    bool hasReports_ = false;
};

}  // namespace qvt
