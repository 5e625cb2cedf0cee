// qvt rm STORE PATH...
#include "Editing.h"
#include "Verbs.h"

namespace qvt {

namespace {

int rm(const Options& options) {
    mustBeFileStore(options.store, "rm");
    Editing editing(options.store, options);
    for (const std::string& path : options.words) removeFrom(editing.tree(), path);
    editing.commit();
    return editing.status();
}

}  // namespace

const Verb kRm{
    "rm",
    "remove objects",
    "Removes each object with all that is below it, or none of them. What came from a class stays.",
    "  qvt rm plant.qvt hall.spare",
    Verb::kFile | Verb::kPaths,
    rm};

}  // namespace qvt
