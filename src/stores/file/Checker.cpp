#include "stores/file/Checker.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace norvane::platform::core::storage::datastore {
namespace {

// Room that is used again for record after record.
class ScratchTarget : public LoadTarget {
  public:
    std::byte* take(std::uint32_t size) override {
        if (size >= bytes_.size()) bytes_.resize(std::size_t{size} + 1);
        return bytes_.data();
    }

  private:
    std::vector<std::byte> bytes_;
};

}  // namespace

std::string wordsOf(const StoreError& error, const std::string& path) {
    const std::string words = error.what();
    return words.starts_with(path + ": ") ? words.substr(path.size() + 2) : words;
}

void Checker::add(const char* code, std::uint32_t offset, const std::string& text) {
    if (problems_.size() < kMostProblems) problems_.push_back({code, offset, text});
    if (problems_.size() + 1 == kMostProblems)
        problems_.push_back({"structure", IDataStore::BADOFF, "there are more problems than are told"});
}

template <class Step>
bool Checker::noting(const char* code, std::uint32_t offset, Step&& step) {
    try {
        step();
        return true;
    } catch (const StoreError& error) {
        if (error.code() != StoreError::Code::damaged) throw;
        add(code, offset, wordsOf(error, path_));
        return false;
    }
}

std::vector<StoreFile::Problem> Checker::run() {
    connection_.database().run("BEGIN", Doing::reading);
    noting("structure", IDataStore::BADOFF, [&] { checkPages(); });
    checkMeta();
    const std::uint64_t blocks = blockCount(meta_.next);
    for (std::uint64_t block = 0; block < blocks; ++block) checkBlock(static_cast<std::uint32_t>(block));
    checkRest();
    connection_.endReading();
    return std::move(problems_);
}

void Checker::checkPages() {
    Statement row(connection_.database(), "PRAGMA integrity_check(100)", Doing::reading);
    while (row.step())
        if (const std::string text = row.text(0); text != "ok") add("structure", IDataStore::BADOFF, text);
}

std::int64_t Checker::largest(const char* sql) {
    std::int64_t found = -1;
    noting("structure", IDataStore::BADOFF, [&] {
        Statement row(connection_.database(), sql, Doing::reading);
        if (row.step() && row.type(0) == SQLITE_INTEGER) found = row.number(0);
    });
    return std::clamp(found, std::int64_t{-1}, static_cast<std::int64_t>(kEndOfOffsets) - 1);
}

// Without what the file says of itself, the records that there are tell how far it goes.
void Checker::checkMeta() {
    if (noting("meta", IDataStore::BADOFF, [&] { meta_ = connection_.meta().meta; })) return;
    meta_ = {};
    meta_.next = static_cast<std::uint64_t>(largest("SELECT max(id) FROM record") + 1);
    meta_.recordCount = std::numeric_limits<std::uint64_t>::max();
}

bool Checker::findLive(std::uint32_t block, Offsets& offsets) {
    LiveBits bits{};
    if (!noting("directory", block * kBlockSize, [&] { bits = connection_.liveBits(block); })) return false;
    for (std::uint32_t at = 0; at < kBlockSize; ++at)
        if ((bits[at / 8] >> (at % 8) & std::byte{1}) != std::byte{0})
            offsets.push_back(block * kBlockSize + at);
    return true;
}

// Damage can make rows come in any order, and again and again.
bool Checker::findRows(std::uint32_t block, Offsets& offsets) {
    const std::int64_t first = std::int64_t{block} * kBlockSize;
    return noting("structure", block * kBlockSize, [&] {
        Statement row(connection_.database(), "SELECT id FROM record WHERE id BETWEEN ? AND ? ORDER BY id",
                      Doing::reading);
        row.bind(1, first).bind(2, first + kBlockSize - 1);
        for (std::int64_t last = first - 1; row.step(); last = row.number(0)) {
            if (row.number(0) <= last || row.number(0) >= first + kBlockSize)
                failDamaged(path_, "records out of order", IDataStore::BADOFF);
            offsets.push_back(static_cast<std::uint32_t>(row.number(0)));
        }
    });
}

// What the directory knows, and what is there: each is to be found in the other.
void Checker::checkBlock(std::uint32_t block) {
    Offsets live;
    Offsets rows;
    const bool isLiveKnown = findLive(block, live);
    const bool areRowsKnown = findRows(block, rows);
    liveCount_ += live.size();
    Offsets all;
    std::set_union(live.begin(), live.end(), rows.begin(), rows.end(), std::back_inserter(all));
    if (!isLiveKnown && !areRowsKnown) {
        all.resize(kBlockSize);
        for (std::uint32_t at = 0; at < kBlockSize; ++at) all[at] = block * kBlockSize + at;
    }
    for (const std::uint32_t offset : all)
        checkRecord(offset, std::binary_search(live.begin(), live.end(), offset), isLiveKnown);
}

void Checker::checkRecord(std::uint32_t offset, bool isLive, bool isDirectoryKnown) {
    ScratchTarget target;
    bool isThere = false;
    if (!noting("record", offset, [&] { isThere = connection_.load(offset, target); })) return;
    if (isLive && !isThere) add("record", offset, "a record is missing");
    if (isThere && !isLive && isDirectoryKnown)
        add("directory", offset, "a record that the directory does not know");
    if (isThere && offset >= meta_.next) add("record", offset, "a record behind the end");
}

void Checker::checkRest() {
    if (meta_.recordCount != std::numeric_limits<std::uint64_t>::max() && liveCount_ != meta_.recordCount)
        add("meta", IDataStore::BADOFF,
            "says that there are " + std::to_string(meta_.recordCount) + " records, the directory " +
                std::to_string(liveCount_));
    const std::string end = std::to_string(blockCount(meta_.next) * kBlockSize);
    const std::string blocks = std::to_string(blockCount(meta_.next));
    checkOrphans(("SELECT id FROM record WHERE id < 0 OR id >= " + end + " LIMIT 100").c_str(), "record",
                 "a record behind the end");
    checkOrphans(("SELECT block FROM live WHERE block < 0 OR block >= " + blocks + " LIMIT 100").c_str(),
                 "directory", "tells of records behind the end");
    checkOrphans(
        "SELECT DISTINCT id / 4096 FROM part WHERE NOT EXISTS (SELECT 1 FROM record WHERE "
        "record.id = part.id / 4096 AND typeof(record.data) = 'integer') LIMIT 100",
        "record", "parts of a record that has none");
    checkOrphans("SELECT id FROM meta WHERE id <> 1 LIMIT 100", "meta", "says more than one thing of itself");
}

void Checker::checkOrphans(const char* sql, const char* code, const char* words) {
    noting("structure", IDataStore::BADOFF, [&] {
        Statement row(connection_.database(), sql, Doing::reading);
        while (row.step()) add(code, IDataStore::BADOFF, std::string(words) + ": " + row.text(0));
    });
}

}  // namespace norvane::platform::core::storage::datastore
