// A record as text, field by field, for people: in `qvt dump` and in every failed test.
#pragma once

#include <string>

#include "records/View.h"

namespace norvane::platform::data::Record {

// One line a field: byte position, width in bytes, name, value; then the sections with their texts, values in
// hexadecimal, and what lies behind the last section. Any bytes at all can be dumped.
std::string dump(const View& record);

}  // namespace norvane::platform::data::Record
