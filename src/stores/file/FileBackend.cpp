#include "stores/file/FileBackend.h"

#include <unistd.h>

#include <algorithm>
#include <exception>
#include <new>
#include <optional>
#include <random>
#include <utility>

#include "stores/file/Connection.h"
#include "stores/file/LiveMap.h"
#include "stores/file/Log.h"
#include "stores/file/NewFile.h"
#include "stores/file/OpenFile.h"

namespace norvane::platform::core::storage::datastore {
namespace {

using Code = StoreError::Code;
using Options = FileDataStore::Options;

std::int64_t newToken() {
    std::random_device device;
    return static_cast<std::int64_t>(std::uint64_t{device()} << 32 | device());
}

// What both kinds of opening have in common.
class OpenBackend : public FileBackend {
  public:
    OpenBackend(const std::string& path, OpenFile::Purpose purpose) {
        file_.emplace(path, purpose);
        checkIdentity(*file_);
    }

    const StoreMeta& meta() const override { return base_.meta; }

    bool load(std::uint32_t offset, LoadTarget& target) override {
        prepareToRead();
        try {
            const bool isThere = connection_->load(offset, target);
            const bool isLive = offset < base_.meta.next && live_.isLive(*connection_, offset);
            if (isThere != isLive) failDamaged(path(), contradiction(isThere), offset);
            return isThere;
        } catch (const StoreError& error) {
            if (error.code() != Code::damaged || error.offset() == offset) throw;
            throw StoreError(error.code(), error.what(), offset);
        }
    }

    FileDataStore::LogStatus logStatus() const override {
        requireOpen();
        std::vector<pid_t> readers = readersOf(path());
        // This connection's own reading is over before it would keep the log from being emptied.
        if (!file_->isSharedHere()) std::erase(readers, ::getpid());
        return {logSizeOf(path()), std::move(readers)};
    }

  protected:
    // Makes the connection one that reads the revision of `base_`.
    virtual void prepareToRead() = 0;

    // Leaves the log as it is: what stands in it goes into the file when somebody writes, not when somebody
    // has read. An empty one goes with the connection.
    void disconnect() noexcept {
        if (!connection_) return;
        connection_->endReading();
        if (!isLogEmpty() || !file_->isStillThere()) connection_->database().keepLog();
        connection_.reset();
    }

    const std::string& path() const { return file_->path(); }
    void requireOpen() const {
        if (!file_) throw StoreError(Code::closed, "the store is closed", IDataStore::BADOFF);
    }

    // The file stays known here until SQLite has closed it.
    std::optional<OpenFile> file_;
    std::optional<Connection> connection_;
    LiveMap live_;
    MetaRow base_;

  private:
    bool isLogEmpty() const noexcept {
        try {
            return logSizeOf(path()) == 0;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }

    static const char* contradiction(bool isThere) {
        return isThere ? "a record that the directory does not know" : "a record is missing";
    }
};

class Reader final : public OpenBackend {
  public:
    explicit Reader(const std::string& path) : OpenBackend(path, OpenFile::Purpose::read) { connect(); }
    ~Reader() override { Reader::close(); }

    void commit(std::span<const Change>, const StoreMeta&) override { refuse(); }
    void compact() override { refuse(); }

    bool refresh() override {
        requireOpen();
        const MetaRow before = base_;
        disconnect();
        connect();
        return base_ != before;
    }

    void close() override {
        if (!file_) return;
        disconnect();
        file_.reset();
    }

  protected:
    void prepareToRead() override {
        requireOpen();
        if (!connection_) connect();
    }

  private:
    [[noreturn]] void refuse() const {
        requireOpen();
        fail(Code::readOnly, path(), "opened for reading only");
    }

    void connect() {
        live_.clear();
        try {
            connect(Database::Mode::read);
        } catch (const StoreError& error) {
            // In a folder that cannot be written there is no place for the files that connections share.
            if (error.code() != Code::notReadable || logSizeOf(path()) != 0) throw;
            connect(Database::Mode::readUnlocked);
        }
    }

    void connect(Database::Mode mode) {
        try {
            connection_.emplace(path(), mode);
            base_ = connection_->beginReading();
        } catch (...) {
            disconnect();
            throw;
        }
    }
};

class Writer final : public OpenBackend {
  public:
    Writer(const std::string& path, const Options& options)
        : OpenBackend(path, OpenFile::Purpose::write),
          partSize_(options.partSize),
          logLimit_(options.walLimit) {
        connect();
    }
    ~Writer() override { Writer::close(); }

    void commit(std::span<const Change> changes, const StoreMeta& meta) override;
    bool refresh() override;
    void compact() override;
    void close() override;

  protected:
    void prepareToRead() override;

  private:
    void connect();
    void repairConnection();
    void adopt(const MetaRow& found);
    void beginCommit();
    void apply(std::span<const Change> changes, const StoreMeta& meta);
    void giveUpConnection() noexcept;
    void requireFile();
    void trimLog();

    const std::uint32_t partSize_;
    const std::uint64_t logLimit_;
    std::uint64_t trimAbove_ = 0;  // what the log may grow to before it is tried again to empty it
    LogEnd logEnd_;                // before the last attempt to write
    MetaRow attempt_;              // what the last commit would have made of `base_`
    bool isDoubtful_ = false;      // a write has failed on this connection
};

void Writer::connect() {
    try {
        connection_.emplace(path(), Database::Mode::write);
        base_ = connection_->beginReading();
        connection_->endReading();
    } catch (...) {
        disconnect();
        throw;
    }
}

void Writer::prepareToRead() {
    requireOpen();
    repairConnection();
    if (connection_->isReading()) return;
    try {
        adopt(connection_->beginReading());
    } catch (...) {
        connection_->endReading();
        throw;
    }
}

// After a failed write nothing is tried again on the same connection: what SQLite and the system have in
// memory need not be what is on the disk. What the failed attempt may have left in the log is taken out
// first.
void Writer::repairConnection() {
    if (!isDoubtful_) return;
    if (connection_) {
        connection_->rollBack();
        if (!logEnd_.cutBack(connection_->database()))
            fail(Code::notWritable, path(), "what a failed commit has left cannot be taken back");
        connection_->database().keepLog();
        connection_.reset();
    }
    live_.clear();
    connection_.emplace(path(), Database::Mode::write);
    isDoubtful_ = false;
}

// Goes on from what is in the file, which is what was committed here last, or what a commit that seemed to
// have failed has made nevertheless.
void Writer::adopt(const MetaRow& found) {
    if (found == base_) return;
    if (found != attempt_) fail(Code::fenced, path(), "another writer has changed the file");
    base_ = found;
    live_.clear();
}

void Writer::commit(std::span<const Change> changes, const StoreMeta& meta) {
    requireOpen();
    repairConnection();
    requireFile();
    beginCommit();
    try {
        apply(changes, meta);
    } catch (...) {
        giveUpConnection();
        throw;
    }
    base_ = attempt_;
    live_.keep();
    try {
        trimLog();
    } catch (const std::bad_alloc&) {
        // The commit has been made; the next one trims.
    }
}

void Writer::beginCommit() {
    connection_->endReading();
    connection_->beginWriting();
    try {
        adopt(connection_->meta());
        logEnd_ = LogEnd::of(connection_->database());
        requireFile();
    } catch (...) {
        connection_->rollBack();
        throw;
    }
}

void Writer::apply(std::span<const Change> changes, const StoreMeta& meta) {
    const std::uint64_t blocks = blockCount(base_.meta.next);
    const bool anyParts = connection_->anyParts();
    live_.drop();
    for (const Change& change : changes) {
        if (anyParts) connection_->eraseParts(change.offset);
        if (change.isRemoved)
            connection_->erase(change.offset, false);
        else
            connection_->put(change.offset, {change.bytes, change.size}, partSize_);
        live_.set(*connection_, change.offset, !change.isRemoved, blocks);
    }
    live_.write(*connection_, blocks, blockCount(meta.next));
    attempt_ = {meta, newToken()};
    attempt_.meta.revision = base_.meta.revision + 1;
    connection_->putMeta(attempt_);
    connection_->commit();
}

void Writer::giveUpConnection() noexcept {
    isDoubtful_ = true;
    live_.drop();
    try {
        repairConnection();
    } catch (const std::exception&) {
        // It is tried again before the next use, which tells of the failure.
    }
}

// A file that was removed could be written none the less, and nobody would find it.
void Writer::requireFile() {
    if (!file_->isStillThere()) fail(Code::notWritable, path(), "the file was removed or replaced");
    if (connection_->isReading() && !isLogStillThere(connection_->database()))
        fail(Code::notWritable, path(), "the log of the file was removed or replaced");
}

// While a reader needs the log, it is not tried at every commit again.
void Writer::trimLog() {
    const std::uint64_t size = logSizeOf(path());
    if (size <= std::max(logLimit_, trimAbove_)) return;
    const int answer = emptyLog(connection_->database());
    trimAbove_ = answer == SQLITE_OK ? 0 : size + logLimit_ / 4;
    if (answer == SQLITE_OK || answer == SQLITE_BUSY) return;
    giveUpConnection();
}

bool Writer::refresh() {
    prepareToRead();
    return false;
}

void Writer::compact() {
    requireOpen();
    repairConnection();
    beginCommit();
    connection_->rollBack();
    try {
        connection_->database().run("PRAGMA temp_store=FILE", Doing::writing);
        connection_->database().run("VACUUM", Doing::writing);
        connection_->database().run("PRAGMA temp_store=MEMORY", Doing::writing);
    } catch (...) {
        giveUpConnection();
        throw;
    }
    trimAbove_ = 0;
    const int answer = emptyLog(connection_->database());
    if (answer != SQLITE_OK && answer != SQLITE_BUSY) giveUpConnection();
}

void Writer::close() {
    if (!file_) return;
    if (isDoubtful_) giveUpConnection();
    if (connection_) {
        connection_->endReading();
        if (isDoubtful_ || !file_->isStillThere())
            connection_->database().keepLog();
        else
            emptyLog(connection_->database());
    }
    connection_.reset();
    file_.reset();
}

void makeFile(const std::string& path) {
    NewFile file(path);
    file.connection().putMeta({{}, newToken()});
    file.publish();
}

}  // namespace

std::unique_ptr<FileBackend> FileBackend::open(const std::string& path, const Options& options) {
    if (options.access == FileDataStore::Access::readOnly) return std::make_unique<Reader>(resolved(path));
    if (options.creation == FileDataStore::Creation::always) makeFile(resolvedInFolder(path));
    if (options.creation == FileDataStore::Creation::ifMissing && ::access(path.c_str(), F_OK) != 0) {
        try {
            makeFile(resolvedInFolder(path));
        } catch (const StoreError& error) {
            // Somebody else has made it in the meantime.
            if (error.code() != Code::exists) throw;
        }
    }
    return std::make_unique<Writer>(resolved(path), options);
}

}  // namespace norvane::platform::core::storage::datastore
