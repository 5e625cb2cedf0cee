// What may stand on the command line: the one description that parsing, help, the manual page and completion
// read.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "CommandLine.h"

namespace qvt {

// All verbs, in the order of the help.
const std::vector<const Verb*>& verbs();
// What stands below the help of the tool as a whole.
const char* footer();

struct Grammar {
    // What was parsed goes to `command`, `about` and `isHelp`; it stays where it is for as long.
    Grammar();
    Grammar(const Grammar&) = delete;
    Grammar& operator=(const Grammar&) = delete;

    // The grammar of a verb, of help too; null for what is none.
    const CLI::App* verb(const std::string& name) const;

    CLI::App app;
    Command command;
    std::string about;    // of help
    bool isHelp = false;  // help was asked for as a verb
};

// What --help prints about the tool or a verb; the prefix goes before its name.
std::string helpOf(const CLI::App& app, const std::string& prefix);
// "tree [OPTIONS] STORE [PATH]"
std::string usageOf(const CLI::App& verb);

}  // namespace qvt
