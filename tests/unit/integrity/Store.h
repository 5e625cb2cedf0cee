// A small model, record by record, and ways to spoil it.
#pragma once

#include <gmock/gmock.h>

#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "norvane/platform/core/storage/datastore/MemoryDataStore.h"
#include "norvane/platform/data/integrity/Integrity.h"
#include "support/RecordBytes.h"

namespace norvane::platform::test {

using core::storage::datastore::MemoryDataStore;
using data::integrity::Finding;
using data::integrity::Report;
using data::integrity::Severity;

inline std::uint32_t none() { return IDataStore::BADOFF; }

inline std::uint32_t textSize(std::u16string_view text) {
    return static_cast<std::uint32_t>(text.size() + 1) * 2;
}

inline RecordBytes rootRecord(std::uint32_t children, std::u16string_view name = u"m") {
    RecordBytes record;
    record.u8(0).noRecord().u32(0).noRecord().u8(0).u32(children);
    return record.u32(textSize(name)).text(name);
}

inline RecordBytes groupRecord(std::uint32_t parent, std::uint32_t children, std::u16string_view name) {
    RecordBytes record;
    record.u8(4).u32(parent).u32(0).noRecord().u8(0).u32(children);
    return record.u8(1).u32(textSize(name)).u32(0).u32(0).text(name);
}

inline RecordBytes tableRecord(std::uint32_t parent, std::uint32_t children, std::uint32_t defaults,
                               std::u16string_view name) {
    RecordBytes record;
    record.u8(2).u32(parent).u32(0).noRecord().u8(0).u32(children);
    return record.u32(0).u32(defaults).u32(textSize(name)).u32(0).text(name);
}

inline RecordBytes primitiveRecord(std::uint32_t parent, std::uint32_t type, std::u16string_view name,
                                   const RecordBytes& value = {}) {
    RecordBytes record;
    record.u8(1).u32(parent).u32(0).noRecord().u8(0).u32(0);
    record.u32(0).u32(type).u32(0).u32(textSize(name)).u32(0).u32(value.size());
    return record.text(name).raw(value.bytes());
}

inline RecordBytes localeRecord(const RecordBytes& payload) {
    return RecordBytes().u8(5).u32(payload.size()).raw(payload.bytes());
}

// The record with other bytes at a position.
inline RecordBytes with(const RecordBytes& record, std::size_t position, const RecordBytes& bytes) {
    std::string changed = record.bytes();
    changed.replace(position, bytes.size(), bytes.bytes());
    return RecordBytes(changed);
}

inline RecordBytes u8(unsigned value) { return RecordBytes().u8(value); }
inline RecordBytes u32(std::uint64_t value) { return RecordBytes().u32(value); }

inline std::string wordOf(Severity severity) {
    return severity == Severity::error ? "error" : severity == Severity::warning ? "warning" : "note";
}

// Each finding as "severity code offset path"; no offset for the store as a whole.
inline std::vector<std::string> wordsOf(const std::vector<Finding>& findings) {
    std::vector<std::string> words;
    for (const Finding& each : findings) {
        std::string word = wordOf(each.severity) + " " + each.code;
        if (each.offset != IDataStore::BADOFF) word += " " + std::to_string(each.offset);
        if (!each.path.empty()) word += " " + each.path;
        words.push_back(word);
    }
    return words;
}

inline std::vector<std::string> checked(IDataStore& store) {
    return wordsOf(data::integrity::check(store).findings);
}

inline std::vector<std::string> errorsOf(IDataStore& store) {
    std::vector<std::string> errors = checked(store);
    std::erase_if(errors, [](const std::string& each) { return each.rfind("error", 0) != 0; });
    return errors;
}

// A root with a group g of a primitive p and a table t, with display names and defaults.
class SmallStore : public ::testing::Test {
  protected:
    static constexpr std::uint32_t kRoot = 0, kTop = 1, kG = 2, kOfG = 3, kP = 4, kT = 5, kDefaults = 6,
                                   kNames = 7;

    SmallStore() {
        store.setVersion(1);
        add(rootRecord(kTop));
        add(listOf({kG}));
        add(with(groupRecord(kRoot, kOfG, u"g"), 9, u32(kNames)));
        add(listOf({kP, kT}));
        add(primitiveRecord(kG, 12, u"p", RecordBytes().u32(7).u32(8)));
        add(tableRecord(kG, none(), kDefaults, u"t"));
        add(listOf({0x2001, 17}));
        add(localeRecord(RecordBytes().text(u"de").text(u"Ding")));
    }
    ~SmallStore() noexcept override = default;

    std::uint32_t add(const RecordBytes& record) { return appendTo(store, record); }
    void put(std::uint32_t offset, const RecordBytes& record) { putAt(store, offset, record); }
    // Other bytes in a record.
    void set(std::uint32_t offset, std::size_t position, const RecordBytes& bytes) {
        put(offset, with(recordAt(store, offset), position, bytes));
    }
    void addTo(std::uint32_t list, std::uint32_t value) { store.extend(list, &value, sizeof value); }

    MemoryDataStore store;
};

}  // namespace norvane::platform::test
