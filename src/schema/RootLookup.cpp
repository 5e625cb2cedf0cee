#include "schema/RootLookup.h"

#include <optional>
#include <utility>

#include "model/Open.h"

namespace norvane::platform::data::Schema {

namespace field = Record::field;

namespace {

bool isChildOfName(IDataStore* store, std::uint32_t offset, std::u16string_view name) {
    const Record::Snapshot child(store, offset);
    return Record::isChildKind(child->kind()) && child->hasName(name);
}

// The list of record 0's children, or nothing if it is no root.
std::optional<std::uint32_t> listOfRoot(IDataStore* store) {
    const Record::Snapshot root(store, 0);
    if (!root->isWhole(Record::Kind::root)) return std::nullopt;
    return root->load(field::children);
}

}  // namespace

std::uint32_t RootLookup::find(IDataStore* store, std::u16string_view name) {
    if (isReserved(name)) return IDataStore::BADOFF;
    std::unique_ptr<Index> index = take(store);
    const std::uint64_t stamp = store->changeStamp();
    if (stamp == 0 || stamp != index->stamp) {
        const std::optional<std::uint32_t> list = listOfRoot(store);
        if (!list) return Metadata::findChild(store, 0, name);
        index->follow(store, *list);
        const std::uint32_t found = index->find(name);
        if (found != IDataStore::BADOFF && !isChildOfName(store, found, name)) {
            *index = Index();
            index->follow(store, *list);
        }
        index->stamp = stamp;
    }
    const std::uint32_t found = index->find(name);
    keep(store, std::move(index));
    return found;
}

std::uint32_t RootLookup::Index::find(std::u16string_view name) const {
    const auto child = children.find(name);
    return child == children.end() ? std::uint32_t{IDataStore::BADOFF} : child->second;
}

// Whether the list is the one that was looked at, with nothing changed but values added behind.
bool RootLookup::Index::isBegunBy(const Record::View& listed, std::uint32_t listOffset) const {
    return list == listOffset && looked <= listed.valueCount() &&
           (looked == 0 || listed.value(looked - 1) == last);
}

void RootLookup::Index::follow(IDataStore* store, std::uint32_t listOffset) {
    const Record::Snapshot listed(store, listOffset);
    if (!listed->isWhole(Record::Kind::offsets) || !isBegunBy(*listed, listOffset)) *this = Index();
    list = listOffset;
    if (!listed->isWhole(Record::Kind::offsets)) return;
    while (looked < listed->valueCount()) {
        last = listed->value(looked++);
        const Record::Snapshot child(store, last);
        if (Record::isChildKind(child->kind())) children.emplace(child->name(), last);
    }
}

std::unique_ptr<RootLookup::Index> RootLookup::take(IDataStore* store) {
    std::unique_ptr<Index> taken;
    {
        const std::lock_guard lock(mutex_);
        const auto index = indices_.find(store);
        if (index != indices_.end()) taken = std::move(index->second);
    }
    return taken ? std::move(taken) : std::make_unique<Index>();
}

void RootLookup::keep(IDataStore* store, std::unique_ptr<Index> index) {
    const std::lock_guard lock(mutex_);
    indices_[store] = std::move(index);
}

void RootLookup::forget(IDataStore* store) {
    const std::lock_guard lock(mutex_);
    indices_.erase(store);
}

void RootLookup::forgetAll() {
    const std::lock_guard lock(mutex_);
    indices_.clear();
}

}  // namespace norvane::platform::data::Schema
