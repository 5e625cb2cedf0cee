// Records as bytes, spelt out in tests and read from stores; failed comparisons print their dumps.
#pragma once

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "norvane/platform/core/storage/datastore/IDataStore.h"
#include "records/Dump.h"
#include "records/NewEntity.h"

namespace norvane::platform::test {

using core::storage::datastore::IDataStore;

// Bytes put one behind the other, integers little-endian.
class RecordBytes {
  public:
    RecordBytes() = default;
    explicit RecordBytes(std::string bytes) : bytes_(std::move(bytes)) {}

    RecordBytes& u8(unsigned value) { return number(value, 1); }
    RecordBytes& u32(std::uint64_t value) { return number(value, 4); }
    RecordBytes& noRecord() { return u32(IDataStore::BADOFF); }
    // The code units of a text and no NUL.
    RecordBytes& units(std::u16string_view text) {
        for (const char16_t unit : text) number(unit, 2);
        return *this;
    }
    RecordBytes& text(std::u16string_view text) { return units(text).zeros(2); }
    RecordBytes& zeros(std::size_t count) {
        bytes_.append(count, '\0');
        return *this;
    }
    RecordBytes& raw(std::string_view bytes) {
        bytes_.append(bytes);
        return *this;
    }

    const std::string& bytes() const { return bytes_; }
    const void* data() const { return bytes_.data(); }
    std::uint32_t size() const { return static_cast<std::uint32_t>(bytes_.size()); }
    data::Record::View view() const { return {bytes_.data(), size()}; }

    // A part of the bytes, as far as they go.
    std::string part(std::size_t position, std::size_t size) const {
        return bytes_.substr(std::min(position, bytes_.size()), size);
    }
    std::uint8_t u8At(std::size_t position) const { return view().loadAt<std::uint8_t>(position); }
    std::uint32_t u32At(std::size_t position) const { return view().loadAt<std::uint32_t>(position); }

    friend bool operator==(const RecordBytes& a, const RecordBytes& b) { return a.bytes_ == b.bytes_; }
    friend void PrintTo(const RecordBytes& record, std::ostream* out) {
        *out << record.size() << " bytes\n" << data::Record::dump(record.view());
    }

  private:
    RecordBytes& number(std::uint64_t value, int width) {
        for (int i = 0; i < width; ++i) bytes_.push_back(static_cast<char>(value >> (8 * i)));
        return *this;
    }

    std::string bytes_;
};

// The record there; without bytes if there is none.
inline RecordBytes recordAt(IDataStore& store, std::uint32_t offset) {
    const std::uint32_t size = offset == IDataStore::BADOFF ? 0 : store.recordSize(offset);
    std::string bytes(size, '\0');
    if (size != 0) store.read(offset, bytes.data(), core::storage::datastore::kWholeRecord);
    return RecordBytes(bytes);
}

inline std::uint32_t appendTo(IDataStore& store, const RecordBytes& record) {
    return store.append(record.data(), record.size());
}

// A new entity that has nothing but its name.
inline std::uint32_t appendNamed(IDataStore& store, data::Record::Kind kind, std::u16string_view name) {
    data::Record::NewEntity entity(kind);
    entity.addText(data::Record::nameSizeField(kind), name);
    return entity.appendTo(&store);
}

inline void putAt(IDataStore& store, std::uint32_t offset, const RecordBytes& record) {
    store.write(offset, record.data(), record.size(), true);
}

// A list record with these values.
template <class Values>
RecordBytes listOf(const Values& values) {
    RecordBytes list;
    list.u8(3);
    for (const std::uint32_t value : values) list.u32(value);
    return list;
}

inline RecordBytes listOf(std::initializer_list<std::uint32_t> values) {
    return listOf<std::initializer_list<std::uint32_t>>(values);
}

}  // namespace norvane::platform::test
