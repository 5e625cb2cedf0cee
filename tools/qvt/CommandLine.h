#pragma once

#include "Options.h"
#include "Verbs.h"

namespace qvt {

// What the command line asks for: a verb to run with its options, or, without a verb, a status to end with;
// all that was to be printed is printed then.
struct Command {
    const Verb* verb = nullptr;
    Options options;
    int status = kDone;
};

Command commandOf(int argc, const char* const* argv);

}  // namespace qvt
