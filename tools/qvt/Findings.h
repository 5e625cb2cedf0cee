// What a check or a repair has found.
#pragma once

#include <string>

#include "norvane/platform/data/integrity/Integrity.h"

namespace qvt {

// One line for each finding in the compilers' form, then one that sums them up.
std::string findingsAsText(const norvane::platform::data::integrity::Report& report, const std::string& file);
std::string findingsAsJson(const norvane::platform::data::integrity::Report& report, const std::string& file);

}  // namespace qvt
