#include "schema/RootLookup.h"

#include "model/Open.h"

namespace norvane::platform::data::Schema {

namespace field = Record::field;

namespace {

// More names than this, or longer ones, are not remembered: memory for texts that nothing answers to must not
// grow with the documents read.
constexpr std::size_t kMostNames = 256;
constexpr std::size_t kLongestName = 128;

bool isChildOfName(IDataStore* store, std::uint32_t offset, std::u16string_view name) {
    const Record::Snapshot child(store, offset);
    return Record::isChildKind(child->kind()) && child->hasName(name);
}

}  // namespace

std::uint32_t RootLookup::find(IDataStore* store, std::u16string_view name) {
    Memo memo = recall(store, name);
    const std::uint64_t stamp = store->changeStamp();
    if (stamp != 0 && memo.stamp == stamp) return memo.found;

    const Record::Snapshot root(store, 0);
    if (!root->isWhole(Record::Kind::root) || isReserved(name) || name.size() > kLongestName)
        return Metadata::findChild(store, 0, name);
    const std::uint32_t listOffset = root->load(field::children);
    const Record::Snapshot list(store, listOffset);
    if (!list->isWhole(Record::Kind::offsets)) return IDataStore::BADOFF;

    const std::uint32_t count = list->valueCount();
    const bool isLonger = memo.list == listOffset && memo.looked <= count &&
                          (memo.looked == 0 || list->value(memo.looked - 1) == memo.last);
    if (!isLonger || (memo.found != IDataStore::BADOFF && !isChildOfName(store, memo.found, name)))
        memo = Memo{.list = listOffset};
    while (memo.found == IDataStore::BADOFF && memo.looked < count) {
        memo.last = list->value(memo.looked++);
        if (isChildOfName(store, memo.last, name)) memo.found = memo.last;
    }
    memo.stamp = stamp;
    remember(store, name, memo);
    return memo.found;
}

RootLookup::Memo RootLookup::recall(IDataStore* store, std::u16string_view name) {
    const std::lock_guard lock(mutex_);
    const auto memos = memos_.find(store);
    if (memos == memos_.end()) return {};
    const auto memo = memos->second.find(name);
    return memo == memos->second.end() ? Memo() : memo->second;
}

void RootLookup::remember(IDataStore* store, std::u16string_view name, const Memo& memo) {
    const std::lock_guard lock(mutex_);
    Memos& memos = memos_[store];
    if (const auto known = memos.find(name); known != memos.end()) {
        known->second = memo;
        return;
    }
    if (memos.size() == kMostNames) memos.clear();
    memos.emplace(name, memo);
}

void RootLookup::forget(IDataStore* store) {
    const std::lock_guard lock(mutex_);
    memos_.erase(store);
}

void RootLookup::forgetAll() {
    const std::lock_guard lock(mutex_);
    memos_.clear();
}

}  // namespace norvane::platform::data::Schema
