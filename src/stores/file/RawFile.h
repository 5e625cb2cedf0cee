// The pages of a store file as they lie on the disk, read without SQLite: for files that it refuses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "stores/file/Layout.h"
#include "stores/file/LogFile.h"
#include "stores/file/OpenFile.h"
#include "stores/file/RawPage.h"

namespace norvane::platform::core::storage::datastore {

// Pages count from 1. What was committed to the log stands for what is in the file.
class RawFile {
  public:
    // Throws notFound, notReadable, and notAStore for what is no file.
    explicit RawFile(const std::string& path);

    std::uint32_t pageCount() const { return pageCount_; }
    // False if there is no such page. A page that the file ends in is filled up with zeros.
    bool read(std::uint32_t number, Page& page) const;
    // The next page from there on that is not in a hole of the file, 0 if there is none: a file can claim to
    // be far larger than what it has.
    std::uint32_t nextStored(std::uint32_t number) const;

  private:
    void readLog();

    OpenFile file_;
    LogFile log_;
    std::uint32_t pageCount_ = 0;
    std::map<std::uint32_t, std::uint64_t> inLog_;  // where in the log the page is
};

}  // namespace norvane::platform::core::storage::datastore
