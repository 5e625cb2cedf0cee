// The manual page.
#pragma once

#include <string>

#include "Grammar.h"

namespace qvt {

// In the language of troff, with its `man` macros. docs/qvt.1 is kept as this prints it.
std::string manualOf(const Grammar& grammar);

}  // namespace qvt
