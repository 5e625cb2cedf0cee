// The names of a set's children as they were when it was opened.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "records/Records.h"

namespace norvane::platform::data::Metadata {

// The children of a list with their names, put down one behind the other. Most sets are opened to be walked
// over or to be asked once or twice: an index is made of this when it is worth it.
class ListedNames {
  public:
    // Up to so many children are looked through faster than an index is made.
    static constexpr std::uint32_t kFew = 16;

    ListedNames() = default;
    ListedNames(const ListedNames&) = delete;
    ListedNames& operator=(const ListedNames&) = delete;
    ~ListedNames() { clear(); }

    // Takes those of a list's entries that can be children.
    void take(IDataStore* store, const Record::View& list);
    void clear();

    bool isEmpty() const { return count_ == 0; }
    bool isFew() const { return count_ <= kFew; }

    // The first child of that name, or BADOFF. Reserved names are not found.
    std::uint32_t find(std::u16string_view name) const;
    // How many names there are: equal ones count once, but for reserved ones. For few.
    std::uint32_t countNames() const;

    // Calls `visit(name, offset)` for each child in the order of the list.
    template <class Visit>
    void forEach(Visit visit) const {
        for (const std::byte* at = bytes_; at != bytes_ + used_; at = behind(at))
            visit(std::u16string_view(unitsAt(at), lengthAt(at)), offsetAt(at));
    }

  private:
    // Of each child its offset, the length of its name and the name, filled up to a multiple of four bytes.
    static constexpr std::size_t kHeader = 8;

    static std::uint32_t loadAt(const std::byte* at) {
        std::uint32_t value;
        std::memcpy(&value, at, sizeof value);
        return value;
    }
    static std::uint32_t offsetAt(const std::byte* at) { return loadAt(at); }
    static std::uint32_t lengthAt(const std::byte* at) { return loadAt(at + 4); }
    static const char16_t* unitsAt(const std::byte* at) {
        return reinterpret_cast<const char16_t*>(at + kHeader);
    }
    static std::size_t sizeOf(std::size_t length) { return kHeader + (length * 2 + 3) / 4 * 4; }
    static const std::byte* behind(const std::byte* at) { return at + sizeOf(lengthAt(at)); }

    void add(std::uint32_t offset, Record::Section name);
    void makeRoom(std::size_t size);

    std::byte* bytes_ = nullptr;
    std::size_t used_ = 0;
    std::size_t room_ = 0;
    std::uint32_t count_ = 0;
};

}  // namespace norvane::platform::data::Metadata
