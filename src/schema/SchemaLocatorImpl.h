// Types by name, from a set of stores.
#pragma once

#include <oneapi/tbb/cache_aligned_allocator.h>
#include <oneapi/tbb/concurrent_hash_map.h>

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "norvane/platform/data/metadata/ISchemaLocator.h"
#include "records/FirstFailure.h"
#include "schema/Layout.h"
#include "schema/LayoutCache.h"
#include "schema/RootLookup.h"

namespace norvane::platform::data::Schema {

// Where a type's table is; a null store means nowhere.
struct TablePlace {
    IDataStore* store = nullptr;
    std::uint32_t offset = 0;
};

// Keeps the stores to search and every layout made so far.
//
// Which store wins when several hold a table at one path is not defined: they are asked in the order of a
// hash map.
//
// Threads. A name that is cached is answered from any thread without a lock and without the store. A miss
// reads records and opens the type's table, without the store's guard: that is the caller's to see to. Two
// threads that miss one name both make its layout; the later one's is cached, and the earlier one's stays
// alive beside it for the schemas that hold it. `mutex_` covers the set of stores and the ownership of the
// layouts; it is never held while a record is read or a table closed, because a host's store may wait there
// for a thread that waits for us.
class SchemaLocatorImpl final : public metadata::ISchemaLocator {
  public:
    SchemaLocatorImpl() = default;
    SchemaLocatorImpl(const SchemaLocatorImpl&) = delete;
    SchemaLocatorImpl& operator=(const SchemaLocatorImpl&) = delete;
    ~SchemaLocatorImpl() noexcept(false) override;

    SharedPtr<metadata::ISchema> locate(WideString names) override;
    void addStore(IDataStore* store) override;
    bool removeStore(IDataStore* store) override;
    void clearStores() override;

    // Whether there is a type of that one name, which is not made here.
    bool knows(std::u16string_view name) { return cached(name) || tableNamed(name).store; }

    // For the search of a type.
    Layout* cached(std::u16string_view name) const noexcept { return layoutCache_.find(name); }
    TablePlace tableNamed(std::u16string_view name);
    Layout* publish(Owned<Layout> layout);

  private:
    struct StoreCompare {
        static std::size_t hash(const IDataStore* store);
        static bool equal(const IDataStore* left, const IDataStore* right) { return left == right; }
    };
    using StoreSet =
        tbb::concurrent_hash_map<IDataStore*, bool, StoreCompare,
                                 tbb::cache_aligned_allocator<std::pair<IDataStore* const, bool>>>;

    // A layout whose store goes.
    struct Leaving {
        Layout* layout;
        bool isDeleted;  // else another one has replaced it, and it stays for the schemas that hold it
    };

    using StoreList = std::shared_ptr<const std::vector<IDataStore*>>;

    StoreList stores();
    StoreList listWithout(const IDataStore* store) const;
    std::vector<Leaving> takeLayoutsOn(IDataStore* store);
    bool uncache(Layout* layout);

    UnwindingCheck unwinding_;
    std::mutex mutex_;
    LayoutCache layoutCache_;
    StoreSet storeSet_;
    StoreList storeList_ = listWithout(nullptr);  // what is in the set: going through it takes too long
    std::vector<Layout*> owned_;                  // cached ones, and those that another thread's has replaced
    RootLookup roots_;
};

}  // namespace norvane::platform::data::Schema
