#include "stores/file/LogFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>

#include "stores/file/Log.h"
#include "stores/file/OpenFile.h"

namespace norvane::platform::core::storage::datastore {
namespace {

constexpr std::size_t kLogHead = 32;
constexpr std::size_t kFrameHead = 24;
constexpr std::size_t kSummedHead = 8;  // of a frame
constexpr std::uint32_t kLogMagic = 0x377F0682;

std::uint32_t littleEndian(std::span<const std::byte> bytes) {
    std::uint32_t number = 0;
    for (std::size_t at = bytes.size(); at != 0; --at)
        number = number << 8 | std::to_integer<std::uint32_t>(bytes[at - 1]);
    return number;
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
    isBigEndian_ = magic == (kLogMagic | 1);
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
    const auto number = isBigEndian_ ? bigEndian : littleEndian;
    for (std::size_t at = 0; at + 8 <= bytes.size(); at += 8) {
        sum[0] += number(bytes.subspan(at, 4)) + sum[1];
        sum[1] += number(bytes.subspan(at + 4, 4)) + sum[0];
    }
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

// Commits are synced one by one, and what a failed one has left is cut off before the next begins. So no
// crash leaves anything behind a commit that is behind a gap.
bool hasCommitsBehindGap(LogFile& log) {
    bool hasGap = !log.hasHead();
    bool isAfterCommit = false;
    for (LogFile::Frame frame; log.next(frame);) {
        const bool isGood = frame.isOfThisLog && frame.isSound;
        if (isGood && hasGap && isAfterCommit) return true;
        hasGap = hasGap || !isGood;
        isAfterCommit = isGood && frame.pagesAfter != 0;
    }
    return false;
}

}  // namespace

// A log that begins anew gets a new head first; what stands behind it was written back before.
bool isLogSound(const OpenFile& file) {
    LogFile log(file.path());
    return !hasCommitsBehindGap(log) || (!log.hasHead() && isWrittenBack(file));
}

}  // namespace norvane::platform::core::storage::datastore
