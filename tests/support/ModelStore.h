// The store that the tests of the public model stand on: one in memory or, in programs that are compiled with
// QVT_TEST_FILE_STORE, one in a file, which commits after each operation and has hardly any memory, so that
// the next operation has to fetch what it needs.
#pragma once

#include <cstdint>

#if defined(QVT_TEST_FILE_STORE)
#include "norvane/platform/core/storage/datastore/FileDataStore.h"
#include "support/Folder.h"
#else
#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#endif

namespace norvane::platform::test {

#if defined(QVT_TEST_FILE_STORE)

class ModelStore : private Folder, public core::storage::datastore::FileDataStore {
  public:
    explicit ModelStore(std::uint32_t recordLimit = 1u << 30)
        : FileDataStore(static_cast<const Folder&>(*this) / "model.qvt", options(recordLimit)) {}
    ~ModelStore() noexcept override = default;

  private:
    static Options options(std::uint32_t recordLimit) {
        Options options;
        options.recordLimit = recordLimit;
        options.memoryLimit = 4000;
        options.commitPolicy = CommitPolicy::atRelease;
        return options;
    }
};

#else

class ModelStore : public core::storage::datastore::MemoryDataStore {
  public:
    explicit ModelStore(std::uint32_t recordLimit = 1u << 30) : MemoryDataStore(Options{recordLimit}) {}
    ~ModelStore() noexcept override = default;
};

#endif

}  // namespace norvane::platform::test
