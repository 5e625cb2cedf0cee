// The model's walks in their plain form: one record read, changed and written at a time, children one by one,
// every level a call of its own, every object counted in and out of its record. Slow, and only for sound
// stores; the library must leave the same records, append and remove in the same order, and answer the same.
#pragma once

#include <memory>
#include <sparsehash/dense_hash_map>
#include <string>
#include <vector>

#include "norvane/platform/core/Compare.h"
#include "norvane/platform/core/string/KeyHash.h"
#include "support/RecordBytes.h"

namespace norvane::platform::test::reference {

using Offset = std::uint32_t;

// A record that is changed in place and stored with its new bytes.
struct PlainRecord {
    PlainRecord(IDataStore& from, Offset at) : store(from), offset(at), bytes(recordAt(from, at).bytes()) {}

    std::uint8_t u8(std::size_t position) const { return RecordBytes(bytes).u8At(position); }
    std::uint32_t u32(std::size_t position) const { return RecordBytes(bytes).u32At(position); }
    void put(std::size_t position, const std::string& value) { bytes.replace(position, value.size(), value); }
    void putU32(std::size_t position, std::uint32_t value) {
        put(position, RecordBytes().u32(value).bytes());
    }
    void putU8(std::size_t position, unsigned value) { put(position, RecordBytes().u8(value).bytes()); }
    void write(bool flag = true) {
        store.write(offset, bytes.data(), static_cast<std::uint32_t>(bytes.size()), flag);
    }

    IDataStore& store;
    Offset offset;
    std::string bytes;
};

inline unsigned firstByte(IDataStore& store, Offset offset) {
    unsigned char kind = 0;
    store.read(offset, &kind, 1);
    return kind;
}

inline std::u16string textAt(const PlainRecord& record, std::size_t position) {
    std::u16string text;
    for (char16_t unit = 0;; position += 2) {
        unit = static_cast<char16_t>(record.u8(position) | record.u8(position + 1) << 8);
        if (unit == 0) return text;
        text.push_back(unit);
    }
}

inline std::u16string nameIn(const PlainRecord& record) {
    switch (record.u8(0)) {
        case 0:
            return textAt(record, 22);
        case 1:
            return textAt(record, 42 + record.u32(26));
        case 2:
            return textAt(record, 34);
        default:
            return textAt(record, 31);
    }
}

inline std::vector<std::uint32_t> valuesOf(IDataStore& store, Offset list) {
    std::vector<std::uint32_t> values;
    const PlainRecord record(store, list);
    for (std::size_t i = 0; i < (record.bytes.size() - 1) / 4; ++i) values.push_back(record.u32(1 + i * 4));
    return values;
}

inline Offset appendBytes(IDataStore& store, const std::string& bytes) {
    return store.append(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

// An object that is open on a primitive, table or container.
class Opened {
  public:
    Opened(IDataStore& store, Offset offset) : record_(store, offset) { count(1); }
    ~Opened() noexcept(false) { count(-1); }

  private:
    void count(int change) {
        PlainRecord record(record_.store, record_.offset);
        record.putU32(5, record.u32(5) + static_cast<std::uint32_t>(change));
        record.write(false);
    }
    PlainRecord record_;
};

inline bool hasObject(unsigned kind) { return kind == 1 || kind == 2 || kind == 4; }

// The hash map in whose order children are deleted.
struct NameHash {
    std::size_t operator()(const char16_t* name) const {
        return core::string::wideKeyHash(name, std::u16string_view(name).size());
    }
};
struct SameName {
    bool operator()(const char16_t* a, const char16_t* b) const {
        return a == b || (a && b && std::u16string_view(a) == b);
    }
};
using NameTable = google::dense_hash_map<const char16_t*, std::size_t, NameHash, SameName>;

// Indices of the names in table order. Names that were there before are not among them.
inline std::vector<std::size_t> tableOrder(const std::vector<std::u16string>& names) {
    const auto table = std::make_unique<NameTable>();
    table->set_empty_key(u"$$$$$_____empty_key");
    table->set_deleted_key(u"$$$$$_____deleted_key");
    for (std::size_t i = 0; i < names.size(); ++i) table->insert({names[i].c_str(), i});
    std::vector<std::size_t> order;
    for (const auto& [name, index] : *table) order.push_back(index);
    return order;
}

// The children that a freshly opened set indexes, in table order.
inline std::vector<Offset> indexedChildren(IDataStore& store, Offset list) {
    std::vector<Offset> offsets;
    std::vector<std::u16string> names;
    if (list == IDataStore::BADOFF) return offsets;
    for (const Offset child : valuesOf(store, list)) {
        if (!hasObject(firstByte(store, child))) continue;
        offsets.push_back(child);
        names.push_back(nameIn(PlainRecord(store, child)));
    }
    std::vector<Offset> ordered;
    for (const std::size_t index : tableOrder(names)) ordered.push_back(offsets[index]);
    return ordered;
}

inline Offset cloneEntity(IDataStore& source, Offset offset, IDataStore& target);

inline Offset cloneRecord(IDataStore& source, Offset offset, IDataStore& target) {
    if (offset == IDataStore::BADOFF) return offset;
    return appendBytes(target, PlainRecord(source, offset).bytes);
}

inline Offset cloneChildren(IDataStore& source, Offset list, IDataStore& target, Offset newParent) {
    if (list == IDataStore::BADOFF) return list;
    PlainRecord copies(target, appendBytes(target, std::string(1, '\3')));
    for (const Offset child : valuesOf(source, list)) {
        Offset copied = child;
        if (hasObject(firstByte(source, child))) {
            const Opened open(source, child);
            copied = cloneEntity(source, child, target);
            PlainRecord copy(target, copied);
            copy.putU32(1, newParent);
            copy.write();
        }
        copies.bytes += RecordBytes().u32(copied).bytes();
        copies.write();
    }
    return copies.offset;
}

// What an object open on the entity does when it is asked for a copy.
inline Offset cloneEntity(IDataStore& source, Offset offset, IDataStore& target) {
    const PlainRecord entity(source, offset);
    PlainRecord copy(target, appendBytes(target, entity.bytes));
    copy.putU32(9, cloneRecord(source, entity.u32(9), target));
    if (entity.u8(0) != 1) copy.putU32(14, cloneChildren(source, entity.u32(14), target, copy.offset));
    if (entity.u8(0) == 2) copy.putU32(22, cloneRecord(source, entity.u32(22), target));
    copy.putU32(5, 0);
    copy.write();
    return copy.offset;
}

// Opens the entity and copies it.
inline Offset cloneAt(IDataStore& source, Offset offset, IDataStore& target) {
    const Opened open(source, offset);
    return cloneEntity(source, offset, target);
}

inline void eraseChildren(IDataStore& store, Offset list);

// What an object open on the entity does ahead of the entity's own removal.
inline void eraseEntity(IDataStore& store, Offset offset) {
    const PlainRecord entity(store, offset);
    if (entity.u32(9) != IDataStore::BADOFF) store.remove(entity.u32(9));
    if (entity.u8(0) != 1) eraseChildren(store, entity.u32(14));
    if (entity.u8(0) == 2 && entity.u32(22) != IDataStore::BADOFF) store.remove(entity.u32(22));
    PlainRecord erased(store, offset);
    erased.putU32(9, IDataStore::BADOFF);
    if (entity.u8(0) != 1) erased.putU32(14, IDataStore::BADOFF);
    if (entity.u8(0) == 2) erased.putU32(22, IDataStore::BADOFF);
    erased.write();
}

inline void eraseChildren(IDataStore& store, Offset list) {
    if (list == IDataStore::BADOFF) return;
    const auto remove = [&store](Offset child) {
        {
            const Opened open(store, child);
            eraseEntity(store, child);
        }
        store.remove(child);
    };
    for (const Offset child : indexedChildren(store, list)) remove(child);
    // The index leads to the first of equal names only.
    for (const Offset child : valuesOf(store, list))
        if (hasObject(firstByte(store, child))) remove(child);
    store.remove(list);
}

// Whether an object that is open on the entity may delete it.
inline bool isRemovable(IDataStore& store, Offset offset) {
    const PlainRecord entity(store, offset);
    if (entity.u8(0) == 1) return entity.u32(5) == 1;
    if (entity.u32(5) > 1) return false;
    if (entity.u32(14) == IDataStore::BADOFF) return true;
    // Also those that the index does not lead to: they are deleted as well.
    for (const Offset child : valuesOf(store, entity.u32(14))) {
        if (!hasObject(firstByte(store, child))) continue;
        const Opened open(store, child);
        if (!isRemovable(store, child)) return false;
    }
    return true;
}

inline void markInherited(IDataStore& store, Offset offset) {
    const unsigned kind = firstByte(store, offset);
    if (!hasObject(kind)) return;
    const Offset list = kind == 1 ? Offset{IDataStore::BADOFF} : PlainRecord(store, offset).u32(14);
    if (list != IDataStore::BADOFF)
        for (const Offset child : valuesOf(store, list)) markInherited(store, child);
    PlainRecord entity(store, offset);
    entity.putU8(13, entity.u8(13) | 6u);
    entity.write();
}

// A root, table or container with its index of children as it was when it was opened, and its own changes.
class PlainSet {
  public:
    PlainSet(IDataStore& store, Offset offset) : store_(store), offset_(offset) {
        PlainRecord record(store, offset);
        list_ = record.u32(14);
        record.putU32(5, record.u32(5) + 1);
        record.write(false);
        load();
    }
    PlainSet(const PlainSet&) = delete;
    PlainSet& operator=(const PlainSet&) = delete;
    ~PlainSet() noexcept(false) {
        PlainRecord record(store_, offset_);
        record.putU32(5, record.u32(5) - 1);
        record.write(false);
    }

    Offset find(const std::u16string& name) const {
        for (const auto& [known, offset] : index_)
            if (known == name) return offset;
        return IDataStore::BADOFF;
    }

    Offset resolve(const std::u16string& path) const {
        const std::size_t dot = path.find(u'.');
        const Offset first = find(path.substr(0, dot));
        if (dot == path.npos || first == IDataStore::BADOFF) return first;
        return resolvePath(store_, first, path.substr(dot + 1));
    }

    static Offset resolvePath(IDataStore& store, Offset start, std::u16string path) {
        std::vector<std::u16string> parts;
        for (std::size_t dot = 0; (dot = path.find(u'.')) != path.npos; path.erase(0, dot + 1))
            parts.push_back(path.substr(0, dot));
        parts.push_back(path);
        Offset current = start;
        bool hasFailed = false;
        for (const std::u16string& part : parts) {
            if (hasFailed || store.recordSize(current) == 0) return IDataStore::BADOFF;
            const unsigned kind = firstByte(store, current);
            if (kind == 0 || kind == 2 || kind == 4) {
                current = PlainSet(store, current).find(part);
                hasFailed = current == IDataStore::BADOFF;
            } else {
                hasFailed = true;
            }
        }
        return current;
    }

    std::size_t childCount() const { return index_.size(); }
    // Past the end there is nothing.
    Offset childAt(std::size_t index) const {
        if (list_ == IDataStore::BADOFF) return list_;
        const std::vector<Offset> values = valuesOf(store_, list_);
        return index < values.size() ? values[index] : Offset{IDataStore::BADOFF};
    }

    bool addChild(Offset child) {
        if (!hasObject(firstByte(store_, child))) return false;
        PlainRecord record(store_, child);
        const std::u16string name = nameIn(record);
        if (find(name) != IDataStore::BADOFF) return false;
        record.putU32(1, offset_);
        record.write();
        index_.push_back({name, child});
        if (list_ == IDataStore::BADOFF) list_ = PlainRecord(store_, offset_).u32(14);  // made by another
        if (list_ != IDataStore::BADOFF) {
            store_.extend(list_, &child, 4);
            return true;
        }
        PlainRecord list(store_, appendBytes(store_, std::string(1, '\3')));
        list.bytes += RecordBytes().u32(child).bytes();
        list.write();
        list_ = list.offset;
        PlainRecord own(store_, offset_);
        own.putU32(14, list_);
        own.write();
        return true;
    }

    bool removeChild(const std::u16string& name) {
        const Offset child = find(name);
        if (child == IDataStore::BADOFF) return false;
        if (hasObject(firstByte(store_, child))) {
            {
                const Opened open(store_, child);
                if ((PlainRecord(store_, child).u8(13) & 2) != 0) return false;
                if (!isRemovable(store_, child)) return false;
            }
            const Opened open(store_, child);
            eraseEntity(store_, child);
        }
        store_.remove(child);
        std::erase_if(index_, [&name](const auto& entry) { return entry.first == name; });
        PlainRecord list(store_, list_);
        const std::vector<Offset> values = valuesOf(store_, list_);
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (values[i] != child) continue;
            list.bytes.erase(1 + 4 * i, 4);
            list.write();
            break;
        }
        return true;
    }

    bool renameChild(const std::u16string& oldName, const std::u16string& newName) {
        if (find(newName) != IDataStore::BADOFF) return false;
        const Offset child = find(oldName);
        if (child == IDataStore::BADOFF) return false;
        PlainRecord record(store_, child);
        if (!record.bytes.empty() && hasObject(record.u8(0))) {
            if ((record.u8(13) & 2) != 0) return false;
            const unsigned kind = record.u8(0);
            const std::size_t sizeField = kind == 1 ? 30 : kind == 2 ? 26 : 19;
            const std::size_t begin = kind == 1 ? 42 + record.u32(26) : kind == 2 ? 34 : 31;
            const std::uint32_t size = static_cast<std::uint32_t>((newName.size() + 1) * 8);
            std::string field = RecordBytes().text(newName).bytes();
            field.resize(size, '\0');
            record.bytes.replace(begin, record.u32(sizeField), field);
            record.putU32(sizeField, size);
            record.write();
        }
        for (auto& entry : index_)
            if (entry.first == oldName) entry.first = newName;
        return true;
    }

    void importChild(IDataStore& source, Offset child) {
        Offset copy = IDataStore::BADOFF;
        if (hasObject(firstByte(source, child))) {
            const Opened open(source, child);
            if (find(nameIn(PlainRecord(source, child))) == IDataStore::BADOFF)
                copy = cloneEntity(source, child, store_);
        }
        addChild(copy);
        markInherited(store_, copy);
    }

    void reloadChildren() {
        list_ = PlainRecord(store_, offset_).u32(14);
        load();
    }

  private:
    void load() {
        index_.clear();
        if (list_ == IDataStore::BADOFF) return;
        for (const Offset child : valuesOf(store_, list_)) {
            if (!hasObject(firstByte(store_, child))) continue;
            const std::u16string name = nameIn(PlainRecord(store_, child));
            if (find(name) == IDataStore::BADOFF) index_.push_back({name, child});
        }
    }

    IDataStore& store_;
    Offset offset_;
    Offset list_ = IDataStore::BADOFF;
    std::vector<std::pair<std::u16string, Offset>> index_;
};

}  // namespace norvane::platform::test::reference
