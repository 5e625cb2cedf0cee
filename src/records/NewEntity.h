// Entities that are made whole before they are stored.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "records/Records.h"
#include "records/SmallBlock.h"

namespace norvane::platform::data::Record {

// The bytes of an entity that is not in the store yet: one append, instead of an append and a rewrite for
// each thing that is known of it. Few need memory of their own.
//
// Sections are added in the order of the format, and each but those that are absent once.
class NewEntity {
  public:
    // Without sections; it has no parent and leads nowhere.
    explicit NewEntity(Kind kind);
    NewEntity(const NewEntity&) = delete;
    NewEntity& operator=(const NewEntity&) = delete;

    template <class T>
    void set(Field<T> field, T value) {
        std::memcpy(block_.bytes() + field.position, &value, sizeof(T));
    }

    // The place of the section's bytes, which are not set, until the next section comes.
    std::byte* addSection(U32 sizeField, std::uint64_t size);
    // The text with its NUL.
    void addText(U32 sizeField, std::u16string_view text);

    std::uint32_t size() const { return size_; }
    // Gives the offset.
    std::uint32_t appendTo(IDataStore* store) const { return store->append(block_.bytes(), size_); }

  private:
    SmallBlock<512> block_;
    std::uint32_t size_;
};

}  // namespace norvane::platform::data::Record
