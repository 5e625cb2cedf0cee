#include "model/Table.h"

#include "model/Subtree.h"

namespace norvane::platform::data::Design {

namespace field = Record::field;

namespace {

constexpr std::uint32_t kUnit = 0;  // the places in a pair of the defaults directory
constexpr std::uint32_t kType = 1;

bool isList(IDataStore* store, std::uint32_t offset) {
    return Record::Snapshot(store, offset)->isWhole(Record::Kind::offsets);
}

}  // namespace

Table::Table(IDataStore* store, std::uint32_t offset, Metadata::Opening opening)
    : defaultsOffset_(IDataStore::BADOFF) {
    {
        const Record::Snapshot record(store, offset);
        if (!bind(store, offset, Record::Kind::table, *record)) return;
        bindChildren(*record);
        tableClass_ = record->text(field::tableClassSize);
        defaultsOffset_ = record->load(field::defaults);
    }
    loadDefaults();
    if (opening == Metadata::Opening::handle) raiseOpenCount();
    indexChildren(opening);
}

Table::Table(IDataStore* store, std::u16string_view name) : defaultsOffset_(IDataStore::BADOFF) {
    Record::NewEntity record(Record::Kind::table);
    record.addText(field::tableNameSize, name);
    bindNew(store, record.appendTo(store), name);
    raiseOpenCount();
}

// Of two pairs of one dimension the first counts.
void Table::loadDefaults() {
    defaultIndex_.clear();
    const Record::Snapshot directory(store(), defaultsOffset_);
    if (!directory->isWhole(Record::Kind::offsets)) return;
    for (std::uint32_t i = 0; i < directory->valueCount(); i += 2)
        defaultIndex_.emplace(dimensionKey(directory->value(i)), i / 2);
}

void Table::erase() {
    if (isInert()) return;
    eraseLocale();
    eraseChildren();
    if (isList(store(), defaultsOffset_)) store()->remove(defaultsOffset_);
    defaultsOffset_ = IDataStore::BADOFF;
    defaultIndex_.clear();
    Record::Base record(store(), offset());
    record.set(field::children, std::uint32_t{IDataStore::BADOFF});
    record.set(field::locale, std::uint32_t{IDataStore::BADOFF});
    record.set(field::defaults, std::uint32_t{IDataStore::BADOFF});
    record.commit();
}

std::uint32_t Table::clone(IDataStore* target) {
    if (isInert()) return IDataStore::BADOFF;
    return Metadata::cloneSubtree(store(), offset(), {localeRecord(), childrenRecord(), defaultsOffset_},
                                  target);
}

bool Table::sameAs(const Table& other) const {
    return name() == other.name() && tableClass_ == other.tableClass_;
}

bool Table::addDefault(std::uint32_t unitId, std::uint32_t type) {
    if (unitId == 0 || type == 0 || !isStored()) return false;
    // Another object may have made the directory since this one was opened; a second one would lose its
    // pairs.
    if (!isList(store(), defaultsOffset_)) {
        defaultsOffset_ = Record::Snapshot(store(), offset())->load(field::defaults);
        loadDefaults();
    }
    if (!isList(store(), defaultsOffset_)) {
        const Record::Offsets directory(store());
        defaultsOffset_ = directory.offset();
        Record::storeField(store(), offset(), field::defaults, defaultsOffset_);
    }
    const auto next = static_cast<std::uint32_t>(defaultIndex_.size());
    const auto known = defaultIndex_.find(dimensionKey(unitId));
    const std::uint32_t index = known == defaultIndex_.end() ? next : known->second;
    Record::Offsets directory(store(), defaultsOffset_);
    directory.setAt(2 * index + kUnit, unitId);
    directory.setAt(2 * index + kType, type);
    defaultIndex_.emplace(dimensionKey(unitId), index);
    return true;
}

std::vector<std::int32_t> Table::defaultKeys() const {
    std::vector<std::int32_t> keys;
    keys.reserve(defaultIndex_.size());
    for (const auto& [key, index] : defaultIndex_) keys.push_back(key);
    return keys;
}

std::uint32_t Table::defaultAt(std::int32_t key, std::uint32_t which) const {
    const auto known = defaultIndex_.find(key);
    if (key == 0 || known == defaultIndex_.end()) return 0;
    const std::uint32_t directory = Record::Snapshot(store(), offset())->load(field::defaults);
    const Record::Snapshot pairs(store(), directory);
    const std::uint64_t index = std::uint64_t{2} * known->second + which;
    if (!pairs->isWhole(Record::Kind::offsets) || index >= pairs->valueCount()) return 0;
    return pairs->value(static_cast<std::uint32_t>(index));
}

std::uint32_t Table::defaultType(std::int32_t key) const { return defaultAt(key, kType); }

std::uint32_t Table::defaultUnit(std::int32_t key) const { return defaultAt(key, kUnit); }

}  // namespace norvane::platform::data::Design
