// An index from names to values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <sparsehash/dense_hash_map>
#include <string_view>
#include <utility>
#include <vector>

namespace norvane::platform::data {

// The two texts that the hash map takes for itself. A name that is equal to one of them can be held, counted
// and walked over, but never found.
inline constexpr std::u16string_view kEmptyKey = u"$$$$$_____empty_key";
inline constexpr std::u16string_view kDeletedKey = u"$$$$$_____deleted_key";

inline bool isReserved(std::u16string_view name) { return name == kEmptyKey || name == kDeletedKey; }

// The hash map's own allocator gives null when there is no memory left, and the map then writes there. This
// one throws. Its names are those that the map asks for.
template <class T>
struct MapAllocator {
    using value_type = T;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using pointer = T*;
    using const_pointer = const T*;
    using reference = T&;
    using const_reference = const T&;
    template <class U>
    struct rebind {
        using other = MapAllocator<U>;
    };

    MapAllocator() = default;
    template <class U>
    MapAllocator(const MapAllocator<U>&) {}

    T* allocate(std::size_t count) { return static_cast<T*>(::operator new(count * sizeof(T))); }
    void deallocate(T* block, std::size_t) { ::operator delete(block); }
    static constexpr std::size_t max_size() { return static_cast<std::size_t>(-1) / sizeof(T); }
};

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
    using Entry = std::pair<const std::u16string_view, Value>;
    using Map = google::dense_hash_map<std::u16string_view, Value, Hash, std::equal_to<std::u16string_view>,
                                       MapAllocator<Entry>>;

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
