#include "stores/file/RawFile.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace norvane::platform::core::storage::datastore {
namespace {

constexpr std::uint64_t kMostPages = 0xFFFFFFFE;

}  // namespace

RawFile::RawFile(const std::string& path) : file_(path, OpenFile::Purpose::read), log_(path) {
    const std::uint64_t pages = (file_.size() + kPageSize - 1) / kPageSize;
    pageCount_ = static_cast<std::uint32_t>(std::min(pages, kMostPages));
    if (log_.hasHead()) readLog();
}

// What follows a frame that is not sound was never committed, or is lost with it.
void RawFile::readLog() {
    std::vector<std::pair<std::uint32_t, std::uint64_t>> uncommitted;
    std::uint32_t last = pageCount_;
    for (LogFile::Frame frame; log_.next(frame) && frame.isOfThisLog && frame.isSound;) {
        uncommitted.emplace_back(frame.page, frame.position);
        if (frame.pagesAfter == 0) continue;
        for (const auto& [page, position] : uncommitted) {
            inLog_[page] = position;
            last = std::max(last, page);
        }
        uncommitted.clear();
        pageCount_ = std::min(frame.pagesAfter, last);
    }
}

std::uint32_t RawFile::nextStored(std::uint32_t number) const {
    const std::uint64_t begin = std::uint64_t{number - 1} * kPageSize;
    std::uint64_t found = begin < file_.size() ? file_.nextData(begin) / kPageSize + 1 : kMostPages;
    if (const auto inLog = inLog_.lower_bound(number); inLog != inLog_.end())
        found = std::min<std::uint64_t>(found, inLog->first);
    return found <= pageCount_ ? static_cast<std::uint32_t>(found) : 0;
}

bool RawFile::read(std::uint32_t number, Page& page) const {
    if (number == 0 || number > pageCount_) return false;
    if (const auto found = inLog_.find(number); found != inLog_.end())
        return log_.readPage(found->second, page);
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
