// Units that a document misspells.
#pragma once

#include "Input.h"
#include "Messages.h"

namespace qvt {

// One warning for all names of units in a document that are none: the library leaves them out in silence. A
// document that was read is looked through for them as text, and parsed once more only if something is found.
void warnOfUnknownUnits(const Input& input, const Messages& messages);

}  // namespace qvt
