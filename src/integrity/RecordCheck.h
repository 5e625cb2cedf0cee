// One record by itself: what is wrong with its bytes, and what readers make of it all the same.
#pragma once

#include <string>

#include "integrity/Findings.h"
#include "records/View.h"

namespace norvane::platform::data::integrity {

// Whether readers take it for a record at all: its kind is known and its fixed part is there.
bool isWholeRecord(const Record::View& record);

// Adds everything that can be said against the bytes of a record, other records aside.
void checkRecord(std::uint32_t offset, const Record::View& record, Findings& findings);

// The bytes of a record that reads the same as this one and against which `checkRecord` finds no error: these
// very bytes if it finds none now. Only for whole records.
std::string normalForm(const Record::View& record);

// Bytes of an element by type code; 0 for codes that are no types.
std::uint32_t elementSizeOf(std::uint32_t dataType);

}  // namespace norvane::platform::data::integrity
