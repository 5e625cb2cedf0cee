#include "model/Primitive.h"

#include <algorithm>
#include <cstring>

#include "model/Subtree.h"
#include "norvane/platform/data/metadata/tDataType.h"
#include "records/NewEntity.h"
#include "records/SmallBlock.h"

namespace norvane::platform::data::Design {

namespace field = Record::field;

namespace {

constexpr std::uint32_t kStruct = 24;

}  // namespace

Primitive::Primitive(IDataStore* store, std::uint32_t offset, Metadata::Opening opening) {
    const Record::Snapshot record(store, offset);
    const auto [localeTag, name, structType, value] =
        record->sections(Record::Kind::primitive, Record::format::primitiveSections);
    if (!bind(store, offset, Record::Kind::primitive, *record, name)) return;
    if (structType.size != 0) structTypeName_ = Record::View::textOf(structType);
    dataType_ = record->load(field::dataType);
    valueSize_ = value.size;
    hasUri_ = (record->load(field::flags) & Record::kHasUri) != 0;
    if (hasUri_) uriText_ = Record::View::textOf(value);
    if (localeTag.size != 0) localeText_ = Record::View::textOf(localeTag);
    if (opening == Metadata::Opening::handle) raiseOpenCount(*record);
}

Primitive::Primitive(IDataStore* store, std::uint32_t dataType, std::u16string_view name)
    : dataType_(dataType) {
    Record::NewEntity record(Record::Kind::primitive);
    record.set(field::dataType, dataType);
    record.addText(field::primitiveNameSize, name);
    bindNew(store, record.appendTo(store), name);
    raiseOpenCount();
}

bool Primitive::isRemovable() { return isInert() || openCount() == 1; }

void Primitive::erase() {
    if (isInert()) return;
    eraseLocale();
    Record::storeField(store(), offset(), field::locale, std::uint32_t{IDataStore::BADOFF});
}

std::uint32_t Primitive::clone(IDataStore* target) {
    if (isInert()) return IDataStore::BADOFF;
    return Metadata::cloneSubtree(store(), offset(), {localeRecord(), IDataStore::BADOFF, IDataStore::BADOFF},
                                  target);
}

bool Primitive::sameAs(const Primitive& other) const {
    return name() == other.name() && dataType_ == other.dataType_;
}

std::uint32_t Primitive::elementSize() const { return metadata::elementSize(dataType_); }

std::uint32_t Primitive::count() const {
    return hasUri_ || elementSize() == 0 ? 0 : valueSize_ / elementSize();
}

// Whether the record is still there and has room for such a section in place of the one it has.
bool Primitive::takes(const Record::Entity& record, Record::U32 sizeField, std::uint64_t size) const {
    return !isInert() && record.view().isWhole(Record::Kind::primitive) && record.takes(sizeField, size);
}

bool Primitive::setStructType(const tWChar* name) {
    if (dataType_ != kStruct || !name) return false;
    Record::Entity record(store(), offset());
    const std::uint64_t size = Record::storedSize(name);
    if (!takes(record, field::structTypeSize, size)) return false;
    record.setField(field::structTypeSize, name, size);
    record.commit();  // stores rely on the number of writes: this one always made two
    structTypeName_ = name;
    return true;
}

bool Primitive::setUri(const tWChar* uri) {
    Record::Entity record(store(), offset());
    const std::uint64_t size = uri ? Record::storedSize(uri) : 0;
    if (!takes(record, field::valueSize, size)) return false;
    const std::uint8_t flags = record.view().load(field::flags);
    record.set(field::flags,
               static_cast<std::uint8_t>(uri ? flags | Record::kHasUri : flags & ~Record::kHasUri));
    // Ahead of the write: a store that throws leaves this object ahead of its record.
    valueSize_ = static_cast<std::uint32_t>(size);
    record.setField(field::valueSize, uri, size);
    uriText_ = Record::textOf(uri);
    hasUri_ = uri != nullptr;
    return true;
}

void Primitive::setUnits(std::uint32_t unitId) {
    if (!isInert()) Record::storeField(store(), offset(), field::unit, unitId);
}

std::uint32_t Primitive::units() const {
    return isInert() ? 0 : Record::Snapshot(store(), offset())->load(field::unit);
}

void Primitive::setLocale(const tWChar* tag) {
    if (isInert()) return;
    Record::Entity record(store(), offset());
    if (tag) {
        record.setField(field::localeTagSize, tag, Record::storedSize(tag));
        localeText_ = tag;
        return;
    }
    // The struct type's bytes are dropped with the tag's while its size stays; as many zeros end the record.
    const std::uint32_t structTypeSize = record.view().section(field::structTypeSize).size;
    record.replaceSection(field::localeTagSize, nullptr, 0);
    record.replaceSection(field::structTypeSize, nullptr, 0);
    record.grow(structTypeSize);
    record.set(field::structTypeSize, structTypeSize);
    record.commit();
    localeText_.clear();
}

bool Primitive::resize(std::uint32_t count) {
    const std::uint64_t size = std::uint64_t{elementSize()} * count;
    if (hasUri_) return false;
    Record::Entity record(store(), offset());
    if (!takes(record, field::valueSize, size)) return false;
    record.setField(field::valueSize, nullptr, 0, size);
    valueSize_ = static_cast<std::uint32_t>(size);
    return true;
}

void Primitive::resizeOrThrow(std::uint32_t count) {
    if (!resize(count) && !hasUri_) throw TooLarge();
}

// Writes into the value that is there. False when the record, which another object may have changed, does not
// have that range.
bool Primitive::storeInPlace(const void* source, std::uint64_t position, std::uint64_t size) {
    std::uint64_t start = 0;
    {
        const Record::Snapshot record(store(), offset());
        if (position + size > record->valueSection().size) return false;
        start = record->sectionPosition(field::valueSize);
    }
    Record::storeBytes(store(), offset(), start + position, source, static_cast<std::uint32_t>(size), true);
    return true;
}

// Makes the value `size` bytes long, in the buffer: what this object knows of it, as far as it is there, and
// zeros. False when the record does not take that.
bool Primitive::lengthenValue(Record::Entity& record, std::uint64_t size) const {
    if (!takes(record, field::valueSize, size)) return false;
    const Record::Section value = record.view().valueSection();
    const std::uint64_t known = count() == 0 ? 0 : valueSize_;
    const std::uint64_t kept = std::min<std::uint64_t>({known, value.size, size});
    record.replaceSection(field::valueSize, value.begin, kept, size - kept);
    return true;
}

std::byte* Primitive::valueIn(Record::Entity& record) {
    return record.bytes() + record.view().sectionPosition(field::valueSize);
}

// Puts a value of `size` bytes in the place of one that is no longer, in one write and without a look at what
// goes. False, with nothing changed, where bytes stand behind the value, or the record does not take that.
bool Primitive::storeInstead(const void* source, std::uint64_t size) {
    const Record::Snapshot record(store(), offset());
    const std::uint64_t start = record->sectionPosition(field::valueSize);
    const std::uint64_t there = record->valueSection().size;
    const bool isSound = !isInert() && record->isWhole(Record::Kind::primitive);
    if (!isSound || there > size || start + there != record->size()) return false;
    if (start + size > store()->recordLimit()) return false;
    const auto stored = static_cast<std::uint32_t>(size);
    Record::SmallBlock<512> draft(static_cast<std::uint32_t>(start + size));
    std::memcpy(draft.bytes(), record->bytes(), start);
    std::memcpy(draft.bytes() + field::valueSize.position, &stored, sizeof stored);
    std::memcpy(draft.bytes() + start, source, size);
    store()->write(offset(), draft.bytes(), static_cast<std::uint32_t>(start + size), true);
    valueSize_ = stored;
    return true;
}

// Adds behind the value without a rewrite, so that many strings that come one by one do not cost the square
// of their number. Only stores that also change records in place are made to extend by more than a list's
// entry.
bool Primitive::storeBehind(const void* source, std::uint64_t position, std::uint64_t size) {
    {
        const Record::Snapshot record(store(), offset());
        const std::uint32_t there = record->valueSection().size;
        const bool endsThere = record->sectionPosition(field::valueSize) + there == record->size();
        if (!endsThere || position != there || position != valueSize_ || position == 0) return false;
        if (record->size() + size > store()->recordLimit()) return false;
    }
    const auto patchSize = [this](std::uint64_t valueSize) {
        const auto stored = static_cast<std::uint32_t>(valueSize);
        return store()->patch(offset(), field::valueSize.position, &stored, sizeof stored, true);
    };
    if (!patchSize(position)) return false;
    store()->extend(offset(), source, static_cast<std::uint32_t>(size));
    patchSize(position + size);
    valueSize_ = static_cast<std::uint32_t>(position + size);
    return true;
}

bool Primitive::writeValues(const void* source, std::uint32_t start, std::uint32_t count) {
    const std::uint64_t position = std::uint64_t{elementSize()} * start;
    const std::uint64_t size = std::uint64_t{elementSize()} * count;
    if (size == 0 || hasUri_ || !source) return false;
    // What the source is the base of follows from what this object knows, as its caller knows no more.
    const auto* from = static_cast<const std::byte*>(source) + (this->count() == 0 ? position : 0);
    if (std::uint64_t{start} + count <= this->count()) {
        if (storeInPlace(from, position, size)) return true;
        valueSize_ = Record::Snapshot(store(), offset())->valueSection().size;
    }
    if (position == 0 && storeInstead(from, size)) return true;
    if (storeBehind(from, position, size)) return true;
    Record::Entity record(store(), offset());
    if (!lengthenValue(record, position + size)) return false;
    std::memcpy(valueIn(record) + position, from, size);
    record.commit();
    valueSize_ = static_cast<std::uint32_t>(position + size);
    return true;
}

namespace {

// Lays the elements that are given over those of `value`.
void overlay(std::byte* value, const std::byte* elements, const std::vector<unsigned char>& isGiven,
             std::uint64_t count, std::uint64_t element) {
    for (std::uint64_t i = 0; i < count; ++i)
        if (isGiven[i] != 0) std::memcpy(value + i * element, elements + i * element, element);
}

}  // namespace

// False when the record, which another object may have changed, does not have that many elements. What lies
// behind them is not touched: a few numbers laid over a long value cost no more than a few.
bool Primitive::overlayInPlace(const std::byte* elements, const std::vector<unsigned char>& isGiven,
                               std::uint64_t count) {
    std::vector<std::byte> value(count * elementSize());
    {
        const Record::Snapshot record(store(), offset());
        const Record::Section there = record->valueSection();
        if (value.size() > there.size) return false;
        std::memcpy(value.data(), there.begin, value.size());
    }
    overlay(value.data(), elements, isGiven, count, elementSize());
    return storeInPlace(value.data(), 0, value.size());
}

bool Primitive::overlayValues(const std::byte* elements, const std::vector<unsigned char>& isGiven) {
    const std::uint64_t element = elementSize();
    const auto last =
        std::find_if(isGiven.rbegin(), isGiven.rend(), [](unsigned char each) { return each != 0; });
    const auto count = static_cast<std::uint64_t>(isGiven.rend() - last);
    if (count * element == 0 || hasUri_) return false;
    const bool isAll = std::find(isGiven.begin(), isGiven.begin() + static_cast<std::ptrdiff_t>(count), 0) ==
                       isGiven.begin() + static_cast<std::ptrdiff_t>(count);
    if (isAll && storeAll(elements, count * element)) return true;
    if (count <= this->count()) {
        if (overlayInPlace(elements, isGiven, count)) return true;
        valueSize_ = Record::Snapshot(store(), offset())->valueSection().size;
    }
    Record::Entity record(store(), offset());
    if (!takes(record, field::valueSize, 0)) return false;
    if (!lengthenValue(record, count * element)) throw TooLarge();
    overlay(valueIn(record), elements, isGiven, count, element);
    record.commit();
    valueSize_ = static_cast<std::uint32_t>(count * element);
    return true;
}

// The same where every element is given.
bool Primitive::storeAll(const std::byte* elements, std::uint64_t size) {
    if (size > std::uint64_t{count()} * elementSize()) return storeInstead(elements, size);
    return storeInPlace(elements, 0, size);
}

std::uint32_t Primitive::readValues(void* target, std::uint32_t start, std::uint32_t count) const {
    const std::uint64_t element = elementSize();
    if (count == 0 || !target || std::uint64_t{start} + count > this->count()) return 0;
    const Record::Snapshot record(store(), offset());
    const Record::Section value = record->valueSection();
    if (element * start + element * count > value.size) return 0;
    std::memcpy(target, value.begin + element * start, element * count);
    return count;
}

}  // namespace norvane::platform::data::Design
