// Short-lived objects that read, build and rewrite records. They are locals of one operation: nothing keeps
// one across calls, because the record in the store is always the truth.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string_view>

#include "norvane/platform/core/Types.h"
#include "norvane/platform/core/memory/PooledHeap.h"
#include "norvane/platform/core/storage/datastore/IDataStore.h"
#include "records/Fields.h"
#include "records/View.h"

namespace norvane::platform::data {

using core::tWChar;
using core::storage::datastore::IDataStore;

// Thrown where a size that was asked for does not fit a record; no smaller record is ever made instead.
class TooLarge : public std::bad_alloc {
  public:
    const char* what() const noexcept override { return "value too large for a record"; }
};

namespace Record {

// A size as records hold it. Throws `TooLarge` above 32 bits.
inline std::uint32_t checkedSize(std::uint64_t size) {
    if (size > 0xFFFFFFFFu) throw TooLarge();
    return static_cast<std::uint32_t>(size);
}

// Bytes of a text with its NUL.
inline std::uint64_t storedSize(std::u16string_view text) { return (std::uint64_t{text.size()} + 1) * 2; }

// The text up to its first NUL; a null pointer is the empty text.
inline std::u16string_view textOf(const tWChar* text) {
    return text ? std::u16string_view(text) : std::u16string_view();
}

// The first byte of the record; `kNoKind` for an offset that holds none. A root is only taken for one when
// its record is there, since the byte of an absent record reads as a root's.
std::uint8_t kindOf(IDataStore* store, std::uint32_t offset);

// A block of `PooledHeap`, given back with the size it was taken with.
class Block {
  public:
    Block() = default;
    explicit Block(std::uint32_t capacity);
    Block(Block&& other) noexcept;
    Block& operator=(Block&& other) noexcept;
    ~Block() {
        if (capacity_ != 0) core::memory::PooledHeap::free(bytes_, capacity_);
    }

    std::byte* bytes() const { return bytes_; }
    std::uint32_t capacity() const { return capacity_; }

  private:
    std::byte* bytes_ = nullptr;
    std::uint32_t capacity_ = 0;
};

// A record to look at and not to change: in place where the store offers a view, else a copy. Empty when
// there is no such record. It must not be looked at after the next change of the store.
class Snapshot {
  public:
    Snapshot(IDataStore* store, std::uint32_t offset) {
        if (offset == IDataStore::BADOFF) return;
        std::uint32_t size = 0;
        if (const void* bytes = store->view(offset, size))
            view_ = View(bytes, size);
        else
            copy(store, offset);
    }

    const View& operator*() const { return view_; }
    const View* operator->() const { return &view_; }

  private:
    void copy(IDataStore* store, std::uint32_t offset);

    Block copy_;
    View view_;
};

// A record being built or rewritten: the whole of its bytes in a buffer of its size class.
class Base {
  public:
    // No record yet: the first `commit` appends it.
    explicit Base(IDataStore* store);
    // Reads the record; of size 0 when there is none.
    Base(IDataStore* store, std::uint32_t offset);
    Base(const Base&) = delete;
    Base& operator=(const Base&) = delete;
    virtual ~Base();

    std::uint32_t offset() const { return offset_; }
    std::uint32_t size() const { return size_; }
    std::uint32_t capacity() const { return buffer_.capacity(); }
    std::byte* bytes() { return buffer_.bytes(); }
    View view() const { return {buffer_.bytes(), size_}; }

    // Changes a field in the buffer; does nothing where the record is too short to have it.
    template <class T>
    void set(Field<T> field, T value) {
        if (std::uint64_t{field.position} + sizeof(T) <= size_)
            std::memcpy(buffer_.bytes() + field.position, &value, sizeof(T));
    }

    // Drops the bytes and takes `size` zero ones.
    void allocate(std::uint32_t size);
    // Lengthens the record by zero bytes.
    void grow(std::uint32_t delta);
    // Appends a record that has no offset, rewrites one that has. A record that was not there stays so.
    void commit();
    // Rewrites the record for the sake of its open count alone.
    void writeBookkeeping();

  protected:
    IDataStore* store_;
    std::uint32_t offset_;
    std::uint32_t size_ = 0;  // ahead of the buffer, whose reading sets it
    Block buffer_;
};

// A root, a container, a primitive or a table that is there; `NewEntity` makes one.
class Entity : public Base {
  public:
    using Base::Base;

    // Makes a section out of `data` and as many zero bytes behind it, in the buffer, and keeps all the
    // others. `sizeField` is one of the record's own kind. A section that a damaged record cuts short is kept
    // as far as it goes, and its size field then says so. `data` may lie in this record's buffer.
    void replaceSection(U32 sizeField, const void* data, std::uint64_t dataSize, std::uint64_t zeros = 0);
    // The same, and commits.
    void setField(U32 sizeField, const void* data, std::uint64_t dataSize, std::uint64_t zeros = 0);
    // Whether the store takes the record with a section of that size in place of the one it has.
    bool takes(U32 sizeField, std::uint64_t sectionSize) const;
};

// A growing list of 32-bit values; how many there are follows from the record's size.
class Offsets : public Base {
  public:
    using Base::Base;
    // Appends an empty list.
    explicit Offsets(IDataStore* store);

    std::uint32_t count() const { return view().valueCount(); }
    // Slots that are skipped over read as 0. Commits. Does nothing to a list that is not there.
    void setAt(std::uint32_t index, std::uint32_t value);
    // Takes out the first slot of that value, if any. Commits only then.
    bool removeValue(std::uint32_t value);
    // Adds values at the end and commits once.
    void append(const std::uint32_t* values, std::size_t count);
};

// Takes the first slot of that value out of the list there, if it is a whole one. The same as `removeValue`,
// but where the store can, all happens in place. False if there is no such slot.
bool removeListed(IDataStore* store, std::uint32_t offset, std::uint32_t value);

// Pairs of NUL-terminated texts: a locale and what is said in it.
class Locale : public Base {
  public:
    using Base::Base;
    // Appends a record without pairs.
    explicit Locale(IDataStore* store);
    void setPayload(const void* payload, std::uint64_t payloadSize);
};

// Appends a list of one value.
std::uint32_t appendList(IDataStore* store, std::uint32_t value);

// Changes bytes inside a record and nothing else of it; does nothing where the record does not have them.
// `flag` is false for the open count alone.
void storeBytes(IDataStore* store, std::uint32_t offset, std::uint64_t position, const void* bytes,
                std::uint32_t size, bool flag);

template <class T>
void storeField(IDataStore* store, std::uint32_t offset, Field<T> field, T value, bool flag = true) {
    storeBytes(store, offset, field.position, &value, sizeof(T), flag);
}

// Adds to the open count of the entity there, if there is one.
void addToOpenCount(IDataStore* store, std::uint32_t offset, std::uint32_t change);

}  // namespace Record
}  // namespace norvane::platform::data
