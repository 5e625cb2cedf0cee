#include "records/Records.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "records/SizeClass.h"

namespace norvane::platform::data::Record {

using core::memory::PooledHeap;

namespace {

constexpr std::uint32_t kWholeRecord = 0xFFFFFFFFu;

// Takes the block zeroed.
Block zeroed(std::uint32_t capacity) {
    Block block(capacity);
    if (capacity != 0) std::memset(block.bytes(), 0, capacity);
    return block;
}

// The whole record in a zeroed buffer of its size class; `size` is 0 when there is no record.
Block readWhole(IDataStore* store, std::uint32_t offset, std::uint32_t& size) {
    size = offset == IDataStore::BADOFF ? 0 : store->recordSize(offset);
    Block block = zeroed(sizeClass(size));
    if (size != 0) store->read(offset, block.bytes(), kWholeRecord);
    return block;
}

// Gives the place behind the copy. A null `from` has size 0.
std::byte* copyBytes(std::byte* to, const void* from, std::uint64_t size) {
    if (size != 0) std::memcpy(to, from, size);
    return to + size;
}

bool hasSection(const Format& format, U32 sizeField) {
    return std::any_of(format.sections.begin(), format.sections.end(),
                       [&](const SectionRow& row) { return row.sizePosition == sizeField.position; });
}

}  // namespace

std::uint8_t kindOf(IDataStore* store, std::uint32_t offset) {
    std::uint8_t kind = 0;
    store->read(offset, &kind, 1);
    if (kind != 0) return kind;
    if (offset == IDataStore::BADOFF) return kNoKind;
    return store->recordSize(offset) >= formatOf(Kind::root).fixedSize ? kind : kNoKind;
}

Block::Block(std::uint32_t capacity)
    : bytes_(capacity == 0 ? nullptr : static_cast<std::byte*>(PooledHeap::malloc(capacity))),
      capacity_(capacity) {}

Block::Block(Block&& other) noexcept
    : bytes_(std::exchange(other.bytes_, nullptr)), capacity_(std::exchange(other.capacity_, 0)) {}

Block& Block::operator=(Block&& other) noexcept {
    std::swap(bytes_, other.bytes_);
    std::swap(capacity_, other.capacity_);
    return *this;
}

void Snapshot::copy(IDataStore* store, std::uint32_t offset) {
    std::uint32_t size = 0;
    copy_ = readWhole(store, offset, size);
    view_ = View(copy_.bytes(), size);
}

Base::Base(IDataStore* store) : store_(store), offset_(IDataStore::BADOFF) {}

Base::Base(IDataStore* store, std::uint32_t offset)
    : store_(store), offset_(offset), buffer_(readWhole(store, offset, size_)) {}

Base::~Base() = default;

void Base::allocate(std::uint32_t size) {
    buffer_ = Block();
    size_ = 0;
    buffer_ = zeroed(sizeClass(size));
    size_ = size;
}

void Base::grow(std::uint32_t delta) {
    const std::uint32_t size = checkedSize(std::uint64_t{size_} + delta);
    if (size > capacity()) {
        Block larger = zeroed(sizeClass(size));
        if (size_ != 0) std::memcpy(larger.bytes(), bytes(), size_);
        buffer_ = std::move(larger);
    }
    if (delta != 0) std::memset(bytes() + size_, 0, delta);
    size_ = size;
}

void Base::commit() {
    if (size_ == 0) return;
    if (offset_ == IDataStore::BADOFF)
        offset_ = store_->append(bytes(), size_);
    else
        store_->write(offset_, bytes(), size_, true);
}

void Base::writeBookkeeping() {
    if (size_ != 0) store_->write(offset_, bytes(), size_, false);
}

void Entity::replaceSection(U32 sizeField, const void* data, std::uint64_t dataSize, std::uint64_t zeros) {
    const View old = view();
    const Format* format = formatOf(old.kind());
    if (!format || old.size() < format->fixedSize || !hasSection(*format, sizeField)) return;

    const std::uint64_t others = old.size() - old.section(sizeField).size;
    const std::uint32_t newSize = checkedSize(others + dataSize + zeros);
    Block buffer(sizeClass(newSize));
    const std::byte* from = old.bytes();
    std::byte* out = copyBytes(buffer.bytes(), from, format->fixedSize);
    from += format->fixedSize;
    for (const SectionRow& row : format->sections) {
        const Section kept = old.section(U32{row.sizePosition});
        const std::byte* begin = out;
        if (row.sizePosition == sizeField.position)
            out = std::fill_n(copyBytes(out, data, dataSize), zeros, std::byte{0});
        else
            out = copyBytes(out, kept.begin, kept.size);
        const auto bytes = static_cast<std::uint32_t>(out - begin);
        std::memcpy(buffer.bytes() + row.sizePosition, &bytes, sizeof bytes);
        from += kept.size;
    }
    copyBytes(out, from, static_cast<std::size_t>(old.bytes() + old.size() - from));
    buffer_ = std::move(buffer);
    size_ = newSize;
}

void Entity::setField(U32 sizeField, const void* data, std::uint64_t dataSize, std::uint64_t zeros) {
    replaceSection(sizeField, data, dataSize, zeros);
    commit();
}

bool Entity::takes(U32 sizeField, std::uint64_t sectionSize) const {
    const std::uint64_t others = size() - view().section(sizeField).size;
    return others + sectionSize <= store_->recordLimit();
}

Offsets::Offsets(IDataStore* store) : Base(store) {
    allocate(formatOf(Kind::offsets).fixedSize);
    set(field::kind, static_cast<std::uint8_t>(Kind::offsets));
    commit();
}

void Offsets::setAt(std::uint32_t index, std::uint32_t value) {
    if (size() < kOffsetsHeader) return;
    const std::uint32_t present = count();
    if (index >= present) grow(checkedSize((std::uint64_t{index} - present) * 4 + 4));
    std::memcpy(bytes() + kOffsetsHeader + std::size_t{index} * 4, &value, sizeof value);
    commit();
}

bool Offsets::removeValue(std::uint32_t value) {
    const View list = view();
    const std::uint32_t present = count();
    std::uint32_t index = 0;
    while (index < present && list.value(index) != value) ++index;
    if (index == present) return false;
    std::byte* slot = bytes() + kOffsetsHeader + std::size_t{index} * 4;
    std::byte* end = bytes() + size_;
    std::memmove(slot, slot + 4, static_cast<std::size_t>(end - slot) - 4);
    std::memset(end - 4, 0, 4);
    size_ -= 4;
    commit();
    return true;
}

void Offsets::append(const std::uint32_t* values, std::size_t count) {
    if (count == 0 || size() < kOffsetsHeader) return;
    const std::uint32_t end = kOffsetsHeader + this->count() * 4;
    const std::uint32_t size = checkedSize(std::uint64_t{end} + std::uint64_t{count} * 4);
    if (size > size_) grow(size - size_);
    std::memcpy(bytes() + end, values, count * 4);
    commit();
}

namespace {

// The first slot of that value; the number of slots if there is none. Lists can be long: slots are compared
// by the block, of which only one is looked through.
std::uint32_t slotOf(const View& list, std::uint32_t value) {
    constexpr std::uint32_t kBlock = 32;
    const std::uint32_t count = list.valueCount();
    std::uint32_t index = 0;
    for (; index + kBlock <= count; index += kBlock) {
        std::uint32_t block[kBlock];
        std::memcpy(block, list.bytes() + kOffsetsHeader + std::size_t{index} * 4, sizeof block);
        std::uint32_t found = 0;
        for (const std::uint32_t each : block) found |= each == value ? 1u : 0u;
        if (found != 0) break;
    }
    while (index < count && list.value(index) != value) ++index;
    return index;
}

// Puts a value back at its position of a list that has moved up over it.
void moveDown(IDataStore* store, std::uint32_t offset, std::uint32_t position, std::uint32_t value) {
    const Snapshot record(store, offset);
    const std::uint32_t behind = position + 4;
    store->patch(offset, behind, record->bytes() + position, record->size() - behind, true);
    store->patch(offset, position, &value, sizeof value, true);
}

// Lets go of the last value, which stands twice since the others have moved up over `value`. Where the store
// fails, the list is as it was.
void shorten(IDataStore* store, std::uint32_t offset, std::uint32_t size, std::uint32_t position,
             std::uint32_t value) {
    try {
        const Snapshot record(store, offset);
        store->write(offset, record->bytes(), size, true);
    } catch (...) {
        try {
            moveDown(store, offset, position, value);
        } catch (...) {  // the first failure is the one to tell
        }
        throw;
    }
}

}  // namespace

bool removeListed(IDataStore* store, std::uint32_t offset, std::uint32_t value) {
    std::uint32_t size = 0;
    const void* bytes = offset == IDataStore::BADOFF ? nullptr : store->view(offset, size);
    if (bytes) {
        const View list(bytes, size);
        if (!list.isWhole(Kind::offsets)) return false;
        const std::uint32_t slot = slotOf(list, value);
        if (slot == list.valueCount()) return false;
        const std::uint32_t position = kOffsetsHeader + slot * 4;
        if (store->patch(offset, position, list.bytes() + position + 4, size - position - 4, true)) {
            shorten(store, offset, size - 4, position, value);
            return true;
        }
    }
    Offsets list(store, offset);
    return list.view().isWhole(Kind::offsets) && list.removeValue(value);
}

Locale::Locale(IDataStore* store) : Base(store) {
    allocate(formatOf(Kind::locale).fixedSize);
    set(field::kind, static_cast<std::uint8_t>(Kind::locale));
    commit();
}

void Locale::setPayload(const void* payload, std::uint64_t payloadSize) {
    const std::uint32_t header = formatOf(Kind::locale).fixedSize;
    const std::uint32_t size = checkedSize(header + payloadSize);
    if (size_ == 0) return;
    allocate(size);
    set(field::kind, static_cast<std::uint8_t>(Kind::locale));
    set(field::payloadSize, static_cast<std::uint32_t>(payloadSize));
    if (payloadSize != 0) std::memcpy(bytes() + header, payload, payloadSize);
    commit();
}

std::uint32_t appendList(IDataStore* store, std::uint32_t value) {
    std::array<std::byte, kOffsetsHeader + sizeof value> list{
        std::byte{static_cast<std::uint8_t>(Kind::offsets)}};
    std::memcpy(&list[kOffsetsHeader], &value, sizeof value);
    return store->append(list.data(), static_cast<std::uint32_t>(list.size()));
}

void storeBytes(IDataStore* store, std::uint32_t offset, std::uint64_t position, const void* bytes,
                std::uint32_t size, bool flag) {
    const std::uint32_t recordSize = offset == IDataStore::BADOFF ? 0 : store->recordSize(offset);
    if (position + size > recordSize || size == 0) return;
    if (store->patch(offset, static_cast<std::uint32_t>(position), bytes, size, flag)) return;
    Base record(store, offset);
    if (position + size > record.size()) return;
    std::memcpy(record.bytes() + position, bytes, size);
    if (flag)
        record.commit();
    else
        record.writeBookkeeping();
}

void addToOpenCount(IDataStore* store, std::uint32_t offset, std::uint32_t change) {
    std::uint32_t size = 0;
    if (const void* bytes = offset == IDataStore::BADOFF ? nullptr : store->view(offset, size)) {
        const View record(bytes, size);
        constexpr U32 kField = field::openCount;
        if (!isEntity(record.kind()) || size < kField.position + kField.width) return;
        const std::uint32_t count = record.load(kField) + change;
        if (!store->patch(offset, kField.position, &count, kField.width, false))
            storeField(store, offset, kField, count, false);
        return;
    }
    Base record(store, offset);
    if (!isEntity(record.view().kind())) return;
    record.set(field::openCount, record.view().load(field::openCount) + change);
    record.writeBookkeeping();
}

}  // namespace norvane::platform::data::Record
