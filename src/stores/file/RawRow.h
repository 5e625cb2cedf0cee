// Rows as they lie in the pages of a store file, and what of them can be told without SQLite.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "stores/file/Layout.h"
#include "stores/file/RawFile.h"

namespace norvane::platform::core::storage::datastore {

// What the first byte of a page of a table says.
inline constexpr std::byte kLeafPage{0x0D};
inline constexpr std::byte kInnerPage{0x05};
// The first page begins with the header of the file.
inline std::size_t headAt(std::uint32_t pageNumber) { return pageNumber == 1 ? kFileHeaderSize : 0; }
std::uint32_t numberAt(const Page& page, std::size_t position, std::size_t width);

// A row of a leaf page: where its bytes lie and where its columns begin. All positions are within the page or
// checked to be within the row.
struct RawRow {
    static constexpr std::size_t kMostColumns = 8;
    struct Column {
        std::uint64_t type = 0;
        std::uint64_t position = 0;  // in the row
        std::uint64_t size = 0;

        bool isBytes() const { return type >= 12 && type % 2 == 0; }
        bool isText() const { return type >= 13 && type % 2 == 1; }
        bool isNumber() const { return (type >= 1 && type <= 6) || type == 8 || type == 9; }
    };

    std::int64_t id = 0;
    std::uint64_t size = 0;
    std::span<const std::byte> local;  // what is in this page
    std::uint32_t overflow = 0;        // the page where it goes on, or 0
    std::size_t end = 0;               // where in the page the next row may begin
    std::array<Column, kMostColumns> columns{};
    std::size_t columnCount = 0;

    // Numbers stand in front of bytes, and so in the first page of a row.
    std::optional<std::int64_t> number(std::size_t column) const;

    bool hasParts() const { return columns[2].isNumber(); }
    // Three columns: an id, a checksum, bytes or a size. Rows of records and of the directory.
    bool looksLikeRecord() const;
    bool looksLikePart() const;
    bool looksLikeMeta() const;
};

// None if there cannot be a row at this place. The row refers to the page.
std::optional<RawRow> rowAt(const Page& page, std::size_t position);
// The places of the rows that a leaf page lists.
std::vector<std::uint16_t> rowPlaces(const Page& page, std::size_t head);
// The pages that an inner page leads to, in order.
std::vector<std::uint32_t> childrenOf(const Page& page, std::size_t head);

// All bytes of a column; false if the pages where they lie are not there.
bool readColumn(const RawFile& file, const RawRow& row, std::size_t column, std::vector<std::byte>& bytes);

// The only row of `meta`, if this is it and it is sound.
std::optional<MetaRow> metaOf(const RawRow& row);

}  // namespace norvane::platform::core::storage::datastore
