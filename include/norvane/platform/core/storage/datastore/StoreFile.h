#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "norvane/platform/core/Export.h"
#include "norvane/platform/core/storage/datastore/StoreError.h"

namespace norvane::platform::core::storage::datastore {

/// The file of a `FileDataStore` as such: for checking and repairing. It knows offsets and bytes, and nothing
/// of what records mean. Nothing here changes the file, and no other writer is kept out.
class QVT_FILE_API StoreFile {
  public:
    /// Something that is wrong with the file.
    struct Problem {
        /// A short word that stays: "identity", "structure", "meta", "record", "directory".
        std::string code;
        /// The record that is concerned, or `IDataStore::BADOFF`.
        std::uint32_t offset;
        /// What is wrong, in a sentence for people.
        std::string text;
    };

    /// What the file says of itself.
    struct Summary {
        std::uint32_t version = 0;      ///< As set by `IDataStore::setVersion`.
        std::uint64_t end = 0;          ///< One more than the highest offset given out.
        std::uint64_t recordCount = 0;  ///< How many records there are.
        std::uint64_t revision = 0;     ///< How many commits there were.
    };

    /// Where records are looked for.
    enum class Search : std::uint8_t {
        byOrder,  ///< As the file's own order leads.
        byPage    ///< Every page that looks like one with records, whatever leads to it.
    };

    /// Gets one record; its bytes are good until it returns.
    using Visitor = std::function<void(std::uint32_t offset, const void* bytes, std::uint32_t size)>;

    /// Everything that is wrong: what the file is, its pages, what it says of itself, and the checksum of
    /// every record. Empty for a sound file. Throws `StoreError` notFound or notReadable only.
    static std::vector<Problem> check(const std::string& path);

    /// Calls the visitor with every record whose checksum is right, once each; byOrder in order of offset.
    /// Answers what the file says of itself, as far as that can be trusted: `end` is at least one more than
    /// the highest offset found. Throws `StoreError` notFound or notReadable; damaged when nothing at all can
    /// be made of the file, or the log beside it belongs to another one.
    static Summary visit(const std::string& path, Search search, const Visitor& visitor);

    /// Gives a closed store that was made under another name in the same folder its own: durably, and never
    /// in the place of another file. Throws `StoreError`: exists, notWritable, diskFull (also where what was
    /// committed could not be written back into the file); nothing has that name by it then.
    static void publish(const std::string& draft, const std::string& path);
};

/// Makes a store file of records whose offsets are given: for repairing. The file comes into being in
/// `finish`; without that nothing stays.
class QVT_FILE_API StoreFileWriter {
  public:
    /// Throws `StoreError`: exists, notWritable, diskFull, as all else here.
    explicit StoreFileWriter(const std::string& path);
    StoreFileWriter(const StoreFileWriter&) = delete;
    StoreFileWriter& operator=(const StoreFileWriter&) = delete;
    ~StoreFileWriter() noexcept;

    /// Each offset at most once, in any order.
    void put(std::uint32_t offset, const void* bytes, std::uint32_t size);
    /// `end` as in `StoreFile::Summary`; it is raised to what the records need.
    void finish(std::uint32_t version, std::uint64_t end);

  private:
    struct Contents;
    std::unique_ptr<Contents> contents_;
};

}  // namespace norvane::platform::core::storage::datastore
