// The log beside a store file as it lies on the disk, frame by frame, read without SQLite.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "stores/file/Layout.h"
#include "stores/file/RawPage.h"

namespace norvane::platform::core::storage::datastore {

class OpenFile;

class LogFile {
  public:
    // One page as a commit has written it.
    struct Frame {
        std::uint32_t page = 0;
        std::uint32_t pagesAfter = 0;  // of the file, in the last frame of a commit; else 0
        std::uint64_t position = 0;    // where in the log the page is
        bool isOfThisLog = false;      // and not left from one that was written back
        bool isSound = false;          // its sum goes on from the one before
    };

    // For the file at this path. A log that is not there has no frames.
    explicit LogFile(const std::string& path);
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;
    // No lock is ever held on a log, so closing it drops none.
    ~LogFile();

    // False if there is no log, or one that SQLite takes for empty.
    bool hasHead() const { return hasHead_; }
    // The next frame, whether sound or not; false behind the last.
    bool next(Frame& frame);
    bool readPage(std::uint64_t position, Page& page) const;
    // The page of the frame that came last.
    Page lastPage() const;

  private:
    using Sum = std::array<std::uint32_t, 2>;

    bool readAt(std::uint64_t position, std::span<std::byte> buffer) const;
    void readHead();
    Sum sumFrom(Sum sum, std::span<const std::byte> bytes) const;

    int descriptor_ = -1;
    bool hasHead_ = false;
    bool isSwapped_ = false;
    std::array<std::byte, 8> salts_{};
    Sum stored_{};  // in the frame before
    std::uint64_t position_ = 0;
    std::vector<std::byte> bytes_;
};

enum class LogState : std::uint8_t {
    // There may be none. One that ends in one commit that is not whole is what a crash leaves.
    sound,
    // Commits stand behind a place that is damaged: they were acknowledged, and SQLite would pass them over.
    damaged,
    // What the file has is neither what the log began with nor one of its commits.
    ofAnotherFile,
};
LogState stateOfLog(const OpenFile& file);

}  // namespace norvane::platform::core::storage::datastore
