// Looking names up below record 0, again and again.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "records/Records.h"

namespace norvane::platform::data::Schema {

// Gives what `findChild` gives for record 0, and keeps an index of its children for each store. A document in
// which every object is of no class, or of a class that nobody knows, has names looked up that are not there
// in the very store that it is read into, once for each object: only what came since is then looked at.
//
// That is sound below a root record alone. Its children are never renamed and never removed by this library,
// so that all that can happen to its list is that it gets longer. A record 0 of another kind, whose children
// do come and go, is searched afresh each time. What is found is looked at again before it is believed.
//
// Any thread may ask at any time. The mutex is never held while a record is read: who asks takes the index
// along meanwhile, and another thread that asks at the same moment makes its own.
class RootLookup {
  public:
    // The first child of record 0 with that name, or BADOFF.
    std::uint32_t find(IDataStore* store, std::u16string_view name);
    // Another store, or another content, may come to stand at this address.
    void forget(IDataStore* store);
    void forgetAll();

  private:
    struct Hash : std::hash<std::u16string_view> {
        using is_transparent = void;
    };
    // The children of one store's root, as far as they were looked at.
    struct Index {
        std::uint64_t stamp = 0;   // the store's change stamp then; 0 if it has none
        std::uint32_t list = 0;    // the record that lists the children
        std::uint32_t looked = 0;  // so many of its values were looked at,
        std::uint32_t last = 0;    // the last of which was this one
        std::unordered_map<std::u16string, std::uint32_t, Hash, std::equal_to<>> children;

        std::uint32_t find(std::u16string_view name) const;
        bool isBegunBy(const Record::View& listed, std::uint32_t listOffset) const;
        void follow(IDataStore* store, std::uint32_t listOffset);
    };

    std::unique_ptr<Index> take(IDataStore* store);
    void keep(IDataStore* store, std::unique_ptr<Index> index);

    std::mutex mutex_;
    std::unordered_map<IDataStore*, std::unique_ptr<Index>> indices_;  // null for one that is taken
};

}  // namespace norvane::platform::data::Schema
