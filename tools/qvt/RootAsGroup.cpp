#include "RootAsGroup.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string_view>

#include "norvane/platform/data/structure/ContainerKind.h"
#include "norvane/platform/data/structure/IContainerFrontEnd.h"
#include "records/Fields.h"
#include "records/View.h"

namespace qvt {

namespace {

namespace Record = data::Record;
namespace field = Record::field;

using core::storage::datastore::kWholeRecord;
using Bytes = std::vector<std::byte>;

// No store gives these out: long before, its records would have filled all memory.
constexpr std::uint32_t kTop = 0xFFFFFF00;
constexpr std::uint32_t kTopList = 0xFFFFFF01;
constexpr std::uint32_t kDoor = 0xFFFFFF02;
constexpr std::uint32_t kDoorList = 0xFFFFFF03;

constexpr std::uint32_t kRootFixed = Record::formatOf(Record::Kind::root).fixedSize;
constexpr std::uint32_t kGroupFixed = Record::formatOf(Record::Kind::container).fixedSize;
// Up to here the fields of all entities are the same.
constexpr std::uint32_t kCommon = field::children.position + field::children.width;

template <class T>
void set(Bytes& record, Record::Field<T> where, T value) {
    std::memcpy(record.data() + where.position, &value, sizeof value);
}

Record::View viewOf(const Bytes& record) {
    return {record.data(), static_cast<std::uint32_t>(record.size())};
}

Bytes contentsOf(IDataStore& store, std::uint32_t offset) {
    Bytes bytes(store.recordSize(offset));
    if (!bytes.empty()) store.read(offset, bytes.data(), kWholeRecord);
    return bytes;
}

void makeGroup(Bytes& record) {
    set(record, field::kind, static_cast<std::uint8_t>(Record::Kind::container));
    set(record, field::containerKind, static_cast<std::uint8_t>(structure::kGroup));
}

// The common fields, room for others, and whatever stands behind the fixed part, so that nothing is lost on
// the way back.
Bytes between(const Bytes& record, std::size_t fixed, std::size_t newFixed) {
    const auto begin = record.begin();
    const auto at = [&](std::size_t position) {
        return begin + static_cast<std::ptrdiff_t>(std::min(position, record.size()));
    };
    Bytes result(begin, at(kCommon));
    result.resize(newFixed);
    result.insert(result.end(), at(fixed), record.end());
    return result;
}

Bytes groupOfRoot(const Bytes& root) {
    Bytes group = between(root, kRootFixed, kGroupFixed);
    makeGroup(group);
    set(group, field::containerNameSize, viewOf(root).load(field::rootNameSize));
    return group;
}

Bytes rootOfGroup(const Bytes& group) {
    const Record::View view = viewOf(group);
    if (!view.isWhole(Record::Kind::container) || view.load(field::classTextSize) != 0 ||
        view.load(field::linkTargetSize) != 0)
        throw std::logic_error("the root can only have what every group has");
    Bytes root = between(group, kGroupFixed, kRootFixed);
    set(root, field::kind, static_cast<std::uint8_t>(Record::Kind::root));
    set(root, field::rootNameSize, view.load(field::containerNameSize));
    return root;
}

Bytes madeGroup(std::u16string_view name, std::uint32_t parent, std::uint32_t children) {
    const auto nameSize = static_cast<std::uint32_t>((name.size() + 1) * sizeof(char16_t));
    Bytes record(kGroupFixed + nameSize);
    makeGroup(record);
    set(record, field::parent, parent);
    set(record, field::locale, std::uint32_t{IDataStore::BADOFF});
    set(record, field::children, children);
    set(record, field::containerNameSize, nameSize);
    std::memcpy(record.data() + kGroupFixed, name.data(), name.size() * sizeof(char16_t));
    return record;
}

Bytes madeList(std::uint32_t child) {
    Bytes record(Record::kOffsetsHeader + sizeof child);
    set(record, field::kind, static_cast<std::uint8_t>(Record::Kind::offsets));
    std::memcpy(record.data() + Record::kOffsetsHeader, &child, sizeof child);
    return record;
}

}  // namespace

RootAsGroup::RootAsGroup(IDataStore& store)
    : store_(store), hasRoot_(viewOf(contentsOf(store, 0)).isWhole(Record::Kind::root)) {
    if (hasRoot_) return;
    made_[kTop] = madeGroup(u"", IDataStore::BADOFF, kTopList);
    made_[kTopList] = madeList(0);
}

std::uint32_t RootAsGroup::top() const { return hasRoot_ ? 0 : kTop; }

// A handle on what has no parent comes from a child that asks for its parent. That child is there for this
// alone: it is found below a record 0 of its own, which has gone by the time the parent is opened.
SharedPtr<IContainer> RootAsGroup::open() {
    made_[0] = madeGroup(u"", IDataStore::BADOFF, kDoorList);
    made_[kDoorList] = madeList(kDoor);
    made_[kDoor] = madeGroup(u"door", top(), IDataStore::BADOFF);
    SharedPtr<IContainer> door = structure::IContainerFrontEnd::find(this, u"door");
    made_.erase(0);
    made_.erase(kDoorList);
    SharedPtr<IContainer> group = door->parent();
    door.reset();
    made_.erase(kDoor);
    return group;
}

Bytes* RootAsGroup::shown(std::uint32_t offset) {
    if (const auto made = made_.find(offset); made != made_.end()) return &made->second;
    if (offset != 0 || !hasRoot_) return nullptr;
    group_ = groupOfRoot(contentsOf(store_, 0));
    return &group_;
}

void RootAsGroup::take(std::uint32_t offset, bool flag) {
    if (made_.count(offset) != 0) return;
    const Bytes root = rootOfGroup(group_);
    store_.write(0, root.data(), static_cast<std::uint32_t>(root.size()), flag);
}

void RootAsGroup::read(std::uint32_t offset, void* buffer, std::uint32_t size) {
    const Bytes* bytes = shown(offset);
    if (!bytes) return store_.read(offset, buffer, size);
    std::memcpy(buffer, bytes->data(), std::min<std::size_t>(size, bytes->size()));
}

std::uint64_t RootAsGroup::size() { return std::max<std::uint64_t>(store_.size(), made_.empty() ? 0 : 1); }

std::uint32_t RootAsGroup::append(const void* buffer, std::uint32_t size) {
    return store_.append(buffer, size);
}

void RootAsGroup::extend(std::uint32_t offset, const void* buffer, std::uint32_t size) {
    Bytes* bytes = shown(offset);
    if (!bytes) return store_.extend(offset, buffer, size);
    const auto* begin = static_cast<const std::byte*>(buffer);
    const Bytes more(begin, begin + size);  // they may lie in what was shown
    bytes->insert(bytes->end(), more.begin(), more.end());
    take(offset, true);
}

void RootAsGroup::write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag) {
    Bytes* bytes = shown(offset);
    if (!bytes) return store_.write(offset, buffer, size, flag);
    const auto* begin = static_cast<const std::byte*>(buffer);
    *bytes = Bytes(begin, begin + size);  // they may lie in what was shown
    take(offset, flag);
}

std::uint32_t RootAsGroup::recordSize(std::uint32_t offset) {
    const Bytes* bytes = shown(offset);
    return bytes ? static_cast<std::uint32_t>(bytes->size()) : store_.recordSize(offset);
}

void RootAsGroup::remove(std::uint32_t offset) {
    if (made_.erase(offset) == 0) store_.remove(offset);
}

const void* RootAsGroup::view(std::uint32_t offset, std::uint32_t& size) {
    const Bytes* bytes = shown(offset);
    if (!bytes) return store_.view(offset, size);
    size = static_cast<std::uint32_t>(bytes->size());
    return bytes->data();
}

bool RootAsGroup::patch(std::uint32_t offset, std::uint32_t position, const void* bytes, std::uint32_t size,
                        bool flag) {
    const bool isMade = made_.count(offset) != 0;
    const bool isCommon = position >= field::parent.position && position <= kCommon - size;
    if (!isMade && (offset != 0 || !hasRoot_ || (size <= kCommon && isCommon)))
        return store_.patch(offset, position, bytes, size, flag);
    Bytes& record = *shown(offset);
    if (size > record.size() || position > record.size() - size)
        throw std::out_of_range("bytes outside of the record");
    std::memmove(record.data() + position, bytes, size);
    take(offset, flag);
    return true;
}

}  // namespace qvt
