// qvt check STORE
#include "FileStores.h"
#include "Findings.h"
#include "Output.h"
#include "Verbs.h"

namespace qvt {

namespace {

int check(const Options& options) {
    mustBeFileStore(options.store, "check");
    const data::integrity::Report report = data::integrity::checkFile(options.store);
    Output output(options);
    if (options.format == Format::json)
        output.put(findingsAsJson(report, options.store));
    else if (!options.quiet)
        output.put(findingsAsText(report, options.store));
    output.finish();
    return report.isSound() ? kDone : kDamaged;
}

}  // namespace

const Verb kCheck{
    "check", "look for damage in a store",
    "Looks at the file, at every record, and at how records hang together, and changes nothing. One line\n"
    "for each finding: error, warning or note, the record, the path. Exit status 0 if nothing is an error,\n"
    "4 if something is. -q prints nothing.",
    Verb::kFile | Verb::kJson | Verb::kAnswers, check};

}  // namespace qvt
