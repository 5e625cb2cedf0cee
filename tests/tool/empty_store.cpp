// Makes a file store without any record, which the tool never does: empty_store <path>
#include "norvane/platform/core/storage/datastore/FileDataStore.h"

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    norvane::platform::core::storage::datastore::FileDataStore store(argv[1]);
    store.close();
}
