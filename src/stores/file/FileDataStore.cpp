#include "norvane/platform/core/storage/datastore/FileDataStore.h"

#include <mutex>

#include "stores/file/FileBackend.h"
#include "stores/overlay/Overlay.h"

namespace norvane::platform::core::storage::datastore {
namespace {

OverlayOptions overlayOptions(const std::string& path, const FileDataStore::Options& options) {
    OverlayOptions chosen;
    chosen.name = path;
    chosen.isReadOnly = options.access == FileDataStore::Access::readOnly;
    chosen.memoryLimit = options.memoryLimit;
    chosen.recordLimit = options.recordLimit;
    chosen.commitsAtRelease = options.commitPolicy != FileDataStore::CommitPolicy::onRequest;
    if (options.commitPolicy == FileDataStore::CommitPolicy::atInterval)
        chosen.commitInterval = options.commitInterval;
    return chosen;
}

}  // namespace

struct FileDataStore::Contents {
    Contents(const std::string& name, const Options& options)
        : path(name),
          backend(FileBackend::open(name, options)),
          overlay(*backend, overlayOptions(name, options)) {}

    const std::string path;
    const std::unique_ptr<FileBackend> backend;
    Overlay overlay;
};

FileDataStore::FileDataStore(const std::string& path) : FileDataStore(path, Options()) {}

FileDataStore::FileDataStore(const std::string& path, const Options& options)
    : contents_(new Contents(path, options)) {}

FileDataStore::~FileDataStore() noexcept = default;

void FileDataStore::read(std::uint32_t offset, void* buffer, std::uint32_t size) {
    contents_->overlay.read(offset, buffer, size);
}

IDataStore::Guard* FileDataStore::lock() { return contents_->overlay.lock(); }

void FileDataStore::flush() { contents_->overlay.flush(); }

std::uint32_t FileDataStore::version() { return contents_->overlay.version(); }

void FileDataStore::setVersion(std::uint32_t version) { contents_->overlay.setVersion(version); }

std::uint64_t FileDataStore::size() { return contents_->overlay.size(); }

std::uint32_t FileDataStore::append(const void* buffer, std::uint32_t size) {
    return contents_->overlay.append(buffer, size);
}

void FileDataStore::extend(std::uint32_t offset, const void* buffer, std::uint32_t size) {
    contents_->overlay.extend(offset, buffer, size);
}

void FileDataStore::write(std::uint32_t offset, const void* buffer, std::uint32_t size, bool flag) {
    contents_->overlay.write(offset, buffer, size, flag);
}

std::uint32_t FileDataStore::recordSize(std::uint32_t offset) {
    return contents_->overlay.recordSize(offset);
}

void FileDataStore::remove(std::uint32_t offset) { contents_->overlay.remove(offset); }

const void* FileDataStore::view(std::uint32_t offset, std::uint32_t& size) {
    return contents_->overlay.view(offset, size);
}

bool FileDataStore::patch(std::uint32_t offset, std::uint32_t position, const void* bytes, std::uint32_t size,
                          bool flag) {
    return contents_->overlay.patch(offset, position, bytes, size, flag);
}

std::uint32_t FileDataStore::recordLimit() { return contents_->overlay.recordLimit(); }

std::uint64_t FileDataStore::changeStamp() { return contents_->overlay.changeStamp(); }

IDataStore::Companion* FileDataStore::companion(std::unique_ptr<Companion> (*make)()) {
    return contents_->overlay.companion(make);
}

void FileDataStore::commit() { contents_->overlay.commit(); }

void FileDataStore::rollback() { contents_->overlay.rollback(); }

void FileDataStore::close() {
    const std::lock_guard lock(contents_->overlay.mutex());
    if (contents_->overlay.isClosed()) return;
    contents_->overlay.close();
    contents_->backend->close();
}

bool FileDataStore::refresh() { return contents_->overlay.refresh(); }

void FileDataStore::compact() {
    const std::lock_guard lock(contents_->overlay.mutex());
    contents_->overlay.commit();
    contents_->backend->compact();
}

const std::string& FileDataStore::path() const { return contents_->path; }

FileDataStore::Access FileDataStore::access() const {
    return contents_->overlay.isReadOnly() ? Access::readOnly : Access::readWrite;
}

bool FileDataStore::hasChanges() const { return contents_->overlay.hasChanges(); }

std::uint64_t FileDataStore::revision() const { return contents_->overlay.revision(); }

std::uint64_t FileDataStore::recordCount() const { return contents_->overlay.recordCount(); }

std::uint64_t FileDataStore::residentBytes() const { return contents_->overlay.residentBytes(); }

FileDataStore::LogStatus FileDataStore::logStatus() const { return contents_->backend->logStatus(); }

FileDataStore::Transaction::Transaction(FileDataStore& store) : store_(&store) {
    store.contents_->overlay.beginTransaction();
}

FileDataStore::Transaction::~Transaction() noexcept {
    if (!store_) return;
    try {
        rollback();
    } catch (...) {
        store_->contents_->overlay.noteFailure();
        store_->contents_->overlay.endTransaction();
    }
}

void FileDataStore::Transaction::commit() {
    if (!store_) return;
    store_->contents_->overlay.commitTransaction();
    store_ = nullptr;
}

void FileDataStore::Transaction::rollback() {
    if (!store_) return;
    store_->rollback();
    store_->contents_->overlay.endTransaction();
    store_ = nullptr;
}

}  // namespace norvane::platform::core::storage::datastore
