#include "model/Set.h"

#include <utility>

#include "model/ChildCache.h"
#include "model/Open.h"
#include "model/Subtree.h"
#include "records/ShortText.h"

namespace norvane::platform::data::Metadata {

namespace field = Record::field;

namespace {

// So many children of an unseen set are looked through in the store.
constexpr std::uint32_t kFewUnseen = 16;

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

void Set::indexChildren(Opening opening) {
    indexed_ = false;
    if (opening == Opening::handle) loadChildren();
}

// Without a view, a look at a name would be a read of all of a child's record.
void Set::beUnseen() {
    std::uint32_t size = 0;
    isUnseen_ = store()->view(offset(), size) != nullptr;
}

void Set::beSeen() {
    Item::beSeen();
    rememberAll();
}

void Set::rememberAll() {
    if (std::exchange(isUnseen_, false)) loadChildren();
}

void Set::loadChildren() {
    indexed_ = false;  // until the index is complete the list answers
    dropIndex();
    const Record::Snapshot list(store(), childrenRecord_);
    if (list->isWhole(Record::Kind::offsets)) loadList(*list);
    indexed_ = true;
}

void Set::loadList(const Record::View& list) {
    if (ChildCache* cache = ChildCache::of(store(), list.valueCount()))
        shared_ = cache->snapshot(store(), childrenRecord_);
    if (shared_)
        count_ = shared_->size();
    else
        listed_.take(store(), list);
}

// From here on the index answers, and no longer what was listed.
void Set::settle() {
    if (listed_.isEmpty()) return;
    try {
        listed_.forEach([this](std::u16string_view name, std::uint32_t offset) {
            if (own_.insert(name, offset)) ++count_;
        });
    } catch (...) {
        own_.clear();
        count_ = 0;
        throw;
    }
    listed_.clear();
}

std::uint32_t Set::lookUp(std::u16string_view name) {
    if (!listed_.isEmpty() && listed_.isFew()) return listed_.find(name);
    settle();
    const std::uint32_t* found = own_.find(name);
    if (!found && shared_) found = shared_->find(name);
    return found ? *found : std::uint32_t{IDataStore::BADOFF};
}

// A child that is about to be listed, and that `find` does not know.
void Set::remember(std::u16string_view name, std::uint32_t offset) {
    if (isUnseen_)
        rememberUnseen(name, offset);
    else if (indexed_)
        insertNew(name, offset);
}

std::uint32_t Set::findUnseen(std::u16string_view name) {
    if (count_ <= kFewUnseen) return findListed(store(), childrenRecord_, name);
    if (isReserved(name)) return IDataStore::BADOFF;
    const std::uint32_t* found = unseen_->find(ChildIndex::hashOf(name), [&](std::uint32_t child) {
        return Record::Snapshot(store(), child)->hasName(name);
    });
    return found ? *found : std::uint32_t{IDataStore::BADOFF};
}

void Set::rememberUnseen(std::u16string_view name, std::uint32_t offset) {
    if (count_ == kFewUnseen) hashUnseen();
    if (count_ >= kFewUnseen) unseen_->insert(ChildIndex::hashOf(name), offset);
    ++count_;
}

void Set::hashUnseen() {
    unseen_ = std::make_unique<ChildHashes>();
    for (const std::uint32_t child : children())
        unseen_->insert(ChildIndex::hashOf(Record::Snapshot(store(), child)->name()), child);
}

void Set::insertNew(std::u16string_view name, std::uint32_t offset) {
    settle();
    if (shared_) own_.erase(name);  // it may be hidden there
    own_.insertNew(name, offset);
    ++count_;
}

void Set::forget(std::u16string_view name) {
    settle();
    if (lookUp(name) == IDataStore::BADOFF) return;
    own_.erase(name);
    if (shared_ && shared_->find(name)) own_.insert(name, IDataStore::BADOFF);
    --count_;
}

void Set::dropIndex() {
    shared_.reset();
    listed_.clear();
    own_.clear();
    unseen_.reset();
    count_ = 0;
}

void Set::reloadChildren() {
    isUnseen_ = false;
    indexed_ = false;
    bindChildren(*Record::Snapshot(store(), offset()));
    loadChildren();
}

std::uint32_t Set::find(std::u16string_view name) {
    if (isUnseen_) return findUnseen(name);
    return indexed_ ? lookUp(name) : findChild(store(), offset(), name);
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
    if (!listed_.isEmpty() && listed_.isFew()) return listed_.countNames();
    settle();
    return count_;
}

std::vector<std::uint32_t> Set::children() { return listedChildren(store(), childrenRecord_); }

std::vector<std::uint32_t> Set::countedChildren() {
    std::vector<std::uint32_t> counted = children();
    counted.resize(childCount(), IDataStore::BADOFF);
    return counted;
}

bool Set::addChild(std::uint32_t offset) {
    if (!isHere()) return false;
    Record::ShortText name;
    {
        const Record::Snapshot child(store(), offset);
        if (!child->isWholeChild()) return false;
        name = child->nameSection();
    }
    if (find(name.view()) != IDataStore::BADOFF) return false;
    Record::storeField(store(), offset, field::parent, this->offset());
    remember(name.view(), offset);
    link(offset);
    return true;
}

bool Set::hasRoomFor(std::u16string_view name) { return isHere() && find(name) == IDataStore::BADOFF; }

std::uint32_t Set::appendChild(Record::NewEntity& child, std::u16string_view name) {
    child.set(field::parent, offset());
    const std::uint32_t added = child.appendTo(store());
    remember(name, added);
    link(added);
    return added;
}

// Another object may have made the list since this one was opened; a second list would lose its children.
// Only the kind is read: the list may be long, and it is asked for at each new child.
bool Set::adoptList() {
    const auto isList = [this](std::uint32_t record) {
        return Record::kindOf(store(), record) == static_cast<std::uint8_t>(Record::Kind::offsets);
    };
    if (isUnseen_) return childrenRecord_ != IDataStore::BADOFF;
    if (isList(childrenRecord_)) return true;
    childrenRecord_ = Record::Snapshot(store(), offset())->load(field::children);
    return isList(childrenRecord_);
}

void Set::link(std::uint32_t offset) {
    if (adoptList()) {
        store()->extend(childrenRecord_, &offset, sizeof offset);
        return;
    }
    childrenRecord_ = Record::appendList(store(), offset);
    Record::storeField(store(), this->offset(), field::children, childrenRecord_);
}

bool Set::removeChild(std::u16string_view name) {
    rememberAll();
    const std::uint32_t child = find(name);
    if (child == IDataStore::BADOFF) return false;
    const std::uint8_t kind = Record::kindOf(store(), child);
    if (Record::isChildKind(kind)) {
        if ((Record::Snapshot(store(), child)->load(field::flags) & Record::kFixed) != 0) return false;
        if (!isSubtreeClosed(store(), child)) return false;
        eraseSubtree(store(), child);
    }
    store()->remove(child);
    if (indexed_) forget(name);
    Record::removeListed(store(), childrenRecord_, child);
    return true;
}

bool Set::renameChild(std::u16string_view oldName, std::u16string_view newName) {
    rememberAll();
    if (find(newName) != IDataStore::BADOFF) return false;
    const std::uint32_t child = find(oldName);
    if (child == IDataStore::BADOFF) return false;
    Record::Entity record(store(), child);
    if (Record::isChildKind(record.view().kind())) {
        if ((record.view().load(field::flags) & Record::kFixed) != 0) return false;
        if (!storeName(record, newName)) return false;
    }
    if (indexed_) {
        forget(oldName);
        insertNew(newName, child);
    }
    return true;
}

void Set::importChild(IDataStore* sourceStore, std::uint32_t offset) {
    if (!isHere() || !Record::isChildKind(Record::kindOf(sourceStore, offset))) return;
    Record::ShortText name;
    name = Record::Snapshot(sourceStore, offset)->nameSection();
    if (find(name.view()) != IDataStore::BADOFF) return;
    const CloneChanges changes{true, this->offset(), Record::kFixed | Record::kInherited};
    const std::uint32_t copy = cloneSubtree(sourceStore, offset, store(), changes);
    if (copy == IDataStore::BADOFF) return;
    remember(name.view(), copy);
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
    Record::NewEntity record(Record::Kind::root);
    record.addText(field::rootNameSize, name);
    bindNew(store, record.appendTo(store), name);
    raiseOpenCount();
}

std::uint32_t Root::clone(IDataStore*) { return IDataStore::BADOFF; }

}  // namespace norvane::platform::data::Metadata
