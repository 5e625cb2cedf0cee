// What tests of the model share: a store that logs, with a root in it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/LoggingStore.h"
#include "support/ModelBuilder.h"

namespace norvane::platform::test {

namespace Design = data::Design;
namespace Metadata = data::Metadata;
namespace Record = data::Record;
namespace Structural = data::Structural;

using core::storage::datastore::MemoryDataStore;
using data::Owned;
using Metadata::Item;
using Metadata::Opening;
using Metadata::Root;
using Metadata::Set;
using Structural::Container;
using testing::ElementsAre;
using testing::IsEmpty;

inline constexpr Offset kUnlisted = ModelBuilder::kUnlisted;

// A call that changes a store, as a few words: "append 5", "write 3 size 40", "count 3" for a write of the
// open count alone, "extend 7", "remove 2".
inline std::string wordsOf(const StoreCall& call) {
    if (call.name == "append") return "append " + std::to_string(call.size);
    if (call.name == "write" && !call.flag) return "count " + std::to_string(call.offset);
    if (call.name == "write")
        return "write " + std::to_string(call.offset) + " size " + std::to_string(call.size);
    return call.name + " " + std::to_string(call.offset);
}

class ModelTest : public testing::Test {
  public:
    ~ModelTest() noexcept override = default;

  protected:
    // The changes since the log was taken away last.
    std::vector<std::string> changes() const {
        std::vector<std::string> words;
        for (const StoreCall& call : store_.changes()) words.push_back(wordsOf(call));
        return words;
    }
    void forgetCalls() { store_.takeCalls(); }

    RecordBytes record(Offset offset) { return recordAt(store_, offset); }
    Offset openCount(Offset offset) { return openCountOf(store_, offset); }

    // Everything that is stored now, by offset.
    std::vector<std::string> contents() {
        std::vector<std::string> records;
        for (Offset offset = 0; offset < store_.size(); ++offset)
            records.push_back(recordAt(store_, offset).bytes());
        return records;
    }

    LoggingStore store_;
    ModelBuilder build_{store_};
    const Offset root_ = build_.root();
};

}  // namespace norvane::platform::test
