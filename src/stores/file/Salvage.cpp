#include "stores/file/Salvage.h"

#include <algorithm>
#include <cstring>
#include <tuple>

namespace norvane::platform::core::storage::datastore {

bool Salvage::Place::operator<(const Place& other) const {
    return std::tuple(id, isStray, other.page, position) <
           std::tuple(other.id, other.isStray, page, other.position);
}

Salvage::Salvage(const RawFile& file, StoreFile::Search search) : file_(file) {
    for (const std::uint32_t root : roots()) walk(root);
    if (search == StoreFile::Search::byPage) sweep();
    std::sort(records_.begin(), records_.end());
    std::sort(parts_.begin(), parts_.end());
}

// Where the first page says that the tables begin, and where they begin in every file that was made here.
std::vector<std::uint32_t> Salvage::roots() const {
    std::vector<std::uint32_t> found;
    Page page;
    if (!file_.read(1, page)) return found;
    for (const std::uint16_t place : rowPlaces(page, headAt(1))) {
        const auto row = rowAt(page, place);
        const auto root = row && row->columnCount == 5 ? row->number(3) : std::nullopt;
        if (root && *root > 1 && *root <= file_.pageCount())
            found.push_back(static_cast<std::uint32_t>(*root));
    }
    for (std::uint32_t root = 2; root < 2 + kTables.size(); ++root) found.push_back(root);
    return found;
}

void Salvage::walk(std::uint32_t root) {
    std::vector<std::uint32_t> waiting{root};
    Page page;
    while (!waiting.empty()) {
        const std::uint32_t number = waiting.back();
        waiting.pop_back();
        if (number < 2 || seen_.contains(number) || !file_.read(number, page)) continue;
        seen_.insert(number);
        const std::byte kind = page[headAt(number)];
        // A page whose kind is damaged may be either: wrong checksums tell what it is not.
        if (kind != kInnerPage && take(number, false)) continue;
        if (kind == kLeafPage) continue;
        const std::vector<std::uint32_t> children = childrenOf(page, headAt(number));
        waiting.insert(waiting.end(), children.rbegin(), children.rend());
    }
}

// A page in which a long row goes on begins with the number of another page, and so never like a leaf; nor
// does the first page, unless another one has come into its place.
void Salvage::sweep() {
    Page page;
    for (std::uint32_t number = file_.nextStored(1); number != 0; number = file_.nextStored(number + 1))
        if (!seen_.contains(number) && file_.read(number, page) && page[0] == kLeafPage) take(number, true);
}

// True if anything was found. Where not every row that the page lists is sound, its bytes are searched for
// rows that are no more listed.
bool Salvage::take(std::uint32_t number, bool isStray) {
    Page page;
    if (!file_.read(number, page)) return false;
    std::vector<bool> known(page.size());
    bool isWhole = page[0] == kLeafPage;
    const std::size_t before = records_.size() + parts_.size() + live_.size();
    for (const std::uint16_t place : rowPlaces(page, 0)) {
        const auto row = rowAt(page, place);
        if (!row || !takeRow(*row, {static_cast<std::uint64_t>(row->id), number, place, isStray})) {
            isWhole = false;
            continue;
        }
        std::fill(known.begin() + place, known.begin() + static_cast<std::ptrdiff_t>(row->end), true);
    }
    if (!isWhole) takeHidden(page, {0, number, 0, isStray}, known);
    return records_.size() + parts_.size() + live_.size() != before;
}

void Salvage::takeHidden(const Page& page, const Place& place, const std::vector<bool>& known) {
    for (std::size_t at = 8; at < page.size(); ++at) {
        const auto row = known[at] ? std::nullopt : rowAt(page, at);
        if (!row) continue;
        const Place here{static_cast<std::uint64_t>(row->id), place.page, static_cast<std::uint16_t>(at),
                         place.isStray};
        if (takeRow(*row, here)) at = row->end - 1;
    }
}

// False for what is no row of a store, or not a sound one as far as the page itself tells.
bool Salvage::takeRow(const RawRow& row, const Place& place) {
    if (row.looksLikePart()) {
        parts_.push_back(place);
        return true;
    }
    if (const auto meta = metaOf(row)) {
        if (!hasMeta_ || meta->meta.revision > meta_.revision) meta_ = meta->meta;
        return hasMeta_ = true;
    }
    if (!row.looksLikeRecord()) return false;
    const auto id = static_cast<std::uint32_t>(row.id);
    if (row.local.size() == row.size && !row.hasParts()) {
        const std::span<const std::byte> bytes =
            row.local.subspan(row.columns[2].position, row.columns[2].size);
        const bool mayBeLive = bytes.empty() || bytes.size() == kBlockBytes;
        if (mayBeLive && row.number(1) == checksumOfBlock(id, bytes)) {
            LiveBits bits{};
            std::copy(bytes.begin(), bytes.end(), bits.begin());
            live_.emplace(id, bits);
            return true;
        }
        if (row.number(1) != checksumOf(id, bytes)) return false;
    }
    records_.push_back(place);
    return true;
}

// A record that the directory calls removed is an old one that was left in some page.
bool Salvage::isRemoved(std::uint32_t offset) const {
    const auto found = live_.find(offset / kBlockSize);
    if (found == live_.end()) return false;
    const std::byte bits = found->second[offset % kBlockSize / 8];
    return (bits >> (offset % 8) & std::byte{1}) == std::byte{0};
}

void Salvage::visit(const StoreFile::Visitor& visitor) {
    for (auto at = records_.begin(); at != records_.end();) {
        const std::uint64_t id = at->id;
        bool isGiven = isRemoved(static_cast<std::uint32_t>(id));
        for (; at != records_.end() && at->id == id; ++at) isGiven = isGiven || give(*at, visitor);
    }
}

bool Salvage::give(const Place& place, const StoreFile::Visitor& visitor) {
    Page page;
    const auto offset = static_cast<std::uint32_t>(place.id);
    const auto row = file_.read(place.page, page) ? rowAt(page, place.position) : std::nullopt;
    if (!row || !row->looksLikeRecord()) return false;
    std::vector<std::byte> bytes;
    const bool isRead = row->hasParts()
                            ? assemble(offset, static_cast<std::uint64_t>(row->number(2).value_or(0)), bytes)
                            : readColumn(file_, *row, 2, bytes);
    if (!isRead || row->number(1) != checksumOf(offset, bytes)) return false;
    ++given_;
    end_ = std::uint64_t{offset} + 1;
    visitor(offset, bytes.empty() ? static_cast<const void*>("") : bytes.data(),
            static_cast<std::uint32_t>(bytes.size()));
    return true;
}

bool Salvage::assemble(std::uint32_t offset, std::uint64_t size, std::vector<std::byte>& bytes) const {
    const std::uint64_t first = offset * kMostParts;
    if (size > std::uint64_t{file_.pageCount()} * kPageSize) return false;
    auto at = std::lower_bound(parts_.begin(), parts_.end(), first,
                               [](const Place& place, std::uint64_t id) { return place.id < id; });
    std::vector<std::byte> part;
    for (std::uint64_t id = first; bytes.size() < size && id < first + kMostParts; ++id) {
        bool isFound = false;
        for (; at != parts_.end() && at->id == id; ++at) {
            Page page;
            const auto row =
                isFound || !file_.read(at->page, page) ? std::nullopt : rowAt(page, at->position);
            if (!row || !row->looksLikePart() || row->columns[1].size > size - bytes.size()) continue;
            isFound = readColumn(file_, *row, 1, part);
        }
        if (!isFound) return false;
        bytes.insert(bytes.end(), part.begin(), part.end());
    }
    return bytes.size() == size;
}

StoreFile::Summary Salvage::summary() const {
    StoreFile::Summary summary;
    summary.version = meta_.version;
    summary.end = std::max(meta_.next, end_);
    summary.recordCount = hasMeta_ ? meta_.recordCount : given_;
    summary.revision = meta_.revision;
    return summary;
}

}  // namespace norvane::platform::core::storage::datastore
