#include <algorithm>
#include <map>

#include "norvane/platform/core/storage/datastore/FileDataStore.h"
#include "norvane/platform/core/storage/datastore/StoreFile.h"
#include "stores/file/Layout.h"
#include "stores/file/NewFile.h"
#include "stores/file/OpenFile.h"

namespace norvane::platform::core::storage::datastore {

struct StoreFileWriter::Contents {
    explicit Contents(const std::string& path) : file(resolvedInFolder(path)) {}

    void markLive(std::uint32_t offset) {
        live[offset / kBlockSize][offset % kBlockSize / 8] |= std::byte{1} << (offset % 8);
        next = std::max(next, std::uint64_t{offset} + 1);
        ++count;
    }

    NewFile file;
    std::map<std::uint32_t, LiveBits> live;
    std::uint64_t next = 0;
    std::uint64_t count = 0;
};

StoreFileWriter::StoreFileWriter(const std::string& path) : contents_(new Contents(path)) {}

StoreFileWriter::~StoreFileWriter() noexcept = default;

void StoreFileWriter::put(std::uint32_t offset, const void* bytes, std::uint32_t size) {
    const FileDataStore::Options defaults;
    contents_->file.connection().add(offset, {static_cast<const std::byte*>(bytes), size}, defaults.partSize);
    contents_->markLive(offset);
}

void StoreFileWriter::finish(std::uint32_t version, std::uint64_t end) {
    Connection& connection = contents_->file.connection();
    MetaRow row;
    row.meta.version = version;
    row.meta.next = std::max(contents_->next, std::min(end, kEndOfOffsets));
    row.meta.recordCount = contents_->count;
    row.meta.revision = 1;
    row.token = newToken();
    for (std::uint64_t block = 0; block < blockCount(row.meta.next); ++block) {
        const auto found = contents_->live.find(static_cast<std::uint32_t>(block));
        connection.putLiveBits(static_cast<std::uint32_t>(block),
                               found == contents_->live.end() ? LiveBits{} : found->second);
    }
    connection.putMeta(row);
    contents_->file.publish();
}

}  // namespace norvane::platform::core::storage::datastore
