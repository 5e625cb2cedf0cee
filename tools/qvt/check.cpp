// qvt check STORE
#include "FileStores.h"
#include "Findings.h"
#include "Output.h"
#include "Verbs.h"

namespace qvt {

namespace {

std::string asText(const Report& report, const std::string& file) {
    const std::uint64_t errors = errorsIn(report);
    return findingsAsText(report, file) + printable(file) + ": " + counted(report.recordCount, "record") +
           ", " + (errors == 0 ? "sound" : counted(errors, "error")) + "\n";
}

int check(const Options& options) {
    mustBeFileStore(options.store, "check");
    const Report report = data::integrity::checkFile(options.store);
    Output output(options);
    if (options.format == Format::json)
        output.put(findingsAsJson(report, options.store));
    else if (!options.quiet)
        output.put(asText(report, options.store));
    output.finish();
    return report.isSound() ? kDone : kDamaged;
}

}  // namespace

const Verb kCheck{
    "check",
    "look for damage in a store",
    "Looks at the file, at every record, and at how records hang together, and changes nothing. One line\n"
    "for each error and warning: the record, the path, what it is; notes are counted, and listed in JSON.\n"
    "Exit status 0 if nothing is an error, 4 if something is. -q prints nothing but JSON.",
    "  qvt check plant.qvt\n"
    "  qvt check plant.qvt -f json",
    Verb::kFile | Verb::kJson | Verb::kAnswers,
    check};

}  // namespace qvt
