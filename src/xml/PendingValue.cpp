#include "xml/PendingValue.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "norvane/platform/core/string/StringAlgorithm.h"
#include "norvane/platform/data/metadata/tDataType.h"
#include "records/NewEntity.h"
#include "xml/NumberTypes.h"
#include "xml/UnitTable.h"
#include "xml/ValueReader.h"

namespace norvane::platform::data {

namespace field = Record::field;

namespace {

using core::string::StringAlgorithm;

// Values that are made for more than this ahead of their text are left to an open object.
constexpr std::uint64_t kMostPreset = 4096;

// The first attribute of a name counts, also when it has no value.
struct First {
    const char* value = nullptr;
    bool isThere = false;

    void offer(const char* offered) {
        if (!std::exchange(isThere, true)) value = offered;
    }
};

struct ValueAttributes {
    explicit ValueAttributes(Attributes attributes) {
        for (; attributes && *attributes; attributes += 2) take(attributes[0], attributes[1]);
    }

    void take(const char* attribute, const char* value) {
        if (isName(attribute, "name"))
            name.offer(value);
        else if (isName(attribute, "units"))
            units.offer(value);
        else if (isName(attribute, "dim"))
            dimension.offer(value);
        else if (isName(attribute, "uri") || isName(attribute, "locale"))
            isPlain = isPlain && !value;
    }

    First name;
    First units;
    First dimension;
    bool isPlain = true;
};

}  // namespace

bool PendingValue::begin(Metadata::Set& parent, const tKeyword& keyword, Attributes attributes) {
    type_ = keyword.detail;
    if (type_ == metadata::kStruct || !take(attributes) || !parent.hasRoomFor(name_)) return false;
    parent_ = &parent;
    return true;
}

bool PendingValue::take(Attributes attributes) {
    const ValueAttributes given(attributes);
    if (!given.isPlain || !given.name.value) return false;
    presetCount_ = presetCount(type_, given.dimension.value);
    if (std::uint64_t{presetCount_} * metadata::elementSize(type_) > kMostPreset) return false;
    units_ = given.units.value ? unitIdOf(given.units.value) : 0;
    name_.clear();
    StringAlgorithm::UTF8Decode(given.name.value, name_);
    return true;
}

bool PendingValue::end(const std::string& text) {
    const std::size_t written = valueSizeOf(text);
    const std::size_t preset = std::size_t{presetCount_} * metadata::elementSize(type_);
    const std::size_t size = std::max(written, preset);
    const std::uint64_t fixed = Record::formatOf(Record::Kind::primitive).fixedSize;
    if (fixed + Record::storedSize(name_) + size > parent_->store()->recordLimit()) return false;
    store(size, written);
    return true;
}

Owned<Metadata::Item> PendingValue::open() {
    IDataStore* const store = parent_->store();
    const std::size_t preset = std::size_t{presetCount_} * metadata::elementSize(type_);
    return makeOwned<Design::Primitive>(store, this->store(preset, 0));
}

// Nothing is pending from here on, whatever the store does.
std::uint32_t PendingValue::store(std::size_t valueSize, std::size_t writtenSize) {
    Metadata::Set& parent = *std::exchange(parent_, nullptr);
    Record::NewEntity record(Record::Kind::primitive);
    record.set(field::unit, units_);
    record.set(field::dataType, type_);
    record.addText(field::primitiveNameSize, name_);
    std::byte* value = record.addSection(field::valueSize, valueSize);
    lay(value, writtenSize);
    std::fill(value + writtenSize, value + valueSize, std::byte{0});
    return parent.appendChild(record, name_);
}

// How many bytes the text makes, which are kept until they are laid down.
std::size_t PendingValue::valueSizeOf(const std::string& text) {
    if (metadata::isTextType(type_)) return readText(text);
    if (type_ == metadata::kBinary) {
        decodeBase64(text, bytes_);
        return bytes_.size();
    }
    numbers_.read(text, type_);
    return numbers_.count() * metadata::elementSize(type_);
}

std::size_t PendingValue::readText(const std::string& text) {
    text_.clear();
    StringAlgorithm::UTF8Decode(text, text_);
    return (text_.size() + 1) * sizeof(tWChar);
}

void PendingValue::lay(std::byte* value, std::size_t size) {
    if (size == 0) return;
    const void* from = numbers_.elements();
    if (metadata::isTextType(type_)) from = text_.c_str();
    if (type_ == metadata::kBinary) from = bytes_.data();
    std::memcpy(value, from, size);
}

}  // namespace norvane::platform::data
