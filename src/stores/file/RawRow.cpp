#include "stores/file/RawRow.h"

#include <algorithm>

namespace norvane::platform::core::storage::datastore {
namespace {

// How much of a long row stays in its page.
constexpr std::uint64_t kMostLocal = kPageSize - 35;
constexpr std::uint64_t kLeastLocal = (kPageSize - 12) * 32 / 255 - 23;
constexpr std::size_t kOverflowHead = 4;
// Sizes may be damaged: what is there decides how much room is taken.
constexpr std::uint64_t kMostReserved = 1 << 20;

// Goes through bytes, never past their end.
class Cursor {
  public:
    Cursor(std::span<const std::byte> bytes, std::size_t position) : bytes_(bytes), position_(position) {}

    // Seven bits in a byte, the highest first, at most nine bytes of which the last counts whole.
    std::optional<std::uint64_t> varint() {
        std::uint64_t number = 0;
        for (int count = 0; count < 9; ++count) {
            if (position_ >= bytes_.size()) return std::nullopt;
            const auto byte = std::to_integer<std::uint64_t>(bytes_[position_++]);
            if (count == 8) return number << 8 | byte;
            number = number << 7 | (byte & 0x7F);
            if (byte < 0x80) return number;
        }
        return std::nullopt;
    }
    std::size_t position() const { return position_; }

  private:
    std::span<const std::byte> bytes_;
    std::size_t position_;
};

std::uint64_t sizeOfType(std::uint64_t type) {
    static constexpr std::array<std::uint64_t, 12> kSizes{0, 1, 2, 3, 4, 6, 8, 8, 0, 0, 0, 0};
    return type < kSizes.size() ? kSizes[type] : (type - 12) / 2;
}

std::uint64_t localSize(std::uint64_t size) {
    if (size <= kMostLocal) return size;
    const std::uint64_t wanted = kLeastLocal + (size - kLeastLocal) % (kPageSize - kOverflowHead);
    return wanted <= kMostLocal ? wanted : kLeastLocal;
}

// The columns lie within the row, or it is none. A damaged size of the row alone hides nothing.
bool findColumns(RawRow& row) {
    Cursor cursor(row.local, 0);
    const auto headSize = cursor.varint();
    if (!headSize || *headSize > row.local.size() || *headSize > row.size) return false;
    std::uint64_t position = *headSize;
    while (cursor.position() < *headSize) {
        const auto type = cursor.varint();
        if (!type || row.columnCount == RawRow::kMostColumns) return false;
        const std::uint64_t size = sizeOfType(*type);
        if (size > row.size - position) return false;
        row.columns[row.columnCount++] = {*type, position, size};
        position += size;
    }
    return cursor.position() == *headSize && position <= row.size;
}

}  // namespace

std::uint32_t numberAt(const Page& page, std::size_t position, std::size_t width) {
    std::uint32_t number = 0;
    for (std::size_t at = position; at < position + width; ++at)
        number = number << 8 | std::to_integer<std::uint32_t>(page[at]);
    return number;
}

std::optional<RawRow> rowAt(const Page& page, std::size_t position) {
    Cursor cursor(page, position);
    const auto size = cursor.varint();
    const auto id = size ? cursor.varint() : std::nullopt;
    if (!id || *size == 0 || *size > 0x7FFFFFFFu) return std::nullopt;
    RawRow row;
    row.id = static_cast<std::int64_t>(*id);
    row.size = *size;
    const std::uint64_t here = localSize(*size);
    row.end = cursor.position() + here + (here < *size ? kOverflowHead : 0);
    if (row.end > page.size()) return std::nullopt;
    row.local = std::span(page).subspan(cursor.position(), here);
    if (here < *size) row.overflow = numberAt(page, cursor.position() + here, kOverflowHead);
    if (!findColumns(row)) return std::nullopt;
    return row;
}

std::optional<std::int64_t> RawRow::number(std::size_t column) const {
    const Column& of = columns[column];
    if (column >= columnCount || !of.isNumber() || of.position + of.size > local.size()) return std::nullopt;
    if (of.size == 0) return of.type == 9 ? 1 : 0;
    const std::span<const std::byte> bytes = local.subspan(of.position, of.size);
    std::uint64_t number = (bytes[0] & std::byte{0x80}) != std::byte{0} ? ~0ull : 0;
    for (const std::byte byte : bytes) number = number << 8 | std::to_integer<std::uint64_t>(byte);
    return static_cast<std::int64_t>(number);
}

bool RawRow::looksLikeRecord() const {
    return columnCount == 3 && columns[0].size == 0 && columns[1].isNumber() && id >= 0 &&
           id < static_cast<std::int64_t>(kEndOfOffsets) && (columns[2].isBytes() || columns[2].isNumber());
}

bool RawRow::looksLikePart() const {
    return columnCount == 2 && columns[0].size == 0 && columns[1].isBytes() && id >= 0;
}

bool RawRow::looksLikeMeta() const {
    return columnCount == 8 && columns[0].size == 0 && id == kMetaId && overflow == 0;
}

std::vector<std::uint16_t> rowPlaces(const Page& page, std::size_t head) {
    const std::size_t count = std::min<std::size_t>(numberAt(page, head + 3, 2), (kPageSize - head - 8) / 2);
    std::vector<std::uint16_t> places(count);
    for (std::size_t at = 0; at < count; ++at)
        places[at] = static_cast<std::uint16_t>(numberAt(page, head + 8 + 2 * at, 2));
    return places;
}

std::vector<std::uint32_t> childrenOf(const Page& page, std::size_t head) {
    const std::size_t count = std::min<std::size_t>(numberAt(page, head + 3, 2), (kPageSize - head - 12) / 2);
    std::vector<std::uint32_t> children;
    for (std::size_t at = 0; at < count; ++at) {
        const std::size_t place = numberAt(page, head + 12 + 2 * at, 2);
        if (place + 4 <= kPageSize) children.push_back(numberAt(page, place, 4));
    }
    children.push_back(numberAt(page, head + 8, 4));
    return children;
}

// Each page that a row goes on in says where the next is. There are as many as the row's size asks for, so a
// ring of them ends too.
bool readColumn(const RawFile& file, const RawRow& row, std::size_t column, std::vector<std::byte>& bytes) {
    const RawRow::Column& of = row.columns[column];
    bytes.clear();
    if (row.size > std::uint64_t{file.pageCount()} * kPageSize) return false;
    bytes.reserve(std::min(of.size, kMostReserved));
    const auto take = [&](std::uint64_t begin, std::span<const std::byte> from) {
        const std::uint64_t first = std::max(begin, of.position);
        const std::uint64_t last = std::min(begin + from.size(), of.position + of.size);
        if (first < last)
            bytes.insert(bytes.end(), from.begin() + static_cast<std::ptrdiff_t>(first - begin),
                         from.begin() + static_cast<std::ptrdiff_t>(last - begin));
    };
    take(0, row.local);
    std::uint32_t next = row.overflow;
    for (std::uint64_t done = row.local.size(); done < row.size;) {
        Page page;
        if (!file.read(next, page)) return false;
        const std::uint64_t size = std::min<std::uint64_t>(row.size - done, kPageSize - kOverflowHead);
        take(done, std::span(page).subspan(kOverflowHead, size));
        done += size;
        next = numberAt(page, 0, 4);
    }
    return true;
}

std::optional<MetaRow> metaOf(const RawRow& row) {
    if (!row.looksLikeMeta()) return std::nullopt;
    std::array<std::int64_t, 7> numbers{};
    for (std::size_t at = 0; at < numbers.size(); ++at) {
        const auto number = row.number(at + 1);
        if (!number) return std::nullopt;
        numbers[at] = *number;
    }
    MetaRow found;
    found.meta.version = static_cast<std::uint32_t>(numbers[0]);
    found.meta.next = static_cast<std::uint64_t>(numbers[1]);
    found.meta.recordCount = static_cast<std::uint64_t>(numbers[2]);
    found.meta.revision = static_cast<std::uint64_t>(numbers[3]);
    found.token = numbers[4];
    found.previous = numbers[5];
    if (checksumOf(found) != numbers[6] || !isPlausible(found.meta)) return std::nullopt;
    return found;
}

}  // namespace norvane::platform::core::storage::datastore
