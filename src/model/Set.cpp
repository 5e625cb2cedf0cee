#include "model/Set.h"

#include <memory>

#include "model/Open.h"
#include "model/Subtree.h"

namespace norvane::platform::data::Metadata {

namespace field = Record::field;

namespace {

// The field is four times as long as the text needs; what lies behind the text is zero. False when such a
// field does not fit.
bool storeName(Record::Entity& record, std::u16string_view name) {
    const Record::U32 sizeField = Record::nameSizeField(static_cast<Record::Kind>(record.view().kind()));
    const std::uint64_t size = Record::storedSize(name);
    if (!record.takes(sizeField, size * 4)) return false;
    record.setField(sizeField, name.data(), size - 2, size * 3 + 2);
    return true;
}

}  // namespace

Set::Set() noexcept : childrenRecord_(IDataStore::BADOFF) {}

Set::~Set() { dropIndex(); }

void Set::indexChildren(Opening opening) {
    indexed_ = false;
    if (opening == Opening::handle) loadChildren();
}

void Set::loadChildren() {
    indexed_ = false;  // until the index is complete the list answers
    dropIndex();
    const Record::Snapshot list(store(), childrenRecord_);
    const std::uint32_t count = list->isWhole(Record::Kind::offsets) ? list->valueCount() : 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const Record::Snapshot child(store(), list->value(i));
        if (Record::isChildKind(child->kind())) insert(list->value(i), child->name());
    }
    indexed_ = true;
}

// The first of equal names stays; the later one's entry is not kept.
void Set::insert(std::uint32_t offset, std::u16string name) {
    auto entry = std::make_unique<ChildEntry>(ChildEntry{offset, std::move(name)});
    if (index_.insert(entry->name, entry.get())) static_cast<void>(entry.release());
}

void Set::dropIndex() {
    index_.forEach([](ChildEntry* entry) { delete entry; });
    index_.clear();
}

void Set::reloadChildren() {
    indexed_ = false;
    bindChildren(*Record::Snapshot(store(), offset()));
    loadChildren();
}

std::uint32_t Set::find(std::u16string_view name) {
    if (!indexed_) return findChild(store(), offset(), name);
    ChildEntry* const* found = index_.find(name);
    return found ? (*found)->offset : std::uint32_t{IDataStore::BADOFF};
}

std::uint32_t Set::resolve(std::u16string_view path) {
    const std::size_t dot = path.find(u'.');
    const std::uint32_t first = find(path.substr(0, dot));
    if (dot == path.npos || first == IDataStore::BADOFF) return first;
    return resolvePath(store(), first, path.substr(dot + 1));
}

std::uint32_t Set::childAt(std::uint32_t index) {
    const Record::Snapshot list(store(), childrenRecord_);
    const bool isThere = list->isWhole(Record::Kind::offsets) && index < list->valueCount();
    return isThere ? list->value(index) : std::uint32_t{IDataStore::BADOFF};
}

std::uint32_t Set::childCount() {
    if (!indexed_) loadChildren();
    return index_.size();
}

std::vector<std::uint32_t> Set::children() { return listedChildren(store(), childrenRecord_); }

std::vector<std::uint32_t> Set::countedChildren() {
    std::vector<std::uint32_t> counted = children();
    counted.resize(childCount(), IDataStore::BADOFF);
    return counted;
}

bool Set::addChild(std::uint32_t offset) {
    if (!isStored()) return false;
    std::u16string name;
    {
        const Record::Snapshot child(store(), offset);
        if (!child->isWholeChild()) return false;
        name = child->name();
    }
    if (find(name) != IDataStore::BADOFF) return false;
    Record::storeField(store(), offset, field::parent, this->offset());
    if (indexed_) insert(offset, std::move(name));
    link(offset);
    return true;
}

// Another object may have made the list since this one was opened; a second list would lose its children.
// Only the kind is read: the list may be long, and it is asked for at each new child.
bool Set::adoptList() {
    const auto isList = [this](std::uint32_t record) {
        return Record::kindOf(store(), record) == static_cast<std::uint8_t>(Record::Kind::offsets);
    };
    if (isList(childrenRecord_)) return true;
    childrenRecord_ = Record::Snapshot(store(), offset())->load(field::children);
    return isList(childrenRecord_);
}

void Set::link(std::uint32_t offset) {
    if (adoptList()) {
        store()->extend(childrenRecord_, &offset, sizeof offset);
        return;
    }
    Record::Offsets list(store());
    list.append(&offset, 1);
    childrenRecord_ = list.offset();
    Record::storeField(store(), this->offset(), field::children, childrenRecord_);
}

bool Set::removeChild(std::u16string_view name) {
    const std::uint32_t child = find(name);
    if (child == IDataStore::BADOFF) return false;
    const std::uint8_t kind = Record::kindOf(store(), child);
    if (Record::isChildKind(kind)) {
        if ((Record::Snapshot(store(), child)->load(field::flags) & Record::kFixed) != 0) return false;
        if (!isSubtreeClosed(store(), child)) return false;
        eraseSubtree(store(), child);
    }
    store()->remove(child);
    if (ChildEntry* const* found = index_.find(name)) {
        const std::unique_ptr<ChildEntry> entry(*found);
        index_.erase(name);
    }
    Record::Offsets list(store(), childrenRecord_);
    if (list.view().isWhole(Record::Kind::offsets)) list.removeValue(child);
    return true;
}

bool Set::renameChild(std::u16string_view oldName, std::u16string_view newName) {
    if (find(newName) != IDataStore::BADOFF) return false;
    const std::uint32_t child = find(oldName);
    if (child == IDataStore::BADOFF) return false;
    Record::Entity record(store(), child);
    if (Record::isChildKind(record.view().kind())) {
        if ((record.view().load(field::flags) & Record::kFixed) != 0) return false;
        if (!storeName(record, newName)) return false;
    }
    if (ChildEntry* const* found = index_.find(oldName)) {
        std::unique_ptr<ChildEntry> entry(*found);
        index_.erase(oldName);
        entry->name = newName;
        if (index_.insert(entry->name, entry.get())) static_cast<void>(entry.release());
    }
    return true;
}

void Set::importChild(IDataStore* sourceStore, std::uint32_t offset) {
    if (!isStored() || !Record::isChildKind(Record::kindOf(sourceStore, offset))) return;
    std::u16string name = Record::Snapshot(sourceStore, offset)->name();
    if (find(name) != IDataStore::BADOFF) return;
    const CloneChanges changes{true, this->offset(), Record::kFixed | Record::kInherited};
    const std::uint32_t copy = cloneSubtree(sourceStore, offset, store(), changes);
    if (copy == IDataStore::BADOFF) return;
    if (indexed_) insert(copy, std::move(name));
    link(copy);
}

bool Set::isRemovable() {
    if (isInert()) return true;
    if (openCount() > 1) return false;
    for (std::uint32_t child : children())
        if (!isSubtreeClosed(store(), child)) return false;
    return true;
}

void Set::erase() {
    if (isInert()) return;
    eraseLocale();
    eraseChildren();
    Record::Base record(store(), offset());
    record.set(field::children, std::uint32_t{IDataStore::BADOFF});
    record.set(field::locale, std::uint32_t{IDataStore::BADOFF});
    record.commit();
}

void Set::eraseChildren() {
    eraseListedChildren(store(), offset(), childrenRecord_);
    dropIndex();
    childrenRecord_ = IDataStore::BADOFF;
    indexed_ = true;
}

Root::Root(IDataStore* store, std::uint32_t offset, Opening opening) {
    {
        const Record::Snapshot record(store, offset);
        if (!bind(store, offset, Record::Kind::root, *record)) return;
        bindChildren(*record);
    }
    if (opening == Opening::handle) raiseOpenCount();
    indexChildren(opening);
}

Root::Root(IDataStore* store, std::u16string_view name) {
    bindNew(store, Record::Root(store, name).offset(), name);
    raiseOpenCount();
}

std::uint32_t Root::clone(IDataStore*) { return IDataStore::BADOFF; }

}  // namespace norvane::platform::data::Metadata
