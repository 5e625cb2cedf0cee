// What a shell offers when a command line is completed.
#pragma once

#include <string>
#include <vector>

#include "Grammar.h"

namespace qvt {

// `words` stand behind the name of the tool, the last of them is the one that is being typed. The first line
// of the answer says what the others are, the candidates: "words"; "paths", which may go on; or that the
// shell is to look for "files" itself. Never fails; where nothing is known there are no candidates.
std::string completionsOf(const Grammar& grammar, const std::vector<std::string>& words);

}  // namespace qvt
