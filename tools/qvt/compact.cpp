// qvt compact STORE
#include "FileStores.h"
#include "Verbs.h"

namespace qvt {

namespace {

int compact(const Options& options) {
    mustBeFileStore(options.store, "compact");
    FileDataStore::Options how;
    how.creation = FileDataStore::Creation::never;
    FileDataStore store(options.store, how);
    store.compact();
    store.close();
    return kDone;
}

}  // namespace

const Verb kCompact{"compact",
                    "give back the room of removed records",
                    "Rewrites the file without it. All records stay as they are, and keep their offsets.",
                    "  qvt compact plant.qvt",
                    Verb::kFile,
                    compact};

}  // namespace qvt
