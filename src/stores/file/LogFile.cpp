#include "stores/file/LogFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <map>
#include <optional>

#include "stores/file/Log.h"
#include "stores/file/OpenFile.h"
#include "stores/file/RawRow.h"

namespace norvane::platform::core::storage::datastore {
namespace {

constexpr std::size_t kLogHead = 32;
constexpr std::size_t kFrameHead = 24;
constexpr std::size_t kSummedHead = 8;  // of a frame
constexpr std::uint32_t kLogMagic = 0x377F0682;

// In the order of bytes of this machine, or in the other one.
template <bool kIsSwapped>
std::uint32_t numberIn(const std::byte* bytes) {
    std::uint32_t number = 0;
    std::memcpy(&number, bytes, sizeof number);
    return kIsSwapped ? __builtin_bswap32(number) : number;
}

template <bool kIsSwapped>
void addTo(std::array<std::uint32_t, 2>& sum, std::span<const std::byte> bytes) {
    const std::byte* const end = bytes.data() + bytes.size() / 8 * 8;
    for (const std::byte* at = bytes.data(); at != end; at += 8) {
        sum[0] += numberIn<kIsSwapped>(at) + sum[1];
        sum[1] += numberIn<kIsSwapped>(at + 4) + sum[0];
    }
}

}  // namespace

LogFile::LogFile(const std::string& path)
    : descriptor_(::open(logPathOf(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)),
      position_(kLogHead),
      bytes_(kFrameHead + kPageSize) {
    if (descriptor_ >= 0) readHead();
}

LogFile::~LogFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

// The sums are made of numbers in the order of bytes of the machine that began the log.
void LogFile::readHead() {
    std::array<std::byte, kLogHead> head{};
    if (!readAt(0, head)) return;
    const std::span<const std::byte> bytes(head);
    const std::uint32_t magic = bigEndian(bytes.first(4));
    isSwapped_ = (magic == (kLogMagic | 1)) != (std::endian::native == std::endian::big);
    std::copy_n(head.begin() + 16, salts_.size(), salts_.begin());
    stored_ = {bigEndian(bytes.subspan(24, 4)), bigEndian(bytes.subspan(28, 4))};
    hasHead_ = (magic & ~1u) == kLogMagic && bigEndian(bytes.subspan(8, 4)) == kPageSize &&
               sumFrom({}, bytes.first(24)) == stored_;
}

bool LogFile::readAt(std::uint64_t position, std::span<std::byte> buffer) const {
    std::size_t done = 0;
    while (done < buffer.size()) {
        const ssize_t got = ::pread(descriptor_, buffer.data() + done, buffer.size() - done,
                                    static_cast<off_t>(position + done));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        done += static_cast<std::size_t>(got);
    }
    return true;
}

LogFile::Sum LogFile::sumFrom(Sum sum, std::span<const std::byte> bytes) const {
    if (isSwapped_)
        addTo<true>(sum, bytes);
    else
        addTo<false>(sum, bytes);
    return sum;
}

bool LogFile::next(Frame& frame) {
    if (descriptor_ < 0 || !readAt(position_, bytes_)) return false;
    const std::span<const std::byte> bytes(bytes_);
    const Sum stored{bigEndian(bytes.subspan(16, 4)), bigEndian(bytes.subspan(20, 4))};
    const Sum sum = sumFrom(sumFrom(stored_, bytes.first(kSummedHead)), bytes.subspan(kFrameHead));
    frame.page = bigEndian(bytes.first(4));
    frame.pagesAfter = bigEndian(bytes.subspan(4, 4));
    frame.position = position_ + kFrameHead;
    frame.isOfThisLog = std::equal(salts_.begin(), salts_.end(), bytes_.begin() + 8);
    frame.isSound = frame.page != 0 && sum == stored;
    // Without a head, frames belong together that say the same.
    if (!hasHead_) std::copy_n(bytes_.begin() + 8, salts_.size(), salts_.begin());
    stored_ = stored;
    position_ += bytes_.size();
    return true;
}

bool LogFile::readPage(std::uint64_t position, Page& page) const { return readAt(position, page); }

Page LogFile::lastPage() const {
    Page page;
    std::copy(bytes_.begin() + kFrameHead, bytes_.end(), page.begin());
    return page;
}

namespace {

// Whether the file has all pages as the commits of a log without a head have left them.
bool isWrittenBack(const OpenFile& file) {
    LogFile log(file.path());
    std::map<std::uint32_t, std::uint64_t> uncommitted;
    std::map<std::uint32_t, std::uint64_t> committed;
    for (LogFile::Frame frame; log.next(frame);) {
        const bool isGood = frame.isOfThisLog && frame.isSound;
        if (!isGood && !committed.empty()) break;  // Behind the log are leftovers of an older one.
        if (!isGood) continue;
        uncommitted[frame.page] = frame.position;
        if (frame.pagesAfter == 0) continue;
        for (const auto& [page, position] : uncommitted) committed[page] = position;
        uncommitted.clear();
    }
    return std::all_of(committed.begin(), committed.end(), [&](const auto& entry) {
        Page inLog;
        Page inFile{};
        file.readAt(std::uint64_t{entry.first - 1} * kPageSize, inFile);
        return entry.first != 0 && log.readPage(entry.second, inLog) && inLog == inFile;
    });
}

// What a page says that `meta` begins in; none if it is not sound or not that page.
std::optional<MetaRow> metaIn(const Page& page) {
    if (page[0] != kLeafPage) return std::nullopt;
    for (const std::uint16_t place : rowPlaces(page, 0))
        if (const auto row = rowAt(page, place))
            if (const auto meta = metaOf(*row)) return meta;
    return std::nullopt;
}

// What a look at a log from its beginning to its end finds.
struct LogLook {
    explicit LogLook(LogFile& log);
    bool fits(const OpenFile& file) const;

    bool hasCommitsBehindGap = false;
    // What each commit before the gap says of itself. A commit without that cannot be told from another.
    std::vector<MetaRow> commits;
    bool areCommitsKnown = true;
};

// Commits are synced one by one, and what a failed one has left is cut off before the next begins. So no
// crash leaves anything behind a commit that is behind a gap.
LogLook::LogLook(LogFile& log) {
    bool hasGap = !log.hasHead();
    bool isAfterCommit = false;
    std::optional<MetaRow> meta;
    for (LogFile::Frame frame; log.next(frame);) {
        const bool isGood = frame.isOfThisLog && frame.isSound;
        hasCommitsBehindGap = hasCommitsBehindGap || (isGood && hasGap && isAfterCommit);
        if (hasCommitsBehindGap) return;
        hasGap = hasGap || !isGood;
        isAfterCommit = isGood && frame.pagesAfter != 0;
        if (hasGap) continue;
        if (frame.page == kMetaPage) meta = metaIn(log.lastPage());
        if (!isAfterCommit) continue;
        areCommitsKnown = areCommitsKnown && meta;
        if (meta) commits.push_back(*meta);
        meta.reset();
    }
}

// A log begins when all that was committed before is in the file, and is written back from its beginning on.
// Where a crash has left the page of the file torn there is nothing to compare.
bool LogLook::fits(const OpenFile& file) const {
    Page page{};
    file.readAt(std::uint64_t{kMetaPage - 1} * kPageSize, page);
    const auto found = metaIn(page);
    if (!found || !areCommitsKnown || commits.empty() || found->token == commits.front().previous)
        return true;
    return std::any_of(commits.begin(), commits.end(),
                       [&](const MetaRow& commit) { return commit.token == found->token; });
}

}  // namespace

// A log that begins anew gets a new head first; what stands behind it was written back before.
LogState stateOfLog(const OpenFile& file) {
    LogFile log(file.path());
    const LogLook look(log);
    if (look.hasCommitsBehindGap && (log.hasHead() || !isWrittenBack(file))) return LogState::damaged;
    return look.fits(file) ? LogState::sound : LogState::ofAnotherFile;
}

}  // namespace norvane::platform::core::storage::datastore
