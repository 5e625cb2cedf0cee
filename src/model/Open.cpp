#include "model/Open.h"

#include "model/ChildCache.h"
#include "model/Container.h"
#include "model/Primitive.h"
#include "model/Table.h"

namespace norvane::platform::data::Metadata {

namespace {

constexpr std::uint8_t byteOf(Record::Kind kind) { return static_cast<std::uint8_t>(kind); }

constexpr bool isSet(std::uint8_t kind) {
    return kind == byteOf(Record::Kind::root) || kind == byteOf(Record::Kind::table) ||
           kind == byteOf(Record::Kind::container);
}

}  // namespace

Owned<Item> openItem(IDataStore* store, std::uint32_t offset, Opening opening) {
    switch (Record::kindOf(store, offset)) {
        case byteOf(Record::Kind::primitive):
            return makeOwned<Design::Primitive>(store, offset, opening);
        case byteOf(Record::Kind::table):
            return makeOwned<Design::Table>(store, offset, opening);
        case byteOf(Record::Kind::container):
            return makeOwned<Structural::Container>(store, offset, opening);
        default:
            return {};
    }
}

Owned<Set> openSet(IDataStore* store, std::uint32_t offset, Opening opening) {
    switch (Record::kindOf(store, offset)) {
        case byteOf(Record::Kind::root):
            return makeOwned<Root>(store, offset, opening);
        case byteOf(Record::Kind::table):
            return makeOwned<Design::Table>(store, offset, opening);
        case byteOf(Record::Kind::container):
            return makeOwned<Structural::Container>(store, offset, opening);
        default:
            return {};
    }
}

std::vector<std::uint32_t> listedChildren(IDataStore* store, std::uint32_t listOffset) {
    const Record::Snapshot list(store, listOffset);
    if (!list->isWhole(Record::Kind::offsets)) return {};
    std::vector<std::uint32_t> children(list->valueCount());
    for (std::uint32_t i = 0; i < children.size(); ++i) children[i] = list->value(i);
    return children;
}

std::uint32_t findChild(IDataStore* store, std::uint32_t setOffset, std::u16string_view name) {
    const Record::Snapshot set(store, setOffset);
    if (!isSet(set->kind()) || !set->isWhole(static_cast<Record::Kind>(set->kind())))
        return IDataStore::BADOFF;
    return findListed(store, set->load(Record::field::children), name);
}

std::uint32_t findListed(IDataStore* store, std::uint32_t listOffset, std::u16string_view name) {
    if (listOffset == IDataStore::BADOFF || isReserved(name)) return IDataStore::BADOFF;
    const Record::Snapshot list(store, listOffset);
    if (!list->isWhole(Record::Kind::offsets)) return IDataStore::BADOFF;
    if (ChildCache* cache = ChildCache::of(store, list->valueCount()))
        if (const auto found = cache->find(store, listOffset, name)) return *found;
    for (std::uint32_t i = 0; i < list->valueCount(); ++i) {
        const Record::Snapshot child(store, list->value(i));
        if (Record::isChildKind(child->kind()) && child->hasName(name)) return list->value(i);
    }
    return IDataStore::BADOFF;
}

std::uint32_t resolvePath(IDataStore* store, std::uint32_t start, std::u16string_view path) {
    std::uint32_t current = start;
    bool hasFailed = start == IDataStore::BADOFF;
    for (bool isLast = false; !isLast;) {
        if (hasFailed) return IDataStore::BADOFF;
        const std::size_t dot = path.find(u'.');
        isLast = dot == path.npos;
        const std::u16string_view part = path.substr(0, dot);
        if (!isLast) path.remove_prefix(dot + 1);
        const std::uint8_t kind = Record::kindOf(store, current);
        if (isSet(kind))
            current = findChild(store, current, part);
        else if (kind == Record::kNoKind)
            current = IDataStore::BADOFF;
        hasFailed = !isSet(kind) || current == IDataStore::BADOFF;
    }
    return current;
}

}  // namespace norvane::platform::data::Metadata
