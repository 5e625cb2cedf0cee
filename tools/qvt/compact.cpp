// qvt compact STORE
#include "FileStores.h"
#include "Findings.h"
#include "Output.h"
#include "Verbs.h"

namespace qvt {

namespace {

// Of what is damaged, the old order of the file may be all that leads to the rest.
void mustBeSound(const Report& report, const std::string& path) {
    if (report.isSound()) return;
    throw Failure(kDamaged,
                  path + ": error: " + counted(errorsIn(report), "error") + " in it, and it stays as it is");
}

void dropUnreachable(FileDataStore& store, const Options& options) {
    const data::integrity::Removal removal = data::integrity::removeUnreachable(store);
    mustBeSound(removal.report, options.store);
    store.commit();
    if (options.quiet) return;
    Output output{Options()};
    output.line(printable(options.store) + ": " + counted(removal.removedCount, "record") + " dropped");
    output.finish();
}

int compact(const Options& options) {
    mustBeFileStore(options.store, "compact");
    openForReading(options.store);  // what is no store at all is not damaged
    mustBeSound(data::integrity::checkFile(options.store), options.store);
    FileDataStore::Options how;
    how.creation = FileDataStore::Creation::never;
    FileDataStore store(options.store, how);
    if (options.dropsUnreachable) dropUnreachable(store, options);
    store.compact();
    store.close();
    return kDone;
}

}  // namespace

const Verb kCompact{
    "compact",
    "give back the room of removed records",
    "Rewrites the file without it. All records stay as they are, and keep their offsets. A store that qvt\n"
    "check finds damaged is left as it is, with status 4.\n"
    "--drop-unreachable removes the records that nothing leads to, for good, and tells how many they were.\n"
    "Elements that an import skips or overrides leave such records, and repair --recover brings them back.",
    "  qvt compact plant.qvt\n"
    "  qvt compact plant.qvt --drop-unreachable",
    Verb::kFile | Verb::kDropOptions,
    compact};

}  // namespace qvt
