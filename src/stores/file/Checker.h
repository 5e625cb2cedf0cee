// Looks for everything that is wrong with a store file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "norvane/platform/core/storage/datastore/StoreFile.h"
#include "stores/file/Session.h"

namespace norvane::platform::core::storage::datastore {

class Checker {
  public:
    // The session is connected.
    explicit Checker(Session& session) : connection_(session.connection()), path_(session.path()) {}

    // Throws `notReadable` where the disk fails.
    std::vector<StoreFile::Problem> run();

  private:
    using Offsets = std::vector<std::uint32_t>;

    void checkPages();
    void checkMeta();
    void checkBlock(std::uint32_t block);
    void checkRecord(std::uint32_t offset, bool isLive, bool isDirectoryKnown);
    void checkRest();
    void checkOrphans(const char* sql, const char* code, const char* words);

    bool findLive(std::uint32_t block, Offsets& offsets);
    bool findRows(std::uint32_t block, Offsets& offsets);
    std::int64_t largest(const char* sql);

    // Runs a step; what is damaged becomes a problem. True if nothing was.
    template <class Step>
    bool noting(const char* code, std::uint32_t offset, Step&& step);
    void add(const char* code, std::uint32_t offset, const std::string& text);

    static constexpr std::size_t kMostProblems = 1000;

    Connection& connection_;
    const std::string path_;
    std::vector<StoreFile::Problem> problems_;
    StoreMeta meta_;
    std::uint64_t liveCount_ = 0;
};

// What an error says, without the name of the file.
std::string wordsOf(const StoreError& error, const std::string& path);

}  // namespace norvane::platform::core::storage::datastore
