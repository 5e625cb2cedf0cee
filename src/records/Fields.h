// Where every byte of every record stands. This is the only place that spells a byte position; all else
// names a field. A record is packed and little-endian: fixed fields in byte order, then the sections (the
// variable tail) in the order of the format's list. Texts are UTF-16 with their NUL, and a section's size
// field counts bytes, NUL included; size 0 means that the section is absent.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

namespace norvane::platform::data::Record {

enum class Kind : std::uint8_t { root = 0, primitive = 1, table = 2, offsets = 3, container = 4, locale = 5 };

// The byte that `kindOf` gives for a record that is not there; no kind has it.
inline constexpr std::uint8_t kNoKind = 0xFF;

// The flags byte of an entity.
inline constexpr std::uint8_t kOptional = 1;
inline constexpr std::uint8_t kFixed = 2;
inline constexpr std::uint8_t kInherited = 4;
inline constexpr std::uint8_t kHasUri = 8;

// A fixed field: the width lives in the type.
template <class T>
struct Field {
    static_assert(std::is_unsigned_v<T>);
    std::uint32_t position;
    static constexpr std::uint32_t width = sizeof(T);
};

using U8 = Field<std::uint8_t>;
using U32 = Field<std::uint32_t>;

namespace field {
// Every record.
inline constexpr U8 kind{0};
// Every entity (root, primitive, table, container).
inline constexpr U32 parent{1};
inline constexpr U32 openCount{5};
inline constexpr U32 locale{9};
inline constexpr U8 flags{13};
inline constexpr U32 children{14};
// Root.
inline constexpr U32 rootNameSize{18};
// Container.
inline constexpr U8 containerKind{18};
inline constexpr U32 containerNameSize{19};
inline constexpr U32 classTextSize{23};
inline constexpr U32 linkTargetSize{27};
// Primitive and table.
inline constexpr U32 unit{18};
// Primitive.
inline constexpr U32 dataType{22};
inline constexpr U32 localeTagSize{26};
inline constexpr U32 primitiveNameSize{30};
inline constexpr U32 structTypeSize{34};
inline constexpr U32 valueSize{38};
// Table.
inline constexpr U32 defaults{22};
inline constexpr U32 tableNameSize{26};
inline constexpr U32 tableClassSize{30};
// Locale.
inline constexpr U32 payloadSize{1};
}  // namespace field

inline constexpr std::uint32_t kOffsetsHeader = 1;  // the kind byte; 32-bit values follow

// One row of a record's format, for the dump, the checker and the page in docs/.
struct FieldRow {
    const char* name;
    std::uint32_t position;
    std::uint32_t width;
};

// One section of the tail: its name and the position of the 32-bit field that holds its size.
struct SectionRow {
    const char* name;
    std::uint32_t sizePosition;
    bool isText;
};

namespace format {

#define QVT_ENTITY_HEADER                                                           \
    FieldRow{"kind", 0, 1}, FieldRow{"parent", 1, 4}, FieldRow{"open count", 5, 4}, \
        FieldRow{"locale", 9, 4}, FieldRow{"flags", 13, 1}, FieldRow {              \
        "children", 14, 4                                                           \
    }

inline constexpr std::array rootFields{QVT_ENTITY_HEADER, FieldRow{"name size", 18, 4}};
inline constexpr std::array containerFields{
    QVT_ENTITY_HEADER,
    FieldRow{"container kind", 18, 1},
    FieldRow{"name size", 19, 4},
    FieldRow{"class text size", 23, 4},
    FieldRow{"link target size", 27, 4},
};
inline constexpr std::array primitiveFields{
    QVT_ENTITY_HEADER,
    FieldRow{"unit", 18, 4},
    FieldRow{"data type", 22, 4},
    FieldRow{"locale tag size", 26, 4},
    FieldRow{"name size", 30, 4},
    FieldRow{"struct type size", 34, 4},
    FieldRow{"value size", 38, 4},
};
inline constexpr std::array tableFields{
    QVT_ENTITY_HEADER,
    FieldRow{"unit", 18, 4},
    FieldRow{"defaults", 22, 4},
    FieldRow{"name size", 26, 4},
    FieldRow{"class text size", 30, 4},
};
inline constexpr std::array offsetsFields{FieldRow{"kind", 0, 1}};
inline constexpr std::array localeFields{FieldRow{"kind", 0, 1}, FieldRow{"payload size", 1, 4}};

#undef QVT_ENTITY_HEADER

inline constexpr std::array rootSections{SectionRow{"name", 18, true}};
inline constexpr std::array containerSections{
    SectionRow{"name", 19, true},
    SectionRow{"class text", 23, true},
    SectionRow{"link target", 27, true},
};
// The name comes second here: it stands behind the locale tag.
inline constexpr std::array primitiveSections{
    SectionRow{"locale tag", 26, true},
    SectionRow{"name", 30, true},
    SectionRow{"struct type", 34, true},
    SectionRow{"value", 38, false},
};
inline constexpr std::array tableSections{SectionRow{"name", 26, true}, SectionRow{"class text", 30, true}};
inline constexpr std::array localeSections{SectionRow{"payload", 1, true}};

template <std::size_t N>
constexpr bool isContiguous(const std::array<FieldRow, N>& rows) {
    std::uint32_t next = 0;
    for (const FieldRow& row : rows) {
        if (row.position != next) return false;
        next += row.width;
    }
    return true;
}
static_assert(isContiguous(rootFields) && isContiguous(containerFields) && isContiguous(primitiveFields));
static_assert(isContiguous(tableFields) && isContiguous(offsetsFields) && isContiguous(localeFields));

}  // namespace format

struct Format {
    Kind kind;
    const char* name;
    std::uint32_t fixedSize;
    std::span<const FieldRow> fields;
    std::span<const SectionRow> sections;
};

inline constexpr std::array<Format, 6> kFormats{
    Format{Kind::root, "root", 22, format::rootFields, format::rootSections},
    Format{Kind::primitive, "primitive", 42, format::primitiveFields, format::primitiveSections},
    Format{Kind::table, "table", 34, format::tableFields, format::tableSections},
    Format{Kind::offsets, "offsets", 1, format::offsetsFields, {}},
    Format{Kind::container, "container", 31, format::containerFields, format::containerSections},
    Format{Kind::locale, "locale", 5, format::localeFields, format::localeSections},
};

constexpr bool fixedSizesAreTheSumsOfTheirFields() {
    for (const Format& each : kFormats)
        if (each.fields.back().position + each.fields.back().width != each.fixedSize) return false;
    return true;
}
static_assert(fixedSizesAreTheSumsOfTheirFields());

// The format of a kind byte, or null for a byte that no record has.
constexpr const Format* formatOf(std::uint8_t kind) {
    return kind < kFormats.size() ? &kFormats[kind] : nullptr;
}

constexpr const Format& formatOf(Kind kind) { return kFormats[static_cast<std::size_t>(kind)]; }

// Root, primitive, table and container have the entity header.
constexpr bool isEntity(std::uint8_t kind) { return kind == 0 || kind == 1 || kind == 2 || kind == 4; }

// The kinds that can stand in a list of children.
constexpr bool isChildKind(std::uint8_t kind) { return kind == 1 || kind == 2 || kind == 4; }

// The size field of an entity's name, by kind. Only for entities.
constexpr U32 nameSizeField(Kind kind) {
    switch (kind) {
        case Kind::primitive:
            return field::primitiveNameSize;
        case Kind::table:
            return field::tableNameSize;
        case Kind::container:
            return field::containerNameSize;
        default:
            return field::rootNameSize;
    }
}

}  // namespace norvane::platform::data::Record
