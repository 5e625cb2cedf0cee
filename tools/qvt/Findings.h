// What a check or a repair has found.
#pragma once

#include <cstdint>
#include <string>

#include "norvane/platform/data/integrity/Integrity.h"

namespace qvt {

using norvane::platform::data::integrity::Report;

// One line for each error and warning in the compilers' form, and one for all notes of a kind.
std::string findingsAsText(const Report& report, const std::string& file);
// `made` is the file of a repair, or empty.
std::string findingsAsJson(const Report& report, const std::string& file, const std::string& made = "");

std::uint64_t errorsIn(const Report& report);

// As "1 record" and "2 records".
std::string counted(std::uint64_t count, const std::string& what);

}  // namespace qvt
