// qvt repair IN OUT
#include "FileStores.h"
#include "Findings.h"
#include "Output.h"
#include "Verbs.h"

namespace qvt {

namespace {

std::string asText(const Report& report, const Options& options) {
    return findingsAsText(report, options.store) + printable(options.target) + ": " +
           counted(report.recordCount, "record") + ", " + counted(errorsIn(report), "repair") + "\n";
}

int repair(const Options& options) {
    mustBeFileStore(options.store, "repair");
    mustBeFileStore(options.target, "repair");
    data::integrity::RepairOptions how;
    how.salvage = options.salvage;
    how.recovered = options.recovered;
    const Report report = data::integrity::repair(options.store, options.target, how);
    Output output(options);
    if (options.format == Format::json)
        output.put(findingsAsJson(report, options.store, options.target));
    else if (!options.quiet)
        output.put(asText(report, options));
    output.finish();
    return report.isSound() ? kDone : kNo;
}

}  // namespace

const Verb kRepair{
    "repair",
    "make a sound store of a damaged one",
    "Writes to OUT, which must not be there yet, all of IN that is sound, and lists what is different. IN\n"
    "stays as it is. --salvage looks for records in every page of a file whose own order is broken.\n"
    "--recover puts objects that nothing leads to any more below a group of that name.\n"
    "Exit status 0 if IN was sound, so that OUT holds all of it; 1 if something was mended or left out, as\n"
    "the list says; 4 if nothing could be saved.",
    "  qvt repair plant.qvt sound.qvt\n"
    "  qvt repair plant.qvt sound.qvt --salvage --recover found",
    Verb::kRepairOptions | Verb::kJson | Verb::kAnswers,
    repair};

}  // namespace qvt
