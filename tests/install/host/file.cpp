// A host in C++17 that keeps a record in a file, and finds it there again.

#include <unistd.h>

#include <cstdio>
#include <string>

#include "norvane/platform/core/storage/datastore/FileDataStore.h"
#include "norvane/platform/data/integrity/Integrity.h"

using norvane::platform::core::storage::datastore::FileDataStore;
using norvane::platform::core::storage::datastore::StoreError;

int main() {
    const std::string path = "/tmp/qvt-host-" + std::to_string(getpid()) + ".qvt";
    int failures = 0;
    try {
        {
            FileDataStore store(path);
            store.append("abc", 3);
            store.close();
        }
        FileDataStore::Options options;
        options.access = FileDataStore::Access::readOnly;
        FileDataStore store(path, options);
        char bytes[3] = {};
        store.read(0, bytes, norvane::platform::core::storage::datastore::kWholeRecord);
        failures += std::string(bytes, 3) != "abc";
    } catch (const StoreError& error) {
        std::printf("%s\n", error.what());
        ++failures;
    }
    try {
        FileDataStore there(path, [] {
            FileDataStore::Options options;
            options.creation = FileDataStore::Creation::always;
            return options;
        }());
        ++failures;
    } catch (const StoreError& error) {
        failures += error.code() != StoreError::Code::exists;
    }
    failures += norvane::platform::data::integrity::checkFile(path).isSound();  // three letters are no model
    std::remove(path.c_str());
    return failures;
}
