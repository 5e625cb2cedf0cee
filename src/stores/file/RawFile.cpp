#include "stores/file/RawFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <span>
#include <utility>
#include <vector>

#include "stores/file/Log.h"

namespace norvane::platform::core::storage::datastore {
namespace {

constexpr std::size_t kLogHeader = 32;
constexpr std::size_t kFrameHeader = 24;
constexpr std::uint32_t kLogMagic =
    0x377F0682;  // plus 1 where sums are made of numbers with the highest byte first
constexpr std::uint64_t kMostPages = 0xFFFFFFFE;

std::uint32_t bigEndian(const std::byte* bytes) {
    std::uint32_t number = 0;
    for (int at = 0; at < 4; ++at) number = number << 8 | std::to_integer<std::uint32_t>(bytes[at]);
    return number;
}

std::uint32_t littleEndian(const std::byte* bytes) {
    std::uint32_t number = 0;
    for (int at = 3; at >= 0; --at) number = number << 8 | std::to_integer<std::uint32_t>(bytes[at]);
    return number;
}

std::size_t readAt(int descriptor, std::uint64_t position, std::span<std::byte> buffer) {
    std::size_t done = 0;
    while (done < buffer.size()) {
        const ssize_t got = ::pread(descriptor, buffer.data() + done, buffer.size() - done,
                                    static_cast<off_t>(position + done));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

// The running sum of a log: each frame's includes all before it, so that what follows a bad one is void.
class LogSum {
  public:
    explicit LogSum(bool isBigEndian) : number_(isBigEndian ? bigEndian : littleEndian) {}

    void add(std::span<const std::byte> bytes) {
        for (std::size_t at = 0; at + 8 <= bytes.size(); at += 8) {
            first_ += number_(bytes.data() + at) + second_;
            second_ += number_(bytes.data() + at + 4) + first_;
        }
    }
    bool is(const std::byte* stored) const {
        return bigEndian(stored) == first_ && bigEndian(stored + 4) == second_;
    }

  private:
    std::uint32_t (*number_)(const std::byte*);
    std::uint32_t first_ = 0;
    std::uint32_t second_ = 0;
};

}  // namespace

RawFile::RawFile(const std::string& path) : file_(path, OpenFile::Purpose::read) {
    const std::uint64_t pages = (file_.size() + kPageSize - 1) / kPageSize;
    pageCount_ = static_cast<std::uint32_t>(std::min(pages, kMostPages));
    log_ = ::open(logPathOf(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (log_ >= 0) readLog();
}

// No lock is ever held on a log, so closing it drops none.
RawFile::~RawFile() {
    if (log_ >= 0) ::close(log_);
}

void RawFile::readLog() {
    std::array<std::byte, kLogHeader> header{};
    if (readAt(log_, 0, header) < header.size()) return;
    const std::uint32_t magic = bigEndian(header.data());
    if ((magic & ~1u) != kLogMagic || bigEndian(header.data() + 8) != kPageSize) return;
    LogSum sum((magic & 1) != 0);
    sum.add(std::span(header).first(24));
    if (!sum.is(header.data() + 24)) return;

    std::vector<std::byte> frame(kFrameHeader + kPageSize);
    std::vector<std::pair<std::uint32_t, std::uint64_t>> uncommitted;
    std::uint32_t last = pageCount_;
    for (std::uint64_t at = kLogHeader; readAt(log_, at, frame) == frame.size(); at += frame.size()) {
        const bool isOfThisLog = std::equal(frame.begin() + 8, frame.begin() + 16, header.begin() + 16);
        sum.add(std::span(frame).first(8));
        sum.add(std::span(frame).subspan(kFrameHeader));
        const std::uint32_t number = bigEndian(frame.data());
        if (!isOfThisLog || number == 0 || !sum.is(frame.data() + 16)) break;
        uncommitted.emplace_back(number, at + kFrameHeader);
        const std::uint32_t pagesAfter = bigEndian(frame.data() + 4);
        if (pagesAfter == 0) continue;
        for (const auto& [page, place] : uncommitted) {
            inLog_[page] = place;
            last = std::max(last, page);
        }
        uncommitted.clear();
        pageCount_ = std::min(pagesAfter, last);
    }
}

bool RawFile::read(std::uint32_t number, Page& page) const {
    if (number == 0 || number > pageCount_) return false;
    if (const auto found = inLog_.find(number); found != inLog_.end())
        return readAt(log_, found->second, page) == page.size();
    std::size_t size = 0;
    try {
        size = file_.readAt(std::uint64_t{number - 1} * kPageSize, page);
    } catch (const StoreError&) {
        return false;  // A place that the disk cannot read is one page less.
    }
    std::fill(page.begin() + static_cast<std::ptrdiff_t>(size), page.end(), std::byte{0});
    return size != 0;
}

}  // namespace norvane::platform::core::storage::datastore
