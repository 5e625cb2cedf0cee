// Classes by name.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Names.h"
#include "Options.h"
#include "Sources.h"

namespace qvt {

// The names in a class text, which ";" separates.
std::vector<std::string> namesIn(const std::string& classText);

// Where classes are looked up: a store and the libraries, all borrowed. `file` is for messages.
struct ClassPlaces {
    const std::string& file;
    ISchemaLocator* locator;
    std::vector<IDataStore*> stores;
};

// That no place knows the class, and what may have been meant.
Failure unknownClass(const std::string& name, const ClassPlaces& places);

// The schema of one class, or of several joined by ";". Each must be known, else a Failure says which is not:
// the locator itself leaves unknown ones out.
SharedPtr<ISchema> classNamed(const std::string& classText, const ClassPlaces& places);

// The classes that come down from one class: itself, and those whose tables name such a class as their own.
class ClassFamily {
  public:
    ClassFamily(std::string ancestor, const ClassPlaces& places);

    // Whether one of the names in a class text is of the family.
    bool has(const std::string& classText);
    // Whether there is a table of the ancestor's name.
    bool isKnown() const;
    // Classes that were asked about, or that those come down from, and that no place has: whether they are of
    // the family cannot be told.
    const std::vector<std::string>& missing() const { return missing_; }

  private:
    bool comesDown(const std::string& name);
    bool settle(const std::string& name);
    // The class text of a class's own table; nothing if no place has it.
    std::optional<std::string> classOf(const std::string& name) const;

    std::string ancestor_;
    std::vector<IDataStore*> stores_;
    std::map<std::string, bool> isOf_;  // what is known by now, by class
    std::vector<std::string> missing_;
};

}  // namespace qvt
