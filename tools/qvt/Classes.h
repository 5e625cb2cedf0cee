// Classes that the command line names.
#pragma once

#include <string>
#include <vector>

#include "Names.h"

namespace qvt {

// The names in a class text, which ";" separates.
std::vector<std::string> namesIn(const std::string& classText);

// The schema of one class, or of several joined by ";". Each must be known, else a Failure says which is not:
// the locator itself leaves unknown ones out. `file` is for the message.
SharedPtr<ISchema> classNamed(const std::string& classText, ISchemaLocator* locator, const std::string& file);

}  // namespace qvt
