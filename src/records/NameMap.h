// An index from names to values.
#pragma once

#include <cstdint>
#include <memory>
#include <sparsehash/dense_hash_map>
#include <string_view>
#include <vector>

namespace norvane::platform::data {

// The two texts that the hash map takes for itself. A name that is equal to one of them can be held, counted
// and walked over, but never found.
inline constexpr std::u16string_view kEmptyKey = u"$$$$$_____empty_key";
inline constexpr std::u16string_view kDeletedKey = u"$$$$$_____deleted_key";

inline bool isReserved(std::u16string_view name) { return name == kEmptyKey || name == kDeletedKey; }

// Hashes the whole of a name, with a seed of the process, so that neither a long common beginning of siblings
// nor names that somebody chose to collide make an index slow. Nothing depends on its values.
std::uint64_t nameHash(std::u16string_view name);

// Maps a name to a value, the first of equal names winning. It owns no text: a key points into the entry that
// its value leads to, so that an entry is erased here before its text changes or goes.
template <class Value>
class NameMap {
  public:
    // The value of the name, or null. Valid until the map changes.
    const Value* find(std::u16string_view name) const {
        if (!map_ || isReserved(name)) return nullptr;
        const auto found = map_->find(name);
        return found == map_->end() ? nullptr : &found->second;
    }

    // False when the name is there already; a reserved name never counts as there.
    bool insert(std::u16string_view name, Value value) {
        if (isReserved(name)) {
            reserved_.push_back(std::move(value));
            return true;
        }
        if (!map_) map_ = std::make_unique<Map>(makeMap());
        return map_->insert({name, std::move(value)}).second;
    }

    void erase(std::u16string_view name) {
        if (map_ && !isReserved(name)) map_->erase(name);
    }

    void clear() {
        map_.reset();
        reserved_.clear();
    }

    std::uint32_t size() const {
        return static_cast<std::uint32_t>((map_ ? map_->size() : 0) + reserved_.size());
    }
    bool isEmpty() const { return size() == 0; }

    // Calls `visit(value)` for every entry, in no order that means anything.
    template <class Visit>
    void forEach(Visit visit) const {
        if (map_)
            for (const auto& [name, value] : *map_) visit(value);
        for (const Value& value : reserved_) visit(value);
    }

  private:
    struct Hash {
        std::size_t operator()(std::u16string_view name) const { return nameHash(name); }
    };
    using Map = google::dense_hash_map<std::u16string_view, Value, Hash>;

    static Map makeMap() {
        Map map;
        map.set_empty_key(kEmptyKey);
        map.set_deleted_key(kDeletedKey);
        return map;
    }

    std::unique_ptr<Map> map_;  // made on first use: most sets of a document are small or empty
    std::vector<Value> reserved_;
};

}  // namespace norvane::platform::data
