#include "model/Primitive.h"

#include <algorithm>
#include <cstring>

#include "model/Subtree.h"
#include "norvane/platform/data/metadata/tDataType.h"

namespace norvane::platform::data::Design {

namespace field = Record::field;

namespace {

constexpr std::uint32_t kStruct = 24;

}  // namespace

Primitive::Primitive(IDataStore* store, std::uint32_t offset, Metadata::Opening opening) {
    {
        const Record::Snapshot record(store, offset);
        if (!bind(store, offset, Record::Kind::primitive, *record)) return;
        structTypeName_ = record->text(field::structTypeSize);
        dataType_ = record->load(field::dataType);
        valueSize_ = record->load(field::valueSize);
        hasUri_ = (record->load(field::flags) & Record::kHasUri) != 0;
        if (hasUri_) uriText_ = record->text(field::valueSize);
        localeText_ = record->text(field::localeTagSize);
    }
    if (opening == Metadata::Opening::handle) raiseOpenCount();
}

Primitive::Primitive(IDataStore* store, std::uint32_t dataType, std::u16string_view name)
    : dataType_(dataType) {
    bindNew(store, Record::Primitive(store, dataType, name).offset(), name);
    raiseOpenCount();
}

bool Primitive::isRemovable() { return isInert() || openCount() == 1; }

void Primitive::erase() {
    if (isInert()) return;
    eraseLocale();
    Record::storeField(store(), offset(), field::locale, std::uint32_t{IDataStore::BADOFF});
}

std::uint32_t Primitive::clone(IDataStore* target) {
    return Metadata::cloneSubtree(store(), offset(), target);
}

bool Primitive::sameAs(const Primitive& other) const {
    return name() == other.name() && dataType_ == other.dataType_;
}

std::uint32_t Primitive::elementSize() const { return metadata::elementSize(dataType_); }

std::uint32_t Primitive::count() const {
    return hasUri_ || elementSize() == 0 ? 0 : valueSize_ / elementSize();
}

bool Primitive::setStructType(const tWChar* name) {
    if (dataType_ != kStruct || !name || isInert()) return false;
    Record::Primitive record(store(), offset());
    record.setField(field::structTypeSize, name, Record::storedSize(name));
    record.commit();  // stores rely on the number of writes: this one always made two
    structTypeName_ = name;
    return true;
}

bool Primitive::setUri(const tWChar* uri) {
    if (isInert()) return true;
    const std::uint64_t uriSize = uri ? Record::storedSize(uri) : 0;
    if (!fits(uriSize)) return false;
    Record::Primitive record(store(), offset());
    const std::uint8_t flags = record.view().load(field::flags);
    const auto size = static_cast<std::uint32_t>(uriSize);
    record.set(field::flags,
               static_cast<std::uint8_t>(uri ? flags | Record::kHasUri : flags & ~Record::kHasUri));
    valueSize_ = size;  // ahead of the write: a store that throws leaves this object ahead of its record
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
    Record::Primitive record(store(), offset());
    if (tag) {
        record.setField(field::localeTagSize, tag, Record::storedSize(tag));
        localeText_ = tag;
        return;
    }
    // The struct type's bytes are dropped with the tag's while its size stays; as many zeros end the record.
    const std::uint32_t structTypeSize = record.view().section(field::structTypeSize).size;
    record.replaceSection(field::localeTagSize, nullptr, 0);
    if (structTypeSize != 0) {
        const std::uint32_t size = record.size();
        record.replaceSection(field::structTypeSize, nullptr, 0);
        record.grow(structTypeSize);
        std::memset(record.bytes() + size - structTypeSize, 0, structTypeSize);
        record.set(field::structTypeSize, structTypeSize);
    }
    record.commit();
    localeText_.clear();
}

// Whether a value of that size fits a record beside the sections that this record has.
bool Primitive::fits(std::uint64_t valueSize) const {
    const Record::Snapshot record(store(), offset());
    return record->sectionPosition(field::valueSize) + valueSize <= store()->recordLimit();
}

void Primitive::storeValue(const void* value, std::uint64_t size) {
    Record::Primitive(store(), offset()).setField(field::valueSize, value, size);
    valueSize_ = static_cast<std::uint32_t>(size);
}

// False when the record, which another object may have changed, does not have that range.
bool Primitive::storeInPlace(const void* source, std::uint64_t position, std::uint64_t size) {
    const Record::Snapshot record(store(), offset());
    if (position + size > record->section(field::valueSize).size) return false;
    const std::uint64_t start = record->sectionPosition(field::valueSize);
    Record::storeBytes(store(), offset(), start + position, source, static_cast<std::uint32_t>(size), true);
    return true;
}

// A block of `size` bytes that begins with the first `kept` bytes of the value, as far as the record has
// them.
std::vector<std::byte> Primitive::valueBytes(std::uint64_t size, std::uint64_t kept) const {
    std::vector<std::byte> bytes(size);
    const Record::Snapshot record(store(), offset());
    const Record::Section value = record->section(field::valueSize);
    const std::uint64_t there = std::min<std::uint64_t>({kept, size, value.size});
    if (there != 0) std::memcpy(bytes.data(), value.begin, there);
    return bytes;
}

bool Primitive::resize(std::uint32_t count) {
    const std::uint64_t size = std::uint64_t{elementSize()} * count;
    if (hasUri_ || isInert() || !fits(size)) return false;
    storeValue(std::vector<std::byte>(size).data(), size);
    return true;
}

void Primitive::resizeOrThrow(std::uint32_t count) {
    if (!resize(count) && !hasUri_) throw TooLarge();
}

bool Primitive::writeValues(const void* source, std::uint32_t start, std::uint32_t count) {
    const std::uint64_t element = elementSize();
    const std::uint64_t position = element * start;
    const std::uint64_t size = element * count;
    if (count == 0 || hasUri_ || !source || element == 0 || isInert() || !fits(position + size)) return false;

    std::uint32_t existing = this->count();
    if (std::uint64_t{start} + count <= existing) {
        if (storeInPlace(source, position, size)) return true;
        valueSize_ = Record::Snapshot(store(), offset())->section(field::valueSize).size;
        existing = this->count();
    }
    if (existing == 0 && start == 0) {
        storeValue(source, size);
        return true;
    }
    std::vector<std::byte> bytes = valueBytes(position + size, existing == 0 ? 0 : valueSize_);
    const auto* from = static_cast<const std::byte*>(source) + (existing == 0 ? position : 0);
    std::memcpy(bytes.data() + position, from, size);
    storeValue(bytes.data(), bytes.size());
    return true;
}

std::uint32_t Primitive::readValues(void* target, std::uint32_t start, std::uint32_t count) const {
    const std::uint64_t element = elementSize();
    if (count == 0 || std::uint64_t{start} + count > this->count()) return 0;
    const Record::Snapshot record(store(), offset());
    const Record::Section value = record->section(field::valueSize);
    if (element * start + element * count > value.size) return 0;
    std::memcpy(target, value.begin + element * start, element * count);
    return count;
}

bool Primitive::overlayValues(const std::byte* elements, const std::vector<unsigned char>& isGiven) {
    const std::uint64_t element = elementSize();
    const auto last =
        std::find_if(isGiven.rbegin(), isGiven.rend(), [](unsigned char each) { return each != 0; });
    const auto count = static_cast<std::uint64_t>(isGiven.rend() - last);
    if (count == 0 || hasUri_ || element == 0 || isInert()) return false;
    if (!fits(count * element)) throw TooLarge();

    const std::uint32_t existing = this->count();
    const std::uint64_t size = count <= existing ? valueSize_ : count * element;
    std::vector<std::byte> bytes = valueBytes(size, existing == 0 ? 0 : valueSize_);
    for (std::uint64_t i = 0; i < count; ++i)
        if (isGiven[i] != 0) std::memcpy(bytes.data() + i * element, elements + i * element, element);
    storeValue(bytes.data(), size);
    return true;
}

}  // namespace norvane::platform::data::Design
