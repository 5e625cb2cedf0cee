// The one checked way to look at the bytes of a record.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "records/Fields.h"

namespace norvane::platform::data::Record {

static_assert(std::endian::native == std::endian::little,
              "records are little-endian and are copied as they stand");

// Bytes of a record that a section really has: its size field clamped to the record.
struct Section {
    const std::byte* begin = nullptr;
    std::uint32_t size = 0;
};

// Looks at a record without owning it. A record may be damaged, shorter than its fixed part, or another kind
// than expected: a field that is not there reads as 0, a section is cut at the record's end, and a text ends
// at its first NUL or at its section's end. So no field of a record can lead outside of it.
class View {
  public:
    View() = default;
    View(const void* bytes, std::uint32_t size) : bytes_(static_cast<const std::byte*>(bytes)), size_(size) {}

    const std::byte* bytes() const { return bytes_; }
    std::uint32_t size() const { return size_; }

    template <class T>
    T load(Field<T> field) const {
        return loadAt<T>(field.position);
    }

    template <class T>
    T loadAt(std::uint64_t position) const {
        T value = 0;
        if (position + sizeof(T) <= size_) std::memcpy(&value, bytes_ + position, sizeof(T));
        return value;
    }

    std::uint8_t kind() const { return size_ == 0 ? kNoKind : load(field::kind); }

    // True when the record is of that kind and has all of its fixed part; only then is it worth opening.
    bool isWhole(Kind kind) const {
        return this->kind() == static_cast<std::uint8_t>(kind) && size_ >= formatOf(kind).fixedSize;
    }
    // The same for whichever kind the record has, if that is one of an entity, or of one that is listed.
    bool isWholeEntity() const { return isEntity(kind()) && isWhole(static_cast<Kind>(kind())); }
    bool isWholeChild() const { return isChildKind(kind()) && isWholeEntity(); }

    // The section whose size stands in `sizeField`; empty if the format of the record's kind has none such.
    Section section(U32 sizeField) const;
    // Where that section begins, by the size fields alone; may lie past the record's end in a damaged one.
    std::uint64_t sectionPosition(U32 sizeField) const;

    // All sections of a whole record of that kind, in the order of `rows`, which are its format's.
    template <std::size_t N>
    std::array<Section, N> sections(Kind kind, const std::array<SectionRow, N>& rows) const {
        std::array<Section, N> found{};
        std::uint64_t position = formatOf(kind).fixedSize;
        if (size_ < position) return found;
        for (std::size_t i = 0; i < N; ++i) {
            const std::uint32_t size = loadInside(rows[i].sizePosition);
            found[i] = sectionAt(position, size);
            position += size;
        }
        return found;
    }
    // The name of an entity, and the value of a primitive; empty for every other record.
    Section nameSection() const;
    Section valueSection() const {
        if (!isWhole(Kind::primitive)) return {};
        const std::uint64_t before = std::uint64_t{loadInside(field::localeTagSize.position)} +
                                     loadInside(field::primitiveNameSize.position) +
                                     loadInside(field::structTypeSize.position);
        return sectionAt(formatOf(Kind::primitive).fixedSize + before, loadInside(field::valueSize.position));
    }

    std::u16string text(U32 sizeField) const { return textOf(section(sizeField)); }
    // The name of an entity; empty for every other record.
    std::u16string name() const;
    // Equal to `name() == other`, without making a string.
    bool hasName(std::u16string_view other) const;

    static std::u16string textOf(Section section);
    // How many code units of the section its text has.
    static std::size_t unitsOf(Section section);

    // A record of offsets: how many whole values it holds, and value `index`, which must be below that count.
    std::uint32_t valueCount() const { return size_ < kOffsetsHeader ? 0 : (size_ - kOffsetsHeader) / 4; }
    std::uint32_t value(std::uint32_t index) const {
        return loadAt<std::uint32_t>(kOffsetsHeader + std::uint64_t{4} * index);
    }

  private:
    // Of a record that is long enough.
    std::uint32_t loadInside(std::uint32_t position) const {
        std::uint32_t value;
        std::memcpy(&value, bytes_ + position, sizeof value);
        return value;
    }

    Section sectionAt(std::uint64_t position, std::uint32_t size) const {
        if (position >= size_) return {};
        return {bytes_ + position, std::min(static_cast<std::uint32_t>(size_ - position), size)};
    }

    const std::byte* bytes_ = nullptr;
    std::uint32_t size_ = 0;
};

}  // namespace norvane::platform::data::Record
